// The import-punches subcommand: reads the file, opens the database, and runs the
// company import the register's button runs, with a progress line on a terminal.

#include "PunchCommand.h"

#include <unistd.h>

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDate>
#include <QElapsedTimer>
#include <cstdio>
#include <utility>

#include "HostDatabase.h"
#include "db/Database.h"
#include "punches/CompanyImport.h"
#include "punches/PunchFile.h"
#include "shared/BasAttendence.h"

namespace qz2::app {

namespace {

using host::kExitDatabase;
using host::kExitUsage;
constexpr int kExitFile = 4;

int fail(int code, const QString& message) {
    return host::commandFailed("import-punches", code, message);
}

}  // namespace

const char* importPunchesHelpText() {
    return "\nPunches from time clocks:\n"
           "  qz2-attendance import-punches FILE --from yyyy-mm-dd --to yyyy-mm-dd [--dry-run]\n"
           "  saves, for every active employee with punches in FILE, the entry of that period\n"
           "  that the entry form would build, one transaction each; see\n"
           "  qz2-attendance import-punches --help.\n";
}

int runImportPunchesCommand(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("qz2-attendance"));
    QCoreApplication::setOrganizationName(QStringLiteral("qz2"));

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Imports a punch file (a time clock's attendance log, or CSV) for the whole company:\n"
        "every active employee with punches in it gets the entry of the period that the entry\n"
        "form would build (proposed period, Populate, the punches, the counts), saved as OK\n"
        "saves it, one transaction per employee. An employee whose proposed period is another,\n"
        "who has a live entry in the period, whose settings are missing or who has a flagged\n"
        "day (a check-out missing, ...) is skipped with the reason; nothing of theirs is written.\n"
        "Exit codes: 0 all saved, 1 some skipped, 2 bad options, 3 the database, 4 the file."));
    parser.addPositionalArgument(QStringLiteral("import-punches"),
                                 QStringLiteral("The words \"import-punches\"."));
    parser.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("The punch file."));
    const QCommandLineOption help({QStringLiteral("h"), QStringLiteral("help")},
                                  QStringLiteral("Displays help on commandline options."));
    const QCommandLineOption from(QStringLiteral("from"),
                                  QStringLiteral("First day of the period, yyyy-mm-dd."),
                                  QStringLiteral("DATE"));
    const QCommandLineOption to(QStringLiteral("to"),
                                QStringLiteral("Last day of the period, yyyy-mm-dd."),
                                QStringLiteral("DATE"));
    const QCommandLineOption dryRun(
        QStringLiteral("dry-run"),
        QStringLiteral("Run every check and save, then roll each back: the same summary, "
                       "nothing written."));
    const QCommandLineOption user(QStringLiteral("user"),
                                  QStringLiteral("User identifier (default 1)."),
                                  QStringLiteral("ID"), QStringLiteral("1"));
    const QCommandLineOption date(
        QStringLiteral("date"),
        QStringLiteral("Business date, yyyy-mm-dd (default today): the entries' date; "
                       "punches after it flag their day."),
        QStringLiteral("DATE"));
    const QCommandLineOption duplicates(
        QStringLiteral("duplicate-minutes"),
        QStringLiteral("A punch within this many minutes of the one kept before it is a "
                       "repeat (default 2)."),
        QStringLiteral("N"), QStringLiteral("2"));
    const auto [database, odbc, company] = host::databaseOptions();
    parser.addOptions({help, from, to, dryRun, database, odbc, company, user, date, duplicates});

    if (!parser.parse(QCoreApplication::arguments()))
        return fail(kExitUsage, parser.errorText() + QStringLiteral(" See --help."));
    if (parser.isSet(help)) {
        QString text = parser.helpText();
        text.replace(QLatin1String("<executable_name>"), QLatin1String("qz2-attendance"));
        std::fputs(qPrintable(text), stdout);
        return 0;
    }
    const QStringList args = parser.positionalArguments();
    if (args.size() < 2)
        return fail(kExitUsage, QStringLiteral("say which file to import. See --help."));
    if (args.size() > 2)
        return fail(kExitUsage,
                    QStringLiteral("unexpected argument '%1'. See --help.").arg(args.value(2)));
    if (!parser.isSet(from) || !parser.isSet(to))
        return fail(kExitUsage,
                    QStringLiteral("give the period: --from yyyy-mm-dd --to yyyy-mm-dd."));

    punches::CompanyImportRequest request;
    const std::optional<QDate> first = host::isoDate(parser.value(from));
    const std::optional<QDate> last = host::isoDate(parser.value(to));
    if (!first || !last)
        return fail(kExitUsage, QStringLiteral("--from and --to take dates as yyyy-mm-dd."));
    request.from = *first;
    request.to = *last;
    request.businessDate = QDate::currentDate();
    if (parser.isSet(date)) {
        const std::optional<QDate> business = host::isoDate(parser.value(date));
        if (!business)
            return fail(kExitUsage, QStringLiteral("--date takes a date as yyyy-mm-dd, not '%1'.")
                                        .arg(parser.value(date)));
        request.businessDate = *business;
    }
    const std::optional<qint16> companyId = host::sixteenBitId(parser.value(company));
    const std::optional<qint16> userId = host::sixteenBitId(parser.value(user));
    if (!companyId || !userId)
        return fail(
            kExitUsage,
            QStringLiteral("--company and --user take whole numbers from -32768 to 32767."));
    request.company = *companyId;
    request.user = *userId;
    request.interfaceId = kInterfaceID;
    request.dryRun = parser.isSet(dryRun);
    bool minutesOk = false;
    request.pairing.duplicateMinutes = parser.value(duplicates).toInt(&minutesOk);
    if (!minutesOk || request.pairing.duplicateMinutes < 0 || request.pairing.duplicateMinutes > 60)
        return fail(kExitUsage,
                    QStringLiteral("--duplicate-minutes takes a whole number from 0 to 60."));
    if (const std::optional<QString> problem = punches::requestProblem(request))
        return fail(kExitUsage, *problem + QLatin1Char('.'));
    if (parser.isSet(database) && parser.isSet(odbc))
        return fail(kExitUsage, QStringLiteral("give either --database or --odbc, not both."));

    // The file first: a file that cannot be read is said before the database is touched.
    punches::ReadResult read = punches::readPunchFile(args[1]);
    if (!read.ok()) {
        return fail(kExitFile, punches::refusalText(read).join(QStringLiteral("\n  ")));
    }

    QString openError;
    const std::optional<QSqlDatabase> opened = host::openAttendanceDatabase(
        host::DatabaseChoice{parser.value(database), parser.value(odbc)}, request.businessDate,
        QStringLiteral("import-punches"), openError);
    if (!opened) return fail(kExitDatabase, openError);

    // A progress line only where somebody watches it; a log gets the summary alone.
    const bool terminal = ::isatty(STDERR_FILENO) == 1;
    int lastWidth = 0;
    QElapsedTimer shown;
    shown.start();
    const auto progress = [&](int done, int total, const QString& who) {
        if (!terminal || (done < total && done > 0 && shown.elapsed() < 100)) return true;
        shown.restart();
        QString line = done < total
                           ? QStringLiteral("importing punches: %1 of %2 employees, %3")
                                 .arg(done)
                                 .arg(total)
                                 .arg(who)
                           : QStringLiteral("importing punches: %1 of %1 employees").arg(total);
        line = line.left(100);
        const int width = static_cast<int>(line.size());
        std::fprintf(stderr, "\r%s%*s", qPrintable(line), std::max(0, lastWidth - width), "");
        if (done == total) std::fputc('\n', stderr);
        std::fflush(stderr);
        lastWidth = width;
        return true;
    };

    punches::CompanyImportResult result;
    try {
        // The module's statements name the suite's tables through its link table.
        gadocon = *opened;
        gintCompanyID = request.company;
        gintUserID = request.user;
        gdtProcessDate = request.businessDate;
        fnLoadLinkTableNames();
        result = punches::importCompanyPunches(*opened, std::move(read.punches), request, progress);
    } catch (const std::exception& e) {
        if (terminal && lastWidth > 0) std::fputc('\n', stderr);
        QString why = db::errorMessage(e);
        // The statement too: whoever looks after the database needs it.
        if (const auto* failed = dynamic_cast<const db::DbError*>(&e))
            why += QStringLiteral("\n  the statement: ") + failed->statement().simplified();
        return fail(kExitDatabase, why);
    }
    QStringList summary = punches::companyImportSummary(result, request.dryRun);
    summary << punches::unreadLinesText(read);
    std::fputs(qPrintable(summary.join(QLatin1Char('\n')) + QLatin1Char('\n')), stdout);
    return punches::companyImportExitCode(result);
}

}  // namespace qz2::app
