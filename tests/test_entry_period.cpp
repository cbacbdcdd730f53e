// Choosing the employee on the entry form: department and date of join, the proposed
// period, the calendar and work-time checks with their messages, the grids cleared, and the
// monthly-entry overlap check.

#include <gtest/gtest.h>

#include <QComboBox>
#include <QDateEdit>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QSignalBlocker>
#include <QTest>

#include "TestSupport.h"
#include "entry/frmEmployeeDailyAttendance.h"
#include "shared/BasAttendence.h"
#include "shared/FlexGrid.h"
#include "shared/MsgBox.h"

using namespace qz2;
using qz2test::TestDb;

namespace {

QStringList shownTexts() {
    QStringList out;
    for (const ShownMessage& m : msgbox_testing::shown()) out << m.text;
    return out;
}

struct PeriodFixture : ::testing::Test {
    void SetUp() override {
        gstrEntryMode = QStringLiteral("N");
        msgbox_testing::clear();
        msgbox_testing::setAutoAnswer(true);
        t.exec(
            "insert into pSettings(companyid,gracetime,calendardepwise,cwtsdepwise) "
            "values(1,5,0,0)");
        t.exec("insert into pDepartment values(1,1,'Production  '),(2,1,'Sales')");
        t.exec(
            "insert into pCalenderHeader(companyid,CalenderID,financialid,departmentid) values"
            "(1,1,2026,NULL),(1,2,2027,NULL)");
        t.exec(
            "insert into pCalenderDetail(companyid,CalenderID,HolidayDate) values"
            "(1,1,'2026-11-20'),(1,1,'2026-12-25'),(1,2,'2027-01-01')");
        t.exec(
            "insert into pCalendarWTSheader(cwtsCompanyID,cwtsid,cwtsdepartmentid) "
            "values(1,1,NULL),(1,4,NULL)");
        t.exec(
            "insert into "
            "pCalendarWorkTimeSettings(cwtsCompanyID,cwtsid,cwtsDayID,cwtsCheckIn1,cwtsCheckOut1) "
            "values(1,1,2,'09:00:00','17:00:00'),(1,4,2,'08:00:00','16:00:00')");
        // Pay months start on the 16th, in an old year that the proposal moves forward.
        for (int m = 1; m <= 12; ++m)
            t.exec(QStringLiteral("insert into pPayMonthStartDate values(1,%1,'2024-%2-16')")
                       .arg(m)
                       .arg(m, 2, 10, QLatin1Char('0')));
        // Sorted by name: Anna (dept 1), Bert (dept 2), Cleo (no department).
        employee(1, "Anna Abbott", 1, "2015-06-01");
        employee(2, "Bert Baker", 2, "2016-06-01");
    }
    void TearDown() override { msgbox_testing::setAutoAnswer(false); }

    void employee(int id, const QString& name, QVariant dept, const QString& joined) {
        t.exec(
            QStringLiteral(
                "insert into pEmployee(eEmpID,eCompanyID,eEmpNo,eName,eActive,eDeptID,eDateofjoin) "
                "values(%1,1,'E%1','%2',1,%3,'%4')")
                .arg(id)
                .arg(name, dept.isNull() ? QStringLiteral("NULL") : dept.toString(), joined));
    }
    void entry(int id, int emp, const QString& start, const QString& end, int cancelled) {
        t.exec(QStringLiteral(
                   "insert into "
                   "pEmployeeAttendence(eaCompanyID,eaID,eaNo,eaEmpID,eaStartDate,eaEndDate,"
                   "eaCancelled) values(1,%1,'ATT%1',%2,'%3','%4',%5)")
                   .arg(id)
                   .arg(emp)
                   .arg(start, end)
                   .arg(cancelled));
    }
    // Loads the form (which proposes Anna's period) and clears the messages of that.
    void load() {
        form.Form_Load();
        msgbox_testing::clear();
    }
    void choose(int employeeId) {
        const int index = form.cboEmpname->findData(employeeId);
        ASSERT_GE(index, 0);
        form.cboEmpname->setCurrentIndex(index);
    }

