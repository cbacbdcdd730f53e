// What the save writes from the grids: the detail lines (mirror rows, then absent and leave
// days and every day without pairs) and the allowance/deduction lines.
#include <gtest/gtest.h>

#include <QSet>
#include <ostream>

#include "rules/Saving.h"

void PrintTo(const QString& s, std::ostream* os) {
    *os << '"' << s.toStdString() << '"';
}

using namespace qz2::rules;
using qz2::FlexGridModel;
using qz2::TimeValue;

namespace {

void makeDayGrid(FlexGridModel& day) {
    day.setCols(7);
    day.setRows(1);
}
void makePairGrid(FlexGridModel& g) {
    g.setCols(4);
    g.setRows(1);
}
QDate mar(int d) {
    return QDate(2026, 3, d);
}
std::optional<TimeValue> at(int h, int m) {
    return TimeValue::fromHM(h, m);
}

void expectLine(const DetailLine& l, int id, QDate date, const char* type,
                std::optional<TimeValue> in, std::optional<TimeValue> out) {
    SCOPED_TRACE(id);
    EXPECT_EQ(l.detailId, id);
    EXPECT_EQ(l.date, date);
    EXPECT_EQ(l.type, QString::fromLatin1(type));
    ASSERT_EQ(l.checkIn.has_value(), in.has_value());
    ASSERT_EQ(l.checkOut.has_value(), out.has_value());
    if (in) {
        EXPECT_EQ(l.checkIn->format(u"HH:mm"), in->format(u"HH:mm"));
    }
    if (out) {
        EXPECT_EQ(l.checkOut->format(u"HH:mm"), out->format(u"HH:mm"));
    }
}

}  // namespace

// ---- Hours as a decimal ---------------------------------------------------------------------

TEST(HoursToDecimal, HoursPlusMinutesOverSixty) {
    EXPECT_EQ(hoursToDecimal("01:30"), 1.5);
    EXPECT_EQ(hoursToDecimal("00.45"), 0.75);
    EXPECT_EQ(hoursToDecimal("08:00"), 8.0);
    EXPECT_EQ(hoursToDecimal("00:00"), 0.0);
    EXPECT_DOUBLE_EQ(*hoursToDecimal("02:20"), 2.0 + 20.0 / 60.0);
}

TEST(HoursToDecimal, NotATime) {
    EXPECT_FALSE(hoursToDecimal(""));
    EXPECT_FALSE(hoursToDecimal("soon"));
}

// ---- Day type of a mirror row ----------------------------------------------------------------

TEST(DayTypeForMirrorRow, TheFirstDayRowOfTheSameDateTextTrimmed) {
    FlexGridModel day;
    makeDayGrid(day);
    day.AddItem({"", "02/03/2026", "HL "});
    day.AddItem({"", "02/03/2026", "P"});
    EXPECT_EQ(dayTypeForMirrorRow(day, "02/03/2026"), "HL");
    EXPECT_EQ(dayTypeForMirrorRow(day, "03/03/2026"), "");
    EXPECT_EQ(dayTypeForMirrorRow(day, "2026/03/02"), "");  // matched as text
}

// ---- Detail lines --------------------------------------------------------------------------

