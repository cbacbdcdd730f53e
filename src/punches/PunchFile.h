#pragma once
// Reading punch files: the attendance log that time clocks export and push, and CSV files
// with a heading. Bad input never stops the reading; every line that gives no punch is
// counted and the first ones of each kind are kept with their line numbers for the clerk.
//
// The attendance log: one punch per line, TAB-separated: the employee code (blanks around
// it are not significant), the date and time "yyyy-MM-dd HH:mm:ss", the device number, the
// state (0 check-in, 1 check-out, 2 break-out, 3 break-in, 4 overtime-in, 5 overtime-out, so
// 0, 3, 4 are In and 1, 2, 5 are Out; any other state, a missing or blank one too, gives no
// direction), then further fields that are not used. A line needs the code and the date and
// time; the device may be missing. A file is a log when, among its first ten non-blank
// lines, one has a TAB and a second field shaped like that date and time (impossible values
// such as 2026-02-30 still count: they are reported on their line).
//   Device line: the first non-blank line is the clock's own line (its name, serial number)
//   and is skipped when it is not a punch line, holds nothing like a date (2026-03-02,
//   2/3/2026, 2026.03.02) and does not start with a number and a TAB (a damaged punch);
//   otherwise it is a line like any other.
//   Totals line: the last non-blank line is skipped when it is a count: digits alone, or one
//   of the words Total, Totals, Count, Records, Punches followed by an optional ":" or "="
//   and the digits ("Total: 1234", "records=1234", "1234"). The count is not checked.
//   A file of nothing but such a first and last line is a log without punches.
//
// CSV: the first non-blank line is the heading, separated by commas (semicolons when the
// heading makes sense only with them), fields quoted as RFC 4180 says (see CsvRecord.h).
// Columns are found by name; names are compared on their letters and digits only, without
// letter case (so "Emp. No" and "EMP_NO" are "empno"). The first column of each kind counts:
//   code:      code, employee code, emp code, employee no, employee number, emp no,
//              employee id, emp id, user id, user code, badge, badge no, badge number,
//              card no, card number
//   date-time: datetime, date time, date and time, timestamp, punch time, punch datetime
//   date:      date, punch date          time: time
//   direction: direction, in out, io, punch type, punch direction, state   (optional)
//   device:    device, device no, device number, device id, terminal, terminal no,
//              terminal id, machine, machine no, clock, clock no                (optional)
// A code column and either a date-time column or a date and a time column are needed; the
// date-time column is used when both kinds are there. Dates are yyyy-mm-dd or dd/mm/yyyy
// (day and month may have one digit), times H:mm or H:mm:ss, a date-time is a date, blanks
// or a "T", and a time. Directions: IN, I, 0 are In; OUT, O, 1 are Out; blank is none;
// letter case does not matter. A row of blank fields is skipped. A quoted field may run over
// at most 20 lines: a quote not closed by then is taken for a stray one, its line is
// reported and the lines after it are read as records of their own. A heading alone is a
// file without punches.
//
// Both: UTF-8 with or without its byte-order mark, UTF-16 LE or BE with theirs; lines end
// in LF or CRLF; blank lines are skipped. A file is binary (and not read) when its first
// 64 KiB of text hold a NUL or more than 5% control or undecodable characters; a later line
// with a control character other than TAB is not a punch line. A line longer than 4,096
// characters is not a punch line. Each line gives at most one problem: the first found of
// its empty code, date and time, direction. A PDF, a ZIP archive (an XLSX sheet) and an
// older office document are told apart by their first bytes and named in the message.

#include <QByteArrayView>
#include <QString>
#include <QStringList>
#include <QVector>
#include <array>
#include <memory>

#include "punches/Punch.h"

