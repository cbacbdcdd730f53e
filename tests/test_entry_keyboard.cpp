// The entry form at the keyboard and its safety nets, driven like a clerk offscreen on the
// demo month: Enter on a focused button, Escape as Cancel, the question before keyed work
// is thrown away (Cancel, Escape, the close button, another employee), the wheel over the
// employee box, the popups from the keyboard, the Alt letters of every form, the date boxes,
// and how the days look.

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QCompleter>
#include <QAbstractItemView>
#include <QDateEdit>
#include <QDir>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>
#include <QTimeEdit>
#include <QWheelEvent>
#include <memory>

#include "TestSupport.h"
#include "entry/frmEmployeeDailyAttendance.h"
#include "picker/frmEmployeesAttendanceEntryStatus.h"
#include "register/FrmMaster.h"
#include "register/frmCancel.h"
#include "shared/BasAttendence.h"
#include "shared/FlexGrid.h"
#include "shared/MsgBox.h"
#include "shared/SharedServices.h"

using namespace qz2;
using qz2test::PopupWatch;
using qz2test::TestDb;

namespace {

QStringList shownTexts() {
    QStringList out;
    for (const ShownMessage& m : msgbox_testing::shown()) out << m.text;
    return out;
}

// The demo month of December 2026 for Anna Baker (the third employee by name): Sundays
// are her days off, the 24th to the 26th are holidays.
struct KeyboardFixture : ::testing::Test {
    void SetUp() override {
        gstrEntryMode = QStringLiteral("N");
        msgbox_testing::clear();
        form = std::make_unique<frmEmployeeDailyAttendance>();
        form->Form_Load();
        form->cboEmpname->setCurrentIndex(2);
        ASSERT_EQ(form->txtStartDate->text(), QStringLiteral("01/12/2026"));
        form->show();
        form->resize(1120, 900);
        QApplication::setActiveWindow(form.get());
        ASSERT_TRUE(QTest::qWaitForWindowActive(form.get()));
        msgbox_testing::clear();
    }
    void TearDown() override {
        msgbox_testing::setAutoAnswer(false);
        msgbox_testing::clear();
        form.reset();
    }
    void populate() {
        QTest::mouseClick(form->cmdPopulateRecords, Qt::LeftButton);
        ASSERT_EQ(days()->Rows(), 32);
    }
    FlexGrid* days() const { return form->mfgAttendance; }
    FlexGrid* pairs() const { return form->mfgCheckinCheckOut; }
    static QPoint centre(FlexGrid* g, int row, int col) {
        return g->visualRect(g->model()->index(row - 1, col)).center();
    }
    void showDay(int row) {
        QTest::mouseClick(days()->viewport(), Qt::LeftButton, {}, centre(days(), row, 1));
        ASSERT_EQ(days()->Row(), row);
    }
    // The questions asked since the last clear.
    static int questions() {
        int n = 0;
        for (const ShownMessage& m : msgbox_testing::shown())
            if (m.buttons == MsgButtons::YesNo) ++n;
        return n;
    }

    TestDb demo{true, QDate(2026, 12, 21)};
    std::unique_ptr<frmEmployeeDailyAttendance> form;
};

}  // namespace

// ---- Enter on a button, Escape ------------------------------------------------------------

TEST_F(KeyboardFixture, EnterOnAFocusedButtonPressesIt) {
    form->cmdPopulateRecords->setFocus();
    QTest::keyClick(form->cmdPopulateRecords, Qt::Key_Return);
    EXPECT_EQ(days()->Rows(), 32);

    QString opened;
    qz2test::whenModal([&opened](QWidget* w) {
        opened = w->objectName();
        if (auto* d = qobject_cast<QDialog*>(w)) d->reject();
    });
    form->cmdEmployee->setFocus();
    QTest::keyClick(form->cmdEmployee, Qt::Key_Enter);
    EXPECT_EQ(opened, QStringLiteral("frmEmployeesAttendanceEntryStatus"));
    EXPECT_TRUE(form->isVisible());

    const qint64 before = demo.scalar("select count(*) from pEmployeeAttendence").toLongLong();
    msgbox_testing::setAutoAnswer(true);
    form->cmdOK->setFocus();
    QTest::keyClick(form->cmdOK, Qt::Key_Return);
    EXPECT_TRUE(form->saved()) << shownTexts().join(QLatin1Char('/')).toStdString();
    EXPECT_FALSE(form->isVisible());
    EXPECT_EQ(demo.scalar("select count(*) from pEmployeeAttendence").toLongLong(), before + 1);
}

TEST_F(KeyboardFixture, EnterOnCancelClosesAFormWithNothingKeyed) {
    form->cmdCancel->setFocus();
    QTest::keyClick(form->cmdCancel, Qt::Key_Return);
    EXPECT_FALSE(form->isVisible());
    EXPECT_EQ(form->result(), QDialog::Rejected);
    EXPECT_EQ(questions(), 0);
}

