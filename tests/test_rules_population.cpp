// Period population: the day rows, the scheduled pairs laid out in the mirror grid, and the
// whole Populate sequence over a month with holidays, leaves, an absent pick and a joining
// date inside the period.
#include <gtest/gtest.h>

#include <ostream>

#include "rules/Pairs.h"
#include "rules/Population.h"

void PrintTo(const QString& s, std::ostream* os) {
    *os << '"' << s.toStdString() << '"';
}

using namespace qz2::rules;
using qz2::FlexGridModel;
using qz2::TimeValue;

namespace {

struct Grids {
    FlexGridModel day, pairs, mirror;
    Grids() {
        day.setCols(7);
        pairs.setCols(4);
        mirror.setCols(4);
        const QStringList dayHeads{
            "", "Date", "Type", "Worked Hours", "Schedule Hours", "Hours", "AllowanceType"};
        for (int c = 0; c < 7; ++c) day.setTextMatrix(0, c, dayHeads[c]);
        const QStringList pairHeads{"Date", "SlNo", "CheckIn", "Check Out"};
        for (int c = 0; c < 4; ++c) {
            pairs.setTextMatrix(0, c, pairHeads[c]);
            mirror.setTextMatrix(0, c, pairHeads[c]);
        }
    }
};

QStringList rowOf(const FlexGridModel& g, int r) {
    QStringList cells;
    for (int c = 0; c < g.cols(); ++c) cells << g.TextMatrix(r, c);
    return cells;
}

QList<QStringList> allRows(const FlexGridModel& g) {
    QList<QStringList> rows;
    for (int r = 0; r < g.Rows(); ++r) rows << rowOf(g, r);
    return rows;
}

QList<QStringList> mirrorRowsOf(const FlexGridModel& mirror, const QString& date) {
    QList<QStringList> rows;
    for (int r = 1; r < mirror.Rows(); ++r)
        if (mirror.TextMatrix(r, 0) == date) rows << rowOf(mirror, r);
    return rows;
}

std::optional<TimeValue> t(int h, int m) {
    return TimeValue::fromHM(h, m);
}

// The entry's work-time settings: no line on Sunday; Monday to Thursday 09-13 and 14-18;
// Friday pairs 1 and 3 only (09-13, 14-17); Saturday 09-13 and a second pair with no
// check-out.
std::optional<DaySchedule> entrySchedule(QDate d) {
    switch (d.dayOfWeek()) {
        case Qt::Sunday:
            return std::nullopt;
        case Qt::Friday:
            return DaySchedule{{{t(9, 0), t(13, 0)}, {}, {t(14, 0), t(17, 0)}, {}}};
        case Qt::Saturday:
            return DaySchedule{{{t(9, 0), t(13, 0)}, {t(14, 0), std::nullopt}, {}, {}}};
        default:
            return DaySchedule{{{t(9, 0), t(13, 0)}, {t(14, 0), t(18, 0)}, {}, {}}};
    }
}

// Schedule Hours follow the newest settings, which give Saturday five hours.
TimeValue newestScheduleHours(QDate d) {
    switch (d.dayOfWeek()) {
        case Qt::Sunday:
            return TimeValue();
        case Qt::Friday:
            return TimeValue::fromHM(7, 0);
        case Qt::Saturday:
            return TimeValue::fromHM(5, 0);
        default:
            return TimeValue::fromHM(8, 0);
    }
}

TimeValue graceStart(QDate d) {
    return d.dayOfWeek() == Qt::Sunday ? TimeValue() : TimeValue::fromHM(9, 0);
}

QDate feb(int day) {
    return QDate(2026, 2, day);
}

// February 2026 (Sunday 1st to Saturday 28th): holidays on Monday 16th, Tuesday 17th and
// Sunday 22nd; a leave from 28 January to 3 February (crossing the period start, clipped by
// the query); a half-day leave on the 12th; a leave whose cancellation status is "s" on the
// 19th (ignored); a leave on the 25th and 26th; the 5th picked absent.
PopulationInput februaryInput() {
    PopulationInput in;
    in.start = feb(1);
    in.end = feb(28);
    in.dateOfJoin = QDate(2020, 1, 1);
    in.holidays = {feb(16), feb(17), feb(22)};
    in.leaves = {LeaveRow{feb(1), feb(3), "S", 7.0}, LeaveRow{feb(12), feb(12), "S", 0.5},
                 LeaveRow{feb(19), feb(19), "s", 1.0}, LeaveRow{feb(25), feb(26), "S", 2.0}};
    for (int d = 1; d <= 28; ++d)
        if (d != 16 && d != 17 && d != 22) in.absentListItems << feb(d);
    in.absentPicked = {feb(5)};
    in.considerLeaveHolidays = false;
    in.schedule = entrySchedule;
    in.scheduleHours = newestScheduleHours;
    in.graceStart = graceStart;
    in.graceMinutes = 10;
    return in;
}

struct ExpectedDay {
    const char* date;
    const char* type;
    const char* worked;
    const char* schedule;
    const char* hours;
};

void expectDays(const FlexGridModel& day, const std::vector<ExpectedDay>& expected) {
    ASSERT_EQ(day.Rows(), static_cast<int>(expected.size()) + 1);
    for (int r = 1; r < day.Rows(); ++r) {
        const ExpectedDay& e = expected[static_cast<std::size_t>(r - 1)];
        SCOPED_TRACE(e.date);
        EXPECT_EQ(day.TextMatrix(r, 1), QString::fromLatin1(e.date));
        EXPECT_EQ(day.TextMatrix(r, 2), QString::fromLatin1(e.type));
        EXPECT_EQ(day.TextMatrix(r, 3), QString::fromLatin1(e.worked));
        EXPECT_EQ(day.TextMatrix(r, 4), QString::fromLatin1(e.schedule));
        EXPECT_EQ(day.TextMatrix(r, 5), QString::fromLatin1(e.hours));
        EXPECT_EQ(day.TextMatrix(r, 6), QString());
    }
}

}  // namespace

