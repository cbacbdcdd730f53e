#pragma once
// What the save writes besides the header: the detail lines (one per mirror row, then the
// absent, leave and holiday days without pairs) and the allowance/deduction lines, in the
// order and with the numbering the inserts use. The form runs the inserts; these functions
// only decide the rows.

#include <QDate>
#include <QList>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVector>
#include <optional>
#include <stdexcept>

#include "rules/RuleGrids.h"

namespace qz2::rules {

// A cell the save must convert (a date, a time, an amount of hours) holds something else.
// The save rolls back and shows the description, as for any other error.
// A date text of the form as the date it stands for; a text that is not a date is the
// conversion error a save reports ("Type mismatch").
QDate requiredDate(const QString& text);

class SaveDataError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// One row of the detail table: check-in and check-out are NULL for the lines of absent,
// leave and holiday days without pairs.
struct DetailLine {
    int detailId = 0;
    QDate date;
    QString type;
    std::optional<TimeValue> checkIn;
    std::optional<TimeValue> checkOut;
    friend bool operator==(const DetailLine&, const DetailLine&) = default;
};

// One row of the allowance/deduction table: exactly one of the two identifiers is set.
struct AllowanceLine {
    int detailId = 0;
    QDate date;
    double hours = 0.0;
    std::optional<int> allowanceId;
    std::optional<int> deductionId;
    friend bool operator==(const AllowanceLine&, const AllowanceLine&) = default;
};

// The "Hours" text ("HH:mm" or "hh.mm") as decimal hours: hours + minutes / 60. nullopt when
// the text is not a time.
std::optional<double> hoursToDecimal(const QString& hoursText);

// Stored decimal hours (hours + minutes / 60) as the day grid's "HH:mm" Hours text; the
// inverse of hoursToDecimal, to the nearest minute.
QString decimalHoursText(double decimalHours);

// The trimmed Type of the first day row whose Date text equals dateText; "" when none does.
QString dayTypeForMirrorRow(const FlexGridModel& dayGrid, const QString& dateText);

// The detail lines of the mirror rows, r = 1.. in mirror order; an empty time is stored as
// 00:00. Throws SaveDataError for an unreadable date or time.
QList<DetailLine> fnMirrorDetailLines(const FlexGridModel& dayGrid, const FlexGridModel& mirror);

// The lines of "A" and "L" days, and of every other day that has no mirror row of the same
// Date text, with check-in and check-out NULL; detailCounter is the last detail number used
// and is advanced before each line. Throws SaveDataError for an unreadable date.
QList<DetailLine> fnInsertOtherDays(const FlexGridModel& dayGrid, const FlexGridModel& mirror,
                                    int& detailCounter);

// Every detail line the save inserts, in insert order: the mirror's lines, then the other
// days' lines continuing the numbering.
QList<DetailLine> detailLinesToInsert(const FlexGridModel& dayGrid, const FlexGridModel& mirror);

// The allowance ("A") and deduction ("D") lines of the day rows, numbered from 1 in grid
// order, with the employee's currency identifiers (0 when the currency has none). Throws
// SaveDataError for an unreadable date or Hours.
QList<AllowanceLine> allowanceLinesToInsert(const FlexGridModel& dayGrid, int allowanceId,
                                            int deductionId);

// What OK says when the period shares a day with another live entry of the employee: that
// entry's number and period ("dd/mm/yyyy"), and that nothing was saved.
QString overlapMessage(const QString& entryNo, QDate start, QDate end);

// A stored header row as text, column by column ("name=value", NULL as "NULL"): two reads of
// the same row give the same text, so an edit can tell whether the entry it opened was
// changed (saved again, cancelled) by someone else meanwhile.
QStringList headerFingerprint(const QStringList& names, const QVector<QVariant>& values);

// Why an edit must not be saved over the stored entry it opened; nullopt when the stored
// header is still the one the form loaded. `stored` is empty when the entry's row is gone
// (another clerk's edit saved it under a new identifier).
std::optional<QString> staleEditMessage(const QString& entryNo, const QStringList& opened,
                                        const QStringList& stored, bool storedCancelled);

// A clerk's free text (remarks, a reason) as it is stored: control characters (NUL, tabs,
// line breaks pasted in) become one blank each, so that no text is cut short by a driver or
// a statement, then the text is trimmed.
QString cleanedText(const QString& text);

// The save's "Process Attendance" check: no day rows, or no pair anywhere in the period
// while some day is other than "P".
bool processAttendanceMissing(const FlexGridModel& dayGrid, const FlexGridModel& mirror);

}  // namespace qz2::rules