TEST_F(KeyboardFixture, EscapeIsCancel) {
    form->txtRemarks->setFocus();
    QTest::keyClick(form->txtRemarks, Qt::Key_Escape);
    EXPECT_FALSE(form->isVisible());
    EXPECT_EQ(form->result(), QDialog::Rejected);
    EXPECT_EQ(questions(), 0);  // nothing keyed: nothing to ask
}

TEST_F(KeyboardFixture, LookingThroughAStoredEntryIsNoWorkAndEscapeClosesWithoutAsking) {
    // A saved entry with a claimed day.
    populate();
    showDay(2);
    form->chkAllowanceDeductions->click();
    msgbox_testing::setAutoAnswer(true);
    form->cmdOK_Click();
    ASSERT_TRUE(form->saved());
    msgbox_testing::setAutoAnswer(false);
    const QString id = demo.scalar("select max(eaID) from pEmployeeAttendence").toString();
    form.reset();

    // Opened again from the register's row: every day looked at, the claimed one too, the
    // amount box visited.
    FlexGrid registerRows;
    registerRows.setCols(5);
    registerRows.setRows(2);
    registerRows.setTextMatrix(1, 0, id);
    registerRows.setCurrentCell(1, 0);
    setRegisterGrid(&registerRows);
    gstrEntryMode = QStringLiteral("E");
    form = std::make_unique<frmEmployeeDailyAttendance>();
    ASSERT_TRUE(form->fnLoadEntry(id, false));
    form->show();
    form->resize(1120, 900);
    QApplication::setActiveWindow(form.get());
    ASSERT_TRUE(QTest::qWaitForWindowActive(form.get()));
    msgbox_testing::clear();
    for (int row = 1; row <= 5; ++row) showDay(row);
    showDay(2);
    form->txtAllowanceDeductions->setFocus();
    form->txtRemarks->setFocus();
    msgbox_testing::setAutoAnswer(true);  // a question, had one come, is answered Yes
    QTest::keyClick(form->txtRemarks, Qt::Key_Escape);
    EXPECT_EQ(questions(), 0);
    EXPECT_FALSE(form->isVisible());
    form.reset();
    setRegisterGrid(nullptr);
}

TEST_F(KeyboardFixture, EscapeOnKeyedWorkAsksAndNoKeepsTheForm) {
    QTest::keyClicks(form->txtRemarks, QStringLiteral("late bus"));
    QString asked;
    qz2test::answerNextMessageBox(QMessageBox::No, &asked);
    QTest::keyClick(form->txtRemarks, Qt::Key_Escape);
    EXPECT_EQ(asked, frmEmployeeDailyAttendance::kMsgDiscardOnClose);
    EXPECT_TRUE(form->isVisible());
    EXPECT_EQ(form->txtRemarks->text(), QStringLiteral("late bus"));

    qz2test::answerNextMessageBox(QMessageBox::Yes);
    QTest::keyClick(form->txtRemarks, Qt::Key_Escape);
    EXPECT_FALSE(form->isVisible());
    EXPECT_EQ(form->result(), QDialog::Rejected);
}

TEST_F(KeyboardFixture, EscapeOverTheTimePickerDropsTheTimeAndTheNextIsCancel) {
    populate();
    msgbox_testing::clear();
    showDay(4);  // Friday the 4th: 09:00-13:00, 14:00-16:00
    QTest::mouseClick(pairs()->viewport(), Qt::LeftButton, {}, centre(pairs(), 2, 3));
    ASSERT_TRUE(form->dtpCheckTime->isVisible());
    form->dtpCheckTime->setTime(QTime(19, 45));
    QTest::keyClick(form->dtpCheckTime, Qt::Key_Escape);
    EXPECT_TRUE(form->isVisible());
    EXPECT_FALSE(form->dtpCheckTime->isVisible());
    EXPECT_EQ(pairs()->TextMatrix(2, 3), QStringLiteral("16:00"));
    EXPECT_EQ(questions(), 0);

    // Escape again, now on the grid: Cancel, and the populated month is asked about.
    msgbox_testing::pushAnswer(MsgResult::Yes);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
    EXPECT_EQ(questions(), 1);
    EXPECT_FALSE(form->isVisible());
    EXPECT_EQ(form->result(), QDialog::Rejected);
}

// ---- Asking before keyed work is lost ----------------------------------------------------

