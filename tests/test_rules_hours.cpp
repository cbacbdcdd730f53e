// Worked hours, the grace time on check-ins, the day's allowance/deduction difference and
// the "Hours" column.
#include <gtest/gtest.h>

#include <ostream>

#include "rules/Hours.h"

void PrintTo(const QString& s, std::ostream* os) {
    *os << '"' << s.toStdString() << '"';
}
namespace qz2 {
void PrintTo(const TimeValue& v, std::ostream* os) {
    *os << v.format(u"HH:mm").toStdString();
}
}  // namespace qz2

using namespace qz2::rules;
using qz2::FlexGridModel;
using qz2::TimeValue;

namespace {

TimeValue hm(int h, int m) {
    return TimeValue::fromHM(h, m);
}

void makeDayGrid(FlexGridModel& day) {
    day.setCols(7);
    day.setRows(1);
}
void makePairGrid(FlexGridModel& g) {
    g.setCols(4);
    g.setRows(1);
}

// Scheduled first check-in 09:00 on every day but Sunday (no schedule: midnight).
TimeValue nineOClock(QDate d) {
    return d.dayOfWeek() == Qt::Sunday ? TimeValue() : hm(9, 0);
}

}  // namespace

// ---- Grace time -------------------------------------------------------------------------

TEST(EffectiveCheckIn, InsideTheGraceWindowCountsAsTheScheduledStart) {
    EXPECT_EQ(effectiveCheckIn(hm(9, 5), hm(9, 0), 10), hm(9, 0));
}

TEST(EffectiveCheckIn, BothEndsOfTheWindowAreInside) {
    EXPECT_EQ(effectiveCheckIn(hm(9, 0), hm(9, 0), 10), hm(9, 0));
    EXPECT_EQ(effectiveCheckIn(hm(9, 10), hm(9, 0), 10), hm(9, 0));
}

TEST(EffectiveCheckIn, AfterTheWindowOrBeforeTheStartCountsAsRecorded) {
    EXPECT_EQ(effectiveCheckIn(hm(9, 11), hm(9, 0), 10), hm(9, 11));
    EXPECT_EQ(effectiveCheckIn(hm(8, 55), hm(9, 0), 10), hm(8, 55));
}

TEST(EffectiveCheckIn, WithZeroGraceOnlyTheExactStartIsMoved) {
    EXPECT_EQ(effectiveCheckIn(hm(9, 0), hm(9, 0), 0), hm(9, 0));
    EXPECT_EQ(effectiveCheckIn(hm(9, 1), hm(9, 0), 0), hm(9, 1));
}

TEST(EffectiveCheckIn, OnlyTheScheduledTimeOfDayCounts) {
    // A scheduled start read as a full date and time, with seconds.
    const TimeValue withDate(46000.0 + (9 * 3600 + 30) / 86400.0);
    EXPECT_EQ(effectiveCheckIn(hm(9, 4), withDate, 5), hm(9, 0));
    EXPECT_EQ(effectiveCheckIn(hm(9, 6), withDate, 5), hm(9, 6));
}

// ---- Worked hours of every day ----------------------------------------------------------

TEST(CalculateTotalHours, TwoPairsMakeEightHours) {
    FlexGridModel day, mirror;
    makeDayGrid(day);
    makePairGrid(mirror);
    day.AddItem({"", "02/03/2026", "P"});
    mirror.AddItem({"02/03/2026", "1", "09:00", "13:00"});
    mirror.AddItem({"02/03/2026", "2", "14:00", "18:00"});
    fnCalculateTotalHours(day, mirror, nineOClock, 10);
    EXPECT_EQ(day.TextMatrix(1, 3), "08:00");
}

TEST(CalculateTotalHours, ACheckInWithoutCheckOutSubtractsAndShowsItsAbsoluteTime) {
    FlexGridModel day, mirror;
    makeDayGrid(day);
    makePairGrid(mirror);
    day.AddItem({"", "02/03/2026", "P"});
    mirror.AddItem({"02/03/2026", "1", "09:30", ""});
    fnCalculateTotalHours(day, mirror, nineOClock, 0);
    EXPECT_EQ(day.TextMatrix(1, 3), "09:30");
}

