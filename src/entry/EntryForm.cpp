// The entry form's controls and layout, its start-up, keyboard handling, Cancel and the
// set-up of its three grids.

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QCloseEvent>
#include <QAbstractItemView>
#include <QCompleter>
#include <QHash>
#include <QComboBox>
#include <QDateEdit>
#include <QEvent>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QItemSelectionModel>
#include <QListWidget>
#include <QMenu>
#include <QPalette>
#include <QPushButton>
#include <QSet>
#include <QSplitter>
#include <QTimeEdit>
#include <QVBoxLayout>
#include <exception>

#include "commonmodule/CommonModule.h"
#include "db/Database.h"
#include "entry/AmountTextValidator.h"
#include "entry/DateTextValidator.h"
#include "entry/EmployeeChoice.h"
#include "entry/EntryReads.h"
#include "entry/EntrySql.h"
#include "entry/frmEmployeeDailyAttendance.h"
#include "picker/PickerStatus.h"
#include "picker/frmEmployeesAttendanceEntryStatus.h"
#include "rules/Hours.h"
#include "shared/BasAttendence.h"
#include "shared/FlexGrid.h"
#include "shared/MsgBox.h"

namespace qz2 {

namespace {

template <typename W>
W* named(W* widget, const char* name) {
    widget->setObjectName(QString::fromLatin1(name));
    return widget;
}

QLineEdit* readOnlyBox(QWidget* parent, const char* name, int minChars) {
    auto* box = named(new QLineEdit(parent), name);
    // The form fills these; the clerk only reads them. They look like the form's
    // background, not like a box to type in, and Tab passes them by (a click still takes
    // the focus, to copy the text).
    box->setReadOnly(true);
    QPalette look = box->palette();
    look.setColor(QPalette::Base, look.color(QPalette::Window));
    box->setPalette(look);
    box->setFocusPolicy(Qt::ClickFocus);
    box->setMinimumWidth(box->fontMetrics().horizontalAdvance(QLatin1Char('0')) * minChars + 16);
    return box;
}

QPushButton* button(QWidget* parent, const char* name, const QString& caption) {
    auto* b = named(new QPushButton(caption, parent), name);
    // Enter moves to the next control on this form; it must never press a button by itself.
    b->setAutoDefault(false);
    b->setDefault(false);
    return b;
}

// The keyboard's way to a popup: the Menu key, or Shift+F10.
bool isMenuKey(const QKeyEvent* key) {
    return key->key() == Qt::Key_Menu ||
           (key->key() == Qt::Key_F10 && (key->modifiers() & Qt::ShiftModifier));
}

// Where a cell of a grid is, for a popup asked for from the keyboard: the popups take the
// point of a right click, and this is the point the clerk is looking at.
std::optional<QPoint> cellCentre(FlexGrid* grid, int row, int col) {
    if (row < 1 || row >= grid->Rows()) return std::nullopt;
    const QModelIndex index = grid->model()->index(row - 1, col);
    grid->scrollTo(index);
    const QRect cell = grid->visualRect(index);
    if (cell.isEmpty()) return std::nullopt;
    return cell.center();
}

QLabel* buddyLabel(const QString& caption, QWidget* buddy, QWidget* parent) {
    auto* label = new QLabel(caption, parent);
    label->setBuddy(buddy);
    return label;
}

}  // namespace

frmEmployeeDailyAttendance::frmEmployeeDailyAttendance(QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("frmEmployeeDailyAttendance"));
    setWindowTitle(tr("Daily Attendance Entry"));
    setSizeGripEnabled(true);
    buildControls();
    buildLayout();
    connectEvents();
    applyTabOrder();
    fnSetUpAttendanceGrid();
    fnSetUpCheckGrid();
    fnSetUpMirrorGrid();
}

frmEmployeeDailyAttendance::~frmEmployeeDailyAttendance() {
    // The dialog hides itself after this class's members are gone, and hiding moves the
    // focus, which ends editing in the date boxes: no handler of this form may run then.
    for (QObject* child : findChildren<QObject*>()) disconnect(child, nullptr, this, nullptr);
}