namespace qz2::punches {

// Files above this are refused before a byte is read: a month of punches of a 5,000-employee
// company is about 40 MB, so anything this size is not a punch file, and reading it would
// hold the whole computer up.
constexpr qint64 kMaxPunchFileBytes = qint64(512) * 1024 * 1024;
// Longer lines are not punch lines; the limit keeps a file without line ends from being
// held in memory as one line.
constexpr int kMaxLineChars = 4096;

enum class FileFormat { None, AttendanceLog, Csv };
enum class TextEncoding { Utf8, Utf8WithBom, Utf16LE, Utf16BE };

enum class FileStatus {
    Read,         // the format was recognised; the punches and problems are the file's
    Unreadable,   // missing, a folder, no permission, a read error
    Empty,        // no bytes, or only blank lines
    Binary,       // not text
    OtherFormat,  // text or a known document, but not a punch file of either format
    TooLarge      // above kMaxPunchFileBytes
};

enum class ProblemKind {
    NotAPunchLine,        // neither a log line nor a CSV record (or a quote never closed)
    EmptyCode,            // the employee code is blank
    UnreadableDateTime,   // the date or time is not in an accepted form
    ImpossibleDate,       // the right form, but no such day (2026-02-30)
    ImpossibleTime,       // the right form, but no such time of day (25:10)
    UnreadableDirection,  // a CSV direction other than IN, OUT, I, O, 0, 1 or blank
};
constexpr int kProblemKinds = 6;

struct Problem {
    int line = 0;
    ProblemKind kind = ProblemKind::NotAPunchLine;
    QString quoted;  // the offending text: 40 characters at most, TABs as blanks, other
                     // control characters as "?"
};

// "impossible date \"2026-02-30 08:00:00\"": the problem without its line number.
QString problemText(const Problem& problem);

// Counts every problem and keeps the first ten of each kind.
class ProblemLog {
public:
    static constexpr int kExamplesPerKind = 10;

    // Whether add() would keep the text: lets a reader skip building it.
    bool keeps(ProblemKind kind) const;
    void add(ProblemKind kind, int line, QStringView offending);
    int count(ProblemKind kind) const;
    int total() const;
    bool isEmpty() const { return total() == 0; }
    // The kept problems of one kind, in line order.
    const QVector<Problem>& examples(ProblemKind kind) const;

private:
    std::array<QVector<Problem>, kProblemKinds> examples_;
    std::array<int, kProblemKinds> counts_{};
};

// The problems for the clerk, kind after kind, one line each:
//   Line 17: impossible date "2026-02-30 08:00:00"
//   and 1,234 more lines like it
QStringList describeProblems(const ProblemLog& problems);

struct ReadResult {
    FileStatus status = FileStatus::Empty;
    FileFormat format = FileFormat::None;
    TextEncoding encoding = TextEncoding::Utf8;
    QString message;         // one sentence on the file as a whole, for the clerk
    QVector<Punch> punches;  // in file order
    ProblemLog problems;
    int lines = 0;       // physical lines read, blank ones included
    QString deviceLine;  // the skipped first line of a log, if there was one
    QString totalsLine;  // the skipped last line of a log, if there was one
    bool ok() const { return status == FileStatus::Read; }
};

// Reads a punch file given in pieces of any size: the same bytes give the same result
// however they are cut. Memory stays at the punches plus about a megabyte of text.
class PunchReader {
public:
    PunchReader();
    ~PunchReader();
    PunchReader(const PunchReader&) = delete;
    PunchReader& operator=(const PunchReader&) = delete;

    // The next bytes of the file. After the reader has given up on the file (binary, another
    // format, too large) further bytes are only counted.
    void feed(QByteArrayView bytes);
    // False once the reader has given up on the file (binary, another format, too large):
    // the rest need not be fed.
    bool wantsMore() const;
    // The end of the file: the result. The reader is spent afterwards.
    ReadResult finish();

private:
    struct State;
    std::unique_ptr<State> d;
};

// The file at `path`, refused unread when it is larger than kMaxPunchFileBytes.
ReadResult readPunchFile(const QString& path);
// Bytes already in memory.
ReadResult readPunchBytes(QByteArrayView bytes);

// Why a file that was not read was refused: its message, then its problems.
QStringList refusalText(const ReadResult& read);
// The lines of a read file that were not read, under a heading; empty when every line was.
QStringList unreadLinesText(const ReadResult& read);

}  // namespace qz2::punches
