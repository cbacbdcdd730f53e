#include "entry/StatementCache.h"

namespace qz2::entry {

db::Recordset StatementCache::open(const QSqlDatabase& db, const QString& sql) {
    auto found = m_rows.constFind(sql);
    if (found == m_rows.constEnd()) found = m_rows.insert(sql, db::openRecordset(db, sql));
    db::Recordset rows = found.value();
    rows.moveFirst();
    return rows;
}

}  // namespace qz2::entry
