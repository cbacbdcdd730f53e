// Times picking absent days in the entry form's list: every item of a long list ticked one by
// one, then all of them unticked by clearing the selection (a tick and a selection are one
// pick, each following the other). The list is filled directly with `--days` days (a period
// that long is refused when a clerk sets it; the point is how the picking grows with the
// number of days). Run by hand (see README), never as a test:
//   build/release/bench/bench_absent_days [--days 4000]
#include <QApplication>
#include <QElapsedTimer>
#include <QListWidget>
#include <QSqlDatabase>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>

#include "demo/DemoData.h"
#include "entry/frmEmployeeDailyAttendance.h"
#include "shared/BasAttendence.h"
#include "shared/MsgBox.h"
#include "shared/SharedServices.h"

namespace {

double ms(const QElapsedTimer& t) {
    return static_cast<double>(t.nsecsElapsed()) / 1e6;
}

}  // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    int days = 4000;
    const QStringList args = app.arguments();
    for (int i = 1; i + 1 < args.size(); ++i)
        if (args[i] == QLatin1String("--days")) days = std::max(1, args[i + 1].toInt());

    QTemporaryDir dir;
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("bench"));
    db.setDatabaseName(dir.filePath(QStringLiteral("bench.sqlite")));
    db.open();
    qz2::demo::createSchema(db);
    qz2::demo::BenchScale scale;  // the company's settings and calendar; no volumes needed
    scale.entries = 1;
    scale.activeEmployees = 1;
    scale.detailRows = 1;
    scale.payrollRows = 0;
    qz2::demo::generateBenchmark(db, QDate(2026, 11, 21), scale);
    qz2::gadocon = db;
    qz2::gintCompanyID = 1;
    qz2::gintUserID = 1;
    qz2::gdtProcessDate = QDate(2026, 11, 21);
    qz2::fnLoadLinkTableNames();
    qz2::msgbox_testing::setAutoAnswer(true);
    qz2::gstrEntryMode = QStringLiteral("N");

    for (const int n : {days / 4, days / 2, days}) {
        qz2::frmEmployeeDailyAttendance form;
        form.Form_Load();
        const QDate start(2020, 1, 1);
        form.fnPopoulateList(start, start.addDays(n - 1));
        QListWidget* list = form.lstAbsentDays;
        QElapsedTimer t;
        t.start();
        for (int i = 0; i < list->count(); ++i) list->item(i)->setCheckState(Qt::Checked);
        const double tick = ms(t);
        const bool allSelected = list->selectedItems().size() == list->count();
        t.restart();
        list->clearSelection();
        const double clear = ms(t);
        const bool noneTicked = form.fnPickedAbsentDays().isEmpty();
        std::printf("%5d days: ticking each %8.1f ms (all selected: %s), clearing %6.1f ms "
                    "(none ticked: %s)\n",
                    list->count(), tick, allSelected ? "yes" : "NO", clear,
                    noneTicked ? "yes" : "NO");
    }
    return 0;
}
