// Pairing an employee's punches: duplicates, check-ins and check-outs with and without
// directions, night shifts and their limits on both sides, six pairs a day, the period and
// the business date. Each rule of PunchPairs.h has its test here.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "TestSupport.h"
#include "punches/PunchFile.h"
#include "punches/PunchMatch.h"
#include "punches/PunchPairs.h"

using namespace qz2::punches;

namespace {

QDateTime t(const char* text) {
    // "yyyy-MM-dd HH:mm" or "yyyy-MM-dd HH:mm:ss", as the reader gives it: wall time in UTC.
    const QString s = QString::fromLatin1(text);
    const QDateTime at(QDate::fromString(s.left(10), Qt::ISODate),
                       QTime::fromString(s.mid(11), s.size() > 16 ? u"HH:mm:ss" : u"HH:mm"),
                       Qt::UTC);
    EXPECT_TRUE(at.isValid()) << text;
    return at;
}

Punch punch(const char* at, Direction d) {
    static int line = 0;
    Punch p;
    p.code = QStringLiteral("42");
    p.at = t(at);
    p.direction = d;
    p.line = ++line;
    return p;
}
Punch in(const char* at) {
    return punch(at, Direction::In);
}
Punch out(const char* at) {
    return punch(at, Direction::Out);
}
Punch any(const char* at) {
    return punch(at, Direction::None);
}

PairingOptions period(int fromDay, int toDay) {
    PairingOptions o;
    o.from = QDate(2026, 3, fromDay);
    o.to = QDate(2026, 3, toDay);
    return o;
}

QString timeText(const QDateTime& at, QDate day) {
    QString s = at.time().toString(at.time().second() ? QStringLiteral("HH:mm:ss")
                                                      : QStringLiteral("HH:mm"));
    if (at.date() != day) s += QStringLiteral("+%1").arg(day.daysTo(at.date()));
    return s;
}

// "08:00-12:00 13:00-" with "+1" after a time on the next day.
QString pairsText(const QVector<PunchPair>& pairs, QDate day) {
    QStringList out;
    for (const PunchPair& p : pairs)
        out << timeText(p.in, day) + QLatin1Char('-') + (p.out ? timeText(*p.out, day) : QString());
    return out.join(QLatin1Char(' '));
}

QString pairsText(const PunchDay& day) {
    return pairsText(day.pairs, day.date);
}

// Every day of the period as "2026-03-02: 08:00-12:00".
QStringList daysText(const QVector<PunchDay>& days) {
    QStringList out;
    for (const PunchDay& d : days)
        out << d.date.toString(Qt::ISODate) + QStringLiteral(": ") + pairsText(d);
    return out;
}

// One day's pairs, the period being that day alone.
PunchDay oneDay(const QVector<Punch>& punches, PairingOptions o = period(2, 2)) {
    const QVector<PunchDay> days = pairPunches(punches, o);
    EXPECT_EQ(days.size(), o.from.daysTo(o.to) + 1);
    return days.isEmpty() ? PunchDay{} : days.first();
}

}  // namespace

// ---- Duplicates ----------------------------------------------------------------------------

TEST(PairDuplicates, APunchUnderTwoMinutesAfterTheKeptOneIsDropped) {
    const PunchDay d = oneDay(
        {any("2026-03-02 08:00:00"), any("2026-03-02 08:01:59"), any("2026-03-02 12:00:00")});
    EXPECT_EQ(pairsText(d), "08:00-12:00");
    EXPECT_EQ(d.duplicatesDropped, 1);
    EXPECT_EQ(d.flags, DayFlags());
}

TEST(PairDuplicates, APunchTwoMinutesAfterTheKeptOneIsKept) {
    const PunchDay d = oneDay({any("2026-03-02 08:00:00"), any("2026-03-02 08:02:00")});
    EXPECT_EQ(pairsText(d), "08:00-08:02");
    EXPECT_EQ(d.duplicatesDropped, 0);
}

