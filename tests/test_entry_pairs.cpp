// Check-in/check-out editing on the entry form, driven through the real widgets offscreen:
// the floating time picker, leave cell before enter cell, the order checks and their
// messages, the mirror grid, the day's hours, the Enter key, the mouse and the Delete popup.

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QHeaderView>
#include <QLineEdit>
#include <QMenu>
#include <QPainter>
#include <QScrollBar>
#include <QTest>
#include <QTimeEdit>
#include <QTimer>
#include <functional>
#include <memory>
#include <ostream>

#include "TestSupport.h"
#include "entry/frmEmployeeDailyAttendance.h"
#include "rules/Hours.h"
#include "rules/Pairs.h"
#include "rules/Population.h"
#include "shared/BasAttendence.h"
#include "shared/FlexGrid.h"
#include "shared/MsgBox.h"

using namespace qz2;
using qz2test::TestDb;

// Readable failures for texts and lists of texts.
namespace {

// Monday 2 November 2026; the week's working days are rows 1..5 of the day grid.
const QDate kMonday(2026, 11, 2);

const QString kOrderInRow =
    QStringLiteral("The Checkin time Must be Less than or equal to Check out Time");
const QString kOrderAcrossRows =
    QStringLiteral(" The Checkin Time Must Be Greater than Previous CheckOut Time");

using qz2test::PopupWatch;

// Chooses the named item of an open popup the way the keyboard would.
void choose(QMenu* menu, const char* actionName) {
    for (QAction* a : menu->actions()) {
        if (a->objectName() == QLatin1String(actionName) && a->isVisible() && a->isEnabled()) {
            menu->setActiveAction(a);
            QTest::keyClick(menu, Qt::Key_Return);
            return;
        }
    }
    ADD_FAILURE() << "the popup has no visible item " << actionName;
    menu->close();
}

QStringList visibleItems(QMenu* menu) {
    QStringList out;
    for (QAction* a : menu->actions())
        if (a->isVisible()) out << a->objectName();
    return out;
}

struct PairsFixture : ::testing::Test {
    void SetUp() override {
        gstrEntryMode = QStringLiteral("N");
        msgbox_testing::clear();
        msgbox_testing::setAutoAnswer(true);
        // Weekdays 09:00-13:00 and 14:00-18:00 under setting 1; ten grace minutes.
        t.exec("insert into pCalendarWTSheader(cwtsCompanyID,cwtsid) values(1,1)");
        for (int day = 2; day <= 6; ++day)
            t.exec(QStringLiteral("insert into pCalendarWorkTimeSettings values(1,1,%1,'09:00:00',"
                                  "'13:00:00','14:00:00','18:00:00',NULL,NULL,NULL,NULL)")
                       .arg(day));
        form = std::make_unique<frmEmployeeDailyAttendance>();
        form->Form_Load();
        form->lngWorkTimeSettingID = 1;
        form->intGraceTime = 10;
        msgbox_testing::clear();
        form->show();
        QApplication::setActiveWindow(form.get());
        ASSERT_TRUE(QTest::qWaitForWindowActive(form.get()));
        week();
    }
    // After a real message box the form is the active window again, as on a desktop.
    void reactivate() {
        form->activateWindow();
        QApplication::setActiveWindow(form.get());
        ASSERT_TRUE(QTest::qWaitForWindowActive(form.get()));
    }
    void TearDown() override {
        form.reset();
        msgbox_testing::setAutoAnswer(false);
    }

    // Monday to Friday, present, eight scheduled hours; Monday holds 09:00-13:00 and
    // 14:00-17:00 in the mirror, Tuesday 09:00-13:00.
    void week() {
        FlexGridModel& days = *form->mfgAttendance->flexModel();
        rules::fnBuildDayRows(days, kMonday, kMonday.addDays(4));
        for (int r = 1; r < days.Rows(); ++r) {
            days.setTextMatrix(r, 2, QStringLiteral("P"));
            days.setTextMatrix(r, 4, QStringLiteral("08:00"));
        }
        mirror(kMonday, 1, "09:00", "13:00");
        mirror(kMonday, 2, "14:00", "17:00");
        mirror(kMonday.addDays(1), 1, "09:00", "13:00");
        form->fnCalculateTotalHours();
    }
    void mirror(QDate d, int sl, const char* in, const char* out) {
        form->mfgMirrorGrid->AddItem(
            {dateText(d), QString::number(sl), QString::fromLatin1(in), QString::fromLatin1(out)});
    }
    // Shows day row `row` as a click on its date would.
    void showDay(int row) {
        QTest::mouseClick(dayGrid()->viewport(), Qt::LeftButton, {}, centre(dayGrid(), row, 1));
        ASSERT_EQ(dayGrid()->Row(), row);
    }

    FlexGrid* dayGrid() const { return form->mfgAttendance; }
    FlexGrid* grid() const { return form->mfgCheckinCheckOut; }
    QTimeEdit* picker() const { return form->dtpCheckTime; }
    static QPoint centre(FlexGrid* g, int row, int col) {
        return g->visualRect(g->model()->index(row - 1, col)).center();
    }
    void click(int row, int col, Qt::MouseButton button = Qt::LeftButton) {
        QTest::mouseClick(grid()->viewport(), button, {}, centre(grid(), row, col));
    }
    // The pairs grid as "sl in-out" lines.
    static QStringList pairsOf(const FlexGrid* g) {
        QStringList out;
        for (int r = 1; r < g->Rows(); ++r)
            out << g->TextMatrix(r, 1) + QLatin1Char(' ') + g->TextMatrix(r, 2) + QLatin1Char('-') +
                       g->TextMatrix(r, 3);
        return out;
    }
    QStringList pairs() const { return pairsOf(grid()); }
    // The mirror's rows of one day, in mirror order.
    QStringList mirrorOf(QDate d) const {
        QStringList out;
        const FlexGrid* m = form->mfgMirrorGrid;
        for (int r = 1; r < m->Rows(); ++r)
            if (m->TextMatrix(r, 0) == dateText(d))
                out << m->TextMatrix(r, 1) + QLatin1Char(' ') + m->TextMatrix(r, 2) +
                           QLatin1Char('-') + m->TextMatrix(r, 3);
        return out;
    }
    QString worked(int row) const { return dayGrid()->TextMatrix(row, 3); }
    QStringList messages() const {
        QStringList out;
        for (const ShownMessage& m : msgbox_testing::shown()) out << m.text;
        return out;
    }
    // Types a time into the picker as the clerk would: hours, then minutes.
    void type(const char* hhmm) { QTest::keyClicks(picker(), QString::fromLatin1(hhmm)); }
    void key(Qt::Key k, Qt::KeyboardModifiers mods = {}) {
        QWidget* focus = QApplication::focusWidget();
        ASSERT_NE(focus, nullptr);
        QTest::keyClick(focus, k, mods);
    }
    // The picker's rectangle in the pairs grid viewport's coordinates.
    QRect pickerInViewport() const {
        return QRect(grid()->viewport()->mapFromGlobal(picker()->mapToGlobal(QPoint(0, 0))),
                     picker()->size());
    }
    QRect cellRect(int row, int col) const {
        return grid()->visualRect(grid()->model()->index(row - 1, col));
    }

