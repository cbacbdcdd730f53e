#include "DbRoute.h"

#include <QSqlError>
#include <QSqlQuery>
#include <stdexcept>

namespace qz2test {

QString odbcRoute() {
    return qEnvironmentVariable("QZ2_TEST_ODBC").trimmed();
}

QString odbcConnectionString(const QString& driver, const QString& file, int busyTimeoutMs) {
    QString text = QStringLiteral("Driver={%1};Database=%2;").arg(driver, file);
    if (busyTimeoutMs >= 0) text += QStringLiteral("Timeout=%1;").arg(busyTimeoutMs);
    return text;
}

QSqlDatabase openSqliteFileOverOdbc(const QString& driver, const QString& file,
                                    const QString& connectionName, int busyTimeoutMs) {
    if (!QSqlDatabase::isDriverAvailable(QStringLiteral("QODBC")))
        throw std::runtime_error(
            "the ODBC route of the database tests needs Qt's ODBC plug-in (libqt6sql6-odbc); "
            "run scripts/install-deps");
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QODBC"), connectionName);
    db.setDatabaseName(odbcConnectionString(driver, file, busyTimeoutMs));
    if (!db.open()) {
        const QString why = db.lastError().text();
        db = QSqlDatabase();
        QSqlDatabase::removeDatabase(connectionName);
        throw std::runtime_error(
            QStringLiteral("cannot open %1 through the ODBC driver '%2': %3. The ODBC route of "
                           "the database tests needs the ODBC driver manager and the SQLite "
                           "ODBC driver registered as '%2'; run scripts/install-deps")
                .arg(file, driver, why)
                .toStdString());
    }
    // The driver waits for locks with a busy handler of its own, which "PRAGMA busy_timeout"
    // does not see; setting the wait through the pragma gives the connection the same,
    // visible wait that Qt's SQLite driver sets from its connect option.
    if (busyTimeoutMs >= 0) {
        QSqlQuery q(db);
        if (!q.exec(QStringLiteral("PRAGMA busy_timeout = %1").arg(busyTimeoutMs)))
            throw std::runtime_error(q.lastError().text().toStdString());
    }
    return db;
}

QSqlDatabase openSqliteFile(const QString& file, const QString& connectionName, int busyTimeoutMs) {
    const QString driver = odbcRoute();
    if (!driver.isEmpty())
        return openSqliteFileOverOdbc(driver, file, connectionName, busyTimeoutMs);
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), connectionName);
    db.setDatabaseName(file);
    if (busyTimeoutMs >= 0)
        db.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=") +
                             QString::number(busyTimeoutMs));
    if (!db.open()) {
        const QString why = db.lastError().text();
        db = QSqlDatabase();
        QSqlDatabase::removeDatabase(connectionName);
        throw std::runtime_error(why.toStdString());
    }
    return db;
}

}  // namespace qz2test
