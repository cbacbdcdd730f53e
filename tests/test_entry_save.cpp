// Saving an entry with OK: the checks before anything is written (their messages, icons
// and focus), every row a save writes, the statements it runs in their order, the register
// row it adds, and what a failed save leaves behind (nothing, and the form as it was).

#include <gtest/gtest.h>

#include <QApplication>
#include <QComboBox>
#include <QDateEdit>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QTest>
#include <memory>
#include <ostream>

#include "SaveScenario.h"
#include "TestSupport.h"
#include "db/Database.h"
#include "entry/EntrySql.h"
#include "entry/SaveSql.h"
#include "entry/frmEmployeeDailyAttendance.h"
#include "history/HistoryStore.h"
#include "register/FrmMaster.h"
#include "register/RegisterSql.h"
#include "rules/HalfDay.h"
#include "rules/Pairs.h"
#include "rules/RuleGrids.h"
#include "shared/BasAttendence.h"
#include "shared/FlexGrid.h"
#include "shared/MsgBox.h"
#include "shared/SharedServices.h"

using namespace qz2;
using qz2test::TestDb;

namespace {

const QDate kStart(2026, 11, 2);  // a Monday

using qz2test::table;

QString hoursOf(int minutes) {
    return QString::number(minutes / 60 + (minutes % 60) / 60.0, 'g', 17);
}

class EntrySave : public ::testing::Test {
protected:
    void SetUp() override {
        msgbox_testing::clear();
        msgbox_testing::setAutoAnswer(true);
        gstrEntryMode = QStringLiteral("N");
        employee = qz2test::freeEmployee(t.db);
        ASSERT_NE(employee, 0);
        rate =
            t.scalar(
                 QStringLiteral("select PerHourRate from pEmployee where eEmpID=%1").arg(employee))
                .toDouble();
        nextId = t.scalar("select max(eaID)+1 from pEmployeeAttendence").toInt();
        nextNo =
            QStringLiteral("ATT") +
            QString::number(
                t.scalar("select max(cast(substr(eaNo,4) as integer)) from pEmployeeAttendence "
                         "where eaCompanyID=1 and eaNo like 'ATT%'")
                    .toInt() +
                1);
    }
    void TearDown() override {
        form.reset();
        db::setFaultHook({});
        setRegisterGrid(nullptr);
        msgbox_testing::setAutoAnswer(false);
        msgbox_testing::clear();
    }

    frmEmployeeDailyAttendance& newForm() {
        form = std::make_unique<frmEmployeeDailyAttendance>();
        form->Form_Load();
        return *form;
    }
    frmEmployeeDailyAttendance& scenarioForm(const qz2test::Scenario& s) {
        frmEmployeeDailyAttendance& f = newForm();
        qz2test::fillForm(f, s);
        msgbox_testing::clear();
        return f;
    }
    void showActive(frmEmployeeDailyAttendance& f) {
        f.show();
        QApplication::setActiveWindow(&f);
        ASSERT_TRUE(QTest::qWaitForWindowActive(&f));
    }
    QString lastMessage() const {
        const auto& shown = msgbox_testing::shown();
        return shown.isEmpty() ? QString() : shown.last().text;
    }
    // The one message a refused save showed, with its icon; the database untouched.
    void expectRefused(const QString& text, MsgIcon icon, const QString& before) {
        ASSERT_EQ(msgbox_testing::shown().size(), 1) << lastMessage().toStdString();
        EXPECT_EQ(msgbox_testing::shown().first().text, text);
        EXPECT_EQ(msgbox_testing::shown().first().title, QStringLiteral("Attendance Test"));
        EXPECT_EQ(msgbox_testing::shown().first().icon, icon);
        EXPECT_FALSE(form->saved());
        EXPECT_EQ(t.dump(), before);
    }
    QStringList headerOf(qint32 id) const {
        return table(
            t, QStringLiteral(
                   "select eaCompanyID,eaID,eaNo,eaDate,eaEmpID,eaPresent,eaLeaves,eaAbsent,"
                   "eaCancelled,eaStartDate,eaEndDate,eacwtsid,eaRemarks,eaPerHourRate,"
                   "eaCancelledRemarks from pEmployeeAttendence where eaCompanyID=1 and eaID=%1")
                   .arg(id));
    }
    QStringList detailsOf(qint32 id) const {
        return table(
            t, QStringLiteral(
                   "select eadCompanyID,eadAttendanceID,eadDetailID,eadDate,eadType,eadCheckIN,"
                   "eadCheckOut from pEmpAttendanceDetail where eadAttendanceID=%1 "
                   "order by eadDetailID")
                   .arg(id));
    }
    QStringList claimsOf(qint32 id) const {
        return table(
            t,
            QStringLiteral("select eaadCompanyID,eaadAttendanceID,eaadDetailID,eaadDate,eaadHours,"
                           "eaadAllowanceID,eaadDeductionID from pEmpAttendanceAllowanceDeductions "
                           "where eaadAttendanceID=%1 order by eaadDetailID")
                .arg(id));
    }
    QString rateText() const { return QString::number(rate, 'g', 17); }