    TestDb t;
    std::unique_ptr<frmEmployeeDailyAttendance> form;
};

}  // namespace

// ---- The picker over the cell ----------------------------------------------------------------

TEST_F(PairsFixture, ClickingATimeCellFloatsThePickerExactlyOverIt) {
    showDay(1);
    EXPECT_EQ(pairs(), QStringList({"1 09:00-13:00", "2 14:00-17:00"}));
    EXPECT_TRUE(picker()->isHidden());
    click(2, 3);
    ASSERT_TRUE(picker()->isVisible());
    EXPECT_EQ(grid()->Row(), 2);
    EXPECT_EQ(grid()->Col(), 3);
    EXPECT_EQ(pickerInViewport(), cellRect(2, 3));
    EXPECT_EQ(picker()->time(), QTime(17, 0));
    EXPECT_EQ(QApplication::focusWidget(), picker());
    // The date and serial number columns take no picker.
    click(1, 1);
    EXPECT_TRUE(picker()->isHidden());
    EXPECT_EQ(grid()->Row(), 1);
    EXPECT_EQ(grid()->Col(), 1);
}

TEST_F(PairsFixture, AnEmptyCellOpensThePickerAtMidnight) {
    showDay(3);  // Wednesday: no pairs yet, one empty pair offered
    EXPECT_EQ(pairs(), QStringList({"1 -"}));
    EXPECT_EQ(grid()->TextMatrix(1, 0), dateText(kMonday.addDays(2)));
    click(1, 2);
    ASSERT_TRUE(picker()->isVisible());
    EXPECT_EQ(picker()->time(), QTime(0, 0));
    EXPECT_EQ(picker()->displayFormat(), QStringLiteral("HH:mm"));
}

TEST_F(PairsFixture, ThePickerFollowsTheGridWhenItScrollsAndResizes) {
    showDay(1);
    // Six pairs and a short grid, so that it scrolls.
    for (int sl = 3; sl <= 6; ++sl)
        grid()->AddItem({dateText(kMonday), QString::number(sl),
                         QStringLiteral("18:0") + QString::number(sl),
                         QStringLiteral("18:1") + QString::number(sl)});
    grid()->setMaximumHeight(grid()->horizontalHeader()->height() + 3 * grid()->rowHeight(0));
    QApplication::processEvents();
    grid()->setCurrentIndex(grid()->model()->index(5, 2));
    ASSERT_TRUE(picker()->isVisible());
    EXPECT_EQ(pickerInViewport(), cellRect(6, 2));
    ASSERT_GT(grid()->verticalScrollBar()->maximum(), 0) << "the grid must scroll for this test";
    EXPECT_TRUE(picker()->mask().isEmpty());  // fully in sight: nothing masked
    grid()->verticalScrollBar()->setValue(0);
    QApplication::processEvents();
    EXPECT_EQ(pickerInViewport(), cellRect(6, 2));
    // Its cell is now below the viewport: nothing of the picker shows over the controls
    // beneath the grid.
    ASSERT_FALSE(grid()->viewport()->rect().intersects(cellRect(6, 2)));
    EXPECT_FALSE(picker()->mask().isEmpty());
    EXPECT_FALSE(picker()->mask().intersects(picker()->rect()));
    grid()->verticalScrollBar()->setValue(grid()->verticalScrollBar()->maximum());
    QApplication::processEvents();
    EXPECT_EQ(pickerInViewport(), cellRect(6, 2));
    EXPECT_TRUE(picker()->mask().isEmpty());
    // Wider check-in column: the picker widens with it.
    grid()->horizontalHeader()->resizeSection(2, 140);
    QApplication::processEvents();
    EXPECT_EQ(pickerInViewport(), cellRect(6, 2));
    EXPECT_EQ(picker()->width(), cellRect(6, 2).width());
    EXPECT_GE(picker()->width(), 138);
    // A taller grid: it resizes, stops scrolling and the picker stays over its cell.
    grid()->setMaximumHeight(QWIDGETSIZE_MAX);
    form->resize(form->width() + 120, form->height() + 100);
    QApplication::processEvents();
    EXPECT_EQ(pickerInViewport(), cellRect(6, 2));
}

// ---- Leave cell before enter cell ------------------------------------------------------------

