// Populate on the entry form, driven as a clerk would: the employee chosen, the period
// proposed, absent days picked, the button pressed. Every day's Type, Worked Hours,
// Schedule Hours and Hours, the mirror grid's pairs, the counts and the messages are
// checked, and so are the statements the form asks while it populates and recomputes.

#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QDir>
#include <QFileInfo>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>

#include "TestSupport.h"
#include "db/Database.h"
#include "entry/EntrySql.h"
#include "entry/frmEmployeeDailyAttendance.h"
#include "shared/BasAttendence.h"
#include "shared/FlexGrid.h"
#include "shared/MsgBox.h"

using namespace qz2;
using qz2test::TestDb;

namespace {

// December 2026: the 1st is a Tuesday, the 8th and the 25th are holidays.
const QDate kDec1(2026, 12, 1);
const QDate kDec31(2026, 12, 31);

QStringList shownTexts() {
    QStringList out;
    for (const ShownMessage& m : msgbox_testing::shown()) out << m.text;
    return out;
}

// Every cell of a grid's data rows, one "a|b|c" text per row.
QStringList gridRows(const FlexGrid* grid, int firstCol = 0) {
    QStringList out;
    for (int r = 1; r < grid->Rows(); ++r) {
        QStringList cells;
        for (int c = firstCol; c < grid->Cols(); ++c) cells << grid->TextMatrix(r, c);
        out << cells.join(QLatin1Char('|'));
    }
    return out;
}

struct PopulateFixture : ::testing::Test {
    void SetUp() override {
        gstrEntryMode = QStringLiteral("N");
        msgbox_testing::clear();
        msgbox_testing::setAutoAnswer(true);
        entry::testing::setStatementCacheBypassed(false);
        t.exec(
            "insert into pSettings(companyid,gracetime,ConsiderLeaveHolidays,calendardepwise,"
            "cwtsdepwise) values(1,10,0,0,0)");
        t.exec("insert into pDepartment values(1,1,'Production')");
        // Sorted by name: Anna, who joined long ago, and Bert, who joins on 10 December.
        t.exec(
            "insert into pEmployee(eEmpID,eCompanyID,eEmpNo,eName,eActive,eDeptID,eDateofjoin) "
            "values(1,1,'E1','Anna Abbott',1,1,'2015-01-01'),"
            "(2,1,'E2','Bert Baker',1,1,'2026-12-10')");
        t.exec(
            "insert into pCalenderHeader(companyid,CalenderID,financialid) "
            "values(1,1,2026),(1,2,2027)");
        t.exec(
            "insert into pCalenderDetail(companyid,CalenderID,HolidayDate) values"
            "(1,1,'2026-12-08'),(1,1,'2026-12-25'),(1,2,'2027-01-01')");
        // Pay months start on the 1st: the first entry proposes the whole of December.
        for (int m = 1; m <= 12; ++m)
            t.exec(QStringLiteral("insert into pPayMonthStartDate values(1,%1,'2026-%2-01')")
                       .arg(m)
                       .arg(m, 2, 10, QLatin1Char('0')));
        // Setting 2 is the entry's (the newest): Monday to Thursday 09-13 and 14-18, Friday
        // pairs 1 and 3 only (09-13, 14-16), no weekend line. The older setting 1 still has
        // the weekend (Saturday 09-13, Sunday 10-12), which the Schedule Hours (newest line
        // of each weekday) take while the laid-out pairs (the entry's setting) do not.
        t.exec("insert into pCalendarWTSheader(cwtsCompanyID,cwtsid) values(1,1),(1,2)");
        for (int day = 2; day <= 5; ++day)
            line(2, day, "'09:00:00','13:00:00','14:00:00','18:00:00',NULL,NULL,NULL,NULL");
        line(2, 6, "'09:00:00','13:00:00',NULL,NULL,'14:00:00','16:00:00',NULL,NULL");
        line(1, 7, "'09:00:00','13:00:00',NULL,NULL,NULL,NULL,NULL,NULL");
        line(1, 1, "'10:00:00','12:00:00',NULL,NULL,NULL,NULL,NULL,NULL");
        t.exec("insert into pleaves values(1,1,'Casual'),(1,2,'Sick'),(1,3,'Earned')");
    }
    void TearDown() override {
        entry::testing::setStatementCacheBypassed(false);
        msgbox_testing::setAutoAnswer(false);
    }

    void line(int setting, int day, const char* pairs) {
        t.exec(QStringLiteral("insert into pCalendarWorkTimeSettings values(1,%1,%2,%3)")
                   .arg(setting)
                   .arg(day)
                   .arg(QString::fromLatin1(pairs)));
    }
    // A leave application line with its sanction line.
    void leave(int id, int employee, const char* from, const char* to, double days,
               const char* status = "S", int registerCancelled = 0, int sanctionCancelled = 0) {
        t.exec(QStringLiteral("insert into pleaveregisterheader values(1,%1,%2,'2026-11-01',%3)")
                   .arg(id)
                   .arg(employee)
                   .arg(registerCancelled));
        t.exec(QStringLiteral("insert into pleaveregisterDetail values(1,%1,1,'%2','%3',%4)")
                   .arg(id)
                   .arg(QString::fromLatin1(from), QString::fromLatin1(to))
                   .arg(days));
        t.exec(QStringLiteral("insert into pLeaveCancellationHeader values(1,%1,'2026-11-02',%2)")
                   .arg(id + 100)
                   .arg(sanctionCancelled));
        t.exec(QStringLiteral("insert into pleavecancellationdetail values(1,%1,%2,1,'%3')")
                   .arg(id + 100)
                   .arg(id)
                   .arg(QString::fromLatin1(status)));
    }
    // Anna's December: a leave from November into the period, a half day, a leave round
    // the Christmas holiday.
    void annasLeaves() {
        leave(1, 1, "2026-11-27", "2026-12-02", 6);
        leave(2, 1, "2026-12-16", "2026-12-16", 0.5);
        leave(3, 1, "2026-12-24", "2026-12-28", 5);
    }
    void considerLeaveHolidays(bool on) {
        t.exec(QStringLiteral("update pSettings set ConsiderLeaveHolidays=%1").arg(on ? 1 : 0));
    }
    // Loads the form, which chooses Anna and proposes her period; the messages of that
    // are cleared.
    void load() {
        form.Form_Load();
        msgbox_testing::clear();
    }
    void choose(int employeeId) {
        const int index = form.cboEmpname->findData(employeeId);
        ASSERT_GE(index, 0);
        form.cboEmpname->setCurrentIndex(index);
        msgbox_testing::clear();
    }
    QListWidgetItem* listItem(const char* text) {
        const auto found =
            form.lstAbsentDays->findItems(QString::fromLatin1(text), Qt::MatchExactly);
        return found.isEmpty() ? nullptr : found.first();
    }
    void pickAbsent(const char* text) {
        QListWidgetItem* item = listItem(text);
        ASSERT_NE(item, nullptr) << text;
        item->setCheckState(Qt::Checked);
    }
    void populate() { QTest::mouseClick(form.cmdPopulateRecords, Qt::LeftButton); }

