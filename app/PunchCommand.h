#pragma once
// `qz2-attendance import-punches FILE --from yyyy-mm-dd --to yyyy-mm-dd [--dry-run]`: the
// whole company's punches of a file made into attendance entries, one transaction per
// employee, as the register's Import punches... does.

namespace qz2::app {

// Exit codes (also in the README): 0 every employee with punches saved, 1 some skipped,
// 2 bad options, 3 the database, 4 the file.
int runImportPunchesCommand(int argc, char** argv);

// What the register's --help says about importing punches.
const char* importPunchesHelpText();

}  // namespace qz2::app
