#include "picker/PickerStatus.h"

#include <QHash>

#include "db/Database.h"
#include "db/Dialect.h"
#include "picker/PickerSql.h"

namespace qz2::picker {

bool attendanceBeyondPayroll(std::optional<TimeValue> lastPayroll,
                             std::optional<TimeValue> latestAttendance) {
    return lastPayroll && latestAttendance && *latestAttendance > *lastPayroll;
}

QVector<bool> blockedByAggregate(const QSqlDatabase& db, const QVector<qint32>& employees) {
    const QVector<std::optional<QDate>> behind = payrollBehindByAggregate(db, employees);
    QVector<bool> blocked(employees.size(), false);
    for (qsizetype i = 0; i < behind.size(); ++i) blocked[i] = behind[i].has_value();
    return blocked;
}

QVector<std::optional<QDate>> payrollBehindByAggregate(const QSqlDatabase& db,
                                                       const QVector<qint32>& employees) {
    QVector<std::optional<QDate>> blocked(employees.size());
    const std::optional<TimeValue> latest =
        timeValueFromDb(db::scalar(db, sql::latestAttendanceQuery()));
    if (!latest) return blocked;  // no attendance anywhere: nobody is ahead of payroll
    QHash<qint32, TimeValue> lastPayroll;
    for (db::Recordset rs = db::openRecordset(db, sql::lastPayrollByEmployeeQuery()); !rs.eof();
         rs.moveNext())
        // Compared by its day, as the per-employee statement writes the day into its text.
        if (const auto day = timeValueFromDb(rs.field(1)))
            lastPayroll.insert(rs.field(0).toInt(), TimeValue::fromDate(day->date()));
    for (qsizetype i = 0; i < employees.size(); ++i) {
        const auto found = lastPayroll.constFind(employees[i]);
        if (found != lastPayroll.constEnd() && attendanceBeyondPayroll(*found, latest))
            blocked[i] = found->date();
    }
    return blocked;
}

std::optional<QDate> payrollBehindAttendance(const QSqlDatabase& db, qint32 employee) {
    const std::optional<TimeValue> payroll =
        timeValueFromDb(db::scalar(db, sql::lastPayrollQuery(employee)));
    if (!payroll) return std::nullopt;
    const bool after =
        !db::openRecordset(db, sql::attendanceAfterQuery(db::Dialect::of(db), payroll->date()))
             .eof();
    return after ? std::optional<QDate>(payroll->date()) : std::nullopt;
}

QVector<bool> blockedPerEmployee(const QSqlDatabase& db, const QVector<qint32>& employees) {
    QVector<bool> blocked(employees.size(), false);
    for (qsizetype i = 0; i < employees.size(); ++i)
        blocked[i] = payrollBehindAttendance(db, employees[i]).has_value();
    return blocked;
}

}  // namespace qz2::picker