void frmEmployeeDailyAttendance::buildControls() {
    fraEmployeeAttendance =
        named(new QGroupBox(tr("Employee and period"), this), "fraEmployeeAttendance");
    fraGridContainer =
        named(new QGroupBox(tr("Attendance of the period"), this), "fraGridContainer");

    QWidget* top = fraEmployeeAttendance;
    cboEmpname = named(new QComboBox(top), "cboEmpname");
    // The clerk types a number or a part of a name; the list offers every employee that
    // matches, and only a listed employee can be chosen.
    cboEmpname->setEditable(true);
    cboEmpname->setInsertPolicy(QComboBox::NoInsert);
    {
        auto* finder = new QCompleter(cboEmpname->model(), cboEmpname);
        finder->setCompletionMode(QCompleter::PopupCompletion);
        finder->setFilterMode(Qt::MatchContains);
        finder->setCaseSensitivity(Qt::CaseInsensitive);
        cboEmpname->setCompleter(finder);
    }
    cboEmpname->lineEdit()->setPlaceholderText(tr("Type a number or a name"));
    cboEmpname->setMinimumContentsLength(32);
    cboEmpname->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    lblEmpname = named(buddyLabel(tr("&Employee:"), cboEmpname, top), "lblEmpname");
    cmdEmployee = button(top, "cmdEmployee", tr("&Find employee..."));
    cmdEmployee->setToolTip(
        tr("Choose the employee from the list that shows who can still be processed"));
    lblEmployeeStatus = named(new QLabel(top), "lblEmployeeStatus");
    lblEmployeeStatus->setWordWrap(true);
    lblEmployeeStatus->setTextFormat(Qt::PlainText);
    {
        QPalette look = lblEmployeeStatus->palette();
        look.setColor(QPalette::WindowText, QColor(0x9A, 0x4B, 0x00));  // amber: heed, not stop
        lblEmployeeStatus->setPalette(look);
    }
    lblEmployeeStatus->setVisible(false);
    txtAttNo = readOnlyBox(top, "txtAttNo", 10);
    txtAttNo->setToolTip(tr("Given when the entry is saved"));
    txtAttdate = named(new QLineEdit(top), "txtAttdate");
    entry::DateTextValidator::guard(txtAttdate);
    txtStartDate = named(new QLineEdit(top), "txtStartDate");
    entry::DateTextValidator::guard(txtStartDate);
    dtpEndDate = named(new QDateEdit(top), "dtpEndDate");
    dtpEndDate->setDisplayFormat(QStringLiteral("dd/MM/yyyy"));
    dtpEndDate->setCalendarPopup(true);
    entry::DateTextValidator::guardPicker(dtpEndDate);
    // The end as text, for the code that reads it so; the date picker shows it to the clerk.
    txtEndDate = named(new QLineEdit(top), "txtEndDate");
    txtEndDate->setReadOnly(true);
    txtEndDate->setVisible(false);
    txtTotalDays = readOnlyBox(top, "txtTotalDays", 4);

    QWidget* mid = fraGridContainer;
    lstAbsentDays = named(new QListWidget(mid), "lstAbsentDays");
    // A click ticks or unticks a day; ticked days are also shown selected, so the picks
    // stand out however the list is read.
    lstAbsentDays->setSelectionMode(QAbstractItemView::MultiSelection);
    lstAbsentDays->setToolTip(tr("Tick the days the employee was absent, then press Populate"));
    lstAbsentDays->setMinimumWidth(
        lstAbsentDays->fontMetrics().horizontalAdvance(QStringLiteral("0000/00/00")) + 56);
    cmdPopulateRecords = button(mid, "cmdPopulateRecords", tr("&Populate"));
    cmdImportPunches = button(mid, "cmdImportPunches", tr("Import p&unches..."));
    cmdImportPunches->setToolTip(
        tr("After Populate: lay the employee's time-clock punches from a file onto the period"));
    mfgAttendance = named(new FlexGrid(mid), "mfgAttendance");
    mfgCheckinCheckOut = named(new FlexGrid(mid), "mfgCheckinCheckOut");
    mfgMirrorGrid = named(new FlexGrid(mid), "mfgMirrorGrid");
    mfgMirrorGrid->setVisible(false);
    chkAllowanceDeductions =
        named(new QCheckBox(tr("Allowance/Deductions"), mid), "chkAllowanceDeductions");
    txtAllowanceDeductions = named(new QLineEdit(mid), "txtAllowanceDeductions");
    // Hours and minutes as "hh.mm" (or "hh:mm"), 00.00 to 23.59: anything else could never
    // be saved.
    entry::AmountTextValidator::guard(txtAllowanceDeductions);
    txtAllowanceDeductions->setMaximumWidth(
        txtAllowanceDeductions->fontMetrics().horizontalAdvance(QStringLiteral("00000.00")) + 16);
    txtNoPresent = readOnlyBox(mid, "txtNoPresent", 5);
    txtNoLeave = readOnlyBox(mid, "txtNoLeave", 5);
    txtNoAbsent = readOnlyBox(mid, "txtNoAbsent", 5);

    lblReadOnly = named(new QLabel(this), "lblReadOnly");
    lblReadOnly->setWordWrap(true);
    lblReadOnly->setTextFormat(Qt::PlainText);
    lblReadOnly->setTextInteractionFlags(Qt::TextSelectableByMouse);
    lblReadOnly->setFrameShape(QFrame::StyledPanel);
    lblReadOnly->setMargin(6);
    lblReadOnly->setAutoFillBackground(true);
    {
        QPalette look = lblReadOnly->palette();
        look.setColor(QPalette::Window, QColor(0xFF, 0xF4, 0xCE));  // a pale note yellow
        look.setColor(QPalette::WindowText, QColor(0x5C, 0x3C, 0x00));
        lblReadOnly->setPalette(look);
        QFont bold = lblReadOnly->font();
        bold.setBold(true);
        lblReadOnly->setFont(bold);
    }
    lblReadOnly->setVisible(false);

    txtRemarks = named(new QLineEdit(this), "txtRemarks");
    // As long as the remarks column holds (varchar(500) in the suite's schema): a longer text
    // could not be saved whole.
    txtRemarks->setMaxLength(500);
    cmdOK = button(this, "cmdOK", tr("OK"));
    cmdCancel = button(this, "cmdCancel", tr("Cancel"));

    mnuPopUp = named(new QMenu(this), "mnuPopUp");
    mnuDelete = named(mnuPopUp->addAction(tr("&Delete")), "mnuDelete");
    mnuHalfDay = named(mnuPopUp->addAction(tr("&Mark Half Day Absent")), "mnuHalfDay");
}

