// Times pressing OK on a full month: 31 days, six check-in/check-out pairs a day and a
// claim on every day (allowance and deduction alternating), saved to an SQLite file. Each
// run keys a fresh form and times the save alone. Prints the median and worst time, and
// per save the statements run and the inserts prepared (each of the three inserts should
// be prepared once however many rows it writes). Run by hand, never as a test:
//   build/release/bench/bench_save [--runs 200] [--without-history]
#include <QApplication>
#include <QComboBox>
#include <QDateEdit>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <vector>

#include "BenchSupport.h"
#include "db/Database.h"
#include "demo/DemoData.h"
#include "entry/SaveSql.h"
#include "entry/frmEmployeeDailyAttendance.h"
#include "rules/HalfDay.h"
#include "rules/Population.h"
#include "rules/RuleGrids.h"
#include "shared/BasAttendence.h"
#include "shared/FlexGrid.h"
#include "shared/MsgBox.h"

namespace {

using benchmonth::kDays;
using benchmonth::keyMonth;
using benchmonth::kStart;

using benchmonth::ms;

}  // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    int runs = 200;
    const QStringList args = app.arguments();
    for (int i = 1; i + 1 < args.size(); ++i)
        if (args[i] == QLatin1String("--runs")) runs = std::max(1, args[i + 1].toInt());
    // Saving as a database without the history table does, for comparison.
    const bool withoutHistory = args.contains(QStringLiteral("--without-history"));

    QTemporaryDir dir;
    const std::optional<qint32> picked = benchmonth::openDemoSession(dir, withoutHistory);
    if (!picked) return 1;
    const qint32 employee = *picked;
    QSqlDatabase db = qz2::gadocon;

    std::vector<double> times;
    qint64 statements = 0;
    qint64 prepared = 0;
    for (int run = 0; run < runs; ++run) {
        qz2::gstrEntryMode = QStringLiteral("N");
        qz2::frmEmployeeDailyAttendance form;
        form.Form_Load();
        keyMonth(form, employee);
        qz2::msgbox_testing::clear();
        const qint64 statementsBefore = qz2::db::statementCount();
        const qint64 preparedBefore = qz2::entry::savesql::insertPreparations();
        QElapsedTimer timer;
        timer.start();
        form.cmdOK_Click();
        times.push_back(ms(timer));
        if (!form.saved()) {
            const auto& shown = qz2::msgbox_testing::shown();
            std::fprintf(stderr, "run %d did not save: %s\n", run,
                         shown.isEmpty() ? "?" : shown.last().text.toLocal8Bit().constData());
            return 1;
        }
        statements += qz2::db::statementCount() - statementsBefore;
        prepared += qz2::entry::savesql::insertPreparations() - preparedBefore;
        // The next run keys the same month for the same employee: the entry just saved is
        // cancelled (untimed), since two live entries of one employee may not share a day.
        QSqlQuery(db).exec(
            QStringLiteral("update pEmployeeAttendence set eaCancelled=1 where "
                           "eaID=(select max(eaID) from pEmployeeAttendence)"));
    }

    QSqlQuery rows(db);
    rows.exec(QStringLiteral(
        "select (select count(*) from pEmpAttendanceDetail d where d.eadAttendanceID=h.eaID), "
        "(select count(*) from pEmpAttendanceAllowanceDeductions a where "
        "a.eaadAttendanceID=h.eaID) "
        "from pEmployeeAttendence h where h.eaID=(select max(eaID) from pEmployeeAttendence)"));
    rows.next();
    std::vector<double> sorted = times;
    std::sort(sorted.begin(), sorted.end());
    const double median = benchmonth::median(times);
    std::printf("history %s\n", withoutHistory ? "not kept (no table)" : "kept");
    std::printf("save of %d days x 6 pairs + %d claims, %d runs on an SQLite file\n", kDays, kDays,
                runs);
    std::printf("  rows per save:        1 header, %d detail, %d claim lines\n",
                rows.value(0).toInt(), rows.value(1).toInt());
    std::printf("  median:               %.2f ms\n", median);
    std::printf("  worst:                %.2f ms\n", sorted.back());
    std::printf("  best:                 %.2f ms\n", sorted.front());
    std::printf("  statements per save:  %.1f\n", static_cast<double>(statements) / runs);
    std::printf("  inserts prepared per save: %.1f\n", static_cast<double>(prepared) / runs);
    return 0;
}
