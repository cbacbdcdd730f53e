#include "reports/ReportSql.h"

#include "db/Database.h"
#include "shared/BasAttendence.h"

namespace qz2::reports::sql {

namespace {

QString num(qint64 n) {
    return QString::number(n);
}

QString dateLit(const db::Dialect& d, QDate date) {
    return QLatin1Char('\'') + d.dateText(date, u"yyyymmdd") + QLatin1Char('\'');
}

QString departmentFilter(const Scope& s) {
    return s.department ? QStringLiteral(" and E.eDeptID = ") + num(*s.department) : QString();
}

// The headers of live entries of the scope's employees that overlap the period, joined to
// their employee: the FROM and WHERE shared by every period statement.
QString liveFromWhere(const db::Dialect& d, const Scope& s, const QString& extraTable) {
    return QStringLiteral(" from ") + extraTable + LinkedTableNames.pEmployeeAttendence +
           QStringLiteral(" EA, ") + LinkedTableNames.pemployee +
           QStringLiteral(" E where EA.eaCompanyID = E.eCompanyID and EA.eaEmpID = E.eEmpID") +
           QStringLiteral(" and EA.eaCompanyID = ") + num(s.company) +
           QStringLiteral(" and EA.eaCancelled = 0") + departmentFilter(s) +
           QStringLiteral(" and EA.eaStartDate <= ") + dateLit(d, s.to) +
           QStringLiteral(" and EA.eaEndDate >= ") + dateLit(d, s.from);
}

}  // namespace

QString quoted(const QString& text) {
    return QLatin1Char('\'') + db::quotesDoubled(text) + QLatin1Char('\'');
}

QString departmentQuery(qint16 company, qint32 department) {
    return QStringLiteral("select DepartmentID, DepartmentName from ") +
           LinkedTableNames.pDepartment + QStringLiteral(" where CompanyID = ") + num(company) +
           QStringLiteral(" and DepartmentID = ") + num(department);
}

QString departmentsQuery(qint16 company) {
    return QStringLiteral("select DepartmentID, DepartmentName from ") +
           LinkedTableNames.pDepartment + QStringLiteral(" where CompanyID = ") + num(company) +
           QStringLiteral(" order by DepartmentName");
}

QString musterEmployeesQuery(const db::Dialect& d, const Scope& s) {
    return QStringLiteral("select E.eEmpID, E.eEmpNo, E.eName, E.eDeptID, D.DepartmentName from ") +
           LinkedTableNames.pemployee + QStringLiteral(" E left join ") +
           LinkedTableNames.pDepartment +
           QStringLiteral(
               " D on D.DepartmentID = E.eDeptID and D.CompanyID = E.eCompanyID where E.eCompanyID "
               "= ") +
           num(s.company) + departmentFilter(s) +
           QStringLiteral(" and (E.eActive = 1 or exists (select EA.eaID from ") +
           LinkedTableNames.pEmployeeAttendence +
           QStringLiteral(
               " EA where EA.eaCompanyID = E.eCompanyID and EA.eaEmpID = E.eEmpID and "
               "EA.eaCancelled = 0") +
           QStringLiteral(" and EA.eaStartDate <= ") + dateLit(d, s.to) +
           QStringLiteral(" and EA.eaEndDate >= ") + dateLit(d, s.from) +
           QStringLiteral(")) order by E.eEmpNo, E.eEmpID");
}

QString liveHeadersQuery(const db::Dialect& d, const Scope& s) {
    return QStringLiteral(
               "select EA.eaID, EA.eaNo, EA.eaDate, EA.eaEmpID, EA.eaStartDate, EA.eaEndDate, "
               "EA.eacwtsid,"
               " E.eEmpNo, E.eName, E.eDeptID, D.DepartmentName") +
           QStringLiteral(" from ") + LinkedTableNames.pEmployeeAttendence +
           QStringLiteral(" EA inner join ") + LinkedTableNames.pemployee +
           QStringLiteral(
               " E on EA.eaCompanyID = E.eCompanyID and EA.eaEmpID = E.eEmpID left join ") +
           LinkedTableNames.pDepartment +
           QStringLiteral(
               " D on D.DepartmentID = E.eDeptID and D.CompanyID = E.eCompanyID where "
               "EA.eaCompanyID = ") +
           num(s.company) + QStringLiteral(" and EA.eaCancelled = 0") + departmentFilter(s) +
           QStringLiteral(" and EA.eaStartDate <= ") + dateLit(d, s.to) +
           QStringLiteral(" and EA.eaEndDate >= ") + dateLit(d, s.from) +
           QStringLiteral(" order by E.eEmpNo, E.eEmpID, EA.eaStartDate, EA.eaID");
}

QString liveDetailsQuery(const db::Dialect& d, const Scope& s) {
    return QStringLiteral(
               "select AD.eadAttendanceID, AD.eadDate, AD.eadType, AD.eadCheckIN, AD.eadCheckOut") +
           liveFromWhere(d, s, LinkedTableNames.pEmpAttendanceDetail + QStringLiteral(" AD, ")) +
           QStringLiteral(
               " and AD.eadCompanyID = EA.eaCompanyID and AD.eadAttendanceID = EA.eaID") +
           QStringLiteral(" and AD.eadDate >= ") + dateLit(d, s.from) +
           QStringLiteral(" and AD.eadDate <= ") + dateLit(d, s.to);
}

QString liveClaimsQuery(const db::Dialect& d, const Scope& s) {
    return QStringLiteral(
               "select AC.eaadAttendanceID, AC.eaadDate, AC.eaadHours, AC.eaadAllowanceID, "
               "AC.eaadDeductionID") +
           liveFromWhere(
               d, s, LinkedTableNames.pEmpAttendanceAllowanceDeductions + QStringLiteral(" AC, ")) +
           QStringLiteral(
               " and AC.eaadCompanyID = EA.eaCompanyID and AC.eaadAttendanceID = EA.eaID") +
           QStringLiteral(" and AC.eaadDate >= ") + dateLit(d, s.from) +
           QStringLiteral(" and AC.eaadDate <= ") + dateLit(d, s.to);
}

QString workTimeQuery(qint16 company) {
    return QStringLiteral(
               "select a.cwtsid, a.cwtsDayID, a.cwtsCheckIn1, a.cwtsCheckOut1, a.cwtsCheckIn2, "
               "a.cwtsCheckOut2,"
               " a.cwtsCheckIn3, a.cwtsCheckOut3, a.cwtsCheckIn4, a.cwtsCheckOut4 from ") +
           LinkedTableNames.pCalendarWorkTimeSettings +
           QStringLiteral(" a where a.cwtsCompanyID = ") + num(company);
}

QString graceTimeQuery(qint16 company) {
    return QStringLiteral("select gracetime from ") + LinkedTableNames.pSettings +
           QStringLiteral(" where companyid = ") + num(company);
}

QString entryHeaderQuery(qint16 company, const QString& entryNo) {
    return QStringLiteral(
               "select EA.eaID, EA.eaNo, EA.eaDate, EA.eaEmpID, EA.eaStartDate, EA.eaEndDate, "
               "EA.eacwtsid,"
               " E.eEmpNo, E.eName, E.eDeptID, D.DepartmentName, EA.eaPresent, EA.eaLeaves, "
               "EA.eaAbsent,"
               " EA.eaCancelled, EA.eaRemarks, EA.eaCancelledRemarks from ") +
           LinkedTableNames.pEmployeeAttendence + QStringLiteral(" EA inner join ") +
           LinkedTableNames.pemployee +
           QStringLiteral(
               " E on EA.eaCompanyID = E.eCompanyID and EA.eaEmpID = E.eEmpID left join ") +
           LinkedTableNames.pDepartment +
           QStringLiteral(
               " D on D.DepartmentID = E.eDeptID and D.CompanyID = E.eCompanyID where "
               "EA.eaCompanyID = ") +
           num(company) + QStringLiteral(" and EA.eaNo = ") + quoted(entryNo) +
           QStringLiteral(" order by EA.eaID");
}

QString entryDetailsQuery(qint16 company, qint32 entryId) {
    return QStringLiteral(
               "select AD.eadAttendanceID, AD.eadDate, AD.eadType, AD.eadCheckIN, AD.eadCheckOut "
               "from ") +
           LinkedTableNames.pEmpAttendanceDetail + QStringLiteral(" AD where AD.eadCompanyID = ") +
           num(company) + QStringLiteral(" and AD.eadAttendanceID = ") + num(entryId) +
           QStringLiteral(" order by AD.eadDate, AD.eadDetailID");
}

QString entryClaimsQuery(qint16 company, qint32 entryId) {
    return QStringLiteral(
               "select AC.eaadAttendanceID, AC.eaadDate, AC.eaadHours, AC.eaadAllowanceID, "
               "AC.eaadDeductionID from ") +
           LinkedTableNames.pEmpAttendanceAllowanceDeductions +
           QStringLiteral(" AC where AC.eaadCompanyID = ") + num(company) +
           QStringLiteral(" and AC.eaadAttendanceID = ") + num(entryId) +
           QStringLiteral(" order by AC.eaadDate, AC.eaadDetailID");
}

}  // namespace qz2::reports::sql
