// The paper writer: draws a ReportTable on A4 pages through QPainter, for a PDF file
// (QPdfWriter) or any other paged device (the printer and the print preview).

#include <QFontMetricsF>
#include <QHash>
#include <QPageLayout>
#include <QPageSize>
#include <QPagedPaintDevice>
#include <QPainter>
#include <QPdfWriter>
#include <QSaveFile>
#include <algorithm>
#include <cmath>

#include "reports/ReportWriters.h"

namespace qz2::reports {

namespace {

constexpr double kMarginMm = 10.0;

QString paperHeading(const Column& c) {
    return c.paperHeading.isEmpty() ? c.heading : c.paperHeading;
}

QPageLayout a4(bool landscape) {
    return QPageLayout(
        QPageSize(QPageSize::A4), landscape ? QPageLayout::Landscape : QPageLayout::Portrait,
        QMarginsF(kMarginMm, kMarginMm, kMarginMm, kMarginMm), QPageLayout::Millimeter);
}

QFont fontOf(double points, bool bold = false) {
    QFont f(QStringLiteral("DejaVu Sans"));
    f.setPointSizeF(points);
    f.setBold(bold);
    // No shaping means no ligatures: "fi" and "ffi" stay letters that a reader of the PDF (or
    // a search in it) finds.
    f.setStyleStrategy(QFont::PreferNoShaping);
    return f;
}

class Painter {
public:
    Painter(const ReportTable& t, QPagedPaintDevice& device, int resolution)
        : m_t(t), m_device(device), m_res(resolution) {
        m_wide = t.columns.size() > 20;
        const bool wide = m_wide;
        m_body = fontOf(wide ? 5.5 : 8.0);
        m_bold = fontOf(wide ? 5.5 : 8.0, true);
        m_title = fontOf(13.0, true);
        m_head = fontOf(8.5);
    }

    int run(const Progress& progress) {
        m_device.setPageLayout(a4(m_t.landscape));
        QPainter p;
        if (!p.begin(&m_device))
            throw ReportError(QStringLiteral("The report cannot be drawn on this device."));
        m_p = &p;
        const QRectF paper = m_device.pageLayout().paintRectPixels(m_res);
        m_width = paper.width();
        m_height = paper.height();
        measure();

        const int rows = static_cast<int>(m_t.rows.size());
        const int perPage =
            std::max(1, static_cast<int>((m_height - m_top - m_headRowH - m_footH) / m_rowH));
        const int pagesPerGroup = std::max(1, (rows + perPage - 1) / perPage);
        const int lastRows = rows == 0 ? 0 : rows - (pagesPerGroup - 1) * perPage;
        const double used = m_top + m_headRowH + lastRows * m_rowH;
        const bool endOnOwnPage = used + endHeight() > m_height - m_footH;
        m_pages = static_cast<int>(m_groups.size()) * pagesPerGroup + (endOnOwnPage ? 1 : 0);

        int page = 0;
        for (int g = 0; g < m_groups.size(); ++g) {
            for (int pg = 0; pg < pagesPerGroup; ++pg) {
                if (page > 0 && !m_device.newPage())
                    throw ReportError(QStringLiteral("A new page cannot be started."));
                ++page;
                if (progress && !progress(page, m_pages)) {
                    p.end();
                    throw ReportCancelled();
                }
                double y = drawTop(page);
                y = drawHeadingRow(g, y);
                const int first = pg * perPage;
                const int last = std::min(rows, first + perPage);
                for (int r = first; r < last; ++r) y = drawRow(g, r, y);
                if (rows == 0) {
                    p.setFont(m_body);
                    p.drawText(QPointF(0, y + m_rowH * 0.75), QStringLiteral("Nothing to report."));
                    y += m_rowH;
                }
                m_y = y;
            }
        }
        if (endOnOwnPage) {
            m_device.newPage();
            ++page;
            m_y = drawTop(page);
        }
        drawEnd(m_y + m_rowH * 0.5);
        p.end();
        return m_pages;
    }

private:
    double mm(double v) const { return v * m_res / 25.4; }

    double textWidth(const QFontMetricsF& fm, const QString& s) {
        auto it = m_widthCache.constFind(s);
        if (it != m_widthCache.constEnd()) return *it;
        const double w = fm.horizontalAdvance(s);
        m_widthCache.insert(s, w);
        return w;
    }

