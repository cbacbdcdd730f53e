#include "register/frmReports.h"

#include <QApplication>
#include <QComboBox>
#include <QDateEdit>
#include <QFileDialog>
#include <QFileInfo>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPrintPreviewDialog>
#include <QPrinter>
#include <QProgressDialog>
#include <QPushButton>
#include <QRadioButton>
#include <QSqlQuery>
#include <QVBoxLayout>
#include <algorithm>

#include "db/Database.h"
#include "reports/Report.h"
#include "reports/ReportSql.h"
#include "reports/ReportWriters.h"
#include "shared/BasAttendence.h"
#include "shared/MsgBox.h"

namespace qz2 {

frmReports::frmReports(const QString& entryNo, QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("frmReports"));
    setWindowTitle(gstrMsgboxTitle.isEmpty() ? tr("Reports") : gstrMsgboxTitle + tr(" - Reports"));

    auto* kind = new QGroupBox(tr("Report"), this);
    optMuster = new QRadioButton(tr("&Monthly muster"), kind);
    optMuster->setObjectName(QStringLiteral("optMuster"));
    optPayroll = new QRadioButton(tr("&Payroll summary"), kind);
    optPayroll->setObjectName(QStringLiteral("optPayroll"));
    optSheet = new QRadioButton(tr("Entry s&heet"), kind);
    optSheet->setObjectName(QStringLiteral("optSheet"));
    auto* kindLayout = new QHBoxLayout(kind);
    kindLayout->addWidget(optMuster);
    kindLayout->addWidget(optPayroll);
    kindLayout->addWidget(optSheet);

    // The process date's month by default.
    const QDate today = businessDateOrToday();
    dtpFrom = new QDateEdit(QDate(today.year(), today.month(), 1), this);
    dtpFrom->setObjectName(QStringLiteral("dtpFrom"));
    dtpTo = new QDateEdit(QDate(today.year(), today.month(), today.daysInMonth()), this);
    dtpTo->setObjectName(QStringLiteral("dtpTo"));
    for (QDateEdit* d : {dtpFrom, dtpTo}) {
        d->setDisplayFormat(QStringLiteral("dd/MM/yyyy"));
        d->setCalendarPopup(true);
    }
    cboDepartment = new QComboBox(this);
    cboDepartment->setObjectName(QStringLiteral("cboDepartment"));
    cboDepartment->addItem(tr("(all departments)"));
    try {
        db::forEachRow(gadocon, reports::sql::departmentsQuery(gintCompanyID),
                       [this](const QSqlQuery& q) {
                           cboDepartment->addItem(q.value(1).toString(), q.value(0));
                       });
    } catch (const std::exception&) {
        // Without the list every department is reported; the report itself says if the
        // database cannot be read.
    }
    txtEntryNo = new QLineEdit(entryNo, this);
    txtEntryNo->setObjectName(QStringLiteral("txtEntryNo"));
    cboFormat = new QComboBox(this);
    cboFormat->setObjectName(QStringLiteral("cboFormat"));
    cboFormat->addItem(QStringLiteral("PDF"), QStringLiteral("pdf"));
    cboFormat->addItem(QStringLiteral("XLSX"), QStringLiteral("xlsx"));
    cboFormat->addItem(QStringLiteral("CSV"), QStringLiteral("csv"));
    txtFile = new QLineEdit(this);
    txtFile->setObjectName(QStringLiteral("txtFile"));
    txtFile->setMinimumWidth(280);
    cmdBrowse = new QPushButton(tr("&Browse..."), this);
    cmdBrowse->setObjectName(QStringLiteral("cmdBrowse"));
    auto* fileRow = new QHBoxLayout;
    fileRow->addWidget(txtFile, 1);
    fileRow->addWidget(cmdBrowse);

    auto* form = new QFormLayout;
    auto label = [this](const QString& text, QWidget* buddy) {
        auto* l = new QLabel(text, this);
        l->setBuddy(buddy);
        return l;
    };
    form->addRow(label(tr("F&rom:"), dtpFrom), dtpFrom);
    form->addRow(label(tr("&To:"), dtpTo), dtpTo);
    form->addRow(label(tr("&Department:"), cboDepartment), cboDepartment);
    form->addRow(label(tr("&Entry No:"), txtEntryNo), txtEntryNo);
    form->addRow(label(tr("F&ormat:"), cboFormat), cboFormat);
    form->addRow(label(tr("F&ile:"), txtFile), fileRow);

    cmdPreview = new QPushButton(tr("Pre&view..."), this);
    cmdPreview->setObjectName(QStringLiteral("cmdPreview"));
    cmdSave = new QPushButton(tr("&Save"), this);
    cmdSave->setObjectName(QStringLiteral("cmdSave"));
    cmdClose = new QPushButton(tr("&Close"), this);
    cmdClose->setObjectName(QStringLiteral("cmdClose"));
    for (QPushButton* b : {cmdBrowse, cmdPreview, cmdSave, cmdClose}) b->setAutoDefault(true);
    lblStatus = new QLabel(this);
    lblStatus->setObjectName(QStringLiteral("lblStatus"));
    lblStatus->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(lblStatus, 1);
    buttons->addWidget(cmdPreview);
    buttons->addWidget(cmdSave);
    buttons->addWidget(cmdClose);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(kind);
    layout->addLayout(form);
    layout->addLayout(buttons);

