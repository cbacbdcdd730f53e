// Statements of saving an entry and of loading it back for edit: every SQL Server text pinned
// to the suite's own text (and parsed as T-SQL at the end of the program), every SQLite text
// run on a fresh database, and the values the inserts bind.

#include <gtest/gtest.h>

#include <QDateTime>
#include <QSqlQuery>
#include <QTime>
#include <optional>

#include "TestSupport.h"
#include "TsqlCheck.h"
#include "db/Database.h"
#include "db/Dialect.h"
#include "entry/SaveSql.h"
#include "rules/Saving.h"
#include "shared/BasAttendence.h"

using namespace qz2;
using namespace qz2::entry::savesql;
using qz2test::expectTsql;
using qz2test::TestDb;

namespace {

const db::Dialect kServer = db::Dialect::sqlServer();
const db::Dialect kLite = db::Dialect::sqlite();

// The physical names differ from the logical ones, so that a text shows which names come
// from the link table and which are written literally.
void linkPhysicalNames() {
    LinkedTableNames.pEmployeeAttendence = QStringLiteral("tblAttendance");
    LinkedTableNames.pEmpAttendanceDetail = QStringLiteral("tblAttendanceDetail");
    LinkedTableNames.pEmpAttendanceAllowanceDeductions = QStringLiteral("tblAttendanceClaims");
    LinkedTableNames.pCurrencyallowdeddetails = QStringLiteral("tblCurrencyHeads");
}

// One entry of company 1 (eaID 7) and one of company 2 with the same identifier.
void seedEntries(const TestDb& t) {
    t.exec(
        "insert into "
        "pEmployeeAttendence(eaCompanyID,eaID,eaNo,eaDate,eaEmpID,eaPresent,eaLeaves,eaAbsent,"
        "eaCancelled,eaStartDate,eaEndDate,eacwtsid,eaRemarks,eaPerHourRate) values"
        "(1,7,'ATT7','2026-11-10',5,2,0,1,0,'2026-11-02','2026-11-04',3,NULL,10),"
        "(2,7,'HC7','2026-11-10',9,1,0,0,0,'2026-11-02','2026-11-02',4,NULL,10)");
    t.exec(
        "insert into pEmpAttendanceDetail values"
        "(1,7,1,'2026-11-02','P','09:00:00','13:00:00'),(1,7,2,'2026-11-02','P','14:00:00','18:00:"
        "00'),"
        "(1,7,3,'2026-11-03','P','09:00:00','17:00:00'),(1,7,4,'2026-11-04','A',NULL,NULL),"
        "(2,7,1,'2026-11-02','P','08:00:00','16:00:00')");
    t.exec(
        "insert into pEmpAttendanceAllowanceDeductions values"
        "(1,7,1,'2026-11-02',1.5,11,NULL),(1,7,2,'2026-11-03',0.25,NULL,21),(2,7,1,'2026-11-02',2,"
        "12,NULL)");
}

}  // namespace

// ---------------------------------------------------------------------------------------
// SQL Server texts

TEST(SaveSqlServerText, EditDeletesInTheirOrderWithTheirBlanks) {
    linkPhysicalNames();
    expectTsql(
        deleteAllowanceLines(1, 42),
        " Delete from tblAttendanceClaims where  eaadCompanyID= 1 And  eaadAttendanceID= 42");
    expectTsql(deleteDetailLines(1, 42),
               " Delete from tblAttendanceDetail where  eadCompanyID= 1 And  eadAttendanceID= 42");
    expectTsql(deleteHeader(1, 42),
               " Delete from tblAttendance where  eaCompanyID= 1 And  eaID= 42");
}

TEST(SaveSqlServerText, HeaderInsertHasFourteenMarkersInColumnOrder) {
    linkPhysicalNames();
    expectTsql(headerInsert(),
               "insert into "
               "tblAttendance(eaCompanyID,eaID,eaNo,eaDate,eaEmpID,eaPresent,eaLeaves,eaAbsent,  "
               "eaCancelled,eaStartDate,eaEndDate,eacwtsid,eaRemarks,eaPerHourRate) "
               "Values(?,?,?,?,?,?,?,?,?,?,?,?,?,?)");
    EXPECT_EQ(headerInsert().count(QLatin1Char('?')), 14);
}

TEST(SaveSqlServerText, DetailInsert) {
    linkPhysicalNames();
    expectTsql(
        detailInsert(),
        "insert into tblAttendanceDetail(eadCompanyID,eadAttendanceID,eadDetailID,eadDate,eadType,"
        "eadCheckIN,eadCheckOut)  Values(?,?,?,?,?,?,?)");
}

