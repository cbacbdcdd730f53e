// Cancelling an entry from the register: the question, the monthly lock, the reason dialog
// and what ends up in the attendance header.
#include <gtest/gtest.h>

#include <QAbstractItemModel>
#include <QApplication>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <functional>
#include <memory>
#include <ostream>

#include "TestSupport.h"
#include "db/Database.h"
#include "register/FrmMaster.h"
#include "register/frmCancel.h"
#include "shared/BasAttendence.h"
#include "shared/FlexGrid.h"
#include "shared/MsgBox.h"

namespace {

using qz2test::TestDb;
using Step = std::function<void(QWidget*)>;

// Runs each step on the modal window that shows next, one after the other.
void inOrder(QList<Step> steps) {
    if (steps.isEmpty()) return;
    const Step first = steps.takeFirst();
    qz2test::whenModal([first, steps](QWidget* w) {
        first(w);
        inOrder(steps);
    });
}

void closeModal(QWidget* w) {
    if (auto* box = qobject_cast<QMessageBox*>(w)) {
        if (QAbstractButton* b = box->escapeButton()) {
            b->click();
            return;
        }
    }
    if (auto* dlg = qobject_cast<QDialog*>(w)) dlg->reject();
    else w->close();
}

// Once started, closes any modal window that shows and remembers it: nothing more should
// open, and if something does the test fails rather than blocks.
class ModalGuard {
public:
    void start() {
        m_timer.setInterval(10);
        QObject::connect(&m_timer, &QTimer::timeout, [this] {
            QWidget* w = QApplication::activeModalWidget();
            if (!w || !w->isVisible()) return;
            auto* box = qobject_cast<QMessageBox*>(w);
            m_seen << (box ? QStringLiteral("box: ") + box->text() : w->objectName());
            closeModal(w);
        });
        m_timer.start();
    }
    const QStringList& seen() const { return m_seen; }

private:
    QTimer m_timer;
    QStringList m_seen;
};

// A step that answers a message box with `button`, noting its text and icon.
Step answer(QMessageBox::StandardButton button, QString* text, QMessageBox::Icon* icon = nullptr,
            std::function<void()> then = {}) {
    return [=](QWidget* w) {
        auto* box = qobject_cast<QMessageBox*>(w);
        if (!box) {
            ADD_FAILURE() << "expected a message box, got " << w->objectName().toStdString();
            closeModal(w);
            return;
        }
        if (text) *text = box->text();
        if (icon) *icon = box->icon();
        QAbstractButton* b = box->button(button);
        if (!b) {
            ADD_FAILURE() << "no such button on: " << box->text().toStdString();
            closeModal(w);
        } else {
            b->click();
        }
        if (then) then();
    };
}

// A step that works the reason dialog; `body` must close it (OK or frame).
Step reasonDialog(std::function<void(qz2::frmCancel*)> body) {
    return [body](QWidget* w) {
        auto* dlg = qobject_cast<qz2::frmCancel*>(w);
        if (!dlg) {
            ADD_FAILURE() << "expected the reason dialog, got " << w->objectName().toStdString();
            closeModal(w);
            return;
        }
        body(dlg);
        if (dlg->isVisible()) {
            ADD_FAILURE() << "the reason dialog is still open";
            dlg->reject();
        }
    };
}

QString iso(QDate d) { return d.toString(Qt::ISODate); }

class RegisterCancel : public ::testing::Test {
protected:
    void SetUp() override {
        qz2::msgbox_testing::clear();
        qz2::msgbox_testing::setAutoAnswer(false);
        db.exec(QStringLiteral("insert into pSettings(companyid, noofPreviousdays) values(1, 0)"));
        addEmployee(1, 1, QStringLiteral("Asha Verma"));
        addEmployee(1, 2, QStringLiteral("Bruno Costa"));
        addEmployee(2, 10, QStringLiteral("Other Company Person"));
        const QDate oct1(2026, 10, 1), oct31(2026, 10, 31);
        addEntry(1, 5, QStringLiteral("ATT5"), 1, oct1, oct31, false);
        addEntry(1, 6, QStringLiteral("ATT6"), 2, oct1, oct31, false);
        addEntry(1, 8, QStringLiteral("ATT8"), 1, QDate(2026, 9, 1), QDate(2026, 9, 30), true);
        addEntry(2, 5, QStringLiteral("HC5"), 10, oct1, oct31, false);
        // Entry 6 is covered by payroll; entry 5 only by a cancelled monthly entry and by
        // one that starts before and ends after its period, neither of which locks it.
        addMonthly(1, 1, 2, QDate(2026, 10, 1), QDate(2026, 10, 31), false);
        addMonthly(1, 2, 1, QDate(2026, 10, 1), QDate(2026, 10, 31), true);
        addMonthly(1, 3, 1, QDate(2026, 9, 15), QDate(2026, 11, 15), false);
        db.exec(QStringLiteral("insert into pusers(userid, username, companyid) values(1, '  Mira Shah ', 1)"));
        db.exec(QStringLiteral("insert into pusers(userid, username, companyid) values(2, 'Elsewhere', 2)"));
    }

