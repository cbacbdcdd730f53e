-- Attendance module database, SQLite edition.
--
-- Storage rules shared by every table below:
--   dates        ISO text 'YYYY-MM-DD'
--   times of day text 'HH:MM:SS'
--   bits         INTEGER 0 or 1
--   amounts      REAL
--   identifiers  INTEGER
-- Column names follow the suite's spelling, quirks included (pCalenderHeader,
-- pEmployeeAttendence, lrdNoofDays ...); SQLite compares names without regard to case.
--
-- The loader splits this file on ";" at a line end, so no statement may contain one
-- (hence no triggers), and comments stand on lines of their own.

-- Companies of the installation (only for the demo's readability; no statement of the
-- module reads it).
CREATE TABLE pCompany (
    CompanyID   INTEGER NOT NULL PRIMARY KEY,
    CompanyName TEXT    NOT NULL
);

-- Logical table name -> physical table name, read once when the register opens.
CREATE TABLE linktable (
    tablename     TEXT NOT NULL PRIMARY KEY,
    linktablename TEXT NOT NULL
);

-- Users: pusers is read when an entry is cancelled, ausers by the error log.
CREATE TABLE pusers (
    userid    INTEGER NOT NULL PRIMARY KEY,
    username  TEXT    NOT NULL,
    companyid INTEGER NOT NULL
);

CREATE TABLE ausers (
    userid    INTEGER NOT NULL PRIMARY KEY,
    username  TEXT    NOT NULL,
    companyid INTEGER NOT NULL
);

-- Rights letters per user and screen (N new, E edit, D delete, U, P).
CREATE TABLE puserrights (
    userid         INTEGER NOT NULL,
    interfaceid    INTEGER NOT NULL,
    functionrights TEXT,
    PRIMARY KEY (userid, interfaceid)
);

-- Document-number prefix per screen and company.
CREATE TABLE pPrefix (
    companyid   INTEGER NOT NULL,
    InterfaceID INTEGER NOT NULL,
    Prefix      TEXT,
    PRIMARY KEY (companyid, InterfaceID)
);

-- One row of switches per company.
CREATE TABLE pSettings (
    companyid                     INTEGER NOT NULL PRIMARY KEY,
    gracetime                     INTEGER NOT NULL DEFAULT 0,
    ConsiderLeaveHolidays         INTEGER NOT NULL DEFAULT 0,
    PerHourRateFromEmployeeMaster INTEGER NOT NULL DEFAULT 0,
    calendardepwise               INTEGER NOT NULL DEFAULT 0,
    cwtsdepwise                   INTEGER NOT NULL DEFAULT 0,
    noofPreviousdays              INTEGER NOT NULL DEFAULT 0
);

-- Department identifiers are unique across companies: the employee picker joins
-- employees to departments on the identifier alone.
CREATE TABLE pDepartment (
    DepartmentID   INTEGER NOT NULL PRIMARY KEY,
    CompanyID      INTEGER NOT NULL,
    DepartmentName TEXT    NOT NULL
);

CREATE TABLE pCurrencyMaster (
    CurrencyID   INTEGER NOT NULL PRIMARY KEY,
    CurrencyCode TEXT    NOT NULL,
    CurrencyName TEXT    NOT NULL
);

-- Overtime allowance and late-coming deduction heads per company and currency.
CREATE TABLE pCurrencyallowdeddetails (
    companyID           INTEGER NOT NULL,
    CurrencyID          INTEGER NOT NULL,
    Overtimeallowanceid INTEGER,
    latecomingdedid     INTEGER,
    PRIMARY KEY (companyID, CurrencyID)
);

-- Employee identifiers are unique across companies: several statements select an
-- employee by eEmpID alone. eDeptID may be NULL (no department).
CREATE TABLE pEmployee (
    eEmpID      INTEGER NOT NULL PRIMARY KEY,
    eCompanyID  INTEGER NOT NULL,
    eEmpNo      TEXT    NOT NULL,
    eName       TEXT    NOT NULL,
    eActive     INTEGER NOT NULL DEFAULT 1,
    eDeptID     INTEGER,
    eDateofjoin TEXT,
    ecurrencyid INTEGER,
    PerHourRate REAL    NOT NULL DEFAULT 0
);

