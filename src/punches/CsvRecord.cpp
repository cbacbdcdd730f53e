#include "punches/CsvRecord.h"

namespace qz2::punches {

namespace {

bool isBlank(QChar c) {
    return c == QLatin1Char(' ') || c == QLatin1Char('\t');
}

}  // namespace

CsvRecord::CsvRecord(QChar separator) : separator_(separator) {}

void CsvRecord::clear() {
    fields_.clear();
    field_.clear();
    inQuotes_ = false;
    done_ = true;
    lines_ = 0;
}

CsvRecord::Step CsvRecord::addLine(QStringView line) {
    if (done_) {
        clear();
        done_ = false;
    } else {
        // A quoted field went on past the previous line: its line break belongs to it.
        field_ += QLatin1Char('\n');
    }
    ++lines_;
    const Step step = parse(line);
    if (step != Step::NeedsMoreLines) done_ = true;
    return step;
}

CsvRecord::Step CsvRecord::parse(QStringView line) {
    const qsizetype n = line.size();
    qsizetype i = 0;
    while (true) {
        if (inQuotes_) {
            // Inside a quoted field: up to the closing quote, "" standing for one quote.
            while (true) {
                const qsizetype q = line.indexOf(QLatin1Char('"'), i);
                if (q < 0) {
                    field_ += line.mid(i);
                    return Step::NeedsMoreLines;
                }
                field_ += line.mid(i, q - i);
                if (q + 1 < n && line[q + 1] == QLatin1Char('"')) {
                    field_ += QLatin1Char('"');
                    i = q + 2;
                    continue;
                }
                i = q + 1;
                break;
            }
            inQuotes_ = false;
            fields_ << field_;
            field_.clear();
            while (i < n && isBlank(line[i])) ++i;
            if (i == n) return Step::Complete;
            if (line[i] != separator_) return Step::Malformed;
            ++i;  // the next field starts after the separator
            continue;
        }
        // The start of a field: a quote after optional blanks opens a quoted field.
        qsizetype j = i;
        while (j < n && isBlank(line[j])) ++j;
        if (j < n && line[j] == QLatin1Char('"')) {
            inQuotes_ = true;
            i = j + 1;
            continue;
        }
        const qsizetype sep = line.indexOf(separator_, i);
        if (sep < 0) {
            fields_ << line.mid(i).toString();
            return Step::Complete;
        }
        fields_ << line.mid(i, sep - i).toString();
        i = sep + 1;
    }
}

}  // namespace qz2::punches