    void TearDown() override {
        qz2::db::setFaultHook({});
        form.reset();
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
    void addEntry(int company, int id, const QString& no, int emp, QDate start, QDate end, bool cancelled) {
        db.exec(QStringLiteral("insert into pEmployeeAttendence(eaCompanyID, eaID, eaNo, eaDate, eaEmpID, eaCancelled, "
                               "eaStartDate, eaEndDate) values(%1, %2, '%3', '%4', %5, %6, '%7', '%4')")
                    .arg(company)
                    .arg(id)
                    .arg(no, iso(end))
                    .arg(emp)
                    .arg(cancelled ? 1 : 0)
                    .arg(iso(start)));
    }
    void addMonthly(int company, int id, int emp, QDate start, QDate end, bool cancelled) {
        db.exec(QStringLiteral("insert into pEmpMonthlyEntryHeader(emhCompanyID, emhID, emhEmpID, emhStartDate, "
                               "emhEndDate, emhCancelled) values(%1, %2, %3, '%4', '%5', %6)")
                    .arg(company)
                    .arg(id)
                    .arg(emp)
                    .arg(iso(start), iso(end))
                    .arg(cancelled ? 1 : 0));
    }

    void open() {
        form = std::make_unique<qz2::FrmMaster>();
        form->Form_Load();
        form->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(form.get()));
    }
    QAbstractItemModel* model() const { return form->flexMaster->model(); }
    QString cell(int gridRow, int col) const { return model()->index(gridRow - 1, col).data().toString(); }
    int rowOf(const QString& id) const {
        for (int r = 0; r < model()->rowCount(); ++r)
            if (model()->index(r, 0).data().toString() == id) return r + 1;
        return 0;
    }
    // Makes the entry's row current with the mouse and returns its grid row.
    int pick(const QString& id) {
        const int row = rowOf(id);
        EXPECT_GT(row, 0) << "entry " << id.toStdString() << " is not listed";
        if (row == 0) return 0;
        const QModelIndex index = model()->index(row - 1, 1);
        form->flexMaster->scrollTo(index);
        QTest::mouseClick(form->flexMaster->viewport(), Qt::LeftButton, {},
                          form->flexMaster->visualRect(index).center());
        EXPECT_EQ(form->flexMaster->Row(), row);
        return row;
    }
    QVariantList header(int company, int id) const {
        const auto rows = db.rows(QStringLiteral("select eaCancelled, eaCancelledRemarks from pEmployeeAttendence "
                                                 "where eaCompanyID = %1 and eaID = %2")
                                      .arg(company)
                                      .arg(id));
        return rows.isEmpty() ? QVariantList() : rows.first();
    }
    // Cancels entry 5 of company 1 by Delete, Yes and the reason dialog worked by `body`.
    void cancelFive(std::function<void(qz2::frmCancel*)> body, QString* question = nullptr) {
        open();
        const int row = pick(QStringLiteral("5"));
        ASSERT_TRUE(form->CmdDelete->isEnabled());
        inOrder({answer(QMessageBox::Yes, question), reasonDialog(std::move(body))});
        QTest::mouseClick(form->CmdDelete, Qt::LeftButton);
        EXPECT_EQ(form->flexMaster->Row(), row);
    }
    static QString alreadyCancelled(const QString& id) {
        return QStringLiteral("Entry %1 is already cancelled. Its reason for deletion is kept as it was recorded.")
            .arg(id);
    }
    // After backing out of the reason dialog: the database as it was, entry 5's row reading
    // "No" in its usual colour, and Delete still there for it.
    void expectFiveStillLive(const QString& before) {
        EXPECT_EQ(db.dump(), before);
        const int row = rowOf(QStringLiteral("5"));
        EXPECT_EQ(cell(row, 4), QStringLiteral("No"));
        for (int c = 0; c < 5; ++c)
            EXPECT_FALSE(model()->index(row - 1, c).data(Qt::ForegroundRole).isValid()) << "column " << c;
        pick(QStringLiteral("5"));
        EXPECT_TRUE(form->CmdDelete->isEnabled());
        QString question;
        qz2test::answerNextMessageBox(QMessageBox::No, &question);
        QTest::keyClick(form->flexMaster, Qt::Key_Delete);
        EXPECT_EQ(question, QStringLiteral("Are you sure you want to delete Entry - 5?"));
        EXPECT_EQ(db.dump(), before);
    }
    static void typeAndConfirm(qz2::frmCancel* dlg, const QString& reason) {
        QTest::keyClicks(dlg->txtcanreason, reason);
        QTest::mouseClick(dlg->cmdOK, Qt::LeftButton);
    }

