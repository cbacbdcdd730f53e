#pragma once
// Small services shared by the register and the entry form: storing control values,
// refreshing one register row after a save, the monthly-entry lock and the error log.

#include <QDateTime>
#include <QString>
#include <functional>

class QWidget;

namespace qz2 {

class FlexGrid;

// Copies each text box's and combo box's text, and each check box's and option button's
// value, into the control's "Tag" (a dynamic property), for later comparison.
void fnStoreControlValues(QWidget* form);

// Re-reads one register row with the list query narrowed by the condition: in edit mode the
// current row is rewritten, otherwise the row is appended and made current. Errors end it
// silently. True when a row came back and was written.
bool fnRefreshRegisterRow(const QString& condition, const QString& unused = {});

// True (after telling the clerk) when a monthly entry that is not cancelled starts or ends
// inside the period of the register's current entry. Mode "E" speaks of editing, anything
// else of deleting. Database errors propagate to the caller.
bool fnIsMonthlyEntryDone(const QString& mode);

// Appends one line to the module's error log and, when asked and the error number is not
// 0, shows the description.
void fnWriteErrorLog(const QString& formName, qint16 userId, const QString& procName, const QString& entryMode,
                     qint32 errNumber, const QString& errSource, const QString& errDescription, bool showMessage);

// The module's name and the error log's path: "<component folder>/<module name>Error.log".
QString moduleName();
QString errorLogPath();
// Where the log is written (the component's folder unless set) and what "now" is; both
// are settable so that tests pin them.
void setErrorLogFolder(const QString& folder);
void setClock(std::function<QDateTime()> now);
// "Now" as the clock above gives it (the error log's and the history's time).
QDateTime fnNow();

// The register grid the shared services work on (the open register's flexMaster).
FlexGrid* registerGrid();

// A write past the process's file-size limit fails with the database's own message (the
// save rolls back and says so) instead of ending the clerk's program: the signal such a
// write raises is ignored from here on.
void fnSurviveFileSizeLimit();
void setRegisterGrid(FlexGrid* grid);

}  // namespace qz2
