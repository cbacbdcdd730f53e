// What each user may do from the register, asked at the action and not only by the
// buttons: every button for users with every right, "NE", "ADMIN", no rights row and rights
// that could not be read, each time checking that a refused action left the database as it
// was. Also: an entry that can only be viewed reads as one, questions that can lose work
// default to No, and the list has the keyboard again after any form closes.

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPainter>
#include <QPixmap>
#include <QPushButton>
#include <QTest>
#include <QTimeEdit>
#include <QTimer>
#include <memory>
#include <ostream>

#include "TestSupport.h"
#include "db/Database.h"
#include "entry/frmEmployeeDailyAttendance.h"
#include "register/FrmMaster.h"
#include "shared/BasAttendence.h"
#include "shared/FlexGrid.h"
#include "shared/MsgBox.h"

using namespace qz2;
using qz2test::TestDb;

namespace {

// Every modal window that shows while it is armed: a message box is noted by its text and
// answered with its escape button (No, or OK); a form is noted by its name, looked at by
// `look`, and closed.
class ModalLog {
public:
    explicit ModalLog(std::function<void(QWidget*)> look = {}) : m_look(std::move(look)) {
        m_timer.setInterval(10);
        QObject::connect(&m_timer, &QTimer::timeout, [this] {
            QWidget* w = QApplication::activeModalWidget();
            if (!w || !w->isVisible() || m_busy) return;
            m_busy = true;
            if (auto* box = qobject_cast<QMessageBox*>(w)) {
                m_seen << QStringLiteral("box: ") + box->text();
                if (QAbstractButton* b = box->escapeButton()) b->click();
                else box->reject();
            } else {
                m_seen << w->objectName();
                if (m_look) m_look(w);
                if (auto* dlg = qobject_cast<QDialog*>(w)) dlg->reject();
                else w->close();
            }
            m_busy = false;
        });
        m_timer.start();
    }
    const QStringList& seen() const { return m_seen; }

private:
    QTimer m_timer;
    QStringList m_seen;
    std::function<void(QWidget*)> m_look;
    bool m_busy = false;
};

// A user as the register meets them.
struct User {
    const char* label;
    int id;
    const char* rights;  // the rights row for this screen; nullptr: none
    bool failedRead;     // the rights table cannot be read
    bool add, edit, cancel;
};

// Test names and failures name the user by its label.
void PrintTo(const User& user, std::ostream* os) { *os << user.label; }

const User kUsers[] = {
    {"UserOne", 1, nullptr, false, true, true, true},
    {"NEDUP", 5, "NEDUP", false, true, true, true},
    {"NE", 2, "NE", false, true, true, false},
    {"ADMIN", 3, "ADMIN", false, false, false, false},
    {"NoRow", 4, nullptr, false, false, false, false},
    {"FailedRead", 2, "NE", true, false, false, false},
};

// Everything a form or box showed, as the tests compare it.
struct EntryLook {
    bool readOnly = false;
    QString line;
    bool okEnabled = false;
    bool remarksReadOnly = false;
};

class RegisterRights : public ::testing::TestWithParam<User> {
protected:
    void SetUp() override {
        msgbox_testing::clear();
        msgbox_testing::setAutoAnswer(false);
        db.exec(QStringLiteral("insert into pusers(userid, username, companyid) values(5, 'chief', 1)"));
        db.exec(QStringLiteral(
            "insert into puserrights(userid, interfaceid, functionrights) values(5, 91029, 'NEDUP')"));
        const User& u = GetParam();
        gintUserID = static_cast<qint16>(u.id);
        if (u.failedRead) db.exec(QStringLiteral("drop table puserrights"));
        live = db.scalar(QStringLiteral("select max(eaID) from pEmployeeAttendence where eaCompanyID=1 "
                                        "and eaCancelled=0"))
                   .toString();
        register_ = std::make_unique<FrmMaster>();
        register_->Form_Load();
        register_->show();
        QApplication::setActiveWindow(register_.get());
        ASSERT_TRUE(QTest::qWaitForWindowActive(register_.get()));
        ASSERT_GT(rowOf(live), 0);
        choose(live);
    }
    void TearDown() override {
        register_.reset();
        db::setFaultHook({});
        gintUserID = 1;
        msgbox_testing::clear();
    }
    int rowOf(const QString& id) const {
        const FlexGrid* g = register_->flexMaster;
        for (int r = 1; r < g->Rows(); ++r)
            if (g->TextMatrix(r, 0) == id) return r;
        return 0;
    }
    void choose(const QString& id) {
        FlexGrid* g = register_->flexMaster;
        const QModelIndex at = g->model()->index(rowOf(id) - 1, 1);
        g->scrollTo(at);
        QTest::mouseClick(g->viewport(), Qt::LeftButton, {}, g->visualRect(at).center());
        ASSERT_EQ(g->Row(), rowOf(id));
    }
    // Presses `button` even when the click logic left it disabled: the action must ask the
    // rights itself.
    QStringList press(QPushButton* button, std::function<void(QWidget*)> look = {}) {
        button->setEnabled(true);
        ModalLog log(std::move(look));
        QTest::mouseClick(button, Qt::LeftButton);
        QTest::qWait(20);
        return log.seen();
    }

