// The entry form's controls, grids, start-up, keyboard and Cancel, driven through the real
// widgets offscreen.

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QDir>
#include <QFileInfo>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>
#include <QTest>
#include <QTimeEdit>

#include "TestSupport.h"
#include "commonmodule/CommonModule.h"
#include "entry/EntryLauncher.h"
#include "entry/frmEmployeeDailyAttendance.h"
#include "shared/BasAttendence.h"
#include "shared/FlexGrid.h"
#include "shared/MsgBox.h"

using namespace qz2;
using qz2test::TestDb;

namespace {

// One company with calendars and work-time settings for the business year, so that
// choosing an employee shows no message.
void seedCompany(TestDb& t, bool withEmployees = true) {
    t.exec("insert into pSettings(companyid,gracetime,ConsiderLeaveHolidays) values(1,12,1)");
    t.exec("insert into pSettings(companyid,gracetime,ConsiderLeaveHolidays) values(2,30,0)");
    t.exec("insert into pDepartment values(1,1,'Production'),(2,1,'Sales')");
    t.exec(
        "insert into pCalenderHeader(companyid,CalenderID,financialid) "
        "values(1,1,2026),(1,2,2027)");
    t.exec(
        "insert into pCalenderDetail(companyid,CalenderID,HolidayDate) values(1,1,'2026-11-01')");
    t.exec("insert into pCalendarWTSheader(cwtsCompanyID,cwtsid) values(1,1)");
    t.exec(
        "insert into "
        "pCalendarWorkTimeSettings(cwtsCompanyID,cwtsid,cwtsDayID,cwtsCheckIn1,cwtsCheckOut1) "
        "values(1,1,2,'09:00:00','17:00:00')");
    for (int m = 1; m <= 12; ++m)
        t.exec(QStringLiteral("insert into pPayMonthStartDate values(1,%1,'2026-%2-01')")
                   .arg(m)
                   .arg(m, 2, 10, QLatin1Char('0')));
    if (!withEmployees) return;
    t.exec(
        "insert into pEmployee(eEmpID,eCompanyID,eEmpNo,eName,eActive,eDeptID,eDateofjoin) values"
        "(3,1,'E3','Zoe Walsh',1,1,'2018-01-01'),(4,1,'E4','Adam Baker',1,2,'2018-01-01'),"
        "(5,1,'E5','Mia Inactive',0,1,'2018-01-01'),(6,2,'E6','Olga Other',1,NULL,'2018-01-01'),"
        "(7,1,'E7','Carl Doyle',1,1,'2018-01-01')");
}

struct FormFixture : ::testing::Test {
    void SetUp() override {
        gstrEntryMode = QStringLiteral("N");
        msgbox_testing::clear();
        msgbox_testing::setAutoAnswer(true);
    }
    void TearDown() override { msgbox_testing::setAutoAnswer(false); }
    TestDb t;
};

template <typename T>
T* child(QWidget* form, const char* name) {
    T* w = form->findChild<T*>(QString::fromLatin1(name));
    EXPECT_NE(w, nullptr) << name;
    return w;
}

bool activate(QWidget* w) {
    w->show();
    QApplication::setActiveWindow(w);
    return QTest::qWaitForWindowActive(w);
}

}  // namespace

// ---- Controls and grids -------------------------------------------------------------

TEST_F(FormFixture, EveryControlCarriesItsNameAndKind) {
    frmEmployeeDailyAttendance form;
    EXPECT_EQ(form.objectName(), QStringLiteral("frmEmployeeDailyAttendance"));
    child<QComboBox>(&form, "cboEmpname");
    child<QPushButton>(&form, "cmdEmployee");
    for (const char* name :
         {"txtAttNo", "txtAttdate", "txtStartDate", "txtEndDate", "txtTotalDays", "txtNoPresent",
          "txtNoLeave", "txtNoAbsent", "txtAllowanceDeductions", "txtRemarks"})
        child<QLineEdit>(&form, name);
    child<QDateEdit>(&form, "dtpEndDate");
    child<QTimeEdit>(&form, "dtpCheckTime");
    child<QListWidget>(&form, "lstAbsentDays");
    for (const char* name : {"cmdPopulateRecords", "cmdOK", "cmdCancel"})
        child<QPushButton>(&form, name);
    for (const char* name : {"mfgAttendance", "mfgCheckinCheckOut", "mfgMirrorGrid"})
        child<FlexGrid>(&form, name);
    child<QCheckBox>(&form, "chkAllowanceDeductions");
    child<QGroupBox>(&form, "fraEmployeeAttendance");
    child<QGroupBox>(&form, "fraGridContainer");
    child<QLabel>(&form, "lblEmpname");
    QMenu* menu = child<QMenu>(&form, "mnuPopUp");
    ASSERT_NE(menu, nullptr);
    QStringList actions;
    for (QAction* a : menu->actions()) actions << a->objectName();
    EXPECT_TRUE(actions.contains(QStringLiteral("mnuDelete")));
    EXPECT_TRUE(actions.contains(QStringLiteral("mnuHalfDay")));
}

