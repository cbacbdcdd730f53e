// Check-in/check-out pairs: numbering, the mirror procedures, the order checks, committing a
// cell, the Enter key, the spare last row and deleting a pair.
#include <gtest/gtest.h>

#include <ostream>

#include "rules/Pairs.h"

void PrintTo(const QString& s, std::ostream* os) {
    *os << '"' << s.toStdString() << '"';
}

using namespace qz2::rules;
using qz2::FlexGridModel;
using qz2::TimeValue;

namespace {

void makePairGrid(FlexGridModel& g) {
    g.setCols(4);
    g.setRows(1);
}

QStringList rowOf(const FlexGridModel& g, int r) {
    QStringList cells;
    for (int c = 0; c < g.cols(); ++c) cells << g.TextMatrix(r, c);
    return cells;
}

QList<QStringList> dataRows(const FlexGridModel& g) {
    QList<QStringList> rows;
    for (int r = 1; r < g.Rows(); ++r) rows << rowOf(g, r);
    return rows;
}

TimeValue hm(int h, int m) {
    return TimeValue::fromHM(h, m);
}
QDate mar(int d) {
    return QDate(2026, 3, d);
}

using Outcome = PairCellCommit::Outcome;
using Kind = EnterKeyAction::Kind;

}  // namespace

// ---- Numbering ---------------------------------------------------------------------------

TEST(RenumberGrid, WritesOneToN) {
    FlexGridModel g;
    makePairGrid(g);
    g.AddItem({"02/03/2026", "4", "09:00", "10:00"});
    g.AddItem({"02/03/2026", "", "11:00", "12:00"});
    g.AddItem({"02/03/2026", "9", "", ""});
    fnRenumberGrid(g);
    EXPECT_EQ(g.TextMatrix(1, 1), "1");
    EXPECT_EQ(g.TextMatrix(2, 1), "2");
    EXPECT_EQ(g.TextMatrix(3, 1), "3");
}

TEST(RenumbertheGridForEachDate, NumbersEachDatesRowsInRowOrder) {
    FlexGridModel m;
    makePairGrid(m);
    m.AddItem({"02/03/2026", "7", "09:00", "10:00"});
    m.AddItem({"03/03/2026", "7", "09:00", "10:00"});
    m.AddItem({"02/03/2026", "7", "11:00", "12:00"});
    m.AddItem({"02/03/2026", "1", "13:00", "14:00"});
    m.AddItem({"03/03/2026", "5", "11:00", "12:00"});
    fnRenumbertheGridForEachDate(m);
    QStringList numbers;
    for (int r = 1; r < m.Rows(); ++r) numbers << m.TextMatrix(r, 1);
    EXPECT_EQ(numbers, (QStringList{"1", "1", "2", "3", "2"}));
}

// ---- Mirror procedures --------------------------------------------------------------------

TEST(RemoveRowsFromMirrorGridOnEdit, RemovesEveryRowOfTheDate) {
    FlexGridModel m;
    makePairGrid(m);
    m.AddItem({"02/03/2026", "1", "09:00", "10:00"});
    m.AddItem({"03/03/2026", "1", "09:00", "10:00"});
    m.AddItem({"02/03/2026", "2", "11:00", "12:00"});
    fnRemoveRowsFromMirrorGridOnEdit(m, mar(2), false);
    EXPECT_EQ(dataRows(m), (QList<QStringList>{{"03/03/2026", "1", "09:00", "10:00"}}));
    fnRemoveRowsFromMirrorGridOnEdit(m, mar(3), false);
    EXPECT_EQ(m.Rows(), 1);
}

TEST(RemoveRowsFromMirrorGridOnEdit, NothingWhileTheCurrentRowIsTheHeading) {
    FlexGridModel m;
    makePairGrid(m);
    m.AddItem({"02/03/2026", "1", "09:00", "10:00"});
    fnRemoveRowsFromMirrorGridOnEdit(m, mar(2), true);
    EXPECT_EQ(m.Rows(), 2);
}