// ---- Effective start -------------------------------------------------------------------

TEST(EffectiveStart, JoiningInsideThePeriodMovesTheStart) {
    EXPECT_EQ(effectiveStart(feb(1), feb(20)), feb(20));
}

TEST(EffectiveStart, EarlierOrEqualJoiningKeepsTheStart) {
    EXPECT_EQ(effectiveStart(feb(1), QDate(2019, 12, 31)), feb(1));
    EXPECT_EQ(effectiveStart(feb(1), feb(1)), feb(1));
}

TEST(EffectiveStart, JoiningInALaterYearButEarlierMonthStillWins) {
    // A text comparison of "yyyy/mm/dd" orders by year first.
    EXPECT_EQ(effectiveStart(QDate(2025, 12, 1), QDate(2026, 1, 15)), QDate(2026, 1, 15));
}

TEST(EffectiveStart, NoJoiningDateKeepsTheStart) {
    EXPECT_EQ(effectiveStart(feb(1), QDate()), feb(1));
}

// ---- Day rows --------------------------------------------------------------------------

TEST(BuildDayRows, StartEqualToEndYieldsOneRow) {
    Grids g;
    fnBuildDayRows(g.day, feb(10), feb(10));
    ASSERT_EQ(g.day.Rows(), 2);
    EXPECT_EQ(g.day.TextMatrix(1, 1), "10/02/2026");
}

TEST(BuildDayRows, OneRowPerDayInOrderAcrossAMonthEnd) {
    Grids g;
    fnBuildDayRows(g.day, QDate(2026, 1, 30), feb(2));
    ASSERT_EQ(g.day.Rows(), 5);
    EXPECT_EQ(g.day.TextMatrix(1, 1), "30/01/2026");
    EXPECT_EQ(g.day.TextMatrix(2, 1), "31/01/2026");
    EXPECT_EQ(g.day.TextMatrix(3, 1), "01/02/2026");
    EXPECT_EQ(g.day.TextMatrix(4, 1), "02/02/2026");
}

