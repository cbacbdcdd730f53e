// Saving an entry: the checks that must pass before anything is written, then the header,
// the detail lines, the allowance/deduction lines and the lines of days without pairs, all
// in one transaction; then the register's row for the entry and the form's unload.
//
// The form itself is never changed by a save that fails: every value is read from the
// widgets, nothing is written back before the commit, and the transaction scope rolls the
// database back whatever the failure was, so the clerk can correct and press OK again.

#include <QComboBox>
#include <QDateEdit>
#include <QLineEdit>
#include <QPushButton>
#include <exception>

#include "commonmodule/CommonModule.h"
#include "db/Database.h"
#include "entry/SaveSql.h"
#include "entry/frmEmployeeDailyAttendance.h"
#include "history/HistoryStore.h"
#include "rules/Saving.h"
#include "shared/BasAttendence.h"
#include "shared/FlexGrid.h"
#include "shared/MsgBox.h"
#include "shared/SharedServices.h"

namespace qz2 {

namespace {

QString describe(const std::exception& e) {
    return db::failedStatementMessage(e).value_or(QString::fromUtf8(e.what()));
}

// Waits for another saver's lock instead of failing at once, unless the connection already
// has a wait of its own.
void ensureLockWait(const db::Dialect& d) {
    const std::optional<QString> read = entry::savesql::lockWaitQuery(d);
    if (!read) return;
    if (db::scalar(gadocon, *read).toLongLong() > 0) return;
    db::execute(gadocon, *entry::savesql::setLockWait(d, db::lockWaitMs()));
}

QVector<QVariant> detailValues(const db::Dialect& d, qint32 attendanceId,
                               const rules::DetailLine& line) {
    return {
        QVariant(gintCompanyID),
        QVariant(attendanceId),
        QVariant(line.detailId),
        entry::savesql::dateValue(d, line.date),
        QVariant(line.type),
        line.checkIn ? entry::savesql::timeValue(d, *line.checkIn) : entry::savesql::noTime(d),
        line.checkOut ? entry::savesql::timeValue(d, *line.checkOut) : entry::savesql::noTime(d)};
}

// The lines of the absent and leave days, and of the holidays without pairs, continuing
// the detail numbering from the last mirror line.
void fnInsertOtherDays(entry::savesql::InsertCommand& detail, const db::Dialect& d,
                       const FlexGridModel& dayGrid, const FlexGridModel& mirror,
                       qint32 attendanceId, int& detailCounter) {
    for (const rules::DetailLine& line : rules::fnInsertOtherDays(dayGrid, mirror, detailCounter))
        detail.execute(detailValues(d, attendanceId, line));
}

}  // namespace

void frmEmployeeDailyAttendance::connectSaveEvents() {
    connect(cmdOK, &QPushButton::clicked, this, [this] { cmdOK_Click(); });
}

void frmEmployeeDailyAttendance::cmdOK_Click() {
    m_saved = false;
    // A step whose reads failed left nothing to save until it has run again.
    if (m_unfinished != Step::None) {
        MsgBox(entry::kMsgStepUnfinished, MsgButtons::Ok, MsgIcon::Information);
        cmdPopulateRecords->setFocus();
        return;
    }
    const WaitCursor wait;
    fnSurviveFileSizeLimit();
    const FlexGridModel& days = *mfgAttendance->flexModel();
    const FlexGridModel& mirror = *mfgMirrorGrid->flexModel();

    if (cboEmpname->currentIndex() == -1) {
        MsgBox(QStringLiteral("Select Employee"));
        cboEmpname->setFocus();
        return;
    }
    if (days.Rows() <= 1 || rules::processAttendanceMissing(days, mirror)) {
        MsgBox(QStringLiteral("Process Attendance"));
        cmdPopulateRecords->setFocus();
        return;
    }

    const bool editMode = gstrEntryMode == QLatin1String("E");
    const db::Dialect d = dialect();
    const qint32 employee = cboEmpname->itemData(cboEmpname->currentIndex()).toInt();
    qint32 newId = 0;
    try {
        // Even the checks' reads may meet another saver's commit: wait for it from the start.
        ensureLockWait(d);
        if (editMode &&
            fnIsMonthlyEntryOverlapping(employee, rules::requiredDate(txtStartDate->text()),
                                        dtpEndDate->date())) {
            MsgBox(QStringLiteral("Monthly entry done. Canot Modify."), MsgButtons::Ok,
                   MsgIcon::Information);
            return;
        }

        auto helper = commonmodule::createCommonDB(gadocon);
        helper->strTableName = LinkedTableNames.pSettings;
        const bool rateFromMaster =
            db::isOn(helper->fnReturnField(QStringLiteral("PerHourRateFromEmployeeMaster"),
                                           entry::savesql::rateSettingCondition(gintCompanyID)));
        helper->strTableName = LinkedTableNames.pemployee;
        const QVariant rateField =
            helper->fnReturnField(QStringLiteral("PerHourRate"),
                                  entry::savesql::employeeRateCondition(gintCompanyID, employee));
        const double rate = rateField.isNull() ? 0.0 : rateField.toDouble();
        if (rate == 0.0 && rateFromMaster) {
            MsgBox(QStringLiteral("The Overtime/Latecoming Rate/Hour is Zero in the Employee "
                                  "master. Can't Save."),
                   MsgButtons::Ok, MsgIcon::Information);
            return;
        }

        // The write lock is taken at once, so that two clerks saving at the same moment are
        // served one after the other before either reads the next number.
        db::Transaction transaction(gadocon, /*immediate=*/true);
        {
            // No two live entries of one employee may share a day. Checked under the save's
            // own lock, so that no overlapping entry can be written between the check and
            // the inserts; the lock is let go before the clerk is told.
            const QDate periodStart = rules::requiredDate(txtStartDate->text());
            const QDate periodEnd = dtpEndDate->date();
            const db::Recordset other = db::openRecordset(
                gadocon, entry::savesql::overlappingEntryQuery(
                             d, gintCompanyID, employee, periodStart, periodEnd,
                             editMode ? std::optional<qint32>(lngAttendanceID) : std::nullopt));
            // An edit is saved only over the stored entry it opened: not over one cancelled
            // meanwhile, nor over another clerk's save of it.
            std::optional<QString> stale;
            if (editMode) {
                const db::Recordset stored = db::openRecordset(
                    gadocon, entry::savesql::headerQuery(d, gintCompanyID,
                                                         QString::number(lngAttendanceID)));
                stale = rules::staleEditMessage(
                    txtAttNo->text(), strOpenedHeader,
                    entry::savesql::storedHeaderFingerprint(stored),
                    !stored.eof() && db::isOn(stored.field(QStringLiteral("eaCancelled"))));
            }
            if (stale) {
                transaction.rollback();
                MsgBox(*stale, MsgButtons::Ok, MsgIcon::Information);
                return;
            }
            if (!other.eof()) {
                const QString message = rules::overlapMessage(
                    other.field(0).toString(),
                    timeValueFromDb(other.field(1)).value_or(TimeValue()).date(),
                    timeValueFromDb(other.field(2)).value_or(TimeValue()).date());
                transaction.rollback();
                MsgBox(message, MsgButtons::Ok, MsgIcon::Information);
                return;
            }

            // The entry as stored before the edit, for its history, read before it is deleted.
            history::VersionRecorder version = history::VersionRecorder::begin(
                gadocon, gintCompanyID,
                editMode ? std::optional<qint32>(lngAttendanceID) : std::nullopt);
            if (editMode) {
                db::execute(gadocon,
                            entry::savesql::deleteAllowanceLines(gintCompanyID, lngAttendanceID));
                db::execute(gadocon,
                            entry::savesql::deleteDetailLines(gintCompanyID, lngAttendanceID));
                db::execute(gadocon, entry::savesql::deleteHeader(gintCompanyID, lngAttendanceID));
            }
            const QString attendanceNo =
                editMode ? txtAttNo->text().trimmed() : fnGenerateAttendanceNo();
            // A number is never given twice: one already stored (hand-keyed, or left by a
            // broken sequence) stops the save rather than making a second entry with it.
            if (!editMode && db::scalar(gadocon, entry::savesql::attendanceNoTakenQuery(
                                                     gintCompanyID, attendanceNo))
                                     .toLongLong() > 0)
                throw rules::SaveDataError(
                    QStringLiteral("The attendance number %1 is already taken. Nothing was saved.")
                        .arg(attendanceNo)
                        .toStdString());
            helper->strTableName = LinkedTableNames.pEmployeeAttendence;
            newId = helper->fnGetNextMaxNo(QStringLiteral("eaID"));

            const QString remarks = rules::cleanedText(txtRemarks->text());
            entry::savesql::InsertCommand header(gadocon, entry::savesql::headerInsert());
            header.execute(
                {QVariant(gintCompanyID), QVariant(newId), QVariant(attendanceNo),
                 entry::savesql::dateValue(d, rules::requiredDate(txtAttdate->text())),
                 QVariant(employee), QVariant(val(txtNoPresent->text().trimmed())),
                 QVariant(val(txtNoLeave->text().trimmed())),
                 QVariant(val(txtNoAbsent->text().trimmed())), QVariant(0),
                 entry::savesql::dateValue(d, rules::requiredDate(txtStartDate->text())),
                 entry::savesql::dateValue(d, dtpEndDate->date()), QVariant(lngWorkTimeSettingID),
                 remarks.isEmpty() ? entry::savesql::noText() : QVariant(remarks), QVariant(rate)});

            entry::savesql::InsertCommand detail(gadocon, entry::savesql::detailInsert());
            const QList<rules::DetailLine> pairLines = rules::fnMirrorDetailLines(days, mirror);
            for (const rules::DetailLine& line : pairLines)
                detail.execute(detailValues(d, newId, line));

            int allowanceId = 0;
            int deductionId = 0;
            const db::Recordset heads = db::openRecordset(
                gadocon, entry::savesql::currencyHeadsQuery(employee, gintCompanyID));
            if (!heads.eof()) {
                allowanceId = heads.isNull(0) ? 0 : heads.field(0).toInt();
                deductionId = heads.isNull(1) ? 0 : heads.field(1).toInt();
            }
            const QList<rules::AllowanceLine> claims =
                rules::allowanceLinesToInsert(days, allowanceId, deductionId);
            if (!claims.isEmpty()) {
                entry::savesql::InsertCommand allowance(gadocon, entry::savesql::allowanceInsert());
                for (const rules::AllowanceLine& line : claims)
                    allowance.execute(
                        {QVariant(gintCompanyID), QVariant(newId), QVariant(line.detailId),
                         entry::savesql::dateValue(d, line.date), QVariant(line.hours),
                         line.allowanceId ? QVariant(*line.allowanceId)
                                          : entry::savesql::noNumber(),
                         line.deductionId ? QVariant(*line.deductionId)
                                          : entry::savesql::noNumber()});
            }

            int detailCounter = static_cast<int>(pairLines.size());
            fnInsertOtherDays(detail, d, days, mirror, newId, detailCounter);
            // Times laid on from a time clock's file are recorded as an import.
            version.record(m_punchesImported ? history::Action::Imported
                           : editMode        ? history::Action::Edited
                                             : history::Action::Created,
                           newId, gintUserID);
        }
        transaction.commit();
    } catch (const std::exception& e) {
        // The transaction scope has rolled back whatever was written.
        MsgBox(describe(e), MsgButtons::Ok, MsgIcon::Information);
        return;
    }

    // An edit refreshes the register row it was opened from (its identifier as listed); a
    // new entry appends the row of its new identifier. An edit saved under a new identifier
    // no longer has a row under the listed one, so that row is rewritten from the new one.
    QString listedId = QString::number(newId);
    if (editMode) {
        const FlexGrid* grid = registerGrid();
        listedId = grid && grid->Row() > 0 ? grid->TextMatrix(grid->Row(), 0)
                                           : QString::number(lngAttendanceID);
    }
    const QString company = QStringLiteral(" and eacompanyid=") + QString::number(gintCompanyID);
    if (!fnRefreshRegisterRow(QStringLiteral("eaID=") + listedId + company) && editMode &&
        listedId != QString::number(newId))
        fnRefreshRegisterRow(QStringLiteral("eaID=") + QString::number(newId) + company);
    m_saved = true;
    accept();
}

}  // namespace qz2
