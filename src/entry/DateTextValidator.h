#pragma once
// Keeps a text box to the screen's date text "dd/mm/yyyy": while typing, any beginning of
// such a text is allowed (digits in the day, month and year places, the slashes between);
// a complete text is accepted only when it names a real day, so 31/02/2026 cannot be
// typed. A box that loses the focus with an unfinished text gets its last complete date
// back (see DateTextValidator::guard).

#include <QValidator>

class QLineEdit;

namespace qz2::entry {

class DateTextValidator : public QValidator {
    Q_OBJECT
public:
    explicit DateTextValidator(QObject* parent = nullptr) : QValidator(parent) {}
    State validate(QString& input, int& pos) const override;

    // Installs the validator on the box and restores the last complete date whenever
    // the box is left with an unfinished one.
    static void guard(QLineEdit* box);
};

}  // namespace qz2::entry
