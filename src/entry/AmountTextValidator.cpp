#include "entry/AmountTextValidator.h"

#include <QLineEdit>

#include "entry/BoxGuard.h"
#include "rules/Hours.h"

namespace qz2::entry {

QValidator::State AmountTextValidator::validate(QString& input, int&) const {
    if (rules::normaliseClaimAmount(input)) return Acceptable;
    return rules::isClaimAmountBeginning(input) ? Intermediate : Invalid;
}

void AmountTextValidator::fixup(QString& input) const {
    if (const auto amount = rules::normaliseClaimAmount(input)) input = *amount;
}

void AmountTextValidator::guard(QLineEdit* box) {
    box->setValidator(new AmountTextValidator(box));
    box->setMaxLength(5);
    box->setPlaceholderText(QStringLiteral("hh.mm"));
    guardLastComplete(box, [](const QString& text) {
        return rules::normaliseClaimAmount(text).has_value();
    });
}

}  // namespace qz2::entry
