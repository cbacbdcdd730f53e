// Statements of period population: the holidays, the approved leaves and the working-hours
// procedure, pinned to their SQL Server texts and run on SQLite; and the schedule rules the
// form now takes from the attendance rules.

#include <gtest/gtest.h>

#include "TestSupport.h"
#include "TsqlCheck.h"
#include "db/Database.h"
#include "db/Dialect.h"
#include "entry/EntryRules.h"
#include "entry/EntrySql.h"
#include "rules/Hours.h"
#include "rules/Population.h"
#include "shared/BasAttendence.h"

using namespace qz2;
using namespace qz2::entry;
using qz2test::expectTsql;
using qz2test::TestDb;

namespace {

const db::Dialect kServer = db::Dialect::sqlServer();
const db::Dialect kLite = db::Dialect::sqlite();
const QDate kDec1(2026, 12, 1);
const QDate kDec31(2026, 12, 31);

struct PopulateSqlServerText : ::testing::Test {
    TestDb t;  // the link table read into LinkedTableNames (identity names)
};

// Leave lines of employee 7 (and one of employee 8) around December 2026.
struct PopulateSqlite : ::testing::Test {
    void SetUp() override {
        t.exec("insert into pleaves values(1,1,'Casual'),(1,2,'Sick'),(2,1,'Other casual')");
        // Holidays of 2026 for everyone, and one of department 2's own calendar.
        t.exec(
            "insert into pCalenderHeader(companyid,CalenderID,financialid,departmentid) values"
            "(1,1,2026,NULL),(1,2,2026,2),(2,9,2026,NULL)");
        t.exec(
            "insert into pCalenderDetail(companyid,CalenderID,HolidayDate) values"
            "(1,1,'2026-11-30'),(1,1,'2026-12-01'),(1,1,'2026-12-25'),(1,1,'2026-12-31'),"
            "(1,1,'2027-01-01'),(1,2,'2026-12-14'),(2,9,'2026-12-02')");
    }
    // One register line with its sanction line.
    void leave(int id, int employee, int leaveId, const char* from, const char* to, double days,
               const char* status, int registerCancelled = 0, int sanctionCancelled = 0) {
        t.exec(QStringLiteral("insert into pleaveregisterheader values(1,%1,%2,'2026-11-01',%3)")
                   .arg(id)
                   .arg(employee)
                   .arg(registerCancelled));
        t.exec(QStringLiteral("insert into pleaveregisterDetail values(1,%1,%2,'%3','%4',%5)")
                   .arg(id)
                   .arg(leaveId)
                   .arg(QString::fromLatin1(from), QString::fromLatin1(to))
                   .arg(days));
        t.exec(QStringLiteral("insert into pLeaveCancellationHeader values(1,%1,'2026-11-02',%2)")
                   .arg(id + 100)
                   .arg(sanctionCancelled));
        t.exec(QStringLiteral("insert into pleavecancellationdetail values(1,%1,%2,%3,%4)")
                   .arg(id + 100)
                   .arg(id)
                   .arg(leaveId)
                   .arg(status ? QStringLiteral("'%1'").arg(QString::fromLatin1(status))
                               : QStringLiteral("NULL")));
    }
    // The leave rows of an employee for December as "from|to|status|days".
    QStringList leaveRows(qint32 employee, QDate start = kDec1, QDate end = kDec31) const {
        QStringList out;
        for (const QVariantList& r : t.rows(sql::approvedLeaveQuery(kLite, employee, start, end)))
            out << QStringLiteral("%1|%2|%3|%4")
                       .arg(r[0].toString(), r[1].toString(), r[2].toString())
                       .arg(r[3].toDouble());
        out.sort();
        return out;
    }
    QStringList holidays(const QString& sqlText) const {
        QStringList out;
        for (const QVariantList& r : t.rows(sqlText)) out << r[0].toString();
        out.sort();
        return out;
    }

    TestDb t;
};

TimeValue hm(int h, int m) {
    return TimeValue::fromHM(h, m);
}

}  // namespace

// ---- SQL Server texts ---------------------------------------------------------------