TEST(CalculateTotalHours, OnlyTheRowsOfEachDayCountAndADayWithoutPairsIsZero) {
    FlexGridModel day, mirror;
    makeDayGrid(day);
    makePairGrid(mirror);
    day.AddItem({"", "02/03/2026", "P", "11:11"});
    day.AddItem({"", "03/03/2026", "P", "11:11"});
    day.AddItem({"", "04/03/2026", "H", "11:11"});
    mirror.AddItem({"03/03/2026", "1", "10:00", "12:30"});
    mirror.AddItem({"02/03/2026", "1", "09:20", "12:00"});
    mirror.AddItem({"03/03/2026", "2", "13:00", "14:00"});
    fnCalculateTotalHours(day, mirror, nineOClock, 10);
    EXPECT_EQ(day.TextMatrix(1, 3), "02:40");
    EXPECT_EQ(day.TextMatrix(2, 3), "03:30");
    EXPECT_EQ(day.TextMatrix(3, 3), "00:00");
}

TEST(CalculateTotalHours, GraceAppliesToEveryPairOfTheDay) {
    FlexGridModel day, mirror;
    makeDayGrid(day);
    makePairGrid(mirror);
    day.AddItem({"", "02/03/2026", "P"});
    mirror.AddItem({"02/03/2026", "1", "09:05", "09:30"});  // counts from 09:00: 30 min
    mirror.AddItem({"02/03/2026", "2", "09:08", "10:00"});  // counts from 09:00 too: 60 min
    mirror.AddItem({"02/03/2026", "3", "13:00", "14:00"});  // 60 min
    fnCalculateTotalHours(day, mirror, nineOClock, 10);
    EXPECT_EQ(day.TextMatrix(1, 3), "02:30");
}

TEST(CalculateTotalHours, ZeroAndEmptyTimesReadAsMidnight) {
    FlexGridModel day, mirror;
    makeDayGrid(day);
    makePairGrid(mirror);
    day.AddItem({"", "02/03/2026", "P"});
    day.AddItem({"", "03/03/2026", "P"});
    day.AddItem({"", "04/03/2026", "P"});
    mirror.AddItem({"02/03/2026", "1", "00:00", "08:00"});
    mirror.AddItem({"03/03/2026", "1", "", "17:00"});
    mirror.AddItem({"04/03/2026", "1", "10:00", "00:00"});
    fnCalculateTotalHours(day, mirror, nineOClock, 10);
    EXPECT_EQ(day.TextMatrix(1, 3), "08:00");
    EXPECT_EQ(day.TextMatrix(2, 3), "17:00");
    EXPECT_EQ(day.TextMatrix(3, 3), "10:00");  // 0 - 10:00, shown without its sign
}

TEST(CalculateTotalHours, AGraceStartOfMidnightMovesAnEarlyCheckInToMidnight) {
    FlexGridModel day, mirror;
    makeDayGrid(day);
    makePairGrid(mirror);
    day.AddItem({"", "01/03/2026", "P"});  // a Sunday: no schedule, the start reads as 00:00
    mirror.AddItem({"01/03/2026", "1", "00:05", "02:00"});
    fnCalculateTotalHours(day, mirror, nineOClock, 10);
    EXPECT_EQ(day.TextMatrix(1, 3), "02:00");
}

TEST(CalculateTotalHours, ACheckOutBeforeItsCheckInSubtracts) {
    FlexGridModel day, mirror;
    makeDayGrid(day);
    makePairGrid(mirror);
    day.AddItem({"", "02/03/2026", "P"});
    mirror.AddItem({"02/03/2026", "1", "13:00", "09:00"});
    mirror.AddItem({"02/03/2026", "2", "14:00", "20:00"});
    fnCalculateTotalHours(day, mirror, nineOClock, 0);
    EXPECT_EQ(day.TextMatrix(1, 3), "02:00");  // -4 h + 6 h
}

TEST(CalculateTotalHours, TotalsOfADayOrMoreWrapRound) {
    FlexGridModel day, mirror;
    makeDayGrid(day);
    makePairGrid(mirror);
    day.AddItem({"", "02/03/2026", "P"});
    mirror.AddItem({"02/03/2026", "1", "00:00", "23:00"});
    mirror.AddItem({"02/03/2026", "2", "01:00", "02:30"});
    fnCalculateTotalHours(day, mirror, nineOClock, 0);
    EXPECT_EQ(day.TextMatrix(1, 3), "00:30");
}

