#pragma once
// Statements of the register, its rights, cancelling and the shared one-row refresh and
// monthly lock. Table names come from LinkedTableNames except where a statement names a
// table literally.

#include <QDate>
#include <QString>
#include <optional>

#include "db/Dialect.h"

namespace qz2::sql {

QString masterFromClause();
QString masterQuery(const db::Dialect& d, qint16 company, int noOfPreviousDays, QDate processDate);
QString headingQuery(const QString& logicalTable);
QString rightsQuery(qint16 user, qint32 interfaceId);
QString monthlyLockQuery(qint16 company, const QString& attendanceId);
// The list query cut before any "order by" and narrowed by the condition.
QString refreshQuery(const QString& masterQuery, const QString& condition);
QString cancelUserNameQuery(qint16 company, qint16 user);
QString cancelEmployeeQuery(const QString& attendanceId, qint16 company);
// The entry's cancelled flag, read from the table the cancelling update writes.
QString cancelledFlagQuery(const QString& attendanceId, qint16 company);
// On SQL Server, the entry's row read under an update lock held to the end of the
// cancellation's transaction, so that two clerks cancelling one entry at the same moment
// are served one after the other (the second then finds it cancelled). nullopt on SQLite,
// whose cancellation takes the write lock when its transaction begins.
std::optional<QString> cancelLockQuery(const db::Dialect& d, const QString& attendanceId,
                                       qint16 company);
// The reason goes between quotes; quotes pasted into it are doubled so that the text is
// stored as given and can never end the literal.
QString cancelUpdate(const QString& remarks, const QString& attendanceId, qint16 company);

}  // namespace qz2::sql
