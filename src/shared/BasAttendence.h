#pragma once
// The module-wide state of the component: the caller's context copied in by
// clsAttendance::Show, the entry mode and list query set by the register, and the physical
// names of the suite's tables resolved through the link table.

#include <QDate>
#include <QSqlDatabase>
#include <QString>

#include "db/Dialect.h"

class QWidget;

namespace qz2 {

inline qint16 gintUserID = 0;
inline qint16 gintCompanyID = 0;
inline QString gstrMsgboxTitle;
inline QSqlDatabase gadocon;  // the host's connection itself (QSqlDatabase is a shared handle)
inline QDate gdtProcessDate;
inline QString gstrEntryMode;  // "N" new entry, "E" editing
inline qint32 glngInterfaceID = 0;
inline QString gstrMasterQuery;

// The screen's identifier in the rights and prefix tables.
constexpr qint32 kInterfaceID = 91029;

// The identifier the register set on start-up; this screen's own when nothing set one (a
// form opened on its own).
inline qint32 screenInterfaceId() {
    return glngInterfaceID != 0 ? glngInterfaceID : kInterfaceID;
}
// The session's business date; today when none was given.
inline QDate businessDateOrToday() {
    return gdtProcessDate.isValid() ? gdtProcessDate : QDate::currentDate();
}

// One physical table name per logical table the component uses, filled by
// fnLoadLinkTableNames; empty until the link table names it.
struct LinkedTableNamesT {
    QString pusers, pCalenderHeader, pemployee, pCalenderDetail, pEmployeeAttendence, pEmpAttendanceDetail,
        ptables, pEmpAttendanceAllowanceDeductions, pSettings, pCurrencyMaster, pLeaveCancellationHeader,
        pleavecancellationdetail, pEmployeeLeaves, pleaveregisterDetail, pleaveregisterheader, pCalendarWTSheader,
        pMonthlyPayrollProcessing, pCalendarWorkTimeSettings, pEmpMonthlyEntryHeader, pDepartment, ptablecolumns,
        puserrights, pPrefix, pCurrencyallowdeddetails;
};
inline LinkedTableNamesT LinkedTableNames;

// The statement that reads the link table (SQL Server's text by default).
QString linkTableQuery(const db::Dialect& dialect = db::Dialect::sqlServer());

// Reads the link table on gadocon into LinkedTableNames. A logical name without a row keeps
// its previous value; a NULL physical name raises (a DbError), as does a missing table or an
// unopened connection.
void fnLoadLinkTableNames();

// Enter (13) moves the focus to the next control by a Tab keystroke to the focused widget;
// any other key is left alone.
void fnEnterToTab(int keyCode);
// Sends a Tab keystroke to the widget that has the focus ("{TAB}").
void sendTab();

}  // namespace qz2
