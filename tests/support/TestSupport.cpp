#include "TestSupport.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QElapsedTimer>
#include <QMenu>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QTimer>
#include <QUuid>

#include "DbRoute.h"
#include "demo/DemoData.h"
#include "shared/BasAttendence.h"

namespace qz2test {

QStringList logicalTableNames() {
    return {QStringLiteral("pusers"), QStringLiteral("pCalenderHeader"), QStringLiteral("pemployee"),
            QStringLiteral("pCalenderDetail"), QStringLiteral("pEmployeeAttendence"), QStringLiteral("pEmpAttendanceDetail"),
            QStringLiteral("ptables"), QStringLiteral("pEmpAttendanceAllowanceDeductions"), QStringLiteral("pSettings"),
            QStringLiteral("pCurrencyMaster"), QStringLiteral("pLeaveCancellationHeader"),
            QStringLiteral("pleavecancellationdetail"), QStringLiteral("PEmployeeLeaves"),
            QStringLiteral("pleaveregisterDetail"), QStringLiteral("pleaveregisterheader"),
            QStringLiteral("pCalendarWTSheader"), QStringLiteral("pMonthlyPayrollProcessing"),
            QStringLiteral("pCalendarWorkTimeSettings"), QStringLiteral("pEmpMonthlyEntryHeader"),
            QStringLiteral("pDepartment"), QStringLiteral("ptablecolumns"), QStringLiteral("puserrights"),
            QStringLiteral("pPrefix"), QStringLiteral("pCurrencyallowdeddetails")};
}

namespace {
void pointSessionAt(const QSqlDatabase& db, QDate processDate) {
    qz2::gadocon = db;
    qz2::gintCompanyID = 1;
    qz2::gintUserID = 1;
    qz2::gdtProcessDate = processDate;
    qz2::gstrMsgboxTitle = QStringLiteral("Attendance Test");
    qz2::gstrEntryMode.clear();
    qz2::glngInterfaceID = qz2::kInterfaceID;
    qz2::LinkedTableNames = {};
}
}  // namespace

TestDb::TestDb(bool demo, QDate processDate) {
    m_name = QStringLiteral("test-") + QUuid::createUuid().toString(QUuid::WithoutBraces);
    const QString driver = odbcRoute();
    // On the ODBC route the database is a file of its own, built through Qt's SQLite driver
    // and then opened through the ODBC driver, so that the test works on the same rows.
    if (!driver.isEmpty()) m_file = QDir::temp().filePath(m_name + QStringLiteral(".sqlite"));
    {
        const QString buildName = driver.isEmpty() ? m_name : m_name + QStringLiteral("-build");
        QSqlDatabase build = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), buildName);
        build.setDatabaseName(driver.isEmpty() ? QStringLiteral(":memory:") : m_file);
        if (!build.open()) ADD_FAILURE() << build.lastError().text().toStdString();
        qz2::demo::createSchema(build);
        if (demo) {
            qz2::demo::generate(build, processDate);
        } else {
            for (const QString& name : logicalTableNames()) {
                QSqlQuery q(build);
                if (!q.exec(QStringLiteral("insert into linktable(tablename, linktablename) "
                                           "values('%1','%1')")
                                .arg(name)))
                    ADD_FAILURE() << q.lastError().text().toStdString();
            }
        }
        if (driver.isEmpty()) {
            db = build;
        } else {
            build.close();
            build = QSqlDatabase();
            QSqlDatabase::removeDatabase(buildName);
        }
    }
    if (!driver.isEmpty()) {
        try {
            db = openSqliteFileOverOdbc(driver, m_file, m_name, 10000);
        } catch (const std::exception& e) {
            ADD_FAILURE() << e.what();
        }
        openCheck(m_file);
    }
    pointSessionAt(db, processDate);
    qz2::fnLoadLinkTableNames();
}

TestDb::TestDb(const QString& file) {
    m_name = QStringLiteral("test-") + QUuid::createUuid().toString(QUuid::WithoutBraces);
    try {
        db = openSqliteFile(file, m_name, 10000);
    } catch (const std::exception& e) {
        ADD_FAILURE() << e.what();
    }
    if (overOdbc()) openCheck(file);
    pointSessionAt(db, QDate(2026, 11, 21));
}

void TestDb::openCheck(const QString& file) {
    m_check = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_name + QStringLiteral("-check"));
    m_check.setDatabaseName(file);
    m_check.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=10000"));
    if (!m_check.open()) ADD_FAILURE() << m_check.lastError().text().toStdString();
}

const QSqlDatabase& TestDb::checkDb() const { return m_check.isValid() ? m_check : db; }

const QSqlDatabase& TestDb::readerFor(const QString& sql) const {
    // A pragma reads a setting of the connection itself (its lock wait, for one).
    return sql.trimmed().startsWith(QLatin1String("PRAGMA"), Qt::CaseInsensitive) ? db : checkDb();
}

bool TestDb::overOdbc() const { return db.driverName() == QLatin1String("QODBC"); }

TestDb::~TestDb() {
    if (qz2::gadocon.connectionName() == m_name) qz2::gadocon = QSqlDatabase();
    db.close();
    db = QSqlDatabase();
    QSqlDatabase::removeDatabase(m_name);
    if (m_check.isValid()) {
        const QString checkName = m_check.connectionName();
        m_check.close();
        m_check = QSqlDatabase();
        QSqlDatabase::removeDatabase(checkName);
    }
    if (!m_file.isEmpty()) {
        for (const char* suffix : {"", "-journal", "-wal", "-shm"})
            QFile::remove(m_file + QLatin1String(suffix));
    }
}

