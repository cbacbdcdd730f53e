// A save is all or nothing, whatever goes wrong and whenever:
//  - every statement a new save and an edit save run is made to fail in turn: the database
//    is left exactly as before, the form keeps its contents, the clerk is shown the error's
//    text, and OK pressed again saves;
//  - a child process saving an entry is ended abruptly before each statement in turn: the
//    entry (or the edit) is afterwards wholly there or wholly absent;
//  - two processes save entries of the same company at the same moment, many times: no
//    identifier or number is given twice, and a save that meets the other's lock reports
//    the database's message and goes through when pressed again;
//  - another program takes its lock on the database just before each statement in turn of
//    choosing the employee, Populate, a new save, an edit and a cancellation: the clerk is
//    told the database is busy, nothing half-made is stored, and pressed again once the lock
//    is gone the change is stored whole and once;
//  - another clerk's cancellation, or their own edit of the same entry, is pressed just
//    before each statement in turn of an edit's save: the cancellation is never lost, the
//    entry never saved twice, and the clerk whose save is refused is told why.

#include <gtest/gtest.h>

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QSet>
#include <QSqlError>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTest>
#include <algorithm>
#include <iostream>
#include <memory>
#include <ostream>

#include "SaveScenario.h"
#include "TestSupport.h"
#include "db/Database.h"
#include "entry/EntryRules.h"
#include "entry/frmEmployeeDailyAttendance.h"
#include "shared/BasAttendence.h"
#include "shared/FlexGrid.h"
#include "shared/MsgBox.h"
#include "shared/SharedServices.h"

using namespace qz2;
using qz2test::TestDb;

namespace {

const QDate kStart(2026, 11, 2);

// ---------------------------------------------------------------------------------------
// Failure of each statement, in process

// A demo database with a form ready to save: a new entry keyed, or (edit) a saved entry
// loaded and corrected.
class Prepared {
public:
    explicit Prepared(bool edit) {
        msgbox_testing::clear();
        employee = qz2test::freeEmployee(t.db);
        EXPECT_NE(employee, 0);
        gstrEntryMode = QStringLiteral("N");
        if (edit) {
            frmEmployeeDailyAttendance first;
            first.Form_Load();
            qz2test::fillForm(first, qz2test::demoScenario(employee, kStart));
            first.cmdOK_Click();
            EXPECT_TRUE(first.saved());
            editedId = t.scalar("select max(eaID) from pEmployeeAttendence").toInt();
            registerRows.setCols(5);
            registerRows.setRows(2);
            registerRows.setTextMatrix(1, 0, QString::number(editedId));
            registerRows.setCurrentCell(1, 0);
            setRegisterGrid(&registerRows);
            gstrEntryMode = QStringLiteral("E");
            form = std::make_unique<frmEmployeeDailyAttendance>();
            form->Form_Load();
            EXPECT_TRUE(form->fnLoadEntry(QString::number(editedId), false));
            qz2test::applyStandardEdit(*form, kStart);
            // The register's refresh runs after the commit and traps its own errors; it is
            // not among what must roll back.
            setRegisterGrid(nullptr);
        } else {
            form = std::make_unique<frmEmployeeDailyAttendance>();
            form->Form_Load();
            qz2test::fillForm(*form, qz2test::demoScenario(employee, kStart));
        }
        msgbox_testing::clear();
    }
    ~Prepared() {
        db::setFaultHook({});
        setRegisterGrid(nullptr);
    }
    // The statements of one press of OK; the hook may fail one of them.
    QStringList press(int failAt = -1, const QString& message = {}) {
        QStringList ran;
        db::setFaultHook([&ran, failAt, message](const QString& sql) {
            ran << sql;
            return ran.size() - 1 == failAt ? message : QString();
        });
        form->cmdOK_Click();
        db::setFaultHook({});
        return ran;
    }
    // Rows of the entry saved last: header, details and claims.
    QList<int> savedCounts() const {
        const int id = t.scalar("select max(eaID) from pEmployeeAttendence").toInt();
        return {
            t.scalar(
                 QStringLiteral("select count(*) from pEmployeeAttendence where eaID=%1").arg(id))
                .toInt(),
            t.scalar(QStringLiteral(
                         "select count(*) from pEmpAttendanceDetail where eadAttendanceID=%1")
                         .arg(id))
                .toInt(),
            t.scalar(QStringLiteral("select count(*) from pEmpAttendanceAllowanceDeductions where "
                                    "eaadAttendanceID=%1")
                         .arg(id))
                .toInt(),
            t.scalar(QStringLiteral("select count(*) from pEmpAttendanceHistory where ehNewID=%1").arg(id))
                .toInt()};
    }

    TestDb t{true};
    FlexGrid registerRows;
    std::unique_ptr<frmEmployeeDailyAttendance> form;
    qint32 employee = 0;
    qint32 editedId = 0;
};

void everyStatementFailingLeavesNothing(bool edit, int expectedStatements,
                                        const QList<int>& savedRows) {
    msgbox_testing::setAutoAnswer(true);
    QStringList statements;
    {
        Prepared dry(edit);
        statements = dry.press();
        ASSERT_TRUE(dry.form->saved());
        EXPECT_EQ(dry.savedCounts(), savedRows);
    }
    std::cout << (edit ? "[ edit save ]" : "[ new save ]") << " statements: " << statements.size()
              << '\n';
    for (int i = 0; i < statements.size(); ++i)
        std::cout << "  " << i + 1 << ". " << statements[i].toStdString() << '\n';
    EXPECT_EQ(statements.size(), expectedStatements);

    for (int i = 0; i < statements.size(); ++i) {
        SCOPED_TRACE(
            QStringLiteral("statement %1: %2").arg(i + 1).arg(statements[i]).toStdString());
        Prepared p(edit);
        const QString before = p.t.dump();
        const QString shown = qz2test::formSnapshot(*p.form);
        const QString injected =
            QStringLiteral("Injected failure %1: the server went away").arg(i + 1);
        const QStringList ran = p.press(i, injected);
        ASSERT_EQ(ran.size(), i + 1) << "the save went on after its statement failed";
        EXPECT_EQ(ran.last(), statements[i]);
        EXPECT_FALSE(p.form->saved());
        EXPECT_EQ(p.t.dump(), before);
        EXPECT_EQ(qz2test::formSnapshot(*p.form), shown);
        ASSERT_EQ(msgbox_testing::shown().size(), 1);
        EXPECT_EQ(msgbox_testing::shown().first().text, injected);
        EXPECT_EQ(msgbox_testing::shown().first().title, QStringLiteral("Attendance Test"));
        EXPECT_EQ(msgbox_testing::shown().first().icon, MsgIcon::Information);

        // The clerk presses OK again and it goes through.
        msgbox_testing::clear();
        const QStringList again = p.press();
        EXPECT_TRUE(p.form->saved());
        EXPECT_TRUE(msgbox_testing::shown().isEmpty());
        EXPECT_EQ(again, statements);
        EXPECT_EQ(p.savedCounts(), savedRows);
        if (edit) {
            EXPECT_EQ(
                p.t.scalar(QStringLiteral(
                               "select count(*) from pEmployeeAttendence where eaEmpID=%1 and "
                               "eaStartDate='2026-11-02'")
                               .arg(p.employee))
                    .toInt(),
                1);
        }
    }
    msgbox_testing::setAutoAnswer(false);
}

TEST(SaveFaults, EveryStatementOfANewSaveFailingLeavesNothingAndOkAgainSaves) {
    // The lock wait, 2 checks, the check for an overlapping entry, prefix, number, the
    // check that the number is free, identifier, header, 8 pair lines, currency, 2 claims,
    // 3 lines of days without pairs; then the history: whether it is kept, the entry read
    // back (header, lines, claims), the user's name and the history row.
    everyStatementFailingLeavesNothing(false, 29, {1, 11, 2, 1});
}

TEST(SaveFaults, EveryStatementOfAnEditSaveFailingLeavesTheOldEntryAndOkAgainSaves) {
    // The lock wait, the monthly-entry overlap check, 2 checks, the check for an overlapping
    // entry, the stored header read again, 3 deletes, identifier, header, 7 pair lines,
    // currency, 1 claim, 4 lines of days without pairs; the history: whether it is kept and
    // the stored entry read (3) before the deletes, the new one read back (3), the user's name
    // and the history row.
    // The entry keeps the identifier it had (it was the highest), so its history has the row
    // of its creation and the row of the edit.
    everyStatementFailingLeavesNothing(true, 33, {1, 11, 1, 2});
}

TEST(SaveFaults, AFailingRefreshAfterAnEditLeavesTheEditSaved) {
    msgbox_testing::setAutoAnswer(true);
    Prepared p(true);
    setRegisterGrid(&p.registerRows);
    gstrMasterQuery =
        QStringLiteral("select eaID,eaNo,eaDate,eaEmpID,eaCancelled from pEmployeeAttendence");
    const QStringList ran = p.press(33, QStringLiteral("injected refresh failure"));
    gstrMasterQuery.clear();
    ASSERT_EQ(ran.size(), 34);
    EXPECT_TRUE(ran.last().startsWith(
        QLatin1String("select eaID,eaNo,eaDate,eaEmpID,eaCancelled from pEmployeeAttendence")));
    EXPECT_TRUE(p.form->saved());
    EXPECT_TRUE(msgbox_testing::shown().isEmpty());
    EXPECT_EQ(p.savedCounts(), (QList<int>{1, 11, 1, 2}));
    msgbox_testing::setAutoAnswer(false);
}

// ---------------------------------------------------------------------------------------
// Child processes

#ifndef QZ2_SAVE_CHILD
#error "QZ2_SAVE_CHILD names the child program"
#endif

struct ChildResult {
    int exitCode = -1;
    QProcess::ExitStatus status = QProcess::CrashExit;
    QStringList lines;
};

ChildResult runChild(const QStringList& args, int timeoutMs = 120000) {
    QProcess child;
    child.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    child.start(QStringLiteral(QZ2_SAVE_CHILD), args);
    ChildResult r;
    if (!child.waitForStarted(10000) || !child.waitForFinished(timeoutMs)) {
        child.kill();
        child.waitForFinished();
        ADD_FAILURE() << "the child did not finish: " << args.join(' ').toStdString();
        return r;
    }
    r.exitCode = child.exitCode();
    r.status = child.exitStatus();
    r.lines = QString::fromUtf8(child.readAllStandardOutput())
                  .split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    return r;
}

int statementsOf(const ChildResult& r) {
    const QStringList found = r.lines.filter(QStringLiteral("statements "));
    return found.isEmpty() ? -1 : found.last().section(QLatin1Char(' '), 1, 1).toInt();
}

// Opens the file only long enough to look at it.
struct FileLook {
    explicit FileLook(const QString& file) : t(file) {}
    QString integrity() const { return t.scalar("PRAGMA integrity_check").toString(); }
    TestDb t;
};

class SaveInterrupted : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(dir.isValid());
        pristine = dir.filePath(QStringLiteral("pristine.sqlite"));
        work = dir.filePath(QStringLiteral("work.sqlite"));
        qz2test::createDemoFile(pristine);
        FileLook look(pristine);
        employee = qz2test::freeEmployee(look.t.db);
        ASSERT_NE(employee, 0);
    }
    void useCopyOf(const QString& file) {
        QFile::remove(work);
        QFile::remove(work + QStringLiteral("-journal"));
        ASSERT_TRUE(QFile::copy(file, work));
    }
    QStringList childArgs() const {
        return {QStringLiteral("--db"),       work,
                QStringLiteral("--employee"), QString::number(employee),
                QStringLiteral("--start"),    kStart.toString(Qt::ISODate)};
    }
    QTemporaryDir dir;
    QString pristine;
    QString work;
    qint32 employee = 0;
};