    TestDb t;
    frmEmployeeDailyAttendance form;
};

}  // namespace

TEST_F(PeriodFixture, FirstEntryStartsOnThePayMonthMovedIntoTheBusinessYear) {
    load();
    EXPECT_EQ(form.lngEmployeeID, 1);
    EXPECT_EQ(form.txtStartDate->text(), QStringLiteral("16/11/2026"));
    EXPECT_EQ(form.dtpEndDate->date(), QDate(2026, 12, 15));
    EXPECT_EQ(form.txtEndDate->text(), QStringLiteral("15/12/2026"));
    EXPECT_EQ(form.txtTotalDays->text(), QStringLiteral("30"));
    EXPECT_EQ(form.dtPeriodStart, QDate(2026, 11, 16));
    EXPECT_TRUE(form.cmdPopulateRecords->isEnabled());
    EXPECT_TRUE(form.cmdOK->isEnabled());
    // The working days: the period less its one holiday, none picked.
    ASSERT_EQ(form.lstAbsentDays->count(), 29);
    EXPECT_EQ(form.lstAbsentDays->item(0)->text(), QStringLiteral("2026/11/16"));
    EXPECT_EQ(form.lstAbsentDays->item(3)->text(), QStringLiteral("2026/11/19"));
    EXPECT_EQ(form.lstAbsentDays->item(4)->text(), QStringLiteral("2026/11/21"));
    EXPECT_EQ(form.lstAbsentDays->item(28)->text(), QStringLiteral("2026/12/15"));
    EXPECT_TRUE(form.fnPickedAbsentDays().isEmpty());
}

TEST_F(PeriodFixture, NextPeriodFollowsTheLastEntryThatIsNotCancelled) {
    entry(1, 2, "2026-09-16", "2026-10-15", 0);
    entry(2, 2, "2026-10-16", "2026-11-15", 1);  // cancelled: its days are free again
    load();
    choose(2);
    EXPECT_EQ(form.txtStartDate->text(), QStringLiteral("16/10/2026"));
    EXPECT_EQ(form.dtpEndDate->date(), QDate(2026, 11, 15));
    EXPECT_EQ(form.txtTotalDays->text(), QStringLiteral("31"));
    EXPECT_TRUE(shownTexts().isEmpty());
}

TEST_F(PeriodFixture, NoEntryAndNoPayMonthKeepTheFormsStart) {
    t.exec("delete from pPayMonthStartDate");
    load();
    form.txtStartDate->setText(QStringLiteral("05/11/2026"));
    choose(2);
    EXPECT_EQ(form.txtStartDate->text(), QStringLiteral("05/11/2026"));
    EXPECT_EQ(form.dtpEndDate->date(), QDate(2026, 12, 4));
    EXPECT_EQ(form.txtTotalDays->text(), QStringLiteral("30"));
}

TEST_F(PeriodFixture, AnEmployeeWhoJoinedAfterTheStartStartsOnTheDateOfJoin) {
    employee(3, "Cleo Carter", 1, "2026-11-25");
    load();
    choose(3);
    EXPECT_EQ(form.txtStartDate->text(), QStringLiteral("25/11/2026"));
    EXPECT_EQ(form.dtpEndDate->date(), QDate(2026, 12, 15));  // the end stays
    EXPECT_EQ(form.txtTotalDays->text(), QStringLiteral("21"));
    EXPECT_EQ(form.lstAbsentDays->item(0)->text(), QStringLiteral("2026/11/25"));
}

