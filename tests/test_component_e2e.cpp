// The component as a host uses it: a clsAttendance filled by property name, Show(), the
// register on screen, and Show() returning when the clerk closes the register.
#include <gtest/gtest.h>

#include <QAbstractItemModel>
#include <QApplication>
#include <QMessageBox>
#include <QMetaProperty>
#include <QPushButton>
#include <QSet>
#include <QTableView>
#include <QTest>
#include <ostream>

#include <QZ2EmpDailyAtten/clsAttendance.h>

#include "TestSupport.h"
#include "register/FrmMaster.h"
#include "shared/BasAttendence.h"
#include "shared/MsgBox.h"

namespace {

using qz2test::TestDb;

const QDate kProcessDate(2026, 11, 21);

// What the register showed while it was open.
struct RegisterSeen {
    bool shown = false;
    QString name;
    QString title;
    QStringList ids;
    bool newEnabled = false;
    bool fresh = false;  // not a window that an earlier Show() already showed
};

// Notes what the register shows, runs `whileOpen` on it, then closes it with its Close button.
void closeRegisterWhenShown(RegisterSeen* seen, std::function<void(QWidget*)> whileOpen = {}) {
    qz2test::whenModal([seen, whileOpen](QWidget* w) {
        seen->shown = true;
        seen->name = w->objectName();
        seen->title = w->windowTitle();
        seen->fresh = !w->property("qz2test-seen").toBool();
        w->setProperty("qz2test-seen", true);
        if (auto* grid = w->findChild<QTableView*>(QStringLiteral("flexMaster"))) {
            for (int r = 0; r < grid->model()->rowCount(); ++r)
                seen->ids << grid->model()->index(r, 0).data().toString();
        } else {
            ADD_FAILURE() << "the register has no flexMaster grid";
        }
        if (auto* b = w->findChild<QPushButton*>(QStringLiteral("cmdnew"))) seen->newEnabled = b->isEnabled();
        if (whileOpen) whileOpen(w);
        auto* close = w->findChild<QPushButton*>(QStringLiteral("CmdClose"));
        if (!close) {
            ADD_FAILURE() << "the register has no CmdClose button";
            w->close();
            return;
        }
        QTest::mouseClick(close, Qt::LeftButton);
    });
}

// The entries a company's register should list, read independently of the component:
// those within the company's number of days back from the process date (all of them for 0).
QSet<QString> expectedIds(const TestDb& db, int company) {
    const int days = db.scalar(QStringLiteral("select noofPreviousdays from pSettings where companyid = %1").arg(company)).toInt();
    QString sql = QStringLiteral("select a.eaID from pEmployeeAttendence a join pEmployee e on e.eEmpID = a.eaEmpID and "
                                 "e.eCompanyID = a.eaCompanyID where a.eaCompanyID = %1")
                      .arg(company);
    if (days > 0)
        sql += QStringLiteral(" and julianday('%1') - julianday(a.eaDate) <= %2").arg(kProcessDate.toString(Qt::ISODate)).arg(days);
    QSet<QString> out;
    for (const QVariantList& row : db.rows(sql)) out << row[0].toString();
    return out;
}

QSet<QString> asSet(const QStringList& l) { return QSet<QString>(l.begin(), l.end()); }

void fill(clsAttendance& att, const QSqlDatabase* connection, qint16 user, qint16 company) {
    if (connection) {
        ASSERT_TRUE(att.setProperty("adocon", QVariant::fromValue(*connection)));
    }
    ASSERT_TRUE(att.setProperty("MsgboxTitle", QStringLiteral("Demo Works Attendance")));
    ASSERT_TRUE(att.setProperty("ProcessDate", kProcessDate));
    ASSERT_TRUE(att.setProperty("intUserID", QVariant::fromValue<qint16>(user)));
    ASSERT_TRUE(att.setProperty("intCompanyID", QVariant::fromValue<qint16>(company)));
}

void forgetSession() {
    qz2::gintUserID = 0;
    qz2::gintCompanyID = 0;
    qz2::gstrMsgboxTitle.clear();
    qz2::gadocon = QSqlDatabase();
    qz2::gdtProcessDate = QDate();
}

class ComponentE2E : public ::testing::Test {
protected:
    void SetUp() override {
        qz2::msgbox_testing::clear();
        qz2::msgbox_testing::setAutoAnswer(false);
    }
    void TearDown() override { qz2::msgbox_testing::clear(); }
};

TEST_F(ComponentE2E, ShowOpensTheRegisterAndReturnsWhenItIsClosed) {
    TestDb db(true, kProcessDate);
    forgetSession();
    const QSet<QString> expected = expectedIds(db, 1);
    ASSERT_FALSE(expected.isEmpty());

    clsAttendance att;
    fill(att, &db.db, 1, 1);
    RegisterSeen seen;
    closeRegisterWhenShown(&seen);
    att.Show();

    ASSERT_TRUE(seen.shown);
    EXPECT_EQ(seen.name, QStringLiteral("FrmMaster"));
    EXPECT_EQ(seen.title, QStringLiteral("Demo Works Attendance"));
    EXPECT_EQ(asSet(seen.ids), expected);
    EXPECT_EQ(seen.ids.size(), expected.size());
    EXPECT_TRUE(seen.newEnabled);
    EXPECT_EQ(qz2::FrmMaster::instance(), nullptr);  // closing unloaded it
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);

