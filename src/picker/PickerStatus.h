#pragma once
// Which employees the picker greys: those with attendance recorded after their last
// payroll. The rule as the suite states it asks, per employee, for the last payroll date
// and then for any attendance detail after it, of any employee. Asking instead once for
// the latest detail date of all and once for every employee's last payroll date gives the
// same answer (some detail lies after a date exactly when the latest one does) with two
// statements instead of up to two per employee.

#include <QSqlDatabase>
#include <QVector>
#include <optional>

#include "shared/TimeValue.h"

namespace qz2::picker {

// The rule: blocked when the employee has a payroll date and the latest attendance
// detail lies after it. No payroll, or no attendance at all, never blocks.
bool attendanceBeyondPayroll(std::optional<TimeValue> lastPayroll,
                             std::optional<TimeValue> latestAttendance);

// Blocked flags in the order of `employees`, by the two aggregate statements.
QVector<bool> blockedByAggregate(const QSqlDatabase& db, const QVector<qint32>& employees);
// The same by the same two statements, as each blocked employee's last payroll date
// (nullopt for those not blocked).
QVector<std::optional<QDate>> payrollBehindByAggregate(const QSqlDatabase& db,
                                                       const QVector<qint32>& employees);
// One employee by the per-employee statements: their last payroll date when attendance is
// recorded after it (the picker greys them), nullopt when it is not. Database errors
// propagate.
std::optional<QDate> payrollBehindAttendance(const QSqlDatabase& db, qint32 employee);

// The same flags by the per-employee statements (kept as the reference the aggregate is
// tested against). Database errors propagate from both.
QVector<bool> blockedPerEmployee(const QSqlDatabase& db, const QVector<qint32>& employees);

}  // namespace qz2::picker
