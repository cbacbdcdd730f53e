#include "punches/PunchFile.h"

#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QRegularExpression>
#include <QStringDecoder>
#include <algorithm>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "punches/CsvRecord.h"

namespace qz2::punches {

namespace {

// The binary check looks at this much text at the file's start.
constexpr qsizetype kWindowChars = 64 * 1024;
// A quoted CSV field may run over at most this many lines; beyond that the opening quote is
// taken for a stray one and the lines after it are read again as records of their own.
constexpr int kMaxCsvRecordLines = 20;
// The first bytes that say what a file is: a byte-order mark or a document's signature.
constexpr qsizetype kHeadBytes = 8;
// readPunchFile and readPunchBytes hand the reader this much at a time.
constexpr qsizetype kChunkBytes = 1024 * 1024;
constexpr int kQuotedChars = 40;
constexpr int kEarlyLines = 10;

QString grouped(qint64 n) {
    return QLocale(QLocale::English).toString(n);
}

QString plural(qint64 n, const char* one, const char* many) {
    return grouped(n) + QLatin1Char(' ') + QLatin1String(n == 1 ? one : many);
}

QString sizeText(qint64 bytes) {
    return grouped((bytes + 1024 * 1024 - 1) / (1024 * 1024)) + QStringLiteral(" MB");
}

QString shortened(QStringView text) {
    QString out = text.left(kQuotedChars).toString();
    for (QChar& c : out)
        if (c == QLatin1Char('\t'))
            c = QLatin1Char(' ');
        else if (c.unicode() < 0x20)
            c = QLatin1Char('?');
    if (text.size() > kQuotedChars) out += QStringLiteral("...");
    return out;
}

bool isBlankChar(QChar c) {
    // ^Z ends many files written by old DOS programs; it is no line of its own.
    return c == QLatin1Char(' ') || c == QLatin1Char('\t') || c == QLatin1Char('\f') ||
           c == QLatin1Char('\v') || c == QLatin1Char('\r') || c.unicode() == 0x1A;
}

bool isBlankLine(QStringView line) {
    for (QChar c : line)
        if (!isBlankChar(c)) return false;
    return true;
}

bool hasControl(QStringView line) {
    for (QChar c : line)
        if (c.unicode() < 0x20 && c != QLatin1Char('\t')) return true;
    return false;
}

int digits(QStringView s, qsizetype pos, int count) {
    if (pos + count > s.size()) return -1;
    int value = 0;
    for (int i = 0; i < count; ++i) {
        const char16_t c = s[pos + i].unicode();
        if (c < u'0' || c > u'9') return -1;
        value = value * 10 + (c - u'0');
    }
    return value;
}

// Reads a run of 1..maxLen digits at `pos`; returns its value and moves `pos` past it.
int digitRun(QStringView s, qsizetype& pos, int minLen, int maxLen) {
    int len = 0;
    int value = 0;
    while (pos + len < s.size() && len < maxLen) {
        const char16_t c = s[pos + len].unicode();
        if (c < u'0' || c > u'9') break;
        value = value * 10 + (c - u'0');
        ++len;
    }
    if (len < minLen) return -1;
    // More digits than allowed make no date or time.
    if (pos + len < s.size() && s[pos + len].isDigit()) return -1;
    pos += len;
    return value;
}

bool isDigits(QStringView s) {
    if (s.isEmpty()) return false;
    for (QChar c : s)
        if (c.unicode() < u'0' || c.unicode() > u'9') return false;
    return true;
}

enum class Check { Ok, Unreadable, ImpossibleDate, ImpossibleTime };

struct Stamp {
    Check check = Check::Unreadable;
    QDateTime at;
};

Stamp stampOf(int y, int mo, int d, int h, int mi, int s) {
    if (!QDate::isValid(y, mo, d)) return {Check::ImpossibleDate, {}};
    if (h > 23 || mi > 59 || s > 59) return {Check::ImpossibleTime, {}};
    return {Check::Ok, QDateTime(QDate(y, mo, d), QTime(h, mi, s), Qt::UTC)};
}

// "yyyy-MM-dd HH:mm:ss", digits and signs where they belong, whatever the values.
bool hasLogStampShape(QStringView s) {
    if (s.size() != 19) return false;
    for (int i = 0; i < 19; ++i) {
        const char16_t c = s[i].unicode();
        switch (i) {
            case 4:
            case 7:
                if (c != u'-') return false;
                break;
            case 10:
                if (c != u' ') return false;
                break;
            case 13:
            case 16:
                if (c != u':') return false;
                break;
            default:
                if (c < u'0' || c > u'9') return false;
        }
    }
    return true;
}

Stamp logStamp(QStringView s) {
    if (!hasLogStampShape(s)) return {};
    return stampOf(digits(s, 0, 4), digits(s, 5, 2), digits(s, 8, 2), digits(s, 11, 2),
                   digits(s, 14, 2), digits(s, 17, 2));
}

// The second TAB-separated field of a line.
QStringView secondField(QStringView line) {
    const qsizetype t1 = line.indexOf(QLatin1Char('\t'));
    if (t1 < 0) return {};
    const qsizetype t2 = line.indexOf(QLatin1Char('\t'), t1 + 1);
    return line.mid(t1 + 1, t2 < 0 ? -1 : t2 - t1 - 1).trimmed();
}

bool isLogLine(QStringView line) {
    return hasLogStampShape(secondField(line));
}

bool holdsDateLikeText(QStringView line) {
    static const QRegularExpression dateLike(QStringLiteral("\\d{1,4}[-/.]\\d{1,2}[-/.]\\d{1,4}"));
    return dateLike.match(line).hasMatch();
}

// The clock's own first line: no punch, nothing like a date, and not a line whose first
// TAB-separated field is a number (that is a damaged punch line, to be reported).
bool isDeviceLine(QStringView line) {
    if (hasControl(line) || holdsDateLikeText(line)) return false;
    const qsizetype tab = line.indexOf(QLatin1Char('\t'));
    return tab < 0 || !isDigits(line.left(tab).trimmed());
}

bool isTotalsLine(QStringView line) {
    static const QRegularExpression totals(
        QStringLiteral("^\\s*(?:(?:total|totals|count|records|punches)\\s*[:=]?\\s*)?\\d+\\s*$"),
        QRegularExpression::CaseInsensitiveOption);
    return totals.match(line).hasMatch();
}

// CSV dates: yyyy-m-d or d/m/yyyy.
struct DateParts {
    Check check = Check::Unreadable;
    int y = 0, m = 0, d = 0;
};

DateParts csvDate(QStringView s) {
    qsizetype p = 0;
    const int a = digitRun(s, p, 1, 4);
    if (a < 0 || p >= s.size()) return {};
    const QChar sep = s[p];
    const qsizetype firstLen = p;
    if (sep == QLatin1Char('-') && firstLen == 4) {
        ++p;
        const int m = digitRun(s, p, 1, 2);
        if (m < 0 || p >= s.size() || s[p] != QLatin1Char('-')) return {};
        ++p;
        const int d = digitRun(s, p, 1, 2);
        if (d < 0 || p != s.size()) return {};
        return {QDate::isValid(a, m, d) ? Check::Ok : Check::ImpossibleDate, a, m, d};
    }
    if (sep == QLatin1Char('/') && firstLen <= 2) {
        ++p;
        const int m = digitRun(s, p, 1, 2);
        if (m < 0 || p >= s.size() || s[p] != QLatin1Char('/')) return {};
        ++p;
        const int y = digitRun(s, p, 4, 4);
        if (y < 0 || p != s.size()) return {};
        return {QDate::isValid(y, m, a) ? Check::Ok : Check::ImpossibleDate, y, m, a};
    }
    return {};
}

// CSV times: H:mm or H:mm:ss.
struct TimeParts {
    Check check = Check::Unreadable;
    int h = 0, m = 0, s = 0;
};

TimeParts csvTime(QStringView s) {
    qsizetype p = 0;
    const int h = digitRun(s, p, 1, 2);
    if (h < 0 || p >= s.size() || s[p] != QLatin1Char(':')) return {};
    ++p;
    const int m = digitRun(s, p, 2, 2);
    if (m < 0) return {};
    int sec = 0;
    if (p < s.size()) {
        if (s[p] != QLatin1Char(':')) return {};
        ++p;
        sec = digitRun(s, p, 2, 2);
        if (sec < 0 || p != s.size()) return {};
    }
    const bool possible = h <= 23 && m <= 59 && sec <= 59;
    return {possible ? Check::Ok : Check::ImpossibleTime, h, m, sec};
}

Stamp csvStamp(QStringView date, QStringView time) {
    const DateParts d = csvDate(date.trimmed());
    const TimeParts t = csvTime(time.trimmed());
    if (d.check == Check::Unreadable || t.check == Check::Unreadable) return {};
    return stampOf(d.y, d.m, d.d, t.h, t.m, t.s);
}

Stamp csvStamp(QStringView dateTime) {
    const QStringView s = dateTime.trimmed();
    qsizetype split = -1;
    for (qsizetype i = 0; i < s.size(); ++i) {
        if (s[i] == QLatin1Char(' ') || s[i] == QLatin1Char('\t') || s[i] == QLatin1Char('T')) {
            split = i;
            break;
        }
    }
    if (split < 0) return {};
    return csvStamp(s.left(split), s.mid(split + 1));
}

std::optional<Direction> csvDirection(QStringView value) {
    const QStringView v = value.trimmed();
    if (v.isEmpty()) return Direction::None;
    if (v.compare(QLatin1String("in"), Qt::CaseInsensitive) == 0 ||
        v.compare(QLatin1String("i"), Qt::CaseInsensitive) == 0 || v == QLatin1String("0"))
        return Direction::In;
    if (v.compare(QLatin1String("out"), Qt::CaseInsensitive) == 0 ||
        v.compare(QLatin1String("o"), Qt::CaseInsensitive) == 0 || v == QLatin1String("1"))
        return Direction::Out;
    return std::nullopt;
}

Direction logDirection(QStringView state) {
    switch (isDigits(state) && state.size() <= 3 ? state.toInt() : -1) {
        case 0:
        case 3:
        case 4:
            return Direction::In;
        case 1:
        case 2:
        case 5:
            return Direction::Out;
        default:
            return Direction::None;
    }
}

// How many bytes at the end of `bytes` begin a character that the next bytes finish.
qsizetype unfinishedTail(QByteArrayView bytes, QStringConverter::Encoding encoding) {
    const qsizetype n = bytes.size();
    if (encoding == QStringConverter::Utf8) {
        for (qsizetype back = 1; back <= std::min<qsizetype>(3, n); ++back) {
            const auto b = static_cast<unsigned char>(bytes[n - back]);
            if ((b & 0xC0) == 0x80) continue;  // a continuation byte: look further back
            if (b < 0xC0) return 0;            // ASCII: nothing unfinished
            const int length = b >= 0xF0 ? 4 : b >= 0xE0 ? 3 : 2;
            return length > back ? back : 0;
        }
        return 0;
    }
    // UTF-16: an odd byte, and a high surrogate whose low half has not come yet.
    const qsizetype odd = n % 2;
    if (n - odd < 2) return odd;
    const auto hi = static_cast<unsigned char>(bytes[n - odd - 2]);
    const auto lo = static_cast<unsigned char>(bytes[n - odd - 1]);
    const unsigned unit = encoding == QStringConverter::Utf16LE ? (lo << 8 | hi) : (hi << 8 | lo);
    return unit >= 0xD800 && unit <= 0xDBFF ? odd + 2 : odd;
}

QString columnKey(const QString& name) {
    QString key;
    for (QChar c : name)
        if (c.isLetterOrNumber()) key += c.toLower();
    return key;
}

struct CsvColumns {
    int code = -1;
    int dateTime = -1;
    int date = -1;
    int time = -1;
    int direction = -1;
    int device = -1;

