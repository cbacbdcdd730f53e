#include "entry/BoxGuard.h"

#include <QEvent>
#include <QLineEdit>
#include <QValidator>

namespace qz2::entry {

namespace {

class LastCompleteGuard : public QObject {
public:
    LastCompleteGuard(QLineEdit* box, std::function<bool(const QString&)> isComplete)
        : QObject(box), m_box(box), m_isComplete(std::move(isComplete)) {
        remember(box->text());
        QObject::connect(box, &QLineEdit::textChanged, this,
                         [this](const QString& text) { remember(text); });
        box->installEventFilter(this);
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (watched == m_box && event->type() == QEvent::FocusOut) {
            QString text = m_box->text();
            if (const QValidator* v = m_box->validator()) v->fixup(text);
            const QString kept = m_isComplete(text) ? text : m_lastComplete;
            if (kept != m_box->text()) m_box->setText(kept);
        }
        return QObject::eventFilter(watched, event);
    }

private:
    void remember(const QString& text) {
        if (m_isComplete(text)) m_lastComplete = text;
    }
    QLineEdit* m_box;
    std::function<bool(const QString&)> m_isComplete;
    QString m_lastComplete;
};

}  // namespace

void guardLastComplete(QLineEdit* box, std::function<bool(const QString&)> isComplete) {
    new LastCompleteGuard(box, std::move(isComplete));
}

}  // namespace qz2::entry
