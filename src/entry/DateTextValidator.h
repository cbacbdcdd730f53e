#pragma once
// Keeps a text box to the screen's date text "dd/mm/yyyy": while typing, any beginning of
// such a text is allowed (digits in the day, month and year places, the slashes between);
// a complete text is accepted only when it names a real day, so 31/02/2026 cannot be
// typed. A box that loses the focus with an unfinished text gets its last complete date
// back (see DateTextValidator::guard).

#include <QValidator>

class QDateEdit;
class QLineEdit;

namespace qz2::entry {

class DateTextValidator : public QValidator {
    Q_OBJECT
public:
    explicit DateTextValidator(QObject* parent = nullptr) : QValidator(parent) {}
    State validate(QString& input, int& pos) const override;
    // A day or month typed with one digit ("5/1/2027") is written with two.
    void fixup(QString& input) const override;

    // Installs the validator on the box and restores the last complete date whenever
    // the box is left with an unfinished one.
    static void guard(QLineEdit* box);

    // Lets a date picker take a date typed as "dd/mm/yyyy", slashes included, as the form's
    // date text boxes do: the picker moves on to the next part by itself once a part is
    // full, so a slash typed right after that is not taken as a second move; and typing over
    // the whole text selected starts with the day instead of being ignored.
    static void guardPicker(QDateEdit* picker);
};

}  // namespace qz2::entry
