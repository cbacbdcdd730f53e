// The ODBC route: a connection through the ODBC driver manager and a real driver (the
// SQLite ODBC driver, which the install script registers as "SQLite3") gets the dialect of
// the DBMS that the driver names, binds positional values and typed NULLs, reads dates,
// times, NULLs, reals and bits back as Qt's SQLite driver does, and takes the save's write
// lock at once. Also what the host program sends on the ODBC connections it opens.
#include <gtest/gtest.h>

#include <QSqlDriver>
#include <QSqlError>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QUuid>
#include <cmath>
#include <stdexcept>

#include "DbRoute.h"
#include "HostDatabase.h"
#include "TestSupport.h"
#include "db/Database.h"
#include "db/Dialect.h"
#include "register/FrmMaster.h"
#include "shared/TimeValue.h"

using qz2::db::Dialect;
namespace db = qz2::db;

namespace {

const QString kDriver = QStringLiteral("SQLite3");

// A named connection, removed with the object.
class Connection {
public:
    Connection(const QString& file, bool odbc, int busyTimeoutMs = 10000) {
        m_name = QStringLiteral("odbc-") + QUuid::createUuid().toString(QUuid::WithoutBraces);
        try {
            if (odbc) {
                db = qz2test::openSqliteFileOverOdbc(kDriver, file, m_name, busyTimeoutMs);
            } else {
                db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_name);
                db.setDatabaseName(file);
                db.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=%1").arg(busyTimeoutMs));
                if (!db.open()) ADD_FAILURE() << db.lastError().text().toStdString();
            }
        } catch (const std::exception& e) {
            ADD_FAILURE() << e.what();
        }
    }
    ~Connection() {
        db.close();
        db = QSqlDatabase();
        QSqlDatabase::removeDatabase(m_name);
    }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;
    QSqlDatabase db;

private:
    QString m_name;
};

class OdbcRoute : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_dir.isValid());
        file = m_dir.filePath(QStringLiteral("route.sqlite"));
        Connection setup(file, false);
        db::execute(setup.db,
                    QStringLiteral("create table v(k INTEGER, d TEXT, t TEXT, r REAL, b INTEGER, "
                                   "s TEXT)"));
        db::execute(setup.db, QStringLiteral("insert into v values(1,'2026-11-03','08:30:00',"
                                             "0.6666666666666666,1,'Kalyani')"));
        db::execute(setup.db, QStringLiteral("insert into v values(2,NULL,NULL,NULL,0,NULL)"));
        db::execute(setup.db, QStringLiteral("insert into v values(3,'2026-02-28 00:00:00',"
                                             "'23:59:00',2.75,NULL,'')"));
    }
    QTemporaryDir m_dir;
    QString file;
};

TEST_F(OdbcRoute, TheDriverNamesItsDbmsAndTheConnectionGetsTheSqliteDialect) {
    Connection odbc(file, true);
    ASSERT_TRUE(odbc.db.isOpen());
    // Qt itself does not know this DBMS behind ODBC; the driver does.
    EXPECT_EQ(odbc.db.driver()->dbmsType(), QSqlDriver::UnknownDbms);
    EXPECT_EQ(db::dbmsName(odbc.db), QStringLiteral("SQLite"));
    EXPECT_EQ(Dialect::of(odbc.db).kind(), Dialect::Kind::SQLite);
    // A statement of the SQLite dialect runs there.
    const QString top =
        Dialect::of(odbc.db).top1(QStringLiteral("Select top 1 k from v order by k"));
    EXPECT_EQ(db::scalar(odbc.db, top).toInt(), 1);

    Connection native(file, false);
    EXPECT_EQ(db::dbmsName(native.db), QStringLiteral("SQLite"));
    EXPECT_EQ(db::dbmsName(QSqlDatabase()), QString());
}

TEST(OdbcDialect, OnlyASqliteDbmsNameGetsTheSqliteStatements) {
    EXPECT_TRUE(Dialect::isSqliteName(QStringLiteral("SQLite")));
    EXPECT_TRUE(Dialect::isSqliteName(QStringLiteral("sqlite")));
    EXPECT_FALSE(Dialect::isSqliteName(QStringLiteral("Microsoft SQL Server")));
    EXPECT_FALSE(Dialect::isSqliteName(QString()));
}

