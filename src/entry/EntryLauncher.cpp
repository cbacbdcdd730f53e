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

// Edit mode: the form starts up, the stored entry is loaded into it and it is shown. When
// the entry cannot be read the form is not shown at all.
void openEntryForEdit(QWidget* parent, const QString& id, bool cancelled, bool mayEdit) {
    gstrEntryMode = QStringLiteral("E");
    frmEmployeeDailyAttendance form(parent);
    form.Form_Load();
    if (!form.fnLoadEntry(id, cancelled, mayEdit)) return;
    form.exec();
}

}  // namespace qz2::entry
