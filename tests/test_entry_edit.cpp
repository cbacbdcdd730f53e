// Opening a stored entry for edit: the header into the boxes, the pairs into the mirror
// grid, one day row per stored day, the claims back into their days; view-only openings
// (cancelled, covered by a monthly entry); saving the edit (re-keyed rows, the number
// kept, the register row rewritten); and that loading and saving again loses nothing.

#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QGroupBox>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QTest>
#include <QTimer>
#include <memory>
#include <ostream>

#include "SaveScenario.h"
#include "TestSupport.h"
#include "db/Database.h"
#include "entry/EntryLauncher.h"
#include "entry/SaveSql.h"
#include "entry/frmEmployeeDailyAttendance.h"
#include "register/FrmMaster.h"
#include "register/RegisterSql.h"
#include "rules/HalfDay.h"
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

QStringList gridRows(const FlexGrid* grid, int firstCol, int lastCol) {
    QStringList out;
    for (int r = 1; r < grid->Rows(); ++r) {
        QStringList cells;
        for (int c = firstCol; c <= lastCol; ++c) cells << grid->TextMatrix(r, c);
        out << cells.join(QLatin1Char('|'));
    }
    return out;
}

class EntryEdit : public ::testing::Test {
protected:
    void SetUp() override {
        msgbox_testing::clear();
        msgbox_testing::setAutoAnswer(true);
        gstrEntryMode = QStringLiteral("N");
        employee = qz2test::freeEmployee(t.db);
        ASSERT_NE(employee, 0);
        registerRows.setCols(5);
        setRegisterGrid(&registerRows);
        // The register's list query, as its start-up builds it (every entry of the company).
        gstrMasterQuery = sql::masterQuery(db::Dialect::of(gadocon), gintCompanyID, 0, gdtProcessDate);
    }
    void TearDown() override {
        form.reset();
        db::setFaultHook({});
        setRegisterGrid(nullptr);
        msgbox_testing::setAutoAnswer(false);
        msgbox_testing::clear();
    }

    // Saves the keyed scenario as a new entry and returns its eaID.
    qint32 saveScenario(const qz2test::Scenario& s) {
        gstrEntryMode = QStringLiteral("N");
        frmEmployeeDailyAttendance f;
        f.Form_Load();
        qz2test::fillForm(f, s);
        keyedDays = gridRows(f.mfgAttendance, 1, 4);
        f.cmdOK_Click();
        EXPECT_TRUE(f.saved());
        return t.scalar("select max(eaID) from pEmployeeAttendence").toInt();
    }
    // The register's current row names the entry, as when the clerk presses Edit.
    void pointRegisterAt(qint32 id, bool cancelled = false) {
        registerRows.setRows(2);
        registerRows.setTextMatrix(1, 0, QString::number(id));
        registerRows.setTextMatrix(1, 4, cancelled ? QStringLiteral("Yes") : QStringLiteral("No"));
        registerRows.setCurrentCell(1, 0);
    }
    frmEmployeeDailyAttendance& load(qint32 id, bool cancelled = false, bool* ok = nullptr) {
        pointRegisterAt(id, cancelled);
        gstrEntryMode = QStringLiteral("E");
        form = std::make_unique<frmEmployeeDailyAttendance>();
        form->Form_Load();
        msgbox_testing::clear();
        const bool loaded = form->fnLoadEntry(QString::number(id), cancelled);
        if (ok)
            *ok = loaded;
        else
            EXPECT_TRUE(loaded);
        return *form;
    }
    QStringList entryRows(qint32 id, bool withId) const {
        const QString key = withId ? QStringLiteral("eaID,") : QString();
        QStringList rows = table(
            t,
            QStringLiteral("select %1eaCompanyID,eaNo,eaDate,eaEmpID,eaPresent,eaLeaves,eaAbsent,"
                           "eaCancelled,eaStartDate,eaEndDate,eacwtsid,eaRemarks,eaPerHourRate "
                           "from pEmployeeAttendence where eaCompanyID=1 and eaID=%2")
                .arg(key)
                .arg(id));
        rows += table(
            t, QStringLiteral("select eadDetailID,eadDate,eadType,eadCheckIN,eadCheckOut from "
                              "pEmpAttendanceDetail where eadCompanyID=1 and eadAttendanceID=%1 "
                              "order by eadDetailID")
                   .arg(id));
        rows += table(
            t, QStringLiteral(
                   "select eaadDetailID,eaadDate,eaadHours,eaadAllowanceID,eaadDeductionID from "
                   "pEmpAttendanceAllowanceDeductions where eaadCompanyID=1 and "
                   "eaadAttendanceID=%1 order by eaadDetailID")
                   .arg(id));
        return rows;
    }
    QString lastMessage() const {
        const auto& shown = msgbox_testing::shown();
        return shown.isEmpty() ? QString() : shown.last().text;
    }

    TestDb t{true};
    FlexGrid registerRows;
    std::unique_ptr<frmEmployeeDailyAttendance> form;
    qint32 employee = 0;
    QStringList keyedDays;
};

// ---------------------------------------------------------------------------------------
// Loading

TEST_F(EntryEdit, TheHeaderFillsTheBoxes) {
    const qint32 id = saveScenario(qz2test::demoScenario(employee, kStart));
    const QString number =
        t.scalar(QStringLiteral("select eaNo from pEmployeeAttendence where eaID=%1").arg(id))
            .toString();
    frmEmployeeDailyAttendance& f = load(id);
    EXPECT_EQ(gstrEntryMode, QStringLiteral("E"));
    EXPECT_EQ(f.lngAttendanceID, id);
    EXPECT_EQ(f.cboEmpname->currentData().toInt(), employee);
    EXPECT_EQ(f.lngEmployeeID, employee);
    EXPECT_EQ(f.txtStartDate->text(), QStringLiteral("02/11/2026"));
    EXPECT_EQ(f.dtpEndDate->date(), QDate(2026, 11, 9));
    EXPECT_EQ(f.txtAttNo->text(), number);
    EXPECT_EQ(f.txtAttdate->text(), QStringLiteral("21/11/2026"));
    EXPECT_EQ(f.txtNoPresent->text(), QStringLiteral("5.5"));
    EXPECT_EQ(f.txtNoLeave->text(), QStringLiteral("1"));
    EXPECT_EQ(f.txtNoAbsent->text(), QStringLiteral("1.5"));
    // Both ends count.
    EXPECT_EQ(f.txtTotalDays->text(), QStringLiteral("8"));
    EXPECT_EQ(f.txtRemarks->text(), QStringLiteral("Keyed from the punch cards"));
    EXPECT_EQ(f.lngWorkTimeSettingID, 1);
    QStringList listed;
    for (int i = 0; i < f.lstAbsentDays->count(); ++i) listed << f.lstAbsentDays->item(i)->text();
    EXPECT_EQ(listed, (QStringList{"2026/11/02", "2026/11/03", "2026/11/04", "2026/11/05",
                                   "2026/11/06", "2026/11/07", "2026/11/08", "2026/11/09"}));
    EXPECT_TRUE(f.cmdOK->isEnabled());
    EXPECT_TRUE(f.fraEmployeeAttendance->isEnabled());
    EXPECT_TRUE(f.fraGridContainer->isEnabled());
    EXPECT_TRUE(msgbox_testing::shown().isEmpty()) << lastMessage().toStdString();
}