void frmEmployeeDailyAttendance::buildLayout() {
    // Employee and period: who, which entry, which days. Labels in the first column,
    // each line's boxes after them; only the employee box grows with the form.
    auto* head = new QGridLayout(fraEmployeeAttendance);
    auto* employeeRow = new QHBoxLayout;
    employeeRow->addWidget(cboEmpname, 1);
    employeeRow->addWidget(cmdEmployee);
    employeeRow->addSpacing(16);
    employeeRow->addWidget(buddyLabel(tr("Attendance &no:"), txtAttNo, fraEmployeeAttendance));
    employeeRow->addWidget(txtAttNo);
    employeeRow->addSpacing(16);
    employeeRow->addWidget(buddyLabel(tr("Entry &date:"), txtAttdate, fraEmployeeAttendance));
    employeeRow->addWidget(txtAttdate);
    auto* periodRow = new QHBoxLayout;
    periodRow->addWidget(txtStartDate);
    periodRow->addSpacing(16);
    periodRow->addWidget(buddyLabel(tr("&To:"), dtpEndDate, fraEmployeeAttendance));
    periodRow->addWidget(dtpEndDate);
    periodRow->addSpacing(16);
    periodRow->addWidget(buddyLabel(tr("Total da&ys:"), txtTotalDays, fraEmployeeAttendance));
    periodRow->addWidget(txtTotalDays);
    periodRow->addWidget(txtEndDate);
    periodRow->addStretch(1);
    head->addWidget(lblEmpname, 0, 0);
    head->addLayout(employeeRow, 0, 1);
    // "F" belongs to Find employee: every Alt letter of the form is its own.
    head->addWidget(buddyLabel(tr("Fro&m:"), txtStartDate, fraEmployeeAttendance), 1, 0);
    head->addLayout(periodRow, 1, 1);
    head->addWidget(lblEmployeeStatus, 2, 1);
    head->setColumnStretch(1, 1);
    const auto widthFor = [](QWidget* w, const QString& sample, int extra) {
        w->setFixedWidth(w->fontMetrics().horizontalAdvance(sample) + extra);
    };
    widthFor(txtAttNo, QStringLiteral("ATT0000000"), 16);
    widthFor(txtAttdate, QStringLiteral("00/00/00000"), 16);
    widthFor(txtStartDate, QStringLiteral("00/00/00000"), 16);
    widthFor(dtpEndDate, QStringLiteral("00/00/00000"), 48);
    widthFor(txtTotalDays, QStringLiteral("00000"), 16);
    for (QLineEdit* box : {txtNoPresent, txtNoLeave, txtNoAbsent})
        widthFor(box, QStringLiteral("000.00"), 16);

    // Left: the days to mark absent and Populate; middle: the day grid and the counts;
    // right: the selected day's check-in/check-out pairs and its allowance or deduction.
    auto* absentPane = new QWidget(fraGridContainer);
    auto* absentBox = new QVBoxLayout(absentPane);
    absentBox->setContentsMargins(0, 0, 0, 0);
    absentBox->addWidget(buddyLabel(tr("&Absent days:"), lstAbsentDays, absentPane));
    absentBox->addWidget(lstAbsentDays, 1);
    absentBox->addWidget(cmdPopulateRecords);
    absentBox->addWidget(cmdImportPunches);

    auto* dayPane = new QWidget(fraGridContainer);
    auto* dayBox = new QVBoxLayout(dayPane);
    dayBox->setContentsMargins(0, 0, 0, 0);
    dayBox->addWidget(buddyLabel(tr("Days of the per&iod:"), mfgAttendance, dayPane));
    dayBox->addWidget(mfgAttendance, 1);
    auto* counts = new QHBoxLayout;
    counts->addWidget(buddyLabel(tr("Present:"), txtNoPresent, dayPane));
    counts->addWidget(txtNoPresent);
    counts->addSpacing(8);
    counts->addWidget(buddyLabel(tr("Leave:"), txtNoLeave, dayPane));
    counts->addWidget(txtNoLeave);
    counts->addSpacing(8);
    counts->addWidget(buddyLabel(tr("Absent:"), txtNoAbsent, dayPane));
    counts->addWidget(txtNoAbsent);
    counts->addStretch(1);
    dayBox->addLayout(counts);

    auto* pairPane = new QWidget(fraGridContainer);
    auto* pairBox = new QVBoxLayout(pairPane);
    pairBox->setContentsMargins(0, 0, 0, 0);
    pairBox->addWidget(
        buddyLabel(tr("C&heck-in / check-out of the day:"), mfgCheckinCheckOut, pairPane));
    pairBox->addWidget(mfgCheckinCheckOut, 1);
    auto* claim = new QHBoxLayout;
    claim->addWidget(chkAllowanceDeductions);
    claim->addWidget(txtAllowanceDeductions);
    claim->addStretch(1);
    pairBox->addLayout(claim);
    // The time picker floats over the pair grid's cells, so it shares the grid's parent.
    dtpCheckTime = named(new QTimeEdit(pairPane), "dtpCheckTime");
    dtpCheckTime->setDisplayFormat(QStringLiteral("HH:mm"));
    dtpCheckTime->setVisible(false);
    mfgMirrorGrid->setParent(pairPane);
    mfgMirrorGrid->setVisible(false);

    auto* splitter = new QSplitter(Qt::Horizontal, fraGridContainer);
    splitter->setChildrenCollapsible(false);
    splitter->addWidget(absentPane);
    splitter->addWidget(dayPane);
    splitter->addWidget(pairPane);
    splitter->setStretchFactor(0, 0);
    splitter->setStretchFactor(1, 3);
    splitter->setStretchFactor(2, 2);
    auto* gridBox = new QVBoxLayout(fraGridContainer);
    gridBox->addWidget(splitter);

    auto* bottom = new QHBoxLayout;
    bottom->addWidget(buddyLabel(tr("&Remarks:"), txtRemarks, this));
    bottom->addWidget(txtRemarks, 1);
    bottom->addSpacing(12);
    bottom->addWidget(cmdOK);
    bottom->addWidget(cmdCancel);

    auto* form = new QVBoxLayout(this);
    form->addWidget(lblReadOnly);
    form->addWidget(fraEmployeeAttendance);
    form->addWidget(fraGridContainer, 1);
    form->addLayout(bottom);

    // The day grid's columns are narrower than some of their headings: the headings wrap
    // onto a second line instead of being cut.
    for (FlexGrid* grid : {mfgAttendance, mfgCheckinCheckOut}) {
        grid->horizontalHeader()->setDefaultAlignment(
            Qt::Alignment(Qt::AlignCenter | Qt::TextWordWrap));
        grid->horizontalHeader()->setMinimumHeight(grid->fontMetrics().height() * 2 + 8);
    }
    // Day grid: the marker column plus the four visible columns; pair grid: four columns.
    mfgAttendance->setMinimumWidth(390);
    mfgCheckinCheckOut->setMinimumWidth(300);
    splitter->setSizes({170, 470, 340});
    resize(1040, 620);
}

