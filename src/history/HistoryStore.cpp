#include "history/HistoryStore.h"

#include <QSet>
#include <algorithm>

#include "db/Database.h"
#include "register/RegisterSql.h"
#include "shared/BasAttendence.h"
#include "shared/SharedServices.h"
#include "shared/TimeValue.h"

namespace qz2::history {

namespace {

QString n(qint64 value) {
    return QString::number(value);
}

bool isDateColumn(const QString& column) {
    return column == QLatin1String("eaDate") || column == QLatin1String("eaStartDate") ||
           column == QLatin1String("eaEndDate");
}

// A header value as a version keeps it (see EntryVersion::header).
std::optional<QString> headerValue(const QString& column, const QVariant& v) {
    if (v.isNull()) return std::nullopt;
    if (column == QLatin1String("eaCancelled"))
        return db::isOn(v) ? QStringLiteral("1") : QStringLiteral("0");
    if (isTextColumn(column)) return v.toString();
    if (isDateColumn(column)) {
        const std::optional<TimeValue> t = timeValueFromDb(v);
        return t ? t->date().toString(Qt::ISODate) : v.toString();
    }
    bool ok = false;
    const double number = v.toDouble(&ok);
    return ok ? numberText(number) : v.toString();
}

// A stored time of day to the minute, as the save writes it.
std::optional<TimeValue> timeOfDay(const QVariant& v) {
    const std::optional<TimeValue> t = timeValueFromDb(v);
    if (!t) return std::nullopt;
    return TimeValue::fromTime(QTime(t->hour(), t->minute()));
}

QDate dateOf(const QVariant& v) {
    const std::optional<TimeValue> t = timeValueFromDb(v);
    return t ? t->date() : QDate();
}

std::optional<qint32> idOf(const QVariant& v) {
    if (v.isNull()) return std::nullopt;
    return v.toInt();
}

QVariant textOrNull(const std::optional<QString>& text) {
    return text ? QVariant(*text) : QVariant(QMetaType::fromType<QString>());
}

QVariant idOrNull(const std::optional<qint32>& id) {
    return id ? QVariant(*id) : QVariant(QMetaType::fromType<int>());
}

}  // namespace

QString tableName() {
    return QStringLiteral("pEmpAttendanceHistory");
}

EntryTables linkedEntryTables() {
    return {LinkedTableNames.pEmployeeAttendence, LinkedTableNames.pEmpAttendanceDetail,
            LinkedTableNames.pEmpAttendanceAllowanceDeductions};
}

QStringList createTableStatements(const db::Dialect& d) {
    if (d.isSqlServer())
        return {
            QStringLiteral("CREATE TABLE dbo.pEmpAttendanceHistory (\n"
                           "    ehID           int           IDENTITY(1,1) NOT NULL,\n"
                           "    ehCompanyID    smallint      NOT NULL,\n"
                           "    ehAttendanceNo varchar(20)   NOT NULL,\n"
                           "    ehOldID        int           NULL,\n"
                           "    ehNewID        int           NULL,\n"
                           "    ehAction       varchar(10)   NOT NULL,\n"
                           "    ehUserID       smallint      NOT NULL,\n"
                           "    ehUserName     varchar(100)  NULL,\n"
                           "    ehWhen         datetime      NOT NULL,\n"
                           "    ehChanges      nvarchar(max) NOT NULL,\n"
                           "    ehBefore       nvarchar(max) NULL,\n"
                           "    ehAfter        nvarchar(max) NULL,\n"
                           "    CONSTRAINT PK_pEmpAttendanceHistory PRIMARY KEY (ehID)\n"
                           ")"),
            QStringLiteral("CREATE INDEX ix_pEmpAttendanceHistory_no ON dbo.pEmpAttendanceHistory "
                           "(ehCompanyID, ehAttendanceNo)")};
    return {QStringLiteral("CREATE TABLE pEmpAttendanceHistory (\n"
                           "    ehID           INTEGER NOT NULL PRIMARY KEY,\n"
                           "    ehCompanyID    INTEGER NOT NULL,\n"
                           "    ehAttendanceNo TEXT    NOT NULL,\n"
                           "    ehOldID        INTEGER,\n"
                           "    ehNewID        INTEGER,\n"
                           "    ehAction       TEXT    NOT NULL,\n"
                           "    ehUserID       INTEGER NOT NULL,\n"
                           "    ehUserName     TEXT,\n"
                           "    ehWhen         TEXT    NOT NULL,\n"
                           "    ehChanges      TEXT    NOT NULL,\n"
                           "    ehBefore       TEXT,\n"
                           "    ehAfter        TEXT\n"
                           ")"),
            QStringLiteral("CREATE INDEX ix_pEmpAttendanceHistory_no ON pEmpAttendanceHistory "
                           "(ehCompanyID, ehAttendanceNo)")};
}

QString tableKeptQuery(const db::Dialect& d) {
    // SQL Server resolves the name as the history insert does (the user's default schema,
    // then dbo), and only a table counts.
    if (d.isSqlServer())
        return QStringLiteral("select case when OBJECT_ID('") + tableName() +
               QStringLiteral("','U') is null then 0 else 1 end");
    return QStringLiteral("select count(*) from sqlite_master where type='table' and name='") +
           tableName() + QStringLiteral("' collate nocase");
}

QString headerVersionQuery(qint16 company, qint32 id, const EntryTables& tables) {
    return QStringLiteral("select ") + headerColumns().join(QLatin1Char(',')) +
           QStringLiteral(" from ") + tables.header + QStringLiteral(" where eaCompanyID=") +
           n(company) + QStringLiteral(" and eaID=") + n(id);
}

QString lineVersionQuery(qint16 company, qint32 id, const EntryTables& tables) {
    return QStringLiteral("select eadDetailID,eadDate,eadType,eadCheckIN,eadCheckOut from ") +
           tables.detail + QStringLiteral(" where eadCompanyID=") + n(company) +
           QStringLiteral(" and eadAttendanceID=") + n(id) +
           QStringLiteral(" order by eadDetailID");
}

QString claimVersionQuery(qint16 company, qint32 id, const EntryTables& tables) {
    return QStringLiteral(
               "select eaadDetailID,eaadDate,eaadHours,eaadAllowanceID,eaadDeductionID from ") +
           tables.claims + QStringLiteral(" where eaadCompanyID=") + n(company) +
           QStringLiteral(" and eaadAttendanceID=") + n(id) +
           QStringLiteral(" order by eaadDetailID");
}

QString historyInsert() {
    return QStringLiteral(
        "insert into pEmpAttendanceHistory (ehCompanyID,ehAttendanceNo,ehOldID,ehNewID,"
        "ehAction,ehUserID,ehUserName,ehWhen,ehChanges,ehBefore,ehAfter) "
        "Values(?,?,?,?,?,?,?,?,?,?,?)");
}

QString numberOfEntryQuery(const db::Dialect& d, qint16 company, qint32 id) {
    return d.top1(QStringLiteral(
                      "select top 1 ehAttendanceNo from pEmpAttendanceHistory where ehCompanyID=") +
                  n(company) + QStringLiteral(" and (ehOldID=") + n(id) +
                  QStringLiteral(" or ehNewID=") + n(id) + QStringLiteral(") order by ehID desc"));
}

QString historyQuery(qint16 company, const QString& attendanceNo) {
    return QStringLiteral(
               "select ehID,ehAttendanceNo,ehOldID,ehNewID,ehAction,ehUserID,ehUserName,ehWhen,"
               "ehChanges,ehBefore,ehAfter from pEmpAttendanceHistory where ehCompanyID=") +
           n(company) + QStringLiteral(" and ehAttendanceNo='") + db::quotesDoubled(attendanceNo) +
           QStringLiteral("' order by ehID desc");
}

QString employeeLabelQuery(qint16 company, qint32 employee) {
    return QStringLiteral("select eEmpNo,eName from ") + LinkedTableNames.pemployee +
           QStringLiteral(" where eCompanyID=") + n(company) + QStringLiteral(" and eEmpID=") +
           n(employee);
}

QString employeeLabel(const QSqlDatabase& db, qint16 company, qint32 employee) {
    const db::Recordset rs = db::openRecordset(db, employeeLabelQuery(company, employee));
    if (rs.eof()) return {};
    return (rs.field(0).toString().trimmed() + QLatin1Char(' ') + rs.field(1).toString().trimmed())
        .trimmed();
}

bool isKept(const QSqlDatabase& db) {
    return db::scalar(db, tableKeptQuery(db::Dialect::of(db))).toLongLong() > 0;
}

bool addHistoryTable(const QSqlDatabase& db) {
    db::Transaction transaction(db, /*immediate=*/true);
    if (isKept(db)) return false;
    for (const QString& statement : createTableStatements(db::Dialect::of(db)))
        db::execute(db, statement);
    transaction.commit();
    return true;
}

std::optional<EntryVersion> readVersion(const QSqlDatabase& db, qint16 company, qint32 id,
                                        const EntryTables& tables) {
    const db::Recordset header = db::openRecordset(db, headerVersionQuery(company, id, tables));
    if (header.eof()) return std::nullopt;
    EntryVersion v;
    v.id = id;
    for (int c = 0; c < headerColumns().size(); ++c)
        v.header.append(headerValue(headerColumns()[c], header.field(c)));
    for (db::Recordset lines = db::openRecordset(db, lineVersionQuery(company, id, tables));
         !lines.eof(); lines.moveNext())
        v.lines.append({lines.field(0).toInt(), dateOf(lines.field(1)), lines.field(2).toString(),
                        timeOfDay(lines.field(3)), timeOfDay(lines.field(4))});
    for (db::Recordset claims = db::openRecordset(db, claimVersionQuery(company, id, tables));
         !claims.eof(); claims.moveNext())
        v.claims.append({claims.field(0).toInt(), dateOf(claims.field(1)),
                         claims.field(2).toDouble(), idOf(claims.field(3)), idOf(claims.field(4))});
    return v;
}

QList<HistoryRecord> readHistory(const QSqlDatabase& db, qint16 company, qint32 id) {
    if (!isKept(db)) return {};
    const db::Dialect d = db::Dialect::of(db);
    QVariant number = db::scalar(db, numberOfEntryQuery(d, company, id));
    if (number.isNull()) {
        const db::Recordset header = db::openRecordset(db, headerVersionQuery(company, id));
        if (header.eof()) return {};
        number = header.field(0);
    }
    QList<HistoryRecord> records;
    for (db::Recordset rs = db::openRecordset(db, historyQuery(company, number.toString()));
         !rs.eof(); rs.moveNext()) {
        HistoryRecord r;
        r.id = rs.field(0).toLongLong();
        r.attendanceNo = rs.field(1).toString();
        r.oldId = idOf(rs.field(2));
        r.newId = idOf(rs.field(3));
        r.action = actionFromCode(rs.field(4).toString()).value_or(Action::Edited);
        r.userId = static_cast<qint16>(rs.field(5).toInt());
        r.userName = rs.field(6).toString();
        const std::optional<TimeValue> at = timeValueFromDb(rs.field(7));
        if (at) r.at = QDateTime(at->date(), at->timeOfDay());
        r.changes = rs.field(8).toString();
        if (!rs.isNull(9)) r.before = versionFromText(rs.field(9).toString());
        if (!rs.isNull(10)) r.after = versionFromText(rs.field(10).toString());
        records.append(std::move(r));
    }
    return chainOf(records, id);
}

QList<HistoryRecord> chainOf(const QList<HistoryRecord>& records, qint32 id) {
    QSet<qint32> ids{id};
    QList<bool> taken(records.size(), false);
    for (bool grew = true; grew;) {
        grew = false;
        for (qsizetype i = 0; i < records.size(); ++i) {
            const HistoryRecord& r = records[i];
            if (taken[i] ||
                !((r.newId && ids.contains(*r.newId)) || (r.oldId && ids.contains(*r.oldId))))
                continue;
            taken[i] = grew = true;
            if (r.newId) ids.insert(*r.newId);
            if (r.oldId) ids.insert(*r.oldId);
        }
    }
    QList<HistoryRecord> chain;
    for (qsizetype i = 0; i < records.size(); ++i)
        if (taken[i]) chain.append(records[i]);
    return chain;
}

VersionRecorder VersionRecorder::begin(const QSqlDatabase& db, qint16 company,
                                       std::optional<qint32> oldId, const EntryTables& tables) {
    VersionRecorder r;
    r.m_db = db;
    r.m_company = company;
    r.m_oldId = oldId;
    r.m_tables = tables;
    r.m_kept = isKept(db);
    if (r.m_kept && oldId) r.m_before = readVersion(db, company, *oldId, tables);
    return r;
}

void VersionRecorder::record(Action action, qint32 newId, qint16 user,
                             std::optional<QString> userName, std::optional<QDateTime> at) {
    if (!m_kept) return;
    const std::optional<EntryVersion> after = readVersion(m_db, m_company, newId, m_tables);
    if (!after)
        throw db::DbError(QStringLiteral("The entry to record in the history is not stored"),
                          tableName());
    if (!userName) {
        // The user's name as the cancellation reads it for its reason.
        const db::Recordset user_ =
            db::openRecordset(m_db, sql::cancelUserNameQuery(m_company, user));
        userName = user_.eof() ? QString() : user_.field(0).toString().trimmed();
    }
    const db::Dialect d = db::Dialect::of(m_db);
    const QDateTime now = at.value_or(fnNow());
    const QVariant when = d.isSqlServer()
                              ? QVariant(now)
                              : QVariant(now.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")));
    const EntryVersion* before = m_before ? &*m_before : nullptr;
    db::Command insert(m_db, historyInsert());
    insert.execute(
        {QVariant(m_company), QVariant(after->value(u"eaNo").value_or(QStringLiteral(""))),
         idOrNull(m_oldId), QVariant(newId), QVariant(actionCode(action)), QVariant(user),
         QVariant(*userName), when, QVariant(changesText(versionChanges(before, *after))),
         textOrNull(before ? std::optional<QString>(versionText(*before)) : std::nullopt),
         QVariant(versionText(*after))});
}

}  // namespace qz2::history