TEST(PairDuplicates, TheGapIsCountedFromTheLastKeptPunchNotTheDroppedOne) {
    // 08:03 is 1:30 after the dropped 08:01:30 but 3:00 after the kept 08:00: kept.
    PunchDay d = oneDay(
        {any("2026-03-02 08:00:00"), any("2026-03-02 08:01:30"), any("2026-03-02 08:03:00")});
    EXPECT_EQ(pairsText(d), "08:00-08:03");
    EXPECT_EQ(d.duplicatesDropped, 1);
    // A run of punches each under two minutes after the one before: kept every two minutes.
    d = oneDay({any("2026-03-02 08:00:00"), any("2026-03-02 08:01:00"), any("2026-03-02 08:01:59"),
                any("2026-03-02 08:02:00"), any("2026-03-02 08:03:00"),
                any("2026-03-02 08:04:00")});
    EXPECT_EQ(pairsText(d), "08:00-08:02 08:04-");
    EXPECT_EQ(d.duplicatesDropped, 3);
}

TEST(PairDuplicates, ADirectionDoesNotKeepADuplicate) {
    const PunchDay d = oneDay({in("2026-03-02 08:00:00"), out("2026-03-02 08:01:00")});
    EXPECT_EQ(pairsText(d), "08:00-");
    EXPECT_EQ(d.duplicatesDropped, 1);
    EXPECT_EQ(d.flags, DayFlags(DayFlag::CheckOutMissing));
}

TEST(PairDuplicates, TheMinutesAreAnOption) {
    PairingOptions o = period(2, 2);
    o.duplicateMinutes = 5;
    PunchDay d = oneDay({any("2026-03-02 08:00:00"), any("2026-03-02 08:04:59")}, o);
    EXPECT_EQ(pairsText(d), "08:00-");
    d = oneDay({any("2026-03-02 08:00:00"), any("2026-03-02 08:05:00")}, o);
    EXPECT_EQ(pairsText(d), "08:00-08:05");
}

TEST(PairDuplicates, ZeroMinutesKeepsEveryDistinctPunch) {
    PairingOptions o = period(2, 2);
    o.duplicateMinutes = 0;
    const PunchDay d = oneDay(
        {any("2026-03-02 08:00:00"), any("2026-03-02 08:00:01"), any("2026-03-02 08:00:01")}, o);
    EXPECT_EQ(pairsText(d), "08:00-08:00:01");
    EXPECT_EQ(d.duplicatesDropped, 0);
}

TEST(PairDuplicates, DroppedPunchesAreCountedOnTheirDate) {
    const QVector<PunchDay> days = pairPunches(
        {any("2026-03-02 22:00:00"), any("2026-03-03 06:00:00"), any("2026-03-03 06:01:00")},
        period(2, 3));
    EXPECT_EQ(days[0].duplicatesDropped, 0);
    EXPECT_EQ(days[1].duplicatesDropped, 1);
    EXPECT_EQ(pairsText(days[0]), "22:00-06:00+1");
}

TEST(PairIdenticalLines, OverlappingFilesCountOnce) {
    // Two exports of one clock that share the 3rd of March, read and matched as the import
    // will; the employee's pairs are those of one file holding each line once.
    const QByteArray first =
        "42\t2026-03-02 08:00:00\t1\t0\n42\t2026-03-02 17:00:00\t1\t1\n"
        "42\t2026-03-03 08:00:00\t1\t0\n42\t2026-03-03 17:00:00\t1\t1\n";
    const QByteArray second =
        "42\t2026-03-03 08:00:00\t1\t0\n42\t2026-03-03 17:00:00\t1\t1\n"
        "42\t2026-03-04 08:00:00\t1\t0\n42\t2026-03-04 17:00:00\t1\t1\n";
    const QByteArray once =
        "42\t2026-03-02 08:00:00\t1\t0\n42\t2026-03-02 17:00:00\t1\t1\n"
        "42\t2026-03-03 08:00:00\t1\t0\n42\t2026-03-03 17:00:00\t1\t1\n"
        "42\t2026-03-04 08:00:00\t1\t0\n42\t2026-03-04 17:00:00\t1\t1\n";
    const QVector<Employee> staff = {{1, "42", true}};
    auto pairsOf = [&](const QVector<Punch>& punches, int duplicateMinutes) {
        PairingOptions o = period(2, 4);
        o.duplicateMinutes = duplicateMinutes;
        const MatchResult m = matchPunches(punches, staff);
        const QVector<PunchDay> days = pairPunches(m.punchesByEmployee.value(1), o);
        QStringList text = daysText(days);
        for (const PunchDay& d : days) text << QString::number(d.duplicatesDropped);
        return text;
    };
    const QVector<Punch> a = readPunchBytes(first).punches;
    const QVector<Punch> b = readPunchBytes(second).punches;
    const QVector<Punch> one = readPunchBytes(once).punches;
    for (int minutes : {2, 0}) {
        const QStringList expected = pairsOf(one, minutes);
        EXPECT_EQ(expected.mid(0, 3),
                  (QStringList{"2026-03-02: 08:00-17:00", "2026-03-03: 08:00-17:00",
                               "2026-03-04: 08:00-17:00"}));
        EXPECT_EQ(pairsOf(a + b, minutes), expected) << minutes;
        EXPECT_EQ(pairsOf(b + a, minutes), expected) << minutes;
        EXPECT_EQ(pairsOf(a + b + a, minutes), expected) << minutes;
    }
}