TEST_F(OdbcRoute, ValuesReadBackConvertAsTheyDoNatively) {
    Connection odbc(file, true);
    Connection native(file, false);
    const QString sql = QStringLiteral("select k,d,t,r,b,s from v order by k");
    db::Recordset viaOdbc = db::openRecordset(odbc.db, sql);
    db::Recordset viaNative = db::openRecordset(native.db, sql);
    ASSERT_EQ(viaOdbc.recordCount(), 3);
    ASSERT_EQ(viaNative.recordCount(), 3);
    for (; !viaNative.eof(); viaNative.moveNext(), viaOdbc.moveNext()) {
        const int k = viaNative.field(QStringLiteral("k")).toInt();
        SCOPED_TRACE(k);
        EXPECT_EQ(viaOdbc.field(QStringLiteral("K")).toInt(), k);
        for (const char* column : {"d", "t"}) {
            const auto a = qz2::timeValueFromDb(viaOdbc.field(QString::fromLatin1(column)));
            const auto b = qz2::timeValueFromDb(viaNative.field(QString::fromLatin1(column)));
            ASSERT_EQ(a.has_value(), b.has_value()) << column;
            if (a) {
                EXPECT_EQ(a->days(), b->days()) << column;
            }
        }
        // Reals: the ODBC driver hands them over with 15 significant digits.
        const QVariant r = viaOdbc.field(QStringLiteral("r"));
        EXPECT_EQ(r.isNull(), viaNative.isNull(QStringLiteral("r")));
        EXPECT_NEAR(r.toDouble(), viaNative.field(QStringLiteral("r")).toDouble(), 1e-14);
        EXPECT_EQ(db::isOn(viaOdbc.field(QStringLiteral("b"))),
                  db::isOn(viaNative.field(QStringLiteral("b"))));
        EXPECT_EQ(viaOdbc.isNull(QStringLiteral("s")), viaNative.isNull(QStringLiteral("s")));
        EXPECT_EQ(viaOdbc.field(QStringLiteral("s")).toString(),
                  viaNative.field(QStringLiteral("s")).toString());
    }
    // The values themselves, as the rules see them.
    viaOdbc.moveFirst();
    EXPECT_EQ(qz2::timeValueFromDb(viaOdbc.field(QStringLiteral("d")))->date(), QDate(2026, 11, 3));
    EXPECT_EQ(qz2::timeValueFromDb(viaOdbc.field(QStringLiteral("t")))->format(u"HH:mm"),
              QStringLiteral("08:30"));
    EXPECT_TRUE(db::isOn(viaOdbc.field(QStringLiteral("b"))));
    viaOdbc.moveNext();
    EXPECT_FALSE(qz2::timeValueFromDb(viaOdbc.field(QStringLiteral("d"))).has_value());
    EXPECT_TRUE(viaOdbc.isNull(QStringLiteral("r")));
    EXPECT_FALSE(db::isOn(viaOdbc.field(QStringLiteral("b"))));
    viaOdbc.moveNext();
    EXPECT_EQ(qz2::timeValueFromDb(viaOdbc.field(QStringLiteral("d")))->date(), QDate(2026, 2, 28));
    EXPECT_EQ(viaOdbc.field(QStringLiteral("r")).toDouble(), 2.75);
    EXPECT_FALSE(db::isOn(viaOdbc.field(QStringLiteral("b"))));
    EXPECT_FALSE(viaOdbc.isNull(QStringLiteral("s")));
}

