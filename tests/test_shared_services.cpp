// The module's shared services: refreshing one register row, the monthly-entry lock, the
// error log, remembering control values and Enter as Tab.
#include <gtest/gtest.h>

#include <QAbstractItemModel>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QFile>
#include <QGroupBox>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QRadioButton>
#include <QTemporaryDir>
#include <QTest>
#include <QVBoxLayout>
#include <memory>
#include <ostream>

#include "TestSupport.h"
#include "register/FrmMaster.h"
#include "shared/BasAttendence.h"
#include "shared/FlexGrid.h"
#include "shared/MsgBox.h"
#include "shared/SharedServices.h"

namespace {

using qz2test::TestDb;

QString iso(QDate d) { return d.toString(Qt::ISODate); }

class SharedServices : public ::testing::Test {
protected:
    void SetUp() override {
        qz2::msgbox_testing::clear();
        qz2::msgbox_testing::setAutoAnswer(false);
        db.exec(QStringLiteral("insert into pSettings(companyid, noofPreviousdays) values(1, 0)"));
        addEmployee(1, 1, QStringLiteral("Asha Verma"));
        addEmployee(1, 2, QStringLiteral("Bruno Costa"));
        addEmployee(2, 10, QStringLiteral("Other Company Person"));
        const QDate oct1(2026, 10, 1), oct31(2026, 10, 31);
        addEntry(1, 5, QStringLiteral("ATT5"), 1, oct1, oct31);
        addEntry(1, 6, QStringLiteral("ATT6"), 2, oct1, oct31);
        addEntry(1, 7, QStringLiteral("ATT7"), 1, QDate(2026, 9, 1), QDate(2026, 9, 30));
        addEntry(2, 5, QStringLiteral("HC5"), 10, oct1, oct31);
        db.exec(QStringLiteral("insert into ausers(userid, username, companyid) values(7, 'pat', 1)"));
    }

    void TearDown() override {
        form.reset();
        qz2::setRegisterGrid(nullptr);
        qz2::setErrorLogFolder(QString());
        qz2::setClock(nullptr);
        qz2::msgbox_testing::setAutoAnswer(false);
        qz2::msgbox_testing::clear();
    }

    void addEmployee(int company, int id, const QString& name) {
        db.exec(QStringLiteral("insert into pEmployee(eEmpID, eCompanyID, eEmpNo, eName, eActive) "
                               "values(%1, %2, 'E%1', '%3', 1)")
                    .arg(id)
                    .arg(company)
                    .arg(name));
    }
    void addEntry(int company, int id, const QString& no, int emp, QDate start, QDate end) {
        db.exec(QStringLiteral("insert into pEmployeeAttendence(eaCompanyID, eaID, eaNo, eaDate, eaEmpID, "
                               "eaStartDate, eaEndDate) values(%1, %2, '%3', '%4', %5, '%6', '%4')")
                    .arg(company)
                    .arg(id)
                    .arg(no, iso(end))
                    .arg(emp)
                    .arg(iso(start)));
    }
    void addMonthly(int company, int id, int emp, QDate start, QDate end, bool cancelled = false) {
        db.exec(QStringLiteral("insert into pEmpMonthlyEntryHeader(emhCompanyID, emhID, emhEmpID, emhStartDate, "
                               "emhEndDate, emhCancelled) values(%1, %2, %3, '%4', '%5', %6)")
                    .arg(company)
                    .arg(id)
                    .arg(emp)
                    .arg(iso(start), iso(end))
                    .arg(cancelled ? 1 : 0));
    }