TEST_F(PeriodFixture, TheMissingDateOfJoinStopsTheProposal) {
    employee(3, "Cleo Carter", 1, "9999-11-01");
    load();
    choose(3);
    EXPECT_EQ(shownTexts(), QStringList({"Invalid date of Join cannot proceed"}));
    EXPECT_EQ(msgbox_testing::shown().first().icon, MsgIcon::Information);
    // The form keeps Anna's period.
    EXPECT_EQ(form.txtStartDate->text(), QStringLiteral("16/11/2026"));
    EXPECT_EQ(form.txtTotalDays->text(), QStringLiteral("30"));
}

TEST_F(PeriodFixture, AnEmployeeWithoutDepartmentIsTold) {
    employee(3, "Cleo Carter", QVariant(), "2015-01-01");
    load();
    choose(3);
    EXPECT_EQ(shownTexts(), QStringList({"There is no department for this employee."}));
    EXPECT_EQ(msgbox_testing::shown().first().icon, MsgIcon::Information);
    EXPECT_EQ(form.lngEmployeeID, 3);
    EXPECT_EQ(form.lngDepartmentID, 0);
    EXPECT_TRUE(form.strDepartmentName.isEmpty());
}

TEST_F(PeriodFixture, TheRealMessageBoxCarriesTitleIconAndText) {
    employee(3, "Cleo Carter", QVariant(), "2015-01-01");
    load();
    msgbox_testing::setAutoAnswer(false);
    QString text, title;
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    qz2test::whenModal([&](QWidget* w) {
        auto* box = qobject_cast<QMessageBox*>(w);
        ASSERT_NE(box, nullptr);
        text = box->text();
        title = box->windowTitle();
        icon = box->icon();
        box->button(QMessageBox::Ok)->click();
    });
    choose(3);
    EXPECT_EQ(text, QStringLiteral("There is no department for this employee."));
    EXPECT_EQ(title, QStringLiteral("Attendance Test"));
    EXPECT_EQ(icon, QMessageBox::Information);
}

TEST_F(PeriodFixture, DepartmentWiseCalendarOnNeedsTheDepartmentsCalendar) {
    t.exec("update pSettings set calendardepwise=1");
    t.exec(
        "insert into pCalenderHeader(companyid,CalenderID,financialid,departmentid) "
        "values(1,3,2026,2),(1,4,2027,2)");
    load();  // Anna's department 1 has no calendar of its own
    EXPECT_EQ(form.strCalendarCondition, QStringLiteral(" and departmentid=1"));
    EXPECT_FALSE(form.cmdPopulateRecords->isEnabled());
    EXPECT_FALSE(form.cmdOK->isEnabled());
    choose(2);
    EXPECT_EQ(form.strCalendarCondition, QStringLiteral(" and departmentid=2"));
    EXPECT_TRUE(shownTexts().isEmpty());
    EXPECT_TRUE(form.cmdPopulateRecords->isEnabled());
    EXPECT_TRUE(form.cmdOK->isEnabled());
    choose(1);
    // The department name is trimmed in the message; the spelling is the suite's.
    EXPECT_EQ(shownTexts(),
              QStringList({"Calender Settings not Found for Production for the year - 2026"}));
    EXPECT_EQ(msgbox_testing::shown().first().icon, MsgIcon::Information);
    EXPECT_FALSE(form.cmdPopulateRecords->isEnabled());
    EXPECT_FALSE(form.cmdOK->isEnabled());
}

TEST_F(PeriodFixture, DepartmentWiseCalendarOffUsesTheCompanyCalendar) {
    t.exec(
        "insert into pCalenderHeader(companyid,CalenderID,financialid,departmentid) "
        "values(1,3,2026,2)");
    load();
    choose(2);
    choose(1);
    EXPECT_TRUE(form.strCalendarCondition.isEmpty());
    EXPECT_TRUE(shownTexts().isEmpty());
    EXPECT_TRUE(form.cmdPopulateRecords->isEnabled());
}

