#include "entry/frmEmployeeDailyAttendance.h"

namespace qz2 {

void frmEmployeeDailyAttendance::connectPairEvents() {}
bool frmEmployeeDailyAttendance::pairsEventFilter(QObject*, QEvent*) { return false; }

}  // namespace qz2
