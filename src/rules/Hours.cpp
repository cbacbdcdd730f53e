#include "rules/Hours.h"

#include <QRegularExpression>

#include <optional>

namespace qz2::rules {

namespace {

// The check-in of a pair as the worked hours count it: midnight when the cell is empty or
// "00:00" (those never enter the grace comparison), otherwise the effective check-in.
TimeValue checkInForHours(const QString& text, QDate day, const GraceStartProvider& graceStart,
                          int graceMinutes, std::optional<TimeValue>& scheduledCache) {
    if (text == QLatin1String("00:00")) return TimeValue();
    const auto recorded = cellTime(text);
    if (!recorded) return TimeValue();
    if (!scheduledCache) scheduledCache = graceStart ? graceStart(day) : TimeValue();
    return effectiveCheckIn(*recorded, *scheduledCache, graceMinutes);
}

TimeValue checkOutForHours(const QString& text) {
    if (text == QLatin1String("00:00")) return TimeValue();
    return cellTime(text).value_or(TimeValue());
}

}  // namespace

TimeValue effectiveCheckIn(TimeValue recorded, TimeValue scheduledFirstCheckIn, int graceMinutes) {
    const TimeValue scheduled =
        parseTime(scheduledFirstCheckIn.format(u"hh:mm")).value_or(TimeValue());
    const TimeValue graceEnd = scheduled.addMinutes(graceMinutes);
    if (recorded >= scheduled && recorded <= graceEnd) return scheduled;
    return recorded;
}

void fnCalculateTotalHours(FlexGridModel& dayGrid, const FlexGridModel& mirror,
                           const GraceStartProvider& graceStart, int graceMinutes) {
    for (int i = 1; i < dayGrid.Rows(); ++i) {
        const auto day = cellDate(dayGrid.TextMatrix(i, daycol::Date));
        if (!day) continue;
        std::optional<TimeValue> scheduled;  // asked for once per day, and only when needed
        TimeValue total;
        for (int j = 1; j < mirror.Rows(); ++j) {
            if (!sameDay(mirror.TextMatrix(j, paircol::Date), *day)) continue;
            const TimeValue in = checkInForHours(mirror.TextMatrix(j, paircol::CheckIn), *day,
                                                 graceStart, graceMinutes, scheduled);
            const TimeValue out = checkOutForHours(mirror.TextMatrix(j, paircol::CheckOut));
            total = total + (out - in);
        }
        dayGrid.setTextMatrix(i, daycol::WorkedHours, total.format(u"hh:mm"));
    }
}

DayDifference fnCalculateTotalHoursfortheDay(const FlexGridModel& pairs, QDate dayDate,
                                             TimeValue scheduled,
                                             const GraceStartProvider& graceStart,
                                             int graceMinutes) {
    std::optional<TimeValue> scheduledStart;
    TimeValue total;
    for (int r = 1; r < pairs.Rows(); ++r) {
        const QString inText = pairs.TextMatrix(r, paircol::CheckIn);
        TimeValue in;
        if (!inText.trimmed().isEmpty()) {
            if (const auto recorded = cellTime(inText)) {
                if (!scheduledStart)
                    scheduledStart = graceStart ? graceStart(dayDate) : TimeValue();
                in = effectiveCheckIn(*recorded, *scheduledStart, graceMinutes);
            }
        }
        const TimeValue out =
            cellTime(pairs.TextMatrix(r, paircol::CheckOut)).value_or(TimeValue());
        total = total + (out - in);
    }

    // Both sides are compared as their "HH:mm" texts, as the check box always did.
    const QString worked = total.format(u"HH:mm");
    const QString planned = scheduled.format(u"HH:mm");
    DayDifference result;
    if (worked > planned) {
        result.caption = kCaptionAllowances;
    } else if (worked < planned) {
        result.caption = kCaptionDeductions;
    } else {
        result.caption = kCaptionNeutral;
        result.clearTick = true;
    }
    result.amount = (scheduled - total).format(u"hh.mm");
    return result;
}

void fnFindtheAdditionalWorkingHours(FlexGridModel& dayGrid) {
    for (int r = 1; r < dayGrid.Rows(); ++r) {
        const QString scheduleText = dayGrid.TextMatrix(r, daycol::ScheduleHours);
        const QString workedText = dayGrid.TextMatrix(r, daycol::WorkedHours);
        if (scheduleText.isEmpty() || workedText.isEmpty()) continue;
        // A claimed day's Hours are the amount the clerk claimed (possibly typed over the
        // difference, or stored with the entry): recomputing them here would silently change
        // what is paid. The day's own time edits still update its claim through the amount box.
        const QString claim = dayGrid.TextMatrix(r, daycol::AllowanceType).trimmed();
        if (claim == QLatin1String("A") || claim == QLatin1String("D")) continue;
        const auto schedule = parseTimeValue(scheduleText);
        const auto worked = parseTimeValue(workedText);
        if (!schedule || !worked) continue;
        dayGrid.setTextMatrix(r, daycol::Hours, (*schedule - *worked).format(u"HH:mm"));
    }
}

std::optional<QString> normaliseClaimAmount(const QString& text) {
    static const QRegularExpression amount(QStringLiteral("^(\\d{1,2})[.:](\\d{2})$"));
    const QRegularExpressionMatch m = amount.match(text.trimmed());
    if (!m.hasMatch()) return std::nullopt;
    const int hours = m.captured(1).toInt();
    const int minutes = m.captured(2).toInt();
    if (hours > 23 || minutes > 59) return std::nullopt;
    return QStringLiteral("%1.%2").arg(hours, 2, 10, QLatin1Char('0')).arg(minutes, 2, 10, QLatin1Char('0'));
}

bool isClaimAmountBeginning(const QString& text) {
    static const QRegularExpression beginning(QStringLiteral("^(\\d{0,2})([.:](\\d{0,2}))?$"));
    const QRegularExpressionMatch m = beginning.match(text);
    if (!m.hasMatch()) return false;
    if (m.captured(1).size() == 2 && m.captured(1).toInt() > 23) return false;
    const QString minutes = m.captured(3);
    if (!minutes.isEmpty() && minutes.at(0) > QLatin1Char('5')) return false;
    // Minutes need hours before them.
    return !(m.captured(1).isEmpty() && !m.captured(2).isEmpty());
}

}  // namespace qz2::rules