TEST(PairIdenticalLines, TheSameInstantInTwoDirectionsIsTwoPunches) {
    PairingOptions o = period(2, 2);
    o.duplicateMinutes = 0;
    const PunchDay d = oneDay({out("2026-03-02 08:00:00"), in("2026-03-02 08:00:00")}, o);
    EXPECT_EQ(pairsText(d), "08:00-08:00");
}

// ---- With directions -------------------------------------------------------------------------

TEST(PairDirections, ACheckInAndTheNextCheckOutMakeAPair) {
    const PunchDay d = oneDay({in("2026-03-02 08:00"), out("2026-03-02 12:00"),
                               in("2026-03-02 13:00"), out("2026-03-02 17:00")});
    EXPECT_EQ(pairsText(d), "08:00-12:00 13:00-17:00");
    EXPECT_EQ(d.flags, DayFlags());
}

TEST(PairDirections, ASecondCheckInLeavesTheOpenPairWithoutItsCheckOut) {
    const PunchDay d =
        oneDay({in("2026-03-02 08:00"), in("2026-03-02 09:00"), out("2026-03-02 17:00")});
    EXPECT_EQ(pairsText(d), "08:00- 09:00-17:00");
    EXPECT_EQ(d.flags, DayFlags(DayFlag::CheckOutMissing));
}

TEST(PairDirections, ACheckOutWithoutAnOpenPairIsKeptApartAndFlagged) {
    PunchDay d = oneDay({out("2026-03-02 07:00"), in("2026-03-02 08:00"), out("2026-03-02 17:00")});
    EXPECT_EQ(pairsText(d), "08:00-17:00");
    EXPECT_EQ(d.checkOutsWithoutCheckIn, QVector<QDateTime>{t("2026-03-02 07:00")});
    EXPECT_EQ(d.flags, DayFlags(DayFlag::CheckInMissing));
    // A second check-out after a closed pair is the same.
    d = oneDay({in("2026-03-02 08:00"), out("2026-03-02 12:00"), out("2026-03-02 12:30")});
    EXPECT_EQ(pairsText(d), "08:00-12:00");
    EXPECT_EQ(d.checkOutsWithoutCheckIn, QVector<QDateTime>{t("2026-03-02 12:30")});
    EXPECT_TRUE(d.flags.testFlag(DayFlag::CheckInMissing));
}

TEST(PairDirections, BreakAndOvertimeStatesPairAsCheckInsAndCheckOuts) {
    const ReadResult r = readPunchBytes(
        "42\t2026-03-02 08:00:00\t1\t0\n42\t2026-03-02 12:00:00\t1\t2\n"
        "42\t2026-03-02 12:30:00\t1\t3\n42\t2026-03-02 17:00:00\t1\t1\n"
        "42\t2026-03-02 18:00:00\t1\t4\n42\t2026-03-02 20:00:00\t1\t5\n");
    const PunchDay d = oneDay(r.punches);
    EXPECT_EQ(pairsText(d), "08:00-12:00 12:30-17:00 18:00-20:00");
    EXPECT_EQ(d.flags, DayFlags());
}

TEST(PairDirections, APunchWithoutDirectionAmongDirectedOnesTakesTheOtherWay) {
    const PunchDay d = oneDay({in("2026-03-02 08:00"), any("2026-03-02 12:00"),
                               any("2026-03-02 13:00"), out("2026-03-02 17:00")});
    EXPECT_EQ(pairsText(d), "08:00-12:00 13:00-17:00");
}

// ---- Without directions --------------------------------------------------------------------

