// The day grid of the entry form, driven through the real widgets offscreen: showing a day,
// the half-day popup and its questions, the allowance/deduction check box and amount, the
// "Hours" column, the Enter key and clearing the form.

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QColor>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>
#include <QTest>
#include <QTimeEdit>
#include <QTimer>
#include <functional>
#include <memory>
#include <ostream>

#include "TestSupport.h"
#include "entry/frmEmployeeDailyAttendance.h"
#include "rules/Population.h"
#include "shared/BasAttendence.h"
#include "shared/FlexGrid.h"
#include "shared/MsgBox.h"

using namespace qz2;
using qz2test::TestDb;

namespace {

// Monday 2 November 2026 to Sunday 8 November: four present days, a half-day leave on
// Friday, a holiday on Saturday and a full leave on Sunday.
const QDate kMonday(2026, 11, 2);

const QString kMark = QStringLiteral("&Mark Half Day Absent");
const QString kUnmark = QStringLiteral("&Unmark Half Day Absent");

using qz2test::PopupWatch;

QAction* visibleAction(QMenu* menu, const char* name) {
    for (QAction* a : menu->actions())
        if (a->objectName() == QLatin1String(name) && a->isVisible()) return a;
    return nullptr;
}

// Chooses the named item of an open popup the way the keyboard would.
void choose(QMenu* menu, const char* name) {
    QAction* a = visibleAction(menu, name);
    if (!a || !a->isEnabled()) {
        ADD_FAILURE() << "the popup has no usable item " << name;
        menu->close();
        return;
    }
    menu->setActiveAction(a);
    QTest::keyClick(menu, Qt::Key_Return);
}

struct DayFixture : ::testing::Test {
    void SetUp() override {
        gstrEntryMode = QStringLiteral("N");
        msgbox_testing::clear();
        msgbox_testing::setAutoAnswer(true);
        form = std::make_unique<frmEmployeeDailyAttendance>();
        form->Form_Load();
        msgbox_testing::clear();
        form->show();
        QApplication::setActiveWindow(form.get());
        ASSERT_TRUE(QTest::qWaitForWindowActive(form.get()));
        week();
    }
    void TearDown() override {
        form.reset();
        msgbox_testing::setAutoAnswer(false);
    }
    void week() {
        FlexGridModel& days = *form->mfgAttendance->flexModel();
        rules::fnBuildDayRows(days, kMonday, kMonday.addDays(6));
        const char* types[] = {"P", "P", "P", "P", "HL", "H", "L"};
        for (int r = 1; r < days.Rows(); ++r) {
            days.setTextMatrix(r, 2, QString::fromLatin1(types[r - 1]));
            days.setTextMatrix(r, 4, r == 6 ? QStringLiteral("00:00") : QStringLiteral("08:00"));
        }
        mirror(kMonday, 1, "09:00", "13:00");
        mirror(kMonday, 2, "14:00", "17:00");
        mirror(kMonday.addDays(1), 1, "09:00", "13:00");
        mirror(kMonday.addDays(1), 2, "14:00", "18:30");
        mirror(kMonday.addDays(2), 1, "09:00", "13:00");
        mirror(kMonday.addDays(2), 2, "14:00", "18:00");
        mirror(kMonday.addDays(4), 1, "09:00", "13:00");
        form->fnCalculateTotalHours();
        form->fnFindtheAdditionalWorkingHours();
        form->fnCountDayTypes();
    }
    void mirror(QDate d, int sl, const char* in, const char* out) {
        form->mfgMirrorGrid->AddItem(
            {dateText(d), QString::number(sl), QString::fromLatin1(in), QString::fromLatin1(out)});
    }
    FlexGrid* days() const { return form->mfgAttendance; }
    FlexGrid* grid() const { return form->mfgCheckinCheckOut; }
    QCheckBox* chk() const { return form->chkAllowanceDeductions; }
    QLineEdit* amount() const { return form->txtAllowanceDeductions; }
    static QPoint centre(FlexGrid* g, int row, int col) {
        return g->visualRect(g->model()->index(row - 1, col)).center();
    }
    void showDay(int row) {
        QTest::mouseClick(days()->viewport(), Qt::LeftButton, {}, centre(days(), row, 1));
        ASSERT_EQ(days()->Row(), row);
    }
    void rightClickDay(int row) {
        QTest::mouseClick(days()->viewport(), Qt::RightButton, {}, centre(days(), row, 2));
    }
    void clickPair(int row, int col) {
        QTest::mouseClick(grid()->viewport(), Qt::LeftButton, {}, centre(grid(), row, col));
    }
    QString type(int row) const { return days()->TextMatrix(row, 2); }
    QString hours(int row) const { return days()->TextMatrix(row, 5); }
    QString claim(int row) const { return days()->TextMatrix(row, 6); }
    QStringList counts() const {
        return {form->txtNoPresent->text(), form->txtNoLeave->text(), form->txtNoAbsent->text()};
    }
    QStringList pairs() const {
        QStringList out;
        for (int r = 1; r < grid()->Rows(); ++r)
            out << grid()->TextMatrix(r, 1) + QLatin1Char(' ') + grid()->TextMatrix(r, 2) +
                       QLatin1Char('-') + grid()->TextMatrix(r, 3);
        return out;
    }
    // Right-clicks the day and chooses the half-day item; returns the caption it had.
    QString halfDay(int row) {
        QString caption;
        const PopupWatch watch([&](QMenu* menu) {
            EXPECT_EQ(visibleAction(menu, "mnuDelete"), nullptr);
            if (QAction* a = visibleAction(menu, "mnuHalfDay")) caption = a->text();
            choose(menu, "mnuHalfDay");
        });
        rightClickDay(row);
        EXPECT_TRUE(watch.seen()) << "no popup for row " << row;
        return caption;
    }

