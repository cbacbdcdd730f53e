#pragma once
// Asks the reason for cancelling the register's current entry and marks it cancelled.

#include <QDialog>

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

}  // namespace qz2