TEST(PairWithoutDirections, PunchesAlternateInAndOutWithinTheDay) {
    const PunchDay d = oneDay({any("2026-03-02 08:00"), any("2026-03-02 12:00"),
                               any("2026-03-02 13:00"), any("2026-03-02 17:00")});
    EXPECT_EQ(pairsText(d), "08:00-12:00 13:00-17:00");
    EXPECT_EQ(d.flags, DayFlags());
}

TEST(PairWithoutDirections, AnOddPunchLeavesTheLastPairWithoutItsCheckOut) {
    const PunchDay d =
        oneDay({any("2026-03-02 08:00"), any("2026-03-02 12:00"), any("2026-03-02 13:00")});
    EXPECT_EQ(pairsText(d), "08:00-12:00 13:00-");
    EXPECT_EQ(d.flags, DayFlags(DayFlag::CheckOutMissing));
    EXPECT_EQ(dayFlagTexts(d.flags), QStringList{"check-out missing"});
}

TEST(PairWithoutDirections, ASinglePunchIsAPairWithoutCheckOutNotAnEmptyDay) {
    const PunchDay d = oneDay({any("2026-03-02 08:00")});
    ASSERT_EQ(d.pairs.size(), 1);
    EXPECT_EQ(d.pairs[0].in, t("2026-03-02 08:00"));
    EXPECT_FALSE(d.pairs[0].out.has_value());
    EXPECT_TRUE(d.flags.testFlag(DayFlag::CheckOutMissing));
}

TEST(PairWithoutDirections, EachDayStartsWithACheckIn) {
    const QVector<PunchDay> days = pairPunches(
        {any("2026-03-02 08:00"), any("2026-03-03 08:00"), any("2026-03-03 17:00")}, period(2, 3));
    EXPECT_EQ(daysText(days), (QStringList{"2026-03-02: 08:00-", "2026-03-03: 08:00-17:00"}));
    EXPECT_TRUE(days[0].flags.testFlag(DayFlag::CheckOutMissing));
    EXPECT_EQ(days[1].flags, DayFlags());
}

// ---- Night shifts ---------------------------------------------------------------------------

TEST(PairNightShift, TheSettingsAndTheirDefaults) {
    const PairingOptions o;
    EXPECT_EQ(o.duplicateMinutes, 2);
    EXPECT_EQ(o.nightCheckInFrom, QTime(12, 0));
    EXPECT_EQ(o.nightCheckOutBefore, QTime(12, 0));
    EXPECT_EQ(o.nightMaxMinutes, 12 * 60);
}

TEST(PairNightShift, WithoutDirectionsAPairOverMidnightBelongsToItsStartDay) {
    const QVector<PunchDay> days = pairPunches({any("2026-03-02 22:00"), any("2026-03-03 06:00"),
                                                any("2026-03-03 22:00"), any("2026-03-04 06:00")},
                                               period(2, 4));
    EXPECT_EQ(daysText(days), (QStringList{"2026-03-02: 22:00-06:00+1", "2026-03-03: 22:00-06:00+1",
                                           "2026-03-04: "}));
    for (const PunchDay& d : days) EXPECT_EQ(d.flags, DayFlags());
}

TEST(PairNightShift, WithDirectionsAPairOverMidnightBelongsToItsStartDay) {
    const QVector<PunchDay> days =
        pairPunches({in("2026-03-02 22:00"), out("2026-03-03 06:00")}, period(2, 3));
    EXPECT_EQ(daysText(days), (QStringList{"2026-03-02: 22:00-06:00+1", "2026-03-03: "}));
    EXPECT_EQ(days[1].flags, DayFlags());
}

TEST(PairNightShift, TheCheckInMustBeAtOrAfterNoon) {
    // A longer limit, so that only the check-in's time decides.
    PairingOptions o = period(2, 3);
    o.nightMaxMinutes = 20 * 60;
    QVector<PunchDay> days = pairPunches({any("2026-03-02 11:59:59"), any("2026-03-03 06:00")}, o);
    EXPECT_EQ(daysText(days), (QStringList{"2026-03-02: 11:59:59-", "2026-03-03: 06:00-"}));
    days = pairPunches({any("2026-03-02 12:00:00"), any("2026-03-03 06:00")}, o);
    EXPECT_EQ(daysText(days), (QStringList{"2026-03-02: 12:00-06:00+1", "2026-03-03: "}));
    // The same with directions.
    days = pairPunches({in("2026-03-02 11:59:59"), out("2026-03-03 06:00")}, o);
    EXPECT_EQ(daysText(days), (QStringList{"2026-03-02: 11:59:59-", "2026-03-03: "}));
    EXPECT_TRUE(days[1].flags.testFlag(DayFlag::CheckInMissing));
    days = pairPunches({in("2026-03-02 12:00:00"), out("2026-03-03 06:00")}, o);
    EXPECT_EQ(daysText(days), (QStringList{"2026-03-02: 12:00-06:00+1", "2026-03-03: "}));
}

