// The reports' reading and figures on a hand-made week (ReportMonth): every figure below is
// worked out by hand from the rows inserted there, never by the code under test. Also the
// statements: a fixed number per report, the SQL Server texts pinned (and parsed), the
// SQLite texts executed; and the requests the reports refuse.
#include <gtest/gtest.h>

#include <algorithm>

#include "ReportMonth.h"
#include "TestSupport.h"
#include "TsqlCheck.h"
#include "db/Database.h"
#include "reports/ReportData.h"
#include "reports/ReportFigures.h"
#include "reports/ReportSql.h"
#include "shared/BasAttendence.h"

using namespace qz2::reports;
using qz2test::expectTsql;
using qz2test::kMonthFrom;
using qz2test::kMonthTo;
using qz2test::TestDb;
namespace db = qz2::db;

namespace {

sql::Scope week(std::optional<qint32> department = std::nullopt) {
    sql::Scope s;
    s.company = 1;
    s.from = kMonthFrom;
    s.to = kMonthTo;
    s.department = department;
    return s;
}

class ReportFigures : public ::testing::Test {
protected:
    void SetUp() override { qz2test::fillReportMonth(t.db); }
    TestDb t;
};

}  // namespace

TEST_F(ReportFigures, MusterRowsCellsAndTotalsOfTheWeek) {
    const Muster m =
        buildMuster(readPeriod(t.db, db::Dialect::sqlite(), week(), PeriodReport::Muster));
    ASSERT_EQ(m.rows.size(), 4);  // Dara is inactive without entries
    // Asha: P (09:05 within grace -> 09:00: 4:00 + 4:30), A, HA (4:00), L, P (08:50 early:
    // 4:10 + 3:45), H, H with times (2:00). The cancelled ATT3 and 25 Feb and 5 Mar stay out.
    const MusterRow& asha = m.rows[0];
    EXPECT_EQ(asha.employee.no, "E01");
    EXPECT_EQ(asha.employee.departmentName, "Stores");
    EXPECT_EQ(asha.cells, QStringList({"P", "A", "HA", "L", "P", "H", "H"}));
    EXPECT_DOUBLE_EQ(asha.present, 4.5);  // 1 + 0.5 + 1 + 2 holidays
    EXPECT_DOUBLE_EQ(asha.leave, 1.0);
    EXPECT_DOUBLE_EQ(asha.absent, 1.5);
    EXPECT_DOUBLE_EQ(asha.holidays, 2.0);
    EXPECT_EQ(asha.workedMinutes, 8 * 60 + 30 + 4 * 60 + 7 * 60 + 55 + 2 * 60);  // 22:25
    EXPECT_EQ(asha.scheduledMinutes, 5 * 8 * 60);  // Mon..Fri 8 h; holidays none
    EXPECT_EQ(asha.overtimeMinutes, 30);
    EXPECT_EQ(asha.lateMinutes, 30);  // 15 on 28 Feb and 15 on 1 Mar
    EXPECT_EQ(asha.conflicts, 0);
    EXPECT_EQ(asha.entryNos, QStringList({"ATT1", "ATT2"}));

    // Ben: P (8:00), HL (4:00), AL, then two conflicts, then days ATT4 has no line for.
    const MusterRow& ben = m.rows[1];
    EXPECT_EQ(ben.employee.no, "E02");
    EXPECT_EQ(ben.employee.departmentName, "");
    EXPECT_EQ(ben.cells, QStringList({"P", "HL", "AL", "!P/A", "!P/P", "", ""}));
    EXPECT_DOUBLE_EQ(ben.present, 1.5);
    EXPECT_DOUBLE_EQ(ben.leave, 1.0);
    EXPECT_DOUBLE_EQ(ben.absent, 0.5);
    EXPECT_DOUBLE_EQ(ben.holidays, 0.0);
    EXPECT_EQ(ben.workedMinutes, 12 * 60);
    EXPECT_EQ(ben.scheduledMinutes, 3 * 8 * 60);
    EXPECT_EQ(ben.conflicts, 2);
    EXPECT_EQ(ben.entryNos, QStringList({"ATT4", "ATT5"}));

    const MusterRow& chen = m.rows[2];
    EXPECT_EQ(chen.employee.no, "E03");
    EXPECT_EQ(chen.cells, QStringList(7, QString()));
    EXPECT_DOUBLE_EQ(chen.present + chen.leave + chen.absent, 0.0);
    EXPECT_TRUE(chen.entryNos.isEmpty());

    const MusterRow& eli = m.rows[3];
    EXPECT_EQ(eli.employee.no, "E05");
    EXPECT_EQ(eli.cells, QStringList({"", "", "", "", "A", "", ""}));
    EXPECT_DOUBLE_EQ(eli.absent, 1.0);
    EXPECT_EQ(eli.scheduledMinutes, 8 * 60);
    EXPECT_EQ(eli.workedMinutes, 0);
}

