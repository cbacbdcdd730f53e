#include "punches/CompanyImport.h"

#include <algorithm>
#include <exception>
#include <stdexcept>
#include <utility>

#include "db/Database.h"
#include "picker/PickerStatus.h"
#include "entry/EntryReads.h"
#include "entry/EntryStore.h"
#include "entry/StatementCache.h"
#include "punches/PunchImport.h"
#include "punches/PunchMatch.h"
#include "punches/PunchStore.h"
#include "rules/DayTypes.h"
#include "rules/Population.h"
#include "rules/RuleGrids.h"
#include "shared/BasAttendence.h"
#include "shared/FlexGrid.h"

namespace qz2::punches {

namespace {

// Why an employee is left out, carried out of the steps below.
struct Skip {
    explicit Skip(QString why, QStringList days = {}, bool failed = false)
        : reason(std::move(why)), flaggedDays(std::move(days)), databaseFailed(failed) {}
    QString reason;
    QStringList flaggedDays;
    bool databaseFailed = false;
};

QString periodText(QDate start, QDate end) {
    return dateText(start) + QStringLiteral(" to ") + dateText(end);
}

// The day grid and the mirror grid as the entry form has them.
struct EntryGrids {
    FlexGridModel days;
    FlexGridModel pairs;
    FlexGridModel mirror;
    EntryGrids() {
        days.setCols(rules::daycol::Count);
        pairs.setCols(rules::paircol::Count);
        mirror.setCols(rules::paircol::Count);
    }
};

// One employee: the entry built and saved as the form would, or the reason it is not.
void importEmployee(const QSqlDatabase& db, const CompanyImportRequest& request,
                    const entry::PopulateSettings& settings, const QVector<Punch>& punches,
                    EmployeeImport& out) {
    const entry::EmployeeSettings employee =
        entry::readEmployeeSettings(db, request.company, out.id);
    if (!employee.hasDepartment) throw Skip{entry::kMsgNoDepartment};
    const QDate proposedStart =
        entry::readProposedStart(db, request.company, out.id, request.businessDate)
            .value_or(request.businessDate);
    const entry::ProposedPeriod period = entry::proposePeriod(proposedStart, employee.dateOfJoin);
    if (period.invalidDateOfJoin) throw Skip{entry::kMsgInvalidDateOfJoin};
    if (period.start != request.from || period.end != request.to)
        throw Skip{
            QStringLiteral("the next period proposed for the employee is %1, not %2")
                .arg(periodText(period.start, period.end), periodText(request.from, request.to))};
    for (const int year : {period.start.year(), period.end.year()})
        if (!entry::hasCalendar(db, request.company, employee.calendarCondition, year))
            throw Skip{entry::calendarMissingMessage(employee.departmentName, year)};
    const std::optional<qint32> setting =
        entry::readNewestWorkTimeSetting(db, request.company, employee.workTimeCondition);
    if (!setting) throw Skip{entry::workTimeMissingMessage(employee.departmentName)};
    // Populate, as the form's button runs it for a new entry with no absent day picked.
    entry::StatementCache cache;
    entry::PeriodReads reads(db, request.company, *setting, employee.calendarCondition,
                             employee.workTimeCondition, cache);
    const rules::PopulationInput input = entry::readPopulationInput(
        reads, out.id, period.start, period.end, employee.dateOfJoin, settings);
    EntryGrids grids;
    rules::populateNewEntry(grids.days, grids.pairs, grids.mirror, input);

    // The punches, as Import punches... lays them on.
    const ImportPlan plan =
        planForEntry(grids.days, punches, request.businessDate, request.pairing);
    out.pairs = plan.pairs;
    out.duplicatesDropped = plan.duplicatesDropped;
    out.workingDaysWithoutPunches = static_cast<int>(plan.workingDaysWithoutPunches.size());
    if (hasFlaggedDays(plan)) {
        Skip skip(QStringLiteral("flagged days: correct them in the entry form"));
        for (const DayImport& d : plan.days)
            if (d.flags != DayFlags())
                skip.flaggedDays << dateText(d.date) + QStringLiteral(": ") +
                                        dayFlagTexts(d.flags).join(QStringLiteral(", "));
        throw skip;
    }
    if (plan.pairs == 0)
        throw Skip{QStringLiteral("none of the employee's punches falls in the period")};
    layPunches(grids.days, grids.mirror, plan, input.graceStart, settings.graceMinutes);
    const rules::DayCounts counts = rules::fnCountDayTypes(grids.days);

    // OK.
    entry::EntryToSave e;
    e.employee = out.id;
    e.entryDateText = dateText(request.businessDate);
    e.startText = dateText(period.start);
    e.end = period.end;
    e.present = counts.present;
    e.leaves = counts.leave;
    e.absent = counts.absent;
    e.workTimeSettingId = *setting;
    e.days = &grids.days;
    e.mirror = &grids.mirror;
    e.action = history::Action::Imported;
    e.dryRun = request.dryRun;
    const entry::SaveResult saved =
        entry::fnSaveEntry(db, request.company, request.user, request.interfaceId, e);
    if (!saved.savedId) throw Skip{saved.message, {}, saved.failed};
    out.entryId = saved.savedId;
    out.attendanceNo = saved.attendanceNo;
    out.outcome = request.dryRun ? Outcome::WouldBeSaved : Outcome::Saved;
}

QString counted(qsizetype n, const char* one, const char* many) {
    return QString::number(n) + QLatin1Char(' ') + QLatin1String(n == 1 ? one : many);
}

QString employeeLabel(const EmployeeImport& e) {
    return e.name.trimmed().isEmpty() ? e.code.trimmed()
                                      : e.code.trimmed() + QLatin1Char(' ') + e.name.trimmed();
}

}  // namespace

int CompanyImportResult::count(Outcome outcome) const {
    return static_cast<int>(
        std::count_if(employees.begin(), employees.end(),
                      [outcome](const EmployeeImport& e) { return e.outcome == outcome; }));
}

bool CompanyImportResult::databaseFailed() const {
    return std::any_of(employees.begin(), employees.end(),
                       [](const EmployeeImport& e) { return e.databaseFailed; });
}

std::optional<QString> requestProblem(const CompanyImportRequest& request) {
    if (!request.from.isValid() || !request.to.isValid())
        return QStringLiteral("the period needs a first and a last day");
    if (request.to < request.from)
        return QStringLiteral("the period ends (%1) before it starts (%2)")
            .arg(dateText(request.to), dateText(request.from));
    if (entry::isPeriodTooLong(request.from, request.to)) return entry::kMsgPeriodTooLong;
    if (!request.businessDate.isValid()) return QStringLiteral("the business date is missing");
    return std::nullopt;
}

CompanyImportResult importCompanyPunches(const QSqlDatabase& db, QVector<Punch> punches,
                                         const CompanyImportRequest& request,
                                         const ImportProgress& progress) {
    // The callers refuse such a period with its reason; here it would lay out no day at all.
    if (const std::optional<QString> problem = requestProblem(request))
        throw std::invalid_argument(problem->toStdString());
    CompanyImportResult result;
    result.punches = static_cast<int>(punches.size());
    const QVector<Employee> staff = readCompanyEmployees(db, request.company);
    const entry::PopulateSettings settings = entry::readPopulateSettings(db);
    const MatchResult match = matchPunches(std::move(punches), staff);
    result.unmatchedCodes = describeMatch(match);

    for (const Employee& e : staff) {
        if (!match.punchesByEmployee.contains(e.id)) continue;
        EmployeeImport one;
        one.id = e.id;
        one.code = e.empNo;
        one.name = e.name;
        result.employees.append(one);
    }
    std::sort(result.employees.begin(), result.employees.end(),
              [](const EmployeeImport& a, const EmployeeImport& b) {
                  const QString x = normalizedCode(a.code);
                  const QString y = normalizedCode(b.code);
                  if (x.size() != y.size()) return x.size() < y.size();  // 9 before 10
                  return x != y ? x < y : a.id < b.id;
              });

    // Whom the employee picker would grey, as the database stood before this import.
    try {
        QVector<qint32> ids;
        for (const EmployeeImport& one : result.employees) ids << one.id;
        const QVector<std::optional<QDate>> behind = picker::payrollBehindByAggregate(db, ids);
        for (qsizetype i = 0; i < behind.size(); ++i) result.employees[i].payrollBehind = behind[i];
    } catch (const std::exception&) {
        // Without it the import runs as before; the summary then has no such list.
    }

    const int total = static_cast<int>(result.employees.size());
    for (int i = 0; i < total; ++i) {
        EmployeeImport& one = result.employees[i];
        if (progress && !progress(i, total, employeeLabel(one))) {
            result.stopped = true;
            result.notReached = total - i;
            result.employees.resize(i);
            break;
        }
        try {
            importEmployee(db, request, settings, match.punchesByEmployee.value(one.id), one);
        } catch (const Skip& skip) {
            one.outcome = Outcome::Skipped;
            one.reason = skip.reason;
            one.flaggedDays = skip.flaggedDays;
            one.databaseFailed = skip.databaseFailed;
        } catch (const std::exception& ex) {
            // A read that failed: this employee is left out, the next is tried.
            one.outcome = Outcome::Skipped;
            one.reason = db::errorMessage(ex);
            one.databaseFailed = true;
        }
    }
    if (progress && !result.stopped) progress(total, total, QString());
    return result;
}

QStringList companyImportSummary(const CompanyImportResult& result, bool dryRun) {
    QStringList lines;
    const int saved = result.count(dryRun ? Outcome::WouldBeSaved : Outcome::Saved);
    const int skipped = result.count(Outcome::Skipped);
    const QString of =
        QStringLiteral("%1 of %2")
            .arg(saved)
            .arg(counted(result.employees.size() + result.notReached, "employee", "employees"));
    lines << (dryRun ? QStringLiteral("Dry run, nothing was written: %1 would be saved, %2 "
                                      "skipped.")
                     : QStringLiteral("%1 saved, %2 skipped."))
                 .arg(of)
                 .arg(skipped);
    if (result.stopped)
        lines << QStringLiteral("Stopped before the last %1: nothing of theirs was written.")
                     .arg(counted(result.notReached, "employee", "employees"));
    // What needs the clerk comes first: who was left out and why, and whose punches
    // nobody got; then who was saved.
    if (skipped > 0) lines << QStringLiteral("Skipped, nothing of theirs written:");
    for (const EmployeeImport& e : result.employees) {
        if (e.outcome != Outcome::Skipped) continue;
        lines << QStringLiteral("  %1: %2").arg(employeeLabel(e), e.reason);
        for (const QString& day : e.flaggedDays) lines << QStringLiteral("    ") + day;
    }
    if (!result.unmatchedCodes.isEmpty()) {
        lines << QStringLiteral("Punches given to no one:");
        for (const QString& code : result.unmatchedCodes) lines << QStringLiteral("  ") + code;
    }
    // Imported all the same (the entry form allows them too), but apart, so that the clerk
    // checks them against payroll.
    bool behindHeading = false;
    for (const EmployeeImport& e : result.employees) {
        if (!e.payrollBehind) continue;
        if (!behindHeading)
            lines << QStringLiteral("Attendance already beyond the last payroll (the employee "
                                    "picker greys them):");
        behindHeading = true;
        lines << QStringLiteral("  %1: last payroll %2, %3")
                     .arg(employeeLabel(e), e.payrollBehind->toString(QStringLiteral("dd/MM/yyyy")),
                          e.outcome == Outcome::Skipped ? QStringLiteral("skipped")
                          : dryRun                      ? QStringLiteral("would be saved")
                                                        : QStringLiteral("saved"));
    }
    if (saved > 0) lines << (dryRun ? QStringLiteral("Would be saved:") : QStringLiteral("Saved:"));
    for (const EmployeeImport& e : result.employees) {
        if (e.outcome == Outcome::Skipped) continue;
        QString line =
            QStringLiteral("  %1: %2").arg(employeeLabel(e), counted(e.pairs, "pair", "pairs"));
        if (!dryRun) line += QStringLiteral(", entry %1").arg(e.attendanceNo);
        if (e.duplicatesDropped > 0)
            line += QStringLiteral(", %1 dropped")
                        .arg(counted(e.duplicatesDropped, "repeated punch", "repeated punches"));
        if (e.workingDaysWithoutPunches > 0)
            line += QStringLiteral(", %1 without punches kept as laid out")
                        .arg(counted(e.workingDaysWithoutPunches, "working day", "working days"));
        lines << line;
    }
    return lines;
}

int companyImportExitCode(const CompanyImportResult& result) {
    if (result.databaseFailed()) return 3;
    if (result.stopped || result.count(Outcome::Skipped) > 0) return 1;
    return 0;
}

}  // namespace qz2::punches
