// Statements of the register, the link table, the shared refresh and monthly lock,
// cancelling and the CommonModule helper: the SQL Server text of each is pinned letter for
// letter (and parsed by the T-SQL checker at the end of the run), and the SQLite version of
// each is executed on a fresh database and its rows checked.
#include <gtest/gtest.h>

#include <QStringList>
#include <functional>
#include <ostream>

#include "TestSupport.h"
#include "TsqlCheck.h"
#include "commonmodule/CommonModule.h"
#include "db/Database.h"
#include "db/Dialect.h"
#include "register/RegisterSql.h"
#include "shared/BasAttendence.h"

void PrintTo(const QStringList& l, std::ostream* os) {
    *os << "[\"" << l.join(QStringLiteral("\", \"")).toStdString() << "\"]";
}

using qz2test::expectTsql;
using qz2test::TestDb;
namespace db = qz2::db;
namespace sql = qz2::sql;

namespace {

const QDate kProcessDate(2026, 11, 21);
const db::Dialect kServer = db::Dialect::sqlServer();
const db::Dialect kLite = db::Dialect::sqlite();

// Every row of a result as "a|b|c" (NULL as "NULL"), in the order the database gave them.
QStringList rowsOf(const QSqlDatabase& connection, const QString& text) {
    QStringList out;
    db::Recordset rs = db::openRecordset(connection, text);
    for (; !rs.eof(); rs.moveNext()) {
        QStringList cells;
        for (int i = 0; i < rs.fieldCount(); ++i)
            cells << (rs.field(i).isNull() ? QStringLiteral("NULL") : rs.field(i).toString());
        out << cells.join(QLatin1Char('|'));
    }
    return out;
}

QStringList sortedRowsOf(const QSqlDatabase& connection, const QString& text) {
    QStringList rows = rowsOf(connection, text);
    rows.sort();
    return rows;
}

// The texts of the statements that `action` runs, seen through the fault hook.
QStringList statementsRunBy(const std::function<void()>& action) {
    QStringList seen;
    db::setFaultHook([&seen](const QString& text) {
        seen << text;
        return QString();
    });
    try {
        action();
    } catch (...) {
        db::setFaultHook({});
        throw;
    }
    db::setFaultHook({});
    return seen;
}

// Two employees of company 1, one of company 2, and attendance entries dated around the
// process date 2026-11-21 (eaID 3 of company 2 shares its identifier with company 1's).
void insertRegisterRows(const TestDb& t) {
    t.exec(QStringLiteral(
        "insert into pEmployee(eEmpID,eCompanyID,eEmpNo,eName) values"
        " (7,1,'E007','Asha Rao'),(8,1,'E008','Ravi Menon'),(9,2,'E009','Other Company')"));
    t.exec(QStringLiteral(
        "insert into "
        "pEmployeeAttendence(eaCompanyID,eaID,eaNo,eaDate,eaEmpID,eaCancelled,eaStartDate,"
        "eaEndDate)"
        " values"
        " (1,1,'ATT1','2026-10-21',7,0,'2026-09-21','2026-10-20'),"  // 31 days before
        " (1,2,'ATT2','2026-10-22',8,1,'2026-09-22','2026-10-21'),"  // exactly 30 days before
        " (1,3,'ATT3','2026-11-21',7,0,'2026-10-21','2026-11-20'),"  // the process date
        " (1,4,'ATT4','2026-11-25',8,0,'2026-10-26','2026-11-25'),"  // after it
        " (1,5,'ATT5','2025-01-02',7,0,'2024-12-01','2024-12-31'),"  // long ago
        " (2,3,'ATT3','2026-11-20',9,0,'2026-10-20','2026-11-19'),"
        " (2,6,'ATT6','2026-11-21',9,0,'2026-10-21','2026-11-20')"));
}

const char* const kMasterAll =
    "select EA.eaID,EA.eaNo,EA.eaDate,E.ename, case when EA.eacancelled=1 then 'Yes' else 'No' end "
    "eacancelled  from pEmployeeAttendence EA,pemployee E  Where EA.eacompanyid=E.ecompanyid  "
    "and  EA.eaempid=E.eempid and EA.eaCompanyid  = 1";

}  // namespace

