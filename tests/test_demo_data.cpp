// The bundled SQLite schema and the demo/benchmark generators: the tables and columns the
// module's statements name, the demo company's promised facts relative to the process
// date, the consistency of stored entries with their lines, and exact benchmark volumes.
#include <gtest/gtest.h>

#include <QDate>
#include <QElapsedTimer>
#include <QMap>
#include <QRegularExpression>
#include <QSet>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QStringList>
#include <QVariant>
#include <cmath>
#include <map>
#include <stdexcept>
#include <vector>

#include "demo/DemoData.h"

// Readable failure output for Qt strings.
inline void PrintTo(const QString& s, std::ostream* os) {
    *os << '"' << s.toStdString() << '"';
}

namespace {

using qz2::demo::BenchScale;
using qz2::demo::DemoScale;

const QDate kProcessDate(2026, 11, 21);

// An in-memory SQLite database under a connection name of its own.
class MemoryDb {
public:
    MemoryDb() : m_name(QStringLiteral("demo_data_test_%1").arg(++s_counter)) {
        m_db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_name);
        m_db.setDatabaseName(QStringLiteral(":memory:"));
        if (!m_db.open()) ADD_FAILURE() << m_db.lastError().text().toStdString();
    }
    ~MemoryDb() {
        m_db.close();
        m_db = QSqlDatabase();
        QSqlDatabase::removeDatabase(m_name);
    }
    MemoryDb(const MemoryDb&) = delete;
    MemoryDb& operator=(const MemoryDb&) = delete;

    QSqlDatabase& db() { return m_db; }

    // All rows of a query, every value as text (NULL as "<null>").
    std::vector<QStringList> rows(const QString& sql) {
        std::vector<QStringList> out;
        QSqlQuery q(m_db);
        if (!q.exec(sql)) {
            ADD_FAILURE() << sql.toStdString() << ": " << q.lastError().text().toStdString();
            return out;
        }
        while (q.next()) {
            QStringList row;
            for (int i = 0; i < q.record().count(); ++i)
                row << (q.value(i).isNull() ? QStringLiteral("<null>") : q.value(i).toString());
            out.push_back(row);
        }
        return out;
    }

    QVariant scalar(const QString& sql) {
        QSqlQuery q(m_db);
        if (!q.exec(sql)) {
            ADD_FAILURE() << sql.toStdString() << ": " << q.lastError().text().toStdString();
            return {};
        }
        return q.next() ? q.value(0) : QVariant();
    }

    int count(const QString& sql) { return scalar(sql).toInt(); }

private:
    static inline int s_counter = 0;
    QString m_name;
    QSqlDatabase m_db;
};

class DemoDatabase : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_NO_THROW(qz2::demo::createSchema(m.db()));
        ASSERT_NO_THROW(qz2::demo::generate(m.db(), kProcessDate));
    }
    MemoryDb m;
};

// Day-type weights: present, leave, absent (holidays count as present).
struct Weights {
    double present, leave, absent;
};
Weights weightsOf(const QString& type) {
    if (type == QLatin1String("P") || type == QLatin1String("H")) return {1, 0, 0};
    if (type == QLatin1String("A")) return {0, 0, 1};
    if (type == QLatin1String("L")) return {0, 1, 0};
    if (type == QLatin1String("HL")) return {0.5, 0.5, 0};
    if (type == QLatin1String("HA")) return {0.5, 0, 0.5};
    if (type == QLatin1String("AL")) return {0, 0.5, 0.5};
    ADD_FAILURE() << "unknown day type " << type.toStdString();
    return {0, 0, 0};
}

QDate isoDate(const QString& text) {
    return QDate::fromString(text, QStringLiteral("yyyy-MM-dd"));
}

int minutesOf(const QString& hms) {
    const QStringList p = hms.split(QLatin1Char(':'));
    return p.value(0).toInt() * 60 + p.value(1).toInt();
}

}  // namespace

// ---------------------------------------------------------------------------------
// Schema

TEST(DemoSchema, HasEveryTableAndColumnTheStatementsName) {
    MemoryDb m;
    ASSERT_NO_THROW(qz2::demo::createSchema(m.db()));
    const std::map<QString, QStringList> expected = {
        {"linktable", {"tablename", "linktablename"}},
        {"pusers", {"userid", "username", "companyid"}},
        {"ausers", {"userid", "username", "companyid"}},
        {"puserrights", {"userid", "interfaceid", "functionrights"}},
        {"pPrefix", {"Prefix", "InterfaceID", "companyid"}},
        {"pSettings",
         {"companyid", "gracetime", "ConsiderLeaveHolidays", "PerHourRateFromEmployeeMaster",
          "calendardepwise", "cwtsdepwise", "noofPreviousdays"}},
        {"pEmployee",
         {"eEmpID", "eCompanyID", "eEmpNo", "eName", "eActive", "eDeptID", "eDateofjoin",
          "ecurrencyid", "PerHourRate"}},
        {"pDepartment", {"DepartmentID", "DepartmentName", "CompanyID"}},
        {"pCalenderHeader", {"companyid", "CalenderID", "financialid", "departmentid"}},
        {"pCalenderDetail", {"companyid", "CalenderID", "HolidayDate"}},
        {"pCalendarWTSheader", {"cwtsCompanyID", "cwtsid", "cwtsdepartmentid"}},
        {"pCalendarWorkTimeSettings",
         {"cwtsCompanyID", "cwtsid", "cwtsDayID", "cwtsCheckIn1", "cwtsCheckOut1", "cwtsCheckIn2",
          "cwtsCheckOut2", "cwtsCheckIn3", "cwtsCheckOut3", "cwtsCheckIn4", "cwtsCheckOut4"}},
        {"pleaveregisterheader", {"lrhCompanyID", "lrhID", "lrhempid", "lrhcancelled"}},
        {"pleaveregisterDetail",
         {"lrdCompanyID", "lrdID", "lrdLeaveID", "lrdFromDate", "lrdToDate", "lrdNoofDays"}},
        {"pLeaveCancellationHeader", {"lchcompanyid", "lchid", "lchcancelled"}},
        {"pleavecancellationdetail",
         {"lcdcompanyid", "lcdid", "lcdlrdid", "lcdlrdleaveid", "status"}},
        {"pleaves", {"lCompanyID", "lLeaveID"}},
        {"pCurrencyMaster", {"CurrencyID"}},
        {"PEmployeeLeaves", {"pelEmpID"}},
        {"pCurrencyallowdeddetails",
         {"companyID", "CurrencyID", "Overtimeallowanceid", "latecomingdedid"}},
        {"pEmpMonthlyEntryHeader",
         {"emhCompanyID", "emhEmpID", "emhStartDate", "emhEndDate", "emhCancelled"}},
        {"pMonthlyPayrollProcessing", {"mppEmpID", "mppPayrollDate"}},
        {"ptables", {"tableid", "tablename"}},
        {"ptablecolumns", {"tableid", "columnid", "columnname", "columnheader"}},
        {"pEmployeeAttendence",
         {"eaCompanyID", "eaID", "eaNo", "eaDate", "eaEmpID", "eaPresent", "eaLeaves", "eaAbsent",
          "eaCancelled", "eaStartDate", "eaEndDate", "eacwtsid", "eaRemarks", "eaPerHourRate",
          "eaCancelledRemarks"}},
        {"pEmpAttendanceDetail",
         {"eadCompanyID", "eadAttendanceID", "eadDetailID", "eadDate", "eadType", "eadCheckIN",
          "eadCheckOut"}},
        {"pEmpAttendanceAllowanceDeductions",
         {"eaadCompanyID", "eaadAttendanceID", "eaadDetailID", "eaadDate", "eaadHours",
          "eaadAllowanceID", "eaadDeductionID"}},
        {"vwPaymonthvsdate", {"companyid", "paymonth", "startdate"}},
        {"spreturnWorkingHrs", {"companyid", "dayid", "WorkingHrs"}},
    };
    for (const auto& [table, columns] : expected) {
        QSet<QString> present;
        for (const QStringList& row : m.rows(QStringLiteral("PRAGMA table_info(%1)").arg(table)))
            present.insert(row.value(1).toLower());
        ASSERT_FALSE(present.isEmpty()) << "missing table or view " << table.toStdString();
        for (const QString& c : columns)
            EXPECT_TRUE(present.contains(c.toLower()))
                << table.toStdString() << "." << c.toStdString();
    }
    EXPECT_EQ(m.count("select count(*) from sqlite_master where type='view' and name in "
                      "('vwPaymonthvsdate','spreturnWorkingHrs')"),
              2);
    // Department and work-time department columns only in the headers, so that the
    // unaliased conditions of the holiday and schedule joins stay unambiguous.
    EXPECT_EQ(m.count("select count(*) from pragma_table_info('pCalenderDetail') where "
                      "lower(name)='departmentid'"),
              0);
    EXPECT_EQ(m.count("select count(*) from pragma_table_info('pCalendarWorkTimeSettings') "
                      "where lower(name)='cwtsdepartmentid'"),
              0);
}