    // Date, Type, Worked Hours, Schedule Hours and Hours of every day.
    QStringList days() const {
        QStringList out;
        for (int r = 1; r < form.mfgAttendance->Rows(); ++r) {
            QStringList cells;
            for (int c = 1; c <= 5; ++c) cells << form.mfgAttendance->TextMatrix(r, c);
            out << cells.join(QLatin1Char(' '));
        }
        return out;
    }
    QStringList mirrorOf(const QString& date) const {
        QStringList out;
        for (const QString& row : gridRows(form.mfgMirrorGrid))
            if (row.startsWith(date + QLatin1Char('|'))) out << row;
        return out;
    }
    QString counts() const {
        return form.txtNoPresent->text() + QLatin1Char('/') + form.txtNoLeave->text() +
               QLatin1Char('/') + form.txtNoAbsent->text();
    }
    int rowOf(const QString& date) const {
        for (int r = 1; r < form.mfgAttendance->Rows(); ++r)
            if (form.mfgAttendance->TextMatrix(r, 1) == date) return r;
        return 0;
    }
    // Everything Populate lays down, for comparing two runs.
    QStringList snapshot() const {
        return gridRows(form.mfgAttendance) + QStringList{QStringLiteral("--")} +
               gridRows(form.mfgMirrorGrid) + QStringList{QStringLiteral("--")} +
               gridRows(form.mfgCheckinCheckOut) + QStringList{counts()};
    }

    TestDb t{false, QDate(2026, 12, 21)};
    frmEmployeeDailyAttendance form;
};

// Anna's December with holidays first and leaves over them ("ConsiderLeaveHolidays" off).
const QStringList kAnnaDecember = {
    "01/12/2026 L 08:00 08:00 00:00",   // Tue: the leave from November, clipped to the 1st
    "02/12/2026 L 08:00 08:00 00:00",   // Wed
    "03/12/2026 P 08:00 08:00 00:00",   // Thu
    "04/12/2026 P 06:00 06:00 00:00",   // Fri: pairs 1 and 3 of the setting
    "05/12/2026 P 00:00 04:00 04:00",   // Sat: hours of the older setting, no pairs
    "06/12/2026 P 00:00 02:00 02:00",   // Sun
    "07/12/2026 P 08:00 08:00 00:00",   // Mon
    "08/12/2026 H 00:00 00:00 00:00",   // Tue: holiday
    "09/12/2026 P 08:00 08:00 00:00",   // Wed
    "10/12/2026 A 00:00 08:00 08:00",   // Thu: picked absent
    "11/12/2026 P 06:00 06:00 00:00",   // Fri
    "12/12/2026 P 00:00 04:00 04:00",   // Sat
    "13/12/2026 P 00:00 02:00 02:00",   // Sun
    "14/12/2026 P 08:00 08:00 00:00",   // Mon
    "15/12/2026 P 08:00 08:00 00:00",   // Tue
    "16/12/2026 HL 08:00 08:00 00:00",  // Wed: half-day leave
    "17/12/2026 P 08:00 08:00 00:00",   // Thu
    "18/12/2026 P 06:00 06:00 00:00",   // Fri
    "19/12/2026 P 00:00 04:00 04:00",   // Sat
    "20/12/2026 P 00:00 02:00 02:00",   // Sun
    "21/12/2026 P 08:00 08:00 00:00",   // Mon
    "22/12/2026 P 08:00 08:00 00:00",   // Tue
    "23/12/2026 P 08:00 08:00 00:00",   // Wed
    "24/12/2026 L 08:00 08:00 00:00",   // Thu: the Christmas leave
    "25/12/2026 L 06:00 06:00 00:00",   // Fri: holiday inside the leave, the leave wins
    "26/12/2026 L 00:00 04:00 04:00",   // Sat
    "27/12/2026 L 00:00 02:00 02:00",   // Sun
    "28/12/2026 L 08:00 08:00 00:00",   // Mon
    "29/12/2026 P 08:00 08:00 00:00",   // Tue
    "30/12/2026 P 08:00 08:00 00:00",   // Wed
    "31/12/2026 P 08:00 08:00 00:00",   // Thu
};

}  // namespace

// ---- A whole month ------------------------------------------------------------------