TEST(UpdateMirrorTime, WritesEveryMatchingRowOfTheKind) {
    FlexGridModel m;
    makePairGrid(m);
    m.AddItem({"02/03/2026", "1", "09:00", "10:00"});
    m.AddItem({"02/03/2026", "2", "11:00", "12:00"});
    m.AddItem({"03/03/2026", "2", "11:00", "12:00"});
    m.AddItem({"02/03/2026", "02", "11:00", "12:00"});  // a duplicate of pair 2
    fnUpdateMirrorTime(m, mar(2), 2, hm(10, 45), TimeKind::CheckIn);
    fnUpdateMirrorTime(m, mar(2), 1, hm(10, 5), TimeKind::CheckOut);
    EXPECT_EQ(dataRows(m), (QList<QStringList>{{"02/03/2026", "1", "09:00", "10:05"},
                                               {"02/03/2026", "2", "10:45", "12:00"},
                                               {"03/03/2026", "2", "11:00", "12:00"},
                                               {"02/03/2026", "02", "10:45", "12:00"}}));
}

TEST(UpdateMirrorTime, AnEmptyMirrorStaysEmpty) {
    FlexGridModel m;
    makePairGrid(m);
    fnUpdateMirrorTime(m, mar(2), 1, hm(9, 0), TimeKind::CheckIn);
    EXPECT_EQ(m.Rows(), 1);
}

TEST(AddPairToMirrorGrid, AppendsOnlyAnAbsentPair) {
    FlexGridModel m, pairs;
    makePairGrid(m);
    makePairGrid(pairs);
    m.AddItem({"02/03/2026", "1", "09:00", "13:00"});
    pairs.AddItem({"02/03/2026", "1", "09:00", "13:00"});
    pairs.AddItem({"02/03/2026", "2", "14:00", "18:00"});
    EXPECT_FALSE(fnAddPairToMirrorGrid(m, pairs, mar(2), 1, 1));
    EXPECT_TRUE(fnAddPairToMirrorGrid(m, pairs, mar(2), 2, 2));
    EXPECT_FALSE(fnAddPairToMirrorGrid(m, pairs, mar(2), 2, 2));
    EXPECT_EQ(dataRows(m), (QList<QStringList>{{"02/03/2026", "1", "09:00", "13:00"},
                                               {"02/03/2026", "2", "14:00", "18:00"}}));
}

// A period laid out without any scheduled pair still keeps the pairs the clerk types.
TEST(AddPairToMirrorGrid, AnEmptyMirrorTakesTheFirstPair) {
    FlexGridModel m, pairs;
    makePairGrid(m);
    makePairGrid(pairs);
    pairs.AddItem({"02/03/2026", "1", "09:00", "13:00"});
    EXPECT_TRUE(fnAddPairToMirrorGrid(m, pairs, mar(2), 1, 1));
    ASSERT_EQ(m.Rows(), 2);
    EXPECT_EQ(m.TextMatrix(1, 0), QStringLiteral("02/03/2026"));
    EXPECT_EQ(m.TextMatrix(1, 1), QStringLiteral("1"));
    EXPECT_EQ(m.TextMatrix(1, 2), QStringLiteral("09:00"));
    EXPECT_EQ(m.TextMatrix(1, 3), QStringLiteral("13:00"));
    EXPECT_FALSE(fnAddPairToMirrorGrid(m, pairs, mar(2), 1, 1));  // once only
}