    void measure() {
        const QFontMetricsF body(m_body, &m_device);
        const QFontMetricsF bold(m_bold, &m_device);
        const QFontMetricsF title(m_title, &m_device);
        const QFontMetricsF head(m_head, &m_device);
        m_rowH = body.height() * 1.45;
        m_pad = mm(m_wide ? 0.5 : 0.8);
        const bool twoLineHeads = std::any_of(m_t.columns.cbegin(), m_t.columns.cend(),
                                              [](const Column& c) { return c.day; });
        m_headRowH = bold.height() * (twoLineHeads ? 2.4 : 1.5);
        m_top = title.height() * 1.4 + head.height() * 1.3 * m_t.heading.size() + mm(2);
        m_footH = body.height() * 2.0;

        const int n = static_cast<int>(m_t.columns.size());
        QVector<double> need(n, 0.0);
        for (int c = 0; c < n; ++c) {
            const Column& col = m_t.columns[c];
            for (const QString& part : col.day ? paperHeading(col).split(QLatin1Char(' '))
                                               : QStringList{paperHeading(col)})
                need[c] = std::max(need[c], bold.horizontalAdvance(part));
        }
        for (const QVector<Cell>& row : m_t.rows)
            for (int c = 0; c < n && c < row.size(); ++c)
                need[c] = std::max(need[c], textWidth(body, row[c].text));
        for (int c = 0; c < n; ++c) need[c] = std::min(need[c] + 2 * m_pad, m_width * 0.45);

        // Frozen columns in front of every group; the others fill groups in order.
        double frozen = 0;
        QVector<int> front;
        for (int c = 0; c < std::min(m_t.frozenColumns, n); ++c) {
            front << c;
            frozen += need[c];
        }
        QVector<int> group = front;
        double width = frozen;
        for (int c = static_cast<int>(front.size()); c < n; ++c) {
            if (group.size() > front.size() && width + need[c] > m_width) {
                m_groups << group;
                group = front;
                width = frozen;
            }
            group << c;
            width += need[c];
        }
        m_groups << group;
        // Each group spread over the width of the paper (at most two and a half times its need).
        for (const QVector<int>& g : m_groups) {
            double sum = 0;
            for (int c : g) sum += need[c];
            const double scale = sum > 0 ? std::min(2.5, m_width / sum) : 1.0;
            QVector<double> w;
            for (int c : g) w << need[c] * scale;
            m_groupWidths << w;
        }
    }

    double drawTop(int page) {
        QPainter& p = *m_p;
        p.setPen(Qt::black);
        const QFontMetricsF title(m_title, &m_device);
        const QFontMetricsF head(m_head, &m_device);
        double y = title.ascent();
        p.setFont(m_title);
        p.drawText(QPointF(0, y), m_t.title);
        y += title.descent() + title.height() * 0.4;
        p.setFont(m_head);
        for (const QString& line : m_t.heading) {
            y += head.ascent();
            p.drawText(QPointF(0, y), line);
            y += head.height() * 1.3 - head.ascent();
        }
        // Footer: the title and the page number.
        p.setFont(m_body);
        const QFontMetricsF body(m_body, &m_device);
        const double fy = m_height - body.descent();
        p.drawText(QPointF(0, fy), m_t.title);
        const QString number = QStringLiteral("Page %1 of %2").arg(page).arg(m_pages);
        p.drawText(QPointF(m_width - body.horizontalAdvance(number), fy), number);
        return m_top;
    }

    double drawHeadingRow(int g, double y) {
        QPainter& p = *m_p;
        p.setFont(m_bold);
        double x = 0;
        p.fillRect(QRectF(0, y, rowWidth(g), m_headRowH), QColor(225, 225, 225));
        for (int k = 0; k < m_groups[g].size(); ++k) {
            const Column& col = m_t.columns[m_groups[g][k]];
            const double w = m_groupWidths[g][k];
            const QRectF cell(x + m_pad, y, w - 2 * m_pad, m_headRowH);
            const Qt::Alignment h =
                col.day ? Qt::AlignHCenter : (col.right ? Qt::AlignRight : Qt::AlignLeft);
            QString text = paperHeading(col);
            if (col.day) text.replace(QLatin1Char(' '), QLatin1Char('\n'));
            p.drawText(cell, static_cast<int>(h | Qt::AlignVCenter), text);
            x += w;
        }
        p.setPen(QPen(Qt::black, mm(0.2)));
        p.drawLine(QPointF(0, y + m_headRowH), QPointF(rowWidth(g), y + m_headRowH));
        return y + m_headRowH;
    }

