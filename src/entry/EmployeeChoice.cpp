#include "entry/EmployeeChoice.h"

#include <QDate>

namespace qz2::entry {

namespace {
const QString kSeparator = QStringLiteral(" \u2013 ");  // an en dash between blanks

// A number as the clerk may type it: "e7", "E0007" and " E0007 " are one number.
QString comparableNumber(QString number) {
    number = number.trimmed().toUpper();
    int letters = 0;
    while (letters < number.size() && !number[letters].isDigit()) ++letters;
    QString digits = number.mid(letters);
    while (digits.size() > 1 && digits.startsWith(QLatin1Char('0'))) digits.remove(0, 1);
    return number.left(letters) + digits;
}
}  // namespace

QString employeeItemText(const QString& number, const QString& name) {
    const QString no = number.trimmed();
    return no.isEmpty() ? name.trimmed() : no + kSeparator + name.trimmed();
}

QList<int> findEmployeeItems(const QStringList& itemTexts, const QString& typed) {
    const QString text = typed.trimmed();
    QList<int> found;
    if (text.isEmpty()) return found;
    // The whole item as it is shown (the box's own text after a choice).
    for (int i = 0; i < itemTexts.size(); ++i)
        if (itemTexts[i].compare(text, Qt::CaseInsensitive) == 0) return {i};
    const QString number = comparableNumber(text);
    for (int i = 0; i < itemTexts.size(); ++i) {
        const int cut = static_cast<int>(itemTexts[i].indexOf(kSeparator));
        if (cut > 0 && comparableNumber(itemTexts[i].left(cut)) == number) found << i;
    }
    if (found.size() == 1) return found;
    found.clear();
    for (int i = 0; i < itemTexts.size(); ++i)
        if (itemTexts[i].contains(text, Qt::CaseInsensitive)) found << i;
    return found;
}

QString payrollBehindText(const QDate& lastPayroll) {
    return QStringLiteral(
               "Attendance is already recorded beyond this employee's last payroll (%1); Find "
               "employee... greys such employees. Check the period before you populate it.")
        .arg(lastPayroll.toString(QStringLiteral("dd/MM/yyyy")));
}

}  // namespace qz2::entry
