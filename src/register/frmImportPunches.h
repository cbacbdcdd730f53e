#pragma once
// The register's Import punches...: a punch file and a period, then every active employee
// with punches gets the entry the entry form would build, saved one transaction each (or,
// with "Try without saving", checked and rolled back). A progress dialog follows the
// employees and can stop between two of them; the summary stays on the dialog to read.
// The work itself is punches::importCompanyPunches, which the host program's
// import-punches command runs too.

#include <QDialog>

class QCheckBox;
class QDateEdit;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;

namespace qz2 {

class frmImportPunches : public QDialog {
    Q_OBJECT
public:
    explicit frmImportPunches(QWidget* parent = nullptr);

    // Runs the import with what the boxes hold; false when nothing was run (a box or the
    // file said no). The summary is then on txtSummary.
    bool cmdImport_Click();
    // Whether an import wrote anything (the register then reads its list again).
    bool savedAny() const { return m_savedAny; }

    QLineEdit* txtFile;
    QPushButton* cmdBrowse;
    QDateEdit* dtpFrom;
    QDateEdit* dtpTo;
    QCheckBox* chkDryRun;
    QPushButton* cmdImport;
    QPushButton* cmdClose;
    QPlainTextEdit* txtSummary;

private:
    bool m_savedAny = false;
};

// Opens the dialog modally; true when entries were saved.
bool fnShowImportPunches(QWidget* parent);

}  // namespace qz2