TEST_F(PopulateSqlServerText, HolidaysOfThePeriodWithTheirTwoDatePatterns) {
    expectTsql(sql::holidayQuery(kServer, 1, kDec1, kDec31, QString()),
               "Select a.HolidayDate from pCalenderDetail a,pCalenderHeader b where "
               "a.companyid=b.companyid and a.CalenderID=b.CalenderID and a.companyID = 1 And "
               "a.HolidayDate <= '20261231' And a.HolidayDate >= '20261201'");
    expectTsql(sql::holidayQuery(kServer, 3, QDate(2026, 12, 16), QDate(2027, 1, 15),
                                 sql::calendarDepartmentCondition(2)),
               "Select a.HolidayDate from pCalenderDetail a,pCalenderHeader b where "
               "a.companyid=b.companyid and a.CalenderID=b.CalenderID and a.companyID = 3 And "
               "a.HolidayDate <= '20270115' And a.HolidayDate >= '20261216' and departmentid=2");
    // The absent-day list asks the same statement with "mm/dd/yyyy" bounds.
    expectTsql(
        sql::holidayListQuery(kServer, 1, kDec1, kDec31, sql::calendarDepartmentCondition(4)),
        "Select a.HolidayDate from pCalenderDetail a,pCalenderHeader b where "
        "a.companyid=b.companyid and a.CalenderID=b.CalenderID and a.companyID = 1 And "
        "a.HolidayDate <= '12/31/2026' And a.HolidayDate >= '12/01/2026' and "
        "departmentid=4");
}

TEST_F(PopulateSqlServerText, ApprovedLeavesToTheLetter) {
    // Written out piece by piece as the statement is quoted; note the two blanks before
    // "and ls.status" and the blank before ",pleaves".
    const QString expected =
        QStringLiteral("select lrdFromDate,lrdToDate,Status,lrdNoofDays from ") +
        "(select lh.lrhempid,ld.lrdLeaveID,ld.lrdID,ld.lrdCompanyID," +
        "case when ld.lrdFromDate<'" + "2026/12/01" + "' then '" + "2026/12/01" +
        "' else ld.lrdFromDate end lrdFromDate," + "case when ld.lrdToDate>'" + "2026/12/31" +
        "' then '" + "2026/12/31" + "' else ld.lrdToDate end lrdToDate,lrdNoofDays " + "from " +
        "pleaveregisterheader" + " lh," + "pleaveregisterDetail" + " ld " +
        "where lh.lrhCompanyID = ld.lrdCompanyID and lh.lrhID = ld.lrdID and lh.lrhcancelled "
        "=0) Nd," +
        "(select lchcompanyid, lcdlrdid, lcdlrdleaveid, status " + "from " +
        "pLeaveCancellationHeader" + " ch, " + "pleavecancellationdetail" + " cd " +
        "where ch.lchcompanyid = cd.lcdcompanyid and ch.lchid = cd.lcdid and ch.lchcancelled "
        "=0) ls " +
        ",pleaves lm Where nd.lrdCompanyID = ls.lchcompanyid And nd.lrdid = ls.lcdlrdid " +
        "and nd.lrdleaveid = ls.lcdlrdleaveid  and ls.status ='s' and " +
        "nd.lrdCompanyID = lm.lCompanyID And nd.lrdLeaveID = lm.lLeaveID and nd.lrhempid=" + "7" +
        " and nd.lrdToDate>='" + "2026/12/01" + "' and nd.lrdFromDate<='" + "2026/12/31" + "'";
    expectTsql(sql::approvedLeaveQuery(kServer, 7, kDec1, kDec31), expected);
    EXPECT_TRUE(expected.contains(QStringLiteral("lcdlrdleaveid  and ls.status ='s' and ")));
}

TEST_F(PopulateSqlServerText, LeaveTablesComeFromTheLinkTableButTheLeaveMasterIsLiteral) {
    const LinkedTableNamesT saved = LinkedTableNames;
    LinkedTableNames.pleaveregisterheader = QStringLiteral("hr_lrh");
    LinkedTableNames.pleaveregisterDetail = QStringLiteral("hr_lrd");
    LinkedTableNames.pLeaveCancellationHeader = QStringLiteral("hr_lch");
    LinkedTableNames.pleavecancellationdetail = QStringLiteral("hr_lcd");
    const QString text = sql::approvedLeaveQuery(kServer, 3, kDec1, kDec1);
    LinkedTableNames = saved;
    EXPECT_TRUE(text.contains(QStringLiteral("from hr_lrh lh,hr_lrd ld where")));
    EXPECT_TRUE(text.contains(QStringLiteral("from hr_lch ch, hr_lcd cd where")));
    EXPECT_TRUE(text.contains(QStringLiteral(" ls ,pleaves lm Where ")));
    EXPECT_FALSE(text.contains(QStringLiteral("pleaveregisterheader")));
}

