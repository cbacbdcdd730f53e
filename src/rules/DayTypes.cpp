#include "rules/DayTypes.h"

#include <QSet>

namespace qz2::rules {

namespace {

void setTypeOfDay(FlexGridModel& dayGrid, QDate date, const QString& code) {
    for (int r = 1; r < dayGrid.Rows(); ++r) {
        if (sameDay(dayGrid.TextMatrix(r, daycol::Date), date))
            dayGrid.setTextMatrix(r, daycol::Type, code);
    }
}

int rowOfDay(const FlexGridModel& dayGrid, QDate date) {
    for (int r = 1; r < dayGrid.Rows(); ++r) {
        if (sameDay(dayGrid.TextMatrix(r, daycol::Date), date)) return r;
    }
    return 0;
}

}  // namespace

std::optional<LeaveRow> clipLeaveLine(QDate from, QDate to, const QString& status, double noOfDays,
                                      QDate start, QDate end) {
    if (!from.isValid() || !to.isValid() || to < start || from > end) return std::nullopt;
    return LeaveRow{from < start ? start : from, to > end ? end : to, status, noOfDays};
}

void fnMarkHolidays(FlexGridModel& dayGrid, const QList<QDate>& holidayDates) {
    for (const QDate& holiday : holidayDates) setTypeOfDay(dayGrid, holiday, QStringLiteral("H"));
}

void fnMarkApprovedLeaves(FlexGridModel& dayGrid, const QList<LeaveRow>& leaves) {
    for (const LeaveRow& leave : leaves) {
        // The database compares the status without regard to case; only an upper-case "S"
        // marks days.
        if (leave.status != QLatin1String("S")) continue;
        const QString code = leave.noOfDays == 0.5 ? QStringLiteral("HL") : QStringLiteral("L");
        for (const QDate& d : daysOf(leave.clippedFrom, leave.clippedTo))
            setTypeOfDay(dayGrid, d, code);
    }
}

void fnMarkAbsentDays(FlexGridModel& dayGrid, const QList<QDate>& pickedDates,
                      const QList<QDate>& allDatesInList, bool editMode,
                      const std::function<void(QDate)>& onUnmarkInEdit) {
    const QSet<QDate> picked(pickedDates.cbegin(), pickedDates.cend());
    for (const QDate& d : allDatesInList) {
        const int r = rowOfDay(dayGrid, d);
        if (r == 0) continue;
        if (picked.contains(d)) {
            dayGrid.setTextMatrix(r, daycol::Type, QStringLiteral("A"));
        } else if (editMode &&
                   dayGrid.TextMatrix(r, daycol::Type).trimmed() == QLatin1String("A")) {
            dayGrid.setTextMatrix(r, daycol::Type, QStringLiteral("P"));
            if (onUnmarkInEdit) onUnmarkInEdit(d);
        }
    }
}

void fnMarkRemainingPresent(FlexGridModel& dayGrid) {
    for (int r = 1; r < dayGrid.Rows(); ++r) {
        if (dayGrid.TextMatrix(r, daycol::Type).isEmpty())
            dayGrid.setTextMatrix(r, daycol::Type, QStringLiteral("P"));
    }
}

DayTypeWeights dayTypeWeights(const QString& code) {
    const QString c = code.trimmed();
    if (c == QLatin1String("P")) return {1.0, 0.0, 0.0, 0.0};
    if (c == QLatin1String("A")) return {0.0, 0.0, 1.0, 0.0};
    if (c == QLatin1String("L")) return {0.0, 1.0, 0.0, 0.0};
    if (c == QLatin1String("HL")) return {0.5, 0.5, 0.0, 0.0};
    if (c == QLatin1String("AL")) return {0.0, 0.5, 0.5, 0.0};
    if (c == QLatin1String("HA")) return {0.5, 0.0, 0.5, 0.0};
    if (c == QLatin1String("H")) return {0.0, 0.0, 0.0, 1.0};
    return {};
}

DayCounts fnCountDayTypes(const FlexGridModel& dayGrid) {
    double present = 0.0, leave = 0.0, absent = 0.0, holiday = 0.0;
    for (int r = 1; r < dayGrid.Rows(); ++r) {
        const DayTypeWeights w = dayTypeWeights(dayGrid.TextMatrix(r, daycol::Type));
        present += w.present;
        leave += w.leave;
        absent += w.absent;
        holiday += w.holiday;
    }
    // Holidays are paid days: the present total shown includes them.
    return DayCounts{present + holiday, leave, absent, holiday};
}

QString countText(double count) {
    return QString::number(count, 'g', 15);
}

QStringList fnPopoulateList(QDate start, QDate end, const QList<QDate>& holidayDates) {
    const QSet<QDate> holidays(holidayDates.cbegin(), holidayDates.cend());
    QStringList items;
    for (const QDate& d : daysOf(start, end)) {
        if (!holidays.contains(d)) items << TimeValue::fromDate(d).format(u"yyyy/mm/dd");
    }
    return items;
}

}  // namespace qz2::rules