TEST_F(ReportFigures, MusterOfOneDepartment) {
    const Muster m =
        buildMuster(readPeriod(t.db, db::Dialect::sqlite(), week(10), PeriodReport::Muster));
    ASSERT_EQ(m.rows.size(), 2);
    EXPECT_EQ(m.rows[0].employee.no, "E01");
    EXPECT_EQ(m.rows[1].employee.no, "E05");
    EXPECT_EQ(m.departmentName, "Stores");
}

TEST_F(ReportFigures, PayrollLinesPerEmployeeAndEntry) {
    const Payroll p =
        buildPayroll(readPeriod(t.db, db::Dialect::sqlite(), week(), PeriodReport::Payroll));
    ASSERT_EQ(p.lines.size(), 5);
    struct Want {
        const char* emp;
        const char* entry;
        QDate from, to;
        double present, leave, absent, ot, late;
        QStringList allow, ded;
    };
    const Want want[] = {
        {"E01",
         "ATT1",
         QDate(2024, 2, 26),
         QDate(2024, 2, 29),
         1.5,
         1,
         1.5,
         0.5,
         0.25,
         {"7"},
         {"8"}},
        {"E01", "ATT2", QDate(2024, 3, 1), QDate(2024, 3, 3), 3, 0, 0, 0, 0.25, {}, {"8"}},
        {"E02", "ATT4", QDate(2024, 2, 26), QDate(2024, 3, 3), 3.5, 1, 0.5, 0, 0, {}, {}},
        {"E02", "ATT5", QDate(2024, 2, 29), QDate(2024, 3, 1), 1, 0, 1, 0, 0, {}, {}},
        {"E05", "ATT6", QDate(2024, 3, 1), QDate(2024, 3, 3), 0, 0, 1, 0, 0, {}, {}},
    };
    for (int i = 0; i < 5; ++i) {
        SCOPED_TRACE(i);
        const PayrollLine& l = p.lines[i];
        EXPECT_EQ(l.employee.no, want[i].emp);
        EXPECT_EQ(l.entryNo, want[i].entry);
        EXPECT_EQ(l.from, want[i].from);
        EXPECT_EQ(l.to, want[i].to);
        EXPECT_DOUBLE_EQ(l.present, want[i].present);
        EXPECT_DOUBLE_EQ(l.leave, want[i].leave);
        EXPECT_DOUBLE_EQ(l.absent, want[i].absent);
        EXPECT_DOUBLE_EQ(l.overtimeHours, want[i].ot);
        EXPECT_DOUBLE_EQ(l.lateHours, want[i].late);
        EXPECT_EQ(l.allowanceIds, want[i].allow);
        EXPECT_EQ(l.deductionIds, want[i].ded);
    }
    EXPECT_EQ(p.lines[2].employee.departmentName, "");
}

