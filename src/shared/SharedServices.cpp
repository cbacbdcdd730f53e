#include "shared/SharedServices.h"

#include <csignal>

#include <dlfcn.h>

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <QFileInfo>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPointer>
#include <QRadioButton>
#include <QTextStream>

#include "commonmodule/CommonModule.h"
#include "db/Database.h"
#include "register/RegisterSql.h"
#include "shared/BasAttendence.h"
#include "shared/FlexGrid.h"
#include "shared/MsgBox.h"
#include "shared/TimeValue.h"

namespace qz2 {

namespace {
QPointer<FlexGrid> g_registerGrid;
QString g_logFolder;
std::function<QDateTime()> g_now = [] { return QDateTime::currentDateTime(); };

QString componentFile() {
    Dl_info info{};
    if (dladdr(reinterpret_cast<void*>(&fnWriteErrorLog), &info) && info.dli_fname)
        return QFile::decodeName(info.dli_fname);
    return QStringLiteral("QZ2EmpDailyAtten");
}
}  // namespace

FlexGrid* registerGrid() { return g_registerGrid.data(); }
void setRegisterGrid(FlexGrid* grid) { g_registerGrid = grid; }

void fnStoreControlValues(QWidget* form) {
    if (!form) return;
    for (QWidget* w : form->findChildren<QWidget*>()) {
        if (auto* t = qobject_cast<QLineEdit*>(w))
            t->setProperty("Tag", t->text());
        else if (auto* c = qobject_cast<QComboBox*>(w))
            c->setProperty("Tag", c->currentText());
        else if (auto* k = qobject_cast<QCheckBox*>(w))
            k->setProperty("Tag", k->checkState() == Qt::Checked ? 1 : k->checkState() == Qt::PartiallyChecked ? 2 : 0);
        else if (auto* p = qobject_cast<QPlainTextEdit*>(w))
            p->setProperty("Tag", p->toPlainText());
        else if (auto* o = qobject_cast<QRadioButton*>(w))
            o->setProperty("Tag", o->isChecked());
    }
}

QString registerCellText(const QVariant& v);  // defined with the register's population

bool fnRefreshRegisterRow(const QString& condition, const QString&) {
    FlexGrid* grid = registerGrid();
    if (!grid) return false;
    try {
        const int row = grid->Row();
        db::Recordset rs = db::openRecordset(gadocon, sql::refreshQuery(gstrMasterQuery, condition));
        if (rs.eof()) return false;
        QStringList cells;
        for (int c = 0; c < rs.fieldCount(); ++c) cells << registerCellText(rs.field(c));
        if (gstrEntryMode == QLatin1String("E")) {
            if (row < 1) return false;
            for (int c = 0; c < cells.size() && c < grid->Cols(); ++c) grid->setTextMatrix(row, c, cells[c]);
        } else {
            grid->AddItem(cells);
            grid->setCurrentCell(grid->Rows() - 1, 0);
            grid->scrollTo(grid->currentIndex());
        }
        return true;
    } catch (const std::exception&) {
        // A refresh that fails leaves the list as it was; the entry itself is saved.
        return false;
    }
}

bool fnIsMonthlyEntryDone(const QString& mode) {
    FlexGrid* grid = registerGrid();
    const QString id = grid ? grid->TextMatrix(grid->Row(), 0) : QString();
    const QVariant count = db::scalar(gadocon, sql::monthlyLockQuery(gintCompanyID, id));
    if (count.toInt() > 0) {
        MsgBox(mode == QLatin1String("E") ? QStringLiteral("Monthly entry done. Can't edit.")
                                          : QStringLiteral("Monthly entry done. Can't delete."),
               MsgButtons::Ok, MsgIcon::Information);
        return true;
    }
    return false;
}

QString moduleName() {
    QString name = QFileInfo(componentFile()).baseName();  // "libQZ2EmpDailyAtten" of "libQZ2EmpDailyAtten.so.0"
    if (name.startsWith(QLatin1String("lib"))) name.remove(0, 3);
    return name;
}

QString errorLogPath() {
    const QString folder = g_logFolder.isEmpty() ? QFileInfo(componentFile()).absolutePath() : g_logFolder;
    return folder + QLatin1Char('/') + moduleName() + QStringLiteral("Error.log");
}

void setErrorLogFolder(const QString& folder) { g_logFolder = folder; }
void setClock(std::function<QDateTime()> now) {
    g_now = now ? std::move(now) : [] { return QDateTime::currentDateTime(); };
}

QDateTime fnNow() { return g_now(); }

void fnWriteErrorLog(const QString& formName, qint16 userId, const QString& procName, const QString& entryMode,
                     qint32 errNumber, const QString& errSource, const QString& errDescription, bool showMessage) {
    auto helper = commonmodule::CreateObject(QStringLiteral("CommonModule.clscommondb"));
    auto* dbHelper = static_cast<commonmodule::clsCommonDB*>(helper.get());
    dbHelper->adocon = gadocon;
    dbHelper->strTableName = QStringLiteral("ausers where userid=") + QString::number(userId);
    const QString userName = dbHelper->fnReturnField(QStringLiteral("username")).toString();

    const QString path = errorLogPath();
    QFile file(path);
    if (file.exists())
        file.setPermissions(file.permissions() | QFileDevice::WriteOwner | QFileDevice::ReadOwner);
    bool open = file.open(QIODevice::Append | QIODevice::Text);
    if (!open && g_logFolder.isEmpty()) {
        // An installed library's folder is usually read-only: keep the log with the user's data.
        const QString folder = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
        QDir().mkpath(folder);
        file.setFileName(folder + QLatin1Char('/') + moduleName() + QStringLiteral("Error.log"));
        open = file.open(QIODevice::Append | QIODevice::Text);
    }
    if (open) {
        const QDateTime now = g_now();
        const QString stamp = TimeValue::fromDateTime(now).format(u"dd/mm/yyyy") + QLatin1Char(' ') +
                              now.time().toString(QStringLiteral("HH:mm:ss"));
        QTextStream out(&file);
        out << QStringList{formName, moduleName(), QString::number(errNumber), errSource, errDescription, stamp, userName,
                           procName, entryMode}
                   .join(QLatin1Char(':'))
            << '\n';
    }
    if (showMessage && errNumber != 0) MsgBox(errDescription, MsgButtons::Ok, MsgIcon::Exclamation);
}

void fnSurviveFileSizeLimit() {
#ifdef SIGXFSZ
    std::signal(SIGXFSZ, SIG_IGN);
#endif
}

}  // namespace qz2