TEST_F(SaveInterrupted, ANewSaveEndedBeforeAnyOfItsStatementsLeavesNoTraceAndACompleteOneIsWhole) {
    useCopyOf(pristine);
    const ChildResult dry = runChild(childArgs() << QStringLiteral("--count"));
    ASSERT_EQ(dry.exitCode, 0) << dry.lines.join('\n').toStdString();
    const int statements = statementsOf(dry);
    ASSERT_EQ(statements, 29);
    QString pristineDump;
    {
        FileLook look(pristine);
        pristineDump = look.t.dump();
    }
    for (int k = 1; k <= statements; ++k) {
        SCOPED_TRACE(k);
        useCopyOf(pristine);
        const ChildResult r =
            runChild(childArgs() << QStringLiteral("--exit-at") << QString::number(k));
        EXPECT_EQ(r.exitCode, 3) << "the child was to end before statement " << k;
        FileLook look(work);
        EXPECT_EQ(look.integrity(), QStringLiteral("ok"));
        EXPECT_EQ(look.t.dump(), pristineDump);
    }
    // Not interrupted: the whole entry is there.
    useCopyOf(pristine);
    const ChildResult whole = runChild(childArgs());
    ASSERT_EQ(whole.exitCode, 0);
    FileLook look(work);
    const int id = look.t.scalar("select max(eaID) from pEmployeeAttendence").toInt();
    EXPECT_EQ(look.t
                  .scalar(QStringLiteral(
                              "select count(*) from pEmpAttendanceDetail where eadAttendanceID=%1")
                              .arg(id))
                  .toInt(),
              11);
    EXPECT_EQ(look.t
                  .scalar(QStringLiteral("select count(*) from pEmpAttendanceAllowanceDeductions "
                                         "where eaadAttendanceID=%1")
                              .arg(id))
                  .toInt(),
              2);
    EXPECT_EQ(look.t.scalar(QStringLiteral("select count(*) from pEmpAttendanceHistory where ehNewID=%1 "
                                           "and ehAction='created'")
                                .arg(id))
                  .toInt(),
              1);
    EXPECT_EQ(
        whole.lines.filter(QStringLiteral("saved ")).value(0),
        QStringLiteral("saved %1 ").arg(id) +
            look.t
                .scalar(
                    QStringLiteral("select eaNo from pEmployeeAttendence where eaID=%1").arg(id))
                .toString());
}

TEST_F(SaveInterrupted, AnEditEndedAtAnyStatementLeavesTheOldEntryOrTheWholeEdit) {
    // A copy with one keyed entry to edit.
    const QString withEntry = dir.filePath(QStringLiteral("with-entry.sqlite"));
    useCopyOf(pristine);
    ASSERT_EQ(runChild(childArgs()).exitCode, 0);
    ASSERT_TRUE(QFile::copy(work, withEntry));
    qint32 id = 0;
    QString before;
    {
        FileLook look(withEntry);
        id = look.t.scalar("select max(eaID) from pEmployeeAttendence").toInt();
        before = look.t.dump();
    }
    const QStringList editArgs = childArgs() << QStringLiteral("--edit") << QString::number(id);
    useCopyOf(withEntry);
    const ChildResult dry = runChild(QStringList(editArgs) << QStringLiteral("--count"));
    ASSERT_EQ(dry.exitCode, 0) << dry.lines.join('\n').toStdString();
    const int statements = statementsOf(dry);
    // The edit's 33 statements, then the register row's refresh after the commit.
    ASSERT_EQ(statements, 34);
    QString edited;
    {
        FileLook look(work);
        edited = look.t.dump();
    }
    ASSERT_NE(edited, before);
    for (int k = 1; k <= statements; ++k) {
        SCOPED_TRACE(k);
        useCopyOf(withEntry);
        const ChildResult r =
            runChild(QStringList(editArgs) << QStringLiteral("--exit-at") << QString::number(k));
        EXPECT_EQ(r.exitCode, 3);
        FileLook look(work);
        EXPECT_EQ(look.integrity(), QStringLiteral("ok"));
        // Before the commit nothing of the edit is there; the refresh comes after it.
        EXPECT_EQ(look.t.dump(), k < statements ? before : edited);
    }
}

// Waits until the child has written a line equal to `line`; the lines read so far are
// kept in `seen`.
bool waitForLine(QProcess& child, const QString& line, QStringList& seen, int timeoutMs = 60000) {
    QElapsedTimer waited;
    waited.start();
    QString partial;
    while (waited.elapsed() < timeoutMs) {
        if (seen.contains(line)) return true;
        if (child.state() == QProcess::NotRunning && child.bytesAvailable() == 0) return false;
        child.waitForReadyRead(100);
        partial += QString::fromUtf8(child.readAllStandardOutput());
        while (partial.contains(QLatin1Char('\n'))) {
            const qsizetype end = partial.indexOf(QLatin1Char('\n'));
            seen << partial.left(end);
            partial.remove(0, end + 1);
        }
    }
    return seen.contains(line);
}

void touch(const QString& file) {
    QFile flag(file);
    EXPECT_TRUE(flag.open(QIODevice::WriteOnly));
}

