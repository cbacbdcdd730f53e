// The work-time schedule of the entry form: a date's weekday line under the entry's own
// setting, the Schedule Hours from the newest setting, the first scheduled check-in for
// the grace rule, and the seven weekdays' working hours. Every statement goes through the
// form's cache: a period asks each weekday many times and the answer cannot change while
// the same employee is chosen.

#include <QHash>
#include <QObject>
#include <exception>

#include "entry/EntrySql.h"
#include "entry/frmEmployeeDailyAttendance.h"
#include "rules/Population.h"
#include "shared/BasAttendence.h"
#include "shared/FlexGrid.h"

namespace qz2 {

namespace {

// The working-hours procedure's rows, kept for the life of the form. The procedure's text is
// the same for every weekday (only its values differ), so the statement cache, which is
// keyed by text, cannot hold them; they are kept here under text and values instead. Its
// answers depend on the company only, which does not change while the form is open.
class ProcedureRows : public QObject {
public:
    explicit ProcedureRows(QObject* form) : QObject(form) {
        setObjectName(QStringLiteral("procedureRows"));
    }
    static ProcedureRows& of(QObject* form) {
        for (QObject* child : form->children())
            if (auto* rows = dynamic_cast<ProcedureRows*>(child)) return *rows;
        return *new ProcedureRows(form);
    }
    db::Recordset open(const QSqlDatabase& db, const db::Dialect::Call& call) {
        QString key = call.sql;
        for (const QVariant& v : call.values)
            key += QLatin1Char('\x1f') + QString::fromLatin1(v.typeName()) + QLatin1Char(':') +
                   v.toString();
        if (entry::testing::statementCacheBypassed()) m_rows.clear();
        auto found = m_rows.constFind(key);
        if (found == m_rows.constEnd())
            found = m_rows.insert(key, db::openRecordset(db, call.sql, call.values));
        db::Recordset rows = found.value();
        rows.moveFirst();
        return rows;
    }

private:
    QHash<QString, db::Recordset> m_rows;
};

}  // namespace

std::optional<entry::ScheduleLine> frmEmployeeDailyAttendance::fnDaySchedule(QDate date) {
    try {
        const db::Recordset rs = entry::openCached(
            m_cache, gadocon,
            entry::sql::dayScheduleQuery(fnGetDayID(date), gintCompanyID, lngWorkTimeSettingID,
                                         strWorkTimeCondition));
        if (rs.eof()) return std::nullopt;
        return entry::scheduleLineFrom(rs);
    } catch (const std::exception&) {
        return std::nullopt;
    }
}

void frmEmployeeDailyAttendance::fnCalculateScheduleHours(QDate date, qint16 row) {
    try {
        const db::Recordset rs = entry::openCached(
            m_cache, gadocon,
            entry::sql::newestDayScheduleQuery(dialect(), fnGetDayID(date), gintCompanyID,
                                               strWorkTimeCondition));
        TimeValue total;
        if (!rs.eof())
            total = rules::scheduledHours(entry::toDaySchedule(entry::scheduleLineFrom(rs)));
        mfgAttendance->setTextMatrix(row, colSchedule, total.format(u"hh:mm"));
    } catch (const std::exception&) {
        // Trapped: the row keeps what it showed.
    }
}

TimeValue frmEmployeeDailyAttendance::fnCheckGraceTime(QDate date) {
    try {
        const db::Recordset rs = entry::openCached(
            m_cache, gadocon,
            entry::sql::firstCheckInQuery(fnGetDayID(date), gintCompanyID, lngWorkTimeSettingID,
                                          strWorkTimeCondition));
        if (rs.eof()) return TimeValue();
        // A NULL first check-in counts as midnight, as does a weekday without a line.
        if (const auto start = timeValueFromDb(rs.field(QStringLiteral("cwtsCheckIn1"))))
            return TimeValue::fromTime(start->timeOfDay());
    } catch (const std::exception&) {
    }
    return TimeValue();
}

void frmEmployeeDailyAttendance::fnLoadWeekdayWorkingHours() {
    ProcedureRows& procedure = ProcedureRows::of(this);
    for (int day = 1; day <= 7; ++day) {
        try {
            // The procedure is called with company, an empty string and the day number,
            // bound by position. On SQL Server the text is ODBC's call escape
            // "{call spreturnWorkingHrs(?,?,?)}": that is how a stored-procedure command is
            // sent through ODBC, the driver turning it into the procedure's execution with
            // the values as its parameters. SQLite reads the database's view of that name.
            const db::Recordset rs =
                procedure.open(gadocon, dialect().workingHoursCall(gintCompanyID, day));
            // A weekday the settings leave out has no row: it has no working hours.
            weekdayWorkingHours[day] = TimeValue();
            if (!rs.eof()) {
                if (const auto hours = timeValueFromDb(rs.field(0)))
                    weekdayWorkingHours[day] = TimeValue::fromTime(hours->timeOfDay());
            }
        } catch (const std::exception&) {
            return;  // trapped: the weekdays not yet read keep their values
        }
    }
}

void frmEmployeeDailyAttendance::fnAddScheduleHours() {
    for (int row = 1; row < mfgAttendance->Rows(); ++row) {
        const std::optional<TimeValue> day =
            parseTimeValue(mfgAttendance->TextMatrix(row, colDate));
        if (!day) continue;
        const qint16 id = fnGetDayID(day->date());
        if (id < 1 || id > 7) continue;
        mfgAttendance->setTextMatrix(row, colSchedule, weekdayWorkingHours[id].toDefaultText());
    }
}

}  // namespace qz2
