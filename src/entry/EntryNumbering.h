#pragma once
// The attendance number of a new entry: the screen's prefix followed by the company's
// highest numeric suffix among the numbers with that prefix, plus one.

#include <QSqlDatabase>
#include <QString>

namespace qz2::entry {

// Reads the prefix and the highest suffix on the connection. Cancelled entries count, so
// their numbers are never given again. Database errors propagate (db::DbError).
QString generateAttendanceNo(const QSqlDatabase& db, qint16 company, qint32 interfaceId);

}  // namespace qz2::entry
