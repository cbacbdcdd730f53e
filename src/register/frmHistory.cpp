#include "register/frmHistory.h"

#include <QDialogButtonBox>
#include <QHash>
#include <QHeaderView>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSplitter>
#include <QTabWidget>
#include <QTableWidget>
#include <QVBoxLayout>

#include "db/Database.h"
#include "shared/BasAttendence.h"
#include "shared/TimeValue.h"

namespace qz2 {

namespace {

QTableWidget* readOnlyTable(QWidget* parent, const QString& name, const QStringList& headings) {
    auto* t = new QTableWidget(0, static_cast<int>(headings.size()), parent);
    t->setObjectName(name);
    t->setHorizontalHeaderLabels(headings);
    t->setEditTriggers(QAbstractItemView::NoEditTriggers);
    t->setSelectionBehavior(QAbstractItemView::SelectRows);
    t->setSelectionMode(QAbstractItemView::SingleSelection);
    t->setAlternatingRowColors(true);
    t->verticalHeader()->setVisible(false);
    t->horizontalHeader()->setStretchLastSection(true);
    t->setTabKeyNavigation(false);  // Tab leaves the table, arrows move in it
    t->verticalHeader()->setDefaultSectionSize(t->fontMetrics().height() + 8);
    return t;
}

void setRow(QTableWidget* t, int row, const QStringList& cells) {
    for (int c = 0; c < cells.size(); ++c) t->setItem(row, c, new QTableWidgetItem(cells[c]));
}

QString idText(const std::optional<qint32>& id) {
    return id ? QString::number(*id) : QStringLiteral("-");
}

// The header of a version in one line: number, employee, period, counts, remarks, and the
// cancellation with its reason.
QString headerLine(const history::EntryVersion& v, const QString& employee) {
    const auto value = [&v](const char* column) {
        return v.value(QString::fromLatin1(column)).value_or(QString());
    };
    const auto date = [&value](const char* column) {
        const QDate d = QDate::fromString(value(column), Qt::ISODate);
        return d.isValid() ? dateText(d) : QString();
    };
    QString line = QStringLiteral("%1 · employee %2 · %3 to %4 · present %5, leave %6, absent %7")
                       .arg(value("eaNo"), employee.isEmpty() ? value("eaEmpID") : employee,
                            date("eaStartDate"), date("eaEndDate"), value("eaPresent"),
                            value("eaLeaves"), value("eaAbsent"));
    if (!value("eaRemarks").isEmpty())
        line += QStringLiteral(" · remarks \"%1\"").arg(value("eaRemarks"));
    if (value("eaCancelled") == QLatin1String("1"))
        line += QStringLiteral(" · CANCELLED: %1").arg(value("eaCancelledRemarks"));
    return line;
}

}  // namespace

frmHistory::frmHistory(qint32 entryId, QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("frmHistory"));
    setWindowFlag(Qt::WindowMaximizeButtonHint, true);

    lblEntry = new QLabel(this);
    lblEntry->setObjectName(QStringLiteral("lblEntry"));
    lblEntry->setTextInteractionFlags(Qt::TextSelectableByMouse);
    grdVersions =
        readOnlyTable(this, QStringLiteral("grdVersions"),
                      {tr("When"), tr("Action"), tr("User"), tr("Entry ID"), tr("What changed")});
    txtChanges = new QPlainTextEdit(this);
    txtChanges->setObjectName(QStringLiteral("txtChanges"));
    txtChanges->setReadOnly(true);
    txtChanges->setTabChangesFocus(true);
    lblVersionHeader = new QLabel(this);
    lblVersionHeader->setObjectName(QStringLiteral("lblVersionHeader"));
    lblVersionHeader->setWordWrap(true);
    lblVersionHeader->setTextInteractionFlags(Qt::TextSelectableByMouse);
    grdVersionDays = readOnlyTable(this, QStringLiteral("grdVersionDays"),
                                   {tr("Date"), tr("Day"), tr("Type"), tr("Check-in/Check-out"),
                                    tr("Allowances"), tr("Deductions")});
    auto* entryPage = new QWidget(this);
    auto* entryLayout = new QVBoxLayout(entryPage);
    entryLayout->addWidget(lblVersionHeader);
    entryLayout->addWidget(grdVersionDays, 1);
    tabVersion = new QTabWidget(this);
    tabVersion->setObjectName(QStringLiteral("tabVersion"));
    tabVersion->addTab(txtChanges, tr("What chan&ged"));
    tabVersion->addTab(entryPage, tr("Entry &as it was"));

    auto* split = new QSplitter(Qt::Vertical, this);
    split->addWidget(grdVersions);
    split->addWidget(tabVersion);
    split->setStretchFactor(0, 1);
    split->setStretchFactor(1, 2);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    buttons->button(QDialogButtonBox::Close)->setText(tr("&Close"));
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(lblEntry);
    layout->addWidget(split, 1);
    layout->addWidget(buttons);
    resize(900, 620);

