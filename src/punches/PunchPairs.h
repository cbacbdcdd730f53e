#pragma once
// Pairing one employee's punches into check-in/check-out pairs, day by day.
//
// The rules, in the order they apply:
// - Punches on the same instant in the same direction count once, so that overlapping files
//   read together give what one file gives. Then, in time order, a punch less than
//   `duplicateMinutes` after the last kept punch is dropped (whatever its direction) and
//   counted on its own date; each kept punch is thus at least that long after the one before.
//   With 0 (or less) only the punches that count once are set aside. A punch without a
//   valid date and time is not used.
// - Kept punches are walked in time order with at most one pair open. A check-in opens a
//   pair; a check-in while one is open leaves that one without its check-out. A check-out
//   closes the open pair; with none open it is kept on its date as a check-out without a
//   check-in (no pair is made of it: a pair always has its check-in). A punch without a
//   direction closes the open pair or, with none open, opens one: punches without
//   directions alternate in, out within the day.
// - A pair belongs to the day of its check-in. It closes on a later day only as a night
//   shift: its check-in at or after `nightCheckInFrom`, and the first punch of the next day
//   (a check-out or one without direction) before `nightCheckOutBefore` and at most
//   `nightMaxMinutes` after the check-in. Otherwise the pair stays without its check-out and
//   that punch starts the new day as above. The rule is the same with or without directions.
// - A day keeps its first six pairs; any more are listed apart and flag the day.
// - Only the days from `from` to `to` are returned. Earlier punches are still walked, so
//   that a night shift begun before the period does not leave its check-out as a stray on
//   the first day; of later punches only the next day's can close the last day's night
//   shift. A punch dated after `businessDate` flags the day it was put on.

#include <QDate>
#include <QDateTime>
#include <QFlags>
#include <QStringList>
#include <QTime>
#include <QVector>
#include <optional>

#include "punches/Punch.h"

namespace qz2::punches {

// As many pairs as the entry form's pairs grid holds for a day.
constexpr int kMaxPairsPerDay = 6;

struct PairingOptions {
    QDate from;  // the period; an invalid date or `to` before `from` gives no days
    QDate to;
    QDate businessDate;  // invalid: no punch is after it
    int duplicateMinutes = 2;
    QTime nightCheckInFrom = QTime(12, 0);
    QTime nightCheckOutBefore = QTime(12, 0);
    int nightMaxMinutes = 12 * 60;
};

enum class DayFlag {
    CheckOutMissing = 0x1,    // a pair of the day has no check-out
    CheckInMissing = 0x2,     // a check-out of the day has no check-in
    MoreThanSixPairs = 0x4,   // pairsBeyondSix is not empty
    AfterBusinessDate = 0x8,  // a punch put on the day is dated after the business date
};
Q_DECLARE_FLAGS(DayFlags, DayFlag)

struct PunchPair {
    QDateTime in;
    std::optional<QDateTime> out;  // none: the check-out is missing
    bool operator==(const PunchPair&) const = default;
};

struct PunchDay {
    QDate date;
    QVector<PunchPair> pairs;           // at most kMaxPairsPerDay, by check-in
    QVector<PunchPair> pairsBeyondSix;  // not kept for the day; listed for the clerk to see
    QVector<QDateTime> checkOutsWithoutCheckIn;
    int duplicatesDropped = 0;
    DayFlags flags;
};

// One PunchDay for every day from options.from to options.to, in order.
QVector<PunchDay> pairPunches(const QVector<Punch>& punches, const PairingOptions& options);

// The clerk's words for a flag ("check-out missing"), and for every flag set, in the enum's
// order.
QString dayFlagText(DayFlag flag);
QStringList dayFlagTexts(DayFlags flags);

}  // namespace qz2::punches

Q_DECLARE_OPERATORS_FOR_FLAGS(qz2::punches::DayFlags)
