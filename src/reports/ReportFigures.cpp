#include "reports/ReportFigures.h"

#include <QHash>
#include <algorithm>
#include <cmath>

#include "rules/DayTypes.h"
#include "rules/Hours.h"

namespace qz2::reports {

namespace {

// Minutes of a day's hours as the form shows them ("hh:mm" of the time of day).
qint64 dayMinutes(TimeValue t) {
    const QTime time = t.timeOfDay();
    return time.hour() * 60 + time.minute();
}

// Check-out minus the check-in after the grace rule, for line after line. The grace rule
// depends only on the setting, the weekday and the recorded check-in, which repeat a great
// deal over a million lines: each combination is worked out once.
class PairHours {
public:
    PairHours(const WorkTime& workTime, int graceMinutes)
        : m_workTime(workTime), m_grace(graceMinutes) {}

    TimeValue operator()(const DetailLine& d, std::optional<qint32> setting) {
        if (!d.checkIn || !d.checkOut) return TimeValue();
        const qint64 ms = std::llround(d.checkIn->days() * 86400000.0);
        const qint64 key =
            ((static_cast<qint64>(setting.value_or(-1)) * 8 + workTimeDayId(d.date)) << 28) ^ ms;
        auto it = m_checkIns.constFind(key);
        if (it == m_checkIns.constEnd())
            it = m_checkIns.insert(
                key, rules::effectiveCheckIn(*d.checkIn, graceStart(setting, d.date), m_grace));
        return *d.checkOut - *it;
    }

private:
    // The first scheduled check-in of the day under the setting, midnight without one: the
    // start the grace rule measures from.
    TimeValue graceStart(std::optional<qint32> setting, QDate date) const {
        const std::optional<rules::DaySchedule> day = m_workTime.day(setting, date);
        if (!day || !(*day)[0].checkIn) return TimeValue();
        return *(*day)[0].checkIn;
    }

