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
    QVector<bool> blocked(employees.size(), false);
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
        blocked[i] = found != lastPayroll.constEnd() && attendanceBeyondPayroll(*found, latest);
    }
    return blocked;
}

QVector<bool> blockedPerEmployee(const QSqlDatabase& db, const QVector<qint32>& employees) {
    const db::Dialect dialect = db::Dialect::of(db);
    QVector<bool> blocked(employees.size(), false);
    for (qsizetype i = 0; i < employees.size(); ++i) {
        const std::optional<TimeValue> payroll =
            timeValueFromDb(db::scalar(db, sql::lastPayrollQuery(employees[i])));
        if (!payroll) continue;
        blocked[i] =
            !db::openRecordset(db, sql::attendanceAfterQuery(dialect, payroll->date())).eof();
    }
    return blocked;
}

}  // namespace qz2::picker
