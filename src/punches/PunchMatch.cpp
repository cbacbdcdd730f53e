#include "punches/PunchMatch.h"

#include <QLocale>
#include <string_view>
#include <unordered_map>

namespace qz2::punches {

namespace {

QString grouped(qint64 n) {
    return QLocale(QLocale::English).toString(n);
}

QString punchCount(int n) {
    return grouped(n) + (n == 1 ? QStringLiteral(" punch") : QStringLiteral(" punches"));
}

// Where the punches of one code go.
struct Target {
    enum class Kind { Employee, Unknown, Inactive, Ambiguous } kind = Kind::Unknown;
    int index = 0;  // Employee: the employee's list; otherwise the report in its list
};

}  // namespace

QString normalizedCode(QStringView code) {
    const QStringView t = code.trimmed();
    qsizetype zeros = 0;
    while (zeros < t.size() && t[zeros] == QLatin1Char('0')) ++zeros;
    if (zeros == t.size() && zeros > 0) return QStringLiteral("0");
    return t.mid(zeros).toString();
}

MatchResult matchPunches(QVector<Punch> punches, const QVector<Employee>& employees) {
    QHash<QString, QVector<int>> byNumber;  // normalized number -> employees' indexes
    for (int i = 0; i < employees.size(); ++i) {
        const QString key = normalizedCode(employees[i].empNo);
        if (!key.isEmpty()) byNumber[key].append(i);
    }

    MatchResult result;
    QVector<qint32> listOwners;  // the employee of each list
    QVector<int> listSizes;
    auto targetOf = [&](const Punch& p, const QString& key) {
        const QVector<int> candidates = byNumber.value(key);
        Target t;
        QVector<CodeReport>* reports = nullptr;
        if (candidates.size() == 1 && employees[candidates.first()].active) {
            t.kind = Target::Kind::Employee;
            t.index = static_cast<int>(listOwners.size());
            listOwners.append(employees[candidates.first()].id);
            listSizes.append(0);
            return t;
        }
        if (candidates.size() == 1) {
            t.kind = Target::Kind::Inactive;
            reports = &result.inactiveCodes;
        } else if (candidates.size() > 1) {
            t.kind = Target::Kind::Ambiguous;
            reports = &result.ambiguousCodes;
        } else {
            reports = &result.unknownCodes;
        }
        CodeReport r;
        r.code = p.code;
        r.firstLine = p.line;
        for (int c : candidates) r.employeeIds.append(employees[c].id);
        t.index = static_cast<int>(reports->size());
        reports->append(r);
        return t;
    };

    // First where each punch goes, so that each employee's list is made once at its size.
    // byRawCode maps the file's spelling to it, keyed by views of the punches' own codes
    // (they stay put until the punches are moved below): a std::u16string_view hashes far
    // faster than QString's seeded hash, and a million punches take a million lookups.
    std::unordered_map<std::u16string_view, Target> byRawCode;
    QHash<QString, Target> byNormalized;  // so that "042" and "42" share one target
    QVector<int> listOf(punches.size(), -1);
    for (qsizetype i = 0; i < punches.size(); ++i) {
        const Punch& p = punches.at(i);  // no copy of punches shared with the caller
        const std::u16string_view spelling(reinterpret_cast<const char16_t*>(p.code.utf16()),
                                           size_t(p.code.size()));
        auto raw = byRawCode.find(spelling);
        if (raw == byRawCode.end()) {
            const QString key = normalizedCode(p.code);
            auto known = byNormalized.constFind(key);
            if (known == byNormalized.constEnd()) {
                known = byNormalized.insert(key, targetOf(p, key));
            }
            raw = byRawCode.emplace(spelling, *known).first;
        }
        const Target& t = raw->second;
        switch (t.kind) {
            case Target::Kind::Employee:
                listOf[i] = t.index;
                ++listSizes[t.index];
                break;
            case Target::Kind::Unknown:
                ++result.unknownCodes[t.index].punches;
                break;
            case Target::Kind::Inactive:
                ++result.inactiveCodes[t.index].punches;
                break;
            case Target::Kind::Ambiguous:
                ++result.ambiguousCodes[t.index].punches;
                break;
        }
    }

    QVector<QVector<Punch>> lists(listOwners.size());
    for (qsizetype l = 0; l < lists.size(); ++l) lists[l].reserve(listSizes[l]);
    for (qsizetype i = 0; i < punches.size(); ++i) {
        if (listOf[i] < 0) continue;
        lists[listOf[i]].append(std::move(punches[i]));
        ++result.matched;
    }
    result.punchesByEmployee.reserve(lists.size());
    for (qsizetype l = 0; l < lists.size(); ++l)
        result.punchesByEmployee.insert(listOwners[l], std::move(lists[l]));
    return result;
}

QStringList describeMatch(const MatchResult& result) {
    QStringList out;
    for (const CodeReport& r : result.unknownCodes)
        out << QStringLiteral("Code \"%1\": %2, no employee has this number (first on line %3)")
                   .arg(r.code, punchCount(r.punches), grouped(r.firstLine));
    for (const CodeReport& r : result.inactiveCodes)
        out << QStringLiteral("Code \"%1\": %2 of an inactive employee (first on line %3)")
                   .arg(r.code, punchCount(r.punches), grouped(r.firstLine));
    for (const CodeReport& r : result.ambiguousCodes)
        out << QStringLiteral("Code \"%1\": %2, %3 employees have this number (first on line %4)")
                   .arg(r.code, punchCount(r.punches), grouped(r.employeeIds.size()),
                        grouped(r.firstLine));
    return out;
}

}  // namespace qz2::punches
