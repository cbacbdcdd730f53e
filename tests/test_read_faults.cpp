// A failed read never leaves something saveable. Every statement of choosing the employee,
// of changing a new entry's period, of Populate (new and opened entries), of opening an
// entry for edit and of cancelling one in the register is made to fail in turn, the way a
// lock held too long or a missing table makes it fail:
//  - the clerk is shown the database's message once;
//  - nothing half-made is left on the form (the grids are cleared, or an opened entry is
//    put back as it was) and OK refuses with a message, writing nothing;
//  - once the step has run again successfully, OK saves the right month.
// The statements of these steps run under the wait cursor.

#include <gtest/gtest.h>

#include <QApplication>
#include <QComboBox>
#include <QDateEdit>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QSqlQuery>
#include <iostream>
#include <memory>

#include "SaveScenario.h"
#include "TestSupport.h"
#include "db/Database.h"
#include "entry/EntryRules.h"
#include "entry/frmEmployeeDailyAttendance.h"
#include "register/frmCancel.h"
#include "shared/BasAttendence.h"
#include "shared/FlexGrid.h"
#include "shared/MsgBox.h"
#include "shared/SharedServices.h"

using namespace qz2;
using qz2test::TestDb;
using Step = frmEmployeeDailyAttendance::Step;

namespace {

struct StepRun {
    QStringList statements;
    bool allWaiting = true;  // every statement ran under the wait cursor
};

// Runs `action` with the fault hook failing statement `failAt` (from 0) with `message`.
StepRun runFailing(const std::function<void()>& action, int failAt = -1, const QString& message = {}) {
    StepRun run;
    db::setFaultHook([&run, failAt, message](const QString& sql) {
        run.statements << sql;
        const QCursor* cursor = QApplication::overrideCursor();
        if (!cursor || cursor->shape() != Qt::WaitCursor) run.allWaiting = false;
        return run.statements.size() - 1 == failAt ? message : QString();
    });
    action();
    db::setFaultHook({});
    return run;
}

QString injected(int i) {
    return QStringLiteral("database table is locked: injected failure %1").arg(i + 1);
}

int indexOfEmployee(const QComboBox* box, qint32 employee) {
    for (int i = 0; i < box->count(); ++i)
        if (box->itemData(i).toInt() == employee) return i;
    return -1;
}

class ReadFaults : public ::testing::Test {
protected:
    void SetUp() override {
        msgbox_testing::clear();
        msgbox_testing::setAutoAnswer(true);
        employee = qz2test::freeEmployee(t.db);
        ASSERT_NE(employee, 0);
        gstrEntryMode = QStringLiteral("N");
    }
    void TearDown() override {
        db::setFaultHook({});
        msgbox_testing::setAutoAnswer(false);
        msgbox_testing::clear();
        gstrEntryMode = QStringLiteral("N");
    }
    // A new-entry form with another employee chosen than the one the test chooses.
    std::unique_ptr<frmEmployeeDailyAttendance> newForm() {
        gstrEntryMode = QStringLiteral("N");
        auto form = std::make_unique<frmEmployeeDailyAttendance>();
        form->Form_Load();
        const int mine = indexOfEmployee(form->cboEmpname, employee);
        EXPECT_GE(mine, 0);
        form->cboEmpname->setCurrentIndex(mine == 0 ? 1 : 0);
        msgbox_testing::clear();
        return form;
    }
    void choose(frmEmployeeDailyAttendance& form) {
        form.cboEmpname->setCurrentIndex(indexOfEmployee(form.cboEmpname, employee));
    }
    int entries() const { return t.scalar("select count(*) from pEmployeeAttendence").toInt(); }
    // Takes the entry saved last out again, with its history, so the next run starts from
    // the same database.
    void removeLastSaved() const {
        const QString last = QStringLiteral("(select max(eaID) from pEmployeeAttendence)");
        t.exec(QStringLiteral("delete from pEmpAttendanceHistory where ehNewID=") + last);
        t.exec(QStringLiteral("delete from pEmpAttendanceAllowanceDeductions where eaadAttendanceID=") + last);
        t.exec(QStringLiteral("delete from pEmpAttendanceDetail where eadAttendanceID=") + last);
        t.exec(QStringLiteral("delete from pEmployeeAttendence where eaID=") + last);
    }
    // The period of the entry saved last.
    QString lastSavedPeriod() const {
        const QList<QVariantList> rows =
            t.rows(QStringLiteral("select eaStartDate, eaEndDate, eaEmpID from pEmployeeAttendence "
                                  "where eaID=(select max(eaID) from pEmployeeAttendence)"));
        if (rows.isEmpty()) return {};
        return rows[0][0].toString().left(10) + QLatin1Char('/') + rows[0][1].toString().left(10) +
               QLatin1Char('/') + rows[0][2].toString();
    }
    // After a failure: one message, the database's; the step unfinished; OK refuses.
    void expectReportedAndRefused(frmEmployeeDailyAttendance& form, const QString& message,
                                  Step step, const QString& before) {
        ASSERT_EQ(msgbox_testing::shown().size(), 1);
        EXPECT_EQ(msgbox_testing::shown().first().text, message);
        EXPECT_EQ(form.unfinishedStep(), step);
        msgbox_testing::clear();
        form.cmdOK_Click();
        EXPECT_FALSE(form.saved());
        ASSERT_EQ(msgbox_testing::shown().size(), 1);
        EXPECT_EQ(msgbox_testing::shown().first().text, entry::kMsgStepUnfinished);
        EXPECT_EQ(t.dump(), before);
        msgbox_testing::clear();
    }