TEST_F(EntryEdit, TheStoredSettingBecomesTheEntrysSetting) {
    const qint32 id = saveScenario(qz2test::demoScenario(employee, kStart));
    t.exec(QStringLiteral("update pEmployeeAttendence set eacwtsid=7 where eaID=%1").arg(id));
    EXPECT_EQ(load(id).lngWorkTimeSettingID, 7);
}

TEST_F(EntryEdit, ANullStoredSettingKeepsTheOneTheEmployeeChoiceFound) {
    const qint32 id = saveScenario(qz2test::demoScenario(employee, kStart));
    t.exec(QStringLiteral("update pEmployeeAttendence set eacwtsid=NULL where eaID=%1").arg(id));
    EXPECT_EQ(load(id).lngWorkTimeSettingID, 1);
}

TEST_F(EntryEdit, PairsDaysAndClaimsAreRebuilt) {
    const qint32 id = saveScenario(qz2test::demoScenario(employee, kStart));
    frmEmployeeDailyAttendance& f = load(id);
    // The stored line numbers are renumbered per day.
    EXPECT_EQ(gridRows(f.mfgMirrorGrid, 0, 3),
              (QStringList{"02/11/2026|1|09:00|13:00", "02/11/2026|2|14:00|18:30",
                           "03/11/2026|1|08:30|12:00", "03/11/2026|2|12:30|15:00",
                           "03/11/2026|3|15:30|19:15", "05/11/2026|1|09:00|13:00",
                           "07/11/2026|1|10:00|12:00", "09/11/2026|1|09:20|17:00"}));
    // Date, type, worked and scheduled hours as they were keyed.
    EXPECT_EQ(gridRows(f.mfgAttendance, 1, 4), keyedDays);
    EXPECT_EQ(gridRows(f.mfgAttendance, 1, 2),
              (QStringList{"02/11/2026|P", "03/11/2026|P", "04/11/2026|A", "05/11/2026|HA",
                           "06/11/2026|H", "07/11/2026|H", "08/11/2026|L", "09/11/2026|P"}));
    // The demo week: eight hours Monday to Thursday; the holidays (Friday and Saturday) are
    // scheduled at zero, as Populate gives them.
    EXPECT_EQ(gridRows(f.mfgAttendance, 4, 4), (QStringList{"08:00", "08:00", "08:00", "08:00",
                                                            "00:00", "00:00", "00:00", "08:00"}));
    // Only claimed amounts were stored, and come back with their kind.
    EXPECT_EQ(gridRows(f.mfgAttendance, 5, 6),
              (QStringList{"|", "02:45|A", "|", "|", "|", "|", "|", "00:40|D"}));
}

TEST_F(EntryEdit, ADayWithSeveralPairsIsOneDayRowAndSeveralMirrorRows) {
    const qint32 id = saveScenario(qz2test::demoScenario(employee, kStart));
    frmEmployeeDailyAttendance& f = load(id);
    EXPECT_EQ(gridRows(f.mfgAttendance, 1, 1).filter(QStringLiteral("03/11/2026")).size(), 1);
    EXPECT_EQ(gridRows(f.mfgMirrorGrid, 0, 0).filter(QStringLiteral("03/11/2026")).size(), 3);
}

TEST_F(EntryEdit, AnEntryWithoutDetailRowsOpensWithEveryDayPresentAndItsStoredCounts) {
    t.exec(QStringLiteral(
               "insert into "
               "pEmployeeAttendence(eaCompanyID,eaID,eaNo,eaDate,eaEmpID,eaPresent,eaLeaves,"
               "eaAbsent,eaCancelled,eaStartDate,eaEndDate,eacwtsid) "
               "values(1,5000,'OLD1','2026-11-20',%1,"
               "20.5,2,3,0,'2026-11-01','2026-11-30',1)")
               .arg(employee));
    frmEmployeeDailyAttendance& f = load(5000);
    // Every day of the stored period is laid out; without a stored line a day is present.
    ASSERT_EQ(f.mfgAttendance->Rows(), 31);
    EXPECT_EQ(f.mfgAttendance->TextMatrix(1, 1), QStringLiteral("01/11/2026"));
    EXPECT_EQ(f.mfgAttendance->TextMatrix(30, 1), QStringLiteral("30/11/2026"));
    EXPECT_EQ(gridRows(f.mfgAttendance, 2, 2), QStringList(30, QStringLiteral("P")));
    EXPECT_EQ(f.mfgMirrorGrid->Rows(), 1);
    EXPECT_EQ(f.txtNoPresent->text(), QStringLiteral("20.5"));
    EXPECT_EQ(f.txtNoLeave->text(), QStringLiteral("2"));
    EXPECT_EQ(f.txtNoAbsent->text(), QStringLiteral("3"));
    EXPECT_EQ(f.txtTotalDays->text(), QStringLiteral("30"));
    EXPECT_EQ(f.txtRemarks->text(), QString());
}