TEST_F(SaveInterrupted, ALockHeldByAThirdProcessAtEachStepOfKeyingIsReportedAndNothingHalfMadeSaves) {
    // Keying a new entry: choosing the employee, Populate, OK. A third process holds the
    // database's exclusive lock for far longer than the keying process's lock wait while
    // one of the steps runs: the step fails with the database's message, OK refuses, and
    // once the lock is gone the step run again gives the same month as without the lock,
    // saved once.
    const QStringList keyed = {QStringLiteral("--keyed"), QStringLiteral("--read-wait"),
                               QStringLiteral("200")};
    useCopyOf(pristine);
    int headersBefore = 0;
    {
        FileLook look(work);
        headersBefore = look.t.scalar("select count(*) from pEmployeeAttendence").toInt();
    }
    const ChildResult dry = runChild(childArgs() + keyed);
    ASSERT_EQ(dry.exitCode, 0) << dry.lines.join('\n').toStdString();
    const QString period = dry.lines.filter(QStringLiteral("period ")).value(0);
    ASSERT_FALSE(period.isEmpty());
    EXPECT_TRUE(dry.lines.filter(QStringLiteral("error ")).isEmpty());
    const QDate from = QDate::fromString(period.section(' ', 1, 1), Qt::ISODate);
    const QDate to = QDate::fromString(period.section(' ', 2, 2), Qt::ISODate);
    ASSERT_TRUE(from.isValid() && to.isValid());

    int nothingLost = 0;
    for (const QString& step : {QStringLiteral("employee"), QStringLiteral("populate"),
                               QStringLiteral("ok")}) {
        SCOPED_TRACE(step.toStdString());
        useCopyOf(pristine);
        const QString go = dir.filePath(QStringLiteral("go-") + step);
        const QString released = dir.filePath(QStringLiteral("released-") + step);
        QProcess clerk;
        clerk.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        clerk.start(QStringLiteral(QZ2_SAVE_CHILD),
                    childArgs() + keyed +
                        QStringList{QStringLiteral("--lock-at"), step, QStringLiteral("--go"), go,
                                    QStringLiteral("--released"), released});
        QStringList lines;
        ASSERT_TRUE(waitForLine(clerk, QStringLiteral("waiting"), lines));
        QProcess holder;
        holder.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        holder.start(QStringLiteral(QZ2_SAVE_CHILD),
                     {QStringLiteral("--db"), work, QStringLiteral("--hold-exclusive"),
                      QStringLiteral("2500")});
        QStringList held;
        ASSERT_TRUE(waitForLine(holder, QStringLiteral("holding"), held));
        touch(go);
        ASSERT_TRUE(waitForLine(holder, QStringLiteral("released"), held));
        holder.waitForFinished(10000);
        touch(released);
        ASSERT_TRUE(clerk.waitForFinished(60000));
        waitForLine(clerk, QStringLiteral("(end)"), lines, 200);
        EXPECT_EQ(clerk.exitCode(), 0) << lines.join('\n').toStdString();

        // The clerk was told: the database's own message, and OK refused.
        const QStringList errors = lines.filter(QRegularExpression(QStringLiteral("^error ")));
        const QStringList refused = lines.filter(QRegularExpression(QStringLiteral("^refused ")));
        if (step != QLatin1String("ok")) {
            EXPECT_FALSE(errors.isEmpty());
        }
        for (const QString& e : errors)
            EXPECT_TRUE(e.contains(QLatin1String("locked"))) << e.toStdString();
        ASSERT_EQ(refused.size(), 1) << lines.join('\n').toStdString();
        if (step == QLatin1String("ok")) {
            EXPECT_TRUE(refused.first().contains(QLatin1String("locked")));
        } else {
            EXPECT_EQ(refused.first(), QStringLiteral("refused ") + entry::kMsgStepUnfinished);
        }
        // The month as without the lock, saved once and whole: a line for every day.
        EXPECT_EQ(lines.filter(QStringLiteral("period ")).value(0), period);
        FileLook look(work);
        EXPECT_EQ(look.integrity(), QStringLiteral("ok"));
        const int headers = look.t.scalar("select count(*) from pEmployeeAttendence").toInt();
        EXPECT_EQ(headers, headersBefore + 1);
        const int id = look.t.scalar("select max(eaID) from pEmployeeAttendence").toInt();
        const int detailDays =
            look.t
                .scalar(QStringLiteral("select count(distinct eadDate) from pEmpAttendanceDetail "
                                       "where eadAttendanceID=%1")
                            .arg(id))
                .toInt();
        EXPECT_EQ(detailDays, from.daysTo(to) + 1);
        if (clerk.exitCode() == 0 && headers == headersBefore + 1 &&
            detailDays == from.daysTo(to) + 1 &&
            lines.filter(QStringLiteral("period ")).value(0) == period)
            ++nothingLost;
    }
    std::cout << "[ lock held at choosing, Populate, OK ] runs with nothing lost: " << nothingLost
              << " of 3\n";
    EXPECT_EQ(nothingLost, 3);
}

// Two clerks on one stored entry, in separate processes: each opens it (an edit, or the
// register's reason dialog) and waits; the test then lets them press OK one after the
// other in either order, or at the same moment.
class SaveRaces : public SaveInterrupted {
protected:
    struct Clerk {
        std::unique_ptr<QProcess> process = std::make_unique<QProcess>();
        QStringList lines;
        QString go;
        bool succeeded() const {
            return process->exitCode() == 0 &&
                   (!lines.filter(QRegularExpression(QStringLiteral("^saved "))).isEmpty() ||
                    lines.contains(QStringLiteral("cancelled")));
        }
        bool told() const {
            return !lines.filter(QRegularExpression(QStringLiteral("^error "))).isEmpty();
        }
    };
    void SetUp() override {
        SaveInterrupted::SetUp();
        const QString keyed = dir.filePath(QStringLiteral("keyed.sqlite"));
        useCopyOf(pristine);
        ASSERT_EQ(runChild(childArgs()).exitCode, 0);
        ASSERT_TRUE(QFile::copy(work, keyed));
        FileLook look(keyed);
        id = look.t.scalar("select max(eaID) from pEmployeeAttendence").toInt();
        number = look.t.scalar(QStringLiteral("select eaNo from pEmployeeAttendence where eaID=%1")
                                   .arg(id))
                     .toString();
        withEntry = keyed;
    }
    std::unique_ptr<Clerk> open(const QStringList& what, const QString& go) {
        auto c = std::make_unique<Clerk>();
        c->go = go;
        c->process->setProcessChannelMode(QProcess::ForwardedErrorChannel);
        c->process->start(QStringLiteral(QZ2_SAVE_CHILD),
                          childArgs() + what +
                              QStringList{QStringLiteral("--wait-before-ok"), go,
                                          QStringLiteral("--retries"), QStringLiteral("3")});
        EXPECT_TRUE(waitForLine(*c->process, QStringLiteral("loaded"), c->lines));
        return c;
    }
    void finish(Clerk& c) {
        EXPECT_TRUE(c.process->waitForFinished(60000));
        waitForLine(*c.process, QStringLiteral("(end)"), c.lines, 100);
    }
    // Order 0: A presses OK first, then B; 1: B first, then A; 2: both at one moment.
    void race(Clerk& a, Clerk& b, int order) {
        if (order == 2) {
            touch(a.go);
            finish(a);
            finish(b);
            return;
        }
        Clerk& first = order == 0 ? a : b;
        Clerk& second = order == 0 ? b : a;
        touch(first.go);
        finish(first);
        touch(second.go);
        finish(second);
    }
    QStringList editArgs() const { return {QStringLiteral("--edit"), QString::number(id)}; }
    QStringList cancelArgs() const { return {QStringLiteral("--cancel"), QString::number(id)}; }
    // Entries of the keyed period: live, and cancelled with the reason given.
    int live(const FileLook& look) const {
        return look.t
            .scalar(QStringLiteral("select count(*) from pEmployeeAttendence where eaEmpID=%1 and "
                                   "eaStartDate like '%2%' and eaCancelled=0")
                        .arg(employee)
                        .arg(kStart.toString(Qt::ISODate)))
            .toInt();
    }
    int cancelledWithReason(const FileLook& look) const {
        return look.t
            .scalar(QStringLiteral("select count(*) from pEmployeeAttendence where eaEmpID=%1 and "
                                   "eaStartDate like '%2%' and eaCancelled=1 and "
                                   "eaCancelledRemarks like '%:Keyed twice'")
                        .arg(employee)
                        .arg(kStart.toString(Qt::ISODate)))
            .toInt();
    }
    int numbered(const FileLook& look) const {
        return look.t
            .scalar(QStringLiteral("select count(*) from pEmployeeAttendence where eaNo='%1'")
                        .arg(number))
            .toInt();
    }
    qint32 id = 0;
    QString number;
    QString withEntry;
};