    TestDb t{true};
    std::unique_ptr<frmEmployeeDailyAttendance> form;
    qint32 employee = 0;
    double rate = 0;
    qint32 nextId = 0;
    QString nextNo;
};

// ---------------------------------------------------------------------------------------
// The checks before writing

TEST_F(EntrySave, NoEmployeeSelectedSaysSelectEmployeeAndFocusesTheBox) {
    frmEmployeeDailyAttendance& f = scenarioForm(qz2test::demoScenario(employee, kStart));
    showActive(f);
    f.cmdOK->setFocus();
    f.cboEmpname->setCurrentIndex(-1);
    const QString before = t.dump();
    msgbox_testing::clear();
    f.cmdOK_Click();
    expectRefused(QStringLiteral("Select Employee"), MsgIcon::None, before);
    EXPECT_TRUE(f.cboEmpname->hasFocus());
    EXPECT_TRUE(f.isVisible());
}

TEST_F(EntrySave, TheFirstFailingCheckIsTheOnlyOneReported) {
    frmEmployeeDailyAttendance& f = newForm();
    f.cboEmpname->setCurrentIndex(-1);
    f.fnSetUpAttendanceGrid();
    const QString before = t.dump();
    msgbox_testing::clear();
    f.cmdOK_Click();
    expectRefused(QStringLiteral("Select Employee"), MsgIcon::None, before);
}

TEST_F(EntrySave, ADayGridWithOnlyItsHeadingSaysProcessAttendance) {
    frmEmployeeDailyAttendance& f = scenarioForm(qz2test::demoScenario(employee, kStart));
    showActive(f);
    f.fnSetUpAttendanceGrid();
    ASSERT_EQ(f.mfgAttendance->Rows(), 1);
    const QString before = t.dump();
    msgbox_testing::clear();
    f.cmdOK_Click();
    expectRefused(QStringLiteral("Process Attendance"), MsgIcon::None, before);
    EXPECT_TRUE(f.cmdPopulateRecords->hasFocus());
}

TEST_F(EntrySave, NoPairAnywhereWhileADayIsNotPresentSaysProcessAttendance) {
    frmEmployeeDailyAttendance& f = scenarioForm(qz2test::demoScenario(employee, kStart));
    showActive(f);
    f.mfgMirrorGrid->setRows(1);
    const QString before = t.dump();
    msgbox_testing::clear();
    f.cmdOK_Click();
    expectRefused(QStringLiteral("Process Attendance"), MsgIcon::None, before);
    EXPECT_TRUE(f.cmdPopulateRecords->hasFocus());
}

TEST_F(EntrySave, APeriodOfPresentDaysWithoutAnyPairPassesTheCheckAndSaves) {
    qz2test::Scenario s;
    s.employee = employee;
    s.start = kStart;
    s.days = {{QStringLiteral("P"), {}, QString(), QString()},
              {QStringLiteral("P"), {}, QString(), QString()}};
    frmEmployeeDailyAttendance& f = scenarioForm(s);
    f.cmdOK_Click();
    EXPECT_TRUE(f.saved()) << lastMessage().toStdString();
    EXPECT_EQ(headerOf(nextId).size(), 1);
    // Present days without pairs are stored as one line each without times, so that the
    // entry reopens with both days.
    const QString k = QStringLiteral("1|%1|").arg(nextId);
    EXPECT_EQ(detailsOf(nextId),
              (QStringList{k + "1|2026-11-02|P|NULL|NULL", k + "2|2026-11-03|P|NULL|NULL"}));
}

TEST_F(EntrySave, EditingAnEntryThatAMonthlyEntryOverlapsSaysCanotModify) {
    frmEmployeeDailyAttendance& f = scenarioForm(qz2test::demoScenario(employee, kStart));
    f.cmdOK_Click();
    ASSERT_TRUE(f.saved());
    t.exec(QStringLiteral(
               "insert into pEmpMonthlyEntryHeader values(1,900,%1,'2026-11-09','2026-12-08',0)")
               .arg(employee));
    gstrEntryMode = QStringLiteral("E");
    frmEmployeeDailyAttendance& edit = scenarioForm(qz2test::demoScenario(employee, kStart));
    qz2test::openedAs(edit, nextId);
    edit.txtAttNo->setText(nextNo);
    edit.txtAttdate->setText(QStringLiteral("21/11/2026"));
    const QString before = t.dump();
    msgbox_testing::clear();
    edit.cmdOK_Click();
    expectRefused(QStringLiteral("Monthly entry done. Canot Modify."), MsgIcon::Information,
                  before);
}

TEST_F(EntrySave, ACancelledMonthlyEntryDoesNotStopAnEdit) {
    frmEmployeeDailyAttendance& f = scenarioForm(qz2test::demoScenario(employee, kStart));
    f.cmdOK_Click();
    ASSERT_TRUE(f.saved());
    t.exec(QStringLiteral(
               "insert into pEmpMonthlyEntryHeader values(1,900,%1,'2026-11-09','2026-12-08',1)")
               .arg(employee));
    gstrEntryMode = QStringLiteral("E");
    frmEmployeeDailyAttendance& edit = scenarioForm(qz2test::demoScenario(employee, kStart));
    qz2test::openedAs(edit, nextId);
    edit.txtAttNo->setText(nextNo);
    edit.txtAttdate->setText(QStringLiteral("21/11/2026"));
    edit.cmdOK_Click();
    EXPECT_TRUE(edit.saved()) << lastMessage().toStdString();
}

TEST_F(EntrySave, AZeroRateWithTheRateSettingOnCannotSave) {
    t.exec(QStringLiteral("update pEmployee set PerHourRate=0 where eEmpID=%1").arg(employee));
    ASSERT_EQ(
        t.scalar("select PerHourRateFromEmployeeMaster from pSettings where companyid=1").toInt(),
        1);
    frmEmployeeDailyAttendance& f = scenarioForm(qz2test::demoScenario(employee, kStart));
    const QString before = t.dump();
    f.cmdOK_Click();
    expectRefused(
        QStringLiteral(
            "The Overtime/Latecoming Rate/Hour is Zero in the Employee master. Can't Save."),
        MsgIcon::Information, before);
}

TEST_F(EntrySave, AZeroRateWithTheRateSettingOffSavesRateZero) {
    t.exec(QStringLiteral("update pEmployee set PerHourRate=0 where eEmpID=%1").arg(employee));
    t.exec("update pSettings set PerHourRateFromEmployeeMaster=0 where companyid=1");
    frmEmployeeDailyAttendance& f = scenarioForm(qz2test::demoScenario(employee, kStart));
    f.cmdOK_Click();
    ASSERT_TRUE(f.saved()) << lastMessage().toStdString();
    EXPECT_EQ(t.scalar(QStringLiteral("select eaPerHourRate from pEmployeeAttendence where eaID=%1")
                           .arg(nextId))
                  .toDouble(),
              0.0);
}

TEST_F(EntrySave, TheRateSettingOfAnotherCompanyDoesNotCount) {
    // Company 2's switch is off; company 1's (on) is the one that refuses.
    t.exec(QStringLiteral("update pEmployee set PerHourRate=0 where eEmpID=%1").arg(employee));
    ASSERT_EQ(
        t.scalar("select PerHourRateFromEmployeeMaster from pSettings where companyid=2").toInt(),
        0);
    frmEmployeeDailyAttendance& f = scenarioForm(qz2test::demoScenario(employee, kStart));
    f.cmdOK_Click();
    EXPECT_FALSE(f.saved());
    EXPECT_EQ(lastMessage(),
              QStringLiteral(
                  "The Overtime/Latecoming Rate/Hour is Zero in the Employee master. Can't Save."));
}

// ---------------------------------------------------------------------------------------
// What a save writes

TEST_F(EntrySave, TheKeyedEntryIsStoredRowForRow) {
    frmEmployeeDailyAttendance& f = scenarioForm(qz2test::demoScenario(employee, kStart));
    EXPECT_EQ(f.txtNoPresent->text(), QStringLiteral("5.5"));
    EXPECT_EQ(f.txtNoLeave->text(), QStringLiteral("1"));
    EXPECT_EQ(f.txtNoAbsent->text(), QStringLiteral("1.5"));
    f.cmdOK_Click();
    ASSERT_TRUE(f.saved()) << lastMessage().toStdString();
    EXPECT_TRUE(msgbox_testing::shown().isEmpty());
    EXPECT_EQ(f.result(), QDialog::Accepted);

    const QString e = QString::number(employee);
    const QString id = QString::number(nextId);
    EXPECT_EQ(headerOf(nextId), QStringList{QStringLiteral("1|") + id + QLatin1Char('|') + nextNo +
                                            QStringLiteral("|2026-11-21|") + e +
                                            QStringLiteral("|5.5|1|1.5|0|2026-11-02|2026-11-09|1|"
                                                           "Keyed from the punch cards|") +
                                            rateText() + QStringLiteral("|NULL")});
    const QString k = QStringLiteral("1|") + id + QLatin1Char('|');
    EXPECT_EQ(detailsOf(nextId), (QStringList{
                                     k + "1|2026-11-02|P|09:00:00|13:00:00",
                                     k + "2|2026-11-02|P|14:00:00|18:30:00",
                                     k + "3|2026-11-03|P|08:30:00|12:00:00",
                                     k + "4|2026-11-03|P|12:30:00|15:00:00",
                                     k + "5|2026-11-03|P|15:30:00|19:15:00",
                                     k + "6|2026-11-05|HA|09:00:00|13:00:00",
                                     k + "7|2026-11-07|H|10:00:00|12:00:00",
                                     k + "8|2026-11-09|P|09:20:00|17:00:00",
                                     k + "9|2026-11-04|A|NULL|NULL",
                                     k + "10|2026-11-06|H|NULL|NULL",
                                     k + "11|2026-11-08|L|NULL|NULL",
                                 }));
    // Demo company 1's currency: overtime head 11, late-coming head 21. The first day's
    // amount is not claimed and so not stored.
    EXPECT_EQ(claimsOf(nextId), (QStringList{k + "1|2026-11-03|" + hoursOf(165) + "|11|NULL",
                                             k + "2|2026-11-09|" + hoursOf(40) + "|NULL|21"}));
    EXPECT_DOUBLE_EQ(
        t.scalar(QStringLiteral("select eaadHours from pEmpAttendanceAllowanceDeductions where "
                                "eaadAttendanceID=%1 and eaadDetailID=2")
                     .arg(nextId))
            .toDouble(),
        40.0 / 60.0);
}

TEST_F(EntrySave, ANewSaveRunsItsStatementsInOrderAndPreparesEachInsertOnce) {
    frmEmployeeDailyAttendance& f = scenarioForm(qz2test::demoScenario(employee, kStart));
    QStringList ran;
    db::setFaultHook([&ran](const QString& sql) {
        ran << sql;
        return QString();
    });
    const qint64 prepared = entry::savesql::insertPreparations();
    f.cmdOK_Click();
    db::setFaultHook({});
    ASSERT_TRUE(f.saved()) << lastMessage().toStdString();
    EXPECT_EQ(entry::savesql::insertPreparations() - prepared, 3);

    const QString header = entry::savesql::headerInsert();
    const QString detail = entry::savesql::detailInsert();
    const QString claim = entry::savesql::allowanceInsert();
    const qint32 savedId = t.scalar(QStringLiteral("select max(eaID) from pEmployeeAttendence")).toInt();
    const QStringList expected = {
        QStringLiteral("PRAGMA busy_timeout"),
        QStringLiteral("select PerHourRateFromEmployeeMaster from pSettings where companyid=1"),
        QStringLiteral("select PerHourRate from ") + LinkedTableNames.pemployee +
            QStringLiteral(" where ecompanyid=1 And eEmpID=") + QString::number(employee),
        entry::savesql::overlappingEntryQuery(db::Dialect::sqlite(), 1, employee, kStart,
                                              kStart.addDays(7), std::nullopt),
        history::tableKeptQuery(db::Dialect::sqlite()),
        entry::sql::prefixQuery(91029, 1),
        db::Dialect::sqlite().attendanceNumberQuery(QStringLiteral("pEmployeeAttendence"), 1,
                                                    QStringLiteral("ATT")),
        entry::savesql::attendanceNoTakenQuery(1, nextNo),
        QStringLiteral("select max(eaID) from pEmployeeAttendence"),
        header,
        detail,
        detail,
        detail,
        detail,
        detail,
        detail,
        detail,
        detail,
        entry::savesql::currencyHeadsQuery(employee, 1),
        claim,
        claim,
        detail,
        detail,
        detail,
        // The history row of the new entry, read back as stored, in the same transaction.
        history::headerVersionQuery(1, savedId),
        history::lineVersionQuery(1, savedId),
        history::claimVersionQuery(1, savedId),
        sql::cancelUserNameQuery(1, 1),
        history::historyInsert()};
    EXPECT_EQ(ran, expected);
}

TEST_F(EntrySave, BlankRemarksStoreNull) {
    qz2test::Scenario s = qz2test::demoScenario(employee, kStart, QString());
    frmEmployeeDailyAttendance& f = scenarioForm(s);
    f.cmdOK_Click();
    ASSERT_TRUE(f.saved());
    EXPECT_EQ(table(t, QStringLiteral(
                           "select ifnull(eaRemarks,'NULL') from pEmployeeAttendence where eaID=%1")
                           .arg(nextId)),
              QStringList{QStringLiteral("NULL")});
}

TEST_F(EntrySave, RemarksOfBlanksOnlyStoreNull) {
    frmEmployeeDailyAttendance& f =
        scenarioForm(qz2test::demoScenario(employee, kStart, QStringLiteral("    ")));
    f.cmdOK_Click();
    ASSERT_TRUE(f.saved());
    EXPECT_EQ(table(t, QStringLiteral(
                           "select ifnull(eaRemarks,'NULL') from pEmployeeAttendence where eaID=%1")
                           .arg(nextId)),
              QStringList{QStringLiteral("NULL")});
}

TEST_F(EntrySave, RemarksAreStoredTrimmed) {
    frmEmployeeDailyAttendance& f =
        scenarioForm(qz2test::demoScenario(employee, kStart, QStringLiteral("  late bus  ")));
    f.cmdOK_Click();
    ASSERT_TRUE(f.saved());
    EXPECT_EQ(
        t.scalar(
             QStringLiteral("select eaRemarks from pEmployeeAttendence where eaID=%1").arg(nextId))
            .toString(),
        QStringLiteral("late bus"));
}

TEST_F(EntrySave, AnEmptyCheckInOrCheckOutCellIsStoredAsMidnightNotNull) {
    qz2test::Scenario s = qz2test::demoScenario(employee, kStart);
    s.days[0].pairs = {{QStringLiteral("09:00"), QString()}, {QString(), QStringLiteral("18:30")}};
    frmEmployeeDailyAttendance& f = scenarioForm(s);
    f.cmdOK_Click();
    ASSERT_TRUE(f.saved()) << lastMessage().toStdString();
    EXPECT_EQ(table(t, QStringLiteral(
                           "select eadDetailID,eadCheckIN,eadCheckOut from pEmpAttendanceDetail "
                           "where eadAttendanceID=%1 and eadDate='2026-11-02' order by eadDetailID")
                           .arg(nextId)),
              (QStringList{"1|09:00:00|00:00:00", "2|00:00:00|18:30:00"}));
}

TEST_F(EntrySave, AHolidayWithTimesIsStoredPerPairAndOneWithoutTimesOnce) {
    frmEmployeeDailyAttendance& f = scenarioForm(qz2test::demoScenario(employee, kStart));
    f.cmdOK_Click();
    ASSERT_TRUE(f.saved());
    EXPECT_EQ(
        table(t, QStringLiteral("select eadDate,eadCheckIN,eadCheckOut from pEmpAttendanceDetail "
                                "where eadAttendanceID=%1 and eadType='H' order by eadDate")
                     .arg(nextId)),
        (QStringList{"2026-11-06|NULL|NULL", "2026-11-07|10:00:00|12:00:00"}));
}

TEST_F(EntrySave, AHolidayWithTwoPairsHasTwoLinesAndNoBareLine) {
    qz2test::Scenario s = qz2test::demoScenario(employee, kStart);
    s.days[5].pairs = {{QStringLiteral("08:00"), QStringLiteral("10:00")},
                       {QStringLiteral("11:00"), QStringLiteral("12:00")}};
    frmEmployeeDailyAttendance& f = scenarioForm(s);
    f.cmdOK_Click();
    ASSERT_TRUE(f.saved());
    EXPECT_EQ(table(t, QStringLiteral(
                           "select eadCheckIN,eadCheckOut from pEmpAttendanceDetail "
                           "where eadAttendanceID=%1 and eadDate='2026-11-07' order by eadDetailID")
                           .arg(nextId)),
              (QStringList{"08:00:00|10:00:00", "11:00:00|12:00:00"}));
}

TEST_F(EntrySave, AnEntryWithoutClaimsHasNoAllowanceOrDeductionLines) {
    qz2test::Scenario s = qz2test::demoScenario(employee, kStart);
    for (qz2test::ScenarioDay& d : s.days) d.claim.clear();
    frmEmployeeDailyAttendance& f = scenarioForm(s);
    f.cmdOK_Click();
    ASSERT_TRUE(f.saved());
    EXPECT_EQ(detailsOf(nextId).size(), 11);
    EXPECT_TRUE(claimsOf(nextId).isEmpty());
}

TEST_F(EntrySave, AClaimWhoseCurrencyHasNoHeadsIsStoredWithZero) {
    t.exec("delete from pCurrencyallowdeddetails where companyID=1");
    frmEmployeeDailyAttendance& f = scenarioForm(qz2test::demoScenario(employee, kStart));
    f.cmdOK_Click();
    ASSERT_TRUE(f.saved()) << lastMessage().toStdString();
    const QString k = QStringLiteral("1|") + QString::number(nextId) + QLatin1Char('|');
    EXPECT_EQ(claimsOf(nextId), (QStringList{k + "1|2026-11-03|" + hoursOf(165) + "|0|NULL",
                                             k + "2|2026-11-09|" + hoursOf(40) + "|NULL|0"}));
}

TEST_F(EntrySave, NullHeadsOfTheCurrencyReadAsZero) {
    t.exec("update pCurrencyallowdeddetails set Overtimeallowanceid=NULL where companyID=1");
    frmEmployeeDailyAttendance& f = scenarioForm(qz2test::demoScenario(employee, kStart));
    f.cmdOK_Click();
    ASSERT_TRUE(f.saved());
    EXPECT_EQ(
        table(t,
              QStringLiteral(
                  "select eaadAllowanceID,eaadDeductionID from pEmpAttendanceAllowanceDeductions "
                  "where eaadAttendanceID=%1 order by eaadDetailID")
                  .arg(nextId)),
        (QStringList{"0|NULL", "NULL|21"}));
}

TEST_F(EntrySave, ANewEntryIsNumberedAfterTheCompanysHighestNumber) {
    frmEmployeeDailyAttendance& f = scenarioForm(qz2test::demoScenario(employee, kStart));
    f.cmdOK_Click();
    ASSERT_TRUE(f.saved());
    frmEmployeeDailyAttendance& g =
        scenarioForm(qz2test::demoScenario(employee, kStart.addDays(8)));
    g.cmdOK_Click();
    ASSERT_TRUE(g.saved());
    EXPECT_EQ(table(t, QStringLiteral(
                           "select eaID,eaNo from pEmployeeAttendence where eaID>=%1 order by eaID")
                           .arg(nextId)),
              (QStringList{QString::number(nextId) + "|" + nextNo,
                           QString::number(nextId + 1) + "|ATT" +
                               QString::number(nextNo.mid(3).toInt() + 1)}));
}

TEST_F(EntrySave, AnEmptyPrefixNumbersWithDigitsOnly) {
    t.exec("update pPrefix set Prefix='' where companyid=1");
    frmEmployeeDailyAttendance& f = scenarioForm(qz2test::demoScenario(employee, kStart));
    f.cmdOK_Click();
    ASSERT_TRUE(f.saved());
    // No stored number is digits only: the first is 1.
    EXPECT_EQ(
        t.scalar(QStringLiteral("select eaNo from pEmployeeAttendence where eaID=%1").arg(nextId))
            .toString(),
        QStringLiteral("1"));
}

TEST_F(EntrySave, AnUnreadableEntryDateRollsBackWithTypeMismatch) {
    frmEmployeeDailyAttendance& f = scenarioForm(qz2test::demoScenario(employee, kStart));
    f.txtAttdate->setText(QStringLiteral("31/02/2026"));
    const QString before = t.dump();
    const QString shown = qz2test::formSnapshot(f);
    f.cmdOK_Click();
    expectRefused(QStringLiteral("Type mismatch"), MsgIcon::Information, before);
    EXPECT_EQ(qz2test::formSnapshot(f), shown);
}

TEST_F(EntrySave, ADatabaseErrorAfterTheHeaderRollsEverythingBackAndShowsTheDatabasesMessage) {
    // The claims table is gone: the header and the pair lines are written, then the claims
    // insert fails in the database itself.
    t.exec("drop table pEmpAttendanceAllowanceDeductions");
    frmEmployeeDailyAttendance& f = scenarioForm(qz2test::demoScenario(employee, kStart));
    const QString before = t.dump();
    const QString shown = qz2test::formSnapshot(f);
    f.cmdOK_Click();
    expectRefused(QStringLiteral("no such table: pEmpAttendanceAllowanceDeductions"),
                  MsgIcon::Information, before);
    EXPECT_EQ(qz2test::formSnapshot(f), shown);
    EXPECT_EQ(t.scalar(QStringLiteral(
                           "select count(*) from pEmpAttendanceDetail where eadAttendanceID=%1")
                           .arg(nextId))
                  .toInt(),
              0);
}

TEST_F(EntrySave, TheLockWaitIsSetWhenTheConnectionHasNone) {
    t.exec("PRAGMA busy_timeout = 0");
    frmEmployeeDailyAttendance& f = scenarioForm(qz2test::demoScenario(employee, kStart));
    f.cmdOK_Click();
    ASSERT_TRUE(f.saved());
    EXPECT_EQ(t.scalar("PRAGMA busy_timeout").toInt(), 10000);
}

TEST_F(EntrySave, ALockWaitOfTheConnectionIsKept) {
    t.exec("PRAGMA busy_timeout = 2500");
    frmEmployeeDailyAttendance& f = scenarioForm(qz2test::demoScenario(employee, kStart));
    f.cmdOK_Click();
    ASSERT_TRUE(f.saved());
    EXPECT_EQ(t.scalar("PRAGMA busy_timeout").toInt(), 2500);
}

TEST_F(EntrySave, SavingWithoutARegisterStillSavesAndUnloads) {
    setRegisterGrid(nullptr);
    frmEmployeeDailyAttendance& f = scenarioForm(qz2test::demoScenario(employee, kStart));
    f.show();
    f.cmdOK->click();
    EXPECT_TRUE(f.saved());
    EXPECT_FALSE(f.isVisible());
    EXPECT_EQ(headerOf(nextId).size(), 1);
}

TEST_F(EntrySave, AFailingRegisterRefreshLeavesTheSavedEntryAndUnloads) {
    FlexGrid registerRows;
    registerRows.setCols(5);
    setRegisterGrid(&registerRows);
    gstrMasterQuery =
        QStringLiteral("select eaID,eaNo,eaDate,eaEmpID,eaCancelled from pEmployeeAttendence");
    frmEmployeeDailyAttendance& f = scenarioForm(qz2test::demoScenario(employee, kStart));
    db::setFaultHook([](const QString& sql) {
        return sql.startsWith(QLatin1String("select eaID,eaNo"))
                   ? QStringLiteral("injected refresh failure")
                   : QString();
    });
    f.cmdOK_Click();
    db::setFaultHook({});
    EXPECT_TRUE(f.saved());
    EXPECT_TRUE(msgbox_testing::shown().isEmpty());
    EXPECT_EQ(headerOf(nextId).size(), 1);
    EXPECT_EQ(registerRows.Rows(), 1);  // nothing appended
    gstrMasterQuery.clear();
}

// ---------------------------------------------------------------------------------------
// Through the register, the way the clerk does it

class EntrySaveThroughRegister : public EntrySave {
protected:
    void openRegister() {
        reg = std::make_unique<FrmMaster>();
        reg->Form_Load();
        reg->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(reg.get()));
    }
    void TearDown() override {
        reg.reset();
        EntrySave::TearDown();
    }
    QStringList registerRow(int row) const {
        QStringList cells;
        for (int c = 0; c < reg->flexMaster->Cols(); ++c)
            cells << reg->flexMaster->TextMatrix(row, c);
        return cells;
    }
    std::unique_ptr<FrmMaster> reg;
};

