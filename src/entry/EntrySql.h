#pragma once
// Every statement of the entry form's start-up, employee and period choice, work-time
// schedule and numbering. Each builder writes the suite's T-SQL text and asks the dialect
// only for what SQLite writes differently, so that on SQL Server the text is the suite's
// own to the letter. Table names come from LinkedTableNames except where a statement names
// a table literally ("vwPaymonthvsdate").

#include <QDate>
#include <QString>

#include "db/Dialect.h"

namespace qz2::entry::sql {

// The employee box's condition, built without a blank before "And" as the suite does.
QString employeeListCondition(const db::Dialect& d, qint16 company);

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
// The holidays of a period, bounds formatted "mm/dd/yyyy" (the absent-day list's query).
QString holidayListQuery(const db::Dialect& d, qint16 company, QDate start, QDate end,
                         const QString& calendarCondition);

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

// The working-hours procedure's call for one weekday, its positional values written into
// the text as literals (numbers bare, strings quoted), so that it runs as a plain query.
QString workingHoursStatement(const db::Dialect& d, qint16 company, int dayId);

// The attendance-number prefix of the screen and company.
QString prefixQuery(qint32 interfaceId, qint16 company);

}  // namespace qz2::entry::sql
