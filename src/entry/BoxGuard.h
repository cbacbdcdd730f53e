#pragma once
// What a text box with a validator does when the clerk leaves it: an unfinished text gets the
// box's last complete one back, and a complete one is written the way the validator's fixup
// writes it ("3/12/2026" as 03/12/2026, "1:30" as 01.30). Used by the date and amount boxes.

#include <QString>
#include <functional>

class QLineEdit;

namespace qz2::entry {

void guardLastComplete(QLineEdit* box, std::function<bool(const QString&)> isComplete);

}  // namespace qz2::entry