TEST_F(EntryEdit, ACancelledEntryOpensWithSavingUnavailable) {
    const qint32 id = saveScenario(qz2test::demoScenario(employee, kStart));
    frmEmployeeDailyAttendance& f = load(id, true);
    EXPECT_FALSE(f.cmdOK->isEnabled());
    EXPECT_TRUE(f.fraEmployeeAttendance->isEnabled());
    EXPECT_TRUE(f.fraGridContainer->isEnabled());
    EXPECT_EQ(f.mfgMirrorGrid->Rows(), 9);
    EXPECT_TRUE(msgbox_testing::shown().isEmpty());
}

TEST_F(EntryEdit, AnEntryAMonthlyEntryCoversSaysSoAndOpensForViewingOnly) {
    const qint32 id = saveScenario(qz2test::demoScenario(employee, kStart));
    t.exec(QStringLiteral(
               "insert into pEmpMonthlyEntryHeader values(1,901,%1,'2026-11-05','2026-12-04',0)")
               .arg(employee));
    frmEmployeeDailyAttendance& f = load(id);
    ASSERT_EQ(msgbox_testing::shown().size(), 1);
    EXPECT_EQ(msgbox_testing::shown().first().text,
              QStringLiteral("Monthly entry done. Can't edit."));
    EXPECT_EQ(msgbox_testing::shown().first().icon, MsgIcon::Information);
    EXPECT_FALSE(f.cmdOK->isEnabled());
    EXPECT_FALSE(f.fraEmployeeAttendance->isEnabled());
    EXPECT_FALSE(f.fraGridContainer->isEnabled());
    // Loading went on: the entry is there to be looked at.
    EXPECT_EQ(f.mfgMirrorGrid->Rows(), 9);
    EXPECT_EQ(f.mfgAttendance->Rows(), 9);
    EXPECT_EQ(f.txtStartDate->text(), QStringLiteral("02/11/2026"));
}

TEST_F(EntryEdit, AMonthlyEntryCoveringThePeriodFromBeforeToAfterLocksNothing) {
    // Only a monthly entry's start and end are tested against the period.
    const qint32 id = saveScenario(qz2test::demoScenario(employee, kStart));
    t.exec(QStringLiteral(
               "insert into pEmpMonthlyEntryHeader values(1,903,%1,'2026-11-01','2026-11-30',0)")
               .arg(employee));
    frmEmployeeDailyAttendance& f = load(id);
    EXPECT_TRUE(msgbox_testing::shown().isEmpty()) << lastMessage().toStdString();
    EXPECT_TRUE(f.cmdOK->isEnabled());
    EXPECT_TRUE(f.fraGridContainer->isEnabled());
}

TEST_F(EntryEdit, AMonthlyEntryOfAnotherEmployeeLocksNothing) {
    const qint32 id = saveScenario(qz2test::demoScenario(employee, kStart));
    t.exec(QStringLiteral(
               "insert into pEmpMonthlyEntryHeader values(1,902,%1,'2026-11-01','2026-11-30',0)")
               .arg(employee + 1));
    frmEmployeeDailyAttendance& f = load(id);
    EXPECT_TRUE(msgbox_testing::shown().isEmpty());
    EXPECT_TRUE(f.cmdOK->isEnabled());
}

TEST_F(EntryEdit, LoadingRunsTheFourEntryStatementsInOrder) {
    const qint32 id = saveScenario(qz2test::demoScenario(employee, kStart));
    QStringList ran;
    db::setFaultHook([&ran](const QString& sql) {
        ran << sql;
        return QString();
    });
    load(id);
    db::setFaultHook({});
    const QString k = QString::number(id);
    const QStringList mine = {
        QStringLiteral("select * from pEmployeeAttendence where eacompanyid=1 and eaid=") + k,
        QStringLiteral("Select eadDetailID,eadDate,eadType,eadCheckIn,eadCheckOut from "
                       "pEmpAttendanceDetail where "
                       "eadCompanyID= 1 And eadAttendanceID= ") +
            k,
        QStringLiteral(
            " Select Distinct eadDate,eadType from pEmpAttendanceDetail where  eadAttendanceID= ") +
            k + QStringLiteral(" And eadCompanyID= 1 Order by eadDate"),
        QStringLiteral(" Select eaadDate,eaadHours,eaadAllowanceID,eaadDeductionID from "
                       "pEmpAttendanceAllowanceDeductions where  eaadAttendanceID= ") +
            k + QStringLiteral(" And  eaadCompanyID= 1")};
    int at = -1;
    for (const QString& sql : mine) {
        const int next = static_cast<int>(ran.indexOf(sql, at + 1));
        EXPECT_GT(next, at) << sql.toStdString();
        at = std::max(at, next);
    }
    // The lock is asked right after the header is read.
    const int header = static_cast<int>(ran.indexOf(mine.first()));
    ASSERT_GE(header, 0);
    EXPECT_TRUE(ran.value(header + 1)
                    .startsWith(QLatin1String("Select count(1) from pEmpMonthlyEntryHeader")))
        << ran.value(header + 1).toStdString();
}

TEST_F(EntryEdit, AFailingStatementEndsLoadingWithItsMessageAndTheFormIsNotShown) {
    const qint32 id = saveScenario(qz2test::demoScenario(employee, kStart));
    pointRegisterAt(id);
    db::setFaultHook([](const QString& sql) {
        return sql.startsWith(QLatin1String(" Select Distinct")) ? QStringLiteral("injected")
                                                                 : QString();
    });
    bool ok = true;
    load(id, false, &ok);
    EXPECT_FALSE(ok);
    // The clerk is told why, once, in the database's words.
    ASSERT_EQ(msgbox_testing::shown().size(), 1);
    EXPECT_EQ(msgbox_testing::shown().first().text, QStringLiteral("injected"));

    // Through the launcher: the message, and no form at all.
    QStringList appeared;
    QTimer watch;
    watch.setInterval(5);
    QObject::connect(&watch, &QTimer::timeout, [&appeared] {
        if (QWidget* w = QApplication::activeModalWidget()) {
            appeared << w->objectName();
            w->close();
        }
    });
    watch.start();
    msgbox_testing::clear();
    entry::openEntryForEdit(nullptr, QString::number(id), false);
    QTest::qWait(50);
    watch.stop();
    db::setFaultHook({});
    appeared.removeAll(QStringLiteral("MsgBox"));
    EXPECT_TRUE(appeared.isEmpty()) << appeared.join(',').toStdString();
    ASSERT_EQ(msgbox_testing::shown().size(), 1);
    EXPECT_EQ(msgbox_testing::shown().first().text, QStringLiteral("injected"));
}

