#pragma once
// Importing a punch file for the whole company: for each active employee with punches, the
// entry the entry form would build (the proposed period, Populate, the punches laid on, the
// day counts) is saved as the form's OK saves it, in one transaction per employee. The
// form's own functions do the work (entry/EntryReads, rules::populateNewEntry,
// punches::layPunches, entry::fnSaveEntry); this only runs them employee after employee
// and says why an employee was left out.
//
// An employee is skipped, and nothing of theirs written, when the proposed period is not
// the one given, the department, calendar or work-time settings are missing, a day is
// flagged (a check-out missing, a stray check-out, more than six pairs, a punch after the
// business date), no punch falls in the period, or the save refuses (its message is the
// reason: a live entry overlapping the period, a zero rate, the database's message).

#include <QDate>
#include <QSqlDatabase>
#include <QString>
#include <QStringList>
#include <QVector>
#include <functional>
#include <optional>

#include "punches/Punch.h"
#include "punches/PunchPairs.h"

namespace qz2::punches {

struct CompanyImportRequest {
    qint16 company = 1;
    qint16 user = 1;
    qint32 interfaceId = 0;
    QDate from;  // the period every entry must have
    QDate to;
    QDate businessDate;      // the entries' date; punches after it flag their day
    bool dryRun = false;     // every check and save statement, rolled back
    PairingOptions pairing;  // duplicate window and night-shift settings (period set here)
};

enum class Outcome { Saved, WouldBeSaved, Skipped };

struct EmployeeImport {
    qint32 id = 0;
    QString code;  // eEmpNo
    QString name;
    Outcome outcome = Outcome::Skipped;
    QString reason;           // why skipped
    QStringList flaggedDays;  // "dd/mm/yyyy: check-out missing", for a skipped employee
    int pairs = 0;
    int duplicatesDropped = 0;
    int workingDaysWithoutPunches = 0;  // kept as laid out, never marked absent by the import
    std::optional<qint32> entryId;      // saved (or, in a dry run, would be)
    QString attendanceNo;
    bool databaseFailed = false;  // skipped because a statement failed
    // The employee picker greys this employee: attendance was already recorded beyond this,
    // their last payroll date, before the import. Imported all the same, and listed apart.
    std::optional<QDate> payrollBehind;
};

struct CompanyImportResult {
    QVector<EmployeeImport> employees;  // in the order of their numbers
    QStringList unmatchedCodes;         // unknown, inactive and ambiguous codes, with counts
    int punches = 0;                    // punches in the file
    bool stopped = false;               // the progress callback asked to stop
    int notReached = 0;                 // employees left untouched by a stop
    int count(Outcome outcome) const;
    bool databaseFailed() const;
};

// Called before each employee (done of total so far) and once at the end (total of total);
// returning false stops the import before the next employee.
using ImportProgress = std::function<bool(int done, int total, const QString& employee)>;

// Throws db::DbError when the company's employees cannot be read, std::invalid_argument for
// a request with a requestProblem; a statement failing for one employee skips that employee
// (databaseFailed) and the import goes on.
CompanyImportResult importCompanyPunches(const QSqlDatabase& db, QVector<Punch> punches,
                                         const CompanyImportRequest& request,
                                         const ImportProgress& progress = {});

// Whether the request can run: the period is valid, its end not before its start and not
// longer than an entry may be. The reason when not.
std::optional<QString> requestProblem(const CompanyImportRequest& request);

// The summary for the clerk and the terminal: counts first, then each saved employee, each
// skipped one with the reason and flagged days, then the codes that matched no one.
QStringList companyImportSummary(const CompanyImportResult& result, bool dryRun);

// 0 every employee saved, 1 some skipped (or stopped), 3 a statement failed.
int companyImportExitCode(const CompanyImportResult& result);

}  // namespace qz2::punches
