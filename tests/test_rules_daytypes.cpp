// Day types: holidays, approved leaves, absent picks, present for the rest, the weights of
// every code, the counts the form shows and the list of days offered for absence.
#include <gtest/gtest.h>

#include <ostream>

#include "rules/DayTypes.h"

void PrintTo(const QString& s, std::ostream* os) {
    *os << '"' << s.toStdString() << '"';
}

using namespace qz2::rules;
using qz2::FlexGridModel;

namespace {

QDate mar(int day) {
    return QDate(2026, 3, day);
}

// A day grid with one untyped row per day from the 1st to the last given day of March 2026.
void marchDays(FlexGridModel& day, int lastDay) {
    day.setCols(7);
    day.setRows(1);
    for (int d = 1; d <= lastDay; ++d)
        day.AddItem({"", QStringLiteral("%1/03/2026").arg(d, 2, 10, QLatin1Char('0'))});
}

QStringList types(const FlexGridModel& day) {
    QStringList t;
    for (int r = 1; r < day.Rows(); ++r) t << day.TextMatrix(r, 2);
    return t;
}

}  // namespace

// ---- Leaves ----------------------------------------------------------------------------

TEST(ClipLeaveLine, ALeaveAroundThePeriodIsClippedToIt) {
    const auto clipped =
        clipLeaveLine(QDate(2026, 2, 20), QDate(2026, 4, 2), "S", 42.0, mar(1), mar(5));
    ASSERT_TRUE(clipped.has_value());
    EXPECT_EQ(clipped->clippedFrom, mar(1));
    EXPECT_EQ(clipped->clippedTo, mar(5));
    EXPECT_EQ(clipped->status, "S");
    EXPECT_EQ(clipped->noOfDays, 42.0);
}

TEST(ClipLeaveLine, ALeaveOutsideThePeriodIsDropped) {
    EXPECT_FALSE(clipLeaveLine(QDate(2026, 2, 20), QDate(2026, 2, 28), "S", 9.0, mar(1), mar(5)));
    EXPECT_FALSE(clipLeaveLine(mar(6), mar(9), "S", 4.0, mar(1), mar(5)));
    EXPECT_TRUE(clipLeaveLine(mar(5), mar(9), "S", 5.0, mar(1), mar(5)));
}

TEST(MarkApprovedLeaves, ALeaveFromBeforeTheStartToAfterTheEndMarksEveryDay) {
    FlexGridModel day;
    marchDays(day, 5);
    const auto line =
        clipLeaveLine(QDate(2026, 2, 20), QDate(2026, 4, 2), "S", 42.0, mar(1), mar(5));
    ASSERT_TRUE(line);
    fnMarkApprovedLeaves(day, {*line});
    EXPECT_EQ(types(day), (QStringList{"L", "L", "L", "L", "L"}));
}

TEST(MarkApprovedLeaves, AHalfDayLineMarksHLAndCountsHalfLeaveHalfPresent) {
    FlexGridModel day;
    marchDays(day, 1);
    fnMarkApprovedLeaves(day, {LeaveRow{mar(1), mar(1), "S", 0.5}});
    EXPECT_EQ(types(day), (QStringList{"HL"}));
    const DayCounts c = fnCountDayTypes(day);
    EXPECT_EQ(c.leave, 0.5);
    EXPECT_EQ(c.present, 0.5);
    EXPECT_EQ(c.absent, 0.0);
    EXPECT_EQ(countText(c.leave), "0.5");
    EXPECT_EQ(countText(c.present), "0.5");
}

TEST(MarkApprovedLeaves, OnlyAnUpperCaseSMarks) {
    FlexGridModel day;
    marchDays(day, 3);
    fnMarkApprovedLeaves(day,
                         {LeaveRow{mar(1), mar(1), "s", 1.0}, LeaveRow{mar(2), mar(2), "R", 1.0},
                          LeaveRow{mar(3), mar(3), "", 1.0}});
    EXPECT_EQ(types(day), (QStringList{"", "", ""}));
}

