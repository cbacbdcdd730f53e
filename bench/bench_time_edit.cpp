// Times one committed time edit on the entry form with everything that follows it: the
// picker's time written into the cell, the order checks, the mirror kept in step, the worked
// hours of every day recomputed from the mirror and the current day's difference and claim.
// The period is 31 days of six pairs each (186 mirror rows). The grace start of each weekday
// is read once into the form's statement cache beforehand, so an edit must not reach the
// database at all. Run by hand (see README), never as a test:
//   build/release/bench/bench_time_edit [--edits 1000]
#include <QApplication>
#include <QElapsedTimer>
#include <QSqlDatabase>
#include <QTemporaryDir>
#include <QTimeEdit>
#include <algorithm>
#include <cstdio>
#include <vector>

#include "db/Database.h"
#include "demo/DemoData.h"
#include "entry/frmEmployeeDailyAttendance.h"
#include "rules/Population.h"
#include "shared/BasAttendence.h"
#include "shared/FlexGrid.h"
#include "shared/MsgBox.h"

namespace {

double ms(const QElapsedTimer& t) {
    return static_cast<double>(t.nsecsElapsed()) / 1e6;
}

// The six pairs of every day: 07:00-08:00, 08:30-10:00, 10:30-12:00, 13:00-14:30,
// 15:00-16:30, 17:00-18:00.
const char* const kPairs[6][2] = {{"07:00", "08:00"}, {"08:30", "10:00"}, {"10:30", "12:00"},
                                  {"13:00", "14:30"}, {"15:00", "16:30"}, {"17:00", "18:00"}};

}  // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    int edits = 1000;
    const QStringList args = app.arguments();
    for (int i = 1; i + 1 < args.size(); ++i)
        if (args[i] == QLatin1String("--edits")) edits = std::max(1, args[i + 1].toInt());

    QTemporaryDir dir;
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("bench"));
    db.setDatabaseName(dir.filePath(QStringLiteral("bench.sqlite")));
    db.open();
    qz2::demo::createSchema(db);
    qz2::demo::BenchScale scale;  // the company's settings; the volumes are not needed here
    scale.entries = 1;
    scale.activeEmployees = 1;
    scale.detailRows = 1;
    scale.payrollRows = 0;
    qz2::demo::generateBenchmark(db, QDate(2026, 11, 21), scale);

    qz2::gadocon = db;
    qz2::gintCompanyID = 1;
    qz2::gintUserID = 1;
    qz2::gdtProcessDate = QDate(2026, 11, 21);
    qz2::gstrMsgboxTitle = QStringLiteral("Benchmark");
    qz2::gstrEntryMode = QStringLiteral("N");
    qz2::fnLoadLinkTableNames();
    qz2::msgbox_testing::setAutoAnswer(true);

    qz2::frmEmployeeDailyAttendance form;
    form.Form_Load();
    form.lngWorkTimeSettingID = 1;
    form.resize(1040, 620);
    form.show();
    QApplication::setActiveWindow(&form);
    QApplication::processEvents();

    // December: 31 present days of eight scheduled hours, six pairs each in the mirror.
    const QDate first(2026, 12, 1);
    qz2::FlexGridModel& days = *form.mfgAttendance->flexModel();
    qz2::rules::fnBuildDayRows(days, first, first.addDays(30));
    QVector<QStringList> mirror;
    for (int r = 1; r < days.Rows(); ++r) {
        days.setTextMatrix(r, 2, QStringLiteral("P"));
        days.setTextMatrix(r, 4, QStringLiteral("08:00"));
        for (int p = 0; p < 6; ++p)
            mirror.push_back({days.TextMatrix(r, 1), QString::number(p + 1),
                              QString::fromLatin1(kPairs[p][0]),
                              QString::fromLatin1(kPairs[p][1])});
    }
    form.mfgMirrorGrid->flexModel()->setAllRows(mirror);
    std::printf("period: %d days, %d mirror rows\n", days.Rows() - 1,
                form.mfgMirrorGrid->Rows() - 1);

    // Warm the statement cache: every weekday's grace start is read once here.
    form.fnCalculateTotalHours();
    const int day = 16;  // a Wednesday in the middle of the month
    form.mfgAttendance->setCurrentCell(day, 1);
    QApplication::processEvents();
    qz2::FlexGrid* grid = form.mfgCheckinCheckOut;
    const QString baseline = form.mfgAttendance->TextMatrix(day, 3);
    const qint64 statementsBefore = qz2::db::statementCount();

    // Each edit: open the third check-out in the picker, change it, leave the cell. The time
    // measured is the leave, which commits and recomputes everything.
    std::vector<double> times;
    times.reserve(static_cast<size_t>(edits));
    QElapsedTimer t;
    for (int i = 0; i < edits; ++i) {
        grid->setCurrentIndex(grid->model()->index(2, 3));
        form.dtpCheckTime->setTime(QTime(12, i % 2 == 0 ? 5 : 0));
        t.restart();
        grid->setCurrentIndex(grid->model()->index(2, 1));
        times.push_back(ms(t));
    }
    QApplication::processEvents();
    const qint64 statements = qz2::db::statementCount() - statementsBefore;

    const QString worked = form.mfgAttendance->TextMatrix(day, 3);
    // The last edit leaves 12:05 after an odd number of edits, 12:00 after an even one.
    const QString expected =
        edits % 2 == 1
            ? qz2::parseTime(baseline).value_or(qz2::TimeValue()).addMinutes(5).format(u"hh:mm")
            : baseline;
    std::sort(times.begin(), times.end());
    std::printf("committed time edit: median %.3f ms, worst %.3f ms over %d edits\n",
                times[times.size() / 2], times.back(), edits);
    std::printf("statements during the edits: %lld\n", static_cast<long long>(statements));
    std::printf("worked hours of the edited day: %s (expected %s)\n", qPrintable(worked),
                qPrintable(expected));
    const bool ok = statements == 0 && worked == expected;
    if (!ok) std::printf("FAILED\n");
    return ok ? 0 : 1;
}