    bool hasStamp() const { return dateTime >= 0 || (date >= 0 && time >= 0); }
    bool usable() const { return code >= 0 && hasStamp(); }
    // The fields a record needs at least: up to the last column it cannot do without.
    int needed() const {
        return std::max(code, dateTime >= 0 ? dateTime : std::max(date, time)) + 1;
    }
};

CsvColumns findColumns(const QStringList& names) {
    static const QStringList codeNames = {
        "code",  "employeecode", "empcode",     "employeeno", "employeenumber",
        "empno", "employeeid",   "empid",       "userid",     "usercode",
        "badge", "badgeno",      "badgenumber", "cardno",     "cardnumber"};
    static const QStringList dateTimeNames = {"datetime", "dateandtime", "timestamp", "punchtime",
                                              "punchdatetime"};
    static const QStringList dateNames = {"date", "punchdate"};
    static const QStringList timeNames = {"time"};
    static const QStringList directionNames = {"direction", "inout",          "io",
                                               "punchtype", "punchdirection", "state"};
    static const QStringList deviceNames = {"device",    "deviceno",   "devicenumber", "deviceid",
                                            "terminal",  "terminalno", "terminalid",   "machine",
                                            "machineno", "clock",      "clockno"};
    CsvColumns c;
    for (int i = 0; i < names.size(); ++i) {
        const QString key = columnKey(names[i]);
        auto take = [&](int& column, const QStringList& accepted) {
            if (column < 0 && accepted.contains(key)) column = i;
        };
        take(c.code, codeNames);
        take(c.dateTime, dateTimeNames);
        take(c.date, dateNames);
        take(c.time, timeNames);
        take(c.direction, directionNames);
        take(c.device, deviceNames);
    }
    return c;
}

std::optional<QStringList> headingFields(QStringView line, QChar separator) {
    CsvRecord record(separator);
    if (record.addLine(line) != CsvRecord::Step::Complete) return std::nullopt;
    return record.fields();
}

QString phrase(ProblemKind kind) {
    switch (kind) {
        case ProblemKind::NotAPunchLine:
            return QStringLiteral("not a punch line:");
        case ProblemKind::EmptyCode:
            return QStringLiteral("no employee code:");
        case ProblemKind::UnreadableDateTime:
            return QStringLiteral("date and time not understood:");
        case ProblemKind::ImpossibleDate:
            return QStringLiteral("impossible date");
        case ProblemKind::ImpossibleTime:
            return QStringLiteral("impossible time");
        case ProblemKind::UnreadableDirection:
            return QStringLiteral("direction not understood:");
    }
    return {};
}

ProblemKind problemOf(Check check) {
    switch (check) {
        case Check::ImpossibleDate:
            return ProblemKind::ImpossibleDate;
        case Check::ImpossibleTime:
            return ProblemKind::ImpossibleTime;
        default:
            return ProblemKind::UnreadableDateTime;
    }
}

QString formatName(FileFormat format) {
    return format == FileFormat::Csv ? QStringLiteral("CSV file")
                                     : QStringLiteral("time-clock log");
}

}  // namespace

// ---- Problems ---------------------------------------------------------------------------

QString problemText(const Problem& problem) {
    return phrase(problem.kind) + QStringLiteral(" \"") + problem.quoted + QLatin1Char('"');
}

bool ProblemLog::keeps(ProblemKind kind) const {
    return counts_[static_cast<int>(kind)] < kExamplesPerKind;
}

void ProblemLog::add(ProblemKind kind, int line, QStringView offending) {
    const int k = static_cast<int>(kind);
    if (counts_[k]++ < kExamplesPerKind) examples_[k].append({line, kind, shortened(offending)});
}

int ProblemLog::count(ProblemKind kind) const {
    return counts_[static_cast<int>(kind)];
}

int ProblemLog::total() const {
    int sum = 0;
    for (int c : counts_) sum += c;
    return sum;
}

const QVector<Problem>& ProblemLog::examples(ProblemKind kind) const {
    return examples_[static_cast<int>(kind)];
}

QStringList describeProblems(const ProblemLog& problems) {
    QStringList out;
    for (int k = 0; k < kProblemKinds; ++k) {
        const auto kind = static_cast<ProblemKind>(k);
        for (const Problem& p : problems.examples(kind))
            out << QStringLiteral("Line %1: %2").arg(grouped(p.line), problemText(p));
        const int more = problems.count(kind) - problems.examples(kind).size();
        if (more > 0)
            out << QStringLiteral("and %1 like it").arg(plural(more, "more line", "more lines"));
    }
    return out;
}

QStringList refusalText(const ReadResult& read) {
    return QStringList{read.message} + describeProblems(read.problems);
}

QStringList unreadLinesText(const ReadResult& read) {
    const QStringList problems = describeProblems(read.problems);
    if (problems.isEmpty()) return {};
    return QStringList{QStringLiteral("Lines of the file that were not read:")} + problems;
}

// ---- The reader -------------------------------------------------------------------------

struct PunchReader::State {
    enum class Mode { Undecided, Log, Csv };
    struct Line {
        int number = 0;
        QString text;
        bool overlong = false;
    };

