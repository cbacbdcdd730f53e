#pragma once
// Every statement of saving an entry and of loading a stored entry back into the entry
// form. Each builder writes the suite's T-SQL text to the letter (blanks, letter case and
// "1and"-style glue included) and asks the dialect only for what SQLite writes in its own
// way. Table names come from LinkedTableNames, except where a statement names a table
// literally ("pEmployee" in the currency statement, "pEmpAttendanceDetail" in the two
// detail reads of the loader).
//
// The values bound to the inserts' "?" markers are made here too, so that the one place
// that knows how a date or a time of day is stored is next to the statements that store it.

#include <QDate>
#include <QSqlDatabase>
#include <QString>
#include <QVariant>
#include <QVector>
#include <optional>

#include "db/Database.h"
#include "db/Dialect.h"
#include "shared/TimeValue.h"

namespace qz2::entry::savesql {

// ---- Saving --------------------------------------------------------------------------

// The edited entry's old rows, deleted in this order: allowance lines, detail lines, header.
QString deleteAllowanceLines(qint16 company, qint32 oldId);
QString deleteDetailLines(qint16 company, qint32 oldId);
QString deleteHeader(qint16 company, qint32 oldId);

// The employee's first entry that is not cancelled and shares a day with the period
// start..end (touching periods share none), other than the entry being edited: its number,
// start and end. On SQL Server the rows read stay locked to the saving transaction, so that
// no other clerk can write an overlapping entry between this check and the save's inserts;
// SQLite's write lock is already held by then.
QString overlappingEntryQuery(const db::Dialect& d, qint16 company, qint32 employee, QDate start,
                              QDate end, std::optional<qint32> editedId);

// How many entries of the company already carry the attendance number (its quotes doubled in
// the literal): a new entry's number must be free.
QString attendanceNoTakenQuery(qint16 company, const QString& attendanceNo);

// The three inserts, with positional "?" markers in column order (14, 7 and 7 values).
QString headerInsert();
QString detailInsert();
QString allowanceInsert();

// The overtime allowance and late-coming deduction heads of the employee's currency.
QString currencyHeadsQuery(qint32 employee, qint16 company);

// The switch that makes a zero hourly rate an error, and the employee's hourly rate: the
// condition handed to the helper's fnReturnField on pSettings and on the employee table.
QString rateSettingCondition(qint16 company);
QString employeeRateCondition(qint16 company, qint32 employee);

// The next save must wait for another writer rather than fail at once: SQLite's lock wait,
// read and (when none is set) set on the shared connection. nullopt on SQL Server, whose
// server waits by itself.
std::optional<QString> lockWaitQuery(const db::Dialect& d);
std::optional<QString> setLockWait(const db::Dialect& d, int milliseconds);

// How the inserts bind a day and a time of day. SQLite stores ISO text "YYYY-MM-DD" and
// "HH:MM:SS" (the storage contract); SQL Server takes date/time values, a time of day being
// that time on the base day 1899-12-30, as the suite's time columns hold it.
QVariant dateValue(const db::Dialect& d, QDate date);
QVariant timeValue(const db::Dialect& d, TimeValue time);
// NULLs of the columns' own kinds (a typed NULL binds on every driver).
QVariant noTime(const db::Dialect& d);
QVariant noNumber();
QVariant noText();

// One insert of a save: prepared when its first row is written, then executed once per row
// with that row's values. A save makes each of its three inserts once.
class InsertCommand {
public:
    InsertCommand(const QSqlDatabase& db, const QString& sql) : m_command(db, sql) {}
    void execute(const QVector<QVariant>& values);
    const QString& text() const { return m_command.text(); }

private:
    db::Command m_command;
    bool m_prepared = false;
};
// How many inserts the saves of this process have prepared (benchmarks read it around a save).
qint64 insertPreparations();

// ---- Loading a stored entry ----------------------------------------------------------

// The entry's header row. The suite's text has no blank between the company and "and eaid=".
QString headerQuery(const db::Dialect& d, qint16 company, const QString& id);
// Every detail line of the entry (check-in/check-out pairs and days without times).
QString detailLinesQuery(qint16 company, const QString& id);
// The entry's days, one row per distinct date and type, in date order.
QString entryDaysQuery(qint16 company, const QString& id);
// The entry's allowance and deduction lines.
QString allowanceLinesQuery(qint16 company, const QString& id);

// The header row of a read of headerQuery as text, column by column (see
// rules::headerFingerprint); empty when the entry's row is not there.
QStringList storedHeaderFingerprint(const db::Recordset& header);

}  // namespace qz2::entry::savesql
