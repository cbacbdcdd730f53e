#pragma once
// An attendance entry as a clerk would key it, laid onto the entry form: the employee, the
// period, each day's type, pairs and claim, the remarks. Shared by the save and edit tests,
// the reliability tests and their child program, so that all of them save the same entry.
//
// The grids are built with the attendance rules (day rows, claims) and the form's own
// procedures (schedule hours, worked hours, counts), the way Populate and the clerk's
// edits leave them.

#include <QDate>
#include <QList>
#include <QSqlDatabase>
#include <QString>
#include <QStringList>

namespace qz2 {
class frmEmployeeDailyAttendance;
}

namespace qz2test {

struct ScenarioPair {
    QString checkIn;  // "HH:mm", or "" for a cell left empty
    QString checkOut;
};

struct ScenarioDay {
    QString type;               // "P", "A", "L", "H", "HA", "HL", "AL"
    QList<ScenarioPair> pairs;  // in the order keyed
    QString hours;              // the day's Hours text; "" leaves the computed value
    QString claim;              // AllowanceType: "A", "D" or "" (amount kept, nothing claimed)
};

struct Scenario {
    qint32 employee = 0;
    QDate start;  // the period is start .. start + days.size() - 1
    QList<ScenarioDay> days;
    QString remarks;
    QDate entryDate;  // txtAttdate; invalid keeps what the form proposed
    QDate end() const { return start.addDays(days.size() - 1); }
};

// Eight days from `start` (a Monday is best): two pairs with an unclaimed amount; three
// pairs claimed as an allowance of 02:45; absent; a half day absent with one pair; a
// holiday without times; a holiday with a pair; a leave day; one pair with a deduction of
// 00:40.
Scenario demoScenario(qint32 employee, QDate start,
                      const QString& remarks = QStringLiteral("Keyed from the punch cards"));

// A month-long entry for timing: every day present with six pairs, each day's difference
// claimed, allowance and deduction alternating.
Scenario busyMonthScenario(qint32 employee, QDate start, int days = 31);

// Lays the scenario onto a loaded form in New mode: selects the employee (which runs the
// employee box's own handler), sets the period, builds the day grid and the mirror grid,
// computes schedule and worked hours, writes the claims and counts the day types.
void fillForm(qz2::frmEmployeeDailyAttendance& form, const Scenario& s);

// The form saves as an edit of stored entry `id`, as if it had opened it: the entry's
// identifier and its header as stored now (what an edit may be saved over).
void openedAs(qz2::frmEmployeeDailyAttendance& form, qint32 id);

// The corrections made to a demoScenario entry loaded for edit: the first pair's check-out
// becomes 12:45, the half day (fourth day) becomes absent and loses its pair, and the
// allowance of the second day is withdrawn (its amount kept, nothing claimed). Hours and
// counts are recomputed as the form does after such edits.
void applyStandardEdit(qz2::frmEmployeeDailyAttendance& form, QDate start);

// Everything the clerk can see or change on the form, as text: every box, list, check box,
// date, the three grids cell by cell, which controls are enabled, and the form's own state
// that saving reads. Two snapshots are equal when the form is as it was.
QString formSnapshot(const qz2::frmEmployeeDailyAttendance& form);

// The n-th (from 0) active employee of company 1 with a department, a non-zero rate, at
// least one entry that is not cancelled and no monthly entry: one whose entries can be
// saved and edited freely. 0 when there is none.
qint32 freeEmployee(const QSqlDatabase& db, int n = 0);

// Opens an existing SQLite file as the session's connection (company 1, user 1, the
// demo's process date 2026-11-21, title "Attendance Test") and reads the link table.
// `busyTimeoutMs` < 0 keeps the driver's default lock wait.
QSqlDatabase openSessionFile(const QString& file, const QString& connectionName,
                             int busyTimeoutMs = -1);

// Creates a demo database in a file (schema and demo rows for 2026-11-21).
void createDemoFile(const QString& file);

}  // namespace qz2test