void TestDb::exec(const QString& sql) const {
    QSqlQuery q(db);
    if (!q.exec(sql)) ADD_FAILURE() << "SQL failed: " << sql.toStdString() << "\n" << q.lastError().text().toStdString();
}

QVariant TestDb::scalar(const QString& sql) const {
    QSqlQuery q(readerFor(sql));
    if (!q.exec(sql)) {
        ADD_FAILURE() << "SQL failed: " << sql.toStdString() << "\n" << q.lastError().text().toStdString();
        return {};
    }
    return q.next() ? q.value(0) : QVariant();
}

QList<QVariantList> TestDb::rows(const QString& sql) const {
    QList<QVariantList> out;
    QSqlQuery q(readerFor(sql));
    if (!q.exec(sql)) {
        ADD_FAILURE() << "SQL failed: " << sql.toStdString() << "\n" << q.lastError().text().toStdString();
        return out;
    }
    while (q.next()) {
        QVariantList row;
        for (int i = 0; i < q.record().count(); ++i) row << q.value(i);
        out << row;
    }
    return out;
}

QString TestDb::dump() const {
    QString out;
    QSqlQuery tables(checkDb());
    tables.exec(QStringLiteral("select name from sqlite_master where type='table' order by name"));
    QStringList names;
    while (tables.next()) names << tables.value(0).toString();
    for (const QString& t : names) {
        out += QStringLiteral("== ") + t + QLatin1Char('\n');
        QSqlQuery q(checkDb());
        q.exec(QStringLiteral("select * from ") + t);
        QStringList lines;
        while (q.next()) {
            QStringList cells;
            for (int i = 0; i < q.record().count(); ++i)
                cells << (q.value(i).isNull() ? QStringLiteral("NULL") : q.value(i).toString());
            lines << cells.join(QLatin1Char('|'));
        }
        lines.sort();
        out += lines.join(QLatin1Char('\n')) + QLatin1Char('\n');
    }
    return out;
}

QStringList table(const TestDb& t, const QString& sql) {
    QStringList out;
    QSqlQuery q(t.checkDb());
    if (!q.exec(sql)) {
        ADD_FAILURE() << sql.toStdString();
        return out;
    }
    while (q.next()) {
        QStringList cells;
        for (int i = 0; i < q.record().count(); ++i) {
            const QVariant v = q.value(i);
            if (v.isNull())
                cells << QStringLiteral("NULL");
            else if (v.typeId() == QMetaType::Double)
                cells << QString::number(v.toDouble(), 'g', 17);
            else
                cells << v.toString();
        }
        out << cells.join(QLatin1Char('|'));
    }
    return out;
}

PopupWatch::PopupWatch(std::function<void(QMenu*)> action) : m_timer(new QTimer(qApp)) {
    m_clock.start();
    m_timer->setInterval(10);
    QObject::connect(m_timer, &QTimer::timeout, [this, action] {
        auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        if (menu && menu->isVisible()) {
            m_timer->stop();
            m_seen = true;
            action(menu);
        } else if (m_clock.elapsed() > 2000) {
            m_timer->stop();
        }
    });
    m_timer->start();
}

PopupWatch::~PopupWatch() { delete m_timer; }

void whenModal(std::function<void(QWidget*)> action, int timeoutMs) {
    auto* timer = new QTimer(qApp);
    auto* clock = new QElapsedTimer;
    clock->start();
    timer->setInterval(10);
    QObject::connect(timer, &QTimer::timeout, [timer, clock, action, timeoutMs] {
        QWidget* modal = QApplication::activeModalWidget();
        if (modal && modal->isVisible()) {
            timer->stop();
            timer->deleteLater();
            delete clock;
            action(modal);
            return;
        }
        if (clock->elapsed() > timeoutMs) {
            timer->stop();
            timer->deleteLater();
            delete clock;
            ADD_FAILURE() << "no modal window appeared";
        }
    });
    timer->start();
}

void answerNextMessageBox(QMessageBox::StandardButton button, QString* textOut, int timeoutMs) {
    whenModal(
        [button, textOut](QWidget* w) {
            auto* box = qobject_cast<QMessageBox*>(w);
            if (!box) {
                ADD_FAILURE() << "expected a message box, got " << w->metaObject()->className();
                w->close();
                return;
            }
            if (textOut) *textOut = box->text();
            QAbstractButton* b = box->button(button);
            if (!b) {
                ADD_FAILURE() << "the message box has no such button: " << box->text().toStdString();
                box->close();
                return;
            }
            b->click();
        },
        timeoutMs);
}

QProcessEnvironment headlessEnvironment(const QString& folder) {
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.remove(QStringLiteral("DISPLAY"));
    env.remove(QStringLiteral("WAYLAND_DISPLAY"));
    env.remove(QStringLiteral("QT_QPA_PLATFORM"));
    const QDir dir(folder);
    env.insert(QStringLiteral("XDG_DATA_HOME"), dir.filePath(QStringLiteral("data")));
    QDir().mkpath(dir.filePath(QStringLiteral("runtime")));
    QFile::setPermissions(dir.filePath(QStringLiteral("runtime")),
                          QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
    env.insert(QStringLiteral("XDG_RUNTIME_DIR"), dir.filePath(QStringLiteral("runtime")));
    return env;
}

}  // namespace qz2test
