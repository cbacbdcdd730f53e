#pragma once
// The attendance entry form: one employee's attendance over a period of days. The class
// spans several files, one per concern:
//   EntryForm.cpp       controls, layout, start-up, keyboard, Cancel, grid set-up
//   EntryPeriod.cpp     choosing the employee, department, proposed period, settings checks
//   EntrySchedule.cpp   weekday numbers, scheduled pairs and hours, grace start, working hours
//   EntryNumbering.cpp  the attendance number
// The rules live in EntryRules.h and the statements in EntrySql.h; this class only moves
// values between the widgets, those functions and the database.

#include <QDate>
#include <QDialog>
#include <QList>
#include <array>
#include <exception>
#include <memory>
#include <optional>

#include "db/Dialect.h"
#include "entry/EntryRules.h"
#include "entry/StatementCache.h"
#include "shared/BasAttendence.h"
#include "shared/TimeValue.h"

class QAction;
class QCheckBox;
class QComboBox;
class QItemSelection;
class QKeyEvent;
class QDateEdit;
class QGroupBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QListWidgetItem;
class QMenu;
class QPushButton;
class QTimeEdit;

namespace qz2::entry {
class PeriodReads;
}

namespace qz2 {

class FlexGrid;
namespace commonmodule {
class clsCommonDB;
class clsCommonGen;
}  // namespace commonmodule

class frmEmployeeDailyAttendance : public QDialog {
    Q_OBJECT
public:
    explicit frmEmployeeDailyAttendance(QWidget* parent = nullptr);
    ~frmEmployeeDailyAttendance() override;

    // Day grid columns.
    enum DayCol {
        colMarker = 0,
        colDate = 1,
        colType = 2,
        colWorked = 3,
        colSchedule = 4,
        colHours = 5,
        colAllowanceType = 6
    };
    // Check-in/check-out grid and mirror grid columns.
    enum PairCol { colPairDate = 0, colSlNo = 1, colCheckIn = 2, colCheckOut = 3 };

    // ---- Start-up, keyboard, Cancel -------------------------------------------------
    // Fills the employee box, reads the grace time and the leave/holiday switch, and in
    // New mode proposes the first employee's period. Database errors end it quietly with
    // whatever was filled. Runs by itself when the form is first shown.
    void Form_Load();
    bool isLoaded() const { return m_loaded; }
    // Cancel, Escape and the window's close button: closes without saving, after asking
    // when the form holds work that is not saved.
    void cmdCancel_Click();
    // Whether anything was keyed since the form was opened, the stored entry loaded or the
    // employee chosen: the period, the picks, the days, the pairs, the claims, the remarks,
    // a time still in the picker.
    bool fnHasUnsavedWork() const;
    static inline const QString kMsgDiscardOnClose =
        QStringLiteral("This entry has changes that are not saved. Close it and lose them?");
    static inline const QString kMsgDiscardOnEmployee = QStringLiteral(
        "This entry has changes that are not saved. Choose another employee and lose them?");
    // The clerk agrees to lose the unsaved work (asked with `question`), or there is none.
    bool fnMayDiscardWork(const QString& question);
    // What the form holds now becomes the saved state the next question compares against.
    void fnTakeBaseline();
    // Shows the employee picker; choosing there selects the employee in cboEmpname.
    void cmdEmployee_Click();
    // Headings and widths of the day grid, left with its heading row only.
    void fnSetUpAttendanceGrid();
    // Headings of the check-in/check-out grid, left with its heading row only.
    void fnSetUpCheckGrid();
    // The same four headings on the hidden mirror grid, left with its heading row only.
    void fnSetUpMirrorGrid();
    // The three grids back to their heading rows, nothing current, the time picker hidden.
    void fnClearGrids();
    // txtTotalDays: the days from txtStartDate to dtpEndDate counting both ends.
    void fnShowTotalDays();