TEST_F(KeyboardFixture, CancelAsksOnceTheDaysArePopulated) {
    populate();
    showDay(3);  // looking at a day is no work
    msgbox_testing::pushAnswer(MsgResult::No);
    QTest::mouseClick(form->cmdCancel, Qt::LeftButton);
    ASSERT_EQ(questions(), 1);
    EXPECT_EQ(msgbox_testing::shown().last().text, frmEmployeeDailyAttendance::kMsgDiscardOnClose);
    EXPECT_EQ(msgbox_testing::shown().last().icon, MsgIcon::Question);
    EXPECT_TRUE(form->isVisible());
    EXPECT_EQ(days()->Rows(), 32);

    msgbox_testing::pushAnswer(MsgResult::Yes);
    QTest::mouseClick(form->cmdCancel, Qt::LeftButton);
    EXPECT_EQ(questions(), 2);
    EXPECT_FALSE(form->isVisible());
}

TEST_F(KeyboardFixture, TheCloseButtonAsksToo) {
    form->lstAbsentDays->item(3)->setCheckState(Qt::Checked);  // a pick is keyed work
    msgbox_testing::pushAnswer(MsgResult::No);
    form->close();
    EXPECT_EQ(questions(), 1);
    EXPECT_TRUE(form->isVisible());

    form->lstAbsentDays->item(3)->setCheckState(Qt::Unchecked);  // taken back: nothing left
    form->close();
    EXPECT_EQ(questions(), 1);
    EXPECT_FALSE(form->isVisible());
}

TEST_F(KeyboardFixture, AnUnfinishedPairAndAChangedTimeAreKeyedWork) {
    populate();
    form->fnTakeBaseline();  // as though the populated month had been saved and reopened
    showDay(4);
    EXPECT_FALSE(form->fnHasUnsavedWork());
    QTest::mouseClick(pairs()->viewport(), Qt::LeftButton, {}, centre(pairs(), 2, 3));
    ASSERT_TRUE(form->dtpCheckTime->isVisible());
    form->dtpCheckTime->setTime(QTime(16, 30));
    EXPECT_TRUE(form->fnHasUnsavedWork());  // still in the picker
    QTest::keyClick(form->dtpCheckTime, Qt::Key_Return);
    EXPECT_TRUE(form->fnHasUnsavedWork());  // committed
}

TEST_F(KeyboardFixture, AnotherEmployeeAsksAndNoKeepsTheDays) {
    populate();
    QString asked;
    qz2test::answerNextMessageBox(QMessageBox::No, &asked);
    form->cboEmpname->setFocus();
    QTest::keyClick(form->cboEmpname, Qt::Key_Down);
    EXPECT_EQ(asked, frmEmployeeDailyAttendance::kMsgDiscardOnEmployee);
    EXPECT_EQ(form->cboEmpname->currentIndex(), 2);
    EXPECT_EQ(form->lngEmployeeID, form->cboEmpname->itemData(2).toInt());
    EXPECT_EQ(days()->Rows(), 32);

    qz2test::answerNextMessageBox(QMessageBox::Yes);
    QTest::keyClick(form->cboEmpname, Qt::Key_Down);
    EXPECT_EQ(form->cboEmpname->currentIndex(), 3);
    EXPECT_EQ(form->lngEmployeeID, form->cboEmpname->itemData(3).toInt());
    EXPECT_EQ(days()->Rows(), 1);

    // The next employee's form holds nothing keyed yet: moving on asks nothing.
    msgbox_testing::clear();
    QTest::keyClick(form->cboEmpname, Qt::Key_Up);
    EXPECT_EQ(form->cboEmpname->currentIndex(), 2);
    EXPECT_EQ(questions(), 0);
}