TEST(DetailLines, MirrorRowsFirstThenOtherDaysContinuingTheNumbering) {
    FlexGridModel day, mirror;
    makeDayGrid(day);
    makePairGrid(mirror);
    day.AddItem({"", "01/03/2026", "H"});  // holiday without pairs: a line
    day.AddItem({"", "02/03/2026", "P"});
    day.AddItem({"", "03/03/2026", "A"});    // absent: a line
    day.AddItem({"", "04/03/2026", " L "});  // leave: a line (trimmed type), its pairs too
    day.AddItem({"", "05/03/2026", "H"});    // holiday with recorded times: mirror only
    day.AddItem({"", "06/03/2026", "HL"});
    day.AddItem({"", "07/03/2026", "AL"});  // no pairs: a line of its own
    day.AddItem({"", "08/03/2026", "P"});   // a day off without pairs: a line of its own
    day.AddItem({"", "09/03/2026", "HA"});  // no pairs: a line of its own
    mirror.AddItem({"02/03/2026", "1", "09:00", "13:00"});
    mirror.AddItem({"02/03/2026", "2", "14:00", ""});
    mirror.AddItem({"04/03/2026", "1", "09:00", "13:00"});
    mirror.AddItem({"05/03/2026", "1", "", "12:00"});
    mirror.AddItem({"06/03/2026", "1", "09:15", "13:00"});

    const QList<DetailLine> lines = detailLinesToInsert(day, mirror);
    ASSERT_EQ(lines.size(), 11);
    expectLine(lines[0], 1, mar(2), "P", at(9, 0), at(13, 0));
    expectLine(lines[1], 2, mar(2), "P", at(14, 0), at(0, 0));  // empty is stored as 00:00
    expectLine(lines[2], 3, mar(4), "L", at(9, 0), at(13, 0));
    expectLine(lines[3], 4, mar(5), "H", at(0, 0), at(12, 0));
    expectLine(lines[4], 5, mar(6), "HL", at(9, 15), at(13, 0));
    expectLine(lines[5], 6, mar(1), "H", std::nullopt, std::nullopt);
    expectLine(lines[6], 7, mar(3), "A", std::nullopt, std::nullopt);
    expectLine(lines[7], 8, mar(4), "L", std::nullopt, std::nullopt);
    expectLine(lines[8], 9, mar(7), "AL", std::nullopt, std::nullopt);
    expectLine(lines[9], 10, mar(8), "P", std::nullopt, std::nullopt);
    expectLine(lines[10], 11, mar(9), "HA", std::nullopt, std::nullopt);
}

TEST(DetailLines, EveryDayOfThePeriodHasAtLeastOneLine) {
    // Whatever its type, a day without pairs is stored, so the entry reopens with every day.
    FlexGridModel day, mirror;
    makeDayGrid(day);
    makePairGrid(mirror);
    const QStringList types{"P", "A", "L", "H", "HA", "HL", "AL"};
    for (int i = 0; i < types.size(); ++i)
        day.AddItem({"", mar(10 + i).toString("dd/MM/yyyy"), types[i]});
    mirror.AddItem({"10/03/2026", "1", "09:00", "17:00"});
    const QList<DetailLine> lines = detailLinesToInsert(day, mirror);
    QSet<QDate> stored;
    for (const DetailLine& l : lines) stored << l.date;
    EXPECT_EQ(stored.size(), types.size());
    // The worked day has only its pair line.
    int linesOfTheTenth = 0;
    for (const DetailLine& l : lines) linesOfTheTenth += l.date == mar(10) ? 1 : 0;
    EXPECT_EQ(linesOfTheTenth, 1);
}

TEST(DetailLines, WithoutMirrorRowsTheOtherDaysStartAtOne) {
    FlexGridModel day, mirror;
    makeDayGrid(day);
    makePairGrid(mirror);
    day.AddItem({"", "02/03/2026", "P"});
    day.AddItem({"", "03/03/2026", "L"});
    const QList<DetailLine> lines = detailLinesToInsert(day, mirror);
    ASSERT_EQ(lines.size(), 2);
    expectLine(lines[0], 1, mar(2), "P", std::nullopt, std::nullopt);
    expectLine(lines[1], 2, mar(3), "L", std::nullopt, std::nullopt);
}

TEST(DetailLines, InsertOtherDaysAdvancesTheCounterItIsGiven) {
    FlexGridModel day, mirror;
    makeDayGrid(day);
    makePairGrid(mirror);
    day.AddItem({"", "02/03/2026", "A"});
    day.AddItem({"", "03/03/2026", "A"});
    int counter = 5;
    const QList<DetailLine> lines = fnInsertOtherDays(day, mirror, counter);
    ASSERT_EQ(lines.size(), 2);
    EXPECT_EQ(lines[0].detailId, 6);
    EXPECT_EQ(lines[1].detailId, 7);
    EXPECT_EQ(counter, 7);
}

TEST(DetailLines, AnUnreadableMirrorTimeIsAnError) {
    FlexGridModel day, mirror;
    makeDayGrid(day);
    makePairGrid(mirror);
    mirror.AddItem({"02/03/2026", "1", "nine", "13:00"});
    EXPECT_THROW(detailLinesToInsert(day, mirror), SaveDataError);
}

// ---- Allowance and deduction lines -------------------------------------------------------------