TEST(BuildDayRows, StartAfterEndLeavesOneEmptyRow) {
    Grids g;
    fnBuildDayRows(g.day, feb(5), feb(4));
    ASSERT_EQ(g.day.Rows(), 2);
    EXPECT_EQ(g.day.TextMatrix(1, 1), "");
}

TEST(BuildDayRows, LeftoverTypesDoNotSurvive) {
    Grids g;
    g.day.AddItem({"", "01/01/2026", "H", "01:00", "02:00", "03:00", "A"});
    fnBuildDayRows(g.day, feb(1), feb(1));
    ASSERT_EQ(g.day.Rows(), 2);
    EXPECT_EQ(rowOf(g.day, 1), (QStringList{"", "01/02/2026", "", "", "", "", ""}));
}

// ---- Scheduled pairs -------------------------------------------------------------------

TEST(LayOutScheduledPairs, PairsOneAndThreeOnlyAreNumberedOneAndTwo) {
    Grids g;
    fnBuildDayRows(g.day, feb(6), feb(6));  // a Friday
    fnLayOutScheduledPairs(g.mirror, g.day, feb(6), feb(6), QDate(), entrySchedule);
    ASSERT_EQ(g.mirror.Rows(), 3);
    EXPECT_EQ(rowOf(g.mirror, 1), (QStringList{"06/02/2026", "1", "09:00", "13:00"}));
    EXPECT_EQ(rowOf(g.mirror, 2), (QStringList{"06/02/2026", "2", "14:00", "17:00"}));
}

TEST(LayOutScheduledPairs, APairWithoutCheckOutIsSkipped) {
    Grids g;
    fnBuildDayRows(g.day, feb(7), feb(7));  // a Saturday
    fnLayOutScheduledPairs(g.mirror, g.day, feb(7), feb(7), QDate(), entrySchedule);
    ASSERT_EQ(g.mirror.Rows(), 2);
    EXPECT_EQ(rowOf(g.mirror, 1), (QStringList{"07/02/2026", "1", "09:00", "13:00"}));
}

TEST(LayOutScheduledPairs, ADayWithoutSettingsHasNoRows) {
    Grids g;
    fnBuildDayRows(g.day, feb(8), feb(9));  // Sunday, Monday
    fnLayOutScheduledPairs(g.mirror, g.day, feb(8), feb(9), QDate(), entrySchedule);
    EXPECT_TRUE(mirrorRowsOf(g.mirror, "08/02/2026").isEmpty());
    EXPECT_EQ(mirrorRowsOf(g.mirror, "09/02/2026").size(), 2);
}

TEST(LayOutScheduledPairs, HolidayAndAbsentDaysLoseTheirPairsLeaveAndHalfDaysKeepThem) {
    Grids g;
    g.day.AddItem({"", "09/02/2026", "H"});
    g.day.AddItem({"", "10/02/2026", "A"});
    g.day.AddItem({"", "11/02/2026", "L"});
    g.day.AddItem({"", "12/02/2026", "HL"});
    g.day.AddItem({"", "13/02/2026", "P"});
    fnLayOutScheduledPairs(g.mirror, g.day, feb(9), feb(13), QDate(), entrySchedule);
    EXPECT_TRUE(mirrorRowsOf(g.mirror, "09/02/2026").isEmpty());
    EXPECT_TRUE(mirrorRowsOf(g.mirror, "10/02/2026").isEmpty());
    EXPECT_EQ(mirrorRowsOf(g.mirror, "11/02/2026").size(), 2);
    EXPECT_EQ(mirrorRowsOf(g.mirror, "12/02/2026").size(), 2);
    EXPECT_EQ(mirrorRowsOf(g.mirror, "13/02/2026").size(), 2);
    EXPECT_EQ(g.mirror.Rows(), 7);
}

