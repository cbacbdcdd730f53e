// The whole company's punches at once: every active employee with punches gets the entry the
// entry form builds and saves (compared row for row with the form's own), the reasons an
// employee is skipped with nothing of theirs written, the dry run that writes nothing, a
// statement failing at every step of one employee, and the summary and exit code.

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QFile>
#include <QHash>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QProcess>
#include <QSet>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QTemporaryDir>
#include <QTextCursor>
#include <algorithm>
#include <stdexcept>

#include "SaveScenario.h"
#include "TestSupport.h"
#include "db/Database.h"
#include "demo/DemoData.h"
#include "entry/frmEmployeeDailyAttendance.h"
#include "entry/frmPunchSummary.h"
#include "punches/CompanyImport.h"
#include "punches/PunchFile.h"
#include "register/frmImportPunches.h"
#include "shared/BasAttendence.h"
#include "shared/MsgBox.h"

using namespace qz2;
using namespace qz2::punches;
using qz2test::TestDb;

namespace {

const QDate kBusiness(2026, 11, 21);
const QDate kFrom(2026, 11, 1);
const QDate kTo(2026, 11, 30);

class CompanyImport : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(dir.isValid());
        file = dir.filePath(QStringLiteral("punches.txt"));
        demo::writeDemoPunches(t.db, kBusiness, file);
        msgbox_testing::clear();
        msgbox_testing::setAutoAnswer(true);
        request.company = 1;
        request.user = 2;
        request.interfaceId = kInterfaceID;
        request.from = kFrom;
        request.to = kTo;
        request.businessDate = kBusiness;
    }
    void TearDown() override {
        db::setFaultHook({});
        frmPunchSummary::setTestAnswer({});
        msgbox_testing::setAutoAnswer(false);
        msgbox_testing::clear();
    }
    QVector<Punch> punches() const {
        const ReadResult read = readPunchFile(file);
        EXPECT_TRUE(read.ok()) << read.message.toStdString();
        return read.punches;
    }
    CompanyImportResult run() { return importCompanyPunches(t.db, punches(), request); }
    const EmployeeImport* find(const CompanyImportResult& r, qint32 id) const {
        for (const EmployeeImport& e : r.employees)
            if (e.id == id) return &e;
        return nullptr;
    }
    // An employee's entries of the period as stored, every column but the identifiers the
    // numbering gives: the header, each detail line and each claim line.
    QStringList storedEntry(qint32 employee) const {
        QStringList out;
        const QString ids = QStringLiteral(
                                "select eaID from pEmployeeAttendence where eaCompanyID=1 and "
                                "eaEmpID=%1 and eaStartDate>='2026-11-01'")
                                .arg(employee);
        out << qz2test::table(
                   t,
                   QStringLiteral("select eaDate,eaEmpID,eaPresent,eaLeaves,eaAbsent,eaCancelled,"
                                  "eaStartDate,eaEndDate,eacwtsid,eaRemarks,eaPerHourRate from "
                                  "pEmployeeAttendence where eaID in (%1)")
                       .arg(ids))
                   .join('\n');
        out << qz2test::table(t, QStringLiteral("select eadDetailID,eadDate,eadType,eadCheckIN,"
                                                "eadCheckOut from pEmpAttendanceDetail where "
                                                "eadAttendanceID in (%1) order by eadDetailID")
                                     .arg(ids))
                   .join('\n');
        out << qz2test::table(t, QStringLiteral("select eaadDetailID,eaadDate,eaadHours,"
                                                "eaadAllowanceID,eaadDeductionID from "
                                                "pEmpAttendanceAllowanceDeductions where "
                                                "eaadAttendanceID in (%1) order by eaadDetailID")
                                     .arg(ids))
                   .join('\n');
        return out;
    }
    int entriesOf(qint32 employee) const {
        return t
            .scalar(QStringLiteral("select count(*) from pEmployeeAttendence where "
                                   "eaCompanyID=1 and eaEmpID=%1")
                        .arg(employee))
            .toInt();
    }
    int historyRows() const {
        return t.scalar(QStringLiteral("select count(*) from pEmpAttendanceHistory")).toInt();
    }
    // Removes an employee's entries of the period, as if they had never been saved.
    void forget(qint32 employee) const {
        const QString ids = QStringLiteral(
                                "(select eaID from pEmployeeAttendence where eaCompanyID=1 and "
                                "eaEmpID=%1 and eaStartDate>='2026-11-01')")
                                .arg(employee);
        t.exec(QStringLiteral("delete from pEmpAttendanceDetail where eadAttendanceID in ") + ids);
        t.exec(QStringLiteral("delete from pEmpAttendanceAllowanceDeductions where "
                              "eaadAttendanceID in ") +
               ids);
        t.exec(QStringLiteral("delete from pEmpAttendanceHistory where ehNewID in ") + ids);
        t.exec(QStringLiteral("delete from pEmployeeAttendence where eaID in ") + ids);
    }

    TestDb t{true};
    QTemporaryDir dir;
    QString file;
    CompanyImportRequest request;
};

