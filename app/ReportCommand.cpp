// The report subcommand of the host program: options in, one file out. It reads and writes
// through src/reports only; all it adds is the command line, the connection and the exit
// codes.

#include "ReportCommand.h"

#include <unistd.h>

#include <QCommandLineParser>
#include <QGuiApplication>
#include <QSqlDatabase>
#include <cstdio>
#include <optional>

#include "HostDatabase.h"
#include "db/Database.h"
#include "reports/Report.h"
#include "reports/ReportWriters.h"
#include "shared/BasAttendence.h"

namespace qz2::app {

namespace {

using host::kExitDatabase;
using host::kExitUsage;
constexpr int kExitRequest = 5;
constexpr int kExitOutput = 6;

int fail(int code, const QString& message) {
    return host::commandFailed("report", code, message);
}

}  // namespace

int runReportCommand(int argc, char** argv) {
    // No window is ever shown: without a display, draw offscreen.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") && qEnvironmentVariableIsEmpty("DISPLAY") &&
        qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    QGuiApplication::setApplicationName(QStringLiteral("qz2-attendance"));
    QGuiApplication::setOrganizationName(QStringLiteral("qz2"));

    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Writes a report: the monthly muster, an entry's sheet or the payroll "
                       "summary, as PDF, XLSX or CSV."));
    parser.addHelpOption();
    parser.addPositionalArgument(QStringLiteral("report"), QStringLiteral("The word \"report\"."));
    parser.addPositionalArgument(QStringLiteral("kind"),
                                 QStringLiteral("muster, sheet or payroll."));
    const QCommandLineOption from(QStringLiteral("from"), QStringLiteral("First day, yyyy-mm-dd."),
                                  QStringLiteral("DATE"));
    const QCommandLineOption to(QStringLiteral("to"),
                                QStringLiteral("Last day, yyyy-mm-dd (at most 62 days)."),
                                QStringLiteral("DATE"));
    const QCommandLineOption department(QStringLiteral("department"),
                                        QStringLiteral("Only this department."),
                                        QStringLiteral("ID"));
    const QCommandLineOption entry(
        QStringLiteral("entry"), QStringLiteral("The sheet's entry number."), QStringLiteral("NO"));
    const QCommandLineOption format(QStringLiteral("format"), QStringLiteral("pdf, xlsx or csv."),
                                    QStringLiteral("FORMAT"));
    const QCommandLineOption out(QStringLiteral("out"), QStringLiteral("The file to write."),
                                 QStringLiteral("FILE"));
    const auto [database, odbc, company] = host::databaseOptions();
    const QCommandLineOption title(QStringLiteral("title"),
                                   QStringLiteral("The company's title on the report."),
                                   QStringLiteral("TEXT"), QStringLiteral("Daily Attendance"));
    parser.addOptions({from, to, department, entry, format, out, database, odbc, company, title});
    if (!parser.parse(app.arguments())) return fail(kExitUsage, parser.errorText());
    if (parser.isSet(QStringLiteral("help"))) {
        std::fputs(qPrintable(parser.helpText()), stdout);
        return 0;
    }

    const QStringList words = parser.positionalArguments();
    if (words.size() != 2)
        return fail(kExitUsage, QStringLiteral("say which report: muster, sheet or payroll."));
    const std::optional<reports::Kind> kind = reports::kindFromName(words[1]);
    if (!kind)
        return fail(kExitUsage,
                    QStringLiteral("unknown report '%1': muster, sheet or payroll.").arg(words[1]));
    const std::optional<reports::Format> fmt = reports::formatFromName(parser.value(format));
    if (!fmt) return fail(kExitUsage, QStringLiteral("--format takes pdf, xlsx or csv."));
    if (parser.value(out).isEmpty())
        return fail(kExitUsage, QStringLiteral("--out FILE is needed."));

    reports::Request request;
    request.kind = *kind;
    request.companyTitle = parser.value(title);
    const std::optional<qint16> companyId = host::sixteenBitId(parser.value(company));
    if (!companyId)
        return fail(kExitUsage,
                    QStringLiteral("--company takes a whole number from -32768 to 32767."));
    request.company = *companyId;
    bool ok = false;
    if (*kind == reports::Kind::Sheet) {
        if (parser.value(entry).trimmed().isEmpty())
            return fail(kExitUsage, QStringLiteral("--entry NO is needed."));
        request.entryNo = parser.value(entry);
    } else {
        const std::optional<QDate> f = host::isoDate(parser.value(from));
        const std::optional<QDate> t = host::isoDate(parser.value(to));
        if (!f || !t)
            return fail(kExitUsage, QStringLiteral("--from and --to take dates as yyyy-mm-dd."));
        request.from = *f;
        request.to = *t;
        if (parser.isSet(department)) {
            const qint32 id = parser.value(department).toInt(&ok);
            if (!ok) return fail(kExitUsage, QStringLiteral("--department takes a whole number."));
            request.department = id;
        }
    }
    if (parser.isSet(database) && parser.isSet(odbc))
        return fail(kExitUsage, QStringLiteral("give either --database or --odbc, not both."));

    // The same opening as the register's: an SQLite file that must be an attendance
    // database, SQL Server through ODBC with its session settings, or the demo database.
    QString openError;
    const std::optional<QSqlDatabase> opened = host::openAttendanceDatabase(
        host::DatabaseChoice{parser.value(database), parser.value(odbc)}, QDate::currentDate(),
        QStringLiteral("report"), openError);
    if (!opened) return fail(kExitDatabase, openError);
    QSqlDatabase db = *opened;

    const bool showProgress = isatty(fileno(stderr)) != 0;
    const reports::Progress progress = [showProgress](int done, int total) {
        if (showProgress) std::fprintf(stderr, "\r%d of %d", done, total);
        return true;
    };
    try {
        gadocon = db;
        fnLoadLinkTableNames();
        const reports::ReportTable table = reports::makeReport(db, request);
        try {
            reports::writeReport(table, *fmt, parser.value(out), progress);
        } catch (const reports::ReportError& e) {
            if (showProgress) std::fputs("\n", stderr);
            return fail(kExitOutput, e.message());
        }
        if (showProgress) std::fputs("\n", stderr);
    } catch (const reports::ReportError& e) {
        return fail(kExitRequest, e.message());
    } catch (const db::DbError& e) {
        return fail(kExitDatabase, QStringLiteral("the database cannot be read: ") + e.message());
    }
    std::printf("wrote %s\n", qPrintable(parser.value(out)));
    return 0;
}

}  // namespace qz2::app
