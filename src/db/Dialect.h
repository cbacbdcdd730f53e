#pragma once
// The few places where SQL Server's T-SQL and SQLite differ. Statement builders write the
// T-SQL text once and ask the dialect only for the pieces that T-SQL writes in its own way:
// date literals, "DateDiff", "max(date)+1", "top 1", a number glued to the next keyword,
// the numbering query and the working-hours procedure. The SQL Server dialect hands every
// piece back exactly as T-SQL has it, so its statements stay the suite's texts to the letter.

#include <QDate>
#include <QSqlDatabase>
#include <QString>
#include <QStringView>
#include <QVariant>
#include <QVector>

namespace qz2::db {

class Dialect {
public:
    enum class Kind { SqlServer, SQLite };

    constexpr explicit Dialect(Kind kind) : m_kind(kind) {}
    // From the connection: SQLite for Qt's SQLite driver and for an ODBC connection whose
    // driver names its DBMS SQLite; SQL Server otherwise.
    static Dialect of(const QSqlDatabase& db);
    // True for a DBMS name (as an ODBC driver reports it) that means SQLite.
    static bool isSqliteName(const QString& dbmsName);
    static constexpr Dialect sqlServer() { return Dialect(Kind::SqlServer); }
    static constexpr Dialect sqlite() { return Dialect(Kind::SQLite); }

    Kind kind() const { return m_kind; }
    bool isSqlServer() const { return m_kind == Kind::SqlServer; }

    // A date as the text that goes between the quotes of a literal: T-SQL takes it in the
    // pattern the statement uses ("yyyymmdd", "yyyy/mm/dd", "mm/dd/yyyy"); SQLite stores and
    // compares ISO text "yyyy-mm-dd".
    QString dateText(QDate date, QStringView tsqlPattern) const;

    // A number written straight before a keyword ("...companyid=1and eaid=..."): T-SQL reads
    // "1and" as 1 followed by "and"; SQLite's tokenizer rejects it, so it gets a blank.
    QString glued(qint64 number) const;

    // "DateDiff(dd,<column>,'<yyyymmdd>')<=<days>"
    QString daysSinceAtMost(const QString& column, QDate until, int days) const;

    // "max(<column>)+1": the day after the latest date.
    QString maxPlusOneDay(const QString& column) const;

    // A T-SQL text that begins "Select top 1 " as it stands; SQLite takes "limit 1" at the end.
    QString top1(const QString& tsqlText) const;

    // A text column compared without regard to letter case: SQL Server's collation already
    // ignores case, SQLite needs "collate nocase".
    QString caseless(const QString& column) const;

    // "isnull(" in T-SQL, "ifnull(" in SQLite.
    QString isNullFn() const;

    // The highest numeric suffix of the company's attendance numbers that carry the prefix.
    QString attendanceNumberQuery(const QString& headerTable, qint16 company, const QString& prefix) const;

    // The working-hours procedure: the statement and its positional values. The second value
    // is an empty string, never NULL: a null QString is bound as NULL by Qt's drivers, and
    // the procedure is given ''.
    struct Call {
        QString sql;
        QVector<QVariant> values;
    };
    Call workingHoursCall(qint16 company, int dayId) const;

private:
    Kind m_kind;
};

}  // namespace qz2::db