TEST_F(EntrySaveThroughRegister, NewEntryKeyedAndSavedWithOkIsStoredAndListed) {
    openRegister();
    const int rowsBefore = reg->flexMaster->Rows();
    bool saved = false;
    qz2test::whenModal([&](QWidget* w) {
        auto* f = qobject_cast<frmEmployeeDailyAttendance*>(w);
        if (!f) {
            ADD_FAILURE() << "expected the entry form, got " << w->objectName().toStdString();
            w->close();
            return;
        }
        qz2test::fillForm(*f, qz2test::demoScenario(employee, kStart));
        QTest::mouseClick(f->cmdOK, Qt::LeftButton);
        saved = f->saved();
        if (!saved) f->reject();  // never leave the test waiting on the form
    });
    reg->cmdnew->click();
    ASSERT_TRUE(saved) << lastMessage().toStdString();

    EXPECT_EQ(headerOf(nextId).size(), 1);
    EXPECT_EQ(detailsOf(nextId).size(), 11);
    EXPECT_EQ(claimsOf(nextId).size(), 2);
    // The register gained exactly this entry's row, made current; nothing else was re-read.
    ASSERT_EQ(reg->flexMaster->Rows(), rowsBefore + 1);
    EXPECT_EQ(reg->flexMaster->Row(), rowsBefore);
    const QString name =
        t.scalar(QStringLiteral("select eName from pEmployee where eEmpID=%1").arg(employee))
            .toString();
    EXPECT_EQ(registerRow(rowsBefore),
              (QStringList{QString::number(nextId), nextNo, QStringLiteral("21/11/2026"), name,
                           QStringLiteral("No")}));
}