void frmEmployeeDailyAttendance::connectEvents() {
    connect(cboEmpname, &QComboBox::currentIndexChanged, this, [this] { cboEmpname_Click(); });
    connect(cmdEmployee, &QPushButton::clicked, this, [this] { cmdEmployee_Click(); });
    connect(cmdCancel, &QPushButton::clicked, this, [this] { cmdCancel_Click(); });
    connect(lstAbsentDays, &QListWidget::itemChanged, this,
            [this](QListWidgetItem* item) { syncAbsentDayCheck(item); });
    // Only the items whose selection changed follow, so that picking many days stays
    // linear in their number.
    connect(lstAbsentDays->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            [this](const QItemSelection& selected, const QItemSelection& deselected) {
                syncAbsentDaySelection(selected, deselected);
            });
    // Enter moves on from these controls, as the Tab key would.
    for (QWidget* w : std::initializer_list<QWidget*>{
             cboEmpname, chkAllowanceDeductions, txtAttdate, txtAttNo, txtNoAbsent, txtNoLeave,
             txtNoPresent, txtStartDate, txtTotalDays, lstAbsentDays, txtRemarks})
        w->installEventFilter(this);
    // Enter on a focused button presses it (the buttons are no dialog defaults, so Enter
    // elsewhere never does).
    for (QPushButton* b : {cmdEmployee, cmdPopulateRecords, cmdImportPunches, cmdOK, cmdCancel})
        b->installEventFilter(this);
    // The box's own line edit holds the focus while the clerk types into it, and the list
    // of matches takes the keys while it is open.
    cboEmpname->lineEdit()->installEventFilter(this);
    cboEmpname->completer()->popup()->installEventFilter(this);
    dtpEndDate->installEventFilter(this);
    for (QWidget* inner : dtpEndDate->findChildren<QWidget*>()) inner->installEventFilter(this);
    connect(cmdImportPunches, &QPushButton::clicked, this, [this] { cmdImportPunches_Click(); });
    connectPopulateEvents();
    connectPairEvents();
    connectDayEvents();
    connectSaveEvents();
    connectDayLook();
}

