#pragma once
// What the reports read, as plain values: the employees, the live entries that overlap the
// period with their detail and claim lines inside it, the work-time settings and the grace
// time; or one entry with all its lines for the sheet. The readers run a fixed number of
// statements (ReportSql.h) whatever the size of the company, and stream the detail lines
// so that a million of them stay small in memory.

#include <QDate>
#include <QHash>
#include <QSqlDatabase>
#include <QString>
#include <QVector>
#include <optional>
#include <stdexcept>

#include "db/Dialect.h"
#include "reports/ReportSql.h"
#include "rules/Population.h"
#include "shared/TimeValue.h"

namespace qz2::reports {

// The longest period a muster or a payroll summary covers, in days.
constexpr int kMaxPeriodDays = 62;

// A request the reports cannot serve (a bad period, an unknown department or entry): the
// message says why in the clerk's words.
class ReportError : public std::runtime_error {
public:
    explicit ReportError(const QString& message)
        : std::runtime_error(message.toStdString()), m_message(message) {}
    const QString& message() const { return m_message; }

private:
    QString m_message;
};

// Empty when the period can be reported, else the reason it cannot.
QString periodProblem(QDate from, QDate to);

struct Employee {
    qint32 id = 0;
    QString no;
    QString name;
    std::optional<qint32> departmentId;
    QString departmentName;  // empty without a department
};

struct EntryHead {
    qint32 id = 0;
    QString no;
    QDate date;
    Employee employee;
    QDate start;
    QDate end;
    std::optional<qint32> workTimeId;
    // Read for the sheet only.
    double present = 0.0;
    double leaves = 0.0;
    double absent = 0.0;
    bool cancelled = false;
    QString remarks;
    QString cancelledRemarks;
};

struct DetailLine {
    qint32 entryId = 0;
    QDate date;
    QString type;  // shared between lines: the few codes are interned while reading
    std::optional<TimeValue> checkIn;
    std::optional<TimeValue> checkOut;
};

struct ClaimLine {
    qint32 entryId = 0;
    QDate date;
    double hours = 0.0;
    std::optional<qint32> allowanceId;
    std::optional<qint32> deductionId;
};

// The company's work-time settings by setting and weekday (Sunday 1 .. Saturday 7).
class WorkTime {
public:
    void add(qint32 settingId, int dayId, const rules::DaySchedule& schedule);
    // nullopt when the setting has no line for the weekday of `date`.
    std::optional<rules::DaySchedule> day(std::optional<qint32> settingId, QDate date) const;

private:
    QHash<qint64, rules::DaySchedule> m_days;
};

// Sunday 1 .. Saturday 7.
int workTimeDayId(QDate date);

struct PeriodSource {
    sql::Scope scope;
    QString departmentName;       // of the scope's department, when one is given
    QVector<Employee> employees;  // the muster's rows (empty for the payroll summary)
    QVector<EntryHead> entries;   // live entries overlapping the period
    QVector<DetailLine> details;  // their lines inside the period
    QVector<ClaimLine> claims;    // their claims inside the period
    WorkTime workTime;
    int graceMinutes = 0;
};

enum class PeriodReport { Muster, Payroll };

// Reads what a muster or a payroll summary needs. Throws ReportError for a bad period or an
// unknown department, db::DbError when a statement fails.
PeriodSource readPeriod(const QSqlDatabase& db, const db::Dialect& dialect, const sql::Scope& scope,
                        PeriodReport report);

struct SheetSource {
    EntryHead entry;
    QVector<DetailLine> details;
    QVector<ClaimLine> claims;
    WorkTime workTime;
    int graceMinutes = 0;
};

// Reads one entry by its number. Throws ReportError for an unknown number, db::DbError
// when a statement fails.
SheetSource readSheet(const QSqlDatabase& db, qint16 company, const QString& entryNo);

}  // namespace qz2::reports
