#include "rules/RuleGrids.h"

namespace qz2::rules {

std::optional<QDate> cellDate(const QString& text) {
    const auto value = parseTimeValue(text);
    if (!value) return std::nullopt;
    const QDate d = value->date();
    if (!d.isValid()) return std::nullopt;
    return d;
}

bool sameDay(const QString& cellText, QDate date) {
    const auto d = cellDate(cellText);
    return d && date.isValid() && *d == date;
}

std::optional<TimeValue> cellTime(const QString& text) {
    const auto value = parseTimeValue(text);
    if (!value) return std::nullopt;
    // Seconds and any date part are dropped the way the "hh:mm" round trip drops them.
    return parseTime(value->format(u"hh:mm"));
}

QList<QDate> daysOf(QDate start, QDate end) {
    QList<QDate> days;
    if (!start.isValid() || !end.isValid()) return days;
    for (QDate d = start; d <= end; d = d.addDays(1)) days << d;
    return days;
}

}  // namespace qz2::rules
