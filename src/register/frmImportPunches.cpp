#include "register/frmImportPunches.h"

#include <QApplication>
#include <QCheckBox>
#include <QDateEdit>
#include <QFileDialog>
#include <QFontDatabase>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QProgressDialog>
#include <QPushButton>
#include <QVBoxLayout>

#include "db/Database.h"
#include "entry/EntryRules.h"
#include "punches/CompanyImport.h"
#include "punches/PunchFile.h"
#include "shared/BasAttendence.h"
#include "shared/MsgBox.h"

namespace qz2 {

frmImportPunches::frmImportPunches(QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("frmImportPunches"));
    setWindowTitle(tr("Import punches for the company"));
    txtFile = new QLineEdit(this);
    txtFile->setObjectName(QStringLiteral("txtFile"));
    txtFile->setMinimumWidth(380);
    cmdBrowse = new QPushButton(tr("&Browse..."), this);
    cmdBrowse->setObjectName(QStringLiteral("cmdBrowse"));
    cmdBrowse->setAutoDefault(false);
    const QDate business = businessDateOrToday();
    // The usual run: the month the business date is in, as the entries' next period.
    const QDate first(business.year(), business.month(), 1);
    dtpFrom = new QDateEdit(first, this);
    dtpFrom->setObjectName(QStringLiteral("dtpFrom"));
    dtpTo = new QDateEdit(entry::proposedPeriodEnd(first), this);
    dtpTo->setObjectName(QStringLiteral("dtpTo"));
    for (QDateEdit* d : {dtpFrom, dtpTo}) {
        d->setDisplayFormat(QStringLiteral("dd/MM/yyyy"));
        d->setCalendarPopup(true);
    }
    // Moving the first day moves the last with it, a period's length apart.
    connect(dtpFrom, &QDateEdit::dateChanged, this,
            [this](QDate d) { dtpTo->setDate(entry::proposedPeriodEnd(d)); });
    chkDryRun = new QCheckBox(tr("&Try without saving (every check and save, then undone)"), this);
    chkDryRun->setObjectName(QStringLiteral("chkDryRun"));
    cmdImport = new QPushButton(tr("&Import"), this);
    cmdImport->setObjectName(QStringLiteral("cmdImport"));
    cmdImport->setDefault(true);
    cmdClose = new QPushButton(tr("&Close"), this);
    cmdClose->setObjectName(QStringLiteral("cmdClose"));
    cmdClose->setAutoDefault(false);
    txtSummary = new QPlainTextEdit(this);
    txtSummary->setObjectName(QStringLiteral("txtSummary"));
    txtSummary->setReadOnly(true);
    txtSummary->setTabChangesFocus(true);
    txtSummary->setLineWrapMode(QPlainTextEdit::NoWrap);
    txtSummary->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    txtSummary->setPlaceholderText(
        tr("Each active employee with punches in the file gets the entry of the period that "
           "the entry form would build, saved one at a time. An employee whose next period is "
           "another, who has an entry in it, whose settings are missing or who has a flagged "
           "day is skipped with the reason, and nothing of theirs is written."));

    auto* fileRow = new QHBoxLayout;
    fileRow->addWidget(txtFile, 1);
    fileRow->addWidget(cmdBrowse);
    auto* periodRow = new QHBoxLayout;
    periodRow->addWidget(dtpFrom);
    auto* toLabel = new QLabel(tr("t&o"), this);
    toLabel->setBuddy(dtpTo);
    periodRow->addWidget(toLabel);
    periodRow->addWidget(dtpTo);
    periodRow->addStretch(1);
    auto* form = new QFormLayout;
    auto* fileLabel = new QLabel(tr("Punch &file:"), this);
    fileLabel->setBuddy(txtFile);
    auto* fromLabel = new QLabel(tr("&Period:"), this);
    fromLabel->setBuddy(dtpFrom);
    form->addRow(fileLabel, fileRow);
    form->addRow(fromLabel, periodRow);
    form->addRow(QString(), chkDryRun);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(cmdImport);
    buttons->addWidget(cmdClose);
    auto* summaryLabel = new QLabel(tr("&Summary:"), this);
    summaryLabel->setBuddy(txtSummary);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addLayout(buttons);
    layout->addWidget(summaryLabel);
    layout->addWidget(txtSummary, 1);
    resize(760, 480);

