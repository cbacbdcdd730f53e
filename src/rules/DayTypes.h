#pragma once
// Day types of the period: holidays, approved leaves, the clerk's absent picks, present for
// the rest; the counting weights of every code and the list of days offered for absence.
// The database reads (holiday calendar, leave register) stay with the form; these functions
// take their results as plain values.

#include <QDate>
#include <QList>
#include <QString>
#include <QStringList>
#include <functional>
#include <optional>

#include "rules/RuleGrids.h"

namespace qz2::rules {

// One line of the approved-leave query, already clipped to the period by the query.
struct LeaveRow {
    QDate clippedFrom;
    QDate clippedTo;
    QString status;  // the cancellation line's status as read
    double noOfDays = 0.0;
};

// What the leave query does to one register line, for a data source that cannot clip in
// SQL: nullopt when the line does not touch the period, otherwise the line with its dates
// moved inside [start, end].
std::optional<LeaveRow> clipLeaveLine(QDate from, QDate to, const QString& status, double noOfDays,
                                      QDate start, QDate end);

// Type "H" on every day row whose date is one of the holidays.
void fnMarkHolidays(FlexGridModel& dayGrid, const QList<QDate>& holidayDates);

// "L" (or "HL" for a line of exactly half a day) on every day row inside a leave line whose
// status is exactly "S"; a later line overwrites an earlier one.
void fnMarkApprovedLeaves(FlexGridModel& dayGrid, const QList<LeaveRow>& leaves);

// Walks the absent-day list in its order: a picked item's day becomes "A". An item that is
// not picked leaves its day alone, except when a stored entry is being edited: then a day
// that is "A" goes back to "P" and onUnmarkInEdit(date) is called so that the caller drops
// the day's pairs. Items whose date has no day row are skipped.
void fnMarkAbsentDays(FlexGridModel& dayGrid, const QList<QDate>& pickedDates,
                      const QList<QDate>& allDatesInList, bool editMode,
                      const std::function<void(QDate)>& onUnmarkInEdit);

// "P" on every day row whose Type is empty.
void fnMarkRemainingPresent(FlexGridModel& dayGrid);

// How much one day of a code counts: "P" 1 present, "A" 1 absent, "L" 1 leave, "HL" half
// present half leave, "AL" half leave half absent, "HA" half present half absent, "H" one
// holiday. The code is trimmed, then compared exactly (case matters); anything else weighs 0.
struct DayTypeWeights {
    double present = 0.0;
    double leave = 0.0;
    double absent = 0.0;
    double holiday = 0.0;
};
DayTypeWeights dayTypeWeights(const QString& code);

// The totals the form shows: `present` already includes the holidays (txtNoPresent),
// `holiday` says how many of them are holidays.
struct DayCounts {
    double present = 0.0;
    double leave = 0.0;
    double absent = 0.0;
    double holiday = 0.0;
};
DayCounts fnCountDayTypes(const FlexGridModel& dayGrid);

// A count as the text boxes show it: "2.5", "3", "0".
QString countText(double count);

// The days offered in lstAbsentDays: every day from start to end that is not a holiday,
// as "yyyy/mm/dd" text.
QStringList fnPopoulateList(QDate start, QDate end, const QList<QDate>& holidayDates);

}  // namespace qz2::rules