TEST_F(PopulateSqlServerText, TheWorkingHoursProcedureIsCalledWithThreeValues) {
    const db::Dialect::Call call = kServer.workingHoursCall(4, 3);
    expectTsql(call.sql, "{call spreturnWorkingHrs(?,?,?)}");
    ASSERT_EQ(call.values.size(), 3);
    EXPECT_EQ(call.values[0].toInt(), 4);
    EXPECT_EQ(call.values[1].typeId(), QMetaType::QString);
    EXPECT_EQ(call.values[1].toString(), QString());
    EXPECT_EQ(call.values[2].toInt(), 3);
}

// ---- SQLite -------------------------------------------------------------------------

TEST_F(PopulateSqlite, HolidaysBetweenBothBoundsInclusive) {
    const QString text = sql::holidayQuery(kLite, 1, kDec1, kDec31, QString());
    EXPECT_TRUE(text.contains(QStringLiteral("<= '2026-12-31' And a.HolidayDate >= '2026-12-01'")))
        << text.toStdString();
    EXPECT_EQ(holidays(text),
              QStringList({"2026-12-01", "2026-12-14", "2026-12-25", "2026-12-31"}));
    // The department's calendar only.
    EXPECT_EQ(
        holidays(sql::holidayQuery(kLite, 1, kDec1, kDec31, sql::calendarDepartmentCondition(2))),
        QStringList({"2026-12-14"}));
    EXPECT_EQ(holidays(sql::holidayQuery(kLite, 2, kDec1, kDec31, QString())),
              QStringList({"2026-12-02"}));
    // A one-day period on a holiday; a one-day period without one.
    EXPECT_EQ(
        holidays(sql::holidayQuery(kLite, 1, QDate(2026, 12, 25), QDate(2026, 12, 25), QString())),
        QStringList({"2026-12-25"}));
    EXPECT_TRUE(
        holidays(sql::holidayQuery(kLite, 1, QDate(2026, 12, 2), QDate(2026, 12, 2), QString()))
            .isEmpty());
    // The list's variant reads the same rows.
    EXPECT_EQ(holidays(sql::holidayListQuery(kLite, 1, kDec1, kDec31, QString())), holidays(text));
}

TEST_F(PopulateSqlite, LeavesAreClippedToThePeriod) {
    leave(1, 7, 1, "2026-11-25", "2026-12-03", 9, "s");    // across the start
    leave(2, 7, 2, "2026-12-28", "2027-01-04", 8, "s");    // across the end
    leave(3, 7, 1, "2026-12-10", "2026-12-10", 0.5, "s");  // half a day inside
    leave(4, 7, 1, "2026-11-01", "2026-11-30", 30, "s");   // before the period
    leave(5, 7, 2, "2027-01-01", "2027-01-05", 5, "s");    // after it
    leave(6, 8, 1, "2026-12-10", "2026-12-11", 2, "s");    // another employee
    EXPECT_EQ(leaveRows(7), QStringList({"2026-12-01|2026-12-03|s|9", "2026-12-10|2026-12-10|s|0.5",
                                         "2026-12-28|2026-12-31|s|8"}));
    // A line from before the start to after the end covers the whole period.
    leave(7, 9, 1, "2026-11-20", "2027-01-10", 52, "s");
    EXPECT_EQ(leaveRows(9), QStringList({"2026-12-01|2026-12-31|s|52"}));
    // Lines that end on the start or begin on the end touch the period.
    leave(8, 10, 1, "2026-11-28", "2026-12-01", 4, "s");
    leave(9, 10, 2, "2026-12-31", "2027-01-02", 3, "s");
    EXPECT_EQ(leaveRows(10),
              QStringList({"2026-12-01|2026-12-01|s|4", "2026-12-31|2026-12-31|s|3"}));
}