    TestDb t;
    std::unique_ptr<frmEmployeeDailyAttendance> form;
};

}  // namespace

// ---- Showing a day -------------------------------------------------------------------------

TEST_F(DayFixture, SelectingADayShowsItsPairsScheduleAndDifference) {
    ASSERT_EQ(counts(), QStringList({"5.5", "1.5", "0"}));
    showDay(2);
    EXPECT_EQ(pairs(), QStringList({"1 09:00-13:00", "2 14:00-18:30"}));
    EXPECT_EQ(days()->TextMatrix(2, 3), QStringLiteral("08:30"));
    EXPECT_EQ(hours(2), QStringLiteral("00:30"));
    EXPECT_EQ(amount()->text(), QStringLiteral("00:30"));
    EXPECT_EQ(chk()->text(), QStringLiteral("Allowance/Deductions"));
    EXPECT_FALSE(chk()->isChecked());
    EXPECT_EQ(form->dtCurrentDaySchedule.format(u"HH:mm"), QStringLiteral("08:00"));
    // Moving down by keyboard shows the next day.
    days()->setFocus();
    QTest::keyClick(days(), Qt::Key_Down);
    EXPECT_EQ(days()->Row(), 3);
    EXPECT_EQ(pairs(), QStringList({"1 09:00-13:00", "2 14:00-18:00"}));
    EXPECT_EQ(amount()->text(), QStringLiteral("00:00"));
    // And by code.
    days()->setCurrentIndex(days()->model()->index(0, 1));
    EXPECT_EQ(pairs(), QStringList({"1 09:00-13:00", "2 14:00-17:00"}));
    EXPECT_EQ(amount()->text(), QStringLiteral("01:00"));
}