void frmEmployeeDailyAttendance::applyTabOrder() {
    const QList<QWidget*> order = {cboEmpname,
                                   cmdEmployee,
                                   txtAttdate,
                                   txtStartDate,
                                   dtpEndDate,
                                   lstAbsentDays,
                                   cmdPopulateRecords,
                                   cmdImportPunches,
                                   mfgAttendance,
                                   // From a day straight to its times.
                                   mfgCheckinCheckOut,
                                   chkAllowanceDeductions,
                                   txtAllowanceDeductions,
                                   txtRemarks,
                                   cmdOK,
                                   cmdCancel};
    for (int i = 1; i < order.size(); ++i) QWidget::setTabOrder(order[i - 1], order[i]);
}

bool frmEmployeeDailyAttendance::eventFilter(QObject* watched, QEvent* event) {
    // The end date is one stop of the Tab order, as the start is: Tab and Shift+Tab leave it
    // instead of walking its day, month and year (the arrows and typing still reach those).
    if (event->type() == QEvent::KeyPress && watched->isWidgetType() &&
        (watched == dtpEndDate || dtpEndDate->isAncestorOf(static_cast<QWidget*>(watched)))) {
        const auto* key = static_cast<QKeyEvent*>(event);
        const bool plain = !(key->modifiers() & (Qt::ControlModifier | Qt::AltModifier));
        if (plain && (key->key() == Qt::Key_Tab || key->key() == Qt::Key_Backtab)) {
            focusNextPrevChild(key->key() == Qt::Key_Tab &&
                               !(key->modifiers() & Qt::ShiftModifier));
            return true;
        }
    }
    // Punches are laid onto what could be saved: the import button follows OK (an opened
    // entry that is cancelled or locked by payroll takes neither).
    if (watched == cmdOK && event->type() == QEvent::EnabledChange)
        cmdImportPunches->setEnabled(cmdOK->isEnabled());
    if (event->type() == QEvent::KeyPress && isMenuKey(static_cast<QKeyEvent*>(event))) {
        // The half-day popup of the current day and the Delete popup of the current pair,
        // from the keyboard, as the right button shows them.
        const bool onPicker =
            watched->isWidgetType() &&
            (watched == dtpCheckTime || dtpCheckTime->isAncestorOf(static_cast<QWidget*>(watched)));
        if (watched == mfgAttendance) {
            if (const auto at = cellCentre(mfgAttendance, mfgAttendance->Row(), colDate))
                mfgAttendance_MouseDown(2, 1, at->x(), at->y());
            return true;
        }
        if (watched == mfgCheckinCheckOut || onPicker) {
            FlexGrid* grid = mfgCheckinCheckOut;
            if (const auto at = cellCentre(grid, grid->Row(), grid->Col()))
                mfgCheckinCheckOut_MouseDown(2, 1, at->x(), at->y());
            return true;
        }
    }
    if (pairsEventFilter(watched, event) || dayEventFilter(watched, event)) return true;
    // The wheel over the employee box scrolls past it; it never chooses another employee.
    if (watched == cboEmpname && event->type() == QEvent::Wheel) return true;
    // Leaving the employee box with a number or a name typed chooses that employee.
    if ((watched == cboEmpname || watched == cboEmpname->lineEdit()) &&
        event->type() == QEvent::FocusOut) {
        // The list of matches opening over the box is no leaving of it.
        const auto reason = static_cast<QFocusEvent*>(event)->reason();
        if (reason != Qt::PopupFocusReason && reason != Qt::ActiveWindowFocusReason)
            fnChooseTypedEmployee();
    }
    // Enter or Tab in the list of matches with none of them highlighted: what was typed
    // chooses, and the clerk moves on as from the box itself.
    if (QCompleter* finder = cboEmpname->completer();
        finder && watched == finder->popup() && event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(event);
        const bool enter = key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter;
        const bool tab = key->key() == Qt::Key_Tab || key->key() == Qt::Key_Backtab;
        if ((enter || tab) && !finder->popup()->currentIndex().isValid()) {
            finder->popup()->hide();
            fnChooseTypedEmployee();
            if (enter)
                sendTab();
            else
                focusNextPrevChild(key->key() == Qt::Key_Tab &&
                                   !(key->modifiers() & Qt::ShiftModifier));
            return true;
        }
    }
    if ((watched == cboEmpname || watched == cboEmpname->lineEdit()) &&
        event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Tab ||
            key == Qt::Key_Backtab) {
            if (QCompleter* finder = cboEmpname->completer()) finder->popup()->hide();
            fnChooseTypedEmployee();
        }
    }
    if (event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(event);
        const bool enter = key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter;
        if (auto* b = qobject_cast<QPushButton*>(watched); b && enter) {
            if (b->isEnabled()) b->click();
            return true;
        }
        if (enter) {
            if (watched == txtRemarks)
                fnEnterToTab(13);
            else
                sendTab();
            return true;
        }
    }
    return QDialog::eventFilter(watched, event);
}