TEST(DemoSchema, KeysOfTheOwnedTables) {
    MemoryDb m;
    qz2::demo::createSchema(m.db());
    auto keyOf = [&](const char* table) {
        QStringList key;
        for (const QStringList& row :
             m.rows(QStringLiteral("select name from pragma_table_info('%1') where pk>0 "
                                   "order by pk")
                        .arg(QLatin1String(table))))
            key << row.value(0);
        return key.join(QLatin1Char(','));
    };
    EXPECT_EQ(keyOf("pEmployeeAttendence"), "eaCompanyID,eaID");
    EXPECT_EQ(keyOf("pEmpAttendanceDetail"), "eadCompanyID,eadAttendanceID,eadDetailID");
    EXPECT_EQ(keyOf("pEmpAttendanceAllowanceDeductions"),
              "eaadCompanyID,eaadAttendanceID,eaadDetailID");
    // The named indexes exist.
    for (const char* index : {"ix_pEmployeeAttendence_emp", "ix_pEmpAttendanceDetail_date",
                              "ix_pMonthlyPayrollProcessing_emp"})
        EXPECT_EQ(m.count(QStringLiteral(
                              "select count(*) from sqlite_master where type='index' and name='%1'")
                              .arg(QLatin1String(index))),
                  1)
            << index;
}

TEST(DemoSchema, FailuresCarryTheDriversMessage) {
    MemoryDb m;
    qz2::demo::createSchema(m.db());
    try {
        qz2::demo::createSchema(m.db());  // the tables exist already
        FAIL() << "a second run of the schema must fail";
    } catch (const std::runtime_error& e) {
        EXPECT_NE(std::string(e.what()).find("already exists"), std::string::npos) << e.what();
    }
    QSqlDatabase closed;  // never opened
    EXPECT_THROW(qz2::demo::createSchema(closed), std::runtime_error);
}

TEST(DemoSchema, WorkingHoursViewSumsTheHighestSettingsCompletePairs) {
    MemoryDb m;
    qz2::demo::createSchema(m.db());
    QSqlQuery q(m.db());
    ASSERT_TRUE(q.exec(
        "insert into pCalendarWorkTimeSettings values "
        "(7,1,2,'09:00:00','13:00:00','14:00:00','18:00:00',null,null,null,null),"
        "(7,2,2,'08:00:00','12:00:00','12:30:00',null,'13:00:00','16:30:00',null,'20:00:00'),"
        "(7,1,3,'09:00:00','13:00:00',null,null,null,null,null,null),"
        "(7,1,4,null,null,null,null,null,null,null,null),"
        "(7,1,5,'10:00:00','09:30:00',null,null,null,null,null,null)"))
        << q.lastError().text().toStdString();
    // Day 2: setting 2 wins; its pairs 2 and 4 lack an end.
    EXPECT_EQ(m.scalar("select WorkingHrs from spreturnWorkingHrs where companyid=7 and dayid=2")
                  .toString(),
              "07:30:00");
    EXPECT_EQ(m.scalar("select WorkingHrs from spreturnWorkingHrs where companyid=7 and dayid=3")
                  .toString(),
              "04:00:00");
    EXPECT_EQ(m.scalar("select WorkingHrs from spreturnWorkingHrs where companyid=7 and dayid=4")
                  .toString(),
              "00:00:00");
    // A negative total shows as its absolute time of day.
    EXPECT_EQ(m.scalar("select WorkingHrs from spreturnWorkingHrs where companyid=7 and dayid=5")
                  .toString(),
              "00:30:00");
    EXPECT_EQ(m.count("select count(*) from spreturnWorkingHrs where companyid=7 and dayid=1"), 0);
}

// ---------------------------------------------------------------------------------
// Demo company facts

