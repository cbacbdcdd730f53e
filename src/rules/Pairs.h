#pragma once
// Check-in/check-out pairs: the pairs grid of the current day, the hidden mirror grid that
// holds every pair of the period, and the small procedures that keep the two in step
// (numbering, copying, order checks, the Enter key and the spare last row).

#include <QDate>
#include <QString>
#include <QStringList>
#include <QTime>

#include "rules/RuleGrids.h"

namespace qz2::rules {

inline const QString kMsgCheckInAfterCheckOut =
    QStringLiteral("The Checkin time Must be Less than or equal to Check out Time");
inline const QString kMsgCheckInBeforePreviousCheckOut =
    QStringLiteral(" The Checkin Time Must Be Greater than Previous CheckOut Time");
// A key typed into the time picker that would make it something other than a time of day
// ("25", "12:75"): the picker refuses it rather than turning it silently into another time.
inline const QString kMsgNotATimeOfDay = QStringLiteral(
    "That is not a time of day. Type the hours from 00 to 23 and the minutes from 00 to 59, "
    "for example 09:30.");

// A day has at most this many pairs; Enter on the check-out of this row adds nothing.
constexpr int kMaxPairRow = 6;

enum class TimeKind { CheckIn = 1, CheckOut = 2 };

// Column 1 of rows 1..Rows-1 becomes 1, 2, 3, ...
void fnRenumberGrid(FlexGridModel& grid);

// Numbers the mirror rows of each date 1..n in row order.
void fnRenumbertheGridForEachDate(FlexGridModel& mirror);

// Removes every mirror row of the date; nothing happens while the mirror's current row is
// its heading row.
void fnRemoveRowsFromMirrorGridOnEdit(FlexGridModel& mirror, QDate date,
                                      bool mirrorCurrentRowIsHeading);

// Writes the time ("HH:mm") into the check-in or check-out of every mirror row of that date
// and serial number.
void fnUpdateMirrorTime(FlexGridModel& mirror, QDate date, int slNo, TimeValue time, TimeKind kind);

// Appends the pairs grid's row as a mirror row when the mirror has no row of that date and
// serial number yet, an empty mirror included.
// Returns whether a row was appended.
bool fnAddPairToMirrorGrid(FlexGridModel& mirror, const FlexGridModel& pairs, QDate date, int slNo,
                           int pairsRow);

// The mirror rows of the date become exactly the pairs grid's rows, empty times included.
void fnReplaceMirrorRowsForDate(FlexGridModel& mirror, const FlexGridModel& pairs, QDate date);

// The order check between consecutive pairs: true (failure) when the check-in's "HH:mm"
// text is less than the previous check-out's. Equal times pass.
bool fnCheckPreviousCheckOut(TimeValue checkIn, TimeValue previousCheckOut);

// The order check within one row: true (failure) when both cells hold text and the
// check-in's "HH:mm" text is greater than the check-out's. Equal times pass.
bool sameRowOrderFails(const QString& checkInText, const QString& checkOutText);

// Whether the picker's time is written into the cell: 00:00 never is.
bool pickedTimeIsWritten(QTime picked);

// Leaving a cell of the pairs grid: commits the picker's time into the cell, checks the
// order, keeps the mirror in step. `recompute` says the day's hours must be recomputed.
struct PairCellCommit {
    enum class Outcome {
        NotARow,                // the heading row was current: nothing done
        Committed,              // all steps ran
        CheckOutBeforeCheckIn,  // kMsgCheckInAfterCheckOut; the time stays, mirror untouched
        BeforePreviousCheckOut  // kMsgCheckInBeforePreviousCheckOut; back to column 2
    };
    Outcome outcome = Outcome::NotARow;
    bool recompute = false;
};
PairCellCommit fnCommitPairCell(FlexGridModel& pairs, FlexGridModel& mirror, int row, int col,
                                QTime picked);

// The Enter key on the pairs grid or on its time picker.
enum class EnterSource { Grid, Picker };
struct EnterKeyAction {
    enum class Kind {
        Nothing,      // check-out of the last allowed pair: no move, no tidy-up
        MoveRight,    // to (row, col + 1)
        NextRowCol1,  // to (row + 1, 1)
        AddRow,       // a new pair row (date, slNo), then to (newRow, 1)
        Stay          // last row, nothing to add
    };
    Kind kind = Kind::Nothing;
    int row = 0;  // the current cell afterwards
    int col = 0;
    QString date;               // AddRow: the new row's date
    QString slNo;               // AddRow: the new row's serial number
    bool sendTabFirst = false;  // the picker commits its value before the row is added
    bool tidyUp = false;        // the spare-last-row tidy-up runs afterwards
};
// rowCells: the four cells of the current row.
EnterKeyAction enterKeyAction(EnterSource source, int currentRow, int currentCol, int rows,
                              const QStringList& rowCells);

// Adds the pair row of an AddRow action; returns the new row.
int fnAddPairRow(FlexGridModel& pairs, const EnterKeyAction& action);

// The tidy-up after a key: the last row is spare when the grid has more than two rows, the
// current row is not the last and the last row's times are both blank.
bool lastPairRowIsSpare(const FlexGridModel& pairs, int currentRow);
// Removes a spare last row; returns whether one was removed.
bool fnTidyLastPairRow(FlexGridModel& pairs, int currentRow);
// The mouse's tidy-up: while the grid has at least three rows, drops a last row whose times
// are both blank.
void removeBlankTrailingPairRows(FlexGridModel& pairs);

// The popup's Delete: removes the row (or, for the only row, clears its times), renumbers
// the pairs and makes the mirror rows of the date equal the pairs grid's. Returns true when
// the only row was cleared rather than removed.
bool deletePair(FlexGridModel& pairs, FlexGridModel& mirror, int currentRow, QDate date);

}  // namespace qz2::rules
