#pragma once
// Period population: one day row per day of the period, the scheduled pairs of every day laid
// out in the mirror grid, the day types, counts and hours. The database reads (work-time
// schedule, holidays, leaves) are passed in as plain values and callbacks.

#include <QDate>
#include <QList>
#include <array>
#include <functional>
#include <optional>

#include "rules/DayTypes.h"
#include "rules/Hours.h"
#include "rules/RuleGrids.h"

namespace qz2::rules {

// One scheduled pair of the work-time settings; either end may be NULL.
struct SchedulePair {
    std::optional<TimeValue> checkIn;
    std::optional<TimeValue> checkOut;
};
using DaySchedule = std::array<SchedulePair, 4>;

// The day's four scheduled pairs under the entry's settings; nullopt when the settings have
// no line for the day.
using ScheduleProvider = std::function<std::optional<DaySchedule>(QDate)>;

// The period starts on the joining date when that date's "yyyy/mm/dd" text is the greater,
// else on the given start.
QDate effectiveStart(QDate start, QDate dateOfJoin);

// The day grid becomes one row per day from start to end, the date in column 1. A start
// later than the end leaves a single empty row.
void fnBuildDayRows(FlexGridModel& dayGrid, QDate start, QDate end);

// The mirror grid becomes the scheduled pairs of every day from the effective start to the
// end, numbered 1.. per day over the pairs that have both ends; then the rows of days typed
// "H" or "A" are removed.
void fnLayOutScheduledPairs(FlexGridModel& mirror, const FlexGridModel& dayGrid, QDate start,
                            QDate end, QDate dateOfJoin, const ScheduleProvider& schedule);

// A day of a stored entry as its detail lines hold it.
struct StoredDay {
    QDate date;
    QString type;
};

// Reopening a stored entry: the day grid becomes one row per day from the effective start
// (the date of join when that is later) to the end, each with its stored type, and "P" for a
// day that has no stored line (entries saved before every day was stored). A stored day
// outside that range keeps a row of its own, so that nothing stored is hidden; a date stored
// with several types shows the first.
void fnLayOutStoredDays(FlexGridModel& dayGrid, QDate start, QDate end, QDate dateOfJoin,
                        const QList<StoredDay>& stored);

// Removes the mirror rows of one day.
void fnRemoveMirrorRowsOfDate(FlexGridModel& mirror, QDate date);

// Schedule Hours "00:00" on every holiday row.
void fnZeroHolidaySchedule(FlexGridModel& dayGrid);

// The scheduled hours of a day: the sum of check-out minus check-in over the pairs whose
// two ends are both set.
TimeValue scheduledHours(const DaySchedule& schedule);

// Everything the Populate button needs besides the grids.
struct PopulationInput {
    QDate start;                                    // txtStartDate
    QDate end;                                      // dtpEndDate
    QDate dateOfJoin;                               // the employee's date of join
    QList<QDate> holidays;                          // holidays of the period
    QList<LeaveRow> leaves;                         // the approved-leave query's rows
    QList<QDate> absentListItems;                   // lstAbsentDays, in list order
    QList<QDate> absentPicked;                      // the items the clerk picked
    bool considerLeaveHolidays = false;             // setting "ConsiderLeaveHolidays"
    ScheduleProvider schedule;                      // pairs under the entry's settings
    std::function<TimeValue(QDate)> scheduleHours;  // Schedule Hours of a day (newest settings)
    GraceStartProvider graceStart;
    int graceMinutes = 0;
};

// A new entry's population: clears the grids, builds the day rows from the effective start,
// marks absent days, leaves and holidays in the configured order, present for the rest,
// lays out the scheduled pairs and fills Worked, Schedule and Hours. Returns the counts.
DayCounts populateNewEntry(FlexGridModel& dayGrid, FlexGridModel& pairs, FlexGridModel& mirror,
                           const PopulationInput& input);

// The Populate button on an entry opened for edit: only re-applies the absent picks
// (dropping the pairs of a day that is no longer absent) and the holidays, gives holidays
// their zero schedule (as a new entry's population does, so that work on a holiday stays
// extra time), refreshes the unclaimed Hours, then recounts.
DayCounts reapplyEditedEntry(FlexGridModel& dayGrid, FlexGridModel& mirror,
                             const PopulationInput& input);

}  // namespace qz2::rules
