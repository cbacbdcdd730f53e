#include "entry/EntrySql.h"

#include "entry/StatementCache.h"
#include "shared/BasAttendence.h"

namespace qz2::entry::sql {

namespace {
QString num(qint64 n) {
    return QString::number(n);
}

// The select list shared by the two day-schedule statements.
QString schedulePairs() {
    return QStringLiteral(
               "a.cwtsDayID,a.cwtsCheckIn1,a.cwtsCheckOut1,a.cwtsCheckIn2,a.cwtsCheckOut2, ") +
           QStringLiteral("a.cwtsCheckIn3,a.cwtsCheckOut3,a.cwtsCheckIn4,a.cwtsCheckOut4 ");
}

// " from <lines> a,<header> b where <join> And a.cwtsDayID=<day> and a.cwtsCompanyID= <company>"
QString workTimeFromWhere(qint16 dayId, qint16 company) {
    return QStringLiteral(" from ") + LinkedTableNames.pCalendarWorkTimeSettings +
           QStringLiteral(" a,") + LinkedTableNames.pCalendarWTSheader +
           QStringLiteral(
               " b where a.cwtscompanyid=b.cwtsCompanyID and a.cwtsid=b.cwtsid And a.cwtsDayID=") +
           num(dayId) + QStringLiteral(" and a.cwtsCompanyID= ") + num(company);
}
}  // namespace

QString employeeListCondition(const db::Dialect& d, qint16 company) {
    return QStringLiteral("eCompanyID=") + d.glued(company) + QStringLiteral("And eActive = ") +
           QStringLiteral("1");
}

QString employeeNumbersQuery(qint16 company) {
    return QStringLiteral("select eEmpID,eEmpNo from ") + LinkedTableNames.pemployee +
           QStringLiteral(" where eCompanyID=") + num(company) + QStringLiteral(" and eActive = 1");
}

QString departmentSwitchesQuery(qint16 company) {
    return QStringLiteral("select calendardepwise,cwtsdepwise from ") + LinkedTableNames.pSettings +
           QStringLiteral(" where companyid=") + num(company);
}

QString employeeDepartmentQuery(qint16 company, qint32 employee) {
    return QStringLiteral("select a.eDateofjoin,b.DepartmentID,b.DepartmentName from ") +
           LinkedTableNames.pemployee + QStringLiteral(" a,") + LinkedTableNames.pDepartment +
           QStringLiteral(
               " b where a.eDeptID = b.DepartmentID and a.eCompanyID=b.CompanyID and "
               "a.eCompanyID=") +
           num(company) + QStringLiteral(" and eEmpID=") + num(employee);
}

QString calendarDepartmentCondition(qint32 department) {
    return QStringLiteral(" and departmentid=") + num(department);
}

QString workTimeDepartmentCondition(qint32 department) {
    return QStringLiteral(" and cwtsdepartmentid=") + num(department);
}

QString nextPeriodStartQuery(const db::Dialect& d, qint16 company, qint32 employee) {
    return QStringLiteral("Select ") + d.maxPlusOneDay(QStringLiteral("eaEndDate")) +
           QStringLiteral(" from ") + LinkedTableNames.pEmployeeAttendence +
           QStringLiteral(" where eaCancelled=0 and eaCompanyID=") + num(company) +
           QStringLiteral(" And eaEmpID=") + num(employee);
}

QString payMonthStartQuery(qint16 company, int month) {
    return QStringLiteral("select startdate PayRollDay from vwPaymonthvsdate where companyid=") +
           num(company) + QStringLiteral(" and paymonth=") + num(month);
}

QString calendarCountQuery(qint16 company, const QString& calendarCondition, int year) {
    return QStringLiteral("Select count(*) from ") + LinkedTableNames.pCalenderHeader +
           QStringLiteral(" where companyID = ") + num(company) + calendarCondition +
           QStringLiteral(" and financialid =") + num(year);
}

QString monthlyEntryOverlapQuery(const db::Dialect& d, qint32 employee, QDate start, QDate end) {
    const QString s = d.dateText(start, u"yyyymmdd");
    const QString e = d.dateText(end, u"yyyymmdd");
    return QStringLiteral("select count(*) from ") + LinkedTableNames.pEmpMonthlyEntryHeader +
           QStringLiteral(" where emhempID=") + num(employee) +
           QStringLiteral(" and emhcancelled=0 and (emhstartdate between '") + s +
           QStringLiteral("' and '") + e + QStringLiteral("' or emhenddate between '") + s +
           QStringLiteral("' and '") + e + QStringLiteral("')");
}

QString workTimeSettingQuery(qint16 company, const QString& workTimeCondition) {
    return QStringLiteral("Select max(a.cwtsid) ") + QStringLiteral(" from ") +
           LinkedTableNames.pCalendarWorkTimeSettings + QStringLiteral(" a,") +
           LinkedTableNames.pCalendarWTSheader +
           QStringLiteral(" b where a.cwtscompanyid=b.cwtsCompanyID and a.cwtsid=b.cwtsid ") +
           QStringLiteral(" and a.cwtsCompanyID= ") + num(company) + workTimeCondition;
}

namespace {
// "Select a.HolidayDate ... And a.HolidayDate <= '<end>' And a.HolidayDate >= '<start>'" and
// the condition; each bound in its own pattern, as the two callers write them differently.
QString holidaysBetween(qint16 company, const QString& endText, const QString& startText,
                        const QString& calendarCondition) {
    return QStringLiteral("Select a.HolidayDate from ") + LinkedTableNames.pCalenderDetail +
           QStringLiteral(" a,") + LinkedTableNames.pCalenderHeader +
           QStringLiteral(
               " b where a.companyid=b.companyid and a.CalenderID=b.CalenderID and a.companyID "
               "= ") +
           num(company) + QStringLiteral(" And a.HolidayDate <= '") + endText +
           QStringLiteral("' And a.HolidayDate >= '") + startText + QStringLiteral("'") +
           calendarCondition;
}
}  // namespace

QString holidayQuery(const db::Dialect& d, qint16 company, QDate start, QDate end,
                     const QString& calendarCondition) {
    return holidaysBetween(company, d.dateText(end, u"YYYYMMDD"), d.dateText(start, u"yyyymmdd"),
                           calendarCondition);
}

QString holidayListQuery(const db::Dialect& d, qint16 company, QDate start, QDate end,
                         const QString& calendarCondition) {
    return holidaysBetween(company, d.dateText(end, u"mm/dd/yyyy"),
                           d.dateText(start, u"mm/dd/yyyy"), calendarCondition);
}

QString approvedLeaveQuery(const db::Dialect& d, qint32 employee, QDate start, QDate end) {
    const QString s = d.dateText(start, u"yyyy/mm/dd");
    const QString e = d.dateText(end, u"yyyy/mm/dd");
    return QStringLiteral("select lrdFromDate,lrdToDate,Status,lrdNoofDays from ") +
           QStringLiteral("(select lh.lrhempid,ld.lrdLeaveID,ld.lrdID,ld.lrdCompanyID,") +
           QStringLiteral("case when ld.lrdFromDate<'") + s + QStringLiteral("' then '") + s +
           QStringLiteral("' else ld.lrdFromDate end lrdFromDate,") +
           QStringLiteral("case when ld.lrdToDate>'") + e + QStringLiteral("' then '") + e +
           QStringLiteral("' else ld.lrdToDate end lrdToDate,lrdNoofDays ") +
           QStringLiteral("from ") + LinkedTableNames.pleaveregisterheader +
           QStringLiteral(" lh,") + LinkedTableNames.pleaveregisterDetail + QStringLiteral(" ld ") +
           QStringLiteral(
               "where lh.lrhCompanyID = ld.lrdCompanyID and lh.lrhID = ld.lrdID and "
               "lh.lrhcancelled =0) Nd,") +
           QStringLiteral("(select lchcompanyid, lcdlrdid, lcdlrdleaveid, status ") +
           QStringLiteral("from ") + LinkedTableNames.pLeaveCancellationHeader +
           QStringLiteral(" ch, ") + LinkedTableNames.pleavecancellationdetail +
           QStringLiteral(" cd ") +
           QStringLiteral(
               "where ch.lchcompanyid = cd.lcdcompanyid and ch.lchid = cd.lcdid and "
               "ch.lchcancelled =0) ls ") +
           QStringLiteral(
               ",pleaves lm Where nd.lrdCompanyID = ls.lchcompanyid And nd.lrdid = "
               "ls.lcdlrdid ") +
           QStringLiteral("and nd.lrdleaveid = ls.lcdlrdleaveid  and ") +
           d.caseless(QStringLiteral("ls.status")) + QStringLiteral(" ='s' and ") +
           QStringLiteral(
               "nd.lrdCompanyID = lm.lCompanyID And nd.lrdLeaveID = lm.lLeaveID and "
               "nd.lrhempid=") +
           num(employee) + QStringLiteral(" and nd.lrdToDate>='") + s +
           QStringLiteral("' and nd.lrdFromDate<='") + e + QStringLiteral("'");
}

QString dayScheduleQuery(qint16 dayId, qint16 company, qint32 settingId,
                         const QString& workTimeCondition) {
    return QStringLiteral("Select ") + schedulePairs() + workTimeFromWhere(dayId, company) +
           QStringLiteral(" And a.cwtsid = ") + num(settingId) + workTimeCondition;
}

QString newestDayScheduleQuery(const db::Dialect& d, qint16 dayId, qint16 company,
                               const QString& workTimeCondition) {
    return d.top1(QStringLiteral("Select top 1 ") + schedulePairs() +
                  workTimeFromWhere(dayId, company) + workTimeCondition +
                  QStringLiteral(" order by  a.cwtsid desc"));
}

QString firstCheckInQuery(qint16 dayId, qint16 company, qint32 settingId,
                          const QString& workTimeCondition) {
    return QStringLiteral("Select a.cwtsCheckIn1 ") + workTimeFromWhere(dayId, company) +
           QStringLiteral(" And a.cwtsid = ") + num(settingId) + workTimeCondition;
}

QString prefixQuery(qint32 interfaceId, qint16 company) {
    return QStringLiteral("SELECT Prefix FROM ") + LinkedTableNames.pPrefix +
           QStringLiteral(" WHERE InterfaceID = ") + num(interfaceId) +
           QStringLiteral(" and companyid=") + num(company);
}

}  // namespace qz2::entry::sql

namespace qz2::entry {

bool isMonthlyEntryOverlapping(const QSqlDatabase& db, qint32 employee, QDate start, QDate end) {
    return db::scalar(db, sql::monthlyEntryOverlapQuery(db::Dialect::of(db), employee, start, end))
               .toLongLong() > 0;
}

namespace {
bool g_bypassCache = false;
}  // namespace

db::Recordset openCached(StatementCache& cache, const QSqlDatabase& db, const QString& sql,
                         const QVector<QVariant>& values) {
    if (g_bypassCache) cache.clear();
    return cache.open(db, sql, values);
}

namespace testing {
void setStatementCacheBypassed(bool on) {
    g_bypassCache = on;
}
bool statementCacheBypassed() {
    return g_bypassCache;
}
}  // namespace testing

}  // namespace qz2::entry
