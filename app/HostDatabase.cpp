#include "HostDatabase.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSqlError>
#include <QSqlQuery>
#include <QStandardPaths>
#include <cstdio>
#include <exception>

#include "db/Database.h"
#include "demo/DemoData.h"

namespace qz2::host {

DatabaseOptions databaseOptions() {
    return {QCommandLineOption(QStringLiteral("database"),
                               QStringLiteral("SQLite database file to use."), QStringLiteral("FILE")),
            QCommandLineOption(QStringLiteral("odbc"),
                               QStringLiteral("ODBC connection string of a SQL Server database."),
                               QStringLiteral("CONNECTION STRING")),
            QCommandLineOption(QStringLiteral("company"),
                               QStringLiteral("Company identifier (default 1)."),
                               QStringLiteral("ID"), QStringLiteral("1"))};
}

std::optional<qint16> sixteenBitId(const QString& text) {
    bool ok = false;
    const int id = text.toInt(&ok);
    if (!ok || id < -32768 || id > 32767) return std::nullopt;
    return static_cast<qint16>(id);
}

namespace {

// What every SQLite file begins with.
constexpr char kSqliteHeader[] = "SQLite format 3";  // and a NUL: 16 bytes

QString oneLine(QString text) {
    return text.simplified();
}

QString quotedPath(const QString& file) {
    return QLatin1Char('\'') + file + QLatin1Char('\'');
}

// The link table is what every attendance database has and every other SQLite file lacks;
// without it the register would open on an empty list and say nothing useful.
QString linkTableProblem(const QSqlDatabase& db, const QString& file) {
    QSqlQuery q(db);
    if (!q.exec(QStringLiteral("select count(*) from sqlite_master where type in ('table','view') "
                               "and lower(name) = 'linktable'")) ||
        !q.next())
        return QStringLiteral("cannot read the database file %1: %2")
            .arg(quotedPath(file), oneLine(q.lastError().text()));
    if (q.value(0).toInt() == 0)
        return QStringLiteral("%1 has no linktable table: it is not an attendance database.")
            .arg(quotedPath(file));
    return {};
}

}  // namespace

std::optional<QDate> isoDate(const QString& text) {
    const QDate d = QDate::fromString(text, Qt::ISODate);
    if (!d.isValid() || text.size() != 10) return std::nullopt;
    return d;
}

int commandFailed(const char* command, int code, const QString& message) {
    std::fprintf(stderr, "qz2-attendance %s: %s\n", command, qPrintable(message));
    return code;
}

QString sqliteFileProblem(const QString& file) {
    const QFileInfo info(file);
    if (!info.exists())
        return QStringLiteral("the database file %1 does not exist.").arg(quotedPath(file));
    if (info.isDir())
        return QStringLiteral("%1 is a folder, not a database file.").arg(quotedPath(file));
    QFile f(file);
    if (!f.open(QIODevice::ReadOnly))
        return QStringLiteral("cannot read the database file %1: %2.")
            .arg(quotedPath(file), f.errorString());
    const QByteArray head = f.read(16);
    if (head.isEmpty() && info.size() == 0)
        return QStringLiteral("the database file %1 is empty: it is not an attendance database.")
            .arg(quotedPath(file));
    if (head != QByteArray(kSqliteHeader, sizeof kSqliteHeader))
        return QStringLiteral("%1 is not an SQLite database: it is not an attendance database.")
            .arg(quotedPath(file));
    return {};
}

QString defaultDemoPath() {
    const QString dir = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
    QDir().mkpath(dir);
    return dir + QStringLiteral("/demo.sqlite");
}

QStringList odbcSessionStatements(const qz2::db::Dialect& dialect) {
    if (!dialect.isSqlServer()) return {};
    return {QStringLiteral("set dateformat mdy")};
}

QString demoPunchesPath(const QString& demoFile) {
    return QFileInfo(demoFile).absolutePath() + QStringLiteral("/demo-punches.txt");
}

std::optional<QSqlDatabase> openAttendanceDatabase(const DatabaseChoice& choice, QDate processDate,
                                                   const QString& connectionName, QString& error,
                                                   bool* created) {
    if (created) *created = false;
    if (!choice.odbc.isEmpty()) {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QODBC"), connectionName);
        db.setDatabaseName(choice.odbc);
        if (!db.open()) {
            error =
                QStringLiteral("cannot open the database: %1").arg(oneLine(db.lastError().text()));
            return std::nullopt;
        }
        try {
            for (const QString& statement : odbcSessionStatements(qz2::db::Dialect::of(db)))
                qz2::db::execute(db, statement);
        } catch (const qz2::db::DbError& e) {
            db.close();
            error = QStringLiteral("cannot prepare the database session: %1")
                        .arg(oneLine(e.message()));
            return std::nullopt;
        }
        return db;
    }

    QString file = choice.sqliteFile;
    bool createDemo = false;
    if (file.isEmpty()) {
        file = defaultDemoPath();
        createDemo = !QFileInfo::exists(file);
    }
    if (!createDemo) {
        error = sqliteFileProblem(file);
        if (!error.isEmpty()) return std::nullopt;
    }
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), connectionName);
    db.setDatabaseName(file);
    db.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=5000"));
    if (!db.open()) {
        error = createDemo ? QStringLiteral("cannot create the demo database %1: %2")
                                 .arg(quotedPath(file), oneLine(db.lastError().text()))
                           : QStringLiteral("cannot open the database: %1")
                                 .arg(oneLine(db.lastError().text()));
        return std::nullopt;
    }
    if (createDemo) {
        try {
            qz2::demo::createSchema(db);
            qz2::demo::generate(db, processDate);
            // The time clocks' log of the month the demo leaves for the clerk, beside it. The
            // demo database stands without it: a file that cannot be written is said, no more.
            try {
                qz2::demo::writeDemoPunches(db, processDate, demoPunchesPath(file));
            } catch (const std::exception& e) {
                std::fprintf(stderr, "qz2-attendance: the demo's punch file was not written: %s\n",
                             qPrintable(oneLine(QString::fromUtf8(e.what()))));
            }
        } catch (const std::exception& e) {
            db.close();
            QFile::remove(file);
            error = QStringLiteral("cannot create the demo database: %1")
                        .arg(oneLine(QString::fromUtf8(e.what())));
            return std::nullopt;
        }
        if (created) *created = true;
        return db;
    }
    error = linkTableProblem(db, file);
    if (!error.isEmpty()) {
        db.close();
        return std::nullopt;
    }
    return db;
}

}  // namespace qz2::host
