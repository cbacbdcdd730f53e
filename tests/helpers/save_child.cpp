// The reliability tests' child: saves attendance entries through the entry form, offscreen,
// on an SQLite file shared with its parent, and reports each outcome on standard output:
//   statements <n>        statements the last save ran (with --count)
//   saved <eaID> <eaNo>   a save that committed
//   error <message>       a save that reported an error (it is then pressed again)
//   gave-up               too many errors in a row
// With --exit-at N the process ends abruptly (_exit, no clean-up of any kind) just before
// the N-th statement of the save reaches the database, as a crash or a power cut would.
// With --go FILE it waits until FILE exists, so that two children start at one moment.
// With --fsize BYTES the process may write no file past that size (a quota, a full disk).
// With --hold-exclusive MS it is the third process: it takes the database's exclusive lock
// (BEGIN EXCLUSIVE), reports "holding", keeps it MS milliseconds, lets it go, reports
// "released" and ends.
// With --cancel ID it cancels stored entry ID from the register's reason dialog and
// reports "cancelled", or each message shown as "error <text>". With --wait-before-ok FILE
// an edit reports "loaded" and presses OK only once FILE exists (and a cancel confirms its
// reason only then), so that a test can order two clerks' steps.
// With --keyed the child is a clerk keying a new entry the whole way: choosing the
// employee, Populate, OK. --lock-at employee|populate|ok names the step that waits for the
// --go file (the parent takes the lock meanwhile); the child reports every message shown
// ("error <text>" for the step, "refused <text>" for OK pressed after it), then waits for
// the --released file, presses Populate and OK again and reports "saved <eaID> <eaNo>" and
// "period <start> <end>". --read-wait MS sets the connection's lock wait for every
// statement.
// With --hold-at K --flag-dir DIR the K-th statement (from 1) of the step under test (the
// first press of OK of a save or a cancellation, or the keying step named by --lock-at) is
// held back: just before it the child creates DIR/at, reports "at K <statement>" and waits
// until DIR/go-on exists, while the test takes a lock or lets another clerk act; from then on
// each statement the step asks is reported as "asked <statement>". After that step the
// child reports what it was shown (and, when the step was left unfinished, what OK
// says), then "after-hold", and touches the database again only once DIR/released exists.
// With --released FILE a save, an edit or a cancellation that failed is pressed again only
// once FILE exists. With --count each step's statements are also listed as "sql <i> <statement>".

#include <sys/resource.h>
#include <unistd.h>

#include <QApplication>
#include <QComboBox>
#include <QCommandLineParser>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QLineEdit>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTextStream>
#include <QThread>
#include <cstdio>
#include <functional>

#include "SaveScenario.h"
#include "db/Database.h"
#include "entry/frmEmployeeDailyAttendance.h"
#include "register/frmCancel.h"
#include "shared/BasAttendence.h"
#include "shared/FlexGrid.h"
#include "shared/MsgBox.h"
#include "shared/SharedServices.h"