    TestDb db;
    std::unique_ptr<qz2::FrmMaster> form;
};

TEST_F(RegisterCancel, YesThenAReasonCancelsTheEntry) {
    QString question, caption, name, flagWhileAsking;
    QVariantList whileAsking;
    cancelFive(
        [&](qz2::frmCancel* dlg) {
            name = dlg->objectName();
            caption = dlg->windowTitle();
            flagWhileAsking = cell(form->flexMaster->Row(), 4);
            whileAsking = header(1, 5);
            typeAndConfirm(dlg, QStringLiteral("Wrong employee"));
        },
        &question);
    EXPECT_EQ(question, QStringLiteral("Are you sure you want to delete Entry - 5?"));
    EXPECT_EQ(name, QStringLiteral("frmCancel"));
    EXPECT_EQ(caption, QStringLiteral("Reason For Deletion"));
    // While the reason is asked the entry is not cancelled yet, and the row says so.
    EXPECT_EQ(flagWhileAsking, QStringLiteral("No"));
    ASSERT_EQ(whileAsking.size(), 2);
    EXPECT_EQ(whileAsking[0].toInt(), 0);

    EXPECT_EQ(header(1, 5), (QVariantList{1, QStringLiteral("Mira Shah:Wrong employee")}));
    EXPECT_EQ(header(2, 5)[0].toInt(), 0);  // the same number in the other company
    EXPECT_TRUE(header(2, 5)[1].isNull());
    EXPECT_EQ(header(1, 6)[0].toInt(), 0);
    EXPECT_EQ(cell(rowOf(QStringLiteral("5")), 4), QStringLiteral("Yes"));
    EXPECT_EQ(model()->index(rowOf(QStringLiteral("5")) - 1, 3).data(Qt::ForegroundRole).value<QColor>(),
              QColor(255, 0, 0));
    ASSERT_EQ(qz2::msgbox_testing::shown().size(), 1);  // only the question
    EXPECT_EQ(qz2::msgbox_testing::shown().first().icon, qz2::MsgIcon::Question);
    EXPECT_EQ(qz2::msgbox_testing::shown().first().title, QStringLiteral("Attendance Test"));
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);