TEST(AllowanceLines, OneLinePerClaimedDayWithASharedCounter) {
    FlexGridModel day;
    makeDayGrid(day);
    day.AddItem({"", "02/03/2026", "P", "09:30", "08:00", "01.30", "A"});
    day.AddItem({"", "03/03/2026", "P", "08:00", "08:00", "00:00", ""});
    day.AddItem({"", "04/03/2026", "P", "07:15", "08:00", "00:45", " D "});
    day.AddItem({"", "05/03/2026", "P", "07:15", "08:00", "00:45", "X"});
    day.AddItem({"", "06/03/2026", "H", "02:00", "00:00", "02:00", "A"});
    const QList<AllowanceLine> lines = allowanceLinesToInsert(day, 31, 47);
    ASSERT_EQ(lines.size(), 3);

    EXPECT_EQ(lines[0].detailId, 1);
    EXPECT_EQ(lines[0].date, mar(2));
    EXPECT_EQ(lines[0].hours, 1.5);
    EXPECT_EQ(lines[0].allowanceId, 31);
    EXPECT_FALSE(lines[0].deductionId);

    EXPECT_EQ(lines[1].detailId, 2);
    EXPECT_EQ(lines[1].date, mar(4));
    EXPECT_EQ(lines[1].hours, 0.75);
    EXPECT_FALSE(lines[1].allowanceId);
    EXPECT_EQ(lines[1].deductionId, 47);

    EXPECT_EQ(lines[2].detailId, 3);
    EXPECT_EQ(lines[2].date, mar(6));
    EXPECT_EQ(lines[2].hours, 2.0);
    EXPECT_EQ(lines[2].allowanceId, 31);
}

TEST(AllowanceLines, ACurrencyWithoutIdentifiersStoresZeroNotNull) {
    FlexGridModel day;
    makeDayGrid(day);
    day.AddItem({"", "02/03/2026", "P", "09:30", "08:00", "01:30", "A"});
    const QList<AllowanceLine> lines = allowanceLinesToInsert(day, 0, 0);
    ASSERT_EQ(lines.size(), 1);
    ASSERT_TRUE(lines[0].allowanceId.has_value());
    EXPECT_EQ(*lines[0].allowanceId, 0);
    EXPECT_FALSE(lines[0].deductionId);
}

TEST(AllowanceLines, AnAmountThatIsNotATimeIsAnError) {
    FlexGridModel day;
    makeDayGrid(day);
    day.AddItem({"", "02/03/2026", "P", "09:30", "08:00", "1h30", "A"});
    EXPECT_THROW(allowanceLinesToInsert(day, 1, 2), SaveDataError);
}

// ---- "Process Attendance"
// ------------------------------------------------------------------------

TEST(ProcessAttendanceMissing, NoDaysAtAll) {
    FlexGridModel day, mirror;
    makeDayGrid(day);
    makePairGrid(mirror);
    EXPECT_TRUE(processAttendanceMissing(day, mirror));
}

TEST(ProcessAttendanceMissing, AllPresentPassesWithoutPairs) {
    FlexGridModel day, mirror;
    makeDayGrid(day);
    makePairGrid(mirror);
    day.AddItem({"", "02/03/2026", "P"});
    day.AddItem({"", "03/03/2026", "P"});
    EXPECT_FALSE(processAttendanceMissing(day, mirror));
    day.setTextMatrix(2, 2, "A");
    EXPECT_TRUE(processAttendanceMissing(day, mirror));
    mirror.AddItem({"02/03/2026", "1", "09:00", "17:00"});
    EXPECT_FALSE(processAttendanceMissing(day, mirror));
}

TEST(CleanedText, ControlCharactersBecomeBlanksAndTheTextIsTrimmed) {
    EXPECT_EQ(cleanedText(QStringLiteral(" late\tagain\r\n")), QStringLiteral("late again"));
    EXPECT_EQ(cleanedText(QStringLiteral("before") + QChar(0) + QStringLiteral("after")),
              QStringLiteral("before after"));
    EXPECT_EQ(cleanedText(QString::fromUtf16(u"bell\u0007\u007f")), QStringLiteral("bell"));
    EXPECT_EQ(cleanedText(QStringLiteral("Müller's note")), QStringLiteral("Müller's note"));
    EXPECT_EQ(cleanedText(QStringLiteral("   ")), QString());
}
