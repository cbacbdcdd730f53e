#pragma once
// Date/time values as the attendance rules compute with them: a double counting days since
// 1899-12-30 00:00, so that a time of day is a fraction of a day (09:00 is 0.375), a
// difference of two times is a time, a negative difference shows as its absolute time of
// day and a total of 24 hours or more wraps round when shown as a time. Hours, grace time,
// schedules and every date written into SQL text go through this one type.

#include <QDate>
#include <QDateTime>
#include <QString>
#include <QStringView>
#include <QTime>
#include <QVariant>
#include <optional>

namespace qz2 {

class TimeValue {
public:
    constexpr TimeValue() = default;
    constexpr explicit TimeValue(double days) : m_days(days) {}

    static TimeValue fromDate(QDate date);                 // midnight of that day
    static TimeValue fromTime(QTime time);                 // time of day only (day 0)
    static TimeValue fromHM(int hours, int minutes);       // hours*1/24 + minutes/1440, any size
    static TimeValue fromDateTime(const QDateTime& dt);    // date plus time of day

    constexpr double days() const { return m_days; }

    // The calendar day: the whole part truncated toward zero, as date arithmetic does
    // (-1.25 is 1899-12-29 06:00). Rounds to the nearest second first.
    QDate date() const;
    // The time of day: the absolute fractional part, rounded to the nearest second
    // (-0.375 shows as 09:00; 1.0208333 as 00:30).
    QTime timeOfDay() const;
    int hour() const;    // timeOfDay().hour()
    int minute() const;  // timeOfDay().minute()

    TimeValue addMinutes(int minutes) const;  // interval "n"
    TimeValue addDays(int days) const;        // interval "d"
    // Interval "m": the same day number in the month `months` later, clamped to that
    // month's last day (31 Jan + 1 month = 28/29 Feb); the time of day is kept.
    TimeValue addMonths(int months) const;
    TimeValue addYears(int years) const;      // interval "yyyy", clamped like addMonths

    friend constexpr TimeValue operator+(TimeValue a, TimeValue b) { return TimeValue(a.m_days + b.m_days); }
    friend constexpr TimeValue operator-(TimeValue a, TimeValue b) { return TimeValue(a.m_days - b.m_days); }
    friend constexpr bool operator==(TimeValue a, TimeValue b) { return a.m_days == b.m_days; }
    friend constexpr auto operator<=>(TimeValue a, TimeValue b) { return a.m_days <=> b.m_days; }

    // Formats with one of the patterns the module uses; any other pattern falls back to
    // the default text (see toDefaultText).
    //   "hh:mm", "HH:mm"       two-digit 24-hour hour, colon, two-digit minute of the time of day
    //   "hh.mm"                the same with a full stop
    //   "dd/mm/yyyy"           day/month/year (the screen's date text)
    //   "yyyymmdd", "YYYYMMDD" compact date
    //   "yyyy/mm/dd"           year/month/day
    //   "mm/dd/yyyy"           month/day/year
    //   "yyyy-mm-dd"           ISO date (SQLite storage)
    //   "ddd"                  English short day name: Sun Mon Tue Wed Thu Fri Sat
    QString format(QStringView pattern) const;

    // The default text conversion: "HH:mm:ss" for a value of day 0 (0 itself shows as
    // "00:00:00"), "dd/mm/yyyy" for any other day with no time part, "dd/mm/yyyy HH:mm:ss"
    // otherwise.
    QString toDefaultText() const;

private:
    double m_days = 0.0;
};

// Free helpers named after the conversions the rules use.

// Text to date/time, leniently: accepts "dd/mm/yyyy", "yyyy/mm/dd", "yyyy-mm-dd",
// "yyyymmdd", "HH:mm", "HH:mm:ss", "hh.mm", "yyyy-mm-dd HH:mm:ss", "yyyy-mm-ddTHH:mm:ss",
// "dd/mm/yyyy HH:mm:ss"; surrounding blanks ignored. std::nullopt for anything else
// (including an empty text and impossible dates such as 31/02/2026).
std::optional<TimeValue> parseTimeValue(QStringView text);

// A time text ("HH:mm", "H:mm", "HH:mm:ss", "hh.mm") to a time of day; nullopt when not a time.
std::optional<TimeValue> parseTime(QStringView text);

// "dd/mm/yyyy" only (the screen's date text), nullopt otherwise.
std::optional<QDate> parseDmy(QStringView text);

// A value read from the database (QDateTime or QTime from ODBC, QDate, or SQLite's text
// "YYYY-MM-DD", "HH:MM:SS", "YYYY-MM-DD HH:MM:SS"; a number is taken as days) to a
// date/time value. nullopt for NULL, empty or unreadable values.
std::optional<TimeValue> timeValueFromDb(const QVariant& v);

// Lenient number conversion: the leading numeric characters of the trimmed text (an
// optional sign, digits, one decimal point), 0 when there are none. "2.5" -> 2.5,
// "12abc" -> 12, "abc" -> 0, "" -> 0, " -3" -> -3.
double val(QStringView text);

// Whole days from a to b (b - a), by calendar date.
qint64 dateDiffDays(QDate a, QDate b);
// Interval "yyyy": year(b) - year(a), whatever the months and days.
int dateDiffYears(QDate a, QDate b);

// The date text shown in grids and text boxes: "dd/mm/yyyy".
QString dateText(QDate date);

// English short day name of a date ("Sun".."Sat"), independent of the user's locale.
QString shortDayName(QDate date);

}  // namespace qz2
