#pragma once
// What a new entry is laid out from, read from the database without a window: the
// employee's department-wise settings and date of join, the proposed period, the calendar
// and work-time checks, and the holidays, leaves and work-time schedule that Populate
// hands to the attendance rules. The entry form and the whole-company import of punches
// both call these, so that an entry built by either is built from the same statements.
//
// Every function throws db::DbError when a statement fails; the caller decides whether
// that ends a step (the form) or skips an employee (the import).

#include <QDate>
#include <QList>
#include <QSqlDatabase>
#include <QString>
#include <optional>

#include "entry/EntryRules.h"
#include "rules/DayTypes.h"
#include "rules/Population.h"
#include "shared/TimeValue.h"

namespace qz2::entry {

class StatementCache;

// The department of an employee and what it makes of the calendar and work-time settings.
struct EmployeeSettings {
    bool hasDepartment = false;
    qint32 departmentId = 0;
    QString departmentName;
    std::optional<QDate> dateOfJoin;
    QString calendarCondition;  // empty unless the calendar is kept department-wise
    QString workTimeCondition;  // empty unless the work-time settings are department-wise
};

EmployeeSettings readEmployeeSettings(const QSqlDatabase& db, qint16 company, qint32 employee);

// What the clerk is told when the employee has no department.
inline const QString kMsgNoDepartment = QStringLiteral("There is no department for this employee.");
// ... when the date of join is the suite's "missing" value.
inline const QString kMsgInvalidDateOfJoin = QStringLiteral("Invalid date of Join cannot proceed");
// ... when the calendar of a year of the period is missing.
QString calendarMissingMessage(const QString& departmentName, int year);
// ... when the company (or department) has no work-time setting.
QString workTimeMissingMessage(const QString& departmentName);

// The first day of the employee's next entry: the day after the last one, or for a first
// entry the start of the business date's pay month; nullopt when the company has neither
// (the form then keeps the start it shows).
std::optional<QDate> readProposedStart(const QSqlDatabase& db, qint16 company, qint32 employee,
                                       QDate processDate);

// The proposed period from its first day: a month long, starting on the date of join when
// that is later.
struct ProposedPeriod {
    bool invalidDateOfJoin = false;
    QDate start;
    QDate end;
};
ProposedPeriod proposePeriod(QDate start, std::optional<QDate> dateOfJoin);

// Whether the calendar of `year` has been entered for the company (or the department).
bool hasCalendar(const QSqlDatabase& db, qint16 company, const QString& calendarCondition,
                 int year);

// The newest work-time setting of the company (or the department); nullopt when none.
std::optional<qint32> readNewestWorkTimeSetting(const QSqlDatabase& db, qint16 company,
                                                const QString& workTimeCondition);

// The per-day reads of Populate, each statement through the cache (a period asks each
// weekday's schedule many times; the rows do not change while one employee is laid out).
class PeriodReads {
public:
    PeriodReads(const QSqlDatabase& db, qint16 company, qint32 workTimeSetting,
                const QString& calendarCondition, const QString& workTimeCondition,
                StatementCache& cache)
        : m_db(db),
          m_company(company),
          m_setting(workTimeSetting),
          m_calendar(calendarCondition),
          m_workTime(workTimeCondition),
          m_cache(cache) {}

    // The weekday's line under the entry's work-time setting; nullopt when it has none.
    std::optional<ScheduleLine> daySchedule(QDate date);
    // The Schedule Hours of a date, from the newest setting's line of its weekday.
    TimeValue scheduleHours(QDate date);
    // The first scheduled check-in of the date's weekday (midnight when none), for the
    // grace rule.
    TimeValue graceStart(QDate date);
    QList<QDate> holidays(QDate start, QDate end);
    // The approved-leave query's rows, the status as stored.
    QList<rules::LeaveRow> approvedLeaves(qint32 employee, QDate start, QDate end);

private:
    const QSqlDatabase& m_db;
    qint16 m_company;
    qint32 m_setting;
    QString m_calendar;
    QString m_workTime;
    StatementCache& m_cache;
};

// The settings a Populate runs under besides the employee's (pSettings).
struct PopulateSettings {
    int graceMinutes = 0;
    bool considerLeaveHolidays = false;
};
PopulateSettings readPopulateSettings(const QSqlDatabase& db);

// Everything a new entry's Populate needs from the database, read in the order the form has
// always asked it (leaves and holidays in the order the setting gives them), with the
// schedule providers reading through `reads`. `start` is the period's start before the date
// of join is applied.
rules::PopulationInput readPopulationInput(PeriodReads& reads, qint32 employee, QDate start,
                                           QDate end, std::optional<QDate> dateOfJoin,
                                           const PopulateSettings& settings);

}  // namespace qz2::entry