    // Delete comes back from the rights afterwards, and the next click on the row, which
    // now reads "Yes", turns it off.
    EXPECT_TRUE(form->CmdDelete->isEnabled());
    pick(QStringLiteral("5"));
    EXPECT_FALSE(form->CmdDelete->isEnabled());
    EXPECT_TRUE(form->CmdEdit->isEnabled());
}

TEST_F(RegisterCancel, ALockedEntryIsNotCancelled) {
    open();
    const int row = pick(QStringLiteral("6"));
    ASSERT_TRUE(form->CmdDelete->isEnabled());
    const QString before = db.dump();
    QString question, notice;
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    ModalGuard guard;
    inOrder({answer(QMessageBox::Yes, &question),
             answer(QMessageBox::Ok, &notice, &icon, [&guard] { guard.start(); })});
    QTest::keyClick(form->flexMaster, Qt::Key_Delete);
    QTest::qWait(30);
    EXPECT_EQ(question, QStringLiteral("Are you sure you want to delete Entry - 6?"));
    EXPECT_EQ(notice, QStringLiteral("Monthly entry done. Can't delete."));
    EXPECT_EQ(icon, QMessageBox::Information);
    EXPECT_TRUE(guard.seen().isEmpty()) << guard.seen().join(QStringLiteral(" | ")).toStdString();
    EXPECT_EQ(cell(row, 4), QStringLiteral("No"));
    EXPECT_EQ(db.dump(), before);
}

TEST_F(RegisterCancel, NoLeavesEverythingAsItWas) {
    open();
    const int row = pick(QStringLiteral("5"));
    const QString before = db.dump();
    ModalGuard guard;
    QString question;
    inOrder({answer(QMessageBox::No, &question, nullptr, [&guard] { guard.start(); })});
    QTest::mouseClick(form->CmdDelete, Qt::LeftButton);
    QTest::qWait(30);
    EXPECT_EQ(question, QStringLiteral("Are you sure you want to delete Entry - 5?"));
    EXPECT_TRUE(guard.seen().isEmpty()) << guard.seen().join(QStringLiteral(" | ")).toStdString();
    EXPECT_EQ(cell(row, 4), QStringLiteral("No"));
    EXPECT_EQ(db.dump(), before);
}

TEST_F(RegisterCancel, ABlankReasonIsRefused) {
    QString emptyMessage, blankMessage;
    bool openAfterBlank = false;
    bool unchangedAfterBlank = false;
    const QString before = db.dump();
    cancelFive([&](qz2::frmCancel* dlg) {
        qz2test::answerNextMessageBox(QMessageBox::Ok, &emptyMessage);
        QTest::mouseClick(dlg->cmdOK, Qt::LeftButton);
        QTest::keyClicks(dlg->txtcanreason, QStringLiteral("    "));
        qz2test::answerNextMessageBox(QMessageBox::Ok, &blankMessage);
        QTest::mouseClick(dlg->cmdOK, Qt::LeftButton);
        openAfterBlank = dlg->isVisible();
        unchangedAfterBlank = db.dump() == before;
        typeAndConfirm(dlg, QStringLiteral("Typo "));
    });
    EXPECT_EQ(emptyMessage, QStringLiteral("Enter reason for deletion"));
    EXPECT_EQ(blankMessage, QStringLiteral("Enter reason for deletion"));
    EXPECT_TRUE(openAfterBlank);
    EXPECT_TRUE(unchangedAfterBlank);
    ASSERT_EQ(qz2::msgbox_testing::shown().size(), 3);
    EXPECT_EQ(qz2::msgbox_testing::shown()[1].title, QStringLiteral("Attendance Test"));
    // The blanks typed first and last are trimmed away.
    EXPECT_EQ(header(1, 5), (QVariantList{1, QStringLiteral("Mira Shah:Typo")}));
}