    TestDb t{true};
    qint32 employee = 0;
};

TEST_F(ReadFaults, EveryStatementOfChoosingTheEmployeeFailingIsReportedOnceAndBlocksOk) {
    // The reference: choosing, Populate, OK.
    QString proposed;
    QString savedPeriod;
    QStringList statements;
    {
        auto form = newForm();
        const StepRun run = runFailing([&] { choose(*form); });
        statements = run.statements;
        EXPECT_TRUE(run.allWaiting);
        EXPECT_TRUE(msgbox_testing::shown().isEmpty());
        proposed = form->txtStartDate->text() + QLatin1Char('-') + form->txtEndDate->text();
        form->cmdPopulateRecords_Click();
        form->cmdOK_Click();
        ASSERT_TRUE(form->saved());
        savedPeriod = lastSavedPeriod();
        removeLastSaved();
    }
    // Department switches, department and date of join, next start, calendar of the start's
    // and of the end's year, the holidays of the absent-day list, the work-time setting.
    ASSERT_GE(statements.size(), 6);
    const QString before = t.dump();
    int nothingLost = 0;
    for (int i = 0; i < statements.size(); ++i) {
        SCOPED_TRACE(statements[i].toStdString());
        auto form = newForm();
        const StepRun failed = runFailing([&] { choose(*form); }, i, injected(i));
        EXPECT_TRUE(failed.allWaiting);
        EXPECT_EQ(form->mfgAttendance->Rows(), 1);
        EXPECT_EQ(form->mfgMirrorGrid->Rows(), 1);
        EXPECT_EQ(form->lstAbsentDays->count(), 0);
        expectReportedAndRefused(*form, injected(i), Step::Employee, before);

        // Populate runs the choice's reads again, then populates the proposed month.
        form->cmdPopulateRecords_Click();
        EXPECT_TRUE(msgbox_testing::shown().isEmpty());
        EXPECT_EQ(form->unfinishedStep(), Step::None);
        EXPECT_EQ(form->txtStartDate->text() + QLatin1Char('-') + form->txtEndDate->text(),
                  proposed);
        form->cmdOK_Click();
        ASSERT_TRUE(form->saved());
        EXPECT_EQ(lastSavedPeriod(), savedPeriod);
        if (form->saved() && lastSavedPeriod() == savedPeriod) ++nothingLost;
        removeLastSaved();
    }
    std::cout << "[ " << ::testing::UnitTest::GetInstance()->current_test_info()->name()
              << " ] statements failed in turn: " << statements.size()
              << ", runs with nothing lost: " << nothingLost << '\n';
    EXPECT_EQ(nothingLost, statements.size());
    RecordProperty("runs_nothing_lost", nothingLost);
}

TEST_F(ReadFaults, EveryStatementOfPopulateFailingClearsTheDaysAndBlocksOkUntilPopulatedAgain) {
    QString populated;
    QStringList statements;
    QString savedPeriod;
    {
        auto form = newForm();
        choose(*form);
        const StepRun run = runFailing([&] { form->cmdPopulateRecords_Click(); });
        statements = run.statements;
        EXPECT_TRUE(run.allWaiting);
        ASSERT_TRUE(msgbox_testing::shown().isEmpty());
        populated = qz2test::formSnapshot(*form);
    }
    // Holidays, leaves, the weekday schedules and the newest schedule of each weekday,
    // the first check-ins.
    ASSERT_GE(statements.size(), 4);
    const QString before = t.dump();
    const int entriesBefore = entries();
    int nothingLost = 0;
    for (int i = 0; i < statements.size(); ++i) {
        SCOPED_TRACE(statements[i].toStdString());
        auto form = newForm();
        choose(*form);
        msgbox_testing::clear();
        const StepRun failed = runFailing([&] { form->cmdPopulateRecords_Click(); }, i, injected(i));
        ASSERT_GT(failed.statements.size(), i);
        EXPECT_EQ(failed.statements[i], statements[i]);
        EXPECT_EQ(form->mfgAttendance->Rows(), 1) << "a half-made month is left on the form";
        EXPECT_EQ(form->mfgMirrorGrid->Rows(), 1);
        EXPECT_TRUE(form->txtNoPresent->text().isEmpty());
        expectReportedAndRefused(*form, injected(i), Step::Populate, before);

        form->cmdPopulateRecords_Click();
        EXPECT_TRUE(msgbox_testing::shown().isEmpty());
        EXPECT_EQ(form->unfinishedStep(), Step::None);
        EXPECT_EQ(qz2test::formSnapshot(*form), populated);
        form->cmdOK_Click();
        ASSERT_TRUE(form->saved());
        if (savedPeriod.isEmpty()) savedPeriod = lastSavedPeriod();
        EXPECT_EQ(lastSavedPeriod(), savedPeriod);
        EXPECT_EQ(entries(), entriesBefore + 1);
        if (form->saved() && lastSavedPeriod() == savedPeriod && entries() == entriesBefore + 1)
            ++nothingLost;
        removeLastSaved();
    }
    std::cout << "[ " << ::testing::UnitTest::GetInstance()->current_test_info()->name()
              << " ] statements failed in turn: " << statements.size()
              << ", runs with nothing lost: " << nothingLost << '\n';
    EXPECT_EQ(nothingLost, statements.size());
    RecordProperty("runs_nothing_lost", nothingLost);
}

TEST_F(ReadFaults, EveryStatementOfAPeriodChangeFailingBlocksOkUntilPopulateReadsItAgain) {
    const QDate start(2027, 3, 1);
    const QDate end(2027, 3, 31);
    const auto changePeriod = [&](frmEmployeeDailyAttendance& form) {
        form.txtStartDate->setText(dateText(start));
        form.dtpEndDate->setDate(end);
        form.fnPeriodChanged();
    };
    QStringList statements;
    int listed = 0;
    {
        auto form = newForm();
        choose(*form);
        const StepRun run = runFailing([&] { changePeriod(*form); });
        statements = run.statements;
        listed = form->lstAbsentDays->count();
        ASSERT_TRUE(msgbox_testing::shown().isEmpty());
    }
    // The calendar of the start's and of the end's year, the holidays of the list.
    ASSERT_EQ(statements.size(), 3);
    ASSERT_GT(listed, 20);
    const QString before = t.dump();
    int nothingLost = 0;
    for (int i = 0; i < statements.size(); ++i) {
        SCOPED_TRACE(statements[i].toStdString());
        auto form = newForm();
        choose(*form);
        msgbox_testing::clear();
        runFailing([&] { changePeriod(*form); }, i, injected(i));
        EXPECT_EQ(form->lstAbsentDays->count(), 0);
        expectReportedAndRefused(*form, injected(i), Step::Period, before);

        form->cmdPopulateRecords_Click();
        EXPECT_TRUE(msgbox_testing::shown().isEmpty());
        EXPECT_EQ(form->unfinishedStep(), Step::None);
        EXPECT_EQ(form->lstAbsentDays->count(), listed);
        form->cmdOK_Click();
        ASSERT_TRUE(form->saved());
        const QString period = QStringLiteral("2027-03-01/2027-03-31/%1").arg(employee);
        EXPECT_EQ(lastSavedPeriod(), period);
        if (form->saved() && lastSavedPeriod() == period) ++nothingLost;
        removeLastSaved();
    }
    std::cout << "[ " << ::testing::UnitTest::GetInstance()->current_test_info()->name()
              << " ] statements failed in turn: " << statements.size()
              << ", runs with nothing lost: " << nothingLost << '\n';
    EXPECT_EQ(nothingLost, statements.size());
}

// An entry opened for edit, as the register opens it.
class EditReadFaults : public ReadFaults {
protected:
    void SetUp() override {
        ReadFaults::SetUp();
        auto form = newForm();
        qz2test::fillForm(*form, qz2test::demoScenario(employee, QDate(2026, 11, 2)));
        form->cmdOK_Click();
        ASSERT_TRUE(form->saved());
        id = t.scalar("select max(eaID) from pEmployeeAttendence").toInt();
        msgbox_testing::clear();
        // The register's current row names the entry, as when Edit is pressed.
        registerRows.setCols(5);
        registerRows.setRows(2);
        registerRows.setCurrentCell(1, 0);
        setRegisterGrid(&registerRows);
        listed(id);
    }
    void TearDown() override {
        setRegisterGrid(nullptr);
        ReadFaults::TearDown();
    }
    void listed(qint32 entry) { registerRows.setTextMatrix(1, 0, QString::number(entry)); }
    // The entry live again, without the cancellation's history row.
    void uncancel() const {
        t.exec(QStringLiteral("update pEmployeeAttendence set eaCancelled=0, eaCancelledRemarks=NULL "
                              "where eaID=%1")
                   .arg(id));
        t.exec(QStringLiteral("delete from pEmpAttendanceHistory where ehNewID=%1 and ehAction='cancelled'")
                   .arg(id));
    }
    std::unique_ptr<frmEmployeeDailyAttendance> opened() {
        gstrEntryMode = QStringLiteral("E");
        auto form = std::make_unique<frmEmployeeDailyAttendance>();
        form->Form_Load();
        EXPECT_TRUE(form->fnLoadEntry(QString::number(id), false));
        msgbox_testing::clear();
        return form;
    }
    qint32 id = 0;
    FlexGrid registerRows;
};

TEST_F(EditReadFaults, EveryStatementOfOpeningAnEntryFailingIsReportedOnceAndOpensNothing) {
    QStringList statements;
    {
        gstrEntryMode = QStringLiteral("E");
        frmEmployeeDailyAttendance form;
        form.Form_Load();
        statements = runFailing([&] { EXPECT_TRUE(form.fnLoadEntry(QString::number(id), false)); })
                         .statements;
        ASSERT_TRUE(msgbox_testing::shown().isEmpty()) << msgbox_testing::shown().first().text.toStdString();
    }
    ASSERT_GE(statements.size(), 6);
    for (int i = 0; i < statements.size(); ++i) {
        SCOPED_TRACE(statements[i].toStdString());
        gstrEntryMode = QStringLiteral("E");
        frmEmployeeDailyAttendance form;
        form.Form_Load();
        msgbox_testing::clear();
        bool loaded = true;
        runFailing([&] { loaded = form.fnLoadEntry(QString::number(id), false); }, i, injected(i));
        EXPECT_FALSE(loaded);
        ASSERT_EQ(msgbox_testing::shown().size(), 1);
        EXPECT_EQ(msgbox_testing::shown().first().text, injected(i));
    }
}

TEST_F(EditReadFaults, OpeningAsksNothingMoreOfTheScheduleOnceAReadOfItFailed) {
    // A lock held on the database: every read of a weekday's schedule or first check-in
    // fails after its wait. The opening reports the first failure and asks no more of them.
    for (const QString& kind : {QStringLiteral("Select a.cwtsCheckIn1 "), QStringLiteral("cwtsCheckOut4")}) {
        SCOPED_TRACE(kind.toStdString());
        gstrEntryMode = QStringLiteral("E");
        frmEmployeeDailyAttendance form;
        form.Form_Load();
        msgbox_testing::clear();
        int asked = 0;
        db::setFaultHook([&](const QString& sql) {
            if (!sql.contains(kind)) return QString();
            ++asked;
            return QStringLiteral("database is locked");
        });
        const bool loaded = form.fnLoadEntry(QString::number(id), false);
        db::setFaultHook({});
        EXPECT_FALSE(loaded);
        EXPECT_EQ(asked, 1);
        ASSERT_EQ(msgbox_testing::shown().size(), 1);
        EXPECT_EQ(msgbox_testing::shown().first().text, QStringLiteral("database is locked"));
    }
}

TEST_F(EditReadFaults, EveryStatementOfPopulateOnAnOpenedEntryFailingPutsItBackAndBlocksOk) {
    QStringList statements;
    QString shown;
    {
        auto form = opened();
        shown = qz2test::formSnapshot(*form);
        statements = runFailing([&] { form->cmdPopulateRecords_Click(); }).statements;
        ASSERT_TRUE(msgbox_testing::shown().isEmpty());
    }
    ASSERT_GE(statements.size(), 1);
    const QString before = t.dump();
    int nothingLost = 0;
    for (int i = 0; i < statements.size(); ++i) {
        SCOPED_TRACE(statements[i].toStdString());
        auto form = opened();
        // A day unpicked before Populate: a half-made Populate would have changed it.
        runFailing([&] { form->cmdPopulateRecords_Click(); }, i, injected(i));
        EXPECT_EQ(qz2test::formSnapshot(*form), shown);
        expectReportedAndRefused(*form, injected(i), Step::Populate, before);
        form->cmdPopulateRecords_Click();
        EXPECT_EQ(form->unfinishedStep(), Step::None);
        form->cmdOK_Click();
        ASSERT_TRUE(form->saved());
        const int live = t.scalar(QStringLiteral("select count(*) from pEmployeeAttendence where "
                                                 "eaEmpID=%1 and eaStartDate like '2026-11-02%' "
                                                 "and eaCancelled=0")
                                      .arg(employee))
                             .toInt();
        EXPECT_EQ(live, 1);
        if (live == 1) ++nothingLost;
        id = t.scalar("select max(eaID) from pEmployeeAttendence").toInt();
        listed(id);
    }
    std::cout << "[ " << ::testing::UnitTest::GetInstance()->current_test_info()->name()
              << " ] statements failed in turn: " << statements.size()
              << ", runs with nothing lost: " << nothingLost << '\n';
    EXPECT_EQ(nothingLost, statements.size());
}

TEST_F(EditReadFaults, EveryStatementOfCancellingFailingIsReportedAndLeavesTheEntryLive) {
    const auto cancel = [&](frmCancel& dialog) {
        dialog.txtcanreason->setText(QStringLiteral("Keyed twice"));
        dialog.cmdOK_Click();
    };
    QStringList statements;
    const QString before = t.dump();
    {
        frmCancel dialog;
        statements = runFailing([&] { cancel(dialog); }).statements;
        ASSERT_EQ(dialog.result(), QDialog::Accepted);
        uncancel();
    }
    ASSERT_EQ(t.dump(), before);
    ASSERT_GE(statements.size(), 4);
    for (int i = 0; i < statements.size(); ++i) {
        SCOPED_TRACE(statements[i].toStdString());
        msgbox_testing::clear();
        frmCancel dialog;
        runFailing([&] { cancel(dialog); }, i, injected(i));
        ASSERT_EQ(msgbox_testing::shown().size(), 1);
        EXPECT_EQ(msgbox_testing::shown().first().text, injected(i));
        EXPECT_NE(dialog.result(), QDialog::Accepted);
        EXPECT_EQ(t.dump(), before);
        // OK again goes through.
        msgbox_testing::clear();
        cancel(dialog);
        EXPECT_EQ(dialog.result(), QDialog::Accepted);
        EXPECT_EQ(t.scalar(QStringLiteral("select eaCancelled from pEmployeeAttendence where eaID=%1")
                               .arg(id))
                      .toInt(),
                  1);
        // The cancellation and its history row came together.
        EXPECT_EQ(t.scalar(QStringLiteral("select count(*) from pEmpAttendanceHistory where ehNewID=%1 "
                                          "and ehAction='cancelled'")
                               .arg(id))
                      .toInt(),
                  1);
        uncancel();
    }
}

}  // namespace

