#pragma once
// The history of one entry, from the register: every version newest first (when, what,
// who, the identifiers), what changed in words, and the entry as it was at the chosen
// version, read only. Reading and wording are src/history's; the dialog only shows them.

#include <QDialog>
#include <QList>

#include "history/HistoryStore.h"

class QLabel;
class QPlainTextEdit;
class QTableWidget;
class QTabWidget;

namespace qz2 {

class frmHistory : public QDialog {
    Q_OBJECT
public:
    // Reads the history of the entry `entryId` (as listed in the register; a re-keyed entry
    // is found under its old identifier too). A failed read is shown on the dialog.
    explicit frmHistory(qint32 entryId, QWidget* parent = nullptr);

    // The versions shown, newest first; a last row "before" when the oldest version was an
    // edit of an entry saved before history was kept.
    int versionCount() const;
    void showVersion(int row);

    QLabel* lblEntry;
    QTableWidget* grdVersions;
    QTabWidget* tabVersion;
    QPlainTextEdit* txtChanges;
    QLabel* lblVersionHeader;
    QTableWidget* grdVersionDays;

private:
    struct Shown {
        QString when;
        QString action;
        QString user;
        QString ids;
        QStringList words;
        std::optional<history::EntryVersion> entry;
        QString employee;  // number and name, or empty
    };
    QList<Shown> m_shown;
};

// Opens the history of the register's entry `entryId`, modally.
void fnShowHistory(QWidget* parent, qint32 entryId);

}  // namespace qz2