TEST(MarkApprovedLeaves, ALaterLineOverwritesAnEarlierOne) {
    FlexGridModel day;
    marchDays(day, 3);
    fnMarkApprovedLeaves(day,
                         {LeaveRow{mar(1), mar(3), "S", 3.0}, LeaveRow{mar(2), mar(2), "S", 0.5}});
    EXPECT_EQ(types(day), (QStringList{"L", "HL", "L"}));
}

TEST(MarkApprovedLeaves, AnyOtherDayCountIsAFullLeave) {
    FlexGridModel day;
    marchDays(day, 2);
    fnMarkApprovedLeaves(day,
                         {LeaveRow{mar(1), mar(1), "S", 1.5}, LeaveRow{mar(2), mar(2), "S", 0.0}});
    EXPECT_EQ(types(day), (QStringList{"L", "L"}));
}

// ---- Holidays and the order of holidays and leaves --------------------------------------

TEST(MarkHolidays, MarksTheHolidayRowsOnly) {
    FlexGridModel day;
    marchDays(day, 4);
    fnMarkHolidays(day, {mar(2), mar(4), QDate(2026, 4, 1)});
    EXPECT_EQ(types(day), (QStringList{"", "H", "", "H"}));
}

TEST(HolidaysAndLeaves, AHolidayInsideALeaveIsHWhenLeavesAreMarkedFirst) {
    FlexGridModel day;
    marchDays(day, 3);
    const QList<LeaveRow> leave{LeaveRow{mar(1), mar(3), "S", 3.0}};
    // "ConsiderLeaveHolidays" on: leaves first, holidays afterwards.
    fnMarkApprovedLeaves(day, leave);
    fnMarkHolidays(day, {mar(2)});
    EXPECT_EQ(types(day), (QStringList{"L", "H", "L"}));
}

TEST(HolidaysAndLeaves, AHolidayInsideALeaveIsLWhenHolidaysAreMarkedFirst) {
    FlexGridModel day;
    marchDays(day, 3);
    // "ConsiderLeaveHolidays" off: holidays first, leaves afterwards.
    fnMarkHolidays(day, {mar(2)});
    fnMarkApprovedLeaves(day, {LeaveRow{mar(1), mar(3), "S", 3.0}});
    EXPECT_EQ(types(day), (QStringList{"L", "L", "L"}));
}

// ---- Absent picks and present days -------------------------------------------------------

TEST(MarkAbsentDays, PickedDaysBecomeAbsentOthersStayInANewEntry) {
    FlexGridModel day;
    marchDays(day, 4);
    day.setTextMatrix(4, 2, "A");
    int calls = 0;
    fnMarkAbsentDays(day, {mar(2)}, {mar(1), mar(2), mar(3), mar(4)}, false,
                     [&calls](QDate) { ++calls; });
    EXPECT_EQ(types(day), (QStringList{"", "A", "", "A"}));
    EXPECT_EQ(calls, 0);
}

TEST(MarkAbsentDays, InAnEditAnUnpickedAbsentDayGoesBackToPresentAndLosesItsPairs) {
    FlexGridModel day;
    marchDays(day, 4);
    day.setTextMatrix(1, 2, "A");
    day.setTextMatrix(3, 2, "L");
    day.setTextMatrix(4, 2, "A");
    QList<QDate> unmarked;
    fnMarkAbsentDays(day, {mar(4)}, {mar(1), mar(2), mar(3), mar(4)}, true,
                     [&unmarked](QDate d) { unmarked << d; });
    EXPECT_EQ(types(day), (QStringList{"P", "", "L", "A"}));
    EXPECT_EQ(unmarked, (QList<QDate>{mar(1)}));
}

TEST(MarkAbsentDays, AnItemWithoutADayRowIsSkipped) {
    FlexGridModel day;
    marchDays(day, 2);
    fnMarkAbsentDays(day, {QDate(2026, 2, 28), mar(2)}, {QDate(2026, 2, 28), mar(1), mar(2)}, true,
                     {});
    EXPECT_EQ(types(day), (QStringList{"", "A"}));
    EXPECT_EQ(day.Rows(), 3);
}