TEST_F(PopulateFixture, AMonthWithHolidaysLeavesAHalfDayAndAnAbsentDay) {
    annasLeaves();
    load();
    ASSERT_EQ(form.txtStartDate->text(), QStringLiteral("01/12/2026"));
    ASSERT_EQ(form.dtpEndDate->date(), kDec31);
    ASSERT_EQ(form.lstAbsentDays->count(), 29);  // December less its two holidays
    pickAbsent("2026/12/10");
    populate();
    EXPECT_TRUE(msgbox_testing::shown().isEmpty());
    EXPECT_EQ(days(), kAnnaDecember);
    // 21 present days, half of the 16th, and the holiday of the 8th; 7 leave days and a
    // half; one absent day.
    EXPECT_EQ(form.txtNoPresent->text(), QStringLiteral("22.5"));
    EXPECT_EQ(form.txtNoLeave->text(), QStringLiteral("7.5"));
    EXPECT_EQ(form.txtNoAbsent->text(), QStringLiteral("1"));
    // The allowance columns stay empty; the pairs grid has only its heading.
    for (int r = 1; r < form.mfgAttendance->Rows(); ++r)
        EXPECT_EQ(form.mfgAttendance->TextMatrix(r, 6), QString()) << r;
    EXPECT_EQ(form.mfgCheckinCheckOut->Rows(), 1);
}

TEST_F(PopulateFixture, TheMirrorHoldsTheScheduledPairsOfWorkingAndLeaveDays) {
    annasLeaves();
    load();
    pickAbsent("2026/12/10");
    populate();
    // Pairs 1 and 3 of the Friday setting become pairs 1 and 2.
    EXPECT_EQ(mirrorOf("04/12/2026"),
              QStringList({"04/12/2026|1|09:00|13:00", "04/12/2026|2|14:00|16:00"}));
    EXPECT_EQ(mirrorOf("07/12/2026"),
              QStringList({"07/12/2026|1|09:00|13:00", "07/12/2026|2|14:00|18:00"}));
    // Leave and half days keep their pairs; holidays, absent days and days the entry's
    // setting leaves out have none.
    EXPECT_EQ(mirrorOf("01/12/2026").size(), 2);
    EXPECT_EQ(mirrorOf("16/12/2026").size(), 2);
    EXPECT_EQ(mirrorOf("25/12/2026").size(), 2);
    EXPECT_TRUE(mirrorOf("08/12/2026").isEmpty());
    EXPECT_TRUE(mirrorOf("10/12/2026").isEmpty());
    EXPECT_TRUE(mirrorOf("05/12/2026").isEmpty());
    EXPECT_TRUE(mirrorOf("06/12/2026").isEmpty());
    // 17 Monday-to-Thursday days and 4 Fridays, two pairs each, in date order.
    const QStringList all = gridRows(form.mfgMirrorGrid);
    ASSERT_EQ(all.size(), 42);
    EXPECT_EQ(all.first(), QStringLiteral("01/12/2026|1|09:00|13:00"));
    EXPECT_EQ(all.last(), QStringLiteral("31/12/2026|2|14:00|18:00"));
}

TEST_F(PopulateFixture, ConsideringLeaveHolidaysKeepsTheHolidayInsideTheLeave) {
    annasLeaves();
    considerLeaveHolidays(true);
    load();
    ASSERT_TRUE(form.blnConsiderLeaveHolidays);
    pickAbsent("2026/12/10");
    populate();
    QStringList expected = kAnnaDecember;
    expected[24] = QStringLiteral("25/12/2026 H 00:00 00:00 00:00");
    EXPECT_EQ(days(), expected);
    EXPECT_TRUE(mirrorOf("25/12/2026").isEmpty());
    // The holiday now counts as present, no longer as leave.
    EXPECT_EQ(counts(), QStringLiteral("23.5/6.5/1"));
}

TEST_F(PopulateFixture, ConsideringLeaveHolidaysOffLetsTheLeaveWin) {
    annasLeaves();
    load();
    ASSERT_FALSE(form.blnConsiderLeaveHolidays);
    populate();
    EXPECT_EQ(days()[24], QStringLiteral("25/12/2026 L 06:00 06:00 00:00"));
    EXPECT_EQ(days()[7], QStringLiteral("08/12/2026 H 00:00 00:00 00:00"));
    EXPECT_EQ(counts(), QStringLiteral("23.5/7.5/0"));
}

TEST_F(PopulateFixture, AnEmployeeWhoJoinsInsideThePeriodStartsOnTheJoiningDate) {
    load();
    choose(2);
    // The proposal already starts on the joining date; the clerk types the 1st anyway.
    EXPECT_EQ(form.txtStartDate->text(), QStringLiteral("10/12/2026"));
    form.txtStartDate->setText(QStringLiteral("01/12/2026"));
    populate();
    EXPECT_EQ(days(), QStringList({
                          "10/12/2026 P 08:00 08:00 00:00",  // Thu
                          "11/12/2026 P 06:00 06:00 00:00",  // Fri
                          "12/12/2026 P 00:00 04:00 04:00",  // Sat
                          "13/12/2026 P 00:00 02:00 02:00",  // Sun
                          "14/12/2026 P 08:00 08:00 00:00", "15/12/2026 P 08:00 08:00 00:00",
                          "16/12/2026 P 08:00 08:00 00:00", "17/12/2026 P 08:00 08:00 00:00",
                          "18/12/2026 P 06:00 06:00 00:00", "19/12/2026 P 00:00 04:00 04:00",
                          "20/12/2026 P 00:00 02:00 02:00", "21/12/2026 P 08:00 08:00 00:00",
                          "22/12/2026 P 08:00 08:00 00:00", "23/12/2026 P 08:00 08:00 00:00",
                          "24/12/2026 P 08:00 08:00 00:00", "25/12/2026 H 00:00 00:00 00:00",
                          "26/12/2026 P 00:00 04:00 04:00", "27/12/2026 P 00:00 02:00 02:00",
                          "28/12/2026 P 08:00 08:00 00:00", "29/12/2026 P 08:00 08:00 00:00",
                          "30/12/2026 P 08:00 08:00 00:00", "31/12/2026 P 08:00 08:00 00:00",
                      }));
    EXPECT_EQ(counts(), QStringLiteral("22/0/0"));
    // No pairs before the joining date either; the end stays.
    EXPECT_EQ(gridRows(form.mfgMirrorGrid).first(), QStringLiteral("10/12/2026|1|09:00|13:00"));
    EXPECT_EQ(form.dtpEndDate->date(), kDec31);
    EXPECT_EQ(form.txtStartDate->text(), QStringLiteral("01/12/2026"));
}

