// Times the register on a large list: shown, coloured and ready; one search keystroke; a
// sort; and the memory it holds. Run by hand (see README), never as a test:
//   build/release/bench/bench_register [--entries 100000] [--days 0]
#include <QApplication>
#include <QComboBox>
#include <QElapsedTimer>
#include <QFile>
#include <QLineEdit>
#include <QRadioButton>
#include <QSqlDatabase>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <vector>

#include "db/Database.h"
#include "demo/DemoData.h"
#include "register/FrmMaster.h"
#include "shared/BasAttendence.h"
#include "shared/FlexGrid.h"

namespace {

long statusKb(const char* key) {
    QFile f(QStringLiteral("/proc/self/status"));
    if (!f.open(QIODevice::ReadOnly)) return -1;
    for (const QByteArray& line : f.readAll().split('\n'))
        if (line.startsWith(key)) return line.mid(static_cast<int>(qstrlen(key))).trimmed().split(' ').first().toLong();
    return -1;
}

double ms(const QElapsedTimer& t) { return static_cast<double>(t.nsecsElapsed()) / 1e6; }

}  // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    int entries = 100000;
    int days = 0;
    const QStringList args = app.arguments();
    for (int i = 1; i + 1 < args.size(); ++i) {
        if (args[i] == QLatin1String("--entries")) entries = args[i + 1].toInt();
        if (args[i] == QLatin1String("--days")) days = args[i + 1].toInt();
    }

    QTemporaryDir dir;
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("bench"));
    db.setDatabaseName(dir.filePath(QStringLiteral("bench.sqlite")));
    db.open();
    QElapsedTimer gen;
    gen.start();
    qz2::demo::createSchema(db);
    qz2::demo::BenchScale scale;
    scale.entries = entries;
    scale.activeEmployees = 5000;
    scale.detailRows = entries;  // the register reads headers only; keep generation short
    scale.payrollRows = 0;
    scale.cancelledEvery = 50;
    scale.noofPreviousdays = days;
    qz2::demo::generateBenchmark(db, QDate(2026, 11, 21), scale);
    std::printf("generated %d entries in %.0f ms\n", entries, ms(gen));
    db.close();
    db.open();  // a cold connection, as a clerk's would be

    qz2::gadocon = db;
    qz2::gintCompanyID = 1;
    qz2::gintUserID = 1;
    qz2::gdtProcessDate = QDate(2026, 11, 21);
    qz2::gstrMsgboxTitle = QStringLiteral("Benchmark");
    const long rssBefore = statusKb("VmRSS:");

    QElapsedTimer t;
    t.start();
    const qint64 statementsBefore = qz2::db::statementCount();
    auto* form = new qz2::FrmMaster;
    form->Form_Load();
    form->show();
    QApplication::processEvents();
    form->repaint();  // the first paint of the visible rows, colours included
    const double openMs = ms(t);
    const int rows = form->flexMaster->Rows() - 1;
    std::printf("register shown, coloured and ready: %.1f ms for %d rows (%lld statements)\n", openMs, rows,
                static_cast<long long>(qz2::db::statementCount() - statementsBefore));
    std::printf("resident memory: %ld MB now, %ld MB peak (%ld MB before the register)\n", statusKb("VmRSS:") / 1024,
                statusKb("VmHWM:") / 1024, rssBefore / 1024);

    // Search keystrokes: the name column, typing an employee's name near the end of the list.
    form->cboSearch->setCurrentIndex(3);
    const QString target = form->flexMaster->TextMatrix(rows, 3);
    std::vector<double> keys;
    for (int n = 1; n <= target.size(); ++n) {
        t.restart();
        form->txtsearch->setText(target.left(n));
        form->repaint();
        keys.push_back(ms(t));
    }
    t.restart();
    form->txtsearch->setText(QStringLiteral("zzzz-no-such-name"));
    form->repaint();
    const double miss = ms(t);
    std::sort(keys.begin(), keys.end());
    std::printf("search keystroke: median %.2f ms, worst %.2f ms over %zu keys; a miss %.2f ms\n", keys[keys.size() / 2],
                keys.back(), keys.size(), miss);

    // Sorts: every column both ways.
    double worstSort = 0;
    for (int c = 0; c < form->cboColNames->count(); ++c) {
        for (QRadioButton* dir2 : {form->optAscend, form->optDescend}) {
            dir2->setChecked(true);
            t.restart();
            if (form->cboColNames->currentIndex() == c)
                form->cboColNames_Click();
            else
                form->cboColNames->setCurrentIndex(c);
            form->repaint();
            const double s = ms(t);
            worstSort = std::max(worstSort, s);
            std::printf("sort by %-14s %s: %.1f ms\n", qPrintable(form->cboColNames->itemText(c)),
                        dir2 == form->optAscend ? "ascending " : "descending", s);
        }
    }
    std::printf("worst sort: %.1f ms\n", worstSort);
    std::printf("peak resident memory at the end: %ld MB\n", statusKb("VmHWM:") / 1024);
    delete form;
    return 0;
}
