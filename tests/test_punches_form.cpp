// Punches laid onto a populated entry: the plan (which days change, night shifts, working
// days without punches), the mirror grid afterwards, and the entry form importing the
// demo's time-clock log: hours worked out as for typed times, the summary, the offer of
// absent days, refusals that change nothing, and the save.

#include <gtest/gtest.h>

#include <QComboBox>
#include <QDateEdit>
#include <QFile>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTemporaryDir>

#include "SaveScenario.h"
#include "TestSupport.h"
#include "demo/DemoData.h"
#include "entry/frmEmployeeDailyAttendance.h"
#include "entry/frmPunchSummary.h"
#include "punches/PunchImport.h"
#include "rules/Population.h"
#include "rules/RuleGrids.h"
#include "shared/BasAttendence.h"
#include "shared/FlexGrid.h"
#include "shared/MsgBox.h"

using namespace qz2;
using namespace qz2::punches;
using qz2test::TestDb;

namespace {

QDateTime at(QDate d, int h, int m) {
    return QDateTime(d, QTime(h, m), Qt::UTC);
}

// Three days laid out as Populate leaves them: Monday and Tuesday worked 09:00-13:00 and
// 14:00-18:00, Wednesday a holiday.
struct Laid {
    FlexGridModel days;
    FlexGridModel mirror;
    Laid() {
        days.setCols(rules::daycol::Count);
        mirror.setCols(rules::paircol::Count);
        const QDate mon(2026, 11, 16);
        for (int i = 0; i < 3; ++i) {
            const QDate d = mon.addDays(i);
            days.AddItem({QString(), dateText(d),
                          i == 2 ? QStringLiteral("H") : QStringLiteral("P"),
                          QStringLiteral("08:00"),
                          i == 2 ? QStringLiteral("00:00") : QStringLiteral("08:00"),
                          QStringLiteral("00:00"), QString()});
            if (i == 2) continue;
            mirror.AddItem({dateText(d), QStringLiteral("1"), QStringLiteral("09:00"),
                            QStringLiteral("13:00")});
            mirror.AddItem({dateText(d), QStringLiteral("2"), QStringLiteral("14:00"),
                            QStringLiteral("18:00")});
        }
    }
    QStringList mirrorRows() const {
        QStringList out;
        for (int r = 1; r < mirror.Rows(); ++r)
            out << QStringLiteral("%1 %2 %3-%4")
                       .arg(mirror.TextMatrix(r, 0), mirror.TextMatrix(r, 1),
                            mirror.TextMatrix(r, 2), mirror.TextMatrix(r, 3));
        return out;
    }
};

PunchDay day(QDate d, QVector<PunchPair> pairs, DayFlags flags = {}) {
    PunchDay p;
    p.date = d;
    p.pairs = std::move(pairs);
    p.flags = flags;
    return p;
}

TEST(PunchPlan, OnlyDaysWithPunchesChangeAndTheirPairsReplaceTheLaidOutOnes) {
    Laid l;
    const QDate mon(2026, 11, 16);
    const ImportPlan plan = planImport(
        l.days, {day(mon, {{at(mon, 8, 55), at(mon, 17, 40)}}), day(mon.addDays(1), {})});
    ASSERT_EQ(plan.days.size(), 1);
    EXPECT_EQ(plan.days[0].pairs,
              (QVector<GridPair>{{QStringLiteral("08:55"), QStringLiteral("17:40")}}));
    EXPECT_EQ(plan.workingDaysWithoutPunches, QVector<QDate>{mon.addDays(1)});  // not the holiday
    applyImport(l.mirror, plan);
    EXPECT_EQ(l.mirrorRows(), (QStringList{QStringLiteral("16/11/2026 1 08:55-17:40"),
                                           QStringLiteral("17/11/2026 1 09:00-13:00"),
                                           QStringLiteral("17/11/2026 2 14:00-18:00")}));
}

TEST(PunchPlan, ANightShiftStaysOnItsDaySplitAtMidnightAndSaysSo) {
    Laid l;
    const QDate tue(2026, 11, 17);
    const ImportPlan plan =
        planImport(l.days, {day(tue, {{at(tue, 21, 50), at(tue.addDays(1), 6, 5)}})});
    ASSERT_EQ(plan.days.size(), 1);
    EXPECT_TRUE(plan.days[0].nightShift);
    EXPECT_EQ(plan.days[0].pairs,
              (QVector<GridPair>{{QStringLiteral("00:00"), QStringLiteral("06:05")},
                                 {QStringLiteral("21:50"), QStringLiteral("23:59")}}));
    applyImport(l.mirror, plan);
    EXPECT_EQ(l.mirrorRows().mid(2), (QStringList{QStringLiteral("17/11/2026 1 00:00-06:05"),
                                                  QStringLiteral("17/11/2026 2 21:50-23:59")}));
    EXPECT_TRUE(importSummary(plan).join('\n').contains(QStringLiteral("17/11: night shift")));
}

TEST(PunchPlan, AMissingCheckOutStaysEmptyAndFlaggedAndAStrayCheckOutKeepsTheLaidOutPairs) {
    Laid l;
    const QDate mon(2026, 11, 16);
    PunchDay stray = day(mon.addDays(1), {}, DayFlag::CheckInMissing);
    stray.checkOutsWithoutCheckIn = {at(mon.addDays(1), 18, 0)};
    const ImportPlan plan = planImport(
        l.days, {day(mon, {{at(mon, 9, 0), std::nullopt}}, DayFlag::CheckOutMissing), stray});
    ASSERT_EQ(plan.days.size(), 2);
    EXPECT_TRUE(hasFlaggedDays(plan));
    EXPECT_TRUE(plan.workingDaysWithoutPunches.isEmpty());
    applyImport(l.mirror, plan);
    EXPECT_EQ(l.mirrorRows(), (QStringList{QStringLiteral("16/11/2026 1 09:00-"),
                                           QStringLiteral("17/11/2026 1 09:00-13:00"),
                                           QStringLiteral("17/11/2026 2 14:00-18:00")}));
    const QString summary = importSummary(plan).join('\n');
    EXPECT_TRUE(summary.contains(QStringLiteral("16/11: check-out missing")))
        << summary.toStdString();
    EXPECT_TRUE(summary.contains(QStringLiteral("17/11: check-in missing; no pair to lay on")))
        << summary.toStdString();
}

TEST(PunchPlan, ASplitNightThatMakesASeventhPairFlagsTheDay) {
    Laid l;
    const QDate mon(2026, 11, 16);
    QVector<PunchPair> six;
    for (int h = 0; h < 5; ++h) six.append({at(mon, 8 + 2 * h, 0), at(mon, 9 + 2 * h, 0)});
    six.append({at(mon, 21, 0), at(mon.addDays(1), 2, 0)});
    const ImportPlan plan = planImport(l.days, {day(mon, six)});
    ASSERT_EQ(plan.days.size(), 1);
    EXPECT_EQ(plan.days[0].pairs.size(), 6);
    EXPECT_TRUE(plan.days[0].flags.testFlag(DayFlag::MoreThanSixPairs));
}

TEST(PunchPlan, WorkingDaysAfterTheBusinessDateAreNotOffered) {
    Laid l;
    const ImportPlan plan = planImport(l.days, {}, QDate(2026, 11, 16));
    EXPECT_EQ(plan.workingDaysWithoutPunches, QVector<QDate>{QDate(2026, 11, 16)});
}

TEST(PunchPlan, DaysTickedAbsentLoseTheirPairs) {
    Laid l;
    markDaysAbsent(l.days, l.mirror, {QDate(2026, 11, 17)});
    EXPECT_EQ(l.days.TextMatrix(2, rules::daycol::Type), QStringLiteral("A"));
    EXPECT_EQ(l.days.TextMatrix(1, rules::daycol::Type), QStringLiteral("P"));
    EXPECT_EQ(l.mirrorRows(), (QStringList{QStringLiteral("16/11/2026 1 09:00-13:00"),
                                           QStringLiteral("16/11/2026 2 14:00-18:00")}));
}

// ---- The entry form and the demo's time-clock log --------------------------------------------

class FormPunches : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(dir.isValid());
        file = dir.filePath(QStringLiteral("punches.txt"));
        demo::writeDemoPunches(t.db, QDate(2026, 11, 21), file);
        msgbox_testing::clear();
        msgbox_testing::setAutoAnswer(true);
        gstrEntryMode = QStringLiteral("N");
        frmPunchSummary::setTestAnswer([this](frmPunchSummary& s) {
            summary = s.txtSummary->toPlainText();
            offered.clear();
            for (int i = 0; i < s.lstNoPunchDays->count(); ++i)
                offered << s.lstNoPunchDays->item(i)->text();
            if (tick >= 0 && tick < s.lstNoPunchDays->count())
                s.lstNoPunchDays->item(tick)->setCheckState(Qt::Checked);
            s.accept();
        });
        form.Form_Load();
        msgbox_testing::clear();
    }
    void TearDown() override {
        frmPunchSummary::setTestAnswer({});
        msgbox_testing::setAutoAnswer(false);
        msgbox_testing::clear();
    }
    void chooseAndPopulate(qint32 employee) {
        const int index = form.cboEmpname->findData(employee);
        ASSERT_GE(index, 0);
        form.cboEmpname->setCurrentIndex(index);
        form.cmdPopulateRecords_Click();
        msgbox_testing::clear();
        ASSERT_GT(form.mfgAttendance->Rows(), 1);
    }
    int rowOf(QDate d) const {
        for (int r = 1; r < form.mfgAttendance->Rows(); ++r)
            if (form.mfgAttendance->TextMatrix(r, rules::daycol::Date) == dateText(d)) return r;
        return -1;
    }
    QStringList pairsOf(QDate d) const {
        QStringList out;
        for (int r = 1; r < form.mfgMirrorGrid->Rows(); ++r)
            if (form.mfgMirrorGrid->TextMatrix(r, 0) == dateText(d))
                out << form.mfgMirrorGrid->TextMatrix(r, 2) + QLatin1Char('-') +
                           form.mfgMirrorGrid->TextMatrix(r, 3);
        return out;
    }
    QString worked(QDate d) const {
        return form.mfgAttendance->TextMatrix(rowOf(d), rules::daycol::WorkedHours);
    }

    TestDb t{true};
    QTemporaryDir dir;
    QString file;
    frmEmployeeDailyAttendance form;
    QString summary;
    QStringList offered;
    int tick = -1;
};

