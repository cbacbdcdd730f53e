// Editing pairs on a period that Populate laid out from the demo company's settings, and
// the pictures of the pair editing for the documentation (written when QZ2_SCREENSHOT_DIR
// names a folder).

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QLineEdit>
#include <QMenu>
#include <QPainter>
#include <QPixmap>
#include <QTest>
#include <QTimeEdit>
#include <QTimer>
#include <functional>
#include <memory>
#include <optional>
#include <ostream>

#include "TestSupport.h"
#include "entry/frmEmployeeDailyAttendance.h"
#include "rules/RuleGrids.h"
#include "shared/BasAttendence.h"
#include "shared/FlexGrid.h"
#include "shared/MsgBox.h"

using namespace qz2;
using qz2test::TestDb;

namespace {

using qz2test::PopupWatch;

struct DemoFixture : ::testing::Test {
    void SetUp() override {
        gstrEntryMode = QStringLiteral("N");
        msgbox_testing::clear();
        msgbox_testing::setAutoAnswer(true);
        form = std::make_unique<frmEmployeeDailyAttendance>();
        form->Form_Load();
        form->resize(1040, 620);
        form->show();
        QApplication::setActiveWindow(form.get());
        ASSERT_TRUE(QTest::qWaitForWindowActive(form.get()));
        form->cmdPopulateRecords_Click();
        ASSERT_GT(days()->Rows(), 20) << "Populate laid out no period";
        ASSERT_GT(form->mfgMirrorGrid->Rows(), 10);
        msgbox_testing::clear();
    }
    void TearDown() override {
        form.reset();
        msgbox_testing::setAutoAnswer(false);
    }
    FlexGrid* days() const { return form->mfgAttendance; }
    FlexGrid* grid() const { return form->mfgCheckinCheckOut; }
    static QPoint centre(FlexGrid* g, int row, int col) {
        return g->visualRect(g->model()->index(row - 1, col)).center();
    }
    void showDay(int row) {
        days()->scrollTo(days()->model()->index(row - 1, 1));
        QTest::mouseClick(days()->viewport(), Qt::LeftButton, {}, centre(days(), row, 1));
        ASSERT_EQ(days()->Row(), row);
    }
    void clickPair(int row, int col, Qt::MouseButton button = Qt::LeftButton) {
        QTest::mouseClick(grid()->viewport(), button, {}, centre(grid(), row, col));
    }
    // The first present day with a complete first pair.
    int firstWorkingDay() const {
        for (int r = 1; r < days()->Rows(); ++r) {
            if (days()->TextMatrix(r, 2) != QLatin1String("P")) continue;
            const auto day = rules::cellDate(days()->TextMatrix(r, 1));
            const FlexGrid* m = form->mfgMirrorGrid;
            for (int j = 1; j < m->Rows(); ++j)
                if (day && rules::sameDay(m->TextMatrix(j, 0), *day) &&
                    !m->TextMatrix(j, 3).isEmpty())
                    return r;
        }
        return 0;
    }
    // After a popup the form is the active window again, as on a desktop.
    void reactivate() {
        form->activateWindow();
        QApplication::setActiveWindow(form.get());
        ASSERT_TRUE(QTest::qWaitForWindowActive(form.get()));
    }
    static int minutes(const QString& hhmm) {
        const auto t = parseTime(hhmm);
        return t ? t->hour() * 60 + t->minute() : -1;
    }

    TestDb t{true};
    std::unique_ptr<frmEmployeeDailyAttendance> form;
};

QString screenshotDir() {
    return QString::fromLocal8Bit(qgetenv("QZ2_SCREENSHOT_DIR"));
}

}  // namespace

TEST_F(DemoFixture, ACorrectedCheckOutOnAPopulatedDayReachesTheMirrorAndTheHours) {
    const int row = firstWorkingDay();
    ASSERT_GT(row, 0);
    showDay(row);
    ASSERT_GE(grid()->Rows(), 2);
    const QString workedBefore = days()->TextMatrix(row, 3);
    const QString checkOut = grid()->TextMatrix(1, 3);
    clickPair(1, 3);
    ASSERT_TRUE(form->dtpCheckTime->isVisible());
    ASSERT_EQ(form->dtpCheckTime->time().toString(QStringLiteral("HH:mm")), checkOut);
    form->dtpCheckTime->setTime(form->dtpCheckTime->time().addSecs(30 * 60));
    clickPair(1, 1);
    EXPECT_EQ(minutes(grid()->TextMatrix(1, 3)), minutes(checkOut) + 30);
    EXPECT_EQ(minutes(days()->TextMatrix(row, 3)), minutes(workedBefore) + 30);
    // The mirror holds the same pairs as the grid for that day.
    const auto day = rules::cellDate(days()->TextMatrix(row, 1));
    ASSERT_TRUE(day.has_value());
    QStringList mirrorPairs;
    const FlexGrid* m = form->mfgMirrorGrid;
    for (int j = 1; j < m->Rows(); ++j)
        if (rules::sameDay(m->TextMatrix(j, 0), *day))
            mirrorPairs << m->TextMatrix(j, 2) + QLatin1Char('-') + m->TextMatrix(j, 3);
    QStringList gridPairs;
    for (int r = 1; r < grid()->Rows(); ++r)
        gridPairs << grid()->TextMatrix(r, 2) + QLatin1Char('-') + grid()->TextMatrix(r, 3);
    EXPECT_EQ(mirrorPairs, gridPairs);
    EXPECT_TRUE(msgbox_testing::shown().isEmpty());
}