TEST_F(FormFixture, PickersAndHiddenControls) {
    frmEmployeeDailyAttendance form;
    form.show();
    EXPECT_EQ(form.dtpEndDate->displayFormat(), QStringLiteral("dd/MM/yyyy"));
    EXPECT_EQ(form.dtpCheckTime->displayFormat(), QStringLiteral("HH:mm"));
    EXPECT_FALSE(form.dtpCheckTime->isVisible());
    EXPECT_FALSE(form.mfgMirrorGrid->isVisible());
    EXPECT_TRUE(form.mfgAttendance->isVisible());
    EXPECT_TRUE(form.mfgCheckinCheckOut->isVisible());
}

TEST_F(FormFixture, DayGridHeadingsAndWidths) {
    frmEmployeeDailyAttendance form;
    FlexGrid* g = form.mfgAttendance;
    ASSERT_EQ(g->Cols(), 7);
    EXPECT_EQ(g->Rows(), 1);
    const QStringList headings = {"",      "Date",         "Type", "Worked Hours", "Schedule Hours",
                                  "Hours", "AllowanceType"};
    for (int c = 0; c < 7; ++c) {
        EXPECT_EQ(g->TextMatrix(0, c), headings[c]);
        EXPECT_EQ(g->model()->headerData(c, Qt::Horizontal, Qt::DisplayRole).toString(),
                  headings[c]);
    }
    EXPECT_EQ(g->columnWidth(1), 1400 / 15);
    EXPECT_EQ(g->columnWidth(2), 1000 / 15);
    EXPECT_EQ(g->columnWidth(3), 1250 / 15);
    EXPECT_EQ(g->columnWidth(4), 1250 / 15);
    EXPECT_TRUE(g->isColumnHidden(5));
    EXPECT_TRUE(g->isColumnHidden(6));
    EXPECT_FALSE(g->isColumnHidden(1));
}

TEST_F(FormFixture, PairGridsHeadings) {
    frmEmployeeDailyAttendance form;
    for (FlexGrid* g : {form.mfgCheckinCheckOut, form.mfgMirrorGrid}) {
        ASSERT_EQ(g->Cols(), 4);
        EXPECT_EQ(g->Rows(), 1);
        EXPECT_EQ(g->TextMatrix(0, 0), QStringLiteral("Date"));
        EXPECT_EQ(g->TextMatrix(0, 1), QStringLiteral("SlNo"));
        EXPECT_EQ(g->TextMatrix(0, 2), QStringLiteral("CheckIn"));
        EXPECT_EQ(g->TextMatrix(0, 3), QStringLiteral("Check Out"));
    }
}

TEST_F(FormFixture, ClearingTheGridsKeepsHeadingsAndWidths) {
    frmEmployeeDailyAttendance form;
    form.mfgAttendance->setRows(4);
    form.mfgAttendance->setColWidthTwips(1, 3000);
    form.mfgAttendance->setTextMatrix(0, 2, QStringLiteral("x"));
    form.mfgCheckinCheckOut->setRows(3);
    form.mfgMirrorGrid->setRows(9);
    form.dtpCheckTime->setVisible(true);
    form.fnClearGrids();
    EXPECT_EQ(form.mfgAttendance->Rows(), 1);
    EXPECT_EQ(form.mfgCheckinCheckOut->Rows(), 1);
    EXPECT_EQ(form.mfgMirrorGrid->Rows(), 1);
    EXPECT_EQ(form.mfgAttendance->TextMatrix(0, 2), QStringLiteral("Type"));
    EXPECT_EQ(form.mfgAttendance->columnWidth(1), 1400 / 15);
    EXPECT_EQ(form.mfgMirrorGrid->TextMatrix(0, 3), QStringLiteral("Check Out"));
    EXPECT_FALSE(form.dtpCheckTime->isVisibleTo(&form));
}

