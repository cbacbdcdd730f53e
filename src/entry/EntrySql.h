#pragma once
// Every statement of the entry form's start-up, employee and period choice, work-time
// schedule and numbering. Each builder writes the suite's T-SQL text and asks the dialect
// only for what SQLite writes differently, so that on SQL Server the text is the suite's
// own to the letter. Table names come from LinkedTableNames except where a statement names
// a table literally ("vwPaymonthvsdate").

#include <QDate>
#include <QString>

#include "db/Database.h"
#include "db/Dialect.h"

namespace qz2::entry::sql {

// The employee box's condition, built without a blank before "And" as the suite does.
QString employeeListCondition(const db::Dialect& d, qint16 company);
// The numbers of the company's active employees (eEmpID, eEmpNo), which the employee box
// shows before each name.
QString employeeNumbersQuery(qint16 company);

// Department-wise switches of the company.
QString departmentSwitchesQuery(qint16 company);
// Date of join and department of the employee.
QString employeeDepartmentQuery(qint16 company, qint32 employee);
// The conditions appended to calendar and work-time statements when the company keeps
// them per department.
QString calendarDepartmentCondition(qint32 department);
QString workTimeDepartmentCondition(qint32 department);

// The day after the end of the employee's last entry that is not cancelled.
QString nextPeriodStartQuery(const db::Dialect& d, qint16 company, qint32 employee);
// The start of the pay month of the given month number (1-12).
QString payMonthStartQuery(qint16 company, int month);
// Whether the company calendar of a year exists.
QString calendarCountQuery(qint16 company, const QString& calendarCondition, int year);
// Monthly entries of the employee that start or end inside the period.
QString monthlyEntryOverlapQuery(const db::Dialect& d, qint32 employee, QDate start, QDate end);
// The newest work-time setting of the company (and department).
QString workTimeSettingQuery(qint16 company, const QString& workTimeCondition);
// The holidays of a period that Populate marks: the end written "YYYYMMDD", the start
// "yyyymmdd", then the calendar department condition as it stands.
QString holidayQuery(const db::Dialect& d, qint16 company, QDate start, QDate end,
                     const QString& calendarCondition);
// The same statement with both bounds formatted "mm/dd/yyyy" (the absent-day list's query).
QString holidayListQuery(const db::Dialect& d, qint16 company, QDate start, QDate end,
                         const QString& calendarCondition);

// The employee's approved leave lines that touch the period, each clipped to it by the
// statement itself (columns lrdFromDate, lrdToDate, Status, lrdNoofDays). Only register
// lines of a register header that is not cancelled count, and only with a sanction line
// of status 's' under a sanction header that is not cancelled. The bounds are written
// "yyyy/mm/dd". SQL Server's collation compares the status without regard to case;
// SQLite is told to do the same, so that both hand the same rows to the program's own
// exact test.
QString approvedLeaveQuery(const db::Dialect& d, qint32 employee, QDate start, QDate end);

// A weekday's scheduled pairs under the entry's own work-time setting.
QString dayScheduleQuery(qint16 dayId, qint16 company, qint32 settingId,
                         const QString& workTimeCondition);
// A weekday's scheduled pairs under the newest work-time setting ("top 1 ... order by
// a.cwtsid desc"): the Schedule Hours come from here, not from the entry's setting.
QString newestDayScheduleQuery(const db::Dialect& d, qint16 dayId, qint16 company,
                               const QString& workTimeCondition);
// The first scheduled check-in of a weekday under the entry's work-time setting.
QString firstCheckInQuery(qint16 dayId, qint16 company, qint32 settingId,
                          const QString& workTimeCondition);

// The attendance-number prefix of the screen and company.
QString prefixQuery(qint32 interfaceId, qint16 company);

}  // namespace qz2::entry::sql

namespace qz2::entry {

class StatementCache;

// Whether a monthly (payroll) entry of the employee that is not cancelled starts or ends
// inside the period: such an entry cannot be changed. Throws db::DbError.
bool isMonthlyEntryOverlapping(const QSqlDatabase& db, qint32 employee, QDate start, QDate end);

// The rows of one of the form's read-only statements, through the form's cache: the
// database is asked only the first time the text is seen while the form is open (or
// since the employee last changed). Throws db::DbError like the statement would.
db::Recordset openCached(StatementCache& cache, const QSqlDatabase& db, const QString& sql,
                         const QVector<QVariant>& values = {});

namespace testing {
// Benchmarks and tests only. While on, every read through openCached empties the form's
// cache first, so that each statement is asked as often as
// the procedures ask for it: the uncached algorithm, to count its statements and to check
// that the cached results are the same.
void setStatementCacheBypassed(bool on);
bool statementCacheBypassed();
}  // namespace testing

}  // namespace qz2::entry