TEST_F(DemoDatabase, EmployeesOfTheDemoCompany) {
    EXPECT_EQ(m.scalar("select CompanyName from pCompany where CompanyID=1").toString(),
              "Demo Works");
    EXPECT_GE(m.count("select count(*) from pEmployee where eCompanyID=1"), 40);
    EXPECT_GE(m.count("select count(*) from pEmployee where eCompanyID=1 and eActive=0"), 2);
    EXPECT_GE(m.count("select count(*) from pEmployee where eCompanyID=1 and eActive=1"), 30);
    EXPECT_EQ(
        m.count("select count(*) from pEmployee e where eCompanyID=1 and eActive=1 and not exists "
                "(select 1 from pDepartment d where d.DepartmentID=e.eDeptID and "
                "d.CompanyID=e.eCompanyID)"),
        1);
    EXPECT_EQ(m.count("select count(*) from pEmployee where eCompanyID=1 and eDateofjoin between "
                      "'2026-11-01' and "
                      "'2026-11-30'"),
              1);
    // Everyone else joined years ago.
    EXPECT_EQ(
        m.count(
            "select count(*) from pEmployee where eCompanyID=1 and eDateofjoin > '2025-11-21' and "
            "eDateofjoin not like '2026-11-%'"),
        0);
    EXPECT_EQ(m.count("select count(*) from pEmployee where eCompanyID=1 and not PerHourRate > 0"),
              1);
    EXPECT_EQ(m.count("select count(*) from pDepartment where CompanyID=1"), 5);
    // Names are plain "First Last" and distinct.
    const auto names = m.rows("select eName from pEmployee where eCompanyID=1");
    QSet<QString> distinct;
    const QRegularExpression plain(QStringLiteral("^[A-Z][a-z]+ [A-Z][a-z]+$"));
    for (const QStringList& r : names) {
        EXPECT_TRUE(plain.match(r.value(0)).hasMatch()) << r.value(0).toStdString();
        distinct.insert(r.value(0));
    }
    EXPECT_EQ(distinct.size(), static_cast<qsizetype>(names.size()));
}

TEST_F(DemoDatabase, LinkTableMapsTheTwentyFourNamesToThemselves) {
    const QStringList names = {"pusers",
                               "pCalenderHeader",
                               "pemployee",
                               "pCalenderDetail",
                               "pEmployeeAttendence",
                               "pEmpAttendanceDetail",
                               "ptables",
                               "pEmpAttendanceAllowanceDeductions",
                               "pSettings",
                               "pCurrencyMaster",
                               "pLeaveCancellationHeader",
                               "pleavecancellationdetail",
                               "PEmployeeLeaves",
                               "pleaveregisterDetail",
                               "pleaveregisterheader",
                               "pCalendarWTSheader",
                               "pMonthlyPayrollProcessing",
                               "pCalendarWorkTimeSettings",
                               "pEmpMonthlyEntryHeader",
                               "pDepartment",
                               "ptablecolumns",
                               "puserrights",
                               "pPrefix",
                               "pCurrencyallowdeddetails"};
    EXPECT_EQ(m.count("select count(*) from linktable"), 24);
    for (const QString& n : names) {
        const auto r = m.rows(
            QStringLiteral("select linktablename from linktable where tablename='%1'").arg(n));
        ASSERT_EQ(r.size(), 1u) << n.toStdString();
        EXPECT_EQ(r[0].value(0), n);
        // Every physical name is a table or view of the schema.
        EXPECT_EQ(m.count(QStringLiteral(
                              "select count(*) from sqlite_master where lower(name)=lower('%1')")
                              .arg(n)),
                  1)
            << n.toStdString();
    }
}

TEST_F(DemoDatabase, SettingsPrefixUsersAndRights) {
    const auto s = m.rows(
        "select gracetime,ConsiderLeaveHolidays,PerHourRateFromEmployeeMaster,calendardepwise,"
        "cwtsdepwise,noofPreviousdays from pSettings where companyid=1");
    ASSERT_EQ(s.size(), 1u);
    EXPECT_EQ(s[0], (QStringList{"10", "1", "1", "0", "0", "120"}));
    // The first settings row is company 1's (gracetime is read without a condition).
    EXPECT_EQ(m.scalar("select gracetime from pSettings limit 1").toInt(), 10);
    EXPECT_EQ(
        m.scalar("SELECT Prefix FROM pPrefix WHERE InterfaceID = 91029 and companyid=1").toString(),
        "ATT");
    EXPECT_EQ(m.rows("select userid,username from pusers order by userid"),
              (std::vector<QStringList>{
                  {"1", "admin"}, {"2", "clerk"}, {"3", "viewer"}, {"4", "reader"}}));
    EXPECT_EQ(m.scalar("select username from ausers where userid=2").toString(), "clerk");
    EXPECT_EQ(
        m.scalar("select functionrights from puserrights where userid = 2 and interfaceid = 91029")
            .toString(),
        "NE");
    EXPECT_EQ(
        m.scalar("select functionrights from puserrights where userid = 3 and interfaceid = 91029")
            .toString(),
        "ADMIN");
    EXPECT_EQ(m.count("select count(*) from puserrights where userid in (1,4)"), 0);
    // The register's headings, in column order.
    EXPECT_EQ(m.rows("select tc.columnheader,tc.columnname from ptables  t, ptablecolumns  tc "
                     "where t.tableid = "
                     "tc.tableid and tablename ='pEmployeeAttendence' order by columnid"),
              (std::vector<QStringList>{{"Attendance ID", "eaID"},
                                        {"Attendance No", "eaNo"},
                                        {"Date", "eaDate"},
                                        {"Employee Name", "ename"},
                                        {"Cancelled", "eacancelled"}}));
    // The employee's currency gives the allowance and deduction heads.
    EXPECT_EQ(m.rows("Select Overtimeallowanceid,latecomingdedid From pCurrencyallowdeddetails "
                     "R,pEmployee E where  "
                     "E.ecurrencyid= R.CurrencyID And  e.eEmpID= 1 And  companyID = 1"),
              (std::vector<QStringList>{{"11", "21"}}));
}

TEST_F(DemoDatabase, CalendarsOfThisYearAndNextWithHolidaysInRecentMonths) {
    for (int year : {2026, 2027}) {
        const auto h = m.rows(
            QStringLiteral("select CalenderID, coalesce(departmentid,0) from pCalenderHeader "
                           "where companyid=1 and financialid=%1")
                .arg(year));
        ASSERT_EQ(h.size(), 1u) << year;
        EXPECT_EQ(h[0].value(1), "0");
        const int holidays =
            m.count(QStringLiteral("select count(*) from pCalenderDetail where companyid=1 and "
                                   "CalenderID=%1 and HolidayDate like '%2-%'")
                        .arg(h[0].value(0))
                        .arg(year));
        EXPECT_GE(holidays, 8) << year;
        EXPECT_LE(holidays, 14) << year;
    }
    for (const char* month : {"2026-08", "2026-09", "2026-10", "2026-11"})
        EXPECT_GE(
            m.count(QStringLiteral(
                        "Select count(*) from pCalenderDetail a,pCalenderHeader b where "
                        "a.companyid=b.companyid and a.CalenderID=b.CalenderID and a.companyID = 1 "
                        "and a.HolidayDate like '%1-%'")
                        .arg(QLatin1String(month))),
            1)
            << month;
}

