// The employee picker: its statements, its grid, the greying of employees with attendance
// beyond their last payroll (the aggregate way checked against the per-employee statements
// on varied data) and the clerk choosing from it.

#include <gtest/gtest.h>

#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <random>

#include "TestSupport.h"
#include "TsqlCheck.h"
#include "db/Database.h"
#include "entry/frmEmployeeDailyAttendance.h"
#include "picker/PickerSql.h"
#include "picker/PickerStatus.h"
#include "picker/frmEmployeesAttendanceEntryStatus.h"
#include "shared/BasAttendence.h"
#include "shared/FlexGrid.h"
#include "shared/MsgBox.h"

using namespace qz2;
using qz2test::expectTsql;
using qz2test::TestDb;

namespace {

void employee(TestDb& t, int id, const QString& name, const QString& dept, int company = 1,
              int active = 1) {
    t.exec(QStringLiteral(
               "insert into pEmployee(eEmpID,eCompanyID,eEmpNo,eName,eActive,eDeptID,eDateofjoin) "
               "values(%1,%2,'EMP%1','%3',%4,%5,'2015-01-01')")
               .arg(id)
               .arg(company)
               .arg(name)
               .arg(active)
               .arg(dept));
}

void payroll(TestDb& t, int id, int emp, const QString& day) {
    t.exec(QStringLiteral("insert into pMonthlyPayrollProcessing values(%1,1,%2,'%3')")
               .arg(id)
               .arg(emp)
               .arg(day));
}

void detail(TestDb& t, int entry, int line, const QString& day) {
    t.exec(QStringLiteral(
               "insert into "
               "pEmpAttendanceDetail(eadCompanyID,eadAttendanceID,eadDetailID,eadDate,eadType) "
               "values(1,%1,%2,'%3','P')")
               .arg(entry)
               .arg(line)
               .arg(day));
}

struct PickerFixture : ::testing::Test {
    void SetUp() override {
        gstrEntryMode = QStringLiteral("N");
        msgbox_testing::clear();
        msgbox_testing::setAutoAnswer(true);
        t.exec("insert into pSettings(companyid,gracetime) values(1,0)");
        t.exec("insert into pDepartment values(1,1,'Production'),(2,1,'Sales'),(3,2,'Elsewhere')");
        t.exec(
            "insert into pCalenderHeader(companyid,CalenderID,financialid) "
            "values(1,1,2026),(1,2,2027)");
        t.exec("insert into pCalendarWTSheader(cwtsCompanyID,cwtsid) values(1,1)");
        t.exec(
            "insert into "
            "pCalendarWorkTimeSettings(cwtsCompanyID,cwtsid,cwtsDayID,cwtsCheckIn1,cwtsCheckOut1) "
            "values(1,1,2,'09:00:00','17:00:00')");
        employee(t, 1, "Anna Abbott", "1");
        employee(t, 2, "Bert Baker", "2");
        employee(t, 3, "Cleo Carter", "NULL");
        employee(t, 4, "Dora Inactive", "1", 1, 0);
        employee(t, 5, "Emil Elsewhere", "3", 2);
        payroll(t, 1, 1, "2026-08-31");
        payroll(t, 2, 1, "2026-07-31");
        payroll(t, 3, 2, "2026-10-31");
        // Bert's own attendance lies before his payroll; Anna's last payroll is older than
        // someone's attendance, which blocks her whoever's attendance it is.
        detail(t, 1, 1, "2026-09-15");
        detail(t, 1, 2, "2026-08-20");
        // Bert's October entry, already covered by his payroll.
        t.exec(
            "insert into "
            "pEmployeeAttendence(eaCompanyID,eaID,eaNo,eaEmpID,eaStartDate,eaEndDate,eaCancelled) "
            "values(1,1,'ATT1',2,'2026-10-01','2026-10-31',0)");
    }
    void TearDown() override { msgbox_testing::setAutoAnswer(false); }

    static void clickCell(FlexGrid* grid, int row, int col) {
        const QRect cell = grid->visualRect(grid->model()->index(row - 1, col));
        QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, cell.center());
    }
    static int rowOf(FlexGrid* grid, int employee) {
        for (int r = 1; r < grid->Rows(); ++r)
            if (grid->TextMatrix(r, 0).toInt() == employee) return r;
        return -1;
    }

