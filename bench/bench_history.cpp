// Times opening the history of an entry with many versions: reading every version
// (readHistory) and the register's History dialog built on it, with the newest version's
// words and days shown. The entry is a month of 31 days x 6 pairs with a claim a day,
// saved through the entry form and then edited through it again and again, each edit
// moving one check-out. Run by hand, never as a test:
//   build/release/bench/bench_history [--versions 50] [--runs 50]
#include <QApplication>
#include <QComboBox>
#include <QDateEdit>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTableWidget>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <vector>

#include "BenchSupport.h"
#include "db/Database.h"
#include "demo/DemoData.h"
#include "entry/frmEmployeeDailyAttendance.h"
#include "history/HistoryStore.h"
#include "register/frmHistory.h"
#include "rules/HalfDay.h"
#include "rules/Pairs.h"
#include "rules/Population.h"
#include "rules/RuleGrids.h"
#include "shared/BasAttendence.h"
#include "shared/FlexGrid.h"
#include "shared/MsgBox.h"
#include "shared/SharedServices.h"

namespace {

using benchmonth::kDays;
using benchmonth::keyMonth;
using benchmonth::kStart;

using benchmonth::ms;

using benchmonth::median;

}  // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    int versions = 50;
    int runs = 50;
    const QStringList args = app.arguments();
    for (int i = 1; i + 1 < args.size(); ++i) {
        if (args[i] == QLatin1String("--versions")) versions = std::max(1, args[i + 1].toInt());
        if (args[i] == QLatin1String("--runs")) runs = std::max(1, args[i + 1].toInt());
    }

    QTemporaryDir dir;
    const std::optional<qint32> picked = benchmonth::openDemoSession(dir);
    if (!picked) return 1;
    const qint32 employee = *picked;
    QSqlDatabase db = qz2::gadocon;

    // The entry and its edits, through the form.
    qint32 id = 0;
    {
        qz2::gstrEntryMode = QStringLiteral("N");
        qz2::frmEmployeeDailyAttendance form;
        form.Form_Load();
        keyMonth(form, employee);
        form.cmdOK_Click();
        if (!form.saved()) return 1;
        id = qz2::db::scalar(db, QStringLiteral("select max(eaID) from pEmployeeAttendence"))
                 .toInt();
    }
    qz2::FlexGrid registerRows;
    registerRows.setCols(5);
    registerRows.setRows(2);
    qz2::setRegisterGrid(&registerRows);
    for (int v = 1; v < versions; ++v) {
        registerRows.setTextMatrix(1, 0, QString::number(id));
        registerRows.setCurrentCell(1, 0);
        qz2::gstrEntryMode = QStringLiteral("E");
        qz2::frmEmployeeDailyAttendance form;
        form.Form_Load();
        if (!form.fnLoadEntry(QString::number(id), false)) return 1;
        // Each edit moves the last check-out of one day by a minute.
        const QDate day = kStart.addDays(v % kDays);
        qz2::rules::fnUpdateMirrorTime(*form.mfgMirrorGrid->flexModel(), day, 6,
                                       qz2::TimeValue::fromHM(17, 10 + v / kDays + 1),
                                       qz2::rules::TimeKind::CheckOut);
        form.fnCalculateTotalHours();
        form.cmdOK_Click();
        if (!form.saved()) {
            std::fprintf(stderr, "edit %d did not save\n", v);
            return 1;
        }
        id = qz2::db::scalar(db, QStringLiteral("select max(eaID) from pEmployeeAttendence"))
                 .toInt();
    }
    qz2::setRegisterGrid(nullptr);

    std::vector<double> reads, dialogs;
    int shown = 0;
    qint64 statements = 0;
    for (int r = 0; r < runs; ++r) {
        QElapsedTimer t;
        t.start();
        const qint64 before = qz2::db::statementCount();
        const QList<qz2::history::HistoryRecord> records = qz2::history::readHistory(db, 1, id);
        reads.push_back(ms(t));
        statements = qz2::db::statementCount() - before;
        shown = static_cast<int>(records.size());
        t.restart();
        qz2::frmHistory dialog(id);
        dialogs.push_back(ms(t));
        if (dialog.versionCount() != versions) {
            std::fprintf(stderr, "the dialog shows %d versions, not %d\n", dialog.versionCount(),
                         versions);
            return 1;
        }
    }
    std::printf("history of an entry of %d days x 6 pairs + %d claims with %d versions, %d runs\n",
                kDays, kDays, shown, runs);
    std::printf("  read every version:     median %.2f ms, worst %.2f ms, %lld statements\n",
                median(reads), *std::max_element(reads.begin(), reads.end()),
                static_cast<long long>(statements));
    std::printf("  History dialog opened:  median %.2f ms, worst %.2f ms (reading included)\n",
                median(dialogs), *std::max_element(dialogs.begin(), dialogs.end()));
    return 0;
}
