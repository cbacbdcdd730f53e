#include "register/FrmMaster.h"

#include <QApplication>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <QScopeGuard>
#include <QVBoxLayout>

#include "commonmodule/CommonModule.h"
#include "db/Database.h"
#include "entry/EntryLauncher.h"
#include "register/RegisterSql.h"
#include "register/frmCancel.h"
#include "register/frmHistory.h"
#include "register/frmImportPunches.h"
#include "register/frmReports.h"
#include "shared/BasAttendence.h"
#include "shared/FlexGrid.h"
#include "shared/MsgBox.h"
#include "shared/SharedServices.h"
#include "shared/TimeValue.h"

namespace qz2 {

namespace {
QPointer<FrmMaster> g_instance;
constexpr int kCancelledCol = 4;
const QColor kCancelledColour(0xFF, 0, 0);  // 255: red

bool isIsoDate(const QString& s) {
    return (s.size() == 10 || (s.size() == 19 && s.endsWith(QLatin1String(" 00:00:00")))) && s[4] == QLatin1Char('-') &&
           s[7] == QLatin1Char('-');
}
}  // namespace

QString registerCellText(const QVariant& v) {
    if (v.isNull()) return {};
    switch (v.typeId()) {
        case QMetaType::QDate: return dateText(v.toDate());
        case QMetaType::QDateTime: return dateText(v.toDateTime().date());
        case QMetaType::Double: return QString::number(v.toDouble(), 'g', 15);
        case QMetaType::Bool: return v.toBool() ? QStringLiteral("True") : QStringLiteral("False");
        default: break;
    }
    const QString s = v.toString();
    if (isIsoDate(s)) {
        const QDate d = QDate::fromString(s.left(10), Qt::ISODate);
        if (d.isValid()) return dateText(d);
    }
    return s;
}

FrmMaster* FrmMaster::instance() { return g_instance.data(); }

FrmMaster::FrmMaster(QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("FrmMaster"));
    setWindowTitle(gstrMsgboxTitle.isEmpty() ? tr("Daily Attendance") : gstrMsgboxTitle);
    setWindowFlag(Qt::WindowMaximizeButtonHint, true);
    g_instance = this;

    fraBrowse = new QGroupBox(tr("Browse"), this);
    fraBrowse->setObjectName(QStringLiteral("fraBrowse"));
    cboColNames = new QComboBox(fraBrowse);
    cboColNames->setObjectName(QStringLiteral("cboColNames"));
    optAscend = new QRadioButton(tr("&Ascending"), fraBrowse);
    optAscend->setObjectName(QStringLiteral("optAscend"));
    // "D" belongs to Delete: every Alt letter of the register is its own.
    optDescend = new QRadioButton(tr("Descendin&g"), fraBrowse);
    optDescend->setObjectName(QStringLiteral("optDescend"));
    optAscend->setChecked(true);
    cboSearch = new QComboBox(fraBrowse);
    cboSearch->setObjectName(QStringLiteral("cboSearch"));
    lblsearch = new QLabel(tr("&Find:"), fraBrowse);
    lblsearch->setObjectName(QStringLiteral("lblsearch"));
    txtsearch = new QLineEdit(fraBrowse);
    txtsearch->setObjectName(QStringLiteral("txtsearch"));
    txtsearch->setPlaceholderText(tr("Type the start of the text"));
    txtsearch->setClearButtonEnabled(true);
    lblsearch->setBuddy(txtsearch);
    auto* sortLabel = new QLabel(tr("&Sort by:"), fraBrowse);
    sortLabel->setBuddy(cboColNames);
    auto* searchLabel = new QLabel(tr("Search &in:"), fraBrowse);
    searchLabel->setBuddy(cboSearch);

    auto* browse = new QGridLayout(fraBrowse);
    browse->addWidget(sortLabel, 0, 0);
    browse->addWidget(cboColNames, 0, 1);
    browse->addWidget(optAscend, 0, 2);
    browse->addWidget(optDescend, 0, 3);
    browse->addWidget(searchLabel, 1, 0);
    browse->addWidget(cboSearch, 1, 1);
    browse->addWidget(lblsearch, 1, 2);
    browse->addWidget(txtsearch, 1, 3, 1, 2);
    browse->setColumnStretch(4, 1);
    cboColNames->setMinimumWidth(160);
    cboSearch->setMinimumWidth(160);
    txtsearch->setMinimumWidth(220);