// A check-out refused by the order check and then made valid by correcting the check-in:
// the mirror ends with the pair the grid shows, whichever cell was left last.
TEST(CommitPairCell, APairCorrectedFromItsCheckInReachesTheMirrorWhole) {
    FlexGridModel m, pairs;
    makePairGrid(m);
    makePairGrid(pairs);
    m.AddItem({"02/03/2026", "1", "09:00", "13:00"});
    pairs.AddItem({"02/03/2026", "1", "09:00", "13:00"});
    pairs.AddItem({"02/03/2026", "2", "14:00", ""});
    // 12:00 as check-out of the new pair is refused (before its check-in).
    EXPECT_EQ(fnCommitPairCell(pairs, m, 2, 3, QTime(12, 0)).outcome,
              PairCellCommit::Outcome::CheckOutBeforeCheckIn);
    EXPECT_EQ(m.Rows(), 2);
    // The clerk moves the check-in back to 11:00: the row is in order and complete.
    EXPECT_EQ(fnCommitPairCell(pairs, m, 2, 2, QTime(11, 0)).outcome,
              PairCellCommit::Outcome::BeforePreviousCheckOut);  // 11:00 < 13:00 above
    ASSERT_EQ(m.Rows(), 3);
    EXPECT_EQ(m.TextMatrix(2, 2), QStringLiteral("11:00"));
    EXPECT_EQ(m.TextMatrix(2, 3), QStringLiteral("12:00"));
    // And a scheduled pair whose check-out was refused and then fixed from the check-in
    // carries both corrected times.
    pairs.setTextMatrix(1, 3, QStringLiteral("08:00"));  // refused: before 09:00
    EXPECT_EQ(fnCommitPairCell(pairs, m, 1, 3, QTime(8, 0)).outcome,
              PairCellCommit::Outcome::CheckOutBeforeCheckIn);
    EXPECT_EQ(m.TextMatrix(1, 3), QStringLiteral("13:00"));
    EXPECT_EQ(fnCommitPairCell(pairs, m, 1, 2, QTime(7, 30)).outcome,
              PairCellCommit::Outcome::Committed);
    EXPECT_EQ(m.TextMatrix(1, 2), QStringLiteral("07:30"));
    EXPECT_EQ(m.TextMatrix(1, 3), QStringLiteral("08:00"));
}

TEST(ReplaceMirrorRowsForDate, TheDatesRowsBecomeThePairsGridsRows) {
    FlexGridModel m, pairs;
    makePairGrid(m);
    makePairGrid(pairs);
    m.AddItem({"02/03/2026", "1", "09:00", "13:00"});
    m.AddItem({"03/03/2026", "1", "08:00", "12:00"});
    m.AddItem({"02/03/2026", "2", "14:00", "18:00"});
    pairs.AddItem({"02/03/2026", "1", "10:00", "11:00"});
    pairs.AddItem({"02/03/2026", "2", "", ""});
    fnReplaceMirrorRowsForDate(m, pairs, mar(2));
    EXPECT_EQ(dataRows(m), (QList<QStringList>{{"03/03/2026", "1", "08:00", "12:00"},
                                               {"02/03/2026", "1", "10:00", "11:00"},
                                               {"02/03/2026", "2", "", ""}}));
}

// ---- Order checks -------------------------------------------------------------------------

TEST(CheckPreviousCheckOut, EarlierFailsEqualAndLaterPass) {
    EXPECT_TRUE(fnCheckPreviousCheckOut(hm(12, 59), hm(13, 0)));
    EXPECT_FALSE(fnCheckPreviousCheckOut(hm(13, 0), hm(13, 0)));
    EXPECT_FALSE(fnCheckPreviousCheckOut(hm(13, 1), hm(13, 0)));
}

TEST(SameRowOrder, CheckOutEqualToCheckInPassesEarlierFails) {
    EXPECT_FALSE(sameRowOrderFails("09:00", "09:00"));
    EXPECT_FALSE(sameRowOrderFails("09:00", "17:00"));
    EXPECT_TRUE(sameRowOrderFails("10:00", "09:59"));
}

TEST(SameRowOrder, AnEmptyCellNeverFails) {
    EXPECT_FALSE(sameRowOrderFails("", "09:00"));
    EXPECT_FALSE(sameRowOrderFails("10:00", ""));
}

TEST(PickedTime, MidnightIsNeverWritten) {
    EXPECT_FALSE(pickedTimeIsWritten(QTime(0, 0)));
    EXPECT_TRUE(pickedTimeIsWritten(QTime(0, 1)));
    EXPECT_TRUE(pickedTimeIsWritten(QTime(1, 0)));
}

// ---- Committing a cell -------------------------------------------------------------------

