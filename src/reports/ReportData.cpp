#include "reports/ReportData.h"

#include <QSet>
#include <QSqlQuery>

#include "db/Database.h"
#include "shared/BasAttendence.h"

namespace qz2::reports {

namespace {

std::optional<QDate> dateOf(const QVariant& v) {
    const std::optional<TimeValue> t = timeValueFromDb(v);
    if (!t) return std::nullopt;
    return t->date();
}

std::optional<TimeValue> timeOf(const QVariant& v) {
    const std::optional<TimeValue> t = timeValueFromDb(v);
    if (!t) return std::nullopt;
    return TimeValue::fromTime(t->timeOfDay());
}

std::optional<qint32> idOf(const QVariant& v) {
    if (v.isNull()) return std::nullopt;
    return v.toInt();
}

// Dates and times read as text (SQLite) repeat a great deal: a million lines hold a few
// dozen dates and a few hundred times. Each distinct text is converted once.
class TimeCache {
public:
    std::optional<TimeValue> operator()(const QVariant& v) {
        if (v.typeId() != QMetaType::QString) return timeValueFromDb(v);
        const QString text = v.toString();
        const auto it = m_seen.constFind(text);
        if (it != m_seen.constEnd()) return *it;
        const std::optional<TimeValue> value = timeValueFromDb(v);
        m_seen.insert(text, value);
        return value;
    }

private:
    QHash<QString, std::optional<TimeValue>> m_seen;
};

// The day-type codes are a handful of short texts: every line shares one copy of each.
class Interner {
public:
    QString operator()(const QString& text) {
        const auto it = m_seen.constFind(text);
        if (it != m_seen.constEnd()) return *it;
        m_seen.insert(text);
        return text;
    }

private:
    QSet<QString> m_seen;
};

// Columns 0..10 of the header statements: eaID, eaNo, eaDate, eaEmpID, eaStartDate,
// eaEndDate, eacwtsid, eEmpNo, eName, eDeptID, DepartmentName.
EntryHead headOf(const QSqlQuery& q) {
    EntryHead h;
    h.id = q.value(0).toInt();
    h.no = q.value(1).toString();
    h.date = dateOf(q.value(2)).value_or(QDate());
    h.employee.id = q.value(3).toInt();
    h.start = dateOf(q.value(4)).value_or(QDate());
    h.end = dateOf(q.value(5)).value_or(QDate());
    h.workTimeId = idOf(q.value(6));
    h.employee.no = q.value(7).toString();
    h.employee.name = q.value(8).toString();
    h.employee.departmentId = idOf(q.value(9));
    h.employee.departmentName = q.value(10).toString();
    return h;
}

void readDetails(const QSqlDatabase& db, const QString& text, QVector<DetailLine>& out) {
    Interner intern;
    TimeCache cache;
    auto date = [&cache](const QVariant& v) -> QDate {
        const std::optional<TimeValue> t = cache(v);
        return t ? t->date() : QDate();
    };
    auto time = [&cache](const QVariant& v) -> std::optional<TimeValue> {
        const std::optional<TimeValue> t = cache(v);
        if (!t) return std::nullopt;
        return TimeValue::fromTime(t->timeOfDay());
    };
    db::forEachRow(db, text, [&](const QSqlQuery& q) {
        DetailLine d;
        d.entryId = q.value(0).toInt();
        d.date = date(q.value(1));
        d.type = intern(q.value(2).toString().trimmed());
        d.checkIn = time(q.value(3));
        d.checkOut = time(q.value(4));
        out.push_back(std::move(d));
    });
}

void readClaims(const QSqlDatabase& db, const QString& text, QVector<ClaimLine>& out) {
    TimeCache cache;
    db::forEachRow(db, text, [&](const QSqlQuery& q) {
        ClaimLine c;
        c.entryId = q.value(0).toInt();
        const std::optional<TimeValue> date = cache(q.value(1));
        c.date = date ? date->date() : QDate();
        c.hours = q.value(2).toDouble();
        c.allowanceId = idOf(q.value(3));
        c.deductionId = idOf(q.value(4));
        out.push_back(c);
    });
}

void readWorkTime(const QSqlDatabase& db, qint16 company, WorkTime& out, int& graceMinutes) {
    db::forEachRow(db, sql::workTimeQuery(company), [&](const QSqlQuery& q) {
        rules::DaySchedule day;
        for (int p = 0; p < 4; ++p) {
            day[p].checkIn = timeOf(q.value(2 + 2 * p));
            day[p].checkOut = timeOf(q.value(3 + 2 * p));
        }
        out.add(q.value(0).toInt(), q.value(1).toInt(), day);
    });
    graceMinutes = 0;
    db::forEachRow(db, sql::graceTimeQuery(company),
                   [&](const QSqlQuery& q) { graceMinutes = q.value(0).toInt(); });
}

}  // namespace

QString periodProblem(QDate from, QDate to) {
    if (!from.isValid() || !to.isValid())
        return QStringLiteral("The period needs a start and an end date.");
    if (to < from) return QStringLiteral("The period ends before it starts.");
    const qint64 days = from.daysTo(to) + 1;
    if (days > kMaxPeriodDays)
        return QStringLiteral("A report covers at most %1 days; this period has %2.")
            .arg(kMaxPeriodDays)
            .arg(days);
    return {};
}

void WorkTime::add(qint32 settingId, int dayId, const rules::DaySchedule& schedule) {
    m_days.insert(static_cast<qint64>(settingId) * 8 + dayId, schedule);
}

std::optional<rules::DaySchedule> WorkTime::day(std::optional<qint32> settingId, QDate date) const {
    if (!settingId) return std::nullopt;
    const auto it = m_days.constFind(static_cast<qint64>(*settingId) * 8 + workTimeDayId(date));
    if (it == m_days.constEnd()) return std::nullopt;
    return *it;
}

int workTimeDayId(QDate date) {
    return date.dayOfWeek() % 7 + 1;
}

PeriodSource readPeriod(const QSqlDatabase& db, const db::Dialect& dialect, const sql::Scope& scope,
                        PeriodReport report) {
    if (const QString problem = periodProblem(scope.from, scope.to); !problem.isEmpty())
        throw ReportError(problem);
    PeriodSource src;
    src.scope = scope;
    if (scope.department) {
        bool found = false;
        db::forEachRow(db, sql::departmentQuery(scope.company, *scope.department),
                       [&](const QSqlQuery& q) {
                           found = true;
                           src.departmentName = q.value(1).toString();
                       });
        if (!found)
            throw ReportError(QStringLiteral("There is no department %1 in company %2.")
                                  .arg(*scope.department)
                                  .arg(scope.company));
    }
    if (report == PeriodReport::Muster) {
        db::forEachRow(db, sql::musterEmployeesQuery(dialect, scope), [&](const QSqlQuery& q) {
            Employee e;
            e.id = q.value(0).toInt();
            e.no = q.value(1).toString();
            e.name = q.value(2).toString();
            e.departmentId = idOf(q.value(3));
            e.departmentName = q.value(4).toString();
            src.employees.push_back(std::move(e));
        });
    }
    db::forEachRow(db, sql::liveHeadersQuery(dialect, scope),
                   [&](const QSqlQuery& q) { src.entries.push_back(headOf(q)); });
    readDetails(db, sql::liveDetailsQuery(dialect, scope), src.details);
    readClaims(db, sql::liveClaimsQuery(dialect, scope), src.claims);
    readWorkTime(db, scope.company, src.workTime, src.graceMinutes);
    return src;
}

SheetSource readSheet(const QSqlDatabase& db, qint16 company, const QString& entryNo) {
    SheetSource src;
    bool found = false;
    db::forEachRow(db, sql::entryHeaderQuery(company, entryNo.trimmed()), [&](const QSqlQuery& q) {
        if (found) return;  // numbers are unique in practice; the first identifier wins
        found = true;
        src.entry = headOf(q);
        src.entry.present = q.value(11).toDouble();
        src.entry.leaves = q.value(12).toDouble();
        src.entry.absent = q.value(13).toDouble();
        src.entry.cancelled = db::isOn(q.value(14));
        src.entry.remarks = q.value(15).toString();
        src.entry.cancelledRemarks = q.value(16).toString();
    });
    if (!found)
        throw ReportError(QStringLiteral("There is no entry numbered \"%1\" in company %2.")
                              .arg(entryNo.trimmed())
                              .arg(company));
    readDetails(db, sql::entryDetailsQuery(company, src.entry.id), src.details);
    readClaims(db, sql::entryClaimsQuery(company, src.entry.id), src.claims);
    readWorkTime(db, company, src.workTime, src.graceMinutes);
    return src;
}

}  // namespace qz2::reports
