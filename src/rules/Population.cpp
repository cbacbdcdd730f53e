#include "rules/Population.h"

#include <QMap>

#include "rules/Pairs.h"

namespace qz2::rules {

QDate effectiveStart(QDate start, QDate dateOfJoin) {
    // Compared as "yyyy/mm/dd" texts, which order like the dates they spell.
    const QString joined =
        dateOfJoin.isValid() ? TimeValue::fromDate(dateOfJoin).format(u"yyyy/mm/dd") : QString();
    const QString from =
        start.isValid() ? TimeValue::fromDate(start).format(u"yyyy/mm/dd") : QString();
    return joined > from ? dateOfJoin : start;
}

void fnBuildDayRows(FlexGridModel& dayGrid, QDate start, QDate end) {
    // Start from an empty first row even when the grid was not cleared before.
    dayGrid.setRows(1);
    dayGrid.setRows(2);
    for (const QDate& day : daysOf(start, end)) {
        dayGrid.setTextMatrix(dayGrid.Rows() - 1, daycol::Date, dateText(day));
        if (day != end) dayGrid.setRows(dayGrid.Rows() + 1);
    }
}

void fnLayOutScheduledPairs(FlexGridModel& mirror, const FlexGridModel& dayGrid, QDate start,
                            QDate end, QDate dateOfJoin, const ScheduleProvider& schedule) {
    const QDate from = effectiveStart(start, dateOfJoin);
    mirror.setRows(1);
    for (const QDate& day : daysOf(from, end)) {
        const auto pairs = schedule ? schedule(day) : std::nullopt;
        if (!pairs) continue;
        int slNo = 0;
        for (const SchedulePair& p : *pairs) {
            // A pair missing either end is skipped and takes no number.
            if (!p.checkIn || !p.checkOut) continue;
            mirror.AddItem({dateText(day), QString::number(++slNo), p.checkIn->format(u"HH:mm"),
                            p.checkOut->format(u"HH:mm")});
        }
    }
    // Holidays and absent days carry no scheduled pairs; leave and half days keep theirs.
    if (dayGrid.Rows() < 2) return;
    for (int r = 1; r < dayGrid.Rows(); ++r) {
        const QString type = dayGrid.TextMatrix(r, daycol::Type).trimmed();
        if (type != QLatin1String("H") && type != QLatin1String("A")) continue;
        if (const auto d = cellDate(dayGrid.TextMatrix(r, daycol::Date)))
            fnRemoveMirrorRowsOfDate(mirror, *d);
    }
}

void fnRemoveMirrorRowsOfDate(FlexGridModel& mirror, QDate date) {
    int r = 1;
    while (r < mirror.Rows()) {
        if (!sameDay(mirror.TextMatrix(r, paircol::Date), date)) {
            ++r;
            continue;
        }
        if (mirror.Rows() == 2) {
            mirror.setRows(1);
            break;
        }
        mirror.RemoveItem(r);
    }
}

void fnLayOutStoredDays(FlexGridModel& dayGrid, QDate start, QDate end, QDate dateOfJoin,
                        const QList<StoredDay>& stored) {
    QMap<QDate, QString> types;
    for (const StoredDay& day : stored)
        if (day.date.isValid() && !types.contains(day.date)) types.insert(day.date, day.type.trimmed());
    QDate from = start.isValid() ? effectiveStart(start, dateOfJoin) : QDate();
    QDate to = end;
    if (!types.isEmpty()) {
        if (!from.isValid() || types.firstKey() < from) from = types.firstKey();
        if (!to.isValid() || types.lastKey() > to) to = types.lastKey();
    }
    dayGrid.setRows(1);
    if (!from.isValid() || !to.isValid()) return;
    for (const QDate& day : daysOf(from, to))
        dayGrid.AddItem({QString(), dateText(day), types.value(day, QStringLiteral("P"))});
}

void fnZeroHolidaySchedule(FlexGridModel& dayGrid) {
    for (int r = 1; r < dayGrid.Rows(); ++r) {
        if (dayGrid.TextMatrix(r, daycol::Type).trimmed() == QLatin1String("H"))
            dayGrid.setTextMatrix(r, daycol::ScheduleHours, QStringLiteral("00:00"));
    }
}

TimeValue scheduledHours(const DaySchedule& schedule) {
    TimeValue total;
    for (const SchedulePair& p : schedule) {
        if (p.checkIn && p.checkOut) total = total + (*p.checkOut - *p.checkIn);
    }
    return total;
}

namespace {

void markHolidaysAndLeaves(FlexGridModel& dayGrid, const PopulationInput& input) {
    // The later mark wins on a day that is both.
    if (input.considerLeaveHolidays) {
        fnMarkApprovedLeaves(dayGrid, input.leaves);
        fnMarkHolidays(dayGrid, input.holidays);
    } else {
        fnMarkHolidays(dayGrid, input.holidays);
        fnMarkApprovedLeaves(dayGrid, input.leaves);
    }
}

}  // namespace

DayCounts populateNewEntry(FlexGridModel& dayGrid, FlexGridModel& pairs, FlexGridModel& mirror,
                           const PopulationInput& input) {
    dayGrid.setRows(1);
    pairs.setRows(1);
    const QDate from = effectiveStart(input.start, input.dateOfJoin);

    fnBuildDayRows(dayGrid, from, input.end);
    fnMarkAbsentDays(dayGrid, input.absentPicked, input.absentListItems, false, {});
    markHolidaysAndLeaves(dayGrid, input);
    fnMarkRemainingPresent(dayGrid);
    const DayCounts counts = fnCountDayTypes(dayGrid);

    fnLayOutScheduledPairs(mirror, dayGrid, from, input.end, input.dateOfJoin, input.schedule);
    fnCalculateTotalHours(dayGrid, mirror, input.graceStart, input.graceMinutes);
    for (int r = 1; r < dayGrid.Rows(); ++r) {
        const auto day = cellDate(dayGrid.TextMatrix(r, daycol::Date));
        if (!day) continue;
        const TimeValue total = input.scheduleHours ? input.scheduleHours(*day) : TimeValue();
        dayGrid.setTextMatrix(r, daycol::ScheduleHours, total.format(u"hh:mm"));
    }
    fnZeroHolidaySchedule(dayGrid);
    fnFindtheAdditionalWorkingHours(dayGrid);
    return counts;
}

DayCounts reapplyEditedEntry(FlexGridModel& dayGrid, FlexGridModel& mirror,
                             const PopulationInput& input) {
    fnMarkAbsentDays(dayGrid, input.absentPicked, input.absentListItems, true, [&mirror](QDate d) {
        // The hidden mirror's current row is its heading row only while it
        // has no data row.
        fnRemoveRowsFromMirrorGridOnEdit(mirror, d, mirror.Rows() < 2);
    });
    fnMarkHolidays(dayGrid, input.holidays);
    fnZeroHolidaySchedule(dayGrid);
    fnFindtheAdditionalWorkingHours(dayGrid);
    return fnCountDayTypes(dayGrid);
}

}  // namespace qz2::rules