TEST(CalculateTotalHours, TheGraceStartIsAskedWithTheRowsDate) {
    FlexGridModel day, mirror;
    makeDayGrid(day);
    makePairGrid(mirror);
    day.AddItem({"", "02/03/2026", "P"});
    mirror.AddItem({"02/03/2026", "1", "08:05", "12:00"});
    QList<QDate> asked;
    fnCalculateTotalHours(
        day, mirror,
        [&asked](QDate d) {
            asked << d;
            return hm(8, 0);
        },
        10);
    EXPECT_EQ(day.TextMatrix(1, 3), "04:00");
    ASSERT_FALSE(asked.isEmpty());
    EXPECT_EQ(asked.first(), QDate(2026, 3, 2));
}

// ---- The current day's difference --------------------------------------------------------

TEST(CalculateTotalHoursForTheDay, WorkedEqualToScheduledClearsTheTick) {
    FlexGridModel pairs;
    makePairGrid(pairs);
    pairs.AddItem({"02/03/2026", "1", "09:05", "13:00"});
    pairs.AddItem({"02/03/2026", "2", "14:00", "18:00"});
    const DayDifference d =
        fnCalculateTotalHoursfortheDay(pairs, QDate(2026, 3, 2), hm(8, 0), nineOClock, 10);
    EXPECT_EQ(d.caption, "Allowance/Deductions");
    EXPECT_TRUE(d.clearTick);
    EXPECT_EQ(d.amount, "00.00");
}

TEST(CalculateTotalHoursForTheDay, ExtraHoursAreAnAllowance) {
    FlexGridModel pairs;
    makePairGrid(pairs);
    pairs.AddItem({"02/03/2026", "1", "09:00", "13:00"});
    pairs.AddItem({"02/03/2026", "2", "14:00", "19:30"});
    const DayDifference d =
        fnCalculateTotalHoursfortheDay(pairs, QDate(2026, 3, 2), hm(8, 0), nineOClock, 10);
    EXPECT_EQ(d.caption, "Allowances");
    EXPECT_FALSE(d.clearTick);
    EXPECT_EQ(d.amount, "01.30");
}

TEST(CalculateTotalHoursForTheDay, MissingHoursAreADeduction) {
    FlexGridModel pairs;
    makePairGrid(pairs);
    pairs.AddItem({"02/03/2026", "1", "09:45", "17:00"});
    const DayDifference d =
        fnCalculateTotalHoursfortheDay(pairs, QDate(2026, 3, 2), hm(8, 0), nineOClock, 10);
    EXPECT_EQ(d.caption, "Deductions");
    EXPECT_FALSE(d.clearTick);
    EXPECT_EQ(d.amount, "00.45");
}

TEST(CalculateTotalHoursForTheDay, EmptyCellsReadAsMidnight) {
    FlexGridModel pairs;
    makePairGrid(pairs);
    pairs.AddItem({"02/03/2026", "1", "09:00", "17:00"});
    pairs.AddItem({"02/03/2026", "2", "", ""});
    const DayDifference d =
        fnCalculateTotalHoursfortheDay(pairs, QDate(2026, 3, 2), hm(8, 0), nineOClock, 10);
    EXPECT_EQ(d.caption, "Allowance/Deductions");
    EXPECT_EQ(d.amount, "00.00");
}

TEST(CalculateTotalHoursForTheDay, ANegativeTotalComparesByItsShownTime) {
    // 09:00 with no check-out totals -09:00, which shows (and compares) as "09:00".
    FlexGridModel pairs;
    makePairGrid(pairs);
    pairs.AddItem({"02/03/2026", "1", "09:00", ""});
    const DayDifference d =
        fnCalculateTotalHoursfortheDay(pairs, QDate(2026, 3, 2), hm(8, 0), nineOClock, 0);
    EXPECT_EQ(d.caption, "Allowances");
    EXPECT_EQ(d.amount, "17.00");  // 08:00 - (-09:00)
}

// ---- "Hours" ---------------------------------------------------------------------------

TEST(FindTheAdditionalWorkingHours, ScheduleMinusWorkedWithoutSign) {
    FlexGridModel day;
    makeDayGrid(day);
    day.AddItem({"", "02/03/2026", "P", "09:30", "08:00"});
    day.AddItem({"", "03/03/2026", "P", "07:15", "08:00"});
    day.AddItem({"", "04/03/2026", "P", "08:00", "08:00"});
    fnFindtheAdditionalWorkingHours(day);
    EXPECT_EQ(day.TextMatrix(1, 5), "01:30");
    EXPECT_EQ(day.TextMatrix(2, 5), "00:45");
    EXPECT_EQ(day.TextMatrix(3, 5), "00:00");
}

