#include "entry/frmEmployeeDailyAttendance.h"

namespace qz2 {

void frmEmployeeDailyAttendance::connectDayEvents() {}
bool frmEmployeeDailyAttendance::dayEventFilter(QObject*, QEvent*) { return false; }

}  // namespace qz2