    // The register, loaded: its grid is the one the services work on.
    qz2::FlexGrid* openRegister() {
        form = std::make_unique<qz2::FrmMaster>();
        form->Form_Load();
        EXPECT_EQ(qz2::registerGrid(), form->flexMaster);
        return form->flexMaster;
    }
    static QStringList rowText(const qz2::FlexGrid* grid, int row) {
        QStringList out;
        for (int c = 0; c < grid->Cols(); ++c) out << grid->model()->index(row - 1, c).data().toString();
        return out;
    }
    static int rowOf(const qz2::FlexGrid* grid, const QString& id) {
        for (int r = 1; r < grid->Rows(); ++r)
            if (grid->TextMatrix(r, 0) == id) return r;
        return 0;
    }
    // A bare register grid holding the given identifiers, the first one current.
    qz2::FlexGrid* gridOf(const QStringList& ids) {
        bare = std::make_unique<qz2::FlexGrid>();
        bare->setCols(5);
        for (const QString& id : ids) bare->AddItem({id, QString(), QString(), QString(), QStringLiteral("No")});
        bare->setCurrentCell(1, 0);
        qz2::setRegisterGrid(bare.get());
        return bare.get();
    }

    TestDb db;
    std::unique_ptr<qz2::FrmMaster> form;
    std::unique_ptr<qz2::FlexGrid> bare;
};

// ---------------------------------------------------------------------------------------
// Refreshing one register row

TEST_F(SharedServices, NewModeAppendsTheRowAndMakesItCurrent) {
    qz2::FlexGrid* grid = openRegister();
    ASSERT_EQ(grid->Rows(), 4);
    grid->setCurrentCell(1, 2);
    const QStringList first = rowText(grid, 1);
    addEntry(1, 20, QStringLiteral("ATT20"), 2, QDate(2026, 11, 1), QDate(2026, 11, 21));
    qz2::gstrEntryMode = QStringLiteral("N");
    qz2::fnRefreshRegisterRow(QStringLiteral("eaID=20 and eacompanyid=1"), QString());
    ASSERT_EQ(grid->Rows(), 5);
    EXPECT_EQ(rowText(grid, 4), (QStringList{QStringLiteral("20"), QStringLiteral("ATT20"), QStringLiteral("21/11/2026"),
                                             QStringLiteral("Bruno Costa"), QStringLiteral("No")}));
    EXPECT_EQ(grid->Row(), 4);
    EXPECT_EQ(rowText(grid, 1), first);
}

TEST_F(SharedServices, EditModeRewritesTheCurrentRow) {
    qz2::FlexGrid* grid = openRegister();
    const int row = rowOf(grid, QStringLiteral("7"));
    ASSERT_GT(row, 0);
    grid->setCurrentCell(row, 1);
    QStringList others;
    for (int r = 1; r < grid->Rows(); ++r)
        if (r != row) others << rowText(grid, r).join(QLatin1Char('|'));
    db.exec(QStringLiteral("update pEmployeeAttendence set eaNo = NULL, eaDate = '2026-09-29', eaCancelled = 1 "
                           "where eaCompanyID = 1 and eaID = 7"));
    qz2::gstrEntryMode = QStringLiteral("E");
    qz2::fnRefreshRegisterRow(QStringLiteral("eaID=7 and eacompanyid=1"), QString());
    EXPECT_EQ(grid->Rows(), 4);
    EXPECT_EQ(grid->Row(), row);
    // A NULL column is written as an empty cell.
    EXPECT_EQ(rowText(grid, row), (QStringList{QStringLiteral("7"), QString(), QStringLiteral("29/09/2026"),
                                               QStringLiteral("Asha Verma"), QStringLiteral("Yes")}));
    QStringList after;
    for (int r = 1; r < grid->Rows(); ++r)
        if (r != row) after << rowText(grid, r).join(QLatin1Char('|'));
    EXPECT_EQ(after, others);
}

TEST_F(SharedServices, TheListQueryIsCutBeforeItsOrderBy) {
    qz2::FlexGrid* grid = openRegister();
    qz2::gstrMasterQuery += QStringLiteral(" order by EA.eaID desc");
    addEntry(1, 21, QStringLiteral("ATT21"), 1, QDate(2026, 11, 1), QDate(2026, 11, 20));
    qz2::gstrEntryMode = QStringLiteral("N");
    qz2::fnRefreshRegisterRow(QStringLiteral("eaID=21 and eacompanyid=1"));
    ASSERT_EQ(grid->Rows(), 5);
    EXPECT_EQ(grid->TextMatrix(4, 0), QStringLiteral("21"));
}

TEST_F(SharedServices, AnUpperCaseWhereIsExtendedWithAnd) {
    qz2::FlexGrid* grid = gridOf({QStringLiteral("5")});
    qz2::gstrMasterQuery =
        QStringLiteral("select eaID, eaNo, eaDate, eaEmpID, 'No' flag from pEmployeeAttendence WHERE eaCompanyID = 1");
    qz2::gstrEntryMode = QStringLiteral("N");
    qz2::fnRefreshRegisterRow(QStringLiteral("eaID=6"));
    ASSERT_EQ(grid->Rows(), 3);
    EXPECT_EQ(rowText(grid, 2), (QStringList{QStringLiteral("6"), QStringLiteral("ATT6"), QStringLiteral("31/10/2026"),
                                             QStringLiteral("2"), QStringLiteral("No")}));
    EXPECT_EQ(grid->Row(), 2);
}

TEST_F(SharedServices, AQueryWithoutWhereGetsOne) {
    qz2::FlexGrid* grid = gridOf({QStringLiteral("5")});
    qz2::gstrMasterQuery = QStringLiteral("select eaID, eaNo, eaDate, eaEmpID, eaCompanyID from pEmployeeAttendence");
    qz2::gstrEntryMode = QStringLiteral("N");
    qz2::fnRefreshRegisterRow(QStringLiteral("eaID=5 and eaCompanyID=2"));
    ASSERT_EQ(grid->Rows(), 3);
    EXPECT_EQ(rowText(grid, 2), (QStringList{QStringLiteral("5"), QStringLiteral("HC5"), QStringLiteral("31/10/2026"),
                                             QStringLiteral("10"), QStringLiteral("2")}));
}

TEST_F(SharedServices, TheConditionNarrowsTheListQueryRatherThanReplacingIt) {
    qz2::FlexGrid* grid = openRegister();
    // Company 2's entry 5 answers the condition but not the register's own company filter.
    qz2::gstrEntryMode = QStringLiteral("N");
    qz2::fnRefreshRegisterRow(QStringLiteral("eaID=5 and eacompanyid=2"));
    EXPECT_EQ(grid->Rows(), 4);
    for (int r = 1; r < grid->Rows(); ++r) EXPECT_NE(grid->TextMatrix(r, 1), QStringLiteral("HC5")) << "row " << r;
}

TEST_F(SharedServices, AFailingRefreshEndsSilently) {
    qz2::FlexGrid* grid = openRegister();
    grid->setCurrentCell(2, 0);
    const QStringList before = rowText(grid, 2);
    qz2::msgbox_testing::setAutoAnswer(true);
    for (const QString& mode : {QStringLiteral("N"), QStringLiteral("E")}) {
        qz2::gstrEntryMode = mode;
        EXPECT_NO_THROW(qz2::fnRefreshRegisterRow(QStringLiteral("no_such_column=1")));
    }
    EXPECT_EQ(grid->Rows(), 4);
    EXPECT_EQ(grid->Row(), 2);
    EXPECT_EQ(rowText(grid, 2), before);
    EXPECT_TRUE(qz2::msgbox_testing::shown().isEmpty());
}

// ---------------------------------------------------------------------------------------
// The monthly-entry lock

TEST_F(SharedServices, EditingALockedEntryIsRefusedWithAnInformationBox) {
    addMonthly(1, 1, 1, QDate(2026, 10, 10), QDate(2026, 11, 9));  // starts inside entry 5
    gridOf({QStringLiteral("5")});
    QString text, title;
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    bool okOnly = false;
    qz2test::whenModal([&](QWidget* w) {
        auto* box = qobject_cast<QMessageBox*>(w);
        if (!box) {
            ADD_FAILURE() << "not a message box";
            w->close();
            return;
        }
        text = box->text();
        title = box->windowTitle();
        icon = box->icon();
        okOnly = box->standardButtons() == QMessageBox::Ok;
        box->button(QMessageBox::Ok)->click();
    });
    EXPECT_TRUE(qz2::fnIsMonthlyEntryDone(QStringLiteral("E")));
    EXPECT_EQ(text, QStringLiteral("Monthly entry done. Can't edit."));
    EXPECT_EQ(title, QStringLiteral("Attendance Test"));
    EXPECT_EQ(icon, QMessageBox::Information);
    EXPECT_TRUE(okOnly);
}

TEST_F(SharedServices, AnyOtherModeSpeaksOfDeleting) {
    addMonthly(1, 1, 1, QDate(2026, 9, 15), QDate(2026, 10, 14));  // ends inside entry 5
    gridOf({QStringLiteral("5")});
    for (const QString& mode : {QStringLiteral("D"), QString(), QStringLiteral("N"), QStringLiteral("e")}) {
        SCOPED_TRACE(mode.toStdString());
        qz2::msgbox_testing::clear();
        qz2::msgbox_testing::pushAnswer(qz2::MsgResult::Ok);
        EXPECT_TRUE(qz2::fnIsMonthlyEntryDone(mode));
        ASSERT_EQ(qz2::msgbox_testing::shown().size(), 1);
        EXPECT_EQ(qz2::msgbox_testing::shown()[0].text, QStringLiteral("Monthly entry done. Can't delete."));
        EXPECT_EQ(qz2::msgbox_testing::shown()[0].icon, qz2::MsgIcon::Information);
        EXPECT_EQ(qz2::msgbox_testing::shown()[0].buttons, qz2::MsgButtons::Ok);
    }
}

TEST_F(SharedServices, OnlyAStartOrEndInsideThePeriodLocks) {
    struct Case {
        const char* what;
        int company;
        int emp;
        QDate start, end;
        bool cancelled;
        bool locks;
    };
    const Case cases[] = {
        {"starts on the last day", 1, 1, QDate(2026, 10, 31), QDate(2026, 11, 30), false, true},
        {"ends on the first day", 1, 1, QDate(2026, 9, 1), QDate(2026, 10, 1), false, true},
        {"lies inside", 1, 1, QDate(2026, 10, 5), QDate(2026, 10, 25), false, true},
        {"covers the whole period", 1, 1, QDate(2026, 9, 1), QDate(2026, 11, 30), false, false},
        {"ends the day before", 1, 1, QDate(2026, 9, 1), QDate(2026, 9, 30), false, false},
        {"is cancelled", 1, 1, QDate(2026, 10, 1), QDate(2026, 10, 31), true, false},
        {"is another employee's", 1, 2, QDate(2026, 10, 1), QDate(2026, 10, 31), false, false},
        {"is another company's", 2, 1, QDate(2026, 10, 1), QDate(2026, 10, 31), false, false},
    };
    gridOf({QStringLiteral("5")});
    qz2::msgbox_testing::setAutoAnswer(true);
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        db.exec(QStringLiteral("delete from pEmpMonthlyEntryHeader"));
        addMonthly(c.company, 1, c.emp, c.start, c.end, c.cancelled);
        qz2::msgbox_testing::clear();
        EXPECT_EQ(qz2::fnIsMonthlyEntryDone(QStringLiteral("E")), c.locks);
        EXPECT_EQ(qz2::msgbox_testing::shown().size(), c.locks ? 1 : 0);
    }
}

