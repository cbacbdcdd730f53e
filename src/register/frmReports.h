#pragma once
// The register's reports: the monthly muster or the payroll summary for a period and a
// department, or the sheet of one entry; shown in a print preview (and printed from it) or
// saved as PDF, XLSX or CSV. The dialog only gathers the choice: reading, figures and
// writing are src/reports'.

#include <QDialog>
#include <optional>

#include "reports/ReportTable.h"

class QComboBox;
class QDateEdit;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;

namespace qz2 {

class frmReports : public QDialog {
    Q_OBJECT
public:
    // `entryNo`: the register's selected entry, offered for the sheet.
    explicit frmReports(const QString& entryNo, QWidget* parent = nullptr);

    void cmdPreview_Click();
    void cmdSave_Click();
    void cmdBrowse_Click();

    QRadioButton* optMuster;
    QRadioButton* optPayroll;
    QRadioButton* optSheet;
    QDateEdit* dtpFrom;
    QDateEdit* dtpTo;
    QComboBox* cboDepartment;
    QLineEdit* txtEntryNo;
    QComboBox* cboFormat;
    QLineEdit* txtFile;
    QPushButton* cmdBrowse;
    QPushButton* cmdPreview;
    QPushButton* cmdSave;
    QPushButton* cmdClose;
    QLabel* lblStatus;

private:
    void fnEnableChoices();
    // The chosen report, or nullopt after telling the clerk why not.
    std::optional<reports::ReportTable> fnBuildReport();
    reports::Progress fnProgress(const QString& what);
};

// Runs the dialog modally over the register.
void fnShowReports(QWidget* parent, const QString& entryNo);

}  // namespace qz2