TEST_F(SaveRaces, AnEditAndACancellationOfOneEntryInAnyOrderKeepTheCancellation) {
    int nothingLost = 0;
    int runs = 0;
    for (int order = 0; order < 3; ++order) {
        for (int round = 0; round < 2; ++round) {
            SCOPED_TRACE(QStringLiteral("order %1, round %2").arg(order).arg(round).toStdString());
            ++runs;
            useCopyOf(withEntry);
            const QString goA = dir.filePath(QStringLiteral("go-a"));
            const QString goB = order == 2 ? goA : dir.filePath(QStringLiteral("go-b"));
            QFile::remove(goA);
            QFile::remove(goB);
            auto editor = open(editArgs(), goA);
            auto canceller = open(cancelArgs(), goB);
            race(*editor, *canceller, order);
            FileLook look(work);
            const QString rows =
                qz2test::table(look.t, QStringLiteral("select eaID, eaNo, eaCancelled, "
                                                      "eaCancelledRemarks from "
                                                      "pEmployeeAttendence where eaEmpID=%1")
                                           .arg(employee))
                    .join('|');
            // The cancellation always stands: pressed after the edit's save it cancels the
            // saved entry; pressed before the edit's OK, the edit is refused and the clerk
            // told. Never a live entry of the period after it, never the reason lost.
            EXPECT_TRUE(canceller->succeeded()) << canceller->lines.join('|').toStdString();
            if (order == 1) {
                EXPECT_FALSE(editor->succeeded());
            }
            if (!editor->succeeded()) {
                EXPECT_TRUE(editor->told()) << editor->lines.join('|').toStdString();
                EXPECT_FALSE(editor->lines.filter(QStringLiteral("was cancelled since you opened it"))
                                 .isEmpty())
                    << editor->lines.join('|').toStdString();
            }
            EXPECT_EQ(look.integrity(), QStringLiteral("ok"));
            const int stillLive = live(look);
            const int cancelled = cancelledWithReason(look);
            EXPECT_EQ(stillLive, 0) << rows.toStdString();
            EXPECT_EQ(cancelled, 1) << rows.toStdString();
            EXPECT_EQ(numbered(look), 1) << rows.toStdString();
            if (canceller->succeeded() && (editor->succeeded() || editor->told()) &&
                stillLive == 0 && cancelled == 1 && numbered(look) == 1)
                ++nothingLost;
        }
    }
    std::cout << "[ edit against cancel, 3 orders ] runs with nothing lost: " << nothingLost
              << " of " << runs << '\n';
    EXPECT_EQ(nothingLost, runs);
}

TEST_F(SaveRaces, TwoEditsOfOneEntrySaveExactlyOnce) {
    int nothingLost = 0;
    int runs = 0;
    for (int order = 0; order < 3; ++order) {
        for (int round = 0; round < 2; ++round) {
            SCOPED_TRACE(QStringLiteral("order %1, round %2").arg(order).arg(round).toStdString());
            ++runs;
            useCopyOf(withEntry);
            const QString goA = dir.filePath(QStringLiteral("go-a"));
            const QString goB = order == 2 ? goA : dir.filePath(QStringLiteral("go-b"));
            QFile::remove(goA);
            QFile::remove(goB);
            auto a = open(editArgs(), goA);
            auto b = open(editArgs(), goB);
            race(*a, *b, order);
            EXPECT_NE(a->succeeded(), b->succeeded())
                << a->lines.join('|').toStdString() << " / " << b->lines.join('|').toStdString();
            const Clerk& loser = a->succeeded() ? *b : *a;
            EXPECT_TRUE(loser.told());
            EXPECT_TRUE(loser.lines.filter(QStringLiteral("since you opened it")).size() > 0)
                << loser.lines.join('|').toStdString();
            FileLook look(work);
            EXPECT_EQ(look.integrity(), QStringLiteral("ok"));
            EXPECT_EQ(live(look), 1);
            EXPECT_EQ(numbered(look), 1);
            if (a->succeeded() != b->succeeded() && loser.told() && live(look) == 1 &&
                numbered(look) == 1)
                ++nothingLost;
        }
    }
    std::cout << "[ two edits of one entry, 3 orders ] runs with nothing lost: " << nothingLost
              << " of " << runs << '\n';
    EXPECT_EQ(nothingLost, runs);
}

TEST_F(SaveRaces, ALockHeldByAThirdProcessWhileEditingOrCancellingIsReportedAndNothingHalfDone) {
    // The clerk has the entry open (an edit, or the reason dialog); a third process takes the
    // exclusive lock and keeps it far longer than the clerk's lock wait; the clerk presses
    // OK meanwhile. The clerk is told the database's message and nothing is written; pressed
    // again once the lock is gone, the edit or the cancellation goes through, once.
    int nothingLost = 0;
    for (const bool cancelling : {false, true}) {
        SCOPED_TRACE(cancelling ? "cancelling" : "editing");
        useCopyOf(withEntry);
        QString before;
        {
            FileLook look(work);
            before = look.t.dump();
        }
        const QString go = dir.filePath(cancelling ? QStringLiteral("go-c") : QStringLiteral("go-e"));
        QFile::remove(go);
        Clerk clerk;
        clerk.go = go;
        clerk.process->setProcessChannelMode(QProcess::ForwardedErrorChannel);
        clerk.process->start(QStringLiteral(QZ2_SAVE_CHILD),
                             childArgs() + (cancelling ? cancelArgs() : editArgs()) +
                                 QStringList{QStringLiteral("--wait-before-ok"), go,
                                             QStringLiteral("--read-wait"), QStringLiteral("200"),
                                             QStringLiteral("--retries"), QStringLiteral("0")});
        ASSERT_TRUE(waitForLine(*clerk.process, QStringLiteral("loaded"), clerk.lines));
        QProcess holder;
        holder.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        holder.start(QStringLiteral(QZ2_SAVE_CHILD),
                     {QStringLiteral("--db"), work, QStringLiteral("--hold-exclusive"),
                      QStringLiteral("2500")});
        QStringList held;
        ASSERT_TRUE(waitForLine(holder, QStringLiteral("holding"), held));
        touch(go);
        finish(clerk);
        const QStringList errors =
            clerk.lines.filter(QRegularExpression(QStringLiteral("^error ")));
        EXPECT_FALSE(clerk.succeeded()) << clerk.lines.join('|').toStdString();
        EXPECT_FALSE(errors.isEmpty()) << clerk.lines.join('|').toStdString();
        for (const QString& e : errors)
            EXPECT_TRUE(e.contains(QLatin1String("locked"))) << e.toStdString();
        ASSERT_TRUE(waitForLine(holder, QStringLiteral("released"), held));
        holder.waitForFinished(10000);
        bool untouched = false;
        {
            FileLook look(work);
            EXPECT_EQ(look.integrity(), QStringLiteral("ok"));
            untouched = look.t.dump() == before;
            EXPECT_TRUE(untouched);
        }
        // Pressed again, the lock gone.
        const ChildResult again =
            runChild(childArgs() + (cancelling ? cancelArgs() : editArgs()) +
                     QStringList{QStringLiteral("--retries"), QStringLiteral("0")});
        EXPECT_EQ(again.exitCode, 0) << again.lines.join('|').toStdString();
        FileLook look(work);
        const int stillLive = live(look);
        const int cancelled = cancelledWithReason(look);
        EXPECT_EQ(stillLive, cancelling ? 0 : 1);
        EXPECT_EQ(cancelled, cancelling ? 1 : 0);
        EXPECT_EQ(numbered(look), 1);
        if (untouched && !errors.isEmpty() && again.exitCode == 0 &&
            stillLive == (cancelling ? 0 : 1) && cancelled == (cancelling ? 1 : 0) &&
            numbered(look) == 1)
            ++nothingLost;
    }
    std::cout << "[ lock held at editing and cancelling ] runs with nothing lost: " << nothingLost
              << " of 2\n";
    EXPECT_EQ(nothingLost, 2);
}

