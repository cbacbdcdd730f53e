// `qz2-attendance report ...` run as a clerk or a script would run it, without a display:
// the three reports in the three formats from a database file, the exit codes of every
// refusal, and no file left behind by one.
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QProcessEnvironment>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>

#include "ReportMonth.h"
#include "TestSupport.h"

namespace {

struct Outcome {
    int code = -1;
    QString out;
    QString err;
};

class ReportCommand : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(dir.isValid());
        qz2test::createReportMonthFile(dir.filePath("month.sqlite"));
    }

    // `shell` runs before the program (a file-size limit, say).
    Outcome run(QStringList args, const QString& shell = {}) {
        QProcess p;
        p.setProcessEnvironment(qz2test::headlessEnvironment(dir.path()));
        args.prepend("report");
        args << "--database" << dir.filePath("month.sqlite");
        if (shell.isEmpty()) {
            p.start(QStringLiteral(QZ2_HOST_PROGRAM), args);
        } else {
            args.prepend(QStringLiteral(QZ2_HOST_PROGRAM));
            p.start("/bin/sh", QStringList{"-c", shell + "; exec \"$@\"", "sh"} + args);
        }
        EXPECT_TRUE(p.waitForFinished(60000));
        return Outcome{p.exitCode(), QString::fromUtf8(p.readAllStandardOutput()),
                       QString::fromUtf8(p.readAllStandardError())};
    }
    QString path(const QString& name) const { return dir.filePath(name); }
    QTemporaryDir dir;
};

QByteArray contents(const QString& file) {
    QFile f(file);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

}  // namespace

TEST_F(ReportCommand, MusterInEveryFormat) {
    const Outcome csv = run({"muster", "--from", "2024-02-26", "--to", "2024-03-03", "--format",
                             "csv", "--out", path("m.csv")});
    ASSERT_EQ(csv.code, 0) << csv.err.toStdString();
    EXPECT_EQ(csv.out, "wrote " + path("m.csv") + "\n");
    const QByteArray text = contents(path("m.csv"));
    EXPECT_TRUE(text.startsWith(
        "Emp No,Name,Department,26 Mon,27 Tue,28 Wed,29 Thu,1 Fri,2 Sat,3 Sun,Present"));
    EXPECT_TRUE(text.contains(
        "\r\nE02,Ben Okafor,,P,HL,AL,!P/A,!P/P,,,1.5,1,0.5,0,12:00,24:00,00:00,00:00,2,"
        "ATT4 ATT5\r\n"));
    EXPECT_EQ(text.count("\r\n"), 5);

    const Outcome pdf = run({"muster", "--from", "2024-02-26", "--to", "2024-03-03", "--format",
                             "PDF", "--out", path("m.pdf")});
    ASSERT_EQ(pdf.code, 0) << pdf.err.toStdString();
    EXPECT_TRUE(contents(path("m.pdf")).startsWith("%PDF-"));

    const Outcome xlsx = run({"muster", "--from", "2024-02-26", "--to", "2024-03-03",
                              "--department", "10", "--format", "xlsx", "--out", path("m.xlsx")});
    ASSERT_EQ(xlsx.code, 0) << xlsx.err.toStdString();
    EXPECT_TRUE(contents(path("m.xlsx")).startsWith("PK"));  // a zip container
}

TEST_F(ReportCommand, SheetAndPayroll) {
    const Outcome sheet =
        run({"sheet", "--entry", "ATT2", "--format", "csv", "--out", path("s.csv")});
    ASSERT_EQ(sheet.code, 0) << sheet.err.toStdString();
    const QByteArray text = contents(path("s.csv"));
    EXPECT_TRUE(text.startsWith(
        "Entry No,Date,Day,Type,Check-in/check-out,Worked,Scheduled,Overtime,Late\r\n"
        "ATT2,2024-03-01,Fri,P,08:50-13:00  14:00-17:45,07:55,08:00,,00:15\r\n"
        "ATT2,2024-03-02,Sat,H,,00:00,00:00,,\r\n"
        "ATT2,2024-03-03,Sun,H,10:00-12:00,02:00,00:00,,\r\n"))
        << text.toStdString();
    const Outcome payroll = run({"payroll", "--from", "2024-02-26", "--to", "2024-03-03",
                                 "--format", "csv", "--out", path("p.csv")});
    ASSERT_EQ(payroll.code, 0) << payroll.err.toStdString();
    EXPECT_TRUE(
        contents(path("p.csv"))
            .contains(
                "E01,\"Asha, \"\"A\"\" "
                "Rao\",Stores,ATT1,2024-02-26,2024-02-29,1.5,1,1.5,0.50,00:30,7,0.25,00:15,8\r\n"));
}

