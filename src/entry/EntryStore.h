#pragma once
// Saving an entry without a window: everything the entry form's OK writes, given as plain
// data (the header's values and the day and mirror grids' models), in one transaction with
// its history row. The form's OK calls it; so will anything else that saves an entry as
// OK would, so that one set of checks and statements serves them all.

#include <QDate>
#include <QSqlDatabase>
#include <QString>
#include <QStringList>
#include <optional>

#include "history/EntryVersion.h"
#include "shared/FlexGrid.h"

namespace qz2::entry {

struct EntryToSave {
    // An edit: the stored entry opened, its header as loaded and its number. A new entry
    // is numbered in the transaction.
    std::optional<qint32> editedId;
    QStringList openedHeader;
    QString attendanceNo;
    qint32 employee = 0;
    // The entry's date and start as the form's boxes hold them ("dd/mm/yyyy"); a text that
    // is no date fails the save with the conversion error, where the save first needs it.
    QString entryDateText;
    QString startText;
    QDate end;
    double present = 0.0;
    double leaves = 0.0;
    double absent = 0.0;
    qint32 workTimeSettingId = 0;
    QString remarks;  // as keyed; stored cleaned, NULL when blank
    const FlexGridModel* days = nullptr;
    const FlexGridModel* mirror = nullptr;
    history::Action action = history::Action::Created;
    // A rehearsal: every check and statement of the save runs in its transaction, which is
    // then rolled back. What it says is what the save would say; nothing is written.
    bool dryRun = false;
};

struct SaveResult {
    std::optional<qint32> savedId;  // the entry's eaID once committed (a dry run's would-be one)
    // Why nothing was saved, for the clerk (an information box): a check that refused
    // (monthly entry, zero rate, overlap, an edit over a changed entry) or the database's
    // message. Empty when saved.
    QString message;
    QString attendanceNo = {};  // the number it was saved under
    bool failed = false;        // the database failed (not a check that refused)
};

// Saves `e` for the company as the user: the checks, then header, detail lines, claims and
// the history row in one transaction (SQLite's write lock taken at its start), rolled back
// whole on any failure.
SaveResult fnSaveEntry(const QSqlDatabase& db, qint16 company, qint16 user, qint32 interfaceId,
                       const EntryToSave& e);

}  // namespace qz2::entry