TEST_F(SharedServices, TheLockFollowsTheCurrentRowAndTheCompany) {
    addMonthly(1, 1, 1, QDate(2026, 10, 1), QDate(2026, 10, 31));  // entry 5 of company 1
    addMonthly(2, 1, 10, QDate(2026, 10, 1), QDate(2026, 10, 31));  // entry 5 of company 2
    qz2::FlexGrid* grid = gridOf({QStringLiteral("5"), QStringLiteral("6")});
    qz2::msgbox_testing::setAutoAnswer(true);
    grid->setCurrentCell(2, 3);
    EXPECT_FALSE(qz2::fnIsMonthlyEntryDone(QStringLiteral("D")));
    EXPECT_TRUE(qz2::msgbox_testing::shown().isEmpty());
    grid->setCurrentCell(1, 3);
    EXPECT_TRUE(qz2::fnIsMonthlyEntryDone(QStringLiteral("D")));
    db.exec(QStringLiteral("delete from pEmpMonthlyEntryHeader where emhCompanyID = 1"));
    EXPECT_FALSE(qz2::fnIsMonthlyEntryDone(QStringLiteral("D")));
    qz2::gintCompanyID = 2;
    EXPECT_TRUE(qz2::fnIsMonthlyEntryDone(QStringLiteral("D")));
}

