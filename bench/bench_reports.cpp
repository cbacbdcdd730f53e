// Times the reports on a large company: 5,000 active employees with a month's entry each
// and 1,000,000 detail lines (SQLite). The muster and the payroll summary to CSV, XLSX and
// PDF, and one entry's sheet, each with its statements, pages and the peak resident memory
// of that report alone (the kernel's high-water mark is reset before each). Run by hand
// (see README), never as a test:
//   build/release/bench/bench_reports
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <cstdio>
#include <functional>

#include "BenchSupport.h"
#include "db/Database.h"
#include "demo/DemoData.h"
#include "reports/Report.h"
#include "reports/ReportData.h"
#include "reports/ReportFigures.h"
#include "reports/ReportSql.h"
#include "reports/ReportWriters.h"
#include "shared/BasAttendence.h"

namespace {

using benchmonth::resetPeak;
using benchmonth::statusKb;

}  // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    const QDate processDate(2026, 11, 21);

    QTemporaryDir dir;
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("bench"));
    db.setDatabaseName(dir.filePath(QStringLiteral("bench.sqlite")));
    db.open();
    QElapsedTimer t;
    t.start();
    qz2::demo::createSchema(db);
    qz2::demo::BenchScale scale;
    scale.entries = 5000;  // one month (October 2026) for each employee
    scale.activeEmployees = 5000;
    scale.detailRows = 1000000;
    scale.allowanceRows = 100000;
    scale.payrollRows = 0;
    qz2::demo::generateBenchmark(db, processDate, scale);
    std::printf(
        "generated 5000 employees, 5000 entries, 1000000 detail lines, 100000 claim lines in %.1f "
        "s\n",
        t.elapsed() / 1000.0);
    db.close();
    db.open();
    qz2::gadocon = db;
    qz2::gintCompanyID = 1;
    qz2::fnLoadLinkTableNames();

    qz2::reports::Request period;
    period.company = 1;
    period.from = QDate(2026, 10, 1);
    period.to = QDate(2026, 10, 31);
    period.companyTitle = QStringLiteral("Benchmark Works");

    // The detail statement alone, its rows read and dropped: what the database and the driver
    // cost before any figure is worked out.
    {
        qz2::reports::sql::Scope scope;
        scope.company = 1;
        scope.from = period.from;
        scope.to = period.to;
        t.restart();
        qint64 rows = 0;
        qz2::db::forEachRow(db,
                            qz2::reports::sql::liveDetailsQuery(qz2::db::Dialect::of(db), scope),
                            [&rows](const QSqlQuery&) { ++rows; });
        std::printf("detail statement alone: %lld rows in %.0f ms\n", rows,
                    static_cast<double>(t.nsecsElapsed()) / 1e6);
        // The muster's stages one by one.
        t.restart();
        const qz2::reports::PeriodSource src = qz2::reports::readPeriod(
            db, qz2::db::Dialect::of(db), scope, qz2::reports::PeriodReport::Muster);
        const double readMs = static_cast<double>(t.nsecsElapsed()) / 1e6;
        t.restart();
        const qz2::reports::Muster m = qz2::reports::buildMuster(src);
        const double figuresMs = static_cast<double>(t.nsecsElapsed()) / 1e6;
        t.restart();
        const qz2::reports::ReportTable table = qz2::reports::musterTable(m, period.companyTitle);
        std::printf("muster stages: read %.0f ms, figures %.0f ms, table %.0f ms\n", readMs,
                    figuresMs, static_cast<double>(t.nsecsElapsed()) / 1e6);
    }

    struct Case {
        const char* name;
        qz2::reports::Kind kind;
        qz2::reports::Format format;
        const char* file;
    };
    const Case cases[] = {
        {"muster  csv ", qz2::reports::Kind::Muster, qz2::reports::Format::Csv, "muster.csv"},
        {"muster  xlsx", qz2::reports::Kind::Muster, qz2::reports::Format::Xlsx, "muster.xlsx"},
        {"muster  pdf ", qz2::reports::Kind::Muster, qz2::reports::Format::Pdf, "muster.pdf"},
        {"payroll csv ", qz2::reports::Kind::Payroll, qz2::reports::Format::Csv, "payroll.csv"},
        {"payroll xlsx", qz2::reports::Kind::Payroll, qz2::reports::Format::Xlsx, "payroll.xlsx"},
        {"payroll pdf ", qz2::reports::Kind::Payroll, qz2::reports::Format::Pdf, "payroll.pdf"},
        {"sheet   pdf ", qz2::reports::Kind::Sheet, qz2::reports::Format::Pdf, "sheet.pdf"},
        {"sheet   xlsx", qz2::reports::Kind::Sheet, qz2::reports::Format::Xlsx, "sheet.xlsx"},
        {"sheet   csv ", qz2::reports::Kind::Sheet, qz2::reports::Format::Csv, "sheet.csv"},
    };
    std::printf("%-13s %10s %10s %10s %8s %11s %9s\n", "report", "read ms", "write ms", "total ms",
                "stmts", "rows/pages", "peak MB");
    for (const Case& c : cases) {
        qz2::reports::Request r = period;
        r.kind = c.kind;
        r.entryNo = QStringLiteral("ATT2500");
        resetPeak();
        const qint64 before = qz2::db::statementCount();
        t.restart();
        const qz2::reports::ReportTable table = qz2::reports::makeReport(db, r);
        const double readMs = static_cast<double>(t.nsecsElapsed()) / 1e6;
        int pages = 0;
        const QString out = dir.filePath(QString::fromLatin1(c.file));
        qz2::reports::writeReport(table, c.format, out, [&pages](int done, int) {
            pages = done;
            return true;
        });
        const double totalMs = static_cast<double>(t.nsecsElapsed()) / 1e6;
        const int units =
            c.format == qz2::reports::Format::Pdf ? pages : static_cast<int>(table.rows.size());
        std::printf("%-13s %10.0f %10.0f %10.0f %8lld %11d %9ld   (%lld kB)\n", c.name, readMs,
                    totalMs - readMs, totalMs, qz2::db::statementCount() - before, units,
                    statusKb("VmHWM:") / 1024,
                    static_cast<long long>(QFileInfo(out).size() / 1024));
    }
    return 0;
}
