// Loading a stored entry into the entry form for correction: the header into the boxes,
// the stored pairs into the mirror grid, one day row per day of the period, the hours,
// and the allowance and deduction claims back into the day rows. An entry that a monthly
// entry covers, or a cancelled one, opens for viewing only.

#include <QListWidget>
#include <QSet>
#include <QComboBox>
#include <QDateEdit>
#include <QGroupBox>
#include <QLineEdit>
#include <QPushButton>
#include <exception>
#include <utility>

#include "commonmodule/CommonModule.h"
#include "db/Database.h"
#include "entry/EntryRules.h"
#include "entry/SaveSql.h"
#include "entry/frmEmployeeDailyAttendance.h"
#include "rules/DayTypes.h"
#include "rules/Hours.h"
#include "rules/Population.h"
#include "rules/Saving.h"
#include "shared/BasAttendence.h"
#include "shared/FlexGrid.h"
#include "shared/MsgBox.h"
#include "shared/SharedServices.h"

namespace qz2 {

namespace {

std::optional<QDate> storedDate(const QVariant& v) {
    const std::optional<TimeValue> t = timeValueFromDb(v);
    return t ? std::optional<QDate>(t->date()) : std::nullopt;
}

QString storedDateText(const QVariant& v) {
    const std::optional<QDate> day = storedDate(v);
    return day ? dateText(*day) : QString();
}

// A stored count or amount as the form's boxes show numbers ("20", "20.5").
QString numberText(const QVariant& v) {
    return v.isNull() ? QString() : rules::countText(v.toDouble());
}

}  // namespace

bool frmEmployeeDailyAttendance::fnLoadEntry(const QString& id, bool cancelled, bool mayEdit) {
    gstrEntryMode = QStringLiteral("E");
    if (!m_loaded) Form_Load();
    bool viewOnly = false;
    std::optional<QDate> periodStart;
    std::optional<QDate> periodEnd;
    QString cancelledReason;
    m_readError.clear();
    try {
        const db::Recordset header =
            db::openRecordset(gadocon, entry::savesql::headerQuery(dialect(), gintCompanyID, id));
        if (!header.eof()) {
            strOpenedHeader = entry::savesql::storedHeaderFingerprint(header);
            // The database says whether the entry is cancelled, whatever the list showed.
            if (db::isOn(header.field(QStringLiteral("eaCancelled")))) cancelled = true;
            cancelledReason = header.field(QStringLiteral("eaCancelledRemarks")).toString();
            const QVariant employee = header.field(QStringLiteral("eaEmpID"));
            viewOnly = fnIsMonthlyEntryDone(QStringLiteral("E"));
            // Selecting the employee runs the employee box's own handler (department,
            // schedule conditions, cleared grids), as the clerk's choice would.
            commonGen()->SelectComboItemByValue(cboEmpname, employee);
            // Its failure was reported there; an entry read half is not shown.
            if (m_unfinished == Step::Employee) return false;

            const std::optional<QDate> start =
                storedDate(header.field(QStringLiteral("eaStartDate")));
            const std::optional<QDate> end = storedDate(header.field(QStringLiteral("eaEndDate")));
            periodStart = start;
            periodEnd = end;
            txtStartDate->setText(start ? dateText(*start) : QString());
            if (end) {
                dtpEndDate->setDate(*end);
                txtEndDate->setText(dateText(*end));
            }
            txtAttNo->setText(header.field(QStringLiteral("eaNo")).toString());
            txtAttdate->setText(storedDateText(header.field(QStringLiteral("eaDate"))));
            txtNoPresent->setText(numberText(header.field(QStringLiteral("eaPresent"))));
            txtNoLeave->setText(numberText(header.field(QStringLiteral("eaLeaves"))));
            txtNoAbsent->setText(numberText(header.field(QStringLiteral("eaAbsent"))));
            if (start && end) {
                fnPopoulateList(*start, *end);
                txtTotalDays->setText(QString::number(entry::fnTotalDays(*start, *end)));
            }
            txtRemarks->setText(header.field(QStringLiteral("eaRemarks")).toString());
            if (!header.isNull(QStringLiteral("eacwtsid")))
                lngWorkTimeSettingID = header.field(QStringLiteral("eacwtsid")).toInt();
        }

        // The stored pairs. Column 1 holds the stored line number until the grid is
        // renumbered per day below.
        for (db::Recordset rs =
                 db::openRecordset(gadocon, entry::savesql::detailLinesQuery(gintCompanyID, id));
             !rs.eof(); rs.moveNext()) {
            // Lines of days without times (absent, leave, bare holidays) have no pair.
            if (rs.isNull(QStringLiteral("eadCheckIn")) || rs.isNull(QStringLiteral("eadCheckOut")))
                continue;
            const std::optional<TimeValue> in =
                timeValueFromDb(rs.field(QStringLiteral("eadCheckIn")));
            const std::optional<TimeValue> out =
                timeValueFromDb(rs.field(QStringLiteral("eadCheckOut")));
            mfgMirrorGrid->AddItem({storedDateText(rs.field(QStringLiteral("eadDate"))),
                                    rs.field(QStringLiteral("eadDetailID")).toString(),
                                    in ? in->format(u"HH:mm") : QString(),
                                    out ? out->format(u"HH:mm") : QString()});
        }

        // Every day of the stored period, with its stored type; a day saved without a line
        // (before every day was stored) comes back present, so that the period is whole and
        // a recount never drops it. Then the days' scheduled hours, holidays at zero as a
        // new entry's population gives them: work on a holiday stays extra time, and a stored
        // allowance never turns into a deduction by being reopened.
        QList<rules::StoredDay> storedDays;
        for (db::Recordset rs =
                 db::openRecordset(gadocon, entry::savesql::entryDaysQuery(gintCompanyID, id));
             !rs.eof(); rs.moveNext()) {
            if (const std::optional<QDate> day = storedDate(rs.field(QStringLiteral("eadDate"))))
                storedDays << rules::StoredDay{
                    *day, rs.field(QStringLiteral("eadType")).toString().trimmed()};
        }
        rules::fnLayOutStoredDays(*mfgAttendance->flexModel(), periodStart.value_or(QDate()),
                                  periodEnd.value_or(QDate()), dtDateOfJoin.value_or(QDate()),
                                  storedDays);
        // Once a read has failed the opening shows nothing: the remaining days' schedule and
        // first check-in are not asked (each would wait out a held lock again).
        for (int row = 1; row < mfgAttendance->Rows() && m_readError.isEmpty(); ++row)
            if (const auto day = parseDmy(mfgAttendance->TextMatrix(row, colDate)))
                fnCalculateScheduleHours(*day, static_cast<qint16>(row));
        fnZeroHolidaySchedule();

        rules::fnCalculateTotalHours(
            *mfgAttendance->flexModel(), *mfgMirrorGrid->flexModel(),
            [this](QDate d) { return m_readError.isEmpty() ? fnCheckGraceTime(d) : TimeValue(); },
            intGraceTime);

        // The claims go back to their days: the amount as the day's Hours, the kind as its
        // AllowanceType ("A" allowance, "D" deduction).
        for (db::Recordset rs =
                 db::openRecordset(gadocon, entry::savesql::allowanceLinesQuery(gintCompanyID, id));
             !rs.eof(); rs.moveNext()) {
            const bool allowance = !rs.isNull(QStringLiteral("eaadAllowanceID"));
            const bool deduction = !rs.isNull(QStringLiteral("eaadDeductionID"));
            if (!allowance && !deduction) continue;
            const QString day = storedDateText(rs.field(QStringLiteral("eaadDate")));
            for (int row = 1; row < mfgAttendance->Rows(); ++row) {
                if (mfgAttendance->TextMatrix(row, colDate) != day) continue;
                mfgAttendance->setTextMatrix(
                    row, colHours,
                    rules::decimalHoursText(rs.field(QStringLiteral("eaadHours")).toDouble()));
                mfgAttendance->setTextMatrix(row, colAllowanceType,
                                             allowance ? QStringLiteral("A") : QStringLiteral("D"));
                break;
            }
        }
        fnRenumbertheGridForEachDate();

        // The stored absent days are the clerk's earlier picks: ticked again, so that
        // Populate on the opened entry keeps them absent instead of turning them present.
        QSet<QString> absent;
        for (int row = 1; row < mfgAttendance->Rows(); ++row)
            if (mfgAttendance->TextMatrix(row, colType).trimmed() == QLatin1String("A"))
                if (const auto day = parseDmy(mfgAttendance->TextMatrix(row, colDate)))
                    absent.insert(TimeValue::fromDate(*day).format(u"yyyy/mm/dd"));
        for (int i = 0; i < lstAbsentDays->count(); ++i)
            if (absent.contains(lstAbsentDays->item(i)->text()))
                lstAbsentDays->item(i)->setCheckState(Qt::Checked);

        lngAttendanceID = id.trimmed().toInt();
    } catch (const std::exception& e) {
        // Trapped: the form is not shown. A failed statement is reported.
        fnNoteReadFailure(e);
        if (!m_readError.isEmpty()) MsgBox(std::exchange(m_readError, QString()), MsgButtons::Ok, MsgIcon::Information);
        return false;
    }
    // A read trapped on the way (the absent days, a schedule) leaves the entry half shown.
    if (!m_readError.isEmpty()) {
        MsgBox(std::exchange(m_readError, QString()), MsgButtons::Ok, MsgIcon::Information);
        return false;
    }
    if (cancelled) cmdOK->setEnabled(false);
    if (viewOnly) {
        cmdOK->setEnabled(false);
        fraEmployeeAttendance->setEnabled(false);
        fraGridContainer->setEnabled(false);
    }
    // An entry that cannot be changed reads as one: every box read-only and a line at the
    // top that says why, the cancellation's reason included.
    QStringList readOnlyBecause;
    if (cancelled) readOnlyBecause << readOnlyCancelledText(cancelledReason);
    if (viewOnly) readOnlyBecause << kReadOnlyPayroll;
    m_mayEdit = mayEdit;
    if (!mayEdit) readOnlyBecause << kReadOnlyNoRight;
    if (!readOnlyBecause.isEmpty()) fnShowReadOnly(readOnlyBecause);
    fnStoreControlValues(this);
    return true;
}

}  // namespace qz2
