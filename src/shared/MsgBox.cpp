#include "shared/MsgBox.h"

#include <QApplication>
#include <QMessageBox>
#include <QQueue>

#include "shared/BasAttendence.h"

namespace qz2 {

namespace {
QVector<ShownMessage> g_shown;
QQueue<MsgResult> g_answers;
bool g_autoAnswer = false;
MsgResult g_autoYesNo = MsgResult::Yes;
}  // namespace

WaitCursor::WaitCursor() { QApplication::setOverrideCursor(Qt::WaitCursor); }
WaitCursor::~WaitCursor() { QApplication::restoreOverrideCursor(); }

MsgResult MsgBox(const QString& text, MsgButtons buttons, MsgIcon icon, MsgDefault byDefault) {
    if (g_shown.size() >= 500) g_shown.remove(0, 250);  // a record for tests, not a history
    g_shown.push_back({text, gstrMsgboxTitle, buttons, icon, byDefault});
    if (!g_answers.isEmpty()) return g_answers.dequeue();
    if (g_autoAnswer) return buttons == MsgButtons::YesNo ? g_autoYesNo : MsgResult::Ok;

    // A box asked for while a step waits shows the arrow, not the wait cursor.
    const bool waiting = QApplication::overrideCursor() != nullptr;
    if (waiting) QApplication::setOverrideCursor(Qt::ArrowCursor);
    struct Restore {
        bool on;
        ~Restore() {
            if (on) QApplication::restoreOverrideCursor();
        }
    } restore{waiting};

    QWidget* parent = QApplication::activeModalWidget();
    if (!parent) parent = QApplication::activeWindow();
    QMessageBox box(parent);
    box.setObjectName(QStringLiteral("MsgBox"));
    box.setWindowTitle(gstrMsgboxTitle);
    box.setText(text);
    switch (icon) {
        case MsgIcon::Information: box.setIcon(QMessageBox::Information); break;
        case MsgIcon::Question: box.setIcon(QMessageBox::Question); break;
        case MsgIcon::Exclamation: box.setIcon(QMessageBox::Warning); break;
        case MsgIcon::Critical: box.setIcon(QMessageBox::Critical); break;
        case MsgIcon::None: box.setIcon(QMessageBox::NoIcon); break;
    }
    if (buttons == MsgButtons::YesNo) {
        box.setStandardButtons(QMessageBox::Yes | QMessageBox::No);
        box.setDefaultButton(byDefault == MsgDefault::No ? QMessageBox::No : QMessageBox::Yes);
        box.setEscapeButton(QMessageBox::No);
    } else {
        box.setStandardButtons(QMessageBox::Ok);
    }
    const int r = box.exec();
    if (buttons == MsgButtons::YesNo) return r == QMessageBox::Yes ? MsgResult::Yes : MsgResult::No;
    return MsgResult::Ok;
}

namespace msgbox_testing {
const QVector<ShownMessage>& shown() { return g_shown; }
void clear() {
    g_shown.clear();
    g_answers.clear();
}
void pushAnswer(MsgResult answer) { g_answers.enqueue(answer); }
void setAutoAnswer(bool on, MsgResult yesNoAnswer) {
    g_autoAnswer = on;
    g_autoYesNo = yesNoAnswer;
}
}  // namespace msgbox_testing

}  // namespace qz2