TEST_F(ReportFigures, SheetOfAnEntry) {
    const Sheet s = buildSheet(readSheet(t.db, 1, QStringLiteral("ATT1")));
    EXPECT_EQ(s.entry.no, "ATT1");
    EXPECT_EQ(s.entry.employee.name, "Asha, \"A\" Rao");
    EXPECT_EQ(s.entry.employee.departmentName, "Stores");
    EXPECT_EQ(s.entry.date, QDate(2024, 3, 1));
    EXPECT_EQ(s.entry.remarks, "Signed late");
    EXPECT_FALSE(s.entry.cancelled);
    EXPECT_DOUBLE_EQ(s.entry.present, 2.5);
    ASSERT_EQ(s.days.size(), 29);  // every day of February 2024, the leap day included
    EXPECT_EQ(s.days.first().date, QDate(2024, 2, 1));
    EXPECT_EQ(s.days.last().date, QDate(2024, 2, 29));
    EXPECT_EQ(s.days[0].type, "");  // no line on 1 Feb: left empty
    const SheetDay& mon = s.days[25];
    EXPECT_EQ(mon.date, QDate(2024, 2, 26));
    EXPECT_EQ(mon.type, "P");
    EXPECT_EQ(mon.pairs, QStringList({"09:05-13:00", "14:00-18:30"}));
    EXPECT_EQ(mon.workedMinutes, 8 * 60 + 30);
    EXPECT_EQ(mon.scheduledMinutes, 8 * 60);
    EXPECT_DOUBLE_EQ(mon.overtimeHours, 0.5);
    EXPECT_EQ(s.days[24].workedMinutes, 8 * 60);  // 25 Feb, a Sunday: no schedule
    EXPECT_EQ(s.days[24].scheduledMinutes, 0);
    EXPECT_DOUBLE_EQ(s.days[27].lateHours, 0.25);
    EXPECT_EQ(s.workedMinutes, 8 * 60 + 8 * 60 + 30 + 4 * 60);
    EXPECT_EQ(s.scheduledMinutes, 4 * 8 * 60);  // 26..29 Feb
    EXPECT_DOUBLE_EQ(s.overtimeHours, 0.5);
    EXPECT_DOUBLE_EQ(s.lateHours, 0.25);
}

TEST_F(ReportFigures, SheetOfACancelledEntry) {
    const Sheet s = buildSheet(readSheet(t.db, 1, QStringLiteral(" ATT3 ")));
    EXPECT_TRUE(s.entry.cancelled);
    EXPECT_EQ(s.entry.cancelledRemarks, "Keyed twice");
    ASSERT_EQ(s.days.size(), 1);
    EXPECT_EQ(s.days[0].date, QDate(2024, 2, 29));
    EXPECT_EQ(s.days[0].workedMinutes, 9 * 60);
}

TEST_F(ReportFigures, FiguresDoNotDependOnTheOrderOfTheLines) {
    // The period statements have no ORDER BY: the lines may come in any order.
    PeriodSource src = readPeriod(t.db, db::Dialect::sqlite(), week(), PeriodReport::Muster);
    const Muster before = buildMuster(src);
    const Payroll payBefore = buildPayroll(src);
    std::reverse(src.details.begin(), src.details.end());
    std::reverse(src.claims.begin(), src.claims.end());
    const Muster after = buildMuster(src);
    const Payroll payAfter = buildPayroll(src);
    ASSERT_EQ(after.rows.size(), before.rows.size());
    for (int r = 0; r < before.rows.size(); ++r) {
        EXPECT_EQ(after.rows[r].cells, before.rows[r].cells);
        EXPECT_EQ(after.rows[r].workedMinutes, before.rows[r].workedMinutes);
        EXPECT_EQ(after.rows[r].scheduledMinutes, before.rows[r].scheduledMinutes);
        EXPECT_DOUBLE_EQ(after.rows[r].present, before.rows[r].present);
    }
    EXPECT_EQ(after.rows[1].cells[3], "!P/A");  // ATT4's code first, as the entries are ordered
    ASSERT_EQ(payAfter.lines.size(), payBefore.lines.size());
    for (int i = 0; i < payBefore.lines.size(); ++i) {
        EXPECT_DOUBLE_EQ(payAfter.lines[i].present, payBefore.lines[i].present);
        EXPECT_DOUBLE_EQ(payAfter.lines[i].absent, payBefore.lines[i].absent);
        EXPECT_EQ(payAfter.lines[i].allowanceIds, payBefore.lines[i].allowanceIds);
    }
}

