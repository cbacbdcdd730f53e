// OK: the form's own checks, then the entry handed to the save (EntryStore: the checks
// against the database, the rows and the history in one transaction), then the register's
// row for the entry and the form's unload.
//
// The form itself is never changed by a save that fails: every value is read from the
// widgets, nothing is written back before the commit, and the transaction scope rolls the
// database back whatever the failure was, so the clerk can correct and press OK again.

#include <QComboBox>
#include <QDateEdit>
#include <QLineEdit>
#include <QPushButton>
#include <exception>

#include "entry/EntryStore.h"
#include "entry/frmEmployeeDailyAttendance.h"
#include "rules/Saving.h"
#include "shared/BasAttendence.h"
#include "shared/FlexGrid.h"
#include "shared/MsgBox.h"
#include "shared/SharedServices.h"

namespace qz2 {

void frmEmployeeDailyAttendance::connectSaveEvents() {
    connect(cmdOK, &QPushButton::clicked, this, [this] { cmdOK_Click(); });
}

void frmEmployeeDailyAttendance::cmdOK_Click() {
    m_saved = false;
    // Without the right to edit nothing is written, whichever way OK is reached. A cancelled
    // or payroll-covered entry is refused by the save's own checks, with their messages.
    if (m_readOnly && !m_mayEdit) {
        MsgBox(kReadOnlyNoRight, MsgButtons::Ok, MsgIcon::Information);
        return;
    }
    // A step whose reads failed left nothing to save until it has run again.
    if (m_unfinished != Step::None) {
        MsgBox(entry::kMsgStepUnfinished, MsgButtons::Ok, MsgIcon::Information);
        cmdPopulateRecords->setFocus();
        return;
    }
    const WaitCursor wait;
    fnSurviveFileSizeLimit();
    const FlexGridModel& days = *mfgAttendance->flexModel();
    const FlexGridModel& mirror = *mfgMirrorGrid->flexModel();

    if (cboEmpname->currentIndex() == -1) {
        MsgBox(QStringLiteral("Select Employee"));
        cboEmpname->setFocus();
        return;
    }
    if (days.Rows() <= 1 || rules::processAttendanceMissing(days, mirror)) {
        MsgBox(QStringLiteral("Process Attendance"));
        cmdPopulateRecords->setFocus();
        return;
    }

    const bool editMode = gstrEntryMode == QLatin1String("E");
    entry::EntryToSave toSave;
    if (editMode) {
        toSave.editedId = lngAttendanceID;
        toSave.openedHeader = strOpenedHeader;
    }
    toSave.attendanceNo = txtAttNo->text();
    toSave.employee = cboEmpname->itemData(cboEmpname->currentIndex()).toInt();
    toSave.entryDateText = txtAttdate->text();
    toSave.startText = txtStartDate->text();
    toSave.end = dtpEndDate->date();
    toSave.present = val(txtNoPresent->text().trimmed());
    toSave.leaves = val(txtNoLeave->text().trimmed());
    toSave.absent = val(txtNoAbsent->text().trimmed());
    toSave.workTimeSettingId = lngWorkTimeSettingID;
    toSave.remarks = txtRemarks->text();
    toSave.days = &days;
    toSave.mirror = &mirror;
    // Times laid on from a time clock's file are recorded as an import.
    toSave.action = m_punchesImported ? history::Action::Imported
                    : editMode        ? history::Action::Edited
                                      : history::Action::Created;
    const entry::SaveResult result =
        entry::fnSaveEntry(gadocon, gintCompanyID, gintUserID, screenInterfaceId(), toSave);
    if (!result.savedId) {
        MsgBox(result.message, MsgButtons::Ok, MsgIcon::Information);
        return;
    }
    const qint32 newId = *result.savedId;

    // An edit refreshes the register row it was opened from (its identifier as listed); a
    // new entry appends the row of its new identifier. An edit saved under a new identifier
    // no longer has a row under the listed one, so that row is rewritten from the new one.
    QString listedId = QString::number(newId);
    if (editMode) {
        const FlexGrid* grid = registerGrid();
        listedId = grid && grid->Row() > 0 ? grid->TextMatrix(grid->Row(), 0)
                                           : QString::number(lngAttendanceID);
    }
    const QString company = QStringLiteral(" and eacompanyid=") + QString::number(gintCompanyID);
    if (!fnRefreshRegisterRow(QStringLiteral("eaID=") + listedId + company) && editMode &&
        listedId != QString::number(newId))
        fnRefreshRegisterRow(QStringLiteral("eaID=") + QString::number(newId) + company);
    m_saved = true;
    accept();
}

}  // namespace qz2
