#pragma once
// An attendance entry as the database holds it at one moment (its header, its detail lines
// and its allowance/deduction lines), the text it is kept as in the history table, and what
// changed between two such versions: as the table's compact change text and in words a
// clerk reads. Plain data and functions; the history store reads and writes the rows.
//
// The compact change text has one change per line:
//   <column>: <before> -> <after>              a header column (eaRemarks, eaEndDate, ...)
//   <yyyy-mm-dd> type: <before> -> <after>     a day's type code (P, A, L, H, HA, HL, AL)
//   <yyyy-mm-dd> pairs: <before> -> <after>    a day's check-in/check-out pairs, "09:00-13:00
//   14:00-18:00" <yyyy-mm-dd> claim: <before> -> <after>    a day's claim, "A 02:00" (allowance) or
//   "D 00:30" (deduction)
// "-" stands for none (a NULL column, a day without the entry, a day without times or
// claim); text columns are quoted with their quotes doubled; dates are yyyy-mm-dd, numbers
// as stored. A new entry lists every column and every day; an edit or a cancellation only
// what changed.

#include <QDate>
#include <QList>
#include <QString>
#include <QStringList>
#include <optional>

#include "rules/Saving.h"

namespace qz2::history {

enum class Action { Created, Edited, Imported, Cancelled };

// The code stored in the table ("created", "edited", "imported", "cancelled") and back.
QString actionCode(Action action);
std::optional<Action> actionFromCode(QStringView code);
// The word a clerk reads ("Created", ...).
QString actionWords(Action action);

// A version's lines are the rows of the detail and claim tables, as the save writes them.
using VersionLine = rules::DetailLine;
using VersionClaim = rules::AllowanceLine;

// The header columns a version keeps, in this order: eaNo, eaDate, eaEmpID, eaStartDate,
// eaEndDate, eaPresent, eaLeaves, eaAbsent, eacwtsid, eaPerHourRate, eaRemarks,
// eaCancelled, eaCancelledRemarks.
const QStringList& headerColumns();
// Columns whose values are text (quoted in the change text).
bool isTextColumn(QStringView column);

struct EntryVersion {
    qint32 id = 0;  // eaID
    // One value per headerColumns() entry, nullopt for NULL: dates "yyyy-mm-dd", numbers as
    // the shortest text that reads back as the same value, bits "0"/"1", text as stored.
    QList<std::optional<QString>> header;
    QList<VersionLine> lines;    // by detail number
    QList<VersionClaim> claims;  // by detail number
    std::optional<QString> value(QStringView column) const;
    void setValue(QStringView column, std::optional<QString> v);
    friend bool operator==(const EntryVersion&, const EntryVersion&) = default;
};

// A number as a version keeps it: the shortest text that reads back as the same double.
QString numberText(double value);

// A version as the history table keeps it (compact JSON, documented in the README) and back;
// nullopt for a text that is not such a version.
QString versionText(const EntryVersion& version);
std::optional<EntryVersion> versionFromText(const QString& text);

struct Change {
    enum class Kind { Header, Type, Pairs, Claim };
    Kind kind = Kind::Header;
    QString column;  // header column, or empty for a day's change
    QDate day;       // the day of a Type, Pairs or Claim change
    std::optional<QString> before;
    std::optional<QString> after;
    friend bool operator==(const Change&, const Change&) = default;
};

// A day's values as the change text writes them (nullopt for none).
std::optional<QString> dayType(const EntryVersion& v, QDate day);
std::optional<QString> dayPairs(const EntryVersion& v, QDate day);
std::optional<QString> dayClaim(const EntryVersion& v, QDate day);

// What differs from `before` to `after`: header columns in their order, then the days in
// date order (type, pairs, claim). Without `before` (a new entry) every column and day.
QList<Change> versionChanges(const EntryVersion* before, const EntryVersion& after);

// The compact change text (see above) and, for the register, the same in words: one line
// per header change, one line per day joining its changes with "; "
// ("16/11 check-out 18:00 → 20:00; Allowances 00:00 → 02:00").
QString changesText(const QList<Change>& changes);
QStringList changesInWords(const QList<Change>& changes);

// A new or imported entry in one line: its period, employee and counts. `employee` names
// the employee ("E0012 Asha Rao"); without it the identifier stands.
QString versionSummary(const EntryVersion& version, const QString& employee = QString());

// One day of a version as the register's history shows it.
struct VersionDay {
    QDate date;
    QString type;
    QString pairs;      // "09:00-13:00 14:00-18:00", empty without times
    QString allowance;  // "hh:mm", empty without an allowance line
    QString deduction;  // "hh:mm", empty without a deduction line
};
// The days of a version in date order.
QList<VersionDay> versionDays(const EntryVersion& version);

// The clerk's name of a day type code ("P" -> "Present", ...); the code itself when unknown.
QString dayTypeWords(const QString& code);

}  // namespace qz2::history