TEST_F(PairsFixture, KeyboardMouseAndCodeEachCommitTheLeftCellBeforeEnteringTheNext) {
    showDay(1);
    // Mouse: 17:00 becomes 17:30 and moving to another cell commits it.
    click(2, 3);
    picker()->setTime(QTime(17, 30));
    click(1, 2);
    EXPECT_EQ(grid()->TextMatrix(2, 3), QStringLiteral("17:30"));
    EXPECT_EQ(mirrorOf(kMonday), QStringList({"1 09:00-13:00", "2 14:00-17:30"}));
    EXPECT_EQ(worked(1), QStringLiteral("07:30"));
    EXPECT_EQ(picker()->time(), QTime(9, 0));  // the picker now holds the entered cell's time

    // Keyboard: Enter in the picker moves right, committing the check-in.
    picker()->setTime(QTime(8, 30));
    key(Qt::Key_Return);
    EXPECT_EQ(grid()->Col(), 3);
    EXPECT_EQ(grid()->TextMatrix(1, 2), QStringLiteral("08:30"));
    EXPECT_EQ(mirrorOf(kMonday).first(), QStringLiteral("1 08:30-13:00"));
    EXPECT_EQ(worked(1), QStringLiteral("08:00"));
    EXPECT_EQ(picker()->time(), QTime(13, 0));

    // Code: setCurrentIndex commits the check-out being edited.
    picker()->setTime(QTime(12, 45));
    grid()->setCurrentIndex(grid()->model()->index(1, 2));
    EXPECT_EQ(grid()->TextMatrix(1, 3), QStringLiteral("12:45"));
    EXPECT_EQ(mirrorOf(kMonday), QStringList({"1 08:30-12:45", "2 14:00-17:30"}));
    EXPECT_EQ(worked(1), QStringLiteral("07:45"));
    EXPECT_EQ(picker()->time(), QTime(14, 0));
    EXPECT_EQ(pickerInViewport(), cellRect(2, 2));
    // The caption and amount follow the day: 07:45 against 08:00.
    EXPECT_EQ(form->chkAllowanceDeductions->text(), QStringLiteral("Deductions"));
    EXPECT_EQ(form->txtAllowanceDeductions->text(), QStringLiteral("00.15"));
    EXPECT_TRUE(messages().isEmpty());
}

TEST_F(PairsFixture, ArrowKeysOnTheGridLeaveAndEnterToo) {
    showDay(1);
    click(1, 1);
    ASSERT_EQ(QApplication::focusWidget(), grid());
    key(Qt::Key_Right);
    EXPECT_EQ(grid()->Col(), 2);
    ASSERT_TRUE(picker()->isVisible());
    EXPECT_EQ(QApplication::focusWidget(), picker());
    picker()->setTime(QTime(9, 5));
    // Tab from the picker commits and moves on past the grid.
    key(Qt::Key_Tab);
    EXPECT_TRUE(picker()->isHidden());
    EXPECT_EQ(grid()->TextMatrix(1, 2), QStringLiteral("09:05"));
    EXPECT_EQ(QApplication::focusWidget(), form->chkAllowanceDeductions);
    // 09:05 is inside the grace window of the 09:00 start: still eight hours... minus an hour
    // of the second pair: 09:00-13:00 plus 14:00-17:00.
    EXPECT_EQ(worked(1), QStringLiteral("07:00"));
}

// ---- A whole day by keyboard -------------------------------------------------------------------

TEST_F(PairsFixture, AWholeDayOfThreePairsWithoutTheMouse) {
    showDay(3);  // Wednesday: one empty pair offered
    ASSERT_EQ(pairs(), QStringList({"1 -"}));
    dayGrid()->setFocus(Qt::OtherFocusReason);
    // Tab from the day grid past the three totals into the pairs grid: the first check-in
    // is open in the picker.
    for (int i = 0; i < 4 && QApplication::focusWidget() != picker(); ++i) key(Qt::Key_Tab);
    ASSERT_EQ(QApplication::focusWidget(), picker());
    EXPECT_EQ(grid()->Row(), 1);
    EXPECT_EQ(grid()->Col(), 2);
    EXPECT_EQ(pickerInViewport(), cellRect(1, 2));

    type("0900");
    EXPECT_EQ(picker()->time(), QTime(9, 0));
    key(Qt::Key_Return);  // to the check-out
    EXPECT_EQ(grid()->Col(), 3);
    EXPECT_EQ(grid()->TextMatrix(1, 2), QStringLiteral("09:00"));
    type("1300");
    // Commits the check-out, adds the second pair and goes straight to its check-in: the
    // next time typed is the check-in's.
    key(Qt::Key_Return);
    EXPECT_EQ(pairs(), QStringList({"1 09:00-13:00", "2 -"}));
    EXPECT_EQ(mirrorOf(kMonday.addDays(2)), QStringList({"1 09:00-13:00"}));
    EXPECT_EQ(worked(3), QStringLiteral("04:00"));
    EXPECT_EQ(grid()->Row(), 2);
    EXPECT_EQ(grid()->Col(), 2);
    ASSERT_EQ(QApplication::focusWidget(), picker());
    type("1400");
    key(Qt::Key_Return);
    // The minutes can be spun as well: 18:00 then one minute down and up again.
    type("1800");
    key(Qt::Key_Return);
    EXPECT_EQ(pairs(), QStringList({"1 09:00-13:00", "2 14:00-18:00", "3 -"}));
    EXPECT_EQ(grid()->Row(), 3);
    EXPECT_EQ(grid()->Col(), 2);
    type("1830");
    key(Qt::Key_Return);
    type("2000");
    key(Qt::Key_Up);  // the minutes section is the current one: 20:01
    key(Qt::Key_Down);
    key(Qt::Key_Return);
    EXPECT_EQ(pairs(), QStringList({"1 09:00-13:00", "2 14:00-18:00", "3 18:30-20:00", "4 -"}));
    EXPECT_EQ(mirrorOf(kMonday.addDays(2)),
              QStringList({"1 09:00-13:00", "2 14:00-18:00", "3 18:30-20:00"}));
    EXPECT_EQ(worked(3), QStringLiteral("09:30"));
    EXPECT_EQ(form->chkAllowanceDeductions->text(), QStringLiteral("Allowances"));
    EXPECT_EQ(form->txtAllowanceDeductions->text(), QStringLiteral("01.30"));
    // The fourth pair's check-in is open; Esc closes the picker and Up leaves the spare
    // row, which goes as soon as the clerk moves.
    EXPECT_EQ(QApplication::focusWidget(), picker());
    key(Qt::Key_Escape);
    key(Qt::Key_Up);
    EXPECT_EQ(pairs(), QStringList({"1 09:00-13:00", "2 14:00-18:00", "3 18:30-20:00"}));
    // Tab leaves the grid for the claim.
    key(Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), form->chkAllowanceDeductions);
    EXPECT_TRUE(messages().isEmpty());
}

