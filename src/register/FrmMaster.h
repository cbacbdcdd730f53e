#pragma once
// The attendance register: lists the company's recent entries, sorts and searches them,
// follows the user's rights, and starts a new entry, editing or cancelling.

#include <QDialog>
#include <memory>

class QComboBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;

namespace qz2 {

class FlexGrid;
namespace commonmodule {
class clsCommonDB;
class clsCommonGen;
}  // namespace commonmodule

class FrmMaster : public QDialog {
    Q_OBJECT
public:
    explicit FrmMaster(QWidget* parent = nullptr);
    ~FrmMaster() override;

    // The open register, if any (the shared services refresh its rows).
    static FrmMaster* instance();

    // Start-up: names, settings, list, rights. Database errors end it quietly (the list
    // stays empty and the status line says why).
    void Form_Load();

    void flexmaster_Click();
    void cboColNames_Click();
    void txtsearch_KeyUp();
    void cmdnew_Click();
    void CmdEdit_Click();
    void CmdDelete_Click();
    void CmdClose_Click();
    void GridPopulate(const QString& query);
    void GridColor();
    void UserRights();
    // The letter found in the rights string (both normalised in place); "ADMIN" grants nothing.
    bool fnUserRights(QString letter, QString& rights);

    QString strFunctionRights;
    // Whether the rights read when the register opened grant `letter` ("N" add, "E" edit,
    // "D" cancel). The buttons follow the row-click logic; every action asks this before it
    // writes anything. No rights row, or rights that could not be read, grant nothing.
    bool fnMay(const QString& letter);
    // After a form or dialog closes: the register is the active window again and the list
    // has the keyboard focus, on entry `id` when it is listed (else where it stands).
    void fnBackToList(const QString& id = QString());
    bool loaded() const { return m_loaded; }

    FlexGrid* flexMaster;
    QGroupBox* fraBrowse;
    QComboBox* cboColNames;
    QRadioButton* optAscend;
    QRadioButton* optDescend;
    QComboBox* cboSearch;
    QLineEdit* txtsearch;
    QLabel* lblsearch;
    QPushButton* cmdnew;
    QPushButton* CmdEdit;
    QPushButton* CmdDelete;
    QPushButton* CmdClose;
    QPushButton* cmdHistory;
    QPushButton* cmdImportPunches;
    QLabel* lblStatus;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void loadHeadings(const QStringList& fallbackNames);
    void runClickLogicGuarded();
    // The row's cancelled column as the database holds it ("Yes" in red, or "No").
    void showCancelled(int row, bool cancelled);
    // "N entries, M cancelled" from the list as it stands.
    void showEntryCount();
    // Whether the database keeps the entries' history: History is enabled, or the status
    // line says once that it is not kept.
    void fnCheckHistoryKept();
    QString m_historyNote;

    std::unique_ptr<commonmodule::clsCommonGen> m_gen;
    std::unique_ptr<commonmodule::clsCommonDB> m_db;
    QString strFromClause;
    bool m_loaded = false;
    QStringList m_headings;
};

// The text a register cell shows for a database value: dates as "dd/mm/yyyy", NULL empty.
QString registerCellText(const QVariant& value);

// The status line's note for a database without the history table.
QString historyNotKeptText();

// The refusals of an action the user has no right to.
QString noRightToAddText();
QString noRightToCancelText();

}  // namespace qz2