TEST_F(DayFixture, AWorkingDayOrHolidayWithoutPairsOffersOneEmptyPairNumberedOne) {
    showDay(4);
    EXPECT_EQ(pairs(), QStringList({"1 -"}));
    EXPECT_EQ(grid()->TextMatrix(1, 0), dateText(kMonday.addDays(3)));
    showDay(6);
    EXPECT_EQ(pairs(), QStringList({"1 -"}));
    EXPECT_EQ(form->dtCurrentDaySchedule.format(u"HH:mm"), QStringLiteral("00:00"));
    // A full leave day offers none.
    showDay(7);
    EXPECT_EQ(grid()->Rows(), 1);
}

TEST_F(DayFixture, TheDayGridTakingTheFocusHidesThePicker) {
    showDay(1);
    clickPair(1, 2);
    ASSERT_TRUE(form->dtpCheckTime->isVisible());
    days()->setFocus(Qt::TabFocusReason);
    EXPECT_TRUE(form->dtpCheckTime->isHidden());
}

TEST_F(DayFixture, EnterOnTheDayGridAndTheAbsentListMovesOn) {
    days()->setFocus();
    QTest::keyClick(days(), Qt::Key_Return);
    // From a day straight on to its times: the pairs grid, or the picker it opens on a time.
    QWidget* now = QApplication::focusWidget();
    EXPECT_TRUE(now == form->mfgCheckinCheckOut || now == form->dtpCheckTime ||
                form->dtpCheckTime->isAncestorOf(now))
        << (now ? now->objectName().toStdString() : "none");
    form->lstAbsentDays->setFocus();
    QTest::keyClick(form->lstAbsentDays, Qt::Key_Enter);
    EXPECT_EQ(QApplication::focusWidget(), static_cast<QWidget*>(form->cmdPopulateRecords));
}

// ---- Half days -------------------------------------------------------------------------------

TEST_F(DayFixture, RightClickingAHolidayOrAFullLeaveShowsNoPopup) {
    for (int row : {6, 7}) {
        const PopupWatch watch([](QMenu* menu) { menu->close(); });
        rightClickDay(row);
        QTest::qWait(80);
        EXPECT_FALSE(watch.seen()) << "row " << row;
        EXPECT_EQ(days()->Row(), row);  // the day under the mouse is shown all the same
    }
    days()->setTextMatrix(3, 2, QStringLiteral("A"));
    const PopupWatch watch([](QMenu* menu) { menu->close(); });
    rightClickDay(3);
    QTest::qWait(80);
    EXPECT_FALSE(watch.seen());
}

TEST_F(DayFixture, MarkingAPresentDayHalfAbsentAndBack) {
    msgbox_testing::setAutoAnswer(true, MsgResult::Yes);
    EXPECT_EQ(halfDay(1), kMark);
    EXPECT_EQ(type(1), QStringLiteral("HA"));
    EXPECT_EQ(counts(), QStringList({"5", "1.5", "0.5"}));
    ASSERT_EQ(msgbox_testing::shown().size(), 1);
    const ShownMessage& asked = msgbox_testing::shown()[0];
    EXPECT_EQ(asked.text, QStringLiteral("Do you want to mark half day leave on 02/11/2026?"));
    EXPECT_EQ(asked.buttons, MsgButtons::YesNo);
    EXPECT_EQ(asked.icon, MsgIcon::Information);
    EXPECT_EQ(asked.title, QStringLiteral("Attendance Test"));

    EXPECT_EQ(halfDay(1), kUnmark);
    EXPECT_EQ(type(1), QStringLiteral("P"));
    EXPECT_EQ(counts(), QStringList({"5.5", "1.5", "0"}));
    EXPECT_EQ(msgbox_testing::shown().last().text,
              QStringLiteral("Do you want to unmark the half day leave for 02/11/2026?"));
    // The day's pairs and hours are left as they were.
    EXPECT_EQ(pairs(), QStringList({"1 09:00-13:00", "2 14:00-17:00"}));
    EXPECT_EQ(days()->TextMatrix(1, 3), QStringLiteral("07:00"));
}