TEST_F(CompanyImport, TheDemoMonthIsSavedForEveryoneButTheForgottenCheckOut) {
    const int historyBefore = historyRows();
    const int ben = entriesOf(2);
    const CompanyImportResult r = run();
    // Every active employee of company 1 with entries punches in the demo's log.
    const int punching =
        t.scalar(QStringLiteral("select count(*) from pEmployee e where eCompanyID=1 and "
                                "eActive=1 and exists (select 1 from pEmployeeAttendence "
                                "a where a.eaCompanyID=1 and a.eaEmpID=e.eEmpID)"))
            .toInt();
    ASSERT_EQ(r.employees.size(), punching);
    EXPECT_EQ(r.count(Outcome::Saved), punching - 1);
    EXPECT_EQ(r.count(Outcome::Skipped), 1);
    const EmployeeImport* skipped = find(r, 2);  // E0002 left without punching out
    ASSERT_NE(skipped, nullptr);
    EXPECT_EQ(skipped->outcome, Outcome::Skipped);
    EXPECT_EQ(skipped->flaggedDays, QStringList{QStringLiteral("02/11/2026: check-out missing")});
    EXPECT_FALSE(skipped->databaseFailed);
    EXPECT_EQ(entriesOf(2), ben);  // nothing of theirs written
    // Employees in the order of their numbers.
    EXPECT_EQ(r.employees.first().code, QStringLiteral("E0001"));
    for (const EmployeeImport& e : r.employees) {
        if (e.outcome != Outcome::Saved) continue;
        ASSERT_TRUE(e.entryId.has_value()) << e.code.toStdString();
        EXPECT_EQ(t.scalar(QStringLiteral("select eaStartDate||' '||eaEndDate||' '||eaNo from "
                                          "pEmployeeAttendence where eaID=%1")
                               .arg(*e.entryId))
                      .toString(),
                  QStringLiteral("2026-11-01 2026-11-30 ") + e.attendanceNo);
        EXPECT_EQ(t.scalar(QStringLiteral("select ehAction||' '||ehUserID from "
                                          "pEmpAttendanceHistory where ehNewID=%1")
                               .arg(*e.entryId))
                      .toString(),
                  QStringLiteral("imported 2"));
    }
    EXPECT_EQ(historyRows(), historyBefore + punching - 1);
    EXPECT_EQ(companyImportExitCode(r), 1);
    // The codes nobody has are reported with their counts, never given to anyone.
    const QString codes = r.unmatchedCodes.join('\n');
    EXPECT_TRUE(
        codes.contains(QStringLiteral("Code \"E9999\": 1 punch, no employee has this "
                                      "number")))
        << codes.toStdString();
    EXPECT_TRUE(codes.contains(QStringLiteral("Code \"V001\"")));
    const QString summary = companyImportSummary(r, false).join('\n');
    EXPECT_TRUE(summary.startsWith(
        QStringLiteral("%1 of %2 employees saved, 1 skipped.").arg(punching - 1).arg(punching)))
        << summary.toStdString();
    EXPECT_TRUE(summary.contains(QStringLiteral("  E0002 ")));
    EXPECT_TRUE(summary.contains(QStringLiteral("    02/11/2026: check-out missing")));
    EXPECT_TRUE(summary.contains(QStringLiteral("1 repeated punch dropped")));
    EXPECT_TRUE(summary.contains(QStringLiteral("Punches given to no one:")));
    // Who needs the clerk comes before the list of the saved.
    EXPECT_LT(summary.indexOf(QStringLiteral("Skipped, nothing of theirs written:")),
              summary.indexOf(QStringLiteral("Saved:")));
}

TEST_F(CompanyImport, EmployeesThePickerGreysAreImportedAndListedApart) {
    // Worked out from the tables as they stand before the import: an employee whose last
    // payroll date has attendance (of anyone) after it.
    const QDate latest = QDate::fromString(
        t.scalar(QStringLiteral("select max(eadDate) from pEmpAttendanceDetail")).toString().left(10),
        Qt::ISODate);
    QHash<qint32, QDate> behind;
    for (const QVariantList& row : t.rows(QStringLiteral(
             "select mppEmpID, max(mppPayrollDate) from pMonthlyPayrollProcessing group by mppEmpID"))) {
        const QDate payroll = QDate::fromString(row[1].toString().left(10), Qt::ISODate);
        if (latest > payroll) behind.insert(row[0].toInt(), payroll);
    }
    const CompanyImportResult r = run();
    int listed = 0;
    for (const EmployeeImport& e : r.employees) {
        SCOPED_TRACE(e.code.toStdString());
        EXPECT_EQ(e.payrollBehind.has_value(), behind.contains(e.id));
        if (!e.payrollBehind) continue;
        EXPECT_EQ(*e.payrollBehind, behind.value(e.id));
        ++listed;
    }
    ASSERT_GT(listed, 0);  // the demo has such employees among those with punches
    const QStringList summary = companyImportSummary(r, false);
    const qsizetype heading = summary.indexOf(
        QStringLiteral("Attendance already beyond the last payroll (the employee picker greys them):"));
    ASSERT_GE(heading, 0) << summary.join('\n').toStdString();
    for (const EmployeeImport& e : r.employees) {
        if (!e.payrollBehind) continue;
        bool found = false;
        for (qsizetype i = heading + 1; i < summary.size() && summary[i].startsWith(QLatin1String("  ")); ++i)
            if (summary[i].contains(e.code) &&
                summary[i].contains(QStringLiteral("last payroll ") +
                                    e.payrollBehind->toString(QStringLiteral("dd/MM/yyyy"))))
                found = true;
        EXPECT_TRUE(found) << e.code.toStdString();
    }
    // Apart from, and before, the list of saved entries; they are saved all the same.
    EXPECT_LT(heading, summary.indexOf(QStringLiteral("Saved:")));
    for (const EmployeeImport& e : r.employees) {
        if (e.payrollBehind && e.id != 2) {
            EXPECT_EQ(e.outcome, Outcome::Saved) << e.code.toStdString();
        }
    }
}

