#include "SaveScenario.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QGroupBox>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QSqlError>
#include <QSqlQuery>
#include <stdexcept>

#include "DbRoute.h"
#include "db/Database.h"
#include "db/Dialect.h"
#include "demo/DemoData.h"
#include "entry/SaveSql.h"
#include "entry/frmEmployeeDailyAttendance.h"
#include "rules/HalfDay.h"
#include "rules/Pairs.h"
#include "rules/Population.h"
#include "rules/RuleGrids.h"
#include "shared/BasAttendence.h"
#include "shared/FlexGrid.h"
#include "shared/TimeValue.h"

namespace qz2test {

Scenario demoScenario(qint32 employee, QDate start, const QString& remarks) {
    Scenario s;
    s.employee = employee;
    s.start = start;
    s.remarks = remarks;
    s.days = {
        {QStringLiteral("P"),
         {{"09:00", "13:00"}, {"14:00", "18:30"}},
         QStringLiteral("00:30"),
         QString()},
        {QStringLiteral("P"),
         {{"08:30", "12:00"}, {"12:30", "15:00"}, {"15:30", "19:15"}},
         QStringLiteral("02:45"),
         QStringLiteral("A")},
        {QStringLiteral("A"), {}, QString(), QString()},
        {QStringLiteral("HA"), {{"09:00", "13:00"}}, QString(), QString()},
        {QStringLiteral("H"), {}, QString(), QString()},
        {QStringLiteral("H"), {{"10:00", "12:00"}}, QString(), QString()},
        {QStringLiteral("L"), {}, QString(), QString()},
        {QStringLiteral("P"), {{"09:20", "17:00"}}, QStringLiteral("00:40"), QStringLiteral("D")},
    };
    return s;
}

Scenario busyMonthScenario(qint32 employee, QDate start, int days) {
    Scenario s;
    s.employee = employee;
    s.start = start;
    s.remarks = QStringLiteral("A busy month");
    const QList<ScenarioPair> six = {{"06:00", "07:00"}, {"07:30", "09:00"}, {"09:30", "11:00"},
                                     {"11:30", "13:00"}, {"13:30", "15:00"}, {"15:30", "17:10"}};
    for (int i = 0; i < days; ++i)
        s.days << ScenarioDay{QStringLiteral("P"), six, QStringLiteral("01:10"),
                              i % 2 == 0 ? QStringLiteral("A") : QStringLiteral("D")};
    return s;
}

void fillForm(qz2::frmEmployeeDailyAttendance& form, const Scenario& s) {
    using namespace qz2;
    for (int i = 0; i < form.cboEmpname->count(); ++i) {
        if (form.cboEmpname->itemData(i).toLongLong() == s.employee) {
            form.cboEmpname->setCurrentIndex(i);  // the employee box's handler runs
            break;
        }
    }
    form.txtStartDate->setText(dateText(s.start));
    form.dtpEndDate->setDate(s.end());
    form.txtEndDate->setText(dateText(s.end()));
    form.fnShowTotalDays();
    if (s.entryDate.isValid()) form.txtAttdate->setText(dateText(s.entryDate));

    FlexGridModel& days = *form.mfgAttendance->flexModel();
    FlexGridModel& mirror = *form.mfgMirrorGrid->flexModel();
    rules::fnBuildDayRows(days, s.start, s.end());
    mirror.setRows(1);
    for (int i = 0; i < s.days.size(); ++i) {
        const int row = i + 1;
        const QDate date = s.start.addDays(i);
        days.setTextMatrix(row, rules::daycol::Type, s.days[i].type);
        form.fnCalculateScheduleHours(date, static_cast<qint16>(row));
        int slNo = 0;
        for (const ScenarioPair& p : s.days[i].pairs)
            mirror.AddItem({dateText(date), QString::number(++slNo), p.checkIn, p.checkOut});
    }
    // Holidays are scheduled at zero, as Populate leaves them.
    form.fnZeroHolidaySchedule();
    form.fnCalculateTotalHours();
    form.fnFindtheAdditionalWorkingHours();
    for (int i = 0; i < s.days.size(); ++i) {
        const ScenarioDay& day = s.days[i];
        if (day.hours.isEmpty() && day.claim.isEmpty()) continue;
        rules::fnSetDayAllowanceDeduction(days, day.hours, day.claim, s.start.addDays(i),
                                          !day.claim.isEmpty());
    }
    form.fnCountDayTypes();
    form.txtRemarks->setText(s.remarks);
}

void openedAs(qz2::frmEmployeeDailyAttendance& form, qint32 id) {
    using namespace qz2;
    const db::Recordset header = db::openRecordset(
        gadocon, entry::savesql::headerQuery(db::Dialect::of(gadocon), gintCompanyID,
                                             QString::number(id)));
    form.lngAttendanceID = id;
    form.strOpenedHeader = entry::savesql::storedHeaderFingerprint(header);
}

void applyStandardEdit(qz2::frmEmployeeDailyAttendance& form, QDate start) {
    using namespace qz2;
    FlexGridModel& days = *form.mfgAttendance->flexModel();
    FlexGridModel& mirror = *form.mfgMirrorGrid->flexModel();
    rules::fnUpdateMirrorTime(mirror, start, 1, TimeValue::fromHM(12, 45),
                              rules::TimeKind::CheckOut);
    const QDate halfDay = start.addDays(3);
    for (int r = 1; r < days.Rows(); ++r)
        if (rules::sameDay(days.TextMatrix(r, rules::daycol::Date), halfDay))
            days.setTextMatrix(r, rules::daycol::Type, QStringLiteral("A"));
    rules::fnRemoveMirrorRowsOfDate(mirror, halfDay);
    const QDate second = start.addDays(1);
    for (int r = 1; r < days.Rows(); ++r)
        if (rules::sameDay(days.TextMatrix(r, rules::daycol::Date), second))
            rules::fnSetDayAllowanceDeduction(days, days.TextMatrix(r, rules::daycol::Hours),
                                              QString(), second, false);
    form.fnCalculateTotalHours();
    form.fnCountDayTypes();
}

QString formSnapshot(const qz2::frmEmployeeDailyAttendance& form) {
    using namespace qz2;
    QStringList out;
    for (const QLineEdit* box : form.findChildren<QLineEdit*>()) {
        if (box->objectName().isEmpty()) continue;  // the editors inside spin boxes
        out << box->objectName() + QStringLiteral("=") + box->text();
    }
    for (const QComboBox* box : form.findChildren<QComboBox*>())
        out << box->objectName() + QStringLiteral("#") + QString::number(box->currentIndex()) +
                   QLatin1Char('/') + QString::number(box->count());
    for (const QDateEdit* box : form.findChildren<QDateEdit*>())
        out << box->objectName() + QStringLiteral("@") + box->date().toString(Qt::ISODate);
    for (const QCheckBox* box : form.findChildren<QCheckBox*>())
        out << box->objectName() + QStringLiteral("[") + QString::number(box->checkState()) +
                   QStringLiteral("]") + box->text();
    for (const QListWidget* list : form.findChildren<QListWidget*>())
        for (int i = 0; i < list->count(); ++i)
            out << list->objectName() + QLatin1Char(':') + list->item(i)->text() +
                       QLatin1Char(':') + QString::number(list->item(i)->checkState());
    for (const FlexGrid* grid : {form.mfgAttendance, form.mfgCheckinCheckOut, form.mfgMirrorGrid})
        for (int r = 0; r < grid->Rows(); ++r) {
            QStringList cells;
            for (int c = 0; c < grid->Cols(); ++c) cells << grid->TextMatrix(r, c);
            out << grid->objectName() + QLatin1Char('.') + QString::number(r) + QLatin1Char('=') +
                       cells.join(QLatin1Char('|'));
        }
    for (const QWidget* w :
         std::initializer_list<const QWidget*>{form.cmdOK, form.cmdCancel, form.cmdPopulateRecords,
                                               form.fraEmployeeAttendance, form.fraGridContainer})
        out << w->objectName() + (w->isEnabled() ? QStringLiteral(" on") : QStringLiteral(" off"));
    out << QStringLiteral("employee=") + QString::number(form.lngEmployeeID)
        << QStringLiteral("setting=") + QString::number(form.lngWorkTimeSettingID)
        << QStringLiteral("entry=") + QString::number(form.lngAttendanceID)
        << QStringLiteral("saved=") + QString::number(form.saved())
        << QStringLiteral("result=") + QString::number(form.result())
        << QStringLiteral("visible=") + QString::number(form.isVisible());
    return out.join(QLatin1Char('\n'));
}

qint32 freeEmployee(const QSqlDatabase& db, int n) {
    QSqlQuery q(db);
    q.exec(
        QStringLiteral(
            "select eEmpID from pEmployee where eCompanyID=1 and eActive=1 and eDeptID is not null "
            "and PerHourRate>0 and eEmpID in (select eaEmpID from pEmployeeAttendence where "
            "eaCompanyID=1 "
            "and eaCancelled=0) and eEmpID not in (select emhEmpID from pEmpMonthlyEntryHeader) "
            "order by eEmpID limit 1 offset ") +
        QString::number(n));
    return q.next() ? q.value(0).toInt() : 0;
}

QSqlDatabase openSessionFile(const QString& file, const QString& connectionName,
                             int busyTimeoutMs) {
    QSqlDatabase db = openSqliteFile(file, connectionName, busyTimeoutMs);
    qz2::gadocon = db;
    qz2::gintCompanyID = 1;
    qz2::gintUserID = 1;
    qz2::gdtProcessDate = QDate(2026, 11, 21);
    qz2::gstrMsgboxTitle = QStringLiteral("Attendance Test");
    qz2::glngInterfaceID = qz2::kInterfaceID;
    qz2::LinkedTableNames = {};
    qz2::fnLoadLinkTableNames();
    return db;
}

void createDemoFile(const QString& file) {
    const QString name = QStringLiteral("demo-file-") + file;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        db.setDatabaseName(file);
        if (!db.open()) throw std::runtime_error(db.lastError().text().toStdString());
        qz2::demo::createSchema(db);
        qz2::demo::generate(db, QDate(2026, 11, 21));
        db.close();
    }
    QSqlDatabase::removeDatabase(name);
}

}  // namespace qz2test