// ---------------------------------------------------------------------------------------
// Link table

TEST(LinkTableSql, QueryIsTheSuiteText) {
    // The pieces one to a line, as the statement has always been written.
    // clang-format off
    expectTsql(qz2::linkTableQuery(),
               QStringLiteral(
                   " select tablename, linktablename from linktable where tablename in ( "
                   " 'pusers', 'pCalenderHeader', 'pemployee', 'pCalenderDetail','pEmployeeAttendence','pEmpAttendanceDetail', 'ptables', "
                   " 'pEmpAttendanceAllowanceDeductions','pSettings','pCurrencyMaster','pLeaveCancellationHeader','pleavecancellationdetail', "
                   " 'PEmployeeLeaves','pleaveregisterDetail','pleaveregisterheader','pCalendarWTSheader',"
                   " 'pMonthlyPayrollProcessing','pCalendarWorkTimeSettings','pEmpMonthlyEntryHeader', "
                   " 'pDepartment','ptablecolumns', 'puserrights',  'pPrefix','pCurrencyallowdeddetails')"));
    // clang-format on
}

TEST(LinkTableSql, IdentityRowsResolveEveryName) {
    TestDb t;
    qz2::LinkedTableNames = {};
    qz2::fnLoadLinkTableNames();
    const auto& n = qz2::LinkedTableNames;
    EXPECT_EQ(n.pusers, QStringLiteral("pusers"));
    EXPECT_EQ(n.pCalenderHeader, QStringLiteral("pCalenderHeader"));
    EXPECT_EQ(n.pemployee, QStringLiteral("pemployee"));
    EXPECT_EQ(n.pCalenderDetail, QStringLiteral("pCalenderDetail"));
    EXPECT_EQ(n.pEmployeeAttendence, QStringLiteral("pEmployeeAttendence"));
    EXPECT_EQ(n.pEmpAttendanceDetail, QStringLiteral("pEmpAttendanceDetail"));
    EXPECT_EQ(n.ptables, QStringLiteral("ptables"));
    EXPECT_EQ(n.pEmpAttendanceAllowanceDeductions,
              QStringLiteral("pEmpAttendanceAllowanceDeductions"));
    EXPECT_EQ(n.pSettings, QStringLiteral("pSettings"));
    EXPECT_EQ(n.pCurrencyMaster, QStringLiteral("pCurrencyMaster"));
    EXPECT_EQ(n.pLeaveCancellationHeader, QStringLiteral("pLeaveCancellationHeader"));
    EXPECT_EQ(n.pleavecancellationdetail, QStringLiteral("pleavecancellationdetail"));
    EXPECT_EQ(n.pEmployeeLeaves, QStringLiteral("PEmployeeLeaves"));
    EXPECT_EQ(n.pleaveregisterDetail, QStringLiteral("pleaveregisterDetail"));
    EXPECT_EQ(n.pleaveregisterheader, QStringLiteral("pleaveregisterheader"));
    EXPECT_EQ(n.pCalendarWTSheader, QStringLiteral("pCalendarWTSheader"));
    EXPECT_EQ(n.pMonthlyPayrollProcessing, QStringLiteral("pMonthlyPayrollProcessing"));
    EXPECT_EQ(n.pCalendarWorkTimeSettings, QStringLiteral("pCalendarWorkTimeSettings"));
    EXPECT_EQ(n.pEmpMonthlyEntryHeader, QStringLiteral("pEmpMonthlyEntryHeader"));
    EXPECT_EQ(n.pDepartment, QStringLiteral("pDepartment"));
    EXPECT_EQ(n.ptablecolumns, QStringLiteral("ptablecolumns"));
    EXPECT_EQ(n.puserrights, QStringLiteral("puserrights"));
    EXPECT_EQ(n.pPrefix, QStringLiteral("pPrefix"));
    EXPECT_EQ(n.pCurrencyallowdeddetails, QStringLiteral("pCurrencyallowdeddetails"));
}