TEST_F(KeyboardFixture, TheWheelNeverChangesTheEmployee) {
    const QPoint at = form->cboEmpname->rect().center();
    for (int delta : {-120, 120, -120}) {
        QWheelEvent wheel(at, form->cboEmpname->mapToGlobal(at), QPoint(), QPoint(0, delta),
                          Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(form->cboEmpname, &wheel);
        EXPECT_EQ(form->cboEmpname->currentIndex(), 2);
    }
    EXPECT_EQ(form->lngEmployeeID, form->cboEmpname->itemData(2).toInt());
}

// ---- Popups from the keyboard ---------------------------------------------------------

namespace {

QStringList visibleItems(QMenu* menu) {
    QStringList names;
    for (QAction* a : menu->actions())
        if (a->isVisible()) names << a->objectName();
    return names;
}

// Chooses the named item of an open popup the way the keyboard would.
void choose(QMenu* menu, const char* name) {
    for (QAction* a : menu->actions()) {
        if (a->objectName() == QLatin1String(name) && a->isVisible() && a->isEnabled()) {
            menu->setActiveAction(a);
            QTest::keyClick(menu, Qt::Key_Return);
            return;
        }
    }
    ADD_FAILURE() << "the popup has no usable item " << name;
    menu->close();
}

}  // namespace

TEST_F(KeyboardFixture, TheMenuKeyAndShiftF10OpenTheHalfDayPopupOnTheCurrentDay) {
    populate();
    showDay(4);  // Friday the 4th, present
    msgbox_testing::setAutoAnswer(true);
    QStringList items;
    QString caption;
    {
        const PopupWatch watch([&](QMenu* menu) {
            items = visibleItems(menu);
            caption = form->mnuHalfDay->text();
            choose(menu, "mnuHalfDay");
        });
        days()->setFocus();
        QTest::keyClick(days(), Qt::Key_Menu);
        EXPECT_TRUE(watch.seen());
    }
    EXPECT_EQ(items, QStringList({"mnuHalfDay"}));
    EXPECT_EQ(caption, QStringLiteral("&Mark Half Day Absent"));
    EXPECT_EQ(days()->TextMatrix(4, 2), QStringLiteral("HA"));

    {
        const PopupWatch watch([&](QMenu* menu) {
            caption = form->mnuHalfDay->text();
            choose(menu, "mnuHalfDay");
        });
        QTest::keyClick(days(), Qt::Key_F10, Qt::ShiftModifier);
        EXPECT_TRUE(watch.seen());
    }
    EXPECT_EQ(caption, QStringLiteral("&Unmark Half Day Absent"));
    EXPECT_EQ(days()->TextMatrix(4, 2), QStringLiteral("P"));

    // A holiday offers no half day, from the keyboard as from the mouse.
    showDay(25);
    ASSERT_EQ(days()->TextMatrix(25, 2), QStringLiteral("H"));
    const PopupWatch none([](QMenu* menu) { menu->close(); });
    days()->setFocus();
    QTest::keyClick(days(), Qt::Key_Menu);
    EXPECT_FALSE(none.seen());
}

TEST_F(KeyboardFixture, ShiftF10OverThePickerOpensTheDeletePopupForItsPair) {
    populate();
    showDay(4);
    ASSERT_EQ(pairs()->Rows(), 3);
    QTest::mouseClick(pairs()->viewport(), Qt::LeftButton, {}, centre(pairs(), 2, 2));
    ASSERT_TRUE(form->dtpCheckTime->isVisible());
    QStringList items;
    {
        const PopupWatch watch([&](QMenu* menu) {
            items = visibleItems(menu);
            choose(menu, "mnuDelete");
        });
        QTest::keyClick(form->dtpCheckTime, Qt::Key_F10, Qt::ShiftModifier);
        EXPECT_TRUE(watch.seen());
    }
    EXPECT_EQ(items, QStringList({"mnuDelete"}));
    ASSERT_EQ(pairs()->Rows(), 2);  // the afternoon pair is gone
    EXPECT_EQ(pairs()->TextMatrix(1, 2), QStringLiteral("09:00"));

    // The Menu key on the grid itself acts on its current pair.
    pairs()->setCurrentCell(1, 1);
    pairs()->setFocus();
    {
        const PopupWatch watch([&](QMenu* menu) { choose(menu, "mnuDelete"); });
        QTest::keyClick(pairs(), Qt::Key_Menu);
        EXPECT_TRUE(watch.seen());
    }
    EXPECT_EQ(pairs()->Rows(), 2);  // the last pair is emptied, not removed
    EXPECT_TRUE(pairs()->TextMatrix(1, 2).isEmpty());
}

// ---- Alt letters ---------------------------------------------------------------------------

namespace {

// The Alt letters of a form: its buttons' and group boxes' captions, and the captions of the
// labels that lead to a control. Each letter with the captions that carry it.
QMap<QString, QStringList> altLetters(QWidget* form) {
    QMap<QString, QStringList> letters;
    const auto add = [&letters](const QString& caption) {
        const QKeySequence key = QKeySequence::mnemonic(caption);
        if (!key.isEmpty()) letters[key.toString()] << caption;
    };
    for (const QAbstractButton* b : form->findChildren<QAbstractButton*>()) add(b->text());
    for (const QGroupBox* g : form->findChildren<QGroupBox*>()) add(g->title());
    for (const QLabel* l : form->findChildren<QLabel*>())
        if (l->buddy()) add(l->text());
    return letters;
}

QStringList clashes(QWidget* form) {
    QStringList out;
    const QMap<QString, QStringList> letters = altLetters(form);
    for (auto it = letters.begin(); it != letters.end(); ++it)
        if (it.value().size() > 1)
            out << it.key() + QStringLiteral(": ") + it.value().join(QLatin1String(", "));
    return out;
}

}  // namespace

TEST_F(KeyboardFixture, NoTwoControlsOfAFormShareAnAltLetter) {
    EXPECT_EQ(clashes(form.get()), QStringList());
    EXPECT_GE(altLetters(form.get()).size(), 10);
    FrmMaster reg;
    EXPECT_EQ(clashes(&reg), QStringList());
    EXPECT_GE(altLetters(&reg).size(), 8);
    frmCancel reason;
    EXPECT_EQ(clashes(&reason), QStringList());
    frmEmployeesAttendanceEntryStatus picker(form->cboEmpname);
    EXPECT_EQ(clashes(&picker), QStringList());
}

TEST_F(KeyboardFixture, EachAltLetterReachesItsControl) {
    QTest::keyClick(form.get(), Qt::Key_M, Qt::AltModifier);
    EXPECT_EQ(QApplication::focusWidget(), form->txtStartDate);
    QString opened;
    qz2test::whenModal([&opened](QWidget* w) {
        opened = w->objectName();
        if (auto* d = qobject_cast<QDialog*>(w)) d->reject();
    });
    // A button's letter presses it as a short animated click.
    QTest::keyClick(form.get(), Qt::Key_F, Qt::AltModifier);
    (void)QTest::qWaitFor([&opened] { return !opened.isEmpty(); }, 3000);
    EXPECT_EQ(opened, QStringLiteral("frmEmployeesAttendanceEntryStatus"));

    FrmMaster reg;
    reg.show();
    QApplication::setActiveWindow(&reg);
    ASSERT_TRUE(QTest::qWaitForWindowActive(&reg));
    QTest::keyClick(&reg, Qt::Key_G, Qt::AltModifier);
    EXPECT_TRUE(QTest::qWaitFor([&reg] { return reg.optDescend->isChecked(); }, 3000));
}

// ---- The period's dates ------------------------------------------------------------------

TEST_F(KeyboardFixture, APeriodErrorIsShownOnce) {
    msgbox_testing::setAutoAnswer(true);
    demo.exec("delete from pCalenderHeader where financialid=2027");
    form->dtpEndDate->setFocus();
    form->dtpEndDate->setDate(QDate(2027, 1, 15));
    QTest::keyClick(form->dtpEndDate, Qt::Key_Return);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    const QString missing =
        QStringLiteral("Calender Settings not Found for Administration for the year - 2027");
    EXPECT_EQ(shownTexts(), QStringList({missing}));
    EXPECT_FALSE(form->cmdPopulateRecords->isEnabled());

    // The start box, left by Enter: once again.
    msgbox_testing::clear();
    form->txtStartDate->setFocus();
    form->txtStartDate->selectAll();
    QTest::keyClicks(form->txtStartDate, QStringLiteral("02/12/2026"));
    QTest::keyClick(form->txtStartDate, Qt::Key_Return);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    EXPECT_EQ(shownTexts(), QStringList({missing}));
}

TEST_F(KeyboardFixture, TheEndDateTakesADateTypedWithSlashes) {
    form->txtStartDate->setFocus();
    QTest::keyClick(form->txtStartDate, Qt::Key_Tab);
    ASSERT_EQ(QApplication::focusWidget(), form->dtpEndDate);
    QTest::keyClicks(form->dtpEndDate, QStringLiteral("15/01/2027"));
    EXPECT_EQ(form->dtpEndDate->date(), QDate(2027, 1, 15));
    QTest::keyClick(form->dtpEndDate, Qt::Key_Tab);
    EXPECT_EQ(form->txtEndDate->text(), QStringLiteral("15/01/2027"));
    EXPECT_EQ(form->txtTotalDays->text(), QStringLiteral("46"));

    // Typed over the whole text, and with one-digit parts.
    form->dtpEndDate->setFocus();
    QTest::keyClick(form->dtpEndDate, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(form->dtpEndDate, QStringLiteral("20/02/2027"));
    EXPECT_EQ(form->dtpEndDate->date(), QDate(2027, 2, 20));
    form->dtpEndDate->setFocus();
    QTest::keyClick(form->dtpEndDate, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(form->dtpEndDate, QStringLiteral("5/1/2027"));
    EXPECT_EQ(form->dtpEndDate->date(), QDate(2027, 1, 5));
}

TEST_F(KeyboardFixture, TheDateBoxesTakeOneDigitDaysAndMonths) {
    form->txtStartDate->setFocus();
    form->txtStartDate->selectAll();
    QTest::keyClicks(form->txtStartDate, QStringLiteral("3/12/2026"));
    QTest::keyClick(form->txtStartDate, Qt::Key_Return);
    EXPECT_EQ(form->txtStartDate->text(), QStringLiteral("03/12/2026"));
    EXPECT_EQ(form->txtTotalDays->text(), QStringLiteral("29"));
    form->txtAttdate->setFocus();
    form->txtAttdate->selectAll();
    QTest::keyClicks(form->txtAttdate, QStringLiteral("2/1/2027"));
    QTest::keyClick(form->txtAttdate, Qt::Key_Tab);
    EXPECT_EQ(form->txtAttdate->text(), QStringLiteral("02/01/2027"));
}

// ---- How the days look --------------------------------------------------------------------

TEST_F(KeyboardFixture, EachDayShowsItsWeekdayWhileTheCellsStayAsTheyAre) {
    populate();
    QAbstractItemModel* model = days()->model();
    const QStringList week = {"Tue", "Wed", "Thu", "Fri", "Sat", "Sun", "Mon"};
    for (int r = 1; r <= 31; ++r)
        EXPECT_EQ(model->headerData(r - 1, Qt::Vertical, Qt::DisplayRole).toString(),
                  week[(r - 1) % 7])
            << r;
    EXPECT_TRUE(days()->verticalHeader()->isVisible());
    // The cells and the columns are what they were: the weekday is only a row heading.
    EXPECT_EQ(model->columnCount(), 7);
    EXPECT_EQ(model->headerData(1, Qt::Horizontal).toString(), QStringLiteral("Date"));
    EXPECT_EQ(model->index(5, 0).data().toString(), QString());
    EXPECT_EQ(model->index(5, 1).data().toString(), QStringLiteral("06/12/2026"));
    EXPECT_EQ(model->index(5, 2).data().toString(), QStringLiteral("P"));
    // A day whose date changes gets its new weekday.
    days()->setTextMatrix(1, 1, QStringLiteral("05/12/2026"));
    EXPECT_EQ(model->headerData(0, Qt::Vertical).toString(), QStringLiteral("Sat"));
}

TEST_F(KeyboardFixture, HolidaysAndDaysOffAreShadedApartFromWorkingDays) {
    populate();
    QAbstractItemModel* model = days()->model();
    const auto shade = [model](int row, int col) {
        return model->index(row - 1, col).data(Qt::BackgroundRole).value<QColor>();
    };
    const QColor holiday = shade(24, 1);  // Christmas Eve
    const QColor dayOff = shade(6, 1);    // Sunday the 6th: no scheduled hours
    ASSERT_EQ(days()->TextMatrix(24, 2), QStringLiteral("H"));
    ASSERT_EQ(days()->TextMatrix(6, 4), QStringLiteral("00:00"));
    EXPECT_TRUE(holiday.isValid());
    EXPECT_TRUE(dayOff.isValid());
    EXPECT_NE(holiday, dayOff);
    EXPECT_FALSE(shade(4, 1).isValid());  // Friday, a working day
    EXPECT_FALSE(shade(5, 1).isValid());  // Saturday: half a day's work
    for (int c = 0; c <= 4; ++c) {
        EXPECT_EQ(shade(24, c), holiday) << c;
        EXPECT_EQ(shade(13, c), dayOff) << c;
    }
    // The shade follows the day's type.
    days()->setTextMatrix(4, 2, QStringLiteral("H"));
    EXPECT_EQ(shade(4, 1), holiday);
    days()->setTextMatrix(4, 2, QStringLiteral("P"));
    EXPECT_FALSE(shade(4, 1).isValid());
}

TEST_F(KeyboardFixture, TheSelectedDaysWholeRowIsHighlighted) {
    populate();
    showDay(4);
    QItemSelectionModel* selection = days()->selectionModel();
    EXPECT_TRUE(selection->isRowSelected(3, {}));
    EXPECT_EQ(selection->selectedIndexes().size(), days()->model()->columnCount());
    QTest::keyClick(days(), Qt::Key_Down);
    EXPECT_EQ(days()->Row(), 5);
    EXPECT_TRUE(selection->isRowSelected(4, {}));
    EXPECT_FALSE(selection->isRowSelected(3, {}));
    EXPECT_EQ(pairs()->TextMatrix(1, 0), QStringLiteral("05/12/2026"));  // the day shown
}

TEST_F(KeyboardFixture, BoxesTheFormFillsLookAndActReadOnlyAndTabPassesThem) {
    populate();
    const QList<QLineEdit*> filled = {form->txtAttNo, form->txtTotalDays, form->txtNoPresent,
                                      form->txtNoLeave, form->txtNoAbsent};
    const QColor typedBase = form->txtRemarks->palette().color(QPalette::Base);
    for (QLineEdit* box : filled) {
        const QString name = box->objectName();
        EXPECT_TRUE(box->isReadOnly()) << name.toStdString();
        EXPECT_FALSE(box->focusPolicy() & Qt::TabFocus) << name.toStdString();
        const QPalette look = box->palette();
        EXPECT_EQ(look.color(QPalette::Base), look.color(QPalette::Window)) << name.toStdString();
        EXPECT_NE(look.color(QPalette::Base), typedBase) << name.toStdString();
        const QString before = box->text();
        box->setFocus();
        QTest::keyClicks(box, QStringLiteral("99"));
        EXPECT_EQ(box->text(), before) << name.toStdString();
    }
    // Round the whole form with Tab: never on a box the clerk cannot change.
    form->cboEmpname->setFocus();
    QStringList visited;
    for (int i = 0; i < 20; ++i) {
        QWidget* now = QApplication::focusWidget();
        ASSERT_NE(now, nullptr);
        visited << now->objectName();
        QTest::keyClick(now, Qt::Key_Tab);
    }
    for (QLineEdit* box : filled)
        EXPECT_FALSE(visited.contains(box->objectName())) << visited.join(' ').toStdString();
    EXPECT_TRUE(visited.contains(QStringLiteral("txtRemarks")));
}

// ---- The time picker and the period boxes at Tab -------------------------------------------

TEST_F(KeyboardFixture, ShiftTabLeavesTheTimePickerBackwards) {
    populate();
    showDay(2);
    days()->setFocus();
    for (int i = 0; i < 4 && QApplication::focusWidget() != form->dtpCheckTime; ++i)
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    ASSERT_TRUE(form->dtpCheckTime->isVisible());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab, Qt::ShiftModifier);
    EXPECT_FALSE(form->dtpCheckTime->isVisible());
    // Back where Tab came from: the day grid, which is before the pairs in the Tab order.
    EXPECT_EQ(QApplication::focusWidget(), days());
    EXPECT_TRUE(msgbox_testing::shown().isEmpty());
}

TEST_F(KeyboardFixture, ThePeriodBoxesTakeOneTabEach) {
    form->txtStartDate->setFocus();
    QTest::keyClick(form->txtStartDate, Qt::Key_Tab);
    QWidget* now = QApplication::focusWidget();
    ASSERT_TRUE(now == form->dtpEndDate || form->dtpEndDate->isAncestorOf(now));
    QTest::keyClick(now, Qt::Key_Tab);  // one Tab leaves the end date, as one leaves the start
    EXPECT_EQ(QApplication::focusWidget(), form->lstAbsentDays);
    QTest::keyClick(form->lstAbsentDays, Qt::Key_Tab, Qt::ShiftModifier);
    now = QApplication::focusWidget();
    ASSERT_TRUE(now == form->dtpEndDate || form->dtpEndDate->isAncestorOf(now));
    QTest::keyClick(now, Qt::Key_Tab, Qt::ShiftModifier);
    EXPECT_EQ(QApplication::focusWidget(), form->txtStartDate);
    EXPECT_EQ(form->txtStartDate->text(), QStringLiteral("01/12/2026"));
}

TEST_F(KeyboardFixture, EnterOnACheckOutGoesToTheNextPairsCheckIn) {
    populate();
    // A working day laid out with two pairs: Enter on the first check-out lands on the
    // second pair's check-in, with the picker open there.
    int day = 0;
    for (int r = 1; r < days()->Rows() && day == 0; ++r) {
        showDay(r);
        if (pairs()->Rows() >= 3 && !pairs()->TextMatrix(2, 2).isEmpty()) day = r;
    }
    ASSERT_GT(day, 0);
    pairs()->setFocus();
    pairs()->setCurrentCell(1, 3);
    ASSERT_TRUE(form->dtpCheckTime->isVisible());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    EXPECT_EQ(pairs()->Row(), 2);
    EXPECT_EQ(pairs()->Col(), 2);
    EXPECT_EQ(QApplication::focusWidget(), form->dtpCheckTime);
    EXPECT_TRUE(msgbox_testing::shown().isEmpty());
}

// ---- The employee box: by number or by name ------------------------------------------------

TEST_F(KeyboardFixture, TheEmployeeBoxShowsNumberAndNameAndFindsByEither) {
    const QList<QVariantList> staff =
        demo.rows("select eEmpID, eEmpNo, eName from pEmployee where eCompanyID=1 and eActive=1 order by eEmpID");
    ASSERT_GT(staff.size(), 3);
    for (int i = 0; i < form->cboEmpname->count(); ++i) {
        const int id = form->cboEmpname->itemData(i).toInt();
        for (const QVariantList& e : staff) {
            if (e[0].toInt() == id) {
                EXPECT_EQ(form->cboEmpname->itemText(i),
                          e[1].toString() + QStringLiteral(" \u2013 ") + e[2].toString());
            }
        }
    }
    // The fourth employee by number, typed as the clerk says it.
    const QVariantList wanted = staff[3];
    form->cboEmpname->setFocus();
    form->cboEmpname->lineEdit()->selectAll();
    QTest::keyClicks(form->cboEmpname, wanted[1].toString().toLower());
    QTest::keyClick(form->cboEmpname, Qt::Key_Return);
    EXPECT_EQ(form->lngEmployeeID, wanted[0].toInt());
    EXPECT_EQ(form->cboEmpname->currentText(), wanted[1].toString() + QStringLiteral(" \u2013 ") + wanted[2].toString());
    EXPECT_NE(QApplication::focusWidget(), form->cboEmpname);  // Enter moved on

    // And by a part of a name that only one employee has: the first employee's whole name.
    const QVariantList other = staff[0];
    form->cboEmpname->setFocus();
    form->cboEmpname->lineEdit()->selectAll();
    QTest::keyClicks(form->cboEmpname, other[2].toString());
    QTest::keyClick(form->cboEmpname, Qt::Key_Tab);
    EXPECT_EQ(form->lngEmployeeID, other[0].toInt());

    // Text that names nobody chooses nobody else: the box shows the chosen employee again.
    form->cboEmpname->setFocus();
    form->cboEmpname->lineEdit()->selectAll();
    QTest::keyClicks(form->cboEmpname, QStringLiteral("zzz nobody"));
    QTest::keyClick(form->cboEmpname, Qt::Key_Tab);
    EXPECT_EQ(form->lngEmployeeID, other[0].toInt());
    EXPECT_EQ(form->cboEmpname->currentText(), form->cboEmpname->itemText(form->cboEmpname->currentIndex()));
}

TEST_F(KeyboardFixture, TwoEmployeesOfOneNameAreToldApartByNumber) {
    const QVariantList first =
        demo.rows("select eEmpID, eEmpNo, eName, eDeptID, eDateofjoin from pEmployee where eCompanyID=1 and "
                  "eActive=1 order by eEmpID")
            .first();
    demo.exec(QStringLiteral("insert into pEmployee(eEmpID, eCompanyID, eEmpNo, eName, eActive, eDeptID, "
                             "eDateofjoin) values(9001, 1, 'X9001', '%1', 1, %2, '%3')")
                  .arg(first[2].toString(), first[3].toString(), first[4].toString().left(10)));
    form.reset();
    form = std::make_unique<frmEmployeeDailyAttendance>();
    form->Form_Load();
    form->show();
    QApplication::setActiveWindow(form.get());
    ASSERT_TRUE(QTest::qWaitForWindowActive(form.get()));
    const QStringList named = [&] {
        QStringList out;
        for (int i = 0; i < form->cboEmpname->count(); ++i)
            if (form->cboEmpname->itemText(i).endsWith(first[2].toString())) out << form->cboEmpname->itemText(i);
        return out;
    }();
    ASSERT_EQ(named.size(), 2);
    EXPECT_NE(named[0], named[1]);
    for (const QString& number : {QStringLiteral("X9001"), first[1].toString()}) {
        form->cboEmpname->setFocus();
        form->cboEmpname->lineEdit()->selectAll();
        QTest::keyClicks(form->cboEmpname, number);
        QTest::keyClick(form->cboEmpname, Qt::Key_Tab);
        EXPECT_EQ(form->lngEmployeeID, number == QLatin1String("X9001") ? 9001 : first[0].toInt());
    }
}

TEST_F(KeyboardFixture, AnEmployeeThePickerGreysIsToldWhyBeforePopulate) {
    // Worked out straight from the tables: the last payroll date, and whether any
    // attendance detail lies after it.
    int greyed = 0;
    int clear = 0;
    for (int i = 0; i < form->cboEmpname->count(); ++i) {
        const int id = form->cboEmpname->itemData(i).toInt();
        const QVariant payroll = demo.scalar(
            QStringLiteral("select max(mppPayrollDate) from pMonthlyPayrollProcessing where mppEmpID=%1").arg(id));
        const bool behind =
            !payroll.isNull() &&
            demo.scalar(QStringLiteral("select count(*) from pEmpAttendanceDetail where eadDate > '%1'")
                            .arg(payroll.toString().left(10) + QStringLiteral(" 23:59:59")))
                    .toInt() > 0;
        if ((behind && greyed > 0) || (!behind && clear > 0)) continue;
        SCOPED_TRACE(form->cboEmpname->itemText(i).toStdString());
        msgbox_testing::setAutoAnswer(true);
        form->cboEmpname->setCurrentIndex(i);
        msgbox_testing::setAutoAnswer(false);
        ASSERT_EQ(form->lngEmployeeID, id);
        EXPECT_EQ(form->lblEmployeeStatus->isVisible(), behind);
        if (behind) {
            EXPECT_TRUE(form->lblEmployeeStatus->text().contains(
                QDate::fromString(payroll.toString().left(10), Qt::ISODate).toString(QStringLiteral("dd/MM/yyyy"))));
            // Nothing is blocked: the period is proposed and Populate lays it out.
            EXPECT_FALSE(form->txtStartDate->text().isEmpty());
            ++greyed;
        } else {
            ++clear;
        }
    }
    EXPECT_EQ(greyed, 1);
    EXPECT_EQ(clear, 1);
}
