#include "entry/frmPunchSummary.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "shared/BasAttendence.h"
#include "shared/TimeValue.h"

namespace qz2 {

namespace {
std::function<void(frmPunchSummary&)> g_answer;
}

frmPunchSummary::frmPunchSummary(const QStringList& summary, const QVector<QDate>& offeredAbsent,
                                 QWidget* parent)
    : QDialog(parent) {
    setObjectName(QStringLiteral("frmPunchSummary"));
    setWindowTitle(gstrMsgboxTitle.isEmpty() ? tr("Punches imported") : gstrMsgboxTitle);
    txtSummary = new QPlainTextEdit(summary.join(QLatin1Char('\n')), this);
    txtSummary->setObjectName(QStringLiteral("txtSummary"));
    txtSummary->setReadOnly(true);
    txtSummary->setTabChangesFocus(true);
    txtSummary->setMinimumSize(560, 160);
    lstNoPunchDays = new QListWidget(this);
    lstNoPunchDays->setObjectName(QStringLiteral("lstNoPunchDays"));
    for (QDate d : offeredAbsent) {
        auto* item =
            new QListWidgetItem(dateText(d) + QLatin1Char(' ') + shortDayName(d), lstNoPunchDays);
        item->setData(Qt::UserRole, d);
        item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
        item->setCheckState(Qt::Unchecked);
    }
    auto* listLabel =
        new QLabel(offeredAbsent.isEmpty() ? tr("Every working day has punches.")
                                           : tr("&Working days without any punch: tick those to "
                                                "mark absent (Space ticks), then OK; "
                                                "Esc keeps them as laid out"),
                   this);
    listLabel->setBuddy(lstNoPunchDays);
    lstNoPunchDays->setVisible(!offeredAbsent.isEmpty());
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok, this);
    buttons->button(QDialogButtonBox::Ok)->setText(tr("&OK"));
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(
        new QLabel(tr("Nothing is saved until OK on the entry. What the punches did:"), this));
    layout->addWidget(txtSummary, 2);
    layout->addWidget(listLabel);
    layout->addWidget(lstNoPunchDays, 1);
    layout->addWidget(buttons);
    (offeredAbsent.isEmpty() ? static_cast<QWidget*>(buttons->button(QDialogButtonBox::Ok))
                             : lstNoPunchDays)
        ->setFocus();
    if (!offeredAbsent.isEmpty()) lstNoPunchDays->setCurrentRow(0);
}

QVector<QDate> frmPunchSummary::fnTickedDays() const {
    QVector<QDate> days;
    for (int i = 0; i < lstNoPunchDays->count(); ++i)
        if (lstNoPunchDays->item(i)->checkState() == Qt::Checked)
            days.append(lstNoPunchDays->item(i)->data(Qt::UserRole).toDate());
    return days;
}

int frmPunchSummary::run() {
    if (g_answer) {
        g_answer(*this);
        return result();
    }
    return exec();
}

void frmPunchSummary::setTestAnswer(std::function<void(frmPunchSummary&)> answer) {
    g_answer = std::move(answer);
}

}  // namespace qz2
