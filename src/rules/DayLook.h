#pragma once
// How a day of the period looks in the day grid, beside what its cells say: its weekday,
// and whether it is a holiday or a day the work-time settings give no hours (the weekly
// day off), so that neither is mistaken for a working day at a glance.

#include <QColor>
#include <QString>

namespace qz2::rules {

enum class DayShade { Working, DayOff, Holiday };

// A "H" day is a holiday; any other day whose scheduled hours read 00:00 is a day off; a
// day whose schedule is not known yet (blank) is shown as a working day.
DayShade dayShade(const QString& type, const QString& scheduleHours);

// The background of a day's row: none for a working day.
QColor dayShadeColour(DayShade shade);

}  // namespace qz2::rules
