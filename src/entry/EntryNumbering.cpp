#include "entry/EntryNumbering.h"

#include "db/Database.h"
#include "db/Dialect.h"
#include "entry/EntryRules.h"
#include "entry/EntrySql.h"
#include "shared/BasAttendence.h"

namespace qz2 {

namespace entry {

QString generateAttendanceNo(const QSqlDatabase& db, qint16 company, qint32 interfaceId) {
    QString prefix;
    const db::Recordset rs = db::openRecordset(db, sql::prefixQuery(interfaceId, company));
    if (!rs.eof() && !rs.isNull(QStringLiteral("Prefix")))
        prefix = rs.field(QStringLiteral("Prefix")).toString();
    const QVariant highest =
        db::scalar(db, db::Dialect::of(db).attendanceNumberQuery(
                           LinkedTableNames.pEmployeeAttendence, company, prefix));
    return composeAttendanceNo(prefix, highest.toString());
}

}  // namespace entry

}  // namespace qz2
