// The entry form's rules without widgets or a database: weekday numbers, scheduled pairs
// and hours, the grace rule, the proposed period and the attendance number.

#include <gtest/gtest.h>

#include <QLocale>

#include "entry/EmployeeChoice.h"
#include "entry/EntryRules.h"

using namespace qz2;
using namespace qz2::entry;

namespace {
TimeValue hm(int h, int m) {
    return TimeValue::fromHM(h, m);
}

ScheduleLine line(
    std::initializer_list<std::pair<std::optional<TimeValue>, std::optional<TimeValue>>> pairs) {
    ScheduleLine l;
    int i = 0;
    for (const auto& [in, out] : pairs) {
        l.checkIn[i] = in;
        l.checkOut[i] = out;
        ++i;
    }
    return l;
}

// The hours of a line read from the settings, by the attendance rules.
TimeValue scheduledHours(const ScheduleLine& l) {
    return rules::scheduledHours(toDaySchedule(l));
}
}  // namespace

TEST(EntryRulesDayId, TheSevenDayNumbersRunFromSundayToSaturday) {
    // 2026-11-01 is a Sunday.
    const QDate sunday(2026, 11, 1);
    ASSERT_EQ(sunday.dayOfWeek(), Qt::Sunday);
    for (int i = 0; i < 7; ++i)
        EXPECT_EQ(fnGetDayID(sunday.addDays(i)), i + 1)
            << sunday.addDays(i).toString().toStdString();
    EXPECT_EQ(fnGetDayID(QDate(2026, 11, 8)), 1);
    EXPECT_EQ(fnGetDayID(QDate(2024, 2, 29)), 5);  // a Thursday
}

TEST(EntryRulesDayId, EnglishShortNamesOnlyAndTrimmed) {
    EXPECT_EQ(fnDayIDFromName(QStringLiteral("Sun")), 1);
    EXPECT_EQ(fnDayIDFromName(QStringLiteral("Mon")), 2);
    EXPECT_EQ(fnDayIDFromName(QStringLiteral("Tue")), 3);
    EXPECT_EQ(fnDayIDFromName(QStringLiteral("Wed")), 4);
    EXPECT_EQ(fnDayIDFromName(QStringLiteral(" Thu ")), 5);
    EXPECT_EQ(fnDayIDFromName(QStringLiteral("Fri")), 6);
    EXPECT_EQ(fnDayIDFromName(QStringLiteral("Sat")), 7);
    EXPECT_EQ(fnDayIDFromName(QStringLiteral("sun")), 0);  // case matters
    EXPECT_EQ(fnDayIDFromName(QStringLiteral("Sunday")), 0);
    EXPECT_EQ(fnDayIDFromName(QString()), 0);
}

TEST(EntryRulesDayId, ANonEnglishShortNameGivesDayZero) {
    const QLocale french(QLocale::French, QLocale::France);
    const QDate monday(2026, 11, 2);
    const QString name = french.toString(monday, QStringLiteral("ddd"));
    ASSERT_NE(name, QStringLiteral("Mon"));
    EXPECT_EQ(fnDayIDFromName(name), 0);
}

TEST(EntryRulesDayId, TheUsersLocaleDoesNotChangeTheNumber) {
    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    EXPECT_EQ(fnGetDayID(QDate(2026, 11, 2)), 2);
    EXPECT_EQ(fnGetDayID(QDate(2026, 11, 7)), 7);
    QLocale::setDefault(before);
}

TEST(EntryRulesDayId, AnInvalidDateHasNoDayNumber) {
    EXPECT_EQ(fnGetDayID(QDate()), 0);
}

TEST(EntryRulesSchedule, CompletePairsKeepOrderAndSkipPairsWithAMissingEnd) {
    const ScheduleLine l =
        line({{hm(9, 0), hm(13, 0)}, {hm(14, 0), std::nullopt}, {hm(15, 0), hm(17, 0)}});
    const QVector<ScheduledPair> pairs = completePairs(l);
    ASSERT_EQ(pairs.size(), 2);
    EXPECT_EQ(pairs[0].checkIn.format(u"HH:mm"), QStringLiteral("09:00"));
    EXPECT_EQ(pairs[1].checkIn.format(u"HH:mm"), QStringLiteral("15:00"));
    EXPECT_EQ(pairs[1].checkOut.format(u"HH:mm"), QStringLiteral("17:00"));
}