TEST_F(CompanyImport, EachEntryIsTheOneTheEntryFormBuildsAndSaves) {
    // The form: the employee chosen (the proposed period), Populate, Import punches... with
    // no day ticked absent, OK. Then the import builds the same employees' entries again.
    gstrEntryMode = QStringLiteral("N");
    frmPunchSummary::setTestAnswer([](frmPunchSummary& s) { s.accept(); });
    const QList<qint32> people = {1, 3, 4};  // a double tap, a night shift, no directions
    QMap<qint32, QStringList> byForm;
    for (const qint32 employee : people) {
        frmEmployeeDailyAttendance form;
        form.Form_Load();
        form.cboEmpname->setCurrentIndex(form.cboEmpname->findData(employee));
        form.cmdPopulateRecords_Click();
        ASSERT_TRUE(form.fnImportPunches(file));
        form.cmdOK_Click();
        ASSERT_TRUE(form.saved());
        byForm[employee] = storedEntry(employee);
        ASSERT_FALSE(byForm[employee][1].isEmpty());
        forget(employee);
    }
    request.user = 1;  // the form saved as the session's user
    const CompanyImportResult r = run();
    for (const qint32 employee : people) {
        const EmployeeImport* e = find(r, employee);
        ASSERT_NE(e, nullptr);
        ASSERT_EQ(e->outcome, Outcome::Saved) << e->reason.toStdString();
        EXPECT_EQ(storedEntry(employee), byForm[employee]) << employee;
    }
    // The night of 4 November stays on its day, split at midnight as the form splits it.
    EXPECT_TRUE(byForm[3][1].contains(QStringLiteral("2026-11-04|P|00:00:00|06:05:00")))
        << byForm[3][1].toStdString();
}

TEST_F(CompanyImport, ADryRunWritesNothingAndSaysWhatTheImportWould) {
    const QString before = t.dump();
    request.dryRun = true;
    const CompanyImportResult dry = run();
    EXPECT_EQ(t.dump(), before);
    EXPECT_EQ(dry.count(Outcome::Saved), 0);
    const int would = dry.count(Outcome::WouldBeSaved);
    EXPECT_GT(would, 20);
    EXPECT_TRUE(companyImportSummary(dry, true).first().startsWith(
        QStringLiteral("Dry run, nothing was written: %1 of ").arg(would)));
    request.dryRun = false;
    const CompanyImportResult real = run();
    EXPECT_EQ(real.count(Outcome::Saved), would);
    for (int i = 0; i < real.employees.size(); ++i)
        EXPECT_EQ(real.employees[i].reason, dry.employees[i].reason);
}

TEST_F(CompanyImport, AnotherPeriodThanTheProposedOneSkipsEveryoneAndWritesNothing) {
    const QString before = t.dump();
    request.from = QDate(2026, 11, 2);
    const CompanyImportResult r = run();
    EXPECT_EQ(r.count(Outcome::Saved), 0);
    ASSERT_FALSE(r.employees.isEmpty());
    EXPECT_EQ(r.employees.first().reason,
              QStringLiteral("the next period proposed for the employee is 01/11/2026 to "
                             "30/11/2026, not 02/11/2026 to 30/11/2026"));
    EXPECT_EQ(t.dump(), before);
    // A second import of the same month finds every saved employee's next period later.
    request.from = kFrom;
    ASSERT_GT(run().count(Outcome::Saved), 0);
    const QString after = t.dump();
    const CompanyImportResult again = run();
    EXPECT_EQ(again.count(Outcome::Saved), 0);
    EXPECT_EQ(t.dump(), after);
}