TEST(CommitPairCell, PickingMidnightForAnEmptyCheckInLeavesItEmpty) {
    FlexGridModel pairs, m;
    makePairGrid(pairs);
    makePairGrid(m);
    pairs.AddItem({"02/03/2026", "1", "", ""});
    m.AddItem({"02/03/2026", "1", "", ""});
    const PairCellCommit c = fnCommitPairCell(pairs, m, 1, 2, QTime(0, 0));
    EXPECT_EQ(c.outcome, Outcome::Committed);
    EXPECT_EQ(rowOf(pairs, 1), (QStringList{"02/03/2026", "1", "", ""}));
    EXPECT_EQ(rowOf(m, 1), (QStringList{"02/03/2026", "1", "", ""}));
}

TEST(CommitPairCell, ThePickedTimeGoesToTheCellAndTheMirror) {
    FlexGridModel pairs, m;
    makePairGrid(pairs);
    makePairGrid(m);
    pairs.AddItem({"02/03/2026", "1", "09:00", "13:00"});
    m.AddItem({"02/03/2026", "1", "09:00", "13:00"});
    const PairCellCommit c = fnCommitPairCell(pairs, m, 1, 3, QTime(13, 45));
    EXPECT_EQ(c.outcome, Outcome::Committed);
    EXPECT_TRUE(c.recompute);
    EXPECT_EQ(pairs.TextMatrix(1, 3), "13:45");
    EXPECT_EQ(dataRows(m), (QList<QStringList>{{"02/03/2026", "1", "09:00", "13:45"}}));
}

TEST(CommitPairCell, ACheckOutEqualToTheCheckInIsAccepted) {
    FlexGridModel pairs, m;
    makePairGrid(pairs);
    makePairGrid(m);
    pairs.AddItem({"02/03/2026", "1", "09:00", ""});
    m.AddItem({"02/03/2026", "1", "09:00", ""});
    const PairCellCommit c = fnCommitPairCell(pairs, m, 1, 3, QTime(9, 0));
    EXPECT_EQ(c.outcome, Outcome::Committed);
    EXPECT_EQ(m.TextMatrix(1, 3), "09:00");
}

TEST(CommitPairCell, ACheckInAfterTheCheckOutStaysVisibleAndIsNotCopied) {
    FlexGridModel pairs, m;
    makePairGrid(pairs);
    makePairGrid(m);
    pairs.AddItem({"02/03/2026", "1", "09:00", "13:00"});
    m.AddItem({"02/03/2026", "1", "09:00", "13:00"});
    const PairCellCommit c = fnCommitPairCell(pairs, m, 1, 2, QTime(13, 30));
    EXPECT_EQ(c.outcome, Outcome::CheckOutBeforeCheckIn);
    EXPECT_FALSE(c.recompute);
    EXPECT_EQ(pairs.TextMatrix(1, 2), "13:30");
    EXPECT_EQ(m.TextMatrix(1, 2), "09:00");
    EXPECT_EQ(kMsgCheckInAfterCheckOut,
              "The Checkin time Must be Less than or equal to Check out Time");
}

TEST(CommitPairCell, ACheckInBeforeThePreviousCheckOutFailsAfterTheMirrorIsUpdated) {
    FlexGridModel pairs, m;
    makePairGrid(pairs);
    makePairGrid(m);
    pairs.AddItem({"02/03/2026", "1", "09:00", "13:00"});
    pairs.AddItem({"02/03/2026", "2", "14:00", "18:00"});
    m.AddItem({"02/03/2026", "1", "09:00", "13:00"});
    m.AddItem({"02/03/2026", "2", "14:00", "18:00"});
    const PairCellCommit c = fnCommitPairCell(pairs, m, 2, 2, QTime(12, 30));
    EXPECT_EQ(c.outcome, Outcome::BeforePreviousCheckOut);
    EXPECT_FALSE(c.recompute);
    EXPECT_EQ(pairs.TextMatrix(2, 2), "12:30");
    EXPECT_EQ(m.TextMatrix(2, 2), "12:30");
    EXPECT_EQ(kMsgCheckInBeforePreviousCheckOut,
              " The Checkin Time Must Be Greater than Previous CheckOut Time");
}

