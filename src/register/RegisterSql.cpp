#include "register/RegisterSql.h"

#include "db/Database.h"
#include "shared/BasAttendence.h"

namespace qz2::sql {

namespace {
QString n(qint64 v) { return QString::number(v); }
QString quoted(const QString& text) { return db::quotesDoubled(text); }
}  // namespace

QString masterFromClause() {
    return LinkedTableNames.pEmployeeAttendence + QStringLiteral(" EA,") + LinkedTableNames.pemployee + QStringLiteral(" E");
}

QString masterQuery(const db::Dialect& d, qint16 company, int days, QDate processDate) {
    QString q = QStringLiteral("select EA.eaID,EA.eaNo,EA.eaDate,E.ename,") +
                QStringLiteral(" case when EA.eacancelled=1 then 'Yes' else 'No' end eacancelled ") + QStringLiteral(" from ") +
                masterFromClause() + QStringLiteral("  Where EA.eacompanyid=E.ecompanyid  ") +
                QStringLiteral("and  EA.eaempid=E.eempid and EA.eaCompanyid  = ") + n(company);
    if (days > 0) q += QStringLiteral(" and ") + d.daysSinceAtMost(QStringLiteral("eaDate"), processDate, days);
    return q;
}

QString headingQuery(const QString& table) {
    return QStringLiteral("select tc.columnheader,tc.columnname from ") + LinkedTableNames.ptables +
           QStringLiteral("  t, ") + LinkedTableNames.ptablecolumns +
           QStringLiteral("  tc where t.tableid = tc.tableid and tablename ='") + table + QStringLiteral("' order by columnid");
}

QString rightsQuery(qint16 user, qint32 interfaceId) {
    return QStringLiteral("select functionrights from ") + LinkedTableNames.puserrights + QStringLiteral(" where userid = ") +
           n(user) + QStringLiteral(" and interfaceid = ") + n(interfaceId);
}

QString monthlyLockQuery(qint16 company, const QString& id) {
    return QStringLiteral(
               "Select count(1) from pEmpMonthlyEntryHeader a,pEmployeeAttendence b where a.emhCompanyID =b.eaCompanyID and ") +
           QStringLiteral(
               "a.emhEmpID=b.eaEmpID and emhCancelled=0 and (a.emhStartDate between b.eaStartDate and b.eaEndDate or ") +
           QStringLiteral("a.emhendDate between b.eaStartDate and b.eaEndDate ) and a.emhCompanyID=") + n(company) +
           QStringLiteral(" and b.eaCompanyID=") + n(company) + QStringLiteral(" and b.eaID=") + id;
}

QString refreshQuery(const QString& master, const QString& condition) {
    QString q = master;
    const qsizetype at = q.indexOf(QLatin1String("order by"));
    if (at >= 0) q = q.left(at);
    if (q.contains(QLatin1String("where"), Qt::CaseInsensitive))
        q += QStringLiteral(" and ") + condition;
    else
        q += QStringLiteral(" where ") + condition;
    return q;
}

QString cancelUserNameQuery(qint16 company, qint16 user) {
    return QStringLiteral("select username from pusers where companyid=") + n(company) + QStringLiteral(" and userid=") +
           n(user);
}

QString cancelEmployeeQuery(const QString& id, qint16 company) {
    return QStringLiteral("select eaEmpID from pEmployeeattendence where eaId='") + id +
           QStringLiteral("' and eaCompanyid=") + n(company);
}

QString cancelledFlagQuery(const QString& id, qint16 company) {
    return QStringLiteral("select eacancelled from pEmployeeattendence where eaId='") + id +
           QStringLiteral("' and eaCompanyid=") + n(company);
}

std::optional<QString> cancelLockQuery(const db::Dialect& d, const QString& id, qint16 company) {
    if (!d.isSqlServer()) return std::nullopt;
    return QStringLiteral("select eacancelled from pEmployeeattendence with (updlock, holdlock) where eaId='") + id +
           QStringLiteral("' and eaCompanyid=") + n(company);
}

QString cancelUpdate(const QString& remarks, const QString& id, qint16 company) {
    return QStringLiteral("update pEmployeeattendence set eacancelled=1,eaCancelledRemarks='") + quoted(remarks) +
           QStringLiteral("' where eaId='") + id + QStringLiteral("' and eaCompanyid=") + n(company);
}

}  // namespace qz2::sql
