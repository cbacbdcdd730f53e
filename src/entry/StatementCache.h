#pragma once
// Results of read-only statements kept for the life of one entry form. A period asks the
// same weekday's schedule again and again (four or five times a month, once per day for
// the pairs, once for the hours and once per check-in for the grace time); the rows only
// change when the clerk picks another employee or the work-time setting changes, and the
// form clears the cache then. Keyed by the statement's exact text, so two statements that
// differ in any character never share rows.

#include <QHash>
#include <QSqlDatabase>
#include <QString>

#include "db/Database.h"

namespace qz2::entry {

class StatementCache {
public:
    // The statement's rows, positioned on the first; the database is asked only the first
    // time a text (with the same positional values, if any) is seen. A failing statement
    // throws (db::DbError) and is not kept.
    db::Recordset open(const QSqlDatabase& db, const QString& sql, const QVector<QVariant>& values = {});
    void clear() { m_rows.clear(); }
    int size() const { return static_cast<int>(m_rows.size()); }
    bool contains(const QString& sql, const QVector<QVariant>& values = {}) const {
        return m_rows.contains(key(sql, values));
    }

private:
    // The text alone, or the text and each value with its type: a procedure call has the
    // same text for every set of values.
    static QString key(const QString& sql, const QVector<QVariant>& values);
    QHash<QString, db::Recordset> m_rows;
};

}  // namespace qz2::entry