TEST(SaveSqlServerText, AllowanceInsert) {
    linkPhysicalNames();
    expectTsql(
        allowanceInsert(),
        "insert into tblAttendanceClaims (eaadCompanyID,eaadAttendanceID,eaadDetailID,eaadDate, "
        "eaadHours,eaadAllowanceID,eaadDeductionID) Values(?,?,?,?,?,?,?)");
}

TEST(SaveSqlServerText, CurrencyHeadsNameTheEmployeeTableLiterally) {
    linkPhysicalNames();
    expectTsql(
        currencyHeadsQuery(5, 1),
        "Select Overtimeallowanceid,latecomingdedid From tblCurrencyHeads R,pEmployee E where  "
        "E.ecurrencyid= R.CurrencyID And  e.eEmpID= 5 And  companyID = 1");
}

TEST(SaveSqlServerText, RateConditions) {
    EXPECT_EQ(rateSettingCondition(3), QStringLiteral("companyid=3"));
    EXPECT_EQ(employeeRateCondition(3, 12), QStringLiteral("ecompanyid=3 And eEmpID=12"));
}

TEST(SaveSqlServerText, HeaderReadGluesTheCompanyToAnd) {
    linkPhysicalNames();
    expectTsql(headerQuery(kServer, 1, QStringLiteral("7")),
               "select * from tblAttendance where eacompanyid=1and eaid=7");
}

TEST(SaveSqlServerText, DetailReadNamesTheDetailTableLiterally) {
    linkPhysicalNames();
    expectTsql(
        detailLinesQuery(1, QStringLiteral("7")),
        "Select eadDetailID,eadDate,eadType,eadCheckIn,eadCheckOut from pEmpAttendanceDetail where "
        "eadCompanyID= 1 And eadAttendanceID= 7");
    expectTsql(
        entryDaysQuery(1, QStringLiteral("7")),
        " Select Distinct eadDate,eadType from pEmpAttendanceDetail where  eadAttendanceID= 7 And "
        "eadCompanyID= 1 Order by eadDate");
}

TEST(SaveSqlServerText, AllowanceRead) {
    linkPhysicalNames();
    expectTsql(allowanceLinesQuery(1, QStringLiteral("7")),
               " Select eaadDate,eaadHours,eaadAllowanceID,eaadDeductionID from "
               "tblAttendanceClaims where  "
               "eaadAttendanceID= 7 And  eaadCompanyID= 1");
}

TEST(SaveSqlServerText, OverlapCheckLocksWhatItReadsUntilTheSaveEnds) {
    linkPhysicalNames();
    expectTsql(overlappingEntryQuery(kServer, 1, 5, QDate(2026, 11, 1), QDate(2026, 11, 30),
                                     std::nullopt),
               "Select top 1 eaNo,eaStartDate,eaEndDate from tblAttendance with (updlock, "
               "holdlock) where eaCompanyID=1 and eaEmpID=5 and eaCancelled=0 and "
               "eaStartDate<='20261130' and eaEndDate>='20261101' order by eaStartDate");
    // An edit never blocks itself.
    expectTsql(overlappingEntryQuery(kServer, 1, 5, QDate(2026, 11, 1), QDate(2026, 11, 30), 42),
               "Select top 1 eaNo,eaStartDate,eaEndDate from tblAttendance with (updlock, "
               "holdlock) where eaCompanyID=1 and eaEmpID=5 and eaCancelled=0 and "
               "eaStartDate<='20261130' and eaEndDate>='20261101' and eaID<>42 order by "
               "eaStartDate");
}

TEST(SaveSqlServerText, NumberTakenCheckDoublesQuotes) {
    linkPhysicalNames();
    expectTsql(attendanceNoTakenQuery(1, QStringLiteral("ATT42")),
               "Select count(*) from tblAttendance where eaCompanyID=1 and eaNo='ATT42'");
    expectTsql(attendanceNoTakenQuery(1, QStringLiteral("O'B7")),
               "Select count(*) from tblAttendance where eaCompanyID=1 and eaNo='O''B7'");
}

TEST(SaveSqlServerText, TheServerWaitsForLocksByItself) {
    EXPECT_FALSE(lockWaitQuery(kServer).has_value());
    EXPECT_FALSE(setLockWait(kServer, 1000).has_value());
}

// ---------------------------------------------------------------------------------------
// Values bound by the inserts

