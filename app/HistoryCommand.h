#pragma once
// `qz2-attendance add-history-table [--database FILE | --odbc "..."]`: adds the module's
// history table to a suite database that does not have it yet.

namespace qz2::app {

// Exit codes (also in the README): 0 the table was added or was there already, 2 bad
// options, 3 the database cannot be opened or written.
int runAddHistoryTableCommand(int argc, char** argv);

// What --help says about the history of entries and how to add its table.
const char* historyHelpText();

}  // namespace qz2::app