// ---- The start date box -------------------------------------------------------------

TEST_F(FormFixture, StartDateBoxTakesOnlyARealDate) {
    frmEmployeeDailyAttendance form;
    ASSERT_TRUE(activate(&form));
    QLineEdit* box = form.txtStartDate;
    box->setFocus();
    box->clear();
    QTest::keyClicks(box, QStringLiteral("15/11/2026"));
    EXPECT_EQ(box->text(), QStringLiteral("15/11/2026"));
    EXPECT_TRUE(box->hasAcceptableInput());

    box->clear();
    QTest::keyClicks(box, QStringLiteral("31/02/2026"));
    EXPECT_NE(box->text(), QStringLiteral("31/02/2026"));
    EXPECT_FALSE(box->hasAcceptableInput());

    box->clear();
    QTest::keyClicks(box, QStringLiteral("ab32/13"));
    // Letters refused, "32" refused as a day, "13" refused as a month.
    EXPECT_EQ(box->text(), QStringLiteral("3/1"));
}

TEST_F(FormFixture, LeavingTheStartDateUnfinishedBringsBackTheLastDate) {
    frmEmployeeDailyAttendance form;
    ASSERT_TRUE(activate(&form));
    form.txtStartDate->setText(QStringLiteral("01/11/2026"));
    form.txtStartDate->setFocus();
    form.txtStartDate->selectAll();
    QTest::keyClicks(form.txtStartDate, QStringLiteral("12/1"));
    EXPECT_EQ(form.txtStartDate->text(), QStringLiteral("12/1"));
    form.txtRemarks->setFocus();
    EXPECT_EQ(form.txtStartDate->text(), QStringLiteral("01/11/2026"));
}

// ---- Start-up ------------------------------------------------------------------------

TEST_F(FormFixture, LoadFillsTheActiveEmployeesAndReadsTheSettings) {
    seedCompany(t);
    frmEmployeeDailyAttendance form;
    form.Form_Load();
    ASSERT_EQ(form.cboEmpname->count(), 3);
    // Listed by name, each shown with its number first.
    EXPECT_EQ(form.cboEmpname->itemText(0), QStringLiteral("E4 \u2013 Adam Baker"));
    EXPECT_EQ(form.cboEmpname->itemText(1), QStringLiteral("E7 \u2013 Carl Doyle"));
    EXPECT_EQ(form.cboEmpname->itemText(2), QStringLiteral("E3 \u2013 Zoe Walsh"));
    EXPECT_EQ(form.cboEmpname->itemData(0).toInt(), 4);
    EXPECT_EQ(form.cboEmpname->itemData(2).toInt(), 3);
    // "gracetime" and "ConsiderLeaveHolidays" come from the first settings row.
    EXPECT_EQ(form.intGraceTime, 12);
    EXPECT_TRUE(form.blnConsiderLeaveHolidays);
}

TEST_F(FormFixture, NewModeSelectsTheFirstEmployeeAndProposesItsPeriod) {
    seedCompany(t);
    frmEmployeeDailyAttendance form;
    form.Form_Load();
    EXPECT_EQ(form.cboEmpname->currentIndex(), 0);
    EXPECT_EQ(form.lngEmployeeID, 4);
    EXPECT_EQ(form.txtAttdate->text(), QStringLiteral("21/11/2026"));
    // No earlier entry: the pay month of November starts on the 1st.
    EXPECT_EQ(form.txtStartDate->text(), QStringLiteral("01/11/2026"));
    EXPECT_EQ(form.dtpEndDate->date(), QDate(2026, 11, 30));
    EXPECT_EQ(form.txtEndDate->text(), QStringLiteral("30/11/2026"));
    EXPECT_EQ(form.txtTotalDays->text(), QStringLiteral("30"));
    EXPECT_EQ(form.lngWorkTimeSettingID, 1);
    EXPECT_EQ(form.lstAbsentDays->count(), 29);  // November less its one holiday
    EXPECT_TRUE(msgbox_testing::shown().isEmpty());
    EXPECT_EQ(form.mfgAttendance->Rows(), 1);
    EXPECT_EQ(form.mfgAttendance->TextMatrix(0, 1), QStringLiteral("Date"));
}

