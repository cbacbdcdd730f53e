#include "entry/DateTextValidator.h"

#include <QDateEdit>
#include <QEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QRegularExpression>

#include "entry/BoxGuard.h"
#include "shared/TimeValue.h"

namespace qz2::entry {

QValidator::State DateTextValidator::validate(QString& input, int&) const {
    static const QRegularExpression complete(QStringLiteral("^\\d{2}/\\d{2}/\\d{4}$"));
    static const QRegularExpression partial(QStringLiteral("^\\d{0,2}(/\\d{0,2}(/\\d{0,4})?)?$"));
    if (complete.match(input).hasMatch()) return parseDmy(input) ? Acceptable : Invalid;
    if (!partial.match(input).hasMatch()) return Invalid;
    // A finished day or month that no calendar has is refused at once.
    const QStringList parts = input.split(QLatin1Char('/'));
    if (parts.size() > 0 && parts[0].size() == 2 && (parts[0].toInt() < 1 || parts[0].toInt() > 31))
        return Invalid;
    if (parts.size() > 1 && parts[1].size() == 2 && (parts[1].toInt() < 1 || parts[1].toInt() > 12))
        return Invalid;
    return Intermediate;
}

void DateTextValidator::fixup(QString& input) const {
    static const QRegularExpression loose(
        QStringLiteral("^\\s*(\\d{1,2})/(\\d{1,2})/(\\d{4})\\s*$"));
    const QRegularExpressionMatch m = loose.match(input);
    if (!m.hasMatch()) return;
    const QString padded = m.captured(1).rightJustified(2, QLatin1Char('0')) + QLatin1Char('/') +
                           m.captured(2).rightJustified(2, QLatin1Char('0')) + QLatin1Char('/') +
                           m.captured(3);
    if (parseDmy(padded)) input = padded;
}

namespace {
// The picker's typing, see DateTextValidator::guardPicker.
class DatePickerTyping : public QObject {
public:
    explicit DatePickerTyping(QDateEdit* picker) : QObject(picker), m_picker(picker) {
        picker->installEventFilter(this);
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (watched != m_picker || event->type() != QEvent::KeyPress) return false;
        const auto* key = static_cast<QKeyEvent*>(event);
        if (key->modifiers() & (Qt::ControlModifier | Qt::AltModifier)) return false;
        const QString typed = key->text();
        const QLineEdit* edit = m_picker->findChild<QLineEdit*>();
        if (typed.size() != 1 || !edit) return false;
        const QString selected = edit->selectedText();
        if (typed[0].isDigit() && !selected.isEmpty() && selected == edit->text()) {
            m_picker->setSelectedSection(m_picker->sectionAt(0));
            return false;
        }
        // The part before was full and the picker already stands on the next one, which is
        // still whole and selected: this slash is the one the clerk types between the parts.
        if (typed == QLatin1String("/") && !selected.isEmpty() &&
            selected == m_picker->sectionText(m_picker->currentSection()))
            return true;
        return false;
    }

private:
    QDateEdit* m_picker;
};

}  // namespace

void DateTextValidator::guardPicker(QDateEdit* picker) {
    new DatePickerTyping(picker);
}

void DateTextValidator::guard(QLineEdit* box) {
    box->setValidator(new DateTextValidator(box));
    box->setMaxLength(10);
    box->setPlaceholderText(QStringLiteral("dd/mm/yyyy"));
    guardLastComplete(box, [](const QString& text) { return parseDmy(text).has_value(); });
}

}  // namespace qz2::entry