TEST(LayOutScheduledPairs, NoRowsBeforeTheJoiningDate) {
    Grids g;
    fnLayOutScheduledPairs(g.mirror, g.day, feb(9), feb(11), feb(11), entrySchedule);
    ASSERT_EQ(g.mirror.Rows(), 3);
    EXPECT_EQ(g.mirror.TextMatrix(1, 0), "11/02/2026");
    EXPECT_EQ(g.mirror.TextMatrix(2, 0), "11/02/2026");
}

TEST(LayOutScheduledPairs, StartsFromAnEmptyMirror) {
    Grids g;
    g.mirror.AddItem({"01/01/2026", "1", "07:00", "08:00"});
    fnLayOutScheduledPairs(g.mirror, g.day, feb(8), feb(8), QDate(), entrySchedule);
    EXPECT_EQ(g.mirror.Rows(), 1);
}

TEST(RemoveMirrorRowsOfDate, RemovesEveryRowOfTheDayIncludingTheOnlyOne) {
    Grids g;
    g.mirror.AddItem({"09/02/2026", "1", "09:00", "13:00"});
    g.mirror.AddItem({"10/02/2026", "1", "09:00", "13:00"});
    g.mirror.AddItem({"09/02/2026", "2", "14:00", "18:00"});
    fnRemoveMirrorRowsOfDate(g.mirror, feb(9));
    ASSERT_EQ(g.mirror.Rows(), 2);
    EXPECT_EQ(g.mirror.TextMatrix(1, 0), "10/02/2026");
    fnRemoveMirrorRowsOfDate(g.mirror, feb(10));
    EXPECT_EQ(g.mirror.Rows(), 1);
}

TEST(ZeroHolidaySchedule, OnlyHolidaysGetZero) {
    Grids g;
    g.day.AddItem({"", "09/02/2026", "H", "", "08:00"});
    g.day.AddItem({"", "10/02/2026", "P", "", "08:00"});
    fnZeroHolidaySchedule(g.day);
    EXPECT_EQ(g.day.TextMatrix(1, 4), "00:00");
    EXPECT_EQ(g.day.TextMatrix(2, 4), "08:00");
}

TEST(ScheduledHours, SumsCompletePairsOnly) {
    const DaySchedule day{
        {{t(9, 0), t(13, 0)}, {t(14, 0), std::nullopt}, {t(15, 0), t(18, 30)}, {}}};
    EXPECT_EQ(scheduledHours(day).format(u"hh:mm"), "07:30");
    EXPECT_EQ(scheduledHours(DaySchedule{}).format(u"hh:mm"), "00:00");
}

// ---- The Populate sequence --------------------------------------------------------------

