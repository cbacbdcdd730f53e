// Statements of the entry form's start-up, employee and period choice, work-time schedule
// and numbering: every SQL Server text pinned to the suite's own text, every SQLite text
// run on a fresh database with its rows checked.

#include <gtest/gtest.h>

#include "TestSupport.h"
#include "TsqlCheck.h"
#include "db/Database.h"
#include "db/Dialect.h"
#include "entry/EntryNumbering.h"
#include "entry/EntrySql.h"
#include "shared/BasAttendence.h"

using namespace qz2;
using namespace qz2::entry;
using qz2test::expectTsql;
using qz2test::TestDb;

namespace {

const db::Dialect kServer = db::Dialect::sqlServer();
const db::Dialect kLite = db::Dialect::sqlite();

QVariantList firstRow(const TestDb& t, const QString& sql) {
    const QList<QVariantList> rows = t.rows(sql);
    return rows.isEmpty() ? QVariantList() : rows.first();
}

// A small company: departments 1 and 2, employees, calendars, work-time settings.
void seed(TestDb& t) {
    t.exec(
        "insert into "
        "pSettings(companyid,gracetime,ConsiderLeaveHolidays,calendardepwise,cwtsdepwise) "
        "values(1,10,1,1,0)");
    t.exec("insert into pDepartment values(1,1,'Production'),(2,1,'Sales'),(3,2,'Other')");
    t.exec(
        "insert into pEmployee(eEmpID,eCompanyID,eEmpNo,eName,eActive,eDeptID,eDateofjoin) values"
        "(7,1,'E7','Grace Hughes',1,1,'2019-03-04'),(8,1,'E8','Ben Carter',1,2,'2020-01-01'),"
        "(9,1,'E9','Inactive Ivan',0,1,'2020-01-01'),(10,2,'E10','Other Olga',1,3,'2020-01-01'),"
        "(11,1,'E11','Nodept Nora',1,NULL,'2021-01-01')");
    t.exec(
        "insert into pCalenderHeader(companyid,CalenderID,financialid,departmentid) values"
        "(1,1,2026,NULL),(1,2,2027,NULL),(1,3,2026,2)");
    t.exec(
        "insert into pCalenderDetail(companyid,CalenderID,HolidayDate) values"
        "(1,1,'2026-11-01'),(1,1,'2026-11-15'),(1,1,'2026-12-25'),(1,3,'2026-11-20')");
    t.exec(
        "insert into pCalendarWTSheader(cwtsCompanyID,cwtsid,cwtsdepartmentid) "
        "values(1,1,NULL),(1,2,2),(2,5,NULL)");
    t.exec(
        "insert into pCalendarWorkTimeSettings values"
        "(1,1,2,'09:00:00','13:00:00','14:00:00','18:00:00',NULL,NULL,NULL,NULL),"
        "(1,1,3,'09:30:00','13:00:00',NULL,NULL,NULL,NULL,NULL,NULL),"
        "(1,2,2,'08:00:00','12:00:00',NULL,NULL,NULL,NULL,NULL,NULL),"
        "(2,5,2,'07:00:00','15:00:00',NULL,NULL,NULL,NULL,NULL,NULL)");
}

}  // namespace

// ---- SQL Server texts ------------------------------------------------------------------

class EntrySqlServerText : public ::testing::Test {
protected:
    TestDb t;  // identity link table: the logical names are the physical ones
};

TEST_F(EntrySqlServerText, EmployeeBoxConditionHasNoBlankBeforeAnd) {
    const QString condition = sql::employeeListCondition(kServer, 1);
    EXPECT_EQ(condition, QStringLiteral("eCompanyID=1And eActive = 1"));
    // As the shared helper sends it.
    expectTsql(
        QStringLiteral("select eEmpId,ename from ") + LinkedTableNames.pemployee +
            QStringLiteral(" where ") + condition + QStringLiteral(" order by ename"),
        "select eEmpId,ename from pemployee where eCompanyID=1And eActive = 1 order by ename");
}