TEST_F(DemoDatabase, WorkTimeSettingsAndWorkingHours) {
    EXPECT_EQ(m.count("select count(*) from pCalendarWTSheader where cwtsCompanyID=1"), 1);
    EXPECT_EQ(
        m.scalar(
             "Select max(a.cwtsid)  from pCalendarWorkTimeSettings a,pCalendarWTSheader b where "
             "a.cwtscompanyid=b.cwtsCompanyID and a.cwtsid=b.cwtsid  and a.cwtsCompanyID= 1")
            .toInt(),
        1);
    for (int day = 2; day <= 5; ++day)
        EXPECT_EQ(
            m.rows(QStringLiteral(
                       "select cwtsCheckIn1,cwtsCheckOut1,cwtsCheckIn2,cwtsCheckOut2,cwtsCheckIn3 "
                       "from pCalendarWorkTimeSettings where cwtsCompanyID=1 and cwtsDayID=%1")
                       .arg(day)),
            (std::vector<QStringList>{{"09:00:00", "13:00:00", "14:00:00", "18:00:00", "<null>"}}))
            << day;
    auto hours = [&](int company, int day) {
        const auto r = m.rows(
            QStringLiteral("select WorkingHrs from spreturnWorkingHrs where companyid=%1 and "
                           "dayid=%2")
                .arg(company)
                .arg(day));
        return r.empty() ? QStringLiteral("<no row>") : r[0].value(0);
    };
    EXPECT_EQ(hours(1, 1), "<no row>");
    for (int day = 2; day <= 5; ++day) EXPECT_EQ(hours(1, day), "08:00:00");
    EXPECT_EQ(hours(1, 6), "06:00:00");
    EXPECT_EQ(hours(1, 7), "04:00:00");
    EXPECT_EQ(hours(2, 2), "07:00:00");  // the second company keeps its own schedule
    EXPECT_EQ(hours(2, 7), "<no row>");
}

TEST_F(DemoDatabase, PayMonthViewGivesTheFirstOfEachMonth) {
    EXPECT_EQ(
        m.scalar(
             "select startdate PayRollDay from vwPaymonthvsdate where companyid=1 and paymonth=11")
            .toString(),
        "2026-11-01");
    EXPECT_EQ(m.count("select count(*) from vwPaymonthvsdate where companyid=1"), 12);
    EXPECT_EQ(m.count("select count(*) from vwPaymonthvsdate where companyid=1 and startdate <> "
                      "printf('2026-%02d-01', paymonth)"),
              0);
}

TEST_F(DemoDatabase, EntriesCoverThePreviousThreeMonths) {
    const auto entries = m.rows(
        "select eaID,eaNo,eaEmpID,eaStartDate,eaEndDate,eaDate,eaCancelled,eacwtsid,"
        "eaPerHourRate,eaCancelledRemarks from pEmployeeAttendence where eaCompanyID=1 "
        "order by eaID");
    ASSERT_EQ(entries.size(), 76u);  // 25 employees x 3 months, and one entered twice
    QSet<QString> months;
    QMap<QString, int> perEmployee;
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const QStringList& e = entries[i];
        EXPECT_EQ(e.value(1), QStringLiteral("ATT%1").arg(i + 1)) << "numbers follow eaID";
        const QDate start = isoDate(e.value(3));
        const QDate end = isoDate(e.value(4));
        const QDate date = isoDate(e.value(5));
        ASSERT_TRUE(start.isValid() && end.isValid() && date.isValid());
        EXPECT_EQ(start.day(), 1);
        EXPECT_EQ(end, start.addMonths(1).addDays(-1));
        EXPECT_GT(date, end);
        EXPECT_LE(date, kProcessDate);
        EXPECT_EQ(e.value(7), "1");
        EXPECT_EQ(e.value(8).toDouble(),
                  m.scalar(QStringLiteral("select PerHourRate from pEmployee where eEmpID=%1")
                               .arg(e.value(2)))
                      .toDouble());
        EXPECT_GT(e.value(8).toDouble(), 0.0);
        months.insert(e.value(3));
        if (e.value(6) == "0") ++perEmployee[e.value(2)];
    }
    EXPECT_EQ(months, (QSet<QString>{"2026-08-01", "2026-09-01", "2026-10-01"}));
    EXPECT_EQ(perEmployee.size(), 25);
    for (int n : perEmployee) EXPECT_EQ(n, 3);
    // Entries belong to active employees with a department and an old date of join.
    EXPECT_EQ(m.count("select count(*) from pEmployeeAttendence a join pEmployee e on "
                      "e.eEmpID=a.eaEmpID where "
                      "a.eaCompanyID=1 and (e.eActive=0 or e.eDeptID is null or e.eDateofjoin >= "
                      "a.eaStartDate)"),
              0);

    const auto cancelled = m.rows(
        "select eaEmpID,eaStartDate,eaCancelledRemarks from pEmployeeAttendence where "
        "eaCancelled=1");
    ASSERT_EQ(cancelled.size(), 1u);
    EXPECT_EQ(cancelled[0].value(2), "admin:Entered twice");
    EXPECT_EQ(cancelled[0].value(1), "2026-10-01");
    // The cancelled one duplicates a kept entry of the same employee and month.
    EXPECT_EQ(
        m.count(QStringLiteral(
                    "select count(*) from pEmployeeAttendence where eaCancelled=0 and eaEmpID=%1 "
                    "and eaStartDate='%2'")
                    .arg(cancelled[0].value(0), cancelled[0].value(1))),
        1);
    // The next period of an employee starts the day after the last kept entry.
    EXPECT_EQ(m.scalar(QStringLiteral(
                           "Select date(max(eaEndDate),'+1 day') from pEmployeeAttendence where "
                           "eaCancelled=0 and eaCompanyID=1 And eaEmpID=%1")
                           .arg(cancelled[0].value(0)))
                  .toString(),
              "2026-11-01");
}

