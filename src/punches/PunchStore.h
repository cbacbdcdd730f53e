#pragma once
// What importing punches reads from the database: the company's employees, whose numbers
// the punches' codes are matched to.

#include <QSqlDatabase>
#include <QString>
#include <QVector>

#include "punches/PunchMatch.h"

namespace qz2::punches {

// Every employee of the company with number, active flag and name (one statement).
QString companyEmployeesQuery(qint16 company);
QVector<Employee> readCompanyEmployees(const QSqlDatabase& db, qint16 company);

}  // namespace qz2::punches
