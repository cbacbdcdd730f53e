// Check-in/check-out editing on the entry form: the time picker that floats over the cell
// being edited, committing the picked time when the cell is left, the Enter key, the spare
// last row, the right-click Delete, and the procedures that keep the pairs grid and the
// hidden mirror grid numbered and in step. The checks and the copying themselves are the
// pair rules (rules/Pairs.h); this file moves values between the widgets and those rules.

#include <QScopedValueRollback>
#include <QAbstractItemModel>
#include <QAction>
#include <QApplication>
#include <QFocusEvent>
#include <QHeaderView>
#include <QItemSelection>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QMouseEvent>
#include <QRegion>
#include <QScrollBar>
#include <QTimeEdit>
#include <exception>
#include <memory>

#include "entry/frmEmployeeDailyAttendance.h"
#include "rules/Pairs.h"
#include "shared/FlexGrid.h"
#include "shared/MsgBox.h"

namespace qz2 {

namespace {

using Outcome = rules::PairCellCommit::Outcome;

// How the last leave-cell ended. The picker's Tab and Enter and a click on the grid look at
// it to decide whether to carry on after a failed order check. There is one user-interface
// thread and the value is read right after the call that set it.
Outcome lastLeaveOutcome = Outcome::NotARow;

bool isTimeCol(int col) {
    return col >= frmEmployeeDailyAttendance::colCheckIn &&
           col <= frmEmployeeDailyAttendance::colCheckOut;
}

bool isEnterKey(int key) {
    return key == Qt::Key_Return || key == Qt::Key_Enter;
}

// The shift state as the key and mouse handlers take it: 1 Shift, 2 Ctrl, 4 Alt.
int shiftState(Qt::KeyboardModifiers modifiers) {
    return (modifiers & Qt::ShiftModifier ? 1 : 0) | (modifiers & Qt::ControlModifier ? 2 : 0) |
           (modifiers & Qt::AltModifier ? 4 : 0);
}

// The mouse button as the mouse handlers take it: 1 left, 2 right, 4 middle.
int buttonCode(Qt::MouseButton button) {
    switch (button) {
        case Qt::LeftButton:
            return 1;
        case Qt::RightButton:
            return 2;
        case Qt::MiddleButton:
            return 4;
        default:
            return 0;
    }
}

bool pickerShown(const frmEmployeeDailyAttendance& f) {
    return !f.dtpCheckTime->isHidden();
}

bool pickerHasFocus(const frmEmployeeDailyAttendance& f) {
    const QWidget* focus = f.focusWidget();
    return focus && (focus == f.dtpCheckTime || f.dtpCheckTime->isAncestorOf(focus));
}

// The picker exactly over the current cell of the pairs grid. A cell scrolled partly out of
// sight keeps its size, and the part of the picker outside the grid's viewport is masked
// off so that it never hides the headings or the controls around the grid.
void placePicker(frmEmployeeDailyAttendance& f) {
    FlexGrid* grid = f.mfgCheckinCheckOut;
    QTimeEdit* picker = f.dtpCheckTime;
    const QModelIndex index = grid->currentIndex();
    if (!index.isValid()) return;
    QWidget* viewport = grid->viewport();
    QWidget* host = picker->parentWidget();
    const QRect cell = grid->visualRect(index);  // viewport coordinates
    const QPoint topLeft = host->isAncestorOf(viewport)
                               ? viewport->mapTo(host, cell.topLeft())
                               : host->mapFromGlobal(viewport->mapToGlobal(cell.topLeft()));
    picker->setGeometry(QRect(topLeft, cell.size()));
    const QRect shown = cell.intersected(viewport->rect());
    if (shown == cell)
        picker->clearMask();
    else if (shown.isEmpty())
        picker->setMask(QRegion(-1, -1, 1, 1));  // nothing of it inside the picker's own area
    else
        picker->setMask(QRegion(shown.translated(-cell.topLeft())));
    picker->raise();
}

// Gives the pairs grid the focus without making a cell current: a view that takes the focus
// by keyboard or code with no current cell makes its first cell current, which would look
// like the clerk entering it. A focus that comes as by the mouse leaves the cell to the click.
void focusGrid(frmEmployeeDailyAttendance& f) {
    FlexGrid* grid = f.mfgCheckinCheckOut;
    grid->setFocus(grid->currentIndex().isValid() ? Qt::OtherFocusReason : Qt::MouseFocusReason);
}

// Hides the picker without committing it. When it has the focus, the pairs grid takes the
// focus first: hiding a focused widget hands the focus to the next control in the tab
// order, which would look as though the clerk had left the grid.
void hidePicker(frmEmployeeDailyAttendance& f) {
    if (!pickerShown(f)) return;
    if (pickerHasFocus(f)) focusGrid(f);
    f.dtpCheckTime->setVisible(false);
}

// After rows came or went under it, the picker follows its cell, or goes when its cell went.
void followPairRows(frmEmployeeDailyAttendance& f) {
    if (!pickerShown(f)) return;
    if (f.mfgCheckinCheckOut->Row() == 0 || !isTimeCol(f.mfgCheckinCheckOut->Col()))
        hidePicker(f);
    else
        placePicker(f);
}

QStringList rowCells(const FlexGrid* grid, int row) {
    QStringList cells;
    for (int c = 0; c < 4; ++c) cells << grid->TextMatrix(row, c);
    return cells;
}

// The data row under a point of the grid's viewport, 0 for none.
int rowAt(const FlexGrid* grid, QPoint viewportPos) {
    const QModelIndex at = grid->indexAt(viewportPos);
    return at.isValid() ? at.row() + 1 : 0;
}

}  // namespace

// A digit or a separator typed into the time picker.
bool isTimeKey(const QKeyEvent& key) {
    if (key.modifiers() & (Qt::ControlModifier | Qt::AltModifier)) return false;
    const QString text = key.text();
    return text.size() == 1 && (text.at(0).isDigit() || text == QLatin1String(":") ||
                                text == QLatin1String("."));
}

// ---- Wiring ------------------------------------------------------------------------------

void frmEmployeeDailyAttendance::connectPairEvents() {
    FlexGrid* grid = mfgCheckinCheckOut;
    grid->installEventFilter(this);
    grid->viewport()->installEventFilter(this);
    dtpCheckTime->installEventFilter(this);
    // Mouse presses on the picker's text land on its inner line edit.
    for (QLineEdit* edit : dtpCheckTime->findChildren<QLineEdit*>()) edit->installEventFilter(this);
    // The right button shows the form's own popup, never a standard editing menu.
    dtpCheckTime->setContextMenuPolicy(Qt::NoContextMenu);
    for (QLineEdit* edit : dtpCheckTime->findChildren<QLineEdit*>())
        edit->setContextMenuPolicy(Qt::NoContextMenu);
    grid->setContextMenuPolicy(Qt::NoContextMenu);

    // Leave cell, then enter cell, on every move of the current cell: keyboard, mouse or
    // code. A leave-cell that moves the cell itself (back to the check-in) is not re-entered.
    connect(grid, &FlexGrid::cellChanged, this, [this](int oldRow, int oldCol, int newRow, int) {
        if (m_inLeaveCell) return;
        // Nothing current afterwards (the selection cleared, the rows dropped): only a time
        // still held in the picker has anything to commit.
        if (newRow != 0 || pickerShown(*this)) mfgCheckinCheckOut_LeaveCell(oldRow, oldCol);
        if (m_inLeaveCell) return;
        mfgCheckinCheckOut_EnterCell();
    });
    connect(mnuDelete, &QAction::triggered, this, [this] { mnuDelete_Click(); });

    // The picker follows its cell when the grid scrolls, resizes or its rows change.
    const auto follow = [this] {
        if (pickerShown(*this)) placePicker(*this);
    };
    connect(grid->verticalScrollBar(), &QScrollBar::valueChanged, this, follow);
    connect(grid->horizontalScrollBar(), &QScrollBar::valueChanged, this, follow);
    connect(grid->horizontalHeader(), &QHeaderView::sectionResized, this, follow);
    connect(grid->verticalHeader(), &QHeaderView::sectionResized, this, follow);
    connect(grid->horizontalHeader(), &QHeaderView::geometriesChanged, this, follow);
    QAbstractItemModel* model = grid->model();
    const auto rowsMoved = [this] { followPairRows(*this); };
    connect(model, &QAbstractItemModel::rowsRemoved, this, rowsMoved);
    connect(model, &QAbstractItemModel::rowsInserted, this, rowsMoved);
    connect(model, &QAbstractItemModel::modelReset, this, rowsMoved);
    connect(model, &QAbstractItemModel::layoutChanged, this, rowsMoved);
}

bool frmEmployeeDailyAttendance::pairsEventFilter(QObject* watched, QEvent* event) {
    FlexGrid* grid = mfgCheckinCheckOut;
    QWidget* viewport = grid->viewport();
    const bool onPicker =
        watched == dtpCheckTime ||
        (watched->isWidgetType() && dtpCheckTime->isAncestorOf(static_cast<QWidget*>(watched)));
    if (watched != grid && watched != viewport && !onPicker) return false;

    switch (event->type()) {
        case QEvent::KeyPress: {
            if (watched == viewport) return false;
            auto* key = static_cast<QKeyEvent*>(event);
            const int shift = shiftState(key->modifiers());
            if (onPicker) {
                if (isEnterKey(key->key())) {
                    dtpCheckTime_KeyDown(13, shift);
                    return true;
                }
                if (isTimeKey(*key)) return typeIntoPicker(*key);
                const bool plain = !(key->modifiers() & (Qt::ControlModifier | Qt::AltModifier));
                if (plain && (key->key() == Qt::Key_Tab || key->key() == Qt::Key_Backtab)) {
                    // Tab commits the picked time through the leave-cell steps and moves on
                    // from the grid, as Tab on the grid itself would.
                    const bool forward =
                        key->key() == Qt::Key_Tab && !(key->modifiers() & Qt::ShiftModifier);
                    lastLeaveOutcome = Outcome::NotARow;
                    if (pickerShown(*this)) mfgCheckinCheckOut_LeaveCell(grid->Row(), grid->Col());
                    if (lastLeaveOutcome == Outcome::CheckOutBeforeCheckIn ||
                        lastLeaveOutcome == Outcome::BeforePreviousCheckOut) {
                        // The clerk stays on the cell to correct it.
                        mfgCheckinCheckOut_EnterCell();
                        return true;
                    }
                    hidePicker(*this);
                    focusGrid(*this);
                    QKeyEvent tab(QEvent::KeyPress, forward ? Qt::Key_Tab : Qt::Key_Backtab,
                                  forward ? Qt::NoModifier : Qt::ShiftModifier);
                    QApplication::sendEvent(grid, &tab);
                    return true;
                }
                return false;
            }
            // Escape is the form's (Cancel): the grid lets it pass.
            if (key->key() == Qt::Key_Escape) return false;
            // The grid: Enter is handled here; any other key does what the grid does with it,
            // and then the spare last row is tidied away.
            if (isEnterKey(key->key())) {
                mfgCheckinCheckOut_KeyDown(13, shift);
                return true;
            }
            static_cast<QObject*>(grid)->event(event);
            mfgCheckinCheckOut_KeyDown(key->key(), shift);
            return true;
        }
        case QEvent::FocusIn: {
            if (watched != grid) return false;
            const auto reason = static_cast<QFocusEvent*>(event)->reason();
            if (reason != Qt::TabFocusReason && reason != Qt::BacktabFocusReason) return false;
            // Tabbing into the grid lands on a time cell with the picker open.
            if (grid->Rows() < 2) return false;
            const int row = grid->Row() > 0 ? grid->Row() : 1;
            const int col = isTimeCol(grid->Col()) ? grid->Col() : int(colCheckIn);
            if (row == grid->Row() && col == grid->Col())
                mfgCheckinCheckOut_EnterCell();
            else
                grid->setCurrentCell(row, col);
            return false;
        }
        case QEvent::FocusOut: {
            if (watched != grid && watched != dtpCheckTime) return false;
            const auto reason = static_cast<QFocusEvent*>(event)->reason();
            if (reason == Qt::PopupFocusReason || reason == Qt::ActiveWindowFocusReason)
                return false;
            // The focus went elsewhere on the form while a time was being picked: the time
            // is committed as on leaving its cell.
            QWidget* now = QApplication::focusWidget();
            if (!now || now->window() != this || now == grid || grid->isAncestorOf(now) ||
                now == dtpCheckTime || dtpCheckTime->isAncestorOf(now))
                return false;
            if (!m_inLeaveCell && pickerShown(*this))
                mfgCheckinCheckOut_LeaveCell(grid->Row(), grid->Col());
            return false;
        }
        case QEvent::MouseButtonPress: {
            auto* mouse = static_cast<QMouseEvent*>(event);
            const int button = buttonCode(mouse->button());
            const int shift = shiftState(mouse->modifiers());
            if (onPicker) {
                // The left button belongs to the picker (its text and its arrows); the
                // right button is the grid's popup for the picker's row.
                if (button != 2) return false;
                const QPoint at = viewport->mapFromGlobal(
                    static_cast<QWidget*>(watched)->mapToGlobal(mouse->position().toPoint()));
                mfgCheckinCheckOut_MouseDown(button, shift, at.x(), at.y());
                return true;
            }
            if (watched != viewport) return false;
            const QPoint at = mouse->position().toPoint();
            if (button == 2) {
                mfgCheckinCheckOut_MouseDown(button, shift, at.x(), at.y());
                return true;
            }
            lastLeaveOutcome = Outcome::NotARow;
            mfgCheckinCheckOut_MouseDown(button, shift, at.x(), at.y());
            // A check-in before the previous check-out keeps the clerk on it: the click goes
            // no further.
            return lastLeaveOutcome == Outcome::BeforePreviousCheckOut;
        }
        case QEvent::MouseButtonDblClick: {
            if (watched != viewport) return false;
            auto* mouse = static_cast<QMouseEvent*>(event);
            if (mouse->button() != Qt::LeftButton) return false;
            // A double click below the last pair adds the next one, so that a day can be
            // keyed with the mouse alone.
            if (rowAt(grid, mouse->position().toPoint()) != 0 || m_readOnly) return false;
            const int last = grid->Rows() - 1;
            if (last < 1 || last >= rules::kMaxPairRow) return true;
            const rules::EnterKeyAction add = rules::enterKeyAction(
                rules::EnterSource::Picker, last, colCheckOut, grid->Rows(), rowCells(grid, last));
            if (add.kind != rules::EnterKeyAction::Kind::AddRow) return true;
            const int row = rules::fnAddPairRow(*grid->flexModel(), add);
            grid->setCurrentCell(row, colCheckIn);
            return true;
        }
        case QEvent::ContextMenu:
            return true;  // the popups are shown on the button press
        case QEvent::Resize:
        case QEvent::Move:
            if ((watched == grid || watched == viewport) && pickerShown(*this)) placePicker(*this);
            return false;
        default:
            return false;
    }
}

// The picker takes a typed digit or separator only when it stays a time of day. Left to
// itself it would drop a digit that makes no time ("25" stays "2") and carry on with the
// next ones, so that "2599" became 02:00 and "12:75" 12:07 without a word. A key it refuses
// (its text, section and cursor all unchanged) puts back the time the cell had and says why.
bool frmEmployeeDailyAttendance::typeIntoPicker(QKeyEvent& key) {
    // The picker hands the key to its own text box: that delivery is the picker's own.
    static bool typing = false;
    if (typing) return false;
    const QScopedValueRollback<bool> busy(typing, true);
    QLineEdit* edit = dtpCheckTime->findChild<QLineEdit*>();
    const QString textBefore = edit ? edit->text() : QString();
    const int cursorBefore = edit ? edit->cursorPosition() : 0;
    const QDateTimeEdit::Section sectionBefore = dtpCheckTime->currentSection();
    static_cast<QObject*>(dtpCheckTime)->event(&key);
    const bool separator = !key.text().at(0).isDigit();
    const bool taken = !edit || edit->text() != textBefore ||
                       edit->cursorPosition() != cursorBefore ||
                       dtpCheckTime->currentSection() != sectionBefore;
    if (taken || separator) return true;
    FlexGrid* grid = mfgCheckinCheckOut;
    const std::optional<TimeValue> had = rules::cellTime(grid->TextMatrix(grid->Row(), grid->Col()));
    dtpCheckTime->setTime(had ? had->timeOfDay() : QTime(0, 0));
    dtpCheckTime->setCurrentSection(QDateTimeEdit::HourSection);
    dtpCheckTime->setSelectedSection(QDateTimeEdit::HourSection);
    MsgBox(rules::kMsgNotATimeOfDay);
    return true;
}

// ---- Entering and leaving a cell ---------------------------------------------------------

void frmEmployeeDailyAttendance::mfgCheckinCheckOut_EnterCell() {
    try {
        FlexGrid* grid = mfgCheckinCheckOut;
        const int row = grid->Row();
        const int col = grid->Col();
        // An entry that can only be viewed opens no picker: its times are read, not keyed.
        if (row < 1 || !isTimeCol(col) || m_readOnly) return;
        grid->scrollTo(grid->currentIndex());
        placePicker(*this);
        const std::optional<TimeValue> time = rules::cellTime(grid->TextMatrix(row, col));
        dtpCheckTime->setTime(time ? time->timeOfDay() : QTime(0, 0));
        dtpCheckTime->setVisible(true);
        dtpCheckTime->setFocus(Qt::OtherFocusReason);
        // Typing starts with the hours.
        dtpCheckTime->setCurrentSection(QDateTimeEdit::HourSection);
        dtpCheckTime->setSelectedSection(QDateTimeEdit::HourSection);
    } catch (const std::exception&) {
    }
}

void frmEmployeeDailyAttendance::mfgCheckinCheckOut_LeaveCell(int row, int col) {
    if (m_inLeaveCell) return;
    const QScopedValueRollback<bool> busy(m_inLeaveCell, true);
    lastLeaveOutcome = Outcome::NotARow;
    try {
        FlexGrid* grid = mfgCheckinCheckOut;
        if (row < 1 || row >= grid->Rows()) return;
        dtpCheckTime->interpretText();  // a time still being typed counts as typed
        const QTime picked = dtpCheckTime->time();
        hidePicker(*this);
        const QStringList before = rowCells(grid, row);
        const rules::PairCellCommit commit = rules::fnCommitPairCell(
            *grid->flexModel(), *mfgMirrorGrid->flexModel(), row, col, picked);
        // The day's amount is worked out afresh only once its times changed.
        if (rowCells(grid, row) != before) m_keepDayAmount = false;
        lastLeaveOutcome = commit.outcome;
        switch (commit.outcome) {
            case Outcome::NotARow:
                return;
            case Outcome::CheckOutBeforeCheckIn:
                MsgBox(rules::kMsgCheckInAfterCheckOut);
                return;
            case Outcome::BeforePreviousCheckOut:
                MsgBox(rules::kMsgCheckInBeforePreviousCheckOut);
                // Back to the check-in that must be corrected.
                grid->setCurrentCell(row, colCheckIn);
                return;
            case Outcome::Committed:
                break;
        }
        if (commit.recompute) {
            fnCalculateTotalHours();
            fnCalculateTotalHoursfortheDay();
        }
    } catch (const std::exception&) {
    }
}

// ---- Keys --------------------------------------------------------------------------------

void frmEmployeeDailyAttendance::mfgCheckinCheckOut_KeyDown(int keyCode, int /*shift*/) {
    try {
        FlexGrid* grid = mfgCheckinCheckOut;
        FlexGridModel& pairs = *grid->flexModel();
        if (keyCode != 13) {
            rules::fnTidyLastPairRow(pairs, grid->Row());
            return;
        }
        if (grid->Row() == 0) {
            // Nothing current yet: Enter starts at the first check-in.
            if (grid->Rows() > 1) grid->setCurrentCell(1, colCheckIn);
            return;
        }
        const int row = grid->Row();
        const rules::EnterKeyAction action = rules::enterKeyAction(
            rules::EnterSource::Grid, row, grid->Col(), grid->Rows(), rowCells(grid, row));
        using Kind = rules::EnterKeyAction::Kind;
        switch (action.kind) {
            case Kind::Nothing:
                return;  // the sixth pair's check-out: no seventh pair, no tidy-up
            case Kind::MoveRight:
                grid->setCurrentCell(action.row, action.col);
                break;
            case Kind::NextRowCol1:
                // The pair number takes no input: Enter after a check-out goes on to the next
                // pair's check-in, where the next time typed belongs.
                grid->setCurrentCell(action.row, colCheckIn);
                break;
            case Kind::AddRow:
                if (m_readOnly) break;  // an entry that can only be viewed gets no new pair
                grid->setCurrentCell(rules::fnAddPairRow(pairs, action), colCheckIn);
                break;
            case Kind::Stay:
                break;
        }
        if (action.tidyUp) rules::fnTidyLastPairRow(pairs, grid->Row());
    } catch (const std::exception&) {
    }
}

void frmEmployeeDailyAttendance::dtpCheckTime_KeyDown(int keyCode, int /*shift*/) {
    if (keyCode != 13) return;
    try {
        FlexGrid* grid = mfgCheckinCheckOut;
        FlexGridModel& pairs = *grid->flexModel();
        const int row = grid->Row();
        const int col = grid->Col();
        if (row < 1) return;
        // The time standing in the picker counts as the cell's text: it is what the clerk
        // sees in the cell, and the Tab below writes it there.
        dtpCheckTime->interpretText();
        QStringList cells = rowCells(grid, row);
        if (isTimeCol(col) && pickerShown(*this) &&
            rules::pickedTimeIsWritten(dtpCheckTime->time()))
            cells[col] = TimeValue::fromTime(dtpCheckTime->time()).format(u"hh:mm");
        const rules::EnterKeyAction action =
            rules::enterKeyAction(rules::EnterSource::Picker, row, col, grid->Rows(), cells);
        using Kind = rules::EnterKeyAction::Kind;
        switch (action.kind) {
            case Kind::Nothing:
                return;
            case Kind::MoveRight:
                grid->setCurrentCell(action.row, action.col);
                break;
            case Kind::NextRowCol1:
                grid->setCurrentCell(action.row, colCheckIn);  // past the pair number, as above
                break;
            case Kind::Stay:
                break;
            case Kind::AddRow: {
                if (action.sendTabFirst) {
                    // "{TAB}" to the picker: its time is committed by the leave-cell steps.
                    lastLeaveOutcome = Outcome::NotARow;
                    QKeyEvent tab(QEvent::KeyPress, Qt::Key_Tab, Qt::NoModifier);
                    QApplication::sendEvent(dtpCheckTime, &tab);
                    if (lastLeaveOutcome != Outcome::Committed) return;
                }
                const int added = rules::fnAddPairRow(pairs, action);
                focusGrid(*this);
                // The new pair's check-in, with the picker open on it.
                grid->setCurrentCell(added, colCheckIn);
                break;
            }
        }
        if (action.tidyUp) rules::fnTidyLastPairRow(pairs, grid->Row());
    } catch (const std::exception&) {
    }
}

// ---- Mouse and the Delete popup ------------------------------------------------------------

void frmEmployeeDailyAttendance::mfgCheckinCheckOut_MouseDown(int button, int /*shift*/, int x,
                                                              int y) {
    try {
        FlexGrid* grid = mfgCheckinCheckOut;
        if (button == 2) {
            if (m_readOnly) return;  // an entry that can only be viewed has no pair to delete
            int row = rowAt(grid, QPoint(x, y));
            if (row == 0) row = grid->Row();
            if (row < 1) return;
            // The row under the mouse becomes current (the cell being edited is left and
            // committed) and is selected whole: Delete acts on it.
            grid->setCurrentCell(row, colPairDate);
            if (grid->Row() != row) return;  // the cell left could not be committed
            QAbstractItemModel* model = grid->model();
            grid->selectionModel()->select(QItemSelection(model->index(row - 1, colPairDate),
                                                          model->index(row - 1, colCheckOut)),
                                           QItemSelectionModel::ClearAndSelect);
            mnuDelete->setVisible(true);
            mnuDelete->setEnabled(true);
            mnuHalfDay->setVisible(false);
            mnuPopUp->exec(grid->viewport()->mapToGlobal(QPoint(x, y)));
            return;
        }
        if (button == 1) {
            fnClearGridSelection(grid);
            if (lastLeaveOutcome == Outcome::BeforePreviousCheckOut) return;
            rules::removeBlankTrailingPairRows(*grid->flexModel());
        }
    } catch (const std::exception&) {
    }
}

void frmEmployeeDailyAttendance::mnuDelete_Click() {
    if (m_readOnly) return;
    try {
        FlexGrid* grid = mfgCheckinCheckOut;
        const int row = grid->Row();
        if (row < 1 || row >= grid->Rows()) return;
        std::optional<QDate> day = rules::cellDate(grid->TextMatrix(row, colPairDate));
        if (!day && mfgAttendance->Row() > 0)
            day = rules::cellDate(mfgAttendance->TextMatrix(mfgAttendance->Row(), colDate));
        if (!day) return;
        {
            // Rows vanish under the current cell: nothing is left or entered meanwhile.
            const QScopedValueRollback<bool> quiet(m_inLeaveCell, true);
            hidePicker(*this);
            if (rules::deletePair(*grid->flexModel(), *mfgMirrorGrid->flexModel(), row, *day))
                fnClearGridSelection(grid);
        }
        m_keepDayAmount = false;  // a pair went: the day's times changed
        fnCalculateTotalHours();
        fnCalculateTotalHoursfortheDay();
        const QScopedValueRollback<bool> quiet(m_inLeaveCell, true);
        fnClearGridSelection(grid);
    } catch (const std::exception&) {
    }
}

// ---- Grid procedures -------------------------------------------------------------------------

void frmEmployeeDailyAttendance::fnRenumberGrid(FlexGrid* grid) {
    if (grid) rules::fnRenumberGrid(*grid->flexModel());
}

void frmEmployeeDailyAttendance::fnRenumbertheGridForEachDate() {
    rules::fnRenumbertheGridForEachDate(*mfgMirrorGrid->flexModel());
}

void frmEmployeeDailyAttendance::fnRemoveRowsFromMirrorGridOnEdit(QDate date) {
    // The hidden mirror never has a current cell of its own; its "current row is the
    // heading" exactly when it has no data row.
    rules::fnRemoveRowsFromMirrorGridOnEdit(*mfgMirrorGrid->flexModel(), date,
                                            mfgMirrorGrid->Rows() < 2);
}

void frmEmployeeDailyAttendance::fnClearGridSelection(FlexGrid* grid) {
    if (!grid) return;
    // Row 0 and column 0: no data cell is current or highlighted.
    grid->setCurrentCell(0, 0);
    grid->clearSelection();
}

}  // namespace qz2
