// Random and mutated input for the CSV splitter and the punch reader, from fixed seeds so
// that a failure can be replayed: nothing crashes, records written by the RFC 4180 rules
// come back field for field, and the reader gives one result however the bytes are cut.
#include <gtest/gtest.h>

#include <QStringEncoder>
#include <random>

#include "TestSupport.h"
#include "punches/CsvRecord.h"
#include "punches/PunchFile.h"

using namespace qz2::punches;

namespace {

using Rng = std::mt19937;

int pick(Rng& rng, int lo, int hi) {
    return std::uniform_int_distribution<int>(lo, hi)(rng);
}

QString randomField(Rng& rng) {
    static const QString alphabet = QStringLiteral("ab1 ,;\"\n\t\u00e9");
    QString f;
    const int n = pick(rng, 0, 8);
    for (int i = 0; i < n; ++i) f += alphabet[pick(rng, 0, alphabet.size() - 1)];
    return f;
}

// Writes a record as RFC 4180 says, quoting what must be quoted and, now and then, what
// need not be (with blanks around the quotes, which the splitter allows).
QString written(const QStringList& fields, QChar sep, Rng& rng) {
    QStringList out;
    for (const QString& f : fields) {
        const bool must =
            f.contains(sep) || f.contains(QLatin1Char('"')) || f.contains(QLatin1Char('\n'));
        if (must || pick(rng, 0, 4) == 0) {
            QString q = f;
            q.replace(QLatin1String("\""), QLatin1String("\"\""));
            const QString before = pick(rng, 0, 3) == 0 ? QStringLiteral("  ") : QString();
            const QString after = pick(rng, 0, 3) == 0 ? QStringLiteral(" ") : QString();
            out << before + QLatin1Char('"') + q + QLatin1Char('"') + after;
        } else {
            out << f;
        }
    }
    return out.join(sep);
}

QString fingerprint(const ReadResult& r) {
    QStringList parts;
    parts << QString::number(int(r.status)) << QString::number(int(r.format))
          << QString::number(int(r.encoding)) << r.message << QString::number(r.lines)
          << r.deviceLine << r.totalsLine;
    for (const Punch& p : r.punches)
        parts << QStringLiteral("%1|%2|%3|%4|%5")
                     .arg(p.code, p.at.toString(Qt::ISODate), p.device)
                     .arg(int(p.direction))
                     .arg(p.line);
    parts << describeProblems(r.problems);
    for (int k = 0; k < kProblemKinds; ++k)
        parts << QString::number(r.problems.count(static_cast<ProblemKind>(k)));
    return parts.join(QLatin1Char('\n'));
}

// What every result must satisfy, whatever the input.
void expectSane(const ReadResult& r, const QByteArray& input) {
    const std::string where = input.left(200).toHex().toStdString();
    EXPECT_EQ(r.status == FileStatus::Read, r.format != FileFormat::None) << where;
    EXPECT_FALSE(r.message.isEmpty()) << where;
    if (r.status != FileStatus::Read) {
        EXPECT_TRUE(r.punches.isEmpty()) << where;
        EXPECT_TRUE(r.problems.isEmpty()) << where;
    }
    int previous = 0;
    for (const Punch& p : r.punches) {
        EXPECT_TRUE(p.at.isValid()) << where;
        EXPECT_FALSE(p.code.isEmpty()) << where;
        EXPECT_EQ(p.code, p.code.trimmed()) << where;
        EXPECT_GT(p.line, previous) << where;
        EXPECT_LE(p.line, r.lines) << where;
        previous = p.line;
    }
    int expectedLines = 0;
    for (int k = 0; k < kProblemKinds; ++k) {
        const auto kind = static_cast<ProblemKind>(k);
        const auto& examples = r.problems.examples(kind);
        const int count = r.problems.count(kind);
        EXPECT_EQ(examples.size(), std::min(count, ProblemLog::kExamplesPerKind)) << where;
        int last = 0;
        for (const Problem& p : examples) {
            EXPECT_GE(p.line, 1) << where;
            EXPECT_LE(p.line, r.lines) << where;
            EXPECT_LE(p.quoted.size(), 43) << where;
            // Reported lines of one kind come in file order (a stray quote's line may be
            // reported after the lines it swallowed, but never one of a kind twice).
            EXPECT_NE(p.line, last) << where;
            last = p.line;
        }
        expectedLines += int(examples.size()) + (count > ProblemLog::kExamplesPerKind ? 1 : 0);
    }
    EXPECT_EQ(describeProblems(r.problems).size(), expectedLines) << where;
}

ReadResult readInPieces(const QByteArray& bytes, Rng& rng) {
    PunchReader reader;
    qsizetype at = 0;
    while (at < bytes.size()) {
        const qsizetype n = std::min<qsizetype>(pick(rng, 1, 64), bytes.size() - at);
        reader.feed(QByteArrayView(bytes).sliced(at, n));
        at += n;
    }
    return reader.finish();
}

QByteArray mutated(QByteArray bytes, Rng& rng) {
    static const QList<QByteArray> tokens = {"\t",
                                             "\n",
                                             "\r\n",
                                             "\"",
                                             ",",
                                             ";",
                                             QByteArray(1, '\0'),
                                             "\xFF",
                                             "2026-02-30",
                                             " 25:10:00",
                                             "\xEF\xBB\xBF",
                                             "\xC3",
                                             "Total: 9\n",
                                             "\x1A",
                                             "\r",
                                             "\"\"",
                                             "in",
                                             "9",
                                             "  ",
                                             "2026-03-02 08:00:00"};
    const int ops = pick(rng, 1, 4);
    for (int i = 0; i < ops; ++i) {
        const int at = bytes.isEmpty() ? 0 : pick(rng, 0, int(bytes.size()) - 1);
        switch (pick(rng, 0, 4)) {
            case 0:
                if (!bytes.isEmpty()) bytes[at] = char(pick(rng, 0, 255));
                break;
            case 1:
                bytes.insert(at, tokens[pick(rng, 0, int(tokens.size()) - 1)]);
                break;
            case 2:
                bytes.remove(at, pick(rng, 1, 12));
                break;
            case 3: {
                const int n = pick(rng, 1, 40);
                bytes.insert(at, bytes.mid(at, n));
                break;
            }
            default:
                bytes.truncate(at);
                break;
        }
    }
    return bytes;
}

QByteArray utf16(const QString& text, QStringConverter::Encoding e) {
    QStringEncoder enc(e, QStringConverter::Flag::WriteBom);
    return enc.encode(text);
}

const char* const kLogFile =
    "Gate 1 SN 0841273\r\n"
    "  42\t2026-03-02 08:00:00\t1\t0\t1\t0\r\n"
    "42\t2026-03-02 12:00:00\t1\t1\t1\t0\r\n"
    "0007\t2026-03-02 21:55:00\t2\t255\r\n"
    "0007\t2026-03-03 06:05:00\t2\t255\r\n"
    "Total: 4\r\n";

const char* const kCsvFile =
    "Emp No,Date,Time,In/Out,Device,Remarks\n"
    "42,02/03/2026,08:00,IN,\"Gate 1\",\"late, \"\"bus\"\"\"\n"
    "42,2026-03-02,17:00:30,out,Gate 1,\"two\nlines\"\n"
    "7,2026-03-02,21:55,,2,\n"
    ",,,,,\n";

}  // namespace

