#pragma once
// Asks the reason for cancelling the register's current entry and marks it cancelled.

#include <QDialog>
#include <optional>

class QLineEdit;
class QPushButton;

namespace qz2 {

class frmCancel : public QDialog {
    Q_OBJECT
public:
    explicit frmCancel(QWidget* parent = nullptr);
    void Form_Load();
    void cmdOK_Click();
    // True once the update has run.
    bool cancelled() const { return m_done; }

    QLineEdit* txtcanreason;
    QPushButton* cmdOK;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool m_done = false;
};

// Whether the database holds the entry of the current company as cancelled; no value when
// there is no such entry. Database errors propagate.
std::optional<bool> fnIsEntryCancelled(const QString& attendanceId);
// What the clerk is told on Delete of an entry that is already cancelled.
QString alreadyCancelledText(const QString& attendanceId);
// What the reason dialog says when the entry it was to cancel is no longer stored under its
// identifier (saved again by another clerk, or removed) and nothing was cancelled.
QString entryGoneText(const QString& attendanceId);

}  // namespace qz2