// ---------------------------------------------------------------------------------------
// Saving an edit

TEST_F(EntryEdit, AnEditDeletesTheOldRowsToTheLetterBeforeNumbering) {
    const qint32 id = saveScenario(qz2test::demoScenario(employee, kStart));
    frmEmployeeDailyAttendance& f = load(id);
    QStringList ran;
    db::setFaultHook([&ran](const QString& sql) {
        ran << sql;
        return QString();
    });
    f.cmdOK_Click();
    db::setFaultHook({});
    ASSERT_TRUE(f.saved()) << lastMessage().toStdString();
    const QString k = QString::number(id);
    const int first = static_cast<int>(
        ran.indexOf(QStringLiteral(" Delete from pEmpAttendanceAllowanceDeductions where  "
                                   "eaadCompanyID= 1 And  eaadAttendanceID= ") +
                    k));
    ASSERT_GE(first, 0);
    EXPECT_EQ(
        ran.value(first + 1),
        QStringLiteral(
            " Delete from pEmpAttendanceDetail where  eadCompanyID= 1 And  eadAttendanceID= ") +
            k);
    EXPECT_EQ(
        ran.value(first + 2),
        QStringLiteral(" Delete from pEmployeeAttendence where  eaCompanyID= 1 And  eaID= ") + k);
    // The number is kept: no prefix or number query, the identifier after the deletes.
    EXPECT_EQ(ran.value(first + 3), QStringLiteral("select max(eaID) from pEmployeeAttendence"));
    EXPECT_TRUE(ran.filter(QStringLiteral("SELECT Prefix")).isEmpty());
    // Before them, the lock wait and the monthly-entry overlap of the period.
    EXPECT_EQ(ran.value(0), QStringLiteral("PRAGMA busy_timeout"));
    EXPECT_TRUE(ran.value(1).startsWith(QLatin1String("select count(*) from ")))
        << ran.value(1).toStdString();
}

TEST_F(EntryEdit, AnEditOfAnEntryThatIsNotTheHighestIsRekeyedAndKeepsItsNumber) {
    const qint32 oldest =
        t.scalar(QStringLiteral("select min(eaID) from pEmployeeAttendence where eaCompanyID=1 and "
                                "eaCancelled=0 and eaEmpID=%1")
                     .arg(employee))
            .toInt();
    const qint32 highest = t.scalar("select max(eaID) from pEmployeeAttendence").toInt();
    ASSERT_LT(oldest, highest);
    const QStringList before = entryRows(oldest, false);
    frmEmployeeDailyAttendance& f = load(oldest);
    f.txtAttNo->setText(QStringLiteral("  ") + f.txtAttNo->text() +
                        QStringLiteral(" "));  // trimmed when saved
    QStringList ran;
    db::setFaultHook([&ran](const QString& sql) {
        ran << sql;
        return QString();
    });
    f.cmdOK_Click();
    db::setFaultHook({});
    ASSERT_TRUE(f.saved()) << lastMessage().toStdString();
    EXPECT_EQ(
        t.scalar(
             QStringLiteral("select count(*) from pEmployeeAttendence where eaID=%1").arg(oldest))
            .toInt(),
        0);
    EXPECT_EQ(t.scalar(QStringLiteral(
                           "select count(*) from pEmpAttendanceDetail where eadAttendanceID=%1 and "
                           "eadCompanyID=1")
                           .arg(oldest))
                  .toInt(),
              0);
    // Everything else as it was, under the new identifier (the number too).
    EXPECT_EQ(entryRows(highest + 1, false), before);
    // The register row it came from is refreshed by the identifier it was listed under;
    // that identifier is gone, so the row is then rewritten from the new one.
    ASSERT_GE(ran.size(), 2);
    EXPECT_EQ(ran.value(ran.size() - 2),
              sql::refreshQuery(gstrMasterQuery,
                                QStringLiteral("eaID=%1 and eacompanyid=1").arg(oldest)));
    EXPECT_EQ(ran.last(),
              sql::refreshQuery(gstrMasterQuery,
                                QStringLiteral("eaID=%1 and eacompanyid=1").arg(highest + 1)));
    FlexGrid* grid = registerGrid();
    ASSERT_NE(grid, nullptr);
    ASSERT_GT(grid->Row(), 0);
    EXPECT_EQ(grid->TextMatrix(grid->Row(), 0), QString::number(highest + 1));
}

TEST_F(EntryEdit, EveryStoredEntryLoadedAndSavedUnchangedLosesNothing) {
    // The demo's entries were written as the form writes them; loading one and pressing OK
    // must give back the same rows under a new identifier. Entries a monthly entry covers
    // refuse, and stay as they were.
    const QList<QVariantList> ids = t.rows(
        "select eaID from pEmployeeAttendence where eaCompanyID=1 and eaCancelled=0 "
        "order by eaID");
    ASSERT_GT(ids.size(), 20);
    int saved = 0;
    int refused = 0;
    for (const QVariantList& row : ids) {
        const qint32 id = row.first().toInt();
        SCOPED_TRACE(id);
        const QStringList before = entryRows(id, false);
        const qint32 next = t.scalar("select max(eaID)+1 from pEmployeeAttendence").toInt();
        frmEmployeeDailyAttendance& f = load(id);
        const bool locked = !f.cmdOK->isEnabled();
        msgbox_testing::clear();
        f.cmdOK_Click();
        if (locked) {
            EXPECT_FALSE(f.saved());
            EXPECT_EQ(lastMessage(), QStringLiteral("Monthly entry done. Canot Modify."));
            EXPECT_EQ(entryRows(id, false), before);
            ++refused;
            continue;
        }
        ASSERT_TRUE(f.saved()) << lastMessage().toStdString();
        EXPECT_EQ(entryRows(next, false), before);
        ++saved;
    }
    EXPECT_GT(saved, 20);
    EXPECT_GT(refused, 0);
}

// ---------------------------------------------------------------------------------------
// Through the register