void frmEmployeeDailyAttendance::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) {
        // Escape over the time picker puts the cell's own time back in it and closes it, so
        // that nothing new is committed when the cell is left. Anywhere else it is Cancel,
        // which asks before any keyed work is thrown away.
        event->accept();
        if (!dtpCheckTime->isVisible()) {
            cmdCancel_Click();
            return;
        }
        const int row = mfgCheckinCheckOut->Row();
        const int col = mfgCheckinCheckOut->Col();
        const std::optional<TimeValue> time =
            row > 0 ? parseTime(mfgCheckinCheckOut->TextMatrix(row, col)) : std::nullopt;
        dtpCheckTime->setTime(time ? time->timeOfDay() : QTime(0, 0));
        if (dtpCheckTime->hasFocus() || dtpCheckTime->isAncestorOf(QApplication::focusWidget()))
            mfgCheckinCheckOut->setFocus();
        dtpCheckTime->setVisible(false);
        return;
    }
    QDialog::keyPressEvent(event);
}

void frmEmployeeDailyAttendance::showEvent(QShowEvent* event) {
    if (!m_loaded) Form_Load();
    QDialog::showEvent(event);
    // What the clerk first sees (a new entry's proposal, a stored entry as loaded) is
    // nothing of theirs to lose.
    if (!m_shown) {
        m_shown = true;
        fnTakeBaseline();
        // An entry that can only be viewed opens on its days, the first one shown.
        if (m_readOnly && mfgAttendance->isEnabled() && mfgAttendance->Rows() > 1) {
            mfgAttendance->setFocus(Qt::OtherFocusReason);
            if (mfgAttendance->Row() < 1) mfgAttendance->setCurrentCell(1, colDate);
        }
    }
}

void frmEmployeeDailyAttendance::closeEvent(QCloseEvent* event) {
    if (isVisible() && !fnMayDiscardWork(kMsgDiscardOnClose)) {
        event->ignore();
        return;
    }
    QDialog::closeEvent(event);
}

bool frmEmployeeDailyAttendance::isNewMode() const {
    return gstrEntryMode != QLatin1String("E");
}

void frmEmployeeDailyAttendance::Form_Load() {
    m_loaded = true;
    m_gen = commonmodule::createCommonGen();
    m_db = commonmodule::createCommonDB(gadocon);
    try {
        m_db->strTableName = LinkedTableNames.pemployee;
        m_db->populatecomboorlist(cboEmpname, QStringLiteral("eEmpId"), QStringLiteral("ename"),
                                  entry::sql::employeeListCondition(dialect(), gintCompanyID));
        fnShowEmployeeNumbers();
        const entry::PopulateSettings settings = entry::readPopulateSettings(gadocon);
        intGraceTime = static_cast<qint16>(settings.graceMinutes);
        blnConsiderLeaveHolidays = settings.considerLeaveHolidays;
        if (isNewMode()) {
            txtAttdate->setText(dateText(gdtProcessDate));
            txtStartDate->setText(dateText(gdtProcessDate));
            dtpEndDate->setDate(gdtProcessDate.addDays(1));
            if (cboEmpname->count() > 0) {
                cboEmpname->setCurrentIndex(0);
                lngEmployeeID = cboEmpname->itemData(0).toInt();
            }
            fnSetUpAttendanceGrid();
            fnSetUpCheckGrid();
            fnShowTotalDays();
        } else {
            fnSetUpAttendanceGrid();
            fnSetUpCheckGrid();
        }
    } catch (const std::exception&) {
        // A failed start-up leaves the form with what was filled, without a message.
    }
    m_employeeIndex = cboEmpname->currentIndex();
    fnTakeBaseline();
    cboEmpname->setFocus();
}

void frmEmployeeDailyAttendance::cmdCancel_Click() {
    if (!fnMayDiscardWork(kMsgDiscardOnClose)) return;
    reject();
}