TEST_F(FormFixture, WithNoActiveEmployeeTheBoxStaysEmptyAndNobodyIsSelected) {
    seedCompany(t, /*withEmployees=*/false);
    t.exec(
        "insert into pEmployee(eEmpID,eCompanyID,eEmpNo,eName,eActive) values(5,1,'E5','Mia "
        "Inactive',0)");
    frmEmployeeDailyAttendance form;
    form.Form_Load();
    EXPECT_EQ(form.cboEmpname->count(), 0);
    EXPECT_EQ(form.cboEmpname->currentIndex(), -1);
    EXPECT_EQ(form.lngEmployeeID, 0);
    EXPECT_EQ(form.txtStartDate->text(), QStringLiteral("21/11/2026"));
    EXPECT_EQ(form.dtpEndDate->date(), QDate(2026, 11, 22));
    EXPECT_EQ(form.txtTotalDays->text(), QStringLiteral("2"));
    EXPECT_TRUE(msgbox_testing::shown().isEmpty());
    // Saving then reports that no employee is chosen, and writes nothing.
    const QVariant headers = t.scalar("select count(*) from pEmployeeAttendence");
    form.cmdOK_Click();
    ASSERT_EQ(msgbox_testing::shown().size(), 1);
    EXPECT_EQ(msgbox_testing::shown().first().text, QStringLiteral("Select Employee"));
    EXPECT_FALSE(form.saved());
    EXPECT_EQ(t.scalar("select count(*) from pEmployeeAttendence"), headers);
}

TEST_F(FormFixture, TotalDaysCountBothEndsOfASingleDay) {
    seedCompany(t, false);
    frmEmployeeDailyAttendance form;
    form.Form_Load();
    form.txtStartDate->setText(QStringLiteral("21/11/2026"));
    form.dtpEndDate->setDate(QDate(2026, 11, 21));
    form.fnShowTotalDays();
    EXPECT_EQ(form.txtTotalDays->text(), QStringLiteral("1"));
}

TEST_F(FormFixture, EditModeSelectsNobodyAndProposesNothing) {
    seedCompany(t);
    gstrEntryMode = QStringLiteral("E");
    frmEmployeeDailyAttendance form;
    form.Form_Load();
    EXPECT_EQ(form.cboEmpname->count(), 3);
    EXPECT_EQ(form.cboEmpname->currentIndex(), -1);
    EXPECT_TRUE(form.txtStartDate->text().isEmpty());
    EXPECT_TRUE(form.txtTotalDays->text().isEmpty());
    EXPECT_EQ(form.mfgAttendance->Cols(), 7);
    // The register then selects the entry's employee: no period is proposed in Edit mode.
    form.commonGen()->SelectComboItemByValue(form.cboEmpname, 7);
    EXPECT_EQ(form.lngEmployeeID, 7);
    EXPECT_TRUE(form.txtStartDate->text().isEmpty());
}

TEST_F(FormFixture, AFailingStartUpEndsQuietly) {
    seedCompany(t);
    t.exec("drop table pSettings");
    frmEmployeeDailyAttendance form;
    form.Form_Load();
    EXPECT_TRUE(form.isLoaded());
    EXPECT_EQ(form.cboEmpname->count(), 3);  // filled before the failure
    EXPECT_TRUE(form.txtAttdate->text().isEmpty());
    EXPECT_TRUE(msgbox_testing::shown().isEmpty());
}

TEST_F(FormFixture, ShowingTheFormLoadsItOnce) {
    seedCompany(t);
    frmEmployeeDailyAttendance form;
    EXPECT_FALSE(form.isLoaded());
    form.show();
    EXPECT_TRUE(form.isLoaded());
    EXPECT_EQ(form.cboEmpname->count(), 3);
}

// ---- Keyboard and Cancel --------------------------------------------------------------

