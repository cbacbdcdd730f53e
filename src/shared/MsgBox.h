#pragma once
// Every prompt of the component goes through here: a modal QMessageBox titled with the
// session title, the text to the letter, the icon and buttons asked for. Unit tests may
// queue answers so that no box blocks; widget tests answer the real box instead.

#include <QString>
#include <QVector>

namespace qz2 {

enum class MsgIcon { None, Information, Question, Exclamation, Critical };
enum class MsgButtons { Ok, YesNo };
enum class MsgResult { Ok, Yes, No };
// Which answer Enter gives a question. A question whose Yes throws work away (unsaved keying,
// a stored entry) defaults to No, so that a habitual Enter keeps the work.
enum class MsgDefault { Yes, No };

MsgResult MsgBox(const QString& text, MsgButtons buttons = MsgButtons::Ok, MsgIcon icon = MsgIcon::None,
                 MsgDefault byDefault = MsgDefault::Yes);

// The wait cursor while a step may wait on a busy database (the save, Populate, choosing
// the employee); a message box shown meanwhile gets the ordinary arrow.
class WaitCursor {
public:
    WaitCursor();
    ~WaitCursor();
    WaitCursor(const WaitCursor&) = delete;
    WaitCursor& operator=(const WaitCursor&) = delete;
};

struct ShownMessage {
    QString text;
    QString title;
    MsgButtons buttons;
    MsgIcon icon;
    MsgDefault byDefault = MsgDefault::Yes;
};

namespace msgbox_testing {
// Every box asked for since the last clear(), answered or shown.
const QVector<ShownMessage>& shown();
void clear();
// The next box is answered with this instead of being shown (first in, first out).
void pushAnswer(MsgResult answer);
// While on, a box with no queued answer is answered at once with OK, or with `yesNoAnswer`
// for a question, instead of being shown.
void setAutoAnswer(bool on, MsgResult yesNoAnswer = MsgResult::Yes);
}  // namespace msgbox_testing

}  // namespace qz2