TEST_F(SaveRaces, TwoNewEntriesOfOneEmployeeForOnePeriodSaveExactlyOnce) {
    // Order 0 and 1: one clerk's OK after the other's; 2: both at one moment (four rounds).
    int nothingLost = 0;
    int runs = 0;
    for (int round = 0; round < 6; ++round) {
        const int order = std::min(round, 2);
        SCOPED_TRACE(QStringLiteral("round %1").arg(round).toStdString());
        ++runs;
        useCopyOf(pristine);
        const QString go = dir.filePath(QStringLiteral("go-new"));
        QFile::remove(go);
        const QStringList args = {QStringLiteral("--db"),      work,
                                  QStringLiteral("--employee"), QString::number(employee),
                                  QStringLiteral("--start"),    QStringLiteral("2027-01-04"),
                                  QStringLiteral("--retries"),  QStringLiteral("2"),
                                  QStringLiteral("--go"),       go};
        QList<std::shared_ptr<QProcess>> clerks;
        QList<QStringList> said;
        const auto startClerk = [&] {
            auto c = std::make_shared<QProcess>();
            c->setProcessChannelMode(QProcess::ForwardedErrorChannel);
            c->start(QStringLiteral(QZ2_SAVE_CHILD), args);
            EXPECT_TRUE(c->waitForStarted(10000));
            clerks << c;
        };
        const auto finishClerk = [&](QProcess& c) {
            EXPECT_TRUE(c.waitForFinished(60000));
            said << QString::fromUtf8(c.readAllStandardOutput())
                        .split(QLatin1Char('\n'), Qt::SkipEmptyParts);
        };
        if (order == 2) {
            startClerk();
            startClerk();
            QTest::qWait(300);
            touch(go);
            finishClerk(*clerks[0]);
            finishClerk(*clerks[1]);
        } else {
            touch(go);
            startClerk();
            finishClerk(*clerks[0]);
            startClerk();
            finishClerk(*clerks[1]);
        }
        int saved = 0;
        bool loserTold = false;
        for (int i = 0; i < 2; ++i) {
            if (clerks[i]->exitCode() == 0 && !said[i].filter(QStringLiteral("saved ")).isEmpty())
                ++saved;
            else
                loserTold = !said[i].filter(QStringLiteral("error The period overlaps")).isEmpty();
        }
        EXPECT_EQ(saved, 1) << said[0].join('|').toStdString() << " / "
                            << said[1].join('|').toStdString();
        EXPECT_TRUE(loserTold);
        FileLook look(work);
        EXPECT_EQ(look.integrity(), QStringLiteral("ok"));
        const int headers =
            look.t
                .scalar(QStringLiteral("select count(*) from pEmployeeAttendence where eaEmpID=%1 "
                                       "and eaStartDate like '2027-01-04%'")
                            .arg(employee))
                .toInt();
        EXPECT_EQ(headers, 1);
        const int lines =
            look.t
                .scalar(QStringLiteral("select count(*) from pEmpAttendanceDetail where "
                                       "eadAttendanceID in (select eaID from pEmployeeAttendence "
                                       "where eaEmpID=%1 and eaStartDate like '2027-01-04%')")
                            .arg(employee))
                .toInt();
        EXPECT_EQ(lines, 11);
        if (saved == 1 && loserTold && headers == 1 && lines == 11) ++nothingLost;
    }
    std::cout << "[ two new entries, one period ] runs with nothing lost: " << nothingLost
              << " of " << runs << '\n';
    EXPECT_EQ(nothingLost, runs);
}

// ---------------------------------------------------------------------------------------
// A third program's lock, or another clerk's commit, just before each statement in turn

// Another program on the database file, on a connection of its own in the test process
// (Qt's SQLite driver, whatever route the clerk takes). It takes the exclusive lock
// (BEGIN EXCLUSIVE) at once when that can be had. While the clerk's save or cancellation
// holds the write lock it cannot: the attempt is refused as busy, and the program holds a
// read lock instead (a transaction that has read a table), which the clerk's commit has to
// wait for.
class ThirdProgram {
public:
    enum class Lock { None, Exclusive, Shared };
    explicit ThirdProgram(const QString& file)
        : m_name(QStringLiteral("third-program-%1").arg(++s_connections)) {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_name);
        db.setDatabaseName(file);
        db.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=0"));
        EXPECT_TRUE(db.open()) << db.lastError().text().toStdString();
    }
    ~ThirdProgram() {
        release();
        QSqlDatabase::removeDatabase(m_name);
    }
    ThirdProgram(const ThirdProgram&) = delete;
    ThirdProgram& operator=(const ThirdProgram&) = delete;
    Lock take() {
        QSqlDatabase db = QSqlDatabase::database(m_name);
        QSqlQuery exclusive(db);
        if (exclusive.exec(QStringLiteral("BEGIN EXCLUSIVE"))) return m_held = Lock::Exclusive;
        refusal = exclusive.lastError().text();
        QSqlQuery read(db);
        if (read.exec(QStringLiteral("BEGIN")) &&
            read.exec(QStringLiteral("select count(*) from pEmployeeAttendence")) && read.next()) {
            read.finish();  // the transaction keeps the read lock
            return m_held = Lock::Shared;
        }
        ADD_FAILURE() << "no lock could be taken: " << read.lastError().text().toStdString();
        QSqlQuery(db).exec(QStringLiteral("ROLLBACK"));
        return Lock::None;
    }
    void release() {
        if (m_held == Lock::None) return;
        QSqlQuery end(QSqlDatabase::database(m_name));
        EXPECT_TRUE(end.exec(QStringLiteral("ROLLBACK"))) << end.lastError().text().toStdString();
        m_held = Lock::None;
    }
    QString refusal;  // the database's message when the exclusive lock was refused

private:
    static inline int s_connections = 0;
    QString m_name;
    Lock m_held = Lock::None;
};

QString dumpOf(const QString& file) {
    FileLook look(file);
    return look.t.dump();
}

// Waits until `file` exists while `child` runs.
bool waitForFlag(const QString& file, QProcess& child, int timeoutMs = 60000) {
    QElapsedTimer waited;
    waited.start();
    while (!QFileInfo::exists(file) && waited.elapsed() < timeoutMs) {
        if (child.state() == QProcess::NotRunning) return QFileInfo::exists(file);
        child.waitForFinished(5);
    }
    return QFileInfo::exists(file);
}

// Waits until the child has written a line matching `pattern`; returns it ("" on timeout or
// when the child ended without one). The lines read so far are kept in `seen`.
QString waitForLineLike(QProcess& child, const QRegularExpression& pattern, QStringList& seen,
                        int timeoutMs = 60000) {
    QElapsedTimer waited;
    waited.start();
    QString partial;
    for (;;) {
        for (const QString& line : seen)
            if (pattern.match(line).hasMatch()) return line;
        if (waited.elapsed() > timeoutMs) return {};
        if (child.state() == QProcess::NotRunning && child.bytesAvailable() == 0) return {};
        child.waitForReadyRead(50);
        partial += QString::fromUtf8(child.readAllStandardOutput());
        while (partial.contains(QLatin1Char('\n'))) {
            const qsizetype end = partial.indexOf(QLatin1Char('\n'));
            seen << partial.left(end);
            partial.remove(0, end + 1);
        }
    }
}

// The statements the dry run listed for one step (--count): "statements <n> [step]", then
// "sql <i> <statement>" for each.
QStringList listedStatements(const QStringList& lines, const QString& step) {
    const QRegularExpression heading(
        QStringLiteral("^statements (\\d+)") +
        (step.isEmpty() ? QStringLiteral("$") : QStringLiteral(" ") + step + QLatin1Char('$')));
    QStringList out;
    for (int i = 0; i < lines.size(); ++i) {
        const QRegularExpressionMatch m = heading.match(lines[i]);
        if (!m.hasMatch()) continue;
        const int n = m.captured(1).toInt();
        for (int j = 1; j <= n && i + j < lines.size(); ++j)
            out << lines[i + j].section(QLatin1Char(' '), 2);
        return out;
    }
    return out;
}

QString freshFolder(const QTemporaryDir& dir, const QString& name) {
    QDir folder(dir.filePath(name));
    folder.removeRecursively();
    EXPECT_TRUE(QDir().mkpath(folder.path()));
    return folder.path();
}

// Whether a message the clerk was shown says the database was busy: its own "locked" or
// "busy" text, or the form's refusal of OK after a step that could not read.
bool saysBusy(const QString& line) {
    const QString text = line.section(QLatin1Char(' '), 1);
    if (line.startsWith(QLatin1String("refused ")) && text == entry::kMsgStepUnfinished)
        return true;
    return text.contains(QLatin1String("locked"), Qt::CaseInsensitive) ||
           text.contains(QLatin1String("busy"), Qt::CaseInsensitive);
}