// ---- Edge cases of the leave-cell steps --------------------------------------------------------

TEST_F(PairsFixture, PickingMidnightForAnEmptyCheckInLeavesItEmpty) {
    showDay(3);
    click(1, 2);
    ASSERT_EQ(picker()->time(), QTime(0, 0));
    key(Qt::Key_Return);  // 00:00 is never written
    EXPECT_EQ(grid()->Col(), 3);
    EXPECT_EQ(grid()->TextMatrix(1, 2), QString());
    // A check-out picked for it does not stay either: the pair stays incomplete and empty.
    picker()->setTime(QTime(17, 0));
    key(Qt::Key_Return);
    EXPECT_EQ(pairs(), QStringList({"1 -"}));
    EXPECT_EQ(mirrorOf(kMonday.addDays(2)), QStringList());
    EXPECT_EQ(worked(3), QStringLiteral("00:00"));
    EXPECT_TRUE(messages().isEmpty());
}

TEST_F(PairsFixture, ACheckOutWithoutACheckInDoesNotSurviveLeavingIt) {
    showDay(3);
    click(1, 3);
    picker()->setTime(QTime(17, 0));
    click(1, 1);
    EXPECT_EQ(grid()->TextMatrix(1, 3), QString());
    EXPECT_EQ(mirrorOf(kMonday.addDays(2)), QStringList());
}

TEST_F(PairsFixture, EqualTimesPassBothOrderChecks) {
    showDay(1);
    // Check-out equal to its check-in.
    click(1, 3);
    picker()->setTime(QTime(9, 0));
    click(2, 2);
    EXPECT_EQ(grid()->TextMatrix(1, 3), QStringLiteral("09:00"));
    // Check-in equal to the previous check-out.
    picker()->setTime(QTime(9, 0));
    click(2, 3);
    EXPECT_EQ(grid()->TextMatrix(2, 2), QStringLiteral("09:00"));
    EXPECT_TRUE(messages().isEmpty());
    EXPECT_EQ(mirrorOf(kMonday), QStringList({"1 09:00-09:00", "2 09:00-17:00"}));
    EXPECT_EQ(worked(1), QStringLiteral("08:00"));
}

TEST_F(PairsFixture, ACheckInAfterItsCheckOutIsShownButNotCommittedUntilCorrected) {
    showDay(1);
    click(1, 2);
    picker()->setTime(QTime(13, 30));
    QString text;
    qz2test::answerNextMessageBox(QMessageBox::Ok, &text);
    msgbox_testing::setAutoAnswer(false);
    click(2, 2);
    msgbox_testing::setAutoAnswer(true);
    EXPECT_EQ(text, kOrderInRow);
    ASSERT_EQ(msgbox_testing::shown().size(), 1);
    EXPECT_EQ(msgbox_testing::shown()[0].title, QStringLiteral("Attendance Test"));
    EXPECT_EQ(msgbox_testing::shown()[0].buttons, MsgButtons::Ok);
    // The invalid time stays visible; the mirror and the hours keep the previous state.
    EXPECT_EQ(grid()->TextMatrix(1, 2), QStringLiteral("13:30"));
    EXPECT_EQ(mirrorOf(kMonday), QStringList({"1 09:00-13:00", "2 14:00-17:00"}));
    EXPECT_EQ(worked(1), QStringLiteral("07:00"));
    // The move itself happened: the clerk is on the next check-in.
    EXPECT_EQ(grid()->Row(), 2);
    EXPECT_EQ(grid()->Col(), 2);

    // The correction: back to the check-in, 08:45, leave.
    click(1, 2);
    EXPECT_EQ(picker()->time(), QTime(13, 30));
    picker()->setTime(QTime(8, 45));
    click(1, 3);
    EXPECT_EQ(grid()->TextMatrix(1, 2), QStringLiteral("08:45"));
    EXPECT_EQ(mirrorOf(kMonday), QStringList({"1 08:45-13:00", "2 14:00-17:00"}));
    EXPECT_EQ(worked(1), QStringLiteral("07:15"));
    EXPECT_EQ(msgbox_testing::shown().size(), 1);
}

TEST_F(PairsFixture, ACheckInBeforeThePreviousCheckOutSendsTheClerkBackToIt) {
    showDay(1);
    click(2, 2);
    picker()->setTime(QTime(12, 30));
    QString text;
    qz2test::answerNextMessageBox(QMessageBox::Ok, &text);
    msgbox_testing::setAutoAnswer(false);
    key(Qt::Key_Return);  // would move to the check-out
    msgbox_testing::setAutoAnswer(true);
    reactivate();
    EXPECT_EQ(text, kOrderAcrossRows);
    // Back on the check-in, the picker open over it with the offending time.
    EXPECT_EQ(grid()->Row(), 2);
    EXPECT_EQ(grid()->Col(), 2);
    ASSERT_TRUE(picker()->isVisible());
    EXPECT_EQ(pickerInViewport(), cellRect(2, 2));
    EXPECT_EQ(picker()->time(), QTime(12, 30));
    EXPECT_EQ(QApplication::focusWidget(), picker());
    // The time is in the grid and, as the steps run, already in the mirror; the hours are not
    // recomputed.
    EXPECT_EQ(grid()->TextMatrix(2, 2), QStringLiteral("12:30"));
    EXPECT_EQ(mirrorOf(kMonday), QStringList({"1 09:00-13:00", "2 12:30-17:00"}));
    EXPECT_EQ(worked(1), QStringLiteral("07:00"));

    // Corrected: 13:15 passes and the hours follow.
    picker()->setTime(QTime(13, 15));
    key(Qt::Key_Return);
    EXPECT_EQ(grid()->Col(), 3);
    EXPECT_EQ(mirrorOf(kMonday), QStringList({"1 09:00-13:00", "2 13:15-17:00"}));
    EXPECT_EQ(worked(1), QStringLiteral("07:45"));
    EXPECT_EQ(messages(), QStringList({kOrderAcrossRows}));
}