TEST(PairNightShift, TheCheckOutMustBeBeforeNoonOfTheNextDay) {
    PairingOptions o = period(2, 3);
    o.nightMaxMinutes = 16 * 60;
    QVector<PunchDay> days = pairPunches({any("2026-03-02 22:00"), any("2026-03-03 11:59:59")}, o);
    EXPECT_EQ(daysText(days), (QStringList{"2026-03-02: 22:00-11:59:59+1", "2026-03-03: "}));
    days = pairPunches({any("2026-03-02 22:00"), any("2026-03-03 12:00:00")}, o);
    EXPECT_EQ(daysText(days), (QStringList{"2026-03-02: 22:00-", "2026-03-03: 12:00-"}));
    days = pairPunches({in("2026-03-02 22:00"), out("2026-03-03 12:00:00")}, o);
    EXPECT_EQ(daysText(days), (QStringList{"2026-03-02: 22:00-", "2026-03-03: "}));
    EXPECT_EQ(days[1].checkOutsWithoutCheckIn, QVector<QDateTime>{t("2026-03-03 12:00")});
}

TEST(PairNightShift, ThePairLastsTwelveHoursAtMost) {
    QVector<PunchDay> days =
        pairPunches({any("2026-03-02 20:00"), any("2026-03-03 08:00:00")}, period(2, 3));
    EXPECT_EQ(daysText(days), (QStringList{"2026-03-02: 20:00-08:00+1", "2026-03-03: "}));
    days = pairPunches({any("2026-03-02 20:00"), any("2026-03-03 08:00:01")}, period(2, 3));
    EXPECT_EQ(daysText(days), (QStringList{"2026-03-02: 20:00-", "2026-03-03: 08:00:01-"}));
    days = pairPunches({in("2026-03-02 20:00"), out("2026-03-03 08:00:01")}, period(2, 3));
    EXPECT_EQ(daysText(days), (QStringList{"2026-03-02: 20:00-", "2026-03-03: "}));
}

TEST(PairNightShift, OnlyTheNextDayCanCloseIt) {
    PairingOptions o = period(2, 4);
    o.nightMaxMinutes = 48 * 60;
    const QVector<PunchDay> days =
        pairPunches({any("2026-03-02 22:00"), any("2026-03-04 06:00")}, o);
    EXPECT_EQ(daysText(days),
              (QStringList{"2026-03-02: 22:00-", "2026-03-03: ", "2026-03-04: 06:00-"}));
}

TEST(PairNightShift, AForgottenCheckOutIsNotClosedByTheNextMorning) {
    // 14:00 to 08:00 is eighteen hours: a forgotten check-out, then the next day's check-in.
    const QVector<PunchDay> days = pairPunches(
        {any("2026-03-02 14:00"), any("2026-03-03 08:00"), any("2026-03-03 17:00")}, period(2, 3));
    EXPECT_EQ(daysText(days), (QStringList{"2026-03-02: 14:00-", "2026-03-03: 08:00-17:00"}));
    EXPECT_EQ(days[0].flags, DayFlags(DayFlag::CheckOutMissing));
    EXPECT_EQ(days[1].flags, DayFlags());
}

TEST(PairNightShift, ACheckInNextMorningDoesNotCloseIt) {
    const QVector<PunchDay> days = pairPunches(
        {in("2026-03-02 22:00"), in("2026-03-03 06:00"), out("2026-03-03 14:00")}, period(2, 3));
    EXPECT_EQ(daysText(days), (QStringList{"2026-03-02: 22:00-", "2026-03-03: 06:00-14:00"}));
    EXPECT_TRUE(days[0].flags.testFlag(DayFlag::CheckOutMissing));
}