    // The session carries the context, on the host's own connection.
    EXPECT_EQ(qz2::gintUserID, 1);
    EXPECT_EQ(qz2::gintCompanyID, 1);
    EXPECT_EQ(qz2::gstrMsgboxTitle, QStringLiteral("Demo Works Attendance"));
    EXPECT_EQ(qz2::gdtProcessDate, kProcessDate);
    EXPECT_EQ(qz2::gadocon.connectionName(), db.db.connectionName());
    EXPECT_TRUE(qz2::gadocon.isOpen());
}

TEST_F(ComponentE2E, TheCompanyAndUserComeFromTheProperties) {
    TestDb db(true, kProcessDate);
    forgetSession();
    const QSet<QString> expected = expectedIds(db, 2);
    ASSERT_FALSE(expected.isEmpty());
    ASSERT_TRUE(expected != expectedIds(db, 1));
    // User 3 holds "ADMIN" for this screen in the demo: New stays off.
    ASSERT_EQ(db.scalar(QStringLiteral("select functionrights from puserrights where userid = 3 and interfaceid = 91029"))
                  .toString(),
              QStringLiteral("ADMIN"));

    clsAttendance att;
    fill(att, &db.db, 3, 2);
    RegisterSeen seen;
    closeRegisterWhenShown(&seen);
    att.Show();
    ASSERT_TRUE(seen.shown);
    EXPECT_EQ(asSet(seen.ids), expected);
    EXPECT_FALSE(seen.newEnabled);
    EXPECT_EQ(qz2::gintUserID, 3);
    EXPECT_EQ(qz2::gintCompanyID, 2);
}

TEST_F(ComponentE2E, ShowWithoutAConnectionStillOpensTheRegister) {
    forgetSession();
    clsAttendance att;
    const QSqlDatabase unset = att.property("adocon").value<QSqlDatabase>();
    EXPECT_FALSE(unset.isOpen());
    fill(att, nullptr, 1, 1);
    RegisterSeen seen;
    closeRegisterWhenShown(&seen);
    att.Show();
    ASSERT_TRUE(seen.shown);
    EXPECT_EQ(seen.name, QStringLiteral("FrmMaster"));
    EXPECT_TRUE(seen.ids.isEmpty());
    EXPECT_FALSE(qz2::gadocon.isOpen());
    EXPECT_EQ(qz2::FrmMaster::instance(), nullptr);
}

