#include "entry/EntryReads.h"

#include "commonmodule/CommonModule.h"
#include "db/Database.h"
#include "db/Dialect.h"
#include "entry/EntrySql.h"
#include "entry/StatementCache.h"
#include "shared/BasAttendence.h"

namespace qz2::entry {

namespace {

// A date column read back from the database: a date/time through ODBC, ISO text on SQLite,
// the clipped bound as the statement wrote it ("yyyy/mm/dd") when the case expression
// chose it.
std::optional<QDate> dateFromDb(const QVariant& v) {
    if (const auto value = timeValueFromDb(v)) return value->date();
    return std::nullopt;
}

}  // namespace

EmployeeSettings readEmployeeSettings(const QSqlDatabase& db, qint16 company, qint32 employee) {
    EmployeeSettings s;
    bool calendarByDepartment = false;
    bool workTimeByDepartment = false;
    {
        const db::Recordset rs = db::openRecordset(db, sql::departmentSwitchesQuery(company));
        if (!rs.eof()) {
            calendarByDepartment = db::isOn(rs.field(QStringLiteral("calendardepwise")));
            workTimeByDepartment = db::isOn(rs.field(QStringLiteral("cwtsdepwise")));
        }
    }
    const db::Recordset rs = db::openRecordset(db, sql::employeeDepartmentQuery(company, employee));
    if (rs.eof()) return s;
    s.hasDepartment = true;
    s.departmentId = rs.field(QStringLiteral("DepartmentID")).toInt();
    s.departmentName = rs.field(QStringLiteral("DepartmentName")).toString();
    if (const auto joined = timeValueFromDb(rs.field(QStringLiteral("eDateofjoin"))))
        s.dateOfJoin = joined->date();
    if (calendarByDepartment)
        s.calendarCondition = sql::calendarDepartmentCondition(s.departmentId);
    if (workTimeByDepartment)
        s.workTimeCondition = sql::workTimeDepartmentCondition(s.departmentId);
    return s;
}

QString calendarMissingMessage(const QString& departmentName, int year) {
    return QStringLiteral("Calender Settings not Found for ") + departmentName.trimmed() +
           QStringLiteral(" for the year - ") + QString::number(year);
}

QString workTimeMissingMessage(const QString& departmentName) {
    return QStringLiteral("Worktime Settings not Found for ") + departmentName;
}

std::optional<QDate> readProposedStart(const QSqlDatabase& db, qint16 company, qint32 employee,
                                       QDate processDate) {
    const std::optional<TimeValue> next = timeValueFromDb(
        db::scalar(db, sql::nextPeriodStartQuery(db::Dialect::of(db), company, employee)));
    if (next) return next->date();
    const db::Recordset rs =
        db::openRecordset(db, sql::payMonthStartQuery(company, processDate.month()));
    if (!rs.eof()) {
        if (const auto payDay = timeValueFromDb(rs.field(QStringLiteral("PayRollDay"))))
            return movePayMonthStartIntoYear(payDay->date(), processDate);
    }
    return std::nullopt;
}

ProposedPeriod proposePeriod(QDate start, std::optional<QDate> dateOfJoin) {
    const JoinedStart joined = applyDateOfJoin(start, dateOfJoin);
    return {joined.invalidDateOfJoin, joined.start, proposedPeriodEnd(start)};
}

bool hasCalendar(const QSqlDatabase& db, qint16 company, const QString& calendarCondition,
                 int year) {
    return db::scalar(db, sql::calendarCountQuery(company, calendarCondition, year)).toLongLong() !=
           0;
}

std::optional<qint32> readNewestWorkTimeSetting(const QSqlDatabase& db, qint16 company,
                                                const QString& workTimeCondition) {
    const QVariant newest = db::scalar(db, sql::workTimeSettingQuery(company, workTimeCondition));
    if (newest.isNull()) return std::nullopt;
    return newest.toInt();
}

std::optional<ScheduleLine> PeriodReads::daySchedule(QDate date) {
    const db::Recordset rs = openCached(
        m_cache, m_db, sql::dayScheduleQuery(fnGetDayID(date), m_company, m_setting, m_workTime));
    if (rs.eof()) return std::nullopt;
    return scheduleLineFrom(rs);
}

TimeValue PeriodReads::scheduleHours(QDate date) {
    const db::Recordset rs =
        openCached(m_cache, m_db,
                   sql::newestDayScheduleQuery(db::Dialect::of(m_db), fnGetDayID(date), m_company,
                                               m_workTime));
    if (rs.eof()) return TimeValue();
    return rules::scheduledHours(toDaySchedule(scheduleLineFrom(rs)));
}

TimeValue PeriodReads::graceStart(QDate date) {
    const db::Recordset rs = openCached(
        m_cache, m_db, sql::firstCheckInQuery(fnGetDayID(date), m_company, m_setting, m_workTime));
    if (rs.eof()) return TimeValue();
    // A NULL first check-in counts as midnight, as does a weekday without a line.
    if (const auto start = timeValueFromDb(rs.field(QStringLiteral("cwtsCheckIn1"))))
        return TimeValue::fromTime(start->timeOfDay());
    return TimeValue();
}

QList<QDate> PeriodReads::holidays(QDate start, QDate end) {
    db::Recordset rs = openCached(
        m_cache, m_db, sql::holidayQuery(db::Dialect::of(m_db), m_company, start, end, m_calendar));
    QList<QDate> days;
    for (; !rs.eof(); rs.moveNext())
        if (const auto day = dateFromDb(rs.field(0))) days << *day;
    return days;
}

QList<rules::LeaveRow> PeriodReads::approvedLeaves(qint32 employee, QDate start, QDate end) {
    db::Recordset rs = openCached(
        m_cache, m_db, sql::approvedLeaveQuery(db::Dialect::of(m_db), employee, start, end));
    QList<rules::LeaveRow> leaves;
    for (; !rs.eof(); rs.moveNext()) {
        const auto from = dateFromDb(rs.field(QStringLiteral("lrdFromDate")));
        const auto to = dateFromDb(rs.field(QStringLiteral("lrdToDate")));
        if (!from || !to) continue;
        // The status as stored: the rules mark only an exact upper-case "S".
        leaves << rules::LeaveRow{*from, *to, rs.field(QStringLiteral("Status")).toString(),
                                  rs.field(QStringLiteral("lrdNoofDays")).toDouble()};
    }
    return leaves;
}

PopulateSettings readPopulateSettings(const QSqlDatabase& db) {
    auto helper = commonmodule::createCommonDB(db);
    helper->strTableName = QStringLiteral("pSettings");
    PopulateSettings s;
    s.graceMinutes =
        static_cast<qint16>(helper->fnReturnField(QStringLiteral("gracetime")).toInt());
    s.considerLeaveHolidays =
        db::isOn(helper->fnReturnField(QStringLiteral("ConsiderLeaveHolidays")));
    return s;
}

rules::PopulationInput readPopulationInput(PeriodReads& reads, qint32 employee, QDate start,
                                           QDate end, std::optional<QDate> dateOfJoin,
                                           const PopulateSettings& settings) {
    rules::PopulationInput in;
    in.start = start;
    in.end = end;
    in.dateOfJoin = dateOfJoin.value_or(QDate());
    const QDate from = rules::effectiveStart(start, in.dateOfJoin);
    // The later mark wins on a day that is both; the reads follow the marks' order, so that
    // a failed first read asks nothing more.
    if (settings.considerLeaveHolidays) {
        in.leaves = reads.approvedLeaves(employee, from, end);
        in.holidays = reads.holidays(from, end);
    } else {
        in.holidays = reads.holidays(from, end);
        in.leaves = reads.approvedLeaves(employee, from, end);
    }
    in.considerLeaveHolidays = settings.considerLeaveHolidays;
    in.schedule = [&reads](QDate day) -> std::optional<rules::DaySchedule> {
        const std::optional<ScheduleLine> line = reads.daySchedule(day);
        if (!line) return std::nullopt;
        return toDaySchedule(*line);
    };
    in.scheduleHours = [&reads](QDate day) { return reads.scheduleHours(day); };
    in.graceStart = [&reads](QDate day) { return reads.graceStart(day); };
    in.graceMinutes = settings.graceMinutes;
    return in;
}

}  // namespace qz2::entry
