#include "entry/EntryRules.h"

#include <stdexcept>

#include "db/Database.h"

namespace qz2::entry {

qint16 fnDayIDFromName(const QString& shortName) {
    static const char* const kNames[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    const QString name = shortName.trimmed();
    for (qint16 i = 0; i < 7; ++i)
        if (name == QLatin1String(kNames[i])) return static_cast<qint16>(i + 1);
    return 0;
}

qint16 fnGetDayID(QDate date) {
    if (!date.isValid()) return 0;
    return fnDayIDFromName(TimeValue::fromDate(date).format(u"ddd"));
}

namespace {
// Only the time of day of a scheduled time matters, whatever day the driver attaches.
std::optional<TimeValue> timeOfDayFromDb(const QVariant& v) {
    const std::optional<TimeValue> value = timeValueFromDb(v);
    if (!value) return std::nullopt;
    return TimeValue::fromTime(value->timeOfDay());
}
}  // namespace

ScheduleLine scheduleLineFrom(const db::Recordset& rs) {
    ScheduleLine line;
    for (int p = 0; p < 4; ++p) {
        const QString n = QString::number(p + 1);
        line.checkIn[p] = timeOfDayFromDb(rs.field(QStringLiteral("cwtsCheckIn") + n));
        line.checkOut[p] = timeOfDayFromDb(rs.field(QStringLiteral("cwtsCheckOut") + n));
    }
    return line;
}

QVector<ScheduledPair> completePairs(const ScheduleLine& line) {
    QVector<ScheduledPair> pairs;
    for (int p = 0; p < 4; ++p)
        if (line.checkIn[p] && line.checkOut[p])
            pairs.push_back({*line.checkIn[p], *line.checkOut[p]});
    return pairs;
}

rules::DaySchedule toDaySchedule(const ScheduleLine& line) {
    rules::DaySchedule day;
    for (int p = 0; p < 4; ++p) day[p] = {line.checkIn[p], line.checkOut[p]};
    return day;
}

qint64 fnTotalDays(QDate start, QDate end) {
    return dateDiffDays(start, end) + 1;
}

QDate movePayMonthStartIntoYear(QDate payRollDay, QDate processDate) {
    const int years = dateDiffYears(payRollDay, processDate);
    return years > 0 ? payRollDay.addYears(years) : payRollDay;
}

QDate proposedPeriodEnd(QDate start) {
    return TimeValue::fromDate(start).addMonths(1).addDays(-1).date();
}

JoinedStart applyDateOfJoin(QDate start, std::optional<QDate> dateOfJoin) {
    JoinedStart out{false, start};
    if (!dateOfJoin || !dateOfJoin->isValid()) return out;
    const QString joined = TimeValue::fromDate(*dateOfJoin).format(u"yyyy/mm/dd");
    const QString proposed = TimeValue::fromDate(start).format(u"yyyy/mm/dd");
    if (joined >= proposed) {
        if (joined >= QLatin1String(kMissingDateOfJoin))
            out.invalidDateOfJoin = true;
        else
            out.start = *dateOfJoin;
    }
    return out;
}

bool isPeriodTooLong(QDate start, QDate end) {
    return start.isValid() && end.isValid() && fnTotalDays(start, end) > kMaxPeriodDays;
}

QString composeAttendanceNo(const QString& prefix, const QString& highestSuffix) {
    const QString text = highestSuffix.trimmed();
    bool whole = true;
    const qint64 highest = text.isEmpty() ? 0 : text.toLongLong(&whole);
    if (!whole || highest < 0)
        throw std::runtime_error(
            QStringLiteral("The highest attendance number with the prefix \"%1\" ends in \"%2\", "
                           "which is not a whole number. Nothing was saved.")
                .arg(prefix, text)
                .toStdString());
    if (highest >= kMaxAttendanceSuffix)
        throw std::runtime_error(
            QStringLiteral("No attendance number is left after %1%2: the next one would not fit. "
                           "Nothing was saved; ask for a new prefix to be set for this screen.")
                .arg(prefix)
                .arg(highest)
                .toStdString());
    return prefix + QString::number(highest + 1);
}

}  // namespace qz2::entry
