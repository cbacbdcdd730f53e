#pragma once
// The figures of the three reports, worked out from what ReportData read: plain functions
// over plain values, with no database and no widget.
//
// How a day counts: a day's code is the stored type of its lines; its weights are the entry
// form's (present, leave, absent, holiday; the present total includes holidays, as the
// header stores it). Worked hours are the sum over the day's pairs of check-out minus the
// check-in after the grace rule, as the form computes them; scheduled hours are the day's
// pairs under the entry's own work-time setting, nothing on a holiday. A day that two live
// entries both cover is a conflict: its cell shows every code, and it counts in neither
// the days nor the hours, so that no figure silently takes one side.

#include <QDate>
#include <QString>
#include <QStringList>
#include <QVector>

#include "reports/ReportData.h"

namespace qz2::reports {

// An amount of minutes as "hh:mm" hours that do not wrap at 24 ("176:30", "00:45",
// "-01:15"); a day's own hours are TimeValue's "hh:mm".
QString hoursText(qint64 minutes);
// Decimal hours to whole minutes, to the nearest minute.
qint64 minutesOf(double hours);

// The text of a conflict day: "!" and the codes of the entries in their order ("!P/A").
QString conflictText(const QStringList& codes);

struct MusterRow {
    Employee employee;
    QStringList cells;  // one per day of the period: the code, "" without an entry, or a conflict
    double present = 0.0;  // holidays included
    double leave = 0.0;
    double absent = 0.0;
    double holidays = 0.0;
    qint64 workedMinutes = 0;
    qint64 scheduledMinutes = 0;
    qint64 overtimeMinutes = 0;
    qint64 lateMinutes = 0;
    int conflicts = 0;
    QStringList entryNos;
};

struct Muster {
    QDate from;
    QDate to;
    QString departmentName;
    QVector<MusterRow> rows;
};

Muster buildMuster(const PeriodSource& src);

struct PayrollLine {
    Employee employee;
    QString entryNo;
    QDate from;  // the entry's days inside the report's period
    QDate to;
    double present = 0.0;  // holidays included
    double leave = 0.0;
    double absent = 0.0;
    double overtimeHours = 0.0;
    double lateHours = 0.0;
    QStringList allowanceIds;
    QStringList deductionIds;
};

struct Payroll {
    QDate from;
    QDate to;
    QString departmentName;
    QVector<PayrollLine> lines;
};

Payroll buildPayroll(const PeriodSource& src);

struct SheetDay {
    QDate date;
    QString type;       // "" when the entry has no line for the day
    QStringList pairs;  // "09:00-13:00"
    qint64 workedMinutes = 0;
    qint64 scheduledMinutes = 0;
    double overtimeHours = 0.0;
    double lateHours = 0.0;
};

struct Sheet {
    EntryHead entry;
    QVector<SheetDay> days;
    double holidays = 0.0;
    qint64 workedMinutes = 0;
    qint64 scheduledMinutes = 0;
    double overtimeHours = 0.0;
    double lateHours = 0.0;
};

Sheet buildSheet(const SheetSource& src);

}  // namespace qz2::reports