TEST_F(EntrySqlServerText, DepartmentStatements) {
    expectTsql(sql::departmentSwitchesQuery(1),
               "select calendardepwise,cwtsdepwise from pSettings where companyid=1");
    expectTsql(
        sql::employeeDepartmentQuery(1, 7),
        "select a.eDateofjoin,b.DepartmentID,b.DepartmentName from pemployee a,pDepartment b where "
        "a.eDeptID = b.DepartmentID and a.eCompanyID=b.CompanyID and a.eCompanyID=1 and eEmpID=7");
    EXPECT_EQ(sql::calendarDepartmentCondition(3), QStringLiteral(" and departmentid=3"));
    EXPECT_EQ(sql::workTimeDepartmentCondition(3), QStringLiteral(" and cwtsdepartmentid=3"));
}

TEST_F(EntrySqlServerText, PeriodStatements) {
    expectTsql(sql::nextPeriodStartQuery(kServer, 1, 7),
               "Select max(eaEndDate)+1 from pEmployeeAttendence where eaCancelled=0 and "
               "eaCompanyID=1 And eaEmpID=7");
    expectTsql(
        sql::payMonthStartQuery(1, 11),
        "select startdate PayRollDay from vwPaymonthvsdate where companyid=1 and paymonth=11");
    expectTsql(sql::calendarCountQuery(1, QString(), 2026),
               "Select count(*) from pCalenderHeader where companyID = 1 and financialid =2026");
    expectTsql(sql::calendarCountQuery(1, sql::calendarDepartmentCondition(2), 2027),
               "Select count(*) from pCalenderHeader where companyID = 1 and departmentid=2 and "
               "financialid =2027");
    expectTsql(
        sql::monthlyEntryOverlapQuery(kServer, 7, QDate(2026, 11, 1), QDate(2026, 11, 30)),
        "select count(*) from pEmpMonthlyEntryHeader where emhempID=7 and emhcancelled=0 and "
        "(emhstartdate "
        "between '20261101' and '20261130' or emhenddate between '20261101' and '20261130')");
    expectTsql(sql::workTimeSettingQuery(1, QString()),
               "Select max(a.cwtsid)  from pCalendarWorkTimeSettings a,pCalendarWTSheader b where "
               "a.cwtscompanyid=b.cwtsCompanyID and a.cwtsid=b.cwtsid  and a.cwtsCompanyID= 1");
    expectTsql(sql::workTimeSettingQuery(1, sql::workTimeDepartmentCondition(2)),
               "Select max(a.cwtsid)  from pCalendarWorkTimeSettings a,pCalendarWTSheader b where "
               "a.cwtscompanyid=b.cwtsCompanyID and a.cwtsid=b.cwtsid  and a.cwtsCompanyID= 1 and "
               "cwtsdepartmentid=2");
    expectTsql(
        sql::holidayListQuery(kServer, 1, QDate(2026, 11, 16), QDate(2026, 12, 15), QString()),
        "Select a.HolidayDate from pCalenderDetail a,pCalenderHeader b where "
        "a.companyid=b.companyid and "
        "a.CalenderID=b.CalenderID and a.companyID = 1 And a.HolidayDate <= '12/15/2026' And "
        "a.HolidayDate >= '11/16/2026'");
    expectTsql(
        sql::holidayListQuery(kServer, 1, QDate(2026, 11, 16), QDate(2026, 12, 15),
                              sql::calendarDepartmentCondition(2)),
        "Select a.HolidayDate from pCalenderDetail a,pCalenderHeader b where "
        "a.companyid=b.companyid and "
        "a.CalenderID=b.CalenderID and a.companyID = 1 And a.HolidayDate <= '12/15/2026' And "
        "a.HolidayDate >= '11/16/2026' and departmentid=2");
}

