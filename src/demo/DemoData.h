#pragma once
// Demo and benchmark databases for the attendance module (SQLite).
//
// createSchema() runs the bundled schema; generate() fills it with a small, believable
// company whose every date is relative to the process date, so that the register, the
// entry form and the picker have something to show on any day; generateBenchmark()
// fills it with large, regular volumes for timing the register, the picker and saving.
//
// Both generators are deterministic (fixed-seed std::mt19937 with plain modulo draws),
// write everything in one transaction and throw std::runtime_error carrying the
// driver's message when a statement fails (the transaction is then rolled back).

#include <QDate>

class QSqlDatabase;

namespace qz2::demo {

// Size of the demo database of generate().
struct DemoScale {
    // Employees of company 1, those with a particular role included (one without a
    // department, one who joined in the process date's month, one with a zero hourly rate,
    // every ninth inactive). At least 10.
    int employees = 45;
    // Calendar months of entries before the process date's month (one entry per month
    // for each employee with entries); the process date's own month is left for the clerk.
    int monthsOfEntries = 3;
    // Further monthly entries before those months, going back month by month over the
    // same employees (to make the register longer).
    int extraEntries = 0;
    // How many employees (the first active ones with a department and an old date of
    // join) receive entries.
    int employeesWithEntries = 25;
};

// Size of the benchmark database of generateBenchmark(). Only company 1 is written, so
// every table holds exactly the counts asked for.
struct BenchScale {
    // Attendance headers. Header k (from 0) belongs to active employee k % activeEmployees
    // and covers the calendar month (k / activeEmployees) + 1 months before the process
    // date's month; eaID is k + 1 and eaNo "ATT" followed by k + 1.
    int entries = 100000;
    // Active employees (identifiers 1..activeEmployees). At least 1, and entries may not
    // reach back more than 1200 months per employee.
    int activeEmployees = 5000;
    // Inactive employees added after the active ones; they have no entries.
    int inactiveEmployees = 0;
    // Detail lines in total, spread as evenly as possible over the headers (the first
    // detailRows % entries headers get one more). Lines are the scheduled pairs of the
    // period's working days, in date order; when a header needs more lines than its
    // period has pairs, the days repeat.
    int detailRows = 1000000;
    // Allowance/deduction lines in total, spread over the headers like the details,
    // alternating allowance and deduction.
    int allowanceRows = 0;
    // pMonthlyPayrollProcessing rows. Row r belongs to active employee r % activeEmployees
    // and is dated the last day of the month (r / activeEmployees) + 2 months before the
    // process date's month: payroll lags attendance by one month.
    int payrollRows = 60000;
    // Every n-th header (n, 2n, ...) is cancelled; 0 cancels none.
    int cancelledEvery = 0;
    // pSettings.noofPreviousdays of company 1: the register's window in days; 0 lists
    // every entry.
    int noofPreviousdays = 0;
};

// Runs db/sqlite/schema.sql (compiled in as the resource ":/db/sqlite/schema.sql") on an
// open SQLite connection, one statement at a time. Throws std::runtime_error with the
// driver's message when the connection is not open or a statement fails.
void createSchema(QSqlDatabase& db);

// Fills a freshly created schema with the demo company 1 ("Demo Works") and a tiny
// company 2, relative to processDate. One transaction; throws std::runtime_error on a
// database failure and std::invalid_argument for an unusable scale.
void generate(QSqlDatabase& db, QDate processDate, const DemoScale& scale = {});

// Fills a freshly created schema with company 1's reference data (link table, users,
// settings, calendars, work-time settings, prefix, catalogue) and the volumes of
// `scale`. One transaction, one prepared statement per table reused for every row.
// Throws std::runtime_error on a database failure and std::invalid_argument for an
// unusable scale.
void generateBenchmark(QSqlDatabase& db, QDate processDate, const BenchScale& scale);

// The time clocks' attendance log of the demo company for the process date's month, from
// its first day to the day before the process date (the month the demo leaves for the
// clerk): one punch a line, TAB-separated (code left-padded with blanks, "yyyy-MM-dd
// HH:mm:ss", device, state 0 in / 1 out / 255 none, two further numbers), after a line that
// names the clock and before a line of totals. Every active employee of company 1 with
// entries punches each scheduled pair of their working days (not on holidays or approved
// leave days), a few minutes either way; on top, one double tap (a duplicate), one
// forgotten check-out, one night shift past midnight, one day without directions, and a
// few punches of codes no employee has. Deterministic. Throws std::runtime_error when the
// database cannot be read or the file cannot be written.
void writeDemoPunches(const QSqlDatabase& db, QDate processDate, const QString& path);

}  // namespace qz2::demo
