#include "demo/DemoData.h"

#include <QFile>
#include <QHash>
#include <QSet>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <algorithm>
#include <array>
#include <cstdint>
#include <initializer_list>
#include <map>
#include <random>
#include <stdexcept>
#include <utility>
#include <vector>

#include "history/HistoryStore.h"

namespace qz2::demo {
namespace {

constexpr int kInterfaceId = 91029;
constexpr int kCompany = 1;
constexpr int kSecondCompany = 2;
constexpr int kCurrencyId = 1;
constexpr int kWorkTimeId = 1;

// The logical table names the module resolves through the link table.
const std::array<const char*, 24> kLogicalTables = {"pusers",
                                                    "pCalenderHeader",
                                                    "pemployee",
                                                    "pCalenderDetail",
                                                    "pEmployeeAttendence",
                                                    "pEmpAttendanceDetail",
                                                    "ptables",
                                                    "pEmpAttendanceAllowanceDeductions",
                                                    "pSettings",
                                                    "pCurrencyMaster",
                                                    "pLeaveCancellationHeader",
                                                    "pleavecancellationdetail",
                                                    "PEmployeeLeaves",
                                                    "pleaveregisterDetail",
                                                    "pleaveregisterheader",
                                                    "pCalendarWTSheader",
                                                    "pMonthlyPayrollProcessing",
                                                    "pCalendarWorkTimeSettings",
                                                    "pEmpMonthlyEntryHeader",
                                                    "pDepartment",
                                                    "ptablecolumns",
                                                    "puserrights",
                                                    "pPrefix",
                                                    "pCurrencyallowdeddetails"};

const std::array<const char*, 40> kFirstNames = {
    "Anna",   "Ben",   "Clara", "David",  "Elena",  "Frank", "Grace",  "Henry", "Irene",  "Jack",
    "Karen",  "Leo",   "Maria", "Nathan", "Olivia", "Peter", "Quinn",  "Rosa",  "Samuel", "Tina",
    "Victor", "Wendy", "Adam",  "Bella",  "Carl",   "Diana", "Edward", "Fiona", "George", "Helen",
    "Ivan",   "Julia", "Kevin", "Laura",  "Martin", "Nora",  "Oscar",  "Paula", "Robert", "Sara"};

const std::array<const char*, 40> kLastNames = {
    "Abbott", "Baker",  "Carter", "Dawson", "Ellis",  "Fletcher", "Graham", "Hughes",
    "Ingram", "Jensen", "Keller", "Lawson", "Mills",  "Norton",   "Owens",  "Parker",
    "Quincy", "Reed",   "Shaw",   "Turner", "Upton",  "Vaughn",   "Walsh",  "Young",
    "Barnes", "Cole",   "Doyle",  "Foster", "Grant",  "Hayes",    "Irwin",  "Jordan",
    "Knight", "Lane",   "Moore",  "Nash",   "Porter", "Riley",    "Stone",  "Wade"};

const std::array<const char*, 5> kDepartments = {"Administration", "Production", "Sales", "Stores",
                                                 "Accounts"};

// ---------------------------------------------------------------------------------
// Small helpers

[[noreturn]] void fail(const QString& what, const QSqlError& error) {
    throw std::runtime_error((what + QStringLiteral(": ") + error.text()).toStdString());
}

QString iso(QDate d) {
    return d.toString(QStringLiteral("yyyy-MM-dd"));
}

// Minutes after midnight as the stored time-of-day text.
QString hms(int minutes) {
    return QString::asprintf("%02d:%02d:00", minutes / 60, minutes % 60);
}

// A time of day or SQL NULL when the time is absent (negative).
QVariant timeOrNull(int minutes) {
    return minutes < 0 ? QVariant() : QVariant(hms(minutes));
}

// Work-time day number: Sunday 1 .. Saturday 7.
int dayId(QDate d) {
    return d.dayOfWeek() % 7 + 1;
}

QDate monthStart(QDate d) {
    return QDate(d.year(), d.month(), 1);
}
QDate monthEnd(QDate first) {
    return first.addMonths(1).addDays(-1);
}

// The n-th (from 1) given weekday (Qt numbering, Monday 1) of the month starting at `first`.
QDate nthWeekday(QDate first, int weekday, int n) {
    QDate d = first;
    while (d.dayOfWeek() != weekday) d = d.addDays(1);
    return d.addDays(7 * (n - 1));
}

// Deterministic draws: plain modulo over a fixed-seed Mersenne twister, so that the
// same seed gives the same database with every standard library.
class Rng {
public:
    explicit Rng(std::uint32_t seed) : m_gen(seed) {}
    int range(int lo, int hi) {
        return lo + static_cast<int>(m_gen() % static_cast<std::uint32_t>(hi - lo + 1));
    }
    bool chance(int percent) { return range(0, 99) < percent; }

private:
    std::mt19937 m_gen;
};

// One prepared INSERT reused for every row of a table.
class Insert {
public:
    Insert(QSqlDatabase& db, const QString& table, const QStringList& columns)
        : m_query(db), m_table(table), m_count(static_cast<int>(columns.size())) {
        QStringList marks;
        for (int i = 0; i < m_count; ++i) marks << QStringLiteral("?");
        const QString sql =
            QStringLiteral("INSERT INTO %1 (%2) VALUES (%3)")
                .arg(table, columns.join(QLatin1Char(',')), marks.join(QLatin1Char(',')));
        if (!m_query.prepare(sql))
            fail(QStringLiteral("Preparing the insert into ") + table, m_query.lastError());
    }