TEST_F(ReportFigures, AFailingStatementIsTheDatabasesError) {
    db::setFaultHook([](const QString& text) {
        return text.contains("pEmpAttendanceDetail") ? QStringLiteral("disk I/O error") : QString();
    });
    try {
        readPeriod(t.db, db::Dialect::sqlite(), week(), PeriodReport::Muster);
        ADD_FAILURE() << "the failure was not reported";
    } catch (const db::DbError& e) {
        EXPECT_EQ(e.message(), "disk I/O error");
    }
    db::setFaultHook({});
}

TEST(ReportHours, HoursTextDoesNotWrap) {
    EXPECT_EQ(hoursText(0), "00:00");
    EXPECT_EQ(hoursText(45), "00:45");
    EXPECT_EQ(hoursText(176 * 60 + 30), "176:30");
    EXPECT_EQ(hoursText(-75), "-01:15");
    EXPECT_EQ(minutesOf(0.25), 15);
    EXPECT_EQ(minutesOf(1.0 / 3.0), 20);
}

TEST(ReportPeriod, RefusedPeriods) {
    EXPECT_EQ(periodProblem(QDate(2024, 3, 1), QDate(2024, 2, 29)),
              "The period ends before it starts.");
    EXPECT_EQ(periodProblem(QDate(2024, 1, 1), QDate(2024, 3, 3)),
              "A report covers at most 62 days; this period has 63.");
    EXPECT_EQ(periodProblem(QDate(2024, 1, 1), QDate(2024, 3, 2)), "");  // 62 days
    EXPECT_EQ(periodProblem(QDate(2024, 3, 1), QDate(2024, 3, 1)), "");
}

TEST_F(ReportFigures, RefusedRequests) {
    sql::Scope tooLong = week();
    tooLong.from = QDate(2023, 12, 31);
    try {
        readPeriod(t.db, db::Dialect::sqlite(), tooLong, PeriodReport::Muster);
        ADD_FAILURE() << "a 64-day period was read";
    } catch (const ReportError& e) {
        EXPECT_EQ(e.message(), "A report covers at most 62 days; this period has 64.");
    }
    try {
        readPeriod(t.db, db::Dialect::sqlite(), week(99), PeriodReport::Payroll);
        ADD_FAILURE() << "an unknown department was read";
    } catch (const ReportError& e) {
        EXPECT_EQ(e.message(), "There is no department 99 in company 1.");
    }
    try {
        readSheet(t.db, 1, QStringLiteral("ATT99"));
        ADD_FAILURE() << "an unknown entry was read";
    } catch (const ReportError& e) {
        EXPECT_EQ(e.message(), "There is no entry numbered \"ATT99\" in company 1.");
    }
}

TEST_F(ReportFigures, AFixedNumberOfStatements) {
    // More employees and entries than the week must not mean more statements.
    for (int i = 0; i < 50; ++i) {
        t.exec(QStringLiteral(
                   "insert into pEmployee(eEmpID, eCompanyID, eEmpNo, eName, eActive, eDeptID) "
                   "values(%1, 1, 'X%1', 'Extra', 1, 10)")
                   .arg(100 + i));
        t.exec(QStringLiteral(
                   "insert into pEmployeeAttendence(eaCompanyID, eaID, eaNo, eaEmpID, eaStartDate, "
                   "eaEndDate, eacwtsid) values(1, %1, 'X%1', %1, '2024-02-26', '2024-03-03', 1)")
                   .arg(100 + i));
        t.exec(QStringLiteral("insert into pEmpAttendanceDetail(eadCompanyID, eadAttendanceID, "
                              "eadDetailID, eadDate, "
                              "eadType) values(1, %1, 1, '2024-02-27', 'A')")
                   .arg(100 + i));
    }
    qint64 before = db::statementCount();
    const Muster m =
        buildMuster(readPeriod(t.db, db::Dialect::sqlite(), week(10), PeriodReport::Muster));
    EXPECT_EQ(db::statementCount() - before,
              7);  // department, employees, headers, lines, claims, settings, grace
    EXPECT_EQ(m.rows.size(), 52);
    before = db::statementCount();
    buildPayroll(readPeriod(t.db, db::Dialect::sqlite(), week(), PeriodReport::Payroll));
    EXPECT_EQ(db::statementCount() - before, 5);
    before = db::statementCount();
    buildSheet(readSheet(t.db, 1, QStringLiteral("ATT1")));
    EXPECT_EQ(db::statementCount() - before, 5);
}