// ---- Edge cases of the period -------------------------------------------------------

TEST_F(PopulateFixture, StartEqualToEndGivesOneRow) {
    load();
    form.txtStartDate->setText(QStringLiteral("07/12/2026"));
    form.dtpEndDate->setDate(QDate(2026, 12, 7));
    populate();
    EXPECT_TRUE(msgbox_testing::shown().isEmpty());
    EXPECT_EQ(days(), QStringList({"07/12/2026 P 08:00 08:00 00:00"}));
    EXPECT_EQ(gridRows(form.mfgMirrorGrid).size(), 2);
    EXPECT_EQ(counts(), QStringLiteral("1/0/0"));
}

TEST_F(PopulateFixture, AStartAfterTheEndIsRefusedWithTheMessageOnly) {
    load();
    populate();
    const QStringList before = snapshot();
    form.txtStartDate->setText(QStringLiteral("05/12/2026"));
    form.dtpEndDate->setDate(QDate(2026, 12, 4));
    populate();
    ASSERT_EQ(msgbox_testing::shown().size(), 1);
    const ShownMessage& m = msgbox_testing::shown().first();
    EXPECT_EQ(m.text, QStringLiteral("End Date Should be Greater than Start Date"));
    EXPECT_EQ(m.title, gstrMsgboxTitle);
    EXPECT_EQ(m.buttons, MsgButtons::Ok);
    EXPECT_EQ(m.icon, MsgIcon::None);
    EXPECT_EQ(snapshot(), before);
}

TEST_F(PopulateFixture, TheRealBoxesCarryTheTitleIconAndOneButton) {
    load();
    msgbox_testing::setAutoAnswer(false);
    form.show();
    struct Seen {
        QString text, title;
        QMessageBox::Icon icon = QMessageBox::NoIcon;
        QList<QAbstractButton*> buttons;
    };
    auto answer = [](Seen& seen) {
        qz2test::whenModal([&seen](QWidget* w) {
            auto* box = qobject_cast<QMessageBox*>(w);
            ASSERT_NE(box, nullptr);
            seen = {box->text(), box->windowTitle(), box->icon(), box->buttons()};
            box->button(QMessageBox::Ok)->click();
        });
    };
    Seen endBeforeStart;
    form.txtStartDate->setText(QStringLiteral("05/12/2026"));
    form.dtpEndDate->setDate(QDate(2026, 12, 4));
    answer(endBeforeStart);
    populate();
    EXPECT_EQ(endBeforeStart.text, QStringLiteral("End Date Should be Greater than Start Date"));
    EXPECT_EQ(endBeforeStart.title, QStringLiteral("Attendance Test"));
    EXPECT_EQ(endBeforeStart.icon, QMessageBox::NoIcon);
    EXPECT_EQ(endBeforeStart.buttons.size(), 1);

    Seen noEmployee;
    form.dtpEndDate->setDate(kDec31);
    form.cboEmpname->setCurrentIndex(-1);
    answer(noEmployee);
    populate();
    EXPECT_EQ(noEmployee.text, QStringLiteral("Select Employee"));
    EXPECT_EQ(noEmployee.title, QStringLiteral("Attendance Test"));
    EXPECT_EQ(noEmployee.icon, QMessageBox::Information);
    EXPECT_EQ(noEmployee.buttons.size(), 1);
    EXPECT_EQ(form.mfgAttendance->Rows(), 1);
}

TEST_F(PopulateFixture, WithoutAnEmployeeNothingIsLaidOut) {
    load();
    form.cboEmpname->setCurrentIndex(-1);
    populate();
    EXPECT_EQ(shownTexts(), QStringList({"Select Employee"}));
    EXPECT_EQ(msgbox_testing::shown().first().icon, MsgIcon::Information);
    EXPECT_EQ(form.mfgAttendance->Rows(), 1);
    EXPECT_EQ(form.mfgMirrorGrid->Rows(), 1);
}

TEST_F(PopulateFixture, PressingTwiceGivesWhatPressingOnceGives) {
    annasLeaves();
    load();
    pickAbsent("2026/12/10");
    pickAbsent("2026/12/22");
    populate();
    const QStringList once = snapshot();
    ASSERT_EQ(days()[21], QStringLiteral("22/12/2026 A 00:00 08:00 08:00"));
    populate();
    EXPECT_EQ(snapshot(), once);
    // And another employee's population in between changes nothing of it either.
    choose(2);
    populate();
    choose(1);
    pickAbsent("2026/12/10");
    pickAbsent("2026/12/22");
    populate();
    EXPECT_EQ(snapshot(), once);
}

TEST_F(PopulateFixture, HolidaysCountAsPresentAndAHolidayShowsNoSchedule) {
    load();
    populate();
    const int row = rowOf(QStringLiteral("08/12/2026"));
    ASSERT_GT(row, 0);
    EXPECT_EQ(form.mfgAttendance->TextMatrix(row, 2), QStringLiteral("H"));
    EXPECT_EQ(form.mfgAttendance->TextMatrix(row, 4), QStringLiteral("00:00"));
    EXPECT_TRUE(mirrorOf(QStringLiteral("08/12/2026")).isEmpty());
    // 29 present days and 2 holidays.
    EXPECT_EQ(counts(), QStringLiteral("31/0/0"));
}