    connect(cmdBrowse, &QPushButton::clicked, this, [this] {
        const QString path = QFileDialog::getOpenFileName(
            this, tr("Import punches"), txtFile->text(),
            tr("Punch files (*.txt *.dat *.log *.csv);;All files (*)"));
        if (!path.isEmpty()) txtFile->setText(path);
        txtFile->setFocus();
    });
    connect(cmdImport, &QPushButton::clicked, this, [this] { cmdImport_Click(); });
    connect(cmdClose, &QPushButton::clicked, this, &QDialog::accept);
    setTabOrder(txtFile, cmdBrowse);
    setTabOrder(cmdBrowse, dtpFrom);
    setTabOrder(dtpFrom, dtpTo);
    setTabOrder(dtpTo, chkDryRun);
    setTabOrder(chkDryRun, cmdImport);
    setTabOrder(cmdImport, cmdClose);
    setTabOrder(cmdClose, txtSummary);
    txtFile->setFocus();
}

bool frmImportPunches::cmdImport_Click() {
    const QString path = txtFile->text().trimmed();
    if (path.isEmpty()) {
        MsgBox(tr("Choose the punch file first."), MsgButtons::Ok, MsgIcon::Information);
        txtFile->setFocus();
        return false;
    }
    punches::CompanyImportRequest request;
    request.company = gintCompanyID;
    request.user = gintUserID;
    request.interfaceId = screenInterfaceId();
    request.from = dtpFrom->date();
    request.to = dtpTo->date();
    request.businessDate = businessDateOrToday();
    request.dryRun = chkDryRun->isChecked();
    if (const std::optional<QString> problem = punches::requestProblem(request)) {
        QString text = *problem;
        text[0] = text[0].toUpper();
        MsgBox(text + QLatin1Char('.'), MsgButtons::Ok, MsgIcon::Information);
        dtpTo->setFocus();
        return false;
    }

    punches::ReadResult read;
    {
        const WaitCursor wait;
        read = punches::readPunchFile(path);
    }
    if (!read.ok()) {
        MsgBox(punches::refusalText(read).join(QLatin1Char('\n')), MsgButtons::Ok,
               MsgIcon::Information);
        txtFile->setFocus();
        return false;
    }

    QProgressDialog progress(tr("Importing punches..."), tr("&Stop after this employee"), 0, 1,
                             this);
    progress.setObjectName(QStringLiteral("dlgImportProgress"));
    progress.setWindowTitle(windowTitle());
    progress.setWindowModality(Qt::WindowModal);
    progress.setMinimumDuration(300);
    progress.setAutoReset(false);
    punches::CompanyImportResult result;
    try {
        result = punches::importCompanyPunches(
            gadocon, std::move(read.punches), request,
            [&progress](int done, int total, const QString& who) {
                progress.setMaximum(std::max(total, 1));
                progress.setValue(done);
                progress.setLabelText(
                    done < total ? tr("Employee %1 of %2: %3").arg(done + 1).arg(total).arg(who)
                                 : tr("Done."));
                QApplication::processEvents();
                return !progress.wasCanceled();
            });
    } catch (const std::exception& e) {
        progress.close();
        MsgBox(db::errorMessage(e), MsgButtons::Ok, MsgIcon::Information);
        return false;
    }
    progress.close();
    QStringList summary = punches::companyImportSummary(result, request.dryRun);
    summary << punches::unreadLinesText(read);
    txtSummary->setPlainText(summary.join(QLatin1Char('\n')));
    if (!request.dryRun && result.count(punches::Outcome::Saved) > 0) m_savedAny = true;
    txtSummary->setFocus();
    return true;
}

bool fnShowImportPunches(QWidget* parent) {
    frmImportPunches dialog(parent);
    dialog.exec();
    return dialog.savedAny();
}

}  // namespace qz2
