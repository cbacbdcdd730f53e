#include "ReportMonth.h"

#include <gtest/gtest.h>

#include <QSqlError>
#include <QSqlQuery>
#include <QStringList>

#include "TestSupport.h"
#include "demo/DemoData.h"

namespace qz2test {

namespace {

void run(const QSqlDatabase& db, const QStringList& statements) {
    for (const QString& s : statements) {
        QSqlQuery q(db);
        if (!q.exec(s))
            ADD_FAILURE() << "SQL failed: " << s.toStdString() << "\n"
                          << q.lastError().text().toStdString();
    }
}

}  // namespace

void fillReportMonth(const QSqlDatabase& db) {
    run(db, {
                // Grace time of 10 minutes: a check-in up to 09:10 counts as 09:00.
                "insert into pSettings(companyid, gracetime, noofPreviousdays) values(1, 10, 0)",
                "insert into pDepartment(DepartmentID, CompanyID, DepartmentName) values(10, 1, "
                "'Stores')",
                "insert into pDepartment(DepartmentID, CompanyID, DepartmentName) values(20, 1, "
                "'Office')",
                // Asha: two entries either side of the month end, a cancelled one on the leap day.
                "insert into pEmployee(eEmpID, eCompanyID, eEmpNo, eName, eActive, eDeptID) "
                "values(1, 1, 'E01', 'Asha, \"A\" Rao', 1, 10)",
                // Ben: no department; two live entries overlap on 29 Feb and 1 Mar.
                "insert into pEmployee(eEmpID, eCompanyID, eEmpNo, eName, eActive, eDeptID) "
                "values(2, 1, 'E02', 'Ben Okafor', 1, NULL)",
                // Chen: active, no entry at all.
                "insert into pEmployee(eEmpID, eCompanyID, eEmpNo, eName, eActive, eDeptID) "
                "values(3, 1, 'E03', 'Chen Li', 1, 20)",
                // Dara: inactive without entries: in no report.
                "insert into pEmployee(eEmpID, eCompanyID, eEmpNo, eName, eActive, eDeptID) "
                "values(4, 1, 'E04', 'Dara Stone', 0, 10)",
                // Eli: inactive, but with a live entry in the week.
                "insert into pEmployee(eEmpID, eCompanyID, eEmpNo, eName, eActive, eDeptID) "
                "values(5, 1, 'E05', 'Eli Marsh', 0, 10)",
                // Setting 1: Monday to Friday 09:00-13:00 and 14:00-18:00; nothing on the weekend.
                "insert into pCalendarWTSheader(cwtsCompanyID, cwtsid, cwtsdepartmentid) values(1, "
                "1, 0)",
            });
    for (int day = 2; day <= 6; ++day)
        run(db, {QStringLiteral("insert into pCalendarWorkTimeSettings(cwtsCompanyID, cwtsid, "
                                "cwtsDayID, cwtsCheckIn1, "
                                "cwtsCheckOut1, cwtsCheckIn2, cwtsCheckOut2) values(1, 1, %1, "
                                "'09:00:00', '13:00:00', "
                                "'14:00:00', '18:00:00')")
                     .arg(day)});
    const QString header = QStringLiteral(
        "insert into pEmployeeAttendence(eaCompanyID, eaID, eaNo, eaDate, eaEmpID, eaPresent, "
        "eaLeaves, eaAbsent, "
        "eaCancelled, eaStartDate, eaEndDate, eacwtsid, eaRemarks, eaPerHourRate, "
        "eaCancelledRemarks) values(1, %1)");
    run(db, {
                header.arg("1, 'ATT1', '2024-03-01', 1, 2.5, 1, 1.5, 0, '2024-02-01', "
                           "'2024-02-29', 1, 'Signed late', 0, NULL"),
                header.arg("2, 'ATT2', '2024-03-04', 1, 3, 0, 0, 0, '2024-03-01', '2024-03-31', 1, "
                           "NULL, 0, NULL"),
                header.arg("3, 'ATT3', '2024-03-01', 1, 1, 0, 0, 1, '2024-02-29', '2024-02-29', 1, "
                           "NULL, 0, 'Keyed twice'"),
                header.arg("4, 'ATT4', '2024-03-04', 2, 3.5, 1, 0.5, 0, '2024-02-26', "
                           "'2024-03-03', 1, NULL, 0, NULL"),
                header.arg("5, 'ATT5', '2024-03-04', 2, 1, 0, 1, 0, '2024-02-29', '2024-03-01', 1, "
                           "NULL, 0, NULL"),
                header.arg("6, 'ATT6', '2024-03-04', 5, 0, 0, 1, 0, '2024-03-01', '2024-03-03', 1, "
                           "NULL, 0, NULL"),
            });
    const QString line = QStringLiteral(
        "insert into pEmpAttendanceDetail(eadCompanyID, eadAttendanceID, eadDetailID, eadDate, "
        "eadType, eadCheckIN, "
        "eadCheckOut) values(1, %1)");
    run(db, {
                // ATT1: 25 Feb is before the week.
                line.arg("1, 1, '2024-02-25', 'P', '09:00:00', '17:00:00'"),
                line.arg("1, 2, '2024-02-26', 'P', '09:05:00', '13:00:00'"),
                line.arg("1, 3, '2024-02-26', 'P', '14:00:00', '18:30:00'"),
                line.arg("1, 4, '2024-02-27', 'A', NULL, NULL"),
                line.arg("1, 5, '2024-02-28', 'HA', '09:00:00', '13:00:00'"),
                line.arg("1, 6, '2024-02-29', 'L', NULL, NULL"),
                // ATT2: an early check-in counts as it is; a holiday with times.
                line.arg("2, 1, '2024-03-01', 'P', '08:50:00', '13:00:00'"),
                line.arg("2, 2, '2024-03-01', 'P', '14:00:00', '17:45:00'"),
                line.arg("2, 3, '2024-03-02', 'H', NULL, NULL"),
                line.arg("2, 4, '2024-03-03', 'H', '10:00:00', '12:00:00'"),
                line.arg("2, 5, '2024-03-05', 'P', '09:00:00', '18:00:00'"),
                // ATT3 is cancelled.
                line.arg("3, 1, '2024-02-29', 'P', '09:00:00', '18:00:00'"),
                // ATT4 and ATT5 both cover 29 Feb and 1 Mar.
                line.arg("4, 1, '2024-02-26', 'P', '09:00:00', '17:00:00'"),
                line.arg("4, 2, '2024-02-27', 'HL', '09:00:00', '13:00:00'"),
                line.arg("4, 3, '2024-02-28', 'AL', NULL, NULL"),
                line.arg("4, 4, '2024-02-29', 'P', '09:00:00', '18:00:00'"),
                line.arg("4, 5, '2024-03-01', 'P', '09:00:00', '13:00:00'"),
                line.arg("5, 1, '2024-02-29', 'A', NULL, NULL"),
                line.arg("5, 2, '2024-03-01', 'P', '09:00:00', '13:00:00'"),
                // ATT6 has no lines on the weekend.
                line.arg("6, 1, '2024-03-01', 'A', NULL, NULL"),
            });
    const QString claim = QStringLiteral(
        "insert into pEmpAttendanceAllowanceDeductions(eaadCompanyID, eaadAttendanceID, "
        "eaadDetailID, eaadDate, "
        "eaadHours, eaadAllowanceID, eaadDeductionID) values(1, %1)");
    run(db, {
                claim.arg("1, 1, '2024-02-26', 0.5, 7, NULL"),
                claim.arg("1, 2, '2024-02-28', 0.25, NULL, 8"),
                claim.arg("2, 1, '2024-03-01', 0.25, NULL, 8"),
                claim.arg("2, 2, '2024-03-05', 2, 7, NULL"),
                claim.arg("3, 1, '2024-02-29', 1, 7, NULL"),
            });
}

void createReportMonthFile(const QString& path) {
    const QString name = QStringLiteral("report-month-file");
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        db.setDatabaseName(path);
        if (!db.open()) ADD_FAILURE() << db.lastError().text().toStdString();
        qz2::demo::createSchema(db);
        for (const QString& t : logicalTableNames())
            run(db,
                {QStringLiteral("insert into linktable(tablename, linktablename) values('%1','%1')")
                     .arg(t)});
        fillReportMonth(db);
        db.close();
    }
    QSqlDatabase::removeDatabase(name);
}

}  // namespace qz2test
