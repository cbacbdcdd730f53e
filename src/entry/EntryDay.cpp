// The day grid's side of the entry form: showing the selected day's pairs, schedule and
// claim; the right-click popup that marks or unmarks a half-day absence; the allowance or
// deduction check box and amount; and clearing the form for a new entry. The captions,
// questions and type changes are the half-day rules (rules/HalfDay.h).

#include <QScopedValueRollback>
#include <QAbstractItemModel>
#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QColor>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QMouseEvent>
#include <QTimeEdit>
#include <algorithm>
#include <exception>

#include "entry/frmEmployeeDailyAttendance.h"
#include "rules/HalfDay.h"
#include "rules/Hours.h"
#include "shared/BasAttendence.h"
#include "shared/FlexGrid.h"
#include "shared/MsgBox.h"

namespace qz2 {

namespace {

// Width of the day grid's "Hours" column while it is shown, as wide as the other hours.
constexpr int kHoursColumnTwips = 1250;

// Hides the time picker without committing it; a focused picker hands the focus to the
// pairs grid first rather than to whatever follows it in the tab order.
void hidePicker(frmEmployeeDailyAttendance& f) {
    if (f.dtpCheckTime->isHidden()) return;
    const QWidget* focus = f.focusWidget();
    if (focus && (focus == f.dtpCheckTime || f.dtpCheckTime->isAncestorOf(focus))) {
        // As by the mouse, so that a grid without a current cell does not make one current.
        FlexGrid* grid = f.mfgCheckinCheckOut;
        grid->setFocus(grid->currentIndex().isValid() ? Qt::OtherFocusReason
                                                      : Qt::MouseFocusReason);
    }
    f.dtpCheckTime->setVisible(false);
}

// "Hours" of the day grid is shown while at least one day claims its difference as an
// allowance or a deduction: those are the amounts saving writes, so the clerk sees them
// beside the worked and scheduled hours. Without a claim the column stays hidden as at
// start-up. "AllowanceType" stays hidden; instead a claimed amount is coloured by its kind
// (allowance green, deduction red) and an unclaimed difference is greyed, so that the
// column tells at a glance which days will be paid or charged.
void showClaimedHours(frmEmployeeDailyAttendance& f) {
    using F = frmEmployeeDailyAttendance;
    FlexGrid* days = f.mfgAttendance;
    bool claimed = false;
    for (int r = 1; r < days->Rows(); ++r) {
        const QString kind = days->TextMatrix(r, F::colAllowanceType).trimmed();
        claimed = claimed || !kind.isEmpty();
        const QColor colour = kind == QLatin1String("A")   ? QColor(0, 110, 0)
                              : kind == QLatin1String("D") ? QColor(170, 0, 0)
                                                           : QColor(Qt::darkGray);
        if (days->cellForeColor(r, F::colHours) != colour)
            days->setCellForeColor(r, F::colHours, colour);
    }
    if (claimed == !days->isColumnHidden(F::colHours)) return;
    days->setColWidthTwips(F::colHours, claimed ? kHoursColumnTwips : 0);
}

// The claiming steps: the current day (the pairs grid's date) takes the amount with the kind
// the tick and the caption give, or nothing when the tick stands under the neutral caption.
void claimTheDifference(frmEmployeeDailyAttendance& f) {
    const std::optional<QDate> day = rules::cellDate(
        f.mfgCheckinCheckOut->TextMatrix(1, frmEmployeeDailyAttendance::colPairDate));
    if (!day) return;
    const std::optional<QString> kind =
        rules::claimKind(f.chkAllowanceDeductions->isChecked(), f.chkAllowanceDeductions->text());
    if (!kind) return;
    // Only a complete amount is claimed; while one is still being typed the day keeps the
    // amount it had, and an untick still withdraws the claim.
    QString amount = f.txtAllowanceDeductions->text();
    if (!rules::normaliseClaimAmount(amount)) {
        if (!kind->isEmpty()) return;
        const FlexGrid* days = f.mfgAttendance;
        for (int r = 1; r < days->Rows(); ++r)
            if (rules::cellDate(days->TextMatrix(r, frmEmployeeDailyAttendance::colDate)) == day)
                amount = days->TextMatrix(r, frmEmployeeDailyAttendance::colHours);
    }
    f.fnSetDayAllowanceDeduction(amount, *kind, *day);
}

}  // namespace

// ---- Wiring ------------------------------------------------------------------------------

void frmEmployeeDailyAttendance::connectDayEvents() {
    mfgAttendance->installEventFilter(this);
    mfgAttendance->viewport()->installEventFilter(this);
    mfgAttendance->setContextMenuPolicy(Qt::NoContextMenu);
    txtAllowanceDeductions->installEventFilter(this);

    // A move to another row shows that day; a click shows the clicked day again.
    connect(mfgAttendance, &FlexGrid::cellChanged, this, [this](int oldRow, int, int newRow, int) {
        if (oldRow != newRow) mfgAttendance_Click();
    });
    connect(mfgAttendance, &QAbstractItemView::clicked, this, [this] { mfgAttendance_Click(); });
    connect(mnuHalfDay, &QAction::triggered, this, [this] { mnuHalfDay_Click(); });
    connect(chkAllowanceDeductions, &QCheckBox::clicked, this,
            [this] { chkAllowanceDeductions_Click(); });
    connect(txtAllowanceDeductions, &QLineEdit::textChanged, this,
            [this] { txtAllowanceDeductions_Change(); });
    // The clerk's own amount stands until the day's times change.
    connect(txtAllowanceDeductions, &QLineEdit::textEdited, this, [this] { m_keepDayAmount = true; });
    // Whoever writes a day's claim (the check box, the amount, loading a stored entry), the
    // "Hours" column follows.
    QAbstractItemModel* dayModel = mfgAttendance->model();
    connect(dayModel, &QAbstractItemModel::dataChanged, this,
            [this](const QModelIndex& from, const QModelIndex& to) {
                if (from.column() <= colAllowanceType && to.column() >= colAllowanceType)
                    showClaimedHours(*this);
            });
    connect(dayModel, &QAbstractItemModel::rowsRemoved, this, [this] { showClaimedHours(*this); });
    connect(dayModel, &QAbstractItemModel::modelReset, this, [this] { showClaimedHours(*this); });
}

bool frmEmployeeDailyAttendance::dayEventFilter(QObject* watched, QEvent* event) {
    QWidget* viewport = mfgAttendance->viewport();
    if (watched == mfgAttendance) {
        if (event->type() == QEvent::FocusIn) {
            // mfgAttendance_GotFocus: the picker belongs to the pairs grid only.
            hidePicker(*this);
            return false;
        }
        if (event->type() == QEvent::KeyPress) {
            const auto* key = static_cast<QKeyEvent*>(event);
            if (key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter) {
                sendTab();
                return true;
            }
        }
        return false;
    }
    if (watched == viewport) {
        if (event->type() == QEvent::ContextMenu) return true;  // the popup shows on the press
        if (event->type() == QEvent::MouseButtonPress) {
            const auto* mouse = static_cast<QMouseEvent*>(event);
            if (mouse->button() != Qt::RightButton) return false;
            const QPoint at = mouse->position().toPoint();
            mfgAttendance_MouseDown(2, 0, at.x(), at.y());
            return true;
        }
        return false;
    }
    if (watched == txtAllowanceDeductions && event->type() == QEvent::KeyPress) {
        // txtAllowanceDeductions_KeyPress: a typed key stores the claim as it stands; the
        // change that follows stores the new amount.
        const auto* key = static_cast<QKeyEvent*>(event);
        if (!key->text().isEmpty()) claimTheDifference(*this);
        return false;
    }
    return false;
}

// ---- Showing a day -----------------------------------------------------------------------

void frmEmployeeDailyAttendance::mfgAttendance_Click() {
    if (m_inDayClick) return;
    const QScopedValueRollback<bool> busy(m_inDayClick, true);
    try {
        const int row = mfgAttendance->Row();
        {
            // The pairs grid is rebuilt under its current cell: nothing is left or entered.
            const QScopedValueRollback<bool> quiet(m_inLeaveCell, true);
            hidePicker(*this);
            rules::fnShowDayPairs(*mfgCheckinCheckOut->flexModel(), *mfgMirrorGrid->flexModel(),
                                  *mfgAttendance->flexModel(), row);
            fnClearGridSelection(mfgCheckinCheckOut);
        }
        if (row < 1) return;
        if (const auto schedule = rules::cellTime(mfgAttendance->TextMatrix(row, colSchedule)))
            dtCurrentDaySchedule = *schedule;
        const QString claim = mfgAttendance->TextMatrix(row, colAllowanceType).trimmed();
        chkAllowanceDeductions->setText(rules::allowanceCaption(claim));
        // The tick shows whether this day's difference is claimed, so that it never stands
        // for a claim of the day shown before.
        const bool claimed = claim == QLatin1String("A") || claim == QLatin1String("D");
        chkAllowanceDeductions->setChecked(claimed);
        fnFindtheAdditionalWorkingHours();
        txtAllowanceDeductions->setText(mfgAttendance->TextMatrix(row, colHours));
        // A claimed day's amount is what will be paid or charged: it stands until the day's
        // times change.
        m_keepDayAmount = claimed;
        showClaimedHours(*this);
    } catch (const std::exception&) {
    }
}

// ---- Half days ---------------------------------------------------------------------------

void frmEmployeeDailyAttendance::mfgAttendance_MouseDown(int button, int /*shift*/, int x, int y) {
    if (button != 2 || m_readOnly) return;
    try {
        // The day under the mouse becomes the current day; the popup acts on it.
        const QModelIndex at = mfgAttendance->indexAt(QPoint(x, y));
        if (at.isValid() && at.row() + 1 != mfgAttendance->Row())
            mfgAttendance->setCurrentCell(at.row() + 1,
                                          std::max(mfgAttendance->Col(), int(colDate)));
        const int row = mfgAttendance->Row();
        if (row < 1) return;
        const std::optional<QString> caption =
            rules::halfDayMenuCaption(mfgAttendance->TextMatrix(row, colType));
        if (!caption) return;  // holidays, leaves and absences offer no half day
        mnuHalfDay->setText(*caption);
        mnuHalfDay->setEnabled(true);
        mnuHalfDay->setVisible(true);
        mnuDelete->setVisible(false);
        mnuPopUp->exec(mfgAttendance->viewport()->mapToGlobal(QPoint(x, y)));
    } catch (const std::exception&) {
    }
}

void frmEmployeeDailyAttendance::mnuHalfDay_Click() {
    if (m_readOnly) return;
    try {
        const int row = mfgAttendance->Row();
        const QString caption = mnuHalfDay->text();
        const std::optional<QString> question =
            row > 0 ? rules::halfDayQuestion(caption, mfgAttendance->TextMatrix(row, colDate))
                    : std::nullopt;
        if (question &&
            MsgBox(*question, MsgButtons::YesNo, MsgIcon::Information) != MsgResult::Yes)
            return;
        // Writes the new type when the day has one to take, then the totals are recounted.
        if (row > 0) rules::fnMarkHalfDay(*mfgAttendance->flexModel(), row, caption);
        fnCountDayTypes();
    } catch (const std::exception&) {
    }
}

// ---- Allowances and deductions -------------------------------------------------------------

void frmEmployeeDailyAttendance::chkAllowanceDeductions_Click() {
    try {
        // A time still held in the picker is committed first and the hours recomputed. A
        // hidden picker has nothing left to commit: leaving its cell already did.
        if (!dtpCheckTime->isHidden()) {
            mfgCheckinCheckOut_LeaveCell(mfgCheckinCheckOut->Row(), mfgCheckinCheckOut->Col());
        } else if (mfgCheckinCheckOut->Rows() > 1) {
            // Ticked straight after choosing a day: the caption must name the day's
            // difference before anything is claimed. An amount already typed is kept.
            const QString typed = txtAllowanceDeductions->text();
            const QSignalBlocker quiet(txtAllowanceDeductions);
            fnCalculateTotalHoursfortheDay();
            if (!typed.trimmed().isEmpty()) txtAllowanceDeductions->setText(typed);
        }
        claimTheDifference(*this);
        // With no difference there is nothing to claim.
        if (chkAllowanceDeductions->text() == rules::kCaptionNeutral)
            chkAllowanceDeductions->setChecked(false);
    } catch (const std::exception&) {
    }
}

void frmEmployeeDailyAttendance::txtAllowanceDeductions_Change() {
    try {
        claimTheDifference(*this);
    } catch (const std::exception&) {
    }
}

void frmEmployeeDailyAttendance::fnStoreDayClaim() {
    claimTheDifference(*this);
}

void frmEmployeeDailyAttendance::fnSetDayAllowanceDeduction(const QString& amount,
                                                            const QString& kind, QDate date) {
    rules::fnSetDayAllowanceDeduction(*mfgAttendance->flexModel(), amount, kind, date,
                                      chkAllowanceDeductions->isChecked());
}

// ---- Clearing ----------------------------------------------------------------------------

void frmEmployeeDailyAttendance::fnClearEntryForm() {
    for (QLineEdit* box : {txtTotalDays, txtNoPresent, txtNoLeave, txtNoAbsent}) box->clear();
    // The grids lose their rows under their current cells: no day is shown and no cell is
    // left or entered while they do.
    const QScopedValueRollback<bool> days(m_inDayClick, true);
    const QScopedValueRollback<bool> pairs(m_inLeaveCell, true);
    hidePicker(*this);
    for (FlexGrid* grid : {mfgAttendance, mfgCheckinCheckOut, mfgMirrorGrid}) grid->setRows(1);
    chkAllowanceDeductions->setChecked(false);
    chkAllowanceDeductions->setText(rules::kCaptionNeutral);
    txtAllowanceDeductions->clear();
    m_keepDayAmount = false;
    for (FlexGrid* grid : {mfgAttendance, mfgCheckinCheckOut, mfgMirrorGrid})
        fnClearGridSelection(grid);
    showClaimedHours(*this);
}

}  // namespace qz2
