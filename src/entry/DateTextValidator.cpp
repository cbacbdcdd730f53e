#include "entry/DateTextValidator.h"

#include <QDateEdit>
#include <QEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QRegularExpression>

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
// Remembers the box's last complete date and puts it back when the box is left unfinished.
class DateBoxGuard : public QObject {
public:
    explicit DateBoxGuard(QLineEdit* box) : QObject(box), m_box(box) {
        remember(box->text());
        QObject::connect(box, &QLineEdit::textChanged, this,
                         [this](const QString& text) { remember(text); });
        box->installEventFilter(this);
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (watched == m_box && event->type() == QEvent::FocusOut && !m_box->hasAcceptableInput()) {
            QString text = m_box->text();
            if (const QValidator* v = m_box->validator()) v->fixup(text);
            m_box->setText(parseDmy(text) ? text : m_lastComplete);
        }
        return QObject::eventFilter(watched, event);
    }

private:
    void remember(const QString& text) {
        if (parseDmy(text)) m_lastComplete = text;
    }
    QLineEdit* m_box;
    QString m_lastComplete;
};
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
    new DateBoxGuard(box);
}

}  // namespace qz2::entry