class EntryEditThroughRegister : public EntryEdit {
protected:
    void SetUp() override {
        EntryEdit::SetUp();
        setRegisterGrid(nullptr);
        t.exec("update pSettings set noofPreviousdays=0 where companyid=1");  // list every entry
        reg = std::make_unique<FrmMaster>();
        reg->Form_Load();
        reg->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(reg.get()));
    }
    void TearDown() override {
        reg.reset();
        EntryEdit::TearDown();
    }
    int rowOf(qint32 id) const {
        for (int r = 1; r < reg->flexMaster->Rows(); ++r)
            if (reg->flexMaster->TextMatrix(r, 0) == QString::number(id)) return r;
        return 0;
    }
    QStringList registerRow(int row) const {
        QStringList cells;
        for (int c = 0; c < reg->flexMaster->Cols(); ++c)
            cells << reg->flexMaster->TextMatrix(row, c);
        return cells;
    }
    // What the entry form showed when Edit opened it; the form is then closed.
    struct Seen {
        bool shown = false;
        bool okEnabled = false;
        bool headEnabled = false;
        bool gridsEnabled = false;
        QString number;
        int mirrorRows = 0;
    };
    Seen editAndLook(int row) {
        Seen seen;
        reg->flexMaster->setCurrentCell(row, 1);
        qz2test::whenModal([&seen](QWidget* w) {
            auto* f = qobject_cast<frmEmployeeDailyAttendance*>(w);
            if (!f) {
                w->close();
                return;
            }
            seen.shown = true;
            seen.okEnabled = f->cmdOK->isEnabled();
            seen.headEnabled = f->fraEmployeeAttendance->isEnabled();
            seen.gridsEnabled = f->fraGridContainer->isEnabled();
            seen.number = f->txtAttNo->text();
            seen.mirrorRows = f->mfgMirrorGrid->Rows() - 1;
            f->reject();
        });
        reg->CmdEdit->click();
        return seen;
    }
    std::unique_ptr<FrmMaster> reg;
};

TEST_F(EntryEditThroughRegister, ANewEntryEditedWithOkIsRewrittenUnderItsNumber) {
    bool saved = false;
    qz2test::whenModal([&](QWidget* w) {
        auto* f = qobject_cast<frmEmployeeDailyAttendance*>(w);
        if (!f) {
            w->close();
            return;
        }
        qz2test::fillForm(*f, qz2test::demoScenario(employee, kStart));
        QTest::mouseClick(f->cmdOK, Qt::LeftButton);
        saved = f->saved();
        if (!saved) f->reject();
    });
    reg->cmdnew->click();
    ASSERT_TRUE(saved) << lastMessage().toStdString();
    const qint32 id = t.scalar("select max(eaID) from pEmployeeAttendence").toInt();
    const QString number =
        t.scalar(QStringLiteral("select eaNo from pEmployeeAttendence where eaID=%1").arg(id))
            .toString();
    const int row = reg->flexMaster->Row();
    ASSERT_EQ(reg->flexMaster->TextMatrix(row, 0), QString::number(id));
    const int rows = reg->flexMaster->Rows();

    // Edit: a check-out corrected, the half day made absent, the allowance withdrawn, and
    // the entry's date moved on a day.
    bool edited = false;
    int loadedPairs = 0;
    qz2test::whenModal([&](QWidget* w) {
        auto* f = qobject_cast<frmEmployeeDailyAttendance*>(w);
        if (!f) {
            w->close();
            return;
        }
        loadedPairs = f->mfgMirrorGrid->Rows() - 1;
        qz2test::applyStandardEdit(*f, kStart);
        f->txtAttdate->setText(QStringLiteral("22/11/2026"));
        QTest::mouseClick(f->cmdOK, Qt::LeftButton);
        edited = f->saved();
        if (!edited) f->reject();
    });
    reg->CmdEdit->click();
    ASSERT_TRUE(edited) << lastMessage().toStdString();
    EXPECT_EQ(loadedPairs, 8);

    // The highest identifier is re-used after its own deletion; the number is kept.
    const QString k = QString::number(id);
    EXPECT_EQ(
        table(
            t,
            QStringLiteral(
                "select eaID,eaNo,eaDate,eaPresent,eaLeaves,eaAbsent,eaStartDate,eaEndDate,"
                "eaRemarks from pEmployeeAttendence where eaEmpID=%1 and eaStartDate='2026-11-02'")
                .arg(employee)),
        QStringList{k + "|" + number +
                    "|2026-11-22|5|1|2|2026-11-02|2026-11-09|Keyed from the punch cards"});
    EXPECT_EQ(table(t, QStringLiteral(
                           "select eadDetailID,eadDate,eadType,eadCheckIN,eadCheckOut from "
                           "pEmpAttendanceDetail where eadAttendanceID=%1 order by eadDetailID")
                           .arg(id)),
              (QStringList{"1|2026-11-02|P|09:00:00|12:45:00", "2|2026-11-02|P|14:00:00|18:30:00",
                           "3|2026-11-03|P|08:30:00|12:00:00", "4|2026-11-03|P|12:30:00|15:00:00",
                           "5|2026-11-03|P|15:30:00|19:15:00", "6|2026-11-07|H|10:00:00|12:00:00",
                           "7|2026-11-09|P|09:20:00|17:00:00", "8|2026-11-04|A|NULL|NULL",
                           "9|2026-11-05|A|NULL|NULL", "10|2026-11-06|H|NULL|NULL",
                           "11|2026-11-08|L|NULL|NULL"}));
    EXPECT_EQ(
        table(t, QStringLiteral(
                     "select eaadDetailID,eaadDate,eaadHours,eaadAllowanceID,eaadDeductionID from "
                     "pEmpAttendanceAllowanceDeductions where eaadAttendanceID=%1")
                     .arg(id)),
        QStringList{"1|2026-11-09|" + QString::number(40.0 / 60.0, 'g', 17) + "|NULL|21"});
    // The register row was rewritten in place; no row was added.
    EXPECT_EQ(reg->flexMaster->Rows(), rows);
    const QString name =
        t.scalar(QStringLiteral("select eName from pEmployee where eEmpID=%1").arg(employee))
            .toString();
    EXPECT_EQ(registerRow(row),
              (QStringList{k, number, QStringLiteral("22/11/2026"), name, QStringLiteral("No")}));
}

