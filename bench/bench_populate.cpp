// Times Populate on the entry form over a 31-day month of the demo database (SQLite), and
// counts the statements it asks: with the form's statement cache cold (a freshly chosen
// employee), the button pressed again (holidays and leaves are read afresh on every
// press), and bypassed (every statement asked as often as the procedures ask for it); and
// the statements of a recompute after a time edit (none). Run by hand, never as a test:
//   build/release/bench/bench_populate [--runs 200] [--file demo.sqlite]
// Without --file the database lives in memory; with it, in that file (created afresh), so
// that the disk's part in the reads shows too.
#include <QApplication>
#include <QComboBox>
#include <QElapsedTimer>
#include <QFile>
#include <QLineEdit>
#include <QListWidget>
#include <QSqlDatabase>
#include <algorithm>
#include <cstdio>
#include <functional>
#include <vector>

#include "db/Database.h"
#include "demo/DemoData.h"
#include "entry/EntrySql.h"
#include "entry/frmEmployeeDailyAttendance.h"
#include "shared/BasAttendence.h"
#include "shared/FlexGrid.h"
#include "shared/MsgBox.h"

namespace {

struct Timing {
    double medianMs = 0;
    double worstMs = 0;
    qint64 statements = 0;  // per run (the same for every run of a kind)
};

// Runs `populate` `runs` times after `prepare`, timing each run and counting its
// statements; the statement count must not vary between runs of one kind.
Timing measure(int runs, const std::function<void()>& prepare,
               const std::function<void()>& populate) {
    std::vector<double> ms;
    ms.reserve(static_cast<std::size_t>(runs));
    Timing out;
    for (int i = 0; i < runs; ++i) {
        prepare();
        const qint64 before = qz2::db::statementCount();
        QElapsedTimer timer;
        timer.start();
        populate();
        ms.push_back(static_cast<double>(timer.nsecsElapsed()) / 1e6);
        const qint64 asked = qz2::db::statementCount() - before;
        if (i > 0 && asked != out.statements)
            std::fprintf(stderr, "run %d asked %lld statements, run 0 asked %lld\n", i,
                         static_cast<long long>(asked), static_cast<long long>(out.statements));
        out.statements = asked;
    }
    std::sort(ms.begin(), ms.end());
    out.medianMs = ms[ms.size() / 2];
    out.worstMs = ms.back();
    return out;
}

void print(const char* kind, const Timing& t) {
    std::printf("  %-28s median %7.3f ms   worst %7.3f ms   statements %lld\n", kind, t.medianMs,
                t.worstMs, static_cast<long long>(t.statements));
}

}  // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    int runs = 200;
    QString file;
    const QStringList args = app.arguments();
    for (int i = 1; i + 1 < args.size(); ++i) {
        if (args[i] == QLatin1String("--runs")) runs = std::max(1, args[i + 1].toInt());
        if (args[i] == QLatin1String("--file")) file = args[i + 1];
    }

    using namespace qz2;
    // December 2026: 31 days, the demo's Christmas holidays inside.
    const QDate processDate(2026, 12, 21);
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("bench"));
    if (!file.isEmpty()) QFile::remove(file);
    db.setDatabaseName(file.isEmpty() ? QStringLiteral(":memory:") : file);
    if (!db.open()) {
        std::fprintf(stderr, "cannot open the database\n");
        return 1;
    }
    demo::createSchema(db);
    demo::generate(db, processDate);
    gadocon = db;
    gintCompanyID = 1;
    gintUserID = 1;
    gdtProcessDate = processDate;
    gstrMsgboxTitle = QStringLiteral("Populate benchmark");
    gstrEntryMode = QStringLiteral("N");
    fnLoadLinkTableNames();
    msgbox_testing::setAutoAnswer(true);

    int exitCode = 0;
    {
        frmEmployeeDailyAttendance form;
        form.Form_Load();
        form.cboEmpname->setCurrentIndex(2);  // an employee with entries up to November
        const auto picked =
            form.lstAbsentDays->findItems(QStringLiteral("2026/12/10"), Qt::MatchExactly);
        if (!picked.isEmpty()) picked.first()->setCheckState(Qt::Checked);
        const auto populate = [&form] { form.cmdPopulateRecords_Click(); };

        const Timing cold = measure(
            runs, [&form] { form.statementCache().clear(); }, populate);
        const Timing again = measure(
            runs, [] {}, populate);
        const qint64 beforeRecompute = db::statementCount();
        form.fnCalculateTotalHours();
        form.fnFindtheAdditionalWorkingHours();
        form.fnCalculateTotalHoursfortheDay();
        const qint64 recompute = db::statementCount() - beforeRecompute;
        entry::testing::setStatementCacheBypassed(true);
        const Timing uncached = measure(
            runs, [] {}, populate);
        entry::testing::setStatementCacheBypassed(false);

        const int days = form.mfgAttendance->Rows() - 1;
        int checkIns = 0;
        for (int r = 1; r < form.mfgMirrorGrid->Rows(); ++r)
            if (!form.mfgMirrorGrid->TextMatrix(r, 2).trimmed().isEmpty()) ++checkIns;
        // The procedures as written ask holidays and leaves once, each day's own line and
        // newest line once per day, and the first check-in once per laid-out check-in.
        const int literal = 2 + 2 * days + checkIns;

        std::printf("Populate, %s, %d days (%s to %s), %d pairs, %d runs each\n",
                    file.isEmpty() ? "SQLite in memory" : "SQLite file", days,
                    qPrintable(form.mfgAttendance->TextMatrix(1, 1)),
                    qPrintable(form.mfgAttendance->TextMatrix(days, 1)),
                    form.mfgMirrorGrid->Rows() - 1, runs);
        print("cache cold (new employee)", cold);
        print("pressed again", again);
        print("cache bypassed", uncached);
        std::printf("  %-28s statements %d (2 + 2 x %d days + %d check-ins)\n",
                    "literal procedures", literal, days, checkIns);
        std::printf("  %-28s statements %lld\n", "recompute after a time edit",
                    static_cast<long long>(recompute));
        if (days != 31 || cold.statements > 30 || again.statements > 30 || recompute != 0) {
            std::fprintf(stderr,
                         "expected 31 days, at most 30 statements per Populate and none to recompute\n");
            exitCode = 1;
        }
    }
    gadocon = QSqlDatabase();
    db.close();
    db = QSqlDatabase();
    QSqlDatabase::removeDatabase(QStringLiteral("bench"));
    return exitCode;
}
