// Saving an entry: the checks that must pass before anything is written, then the header,
// the detail lines, the allowance/deduction lines, the lines of days without pairs and the
// history row, all in one transaction. Nothing here reads a widget: the caller hands over
// the values and the grids' models, and shows the message of a save that did not happen.

#include "entry/EntryStore.h"

#include <exception>

#include "commonmodule/CommonModule.h"
#include "db/Database.h"
#include "entry/EntryNumbering.h"
#include "entry/EntrySql.h"
#include "entry/SaveSql.h"
#include "history/HistoryStore.h"
#include "rules/Saving.h"
#include "shared/BasAttendence.h"
#include "shared/TimeValue.h"

namespace qz2::entry {

namespace {

// Waits for another saver's lock instead of failing at once, unless the connection already
// has a wait of its own.
void ensureLockWait(const QSqlDatabase& db, const db::Dialect& d) {
    const std::optional<QString> read = savesql::lockWaitQuery(d);
    if (!read) return;
    if (db::scalar(db, *read).toLongLong() > 0) return;
    db::execute(db, *savesql::setLockWait(d, db::lockWaitMs()));
}

QVector<QVariant> detailValues(const db::Dialect& d, qint16 company, qint32 attendanceId,
                               const rules::DetailLine& line) {
    return {QVariant(company),
            QVariant(attendanceId),
            QVariant(line.detailId),
            savesql::dateValue(d, line.date),
            QVariant(line.type),
            line.checkIn ? savesql::timeValue(d, *line.checkIn) : savesql::noTime(d),
            line.checkOut ? savesql::timeValue(d, *line.checkOut) : savesql::noTime(d)};
}

// A save that a check refused: nothing was written.
SaveResult refusal(const QString& message) {
    SaveResult r;
    r.message = message;
    return r;
}

}  // namespace

SaveResult fnSaveEntry(const QSqlDatabase& db, qint16 company, qint16 user, qint32 interfaceId,
                       const EntryToSave& e) {
    const bool editMode = e.editedId.has_value();
    const db::Dialect d = db::Dialect::of(db);
    const FlexGridModel& days = *e.days;
    const FlexGridModel& mirror = *e.mirror;
    try {
        // Even the checks' reads may meet another saver's commit: wait for it from the start.
        ensureLockWait(db, d);
        if (editMode &&
            isMonthlyEntryOverlapping(db, e.employee, rules::requiredDate(e.startText), e.end))
            return refusal(QStringLiteral("Monthly entry done. Canot Modify."));

        auto helper = commonmodule::createCommonDB(db);
        helper->strTableName = LinkedTableNames.pSettings;
        const bool rateFromMaster =
            db::isOn(helper->fnReturnField(QStringLiteral("PerHourRateFromEmployeeMaster"),
                                           savesql::rateSettingCondition(company)));
        helper->strTableName = LinkedTableNames.pemployee;
        const QVariant rateField = helper->fnReturnField(
            QStringLiteral("PerHourRate"), savesql::employeeRateCondition(company, e.employee));
        const double rate = rateField.isNull() ? 0.0 : rateField.toDouble();
        if (rate == 0.0 && rateFromMaster)
            return refusal(
                QStringLiteral("The Overtime/Latecoming Rate/Hour is Zero in the Employee "
                               "master. Can't Save."));

        // The write lock is taken at once, so that two clerks saving at the same moment are
        // served one after the other before either reads the next number.
        db::Transaction transaction(db, /*immediate=*/true);
        qint32 newId = 0;
        QString attendanceNo;
        {
            // No two live entries of one employee may share a day. Checked under the save's
            // own lock, so that no overlapping entry can be written between the check and
            // the inserts; the lock is let go before the clerk is told.
            const QDate periodStart = rules::requiredDate(e.startText);
            const db::Recordset other =
                db::openRecordset(db, savesql::overlappingEntryQuery(
                                          d, company, e.employee, periodStart, e.end, e.editedId));
            // An edit is saved only over the stored entry it opened: not over one cancelled
            // meanwhile, nor over another clerk's save of it.
            std::optional<QString> stale;
            if (editMode) {
                const db::Recordset stored = db::openRecordset(
                    db, savesql::headerQuery(d, company, QString::number(*e.editedId)));
                stale = rules::staleEditMessage(
                    e.attendanceNo, e.openedHeader, savesql::storedHeaderFingerprint(stored),
                    !stored.eof() && db::isOn(stored.field(QStringLiteral("eaCancelled"))));
            }
            if (stale) {
                transaction.rollback();
                return refusal(*stale);
            }
            if (!other.eof()) {
                const QString message = rules::overlapMessage(
                    other.field(0).toString(),
                    timeValueFromDb(other.field(1)).value_or(TimeValue()).date(),
                    timeValueFromDb(other.field(2)).value_or(TimeValue()).date());
                transaction.rollback();
                return refusal(message);
            }

            // The entry as stored before the edit, for its history, read before it is deleted.
            history::VersionRecorder version =
                history::VersionRecorder::begin(db, company, e.editedId);
            if (editMode) {
                db::execute(db, savesql::deleteAllowanceLines(company, *e.editedId));
                db::execute(db, savesql::deleteDetailLines(company, *e.editedId));
                db::execute(db, savesql::deleteHeader(company, *e.editedId));
            }
            attendanceNo = editMode ? e.attendanceNo.trimmed()
                                    : generateAttendanceNo(db, company, interfaceId);
            // A number is never given twice: one already stored (hand-keyed, or left by a
            // broken sequence) stops the save rather than making a second entry with it.
            if (!editMode && db::scalar(db, savesql::attendanceNoTakenQuery(company, attendanceNo))
                                     .toLongLong() > 0)
                throw rules::SaveDataError(
                    QStringLiteral("The attendance number %1 is already taken. Nothing was saved.")
                        .arg(attendanceNo)
                        .toStdString());
            helper->strTableName = LinkedTableNames.pEmployeeAttendence;
            newId = helper->fnGetNextMaxNo(QStringLiteral("eaID"));

            const QString remarks = rules::cleanedText(e.remarks);
            savesql::InsertCommand header(db, savesql::headerInsert());
            header.execute(
                {QVariant(company), QVariant(newId), QVariant(attendanceNo),
                 savesql::dateValue(d, rules::requiredDate(e.entryDateText)), QVariant(e.employee),
                 QVariant(e.present), QVariant(e.leaves), QVariant(e.absent), QVariant(0),
                 savesql::dateValue(d, rules::requiredDate(e.startText)),
                 savesql::dateValue(d, e.end), QVariant(e.workTimeSettingId),
                 remarks.isEmpty() ? savesql::noText() : QVariant(remarks), QVariant(rate)});

            savesql::InsertCommand detail(db, savesql::detailInsert());
            const QList<rules::DetailLine> pairLines = rules::fnMirrorDetailLines(days, mirror);
            for (const rules::DetailLine& line : pairLines)
                detail.execute(detailValues(d, company, newId, line));

            int allowanceId = 0;
            int deductionId = 0;
            const db::Recordset heads =
                db::openRecordset(db, savesql::currencyHeadsQuery(e.employee, company));
            if (!heads.eof()) {
                allowanceId = heads.isNull(0) ? 0 : heads.field(0).toInt();
                deductionId = heads.isNull(1) ? 0 : heads.field(1).toInt();
            }
            const QList<rules::AllowanceLine> claims =
                rules::allowanceLinesToInsert(days, allowanceId, deductionId);
            if (!claims.isEmpty()) {
                savesql::InsertCommand allowance(db, savesql::allowanceInsert());
                for (const rules::AllowanceLine& line : claims)
                    allowance.execute(
                        {QVariant(company), QVariant(newId), QVariant(line.detailId),
                         savesql::dateValue(d, line.date), QVariant(line.hours),
                         line.allowanceId ? QVariant(*line.allowanceId) : savesql::noNumber(),
                         line.deductionId ? QVariant(*line.deductionId) : savesql::noNumber()});
            }

            // The lines of the absent and leave days, and of the holidays without pairs,
            // continuing the detail numbering from the last mirror line.
            int detailCounter = static_cast<int>(pairLines.size());
            for (const rules::DetailLine& line :
                 rules::fnInsertOtherDays(days, mirror, detailCounter))
                detail.execute(detailValues(d, company, newId, line));
            version.record(e.action, newId, user);
        }
        if (e.dryRun)
            transaction.rollback();
        else
            transaction.commit();
        return {newId, QString(), attendanceNo, false};
    } catch (const std::exception& ex) {
        // The transaction scope has rolled back whatever was written.
        // A date or number the save cannot store is the entry's fault, not the database's.
        const bool dataError = dynamic_cast<const rules::SaveDataError*>(&ex) != nullptr;
        return {std::nullopt, db::errorMessage(ex), QString(), !dataError};
    }
}

}  // namespace qz2::entry
