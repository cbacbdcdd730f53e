// A host of the installed component: sets the context by property name and shows the
// register, which it closes again as soon as it is up.
#include <QApplication>
#include <QSqlDatabase>
#include <QTimer>
#include <QWidget>
#include <QZ2EmpDailyAtten/clsAttendance.h>
#include <cstdio>

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    clsAttendance attendance;
    bool ok = attendance.setProperty("MsgboxTitle", QStringLiteral("Host"));
    ok = attendance.setProperty("ProcessDate", QDate(2026, 11, 21)) && ok;
    ok = attendance.setProperty("intUserID", QVariant::fromValue<qint16>(1)) && ok;
    ok = attendance.setProperty("intCompanyID", QVariant::fromValue<qint16>(1)) && ok;
    if (!ok || attendance.property("intCompanyID").value<qint16>() != 1) {
        std::puts("host: properties were not taken");
        return 1;
    }
    QString shown;
    QTimer::singleShot(0, [&] {
        if (QWidget* w = QApplication::activeModalWidget()) {
            shown = w->objectName();
            w->close();
        }
    });
    attendance.Show();  // no connection given: the register opens with an empty list
    if (shown != QLatin1String("FrmMaster")) {
        std::printf("host: expected the register, saw '%s'\n", qPrintable(shown));
        return 1;
    }
    std::puts("host: register shown and closed");
    return 0;
}