TEST_F(PopulateSqlite, OnlySanctionedLinesOfLiveHeadersCount) {
    leave(1, 7, 1, "2026-12-01", "2026-12-01", 1, "s");
    leave(2, 7, 1, "2026-12-02", "2026-12-02", 1, "n");        // refused
    leave(3, 7, 1, "2026-12-03", "2026-12-03", 1, "s", 1, 0);  // application withdrawn
    leave(4, 7, 1, "2026-12-04", "2026-12-04", 1, "s", 0, 1);  // sanction cancelled
    leave(5, 7, 1, "2026-12-05", "2026-12-05", 1, nullptr);    // no status
    leave(6, 7, 1, "2026-12-07", "2026-12-07", 1, "S");        // upper case
    leave(7, 7, 9, "2026-12-08", "2026-12-08", 1, "s");        // no such leave kind
    // The status is compared without regard to case, as SQL Server's collation does; the
    // program then looks for the exact "S" itself.
    EXPECT_EQ(leaveRows(7),
              QStringList({"2026-12-01|2026-12-01|s|1", "2026-12-07|2026-12-07|S|1"}));
}

TEST_F(PopulateSqlite, TheWorkingHoursProcedureRunsWithItsValues) {
    t.exec("insert into pCalendarWTSheader(cwtsCompanyID,cwtsid) values(1,1),(1,2)");
    t.exec(
        "insert into pCalendarWorkTimeSettings values"
        "(1,1,2,'09:00:00','13:00:00','14:00:00','18:00:00',NULL,NULL,NULL,NULL),"
        "(1,2,3,'09:30:00','13:00:00',NULL,NULL,NULL,NULL,NULL,NULL)");
    const db::Dialect::Call monday = kLite.workingHoursCall(1, 2);
    db::Recordset rs = db::openRecordset(t.db, monday.sql, monday.values);
    ASSERT_FALSE(rs.eof());
    EXPECT_EQ(rs.field(0).toString(), QStringLiteral("08:00:00"));
    const db::Dialect::Call tuesday = kLite.workingHoursCall(1, 3);
    EXPECT_EQ(db::openRecordset(t.db, tuesday.sql, tuesday.values).field(0).toString(),
              QStringLiteral("03:30:00"));
    const db::Dialect::Call sunday = kLite.workingHoursCall(1, 1);
    EXPECT_TRUE(db::openRecordset(t.db, sunday.sql, sunday.values).eof());
}

// ---- The schedule rules the form uses -----------------------------------------------

TEST(PopulateScheduleRules, AReadLineSumsLikeTheRulesSchedule) {
    ScheduleLine line;
    line.checkIn = {hm(9, 0), hm(14, 0), hm(16, 0), std::nullopt};
    line.checkOut = {hm(13, 0), std::nullopt, hm(17, 30), hm(20, 0)};
    const rules::DaySchedule day = toDaySchedule(line);
    EXPECT_EQ(day[0].checkIn, hm(9, 0));
    EXPECT_EQ(day[2].checkOut, hm(17, 30));
    EXPECT_FALSE(day[1].checkOut.has_value());
    EXPECT_FALSE(day[3].checkIn.has_value());
    // 4:00 + 1:30; the pairs missing an end add nothing.
    EXPECT_EQ(rules::scheduledHours(day).format(u"hh:mm"), QStringLiteral("05:30"));
    EXPECT_EQ(rules::scheduledHours(toDaySchedule(ScheduleLine{})).format(u"hh:mm"),
              QStringLiteral("00:00"));
}

TEST(PopulateScheduleRules, TheGraceWindowEdgesHoldForTimesMadeInEveryWay) {
    // A window edge read from a cell must meet the edge computed by minute addition.
    for (const char* startText : {"08:45", "09:00", "07:59", "13:17"}) {
        const TimeValue start = *parseTime(QString::fromLatin1(startText));
        for (int grace : {0, 1, 7, 10, 15, 29, 59}) {
            const TimeValue edge = *parseTime(start.addMinutes(grace).format(u"HH:mm"));
            EXPECT_EQ(rules::effectiveCheckIn(edge, start, grace), start) << startText << grace;
            const TimeValue after = *parseTime(start.addMinutes(grace + 1).format(u"HH:mm"));
            EXPECT_EQ(rules::effectiveCheckIn(after, start, grace), after) << startText << grace;
            const TimeValue before = *parseTime(start.addMinutes(-1).format(u"HH:mm"));
            EXPECT_EQ(rules::effectiveCheckIn(before, start, grace), before) << startText << grace;
        }
    }
}
