// The entry form's work-time schedule: Schedule Hours from the newest setting, the day's
// pairs and the grace start from the entry's own, the weekday working hours, and the
// per-form statement cache.

#include <gtest/gtest.h>

#include <QComboBox>

#include "TestSupport.h"
#include "db/Database.h"
#include "entry/EntryRules.h"
#include "entry/EntrySql.h"
#include "entry/frmEmployeeDailyAttendance.h"
#include "rules/Hours.h"
#include "rules/Population.h"
#include "shared/BasAttendence.h"
#include "shared/FlexGrid.h"
#include "shared/MsgBox.h"

using namespace qz2;
using qz2test::TestDb;

namespace {

// 2026-11-01 is a Sunday: rows 1..7 of the day grid are Sunday..Saturday.
const QDate kSunday(2026, 11, 1);

struct ScheduleFixture : ::testing::Test {
    void SetUp() override {
        gstrEntryMode = QStringLiteral("N");
        msgbox_testing::clear();
        msgbox_testing::setAutoAnswer(true);
        t.exec("insert into pSettings(companyid,gracetime) values(1,10)");
        t.exec("insert into pDepartment values(1,1,'Production'),(2,1,'Sales')");
        t.exec(
            "insert into pEmployee(eEmpID,eCompanyID,eEmpNo,eName,eActive,eDeptID,eDateofjoin) "
            "values"
            "(1,1,'E1','Anna Abbott',1,1,'2015-01-01'),(2,1,'E2','Bert Baker',1,2,'2015-01-01')");
        t.exec(
            "insert into pCalenderHeader(companyid,CalenderID,financialid) "
            "values(1,1,2026),(1,2,2027)");
        t.exec("insert into pCalendarWTSheader(cwtsCompanyID,cwtsid) values(1,1),(1,2)");
        line(1, 2, "'09:00:00','13:00:00','14:00:00','18:00:00',NULL,NULL,NULL,NULL");  // Monday
        line(1, 3, "'09:00:00','13:00:00','14:00:00',NULL,NULL,NULL,NULL,NULL");        // Tuesday
        line(1, 4, "NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL");                          // Wednesday
        line(1, 6, "'08:00:00','12:00:00',NULL,NULL,'13:00:00','15:00:00',NULL,NULL");  // Friday
        line(1, 7, "'00:00:00','23:00:00','10:00:00','11:30:00',NULL,NULL,NULL,NULL");  // Saturday
        // A newer setting with a shorter Monday only.
        line(2, 2, "'08:00:00','12:00:00',NULL,NULL,NULL,NULL,NULL,NULL");
    }
    void TearDown() override { msgbox_testing::setAutoAnswer(false); }

    void line(int setting, int day, const char* pairs) {
        t.exec(QStringLiteral("insert into pCalendarWorkTimeSettings values(1,%1,%2,%3)")
                   .arg(setting)
                   .arg(day)
                   .arg(QString::fromLatin1(pairs)));
    }
    // Loads the form for Anna and, as an entry opened for edit would, pins the entry's
    // own work-time setting.
    void loadWithEntrySetting(qint32 setting) {
        form.Form_Load();
        form.lngWorkTimeSettingID = setting;
    }
    void weekRows() {
        form.mfgAttendance->setRows(8);
        for (int i = 0; i < 7; ++i)
            form.mfgAttendance->setTextMatrix(i + 1, 1, dateText(kSunday.addDays(i)));
    }
    QStringList scheduleColumn() const {
        QStringList out;
        for (int r = 1; r < form.mfgAttendance->Rows(); ++r)
            out << form.mfgAttendance->TextMatrix(r, 4);
        return out;
    }

    TestDb t;
    frmEmployeeDailyAttendance form;
};

QString hhmm(TimeValue v) {
    return v.format(u"HH:mm");
}

}  // namespace

TEST_F(ScheduleFixture, ScheduleHoursOfEveryWeekdayFromTheNewestSetting) {
    loadWithEntrySetting(1);
    weekRows();
    for (qint16 r = 1; r <= 7; ++r) form.fnCalculateScheduleHours(kSunday.addDays(r - 1), r);
    // Sunday and Thursday have no line, Wednesday's pairs are all NULL, Tuesday's second
    // pair has no check-out, Friday skips pair 2, Saturday's 24:30 wraps to 00:30; Monday
    // follows the newer setting (08:00-12:00) rather than the entry's.
    EXPECT_EQ(scheduleColumn(),
              QStringList({"00:00", "04:00", "04:00", "00:00", "00:00", "06:00", "00:30"}));
}

