#include "entry/StatementCache.h"

namespace qz2::entry {

QString StatementCache::key(const QString& sql, const QVector<QVariant>& values) {
    QString k = sql;
    for (const QVariant& v : values)
        k += QLatin1Char('\x1f') + QString::fromLatin1(v.typeName()) + QLatin1Char(':') + v.toString();
    return k;
}

db::Recordset StatementCache::open(const QSqlDatabase& db, const QString& sql, const QVector<QVariant>& values) {
    const QString k = key(sql, values);
    auto found = m_rows.constFind(k);
    if (found == m_rows.constEnd()) found = m_rows.insert(k, db::openRecordset(db, sql, values));
    db::Recordset rows = found.value();
    rows.moveFirst();
    return rows;
}

}  // namespace qz2::entry
