#include "shared/FlexGrid.h"

#include <QHeaderView>
#include <QItemSelectionModel>
#include <algorithm>
#include <numeric>

namespace qz2 {

FlexGridModel::FlexGridModel(QObject* parent) : QAbstractTableModel(parent) {}

int FlexGridModel::rowCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : dataRows(); }
int FlexGridModel::columnCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : m_cols; }

FlexGridModel::Cell* FlexGridModel::cell(int row, int col) {
    if (row < 0 || row >= m_rows.size() || col < 0 || col >= m_cols) return nullptr;
    auto& r = m_rows[row];
    if (r.size() < m_cols) r.resize(m_cols);
    return &r[col];
}

const FlexGridModel::Cell* FlexGridModel::cell(int row, int col) const {
    if (row < 0 || row >= m_rows.size() || col < 0 || col >= m_cols) return nullptr;
    const auto& r = m_rows[row];
    return col < r.size() ? &r[col] : nullptr;
}

QVariant FlexGridModel::data(const QModelIndex& index, int role) const {
    const Cell* c = cell(index.row(), index.column());
    if (!c) return {};
    switch (role) {
        case Qt::DisplayRole: return c->text;
        case Qt::ForegroundRole: return c->hasFg ? QVariant(QColor(c->fg)) : QVariant();
        case Qt::BackgroundRole: return c->hasBg ? QVariant(QColor(c->bg)) : QVariant();
        default: return {};
    }
}

QVariant FlexGridModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (role != Qt::DisplayRole) return {};
    if (orientation == Qt::Horizontal) return m_headers.value(section);
    if (m_rowHeading && section >= 0 && section < dataRows()) return m_rowHeading(section);
    return {};
}

void FlexGridModel::setCols(int cols) {
    if (cols == m_cols) return;
    beginResetModel();
    m_cols = std::max(0, cols);
    while (m_headers.size() < m_cols) m_headers << QString();
    m_headers = m_headers.mid(0, m_cols);
    for (auto& r : m_rows) r.resize(m_cols);
    endResetModel();
}

void FlexGridModel::setDataRows(int rows) {
    rows = std::max(0, rows);
    const int now = dataRows();
    if (rows > now) {
        beginInsertRows({}, now, rows - 1);
        m_rows.resize(rows);
        for (int r = now; r < rows; ++r) m_rows[r].resize(m_cols);
        endInsertRows();
    } else if (rows < now) {
        beginRemoveRows({}, rows, now - 1);
        m_rows.resize(rows);
        endRemoveRows();
    }
}

void FlexGridModel::setHeader(int col, const QString& text) {
    if (col < 0 || col >= m_cols) return;
    m_headers[col] = text;
    emit headerDataChanged(Qt::Horizontal, col, col);
}

QString FlexGridModel::text(int row, int col) const {
    const Cell* c = cell(row, col);
    return c ? c->text : QString();
}

void FlexGridModel::setText(int row, int col, const QString& text) {
    Cell* c = cell(row, col);
    if (!c || c->text == text) return;
    c->text = text;
    const QModelIndex i = index(row, col);
    emit dataChanged(i, i, {Qt::DisplayRole});
}

QColor FlexGridModel::foreground(int row, int col) const {
    const Cell* c = cell(row, col);
    return c && c->hasFg ? QColor(c->fg) : QColor();
}

QColor FlexGridModel::background(int row, int col) const {
    const Cell* c = cell(row, col);
    return c && c->hasBg ? QColor(c->bg) : QColor();
}

void FlexGridModel::setForeground(int row, int col, const QColor& color) {
    Cell* c = cell(row, col);
    if (!c) return;
    c->hasFg = color.isValid();
    c->fg = color.rgb();
    const QModelIndex i = index(row, col);
    emit dataChanged(i, i, {Qt::ForegroundRole});
}

void FlexGridModel::setBackground(int row, int col, const QColor& color) {
    Cell* c = cell(row, col);
    if (!c) return;
    c->hasBg = color.isValid();
    c->bg = color.rgb();
    const QModelIndex i = index(row, col);
    emit dataChanged(i, i, {Qt::BackgroundRole});
}

void FlexGridModel::appendRow(const QStringList& cells) {
    const int at = dataRows();
    beginInsertRows({}, at, at);
    QVector<Cell> r(m_cols);
    for (int c = 0; c < m_cols && c < cells.size(); ++c) r[c].text = cells[c];
    m_rows.push_back(std::move(r));
    endInsertRows();
}

void FlexGridModel::removeDataRow(int row) {
    if (row < 0 || row >= dataRows()) return;
    beginRemoveRows({}, row, row);
    m_rows.remove(row);
    endRemoveRows();
}

void FlexGridModel::setAllRows(QVector<QStringList> rows) {
    beginResetModel();
    m_rows.clear();
    m_rows.reserve(rows.size());
    for (const QStringList& cells : rows) {
        QVector<Cell> r(m_cols);
        for (int c = 0; c < m_cols && c < cells.size(); ++c) r[c].text = cells[c];
        m_rows.push_back(std::move(r));
    }
    endResetModel();
}

