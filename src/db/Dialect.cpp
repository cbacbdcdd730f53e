#include "db/Dialect.h"

#include <QSqlDriver>

#include "db/Database.h"
#include "shared/TimeValue.h"

namespace qz2::db {

bool Dialect::isSqliteName(const QString& dbmsName) {
    return dbmsName.startsWith(QLatin1String("SQLite"), Qt::CaseInsensitive);
}

Dialect Dialect::of(const QSqlDatabase& db) {
    if (db.isValid() && db.driver() && db.driver()->dbmsType() == QSqlDriver::SQLite) return sqlite();
    if (db.isValid() && db.driverName().startsWith(QLatin1String("QSQLITE"))) return sqlite();
    // Qt knows no SQLite behind ODBC (it reports an unknown DBMS there): the driver's own
    // name of its DBMS decides. Anything else, an unopened connection included, is the
    // suite's SQL Server.
    if (isSqliteName(dbmsName(db))) return sqlite();
    return sqlServer();
}

QString Dialect::dateText(QDate date, QStringView tsqlPattern) const {
    const TimeValue v = TimeValue::fromDate(date);
    return isSqlServer() ? v.format(tsqlPattern) : v.format(u"yyyy-mm-dd");
}

QString Dialect::glued(qint64 number) const {
    return isSqlServer() ? QString::number(number) : QString::number(number) + QLatin1Char(' ');
}

QString Dialect::daysSinceAtMost(const QString& column, QDate until, int days) const {
    if (isSqlServer())
        return QStringLiteral("DateDiff(dd,%1,'%2')<=%3").arg(column, dateText(until, u"yyyymmdd")).arg(days);
    return QStringLiteral("julianday('%2')-julianday(%1)<=%3").arg(column, dateText(until, u"yyyymmdd")).arg(days);
}

QString Dialect::maxPlusOneDay(const QString& column) const {
    if (isSqlServer()) return QStringLiteral("max(%1)+1").arg(column);
    return QStringLiteral("date(max(%1),'+1 day')").arg(column);
}

QString Dialect::top1(const QString& tsqlText) const {
    if (isSqlServer()) return tsqlText;
    QString text = tsqlText;
    const qsizetype at = text.indexOf(QLatin1String("top 1 "), 0, Qt::CaseInsensitive);
    if (at >= 0) text.remove(at, 6);
    return text + QStringLiteral(" limit 1");
}

QString Dialect::caseless(const QString& column) const {
    return isSqlServer() ? column : column + QStringLiteral(" collate nocase");
}

QString Dialect::isNullFn() const { return isSqlServer() ? QStringLiteral("isnull(") : QStringLiteral("ifnull("); }

QString Dialect::attendanceNumberQuery(const QString& headerTable, qint16 company, const QString& storedPrefix) const {
    // The prefix's length counts its own characters; inside the literals its quotes are
    // doubled, so that a stored prefix such as O'B is matched as written and can never end
    // or change the statement.
    const QString n = QString::number(storedPrefix.size());
    const QString prefix = quotesDoubled(storedPrefix);
    if (isSqlServer()) {
        return QStringLiteral("Select isnull(max(convert(int,right(eaNo,len(eaNo)-") + n + QStringLiteral("))),0) from ") +
               headerTable + QStringLiteral(" where eacompanyid = ") + QString::number(company) +
               QStringLiteral(" and len(eaNo)>len('") + prefix + QStringLiteral("') and ") +
               QStringLiteral(" isnumeric(isnull(right(eano,len(eano)-") + n + QStringLiteral("),0)) =1 and substring(eano,1,len('") +
               prefix + QStringLiteral("'))='") + prefix + QStringLiteral("'");
    }
    // SQLite has no isnumeric: a suffix counts when it is non-empty and made of digits only
    // (GLOB '*[^0-9]*' finds any other character), which is what the T-SQL test accepts for
    // the numbers this module writes. The prefix is compared case-sensitively by substr.
    const QString suffix = QStringLiteral("substr(eaNo,") + QString::number(storedPrefix.size() + 1) + QStringLiteral(")");
    return QStringLiteral("Select ifnull(max(cast(") + suffix + QStringLiteral(" as integer)),0) from ") + headerTable +
           QStringLiteral(" where eacompanyid = ") + QString::number(company) + QStringLiteral(" and length(eaNo)>length('") +
           prefix + QStringLiteral("') and ") + suffix + QStringLiteral(" not glob '*[^0-9]*' and substr(eaNo,1,length('") + prefix +
           QStringLiteral("'))='") + prefix + QStringLiteral("'");
}

Dialect::Call Dialect::workingHoursCall(qint16 company, int dayId) const {
    if (isSqlServer())
        return {QStringLiteral("{call spreturnWorkingHrs(?,?,?)}"), {QVariant(company), QVariant(QStringLiteral("")), QVariant(dayId)}};
    return {QStringLiteral("select WorkingHrs from spreturnWorkingHrs where companyid=? and dayid=?"),
            {QVariant(company), QVariant(dayId)}};
}

}  // namespace qz2::db