CREATE INDEX ix_pEmployee_company ON pEmployee (eCompanyID, eActive);

-- Holiday calendars: one header per company, financial year and (when calendars are
-- kept per department) department; one detail row per holiday. departmentid lives in
-- the header only, so that an unqualified "departmentid" in a join stays unambiguous.
CREATE TABLE pCalenderHeader (
    companyid    INTEGER NOT NULL,
    CalenderID   INTEGER NOT NULL,
    financialid  INTEGER NOT NULL,
    departmentid INTEGER,
    CalenderName TEXT,
    PRIMARY KEY (companyid, CalenderID)
);

CREATE TABLE pCalenderDetail (
    companyid          INTEGER NOT NULL,
    CalenderID         INTEGER NOT NULL,
    HolidayDate        TEXT    NOT NULL,
    HolidayDescription TEXT,
    PRIMARY KEY (companyid, CalenderID, HolidayDate)
);

-- Work-time settings: a header per setting (cwtsdepartmentid only here, for the same
-- reason as departmentid above) and one line per weekday, Sunday 1 to Saturday 7,
-- with up to four scheduled check-in/check-out pairs.
CREATE TABLE pCalendarWTSheader (
    cwtsCompanyID    INTEGER NOT NULL,
    cwtsid           INTEGER NOT NULL,
    cwtsdepartmentid INTEGER,
    cwtsDescription  TEXT,
    PRIMARY KEY (cwtsCompanyID, cwtsid)
);

CREATE TABLE pCalendarWorkTimeSettings (
    cwtsCompanyID INTEGER NOT NULL,
    cwtsid        INTEGER NOT NULL,
    cwtsDayID     INTEGER NOT NULL,
    cwtsCheckIn1  TEXT,
    cwtsCheckOut1 TEXT,
    cwtsCheckIn2  TEXT,
    cwtsCheckOut2 TEXT,
    cwtsCheckIn3  TEXT,
    cwtsCheckOut3 TEXT,
    cwtsCheckIn4  TEXT,
    cwtsCheckOut4 TEXT,
    PRIMARY KEY (cwtsCompanyID, cwtsid, cwtsDayID)
);

-- Leave master (named literally by the approved-leave query).
CREATE TABLE pleaves (
    lCompanyID INTEGER NOT NULL,
    lLeaveID   INTEGER NOT NULL,
    lLeaveName TEXT    NOT NULL,
    PRIMARY KEY (lCompanyID, lLeaveID)
);

-- Leave entitlements per employee and year (resolved through the link table, not
-- read by any statement of the module).
CREATE TABLE PEmployeeLeaves (
    pelCompanyID    INTEGER NOT NULL,
    pelEmpID        INTEGER NOT NULL,
    pelLeaveID      INTEGER NOT NULL,
    pelYear         INTEGER NOT NULL,
    pelEntitledDays REAL    NOT NULL DEFAULT 0,
    PRIMARY KEY (pelCompanyID, pelEmpID, pelLeaveID, pelYear)
);

-- Leave applications: a header per application, a line per leave kind.
CREATE TABLE pleaveregisterheader (
    lrhCompanyID INTEGER NOT NULL,
    lrhID        INTEGER NOT NULL,
    lrhempid     INTEGER NOT NULL,
    lrhDate      TEXT,
    lrhcancelled INTEGER NOT NULL DEFAULT 0,
    PRIMARY KEY (lrhCompanyID, lrhID)
);

CREATE TABLE pleaveregisterDetail (
    lrdCompanyID INTEGER NOT NULL,
    lrdID        INTEGER NOT NULL,
    lrdLeaveID   INTEGER NOT NULL,
    lrdFromDate  TEXT    NOT NULL,
    lrdToDate    TEXT    NOT NULL,
    lrdNoofDays  REAL    NOT NULL,
    PRIMARY KEY (lrdCompanyID, lrdID, lrdLeaveID)
);

