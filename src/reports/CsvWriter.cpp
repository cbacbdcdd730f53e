// The CSV writer (RFC 4180, UTF-8).

#include <QSaveFile>

#include "reports/ReportWriters.h"

namespace qz2::reports {

namespace {

QString field(const QString& text) {
    if (!text.contains(QLatin1Char(',')) && !text.contains(QLatin1Char('"')) &&
        !text.contains(QLatin1Char('\n')) && !text.contains(QLatin1Char('\r')))
        return text;
    QString quoted = text;
    quoted.replace(QLatin1Char('"'), QStringLiteral("\"\""));
    return QLatin1Char('"') + quoted + QLatin1Char('"');
}

QString csvValue(const Cell& c) {
    switch (c.kind) {
        case Cell::Kind::Date:
            return c.date.toString(Qt::ISODate);
        case Cell::Kind::Text:
        case Cell::Kind::Number:
        case Cell::Kind::Hours:
            break;
    }
    return c.text;
}

void appendLine(QByteArray& out, const QStringList& fields) {
    QStringList quoted;
    quoted.reserve(fields.size());
    for (const QString& f : fields) quoted << field(f);
    out += quoted.join(QLatin1Char(',')).toUtf8();
    out += "\r\n";
}

}  // namespace

QByteArray csvText(const ReportTable& table) {
    QByteArray out;
    QStringList head;
    for (const auto& key : table.keyColumns) head << key.first;
    for (const Column& c : table.columns) head << c.heading;
    appendLine(out, head);
    QStringList line;
    for (const QVector<Cell>& row : table.rows) {
        line.clear();
        for (const auto& key : table.keyColumns) line << csvValue(key.second);
        for (const Cell& c : row) line << csvValue(c);
        appendLine(out, line);
    }
    return out;
}

void writeCsv(const ReportTable& table, const QString& path) {
    const QByteArray text = csvText(table);
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        throw ReportError(QStringLiteral("Cannot write %1: %2").arg(path, file.errorString()));
    // The data may sit in the file's buffer until now: a full disk shows only at the flush,
    // and commit() would rename a short file into place if it were not checked here.
    if (file.write(text) != text.size() || !file.flush()) {
        const QString why = file.errorString();
        file.cancelWriting();
        throw ReportError(QStringLiteral("Cannot write %1: %2").arg(path, why));
    }
    if (!file.commit())
        throw ReportError(QStringLiteral("Cannot write %1: %2").arg(path, file.errorString()));
}

std::optional<Format> formatFromName(const QString& name) {
    const QString n = name.trimmed().toLower();
    if (n == QLatin1String("pdf")) return Format::Pdf;
    if (n == QLatin1String("xlsx")) return Format::Xlsx;
    if (n == QLatin1String("csv")) return Format::Csv;
    return std::nullopt;
}

void writeReport(const ReportTable& table, Format format, const QString& path,
                 const Progress& progress) {
    switch (format) {
        case Format::Pdf:
            writePdf(table, path, progress);
            return;
        case Format::Xlsx:
            writeXlsx(table, path, progress);
            return;
        case Format::Csv:
            writeCsv(table, path);
            return;
    }
}

}  // namespace qz2::reports