TEST_F(CompanyImport, MissingSettingsSkipTheEmployeeWithTheFormsOwnMessage) {
    // No department for E0001, no rate for E0004 where the rate comes from the master.
    t.exec(QStringLiteral("update pEmployee set eDeptID=null where eEmpID=1"));
    t.exec(QStringLiteral("update pEmployee set PerHourRate=0 where eEmpID=4"));
    t.exec(QStringLiteral("update pSettings set PerHourRateFromEmployeeMaster=1"));
    const int first = entriesOf(1);
    const int fourth = entriesOf(4);
    const CompanyImportResult r = run();
    EXPECT_EQ(find(r, 1)->reason, QStringLiteral("There is no department for this employee."));
    EXPECT_EQ(find(r, 4)->reason, QStringLiteral("The Overtime/Latecoming Rate/Hour is Zero in "
                                                 "the Employee master. Can't Save."));
    EXPECT_EQ(entriesOf(1), first);
    EXPECT_EQ(entriesOf(4), fourth);
    EXPECT_EQ(find(r, 3)->outcome, Outcome::Saved);

    // Without work-time settings, then without the calendar of the year, nobody is saved.
    TestDb other(true);
    other.exec(QStringLiteral("delete from pCalendarWorkTimeSettings"));
    const QString before = other.dump();
    const CompanyImportResult none = importCompanyPunches(other.db, punches(), request);
    ASSERT_FALSE(none.employees.isEmpty());
    EXPECT_EQ(none.count(Outcome::Saved), 0);
    EXPECT_TRUE(none.employees.first().reason.startsWith(
        QStringLiteral("Worktime Settings not Found for ")))
        << none.employees.first().reason.toStdString();
    EXPECT_EQ(other.dump(), before);
    other.exec(QStringLiteral("delete from pCalenderHeader where financialid=2026"));
    const CompanyImportResult noCalendar = importCompanyPunches(other.db, punches(), request);
    EXPECT_TRUE(noCalendar.employees.first().reason.startsWith(
        QStringLiteral("Calender Settings not Found for ")))
        << noCalendar.employees.first().reason.toStdString();
    EXPECT_TRUE(
        noCalendar.employees.first().reason.endsWith(QStringLiteral(" for the year - 2026")));
}

TEST_F(CompanyImport, AMissingDateOfJoinOrPunchesOnlyOutsideThePeriodSkipTheEmployee) {
    // E0001's date of join is the suite's "missing" value; E0029 (active, without entries,
    // so proposed the business date's pay month) punched only in October.
    t.exec(QStringLiteral("update pEmployee set eDateofjoin='9999-11-01' where eEmpID=1"));
    QVector<Punch> given = punches();
    Punch october;
    october.code = QStringLiteral("E0029");
    october.at = QDateTime(QDate(2026, 10, 15), QTime(9, 0), Qt::UTC);
    october.direction = Direction::In;
    october.line = 9999;
    given << october;
    const QString first = storedEntry(1).join('\n');
    const CompanyImportResult r = importCompanyPunches(t.db, given, request);
    ASSERT_NE(find(r, 1), nullptr);
    EXPECT_EQ(find(r, 1)->reason, QStringLiteral("Invalid date of Join cannot proceed"));
    EXPECT_EQ(storedEntry(1).join('\n'), first);
    ASSERT_NE(find(r, 29), nullptr);
    EXPECT_EQ(find(r, 29)->reason,
              QStringLiteral("none of the employee's punches falls in the period"));
    EXPECT_EQ(entriesOf(29), 0);
    // A period that ends before it starts is no request at all.
    request.to = request.from.addDays(-1);
    EXPECT_THROW(importCompanyPunches(t.db, given, request), std::invalid_argument);
}

TEST_F(CompanyImport, AStatementFailingAnywhereInOneEmployeesImportLeavesThemUntouched) {
    // The statements of the second employee's import, counted on a clean run.
    qint64 startOfSecond = 0;
    qint64 startOfThird = 0;
    {
        TestDb counting(true);
        importCompanyPunches(counting.db, punches(), request, [&](int done, int, const QString&) {
            if (done == 1) startOfSecond = db::statementCount();
            if (done == 2) startOfThird = db::statementCount();
            return true;
        });
    }
    const int statements = static_cast<int>(startOfThird - startOfSecond);
    ASSERT_GT(statements, 20);
    for (int k = 1; k <= statements; ++k) {
        TestDb fresh(true);
        int seen = 0;
        bool armed = false;
        db::setFaultHook([&](const QString&) {
            return armed && ++seen == k ? QStringLiteral("disk I/O error") : QString();
        });
        const CompanyImportResult r =
            importCompanyPunches(fresh.db, punches(), request, [&](int done, int, const QString&) {
                armed = done == 1;
                return true;
            });
        db::setFaultHook({});
        ASSERT_GE(r.employees.size(), 3);
        const EmployeeImport& second = r.employees[1];
        EXPECT_EQ(second.outcome, Outcome::Skipped) << "statement " << k << " of " << statements;
        EXPECT_TRUE(second.databaseFailed) << k;
        EXPECT_TRUE(second.reason.contains(QStringLiteral("disk I/O error")))
            << k << ": " << second.reason.toStdString();
        // Nothing of theirs: no entry of the period, no history row for one.
        EXPECT_EQ(fresh
                      .scalar(QStringLiteral("select count(*) from pEmployeeAttendence where "
                                             "eaEmpID=%1 and eaStartDate>='2026-11-01'")
                                  .arg(second.id))
                      .toInt(),
                  0)
            << k;
        EXPECT_EQ(fresh
                      .scalar(QStringLiteral("select count(*) from pEmpAttendanceHistory h "
                                             "where not exists (select 1 from pEmployeeAttendence "
                                             "a where a.eaID=h.ehNewID)"))
                      .toInt(),
                  0)
            << k;
        // The others go on.
        EXPECT_EQ(r.employees[0].outcome, Outcome::Saved) << k;
        EXPECT_EQ(r.employees[2].outcome, Outcome::Saved) << k;
        EXPECT_EQ(companyImportExitCode(r), 3) << k;
    }
}

