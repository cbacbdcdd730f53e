// Half-day absences from the popup, the allowance/deduction claim of a day and showing a
// day's pairs.
#include <gtest/gtest.h>

#include <ostream>

#include "rules/HalfDay.h"
#include "rules/Saving.h"

void PrintTo(const QString& s, std::ostream* os) {
    *os << '"' << s.toStdString() << '"';
}

using namespace qz2::rules;
using qz2::FlexGridModel;
using qz2::TimeValue;

namespace {

void makeDayGrid(FlexGridModel& day) {
    day.setCols(7);
    day.setRows(1);
}
void makePairGrid(FlexGridModel& g) {
    g.setCols(4);
    g.setRows(1);
}
QStringList rowOf(const FlexGridModel& g, int r) {
    QStringList cells;
    for (int c = 0; c < g.cols(); ++c) cells << g.TextMatrix(r, c);
    return cells;
}

}  // namespace

// ---- The popup -----------------------------------------------------------------------------

TEST(HalfDayMenu, PresentAndHalfLeaveDaysOfferMarking) {
    EXPECT_EQ(halfDayMenuCaption("P"), QString("&Mark Half Day Absent"));
    EXPECT_EQ(halfDayMenuCaption("HL"), QString("&Mark Half Day Absent"));
}

TEST(HalfDayMenu, HalfAbsentDaysOfferUnmarking) {
    EXPECT_EQ(halfDayMenuCaption("HA"), QString("&Unmark Half Day Absent"));
    EXPECT_EQ(halfDayMenuCaption("AL"), QString("&Unmark Half Day Absent"));
}

TEST(HalfDayMenu, HolidaysFullLeavesAndAbsentDaysShowNoPopup) {
    EXPECT_FALSE(halfDayMenuCaption("H"));
    EXPECT_FALSE(halfDayMenuCaption("L"));
    EXPECT_FALSE(halfDayMenuCaption("A"));
    EXPECT_FALSE(halfDayMenuCaption(""));
}

TEST(HalfDayToggle, MarkingAndUnmarking) {
    EXPECT_EQ(halfDayToggle(kMenuMarkHalfDay, "P"), QString("HA"));
    EXPECT_EQ(halfDayToggle(kMenuMarkHalfDay, "HL"), QString("AL"));
    EXPECT_EQ(halfDayToggle(kMenuUnmarkHalfDay, "HA"), QString("P"));
    EXPECT_EQ(halfDayToggle(kMenuUnmarkHalfDay, "AL"), QString("HL"));
}

TEST(HalfDayToggle, OtherCombinationsChangeNothing) {
    EXPECT_FALSE(halfDayToggle(kMenuMarkHalfDay, "HA"));
    EXPECT_FALSE(halfDayToggle(kMenuMarkHalfDay, "L"));
    EXPECT_FALSE(halfDayToggle(kMenuUnmarkHalfDay, "P"));
    EXPECT_FALSE(halfDayToggle("Delete", "P"));
}

TEST(HalfDayQuestion, TheExactQuestions) {
    EXPECT_EQ(halfDayQuestion(kMenuMarkHalfDay, "04/03/2026"),
              QString("Do you want to mark half day leave on 04/03/2026?"));
    EXPECT_EQ(halfDayQuestion(kMenuUnmarkHalfDay, "04/03/2026"),
              QString("Do you want to unmark the half day leave for 04/03/2026?"));
    EXPECT_FALSE(halfDayQuestion("&Delete", "04/03/2026"));
}

TEST(MarkHalfDay, APresentDayBecomesHalfAbsentAndBack) {
    FlexGridModel day;
    makeDayGrid(day);
    day.AddItem({"", "02/03/2026", "P"});
    day.AddItem({"", "03/03/2026", "P"});
    DayCounts c = fnMarkHalfDay(day, 2, kMenuMarkHalfDay);
    EXPECT_EQ(day.TextMatrix(2, 2), "HA");
    EXPECT_EQ(c.present, 1.5);
    EXPECT_EQ(c.absent, 0.5);
    EXPECT_EQ(c.leave, 0.0);
    c = fnMarkHalfDay(day, 2, kMenuUnmarkHalfDay);
    EXPECT_EQ(day.TextMatrix(2, 2), "P");
    EXPECT_EQ(c.present, 2.0);
    EXPECT_EQ(c.absent, 0.0);
}