TEST(PairNightShift, ALateCheckOutNextDayIsACheckOutWithoutCheckIn) {
    const QVector<PunchDay> days =
        pairPunches({in("2026-03-02 22:00"), out("2026-03-03 13:00")}, period(2, 3));
    EXPECT_EQ(daysText(days), (QStringList{"2026-03-02: 22:00-", "2026-03-03: "}));
    EXPECT_EQ(days[0].flags, DayFlags(DayFlag::CheckOutMissing));
    EXPECT_EQ(days[1].flags, DayFlags(DayFlag::CheckInMissing));
    EXPECT_EQ(days[1].checkOutsWithoutCheckIn, QVector<QDateTime>{t("2026-03-03 13:00")});
}

// ---- Six pairs a day -------------------------------------------------------------------------

TEST(PairSixPerDay, SixPairsAreKept) {
    QVector<Punch> punches;
    const char* times[] = {"2026-03-02 06:00", "2026-03-02 07:00", "2026-03-02 08:00",
                           "2026-03-02 09:00", "2026-03-02 10:00", "2026-03-02 11:00",
                           "2026-03-02 12:00", "2026-03-02 13:00", "2026-03-02 14:00",
                           "2026-03-02 15:00", "2026-03-02 16:00", "2026-03-02 17:00",
                           "2026-03-02 18:00", "2026-03-02 19:00"};
    for (int i = 0; i < 12; ++i) punches << any(times[i]);
    PunchDay d = oneDay(punches);
    EXPECT_EQ(d.pairs.size(), kMaxPairsPerDay);
    EXPECT_TRUE(d.pairsBeyondSix.isEmpty());
    EXPECT_EQ(d.flags, DayFlags());
    // A thirteenth punch opens a seventh pair, which the day does not keep.
    punches << any(times[12]);
    d = oneDay(punches);
    EXPECT_EQ(d.pairs.size(), kMaxPairsPerDay);
    EXPECT_EQ(pairsText(d.pairsBeyondSix, d.date), "18:00-");
    EXPECT_EQ(d.flags, DayFlags(DayFlag::MoreThanSixPairs) | DayFlag::CheckOutMissing);
    // A fourteenth closes it.
    punches << any(times[13]);
    d = oneDay(punches);
    EXPECT_EQ(pairsText(d),
              "06:00-07:00 08:00-09:00 10:00-11:00 12:00-13:00 14:00-15:00 16:00-17:00");
    EXPECT_EQ(pairsText(d.pairsBeyondSix, d.date), "18:00-19:00");
    EXPECT_EQ(d.flags, DayFlags(DayFlag::MoreThanSixPairs));
    EXPECT_EQ(dayFlagTexts(d.flags), QStringList{"more than six pairs"});
}

// ---- The period ----------------------------------------------------------------------------

TEST(PairPeriod, OneDayForEveryDateOfThePeriodInOrder) {
    const QVector<PunchDay> days = pairPunches({}, period(2, 6));
    ASSERT_EQ(days.size(), 5);
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(days[i].date, QDate(2026, 3, 2 + i));
        EXPECT_TRUE(days[i].pairs.isEmpty());
        EXPECT_EQ(days[i].flags, DayFlags());
    }
    PairingOptions across;
    across.from = QDate(2024, 2, 28);  // a leap day in between
    across.to = QDate(2024, 3, 1);
    EXPECT_EQ(pairPunches({}, across).size(), 3);
}

TEST(PairPeriod, AnInvalidPeriodGivesNoDays) {
    EXPECT_TRUE(pairPunches({any("2026-03-02 08:00")}, period(3, 2)).isEmpty());
    PairingOptions o = period(2, 2);
    o.from = QDate();
    EXPECT_TRUE(pairPunches({any("2026-03-02 08:00")}, o).isEmpty());
    EXPECT_EQ(pairPunches({any("2026-03-02 08:00")}, period(2, 2)).size(), 1);
}

TEST(PairPeriod, PunchesOutsideThePeriodAreIgnored) {
    const QVector<PunchDay> days =
        pairPunches({any("2026-03-01 09:00"), any("2026-03-01 17:00"), any("2026-03-02 09:00"),
                     any("2026-03-02 17:00"), any("2026-03-04 09:00"), any("2026-03-04 17:00"),
                     any("2026-03-09 09:00")},
                    period(2, 3));
    EXPECT_EQ(daysText(days), (QStringList{"2026-03-02: 09:00-17:00", "2026-03-03: "}));
    for (const PunchDay& d : days) EXPECT_EQ(d.flags, DayFlags());
}