TEST_F(EntrySqlServerText, ScheduleStatements) {
    expectTsql(
        sql::dayScheduleQuery(2, 1, 5, QString()),
        "Select a.cwtsDayID,a.cwtsCheckIn1,a.cwtsCheckOut1,a.cwtsCheckIn2,a.cwtsCheckOut2, "
        "a.cwtsCheckIn3,a.cwtsCheckOut3,a.cwtsCheckIn4,a.cwtsCheckOut4  from "
        "pCalendarWorkTimeSettings a,"
        "pCalendarWTSheader b where a.cwtscompanyid=b.cwtsCompanyID and a.cwtsid=b.cwtsid And "
        "a.cwtsDayID=2 and a.cwtsCompanyID= 1 And a.cwtsid = 5");
    expectTsql(
        sql::dayScheduleQuery(7, 1, 5, sql::workTimeDepartmentCondition(4)),
        "Select a.cwtsDayID,a.cwtsCheckIn1,a.cwtsCheckOut1,a.cwtsCheckIn2,a.cwtsCheckOut2, "
        "a.cwtsCheckIn3,a.cwtsCheckOut3,a.cwtsCheckIn4,a.cwtsCheckOut4  from "
        "pCalendarWorkTimeSettings a,"
        "pCalendarWTSheader b where a.cwtscompanyid=b.cwtsCompanyID and a.cwtsid=b.cwtsid And "
        "a.cwtsDayID=7 and a.cwtsCompanyID= 1 And a.cwtsid = 5 and cwtsdepartmentid=4");
    expectTsql(
        sql::newestDayScheduleQuery(kServer, 2, 1, QString()),
        "Select top 1 a.cwtsDayID,a.cwtsCheckIn1,a.cwtsCheckOut1,a.cwtsCheckIn2,a.cwtsCheckOut2, "
        "a.cwtsCheckIn3,a.cwtsCheckOut3,a.cwtsCheckIn4,a.cwtsCheckOut4  from "
        "pCalendarWorkTimeSettings a,"
        "pCalendarWTSheader b where a.cwtscompanyid=b.cwtsCompanyID and a.cwtsid=b.cwtsid And "
        "a.cwtsDayID=2 and a.cwtsCompanyID= 1 order by  a.cwtsid desc");
    expectTsql(
        sql::newestDayScheduleQuery(kServer, 1, 1, sql::workTimeDepartmentCondition(2)),
        "Select top 1 a.cwtsDayID,a.cwtsCheckIn1,a.cwtsCheckOut1,a.cwtsCheckIn2,a.cwtsCheckOut2, "
        "a.cwtsCheckIn3,a.cwtsCheckOut3,a.cwtsCheckIn4,a.cwtsCheckOut4  from "
        "pCalendarWorkTimeSettings a,"
        "pCalendarWTSheader b where a.cwtscompanyid=b.cwtsCompanyID and a.cwtsid=b.cwtsid And "
        "a.cwtsDayID=1 and a.cwtsCompanyID= 1 and cwtsdepartmentid=2 order by  a.cwtsid desc");
    expectTsql(sql::firstCheckInQuery(2, 1, 5, QString()),
               "Select a.cwtsCheckIn1  from pCalendarWorkTimeSettings a,pCalendarWTSheader b where "
               "a.cwtscompanyid=b.cwtsCompanyID and a.cwtsid=b.cwtsid And a.cwtsDayID=2 and "
               "a.cwtsCompanyID= 1 "
               "And a.cwtsid = 5");
    // The working-hours procedure through ODBC's call escape; company, an empty string and
    // the day number are bound by position.
    expectTsql(kServer.workingHoursCall(1, 3).sql, "{call spreturnWorkingHrs(?,?,?)}");
}

TEST_F(EntrySqlServerText, NumberingStatements) {
    expectTsql(sql::prefixQuery(91029, 1),
               "SELECT Prefix FROM pPrefix WHERE InterfaceID = 91029 and companyid=1");
    expectTsql(
        kServer.attendanceNumberQuery(LinkedTableNames.pEmployeeAttendence, 1,
                                      QStringLiteral("ATT")),
        "Select isnull(max(convert(int,right(eaNo,len(eaNo)-3))),0) from pEmployeeAttendence where "
        "eacompanyid = 1 and len(eaNo)>len('ATT') and  "
        "isnumeric(isnull(right(eano,len(eano)-3),0)) =1 "
        "and substring(eano,1,len('ATT'))='ATT'");
    expectTsql(
        kServer.attendanceNumberQuery(LinkedTableNames.pEmployeeAttendence, 2, QString()),
        "Select isnull(max(convert(int,right(eaNo,len(eaNo)-0))),0) from pEmployeeAttendence where "
        "eacompanyid = 2 and len(eaNo)>len('') and  isnumeric(isnull(right(eano,len(eano)-0),0)) "
        "=1 "
        "and substring(eano,1,len(''))=''");
}

