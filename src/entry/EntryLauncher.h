#pragma once
// How the register opens the entry form: for a new entry, or loaded with a stored entry.

class QWidget;
class QString;

namespace qz2::entry {

// Shows frmEmployeeDailyAttendance modally for a new entry (the mode is already "N").
void showNewEntry(QWidget* parent);
// Loads the stored entry `id` into the entry form and shows it; a cancelled entry, one
// that a monthly entry covers, or one the user may not edit (`mayEdit` false) opens for
// viewing only.
void openEntryForEdit(QWidget* parent, const QString& id, bool cancelled, bool mayEdit = true);

}  // namespace qz2::entry
