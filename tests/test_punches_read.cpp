// Reading punch files: the time-clock log and CSV, their encodings and line ends, the
// clock's own first and last lines, and every kind of bad input with what the clerk is told.
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QStringEncoder>
#include <QTemporaryDir>

#include "TestSupport.h"
#include "punches/PunchFile.h"

using namespace qz2::punches;

namespace {

QDateTime at(const char* text) {
    const QString s = QString::fromLatin1(text);
    return QDateTime(QDate::fromString(s.left(10), Qt::ISODate),
                     QTime::fromString(s.mid(11), u"HH:mm:ss"), Qt::UTC);
}

QByteArray encoded(const QString& text, QStringConverter::Encoding encoding) {
    QStringEncoder encoder(encoding, QStringConverter::Flag::WriteBom);
    return encoder.encode(text);
}

QString describe(const Punch& p) {
    const char* dir = p.direction == Direction::In    ? "in"
                      : p.direction == Direction::Out ? "out"
                                                      : "-";
    return QStringLiteral("%1|%2|%3|%4|%5")
        .arg(p.code, p.at.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")), p.device,
             QString::fromLatin1(dir))
        .arg(p.line);
}

QStringList described(const ReadResult& r) {
    QStringList out;
    for (const Punch& p : r.punches) out << describe(p);
    return out;
}

QList<int> problemLines(const ReadResult& r, ProblemKind kind) {
    QList<int> lines;
    for (const Problem& p : r.problems.examples(kind)) lines << p.line;
    return lines;
}

const char* const kLog =
    "   42\t2026-03-02 08:00:00\t1\t0\t1\t0\n"
    "42\t2026-03-02 12:00:00\t1\t1\t1\t0\n"
    "0007\t2026-03-02 12:30:00\t2\t2\t1\t0\n"
    "0007\t2026-03-02 13:00:00\t2\t3\t1\t0\n"
    "  9\t2026-03-02 18:00:00\t3\t4\n"
    "  9\t2026-03-02 21:00:00\t3\t5\n"
    "9\t2026-03-02 21:30:00\t3\t255\t1\t0\n";

const QStringList kLogPunches = {
    "42|2026-03-02 08:00:00|1|in|1",    "42|2026-03-02 12:00:00|1|out|2",
    "0007|2026-03-02 12:30:00|2|out|3", "0007|2026-03-02 13:00:00|2|in|4",
    "9|2026-03-02 18:00:00|3|in|5",     "9|2026-03-02 21:00:00|3|out|6",
    "9|2026-03-02 21:30:00|3|-|7"};

}  // namespace

// ---- The time-clock log --------------------------------------------------------------------

TEST(PunchLog, ReadsCodeDateTimeDeviceAndDirectionOfEveryState) {
    const ReadResult r = readPunchBytes(kLog);
    EXPECT_EQ(r.status, FileStatus::Read);
    EXPECT_EQ(r.format, FileFormat::AttendanceLog);
    EXPECT_EQ(r.encoding, TextEncoding::Utf8);
    EXPECT_EQ(described(r), kLogPunches);
    EXPECT_TRUE(r.problems.isEmpty());
    EXPECT_EQ(r.lines, 7);
    EXPECT_EQ(r.punches.first().at, at("2026-03-02 08:00:00"));
    EXPECT_EQ(r.punches.first().at.toString(Qt::ISODate), "2026-03-02T08:00:00Z");
    EXPECT_EQ(r.message, "7 punches read from the time-clock log.");
}

TEST(PunchLog, MissingDeviceAndStateGiveNoDeviceAndNoDirection) {
    const ReadResult r = readPunchBytes(
        "42\t2026-03-02 08:00:00\n43\t2026-03-02 08:05:00\t4\n"
        "44\t2026-03-02 08:06:00\t4\t\t9\n");
    EXPECT_EQ(described(r),
              (QStringList{"42|2026-03-02 08:00:00||-|1", "43|2026-03-02 08:05:00|4|-|2",
                           "44|2026-03-02 08:06:00|4|-|3"}));
    EXPECT_TRUE(r.problems.isEmpty());
}

TEST(PunchLog, CrLfAndLfLineEndsReadAlike) {
    const QByteArray lf(kLog);
    QByteArray crlf = lf;
    crlf.replace("\n", "\r\n");
    const ReadResult a = readPunchBytes(lf);
    const ReadResult b = readPunchBytes(crlf);
    EXPECT_EQ(described(b), kLogPunches);
    EXPECT_EQ(described(a), described(b));
    EXPECT_TRUE(b.problems.isEmpty());
}

TEST(PunchLog, LastLineWithoutLineEndIsRead) {
    const ReadResult r =
        readPunchBytes("42\t2026-03-02 08:00:00\t1\t0\n42\t2026-03-02 17:00:00\t1\t1");
    ASSERT_EQ(r.punches.size(), 2);
    EXPECT_EQ(r.punches[1].direction, Direction::Out);
    EXPECT_EQ(r.lines, 2);
}