-- Sanctioning of leave applications: status 's' on a line of a header that is not
-- itself cancelled makes the application's line an approved leave.
CREATE TABLE pLeaveCancellationHeader (
    lchcompanyid INTEGER NOT NULL,
    lchid        INTEGER NOT NULL,
    lchDate      TEXT,
    lchcancelled INTEGER NOT NULL DEFAULT 0,
    PRIMARY KEY (lchcompanyid, lchid)
);

CREATE TABLE pleavecancellationdetail (
    lcdcompanyid  INTEGER NOT NULL,
    lcdid         INTEGER NOT NULL,
    lcdlrdid      INTEGER NOT NULL,
    lcdlrdleaveid INTEGER NOT NULL,
    status        TEXT,
    PRIMARY KEY (lcdcompanyid, lcdid, lcdlrdid, lcdlrdleaveid)
);

-- Monthly (payroll) entries: a non-cancelled one that starts or ends inside an
-- attendance period locks that attendance entry.
CREATE TABLE pEmpMonthlyEntryHeader (
    emhCompanyID INTEGER NOT NULL,
    emhID        INTEGER NOT NULL,
    emhEmpID     INTEGER NOT NULL,
    emhStartDate TEXT    NOT NULL,
    emhEndDate   TEXT    NOT NULL,
    emhCancelled INTEGER NOT NULL DEFAULT 0,
    PRIMARY KEY (emhCompanyID, emhID)
);

CREATE INDEX ix_pEmpMonthlyEntryHeader_emp ON pEmpMonthlyEntryHeader (emhCompanyID, emhEmpID);

-- Payroll runs per employee (named literally by the employee picker, which reads
-- max(mppPayrollDate) by employee).
CREATE TABLE pMonthlyPayrollProcessing (
    mppID          INTEGER NOT NULL PRIMARY KEY,
    mppCompanyID   INTEGER NOT NULL,
    mppEmpID       INTEGER NOT NULL,
    mppPayrollDate TEXT    NOT NULL
);

CREATE INDEX ix_pMonthlyPayrollProcessing_emp ON pMonthlyPayrollProcessing (mppEmpID);

-- Table catalogue: column headings of the register's list.
CREATE TABLE ptables (
    tableid   INTEGER NOT NULL PRIMARY KEY,
    tablename TEXT    NOT NULL
);

CREATE TABLE ptablecolumns (
    tableid      INTEGER NOT NULL,
    columnid     INTEGER NOT NULL,
    columnname   TEXT    NOT NULL,
    columnheader TEXT    NOT NULL,
    PRIMARY KEY (tableid, columnid)
);

-- Start date of each pay month, per company.
CREATE TABLE pPayMonthStartDate (
    companyid INTEGER NOT NULL,
    paymonth  INTEGER NOT NULL,
    startdate TEXT    NOT NULL,
    PRIMARY KEY (companyid, paymonth)
);

CREATE VIEW vwPaymonthvsdate AS
SELECT companyid, paymonth, startdate
FROM pPayMonthStartDate;

-- Attendance header: one row per entry (a period of one employee).
CREATE TABLE pEmployeeAttendence (
    eaCompanyID        INTEGER NOT NULL,
    eaID               INTEGER NOT NULL,
    eaNo               TEXT,
    eaDate             TEXT,
    eaEmpID            INTEGER NOT NULL,
    eaPresent          REAL    NOT NULL DEFAULT 0,
    eaLeaves           REAL    NOT NULL DEFAULT 0,
    eaAbsent           REAL    NOT NULL DEFAULT 0,
    eaCancelled        INTEGER NOT NULL DEFAULT 0,
    eaStartDate        TEXT,
    eaEndDate          TEXT,
    eacwtsid           INTEGER,
    eaRemarks          TEXT,
    eaPerHourRate      REAL,
    eaCancelledRemarks TEXT,
    PRIMARY KEY (eaCompanyID, eaID)
);

CREATE INDEX ix_pEmployeeAttendence_emp ON pEmployeeAttendence (eaCompanyID, eaEmpID);