TEST(LinkTableSql, PhysicalNamesThatDifferAreUsedInTheStatements) {
    TestDb t;
    t.exec(
        QStringLiteral("update linktable set linktablename='co1_Attendance' where "
                       "tablename='pEmployeeAttendence'"));
    t.exec(QStringLiteral(
        "update linktable set linktablename='co1_Employee' where tablename='pemployee'"));
    t.exec(
        QStringLiteral("create table co1_Attendance as select * from pEmployeeAttendence where 0"));
    t.exec(QStringLiteral("create table co1_Employee as select * from pEmployee where 0"));
    t.exec(QStringLiteral(
        "insert into co1_Employee(eEmpID,eCompanyID,eEmpNo,eName) values (7,1,'E007','Asha Rao')"));
    t.exec(QStringLiteral(
        "insert into co1_Attendance(eaCompanyID,eaID,eaNo,eaDate,eaEmpID,eaCancelled)"
        " values (1,11,'X11','2026-11-02',7,0)"));
    // The logical tables hold a row that must not be listed.
    insertRegisterRows(t);
    qz2::LinkedTableNames = {};
    qz2::fnLoadLinkTableNames();
    EXPECT_EQ(qz2::LinkedTableNames.pEmployeeAttendence, QStringLiteral("co1_Attendance"));
    EXPECT_EQ(qz2::LinkedTableNames.pemployee, QStringLiteral("co1_Employee"));
    EXPECT_EQ(qz2::LinkedTableNames.pSettings, QStringLiteral("pSettings"));

    expectTsql(
        sql::masterQuery(kServer, 1, 0, kProcessDate),
        QStringLiteral(
            "select EA.eaID,EA.eaNo,EA.eaDate,E.ename, case when EA.eacancelled=1 then 'Yes' else "
            "'No' end eacancelled  from co1_Attendance EA,co1_Employee E  Where "
            "EA.eacompanyid=E.ecompanyid  and  EA.eaempid=E.eempid and EA.eaCompanyid  = 1"));
    EXPECT_EQ(rowsOf(t.db, sql::masterQuery(kLite, 1, 0, kProcessDate)),
              QStringList{QStringLiteral("11|X11|2026-11-02|Asha Rao|No")});
}

TEST(LinkTableSql, RowStoredInAnotherLetterCaseIsUsed) {
    TestDb t;
    t.exec(QStringLiteral(
        "delete from linktable where tablename in ('PEmployeeLeaves','pusers','pSettings')"));
    t.exec(QStringLiteral(
        "insert into linktable(tablename,linktablename) values"
        " ('pEmployeeLeaves','co1_Leaves'),('PUSERS','co1_Users'),('psettings','co1_Settings')"));
    qz2::LinkedTableNames = {};
    qz2::fnLoadLinkTableNames();
    EXPECT_EQ(qz2::LinkedTableNames.pEmployeeLeaves, QStringLiteral("co1_Leaves"));
    EXPECT_EQ(qz2::LinkedTableNames.pusers, QStringLiteral("co1_Users"));
    EXPECT_EQ(qz2::LinkedTableNames.pSettings, QStringLiteral("co1_Settings"));
    EXPECT_EQ(qz2::LinkedTableNames.pemployee, QStringLiteral("pemployee"));
}

TEST(LinkTableSql, MissingRowLeavesTheMemberAsItWas) {
    TestDb t;
    t.exec(QStringLiteral("delete from linktable where tablename in ('pDepartment','pPrefix')"));
    qz2::LinkedTableNames = {};
    qz2::LinkedTableNames.pPrefix = QStringLiteral("fromAnEarlierRun");
    qz2::fnLoadLinkTableNames();
    EXPECT_TRUE(qz2::LinkedTableNames.pDepartment.isEmpty());
    EXPECT_EQ(qz2::LinkedTableNames.pPrefix, QStringLiteral("fromAnEarlierRun"));
    EXPECT_EQ(qz2::LinkedTableNames.pemployee, QStringLiteral("pemployee"));
}

TEST(LinkTableSql, NullPhysicalNameRaises) {
    TestDb t;
    // The demo schema forbids the NULL; a suite database may hold one.
    t.exec(QStringLiteral("drop table linktable"));
    t.exec(QStringLiteral("create table linktable (tablename TEXT, linktablename TEXT)"));
    t.exec(QStringLiteral("insert into linktable values ('pusers','pusers'),('pSettings',NULL)"));
    EXPECT_THROW(qz2::fnLoadLinkTableNames(), db::DbError);
}