TEST(MarkRemainingPresent, OnlyEmptyTypesBecomePresent) {
    FlexGridModel day;
    marchDays(day, 4);
    day.setTextMatrix(2, 2, "H");
    day.setTextMatrix(3, 2, " ");
    fnMarkRemainingPresent(day);
    EXPECT_EQ(types(day), (QStringList{"P", "H", " ", "P"}));
}

// ---- Weights and counts ------------------------------------------------------------------

TEST(DayTypeWeights, EachCodeCountsAsTheTableSays) {
    struct Row {
        const char* code;
        double present, leave, absent, holiday;
    };
    const Row table[] = {{"P", 1, 0, 0, 0},      {"A", 0, 0, 1, 0},        {"L", 0, 1, 0, 0},
                         {"HL", 0.5, 0.5, 0, 0}, {"AL", 0, 0.5, 0.5, 0},   {"HA", 0.5, 0, 0.5, 0},
                         {"H", 0, 0, 0, 1},      {" HA ", 0.5, 0, 0.5, 0}, {"p", 0, 0, 0, 0},
                         {"X", 0, 0, 0, 0},      {"", 0, 0, 0, 0}};
    for (const Row& r : table) {
        SCOPED_TRACE(r.code);
        const DayTypeWeights w = dayTypeWeights(QString::fromLatin1(r.code));
        EXPECT_EQ(w.present, r.present);
        EXPECT_EQ(w.leave, r.leave);
        EXPECT_EQ(w.absent, r.absent);
        EXPECT_EQ(w.holiday, r.holiday);
    }
}

TEST(CountDayTypes, HolidaysCountIntoThePresentTotalOnly) {
    FlexGridModel day;
    marchDays(day, 3);
    day.setTextMatrix(1, 2, "H");
    day.setTextMatrix(2, 2, "H");
    day.setTextMatrix(3, 2, "P");
    const DayCounts c = fnCountDayTypes(day);
    EXPECT_EQ(c.present, 3.0);
    EXPECT_EQ(c.holiday, 2.0);
    EXPECT_EQ(c.leave, 0.0);
    EXPECT_EQ(c.absent, 0.0);
}

TEST(CountDayTypes, MixedCodesAddUpByTheirWeights) {
    FlexGridModel day;
    marchDays(day, 9);
    const QStringList codes{"P", "A", "L", "HL", "AL", "HA", "H", "??", "P "};
    for (int r = 1; r <= 9; ++r) day.setTextMatrix(r, 2, codes[r - 1]);
    const DayCounts c = fnCountDayTypes(day);
    // present: P 1 + HL 0.5 + HA 0.5 + "P " 1 + holiday 1; leave: L 1 + HL 0.5 + AL 0.5;
    // absent: A 1 + AL 0.5 + HA 0.5.
    EXPECT_EQ(c.present, 4.0);
    EXPECT_EQ(c.leave, 2.0);
    EXPECT_EQ(c.absent, 2.0);
}

TEST(CountText, PlainDecimalText) {
    EXPECT_EQ(countText(2.5), "2.5");
    EXPECT_EQ(countText(3.0), "3");
    EXPECT_EQ(countText(0.0), "0");
    EXPECT_EQ(countText(30.5), "30.5");
}

// ---- The absent-day list -----------------------------------------------------------------

TEST(PopoulateList, TheDaysThatAreNotHolidaysAsYearMonthDay) {
    EXPECT_EQ(fnPopoulateList(QDate(2026, 2, 27), mar(2), {QDate(2026, 2, 28)}),
              (QStringList{"2026/02/27", "2026/03/01", "2026/03/02"}));
}

TEST(PopoulateList, WithoutHolidaysEveryDayIsListed) {
    EXPECT_EQ(fnPopoulateList(mar(1), mar(3), {}),
              (QStringList{"2026/03/01", "2026/03/02", "2026/03/03"}));
}

TEST(PopoulateList, APeriodOfHolidaysOnlyGivesAnEmptyList) {
    EXPECT_TRUE(fnPopoulateList(mar(1), mar(2), {mar(1), mar(2)}).isEmpty());
}