TEST_F(PeriodFixture, DepartmentWiseHolidaysListOnlyTheDepartmentsCalendar) {
    t.exec("update pSettings set calendardepwise=1");
    t.exec(
        "insert into pCalenderHeader(companyid,CalenderID,financialid,departmentid) "
        "values(1,3,2026,2)");
    t.exec(
        "insert into pCalenderDetail(companyid,CalenderID,HolidayDate) values(1,3,'2026-11-18')");
    // Bert's period ends in November so that only the 2026 calendar is needed.
    entry(1, 2, "2026-10-01", "2026-10-31", 0);
    load();
    choose(2);
    EXPECT_TRUE(shownTexts().isEmpty());
    QStringList days;
    for (int i = 0; i < form.lstAbsentDays->count(); ++i)
        days << form.lstAbsentDays->item(i)->text();
    EXPECT_EQ(days.size(), 29);
    EXPECT_FALSE(days.contains(QStringLiteral("2026/11/18")));
    EXPECT_TRUE(days.contains(QStringLiteral("2026/11/20")));  // the other calendar's holiday
}

TEST_F(PeriodFixture, APeriodAcrossTheYearNeedsBothCalendars) {
    entry(1, 2, "2026-11-16", "2026-12-15", 0);  // Bert's next period: 16/12/2026 to 15/01/2027
    load();
    choose(2);
    EXPECT_EQ(form.txtEndDate->text(), QStringLiteral("15/01/2027"));
    EXPECT_TRUE(shownTexts().isEmpty());
    EXPECT_TRUE(form.cmdPopulateRecords->isEnabled());
    ASSERT_EQ(form.lstAbsentDays->count(), 31 - 2);
    EXPECT_EQ(form.lstAbsentDays->item(form.lstAbsentDays->count() - 1)->text(),
              QStringLiteral("2027/01/15"));
}

TEST_F(PeriodFixture, APeriodAcrossTheYearWithoutTheSecondYearsCalendar) {
    t.exec("delete from pCalenderHeader where financialid=2027");
    entry(1, 2, "2026-11-16", "2026-12-15", 0);
    load();
    choose(2);
    EXPECT_EQ(shownTexts(),
              QStringList({"Calender Settings not Found for Sales for the year - 2027"}));
    EXPECT_FALSE(form.cmdPopulateRecords->isEnabled());
    EXPECT_FALSE(form.cmdOK->isEnabled());
    EXPECT_EQ(form.lstAbsentDays->count(), 0);
}

TEST_F(PeriodFixture, APeriodAcrossTheYearWithoutTheFirstYearsCalendar) {
    t.exec("delete from pCalenderHeader where financialid=2026");
    entry(1, 2, "2026-11-16", "2026-12-15", 0);
    load();
    choose(2);
    // Only the first missing year is reported.
    EXPECT_EQ(shownTexts(),
              QStringList({"Calender Settings not Found for Sales for the year - 2026"}));
    EXPECT_FALSE(form.cmdPopulateRecords->isEnabled());
}

TEST_F(PeriodFixture, TheNewestWorkTimeSettingBecomesTheEntrys) {
    load();
    EXPECT_EQ(form.lngWorkTimeSettingID, 4);
    EXPECT_TRUE(form.strWorkTimeCondition.isEmpty());
}

TEST_F(PeriodFixture, DepartmentWiseWorkTimeOnAndOff) {
    t.exec("insert into pCalendarWTSheader(cwtsCompanyID,cwtsid,cwtsdepartmentid) values(1,7,2)");
    t.exec(
        "insert into "
        "pCalendarWorkTimeSettings(cwtsCompanyID,cwtsid,cwtsDayID,cwtsCheckIn1,cwtsCheckOut1) "
        "values(1,7,2,'10:00:00','18:00:00')");
    t.exec("update pCalendarWTSheader set cwtsdepartmentid=2 where cwtsid in (1,4)");
    // Off: every setting of the company counts.
    load();
    EXPECT_EQ(form.lngWorkTimeSettingID, 7);
    EXPECT_TRUE(shownTexts().isEmpty());
    // On: Anna's department 1 has none; Bert's department 2 has 7.
    t.exec("update pSettings set cwtsdepwise=1");
    choose(2);
    EXPECT_EQ(form.strWorkTimeCondition, QStringLiteral(" and cwtsdepartmentid=2"));
    EXPECT_EQ(form.lngWorkTimeSettingID, 7);
    EXPECT_TRUE(shownTexts().isEmpty());
    choose(1);
    EXPECT_EQ(shownTexts(), QStringList({"Worktime Settings not Found for Production  "}));
    EXPECT_EQ(msgbox_testing::shown().first().icon, MsgIcon::Information);
    EXPECT_EQ(form.lngWorkTimeSettingID, 0);
}