namespace {

QTextStream& out() {
    static QTextStream stream(stdout);
    return stream;
}

void report(const QString& line) {
    out() << line << Qt::endl;
}

// The lock wait the saves run with (--busy); the form's loading keeps the driver's own, so
// that only saves meet a short wait.
int g_saveLockWait = -1;

void setLockWait(int ms) {
    QSqlQuery q(qz2::gadocon);
    q.exec(QStringLiteral("PRAGMA busy_timeout = ") + QString::number(ms));
}

void waitForFile(const QString& file) {
    QElapsedTimer waited;
    waited.start();
    while (!QFileInfo::exists(file) && waited.elapsed() < 60000) QThread::usleep(200);
}

// The statement held back (--hold-at, --flag-dir) and whether the step under test has met it.
struct Hold {
    int at = 0;
    QString dir;
    bool hit = false;
    QString flag(const QString& name) const { return QDir(dir).filePath(name); }
};
Hold g_hold;

// What --count lists.
bool g_count = false;

// The hook of one step's statements: records them, ends the process before statement
// `exitAt`, and, when `holding`, waits before the held statement until the test lets it go.
qz2::db::FaultHook watchStatements(QStringList& ran, int exitAt, bool holding) {
    return [&ran, exitAt, holding](const QString& sql) {
        ran << sql;
        const int n = static_cast<int>(ran.size());
        if (n == exitAt) {
            std::fflush(stdout);
            _exit(3);
        }
        if (holding && !g_hold.hit && n == g_hold.at) {
            g_hold.hit = true;
            QFile flag(g_hold.flag(QStringLiteral("at")));
            flag.open(QIODevice::WriteOnly);
            flag.close();
            report(QStringLiteral("at %1 ").arg(n) + QString(sql).simplified());
            waitForFile(g_hold.flag(QStringLiteral("go-on")));
        }
        // What the held step still asks of the database from the held statement on.
        if (holding && g_hold.hit) report(QStringLiteral("asked ") + QString(sql).simplified());
        return QString();
    };
}

// The statements of a step, with --count: their number, "statements <n>" followed by the
// step's name when there is one, and each of them.
void reportStatements(const QStringList& ran, const QString& step = {}) {
    if (!g_count) return;
    report(QStringLiteral("statements ") + QString::number(ran.size()) +
           (step.isEmpty() ? QString() : QLatin1Char(' ') + step));
    for (int i = 0; i < ran.size(); ++i)
        report(QStringLiteral("sql %1 ").arg(i + 1) + QString(ran[i]).simplified());
}

// The step that met the held statement is over and reported: nothing more reaches the
// database until the test has let its lock go.
void afterHold() {
    report(QStringLiteral("after-hold"));
    waitForFile(g_hold.flag(QStringLiteral("released")));
}

// Presses OK until the save commits, reporting each error; false when it never did. The
// first press is the one --hold-at holds; after a failed press the next waits for
// `released` when one is named.
bool pressOkUntilSaved(qz2::frmEmployeeDailyAttendance& form, int exitAt, int retries,
                       const QString& released = {}) {
    for (int attempt = 0; attempt <= retries; ++attempt) {
        qz2::msgbox_testing::clear();
        if (g_saveLockWait >= 0) setLockWait(g_saveLockWait);
        QStringList ran;
        const bool holding = attempt == 0 && g_hold.at > 0;
        qz2::db::setFaultHook(watchStatements(ran, exitAt, holding));
        form.cmdOK_Click();
        qz2::db::setFaultHook({});
        if (g_saveLockWait >= 0) setLockWait(10000);
        reportStatements(ran);
        if (form.saved()) {
            if (holding && g_hold.hit) afterHold();
            return true;
        }
        const auto& shown = qz2::msgbox_testing::shown();
        report(QStringLiteral("error ") +
               (shown.isEmpty() ? QStringLiteral("(no message)") : shown.last().text));
        if (holding && g_hold.hit)
            afterHold();
        else if (!released.isEmpty() && attempt < retries)
            waitForFile(released);
    }
    report(QStringLiteral("gave-up"));
    return false;
}

void reportSaved(qint32 employee, QDate start) {
    QSqlQuery q(qz2::gadocon);
    q.exec(QStringLiteral(
               "select eaID, eaNo from pEmployeeAttendence where eaCompanyID=1 and eaEmpID=%1 "
               "and eaStartDate='%2' and eaCancelled=0")
               .arg(employee)
               .arg(start.toString(Qt::ISODate)));
    if (q.next())
        report(QStringLiteral("saved ") + q.value(0).toString() + QLatin1Char(' ') +
               q.value(1).toString());
    else
        report(QStringLiteral("saved ? ?"));
}

// The third process: the exclusive lock for `ms` milliseconds. Another program on the same
// file, whatever route the clerks take: Qt's own SQLite driver, which sends BEGIN EXCLUSIVE
// as it stands.
int holdExclusive(const QString& file, int ms) {
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("holder"));
    db.setDatabaseName(file);
    if (!db.open()) {
        report(QStringLiteral("hold-failed"));
        return 2;
    }
    QSqlQuery q(db);
    if (!q.exec(QStringLiteral("BEGIN EXCLUSIVE"))) {
        report(QStringLiteral("hold-failed"));
        return 2;
    }
    report(QStringLiteral("holding"));
    QThread::msleep(static_cast<unsigned long>(ms));
    q.exec(QStringLiteral("ROLLBACK"));
    report(QStringLiteral("released"));
    return 0;
}

void reportShown(const QString& kind) {
    for (const qz2::ShownMessage& m : qz2::msgbox_testing::shown())
        report(kind + QLatin1Char(' ') + m.text);
    qz2::msgbox_testing::clear();
}