TEST_F(DemoFixture, PopulatingAgainWhileATimeIsPickedStartsCleanAndQuiet) {
    const int row = firstWorkingDay();
    ASSERT_GT(row, 0);
    showDay(row);
    clickPair(1, 2);
    ASSERT_TRUE(form->dtpCheckTime->isVisible());
    // A check-in after its check-out stands in the grid, then Populate is pressed.
    form->dtpCheckTime->setTime(QTime(23, 30));
    clickPair(1, 1);
    ASSERT_EQ(msgbox_testing::shown().size(), 1);
    clickPair(1, 3);
    form->cmdPopulateRecords_Click();
    EXPECT_TRUE(form->dtpCheckTime->isHidden());
    EXPECT_EQ(grid()->Rows(), 1);
    EXPECT_EQ(msgbox_testing::shown().size(), 1);  // nothing re-checked on the way
    // The fresh period has the schedule's times again.
    showDay(row);
    EXPECT_NE(grid()->TextMatrix(1, 2), QStringLiteral("23:30"));
}

TEST_F(DemoFixture, Screenshots) {
    if (screenshotDir().isEmpty())
        GTEST_SKIP() << "set QZ2_SCREENSHOT_DIR to write docs/pairs-*.png";
    const QDir dir(screenshotDir());
    const int row = firstWorkingDay();
    ASSERT_GT(row, 0);

    // The picker over a check-out being corrected.
    showDay(row);
    clickPair(2, 3);
    ASSERT_TRUE(form->dtpCheckTime->isVisible());
    form->dtpCheckTime->setTime(form->dtpCheckTime->time().addSecs(45 * 60));
    QApplication::processEvents();
    ASSERT_TRUE(form->grab().save(dir.filePath(QStringLiteral("pairs-picker.png"))));
    clickPair(1, 1);

    // The two popups: Delete on the pairs grid (its row selected), then the half day on the
    // day shown; the form is grabbed with the second open and both are painted over it.
    QPixmap deleteMenu;
    QPoint deleteAt;
    {
        const PopupWatch watch([&](QMenu* menu) {
            QApplication::processEvents();
            deleteMenu = menu->grab();
            deleteAt = form->mapFromGlobal(menu->pos());
            menu->close();
        });
        clickPair(2, 2, Qt::RightButton);
        ASSERT_TRUE(watch.seen());
    }
    QPixmap shot;
    {
        const PopupWatch watch([&](QMenu* menu) {
            QApplication::processEvents();
            shot = form->grab();
            QPainter p(&shot);
            p.drawPixmap(deleteAt, deleteMenu);
            p.drawPixmap(form->mapFromGlobal(menu->pos()), menu->grab());
            menu->close();
        });
        QTest::mouseClick(days()->viewport(), Qt::RightButton, {}, centre(days(), row, 2));
        ASSERT_TRUE(watch.seen());
    }
    reactivate();
    ASSERT_TRUE(shot.save(dir.filePath(QStringLiteral("pairs-menus.png"))));

    // A day of six pairs keyed in with Enter, its allowance claimed.
    showDay(row);
    clickPair(grid()->Rows() - 1, 3);
    const QTime starts[] = {QTime(7, 0),   QTime(9, 0),   QTime(11, 0),
                            QTime(13, 30), QTime(15, 30), QTime(17, 30)};
    // Start from a single pair so that the six are all the clerk's.
    while (grid()->Rows() > 2) {
        const PopupWatch watch([](QMenu* menu) {
            for (QAction* a : menu->actions())
                if (a->objectName() == QLatin1String("mnuDelete")) menu->setActiveAction(a);
            QTest::keyClick(menu, Qt::Key_Return);
        });
        clickPair(grid()->Rows() - 1, 2, Qt::RightButton);
        ASSERT_TRUE(watch.seen());
        reactivate();
    }
    clickPair(1, 2);
    for (int i = 0; i < 6; ++i) {
        if (i > 0) QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        form->dtpCheckTime->setTime(starts[i]);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        form->dtpCheckTime->setTime(starts[i].addSecs(i == 5 ? 150 * 60 : 90 * 60));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    }
    ASSERT_EQ(grid()->Rows(), 7);
    clickPair(6, 1);
    form->chkAllowanceDeductions->click();
    QApplication::processEvents();
    ASSERT_TRUE(form->grab().save(dir.filePath(QStringLiteral("pairs-six.png"))));
    EXPECT_TRUE(QFileInfo::exists(dir.filePath(QStringLiteral("pairs-six.png"))));
}