// ---------------------------------------------------------------------------------------
// The error log

class ErrorLog : public SharedServices {
protected:
    void SetUp() override {
        SharedServices::SetUp();
        ASSERT_TRUE(dir.isValid());
        qz2::setErrorLogFolder(dir.path());
        qz2::setClock([] { return QDateTime(QDate(2026, 11, 21), QTime(9, 5, 7)); });
    }
    QString logPath() const { return dir.path() + QStringLiteral("/QZ2EmpDailyAttenError.log"); }
    QString logText() const {
        QFile f(logPath());
        if (!f.open(QIODevice::ReadOnly)) return QStringLiteral("<no log>");
        return QString::fromUtf8(f.readAll());
    }
    void write(qint16 user, qint32 number, const QString& source, bool show, const QString& mode = QStringLiteral("E")) {
        qz2::fnWriteErrorLog(QStringLiteral("FrmMaster"), user, QStringLiteral("flexmaster_Click "), mode, number, source,
                             QStringLiteral("Type mismatch"), show);
    }
    QTemporaryDir dir;
};

TEST_F(ErrorLog, WritesOneLineOfPiecesJoinedByColons) {
    EXPECT_EQ(qz2::errorLogPath(), logPath());
    EXPECT_EQ(qz2::moduleName(), QStringLiteral("QZ2EmpDailyAtten"));
    qz2::msgbox_testing::setAutoAnswer(true);
    write(7, 13, QStringLiteral("FrmMaster"), false);
    EXPECT_EQ(logText(), QStringLiteral("FrmMaster:QZ2EmpDailyAtten:13:FrmMaster:Type mismatch:21/11/2026 09:05:07:pat:"
                                        "flexmaster_Click :E\n"));
    EXPECT_TRUE(qz2::msgbox_testing::shown().isEmpty());
}

