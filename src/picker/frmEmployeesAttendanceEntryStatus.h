#pragma once
// The employee picker: the company's active employees, those with attendance recorded
// beyond their last payroll greyed and not choosable. Choosing an employee selects it in
// the entry form's employee box (which then runs its own selection handler) and closes.

#include <QColor>
#include <QDialog>
#include <memory>

class QComboBox;
class QLabel;
class QPushButton;

namespace qz2 {

class FlexGrid;
namespace db {
class Recordset;
}
namespace commonmodule {
class clsCommonDB;
class clsCommonGen;
}  // namespace commonmodule

class frmEmployeesAttendanceEntryStatus : public QDialog {
    Q_OBJECT
public:
    // `employeeBox` is the entry form's cboEmpname.
    explicit frmEmployeesAttendanceEntryStatus(QComboBox* employeeBox, QWidget* parent = nullptr);
    ~frmEmployeesAttendanceEntryStatus() override;

    // The grey of a blocked row, RGB(200, 198, 192).
    static QColor blockedColor() { return QColor(200, 198, 192); }

    // Reads the employees once, writes the headings and rows and greys the blocked rows.
    // Database errors end it quietly; the picker stays open with what it shows.
    void Form_Load();
    // As many columns as the result has, the heading row only, each column's name.
    void GridHeading(const db::Recordset& rs);
    // One row per record, every value as text (a Boolean as "True" or "False").
    void fnGridPopulate(const db::Recordset& rs);
    // Greys every cell of the rows of employees with attendance beyond their last payroll.
    void fnChangeEmployeeProcessStatus();
    // A click on a cell (grid coordinates): nothing on a grey row or an empty grid;
    // otherwise the row's employee is selected in the entry form and the picker closes.
    void mfgEmployee_Click(int row, int col);
    void cmdCancel_Click();

    // The employee handed to the entry form, 0 until one is chosen.
    qint32 chosenEmployee() const { return m_chosen; }

    FlexGrid* mfgEmployee;
    QPushButton* cmdCancel;
    QLabel* lblStatus;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QComboBox* m_employeeBox;
    std::unique_ptr<commonmodule::clsCommonGen> m_gen;
    std::unique_ptr<commonmodule::clsCommonDB> m_db;
    qint32 m_chosen = 0;
};

}  // namespace qz2