TEST(CsvRecordFuzz, WrittenRecordsComeBackFieldForField) {
    Rng rng(20260302);
    for (QChar sep : {QLatin1Char(','), QLatin1Char(';')}) {
        CsvRecord record(sep);  // one splitter for every record, as the reader uses it
        for (int i = 0; i < 4000; ++i) {
            QStringList fields;
            const int n = pick(rng, 1, 6);
            for (int f = 0; f < n; ++f) fields << randomField(rng);
            const QStringList lines = written(fields, sep, rng).split(QLatin1Char('\n'));
            for (int l = 0; l < lines.size(); ++l) {
                const CsvRecord::Step step = record.addLine(lines[l]);
                const bool last = l == lines.size() - 1;
                ASSERT_EQ(step, last ? CsvRecord::Step::Complete : CsvRecord::Step::NeedsMoreLines)
                    << written(fields, sep, rng).toStdString();
            }
            ASSERT_EQ(record.fields(), fields);
            ASSERT_EQ(record.lineCount(), lines.size());
        }
    }
}

TEST(CsvRecordFuzz, RandomLinesNeverBreakTheSplitter) {
    Rng rng(77);
    static const QString alphabet = QStringLiteral("a,\" ;\t");
    for (int round = 0; round < 3000; ++round) {
        QStringList lines;
        const int n = pick(rng, 1, 6);
        for (int i = 0; i < n; ++i) {
            QString line;
            const int len = pick(rng, 0, 12);
            for (int c = 0; c < len; ++c) line += alphabet[pick(rng, 0, alphabet.size() - 1)];
            lines << line;
        }
        // The same lines twice give the same steps and fields.
        QList<int> steps[2];
        QList<QStringList> records[2];
        for (int pass = 0; pass < 2; ++pass) {
            CsvRecord record;
            int sinceStart = 0;
            for (const QString& line : lines) {
                const CsvRecord::Step step = record.addLine(line);
                ++sinceStart;
                steps[pass] << int(step);
                EXPECT_EQ(record.lineCount(), sinceStart);
                if (step == CsvRecord::Step::Complete) {
                    EXPECT_FALSE(record.fields().isEmpty());
                    records[pass] << record.fields();
                }
                if (step != CsvRecord::Step::NeedsMoreLines) sinceStart = 0;
            }
        }
        EXPECT_EQ(steps[0], steps[1]);
        ASSERT_EQ(records[0], records[1]);
        // A record that came out is written back and split again to the same fields.
        for (const QStringList& fields : records[0]) {
            CsvRecord again;
            const QStringList back =
                written(fields, QLatin1Char(','), rng).split(QLatin1Char('\n'));
            CsvRecord::Step step = CsvRecord::Step::NeedsMoreLines;
            for (const QString& line : back) step = again.addLine(line);
            EXPECT_EQ(step, CsvRecord::Step::Complete);
            EXPECT_EQ(again.fields(), fields);
        }
    }
}

