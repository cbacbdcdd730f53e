#pragma once
// A thin layer over Qt SQL on the one shared connection: a materialised recordset, a command
// with positional "?" parameters, a transaction scope, and an exception that carries the
// database's own message. Every statement that runs goes through here, so that the
// statement counter (read by benchmarks and tests) and the failure-injection hook (used by
// the reliability tests) see all of them.

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVector>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>

namespace qz2::db {

// A failed statement: the driver's message, the statement text and the native error code.
class DbError : public std::runtime_error {
public:
    DbError(const QString& message, const QString& statement, const QString& nativeCode = {});
    const QString& message() const { return m_message; }
    const QString& statement() const { return m_statement; }
    const QString& nativeCode() const { return m_nativeCode; }

private:
    QString m_message;
    QString m_statement;
    QString m_nativeCode;
};

// A text as it goes between the single quotes of a literal: its own quotes doubled, so that
// no stored or typed text can end the literal or change the statement.
QString quotesDoubled(QString text);

// The database's message when `e` is a failed statement (its own text when the driver gave
// none); nullopt for any other error, which the handlers trap quietly.
std::optional<QString> failedStatementMessage(const std::exception& e);
// What the clerk is told of any error: the database's message of a failed statement,
// otherwise the error's own text.
QString errorMessage(const std::exception& e);

// All the rows of one result, read at once; fields are found by name without regard to
// letter case, as the suite's column names are spelt inconsistently.
class Recordset {
public:
    Recordset() = default;
    bool eof() const { return m_pos >= m_rows.size(); }
    void moveNext() { ++m_pos; }
    void moveFirst() { m_pos = 0; }
    int recordCount() const { return static_cast<int>(m_rows.size()); }
    int fieldCount() const { return static_cast<int>(m_names.size()); }
    const QStringList& fieldNames() const { return m_names; }
    QString fieldName(int i) const { return m_names.value(i); }
    int indexOf(const QString& name) const;  // -1 when absent
    // Field of the current row by position or name; throws DbError when past the end or
    // when the name is unknown (the old recordsets raised a run-time error there too).
    QVariant field(int i) const;
    QVariant field(const QString& name) const;
    bool isNull(const QString& name) const { return field(name).isNull(); }
    bool isNull(int i) const { return field(i).isNull(); }
    const QVector<QVariant>& row(int r) const { return m_rows[r]; }

private:
    friend Recordset openRecordset(const QSqlDatabase&, const QString&, const QVector<QVariant>&);
    QStringList m_names;
    QVector<QVector<QVariant>> m_rows;
    qsizetype m_pos = 0;
};

// Runs a query and reads all its rows. Throws DbError.
Recordset openRecordset(const QSqlDatabase& db, const QString& sql);
// The same with positional "?" values (a stored-procedure call, for one).
Recordset openRecordset(const QSqlDatabase& db, const QString& sql, const QVector<QVariant>& values);
// Runs a statement that returns no rows; returns the rows affected. Throws DbError.
int execute(const QSqlDatabase& db, const QString& sql);
// Runs a query and hands each row to `row` as it is read, without keeping the result:
// for reads of a million rows (the reports), where a Recordset would hold every value at
// once. Counted and open to the fault hook like every other statement. Throws DbError.
void forEachRow(const QSqlDatabase& db, const QString& sql, const std::function<void(const QSqlQuery& q)>& row);
// First field of the first row, or a null QVariant when there is no row.
QVariant scalar(const QSqlDatabase& db, const QString& sql);

// A text command with positional "?" parameters, prepared once and executed as often as
// needed with new values.
class Command {
public:
    Command(const QSqlDatabase& db, const QString& sql);
    ~Command();
    Command(const Command&) = delete;
    Command& operator=(const Command&) = delete;
    const QString& text() const { return m_sql; }
    // Values by position (0-based); a null QVariant binds NULL.
    void execute(const QVector<QVariant>& values);

private:
    struct Impl;
    std::unique_ptr<Impl> m_impl;
    QString m_sql;
};

// Begins a transaction on construction; rolls it back on destruction unless committed.
// With `immediate` the SQLite connection takes the write lock at once (BEGIN IMMEDIATE), so
// that two savers are serialised before either reads the next number.
class Transaction {
public:
    explicit Transaction(const QSqlDatabase& db, bool immediate = false);
    ~Transaction();
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;
    void commit();
    void rollback();
    bool isOpen() const { return m_open; }

private:
    QSqlDatabase m_db;
    bool m_open = false;
    bool m_manual = false;  // BEGIN/COMMIT sent as statements rather than through the driver
};

// How long, in milliseconds, a save waits for another writer of the same database before
// it gives up with the database's own "locked" message. 10000 unless the environment
// variable QZ2_LOCK_WAIT_MS gives another whole number of milliseconds (0 to 600000),
// read once. The one place the module's busy timeout is set.
int lockWaitMs();

// Number of statements executed since the process started (queries, commands, and each
// execution of a prepared command). Transaction control is not counted.
qint64 statementCount();

// Failure injection for tests: called before every statement with its text; returning a
// non-empty message makes that statement fail with a DbError carrying the message, as the
// database would. Pass an empty function to remove the hook.
using FaultHook = std::function<QString(const QString& sql)>;
void setFaultHook(FaultHook hook);

// A bit column read back: 0/1 from SQLite, a Boolean through ODBC; NULL counts as off.
inline bool isOn(const QVariant& v) { return !v.isNull() && v.toBool(); }

// The name of the database product behind the connection, as its driver reports it: for an
// ODBC connection the driver's SQL_DBMS_NAME ("Microsoft SQL Server", "SQLite", ...), for a
// native SQLite connection "SQLite". Empty when the connection is not open or the driver
// does not say.
QString dbmsName(const QSqlDatabase& db);

// Runs a script of statements separated by ";" at line ends (the schema files).
void executeScript(const QSqlDatabase& db, const QString& script);

}  // namespace qz2::db