TEST_F(ErrorLog, EmptyPiecesAreKept) {
    qz2::msgbox_testing::setAutoAnswer(true);
    write(7, 13, QString(), false);
    write(99, 5, QStringLiteral("db"), false, QString());  // no such user, no mode
    EXPECT_EQ(logText(),
              QStringLiteral("FrmMaster:QZ2EmpDailyAtten:13::Type mismatch:21/11/2026 09:05:07:pat:flexmaster_Click :E\n"
                             "FrmMaster:QZ2EmpDailyAtten:5:db:Type mismatch:21/11/2026 09:05:07::flexmaster_Click :\n"));
}

TEST_F(ErrorLog, AReadOnlyLogIsStillAppendedTo) {
    {
        QFile f(logPath());
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write("earlier line\n");
    }
    ASSERT_TRUE(QFile::setPermissions(logPath(), QFileDevice::ReadOwner | QFileDevice::ReadGroup | QFileDevice::ReadOther));
    qz2::msgbox_testing::setAutoAnswer(true);
    write(7, 13, QStringLiteral("src"), false);
    EXPECT_EQ(logText(), QStringLiteral("earlier line\nFrmMaster:QZ2EmpDailyAtten:13:src:Type mismatch:21/11/2026 09:05:07:"
                                        "pat:flexmaster_Click :E\n"));
    EXPECT_TRUE(QFile::permissions(logPath()) & QFileDevice::WriteOwner);  // back to normal
}