TEST_F(PopulateFixture, APeriodOfHolidaysOnlyListsNoWorkingDay) {
    t.exec(
        "insert into pCalenderDetail(companyid,CalenderID,HolidayDate) values"
        "(1,1,'2026-12-24'),(1,1,'2026-12-26')");
    load();
    form.fnPopoulateList(QDate(2026, 12, 24), QDate(2026, 12, 26));
    EXPECT_EQ(form.lstAbsentDays->count(), 0);
    form.txtStartDate->setText(QStringLiteral("24/12/2026"));
    form.dtpEndDate->setDate(QDate(2026, 12, 26));
    populate();
    EXPECT_EQ(days(),
              QStringList({"24/12/2026 H 00:00 00:00 00:00", "25/12/2026 H 00:00 00:00 00:00",
                           "26/12/2026 H 00:00 00:00 00:00"}));
    EXPECT_EQ(form.mfgMirrorGrid->Rows(), 1);
    EXPECT_EQ(counts(), QStringLiteral("3/0/0"));
}

// ---- Leaves -------------------------------------------------------------------------

TEST_F(PopulateFixture, ALeaveFromBeforeTheStartToAfterTheEndMarksEveryDay) {
    leave(1, 1, "2026-11-15", "2027-01-10", 57);
    load();
    populate();
    for (int r = 1; r < form.mfgAttendance->Rows(); ++r)
        EXPECT_EQ(form.mfgAttendance->TextMatrix(r, 2), QStringLiteral("L")) << r;
    EXPECT_EQ(form.mfgAttendance->Rows(), 32);
    EXPECT_EQ(counts(), QStringLiteral("0/31/0"));
}

TEST_F(PopulateFixture, AHalfDayLeaveCountsHalfLeaveAndHalfPresent) {
    leave(1, 1, "2026-12-16", "2026-12-16", 0.5);
    load();
    form.txtStartDate->setText(QStringLiteral("16/12/2026"));
    form.dtpEndDate->setDate(QDate(2026, 12, 16));
    populate();
    EXPECT_EQ(days(), QStringList({"16/12/2026 HL 08:00 08:00 00:00"}));
    EXPECT_EQ(form.txtNoPresent->text(), QStringLiteral("0.5"));
    EXPECT_EQ(form.txtNoLeave->text(), QStringLiteral("0.5"));
    EXPECT_EQ(form.txtNoAbsent->text(), QStringLiteral("0"));
}

TEST_F(PopulateFixture, ALeaveRefusedAtSanctionMarksNothing) {
    leave(1, 1, "2026-12-02", "2026-12-03", 2, "n");
    load();
    populate();
    EXPECT_EQ(days()[1], QStringLiteral("02/12/2026 P 08:00 08:00 00:00"));
    EXPECT_EQ(days()[2], QStringLiteral("03/12/2026 P 08:00 08:00 00:00"));
    EXPECT_EQ(form.txtNoLeave->text(), QStringLiteral("0"));
}

TEST_F(PopulateFixture, AWithdrawnApplicationMarksNothing) {
    leave(1, 1, "2026-12-02", "2026-12-03", 2, "S", 1, 0);
    load();
    populate();
    EXPECT_EQ(days()[1], QStringLiteral("02/12/2026 P 08:00 08:00 00:00"));
    EXPECT_EQ(form.txtNoLeave->text(), QStringLiteral("0"));
}

TEST_F(PopulateFixture, ACancelledSanctionMarksNothing) {
    leave(1, 1, "2026-12-02", "2026-12-03", 2, "S", 0, 1);
    load();
    populate();
    EXPECT_EQ(days()[1], QStringLiteral("02/12/2026 P 08:00 08:00 00:00"));
    EXPECT_EQ(form.txtNoLeave->text(), QStringLiteral("0"));
}

TEST_F(PopulateFixture, OnlyAnUpperCaseSanctionMarksDays) {
    // The database finds both lines; the program itself takes only "S".
    leave(1, 1, "2026-12-02", "2026-12-02", 1, "s");
    leave(2, 1, "2026-12-03", "2026-12-03", 1, "S");
    load();
    populate();
    EXPECT_EQ(days()[1], QStringLiteral("02/12/2026 P 08:00 08:00 00:00"));
    EXPECT_EQ(days()[2], QStringLiteral("03/12/2026 L 08:00 08:00 00:00"));
    EXPECT_EQ(form.txtNoLeave->text(), QStringLiteral("1"));
}

TEST_F(PopulateFixture, AnotherEmployeesLeaveMarksNothing) {
    leave(1, 2, "2026-12-14", "2026-12-15", 2);
    load();
    populate();
    EXPECT_EQ(form.txtNoLeave->text(), QStringLiteral("0"));
    choose(2);
    populate();
    EXPECT_EQ(days()[4], QStringLiteral("14/12/2026 L 08:00 08:00 00:00"));
    EXPECT_EQ(form.txtNoLeave->text(), QStringLiteral("2"));
}

// ---- Absent days --------------------------------------------------------------------