    // ---- Employee and period --------------------------------------------------------
    // The employee box's selection changed (by the clerk, the picker or code).
    void cboEmpname_Click();
    // The employee box shows each employee as "number – name": the numbers are read after
    // the names and put before them (a failed read leaves the names alone).
    void fnShowEmployeeNumbers();
    // What the clerk typed into the employee box chooses the one employee it names (by
    // number or name); otherwise the box shows the chosen employee again.
    void fnChooseTypedEmployee();
    // New mode: the line under the employee says when the picker would grey them
    // (attendance already beyond their last payroll); hidden otherwise.
    void fnShowPayrollStatus();
    // Department, date of join and the department-wise conditions of the selected
    // employee; false (after telling the clerk) when the employee has no department.
    bool GetDeptID();
    // New mode: the proposed start and end shown, the calendars checked and the working
    // days listed. False when no period could be shown.
    bool fnProposePeriod();
    // The company calendar of the start's year and of the end's year; false (after
    // telling the clerk and disabling Populate and OK) when either is missing.
    bool FnCheckCalendarSettingsNotEntered();
    // Whether a monthly (payroll) entry of the employee that is not cancelled starts or
    // ends inside the period. Database errors propagate to the caller (the save).
    bool fnIsMonthlyEntryOverlapping(qint32 employee, QDate start, QDate end) const;
    // The newest work-time setting of the company (and department) becomes the entry's;
    // false (after telling the clerk, the entry's setting then 0) when there is none.
    bool fnCheckWorkTimeSettings();
    // lstAbsentDays: every day of the period that is not a holiday, as "yyyy/mm/dd",
    // none of them picked.
    void fnPopoulateList(QDate start, QDate end);
    // The days the clerk picked in lstAbsentDays (ticked, which is also selected).
    QList<QDate> fnPickedAbsentDays() const;
    // lstAbsentDays listed again for start..end, the days ticked before ticked again.
    void fnRelistAbsentDays(QDate start, QDate end);
    // Ticks the listed days among `days` in lstAbsentDays (the others keep their ticks).
    void fnTickAbsentDays(const QSet<QDate>& days);
    static bool isAbsentDayPicked(const QListWidgetItem* item);

    // ---- Work-time schedule ---------------------------------------------------------
    static qint16 fnGetDayID(QDate date) { return entry::fnGetDayID(date); }
    // The schedule and calendar reads under the chosen employee's settings, through the
    // form's statement cache.
    entry::PeriodReads fnPeriodReads();
    // The date's weekday line under the entry's own work-time setting; nullopt when the
    // weekday has no line (or the statement fails).
    std::optional<entry::ScheduleLine> fnDaySchedule(QDate date);
    // Schedule Hours of a day-grid row ("hh:mm"), from the newest work-time setting.
    void fnCalculateScheduleHours(QDate date, qint16 row);
    // The first scheduled check-in of the date's weekday under the entry's setting;
    // midnight when there is none.
    TimeValue fnCheckGraceTime(QDate date);
    // The seven weekdays' working hours from the database's working-hours procedure.
    void fnLoadWeekdayWorkingHours();
    // Schedule Hours of every day-grid row from the kept weekday working hours.
    void fnAddScheduleHours();
    // The per-form statement cache (cleared whenever another employee is chosen).
    entry::StatementCache& statementCache() { return m_cache; }

    // ---- Numbering ------------------------------------------------------------------
    // The next attendance number. Database errors propagate to the caller (the save).

    // ---- Population (EntryPopulate.cpp) ---------------------------------------------
    // Populate: New mode lays out the whole period; Edit mode re-applies absent days and
    // holidays and recounts.
    void cmdPopulateRecords_Click();
    // The clerk changed the period of a new entry by hand: the end text, the total days,
    // the calendar check and the absent-day list follow it (ticked days stay ticked).
    void fnPeriodChanged();
    void fnRemoveMirrorRowsOfDate(QDate date);
    void fnZeroHolidaySchedule();
    void fnMarkHolidays(QDate start, QDate end);
    void fnMarkAbsentDays();
    // The days lstAbsentDays lists, in list order, and those of them the clerk picked.
    void fnAbsentDayPicks(QList<QDate>& listed, QList<QDate>& picked) const;

    // ---- Hours and counts (EntryHours.cpp) -------------------------------------------
    // Worked Hours of every day from the mirror grid.
    void fnCalculateTotalHours();
    // Kind and amount of the current day's difference, from the pairs grid.
    void fnCalculateTotalHoursfortheDay();
    // Hours of every day: Schedule Hours minus Worked Hours.
    void fnFindtheAdditionalWorkingHours();
    // Present (holidays included), leave and absent totals into their boxes.
    void fnCountDayTypes();
    // The current day's scheduled hours, kept when a day is selected.
    TimeValue dtCurrentDaySchedule;

    // ---- Check-in/check-out editing (EntryPairs.cpp) ---------------------------------
    void mfgCheckinCheckOut_EnterCell();
    // Commits the picker's time into the cell being left (row, col) and follows it through.
    void mfgCheckinCheckOut_LeaveCell(int row, int col);
    void mfgCheckinCheckOut_KeyDown(int keyCode, int shift);
    void dtpCheckTime_KeyDown(int keyCode, int shift);
    void mfgCheckinCheckOut_MouseDown(int button, int shift, int x, int y);
    void mnuDelete_Click();
    void fnRenumberGrid(FlexGrid* grid);
    void fnRenumbertheGridForEachDate();
    void fnRemoveRowsFromMirrorGridOnEdit(QDate date);
    void fnClearGridSelection(FlexGrid* grid);