TEST(ReportSql, SqlServerTexts) {
    TestDb t;  // LinkedTableNames: identity names
    const db::Dialect d = db::Dialect::sqlServer();
    const sql::Scope s = week(10);
    expectTsql(sql::departmentQuery(1, 10),
               "select DepartmentID, DepartmentName from pDepartment where CompanyID = 1 and "
               "DepartmentID = 10");
    expectTsql(sql::departmentsQuery(1),
               "select DepartmentID, DepartmentName from pDepartment where CompanyID = 1 order by "
               "DepartmentName");
    expectTsql(sql::musterEmployeesQuery(d, s),
               "select E.eEmpID, E.eEmpNo, E.eName, E.eDeptID, D.DepartmentName from pemployee E "
               "left join "
               "pDepartment D on D.DepartmentID = E.eDeptID and D.CompanyID = E.eCompanyID where "
               "E.eCompanyID = 1 "
               "and E.eDeptID = 10 and (E.eActive = 1 or exists (select EA.eaID from "
               "pEmployeeAttendence EA where "
               "EA.eaCompanyID = E.eCompanyID and EA.eaEmpID = E.eEmpID and EA.eaCancelled = 0 and "
               "EA.eaStartDate <= "
               "'20240303' and EA.eaEndDate >= '20240226')) order by E.eEmpNo, E.eEmpID");
    expectTsql(sql::liveHeadersQuery(d, s),
               "select EA.eaID, EA.eaNo, EA.eaDate, EA.eaEmpID, EA.eaStartDate, EA.eaEndDate, "
               "EA.eacwtsid, E.eEmpNo, "
               "E.eName, E.eDeptID, D.DepartmentName from pEmployeeAttendence EA inner join "
               "pemployee E on "
               "EA.eaCompanyID = E.eCompanyID and EA.eaEmpID = E.eEmpID left join pDepartment D on "
               "D.DepartmentID = "
               "E.eDeptID and D.CompanyID = E.eCompanyID where EA.eaCompanyID = 1 and "
               "EA.eaCancelled = 0 and "
               "E.eDeptID = 10 and EA.eaStartDate <= '20240303' and EA.eaEndDate >= '20240226' "
               "order by E.eEmpNo, "
               "E.eEmpID, EA.eaStartDate, EA.eaID");
    expectTsql(
        sql::liveDetailsQuery(d, s),
        "select AD.eadAttendanceID, AD.eadDate, AD.eadType, AD.eadCheckIN, AD.eadCheckOut from "
        "pEmpAttendanceDetail AD, pEmployeeAttendence EA, pemployee E where EA.eaCompanyID = "
        "E.eCompanyID and "
        "EA.eaEmpID = E.eEmpID and EA.eaCompanyID = 1 and EA.eaCancelled = 0 and E.eDeptID = 10 "
        "and "
        "EA.eaStartDate <= '20240303' and EA.eaEndDate >= '20240226' and AD.eadCompanyID = "
        "EA.eaCompanyID and "
        "AD.eadAttendanceID = EA.eaID and AD.eadDate >= '20240226' and AD.eadDate <= '20240303'");
    expectTsql(
        sql::liveClaimsQuery(d, week()),
        "select AC.eaadAttendanceID, AC.eaadDate, AC.eaadHours, AC.eaadAllowanceID, "
        "AC.eaadDeductionID from "
        "pEmpAttendanceAllowanceDeductions AC, pEmployeeAttendence EA, pemployee E where "
        "EA.eaCompanyID = "
        "E.eCompanyID and EA.eaEmpID = E.eEmpID and EA.eaCompanyID = 1 and EA.eaCancelled = 0 and "
        "EA.eaStartDate <= '20240303' and EA.eaEndDate >= '20240226' and AC.eaadCompanyID = "
        "EA.eaCompanyID and "
        "AC.eaadAttendanceID = EA.eaID and AC.eaadDate >= '20240226' and AC.eaadDate <= "
        "'20240303'");
    expectTsql(sql::workTimeQuery(1),
               "select a.cwtsid, a.cwtsDayID, a.cwtsCheckIn1, a.cwtsCheckOut1, a.cwtsCheckIn2, "
               "a.cwtsCheckOut2, "
               "a.cwtsCheckIn3, a.cwtsCheckOut3, a.cwtsCheckIn4, a.cwtsCheckOut4 from "
               "pCalendarWorkTimeSettings a "
               "where a.cwtsCompanyID = 1");
    expectTsql(sql::graceTimeQuery(1), "select gracetime from pSettings where companyid = 1");
    expectTsql(
        sql::entryHeaderQuery(1, "O'Neil 7"),
        "select EA.eaID, EA.eaNo, EA.eaDate, EA.eaEmpID, EA.eaStartDate, EA.eaEndDate, "
        "EA.eacwtsid, E.eEmpNo, "
        "E.eName, E.eDeptID, D.DepartmentName, EA.eaPresent, EA.eaLeaves, EA.eaAbsent, "
        "EA.eaCancelled, "
        "EA.eaRemarks, EA.eaCancelledRemarks from pEmployeeAttendence EA inner join pemployee E on "
        "EA.eaCompanyID = E.eCompanyID and EA.eaEmpID = E.eEmpID left join pDepartment D on "
        "D.DepartmentID = "
        "E.eDeptID and D.CompanyID = E.eCompanyID where EA.eaCompanyID = 1 and EA.eaNo = 'O''Neil "
        "7' order by "
        "EA.eaID");
    expectTsql(
        sql::entryDetailsQuery(1, 5),
        "select AD.eadAttendanceID, AD.eadDate, AD.eadType, AD.eadCheckIN, AD.eadCheckOut from "
        "pEmpAttendanceDetail AD where AD.eadCompanyID = 1 and AD.eadAttendanceID = 5 order by "
        "AD.eadDate, "
        "AD.eadDetailID");
    expectTsql(sql::entryClaimsQuery(1, 5),
               "select AC.eaadAttendanceID, AC.eaadDate, AC.eaadHours, AC.eaadAllowanceID, "
               "AC.eaadDeductionID from "
               "pEmpAttendanceAllowanceDeductions AC where AC.eaadCompanyID = 1 and "
               "AC.eaadAttendanceID = 5 order by "
               "AC.eaadDate, AC.eaadDetailID");
}

TEST(ReportSql, SqliteTextsTakeIsoDates) {
    TestDb t;
    const QString text = sql::liveDetailsQuery(db::Dialect::sqlite(), week());
    EXPECT_TRUE(text.contains("AD.eadDate >= '2024-02-26' and AD.eadDate <= '2024-03-03'"))
        << text.toStdString();
}

TEST(ReportSql, LinkedNamesAreUsed) {
    TestDb t;
    t.exec(
        "update linktable set linktablename = 'xAttHeader' where tablename = "
        "'pEmployeeAttendence'");
    qz2::fnLoadLinkTableNames();
    EXPECT_TRUE(
        sql::liveHeadersQuery(db::Dialect::sqlite(), week()).contains(" from xAttHeader EA "));
}