TEST_F(DayFixture, MarkingAHalfLeaveDayAndBackWithTheRealQuestion) {
    msgbox_testing::setAutoAnswer(false);
    QString asked;
    qz2test::answerNextMessageBox(QMessageBox::Yes, &asked);
    EXPECT_EQ(halfDay(5), kMark);
    EXPECT_EQ(asked, QStringLiteral("Do you want to mark half day leave on 06/11/2026?"));
    EXPECT_EQ(type(5), QStringLiteral("AL"));
    EXPECT_EQ(counts(), QStringList({"5", "1.5", "0.5"}));

    form->activateWindow();
    QApplication::setActiveWindow(form.get());
    ASSERT_TRUE(QTest::qWaitForWindowActive(form.get()));
    qz2test::answerNextMessageBox(QMessageBox::Yes, &asked);
    EXPECT_EQ(halfDay(5), kUnmark);
    EXPECT_EQ(asked, QStringLiteral("Do you want to unmark the half day leave for 06/11/2026?"));
    EXPECT_EQ(type(5), QStringLiteral("HL"));
    EXPECT_EQ(counts(), QStringList({"5.5", "1.5", "0"}));
}

TEST_F(DayFixture, AnsweringNoChangesNeitherTheTypeNorTheTotals) {
    msgbox_testing::setAutoAnswer(false);
    qz2test::answerNextMessageBox(QMessageBox::No);
    halfDay(2);
    EXPECT_EQ(type(2), QStringLiteral("P"));
    EXPECT_EQ(counts(), QStringList({"5.5", "1.5", "0"}));

    days()->setTextMatrix(3, 2, QStringLiteral("HA"));
    form->txtNoPresent->setText(QStringLiteral("untouched"));
    msgbox_testing::setAutoAnswer(true, MsgResult::No);
    EXPECT_EQ(halfDay(3), kUnmark);
    EXPECT_EQ(type(3), QStringLiteral("HA"));
    EXPECT_EQ(form->txtNoPresent->text(), QStringLiteral("untouched"));
    EXPECT_EQ(msgbox_testing::shown().size(), 2);
}

TEST_F(DayFixture, TheHalfDayItemActsByItsCaption) {
    msgbox_testing::setAutoAnswer(true, MsgResult::Yes);
    showDay(2);
    // "Unmark" on a present day asks, then only recounts.
    form->mnuHalfDay->setText(kUnmark);
    form->txtNoPresent->clear();
    form->mnuHalfDay->trigger();
    EXPECT_EQ(type(2), QStringLiteral("P"));
    EXPECT_EQ(counts(), QStringList({"5.5", "1.5", "0"}));
    EXPECT_EQ(msgbox_testing::shown().size(), 1);
    // Any other caption asks nothing and recounts.
    form->mnuHalfDay->setText(QStringLiteral("Half day"));
    form->txtNoPresent->clear();
    form->mnuHalfDay->trigger();
    EXPECT_EQ(counts(), QStringList({"5.5", "1.5", "0"}));
    EXPECT_EQ(msgbox_testing::shown().size(), 1);
}

// ---- Allowances and deductions -----------------------------------------------------------------

