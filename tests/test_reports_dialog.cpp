// The register's "Reports..." button and its dialog, driven like a clerk: the muster of a
// department saved as CSV, the selected entry's sheet in the print preview, a refused
// period, and the button's Alt letter.
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QDateEdit>
#include <QElapsedTimer>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPrintPreviewDialog>
#include <QPrintPreviewWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <memory>

#include "ReportMonth.h"
#include "TestSupport.h"
#include "register/FrmMaster.h"
#include "register/frmReports.h"
#include "shared/BasAttendence.h"
#include "shared/FlexGrid.h"
#include "shared/MsgBox.h"

using qz2test::TestDb;

namespace {

// Runs `action` on the modal window named `name` once it is the active one (a window of
// another name that is active first, the dialog under a preview say, is left alone).
void whenModalNamed(const QString& name, std::function<void(QWidget*)> action,
                    int timeoutMs = 10000) {
    auto* timer = new QTimer(qApp);
    auto clock = std::make_shared<QElapsedTimer>();
    clock->start();
    timer->setInterval(10);
    QObject::connect(timer, &QTimer::timeout, [=] {
        QWidget* modal = QApplication::activeModalWidget();
        if (modal && modal->isVisible() && modal->objectName() == name) {
            timer->stop();
            timer->deleteLater();
            action(modal);
            return;
        }
        if (clock->elapsed() > timeoutMs) {
            timer->stop();
            timer->deleteLater();
            ADD_FAILURE() << "no modal window " << name.toStdString() << " appeared";
            if (modal) modal->close();
        }
    });
    timer->start();
}

// The letters that follow "&" in the texts of a form's buttons and labels.
QStringList altLetters(QWidget* form) {
    QStringList letters;
    auto add = [&](const QString& text) {
        const qsizetype at = text.indexOf(QLatin1Char('&'));
        if (at >= 0 && at + 1 < text.size()) letters << text.mid(at + 1, 1).toLower();
    };
    for (QAbstractButton* b : form->findChildren<QAbstractButton*>()) add(b->text());
    for (QLabel* l : form->findChildren<QLabel*>()) add(l->text());
    return letters;
}

class ReportsDialog : public ::testing::Test {
protected:
    void SetUp() override {
        qz2test::fillReportMonth(t.db);
        form = std::make_unique<qz2::FrmMaster>();
        form->Form_Load();
        form->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(form.get()));
    }
    void TearDown() override { qz2::msgbox_testing::setAutoAnswer(false); }
    QPushButton* reportsButton() const {
        return form->findChild<QPushButton*>(QStringLiteral("cmdReports"));
    }
    void selectEntry(const QString& no) {
        for (int r = 1; r < form->flexMaster->Rows(); ++r)
            if (form->flexMaster->TextMatrix(r, 1) == no) {
                form->flexMaster->setCurrentIndex(form->flexMaster->model()->index(r - 1, 1));
                return;
            }
        ADD_FAILURE() << "no register row " << no.toStdString();
    }

    TestDb t;
    std::unique_ptr<qz2::FrmMaster> form;
    QTemporaryDir dir;
};

}  // namespace

TEST_F(ReportsDialog, ButtonHasAnAltLetterOfItsOwn) {
    QPushButton* button = reportsButton();
    ASSERT_NE(button, nullptr);
    EXPECT_EQ(button->text(), "&Reports...");
    const QStringList letters = altLetters(form.get());
    EXPECT_EQ(letters.count("r"), 1) << letters.join(' ').toStdString();
    // Alt+R opens the dialog.
    bool opened = false;
    whenModalNamed("frmReports", [&](QWidget* w) {
        opened = true;
        static_cast<QDialog*>(w)->reject();
    });
    form->activateWindow();
    QTest::keyClick(form.get(), Qt::Key_R, Qt::AltModifier);
    QTest::qWait(300);
    for (int i = 0; i < 100 && !opened; ++i) QTest::qWait(20);
    EXPECT_TRUE(opened);
}

TEST_F(ReportsDialog, DialogAltLettersAreDistinct) {
    qz2::frmReports dialog{QString()};
    QStringList letters = altLetters(&dialog);
    const int all = static_cast<int>(letters.size());
    letters.removeDuplicates();
    EXPECT_EQ(letters.size(), all) << letters.join(' ').toStdString();
}

