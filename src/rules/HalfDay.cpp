#include "rules/HalfDay.h"

namespace qz2::rules {

std::optional<QString> halfDayMenuCaption(const QString& type) {
    const QString t = type.trimmed();
    if (t == QLatin1String("P") || t == QLatin1String("HL")) return kMenuMarkHalfDay;
    if (t == QLatin1String("HA") || t == QLatin1String("AL")) return kMenuUnmarkHalfDay;
    return std::nullopt;
}

std::optional<QString> halfDayToggle(const QString& caption, const QString& type) {
    const QString t = type.trimmed();
    if (caption == kMenuMarkHalfDay) {
        if (t == QLatin1String("P")) return QStringLiteral("HA");
        if (t == QLatin1String("HL")) return QStringLiteral("AL");
    } else if (caption == kMenuUnmarkHalfDay) {
        if (t == QLatin1String("HA")) return QStringLiteral("P");
        if (t == QLatin1String("AL")) return QStringLiteral("HL");
    }
    return std::nullopt;
}

std::optional<QString> halfDayQuestion(const QString& caption, const QString& dateText) {
    // The questions say "half day leave" although the menu says "Half Day Absent".
    if (caption == kMenuMarkHalfDay)
        return QStringLiteral("Do you want to mark half day leave on ") + dateText +
               QStringLiteral("?");
    if (caption == kMenuUnmarkHalfDay)
        return QStringLiteral("Do you want to unmark the half day leave for ") + dateText +
               QStringLiteral("?");
    return std::nullopt;
}

DayCounts fnMarkHalfDay(FlexGridModel& dayGrid, int row, const QString& caption) {
    if (row > 0 && row < dayGrid.Rows()) {
        if (const auto next = halfDayToggle(caption, dayGrid.TextMatrix(row, daycol::Type)))
            dayGrid.setTextMatrix(row, daycol::Type, *next);
    }
    return fnCountDayTypes(dayGrid);
}

QString allowanceCaption(const QString& code) {
    const QString c = code.trimmed();
    if (c == QLatin1String("A")) return kCaptionAllowances;
    if (c == QLatin1String("D")) return kCaptionDeductions;
    return kCaptionNeutral;
}

std::optional<QString> claimKind(bool ticked, const QString& caption) {
    if (!ticked) return QString();
    if (caption == kCaptionAllowances) return QStringLiteral("A");
    if (caption == kCaptionDeductions) return QStringLiteral("D");
    return std::nullopt;
}

void fnSetDayAllowanceDeduction(FlexGridModel& dayGrid, const QString& amountText,
                                const QString& kind, QDate date, bool ticked) {
    for (int r = 1; r < dayGrid.Rows(); ++r) {
        if (!sameDay(dayGrid.TextMatrix(r, daycol::Date), date)) continue;
        dayGrid.setTextMatrix(r, daycol::Hours, amountText);
        dayGrid.setTextMatrix(r, daycol::AllowanceType, ticked ? kind : QString());
    }
}

void fnShowDayPairs(FlexGridModel& pairs, const FlexGridModel& mirror, const FlexGridModel& dayGrid,
                    int dayRow) {
    pairs.setRows(1);
    if (dayRow <= 0 || dayRow >= dayGrid.Rows()) return;
    const QString dayText = dayGrid.TextMatrix(dayRow, daycol::Date);
    if (!dayText.isEmpty()) {
        if (const auto day = cellDate(dayText)) {
            for (int r = 1; r < mirror.Rows(); ++r) {
                if (!sameDay(mirror.TextMatrix(r, paircol::Date), *day)) continue;
                pairs.AddItem({mirror.TextMatrix(r, paircol::Date),
                               mirror.TextMatrix(r, paircol::SlNo),
                               mirror.TextMatrix(r, paircol::CheckIn),
                               mirror.TextMatrix(r, paircol::CheckOut)});
            }
        }
    }
    const QString type = dayGrid.TextMatrix(dayRow, daycol::Type).trimmed();
    if ((type == QLatin1String("P") || type == QLatin1String("H")) && pairs.Rows() < 2)
        pairs.AddItem({dayText, QStringLiteral("1"), QString(), QString()});
}

}  // namespace qz2::rules
