#pragma once
// Laying one employee's paired punches onto a populated entry: the pairs of every day that
// has punches replace the day's laid-out pairs in the mirror grid (the grid every typed time
// goes into, so hours, grace time, claims and saving treat them as typed times), and the
// clerk is told which days are flagged, which were changed and which working days have no
// punch at all (offered as absent days, never marked by themselves).
//
// A night shift's pair belongs to the day it started. The grids hold times of day, so such
// a pair is kept on its day as two pairs in the day's order: 00:00 to the check-out, and the
// check-in to 23:59 (a day has no 24:00): its worked time is one minute short, which the
// summary says.

#include <QDate>
#include <QStringList>
#include <QVector>

#include "punches/PunchPairs.h"
#include "rules/Hours.h"
#include "shared/FlexGrid.h"

namespace qz2::punches {

// A pair as the mirror grid holds it: "HH:mm" texts, the check-out empty when missing.
struct GridPair {
    QString checkIn;
    QString checkOut;
    bool operator==(const GridPair&) const = default;
};

struct DayImport {
    QDate date;
    QString type;             // the day's type in the day grid
    QVector<GridPair> pairs;  // in the day's order, at most six
    bool nightShift = false;  // a pair of the day closes after midnight
    DayFlags flags;           // from the pairing, plus MoreThanSixPairs when a split overflows
};

struct ImportPlan {
    QVector<DayImport> days;                   // every day of the entry that has punches
    QVector<QDate> workingDaysWithoutPunches;  // present days with a schedule and no punch
    int pairs = 0;                             // pairs laid onto the entry
    int duplicatesDropped = 0;
};

// The plan for the day grid's days from the paired punches (one PunchDay per date; days
// outside the grid are left out). A day keeps at most six pairs; a night shift's split pair
// that would make a seventh flags the day "more than six pairs".
// Working days after `businessDate` (when given) have not happened yet: they are not offered
// as absent.
ImportPlan planImport(const FlexGridModel& dayGrid, const QVector<PunchDay>& paired,
                      QDate businessDate = QDate());

// The plan for one employee's punches over the days the day grid holds, from its first
// date to its last, paired under `options` (whose period and business date are set here).
ImportPlan planForEntry(const FlexGridModel& dayGrid, const QVector<Punch>& punches,
                        QDate businessDate, PairingOptions options = {});

// Lays the plan onto a populated entry as typed times would be: a claim on a day whose
// times change is withdrawn (one line each for the clerk, returned), the mirror rows of
// the planned days are replaced, then every day's Worked Hours and Hours are worked out
// again under the grace rule. The day counts are the caller's to show.
QStringList layPunches(FlexGridModel& dayGrid, FlexGridModel& mirror, const ImportPlan& plan,
                       const rules::GraceStartProvider& graceStart, int graceMinutes);

// The planned days whose pairs differ from their mirror rows now: the days whose times the
// import changes (a claim made on the old times no longer holds there).
QVector<QDate> changedDays(const FlexGridModel& mirror, const ImportPlan& plan);

// The mirror rows of every planned day become the day's pairs (numbered 1..n, in date
// order with the other days' rows).
void applyImport(FlexGridModel& mirror, const ImportPlan& plan);

// Marks the days absent ("A") in the day grid and drops their mirror rows: what the clerk
// accepts of the offer of working days without punches.
void markDaysAbsent(FlexGridModel& dayGrid, FlexGridModel& mirror, const QVector<QDate>& days);

// The summary the clerk reads before saving: how many punches and pairs, each flagged day
// with its flags, each night shift, each day marked absent or on leave that has punches,
// and the working days without punches.
QStringList importSummary(const ImportPlan& plan);

// Whether any day of the plan is flagged.
bool hasFlaggedDays(const ImportPlan& plan);

}  // namespace qz2::punches
