#include <QZ2EmpDailyAtten/clsAttendance.h>

#include <memory>

#include "register/FrmMaster.h"
#include "shared/BasAttendence.h"
#include "shared/SharedServices.h"

clsAttendance::clsAttendance(QObject* parent) : QObject(parent) {}
clsAttendance::~clsAttendance() = default;

QSqlDatabase clsAttendance::adocon() {
    if (!m_adoconSet) {
        // A fresh connection handle that is not open: the register's first query reports it.
        m_adocon = QSqlDatabase();
        m_adoconSet = true;
    }
    return m_adocon;
}

void clsAttendance::setAdocon(const QSqlDatabase& connection) {
    m_adocon = connection;
    m_adoconSet = true;
}

void clsAttendance::Show() {
    qz2::fnSurviveFileSizeLimit();
    qz2::gintUserID = m_userId;
    qz2::gintCompanyID = m_companyId;
    qz2::gstrMsgboxTitle = m_title;
    qz2::gadocon = adocon();
    qz2::gdtProcessDate = m_processDate;
    if (qz2::FrmMaster* open = qz2::FrmMaster::instance(); open && open->isVisible()) {
        open->raise();  // the register is already running: one at a time
        return;
    }
    // Closing the register unloads it, so every Show() loads a fresh one.
    auto form = std::make_unique<qz2::FrmMaster>();
    form->Form_Load();
    form->exec();
}
