#pragma once
// The history of attendance entries in the module's own table pEmpAttendanceHistory: one
// row per version of an entry (created, edited, imported, cancelled), written in the same
// transaction as the change it describes, with who, when, what changed, and the entry as
// it was before and after.
//
// A database without the table keeps working as before: nothing is written, and the
// register says so once.

#include <QDateTime>
#include <QList>
#include <QSqlDatabase>
#include <QString>
#include <QStringList>
#include <optional>

#include "db/Dialect.h"
#include "history/EntryVersion.h"

namespace qz2::history {

// The table's name (named literally: it is the module's own, not one of the suite's).
QString tableName();

// The statements that create the table and its index (what db/*/schema.sql hold for it).
QStringList createTableStatements(const db::Dialect& d);

// The physical names of an entry's three tables: the link table's by default; the demo
// generator, which writes before any link table is read, names its own.
struct EntryTables {
    QString header;
    QString detail;
    QString claims;
};
EntryTables linkedEntryTables();

// ---- Statements ------------------------------------------------------------------------
QString tableKeptQuery(const db::Dialect& d);
QString headerVersionQuery(qint16 company, qint32 id,
                           const EntryTables& tables = linkedEntryTables());
QString lineVersionQuery(qint16 company, qint32 id,
                         const EntryTables& tables = linkedEntryTables());
QString claimVersionQuery(qint16 company, qint32 id,
                          const EntryTables& tables = linkedEntryTables());
QString historyInsert();  // eleven values, in the table's column order after ehID
QString numberOfEntryQuery(const db::Dialect& d, qint16 company, qint32 id);
QString historyQuery(qint16 company, const QString& attendanceNo);
QString employeeLabelQuery(qint16 company, qint32 employee);

// ---- Reading and writing ---------------------------------------------------------------

// Whether the database has the history table (one statement).
bool isKept(const QSqlDatabase& db);

// Adds the history table (and its index) to a database that lacks it, in one transaction;
// false when it was there already. Throws db::DbError.
bool addHistoryTable(const QSqlDatabase& db);

// The stored entry `id` as it stands (three statements); nullopt when its header is gone.
std::optional<EntryVersion> readVersion(const QSqlDatabase& db, qint16 company, qint32 id,
                                        const EntryTables& tables = linkedEntryTables());

// The employee as the history names them: number and name ("E0012 Asha Rao"); empty when
// the employee is not found.
QString employeeLabel(const QSqlDatabase& db, qint16 company, qint32 employee);

struct HistoryRecord {
    qint64 id = 0;
    QString attendanceNo;
    std::optional<qint32> oldId;
    std::optional<qint32> newId;
    Action action = Action::Created;
    qint16 userId = 0;
    QString userName;
    QDateTime at;
    QString changes;
    std::optional<EntryVersion> before;
    std::optional<EntryVersion> after;
};

// Every version of the entry that carries (or carried) the identifier `id`, under its old
// or its new identifier, newest first; empty when there is none or no table.
QList<HistoryRecord> readHistory(const QSqlDatabase& db, qint16 company, qint32 id);

// Of the records (newest first), those of the entry `id` is or was an identifier of: the
// chain of identifiers its creation, edits and cancellation link (before → after). Another
// entry that carries the same number (an older database may hold two) is left out.
QList<HistoryRecord> chainOf(const QList<HistoryRecord>& records, qint32 id);

// What a save or a cancellation does inside its transaction: begin() before the stored
// entry is touched (it reads the entry as it stands), record() after the new rows are in
// (it reads them back and writes the history row). Without the table both do nothing more
// than the one check.
class VersionRecorder {
public:
    // `oldId`: the stored entry about to change; nullopt for a new entry.
    static VersionRecorder begin(const QSqlDatabase& db, qint16 company,
                                 std::optional<qint32> oldId,
                                 const EntryTables& tables = linkedEntryTables());

    bool kept() const { return m_kept; }
    // Writes the version of the entry now stored as `newId`. `userName` when the caller has
    // read it already (a cancellation has); otherwise it is read here. `at` is now unless given.
    void record(Action action, qint32 newId, qint16 user,
                std::optional<QString> userName = std::nullopt,
                std::optional<QDateTime> at = std::nullopt);

private:
    QSqlDatabase m_db;
    qint16 m_company = 0;
    bool m_kept = false;
    std::optional<qint32> m_oldId;
    std::optional<EntryVersion> m_before;
    EntryTables m_tables;
};

}  // namespace qz2::history