    TestDb t;
};

}  // namespace

TEST(PickerSqlServerText, Statements) {
    TestDb t;
    expectTsql(picker::sql::employeeStatusQuery(1),
               " Select eEmpID,eEmpNo As 'EmployeeNo',eName As 'Employee Name',DepartmentName from "
               "pemployee "
               "left outer join pDepartment on pemployee.eDeptID=pDepartment.DepartmentID where "
               "eActive = 1 And "
               "eCompanyID = 1");
    expectTsql(picker::sql::lastPayrollQuery(17),
               "Select max(mppPayrollDate) from pMonthlyPayrollProcessing where mppEmpID=17");
    expectTsql(picker::sql::attendanceAfterQuery(db::Dialect::sqlServer(), QDate(2026, 8, 31)),
               "Select eadDate from pEmpAttendanceDetail where eadDate > '20260831'");
    expectTsql(
        picker::sql::lastPayrollByEmployeeQuery(),
        "Select mppEmpID,max(mppPayrollDate) from pMonthlyPayrollProcessing group by mppEmpID");
    expectTsql(picker::sql::latestAttendanceQuery(),
               "Select max(eadDate) from pEmpAttendanceDetail");
}

TEST(PickerSqlServerText, PhysicalEmployeeAndDepartmentNames) {
    TestDb t;
    LinkedTableNames.pemployee = QStringLiteral("hr_staff");
    LinkedTableNames.pDepartment = QStringLiteral("hr_dept");
    expectTsql(
        picker::sql::employeeStatusQuery(3),
        " Select eEmpID,eEmpNo As 'EmployeeNo',eName As 'Employee Name',DepartmentName from "
        "hr_staff "
        "left outer join hr_dept on hr_staff.eDeptID=hr_dept.DepartmentID where eActive = 1 And "
        "eCompanyID = 3");
}

TEST_F(PickerFixture, SqliteStatementsRun) {
    const auto rows = t.rows(picker::sql::employeeStatusQuery(1));
    ASSERT_EQ(rows.size(), 3);
    EXPECT_EQ(rows[2][2].toString(), QStringLiteral("Cleo Carter"));
    EXPECT_TRUE(rows[2][3].isNull());  // listed without a department
    EXPECT_EQ(t.scalar(picker::sql::lastPayrollQuery(1)).toString(), QStringLiteral("2026-08-31"));
    EXPECT_TRUE(t.scalar(picker::sql::lastPayrollQuery(3)).isNull());
    const QString after =
        picker::sql::attendanceAfterQuery(db::Dialect::sqlite(), QDate(2026, 8, 31));
    EXPECT_EQ(after, QStringLiteral(
                         "Select eadDate from pEmpAttendanceDetail where eadDate > '2026-08-31'"));
    EXPECT_EQ(t.rows(after).size(), 1);
    EXPECT_EQ(
        t.rows(picker::sql::attendanceAfterQuery(db::Dialect::sqlite(), QDate(2026, 9, 15))).size(),
        0);
    const auto last = t.rows(picker::sql::lastPayrollByEmployeeQuery());
    ASSERT_EQ(last.size(), 2);
    EXPECT_EQ(t.scalar(picker::sql::latestAttendanceQuery()).toString(),
              QStringLiteral("2026-09-15"));
}

