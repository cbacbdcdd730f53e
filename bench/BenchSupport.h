#pragma once
// What several benchmarks share: the process's peak memory, the demo database opened as
// the session's connection, and the month the save and history benchmarks key on the entry
// form (31 days from 1 December 2026, six check-in/check-out pairs a day and the day's
// difference claimed, allowance and deduction alternating, as Populate and the clerk's
// corrections leave it).

#include <QComboBox>
#include <QDate>
#include <QDateEdit>
#include <QElapsedTimer>
#include <QFile>
#include <QLineEdit>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QStringList>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <optional>
#include <vector>

#include "demo/DemoData.h"
#include "entry/frmEmployeeDailyAttendance.h"
#include "rules/HalfDay.h"
#include "rules/Population.h"
#include "rules/RuleGrids.h"
#include "shared/BasAttendence.h"
#include "shared/FlexGrid.h"
#include "shared/MsgBox.h"

namespace benchmonth {

// Milliseconds since the timer started.
inline double ms(const QElapsedTimer& t) {
    return static_cast<double>(t.nsecsElapsed()) / 1e6;
}

// The whole-number value given to an option ("--employees 500"), or the fallback.
inline int optionValue(const QStringList& args, const QString& name, int fallback) {
    const auto i = args.indexOf(name);
    return i >= 0 && i + 1 < args.size() ? args[i + 1].toInt() : fallback;
}

// A time clock's attendance log as clocks write it, written in pieces of a few megabytes:
// the clock's line first, then one line a punch (the code, the date "yyyy-mm-dd" and time
// of day, the device, the state, then two numbers readers ignore), then the totals line.
class ClockLog {
public:
    explicit ClockLog(const QString& path) : m_file(path) {
        if (!m_file.open(QIODevice::WriteOnly)) return;
        m_buffer.reserve(kPiece);
        m_buffer += "Main gate SN 0841273\r\n";
    }
    bool isOpen() const { return m_file.isOpen(); }
    void add(const QByteArray& code, const QByteArray& date, int secondOfDay, int device,
             int state) {
        m_buffer += code + '\t' + date + ' ' +
                    QByteArray::number(secondOfDay / 3600).rightJustified(2, '0') + ':' +
                    QByteArray::number(secondOfDay / 60 % 60).rightJustified(2, '0') + ':' +
                    QByteArray::number(secondOfDay % 60).rightJustified(2, '0') + '\t' +
                    QByteArray::number(device) + '\t' + QByteArray::number(state) + "\t1\t0\r\n";
        ++m_lines;
        if (m_buffer.size() > kPiece - 256) {
            m_file.write(m_buffer);
            m_buffer.clear();
        }
    }
    // Writes the totals line; the punch lines written.
    qint64 finish() {
        m_buffer += "Total: " + QByteArray::number(m_lines) + "\r\n";
        m_file.write(m_buffer);
        m_file.close();
        return m_lines;
    }

private:
    static constexpr qsizetype kPiece = 4 * 1024 * 1024;
    QFile m_file;
    QByteArray m_buffer;
    qint64 m_lines = 0;
};

// The median of the times.
inline double median(std::vector<double> v) {
    std::sort(v.begin(), v.end());
    return v.size() % 2 ? v[v.size() / 2] : (v[v.size() / 2 - 1] + v[v.size() / 2]) / 2.0;
}

// A line of /proc/self/status in kB ("VmHWM:", "VmRSS:"); -1 when it cannot be read.
inline long statusKb(const char* key) {
    QFile f(QStringLiteral("/proc/self/status"));
    if (!f.open(QIODevice::ReadOnly)) return -1;
    for (const QByteArray& line : f.readAll().split('\n'))
        if (line.startsWith(key))
            return line.mid(static_cast<int>(qstrlen(key))).trimmed().split(' ').first().toLong();
    return -1;
}

// Resets the peak resident size to the current one (Linux: "5" to clear_refs).
inline void resetPeak() {
    QFile f(QStringLiteral("/proc/self/clear_refs"));
    if (f.open(QIODevice::WriteOnly)) f.write("5");
}

// A fresh demo database (process date 21 November 2026) in `dir`, as the session's
// connection of company 1 and user 1 with message boxes answered; the first active
// employee with a department and an hourly rate, or nullopt (said on stderr).
inline std::optional<qint32> openDemoSession(const QTemporaryDir& dir,
                                             bool withoutHistory = false) {
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("bench"));
    db.setDatabaseName(dir.filePath(QStringLiteral("bench.sqlite")));
    if (!db.open()) {
        std::fprintf(stderr, "cannot open the database\n");
        return std::nullopt;
    }
    qz2::demo::createSchema(db);
    qz2::demo::generate(db, QDate(2026, 11, 21));
    if (withoutHistory) QSqlQuery(db).exec(QStringLiteral("drop table pEmpAttendanceHistory"));
    qz2::gadocon = db;
    qz2::gintCompanyID = 1;
    qz2::gintUserID = 1;
    qz2::gdtProcessDate = QDate(2026, 11, 21);
    qz2::gstrMsgboxTitle = QStringLiteral("Attendance");
    qz2::glngInterfaceID = qz2::kInterfaceID;
    qz2::fnLoadLinkTableNames();
    qz2::msgbox_testing::setAutoAnswer(true);
    QSqlQuery pick(db);
    pick.exec(QStringLiteral(
        "select eEmpID from pEmployee where eCompanyID=1 and eActive=1 and eDeptID is not "
        "null and PerHourRate>0 order by eEmpID limit 1"));
    if (!pick.next()) {
        std::fprintf(stderr, "no employee to key\n");
        return std::nullopt;
    }
    return pick.value(0).toInt();
}