    flexMaster = new FlexGrid(this);
    flexMaster->setObjectName(QStringLiteral("flexMaster"));
    flexMaster->setSelectionBehavior(QAbstractItemView::SelectRows);
    flexMaster->setAlternatingRowColors(true);
    setRegisterGrid(flexMaster);

    cmdnew = new QPushButton(tr("&New"), this);
    cmdnew->setObjectName(QStringLiteral("cmdnew"));
    CmdEdit = new QPushButton(tr("&Edit"), this);
    CmdEdit->setObjectName(QStringLiteral("CmdEdit"));
    CmdDelete = new QPushButton(tr("&Delete"), this);
    CmdDelete->setObjectName(QStringLiteral("CmdDelete"));
    CmdDelete->setToolTip(tr("Cancel the selected entry with a reason"));
    CmdClose = new QPushButton(tr("&Close"), this);
    CmdClose->setObjectName(QStringLiteral("CmdClose"));
    // Enter on a focused button presses it; elsewhere the form swallows Enter (keyPressEvent).
    for (QPushButton* b : {cmdnew, CmdEdit, CmdDelete, CmdClose}) b->setAutoDefault(true);
    // Nothing may be started before the user's rights are known: the three buttons wait
    // disabled for the load to apply the rights, and stay so when the load fails.
    for (QPushButton* b : {cmdnew, CmdEdit, CmdDelete}) b->setEnabled(false);
    lblStatus = new QLabel(this);
    lblStatus->setObjectName(QStringLiteral("lblStatus"));
    lblStatus->setTextInteractionFlags(Qt::TextSelectableByMouse);

    auto* buttons = new QHBoxLayout;
    buttons->addWidget(lblStatus, 1);
    buttons->addWidget(cmdnew);
    buttons->addWidget(CmdEdit);
    buttons->addWidget(CmdDelete);
    buttons->addWidget(CmdClose);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(fraBrowse);
    layout->addWidget(flexMaster, 1);
    layout->addLayout(buttons);
    resize(860, 560);

    // Reports of the period or of the selected entry, in a dialog of their own.
    auto* cmdReports = new QPushButton(tr("&Reports..."), this);
    cmdReports->setObjectName(QStringLiteral("cmdReports"));
    cmdReports->setAutoDefault(true);
    buttons->insertWidget(buttons->indexOf(CmdClose), cmdReports);
    // Anyone who may open the register may print what it lists.
    connect(cmdReports, &QPushButton::clicked, this, [this] {
        const int row = flexMaster->Row();
        const QString id = row > 0 ? flexMaster->TextMatrix(row, 0) : QString();
        fnShowReports(this, row > 0 ? flexMaster->TextMatrix(row, 1).trimmed() : QString());
        fnBackToList(id);
    });
    // Every version of the selected entry, cancelled ones included; it waits for the load to
    // tell whether the database keeps history.
    cmdHistory = new QPushButton(tr("&History..."), this);
    cmdHistory->setObjectName(QStringLiteral("cmdHistory"));
    cmdHistory->setAutoDefault(true);
    cmdHistory->setEnabled(false);
    buttons->insertWidget(buttons->indexOf(CmdClose), cmdHistory);
    connect(cmdHistory, &QPushButton::clicked, this, [this] {
        const int row = flexMaster->Row();
        if (row < 1) return;
        const QString id = flexMaster->TextMatrix(row, 0);
        fnShowHistory(this, id.trimmed().toInt());
        fnBackToList(id);
    });