TEST(EntryRulesSchedule, HoursSumOnlyCompletePairs) {
    EXPECT_EQ(
        scheduledHours(line({{hm(9, 0), hm(13, 0)}, {hm(14, 0), hm(18, 0)}})).format(u"hh:mm"),
        QStringLiteral("08:00"));
    // A check-in without its check-out adds nothing; nor does a check-out alone.
    EXPECT_EQ(
        scheduledHours(
            line({{hm(9, 0), hm(13, 0)}, {hm(14, 0), std::nullopt}, {std::nullopt, hm(18, 0)}}))
            .format(u"hh:mm"),
        QStringLiteral("04:00"));
}

TEST(EntryRulesSchedule, AllPairsNullGiveZero) {
    EXPECT_EQ(scheduledHours(ScheduleLine{}).format(u"hh:mm"), QStringLiteral("00:00"));
}

TEST(EntryRulesSchedule, TwentyFourHoursOrMoreWrapPastMidnight) {
    const ScheduleLine l = line({{hm(0, 0), hm(23, 0)}, {hm(10, 0), hm(11, 30)}});  // 24:30
    EXPECT_EQ(scheduledHours(l).format(u"hh:mm"), QStringLiteral("00:30"));
}

TEST(EntryRulesSchedule, ACheckOutBeforeItsCheckInIsNotCheckedAndShowsAsItsAbsoluteTime) {
    const ScheduleLine l = line({{hm(13, 0), hm(9, 0)}});  // -4 hours
    EXPECT_EQ(scheduledHours(l).format(u"hh:mm"), QStringLiteral("04:00"));
}

TEST(EntryRulesGrace, BothEndsOfTheWindowCountAsTheScheduledStart) {
    const TimeValue start = hm(9, 0);
    EXPECT_EQ(rules::effectiveCheckIn(hm(9, 0), start, 10), start);
    EXPECT_EQ(rules::effectiveCheckIn(hm(9, 10), start, 10), start);
    EXPECT_EQ(rules::effectiveCheckIn(hm(9, 5), start, 10), start);
}

TEST(EntryRulesGrace, OneMinuteLateOrAnyEarlyArrivalCountsAsRecorded) {
    const TimeValue start = hm(9, 0);
    EXPECT_EQ(rules::effectiveCheckIn(hm(9, 11), start, 10).format(u"HH:mm"), QStringLiteral("09:11"));
    EXPECT_EQ(rules::effectiveCheckIn(hm(8, 55), start, 10).format(u"HH:mm"), QStringLiteral("08:55"));
    EXPECT_EQ(rules::effectiveCheckIn(hm(8, 59), start, 10).format(u"HH:mm"), QStringLiteral("08:59"));
}

TEST(EntryRulesGrace, ZeroGraceMovesOnlyTheExactStart) {
    const TimeValue start = hm(9, 0);
    EXPECT_EQ(rules::effectiveCheckIn(hm(9, 0), start, 0), start);
    EXPECT_EQ(rules::effectiveCheckIn(hm(9, 1), start, 0).format(u"HH:mm"), QStringLiteral("09:01"));
}

TEST(EntryRulesGrace, TimesParsedFromTextMatchTheWindowEdgesExactly) {
    // Values made different ways (text, hours and minutes, minute addition) must still meet.
    const TimeValue start = *parseTime(u"08:45");
    for (int grace : {1, 7, 10, 15, 29, 59}) {
        const TimeValue edge = *parseTime(start.addMinutes(grace).format(u"HH:mm"));
        EXPECT_EQ(rules::effectiveCheckIn(edge, start, grace), start) << grace;
        const TimeValue after = *parseTime(start.addMinutes(grace + 1).format(u"HH:mm"));
        EXPECT_EQ(rules::effectiveCheckIn(after, start, grace), after) << grace;
    }
}

TEST(EntryRulesPeriod, TotalDaysCountBothEnds) {
    EXPECT_EQ(fnTotalDays(QDate(2026, 11, 21), QDate(2026, 11, 21)), 1);
    EXPECT_EQ(fnTotalDays(QDate(2026, 11, 1), QDate(2026, 11, 30)), 30);
    EXPECT_EQ(fnTotalDays(QDate(2026, 12, 15), QDate(2027, 1, 14)), 31);
}

