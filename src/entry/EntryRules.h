#pragma once
// The entry form's rules as plain functions over plain values: weekday numbers, a day's
// scheduled pairs as read from the work-time settings, the proposed period and the
// attendance number. The hours of a schedule and the grace-time rule are the attendance
// rules' own (rules/Population.h, rules/Hours.h). The form moves values between its
// widgets, the database and these functions; it computes nothing itself, so everything
// here is tested without a widget.

#include <QDate>
#include <QString>
#include <QVector>
#include <array>
#include <optional>

#include "rules/Population.h"
#include "shared/TimeValue.h"

namespace qz2::db {
class Recordset;
}

namespace qz2::entry {

// Work-time day number of an English short day name ("Sun" 1 .. "Sat" 7) after trimming;
// 0 for any other text, so that a name from another language finds no schedule.
qint16 fnDayIDFromName(const QString& shortName);
// Work-time day number of a date: Sunday 1 .. Saturday 7, whatever the user's locale;
// 0 for an invalid date.
qint16 fnGetDayID(QDate date);

// One line of the work-time settings: up to four scheduled pairs, either end possibly absent.
struct ScheduleLine {
    std::array<std::optional<TimeValue>, 4> checkIn;
    std::array<std::optional<TimeValue>, 4> checkOut;
};

// The current row of a schedule recordset, the pair fields read by name
// ("cwtsCheckIn1" .. "cwtsCheckOut4").
ScheduleLine scheduleLineFrom(const db::Recordset& rs);

struct ScheduledPair {
    TimeValue checkIn;
    TimeValue checkOut;
};

// The pairs whose two ends are both present, in pair order: a pair with one end missing
// is skipped and takes no number.
QVector<ScheduledPair> completePairs(const ScheduleLine& line);

// The line as the population and hours rules take it (rules::scheduledHours sums it,
// rules::fnLayOutScheduledPairs lays it out; the grace rule is rules::effectiveCheckIn).
rules::DaySchedule toDaySchedule(const ScheduleLine& line);

// Days of a period counting both ends: a period from a day to the same day is 1.
qint64 fnTotalDays(QDate start, QDate end);

// The longest period one entry may cover, in days (a leap year), and what the clerk is told
// when a longer one is set.
inline constexpr qint64 kMaxPeriodDays = 366;
inline const QString kMsgPeriodTooLong = QStringLiteral(
    "A period can be at most 366 days long. Choose an end date within a year of the start.");
// What OK says while a step whose reads failed (choosing the employee, the period,
// Populate) has not run again successfully.
inline const QString kMsgStepUnfinished = QStringLiteral(
    "The last step did not finish: the database could not be read. Nothing was saved. "
    "Press Populate again, then OK.");
// Whether start..end (both counted) is longer than one entry may cover.
bool isPeriodTooLong(QDate start, QDate end);

// A pay-month start moved forward by the whole years from it to the business date, so
// that it falls in the business date's year; a later start is left where it is.
QDate movePayMonthStartIntoYear(QDate payRollDay, QDate processDate);

// The proposed last day: the start plus one month minus one day.
QDate proposedPeriodEnd(QDate start);

// The suite's value for a missing date of join, compared as "yyyy/mm/dd" text.
inline constexpr const char* kMissingDateOfJoin = "9999/11/01";

// Where the date of join leaves the proposed start.
struct JoinedStart {
    bool invalidDateOfJoin = false;  // the date of join is the suite's "missing" value
    QDate start;                     // the start to show when valid
};
// The dates are compared as "yyyy/mm/dd" texts: a date of join that is not earlier than
// the start becomes the start; one not earlier than "9999/11/01" is invalid. Without a
// date of join the start stays.
JoinedStart applyDateOfJoin(QDate start, std::optional<QDate> dateOfJoin);

// The largest suffix an attendance number can carry: the suite's numbering reads suffixes
// as 32-bit integers.
inline constexpr qint64 kMaxAttendanceSuffix = 2147483647;

// The attendance number: the prefix followed by the highest suffix plus one, with no
// padding ("ATT" and 41 give "ATT42"), computed with integers. A NULL or empty highest
// suffix counts as 0. Throws std::runtime_error with the reason (nothing is numbered) when
// the next suffix would not fit, or the highest one is not a whole number: a duplicate or a
// rounded number is never given.
QString composeAttendanceNo(const QString& prefix, const QString& highestSuffix);

}  // namespace qz2::entry