    ReadResult result;
    qint64 bytes = 0;
    bool stopped = false;  // the file was given up on; its status is set
    bool finished = false;

    bool encodingKnown = false;
    QByteArray head;
    QStringDecoder decoder;
    QStringConverter::Encoding encoding = QStringConverter::Utf8;
    QByteArray carry;  // an unfinished character at the end of the last bytes fed

    QString text;  // decoded text not yet cut into lines
    qsizetype pos = 0;
    bool windowChecked = false;
    bool inLongLine = false;  // the rest of an overlong line is being passed over
    int lineNo = 0;

    Mode mode = Mode::Undecided;
    QVector<Line> early;  // the first non-blank lines, until the format is known

    bool sawFirstLogLine = false;
    std::optional<Line> maybeTotals;  // a count line, skipped if nothing but blanks follows

    QChar separator = QLatin1Char(',');
    CsvColumns columns;
    CsvRecord record;
    QVector<Line> recordLines;  // the physical lines of the record in progress

    // One copy of each code's and device's text for all their punches. Looked up by the
    // line's own characters, keyed by a view of the kept copy (which nothing changes).
    using Pool = std::unordered_map<std::u16string_view, QString>;
    Pool codes;
    Pool devices;
    QString lastDevice;

    void stop(FileStatus status, const QString& message) {
        stopped = true;
        result.status = status;
        result.message = message;
        // A file given up on gives nothing of what was read before.
        result.punches.clear();
        result.punches.squeeze();
        result.problems = {};
        result.deviceLine.clear();
        result.totalsLine.clear();
        early.clear();
        text.clear();
        pos = 0;
    }

