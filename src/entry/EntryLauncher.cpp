#include "entry/EntryLauncher.h"

#include <QDialog>
#include <QString>

namespace qz2::entry {

// Interim: the entry form is being built; until then New and Edit open its empty shell.
void showNewEntry(QWidget* parent) {
    QDialog form(parent);
    form.setObjectName(QStringLiteral("frmEmployeeDailyAttendance"));
    form.exec();
}

void openEntryForEdit(QWidget* parent, const QString&, bool) { showNewEntry(parent); }

}  // namespace qz2::entry
