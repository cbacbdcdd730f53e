// Date/time values: day numbering, formats, parsing, arithmetic and the hour sums that the
// attendance rules build on.
#include <gtest/gtest.h>

#include <QDateTime>
#include <QLocale>
#include <QVariant>

#include <limits>
#include <ostream>

#include "shared/TimeValue.h"

// Readable failure messages.
void PrintTo(const QString& s, std::ostream* os) { *os << '"' << s.toStdString() << '"'; }
void PrintTo(QDate d, std::ostream* os) { *os << d.toString(Qt::ISODate).toStdString(); }
void PrintTo(QTime t, std::ostream* os) { *os << t.toString(Qt::ISODateWithMs).toStdString(); }
namespace qz2 {
void PrintTo(const TimeValue& v, std::ostream* os) {
    *os << v.days() << " (" << v.toDefaultText().toStdString() << ")";
}
}  // namespace qz2

using qz2::TimeValue;

namespace {

TimeValue hm(int h, int m) { return TimeValue::fromHM(h, m); }

TimeValue timeText(const char* text) {
    const auto t = qz2::parseTime(QString::fromLatin1(text));
    EXPECT_TRUE(t.has_value()) << text;
    return t.value_or(TimeValue(-999.0));
}

TimeValue at(int y, int mo, int d, int h = 0, int mi = 0, int s = 0) {
    return TimeValue::fromDateTime(QDateTime(QDate(y, mo, d), QTime(h, mi, s)));
}

// Restores the default locale after a test that changes it.
class LocaleGuard {
public:
    LocaleGuard() : m_saved(QLocale()) {}
    ~LocaleGuard() { QLocale::setDefault(m_saved); }

private:
    QLocale m_saved;
};

}  // namespace

// ---- Day numbering --------------------------------------------------------------------

TEST(TimeValueDays, CountsFromTheThirtiethOfDecember1899) {
    const QDate zero(1899, 12, 30);
    EXPECT_EQ(TimeValue::fromDate(zero).days(), 0.0);
    EXPECT_EQ(TimeValue::fromDate(QDate(1900, 1, 1)).days(), 2.0);
    EXPECT_EQ(TimeValue::fromDate(QDate(2026, 11, 21)).days(), 46347.0);
    EXPECT_EQ(QDate(2026, 11, 21).toJulianDay() - zero.toJulianDay(), 46347);
    for (const QDate d : {QDate(1950, 6, 15), QDate(2000, 2, 29), QDate(2024, 12, 31)}) {
        EXPECT_EQ(TimeValue::fromDate(d).days(),
                  static_cast<double>(d.toJulianDay() - zero.toJulianDay()));
        EXPECT_EQ(TimeValue::fromDate(d).date(), d);
    }
    EXPECT_EQ(TimeValue(0.0).date(), zero);
}

TEST(TimeValueDays, TimeOfDayIsAFractionOfADay) {
    EXPECT_EQ(TimeValue::fromTime(QTime(9, 0)).days(), 0.375);
    EXPECT_EQ(TimeValue::fromTime(QTime(18, 0)).days(), 0.75);
    EXPECT_EQ(hm(9, 0).days(), 0.375);
    EXPECT_EQ(hm(6, 0).days(), 0.25);
    EXPECT_EQ(hm(9, 10), TimeValue::fromTime(QTime(9, 10)));
    EXPECT_EQ(hm(30, 0).days(), 1.25);
    EXPECT_EQ(TimeValue(0.375).timeOfDay(), QTime(9, 0));
    EXPECT_EQ(TimeValue(46347.75).timeOfDay(), QTime(18, 0));
    EXPECT_EQ(TimeValue(46347.75).date(), QDate(2026, 11, 21));
    EXPECT_EQ(TimeValue(0.5).hour(), 12);
    EXPECT_EQ(hm(7, 45).minute(), 45);
    EXPECT_EQ(hm(7, 45).hour(), 7);
}

TEST(TimeValueDays, DateTimeComposesDateAndTime) {
    EXPECT_EQ(at(2026, 11, 21, 18, 0).days(), 46347.75);
    EXPECT_EQ(at(2026, 11, 21, 9, 30), TimeValue::fromDate(QDate(2026, 11, 21)) + hm(9, 30));
    // Before day 0 the time of day is carried as a negative fraction.
    EXPECT_EQ(at(1899, 12, 29, 6, 0).days(), -1.25);
    EXPECT_EQ(at(1899, 12, 30, 9, 0).days(), 0.375);
}