    void feed(QByteArrayView bytesIn);
    void decideEncoding();
    void decode(QByteArrayView bytesIn);
    void checkWindow();
    void cutLines(bool atEnd);
    void onLine(QStringView line, bool overlong);
    void decide(bool atEnd);
    void replay();
    void logLine(int number, QStringView line, bool overlong);
    void csvLine(int number, QStringView line, bool overlong);
    void abandonRecord();
    void csvRecord(int number, const QStringList& fields, QStringView firstLine);
    void problem(ProblemKind kind, int line, QStringView offending) {
        result.problems.add(kind, line, offending);
    }
    static std::u16string_view viewOf(QStringView v) {
        return {reinterpret_cast<const char16_t*>(v.utf16()), size_t(v.size())};
    }
    QString intern(Pool& pool, QStringView value) {
        const auto it = pool.find(viewOf(value));
        if (it != pool.end()) return it->second;
        const QString kept = value.toString();
        pool.emplace(viewOf(kept), kept);
        return kept;
    }
    QString device(QStringView value) {
        if (value != lastDevice) lastDevice = intern(devices, value);
        return lastDevice;
    }
    ReadResult finish();
};

void PunchReader::State::feed(QByteArrayView in) {
    bytes += in.size();
    if (stopped) return;
    if (bytes > kMaxPunchFileBytes) {
        stop(FileStatus::TooLarge,
             QStringLiteral("The file is larger than %1; punch files are at most that size "
                            "(a month of a 5,000-employee company is about 40 MB).")
                 .arg(sizeText(kMaxPunchFileBytes)));
        return;
    }
    if (!encodingKnown) {
        head += in;
        if (head.size() < kHeadBytes) return;
        decideEncoding();
        return;
    }
    decode(in);
}

void PunchReader::State::decideEncoding() {
    encodingKnown = true;
    const QByteArray h = head;
    head.clear();
    if (h.startsWith("%PDF-")) {
        stop(FileStatus::OtherFormat,
             QStringLiteral("This is a PDF document, not a punch file. Export the punches from "
                            "the time clock, or save them as CSV."));
        return;
    }
    if (h.startsWith("PK\x03\x04")) {
        stop(FileStatus::OtherFormat,
             QStringLiteral("This is a spreadsheet or a ZIP archive, not a punch file. Save the "
                            "sheet as CSV first."));
        return;
    }
    if (h.startsWith("\xD0\xCF\x11\xE0")) {
        stop(FileStatus::OtherFormat,
             QStringLiteral("This is an office document, not a punch file. Save the sheet as "
                            "CSV first."));
        return;
    }
    qsizetype skip = 0;
    QStringConverter::Encoding chosen = QStringConverter::Utf8;
    if (h.startsWith("\xEF\xBB\xBF")) {
        result.encoding = TextEncoding::Utf8WithBom;
        skip = 3;
    } else if (h.startsWith("\xFF\xFE")) {
        result.encoding = TextEncoding::Utf16LE;
        chosen = QStringConverter::Utf16LE;
        skip = 2;
    } else if (h.startsWith("\xFE\xFF")) {
        result.encoding = TextEncoding::Utf16BE;
        chosen = QStringConverter::Utf16BE;
        skip = 2;
    }
    // The mark was taken off above; one more at the text's start would be a character.
    // Each piece is decoded on its own, an unfinished character being carried over to the
    // next: the decoder's own memory across pieces treats a bad byte at a piece's end
    // otherwise than the same byte inside a piece, and the cut must not change the text.
    encoding = chosen;
    decoder = QStringDecoder(
        chosen, QStringConverter::Flag::ConvertInitialBom | QStringConverter::Flag::Stateless);
    decode(QByteArrayView(h).sliced(skip));
}

void PunchReader::State::decode(QByteArrayView in) {
    if (in.isEmpty()) return;
    QByteArrayView bytesNow = in;
    QByteArray joined;
    if (!carry.isEmpty()) {
        joined = carry + in.toByteArray();
        bytesNow = joined;
    }
    const qsizetype keep = unfinishedTail(bytesNow, encoding);
    text += decoder.decode(bytesNow.first(bytesNow.size() - keep));
    carry = bytesNow.last(keep).toByteArray();
    if (!windowChecked) {
        if (text.size() < kWindowChars) return;
        checkWindow();
        if (stopped) return;
    }
    cutLines(false);
}

void PunchReader::State::checkWindow() {
    windowChecked = true;
    const QStringView window = QStringView(text).left(kWindowChars);
    qsizetype odd = 0;
    for (QChar c : window) {
        const char16_t u = c.unicode();
        if (u == 0) {
            odd = window.size() + 1;
            break;
        }
        if ((u < 0x20 && !isBlankChar(c) && u != u'\n') || u == 0x7F || u == 0xFFFD) ++odd;
    }
    if (odd * 20 > window.size())
        stop(FileStatus::Binary,
             QStringLiteral("The file is not text (it holds binary data), so it is no punch "
                            "file: export the punches as a time-clock log or a CSV file."));
}

void PunchReader::State::cutLines(bool atEnd) {
    while (!stopped) {
        const qsizetype nl = text.indexOf(QLatin1Char('\n'), pos);
        if (nl < 0) break;
        QStringView line = QStringView(text).mid(pos, nl - pos);
        pos = nl + 1;
        if (inLongLine) {
            // The end of a line already reported as too long.
            inLongLine = false;
            continue;
        }
        if (line.endsWith(QLatin1Char('\r'))) line.chop(1);
        ++lineNo;
        onLine(line, line.size() > kMaxLineChars);
    }
    if (stopped) return;
    const QStringView rest = QStringView(text).mid(pos);
    if (inLongLine) {
        text.clear();
        pos = 0;
        return;
    }
    // A line this long (one more character for a CR) is too long whatever follows.
    if (rest.size() > kMaxLineChars + 1) {
        ++lineNo;
        onLine(rest, true);
        inLongLine = true;
        text.clear();
        pos = 0;
        return;
    }
    if (atEnd && !rest.isEmpty()) {
        QStringView line = rest;
        if (line.endsWith(QLatin1Char('\r'))) line.chop(1);
        ++lineNo;
        onLine(line, line.size() > kMaxLineChars);
        text.clear();
        pos = 0;
        return;
    }
    text.remove(0, pos);
    pos = 0;
}

void PunchReader::State::onLine(QStringView line, bool overlong) {
    result.lines = lineNo;
    switch (mode) {
        case Mode::Log:
            logLine(lineNo, line, overlong);
            return;
        case Mode::Csv:
            csvLine(lineNo, line, overlong);
            return;
        case Mode::Undecided:
            if (!overlong && isBlankLine(line)) return;
            early.append({lineNo, overlong ? line.left(kQuotedChars).toString() : line.toString(),
                          overlong});
            decide(false);
            return;
    }
}

void PunchReader::State::decide(bool atEnd) {
    if (early.isEmpty()) return;
    const Line& first = early.first();
    if (!first.overlong && isLogLine(first.text)) {
        mode = Mode::Log;
        result.format = FileFormat::AttendanceLog;
        replay();
        return;
    }
    if (early.size() == 1 && !first.overlong && !hasControl(first.text)) {
        for (QChar sep : {QLatin1Char(','), QLatin1Char(';')}) {
            const auto names = headingFields(first.text, sep);
            if (!names) continue;
            const CsvColumns c = findColumns(*names);
            if (!c.usable()) continue;
            mode = Mode::Csv;
            result.format = FileFormat::Csv;
            separator = sep;
            columns = c;
            record = CsvRecord(sep);
            early.clear();
            return;
        }
    }
    for (int i = 1; i < early.size(); ++i) {
        if (!early[i].overlong && isLogLine(early[i].text)) {
            mode = Mode::Log;
            result.format = FileFormat::AttendanceLog;
            replay();
            return;
        }
    }
    if (!atEnd && early.size() < kEarlyLines) return;
    // A clock's export of a day without punches: its own line and a count of nothing.
    if (atEnd && early.size() == 2 && !first.overlong && !early[1].overlong &&
        isDeviceLine(first.text) && isTotalsLine(early[1].text)) {
        mode = Mode::Log;
        result.format = FileFormat::AttendanceLog;
        replay();
        return;
    }
    // Neither format: say what the first line looked like.
    QStringList names;
    for (QChar sep : {QLatin1Char(','), QLatin1Char(';')}) {
        const auto fields = headingFields(first.text, sep);
        if (fields && fields->size() > names.size()) names = *fields;
    }
    // A heading names every column: two or more names, none blank.
    const bool headingLike =
        names.size() >= 2 &&
        std::none_of(names.cbegin(), names.cend(), [](const QString& n) { return isBlankLine(n); });
    if (!first.overlong && headingLike) {
        const CsvColumns c = findColumns(names);
        QStringList missing;
        if (c.code < 0) missing << QStringLiteral("an employee code");
        if (!c.hasStamp()) missing << QStringLiteral("a date and time (or a date and a time)");
        QStringList shown;
        for (const QString& n : names.mid(0, 8)) shown << n.trimmed();
        if (names.size() > 8) shown << QStringLiteral("...");
        stop(FileStatus::OtherFormat,
             QStringLiteral("This CSV file has no punches: its heading (%1) has no column for %2.")
                 .arg(shown.join(QStringLiteral(", ")), missing.join(QStringLiteral(" or "))));
        return;
    }
    stop(FileStatus::OtherFormat,
         QStringLiteral("This is not a punch file: its first lines are neither time-clock log "
                        "lines (code, TAB, yyyy-mm-dd hh:mm:ss, ...) nor a CSV heading with an "
                        "employee code and a date and time."));
}

void PunchReader::State::replay() {
    const QVector<Line> lines = std::exchange(early, {});
    for (const Line& l : lines) {
        if (mode == Mode::Log)
            logLine(l.number, l.text, l.overlong);
        else
            csvLine(l.number, l.text, l.overlong);
    }
}

void PunchReader::State::logLine(int number, QStringView line, bool overlong) {
    if (!overlong && isBlankLine(line)) return;
    const bool first = !sawFirstLogLine;
    sawFirstLogLine = true;
    if (maybeTotals) {
        // Something follows the count line: it was not the last line after all.
        problem(ProblemKind::NotAPunchLine, maybeTotals->number, maybeTotals->text);
        maybeTotals.reset();
    }
    if (overlong || hasControl(line)) {
        problem(ProblemKind::NotAPunchLine, number, line);
        return;
    }
    const qsizetype t1 = line.indexOf(QLatin1Char('\t'));
    std::optional<std::pair<ProblemKind, QStringView>> fault;
    if (t1 < 0) {
        fault = {ProblemKind::NotAPunchLine, line};
    } else {
        const qsizetype t2 = line.indexOf(QLatin1Char('\t'), t1 + 1);
        const qsizetype t3 = t2 < 0 ? -1 : line.indexOf(QLatin1Char('\t'), t2 + 1);
        const qsizetype t4 = t3 < 0 ? -1 : line.indexOf(QLatin1Char('\t'), t3 + 1);
        const QStringView code = line.left(t1).trimmed();
        const QStringView stampText = line.mid(t1 + 1, t2 < 0 ? -1 : t2 - t1 - 1).trimmed();
        const Stamp stamp = logStamp(stampText);
        if (code.isEmpty()) {
            fault = {ProblemKind::EmptyCode, line};
        } else if (stamp.check != Check::Ok) {
            fault = {problemOf(stamp.check), stampText};
        } else {
            const QStringView deviceText =
                t2 < 0 ? QStringView() : line.mid(t2 + 1, t3 < 0 ? -1 : t3 - t2 - 1).trimmed();
            const QStringView state =
                t3 < 0 ? QStringView() : line.mid(t3 + 1, t4 < 0 ? -1 : t4 - t3 - 1).trimmed();
            Punch p;
            p.code = intern(codes, code);
            p.at = stamp.at;
            p.device = device(deviceText);
            p.line = number;
            p.direction = logDirection(state);
            result.punches.append(std::move(p));
            return;
        }
    }
    if (first && isDeviceLine(line)) {
        result.deviceLine = line.toString();
        return;
    }
    if (isTotalsLine(line)) {
        maybeTotals = Line{number, line.toString(), false};
        return;
    }
    problem(fault->first, number, fault->second);
}

void PunchReader::State::csvLine(int number, QStringView line, bool overlong) {
    if (recordLines.isEmpty() && !overlong && isBlankLine(line)) return;
    if (overlong || hasControl(line)) {
        if (!recordLines.isEmpty()) abandonRecord();
        problem(ProblemKind::NotAPunchLine, number, line);
        return;
    }
    recordLines.append({number, line.toString(), false});
    switch (record.addLine(line)) {
        case CsvRecord::Step::NeedsMoreLines:
            if (recordLines.size() >= kMaxCsvRecordLines) abandonRecord();
            return;
        case CsvRecord::Step::Malformed:
            problem(ProblemKind::NotAPunchLine, recordLines.first().number,
                    recordLines.first().text);
            recordLines.clear();
            return;
        case CsvRecord::Step::Complete: {
            const Line start = recordLines.first();
            recordLines.clear();
            csvRecord(start.number, record.fields(), start.text);
            return;
        }
    }
}

void PunchReader::State::abandonRecord() {
    // The quote on the record's first line is never closed: that line is reported and the
    // lines after it are read again, each as the start of a record.
    const QVector<Line> lines = std::exchange(recordLines, {});
    record.clear();
    problem(ProblemKind::NotAPunchLine, lines.first().number, lines.first().text);
    for (int i = 1; i < lines.size(); ++i) csvLine(lines[i].number, lines[i].text, false);
}

void PunchReader::State::csvRecord(int number, const QStringList& fields, QStringView firstLine) {
    bool allBlank = true;
    for (const QString& f : fields)
        if (!isBlankLine(f)) allBlank = false;
    if (allBlank) return;  // a spreadsheet's empty row
    if (fields.size() < columns.needed()) {
        problem(ProblemKind::NotAPunchLine, number, firstLine);
        return;
    }
    const QStringView code = QStringView(fields[columns.code]).trimmed();
    if (code.isEmpty()) {
        problem(ProblemKind::EmptyCode, number, firstLine);
        return;
    }
    Stamp stamp;
    QString stampText;
    if (columns.dateTime >= 0) {
        stampText = fields[columns.dateTime].trimmed();
        stamp = csvStamp(stampText);
    } else {
        stampText =
            fields[columns.date].trimmed() + QLatin1Char(' ') + fields[columns.time].trimmed();
        stamp = csvStamp(fields[columns.date], fields[columns.time]);
    }
    if (stamp.check != Check::Ok) {
        problem(problemOf(stamp.check), number, stampText);
        return;
    }
    Direction direction = Direction::None;
    if (columns.direction >= 0 && columns.direction < fields.size()) {
        const auto d = csvDirection(fields[columns.direction]);
        if (!d) {
            problem(ProblemKind::UnreadableDirection, number, fields[columns.direction].trimmed());
            return;
        }
        direction = *d;
    }
    Punch p;
    p.code = intern(codes, code);
    p.at = stamp.at;
    if (columns.device >= 0 && columns.device < fields.size())
        p.device = device(QStringView(fields[columns.device]).trimmed());
    p.line = number;
    p.direction = direction;
    result.punches.append(std::move(p));
}

ReadResult PunchReader::State::finish() {
    if (!stopped) {
        if (!encodingKnown) decideEncoding();
        if (!stopped && !carry.isEmpty()) text += decoder.decode(std::exchange(carry, {}));
        if (!stopped && !windowChecked) checkWindow();
        if (!stopped) cutLines(true);
        if (!stopped && mode == Mode::Undecided) decide(true);
        // Each round reports a record's first line and reads its other lines again.
        while (!stopped && mode == Mode::Csv && !recordLines.isEmpty()) abandonRecord();
        if (!stopped && maybeTotals) {
            result.totalsLine = maybeTotals->text;
            maybeTotals.reset();
        }
    }
    if (!stopped) {
        if (mode == Mode::Undecided) {
            result.status = FileStatus::Empty;
            result.message = bytes == 0 || lineNo == 0
                                 ? QStringLiteral("The file is empty.")
                                 : QStringLiteral("The file holds only blank lines.");
        } else {
            result.status = FileStatus::Read;
            const qsizetype n = result.punches.size();
            result.message =
                n == 0 ? QStringLiteral("The %1 holds no punches.").arg(formatName(result.format))
                       : QStringLiteral("%1 read from the %2.")
                             .arg(plural(n, "punch", "punches"), formatName(result.format));
            const int bad = result.problems.total();
            if (bad > 0)
                result.message +=
                    QStringLiteral(" %1 not read.").arg(plural(bad, "line was", "lines were"));
        }
    }
    stopped = true;
    finished = true;
    return std::move(result);
}

PunchReader::PunchReader() : d(std::make_unique<State>()) {}
PunchReader::~PunchReader() = default;

void PunchReader::feed(QByteArrayView bytes) {
    if (!d->finished) d->feed(bytes);
}

bool PunchReader::wantsMore() const {
    return !d->stopped;
}

ReadResult PunchReader::finish() {
    if (d->finished) return {};
    return d->finish();
}

ReadResult readPunchBytes(QByteArrayView bytes) {
    PunchReader reader;
    for (qsizetype at = 0; at < bytes.size(); at += kChunkBytes)
        reader.feed(bytes.sliced(at, std::min(kChunkBytes, bytes.size() - at)));
    return reader.finish();
}

ReadResult readPunchFile(const QString& path) {
    auto refused = [&](FileStatus status, const QString& why) {
        ReadResult r;
        r.status = status;
        r.message = why;
        return r;
    };
    const QFileInfo info(path);
    if (!info.exists())
        return refused(FileStatus::Unreadable,
                       QStringLiteral("The file \"%1\" does not exist.").arg(path));
    if (info.isDir())
        return refused(FileStatus::Unreadable,
                       QStringLiteral("\"%1\" is a folder, not a punch file.").arg(path));
    if (info.size() > kMaxPunchFileBytes)
        return refused(FileStatus::TooLarge,
                       QStringLiteral("The file \"%1\" is %2; punch files of more than %3 are "
                                      "not read (a month of a 5,000-employee company is about "
                                      "40 MB).")
                           .arg(path, sizeText(info.size()), sizeText(kMaxPunchFileBytes)));
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return refused(
            FileStatus::Unreadable,
            QStringLiteral("The file \"%1\" cannot be read: %2.").arg(path, file.errorString()));
    PunchReader reader;
    QByteArray chunk(kChunkBytes, Qt::Uninitialized);
    while (true) {
        const qint64 got = file.read(chunk.data(), chunk.size());
        if (got < 0)
            return refused(FileStatus::Unreadable,
                           QStringLiteral("The file \"%1\" cannot be read: %2.")
                               .arg(path, file.errorString()));
        if (got == 0) break;
        reader.feed(QByteArrayView(chunk.constData(), got));
        if (!reader.wantsMore()) break;
    }
    return reader.finish();
}

}  // namespace qz2::punches