TEST_F(PopulateFixture, DaysArePickedWithTheKeyboardAndTheMouse) {
    load();
    form.show();
    QApplication::setActiveWindow(&form);
    ASSERT_TRUE(QTest::qWaitForWindowActive(&form));
    QListWidget* list = form.lstAbsentDays;
    list->setFocus();
    list->setCurrentRow(0, QItemSelectionModel::NoUpdate);
    // Down twice and Space: the 3rd; Down and Space: the 4th; the mouse: the 10th (the 8th
    // is a holiday and not listed, so the 10th is the 9th item).
    QTest::keyClick(list, Qt::Key_Down);
    QTest::keyClick(list, Qt::Key_Down);
    QTest::keyClick(list, Qt::Key_Space);
    QTest::keyClick(list, Qt::Key_Down);
    QTest::keyClick(list, Qt::Key_Space);
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {},
                      list->visualItemRect(list->item(8)).center());
    EXPECT_EQ(form.fnPickedAbsentDays(),
              QList<QDate>({QDate(2026, 12, 3), QDate(2026, 12, 4), QDate(2026, 12, 10)}));
    // Each pick is both ticked and highlighted.
    for (int i : {2, 3, 8}) {
        EXPECT_EQ(list->item(i)->checkState(), Qt::Checked) << i;
        EXPECT_TRUE(list->item(i)->isSelected()) << i;
    }
    EXPECT_EQ(list->item(4)->checkState(), Qt::Unchecked);
    EXPECT_FALSE(list->item(4)->isSelected());
    // Space again takes the current day's pick back.
    QTest::keyClick(list, Qt::Key_Space);
    EXPECT_EQ(form.fnPickedAbsentDays(), QList<QDate>({QDate(2026, 12, 3), QDate(2026, 12, 4)}));
    populate();
    EXPECT_EQ(days()[2], QStringLiteral("03/12/2026 A 00:00 08:00 08:00"));
    EXPECT_EQ(days()[3], QStringLiteral("04/12/2026 A 00:00 06:00 06:00"));
    EXPECT_EQ(days()[9], QStringLiteral("10/12/2026 P 08:00 08:00 00:00"));
    EXPECT_EQ(counts(), QStringLiteral("29/0/2"));
}

TEST_F(PopulateFixture, AnAbsentPickOnALeaveDayGivesWayToTheLeave) {
    leave(1, 1, "2026-12-03", "2026-12-03", 1);
    load();
    pickAbsent("2026/12/03");
    populate();
    EXPECT_EQ(days()[2], QStringLiteral("03/12/2026 L 08:00 08:00 00:00"));
    EXPECT_EQ(counts(), QStringLiteral("30/1/0"));
}

// ---- An entry opened for edit -------------------------------------------------------

TEST_F(PopulateFixture, OnAnEntryOpenedForEditOnlyPicksAndHolidaysAreReapplied) {
    gstrEntryMode = QStringLiteral("E");
    load();
    // A stored entry of 1-8 December as loading would leave it: the 2nd was absent (one
    // line without times), the 8th was saved before it became a holiday, the times of the
    // 3rd were corrected by the clerk.
    form.txtStartDate->setText(QStringLiteral("01/12/2026"));
    form.dtpEndDate->setDate(QDate(2026, 12, 8));
    form.lngEmployeeID = 1;
    const QStringList stored = {"01/12/2026|P|08:00|08:00|00:00", "02/12/2026|A|00:00|08:00|08:00",
                                "03/12/2026|P|07:30|08:00|00:30", "04/12/2026|P|06:00|06:00|00:00",
                                "05/12/2026|P|00:00|04:00|04:00", "06/12/2026|P|00:00|02:00|02:00",
                                "07/12/2026|P|08:00|08:00|00:00", "08/12/2026|P|08:00|08:00|00:00"};
    form.mfgAttendance->setRows(1);
    for (const QString& row : stored)
        form.mfgAttendance->AddItem(QStringList{QString()} + row.split(QLatin1Char('|')) +
                                    QStringList{QString()});
    form.mfgMirrorGrid->setRows(1);
    const QStringList pairs = {"01/12/2026|1|09:00|13:00", "01/12/2026|2|14:00|18:00",
                               "02/12/2026|1||",           "03/12/2026|1|09:30|13:00",
                               "03/12/2026|2|14:00|18:00", "04/12/2026|1|09:00|13:00",
                               "04/12/2026|2|14:00|16:00", "07/12/2026|1|09:00|17:00",
                               "08/12/2026|1|09:00|13:00", "08/12/2026|2|14:00|18:00"};
    for (const QString& p : pairs) form.mfgMirrorGrid->AddItem(p.split(QLatin1Char('|')));
    form.fnPopoulateList(kDec1, QDate(2026, 12, 8));
    ASSERT_EQ(form.lstAbsentDays->count(), 7);
    pickAbsent("2026/12/03");  // the clerk marks the 3rd absent and not the 2nd
    populate();
    EXPECT_TRUE(msgbox_testing::shown().isEmpty());
    // Types re-marked; every hour cell stays as stored, except that the new holiday is
    // scheduled at zero as a new entry's holidays are, so its work counts as extra.
    EXPECT_EQ(gridRows(form.mfgAttendance, 1),
              QStringList({"01/12/2026|P|08:00|08:00|00:00|", "02/12/2026|P|00:00|08:00|08:00|",
                           "03/12/2026|A|07:30|08:00|00:30|", "04/12/2026|P|06:00|06:00|00:00|",
                           "05/12/2026|P|00:00|04:00|04:00|", "06/12/2026|P|00:00|02:00|02:00|",
                           "07/12/2026|P|08:00|08:00|00:00|", "08/12/2026|H|08:00|00:00|08:00|"}));
    // The stored pairs stay, except the line of the day that is no longer absent.
    QStringList kept = pairs;
    kept.removeAll(QStringLiteral("02/12/2026|1||"));
    EXPECT_EQ(gridRows(form.mfgMirrorGrid), kept);
    EXPECT_EQ(counts(), QStringLiteral("7/0/1"));
}

