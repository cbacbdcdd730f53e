// The work-time schedule of the entry form: a date's weekday line under the entry's own
// setting, the Schedule Hours from the newest setting, the first scheduled check-in for
// the grace rule, and the seven weekdays' working hours. Every statement goes through the
// form's cache: a period asks each weekday many times and the answer cannot change while
// the same employee is chosen.

#include <exception>

#include "entry/EntryReads.h"
#include "entry/EntrySql.h"
#include "entry/frmEmployeeDailyAttendance.h"
#include "rules/Population.h"
#include "shared/BasAttendence.h"
#include "shared/FlexGrid.h"

namespace qz2 {

entry::PeriodReads frmEmployeeDailyAttendance::fnPeriodReads() {
    return entry::PeriodReads(gadocon, gintCompanyID, lngWorkTimeSettingID, strCalendarCondition,
                              strWorkTimeCondition, m_cache);
}

std::optional<entry::ScheduleLine> frmEmployeeDailyAttendance::fnDaySchedule(QDate date) {
    try {
        return fnPeriodReads().daySchedule(date);
    } catch (const std::exception& e) {
        fnNoteReadFailure(e);
        return std::nullopt;
    }
}

void frmEmployeeDailyAttendance::fnCalculateScheduleHours(QDate date, qint16 row) {
    try {
        const TimeValue total = fnPeriodReads().scheduleHours(date);
        mfgAttendance->setTextMatrix(row, colSchedule, total.format(u"hh:mm"));
    } catch (const std::exception& e) {
        // Trapped: the row keeps what it showed; the step that asked reports the failure.
        fnNoteReadFailure(e);
    }
}

TimeValue frmEmployeeDailyAttendance::fnCheckGraceTime(QDate date) {
    try {
        return fnPeriodReads().graceStart(date);
    } catch (const std::exception& e) {
        fnNoteReadFailure(e);
    }
    return TimeValue();
}

void frmEmployeeDailyAttendance::fnLoadWeekdayWorkingHours() {
    for (int day = 1; day <= 7; ++day) {
        try {
            // The procedure is called with company, an empty string and the day number,
            // bound by position. On SQL Server the text is ODBC's call escape
            // "{call spreturnWorkingHrs(?,?,?)}": that is how a stored-procedure command is
            // sent through ODBC, the driver turning it into the procedure's execution with
            // the values as its parameters. SQLite reads the database's view of that name.
            const db::Dialect::Call call = dialect().workingHoursCall(gintCompanyID, day);
            const db::Recordset rs = entry::openCached(m_cache, gadocon, call.sql, call.values);
            // A weekday the settings leave out has no row: it has no working hours.
            weekdayWorkingHours[day] = TimeValue();
            if (!rs.eof()) {
                if (const auto hours = timeValueFromDb(rs.field(0)))
                    weekdayWorkingHours[day] = TimeValue::fromTime(hours->timeOfDay());
            }
        } catch (const std::exception& e) {
            fnNoteReadFailure(e);
            return;  // trapped: the weekdays not yet read keep their values
        }
    }
}

void frmEmployeeDailyAttendance::fnAddScheduleHours() {
    for (int row = 1; row < mfgAttendance->Rows(); ++row) {
        const std::optional<TimeValue> day =
            parseTimeValue(mfgAttendance->TextMatrix(row, colDate));
        if (!day) continue;
        const qint16 id = fnGetDayID(day->date());
        if (id < 1 || id > 7) continue;
        mfgAttendance->setTextMatrix(row, colSchedule, weekdayWorkingHours[id].toDefaultText());
    }
}

}  // namespace qz2