TEST(EntryRulesPeriod, PayMonthStartMovesForwardIntoTheBusinessYear) {
    EXPECT_EQ(movePayMonthStartIntoYear(QDate(2024, 11, 1), QDate(2026, 11, 21)),
              QDate(2026, 11, 1));
    EXPECT_EQ(movePayMonthStartIntoYear(QDate(2026, 11, 1), QDate(2026, 11, 21)),
              QDate(2026, 11, 1));
    // A later year is left where it is: only the forward move is made.
    EXPECT_EQ(movePayMonthStartIntoYear(QDate(2027, 11, 1), QDate(2026, 11, 21)),
              QDate(2027, 11, 1));
}

TEST(EntryRulesPeriod, EndIsOneMonthLaterLessOneDay) {
    EXPECT_EQ(proposedPeriodEnd(QDate(2026, 11, 1)), QDate(2026, 11, 30));
    EXPECT_EQ(proposedPeriodEnd(QDate(2026, 11, 16)), QDate(2026, 12, 15));
    EXPECT_EQ(proposedPeriodEnd(QDate(2026, 12, 21)), QDate(2027, 1, 20));
    // The month addition clamps to the shorter month, then one day comes off.
    EXPECT_EQ(proposedPeriodEnd(QDate(2026, 1, 31)), QDate(2026, 2, 27));
}

TEST(EntryRulesPeriod, ALaterDateOfJoinBecomesTheStart) {
    const JoinedStart j = applyDateOfJoin(QDate(2026, 11, 1), QDate(2026, 11, 3));
    EXPECT_FALSE(j.invalidDateOfJoin);
    EXPECT_EQ(j.start, QDate(2026, 11, 3));
}

TEST(EntryRulesPeriod, AnEarlierDateOfJoinLeavesTheStart) {
    const JoinedStart j = applyDateOfJoin(QDate(2026, 11, 1), QDate(2019, 5, 20));
    EXPECT_FALSE(j.invalidDateOfJoin);
    EXPECT_EQ(j.start, QDate(2026, 11, 1));
    EXPECT_EQ(applyDateOfJoin(QDate(2026, 11, 1), std::nullopt).start, QDate(2026, 11, 1));
}

TEST(EntryRulesPeriod, AJoinOnTheStartKeepsIt) {
    EXPECT_EQ(applyDateOfJoin(QDate(2026, 11, 1), QDate(2026, 11, 1)).start, QDate(2026, 11, 1));
}

TEST(EntryRulesPeriod, TheMissingDateSentinelAndLaterAreInvalid) {
    EXPECT_TRUE(applyDateOfJoin(QDate(2026, 11, 1), QDate(9999, 11, 1)).invalidDateOfJoin);
    EXPECT_TRUE(applyDateOfJoin(QDate(2026, 11, 1), QDate(9999, 12, 31)).invalidDateOfJoin);
    // The day before the sentinel is a (very late) date of join like any other.
    const JoinedStart j = applyDateOfJoin(QDate(2026, 11, 1), QDate(9999, 10, 31));
    EXPECT_FALSE(j.invalidDateOfJoin);
    EXPECT_EQ(j.start, QDate(9999, 10, 31));
}

TEST(EntryRulesNumber, PrefixFollowedByTheNextNumberWithoutPadding) {
    EXPECT_EQ(composeAttendanceNo(QStringLiteral("ATT"), QStringLiteral("41")),
              QStringLiteral("ATT42"));
    EXPECT_EQ(composeAttendanceNo(QStringLiteral("ATT"), QStringLiteral("0")),
              QStringLiteral("ATT1"));
    EXPECT_EQ(composeAttendanceNo(QStringLiteral("ATT"), QString()), QStringLiteral("ATT1"));
    EXPECT_EQ(composeAttendanceNo(QString(), QStringLiteral("2")), QStringLiteral("3"));
    EXPECT_EQ(composeAttendanceNo(QStringLiteral("A/"), QStringLiteral("999")),
              QStringLiteral("A/1000"));
}

