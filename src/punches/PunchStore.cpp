#include "punches/PunchStore.h"

#include <QSqlQuery>

#include "db/Database.h"
#include "shared/BasAttendence.h"

namespace qz2::punches {

QString companyEmployeesQuery(qint16 company) {
    return QStringLiteral("select eEmpID,eEmpNo,eActive,ename from ") + LinkedTableNames.pemployee +
           QStringLiteral(" where eCompanyID=") + QString::number(company);
}

QVector<Employee> readCompanyEmployees(const QSqlDatabase& db, qint16 company) {
    QVector<Employee> employees;
    db::forEachRow(db, companyEmployeesQuery(company), [&employees](const QSqlQuery& q) {
        employees.append({q.value(0).toInt(), q.value(1).toString(), db::isOn(q.value(2)),
                          q.value(3).toString()});
    });
    return employees;
}

}  // namespace qz2::punches