TEST_F(PairsFixture, AFailedCheckByMouseKeepsTheClerkOnTheCheckIn) {
    showDay(1);
    click(2, 2);
    picker()->setTime(QTime(10, 0));
    click(1, 3);  // the click is not carried out: the check-in must be corrected first
    EXPECT_EQ(messages(), QStringList({kOrderAcrossRows}));
    EXPECT_EQ(grid()->Row(), 2);
    EXPECT_EQ(grid()->Col(), 2);
    EXPECT_TRUE(picker()->isVisible());
    // A check-out is never checked against the next check-in.
    click(1, 3);
    EXPECT_EQ(messages().size(), 2);
    picker()->setTime(QTime(14, 0));
    click(1, 3);
    ASSERT_EQ(grid()->Col(), 3);
    picker()->setTime(QTime(15, 0));
    click(2, 3);
    EXPECT_EQ(messages().size(), 2);
    EXPECT_EQ(grid()->TextMatrix(1, 3), QStringLiteral("15:00"));
    EXPECT_EQ(mirrorOf(kMonday), QStringList({"1 09:00-15:00", "2 14:00-17:00"}));
}

TEST_F(PairsFixture, ACompletedNewPairReachesTheMirrorOnceOnly) {
    showDay(2);  // Tuesday: one pair
    click(1, 3);
    key(Qt::Key_Return);  // 13:00 stays; a second pair is added, its check-in open
    ASSERT_EQ(pairs(), QStringList({"1 09:00-13:00", "2 -"}));
    EXPECT_EQ(mirrorOf(kMonday.addDays(1)), QStringList({"1 09:00-13:00"}));
    ASSERT_EQ(QApplication::focusWidget(), picker());
    picker()->setTime(QTime(14, 0));
    key(Qt::Key_Return);
    // Only the check-in: the pair is not in the mirror yet.
    EXPECT_EQ(mirrorOf(kMonday.addDays(1)), QStringList({"1 09:00-13:00"}));
    picker()->setTime(QTime(16, 0));
    const int before = form->mfgMirrorGrid->Rows();
    click(2, 1);  // leaving the check-out of the completed pair
    EXPECT_EQ(form->mfgMirrorGrid->Rows(), before + 1);
    EXPECT_EQ(mirrorOf(kMonday.addDays(1)), QStringList({"1 09:00-13:00", "2 14:00-16:00"}));
    click(2, 3);
    click(2, 1);  // leaving it again adds nothing
    EXPECT_EQ(form->mfgMirrorGrid->Rows(), before + 1);
    EXPECT_EQ(worked(2), QStringLiteral("06:00"));
}

// ---- The Enter key ---------------------------------------------------------------------------

TEST_F(PairsFixture, NoSeventhPairByKeyboard) {
    showDay(3);
    click(1, 2);
    for (int sl = 1; sl <= 6; ++sl) {
        // Enter on a check-out left the picker on the next pair's check-in.
        ASSERT_EQ(grid()->Row(), sl);
        ASSERT_EQ(grid()->Col(), 2);
        picker()->setTime(QTime(7 + 2 * sl, 0));
        key(Qt::Key_Return);
        picker()->setTime(QTime(8 + 2 * sl, 0));
        key(Qt::Key_Return);
    }
    // Enter on the sixth check-out did nothing: no seventh row, the picker still open.
    EXPECT_EQ(grid()->Rows(), 7);
    EXPECT_EQ(grid()->Row(), 6);
    EXPECT_EQ(grid()->Col(), 3);
    EXPECT_TRUE(picker()->isVisible());
    key(Qt::Key_Return);
    EXPECT_EQ(grid()->Rows(), 7);
    // Nor from the grid itself.
    click(6, 3);
    grid()->setFocus();
    key(Qt::Key_Return);
    EXPECT_EQ(grid()->Rows(), 7);
    // The sixth check-out was committed by leaving it.
    EXPECT_EQ(mirrorOf(kMonday.addDays(2)).size(), 6);
    EXPECT_EQ(mirrorOf(kMonday.addDays(2)).last(), QStringLiteral("6 19:00-20:00"));
    EXPECT_EQ(worked(3), QStringLiteral("06:00"));
}

TEST_F(PairsFixture, EnterOnTheGridWalksTheCellsAndAddsAPair) {
    showDay(2);
    click(1, 1);
    ASSERT_EQ(QApplication::focusWidget(), grid());
    key(Qt::Key_Return);
    EXPECT_EQ(grid()->Col(), 2);
    EXPECT_EQ(QApplication::focusWidget(), picker());
    // Back on the grid at the check-out (the picker committed by a click on the serial number).
    click(1, 3);
    grid()->setFocus();
    key(Qt::Key_Return);  // last row: a pair is added, the grid's condition is date and number
    EXPECT_EQ(pairs(), QStringList({"1 09:00-13:00", "2 -"}));
    EXPECT_EQ(grid()->TextMatrix(2, 0), dateText(kMonday.addDays(1)));
    // On the new pair's check-in, with the picker open for it.
    EXPECT_EQ(grid()->Row(), 2);
    EXPECT_EQ(grid()->Col(), 2);
    EXPECT_EQ(QApplication::focusWidget(), picker());
    // Any key that leaves the spare row tidies it away.
    key(Qt::Key_Escape);
    ASSERT_EQ(QApplication::focusWidget(), grid());
    key(Qt::Key_Up);
    EXPECT_EQ(pairs(), QStringList({"1 09:00-13:00"}));
}

// ---- The mouse and the Delete popup ------------------------------------------------------------

