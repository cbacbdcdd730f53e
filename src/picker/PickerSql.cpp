#include "picker/PickerSql.h"

#include "shared/BasAttendence.h"

namespace qz2::picker::sql {

QString employeeStatusQuery(qint16 company) {
    const QString& employees = LinkedTableNames.pemployee;
    const QString& departments = LinkedTableNames.pDepartment;
    return QStringLiteral(
               " Select eEmpID,eEmpNo As 'EmployeeNo',eName As 'Employee Name',DepartmentName "
               "from ") +
           employees + QStringLiteral(" left outer join ") + departments + QStringLiteral(" on ") +
           employees + QStringLiteral(".eDeptID=") + departments + QStringLiteral(".DepartmentID") +
           QStringLiteral(" where eActive = 1 And eCompanyID = ") + QString::number(company);
}

QString lastPayrollQuery(qint32 employee) {
    return QStringLiteral(
               "Select max(mppPayrollDate) from pMonthlyPayrollProcessing where mppEmpID=") +
           QString::number(employee);
}

QString attendanceAfterQuery(const db::Dialect& d, QDate day) {
    return QStringLiteral("Select eadDate from pEmpAttendanceDetail where eadDate > ") +
           QLatin1Char('\'') + d.dateText(day, u"yyyymmdd") + QLatin1Char('\'');
}

QString lastPayrollByEmployeeQuery() {
    return QStringLiteral(
        "Select mppEmpID,max(mppPayrollDate) from pMonthlyPayrollProcessing group by mppEmpID");
}

QString latestAttendanceQuery() {
    return QStringLiteral("Select max(eadDate) from pEmpAttendanceDetail");
}

}  // namespace qz2::picker::sql