TEST_F(CompanyImport, StoppedBetweenTwoEmployeesTheRestAreLeftUntouchedAndSaidSo) {
    int total = 0;
    const CompanyImportResult r =
        importCompanyPunches(t.db, punches(), request, [&](int done, int all, const QString&) {
            total = all;
            return done < 2;
        });
    ASSERT_GT(total, 3);
    EXPECT_TRUE(r.stopped);
    EXPECT_EQ(r.employees.size(), 2);
    EXPECT_EQ(r.notReached, total - 2);
    EXPECT_EQ(r.count(Outcome::Saved), 1);  // E0001; E0002 is skipped for its flagged day
    EXPECT_EQ(t.scalar(QStringLiteral("select count(*) from pEmployeeAttendence where "
                                      "eaStartDate='2026-11-01'"))
                  .toInt(),
              1);
    EXPECT_EQ(companyImportExitCode(r), 1);
    const QStringList summary = companyImportSummary(r, false);
    EXPECT_EQ(summary.value(0), QStringLiteral("1 of %1 employees saved, 1 skipped.").arg(total));
    EXPECT_EQ(summary.value(1),
              QStringLiteral("Stopped before the last %1 employees: nothing of theirs was written.")
                  .arg(total - 2));
}

// What one employee's import asks of the database depends on that employee alone: with
// four times the staff punching, each of the demo's employees runs the same statements.
TEST_F(CompanyImport, TheStatementsOfAnEmployeeDoNotGrowWithTheCompany) {
    const auto perEmployee = [this](const TestDb& on, const QVector<Punch>& given) {
        QMap<QString, qint64> counts;
        QString current;
        qint64 from = 0;
        const CompanyImportResult r =
            importCompanyPunches(on.db, given, request, [&](int, int, const QString& who) {
                const qint64 now = db::statementCount();
                if (!current.isEmpty()) counts[current] = now - from;
                current = who.section(QLatin1Char(' '), 0, 0);
                from = now;
                return true;
            });
        EXPECT_GT(r.count(Outcome::Saved), 20);
        return counts;
    };
    const QVector<Punch> demoPunches = punches();
    const QMap<QString, qint64> small = perEmployee(t, demoPunches);

    TestDb larger(true);
    QVector<Punch> more = demoPunches;
    for (int copy = 1; copy <= 3; ++copy) {
        larger.exec(QStringLiteral("insert into pEmployee (eEmpID,eCompanyID,eEmpNo,eName,eActive,"
                                   "eDeptID,eDateofjoin,ecurrencyid,PerHourRate) select "
                                   "eEmpID+%1,eCompanyID,'C%2'||eEmpNo,eName,eActive,eDeptID,"
                                   "eDateofjoin,ecurrencyid,PerHourRate from pEmployee where "
                                   "eEmpID<1000")
                        .arg(copy * 1000)
                        .arg(copy));
        for (const Punch& p : demoPunches) {
            Punch twin = p;
            twin.code = QStringLiteral("C%1").arg(copy) + p.code.trimmed();
            more.append(twin);
        }
    }
    const QMap<QString, qint64> big = perEmployee(larger, more);
    ASSERT_GT(big.size(), 3 * small.size());
    for (auto it = small.cbegin(); it != small.cend(); ++it)
        EXPECT_EQ(big.value(it.key()), it.value()) << it.key().toStdString();
}

// The register's dialog: the demo's file and month, then the summary on the dialog.
TEST_F(CompanyImport, TheRegistersDialogImportsAndShowsTheSummary) {
    frmImportPunches dialog;
    // Every Alt key of the dialog reaches one control.
    QStringList keys;
    for (const QWidget* w : dialog.findChildren<QWidget*>()) {
        QString text;
        if (const auto* b = qobject_cast<const QAbstractButton*>(w)) text = b->text();
        if (const auto* l = qobject_cast<const QLabel*>(w)) text = l->text();
        const qsizetype amp = text.indexOf(QLatin1Char('&'));
        if (amp >= 0 && amp + 1 < text.size() && text[amp + 1] != QLatin1Char('&'))
            keys << text.mid(amp + 1, 1).toLower();
    }
    EXPECT_EQ(QSet<QString>(keys.cbegin(), keys.cend()).size(), keys.size())
        << keys.join(' ').toStdString();
    EXPECT_GE(keys.size(), 8);
    EXPECT_EQ(dialog.dtpFrom->date(), kFrom);  // the business date's month
    EXPECT_EQ(dialog.dtpTo->date(), kTo);
    EXPECT_FALSE(dialog.cmdImport_Click());  // no file yet
    ASSERT_FALSE(msgbox_testing::shown().isEmpty());
    EXPECT_EQ(msgbox_testing::shown().last().text, QStringLiteral("Choose the punch file first."));
    dialog.txtFile->setText(file);
    dialog.chkDryRun->setChecked(true);
    const QString before = t.dump();
    ASSERT_TRUE(dialog.cmdImport_Click());
    EXPECT_EQ(t.dump(), before);
    EXPECT_FALSE(dialog.savedAny());
    EXPECT_TRUE(dialog.txtSummary->toPlainText().startsWith(QStringLiteral("Dry run")));
    dialog.chkDryRun->setChecked(false);
    ASSERT_TRUE(dialog.cmdImport_Click());
    EXPECT_TRUE(dialog.savedAny());
    EXPECT_TRUE(
        dialog.txtSummary->toPlainText().contains(QStringLiteral("employees saved, 1 skipped")))
        << dialog.txtSummary->toPlainText().toStdString();
    // A file that is no punch file is said, and nothing runs.
    QFile pdf(dir.filePath(QStringLiteral("scan.pdf")));
    ASSERT_TRUE(pdf.open(QIODevice::WriteOnly));
    pdf.write(QByteArray("%PDF-1.7\n\x00\x01\x02binary", 20));
    pdf.close();
    dialog.txtFile->setText(pdf.fileName());
    msgbox_testing::clear();
    EXPECT_FALSE(dialog.cmdImport_Click());
    ASSERT_FALSE(msgbox_testing::shown().isEmpty());
    // A period that ends before it starts is refused before the file is read.
    dialog.txtFile->setText(file);
    dialog.dtpTo->setDate(QDate(2026, 10, 1));
    msgbox_testing::clear();
    EXPECT_FALSE(dialog.cmdImport_Click());
    ASSERT_FALSE(msgbox_testing::shown().isEmpty());
    EXPECT_TRUE(msgbox_testing::shown().last().text.startsWith(QStringLiteral("The period ends")));
}

}  // namespace

