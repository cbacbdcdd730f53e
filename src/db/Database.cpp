#include "db/Database.h"

#include <QLibrary>
#include <QRegularExpression>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <atomic>

#include "db/Dialect.h"

namespace qz2::db {

namespace {

std::atomic<qint64> g_statements{0};
FaultHook g_faultHook;

QString errorText(const QSqlError& e) {
    QString text = e.databaseText().trimmed();
    if (text.isEmpty()) text = e.text().trimmed();
    if (text.isEmpty()) text = QStringLiteral("Unknown database error");
    return text;
}

// Counts the statement and gives the test hook its chance to fail it.
void beforeStatement(const QString& sql) {
    ++g_statements;
    if (g_faultHook) {
        const QString injected = g_faultHook(sql);
        if (!injected.isEmpty()) throw DbError(injected, sql);
    }
}

void requireOpen(const QSqlDatabase& db, const QString& sql) {
    if (!db.isValid() || !db.isOpen())
        throw DbError(QStringLiteral("Operation is not allowed when the object is closed."), sql);
}

}  // namespace

DbError::DbError(const QString& message, const QString& statement, const QString& nativeCode)
    : std::runtime_error(message.toStdString()),
      m_message(message),
      m_statement(statement),
      m_nativeCode(nativeCode) {}

QString quotesDoubled(QString text) {
    return text.replace(QLatin1Char('\''), QLatin1String("''"));
}

std::optional<QString> failedStatementMessage(const std::exception& e) {
    const auto* failed = dynamic_cast<const DbError*>(&e);
    if (!failed) return std::nullopt;
    return failed->message().isEmpty() ? QString::fromUtf8(e.what()) : failed->message();
}

QString errorMessage(const std::exception& e) {
    return failedStatementMessage(e).value_or(QString::fromUtf8(e.what()));
}

int Recordset::indexOf(const QString& name) const {
    for (int i = 0; i < m_names.size(); ++i)
        if (m_names[i].compare(name, Qt::CaseInsensitive) == 0) return i;
    return -1;
}

QVariant Recordset::field(int i) const {
    if (eof()) throw DbError(QStringLiteral("Either BOF or EOF is True, or the current record has been deleted."), {});
    if (i < 0 || i >= m_names.size())
        throw DbError(QStringLiteral("Item cannot be found in the collection corresponding to the requested name or ordinal."), {});
    return m_rows[m_pos][i];
}

QVariant Recordset::field(const QString& name) const { return field(indexOf(name)); }

void forEachRow(const QSqlDatabase& db, const QString& sql, const std::function<void(const QSqlQuery& q)>& row) {
    requireOpen(db, sql);
    beforeStatement(sql);
    QSqlQuery q(db);
    q.setForwardOnly(true);
    if (!q.exec(sql)) throw DbError(errorText(q.lastError()), sql, q.lastError().nativeErrorCode());
    while (q.next()) row(q);
    if (q.lastError().isValid()) throw DbError(errorText(q.lastError()), sql, q.lastError().nativeErrorCode());
}

Recordset openRecordset(const QSqlDatabase& db, const QString& sql) { return openRecordset(db, sql, {}); }

Recordset openRecordset(const QSqlDatabase& db, const QString& sql, const QVector<QVariant>& values) {
    requireOpen(db, sql);
    beforeStatement(sql);
    QSqlQuery q(db);
    q.setForwardOnly(true);
    bool ok = false;
    if (values.isEmpty()) {
        ok = q.exec(sql);
    } else {
        ok = q.prepare(sql);
        for (int i = 0; ok && i < values.size(); ++i) q.bindValue(i, values[i]);
        ok = ok && q.exec();
    }
    if (!ok) throw DbError(errorText(q.lastError()), sql, q.lastError().nativeErrorCode());
    Recordset rs;
    const QSqlRecord rec = q.record();
    const int n = rec.count();
    rs.m_names.reserve(n);
    for (int i = 0; i < n; ++i) rs.m_names << rec.fieldName(i);
    while (q.next()) {
        QVector<QVariant> row;
        row.reserve(n);
        for (int i = 0; i < n; ++i) row << q.value(i);
        rs.m_rows << std::move(row);
    }
    if (q.lastError().isValid()) throw DbError(errorText(q.lastError()), sql, q.lastError().nativeErrorCode());
    return rs;
}

int execute(const QSqlDatabase& db, const QString& sql) {
    requireOpen(db, sql);
    beforeStatement(sql);
    QSqlQuery q(db);
    if (!q.exec(sql)) throw DbError(errorText(q.lastError()), sql, q.lastError().nativeErrorCode());
    return q.numRowsAffected();
}

QVariant scalar(const QSqlDatabase& db, const QString& sql) {
    Recordset rs = openRecordset(db, sql);
    if (rs.eof() || rs.fieldCount() == 0) return {};
    return rs.field(0);
}

struct Command::Impl {
    QSqlQuery query;
    bool prepared = false;
};

Command::Command(const QSqlDatabase& db, const QString& sql) : m_sql(sql) {
    requireOpen(db, sql);
    m_impl = std::make_unique<Impl>(Impl{QSqlQuery(db)});
}

Command::~Command() = default;

void Command::execute(const QVector<QVariant>& values) {
    beforeStatement(m_sql);
    if (!m_impl->prepared) {
        if (!m_impl->query.prepare(m_sql))
            throw DbError(errorText(m_impl->query.lastError()), m_sql, m_impl->query.lastError().nativeErrorCode());
        m_impl->prepared = true;
    }
    for (int i = 0; i < values.size(); ++i) m_impl->query.bindValue(i, values[i]);
    if (!m_impl->query.exec())
        throw DbError(errorText(m_impl->query.lastError()), m_sql, m_impl->query.lastError().nativeErrorCode());
}

Transaction::Transaction(const QSqlDatabase& db, bool immediate) : m_db(db) {
    requireOpen(db, QStringLiteral("BEGIN TRANSACTION"));
    // Through ODBC as natively: the SQLite ODBC driver passes BEGIN IMMEDIATE and COMMIT on
    // to the database as they stand while the connection is in auto-commit.
    if (immediate && Dialect::of(db).kind() == Dialect::Kind::SQLite) {
        QSqlQuery q(db);
        if (!q.exec(QStringLiteral("BEGIN IMMEDIATE")))
            throw DbError(errorText(q.lastError()), QStringLiteral("BEGIN IMMEDIATE"));
        m_manual = true;
    } else if (!m_db.transaction()) {
        throw DbError(errorText(m_db.lastError()), QStringLiteral("BEGIN TRANSACTION"));
    }
    m_open = true;
}

Transaction::~Transaction() {
    if (m_open) {
        try {
            rollback();
        } catch (...) {
            // A destructor must not throw; the connection ends the transaction when closed.
        }
    }
}

void Transaction::commit() {
    if (!m_open) return;
    if (m_manual) {
        QSqlQuery q(m_db);
        if (!q.exec(QStringLiteral("COMMIT"))) throw DbError(errorText(q.lastError()), QStringLiteral("COMMIT"));
    } else if (!m_db.commit()) {
        throw DbError(errorText(m_db.lastError()), QStringLiteral("COMMIT"));
    }
    m_open = false;
}

void Transaction::rollback() {
    if (!m_open) return;
    m_open = false;
    if (m_manual) {
        QSqlQuery q(m_db);
        q.exec(QStringLiteral("ROLLBACK"));
    } else {
        m_db.rollback();
    }
}

namespace {

// SQLGetInfo of the ODBC driver manager that the Qt ODBC plug-in has loaded, found at run
// time so that the module needs no ODBC headers or library of its own to build.
using SqlGetInfoFn = short (*)(void* connection, unsigned short infoType, void* value, short bufferLength,
                               short* stringLength);

SqlGetInfoFn sqlGetInfo() {
    static const SqlGetInfoFn fn = [] {
#ifdef Q_OS_WIN
        QLibrary manager(QStringLiteral("odbc32"));
#else
        QLibrary manager(QStringLiteral("odbc"), 2);
#endif
        auto found = reinterpret_cast<SqlGetInfoFn>(manager.resolve("SQLGetInfo"));
#ifndef Q_OS_WIN
        if (!found) found = reinterpret_cast<SqlGetInfoFn>(QLibrary::resolve(QStringLiteral("odbc"), "SQLGetInfo"));
#endif
        return found;
    }();
    return fn;
}

QString odbcDbmsName(const QSqlDatabase& db) {
    // The Qt ODBC driver hands out its connection handle (an SQLHDBC, a pointer) this way.
    const QVariant handle = db.driver()->handle();
    if (handle.typeId() != QMetaType::VoidStar) return {};
    void* const connection = *static_cast<void* const*>(handle.constData());
    const SqlGetInfoFn getInfo = sqlGetInfo();
    if (!connection || !getInfo) return {};
    constexpr unsigned short kSqlDbmsName = 17;  // SQL_DBMS_NAME
    char name[256] = {};
    short length = 0;
    const short rc = getInfo(connection, kSqlDbmsName, name, static_cast<short>(sizeof name - 1), &length);
    if (rc != 0 && rc != 1) return {};  // neither SQL_SUCCESS nor SQL_SUCCESS_WITH_INFO
    return QString::fromUtf8(name).trimmed();
}

}  // namespace

QString dbmsName(const QSqlDatabase& db) {
    if (!db.isValid() || !db.isOpen() || !db.driver()) return {};
    if (db.driver()->dbmsType() == QSqlDriver::SQLite) return QStringLiteral("SQLite");
    if (db.driverName().startsWith(QLatin1String("QODBC"))) return odbcDbmsName(db);
    return {};
}

int lockWaitMs() {
    static const int wait = [] {
        bool ok = false;
        const int fromEnv = qEnvironmentVariableIntValue("QZ2_LOCK_WAIT_MS", &ok);
        return ok && fromEnv >= 0 && fromEnv <= 600000 ? fromEnv : 10000;
    }();
    return wait;
}

qint64 statementCount() { return g_statements.load(); }

void setFaultHook(FaultHook hook) { g_faultHook = std::move(hook); }

void executeScript(const QSqlDatabase& db, const QString& script) {
    // Strip whole-line comments, then split on ";" at the end of a line.
    QStringList kept;
    for (const QString& line : script.split(QLatin1Char('\n'))) {
        if (line.trimmed().startsWith(QLatin1String("--"))) continue;
        kept << line;
    }
    const QString text = kept.join(QLatin1Char('\n'));
    for (const QString& piece : text.split(QRegularExpression(QStringLiteral(";\\s*\\n")))) {
        QString stmt = piece.trimmed();
        if (stmt.endsWith(QLatin1Char(';'))) stmt.chop(1);
        if (stmt.isEmpty()) continue;
        QSqlQuery q(db);
        if (!q.exec(stmt)) throw DbError(errorText(q.lastError()), stmt);
    }
}

}  // namespace qz2::db
