// The data-access layer: the two dialects' pieces (T-SQL texts pinned, SQLite pieces
// executed), and the recordset, command, transaction, error, statement counter and fault
// hook of Database.h.
#include <gtest/gtest.h>

#include <QSqlDriver>
#include <QSqlError>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QUuid>
#include <ostream>
#include <stdexcept>

#include "TestSupport.h"
#include "TsqlCheck.h"
#include "db/Database.h"
#include "db/Dialect.h"


using qz2::db::Dialect;
using qz2test::expectTsql;
using qz2test::TestDb;
namespace db = qz2::db;

namespace {

const Dialect kServer = Dialect::sqlServer();
const Dialect kLite = Dialect::sqlite();

QString text(const QVariant& v) {
    return v.isNull() ? QStringLiteral("NULL") : v.toString();
}

// A second, independent SQLite connection, removed with the object.
class Connection {
public:
    Connection(const QString& file, int busyTimeoutMs) {
        m_name = QStringLiteral("dialect-") + QUuid::createUuid().toString(QUuid::WithoutBraces);
        db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_name);
        db.setDatabaseName(file);
        db.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=%1").arg(busyTimeoutMs));
        if (!db.open()) ADD_FAILURE() << db.lastError().text().toStdString();
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

void insertNumbers(const TestDb& t, const QString& values) {
    t.exec(
        QStringLiteral(
            "insert into pEmployeeAttendence(eaCompanyID,eaID,eaNo,eaEmpID,eaCancelled) values ") +
        values);
}

QVariant numberFor(const TestDb& t, const QString& prefix, qint16 company = 1) {
    return db::scalar(
        t.db, kLite.attendanceNumberQuery(QStringLiteral("pEmployeeAttendence"), company, prefix));
}

}  // namespace

// ---------------------------------------------------------------------------------------
// Dialect

TEST(Dialect, ChosenFromTheConnection) {
    TestDb t;
    EXPECT_EQ(Dialect::of(t.db).kind(), Dialect::Kind::SQLite);
    EXPECT_FALSE(Dialect::of(t.db).isSqlServer());
    EXPECT_EQ(Dialect::of(QSqlDatabase()).kind(), Dialect::Kind::SqlServer);
    EXPECT_TRUE(kServer.isSqlServer());
    EXPECT_EQ(kLite.kind(), Dialect::Kind::SQLite);
}

TEST(Dialect, OdbcConnectionIsSqlServer) {
    if (!QSqlDatabase::isDriverAvailable(QStringLiteral("QODBC")))
        GTEST_SKIP() << "no ODBC driver plug-in";
    const QString name = QStringLiteral("dialect-odbc");
    {
        QSqlDatabase odbc = QSqlDatabase::addDatabase(QStringLiteral("QODBC"), name);
        EXPECT_EQ(Dialect::of(odbc).kind(), Dialect::Kind::SqlServer);
    }
    QSqlDatabase::removeDatabase(name);
}

TEST(Dialect, DateText) {
    const QDate d(2026, 3, 7);
    EXPECT_EQ(kServer.dateText(d, u"yyyymmdd"), QStringLiteral("20260307"));
    EXPECT_EQ(kServer.dateText(d, u"yyyy/mm/dd"), QStringLiteral("2026/03/07"));
    EXPECT_EQ(kServer.dateText(d, u"mm/dd/yyyy"), QStringLiteral("03/07/2026"));
    EXPECT_EQ(kLite.dateText(d, u"yyyymmdd"), QStringLiteral("2026-03-07"));
    EXPECT_EQ(kLite.dateText(d, u"yyyy/mm/dd"), QStringLiteral("2026-03-07"));
    EXPECT_EQ(kLite.dateText(d, u"mm/dd/yyyy"), QStringLiteral("2026-03-07"));
}

TEST(Dialect, GluedNumber) {
    EXPECT_EQ(QStringLiteral("eacompanyid=") + kServer.glued(1) + QStringLiteral("and eaid=5"),
              QStringLiteral("eacompanyid=1and eaid=5"));
    EXPECT_EQ(QStringLiteral("eacompanyid=") + kLite.glued(12) + QStringLiteral("and eaid=5"),
              QStringLiteral("eacompanyid=12 and eaid=5"));

    // Why the SQLite piece needs its blank: SQLite's tokenizer rejects "1and".
    TestDb t;
    insertNumbers(t, QStringLiteral("(1,5,'ATT5',7,0)"));
    EXPECT_THROW(
        db::scalar(t.db, QStringLiteral("select eaNo from pEmployeeAttendence where eacompanyid=") +
                             kServer.glued(1) + QStringLiteral("and eaid=5")),
        db::DbError);
    EXPECT_EQ(
        db::scalar(t.db, QStringLiteral("select eaNo from pEmployeeAttendence where eacompanyid=") +
                             kLite.glued(1) + QStringLiteral("and eaid=5"))
            .toString(),
        QStringLiteral("ATT5"));
}

TEST(Dialect, DaysSinceAtMost) {
    const QDate until(2026, 11, 21);
    EXPECT_EQ(kServer.daysSinceAtMost(QStringLiteral("eaDate"), until, 30),
              QStringLiteral("DateDiff(dd,eaDate,'20261121')<=30"));
    EXPECT_EQ(kLite.daysSinceAtMost(QStringLiteral("eaDate"), until, 30),
              QStringLiteral("julianday('2026-11-21')-julianday(eaDate)<=30"));

    TestDb t;
    const auto within = [&](const char* date, int days) {
        return db::scalar(t.db,
                          QStringLiteral("select ") +
                              kLite.daysSinceAtMost(QStringLiteral("'%1'").arg(QLatin1String(date)),
                                                    until, days))
            .toInt();
    };
    EXPECT_EQ(within("2026-10-22", 30), 1);  // 30 days before
    EXPECT_EQ(within("2026-10-21", 30), 0);  // 31 days before
    EXPECT_EQ(within("2026-11-21", 0), 1);
    EXPECT_EQ(within("2026-11-20", 0), 0);
    EXPECT_EQ(within("2027-01-01", 1), 1);    // later dates are never excluded
    EXPECT_EQ(within("2025-11-21", 365), 1);  // across a year end
    EXPECT_EQ(within("2025-11-20", 365), 0);
}

TEST(Dialect, MaxPlusOneDay) {
    EXPECT_EQ(kServer.maxPlusOneDay(QStringLiteral("eaEndDate")),
              QStringLiteral("max(eaEndDate)+1"));
    EXPECT_EQ(kLite.maxPlusOneDay(QStringLiteral("eaEndDate")),
              QStringLiteral("date(max(eaEndDate),'+1 day')"));

    TestDb t;
    const QString q = QStringLiteral("select ") + kLite.maxPlusOneDay(QStringLiteral("eaEndDate")) +
                      QStringLiteral(" from pEmployeeAttendence where eaCancelled=0 and eaEmpID=7");
    EXPECT_TRUE(db::scalar(t.db, q).isNull());  // no entry yet
    t.exec(QStringLiteral(
        "insert into pEmployeeAttendence(eaCompanyID,eaID,eaEmpID,eaCancelled,eaEndDate) values"
        " (1,1,7,0,'2026-10-31'),(1,2,7,0,'2026-02-28'),(1,3,7,1,'2027-05-01'),(1,4,8,0,'2027-06-"
        "01')"));
    EXPECT_EQ(text(db::scalar(t.db, q)), QStringLiteral("2026-11-01"));
    t.exec(QStringLiteral(
        "insert into pEmployeeAttendence(eaCompanyID,eaID,eaEmpID,eaCancelled,eaEndDate) values"
        " (1,5,7,0,'2026-12-31')"));
    EXPECT_EQ(text(db::scalar(t.db, q)), QStringLiteral("2027-01-01"));
    t.exec(QStringLiteral("update pEmployeeAttendence set eaEndDate='2028-02-28' where eaID=5"));
    EXPECT_EQ(text(db::scalar(t.db, q)), QStringLiteral("2028-02-29"));  // leap year
}

TEST(Dialect, Top1) {
    const QString tsql =
        QStringLiteral("Select top 1 eaNo from pEmployeeAttendence order by  eaID desc");
    EXPECT_EQ(kServer.top1(tsql), tsql);
    EXPECT_EQ(kLite.top1(tsql),
              QStringLiteral("Select eaNo from pEmployeeAttendence order by  eaID desc limit 1"));
    EXPECT_EQ(kLite.top1(QStringLiteral("SELECT TOP 1 a from t")),
              QStringLiteral("SELECT a from t limit 1"));

    TestDb t;
    insertNumbers(t, QStringLiteral("(1,1,'ATT1',7,0),(1,3,'ATT3',7,0),(1,2,'ATT2',7,0)"));
    const QStringList rows = [&] {
        QStringList out;
        for (db::Recordset rs = db::openRecordset(t.db, kLite.top1(tsql)); !rs.eof(); rs.moveNext())
            out << rs.field(0).toString();
        return out;
    }();
    EXPECT_EQ(rows, QStringList{QStringLiteral("ATT3")});
}

TEST(Dialect, IsNullFunction) {
    EXPECT_EQ(kServer.isNullFn(), QStringLiteral("isnull("));
    EXPECT_EQ(kLite.isNullFn(), QStringLiteral("ifnull("));
    TestDb t;
    EXPECT_EQ(
        db::scalar(t.db, QStringLiteral("select ") + kLite.isNullFn() + QStringLiteral("NULL,4)"))
            .toInt(),
        4);
}

TEST(Dialect, AttendanceNumberQueryTsql) {
    expectTsql(
        kServer.attendanceNumberQuery(QStringLiteral("pEmployeeAttendence"), 1,
                                      QStringLiteral("ATT")),
        QStringLiteral(
            "Select isnull(max(convert(int,right(eaNo,len(eaNo)-3))),0) from pEmployeeAttendence "
            "where eacompanyid = 1 and len(eaNo)>len('ATT') and  "
            "isnumeric(isnull(right(eano,len(eano)-3),0)) =1 and "
            "substring(eano,1,len('ATT'))='ATT'"));
    expectTsql(kServer.attendanceNumberQuery(QStringLiteral("co2_Attendance"), 2, QString()),
               QStringLiteral(
                   "Select isnull(max(convert(int,right(eaNo,len(eaNo)-0))),0) from co2_Attendance "
                   "where eacompanyid = 2 and len(eaNo)>len('') and  "
                   "isnumeric(isnull(right(eano,len(eano)-0),0)) =1 and "
                   "substring(eano,1,len(''))=''"));
}

TEST(Dialect, AttendanceNumberNoEntryWithThePrefix) {
    TestDb t;
    EXPECT_EQ(numberFor(t, QStringLiteral("ATT")).toInt(), 0);  // empty table
    insertNumbers(t, QStringLiteral("(1,1,'XYZ5',7,0),(1,2,'ATT',7,0),(2,3,'ATT9',9,0)"));
    // Another prefix, the bare prefix and another company's number do not count.
    const QVariant v = numberFor(t, QStringLiteral("ATT"));
    ASSERT_FALSE(v.isNull());
    EXPECT_EQ(v.toInt(), 0);
}

TEST(Dialect, AttendanceNumberIgnoresSuffixesThatAreNotNumbers) {
    TestDb t;
    insertNumbers(t, QStringLiteral("(1,1,'ATT1',7,0),(1,2,'ATT41',7,0),(1,3,'ATT7',7,0),"
                                    "(1,4,'ATTN99',7,0),(1,5,'ATTEND500',7,0),(1,6,'ATT12A',7,0),"
                                    "(1,7,'ATT 300',7,0),(1,8,'ATT-400',7,0),(1,9,NULL,7,0),"
                                    "(2,10,'ATT900',9,0)"));
    EXPECT_EQ(numberFor(t, QStringLiteral("ATT")).toInt(), 41);
    EXPECT_EQ(numberFor(t, QStringLiteral("ATT"), 2).toInt(), 900);
    // "ATTN99" is a number of prefix "ATTN", not of "ATT".
    EXPECT_EQ(numberFor(t, QStringLiteral("ATTN")).toInt(), 99);
}

TEST(Dialect, AttendanceNumberLeadingZerosAndLargeNumbers) {
    TestDb t;
    insertNumbers(t, QStringLiteral("(1,1,'ATT007',7,0),(1,2,'ATT10',7,0),(1,3,'ATT9',7,0)"));
    // Compared as numbers, not as text ("9" > "10" as text).
    EXPECT_EQ(numberFor(t, QStringLiteral("ATT")).toInt(), 10);
}

TEST(Dialect, AttendanceNumberEmptyPrefix) {
    TestDb t;
    EXPECT_EQ(numberFor(t, QString()).toInt(), 0);
    insertNumbers(t, QStringLiteral("(1,1,'1',7,0),(1,2,'2',7,0),(1,3,'3',7,0),(1,4,'ATT50',7,0)"));
    EXPECT_EQ(numberFor(t, QString()).toInt(), 3);
}

TEST(Dialect, AttendanceNumberCountsCancelledEntries) {
    TestDb t;
    insertNumbers(t, QStringLiteral("(1,1,'ATT5',7,0),(1,2,'ATT60',8,1)"));
    EXPECT_EQ(numberFor(t, QStringLiteral("ATT")).toInt(), 60);
}

TEST(Dialect, WorkingHoursCall) {
    const Dialect::Call server = kServer.workingHoursCall(1, 3);
    expectTsql(server.sql, QStringLiteral("{call spreturnWorkingHrs(?,?,?)}"));
    ASSERT_EQ(server.values.size(), 3);
    EXPECT_EQ(server.values[0].toInt(), 1);
    EXPECT_EQ(server.values[1].toString(), QString());
    EXPECT_FALSE(server.values[1].isNull());  // the empty string, not NULL
    EXPECT_EQ(server.values[2].toInt(), 3);

    const Dialect::Call lite = kLite.workingHoursCall(1, 3);
    EXPECT_EQ(
        lite.sql,
        QStringLiteral("select WorkingHrs from spreturnWorkingHrs where companyid=? and dayid=?"));
    ASSERT_EQ(lite.values.size(), 2);

    TestDb t;
    t.exec(QStringLiteral(
        "insert into "
        "pCalendarWorkTimeSettings(cwtsCompanyID,cwtsid,cwtsDayID,cwtsCheckIn1,cwtsCheckOut1,"
        "cwtsCheckIn2,cwtsCheckOut2) values (1,1,3,'09:00:00','13:00:00','14:00:00','18:30:00'),"
        " (1,1,4,'09:00:00','13:00:00',NULL,NULL), (2,1,3,'10:00:00','11:00:00',NULL,NULL)"));
    QSqlQuery q(t.db);
    ASSERT_TRUE(q.prepare(lite.sql)) << q.lastError().text().toStdString();
    for (int i = 0; i < lite.values.size(); ++i) q.bindValue(i, lite.values[i]);
    ASSERT_TRUE(q.exec()) << q.lastError().text().toStdString();
    ASSERT_TRUE(q.next());
    EXPECT_EQ(q.value(0).toString(), QStringLiteral("08:30:00"));
    EXPECT_FALSE(q.next());
}

// ---------------------------------------------------------------------------------------
// Database.h

TEST(Database, StatementCountPerStatementAndPerExecution) {
    TestDb t;
    qint64 before = db::statementCount();
    db::openRecordset(t.db, QStringLiteral("select * from pusers"));
    EXPECT_EQ(db::statementCount() - before, 1);
    db::execute(t.db, QStringLiteral("delete from pusers"));
    db::scalar(t.db, QStringLiteral("select count(*) from pusers"));
    EXPECT_EQ(db::statementCount() - before, 3);

    before = db::statementCount();
    {
        db::Transaction tx(t.db);
        db::Command insert(
            t.db, QStringLiteral("insert into pusers(userid,username,companyid) values(?,?,?)"));
        EXPECT_EQ(db::statementCount() - before, 0);  // preparing is not running
        insert.execute({1, QStringLiteral("admin"), 1});
        insert.execute({2, QStringLiteral("clerk"), 1});
        insert.execute({3, QStringLiteral("guest"), 2});
        tx.commit();
    }
    EXPECT_EQ(db::statementCount() - before, 3);  // transaction control is not counted
    EXPECT_EQ(t.scalar(QStringLiteral("select count(*) from pusers")).toInt(), 3);

    // A statement that fails still counts: it was sent.
    before = db::statementCount();
    EXPECT_THROW(db::execute(t.db, QStringLiteral("delete from noSuchTable")), db::DbError);
    EXPECT_EQ(db::statementCount() - before, 1);
}

TEST(Database, CommandBindsValuesByPositionAndNull) {
    TestDb t;
    db::Command insert(
        t.db, QStringLiteral("insert into pPrefix(companyid,InterfaceID,Prefix) values(?,?,?)"));
    EXPECT_EQ(insert.text(),
              QStringLiteral("insert into pPrefix(companyid,InterfaceID,Prefix) values(?,?,?)"));
    insert.execute({1, 91029, QStringLiteral("ATT")});
    insert.execute({2, 91029, QVariant()});
    const auto rows = t.rows(
        QStringLiteral("select companyid,InterfaceID,Prefix from pPrefix order by companyid"));
    ASSERT_EQ(rows.size(), 2);
    EXPECT_EQ(rows[0][2].toString(), QStringLiteral("ATT"));
    EXPECT_EQ(rows[1][1].toInt(), 91029);
    EXPECT_TRUE(rows[1][2].isNull());
    // A duplicate key is the database's error.
    EXPECT_THROW(insert.execute({1, 91029, QStringLiteral("X")}), db::DbError);
}

TEST(Database, FaultHookFailsTheChosenStatement) {
    TestDb t;
    QStringList seen;
    db::setFaultHook([&seen](const QString& sql) {
        seen << sql;
        return sql.contains(QStringLiteral("pPrefix")) ? QStringLiteral("Injected: disk is on fire")
                                                       : QString();
    });
    const QString insert =
        QStringLiteral("insert into pPrefix(companyid,InterfaceID,Prefix) values(1,91029,'ATT')");
    try {
        db::execute(t.db, insert);
        ADD_FAILURE() << "the hook did not fail the statement";
    } catch (const db::DbError& e) {
        EXPECT_EQ(e.message(), QStringLiteral("Injected: disk is on fire"));
        EXPECT_EQ(e.statement(), insert);
        EXPECT_STREQ(e.what(), "Injected: disk is on fire");
    }
    EXPECT_THROW(db::openRecordset(t.db, QStringLiteral("select * from pPrefix")), db::DbError);
    db::Command cmd(
        t.db, QStringLiteral("insert into pPrefix(companyid,InterfaceID,Prefix) values(?,?,?)"));
    EXPECT_THROW(cmd.execute({2, 91029, QStringLiteral("X")}), db::DbError);
    // Other statements run as usual.
    EXPECT_NO_THROW(db::execute(t.db, QStringLiteral("insert into pusers values(1,'admin',1)")));
    EXPECT_EQ(seen.size(), 4);
    db::setFaultHook({});

    // The failed statements did not reach the database.
    EXPECT_EQ(t.scalar(QStringLiteral("select count(*) from pPrefix")).toInt(), 0);
    EXPECT_EQ(t.scalar(QStringLiteral("select count(*) from pusers")).toInt(), 1);
    EXPECT_NO_THROW(db::execute(t.db, insert));  // hook removed
    EXPECT_EQ(t.scalar(QStringLiteral("select count(*) from pPrefix")).toInt(), 1);
}

TEST(Database, TransactionRollsBackOnScopeExitAndCommitsOnCommit) {
    TestDb t;
    const auto count = [&] {
        return t.scalar(QStringLiteral("select count(*) from pusers")).toInt();
    };
    {
        db::Transaction tx(t.db);
        EXPECT_TRUE(tx.isOpen());
        db::execute(t.db, QStringLiteral("insert into pusers values(1,'admin',1)"));
        EXPECT_EQ(count(), 1);
    }
    EXPECT_EQ(count(), 0);
    {
        db::Transaction tx(t.db);
        db::execute(t.db, QStringLiteral("insert into pusers values(2,'clerk',1)"));
        tx.commit();
        EXPECT_FALSE(tx.isOpen());
    }
    EXPECT_EQ(count(), 1);
    try {
        db::Transaction tx(t.db, true);
        db::execute(t.db, QStringLiteral("insert into pusers values(3,'guest',1)"));
        db::execute(t.db,
                    QStringLiteral("insert into pusers values(3,'again',1)"));  // duplicate key
        tx.commit();
        ADD_FAILURE() << "duplicate key not reported";
    } catch (const db::DbError&) {
    }
    EXPECT_EQ(count(), 1);  // the exception passed through the scope: rolled back
    {
        db::Transaction tx(t.db, true);
        db::execute(t.db, QStringLiteral("insert into pusers values(4,'late',1)"));
        tx.rollback();
        EXPECT_FALSE(tx.isOpen());
    }
    EXPECT_EQ(count(), 1);
    {
        db::Transaction tx(t.db, true);
        db::execute(t.db, QStringLiteral("insert into pusers values(5,'kept',1)"));
        tx.commit();
    }
    EXPECT_EQ(count(), 2);
}

TEST(Database, ImmediateTransactionTakesTheWriteLock) {
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const QString file = dir.filePath(QStringLiteral("lock.sqlite"));
    Connection first(file, 5000);
    Connection second(file, 0);  // no waiting: a locked database fails at once
    db::execute(first.db, QStringLiteral("create table t (n integer)"));

    {
        db::Transaction tx(first.db, true);
        try {
            db::execute(second.db, QStringLiteral("insert into t values (2)"));
            ADD_FAILURE() << "the second connection wrote while the write lock was held";
        } catch (const db::DbError& e) {
            EXPECT_TRUE(e.message().contains(QStringLiteral("locked"), Qt::CaseInsensitive))
                << e.message().toStdString();
        }
        // Readers are not shut out.
        EXPECT_EQ(db::scalar(second.db, QStringLiteral("select count(*) from t")).toInt(), 0);
        db::execute(first.db, QStringLiteral("insert into t values (1)"));
        tx.commit();
    }
    EXPECT_NO_THROW(db::execute(second.db, QStringLiteral("insert into t values (3)")));
    EXPECT_EQ(db::scalar(second.db,
                         QStringLiteral("select group_concat(n) from (select n from t order by n)"))
                  .toString(),
              QStringLiteral("1,3"));

    // A deferred transaction takes no lock until it writes: the reason for `immediate`.
    {
        db::Transaction tx(first.db);
        EXPECT_NO_THROW(db::execute(second.db, QStringLiteral("insert into t values (4)")));
    }
}

TEST(Database, ErrorCarriesTheDriversMessage) {
    TestDb t;
    const QString bad = QStringLiteral("selec eaID from pEmployeeAttendence");
    try {
        db::openRecordset(t.db, bad);
        FAIL() << "no error for a syntax error";
    } catch (const db::DbError& e) {
        EXPECT_TRUE(e.message().contains(QStringLiteral("syntax error")))
            << e.message().toStdString();
        EXPECT_TRUE(e.message().contains(QStringLiteral("selec"))) << e.message().toStdString();
        EXPECT_EQ(e.statement(), bad);
        EXPECT_EQ(QString::fromStdString(e.what()), e.message());
    }
    try {
        db::execute(t.db, QStringLiteral("update noSuchTable set a=1"));
        FAIL() << "no error for a missing table";
    } catch (const db::DbError& e) {
        EXPECT_TRUE(e.message().contains(QStringLiteral("no such table: noSuchTable")))
            << e.message().toStdString();
    }
}

TEST(Database, ClosedConnectionRaises) {
    EXPECT_THROW(db::openRecordset(QSqlDatabase(), QStringLiteral("select 1")), db::DbError);
    EXPECT_THROW(db::execute(QSqlDatabase(), QStringLiteral("select 1")), db::DbError);
    EXPECT_THROW({ db::Transaction tx{QSqlDatabase()}; }, db::DbError);
}

TEST(Database, RecordsetFieldsByNameAnyCaseAndPastTheEnd) {
    TestDb t;
    t.exec(QStringLiteral("insert into pusers values (1,'admin',1),(2,'clerk',1)"));
    db::Recordset rs = db::openRecordset(
        t.db, QStringLiteral(
                  "select userid, username as UserName, companyid from pusers order by userid"));
    EXPECT_EQ(rs.recordCount(), 2);
    EXPECT_EQ(rs.fieldCount(), 3);
    EXPECT_EQ(rs.fieldName(1), QStringLiteral("UserName"));
    EXPECT_EQ(rs.indexOf(QStringLiteral("USERNAME")), 1);
    EXPECT_EQ(rs.indexOf(QStringLiteral("nosuch")), -1);
    ASSERT_FALSE(rs.eof());
    EXPECT_EQ(rs.field(QStringLiteral("username")).toString(), QStringLiteral("admin"));
    EXPECT_EQ(rs.field(QStringLiteral("USERNAME")).toString(), QStringLiteral("admin"));
    EXPECT_EQ(rs.field(0).toInt(), 1);
    EXPECT_THROW(rs.field(QStringLiteral("nosuch")), db::DbError);
    EXPECT_THROW(rs.field(7), db::DbError);
    rs.moveNext();
    EXPECT_EQ(rs.field(QStringLiteral("UserID")).toInt(), 2);
    rs.moveNext();
    EXPECT_TRUE(rs.eof());
    EXPECT_THROW(rs.field(QStringLiteral("userid")), db::DbError);
    EXPECT_THROW(rs.field(0), db::DbError);
    rs.moveFirst();
    EXPECT_FALSE(rs.eof());
    EXPECT_EQ(rs.field(QStringLiteral("username")).toString(), QStringLiteral("admin"));
}

TEST(Database, RecordsetNullsAndEmptyResults) {
    TestDb t;
    t.exec(QStringLiteral("insert into pPrefix values (1,91029,NULL)"));
    db::Recordset rs =
        db::openRecordset(t.db, QStringLiteral("select Prefix, companyid from pPrefix"));
    ASSERT_FALSE(rs.eof());
    EXPECT_TRUE(rs.isNull(QStringLiteral("prefix")));
    EXPECT_FALSE(rs.isNull(1));

    db::Recordset none =
        db::openRecordset(t.db, QStringLiteral("select Prefix from pPrefix where companyid=2"));
    EXPECT_TRUE(none.eof());
    EXPECT_EQ(none.recordCount(), 0);
    EXPECT_EQ(none.fieldCount(), 1);
    EXPECT_TRUE(
        db::scalar(t.db, QStringLiteral("select Prefix from pPrefix where companyid=2")).isNull());
}

TEST(Database, ExecuteReturnsRowsAffected) {
    TestDb t;
    t.exec(QStringLiteral("insert into pusers values (1,'a',1),(2,'b',1),(3,'c',2)"));
    EXPECT_EQ(db::execute(t.db, QStringLiteral("update pusers set username='x' where companyid=1")),
              2);
    EXPECT_EQ(db::execute(t.db, QStringLiteral("delete from pusers where companyid=9")), 0);
}

TEST(Dialect, AQuoteInTheStoredPrefixIsDoubledAndMatchedLiterally) {
    // The prefix O'B is 3 characters; inside the literals its quote is doubled.
    expectTsql(kServer.attendanceNumberQuery(QStringLiteral("pEmployeeAttendence"), 1,
                                             QStringLiteral("O'B")),
               QStringLiteral(
                   "Select isnull(max(convert(int,right(eaNo,len(eaNo)-3))),0) from "
                   "pEmployeeAttendence where eacompanyid = 1 and len(eaNo)>len('O''B') and  "
                   "isnumeric(isnull(right(eano,len(eano)-3),0)) =1 and "
                   "substring(eano,1,len('O''B'))='O''B'"));
    TestDb t;
    insertNumbers(t, QStringLiteral("(1,1,'O''B7',1,0),(1,2,'OXB9',1,0),(1,3,'O%B8',1,0),"
                                    "(1,4,'O_B5',1,0)"));
    EXPECT_EQ(numberFor(t, QStringLiteral("O'B")).toInt(), 7);
    // Wildcards of LIKE mean nothing here: each prefix matches only itself.
    EXPECT_EQ(numberFor(t, QStringLiteral("O%B")).toInt(), 8);
    EXPECT_EQ(numberFor(t, QStringLiteral("O_B")).toInt(), 5);
    // A prefix that tries to end the statement is only a prefix.
    EXPECT_EQ(numberFor(t, QStringLiteral("x' or '1'='1")).toInt(), 0);
}