    TestDb db{true, QDate(2026, 11, 21)};
    std::unique_ptr<FrmMaster> register_;
    QString live;
};

TEST_P(RegisterRights, NewOpensTheFormOnlyWithTheRightToAdd) {
    const User& u = GetParam();
    const QString before = db.dump();
    const QStringList seen = press(register_->cmdnew);
    if (u.add) {
        ASSERT_FALSE(seen.isEmpty());
        EXPECT_EQ(seen.last(), QStringLiteral("frmEmployeeDailyAttendance")) << seen.join(" | ").toStdString();
    } else {
        EXPECT_EQ(seen, QStringList{QStringLiteral("box: ") + noRightToAddText()});
    }
    EXPECT_EQ(db.dump(), before);
}

TEST_P(RegisterRights, EditOpensForViewingOnlyWithoutTheRightToEdit) {
    const User& u = GetParam();
    const QString before = db.dump();
    QStringList statements;
    db::setFaultHook([&statements](const QString& sql) {
        statements << sql;
        return QString();
    });
    EntryLook look;
    const QStringList seen = press(register_->CmdEdit, [&look, &u](QWidget* w) {
        auto* form = qobject_cast<frmEmployeeDailyAttendance*>(w);
        if (!form) return;
        look = {form->isReadOnly(), form->lblReadOnly->isVisible() ? form->lblReadOnly->text() : QString(),
                form->cmdOK->isEnabled(), form->txtRemarks->isReadOnly()};
        // Nothing can be written from here: OK refuses and says why.
        msgbox_testing::clear();
        msgbox_testing::setAutoAnswer(true);
        form->cmdOK_Click();
        msgbox_testing::setAutoAnswer(false);
        EXPECT_EQ(form->saved(), u.edit);
    });
    db::setFaultHook({});
    ASSERT_EQ(seen, QStringList{QStringLiteral("frmEmployeeDailyAttendance")});
    // The rights were read once, when the register opened.
    for (const QString& s : statements) EXPECT_FALSE(s.contains(QLatin1String("puserrights"))) << s.toStdString();
    if (u.edit) {
        EXPECT_FALSE(look.readOnly);
        EXPECT_TRUE(look.okEnabled);
        EXPECT_FALSE(look.remarksReadOnly);
        EXPECT_TRUE(look.line.isEmpty());
    } else {
        EXPECT_TRUE(look.readOnly);
        EXPECT_FALSE(look.okEnabled);
        EXPECT_TRUE(look.remarksReadOnly);
        EXPECT_EQ(look.line, frmEmployeeDailyAttendance::kReadOnlyNoRight);
        ASSERT_FALSE(msgbox_testing::shown().isEmpty());
        EXPECT_EQ(msgbox_testing::shown().last().text, frmEmployeeDailyAttendance::kReadOnlyNoRight);
        EXPECT_EQ(db.dump(), before);
    }
}

TEST_P(RegisterRights, DeleteIsRefusedBeforeAnyQuestionWithoutTheRightToCancel) {
    const User& u = GetParam();
    const QString before = db.dump();
    const QStringList seen = press(register_->CmdDelete);
    if (u.cancel)
        EXPECT_EQ(seen, QStringList{QStringLiteral("box: Are you sure you want to delete Entry - ") + live +
                                    QStringLiteral("?")});
    else
        EXPECT_EQ(seen, QStringList{QStringLiteral("box: ") + noRightToCancelText()});
    EXPECT_EQ(db.dump(), before);
    // The Delete key on the list is the same action.
    register_->CmdDelete->setEnabled(true);
    ModalLog log;
    QTest::keyClick(register_->flexMaster, Qt::Key_Delete);
    QTest::qWait(20);
    EXPECT_EQ(log.seen(), seen);
    EXPECT_EQ(db.dump(), before);
    EXPECT_EQ(register_->flexMaster->TextMatrix(rowOf(live), 4), QStringLiteral("No"));
}

TEST_P(RegisterRights, TheCompanyImportNeedsTheRightToAdd) {
    const User& u = GetParam();
    const QString before = db.dump();
    const QStringList seen = press(register_->cmdImportPunches);
    if (u.add)
        EXPECT_EQ(seen, QStringList{QStringLiteral("frmImportPunches")});
    else
        EXPECT_EQ(seen, QStringList{QStringLiteral("box: ") + noRightToAddText()});
    EXPECT_EQ(db.dump(), before);
}

TEST_P(RegisterRights, HistoryAndReportsAreForAnyoneWhoMayOpenTheRegister) {
    const QString before = db.dump();
    ASSERT_TRUE(register_->cmdHistory->isEnabled());
    EXPECT_EQ(press(register_->cmdHistory), QStringList{QStringLiteral("frmHistory")});
    auto* reports = register_->findChild<QPushButton*>(QStringLiteral("cmdReports"));
    ASSERT_NE(reports, nullptr);
    EXPECT_EQ(press(reports), QStringList{QStringLiteral("frmReports")});
    EXPECT_EQ(db.dump(), before);
}

TEST_P(RegisterRights, TheListHasTheKeyboardOnTheSameEntryAfterEveryFormCloses) {
    for (const char* name : {"CmdEdit", "CmdDelete", "cmdHistory", "cmdReports", "cmdnew"}) {
        SCOPED_TRACE(name);
        choose(live);
        register_->txtsearch->setFocus();
        press(register_->findChild<QPushButton*>(QString::fromLatin1(name)));
        EXPECT_EQ(QApplication::focusWidget(), register_->flexMaster);
        EXPECT_EQ(QApplication::activeWindow(), register_.get());
        EXPECT_EQ(register_->flexMaster->TextMatrix(register_->flexMaster->Row(), 0), live);
    }
}

INSTANTIATE_TEST_SUITE_P(Users, RegisterRights, ::testing::ValuesIn(kUsers),
                         [](const ::testing::TestParamInfo<User>& param) {
                             return std::string(param.param.label);
                         });

// ---- An entry that can only be viewed ------------------------------------------------------

class ViewOnly : public ::testing::Test {
protected:
    void SetUp() override {
        msgbox_testing::clear();
        msgbox_testing::setAutoAnswer(false);
        gintUserID = 1;
        register_ = std::make_unique<FrmMaster>();
        register_->Form_Load();
        register_->show();
        QApplication::setActiveWindow(register_.get());
        ASSERT_TRUE(QTest::qWaitForWindowActive(register_.get()));
    }
    void TearDown() override {
        register_.reset();
        msgbox_testing::clear();
    }
    void choose(const QString& id) {
        FlexGrid* g = register_->flexMaster;
        int row = 0;
        for (int r = 1; r < g->Rows(); ++r)
            if (g->TextMatrix(r, 0) == id) row = r;
        ASSERT_GT(row, 0) << id.toStdString();
        const QModelIndex at = g->model()->index(row - 1, 1);
        g->scrollTo(at);
        QTest::mouseClick(g->viewport(), Qt::LeftButton, {}, g->visualRect(at).center());
    }
    // Opens entry `id` with Enter on the list and runs `check` on the form once it shows;
    // then Esc closes it. What boxes showed on the way are in the result.
    QStringList openAndCheck(const QString& id, std::function<void(frmEmployeeDailyAttendance&)> check) {
        choose(id);
        QStringList seen;
        bool looked = false;
        std::function<void(QWidget*)> step;
        step = [&](QWidget* w) {
            if (auto* box = qobject_cast<QMessageBox*>(w)) {
                seen << box->text();
                QAbstractButton* answer = box->escapeButton() ? box->escapeButton() : box->buttons().value(0);
                ASSERT_NE(answer, nullptr);
                answer->click();
                qz2test::whenModal(step);  // then the form
                return;
            }
            auto* form = qobject_cast<frmEmployeeDailyAttendance*>(w);
            ASSERT_NE(form, nullptr);
            looked = true;
            check(*form);
            msgbox_testing::clear();
            QTest::keyClick(form, Qt::Key_Escape);
            // Esc closed it without a question.
            EXPECT_FALSE(form->isVisible());
            for (const ShownMessage& m : msgbox_testing::shown()) seen << m.text;
            if (form->isVisible()) form->reject();
        };
        qz2test::whenModal(step);
        QTest::keyClick(register_->flexMaster, Qt::Key_Return);
        EXPECT_TRUE(looked);
        // The register is the active window again (the window system may take a moment).
        EXPECT_TRUE(QTest::qWaitForWindowActive(register_.get()));
        EXPECT_EQ(QApplication::focusWidget(), register_->flexMaster);
        EXPECT_EQ(register_->flexMaster->TextMatrix(register_->flexMaster->Row(), 0), id);
        return seen;
    }
    static void expectEveryBoxReadOnly(frmEmployeeDailyAttendance& f) {
        EXPECT_TRUE(f.isReadOnly());
        EXPECT_FALSE(f.cmdOK->isEnabled());
        EXPECT_FALSE(f.cmdPopulateRecords->isEnabled());
        EXPECT_FALSE(f.cmdImportPunches->isEnabled());
        EXPECT_FALSE(f.cboEmpname->isEnabled());
        EXPECT_FALSE(f.cmdEmployee->isEnabled());
        EXPECT_FALSE(f.lstAbsentDays->isEnabled());
        EXPECT_FALSE(f.chkAllowanceDeductions->isEnabled());
        for (QLineEdit* box : {f.txtAttdate, f.txtStartDate, f.txtAllowanceDeductions, f.txtRemarks})
            EXPECT_TRUE(box->isReadOnly()) << box->objectName().toStdString();
        EXPECT_TRUE(f.dtpEndDate->isReadOnly());
        EXPECT_TRUE(f.lblReadOnly->isVisible());
    }

