// The report files: CSV pinned to the byte, XLSX read back with xlsx2csv, PDF text read
// back with pdftotext and its pages counted with pdfinfo; and that no failure or cancel
// leaves a file under the requested name. The readers are Debian's programs (installed by
// scripts/install-deps); a missing one fails the test with a message saying so.
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>

#include "ReportMonth.h"
#include "TestSupport.h"
#include "db/Database.h"
#include "reports/ReportData.h"
#include "reports/ReportFigures.h"
#include "reports/ReportTable.h"
#include "reports/ReportWriters.h"

using namespace qz2::reports;
using qz2test::TestDb;
namespace db = qz2::db;

namespace {

sql::Scope scopeOf(QDate from, QDate to, std::optional<qint32> department = std::nullopt) {
    sql::Scope s;
    s.company = 1;
    s.from = from;
    s.to = to;
    s.department = department;
    return s;
}

// Runs a reader program; fails the test clearly when it is not installed.
QString readBack(const QString& program, const QStringList& args) {
    QProcess p;
    p.start(program, args);
    if (!p.waitForStarted(10000)) {
        ADD_FAILURE() << program.toStdString()
                      << " is not installed: the report tests read files back with it (run "
                         "scripts/install-deps)";
        return {};
    }
    p.waitForFinished(60000);
    EXPECT_EQ(p.exitCode(), 0) << program.toStdString() << ": "
                               << p.readAllStandardError().toStdString();
    return QString::fromUtf8(p.readAllStandardOutput());
}

int pdfPages(const QString& file) {
    const QString info = readBack(QStringLiteral("pdfinfo"), {file});
    for (const QString& line : info.split(QLatin1Char('\n')))
        if (line.startsWith(QLatin1String("Pages:"))) return line.mid(6).trimmed().toInt();
    return -1;
}

// The text of a PDF (or one page of it), each line's runs of blanks made one, empty lines
// left out: what matters is the words and their order on each line, not the spacing.
QString pdfText(const QString& file, int page = 0) {
    QStringList args{QStringLiteral("-layout")};
    if (page > 0)
        args << QStringLiteral("-f") << QString::number(page) << QStringLiteral("-l")
             << QString::number(page);
    args << file << QStringLiteral("-");
    QStringList lines;
    for (const QString& line :
         readBack(QStringLiteral("pdftotext"), args).split(QLatin1Char('\n'))) {
        const QString l = line.simplified();
        if (!l.isEmpty()) lines << l;
    }
    return lines.join(QLatin1Char('\n'));
}

class ReportFormats : public ::testing::Test {
protected:
    void SetUp() override { qz2test::fillReportMonth(t.db); }
    ReportTable muster(QDate from = qz2test::kMonthFrom, QDate to = qz2test::kMonthTo) {
        return musterTable(buildMuster(readPeriod(t.db, db::Dialect::sqlite(), scopeOf(from, to),
                                                  PeriodReport::Muster)),
                           QStringLiteral("Demo Works"));
    }
    ReportTable payroll() {
        return payrollTable(buildPayroll(readPeriod(t.db, db::Dialect::sqlite(),
                                                    scopeOf(qz2test::kMonthFrom, qz2test::kMonthTo),
                                                    PeriodReport::Payroll)),
                            QStringLiteral("Demo Works"));
    }
    ReportTable sheet(const QString& no) {
        return sheetTable(buildSheet(readSheet(t.db, 1, no)), QStringLiteral("Demo Works"));
    }
    QString path(const QString& name) const { return dir.filePath(name); }
    TestDb t;
    QTemporaryDir dir;
};

}  // namespace

TEST_F(ReportFormats, MusterCsvToTheByte) {
    writeCsv(muster(), path("muster.csv"));
    QFile f(path("muster.csv"));
    ASSERT_TRUE(f.open(QIODevice::ReadOnly));
    EXPECT_EQ(
        f.readAll().toStdString(),
        "Emp No,Name,Department,26 Mon,27 Tue,28 Wed,29 Thu,1 Fri,2 Sat,3 "
        "Sun,Present,Leave,Absent,Holidays,"
        "Worked,Scheduled,Overtime,Late,Conflicts,Entries\r\n"
        "E01,\"Asha, \"\"A\"\" "
        "Rao\",Stores,P,A,HA,L,P,H,H,4.5,1,1.5,2,22:25,40:00,00:30,00:30,0,ATT1 ATT2\r\n"
        "E02,Ben Okafor,,P,HL,AL,!P/A,!P/P,,,1.5,1,0.5,0,12:00,24:00,00:00,00:00,2,ATT4 ATT5\r\n"
        "E03,Chen Li,Office,,,,,,,,0,0,0,0,00:00,00:00,00:00,00:00,0,\r\n"
        "E05,Eli Marsh,Stores,,,,,A,,,0,0,1,0,00:00,08:00,00:00,00:00,0,ATT6\r\n");
}