TEST(CommitPairCell, ACheckInEqualToThePreviousCheckOutIsAccepted) {
    FlexGridModel pairs, m;
    makePairGrid(pairs);
    makePairGrid(m);
    pairs.AddItem({"02/03/2026", "1", "09:00", "13:00"});
    pairs.AddItem({"02/03/2026", "2", "14:00", "18:00"});
    m.AddItem({"02/03/2026", "1", "09:00", "13:00"});
    m.AddItem({"02/03/2026", "2", "14:00", "18:00"});
    const PairCellCommit c = fnCommitPairCell(pairs, m, 2, 2, QTime(13, 0));
    EXPECT_EQ(c.outcome, Outcome::Committed);
    EXPECT_TRUE(c.recompute);
}

TEST(CommitPairCell, ACheckOutIsNeverCheckedAgainstTheNextCheckIn) {
    FlexGridModel pairs, m;
    makePairGrid(pairs);
    makePairGrid(m);
    pairs.AddItem({"02/03/2026", "1", "09:00", "13:00"});
    pairs.AddItem({"02/03/2026", "2", "14:00", "18:00"});
    m.AddItem({"02/03/2026", "1", "09:00", "13:00"});
    m.AddItem({"02/03/2026", "2", "14:00", "18:00"});
    const PairCellCommit c = fnCommitPairCell(pairs, m, 1, 3, QTime(15, 0));
    EXPECT_EQ(c.outcome, Outcome::Committed);
    EXPECT_EQ(m.TextMatrix(1, 3), "15:00");
}

TEST(CommitPairCell, ACheckOutWithoutCheckInDoesNotPersist) {
    FlexGridModel pairs, m;
    makePairGrid(pairs);
    makePairGrid(m);
    pairs.AddItem({"02/03/2026", "1", "", ""});
    m.AddItem({"03/03/2026", "1", "09:00", "17:00"});
    const PairCellCommit c = fnCommitPairCell(pairs, m, 1, 3, QTime(17, 0));
    EXPECT_EQ(c.outcome, Outcome::Committed);
    EXPECT_EQ(rowOf(pairs, 1), (QStringList{"02/03/2026", "1", "", ""}));
    EXPECT_EQ(m.Rows(), 2);
}

TEST(CommitPairCell, ACompletedNewPairAddsExactlyOneMirrorRow) {
    FlexGridModel pairs, m;
    makePairGrid(pairs);
    makePairGrid(m);
    pairs.AddItem({"02/03/2026", "1", "09:00", "13:00"});
    pairs.AddItem({"02/03/2026", "2", "14:00", ""});
    m.AddItem({"02/03/2026", "1", "09:00", "13:00"});
    EXPECT_EQ(fnCommitPairCell(pairs, m, 2, 3, QTime(18, 0)).outcome, Outcome::Committed);
    EXPECT_EQ(dataRows(m), (QList<QStringList>{{"02/03/2026", "1", "09:00", "13:00"},
                                               {"02/03/2026", "2", "14:00", "18:00"}}));
    EXPECT_EQ(fnCommitPairCell(pairs, m, 2, 3, QTime(18, 0)).outcome, Outcome::Committed);
    EXPECT_EQ(m.Rows(), 3);
}

TEST(CommitPairCell, TheHeadingRowDoesNothing) {
    FlexGridModel pairs, m;
    makePairGrid(pairs);
    makePairGrid(m);
    pairs.AddItem({"02/03/2026", "1", "", ""});
    EXPECT_EQ(fnCommitPairCell(pairs, m, 0, 2, QTime(9, 0)).outcome, Outcome::NotARow);
    EXPECT_EQ(pairs.TextMatrix(1, 2), "");
}

// ---- Enter key ---------------------------------------------------------------------------

