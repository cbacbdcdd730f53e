// Times the whole-company import of a month of time-clock punches on SQLite, save included.
// A fresh demo database gets N new employees of company 1 (copies of an active demo employee
// with a department and an hourly rate, without entries), so that each is proposed the
// business date's pay month. The business date is moved to the last day of that pay month
// when the proposal stays the same, so that the whole month has happened. A time-clock log of
// the new employees' punches (six a scheduled working day: in, break-out, break-in, out,
// overtime-in, overtime-out, each a few minutes either side of the schedule) is written to a
// temporary folder and read, then importCompanyPunches is timed: the whole import, the time
// and the statements of each employee (from the progress callback, with the first and the
// last tenth apart, at most 500 each, to show whether either grows with the company), and the
// peak resident memory of reading and importing (the high-water mark is reset after the log
// is written). Every employee must be saved: the program fails when one is skipped.
// With --profile every statement is timed by its shape, from its start to the next
// statement's start (so the commit falls to the save's last statement and the computing
// between statements to the statement before it). Run by hand (see README), never as a test:
//   build/release/bench/bench_company_import [--employees N] [--dry-run] [--profile]
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QHash>
#include <QRegularExpression>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <vector>

#include "BenchSupport.h"
#include "db/Database.h"
#include "entry/EntryReads.h"
#include "entry/EntryRules.h"
#include "entry/StatementCache.h"
#include "punches/CompanyImport.h"
#include "punches/PunchFile.h"

using namespace qz2;