TEST_F(RegisterCancel, TypedQuotesAreDiscarded) {
    QString typed;
    cancelFive([&](qz2::frmCancel* dlg) {
        QTest::keyClicks(dlg->txtcanreason, QStringLiteral("it's a \"test\""));
        typed = dlg->txtcanreason->text();
        QTest::mouseClick(dlg->cmdOK, Qt::LeftButton);
    });
    EXPECT_EQ(typed, QStringLiteral("its a test"));
    EXPECT_EQ(header(1, 5), (QVariantList{1, QStringLiteral("Mira Shah:its a test")}));
}

TEST_F(RegisterCancel, PastedQuotesAreStoredAsGiven) {
    const QString pasted = QStringLiteral("O'Neil said \"late\" '' twice");
    cancelFive([&](qz2::frmCancel* dlg) {
        dlg->txtcanreason->setText(pasted);
        QTest::mouseClick(dlg->cmdOK, Qt::LeftButton);
    });
    EXPECT_EQ(header(1, 5), (QVariantList{1, QStringLiteral("Mira Shah:") + pasted}));
    EXPECT_EQ(header(2, 5)[0].toInt(), 0);
    EXPECT_EQ(db.scalar(QStringLiteral("select count(*) from pEmployeeAttendence where eaCancelled = 1")).toInt(), 2);
}

TEST_F(RegisterCancel, EnterInTheReasonPressesOkTheFirstTime) {
    bool openAfterEnter = true;
    QString refused;
    QString focusAfterRefusal;
    cancelFive([&](qz2::frmCancel* dlg) {
        QApplication::setActiveWindow(dlg);  // the clerk is typing into this dialog
        dlg->txtcanreason->setFocus();
        // Blanks only: refused, and the clerk is back in the reason to type it.
        QTest::keyClicks(dlg->txtcanreason, QStringLiteral("  "));
        qz2test::answerNextMessageBox(QMessageBox::Ok, &refused);
        QTest::keyClick(dlg->txtcanreason, Qt::Key_Return);
        if (QWidget* w = dlg->focusWidget()) focusAfterRefusal = w->objectName();
        QTest::keyClicks(dlg->txtcanreason, QStringLiteral("Late"));
        QTest::keyClick(dlg->txtcanreason, Qt::Key_Return);
        openAfterEnter = dlg->isVisible();
    });
    EXPECT_EQ(refused, QStringLiteral("Enter reason for deletion"));
    EXPECT_EQ(focusAfterRefusal, QStringLiteral("txtcanreason"));
    EXPECT_FALSE(openAfterEnter);
    EXPECT_EQ(header(1, 5), (QVariantList{1, QStringLiteral("Mira Shah:Late")}));
}

TEST_F(RegisterCancel, AUserOfAnotherCompanyCancelsWithEmptyRemarks) {
    qz2::gintUserID = 2;  // in pusers, but for company 2
    // Allowed to cancel on this screen: only the name is missing.
    db.exec(QStringLiteral("insert into puserrights(userid, interfaceid, functionrights) values(2, 91029, 'D')"));
    cancelFive([&](qz2::frmCancel* dlg) { typeAndConfirm(dlg, QStringLiteral("Duplicate")); });
    const QVariantList h = header(1, 5);
    ASSERT_EQ(h.size(), 2);
    EXPECT_EQ(h[0].toInt(), 1);
    EXPECT_FALSE(h[1].isNull());
    EXPECT_EQ(h[1].toString(), QString());
}

TEST_F(RegisterCancel, AUserMissingFromUsersCancelsWithEmptyRemarks) {
    qz2::gintUserID = 9;
    db.exec(QStringLiteral("insert into puserrights(userid, interfaceid, functionrights) values(9, 91029, 'D')"));
    cancelFive([&](qz2::frmCancel* dlg) { typeAndConfirm(dlg, QStringLiteral("Duplicate")); });
    const QVariantList h = header(1, 5);
    ASSERT_EQ(h.size(), 2);
    EXPECT_EQ(h[0].toInt(), 1);
    EXPECT_EQ(h[1].toString(), QString());
}

