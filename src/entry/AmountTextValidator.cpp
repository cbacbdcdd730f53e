#include "entry/AmountTextValidator.h"

#include <QEvent>
#include <QLineEdit>

#include "rules/Hours.h"

namespace qz2::entry {

QValidator::State AmountTextValidator::validate(QString& input, int&) const {
    if (rules::normaliseClaimAmount(input)) return Acceptable;
    return rules::isClaimAmountBeginning(input) ? Intermediate : Invalid;
}

void AmountTextValidator::fixup(QString& input) const {
    if (const auto amount = rules::normaliseClaimAmount(input)) input = *amount;
}

namespace {
// Remembers the box's last complete amount; leaving the box puts it back over an unfinished
// one and writes a complete one in its stored form.
class AmountBoxGuard : public QObject {
public:
    explicit AmountBoxGuard(QLineEdit* box) : QObject(box), m_box(box) {
        remember(box->text());
        QObject::connect(box, &QLineEdit::textChanged, this,
                         [this](const QString& text) { remember(text); });
        box->installEventFilter(this);
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (watched == m_box && event->type() == QEvent::FocusOut) {
            const auto amount = rules::normaliseClaimAmount(m_box->text());
            if (!amount)
                m_box->setText(m_lastComplete);
            else if (*amount != m_box->text())
                m_box->setText(*amount);
        }
        return QObject::eventFilter(watched, event);
    }

private:
    void remember(const QString& text) {
        if (const auto amount = rules::normaliseClaimAmount(text)) m_lastComplete = *amount;
    }
    QLineEdit* m_box;
    QString m_lastComplete;
};
}  // namespace

void AmountTextValidator::guard(QLineEdit* box) {
    box->setValidator(new AmountTextValidator(box));
    box->setMaxLength(5);
    box->setPlaceholderText(QStringLiteral("hh.mm"));
    new AmountBoxGuard(box);
}

}  // namespace qz2::entry