    void operator()(std::initializer_list<QVariant> values) {
        if (static_cast<int>(values.size()) != m_count)
            throw std::logic_error("insert into " + m_table.toStdString() +
                                   ": wrong number of values");
        int i = 0;
        for (const QVariant& v : values) m_query.bindValue(i++, v);
        if (!m_query.exec()) fail(QStringLiteral("Inserting into ") + m_table, m_query.lastError());
    }

private:
    QSqlQuery m_query;
    QString m_table;
    int m_count;
};

// Runs `fill` inside one transaction; rolls back and rethrows when it throws.
template <typename Fill>
void inTransaction(QSqlDatabase& db, Fill&& fill) {
    if (!db.isOpen()) throw std::runtime_error("The database connection is not open");
    if (!db.transaction()) fail(QStringLiteral("Starting the transaction"), db.lastError());
    try {
        fill();
        if (!db.commit()) fail(QStringLiteral("Committing the demo data"), db.lastError());
    } catch (...) {
        db.rollback();
        throw;
    }
}

// ---------------------------------------------------------------------------------
// Work-time schedules and holidays

// Scheduled pairs per day number (index 1..7), minutes after midnight.
using DaySchedule = std::vector<std::pair<int, int>>;
using WeekSchedule = std::array<DaySchedule, 8>;

WeekSchedule demoSchedule() {
    WeekSchedule s;
    for (int day = 2; day <= 5; ++day) s[day] = {{9 * 60, 13 * 60}, {14 * 60, 18 * 60}};  // Mon-Thu
    s[6] = {{9 * 60, 13 * 60}, {14 * 60, 16 * 60}};                                       // Friday
    s[7] = {{9 * 60, 13 * 60}};  // Saturday
    return s;                    // Sunday off
}

WeekSchedule secondCompanySchedule() {
    WeekSchedule s;
    for (int day = 2; day <= 6; ++day) s[day] = {{7 * 60 + 30, 11 * 60 + 30}, {12 * 60, 15 * 60}};
    return s;
}

int scheduledMinutes(const DaySchedule& day) {
    int total = 0;
    for (const auto& [in, out] : day) total += out - in;
    return total;
}

struct Holiday {
    QDate date;
    QString name;
};

// A year's holidays: a fixed list, plus a "Company Day" on the second Wednesday of each
// month in `mustHave` that the list leaves without a holiday.
std::vector<Holiday> holidaysOf(int year, const QSet<int>& mustHave) {
    struct Fixed {
        int month, day;
        const char* name;
    };
    static const Fixed kFixed[] = {{1, 1, "New Year's Day"},   {1, 26, "Founders' Day"},
                                   {3, 21, "Spring Festival"}, {4, 10, "Orchard Day"},
                                   {5, 1, "Labour Day"},       {8, 15, "Harvest Day"},
                                   {10, 2, "Remembrance Day"}, {12, 24, "Christmas Eve"},
                                   {12, 25, "Christmas Day"},  {12, 26, "Boxing Day"}};
    std::vector<Holiday> out;
    QSet<int> months;
    for (const Fixed& f : kFixed) {
        out.push_back({QDate(year, f.month, f.day), QString::fromLatin1(f.name)});
        months.insert(f.month);
    }
    for (int m : mustHave) {
        if (months.contains(m)) continue;
        out.push_back(
            {nthWeekday(QDate(year, m, 1), Qt::Wednesday, 2), QStringLiteral("Company Day")});
    }
    std::sort(out.begin(), out.end(),
              [](const Holiday& a, const Holiday& b) { return a.date < b.date; });
    return out;
}

// Writes one calendar per year from firstYear to lastYear and returns the holiday dates.
QSet<QDate> writeCalendars(QSqlDatabase& db, int company, int firstYear, int lastYear,
                           QDate processDate) {
    // The process date's month and the three before it always have a holiday, so that
    // both the stored entries and a new entry show one.
    QHash<int, QSet<int>> mustHave;
    for (int k = 0; k <= 3; ++k) {
        const QDate m = monthStart(processDate).addMonths(-k);
        mustHave[m.year()].insert(m.month());
    }
    Insert header(db, QStringLiteral("pCalenderHeader"),
                  {"companyid", "CalenderID", "financialid", "departmentid", "CalenderName"});
    Insert detail(db, QStringLiteral("pCalenderDetail"),
                  {"companyid", "CalenderID", "HolidayDate", "HolidayDescription"});
    QSet<QDate> dates;
    int calendarId = 0;
    for (int year = firstYear; year <= lastYear; ++year) {
        ++calendarId;
        header({company, calendarId, year, QVariant(), QStringLiteral("Holidays %1").arg(year)});
        for (const Holiday& h : holidaysOf(year, mustHave.value(year))) {
            detail({company, calendarId, iso(h.date), h.name});
            dates.insert(h.date);
        }
    }
    return dates;
}

void writeWorkTime(QSqlDatabase& db, int company, const WeekSchedule& schedule,
                   const QString& description) {
    Insert header(db, QStringLiteral("pCalendarWTSheader"),
                  {"cwtsCompanyID", "cwtsid", "cwtsdepartmentid", "cwtsDescription"});
    header({company, kWorkTimeId, QVariant(), description});
    Insert line(
        db, QStringLiteral("pCalendarWorkTimeSettings"),
        {"cwtsCompanyID", "cwtsid", "cwtsDayID", "cwtsCheckIn1", "cwtsCheckOut1", "cwtsCheckIn2",
         "cwtsCheckOut2", "cwtsCheckIn3", "cwtsCheckOut3", "cwtsCheckIn4", "cwtsCheckOut4"});
    for (int day = 1; day <= 7; ++day) {
        const DaySchedule& pairs = schedule[day];
        if (pairs.empty()) continue;  // a day off has no line at all
        auto at = [&](std::size_t i, bool out) {
            return i < pairs.size() ? timeOrNull(out ? pairs[i].second : pairs[i].first)
                                    : QVariant();
        };
        line({company, kWorkTimeId, day, at(0, false), at(0, true), at(1, false), at(1, true),
              at(2, false), at(2, true), at(3, false), at(3, true)});
    }
}

// ---------------------------------------------------------------------------------
// Reference data shared by the demo and the benchmark

void writeLinkTable(QSqlDatabase& db) {
    Insert link(db, QStringLiteral("linktable"), {"tablename", "linktablename"});
    for (const char* name : kLogicalTables)
        link({QString::fromLatin1(name), QString::fromLatin1(name)});
}

void writeUsers(QSqlDatabase& db) {
    Insert pusers(db, QStringLiteral("pusers"), {"userid", "username", "companyid"});
    Insert ausers(db, QStringLiteral("ausers"), {"userid", "username", "companyid"});
    const std::pair<int, const char*> users[] = {
        {1, "admin"}, {2, "clerk"}, {3, "viewer"}, {4, "reader"}};
    for (const auto& [id, name] : users) {
        pusers({id, QString::fromLatin1(name), kCompany});
        ausers({id, QString::fromLatin1(name), kCompany});
    }
    // User 1 has every right without a row; user 4 has no row for this screen.
    Insert rights(db, QStringLiteral("puserrights"), {"userid", "interfaceid", "functionrights"});
    rights({2, kInterfaceId, QStringLiteral("NE")});
    rights({3, kInterfaceId, QStringLiteral("ADMIN")});
}

void writeCatalogue(QSqlDatabase& db) {
    Insert tables(db, QStringLiteral("ptables"), {"tableid", "tablename"});
    tables({1, QStringLiteral("pEmployeeAttendence")});
    Insert columns(db, QStringLiteral("ptablecolumns"),
                   {"tableid", "columnid", "columnname", "columnheader"});
    const std::pair<const char*, const char*> cols[] = {{"eaID", "Attendance ID"},
                                                        {"eaNo", "Attendance No"},
                                                        {"eaDate", "Date"},
                                                        {"ename", "Employee Name"},
                                                        {"eacancelled", "Cancelled"}};
    int id = 0;
    for (const auto& [name, heading] : cols)
        columns({1, ++id, QString::fromLatin1(name), QString::fromLatin1(heading)});
}

void writeCurrency(QSqlDatabase& db, const std::vector<std::array<int, 3>>& perCompany) {
    Insert currency(db, QStringLiteral("pCurrencyMaster"),
                    {"CurrencyID", "CurrencyCode", "CurrencyName"});
    currency({kCurrencyId, QStringLiteral("EUR"), QStringLiteral("Euro")});
    Insert heads(db, QStringLiteral("pCurrencyallowdeddetails"),
                 {"companyID", "CurrencyID", "Overtimeallowanceid", "latecomingdedid"});
    for (const auto& [company, allowance, deduction] : perCompany)
        heads({company, kCurrencyId, allowance, deduction});
}

struct CompanySettings {
    int company;
    int graceTime;
    bool considerLeaveHolidays;
    bool rateFromEmployeeMaster;
    int noofPreviousdays;
};

void writeCompanies(QSqlDatabase& db,
                    const std::vector<std::pair<CompanySettings, QString>>& companies,
                    const QHash<int, QString>& prefixes, int payYear) {
    Insert company(db, QStringLiteral("pCompany"), {"CompanyID", "CompanyName"});
    Insert settings(
        db, QStringLiteral("pSettings"),
        {"companyid", "gracetime", "ConsiderLeaveHolidays", "PerHourRateFromEmployeeMaster",
         "calendardepwise", "cwtsdepwise", "noofPreviousdays"});
    Insert prefix(db, QStringLiteral("pPrefix"), {"companyid", "InterfaceID", "Prefix"});
    Insert payMonth(db, QStringLiteral("pPayMonthStartDate"),
                    {"companyid", "paymonth", "startdate"});
    for (const auto& [s, name] : companies) {
        company({s.company, name});
        settings({s.company, s.graceTime, s.considerLeaveHolidays ? 1 : 0,
                  s.rateFromEmployeeMaster ? 1 : 0, 0, 0, s.noofPreviousdays});
        prefix({s.company, kInterfaceId, prefixes.value(s.company)});
        for (int m = 1; m <= 12; ++m) payMonth({s.company, m, iso(QDate(payYear, m, 1))});
    }
}

void writeLeaveMaster(QSqlDatabase& db, const std::vector<int>& companies) {
    Insert leaves(db, QStringLiteral("pleaves"), {"lCompanyID", "lLeaveID", "lLeaveName"});
    for (int company : companies) {
        leaves({company, 1, QStringLiteral("Casual Leave")});
        leaves({company, 2, QStringLiteral("Sick Leave")});
        leaves({company, 3, QStringLiteral("Earned Leave")});
    }
}

QString personName(int index) {
    const int f = index % static_cast<int>(kFirstNames.size());
    const int l = (index * 17 + index / static_cast<int>(kFirstNames.size())) %
                  static_cast<int>(kLastNames.size());
    return QString::fromLatin1(kFirstNames[f]) + QLatin1Char(' ') +
           QString::fromLatin1(kLastNames[l]);
}

// ---------------------------------------------------------------------------------
// Demo entries

struct Employee {
    int id = 0;
    int company = kCompany;
    QString number;
    QString name;
    bool active = true;
    QVariant department;  // NULL for the employee without one
    QDate joined;
    double rate = 0;
};

struct LeaveApplication {
    int employee;
    int leaveId;
    QDate from, to;
    double days;     // lrdNoofDays; 0.5 is a half day
    QString status;  // sanction line status, "S" = sanctioned (the leave module writes upper case)
    bool registerCancelled;
    bool approved() const { return status == QLatin1String("S") && !registerCancelled; }
};

struct DetailLine {
    QDate date;
    QString type;
    int in = -1, out = -1;  // minutes, -1 = NULL
};

struct AllowanceLine {
    QDate date;
    int minutes;
    bool allowance;
};

struct EntryPlan {
    int company = kCompany;
    int id = 0;
    QString number;
    QDate date;
    int employee = 0;
    double present = 0, leaves = 0, absent = 0;
    bool cancelled = false;
    QDate start, end;
    QVariant remarks;
    double rate = 0;
    QVariant cancelledRemarks;
    std::vector<DetailLine> pairs;   // lines with times, in date order
    std::vector<DetailLine> others;  // every day without times (absent, leave, holiday, day off)
    std::vector<AllowanceLine> allowances;
};

struct CompanyCalendar {
    WeekSchedule schedule;
    QSet<QDate> holidays;
    int graceMinutes = 0;
};

// Recorded punches around a day's schedule: the first arrival 10 minutes early to 20
// late, other arrivals and the lunch departure a few minutes either way, the last
// departure a quarter of an hour early to half an hour late.
std::vector<std::pair<int, int>> punches(const DaySchedule& day, Rng& rng) {
    std::vector<std::pair<int, int>> out;
    for (std::size_t i = 0; i < day.size(); ++i) {
        const bool first = i == 0;
        const bool last = i + 1 == day.size() && day.size() > 1;
        const int in = day[i].first + (first ? rng.range(-10, 20) : rng.range(-5, 10));
        const int outTime = day[i].second + (last ? rng.range(-15, 30) : rng.range(-5, 10));
        out.emplace_back(in, outTime);
    }
    return out;
}

// Worked minutes of a day as the entry form computes them: an arrival from the first
// scheduled check-in up to the end of the grace time counts as the scheduled check-in.
int workedMinutes(const std::vector<std::pair<int, int>>& pairs, const DaySchedule& day,
                  int grace) {
    const int scheduledIn = day.empty() ? 0 : day.front().first;
    int total = 0;
    for (auto [in, out] : pairs) {
        if (!day.empty() && in >= scheduledIn && in <= scheduledIn + grace) in = scheduledIn;
        total += out - in;
    }
    return total;
}

// Lays out one employee's month: day types, punches, counts and claimed differences.
EntryPlan planEntry(const Employee& emp, QDate first, const CompanyCalendar& cal,
                    const std::vector<LeaveApplication>& leaves, Rng& rng, QDate processDate,
                    const QDate workedHoliday) {
    EntryPlan e;
    e.company = emp.company;
    e.employee = emp.id;
    e.start = first;
    e.end = monthEnd(first);
    e.date = std::min(e.end.addDays(rng.range(1, 3)), processDate);
    e.rate = emp.rate;
    constexpr int kClaimThreshold = 30;  // smaller differences are not claimed

    for (QDate d = e.start; d <= e.end; d = d.addDays(1)) {
        const DaySchedule& day = cal.schedule[dayId(d)];
        if (cal.holidays.contains(d)) {
            // Holidays win over leaves (ConsiderLeaveHolidays). A holiday worked by
            // arrangement keeps its punches, all of them overtime.
            e.present += 1;
            if (d == workedHoliday && !cal.schedule[2].empty()) {
                const auto p = punches({cal.schedule[2].front()}, rng);
                e.pairs.push_back({d, QStringLiteral("H"), p[0].first, p[0].second});
                e.allowances.push_back({d, p[0].second - p[0].first, true});
            } else {
                e.others.push_back({d, QStringLiteral("H")});
            }
            continue;
        }
        const LeaveApplication* leave = nullptr;
        for (const LeaveApplication& l : leaves)
            if (l.approved() && l.employee == emp.id && l.from <= d && d <= l.to) leave = &l;
        if (leave && leave->days == 0.5) {
            // Half-day leave: the morning was worked.
            e.present += 0.5;
            e.leaves += 0.5;
            if (!day.empty()) {
                const auto p = punches({day.front()}, rng);
                e.pairs.push_back({d, QStringLiteral("HL"), p[0].first, p[0].second});
            } else {
                e.others.push_back({d, QStringLiteral("HL")});
            }
            continue;
        }
        if (leave) {
            e.leaves += 1;
            e.others.push_back({d, QStringLiteral("L")});
            continue;
        }
        if (day.empty()) {  // the weekly day off counts as present: a line without times
            e.present += 1;
            e.others.push_back({d, QStringLiteral("P")});
            continue;
        }
        if (rng.chance(2)) {
            e.absent += 1;
            e.others.push_back({d, QStringLiteral("A")});
            continue;
        }
        if (day.size() > 1 && rng.chance(2)) {
            // Half-day absence: left after the morning.
            e.present += 0.5;
            e.absent += 0.5;
            const auto p = punches({day.front()}, rng);
            e.pairs.push_back({d, QStringLiteral("HA"), p[0].first, p[0].second});
            continue;
        }
        e.present += 1;
        const auto p = punches(day, rng);
        for (const auto& [in, out] : p) e.pairs.push_back({d, QStringLiteral("P"), in, out});
        const int diff = workedMinutes(p, day, cal.graceMinutes) - scheduledMinutes(day);
        if (diff >= kClaimThreshold)
            e.allowances.push_back({d, diff, true});
        else if (diff <= -kClaimThreshold)
            e.allowances.push_back({d, -diff, false});
    }
    if (e.absent > 0) e.remarks = QStringLiteral("Absences confirmed by the supervisor");
    return e;
}

class EntryWriter {
public:
    explicit EntryWriter(QSqlDatabase& db)
        : m_header(db, QStringLiteral("pEmployeeAttendence"),
                   {"eaCompanyID", "eaID", "eaNo", "eaDate", "eaEmpID", "eaPresent", "eaLeaves",
                    "eaAbsent", "eaCancelled", "eaStartDate", "eaEndDate", "eacwtsid", "eaRemarks",
                    "eaPerHourRate", "eaCancelledRemarks"}),
          m_detail(db, QStringLiteral("pEmpAttendanceDetail"),
                   {"eadCompanyID", "eadAttendanceID", "eadDetailID", "eadDate", "eadType",
                    "eadCheckIN", "eadCheckOut"}),
          m_allowance(db, QStringLiteral("pEmpAttendanceAllowanceDeductions"),
                      {"eaadCompanyID", "eaadAttendanceID", "eaadDetailID", "eaadDate", "eaadHours",
                       "eaadAllowanceID", "eaadDeductionID"}) {}