const QDate kFirstWorkingDay(2026, 11, 2);  // Monday
const QDate kNight(2026, 11, 4);            // E0003 was on leave on 2 and 3 November

TEST_F(FormPunches, TheNightShiftLandsOnItsDayWithItsHoursAndTheOtherDaysHaveTheirPunches) {
    chooseAndPopulate(3);  // E0003 worked the night of 4 November
    ASSERT_EQ(pairsOf(kNight),
              (QStringList{QStringLiteral("09:00-13:00"), QStringLiteral("14:00-18:00")}));
    ASSERT_TRUE(form.fnImportPunches(file));
    EXPECT_TRUE(msgbox_testing::shown().isEmpty());
    EXPECT_EQ(pairsOf(kNight),
              (QStringList{QStringLiteral("00:00-06:05"), QStringLiteral("21:50-23:59")}));
    EXPECT_EQ(worked(kNight), QStringLiteral("08:14"));  // 8:15 at the clock, a day ends at 23:59
    EXPECT_TRUE(summary.contains(QStringLiteral("04/11: night shift"))) << summary.toStdString();
    // The morning after is an ordinary day of its own punches.
    const QStringList next = pairsOf(kNight.addDays(1));
    ASSERT_EQ(next.size(), 2);
    EXPECT_NE(next, (QStringList{QStringLiteral("09:00-13:00"), QStringLiteral("14:00-18:00")}));
    // The business date has no punches yet: offered, not marked. Later days are not offered.
    EXPECT_EQ(offered, QStringList{QStringLiteral("21/11/2026 Sat")});
    EXPECT_EQ(form.mfgAttendance->TextMatrix(rowOf(QDate(2026, 11, 21)), rules::daycol::Type),
              QStringLiteral("P"));
    EXPECT_EQ(form.mfgAttendance->TextMatrix(rowOf(QDate(2026, 11, 23)), rules::daycol::Type),
              QStringLiteral("P"));
}