TEST_F(EntrySaveThroughRegister, APopulatedEntrySavesWhatTheGridsShow) {
    openRegister();
    QStringList dayRows;
    QStringList mirrorRows;
    bool saved = false;
    qz2test::whenModal([&](QWidget* w) {
        auto* f = qobject_cast<frmEmployeeDailyAttendance*>(w);
        if (!f) {
            w->close();
            return;
        }
        for (int i = 0; i < f->cboEmpname->count(); ++i)
            if (f->cboEmpname->itemData(i).toInt() == employee) f->cboEmpname->setCurrentIndex(i);
        // A fortnight, one absent day ticked, then Populate.
        f->dtpEndDate->setDate(QDate(2026, 11, 14));
        f->txtEndDate->setText(QStringLiteral("14/11/2026"));
        for (int i = 0; i < f->lstAbsentDays->count(); ++i)
            if (f->lstAbsentDays->item(i)->text() == QLatin1String("2026/11/04"))
                f->lstAbsentDays->item(i)->setCheckState(Qt::Checked);
        QTest::mouseClick(f->cmdPopulateRecords, Qt::LeftButton);
        FlexGridModel& days = *f->mfgAttendance->flexModel();
        FlexGridModel& mirror = *f->mfgMirrorGrid->flexModel();
        // The clerk's corrections: a later check-out, a third pair, a half day, two claims.
        rules::fnUpdateMirrorTime(mirror, QDate(2026, 11, 2), 2, TimeValue::fromHM(19, 10),
                                  rules::TimeKind::CheckOut);
        mirror.AddItem({QStringLiteral("03/11/2026"), QStringLiteral("3"), QStringLiteral("19:00"),
                        QStringLiteral("20:30")});
        for (int r = 1; r < days.Rows(); ++r)
            if (days.TextMatrix(r, rules::daycol::Date) == QLatin1String("05/11/2026"))
                rules::fnMarkHalfDay(days, r, rules::kMenuMarkHalfDay);
        f->fnCalculateTotalHours();
        rules::fnSetDayAllowanceDeduction(days, QStringLiteral("01:10"), QStringLiteral("A"),
                                          QDate(2026, 11, 2), true);
        rules::fnSetDayAllowanceDeduction(days, QStringLiteral("00:30"), QStringLiteral("D"),
                                          QDate(2026, 11, 6), true);
        f->fnCountDayTypes();
        for (int r = 1; r < days.Rows(); ++r)
            dayRows << days.TextMatrix(r, 1) + QLatin1Char('|') + days.TextMatrix(r, 2) +
                           QLatin1Char('|') + days.TextMatrix(r, 5) + QLatin1Char('|') +
                           days.TextMatrix(r, 6);
        for (int r = 1; r < mirror.Rows(); ++r)
            mirrorRows << mirror.TextMatrix(r, 0) + QLatin1Char('|') + mirror.TextMatrix(r, 2) +
                              QLatin1Char('|') + mirror.TextMatrix(r, 3);
        QTest::mouseClick(f->cmdOK, Qt::LeftButton);
        saved = f->saved();
        if (!saved) f->reject();
    });
    reg->cmdnew->click();
    ASSERT_TRUE(saved) << lastMessage().toStdString();
    ASSERT_EQ(dayRows.size(), 14);
    ASSERT_GT(mirrorRows.size(), 10);

    // What the grids showed, turned into rows by hand: a line per pair (the day's type, the
    // times as HH:MM:SS), then a line per absent, leave or bare holiday day.
    const auto iso = [](const QString& dmy) {
        return dmy.mid(6, 4) + "-" + dmy.mid(3, 2) + "-" + dmy.mid(0, 2);
    };
    QHash<QString, QString> typeOf;
    for (const QString& d : dayRows) typeOf.insert(d.section('|', 0, 0), d.section('|', 1, 1));
    QStringList expected;
    QSet<QString> withPairs;
    int n = 0;
    for (const QString& m : mirrorRows) {
        const QString date = m.section('|', 0, 0);
        withPairs << date;
        expected << QStringLiteral("%1|%2|%3|%4:00|%5:00")
                        .arg(++n)
                        .arg(iso(date), typeOf.value(date), m.section('|', 1, 1),
                             m.section('|', 2, 2));
    }
    for (const QString& d : dayRows) {
        const QString date = d.section('|', 0, 0);
        const QString type = d.section('|', 1, 1);
        if (type == "A" || type == "L" || !withPairs.contains(date))
            expected << QStringLiteral("%1|%2|%3|NULL|NULL").arg(++n).arg(iso(date), type);
    }
    EXPECT_EQ(table(t, QStringLiteral(
                           "select eadDetailID,eadDate,eadType,eadCheckIN,eadCheckOut from "
                           "pEmpAttendanceDetail where eadAttendanceID=%1 order by eadDetailID")
                           .arg(nextId)),
              expected);
    // The hand-made corrections are among them.
    EXPECT_EQ(expected.filter(QStringLiteral("2026-11-02|P|14:00:00|19:10:00")).size(), 1);
    EXPECT_EQ(expected.filter(QStringLiteral("2026-11-03|P|19:00:00|20:30:00")).size(), 1);
    EXPECT_EQ(expected.filter(QStringLiteral("2026-11-04|A|NULL|NULL")).size(), 1);
    EXPECT_FALSE(expected.filter(QStringLiteral("2026-11-05|HA|")).isEmpty());
    EXPECT_EQ(
        table(
            t,
            QStringLiteral(
                "select eaadDetailID,eaadDate,eaadHours,eaadAllowanceID,eaadDeductionID from "
                "pEmpAttendanceAllowanceDeductions where eaadAttendanceID=%1 order by eaadDetailID")
                .arg(nextId)),
        (QStringList{"1|2026-11-02|" + hoursOf(70) + "|11|NULL", "2|2026-11-06|0.5|NULL|21"}));
    // The header's counts are the boxes' counts of those days.
    double present = 0, leave = 0, absent = 0;
    for (const QString& d : dayRows) {
        const QString type = d.section('|', 1, 1);
        if (type == "P" || type == "H") present += 1;
        if (type == "L") leave += 1;
        if (type == "A") absent += 1;
        if (type == "HA") present += 0.5, absent += 0.5;
        if (type == "HL") present += 0.5, leave += 0.5;
        if (type == "AL") leave += 0.5, absent += 0.5;
    }
    EXPECT_EQ(
        table(t, QStringLiteral("select eaPresent,eaLeaves,eaAbsent,eaStartDate,eaEndDate from "
                                "pEmployeeAttendence where eaID=%1")
                     .arg(nextId)),
        QStringList{
            QStringLiteral("%1|%2|%3|2026-11-01|2026-11-14").arg(present).arg(leave).arg(absent)});
}

}  // namespace

