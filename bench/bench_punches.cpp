// Times a month's punch import of a large company: a time-clock log of 5,000 employees x 31
// days x 6 punches (930,000) and 70,000 double presses, 1,000,000 lines in all, is written to
// a temporary folder, then read, matched to the employees and paired day by day, with the time of
// each step and the peak resident memory of the three together (the kernel's high-water mark is
// reset after the file is written). Run by hand (see README), never as a test:
//   build/release/bench/bench_punches [--employees N] [--days N]
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <cstdio>

#include "BenchSupport.h"
#include "punches/PunchFile.h"
#include "punches/PunchMatch.h"
#include "punches/PunchPairs.h"

using namespace qz2::punches;

namespace {

using benchmonth::optionValue;
using benchmonth::resetPeak;
using benchmonth::statusKb;

// The clock writes punches as they happen: each day, each punch of the day, every employee
// within a few minutes of the others. States: check-in, break-out, break-in, check-out,
// overtime-in, overtime-out. Some codes come padded with blanks or zeros, as clocks do, and
// 7 punches in 93 are pressed twice, the second time 30 to 89 seconds later.
qint64 writeLog(const QString& path, int employees, int days) {
    benchmonth::ClockLog log(path);
    if (!log.isOpen()) return -1;
    const int minutes[6] = {8 * 60, 12 * 60, 12 * 60 + 30, 17 * 60, 18 * 60, 20 * 60};
    const int states[6] = {0, 2, 3, 1, 4, 5};
    qint64 punches = 0;
    quint32 seed = 12345;
    for (int day = 1; day <= days; ++day) {
        const QByteArray date = QDate(2026, 3, 1).addDays(day - 1).toString(Qt::ISODate).toLatin1();
        for (int k = 0; k < 6; ++k) {
            for (int e = 1; e <= employees; ++e) {
                seed = seed * 1664525u + 1013904223u;
                // Up to 15 minutes late, at any second.
                const int at = (minutes[k] + int(seed >> 28)) * 60 + int((seed >> 8) % 60);
                const QByteArray code = e % 10 == 0   ? QByteArray::number(e).rightJustified(9, ' ')
                                        : e % 10 == 1 ? QByteArray::number(e).rightJustified(6, '0')
                                                      : QByteArray::number(e);
                const bool twice = (punches * 7) % 93 < 7;
                for (const int second : {at, at + 30 + int((seed >> 4) % 60)}) {
                    log.add(code, date, second, 1 + e % 4, states[k]);
                    if (!twice) break;
                }
                ++punches;
            }
        }
    }
    return log.finish();
}

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments();
    const int employees = optionValue(args, QStringLiteral("--employees"), 5000);
    const int days = optionValue(args, QStringLiteral("--days"), 31);

    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("punches.txt"));
    QElapsedTimer t;
    t.start();
    const qint64 lines = writeLog(path, employees, days);
    const qint64 bytes = QFile(path).size();
    std::printf("log: %lld punch lines, %.1f MB, written in %lld ms\n", lines, bytes / 1048576.0,
                t.elapsed());

    QVector<Employee> staff;
    staff.reserve(employees);
    for (int e = 1; e <= employees; ++e) staff.append({e, QString::number(e), true, QString()});
    PairingOptions options;
    options.from = QDate(2026, 3, 1);
    options.to = options.from.addDays(days - 1);
    options.businessDate = options.to.addDays(1);

    resetPeak();
    const long baseKb = statusKb("VmRSS:");
    t.restart();
    ReadResult read = readPunchFile(path);
    const qint64 readMs = t.elapsed();
    const qsizetype punches = read.punches.size();
    MatchResult matched = matchPunches(std::move(read.punches), staff);
    read.punches = {};
    const qint64 matchMs = t.elapsed() - readMs;
    QHash<qint32, QVector<PunchDay>> paired;
    paired.reserve(matched.punchesByEmployee.size());
    qint64 pairs = 0;
    qint64 flaggedDays = 0;
    qint64 duplicates = 0;
    for (auto it = matched.punchesByEmployee.cbegin(); it != matched.punchesByEmployee.cend();
         ++it) {
        QVector<PunchDay> result = pairPunches(it.value(), options);
        for (const PunchDay& d : result) {
            pairs += d.pairs.size();
            duplicates += d.duplicatesDropped;
            if (d.flags) ++flaggedDays;
        }
        paired.insert(it.key(), std::move(result));
    }
    const qint64 pairMs = t.elapsed() - readMs - matchMs;
    const qint64 totalMs = t.elapsed();
    const long peakKb = statusKb("VmHWM:");

    std::printf("read:  %lld punches, %d problems, %s  %lld ms\n", qint64(punches),
                read.problems.total(), qPrintable(read.message), readMs);
    std::printf("match: %d punches to %lld employees, %lld codes unknown  %lld ms\n",
                matched.matched, qint64(matched.punchesByEmployee.size()),
                qint64(matched.unknownCodes.size()), matchMs);
    std::printf("pair:  %lld pairs, %lld double presses dropped, %lld flagged days  %lld ms\n",
                pairs, duplicates, flaggedDays, pairMs);
    std::printf("total: %lld ms; peak resident memory %.0f MB (%.0f MB before reading)\n", totalMs,
                peakKb / 1024.0, baseKb / 1024.0);
    return 0;
}