TEST(LinkTableSql, MissingLinkTableRaisesWithTheDatabaseMessage) {
    TestDb t;
    t.exec(QStringLiteral("drop table linktable"));
    try {
        qz2::fnLoadLinkTableNames();
        FAIL() << "no error for a missing link table";
    } catch (const db::DbError& e) {
        EXPECT_TRUE(e.message().contains(QStringLiteral("linktable"))) << e.message().toStdString();
    }
}

// ---------------------------------------------------------------------------------------
// Register list, headings, rights

TEST(RegisterSql, ListQueryWithoutDayLimit) {
    TestDb t;
    const QString expected = QString::fromLatin1(kMasterAll);
    expectTsql(sql::masterQuery(kServer, 1, 0, kProcessDate), expected);
    expectTsql(sql::masterQuery(kServer, 1, -1, kProcessDate), expected);
    EXPECT_EQ(sql::masterFromClause(), QStringLiteral("pEmployeeAttendence EA,pemployee E"));
}

TEST(RegisterSql, ListQueryWithDayLimit) {
    TestDb t;
    expectTsql(sql::masterQuery(kServer, 1, 30, kProcessDate),
               QString::fromLatin1(kMasterAll) +
                   QStringLiteral(" and DateDiff(dd,eaDate,'20261121')<=30"));
    expectTsql(
        sql::masterQuery(kServer, 2, 7, QDate(2027, 1, 5)),
        QStringLiteral(
            "select EA.eaID,EA.eaNo,EA.eaDate,E.ename, case when EA.eacancelled=1 then 'Yes' else "
            "'No' end eacancelled  from pEmployeeAttendence EA,pemployee E  Where "
            "EA.eacompanyid=E.ecompanyid  and  EA.eaempid=E.eempid and EA.eaCompanyid  = 2 and "
            "DateDiff(dd,eaDate,'20270105')<=7"));
}

TEST(RegisterSql, ListWithoutDayLimitShowsEveryEntryOfTheCompany) {
    TestDb t;
    insertRegisterRows(t);
    const QStringList all{QStringLiteral("1|ATT1|2026-10-21|Asha Rao|No"),
                          QStringLiteral("2|ATT2|2026-10-22|Ravi Menon|Yes"),
                          QStringLiteral("3|ATT3|2026-11-21|Asha Rao|No"),
                          QStringLiteral("4|ATT4|2026-11-25|Ravi Menon|No"),
                          QStringLiteral("5|ATT5|2025-01-02|Asha Rao|No")};
    EXPECT_EQ(sortedRowsOf(t.db, sql::masterQuery(kLite, 1, 0, kProcessDate)), all);
    EXPECT_EQ(sortedRowsOf(t.db, sql::masterQuery(kLite, 1, -5, kProcessDate)), all);
    EXPECT_EQ(sortedRowsOf(t.db, sql::masterQuery(kLite, 2, 0, kProcessDate)),
              (QStringList{QStringLiteral("3|ATT3|2026-11-20|Other Company|No"),
                           QStringLiteral("6|ATT6|2026-11-21|Other Company|No")}));
}

TEST(RegisterSql, ListWithDayLimitKeepsThirtyDaysAndLaterEntries) {
    TestDb t;
    insertRegisterRows(t);
    // 30 days before the process date is in, 31 is out; later dates are always in.
    EXPECT_EQ(sortedRowsOf(t.db, sql::masterQuery(kLite, 1, 30, kProcessDate)),
              (QStringList{QStringLiteral("2|ATT2|2026-10-22|Ravi Menon|Yes"),
                           QStringLiteral("3|ATT3|2026-11-21|Asha Rao|No"),
                           QStringLiteral("4|ATT4|2026-11-25|Ravi Menon|No")}));
    EXPECT_EQ(sortedRowsOf(t.db, sql::masterQuery(kLite, 1, 31, kProcessDate)).size(), 4);
    EXPECT_EQ(sortedRowsOf(t.db, sql::masterQuery(kLite, 1, 29, kProcessDate)),
              (QStringList{QStringLiteral("3|ATT3|2026-11-21|Asha Rao|No"),
                           QStringLiteral("4|ATT4|2026-11-25|Ravi Menon|No")}));
}