// One step of a clerk run once per statement K of it: just before statement K the clerk's
// process stops (--hold-at), a third program takes its lock on the database, and the clerk
// goes on, meets the lock and waits its short lock wait. Once the clerk has been told, the
// lock is let go and the clerk presses again. After each run: while the lock was held the
// database was exactly as before, or, when the change had already committed before statement
// K, exactly as after it; the clerk was told the database was busy whenever nothing was
// saved; and in the end the database holds the whole change once, as a run without the lock
// leaves it (every table compared, the history included).
class LockAtEveryStatement : public SaveRaces {
protected:
    // `step` names the keying step whose statements are held ("" for the press of OK);
    // `stopsAtTheLock`: the step asks nothing more once a statement has met the exclusive
    // lock.
    void run(const QString& start, const QStringList& args, const QString& step,
             bool stopsAtTheLock = true) {
        const QString title =
            QString::fromUtf8(::testing::UnitTest::GetInstance()->current_test_info()->name());
        useCopyOf(start);
        const QString before = dumpOf(work);
        const ChildResult dry = runChild(QStringList(args) << QStringLiteral("--count"));
        ASSERT_EQ(dry.exitCode, 0) << dry.lines.join('\n').toStdString();
        const QStringList statements = listedStatements(dry.lines, step);
        ASSERT_FALSE(statements.isEmpty()) << dry.lines.join('\n').toStdString();
        const QString expected = dumpOf(work);
        ASSERT_NE(expected, before);
        std::cout << "[ " << title.toStdString() << " ] statements: " << statements.size() << '\n';

        int nothingLost = 0;
        int exclusive = 0;
        int shared = 0;
        int savedAtOnce = 0;
        int askedOn = 0;  // runs whose step asked more after meeting the exclusive lock
        for (int k = 1; k <= statements.size(); ++k) {
            SCOPED_TRACE(
                QStringLiteral("statement %1: %2").arg(k).arg(statements[k - 1]).toStdString());
            useCopyOf(start);
            const QString flags = freshFolder(dir, QStringLiteral("hold-%1").arg(k));
            const QDir flag(flags);
            QProcess clerk;
            clerk.setProcessChannelMode(QProcess::ForwardedErrorChannel);
            clerk.start(QStringLiteral(QZ2_SAVE_CHILD),
                        QStringList(args) << QStringLiteral("--hold-at") << QString::number(k)
                                          << QStringLiteral("--flag-dir") << flags);
            if (!waitForFlag(flag.filePath(QStringLiteral("at")), clerk)) {
                clerk.kill();
                clerk.waitForFinished();
                ADD_FAILURE() << "the clerk never reached statement " << k;
                continue;
            }
            // What the clerk's process had committed when it reached statement K.
            const bool committedAtK = dumpOf(work) == expected;
            ThirdProgram third(work);
            const ThirdProgram::Lock lock = third.take();
            if (lock == ThirdProgram::Lock::Exclusive) ++exclusive;
            if (lock == ThirdProgram::Lock::Shared) ++shared;
            if (lock == ThirdProgram::Lock::Shared) {
                EXPECT_TRUE(third.refusal.contains(QLatin1String("locked"), Qt::CaseInsensitive) ||
                            third.refusal.contains(QLatin1String("busy"), Qt::CaseInsensitive))
                    << third.refusal.toStdString();
            }
            touch(flag.filePath(QStringLiteral("go-on")));
            QStringList lines;
            const bool stepEnded = waitForLine(clerk, QStringLiteral("after-hold"), lines, 30000);
            EXPECT_TRUE(stepEnded) << lines.join('|').toStdString();
            third.release();
            const QString whileLocked = dumpOf(work);
            touch(flag.filePath(QStringLiteral("released")));
            EXPECT_TRUE(clerk.waitForFinished(60000));
            waitForLine(clerk, QStringLiteral("(end)"), lines, 100);
            const QString after = dumpOf(work);

            const qsizetype held = lines.indexOf(QStringLiteral("after-hold"));
            QStringList shown;
            for (qsizetype i = 0; i < held; ++i)
                if (lines[i].startsWith(QLatin1String("error ")) ||
                    lines[i].startsWith(QLatin1String("refused ")))
                    shown << lines[i];
            bool right = stepEnded && clerk.exitCode() == 0 && after == expected &&
                         lock != ThirdProgram::Lock::None;
            if (committedAtK) {
                // The change had committed: the lock only meets what follows the commit.
                EXPECT_TRUE(shown.isEmpty()) << shown.join('|').toStdString();
                EXPECT_EQ(whileLocked, expected);
                right = right && shown.isEmpty() && whileLocked == expected;
                ++savedAtOnce;
            } else {
                // A step that met the exclusive lock stops at the first statement that reads
                // the database: asking again would only wait out the lock once more. Only a
                // pragma, which reads the connection's own settings, passes a held lock.
                if (lock == ThirdProgram::Lock::Exclusive) {
                    QStringList asked;
                    for (qsizetype i = 0; i < held; ++i)
                        if (lines[i].startsWith(QLatin1String("asked "))) asked << lines[i].mid(6);
                    const bool stopped =
                        !asked.isEmpty() &&
                        std::all_of(asked.begin(), asked.end() - 1, [](const QString& sql) {
                            return sql.startsWith(QLatin1String("PRAGMA"), Qt::CaseInsensitive);
                        });
                    if (!stopped) ++askedOn;
                    if (stopsAtTheLock) {
                        EXPECT_TRUE(stopped) << "asked after the lock was met:\n"
                                             << asked.join('\n').toStdString();
                        right = right && stopped;
                    }
                }
                EXPECT_FALSE(shown.isEmpty()) << lines.join('|').toStdString();
                for (const QString& m : shown) EXPECT_TRUE(saysBusy(m)) << m.toStdString();
                EXPECT_EQ(whileLocked, before) << "a half-made change while the lock was held";
                right = right && !shown.isEmpty() &&
                        std::all_of(shown.begin(), shown.end(), saysBusy) && whileLocked == before;
            }
            EXPECT_EQ(clerk.exitCode(), 0) << lines.join('|').toStdString();
            EXPECT_EQ(after, expected) << lines.join('|').toStdString();
            {
                FileLook look(work);
                EXPECT_EQ(look.integrity(), QStringLiteral("ok"));
            }
            if (right) ++nothingLost;
        }
        std::cout << "[ " << title.toStdString() << " ] " << nothingLost << " of "
                  << statements.size() << " runs, nothing lost (exclusive lock at " << exclusive
                  << ", read lock at " << shared << " while the write lock was the clerk's; "
                  << savedAtOnce << " after the commit; " << askedOn
                  << " asked on after meeting the lock)\n";
        RecordProperty("runs_nothing_lost", nothingLost);
        RecordProperty("runs", static_cast<int>(statements.size()));
        EXPECT_EQ(nothingLost, statements.size());
    }
    // A clerk whose every statement waits 200 ms for a lock.
    QStringList shortWait() const { return {QStringLiteral("--read-wait"), QStringLiteral("200")}; }
    QStringList keyedAt(const QString& step) const {
        return childArgs() + shortWait() +
               QStringList{QStringLiteral("--keyed"), QStringLiteral("--lock-at"), step};
    }
};

TEST_F(LockAtEveryStatement, ChoosingTheEmployee) {
    // The absent-day list's holidays are read with their failure trapped, and the newest
    // work-time setting is read after them even when they failed: that step waits out the
    // lock twice. Nothing read after the failure is kept (the step stays unfinished).
    run(pristine, keyedAt(QStringLiteral("employee")), QStringLiteral("employee"),
        /*stopsAtTheLock=*/false);
}

TEST_F(LockAtEveryStatement, Populate) {
    run(pristine, keyedAt(QStringLiteral("populate")), QStringLiteral("populate"));
}

TEST_F(LockAtEveryStatement, SavingANewEntry) {
    run(pristine,
        childArgs() + shortWait() + QStringList{QStringLiteral("--retries"), QStringLiteral("1")},
        QString());
}

TEST_F(LockAtEveryStatement, SavingAnEdit) {
    run(withEntry,
        childArgs() + shortWait() + editArgs() +
            QStringList{QStringLiteral("--retries"), QStringLiteral("1")},
        QString());
}

TEST_F(LockAtEveryStatement, CancellingAnEntry) {
    run(withEntry, childArgs() + shortWait() + cancelArgs(), QString());
}

