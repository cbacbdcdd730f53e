#include "entry/EntrySql.h"

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

QString holidayListQuery(const db::Dialect& d, qint16 company, QDate start, QDate end,
                         const QString& calendarCondition) {
    return QStringLiteral("Select a.HolidayDate from ") + LinkedTableNames.pCalenderDetail +
           QStringLiteral(" a,") + LinkedTableNames.pCalenderHeader +
           QStringLiteral(
               " b where a.companyid=b.companyid and a.CalenderID=b.CalenderID and a.companyID "
               "= ") +
           num(company) + QStringLiteral(" And a.HolidayDate <= '") +
           d.dateText(end, u"mm/dd/yyyy") + QStringLiteral("' And a.HolidayDate >= '") +
           d.dateText(start, u"mm/dd/yyyy") + QStringLiteral("'") + calendarCondition;
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

QString workingHoursStatement(const db::Dialect& d, qint16 company, int dayId) {
    const db::Dialect::Call call = d.workingHoursCall(company, dayId);
    QString text;
    qsizetype next = 0;
    for (const QChar c : call.sql) {
        if (c != QLatin1Char('?') || next >= call.values.size()) {
            text += c;
            continue;
        }
        const QVariant& v = call.values[next++];
        if (v.isNull() && v.typeId() != QMetaType::QString)
            text += QStringLiteral("NULL");
        else if (v.typeId() == QMetaType::QString)
            text += QLatin1Char('\'') +
                    v.toString().replace(QLatin1Char('\''), QStringLiteral("''")) +
                    QLatin1Char('\'');
        else
            text += v.toString();
    }
    return text;
}

QString prefixQuery(qint32 interfaceId, qint16 company) {
    return QStringLiteral("SELECT Prefix FROM ") + LinkedTableNames.pPrefix +
           QStringLiteral(" WHERE InterfaceID = ") + num(interfaceId) +
           QStringLiteral(" and companyid=") + num(company);
}

}  // namespace qz2::entry::sql