TEST_F(PopulateFixture, OnAnEntryOpenedForEditAStartAfterTheEndIsStillRefused) {
    gstrEntryMode = QStringLiteral("E");
    load();
    form.txtStartDate->setText(QStringLiteral("09/12/2026"));
    form.dtpEndDate->setDate(QDate(2026, 12, 8));
    populate();
    EXPECT_EQ(shownTexts(), QStringList({"End Date Should be Greater than Start Date"}));
}

// ---- Hours after population ----------------------------------------------------------

TEST_F(PopulateFixture, TheGraceTimeAppliesToTheLaidOutCheckIns) {
    load();
    populate();
    const int monday = rowOf(QStringLiteral("07/12/2026"));
    ASSERT_GT(monday, 0);
    int mirrorRow = 0;
    for (int r = 1; r < form.mfgMirrorGrid->Rows(); ++r)
        if (form.mfgMirrorGrid->TextMatrix(r, 0) == QLatin1String("07/12/2026")) {
            mirrorRow = r;
            break;
        }
    ASSERT_GT(mirrorRow, 0);
    auto workedWith = [&](const char* checkIn) {
        form.mfgMirrorGrid->setTextMatrix(mirrorRow, 2, QString::fromLatin1(checkIn));
        form.fnCalculateTotalHours();
        return form.mfgAttendance->TextMatrix(monday, 3);
    };
    EXPECT_EQ(workedWith("09:05"), QStringLiteral("08:00"));  // inside the 10 minutes
    EXPECT_EQ(workedWith("09:10"), QStringLiteral("08:00"));  // the last minute of it
    EXPECT_EQ(workedWith("09:11"), QStringLiteral("07:49"));
    EXPECT_EQ(workedWith("08:55"), QStringLiteral("08:05"));  // early: as recorded
}

TEST_F(PopulateFixture, AnIncompletePairAndAWorkedHoliday) {
    load();
    populate();
    // The 14th keeps only a check-in at 09:00: the total is -09:00 and shows 09:00.
    form.fnRemoveMirrorRowsOfDate(QDate(2026, 12, 14));
    EXPECT_TRUE(mirrorOf(QStringLiteral("14/12/2026")).isEmpty());
    form.mfgMirrorGrid->AddItem({"14/12/2026", "1", "09:00", ""});
    // Four hours worked on the holiday of the 8th: all of it extra.
    form.mfgMirrorGrid->AddItem({"08/12/2026", "1", "10:00", "14:00"});
    form.fnCalculateTotalHours();
    form.fnFindtheAdditionalWorkingHours();
    EXPECT_EQ(days()[13], QStringLiteral("14/12/2026 P 09:00 08:00 01:00"));
    EXPECT_EQ(days()[7], QStringLiteral("08/12/2026 H 04:00 00:00 04:00"));
}

TEST_F(PopulateFixture, TheDaysDifferenceFromThePairsGrid) {
    load();
    populate();
    const int monday = rowOf(QStringLiteral("07/12/2026"));
    form.mfgAttendance->setCurrentCell(monday, 1);
    auto claimWith = [&](const char* secondCheckOut) {
        form.mfgCheckinCheckOut->setRows(1);
        form.mfgCheckinCheckOut->AddItem({"07/12/2026", "1", "09:00", "13:00"});
        form.mfgCheckinCheckOut->AddItem(
            {"07/12/2026", "2", "14:00", QString::fromLatin1(secondCheckOut)});
        form.dtCurrentDaySchedule = TimeValue::fromHM(8, 0);
        form.chkAllowanceDeductions->setChecked(true);
        form.fnCalculateTotalHoursfortheDay();
        return form.chkAllowanceDeductions->text() + QLatin1Char(' ') +
               form.txtAllowanceDeductions->text() +
               (form.chkAllowanceDeductions->isChecked() ? " ticked" : " clear");
    };
    EXPECT_EQ(claimWith("18:00"), QStringLiteral("Allowance/Deductions 00.00 clear"));
    EXPECT_EQ(claimWith("19:30"), QStringLiteral("Allowances 01.30 ticked"));
    EXPECT_EQ(claimWith("17:15"), QStringLiteral("Deductions 00.45 ticked"));
}

// ---- Statements -----------------------------------------------------------------------

TEST_F(PopulateFixture, AThirtyOneDayMonthAsksEachStatementOnce) {
    annasLeaves();
    load();
    pickAbsent("2026/12/10");
    const qint64 before = db::statementCount();
    populate();
    const qint64 cached = db::statementCount() - before;
    // Holidays and leaves once; the entry's line, the newest line and the first check-in of
    // each weekday once (no first check-in for the weekend, which has no pairs).
    EXPECT_EQ(cached, 1 + 1 + 7 + 7 + 5);
    EXPECT_LE(cached, 30);
    ASSERT_EQ(days(), kAnnaDecember);
    // Pressing again reads holidays and leaves afresh (one approved meanwhile counts) and
    // asks each schedule statement once more: the same count, the same days.
    const qint64 again = db::statementCount();
    populate();
    EXPECT_EQ(db::statementCount() - again, cached);
    EXPECT_EQ(days(), kAnnaDecember);
    // A recompute after a time edit asks nothing.
    const qint64 recompute = db::statementCount();
    form.fnCalculateTotalHours();
    form.fnFindtheAdditionalWorkingHours();
    form.fnCalculateTotalHoursfortheDay();
    EXPECT_EQ(db::statementCount() - recompute, 0);
}

