// Matching punches to employees by number: blanks and leading zeros do not count, nothing
// is guessed, and codes that match no one, an inactive employee or several employees are
// reported with their counts.
#include <gtest/gtest.h>

#include "TestSupport.h"
#include "punches/PunchMatch.h"

using namespace qz2::punches;

namespace {

Punch punch(const QString& code, int line, int minute = 0) {
    Punch p;
    p.code = code;
    p.at = QDateTime(QDate(2026, 3, 2), QTime(8, minute), Qt::UTC);
    p.line = line;
    return p;
}

QList<int> linesOf(const QVector<Punch>& punches) {
    QList<int> lines;
    for (const Punch& p : punches) lines << p.line;
    return lines;
}

const QVector<Employee> kStaff = {
    {1, "42", true},  {2, "0007", true}, {3, "  15  ", true}, {4, "0", true},
    {5, "99", false}, {6, "E12", true},  {7, "300", true},    {8, "0300", true},
};

}  // namespace

TEST(NormalizedCode, BlanksAndLeadingZerosDoNotCount) {
    EXPECT_EQ(normalizedCode(u"  0042"), "42");
    EXPECT_EQ(normalizedCode(u"42  "), "42");
    EXPECT_EQ(normalizedCode(u"420"), "420");
    EXPECT_EQ(normalizedCode(u"000"), "0");
    EXPECT_EQ(normalizedCode(u"0"), "0");
    EXPECT_EQ(normalizedCode(u"   "), "");
    EXPECT_EQ(normalizedCode(u"0E12"), "E12");
    EXPECT_EQ(normalizedCode(u"4 2"), "4 2");
}

TEST(MatchPunches, PaddedCodesMatchTheEmployeesNumber) {
    const MatchResult r = matchPunches({punch("  0042", 1), punch("42", 2), punch("7", 3),
                                        punch("000007", 4), punch("15", 5), punch("E12", 6)},
                                       kStaff);
    EXPECT_EQ(linesOf(r.punchesByEmployee.value(1)), (QList<int>{1, 2}));
    EXPECT_EQ(linesOf(r.punchesByEmployee.value(2)), (QList<int>{3, 4}));
    EXPECT_EQ(linesOf(r.punchesByEmployee.value(3)), QList<int>{5});
    EXPECT_EQ(linesOf(r.punchesByEmployee.value(6)), QList<int>{6});
    EXPECT_EQ(r.matched, 6);
    EXPECT_TRUE(r.unknownCodes.isEmpty());
    // The punch keeps the code as the file wrote it.
    EXPECT_EQ(r.punchesByEmployee.value(1).first().code, "  0042");
}

TEST(MatchPunches, ACodeOfZerosMatchesNumberZero) {
    const MatchResult r = matchPunches({punch("000", 1), punch("0", 2)}, kStaff);
    EXPECT_EQ(linesOf(r.punchesByEmployee.value(4)), (QList<int>{1, 2}));
}

TEST(MatchPunches, AnEmployeeWithoutANumberMatchesNothing) {
    const MatchResult r = matchPunches({punch("0", 1)}, {{1, "", true}, {2, "  ", true}});
    EXPECT_TRUE(r.punchesByEmployee.isEmpty());
    ASSERT_EQ(r.unknownCodes.size(), 1);
}

TEST(MatchPunches, LetterCaseAndInnerBlanksCount) {
    const MatchResult r = matchPunches({punch("e12", 1), punch("4 2", 2)}, kStaff);
    EXPECT_EQ(r.matched, 0);
    EXPECT_EQ(r.unknownCodes.size(), 2);
}

TEST(MatchPunches, UnknownCodesAreCountedPerCodeNeverGuessed) {
    const MatchResult r = matchPunches({punch("42", 1), punch("0099x", 2), punch("123", 3),
                                        punch("099x", 4), punch("123", 5), punch("123", 6)},
                                       kStaff);
    EXPECT_EQ(r.matched, 1);
    ASSERT_EQ(r.unknownCodes.size(), 2);
    // Spellings of one number share a report, under the first spelling seen.
    EXPECT_EQ(r.unknownCodes[0].code, "0099x");
    EXPECT_EQ(r.unknownCodes[0].punches, 2);
    EXPECT_EQ(r.unknownCodes[0].firstLine, 2);
    EXPECT_EQ(r.unknownCodes[1].code, "123");
    EXPECT_EQ(r.unknownCodes[1].punches, 3);
    EXPECT_EQ(r.unknownCodes[1].firstLine, 3);
    EXPECT_EQ(r.punchesByEmployee.size(), 1);
}

TEST(MatchPunches, AnInactiveEmployeesPunchesAreReportedNotMatched) {
    const MatchResult r = matchPunches({punch("99", 1), punch("0099", 2), punch("42", 3)}, kStaff);
    EXPECT_FALSE(r.punchesByEmployee.contains(5));
    ASSERT_EQ(r.inactiveCodes.size(), 1);
    EXPECT_EQ(r.inactiveCodes[0].code, "99");
    EXPECT_EQ(r.inactiveCodes[0].punches, 2);
    EXPECT_EQ(r.inactiveCodes[0].employeeIds, QVector<qint32>{5});
    EXPECT_TRUE(r.unknownCodes.isEmpty());
}

TEST(MatchPunches, NumbersThatReadAlikeAreReportedNotGuessed) {
    // Employees 7 and 8 have "300" and "0300".
    const MatchResult r = matchPunches({punch("300", 1), punch("00300", 2)}, kStaff);
    EXPECT_FALSE(r.punchesByEmployee.contains(7));
    EXPECT_FALSE(r.punchesByEmployee.contains(8));
    ASSERT_EQ(r.ambiguousCodes.size(), 1);
    EXPECT_EQ(r.ambiguousCodes[0].punches, 2);
    EXPECT_EQ(r.ambiguousCodes[0].employeeIds, (QVector<qint32>{7, 8}));
}

TEST(MatchPunches, EveryPunchIsMatchedOrReported) {
    QVector<Punch> punches;
    const QStringList codes = {"42", "7", "99", "300", "555", " 0042", "E12", "0"};
    for (int i = 0; i < 400; ++i) punches << punch(codes[i % codes.size()], i + 1, i % 60);
    const MatchResult r = matchPunches(punches, kStaff);
    int reported = 0;
    for (const auto* list : {&r.unknownCodes, &r.inactiveCodes, &r.ambiguousCodes})
        for (const CodeReport& c : *list) reported += c.punches;
    int given = 0;
    for (const auto& list : r.punchesByEmployee) given += list.size();
    EXPECT_EQ(given, r.matched);
    EXPECT_EQ(r.matched + reported, 400);
    EXPECT_EQ(r.matched, 250);
}

TEST(MatchPunches, ClerksWordsForTheReports) {
    QVector<Punch> punches = {punch("0099x", 4), punch("99", 9), punch("300", 2)};
    for (int i = 0; i < 11; ++i) punches << punch("0099x", 10 + i);
    const MatchResult r = matchPunches(punches, kStaff);
    EXPECT_EQ(
        describeMatch(r),
        (QStringList{"Code \"0099x\": 12 punches, no employee has this number (first on line 4)",
                     "Code \"99\": 1 punch of an inactive employee (first on line 9)",
                     "Code \"300\": 1 punch, 2 employees have this number (first on line 2)"}));
}