TEST(RegisterSql, HeadingQuery) {
    TestDb t;
    const QString text = sql::headingQuery(QStringLiteral("pEmployeeAttendence"));
    expectTsql(text, QStringLiteral(
                         "select tc.columnheader,tc.columnname from ptables  t, ptablecolumns  tc "
                         "where t.tableid = tc.tableid and tablename ='pEmployeeAttendence' "
                         "order by columnid"));
    t.exec(QStringLiteral("insert into ptables values (1,'pEmployeeAttendence'),(2,'pEmployee')"));
    t.exec(
        QStringLiteral("insert into ptablecolumns(tableid,columnid,columnname,columnheader) values"
                       " (1,2,'eaNo','Attendance No'),(1,1,'eaID','ID'),(1,3,'eaDate','Date'),"
                       " (2,1,'eEmpID','Employee')"));
    EXPECT_EQ(rowsOf(t.db, text),
              (QStringList{QStringLiteral("ID|eaID"), QStringLiteral("Attendance No|eaNo"),
                           QStringLiteral("Date|eaDate")}));
}

TEST(RegisterSql, RightsQuery) {
    TestDb t;
    expectTsql(
        sql::rightsQuery(2, qz2::kInterfaceID),
        QStringLiteral(
            "select functionrights from puserrights where userid = 2 and interfaceid = 91029"));
    t.exec(QStringLiteral(
        "insert into puserrights values (2,91029,'NE'),(2,91030,'NEDUP'),(3,91030,'D')"));
    db::Recordset rs = db::openRecordset(t.db, sql::rightsQuery(2, qz2::kInterfaceID));
    ASSERT_EQ(rs.recordCount(), 1);
    EXPECT_EQ(rs.field(QStringLiteral("FunctionRights")).toString(), QStringLiteral("NE"));
    EXPECT_EQ(db::openRecordset(t.db, sql::rightsQuery(3, qz2::kInterfaceID)).recordCount(), 0);
}

// ---------------------------------------------------------------------------------------
// Monthly lock and one-row refresh

TEST(SharedSql, MonthlyLockQuery) {
    expectTsql(sql::monthlyLockQuery(1, QStringLiteral("5")),
               QStringLiteral(
                   "Select count(1) from pEmpMonthlyEntryHeader a,pEmployeeAttendence b where "
                   "a.emhCompanyID =b.eaCompanyID and a.emhEmpID=b.eaEmpID and emhCancelled=0 and "
                   "(a.emhStartDate between b.eaStartDate and b.eaEndDate or a.emhendDate between "
                   "b.eaStartDate and b.eaEndDate ) and a.emhCompanyID=1 and b.eaCompanyID=1 and "
                   "b.eaID=5"));
}