TEST_F(ReportFormats, PayrollCsvToTheByte) {
    writeCsv(payroll(), path("payroll.csv"));
    QFile f(path("payroll.csv"));
    ASSERT_TRUE(f.open(QIODevice::ReadOnly));
    EXPECT_EQ(f.readAll().toStdString(),
              "Emp No,Name,Department,Entry No,From,To,Present,Leave,Absent,Overtime "
              "hours,Overtime,Allowance ID,"
              "Late hours,Late,Deduction ID\r\n"
              "E01,\"Asha, \"\"A\"\" "
              "Rao\",Stores,ATT1,2024-02-26,2024-02-29,1.5,1,1.5,0.50,00:30,7,0.25,00:15,8\r\n"
              "E01,\"Asha, \"\"A\"\" "
              "Rao\",Stores,ATT2,2024-03-01,2024-03-03,3,0,0,0.00,00:00,,0.25,00:15,8\r\n"
              "E02,Ben Okafor,,ATT4,2024-02-26,2024-03-03,3.5,1,0.5,0.00,00:00,,0.00,00:00,\r\n"
              "E02,Ben Okafor,,ATT5,2024-02-29,2024-03-01,1,0,1,0.00,00:00,,0.00,00:00,\r\n"
              "E05,Eli Marsh,Stores,ATT6,2024-03-01,2024-03-03,0,0,1,0.00,00:00,,0.00,00:00,\r\n");
}

TEST_F(ReportFormats, SheetCsvCarriesTheEntryNumber) {
    const QByteArray csv = csvText(sheet("ATT1"));
    const QList<QByteArray> lines = csv.split('\n');
    ASSERT_EQ(lines.size(), 31);  // heading, 29 days, the empty piece after the last CRLF
    EXPECT_EQ(lines[0],
              "Entry No,Date,Day,Type,Check-in/check-out,Worked,Scheduled,Overtime,Late\r");
    EXPECT_EQ(lines[1], "ATT1,2024-02-01,Thu,,,,,,\r");
    EXPECT_EQ(lines[26], "ATT1,2024-02-26,Mon,P,09:05-13:00  14:00-18:30,08:30,08:00,00:30,\r");
    EXPECT_EQ(lines[29], "ATT1,2024-02-29,Thu,L,,00:00,08:00,,\r");
}

TEST_F(ReportFormats, MusterXlsxReadsBack) {
    writeXlsx(muster(), path("muster.xlsx"));
    const QString csv = readBack(QStringLiteral("xlsx2csv"), {path("muster.xlsx")});
    // Counts come back as numbers, hours as fractions of a day (22:25 is 1345/1440 of a
    // day): typed cells, not texts.
    EXPECT_EQ(csv.toStdString(),
              "Monthly muster,,,,,,,,,,,,,,,,,,,\n"
              "Demo Works,,,,,,,,,,,,,,,,,,,\n"
              "Period: 26/02/2024 to 03/03/2024,,,,,,,,,,,,,,,,,,,\n"
              "Department: all,,,,,,,,,,,,,,,,,,,\n"
              "\n"
              "Emp No,Name,Department,26 Mon,27 Tue,28 Wed,29 Thu,1 Fri,2 Sat,3 "
              "Sun,Present,Leave,Absent,Holidays,"
              "Worked,Scheduled,Overtime,Late,Conflicts,Entries\n"
              "E01,\"Asha, \"\"A\"\" "
              "Rao\",Stores,P,A,HA,L,P,H,H,4.5,1,1.5,2,0.934028,1.666667,0.020833,0.020833,0,"
              "ATT1 ATT2\n"
              "E02,Ben Okafor,,P,HL,AL,!P/A,!P/P,,,1.5,1,0.5,0,0.5,1,0,0,2,ATT4 ATT5\n"
              "E03,Chen Li,Office,,,,,,,,0,0,0,0,0,0,0,0,0,\n"
              "E05,Eli Marsh,Stores,,,,,A,,,0,0,1,0,0,0.333333,0,0,0,ATT6\n"
              "\n"
              "\"P present, A absent, L leave, H holiday, HA half day absent, HL half day leave, "
              "AL half leave half "
              "absent; an empty day has no entry.\",,,,,,,,,,,,,,,,,,,\n"
              "\"! two live entries cover the day: their codes are shown, and the day counts in "
              "neither the days nor "
              "the hours.\",,,,,,,,,,,,,,,,,,,\n"
              "Present (Pres.) includes holidays (Hol.); Abs. absent; Sched. scheduled; overtime "
              "(OT) and Late are the "
              "hours claimed; Confl. conflict days.,,,,,,,,,,,,,,,,,,,\n");
}