TEST(PunchLog, EachEncodingWithItsByteOrderMarkReadsAlike) {
    const QString text = QString::fromLatin1(kLog);
    struct Case {
        QByteArray bytes;
        TextEncoding encoding;
    };
    const QList<Case> cases = {
        {QByteArray("\xEF\xBB\xBF") + text.toUtf8(), TextEncoding::Utf8WithBom},
        {encoded(text, QStringConverter::Utf16LE), TextEncoding::Utf16LE},
        {encoded(text, QStringConverter::Utf16BE), TextEncoding::Utf16BE},
        {encoded(QString(text).replace("\n", "\r\n"), QStringConverter::Utf16LE),
         TextEncoding::Utf16LE},
    };
    for (const Case& c : cases) {
        const ReadResult r = readPunchBytes(c.bytes);
        EXPECT_EQ(r.status, FileStatus::Read);
        EXPECT_EQ(r.encoding, c.encoding);
        EXPECT_EQ(described(r), kLogPunches);
        EXPECT_TRUE(r.problems.isEmpty());
    }
}

TEST(PunchLog, Utf8TextAfterTheMarkIsDecoded) {
    const QByteArray bytes =
        QByteArray("\xEF\xBB\xBF") +
        QStringLiteral("Porte d'entrée SN 12\n42\t2026-03-02 08:00:00\tGrille é\t0\n").toUtf8();
    const ReadResult r = readPunchBytes(bytes);
    EXPECT_EQ(r.deviceLine, QStringLiteral("Porte d'entrée SN 12"));
    ASSERT_EQ(r.punches.size(), 1);
    EXPECT_EQ(r.punches[0].device, QStringLiteral("Grille é"));
}

TEST(PunchLog, DeviceFirstLineIsSkipped) {
    const ReadResult r = readPunchBytes("Main gate\tSN 0841273\n42\t2026-03-02 08:00:00\t1\t0\n");
    EXPECT_EQ(r.status, FileStatus::Read);
    EXPECT_EQ(r.deviceLine, "Main gate\tSN 0841273");
    EXPECT_EQ(described(r), QStringList{"42|2026-03-02 08:00:00|1|in|2"});
    EXPECT_TRUE(r.problems.isEmpty());
}

TEST(PunchLog, DeviceLineAfterBlankLinesIsSkipped) {
    const ReadResult r = readPunchBytes("\n  \nSN0841273\n42\t2026-03-02 08:00:00\t1\t0\n");
    EXPECT_EQ(r.deviceLine, "SN0841273");
    EXPECT_EQ(r.punches.size(), 1);
    EXPECT_TRUE(r.problems.isEmpty());
}

TEST(PunchLog, FirstLineWithADateIsReportedNotSkipped) {
    const ReadResult r =
        readPunchBytes("Exported 2026-03-31 from gate 1\n42\t2026-03-02 08:00:00\t1\t0\n");
    EXPECT_TRUE(r.deviceLine.isEmpty());
    EXPECT_EQ(r.punches.size(), 1);
    EXPECT_EQ(problemLines(r, ProblemKind::NotAPunchLine), QList<int>{1});
}

TEST(PunchLog, FirstLineOfADamagedPunchIsReportedNotSkipped) {
    // A number, a TAB and no date: a punch whose date was lost, not a clock's name.
    const ReadResult r = readPunchBytes("42\t\t1\t0\n42\t2026-03-02 08:00:00\t1\t0\n");
    EXPECT_TRUE(r.deviceLine.isEmpty());
    EXPECT_EQ(problemLines(r, ProblemKind::UnreadableDateTime), QList<int>{1});
}

TEST(PunchLog, OnlyTheFirstLineCanBeTheDeviceLine) {
    const ReadResult r = readPunchBytes(
        "Gate 1\n42\t2026-03-02 08:00:00\t1\t0\nGate 2\n"
        "42\t2026-03-02 12:00:00\t1\t1\n");
    EXPECT_EQ(r.deviceLine, "Gate 1");
    EXPECT_EQ(r.punches.size(), 2);
    EXPECT_EQ(problemLines(r, ProblemKind::NotAPunchLine), QList<int>{3});
}

TEST(PunchLog, TotalsLastLineIsSkipped) {
    for (const char* totals :
         {"Total: 2", "TOTAL=2", "records 2", "Punches:2", "2", "  2  ", "count: 2\r\n\r\n  \n"}) {
        const QByteArray bytes =
            QByteArray("42\t2026-03-02 08:00:00\t1\t0\n42\t2026-03-02 12:00:00\t1\t1\n") + totals;
        const ReadResult r = readPunchBytes(bytes);
        EXPECT_EQ(r.punches.size(), 2) << totals;
        EXPECT_TRUE(r.problems.isEmpty()) << totals;
        EXPECT_EQ(r.totalsLine.trimmed(), QString::fromLatin1(totals).trimmed()) << totals;
    }
}

TEST(PunchLog, CountLineThatIsNotLastIsReported) {
    const ReadResult r = readPunchBytes(
        "42\t2026-03-02 08:00:00\t1\t0\nTotal: 1\n"
        "42\t2026-03-02 12:00:00\t1\t1\n");
    EXPECT_EQ(r.punches.size(), 2);
    EXPECT_TRUE(r.totalsLine.isEmpty());
    EXPECT_EQ(problemLines(r, ProblemKind::NotAPunchLine), QList<int>{2});
}

TEST(PunchLog, LastLineThatIsNotACountIsReported) {
    const ReadResult r = readPunchBytes("42\t2026-03-02 08:00:00\t1\t0\nTotal: some\n");
    EXPECT_TRUE(r.totalsLine.isEmpty());
    EXPECT_EQ(problemLines(r, ProblemKind::NotAPunchLine), QList<int>{2});
}

