#pragma once
// The grids of the component: a QTableView over a plain table model of texts and colours,
// addressed the way the attendance rules think of a grid. Row 0 is the heading row (the
// view's horizontal header), data row r is model row r-1, Rows() counts the heading row,
// and setting Rows() grows or cuts the data rows. A model rather than item widgets keeps the
// register quick at 100,000 rows.

#include <QAbstractTableModel>
#include <QColor>
#include <QStringList>
#include <QTableView>
#include <QVector>
#include <functional>

namespace qz2 {

class FlexGridModel : public QAbstractTableModel {
    Q_OBJECT
public:
    explicit FlexGridModel(QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    int dataRows() const { return static_cast<int>(m_rows.size()); }
    int cols() const { return m_cols; }
    void setCols(int cols);
    void setDataRows(int rows);  // new rows are empty, cut rows are dropped
    QString header(int col) const { return m_headers.value(col); }
    void setHeader(int col, const QString& text);

    QString text(int row, int col) const;  // 0-based data row; "" outside the grid
    void setText(int row, int col, const QString& text);
    QColor foreground(int row, int col) const;  // invalid when none set
    QColor background(int row, int col) const;
    void setForeground(int row, int col, const QColor& color);
    void setBackground(int row, int col, const QColor& color);

    void appendRow(const QStringList& cells);
    void removeDataRow(int row);
    // Replaces every data row at once (one reset rather than a signal per row).
    void setAllRows(QVector<QStringList> rows);

    // The same grid in the rules' coordinates: row 0 is the heading, data row r is r-1.
    int Rows() const { return dataRows() + 1; }
    void setRows(int rows) { setDataRows(rows - 1); }
    QString TextMatrix(int row, int col) const { return row == 0 ? header(col) : text(row - 1, col); }
    void setTextMatrix(int row, int col, const QString& value) {
        if (row == 0)
            setHeader(col, value);
        else
            setText(row - 1, col, value);
    }
    void AddItem(const QStringList& cells) { appendRow(cells); }
    void RemoveItem(int row) { removeDataRow(row - 1); }

    // Headings of the data rows (a view's vertical header), worked out from the grid when
    // asked: a heading is never a cell, so what the cells say stays as it is. None unless set.
    void setRowHeading(std::function<QString(int dataRow)> heading) {
        m_rowHeading = std::move(heading);
    }
    // The headings of data rows first..last changed (the cells they are worked out from did).
    void rowHeadingsChanged(int first, int last) {
        emit headerDataChanged(Qt::Vertical, first, last);
    }

    // The grid's generic sort: numbers compare as numbers, anything else as text without
    // regard to case; rows of equal keys keep their order.
    void sortGeneric(int col, bool ascending);

private:
    struct Cell {
        QString text;
        QRgb fg = 0;
        QRgb bg = 0;
        bool hasFg = false;
        bool hasBg = false;
    };
    int m_cols = 0;
    QStringList m_headers;
    std::function<QString(int)> m_rowHeading;
    QVector<QVector<Cell>> m_rows;
    Cell* cell(int row, int col);
    const Cell* cell(int row, int col) const;
};

class FlexGrid : public QTableView {
    Q_OBJECT
public:
    explicit FlexGrid(QWidget* parent = nullptr);

    FlexGridModel* flexModel() const { return m_model; }

    int Rows() const { return m_model->dataRows() + 1; }
    void setRows(int rows);
    int Cols() const { return m_model->cols(); }
    void setCols(int cols) { m_model->setCols(cols); }
    QString TextMatrix(int row, int col) const;  // row 0: the heading
    void setTextMatrix(int row, int col, const QString& text);

    // The current cell; Row() is 0 when no data cell is current.
    int Row() const;
    int Col() const;
    void setRow(int row);
    void setCol(int col);
    void setCurrentCell(int row, int col);

    void AddItem(const QStringList& cells);  // a row at the end
    void RemoveItem(int row);                // a data row (1..Rows-1)

    void setColWidthTwips(int col, int twips);  // 0 hides the column; 15 twips to a pixel
    void setCellForeColor(int row, int col, const QColor& color);
    void setCellBackColor(int row, int col, const QColor& color);
    QColor cellBackColor(int row, int col) const;
    QColor cellForeColor(int row, int col) const;

    // Clears the current cell and the selection (the heading row becomes "current").
    void clearCurrent();

signals:
    // The current cell moved, by keyboard, mouse or code; rows in grid coordinates.
    void cellChanged(int oldRow, int oldCol, int newRow, int newCol);

private:
    FlexGridModel* m_model;
    int m_idleCol = 0;  // the column remembered while no data row is current
};

}  // namespace qz2