namespace {
// A day of three pairs on Thursday, shown.
void threePairs(PairsFixture& f) {
    const QDate thu = kMonday.addDays(3);
    f.mirror(thu, 1, "08:00", "10:00");
    f.mirror(thu, 2, "10:30", "12:00");
    f.mirror(thu, 3, "13:00", "17:00");
    f.form->fnCalculateTotalHours();
    f.showDay(4);
}
}  // namespace

TEST_F(PairsFixture, DeletingTheMiddlePairOfThreeRenumbersBothGrids) {
    threePairs(*this);
    const QDate thu = kMonday.addDays(3);
    ASSERT_EQ(worked(4), QStringLiteral("07:30"));
    QStringList items;
    const PopupWatch watch([&](QMenu* menu) {
        items = visibleItems(menu);
        EXPECT_EQ(menu->objectName(), QStringLiteral("mnuPopUp"));
        // The whole row under the mouse is selected while the popup is open.
        EXPECT_EQ(grid()->Row(), 2);
        EXPECT_EQ(grid()->Col(), 0);
        EXPECT_EQ(grid()->selectionModel()->selectedIndexes().size(), 4);
        choose(menu, "mnuDelete");
    });
    click(2, 2, Qt::RightButton);
    ASSERT_TRUE(watch.seen());
    EXPECT_EQ(items, QStringList({"mnuDelete"}));
    EXPECT_EQ(pairs(), QStringList({"1 08:00-10:00", "2 13:00-17:00"}));
    EXPECT_EQ(mirrorOf(thu), QStringList({"1 08:00-10:00", "2 13:00-17:00"}));
    EXPECT_EQ(worked(4), QStringLiteral("06:00"));
    // No question was asked and nothing is left current.
    EXPECT_TRUE(messages().isEmpty());
    EXPECT_EQ(grid()->Row(), 0);
    EXPECT_TRUE(grid()->selectionModel()->selectedIndexes().isEmpty());
    // The other days' pairs are untouched.
    EXPECT_EQ(mirrorOf(kMonday), QStringList({"1 09:00-13:00", "2 14:00-17:00"}));
}

TEST_F(PairsFixture, RightClickOnThePickerOffersDeleteForItsRow) {
    threePairs(*this);
    click(3, 3);
    ASSERT_TRUE(picker()->isVisible());
    picker()->setTime(QTime(16, 30));
    const PopupWatch watch([&](QMenu* menu) { choose(menu, "mnuDelete"); });
    QTest::mouseClick(picker(), Qt::RightButton, {}, QPoint(4, picker()->height() / 2));
    ASSERT_TRUE(watch.seen());
    EXPECT_TRUE(picker()->isHidden());
    EXPECT_EQ(pairs(), QStringList({"1 08:00-10:00", "2 10:30-12:00"}));
    EXPECT_EQ(mirrorOf(kMonday.addDays(3)), QStringList({"1 08:00-10:00", "2 10:30-12:00"}));
    EXPECT_EQ(worked(4), QStringLiteral("03:30"));
}

TEST_F(PairsFixture, DeletingTheOnlyPairLeavesOneEmptyPairNumberedOne) {
    showDay(2);
    const PopupWatch watch([&](QMenu* menu) { choose(menu, "mnuDelete"); });
    click(1, 2, Qt::RightButton);
    ASSERT_TRUE(watch.seen());
    EXPECT_EQ(pairs(), QStringList({"1 -"}));
    EXPECT_EQ(mirrorOf(kMonday.addDays(1)), QStringList({"1 -"}));
    EXPECT_EQ(worked(2), QStringLiteral("00:00"));
    EXPECT_EQ(grid()->Row(), 0);
    // Deleting the pair cleared its check-in and its check-out together.
    EXPECT_EQ(grid()->TextMatrix(1, 3), QString());
}

TEST_F(PairsFixture, RightClickOnADayWithoutPairRowsShowsNothing) {
    dayGrid()->setTextMatrix(5, 2, QStringLiteral("L"));
    showDay(5);
    ASSERT_EQ(grid()->Rows(), 1);
    const PopupWatch watch([&](QMenu* menu) { menu->close(); });
    QTest::mouseClick(grid()->viewport(), Qt::RightButton, {}, QPoint(20, 20));
    QTest::qWait(100);
    EXPECT_FALSE(watch.seen());
}

TEST_F(PairsFixture, ALeftClickClearsTheSelectionAndDropsBlankTrailingRows) {
    showDay(2);
    click(1, 3);
    key(Qt::Key_Return);  // a spare second pair
    ASSERT_EQ(pairs(), QStringList({"1 09:00-13:00", "2 -"}));
    // A click on the empty area below the rows: nothing current, the spare pair gone.
    QTest::mouseClick(grid()->viewport(), Qt::LeftButton, {},
                      QPoint(10, grid()->viewport()->height() - 4));
    EXPECT_EQ(grid()->Row(), 0);
    EXPECT_EQ(grid()->Col(), 0);
    EXPECT_TRUE(grid()->selectionModel()->selectedIndexes().isEmpty());
    EXPECT_EQ(pairs(), QStringList({"1 09:00-13:00"}));
}