TEST(SaveValues, SqliteStoresIsoDateAndTimeText) {
    EXPECT_EQ(dateValue(kLite, QDate(2026, 3, 7)), QVariant(QStringLiteral("2026-03-07")));
    EXPECT_EQ(timeValue(kLite, TimeValue::fromHM(9, 5)), QVariant(QStringLiteral("09:05:00")));
    EXPECT_EQ(timeValue(kLite, TimeValue()), QVariant(QStringLiteral("00:00:00")));
    // Only hours and minutes are stored; seconds of a value are dropped.
    EXPECT_EQ(timeValue(kLite, TimeValue::fromTime(QTime(17, 42, 31))),
              QVariant(QStringLiteral("17:42:00")));
}

TEST(SaveValues, SqlServerTakesDateTimesWithTimesOnTheBaseDay) {
    EXPECT_EQ(dateValue(kServer, QDate(2026, 3, 7)).toDateTime(),
              QDateTime(QDate(2026, 3, 7), QTime(0, 0)));
    EXPECT_EQ(timeValue(kServer, TimeValue::fromHM(18, 30)).toDateTime(),
              QDateTime(QDate(1899, 12, 30), QTime(18, 30)));
}

TEST(SaveValues, NullsAreTypedAndNull) {
    EXPECT_TRUE(noTime(kLite).isNull());
    EXPECT_TRUE(noTime(kServer).isNull());
    EXPECT_EQ(noTime(kServer).metaType(), QMetaType::fromType<QDateTime>());
    EXPECT_TRUE(noNumber().isNull());
    EXPECT_EQ(noNumber().metaType(), QMetaType::fromType<int>());
    EXPECT_TRUE(noText().isNull());
}

TEST(SaveValues, StoredHoursReadBackAsTheGridsHoursText) {
    EXPECT_EQ(rules::decimalHoursText(2.75), QStringLiteral("02:45"));
    EXPECT_EQ(rules::decimalHoursText(40.0 / 60.0), QStringLiteral("00:40"));
    EXPECT_EQ(rules::decimalHoursText(0.0), QStringLiteral("00:00"));
    EXPECT_EQ(rules::decimalHoursText(1.5), QStringLiteral("01:30"));
    // The save's conversion of the text gives the stored amount back, minute for minute.
    for (int minutes = 0; minutes < 24 * 60; minutes += 7) {
        const double stored = minutes / 60 + (minutes % 60) / 60.0;
        const std::optional<double> again = rules::hoursToDecimal(rules::decimalHoursText(stored));
        ASSERT_TRUE(again.has_value()) << minutes;
        EXPECT_DOUBLE_EQ(*again, stored) << minutes;
    }
}

// ---------------------------------------------------------------------------------------
// SQLite texts, run

TEST(SaveSqlite, OverlapCheckFindsOnlyLiveEntriesOfTheEmployeeSharingADay) {
    TestDb t;
    seedEntries(t);  // entry 7 of company 1: employee 5, 2 to 4 November
    t.exec(
        "insert into pEmployeeAttendence(eaCompanyID,eaID,eaNo,eaDate,eaEmpID,eaPresent,eaLeaves,"
        "eaAbsent,eaCancelled,eaStartDate,eaEndDate,eacwtsid) values"
        "(1,8,'ATT8','2026-11-10',5,1,0,0,1,'2026-11-05','2026-11-06',3),"  // cancelled
        "(1,9,'ATT9','2026-11-10',6,1,0,0,0,'2026-11-05','2026-11-06',3)");  // another employee
    const auto found = [&t](QDate from, QDate to, std::optional<qint32> edited = std::nullopt) {
        QSqlQuery q(t.db);
        EXPECT_TRUE(q.exec(overlappingEntryQuery(kLite, 1, 5, from, to, edited)));
        return q.next() ? q.value(0).toString() + QLatin1Char('|') + q.value(1).toString() +
                              QLatin1Char('|') + q.value(2).toString()
                        : QString();
    };
    // One shared day at either end is an overlap; touching is not.
    EXPECT_EQ(found(QDate(2026, 10, 1), QDate(2026, 11, 2)), "ATT7|2026-11-02|2026-11-04");
    EXPECT_EQ(found(QDate(2026, 11, 4), QDate(2026, 11, 30)), "ATT7|2026-11-02|2026-11-04");
    EXPECT_EQ(found(QDate(2026, 11, 3), QDate(2026, 11, 3)), "ATT7|2026-11-02|2026-11-04");
    EXPECT_EQ(found(QDate(2026, 10, 1), QDate(2026, 11, 1)), QString());
    EXPECT_EQ(found(QDate(2026, 11, 5), QDate(2026, 11, 30)), QString());
    // The entry being edited, a cancelled entry and another employee's never block.
    EXPECT_EQ(found(QDate(2026, 11, 1), QDate(2026, 11, 30), 7), QString());
}