TEST_F(FormFixture, EnterMovesOnFromEveryListedControl) {
    seedCompany(t);
    frmEmployeeDailyAttendance form;
    form.Form_Load();
    ASSERT_TRUE(activate(&form));
    const QList<QWidget*> controls = {form.cboEmpname,   form.chkAllowanceDeductions,
                                      form.txtAttdate,   form.txtAttNo,
                                      form.txtNoAbsent,  form.txtNoLeave,
                                      form.txtNoPresent, form.txtStartDate,
                                      form.txtTotalDays, form.lstAbsentDays,
                                      form.txtRemarks};
    for (QWidget* w : controls) {
        w->setFocus();
        ASSERT_EQ(QApplication::focusWidget(), w) << w->objectName().toStdString();
        QWidget* next = w->nextInFocusChain();
        // The employee box's own line edit is part of the box, not the next control.
        while (next && (w->isAncestorOf(next) || !(next->focusPolicy() & Qt::TabFocus &&
                                                    next->isVisible() && next->isEnabled())))
            next = next->nextInFocusChain();
        QTest::keyClick(w, Qt::Key_Return);
        EXPECT_NE(QApplication::focusWidget(), w) << w->objectName().toStdString();
        EXPECT_EQ(QApplication::focusWidget(), next) << w->objectName().toStdString();
    }
    // Enter on a control outside the list (the end date) presses no button either.
    form.dtpEndDate->setFocus();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    EXPECT_TRUE(form.isVisible());  // Enter never pressed OK or Cancel
    EXPECT_EQ(form.result(), 0);
}

TEST_F(FormFixture, TabOrderFollowsTheWorkOfTheClerk) {
    frmEmployeeDailyAttendance form;
    // The boxes the form fills (number, total, counts) are read, not keyed: Tab passes them.
    const QList<QWidget*> order = {form.cboEmpname,
                                   form.cmdEmployee,
                                   form.txtAttdate,
                                   form.txtStartDate,
                                   form.dtpEndDate,
                                   form.lstAbsentDays,
                                   form.cmdPopulateRecords,
                                   // Punches come after Populate, before the days they fill.
                                   form.cmdImportPunches,
                                   form.mfgAttendance,
                                   form.mfgCheckinCheckOut,
                                   form.chkAllowanceDeductions,
                                   form.txtAllowanceDeductions,
                                   form.txtRemarks,
                                   form.cmdOK,
                                   form.cmdCancel};
    for (int i = 1; i < order.size(); ++i) {
        QWidget* next = order[i - 1]->nextInFocusChain();
        // Compound widgets (the date picker) have inner children in the chain.
        // and labels, frames and hidden controls never take the focus.
        while (next && next != order[i] &&
               (order[i - 1]->isAncestorOf(next) || !(next->focusPolicy() & Qt::TabFocus) ||
                !next->isVisibleTo(&form)))
            next = next->nextInFocusChain();
        EXPECT_EQ(next, order[i]) << order[i - 1]->objectName().toStdString() << " then "
                                  << (next ? next->metaObject()->className() : "none") << " "
                                  << (next ? next->objectName().toStdString() : std::string());
    }
}

TEST_F(FormFixture, CancelUnloadsWithoutWriting) {
    seedCompany(t);
    const QString before = t.dump();
    frmEmployeeDailyAttendance form;
    form.Form_Load();
    ASSERT_TRUE(activate(&form));
    QTest::mouseClick(form.cmdCancel, Qt::LeftButton);
    EXPECT_FALSE(form.isVisible());
    EXPECT_EQ(form.result(), QDialog::Rejected);
    EXPECT_EQ(t.dump(), before);
}

TEST_F(FormFixture, TheRegistersNewOpensTheFormModallyAndCancelReturns) {
    seedCompany(t);
    const QString before = t.dump();
    QString seenName;
    int employees = -1;
    qz2test::whenModal([&](QWidget* w) {
        seenName = w->objectName();
        auto* form = qobject_cast<frmEmployeeDailyAttendance*>(w);
        if (form) {
            employees = form->cboEmpname->count();
            QTest::mouseClick(form->cmdCancel, Qt::LeftButton);
        } else {
            w->close();
        }
    });
    entry::showNewEntry(nullptr);
    EXPECT_EQ(seenName, QStringLiteral("frmEmployeeDailyAttendance"));
    EXPECT_EQ(employees, 3);
    EXPECT_EQ(t.dump(), before);
}