// ---- In a process of its own: ended at any point, and the host program's command ----------

namespace {

struct Outcome2 {
    int code = -1;
    bool crashed = false;
    QStringList lines;
    QString err;
};

class CompanyImportProcess : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(dir.isValid());
        pristine = dir.filePath(QStringLiteral("pristine.sqlite"));
        qz2test::createDemoFile(pristine);
        punchFile = dir.filePath(QStringLiteral("punches.txt"));
        {
            QSqlDatabase db =
                QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("writer"));
            db.setDatabaseName(pristine);
            ASSERT_TRUE(db.open());
            demo::writeDemoPunches(db, kBusiness, punchFile);
            db.close();
        }
        QSqlDatabase::removeDatabase(QStringLiteral("writer"));
    }
    QString copyOfPristine(const QString& name) const {
        const QString file = dir.filePath(name);
        QFile::remove(file);
        EXPECT_TRUE(QFile::copy(pristine, file));
        return file;
    }
    Outcome2 start(const QString& program, const QStringList& args) const {
        QProcess p;
        p.setProcessEnvironment(qz2test::headlessEnvironment(dir.path()));
        p.start(program, args);
        EXPECT_TRUE(p.waitForFinished(120000));
        Outcome2 o;
        o.code = p.exitCode();
        o.crashed = p.exitStatus() != QProcess::NormalExit;
        o.lines = QString::fromUtf8(p.readAllStandardOutput()).split('\n', Qt::SkipEmptyParts);
        o.err = QString::fromUtf8(p.readAllStandardError());
        return o;
    }
    Outcome2 host(const QStringList& args) const {
        return start(QStringLiteral(QZ2_HOST_PROGRAM),
                     QStringList{QStringLiteral("import-punches")} + args);
    }
    // Everything stored of an employee's entries of the period and of their history.
    static QMap<int, QString> employeeStates(const QString& file) {
        QMap<int, QString> states;
        const QString name = QStringLiteral("look-") + file;
        {
            QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
            db.setDatabaseName(file);
            EXPECT_TRUE(db.open());
            const auto rows = [&db](const QString& sql) {
                QStringList out;
                QSqlQuery q(db);
                EXPECT_TRUE(q.exec(sql)) << sql.toStdString();
                while (q.next()) {
                    QStringList cells;
                    for (int c = 0; c < q.record().count(); ++c)
                        cells << (q.isNull(c) ? QStringLiteral("NULL") : q.value(c).toString());
                    out << cells.join('|');
                }
                return out;
            };
            for (const QString& e : rows(QStringLiteral("select eEmpID from pEmployee"))) {
                const QString ids = QStringLiteral(
                                        "(select eaID from pEmployeeAttendence where "
                                        "eaEmpID=%1 and eaStartDate>='2026-11-01')")
                                        .arg(e);
                QStringList state;
                state << rows(QStringLiteral("select * from pEmployeeAttendence where eaID in ") +
                              ids + QStringLiteral(" order by eaID"));
                state << rows(QStringLiteral("select * from pEmpAttendanceDetail where "
                                             "eadAttendanceID in ") +
                              ids + QStringLiteral(" order by eadAttendanceID,eadDetailID"));
                state << rows(QStringLiteral("select * from pEmpAttendanceAllowanceDeductions "
                                             "where eaadAttendanceID in ") +
                              ids + QStringLiteral(" order by eaadAttendanceID,eaadDetailID"));
                state << rows(QStringLiteral("select ehAttendanceNo,ehOldID,ehNewID,ehAction,"
                                             "ehUserID,ehChanges from pEmpAttendanceHistory "
                                             "where ehNewID in ") +
                              ids);
                states.insert(e.toInt(), state.join('\n'));
            }
            db.close();
        }
        QSqlDatabase::removeDatabase(name);
        return states;
    }

    QTemporaryDir dir;
    QString pristine;
    QString punchFile;
};