QString frmEmployeeDailyAttendance::fnEntrySnapshot() const {
    // Everything saving would write, except the employee: choosing another one is asked
    // about on its own and starts a new baseline.
    QStringList parts = {txtAttdate->text(), txtStartDate->text(),
                         dtpEndDate->date().toString(Qt::ISODate), txtRemarks->text()};
    for (int i = 0; i < lstAbsentDays->count(); ++i)
        if (isAbsentDayPicked(lstAbsentDays->item(i))) parts << lstAbsentDays->item(i)->text();
    const auto rowText = [](const FlexGrid* grid, int row, int fromCol) {
        QStringList cells;
        for (int c = fromCol; c < grid->Cols(); ++c) cells << grid->TextMatrix(row, c);
        return cells.join(QLatin1Char('|'));
    };
    // A day as saving writes it: its date and type, and its claim when it has one. The
    // worked, scheduled and unclaimed hours are worked out from the rest and redrawn when a
    // day is looked at, which is no work of the clerk's.
    parts << QStringLiteral("days");
    for (int r = 1; r < mfgAttendance->Rows(); ++r) {
        const QString kind = mfgAttendance->TextMatrix(r, colAllowanceType).trimmed();
        QStringList day = {mfgAttendance->TextMatrix(r, colDate),
                           mfgAttendance->TextMatrix(r, colType).trimmed()};
        if (kind == QLatin1String("A") || kind == QLatin1String("D"))
            day << rules::normaliseClaimAmount(mfgAttendance->TextMatrix(r, colHours))
                       .value_or(mfgAttendance->TextMatrix(r, colHours))
                << kind;
        parts << day.join(QLatin1Char('|'));
    }
    parts << QStringLiteral("pairs");
    QSet<QString> mirrored;
    for (int r = 1; r < mfgMirrorGrid->Rows(); ++r) {
        parts << rowText(mfgMirrorGrid, r, colPairDate);
        mirrored.insert(parts.last());
    }
    // The day on show is a view of the pairs above; only a time keyed into it that has not
    // reached them yet (an unfinished pair) is extra.
    for (int r = 1; r < mfgCheckinCheckOut->Rows(); ++r) {
        const QString row = rowText(mfgCheckinCheckOut, r, colPairDate);
        const bool timed = !mfgCheckinCheckOut->TextMatrix(r, colCheckIn).trimmed().isEmpty() ||
                           !mfgCheckinCheckOut->TextMatrix(r, colCheckOut).trimmed().isEmpty();
        if (timed && !mirrored.contains(row)) parts << QStringLiteral("keyed:") + row;
    }
    // A time picked but not yet committed.
    if (!dtpCheckTime->isHidden() && mfgCheckinCheckOut->Row() > 0) {
        const std::optional<TimeValue> cell = parseTime(
            mfgCheckinCheckOut->TextMatrix(mfgCheckinCheckOut->Row(), mfgCheckinCheckOut->Col()));
        const QTime shown = cell ? cell->timeOfDay() : QTime(0, 0);
        if (dtpCheckTime->time() != shown) parts << QStringLiteral("picking");
    }
    return parts.join(QChar(0x1f));
}

void frmEmployeeDailyAttendance::fnTakeBaseline() {
    m_baseline = fnEntrySnapshot();
}

bool frmEmployeeDailyAttendance::fnHasUnsavedWork() const {
    return m_baseline && fnEntrySnapshot() != *m_baseline;
}

bool frmEmployeeDailyAttendance::fnMayDiscardWork(const QString& question) {
    // An entry that can only be viewed holds nothing of the clerk's to lose.
    if (m_saved || m_readOnly || !fnHasUnsavedWork()) return true;
    return MsgBox(question, MsgButtons::YesNo, MsgIcon::Question, MsgDefault::No) == MsgResult::Yes;
}

QString frmEmployeeDailyAttendance::readOnlyCancelledText(const QString& reason) {
    const QString why = reason.trimmed();
    return why.isEmpty() ? tr("This entry is cancelled: it can only be viewed.")
                         : tr("This entry is cancelled: it can only be viewed. Reason: %1").arg(why);
}

void frmEmployeeDailyAttendance::fnShowReadOnly(const QStringList& reasons) {
    m_readOnly = true;
    dtpCheckTime->setVisible(false);
    lblReadOnly->setText(reasons.join(QLatin1Char('\n')));
    lblReadOnly->setVisible(!reasons.isEmpty());
    cmdOK->setEnabled(false);
    for (QWidget* w : std::initializer_list<QWidget*>{cboEmpname, cmdEmployee, lstAbsentDays,
                                                       cmdPopulateRecords, cmdImportPunches,
                                                       chkAllowanceDeductions})
        w->setEnabled(false);
    // The boxes keep their text selectable and their place in the Tab order, but take no
    // typing, and look like the form's own read-only boxes.
    for (QLineEdit* box : {txtAttdate, txtStartDate, txtAllowanceDeductions, txtRemarks}) {
        box->setReadOnly(true);
        QPalette look = box->palette();
        look.setColor(QPalette::Base, look.color(QPalette::Window));
        box->setPalette(look);
    }
    dtpEndDate->setReadOnly(true);
    dtpEndDate->setCalendarPopup(false);
}