TEST_F(DemoDatabase, HeaderCountsMatchTheirLines) {
    const auto headers = m.rows(
        "select eaCompanyID,eaID,eaStartDate,eaEndDate,eaPresent,eaLeaves,eaAbsent from "
        "pEmployeeAttendence");
    ASSERT_FALSE(headers.empty());
    int withLeave = 0, withHalfDay = 0, withAbsence = 0, withHoliday = 0;
    for (const QStringList& h : headers) {
        // Day numbers (Sunday 1 .. Saturday 7) on which the company works.
        QSet<int> workdays;
        for (const QStringList& d :
             m.rows(QStringLiteral("select cwtsDayID from pCalendarWorkTimeSettings where "
                                   "cwtsCompanyID=%1")
                        .arg(h.value(0))))
            workdays.insert(d.value(0).toInt());
        ASSERT_FALSE(workdays.isEmpty());
        const QDate start = isoDate(h.value(2));
        const QDate end = isoDate(h.value(3));
        std::map<QDate, QSet<QString>> types;
        for (const QStringList& d :
             m.rows(QStringLiteral("select eadDate,eadType from pEmpAttendanceDetail where "
                                   "eadCompanyID=%1 and eadAttendanceID=%2")
                        .arg(h.value(0), h.value(1)))) {
            const QDate day = isoDate(d.value(0));
            ASSERT_TRUE(day >= start && day <= end) << d.value(0).toStdString();
            types[day].insert(d.value(1));
        }
        Weights sum{0, 0, 0};
        for (QDate day = start; day <= end; day = day.addDays(1)) {
            const auto it = types.find(day);
            if (it == types.end()) {
                // Only a day off of the work-time settings goes without a line.
                EXPECT_FALSE(workdays.contains(day.dayOfWeek() % 7 + 1))
                    << day.toString(Qt::ISODate).toStdString();
                sum.present += 1;
                continue;
            }
            ASSERT_EQ(it->second.size(), 1) << "one type per day";
            const QString type = *it->second.begin();
            const Weights w = weightsOf(type);
            sum.present += w.present;
            sum.leave += w.leave;
            sum.absent += w.absent;
            withLeave += type == "L";
            withHalfDay += type == "HL" || type == "HA";
            withAbsence += type == "A";
            withHoliday += type == "H";
        }
        EXPECT_DOUBLE_EQ(h.value(4).toDouble(), sum.present)
            << "entry " << h.value(1).toStdString();
        EXPECT_DOUBLE_EQ(h.value(5).toDouble(), sum.leave) << "entry " << h.value(1).toStdString();
        EXPECT_DOUBLE_EQ(h.value(6).toDouble(), sum.absent) << "entry " << h.value(1).toStdString();
        EXPECT_DOUBLE_EQ(sum.present + sum.leave + sum.absent, start.daysTo(end) + 1.0);
    }
    EXPECT_GT(withLeave, 0);
    EXPECT_GT(withHalfDay, 0);
    EXPECT_GT(withAbsence, 0);
    EXPECT_GT(withHoliday, 0);
}

TEST_F(DemoDatabase, DetailLinesLookLikeSavedEntries) {
    // Times either both present or both NULL; a line without times is the one line of its
    // day (absent, leave, a holiday or a day off without pairs), and every day of an entry's
    // period has a line.
    EXPECT_EQ(m.count("select count(*) from pEmpAttendanceDetail where (eadCheckIN is null) <> "
                      "(eadCheckOut is null)"),
              0);
    EXPECT_EQ(m.count("select count(*) from (select eadAttendanceID,eadDate from "
                      "pEmpAttendanceDetail group by eadCompanyID,eadAttendanceID,eadDate "
                      "having sum(eadCheckIN is null)>0 and count(*)>1)"),
              0);
    EXPECT_GT(m.count("select count(*) from pEmpAttendanceDetail where eadCheckIN is null and "
                      "eadType='P'"),
              0);
    EXPECT_EQ(m.count("select count(*) from pEmployeeAttendence h where (select count(distinct "
                      "eadDate) from pEmpAttendanceDetail d where d.eadCompanyID=h.eaCompanyID "
                      "and d.eadAttendanceID=h.eaID) <> julianday(h.eaEndDate)-"
                      "julianday(h.eaStartDate)+1"),
              0);
    EXPECT_EQ(m.count("select count(*) from pEmpAttendanceDetail where eadType not in "
                      "('P','A','L','H','HA','HL','AL')"),
              0);
    // Absent and leave days have exactly one line each.
    EXPECT_EQ(
        m.count("select count(*) from (select eadAttendanceID,eadDate from pEmpAttendanceDetail "
                "where eadType in "
                "('A','L') group by eadCompanyID,eadAttendanceID,eadDate having count(*)<>1)"),
        0);
    // Line numbers run 1..n within an entry, pairs first.
    EXPECT_EQ(m.count("select count(*) from (select eadCompanyID,eadAttendanceID from "
                      "pEmpAttendanceDetail group by "
                      "eadCompanyID,eadAttendanceID having max(eadDetailID)<>count(*) or "
                      "min(eadDetailID)<>1)"),
              0);
    EXPECT_EQ(m.count("select count(*) from pEmpAttendanceDetail a where a.eadCheckIN is null and "
                      "exists (select 1 "
                      "from pEmpAttendanceDetail b where b.eadCompanyID=a.eadCompanyID and "
                      "b.eadAttendanceID=a.eadAttendanceID and b.eadCheckIN is not null and "
                      "b.eadDetailID>a.eadDetailID)"),
              0);
    const QRegularExpression timeText(QStringLiteral("^\\d\\d:\\d\\d:\\d\\d$"));
    const QRegularExpression dateText(QStringLiteral("^\\d{4}-\\d\\d-\\d\\d$"));
    // Working days of company 1: check-in 08:50-09:20, lunch 12:55-13:10 and 13:55-14:10,
    // the day ends 17:45-18:30 Monday to Thursday and 15:45-16:30 on Friday.
    int checked = 0;
    std::map<std::pair<QString, QString>, std::vector<std::pair<int, int>>> days;
    for (const QStringList& r :
         m.rows("select eadAttendanceID,eadDate,eadCheckIN,eadCheckOut,eadType from "
                "pEmpAttendanceDetail where eadCompanyID=1 and eadCheckIN is not null order "
                "by eadAttendanceID,eadDetailID")) {
        ASSERT_TRUE(dateText.match(r.value(1)).hasMatch()) << r.value(1).toStdString();
        ASSERT_TRUE(timeText.match(r.value(2)).hasMatch()) << r.value(2).toStdString();
        ASSERT_TRUE(timeText.match(r.value(3)).hasMatch()) << r.value(3).toStdString();
        if (r.value(4) == "P")
            days[{r.value(0), r.value(1)}].emplace_back(minutesOf(r.value(2)),
                                                        minutesOf(r.value(3)));
    }
    for (const auto& [key, pairs] : days) {
        const int dow = isoDate(key.second).dayOfWeek();
        ASSERT_NE(dow, Qt::Sunday);
        ASSERT_EQ(pairs.size(), dow == Qt::Saturday ? 1u : 2u) << key.second.toStdString();
        EXPECT_GE(pairs[0].first, 8 * 60 + 50);
        EXPECT_LE(pairs[0].first, 9 * 60 + 20);
        EXPECT_GE(pairs[0].second, 12 * 60 + 55);
        EXPECT_LE(pairs[0].second, 13 * 60 + 10);
        if (pairs.size() == 2) {
            EXPECT_GE(pairs[1].first, 13 * 60 + 55);
            EXPECT_LE(pairs[1].first, 14 * 60 + 10);
            const int end = dow == Qt::Friday ? 16 * 60 : 18 * 60;
            EXPECT_GE(pairs[1].second, end - 15);
            EXPECT_LE(pairs[1].second, end + 30);
        }
        ++checked;
    }
    EXPECT_GT(checked, 1000);
}

