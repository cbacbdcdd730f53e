#pragma once
// A hand-made week across a month end and a leap day (Mon 26 Feb 2024 .. Sun 3 Mar 2024)
// for the report tests. The figures each report must give for it are worked out by hand in
// the tests themselves; the comments in ReportMonth.cpp say what every row is for.

#include <QDate>
#include <QSqlDatabase>
#include <QString>

namespace qz2test {

inline const QDate kMonthFrom(2024, 2, 26);
inline const QDate kMonthTo(2024, 3, 3);

// Inserts the week's company 1 rows into a database that has the schema and the link
// table (a TestDb, say).
void fillReportMonth(const QSqlDatabase& db);

// A new SQLite file at `path` with the schema, identity link table and the week.
void createReportMonthFile(const QString& path);

}  // namespace qz2test