TEST(PunchLog, DeviceAndTotalsLinesAloneAreALogWithoutPunches) {
    const ReadResult r = readPunchBytes("Main gate SN 0841273\r\nTotal: 0\r\n");
    EXPECT_EQ(r.status, FileStatus::Read);
    EXPECT_EQ(r.format, FileFormat::AttendanceLog);
    EXPECT_TRUE(r.punches.isEmpty());
    EXPECT_TRUE(r.problems.isEmpty());
    EXPECT_EQ(r.message, "The time-clock log holds no punches.");
}

TEST(PunchLog, RecognisedWhenTheFirstPunchLinesAreDamaged) {
    const ReadResult r = readPunchBytes(
        "Gate 1\nbroken line\n42 2026-03-02 08:00:00\n"
        "42\t2026-03-02 08:00:00\t1\t0\n");
    EXPECT_EQ(r.format, FileFormat::AttendanceLog);
    EXPECT_EQ(r.deviceLine, "Gate 1");
    EXPECT_EQ(r.punches.size(), 1);
    EXPECT_EQ(problemLines(r, ProblemKind::NotAPunchLine), (QList<int>{2, 3}));
}

TEST(PunchLog, NotRecognisedWithoutAPunchLineInTheFirstTenLines) {
    QByteArray bytes = "Gate 1\n";
    for (int i = 0; i < 9; ++i) bytes += "broken line\n";
    bytes += "42\t2026-03-02 08:00:00\t1\t0\n";
    EXPECT_EQ(readPunchBytes(bytes).status, FileStatus::OtherFormat);
    // One damaged line fewer and the punch line is among the first ten.
    bytes.remove(7, 12);
    const ReadResult r = readPunchBytes(bytes);
    EXPECT_EQ(r.status, FileStatus::Read);
    EXPECT_EQ(r.punches.size(), 1);
    EXPECT_EQ(r.problems.count(ProblemKind::NotAPunchLine), 8);
}

TEST(PunchLog, ImpossibleDatesAndTimesAreReportedWithTheirLines) {
    const ReadResult r = readPunchBytes(
        "42\t2026-02-30 08:00:00\t1\t0\n"
        "42\t2026-03-02 25:10:00\t1\t0\n"
        "42\t2026-03-02 08:60:00\t1\t0\n"
        "42\t2026-13-01 08:00:00\t1\t0\n"
        "42\t2026-03-02 24:00:00\t1\t0\n"
        "42\t2028-02-29 23:59:59\t1\t0\n");
    EXPECT_EQ(problemLines(r, ProblemKind::ImpossibleDate), (QList<int>{1, 4}));
    EXPECT_EQ(problemLines(r, ProblemKind::ImpossibleTime), (QList<int>{2, 3, 5}));
    EXPECT_EQ(described(r), QStringList{"42|2028-02-29 23:59:59|1|in|6"});
    EXPECT_EQ(describeProblems(r.problems),
              (QStringList{"Line 1: impossible date \"2026-02-30 08:00:00\"",
                           "Line 4: impossible date \"2026-13-01 08:00:00\"",
                           "Line 2: impossible time \"2026-03-02 25:10:00\"",
                           "Line 3: impossible time \"2026-03-02 08:60:00\"",
                           "Line 5: impossible time \"2026-03-02 24:00:00\""}));
}

TEST(PunchLog, EmptyCodeAndUnreadableDateTimeAreReported) {
    const ReadResult r = readPunchBytes(
        "42\t2026-03-02 08:00:00\t1\t0\n"
        "   \t2026-03-02 08:00:00\t1\t0\n"
        "42\t2026-3-2 8:00\t1\t0\n"
        "42\t02/03/2026 08:00:00\t1\t0\n");
    EXPECT_EQ(r.punches.size(), 1);
    EXPECT_EQ(problemLines(r, ProblemKind::EmptyCode), QList<int>{2});
    EXPECT_EQ(problemLines(r, ProblemKind::UnreadableDateTime), (QList<int>{3, 4}));
    EXPECT_EQ(r.problems.examples(ProblemKind::UnreadableDateTime).first().quoted, "2026-3-2 8:00");
    EXPECT_EQ(r.message, "1 punch read from the time-clock log. 3 lines were not read.");
}

TEST(PunchLog, LinesWithoutTabsOrWithControlCharactersAreNotPunchLines) {
    const ReadResult r = readPunchBytes(
        "42\t2026-03-02 08:00:00\t1\t0\n"
        "42 2026-03-02 09:00:00 1 0\n"
        "42\t2026-03-02 10:00:00\t1\x01\t0\n"
        "42\t2026-03-02 11:00:00\t1\t0\n");
    EXPECT_EQ(r.punches.size(), 2);
    EXPECT_EQ(problemLines(r, ProblemKind::NotAPunchLine), (QList<int>{2, 3}));
    // Shown with blanks for TABs and "?" for other control characters.
    EXPECT_EQ(r.problems.examples(ProblemKind::NotAPunchLine)[1].quoted,
              "42 2026-03-02 10:00:00 1? 0");
}