    // Lines with times first, then the lines of days without times, numbered on from
    // them, as the entry form saves them; allowance lines numbered from 1.
    void write(const EntryPlan& e, int allowanceHead, int deductionHead) {
        m_header({e.company, e.id, e.number, iso(e.date), e.employee, e.present, e.leaves, e.absent,
                  e.cancelled ? 1 : 0, iso(e.start), iso(e.end), kWorkTimeId, e.remarks, e.rate,
                  e.cancelledRemarks});
        int detailId = 0;
        for (const DetailLine& l : e.pairs)
            m_detail({e.company, e.id, ++detailId, iso(l.date), l.type, timeOrNull(l.in),
                      timeOrNull(l.out)});
        for (const DetailLine& l : e.others)
            m_detail({e.company, e.id, ++detailId, iso(l.date), l.type, QVariant(), QVariant()});
        int lineId = 0;
        for (const AllowanceLine& a : e.allowances) {
            const double hours = a.minutes / 60 + (a.minutes % 60) / 60.0;
            m_allowance({e.company, e.id, ++lineId, iso(a.date), hours,
                         a.allowance ? QVariant(allowanceHead) : QVariant(),
                         a.allowance ? QVariant() : QVariant(deductionHead)});
        }
    }

private:
    Insert m_header;
    Insert m_detail;
    Insert m_allowance;
};

void writeEmployees(QSqlDatabase& db, const std::vector<Employee>& employees) {
    Insert ins(db, QStringLiteral("pEmployee"),
               {"eEmpID", "eCompanyID", "eEmpNo", "eName", "eActive", "eDeptID", "eDateofjoin",
                "ecurrencyid", "PerHourRate"});
    for (const Employee& e : employees)
        ins({e.id, e.company, e.number, e.name, e.active ? 1 : 0, e.department, iso(e.joined),
             kCurrencyId, e.rate});
}

void writeLeaves(QSqlDatabase& db, int company, const std::vector<LeaveApplication>& leaves,
                 QDate processDate) {
    Insert header(db, QStringLiteral("pleaveregisterheader"),
                  {"lrhCompanyID", "lrhID", "lrhempid", "lrhDate", "lrhcancelled"});
    Insert detail(
        db, QStringLiteral("pleaveregisterDetail"),
        {"lrdCompanyID", "lrdID", "lrdLeaveID", "lrdFromDate", "lrdToDate", "lrdNoofDays"});
    Insert sanction(db, QStringLiteral("pLeaveCancellationHeader"),
                    {"lchcompanyid", "lchid", "lchDate", "lchcancelled"});
    Insert sanctionLine(db, QStringLiteral("pleavecancellationdetail"),
                        {"lcdcompanyid", "lcdid", "lcdlrdid", "lcdlrdleaveid", "status"});
    int id = 0;
    for (const LeaveApplication& l : leaves) {
        ++id;
        const QDate applied = std::min(l.from.addDays(-7), processDate);
        header({company, id, l.employee, iso(applied), l.registerCancelled ? 1 : 0});
        detail({company, id, l.leaveId, iso(l.from), iso(l.to), l.days});
        sanction({company, id, iso(std::min(applied.addDays(2), processDate)), 0});
        sanctionLine({company, id, id, l.leaveId, l.status});
    }
}

// Leave applications of company 1 relative to the process date's month M: approved ones
// inside the stored months and in M, one refused at sanction ('n'), one whose
// application was withdrawn, one across the M-1/M boundary, one around M's holiday.
std::vector<LeaveApplication> demoLeaves(const std::vector<int>& staff, QDate processDate,
                                         const QSet<QDate>& holidays) {
    auto who = [&](int i) { return staff[static_cast<std::size_t>(i) % staff.size()]; };
    const QDate m0 = monthStart(processDate);
    const QDate m1 = m0.addMonths(-1);
    const QDate m2 = m0.addMonths(-2);
    std::vector<LeaveApplication> out;
    const QDate l1 = nthWeekday(m2, Qt::Tuesday, 1);
    out.push_back({who(0), 1, l1, l1.addDays(2), 3, QStringLiteral("S"), false});
    const QDate half = nthWeekday(m1, Qt::Wednesday, 3);
    out.push_back({who(1), 2, half, half, 0.5, QStringLiteral("S"), false});
    const QDate l3 = nthWeekday(m0, Qt::Monday, 1);
    out.push_back({who(2), 3, l3, l3.addDays(1), 2, QStringLiteral("S"), false});
    const QDate refused = nthWeekday(m1, Qt::Thursday, 3);
    out.push_back({who(3), 1, refused, refused, 1, QStringLiteral("n"), false});
    const QDate withdrawn = nthWeekday(m0, Qt::Thursday, 2);
    out.push_back({who(4), 1, withdrawn, withdrawn, 1, QStringLiteral("S"), true});
    QDate holiday;
    for (QDate d = m0; d <= monthEnd(m0) && !holiday.isValid(); d = d.addDays(1))
        if (holidays.contains(d)) holiday = d;
    if (holiday.isValid())
        out.push_back(
            {who(5), 3, holiday.addDays(-1), holiday.addDays(1), 3, QStringLiteral("S"), false});
    out.push_back({who(6), 2, m0.addDays(-2), m0.addDays(1), 4, QStringLiteral("S"), false});
    return out;
}

void exec(QSqlDatabase& db, const QString& sql, const QVariantList& values) {
    QSqlQuery q(db);
    if (!q.prepare(sql)) fail(QStringLiteral("Preparing ") + sql, q.lastError());
    for (int i = 0; i < values.size(); ++i) q.bindValue(i, values[i]);
    if (!q.exec()) fail(sql, q.lastError());
}

// An entry of the demo as its history needs it.
struct KeyedEntry {
    int company = kCompany;
    int id = 0;
    QDate date;
};

// The history of the demo's entries, as the module writes it: the administrator keyed each
// entry at the end of its entry date; the entry keyed twice was cancelled the next morning;
// the clerk corrected the first of them two days later (never after the process date): a
// day's last check-out became 18:30, the half hour claimed as overtime (a day after the
// entry's other claims, so that the claim lines stay in date order as a save numbers them).
void writeDemoHistory(QSqlDatabase& db, const std::vector<KeyedEntry>& keyed, int twice,
                      int corrected, QDate processDate) {
    const history::EntryTables tables{QStringLiteral("pEmployeeAttendence"),
                                      QStringLiteral("pEmpAttendanceDetail"),
                                      QStringLiteral("pEmpAttendanceAllowanceDeductions")};
    const QString admin = QStringLiteral("admin");
    QDate twiceDate;
    QDate correctedDate;
    for (const KeyedEntry& e : keyed) {
        history::VersionRecorder::begin(db, static_cast<qint16>(e.company), std::nullopt, tables)
            .record(history::Action::Created, e.id, 1, admin, QDateTime(e.date, QTime(17, 30)));
        if (e.id == twice) twiceDate = e.date;
        if (e.id == corrected) correctedDate = e.date;
    }
    if (twice == 0) return;
    history::VersionRecorder cancel = history::VersionRecorder::begin(db, kCompany, twice, tables);
    exec(db,
         QStringLiteral("update pEmployeeAttendence set eaCancelled=1, eaCancelledRemarks=? where "
                        "eaCompanyID=? and eaID=?"),
         {QStringLiteral("admin:Entered twice"), kCompany, twice});
    cancel.record(history::Action::Cancelled, twice, 1, admin,
                  QDateTime(std::min(twiceDate.addDays(1), processDate), QTime(9, 10)));

    QSqlQuery line(db);
    line.prepare(QStringLiteral(
        "select eadDetailID,eadDate from pEmpAttendanceDetail where eadCompanyID=? and "
        "eadAttendanceID=? and eadType='P' and strftime('%w',eadDate) in ('1','2','3','4') and "
        "eadCheckOut>='17:45:00' and eadCheckOut<'18:30:00' and eadDate>(select "
        "ifnull(max(eaadDate),'') from pEmpAttendanceAllowanceDeductions where eaadCompanyID=? and "
        "eaadAttendanceID=?) order by eadDate, eadDetailID desc limit 1"));
    for (const QVariant& v :
         {QVariant(kCompany), QVariant(corrected), QVariant(kCompany), QVariant(corrected)})
        line.addBindValue(v);
    if (!line.exec()) fail(QStringLiteral("Reading the line to correct"), line.lastError());
    if (!line.next()) return;
    const int detail = line.value(0).toInt();
    const QString day = line.value(1).toString();
    history::VersionRecorder edit =
        history::VersionRecorder::begin(db, kCompany, corrected, tables);
    exec(db,
         QStringLiteral(
             "update pEmpAttendanceDetail set eadCheckOut='18:30:00' where eadCompanyID=? and "
             "eadAttendanceID=? and eadDetailID=?"),
         {kCompany, corrected, detail});
    exec(db,
         QStringLiteral(
             "insert into pEmpAttendanceAllowanceDeductions (eaadCompanyID,eaadAttendanceID,"
             "eaadDetailID,eaadDate,eaadHours,eaadAllowanceID,eaadDeductionID) select ?,?,"
             "count(*)+1,?,0.5,11,NULL from pEmpAttendanceAllowanceDeductions where "
             "eaadCompanyID=? and eaadAttendanceID=?"),
         {kCompany, corrected, day, kCompany, corrected});
    edit.record(history::Action::Edited, corrected, 2, QStringLiteral("clerk"),
                QDateTime(std::min(correctedDate.addDays(2), processDate), QTime(11, 45)));
}

void generateDemo(QSqlDatabase& db, QDate processDate, const DemoScale& scale) {
    Rng rng(kInterfaceId);
    const QDate m0 = monthStart(processDate);
    const int n = scale.employees;

    // Company 1 staff: the last employee joined this month, the one before has no
    // department, the one before that has no hourly rate; every ninth is inactive.
    const int joinedThisMonth = n;
    const int noDepartment = n - 1;
    const int zeroRate = n - 2;
    std::vector<Employee> staff;
    std::vector<int> withEntries;
    for (int id = 1; id <= n; ++id) {
        Employee e;
        e.id = id;
        e.number = QStringLiteral("E%1").arg(id, 4, 10, QLatin1Char('0'));
        e.name = personName(id - 1);
        e.active = !(id % 9 == 0 && id != joinedThisMonth && id != noDepartment);
        e.department = id == noDepartment
                           ? QVariant()
                           : QVariant((id - 1) % static_cast<int>(kDepartments.size()) + 1);
        e.rate = id == zeroRate ? 0.0 : 8.5 + (id % 7) * 1.25;
        staff.push_back(e);
        if (e.active && id != joinedThisMonth && id != noDepartment && id != zeroRate &&
            static_cast<int>(withEntries.size()) < scale.employeesWithEntries)
            withEntries.push_back(id);
    }

    // Months with entries, oldest first: the extra ones, then the regular months.
    const int perMonth = static_cast<int>(withEntries.size());
    const int extraMonths = perMonth == 0 ? 0 : (scale.extraEntries + perMonth - 1) / perMonth;
    const QDate oldestMain = m0.addMonths(-scale.monthsOfEntries);
    const QDate oldest = m0.addMonths(-scale.monthsOfEntries - extraMonths);
    for (Employee& e : staff) {
        if (e.id == joinedThisMonth)
            e.joined =
                QDate(processDate.year(), processDate.month(), std::min(3, processDate.day()));
        else
            e.joined = oldest.addDays(-rng.range(400, 5000));
    }

    const std::vector<Employee> second = {
        {n + 1, kSecondCompany, QStringLiteral("H0001"), personName(n + 7), true, QVariant(6),
         oldest.addDays(-900), 11.0},
        {n + 2, kSecondCompany, QStringLiteral("H0002"), personName(n + 23), true, QVariant(6),
         oldest.addDays(-1500), 12.5}};

    // Reference data.
    writeLinkTable(db);
    writeUsers(db);
    writeCatalogue(db);
    writeCurrency(db, {{kCompany, 11, 21}, {kSecondCompany, 12, 22}});
    writeCompanies(db,
                   {{{kCompany, 10, true, true, 120}, QStringLiteral("Demo Works")},
                    {{kSecondCompany, 5, false, false, 0}, QStringLiteral("Harbour Crafts")}},
                   {{kCompany, QStringLiteral("ATT")}, {kSecondCompany, QStringLiteral("HC")}},
                   processDate.year());
    writeLeaveMaster(db, {kCompany, kSecondCompany});
    {
        Insert dept(db, QStringLiteral("pDepartment"),
                    {"DepartmentID", "CompanyID", "DepartmentName"});
        int id = 0;
        for (const char* name : kDepartments) dept({++id, kCompany, QString::fromLatin1(name)});
        dept({6, kSecondCompany, QStringLiteral("Workshop")});
    }
    writeEmployees(db, staff);
    writeEmployees(db, second);
    {
        // Yearly entitlements of the active staff of company 1.
        Insert ent(db, QStringLiteral("PEmployeeLeaves"),
                   {"pelCompanyID", "pelEmpID", "pelLeaveID", "pelYear", "pelEntitledDays"});
        for (const Employee& e : staff) {
            if (!e.active) continue;
            ent({kCompany, e.id, 1, processDate.year(), 12.0});
            ent({kCompany, e.id, 2, processDate.year(), 10.0});
            ent({kCompany, e.id, 3, processDate.year(), 15.0});
        }
    }

    CompanyCalendar cal1{demoSchedule(), {}, 10};
    CompanyCalendar cal2{secondCompanySchedule(), {}, 5};
    cal1.holidays =
        writeCalendars(db, kCompany, oldest.year(), processDate.year() + 1, processDate);
    cal2.holidays =
        writeCalendars(db, kSecondCompany, oldest.year(), processDate.year() + 1, processDate);
    writeWorkTime(db, kCompany, cal1.schedule, QStringLiteral("Office hours"));
    writeWorkTime(db, kSecondCompany, cal2.schedule, QStringLiteral("Workshop hours"));

    std::vector<LeaveApplication> leaves;
    if (!withEntries.empty()) leaves = demoLeaves(withEntries, processDate, cal1.holidays);
    writeLeaves(db, kCompany, leaves, processDate);

    // One holiday of last month was worked by arrangement (overtime on a holiday).
    QDate workedHoliday;
    for (QDate d = m0.addMonths(-1); d < m0 && !workedHoliday.isValid(); d = d.addDays(1))
        if (cal1.holidays.contains(d)) workedHoliday = d;
    const int holidayWorker = withEntries.size() > 7 ? withEntries[7] : 0;

    // Entries of company 1, month by month.
    std::vector<std::pair<QDate, int>> entryMonths;  // (month, employee), chronological
    for (int k = 0; perMonth > 0 && k < scale.extraEntries; ++k) {
        const QDate month = oldestMain.addMonths(-1 - k / perMonth);
        entryMonths.emplace_back(month, withEntries[static_cast<std::size_t>(k % perMonth)]);
    }
    for (int k = 0; k < scale.monthsOfEntries; ++k)
        for (int id : withEntries) entryMonths.emplace_back(oldestMain.addMonths(k), id);
    std::stable_sort(entryMonths.begin(), entryMonths.end(), [&](const auto& a, const auto& b) {
        if (a.first != b.first) return a.first < b.first;
        return std::find(withEntries.begin(), withEntries.end(), a.second) <
               std::find(withEntries.begin(), withEntries.end(), b.second);
    });

    EntryWriter writer(db);
    int nextId = 0;
    int nextNo1 = 0;
    const QDate lastMonth = m0.addMonths(-1);
    bool duplicated = false;
    std::vector<KeyedEntry> keyed;  // in keying order
    int twice = 0;                                       // the entry keyed twice, then cancelled
    int corrected = 0;                                   // the entry the clerk corrected
    for (const auto& [month, empId] : entryMonths) {
        const Employee& emp = staff[static_cast<std::size_t>(empId - 1)];
        EntryPlan e = planEntry(emp, month, cal1, leaves, rng, processDate,
                                empId == holidayWorker ? workedHoliday : QDate());
        e.id = ++nextId;
        e.number = QStringLiteral("ATT%1").arg(++nextNo1);
        writer.write(e, 11, 21);
        keyed.push_back({kCompany, e.id, e.date});
        if (!duplicated && month == lastMonth) {
            // The same month entered twice; the second one is cancelled below.
            duplicated = true;
            corrected = e.id;
            e.id = ++nextId;
            e.number = QStringLiteral("ATT%1").arg(++nextNo1);
            writer.write(e, 11, 21);
            keyed.push_back({kCompany, e.id, e.date});
            twice = e.id;
        }
    }

    // Company 2: three entries over its two employees.
    int nextNo2 = 0;
    const std::pair<QDate, const Employee*> second2[] = {{m0.addMonths(-2), &second[0]},
                                                         {m0.addMonths(-1), &second[0]},
                                                         {m0.addMonths(-1), &second[1]}};
    for (const auto& [month, emp] : second2) {
        EntryPlan e = planEntry(*emp, month, cal2, {}, rng, processDate, QDate());
        e.id = ++nextId;
        e.number = QStringLiteral("HC%1").arg(++nextNo2);
        writer.write(e, 12, 22);
        keyed.push_back({kSecondCompany, e.id, e.date});
    }
    writeDemoHistory(db, keyed, twice, corrected, processDate);

    // Payroll has been run for the oldest regular month of a few employees: a monthly
    // entry over that month locks their entries. A cancelled monthly entry locks nothing.
    if (scale.monthsOfEntries > 0 && !withEntries.empty()) {
        Insert monthly(
            db, QStringLiteral("pEmpMonthlyEntryHeader"),
            {"emhCompanyID", "emhID", "emhEmpID", "emhStartDate", "emhEndDate", "emhCancelled"});
        Insert payroll(db, QStringLiteral("pMonthlyPayrollProcessing"),
                       {"mppID", "mppCompanyID", "mppEmpID", "mppPayrollDate"});
        const std::size_t locked = std::min<std::size_t>(4, withEntries.size());
        int id = 0;
        for (std::size_t i = 0; i < locked; ++i) {
            ++id;
            monthly({kCompany, id, withEntries[i], iso(oldestMain), iso(monthEnd(oldestMain)), 0});
            payroll({id, kCompany, withEntries[i], iso(monthEnd(oldestMain))});
        }
        if (withEntries.size() > locked)
            monthly({kCompany, ++id, withEntries[locked], iso(oldestMain),
                     iso(monthEnd(oldestMain)), 1});
    }
}

// ---------------------------------------------------------------------------------
// Benchmark

void generateBench(QSqlDatabase& db, QDate processDate, const BenchScale& s) {
    const QDate m0 = monthStart(processDate);
    const int active = s.activeEmployees;
    const int monthsBack = s.entries == 0 ? 0 : (s.entries - 1) / active + 1;
    const int payrollBack = s.payrollRows == 0 ? 0 : (s.payrollRows - 1) / active + 2;
    const QDate oldest = m0.addMonths(-std::max({monthsBack, payrollBack, 1}));
    Rng rng(kInterfaceId + 1);

    writeLinkTable(db);
    writeUsers(db);
    writeCatalogue(db);
    writeCurrency(db, {{kCompany, 11, 21}});
    writeCompanies(db,
                   {{{kCompany, 10, true, true, s.noofPreviousdays}, QStringLiteral("Demo Works")}},
                   {{kCompany, QStringLiteral("ATT")}}, processDate.year());
    writeLeaveMaster(db, {kCompany});
    {
        Insert dept(db, QStringLiteral("pDepartment"),
                    {"DepartmentID", "CompanyID", "DepartmentName"});
        int id = 0;
        for (const char* name : kDepartments) dept({++id, kCompany, QString::fromLatin1(name)});
    }
    const WeekSchedule schedule = demoSchedule();
    writeCalendars(db, kCompany, oldest.year(), processDate.year() + 1, processDate);
    writeWorkTime(db, kCompany, schedule, QStringLiteral("Office hours"));

    std::vector<double> rates;
    {
        Insert ins(db, QStringLiteral("pEmployee"),
                   {"eEmpID", "eCompanyID", "eEmpNo", "eName", "eActive", "eDeptID", "eDateofjoin",
                    "ecurrencyid", "PerHourRate"});
        const int total = active + s.inactiveEmployees;
        for (int id = 1; id <= total; ++id) {
            const double rate = 8.5 + (id % 7) * 1.25;
            if (id <= active) rates.push_back(rate);
            ins({id, kCompany, QStringLiteral("E%1").arg(id, 6, 10, QLatin1Char('0')),
                 personName(id - 1), id <= active ? 1 : 0,
                 (id - 1) % static_cast<int>(kDepartments.size()) + 1,
                 iso(oldest.addDays(-rng.range(30, 5000))), kCurrencyId, rate});
        }
    }

    // Each period's scheduled pairs as (date text, check-in text, check-out text), built
    // once per month and reused by every header of that month.
    struct Slot {
        QString date, in, out;
    };
    std::map<int, std::vector<Slot>> pairsByMonth;  // months back -> the month's pairs
    std::map<int, std::vector<QString>> workdaysByMonth;
    auto periodPairsOf = [&](int back) -> const std::vector<Slot>& {
        auto it = pairsByMonth.find(back);
        if (it != pairsByMonth.end()) return it->second;
        std::vector<Slot> periodPairs;
        std::vector<QString> days;
        const QDate first = m0.addMonths(-back);
        for (QDate d = first; d <= monthEnd(first); d = d.addDays(1)) {
            const DaySchedule& day = schedule[dayId(d)];
            if (day.empty()) continue;
            days.push_back(iso(d));
            for (const auto& [in, out] : punches(day, rng))
                periodPairs.push_back({days.back(), hms(in), hms(out)});
        }
        workdaysByMonth[back] = days;
        return pairsByMonth.emplace(back, std::move(periodPairs)).first->second;
    };

    Insert header(db, QStringLiteral("pEmployeeAttendence"),
                  {"eaCompanyID", "eaID", "eaNo", "eaDate", "eaEmpID", "eaPresent", "eaLeaves",
                   "eaAbsent", "eaCancelled", "eaStartDate", "eaEndDate", "eacwtsid", "eaRemarks",
                   "eaPerHourRate", "eaCancelledRemarks"});
    Insert detail(db, QStringLiteral("pEmpAttendanceDetail"),
                  {"eadCompanyID", "eadAttendanceID", "eadDetailID", "eadDate", "eadType",
                   "eadCheckIN", "eadCheckOut"});
    Insert allowance(db, QStringLiteral("pEmpAttendanceAllowanceDeductions"),
                     {"eaadCompanyID", "eaadAttendanceID", "eaadDetailID", "eaadDate", "eaadHours",
                      "eaadAllowanceID", "eaadDeductionID"});
    const QString present = QStringLiteral("P");
    const int detailBase = s.entries > 0 ? s.detailRows / s.entries : 0;
    const int detailRest = s.entries > 0 ? s.detailRows % s.entries : 0;
    const int allowBase = s.entries > 0 ? s.allowanceRows / s.entries : 0;
    const int allowRest = s.entries > 0 ? s.allowanceRows % s.entries : 0;
    for (int k = 0; k < s.entries; ++k) {
        const int emp = k % active + 1;
        const int back = k / active + 1;
        const QDate first = m0.addMonths(-back);
        const QDate last = monthEnd(first);
        const bool cancelled = s.cancelledEvery > 0 && (k + 1) % s.cancelledEvery == 0;
        const int id = k + 1;
        header({kCompany, id, QStringLiteral("ATT%1").arg(id),
                iso(std::min(last.addDays(1), processDate)), emp,
                static_cast<double>(first.daysTo(last) + 1), 0.0, 0.0, cancelled ? 1 : 0,
                iso(first), iso(last), kWorkTimeId, QVariant(),
                rates[static_cast<std::size_t>(emp - 1)],
                cancelled ? QVariant(QStringLiteral("admin:Entered twice")) : QVariant()});
        const std::vector<Slot>& periodPairs = periodPairsOf(back);
        const int lines = detailBase + (k < detailRest ? 1 : 0);
        for (int i = 0; i < lines; ++i) {
            const Slot& slot = periodPairs[static_cast<std::size_t>(i) % periodPairs.size()];
            detail({kCompany, id, i + 1, slot.date, present, slot.in, slot.out});
        }
        const std::vector<QString>& days = workdaysByMonth[back];
        const int claims = allowBase + (k < allowRest ? 1 : 0);
        for (int i = 0; i < claims; ++i) {
            const bool isAllowance = (k + i) % 2 == 0;
            allowance({kCompany, id, i + 1, days[static_cast<std::size_t>(i) % days.size()],
                       0.5 + (i % 4) * 0.5, isAllowance ? QVariant(11) : QVariant(),
                       isAllowance ? QVariant() : QVariant(21)});
        }
    }

    Insert payroll(db, QStringLiteral("pMonthlyPayrollProcessing"),
                   {"mppID", "mppCompanyID", "mppEmpID", "mppPayrollDate"});
    for (int r = 0; r < s.payrollRows; ++r)
        payroll({r + 1, kCompany, r % active + 1, iso(monthEnd(m0.addMonths(-(r / active) - 2)))});
}

}  // namespace

void createSchema(QSqlDatabase& db) {
    if (!db.isOpen()) throw std::runtime_error("The database connection is not open");
    QFile file(QStringLiteral(":/db/sqlite/schema.sql"));
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        throw std::runtime_error("The bundled schema :/db/sqlite/schema.sql cannot be read");
    QString text = QString::fromUtf8(file.readAll());
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));

    // Statements end with ";" at a line end; comment lines are dropped so that a piece
    // made of comments only is not sent to the driver.
    for (const QString& piece : text.split(QStringLiteral(";\n"))) {
        QStringList lines;
        for (const QString& line : piece.split(QLatin1Char('\n')))
            if (!line.trimmed().startsWith(QLatin1String("--"))) lines << line;
        QString statement = lines.join(QLatin1Char('\n')).trimmed();
        if (statement.endsWith(QLatin1Char(';'))) statement.chop(1);
        if (statement.isEmpty()) continue;
        QSqlQuery query(db);
        if (!query.exec(statement))
            fail(QStringLiteral("Creating the schema (%1)")
                     .arg(statement.section(QLatin1Char('\n'), 0, 0)),
                 query.lastError());
    }
}