TEST(EntryRulesNumber, TheNextNumberIsExactAndOneThatDoesNotFitIsRefused) {
    // Past 2^53 a double would round: the numbers are whole integers throughout.
    EXPECT_EQ(composeAttendanceNo(QStringLiteral("ATT"), QStringLiteral("2147483646")),
              QStringLiteral("ATT2147483647"));
    EXPECT_EQ(composeAttendanceNo(QStringLiteral("ATT"), QStringLiteral(" 99 ")),
              QStringLiteral("ATT100"));
    // The suite reads suffixes as 32-bit integers: there is no number after the largest one.
    EXPECT_THROW(composeAttendanceNo(QStringLiteral("ATT"), QStringLiteral("2147483647")),
                 std::runtime_error);
    EXPECT_THROW(composeAttendanceNo(QStringLiteral("ATT"), QStringLiteral("9223372036854775807")),
                 std::runtime_error);
    EXPECT_THROW(composeAttendanceNo(QStringLiteral("ATT"), QStringLiteral("1e18")),
                 std::runtime_error);
    EXPECT_THROW(composeAttendanceNo(QStringLiteral("ATT"), QStringLiteral("41.5")),
                 std::runtime_error);
    try {
        composeAttendanceNo(QStringLiteral("ATT"), QStringLiteral("2147483647"));
    } catch (const std::runtime_error& e) {
        EXPECT_EQ(QString::fromUtf8(e.what()),
                  QStringLiteral("No attendance number is left after ATT2147483647: the next one "
                                 "would not fit. Nothing was saved; ask for a new prefix to be "
                                 "set for this screen."));
    }
}

// ---- The employee box's names and what the clerk types into it ------------------------------

TEST(EmployeeChoice, EachEmployeeIsShownByNumberThenName) {
    EXPECT_EQ(qz2::entry::employeeItemText(QStringLiteral(" E0007 "), QStringLiteral("Asha Verma ")),
              QStringLiteral("E0007 \u2013 Asha Verma"));
    EXPECT_EQ(qz2::entry::employeeItemText(QString(), QStringLiteral("Asha Verma")), QStringLiteral("Asha Verma"));
}

TEST(EmployeeChoice, ANumberFindsItsEmployeeWhateverTheCaseBlanksAndLeadingZeros) {
    const QStringList items = {QStringLiteral("E0007 \u2013 Asha Verma"), QStringLiteral("E0070 \u2013 Asha Verma"),
                               QStringLiteral("E0071 \u2013 Bruno Costa")};
    using qz2::entry::findEmployeeItems;
    EXPECT_EQ(findEmployeeItems(items, QStringLiteral("E0007")), QList<int>{0});
    EXPECT_EQ(findEmployeeItems(items, QStringLiteral(" e7 ")), QList<int>{0});
    EXPECT_EQ(findEmployeeItems(items, QStringLiteral("E70")), QList<int>{1});
    // The whole shown text is that one item, even where the name is shared.
    EXPECT_EQ(findEmployeeItems(items, items[1]), QList<int>{1});
}

TEST(EmployeeChoice, ANameOrAPartOfOneFindsEveryEmployeeItNames) {
    const QStringList items = {QStringLiteral("E0007 \u2013 Asha Verma"), QStringLiteral("E0070 \u2013 Asha Verma"),
                               QStringLiteral("E0071 \u2013 Bruno Costa")};
    using qz2::entry::findEmployeeItems;
    EXPECT_EQ(findEmployeeItems(items, QStringLiteral("costa")), QList<int>{2});
    // Two people of one name: the name alone chooses neither.
    EXPECT_EQ(findEmployeeItems(items, QStringLiteral("Asha Verma")), QList<int>({0, 1}));
    EXPECT_EQ(findEmployeeItems(items, QStringLiteral("E007")), QList<int>{0});
    EXPECT_TRUE(findEmployeeItems(items, QStringLiteral("nobody")).isEmpty());
    EXPECT_TRUE(findEmployeeItems(items, QStringLiteral("   ")).isEmpty());
}

TEST(EmployeeChoice, ThePayrollNoteNamesTheLastPayrollDate) {
    EXPECT_TRUE(qz2::entry::payrollBehindText(QDate(2026, 10, 31)).contains(QStringLiteral("(31/10/2026)")));
}