    QList<history::HistoryRecord> records;
    try {
        records = history::readHistory(gadocon, gintCompanyID, entryId);
    } catch (const std::exception& e) {
        lblEntry->setText(tr("The history could not be read: %1").arg(db::errorMessage(e)));
    }
    // Employees by name; an entry's employee rarely changes, so each is read once.
    QHash<QString, QString> employees;
    const auto employeeOf = [&employees](const std::optional<history::EntryVersion>& v) {
        const QString id = v ? v->value(u"eaEmpID").value_or(QString()) : QString();
        if (id.isEmpty()) return QString();
        if (!employees.contains(id)) {
            try {
                employees.insert(id, history::employeeLabel(gadocon, gintCompanyID, id.toInt()));
            } catch (const std::exception&) {
                employees.insert(id, QString());  // the identifier stands
            }
        }
        return employees.value(id);
    };
    for (const history::HistoryRecord& r : records) {
        Shown s;
        s.when = dateText(r.at.date()) + QLatin1Char(' ') +
                 r.at.time().toString(QStringLiteral("HH:mm:ss"));
        s.action = history::actionWords(r.action);
        s.user = r.userName.isEmpty() ? QString::number(r.userId)
                                      : QStringLiteral("%1 (%2)").arg(r.userName).arg(r.userId);
        s.ids = r.oldId && r.oldId != r.newId
                    ? idText(r.oldId) + QStringLiteral(" → ") + idText(r.newId)
                    : idText(r.newId);
        // A version without a "before" is a new entry: it is summed up; any other says what
        // changed, an import onto an existing entry included.
        if (!r.before && r.after)
            s.words = {history::versionSummary(*r.after, employeeOf(r.after))};
        else if (r.after)
            s.words = history::changesInWords(
                history::versionChanges(r.before ? &*r.before : nullptr, *r.after));
        if (s.words.isEmpty()) s.words = {tr("Saved without changes")};
        s.entry = r.after;
        s.employee = employeeOf(r.after);
        m_shown.append(s);
    }
    // An entry saved before history was kept: its oldest state is the first edit's "before".
    if (!records.isEmpty() && records.last().before) {
        Shown s;
        s.action = tr("Before history");
        s.ids = idText(records.last().oldId);
        s.words = {tr("As stored before its history was kept")};
        s.entry = records.last().before;
        s.employee = employeeOf(records.last().before);
        m_shown.append(s);
    }

    grdVersions->setRowCount(static_cast<int>(m_shown.size()));
    for (int r = 0; r < m_shown.size(); ++r)
        setRow(grdVersions, r,
               {m_shown[r].when, m_shown[r].action, m_shown[r].user, m_shown[r].ids,
                m_shown[r].words.join(QStringLiteral("; "))});
    grdVersions->resizeColumnsToContents();
    grdVersions->horizontalHeader()->setStretchLastSection(true);
    const QString number =
        records.isEmpty() ? QString::number(entryId) : records.first().attendanceNo;
    setWindowTitle(tr("History of %1").arg(number));
    if (lblEntry->text().isEmpty())
        lblEntry->setText(
            records.isEmpty() ? tr("No history is recorded for entry %1.").arg(number)
            : records.size() == 1
                ? tr("%1: 1 version").arg(number)
                : tr("%1: %2 versions, newest first").arg(number).arg(records.size()));

    connect(grdVersions, &QTableWidget::currentCellChanged, this,
            [this](int row) { showVersion(row); });
    if (!m_shown.isEmpty()) grdVersions->setCurrentCell(0, 0);
    grdVersions->setFocus();
}

int frmHistory::versionCount() const {
    return static_cast<int>(m_shown.size());
}

void frmHistory::showVersion(int row) {
    grdVersionDays->setRowCount(0);
    if (row < 0 || row >= m_shown.size()) {
        txtChanges->clear();
        lblVersionHeader->clear();
        return;
    }
    const Shown& s = m_shown[row];
    txtChanges->setPlainText(s.words.join(QLatin1Char('\n')));
    if (!s.entry) {
        lblVersionHeader->setText(tr("The entry of this version could not be read."));
        return;
    }
    lblVersionHeader->setText(headerLine(*s.entry, s.employee));
    const QList<history::VersionDay> days = history::versionDays(*s.entry);
    grdVersionDays->setRowCount(static_cast<int>(days.size()));
    for (int r = 0; r < days.size(); ++r)
        setRow(grdVersionDays, r,
               {dateText(days[r].date), shortDayName(days[r].date), days[r].type, days[r].pairs,
                days[r].allowance, days[r].deduction});
    grdVersionDays->resizeColumnsToContents();
}

void fnShowHistory(QWidget* parent, qint32 entryId) {
    frmHistory dialog(entryId, parent);
    dialog.exec();
}

}  // namespace qz2