TEST_F(PickerFixture, GridShowsTheQuerysColumnsAndTheActiveEmployees) {
    frmEmployeesAttendanceEntryStatus picker(nullptr);
    EXPECT_EQ(picker.objectName(), QStringLiteral("frmEmployeesAttendanceEntryStatus"));
    picker.Form_Load();
    FlexGrid* g = picker.mfgEmployee;
    EXPECT_EQ(g->objectName(), QStringLiteral("mfgEmployee"));
    ASSERT_EQ(g->Cols(), 4);
    EXPECT_EQ(g->TextMatrix(0, 0), QStringLiteral("eEmpID"));
    EXPECT_EQ(g->TextMatrix(0, 1), QStringLiteral("EmployeeNo"));
    EXPECT_EQ(g->TextMatrix(0, 2), QStringLiteral("Employee Name"));
    EXPECT_EQ(g->TextMatrix(0, 3), QStringLiteral("DepartmentName"));
    ASSERT_EQ(g->Rows(), 4);
    const int cleo = rowOf(g, 3);
    ASSERT_GT(cleo, 0);
    EXPECT_EQ(g->TextMatrix(cleo, 1), QStringLiteral("EMP3"));
    EXPECT_EQ(g->TextMatrix(cleo, 2), QStringLiteral("Cleo Carter"));
    EXPECT_EQ(g->TextMatrix(cleo, 3), QString());
    EXPECT_EQ(g->TextMatrix(rowOf(g, 2), 3), QStringLiteral("Sales"));
    EXPECT_EQ(rowOf(g, 4), -1);  // inactive
    EXPECT_EQ(rowOf(g, 5), -1);  // another company's
}

TEST_F(PickerFixture, EmployeesWithAttendanceBeyondTheirPayrollAreGreyed) {
    frmEmployeesAttendanceEntryStatus picker(nullptr);
    const qint64 before = db::statementCount();
    picker.Form_Load();
    // One read of the employees, two for the greying, however many employees there are.
    EXPECT_EQ(db::statementCount() - before, 3);
    FlexGrid* g = picker.mfgEmployee;
    const QColor grey(200, 198, 192);
    EXPECT_EQ(frmEmployeesAttendanceEntryStatus::blockedColor(), grey);
    for (int c = 0; c < g->Cols(); ++c) {
        EXPECT_EQ(g->cellBackColor(rowOf(g, 1), c), grey) << c;
        EXPECT_EQ(g->model()->index(rowOf(g, 1) - 1, c).data(Qt::BackgroundRole).value<QColor>(),
                  grey);
        EXPECT_FALSE(g->cellBackColor(rowOf(g, 2), c).isValid())
            << c;  // payroll after the attendance
        EXPECT_FALSE(g->cellBackColor(rowOf(g, 3), c).isValid()) << c;  // no payroll: never greyed
    }
}

TEST_F(PickerFixture, NoAttendanceAtAllGreysNobody) {
    t.exec("delete from pEmpAttendanceDetail");
    frmEmployeesAttendanceEntryStatus picker(nullptr);
    picker.Form_Load();
    for (int r = 1; r < picker.mfgEmployee->Rows(); ++r)
        EXPECT_FALSE(picker.mfgEmployee->cellBackColor(r, 0).isValid()) << r;
}

TEST_F(PickerFixture, AttendanceOnThePayrollDayItselfDoesNotBlock) {
    t.exec("delete from pEmpAttendanceDetail");
    detail(t, 1, 1, "2026-08-31");
    const QVector<qint32> ids = {1, 2, 3};
    EXPECT_EQ(picker::blockedPerEmployee(t.db, ids), QVector<bool>({false, false, false}));
    EXPECT_EQ(picker::blockedByAggregate(t.db, ids), QVector<bool>({false, false, false}));
    detail(t, 1, 2, "2026-09-01");
    EXPECT_EQ(picker::blockedPerEmployee(t.db, ids), QVector<bool>({true, false, false}));
    EXPECT_EQ(picker::blockedByAggregate(t.db, ids), QVector<bool>({true, false, false}));
}

TEST(PickerStatusRule, OnlyAPayrollBeforeTheLatestAttendanceBlocks) {
    const TimeValue aug = TimeValue::fromDate(QDate(2026, 8, 31));
    const TimeValue sep = TimeValue::fromDate(QDate(2026, 9, 1));
    EXPECT_TRUE(picker::attendanceBeyondPayroll(aug, sep));
    EXPECT_FALSE(picker::attendanceBeyondPayroll(sep, aug));
    EXPECT_FALSE(picker::attendanceBeyondPayroll(aug, aug));
    EXPECT_FALSE(picker::attendanceBeyondPayroll(std::nullopt, sep));
    EXPECT_FALSE(picker::attendanceBeyondPayroll(aug, std::nullopt));
}