namespace {

using benchmonth::ms;
using benchmonth::optionValue;
using benchmonth::resetPeak;
using benchmonth::statusKb;

constexpr qint16 kCompany = 1;

// The new employees: identifiers from `firstId` on, numbers "B00001" on.
struct NewStaff {
    qint32 firstId = 0;
    QVector<QByteArray> codes;
};

// Adds `count` active employees to company 1 in one transaction, each a copy of `model`'s
// department, date of join, currency and hourly rate under a new identifier and number.
// nullopt (said on stderr) when a statement fails or a new number is already taken.
std::optional<NewStaff> addEmployees(QSqlDatabase& db, qint32 model, int count) {
    const int width = std::max(5, static_cast<int>(QString::number(count).size()));
    QSqlQuery q(db);
    if (!q.exec(QStringLiteral("select count(*) from pEmployee where eEmpNo like 'B%'")) ||
        !q.next() || q.value(0).toInt() != 0) {
        std::fprintf(stderr, "the demo already has numbers beginning with B\n");
        return std::nullopt;
    }
    if (!q.exec(QStringLiteral("select ifnull(max(eEmpID),0) from pEmployee")) || !q.next()) {
        std::fprintf(stderr, "cannot read the employees: %s\n", qPrintable(q.lastError().text()));
        return std::nullopt;
    }
    NewStaff staff;
    staff.firstId = q.value(0).toInt() + 1;
    staff.codes.reserve(count);
    db.transaction();
    QSqlQuery ins(db);
    ins.prepare(QStringLiteral(
        "insert into pEmployee (eEmpID,eCompanyID,eEmpNo,eName,eActive,eDeptID,eDateofjoin,"
        "ecurrencyid,PerHourRate) select ?,eCompanyID,?,?,1,eDeptID,eDateofjoin,ecurrencyid,"
        "PerHourRate from pEmployee where eEmpID=?"));
    for (int k = 0; k < count; ++k) {
        const QString number =
            QStringLiteral("B") + QString::number(k + 1).rightJustified(width, '0');
        ins.bindValue(0, staff.firstId + k);
        ins.bindValue(1, number);
        ins.bindValue(2, QStringLiteral("Clock Staff ") + QString::number(k + 1));
        ins.bindValue(3, model);
        if (!ins.exec() || ins.numRowsAffected() != 1) {
            std::fprintf(stderr, "cannot add employee %s: %s\n", qPrintable(number),
                         qPrintable(ins.lastError().text()));
            db.rollback();
            return std::nullopt;
        }
        staff.codes.append(number.toLatin1());
    }
    db.commit();
    return staff;
}

// A day the clock sees the staff: the scheduled first check-in and last check-out, and the
// break between, in minutes after midnight. A day with one scheduled pair gets a half-hour
// break in its middle.
struct ClockDay {
    QDate date;
    int in = 0;
    int breakOut = 0;
    int breakIn = 0;
    int out = 0;
};

int minutesOf(const TimeValue& t) {
    return t.hour() * 60 + t.minute();
}

// The days of the period up to the last day punched that the work-time setting schedules and
// the calendar keeps as working days, read as Populate reads them. `offDays` counts the
// others.
QVector<ClockDay> clockDays(const QSqlDatabase& db, const entry::EmployeeSettings& employee,
                            qint32 setting, QDate from, QDate lastPunched, int& offDays) {
    entry::StatementCache cache;
    entry::PeriodReads reads(db, kCompany, setting, employee.calendarCondition,
                             employee.workTimeCondition, cache);
    const QList<QDate> holidays = reads.holidays(from, lastPunched);
    QVector<ClockDay> days;
    offDays = 0;
    for (QDate d = from; d <= lastPunched; d = d.addDays(1)) {
        const std::optional<entry::ScheduleLine> line = reads.daySchedule(d);
        const QVector<entry::ScheduledPair> pairs =
            line ? entry::completePairs(*line) : QVector<entry::ScheduledPair>();
        if (pairs.isEmpty() || holidays.contains(d)) {
            ++offDays;
            continue;
        }
        ClockDay day;
        day.date = d;
        day.in = minutesOf(pairs.front().checkIn);
        day.out = minutesOf(pairs.back().checkOut);
        if (pairs.size() >= 2) {
            day.breakOut = minutesOf(pairs[0].checkOut);
            day.breakIn = minutesOf(pairs[1].checkIn);
        } else {
            day.breakOut = (day.in + day.out) / 2 - 15;
            day.breakIn = day.breakOut + 30;
        }
        days.append(day);
    }
    return days;
}

// The clock's log, day by day and within a day punch by punch, every employee within a few
// minutes of the others (states: 0 in, 2 break-out, 3 break-in, 1 out, 4 overtime-in,
// 5 overtime-out). Arrivals are up to 10 minutes early or 4 late, the break is taken up to
// 9 minutes late and ended up to 10 minutes early, the day ends up to 14 minutes late, and
// overtime starts 15 to 29 minutes after it and lasts one to two and a half hours; every
// punch is at least 11 minutes after the one before, so none is a double press. The number
// of punch lines, or -1.
qint64 writeLog(const QString& path, const QVector<QByteArray>& codes,
                const QVector<ClockDay>& days) {
    benchmonth::ClockLog log(path);
    if (!log.isOpen()) return -1;
    quint32 seed = 20261101;
    auto draw = [&seed](int range) {
        seed = seed * 1664525u + 1013904223u;
        return static_cast<int>((seed >> 8) % static_cast<quint32>(range));
    };
    const int states[6] = {0, 2, 3, 1, 4, 5};
    std::vector<int> at(static_cast<std::size_t>(codes.size()) * 6);  // seconds, per punch
    for (const ClockDay& day : days) {
        for (qsizetype e = 0; e < codes.size(); ++e) {
            int* t = &at[static_cast<std::size_t>(e) * 6];
            const int out = day.out + draw(15);
            const int overtimeIn = out + 15 + draw(15);
            const int minutes[6] = {day.in - 10 + draw(15),
                                    day.breakOut + draw(10),
                                    day.breakIn - 10 + draw(10),
                                    out,
                                    overtimeIn,
                                    overtimeIn + 60 + draw(91)};
            for (int k = 0; k < 6; ++k) t[k] = minutes[k] * 60 + draw(60);
        }
        const QByteArray date = day.date.toString(Qt::ISODate).toLatin1();
        for (int k = 0; k < 6; ++k) {
            for (qsizetype e = 0; e < codes.size(); ++e) {
                const int second = at[static_cast<std::size_t>(e) * 6 + k];
                log.add(codes[e], date, second, static_cast<int>(1 + e % 4), states[k]);
            }
        }
    }
    return log.finish();
}

// A statement's shape: its literals and numbers blanked, so that one statement run for every
// employee is counted as one.
QString shapeOf(const QString& sql) {
    static const QRegularExpression literal(QStringLiteral("'[^']*'"));
    static const QRegularExpression number(QStringLiteral("\\b\\d+\\b"));
    QString s = sql.simplified();
    s.replace(literal, QStringLiteral("'?'"));
    s.replace(number, QStringLiteral("#"));
    return s.left(150);
}

struct Shape {
    qint64 count = 0;
    qint64 nanos = 0;
};

// min / median / max of the differences between successive marks in [from, to).
struct Spread {
    double min = 0, median = 0, max = 0, mean = 0;
};
template <typename T>
Spread spreadOf(const std::vector<T>& marks, std::size_t from, std::size_t to, double scale) {
    std::vector<double> v;
    for (std::size_t i = from; i < to && i + 1 < marks.size(); ++i)
        v.push_back(static_cast<double>(marks[i + 1] - marks[i]) / scale);
    if (v.empty()) return {};
    Spread s;
    s.min = *std::min_element(v.begin(), v.end());
    s.max = *std::max_element(v.begin(), v.end());
    s.median = benchmonth::median(v);
    double sum = 0;
    for (double x : v) sum += x;
    s.mean = sum / static_cast<double>(v.size());
    return s;
}

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments();
    const int employees = optionValue(args, QStringLiteral("--employees"), 5000);
    const bool dryRun = args.contains(QStringLiteral("--dry-run"));
    const bool profile = args.contains(QStringLiteral("--profile"));
    if (employees < 1) {
        std::fprintf(stderr, "--employees needs a whole number of at least 1\n");
        return 2;
    }