TEST(PunchLog, BlankLinesAndAnEndOfFileMarkAreSkipped) {
    const ReadResult r = readPunchBytes(
        "\n42\t2026-03-02 08:00:00\t1\t0\n\n \t \n"
        "42\t2026-03-02 12:00:00\t1\t1\n\x1A");
    EXPECT_EQ(r.punches.size(), 2);
    EXPECT_EQ(r.punches[1].line, 5);
    EXPECT_TRUE(r.problems.isEmpty());
}

TEST(PunchLog, OverlongLineIsReportedAndTheNextLinesAreRead) {
    QByteArray bytes = "42\t2026-03-02 08:00:00\t1\t0\n";
    bytes += QByteArray(kMaxLineChars + 1, 'x') + "\n";
    bytes += "42\t2026-03-02 12:00:00\t1\t1\n";
    const ReadResult r = readPunchBytes(bytes);
    EXPECT_EQ(r.punches.size(), 2);
    EXPECT_EQ(r.punches[1].line, 3);
    EXPECT_EQ(problemLines(r, ProblemKind::NotAPunchLine), QList<int>{2});
    EXPECT_EQ(r.problems.examples(ProblemKind::NotAPunchLine)[0].quoted, QString(40, 'x') + "...");
    // A line of exactly the limit is an ordinary (bad) line of its own, not a long one.
    bytes = "42\t2026-03-02 08:00:00\t1\t0\n" + QByteArray(kMaxLineChars, 'x') + "\r\n";
    EXPECT_EQ(readPunchBytes(bytes).problems.count(ProblemKind::NotAPunchLine), 1);
}

TEST(PunchLog, ALineOfTheLimitIsReadWhereverItsLineEndIsCut) {
    // Unused fields fill the punch line up to the limit; its CR and LF arrive apart.
    QByteArray line = "42\t2026-03-02 08:00:00\t1\t0\t";
    line += QByteArray(kMaxLineChars - line.size(), '7');
    ASSERT_EQ(line.size(), kMaxLineChars);
    // Lines are cut only after the first 64 KiB are known to be text: this many come first.
    QByteArray before;
    while (before.size() < 70000) before += "43\t2026-03-02 07:00:00\t1\t0\n";
    const int beforeLines = before.count('\n');
    for (const QByteArray& text : {line, line + '7'}) {
        PunchReader reader;
        reader.feed(before);
        reader.feed(text + '\r');
        reader.feed("\n42\t2026-03-02 12:00:00\t1\t1\n");
        const ReadResult r = reader.finish();
        const bool fits = text.size() == kMaxLineChars;
        EXPECT_EQ(r.punches.size(), beforeLines + (fits ? 2 : 1));
        EXPECT_EQ(r.problems.count(ProblemKind::NotAPunchLine), fits ? 0 : 1);
    }
}

TEST(PunchLog, ATextWithoutLineEndsIsOneBadLine) {
    const QByteArray bytes =
        QByteArray("42\t2026-03-02 08:00:00\t1\t0\n") + QByteArray(3 * 1024 * 1024, 'y');
    const ReadResult r = readPunchBytes(bytes);
    EXPECT_EQ(r.status, FileStatus::Read);
    EXPECT_EQ(r.punches.size(), 1);
    EXPECT_EQ(r.problems.count(ProblemKind::NotAPunchLine), 1);
    EXPECT_EQ(r.lines, 2);
}

TEST(PunchLog, FirstTenProblemsOfEachKindAreKeptAndTheRestCounted) {
    QByteArray bytes;
    for (int i = 1; i <= 16; ++i) bytes += "42\t2026-03-02 08:00:00\t1\t0\n";
    for (int i = 0; i < 1244; ++i) bytes += "42\t2026-02-30 08:00:00\t1\t0\n";
    bytes += "42\t2026-03-02 31:00:00\t1\t0\n";
    const ReadResult r = readPunchBytes(bytes);
    EXPECT_EQ(r.problems.count(ProblemKind::ImpossibleDate), 1244);
    EXPECT_EQ(r.problems.count(ProblemKind::ImpossibleTime), 1);
    EXPECT_EQ(r.problems.total(), 1245);
    ASSERT_EQ(r.problems.examples(ProblemKind::ImpossibleDate).size(), 10);
    EXPECT_EQ(r.problems.examples(ProblemKind::ImpossibleDate).last().line, 26);
    const QStringList lines = describeProblems(r.problems);
    ASSERT_EQ(lines.size(), 12);
    EXPECT_EQ(lines[0], "Line 17: impossible date \"2026-02-30 08:00:00\"");
    EXPECT_EQ(lines[9], "Line 26: impossible date \"2026-02-30 08:00:00\"");
    EXPECT_EQ(lines[10], "and 1,234 more lines like it");
    EXPECT_EQ(lines[11], "Line 1,261: impossible time \"2026-03-02 31:00:00\"");
    EXPECT_EQ(r.message, "16 punches read from the time-clock log. 1,245 lines were not read.");
}

TEST(PunchLog, OneMoreLineIsSaidInTheSingular) {
    QByteArray bytes = "42\t2026-03-02 08:00:00\t1\t0\n";
    for (int i = 0; i < 11; ++i) bytes += "\t2026-03-02 08:00:00\t1\t0\n";
    const QStringList lines = describeProblems(readPunchBytes(bytes).problems);
    ASSERT_EQ(lines.size(), 11);
    EXPECT_EQ(lines.last(), "and 1 more line like it");
}

// ---- CSV ---------------------------------------------------------------------------------