TEST_F(PairsFixture, AWholeDayWithTheMouseAlone) {
    showDay(3);
    // First pair in the offered row: the picker's arrows set the time, a click elsewhere
    // commits it.
    click(1, 2);
    ASSERT_TRUE(picker()->isVisible());
    picker()->setCurrentSection(QDateTimeEdit::HourSection);
    for (int i = 0; i < 9; ++i) picker()->stepUp();
    click(1, 3);
    EXPECT_EQ(grid()->TextMatrix(1, 2), QStringLiteral("09:00"));
    picker()->setTime(QTime(13, 0));
    click(1, 1);
    EXPECT_EQ(mirrorOf(kMonday.addDays(2)), QStringList({"1 09:00-13:00"}));
    // A double click below the last pair adds the next one and opens its check-in.
    QTest::mouseDClick(grid()->viewport(), Qt::LeftButton, {},
                       QPoint(10, grid()->viewport()->height() - 4));
    EXPECT_EQ(pairs(), QStringList({"1 09:00-13:00", "2 -"}));
    EXPECT_EQ(grid()->Row(), 2);
    EXPECT_EQ(grid()->Col(), 2);
    ASSERT_TRUE(picker()->isVisible());
    picker()->setTime(QTime(14, 0));
    click(2, 3);
    picker()->setTime(QTime(17, 30));
    // Clicking the day grid commits the time held in the picker.
    QTest::mouseClick(dayGrid()->viewport(), Qt::LeftButton, {}, centre(dayGrid(), 3, 3));
    EXPECT_TRUE(picker()->isHidden());
    EXPECT_EQ(mirrorOf(kMonday.addDays(2)), QStringList({"1 09:00-13:00", "2 14:00-17:30"}));
    EXPECT_EQ(worked(3), QStringLiteral("07:30"));
    // Nothing is added below an incomplete pair.
    click(2, 3);
    picker()->setTime(QTime(0, 0));
    QTest::mouseClick(dayGrid()->viewport(), Qt::LeftButton, {}, centre(dayGrid(), 3, 3));
    EXPECT_EQ(pairs(), QStringList({"1 09:00-13:00", "2 14:00-17:30"}));
    EXPECT_TRUE(messages().isEmpty());
}

TEST_F(PairsFixture, ThePickerCommitsWhenTheFocusGoesElsewhereOnTheForm) {
    showDay(1);
    click(1, 3);
    picker()->setTime(QTime(13, 30));
    form->txtRemarks->setFocus(Qt::MouseFocusReason);
    EXPECT_TRUE(picker()->isHidden());
    EXPECT_EQ(grid()->TextMatrix(1, 3), QStringLiteral("13:30"));
    EXPECT_EQ(mirrorOf(kMonday).first(), QStringLiteral("1 09:00-13:30"));
    EXPECT_EQ(worked(1), QStringLiteral("07:30"));
    // Another window taking the focus commits nothing.
    click(2, 2);
    picker()->setTime(QTime(14, 15));
    QWidget other;
    other.show();
    QApplication::setActiveWindow(&other);
    QTest::qWait(20);
    EXPECT_EQ(grid()->TextMatrix(2, 2), QStringLiteral("14:00"));
}

// ---- The grid procedures
// -------------------------------------------------------------------------

TEST_F(PairsFixture, RenumberingAndRemovingMirrorRows) {
    FlexGrid* m = form->mfgMirrorGrid;
    // A stored entry's pairs come in without their numbers in order.
    m->setTextMatrix(2, 1, QStringLiteral("7"));
    m->setTextMatrix(3, 1, QStringLiteral("4"));
    mirror(kMonday, 9, "18:00", "19:00");
    form->fnRenumbertheGridForEachDate();
    EXPECT_EQ(mirrorOf(kMonday), QStringList({"1 09:00-13:00", "2 14:00-17:00", "3 18:00-19:00"}));
    EXPECT_EQ(mirrorOf(kMonday.addDays(1)), QStringList({"1 09:00-13:00"}));

    showDay(1);
    grid()->setTextMatrix(1, 1, QStringLiteral("5"));
    grid()->setTextMatrix(2, 1, QStringLiteral("5"));
    form->fnRenumberGrid(grid());
    EXPECT_EQ(grid()->TextMatrix(1, 1), QStringLiteral("1"));
    EXPECT_EQ(grid()->TextMatrix(3, 1), QStringLiteral("3"));

    form->fnRemoveRowsFromMirrorGridOnEdit(kMonday);
    EXPECT_EQ(mirrorOf(kMonday), QStringList());
    EXPECT_EQ(mirrorOf(kMonday.addDays(1)), QStringList({"1 09:00-13:00"}));
    form->fnRemoveRowsFromMirrorGridOnEdit(kMonday.addDays(1));
    EXPECT_EQ(m->Rows(), 1);
    form->fnRemoveRowsFromMirrorGridOnEdit(kMonday.addDays(1));  // nothing left: nothing done
    EXPECT_EQ(m->Rows(), 1);
}

TEST_F(PairsFixture, ClearingTheSelectionLeavesNoDataCellCurrent) {
    showDay(1);
    click(2, 3);
    picker()->setTime(QTime(17, 45));
    form->fnClearGridSelection(grid());
    EXPECT_EQ(grid()->Row(), 0);
    EXPECT_EQ(grid()->Col(), 0);
    EXPECT_FALSE(grid()->currentIndex().isValid());
    EXPECT_TRUE(grid()->selectionModel()->selectedIndexes().isEmpty());
    // The time being picked was committed on the way.
    EXPECT_TRUE(picker()->isHidden());
    EXPECT_EQ(mirrorOf(kMonday).last(), QStringLiteral("2 14:00-17:45"));
}

// ---- The claim follows its day ----------------------------------------------------------------

TEST_F(PairsFixture, AClaimWhoseDifferenceChangesSideWithTheSameSizeBecomesADeduction) {
    showDay(1);  // Monday: 09:00-13:00 and 14:00-17:00 against eight hours
    click(2, 3);
    type("1900");  // nine hours worked: one hour over
    key(Qt::Key_Tab);
    EXPECT_EQ(form->chkAllowanceDeductions->text(), QStringLiteral("Allowances"));
    EXPECT_EQ(form->txtAllowanceDeductions->text(), QStringLiteral("01.00"));
    form->chkAllowanceDeductions->click();
    EXPECT_EQ(dayGrid()->TextMatrix(1, 6), QStringLiteral("A"));
    EXPECT_EQ(dayGrid()->TextMatrix(1, 5), QStringLiteral("01.00"));
    // Back to 17:00: one hour short, the same "01.00" in the amount box.
    click(2, 3);
    type("1700");
    key(Qt::Key_Tab);
    EXPECT_EQ(form->chkAllowanceDeductions->text(), QStringLiteral("Deductions"));
    EXPECT_EQ(form->txtAllowanceDeductions->text(), QStringLiteral("01.00"));
    EXPECT_TRUE(form->chkAllowanceDeductions->isChecked());
    EXPECT_EQ(dayGrid()->TextMatrix(1, 6), QStringLiteral("D"));
    EXPECT_EQ(dayGrid()->TextMatrix(1, 5), QStringLiteral("01.00"));
    // Worked equal to scheduled: nothing is claimed any more.
    click(2, 3);
    type("1800");
    key(Qt::Key_Tab);
    EXPECT_FALSE(form->chkAllowanceDeductions->isChecked());
    EXPECT_EQ(dayGrid()->TextMatrix(1, 6), QString());
    EXPECT_TRUE(messages().isEmpty());
}