TEST(PickerStatusEquivalence, BothWaysGreyTheSameRowsOnVariedData) {
    // Dates drawn from one month, so that a payroll date often equals the latest
    // attendance date, the case where the two ways could part.
    std::mt19937 rng(20261121);
    auto draw = [&rng](int lo, int hi) {
        return lo + static_cast<int>(rng() % static_cast<unsigned>(hi - lo + 1));
    };
    int blockedSeen = 0, freeSeen = 0;
    for (int scenario = 0; scenario < 40; ++scenario) {
        TestDb t;
        const int employees = draw(1, 15);
        QVector<qint32> ids;
        for (int e = 1; e <= employees; ++e) ids << e;
        ids << 999;  // an employee the payroll has never seen
        int payrollId = 0;
        for (int e = 1; e <= employees; ++e)
            for (int k = draw(0, 3); k > 0; --k)
                payroll(t, ++payrollId, e,
                        QDate(2026, 1, 1).addDays(draw(0, 30)).toString(Qt::ISODate));
        const int details = scenario % 7 == 0 ? 0 : draw(1, 25);
        for (int d = 1; d <= details; ++d)
            detail(t, draw(1, 5), d, QDate(2026, 1, 1).addDays(draw(0, 30)).toString(Qt::ISODate));
        const QVector<bool> literal = picker::blockedPerEmployee(t.db, ids);
        const QVector<bool> aggregate = picker::blockedByAggregate(t.db, ids);
        EXPECT_EQ(aggregate, literal) << "scenario " << scenario;
        for (bool b : literal) (b ? blockedSeen : freeSeen)++;
    }
    // The data really varied: both outcomes occurred many times.
    EXPECT_GT(blockedSeen, 20);
    EXPECT_GT(freeSeen, 20);
}

TEST_F(PickerFixture, TheClerkChoosesFromThePicker) {
    frmEmployeeDailyAttendance form;
    form.Form_Load();
    form.show();
    QApplication::setActiveWindow(&form);
    ASSERT_TRUE(QTest::qWaitForWindowActive(&form));
    ASSERT_EQ(form.lngEmployeeID, 1);  // Anna, first by name
    bool stayedOpenOnGrey = false;
    bool closedOnChoice = false;
    qz2test::whenModal([&](QWidget* w) {
        auto* picker = qobject_cast<frmEmployeesAttendanceEntryStatus*>(w);
        ASSERT_NE(picker, nullptr);
        FlexGrid* g = picker->mfgEmployee;
        clickCell(g, rowOf(g, 1), 2);  // Anna is greyed: nothing happens
        stayedOpenOnGrey = picker->isVisible() && form.lngEmployeeID == 1;
        clickCell(g, rowOf(g, 2), 1);  // Bert
        closedOnChoice = !picker->isVisible();
    });
    QTest::mouseClick(form.cmdEmployee, Qt::LeftButton);
    EXPECT_TRUE(stayedOpenOnGrey);
    EXPECT_TRUE(closedOnChoice);
    EXPECT_EQ(form.cboEmpname->currentText(), QStringLiteral("EMP2 \u2013 Bert Baker"));
    // Selecting him ran the employee handler: his period follows his October entry.
    EXPECT_EQ(form.lngEmployeeID, 2);
    EXPECT_EQ(form.txtStartDate->text(), QStringLiteral("01/11/2026"));
    EXPECT_EQ(form.txtTotalDays->text(), QStringLiteral("30"));
}

TEST_F(PickerFixture, EveryCellOfAGreyRowIsRefused) {
    QComboBox box;
    box.addItem(QStringLiteral("Anna Abbott"), 1);
    box.addItem(QStringLiteral("Bert Baker"), 2);
    box.setCurrentIndex(1);
    frmEmployeesAttendanceEntryStatus picker(&box);
    picker.Form_Load();
    picker.show();
    const int anna = rowOf(picker.mfgEmployee, 1);
    for (int c = 0; c < picker.mfgEmployee->Cols(); ++c) {
        clickCell(picker.mfgEmployee, anna, c);
        EXPECT_TRUE(picker.isVisible()) << c;
    }
    EXPECT_EQ(box.currentIndex(), 1);
    EXPECT_EQ(picker.chosenEmployee(), 0);
    clickCell(picker.mfgEmployee, rowOf(picker.mfgEmployee, 3),
              3);  // Cleo, on her empty department cell
    EXPECT_FALSE(picker.isVisible());
    EXPECT_EQ(picker.result(), QDialog::Accepted);
    EXPECT_EQ(picker.chosenEmployee(), 3);
    EXPECT_EQ(box.currentIndex(), 1);  // Cleo is not in this box: it is left alone
}