    // ---- Day selection, half days, allowances (EntryDay.cpp) -------------------------
    void mfgAttendance_Click();
    void mfgAttendance_MouseDown(int button, int shift, int x, int y);
    void mnuHalfDay_Click();
    void chkAllowanceDeductions_Click();
    void txtAllowanceDeductions_Change();
    void fnSetDayAllowanceDeduction(const QString& amount, const QString& kind, QDate date);
    // The current day's claim as the check box and the amount box now stand (kind from the
    // caption when ticked, the amount as Hours), written to its day row.
    void fnStoreDayClaim();
    void fnClearEntryForm();
    // The background of day rows firstRow..lastRow: holidays and days off apart from
    // working days (EntryDayLook.cpp).
    void fnShadeDays(int firstRow, int lastRow);

    // ---- Saving (EntrySave.cpp) and loading a stored entry (EntryEditLoad.cpp) --------
    void cmdOK_Click();
    // Loads stored entry `id` of the company into the form (mode "E"); false when it could
    // not be read. A cancelled entry, one a monthly entry covers, or one the user has no
    // right to edit (`mayEdit` false) opens for viewing only.
    bool fnLoadEntry(const QString& id, bool cancelled, bool mayEdit = true);
    // Why an opened entry can only be viewed: the line at the top of the form says it.
    static QString readOnlyCancelledText(const QString& reason);
    static inline const QString kReadOnlyPayroll = QStringLiteral(
        "A monthly payroll entry covers this period: the entry can only be viewed.");
    static inline const QString kReadOnlyNoRight = QStringLiteral(
        "You do not have the right to edit attendance entries: the entry can only be viewed.");
    // Every box becomes read-only (Remarks included), nothing can be saved, and the line
    // at the top shows `reasons`, one a line. The days and their pairs can still be looked
    // through; Esc or Cancel closes without a question.
    void fnShowReadOnly(const QStringList& reasons);
    bool isReadOnly() const { return m_readOnly; }
    // Whether the last cmdOK_Click saved (the form then unloads).
    bool saved() const { return m_saved; }

    // ---- Steps whose reads failed ---------------------------------------------------
    // Choosing the employee, changing a new entry's period and Populate each read the
    // database. When one of their statements fails the clerk is shown the database's
    // message once, what the step would have filled is cleared (or, on an opened entry,
    // put back as it was), and the entry cannot be saved until the step has run again
    // successfully: Populate runs the unfinished step again before it populates.
    enum class Step { None, Employee, Period, Populate };
    Step unfinishedStep() const { return m_unfinished; }

    // ---- Form state -----------------------------------------------------------------
    qint32 lngEmployeeID = 0;    // the selected employee
    qint32 lngDepartmentID = 0;  // the employee's department
    QString strDepartmentName;
    std::optional<QDate> dtDateOfJoin;  // the employee's date of join, when known
    QDate dtPeriodStart;                // the proposed period
    QDate dtPeriodEnd;
    QString strCalendarCondition;     // "" or " and departmentid=<dept>"
    QString strWorkTimeCondition;     // "" or " and cwtsdepartmentid=<dept>"
    qint32 lngWorkTimeSettingID = 0;  // the entry's work-time setting (cwtsid)
    qint32 lngAttendanceID = 0;       // the entry being edited (mode "E")
    // The edited entry's header as it was read when the form opened it: an edit is saved
    // only over that same stored header.
    QStringList strOpenedHeader;
    qint16 intGraceTime = 0;  // grace minutes
    bool blnConsiderLeaveHolidays = false;
    std::array<TimeValue, 8> weekdayWorkingHours{};  // by day number 1..7
    // The dialect of the shared connection.
    static db::Dialect dialect() { return db::Dialect::of(gadocon); }
    commonmodule::clsCommonDB* commonDB() const { return m_db.get(); }
    commonmodule::clsCommonGen* commonGen() const { return m_gen.get(); }