TEST_F(ReportFormats, PayrollXlsxTypedCells) {
    writeXlsx(payroll(), path("payroll.xlsx"));
    // Dates come back in the reader's own format only when they are stored as dates.
    const QString csv =
        readBack(QStringLiteral("xlsx2csv"), {"-f", "%Y-%m-%d", path("payroll.xlsx")});
    EXPECT_EQ(
        csv.toStdString(),
        "Payroll summary,,,,,,,,,,,,,,\n"
        "Demo Works,,,,,,,,,,,,,,\n"
        "Period: 26/02/2024 to 03/03/2024,,,,,,,,,,,,,,\n"
        "Department: all,,,,,,,,,,,,,,\n"
        "\n"
        "Emp No,Name,Department,Entry No,From,To,Present,Leave,Absent,Overtime "
        "hours,Overtime,Allowance ID,"
        "Late hours,Late,Deduction ID\n"
        "E01,\"Asha, \"\"A\"\" "
        "Rao\",Stores,ATT1,2024-02-26,2024-02-29,1.5,1,1.5,0.5,0.020833,7,0.25,0.010417,8\n"
        "E01,\"Asha, \"\"A\"\" Rao\",Stores,ATT2,2024-03-01,2024-03-03,3,0,0,0,0,,0.25,0.010417,8\n"
        "E02,Ben Okafor,,ATT4,2024-02-26,2024-03-03,3.5,1,0.5,0,0,,0,0,\n"
        "E02,Ben Okafor,,ATT5,2024-02-29,2024-03-01,1,0,1,0,0,,0,0,\n"
        "E05,Eli Marsh,Stores,ATT6,2024-03-01,2024-03-03,0,0,1,0,0,,0,0,\n"
        "\n"
        "Days and claims of each entry inside the period; present includes "
        "holidays.,,,,,,,,,,,,,,\n");
}

TEST_F(ReportFormats, MusterPdfTextAndPages) {
    writePdf(muster(), path("muster.pdf"));
    EXPECT_EQ(pdfPages(path("muster.pdf")), 1);
    EXPECT_EQ(pdfText(path("muster.pdf")).toStdString(),
              "Monthly muster\n"
              "Demo Works\n"
              "Period: 26/02/2024 to 03/03/2024\n"
              "Department: all\n"
              "26 27 28 29 1 2 3\n"
              "Emp No Name Department Pres. Leave Abs. Hol. Worked Sched. OT Late Confl. Entries\n"
              "Mo Tu We Th Fr Sa Su\n"
              "E01 Asha, \"A\" Rao Stores P A HA L P H H 4.5 1 1.5 2 22:25 40:00 00:30 00:30 0 "
              "ATT1 ATT2\n"
              "E02 Ben Okafor P HL AL !P/A !P/P 1.5 1 0.5 0 12:00 24:00 00:00 00:00 2 ATT4 ATT5\n"
              "E03 Chen Li Office 0 0 0 0 00:00 00:00 00:00 00:00 0\n"
              "E05 Eli Marsh Stores A 0 0 1 0 00:00 08:00 00:00 00:00 0 ATT6\n"
              "P present, A absent, L leave, H holiday, HA half day absent, HL half day leave, AL "
              "half leave half "
              "absent; an empty day has no entry.\n"
              "! two live entries cover the day: their codes are shown, and the day counts in "
              "neither the days nor "
              "the hours.\n"
              "Present (Pres.) includes holidays (Hol.); Abs. absent; Sched. scheduled; overtime "
              "(OT) and Late are the "
              "hours claimed; Confl. conflict days.\n"
              "Monthly muster Page 1 of 1");
}

TEST_F(ReportFormats, SheetPdfTextAndPages) {
    writePdf(sheet("ATT3"), path("sheet.pdf"));
    EXPECT_EQ(pdfPages(path("sheet.pdf")), 1);
    EXPECT_EQ(pdfText(path("sheet.pdf")).toStdString(),
              "Attendance entry ATT3\n"
              "Demo Works\n"
              "Entry No: ATT3 Entry date: 01/03/2024\n"
              "Employee: E01 Asha, \"A\" Rao\n"
              "Department: Stores\n"
              "Period: 29/02/2024 to 29/02/2024\n"
              "Cancelled: Keyed twice\n"
              "Date Day Type Check-in/check-out Worked Scheduled Overtime Late\n"
              "29/02/2024 Thu P 09:00-18:00 09:00 08:00 01:00\n"
              "Totals: worked 09:00, scheduled 08:00, overtime 01:00, late 00:00\n"
              "Present: 1 Leave: 0 Absent: 0 Holidays: 0\n"
              "Remarks:\n"
              "Signature of the clerk Signature of the employee\n"
              "Attendance entry ATT3 Page 1 of 1");
}