TEST_F(ReportsDialog, MusterOfADepartmentSavedAsCsv) {
    const QString file = dir.filePath("stores.csv");
    QString status;
    whenModalNamed("frmReports", [&](QWidget* w) {
        auto* d = static_cast<qz2::frmReports*>(w);
        EXPECT_TRUE(d->optMuster->isChecked());  // nothing selected in the register: the muster
        d->dtpFrom->setDate(qz2test::kMonthFrom);
        d->dtpTo->setDate(qz2test::kMonthTo);
        d->cboDepartment->setCurrentIndex(d->cboDepartment->findText("Stores"));
        d->cboFormat->setCurrentIndex(d->cboFormat->findText("CSV"));
        d->txtFile->setText(dir.filePath("stores"));  // the format's suffix is added
        d->cmdSave->click();
        status = d->lblStatus->text();
        d->cmdClose->click();
    });
    form->flexMaster->setCurrentIndex(QModelIndex());
    reportsButton()->click();
    EXPECT_EQ(status, "Saved stores.csv");
    QFile f(file);
    ASSERT_TRUE(f.open(QIODevice::ReadOnly));
    const QByteArray text = f.readAll();
    EXPECT_TRUE(text.startsWith("Emp No,Name,Department,26 Mon,"));
    EXPECT_TRUE(text.contains(
        "\r\nE05,Eli Marsh,Stores,,,,,A,,,0,0,1,0,00:00,08:00,00:00,00:00,0,ATT6\r\n"));
    EXPECT_EQ(text.count("\r\n"), 3);  // heading, Asha, Eli
}

TEST_F(ReportsDialog, SheetOfTheSelectedEntryInThePreview) {
    selectEntry("ATT2");
    int pages = -1;
    QString entryShown;
    bool sheetChosen = false;
    whenModalNamed("frmReports", [&](QWidget* w) {
        auto* d = static_cast<qz2::frmReports*>(w);
        sheetChosen = d->optSheet->isChecked();
        entryShown = d->txtEntryNo->text();
        whenModalNamed("ppvReport", [&](QWidget* p) {
            auto* widget = p->findChild<QPrintPreviewWidget*>();
            for (int i = 0; i < 100 && widget && widget->pageCount() == 0; ++i) QTest::qWait(20);
            pages = widget ? widget->pageCount() : -2;
            const QByteArray shots = qgetenv("QZ2_SCREENSHOT_DIR");
            if (!shots.isEmpty())
                p->grab().save(QString::fromLocal8Bit(shots) + "/report-preview.png");
            static_cast<QDialog*>(p)->reject();
            d->cmdClose->click();
        });
        d->cmdPreview->click();
    });
    reportsButton()->click();
    EXPECT_TRUE(sheetChosen);
    EXPECT_EQ(entryShown, "ATT2");
    EXPECT_EQ(pages, 1);
}

TEST_F(ReportsDialog, RefusedPeriodIsExplainedAndNothingIsWritten) {
    qz2::msgbox_testing::clear();
    qz2::msgbox_testing::setAutoAnswer(true);
    const QString file = dir.filePath("long.pdf");
    whenModalNamed("frmReports", [&](QWidget* w) {
        auto* d = static_cast<qz2::frmReports*>(w);
        d->optPayroll->setChecked(true);
        d->dtpFrom->setDate(QDate(2024, 1, 1));
        d->dtpTo->setDate(QDate(2024, 3, 3));
        d->txtFile->setText(file);
        d->cmdSave->click();
        d->cmdClose->click();
    });
    reportsButton()->click();
    ASSERT_EQ(qz2::msgbox_testing::shown().size(), 1);
    EXPECT_EQ(qz2::msgbox_testing::shown()[0].text,
              "A report covers at most 62 days; this period has 63.");
    EXPECT_EQ(qz2::msgbox_testing::shown()[0].title, qz2::gstrMsgboxTitle);
    EXPECT_FALSE(QFile::exists(file));
}

TEST_F(ReportsDialog, Screenshot) {
    const QByteArray shots = qgetenv("QZ2_SCREENSHOT_DIR");
    if (shots.isEmpty())
        GTEST_SKIP() << "set QZ2_SCREENSHOT_DIR to draw the register and the dialog";
    form->grab().save(QString::fromLocal8Bit(shots) + "/register-reports.png");
    qz2::frmReports dialog(QStringLiteral("ATT2"));
    dialog.show();
    QApplication::processEvents();
    EXPECT_TRUE(dialog.grab().save(QString::fromLocal8Bit(shots) + "/report-dialog.png"));
}