TEST(PunchReaderFuzz, MutatedFilesGiveOneSaneResultHoweverTheyAreCut) {
    Rng rng(424242);
    const QList<QByteArray> bases = {
        kLogFile, kCsvFile, utf16(QString::fromLatin1(kLogFile), QStringConverter::Utf16LE),
        utf16(QString::fromUtf8(kCsvFile), QStringConverter::Utf16BE),
        QByteArray("\xEF\xBB\xBF") + kCsvFile};
    for (const QByteArray& base : bases) {
        // The files themselves read without a problem.
        const ReadResult clean = readPunchBytes(base);
        ASSERT_EQ(clean.status, FileStatus::Read);
        ASSERT_TRUE(clean.problems.isEmpty())
            << describeProblems(clean.problems).join('\n').toStdString();
        ASSERT_GE(clean.punches.size(), 3);
    }
    int read = 0;
    for (int round = 0; round < 6000; ++round) {
        const QByteArray bytes = mutated(bases[round % bases.size()], rng);
        const ReadResult whole = readPunchBytes(bytes);
        expectSane(whole, bytes);
        const ReadResult cut = readInPieces(bytes, rng);
        ASSERT_EQ(fingerprint(cut), fingerprint(whole)) << bytes.toHex().toStdString();
        if (whole.status == FileStatus::Read) ++read;
    }
    // The mutations mostly damage lines rather than whole files.
    EXPECT_GT(read, 3000);
}

TEST(PunchReaderFuzz, MutatedLargeFilesGiveOneResultHoweverTheyAreCut) {
    // Past the first 64 KiB lines are cut while bytes still come in: mutations there and
    // pieces of every size meet that cutting.
    Rng rng(5150);
    QByteArray log = "Gate 1\r\n";
    for (int i = 0; log.size() < 80000; ++i)
        log += QByteArray::number(i % 500) + "\t2026-03-02 0" + QByteArray::number(i % 10) +
               ":00:00\t1\t" + QByteArray::number(i % 6) + "\r\n";
    QByteArray csv = "code;date;time;io\n";
    for (int i = 0; csv.size() < 80000; ++i)
        csv += QByteArray::number(i % 500) + ";02/03/2026;\"0" + QByteArray::number(i % 10) +
               ":00\";" + (i % 2 ? "out" : "IN") + "\n";
    const QList<QByteArray> bases = {log, csv,
                                     utf16(QString::fromLatin1(log), QStringConverter::Utf16LE)};
    for (int round = 0; round < 240; ++round) {
        QByteArray bytes = bases[round % bases.size()];
        // Mutate around the 64 KiB mark and at random.
        const int around = pick(rng, 60000, 70000);
        bytes = bytes.left(around) + mutated(bytes.mid(around, 400), rng) + bytes.mid(around + 400);
        bytes = mutated(bytes, rng);
        const ReadResult whole = readPunchBytes(bytes);
        expectSane(whole, bytes);
        PunchReader reader;
        for (qsizetype at = 0; at < bytes.size();) {
            const qsizetype n = std::min<qsizetype>(pick(rng, 1, 9000), bytes.size() - at);
            reader.feed(QByteArrayView(bytes).sliced(at, n));
            at += n;
        }
        ASSERT_EQ(fingerprint(reader.finish()), fingerprint(whole)) << round;
    }
}

TEST(PunchReaderFuzz, RandomBytesNeverBreakTheReader) {
    Rng rng(9001);
    for (int round = 0; round < 2000; ++round) {
        QByteArray bytes;
        const int n = pick(rng, 0, 300);
        // Mostly printable with TABs and line ends, sometimes anything at all.
        const bool anyByte = round % 4 == 0;
        for (int i = 0; i < n; ++i) {
            const int r = pick(rng, 0, 99);
            if (anyByte)
                bytes += char(pick(rng, 0, 255));
            else if (r < 8)
                bytes += '\t';
            else if (r < 14)
                bytes += '\n';
            else if (r < 30)
                bytes += char('0' + pick(rng, 0, 9));
            else
                bytes += char(pick(rng, 32, 126));
        }
        const ReadResult whole = readPunchBytes(bytes);
        expectSane(whole, bytes);
        ASSERT_EQ(fingerprint(readInPieces(bytes, rng)), fingerprint(whole));
    }
}