TEST(MarkHalfDay, AHalfLeaveDayBecomesHalfLeaveHalfAbsentAndBack) {
    FlexGridModel day;
    makeDayGrid(day);
    day.AddItem({"", "02/03/2026", "HL"});
    day.AddItem({"", "03/03/2026", "P"});
    day.AddItem({"", "04/03/2026", "H"});
    DayCounts c = fnMarkHalfDay(day, 1, kMenuMarkHalfDay);
    EXPECT_EQ(day.TextMatrix(1, 2), "AL");
    // P 1 + H 1 present; AL half leave, half absent.
    EXPECT_EQ(countText(c.present), "2");
    EXPECT_EQ(countText(c.leave), "0.5");
    EXPECT_EQ(countText(c.absent), "0.5");
    c = fnMarkHalfDay(day, 1, kMenuUnmarkHalfDay);
    EXPECT_EQ(day.TextMatrix(1, 2), "HL");
    EXPECT_EQ(countText(c.present), "2.5");
    EXPECT_EQ(countText(c.leave), "0.5");
    EXPECT_EQ(countText(c.absent), "0");
}

TEST(MarkHalfDay, AnUnchangedTypeStillRecounts) {
    FlexGridModel day;
    makeDayGrid(day);
    day.AddItem({"", "02/03/2026", "L"});
    day.AddItem({"", "03/03/2026", "A"});
    const DayCounts c = fnMarkHalfDay(day, 1, kMenuMarkHalfDay);
    EXPECT_EQ(day.TextMatrix(1, 2), "L");
    EXPECT_EQ(c.leave, 1.0);
    EXPECT_EQ(c.absent, 1.0);
}

// ---- The claim -----------------------------------------------------------------------------

TEST(AllowanceCaption, FromTheDaysAllowanceType) {
    EXPECT_EQ(allowanceCaption("A"), "Allowances");
    EXPECT_EQ(allowanceCaption("D"), "Deductions");
    EXPECT_EQ(allowanceCaption(""), "Allowance/Deductions");
    EXPECT_EQ(allowanceCaption("X"), "Allowance/Deductions");
}

TEST(ClaimKind, WhatATickStores) {
    EXPECT_EQ(claimKind(true, "Allowances"), QString("A"));
    EXPECT_EQ(claimKind(true, "Deductions"), QString("D"));
    EXPECT_FALSE(claimKind(true, "Allowance/Deductions"));
    EXPECT_EQ(claimKind(false, "Allowances"), QString(""));
    EXPECT_EQ(claimKind(false, "Allowance/Deductions"), QString(""));
}

TEST(SetDayAllowanceDeduction, ATickedClaimStoresAmountAndKind) {
    FlexGridModel day;
    makeDayGrid(day);
    day.AddItem({"", "02/03/2026", "P", "09:30", "08:00", "01:30", ""});
    day.AddItem({"", "03/03/2026", "P", "08:00", "08:00", "00:00", ""});
    fnSetDayAllowanceDeduction(day, "01.30", "A", QDate(2026, 3, 2), true);
    EXPECT_EQ(rowOf(day, 1), (QStringList{"", "02/03/2026", "P", "09:30", "08:00", "01.30", "A"}));
    EXPECT_EQ(rowOf(day, 2), (QStringList{"", "03/03/2026", "P", "08:00", "08:00", "00:00", ""}));
}