    TestDb db{true, QDate(2026, 11, 21)};
    std::unique_ptr<FrmMaster> register_;
};

TEST_F(ViewOnly, ACancelledEntrySaysSoWithItsReasonAndClosesWithoutAQuestion) {
    const QString id =
        db.scalar(QStringLiteral("select max(eaID) from pEmployeeAttendence where eaCompanyID=1 and eaCancelled=1"))
            .toString();
    ASSERT_FALSE(id.isEmpty());
    const QString reason =
        db.scalar(QStringLiteral("select eaCancelledRemarks from pEmployeeAttendence where eaID=") + id).toString();
    ASSERT_FALSE(reason.isEmpty());
    const QString before = db.dump();
    const QStringList seen = openAndCheck(id, [&](frmEmployeeDailyAttendance& f) {
        expectEveryBoxReadOnly(f);
        EXPECT_TRUE(f.fraGridContainer->isEnabled());  // the days can still be looked through
        EXPECT_EQ(f.lblReadOnly->text(), frmEmployeeDailyAttendance::readOnlyCancelledText(reason));
        EXPECT_TRUE(f.lblReadOnly->text().endsWith(reason.trimmed()));
        // Typing into Remarks changes nothing, and Tab into the pairs opens no picker.
        f.txtRemarks->setFocus();
        QTest::keyClicks(f.txtRemarks, QStringLiteral("more"));
        EXPECT_FALSE(f.txtRemarks->text().endsWith(QLatin1String("more")));
        f.mfgAttendance->setFocus();
        f.mfgAttendance->setCurrentCell(1, 1);
        QTest::keyClick(f.mfgAttendance, Qt::Key_Tab);
        EXPECT_FALSE(f.dtpCheckTime->isVisible());
    });
    EXPECT_TRUE(seen.isEmpty()) << seen.join(" | ").toStdString();
    EXPECT_EQ(db.dump(), before);
}

TEST_F(ViewOnly, APayrollCoveredEntrySaysSoThenOpensWithEveryBoxReadOnly) {
    const QList<QVariantList> live = db.rows(QStringLiteral(
        "select eaID, eaEmpID, eaStartDate, eaEndDate from pEmployeeAttendence where eaCompanyID=1 and "
        "eaCancelled=0 order by eaID desc"));
    ASSERT_FALSE(live.isEmpty());
    const QString id = live.first()[0].toString();
    db.exec(QStringLiteral("insert into pEmpMonthlyEntryHeader(emhCompanyID, emhID, emhEmpID, emhStartDate, "
                           "emhEndDate, emhCancelled) values(1, 990, %1, '%2', '%3', 0)")
                .arg(live.first()[1].toString(), live.first()[2].toString().left(10),
                     live.first()[3].toString().left(10)));
    const QString before = db.dump();
    const QStringList seen = openAndCheck(id, [&](frmEmployeeDailyAttendance& f) {
        expectEveryBoxReadOnly(f);
        EXPECT_FALSE(f.fraEmployeeAttendance->isEnabled());
        EXPECT_FALSE(f.fraGridContainer->isEnabled());
        EXPECT_EQ(f.lblReadOnly->text(), frmEmployeeDailyAttendance::kReadOnlyPayroll);
    });
    EXPECT_EQ(seen, QStringList{QStringLiteral("Monthly entry done. Can't edit.")});
    EXPECT_EQ(db.dump(), before);
}

// ---- Questions that can lose work ----------------------------------------------------------

TEST_F(ViewOnly, EnterOnTheDeleteQuestionKeepsTheEntry) {
    const QString id =
        db.scalar(QStringLiteral("select max(eaID) from pEmployeeAttendence where eaCompanyID=1 and eaCancelled=0"))
            .toString();
    choose(id);
    const QString before = db.dump();
    QMessageBox::StandardButton byDefault = QMessageBox::NoButton;
    qz2test::whenModal([&byDefault](QWidget* w) {
        auto* box = qobject_cast<QMessageBox*>(w);
        ASSERT_NE(box, nullptr);
        if (box->defaultButton()) byDefault = box->standardButton(box->defaultButton());
        QTest::keyClick(box, Qt::Key_Return);  // the habitual Enter
    });
    QTest::keyClick(register_->flexMaster, Qt::Key_Delete);
    EXPECT_EQ(byDefault, QMessageBox::No);
    EXPECT_EQ(db.dump(), before);
    ASSERT_FALSE(msgbox_testing::shown().isEmpty());
    EXPECT_EQ(msgbox_testing::shown().last().byDefault, MsgDefault::No);
}

TEST_F(ViewOnly, EnterOnTheLoseThemQuestionKeepsTheKeyedWork) {
    gstrEntryMode = QStringLiteral("N");
    frmEmployeeDailyAttendance form;
    form.Form_Load();
    form.show();
    QApplication::setActiveWindow(&form);
    ASSERT_TRUE(QTest::qWaitForWindowActive(&form));
    form.txtRemarks->setFocus();
    QTest::keyClicks(form.txtRemarks, QStringLiteral("Checked by the supervisor"));
    ASSERT_TRUE(form.fnHasUnsavedWork());
    for (const QString& question : {frmEmployeeDailyAttendance::kMsgDiscardOnClose,
                                    frmEmployeeDailyAttendance::kMsgDiscardOnEmployee}) {
        SCOPED_TRACE(question.toStdString());
        QString asked;
        QMessageBox::StandardButton byDefault = QMessageBox::NoButton;
        qz2test::whenModal([&](QWidget* w) {
            auto* box = qobject_cast<QMessageBox*>(w);
            ASSERT_NE(box, nullptr);
            asked = box->text();
            if (box->defaultButton()) byDefault = box->standardButton(box->defaultButton());
            QTest::keyClick(box, Qt::Key_Return);
        });
        const int employee = form.cboEmpname->currentIndex();
        if (question == frmEmployeeDailyAttendance::kMsgDiscardOnClose)
            QTest::keyClick(form.txtRemarks, Qt::Key_Escape);
        else
            form.cboEmpname->setCurrentIndex(employee == 0 ? 1 : 0);
        EXPECT_EQ(asked, question);
        EXPECT_EQ(byDefault, QMessageBox::No);
        EXPECT_TRUE(form.isVisible());
        EXPECT_EQ(form.cboEmpname->currentIndex(), employee);
        EXPECT_EQ(form.txtRemarks->text(), QStringLiteral("Checked by the supervisor"));
    }
}

// ---- Pictures for the README (run with QZ2_SCREENSHOT_DIR set) -------------------------------

TEST_F(ViewOnly, ScreenshotOfAnEntryOpenedWithoutTheRightAndOfTheRefusal) {
    const QByteArray dir = qgetenv("QZ2_SCREENSHOT_DIR");
    if (dir.isEmpty()) GTEST_SKIP() << "set QZ2_SCREENSHOT_DIR to write the pictures";
    const QString id =
        db.scalar(QStringLiteral("select max(eaID) from pEmployeeAttendence where eaCompanyID=1 and eaCancelled=0"))
            .toString();
    gstrEntryMode = QStringLiteral("E");
    frmEmployeeDailyAttendance form;
    form.Form_Load();
    ASSERT_TRUE(form.fnLoadEntry(id, false, false));
    form.show();
    form.resize(1120, 700);
    form.mfgAttendance->setCurrentCell(2, 1);
    QTest::qWait(50);
    EXPECT_TRUE(form.grab().save(QString::fromLocal8Bit(dir) + QStringLiteral("/readonly-entry.png")));
    form.reject();

    gintUserID = 2;  // "NE": no right to cancel
    register_ = std::make_unique<FrmMaster>();
    register_->Form_Load();
    register_->show();
    choose(id);
    qz2test::whenModal([this, &dir](QWidget* w) {
        // The box over the middle of the register, as the clerk sees it.
        QPixmap shot = register_->grab();
        {
            const QPixmap box = w->grab();
            QPainter paint(&shot);
            paint.setPen(QColor(0x60, 0x60, 0x60));
            const QPoint at((shot.width() - box.width()) / 2, (shot.height() - box.height()) / 2);
            paint.drawPixmap(at, box);
            paint.drawRect(QRect(at, box.size()).adjusted(-1, -1, 0, 0));
        }
        EXPECT_TRUE(shot.save(QString::fromLocal8Bit(dir) + QStringLiteral("/refused-delete.png")));
        qobject_cast<QMessageBox*>(w)->buttons().value(0)->click();
    });
    QTest::keyClick(register_->flexMaster, Qt::Key_Delete);
    gintUserID = 1;
}

}  // namespace