TEST_F(DayFixture, ClaimingUntickingAndRetickingAnAllowance) {
    ASSERT_TRUE(days()->isColumnHidden(5));
    showDay(2);  // 08:30 worked against 08:00
    // Touch the check-out so that the day's difference is worked out from the pairs.
    clickPair(2, 3);
    clickPair(2, 1);
    EXPECT_EQ(chk()->text(), QStringLiteral("Allowances"));
    EXPECT_EQ(amount()->text(), QStringLiteral("00.30"));
    QTest::mouseClick(chk(), Qt::LeftButton);
    EXPECT_TRUE(chk()->isChecked());
    EXPECT_EQ(hours(2), QStringLiteral("00.30"));
    EXPECT_EQ(claim(2), QStringLiteral("A"));
    // A claim shows the day grid's "Hours".
    EXPECT_FALSE(days()->isColumnHidden(5));
    EXPECT_GT(days()->columnWidth(5), 0);
    EXPECT_TRUE(days()->isColumnHidden(6));
    // The claimed amount stands out by its kind; unclaimed differences are greyed.
    EXPECT_EQ(days()->cellForeColor(2, 5), QColor(0, 110, 0));
    EXPECT_EQ(days()->cellForeColor(1, 5), QColor(Qt::darkGray));

    // The clerk claims one hour instead.
    amount()->setFocus();
    amount()->selectAll();
    QTest::keyClicks(amount(), QStringLiteral("01.00"));
    EXPECT_EQ(hours(2), QStringLiteral("01.00"));
    EXPECT_EQ(claim(2), QStringLiteral("A"));

    QTest::mouseClick(chk(), Qt::LeftButton);  // untick: the amount stays, the kind goes
    EXPECT_FALSE(chk()->isChecked());
    EXPECT_EQ(hours(2), QStringLiteral("01.00"));
    EXPECT_EQ(claim(2), QString());
    EXPECT_TRUE(days()->isColumnHidden(5));

    QTest::mouseClick(chk(), Qt::LeftButton);  // tick again
    EXPECT_EQ(claim(2), QStringLiteral("A"));
    EXPECT_EQ(hours(2), QStringLiteral("01.00"));
    // Other days are untouched.
    EXPECT_EQ(claim(1), QString());
    EXPECT_EQ(claim(3), QString());

    // Coming back to the day shows its claim: caption and tick.
    showDay(1);
    EXPECT_FALSE(chk()->isChecked());
    EXPECT_EQ(chk()->text(), QStringLiteral("Allowance/Deductions"));
    showDay(2);
    EXPECT_TRUE(chk()->isChecked());
    EXPECT_EQ(chk()->text(), QStringLiteral("Allowances"));
    EXPECT_EQ(claim(2), QStringLiteral("A"));
}

TEST_F(DayFixture, AShortDayIsClaimedAsADeduction) {
    showDay(1);  // 07:00 worked
    clickPair(2, 3);
    form->dtpCheckTime->setTime(QTime(16, 15));
    // The check box commits the time still in the picker before it claims.
    QTest::mouseClick(chk(), Qt::LeftButton);
    EXPECT_TRUE(form->dtpCheckTime->isHidden());
    EXPECT_EQ(grid()->TextMatrix(2, 3), QStringLiteral("16:15"));
    EXPECT_EQ(days()->TextMatrix(1, 3), QStringLiteral("06:15"));
    EXPECT_EQ(chk()->text(), QStringLiteral("Deductions"));
    EXPECT_TRUE(chk()->isChecked());
    EXPECT_EQ(amount()->text(), QStringLiteral("01.45"));
    EXPECT_EQ(hours(1), QStringLiteral("01.45"));
    EXPECT_EQ(claim(1), QStringLiteral("D"));
    EXPECT_EQ(days()->cellForeColor(1, 5), QColor(170, 0, 0));
}

TEST_F(DayFixture, ClickingTheCheckBoxCommitsThePickerWithoutFocusingIt) {
    showDay(1);
    clickPair(2, 3);
    form->dtpCheckTime->setTime(QTime(18, 0));
    chk()->click();  // by code: the picker keeps the focus until the click handler commits it
    EXPECT_TRUE(form->dtpCheckTime->isHidden());
    EXPECT_EQ(days()->TextMatrix(1, 3), QStringLiteral("08:00"));
    // Worked equals scheduled: nothing to claim, the tick cannot stay.
    EXPECT_EQ(chk()->text(), QStringLiteral("Allowance/Deductions"));
    EXPECT_FALSE(chk()->isChecked());
    EXPECT_EQ(amount()->text(), QStringLiteral("00.00"));
    EXPECT_EQ(claim(1), QString());
}