// ---------------------------------------------------------------------------------------
// No two live entries of one employee share a day

namespace {

// A week of present days from `start`, each with one pair, keyed for the employee.
qz2test::Scenario weekFrom(qint32 employee, QDate start, int days = 7) {
    qz2test::Scenario s;
    s.employee = employee;
    s.start = start;
    for (int i = 0; i < days; ++i)
        s.days << qz2test::ScenarioDay{QStringLiteral("P"), {{"09:00", "17:00"}}, QString(),
                                       QString()};
    return s;
}

}  // namespace

class EntryOverlap : public EntrySave {
protected:
    // Saves a week from `start` as a new entry; whether it saved.
    bool saveWeek(QDate start, int days = 7) {
        gstrEntryMode = QStringLiteral("N");
        frmEmployeeDailyAttendance& f = scenarioForm(weekFrom(employee, start, days));
        f.cmdOK_Click();
        return f.saved();
    }
    qint32 lastId() const { return t.scalar("select max(eaID) from pEmployeeAttendence").toInt(); }
    QString numberOf(qint32 id) const {
        return t.scalar(QStringLiteral("select eaNo from pEmployeeAttendence where eaID=%1").arg(id))
            .toString();
    }
    // A new week from `start` is refused, naming the entry it meets; nothing is written.
    void expectOverlapRefused(QDate start, int days, const QString& message) {
        gstrEntryMode = QStringLiteral("N");
        frmEmployeeDailyAttendance& f = scenarioForm(weekFrom(employee, start, days));
        const QString before = t.dump();
        f.cmdOK_Click();
        expectRefused(message, MsgIcon::Information, before);
    }
};

