// The register's status line counts the entries listed and how many of them are cancelled,
// and follows a new entry saved through the entry form and a cancellation made from the
// register, the way a clerk makes them on the demo database.
#include <gtest/gtest.h>

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <memory>

#include "SaveScenario.h"
#include "TestSupport.h"
#include "entry/frmEmployeeDailyAttendance.h"
#include "register/FrmMaster.h"
#include "register/frmCancel.h"
#include "shared/BasAttendence.h"
#include "shared/FlexGrid.h"
#include "shared/MsgBox.h"

namespace {

using qz2test::TestDb;

QString countText(int entries, int cancelled) {
    QString text =
        entries == 1 ? QStringLiteral("1 entry") : QStringLiteral("%1 entries").arg(entries);
    if (cancelled > 0) text += QStringLiteral(", %1 cancelled").arg(cancelled);
    return text;
}

class RegisterStatus : public ::testing::Test {
protected:
    void SetUp() override {
        qz2::msgbox_testing::clear();
        qz2::msgbox_testing::setAutoAnswer(false);
        employee = qz2test::freeEmployee(t.db);
        ASSERT_NE(employee, 0);
        reg = std::make_unique<qz2::FrmMaster>();
        reg->Form_Load();
        reg->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(reg.get()));
    }
    void TearDown() override {
        reg.reset();
        qz2::msgbox_testing::setAutoAnswer(false);
        qz2::msgbox_testing::clear();
    }
    // What the list query returns: every entry listed, and the cancelled ones among them.
    int listed() const { return t.rows(qz2::gstrMasterQuery).size(); }
    int listedCancelled() const {
        int n = 0;
        for (const QVariantList& r : t.rows(qz2::gstrMasterQuery))
            if (r.value(4).toString() == QLatin1String("Yes")) ++n;
        return n;
    }
    QString status() const { return reg->findChild<QLabel*>(QStringLiteral("lblStatus"))->text(); }

    // Delete on the current row, Yes, and the reason dialog worked by `body`.
    void deleteCurrent(std::function<void(qz2::frmCancel*)> body) {
        qz2test::whenModal([body](QWidget* w) {
            auto* box = qobject_cast<QMessageBox*>(w);
            if (!box) {
                ADD_FAILURE() << "expected the question, got " << w->objectName().toStdString();
                w->close();
                return;
            }
            qz2test::whenModal([body](QWidget* d) {
                auto* dlg = qobject_cast<qz2::frmCancel*>(d);
                if (!dlg) {
                    ADD_FAILURE() << "expected the reason dialog, got "
                                  << d->objectName().toStdString();
                    d->close();
                    return;
                }
                body(dlg);
                if (dlg->isVisible()) dlg->reject();
            });
            box->button(QMessageBox::Yes)->click();
        });
        QTest::mouseClick(reg->CmdDelete, Qt::LeftButton);
    }

    TestDb t{true};
    qint32 employee = 0;
    std::unique_ptr<qz2::FrmMaster> reg;
};

TEST_F(RegisterStatus, CountsFollowNewEntriesAndCancellations) {
    const int entries = listed();
    const int cancelled = listedCancelled();
    ASSERT_GT(entries, 2);
    ASSERT_GT(cancelled, 0);  // the demo has cancelled entries among the live ones
    EXPECT_EQ(status(), countText(entries, cancelled));

    // A new entry keyed and saved with OK.
    qz2::msgbox_testing::setAutoAnswer(true);
    bool saved = false;
    qz2test::whenModal([&](QWidget* w) {
        auto* f = qobject_cast<qz2::frmEmployeeDailyAttendance*>(w);
        if (!f) {
            ADD_FAILURE() << "expected the entry form, got " << w->objectName().toStdString();
            w->close();
            return;
        }
        qz2test::fillForm(*f, qz2test::demoScenario(employee, QDate(2026, 11, 2)));
        QTest::mouseClick(f->cmdOK, Qt::LeftButton);
        saved = f->saved();
        if (!saved) f->reject();
    });
    reg->cmdnew->click();
    qz2::msgbox_testing::setAutoAnswer(false);
    ASSERT_TRUE(saved);
    ASSERT_EQ(listed(), entries + 1);
    EXPECT_EQ(status(), countText(entries + 1, cancelled));

    // Backing out of the reason dialog changes nothing.
    const QString newId = reg->flexMaster->TextMatrix(reg->flexMaster->Row(), 0);
    deleteCurrent([](qz2::frmCancel* dlg) { dlg->close(); });
    EXPECT_EQ(status(), countText(entries + 1, cancelled));

    // The new entry cancelled with a reason.
    ASSERT_EQ(reg->flexMaster->TextMatrix(reg->flexMaster->Row(), 0), newId);
    deleteCurrent([](qz2::frmCancel* dlg) {
        QTest::keyClicks(dlg->txtcanreason, QStringLiteral("Keyed twice"));
        QTest::mouseClick(dlg->cmdOK, Qt::LeftButton);
    });
    ASSERT_EQ(listedCancelled(), cancelled + 1);
    EXPECT_EQ(status(), countText(entries + 1, cancelled + 1));
}

}  // namespace
