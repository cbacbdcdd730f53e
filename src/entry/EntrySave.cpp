#include "entry/frmEmployeeDailyAttendance.h"

namespace qz2 {

void frmEmployeeDailyAttendance::connectSaveEvents() {}

}  // namespace qz2