// Two clerks have one stored entry open; the first presses OK, and the second's whole
// action (their cancellation, or their own edit) is pressed just before statement K of the
// first's save, for every K of it. The second commits there when it can; while the first
// holds the save's write lock it cannot, is told the database is busy, and presses again once
// the first is done.
class InterleavedSaves : public SaveRaces {
protected:
    struct Run {
        QStringList first;   // the first clerk's lines
        QStringList second;  // the second clerk's
        QString secondAtK;   // the second's outcome at K: "saved ...", "cancelled" or "error ..."
        bool firstCommittedAtK = false;
        int firstExit = -1;
        int secondExit = -1;
    };
    // The database after the given clerks' actions, one after the other, each alone.
    QString after(const QList<QStringList>& actions) {
        useCopyOf(withEntry);
        for (const QStringList& action : actions) {
            const ChildResult r = runChild(childArgs() + action);
            EXPECT_EQ(r.exitCode, 0) << r.lines.join('|').toStdString();
        }
        return dumpOf(work);
    }
    QStringList countedEdit() {
        useCopyOf(withEntry);
        const ChildResult dry = runChild(childArgs() + editArgs() << QStringLiteral("--count"));
        EXPECT_EQ(dry.exitCode, 0) << dry.lines.join('|').toStdString();
        return listedStatements(dry.lines, QString());
    }
    Run interleave(int k, const QStringList& secondAction) {
        Run r;
        useCopyOf(withEntry);
        const QString before = dumpOf(work);
        const QString flags = freshFolder(dir, QStringLiteral("race-%1").arg(k));
        const QDir flag(flags);
        Clerk second;
        second.process->setProcessChannelMode(QProcess::ForwardedErrorChannel);
        second.process->start(QStringLiteral(QZ2_SAVE_CHILD),
                              childArgs() + secondAction +
                                  QStringList{QStringLiteral("--wait-before-ok"),
                                              flag.filePath(QStringLiteral("go-second")),
                                              QStringLiteral("--read-wait"), QStringLiteral("200"),
                                              QStringLiteral("--released"),
                                              flag.filePath(QStringLiteral("first-done")),
                                              QStringLiteral("--retries"), QStringLiteral("1")});
        EXPECT_TRUE(waitForLine(*second.process, QStringLiteral("loaded"), second.lines));
        QProcess first;
        first.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        first.start(QStringLiteral(QZ2_SAVE_CHILD),
                    childArgs() + editArgs() +
                        QStringList{QStringLiteral("--hold-at"), QString::number(k),
                                    QStringLiteral("--flag-dir"), flags,
                                    QStringLiteral("--retries"), QStringLiteral("0")});
        if (!waitForFlag(flag.filePath(QStringLiteral("at")), first)) {
            ADD_FAILURE() << "the first clerk never reached statement " << k;
            first.kill();
            second.process->kill();
            first.waitForFinished();
            second.process->waitForFinished();
            return r;
        }
        r.firstCommittedAtK = dumpOf(work) != before;
        touch(flag.filePath(QStringLiteral("go-second")));
        r.secondAtK = waitForLineLike(
            *second.process,
            QRegularExpression(QStringLiteral("^(saved |cancelled$|error |gave-up$)")),
            second.lines);
        EXPECT_FALSE(r.secondAtK.isEmpty()) << second.lines.join('|').toStdString();
        touch(flag.filePath(QStringLiteral("go-on")));
        touch(flag.filePath(QStringLiteral("released")));
        EXPECT_TRUE(first.waitForFinished(60000));
        waitForLine(first, QStringLiteral("(end)"), r.first, 100);
        r.firstExit = first.exitCode();
        touch(flag.filePath(QStringLiteral("first-done")));
        finish(second);
        r.second = second.lines;
        r.secondExit = second.process->exitCode();
        return r;
    }
    static bool saved(const QStringList& lines, int exitCode) {
        return exitCode == 0 &&
               !lines.filter(QRegularExpression(QStringLiteral("^saved "))).isEmpty();
    }
    static QStringList errors(const QStringList& lines) {
        return lines.filter(QRegularExpression(QStringLiteral("^error ")));
    }
    int historyRows(const FileLook& look, const QString& action) const {
        return look.t
            .scalar(QStringLiteral("select count(*) from pEmpAttendanceHistory where "
                                   "ehAttendanceNo='%1' and ehAction='%2'")
                        .arg(number, action))
            .toInt();
    }
};

TEST_F(InterleavedSaves, ACancellationCommittedBeforeEachStatementOfAnEditIsNeverLost) {
    const QStringList statements = countedEdit();
    ASSERT_FALSE(statements.isEmpty());
    const QString cancelledOnly = after({cancelArgs()});
    const QString editedThenCancelled = after({editArgs(), cancelArgs()});
    ASSERT_NE(cancelledOnly, editedThenCancelled);
    const QString refusedText =
        number + QStringLiteral(" was cancelled since you opened it. Nothing was saved.");
    int nothingLost = 0;
    int cancelledFirst = 0;
    int metTheLock = 0;
    for (int k = 1; k <= statements.size(); ++k) {
        SCOPED_TRACE(
            QStringLiteral("statement %1: %2").arg(k).arg(statements[k - 1]).toStdString());
        const Run r = interleave(k, cancelArgs());
        const bool editSaved = saved(r.first, r.firstExit);
        const bool cancelled = r.secondExit == 0 && r.second.contains(QStringLiteral("cancelled"));
        const bool cancelledAtK = r.secondAtK == QLatin1String("cancelled");
        cancelledFirst += cancelledAtK ? 1 : 0;
        // The cancellation always goes through: at K, or pressed again after the edit.
        EXPECT_TRUE(cancelled) << r.second.join('|').toStdString();
        bool right = cancelled;
        if (!cancelledAtK) {
            ++metTheLock;
            EXPECT_TRUE(saysBusy(r.secondAtK)) << r.secondAtK.toStdString();
            right = right && saysBusy(r.secondAtK);
        }
        // An edit not yet committed when the cancellation was is refused, and the clerk told.
        if (cancelledAtK && !r.firstCommittedAtK) {
            EXPECT_FALSE(editSaved) << r.first.join('|').toStdString();
            right = right && !editSaved;
        }
        if (!editSaved) {
            EXPECT_TRUE(errors(r.first).contains(QStringLiteral("error ") + refusedText))
                << r.first.join('|').toStdString();
            right = right && errors(r.first).contains(QStringLiteral("error ") + refusedText);
        }
        FileLook look(work);
        EXPECT_EQ(look.integrity(), QStringLiteral("ok"));
        const int stillLive = live(look);
        const int withReason = cancelledWithReason(look);
        const int cancellations = historyRows(look, QStringLiteral("cancelled"));
        EXPECT_EQ(stillLive, 0);
        EXPECT_EQ(withReason, 1);
        EXPECT_EQ(numbered(look), 1);
        EXPECT_EQ(cancellations, 1);
        const QString expected = editSaved ? editedThenCancelled : cancelledOnly;
        const QString now = look.t.dump();
        EXPECT_EQ(now, expected);
        if (right && stillLive == 0 && withReason == 1 && numbered(look) == 1 &&
            cancellations == 1 && now == expected)
            ++nothingLost;
    }
    std::cout << "[ " << ::testing::UnitTest::GetInstance()->current_test_info()->name() << " ] "
              << nothingLost << " of " << statements.size()
              << " runs, nothing lost (cancelled before the statement: " << cancelledFirst
              << ", met the edit's lock and pressed again: " << metTheLock << ")\n";
    RecordProperty("runs_nothing_lost", nothingLost);
    EXPECT_EQ(nothingLost, statements.size());
}