    // ---- Controls -------------------------------------------------------------------
    QGroupBox* fraEmployeeAttendance;
    QGroupBox* fraGridContainer;
    QLabel* lblEmpname;
    QComboBox* cboEmpname;
    QPushButton* cmdEmployee;
    QLineEdit* txtAttNo;
    QLineEdit* txtAttdate;
    QLineEdit* txtStartDate;
    QDateEdit* dtpEndDate;
    QLineEdit* txtEndDate;
    QLineEdit* txtTotalDays;
    QLineEdit* txtNoPresent;
    QLineEdit* txtNoLeave;
    QLineEdit* txtNoAbsent;
    QListWidget* lstAbsentDays;
    QPushButton* cmdPopulateRecords;
    FlexGrid* mfgAttendance;
    FlexGrid* mfgCheckinCheckOut;
    FlexGrid* mfgMirrorGrid;
    QTimeEdit* dtpCheckTime;
    QCheckBox* chkAllowanceDeductions;
    QLineEdit* txtAllowanceDeductions;
    QLineEdit* txtRemarks;
    QMenu* mnuPopUp;
    QAction* mnuDelete;
    QAction* mnuHalfDay;
    QPushButton* cmdOK;
    QPushButton* cmdCancel;
    QPushButton* cmdImportPunches;
    QLabel* lblReadOnly;  // why the entry can only be viewed; hidden while it can be changed
    QLabel* lblEmployeeStatus;  // the chosen employee's payroll note; hidden when none

    // ---- Punches from time clocks ----------------------------------------------------
    // "Import punches...": asks for a punch file, then fnImportPunches.
    void cmdImportPunches_Click();
    // Lays the employee's punches of the file onto the populated period: each day with
    // punches gets them as its pairs, hours and counts are worked out as for typed times,
    // and the clerk reads a summary (flagged days, night shifts, working days without a
    // punch, which may be ticked absent there). Nothing is saved. False when nothing was
    // laid on; the clerk was told why.
    bool fnImportPunches(const QString& path);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    // Escape abandons a time being picked and never closes the form.
    void keyPressEvent(QKeyEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    // Each concern wires its own widgets' events; connectEvents() calls them all.
    void connectPopulateEvents();
    void connectPairEvents();
    void connectDayEvents();
    void connectSaveEvents();
    void connectDayLook();
    // Key and mouse events of the pairs grid, the time picker and the day grid; true when
    // handled (the form's own filter then stops).
    bool pairsEventFilter(QObject* watched, QEvent* event);
    // A digit or separator typed into the time picker; refuses one that makes no time.
    bool typeIntoPicker(QKeyEvent& key);
    bool dayEventFilter(QObject* watched, QEvent* event);
    bool m_saved = false;
    bool m_readOnly = false;
    bool m_mayEdit = true;  // the user's right to edit, as the register gave it
    // The amount box holds a claimed or typed amount that stands until the day's times
    // change; a recompute then updates the kind but keeps the amount.
    bool m_keepDayAmount = false;
    // The days hold punches laid on from a file since the last Populate or employee: the
    // save records the entry's version as imported.
    bool m_punchesImported = false;
    bool m_inLeaveCell = false;
    bool m_inDayClick = false;

    void buildControls();
    void buildLayout();
    void connectEvents();
    void applyTabOrder();
    bool isNewMode() const;
    void syncAbsentDayCheck(QListWidgetItem* item);
    void syncAbsentDaySelection(const QItemSelection& selected, const QItemSelection& deselected);

    std::unique_ptr<commonmodule::clsCommonGen> m_gen;
    std::unique_ptr<commonmodule::clsCommonDB> m_db;
    entry::StatementCache m_cache;
    bool m_loaded = false;
    bool m_inEmployeeClick = false;
    bool m_syncingAbsentDays = false;
    QDate m_lastPeriodEnd;  // the last end date that made an acceptable period
    // The entry as it stood when last opened, loaded or given another employee.
    QString fnEntrySnapshot() const;
    std::optional<QString> m_baseline;
    bool m_shown = false;
    int m_employeeIndex = -1;  // the employee whose days the form holds
    // The period (start, end, employee) last checked, so that one change is checked and
    // reported once however many ways the date boxes say they were left.
    QString fnPeriodKey() const;
    QString m_checkedPeriod;
    // The message of the first database failure the running step met; empty while none.
    QString m_readError;
    Step m_unfinished = Step::None;
    // Keeps the database's message of a failed statement for the running step; other
    // run-time errors stay trapped without a word.
    void fnNoteReadFailure(const std::exception& e);
    // Ends a step: true when none of its statements failed (the step is then finished);
    // otherwise the message is shown once, the step stays unfinished, and false.
    bool fnFinishStep(Step step);
    // Runs the unfinished reads of choosing the employee or of the period again (Populate
    // does, first); true when they now went through.
    bool fnRunUnfinishedStep();
    // The reads of choosing the employee: department, proposed period, work-time setting.
    void fnReadEmployeeSettings();
    // Populate's own work; cmdPopulateRecords_Click traps and reports its failures.
    void fnPopulate();
};

}  // namespace qz2
