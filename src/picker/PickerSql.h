#pragma once
// Statements of the employee picker. The payroll and attendance-detail tables are named
// literally here, as the suite's picker always named them.

#include <QDate>
#include <QString>

#include "db/Dialect.h"

namespace qz2::picker::sql {

// The company's active employees with their department (empty when they have none).
QString employeeStatusQuery(qint16 company);

// One employee's last payroll date.
QString lastPayrollQuery(qint32 employee);
// Attendance details of any employee dated after the day (a quoted, unambiguous literal).
QString attendanceAfterQuery(const db::Dialect& d, QDate day);

// Every employee's last payroll date, in one grouped statement.
QString lastPayrollByEmployeeQuery();
// The latest attendance detail date of all.
QString latestAttendanceQuery();

}  // namespace qz2::picker::sql
