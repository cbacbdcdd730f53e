#include "entry/SaveSql.h"

#include <QDateTime>
#include <QTime>
#include <atomic>
#include <cmath>

#include "rules/Saving.h"
#include "shared/BasAttendence.h"

namespace qz2::entry::savesql {

namespace {
QString n(qint64 value) {
    return QString::number(value);
}
std::atomic<qint64> g_preparations{0};
}  // namespace

void InsertCommand::execute(const QVector<QVariant>& values) {
    // db::Command prepares on its first execution and reuses the statement afterwards.
    if (!m_prepared) {
        m_prepared = true;
        ++g_preparations;
    }
    m_command.execute(values);
}

qint64 insertPreparations() {
    return g_preparations.load();
}

QString deleteAllowanceLines(qint16 company, qint32 oldId) {
    return QStringLiteral(" Delete from ") + LinkedTableNames.pEmpAttendanceAllowanceDeductions +
           QStringLiteral(" where ") + QStringLiteral(" eaadCompanyID= ") + n(company) +
           QStringLiteral(" And ") + QStringLiteral(" eaadAttendanceID= ") + n(oldId);
}

QString deleteDetailLines(qint16 company, qint32 oldId) {
    return QStringLiteral(" Delete from ") + LinkedTableNames.pEmpAttendanceDetail +
           QStringLiteral(" where ") + QStringLiteral(" eadCompanyID= ") + n(company) +
           QStringLiteral(" And ") + QStringLiteral(" eadAttendanceID= ") + n(oldId);
}

QString deleteHeader(qint16 company, qint32 oldId) {
    return QStringLiteral(" Delete from ") + LinkedTableNames.pEmployeeAttendence +
           QStringLiteral(" where ") + QStringLiteral(" eaCompanyID= ") + n(company) +
           QStringLiteral(" And ") + QStringLiteral(" eaID= ") + n(oldId);
}

QString overlappingEntryQuery(const db::Dialect& d, qint16 company, qint32 employee, QDate start,
                              QDate end, std::optional<qint32> editedId) {
    const QString lock = d.isSqlServer() ? QStringLiteral(" with (updlock, holdlock)") : QString();
    QString sql = QStringLiteral("Select top 1 eaNo,eaStartDate,eaEndDate from ") +
                  LinkedTableNames.pEmployeeAttendence + lock +
                  QStringLiteral(" where eaCompanyID=") + n(company) +
                  QStringLiteral(" and eaEmpID=") + n(employee) +
                  QStringLiteral(" and eaCancelled=0 and eaStartDate<='") +
                  d.dateText(end, u"yyyymmdd") + QStringLiteral("' and eaEndDate>='") +
                  d.dateText(start, u"yyyymmdd") + QStringLiteral("'");
    if (editedId) sql += QStringLiteral(" and eaID<>") + n(*editedId);
    sql += QStringLiteral(" order by eaStartDate");
    return d.top1(sql);
}

QString attendanceNoTakenQuery(qint16 company, const QString& attendanceNo) {
    return QStringLiteral("Select count(*) from ") + LinkedTableNames.pEmployeeAttendence +
           QStringLiteral(" where eaCompanyID=") + n(company) + QStringLiteral(" and eaNo='") +
           db::quotesDoubled(attendanceNo) +
           QStringLiteral("'");
}

QStringList storedHeaderFingerprint(const db::Recordset& header) {
    return header.eof() ? QStringList() : rules::headerFingerprint(header.fieldNames(), header.row(0));
}

QString headerInsert() {
    return QStringLiteral("insert into ") + LinkedTableNames.pEmployeeAttendence +
           QStringLiteral("(eaCompanyID,eaID,eaNo,eaDate,eaEmpID,eaPresent,eaLeaves,eaAbsent, ") +
           QStringLiteral(" eaCancelled,eaStartDate,eaEndDate,eacwtsid,eaRemarks,eaPerHourRate)") +
           QStringLiteral(" Values(?,?,?,?,?,?,?,?,?,?,?,?,?,?)");
}

QString detailInsert() {
    return QStringLiteral("insert into ") + LinkedTableNames.pEmpAttendanceDetail +
           QStringLiteral(
               "(eadCompanyID,eadAttendanceID,eadDetailID,eadDate,eadType,eadCheckIN,eadCheckOut)"
               " ") +
           QStringLiteral(" Values(?,?,?,?,?,?,?)");
}

QString allowanceInsert() {
    return QStringLiteral("insert into ") + LinkedTableNames.pEmpAttendanceAllowanceDeductions +
           QStringLiteral(" (eaadCompanyID,eaadAttendanceID,eaadDetailID,eaadDate,") +
           QStringLiteral(" eaadHours,eaadAllowanceID,eaadDeductionID)") +
           QStringLiteral(" Values(?,?,?,?,?,?,?)");
}

QString currencyHeadsQuery(qint32 employee, qint16 company) {
    return QStringLiteral("Select Overtimeallowanceid,latecomingdedid From ") +
           LinkedTableNames.pCurrencyallowdeddetails + QStringLiteral(" R,pEmployee E where ") +
           QStringLiteral(" E.ecurrencyid= R.CurrencyID And ") + QStringLiteral(" e.eEmpID= ") +
           n(employee) + QStringLiteral(" And ") + QStringLiteral(" companyID = ") + n(company);
}

QString rateSettingCondition(qint16 company) {
    return QStringLiteral("companyid=") + n(company);
}

QString employeeRateCondition(qint16 company, qint32 employee) {
    return QStringLiteral("ecompanyid=") + n(company) + QStringLiteral(" And eEmpID=") +
           n(employee);
}

std::optional<QString> lockWaitQuery(const db::Dialect& d) {
    if (d.isSqlServer()) return std::nullopt;
    return QStringLiteral("PRAGMA busy_timeout");
}

std::optional<QString> setLockWait(const db::Dialect& d, int milliseconds) {
    if (d.isSqlServer()) return std::nullopt;
    return QStringLiteral("PRAGMA busy_timeout = ") + n(milliseconds);
}

QVariant dateValue(const db::Dialect& d, QDate date) {
    if (d.isSqlServer()) return QDateTime(date, QTime(0, 0));
    return TimeValue::fromDate(date).format(u"yyyy-mm-dd");
}

QVariant timeValue(const db::Dialect& d, TimeValue time) {
    const QTime t = time.timeOfDay();
    const QTime minutes(t.hour(), t.minute());  // only hours and minutes are kept
    if (d.isSqlServer()) return QDateTime(QDate(1899, 12, 30), minutes);
    return minutes.toString(QStringLiteral("HH:mm:ss"));
}

QVariant noTime(const db::Dialect& d) {
    return d.isSqlServer() ? QVariant(QMetaType::fromType<QDateTime>())
                           : QVariant(QMetaType::fromType<QString>());
}

QVariant noNumber() {
    return QVariant(QMetaType::fromType<int>());
}

QVariant noText() {
    return QVariant(QMetaType::fromType<QString>());
}

QString headerQuery(const db::Dialect& d, qint16 company, const QString& id) {
    return QStringLiteral("select * from ") + LinkedTableNames.pEmployeeAttendence +
           QStringLiteral(" where eacompanyid=") + d.glued(company) + QStringLiteral("and eaid=") +
           id;
}

QString detailLinesQuery(qint16 company, const QString& id) {
    return QStringLiteral(
               "Select eadDetailID,eadDate,eadType,eadCheckIn,eadCheckOut from "
               "pEmpAttendanceDetail where "
               "eadCompanyID= ") +
           n(company) + QStringLiteral(" And ") + QStringLiteral("eadAttendanceID= ") + id;
}

QString entryDaysQuery(qint16 company, const QString& id) {
    return QStringLiteral(" Select Distinct eadDate,eadType from pEmpAttendanceDetail where ") +
           QStringLiteral(" eadAttendanceID= ") + id + QStringLiteral(" And eadCompanyID= ") +
           n(company) + QStringLiteral(" Order by eadDate");
}

QString allowanceLinesQuery(qint16 company, const QString& id) {
    return QStringLiteral(" Select eaadDate,eaadHours,eaadAllowanceID,eaadDeductionID from ") +
           LinkedTableNames.pEmpAttendanceAllowanceDeductions + QStringLiteral(" where ") +
           QStringLiteral(" eaadAttendanceID= ") + id + QStringLiteral(" And ") +
           QStringLiteral(" eaadCompanyID= ") + n(company);
}

}  // namespace qz2::entry::savesql