TEST_F(ReportFormats, LongMusterRepeatsHeadingsOnEveryPage) {
    for (int i = 0; i < 150; ++i)
        t.exec(QStringLiteral(
                   "insert into pEmployee(eEmpID, eCompanyID, eEmpNo, eName, eActive, eDeptID) "
                   "values(%1, 1, 'F%2', 'Filler', 1, 20)")
                   .arg(100 + i)
                   .arg(100 + i));
    int progressCalls = 0;
    writePdf(muster(), path("long.pdf"), [&](int, int) { return ++progressCalls > 0; });
    const int pages = pdfPages(path("long.pdf"));
    ASSERT_GE(pages, 3);
    EXPECT_EQ(progressCalls, pages);
    QStringList seen;
    for (int page = 1; page <= pages; ++page) {
        SCOPED_TRACE(page);
        const QString text = pdfText(path("long.pdf"), page);
        EXPECT_TRUE(text.contains("Emp No Name Department Pres. Leave")) << text.toStdString();
        EXPECT_TRUE(
            text.contains(QStringLiteral("Monthly muster Page %1 of %2").arg(page).arg(pages)));
        for (const QString& line : text.split('\n'))
            if (QRegularExpression("^[EF][0-9]+ ").match(line).hasMatch())
                seen << line.section(' ', 0, 0);
    }
    // Every employee once, in order, across the pages.
    QStringList want{"E01", "E02", "E03", "E05"};
    for (int i = 0; i < 150; ++i) want << QStringLiteral("F%1").arg(100 + i);
    want.sort();
    EXPECT_EQ(seen, want);
}

TEST_F(ReportFormats, SixtyTwoDaysSplitTheColumnsOverPages) {
    writePdf(muster(QDate(2024, 1, 1), QDate(2024, 3, 2)), path("wide.pdf"));
    const int pages = pdfPages(path("wide.pdf"));
    ASSERT_GE(pages, 2);
    // The number and name go on every page; the days continue on the next, then the totals.
    QString all;
    for (int page = 1; page <= pages; ++page) {
        SCOPED_TRACE(page);
        const QString text = pdfText(path("wide.pdf"), page);
        EXPECT_TRUE(text.contains("Emp No Name")) << text.toStdString();
        EXPECT_TRUE(text.contains("E05 Eli Marsh")) << text.toStdString();
        EXPECT_TRUE(text.contains(QStringLiteral("Page %1 of %2").arg(page).arg(pages)));
        if (page == 1) {
            EXPECT_TRUE(text.contains("1 2 3 4 5 6 7 8 9 10")) << text.toStdString();
            EXPECT_FALSE(text.contains("Pres. Leave")) << text.toStdString();
        }
        all += text;
    }
    EXPECT_TRUE(all.contains("26 27 28 29")) << all.toStdString();  // the leap day
    EXPECT_TRUE(all.contains("\n1 2\n") || all.contains(" 29 1 "))
        << all.toStdString();  // then March
    EXPECT_TRUE(all.contains("Pres. Leave Abs.")) << all.toStdString();
    EXPECT_TRUE(all.contains("00:30 00:30 0 ATT1 ATT2")) << all.toStdString();
}

TEST_F(ReportFormats, NoPartialFileOnCancelOrFailure) {
    const QString keep = path("keep");
    for (const Format format : {Format::Pdf, Format::Xlsx}) {
        QFile old(keep);
        ASSERT_TRUE(old.open(QIODevice::WriteOnly));
        old.write("old contents");
        old.close();
        EXPECT_THROW(writeReport(muster(), format, keep, [](int, int) { return false; }),
                     ReportCancelled);
        ASSERT_TRUE(old.open(QIODevice::ReadOnly));
        EXPECT_EQ(old.readAll(), "old contents");
        old.close();
        EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files | QDir::Hidden), QStringList{"keep"});
    }
    for (const Format format : {Format::Pdf, Format::Xlsx, Format::Csv}) {
        const QString nowhere = path("no-such-folder/report.out");
        try {
            writeReport(muster(), format, nowhere);
            ADD_FAILURE() << "wrote into a missing folder";
        } catch (const ReportError& e) {
            EXPECT_TRUE(e.message().startsWith("Cannot write " + nowhere + ": "))
                << e.message().toStdString();
        }
        EXPECT_FALSE(QFile::exists(nowhere));
    }
}

TEST(ReportFormatNames, Names) {
    EXPECT_EQ(formatFromName("PDF"), Format::Pdf);
    EXPECT_EQ(formatFromName("xlsx"), Format::Xlsx);
    EXPECT_EQ(formatFromName(" csv "), Format::Csv);
    EXPECT_EQ(formatFromName("xls"), std::nullopt);
}