TEST_F(EntrySqlServerText, PhysicalTableNamesComeFromTheLinkTable) {
    LinkedTableNames.pemployee = QStringLiteral("hr_staff");
    LinkedTableNames.pDepartment = QStringLiteral("hr_dept");
    LinkedTableNames.pCalendarWorkTimeSettings = QStringLiteral("wt_lines");
    LinkedTableNames.pCalendarWTSheader = QStringLiteral("wt_head");
    expectTsql(
        sql::employeeDepartmentQuery(1, 7),
        "select a.eDateofjoin,b.DepartmentID,b.DepartmentName from hr_staff a,hr_dept b where "
        "a.eDeptID = b.DepartmentID and a.eCompanyID=b.CompanyID and a.eCompanyID=1 and eEmpID=7");
    expectTsql(sql::firstCheckInQuery(2, 1, 5, QString()),
               "Select a.cwtsCheckIn1  from wt_lines a,wt_head b where "
               "a.cwtscompanyid=b.cwtsCompanyID and "
               "a.cwtsid=b.cwtsid And a.cwtsDayID=2 and a.cwtsCompanyID= 1 And a.cwtsid = 5");
}

// ---- SQLite texts, run -------------------------------------------------------------

class EntrySqlite : public ::testing::Test {
protected:
    void SetUp() override { seed(t); }
    TestDb t;
};

TEST_F(EntrySqlite, EmployeeBoxListsTheCompanysActiveEmployees) {
    const QString condition = sql::employeeListCondition(kLite, 1);
    EXPECT_EQ(condition, QStringLiteral("eCompanyID=1 And eActive = 1"));
    const auto rows =
        t.rows("select eEmpId,ename from pEmployee where " + condition + " order by ename");
    ASSERT_EQ(rows.size(), 3);
    EXPECT_EQ(rows[0][1].toString(), QStringLiteral("Ben Carter"));
    EXPECT_EQ(rows[1][1].toString(), QStringLiteral("Grace Hughes"));
    EXPECT_EQ(rows[2][1].toString(), QStringLiteral("Nodept Nora"));
}

TEST_F(EntrySqlite, DepartmentSwitchesAndEmployeeDepartment) {
    const QVariantList switches = firstRow(t, sql::departmentSwitchesQuery(1));
    ASSERT_EQ(switches.size(), 2);
    EXPECT_EQ(switches[0].toInt(), 1);
    EXPECT_EQ(switches[1].toInt(), 0);
    const QVariantList dept = firstRow(t, sql::employeeDepartmentQuery(1, 7));
    ASSERT_EQ(dept.size(), 3);
    EXPECT_EQ(dept[0].toString(), QStringLiteral("2019-03-04"));
    EXPECT_EQ(dept[1].toInt(), 1);
    EXPECT_EQ(dept[2].toString(), QStringLiteral("Production"));
    EXPECT_TRUE(t.rows(sql::employeeDepartmentQuery(1, 11)).isEmpty());  // no department
    EXPECT_TRUE(t.rows(sql::employeeDepartmentQuery(1, 10)).isEmpty());  // another company's
}