TEST_F(EntryOverlap, TouchingPeriodsSaveOneSharedDayIsRefusedWithTheEntrysNumberAndPeriod) {
    ASSERT_TRUE(saveWeek(QDate(2026, 11, 9))) << lastMessage().toStdString();  // 9-15 November
    const qint32 week = lastId();
    const QString message = QStringLiteral(
                                "The period overlaps attendance entry %1 of this employee "
                                "(09/11/2026 to 15/11/2026), which is not cancelled. Nothing was "
                                "saved: correct the period, or edit or cancel that entry first.")
                                .arg(numberOf(week));
    // One shared day at the end, at the start, or inside: refused.
    expectOverlapRefused(QDate(2026, 11, 15), 7, message);
    expectOverlapRefused(QDate(2026, 11, 3), 7, message);
    expectOverlapRefused(QDate(2026, 11, 12), 1, message);
    // The day after and the day before: saved.
    EXPECT_TRUE(saveWeek(QDate(2026, 11, 16))) << lastMessage().toStdString();
    EXPECT_TRUE(saveWeek(QDate(2026, 11, 2))) << lastMessage().toStdString();
}

TEST_F(EntryOverlap, ACancelledEntryNeverBlocks) {
    ASSERT_TRUE(saveWeek(QDate(2026, 11, 9)));
    t.exec(QStringLiteral("update pEmployeeAttendence set eaCancelled=1 where eaID=%1").arg(lastId()));
    EXPECT_TRUE(saveWeek(QDate(2026, 11, 9))) << lastMessage().toStdString();
}

