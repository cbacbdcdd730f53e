// `qz2-attendance add-history-table` and what --help says about history, run as an
// administrator would run them, without a display.
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QProcessEnvironment>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>

#include "SaveScenario.h"
#include "TestSupport.h"

namespace {

struct Outcome {
    int code = -1;
    QString out;
    QString err;
};

class HistoryCommand : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(dir.isValid());
        file = dir.filePath(QStringLiteral("suite.sqlite"));
        qz2test::createDemoFile(file);
        // A suite database that has not installed the history table yet.
        {
            QSqlDatabase db =
                QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("setup"));
            db.setDatabaseName(file);
            ASSERT_TRUE(db.open());
            ASSERT_TRUE(QSqlQuery(db).exec(QStringLiteral("drop table pEmpAttendanceHistory")));
            db.close();
        }
        QSqlDatabase::removeDatabase(QStringLiteral("setup"));
    }
    Outcome run(const QStringList& args) {
        QProcess p;
        p.setProcessEnvironment(qz2test::headlessEnvironment(dir.path()));
        p.start(QStringLiteral(QZ2_HOST_PROGRAM), args);
        EXPECT_TRUE(p.waitForFinished(60000));
        return Outcome{p.exitCode(), QString::fromUtf8(p.readAllStandardOutput()),
                       QString::fromUtf8(p.readAllStandardError())};
    }
    int historyTables() {
        int n = -1;
        {
            QSqlDatabase db =
                QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("look"));
            db.setDatabaseName(file);
            EXPECT_TRUE(db.open());
            QSqlQuery q(db);
            EXPECT_TRUE(q.exec(QStringLiteral(
                "select count(*) from sqlite_master where name in ('pEmpAttendanceHistory', "
                "'ix_pEmpAttendanceHistory_no')")));
            if (q.next()) n = q.value(0).toInt();
            db.close();
        }
        QSqlDatabase::removeDatabase(QStringLiteral("look"));
        return n;
    }
    QTemporaryDir dir;
    QString file;
};

}  // namespace

TEST_F(HistoryCommand, AddsTheTableOnceAndSaysSoTheSecondTime) {
    ASSERT_EQ(historyTables(), 0);
    const Outcome first = run({"add-history-table", "--database", file});
    ASSERT_EQ(first.code, 0) << first.err.toStdString();
    EXPECT_EQ(first.out, QStringLiteral("added the history table pEmpAttendanceHistory\n"));
    EXPECT_EQ(historyTables(), 2);  // the table and its index
    const Outcome second = run({"add-history-table", "--database", file});
    ASSERT_EQ(second.code, 0) << second.err.toStdString();
    EXPECT_EQ(second.out,
              QStringLiteral("the history table pEmpAttendanceHistory is there already\n"));
    EXPECT_TRUE(second.err.isEmpty()) << second.err.toStdString();
}

TEST_F(HistoryCommand, BadOptionsAndAMissingDatabaseHaveTheirExitCodes) {
    EXPECT_EQ(run({"add-history-table", "--nonsense"}).code, 2);
    EXPECT_EQ(run({"add-history-table"}).code, 2);  // never the demo database by itself
    EXPECT_EQ(run({"add-history-table", "extra", "--database", file}).code, 2);
    const Outcome missing = run({"add-history-table", "--database", dir.filePath("none.sqlite")});
    EXPECT_EQ(missing.code, 3);
    EXPECT_TRUE(missing.err.startsWith(QStringLiteral("qz2-attendance add-history-table: ")))
        << missing.err.toStdString();
    EXPECT_EQ(historyTables(), 0);
}

TEST_F(HistoryCommand, HelpSaysHowToAddTheTable) {
    for (const QStringList& args :
         {QStringList{"--help"}, QStringList{"add-history-table", "--help"}}) {
        const Outcome help = run(args);
        EXPECT_EQ(help.code, 0);
        EXPECT_TRUE(help.out.contains(QStringLiteral("pEmpAttendanceHistory")))
            << help.out.toStdString();
        EXPECT_TRUE(
            help.out.contains(QStringLiteral("qz2-attendance add-history-table --database FILE")))
            << help.out.toStdString();
    }
}