    // A time clock's file for the whole company: an entry for each employee with punches.
    // Adding entries is what it does, so it follows the right to add them.
    cmdImportPunches = new QPushButton(tr("Import p&unches..."), this);
    cmdImportPunches->setObjectName(QStringLiteral("cmdImportPunches"));
    cmdImportPunches->setAutoDefault(true);
    cmdImportPunches->setEnabled(false);
    buttons->insertWidget(buttons->indexOf(cmdReports), cmdImportPunches);
    connect(cmdImportPunches, &QPushButton::clicked, this, [this] {
        const int row = flexMaster->Row();
        const QString id = row > 0 ? flexMaster->TextMatrix(row, 0) : QString();
        // Importing adds entries: without the right to add, nothing is read or written.
        if (!fnMay(QStringLiteral("N"))) {
            MsgBox(noRightToAddText(), MsgButtons::Ok, MsgIcon::Information);
            fnBackToList(id);
            return;
        }
        const bool saved = fnShowImportPunches(this);
        const QScopeGuard back([this, id] { fnBackToList(id); });
        if (!saved) return;
        // The saved entries join the list.
        try {
            GridPopulate(gstrMasterQuery);
            showEntryCount();
        } catch (const std::exception& e) {
            lblStatus->setText(
                tr("The list could not be read: %1").arg(QString::fromStdString(e.what())));
        }
    });

    setTabOrder(flexMaster, cmdnew);
    setTabOrder(cmdnew, CmdEdit);
    setTabOrder(CmdEdit, CmdDelete);
    setTabOrder(CmdDelete, CmdClose);
    setTabOrder(CmdClose, cboColNames);
    setTabOrder(CmdDelete, cmdImportPunches);
    setTabOrder(cmdImportPunches, cmdReports);
    setTabOrder(cmdReports, cmdHistory);
    setTabOrder(cboColNames, optAscend);
    setTabOrder(optAscend, optDescend);
    setTabOrder(optDescend, cboSearch);
    setTabOrder(cboSearch, txtsearch);

    connect(cmdnew, &QPushButton::clicked, this, &FrmMaster::cmdnew_Click);
    connect(CmdEdit, &QPushButton::clicked, this, &FrmMaster::CmdEdit_Click);
    connect(CmdDelete, &QPushButton::clicked, this, &FrmMaster::CmdDelete_Click);
    connect(CmdClose, &QPushButton::clicked, this, &FrmMaster::CmdClose_Click);
    connect(cboColNames, &QComboBox::currentIndexChanged, this, &FrmMaster::cboColNames_Click);
    connect(optAscend, &QRadioButton::clicked, this, &FrmMaster::cboColNames_Click);
    connect(optDescend, &QRadioButton::clicked, this, &FrmMaster::cboColNames_Click);
    connect(txtsearch, &QLineEdit::textChanged, this, &FrmMaster::txtsearch_KeyUp);
    connect(flexMaster, &FlexGrid::cellChanged, this, [this] { runClickLogicGuarded(); });
    connect(flexMaster, &QAbstractItemView::clicked, this, [this] { runClickLogicGuarded(); });
    connect(flexMaster, &QAbstractItemView::doubleClicked, this, [this] { CmdEdit_Click(); });
    // The status line follows the list: rows added by a save, a cancellation written into a row.
    FlexGridModel* listModel = flexMaster->flexModel();
    connect(listModel, &QAbstractItemModel::rowsInserted, this, &FrmMaster::showEntryCount);
    connect(listModel, &QAbstractItemModel::rowsRemoved, this, &FrmMaster::showEntryCount);
    connect(listModel, &QAbstractItemModel::modelReset, this, &FrmMaster::showEntryCount);
    connect(listModel, &QAbstractItemModel::dataChanged, this,
            [this](const QModelIndex& from, const QModelIndex& to, const QList<int>& roles) {
                if (from.column() <= kCancelledCol && to.column() >= kCancelledCol &&
                    (roles.isEmpty() || roles.contains(Qt::DisplayRole)))
                    showEntryCount();
            });
    flexMaster->installEventFilter(this);
    for (QWidget* w : {static_cast<QWidget*>(cboColNames), static_cast<QWidget*>(cboSearch),
                       static_cast<QWidget*>(optAscend), static_cast<QWidget*>(optDescend)})
        w->installEventFilter(this);
}

