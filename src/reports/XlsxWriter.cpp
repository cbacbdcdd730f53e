// The XLSX writer, over the C library libxlsxwriter. The library writes to a file name, so
// the workbook goes to a temporary name in the requested folder and is renamed over the
// requested name once closed without error.

#include <xlsxwriter.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryFile>
#include <algorithm>
#include <cstdio>

#include "reports/ReportWriters.h"

namespace qz2::reports {

namespace {

QString sheetName(const QString& title) {
    QString name = title;
    for (const QChar c : QStringLiteral("[]:*?/\\")) name.replace(c, QLatin1Char(' '));
    return name.left(31).trimmed();
}

class Workbook {
public:
    explicit Workbook(const QByteArray& file) {
        lxw_workbook_options options{};
        options.constant_memory = LXW_FALSE;
        m_book = workbook_new_opt(file.constData(), &options);
    }
    ~Workbook() {
        // Not closed: an error or a cancel on the way. Closing frees the library's memory;
        // the half-written temporary file is removed by the caller.
        if (m_book) workbook_close(m_book);
    }
    Workbook(const Workbook&) = delete;
    Workbook& operator=(const Workbook&) = delete;
    lxw_workbook* get() const { return m_book; }
    lxw_error close() {
        lxw_workbook* b = m_book;
        m_book = nullptr;
        return workbook_close(b);
    }

private:
    lxw_workbook* m_book = nullptr;
};

void writeCell(lxw_worksheet* ws, lxw_row_t r, lxw_col_t c, const Cell& cell,
               lxw_format* dateFormat, lxw_format* hoursFormat) {
    switch (cell.kind) {
        case Cell::Kind::Number:
            worksheet_write_number(ws, r, c, cell.number, nullptr);
            return;
        case Cell::Kind::Hours:
            worksheet_write_number(ws, r, c, cell.number / 1440.0, hoursFormat);
            return;
        case Cell::Kind::Date: {
            lxw_datetime dt{cell.date.year(), cell.date.month(), cell.date.day(), 0, 0, 0.0};
            worksheet_write_datetime(ws, r, c, &dt, dateFormat);
            return;
        }
        case Cell::Kind::Text:
            if (!cell.text.isEmpty())
                worksheet_write_string(ws, r, c, cell.text.toUtf8().constData(), nullptr);
            return;
    }
}

}  // namespace

void writeXlsx(const ReportTable& table, const QString& path, const Progress& progress) {
    const QFileInfo target(path);
    QTemporaryFile temp(target.absolutePath() + QStringLiteral("/.") + target.fileName() +
                        QStringLiteral(".XXXXXX"));
    if (!temp.open())
        throw ReportError(QStringLiteral("Cannot write %1: %2").arg(path, temp.errorString()));
    const QString tempName = temp.fileName();
    temp.close();
    const int total = static_cast<int>(table.rows.size());

    {
        Workbook book(QFile::encodeName(tempName));
        if (!book.get())
            throw ReportError(
                QStringLiteral("Cannot write %1: the workbook cannot be created.").arg(path));
        lxw_worksheet* ws =
            workbook_add_worksheet(book.get(), sheetName(table.title).toUtf8().constData());
        lxw_format* bold = workbook_add_format(book.get());
        format_set_bold(bold);
        lxw_format* dateFormat = workbook_add_format(book.get());
        format_set_num_format(dateFormat, "dd/mm/yyyy");
        lxw_format* hoursFormat = workbook_add_format(book.get());
        format_set_num_format(hoursFormat, "[h]:mm");

        lxw_row_t r = 0;
        worksheet_write_string(ws, r++, 0, table.title.toUtf8().constData(), bold);
        for (const QString& line : table.heading)
            worksheet_write_string(ws, r++, 0, line.toUtf8().constData(), nullptr);
        ++r;
        const lxw_row_t headingRow = r;
        lxw_col_t c = 0;
        QVector<int> widths;
        for (const auto& key : table.keyColumns) {
            worksheet_write_string(ws, r, c++, key.first.toUtf8().constData(), bold);
            widths << std::max<int>(key.first.size(), key.second.text.size());
        }
        for (const Column& col : table.columns) {
            worksheet_write_string(ws, r, c++, col.heading.toUtf8().constData(), bold);
            widths << static_cast<int>(col.heading.size());
        }
        ++r;
        for (int i = 0; i < total; ++i, ++r) {
            if (progress && i % 500 == 0 && !progress(i, total)) throw ReportCancelled();
            const QVector<Cell>& row = table.rows[i];
            c = 0;
            for (const auto& key : table.keyColumns)
                writeCell(ws, r, c++, key.second, dateFormat, hoursFormat);
            for (int k = 0; k < row.size(); ++k, ++c) {
                writeCell(ws, r, c, row[k], dateFormat, hoursFormat);
                if (i < 2000) widths[c] = std::max(widths[c], static_cast<int>(row[k].text.size()));
            }
        }
        ++r;
        for (const QString& note : table.notes)
            worksheet_write_string(ws, r++, 0, note.toUtf8().constData(), nullptr);
        for (int k = 0; k < widths.size(); ++k)
            worksheet_set_column(ws, static_cast<lxw_col_t>(k), static_cast<lxw_col_t>(k),
                                 std::min(40, widths[k] + 2), nullptr);
        worksheet_freeze_panes(
            ws, headingRow + 1,
            static_cast<lxw_col_t>(table.keyColumns.size() + table.frozenColumns));
        const lxw_error err = book.close();
        if (err != LXW_NO_ERROR) {
            QFile::remove(tempName);
            throw ReportError(QStringLiteral("Cannot write %1: %2")
                                  .arg(path, QString::fromUtf8(lxw_strerror(err))));
        }
    }
    if (progress) progress(total, total);
    if (std::rename(QFile::encodeName(tempName).constData(), QFile::encodeName(path).constData()) !=
        0) {
        QFile::remove(tempName);
        throw ReportError(
            QStringLiteral("Cannot write %1: the file cannot be renamed into place.").arg(path));
    }
    temp.setAutoRemove(false);
}

}  // namespace qz2::reports
