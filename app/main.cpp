// qz2-attendance: opens the attendance register on a database, as a host application of
// the suite would: it opens the connection, fills clsAttendance with the caller context and
// calls Show().
//
// Exit codes: 0 done, 1 the register's picture could not be made, 2 bad options, 3 a
// database that cannot be opened or is not an attendance database, 4 no display.

#include <QZ2EmpDailyAtten/clsAttendance.h>

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QFile>
#include <QTimer>
#include <cstdio>
#include <optional>

#include "HistoryCommand.h"
#include "HostDatabase.h"
#include "PunchCommand.h"
#include "ReportCommand.h"
#include "register/FrmMaster.h"

#if defined(Q_OS_UNIX) && !defined(Q_OS_MACOS)
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace {

using qz2::host::kExitDatabase;
using qz2::host::kExitUsage;
constexpr int kExitDisplay = 4;
constexpr char kProgram[] = "qz2-attendance";

void say(const QString& line) {
    std::fprintf(stderr, "%s: %s\n", kProgram, qPrintable(line));
}

// Options that Qt itself reads from the command line (QGuiApplication, QApplication and the
// X11 platform), with a value or without. They are Qt's to take, not ours to refuse.
bool isQtOptionWithValue(const QString& a) {
    static const QStringList names{
        QStringLiteral("platform"),        QStringLiteral("platformpluginpath"),
        QStringLiteral("platformtheme"),   QStringLiteral("plugin"),
        QStringLiteral("qwindowgeometry"), QStringLiteral("qwindowtitle"),
        QStringLiteral("qwindowicon"),     QStringLiteral("display"),
        QStringLiteral("session"),         QStringLiteral("style"),
        QStringLiteral("stylesheet")};
    return a.startsWith(QLatin1Char('-')) && !a.startsWith(QLatin1String("---")) &&
           names.contains(a.mid(a.startsWith(QLatin1String("--")) ? 2 : 1));
}
bool isQtFlag(const QString& a) {
    static const QStringList names{QStringLiteral("reverse"),     QStringLiteral("widgetcount"),
                                   QStringLiteral("nograb"),      QStringLiteral("dograb"),
                                   QStringLiteral("testability"), QStringLiteral("sync")};
    const QString bare = a.mid(a.startsWith(QLatin1String("--")) ? 2 : 1);
    return a.startsWith(QLatin1Char('-')) &&
           (names.contains(bare) || bare.startsWith(QLatin1String("style=")) ||
            bare.startsWith(QLatin1String("stylesheet=")) ||
            bare.startsWith(QLatin1String("qmljsdebugger=")));
}

// The program's own arguments, Qt's options left out (QApplication takes those from argv).
QStringList ownArguments(int argc, char** argv, bool* platformGiven) {
    QStringList out{QString::fromLocal8Bit(argv[0])};
    for (int i = 1; i < argc; ++i) {
        const QString a = QString::fromLocal8Bit(argv[i]);
        if (a == QLatin1String("--")) {
            for (++i; i < argc; ++i) out << QString::fromLocal8Bit(argv[i]);
            break;
        }
        if (isQtOptionWithValue(a)) {
            if (a.endsWith(QLatin1String("platform")) && platformGiven) *platformGiven = true;
            ++i;  // its value
            continue;
        }
        if (isQtFlag(a)) continue;
        out << a;
    }
    return out;
}

// What the register's command line asks for.
struct RegisterOptions {
    qz2::host::DatabaseChoice database;
    qint16 company = 1;
    qint16 user = 1;
    QDate processDate = QDate::currentDate();
    QString title;
    QString screenshot;  // a PNG to draw the register into, then exit
};

// Parses the register's options. A value when the run ends here: 0 after --help or
// --version, kExitUsage after a bad option (told in one line).
std::optional<int> parseRegisterOptions(const QStringList& arguments, RegisterOptions& o) {
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Daily attendance: the register of attendance entries."));
    const QCommandLineOption help({QStringLiteral("h"), QStringLiteral("help")},
                                  QStringLiteral("Displays help on commandline options."));
    const QCommandLineOption version({QStringLiteral("v"), QStringLiteral("version")},
                                     QStringLiteral("Displays version information."));
    const auto [database, odbc, company] = qz2::host::databaseOptions();
    const QCommandLineOption user(QStringLiteral("user"),
                                  QStringLiteral("User identifier (default 1)."),
                                  QStringLiteral("ID"), QStringLiteral("1"));
    const QCommandLineOption date(QStringLiteral("date"),
                                  QStringLiteral("Business date, yyyy-mm-dd (default today)."),
                                  QStringLiteral("DATE"));
    const QCommandLineOption title(QStringLiteral("title"),
                                   QStringLiteral("Title of every message box."),
                                   QStringLiteral("TEXT"), QStringLiteral("Daily Attendance"));
    const QCommandLineOption screenshot(
        QStringLiteral("screenshot"),
        QStringLiteral("Render the opened register to a PNG file and exit."),
        QStringLiteral("FILE"));
    parser.addOptions({help, version, database, odbc, company, user, date, title, screenshot});

    if (!parser.parse(arguments)) {
        say(parser.errorText() + QStringLiteral(" See --help."));
        return kExitUsage;
    }
    if (parser.isSet(help)) {
        QString text = parser.helpText() + QString::fromLatin1(qz2::app::historyHelpText()) +
                       QString::fromLatin1(qz2::app::importPunchesHelpText());
        text.replace(QLatin1String("<executable_name>"), QLatin1String(kProgram));
        std::fputs(qPrintable(text), stdout);
        return 0;
    }
    if (parser.isSet(version)) {
        std::printf("%s %s\n", kProgram, QZ2_VERSION);
        return 0;
    }
    if (!parser.positionalArguments().isEmpty()) {
        say(QStringLiteral("unexpected argument '%1'. See --help.")
                .arg(parser.positionalArguments().first()));
        return kExitUsage;
    }

    const std::optional<qint16> companyId = qz2::host::sixteenBitId(parser.value(company));
    const std::optional<qint16> userId = qz2::host::sixteenBitId(parser.value(user));
    if (!companyId || !userId) {
        say(QStringLiteral("--company and --user take whole numbers from -32768 to 32767."));
        return kExitUsage;
    }
    o.company = *companyId;
    o.user = *userId;
    if (parser.isSet(date)) {
        o.processDate = QDate::fromString(parser.value(date), Qt::ISODate);
        if (!o.processDate.isValid()) {
            say(QStringLiteral("--date takes a date as yyyy-mm-dd, not '%1'.")
                    .arg(parser.value(date)));
            return kExitUsage;
        }
    }
    if (parser.isSet(database) && parser.isSet(odbc)) {
        say(QStringLiteral("give either --database or --odbc, not both."));
        return kExitUsage;
    }
    o.database.sqliteFile = parser.value(database);
    o.database.odbc = parser.value(odbc);
    if (parser.isSet(database) && o.database.sqliteFile.isEmpty()) {
        say(QStringLiteral("--database takes a file name. See --help."));
        return kExitUsage;
    }
    if (parser.isSet(odbc) && o.database.odbc.isEmpty()) {
        say(QStringLiteral("--odbc takes a connection string. See --help."));
        return kExitUsage;
    }
    o.title = parser.value(title);
    o.screenshot = parser.value(screenshot);
    if (parser.isSet(screenshot) && o.screenshot.isEmpty()) {
        say(QStringLiteral("--screenshot takes a file name. See --help."));
        return kExitUsage;
    }
    return std::nullopt;
}

bool displayAvailable(bool platformGiven) {
    return platformGiven || !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") ||
           !qEnvironmentVariableIsEmpty("DISPLAY") ||
           !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
}

// Qt wants a private runtime folder and complains on every run without one (a root shell, a
// service, CI). Give it one of our own, made for this user only, as Qt would make it.
void provideRuntimeFolder() {
#if defined(Q_OS_UNIX) && !defined(Q_OS_MACOS)
    if (!qEnvironmentVariableIsEmpty("XDG_RUNTIME_DIR")) return;
    const QByteArray dir =
        QFile::encodeName(QDir::tempPath()) + "/qz2-runtime-" + QByteArray::number(getuid());
    ::mkdir(dir.constData(), 0700);
    struct stat st {};
    // Only a folder that is ours alone will do; otherwise Qt says what is wrong with it.
    if (::lstat(dir.constData(), &st) == 0 && S_ISDIR(st.st_mode) && st.st_uid == getuid() &&
        (st.st_mode & 0777) == 0700)
        qputenv("XDG_RUNTIME_DIR", dir);
#endif
}

// The offscreen platform (pictures without a display) has no window manager to tell a
// window's size limits to, and says so for every window; there is nothing to be done about
// it, so that one remark is not passed on. Everything else is.
QtMessageHandler g_qtHandler = nullptr;
void quietOffscreenRemarks(QtMsgType type, const QMessageLogContext& context,
                           const QString& message) {
    if (type == QtWarningMsg &&
        message == QLatin1String("This plugin does not support propagateSizeHints()"))
        return;
    if (g_qtHandler) g_qtHandler(type, context, message);
}

// Opens the register on the options' database and runs it until the clerk closes it, or
// draws it into the screenshot file.
int runRegister(int argc, char** argv) {
    bool platformGiven = false;
    RegisterOptions options;
    if (const std::optional<int> done =
            parseRegisterOptions(ownArguments(argc, argv, &platformGiven), options))
        return *done;

    if (!options.screenshot.isEmpty() && !displayAvailable(platformGiven)) {
        // A picture needs no screen.
        qputenv("QT_QPA_PLATFORM", "offscreen");
    } else if (!displayAvailable(platformGiven)) {
        std::fprintf(stderr,
                     "qz2-attendance: no display found (DISPLAY is not set).\n"
                     "Run it inside a desktop session, or under a virtual display:\n"
                     "  xvfb-run -a qz2-attendance ...\n"
                     "or render the register to a picture without a display:\n"
                     "  qz2-attendance --screenshot register.png\n");
        return kExitDisplay;
    }
    g_qtHandler = qInstallMessageHandler(quietOffscreenRemarks);

    QApplication app(argc, argv);
    QApplication::setApplicationName(QLatin1String(kProgram));
    QApplication::setOrganizationName(QStringLiteral("qz2"));
    QApplication::setApplicationVersion(QStringLiteral(QZ2_VERSION));

    QString error;
    bool created = false;
    const std::optional<QSqlDatabase> db = qz2::host::openAttendanceDatabase(
        options.database, options.processDate, QStringLiteral("attendance"), error, &created);
    if (!db) {
        say(error);
        return kExitDatabase;
    }
    if (created) say(QStringLiteral("created the demo database %1").arg(db->databaseName()));

    clsAttendance attendance;
    attendance.setProperty("adocon", QVariant::fromValue(*db));
    attendance.setProperty("MsgboxTitle", options.title);
    attendance.setProperty("ProcessDate", options.processDate);
    attendance.setProperty("intUserID", QVariant::fromValue(options.user));
    attendance.setProperty("intCompanyID", QVariant::fromValue(options.company));

    if (options.screenshot.isEmpty()) {
        attendance.Show();
        return 0;
    }
    int rc = 0;
    // Once the register is up, picture it and close it; Show() then returns.
    QTimer::singleShot(0, &app, [&] {
        qz2::FrmMaster* form = qz2::FrmMaster::instance();
        if (!form) {
            rc = 1;
            return;
        }
        form->resize(900, 560);
        QApplication::processEvents();
        if (!form->grab().save(options.screenshot)) {
            say(QStringLiteral("cannot write %1").arg(options.screenshot));
            rc = 1;
        }
        form->close();
    });
    attendance.Show();
    return rc;
}

}  // namespace

int main(int argc, char** argv) {
    // Each run does one thing, told by its name as the first argument and dispatched here,
    // before the register's options are parsed; without a name the register opens.
    provideRuntimeFolder();
    if (argc > 1 && qstrcmp(argv[1], "report") == 0) return qz2::app::runReportCommand(argc, argv);
    if (argc > 1 && qstrcmp(argv[1], "import-punches") == 0)
        return qz2::app::runImportPunchesCommand(argc, argv);
    if (argc > 1 && qstrcmp(argv[1], "add-history-table") == 0)
        return qz2::app::runAddHistoryTableCommand(argc, argv);
    return runRegister(argc, argv);
}