FrmMaster::~FrmMaster() {
    if (registerGrid() == flexMaster) setRegisterGrid(nullptr);
}

void FrmMaster::Form_Load() {
    m_gen = commonmodule::createCommonGen();
    m_db = commonmodule::createCommonDB(gadocon);
    try {
        fnLoadLinkTableNames();
        m_db->adocon = gadocon;
        m_db->strTableName = LinkedTableNames.pSettings;
        const QVariant setting =
            m_db->fnReturnField(QStringLiteral("noofPreviousdays"), QStringLiteral("companyId=") + QString::number(gintCompanyID));
        if (setting.isNull())
            throw db::DbError(QStringLiteral("The company has no \"noofPreviousdays\" setting"), LinkedTableNames.pSettings);
        const qint16 days = static_cast<qint16>(setting.toInt());
        strFromClause = sql::masterFromClause();
        gstrMasterQuery = sql::masterQuery(db::Dialect::of(gadocon), gintCompanyID, days, gdtProcessDate);
        GridPopulate(gstrMasterQuery);
        m_loaded = true;
        glngInterfaceID = kInterfaceID;
        UserRights();
        flexmaster_Click();
        if (flexMaster->Rows() > 1) {
            flexMaster->setCurrentCell(flexMaster->Rows() - 1, flexMaster->Col());
            flexMaster->scrollTo(flexMaster->currentIndex());
        }
        fnCheckHistoryKept();
        showEntryCount();
    } catch (const std::exception& e) {
        lblStatus->setText(tr("The list could not be read: %1").arg(QString::fromStdString(e.what())));
    }
}

void FrmMaster::loadHeadings(const QStringList& fallbackNames) {
    m_headings = fallbackNames;
    try {
        db::Recordset rs = db::openRecordset(gadocon, sql::headingQuery(QStringLiteral("pEmployeeAttendence")));
        QStringList headings;
        for (; !rs.eof(); rs.moveNext()) headings << rs.field(QStringLiteral("columnheader")).toString().trimmed();
        for (int i = 0; i < headings.size() && i < m_headings.size(); ++i) m_headings[i] = headings[i];
    } catch (const std::exception&) {
        // Without the table catalogue the columns keep the query's own names.
    }
    const QSignalBlocker b1(cboColNames);
    const QSignalBlocker b2(cboSearch);
    cboColNames->clear();
    cboSearch->clear();
    for (int c = 0; c < m_headings.size(); ++c) {
        flexMaster->setTextMatrix(0, c, m_headings[c]);
        cboColNames->addItem(m_headings[c], c);
        cboSearch->addItem(m_headings[c], c);
    }
    cboColNames->setCurrentIndex(-1);
    cboSearch->setCurrentIndex(m_headings.size() > 3 ? 3 : 0);  // the employee's name is what clerks look for
}

void FrmMaster::GridPopulate(const QString& query) {
    db::Recordset rs = db::openRecordset(gadocon, query);
    QStringList names;
    for (int c = 0; c < rs.fieldCount(); ++c) names << rs.fieldName(c);
    flexMaster->setCols(rs.fieldCount());
    QVector<QStringList> rows;
    rows.reserve(rs.recordCount());
    for (int r = 0; r < rs.recordCount(); ++r) {
        QStringList cells;
        cells.reserve(names.size());
        for (const QVariant& v : rs.row(r)) cells << registerCellText(v);
        rows.push_back(std::move(cells));
    }
    flexMaster->flexModel()->setAllRows(std::move(rows));
    loadHeadings(names);
    const int widths[] = {1650, 1650, 1400, 3600, 1200};
    for (int c = 0; c < flexMaster->Cols() && c < 5; ++c) flexMaster->setColWidthTwips(c, widths[c]);
    if (flexMaster->Cols() > 3) flexMaster->horizontalHeader()->setSectionResizeMode(3, QHeaderView::Stretch);
    GridColor();
}