TEST_F(FormFixture, EditOpensTheFormInEditMode) {
    seedCompany(t);
    gstrEntryMode = QStringLiteral("N");
    bool edit = false;
    qz2test::whenModal([&](QWidget* w) {
        edit = gstrEntryMode == QLatin1String("E") &&
               w->objectName() == QLatin1String("frmEmployeeDailyAttendance");
        w->close();
    });
    entry::openEntryForEdit(nullptr, QStringLiteral("1"), false);
    EXPECT_TRUE(edit);
}

// ---- Absent days ---------------------------------------------------------------------

TEST_F(FormFixture, AbsentDaysArePickedByClickAndShowTicked) {
    seedCompany(t);
    frmEmployeeDailyAttendance form;
    form.Form_Load();
    ASSERT_TRUE(activate(&form));
    QListWidget* list = form.lstAbsentDays;
    ASSERT_GE(list->count(), 5);
    EXPECT_EQ(list->item(0)->text(), QStringLiteral("2026/11/02"));  // the 1st is a holiday
    auto click = [list](int row) {
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {},
                          list->visualItemRect(list->item(row)).center());
    };
    click(1);
    click(3);
    EXPECT_EQ(form.fnPickedAbsentDays(), QList<QDate>({QDate(2026, 11, 3), QDate(2026, 11, 5)}));
    EXPECT_EQ(list->item(1)->checkState(), Qt::Checked);
    EXPECT_TRUE(list->item(1)->isSelected());
    EXPECT_EQ(list->item(2)->checkState(), Qt::Unchecked);
    click(1);  // a second click takes the pick back
    EXPECT_EQ(form.fnPickedAbsentDays(), QList<QDate>({QDate(2026, 11, 5)}));
    EXPECT_FALSE(list->item(1)->isSelected());
    // Ticking by code (or by the check box) selects as well.
    list->item(4)->setCheckState(Qt::Checked);
    EXPECT_TRUE(list->item(4)->isSelected());
}

// ---- Layout --------------------------------------------------------------------------

TEST_F(FormFixture, NothingIsCutOffAndTheGridsTakeTheExtraSpace) {
    seedCompany(t);
    frmEmployeeDailyAttendance form;
    form.Form_Load();
    form.show();
    form.resize(form.minimumSizeHint());
    QApplication::processEvents();
    for (QLabel* label : form.findChildren<QLabel*>()) {
        if (!label->isVisible()) continue;
        EXPECT_GE(label->width(), label->minimumSizeHint().width()) << label->text().toStdString();
    }
    for (QPushButton* b : form.findChildren<QPushButton*>()) {
        if (!b->isVisible()) continue;
        EXPECT_GE(b->width(), b->minimumSizeHint().width()) << b->text().toStdString();
    }
    const int dayGridHeight = form.mfgAttendance->height();
    const int dayGridWidth = form.mfgAttendance->width();
    const int headHeight = form.fraEmployeeAttendance->height();
    form.resize(form.width() + 300, form.height() + 200);
    QApplication::processEvents();
    EXPECT_GT(form.mfgAttendance->height(), dayGridHeight);
    EXPECT_GT(form.mfgAttendance->width(), dayGridWidth);
    EXPECT_EQ(form.fraEmployeeAttendance->height(), headHeight);
    // At its normal size the day grid shows all its visible columns without scrolling.
    form.resize(1040, 620);
    QApplication::processEvents();
    EXPECT_LE(form.mfgAttendance->horizontalHeader()->length(),
              form.mfgAttendance->viewport()->width());
}

TEST_F(FormFixture, Screenshot) {
    const QByteArray dir = qgetenv("QZ2_SCREENSHOT_DIR");
    if (dir.isEmpty()) GTEST_SKIP() << "set QZ2_SCREENSHOT_DIR to write docs/entry-form.png";
    TestDb demo(true);
    gstrEntryMode = QStringLiteral("N");
    frmEmployeeDailyAttendance form;
    form.Form_Load();
    form.cboEmpname->setCurrentIndex(2);
    form.lstAbsentDays->item(3)->setCheckState(Qt::Checked);
    form.show();
    QApplication::processEvents();
    const QString file =
        QDir(QString::fromLocal8Bit(dir)).filePath(QStringLiteral("entry-form.png"));
    ASSERT_TRUE(form.grab().save(file));
    EXPECT_TRUE(QFileInfo::exists(file));
}