TEST(SaveSqlite, NumberTakenCheckCountsTheCompanysEntriesWithThatNumber) {
    TestDb t;
    seedEntries(t);  // ATT7 of company 1, HC7 of company 2
    EXPECT_EQ(db::scalar(t.db, attendanceNoTakenQuery(1, QStringLiteral("ATT7"))).toInt(), 1);
    EXPECT_EQ(db::scalar(t.db, attendanceNoTakenQuery(1, QStringLiteral("ATT8"))).toInt(), 0);
    EXPECT_EQ(db::scalar(t.db, attendanceNoTakenQuery(1, QStringLiteral("HC7"))).toInt(), 0);
    EXPECT_EQ(db::scalar(t.db, attendanceNoTakenQuery(2, QStringLiteral("HC7"))).toInt(), 1);
    EXPECT_EQ(db::scalar(t.db, attendanceNoTakenQuery(1, QStringLiteral("x' or '1'='1"))).toInt(),
              0);
}

TEST(SaveSqlite, HeaderReadPutsABlankWhereTSqlGluesTheCompany) {
    TestDb t;
    seedEntries(t);
    const QString sql = headerQuery(kLite, 1, QStringLiteral("7"));
    EXPECT_EQ(sql,
              QStringLiteral("select * from pEmployeeAttendence where eacompanyid=1 and eaid=7"));
    const db::Recordset rs = db::openRecordset(t.db, sql);
    ASSERT_EQ(rs.recordCount(), 1);
    EXPECT_EQ(rs.field(QStringLiteral("eaNo")).toString(), QStringLiteral("ATT7"));
    EXPECT_EQ(rs.field(QStringLiteral("eacwtsid")).toInt(), 3);
}

TEST(SaveSqlite, DetailAndDayReadsKeepToTheCompanyAndEntry) {
    TestDb t;
    seedEntries(t);
    const db::Recordset lines = db::openRecordset(t.db, detailLinesQuery(1, QStringLiteral("7")));
    ASSERT_EQ(lines.recordCount(), 4);
    EXPECT_EQ(lines.row(0).value(0).toInt(), 1);
    EXPECT_EQ(lines.row(3).value(2).toString(), QStringLiteral("A"));
    EXPECT_TRUE(lines.row(3).value(3).isNull());

    const db::Recordset days = db::openRecordset(t.db, entryDaysQuery(1, QStringLiteral("7")));
    ASSERT_EQ(days.recordCount(), 3);  // 2 Nov's two pairs make one day
    EXPECT_EQ(days.row(0).value(0).toString(), QStringLiteral("2026-11-02"));
    EXPECT_EQ(days.row(1).value(0).toString(), QStringLiteral("2026-11-03"));
    EXPECT_EQ(days.row(2).value(1).toString(), QStringLiteral("A"));
}

TEST(SaveSqlite, AllowanceReadKeepsToTheCompanyAndEntry) {
    TestDb t;
    seedEntries(t);
    const db::Recordset rs = db::openRecordset(t.db, allowanceLinesQuery(1, QStringLiteral("7")));
    ASSERT_EQ(rs.recordCount(), 2);
    EXPECT_DOUBLE_EQ(rs.row(0).value(1).toDouble(), 1.5);
    EXPECT_EQ(rs.row(0).value(2).toInt(), 11);
    EXPECT_TRUE(rs.row(1).value(2).isNull());
    EXPECT_EQ(rs.row(1).value(3).toInt(), 21);
}

TEST(SaveSqlite, DeletesRemoveOnlyTheEntrysRowsOfTheCompany) {
    TestDb t;
    seedEntries(t);
    EXPECT_EQ(db::execute(t.db, deleteAllowanceLines(1, 7)), 2);
    EXPECT_EQ(db::execute(t.db, deleteDetailLines(1, 7)), 4);
    EXPECT_EQ(db::execute(t.db, deleteHeader(1, 7)), 1);
    EXPECT_EQ(t.scalar("select count(*) from pEmployeeAttendence").toInt(), 1);
    EXPECT_EQ(t.scalar("select count(*) from pEmpAttendanceDetail").toInt(), 1);
    EXPECT_EQ(t.scalar("select count(*) from pEmpAttendanceAllowanceDeductions").toInt(), 1);
    EXPECT_EQ(t.scalar("select eaNo from pEmployeeAttendence").toString(), QStringLiteral("HC7"));
}