TEST(PunchCsv, CommaHeadingWithADateTimeColumn) {
    const ReadResult r = readPunchBytes(
        "Name,Employee Code,Punch Time,In/Out,Device\r\n"
        "\"Ann, B\",0042,2026-03-02 08:00:00,IN,Gate 1\r\n"
        "\"Ann, B\",0042,2026-03-02 17:30,out,Gate 1\r\n"
        "Carl,7,2026-03-02T09:15:00,,\r\n");
    EXPECT_EQ(r.status, FileStatus::Read);
    EXPECT_EQ(r.format, FileFormat::Csv);
    EXPECT_EQ(described(r),
              (QStringList{"0042|2026-03-02 08:00:00|Gate 1|in|2",
                           "0042|2026-03-02 17:30:00|Gate 1|out|3", "7|2026-03-02 09:15:00||-|4"}));
    EXPECT_TRUE(r.problems.isEmpty());
    EXPECT_EQ(r.message, "3 punches read from the CSV file.");
}

TEST(PunchCsv, SemicolonHeadingWithDateAndTimeColumns) {
    const ReadResult r = readPunchBytes(
        "EmpNo;Date;Time;Direction\n"
        "42;02/03/2026;8:05;I\n"
        "42;2/3/2026;17:00:30;O\n"
        "42;2026-03-03;08:00;0\n"
        "42;2026-3-3;17:00;1\n");
    EXPECT_EQ(r.format, FileFormat::Csv);
    EXPECT_EQ(described(r),
              (QStringList{"42|2026-03-02 08:05:00||in|2", "42|2026-03-02 17:00:30||out|3",
                           "42|2026-03-03 08:00:00||in|4", "42|2026-03-03 17:00:00||out|5"}));
    EXPECT_TRUE(r.problems.isEmpty());
}

TEST(PunchCsv, ColumnNamesIgnoreCaseBlanksAndPunctuation) {
    const QList<QByteArray> files = {
        "EMP. NO,DATE TIME\n42,2026-03-02 08:00\n",
        "user_id,timestamp\n42,2026-03-02 08:00\n",
        "  Badge No , Date and Time \n42,2026-03-02 08:00\n",
        "employee-number,PunchDateTime\n42,2026-03-02 08:00\n",
        "Card #No,datetime\n42,2026-03-02 08:00\n",
        "\"Code\",\"Date\",\"Time\"\n42,2026-03-02,08:00\n",
        "Punch Date;USER CODE;time\n2026-03-02;42;08:00\n",
    };
    for (const QByteArray& bytes : files) {
        const ReadResult r = readPunchBytes(bytes);
        EXPECT_EQ(r.format, FileFormat::Csv) << bytes.constData();
        ASSERT_EQ(r.punches.size(), 1) << bytes.constData();
        EXPECT_EQ(r.punches[0].code, "42");
        EXPECT_EQ(r.punches[0].at, at("2026-03-02 08:00:00")) << bytes.constData();
    }
}

TEST(PunchCsv, DateTimeColumnWinsOverDateAndTimeColumns) {
    const ReadResult r =
        readPunchBytes("code,date,time,datetime\n42,2026-01-01,01:00,2026-03-02 08:00\n");
    ASSERT_EQ(r.punches.size(), 1);
    EXPECT_EQ(r.punches[0].at, at("2026-03-02 08:00:00"));
}

TEST(PunchCsv, DirectionValuesIgnoreCase) {
    const ReadResult r = readPunchBytes(
        "code,datetime,inout\n"
        "1,2026-03-02 08:00,in\n1,2026-03-02 08:10,In\n"
        "1,2026-03-02 08:20,i\n1,2026-03-02 08:30,0\n"
        "1,2026-03-02 08:40,OUT\n1,2026-03-02 08:50,o\n"
        "1,2026-03-02 09:00,1\n1,2026-03-02 09:10, \n"
        "1,2026-03-02 09:20\n");
    QList<Direction> dirs;
    for (const Punch& p : r.punches) dirs << p.direction;
    EXPECT_EQ(dirs, (QList<Direction>{Direction::In, Direction::In, Direction::In, Direction::In,
                                      Direction::Out, Direction::Out, Direction::Out,
                                      Direction::None, Direction::None}));
    EXPECT_TRUE(r.problems.isEmpty());
}

TEST(PunchCsv, UnknownDirectionIsReportedAndTheLineNotRead) {
    const ReadResult r = readPunchBytes(
        "code,datetime,direction\n1,2026-03-02 08:00,X\n"
        "1,2026-03-02 09:00,2\n1,2026-03-02 10:00,in\n");
    EXPECT_EQ(r.punches.size(), 1);
    EXPECT_EQ(problemLines(r, ProblemKind::UnreadableDirection), (QList<int>{2, 3}));
    EXPECT_EQ(describeProblems(r.problems).first(), "Line 2: direction not understood: \"X\"");
}

TEST(PunchCsv, QuotedFieldsFollowRfc4180) {
    const ReadResult r = readPunchBytes(
        "code,datetime,device\n"
        "\"42\",\"2026-03-02 08:00\",\"Gate \"\"A\"\", north\"\n"
        " \"43\" , 2026-03-02 08:01 ,\"\"\n");
    EXPECT_EQ(described(r), (QStringList{"42|2026-03-02 08:00:00|Gate \"A\", north|-|2",
                                         "43|2026-03-02 08:01:00||-|3"}));
    EXPECT_TRUE(r.problems.isEmpty());
}