TEST(PopulateNewEntry, AMonthWithHolidaysLeavesAHalfDayAndAnAbsentPick) {
    Grids g;
    const DayCounts counts = populateNewEntry(g.day, g.pairs, g.mirror, februaryInput());

    // Leave days keep their pairs; absent and holiday days lose them; holidays show a zero
    // schedule; Saturday's schedule (newest settings, 5 h) differs from its pairs (4 h).
    expectDays(g.day, {
                          {"01/02/2026", "L", "00:00", "00:00", "00:00"},
                          {"02/02/2026", "L", "08:00", "08:00", "00:00"},
                          {"03/02/2026", "L", "08:00", "08:00", "00:00"},
                          {"04/02/2026", "P", "08:00", "08:00", "00:00"},
                          {"05/02/2026", "A", "00:00", "08:00", "08:00"},
                          {"06/02/2026", "P", "07:00", "07:00", "00:00"},
                          {"07/02/2026", "P", "04:00", "05:00", "01:00"},
                          {"08/02/2026", "P", "00:00", "00:00", "00:00"},
                          {"09/02/2026", "P", "08:00", "08:00", "00:00"},
                          {"10/02/2026", "P", "08:00", "08:00", "00:00"},
                          {"11/02/2026", "P", "08:00", "08:00", "00:00"},
                          {"12/02/2026", "HL", "08:00", "08:00", "00:00"},
                          {"13/02/2026", "P", "07:00", "07:00", "00:00"},
                          {"14/02/2026", "P", "04:00", "05:00", "01:00"},
                          {"15/02/2026", "P", "00:00", "00:00", "00:00"},
                          {"16/02/2026", "H", "00:00", "00:00", "00:00"},
                          {"17/02/2026", "H", "00:00", "00:00", "00:00"},
                          {"18/02/2026", "P", "08:00", "08:00", "00:00"},
                          {"19/02/2026", "P", "08:00", "08:00", "00:00"},
                          {"20/02/2026", "P", "07:00", "07:00", "00:00"},
                          {"21/02/2026", "P", "04:00", "05:00", "01:00"},
                          {"22/02/2026", "H", "00:00", "00:00", "00:00"},
                          {"23/02/2026", "P", "08:00", "08:00", "00:00"},
                          {"24/02/2026", "P", "08:00", "08:00", "00:00"},
                          {"25/02/2026", "L", "08:00", "08:00", "00:00"},
                          {"26/02/2026", "L", "08:00", "08:00", "00:00"},
                          {"27/02/2026", "P", "07:00", "07:00", "00:00"},
                          {"28/02/2026", "P", "04:00", "05:00", "01:00"},
                      });

    // 18 "P" + half of "HL" + 3 holidays present; 5 "L" + half of "HL" leave; one "A".
    EXPECT_EQ(counts.present, 21.5);
    EXPECT_EQ(counts.leave, 5.5);
    EXPECT_EQ(counts.absent, 1.0);
    EXPECT_EQ(countText(counts.present), "21.5");
    EXPECT_EQ(countText(counts.leave), "5.5");
    EXPECT_EQ(countText(counts.absent), "1");

    // Four weeks of 2+2+2+2+2+1 pairs (44), less the absent Thursday's and the two weekday
    // holidays' pairs.
    EXPECT_EQ(g.mirror.Rows(), 1 + 38);
    EXPECT_TRUE(mirrorRowsOf(g.mirror, "05/02/2026").isEmpty());
    EXPECT_TRUE(mirrorRowsOf(g.mirror, "16/02/2026").isEmpty());
    EXPECT_TRUE(mirrorRowsOf(g.mirror, "17/02/2026").isEmpty());
    EXPECT_EQ(mirrorRowsOf(g.mirror, "06/02/2026"),
              (QList<QStringList>{{"06/02/2026", "1", "09:00", "13:00"},
                                  {"06/02/2026", "2", "14:00", "17:00"}}));
    EXPECT_EQ(mirrorRowsOf(g.mirror, "12/02/2026"),
              (QList<QStringList>{{"12/02/2026", "1", "09:00", "13:00"},
                                  {"12/02/2026", "2", "14:00", "18:00"}}));
    EXPECT_EQ(g.pairs.Rows(), 1);
}