TEST_F(PickerFixture, EnterChoosesTheCurrentRow) {
    QComboBox box;
    box.addItem(QStringLiteral("Anna Abbott"), 1);
    box.addItem(QStringLiteral("Bert Baker"), 2);
    box.setCurrentIndex(0);
    frmEmployeesAttendanceEntryStatus picker(&box);
    picker.Form_Load();
    picker.show();
    QApplication::setActiveWindow(&picker);
    ASSERT_TRUE(QTest::qWaitForWindowActive(&picker));
    picker.mfgEmployee->setCurrentCell(rowOf(picker.mfgEmployee, 1), 0);
    QTest::keyClick(picker.mfgEmployee, Qt::Key_Return);  // Anna is greyed
    EXPECT_TRUE(picker.isVisible());
    picker.mfgEmployee->setCurrentCell(rowOf(picker.mfgEmployee, 2), 0);
    QTest::keyClick(picker.mfgEmployee, Qt::Key_Return);
    EXPECT_FALSE(picker.isVisible());
    EXPECT_EQ(box.currentIndex(), 1);
}

TEST_F(PickerFixture, NoActiveEmployeeShowsOnlyTheHeadingAndClicksDoNothing) {
    t.exec("update pEmployee set eActive=0");
    QComboBox box;
    frmEmployeesAttendanceEntryStatus picker(&box);
    picker.Form_Load();
    picker.show();
    EXPECT_EQ(picker.mfgEmployee->Rows(), 1);
    EXPECT_EQ(picker.mfgEmployee->Cols(), 4);
    EXPECT_EQ(picker.mfgEmployee->TextMatrix(0, 2), QStringLiteral("Employee Name"));
    QTest::mouseClick(picker.mfgEmployee->viewport(), Qt::LeftButton, {}, QPoint(20, 10));
    picker.mfgEmployee_Click(1, 0);
    picker.mfgEmployee_Click(0, 0);
    EXPECT_TRUE(picker.isVisible());
    EXPECT_EQ(picker.chosenEmployee(), 0);
}

TEST_F(PickerFixture, CancelClosesWithoutChoosing) {
    frmEmployeeDailyAttendance form;
    form.Form_Load();
    form.show();
    bool rejected = false;
    qz2test::whenModal([&](QWidget* w) {
        auto* picker = qobject_cast<frmEmployeesAttendanceEntryStatus*>(w);
        ASSERT_NE(picker, nullptr);
        QTest::mouseClick(picker->cmdCancel, Qt::LeftButton);
        rejected = picker->result() == QDialog::Rejected && !picker->isVisible();
    });
    form.cmdEmployee_Click();
    EXPECT_TRUE(rejected);
    EXPECT_EQ(form.lngEmployeeID, 1);
    EXPECT_EQ(form.cboEmpname->currentIndex(), 0);
}

TEST_F(PickerFixture, AFailingQueryLeavesThePickerOpenAndEmpty) {
    t.exec("drop table pDepartment");
    frmEmployeesAttendanceEntryStatus picker(nullptr);
    picker.Form_Load();
    EXPECT_EQ(picker.mfgEmployee->Rows(), 1);
    EXPECT_TRUE(msgbox_testing::shown().isEmpty());
}

TEST_F(PickerFixture, Screenshot) {
    const QByteArray dir = qgetenv("QZ2_SCREENSHOT_DIR");
    if (dir.isEmpty()) GTEST_SKIP() << "set QZ2_SCREENSHOT_DIR to write docs/picker.png";
    TestDb demo(true);
    frmEmployeesAttendanceEntryStatus picker(nullptr);
    picker.Form_Load();
    picker.show();
    QApplication::processEvents();
    const QString file = QString::fromLocal8Bit(dir) + QStringLiteral("/picker.png");
    ASSERT_TRUE(picker.grab().save(file));
    EXPECT_GT(picker.mfgEmployee->Rows(), 10);
}