TEST_F(DemoDatabase, AllowanceAndDeductionLines) {
    const auto lines = m.rows(
        "select a.eaadAllowanceID,a.eaadDeductionID,a.eaadHours,a.eaadDate,h.eaStartDate,"
        "h.eaEndDate,a.eaadCompanyID from pEmpAttendanceAllowanceDeductions a join "
        "pEmployeeAttendence h on h.eaCompanyID=a.eaadCompanyID and h.eaID=a.eaadAttendanceID");
    int allowances = 0, deductions = 0;
    for (const QStringList& l : lines) {
        const bool allowance = l.value(0) != "<null>";
        const bool deduction = l.value(1) != "<null>";
        EXPECT_NE(allowance, deduction) << "exactly one head per line";
        if (l.value(6) == "1") {
            if (allowance) {
                EXPECT_EQ(l.value(0), "11");
            }
            if (deduction) {
                EXPECT_EQ(l.value(1), "21");
            }
        }
        allowances += allowance;
        deductions += deduction;
        const double hours = l.value(2).toDouble();
        EXPECT_GT(hours, 0.0);
        EXPECT_NEAR(hours * 60, std::round(hours * 60), 1e-6) << "hours + minutes/60";
        EXPECT_TRUE(l.value(3) >= l.value(4) && l.value(3) <= l.value(5));
    }
    EXPECT_GT(allowances, 0);
    EXPECT_GT(deductions, 0);
    // Line numbers run 1..n within an entry.
    EXPECT_EQ(m.count("select count(*) from (select eaadAttendanceID from "
                      "pEmpAttendanceAllowanceDeductions group by "
                      "eaadCompanyID,eaadAttendanceID having max(eaadDetailID)<>count(*))"),
              0);
    // A holiday worked by arrangement is stored with its times and claimed as overtime.
    EXPECT_GE(m.count("select count(*) from pEmpAttendanceDetail d join "
                      "pEmpAttendanceAllowanceDeductions a on "
                      "a.eaadCompanyID=d.eadCompanyID and a.eaadAttendanceID=d.eadAttendanceID and "
                      "a.eaadDate=d.eadDate where d.eadType='H' and d.eadCheckIN is not null and "
                      "a.eaadAllowanceID is not null"),
              1);
}

// The approved-leave query of the entry form, with ISO date literals.
static QString approvedLeaves(int employee, const char* from, const char* to) {
    const QString s = QLatin1String(from), e = QLatin1String(to);
    return QStringLiteral(
               "select lrdFromDate,lrdToDate,Status,lrdNoofDays from (select "
               "lh.lrhempid,ld.lrdLeaveID,ld.lrdID,ld.lrdCompanyID,case when ld.lrdFromDate<'%1' "
               "then '%1' else "
               "ld.lrdFromDate end lrdFromDate,case when ld.lrdToDate>'%2' then '%2' else "
               "ld.lrdToDate end "
               "lrdToDate,lrdNoofDays from pleaveregisterheader lh,pleaveregisterDetail ld where "
               "lh.lrhCompanyID = "
               "ld.lrdCompanyID and lh.lrhID = ld.lrdID and lh.lrhcancelled =0) Nd,(select "
               "lchcompanyid, lcdlrdid, "
               "lcdlrdleaveid, status from pLeaveCancellationHeader ch, pleavecancellationdetail "
               "cd where "
               "ch.lchcompanyid = cd.lcdcompanyid and ch.lchid = cd.lcdid and ch.lchcancelled =0) "
               "ls ,pleaves lm "
               "Where nd.lrdCompanyID = ls.lchcompanyid And nd.lrdid = ls.lcdlrdid and "
               "nd.lrdleaveid = "
               "ls.lcdlrdleaveid  and ls.status collate nocase ='s' and nd.lrdCompanyID = lm.lCompanyID And "
               "nd.lrdLeaveID = "
               "lm.lLeaveID and nd.lrhempid=%3 and nd.lrdToDate>='%1' and nd.lrdFromDate<='%2'")
        .arg(s, e)
        .arg(employee);
}

TEST_F(DemoDatabase, LeavesApprovedRefusedAndWithdrawn) {
    // Full-day, multi-day and half-day leaves are all in the register.
    EXPECT_GE(m.count("select count(*) from pleaveregisterDetail where lrdNoofDays > 1"), 2);
    EXPECT_EQ(m.count("select count(*) from pleaveregisterDetail where lrdNoofDays = 0.5 and "
                      "lrdFromDate=lrdToDate"),
              1);
    EXPECT_EQ(m.count("select count(*) from pleavecancellationdetail where status='n'"), 1);
    EXPECT_EQ(m.count("select count(*) from pleaveregisterheader where lrhcancelled=1"), 1);
    EXPECT_EQ(m.count("select count(*) from pleaves where lCompanyID=1"), 3);

    // Employee 1: three days in September, stored as leave days.
    EXPECT_EQ(m.rows(approvedLeaves(1, "2026-09-01", "2026-09-30")),
              (std::vector<QStringList>{{"2026-09-01", "2026-09-03", "S", "3"}}));
    EXPECT_EQ(
        m.count("select count(*) from pEmpAttendanceDetail d join pEmployeeAttendence h on "
                "h.eaCompanyID=d.eadCompanyID and h.eaID=d.eadAttendanceID where h.eaEmpID=1 and "
                "d.eadType='L' and d.eadDate between '2026-09-01' and '2026-09-03'"),
        3);
    // Employee 2: a half day in October, stored as "HL" with the morning worked.
    const auto half = m.rows(approvedLeaves(2, "2026-10-01", "2026-10-31"));
    ASSERT_EQ(half.size(), 1u);
    EXPECT_EQ(half[0].value(3).toDouble(), 0.5);
    EXPECT_EQ(
        m.rows(
            QStringLiteral(
                "select d.eadType,count(*) from pEmpAttendanceDetail d join pEmployeeAttendence h "
                "on h.eaCompanyID=d.eadCompanyID and h.eaID=d.eadAttendanceID where h.eaEmpID=2 "
                "and d.eadDate='%1' group by d.eadType")
                .arg(half[0].value(0))),
        (std::vector<QStringList>{{"HL", "1"}}));
    // Employee 3: approved in November (for a new entry); employee 4's leave was
    // refused and employee 5's application withdrawn, so neither counts.
    EXPECT_EQ(m.rows(approvedLeaves(3, "2026-11-01", "2026-11-30")).size(), 1u);
    EXPECT_TRUE(m.rows(approvedLeaves(4, "2026-10-01", "2026-10-31")).empty());
    EXPECT_EQ(m.count("select count(*) from pleaveregisterheader where lrhempid=4"), 1);
    EXPECT_TRUE(m.rows(approvedLeaves(5, "2026-11-01", "2026-11-30")).empty());
    EXPECT_EQ(m.count("select count(*) from pleaveregisterheader where lrhempid=5"), 1);
    // Employee 7's leave crosses into November and is clipped to the period asked.
    EXPECT_EQ(m.rows(approvedLeaves(7, "2026-11-01", "2026-11-30")),
              (std::vector<QStringList>{{"2026-11-01", "2026-11-02", "S", "4"}}));
    // Employee 6's leave surrounds November's holiday, which stays a holiday.
    const auto around = m.rows(approvedLeaves(6, "2026-11-01", "2026-11-30"));
    ASSERT_EQ(around.size(), 1u);
    EXPECT_EQ(m.count(QStringLiteral(
                          "select count(*) from pCalenderDetail where companyid=1 and HolidayDate "
                          "between '%1' and '%2'")
                          .arg(around[0].value(0), around[0].value(1))),
              1);
}

