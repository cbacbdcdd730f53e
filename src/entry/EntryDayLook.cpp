// How the day grid looks, beside what its cells say: each day's weekday in the row's
// heading, holidays and days off shaded apart from working days, and the selected day's
// whole row highlighted. No cell's text and no column changes for any of it: saving, the
// rules and automation read the cells as they are.

#include <QAbstractItemModel>
#include <QHeaderView>
#include <algorithm>

#include "entry/frmEmployeeDailyAttendance.h"
#include "rules/DayLook.h"
#include "rules/RuleGrids.h"
#include "shared/FlexGrid.h"
#include "shared/TimeValue.h"

namespace qz2 {

void frmEmployeeDailyAttendance::connectDayLook() {
    FlexGrid* days = mfgAttendance;
    FlexGridModel* model = days->flexModel();
    days->setSelectionBehavior(QAbstractItemView::SelectRows);
    model->setRowHeading([model](int dataRow) {
        const std::optional<QDate> day = rules::cellDate(model->text(dataRow, colDate));
        return day ? shortDayName(*day) : QString();
    });
    QHeaderView* weekdays = days->verticalHeader();
    weekdays->setVisible(true);
    weekdays->setDefaultAlignment(Qt::AlignCenter);
    weekdays->setFixedWidth(weekdays->fontMetrics().horizontalAdvance(QStringLiteral("Wed")) + 14);

    connect(model, &QAbstractItemModel::dataChanged, this,
            [this, model](const QModelIndex& from, const QModelIndex& to, const QList<int>& roles) {
                if (!roles.isEmpty() && !roles.contains(Qt::DisplayRole)) return;
                const bool dateChanged = from.column() <= colDate && to.column() >= colDate;
                if (dateChanged) model->rowHeadingsChanged(from.row(), to.row());
                if (dateChanged || (from.column() <= colSchedule && to.column() >= colType))
                    fnShadeDays(from.row() + 1, to.row() + 1);
            });
    connect(model, &QAbstractItemModel::rowsInserted, this,
            [this](const QModelIndex&, int first, int last) { fnShadeDays(first + 1, last + 1); });
    connect(model, &QAbstractItemModel::modelReset, this,
            [this] { fnShadeDays(1, mfgAttendance->Rows() - 1); });
}

void frmEmployeeDailyAttendance::fnShadeDays(int firstRow, int lastRow) {
    FlexGridModel& days = *mfgAttendance->flexModel();
    lastRow = std::min(lastRow, days.Rows() - 1);
    for (int row = std::max(firstRow, 1); row <= lastRow; ++row) {
        const QColor colour = rules::dayShadeColour(
            rules::dayShade(days.TextMatrix(row, colType), days.TextMatrix(row, colSchedule)));
        // The hidden AllowanceType column is left alone: its changes are the claims'.
        for (int col = colMarker; col <= colHours; ++col)
            if (days.background(row - 1, col) != colour) days.setBackground(row - 1, col, colour);
    }
}

}  // namespace qz2
