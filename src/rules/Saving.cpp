#include "rules/Saving.h"

#include <QSet>
#include <cmath>

namespace qz2::rules {

namespace {

const char* const kTypeMismatch = "Type mismatch";

}  // namespace

QDate requiredDate(const QString& text) {
    const auto d = cellDate(text.trimmed());
    if (!d) throw SaveDataError(kTypeMismatch);
    return *d;
}

namespace {

// A stored time: the cell's "hh:mm", or 00:00 for an empty cell.
TimeValue storedTime(const QString& text) {
    if (text.isEmpty()) return TimeValue();
    const auto t = cellTime(text);
    if (!t) throw SaveDataError(kTypeMismatch);
    return *t;
}

}  // namespace

QString decimalHoursText(double decimalHours) {
    const long long minutes = std::llround(std::fabs(decimalHours) * 60.0);
    return TimeValue::fromHM(static_cast<int>(minutes / 60), static_cast<int>(minutes % 60))
        .format(u"HH:mm");
}

std::optional<double> hoursToDecimal(const QString& hoursText) {
    const auto t = parseTimeValue(hoursText);
    if (!t) return std::nullopt;
    return t->hour() + t->minute() / 60.0;
}

QString dayTypeForMirrorRow(const FlexGridModel& dayGrid, const QString& dateText) {
    for (int r = 1; r < dayGrid.Rows(); ++r) {
        if (dayGrid.TextMatrix(r, daycol::Date) == dateText)
            return dayGrid.TextMatrix(r, daycol::Type).trimmed();
    }
    return {};
}

QList<DetailLine> fnMirrorDetailLines(const FlexGridModel& dayGrid, const FlexGridModel& mirror) {
    QList<DetailLine> lines;
    for (int r = 1; r < mirror.Rows(); ++r) {
        const QString dateCell = mirror.TextMatrix(r, paircol::Date);
        lines << DetailLine{r, requiredDate(dateCell), dayTypeForMirrorRow(dayGrid, dateCell),
                            storedTime(mirror.TextMatrix(r, paircol::CheckIn)),
                            storedTime(mirror.TextMatrix(r, paircol::CheckOut))};
    }
    return lines;
}

QList<DetailLine> fnInsertOtherDays(const FlexGridModel& dayGrid, const FlexGridModel& mirror,
                                    int& detailCounter) {
    QSet<QString> datesWithPairs;
    for (int r = 1; r < mirror.Rows(); ++r) datesWithPairs << mirror.TextMatrix(r, paircol::Date);

    QList<DetailLine> lines;
    for (int r = 1; r < dayGrid.Rows(); ++r) {
        const QString type = dayGrid.TextMatrix(r, daycol::Type).trimmed();
        const QString dateCell = dayGrid.TextMatrix(r, daycol::Date);
        const bool absentOrLeave = type == QLatin1String("A") || type == QLatin1String("L");
        // Every other day that has no pair gets its line too (a Sunday off, a present day
        // keyed without times, a half day without its pair), so that the stored entry holds
        // every day of its period and reopens with all of them. A day with recorded times was
        // written with the mirror's lines.
        const bool dayWithoutPairs = !datesWithPairs.contains(dateCell);
        if (!absentOrLeave && !dayWithoutPairs) continue;
        ++detailCounter;
        lines << DetailLine{detailCounter, requiredDate(dateCell), type, std::nullopt,
                            std::nullopt};
    }
    return lines;
}

QList<DetailLine> detailLinesToInsert(const FlexGridModel& dayGrid, const FlexGridModel& mirror) {
    QList<DetailLine> lines = fnMirrorDetailLines(dayGrid, mirror);
    int counter = static_cast<int>(lines.size());
    lines += fnInsertOtherDays(dayGrid, mirror, counter);
    return lines;
}

QList<AllowanceLine> allowanceLinesToInsert(const FlexGridModel& dayGrid, int allowanceId,
                                            int deductionId) {
    QList<AllowanceLine> lines;
    int detailId = 0;
    for (int r = 1; r < dayGrid.Rows(); ++r) {
        const QString code = dayGrid.TextMatrix(r, daycol::AllowanceType).trimmed();
        const bool allowance = code == QLatin1String("A");
        if (!allowance && code != QLatin1String("D")) continue;
        const QDate date = requiredDate(dayGrid.TextMatrix(r, daycol::Date));
        const auto hours = hoursToDecimal(dayGrid.TextMatrix(r, daycol::Hours));
        if (!hours) throw SaveDataError(kTypeMismatch);
        AllowanceLine line{++detailId, date, *hours, std::nullopt, std::nullopt};
        if (allowance)
            line.allowanceId = allowanceId;
        else
            line.deductionId = deductionId;
        lines << line;
    }
    return lines;
}

QString overlapMessage(const QString& entryNo, QDate start, QDate end) {
    return QStringLiteral("The period overlaps attendance entry %1 of this employee (%2 to %3), "
                          "which is not cancelled. Nothing was saved: correct the period, or "
                          "edit or cancel that entry first.")
        .arg(entryNo.trimmed(), dateText(start), dateText(end));
}

QStringList headerFingerprint(const QStringList& names, const QVector<QVariant>& values) {
    QStringList out;
    for (int i = 0; i < names.size() && i < values.size(); ++i)
        out << names[i].toLower() + QLatin1Char('=') +
                   (values[i].isNull() ? QStringLiteral("NULL") : values[i].toString());
    return out;
}

std::optional<QString> staleEditMessage(const QString& entryNo, const QStringList& opened,
                                        const QStringList& stored, bool storedCancelled) {
    const QString no = entryNo.trimmed();
    if (!stored.isEmpty() && storedCancelled)
        return QStringLiteral("%1 was cancelled since you opened it. Nothing was saved.").arg(no);
    if (stored.isEmpty() || stored != opened)
        return QStringLiteral("%1 was saved by another clerk since you opened it. Nothing was "
                              "saved: close this form and open the entry again to see their "
                              "changes.")
            .arg(no);
    return std::nullopt;
}

QString cleanedText(const QString& text) {
    QString out = text;
    for (QChar& c : out)
        if (c.category() == QChar::Other_Control) c = QLatin1Char(' ');
    return out.trimmed();
}

bool processAttendanceMissing(const FlexGridModel& dayGrid, const FlexGridModel& mirror) {
    if (dayGrid.Rows() < 2) return true;
    if (mirror.Rows() >= 2) return false;
    for (int r = 1; r < dayGrid.Rows(); ++r) {
        if (dayGrid.TextMatrix(r, daycol::Type).trimmed() != QLatin1String("P")) return true;
    }
    return false;
}

}  // namespace qz2::rules
