#include "entry/EntryLauncher.h"

#include <QString>

#include "entry/frmEmployeeDailyAttendance.h"
#include "shared/BasAttendence.h"

namespace qz2::entry {

void showNewEntry(QWidget* parent) {
    frmEmployeeDailyAttendance form(parent);
    form.Form_Load();
    form.exec();
}

// Opens the form in Edit mode. Loading the stored entry into it (its header, days, pairs
// and claims) belongs to the register's edit path and is added there; until then the form
// opens with its Edit-mode start-up only.
void openEntryForEdit(QWidget* parent, const QString&, bool) {
    gstrEntryMode = QStringLiteral("E");
    frmEmployeeDailyAttendance form(parent);
    form.Form_Load();
    form.exec();
}

}  // namespace qz2::entry