TEST_F(EntryOverlap, AnEditNeverBlocksItselfButMeetsTheOthers) {
    ASSERT_TRUE(saveWeek(QDate(2026, 11, 9)));
    const qint32 first = lastId();
    ASSERT_TRUE(saveWeek(QDate(2026, 11, 16)));
    const qint32 second = lastId();

    // The first week saved again over itself.
    gstrEntryMode = QStringLiteral("E");
    frmEmployeeDailyAttendance& same = scenarioForm(weekFrom(employee, QDate(2026, 11, 9)));
    qz2test::openedAs(same, first);
    same.txtAttNo->setText(numberOf(first));
    same.txtAttdate->setText(QStringLiteral("21/11/2026"));
    same.cmdOK_Click();
    EXPECT_TRUE(same.saved()) << lastMessage().toStdString();
    const qint32 resaved = lastId();

    // The second week stretched back into the first: refused, and the second stays.
    gstrEntryMode = QStringLiteral("E");
    frmEmployeeDailyAttendance& longer = scenarioForm(weekFrom(employee, QDate(2026, 11, 14), 9));
    qz2test::openedAs(longer, second);
    longer.txtAttNo->setText(numberOf(second));
    longer.txtAttdate->setText(QStringLiteral("21/11/2026"));
    const QString before = t.dump();
    longer.cmdOK_Click();
    expectRefused(QStringLiteral("The period overlaps attendance entry %1 of this employee "
                                 "(09/11/2026 to 15/11/2026), which is not cancelled. Nothing was "
                                 "saved: correct the period, or edit or cancel that entry first.")
                      .arg(numberOf(resaved)),
                  MsgIcon::Information, before);
}

