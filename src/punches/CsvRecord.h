#pragma once
// Splits CSV text into records, one physical line at a time (RFC 4180): fields are separated
// by the separator, a field in double quotes may hold separators, line breaks and doubled
// quotes. Two liberties, both for what spreadsheets and hand edits produce: blanks around a
// quoted field are dropped, and a quote inside an unquoted field is taken as it is. Text
// after a closing quote (`"12"3`) makes the record malformed.

#include <QString>
#include <QStringList>
#include <QStringView>

namespace qz2::punches {

class CsvRecord {
public:
    enum class Step {
        Complete,        // fields() holds the record
        NeedsMoreLines,  // a quoted field goes on past the line's end
        Malformed        // text after a closing quote; the record is to be dropped
    };

    explicit CsvRecord(QChar separator = QLatin1Char(','));

    // Adds the next physical line (without its line end). After Complete or Malformed the
    // next line starts a new record.
    Step addLine(QStringView line);
    const QStringList& fields() const { return fields_; }
    // Lines taken by the current record so far (the record in progress or the one just ended).
    int lineCount() const { return lines_; }
    void clear();

private:
    Step parse(QStringView line);

    QChar separator_;
    QStringList fields_;
    QString field_;          // the quoted field in progress across lines
    bool inQuotes_ = false;  // a quoted field continues on the next line
    bool done_ = true;       // the last record ended; the next line starts a new one
    int lines_ = 0;
};

}  // namespace qz2::punches
