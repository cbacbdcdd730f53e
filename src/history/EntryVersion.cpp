#include "history/EntryVersion.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocale>
#include <QMap>
#include <QSet>
#include <QTime>
#include <cmath>

#include "rules/Saving.h"
#include "shared/TimeValue.h"

namespace qz2::history {

namespace {

const QString kNone = QStringLiteral("-");

QString isoDate(QDate d) {
    return d.toString(Qt::ISODate);
}
QString hm(TimeValue t) {
    return t.format(u"HH:mm");
}

QString quoted(const QString& text) {
    QString q = text;
    q.replace(QLatin1Char('"'), QStringLiteral("\"\""));
    return QLatin1Char('"') + q + QLatin1Char('"');
}

QJsonValue jsonOf(const std::optional<QString>& v) {
    return v ? QJsonValue(*v) : QJsonValue();
}
QJsonValue jsonOf(const std::optional<TimeValue>& t) {
    return t ? QJsonValue(hm(*t)) : QJsonValue();
}
QJsonValue jsonOf(const std::optional<qint32>& n) {
    return n ? QJsonValue(static_cast<qint64>(*n)) : QJsonValue();
}

std::optional<TimeValue> timeOf(const QJsonValue& v) {
    if (v.isNull()) return std::nullopt;
    const QTime t = QTime::fromString(v.toString(), QStringLiteral("HH:mm"));
    if (!t.isValid()) throw std::invalid_argument("time");
    return TimeValue::fromTime(t);
}

std::optional<qint32> idOf(const QJsonValue& v) {
    if (v.isNull()) return std::nullopt;
    if (!v.isDouble()) throw std::invalid_argument("id");
    return static_cast<qint32>(v.toInteger());
}

QDate dateOf(const QJsonValue& v) {
    const QDate d = QDate::fromString(v.toString(), Qt::ISODate);
    if (!d.isValid()) throw std::invalid_argument("date");
    return d;
}

// The words of a header column and of its values.
QString columnWords(const QString& column) {
    static const QMap<QString, QString> words{
        {QStringLiteral("eaNo"), QStringLiteral("Number")},
        {QStringLiteral("eaDate"), QStringLiteral("Attendance date")},
        {QStringLiteral("eaEmpID"), QStringLiteral("Employee")},
        {QStringLiteral("eaStartDate"), QStringLiteral("From")},
        {QStringLiteral("eaEndDate"), QStringLiteral("To")},
        {QStringLiteral("eaPresent"), QStringLiteral("Present days")},
        {QStringLiteral("eaLeaves"), QStringLiteral("Leave days")},
        {QStringLiteral("eaAbsent"), QStringLiteral("Absent days")},
        {QStringLiteral("eacwtsid"), QStringLiteral("Work-time setting")},
        {QStringLiteral("eaPerHourRate"), QStringLiteral("Rate/hour")},
        {QStringLiteral("eaRemarks"), QStringLiteral("Remarks")},
        {QStringLiteral("eaCancelled"), QStringLiteral("Cancelled")},
        {QStringLiteral("eaCancelledRemarks"), QStringLiteral("Reason for deletion")}};
    return words.value(column, column);
}

QString valueWords(const QString& column, const std::optional<QString>& v) {
    if (!v) return QStringLiteral("none");
    if (column == QLatin1String("eaCancelled"))
        return *v == QLatin1String("1") ? QStringLiteral("yes") : QStringLiteral("no");
    if (isTextColumn(column)) return quoted(*v);
    const QDate d = QDate::fromString(*v, Qt::ISODate);
    if (d.isValid()) return d.toString(QStringLiteral("dd/MM/yyyy"));
    return *v;
}

struct Pair {
    QString in;
    QString out;
};

QList<Pair> pairsOf(const std::optional<QString>& text) {
    QList<Pair> pairs;
    if (!text) return pairs;
    for (const QString& p : text->split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
        const qsizetype dash = p.indexOf(QLatin1Char('-'));
        pairs.append({p.left(dash), p.mid(dash + 1)});
    }
    return pairs;
}

// Allowance and deduction amounts of a claim text, in "hh:mm" ("00:00" for none).
std::pair<QString, QString> claimAmounts(const std::optional<QString>& text) {
    QString allowance = QStringLiteral("00:00");
    QString deduction = QStringLiteral("00:00");
    if (text) {
        const QStringList parts = text->split(QLatin1Char(' '), Qt::SkipEmptyParts);
        for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
            if (parts[i] == QLatin1String("A"))
                allowance = parts[i + 1];
            else
                deduction = parts[i + 1];
        }
    }
    return {allowance, deduction};
}

QString arrow(const QString& a, const QString& b) {
    return a + QStringLiteral(" → ") + b;
}

// A day's changes in words, without the day in front.
QStringList dayWords(const Change& c) {
    QStringList words;
    switch (c.kind) {
        case Change::Kind::Type:
            if (!c.before)
                words << QStringLiteral("added as ") + dayTypeWords(*c.after);
            else if (!c.after)
                words << QStringLiteral("removed (was ") + dayTypeWords(*c.before) +
                             QLatin1Char(')');
            else
                words << arrow(dayTypeWords(*c.before), dayTypeWords(*c.after));
            break;
        case Change::Kind::Pairs: {
            const QList<Pair> before = pairsOf(c.before);
            const QList<Pair> after = pairsOf(c.after);
            const bool numbered = before.size() > 1 || after.size() > 1;
            for (qsizetype i = 0; i < std::max(before.size(), after.size()); ++i) {
                const QString n = numbered ? QLatin1Char(' ') + QString::number(i + 1) : QString();
                if (i >= before.size()) {
                    words << QStringLiteral("pair %1 added %2–%3")
                                 .arg(i + 1)
                                 .arg(after[i].in, after[i].out);
                } else if (i >= after.size()) {
                    words << QStringLiteral("pair %1 removed %2–%3")
                                 .arg(i + 1)
                                 .arg(before[i].in, before[i].out);
                } else {
                    if (before[i].in != after[i].in)
                        words << QStringLiteral("check-in") + n + QLatin1Char(' ') +
                                     arrow(before[i].in, after[i].in);
                    if (before[i].out != after[i].out)
                        words << QStringLiteral("check-out") + n + QLatin1Char(' ') +
                                     arrow(before[i].out, after[i].out);
                }
            }
            break;
        }
        case Change::Kind::Claim: {
            const auto [allowanceBefore, deductionBefore] = claimAmounts(c.before);
            const auto [allowanceAfter, deductionAfter] = claimAmounts(c.after);
            if (allowanceBefore != allowanceAfter)
                words << QStringLiteral("Allowances ") + arrow(allowanceBefore, allowanceAfter);
            if (deductionBefore != deductionAfter)
                words << QStringLiteral("Deductions ") + arrow(deductionBefore, deductionAfter);
            break;
        }
        case Change::Kind::Header:
            break;
    }
    return words;
}

}  // namespace

