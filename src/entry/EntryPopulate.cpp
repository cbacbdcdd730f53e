#include "entry/frmEmployeeDailyAttendance.h"

namespace qz2 {

void frmEmployeeDailyAttendance::connectPopulateEvents() {}

}  // namespace qz2