TEST_F(CompanyImportProcess, EndedAtAnyPointEveryEmployeeIsWhollySavedOrUntouched) {
    // The whole import once, to know what each employee's entry is and where each begins.
    const QString complete = copyOfPristine(QStringLiteral("complete.sqlite"));
    const Outcome2 whole = start(QStringLiteral(QZ2_IMPORT_CHILD), {complete, punchFile});
    ASSERT_EQ(whole.code, 0) << whole.err.toStdString();
    ASSERT_TRUE(whole.lines.last().startsWith(QStringLiteral("done ")));
    qint64 base = 0;
    QVector<qint64> begins;  // statements (as the child counts them) before each employee
    for (const QString& line : whole.lines) {
        const QStringList f = line.split(' ');
        if (f[0] == QLatin1String("start")) base = f[1].toLongLong();
        if (f[0] == QLatin1String("employee")) begins << f[2].toLongLong() - base;
    }
    ASSERT_GT(begins.size(), 10);
    const QMap<int, QString> saved = employeeStates(complete);
    const QMap<int, QString> untouched = employeeStates(pristine);
    int savedCount = 0;
    for (auto it = saved.cbegin(); it != saved.cend(); ++it)
        if (it.value() != untouched.value(it.key())) ++savedCount;
    ASSERT_GT(savedCount, 10);

    // Ended before every third statement of the first three employees, and at a few points
    // further on: every employee is either as the whole import left them or as before.
    QVector<qint64> points;
    for (qint64 k = begins[0] + 1; k <= begins[3]; k += 3) points << k;
    points << begins[10] + 7 << begins[begins.size() - 1] + 11;
    for (const qint64 k : points) {
        const QString file = copyOfPristine(QStringLiteral("ended.sqlite"));
        const Outcome2 ended =
            start(QStringLiteral(QZ2_IMPORT_CHILD),
                  {file, punchFile, QStringLiteral("--exit-at"), QString::number(k)});
        ASSERT_EQ(ended.code, 9) << "statement " << k << ": " << ended.err.toStdString();
        const QMap<int, QString> now = employeeStates(file);
        int whollySaved = 0;
        for (auto it = now.cbegin(); it != now.cend(); ++it) {
            const bool asBefore = it.value() == untouched.value(it.key());
            const bool asSaved = it.value() == saved.value(it.key());
            EXPECT_TRUE(asBefore || asSaved)
                << "employee " << it.key() << " half saved when ended at statement " << k;
            if (asSaved && !asBefore) ++whollySaved;
        }
        // The employees before the one it was ended in are all there.
        const auto reached = std::upper_bound(begins.begin(), begins.end(), k - 1) - begins.begin();
        EXPECT_GE(whollySaved, static_cast<int>(reached) - 2) << k;
    }
}

TEST_F(CompanyImportProcess, TheCommandSavesTheMonthSaysWhoWasSkippedAndExitsWithWhatHappened) {
    const QString file = copyOfPristine(QStringLiteral("suite.sqlite"));
    const QStringList period = {QStringLiteral("--from"),     QStringLiteral("2026-11-01"),
                                QStringLiteral("--to"),       QStringLiteral("2026-11-30"),
                                QStringLiteral("--date"),     QStringLiteral("2026-11-21"),
                                QStringLiteral("--database"), file};
    // The dry run first: the same summary, nothing written.
    const QMap<int, QString> before = employeeStates(file);
    const Outcome2 dry = host(QStringList{punchFile, QStringLiteral("--dry-run")} + period);
    EXPECT_EQ(dry.code, 1) << dry.err.toStdString();
    ASSERT_FALSE(dry.lines.isEmpty());
    EXPECT_TRUE(dry.lines.first().startsWith(QStringLiteral("Dry run, nothing was written: ")))
        << dry.lines.first().toStdString();
    EXPECT_EQ(employeeStates(file), before);

    const Outcome2 real = host(QStringList{punchFile} + period);
    EXPECT_EQ(real.code, 1) << real.err.toStdString();
    ASSERT_FALSE(real.lines.isEmpty());
    EXPECT_TRUE(real.lines.first().endsWith(QStringLiteral("employees saved, 1 skipped.")))
        << real.lines.first().toStdString();
    EXPECT_TRUE(real.lines.join('\n').contains(QStringLiteral("02/11/2026: check-out missing")));
    EXPECT_TRUE(real.err.isEmpty()) << real.err.toStdString();  // no terminal: no progress line
    EXPECT_NE(employeeStates(file), before);

    // Without the forgotten check-out's employee every one is saved: 0.
    const QString second = copyOfPristine(QStringLiteral("second.sqlite"));
    QFile in(punchFile);
    ASSERT_TRUE(in.open(QIODevice::ReadOnly));
    QByteArray kept;
    for (const QByteArray& line : in.readAll().split('\n'))
        if (!line.trimmed().startsWith("E0002")) kept += line + '\n';
    in.close();
    const QString withoutBen = dir.filePath(QStringLiteral("without-ben.txt"));
    QFile out(withoutBen);
    ASSERT_TRUE(out.open(QIODevice::WriteOnly));
    out.write(kept);
    out.close();
    QStringList secondPeriod = period;
    secondPeriod.last() = second;
    const Outcome2 all = host(QStringList{withoutBen} + secondPeriod);
    EXPECT_EQ(all.code, 0) << all.err.toStdString() << all.lines.join('\n').toStdString();
}