QString actionCode(Action action) {
    switch (action) {
        case Action::Created:
            return QStringLiteral("created");
        case Action::Edited:
            return QStringLiteral("edited");
        case Action::Imported:
            return QStringLiteral("imported");
        case Action::Cancelled:
            return QStringLiteral("cancelled");
    }
    return {};
}

std::optional<Action> actionFromCode(QStringView code) {
    for (Action a : {Action::Created, Action::Edited, Action::Imported, Action::Cancelled})
        if (code.compare(actionCode(a), Qt::CaseInsensitive) == 0) return a;
    return std::nullopt;
}

QString actionWords(Action action) {
    QString code = actionCode(action);
    code[0] = code[0].toUpper();
    return code;
}

const QStringList& headerColumns() {
    static const QStringList columns{QStringLiteral("eaNo"),
                                     QStringLiteral("eaDate"),
                                     QStringLiteral("eaEmpID"),
                                     QStringLiteral("eaStartDate"),
                                     QStringLiteral("eaEndDate"),
                                     QStringLiteral("eaPresent"),
                                     QStringLiteral("eaLeaves"),
                                     QStringLiteral("eaAbsent"),
                                     QStringLiteral("eacwtsid"),
                                     QStringLiteral("eaPerHourRate"),
                                     QStringLiteral("eaRemarks"),
                                     QStringLiteral("eaCancelled"),
                                     QStringLiteral("eaCancelledRemarks")};
    return columns;
}

bool isTextColumn(QStringView column) {
    return column == u"eaNo" || column == u"eaRemarks" || column == u"eaCancelledRemarks";
}

std::optional<QString> EntryVersion::value(QStringView column) const {
    const qsizetype i = headerColumns().indexOf(column.toString());
    return i >= 0 && i < header.size() ? header[i] : std::nullopt;
}

void EntryVersion::setValue(QStringView column, std::optional<QString> v) {
    const qsizetype i = headerColumns().indexOf(column.toString());
    if (i < 0) return;
    while (header.size() < headerColumns().size()) header.append(std::nullopt);
    header[i] = std::move(v);
}

QString numberText(double value) {
    return QString::number(value, 'g', QLocale::FloatingPointShortest);
}