void generate(QSqlDatabase& db, QDate processDate, const DemoScale& scale) {
    if (!processDate.isValid())
        throw std::invalid_argument("generate: the process date is not valid");
    if (scale.employees < 10 || scale.monthsOfEntries < 0 || scale.extraEntries < 0 ||
        scale.employeesWithEntries < 0)
        throw std::invalid_argument("generate: at least 10 employees and no negative counts");
    inTransaction(db, [&] { generateDemo(db, processDate, scale); });
}

void writeDemoPunches(const QSqlDatabase& db, QDate processDate, const QString& path) {
    const QDate first(processDate.year(), processDate.month(), 1);
    const QDate last = processDate.addDays(-1);
    // Who punches: the active staff of company 1 with entries, as the register lists them.
    QSqlQuery staff(db);
    if (!staff.exec(
            QStringLiteral("select e.eEmpID,e.eEmpNo from pEmployee e where e.eCompanyID=1 and "
                           "e.eActive=1 and exists (select 1 from pEmployeeAttendence a where "
                           "a.eaCompanyID=1 and a.eaEmpID=e.eEmpID) order by e.eEmpID")))
        fail(QStringLiteral("Reading the staff"), staff.lastError());
    std::vector<std::pair<int, QString>> people;
    while (staff.next()) people.emplace_back(staff.value(0).toInt(), staff.value(1).toString());
    QSet<QDate> holidays;
    QSqlQuery h(db);
    if (!h.exec(QStringLiteral("select HolidayDate from pCalenderDetail where companyid=1")))
        fail(QStringLiteral("Reading the holidays"), h.lastError());
    while (h.next())
        holidays.insert(QDate::fromString(h.value(0).toString().left(10), Qt::ISODate));
    QSet<std::pair<int, QDate>> onLeave;
    QSqlQuery l(db);
    if (!l.exec(QStringLiteral(
            "select h.lrhempid,d.lrdFromDate,d.lrdToDate from pleaveregisterheader h join "
            "pleaveregisterDetail d on d.lrdCompanyID=h.lrhCompanyID and d.lrdID=h.lrhID "
            "where h.lrhCompanyID=1 and h.lrhcancelled=0")))
        fail(QStringLiteral("Reading the leaves"), l.lastError());
    while (l.next()) {
        const QDate from = QDate::fromString(l.value(1).toString().left(10), Qt::ISODate);
        const QDate to = QDate::fromString(l.value(2).toString().left(10), Qt::ISODate);
        for (QDate d = from; d.isValid() && d <= to; d = d.addDays(1))
            onLeave.insert({l.value(0).toInt(), d});
    }

    Rng rng(kInterfaceId + processDate.month());
    const WeekSchedule week = demoSchedule();
    struct Line {
        QDateTime at;
        QString code;
        int state;
    };
    std::vector<Line> lines;
    const auto punch = [&lines](const QString& code, QDate d, int minutes, int seconds, int state) {
        lines.push_back(
            {QDateTime(d, QTime(0, 0), Qt::UTC).addSecs(minutes * 60 + seconds), code, state});
    };
    // The employees with a particular day: the first double-taps, the second forgets a
    // check-out, the third works one night, the fourth's clock says no direction one day.
    const auto workingDayFrom = [&](QDate from) {
        for (QDate d = from; d.isValid() && d <= last; d = d.addDays(1))
            if (!holidays.contains(d) && !week[static_cast<std::size_t>(dayId(d))].empty())
                return d;
        return QDate();
    };
    const QDate special = workingDayFrom(first);  // the first working day of the month
    for (std::size_t i = 0; i < people.size(); ++i) {
        const auto& [id, code] = people[i];
        // The night shift: the third employee's first working day after the first, off leave.
        QDate night;
        for (QDate d = special.isValid() ? workingDayFrom(special.addDays(1)) : QDate();
             i == 2 && d.isValid() && !night.isValid(); d = workingDayFrom(d.addDays(1)))
            if (!onLeave.contains({id, d})) night = d;
        for (QDate d = first; d <= last; d = d.addDays(1)) {
            const DaySchedule& pairs = week[static_cast<std::size_t>(dayId(d))];
            if (pairs.empty() || holidays.contains(d) || onLeave.contains({id, d})) continue;
            if (i == 2 && d == night) {
                // A night at the gate instead of the day: from 21:50 to 06:05 the next morning.
                punch(code, d, 21 * 60 + 50, 12, 0);
                punch(code, d.addDays(1), 6 * 60 + 5, 40, 1);
                continue;
            }
            for (std::size_t p = 0; p < pairs.size(); ++p) {
                const int in = pairs[p].first + (p == 0 ? rng.range(-10, 15) : rng.range(-4, 6));
                const int out = pairs[p].second +
                                (p + 1 == pairs.size() ? rng.range(-10, 25) : rng.range(-4, 4));
                const bool noDirection = i == 3 && d == special;
                punch(code, d, in, rng.range(0, 59), noDirection ? 255 : 0);
                if (i == 0 && d == special && p == 0) punch(code, d, in, 50, 0);  // pressed twice
                if (i == 1 && d == special && p + 1 == pairs.size())
                    continue;  // left without punching out
                punch(code, d, out, rng.range(0, 59), noDirection ? 255 : 1);
            }
        }
    }
    // Badges nobody has: a visitor's and one the clock misread.
    if (special.isValid()) {
        punch(QStringLiteral("V001"), special, 10 * 60, 5, 0);
        punch(QStringLiteral("V001"), special, 11 * 60 + 30, 9, 1);
        punch(QStringLiteral("E9999"), special, 8 * 60 + 57, 31, 0);
    }
    std::stable_sort(lines.begin(), lines.end(),
                     [](const Line& a, const Line& b) { return a.at < b.at; });

    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        throw std::runtime_error("cannot write " + path.toStdString() + ": " +
                                 file.errorString().toStdString());
    QByteArray text = "Gate clock 1\tSN 0142\r\n";
    for (const Line& line : lines)
        text += QStringLiteral("%1\t%2\t1\t%3\t0\t0\r\n")
                    .arg(line.code, 9)
                    .arg(line.at.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")))
                    .arg(line.state)
                    .toUtf8();
    text += QStringLiteral("Total: %1\r\n").arg(lines.size()).toUtf8();
    if (file.write(text) != text.size() || !file.flush())
        throw std::runtime_error("cannot write " + path.toStdString() + ": " +
                                 file.errorString().toStdString());
}

void generateBenchmark(QSqlDatabase& db, QDate processDate, const BenchScale& scale) {
    if (!processDate.isValid())
        throw std::invalid_argument("generateBenchmark: the process date is not valid");
    if (scale.activeEmployees < 1 || scale.entries < 0 || scale.detailRows < 0 ||
        scale.allowanceRows < 0 || scale.payrollRows < 0 || scale.inactiveEmployees < 0 ||
        scale.cancelledEvery < 0)
        throw std::invalid_argument(
            "generateBenchmark: at least one active employee and no negative counts");
    if (scale.entries == 0 && (scale.detailRows > 0 || scale.allowanceRows > 0))
        throw std::invalid_argument("generateBenchmark: detail or allowance lines need headers");
    if (scale.entries / scale.activeEmployees > 1200 ||
        scale.payrollRows / scale.activeEmployees > 1200)
        throw std::invalid_argument("generateBenchmark: more than 1200 months per employee");
    inTransaction(db, [&] { generateBench(db, processDate, scale); });
}

}  // namespace qz2::demo