TEST(SharedSql, MonthlyLockAtEachBoundary) {
    struct Case {
        const char* what;
        const char* row;  // emhCompanyID, emhEmpID, emhStartDate, emhEndDate, emhCancelled
        bool locked;
    };
    // The entry covers 2026-11-01 .. 2026-11-30.
    const Case cases[] = {
        {"starts on the entry's start date", "1,7,'2026-11-01','2026-12-15',0", true},
        {"ends on the entry's end date", "1,7,'2026-10-15','2026-11-30',0", true},
        {"starts on the entry's end date", "1,7,'2026-11-30','2026-12-29',0", true},
        {"ends on the entry's start date", "1,7,'2026-10-01','2026-11-01',0", true},
        {"inside the period", "1,7,'2026-11-10','2026-11-20',0", true},
        {"starts the day after the end", "1,7,'2026-12-01','2026-12-31',0", false},
        {"ends the day before the start", "1,7,'2026-10-01','2026-10-31',0", false},
        {"covers the whole period from before to after", "1,7,'2026-10-15','2026-12-15',0", false},
        {"cancelled, inside the period", "1,7,'2026-11-10','2026-11-20',1", false},
        {"another employee's, inside the period", "1,8,'2026-11-10','2026-11-20',0", false},
        {"the same employee number in another company", "2,7,'2026-11-10','2026-11-20',0", false},
    };
    TestDb t;
    t.exec(
        QStringLiteral("insert into "
                       "pEmployeeAttendence(eaCompanyID,eaID,eaNo,eaDate,eaEmpID,eaCancelled,"
                       "eaStartDate,eaEndDate)"
                       " values (1,5,'ATT5','2026-12-01',7,0,'2026-11-01','2026-11-30'),"
                       " (2,5,'ATT5','2026-12-01',7,0,'2026-11-01','2026-11-30')"));
    const QString text = sql::monthlyLockQuery(1, QStringLiteral("5"));
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        t.exec(QStringLiteral("delete from pEmpMonthlyEntryHeader"));
        t.exec(QStringLiteral(
                   "insert into pEmpMonthlyEntryHeader"
                   "(emhCompanyID,emhEmpID,emhStartDate,emhEndDate,emhCancelled,emhID) values (") +
               QString::fromLatin1(c.row) + QStringLiteral(",1)"));
        EXPECT_EQ(db::scalar(t.db, text).toInt() > 0, c.locked);
    }
}

TEST(SharedSql, RefreshQueryAddsTheConditionToTheListQuery) {
    const QString condition = QStringLiteral("eaID=3 and eacompanyid=1");
    const QString all = QString::fromLatin1(kMasterAll);
    expectTsql(sql::refreshQuery(all, condition),
               all + QStringLiteral(" and eaID=3 and eacompanyid=1"));
    // Everything from "order by" on is dropped, the blank before it kept.
    expectTsql(sql::refreshQuery(all + QStringLiteral(" order by EA.eaDate"), condition),
               all + QStringLiteral("  and eaID=3 and eacompanyid=1"));
    expectTsql(
        sql::refreshQuery(
            all + QStringLiteral(" and DateDiff(dd,eaDate,'20261121')<=30 order by eaNo desc"),
            condition),
        all + QStringLiteral(
                  " and DateDiff(dd,eaDate,'20261121')<=30  and eaID=3 and eacompanyid=1"));
    // Without a "where" the condition starts one.
    expectTsql(
        sql::refreshQuery(QStringLiteral("select eaID,eaNo from pEmployeeAttendence"), condition),
        QStringLiteral("select eaID,eaNo from pEmployeeAttendence where eaID=3 and eacompanyid=1"));
    expectTsql(
        sql::refreshQuery(QStringLiteral("select eaID,eaNo from pEmployeeAttendence order by eaNo"),
                          condition),
        QStringLiteral(
            "select eaID,eaNo from pEmployeeAttendence  where eaID=3 and eacompanyid=1"));
}

TEST(SharedSql, RefreshQueryReadsTheOneRow) {
    TestDb t;
    insertRegisterRows(t);
    const QString condition = QStringLiteral("eaID=3 and eacompanyid=1");
    const QString list = sql::masterQuery(kLite, 1, 0, kProcessDate);
    const QStringList row3{QStringLiteral("3|ATT3|2026-11-21|Asha Rao|No")};
    EXPECT_EQ(rowsOf(t.db, sql::refreshQuery(list, condition)), row3);
    EXPECT_EQ(
        rowsOf(t.db, sql::refreshQuery(list + QStringLiteral(" order by EA.eaDate"), condition)),
        row3);
    EXPECT_EQ(
        rowsOf(t.db, sql::refreshQuery(sql::masterQuery(kLite, 1, 30, kProcessDate), condition)),
        row3);
    EXPECT_EQ(
        rowsOf(t.db, sql::refreshQuery(QStringLiteral("select eaID,eaNo from pEmployeeAttendence"),
                                       condition)),
        QStringList{QStringLiteral("3|ATT3")});
}

// ---------------------------------------------------------------------------------------
// Cancelling

