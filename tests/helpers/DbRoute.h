#pragma once
// The way the database tests reach their SQLite files: through Qt's own SQLite driver, or,
// when QZ2_TEST_ODBC names an ODBC driver (the test run sets it to "SQLite3" for a second
// pass of the database tests), through the ODBC driver manager and that driver, the way a
// host reaches the suite's production database. The statements, readers and conversions
// of the module then run over the ODBC route on the very same data.

#include <QSqlDatabase>
#include <QString>

namespace qz2test {

// The ODBC driver the tests go through (QZ2_TEST_ODBC); empty for Qt's SQLite driver.
QString odbcRoute();

// The ODBC connection string of an SQLite file through `driver`; a negative busy timeout
// keeps the driver's own.
QString odbcConnectionString(const QString& driver, const QString& file, int busyTimeoutMs);

// Opens an existing (or new) SQLite file under `connectionName` on the route above. Throws
// std::runtime_error with the reason, saying what is missing when the ODBC driver manager
// or the driver is not installed.
QSqlDatabase openSqliteFile(const QString& file, const QString& connectionName, int busyTimeoutMs);

// The same through the named ODBC driver, whatever the route.
QSqlDatabase openSqliteFileOverOdbc(const QString& driver, const QString& file,
                                    const QString& connectionName, int busyTimeoutMs);

}  // namespace qz2test