TEST(SaveSqlite, InsertsStoreTheContractsTextsAndNulls) {
    TestDb t;
    {
        db::Command header(t.db, headerInsert());
        header.execute({QVariant(qint16(1)), QVariant(9), QVariant(QStringLiteral("ATT9")),
                        dateValue(kLite, QDate(2026, 11, 21)), QVariant(5), QVariant(5.5),
                        QVariant(1.0), QVariant(1.5), QVariant(0),
                        dateValue(kLite, QDate(2026, 11, 2)), dateValue(kLite, QDate(2026, 11, 9)),
                        QVariant(1), noText(), QVariant(12.75)});
        db::Command detail(t.db, detailInsert());
        detail.execute({QVariant(qint16(1)), QVariant(9), QVariant(1),
                        dateValue(kLite, QDate(2026, 11, 2)), QVariant(QStringLiteral("P")),
                        timeValue(kLite, TimeValue::fromHM(9, 0)),
                        timeValue(kLite, TimeValue::fromHM(13, 0))});
        detail.execute({QVariant(qint16(1)), QVariant(9), QVariant(2),
                        dateValue(kLite, QDate(2026, 11, 4)), QVariant(QStringLiteral("A")),
                        noTime(kLite), noTime(kLite)});
        db::Command claim(t.db, allowanceInsert());
        claim.execute({QVariant(qint16(1)), QVariant(9), QVariant(1),
                       dateValue(kLite, QDate(2026, 11, 3)), QVariant(2.75), QVariant(11),
                       noNumber()});
    }
    EXPECT_EQ(t.rows("select eaDate,eaStartDate,eaEndDate,eaRemarks is null,typeof(eaPresent) from "
                     "pEmployeeAttendence"),
              (QList<QVariantList>{{"2026-11-21", "2026-11-02", "2026-11-09", 1, "real"}}));
    EXPECT_EQ(
        t.rows("select eadDetailID,eadDate,eadType,ifnull(eadCheckIN,'NULL'),eadCheckOut is null "
               "from pEmpAttendanceDetail order by eadDetailID"),
        (QList<QVariantList>{{1, "2026-11-02", "P", "09:00:00", 0},
                             {2, "2026-11-04", "A", "NULL", 1}}));
    EXPECT_EQ(t.rows("select eaadDate,eaadHours,eaadAllowanceID,eaadDeductionID is null "
                     "from pEmpAttendanceAllowanceDeductions"),
              (QList<QVariantList>{{"2026-11-03", 2.75, 11, 1}}));
}

TEST(SaveSqlite, CurrencyHeadsOfTheEmployeesCurrencyInTheCompany) {
    TestDb t;
    t.exec(
        "insert into pEmployee(eEmpID,eCompanyID,eEmpNo,eName,ecurrencyid) "
        "values(5,1,'E5','Ann',2),(6,1,'E6','Bo',3)");
    t.exec("insert into pCurrencyallowdeddetails values(1,2,11,21),(2,2,12,22),(1,3,NULL,23)");
    const db::Recordset five = db::openRecordset(t.db, currencyHeadsQuery(5, 1));
    ASSERT_EQ(five.recordCount(), 1);
    EXPECT_EQ(five.field(0).toInt(), 11);
    EXPECT_EQ(five.field(1).toInt(), 21);
    const db::Recordset six = db::openRecordset(t.db, currencyHeadsQuery(6, 1));
    ASSERT_EQ(six.recordCount(), 1);
    EXPECT_TRUE(six.isNull(0));
    EXPECT_EQ(db::openRecordset(t.db, currencyHeadsQuery(6, 2)).recordCount(), 0);
}

TEST(SaveSqlite, LockWaitIsReadAndSet) {
    TestDb t;
    ASSERT_TRUE(lockWaitQuery(kLite).has_value());
    db::execute(t.db, *setLockWait(kLite, 0));
    EXPECT_EQ(db::scalar(t.db, *lockWaitQuery(kLite)).toInt(), 0);
    db::execute(t.db, *setLockWait(kLite, 4321));
    EXPECT_EQ(db::scalar(t.db, *lockWaitQuery(kLite)).toInt(), 4321);
}
