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
    txtAllowanceDeductions->setText(diff.amount);
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
