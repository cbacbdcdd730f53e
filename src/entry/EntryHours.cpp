// Hours and day counts of the entry form: the widgets' side of the worked-hours and
// day-type rules, which do the arithmetic on the grids' models.

#include <QCheckBox>
#include <QLineEdit>

#include "entry/frmEmployeeDailyAttendance.h"
#include "rules/DayTypes.h"
#include "rules/Hours.h"
#include "shared/FlexGrid.h"

namespace qz2 {

void frmEmployeeDailyAttendance::fnCalculateTotalHours() {
    rules::fnCalculateTotalHours(
        *mfgAttendance->flexModel(), *mfgMirrorGrid->flexModel(),
        [this](QDate d) { return fnCheckGraceTime(d); }, intGraceTime);
}

void frmEmployeeDailyAttendance::fnCalculateTotalHoursfortheDay() {
    const int row = mfgAttendance->Row();
    const std::optional<QDate> day =
        row > 0 ? parseDmy(mfgAttendance->TextMatrix(row, colDate)) : std::optional<QDate>();
    const rules::DayDifference diff = rules::fnCalculateTotalHoursfortheDay(
        *mfgCheckinCheckOut->flexModel(), day.value_or(QDate()), dtCurrentDaySchedule,
        [this](QDate d) { return fnCheckGraceTime(d); }, intGraceTime);
    chkAllowanceDeductions->setText(diff.caption);
    if (diff.clearTick) chkAllowanceDeductions->setChecked(false);
    // An amount the clerk typed (or the day's stored claim) stands until the day's times
    // change; with no difference left there is nothing to keep.
    if (diff.clearTick) m_keepDayAmount = false;
    if (!m_keepDayAmount) txtAllowanceDeductions->setText(diff.amount);
    // The claim follows the recomputed day even when the amount's text is unchanged: a
    // difference that changed side with the same size (+01:00 to -01:00) must be stored as
    // a deduction, never kept as the overtime it was.
    fnStoreDayClaim();
}

void frmEmployeeDailyAttendance::fnFindtheAdditionalWorkingHours() {
    rules::fnFindtheAdditionalWorkingHours(*mfgAttendance->flexModel());
}

void frmEmployeeDailyAttendance::fnCountDayTypes() {
    const rules::DayCounts counts = rules::fnCountDayTypes(*mfgAttendance->flexModel());
    txtNoPresent->setText(rules::countText(counts.present));
    txtNoLeave->setText(rules::countText(counts.leave));
    txtNoAbsent->setText(rules::countText(counts.absent));
}

}  // namespace qz2