TEST_F(EntrySqlite, NextPeriodStartSkipsCancelledEntries) {
    EXPECT_TRUE(t.scalar(sql::nextPeriodStartQuery(kLite, 1, 7)).isNull());
    t.exec(
        "insert into "
        "pEmployeeAttendence(eaCompanyID,eaID,eaEmpID,eaStartDate,eaEndDate,eaCancelled) values"
        "(1,1,7,'2026-09-01','2026-09-30',0),(1,2,7,'2026-10-01','2026-10-31',1),"
        "(1,3,8,'2026-10-01','2026-12-31',0),(2,4,7,'2026-10-01','2027-01-31',0)");
    EXPECT_EQ(t.scalar(sql::nextPeriodStartQuery(kLite, 1, 7)).toString(),
              QStringLiteral("2026-10-01"));
    EXPECT_EQ(t.scalar(sql::nextPeriodStartQuery(kLite, 1, 8)).toString(),
              QStringLiteral("2027-01-01"));
}

TEST_F(EntrySqlite, PayMonthStartComesUnderItsName) {
    t.exec(
        "insert into pPayMonthStartDate "
        "values(1,11,'2024-11-16'),(1,12,'2024-12-16'),(2,11,'2024-11-01')");
    db::Recordset rs = db::openRecordset(t.db, sql::payMonthStartQuery(1, 11));
    ASSERT_FALSE(rs.eof());
    EXPECT_EQ(rs.field(QStringLiteral("PayRollDay")).toString(), QStringLiteral("2024-11-16"));
    rs.moveNext();
    EXPECT_TRUE(rs.eof());
    EXPECT_TRUE(t.rows(sql::payMonthStartQuery(1, 3)).isEmpty());
}

TEST_F(EntrySqlite, CalendarCountPerYearAndDepartment) {
    EXPECT_EQ(t.scalar(sql::calendarCountQuery(1, QString(), 2026)).toInt(), 2);
    EXPECT_EQ(t.scalar(sql::calendarCountQuery(1, QString(), 2028)).toInt(), 0);
    EXPECT_EQ(
        t.scalar(sql::calendarCountQuery(1, sql::calendarDepartmentCondition(2), 2026)).toInt(), 1);
    EXPECT_EQ(
        t.scalar(sql::calendarCountQuery(1, sql::calendarDepartmentCondition(1), 2026)).toInt(), 0);
    EXPECT_EQ(
        t.scalar(sql::calendarCountQuery(1, sql::calendarDepartmentCondition(2), 2027)).toInt(), 0);
}

TEST_F(EntrySqlite, MonthlyEntryOverlapCountsStartsAndEndsInside) {
    t.exec(
        "insert into pEmpMonthlyEntryHeader values"
        "(1,1,7,'2026-10-20','2026-11-05',0),"   // ends inside
        "(1,2,7,'2026-11-25','2026-12-24',0),"   // starts inside
        "(1,3,7,'2026-11-10','2026-11-12',1),"   // cancelled
        "(1,4,8,'2026-11-10','2026-11-12',0),"   // another employee
        "(1,5,9,'2026-10-01','2026-12-31',0)");  // spans the period: neither end inside
    const QDate s(2026, 11, 1), e(2026, 11, 30);
    EXPECT_EQ(t.scalar(sql::monthlyEntryOverlapQuery(kLite, 7, s, e)).toInt(), 2);
    EXPECT_EQ(t.scalar(sql::monthlyEntryOverlapQuery(kLite, 8, s, e)).toInt(), 1);
    EXPECT_EQ(t.scalar(sql::monthlyEntryOverlapQuery(kLite, 9, s, e)).toInt(), 0);
    // Both bounds count.
    EXPECT_EQ(
        t.scalar(sql::monthlyEntryOverlapQuery(kLite, 7, QDate(2026, 11, 5), QDate(2026, 11, 5)))
            .toInt(),
        1);
    EXPECT_EQ(
        t.scalar(sql::monthlyEntryOverlapQuery(kLite, 7, QDate(2026, 11, 6), QDate(2026, 11, 24)))
            .toInt(),
        0);
}

TEST_F(EntrySqlite, NewestWorkTimeSettingOfCompanyAndDepartment) {
    EXPECT_EQ(t.scalar(sql::workTimeSettingQuery(1, QString())).toInt(), 2);
    EXPECT_EQ(t.scalar(sql::workTimeSettingQuery(1, sql::workTimeDepartmentCondition(2))).toInt(),
              2);
    EXPECT_TRUE(
        t.scalar(sql::workTimeSettingQuery(1, sql::workTimeDepartmentCondition(1))).isNull());
    EXPECT_TRUE(t.scalar(sql::workTimeSettingQuery(3, QString())).isNull());
}