TEST_F(EditReadFaults, ACancellationWhoseEntryWasSavedAgainMeanwhileSaysSoAndCancelsNothing) {
    frmCancel dialog;
    dialog.txtcanreason->setText(QStringLiteral("Keyed twice"));
    // Between the reads and the update another clerk's edit stores the entry again under a
    // new identifier.
    bool moved = false;
    db::setFaultHook([this, &moved](const QString& sql) {
        if (!moved && sql.startsWith(QLatin1String("update pEmployeeattendence"))) {
            moved = true;
            QSqlQuery(t.db).exec(QStringLiteral("update pEmployeeAttendence set eaID=%1 where eaID=%2")
                       .arg(id + 100)
                       .arg(id));
        }
        return QString();
    });
    dialog.cmdOK_Click();
    EXPECT_TRUE(moved);
    db::setFaultHook({});
    EXPECT_FALSE(dialog.cancelled());
    EXPECT_NE(dialog.result(), QDialog::Accepted);
    ASSERT_EQ(msgbox_testing::shown().size(), 1);
    EXPECT_EQ(msgbox_testing::shown().first().text, entryGoneText(QString::number(id)));
    EXPECT_EQ(t.scalar(QStringLiteral("select count(*) from pEmployeeAttendence where "
                                      "eaCancelled=1 and eaID=%1")
                           .arg(id + 100))
                  .toInt(),
              0);
}

// The form after Populate met a locked database: the message, then nothing half-made.
TEST(ReadFaultsScreenshot, AfterAFailedPopulate) {
    const QByteArray dir = qgetenv("QZ2_SCREENSHOT_DIR");
    if (dir.isEmpty()) GTEST_SKIP() << "set QZ2_SCREENSHOT_DIR to write the picture";
    TestDb demo(true);
    msgbox_testing::setAutoAnswer(true);
    gstrEntryMode = QStringLiteral("N");
    frmEmployeeDailyAttendance form;
    form.Form_Load();
    form.cboEmpname->setCurrentIndex(2);
    form.show();
    db::setFaultHook([](const QString& sql) {
        return sql.contains(QStringLiteral("lrdNoofDays")) ? QStringLiteral("database is locked")
                                                           : QString();
    });
    form.cmdPopulateRecords_Click();
    db::setFaultHook({});
    form.cmdOK_Click();
    msgbox_testing::setAutoAnswer(false);
    ASSERT_EQ(form.unfinishedStep(), Step::Populate);
    EXPECT_TRUE(form.grab().save(QString::fromLocal8Bit(dir) + QStringLiteral("/read-failure.png")));
}