TEST(PairPeriod, ANightShiftOnTheLastDayKeepsItsCheckOutAfterMidnight) {
    for (const auto& punches : {QVector<Punch>{any("2026-03-03 22:00"), any("2026-03-04 06:00")},
                                QVector<Punch>{in("2026-03-03 22:00"), out("2026-03-04 06:00")}}) {
        const QVector<PunchDay> days = pairPunches(punches, period(2, 3));
        EXPECT_EQ(daysText(days), (QStringList{"2026-03-02: ", "2026-03-03: 22:00-06:00+1"}));
        EXPECT_EQ(days[1].flags, DayFlags());
    }
}

TEST(PairPeriod, ANightShiftBeforeThePeriodLeavesNoStrayOnItsFirstDay) {
    QVector<PunchDay> days =
        pairPunches({in("2026-03-01 22:00"), out("2026-03-02 06:00")}, period(2, 2));
    EXPECT_EQ(daysText(days), QStringList{"2026-03-02: "});
    EXPECT_EQ(days[0].flags, DayFlags());
    // Without directions the first day's punches then alternate from its next punch on.
    days = pairPunches({any("2026-03-01 22:00"), any("2026-03-02 06:00"), any("2026-03-02 14:00"),
                        any("2026-03-02 22:00")},
                       period(2, 2));
    EXPECT_EQ(daysText(days), QStringList{"2026-03-02: 14:00-22:00"});
}

TEST(PairPeriod, AMonthAloneGivesTheDaysItGivesWithinAQuarter) {
    std::mt19937 rng(2026);
    QVector<Punch> punches;
    QDateTime at(QDate(2026, 1, 1), QTime(0, 0), Qt::UTC);
    const QDateTime end(QDate(2026, 4, 30), QTime(0, 0), Qt::UTC);
    while (at < end) {
        at = at.addSecs(std::uniform_int_distribution<int>(30, 14 * 3600)(rng));
        Punch p;
        p.code = QStringLiteral("42");
        p.at = at;
        p.direction = static_cast<Direction>(std::uniform_int_distribution<int>(0, 2)(rng));
        punches << p;
    }
    std::shuffle(punches.begin(), punches.end(), rng);
    PairingOptions month;
    month.from = QDate(2026, 3, 1);
    month.to = QDate(2026, 3, 31);
    PairingOptions quarter = month;
    quarter.from = QDate(2026, 2, 1);
    quarter.to = QDate(2026, 4, 15);
    const QVector<PunchDay> alone = pairPunches(punches, month);
    const QVector<PunchDay> within = pairPunches(punches, quarter).mid(28, 31);
    ASSERT_EQ(alone.size(), 31);
    ASSERT_EQ(within.size(), 31);
    int pairs = 0;
    for (int i = 0; i < 31; ++i) {
        EXPECT_EQ(alone[i].date, within[i].date);
        EXPECT_EQ(alone[i].pairs, within[i].pairs) << i;
        EXPECT_EQ(alone[i].pairsBeyondSix, within[i].pairsBeyondSix) << i;
        EXPECT_EQ(alone[i].checkOutsWithoutCheckIn, within[i].checkOutsWithoutCheckIn) << i;
        EXPECT_EQ(alone[i].duplicatesDropped, within[i].duplicatesDropped) << i;
        EXPECT_EQ(alone[i].flags, within[i].flags) << i;
        pairs += alone[i].pairs.size();
    }
    EXPECT_GT(pairs, 31);
}

// ---- The business date ------------------------------------------------------------------------

TEST(PairBusinessDate, APunchAfterItFlagsItsDay) {
    PairingOptions o = period(2, 5);
    o.businessDate = QDate(2026, 3, 4);
    const QVector<PunchDay> days =
        pairPunches({any("2026-03-04 08:00"), any("2026-03-04 23:59:59"),
                     any("2026-03-05 00:05:00"), any("2026-03-05 08:00")},
                    o);
    EXPECT_EQ(pairsText(days[2]), "08:00-23:59:59");
    EXPECT_EQ(days[2].flags, DayFlags());
    EXPECT_EQ(pairsText(days[3]), "00:05-08:00");
    EXPECT_EQ(days[3].flags, DayFlags(DayFlag::AfterBusinessDate));
    EXPECT_EQ(dayFlagTexts(days[3].flags), QStringList{"after the business date"});
}