TEST_F(ScheduleFixture, WithoutANewerSettingMondayHasTheEntrysEightHours) {
    t.exec("delete from pCalendarWorkTimeSettings where cwtsid=2");
    loadWithEntrySetting(1);
    weekRows();
    form.fnCalculateScheduleHours(kSunday.addDays(1), 2);
    EXPECT_EQ(form.mfgAttendance->TextMatrix(2, 4), QStringLiteral("08:00"));
}

TEST_F(ScheduleFixture, TheDaysPairsFollowTheEntrysSetting) {
    loadWithEntrySetting(1);
    const auto monday = form.fnDaySchedule(kSunday.addDays(1));
    ASSERT_TRUE(monday.has_value());
    const QVector<entry::ScheduledPair> pairs = entry::completePairs(*monday);
    ASSERT_EQ(pairs.size(), 2);
    EXPECT_EQ(hhmm(pairs[0].checkIn), QStringLiteral("09:00"));
    EXPECT_EQ(hhmm(pairs[1].checkOut), QStringLiteral("18:00"));
    // A check-in without its check-out is no pair.
    EXPECT_EQ(entry::completePairs(*form.fnDaySchedule(kSunday.addDays(2))).size(), 1);
    // Pairs 1 and 3 only: two pairs.
    const QVector<entry::ScheduledPair> friday =
        entry::completePairs(*form.fnDaySchedule(kSunday.addDays(5)));
    ASSERT_EQ(friday.size(), 2);
    EXPECT_EQ(hhmm(friday[1].checkIn), QStringLiteral("13:00"));
    EXPECT_TRUE(form.fnDaySchedule(kSunday.addDays(3))->checkIn[0] == std::nullopt);
    EXPECT_FALSE(form.fnDaySchedule(kSunday.addDays(4)).has_value());  // Thursday: no line
    EXPECT_FALSE(form.fnDaySchedule(kSunday).has_value());
}

TEST_F(ScheduleFixture, TheGraceStartFollowsTheEntrysSetting) {
    loadWithEntrySetting(1);
    EXPECT_EQ(hhmm(form.fnCheckGraceTime(kSunday.addDays(1))),
              QStringLiteral("09:00"));  // not the newer 08:00
    EXPECT_EQ(hhmm(form.fnCheckGraceTime(kSunday.addDays(5))), QStringLiteral("08:00"));
    EXPECT_EQ(form.fnCheckGraceTime(kSunday.addDays(3)),
              TimeValue());  // NULL first check-in: midnight
    EXPECT_EQ(form.fnCheckGraceTime(kSunday.addDays(4)), TimeValue());  // no line: midnight
    form.lngWorkTimeSettingID = 2;
    EXPECT_EQ(hhmm(form.fnCheckGraceTime(kSunday.addDays(1))), QStringLiteral("08:00"));
}

TEST_F(ScheduleFixture, TheGraceRuleOnTheFormsValues) {
    loadWithEntrySetting(1);
    ASSERT_EQ(form.intGraceTime, 10);
    const TimeValue start = form.fnCheckGraceTime(kSunday.addDays(1));
    auto counted = [&](const char* in) {
        return hhmm(rules::effectiveCheckIn(*parseTime(QString::fromLatin1(in)), start,
                                                form.intGraceTime));
    };
    EXPECT_EQ(counted("09:00"), QStringLiteral("09:00"));
    EXPECT_EQ(counted("09:05"), QStringLiteral("09:00"));
    EXPECT_EQ(counted("09:10"), QStringLiteral("09:00"));
    EXPECT_EQ(counted("09:11"), QStringLiteral("09:11"));
    EXPECT_EQ(counted("08:55"), QStringLiteral("08:55"));
}

TEST_F(ScheduleFixture, WeekdayWorkingHoursFromTheProcedure) {
    loadWithEntrySetting(1);
    weekRows();
    form.mfgAttendance->setRows(9);  // a row without a date is left alone
    form.mfgAttendance->setTextMatrix(8, 4, QStringLiteral("keep"));
    form.fnLoadWeekdayWorkingHours();
    EXPECT_EQ(form.weekdayWorkingHours[2].format(u"HH:mm"), QStringLiteral("04:00"));
    form.fnAddScheduleHours();
    // The default text of a time (with seconds), not "hh:mm".
    EXPECT_EQ(scheduleColumn(), QStringList({"00:00:00", "04:00:00", "04:00:00", "00:00:00",
                                             "00:00:00", "06:00:00", "00:30:00", "keep"}));
}

