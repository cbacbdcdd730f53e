// Import punches: the employee's time-clock punches of a file laid onto the populated
// period. The file is read, matched and paired by src/punches; the form only hands over
// its grids and shows what happened. Nothing is saved until OK.

#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QFileDialog>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>

#include "entry/EntryRules.h"
#include "entry/frmEmployeeDailyAttendance.h"
#include "entry/frmPunchSummary.h"
#include "punches/PunchFile.h"
#include "punches/PunchImport.h"
#include "punches/PunchMatch.h"
#include "punches/PunchPairs.h"
#include "punches/PunchStore.h"
#include "rules/DayTypes.h"
#include "rules/HalfDay.h"
#include "rules/Hours.h"
#include "shared/BasAttendence.h"
#include "shared/FlexGrid.h"
#include "shared/MsgBox.h"

namespace qz2 {

namespace {

const QString kMsgPopulateFirst =
    QStringLiteral("Populate the period first; the punches are then laid onto its days.");

}  // namespace

void frmEmployeeDailyAttendance::cmdImportPunches_Click() {
    if (mfgAttendance->Rows() <= 1) {
        MsgBox(kMsgPopulateFirst, MsgButtons::Ok, MsgIcon::Information);
        cmdPopulateRecords->setFocus();
        return;
    }
    const QString path =
        QFileDialog::getOpenFileName(this, tr("Import punches"), QString(),
                                     tr("Punch files (*.txt *.dat *.log *.csv);;All files (*)"));
    if (!path.isEmpty()) fnImportPunches(path);
}

bool frmEmployeeDailyAttendance::fnImportPunches(const QString& path) {
    if (mfgAttendance->Rows() <= 1 || cboEmpname->currentIndex() < 0) {
        MsgBox(kMsgPopulateFirst, MsgButtons::Ok, MsgIcon::Information);
        cmdPopulateRecords->setFocus();
        return false;
    }
    if (m_unfinished != Step::None) {
        MsgBox(entry::kMsgStepUnfinished, MsgButtons::Ok, MsgIcon::Information);
        cmdPopulateRecords->setFocus();
        return false;
    }
    const WaitCursor wait;

    const punches::ReadResult read = punches::readPunchFile(path);
    if (!read.ok()) {
        MsgBox(punches::refusalText(read).join(QLatin1Char('\n')), MsgButtons::Ok,
               MsgIcon::Information);
        return false;
    }
    const qint32 employee = cboEmpname->currentData().toInt();
    punches::MatchResult match;
    try {
        match = punches::matchPunches(read.punches,
                                      punches::readCompanyEmployees(gadocon, gintCompanyID));
    } catch (const std::exception& e) {
        MsgBox(db::errorMessage(e), MsgButtons::Ok, MsgIcon::Information);
        return false;
    }
    const QVector<punches::Punch> mine = match.punchesByEmployee.value(employee);
    if (mine.isEmpty()) {
        MsgBox(tr("The file has no punches of %1. Nothing was changed.")
                   .arg(cboEmpname->currentText().trimmed()),
               MsgButtons::Ok, MsgIcon::Information);
        return false;
    }

    // The days the grid holds are the ones the punches are laid onto, whatever the period
    // boxes say since Populate.
    FlexGridModel& days = *mfgAttendance->flexModel();
    const punches::ImportPlan plan = punches::planForEntry(days, mine, gdtProcessDate);
    if (plan.pairs == 0) {
        const auto dayOfRow = [&days](int row) {
            return dateText(rules::cellDate(days.TextMatrix(row, colDate)).value_or(QDate()));
        };
        MsgBox(
            tr("None of the punches of %1 in the file falls between %2 and %3. Nothing was "
               "changed.")
                .arg(cboEmpname->currentText().trimmed(), dayOfRow(1), dayOfRow(days.Rows() - 1)),
            MsgButtons::Ok, MsgIcon::Information);
        return false;
    }

    // Hours and counts as after typed times; the day shown follows its new pairs.
    const QStringList withdrawn = punches::layPunches(
        days, *mfgMirrorGrid->flexModel(), plan, [this](QDate d) { return fnCheckGraceTime(d); },
        intGraceTime);
    const auto recompute = [this] {
        fnCalculateTotalHours();
        fnFindtheAdditionalWorkingHours();
        fnCountDayTypes();
        mfgAttendance_Click();
    };
    fnCountDayTypes();
    mfgAttendance_Click();
    m_punchesImported = true;

    QStringList summary = punches::importSummary(plan);
    summary << withdrawn;
    summary << punches::unreadLinesText(read);
    frmPunchSummary dialog(summary, plan.workingDaysWithoutPunches, this);
    if (dialog.run() == QDialog::Accepted) {
        const QVector<QDate> absent = dialog.fnTickedDays();
        if (!absent.isEmpty()) {
            // Ticked in the absent-day list too, so that Populate again keeps them absent.
            fnTickAbsentDays(QSet<QDate>(absent.cbegin(), absent.cend()));
            punches::markDaysAbsent(days, *mfgMirrorGrid->flexModel(), absent);
            recompute();
        }
    }
    return true;
}

}  // namespace qz2