    double drawRow(int g, int r, double y) {
        QPainter& p = *m_p;
        const QVector<Cell>& row = m_t.rows[r];
        if (r % 2 == 1) p.fillRect(QRectF(0, y, rowWidth(g), m_rowH), QColor(244, 244, 244));
        const QFontMetricsF fm(m_body, &m_device);
        double x = 0;
        for (int k = 0; k < m_groups[g].size(); ++k) {
            const int c = m_groups[g][k];
            const Column& col = m_t.columns[c];
            const double w = m_groupWidths[g][k];
            const QString text = c < row.size() ? row[c].text : QString();
            if (!text.isEmpty()) {
                const bool conflict = text.startsWith(QLatin1Char('!'));
                p.setFont(conflict ? m_bold : m_body);
                p.setPen(conflict ? QColor(190, 0, 0) : QColor(Qt::black));
                const Qt::Alignment h =
                    col.day ? Qt::AlignHCenter : (col.right ? Qt::AlignRight : Qt::AlignLeft);
                const QRectF cell(x + m_pad, y, w - 2 * m_pad, m_rowH);
                p.drawText(cell, static_cast<int>(h | Qt::AlignVCenter),
                           fm.elidedText(text, Qt::ElideRight, cell.width() + 0.5));
            }
            if (col.day) {
                p.setPen(QPen(QColor(200, 200, 200), mm(0.1)));
                p.drawLine(QPointF(x, y), QPointF(x, y + m_rowH));
            }
            x += w;
        }
        p.setPen(Qt::black);
        return y + m_rowH;
    }

    double rowWidth(int g) const {
        double w = 0;
        for (double v : m_groupWidths[g]) w += v;
        return w;
    }

    double endHeight() const {
        const QFontMetricsF head(m_head, &m_device);
        double h = m_rowH * 0.5 + head.height() * 1.3 * m_t.notes.size();
        if (!m_t.signatures.isEmpty()) h += mm(22);
        return h;
    }

    void drawEnd(double y) {
        QPainter& p = *m_p;
        p.setPen(Qt::black);
        p.setFont(m_head);
        const QFontMetricsF head(m_head, &m_device);
        const double wrap = m_width;
        for (const QString& note : m_t.notes) {
            const QRectF box(0, y, wrap, head.height() * 3);
            const QRectF used = p.boundingRect(box, Qt::TextWordWrap, note);
            p.drawText(box, Qt::TextWordWrap, note);
            y += std::max(used.height(), head.height()) + head.height() * 0.3;
        }
        if (m_t.signatures.isEmpty()) return;
        y += mm(16);
        const double lineW = mm(70);
        double x = 0;
        for (const QString& who : m_t.signatures) {
            p.drawLine(QPointF(x, y), QPointF(x + lineW, y));
            p.drawText(QPointF(x, y + head.height()),
                       QStringLiteral("Signature of the %1").arg(who.toLower()));
            x += lineW + mm(25);
        }
    }

    const ReportTable& m_t;
    QPagedPaintDevice& m_device;
    int m_res;
    QPainter* m_p = nullptr;
    QFont m_body, m_bold, m_title, m_head;
    double m_width = 0, m_height = 0, m_rowH = 0, m_pad = 0, m_headRowH = 0, m_top = 0, m_footH = 0,
           m_y = 0;
    int m_pages = 1;
    bool m_wide = false;
    QVector<QVector<int>> m_groups;
    QVector<QVector<double>> m_groupWidths;
    QHash<QString, double> m_widthCache;
};

}  // namespace

int paintReport(const ReportTable& table, QPagedPaintDevice& device, int resolution,
                const Progress& progress) {
    Painter painter(table, device, resolution);
    return painter.run(progress);
}

void writePdf(const ReportTable& table, const QString& path, const Progress& progress) {
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        throw ReportError(QStringLiteral("Cannot write %1: %2").arg(path, file.errorString()));
    {
        QPdfWriter writer(&file);
        writer.setResolution(300);
        writer.setTitle(table.title);
        writer.setCreator(QStringLiteral("qz2-attendance"));
        writer.setPageLayout(a4(table.landscape));
        paintReport(table, writer, writer.resolution(), progress);
    }
    if (!file.flush() || file.error() != QFileDevice::NoError) {
        const QString why = file.errorString();
        file.cancelWriting();
        throw ReportError(QStringLiteral("Cannot write %1: %2").arg(path, why));
    }
    if (!file.commit())
        throw ReportError(QStringLiteral("Cannot write %1: %2").arg(path, file.errorString()));
}

}  // namespace qz2::reports
