#include "punches/PunchImport.h"

#include <QHash>
#include <algorithm>

#include "rules/DayTypes.h"
#include "rules/HalfDay.h"
#include "rules/Hours.h"
#include "rules/Population.h"
#include "rules/RuleGrids.h"
#include "shared/TimeValue.h"

namespace qz2::punches {

namespace {

QString hm(const QDateTime& at) {
    return at.time().toString(QStringLiteral("HH:mm"));
}

bool hasPunches(const PunchDay& d) {
    return !d.pairs.isEmpty() || !d.pairsBeyondSix.isEmpty() ||
           !d.checkOutsWithoutCheckIn.isEmpty();
}

bool isScheduled(const QString& scheduleHours) {
    const QString s = scheduleHours.trimmed();
    return !s.isEmpty() && s != QLatin1String("00:00");
}

QString dm(QDate d) {
    return d.toString(QStringLiteral("dd/MM"));
}

}  // namespace

ImportPlan planImport(const FlexGridModel& dayGrid, const QVector<PunchDay>& paired,
                      QDate businessDate) {
    QHash<QDate, const PunchDay*> byDate;
    for (const PunchDay& d : paired) byDate.insert(d.date, &d);
    ImportPlan plan;
    for (int r = 1; r < dayGrid.Rows(); ++r) {
        const std::optional<QDate> date =
            rules::cellDate(dayGrid.TextMatrix(r, rules::daycol::Date));
        if (!date) continue;
        const QString type = dayGrid.TextMatrix(r, rules::daycol::Type).trimmed();
        const PunchDay* day = byDate.value(*date, nullptr);
        if (!day || !hasPunches(*day)) {
            const bool happened = !businessDate.isValid() || *date <= businessDate;
            if (happened && (type == QLatin1String("P") || type == QLatin1String("HA")) &&
                isScheduled(dayGrid.TextMatrix(r, rules::daycol::ScheduleHours)))
                plan.workingDaysWithoutPunches.append(*date);
            continue;
        }
        DayImport import;
        import.date = *date;
        import.type = type;
        import.flags = day->flags;
        plan.duplicatesDropped += day->duplicatesDropped;
        for (const PunchPair& p : day->pairs) {
            if (!p.out) {
                import.pairs.append({hm(p.in), QString()});
            } else if (p.out->date() > p.in.date()) {
                // After midnight: the day's first hours and its last, both on this day.
                import.nightShift = true;
                import.pairs.append({QStringLiteral("00:00"), hm(*p.out)});
                import.pairs.append({hm(p.in), QStringLiteral("23:59")});
            } else {
                import.pairs.append({hm(p.in), hm(*p.out)});
            }
        }
        std::stable_sort(
            import.pairs.begin(), import.pairs.end(),
            [](const GridPair& a, const GridPair& b) { return a.checkIn < b.checkIn; });
        if (import.pairs.size() > kMaxPairsPerDay) {
            import.pairs.resize(kMaxPairsPerDay);
            import.flags |= DayFlag::MoreThanSixPairs;
        }
        plan.pairs += static_cast<int>(import.pairs.size());
        plan.days.append(import);
    }
    return plan;
}

QVector<QDate> changedDays(const FlexGridModel& mirror, const ImportPlan& plan) {
    QHash<QDate, QVector<GridPair>> now;
    for (int r = 1; r < mirror.Rows(); ++r)
        if (const std::optional<QDate> date =
                rules::cellDate(mirror.TextMatrix(r, rules::paircol::Date)))
            now[*date].append({mirror.TextMatrix(r, rules::paircol::CheckIn),
                               mirror.TextMatrix(r, rules::paircol::CheckOut)});
    QVector<QDate> changed;
    for (const DayImport& d : plan.days)
        if (!d.pairs.isEmpty() && now.value(d.date) != d.pairs) changed.append(d.date);
    return changed;
}

void applyImport(FlexGridModel& mirror, const ImportPlan& plan) {
    QHash<QDate, const DayImport*> replaced;
    for (const DayImport& d : plan.days)
        if (!d.pairs.isEmpty()) replaced.insert(d.date, &d);
    // Every other day's rows stay as they are; the replaced days' rows come from the plan.
    QVector<std::pair<QDate, QStringList>> rows;
    for (int r = 1; r < mirror.Rows(); ++r) {
        QStringList cells;
        for (int c = 0; c < rules::paircol::Count; ++c) cells << mirror.TextMatrix(r, c);
        const std::optional<QDate> date = rules::cellDate(cells[rules::paircol::Date]);
        if (date && replaced.contains(*date)) continue;
        rows.append({date.value_or(QDate()), cells});
    }
    for (const DayImport* d : std::as_const(replaced)) {
        int slNo = 0;
        for (const GridPair& p : d->pairs)
            rows.append(
                {d->date, {dateText(d->date), QString::number(++slNo), p.checkIn, p.checkOut}});
    }
    std::stable_sort(rows.begin(), rows.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    QVector<QStringList> cells;
    cells.reserve(rows.size());
    for (auto& [date, row] : rows) cells.append(std::move(row));
    mirror.setAllRows(std::move(cells));
}

ImportPlan planForEntry(const FlexGridModel& dayGrid, const QVector<Punch>& punches,
                        QDate businessDate, PairingOptions options) {
    options.from = rules::cellDate(dayGrid.TextMatrix(1, rules::daycol::Date)).value_or(QDate());
    options.to = rules::cellDate(dayGrid.TextMatrix(dayGrid.Rows() - 1, rules::daycol::Date))
                     .value_or(QDate());
    options.businessDate = businessDate;
    return planImport(dayGrid, pairPunches(punches, options), businessDate);
}

QStringList layPunches(FlexGridModel& dayGrid, FlexGridModel& mirror, const ImportPlan& plan,
                       const rules::GraceStartProvider& graceStart, int graceMinutes) {
    // A day whose times change loses a claim made on its old times: the clerk claims the new
    // difference again. A day that keeps its times keeps its claim.
    const QVector<QDate> changed = changedDays(mirror, plan);
    QStringList withdrawn;
    for (int r = 1; r < dayGrid.Rows(); ++r) {
        const std::optional<QDate> day =
            rules::cellDate(dayGrid.TextMatrix(r, rules::daycol::Date));
        const QString claim = dayGrid.TextMatrix(r, rules::daycol::AllowanceType).trimmed();
        if (!day || !changed.contains(*day) ||
            (claim != QLatin1String("A") && claim != QLatin1String("D")))
            continue;
        const QString amount = dayGrid.TextMatrix(r, rules::daycol::Hours);
        withdrawn << QStringLiteral(
                         "%1: %2 %3 withdrawn, the day's times changed; claim it again if it "
                         "still holds")
                         .arg(dm(*day),
                              claim == QLatin1String("A") ? QStringLiteral("allowance")
                                                          : QStringLiteral("deduction"),
                              amount);
        rules::fnSetDayAllowanceDeduction(dayGrid, amount, QString(), *day, false);
    }
    applyImport(mirror, plan);
    rules::fnCalculateTotalHours(dayGrid, mirror, graceStart, graceMinutes);
    rules::fnFindtheAdditionalWorkingHours(dayGrid);
    return withdrawn;
}

void markDaysAbsent(FlexGridModel& dayGrid, FlexGridModel& mirror, const QVector<QDate>& days) {
    const QList<QDate> marked(days.cbegin(), days.cend());
    rules::fnMarkAbsentDays(dayGrid, marked, marked, false, {});
    for (QDate d : days) rules::fnRemoveMirrorRowsOfDate(mirror, d);
}

bool hasFlaggedDays(const ImportPlan& plan) {
    return std::any_of(plan.days.begin(), plan.days.end(),
                       [](const DayImport& d) { return d.flags != DayFlags(); });
}

QStringList importSummary(const ImportPlan& plan) {
    QStringList lines;
    int replaced = 0;
    for (const DayImport& d : plan.days)
        if (!d.pairs.isEmpty()) ++replaced;
    const auto count = [](int n, const char* one, const char* many) {
        return QString::number(n) + QLatin1Char(' ') + QLatin1String(n == 1 ? one : many);
    };
    lines << QStringLiteral("%1 laid onto %2; %3 dropped.")
                 .arg(count(plan.pairs, "pair", "pairs"), count(replaced, "day", "days"),
                      count(plan.duplicatesDropped, "repeated punch", "repeated punches"));
    for (const DayImport& d : plan.days) {
        QStringList notes = dayFlagTexts(d.flags);
        if (d.pairs.isEmpty())
            notes << QStringLiteral("no pair to lay on: its laid-out times are kept");
        if (d.nightShift)
            notes << QStringLiteral(
                "night shift: the hours after midnight are kept on this day "
                "(the check-in's part ends at 23:59, one minute short)");
        if (d.type == QLatin1String("A") || d.type == QLatin1String("L"))
            notes << QStringLiteral("the day is %1 but has punches")
                         .arg(d.type == QLatin1String("A") ? QStringLiteral("absent")
                                                           : QStringLiteral("leave"));
        if (!notes.isEmpty())
            lines << dm(d.date) + QStringLiteral(": ") + notes.join(QStringLiteral("; "));
    }
    if (!plan.workingDaysWithoutPunches.isEmpty()) {
        QStringList days;
        for (QDate d : plan.workingDaysWithoutPunches) days << dm(d);
        lines << QStringLiteral(
                     "Working days without any punch (their laid-out times are kept): ") +
                     days.join(QStringLiteral(", "));
    }
    return lines;
}

}  // namespace qz2::punches