TEST_F(DemoDatabase, MonthlyEntryLocksTheOldestMonthOfAFewEmployees) {
    EXPECT_GE(m.count("select count(*) from pEmpMonthlyEntryHeader where emhCancelled=0"), 3);
    EXPECT_EQ(m.count("select count(*) from pEmpMonthlyEntryHeader where emhCancelled=1"), 1);
    int locked = 0;
    for (const QStringList& e :
         m.rows("select eaID,eaStartDate,eaEmpID from pEmployeeAttendence where eaCompanyID=1")) {
        const int count = m.count(
            QStringLiteral(
                "Select count(1) from pEmpMonthlyEntryHeader a,pEmployeeAttendence b where "
                "a.emhCompanyID =b.eaCompanyID and a.emhEmpID=b.eaEmpID and emhCancelled=0 and "
                "(a.emhStartDate between b.eaStartDate and b.eaEndDate or a.emhendDate between "
                "b.eaStartDate and b.eaEndDate ) and a.emhCompanyID=1 and b.eaCompanyID=1 and "
                "b.eaID=%1")
                .arg(e.value(0)));
        if (count > 0) {
            ++locked;
            EXPECT_EQ(e.value(1), "2026-08-01");
            EXPECT_EQ(
                m.scalar(QStringLiteral(
                             "Select max(mppPayrollDate) from pMonthlyPayrollProcessing where "
                             "mppEmpID=%1")
                             .arg(e.value(2)))
                    .toString(),
                "2026-08-31");
        }
    }
    EXPECT_EQ(locked, m.count("select count(*) from pEmpMonthlyEntryHeader where emhCancelled=0"));
    EXPECT_EQ(m.count("select count(distinct mppEmpID) from pMonthlyPayrollProcessing"), locked);
}

TEST_F(DemoDatabase, SecondCompanyIsSmallAndSeparate) {
    EXPECT_EQ(m.count("select count(*) from pEmployee where eCompanyID=2"), 2);
    EXPECT_EQ(m.count("select count(*) from pEmployeeAttendence where eaCompanyID=2"), 3);
    EXPECT_EQ(m.rows("select eaNo from pEmployeeAttendence where eaCompanyID=2 order by eaID"),
              (std::vector<QStringList>{{"HC1"}, {"HC2"}, {"HC3"}}));
    // The register's list of each company shows only its own entries.
    const QString list = QStringLiteral(
        "select EA.eaID,EA.eaNo,EA.eaDate,E.ename, case when EA.eacancelled=1 then 'Yes' else 'No' "
        "end eacancelled "
        " from pEmployeeAttendence EA,pemployee E  Where EA.eacompanyid=E.ecompanyid  and  "
        "EA.eaempid=E.eempid and "
        "EA.eaCompanyid  = %1");
    EXPECT_EQ(m.rows(list.arg(1)).size(), 76u);
    EXPECT_EQ(m.rows(list.arg(2)).size(), 3u);
    EXPECT_EQ(m.count("select count(*) from pEmployeeAttendence a join pEmployee e on "
                      "e.eEmpID=a.eaEmpID where "
                      "e.eCompanyID<>a.eaCompanyID"),
              0);
    // Identifiers are unique across companies (the next eaID is the table's maximum plus one).
    EXPECT_EQ(m.count("select count(distinct eaID) from pEmployeeAttendence"),
              m.count("select count(*) from pEmployeeAttendence"));
    EXPECT_EQ(
        m.scalar("select PerHourRateFromEmployeeMaster from pSettings where companyid=2").toInt(),
        0);
    EXPECT_EQ(m.count("select count(*) from pCalenderHeader where companyid=2 and financialid in "
                      "(2026,2027)"),
              2);
}

TEST_F(DemoDatabase, EmployeePickerListsActiveEmployeesOnce) {
    const auto rows = m.rows(
        " Select eEmpID,eEmpNo As 'EmployeeNo',eName As 'Employee Name',DepartmentName from "
        "pemployee left outer join pDepartment on pemployee.eDeptID=pDepartment.DepartmentID "
        "where eActive = 1 And eCompanyID = 1");
    EXPECT_EQ(static_cast<int>(rows.size()),
              m.count("select count(*) from pEmployee where eActive=1 and eCompanyID=1"));
    int withoutDepartment = 0;
    for (const QStringList& r : rows) withoutDepartment += r.value(3) == "<null>";
    EXPECT_EQ(withoutDepartment, 1);
}

TEST(DemoGenerator, IsDeterministic) {
    auto dump = [](MemoryDb& m) {
        QStringList all;
        for (const char* sql : {"select * from pEmployee order by eEmpID",
                                "select * from pEmployeeAttendence order by eaCompanyID,eaID",
                                "select * from pEmpAttendanceDetail order by 1,2,3",
                                "select * from pEmpAttendanceAllowanceDeductions order by 1,2,3",
                                "select * from pleaveregisterDetail order by 1,2,3"})
            for (const QStringList& r : m.rows(QLatin1String(sql))) all << r.join(QLatin1Char('|'));
        return all;
    };
    MemoryDb a, b;
    qz2::demo::createSchema(a.db());
    qz2::demo::createSchema(b.db());
    qz2::demo::generate(a.db(), kProcessDate);
    qz2::demo::generate(b.db(), kProcessDate);
    const QStringList first = dump(a);
    EXPECT_GT(first.size(), 3000);
    EXPECT_EQ(first, dump(b));
}

