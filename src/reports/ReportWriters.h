#pragma once
// The writers of the three formats. Each writes to a temporary file beside the requested
// one and renames it over that name only when everything is written, so a failure (a full
// disk, a folder that cannot be written, a cancelled report) never leaves a partial file
// under the requested name. Failures throw ReportError with a message for the clerk;
// cancelling through the progress callback throws ReportCancelled.

#include <QByteArray>
#include <QString>
#include <optional>

#include "reports/ReportData.h"
#include "reports/ReportTable.h"

class QPagedPaintDevice;

namespace qz2::reports {

class ReportCancelled : public ReportError {
public:
    ReportCancelled() : ReportError(QStringLiteral("The report was cancelled.")) {}
};

enum class Format { Pdf, Xlsx, Csv };
// "pdf", "xlsx", "csv" in any letter case; nullopt otherwise.
std::optional<Format> formatFromName(const QString& name);

// RFC 4180: UTF-8, comma separated, CRLF line ends, a field quoted when it holds a comma, a
// quote or a line break (its quotes doubled). The header line, then one line per row;
// dates as yyyy-mm-dd, numbers with a full stop, hours as "hh:mm".
QByteArray csvText(const ReportTable& table);
void writeCsv(const ReportTable& table, const QString& path);

// One worksheet: the title and heading lines, the column headings, then the rows with typed
// cells (numbers as numbers, dates as dates, hours as [h]:mm durations), then the notes.
void writeXlsx(const ReportTable& table, const QString& path, const Progress& progress = {});

// A4 (landscape or portrait as the table asks), as many pages as it needs: the title and
// headings and the column headings on every page, page numbers, columns too many for one
// width of paper split over further pages with the first columns repeated.
void writePdf(const ReportTable& table, const QString& path, const Progress& progress = {});
// The same drawing on any paged device (a printer, the print preview's). Returns the pages.
int paintReport(const ReportTable& table, QPagedPaintDevice& device, int resolution,
                const Progress& progress = {});

void writeReport(const ReportTable& table, Format format, const QString& path,
                 const Progress& progress = {});

}  // namespace qz2::reports