TEST(EnterKey, OnTheCheckOutOfRowSixNothingHappens) {
    const EnterKeyAction a =
        enterKeyAction(EnterSource::Grid, 6, 3, 7, {"02/03/2026", "6", "20:00", "21:00"});
    EXPECT_EQ(a.kind, Kind::Nothing);
    EXPECT_FALSE(a.tidyUp);
    EXPECT_EQ(a.row, 6);
    EXPECT_EQ(a.col, 3);
    const EnterKeyAction p =
        enterKeyAction(EnterSource::Picker, 6, 3, 7, {"02/03/2026", "6", "20:00", "21:00"});
    EXPECT_EQ(p.kind, Kind::Nothing);
}

TEST(EnterKey, BeforeTheCheckOutMovesRight) {
    const EnterKeyAction a =
        enterKeyAction(EnterSource::Grid, 2, 2, 4, {"02/03/2026", "2", "", ""});
    EXPECT_EQ(a.kind, Kind::MoveRight);
    EXPECT_EQ(a.row, 2);
    EXPECT_EQ(a.col, 3);
    EXPECT_TRUE(a.tidyUp);
}

TEST(EnterKey, OnACheckOutAboveTheLastRowGoesToTheNextRow) {
    const EnterKeyAction a =
        enterKeyAction(EnterSource::Grid, 1, 3, 4, {"02/03/2026", "1", "09:00", "13:00"});
    EXPECT_EQ(a.kind, Kind::NextRowCol1);
    EXPECT_EQ(a.row, 2);
    EXPECT_EQ(a.col, 1);
}

TEST(EnterKey, OnTheLastCheckOutTheGridAddsANumberedRow) {
    FlexGridModel pairs;
    makePairGrid(pairs);
    pairs.AddItem({"02/03/2026", "1", "09:00", "13:00"});
    pairs.AddItem({"02/03/2026", "2", "", ""});
    const EnterKeyAction a = enterKeyAction(EnterSource::Grid, 2, 3, 3, rowOf(pairs, 2));
    EXPECT_EQ(a.kind, Kind::AddRow);
    EXPECT_FALSE(a.sendTabFirst);
    EXPECT_EQ(a.row, 3);
    EXPECT_EQ(a.col, 1);
    EXPECT_EQ(fnAddPairRow(pairs, a), 3);
    EXPECT_EQ(rowOf(pairs, 3), (QStringList{"02/03/2026", "3", "", ""}));
}

TEST(EnterKey, ThePickerAddsOnlyWhenBothTimesAreFilledAndCommitsFirst) {
    const EnterKeyAction add =
        enterKeyAction(EnterSource::Picker, 5, 3, 6, {"02/03/2026", "5", "19:00", "20:00"});
    EXPECT_EQ(add.kind, Kind::AddRow);
    EXPECT_TRUE(add.sendTabFirst);
    EXPECT_EQ(add.slNo, "6");
    EXPECT_EQ(add.date, "02/03/2026");
    const EnterKeyAction stay =
        enterKeyAction(EnterSource::Picker, 5, 3, 6, {"02/03/2026", "5", "19:00", ""});
    EXPECT_EQ(stay.kind, Kind::Stay);
    EXPECT_TRUE(stay.tidyUp);
}

TEST(EnterKey, TheGridNeedsTheDateAndTheSerialNumber) {
    const EnterKeyAction a =
        enterKeyAction(EnterSource::Grid, 1, 3, 2, {"", "1", "09:00", "13:00"});
    EXPECT_EQ(a.kind, Kind::Stay);
}

TEST(EnterKey, NoSeventhPairCanBeAddedByKeyboard) {
    FlexGridModel pairs;
    makePairGrid(pairs);
    for (int i = 1; i <= 6; ++i)
        pairs.AddItem({"02/03/2026", QString::number(i),
                       QStringLiteral("%1:00").arg(8 + i, 2, 10, QLatin1Char('0')),
                       QStringLiteral("%1:30").arg(8 + i, 2, 10, QLatin1Char('0'))});
    // Walking the last row by Enter never gets past its check-out.
    int row = 6, col = 1;
    for (int step = 0; step < 5; ++step) {
        const EnterKeyAction a =
            enterKeyAction(EnterSource::Grid, row, col, pairs.Rows(), rowOf(pairs, row));
        ASSERT_NE(a.kind, Kind::AddRow);
        row = a.row;
        col = a.col;
    }
    EXPECT_EQ(row, 6);
    EXPECT_EQ(col, 3);
    EXPECT_EQ(pairs.Rows(), 7);
}

