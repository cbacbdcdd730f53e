#include <QApplication>
#include <QKeyEvent>
#include <QWidget>
#include <utility>

#include "db/Database.h"
#include "shared/BasAttendence.h"

namespace qz2 {

QString linkTableQuery(const db::Dialect& d) {
    return QStringLiteral(" select tablename, linktablename from linktable where ") + d.caseless(QStringLiteral("tablename")) +
           QStringLiteral(
        " in ( "
        " 'pusers', 'pCalenderHeader', 'pemployee', 'pCalenderDetail','pEmployeeAttendence','pEmpAttendanceDetail', 'ptables', "
        " 'pEmpAttendanceAllowanceDeductions','pSettings','pCurrencyMaster','pLeaveCancellationHeader','pleavecancellationdetail', "
        " 'PEmployeeLeaves','pleaveregisterDetail','pleaveregisterheader','pCalendarWTSheader',"
        " 'pMonthlyPayrollProcessing','pCalendarWorkTimeSettings','pEmpMonthlyEntryHeader', "
        " 'pDepartment','ptablecolumns', 'puserrights',  'pPrefix','pCurrencyallowdeddetails')");
}

void fnLoadLinkTableNames() {
    auto& t = LinkedTableNames;
    // Every logical name is compared in this order on every row; the later row wins.
    const std::pair<const char*, QString*> members[] = {
        {"pusers", &t.pusers},
        {"pCalenderHeader", &t.pCalenderHeader},
        {"pCalenderDetail", &t.pCalenderDetail},
        {"pEmployeeAttendence", &t.pEmployeeAttendence},
        {"pEmpAttendanceDetail", &t.pEmpAttendanceDetail},
        {"pEmpAttendanceAllowanceDeductions", &t.pEmpAttendanceAllowanceDeductions},
        {"pCalendarWorkTimeSettings", &t.pCalendarWorkTimeSettings},
        {"puserrights", &t.puserrights},
        {"pPrefix", &t.pPrefix},
        {"pemployee", &t.pemployee},
        {"pDepartment", &t.pDepartment},
        {"pMonthlyPayrollProcessing", &t.pMonthlyPayrollProcessing},
        {"pSettings", &t.pSettings},
        {"ptables", &t.ptables},
        {"ptablecolumns", &t.ptablecolumns},
        {"pEmployeeLeaves", &t.pEmployeeLeaves},
        {"pCurrencyMaster", &t.pCurrencyMaster},
        {"pleavecancellationdetail", &t.pleavecancellationdetail},
        {"pleaveregisterheader", &t.pleaveregisterheader},
        {"pleaveregisterDetail", &t.pleaveregisterDetail},
        {"pCurrencyallowdeddetails", &t.pCurrencyallowdeddetails},
        {"pCalendarWTSheader", &t.pCalendarWTSheader},
        {"pLeaveCancellationHeader", &t.pLeaveCancellationHeader},
        {"pEmpMonthlyEntryHeader", &t.pEmpMonthlyEntryHeader},
    };
    const QString query = linkTableQuery(db::Dialect::of(gadocon));
    db::Recordset rs = db::openRecordset(gadocon, query);
    while (!rs.eof()) {
        const QString logical = rs.field(QStringLiteral("tablename")).toString().toUpper();
        for (const auto& [name, member] : members) {
            if (logical == QString::fromLatin1(name).toUpper()) {
                const QVariant physical = rs.field(QStringLiteral("linktablename"));
                if (physical.isNull())
                    throw db::DbError(QStringLiteral("Invalid use of Null"), query);
                *member = physical.toString();
            }
        }
        rs.moveNext();
    }
}

void sendTab() {
    QWidget* w = QApplication::focusWidget();
    if (!w) return;
    QKeyEvent press(QEvent::KeyPress, Qt::Key_Tab, Qt::NoModifier);
    QApplication::sendEvent(w, &press);
    QKeyEvent release(QEvent::KeyRelease, Qt::Key_Tab, Qt::NoModifier);
    QApplication::sendEvent(w, &release);
}

void fnEnterToTab(int keyCode) {
    if (keyCode == 13) sendTab();
}

}  // namespace qz2