void FrmMaster::GridColor() {
    const int row = flexMaster->Row();
    CmdDelete->setEnabled(row > 0 && flexMaster->TextMatrix(row, kCancelledCol).trimmed() == QLatin1String("No"));
    FlexGridModel* m = flexMaster->flexModel();
    const QSignalBlocker block(m);  // one repaint for the lot rather than a signal per cell
    for (int r = 0; r < m->dataRows(); ++r) {
        if (m->text(r, kCancelledCol) == QLatin1String("Yes"))
            for (int c = 0; c <= kCancelledCol && c < m->cols(); ++c) m->setForeground(r, c, kCancelledColour);
    }
    flexMaster->viewport()->update();
    // The walk over column 3 stops on the first row that reads "No", else on the last row.
    int stop = m->dataRows();
    for (int r = 0; r < m->dataRows(); ++r) {
        if (m->text(r, 3) == QLatin1String("No")) {
            stop = r + 1;
            break;
        }
    }
    if (stop > 0) flexMaster->setCurrentCell(stop, 3);
}

void FrmMaster::runClickLogicGuarded() {
    if (!m_loaded) return;
    flexmaster_Click();
}

void FrmMaster::flexmaster_Click() {
    try {
        const int row = flexMaster->Row();
        if (row < 1 || flexMaster->TextMatrix(row, 0).isEmpty()) {
            CmdEdit->setEnabled(false);
            CmdDelete->setEnabled(false);
            return;
        }
        CmdEdit->setEnabled(true);
        CmdDelete->setEnabled(true);
        // Delete stays enabled on every live row whatever the rights said at load: the
        // rights decide the buttons once, when the register opens.
        if (flexMaster->TextMatrix(row, kCancelledCol) == QLatin1String("Yes")) CmdDelete->setEnabled(false);
    } catch (const std::exception& e) {
        try {
            fnWriteErrorLog(QStringLiteral("FrmMaster"), gintUserID, QStringLiteral("flexmaster_Click "), gstrEntryMode,
                            1, QStringLiteral("FrmMaster"), QString::fromStdString(e.what()), true);
        } catch (...) {
            // The log itself could not be written (no user table, connection gone).
        }
    }
}

void FrmMaster::cboColNames_Click() {
    if (cboColNames->currentIndex() < 0) return;
    QApplication::setOverrideCursor(Qt::WaitCursor);
    const QString heading = cboColNames->currentText();
    const int col = heading.contains(QLatin1String("date"), Qt::CaseInsensitive) ? 1 : cboColNames->currentData().toInt();
    flexMaster->flexModel()->sortGeneric(col, optAscend->isChecked());
    // The chosen entry stays chosen through the sort; the buttons are set for it again.
    if (flexMaster->currentIndex().isValid()) flexMaster->scrollTo(flexMaster->currentIndex());
    runClickLogicGuarded();
    QApplication::restoreOverrideCursor();
}

void FrmMaster::txtsearch_KeyUp() {
    const QString text = txtsearch->text().trimmed();
    if (!text.isEmpty() && cboSearch->currentIndex() >= 0) {
        const int col = cboSearch->currentData().toInt();
        const FlexGridModel* m = flexMaster->flexModel();
        for (int r = 0; r < m->dataRows(); ++r) {
            // Clerks type names as they say them, so the match ignores letter case.
            if (m->text(r, col).trimmed().startsWith(text, Qt::CaseInsensitive)) {
                flexMaster->setCurrentCell(r + 1, col);
                flexMaster->selectRow(r);
                flexMaster->scrollTo(flexMaster->currentIndex(), QAbstractItemView::PositionAtTop);
                break;
            }
        }
    }
    flexmaster_Click();
}

void FrmMaster::cmdnew_Click() {
    const int row = flexMaster->Row();
    const QString current = row > 0 ? flexMaster->TextMatrix(row, 0) : QString();
    // The button may stand enabled whatever the rights; the action itself asks them.
    if (!fnMay(QStringLiteral("N"))) {
        MsgBox(noRightToAddText(), MsgButtons::Ok, MsgIcon::Information);
        fnBackToList(current);
        return;
    }
    gstrEntryMode = QStringLiteral("N");
    const int rowsBefore = flexMaster->Rows();
    entry::showNewEntry(this);
    // A saved entry was added as the last row and made current; otherwise the list goes
    // back to the entry it was on.
    fnBackToList(flexMaster->Rows() > rowsBefore ? flexMaster->TextMatrix(flexMaster->Rows() - 1, 0) : current);
}

