#pragma once
// Worked hours, the grace time on check-ins and the difference between scheduled and worked
// hours. Everything is computed on date/time values (one day = 1.0), so a negative total
// shows as its absolute time of day and 24 hours or more wrap round when shown.

#include <QDate>
#include <QString>
#include <functional>
#include <optional>

#include "rules/RuleGrids.h"

namespace qz2::rules {

// The first scheduled check-in of a date under the entry's work-time settings (midnight
// when there is none).
using GraceStartProvider = std::function<TimeValue(QDate)>;

// Captions of chkAllowanceDeductions.
inline const QString kCaptionAllowances = QStringLiteral("Allowances");
inline const QString kCaptionDeductions = QStringLiteral("Deductions");
inline const QString kCaptionNeutral = QStringLiteral("Allowance/Deductions");

// The check-in the hours use: a recorded check-in from the scheduled start up to the start
// plus the grace minutes (both ends inclusive) counts as the scheduled start; anything
// else, an early arrival included, counts as recorded. Only the scheduled start's hours and
// minutes take part.
TimeValue effectiveCheckIn(TimeValue recorded, TimeValue scheduledFirstCheckIn, int graceMinutes);

// "Worked Hours" ("hh:mm") of every day row from the mirror rows of its date: the sum of
// check-out minus effective check-in over the day's pairs. An empty or "00:00" time reads as
// midnight, so a check-in without a check-out subtracts its time.
void fnCalculateTotalHours(FlexGridModel& dayGrid, const FlexGridModel& mirror,
                           const GraceStartProvider& graceStart, int graceMinutes);

// The current day's claim as the pairs grid stands: the caption the check box takes, whether
// the tick must be cleared (worked equals scheduled), and the size of the difference as
// "hh.mm".
struct DayDifference {
    QString caption;
    bool clearTick = false;
    QString amount;
};
DayDifference fnCalculateTotalHoursfortheDay(const FlexGridModel& pairs, QDate dayDate,
                                             TimeValue scheduled,
                                             const GraceStartProvider& graceStart,
                                             int graceMinutes);

// The claim amount box's text as a day's claim stores it: "hh.mm" from hours 0-23 (one or
// two digits), "." or ":", and two-digit minutes 00-59 ("1:30" gives "01.30"); nullopt for
// anything else, so that no stored amount can make a save fail.
std::optional<QString> normaliseClaimAmount(const QString& text);
// Whether the text can still become such an amount by typing on: "", "1", "12.", "12.3".
bool isClaimAmountBeginning(const QString& text);

// "Hours" ("HH:mm") = Schedule Hours - Worked Hours of every day row that has both; rows
// missing either, and claimed rows (AllowanceType "A" or "D"), keep their Hours.
void fnFindtheAdditionalWorkingHours(FlexGridModel& dayGrid);

}  // namespace qz2::rules
