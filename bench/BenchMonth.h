#pragma once
// The month the save and history benchmarks key on the entry form: 31 days from
// 1 December 2026, six check-in/check-out pairs a day and the day's difference claimed
// (allowance and deduction alternating), as Populate and the clerk's corrections leave it.

#include <QComboBox>
#include <QDate>
#include <QDateEdit>
#include <QLineEdit>

#include "entry/frmEmployeeDailyAttendance.h"
#include "rules/HalfDay.h"
#include "rules/Population.h"
#include "rules/RuleGrids.h"
#include "shared/BasAttendence.h"
#include "shared/FlexGrid.h"

namespace benchmonth {

constexpr int kDays = 31;
inline const QDate kStart(2026, 12, 1);

// Keys the month on a loaded form, as Populate and the clerk's corrections leave it.
inline void keyMonth(qz2::frmEmployeeDailyAttendance& form, qint32 employee) {
    using namespace qz2;
    for (int i = 0; i < form.cboEmpname->count(); ++i)
        if (form.cboEmpname->itemData(i).toLongLong() == employee)
            form.cboEmpname->setCurrentIndex(i);
    const QDate end = kStart.addDays(kDays - 1);
    form.txtStartDate->setText(dateText(kStart));
    form.dtpEndDate->setDate(end);
    form.txtEndDate->setText(dateText(end));
    FlexGridModel& days = *form.mfgAttendance->flexModel();
    FlexGridModel& mirror = *form.mfgMirrorGrid->flexModel();
    rules::fnBuildDayRows(days, kStart, end);
    mirror.setRows(1);
    const char* pairs[6][2] = {{"06:00", "07:00"}, {"07:30", "09:00"}, {"09:30", "11:00"},
                               {"11:30", "13:00"}, {"13:30", "15:00"}, {"15:30", "17:10"}};
    for (int i = 0; i < kDays; ++i) {
        const QDate day = kStart.addDays(i);
        days.setTextMatrix(i + 1, rules::daycol::Type, QStringLiteral("P"));
        for (int p = 0; p < 6; ++p)
            mirror.AddItem({dateText(day), QString::number(p + 1), QString::fromLatin1(pairs[p][0]),
                            QString::fromLatin1(pairs[p][1])});
    }
    form.fnCalculateTotalHours();
    for (int i = 0; i < kDays; ++i)
        rules::fnSetDayAllowanceDeduction(days, QStringLiteral("01:10"),
                                          i % 2 == 0 ? QStringLiteral("A") : QStringLiteral("D"),
                                          kStart.addDays(i), true);
    form.fnCountDayTypes();
    form.txtRemarks->setText(QStringLiteral("A busy month"));
}

}  // namespace benchmonth