// ---------------------------------------------------------------------------------------
// Numbers and texts

TEST_F(EntrySave, ASequenceThatHasRunOutIsRefusedNotDuplicated) {
    t.exec("update pEmployeeAttendence set eaNo='ATT2147483647' where eaID=(select min(eaID) "
           "from pEmployeeAttendence)");
    frmEmployeeDailyAttendance& f = scenarioForm(qz2test::demoScenario(employee, kStart));
    const QString before = t.dump();
    f.cmdOK_Click();
    expectRefused(QStringLiteral("No attendance number is left after ATT2147483647: the next one "
                                 "would not fit. Nothing was saved; ask for a new prefix to be "
                                 "set for this screen."),
                  MsgIcon::Information, before);
}

TEST_F(EntrySave, RemarksWithControlCharactersAreStoredWholeWithoutThem) {
    frmEmployeeDailyAttendance& f = scenarioForm(qz2test::demoScenario(employee, kStart));
    f.txtRemarks->setText(QStringLiteral("Night") + QChar(0) + QStringLiteral("shift\tconfirmed's"));
    f.cmdOK_Click();
    ASSERT_TRUE(f.saved()) << lastMessage().toStdString();
    EXPECT_EQ(t.scalar(QStringLiteral("select eaRemarks from pEmployeeAttendence where eaID=%1")
                           .arg(nextId))
                  .toString(),
              QStringLiteral("Night shift confirmed's"));
    // The box holds no more than the column does.
    EXPECT_EQ(f.txtRemarks->maxLength(), 500);
}
