#pragma once
// Keeps the claim amount box to an amount of hours and minutes, "hh.mm" or "hh:mm" with hours
// 00-23 and minutes 00-59: while typing, any beginning of such an amount is allowed and
// anything else is refused at the key; a box left with an unfinished amount gets its last
// complete one back, and a complete one is shown the way it is stored ("1:30" as "01.30").

#include <QValidator>

class QLineEdit;

namespace qz2::entry {

class AmountTextValidator : public QValidator {
    Q_OBJECT
public:
    explicit AmountTextValidator(QObject* parent = nullptr) : QValidator(parent) {}
    State validate(QString& input, int& pos) const override;
    void fixup(QString& input) const override;

    // Installs the validator on the box and restores or normalises its text whenever the
    // box is left.
    static void guard(QLineEdit* box);
};

}  // namespace qz2::entry