TEST_F(EntrySqlite, HolidayListBoundsAreInclusive) {
    const auto rows =
        t.rows(sql::holidayListQuery(kLite, 1, QDate(2026, 11, 1), QDate(2026, 11, 20), QString()));
    QStringList days;
    for (const auto& r : rows) days << r[0].toString();
    days.sort();
    EXPECT_EQ(days, QStringList({"2026-11-01", "2026-11-15", "2026-11-20"}));
    const auto dept = t.rows(sql::holidayListQuery(
        kLite, 1, QDate(2026, 11, 1), QDate(2026, 11, 30), sql::calendarDepartmentCondition(2)));
    ASSERT_EQ(dept.size(), 1);
    EXPECT_EQ(dept[0][0].toString(), QStringLiteral("2026-11-20"));
}

TEST_F(EntrySqlite, DayScheduleReadsTheEntrysOwnSetting) {
    db::Recordset rs = db::openRecordset(t.db, sql::dayScheduleQuery(2, 1, 1, QString()));
    ASSERT_EQ(rs.recordCount(), 1);
    EXPECT_EQ(rs.fieldCount(), 9);
    EXPECT_EQ(rs.field(QStringLiteral("cwtsCheckIn1")).toString(), QStringLiteral("09:00:00"));
    EXPECT_EQ(rs.field(QStringLiteral("cwtsCheckOut2")).toString(), QStringLiteral("18:00:00"));
    EXPECT_TRUE(rs.isNull(QStringLiteral("cwtsCheckIn3")));
    EXPECT_EQ(
        db::openRecordset(t.db, sql::dayScheduleQuery(2, 1, 2, QString())).field(1).toString(),
        QStringLiteral("08:00:00"));
    // Day number 0 (a day name that is not English) finds nothing.
    EXPECT_EQ(db::openRecordset(t.db, sql::dayScheduleQuery(0, 1, 1, QString())).recordCount(), 0);
    EXPECT_EQ(
        db::openRecordset(t.db, sql::dayScheduleQuery(2, 1, 1, sql::workTimeDepartmentCondition(2)))
            .recordCount(),
        0);
}

TEST_F(EntrySqlite, NewestDayScheduleTakesTheHighestSettingOnly) {
    const QString text = sql::newestDayScheduleQuery(kLite, 2, 1, QString());
    EXPECT_TRUE(text.endsWith(QStringLiteral(" order by  a.cwtsid desc limit 1")))
        << text.toStdString();
    EXPECT_FALSE(text.contains(QStringLiteral("top 1")));
    db::Recordset rs = db::openRecordset(t.db, text);
    ASSERT_EQ(rs.recordCount(), 1);
    EXPECT_EQ(rs.field(QStringLiteral("cwtsCheckIn1")).toString(), QStringLiteral("08:00:00"));
    // Tuesday exists only in setting 1.
    rs = db::openRecordset(t.db, sql::newestDayScheduleQuery(kLite, 3, 1, QString()));
    ASSERT_EQ(rs.recordCount(), 1);
    EXPECT_EQ(rs.field(QStringLiteral("cwtsCheckIn1")).toString(), QStringLiteral("09:30:00"));
    EXPECT_EQ(
        db::openRecordset(t.db, sql::newestDayScheduleQuery(kLite, 0, 1, QString())).recordCount(),
        0);
}

TEST_F(EntrySqlite, FirstCheckInOfTheEntrysSetting) {
    EXPECT_EQ(t.scalar(sql::firstCheckInQuery(2, 1, 1, QString())).toString(),
              QStringLiteral("09:00:00"));
    EXPECT_EQ(t.scalar(sql::firstCheckInQuery(2, 1, 2, QString())).toString(),
              QStringLiteral("08:00:00"));
    EXPECT_TRUE(t.rows(sql::firstCheckInQuery(4, 1, 1, QString())).isEmpty());
}

