#include "picker/frmEmployeesAttendanceEntryStatus.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>
#include <exception>

#include "commonmodule/CommonModule.h"
#include "db/Database.h"
#include "picker/PickerSql.h"
#include "picker/PickerStatus.h"
#include "shared/BasAttendence.h"
#include "shared/FlexGrid.h"

namespace qz2 {

namespace {
QString cellText(const QVariant& v) {
    if (v.isNull()) return {};
    if (v.typeId() == QMetaType::Bool)
        return v.toBool() ? QStringLiteral("True") : QStringLiteral("False");
    return v.toString();
}
}  // namespace

frmEmployeesAttendanceEntryStatus::frmEmployeesAttendanceEntryStatus(QComboBox* employeeBox,
                                                                     QWidget* parent)
    : QDialog(parent), m_employeeBox(employeeBox) {
    setObjectName(QStringLiteral("frmEmployeesAttendanceEntryStatus"));
    setWindowTitle(tr("Employees - Attendance Entry Status"));
    setSizeGripEnabled(true);

    lblStatus = new QLabel(
        tr("Click an employee to choose. Greyed employees have attendance recorded beyond "
           "their last payroll and cannot be chosen."),
        this);
    lblStatus->setObjectName(QStringLiteral("lblStatus"));
    lblStatus->setWordWrap(true);
    mfgEmployee = new FlexGrid(this);
    mfgEmployee->setObjectName(QStringLiteral("mfgEmployee"));
    mfgEmployee->setSelectionBehavior(QAbstractItemView::SelectRows);
    mfgEmployee->horizontalHeader()->setStretchLastSection(true);
    mfgEmployee->installEventFilter(this);
    cmdCancel = new QPushButton(tr("Cancel"), this);
    cmdCancel->setObjectName(QStringLiteral("cmdCancel"));
    cmdCancel->setAutoDefault(false);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(cmdCancel);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(lblStatus);
    layout->addWidget(mfgEmployee, 1);
    layout->addLayout(buttons);
    resize(620, 440);

    connect(mfgEmployee, &QAbstractItemView::clicked, this, [this](const QModelIndex& index) {
        mfgEmployee_Click(index.row() + 1, index.column());
    });
    connect(cmdCancel, &QPushButton::clicked, this, [this] { cmdCancel_Click(); });
}

frmEmployeesAttendanceEntryStatus::~frmEmployeesAttendanceEntryStatus() = default;

void frmEmployeesAttendanceEntryStatus::Form_Load() {
    m_gen = commonmodule::createCommonGen();
    m_db = commonmodule::createCommonDB(gadocon);
    try {
        const db::Recordset rs =
            db::openRecordset(gadocon, picker::sql::employeeStatusQuery(gintCompanyID));
        GridHeading(rs);
        fnGridPopulate(rs);
        fnChangeEmployeeProcessStatus();
    } catch (const std::exception&) {
        // Trapped: the picker shows what it could read.
    }
    mfgEmployee->setFocus();
}

void frmEmployeesAttendanceEntryStatus::GridHeading(const db::Recordset& rs) {
    mfgEmployee->setRows(1);
    mfgEmployee->setCols(rs.fieldCount());
    for (int c = 0; c < rs.fieldCount(); ++c) mfgEmployee->setTextMatrix(0, c, rs.fieldName(c));
}

void frmEmployeesAttendanceEntryStatus::fnGridPopulate(const db::Recordset& rs) {
    // All rows in one go: a large company should not repaint the grid once per employee.
    QVector<QStringList> rows;
    rows.reserve(rs.recordCount());
    for (int r = 0; r < rs.recordCount(); ++r) {
        QStringList cells;
        for (const QVariant& v : rs.row(r)) cells << cellText(v);
        rows.push_back(cells);
    }
    mfgEmployee->flexModel()->setAllRows(std::move(rows));
    mfgEmployee->resizeColumnsToContents();
}

void frmEmployeesAttendanceEntryStatus::fnChangeEmployeeProcessStatus() {
    QVector<qint32> employees;
    for (int row = 1; row < mfgEmployee->Rows(); ++row)
        employees << mfgEmployee->TextMatrix(row, 0).toInt();
    const QVector<bool> blocked = picker::blockedByAggregate(gadocon, employees);
    for (int row = 1; row < mfgEmployee->Rows(); ++row) {
        if (!blocked[row - 1]) continue;
        for (int col = 0; col < mfgEmployee->Cols(); ++col)
            mfgEmployee->setCellBackColor(row, col, blockedColor());
    }
}

void frmEmployeesAttendanceEntryStatus::mfgEmployee_Click(int row, int col) {
    if (mfgEmployee->Rows() <= 1 || row < 1 || row >= mfgEmployee->Rows()) return;
    if (mfgEmployee->cellBackColor(row, col) == blockedColor()) return;
    m_chosen = mfgEmployee->TextMatrix(row, 0).toInt();
    // The shared helper takes the employee as a 16-bit number, as the suite's helper did; a
    // number beyond that range cannot be passed, and the picker then stays open rather than
    // leave the clerk keying for the employee selected before.
    if (m_chosen < -32768 || m_chosen > 32767) return;
    qint16 employee = static_cast<qint16>(m_chosen);
    if (m_db && m_employeeBox) m_db->SelectComboItem(m_employeeBox, employee);
    accept();
}

void frmEmployeesAttendanceEntryStatus::cmdCancel_Click() {
    reject();
}

bool frmEmployeesAttendanceEntryStatus::eventFilter(QObject* watched, QEvent* event) {
    // Enter on a row chooses it, as a click would, for the clerk who keeps to the keyboard.
    if (watched == mfgEmployee && event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(event);
        if ((key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter) &&
            mfgEmployee->Row() > 0) {
            mfgEmployee_Click(mfgEmployee->Row(), mfgEmployee->Col());
            return true;
        }
    }
    return QDialog::eventFilter(watched, event);
}

}  // namespace qz2