TEST(PunchCsv, AQuotedFieldOverTwoLinesIsOneRecordAtItsFirstLine) {
    const ReadResult r = readPunchBytes(
        "code,datetime,remarks\r\n"
        "42,2026-03-02 08:00,\"late:\r\n\r\nbus\"\r\n"
        "42,2026-03-02 17:00,\r\n");
    EXPECT_EQ(described(r),
              (QStringList{"42|2026-03-02 08:00:00||-|2", "42|2026-03-02 17:00:00||-|5"}));
    EXPECT_TRUE(r.problems.isEmpty());
    EXPECT_EQ(r.lines, 5);
}

TEST(PunchCsv, AQuoteNeverClosedIsReportedAndTheLinesAfterItAreRead) {
    QByteArray bytes = "code,datetime\n42,\"2026-03-02 08:00\n";
    for (int i = 0; i < 30; ++i) bytes += "42,2026-03-02 09:" + QByteArray::number(10 + i) + "\n";
    const ReadResult r = readPunchBytes(bytes);
    EXPECT_EQ(r.punches.size(), 30);
    EXPECT_EQ(r.punches.first().line, 3);
    EXPECT_EQ(problemLines(r, ProblemKind::NotAPunchLine), QList<int>{2});
    // A quote further down does not close it: the lines between are punches.
    bytes += "bad\" line\n";
    const ReadResult closed = readPunchBytes(bytes);
    EXPECT_EQ(closed.punches.size(), 30);
    EXPECT_EQ(problemLines(closed, ProblemKind::NotAPunchLine), (QList<int>{2, 33}));
    // The same at the file's end, before the limit of lines is reached.
    const ReadResult tail = readPunchBytes(
        "code,datetime\n42,2026-03-02 07:00\n42,\"2026-03-02 08:00\n"
        "42,2026-03-02 09:00\n");
    EXPECT_EQ(tail.punches.size(), 2);
    EXPECT_EQ(tail.punches[1].line, 4);
    EXPECT_EQ(problemLines(tail, ProblemKind::NotAPunchLine), QList<int>{3});
}

TEST(PunchCsv, TextAfterAClosingQuoteAndShortRecordsAreNotPunchLines) {
    const ReadResult r = readPunchBytes(
        "code,name,datetime\n\"42\"x,a,2026-03-02 08:00\n"
        "42,a\n42,a,2026-03-02 08:00\n");
    EXPECT_EQ(r.punches.size(), 1);
    EXPECT_EQ(problemLines(r, ProblemKind::NotAPunchLine), (QList<int>{2, 3}));
}

TEST(PunchCsv, BadValuesAreReportedByKind) {
    const ReadResult r = readPunchBytes(
        "code,date,time\n"
        " ,2026-03-02,08:00\n"
        "42,30/02/2026,08:00\n"
        "42,2026-03-02,25:10\n"
        "42,2026/03/02,08:00\n"
        "42,2026-03-02,8h00\n"
        "42,2026-03-02,08:00\n");
    EXPECT_EQ(r.punches.size(), 1);
    EXPECT_EQ(problemLines(r, ProblemKind::EmptyCode), QList<int>{2});
    EXPECT_EQ(problemLines(r, ProblemKind::ImpossibleDate), QList<int>{3});
    EXPECT_EQ(problemLines(r, ProblemKind::ImpossibleTime), QList<int>{4});
    EXPECT_EQ(problemLines(r, ProblemKind::UnreadableDateTime), (QList<int>{5, 6}));
    EXPECT_EQ(describeProblems(r.problems)[4], "Line 4: impossible time \"2026-03-02 25:10\"");
}

TEST(PunchCsv, EmptySpreadsheetRowsAreSkipped) {
    const ReadResult r = readPunchBytes("code,datetime,device\n,,\n42,2026-03-02 08:00,1\n ; \n");
    EXPECT_EQ(r.punches.size(), 1);
    EXPECT_EQ(problemLines(r, ProblemKind::NotAPunchLine), QList<int>{4});
}

TEST(PunchCsv, AHeadingAloneIsAFileWithoutPunches) {
    const ReadResult r = readPunchBytes("code,datetime\r\n");
    EXPECT_EQ(r.status, FileStatus::Read);
    EXPECT_EQ(r.format, FileFormat::Csv);
    EXPECT_TRUE(r.punches.isEmpty());
    EXPECT_EQ(r.message, "The CSV file holds no punches.");
}

TEST(PunchCsv, Utf16WithCrLfReadsAsUtf8) {
    const QString text = QStringLiteral(
        "Code;Punch Time;State\r\n42;02/03/2026 08:00;IN\r\n"
        "42;02/03/2026 17:00;OUT\r\n");
    const ReadResult utf8 = readPunchBytes(text.toUtf8());
    for (auto encoding : {QStringConverter::Utf16LE, QStringConverter::Utf16BE}) {
        const ReadResult r = readPunchBytes(encoded(text, encoding));
        EXPECT_EQ(r.format, FileFormat::Csv);
        EXPECT_EQ(described(r), described(utf8));
        EXPECT_EQ(r.punches.size(), 2);
    }
}

// ---- Files that are no punch files -----------------------------------------------------------