TEST_F(RegisterCancel, ClosingTheDialogByItsFrameLeavesTheDatabaseAndTheRowAsTheyWere) {
    const QString before = db.dump();
    cancelFive([&](qz2::frmCancel* dlg) {
        QTest::keyClicks(dlg->txtcanreason, QStringLiteral("Changed my mind"));
        dlg->close();  // the window's close button
    });
    expectFiveStillLive(before);
}

TEST_F(RegisterCancel, EscInTheReasonDialogLeavesTheDatabaseAndTheRowAsTheyWere) {
    const QString before = db.dump();
    cancelFive([&](qz2::frmCancel* dlg) {
        QApplication::setActiveWindow(dlg);
        dlg->txtcanreason->setFocus();
        QTest::keyClicks(dlg->txtcanreason, QStringLiteral("Changed my mind"));
        QTest::keyClick(dlg->txtcanreason, Qt::Key_Escape);
    });
    expectFiveStillLive(before);
}

TEST_F(RegisterCancel, AnUpdateThatFailsIsReportedAndLeavesTheRowAsTheDatabaseHoldsIt) {
    const QString before = db.dump();
    QString failure;
    cancelFive([&](qz2::frmCancel* dlg) {
        qz2::db::setFaultHook([](const QString& sql) {
            return sql.startsWith(QLatin1String("update pEmployeeattendence")) ? QStringLiteral("disk full")
                                                                                : QString();
        });
        // The clerk is told, not left in silence.
        qz2test::answerNextMessageBox(QMessageBox::Ok, &failure);
        typeAndConfirm(dlg, QStringLiteral("Duplicate"));
        qz2::db::setFaultHook({});
        dlg->close();  // the update failed, the clerk gives up
    });
    EXPECT_EQ(failure, QStringLiteral("disk full"));
    expectFiveStillLive(before);
}

// ---------------------------------------------------------------------------------------
// A cancelled entry keeps its reason

TEST_F(RegisterCancel, DeleteOnAnEntryCancelledElsewhereSaysSoAndWritesNothing) {
    open();
    const int row = pick(QStringLiteral("5"));
    ASSERT_EQ(cell(row, 4), QStringLiteral("No"));
    ASSERT_TRUE(form->CmdDelete->isEnabled());
    // Another clerk cancels the entry after this register was opened.
    db.exec(QStringLiteral("update pEmployeeAttendence set eaCancelled = 1, eaCancelledRemarks = 'Ravi:Duplicate' "
                           "where eaCompanyID = 1 and eaID = 5"));
    const QString before = db.dump();
    QString notice;
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    ModalGuard guard;
    inOrder({answer(QMessageBox::Ok, &notice, &icon, [&guard] { guard.start(); })});
    QTest::mouseClick(form->CmdDelete, Qt::LeftButton);
    QTest::qWait(30);
    EXPECT_EQ(notice, alreadyCancelled(QStringLiteral("5")));
    EXPECT_EQ(icon, QMessageBox::Information);
    EXPECT_TRUE(guard.seen().isEmpty()) << guard.seen().join(QStringLiteral(" | ")).toStdString();
    EXPECT_EQ(db.dump(), before);
    EXPECT_EQ(header(1, 5), (QVariantList{1, QStringLiteral("Ravi:Duplicate")}));
    // The row now tells the truth, and Delete is off on it.
    EXPECT_EQ(cell(row, 4), QStringLiteral("Yes"));
    EXPECT_EQ(model()->index(row - 1, 0).data(Qt::ForegroundRole).value<QColor>(), QColor(255, 0, 0));
    EXPECT_FALSE(form->CmdDelete->isEnabled());
    EXPECT_EQ(form->flexMaster->Row(), row);
}

