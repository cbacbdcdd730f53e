#pragma once
// A report asked for by kind: reads what it needs on the connection and gives the table the
// writers take. The host program's command and the register's dialog both go through here.

#include <QDate>
#include <QSqlDatabase>
#include <QString>
#include <optional>

#include "reports/ReportTable.h"

namespace qz2::reports {

enum class Kind { Muster, Sheet, Payroll };
// "muster", "sheet", "payroll"; nullopt otherwise.
std::optional<Kind> kindFromName(const QString& name);

struct Request {
    Kind kind = Kind::Muster;
    qint16 company = 0;
    QDate from;
    QDate to;
    std::optional<qint32> department;
    QString entryNo;       // the sheet's entry
    QString companyTitle;  // the first heading line
};

// Throws ReportError when the request cannot be served, db::DbError when a statement fails.
ReportTable makeReport(const QSqlDatabase& db, const Request& request);

}  // namespace qz2::reports