// Columns declared with date, time and bit types come through the ODBC driver as typed
// values (a date-time, a date, a time, an unsigned number), as SQL Server's columns do: the
// one conversion place and the register's cell text make of them what they make of the
// SQLite text.
TEST_F(OdbcRoute, TypedDateTimeAndBitColumnsConvertAsTheirTextDoes) {
    {
        Connection setup(file, false);
        db::execute(setup.db, QStringLiteral("create table typed(dt DATETIME, d DATE, tm TIME, "
                                             "b BIT, r FLOAT, n DATETIME)"));
        db::execute(setup.db,
                    QStringLiteral("insert into typed values('2026-11-03 00:00:00','2026-11-03',"
                                   "'08:30:00',1,2.75,NULL)"));
    }
    Connection odbc(file, true);
    db::Recordset rs = db::openRecordset(odbc.db, QStringLiteral("select * from typed"));
    ASSERT_FALSE(rs.eof());
    EXPECT_EQ(rs.field(QStringLiteral("dt")).typeId(), QMetaType::QDateTime);
    EXPECT_EQ(rs.field(QStringLiteral("tm")).typeId(), QMetaType::QTime);
    const qz2::TimeValue day = qz2::TimeValue::fromDate(QDate(2026, 11, 3));
    EXPECT_EQ(qz2::timeValueFromDb(rs.field(QStringLiteral("dt")))->days(), day.days());
    EXPECT_EQ(qz2::timeValueFromDb(rs.field(QStringLiteral("d")))->days(), day.days());
    EXPECT_EQ(qz2::timeValueFromDb(rs.field(QStringLiteral("tm")))->days(),
              qz2::timeValueFromDb(QVariant(QStringLiteral("08:30:00")))->days());
    EXPECT_TRUE(db::isOn(rs.field(QStringLiteral("b"))));
    EXPECT_EQ(rs.field(QStringLiteral("r")).toDouble(), 2.75);
    EXPECT_TRUE(rs.isNull(QStringLiteral("n")));
    EXPECT_FALSE(qz2::timeValueFromDb(rs.field(QStringLiteral("n"))).has_value());
    EXPECT_EQ(qz2::registerCellText(rs.field(QStringLiteral("dt"))), QStringLiteral("03/11/2026"));
    EXPECT_EQ(qz2::registerCellText(rs.field(QStringLiteral("d"))), QStringLiteral("03/11/2026"));
    EXPECT_EQ(qz2::registerCellText(QVariant(QStringLiteral("2026-11-03"))),
              QStringLiteral("03/11/2026"));
    EXPECT_EQ(qz2::registerCellText(rs.field(QStringLiteral("n"))), QString());
}

TEST_F(OdbcRoute, PositionalValuesAndTypedNullsAreBoundAndStoredExactly) {
    {
        Connection odbc(file, true);
        db::Command insert(odbc.db,
                           QStringLiteral("insert into v(k,d,t,r,b,s) values(?,?,?,?,?,?)"));
        insert.execute({QVariant(10), QVariant(QStringLiteral("2026-12-01")),
                        QVariant(QStringLiteral("09:15:00")), QVariant(40.0 / 60.0), QVariant(true),
                        QVariant(QStringLiteral("Remarks"))});
        insert.execute({QVariant(11), QVariant(QMetaType::fromType<QString>()),
                        QVariant(QMetaType::fromType<QString>()),
                        QVariant(QMetaType::fromType<double>()),
                        QVariant(QMetaType::fromType<int>()), QVariant()});
    }
    Connection native(file, false);
    QSqlQuery q(native.db);
    ASSERT_TRUE(
        q.exec(QStringLiteral("select k,d,t,r,b,s,typeof(d),typeof(r),typeof(b),typeof(s) "
                              "from v where k>=10 order by k")));
    ASSERT_TRUE(q.next());
    EXPECT_EQ(q.value(1).toString(), QStringLiteral("2026-12-01"));
    EXPECT_EQ(q.value(2).toString(), QStringLiteral("09:15:00"));
    EXPECT_EQ(q.value(3).toDouble(), 40.0 / 60.0);  // bound as a double, stored to the bit
    EXPECT_EQ(q.value(4).toInt(), 1);
    EXPECT_EQ(q.value(5).toString(), QStringLiteral("Remarks"));
    EXPECT_EQ(q.value(7).toString(), QStringLiteral("real"));
    EXPECT_EQ(q.value(8).toString(), QStringLiteral("integer"));
    ASSERT_TRUE(q.next());
    for (int i = 6; i <= 9; ++i) EXPECT_EQ(q.value(i).toString(), QStringLiteral("null")) << i;
}