TEST_F(PeriodFixture, ChoosingAnotherEmployeeClearsTheGrids) {
    load();
    form.mfgAttendance->setRows(5);
    form.mfgAttendance->setTextMatrix(1, 1, QStringLiteral("16/11/2026"));
    form.mfgCheckinCheckOut->setRows(3);
    form.mfgMirrorGrid->setRows(7);
    form.mfgMirrorGrid->setTextMatrix(1, 0, QStringLiteral("16/11/2026"));
    choose(2);
    EXPECT_EQ(form.mfgAttendance->Rows(), 1);
    EXPECT_EQ(form.mfgCheckinCheckOut->Rows(), 1);
    EXPECT_EQ(form.mfgMirrorGrid->Rows(), 1);
    EXPECT_EQ(form.mfgAttendance->TextMatrix(0, 4), QStringLiteral("Schedule Hours"));
    EXPECT_EQ(form.mfgCheckinCheckOut->TextMatrix(0, 3), QStringLiteral("Check Out"));
}

TEST_F(PeriodFixture, TheClerkChoosesWithTheKeyboard) {
    entry(1, 2, "2026-10-01", "2026-10-31", 0);
    load();
    form.show();
    QApplication::setActiveWindow(&form);
    ASSERT_TRUE(QTest::qWaitForWindowActive(&form));
    form.cboEmpname->setFocus();
    QTest::keyClick(form.cboEmpname, Qt::Key_Down);
    EXPECT_EQ(form.cboEmpname->currentText(), QStringLiteral("E2 \u2013 Bert Baker"));
    EXPECT_EQ(form.lngEmployeeID, 2);
    EXPECT_EQ(form.txtStartDate->text(), QStringLiteral("01/11/2026"));
    EXPECT_EQ(form.txtTotalDays->text(), QStringLiteral("30"));
}

TEST_F(PeriodFixture, TheHandlerDoesNotReenterItself) {
    employee(3, "Cleo Carter", QVariant(), "2015-01-01");
    load();
    msgbox_testing::setAutoAnswer(false);
    int nestedIndex = -1;
    // While the first choice's message is up, the selection changes again underneath.
    qz2test::whenModal([&](QWidget* w) {
        form.cboEmpname->setCurrentIndex(form.cboEmpname->findData(2));
        nestedIndex = form.cboEmpname->currentIndex();
        qobject_cast<QMessageBox*>(w)->button(QMessageBox::Ok)->click();
    });
    choose(3);
    EXPECT_EQ(nestedIndex, form.cboEmpname->findData(2));
    // The nested change did not run the handler: the employee is still the one being handled.
    EXPECT_EQ(form.lngEmployeeID, 3);
    EXPECT_EQ(msgbox_testing::shown().size(), 1);
}