    QTemporaryDir dir;
    const std::optional<qint32> model = benchmonth::openDemoSession(dir);
    if (!model) return 2;
    QSqlDatabase db = gadocon;
    const QDate session = gdtProcessDate;

    // The staff.
    QElapsedTimer t;
    t.start();
    const std::optional<NewStaff> staff = addEmployees(db, *model, employees);
    if (!staff) return 2;
    const double addMs = ms(t);
    const entry::EmployeeSettings settings =
        entry::readEmployeeSettings(db, kCompany, staff->firstId);
    const std::optional<qint32> setting =
        entry::readNewestWorkTimeSetting(db, kCompany, settings.workTimeCondition);
    if (!settings.hasDepartment || !setting) {
        std::fprintf(stderr, "the model employee has no department or no work-time setting\n");
        return 2;
    }

    // The period: what a new employee is proposed on the session's business date; the business
    // date moves to the period's last day when that proposes the same period.
    auto proposal = [&](QDate businessDate) {
        const QDate start = entry::readProposedStart(db, kCompany, staff->firstId, businessDate)
                                .value_or(businessDate);
        return entry::proposePeriod(start, settings.dateOfJoin);
    };
    const entry::ProposedPeriod period = proposal(session);
    if (period.invalidDateOfJoin || !period.start.isValid()) {
        std::fprintf(stderr, "no period can be proposed for the new employees\n");
        return 2;
    }
    QDate businessDate = session;
    if (period.end > session) {
        const entry::ProposedPeriod later = proposal(period.end);
        if (later.start == period.start && later.end == period.end) businessDate = period.end;
    }
    const QDate lastPunched = std::min(period.end, businessDate);
    int offDays = 0;
    const QVector<ClockDay> days =
        clockDays(db, settings, *setting, period.start, lastPunched, offDays);
    std::printf(
        "staff: %d employees added to company 1 in %.0f ms (copies of employee %d, "
        "department %s, joined %s)\n",
        employees, addMs, *model, qPrintable(settings.departmentName.trimmed()),
        settings.dateOfJoin ? qPrintable(dateText(*settings.dateOfJoin)) : "never");
    std::printf(
        "period: %s to %s, business date %s (the session's %s proposes the same "
        "period); %lld working days punched, %d without schedule or holidays%s\n",
        qPrintable(dateText(period.start)), qPrintable(dateText(period.end)),
        qPrintable(dateText(businessDate)), qPrintable(dateText(session)),
        static_cast<long long>(days.size()), offDays,
        lastPunched < period.end ? ", the days after the business date not punched" : "");

    // The log.
    const QString path = dir.filePath(QStringLiteral("punches.txt"));
    t.restart();
    const qint64 lines = writeLog(path, staff->codes, days);
    if (lines < 0) {
        std::fprintf(stderr, "cannot write the log\n");
        return 2;
    }
    std::printf("log: %lld punch lines, %.1f MB, written in %.0f ms\n", lines,
                QFile(path).size() / 1048576.0, ms(t));
    std::fflush(stdout);

    resetPeak();
    const long baseKb = statusKb("VmRSS:");
    t.restart();
    punches::ReadResult read = punches::readPunchFile(path);
    const double readMs = ms(t);
    std::printf("read: %lld punches, %d problems, %s  %.0f ms\n",
                static_cast<long long>(read.punches.size()), read.problems.total(),
                qPrintable(read.message), readMs);
    if (!read.ok()) return 2;