TEST(PunchFileKind, EmptyFilesAreEmpty) {
    EXPECT_EQ(readPunchBytes("").status, FileStatus::Empty);
    EXPECT_EQ(readPunchBytes("").message, "The file is empty.");
    EXPECT_EQ(readPunchBytes("\xEF\xBB\xBF").status, FileStatus::Empty);
    const ReadResult blank = readPunchBytes("\r\n  \n\t\n");
    EXPECT_EQ(blank.status, FileStatus::Empty);
    EXPECT_EQ(blank.message, "The file holds only blank lines.");
}

TEST(PunchFileKind, NulBytesMakeABinaryFile) {
    QByteArray bytes = "42\t2026-03-02 08:00:00\t1\t0\n";
    bytes += QByteArray(3, '\0');
    const ReadResult r = readPunchBytes(bytes);
    EXPECT_EQ(r.status, FileStatus::Binary);
    EXPECT_TRUE(r.punches.isEmpty());
    EXPECT_TRUE(r.message.contains("not text"));
}

TEST(PunchFileKind, ControlCharactersMakeABinaryFileAboveOneInTwenty) {
    // 100 characters of which 5 are control characters: still text; 6: binary.
    QByteArray text = "42\t2026-03-02 08:00:00\t1\t0\n";
    text += QByteArray(100 - text.size() - 5, 'a') + "\x02\x03\x04\x05\x06";
    ASSERT_EQ(text.size(), 100);
    EXPECT_NE(readPunchBytes(text).status, FileStatus::Binary);
    text[50] = '\x07';
    EXPECT_EQ(readPunchBytes(text).status, FileStatus::Binary);
}

TEST(PunchFileKind, UndecodableBytesMakeABinaryFile) {
    QByteArray bytes;
    for (int i = 0; i < 4000; ++i) bytes += char(0x80 + i % 0x40);  // continuation bytes alone
    EXPECT_EQ(readPunchBytes(bytes).status, FileStatus::Binary);
}

TEST(PunchFileKind, APdfIsAnotherFormat) {
    const ReadResult r =
        readPunchBytes("%PDF-1.7\n%\xE2\xE3\xCF\xD3\n1 0 obj\n<< /Type /Catalog >>\n");
    EXPECT_EQ(r.status, FileStatus::OtherFormat);
    EXPECT_TRUE(r.message.startsWith("This is a PDF document")) << r.message.toStdString();
}

TEST(PunchFileKind, ASpreadsheetIsAnotherFormat) {
    const ReadResult r =
        readPunchBytes(QByteArray("PK\x03\x04\x14\x00\x06\x00", 8) + "xl/workbook.xml");
    EXPECT_EQ(r.status, FileStatus::OtherFormat);
    EXPECT_TRUE(r.message.contains("Save the sheet as CSV"));
}

TEST(PunchFileKind, AnUnrelatedCsvSaysWhichColumnsItLacks) {
    const ReadResult r = readPunchBytes("Name,Amount,Date\nAnn,12.50,2026-03-02\n");
    EXPECT_EQ(r.status, FileStatus::OtherFormat);
    EXPECT_EQ(r.message,
              "This CSV file has no punches: its heading (Name, Amount, Date) has no "
              "column for an employee code or a date and time (or a date and a time).");
    const ReadResult codeOnly = readPunchBytes("Code;Name\n42;Ann\n");
    EXPECT_EQ(codeOnly.status, FileStatus::OtherFormat);
    EXPECT_TRUE(codeOnly.message.endsWith("no column for a date and time (or a date and a time)."));
}

TEST(PunchFileKind, PlainTextIsAnotherFormat) {
    const ReadResult r = readPunchBytes("Dear clerk,\nplease find the punches attached.\n");
    EXPECT_EQ(r.status, FileStatus::OtherFormat);
    EXPECT_TRUE(r.message.startsWith("This is not a punch file"));
    EXPECT_TRUE(r.punches.isEmpty());
    EXPECT_TRUE(r.problems.isEmpty());
}

// ---- Files on disk ---------------------------------------------------------------------------

TEST(PunchFileOnDisk, ReadsAFile) {
    QTemporaryDir dir;
    const QString path = dir.filePath("punches.txt");
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write(kLog);
    f.close();
    const ReadResult r = readPunchFile(path);
    EXPECT_EQ(r.status, FileStatus::Read);
    EXPECT_EQ(described(r), kLogPunches);
}

TEST(PunchFileOnDisk, AMissingFileAndAFolderAreUnreadable) {
    QTemporaryDir dir;
    const ReadResult missing = readPunchFile(dir.filePath("nothing.txt"));
    EXPECT_EQ(missing.status, FileStatus::Unreadable);
    EXPECT_TRUE(missing.message.contains("does not exist"));
    const ReadResult folder = readPunchFile(dir.path());
    EXPECT_EQ(folder.status, FileStatus::Unreadable);
    EXPECT_TRUE(folder.message.contains("is a folder"));
}