    const WorkTime& m_workTime;
    int m_grace;
    QHash<qint64, TimeValue> m_checkIns;
};

qint64 scheduledMinutesOf(const WorkTime& workTime, std::optional<qint32> setting, QDate date,
                          const QString& code) {
    if (code == QLatin1String("H")) return 0;
    const std::optional<rules::DaySchedule> day = workTime.day(setting, date);
    if (!day) return 0;
    return dayMinutes(rules::scheduledHours(*day));
}

void addUnique(QStringList& list, const std::optional<qint32>& id) {
    if (!id) return;
    const QString text = QString::number(*id);
    if (!list.contains(text)) list << text;
}

}  // namespace

QString hoursText(qint64 minutes) {
    const QString sign = minutes < 0 ? QStringLiteral("-") : QString();
    const qint64 m = minutes < 0 ? -minutes : minutes;
    return sign + QStringLiteral("%1:%2")
                      .arg(m / 60, 2, 10, QLatin1Char('0'))
                      .arg(m % 60, 2, 10, QLatin1Char('0'));
}

qint64 minutesOf(double hours) {
    return std::llround(hours * 60.0);
}

QString conflictText(const QStringList& codes) {
    return QLatin1Char('!') + codes.join(QLatin1Char('/'));
}

Muster buildMuster(const PeriodSource& src) {
    Muster m;
    m.from = src.scope.from;
    m.to = src.scope.to;
    m.departmentName = src.departmentName;
    const int days = static_cast<int>(m.from.daysTo(m.to)) + 1;

    QHash<qint32, int> rowOfEmployee;
    m.rows.reserve(src.employees.size());
    for (const Employee& e : src.employees) {
        rowOfEmployee.insert(e.id, static_cast<int>(m.rows.size()));
        MusterRow r;
        r.employee = e;
        m.rows.push_back(std::move(r));
    }
    QHash<qint32, int> entryIndex;
    for (int i = 0; i < src.entries.size(); ++i) {
        const EntryHead& h = src.entries[i];
        entryIndex.insert(h.id, i);
        const auto row = rowOfEmployee.constFind(h.employee.id);
        if (row != rowOfEmployee.constEnd()) m.rows[*row].entryNos << h.no;
    }

    // The row of each entry's employee (-1 when not listed).
    QVector<int> rowOfEntry(src.entries.size(), -1);
    for (int i = 0; i < src.entries.size(); ++i)
        rowOfEntry[i] = rowOfEmployee.value(src.entries[i].employee.id, -1);

    // Every (row, day) slot: the first entry that has lines on it, its code and worked hours.
    // Lines come in no particular order; further entries on the same slot (conflicts, rare)
    // are kept aside with their codes.
    struct Slot {
        int entry = -1;
        QString code;
        TimeValue worked;
    };
    QVector<Slot> daySlots(static_cast<qsizetype>(m.rows.size()) * days);
    QHash<qsizetype, QVector<std::pair<int, QString>>> others;
    PairHours pairWorked(src.workTime, src.graceMinutes);
    for (const DetailLine& d : src.details) {
        const int e = entryIndex.value(d.entryId, -1);
        if (e < 0) continue;
        const int row = rowOfEntry[e];
        const qint64 day = m.from.daysTo(d.date);
        if (row < 0 || day < 0 || day >= days) continue;
        const qsizetype at = static_cast<qsizetype>(row) * days + day;
        Slot& s = daySlots[at];
        if (s.entry < 0) {
            s.entry = e;
            s.code = d.type;
        }
        if (s.entry == e) {
            s.worked = s.worked + pairWorked(d, src.entries[e].workTimeId);
            continue;
        }
        QVector<std::pair<int, QString>>& more = others[at];
        if (std::none_of(more.cbegin(), more.cend(), [e](const auto& o) { return o.first == e; }))
            more.push_back({e, d.type});
    }

    for (int r = 0; r < m.rows.size(); ++r) {
        MusterRow& row = m.rows[r];
        row.cells.reserve(days);
        for (int day = 0; day < days; ++day) {
            const qsizetype at = static_cast<qsizetype>(r) * days + day;
            const Slot& s = daySlots[at];
            if (s.entry < 0) {
                row.cells << QString();
                continue;
            }
            if (const auto more = others.constFind(at); more != others.constEnd()) {
                // The codes in the entries' order, whatever order the lines came in.
                QVector<std::pair<int, QString>> all = *more;
                all.push_back({s.entry, s.code});
                std::sort(all.begin(), all.end(),
                          [](const auto& x, const auto& y) { return x.first < y.first; });
                QStringList codes;
                for (const auto& o : all) codes << o.second;
                row.cells << conflictText(codes);
                ++row.conflicts;
                continue;
            }
            row.cells << s.code;
            const rules::DayTypeWeights w = rules::dayTypeWeights(s.code);
            row.present += w.present + w.holiday;
            row.leave += w.leave;
            row.absent += w.absent;
            row.holidays += w.holiday;
            row.workedMinutes += dayMinutes(s.worked);
            row.scheduledMinutes += scheduledMinutesOf(
                src.workTime, src.entries[s.entry].workTimeId, m.from.addDays(day), s.code);
        }
    }
    for (const ClaimLine& c : src.claims) {
        const auto e = entryIndex.constFind(c.entryId);
        if (e == entryIndex.constEnd()) continue;
        const auto row = rowOfEmployee.constFind(src.entries[*e].employee.id);
        if (row == rowOfEmployee.constEnd()) continue;
        if (c.allowanceId)
            m.rows[*row].overtimeMinutes += minutesOf(c.hours);
        else if (c.deductionId)
            m.rows[*row].lateMinutes += minutesOf(c.hours);
    }
    return m;
}

Payroll buildPayroll(const PeriodSource& src) {
    Payroll p;
    p.from = src.scope.from;
    p.to = src.scope.to;
    p.departmentName = src.departmentName;
    QHash<qint32, int> lineOfEntry;
    p.lines.reserve(src.entries.size());
    for (const EntryHead& h : src.entries) {
        lineOfEntry.insert(h.id, static_cast<int>(p.lines.size()));
        PayrollLine l;
        l.employee = h.employee;
        l.entryNo = h.no;
        l.from = std::max(h.start, p.from);
        l.to = std::min(h.end, p.to);
        p.lines.push_back(std::move(l));
    }
    // A day counts once per entry, by the code of the first of its lines read (every line
    // of a day carries the same code). A period has at most 62 days: one bit each.
    QVector<quint64> daysSeen(p.lines.size(), 0);
    for (const DetailLine& d : src.details) {
        const auto line = lineOfEntry.constFind(d.entryId);
        if (line == lineOfEntry.constEnd()) continue;
        const qint64 day = p.from.daysTo(d.date);
        if (day < 0 || day >= 64) continue;
        const quint64 bit = quint64(1) << day;
        if (daysSeen[*line] & bit) continue;
        daysSeen[*line] |= bit;
        const rules::DayTypeWeights w = rules::dayTypeWeights(d.type);
        PayrollLine& l = p.lines[*line];
        l.present += w.present + w.holiday;
        l.leave += w.leave;
        l.absent += w.absent;
    }
    for (const ClaimLine& c : src.claims) {
        const auto line = lineOfEntry.constFind(c.entryId);
        if (line == lineOfEntry.constEnd()) continue;
        PayrollLine& l = p.lines[*line];
        if (c.allowanceId) {
            l.overtimeHours += c.hours;
            addUnique(l.allowanceIds, c.allowanceId);
        } else if (c.deductionId) {
            l.lateHours += c.hours;
            addUnique(l.deductionIds, c.deductionId);
        }
    }
    auto byNumber = [](const QString& a, const QString& b) {
        return a.toLongLong() < b.toLongLong();
    };
    for (PayrollLine& l : p.lines) {
        std::sort(l.allowanceIds.begin(), l.allowanceIds.end(), byNumber);
        std::sort(l.deductionIds.begin(), l.deductionIds.end(), byNumber);
    }
    return p;
}

Sheet buildSheet(const SheetSource& src) {
    Sheet s;
    s.entry = src.entry;
    const EntryHead& h = src.entry;
    if (h.start.isValid() && h.end.isValid() && h.start <= h.end) {
        for (QDate d = h.start; d <= h.end; d = d.addDays(1)) {
            SheetDay day;
            day.date = d;
            s.days << day;
        }
    }
    QHash<QDate, int> dayIndex;
    for (int i = 0; i < s.days.size(); ++i) dayIndex.insert(s.days[i].date, i);
    // Lines dated outside the stored period still appear, after the period's days.
    auto dayOf = [&](QDate date) -> SheetDay& {
        auto it = dayIndex.constFind(date);
        if (it != dayIndex.constEnd()) return s.days[*it];
        SheetDay day;
        day.date = date;
        s.days << day;
        dayIndex.insert(date, static_cast<int>(s.days.size() - 1));
        return s.days.last();
    };
    QHash<QDate, TimeValue> worked;
    PairHours pairWorked(src.workTime, src.graceMinutes);
    for (const DetailLine& d : src.details) {
        SheetDay& day = dayOf(d.date);
        if (day.type.isEmpty()) day.type = d.type;
        if (d.checkIn || d.checkOut) {
            const QString in = d.checkIn ? d.checkIn->format(u"HH:mm") : QString();
            const QString out = d.checkOut ? d.checkOut->format(u"HH:mm") : QString();
            day.pairs << in + QLatin1Char('-') + out;
        }
        worked[d.date] = worked.value(d.date) + pairWorked(d, h.workTimeId);
    }
    for (const ClaimLine& c : src.claims) {
        SheetDay& day = dayOf(c.date);
        if (c.allowanceId)
            day.overtimeHours += c.hours;
        else if (c.deductionId)
            day.lateHours += c.hours;
    }
    std::sort(s.days.begin(), s.days.end(),
              [](const SheetDay& a, const SheetDay& b) { return a.date < b.date; });
    for (SheetDay& day : s.days) {
        if (!day.type.isEmpty()) {
            day.workedMinutes = dayMinutes(worked.value(day.date));
            day.scheduledMinutes =
                scheduledMinutesOf(src.workTime, h.workTimeId, day.date, day.type);
        }
        s.holidays += rules::dayTypeWeights(day.type).holiday;
        s.workedMinutes += day.workedMinutes;
        s.scheduledMinutes += day.scheduledMinutes;
        s.overtimeHours += day.overtimeHours;
        s.lateHours += day.lateHours;
    }
    return s;
}

}  // namespace qz2::reports