TEST(TimeValueDays, NegativeValuesTruncateTheDayAndShowTheAbsoluteTime) {
    EXPECT_EQ(TimeValue(-0.375).timeOfDay(), QTime(9, 0));
    EXPECT_EQ(TimeValue(-0.375).date(), QDate(1899, 12, 30));
    EXPECT_EQ(TimeValue(-1.25).date(), QDate(1899, 12, 29));
    EXPECT_EQ(TimeValue(-1.25).timeOfDay(), QTime(6, 0));
    EXPECT_EQ(TimeValue(-2.0).date(), QDate(1899, 12, 28));
    EXPECT_EQ(TimeValue(-2.0).timeOfDay(), QTime(0, 0));
}

// ---- Rounding -------------------------------------------------------------------------

TEST(TimeValueRounding, RoundsToTheNearestSecondBeforeSplitting) {
    EXPECT_EQ(TimeValue(0.37499999999).timeOfDay(), QTime(9, 0));
    EXPECT_EQ(TimeValue(0.37499999999).format(u"hh:mm"), QStringLiteral("09:00"));
    EXPECT_EQ(TimeValue(-0.37499999999).format(u"hh:mm"), QStringLiteral("09:00"));

    // 23:59:59.6 on 21 Nov is 00:00:00 on 22 Nov.
    const TimeValue lateNight(46347.0 + (86399.6 / 86400.0));
    EXPECT_EQ(lateNight.timeOfDay(), QTime(0, 0, 0));
    EXPECT_EQ(lateNight.date(), QDate(2026, 11, 22));
    EXPECT_EQ(lateNight.format(u"dd/mm/yyyy"), QStringLiteral("22/11/2026"));

    // 23:59:59.4 stays on the same day.
    const TimeValue justBefore(46347.0 + (86399.4 / 86400.0));
    EXPECT_EQ(justBefore.timeOfDay(), QTime(23, 59, 59));
    EXPECT_EQ(justBefore.date(), QDate(2026, 11, 21));

    // Sub-second noise in sums of times does not move the minute.
    TimeValue sum;
    for (int i = 0; i < 10; ++i) sum = sum + TimeValue(0.1 / 24.0);  // ten times 6 minutes
    EXPECT_EQ(sum.format(u"hh:mm"), QStringLiteral("01:00"));
}

TEST(TimeValueRounding, MinutesAreNotRoundedUpBySeconds) {
    EXPECT_EQ(TimeValue::fromTime(QTime(9, 0, 59)).format(u"hh:mm"), QStringLiteral("09:00"));
    EXPECT_EQ(TimeValue(0.375 + 29.6 / 86400.0).timeOfDay(), QTime(9, 0, 30));
}

// ---- Formats --------------------------------------------------------------------------

TEST(TimeValueFormat, LowerCaseHourMinute) {
    EXPECT_EQ(hm(9, 5).format(u"hh:mm"), QStringLiteral("09:05"));
    EXPECT_EQ(hm(18, 30).format(u"hh:mm"), QStringLiteral("18:30"));
    EXPECT_EQ(at(2026, 11, 21, 7, 45).format(u"hh:mm"), QStringLiteral("07:45"));
    EXPECT_EQ(TimeValue(0.0).format(u"hh:mm"), QStringLiteral("00:00"));
}

TEST(TimeValueFormat, UpperCaseHourMinuteIsAlsoTwentyFourHour) {
    EXPECT_EQ(hm(9, 5).format(u"HH:mm"), QStringLiteral("09:05"));
    EXPECT_EQ(hm(23, 59).format(u"HH:mm"), QStringLiteral("23:59"));
    EXPECT_EQ(hm(13, 0).format(u"HH:mm"), QStringLiteral("13:00"));
}

TEST(TimeValueFormat, HourFullStopMinute) {
    EXPECT_EQ(hm(1, 30).format(u"hh.mm"), QStringLiteral("01.30"));
    EXPECT_EQ(hm(0, 45).format(u"hh.mm"), QStringLiteral("00.45"));
    EXPECT_EQ(TimeValue(0.0).format(u"hh.mm"), QStringLiteral("00.00"));
    EXPECT_EQ(hm(17, 5).format(u"hh.mm"), QStringLiteral("17.05"));
}

