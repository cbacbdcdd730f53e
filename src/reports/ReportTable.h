#pragma once
// One shape for every report on its way to a file: a title, heading lines, typed columns and
// rows, notes and signature lines. The three reports are turned into it here; each format's
// writer (CSV, XLSX, PDF) knows only this shape.

#include <QDate>
#include <QString>
#include <QStringList>
#include <QVector>
#include <functional>
#include <utility>

#include "reports/ReportFigures.h"

namespace qz2::reports {

struct Cell {
    enum class Kind { Text, Number, Date, Hours };
    Kind kind = Kind::Text;
    QString text;         // as shown on paper and in CSV (a date as "dd/mm/yyyy")
    double number = 0.0;  // Number: the value; Hours: minutes
    QDate date;

    static Cell ofText(const QString& text);
    static Cell ofNumber(double value, const QString& shown);
    static Cell ofCount(double value);    // "2.5", "3"
    static Cell ofDecimal(double value);  // two decimals: "1.25"
    static Cell ofDate(QDate date);       // empty text for an invalid date
    static Cell ofHours(qint64 minutes);  // "hh:mm", not wrapping at 24 hours
};

struct Column {
    QString heading;     // a day column's heading is "26 Mon": paper shows it on two lines
    bool right = false;  // numbers and hours align right on paper
    bool day = false;
    QString paperHeading;  // a shorter heading where paper is tight; empty: the heading
};

struct ReportTable {
    QString title;
    QStringList heading;  // company, period, department / entry details
    QVector<Column> columns;
    QVector<QVector<Cell>> rows;
    int frozenColumns = 0;  // repeated on every page when the columns need several widths of paper
    // Columns a CSV line and an XLSX row carry in front of the table's own (the sheet's
    // entry number), shown once in the heading on paper.
    QVector<std::pair<QString, Cell>> keyColumns;
    QStringList notes;       // under the table
    QStringList signatures;  // a line to sign over each caption, at the end
    bool landscape = false;
};

ReportTable musterTable(const Muster& m, const QString& companyTitle);
ReportTable payrollTable(const Payroll& p, const QString& companyTitle);
ReportTable sheetTable(const Sheet& s, const QString& companyTitle);

// Called as a long report goes along; returning false cancels it.
using Progress = std::function<bool(int done, int total)>;

}  // namespace qz2::reports