TEST(CancelSql, StatementTexts) {
    expectTsql(sql::cancelUserNameQuery(1, 4),
               QStringLiteral("select username from pusers where companyid=1 and userid=4"));
    expectTsql(
        sql::cancelEmployeeQuery(QStringLiteral("5"), 1),
        QStringLiteral("select eaEmpID from pEmployeeattendence where eaId='5' and eaCompanyid=1"));
    expectTsql(sql::cancelUpdate(QStringLiteral("admin:wrong employee"), QStringLiteral("5"), 1),
               QStringLiteral(
                   "update pEmployeeattendence set eacancelled=1,eaCancelledRemarks='admin:wrong "
                   "employee' where eaId='5' and eaCompanyid=1"));
    expectTsql(
        sql::cancelUpdate(QString(), QStringLiteral("12"), 3),
        QStringLiteral("update pEmployeeattendence set eacancelled=1,eaCancelledRemarks='' where "
                       "eaId='12' and eaCompanyid=3"));
}

TEST(CancelSql, TheCancelledFlagIsReadFromTheTableTheUpdateWrites) {
    expectTsql(sql::cancelledFlagQuery(QStringLiteral("5"), 1),
               QStringLiteral(
                   "select eacancelled from pEmployeeattendence where eaId='5' and eaCompanyid=1"));
    // Two clerks cancelling one entry on SQL Server are served one after the other.
    expectTsql(*sql::cancelLockQuery(db::Dialect::sqlServer(), QStringLiteral("5"), 1),
               QStringLiteral("select eacancelled from pEmployeeattendence with (updlock, holdlock) where "
                              "eaId='5' and eaCompanyid=1"));
    EXPECT_FALSE(sql::cancelLockQuery(db::Dialect::sqlite(), QStringLiteral("5"), 1).has_value());
    TestDb t;
    insertRegisterRows(t);
    t.exec(QStringLiteral(
        "update pEmployeeAttendence set eaCancelled=1 where eaID=3 and eaCompanyID=2"));
    EXPECT_EQ(db::scalar(t.db, sql::cancelledFlagQuery(QStringLiteral("3"), 1)).toInt(), 0);
    EXPECT_EQ(db::scalar(t.db, sql::cancelledFlagQuery(QStringLiteral("3"), 2)).toInt(), 1);
    EXPECT_TRUE(db::openRecordset(t.db, sql::cancelledFlagQuery(QStringLiteral("999"), 1)).eof());
}

TEST(CancelSql, PastedQuotesAreDoubledInsideTheLiteral) {
    expectTsql(
        sql::cancelUpdate(QStringLiteral("admin:it's \"late\" ''twice''"), QStringLiteral("5"), 1),
        QStringLiteral(
            "update pEmployeeattendence set eacancelled=1,eaCancelledRemarks='admin:it''s "
            "\"late\" ''''twice''''' where eaId='5' and eaCompanyid=1"));
}

TEST(CancelSql, StatementsRunOnTheDatabase) {
    TestDb t;
    insertRegisterRows(t);
    t.exec(QStringLiteral(
        "insert into pusers(userid,username,companyid) values (1,'admin ',1),(2,'clerk',2)"));
    db::Recordset user = db::openRecordset(t.db, sql::cancelUserNameQuery(1, 1));
    ASSERT_FALSE(user.eof());
    EXPECT_EQ(user.field(QStringLiteral("username")).toString(), QStringLiteral("admin "));
    EXPECT_TRUE(
        db::openRecordset(t.db, sql::cancelUserNameQuery(1, 2)).eof());  // user 2 is company 2's

    EXPECT_EQ(db::scalar(t.db, sql::cancelEmployeeQuery(QStringLiteral("3"), 1)).toInt(), 7);
    EXPECT_EQ(db::scalar(t.db, sql::cancelEmployeeQuery(QStringLiteral("3"), 2)).toInt(), 9);

    const QString remarks = QStringLiteral("admin:it's \"late\"");
    EXPECT_EQ(db::execute(t.db, sql::cancelUpdate(remarks, QStringLiteral("3"), 1)), 1);
    EXPECT_EQ(rowsOf(t.db, QStringLiteral("select eaCompanyID,eaCancelled,eaCancelledRemarks from "
                                          "pEmployeeAttendence where eaID=3 order by eaCompanyID")),
              (QStringList{QStringLiteral("1|1|admin:it's \"late\""), QStringLiteral("2|0|NULL")}));
}