-- Attendance detail: one line per check-in/check-out pair; absent, leave and holiday
-- days without times get one line with NULL times.
CREATE TABLE pEmpAttendanceDetail (
    eadCompanyID    INTEGER NOT NULL,
    eadAttendanceID INTEGER NOT NULL,
    eadDetailID     INTEGER NOT NULL,
    eadDate         TEXT    NOT NULL,
    eadType         TEXT,
    eadCheckIN      TEXT,
    eadCheckOut     TEXT,
    PRIMARY KEY (eadCompanyID, eadAttendanceID, eadDetailID)
);

CREATE INDEX ix_pEmpAttendanceDetail_date ON pEmpAttendanceDetail (eadDate);

-- Overtime allowance / late-coming deduction lines of an entry; exactly one of the
-- two head identifiers is set on a line.
CREATE TABLE pEmpAttendanceAllowanceDeductions (
    eaadCompanyID    INTEGER NOT NULL,
    eaadAttendanceID INTEGER NOT NULL,
    eaadDetailID     INTEGER NOT NULL,
    eaadDate         TEXT    NOT NULL,
    eaadHours        REAL    NOT NULL DEFAULT 0,
    eaadAllowanceID  INTEGER,
    eaadDeductionID  INTEGER,
    PRIMARY KEY (eaadCompanyID, eaadAttendanceID, eaadDetailID)
);

-- The module's own history of entries: one row per version (created, edited, imported,
-- cancelled), written in the transaction of the change it describes. ehChanges is the
-- compact change text, ehBefore and ehAfter the entry as stored before and after (JSON);
-- see the README. A database without this table keeps working, without history.
CREATE TABLE pEmpAttendanceHistory (
    ehID           INTEGER NOT NULL PRIMARY KEY,
    ehCompanyID    INTEGER NOT NULL,
    ehAttendanceNo TEXT    NOT NULL,
    ehOldID        INTEGER,
    ehNewID        INTEGER,
    ehAction       TEXT    NOT NULL,
    ehUserID       INTEGER NOT NULL,
    ehUserName     TEXT,
    ehWhen         TEXT    NOT NULL,
    ehChanges      TEXT    NOT NULL,
    ehBefore       TEXT,
    ehAfter        TEXT
);

CREATE INDEX ix_pEmpAttendanceHistory_no ON pEmpAttendanceHistory (ehCompanyID, ehAttendanceNo);

-- Working hours of a weekday, as the work-time lookup returns them: for each company
-- and day number, the line of the company's highest setting identifier for that day,
-- summing check-out minus check-in over the pairs that have both ends. The sum is
-- shown as a time of day 'HH:MM:SS' (a negative sum as its absolute value, 24 hours
-- or more wrapping round). A day without any line has no row.
CREATE VIEW spreturnWorkingHrs AS
SELECT w.cwtsCompanyID AS companyid,
       w.cwtsDayID     AS dayid,
       time(abs(
             CASE WHEN w.cwtsCheckIn1 IS NOT NULL AND w.cwtsCheckOut1 IS NOT NULL
                  THEN strftime('%s', w.cwtsCheckOut1) - strftime('%s', w.cwtsCheckIn1) ELSE 0 END
           + CASE WHEN w.cwtsCheckIn2 IS NOT NULL AND w.cwtsCheckOut2 IS NOT NULL
                  THEN strftime('%s', w.cwtsCheckOut2) - strftime('%s', w.cwtsCheckIn2) ELSE 0 END
           + CASE WHEN w.cwtsCheckIn3 IS NOT NULL AND w.cwtsCheckOut3 IS NOT NULL
                  THEN strftime('%s', w.cwtsCheckOut3) - strftime('%s', w.cwtsCheckIn3) ELSE 0 END
           + CASE WHEN w.cwtsCheckIn4 IS NOT NULL AND w.cwtsCheckOut4 IS NOT NULL
                  THEN strftime('%s', w.cwtsCheckOut4) - strftime('%s', w.cwtsCheckIn4) ELSE 0 END
       ), 'unixepoch') AS WorkingHrs
FROM pCalendarWorkTimeSettings w
WHERE w.cwtsid = (SELECT max(m.cwtsid)
                  FROM pCalendarWorkTimeSettings m
                  WHERE m.cwtsCompanyID = w.cwtsCompanyID
                    AND m.cwtsDayID = w.cwtsDayID);
