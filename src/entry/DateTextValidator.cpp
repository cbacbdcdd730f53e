#include "entry/DateTextValidator.h"

#include <QEvent>
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
        if (watched == m_box && event->type() == QEvent::FocusOut && !m_box->hasAcceptableInput())
            m_box->setText(m_lastComplete);
        return QObject::eventFilter(watched, event);
    }

private:
    void remember(const QString& text) {
        if (parseDmy(text)) m_lastComplete = text;
    }
    QLineEdit* m_box;
    QString m_lastComplete;
};
}  // namespace

void DateTextValidator::guard(QLineEdit* box) {
    box->setValidator(new DateTextValidator(box));
    box->setMaxLength(10);
    box->setPlaceholderText(QStringLiteral("dd/mm/yyyy"));
    new DateBoxGuard(box);
}

}  // namespace qz2::entry