TEST_F(EntryEditThroughRegister, ACancelledEntryOpensForViewingOnly) {
    const qint32 id =
        t.scalar("select min(eaID) from pEmployeeAttendence where eaCompanyID=1 and eaCancelled=1")
            .toInt();
    const int row = rowOf(id);
    ASSERT_GT(row, 0);
    ASSERT_EQ(reg->flexMaster->TextMatrix(row, 4), QStringLiteral("Yes"));
    const QString before = t.dump();
    const Seen seen = editAndLook(row);
    ASSERT_TRUE(seen.shown);
    EXPECT_FALSE(seen.okEnabled);
    EXPECT_TRUE(seen.headEnabled);
    EXPECT_EQ(seen.number, reg->flexMaster->TextMatrix(row, 1));
    EXPECT_GT(seen.mirrorRows, 0);
    EXPECT_EQ(t.dump(), before);
}

TEST_F(EntryEditThroughRegister, AnEntryAMonthlyEntryCoversOpensForViewingOnlyAfterSayingSo) {
    const qint32 id =
        t.scalar(
             "select min(b.eaID) from pEmpMonthlyEntryHeader a, pEmployeeAttendence b where "
             "a.emhCompanyID=b.eaCompanyID and a.emhEmpID=b.eaEmpID and a.emhCancelled=0 and "
             "b.eaCancelled=0 and (a.emhStartDate between b.eaStartDate and b.eaEndDate or "
             "a.emhEndDate between b.eaStartDate and b.eaEndDate) and b.eaCompanyID=1")
            .toInt();
    const int row = rowOf(id);
    ASSERT_GT(row, 0);
    msgbox_testing::clear();
    const Seen seen = editAndLook(row);
    ASSERT_TRUE(seen.shown);
    EXPECT_EQ(lastMessage(), QStringLiteral("Monthly entry done. Can't edit."));
    EXPECT_FALSE(seen.okEnabled);
    EXPECT_FALSE(seen.headEnabled);
    EXPECT_FALSE(seen.gridsEnabled);
    EXPECT_GT(seen.mirrorRows, 0);
}

}  // namespace

// A reopened entry's absent days come back ticked in the absent-day list, so Populate on
// it keeps them absent instead of turning them present.
TEST_F(EntryEdit, StoredAbsentDaysComeBackTickedAndSurvivePopulate) {
    const QList<QVariantList> rows = t.rows(
        "select d.eadAttendanceID, d.eadDate from pEmpAttendanceDetail d join pEmployeeAttendence h "
        "on h.eaCompanyID=d.eadCompanyID and h.eaID=d.eadAttendanceID where d.eadCompanyID=1 and "
        "d.eadType='A' and h.eaCancelled=0 and not exists (select 1 from pEmpMonthlyEntryHeader m "
        "where m.emhEmpID=h.eaEmpID and m.emhCancelled=0) order by d.eadAttendanceID limit 1");
    ASSERT_EQ(rows.size(), 1) << "the demo data holds an absent day";
    const qint32 id = rows[0][0].toInt();
    const QDate absent = QDate::fromString(rows[0][1].toString(), Qt::ISODate);
    frmEmployeeDailyAttendance& f = load(id);
    EXPECT_TRUE(f.fnPickedAbsentDays().contains(absent));
    int row = 0;
    for (int r = 1; r < f.mfgAttendance->Rows(); ++r)
        if (f.mfgAttendance->TextMatrix(r, 1) == dateText(absent)) row = r;
    ASSERT_GT(row, 0);
    ASSERT_EQ(f.mfgAttendance->TextMatrix(row, 2), QStringLiteral("A"));
    f.cmdPopulateRecords_Click();
    EXPECT_EQ(f.mfgAttendance->TextMatrix(row, 2), QStringLiteral("A"));
}

// ---------------------------------------------------------------------------------------
// What was saved comes back whole

namespace {

// An entry's stored content without its keys: the header's values, every detail line's day,
// type and times, every claim's day, hours and heads; lines sorted so that their numbering
// does not count.
QStringList contentOf(const TestDb& t, qint32 id) {
    QStringList rows = qz2test::table(
        t, QStringLiteral("select eaCompanyID,eaNo,eaDate,eaEmpID,eaPresent,eaLeaves,eaAbsent,"
                          "eaCancelled,eaStartDate,eaEndDate,eacwtsid,eaRemarks,eaPerHourRate "
                          "from pEmployeeAttendence where eaCompanyID=1 and eaID=%1")
               .arg(id));
    QStringList details = qz2test::table(
        t, QStringLiteral("select eadDate,eadType,eadCheckIN,eadCheckOut from "
                          "pEmpAttendanceDetail where eadCompanyID=1 and eadAttendanceID=%1")
               .arg(id));
    QStringList claims = qz2test::table(
        t, QStringLiteral("select eaadDate,eaadHours,eaadAllowanceID,eaadDeductionID from "
                          "pEmpAttendanceAllowanceDeductions where eaadCompanyID=1 and "
                          "eaadAttendanceID=%1")
               .arg(id));
    details.sort();
    claims.sort();
    return rows + details + claims;
}

// The distinct days of an entry's detail lines, "yyyy-mm-dd|type".
QStringList storedDaysOf(const TestDb& t, qint32 id) {
    return qz2test::table(
        t, QStringLiteral("select distinct eadDate,eadType from pEmpAttendanceDetail where "
                          "eadCompanyID=1 and eadAttendanceID=%1 order by eadDate")
               .arg(id));
}

}  // namespace

