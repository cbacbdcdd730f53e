// qz2-attendance: opens the attendance register on a database, as a host application of
// the suite would: it opens the connection, fills clsAttendance with the caller context and
// calls Show().

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QFileInfo>
#include <QGuiApplication>
#include <QScreen>
#include <QSqlDatabase>
#include <QSqlError>
#include <QStandardPaths>
#include <QTimer>
#include <QZ2EmpDailyAtten/clsAttendance.h>
#include <cstdio>

#include "ReportCommand.h"
#include "demo/DemoData.h"
#include "register/FrmMaster.h"

namespace {

constexpr int kExitUsage = 2;
constexpr int kExitDatabase = 3;
constexpr int kExitDisplay = 4;

bool hasDisplay(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        const QByteArray a(argv[i]);
        if (a == "--help" || a == "-h" || a == "--version" || a == "-v" || a.startsWith("--screenshot")) return true;
        if (a == "-platform") return true;
    }
    if (!qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) return true;
    return !qEnvironmentVariableIsEmpty("DISPLAY") || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
}

QString defaultDemoPath() {
    const QString dir = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
    QDir().mkpath(dir);
    return dir + QStringLiteral("/demo.sqlite");
}

}  // namespace

int main(int argc, char** argv) {
    if (argc > 1 && qstrcmp(argv[1], "report") == 0) return qz2::app::runReportCommand(argc, argv);
    if (!hasDisplay(argc, argv)) {
        std::fprintf(stderr,
                     "qz2-attendance: no display found (DISPLAY is not set).\n"
                     "Run it inside a desktop session, or under a virtual display:\n"
                     "  xvfb-run -a qz2-attendance ...\n"
                     "or render the register to a picture without a display:\n"
                     "  qz2-attendance --screenshot register.png\n");
        return kExitDisplay;
    }
    bool screenshotOnly = false;
    for (int i = 1; i < argc; ++i) {
        const QByteArray a(argv[i]);
        // Help, version and pictures need no screen.
        if (a.startsWith("--screenshot") || a == "--help" || a == "-h" || a == "--version" || a == "-v")
            screenshotOnly = true;
    }
    if (screenshotOnly && qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") && qEnvironmentVariableIsEmpty("DISPLAY"))
        qputenv("QT_QPA_PLATFORM", "offscreen");

    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("qz2-attendance"));
    QApplication::setOrganizationName(QStringLiteral("qz2"));
    QApplication::setApplicationVersion(QStringLiteral(QZ2_VERSION));

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Daily attendance: the register of attendance entries."));
    parser.addHelpOption();
    parser.addVersionOption();
    QCommandLineOption database(QStringLiteral("database"), QStringLiteral("SQLite database file to open."),
                                QStringLiteral("FILE"));
    QCommandLineOption odbc(QStringLiteral("odbc"), QStringLiteral("ODBC connection string of a SQL Server database."),
                            QStringLiteral("CONNECTION STRING"));
    QCommandLineOption company(QStringLiteral("company"), QStringLiteral("Company identifier (default 1)."),
                               QStringLiteral("ID"), QStringLiteral("1"));
    QCommandLineOption user(QStringLiteral("user"), QStringLiteral("User identifier (default 1)."), QStringLiteral("ID"),
                            QStringLiteral("1"));
    QCommandLineOption date(QStringLiteral("date"), QStringLiteral("Business date, yyyy-mm-dd (default today)."),
                            QStringLiteral("DATE"));
    QCommandLineOption title(QStringLiteral("title"), QStringLiteral("Title of every message box."),
                             QStringLiteral("TEXT"), QStringLiteral("Daily Attendance"));
    QCommandLineOption screenshot(QStringLiteral("screenshot"),
                                  QStringLiteral("Render the opened register to a PNG file and exit."),
                                  QStringLiteral("FILE"));
    parser.addOptions({database, odbc, company, user, date, title, screenshot});
    parser.process(app);

    bool okCompany = false, okUser = false;
    const int companyId = parser.value(company).toInt(&okCompany);
    const int userId = parser.value(user).toInt(&okUser);
    if (!okCompany || companyId < -32768 || companyId > 32767 || !okUser || userId < -32768 || userId > 32767) {
        std::fprintf(stderr, "qz2-attendance: --company and --user take whole numbers from -32768 to 32767.\n");
        return kExitUsage;
    }
    QDate processDate = QDate::currentDate();
    if (parser.isSet(date)) {
        processDate = QDate::fromString(parser.value(date), Qt::ISODate);
        if (!processDate.isValid()) {
            std::fprintf(stderr, "qz2-attendance: --date takes a date as yyyy-mm-dd, not '%s'.\n",
                         qPrintable(parser.value(date)));
            return kExitUsage;
        }
    }
    if (parser.isSet(database) && parser.isSet(odbc)) {
        std::fprintf(stderr, "qz2-attendance: give either --database or --odbc, not both.\n");
        return kExitUsage;
    }

    QSqlDatabase db;
    if (parser.isSet(odbc)) {
        db = QSqlDatabase::addDatabase(QStringLiteral("QODBC"), QStringLiteral("attendance"));
        db.setDatabaseName(parser.value(odbc));
    } else {
        QString file = parser.value(database);
        bool createDemo = false;
        if (file.isEmpty()) {
            file = defaultDemoPath();
            createDemo = !QFileInfo::exists(file);
        } else if (!QFileInfo::exists(file)) {
            std::fprintf(stderr, "qz2-attendance: the database file '%s' does not exist.\n", qPrintable(file));
            return kExitDatabase;
        }
        db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("attendance"));
        db.setDatabaseName(file);
        db.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=5000"));
        if (createDemo) {
            if (!db.open()) {
                std::fprintf(stderr, "qz2-attendance: cannot create the demo database '%s': %s\n", qPrintable(file),
                             qPrintable(db.lastError().text()));
                return kExitDatabase;
            }
            try {
                qz2::demo::createSchema(db);
                qz2::demo::generate(db, processDate);
            } catch (const std::exception& e) {
                db.close();
                QFile::remove(file);
                std::fprintf(stderr, "qz2-attendance: cannot create the demo database: %s\n", e.what());
                return kExitDatabase;
            }
            std::fprintf(stderr, "qz2-attendance: created the demo database %s\n", qPrintable(file));
        }
    }
    if (!db.isOpen() && !db.open()) {
        std::fprintf(stderr, "qz2-attendance: cannot open the database: %s\n", qPrintable(db.lastError().text()));
        return kExitDatabase;
    }

    clsAttendance attendance;
    attendance.setProperty("adocon", QVariant::fromValue(db));
    attendance.setProperty("MsgboxTitle", parser.value(title));
    attendance.setProperty("ProcessDate", processDate);
    attendance.setProperty("intUserID", QVariant::fromValue(static_cast<qint16>(userId)));
    attendance.setProperty("intCompanyID", QVariant::fromValue(static_cast<qint16>(companyId)));

    if (parser.isSet(screenshot)) {
        const QString out = parser.value(screenshot);
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
            if (!form->grab().save(out)) {
                std::fprintf(stderr, "qz2-attendance: cannot write %s\n", qPrintable(out));
                rc = 1;
            }
            form->close();
        });
        attendance.Show();
        return rc;
    }
    attendance.Show();
    return 0;
}
