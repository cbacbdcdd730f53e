#include "punches/PunchMatch.h"

#include <QLocale>

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
    qint32 employeeId = 0;
    int report = -1;  // index into the list of its kind
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
    QHash<QString, Target> byRawCode;     // the file's spelling -> where its punches go
    QHash<QString, Target> byNormalized;  // so that "042" and "42" share one report
    for (Punch& p : punches) {
        auto raw = byRawCode.constFind(p.code);
        if (raw == byRawCode.constEnd()) {
            const QString key = normalizedCode(p.code);
            auto known = byNormalized.constFind(key);
            if (known == byNormalized.constEnd()) {
                Target t;
                const QVector<int> candidates = byNumber.value(key);
                QVector<CodeReport>* reports = nullptr;
                if (candidates.size() == 1 && employees[candidates.first()].active) {
                    t.kind = Target::Kind::Employee;
                    t.employeeId = employees[candidates.first()].id;
                } else if (candidates.size() == 1) {
                    t.kind = Target::Kind::Inactive;
                    reports = &result.inactiveCodes;
                } else if (candidates.size() > 1) {
                    t.kind = Target::Kind::Ambiguous;
                    reports = &result.ambiguousCodes;
                } else {
                    t.kind = Target::Kind::Unknown;
                    reports = &result.unknownCodes;
                }
                if (reports) {
                    CodeReport r;
                    r.code = p.code;
                    r.firstLine = p.line;
                    for (int c : candidates) r.employeeIds.append(employees[c].id);
                    t.report = static_cast<int>(reports->size());
                    reports->append(r);
                }
                known = byNormalized.insert(key, t);
            }
            raw = byRawCode.insert(p.code, *known);
        }
        const Target& t = *raw;
        switch (t.kind) {
            case Target::Kind::Employee:
                ++result.matched;
                result.punchesByEmployee[t.employeeId].append(std::move(p));
                break;
            case Target::Kind::Unknown:
                ++result.unknownCodes[t.report].punches;
                break;
            case Target::Kind::Inactive:
                ++result.inactiveCodes[t.report].punches;
                break;
            case Target::Kind::Ambiguous:
                ++result.ambiguousCodes[t.report].punches;
                break;
        }
    }
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