TEST(PopulateNewEntry, AJoiningDateInsideThePeriodStartsTheRowsThere) {
    Grids g;
    PopulationInput in = februaryInput();
    in.dateOfJoin = feb(20);
    in.leaves = {LeaveRow{feb(18), feb(21), "S", 4.0}};  // crosses the joining date
    in.absentPicked = {feb(24)};
    const DayCounts counts = populateNewEntry(g.day, g.pairs, g.mirror, in);

    expectDays(g.day, {
                          {"20/02/2026", "L", "07:00", "07:00", "00:00"},
                          {"21/02/2026", "L", "04:00", "05:00", "01:00"},
                          {"22/02/2026", "H", "00:00", "00:00", "00:00"},
                          {"23/02/2026", "P", "08:00", "08:00", "00:00"},
                          {"24/02/2026", "A", "00:00", "08:00", "08:00"},
                          {"25/02/2026", "P", "08:00", "08:00", "00:00"},
                          {"26/02/2026", "P", "08:00", "08:00", "00:00"},
                          {"27/02/2026", "P", "07:00", "07:00", "00:00"},
                          {"28/02/2026", "P", "04:00", "05:00", "01:00"},
                      });
    EXPECT_EQ(countText(counts.present), "6");
    EXPECT_EQ(countText(counts.leave), "2");
    EXPECT_EQ(countText(counts.absent), "1");
    // 2 + 1 + 0 + 2 + 0 + 2 + 2 + 2 + 1 pairs, none before the 20th.
    ASSERT_EQ(g.mirror.Rows(), 1 + 12);
    EXPECT_EQ(g.mirror.TextMatrix(1, 0), "20/02/2026");
}

TEST(PopulateNewEntry, StartEqualToEndYieldsOneRow) {
    Grids g;
    PopulationInput in = februaryInput();
    in.start = feb(9);
    in.end = feb(9);
    const DayCounts counts = populateNewEntry(g.day, g.pairs, g.mirror, in);
    expectDays(g.day, {{"09/02/2026", "P", "08:00", "08:00", "00:00"}});
    EXPECT_EQ(counts.present, 1.0);
    EXPECT_EQ(g.mirror.Rows(), 3);
}

TEST(PopulateNewEntry, ConsiderLeaveHolidaysOnKeepsTheHolidayInsideALeave) {
    Grids g;
    PopulationInput in = februaryInput();
    in.start = feb(15);
    in.end = feb(18);
    in.holidays = {feb(16)};
    in.leaves = {LeaveRow{feb(15), feb(18), "S", 4.0}};
    in.absentPicked = {};
    in.considerLeaveHolidays = true;
    const DayCounts counts = populateNewEntry(g.day, g.pairs, g.mirror, in);
    expectDays(g.day, {
                          {"15/02/2026", "L", "00:00", "00:00", "00:00"},
                          {"16/02/2026", "H", "00:00", "00:00", "00:00"},
                          {"17/02/2026", "L", "08:00", "08:00", "00:00"},
                          {"18/02/2026", "L", "08:00", "08:00", "00:00"},
                      });
    EXPECT_EQ(countText(counts.present), "1");
    EXPECT_EQ(countText(counts.leave), "3");
    EXPECT_EQ(countText(counts.absent), "0");
    EXPECT_TRUE(mirrorRowsOf(g.mirror, "16/02/2026").isEmpty());
}

TEST(PopulateNewEntry, ConsiderLeaveHolidaysOffLetsTheLeaveWin) {
    Grids g;
    PopulationInput in = februaryInput();
    in.start = feb(15);
    in.end = feb(18);
    in.holidays = {feb(16)};
    in.leaves = {LeaveRow{feb(15), feb(18), "S", 4.0}};
    in.absentPicked = {};
    in.considerLeaveHolidays = false;
    const DayCounts counts = populateNewEntry(g.day, g.pairs, g.mirror, in);
    expectDays(g.day, {
                          {"15/02/2026", "L", "00:00", "00:00", "00:00"},
                          {"16/02/2026", "L", "08:00", "08:00", "00:00"},
                          {"17/02/2026", "L", "08:00", "08:00", "00:00"},
                          {"18/02/2026", "L", "08:00", "08:00", "00:00"},
                      });
    EXPECT_EQ(countText(counts.present), "0");
    EXPECT_EQ(countText(counts.leave), "4");
    EXPECT_EQ(mirrorRowsOf(g.mirror, "16/02/2026").size(), 2);
}