TEST(PunchFileOnDisk, AFileAboveTheLimitIsRefusedUnread) {
    // Sparse files: their size costs no disk.
    QTemporaryDir dir;
    const QString path = dir.filePath("huge.txt");
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write("42\t2026-03-02 08:00:00\t1\t0\n");
    ASSERT_TRUE(f.resize(qint64(2) * 1024 * 1024 * 1024));
    f.close();
    const ReadResult r = readPunchFile(path);
    EXPECT_EQ(r.status, FileStatus::TooLarge);
    EXPECT_TRUE(r.punches.isEmpty());
    EXPECT_TRUE(r.message.contains("is 2,048 MB; punch files of more than 512 MB are not read"))
        << r.message.toStdString();

    ASSERT_TRUE(QFile::resize(path, kMaxPunchFileBytes + 1));
    EXPECT_EQ(readPunchFile(path).status, FileStatus::TooLarge);
    // At the limit the file is read: its zeros make it binary.
    ASSERT_TRUE(QFile::resize(path, kMaxPunchFileBytes));
    EXPECT_EQ(readPunchFile(path).status, FileStatus::Binary);
}

TEST(PunchFileOnDisk, AFileGivenUpOnKeepsNothingOfWhatWasRead) {
    // A device line, a bad line and punches are read before the stream grows past the
    // limit: the result keeps none of them.
    QByteArray bytes = "Gate 1\n42\t2026-02-30 08:00:00\t1\t0\n";
    while (bytes.size() < 100000) bytes += "42\t2026-03-02 08:00:00\t1\t0\n";
    PunchReader reader;
    reader.feed(bytes);
    const QByteArray spaces(1024 * 1024, ' ');
    while (reader.wantsMore()) reader.feed(spaces);
    const ReadResult r = reader.finish();
    EXPECT_EQ(r.status, FileStatus::TooLarge);
    EXPECT_TRUE(r.punches.isEmpty());
    EXPECT_TRUE(r.problems.isEmpty());
    EXPECT_TRUE(r.deviceLine.isEmpty());
}

TEST(PunchFileOnDisk, BytesFedPastTheLimitAreRefused) {
    // A stream whose size is not known beforehand: one line without end that never stops.
    PunchReader reader;
    const QByteArray chunk(1024 * 1024, ' ');
    for (qint64 fed = 0; fed < kMaxPunchFileBytes && reader.wantsMore(); fed += chunk.size())
        reader.feed(chunk);
    EXPECT_TRUE(reader.wantsMore());
    reader.feed("x");
    EXPECT_FALSE(reader.wantsMore());
    const ReadResult r = reader.finish();
    EXPECT_EQ(r.status, FileStatus::TooLarge);
    EXPECT_TRUE(r.message.contains("larger than 512 MB"));
}

// ---- Streaming ---------------------------------------------------------------------------------

TEST(PunchReaderStream, AnyCutOfTheBytesGivesTheSameResult) {
    const QString log = QStringLiteral("Porte d'entrée\r\n") + QString::fromLatin1(kLog) +
                        QStringLiteral("42\t2026-02-30 08:00:00\t1\t0\r\nTotal: 8\r\n");
    const QString csv = QStringLiteral(
        "code;datetime;device\n42;2026-03-02 08:00;\"Grille\n"
        "é\"\n43;x;1\n");
    for (const QByteArray& bytes : {log.toUtf8(), encoded(log, QStringConverter::Utf16LE),
                                    encoded(log, QStringConverter::Utf16BE), csv.toUtf8(),
                                    encoded(csv, QStringConverter::Utf16LE)}) {
        const ReadResult whole = readPunchBytes(bytes);
        ASSERT_EQ(whole.status, FileStatus::Read);
        for (int step = 1; step <= 9; ++step) {
            PunchReader reader;
            for (qsizetype i = 0; i < bytes.size(); i += step)
                reader.feed(
                    QByteArrayView(bytes).sliced(i, std::min<qsizetype>(step, bytes.size() - i)));
            const ReadResult cut = reader.finish();
            EXPECT_EQ(described(cut), described(whole)) << step;
            EXPECT_EQ(describeProblems(cut.problems), describeProblems(whole.problems)) << step;
            EXPECT_EQ(cut.deviceLine, whole.deviceLine);
            EXPECT_EQ(cut.totalsLine, whole.totalsLine);
            EXPECT_EQ(cut.lines, whole.lines);
        }
    }
}

TEST(PunchReaderStream, ABadByteAtACutReadsAsInOnePiece) {
    // A lead byte whose sequence never comes, followed by digits: cut right after it, the
    // digits must stay what they are in one piece.
    const QByteArray bytes =
        "42\t2026-03\xCB"
        "02 08:00:00\t1\t0\n42\t2026-03-02 12:00:00\t1\t1\n";
    const ReadResult whole = readPunchBytes(bytes);
    ASSERT_EQ(whole.problems.count(ProblemKind::UnreadableDateTime), 1);
    for (qsizetype cut = 1; cut < bytes.size(); ++cut) {
        PunchReader reader;
        reader.feed(QByteArrayView(bytes).first(cut));
        reader.feed(QByteArrayView(bytes).sliced(cut));
        const ReadResult r = reader.finish();
        EXPECT_EQ(describeProblems(r.problems), describeProblems(whole.problems)) << cut;
        EXPECT_EQ(described(r), described(whole)) << cut;
    }
}

TEST(PunchReaderStream, AFinishedReaderIsSpent) {
    PunchReader reader;
    reader.feed(kLog);
    EXPECT_EQ(reader.finish().punches.size(), 7);
    reader.feed(kLog);
    EXPECT_TRUE(reader.finish().punches.isEmpty());
}