TEST_F(InterleavedSaves, AnotherEditCommittedBeforeEachStatementOfAnEditSavesExactlyOnce) {
    const QStringList statements = countedEdit();
    ASSERT_FALSE(statements.isEmpty());
    // Both clerks make the same correction: whichever saves, the database ends the same.
    const QString editedOnce = after({editArgs()});
    int nothingLost = 0;
    int otherFirst = 0;
    int metTheLock = 0;
    for (int k = 1; k <= statements.size(); ++k) {
        SCOPED_TRACE(
            QStringLiteral("statement %1: %2").arg(k).arg(statements[k - 1]).toStdString());
        const Run r = interleave(k, editArgs());
        const bool firstSaved = saved(r.first, r.firstExit);
        const bool secondSaved = saved(r.second, r.secondExit);
        const bool secondAtK = r.secondAtK.startsWith(QLatin1String("saved "));
        otherFirst += secondAtK ? 1 : 0;
        EXPECT_NE(firstSaved, secondSaved)
            << r.first.join('|').toStdString() << " / " << r.second.join('|').toStdString();
        bool right = firstSaved != secondSaved;
        if (!secondAtK) {
            ++metTheLock;
            // Met the first's write lock, or found the first's save already committed.
            const bool busyOrStale =
                saysBusy(r.secondAtK) || r.secondAtK.contains(QLatin1String("since you opened it"));
            EXPECT_TRUE(busyOrStale) << r.secondAtK.toStdString();
            right = right && busyOrStale;
        }
        if (secondAtK && !r.firstCommittedAtK) {
            EXPECT_FALSE(firstSaved);
            right = right && !firstSaved;
        }
        const QStringList& loser = firstSaved ? r.second : r.first;
        const bool told =
            !loser.filter(QStringLiteral("was saved by another clerk since you opened it"))
                 .isEmpty();
        EXPECT_TRUE(told) << loser.join('|').toStdString();
        FileLook look(work);
        EXPECT_EQ(look.integrity(), QStringLiteral("ok"));
        const int stillLive = live(look);
        const int edits = historyRows(look, QStringLiteral("edited"));
        EXPECT_EQ(stillLive, 1);
        EXPECT_EQ(numbered(look), 1);
        EXPECT_EQ(edits, 1);
        const QString now = look.t.dump();
        EXPECT_EQ(now, editedOnce);
        if (right && told && stillLive == 1 && numbered(look) == 1 && edits == 1 &&
            now == editedOnce)
            ++nothingLost;
    }
    std::cout << "[ " << ::testing::UnitTest::GetInstance()->current_test_info()->name() << " ] "
              << nothingLost << " of " << statements.size()
              << " runs, nothing lost (the other edit saved before the statement: " << otherFirst
              << ", met the first's lock or its commit: " << metTheLock << ")\n";
    RecordProperty("runs_nothing_lost", nothingLost);
    EXPECT_EQ(nothingLost, statements.size());
}

class SaveConcurrently : public SaveInterrupted {
protected:
    struct Outcome {
        QStringList saved;   // "eaID eaNo"
        QStringList errors;  // the messages shown
        bool gaveUp = false;
        int exitCode = -1;
    };
    // Two children, one employee each, 25 entries each, started at one moment.
    QList<Outcome> race(int saveLockWaitMs) {
        useCopyOf(pristine);
        qint32 second = 0;
        {
            FileLook look(work);
            second = qz2test::freeEmployee(look.t.db, 1);
        }
        EXPECT_NE(second, 0);
        const QString go = dir.filePath(QStringLiteral("go"));
        QFile::remove(go);
        QList<std::shared_ptr<QProcess>> children;
        for (qint32 who : {employee, second}) {
            auto child = std::make_shared<QProcess>();
            child->setProcessChannelMode(QProcess::ForwardedErrorChannel);
            child->start(
                QStringLiteral(QZ2_SAVE_CHILD),
                {QStringLiteral("--db"), work, QStringLiteral("--employee"), QString::number(who),
                 QStringLiteral("--start"), QStringLiteral("2027-01-04"), QStringLiteral("--saves"),
                 QStringLiteral("25"), QStringLiteral("--busy"), QString::number(saveLockWaitMs),
                 QStringLiteral("--go"), go});
            EXPECT_TRUE(child->waitForStarted(10000));
            children << child;
        }
        QTest::qWait(300);  // both are up and waiting
        QFile flag(go);
        EXPECT_TRUE(flag.open(QIODevice::WriteOnly));
        flag.close();
        QList<Outcome> out;
        for (const auto& child : children) {
            Outcome o;
            if (!child->waitForFinished(240000)) {
                child->kill();
                child->waitForFinished();
                ADD_FAILURE() << "a saving child did not finish";
            }
            o.exitCode = child->exitCode();
            for (const QString& line : QString::fromUtf8(child->readAllStandardOutput())
                                           .split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
                if (line.startsWith(QLatin1String("saved "))) o.saved << line.mid(6);
                if (line.startsWith(QLatin1String("error "))) o.errors << line.mid(6);
                if (line == QLatin1String("gave-up")) o.gaveUp = true;
            }
            out << o;
        }
        return out;
    }
    void expectNoDuplicates(const QList<Outcome>& outcomes) {
        QSet<QString> ids;
        QSet<QString> numbers;
        int saved = 0;
        for (const Outcome& o : outcomes) {
            EXPECT_EQ(o.exitCode, 0);
            EXPECT_FALSE(o.gaveUp);
            EXPECT_EQ(o.saved.size(), 25);
            for (const QString& s : o.saved) {
                ids << s.section(' ', 0, 0);
                numbers << s.section(' ', 1, 1);
                ++saved;
            }
            // A save that met the other's lock reports the database's own message.
            for (const QString& e : o.errors)
                EXPECT_TRUE(e.contains(QLatin1String("locked"))) << e.toStdString();
        }
        EXPECT_EQ(saved, 50);
        EXPECT_EQ(ids.size(), 50);
        EXPECT_EQ(numbers.size(), 50);
        FileLook look(work);
        EXPECT_EQ(look.integrity(), QStringLiteral("ok"));
        EXPECT_EQ(
            look.t
                .scalar("select count(*) from pEmployeeAttendence where eaStartDate>='2027-01-01'")
                .toInt(),
            50);
        EXPECT_EQ(look.t
                      .scalar("select count(*) from (select eaNo from pEmployeeAttendence where "
                              "eaCompanyID=1 "
                              "group by eaNo having count(*)>1)")
                      .toInt(),
                  0);
        // Every entry whole: 11 detail lines and 2 claims each, none left without a header.
        EXPECT_EQ(
            look.t
                .scalar(
                    "select count(*) from pEmployeeAttendence h where eaStartDate>='2027-01-01' "
                    "and "
                    "(select count(*) from pEmpAttendanceDetail d where "
                    "d.eadCompanyID=h.eaCompanyID and "
                    "d.eadAttendanceID=h.eaID)=11 and (select count(*) from "
                    "pEmpAttendanceAllowanceDeductions a where a.eaadCompanyID=h.eaCompanyID and "
                    "a.eaadAttendanceID=h.eaID)=2")
                .toInt(),
            50);
        EXPECT_EQ(
            look.t
                .scalar(
                    "select count(*) from pEmpAttendanceDetail d where not exists (select 1 from "
                    "pEmployeeAttendence h where h.eaCompanyID=d.eadCompanyID and "
                    "h.eaID=d.eadAttendanceID)")
                .toInt(),
            0);
    }
};

TEST_F(SaveConcurrently, TwoClerksSavingAtOnceWaitForEachOther) {
    // No lock wait of their own: each save sets one and waits its turn, so none fails.
    const QList<Outcome> outcomes = race(0);
    expectNoDuplicates(outcomes);
    for (const Outcome& o : outcomes)
        EXPECT_TRUE(o.errors.isEmpty()) << o.errors.join(" | ").toStdString();
}

TEST_F(SaveConcurrently, TwoClerksWhoseLockWaitRunsOutSeeTheDatabasesErrorAndSaveOnTheNextPress) {
    // A 1 ms wait: saves meeting the other's lock fail with the database's message, and the
    // same form saves when OK is pressed again.
    const QList<Outcome> outcomes = race(1);
    expectNoDuplicates(outcomes);
    int errors = 0;
    for (const Outcome& o : outcomes) errors += static_cast<int>(o.errors.size());
    std::cout << "[ race, 1 ms lock wait ] saves that met the other's lock and were pressed again: "
              << errors << '\n';
    RecordProperty("lock_errors", errors);
}

}  // namespace

TEST_F(SaveInterrupted, AFileSizeLimitEndsInTheDatabasesMessageNotAKilledProcess) {
    // No file of the process may grow past one page (a quota or a disk that is full): the
    // save's journal and pages cannot be written. The process says why and lives on; the
    // file is as it was.
    useCopyOf(pristine);
    QString before;
    {
        FileLook look(work);
        before = look.t.dump();
    }
    const ChildResult r = runChild(childArgs() << QStringLiteral("--fsize") << QStringLiteral("4096")
                                               << QStringLiteral("--retries")
                                               << QStringLiteral("0"));
    EXPECT_EQ(r.status, QProcess::NormalExit);
    EXPECT_EQ(r.exitCode, 1) << r.lines.join('\n').toStdString();
    const QStringList errors = r.lines.filter(QStringLiteral("error "));
    ASSERT_EQ(errors.size(), 1) << r.lines.join('\n').toStdString();
    EXPECT_TRUE(errors.first().contains(QStringLiteral("disk"), Qt::CaseInsensitive) ||
                errors.first().contains(QStringLiteral("full"), Qt::CaseInsensitive))
        << errors.first().toStdString();
    FileLook look(work);
    EXPECT_EQ(look.integrity(), QStringLiteral("ok"));
    EXPECT_EQ(look.t.dump(), before);
}