TEST(PopulateNewEntry, PopulatingTwiceEqualsOnce) {
    Grids once;
    populateNewEntry(once.day, once.pairs, once.mirror, februaryInput());

    Grids twice;
    twice.pairs.AddItem({"03/02/2026", "1", "10:00", "11:00"});
    populateNewEntry(twice.day, twice.pairs, twice.mirror, februaryInput());
    // The clerk edits a little before pressing the button again.
    twice.day.setTextMatrix(4, 2, "A");
    twice.day.setTextMatrix(4, 6, "D");
    twice.mirror.AddItem({"04/02/2026", "3", "19:00", "20:00"});
    const DayCounts second =
        populateNewEntry(twice.day, twice.pairs, twice.mirror, februaryInput());

    EXPECT_EQ(allRows(twice.day), allRows(once.day));
    EXPECT_EQ(allRows(twice.mirror), allRows(once.mirror));
    EXPECT_EQ(twice.pairs.Rows(), 1);
    EXPECT_EQ(second.present, 21.5);
    EXPECT_EQ(second.leave, 5.5);
    EXPECT_EQ(second.absent, 1.0);
}

TEST(ReapplyEditedEntry, KeepsStoredPairsAndOnlyRemarksAbsentDaysAndHolidays) {
    Grids g;
    // A stored entry as loaded for edit: the 3rd was absent, the clerk recorded odd times.
    g.day.AddItem({"", "02/02/2026", "P", "07:50", "08:00", "00:10", "D"});
    g.day.AddItem({"", "03/02/2026", "A", "00:00", "08:00", "08:00", ""});
    g.day.AddItem({"", "04/02/2026", "P", "08:00", "08:00", "00:00", ""});
    g.day.AddItem({"", "05/02/2026", "P", "08:00", "08:00", "00:00", ""});
    g.mirror.AddItem({"02/02/2026", "1", "09:10", "17:00"});
    g.mirror.AddItem({"03/02/2026", "1", "09:00", "10:00"});
    g.mirror.AddItem({"04/02/2026", "1", "09:00", "17:00"});
    g.mirror.AddItem({"05/02/2026", "1", "09:00", "17:00"});

    PopulationInput in = februaryInput();
    in.start = feb(2);
    in.end = feb(5);
    in.holidays = {feb(5)};
    in.absentListItems = {feb(2), feb(3), feb(4)};
    in.absentPicked = {feb(4)};  // the 3rd no longer, the 4th now
    const DayCounts counts = reapplyEditedEntry(g.day, g.mirror, in);

    EXPECT_EQ(rowOf(g.day, 1),
              (QStringList{"", "02/02/2026", "P", "07:50", "08:00", "00:10", "D"}));
    EXPECT_EQ(rowOf(g.day, 2), (QStringList{"", "03/02/2026", "P", "00:00", "08:00", "08:00", ""}));
    EXPECT_EQ(rowOf(g.day, 3), (QStringList{"", "04/02/2026", "A", "08:00", "08:00", "00:00", ""}));
    // The holiday is scheduled at zero, as in a new entry: its work is extra time.
    EXPECT_EQ(rowOf(g.day, 4), (QStringList{"", "05/02/2026", "H", "08:00", "00:00", "08:00", ""}));
    // The day no longer absent loses its pairs; every other stored pair stays.
    ASSERT_EQ(g.mirror.Rows(), 4);
    EXPECT_EQ(rowOf(g.mirror, 1), (QStringList{"02/02/2026", "1", "09:10", "17:00"}));
    EXPECT_EQ(rowOf(g.mirror, 2), (QStringList{"04/02/2026", "1", "09:00", "17:00"}));
    EXPECT_EQ(rowOf(g.mirror, 3), (QStringList{"05/02/2026", "1", "09:00", "17:00"}));
    EXPECT_EQ(countText(counts.present), "3");
    EXPECT_EQ(countText(counts.absent), "1");
    EXPECT_EQ(countText(counts.leave), "0");
}