void FlexGridModel::sortGeneric(int col, bool ascending) {
    if (col < 0 || col >= m_cols) return;
    struct Key {
        bool numeric;
        double number;
        QString text;
    };
    const int n = dataRows();
    QVector<Key> keys(n);
    for (int r = 0; r < n; ++r) {
        const QString t = text(r, col).trimmed();
        bool ok = false;
        const double d = t.toDouble(&ok);
        keys[r] = {ok, ok ? d : 0.0, ok ? QString() : t.toLower()};
    }
    std::vector<int> order(n);
    std::iota(order.begin(), order.end(), 0);
    auto less = [&](int a, int b) {
        const Key& x = keys[a];
        const Key& y = keys[b];
        if (x.numeric && y.numeric) return x.number < y.number;
        if (x.numeric != y.numeric) return x.numeric;  // numbers before texts
        return x.text < y.text;
    };
    if (ascending)
        std::stable_sort(order.begin(), order.end(), less);
    else
        std::stable_sort(order.begin(), order.end(), [&](int a, int b) { return less(b, a); });
    emit layoutAboutToBeChanged({}, QAbstractItemModel::VerticalSortHint);
    QVector<QVector<Cell>> sorted;
    sorted.reserve(n);
    for (int i : order) sorted.push_back(std::move(m_rows[i]));
    m_rows = std::move(sorted);
    // The current cell and the selection travel with their rows: the row a clerk had
    // chosen is still the chosen one after the sort, wherever it lands.
    std::vector<int> newRow(n);
    for (int i = 0; i < n; ++i) newRow[order[i]] = i;
    const QModelIndexList before = persistentIndexList();
    QModelIndexList after;
    after.reserve(before.size());
    for (const QModelIndex& i : before)
        after << (i.row() < n ? index(newRow[i.row()], i.column()) : i);
    changePersistentIndexList(before, after);
    emit layoutChanged({}, QAbstractItemModel::VerticalSortHint);
}

FlexGrid::FlexGrid(QWidget* parent) : QTableView(parent), m_model(new FlexGridModel(this)) {
    setModel(m_model);
    setSelectionBehavior(QAbstractItemView::SelectItems);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setTabKeyNavigation(false);  // Tab leaves the grid, as on every other control
    setWordWrap(false);
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 6);
    verticalHeader()->setVisible(false);
    horizontalHeader()->setHighlightSections(false);
    horizontalHeader()->setStretchLastSection(false);
    connect(selectionModel(), &QItemSelectionModel::currentChanged, this,
            [this](const QModelIndex& now, const QModelIndex& before) {
                const int oldRow = before.isValid() ? before.row() + 1 : 0;
                const int oldCol = before.isValid() ? before.column() : m_idleCol;
                if (now.isValid()) m_idleCol = now.column();
                emit cellChanged(oldRow, oldCol, now.isValid() ? now.row() + 1 : 0,
                                 now.isValid() ? now.column() : m_idleCol);
            });
}

void FlexGrid::setRows(int rows) { m_model->setDataRows(std::max(1, rows) - 1); }

QString FlexGrid::TextMatrix(int row, int col) const {
    if (row == 0) return m_model->header(col);
    return m_model->text(row - 1, col);
}

void FlexGrid::setTextMatrix(int row, int col, const QString& text) {
    if (row == 0)
        m_model->setHeader(col, text);
    else
        m_model->setText(row - 1, col, text);
}

int FlexGrid::Row() const {
    const QModelIndex i = currentIndex();
    return i.isValid() ? i.row() + 1 : 0;
}

int FlexGrid::Col() const {
    const QModelIndex i = currentIndex();
    return i.isValid() ? i.column() : m_idleCol;
}

void FlexGrid::setCurrentCell(int row, int col) {
    if (row <= 0 || row > m_model->dataRows()) {
        m_idleCol = col;
        clearCurrent();
        return;
    }
    const QModelIndex i = m_model->index(row - 1, std::clamp(col, 0, std::max(0, Cols() - 1)));
    setCurrentIndex(i);
}

void FlexGrid::setRow(int row) { setCurrentCell(row, Col()); }
void FlexGrid::setCol(int col) {
    if (Row() == 0)
        m_idleCol = col;
    else
        setCurrentCell(Row(), col);
}

void FlexGrid::AddItem(const QStringList& cells) { m_model->appendRow(cells); }
void FlexGrid::RemoveItem(int row) { m_model->removeDataRow(row - 1); }

void FlexGrid::setColWidthTwips(int col, int twips) {
    if (twips <= 0) {
        setColumnHidden(col, true);
    } else {
        setColumnHidden(col, false);
        setColumnWidth(col, twips / 15);
    }
}

void FlexGrid::setCellForeColor(int row, int col, const QColor& color) { m_model->setForeground(row - 1, col, color); }
void FlexGrid::setCellBackColor(int row, int col, const QColor& color) { m_model->setBackground(row - 1, col, color); }
QColor FlexGrid::cellBackColor(int row, int col) const { return m_model->background(row - 1, col); }
QColor FlexGrid::cellForeColor(int row, int col) const { return m_model->foreground(row - 1, col); }

void FlexGrid::clearCurrent() {
    selectionModel()->clearSelection();
    selectionModel()->setCurrentIndex(QModelIndex(), QItemSelectionModel::NoUpdate);
}

}  // namespace qz2