TEST(FindTheAdditionalWorkingHours, RowsMissingEitherColumnKeepTheirHours) {
    FlexGridModel day;
    makeDayGrid(day);
    day.AddItem({"", "02/03/2026", "P", "", "08:00", "03:00"});
    day.AddItem({"", "03/03/2026", "P", "07:00", "", "04:00"});
    fnFindtheAdditionalWorkingHours(day);
    EXPECT_EQ(day.TextMatrix(1, 5), "03:00");
    EXPECT_EQ(day.TextMatrix(2, 5), "04:00");
}

TEST(FindTheAdditionalWorkingHours, AHolidaysHoursEqualItsWorkedHours) {
    FlexGridModel day;
    makeDayGrid(day);
    day.AddItem({"", "01/03/2026", "H", "05:20", "00:00"});
    fnFindtheAdditionalWorkingHours(day);
    EXPECT_EQ(day.TextMatrix(1, 5), "05:20");
}

TEST(FindTheAdditionalWorkingHours, ReadsTheDefaultTimeTextToo) {
    FlexGridModel day;
    makeDayGrid(day);
    day.AddItem({"", "02/03/2026", "P", "06:00", "08:00:00"});
    fnFindtheAdditionalWorkingHours(day);
    EXPECT_EQ(day.TextMatrix(1, 5), "02:00");
}

// A claimed day keeps the amount claimed (typed over the difference or stored with the
// entry); only unclaimed days follow their schedule and worked hours.
TEST(FindtheAdditionalWorkingHours, ClaimedDaysKeepTheirAmount) {
    qz2::FlexGridModel days;
    days.setCols(7);
    days.setRows(4);
    const char* claims[] = {"A", "D", ""};
    for (int r = 1; r <= 3; ++r) {
        days.setTextMatrix(r, 3, QStringLiteral("09:00"));
        days.setTextMatrix(r, 4, QStringLiteral("08:00"));
        days.setTextMatrix(r, 5, QStringLiteral("01.30"));
        days.setTextMatrix(r, 6, QString::fromLatin1(claims[r - 1]));
    }
    qz2::rules::fnFindtheAdditionalWorkingHours(days);
    EXPECT_EQ(days.TextMatrix(1, 5), QStringLiteral("01.30"));
    EXPECT_EQ(days.TextMatrix(2, 5), QStringLiteral("01.30"));
    EXPECT_EQ(days.TextMatrix(3, 5), QStringLiteral("01:00"));
}

// ---- The claim amount box ------------------------------------------------------------------

TEST(ClaimAmount, HoursAndTwoDigitMinutesWithinADayAreTakenAndNormalised) {
    EXPECT_EQ(normaliseClaimAmount("01.30"), QStringLiteral("01.30"));
    EXPECT_EQ(normaliseClaimAmount("1:30"), QStringLiteral("01.30"));
    EXPECT_EQ(normaliseClaimAmount("0.05"), QStringLiteral("00.05"));
    EXPECT_EQ(normaliseClaimAmount("23:59"), QStringLiteral("23.59"));
    EXPECT_EQ(normaliseClaimAmount("00.00"), QStringLiteral("00.00"));
    EXPECT_EQ(normaliseClaimAmount(" 02:45 "), QStringLiteral("02.45"));
}

TEST(ClaimAmount, AnythingElseIsRefused) {
    for (const char* text : {"", "1", "1.", "1.5", "24.00", "25.00", "12.60", "12.75", "99.99",
                             "123.00", ".30", "1,30", "1.300", "-1.00", "ab.cd", "01-30"})
        EXPECT_FALSE(normaliseClaimAmount(QString::fromLatin1(text))) << text;
}

TEST(ClaimAmount, BeginningsOfAnAmountMayBeTypedOn) {
    for (const char* text : {"", "1", "12", "23", "1.", "12:", "12.3", "12.5", "0.0"})
        EXPECT_TRUE(isClaimAmountBeginning(QString::fromLatin1(text))) << text;
    for (const char* text : {"24", "25", "12.6", "12.7", "12.345", ".", ":3", "1a", "123"})
        EXPECT_FALSE(isClaimAmountBeginning(QString::fromLatin1(text))) << text;
}