    punches::CompanyImportRequest request;
    request.company = kCompany;
    request.user = gintUserID;
    request.interfaceId = glngInterfaceID;
    request.from = period.start;
    request.to = period.end;
    request.businessDate = businessDate;
    request.dryRun = dryRun;
    if (const auto problem = punches::requestProblem(request)) {
        std::fprintf(stderr, "%s\n", qPrintable(*problem));
        return 2;
    }

    QHash<QString, Shape> shapes;
    QHash<QString, QString> samples;  // the last text of each shape
    QString lastShape;
    qint64 lastAt = 0;
    if (profile)
        db::setFaultHook([&](const QString& sql) {
            const qint64 now = t.nsecsElapsed();
            if (!lastShape.isEmpty()) shapes[lastShape].nanos += now - lastAt;
            lastShape = shapeOf(sql);
            ++shapes[lastShape].count;
            samples.insert(lastShape, sql);
            lastAt = now;
            return QString();
        });

    // Marks taken before each employee and at the end.
    std::vector<qint64> statements;
    std::vector<qint64> nanos;
    statements.reserve(static_cast<std::size_t>(employees) + 1);
    nanos.reserve(static_cast<std::size_t>(employees) + 1);
    const qint64 statementsBefore = db::statementCount();
    t.restart();
    const punches::CompanyImportResult result = punches::importCompanyPunches(
        db, std::move(read.punches), request, [&](int, int, const QString&) {
            nanos.push_back(t.nsecsElapsed());
            statements.push_back(db::statementCount());
            return true;
        });
    const double importMs = ms(t);
    if (profile && !lastShape.isEmpty()) shapes[lastShape].nanos += t.nsecsElapsed() - lastAt;
    db::setFaultHook({});
    const long peakKb = statusKb("VmHWM:");
    const qint64 statementsAll = db::statementCount() - statementsBefore;

    const std::size_t total = statements.empty() ? 0 : statements.size() - 1;
    const std::size_t block = std::max<std::size_t>(1, std::min<std::size_t>(500, total / 10));
    const Spread perStatements = spreadOf(statements, 0, total, 1.0);
    const Spread firstStatements = spreadOf(statements, 0, block, 1.0);
    const Spread lastStatements = spreadOf(statements, total - std::min(block, total), total, 1.0);
    const Spread perMs = spreadOf(nanos, 0, total, 1e6);
    const Spread firstMs = spreadOf(nanos, 0, block, 1e6);
    const Spread lastMs = spreadOf(nanos, total - std::min(block, total), total, 1e6);

    int pairs = 0;
    int withoutPunches = 0;
    for (const punches::EmployeeImport& e : result.employees) {
        pairs += e.pairs;
        withoutPunches += e.workingDaysWithoutPunches;
    }
    const QStringList summary = punches::companyImportSummary(result, dryRun);
    std::printf(
        "import%s: %.2f s for %lld employees, %.2f ms per employee (of which %.0f ms "
        "before the first employee: reading the staff, matching)\n",
        dryRun ? " (dry run)" : "", importMs / 1000.0, static_cast<long long>(total),
        total ? importMs / static_cast<double>(total) : 0.0,
        nanos.empty() ? 0.0 : nanos.front() / 1e6);
    std::printf(
        "  ms per employee: min %.2f, median %.2f, max %.2f; first %zu median %.2f "
        "(mean %.2f), last %zu median %.2f (mean %.2f)\n",
        perMs.min, perMs.median, perMs.max, block, firstMs.median, firstMs.mean, block,
        lastMs.median, lastMs.mean);
    std::printf(
        "  statements per employee: min %.0f, median %.0f, max %.0f; first %zu median "
        "%.0f (max %.0f), last %zu median %.0f (max %.0f); %lld in all\n",
        perStatements.min, perStatements.median, perStatements.max, block, firstStatements.median,
        firstStatements.max, block, lastStatements.median, lastStatements.max, statementsAll);
    std::printf(
        "  %d pairs laid on, %d working days without punches; peak resident memory "
        "%.0f MB (%.0f MB before reading)\n",
        pairs, withoutPunches, peakKb / 1024.0, baseKb / 1024.0);
    std::printf("result: %s\n", qPrintable(summary.value(0)));