    connect(optMuster, &QRadioButton::toggled, this, &frmReports::fnEnableChoices);
    connect(optPayroll, &QRadioButton::toggled, this, &frmReports::fnEnableChoices);
    connect(optSheet, &QRadioButton::toggled, this, &frmReports::fnEnableChoices);
    connect(cmdPreview, &QPushButton::clicked, this, &frmReports::cmdPreview_Click);
    connect(cmdSave, &QPushButton::clicked, this, &frmReports::cmdSave_Click);
    connect(cmdBrowse, &QPushButton::clicked, this, &frmReports::cmdBrowse_Click);
    connect(cmdClose, &QPushButton::clicked, this, &QDialog::reject);
    (entryNo.isEmpty() ? optMuster : optSheet)->setChecked(true);
    fnEnableChoices();
}

void frmReports::fnEnableChoices() {
    const bool sheet = optSheet->isChecked();
    dtpFrom->setEnabled(!sheet);
    dtpTo->setEnabled(!sheet);
    cboDepartment->setEnabled(!sheet);
    txtEntryNo->setEnabled(sheet);
}

std::optional<reports::ReportTable> frmReports::fnBuildReport() {
    reports::Request r;
    r.kind = optSheet->isChecked()
                 ? reports::Kind::Sheet
                 : (optPayroll->isChecked() ? reports::Kind::Payroll : reports::Kind::Muster);
    r.company = gintCompanyID;
    r.from = dtpFrom->date();
    r.to = dtpTo->date();
    if (cboDepartment->currentIndex() > 0) r.department = cboDepartment->currentData().toInt();
    r.entryNo = txtEntryNo->text();
    r.companyTitle = gstrMsgboxTitle;
    QApplication::setOverrideCursor(Qt::WaitCursor);
    try {
        reports::ReportTable table = reports::makeReport(gadocon, r);
        QApplication::restoreOverrideCursor();
        return table;
    } catch (const reports::ReportError& e) {
        QApplication::restoreOverrideCursor();
        MsgBox(e.message(), MsgButtons::Ok, MsgIcon::Exclamation);
    } catch (const db::DbError& e) {
        QApplication::restoreOverrideCursor();
        MsgBox(e.message(), MsgButtons::Ok, MsgIcon::Critical);
    }
    return std::nullopt;
}

reports::Progress frmReports::fnProgress(const QString& what) {
    // Shown only when the report takes a while; Cancel stops it.
    auto* dialog = new QProgressDialog(what, tr("Cancel"), 0, 0, this);
    dialog->setObjectName(QStringLiteral("prgReport"));
    dialog->setWindowModality(Qt::WindowModal);
    dialog->setMinimumDuration(700);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    QPointer<QProgressDialog> guard(dialog);
    return [guard](int done, int total) {
        if (!guard) return true;
        guard->setMaximum(total);
        guard->setValue(std::min(done, total));
        if (done >= total) {
            guard->close();
            return true;
        }
        QApplication::processEvents();
        return !guard->wasCanceled();
    };
}

void frmReports::cmdPreview_Click() {
    const std::optional<reports::ReportTable> table = fnBuildReport();
    if (!table) return;
    QPrintPreviewDialog preview(this);
    preview.setObjectName(QStringLiteral("ppvReport"));
    preview.setWindowTitle(table->title);
    connect(&preview, &QPrintPreviewDialog::paintRequested, this, [&](QPrinter* printer) {
        try {
            reports::paintReport(*table, *printer, printer->resolution(),
                                 fnProgress(tr("Drawing the pages...")));
        } catch (const reports::ReportError& e) {
            lblStatus->setText(e.message());
        }
    });
    preview.resize(1000, 760);
    preview.exec();
}

void frmReports::cmdBrowse_Click() {
    const QString suffix = cboFormat->currentData().toString();
    const QString file = QFileDialog::getSaveFileName(
        this, tr("Save the report"), txtFile->text(),
        cboFormat->currentText() + QStringLiteral(" (*.") + suffix + QLatin1Char(')'));
    if (!file.isEmpty()) txtFile->setText(file);
}

void frmReports::cmdSave_Click() {
    QString file = txtFile->text().trimmed();
    if (file.isEmpty()) {
        cmdBrowse_Click();
        file = txtFile->text().trimmed();
        if (file.isEmpty()) return;
    }
    const QString suffix = cboFormat->currentData().toString();
    if (QFileInfo(file).suffix().compare(suffix, Qt::CaseInsensitive) != 0)
        file += QLatin1Char('.') + suffix;
    const std::optional<reports::ReportTable> table = fnBuildReport();
    if (!table) return;
    try {
        reports::writeReport(*table, *reports::formatFromName(suffix), file,
                             fnProgress(tr("Writing the report...")));
        lblStatus->setText(tr("Saved %1").arg(QFileInfo(file).fileName()));
    } catch (const reports::ReportCancelled&) {
        lblStatus->setText(tr("Cancelled; nothing was saved."));
    } catch (const reports::ReportError& e) {
        MsgBox(e.message(), MsgButtons::Ok, MsgIcon::Exclamation);
    }
}

void fnShowReports(QWidget* parent, const QString& entryNo) {
    frmReports dialog(entryNo, parent);
    dialog.exec();
}

}  // namespace qz2
