#include "reports/Report.h"

#include "reports/ReportData.h"
#include "reports/ReportFigures.h"

namespace qz2::reports {

std::optional<Kind> kindFromName(const QString& name) {
    const QString n = name.trimmed().toLower();
    if (n == QLatin1String("muster")) return Kind::Muster;
    if (n == QLatin1String("sheet")) return Kind::Sheet;
    if (n == QLatin1String("payroll")) return Kind::Payroll;
    return std::nullopt;
}

ReportTable makeReport(const QSqlDatabase& db, const Request& r) {
    if (r.kind == Kind::Sheet) {
        if (r.entryNo.trimmed().isEmpty())
            throw ReportError(QStringLiteral("Which entry? Give its number."));
        return sheetTable(buildSheet(readSheet(db, r.company, r.entryNo)), r.companyTitle);
    }
    sql::Scope scope;
    scope.company = r.company;
    scope.from = r.from;
    scope.to = r.to;
    scope.department = r.department;
    const db::Dialect dialect = db::Dialect::of(db);
    if (r.kind == Kind::Muster)
        return musterTable(buildMuster(readPeriod(db, dialect, scope, PeriodReport::Muster)),
                           r.companyTitle);
    return payrollTable(buildPayroll(readPeriod(db, dialect, scope, PeriodReport::Payroll)),
                        r.companyTitle);
}

}  // namespace qz2::reports