TEST(DemoGenerator, ScaleAddsOlderEntriesAndFollowsTheProcessDate) {
    MemoryDb m;
    qz2::demo::createSchema(m.db());
    DemoScale scale;
    scale.employees = 60;
    scale.extraEntries = 30;
    // A process date early in the year: the recent months reach into the previous year.
    ASSERT_NO_THROW(qz2::demo::generate(m.db(), QDate(2027, 2, 3), scale));
    EXPECT_EQ(m.count("select count(*) from pEmployee where eCompanyID=1"), 60);
    EXPECT_EQ(m.count("select count(*) from pEmployeeAttendence where eaCompanyID=1"),
              25 * 3 + 30 + 1);
    EXPECT_EQ(m.count("select count(*) from pEmployeeAttendence where eaCompanyID=1 and "
                      "eaStartDate < '2026-11-01'"),
              30);
    // Numbers still follow the identifiers, and identifiers the periods.
    const auto rows = m.rows(
        "select eaNo,eaStartDate from pEmployeeAttendence where eaCompanyID=1 order by eaID");
    for (std::size_t i = 0; i < rows.size(); ++i) {
        EXPECT_EQ(rows[i].value(0), QStringLiteral("ATT%1").arg(i + 1));
        if (i > 0) {
            EXPECT_LE(rows[i - 1].value(1), rows[i].value(1));
        }
    }
    // Calendars for every year with entries, and the recent months have holidays.
    for (int year : {2026, 2027, 2028})
        EXPECT_EQ(
            m.count(QStringLiteral(
                        "select count(*) from pCalenderHeader where companyid=1 and financialid=%1")
                        .arg(year)),
            1)
            << year;
    for (const char* month : {"2026-11", "2026-12", "2027-01", "2027-02"})
        EXPECT_GE(
            m.count(
                QStringLiteral(
                    "select count(*) from pCalenderDetail where companyid=1 and HolidayDate like "
                    "'%1-%'")
                    .arg(QLatin1String(month))),
            1)
            << month;
    EXPECT_EQ(m.count("select count(*) from pEmployee where eDateofjoin like '2027-02-%'"), 1);
}

TEST(DemoGenerator, RejectsUnusableScaleAndRollsBackOnFailure) {
    MemoryDb m;
    qz2::demo::createSchema(m.db());
    DemoScale tiny;
    tiny.employees = 3;
    EXPECT_THROW(qz2::demo::generate(m.db(), kProcessDate, tiny), std::invalid_argument);
    qz2::demo::generate(m.db(), kProcessDate);
    const int before = m.count("select count(*) from pEmployeeAttendence");
    // A second fill collides with the first one's keys: nothing of it stays.
    EXPECT_THROW(qz2::demo::generate(m.db(), kProcessDate), std::runtime_error);
    EXPECT_EQ(m.count("select count(*) from pEmployeeAttendence"), before);
    EXPECT_EQ(m.count("select count(*) from linktable"), 24);
}

// ---------------------------------------------------------------------------------
// Benchmark volumes

TEST(DemoBenchmark, WritesExactlyTheRequestedCounts) {
    MemoryDb m;
    qz2::demo::createSchema(m.db());
    BenchScale s;
    s.entries = 50;
    s.activeEmployees = 7;
    s.inactiveEmployees = 2;
    s.detailRows = 333;
    s.allowanceRows = 17;
    s.payrollRows = 20;
    s.cancelledEvery = 10;
    ASSERT_NO_THROW(qz2::demo::generateBenchmark(m.db(), kProcessDate, s));
    EXPECT_EQ(m.count("select count(*) from pEmployeeAttendence"), 50);
    EXPECT_EQ(m.count("select count(*) from pEmpAttendanceDetail"), 333);
    EXPECT_EQ(m.count("select count(*) from pEmpAttendanceAllowanceDeductions"), 17);
    EXPECT_EQ(m.count("select count(*) from pMonthlyPayrollProcessing"), 20);
    EXPECT_EQ(m.count("select count(*) from pEmployee where eActive=1"), 7);
    EXPECT_EQ(m.count("select count(*) from pEmployee where eActive=0"), 2);
    EXPECT_EQ(m.count("select count(*) from pEmployeeAttendence where eaCancelled=1"), 5);
    EXPECT_EQ(m.count("select count(distinct eaNo) from pEmployeeAttendence"), 50);
    EXPECT_EQ(m.count("select count(*) from linktable"), 24);
    EXPECT_EQ(m.scalar("select noofPreviousdays from pSettings where companyid=1").toInt(), 0);
    // Details spread evenly: 333 = 50 x 6 + 33.
    EXPECT_EQ(m.rows("select n,count(*) from (select count(*) n from pEmpAttendanceDetail group by "
                     "eadAttendanceID) "
                     "group by n order by n"),
              (std::vector<QStringList>{{"6", "17"}, {"7", "33"}}));
    // Headers go round the active employees, one calendar month each, without overlap.
    EXPECT_EQ(m.count("select count(*) from pEmployeeAttendence a join pEmployee e on "
                      "e.eEmpID=a.eaEmpID where "
                      "e.eActive=0"),
              0);
    EXPECT_EQ(
        m.count(
            "select count(*) from (select eaEmpID,eaStartDate from pEmployeeAttendence group by "
            "eaEmpID,eaStartDate having count(*)>1)"),
        0);
    EXPECT_EQ(m.scalar("select max(eaEndDate) from pEmployeeAttendence").toString(), "2026-10-31");
    EXPECT_EQ(
        m.count(
            "select count(*) from pEmpAttendanceDetail d join pEmployeeAttendence h on "
            "h.eaID=d.eadAttendanceID where d.eadDate not between h.eaStartDate and h.eaEndDate"),
        0);
    // Payroll lags attendance: the latest run is for the month before last.
    EXPECT_EQ(m.scalar("select max(mppPayrollDate) from pMonthlyPayrollProcessing").toString(),
              "2026-09-30");
    EXPECT_EQ(m.count("select count(*) from pMonthlyPayrollProcessing p join pEmployee e on "
                      "e.eEmpID=p.mppEmpID "
                      "where e.eActive=1"),
              20);
    EXPECT_EQ(m.count("select count(*) from pEmpAttendanceAllowanceDeductions where "
                      "(eaadAllowanceID is null) = "
                      "(eaadDeductionID is null)"),
              0);
}

TEST(DemoBenchmark, RejectsUnusableScale) {
    MemoryDb m;
    qz2::demo::createSchema(m.db());
    BenchScale none;
    none.activeEmployees = 0;
    EXPECT_THROW(qz2::demo::generateBenchmark(m.db(), kProcessDate, none), std::invalid_argument);
    BenchScale orphanLines;
    orphanLines.entries = 0;
    orphanLines.detailRows = 10;
    EXPECT_THROW(qz2::demo::generateBenchmark(m.db(), kProcessDate, orphanLines),
                 std::invalid_argument);
    EXPECT_EQ(m.count("select count(*) from pEmployee"), 0);
}

// The full default volumes the benchmarks use come out exactly (timing is the
// benchmarks' business, not a test's).
TEST(DemoBenchmark, FullDefaultVolumes) {
    MemoryDb m;
    qz2::demo::createSchema(m.db());
    qz2::demo::generateBenchmark(m.db(), kProcessDate, BenchScale{});
    EXPECT_EQ(m.count("select count(*) from pEmployeeAttendence"), 100000);
    EXPECT_EQ(m.count("select count(*) from pEmpAttendanceDetail"), 1000000);
    EXPECT_EQ(m.count("select count(*) from pMonthlyPayrollProcessing"), 60000);
    EXPECT_EQ(m.count("select count(*) from pEmployee where eActive=1"), 5000);
}
