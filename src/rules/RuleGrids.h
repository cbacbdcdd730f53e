#pragma once
// Column numbers of the entry form's three grids and the cell readers that every attendance
// rule shares. The rules work on the grid models in the grids' own coordinates (row 0 is the
// heading row), so that the form only moves values between widgets and these functions.

#include <QDate>
#include <QString>
#include <optional>

#include "shared/FlexGrid.h"
#include "shared/TimeValue.h"

namespace qz2::rules {

// Day grid mfgAttendance.
namespace daycol {
constexpr int Marker = 0;
constexpr int Date = 1;
constexpr int Type = 2;
constexpr int WorkedHours = 3;
constexpr int ScheduleHours = 4;
constexpr int Hours = 5;
constexpr int AllowanceType = 6;
constexpr int Count = 7;
}  // namespace daycol

// Pairs grid mfgCheckinCheckOut and mirror grid mfgMirrorGrid.
namespace paircol {
constexpr int Date = 0;
constexpr int SlNo = 1;
constexpr int CheckIn = 2;
constexpr int CheckOut = 3;
constexpr int Count = 4;
}  // namespace paircol

// A date cell read as a date: the grids' "dd/mm/yyyy", or any other date text the module
// reads. nullopt for an empty or unreadable cell.
std::optional<QDate> cellDate(const QString& text);

// Whether a date cell holds the given day.
bool sameDay(const QString& cellText, QDate date);

// A time cell as the hours rules read it: formatted "hh:mm" and read back, so that only
// hours and minutes count. nullopt for an empty cell or one that holds no time.
std::optional<TimeValue> cellTime(const QString& text);

// Every day from start to end inclusive, in order; empty when either date is invalid or
// start is later than end.
QList<QDate> daysOf(QDate start, QDate end);

}  // namespace qz2::rules
