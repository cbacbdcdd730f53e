#pragma once
// How the entry form's employee box names employees and finds the one the clerk types:
// by number or by name, the number telling apart two people of one name.

#include <QList>
#include <QString>
#include <QStringList>

class QDate;

namespace qz2::entry {

// "number – name"; the name alone when the employee has no number.
QString employeeItemText(const QString& number, const QString& name);

// The items (their indexes) that the typed text names: the one whose number it is (letter
// case, blanks and leading zeros aside), else every item whose text contains it (letter
// case aside). Nothing for blank text.
QList<int> findEmployeeItems(const QStringList& itemTexts, const QString& typed);

// The note shown on choosing an employee whom the picker greys: attendance is already
// recorded beyond their last payroll. The entry can still be made.
QString payrollBehindText(const QDate& lastPayroll);

}  // namespace qz2::entry