TEST_F(PeriodFixture, EditModeDoesNotProposeAPeriod) {
    load();
    gstrEntryMode = QStringLiteral("E");
    form.txtStartDate->setText(QStringLiteral("01/10/2026"));
    form.dtpEndDate->setDate(QDate(2026, 10, 31));
    form.txtTotalDays->setText(QStringLiteral("31"));
    form.mfgAttendance->setRows(3);
    choose(2);
    EXPECT_EQ(form.lngEmployeeID, 2);
    EXPECT_EQ(form.lngDepartmentID, 2);
    EXPECT_EQ(form.txtStartDate->text(), QStringLiteral("01/10/2026"));
    EXPECT_EQ(form.dtpEndDate->date(), QDate(2026, 10, 31));
    EXPECT_EQ(form.txtTotalDays->text(), QStringLiteral("31"));
    EXPECT_EQ(form.mfgAttendance->Rows(), 1);  // the grids are cleared in both modes
}

TEST_F(PeriodFixture, DepartmentAndDateOfJoinAreKept) {
    load();
    choose(2);
    EXPECT_EQ(form.lngDepartmentID, 2);
    EXPECT_EQ(form.strDepartmentName, QStringLiteral("Sales"));
    ASSERT_TRUE(form.dtDateOfJoin.has_value());
    EXPECT_EQ(*form.dtDateOfJoin, QDate(2016, 6, 1));
}

TEST_F(PeriodFixture, MonthlyEntryOverlap) {
    t.exec(
        "insert into pEmpMonthlyEntryHeader values"
        "(1,1,1,'2026-11-01','2026-11-30',0),(1,2,2,'2026-11-01','2026-11-30',1),"
        "(1,3,2,'2026-12-10','2027-01-09',0)");
    EXPECT_TRUE(form.fnIsMonthlyEntryOverlapping(1, QDate(2026, 11, 16), QDate(2026, 12, 15)));
    EXPECT_FALSE(form.fnIsMonthlyEntryOverlapping(1, QDate(2026, 12, 1), QDate(2026, 12, 31)));
    // Bert's only November entry is cancelled; his December one starts inside the period.
    EXPECT_FALSE(form.fnIsMonthlyEntryOverlapping(2, QDate(2026, 11, 2), QDate(2026, 11, 29)));
    EXPECT_TRUE(form.fnIsMonthlyEntryOverlapping(2, QDate(2026, 11, 16), QDate(2026, 12, 10)));
    EXPECT_FALSE(form.fnIsMonthlyEntryOverlapping(3, QDate(2026, 11, 1), QDate(2026, 11, 30)));
}

TEST_F(PeriodFixture, TheOverlapCheckReportsDatabaseErrorsToItsCaller) {
    t.exec("drop table pEmpMonthlyEntryHeader");
    EXPECT_THROW(form.fnIsMonthlyEntryOverlapping(1, QDate(2026, 11, 1), QDate(2026, 11, 30)),
                 std::exception);
}

TEST_F(PeriodFixture, AFailingStatementIsReportedOnceAndTheEntryCannotBeSaved) {
    load();
    t.exec("drop view vwPaymonthvsdate");
    choose(2);
    EXPECT_EQ(form.lngEmployeeID, 2);
    // The database's own message, once; nothing of the half-made choice is left to save.
    ASSERT_EQ(shownTexts().size(), 1);
    EXPECT_TRUE(shownTexts().first().contains(QStringLiteral("vwPaymonthvsdate")))
        << shownTexts().first().toStdString();
    EXPECT_EQ(form.unfinishedStep(), frmEmployeeDailyAttendance::Step::Employee);
    EXPECT_EQ(form.lstAbsentDays->count(), 0);
    EXPECT_EQ(form.txtStartDate->text(), QStringLiteral("16/11/2026"));  // Anna's period stays
}