void frmEmployeeDailyAttendance::fnShowEmployeeNumbers() {
    try {
        QHash<qint32, QString> numbers;
        for (db::Recordset rs =
                 db::openRecordset(gadocon, entry::sql::employeeNumbersQuery(gintCompanyID));
             !rs.eof(); rs.moveNext())
            numbers.insert(rs.field(0).toInt(), rs.field(1).toString());
        const QSignalBlocker block(cboEmpname);
        for (int i = 0; i < cboEmpname->count(); ++i)
            cboEmpname->setItemText(
                i, entry::employeeItemText(numbers.value(cboEmpname->itemData(i).toInt()),
                                           cboEmpname->itemText(i)));
        if (cboEmpname->currentIndex() >= 0)
            cboEmpname->setEditText(cboEmpname->itemText(cboEmpname->currentIndex()));
    } catch (const std::exception&) {
        // Without the numbers the box lists the names, as the employee table gives them.
    }
}

void frmEmployeeDailyAttendance::fnChooseTypedEmployee() {
    if (!cboEmpname->isEditable() || m_readOnly) return;
    const int current = cboEmpname->currentIndex();
    const QString typed = cboEmpname->currentText();
    if (current >= 0 && typed == cboEmpname->itemText(current)) return;
    QStringList items;
    for (int i = 0; i < cboEmpname->count(); ++i) items << cboEmpname->itemText(i);
    const QList<int> named = entry::findEmployeeItems(items, typed);
    if (named.size() == 1 && named.first() != current) {
        cboEmpname->setCurrentIndex(named.first());
    }
    // Whatever was typed, the box shows the employee whose days the form holds.
    const int now = cboEmpname->currentIndex();
    cboEmpname->setEditText(now >= 0 ? cboEmpname->itemText(now) : QString());
}

void frmEmployeeDailyAttendance::fnShowPayrollStatus() {
    lblEmployeeStatus->clear();
    lblEmployeeStatus->setVisible(false);
    if (!isNewMode() || lngEmployeeID == 0) return;
    if (const std::optional<QDate> payroll =
            picker::payrollBehindAttendance(gadocon, lngEmployeeID)) {
        lblEmployeeStatus->setText(entry::payrollBehindText(*payroll));
        lblEmployeeStatus->setVisible(true);
    }
}

void frmEmployeeDailyAttendance::cmdEmployee_Click() {
    frmEmployeesAttendanceEntryStatus picker(cboEmpname, this);
    picker.Form_Load();
    picker.exec();
}

void frmEmployeeDailyAttendance::fnSetUpAttendanceGrid() {
    mfgAttendance->setRows(1);
    mfgAttendance->setCols(7);
    const char* headings[] = {"",      "Date",         "Type", "Worked Hours", "Schedule Hours",
                              "Hours", "AllowanceType"};
    for (int c = 0; c < 7; ++c)
        mfgAttendance->setTextMatrix(0, c, QString::fromLatin1(headings[c]));
    mfgAttendance->setColWidthTwips(colMarker, 300);
    mfgAttendance->setColWidthTwips(colDate, 1400);
    mfgAttendance->setColWidthTwips(colType, 1000);
    mfgAttendance->setColWidthTwips(colWorked, 1250);
    mfgAttendance->setColWidthTwips(colSchedule, 1250);
    mfgAttendance->setColWidthTwips(colHours, 0);
    mfgAttendance->setColWidthTwips(colAllowanceType, 0);
}

namespace {
void setUpPairGrid(FlexGrid* grid) {
    grid->setRows(1);
    grid->setCols(4);
    const char* headings[] = {"Date", "SlNo", "CheckIn", "Check Out"};
    for (int c = 0; c < 4; ++c) grid->setTextMatrix(0, c, QString::fromLatin1(headings[c]));
    grid->setColWidthTwips(0, 1400);
    grid->setColWidthTwips(1, 700);
    grid->setColWidthTwips(2, 1000);
    grid->setColWidthTwips(3, 1100);
}
}  // namespace

void frmEmployeeDailyAttendance::fnSetUpCheckGrid() {
    setUpPairGrid(mfgCheckinCheckOut);
}
void frmEmployeeDailyAttendance::fnSetUpMirrorGrid() {
    setUpPairGrid(mfgMirrorGrid);
}

void frmEmployeeDailyAttendance::fnClearGrids() {
    fnSetUpAttendanceGrid();
    fnSetUpCheckGrid();
    mfgMirrorGrid->setRows(1);
    for (FlexGrid* grid : {mfgAttendance, mfgCheckinCheckOut, mfgMirrorGrid}) grid->clearCurrent();
    dtpCheckTime->setVisible(false);
}

void frmEmployeeDailyAttendance::fnShowTotalDays() {
    const std::optional<QDate> start = parseDmy(txtStartDate->text());
    if (!start) return;
    txtTotalDays->setText(QString::number(entry::fnTotalDays(*start, dtpEndDate->date())));
}

}  // namespace qz2