TEST_F(FormPunches, AForgottenCheckOutIsFlaggedAndKeptEmptyForTheClerk) {
    chooseAndPopulate(2);  // E0002 left without punching out on 2 November
    ASSERT_TRUE(form.fnImportPunches(file));
    const QStringList pairs = pairsOf(kFirstWorkingDay);
    ASSERT_EQ(pairs.size(), 2);
    EXPECT_TRUE(pairs[1].endsWith(QLatin1Char('-'))) << pairs.join(',').toStdString();
    EXPECT_TRUE(summary.contains(QStringLiteral("02/11: check-out missing")))
        << summary.toStdString();
    EXPECT_EQ(form.mfgAttendance->TextMatrix(rowOf(kFirstWorkingDay), rules::daycol::Type),
              QStringLiteral("P"));
}

TEST_F(FormPunches, ADoubleTapCountsOnceAndPunchesWithoutDirectionAlternate) {
    chooseAndPopulate(1);  // E0001 pressed twice on 2 November
    ASSERT_TRUE(form.fnImportPunches(file));
    EXPECT_EQ(pairsOf(kFirstWorkingDay).size(), 2);
    EXPECT_TRUE(summary.contains(QStringLiteral("1 repeated punch dropped")))
        << summary.toStdString();
}

TEST_F(FormPunches, ATickedDayWithoutPunchesBecomesAbsentAndCounts) {
    chooseAndPopulate(4);
    tick = 0;
    const QString absentBefore = form.txtNoAbsent->text();
    ASSERT_TRUE(form.fnImportPunches(file));
    ASSERT_FALSE(offered.isEmpty());
    const QDate first = QDate::fromString(offered.first().left(10), QStringLiteral("dd/MM/yyyy"));
    EXPECT_EQ(form.mfgAttendance->TextMatrix(rowOf(first), rules::daycol::Type),
              QStringLiteral("A"));
    EXPECT_TRUE(pairsOf(first).isEmpty());
    EXPECT_EQ(form.txtNoAbsent->text().toDouble(), absentBefore.toDouble() + 1);
    // E0004's clock gave no direction on 2 November: alternate in, out.
    EXPECT_EQ(pairsOf(kFirstWorkingDay).size(), 2);
}