// ---- The spare last row -------------------------------------------------------------------

TEST(TidyLastPairRow, ASpareLastRowGoesWhenTheCursorIsElsewhere) {
    FlexGridModel pairs;
    makePairGrid(pairs);
    pairs.AddItem({"02/03/2026", "1", "09:00", "13:00"});
    pairs.AddItem({"02/03/2026", "2", " ", ""});
    EXPECT_FALSE(fnTidyLastPairRow(pairs, 2));  // the cursor is on it
    EXPECT_EQ(pairs.Rows(), 3);
    EXPECT_TRUE(fnTidyLastPairRow(pairs, 1));
    EXPECT_EQ(pairs.Rows(), 2);
}

TEST(TidyLastPairRow, TheOnlyRowAndAUsedRowStay) {
    FlexGridModel pairs;
    makePairGrid(pairs);
    pairs.AddItem({"02/03/2026", "1", "", ""});
    EXPECT_FALSE(lastPairRowIsSpare(pairs, 0));
    pairs.setTextMatrix(1, 2, "09:00");
    pairs.AddItem({"02/03/2026", "2", "", "18:00"});
    EXPECT_FALSE(fnTidyLastPairRow(pairs, 1));
    EXPECT_EQ(pairs.Rows(), 3);
}

TEST(RemoveBlankTrailingPairRows, DropsEveryBlankRowAtTheEndButTheFirst) {
    FlexGridModel pairs;
    makePairGrid(pairs);
    pairs.AddItem({"02/03/2026", "1", "", ""});
    pairs.AddItem({"02/03/2026", "2", "", ""});
    pairs.AddItem({"02/03/2026", "3", "", " "});
    removeBlankTrailingPairRows(pairs);
    EXPECT_EQ(pairs.Rows(), 2);
}

// ---- Deleting a pair ------------------------------------------------------------------------

TEST(DeletePair, TheMiddleOfThreeLeavesOneAndTwoInBothGrids) {
    FlexGridModel pairs, m;
    makePairGrid(pairs);
    makePairGrid(m);
    const QList<QStringList> day{{"02/03/2026", "1", "08:00", "10:00"},
                                 {"02/03/2026", "2", "11:00", "12:00"},
                                 {"02/03/2026", "3", "13:00", "17:00"}};
    m.AddItem({"01/03/2026", "1", "07:00", "08:00"});
    for (const QStringList& r : day) {
        pairs.AddItem(r);
        m.AddItem(r);
    }
    m.AddItem({"03/03/2026", "1", "09:00", "17:00"});

    EXPECT_FALSE(deletePair(pairs, m, 2, mar(2)));
    EXPECT_EQ(dataRows(pairs), (QList<QStringList>{{"02/03/2026", "1", "08:00", "10:00"},
                                                   {"02/03/2026", "2", "13:00", "17:00"}}));
    EXPECT_EQ(dataRows(m), (QList<QStringList>{{"01/03/2026", "1", "07:00", "08:00"},
                                               {"03/03/2026", "1", "09:00", "17:00"},
                                               {"02/03/2026", "1", "08:00", "10:00"},
                                               {"02/03/2026", "2", "13:00", "17:00"}}));
}

TEST(DeletePair, TheOnlyPairLeavesOneEmptyRowNumberedOne) {
    FlexGridModel pairs, m;
    makePairGrid(pairs);
    makePairGrid(m);
    pairs.AddItem({"02/03/2026", "1", "09:00", "17:00"});
    m.AddItem({"02/03/2026", "1", "09:00", "17:00"});
    EXPECT_TRUE(deletePair(pairs, m, 1, mar(2)));
    EXPECT_EQ(dataRows(pairs), (QList<QStringList>{{"02/03/2026", "1", "", ""}}));
    // Clearing the check-in clears its check-out too, in the mirror as well.
    EXPECT_EQ(dataRows(m), (QList<QStringList>{{"02/03/2026", "1", "", ""}}));
}