TEST_F(EntryEdit, APopulatedDemoMonthSavedReopenedAndSavedAgainIsUnchanged) {
    // Populate lays out the employee's proposed month from the demo's work-time settings,
    // holidays and leaves (weekly days off included); a half day and a claim are keyed.
    gstrEntryMode = QStringLiteral("N");
    frmEmployeeDailyAttendance f;
    f.Form_Load();
    for (int i = 0; i < f.cboEmpname->count(); ++i)
        if (f.cboEmpname->itemData(i).toInt() == employee) f.cboEmpname->setCurrentIndex(i);
    f.cmdPopulateRecords_Click();
    FlexGridModel& days = *f.mfgAttendance->flexModel();
    ASSERT_GT(days.Rows(), 28);
    const int dayCount = days.Rows() - 1;
    int present = 0;
    for (int r = 1; r < days.Rows(); ++r) {
        if (days.TextMatrix(r, 2) != QLatin1String("P")) continue;
        ++present;
        if (present == 2) rules::fnMarkHalfDay(days, r, rules::kMenuMarkHalfDay);
        if (present == 3)
            rules::fnSetDayAllowanceDeduction(days, QStringLiteral("01:30"), QStringLiteral("A"),
                                              *rules::cellDate(days.TextMatrix(r, 1)), true);
    }
    f.fnCountDayTypes();
    f.cmdOK_Click();
    ASSERT_TRUE(f.saved()) << lastMessage().toStdString();
    const qint32 first = t.scalar("select max(eaID) from pEmployeeAttendence").toInt();
    // Every day of the period is stored, days without pairs too.
    EXPECT_EQ(storedDaysOf(t, first).size(), dayCount);
    const QStringList saved = contentOf(t, first);

    frmEmployeeDailyAttendance& again = load(first);
    EXPECT_EQ(again.mfgAttendance->Rows() - 1, dayCount);
    again.cmdOK_Click();
    ASSERT_TRUE(again.saved()) << lastMessage().toStdString();
    const qint32 second = t.scalar("select max(eaID) from pEmployeeAttendence").toInt();
    EXPECT_EQ(contentOf(t, second), saved);
}

TEST_F(EntryEdit, AMonthWithDaysOffHalfDaysLeavesAndHolidaysRoundTrips) {
    // Two weeks from Monday 2 November, keyed by hand: every kind of day, with and without
    // pairs, claims of both kinds (one on a worked holiday).
    qz2test::Scenario s;
    s.employee = employee;
    s.start = kStart;
    s.remarks = QStringLiteral("Two weeks of everything");
    using qz2test::ScenarioDay;
    s.days = {
        ScenarioDay{"P", {{"09:00", "13:00"}, {"14:00", "18:00"}}, "", ""},
        ScenarioDay{"P", {{"09:00", "13:00"}, {"14:00", "19:30"}}, "01:30", "A"},
        ScenarioDay{"A", {}, "", ""},
        ScenarioDay{"HA", {{"09:00", "13:00"}}, "", ""},
        ScenarioDay{"H", {}, "", ""},
        ScenarioDay{"H", {{"10:00", "12:00"}}, "02:00", "A"},
        ScenarioDay{"P", {}, "", ""},  // Sunday, the weekly day off
        ScenarioDay{"P", {{"09:30", "13:00"}, {"14:00", "18:00"}}, "00:30", "D"},
        ScenarioDay{"HL", {{"09:00", "13:00"}}, "", ""},
        ScenarioDay{"H", {}, "", ""},  // a holiday of the demo's calendar
        ScenarioDay{"L", {}, "", ""},
        ScenarioDay{"AL", {}, "", ""},
        ScenarioDay{"HA", {}, "", ""},
        ScenarioDay{"P", {}, "", ""},  // Sunday
    };
    const qint32 first = saveScenario(s);
    EXPECT_EQ(storedDaysOf(t, first),
              (QStringList{"2026-11-02|P", "2026-11-03|P", "2026-11-04|A", "2026-11-05|HA",
                           "2026-11-06|H", "2026-11-07|H", "2026-11-08|P", "2026-11-09|P",
                           "2026-11-10|HL", "2026-11-11|H", "2026-11-12|L", "2026-11-13|AL",
                           "2026-11-14|HA", "2026-11-15|P"}));
    // A day without pairs is one line without times.
    EXPECT_EQ(qz2test::table(t, QStringLiteral("select eadCheckIN,eadCheckOut from "
                                               "pEmpAttendanceDetail where eadAttendanceID=%1 "
                                               "and eadDate='2026-11-08'")
                                    .arg(first)),
              QStringList{"NULL|NULL"});
    const QStringList saved = contentOf(t, first);

    frmEmployeeDailyAttendance& f = load(first);
    EXPECT_EQ(gridRows(f.mfgAttendance, 1, 2),
              (QStringList{"02/11/2026|P", "03/11/2026|P", "04/11/2026|A", "05/11/2026|HA",
                           "06/11/2026|H", "07/11/2026|H", "08/11/2026|P", "09/11/2026|P",
                           "10/11/2026|HL", "11/11/2026|H", "12/11/2026|L", "13/11/2026|AL",
                           "14/11/2026|HA", "15/11/2026|P"}));
    // A recount (as Populate or a half day makes) keeps every stored day.
    f.cmdPopulateRecords_Click();
    EXPECT_EQ(f.txtNoPresent->text(), QStringLiteral("9.5"));
    EXPECT_EQ(f.txtNoLeave->text(), QStringLiteral("2"));
    EXPECT_EQ(f.txtNoAbsent->text(), QStringLiteral("2.5"));
    f.cmdOK_Click();
    ASSERT_TRUE(f.saved()) << lastMessage().toStdString();
    const qint32 second = t.scalar("select max(eaID) from pEmployeeAttendence").toInt();
    EXPECT_EQ(contentOf(t, second), saved);
}

TEST_F(EntryEdit, AnEntrySavedWithoutLinesForSomeDaysReopensWithThemPresent) {
    // Entries saved before every day was stored have no line for a day off without pairs.
    t.exec(QStringLiteral(
               "insert into pEmployeeAttendence(eaCompanyID,eaID,eaNo,eaDate,eaEmpID,eaPresent,"
               "eaLeaves,eaAbsent,eaCancelled,eaStartDate,eaEndDate,eacwtsid) values(1,5001,"
               "'OLD2','2026-11-20',%1,6,0,1,0,'2026-11-02','2026-11-08',1)")
               .arg(employee));
    t.exec("insert into pEmpAttendanceDetail values(1,5001,1,'2026-11-02','P','09:00:00','17:00:00')");
    t.exec("insert into pEmpAttendanceDetail values(1,5001,2,'2026-11-04','A',NULL,NULL)");
    frmEmployeeDailyAttendance& f = load(5001);
    EXPECT_EQ(gridRows(f.mfgAttendance, 1, 2),
              (QStringList{"02/11/2026|P", "03/11/2026|P", "04/11/2026|A", "05/11/2026|P",
                           "06/11/2026|P", "07/11/2026|P", "08/11/2026|P"}));
    // Populate on the opened entry recounts every day, not only the stored ones.
    f.cmdPopulateRecords_Click();
    EXPECT_EQ(f.txtNoPresent->text(), QStringLiteral("6"));
    EXPECT_EQ(f.txtNoAbsent->text(), QStringLiteral("1"));
    f.cmdOK_Click();
    ASSERT_TRUE(f.saved()) << lastMessage().toStdString();
    const qint32 saved = t.scalar("select max(eaID) from pEmployeeAttendence").toInt();
    EXPECT_EQ(storedDaysOf(t, saved).size(), 7);
}