TEST_F(DayFixture, WithWorkedEqualToScheduledTheCheckBoxCannotStayTicked) {
    showDay(3);  // exactly 08:00
    clickPair(2, 3);
    clickPair(2, 1);
    ASSERT_EQ(chk()->text(), QStringLiteral("Allowance/Deductions"));
    QTest::mouseClick(chk(), Qt::LeftButton);
    EXPECT_FALSE(chk()->isChecked());
    EXPECT_EQ(claim(3), QString());
    EXPECT_EQ(amount()->text(), QStringLiteral("00.00"));
    EXPECT_TRUE(days()->isColumnHidden(5));
}

TEST_F(DayFixture, AClaimFollowsTheDayWhileTicked) {
    showDay(2);
    clickPair(2, 3);
    clickPair(2, 1);
    QTest::mouseClick(chk(), Qt::LeftButton);
    ASSERT_EQ(claim(2), QStringLiteral("A"));
    // The clerk shortens the day below its schedule: the claim becomes a deduction.
    clickPair(2, 3);
    form->dtpCheckTime->setTime(QTime(17, 0));
    clickPair(1, 1);
    EXPECT_EQ(chk()->text(), QStringLiteral("Deductions"));
    EXPECT_EQ(claim(2), QStringLiteral("D"));
    EXPECT_EQ(hours(2), QStringLiteral("01.00"));
}

TEST_F(DayFixture, SetDayAllowanceDeductionWritesEveryRowOfTheDate) {
    chk()->setChecked(true);
    form->fnSetDayAllowanceDeduction(QStringLiteral("02.15"), QStringLiteral("D"),
                                     kMonday.addDays(3));
    EXPECT_EQ(hours(4), QStringLiteral("02.15"));
    EXPECT_EQ(claim(4), QStringLiteral("D"));
    EXPECT_FALSE(days()->isColumnHidden(5));
    chk()->setChecked(false);
    form->fnSetDayAllowanceDeduction(QStringLiteral("02.15"), QStringLiteral("D"),
                                     kMonday.addDays(3));
    EXPECT_EQ(claim(4), QString());
    EXPECT_TRUE(days()->isColumnHidden(5));
}

TEST_F(DayFixture, AStoredClaimShowsTheHoursColumnAsSoonAsItIsWritten) {
    ASSERT_TRUE(days()->isColumnHidden(5));
    // As loading a stored entry writes it: straight into the day grid.
    days()->setTextMatrix(3, 5, QStringLiteral("00:30"));
    days()->setTextMatrix(3, 6, QStringLiteral("D"));
    EXPECT_FALSE(days()->isColumnHidden(5));
    EXPECT_EQ(days()->cellForeColor(3, 5), QColor(170, 0, 0));
    days()->setTextMatrix(3, 6, QString());
    EXPECT_TRUE(days()->isColumnHidden(5));
}

// ---- Clearing the form -------------------------------------------------------------------------

TEST_F(DayFixture, ClearingTheFormEmptiesTotalsGridsAndClaim) {
    showDay(2);
    clickPair(1, 2);
    chk()->setChecked(true);
    form->txtTotalDays->setText(QStringLiteral("7"));
    form->fnClearEntryForm();
    for (QLineEdit* box : {form->txtTotalDays, form->txtNoPresent, form->txtNoLeave,
                           form->txtNoAbsent, form->txtAllowanceDeductions})
        EXPECT_TRUE(box->text().isEmpty()) << box->objectName().toStdString();
    EXPECT_EQ(days()->Rows(), 1);
    EXPECT_EQ(grid()->Rows(), 1);
    EXPECT_EQ(form->mfgMirrorGrid->Rows(), 1);
    EXPECT_FALSE(chk()->isChecked());
    EXPECT_TRUE(form->dtpCheckTime->isHidden());
    for (FlexGrid* g : {days(), grid(), form->mfgMirrorGrid}) {
        EXPECT_EQ(g->Row(), 0);
        EXPECT_EQ(g->Col(), 0);
        EXPECT_TRUE(g->selectionModel()->selectedIndexes().isEmpty());
    }
    EXPECT_EQ(days()->TextMatrix(0, 1), QStringLiteral("Date"));
    EXPECT_TRUE(msgbox_testing::shown().isEmpty());
}

