#include "rules/DayLook.h"

#include <optional>

#include "rules/RuleGrids.h"
#include "shared/TimeValue.h"

namespace qz2::rules {

DayShade dayShade(const QString& type, const QString& scheduleHours) {
    if (type.trimmed() == QLatin1String("H")) return DayShade::Holiday;
    const std::optional<TimeValue> schedule = cellTime(scheduleHours);
    if (schedule && schedule->timeOfDay() == QTime(0, 0)) return DayShade::DayOff;
    return DayShade::Working;
}

QColor dayShadeColour(DayShade shade) {
    switch (shade) {
        case DayShade::Holiday:
            return QColor(255, 226, 190);  // warm: the calendar's holidays
        case DayShade::DayOff:
            return QColor(218, 230, 245);  // cool: the weekly days off
        case DayShade::Working:
            break;
    }
    return {};
}

}  // namespace qz2::rules