// The clerk moves the end of a new entry's period: the end text, the total and the
// absent-day list follow, the days already ticked stay ticked, and a period reaching into
// a year without a calendar is refused at once.
TEST_F(PeriodFixture, ChangingTheEndByHandRefreshesThePeriod) {
    load();
    ASSERT_EQ(form.lstAbsentDays->count(), 29);
    form.lstAbsentDays->item(1)->setCheckState(Qt::Checked);  // 2026/11/17
    form.dtpEndDate->setDate(QDate(2026, 12, 20));
    EXPECT_EQ(form.txtEndDate->text(), QStringLiteral("20/12/2026"));
    EXPECT_EQ(form.txtTotalDays->text(), QStringLiteral("35"));
    emit form.dtpEndDate->editingFinished();
    ASSERT_EQ(form.lstAbsentDays->count(), 34);
    EXPECT_EQ(form.lstAbsentDays->item(33)->text(), QStringLiteral("2026/12/20"));
    EXPECT_EQ(form.fnPickedAbsentDays(), QList<QDate>({QDate(2026, 11, 17)}));
    EXPECT_TRUE(shownTexts().isEmpty());

    t.exec("delete from pCalenderHeader where financialid=2027");
    form.dtpEndDate->setDate(QDate(2027, 1, 10));
    emit form.dtpEndDate->editingFinished();
    EXPECT_EQ(shownTexts(),
              QStringList({"Calender Settings not Found for Production for the year - 2027"}));
    EXPECT_FALSE(form.cmdPopulateRecords->isEnabled());
}

// Populate on an employee who joins after the period ends has no day to lay out.
TEST_F(PeriodFixture, PopulateForAnEmployeeWhoJoinsAfterThePeriodSaysSo) {
    load();
    employee(3, "Cleo Carter", 1, "2027-02-01");
    t.exec("update pEmployee set eDateofjoin='2027-02-01' where eEmpID=1");
    choose(2);
    choose(1);  // Anna again, now joining in February
    msgbox_testing::clear();
    form.txtStartDate->setText(QStringLiteral("16/11/2026"));
    form.dtpEndDate->setDate(QDate(2026, 12, 15));
    form.cmdPopulateRecords_Click();
    EXPECT_EQ(shownTexts(), QStringList({"End Date Should be Greater than Start Date"}));
    EXPECT_EQ(form.mfgAttendance->Rows(), 1);
}

// A period longer than a (leap) year is refused where it is set, and by Populate: the end
// goes back to the last one that made a period; 366 days are still one entry.
TEST_F(PeriodFixture, APeriodOfMoreThan366DaysIsRefusedWhenItIsSet) {
    load();
    const QString tooLong = QStringLiteral(
        "A period can be at most 366 days long. Choose an end date within a year of the start.");
    ASSERT_EQ(form.txtStartDate->text(), QStringLiteral("16/11/2026"));
    form.dtpEndDate->setDate(QDate(2026, 12, 20));
    emit form.dtpEndDate->editingFinished();
    EXPECT_TRUE(shownTexts().isEmpty());
    // 367 days.
    form.dtpEndDate->setDate(QDate(2027, 11, 17));
    emit form.dtpEndDate->editingFinished();
    EXPECT_EQ(shownTexts(), QStringList({tooLong}));
    EXPECT_EQ(form.dtpEndDate->date(), QDate(2026, 12, 20));
    EXPECT_EQ(form.txtEndDate->text(), QStringLiteral("20/12/2026"));
    EXPECT_EQ(form.txtTotalDays->text(), QStringLiteral("35"));
    // Decades typed as the end (the list would have thousands of days): refused at once.
    msgbox_testing::clear();
    form.dtpEndDate->setDate(QDate(2056, 11, 15));
    emit form.dtpEndDate->editingFinished();
    EXPECT_EQ(shownTexts(), QStringList({tooLong}));
    EXPECT_LT(form.lstAbsentDays->count(), 367);
    // Populate refuses it too, however it came about.
    msgbox_testing::clear();
    {
        const QSignalBlocker quiet(form.dtpEndDate);
        form.dtpEndDate->setDate(QDate(2028, 1, 1));
    }
    form.cmdPopulateRecords_Click();
    EXPECT_EQ(shownTexts(), QStringList({tooLong}));
    EXPECT_EQ(form.mfgAttendance->Rows(), 1);
}
