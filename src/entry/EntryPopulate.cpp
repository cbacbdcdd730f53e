// Populate: the chosen employee and period become one day row per day with its type,
// the scheduled check-in/check-out pairs of every day in the hidden mirror grid, the day
// counts and the worked, scheduled and extra hours. On an entry opened for edit the button
// only re-applies the absent-day picks and the holidays and recounts.
//
// The form reads the database (holiday calendar, leave register, work-time settings) and
// hands the rows to the attendance rules, which do the marking and the arithmetic on the
// grids' models.

#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QSignalBlocker>
#include <exception>

#include "entry/EntryReads.h"
#include "entry/EntryRules.h"
#include "entry/EntrySql.h"
#include "entry/frmEmployeeDailyAttendance.h"
#include "rules/DayTypes.h"
#include "rules/Hours.h"
#include "rules/Population.h"
#include "shared/BasAttendence.h"
#include "shared/FlexGrid.h"
#include "shared/MsgBox.h"

namespace qz2 {

namespace {

// Populate's answer to a period that ends before it starts, wherever that is found.
const QString kMsgEndBeforeStart = QStringLiteral("End Date Should be Greater than Start Date");

// The day an item of lstAbsentDays stands for: the date kept with it, or its
// "yyyy/mm/dd" text.
std::optional<QDate> listItemDate(const QListWidgetItem* item) {
    const QVariant kept = item->data(Qt::UserRole);
    if (kept.typeId() == QMetaType::QDate && kept.toDate().isValid()) return kept.toDate();
    if (const auto parsed = parseTimeValue(item->text())) return parsed->date();
    return std::nullopt;
}

}  // namespace

void frmEmployeeDailyAttendance::connectPopulateEvents() {
    connect(cmdPopulateRecords, &QPushButton::clicked, this,
            [this] { cmdPopulateRecords_Click(); });
    connect(txtStartDate, &QLineEdit::editingFinished, this, [this] { fnPeriodChanged(); });
    connect(dtpEndDate, &QDateEdit::editingFinished, this, [this] { fnPeriodChanged(); });
    // The end text and the total follow every step of the end date at once.
    connect(dtpEndDate, &QDateEdit::dateChanged, this, [this] {
        if (!isLoaded() || !isNewMode()) return;
        txtEndDate->setText(dateText(dtpEndDate->date()));
        fnShowTotalDays();
    });
}

void frmEmployeeDailyAttendance::fnPeriodChanged() {
    // Only the clerk's own change of a new entry's period; the proposal sets both itself.
    if (!isLoaded() || m_inEmployeeClick || !isNewMode()) return;
    // Enter, then the focus leaving (also to a message box) both finish the same edit.
    const QString key = fnPeriodKey();
    if (key == m_checkedPeriod) return;
    m_checkedPeriod = key;
    m_readError.clear();
    try {
        const std::optional<QDate> start = parseDmy(txtStartDate->text().trimmed());
        if (!start) return;
        QDate end = dtpEndDate->date();
        if (entry::isPeriodTooLong(*start, end)) {
            // Refused where it is set: the end goes back to the last one that made a period,
            // or to a month from the start.
            MsgBox(entry::kMsgPeriodTooLong, MsgButtons::Ok, MsgIcon::Information);
            end = m_lastPeriodEnd.isValid() && m_lastPeriodEnd >= *start &&
                          !entry::isPeriodTooLong(*start, m_lastPeriodEnd)
                      ? m_lastPeriodEnd
                      : start->addMonths(1).addDays(-1);
            const QSignalBlocker quiet(dtpEndDate);
            dtpEndDate->setDate(end);
            m_checkedPeriod = fnPeriodKey();
        }
        m_lastPeriodEnd = end;
        txtEndDate->setText(dateText(end));
        fnShowTotalDays();
        if (*start > end || cboEmpname->currentIndex() < 0) return;  // Populate says why
        if (!FnCheckCalendarSettingsNotEntered()) return;
        fnRelistAbsentDays(*start, end);
    } catch (const std::exception& e) {
        // Trapped: the period stays as typed; Populate checks it again.
        fnNoteReadFailure(e);
    }
    // A list of days half read is no list: Populate reads it again.
    if (!fnFinishStep(Step::Period)) lstAbsentDays->clear();
}

QString frmEmployeeDailyAttendance::fnPeriodKey() const {
    return txtStartDate->text().trimmed() + QLatin1Char('|') +
           dtpEndDate->date().toString(Qt::ISODate) + QLatin1Char('|') +
           QString::number(cboEmpname->currentIndex());
}

namespace {

// The rows of a grid as text, to be put back when a step fails half-way.
QList<QStringList> gridRows(const FlexGrid& grid) {
    QList<QStringList> rows;
    for (int r = 0; r < grid.Rows(); ++r) {
        QStringList cells;
        for (int c = 0; c < grid.Cols(); ++c) cells << grid.TextMatrix(r, c);
        rows << cells;
    }
    return rows;
}

void putBack(FlexGrid& grid, const QList<QStringList>& rows) {
    grid.setRows(static_cast<int>(rows.size()));
    for (int r = 0; r < rows.size(); ++r)
        for (int c = 0; c < rows[r].size() && c < grid.Cols(); ++c)
            grid.setTextMatrix(r, c, rows[r][c]);
}

}  // namespace

void frmEmployeeDailyAttendance::cmdPopulateRecords_Click() {
    if (m_readOnly) return;
    const WaitCursor wait;
    m_readError.clear();
    // A new entry's days are laid out afresh: punches laid on before are gone from them.
    if (isNewMode()) m_punchesImported = false;
    // An opened entry is put back as it was when a read fails; a new entry's half-made
    // rows are cleared.
    const QList<QStringList> daysBefore = gridRows(*mfgAttendance);
    const QList<QStringList> pairsBefore = gridRows(*mfgMirrorGrid);
    const QStringList countsBefore = {txtNoPresent->text(), txtNoLeave->text(),
                                      txtNoAbsent->text()};
    try {
        fnPopulate();
    } catch (const std::exception& e) {
        // Trapped; a failed statement is reported below.
        fnNoteReadFailure(e);
    }
    if (m_readError.isEmpty()) {
        fnFinishStep(Step::Populate);
        return;
    }
    if (isNewMode()) {
        const QString totalDays = txtTotalDays->text();
        fnClearEntryForm();
        txtTotalDays->setText(totalDays);
    } else {
        const QSignalBlocker quietDays(mfgAttendance->flexModel());
        putBack(*mfgAttendance, daysBefore);
        putBack(*mfgMirrorGrid, pairsBefore);
        txtNoPresent->setText(countsBefore.value(0));
        txtNoLeave->setText(countsBefore.value(1));
        txtNoAbsent->setText(countsBefore.value(2));
    }
    fnFinishStep(Step::Populate);
}

void frmEmployeeDailyAttendance::fnPopulate() {
    {
        // An unreadable start is a run-time error: trapped, nothing happens.
        const std::optional<QDate> typedStart = parseDmy(txtStartDate->text().trimmed());
        if (!typedStart) return;
        QDate start = *typedStart;
        QDate end = dtpEndDate->date();
        // A one-day period (start equal to end) is valid.
        if (start > end) {
            MsgBox(kMsgEndBeforeStart);
            return;
        }
        if (entry::isPeriodTooLong(start, end)) {
            MsgBox(entry::kMsgPeriodTooLong, MsgButtons::Ok, MsgIcon::Information);
            return;
        }

        // Each Populate reads holidays and leaves afresh: one approved meanwhile counts. The
        // schedule statements are asked again once each and then serve every day.
        m_cache.clear();

        if (!isNewMode()) {
            // The stored pairs stay as they are; only the picks and the holidays change.
            // Holidays get their zero schedule as in a new entry, so that work on a holiday
            // stays extra time.
            fnMarkAbsentDays();
            fnMarkHolidays(start, end);
            fnZeroHolidaySchedule();
            fnFindtheAdditionalWorkingHours();
            fnCountDayTypes();
            return;
        }

        if (cboEmpname->currentIndex() < 0) {
            MsgBox(QStringLiteral("Select Employee"), MsgButtons::Ok, MsgIcon::Information);
            return;
        }
        lngEmployeeID = cboEmpname->currentData().toInt();
        // The reads of a step that failed before go first: nothing is laid out from them
        // until they went through.
        if (m_unfinished == Step::Employee || m_unfinished == Step::Period) {
            if (!fnRunUnfinishedStep()) return;
            lngEmployeeID = cboEmpname->currentData().toInt();
            const std::optional<QDate> proposed = parseDmy(txtStartDate->text().trimmed());
            if (!proposed) return;
            start = *proposed;
            end = dtpEndDate->date();
            if (start > end) {
                MsgBox(kMsgEndBeforeStart);
                return;
            }
        }

        // Days before the employee joined never get rows; one who joins after the period
        // (or whose date of join is the suite's "missing" value) has no day in it at all.
        if (rules::effectiveStart(start, dtDateOfJoin.value_or(QDate())) > end) {
            MsgBox(kMsgEndBeforeStart);
            return;
        }

        fnSetUpAttendanceGrid();
        fnSetUpCheckGrid();
        // The claim box described the day shown before; no day is shown now.
        chkAllowanceDeductions->setChecked(false);
        chkAllowanceDeductions->setText(rules::kCaptionNeutral);
        txtAllowanceDeductions->clear();

        // The laying out itself is the attendance rules' (the same that the whole-company
        // import of punches runs); the form hands over the absent-day picks and the reads.
        // A failed read throws out of it: nothing more is asked of a database that failed
        // (a lock would make every further statement wait its full time) and the caller
        // clears what was half laid out.
        entry::PeriodReads reads = fnPeriodReads();
        rules::PopulationInput input =
            entry::readPopulationInput(reads, lngEmployeeID, start, end, dtDateOfJoin,
                                       {intGraceTime, blnConsiderLeaveHolidays});
        fnAbsentDayPicks(input.absentListItems, input.absentPicked);
        rules::populateNewEntry(*mfgAttendance->flexModel(), *mfgCheckinCheckOut->flexModel(),
                                *mfgMirrorGrid->flexModel(), input);
        fnCountDayTypes();
    }
}

void frmEmployeeDailyAttendance::fnRemoveMirrorRowsOfDate(QDate date) {
    rules::fnRemoveMirrorRowsOfDate(*mfgMirrorGrid->flexModel(), date);
}

void frmEmployeeDailyAttendance::fnZeroHolidaySchedule() {
    rules::fnZeroHolidaySchedule(*mfgAttendance->flexModel());
}

void frmEmployeeDailyAttendance::fnMarkHolidays(QDate start, QDate end) {
    try {
        rules::fnMarkHolidays(*mfgAttendance->flexModel(), fnPeriodReads().holidays(start, end));
    } catch (const std::exception& e) {
        // Trapped: the days keep the types they had; Populate reports a failed statement.
        fnNoteReadFailure(e);
    }
}

void frmEmployeeDailyAttendance::fnAbsentDayPicks(QList<QDate>& listed,
                                                  QList<QDate>& picked) const {
    for (int i = 0; i < lstAbsentDays->count(); ++i) {
        const QListWidgetItem* item = lstAbsentDays->item(i);
        const std::optional<QDate> day = listItemDate(item);
        if (!day) continue;
        listed << *day;
        if (isAbsentDayPicked(item)) picked << *day;
    }
}

void frmEmployeeDailyAttendance::fnMarkAbsentDays() {
    QList<QDate> listed;
    QList<QDate> picked;
    fnAbsentDayPicks(listed, picked);
    // On an entry opened for edit, a day that is no longer picked goes back to present and
    // loses the pairs kept for it.
    rules::fnMarkAbsentDays(*mfgAttendance->flexModel(), picked, listed, !isNewMode(),
                            [this](QDate day) { fnRemoveRowsFromMirrorGridOnEdit(day); });
}

}  // namespace qz2
