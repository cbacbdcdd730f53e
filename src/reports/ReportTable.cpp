#include "reports/ReportTable.h"

#include "rules/DayTypes.h"
#include "shared/TimeValue.h"

namespace qz2::reports {

namespace {

QString periodText(QDate from, QDate to) {
    return QStringLiteral("Period: %1 to %2").arg(dateText(from), dateText(to));
}

Column text(const QString& heading, const QString& paper = {}) {
    return Column{heading, false, false, paper};
}
Column figure(const QString& heading, const QString& paper = {}) {
    return Column{heading, true, false, paper};
}

}  // namespace

Cell Cell::ofText(const QString& t) {
    return Cell{Kind::Text, t, 0.0, {}};
}
Cell Cell::ofNumber(double value, const QString& shown) {
    return Cell{Kind::Number, shown, value, {}};
}
Cell Cell::ofCount(double value) {
    return ofNumber(value, rules::countText(value));
}
Cell Cell::ofDecimal(double value) {
    return ofNumber(value, QString::number(value, 'f', 2));
}
Cell Cell::ofDate(QDate d) {
    if (!d.isValid()) return ofText(QString());
    return Cell{Kind::Date, dateText(d), 0.0, d};
}
Cell Cell::ofHours(qint64 minutes) {
    return Cell{Kind::Hours, hoursText(minutes), static_cast<double>(minutes), {}};
}

ReportTable musterTable(const Muster& m, const QString& companyTitle) {
    ReportTable t;
    t.title = QStringLiteral("Monthly muster");
    t.landscape = true;
    t.heading << companyTitle << periodText(m.from, m.to);
    t.heading << QStringLiteral("Department: %1")
                     .arg(m.departmentName.isEmpty() ? QStringLiteral("all") : m.departmentName);
    t.columns << text(QStringLiteral("Emp No")) << text(QStringLiteral("Name"))
              << text(QStringLiteral("Department"));
    t.frozenColumns = 2;
    for (QDate d = m.from; d <= m.to; d = d.addDays(1))
        t.columns << Column{QStringLiteral("%1 %2").arg(d.day()).arg(shortDayName(d)), false, true,
                            QStringLiteral("%1 %2").arg(d.day()).arg(shortDayName(d).left(2))};
    // On paper the totals take short headings, so that a month and its totals share a page.
    t.columns << figure(QStringLiteral("Present"), QStringLiteral("Pres."))
              << figure(QStringLiteral("Leave"))
              << figure(QStringLiteral("Absent"), QStringLiteral("Abs."))
              << figure(QStringLiteral("Holidays"), QStringLiteral("Hol."))
              << figure(QStringLiteral("Worked"))
              << figure(QStringLiteral("Scheduled"), QStringLiteral("Sched."))
              << figure(QStringLiteral("Overtime"), QStringLiteral("OT"))
              << figure(QStringLiteral("Late"))
              << figure(QStringLiteral("Conflicts"), QStringLiteral("Confl."))
              << text(QStringLiteral("Entries"));
    t.rows.reserve(m.rows.size());
    for (const MusterRow& r : m.rows) {
        QVector<Cell> row;
        row.reserve(t.columns.size());
        row << Cell::ofText(r.employee.no) << Cell::ofText(r.employee.name)
            << Cell::ofText(r.employee.departmentName);
        for (const QString& c : r.cells) row << Cell::ofText(c);
        row << Cell::ofCount(r.present) << Cell::ofCount(r.leave) << Cell::ofCount(r.absent)
            << Cell::ofCount(r.holidays) << Cell::ofHours(r.workedMinutes)
            << Cell::ofHours(r.scheduledMinutes) << Cell::ofHours(r.overtimeMinutes)
            << Cell::ofHours(r.lateMinutes) << Cell::ofCount(r.conflicts)
            << Cell::ofText(r.entryNos.join(QStringLiteral(" ")));
        t.rows << row;
    }
    t.notes << QStringLiteral(
                   "P present, A absent, L leave, H holiday, HA half day absent, HL half day "
                   "leave, AL half leave "
                   "half absent; an empty day has no entry.")
            << QStringLiteral(
                   "! two live entries cover the day: their codes are shown, and the day counts in "
                   "neither the days "
                   "nor the hours.")
            << QStringLiteral(
                   "Present (Pres.) includes holidays (Hol.); Abs. absent; Sched. scheduled; "
                   "overtime (OT) and Late "
                   "are the hours claimed; Confl. conflict days.");
    return t;
}

ReportTable payrollTable(const Payroll& p, const QString& companyTitle) {
    ReportTable t;
    t.title = QStringLiteral("Payroll summary");
    t.landscape = true;
    t.heading << companyTitle << periodText(p.from, p.to);
    t.heading << QStringLiteral("Department: %1")
                     .arg(p.departmentName.isEmpty() ? QStringLiteral("all") : p.departmentName);
    t.columns << text(QStringLiteral("Emp No")) << text(QStringLiteral("Name"))
              << text(QStringLiteral("Department")) << text(QStringLiteral("Entry No"))
              << text(QStringLiteral("From")) << text(QStringLiteral("To"))
              << figure(QStringLiteral("Present")) << figure(QStringLiteral("Leave"))
              << figure(QStringLiteral("Absent")) << figure(QStringLiteral("Overtime hours"))
              << figure(QStringLiteral("Overtime")) << text(QStringLiteral("Allowance ID"))
              << figure(QStringLiteral("Late hours")) << figure(QStringLiteral("Late"))
              << text(QStringLiteral("Deduction ID"));
    t.frozenColumns = 2;
    for (const PayrollLine& l : p.lines) {
        QVector<Cell> row;
        row << Cell::ofText(l.employee.no) << Cell::ofText(l.employee.name)
            << Cell::ofText(l.employee.departmentName) << Cell::ofText(l.entryNo)
            << Cell::ofDate(l.from) << Cell::ofDate(l.to) << Cell::ofCount(l.present)
            << Cell::ofCount(l.leave) << Cell::ofCount(l.absent) << Cell::ofDecimal(l.overtimeHours)
            << Cell::ofHours(minutesOf(l.overtimeHours))
            << Cell::ofText(l.allowanceIds.join(QLatin1Char(' '))) << Cell::ofDecimal(l.lateHours)
            << Cell::ofHours(minutesOf(l.lateHours))
            << Cell::ofText(l.deductionIds.join(QLatin1Char(' ')));
        t.rows << row;
    }
    t.notes << QStringLiteral(
        "Days and claims of each entry inside the period; present includes holidays.");
    return t;
}

ReportTable sheetTable(const Sheet& s, const QString& companyTitle) {
    const EntryHead& e = s.entry;
    ReportTable t;
    t.title = QStringLiteral("Attendance entry %1").arg(e.no);
    t.heading << companyTitle;
    t.heading << QStringLiteral("Entry No: %1    Entry date: %2").arg(e.no, dateText(e.date));
    t.heading << QStringLiteral("Employee: %1 %2").arg(e.employee.no, e.employee.name);
    t.heading << QStringLiteral("Department: %1").arg(e.employee.departmentName);
    t.heading << QStringLiteral("Period: %1 to %2").arg(dateText(e.start), dateText(e.end));
    if (e.cancelled) t.heading << QStringLiteral("Cancelled: %1").arg(e.cancelledRemarks);
    t.keyColumns << std::make_pair(QStringLiteral("Entry No"), Cell::ofText(e.no));
    t.columns << text(QStringLiteral("Date")) << text(QStringLiteral("Day"))
              << text(QStringLiteral("Type")) << text(QStringLiteral("Check-in/check-out"))
              << figure(QStringLiteral("Worked")) << figure(QStringLiteral("Scheduled"))
              << figure(QStringLiteral("Overtime")) << figure(QStringLiteral("Late"));
    for (const SheetDay& d : s.days) {
        QVector<Cell> row;
        const bool counted = !d.type.isEmpty();
        row << Cell::ofDate(d.date) << Cell::ofText(shortDayName(d.date)) << Cell::ofText(d.type)
            << Cell::ofText(d.pairs.join(QStringLiteral("  ")))
            << (counted ? Cell::ofHours(d.workedMinutes) : Cell::ofText(QString()))
            << (counted ? Cell::ofHours(d.scheduledMinutes) : Cell::ofText(QString()))
            << (d.overtimeHours != 0.0 ? Cell::ofHours(minutesOf(d.overtimeHours))
                                       : Cell::ofText(QString()))
            << (d.lateHours != 0.0 ? Cell::ofHours(minutesOf(d.lateHours))
                                   : Cell::ofText(QString()));
        t.rows << row;
    }
    t.notes << QStringLiteral("Totals: worked %1, scheduled %2, overtime %3, late %4")
                   .arg(hoursText(s.workedMinutes), hoursText(s.scheduledMinutes),
                        hoursText(minutesOf(s.overtimeHours)), hoursText(minutesOf(s.lateHours)));
    t.notes << QStringLiteral("Present: %1    Leave: %2    Absent: %3    Holidays: %4")
                   .arg(rules::countText(e.present), rules::countText(e.leaves),
                        rules::countText(e.absent), rules::countText(s.holidays));
    t.notes << QStringLiteral("Remarks: %1").arg(e.remarks);
    t.signatures << QStringLiteral("Clerk") << QStringLiteral("Employee");
    return t;
}

}  // namespace qz2::reports