TEST_F(RegisterCancel, DeleteAgainAfterCancellingKeepsTheFirstReason) {
    cancelFive([&](qz2::frmCancel* dlg) { typeAndConfirm(dlg, QStringLiteral("Wrong employee")); });
    ASSERT_EQ(header(1, 5), (QVariantList{1, QStringLiteral("Mira Shah:Wrong employee")}));
    // The rights bring Delete back on the row just cancelled; pressing it must not ask again.
    ASSERT_TRUE(form->CmdDelete->isEnabled());
    ASSERT_EQ(cell(form->flexMaster->Row(), 0), QStringLiteral("5"));
    const QString before = db.dump();
    QString notice;
    ModalGuard guard;
    inOrder({answer(QMessageBox::Ok, &notice, nullptr, [&guard] { guard.start(); })});
    QTest::keyClick(form->flexMaster, Qt::Key_Delete);
    QTest::qWait(30);
    EXPECT_EQ(notice, alreadyCancelled(QStringLiteral("5")));
    EXPECT_TRUE(guard.seen().isEmpty()) << guard.seen().join(QStringLiteral(" | ")).toStdString();
    EXPECT_EQ(db.dump(), before);
    EXPECT_FALSE(form->CmdDelete->isEnabled());
}

TEST_F(RegisterCancel, DeleteOnACancelledEntryWhoseRowReadsNoKeepsItsReason) {
    // Whatever the row and the buttons say, the database decides.
    open();
    const int row = pick(QStringLiteral("8"));
    ASSERT_EQ(cell(row, 4), QStringLiteral("Yes"));
    db.exec(QStringLiteral("update pEmployeeAttendence set eaCancelledRemarks = 'Ravi:Sick' where eaID = 8"));
    form->flexMaster->setTextMatrix(row, 4, QStringLiteral("No"));
    form->CmdDelete->setEnabled(true);
    const QString before = db.dump();
    QString notice;
    ModalGuard guard;
    inOrder({answer(QMessageBox::Ok, &notice, nullptr, [&guard] { guard.start(); })});
    QTest::mouseClick(form->CmdDelete, Qt::LeftButton);
    QTest::qWait(30);
    EXPECT_EQ(notice, alreadyCancelled(QStringLiteral("8")));
    EXPECT_TRUE(guard.seen().isEmpty()) << guard.seen().join(QStringLiteral(" | ")).toStdString();
    EXPECT_EQ(db.dump(), before);
    EXPECT_EQ(cell(row, 4), QStringLiteral("Yes"));
}

TEST_F(RegisterCancel, AnEntryCancelledWhileTheReasonIsTypedKeepsTheFirstReason) {
    QString notice;
    bool closed = false;
    cancelFive([&](qz2::frmCancel* dlg) {
        db.exec(QStringLiteral("update pEmployeeAttendence set eaCancelled = 1, eaCancelledRemarks = "
                               "'Ravi:Duplicate' where eaCompanyID = 1 and eaID = 5"));
        qz2test::answerNextMessageBox(QMessageBox::Ok, &notice);
        typeAndConfirm(dlg, QStringLiteral("Wrong employee"));
        closed = !dlg->isVisible();
    });
    EXPECT_EQ(notice, alreadyCancelled(QStringLiteral("5")));
    EXPECT_TRUE(closed);
    EXPECT_EQ(header(1, 5), (QVariantList{1, QStringLiteral("Ravi:Duplicate")}));
    EXPECT_EQ(cell(rowOf(QStringLiteral("5")), 4), QStringLiteral("Yes"));
}

TEST_F(RegisterCancel, TheDialogNamesItselfOnLoad) {
    qz2::frmCancel dlg;
    EXPECT_EQ(dlg.objectName(), QStringLiteral("frmCancel"));
    EXPECT_EQ(dlg.windowTitle(), QStringLiteral("Reason For Deletion"));
    EXPECT_EQ(dlg.txtcanreason->objectName(), QStringLiteral("txtcanreason"));
    EXPECT_EQ(dlg.cmdOK->objectName(), QStringLiteral("cmdOK"));
    EXPECT_FALSE(dlg.cancelled());
}

}  // namespace