TEST_F(EntryEdit, AWorkedHolidayReopensScheduledAtZeroAndItsAllowanceStaysAnAllowance) {
    qz2test::Scenario s = qz2test::demoScenario(employee, kStart);
    s.days[5].hours = QStringLiteral("02:00");  // Saturday's holiday, 10:00-12:00 worked
    s.days[5].claim = QStringLiteral("A");
    const qint32 id = saveScenario(s);
    frmEmployeeDailyAttendance& f = load(id);
    EXPECT_EQ(f.mfgAttendance->TextMatrix(6, 4), QStringLiteral("00:00"));
    EXPECT_EQ(f.mfgAttendance->TextMatrix(6, 5), QStringLiteral("02:00"));
    EXPECT_EQ(f.mfgAttendance->TextMatrix(6, 6), QStringLiteral("A"));
    // The clerk looks at the day and ticks the claim again: it is still overtime.
    f.mfgAttendance->setCurrentCell(6, 1);
    EXPECT_EQ(f.chkAllowanceDeductions->text(), QStringLiteral("Allowances"));
    f.chkAllowanceDeductions->click();
    f.chkAllowanceDeductions->click();
    EXPECT_EQ(f.chkAllowanceDeductions->text(), QStringLiteral("Allowances"));
    EXPECT_EQ(f.mfgAttendance->TextMatrix(6, 6), QStringLiteral("A"));
    // Populate on the opened entry keeps the holiday at zero too.
    f.cmdPopulateRecords_Click();
    EXPECT_EQ(f.mfgAttendance->TextMatrix(6, 4), QStringLiteral("00:00"));
    f.cmdOK_Click();
    ASSERT_TRUE(f.saved()) << lastMessage().toStdString();
    const qint32 saved = t.scalar("select max(eaID) from pEmployeeAttendence").toInt();
    EXPECT_EQ(qz2test::table(t, QStringLiteral("select eaadHours,eaadAllowanceID,eaadDeductionID "
                                               "from pEmpAttendanceAllowanceDeductions where "
                                               "eaadAttendanceID=%1 and eaadDate='2026-11-07'")
                                    .arg(saved)),
              QStringList{"2|11|NULL"});
}

// ---------------------------------------------------------------------------------------
// An edit saves only over what it opened

TEST_F(EntryEdit, AnEntryCancelledSinceItWasOpenedIsNotWrittenAgain) {
    const qint32 id = saveScenario(qz2test::demoScenario(employee, kStart));
    const QString number =
        t.scalar(QStringLiteral("select eaNo from pEmployeeAttendence where eaID=%1").arg(id))
            .toString();
    frmEmployeeDailyAttendance& f = load(id);
    qz2test::applyStandardEdit(f, kStart);
    const QString keyed = qz2test::formSnapshot(f);
    // Another clerk cancels it meanwhile.
    t.exec(QStringLiteral("update pEmployeeAttendence set eacancelled=1,eaCancelledRemarks="
                          "'clerk:wrong month' where eaID=%1")
               .arg(id));
    const QString before = t.dump();
    msgbox_testing::clear();
    f.cmdOK_Click();
    EXPECT_FALSE(f.saved());
    EXPECT_EQ(lastMessage(), number + QStringLiteral(" was cancelled since you opened it. Nothing "
                                                     "was saved."));
    EXPECT_EQ(t.dump(), before);
    EXPECT_EQ(qz2test::formSnapshot(f), keyed);
}

TEST_F(EntryEdit, AnEntrySavedByAnotherClerkSinceItWasOpenedIsNotOverwritten) {
    const qint32 id = saveScenario(qz2test::demoScenario(employee, kStart));
    const QString number =
        t.scalar(QStringLiteral("select eaNo from pEmployeeAttendence where eaID=%1").arg(id))
            .toString();
    const QString saidStale =
        number + QStringLiteral(" was saved by another clerk since you opened it. Nothing was "
                                "saved: close this form and open the entry again to see their "
                                "changes.");
    // Clerk A opens it; clerk B opens it too, corrects it and saves (under a new identifier).
    frmEmployeeDailyAttendance a;
    ASSERT_TRUE(a.fnLoadEntry(QString::number(id), false));
    frmEmployeeDailyAttendance& b = load(id);
    qz2test::applyStandardEdit(b, kStart);
    b.cmdOK_Click();
    ASSERT_TRUE(b.saved()) << lastMessage().toStdString();
    const QString afterB = t.dump();
    msgbox_testing::clear();
    a.cmdOK_Click();
    EXPECT_FALSE(a.saved());
    EXPECT_EQ(lastMessage(), saidStale);
    EXPECT_EQ(t.dump(), afterB);
    // Two live copies with one number never come about.
    EXPECT_EQ(t.scalar(QStringLiteral("select count(*) from pEmployeeAttendence where eaNo='%1' "
                                      "and eaCancelled=0")
                           .arg(number))
                  .toInt(),
              1);
    // A changed value under the same identifier is caught as well.
    const qint32 current = t.scalar("select max(eaID) from pEmployeeAttendence").toInt();
    frmEmployeeDailyAttendance& c = load(current);
    t.exec(QStringLiteral("update pEmployeeAttendence set eaRemarks='changed' where eaID=%1")
               .arg(current));
    msgbox_testing::clear();
    c.cmdOK_Click();
    EXPECT_FALSE(c.saved());
    EXPECT_EQ(lastMessage(), saidStale);
}

TEST_F(EntryEdit, OpeningReadsTheCancelledStateFromTheDatabase) {
    const qint32 id = saveScenario(qz2test::demoScenario(employee, kStart));
    t.exec(QStringLiteral("update pEmployeeAttendence set eacancelled=1 where eaID=%1").arg(id));
    // The list still shows "No" (it was read before the cancel): saving stays unavailable.
    frmEmployeeDailyAttendance& f = load(id, /*cancelled=*/false);
    EXPECT_FALSE(f.cmdOK->isEnabled());
}
