#pragma once
// The statements the reports read with: a fixed handful per report, whatever the number of
// employees or days (employees, live headers, their detail lines and claim lines inside the
// period, the work-time settings and the grace time). Table names come from
// LinkedTableNames; dates are written by the dialect ('yyyymmdd' for SQL Server, ISO text
// for SQLite), so the SQL Server texts below are the ones the tests pin.

#include <QDate>
#include <QString>
#include <optional>

#include "db/Dialect.h"

namespace qz2::reports::sql {

// What a period report reads: the company, the period and optionally one department.
struct Scope {
    qint16 company = 0;
    QDate from;
    QDate to;
    std::optional<qint32> department;
};

// The department's own row (to tell an unknown department from an empty one).
QString departmentQuery(qint16 company, qint32 department);

// The company's departments by name, for a choice of one.
QString departmentsQuery(qint16 company);

// The employees a muster lists: the active ones, and any other who has a live entry in the
// period, with their department's name (NULL without a department).
QString musterEmployeesQuery(const db::Dialect& d, const Scope& s);

// The live (not cancelled) headers that overlap the period, with their employee and
// department, in the order of the employees' numbers.
QString liveHeadersQuery(const db::Dialect& d, const Scope& s);

// The detail lines of live entries dated inside the period, in no particular order (a
// million lines need no sort: the figures do not depend on their order).
QString liveDetailsQuery(const db::Dialect& d, const Scope& s);

// The claim lines of live entries dated inside the period.
QString liveClaimsQuery(const db::Dialect& d, const Scope& s);

// The company's work-time settings, every setting and weekday.
QString workTimeQuery(qint16 company);

// The company's grace time in minutes.
QString graceTimeQuery(qint16 company);

// One entry by its number, cancelled or not, with employee and department.
QString entryHeaderQuery(qint16 company, const QString& entryNo);
// Its detail lines and claim lines.
QString entryDetailsQuery(qint16 company, qint32 entryId);
QString entryClaimsQuery(qint16 company, qint32 entryId);

// A text between single quotes, quotes inside doubled.
QString quoted(const QString& text);

}  // namespace qz2::reports::sql