// A new entry keyed the whole way, one step of it run while another process holds the lock.
int keyNewEntry(qint32 employee, const QString& lockAt, const QString& go,
                const QString& released) {
    qz2::gstrEntryMode = QStringLiteral("N");
    qz2::frmEmployeeDailyAttendance form;
    form.Form_Load();
    int mine = -1;
    for (int i = 0; i < form.cboEmpname->count(); ++i)
        if (form.cboEmpname->itemData(i).toInt() == employee) mine = i;
    if (mine < 0) {
        report(QStringLiteral("no-employee"));
        return 2;
    }
    form.cboEmpname->setCurrentIndex(mine == 0 ? 1 : 0);
    qz2::msgbox_testing::clear();
    // Runs one step of keying; true when it was the step whose statement was held back.
    const auto step = [&](const QString& name, const std::function<void()>& action) {
        const bool holding = name == lockAt && g_hold.at > 0;
        if (name == lockAt && !holding && !go.isEmpty()) {
            report(QStringLiteral("waiting"));
            waitForFile(go);
        }
        QStringList ran;
        qz2::db::setFaultHook(watchStatements(ran, 0, holding));
        action();
        qz2::db::setFaultHook({});
        reportStatements(ran, name);
        return holding && g_hold.hit;
    };
    // After the held step: OK says why it refuses when the step was left unfinished; once
    // the lock is gone, Populate runs the step again.
    const auto afterHeldStep = [&] {
        if (form.unfinishedStep() != qz2::frmEmployeeDailyAttendance::Step::None) {
            form.cmdOK_Click();
            reportShown(QStringLiteral("refused"));
        }
        afterHold();
        if (form.unfinishedStep() != qz2::frmEmployeeDailyAttendance::Step::None) {
            form.cmdPopulateRecords_Click();
            reportShown(QStringLiteral("error"));
        }
    };
    if (step(QStringLiteral("employee"), [&] { form.cboEmpname->setCurrentIndex(mine); })) {
        reportShown(QStringLiteral("error"));
        afterHeldStep();
    }
    reportShown(QStringLiteral("error"));
    if (step(QStringLiteral("populate"), [&] { form.cmdPopulateRecords_Click(); })) {
        reportShown(QStringLiteral("error"));
        afterHeldStep();
    }
    reportShown(QStringLiteral("error"));
    const bool heldAtOk = step(QStringLiteral("ok"), [&] { form.cmdOK_Click(); });
    reportShown(form.saved() ? QStringLiteral("error") : QStringLiteral("refused"));
    if (heldAtOk) afterHold();
    if (!form.saved()) {
        if (!released.isEmpty()) waitForFile(released);
        // The clerk runs the step again and presses OK again.
        if (form.unfinishedStep() != qz2::frmEmployeeDailyAttendance::Step::None)
            form.cmdPopulateRecords_Click();
        form.cmdOK_Click();
        reportShown(QStringLiteral("error"));
    }
    if (!form.saved()) {
        report(QStringLiteral("gave-up"));
        return 1;
    }
    QSqlQuery q(qz2::gadocon);
    q.exec(QStringLiteral("select eaID, eaNo, eaStartDate, eaEndDate from pEmployeeAttendence "
                          "where eaID=(select max(eaID) from pEmployeeAttendence)"));
    if (q.next()) {
        report(QStringLiteral("saved ") + q.value(0).toString() + QLatin1Char(' ') +
               q.value(1).toString());
        report(QStringLiteral("period ") + q.value(2).toString().left(10) + QLatin1Char(' ') +
               q.value(3).toString().left(10));
    }
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    // One moment for every run, so that two runs of the same save store the same history.
    qz2::setClock([] { return QDateTime(QDate(2026, 11, 21), QTime(10, 30)); });
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Saves attendance entries for the reliability tests."));
    parser.addHelpOption();
    const QCommandLineOption dbOpt(QStringLiteral("db"), QStringLiteral("SQLite file."),
                                   QStringLiteral("file"));
    const QCommandLineOption empOpt(QStringLiteral("employee"), QStringLiteral("Employee."),
                                    QStringLiteral("id"));
    const QCommandLineOption startOpt(QStringLiteral("start"),
                                      QStringLiteral("First period start."),
                                      QStringLiteral("yyyy-mm-dd"));
    const QCommandLineOption savesOpt(QStringLiteral("saves"),
                                      QStringLiteral("Entries to save, 8 days apart."),
                                      QStringLiteral("n"), QStringLiteral("1"));
    const QCommandLineOption editOpt(QStringLiteral("edit"),
                                     QStringLiteral("Edit this stored entry instead."),
                                     QStringLiteral("eaID"));
    const QCommandLineOption exitOpt(QStringLiteral("exit-at"),
                                     QStringLiteral("End before the n-th statement."),
                                     QStringLiteral("n"), QStringLiteral("0"));
    const QCommandLineOption countOpt(QStringLiteral("count"),
                                      QStringLiteral("Report each save's statements."));
    const QCommandLineOption busyOpt(QStringLiteral("busy"),
                                     QStringLiteral("Lock wait of the saves."),
                                     QStringLiteral("ms"), QStringLiteral("-1"));
    const QCommandLineOption goOpt(QStringLiteral("go"),
                                   QStringLiteral("Start once this file exists."),
                                   QStringLiteral("file"));
    const QCommandLineOption retriesOpt(QStringLiteral("retries"),
                                        QStringLiteral("OK presses after errors."),
                                        QStringLiteral("n"), QStringLiteral("200"));
    const QCommandLineOption fsizeOpt(QStringLiteral("fsize"),
                                      QStringLiteral("Largest file this process may write."),
                                      QStringLiteral("bytes"));
    const QCommandLineOption holdOpt(QStringLiteral("hold-exclusive"),
                                     QStringLiteral("Hold the exclusive lock this long."),
                                     QStringLiteral("ms"));
    const QCommandLineOption keyedOpt(QStringLiteral("keyed"),
                                      QStringLiteral("Key a new entry: choose, Populate, OK."));
    const QCommandLineOption lockAtOpt(QStringLiteral("lock-at"),
                                       QStringLiteral("Step that waits for --go."),
                                       QStringLiteral("step"));
    const QCommandLineOption releasedOpt(QStringLiteral("released"),
                                         QStringLiteral("Run the step again once this exists."),
                                         QStringLiteral("file"));
    const QCommandLineOption readWaitOpt(QStringLiteral("read-wait"),
                                         QStringLiteral("Lock wait of every statement."),
                                         QStringLiteral("ms"));
    const QCommandLineOption cancelOpt(QStringLiteral("cancel"),
                                       QStringLiteral("Cancel this stored entry."),
                                       QStringLiteral("eaID"));
    const QCommandLineOption waitOkOpt(QStringLiteral("wait-before-ok"),
                                       QStringLiteral("Press OK once this file exists."),
                                       QStringLiteral("file"));
    const QCommandLineOption holdAtOpt(QStringLiteral("hold-at"),
                                       QStringLiteral("Hold back the step's n-th statement."),
                                       QStringLiteral("n"), QStringLiteral("0"));
    const QCommandLineOption flagDirOpt(QStringLiteral("flag-dir"),
                                        QStringLiteral("Folder of the hold's flag files."),
                                        QStringLiteral("dir"));
    parser.addOptions({dbOpt,       empOpt,    startOpt,  savesOpt,  editOpt,
                       exitOpt,     countOpt,  busyOpt,   goOpt,     retriesOpt,
                       fsizeOpt,    holdOpt,   keyedOpt,  lockAtOpt, releasedOpt,
                       readWaitOpt, cancelOpt, waitOkOpt, holdAtOpt, flagDirOpt});
    parser.process(app);
    if (parser.isSet(fsizeOpt)) {
        const rlim_t bytes = parser.value(fsizeOpt).toULongLong();
        const rlimit limit{bytes, bytes};
        setrlimit(RLIMIT_FSIZE, &limit);
    }

    if (parser.isSet(holdOpt)) return holdExclusive(parser.value(dbOpt), parser.value(holdOpt).toInt());
    qz2::msgbox_testing::setAutoAnswer(true);
    try {
        // The connection's own lock wait: --read-wait for a clerk whose every statement is to
        // meet a held lock, 10 s otherwise.
        qz2test::openSessionFile(parser.value(dbOpt), QStringLiteral("child"),
                                 parser.isSet(readWaitOpt) ? parser.value(readWaitOpt).toInt()
                                                           : 10000);
    } catch (const std::exception& e) {
        report(QStringLiteral("open-failed ") + QString::fromUtf8(e.what()));
        return 2;
    }
    g_count = parser.isSet(countOpt);
    g_hold.at = parser.value(holdAtOpt).toInt();
    g_hold.dir = parser.value(flagDirOpt);
    if (g_hold.at > 0 && g_hold.dir.isEmpty()) {
        report(QStringLiteral("--hold-at needs --flag-dir"));
        return 2;
    }
    if (parser.isSet(keyedOpt))
        return keyNewEntry(parser.value(empOpt).toInt(), parser.value(lockAtOpt),
                           parser.value(goOpt), parser.value(releasedOpt));
    if (parser.isSet(goOpt)) {
        QElapsedTimer waited;
        waited.start();
        while (!QFileInfo::exists(parser.value(goOpt)) && waited.elapsed() < 60000)
            QThread::usleep(200);
    }

    g_saveLockWait = parser.value(busyOpt).toInt();
    const qint32 employee = parser.value(empOpt).toInt();
    const QDate start = QDate::fromString(parser.value(startOpt), Qt::ISODate);
    const int exitAt = parser.value(exitOpt).toInt();
    const int retries = parser.value(retriesOpt).toInt();
    const QString released = parser.value(releasedOpt);

    if (parser.isSet(cancelOpt)) {
        qz2::FlexGrid registerRows;
        registerRows.setCols(1);
        registerRows.setRows(2);
        registerRows.setTextMatrix(1, 0, parser.value(cancelOpt));
        registerRows.setCurrentCell(1, 0);
        qz2::setRegisterGrid(&registerRows);
        qz2::frmCancel dialog;
        bool closed = false;
        QObject::connect(&dialog, &QDialog::finished, [&closed] { closed = true; });
        dialog.txtcanreason->setText(QStringLiteral("Keyed twice"));
        report(QStringLiteral("loaded"));
        if (parser.isSet(waitOkOpt)) waitForFile(parser.value(waitOkOpt));
        qz2::msgbox_testing::clear();
        QStringList ran;
        qz2::db::setFaultHook(watchStatements(ran, exitAt, g_hold.at > 0));
        dialog.cmdOK_Click();
        qz2::db::setFaultHook({});
        reportStatements(ran);
        reportShown(QStringLiteral("error"));
        const bool held = g_hold.hit;
        if (held) afterHold();
        // The dialog stays open after a failed statement: the clerk presses OK again.
        if (!dialog.cancelled() && !closed && (held || !released.isEmpty())) {
            if (!held) waitForFile(released);
            dialog.cmdOK_Click();
            reportShown(QStringLiteral("error"));
        }
        qz2::setRegisterGrid(nullptr);
        if (!dialog.cancelled()) return 1;
        report(QStringLiteral("cancelled"));
        return 0;
    }
    if (parser.isSet(editOpt)) {
        // The register's current row names the entry, as when Edit is pressed.
        qz2::FlexGrid registerRows;
        registerRows.setCols(1);
        registerRows.setRows(2);
        registerRows.setTextMatrix(1, 0, parser.value(editOpt));
        registerRows.setCurrentCell(1, 0);
        qz2::setRegisterGrid(&registerRows);
        qz2::gstrEntryMode = QStringLiteral("E");
        qz2::frmEmployeeDailyAttendance form;
        form.Form_Load();
        if (!form.fnLoadEntry(parser.value(editOpt), false)) {
            report(QStringLiteral("load-failed"));
            return 2;
        }
        qz2test::applyStandardEdit(form, start);
        report(QStringLiteral("loaded"));
        if (parser.isSet(waitOkOpt)) waitForFile(parser.value(waitOkOpt));
        const bool ok = pressOkUntilSaved(form, exitAt, retries, released);
        qz2::setRegisterGrid(nullptr);
        if (!ok) return 1;
        reportSaved(employee, start);
        return 0;
    }

    const int saves = parser.value(savesOpt).toInt();
    for (int i = 0; i < saves; ++i) {
        const QDate from = start.addDays(8 * i);
        qz2::gstrEntryMode = QStringLiteral("N");
        qz2::frmEmployeeDailyAttendance form;
        form.Form_Load();
        qz2test::fillForm(form, qz2test::demoScenario(employee, from));
        if (!pressOkUntilSaved(form, exitAt, retries, released)) return 1;
        reportSaved(employee, from);
    }
    return 0;
}