void FrmMaster::CmdEdit_Click() {
    const int row = flexMaster->Row();
    if (row < 1) return;
    const QString id = flexMaster->TextMatrix(row, 0);
    const bool cancelled = flexMaster->TextMatrix(row, kCancelledCol) == QLatin1String("Yes");
    // Without the right to edit the entry still opens, for viewing only, and says why.
    entry::openEntryForEdit(this, id, cancelled, fnMay(QStringLiteral("E")));
    fnBackToList(id);
}

void FrmMaster::CmdDelete_Click() {
    const int row = flexMaster->Row();
    if (row < 1) return;
    const QString id = flexMaster->TextMatrix(row, 0);
    const QScopeGuard back([this, id] { fnBackToList(id); });
    // Refused before anything is asked: the button may stand enabled whatever the rights.
    if (!fnMay(QStringLiteral("D"))) {
        MsgBox(noRightToCancelText(), MsgButtons::Ok, MsgIcon::Information);
        return;
    }
    try {
        // Whatever the row or the buttons say, an entry the database holds as cancelled keeps
        // the reason it was cancelled with: nothing is asked and nothing is written.
        if (fnIsEntryCancelled(id).value_or(false)) {
            showCancelled(row, true);
            MsgBox(alreadyCancelledText(id), MsgButtons::Ok, MsgIcon::Information);
            flexmaster_Click();
            return;
        }
        if (MsgBox(QStringLiteral("Are you sure you want to delete Entry - ") + id + QStringLiteral("?"),
                   MsgButtons::YesNo, MsgIcon::Question, MsgDefault::No) == MsgResult::No)
            return;
        if (fnIsMonthlyEntryDone(QStringLiteral("D"))) return;
        frmCancel dialog(this);
        dialog.exec();
        // The row shows what the database now holds: "Yes" once the reason is stored, still
        // "No" when the clerk backed out of the dialog or the update did not run.
        bool cancelled = dialog.cancelled();
        try {
            if (const std::optional<bool> held = fnIsEntryCancelled(id)) cancelled = *held;
        } catch (const std::exception&) {
            // The re-read failed: the dialog's own outcome is the best knowledge there is.
        }
        showCancelled(row, cancelled);
        CmdDelete->setEnabled(false);
        flexMaster->setCurrentCell(row, 0);
        flexMaster->selectRow(row - 1);
        CmdDelete->setEnabled(fnUserRights(QStringLiteral("D"), strFunctionRights));
    } catch (const std::exception& e) {
        // Trapped: the register stays as it is. A failed statement is reported.
        if (const std::optional<QString> failed = db::failedStatementMessage(e))
            MsgBox(*failed, MsgButtons::Ok, MsgIcon::Information);
    }
}

void FrmMaster::showCancelled(int row, bool cancelled) {
    flexMaster->setTextMatrix(row, kCancelledCol, cancelled ? QStringLiteral("Yes") : QStringLiteral("No"));
    if (cancelled)
        for (int c = 0; c <= kCancelledCol && c < flexMaster->Cols(); ++c)
            flexMaster->setCellForeColor(row, c, kCancelledColour);
}

void FrmMaster::showEntryCount() {
    if (!m_loaded) return;
    const FlexGridModel* m = flexMaster->flexModel();
    int cancelled = 0;
    for (int r = 0; r < m->dataRows(); ++r)
        if (m->text(r, kCancelledCol) == QLatin1String("Yes")) ++cancelled;
    const int entries = m->dataRows();
    QString text = entries == 1 ? tr("1 entry") : tr("%1 entries").arg(entries);
    if (cancelled > 0) text += tr(", %1 cancelled").arg(cancelled);
    if (!m_historyNote.isEmpty()) text += QStringLiteral(" · ") + m_historyNote;
    lblStatus->setText(text);
}

