#pragma once
// `qz2-attendance report muster|sheet|payroll ...`: a report written to a file, without a
// display.

namespace qz2::app {

// Exit codes (also in the README): 0 written, 2 bad options, 3 the database cannot be
// opened or read, 5 the report cannot be made for the request (the period, the department
// or the entry), 6 the file cannot be written.
int runReportCommand(int argc, char** argv);

}  // namespace qz2::app
