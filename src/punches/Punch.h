#pragma once
// One punch of a time clock, as read from a punch file: who, when, which way and where.
// Reading, matching and pairing all pass punches in this one shape.

#include <QDateTime>
#include <QString>

namespace qz2::punches {

// Which way the employee went through the clock. None: the clock did not say (a state
// outside the known ones, a blank direction column); pairing then alternates.
enum class Direction : quint8 { None, In, Out };

struct Punch {
    QString code;  // the employee code as the clock wrote it, blanks at both ends removed
    // The clock's own wall time. Held as UTC so that no time-zone rule shifts it or refuses
    // it (a punch at 02:30 on the night clocks go forward is still 02:30).
    QDateTime at;
    QString device;  // the clock's number or name; empty when the file does not say
    int line = 0;    // the line of the file it came from (1 = the first line)
    Direction direction = Direction::None;
};

}  // namespace qz2::punches