TEST_F(FormPunches, ImportedTimesAreSavedAsTypedOnes) {
    chooseAndPopulate(3);
    ASSERT_TRUE(form.fnImportPunches(file));
    form.cmdOK_Click();
    ASSERT_TRUE(form.saved()) << (msgbox_testing::shown().isEmpty()
                                      ? ""
                                      : msgbox_testing::shown().last().text.toStdString());
    const qint32 id = t.scalar("select max(eaID) from pEmployeeAttendence").toInt();
    const QList<QVariantList> lines = t.rows(
        QStringLiteral(
            "select eadCheckIN,eadCheckOut from pEmpAttendanceDetail where eadAttendanceID=%1 "
            "and eadDate='2026-11-04' order by eadDetailID")
            .arg(id));
    ASSERT_EQ(lines.size(), 2);
    EXPECT_EQ(lines[0][0].toString(), QStringLiteral("00:00:00"));
    EXPECT_EQ(lines[0][1].toString(), QStringLiteral("06:05:00"));
    EXPECT_EQ(lines[1][0].toString(), QStringLiteral("21:50:00"));
    EXPECT_EQ(lines[1][1].toString(), QStringLiteral("23:59:00"));
}

TEST_F(FormPunches, AClaimStaysOnADayWhoseTimesStayAndIsWithdrawnWithAWordWhereTheyChange) {
    chooseAndPopulate(3);
    FlexGridModel& days = *form.mfgAttendance->flexModel();
    // Claims made before the import: on 5 November (the clock changes its times) and on
    // 23 November (no punches yet: its laid-out times stay).
    for (const QDate d : {QDate(2026, 11, 5), QDate(2026, 11, 23)}) {
        days.setTextMatrix(rowOf(d), rules::daycol::AllowanceType, QStringLiteral("A"));
        days.setTextMatrix(rowOf(d), rules::daycol::Hours, QStringLiteral("01:00"));
    }
    ASSERT_TRUE(form.fnImportPunches(file));
    EXPECT_EQ(days.TextMatrix(rowOf(QDate(2026, 11, 5)), rules::daycol::AllowanceType), QString());
    EXPECT_EQ(days.TextMatrix(rowOf(QDate(2026, 11, 23)), rules::daycol::AllowanceType),
              QStringLiteral("A"));
    EXPECT_EQ(days.TextMatrix(rowOf(QDate(2026, 11, 23)), rules::daycol::Hours),
              QStringLiteral("01:00"));
    EXPECT_TRUE(summary.contains(
        QStringLiteral("05/11: allowance 01:00 withdrawn, the day's times changed")))
        << summary.toStdString();
    EXPECT_FALSE(summary.contains(QStringLiteral("23/11: allowance"))) << summary.toStdString();
}

TEST_F(FormPunches, ThePunchesGoOntoThePopulatedDaysWhateverThePeriodBoxesSayNow) {
    chooseAndPopulate(3);
    const QStringList laidOut = pairsOf(QDate(2026, 11, 20));
    form.dtpEndDate->setDate(QDate(2026, 11, 15));  // changed after Populate, not populated
    ASSERT_TRUE(form.fnImportPunches(file));
    EXPECT_NE(pairsOf(QDate(2026, 11, 20)), laidOut);
    EXPECT_FALSE(offered.contains(QStringLiteral("20/11/2026 Fri")));
}

