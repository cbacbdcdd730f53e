#pragma once
// Matching punches to the company's employees by employee number. A punch's code matches an
// employee's number (eEmpNo) when both read the same once blanks at either end and leading
// zeros are set aside: "  0042" is "42", and a code of zeros only is "0". Letter case and
// blanks inside a code count. Nothing is guessed: a code no employee has, a code of an
// inactive employee and a code that two or more employees' numbers read as are reported
// with their punch counts, and their punches are not given to anyone.

#include <QHash>
#include <QString>
#include <QStringList>
#include <QVector>

#include "punches/Punch.h"

namespace qz2::punches {

struct Employee {
    qint32 id = 0;  // eID
    QString empNo;  // eEmpNo
    bool active = true;
    QString name = {};  // ename, for the clerk's summaries
};

// A code's number as it is compared: trimmed, leading zeros dropped ("000" gives "0").
QString normalizedCode(QStringView code);

// A code whose punches were not given to an employee.
struct CodeReport {
    QString code;                 // as the file first wrote it
    int punches = 0;              // how many punches carried it
    int firstLine = 0;            // the line of the first of them
    QVector<qint32> employeeIds;  // inactive: the employee; ambiguous: every candidate
};

struct MatchResult {
    // Each matched employee's punches, in the order given.
    QHash<qint32, QVector<Punch>> punchesByEmployee;
    int matched = 0;  // punches given to an employee
    // By the first appearance of each code.
    QVector<CodeReport> unknownCodes;    // no employee has the number
    QVector<CodeReport> inactiveCodes;   // the one employee with the number is inactive
    QVector<CodeReport> ambiguousCodes;  // two or more employees' numbers read the same
};

// Takes the punches by value: pass them with std::move when they are not needed afterwards.
MatchResult matchPunches(QVector<Punch> punches, const QVector<Employee>& employees);

// The reports for the clerk, one line per code:
//   Code "0099": 12 punches, no employee has this number (first on line 4)
//   Code "17": 3 punches of an inactive employee (first on line 9)
//   Code "42": 5 punches, 2 employees have this number (first on line 2)
QStringList describeMatch(const MatchResult& result);

}  // namespace qz2::punches