TEST_F(OdbcRoute, TheWorkingHoursProcedureIsGivenAnEmptyStringNotNull) {
    const Dialect::Call call = Dialect::sqlServer().workingHoursCall(1, 3);
    ASSERT_EQ(call.values.size(), 3);
    EXPECT_FALSE(call.values[1].toString().isNull());
    EXPECT_TRUE(call.values[1].toString().isEmpty());
    // What the drivers make of the value when it is bound: text of length 0 on both routes.
    for (const bool odbc : {true, false}) {
        Connection c(file, odbc);
        const db::Recordset rs =
            db::openRecordset(c.db, QStringLiteral("select typeof(?)"), {call.values[1]});
        ASSERT_FALSE(rs.eof());
        EXPECT_EQ(rs.field(0).toString(), QStringLiteral("text")) << (odbc ? "ODBC" : "native");
    }
}

TEST_F(OdbcRoute, TheSavesTransactionTakesTheWriteLockAtOnce) {
    Connection odbc(file, true);
    Connection other(file, false, 0);
    {
        db::Transaction tx(odbc.db, true);
        // Nothing written yet, but a second writer is already kept out.
        QSqlQuery q(other.db);
        EXPECT_FALSE(q.exec(QStringLiteral("BEGIN IMMEDIATE")));
        EXPECT_TRUE(q.lastError().text().contains(QStringLiteral("locked")))
            << q.lastError().text().toStdString();
        db::execute(odbc.db, QStringLiteral("insert into v(k) values(20)"));
        tx.commit();
    }
    EXPECT_EQ(db::scalar(other.db, QStringLiteral("select count(*) from v where k=20")).toInt(), 1);
    {
        db::Transaction tx(odbc.db, true);
        db::execute(odbc.db, QStringLiteral("insert into v(k) values(21)"));
    }  // rolled back
    EXPECT_EQ(db::scalar(other.db, QStringLiteral("select count(*) from v where k=21")).toInt(), 0);
}

// The second pass of the database tests really goes through ODBC: a test database of that
// pass is reached through the driver manager, and the module picks the SQLite statements.
TEST(OdbcTestRoute, TheTestDatabaseGoesThroughTheRouteTheRunAsksFor) {
    qz2test::TestDb t(true);
    ASSERT_TRUE(t.db.isOpen());
    if (qz2test::odbcRoute().isEmpty()) {
        EXPECT_FALSE(t.overOdbc());
    } else {
        EXPECT_TRUE(t.overOdbc());
        EXPECT_EQ(t.db.driverName(), QStringLiteral("QODBC"));
        EXPECT_EQ(db::dbmsName(t.db), QStringLiteral("SQLite"));
    }
    EXPECT_EQ(Dialect::of(t.db).kind(), Dialect::Kind::SQLite);
    // The demo rows are there, read through the module's own reader.
    EXPECT_GT(db::scalar(t.db, QStringLiteral("select count(*) from pemployee")).toInt(), 0);
}

// ---- The host program ---------------------------------------------------------------

TEST(HostOdbcSession, SqlServerConnectionsGetMonthDayYearDatesAndNothingElseDoes) {
    EXPECT_EQ(qz2::host::odbcSessionStatements(Dialect::sqlServer()),
              QStringList{QStringLiteral("set dateformat mdy")});
    EXPECT_TRUE(qz2::host::odbcSessionStatements(Dialect::sqlite()).isEmpty());
}

TEST_F(OdbcRoute, TheHostOpensSqliteThroughOdbcWithoutTheSqlServerSetting) {
    QStringList sent;
    db::setFaultHook([&sent](const QString& sql) {
        sent << sql;
        return QString();
    });
    QString error;
    const QString name = QStringLiteral("host-odbc");
    {
        const std::optional<QSqlDatabase> opened = qz2::host::openAttendanceDatabase(
            {QString(), qz2test::odbcConnectionString(kDriver, file, 5000)}, QDate(2026, 11, 21),
            name, error);
        db::setFaultHook({});
        ASSERT_TRUE(opened.has_value()) << error.toStdString();
        EXPECT_EQ(Dialect::of(*opened).kind(), Dialect::Kind::SQLite);
        EXPECT_FALSE(sent.contains(QStringLiteral("set dateformat mdy")));
    }
    QSqlDatabase::removeDatabase(name);
}

}  // namespace