constexpr int kDays = 31;
inline const QDate kStart(2026, 12, 1);

// Keys the month on a loaded form, as Populate and the clerk's corrections leave it.
inline void keyMonth(qz2::frmEmployeeDailyAttendance& form, qint32 employee) {
    using namespace qz2;
    for (int i = 0; i < form.cboEmpname->count(); ++i)
        if (form.cboEmpname->itemData(i).toLongLong() == employee)
            form.cboEmpname->setCurrentIndex(i);
    const QDate end = kStart.addDays(kDays - 1);
    form.txtStartDate->setText(dateText(kStart));
    form.dtpEndDate->setDate(end);
    form.txtEndDate->setText(dateText(end));
    FlexGridModel& days = *form.mfgAttendance->flexModel();
    FlexGridModel& mirror = *form.mfgMirrorGrid->flexModel();
    rules::fnBuildDayRows(days, kStart, end);
    mirror.setRows(1);
    const char* pairs[6][2] = {{"06:00", "07:00"}, {"07:30", "09:00"}, {"09:30", "11:00"},
                               {"11:30", "13:00"}, {"13:30", "15:00"}, {"15:30", "17:10"}};
    for (int i = 0; i < kDays; ++i) {
        const QDate day = kStart.addDays(i);
        days.setTextMatrix(i + 1, rules::daycol::Type, QStringLiteral("P"));
        for (int p = 0; p < 6; ++p)
            mirror.AddItem({dateText(day), QString::number(p + 1), QString::fromLatin1(pairs[p][0]),
                            QString::fromLatin1(pairs[p][1])});
    }
    form.fnCalculateTotalHours();
    for (int i = 0; i < kDays; ++i)
        rules::fnSetDayAllowanceDeduction(days, QStringLiteral("01:10"),
                                          i % 2 == 0 ? QStringLiteral("A") : QStringLiteral("D"),
                                          kStart.addDays(i), true);
    form.fnCountDayTypes();
    form.txtRemarks->setText(QStringLiteral("A busy month"));
}

}  // namespace benchmonth