TEST_F(CompanyImportProcess, BadOptionsAFileThatIsNoPunchFileAndADatabaseThatIsNoneHaveTheirCodes) {
    const QString file = copyOfPristine(QStringLiteral("suite.sqlite"));
    const QMap<int, QString> before = employeeStates(file);
    const QStringList db = {QStringLiteral("--database"), file};
    const QStringList period = {QStringLiteral("--from"), QStringLiteral("2026-11-01"),
                                QStringLiteral("--to"), QStringLiteral("2026-11-30")};
    struct Case {
        QStringList args;
        int code;
        const char* says;
    };
    QFile empty(dir.filePath(QStringLiteral("empty.txt")));
    ASSERT_TRUE(empty.open(QIODevice::WriteOnly));
    empty.close();
    QFile binary(dir.filePath(QStringLiteral("clock.bin")));
    ASSERT_TRUE(binary.open(QIODevice::WriteOnly));
    binary.write(QByteArray(4096, '\0') + QByteArray("\x01\x02\xff\xfe", 4));
    binary.close();
    // A 2 GB file (sparse: it takes no room) is refused unread.
    QFile huge(dir.filePath(QStringLiteral("huge.txt")));
    ASSERT_TRUE(huge.open(QIODevice::WriteOnly));
    ASSERT_TRUE(huge.resize(qint64(2) << 30));
    huge.close();
    QFile notADatabase(dir.filePath(QStringLiteral("notes.sqlite")));
    ASSERT_TRUE(notADatabase.open(QIODevice::WriteOnly));
    notADatabase.write("these are notes, not a database\n");
    notADatabase.close();
    const QList<Case> cases = {
        {QStringList{} + period + db, 2, "say which file"},
        {QStringList{punchFile} + db, 2, "--from"},
        {QStringList{punchFile, QStringLiteral("--from"), QStringLiteral("2026-13-01"),
                     QStringLiteral("--to"), QStringLiteral("2026-11-30")} +
             db,
         2, "yyyy-mm-dd"},
        {QStringList{punchFile, QStringLiteral("--from"), QStringLiteral("2026-11-30"),
                     QStringLiteral("--to"), QStringLiteral("2026-11-01")} +
             db,
         2, "ends"},
        {QStringList{punchFile, QStringLiteral("--duplicate-minutes"), QStringLiteral("x")} +
             period + db,
         2, "--duplicate-minutes"},
        {QStringList{punchFile, QStringLiteral("extra")} + period + db, 2, "extra"},
        {QStringList{punchFile, QStringLiteral("--odbc"), QStringLiteral("DSN=x")} + period + db, 2,
         "either"},
        {QStringList{dir.filePath(QStringLiteral("missing.txt"))} + period + db, 4, ""},
        {QStringList{empty.fileName()} + period + db, 4, ""},
        {QStringList{binary.fileName()} + period + db, 4, ""},
        {QStringList{huge.fileName()} + period + db, 4, "512"},
        {QStringList{punchFile} + period +
             QStringList{QStringLiteral("--database"), notADatabase.fileName()},
         3, ""},
    };
    for (const Case& c : cases) {
        const Outcome2 o = host(c.args);
        EXPECT_EQ(o.code, c.code) << c.args.join(' ').toStdString() << "\n" << o.err.toStdString();
        EXPECT_FALSE(o.crashed);
        EXPECT_TRUE(o.err.startsWith(QStringLiteral("qz2-attendance import-punches: ")))
            << o.err.toStdString();
        EXPECT_TRUE(o.err.contains(QString::fromLatin1(c.says))) << o.err.toStdString();
        EXPECT_TRUE(o.lines.isEmpty()) << o.lines.join('\n').toStdString();
    }
    EXPECT_EQ(employeeStates(file), before);
    // --help says what the command does and its exit codes.
    const Outcome2 help = host({QStringLiteral("--help")});
    EXPECT_EQ(help.code, 0);
    EXPECT_TRUE(help.lines.join('\n').contains(QStringLiteral("Exit codes: 0 all saved")));
}

}  // namespace

// The picture of the register's import dialog after importing the demo's month, in docs/
// (run only when asked, see README).
TEST(PunchesScreenshot, TheRegistersImportOfTheDemosMonth) {
    const QByteArray out = qgetenv("QZ2_SCREENSHOT_DIR");
    if (out.isEmpty()) GTEST_SKIP() << "set QZ2_SCREENSHOT_DIR to write the pictures";
    TestDb demoDb(true);
    QTemporaryDir dir;
    const QString file = dir.filePath(QStringLiteral("demo-punches.txt"));
    demo::writeDemoPunches(demoDb.db, kBusiness, file);
    frmImportPunches dialog;
    dialog.txtFile->setText(file);
    dialog.resize(860, 520);
    dialog.show();
    ASSERT_TRUE(dialog.cmdImport_Click());
    dialog.txtSummary->moveCursor(QTextCursor::Start);
    EXPECT_TRUE(
        dialog.grab().save(QString::fromLocal8Bit(out) + QStringLiteral("/punches-company.png")));
}