TEST_F(ErrorLog, TheDescriptionIsShownWhenAskedAndTheNumberIsNotZero) {
    QString text, title;
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    qz2test::whenModal([&](QWidget* w) {
        auto* box = qobject_cast<QMessageBox*>(w);
        if (!box) {
            ADD_FAILURE() << "not a message box";
            w->close();
            return;
        }
        text = box->text();
        title = box->windowTitle();
        icon = box->icon();
        box->button(QMessageBox::Ok)->click();
    });
    write(7, 13, QStringLiteral("src"), true);
    EXPECT_EQ(text, QStringLiteral("Type mismatch"));
    EXPECT_EQ(title, QStringLiteral("Attendance Test"));
    EXPECT_EQ(icon, QMessageBox::Warning);
    EXPECT_TRUE(logText().endsWith(QStringLiteral(":pat:flexmaster_Click :E\n")));
}

TEST_F(ErrorLog, NoBoxWithoutTheFlagOrForErrorZero) {
    qz2::msgbox_testing::setAutoAnswer(true);
    write(7, 13, QStringLiteral("src"), false);
    write(7, 0, QStringLiteral("src"), true);
    EXPECT_TRUE(qz2::msgbox_testing::shown().isEmpty());
    EXPECT_EQ(logText().count(QLatin1Char('\n')), 2);  // both are logged all the same
    EXPECT_TRUE(logText().contains(QStringLiteral("FrmMaster:QZ2EmpDailyAtten:0:src:")));
    write(7, -2147217900, QStringLiteral("src"), true);
    ASSERT_EQ(qz2::msgbox_testing::shown().size(), 1);
    EXPECT_EQ(qz2::msgbox_testing::shown()[0].icon, qz2::MsgIcon::Exclamation);
    EXPECT_TRUE(logText().contains(QStringLiteral(":QZ2EmpDailyAtten:-2147217900:src:")));
}

// ---------------------------------------------------------------------------------------
// Remembering control values and Enter as Tab

TEST(StoreControlValues, CopiesTextsAndValuesIntoTheTags) {
    QWidget form;
    auto* frame = new QGroupBox(&form);
    auto* text = new QLineEdit(QStringLiteral("hello"), frame);
    auto* combo = new QComboBox(&form);
    combo->addItems({QStringLiteral("first"), QStringLiteral("second")});
    combo->setCurrentIndex(1);
    auto* editable = new QComboBox(&form);
    editable->setEditable(true);
    editable->setEditText(QStringLiteral("typed"));
    auto* on = new QCheckBox(&form);
    on->setChecked(true);
    auto* off = new QCheckBox(frame);
    auto* picked = new QRadioButton(&form);
    picked->setChecked(true);
    auto* button = new QPushButton(QStringLiteral("OK"), &form);

    qz2::fnStoreControlValues(&form);
    text->setText(QStringLiteral("changed"));  // the tag keeps the value as it was
    combo->setCurrentIndex(0);

    EXPECT_EQ(text->property("Tag").toString(), QStringLiteral("hello"));
    EXPECT_EQ(combo->property("Tag").toString(), QStringLiteral("second"));
    EXPECT_EQ(editable->property("Tag").toString(), QStringLiteral("typed"));
    EXPECT_EQ(on->property("Tag").toInt(), 1);  // ticked, as a check box value reads
    ASSERT_TRUE(off->property("Tag").isValid());
    EXPECT_EQ(off->property("Tag").toInt(), 0);
    EXPECT_EQ(picked->property("Tag").toBool(), true);
    EXPECT_FALSE(button->property("Tag").isValid());
    EXPECT_FALSE(frame->property("Tag").isValid());
    EXPECT_NO_THROW(qz2::fnStoreControlValues(nullptr));
}

TEST(EnterToTab, EnterMovesTheFocusAndOtherKeysDoNot) {
    QWidget form;
    auto* layout = new QVBoxLayout(&form);
    auto* first = new QLineEdit(&form);
    auto* second = new QLineEdit(&form);
    layout->addWidget(first);
    layout->addWidget(second);
    form.show();
    form.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&form));
    first->setFocus();
    ASSERT_EQ(QApplication::focusWidget(), first);
    qz2::fnEnterToTab(9);
    qz2::fnEnterToTab(65);
    EXPECT_EQ(QApplication::focusWidget(), first);
    qz2::fnEnterToTab(13);
    EXPECT_EQ(QApplication::focusWidget(), second);
}

}  // namespace