TEST_F(FormPunches, PunchesOfAnotherMonthLayNothingOn) {
    chooseAndPopulate(5);
    const QString october = dir.filePath(QStringLiteral("october.txt"));
    {
        QFile f(october);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write(
            "    E0005\t2026-10-05 09:00:00\t1\t0\t0\t0\n    E0005\t2026-10-05 "
            "17:00:00\t1\t1\t0\t0\n");
    }
    const QString before = qz2test::formSnapshot(form);
    EXPECT_FALSE(form.fnImportPunches(october));
    ASSERT_EQ(msgbox_testing::shown().size(), 1);
    EXPECT_TRUE(
        msgbox_testing::shown().first().text.startsWith(QStringLiteral("None of the punches of ")))
        << msgbox_testing::shown().first().text.toStdString();
    EXPECT_EQ(qz2test::formSnapshot(form), before);
    EXPECT_TRUE(summary.isEmpty());  // no summary: nothing happened
}

TEST_F(FormPunches, RefusalsChangeNothing) {
    // Before Populate.
    const int index = form.cboEmpname->findData(5);
    ASSERT_GE(index, 0);
    form.cboEmpname->setCurrentIndex(index);
    msgbox_testing::clear();
    EXPECT_FALSE(form.fnImportPunches(file));
    ASSERT_EQ(msgbox_testing::shown().size(), 1);
    EXPECT_TRUE(msgbox_testing::shown().first().text.startsWith(
        QStringLiteral("Populate the period first")));
    form.cmdPopulateRecords_Click();
    msgbox_testing::clear();
    const QString before = qz2test::formSnapshot(form);
    // A file that is no punch file.
    const QString pdf = dir.filePath(QStringLiteral("report.pdf"));
    {
        QFile f(pdf);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write("%PDF-1.4\n%\xe2\xe3\xcf\xd3\n1 0 obj\n<<>>\nendobj\n");
    }
    EXPECT_FALSE(form.fnImportPunches(pdf));
    ASSERT_EQ(msgbox_testing::shown().size(), 1);
    msgbox_testing::clear();
    // A log without this employee's punches.
    const QString others = dir.filePath(QStringLiteral("others.txt"));
    {
        QFile f(others);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write(
            "    E0001\t2026-11-02 09:00:00\t1\t0\t0\t0\n    E0001\t2026-11-02 "
            "13:00:00\t1\t1\t0\t0\n");
    }
    EXPECT_FALSE(form.fnImportPunches(others));
    ASSERT_EQ(msgbox_testing::shown().size(), 1);
    EXPECT_TRUE(msgbox_testing::shown().first().text.startsWith(
        QStringLiteral("The file has no punches of ")));
    EXPECT_EQ(qz2test::formSnapshot(form), before);
}

}  // namespace

// The pictures of the form after an import and of its summary in docs/ (run only when
// asked, see README).
TEST(PunchesScreenshot, TheFormAfterImportingTheDemosPunches) {
    const QByteArray out = qgetenv("QZ2_SCREENSHOT_DIR");
    if (out.isEmpty()) GTEST_SKIP() << "set QZ2_SCREENSHOT_DIR to write the pictures";
    TestDb demoDb(true);
    QTemporaryDir dir;
    const QString file = dir.filePath(QStringLiteral("punches.txt"));
    demo::writeDemoPunches(demoDb.db, QDate(2026, 11, 21), file);
    msgbox_testing::setAutoAnswer(true);
    gstrEntryMode = QStringLiteral("N");
    frmEmployeeDailyAttendance form;
    form.Form_Load();
    form.cboEmpname->setCurrentIndex(form.cboEmpname->findData(3));
    form.cmdPopulateRecords_Click();
    form.resize(1180, 720);
    form.show();
    frmPunchSummary::setTestAnswer([&out](frmPunchSummary& s) {
        s.resize(700, 420);
        s.show();
        s.lstNoPunchDays->item(0)->setCheckState(Qt::Checked);
        EXPECT_TRUE(
            s.grab().save(QString::fromLocal8Bit(out) + QStringLiteral("/punch-summary.png")));
        s.reject();
    });
    ASSERT_TRUE(form.fnImportPunches(file));
    frmPunchSummary::setTestAnswer({});
    for (int r = 1; r < form.mfgAttendance->Rows(); ++r)
        if (form.mfgAttendance->TextMatrix(r, rules::daycol::Date) == QStringLiteral("04/11/2026"))
            form.mfgAttendance->setCurrentCell(r, rules::daycol::Date);
    EXPECT_TRUE(form.grab().save(QString::fromLocal8Bit(out) + QStringLiteral("/punches.png")));
    msgbox_testing::setAutoAnswer(false);
}