TEST_F(PairsFixture, ATypedAmountStandsUntilTheDaysTimesChange) {
    showDay(1);
    form->chkAllowanceDeductions->click();  // claims the hour short
    EXPECT_EQ(form->chkAllowanceDeductions->text(), QStringLiteral("Deductions"));
    QLineEdit* amount = form->txtAllowanceDeductions;
    amount->setFocus(Qt::OtherFocusReason);
    amount->selectAll();
    QTest::keyClicks(amount, QStringLiteral("00.30"));
    EXPECT_EQ(dayGrid()->TextMatrix(1, 5), QStringLiteral("00.30"));
    EXPECT_EQ(dayGrid()->TextMatrix(1, 6), QStringLiteral("D"));
    // Walking through the day's times without changing them keeps the typed amount.
    click(1, 2);
    key(Qt::Key_Return);
    key(Qt::Key_Return);
    key(Qt::Key_Tab);
    EXPECT_EQ(amount->text(), QStringLiteral("00.30"));
    EXPECT_EQ(dayGrid()->TextMatrix(1, 5), QStringLiteral("00.30"));
    EXPECT_EQ(dayGrid()->TextMatrix(1, 6), QStringLiteral("D"));
    // A changed time works the amount out afresh.
    click(2, 3);
    type("1715");
    key(Qt::Key_Tab);
    EXPECT_EQ(amount->text(), QStringLiteral("00.45"));
    EXPECT_EQ(dayGrid()->TextMatrix(1, 5), QStringLiteral("00.45"));
    EXPECT_EQ(dayGrid()->TextMatrix(1, 6), QStringLiteral("D"));
}

// ---- Amounts and times are valid or refused ---------------------------------------------------

TEST_F(PairsFixture, TheAmountBoxTakesOnlyHoursAndMinutesOfADayAndNormalisesThem) {
    showDay(1);
    form->chkAllowanceDeductions->click();
    QLineEdit* amount = form->txtAllowanceDeductions;
    const auto typeAmount = [amount](const char* text) {
        amount->setFocus(Qt::OtherFocusReason);
        amount->selectAll();
        QTest::keyClicks(amount, QString::fromLatin1(text));
    };
    // "25.00": the 5 is refused at the key, so the clerk sees "2.00".
    typeAmount("25.00");
    EXPECT_EQ(amount->text(), QStringLiteral("2.00"));
    EXPECT_EQ(dayGrid()->TextMatrix(1, 5), QStringLiteral("2.00"));
    // Leaving the box writes it the way it is stored.
    form->txtRemarks->setFocus(Qt::OtherFocusReason);
    EXPECT_EQ(amount->text(), QStringLiteral("02.00"));
    // Minutes past 59 cannot be typed; an unfinished amount is not claimed and is put back.
    typeAmount("12:75");
    EXPECT_EQ(amount->text(), QStringLiteral("12:5"));
    EXPECT_EQ(dayGrid()->TextMatrix(1, 5), QStringLiteral("02.00"));
    form->txtRemarks->setFocus(Qt::OtherFocusReason);
    EXPECT_EQ(amount->text(), QStringLiteral("02.00"));
    typeAmount("1:30");
    form->txtRemarks->setFocus(Qt::OtherFocusReason);
    EXPECT_EQ(amount->text(), QStringLiteral("01.30"));
    EXPECT_EQ(dayGrid()->TextMatrix(1, 6), QStringLiteral("D"));
    // Emptied and left: the last amount comes back and the claim stays saveable.
    typeAmount("");
    amount->clear();
    form->txtRemarks->setFocus(Qt::OtherFocusReason);
    EXPECT_EQ(amount->text(), QStringLiteral("01.30"));
    EXPECT_TRUE(rules::normaliseClaimAmount(dayGrid()->TextMatrix(1, 5)).has_value());
}

TEST_F(PairsFixture, ATypedTimeThatIsNoTimeOfDayIsRefusedWithAMessage) {
    showDay(1);
    const QString refused = rules::kMsgNotATimeOfDay;
    for (const char* typed : {"25", "12:75", "2400", "2599"}) {
        SCOPED_TRACE(typed);
        msgbox_testing::clear();
        click(2, 3);  // 17:00
        ASSERT_EQ(QApplication::focusWidget(), picker());
        // The clerk stops at the message.
        const QString keys = QString::fromLatin1(typed);
        for (const QChar c : keys) {
            QTest::keyClicks(picker(), QString(c));
            if (!messages().isEmpty()) break;
        }
        EXPECT_EQ(messages(), QStringList{refused});
        // The cell's own time is back in the picker, and stays when the cell is left.
        EXPECT_EQ(picker()->time(), QTime(17, 0));
        key(Qt::Key_Tab);
        EXPECT_EQ(grid()->TextMatrix(2, 3), QStringLiteral("17:00"));
        EXPECT_EQ(mirrorOf(kMonday), QStringList({"1 09:00-13:00", "2 14:00-17:00"}));
    }
    // Real times go in as typed, without a word.
    msgbox_testing::clear();
    click(2, 3);
    type("1830");
    key(Qt::Key_Tab);
    EXPECT_EQ(grid()->TextMatrix(2, 3), QStringLiteral("18:30"));
    click(2, 2);
    type("9:30");
    EXPECT_EQ(picker()->time(), QTime(9, 30));
    EXPECT_TRUE(messages().isEmpty());
}
