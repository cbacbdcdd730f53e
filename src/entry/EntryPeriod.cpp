// Choosing the employee: department and date of join, the department-wise conditions, the
// proposed period of a new entry, the calendar and work-time checks, the absent-day list
// and the monthly-entry overlap check that saving asks.

#include <QComboBox>
#include <QDateEdit>
#include <QItemSelection>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QSet>
#include <exception>
#include <utility>

#include "db/Database.h"
#include "entry/EntryReads.h"
#include "entry/EntrySql.h"
#include "entry/frmEmployeeDailyAttendance.h"
#include "shared/BasAttendence.h"
#include "shared/MsgBox.h"

namespace qz2 {

namespace {
void tell(const QString& text) {
    MsgBox(text, MsgButtons::Ok, MsgIcon::Information);
}
}  // namespace

void frmEmployeeDailyAttendance::cboEmpname_Click() {
    // Selecting an item from inside this handler (or from a message box it shows) must not
    // start the handler again half-way through.
    if (m_inEmployeeClick) return;
    const QScopedValueRollback guard(m_inEmployeeClick, true);
    if (cboEmpname->count() == 0 || cboEmpname->currentIndex() < 0) return;
    // Another employee clears the days keyed for this one: the clerk says so first. On No
    // the box goes back to the employee whose days the form holds.
    if (isVisible() && m_employeeIndex >= 0 && cboEmpname->currentIndex() != m_employeeIndex &&
        !fnMayDiscardWork(kMsgDiscardOnEmployee)) {
        cboEmpname->setCurrentIndex(m_employeeIndex);
        return;
    }
    const WaitCursor wait;
    m_readError.clear();
    m_punchesImported = false;  // the days are cleared with the employee
    try {
        lngEmployeeID = cboEmpname->currentData().toInt();
        // Nothing of the previous employee may stay on the form: days, pairs, counts, claim.
        // The period stays until a new one is proposed (a failed proposal keeps it).
        const QString totalDays = txtTotalDays->text();
        fnClearEntryForm();
        txtTotalDays->setText(totalDays);
        // The listed days belong to the previous employee's period; the new period (or the
        // entry being edited) lists its own.
        lstAbsentDays->clear();
        fnReadEmployeeSettings();
    } catch (const std::exception& e) {
        // Trapped. The previous employee's days must not stay under the new one.
        fnNoteReadFailure(e);
        const QString totalDays = txtTotalDays->text();
        fnClearEntryForm();
        txtTotalDays->setText(totalDays);
        lstAbsentDays->clear();
    }
    m_employeeIndex = cboEmpname->currentIndex();
    m_checkedPeriod = fnPeriodKey();  // the proposal was checked as it was shown
    // A failed read leaves no half-made list of days for this employee.
    if (!fnFinishStep(Step::Employee)) lstAbsentDays->clear();
    fnTakeBaseline();
}

void frmEmployeeDailyAttendance::fnReadEmployeeSettings() {
    // Another employee may have another department and so other schedules.
    m_cache.clear();
    GetDeptID();
    if (isNewMode() && fnProposePeriod() && !txtStartDate->text().trimmed().isEmpty())
        fnShowTotalDays();
    // The newest work-time setting; a stored entry then puts its own in its place.
    fnCheckWorkTimeSettings();
    // Said before Populate, and nothing more: the entry may still be made.
    try {
        fnShowPayrollStatus();
    } catch (const std::exception& e) {
        fnNoteReadFailure(e);
    }
}

void frmEmployeeDailyAttendance::fnNoteReadFailure(const std::exception& e) {
    if (m_readError.isEmpty()) m_readError = db::failedStatementMessage(e).value_or(QString());
}

bool frmEmployeeDailyAttendance::fnFinishStep(Step step) {
    if (m_readError.isEmpty()) {
        // Choosing the employee runs every read of the period too; Populate runs the
        // unfinished step again before its own.
        if (step == Step::Employee || step == Step::Populate || m_unfinished == step)
            m_unfinished = Step::None;
        return true;
    }
    const QString message = std::exchange(m_readError, QString());
    // The earliest unfinished step is the one to run again.
    if (m_unfinished == Step::None || static_cast<int>(step) < static_cast<int>(m_unfinished))
        m_unfinished = step;
    MsgBox(message, MsgButtons::Ok, MsgIcon::Information);
    return false;
}

bool frmEmployeeDailyAttendance::fnRunUnfinishedStep() {
    if (m_unfinished == Step::Employee) {
        fnReadEmployeeSettings();
        m_checkedPeriod = fnPeriodKey();
    } else if (m_unfinished == Step::Period) {
        const std::optional<QDate> start = parseDmy(txtStartDate->text().trimmed());
        if (start && FnCheckCalendarSettingsNotEntered())
            fnRelistAbsentDays(*start, dtpEndDate->date());
    }
    return m_readError.isEmpty();
}

bool frmEmployeeDailyAttendance::GetDeptID() {
    strCalendarCondition.clear();
    strWorkTimeCondition.clear();
    const entry::EmployeeSettings settings =
        entry::readEmployeeSettings(gadocon, gintCompanyID, lngEmployeeID);
    // Nothing of the previous employee may carry over to this one.
    lngDepartmentID = settings.departmentId;
    strDepartmentName = settings.departmentName;
    dtDateOfJoin = settings.dateOfJoin;
    strCalendarCondition = settings.calendarCondition;
    strWorkTimeCondition = settings.workTimeCondition;
    if (!settings.hasDepartment) {
        tell(entry::kMsgNoDepartment);
        return false;
    }
    return true;
}

bool frmEmployeeDailyAttendance::fnProposePeriod() {
    // The employee's first entry, in a company without pay months, keeps whatever start the
    // form already shows.
    const QDate start =
        entry::readProposedStart(gadocon, gintCompanyID, lngEmployeeID, gdtProcessDate)
            .value_or(parseDmy(txtStartDate->text()).value_or(QDate()));
    if (!start.isValid()) return false;
    const entry::ProposedPeriod period = entry::proposePeriod(start, dtDateOfJoin);
    if (period.invalidDateOfJoin) {
        tell(entry::kMsgInvalidDateOfJoin);
        return false;
    }
    dtPeriodStart = period.start;
    dtPeriodEnd = period.end;
    txtStartDate->setText(dateText(dtPeriodStart));
    dtpEndDate->setDate(dtPeriodEnd);
    m_lastPeriodEnd = dtPeriodEnd;
    txtEndDate->setText(dateText(dtPeriodEnd));
    if (FnCheckCalendarSettingsNotEntered()) fnPopoulateList(dtPeriodStart, dtPeriodEnd);
    return true;
}

bool frmEmployeeDailyAttendance::FnCheckCalendarSettingsNotEntered() {
    // The calendar of the start's year, then that of the end's year: a period across the
    // turn of a year needs both.
    for (QLineEdit* box : {txtStartDate, txtEndDate}) {
        const std::optional<QDate> day = parseDmy(box->text());
        if (!day) return false;
        const int year = day->year();
        if (!entry::hasCalendar(gadocon, gintCompanyID, strCalendarCondition, year)) {
            tell(entry::calendarMissingMessage(strDepartmentName, year));
            cmdPopulateRecords->setEnabled(false);
            cmdOK->setEnabled(false);
            return false;
        }
        cmdPopulateRecords->setEnabled(true);
        cmdOK->setEnabled(true);
    }
    return true;
}

bool frmEmployeeDailyAttendance::fnIsMonthlyEntryOverlapping(qint32 employee, QDate start,
                                                             QDate end) const {
    return entry::isMonthlyEntryOverlapping(gadocon, employee, start, end);
}

bool frmEmployeeDailyAttendance::fnCheckWorkTimeSettings() {
    const std::optional<qint32> newest =
        entry::readNewestWorkTimeSetting(gadocon, gintCompanyID, strWorkTimeCondition);
    lngWorkTimeSettingID = newest.value_or(0);
    if (!newest) tell(entry::workTimeMissingMessage(strDepartmentName));
    return newest.has_value();
}

void frmEmployeeDailyAttendance::fnPopoulateList(QDate start, QDate end) {
    lstAbsentDays->clear();
    QSet<QDate> holidays;
    try {
        const db::Recordset rs =
            db::openRecordset(gadocon, entry::sql::holidayListQuery(dialect(), gintCompanyID, start,
                                                                    end, strCalendarCondition));
        for (db::Recordset r = rs; !r.eof(); r.moveNext())
            if (const auto day = timeValueFromDb(r.field(0))) holidays.insert(day->date());
    } catch (const std::exception& e) {
        fnNoteReadFailure(e);
        return;
    }
    const QSignalBlocker quiet(lstAbsentDays);
    for (QDate day = start; day.isValid() && day <= end; day = day.addDays(1)) {
        if (holidays.contains(day)) continue;
        auto* item =
            new QListWidgetItem(TimeValue::fromDate(day).format(u"yyyy/mm/dd"), lstAbsentDays);
        item->setData(Qt::UserRole, day);
        item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
        item->setCheckState(Qt::Unchecked);
    }
}

bool frmEmployeeDailyAttendance::isAbsentDayPicked(const QListWidgetItem* item) {
    return item && item->checkState() == Qt::Checked;
}

void frmEmployeeDailyAttendance::fnRelistAbsentDays(QDate start, QDate end) {
    const QList<QDate> pickedList = fnPickedAbsentDays();
    const QSet<QDate> picked(pickedList.cbegin(), pickedList.cend());
    fnPopoulateList(start, end);
    fnTickAbsentDays(picked);
}

void frmEmployeeDailyAttendance::fnTickAbsentDays(const QSet<QDate>& days) {
    for (int i = 0; i < lstAbsentDays->count(); ++i) {
        QListWidgetItem* item = lstAbsentDays->item(i);
        if (days.contains(item->data(Qt::UserRole).toDate())) item->setCheckState(Qt::Checked);
    }
}

QList<QDate> frmEmployeeDailyAttendance::fnPickedAbsentDays() const {
    QList<QDate> days;
    for (int i = 0; i < lstAbsentDays->count(); ++i) {
        const QListWidgetItem* item = lstAbsentDays->item(i);
        if (isAbsentDayPicked(item)) days << item->data(Qt::UserRole).toDate();
    }
    return days;
}

// A tick and a selection mean the same pick: whichever the clerk changes, the other follows.
void frmEmployeeDailyAttendance::syncAbsentDayCheck(QListWidgetItem* item) {
    if (m_syncingAbsentDays || !item) return;
    const QScopedValueRollback guard(m_syncingAbsentDays, true);
    item->setSelected(item->checkState() == Qt::Checked);
}

void frmEmployeeDailyAttendance::syncAbsentDaySelection(const QItemSelection& selected,
                                                        const QItemSelection& deselected) {
    if (m_syncingAbsentDays) return;
    const QScopedValueRollback guard(m_syncingAbsentDays, true);
    const auto follow = [this](const QItemSelection& changed, Qt::CheckState wanted) {
        for (const QItemSelectionRange& range : changed)
            for (int row = range.top(); row <= range.bottom(); ++row)
                if (QListWidgetItem* item = lstAbsentDays->item(row);
                    item && item->checkState() != wanted)
                    item->setCheckState(wanted);
    };
    follow(deselected, Qt::Unchecked);
    follow(selected, Qt::Checked);
}

}  // namespace qz2
