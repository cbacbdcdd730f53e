#include "shared/TimeValue.h"

#include <QDateTime>
#include <QRegularExpression>

#include <array>
#include <cmath>
#include <cstdlib>

namespace qz2 {

namespace {

constexpr qint64 kSecsPerDay = 86400;
constexpr qint64 kMsecsPerDay = 86400 * 1000;

// Anything further from day 0 than this is not a date any calendar here can show (year
// 9999 is under three million days away); it also keeps the rounding below in range.
constexpr double kMaxAbsDays = 1.0e9;

QDate epoch() { return QDate(1899, 12, 30); }

bool representable(double days) { return std::isfinite(days) && std::fabs(days) <= kMaxAbsDays; }

// A value split into its calendar day (whole part truncated toward zero) and the absolute
// fractional part, counted in `unitsPerDay` units after rounding to the nearest unit.
struct Split {
    qint64 day = 0;
    qint64 ofDay = 0;
};

Split split(double days, qint64 unitsPerDay) {
    const qint64 units = std::llround(days * static_cast<double>(unitsPerDay));
    return Split{units / unitsPerDay, std::llabs(units % unitsPerDay)};
}

// Builds the value of a calendar day number plus a time of day. Days before 1899-12-30
// carry their time of day as a negative fraction (-1.25 is 1899-12-29 06:00), the way the
// value splits back in split().
double compose(qint64 day, qint64 msecsOfDay) {
    const double fraction = static_cast<double>(msecsOfDay) / static_cast<double>(kMsecsPerDay);
    return day >= 0 ? static_cast<double>(day) + fraction : static_cast<double>(day) - fraction;
}

// Milliseconds on a continuous time line (0 = 1899-12-30 00:00), so that minute and day
// arithmetic moves through midnight and through day 0 the way a clock does.
qint64 toLinearMsecs(double days) {
    const Split s = split(days, kMsecsPerDay);
    return s.day * kMsecsPerDay + s.ofDay;
}

TimeValue fromLinearMsecs(qint64 msecs) {
    qint64 day = msecs / kMsecsPerDay;
    qint64 rest = msecs % kMsecsPerDay;
    if (rest < 0) {
        --day;
        rest += kMsecsPerDay;
    }
    return TimeValue(compose(day, rest));
}

TimeValue fromDateAndMsecs(QDate date, qint64 msecsOfDay) {
    if (!date.isValid()) return TimeValue();
    return TimeValue(compose(epoch().daysTo(date), msecsOfDay));
}

QString twoDigits(int n) { return QStringLiteral("%1").arg(n, 2, 10, QLatin1Char('0')); }
QString fourDigits(int n) { return QStringLiteral("%1").arg(n, 4, 10, QLatin1Char('0')); }

QString timeText(QTime t, QChar separator, bool withSeconds) {
    QString s = twoDigits(t.hour()) + separator + twoDigits(t.minute());
    if (withSeconds) s += QLatin1Char(':') + twoDigits(t.second());
    return s;
}

// ---- Text parsing ---------------------------------------------------------------------

int toInt(const QString& digits) { return digits.toInt(); }

std::optional<QDate> makeDate(int year, int month, int day) {
    const QDate d(year, month, day);
    if (!d.isValid()) return std::nullopt;
    return d;
}

std::optional<qint64> makeTime(int h, int m, int s, int ms) {
    if (h < 0 || h > 23 || m < 0 || m > 59 || s < 0 || s > 59 || ms < 0 || ms > 999)
        return std::nullopt;
    return ((static_cast<qint64>(h) * 60 + m) * 60 + s) * 1000 + ms;
}

// Milliseconds from a fraction-of-second text such as "5", "50" or "500".
int fractionMsecs(const QString& digits) {
    if (digits.isEmpty()) return 0;
    QString padded = digits.left(3);
    while (padded.size() < 3) padded += QLatin1Char('0');
    return padded.toInt();
}

// "H:mm", "HH:mm", "HH:mm:ss" and (when allowed) "HH:mm:ss.fff"; "hh.mm" when allowed.
std::optional<qint64> parseTimeText(const QString& text, bool allowStop, bool allowFraction) {
    static const QRegularExpression colon(
        QStringLiteral("^(\\d{1,2}):(\\d{2})(?::(\\d{2})(?:\\.(\\d{1,9}))?)?$"));
    static const QRegularExpression stop(QStringLiteral("^(\\d{1,2})\\.(\\d{2})$"));

    if (const auto m = colon.match(text); m.hasMatch()) {
        if (!allowFraction && m.capturedLength(4) > 0) return std::nullopt;
        const int secs = m.capturedLength(3) > 0 ? toInt(m.captured(3)) : 0;
        return makeTime(toInt(m.captured(1)), toInt(m.captured(2)), secs,
                        fractionMsecs(m.captured(4)));
    }
    if (allowStop) {
        if (const auto m = stop.match(text); m.hasMatch())
            return makeTime(toInt(m.captured(1)), toInt(m.captured(2)), 0, 0);
    }
    return std::nullopt;
}

std::optional<QDate> parseDmyText(const QString& text) {
    static const QRegularExpression dmy(QStringLiteral("^(\\d{1,2})/(\\d{1,2})/(\\d{4})$"));
    const auto m = dmy.match(text);
    if (!m.hasMatch()) return std::nullopt;
    return makeDate(toInt(m.captured(3)), toInt(m.captured(2)), toInt(m.captured(1)));
}

// Every date text the module reads: "dd/mm/yyyy", "yyyy/mm/dd", "yyyy-mm-dd", "yyyymmdd".
std::optional<QDate> parseDateText(const QString& text) {
    static const QRegularExpression ymdSlash(QStringLiteral("^(\\d{4})/(\\d{1,2})/(\\d{1,2})$"));
    static const QRegularExpression ymdDash(QStringLiteral("^(\\d{4})-(\\d{1,2})-(\\d{1,2})$"));
    static const QRegularExpression compact(QStringLiteral("^(\\d{4})(\\d{2})(\\d{2})$"));

    if (auto d = parseDmyText(text)) return d;
    for (const QRegularExpression* re : {&ymdSlash, &ymdDash, &compact}) {
        if (const auto m = re->match(text); m.hasMatch())
            return makeDate(toInt(m.captured(1)), toInt(m.captured(2)), toInt(m.captured(3)));
    }
    return std::nullopt;
}

std::optional<TimeValue> parseText(QStringView input, bool allowFraction) {
    const QString text = input.trimmed().toString();
    if (text.isEmpty()) return std::nullopt;

    if (auto d = parseDateText(text)) return TimeValue::fromDate(*d);
    if (auto t = parseTimeText(text, /*allowStop=*/true, allowFraction))
        return TimeValue(compose(0, *t));

    // A date and a time separated by blanks or by the ISO "T".
    static const QRegularExpression dateTime(QStringLiteral("^(\\S+?)(?:\\s+|T)(\\S+)$"));
    if (const auto m = dateTime.match(text); m.hasMatch()) {
        const auto d = parseDateText(m.captured(1));
        const auto t = parseTimeText(m.captured(2), /*allowStop=*/false, allowFraction);
        if (d && t) return fromDateAndMsecs(*d, *t);
    }
    return std::nullopt;
}

}  // namespace

// ---- TimeValue ------------------------------------------------------------------------

TimeValue TimeValue::fromDate(QDate date) { return fromDateAndMsecs(date, 0); }

TimeValue TimeValue::fromTime(QTime time) {
    if (!time.isValid()) return TimeValue();
    return TimeValue(compose(0, time.msecsSinceStartOfDay()));
}

TimeValue TimeValue::fromHM(int hours, int minutes) {
    // The same division as a parsed time, so that equal clock times compare equal.
    const qint64 msecs = (static_cast<qint64>(hours) * 60 + minutes) * 60 * 1000;
    return TimeValue(static_cast<double>(msecs) / static_cast<double>(kMsecsPerDay));
}

TimeValue TimeValue::fromDateTime(const QDateTime& dt) {
    if (!dt.isValid()) return TimeValue();
    const QTime t = dt.time();
    return fromDateAndMsecs(dt.date(), t.isValid() ? t.msecsSinceStartOfDay() : 0);
}

QDate TimeValue::date() const {
    if (!representable(m_days)) return {};
    return epoch().addDays(split(m_days, kSecsPerDay).day);
}

QTime TimeValue::timeOfDay() const {
    if (!representable(m_days)) return {};
    const Split s = split(m_days, kSecsPerDay);
    return QTime::fromMSecsSinceStartOfDay(static_cast<int>(s.ofDay * 1000));
}

int TimeValue::hour() const { return timeOfDay().hour(); }
int TimeValue::minute() const { return timeOfDay().minute(); }

TimeValue TimeValue::addMinutes(int minutes) const {
    if (!representable(m_days)) return *this;
    return fromLinearMsecs(toLinearMsecs(m_days) + static_cast<qint64>(minutes) * 60 * 1000);
}

TimeValue TimeValue::addDays(int days) const {
    if (!representable(m_days)) return *this;
    return fromLinearMsecs(toLinearMsecs(m_days) + static_cast<qint64>(days) * kMsecsPerDay);
}

TimeValue TimeValue::addMonths(int months) const {
    if (!representable(m_days)) return *this;
    const Split s = split(m_days, kMsecsPerDay);
    // QDate::addMonths already clamps to the last day of a shorter month.
    return fromDateAndMsecs(epoch().addDays(s.day).addMonths(months), s.ofDay);
}

TimeValue TimeValue::addYears(int years) const {
    if (!representable(m_days)) return *this;
    const Split s = split(m_days, kMsecsPerDay);
    return fromDateAndMsecs(epoch().addDays(s.day).addYears(years), s.ofDay);
}

QString TimeValue::format(QStringView pattern) const {
    if (!representable(m_days)) return {};
    const auto is = [pattern](const char* p) {
        return pattern.compare(QLatin1String(p), Qt::CaseInsensitive) == 0;
    };

    if (is("hh:mm")) return timeText(timeOfDay(), QLatin1Char(':'), false);
    if (is("hh.mm")) return timeText(timeOfDay(), QLatin1Char('.'), false);

    const QDate d = date();
    if (is("dd/mm/yyyy")) return dateText(d);
    if (is("yyyymmdd")) return fourDigits(d.year()) + twoDigits(d.month()) + twoDigits(d.day());
    if (is("yyyy/mm/dd"))
        return fourDigits(d.year()) + QLatin1Char('/') + twoDigits(d.month()) + QLatin1Char('/') +
               twoDigits(d.day());
    if (is("mm/dd/yyyy"))
        return twoDigits(d.month()) + QLatin1Char('/') + twoDigits(d.day()) + QLatin1Char('/') +
               fourDigits(d.year());
    if (is("yyyy-mm-dd"))
        return fourDigits(d.year()) + QLatin1Char('-') + twoDigits(d.month()) + QLatin1Char('-') +
               twoDigits(d.day());
    if (is("ddd")) return shortDayName(d);
    return toDefaultText();
}

QString TimeValue::toDefaultText() const {
    if (!representable(m_days)) return {};
    const Split s = split(m_days, kSecsPerDay);
    const QTime t = timeOfDay();
    if (s.day == 0) return timeText(t, QLatin1Char(':'), true);
    if (s.ofDay == 0) return dateText(date());
    return dateText(date()) + QLatin1Char(' ') + timeText(t, QLatin1Char(':'), true);
}

// ---- Free helpers ---------------------------------------------------------------------

std::optional<TimeValue> parseTimeValue(QStringView text) { return parseText(text, false); }

std::optional<TimeValue> parseTime(QStringView text) {
    const auto t = parseTimeText(text.trimmed().toString(), /*allowStop=*/true, false);
    if (!t) return std::nullopt;
    return TimeValue(compose(0, *t));
}

std::optional<QDate> parseDmy(QStringView text) { return parseDmyText(text.trimmed().toString()); }

std::optional<TimeValue> timeValueFromDb(const QVariant& v) {
    if (!v.isValid() || v.isNull()) return std::nullopt;

    switch (v.typeId()) {
    case QMetaType::QDateTime: {
        const QDateTime dt = v.toDateTime();
        if (!dt.isValid()) return std::nullopt;
        return TimeValue::fromDateTime(dt);
    }
    case QMetaType::QDate: {
        const QDate d = v.toDate();
        if (!d.isValid()) return std::nullopt;
        return TimeValue::fromDate(d);
    }
    case QMetaType::QTime: {
        const QTime t = v.toTime();
        if (!t.isValid()) return std::nullopt;
        return TimeValue::fromTime(t);
    }
    case QMetaType::Double:
    case QMetaType::Float:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::Long:
    case QMetaType::ULong: {
        bool ok = false;
        const double days = v.toDouble(&ok);
        if (!ok || !std::isfinite(days)) return std::nullopt;
        return TimeValue(days);
    }
    case QMetaType::QString:
    case QMetaType::QByteArray: {
        const QString text = v.toString().trimmed();
        if (text.isEmpty()) return std::nullopt;
        // SQLite keeps a time stamp as text, sometimes with milliseconds.
        if (auto parsed = parseText(text, /*allowFraction=*/true)) return parsed;
        // A number stored in a text column counts as days, as a numeric column would.
        bool ok = false;
        const double days = text.toDouble(&ok);
        if (ok && std::isfinite(days)) return TimeValue(days);
        return std::nullopt;
    }
    default:
        return std::nullopt;
    }
}

double val(QStringView text) {
    const QStringView t = text.trimmed();
    qsizetype i = 0;
    QString number;
    if (i < t.size() && (t[i] == QLatin1Char('+') || t[i] == QLatin1Char('-'))) {
        if (t[i] == QLatin1Char('-')) number += QLatin1Char('-');
        ++i;
    }
    bool seenPoint = false;
    bool seenDigit = false;
    for (; i < t.size(); ++i) {
        const QChar c = t[i];
        if (c >= QLatin1Char('0') && c <= QLatin1Char('9')) {
            number += c;
            seenDigit = true;
        } else if (c == QLatin1Char('.') && !seenPoint) {
            number += c;
            seenPoint = true;
        } else {
            break;
        }
    }
    if (!seenDigit) return 0.0;
    if (number.endsWith(QLatin1Char('.'))) number.chop(1);
    bool ok = false;
    const double result = number.toDouble(&ok);
    return ok ? result : 0.0;
}

qint64 dateDiffDays(QDate a, QDate b) {
    if (!a.isValid() || !b.isValid()) return 0;
    return a.daysTo(b);
}

int dateDiffYears(QDate a, QDate b) {
    if (!a.isValid() || !b.isValid()) return 0;
    return b.year() - a.year();
}

QString dateText(QDate date) {
    if (!date.isValid()) return {};
    return twoDigits(date.day()) + QLatin1Char('/') + twoDigits(date.month()) + QLatin1Char('/') +
           fourDigits(date.year());
}

QString shortDayName(QDate date) {
    static const std::array<const char*, 7> names = {"Mon", "Tue", "Wed", "Thu",
                                                     "Fri", "Sat", "Sun"};
    if (!date.isValid()) return {};
    return QString::fromLatin1(names[static_cast<std::size_t>(date.dayOfWeek() - 1)]);
}

}  // namespace qz2