QString versionText(const EntryVersion& version) {
    QJsonObject header;
    for (qsizetype i = 0; i < headerColumns().size(); ++i)
        header.insert(headerColumns()[i],
                      jsonOf(i < version.header.size() ? version.header[i] : std::nullopt));
    QJsonArray lines;
    for (const VersionLine& l : version.lines)
        lines.append(
            QJsonArray{l.detailId, isoDate(l.date), l.type, jsonOf(l.checkIn), jsonOf(l.checkOut)});
    QJsonArray claims;
    for (const VersionClaim& c : version.claims)
        claims.append(QJsonArray{c.detailId, isoDate(c.date), c.hours, jsonOf(c.allowanceId),
                                 jsonOf(c.deductionId)});
    const QJsonObject root{{QStringLiteral("id"), static_cast<qint64>(version.id)},
                           {QStringLiteral("header"), header},
                           {QStringLiteral("lines"), lines},
                           {QStringLiteral("claims"), claims}};
    return QString::fromUtf8(QJsonDocument(root).toJson(QJsonDocument::Compact));
}

std::optional<EntryVersion> versionFromText(const QString& text) {
    QJsonParseError error{};
    const QJsonDocument doc = QJsonDocument::fromJson(text.toUtf8(), &error);
    if (error.error != QJsonParseError::NoError || !doc.isObject()) return std::nullopt;
    const QJsonObject root = doc.object();
    try {
        EntryVersion v;
        if (!root.value(QStringLiteral("id")).isDouble()) return std::nullopt;
        v.id = static_cast<qint32>(root.value(QStringLiteral("id")).toInteger());
        const QJsonObject header = root.value(QStringLiteral("header")).toObject();
        for (const QString& column : headerColumns()) {
            const QJsonValue value = header.value(column);
            v.header.append(value.isString() ? std::optional<QString>(value.toString())
                                             : std::nullopt);
        }
        for (const QJsonValue& item : root.value(QStringLiteral("lines")).toArray()) {
            const QJsonArray a = item.toArray();
            if (a.size() != 5) return std::nullopt;
            v.lines.append(
                {a[0].toInt(), dateOf(a[1]), a[2].toString(), timeOf(a[3]), timeOf(a[4])});
        }
        for (const QJsonValue& item : root.value(QStringLiteral("claims")).toArray()) {
            const QJsonArray a = item.toArray();
            if (a.size() != 5) return std::nullopt;
            v.claims.append({a[0].toInt(), dateOf(a[1]), a[2].toDouble(), idOf(a[3]), idOf(a[4])});
        }
        return v;
    } catch (const std::invalid_argument&) {
        return std::nullopt;
    }
}

std::optional<QString> dayType(const EntryVersion& v, QDate day) {
    for (const VersionLine& l : v.lines)
        if (l.date == day) return l.type;
    return std::nullopt;
}

std::optional<QString> dayPairs(const EntryVersion& v, QDate day) {
    QStringList pairs;
    for (const VersionLine& l : v.lines)
        if (l.date == day && (l.checkIn || l.checkOut))
            pairs << (l.checkIn ? hm(*l.checkIn) : QString()) + QLatin1Char('-') +
                         (l.checkOut ? hm(*l.checkOut) : QString());
    if (pairs.isEmpty()) return std::nullopt;
    return pairs.join(QLatin1Char(' '));
}

std::optional<QString> dayClaim(const EntryVersion& v, QDate day) {
    QStringList claims;
    for (const VersionClaim& c : v.claims)
        if (c.date == day)
            claims << (c.allowanceId ? QStringLiteral("A ") : QStringLiteral("D ")) +
                          rules::decimalHoursText(c.hours);
    if (claims.isEmpty()) return std::nullopt;
    return claims.join(QLatin1Char(' '));
}

QList<Change> versionChanges(const EntryVersion* before, const EntryVersion& after) {
    QList<Change> changes;
    for (const QString& column : headerColumns()) {
        const std::optional<QString> b = before ? before->value(column) : std::nullopt;
        const std::optional<QString> a = after.value(column);
        if (!before || b != a) changes.append({Change::Kind::Header, column, QDate(), b, a});
    }
    QSet<QDate> seen;
    QList<QDate> days;
    const auto collect = [&](const EntryVersion& v) {
        for (const VersionLine& l : v.lines)
            if (!seen.contains(l.date)) seen.insert(l.date), days.append(l.date);
        for (const VersionClaim& c : v.claims)
            if (!seen.contains(c.date)) seen.insert(c.date), days.append(c.date);
    };
    if (before) collect(*before);
    collect(after);
    std::sort(days.begin(), days.end());
    const EntryVersion none;
    const EntryVersion& b = before ? *before : none;
    for (QDate day : days) {
        const std::pair<Change::Kind, std::optional<QString> (*)(const EntryVersion&, QDate)>
            parts[] = {{Change::Kind::Type, dayType},
                       {Change::Kind::Pairs, dayPairs},
                       {Change::Kind::Claim, dayClaim}};
        for (const auto& [kind, read] : parts) {
            const std::optional<QString> was = read(b, day);
            const std::optional<QString> now = read(after, day);
            if (was != now) changes.append({kind, QString(), day, was, now});
        }
    }
    return changes;
}