// ---------------------------------------------------------------------------------------
// CommonModule helper

TEST(CommonModuleSql, ReturnFieldTexts) {
    TestDb t;
    t.exec(QStringLiteral(
        "insert into pSettings(companyid,gracetime,noofPreviousdays) values (1,10,30),(2,5,7)"));
    t.exec(QStringLiteral("insert into ausers(userid,username,companyid) values (1,'admin',1)"));
    auto helper = qz2::commonmodule::createCommonDB(t.db);
    helper->strTableName = qz2::LinkedTableNames.pSettings;

    QVariant value;
    QStringList seen = statementsRunBy([&] {
        value = helper->fnReturnField(QStringLiteral("noofPreviousdays"),
                                      QStringLiteral("companyId=2"));
    });
    ASSERT_EQ(seen.size(), 1);
    expectTsql(seen[0], QStringLiteral("select noofPreviousdays from pSettings where companyId=2"));
    EXPECT_EQ(value.toInt(), 7);

    seen = statementsRunBy([&] {
        value = helper->fnReturnField(QStringLiteral("noofPreviousdays"),
                                      QStringLiteral("companyId=9"));
    });
    ASSERT_EQ(seen.size(), 1);
    EXPECT_TRUE(value.isNull());

    helper->strTableName = QStringLiteral("ausers where userid=1");
    seen = statementsRunBy([&] { value = helper->fnReturnField(QStringLiteral("username")); });
    ASSERT_EQ(seen.size(), 1);
    expectTsql(seen[0], QStringLiteral("select username from ausers where userid=1"));
    EXPECT_EQ(value.toString(), QStringLiteral("admin"));

    helper->strTableName = QStringLiteral("pemployee");
    seen = statementsRunBy([&] {
        value = helper->fnReturnField(QStringLiteral("PerHourRate"),
                                      QStringLiteral("ecompanyid=1 And eEmpID=7"));
    });
    ASSERT_EQ(seen.size(), 1);
    expectTsql(seen[0],
               QStringLiteral("select PerHourRate from pemployee where ecompanyid=1 And eEmpID=7"));
}

TEST(CommonModuleSql, NextMaxNoText) {
    TestDb t;
    auto helper = qz2::commonmodule::createCommonDB(t.db);
    helper->strTableName = qz2::LinkedTableNames.pEmployeeAttendence;
    qint32 next = 0;
    QStringList seen =
        statementsRunBy([&] { next = helper->fnGetNextMaxNo(QStringLiteral("eaID")); });
    ASSERT_EQ(seen.size(), 1);
    expectTsql(seen[0], QStringLiteral("select max(eaID) from pEmployeeAttendence"));
    EXPECT_EQ(next, 1);  // empty table

    insertRegisterRows(t);  // eaID up to 6 (company 2): the maximum ignores the company
    EXPECT_EQ(helper->fnGetNextMaxNo(QStringLiteral("eaID")), 7);
}

// ---------------------------------------------------------------------------------------
// The checker itself: it must reject what SQL Server would reject, or pinning proves little.

TEST(TsqlChecker, RejectsABrokenStatementAndAcceptsClientNotations) {
    const qz2test::TsqlCheckResult bad =
        qz2test::runTsqlCheck({QStringLiteral("select eaID from where eaID=1"),
                               QStringLiteral("select 1 from pusers; select 2 from pusers")});
    EXPECT_FALSE(bad.ok);
    EXPECT_TRUE(bad.output.contains(QStringLiteral("select eaID from where eaID=1")))
        << bad.output.toStdString();
    EXPECT_TRUE(bad.output.contains(QStringLiteral("expected one statement")))
        << bad.output.toStdString();

    const qz2test::TsqlCheckResult good = qz2test::runTsqlCheck(
        {QStringLiteral("select * from pEmployeeAttendence where eacompanyid=1and eaid=5"),
         QStringLiteral("{call spreturnWorkingHrs(?,?,?)}"),
         QStringLiteral("insert into pPrefix(companyid,InterfaceID,Prefix) Values(?,?,'?')")});
    EXPECT_TRUE(good.ok) << good.output.toStdString();
}
