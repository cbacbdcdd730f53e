#pragma once
// The database a run of the host program works on: an SQLite file, a SQL Server database
// through ODBC, or the demo database in the user's data folder. Every failure comes back as
// one line of text for the person at the terminal.

#include <QCommandLineOption>
#include <QDate>
#include <QSqlDatabase>
#include <QString>
#include <QStringList>
#include <optional>

#include "db/Dialect.h"

namespace qz2::host {

// The exit codes every command of the program gives the same meaning.
constexpr int kExitUsage = 2;     // bad options
constexpr int kExitDatabase = 3;  // the database cannot be opened or used

struct DatabaseChoice {
    QString sqliteFile;  // --database
    QString odbc;        // --odbc; neither: the demo database
};

// The options with which every command of the program chooses its database and company.
struct DatabaseOptions {
    QCommandLineOption database;
    QCommandLineOption odbc;
    QCommandLineOption company;
};
DatabaseOptions databaseOptions();

// A company or user identifier given on the command line: the session keeps them in 16 bits,
// so a value that does not fit is refused (nullopt), never wrapped.
std::optional<qint16> sixteenBitId(const QString& text);

// A date given on the command line: exactly "yyyy-mm-dd"; nullopt for anything else.
std::optional<QDate> isoDate(const QString& text);

// Tells a subcommand's failure in one line on standard error ("qz2-attendance COMMAND:
// MESSAGE") and returns its exit code.
int commandFailed(const char* command, int code, const QString& message);

// Why the file cannot be opened as an attendance database (it is missing, a folder,
// unreadable, empty or not SQLite); empty when it looks like one. Looks at the file only.
QString sqliteFileProblem(const QString& file);

// The demo database's place in the user's data folder.
QString defaultDemoPath();
// The demo's punch file, written beside the demo database when it is created.
QString demoPunchesPath(const QString& demoFile);

// What the host sends on every ODBC connection it opens, before the module uses it. The
// module's SQL Server statements write dates as "mm/dd/yyyy" and "yyyy/mm/dd", which SQL
// Server reads by the session's date format: month-day-year order is set so that they are
// read as meant whatever the login's language. Nothing for any other DBMS (SQLite through
// ODBC has no such setting and takes ISO dates).
QStringList odbcSessionStatements(const qz2::db::Dialect& dialect);

// Opens the chosen database under `connectionName`. The demo database is created (schema
// and demo rows for `processDate`) when it does not exist yet, and `created` is set. An
// SQLite file must hold the link table. Without a value, `error` says why.
std::optional<QSqlDatabase> openAttendanceDatabase(const DatabaseChoice& choice, QDate processDate,
                                                   const QString& connectionName, QString& error,
                                                   bool* created = nullptr);

}  // namespace qz2::host
