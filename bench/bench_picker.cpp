// Times the employee picker on a large company: 5,000 active employees, 1,000,000
// attendance detail rows, 60,000 payroll rows. The picker's greying asks two aggregate
// statements; the per-employee statements (a payroll read and a detail read for each
// employee) are timed in the same run, capped, and their greying compared with the
// picker's. Run by hand (see README), never as a test:
//   build/release/bench/bench_picker [--cap-seconds 180]
#include <QApplication>
#include <QComboBox>
#include <QElapsedTimer>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <cstdio>

#include "db/Database.h"
#include "demo/DemoData.h"
#include "picker/PickerStatus.h"
#include "picker/frmEmployeesAttendanceEntryStatus.h"
#include "shared/BasAttendence.h"
#include "shared/FlexGrid.h"

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    double capSeconds = 180;
    const QStringList args = app.arguments();
    for (int i = 1; i + 1 < args.size(); ++i)
        if (args[i] == QLatin1String("--cap-seconds")) capSeconds = args[i + 1].toDouble();

    QTemporaryDir dir;
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("bench"));
    db.setDatabaseName(dir.filePath(QStringLiteral("bench.sqlite")));
    db.open();
    QElapsedTimer t;
    t.start();
    qz2::demo::createSchema(db);
    qz2::demo::BenchScale scale;
    scale.entries = 60000;
    scale.activeEmployees = 5000;
    scale.detailRows = 1000000;
    scale.payrollRows = 60000;
    qz2::demo::generateBenchmark(db, QDate(2026, 11, 21), scale);
    std::printf("generated 5000 active employees, 1000000 detail rows, 60000 payroll rows in %.1f s\n",
                t.elapsed() / 1000.0);
    // Payroll lags attendance by a month in the generated data, which would grey everyone:
    // every third employee's payroll is brought up to the latest attendance date, so that
    // both outcomes occur and the comparison below means something.
    QSqlQuery catchUp(db);
    if (!catchUp.exec(QStringLiteral(
            "insert into pMonthlyPayrollProcessing(mppID,mppCompanyID,mppEmpID,mppPayrollDate) "
            "select 1000000+eEmpID,1,eEmpID,(select max(eadDate) from pEmpAttendanceDetail) "
            "from pEmployee where eEmpID % 3 = 0")))
        std::printf("could not bring payroll up to date: %s\n", qPrintable(catchUp.lastError().text()));
    db.close();
    db.open();

    qz2::gadocon = db;
    qz2::gintCompanyID = 1;
    qz2::gintUserID = 1;
    qz2::gdtProcessDate = QDate(2026, 11, 21);
    qz2::fnLoadLinkTableNames();

    QComboBox employees;
    t.restart();
    const qint64 before = qz2::db::statementCount();
    qz2::frmEmployeesAttendanceEntryStatus picker(&employees);
    picker.Form_Load();
    picker.show();
    QApplication::processEvents();
    picker.repaint();
    const double openMs = static_cast<double>(t.nsecsElapsed()) / 1e6;
    const int rows = picker.mfgEmployee->Rows() - 1;
    QVector<qint32> ids;
    QVector<bool> greyed;
    for (int r = 1; r <= rows; ++r) {
        ids << picker.mfgEmployee->TextMatrix(r, 0).toInt();
        greyed << picker.mfgEmployee->cellBackColor(r, 0).isValid();
    }
    std::printf("picker open (query, rows, greying, first paint): %.1f ms for %d employees, %lld statements, %lld greyed\n",
                openMs, rows, static_cast<long long>(qz2::db::statementCount() - before),
                static_cast<long long>(greyed.count(true)));

    // The per-employee statements, in the same run, on the same employees, until the cap.
    t.restart();
    const qint64 literalBefore = qz2::db::statementCount();
    int done = 0;
    int mismatches = 0;
    const int chunk = 25;
    while (done < ids.size() && t.elapsed() < capSeconds * 1000) {
        const QVector<qint32> part = ids.mid(done, chunk);
        const QVector<bool> flags = qz2::picker::blockedPerEmployee(db, part);
        for (int i = 0; i < part.size(); ++i)
            if (flags[i] != greyed[done + i]) ++mismatches;
        done += static_cast<int>(part.size());
    }
    const double literalS = t.elapsed() / 1000.0;
    std::printf("per-employee statements: %d of %d employees in %.1f s (%lld statements), %.1f employees/s%s\n", done,
                static_cast<int>(ids.size()), literalS,
                static_cast<long long>(qz2::db::statementCount() - literalBefore), done / literalS,
                done < ids.size() ? " (capped)" : "");
    if (done < ids.size())
        std::printf("per-employee statements, all employees at that rate: about %.0f s\n", ids.size() * literalS / done);
    std::printf("greying differs on %d of %d employees compared\n", mismatches, done);
    return mismatches == 0 ? 0 : 1;
}