// ---- Safeguards for the clerk's work ---------------------------------------------------------

TEST_F(DayFixture, TickingStraightAfterChoosingADayClaimsItsDifference) {
    showDay(2);  // 08:30 worked against 08:00 scheduled
    ASSERT_EQ(chk()->text(), QStringLiteral("Allowance/Deductions"));
    QTest::mouseClick(chk(), Qt::LeftButton);
    EXPECT_TRUE(chk()->isChecked());
    EXPECT_EQ(chk()->text(), QStringLiteral("Allowances"));
    EXPECT_EQ(claim(2), QStringLiteral("A"));
    EXPECT_EQ(hours(2), QStringLiteral("00:30"));
}

TEST_F(DayFixture, AClaimedAmountTypedOverTheDifferenceSurvivesChoosingAnotherDay) {
    showDay(2);
    amount()->clear();
    QTest::keyClicks(amount(), QStringLiteral("01.00"));
    QTest::mouseClick(chk(), Qt::LeftButton);
    ASSERT_EQ(claim(2), QStringLiteral("A"));
    ASSERT_EQ(hours(2), QStringLiteral("01.00"));
    showDay(3);
    EXPECT_EQ(hours(2), QStringLiteral("01.00"));
    EXPECT_EQ(claim(2), QStringLiteral("A"));
    showDay(2);
    EXPECT_EQ(amount()->text(), QStringLiteral("01.00"));
}

TEST_F(DayFixture, TheAmountTakesOnlyHoursAndMinutes) {
    showDay(2);
    amount()->clear();
    QTest::keyClicks(amount(), QStringLiteral("ab1x2.3y0z9"));
    EXPECT_EQ(amount()->text(), QStringLiteral("12.30"));
    amount()->clear();
    QTest::keyClicks(amount(), QStringLiteral("02:15"));
    EXPECT_EQ(amount()->text(), QStringLiteral("02:15"));
}

TEST_F(DayFixture, EscapeAsksBeforeClosingAndDropsATimeBeingPicked) {
    // The week laid out is keyed work: Escape is Cancel, which asks first.
    msgbox_testing::pushAnswer(MsgResult::No);
    QTest::keyClick(form.get(), Qt::Key_Escape);
    ASSERT_EQ(msgbox_testing::shown().size(), 1);
    EXPECT_EQ(msgbox_testing::shown().last().buttons, MsgButtons::YesNo);
    EXPECT_TRUE(form->isVisible());
    EXPECT_EQ(form->result(), 0);
    msgbox_testing::clear();

    showDay(1);
    clickPair(2, 3);  // the 17:00 check-out
    ASSERT_TRUE(form->dtpCheckTime->isVisible());
    form->dtpCheckTime->setTime(QTime(19, 45));
    QTest::keyClick(form->dtpCheckTime, Qt::Key_Escape);
    EXPECT_TRUE(form->isVisible());
    EXPECT_FALSE(form->dtpCheckTime->isVisible());
    clickPair(1, 2);  // leaving the cell commits nothing new
    EXPECT_EQ(grid()->TextMatrix(2, 3), QStringLiteral("17:00"));
    bool inMirror = false;
    for (int r = 1; r < form->mfgMirrorGrid->Rows(); ++r)
        if (form->mfgMirrorGrid->TextMatrix(r, 0) == dateText(kMonday) &&
            form->mfgMirrorGrid->TextMatrix(r, 1) == QLatin1String("2"))
            inMirror = form->mfgMirrorGrid->TextMatrix(r, 3) == QLatin1String("17:00");
    EXPECT_TRUE(inMirror);
}