TEST(PairBusinessDate, ANightCheckOutAfterItFlagsTheDayTheShiftBegan) {
    PairingOptions o = period(2, 3);
    o.businessDate = QDate(2026, 3, 3);
    const QVector<PunchDay> days =
        pairPunches({in("2026-03-03 22:00"), out("2026-03-04 06:00")}, o);
    EXPECT_EQ(pairsText(days[1]), "22:00-06:00+1");
    EXPECT_EQ(days[1].flags, DayFlags(DayFlag::AfterBusinessDate));
}

TEST(PairBusinessDate, ACheckOutWithoutCheckInAfterItFlagsItsDay) {
    PairingOptions o = period(2, 3);
    o.businessDate = QDate(2026, 3, 2);
    const QVector<PunchDay> days = pairPunches({out("2026-03-03 17:00")}, o);
    EXPECT_EQ(days[1].flags, DayFlags(DayFlag::AfterBusinessDate) | DayFlag::CheckInMissing);
}

TEST(PairBusinessDate, WithoutABusinessDateNothingIsAfterIt) {
    const QVector<PunchDay> days =
        pairPunches({any("2099-03-02 08:00"), any("2099-03-02 17:00")}, [] {
            PairingOptions o;
            o.from = o.to = QDate(2099, 3, 2);
            return o;
        }());
    EXPECT_EQ(days[0].flags, DayFlags());
}

// ---- Order and words
// -----------------------------------------------------------------------------

TEST(PairOrder, PunchesInAnyOrderGiveThePairsInTimeOrder) {
    const PunchDay d = oneDay({any("2026-03-02 17:00"), any("2026-03-02 08:00"),
                               any("2026-03-02 13:00"), any("2026-03-02 12:00")});
    EXPECT_EQ(pairsText(d), "08:00-12:00 13:00-17:00");
}

TEST(PairFlags, EachFlagHasTheClerksWords) {
    const DayFlags all = DayFlags(DayFlag::CheckOutMissing) | DayFlag::CheckInMissing |
                         DayFlag::MoreThanSixPairs | DayFlag::AfterBusinessDate;
    EXPECT_EQ(dayFlagTexts(all), (QStringList{"check-out missing", "check-in missing",
                                              "more than six pairs", "after the business date"}));
    EXPECT_TRUE(dayFlagTexts(DayFlags()).isEmpty());
}

// ---- From a file to the days ------------------------------------------------------------------

TEST(PairFromFile, AClocksLogReadMatchedAndPaired) {
    const QByteArray log =
        "Gate 1 SN 0841273\r\n"
        "  42\t2026-03-02 08:00:00\t1\t0\r\n"
        "0007\t2026-03-02 21:58:00\t2\t255\r\n"
        "42\t2026-03-02 08:01:00\t1\t0\r\n"
        "42\t2026-03-02 17:00:00\t1\t1\r\n"
        "0007\t2026-03-03 06:02:00\t2\t255\r\n"
        "555\t2026-03-03 06:02:00\t2\t255\r\n"
        "42\t2026-03-03 08:00:00\t1\t0\r\n"
        "42\t2026-02-30 17:00:00\t1\t1\r\n"
        "Total: 8\r\n";
    const ReadResult r = readPunchBytes(log);
    ASSERT_EQ(r.status, FileStatus::Read);
    EXPECT_EQ(describeProblems(r.problems),
              QStringList{"Line 9: impossible date \"2026-02-30 17:00:00\""});
    const MatchResult m = matchPunches(r.punches, {{1, "42", true}, {2, "7", true}});
    EXPECT_EQ(describeMatch(m),
              QStringList{"Code \"555\": 1 punch, no employee has this number (first on line 7)"});
    PairingOptions o = period(2, 3);
    o.businessDate = QDate(2026, 3, 3);
    const QVector<PunchDay> ann = pairPunches(m.punchesByEmployee.value(1), o);
    EXPECT_EQ(daysText(ann), (QStringList{"2026-03-02: 08:00-17:00", "2026-03-03: 08:00-"}));
    EXPECT_EQ(ann[0].duplicatesDropped, 1);
    EXPECT_EQ(dayFlagTexts(ann[1].flags), QStringList{"check-out missing"});
    const QVector<PunchDay> bob = pairPunches(m.punchesByEmployee.value(2), o);
    EXPECT_EQ(daysText(bob), (QStringList{"2026-03-02: 21:58-06:02+1", "2026-03-03: "}));
}