TEST_F(ReportCommand, BadOptionsExitTwo) {
    const QList<QStringList> bad = {
        {"muster", "--from", "2024-02-26", "--format", "csv", "--out", path("x")},
        {"muster", "--from", "26/02/2024", "--to", "2024-03-03", "--format", "csv", "--out",
         path("x")},
        {"roster", "--from", "2024-02-26", "--to", "2024-03-03", "--format", "csv", "--out",
         path("x")},
        {"muster", "--from", "2024-02-26", "--to", "2024-03-03", "--format", "xls", "--out",
         path("x")},
        {"muster", "--from", "2024-02-26", "--to", "2024-03-03", "--format", "csv"},
        {"sheet", "--format", "csv", "--out", path("x")},
        {"muster", "--from", "2024-02-26", "--to", "2024-03-03", "--department", "ten", "--format",
         "csv", "--out", path("x")},
    };
    for (const QStringList& args : bad) {
        SCOPED_TRACE(args.join(' ').toStdString());
        const Outcome r = run(args);
        EXPECT_EQ(r.code, 2) << r.err.toStdString();
        EXPECT_TRUE(r.err.startsWith("qz2-attendance report: ")) << r.err.toStdString();
    }
    EXPECT_FALSE(QFile::exists(path("x")));
}

TEST_F(ReportCommand, RefusedRequestsExitFiveAndWriteNothing) {
    struct Case {
        QStringList args;
        QString message;
    };
    const QList<Case> cases = {
        {{"muster", "--from", "2024-01-01", "--to", "2024-03-03"},
         "qz2-attendance report: A report covers at most 62 days; this period has 63.\n"},
        {{"payroll", "--from", "2024-03-03", "--to", "2024-02-26"},
         "qz2-attendance report: The period ends before it starts.\n"},
        {{"muster", "--from", "2024-02-26", "--to", "2024-03-03", "--department", "99"},
         "qz2-attendance report: There is no department 99 in company 1.\n"},
        {{"sheet", "--entry", "ATT99"},
         "qz2-attendance report: There is no entry numbered \"ATT99\" in company 1.\n"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.args.join(' ').toStdString());
        const Outcome r = run(c.args + QStringList{"--format", "pdf", "--out", path("x.pdf")});
        EXPECT_EQ(r.code, 5);
        EXPECT_EQ(r.err, c.message);
        EXPECT_FALSE(QFile::exists(path("x.pdf")));
    }
}

TEST_F(ReportCommand, UnwritableOutputExitsSixAndDatabaseThree) {
    for (const char* format : {"pdf", "xlsx", "csv"}) {
        const Outcome r = run({"muster", "--from", "2024-02-26", "--to", "2024-03-03", "--format",
                               format, "--out", path("missing/x")});
        EXPECT_EQ(r.code, 6) << format;
        EXPECT_TRUE(
            r.err.startsWith("qz2-attendance report: Cannot write " + path("missing/x") + ": "))
            << r.err.toStdString();
    }
    QFile::rename(path("month.sqlite"), path("moved.sqlite"));
    const Outcome r = run({"muster", "--from", "2024-02-26", "--to", "2024-03-03", "--format",
                           "csv", "--out", path("y.csv")});
    EXPECT_EQ(r.code, 3);
    EXPECT_EQ(r.err, "qz2-attendance report: the database file '" + path("month.sqlite") +
                         "' does not exist.\n");
    EXPECT_FALSE(QFile::exists(path("y.csv")));
}

TEST_F(ReportCommand, FullDiskExitsSixAndLeavesNoFile) {
    // A file-size limit of zero makes every write fail as a full disk does (the signal the
    // kernel sends for it ignored, so the write returns an error instead).
    for (const char* format : {"pdf", "xlsx", "csv"}) {
        SCOPED_TRACE(format);
        const QString out = path(QStringLiteral("full.") + format);
        const Outcome r = run({"muster", "--from", "2024-02-26", "--to", "2024-03-03", "--format",
                               format, "--out", out},
                              "ulimit -f 0; trap '' XFSZ");
        EXPECT_EQ(r.code, 6) << r.err.toStdString();
        // (the spreadsheet library prints its own lines before ours)
        EXPECT_TRUE(r.err.contains("qz2-attendance report: Cannot write " + out + ": "))
            << r.err.toStdString();
        EXPECT_FALSE(QFile::exists(out));
        // Nothing half-written beside it either.
        const QStringList left = QDir(dir.path()).entryList(QDir::Files | QDir::Hidden);
        EXPECT_EQ(left, QStringList{"month.sqlite"}) << left.join(' ').toStdString();
    }
}

TEST_F(ReportCommand, UnreadableDatabaseExitsThree) {
    // A database without the suite's tables: it is refused as the register refuses it.
    {
        QSqlDatabase other = QSqlDatabase::addDatabase("QSQLITE", "bare");
        other.setDatabaseName(path("bare.sqlite"));
        ASSERT_TRUE(other.open());
        QSqlQuery(other).exec("create table unrelated(x integer)");
        other.close();
    }
    QSqlDatabase::removeDatabase("bare");
    QFile::remove(path("month.sqlite"));
    QFile::copy(path("bare.sqlite"), path("month.sqlite"));
    const Outcome r = run({"payroll", "--from", "2024-02-26", "--to", "2024-03-03", "--format",
                           "csv", "--out", path("p.csv")});
    EXPECT_EQ(r.code, 3);
    EXPECT_TRUE(r.err.startsWith("qz2-attendance report: "));
    EXPECT_TRUE(r.err.contains("it is not an attendance database")) << r.err.toStdString();
    EXPECT_EQ(r.err.count('\n'), 1) << r.err.toStdString();
    EXPECT_FALSE(QFile::exists(path("p.csv")));
}
