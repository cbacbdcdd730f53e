// The add-history-table subcommand: the one step a suite database needs before the
// module keeps the history of its entries.

#include "HistoryCommand.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDate>
#include <cstdio>

#include "HostDatabase.h"
#include "db/Database.h"
#include "history/HistoryStore.h"

namespace qz2::app {

namespace {

using host::kExitDatabase;
using host::kExitUsage;

int fail(int code, const QString& message) {
    return host::commandFailed("add-history-table", code, message);
}

}  // namespace

const char* historyHelpText() {
    return "\nHistory of entries:\n"
           "  Every save, import and cancellation of an entry is kept as a version in the table\n"
           "  pEmpAttendanceHistory (the register's History... shows them). A database without\n"
           "  that table works as before, without history. To add it:\n"
           "    qz2-attendance add-history-table --database FILE\n"
           "    qz2-attendance add-history-table --odbc \"CONNECTION STRING\"\n"
           "  or run its CREATE statements from db/sqlite/schema.sql or db/sqlserver/schema.sql.\n";
}

int runAddHistoryTableCommand(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("qz2-attendance"));
    QCoreApplication::setOrganizationName(QStringLiteral("qz2"));

    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Adds the history table of attendance entries to a database."));
    parser.addPositionalArgument(QStringLiteral("add-history-table"),
                                 QStringLiteral("The words \"add-history-table\"."));
    const QCommandLineOption help({QStringLiteral("h"), QStringLiteral("help")},
                                  QStringLiteral("Displays help on commandline options."));
    const auto [database, odbc, company] = host::databaseOptions();
    parser.addOptions({help, database, odbc});
    if (!parser.parse(QCoreApplication::arguments()))
        return fail(kExitUsage, parser.errorText() + QStringLiteral(" See --help."));
    if (parser.isSet(help)) {
        QString text = parser.helpText() + QString::fromLatin1(historyHelpText());
        text.replace(QLatin1String("<executable_name>"), QLatin1String("qz2-attendance"));
        std::fputs(qPrintable(text), stdout);
        return 0;
    }
    if (parser.positionalArguments().size() != 1)
        return fail(kExitUsage, QStringLiteral("unexpected argument '%1'. See --help.")
                                    .arg(parser.positionalArguments().value(1)));
    if (parser.isSet(database) && parser.isSet(odbc))
        return fail(kExitUsage, QStringLiteral("give either --database or --odbc, not both."));
    // A change to a database's tables is never made to one the command chose by itself.
    if (!parser.isSet(database) && !parser.isSet(odbc))
        return fail(kExitUsage,
                    QStringLiteral("say which database: --database FILE or --odbc \"...\"."));

    QString openError;
    const std::optional<QSqlDatabase> opened = host::openAttendanceDatabase(
        host::DatabaseChoice{parser.value(database), parser.value(odbc)}, QDate::currentDate(),
        QStringLiteral("history"), openError);
    if (!opened) return fail(kExitDatabase, openError);
    try {
        const bool added = history::addHistoryTable(*opened);
        std::printf("%s\n", added ? "added the history table pEmpAttendanceHistory"
                                  : "the history table pEmpAttendanceHistory is there already");
    } catch (const db::DbError& e) {
        return fail(kExitDatabase, QStringLiteral("the table cannot be added: ") + e.message());
    }
    return 0;
}

}  // namespace qz2::app