TEST_F(ScheduleFixture, SevenCallsAreMadeOnceEach) {
    loadWithEntrySetting(1);
    const qint64 before = db::statementCount();
    form.fnLoadWeekdayWorkingHours();
    EXPECT_EQ(db::statementCount() - before, 7);
    form.fnLoadWeekdayWorkingHours();
    EXPECT_EQ(db::statementCount() - before, 7);
}

TEST_F(ScheduleFixture, ADayWithoutAnEnglishNameFindsNoSchedule) {
    loadWithEntrySetting(1);
    weekRows();
    form.mfgAttendance->setTextMatrix(2, 4, QStringLiteral("xx"));
    // No date gives no day name and so day number 0, as a foreign day name would.
    form.fnCalculateScheduleHours(QDate(), 2);
    EXPECT_EQ(form.mfgAttendance->TextMatrix(2, 4), QStringLiteral("00:00"));
    EXPECT_FALSE(form.fnDaySchedule(QDate()).has_value());
    EXPECT_EQ(form.fnCheckGraceTime(QDate()), TimeValue());
    const QLocale french(QLocale::French, QLocale::France);
    EXPECT_EQ(entry::fnDayIDFromName(french.toString(kSunday.addDays(1), QStringLiteral("ddd"))),
              0);
}

TEST_F(ScheduleFixture, EachStatementIsAskedOnceForAThirtyOneDayMonth) {
    loadWithEntrySetting(1);
    const QDate first(2026, 12, 1);
    form.mfgAttendance->setRows(32);
    const qint64 before = db::statementCount();
    for (int i = 0; i < 31; ++i) {
        const QDate day = first.addDays(i);
        form.mfgAttendance->setTextMatrix(i + 1, 1, dateText(day));
        form.fnDaySchedule(day);
        form.fnCalculateScheduleHours(day, static_cast<qint16>(i + 1));
        form.fnCheckGraceTime(day);
        form.fnCheckGraceTime(day);  // a second check-in of the day
    }
    // Seven weekdays, three statements each, instead of 31 x 4.
    EXPECT_EQ(db::statementCount() - before, 21);
    EXPECT_EQ(form.statementCache().size(), 21);
    for (int i = 0; i < 31; ++i)
        form.fnCalculateScheduleHours(first.addDays(i), static_cast<qint16>(i + 1));
    EXPECT_EQ(db::statementCount() - before, 21);
}

TEST_F(ScheduleFixture, CachedResultsEqualTheStatementsAskedEveryTime) {
    loadWithEntrySetting(1);
    const QDate first(2026, 12, 1);
    form.mfgAttendance->setRows(32);
    for (int i = 0; i < 31; ++i) {
        const QDate day = first.addDays(i);
        form.fnCalculateScheduleHours(day, static_cast<qint16>(i + 1));
        const qint16 id = entry::fnGetDayID(day);
        // The literal algorithm: every statement run afresh for the day.
        db::Recordset newest =
            db::openRecordset(t.db, entry::sql::newestDayScheduleQuery(db::Dialect::of(t.db), id, 1,
                                                                       form.strWorkTimeCondition));
        const TimeValue hours =
            newest.eof() ? TimeValue() : rules::scheduledHours(entry::toDaySchedule(entry::scheduleLineFrom(newest)));
        EXPECT_EQ(form.mfgAttendance->TextMatrix(i + 1, 4), hours.format(u"hh:mm")) << i;

        db::Recordset own = db::openRecordset(
            t.db, entry::sql::dayScheduleQuery(id, 1, 1, form.strWorkTimeCondition));
        const auto cached = form.fnDaySchedule(day);
        ASSERT_EQ(cached.has_value(), !own.eof()) << i;
        if (cached) {
            const auto a = entry::completePairs(*cached);
            const auto b = entry::completePairs(entry::scheduleLineFrom(own));
            ASSERT_EQ(a.size(), b.size()) << i;
            for (int p = 0; p < a.size(); ++p) {
                EXPECT_EQ(a[p].checkIn, b[p].checkIn);
                EXPECT_EQ(a[p].checkOut, b[p].checkOut);
            }
        }

        const QVariant start =
            t.scalar(entry::sql::firstCheckInQuery(id, 1, 1, form.strWorkTimeCondition));
        const TimeValue expected = start.isNull() ? TimeValue() : *parseTime(start.toString());
        EXPECT_EQ(form.fnCheckGraceTime(day), expected) << i;
    }
}