TEST_F(EntrySqlite, WorkingHoursFromTheProcedureView) {
    const auto hours = [this](int day) {
        const db::Dialect::Call call = kLite.workingHoursCall(1, day);
        return db::openRecordset(t.db, call.sql, call.values);
    };
    EXPECT_EQ(kLite.workingHoursCall(1, 2).sql,
              QStringLiteral("select WorkingHrs from spreturnWorkingHrs where companyid=? and dayid=?"));
    // Monday under the newest setting (2): 08:00-12:00.
    EXPECT_EQ(hours(2).field(0).toString(), QStringLiteral("04:00:00"));
    EXPECT_EQ(hours(3).field(0).toString(), QStringLiteral("03:30:00"));
    EXPECT_TRUE(hours(5).eof());
}

TEST_F(EntrySqlite, PrefixOfTheScreenAndCompany) {
    t.exec("insert into pPrefix values(1,91029,'ATT'),(2,91029,'BX'),(1,91030,'ZZ')");
    EXPECT_EQ(t.scalar(sql::prefixQuery(91029, 1)).toString(), QStringLiteral("ATT"));
    EXPECT_EQ(t.scalar(sql::prefixQuery(91029, 2)).toString(), QStringLiteral("BX"));
    EXPECT_TRUE(t.rows(sql::prefixQuery(91029, 3)).isEmpty());
}

// ---- Numbering -----------------------------------------------------------------------

class EntryNumbering : public ::testing::Test {
protected:
    void addNumber(int id, const QString& number, int company = 1, int cancelled = 0) {
        t.exec(QStringLiteral(
                   "insert into pEmployeeAttendence(eaCompanyID,eaID,eaNo,eaEmpID,eaCancelled) "
                   "values(%1,%2,'%3',7,%4)")
                   .arg(company)
                   .arg(id)
                   .arg(number)
                   .arg(cancelled));
    }
    QString next() const { return generateAttendanceNo(t.db, 1, kInterfaceID); }
    TestDb t;
};

TEST_F(EntryNumbering, NoEarlierEntryGivesThePrefixAndOne) {
    t.exec("insert into pPrefix values(1,91029,'ATT')");
    EXPECT_EQ(next(), QStringLiteral("ATT1"));
}

TEST_F(EntryNumbering, TheHighestNumericSuffixWinsAndOtherSuffixesAreIgnored) {
    t.exec("insert into pPrefix values(1,91029,'ATT')");
    addNumber(1, "ATT5");
    addNumber(2, "ATT12");
    addNumber(3, "ATTX99");    // another prefix starting with the same letters
    addNumber(4, "ATT7B");     // hand-typed, not numeric
    addNumber(5, "AT999");     // shorter prefix
    addNumber(6, "ATT");       // no suffix at all
    addNumber(7, "999");       // no prefix
    addNumber(8, "ATT80", 2);  // another company's
    EXPECT_EQ(next(), QStringLiteral("ATT13"));
}

TEST_F(EntryNumbering, CancelledEntriesKeepTheirNumbers) {
    t.exec("insert into pPrefix values(1,91029,'ATT')");
    addNumber(1, "ATT5");
    addNumber(2, "ATT20", 1, 1);
    EXPECT_EQ(next(), QStringLiteral("ATT21"));
}

TEST_F(EntryNumbering, AnEmptyPrefixNumbersOneTwoThree) {
    EXPECT_EQ(next(), QStringLiteral("1"));  // no prefix row at all
    t.exec("insert into pPrefix values(1,91029,NULL)");
    EXPECT_EQ(next(), QStringLiteral("1"));
    addNumber(1, next());
    EXPECT_EQ(next(), QStringLiteral("2"));
    addNumber(2, next());
    addNumber(3, "ATT40");  // a prefixed number is not numeric without a prefix
    EXPECT_EQ(next(), QStringLiteral("3"));
}

TEST_F(EntryNumbering, ADatabaseErrorReachesTheCaller) {
    t.exec("drop table pPrefix");
    EXPECT_THROW(next(), db::DbError);
}