void FrmMaster::fnCheckHistoryKept() {
    bool kept = false;
    try {
        kept = history::isKept(gadocon);
        m_historyNote = kept ? QString() : historyNotKeptText();
    } catch (const std::exception&) {
        // Not known: the list works as before, and History stays off.
        m_historyNote.clear();
    }
    cmdHistory->setEnabled(kept);
}

QString historyNotKeptText() {
    return FrmMaster::tr("History is not being kept: the database has no table %1 "
                         "(qz2-attendance --help says how to add it)")
        .arg(history::tableName());
}

void FrmMaster::CmdClose_Click() { close(); }

void FrmMaster::UserRights() {
    try {
        if (gintUserID == 1) {
            strFunctionRights = QStringLiteral("NEDUP");
        } else {
            db::Recordset rs = db::openRecordset(gadocon, sql::rightsQuery(gintUserID, glngInterfaceID));
            if (rs.recordCount() < 1) return;
            strFunctionRights = rs.field(QStringLiteral("FunctionRights")).toString();
        }
        cmdnew->setEnabled(fnUserRights(QStringLiteral("N"), strFunctionRights));
        cmdImportPunches->setEnabled(cmdnew->isEnabled());
        CmdEdit->setEnabled(fnUserRights(QStringLiteral("E"), strFunctionRights));
        CmdDelete->setEnabled(fnUserRights(QStringLiteral("D"), strFunctionRights));
    } catch (const std::exception&) {
        // A failing rights query leaves the buttons as they were.
    }
}

bool FrmMaster::fnMay(const QString& letter) {
    QString rights = strFunctionRights;  // the form's string is not normalised by asking
    return fnUserRights(letter, rights);
}

void FrmMaster::fnBackToList(const QString& id) {
    if (!isVisible()) return;
    const QString wanted = id.trimmed();
    if (!wanted.isEmpty()) {
        const FlexGridModel* m = flexMaster->flexModel();
        for (int r = 0; r < m->dataRows(); ++r) {
            if (m->text(r, 0).trimmed() != wanted) continue;
            if (flexMaster->Row() != r + 1) flexMaster->setCurrentCell(r + 1, qMax(flexMaster->Col(), 0));
            flexMaster->selectRow(r);
            flexMaster->scrollTo(flexMaster->currentIndex());
            break;
        }
    }
    activateWindow();
    raise();
    flexMaster->setFocus(Qt::OtherFocusReason);
}

QString noRightToAddText() {
    return FrmMaster::tr("You do not have the right to add attendance entries.");
}

QString noRightToCancelText() {
    return FrmMaster::tr("You do not have the right to cancel attendance entries.");
}

bool FrmMaster::fnUserRights(QString letter, QString& rights) {
    letter = letter.trimmed().toUpper();
    rights = rights.trimmed().toUpper();
    if (rights == QLatin1String("ADMIN")) return false;
    return !letter.isEmpty() && rights.contains(letter, Qt::CaseInsensitive);
}

bool FrmMaster::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress) {
        auto* key = static_cast<QKeyEvent*>(event);
        const bool enter = key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter;
        if (watched == flexMaster) {
            if (key->key() == Qt::Key_Delete) {
                if (CmdDelete->isEnabled()) CmdDelete_Click();
                return true;
            }
            if (enter && (key->modifiers() & Qt::ControlModifier)) {
                if (cmdnew->isEnabled()) cmdnew_Click();
                return true;
            }
            if (enter) {
                if (CmdEdit->isEnabled()) CmdEdit_Click();
                return true;
            }
        } else if (enter) {
            sendTab();
            return true;
        }
    }
    return QDialog::eventFilter(watched, event);
}

void FrmMaster::keyPressEvent(QKeyEvent* event) {
    // Ctrl+D (code 4) brings the clerk back to the list from anywhere on the form.
    if (event->key() == Qt::Key_D && (event->modifiers() & Qt::ControlModifier)) {
        flexMaster->setFocus();
        return;
    }
    // Enter must not close the register the way a dialog's default button would.
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) return;
    QDialog::keyPressEvent(event);
}

}  // namespace qz2