TEST(TimeValueFormat, DayMonthYear) {
    EXPECT_EQ(at(2026, 1, 5).format(u"dd/mm/yyyy"), QStringLiteral("05/01/2026"));
    EXPECT_EQ(at(2026, 11, 21, 9, 30).format(u"dd/mm/yyyy"), QStringLiteral("21/11/2026"));
    EXPECT_EQ(TimeValue(0.0).format(u"dd/mm/yyyy"), QStringLiteral("30/12/1899"));
}

TEST(TimeValueFormat, CompactDate) {
    EXPECT_EQ(at(2026, 3, 7).format(u"yyyymmdd"), QStringLiteral("20260307"));
    EXPECT_EQ(at(2026, 3, 7, 23, 0).format(u"YYYYMMDD"), QStringLiteral("20260307"));
    EXPECT_EQ(at(2024, 12, 31).format(u"yyyymmdd"), QStringLiteral("20241231"));
}

TEST(TimeValueFormat, YearMonthDaySlashes) {
    EXPECT_EQ(at(2026, 3, 7).format(u"yyyy/mm/dd"), QStringLiteral("2026/03/07"));
    EXPECT_EQ(at(2024, 10, 19, 12, 0).format(u"yyyy/mm/dd"), QStringLiteral("2024/10/19"));
}

TEST(TimeValueFormat, MonthDayYear) {
    EXPECT_EQ(at(2026, 3, 7).format(u"mm/dd/yyyy"), QStringLiteral("03/07/2026"));
    EXPECT_EQ(at(2026, 12, 25).format(u"mm/dd/yyyy"), QStringLiteral("12/25/2026"));
}

TEST(TimeValueFormat, IsoDate) {
    EXPECT_EQ(at(2026, 3, 7).format(u"yyyy-mm-dd"), QStringLiteral("2026-03-07"));
    EXPECT_EQ(at(2026, 11, 21, 18, 0).format(u"yyyy-mm-dd"), QStringLiteral("2026-11-21"));
}