QString changesText(const QList<Change>& changes) {
    QStringList lines;
    for (const Change& c : changes) {
        const auto show = [&c](const std::optional<QString>& v) {
            if (!v) return kNone;
            return c.kind == Change::Kind::Header && isTextColumn(c.column) ? quoted(*v) : *v;
        };
        QString name = c.column;
        if (c.kind != Change::Kind::Header) {
            static const char* const kinds[] = {"", "type", "pairs", "claim"};
            name =
                isoDate(c.day) + QLatin1Char(' ') + QLatin1String(kinds[static_cast<int>(c.kind)]);
        }
        lines << name + QStringLiteral(": ") + show(c.before) + QStringLiteral(" -> ") +
                     show(c.after);
    }
    // An edit that changed nothing is still a version: its text is empty, never NULL.
    return lines.isEmpty() ? QStringLiteral("") : lines.join(QLatin1Char('\n'));
}

QStringList changesInWords(const QList<Change>& changes) {
    QStringList lines;
    QDate day;
    QStringList dayParts;
    const auto flushDay = [&] {
        if (!dayParts.isEmpty())
            lines << day.toString(QStringLiteral("dd/MM")) + QLatin1Char(' ') +
                         dayParts.join(QStringLiteral("; "));
        dayParts.clear();
    };
    for (const Change& c : changes) {
        if (c.kind == Change::Kind::Header) {
            flushDay();
            if (c.column == QLatin1String("eaCancelled") && c.after == QStringLiteral("1"))
                lines << QStringLiteral("Cancelled");
            else
                lines << columnWords(c.column) + QLatin1Char(' ') +
                             arrow(valueWords(c.column, c.before), valueWords(c.column, c.after));
            continue;
        }
        if (c.day != day) flushDay();
        day = c.day;
        dayParts << dayWords(c);
    }
    flushDay();
    return lines;
}

QString versionSummary(const EntryVersion& version, const QString& employee) {
    const auto date = [&](const char* column) {
        return valueWords(QString::fromLatin1(column), version.value(QString::fromLatin1(column)));
    };
    int withTimes = 0;
    QSet<QDate> timed;
    for (const VersionLine& l : version.lines)
        if (l.checkIn || l.checkOut) timed.insert(l.date);
    withTimes = static_cast<int>(timed.size());
    return QStringLiteral(
               "%1 to %2, employee %3: %4 present, %5 leave, %6 absent; %7 days with times, %8 "
               "claims")
        .arg(date("eaStartDate"), date("eaEndDate"),
             employee.isEmpty() ? version.value(u"eaEmpID").value_or(kNone) : employee,
             version.value(u"eaPresent").value_or(QStringLiteral("0")),
             version.value(u"eaLeaves").value_or(QStringLiteral("0")),
             version.value(u"eaAbsent").value_or(QStringLiteral("0")))
        .arg(withTimes)
        .arg(version.claims.size());
}

QList<VersionDay> versionDays(const EntryVersion& version) {
    QMap<QDate, VersionDay> days;
    for (const VersionLine& l : version.lines) {
        VersionDay& d = days[l.date];
        d.date = l.date;
        if (d.type.isEmpty()) d.type = l.type;
    }
    for (const VersionClaim& c : version.claims) {
        VersionDay& d = days[c.date];
        d.date = c.date;
        (c.allowanceId ? d.allowance : d.deduction) = rules::decimalHoursText(c.hours);
    }
    for (VersionDay& d : days) d.pairs = dayPairs(version, d.date).value_or(QString());
    return days.values();
}

QString dayTypeWords(const QString& code) {
    static const QMap<QString, QString> words{
        {QStringLiteral("P"), QStringLiteral("Present")},
        {QStringLiteral("A"), QStringLiteral("Absent")},
        {QStringLiteral("L"), QStringLiteral("Leave")},
        {QStringLiteral("H"), QStringLiteral("Holiday")},
        {QStringLiteral("HA"), QStringLiteral("Half-day absent")},
        {QStringLiteral("HL"), QStringLiteral("Half-day leave")},
        {QStringLiteral("AL"), QStringLiteral("Half leave, half absent")}};
    return words.value(code.trimmed(), code);
}

}  // namespace qz2::history