TEST_F(PopulateFixture, TheCachedPopulationEqualsTheStatementsAskedEveryTime) {
    annasLeaves();
    load();
    pickAbsent("2026/12/10");
    populate();
    const QStringList cached = snapshot();

    entry::testing::setStatementCacheBypassed(true);
    const qint64 before = db::statementCount();
    populate();
    const qint64 uncached = db::statementCount() - before;
    entry::testing::setStatementCacheBypassed(false);
    EXPECT_EQ(snapshot(), cached);
    // Holidays, leaves, each day's own line and newest line, and one first check-in per
    // day with pairs (the hours rules ask once per day): 2 + 31 + 31 + 21.
    EXPECT_EQ(uncached, 85);
    // Asking the first check-in once per check-in, as the literal procedure does, would
    // add one statement for each further laid-out pair.
    int checkIns = 0;
    for (int r = 1; r < form.mfgMirrorGrid->Rows(); ++r)
        if (!form.mfgMirrorGrid->TextMatrix(r, 2).isEmpty()) ++checkIns;
    EXPECT_EQ(checkIns, 42);
    EXPECT_EQ(2 + 31 + 31 + checkIns, 106);
}

TEST_F(PopulateFixture, RecomputingAfterATimeEditAsksNothing) {
    load();
    populate();
    const int monday = rowOf(QStringLiteral("07/12/2026"));
    form.mfgAttendance->setCurrentCell(monday, 1);
    form.dtCurrentDaySchedule = TimeValue::fromHM(8, 0);
    form.mfgCheckinCheckOut->setRows(1);
    form.mfgCheckinCheckOut->AddItem({"07/12/2026", "1", "09:20", "13:00"});
    form.mfgCheckinCheckOut->AddItem({"07/12/2026", "2", "14:00", "18:00"});
    for (int r = 1; r < form.mfgMirrorGrid->Rows(); ++r)
        if (form.mfgMirrorGrid->TextMatrix(r, 0) == QLatin1String("07/12/2026") &&
            form.mfgMirrorGrid->TextMatrix(r, 1) == QLatin1String("1"))
            form.mfgMirrorGrid->setTextMatrix(r, 2, QStringLiteral("09:20"));
    const qint64 before = db::statementCount();
    form.fnCalculateTotalHours();
    form.fnFindtheAdditionalWorkingHours();
    EXPECT_EQ(days()[6], QStringLiteral("07/12/2026 P 07:40 08:00 00:20"));
    form.fnCalculateTotalHoursfortheDay();
    EXPECT_EQ(db::statementCount() - before, 0);
    EXPECT_EQ(form.chkAllowanceDeductions->text(), QStringLiteral("Deductions"));
    EXPECT_EQ(form.txtAllowanceDeductions->text(), QStringLiteral("00.20"));
}

TEST_F(PopulateFixture, AFailingStatementIsReportedAndLeavesNoHalfMadeMonth) {
    annasLeaves();
    load();
    // The leave register cannot be read: leave days must not be laid out as worked days.
    db::setFaultHook([](const QString& sql) {
        return sql.contains(QStringLiteral("lrdNoofDays")) ? QStringLiteral("no access")
                                                           : QString();
    });
    populate();
    db::setFaultHook({});
    ASSERT_EQ(msgbox_testing::shown().size(), 1);
    EXPECT_EQ(msgbox_testing::shown().first().text, QStringLiteral("no access"));
    EXPECT_TRUE(days().isEmpty());
    EXPECT_EQ(counts(), QStringLiteral("//"));
    EXPECT_EQ(form.unfinishedStep(), frmEmployeeDailyAttendance::Step::Populate);
    // Populate again, the register readable: the month with its leaves.
    msgbox_testing::clear();
    populate();
    EXPECT_TRUE(msgbox_testing::shown().isEmpty());
    EXPECT_EQ(form.unfinishedStep(), frmEmployeeDailyAttendance::Step::None);
    EXPECT_EQ(days()[24], QStringLiteral("25/12/2026 L 06:00 06:00 00:00"));
    EXPECT_EQ(counts(), QStringLiteral("23.5/7.5/0"));
}

// ---- Screenshot ---------------------------------------------------------------------

TEST(PopulateScreenshot, ADemoMonth) {
    const QByteArray dir = qgetenv("QZ2_SCREENSHOT_DIR");
    if (dir.isEmpty()) GTEST_SKIP() << "set QZ2_SCREENSHOT_DIR to write docs/populate.png";
    TestDb demo(true, QDate(2026, 12, 21));
    gstrEntryMode = QStringLiteral("N");
    frmEmployeeDailyAttendance form;
    form.Form_Load();
    form.cboEmpname->setCurrentIndex(2);
    ASSERT_EQ(form.txtStartDate->text(), QStringLiteral("01/12/2026"));
    // The clerk ticks Thursday the 10th as absent.
    const auto tenth =
        form.lstAbsentDays->findItems(QStringLiteral("2026/12/10"), Qt::MatchExactly);
    ASSERT_EQ(tenth.size(), 1);
    tenth.first()->setCheckState(Qt::Checked);
    form.show();
    form.resize(1120, 900);
    QApplication::processEvents();
    QTest::mouseClick(form.cmdPopulateRecords, Qt::LeftButton);
    ASSERT_EQ(form.mfgAttendance->Rows(), 32);
    // Christmas Eve to Boxing Day are the demo calendar's holidays.
    EXPECT_EQ(form.mfgAttendance->TextMatrix(25, 2), QStringLiteral("H"));
    EXPECT_EQ(form.mfgAttendance->TextMatrix(10, 2), QStringLiteral("A"));
    // Friday the 4th selected: its two scheduled pairs show on the right.
    QTest::mouseClick(
        form.mfgAttendance->viewport(), Qt::LeftButton, {},
        form.mfgAttendance->visualRect(form.mfgAttendance->model()->index(3, 1)).center());
    QApplication::processEvents();
    EXPECT_EQ(form.mfgCheckinCheckOut->Rows(), 3);
    const QString file = QDir(QString::fromLocal8Bit(dir)).filePath(QStringLiteral("populate.png"));
    ASSERT_TRUE(form.grab().save(file));
    EXPECT_TRUE(QFileInfo::exists(file));
}