TEST_F(ComponentE2E, ASecondShowLoadsTheRegisterAfresh) {
    TestDb db(true, kProcessDate);
    clsAttendance att;
    fill(att, &db.db, 1, 1);
    RegisterSeen first;
    closeRegisterWhenShown(&first);
    att.Show();
    ASSERT_TRUE(first.shown);
    EXPECT_TRUE(first.fresh);

    // An entry made elsewhere meanwhile, on the process date.
    const int id = db.scalar(QStringLiteral("select max(eaID) + 1 from pEmployeeAttendence")).toInt();
    const int emp = db.scalar(QStringLiteral("select min(eEmpID) from pEmployee where eCompanyID = 1 and eActive = 1")).toInt();
    db.exec(QStringLiteral("insert into pEmployeeAttendence(eaCompanyID, eaID, eaNo, eaDate, eaEmpID, eaStartDate, eaEndDate) "
                           "values(1, %1, 'ATT-E2E', '%2', %3, '%2', '%2')")
                .arg(id)
                .arg(kProcessDate.toString(Qt::ISODate))
                .arg(emp));

    RegisterSeen second;
    closeRegisterWhenShown(&second);
    att.Show();
    ASSERT_TRUE(second.shown);
    EXPECT_TRUE(second.fresh);
    EXPECT_EQ(second.ids.size(), first.ids.size() + 1);
    EXPECT_TRUE(second.ids.contains(QString::number(id)));
    EXPECT_FALSE(first.ids.contains(QString::number(id)));
}

TEST_F(ComponentE2E, TheClerkCanStartANewEntryAndBackOut) {
    TestDb db(true, kProcessDate);
    const QString before = db.dump();
    clsAttendance att;
    fill(att, &db.db, 1, 1);
    QString entryForm, mode;
    RegisterSeen seen;
    closeRegisterWhenShown(&seen, [&](QWidget* reg) {
        auto* grid = reg->findChild<QTableView*>(QStringLiteral("flexMaster"));
        if (!grid) return;
        qz2test::whenModal([&](QWidget* w) {
            entryForm = w->objectName();
            mode = qz2::gstrEntryMode;
            if (auto* box = qobject_cast<QMessageBox*>(w)) {
                ADD_FAILURE() << "unexpected box: " << box->text().toStdString();
                box->reject();
            } else if (auto* dlg = qobject_cast<QDialog*>(w)) {
                dlg->reject();
            }
        });
        QTest::keyClick(grid, Qt::Key_Return, Qt::ControlModifier);
    });
    att.Show();
    ASSERT_TRUE(seen.shown);
    EXPECT_EQ(entryForm, QStringLiteral("frmEmployeeDailyAttendance"));
    EXPECT_EQ(mode, QStringLiteral("N"));
    EXPECT_EQ(db.dump(), before);
}

TEST(ComponentProperties, UserAndCompanyAreSixteenBitIntegers) {
    const QMetaObject& meta = clsAttendance::staticMetaObject;
    for (const char* name : {"intUserID", "intCompanyID"}) {
        const int i = meta.indexOfProperty(name);
        ASSERT_GE(i, 0) << name;
        EXPECT_EQ(meta.property(i).metaType(), QMetaType::fromType<qint16>()) << name;
        EXPECT_TRUE(meta.property(i).isWritable()) << name;
    }
    const struct {
        const char* name;
        QMetaType type;
    } others[] = {{"adocon", QMetaType::fromType<QSqlDatabase>()},
                  {"MsgboxTitle", QMetaType::fromType<QString>()},
                  {"ProcessDate", QMetaType::fromType<QDate>()}};
    for (const auto& p : others) {
        const int i = meta.indexOfProperty(p.name);
        ASSERT_GE(i, 0) << p.name;
        EXPECT_EQ(meta.property(i).metaType(), p.type) << p.name;
    }

    clsAttendance att;
    ASSERT_TRUE(att.setProperty("intUserID", QVariant::fromValue<qint16>(-32768)));
    ASSERT_TRUE(att.setProperty("intCompanyID", QVariant::fromValue<qint16>(32767)));
    EXPECT_EQ(att.property("intUserID").value<qint16>(), qint16(-32768));
    EXPECT_EQ(att.property("intCompanyID").value<qint16>(), qint16(32767));
    EXPECT_EQ(att.property("intUserID").metaType(), QMetaType::fromType<qint16>());
}

TEST(ComponentProperties, TheConnectionIsSharedNotCopied) {
    TestDb db(true, kProcessDate);
    clsAttendance att;
    ASSERT_TRUE(att.setProperty("adocon", QVariant::fromValue(db.db)));
    const QSqlDatabase back = att.property("adocon").value<QSqlDatabase>();
    EXPECT_EQ(back.connectionName(), db.db.connectionName());
    EXPECT_TRUE(back.isOpen());
    EXPECT_EQ(QSqlDatabase::connectionNames().count(db.db.connectionName()), 1);
}

}  // namespace