TEST_F(ScheduleFixture, ChoosingAnotherEmployeeEmptiesTheCache) {
    loadWithEntrySetting(1);
    form.fnCalculateScheduleHours(kSunday, 1);
    form.fnCheckGraceTime(kSunday);
    EXPECT_EQ(form.statementCache().size(), 2);
    form.cboEmpname->setCurrentIndex(form.cboEmpname->findData(2));
    EXPECT_EQ(form.lngEmployeeID, 2);
    EXPECT_EQ(form.statementCache().size(), 0);
    // A setting changed in the database in between is seen by the next employee.
    t.exec(
        "update pCalendarWorkTimeSettings set cwtsCheckOut1='10:00:00' where cwtsid=2 and "
        "cwtsDayID=2");
    form.mfgAttendance->setRows(2);
    form.fnCalculateScheduleHours(kSunday.addDays(1), 1);
    EXPECT_EQ(form.mfgAttendance->TextMatrix(1, 4), QStringLiteral("02:00"));
}

TEST_F(ScheduleFixture, DepartmentWiseWorkTimeOnAndOff) {
    t.exec("insert into pCalendarWTSheader(cwtsCompanyID,cwtsid,cwtsdepartmentid) values(1,3,2)");
    t.exec("update pCalendarWTSheader set cwtsdepartmentid=1 where cwtsid=2");
    line(3, 2, "'10:00:00','12:00:00',NULL,NULL,NULL,NULL,NULL,NULL");
    const QDate monday = kSunday.addDays(1);

    // Off: the newest setting of the company, whoever the employee is.
    form.Form_Load();
    form.mfgAttendance->setRows(2);
    form.fnCalculateScheduleHours(monday, 1);
    EXPECT_EQ(form.mfgAttendance->TextMatrix(1, 4), QStringLiteral("02:00"));
    EXPECT_EQ(form.lngWorkTimeSettingID, 3);

    // On: each department's own newest setting.
    t.exec("update pSettings set cwtsdepwise=1");
    form.cboEmpname->setCurrentIndex(form.cboEmpname->findData(2));
    form.cboEmpname->setCurrentIndex(form.cboEmpname->findData(1));
    EXPECT_EQ(form.strWorkTimeCondition, QStringLiteral(" and cwtsdepartmentid=1"));
    EXPECT_EQ(form.lngWorkTimeSettingID, 2);
    form.mfgAttendance->setRows(2);
    form.fnCalculateScheduleHours(monday, 1);
    EXPECT_EQ(form.mfgAttendance->TextMatrix(1, 4), QStringLiteral("04:00"));
    EXPECT_EQ(hhmm(form.fnCheckGraceTime(monday)), QStringLiteral("08:00"));
    // Setting 1 has no department: under the condition it is nobody's.
    form.lngWorkTimeSettingID = 1;
    EXPECT_FALSE(form.fnDaySchedule(monday).has_value());

    form.cboEmpname->setCurrentIndex(form.cboEmpname->findData(2));
    EXPECT_EQ(form.lngWorkTimeSettingID, 3);
    form.mfgAttendance->setRows(2);
    form.fnCalculateScheduleHours(monday, 1);
    EXPECT_EQ(form.mfgAttendance->TextMatrix(1, 4), QStringLiteral("02:00"));
}

TEST_F(ScheduleFixture, FailingStatementsChangeNothing) {
    loadWithEntrySetting(1);
    weekRows();
    form.mfgAttendance->setTextMatrix(2, 4, QStringLiteral("07:45"));
    t.exec("drop table pCalendarWTSheader");
    form.fnCalculateScheduleHours(kSunday.addDays(1), 2);
    EXPECT_EQ(form.mfgAttendance->TextMatrix(2, 4), QStringLiteral("07:45"));
    EXPECT_EQ(form.fnCheckGraceTime(kSunday.addDays(1)), TimeValue());
    EXPECT_FALSE(form.fnDaySchedule(kSunday.addDays(1)).has_value());
    EXPECT_EQ(form.statementCache().size(), 0);  // failures are not kept
    EXPECT_TRUE(msgbox_testing::shown().isEmpty());
}