TEST(TimeValueFormat, ShortDayNamesForAWholeWeek) {
    const char* expected[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    const QDate sunday(2026, 11, 22);
    for (int i = 0; i < 7; ++i) {
        const QDate d = sunday.addDays(i);
        EXPECT_EQ(TimeValue::fromDate(d).format(u"ddd"), QString::fromLatin1(expected[i])) << i;
        EXPECT_EQ(qz2::shortDayName(d), QString::fromLatin1(expected[i])) << i;
    }
}

TEST(TimeValueFormat, ShortDayNamesIgnoreTheLocale) {
    LocaleGuard guard;
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    EXPECT_EQ(qz2::shortDayName(QDate(2026, 11, 22)), QStringLiteral("Sun"));
    EXPECT_EQ(qz2::shortDayName(QDate(2026, 11, 25)), QStringLiteral("Wed"));
    QLocale::setDefault(QLocale(QLocale::French, QLocale::France));
    EXPECT_EQ(TimeValue::fromDate(QDate(2026, 11, 28)).format(u"ddd"), QStringLiteral("Sat"));
    EXPECT_EQ(at(2026, 11, 28).format(u"dd/mm/yyyy"), QStringLiteral("28/11/2026"));
}

TEST(TimeValueFormat, UnknownPatternGivesTheDefaultText) {
    EXPECT_EQ(at(2026, 11, 21, 9, 30).format(u"dddd mmmm"), QStringLiteral("21/11/2026 09:30:00"));
    EXPECT_EQ(hm(9, 30).format(u"nonsense"), QStringLiteral("09:30:00"));
    EXPECT_EQ(at(2026, 11, 21).format(u""), QStringLiteral("21/11/2026"));
}

TEST(TimeValueFormat, DefaultText) {
    EXPECT_EQ(at(2026, 11, 21).toDefaultText(), QStringLiteral("21/11/2026"));
    EXPECT_EQ(hm(9, 5).toDefaultText(), QStringLiteral("09:05:00"));
    EXPECT_EQ(TimeValue::fromTime(QTime(17, 4, 3)).toDefaultText(), QStringLiteral("17:04:03"));
    EXPECT_EQ(at(2026, 11, 21, 18, 0, 5).toDefaultText(), QStringLiteral("21/11/2026 18:00:05"));
    EXPECT_EQ(TimeValue(0.0).toDefaultText(), QStringLiteral("00:00:00"));
    EXPECT_EQ(TimeValue(-0.375).toDefaultText(), QStringLiteral("09:00:00"));
    EXPECT_EQ(TimeValue(-1.25).toDefaultText(), QStringLiteral("29/12/1899 06:00:00"));
}

TEST(TimeValueFormat, ValuesThatAreNoDateShowNothing) {
    EXPECT_TRUE(TimeValue(std::numeric_limits<double>::quiet_NaN()).format(u"hh:mm").isEmpty());
    EXPECT_TRUE(TimeValue(std::numeric_limits<double>::infinity()).toDefaultText().isEmpty());
    EXPECT_FALSE(TimeValue(1.0e300).date().isValid());
}

// ---- Negative differences and totals --------------------------------------------------

TEST(TimeValueHours, NegativeDifferencesShowTheirSize) {
    EXPECT_EQ((hm(8, 0) - hm(9, 30)).format(u"hh.mm"), QStringLiteral("01.30"));
    EXPECT_EQ((hm(8, 0) - hm(9, 30)).format(u"HH:mm"), QStringLiteral("01:30"));
    EXPECT_EQ((TimeValue() - hm(9, 0)).format(u"hh:mm"), QStringLiteral("09:00"));
    EXPECT_EQ((hm(13, 0) - hm(17, 45)).format(u"hh:mm"), QStringLiteral("04:45"));
    EXPECT_LT((hm(8, 0) - hm(9, 30)).days(), 0.0);
}

TEST(TimeValueHours, TotalsOfADayOrMoreWrapRound) {
    EXPECT_EQ(hm(24, 30).format(u"hh:mm"), QStringLiteral("00:30"));
    EXPECT_EQ(TimeValue(1.0208333).timeOfDay(), QTime(0, 30));
    EXPECT_EQ((hm(9, 0) + hm(9, 0) + hm(9, 0)).format(u"hh:mm"), QStringLiteral("03:00"));
    EXPECT_EQ(hm(24, 0).format(u"HH:mm"), QStringLiteral("00:00"));
    EXPECT_EQ(hm(49, 15).format(u"hh.mm"), QStringLiteral("01.15"));
}

TEST(TimeValueHours, TwoPairsMakeAnEightHourDay) {
    const TimeValue total = TimeValue() + (timeText("13:00") - timeText("09:00")) +
                            (timeText("18:00") - timeText("14:00"));
    EXPECT_EQ(total.format(u"hh:mm"), QStringLiteral("08:00"));
    // Sums of fractions of a day are not exact in binary; the shown text is what counts.
    EXPECT_NEAR(total.days(), hm(8, 0).days(), 1e-12);
    EXPECT_EQ(total.timeOfDay(), QTime(8, 0));
}

TEST(TimeValueHours, MissingCheckOutSubtractsTheCheckIn) {
    const TimeValue total = TimeValue() + (TimeValue() - timeText("09:00"));
    EXPECT_EQ(total.format(u"hh:mm"), QStringLiteral("09:00"));
    EXPECT_LT(total, TimeValue());
}

TEST(TimeValueHours, GraceWindowEnds) {
    const TimeValue scheduled = timeText("09:00");
    const TimeValue graceEnd = scheduled.addMinutes(10);
    EXPECT_EQ(graceEnd, timeText("09:10"));
    EXPECT_EQ(graceEnd.format(u"hh:mm"), QStringLiteral("09:10"));

    const auto inWindow = [&](const char* checkIn) {
        const TimeValue t = timeText(checkIn);
        return t >= scheduled && t <= graceEnd;
    };
    EXPECT_TRUE(inWindow("09:00"));   // lower end included
    EXPECT_TRUE(inWindow("09:05"));
    EXPECT_TRUE(inWindow("09:10"));   // upper end included
    EXPECT_FALSE(inWindow("09:11"));
    EXPECT_FALSE(inWindow("08:59"));
    EXPECT_FALSE(inWindow("08:55"));
}

TEST(TimeValueHours, ScheduleAgainstWorked) {
    const TimeValue scheduled = hm(8, 0);
    const TimeValue longer = hm(9, 30);
    const TimeValue shorter = hm(7, 15);
    EXPECT_GT(longer.format(u"HH:mm"), scheduled.format(u"HH:mm"));
    EXPECT_LT(shorter.format(u"HH:mm"), scheduled.format(u"HH:mm"));
    EXPECT_EQ((scheduled - longer).format(u"hh.mm"), QStringLiteral("01.30"));
    EXPECT_EQ((scheduled - shorter).format(u"hh.mm"), QStringLiteral("00.45"));
    EXPECT_EQ((scheduled - scheduled).format(u"hh.mm"), QStringLiteral("00.00"));
    // A holiday's zero schedule leaves the worked hours as the difference.
    EXPECT_EQ((timeText("00:00") - hm(6, 20)).format(u"HH:mm"), QStringLiteral("06:20"));
}

// ---- Arithmetic -----------------------------------------------------------------------

TEST(TimeValueArithmetic, MinutesAndDays) {
    EXPECT_EQ(hm(23, 50).addMinutes(20).format(u"hh:mm"), QStringLiteral("00:10"));
    EXPECT_EQ(hm(23, 50).addMinutes(20).date(), QDate(1899, 12, 31));
    EXPECT_EQ(at(2026, 11, 21, 23, 50).addMinutes(20), at(2026, 11, 22, 0, 10));
    EXPECT_EQ(at(2026, 11, 21, 9, 0).addMinutes(-30), at(2026, 11, 21, 8, 30));
    EXPECT_EQ(at(2026, 11, 21, 9, 0).addDays(10), at(2026, 12, 1, 9, 0));
    EXPECT_EQ(at(2024, 2, 28).addDays(1), at(2024, 2, 29));
    EXPECT_EQ(at(2026, 2, 28).addDays(1), at(2026, 3, 1));
    EXPECT_EQ(at(2026, 1, 1).addDays(-1), at(2025, 12, 31));
    EXPECT_EQ(hm(9, 0).addMinutes(0), hm(9, 0));
}

TEST(TimeValueArithmetic, AdditionOnNegativeValuesFollowsTheClock) {
    // -0.375 is 09:00 on day 0, so ten minutes later is 09:10 on day 0.
    EXPECT_EQ(TimeValue(-0.375).addMinutes(10), hm(9, 10));
    // 1899-12-29 06:00 plus a day is 1899-12-30 06:00.
    EXPECT_EQ(TimeValue(-1.25).addDays(1), hm(6, 0));
    EXPECT_EQ(TimeValue(0.25).addDays(-1).days(), -1.25);
    EXPECT_EQ(hm(0, 10).addMinutes(-20).date(), QDate(1899, 12, 29));
    EXPECT_EQ(hm(0, 10).addMinutes(-20).format(u"hh:mm"), QStringLiteral("23:50"));
}

TEST(TimeValueArithmetic, MonthsClampToTheMonthEnd) {
    EXPECT_EQ(at(2024, 1, 31).addMonths(1).date(), QDate(2024, 2, 29));
    EXPECT_EQ(at(2026, 1, 31).addMonths(1).date(), QDate(2026, 2, 28));
    EXPECT_EQ(at(2026, 3, 31).addMonths(1).date(), QDate(2026, 4, 30));
    EXPECT_EQ(at(2026, 1, 30).addMonths(1).date(), QDate(2026, 2, 28));
    EXPECT_EQ(at(2024, 2, 29).addMonths(12).date(), QDate(2025, 2, 28));
    EXPECT_EQ(at(2024, 2, 29).addMonths(48).date(), QDate(2028, 2, 29));
    EXPECT_EQ(at(2026, 11, 21).addMonths(1).date(), QDate(2026, 12, 21));
    EXPECT_EQ(at(2026, 12, 15).addMonths(1).date(), QDate(2027, 1, 15));
    EXPECT_EQ(at(2026, 3, 31).addMonths(-1).date(), QDate(2026, 2, 28));
    EXPECT_EQ(at(2026, 1, 31, 9, 45).addMonths(1), at(2026, 2, 28, 9, 45));
}

TEST(TimeValueArithmetic, YearsClampOnTheLeapDay) {
    EXPECT_EQ(at(2024, 2, 29).addYears(1).date(), QDate(2025, 2, 28));
    EXPECT_EQ(at(2024, 2, 29).addYears(4).date(), QDate(2028, 2, 29));
    EXPECT_EQ(at(2024, 2, 29).addYears(-1).date(), QDate(2023, 2, 28));
    EXPECT_EQ(at(2026, 11, 21, 18, 0).addYears(2), at(2028, 11, 21, 18, 0));
}

TEST(TimeValueArithmetic, DayAndYearDifferences) {
    EXPECT_EQ(qz2::dateDiffDays(QDate(2024, 2, 28), QDate(2024, 3, 1)), 2);
    EXPECT_EQ(qz2::dateDiffDays(QDate(2026, 2, 28), QDate(2026, 3, 1)), 1);
    EXPECT_EQ(qz2::dateDiffDays(QDate(2024, 1, 1), QDate(2025, 1, 1)), 366);
    EXPECT_EQ(qz2::dateDiffDays(QDate(2026, 1, 1), QDate(2027, 1, 1)), 365);
    EXPECT_EQ(qz2::dateDiffDays(QDate(2026, 11, 21), QDate(2026, 11, 1)), -20);
    EXPECT_EQ(qz2::dateDiffDays(QDate(2026, 11, 21), QDate(2026, 11, 21)), 0);
    EXPECT_EQ(qz2::dateDiffYears(QDate(2025, 12, 31), QDate(2026, 1, 1)), 1);
    EXPECT_EQ(qz2::dateDiffYears(QDate(2026, 1, 1), QDate(2026, 12, 31)), 0);
    EXPECT_EQ(qz2::dateDiffYears(QDate(2026, 1, 1), QDate(2024, 12, 31)), -2);
}

TEST(TimeValueArithmetic, Comparisons) {
    EXPECT_LT(hm(8, 59), hm(9, 0));
    EXPECT_GT(at(2026, 11, 22), at(2026, 11, 21, 23, 59));
    EXPECT_EQ(hm(9, 0), TimeValue(0.375));
    EXPECT_NE(hm(9, 0), hm(9, 1));
}

// ---- Parsing --------------------------------------------------------------------------

TEST(TimeValueParse, DayMonthYearRoundTripThroughTwoYears) {
    for (const int year : {2024, 2026}) {
        int days = 0;
        for (QDate d(year, 1, 1); d.year() == year; d = d.addDays(1), ++days) {
            const QString text = TimeValue::fromDate(d).format(u"dd/mm/yyyy");
            ASSERT_EQ(text, qz2::dateText(d));
            const auto back = qz2::parseDmy(text);
            ASSERT_TRUE(back.has_value()) << text.toStdString();
            EXPECT_EQ(*back, d) << text.toStdString();
            const auto value = qz2::parseTimeValue(text);
            ASSERT_TRUE(value.has_value()) << text.toStdString();
            EXPECT_EQ(value->date(), d);
            EXPECT_EQ(*value, TimeValue::fromDate(d));
        }
        EXPECT_EQ(days, year == 2024 ? 366 : 365);
    }
}

TEST(TimeValueParse, DayMonthYearOnly) {
    EXPECT_EQ(qz2::parseDmy(u"21/11/2026"), QDate(2026, 11, 21));
    EXPECT_EQ(qz2::parseDmy(u"1/2/2026"), QDate(2026, 2, 1));
    EXPECT_EQ(qz2::parseDmy(u"29/02/2024"), QDate(2024, 2, 29));
    EXPECT_FALSE(qz2::parseDmy(u"29/02/2026").has_value());
    EXPECT_FALSE(qz2::parseDmy(u"31/02/2026").has_value());
    EXPECT_FALSE(qz2::parseDmy(u"2026-01-01").has_value());
    EXPECT_FALSE(qz2::parseDmy(u"").has_value());
    EXPECT_FALSE(qz2::parseDmy(u"12/13/2026").has_value());
    EXPECT_FALSE(qz2::parseDmy(u"00/01/2026").has_value());
    EXPECT_FALSE(qz2::parseDmy(u"21/11/26").has_value());
    EXPECT_FALSE(qz2::parseDmy(u"21/11/2026 09:00").has_value());
    EXPECT_FALSE(qz2::parseDmy(u"2026/11/21").has_value());
}

TEST(TimeValueParse, TimeTexts) {
    EXPECT_EQ(qz2::parseTime(u"09:05"), hm(9, 5));
    EXPECT_EQ(qz2::parseTime(u"9:05"), hm(9, 5));
    EXPECT_EQ(qz2::parseTime(u"09:05:30"), TimeValue::fromTime(QTime(9, 5, 30)));
    EXPECT_EQ(qz2::parseTime(u"09.05"), hm(9, 5));
    EXPECT_EQ(qz2::parseTime(u" 09:05 "), hm(9, 5));
    EXPECT_EQ(qz2::parseTime(u"00:00"), TimeValue());
    EXPECT_EQ(qz2::parseTime(u"00.00"), TimeValue());
    EXPECT_EQ(qz2::parseTime(u"23:59"), hm(23, 59));
    EXPECT_FALSE(qz2::parseTime(u"").has_value());
    EXPECT_FALSE(qz2::parseTime(u"   ").has_value());
    EXPECT_FALSE(qz2::parseTime(u"25:00").has_value());
    EXPECT_FALSE(qz2::parseTime(u"24:00").has_value());
    EXPECT_FALSE(qz2::parseTime(u"ab").has_value());
    EXPECT_FALSE(qz2::parseTime(u"09:61").has_value());
    EXPECT_FALSE(qz2::parseTime(u"09:05:60").has_value());
    EXPECT_FALSE(qz2::parseTime(u"21/11/2026").has_value());
    EXPECT_FALSE(qz2::parseTime(u"9").has_value());
}

TEST(TimeValueParse, DateAndDateTimeTexts) {
    const TimeValue day = at(2026, 11, 21);
    const TimeValue dayAt = at(2026, 11, 21, 9, 30, 15);
    EXPECT_EQ(qz2::parseTimeValue(u"21/11/2026"), day);
    EXPECT_EQ(qz2::parseTimeValue(u"2026/11/21"), day);
    EXPECT_EQ(qz2::parseTimeValue(u"2026-11-21"), day);
    EXPECT_EQ(qz2::parseTimeValue(u"20261121"), day);
    EXPECT_EQ(qz2::parseTimeValue(u"  20261121 "), day);
    EXPECT_EQ(qz2::parseTimeValue(u"09:30"), hm(9, 30));
    EXPECT_EQ(qz2::parseTimeValue(u"09:30:15"), TimeValue::fromTime(QTime(9, 30, 15)));
    EXPECT_EQ(qz2::parseTimeValue(u"09.30"), hm(9, 30));
    EXPECT_EQ(qz2::parseTimeValue(u"2026-11-21 09:30:15"), dayAt);
    EXPECT_EQ(qz2::parseTimeValue(u"2026-11-21T09:30:15"), dayAt);
    EXPECT_EQ(qz2::parseTimeValue(u"21/11/2026 09:30:15"), dayAt);
    EXPECT_FALSE(qz2::parseTimeValue(u"").has_value());
    EXPECT_FALSE(qz2::parseTimeValue(u"31/02/2026").has_value());
    EXPECT_FALSE(qz2::parseTimeValue(u"20260231").has_value());
    EXPECT_FALSE(qz2::parseTimeValue(u"2026-13-01").has_value());
    EXPECT_FALSE(qz2::parseTimeValue(u"hello").has_value());
    EXPECT_FALSE(qz2::parseTimeValue(u"2026-11-21 25:00:00").has_value());
    EXPECT_FALSE(qz2::parseTimeValue(u"2026-11-21 09.30").has_value());
}

// ---- Database values ------------------------------------------------------------------

TEST(TimeValueDb, DateTimeDateAndTimeValues) {
    EXPECT_EQ(qz2::timeValueFromDb(QVariant(QDateTime(QDate(2026, 11, 21), QTime(18, 0)))),
              TimeValue(46347.75));
    EXPECT_EQ(qz2::timeValueFromDb(QVariant(QDate(2026, 11, 21))), TimeValue(46347.0));
    EXPECT_EQ(qz2::timeValueFromDb(QVariant(QTime(9, 0))), TimeValue(0.375));
}

TEST(TimeValueDb, SqliteTexts) {
    EXPECT_EQ(qz2::timeValueFromDb(QVariant(QStringLiteral("2026-11-21"))), TimeValue(46347.0));
    EXPECT_EQ(qz2::timeValueFromDb(QVariant(QStringLiteral("09:00:00"))), TimeValue(0.375));
    EXPECT_EQ(qz2::timeValueFromDb(QVariant(QStringLiteral("2026-11-21 18:00:00"))),
              TimeValue(46347.75));
    EXPECT_EQ(qz2::timeValueFromDb(QVariant(QStringLiteral("2026-11-21T18:00:00"))),
              TimeValue(46347.75));
    const auto withMsecs = qz2::timeValueFromDb(QVariant(QStringLiteral("2026-11-21 18:00:00.000")));
    ASSERT_TRUE(withMsecs.has_value());
    EXPECT_EQ(*withMsecs, TimeValue(46347.75));
    const auto halfSecond = qz2::timeValueFromDb(QVariant(QStringLiteral("09:00:00.500")));
    ASSERT_TRUE(halfSecond.has_value());
    EXPECT_NEAR(halfSecond->days(), 0.375 + 0.5 / 86400.0, 1e-12);
}

TEST(TimeValueDb, NumbersAreDays) {
    EXPECT_EQ(qz2::timeValueFromDb(QVariant(46347.75)), TimeValue(46347.75));
    EXPECT_EQ(qz2::timeValueFromDb(QVariant(46347)), TimeValue(46347.0));
    EXPECT_EQ(qz2::timeValueFromDb(QVariant(qlonglong(2))), TimeValue::fromDate(QDate(1900, 1, 1)));
    EXPECT_EQ(qz2::timeValueFromDb(QVariant(0.375)), hm(9, 0));
    EXPECT_EQ(qz2::timeValueFromDb(QVariant(QStringLiteral("46347.5"))), TimeValue(46347.5));
}

TEST(TimeValueDb, NullEmptyAndUnreadableValues) {
    EXPECT_FALSE(qz2::timeValueFromDb(QVariant()).has_value());
    EXPECT_FALSE(qz2::timeValueFromDb(QVariant(QMetaType::fromType<QDateTime>())).has_value());
    EXPECT_FALSE(qz2::timeValueFromDb(QVariant(QMetaType::fromType<QString>())).has_value());
    EXPECT_FALSE(qz2::timeValueFromDb(QVariant(QMetaType::fromType<double>())).has_value());
    EXPECT_FALSE(qz2::timeValueFromDb(QVariant(QDate())).has_value());
    EXPECT_FALSE(qz2::timeValueFromDb(QVariant(QTime())).has_value());
    EXPECT_FALSE(qz2::timeValueFromDb(QVariant(QDateTime())).has_value());
    EXPECT_FALSE(qz2::timeValueFromDb(QVariant(QString())).has_value());
    EXPECT_FALSE(qz2::timeValueFromDb(QVariant(QStringLiteral(""))).has_value());
    EXPECT_FALSE(qz2::timeValueFromDb(QVariant(QStringLiteral("  "))).has_value());
    EXPECT_FALSE(qz2::timeValueFromDb(QVariant(QStringLiteral("not a date"))).has_value());
    EXPECT_FALSE(qz2::timeValueFromDb(QVariant(QStringLiteral("2026-02-31"))).has_value());
}

// ---- Lenient numbers ------------------------------------------------------------------

TEST(TimeValueVal, LeadingNumericCharactersOnly) {
    EXPECT_DOUBLE_EQ(qz2::val(u"2.5"), 2.5);
    EXPECT_DOUBLE_EQ(qz2::val(u"12abc"), 12.0);
    EXPECT_DOUBLE_EQ(qz2::val(u"abc"), 0.0);
    EXPECT_DOUBLE_EQ(qz2::val(u""), 0.0);
    EXPECT_DOUBLE_EQ(qz2::val(u" -3"), -3.0);
    EXPECT_DOUBLE_EQ(qz2::val(u"1.2.3"), 1.2);
    EXPECT_DOUBLE_EQ(qz2::val(u"+4"), 4.0);
    EXPECT_DOUBLE_EQ(qz2::val(u".5"), 0.5);
    EXPECT_DOUBLE_EQ(qz2::val(u"-.5"), -0.5);
    EXPECT_DOUBLE_EQ(qz2::val(u"7."), 7.0);
    EXPECT_DOUBLE_EQ(qz2::val(u"-"), 0.0);
    EXPECT_DOUBLE_EQ(qz2::val(u"."), 0.0);
    EXPECT_DOUBLE_EQ(qz2::val(u"01.30"), 1.3);
    EXPECT_DOUBLE_EQ(qz2::val(u"  42  "), 42.0);
    EXPECT_DOUBLE_EQ(qz2::val(u"3 4"), 3.0);
}

// ---- Date text ------------------------------------------------------------------------

TEST(TimeValueDateText, DayMonthYearWithLeadingZeros) {
    EXPECT_EQ(qz2::dateText(QDate(2026, 1, 5)), QStringLiteral("05/01/2026"));
    EXPECT_EQ(qz2::dateText(QDate(2026, 11, 21)), QStringLiteral("21/11/2026"));
    EXPECT_TRUE(qz2::dateText(QDate()).isEmpty());
}
