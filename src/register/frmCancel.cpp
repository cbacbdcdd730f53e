#include "register/frmCancel.h"

#include <QDialogButtonBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "db/Database.h"
#include "history/HistoryStore.h"
#include "register/RegisterSql.h"
#include "rules/Saving.h"
#include "shared/BasAttendence.h"
#include "shared/FlexGrid.h"
#include "shared/MsgBox.h"
#include "shared/SharedServices.h"

namespace qz2 {

std::optional<bool> fnIsEntryCancelled(const QString& attendanceId) {
    db::Recordset rs =
        db::openRecordset(gadocon, sql::cancelledFlagQuery(attendanceId, gintCompanyID));
    if (rs.eof()) return std::nullopt;
    return db::isOn(rs.field(0));
}

QString alreadyCancelledText(const QString& attendanceId) {
    return QStringLiteral(
               "Entry %1 is already cancelled. Its reason for deletion is kept as it was recorded.")
        .arg(attendanceId);
}

QString entryGoneText(const QString& attendanceId) {
    return QStringLiteral(
               "Entry %1 was changed or removed by another clerk. Nothing was cancelled: "
               "refresh the list and try again.")
        .arg(attendanceId);
}

frmCancel::frmCancel(QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("frmCancel"));
    auto* layout = new QVBoxLayout(this);
    auto* label = new QLabel(tr("&Reason:"), this);
    txtcanreason = new QLineEdit(this);
    txtcanreason->setObjectName(QStringLiteral("txtcanreason"));
    txtcanreason->setMaxLength(200);
    txtcanreason->setMinimumWidth(360);
    label->setBuddy(txtcanreason);
    cmdOK = new QPushButton(tr("&OK"), this);
    cmdOK->setObjectName(QStringLiteral("cmdOK"));
    cmdOK->setAutoDefault(true);  // Enter on the focused OK confirms
    auto* row = new QHBoxLayout;
    row->addStretch();
    row->addWidget(cmdOK);
    layout->addWidget(label);
    layout->addWidget(txtcanreason);
    layout->addLayout(row);
    txtcanreason->installEventFilter(this);
    connect(cmdOK, &QPushButton::clicked, this, &frmCancel::cmdOK_Click);
    Form_Load();
}

void frmCancel::Form_Load() {
    setWindowTitle(QStringLiteral("Reason For Deletion"));
}

bool frmCancel::eventFilter(QObject* watched, QEvent* event) {
    if (watched == txtcanreason && event->type() == QEvent::KeyPress) {
        auto* key = static_cast<QKeyEvent*>(event);
        // Quotes cannot be typed: the reason goes between quotes in the statement.
        if (key->text() == QLatin1String("\"") || key->text() == QLatin1String("'")) return true;
        if (key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter) {
            // On to OK, and OK is pressed: one Enter confirms the reason. A reason refused
            // there leaves the clerk typing it again.
            cmdOK->setFocus();
            cmdOK->click();
            if (!m_done && isVisible()) txtcanreason->setFocus();
            return true;
        }
    }
    return QDialog::eventFilter(watched, event);
}

void frmCancel::cmdOK_Click() {
    // Control characters pasted into the reason would cut the statement short.
    const QString reason = rules::cleanedText(txtcanreason->text());
    if (reason.isEmpty()) {
        MsgBox(QStringLiteral("Enter reason for deletion"));
        return;
    }
    try {
        // The reads, the update and the history row are one unit: the flag read cannot go
        // stale before the update, and a cancellation is never stored without its history.
        db::Transaction transaction(gadocon, /*immediate=*/true);
        db::Recordset user =
            db::openRecordset(gadocon, sql::cancelUserNameQuery(gintCompanyID, gintUserID));
        QString remarks;
        QString userName;
        if (!user.eof()) {
            userName = user.field(QStringLiteral("username")).toString().trimmed();
            remarks = userName + QLatin1Char(':') + reason;
        }
        FlexGrid* grid = registerGrid();
        const QString id = grid ? grid->TextMatrix(grid->Row(), 0) : QString();
        if (const std::optional<QString> lock =
                sql::cancelLockQuery(db::Dialect::of(gadocon), id, gintCompanyID))
            db::openRecordset(gadocon, *lock);
        db::Recordset emp = db::openRecordset(gadocon, sql::cancelEmployeeQuery(id, gintCompanyID));
        (void)emp.field(QStringLiteral("eaEmpID"));  // no such entry: raises, nothing is written
        // Someone may have cancelled the entry while the reason was being typed: its stored
        // reason stays, and this one is not written over it.
        if (fnIsEntryCancelled(id).value_or(false)) {
            transaction.rollback();
            MsgBox(alreadyCancelledText(id), MsgButtons::Ok, MsgIcon::Information);
            reject();
            return;
        }
        // The entry may have been saved again under another identifier, or removed, since it
        // was read: an update that changed nothing cancelled nothing, and the clerk is told.
        history::VersionRecorder version =
            history::VersionRecorder::begin(gadocon, gintCompanyID, id.toInt());
        if (db::execute(gadocon, sql::cancelUpdate(remarks, id, gintCompanyID)) == 0) {
            transaction.rollback();
            MsgBox(entryGoneText(id), MsgButtons::Ok, MsgIcon::Information);
            reject();
            return;
        }
        version.record(history::Action::Cancelled, id.toInt(), gintUserID, userName);
        transaction.commit();
        m_done = true;
        accept();
    } catch (const std::exception& e) {
        // Trapped: the dialog stays open and the entry is not cancelled. A failed statement
        // is reported.
        if (const std::optional<QString> failed = db::failedStatementMessage(e))
            MsgBox(*failed, MsgButtons::Ok, MsgIcon::Information);
    }
}

}  // namespace qz2
