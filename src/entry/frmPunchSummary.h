#pragma once
// What an import of punches did to the entry, for the clerk to read before saving, with
// the working days that have no punch offered as absent days (none ticked: a day without a
// punch is never marked absent by itself).

#include <QDate>
#include <QDialog>
#include <QVector>
#include <functional>

class QListWidget;
class QPlainTextEdit;

namespace qz2 {

class frmPunchSummary : public QDialog {
    Q_OBJECT
public:
    frmPunchSummary(const QStringList& summary, const QVector<QDate>& offeredAbsent,
                    QWidget* parent = nullptr);

    // The offered days the clerk ticked.
    QVector<QDate> fnTickedDays() const;
    // Shows the dialog modally; the tests' answer instead when one is set.
    int run();
    // Tests answer the dialog here instead of a clerk (tick days, accept or reject).
    static void setTestAnswer(std::function<void(frmPunchSummary&)> answer);

    QPlainTextEdit* txtSummary;
    QListWidget* lstNoPunchDays;
};

}  // namespace qz2