TEST(SetDayAllowanceDeduction, UntickingKeepsTheAmountButClaimsNothing) {
    FlexGridModel day;
    makeDayGrid(day);
    day.AddItem({"", "02/03/2026", "P", "09:30", "08:00", "01.30", "A"});
    fnSetDayAllowanceDeduction(day, "01.30", "A", QDate(2026, 3, 2), false);
    EXPECT_EQ(day.TextMatrix(1, 5), "01.30");
    EXPECT_EQ(day.TextMatrix(1, 6), "");
    EXPECT_TRUE(allowanceLinesToInsert(day, 11, 12).isEmpty());
}

TEST(SetDayAllowanceDeduction, WorkedEqualToScheduledCannotStayTicked) {
    FlexGridModel pairs, day;
    makePairGrid(pairs);
    makeDayGrid(day);
    day.AddItem({"", "02/03/2026", "P", "08:00", "08:00", "00:00", ""});
    pairs.AddItem({"02/03/2026", "1", "09:00", "17:00"});
    const DayDifference d = fnCalculateTotalHoursfortheDay(
        pairs, QDate(2026, 3, 2), TimeValue::fromHM(8, 0),
        [](QDate) { return TimeValue::fromHM(9, 0); }, 10);
    EXPECT_TRUE(d.clearTick);
    // A tick under the neutral caption stores nothing, and the tick is then cleared.
    EXPECT_FALSE(claimKind(true, d.caption));
    const auto kind = claimKind(!d.clearTick, d.caption);
    ASSERT_TRUE(kind);
    fnSetDayAllowanceDeduction(day, d.amount, *kind, QDate(2026, 3, 2), !d.clearTick);
    EXPECT_EQ(day.TextMatrix(1, 5), "00.00");
    EXPECT_EQ(day.TextMatrix(1, 6), "");
}

// ---- Showing a day ---------------------------------------------------------------------------

TEST(ShowDayPairs, AWorkingDayWithoutPairsShowsOneEmptyPairNumberedOne) {
    FlexGridModel pairs, mirror, day;
    makePairGrid(pairs);
    makePairGrid(mirror);
    makeDayGrid(day);
    day.AddItem({"", "02/03/2026", "P"});
    mirror.AddItem({"03/03/2026", "1", "09:00", "17:00"});
    pairs.AddItem({"03/03/2026", "1", "09:00", "17:00"});
    fnShowDayPairs(pairs, mirror, day, 1);
    ASSERT_EQ(pairs.Rows(), 2);
    EXPECT_EQ(rowOf(pairs, 1), (QStringList{"02/03/2026", "1", "", ""}));
}

TEST(ShowDayPairs, AHolidayOffersAPairALeaveDayDoesNot) {
    FlexGridModel pairs, mirror, day;
    makePairGrid(pairs);
    makePairGrid(mirror);
    makeDayGrid(day);
    day.AddItem({"", "01/03/2026", "H"});
    day.AddItem({"", "02/03/2026", "L"});
    fnShowDayPairs(pairs, mirror, day, 1);
    EXPECT_EQ(pairs.Rows(), 2);
    fnShowDayPairs(pairs, mirror, day, 2);
    EXPECT_EQ(pairs.Rows(), 1);
}

TEST(ShowDayPairs, TheDaysMirrorRowsInMirrorOrder) {
    FlexGridModel pairs, mirror, day;
    makePairGrid(pairs);
    makePairGrid(mirror);
    makeDayGrid(day);
    day.AddItem({"", "02/03/2026", "HL"});
    mirror.AddItem({"02/03/2026", "2", "14:00", "18:00"});
    mirror.AddItem({"03/03/2026", "1", "09:00", "17:00"});
    mirror.AddItem({"02/03/2026", "1", "09:00", "13:00"});
    fnShowDayPairs(pairs, mirror, day, 1);
    ASSERT_EQ(pairs.Rows(), 3);
    EXPECT_EQ(rowOf(pairs, 1), (QStringList{"02/03/2026", "2", "14:00", "18:00"}));
    EXPECT_EQ(rowOf(pairs, 2), (QStringList{"02/03/2026", "1", "09:00", "13:00"}));
}