    // What was written for the new employees.
    QSqlQuery check(db);
    check.exec(QStringLiteral("select count(*), (select count(*) from pEmpAttendanceDetail d "
                              "join pEmployeeAttendence h on d.eadCompanyID=h.eaCompanyID and "
                              "d.eadAttendanceID=h.eaID where h.eaEmpID>=%1) from "
                              "pEmployeeAttendence where eaEmpID>=%1 and eaCancelled=0")
                   .arg(staff->firstId));
    qint64 written = -1;
    if (check.next()) {
        written = check.value(0).toLongLong();
        std::printf("written: %lld entries, %lld detail lines for the new employees\n", written,
                    check.value(1).toLongLong());
    }
    for (const QString& code : result.unmatchedCodes)
        std::printf("unmatched: %s\n", qPrintable(code));

    if (profile) {
        QVector<std::pair<QString, Shape>> sorted;
        for (auto it = shapes.cbegin(); it != shapes.cend(); ++it)
            sorted.append({it.key(), it.value()});
        std::sort(sorted.begin(), sorted.end(),
                  [](const auto& a, const auto& b) { return a.second.nanos > b.second.nanos; });
        const double per = static_cast<double>(std::max<std::size_t>(total, 1));
        std::printf(
            "profile: ms per employee from each statement's start to the next one's; of "
            "that, the statement alone run again on the finished database (reads with "
            "their values written in only); statements per employee; shape\n");
        for (qsizetype i = 0; i < std::min<qsizetype>(sorted.size(), 20); ++i) {
            const QString sql = samples.value(sorted[i].first);
            QString alone = QStringLiteral("      -");
            if (sql.trimmed().startsWith(QLatin1String("select"), Qt::CaseInsensitive) &&
                !QString(sql)
                     .remove(QRegularExpression(QStringLiteral("'[^']*'")))
                     .contains(QLatin1Char('?'))) {
                QSqlQuery q(db);
                q.setForwardOnly(true);
                constexpr int kRuns = 20;
                QElapsedTimer run;
                run.start();
                for (int k = 0; k < kRuns; ++k) {
                    q.exec(sql);
                    while (q.next())
                        for (int c = 0; c < q.record().count(); ++c) q.value(c);
                }
                alone = QString::number(ms(run) / kRuns * sorted[i].second.count / per, 'f', 3)
                            .rightJustified(7);
            }
            std::printf("  %7.3f %s %6.1f  %s\n", sorted[i].second.nanos / 1e6 / per,
                        qPrintable(alone), static_cast<double>(sorted[i].second.count) / per,
                        qPrintable(sorted[i].first));
        }
        // What a commit costs on this disk: one page changed (and changed back by the next),
        // journalled and synced as the connection is set.
        QSqlQuery q(db);
        constexpr int kCommits = 20;
        QElapsedTimer run;
        run.start();
        for (int k = 0; k < kCommits; ++k) {
            q.exec(QStringLiteral("BEGIN IMMEDIATE"));
            q.exec(QStringLiteral("update pSettings set gracetime=gracetime%1 where companyid=1")
                       .arg(k % 2 ? QStringLiteral("-1") : QStringLiteral("+1")));
            q.exec(QStringLiteral("COMMIT"));
        }
        const double commitMs = ms(run) / kCommits;
        q.exec(QStringLiteral("pragma journal_mode"));
        const QString journal = q.next() ? q.value(0).toString() : QString();
        q.exec(QStringLiteral("pragma synchronous"));
        const QString synchronous = q.next() ? q.value(0).toString() : QString();
        std::printf(
            "  a write transaction of one changed page: %.3f ms (journal_mode %s, "
            "synchronous %s)\n",
            commitMs, qPrintable(journal), qPrintable(synchronous));
    }

    const int skipped = result.count(punches::Outcome::Skipped);
    if (skipped > 0 || result.stopped || static_cast<int>(total) != employees) {
        std::printf("FAILED: %d of %d employees skipped or not reached\n",
                    skipped + result.notReached, employees);
        int shown = 0;
        for (const punches::EmployeeImport& e : result.employees) {
            if (e.outcome != punches::Outcome::Skipped) continue;
            std::printf("  %s: %s\n", qPrintable(e.code), qPrintable(e.reason));
            for (qsizetype k = 0; k < std::min<qsizetype>(e.flaggedDays.size(), 3); ++k)
                std::printf("    %s\n", qPrintable(e.flaggedDays[k]));
            if (++shown == 5) break;
        }
        return 1;
    }
    if (written != (dryRun ? 0 : employees)) {
        std::printf("FAILED: %lld entries written for the new employees\n",
                    static_cast<long long>(written));
        return 1;
    }
    return 0;
}
