-- Attendance module database, SQL Server edition.
--
-- The tables, view and stored procedure that the attendance module reads and writes,
-- for a fresh installation or to compare with an existing suite database. The module
-- only owns pEmployeeAttendence, pEmpAttendanceDetail,
-- pEmpAttendanceAllowanceDeductions and its history pEmpAttendanceHistory; the other objects belong to other modules of the
-- suite and are listed with the columns the attendance module relies on.
--
-- Dates are datetime; times of day are datetime values of which only the time part
-- matters; flags are bit; amounts float. Run with sqlcmd or any tool that understands
-- the GO batch separator.

SET ANSI_NULLS ON
GO
SET QUOTED_IDENTIFIER ON
GO

CREATE TABLE dbo.pCompany (
    CompanyID   smallint    NOT NULL,
    CompanyName varchar(100) NOT NULL,
    CONSTRAINT PK_pCompany PRIMARY KEY (CompanyID)
)
GO

CREATE TABLE dbo.linktable (
    tablename     varchar(100) NOT NULL,
    linktablename varchar(100) NOT NULL,
    CONSTRAINT PK_linktable PRIMARY KEY (tablename)
)
GO

CREATE TABLE dbo.pusers (
    userid    smallint    NOT NULL,
    username  varchar(50) NOT NULL,
    companyid smallint    NOT NULL,
    CONSTRAINT PK_pusers PRIMARY KEY (userid)
)
GO

CREATE TABLE dbo.ausers (
    userid    smallint    NOT NULL,
    username  varchar(50) NOT NULL,
    companyid smallint    NOT NULL,
    CONSTRAINT PK_ausers PRIMARY KEY (userid)
)
GO

CREATE TABLE dbo.puserrights (
    userid         smallint    NOT NULL,
    interfaceid    int         NOT NULL,
    functionrights varchar(20) NULL,
    CONSTRAINT PK_puserrights PRIMARY KEY (userid, interfaceid)
)
GO

CREATE TABLE dbo.pPrefix (
    companyid   smallint    NOT NULL,
    InterfaceID int         NOT NULL,
    Prefix      varchar(10) NULL,
    CONSTRAINT PK_pPrefix PRIMARY KEY (companyid, InterfaceID)
)
GO

CREATE TABLE dbo.pSettings (
    companyid                     smallint NOT NULL,
    gracetime                     smallint NOT NULL DEFAULT 0,
    ConsiderLeaveHolidays         bit      NOT NULL DEFAULT 0,
    PerHourRateFromEmployeeMaster bit      NOT NULL DEFAULT 0,
    calendardepwise               bit      NOT NULL DEFAULT 0,
    cwtsdepwise                   bit      NOT NULL DEFAULT 0,
    noofPreviousdays              smallint NOT NULL DEFAULT 0,
    CONSTRAINT PK_pSettings PRIMARY KEY (companyid)
)
GO

-- Department identifiers are unique across companies (the employee picker joins on
-- the identifier alone).
CREATE TABLE dbo.pDepartment (
    DepartmentID   int          NOT NULL,
    CompanyID      smallint     NOT NULL,
    DepartmentName varchar(100) NOT NULL,
    CONSTRAINT PK_pDepartment PRIMARY KEY (DepartmentID)
)
GO

CREATE TABLE dbo.pCurrencyMaster (
    CurrencyID   int         NOT NULL,
    CurrencyCode varchar(10) NOT NULL,
    CurrencyName varchar(50) NOT NULL,
    CONSTRAINT PK_pCurrencyMaster PRIMARY KEY (CurrencyID)
)
GO

CREATE TABLE dbo.pCurrencyallowdeddetails (
    companyID           smallint NOT NULL,
    CurrencyID          int      NOT NULL,
    Overtimeallowanceid int      NULL,
    latecomingdedid     int      NULL,
    CONSTRAINT PK_pCurrencyallowdeddetails PRIMARY KEY (companyID, CurrencyID)
)
GO

-- Employee identifiers are unique across companies (several statements select an
-- employee by eEmpID alone). eDeptID may be NULL.
CREATE TABLE dbo.pEmployee (
    eEmpID      int          NOT NULL,
    eCompanyID  smallint     NOT NULL,
    eEmpNo      varchar(20)  NOT NULL,
    eName       varchar(100) NOT NULL,
    eActive     bit          NOT NULL DEFAULT 1,
    eDeptID     int          NULL,
    eDateofjoin datetime     NULL,
    ecurrencyid int          NULL,
    PerHourRate float        NOT NULL DEFAULT 0,
    CONSTRAINT PK_pEmployee PRIMARY KEY (eEmpID)
)
GO

CREATE INDEX ix_pEmployee_company ON dbo.pEmployee (eCompanyID, eActive)
GO

-- departmentid lives in the header only: the holiday query joins header and detail
-- and names departmentid without an alias.
CREATE TABLE dbo.pCalenderHeader (
    companyid    smallint     NOT NULL,
    CalenderID   int          NOT NULL,
    financialid  int          NOT NULL,
    departmentid int          NULL,
    CalenderName varchar(100) NULL,
    CONSTRAINT PK_pCalenderHeader PRIMARY KEY (companyid, CalenderID)
)
GO

CREATE TABLE dbo.pCalenderDetail (
    companyid          smallint     NOT NULL,
    CalenderID         int          NOT NULL,
    HolidayDate        datetime     NOT NULL,
    HolidayDescription varchar(100) NULL,
    CONSTRAINT PK_pCalenderDetail PRIMARY KEY (companyid, CalenderID, HolidayDate)
)
GO

-- cwtsdepartmentid lives in the header only, for the same reason.
CREATE TABLE dbo.pCalendarWTSheader (
    cwtsCompanyID    smallint     NOT NULL,
    cwtsid           int          NOT NULL,
    cwtsdepartmentid int          NULL,
    cwtsDescription  varchar(100) NULL,
    CONSTRAINT PK_pCalendarWTSheader PRIMARY KEY (cwtsCompanyID, cwtsid)
)
GO

-- One line per weekday, Sunday 1 to Saturday 7, up to four scheduled pairs.
CREATE TABLE dbo.pCalendarWorkTimeSettings (
    cwtsCompanyID smallint NOT NULL,
    cwtsid        int      NOT NULL,
    cwtsDayID     smallint NOT NULL,
    cwtsCheckIn1  datetime NULL,
    cwtsCheckOut1 datetime NULL,
    cwtsCheckIn2  datetime NULL,
    cwtsCheckOut2 datetime NULL,
    cwtsCheckIn3  datetime NULL,
    cwtsCheckOut3 datetime NULL,
    cwtsCheckIn4  datetime NULL,
    cwtsCheckOut4 datetime NULL,
    CONSTRAINT PK_pCalendarWorkTimeSettings PRIMARY KEY (cwtsCompanyID, cwtsid, cwtsDayID)
)
GO

CREATE TABLE dbo.pleaves (
    lCompanyID smallint    NOT NULL,
    lLeaveID   int         NOT NULL,
    lLeaveName varchar(50) NOT NULL,
    CONSTRAINT PK_pleaves PRIMARY KEY (lCompanyID, lLeaveID)
)
GO

CREATE TABLE dbo.PEmployeeLeaves (
    pelCompanyID    smallint NOT NULL,
    pelEmpID        int      NOT NULL,
    pelLeaveID      int      NOT NULL,
    pelYear         int      NOT NULL,
    pelEntitledDays float    NOT NULL DEFAULT 0,
    CONSTRAINT PK_PEmployeeLeaves PRIMARY KEY (pelCompanyID, pelEmpID, pelLeaveID, pelYear)
)
GO

CREATE TABLE dbo.pleaveregisterheader (
    lrhCompanyID smallint NOT NULL,
    lrhID        int      NOT NULL,
    lrhempid     int      NOT NULL,
    lrhDate      datetime NULL,
    lrhcancelled bit      NOT NULL DEFAULT 0,
    CONSTRAINT PK_pleaveregisterheader PRIMARY KEY (lrhCompanyID, lrhID)
)
GO

CREATE TABLE dbo.pleaveregisterDetail (
    lrdCompanyID smallint NOT NULL,
    lrdID        int      NOT NULL,
    lrdLeaveID   int      NOT NULL,
    lrdFromDate  datetime NOT NULL,
    lrdToDate    datetime NOT NULL,
    lrdNoofDays  float    NOT NULL,
    CONSTRAINT PK_pleaveregisterDetail PRIMARY KEY (lrdCompanyID, lrdID, lrdLeaveID)
)
GO

CREATE TABLE dbo.pLeaveCancellationHeader (
    lchcompanyid smallint NOT NULL,
    lchid        int      NOT NULL,
    lchDate      datetime NULL,
    lchcancelled bit      NOT NULL DEFAULT 0,
    CONSTRAINT PK_pLeaveCancellationHeader PRIMARY KEY (lchcompanyid, lchid)
)
GO

CREATE TABLE dbo.pleavecancellationdetail (
    lcdcompanyid  smallint NOT NULL,
    lcdid         int      NOT NULL,
    lcdlrdid      int      NOT NULL,
    lcdlrdleaveid int      NOT NULL,
    status        char(1)  NULL,
    CONSTRAINT PK_pleavecancellationdetail PRIMARY KEY (lcdcompanyid, lcdid, lcdlrdid, lcdlrdleaveid)
)
GO

CREATE TABLE dbo.pEmpMonthlyEntryHeader (
    emhCompanyID smallint NOT NULL,
    emhID        int      NOT NULL,
    emhEmpID     int      NOT NULL,
    emhStartDate datetime NOT NULL,
    emhEndDate   datetime NOT NULL,
    emhCancelled bit      NOT NULL DEFAULT 0,
    CONSTRAINT PK_pEmpMonthlyEntryHeader PRIMARY KEY (emhCompanyID, emhID)
)
GO

CREATE INDEX ix_pEmpMonthlyEntryHeader_emp ON dbo.pEmpMonthlyEntryHeader (emhCompanyID, emhEmpID)
GO

CREATE TABLE dbo.pMonthlyPayrollProcessing (
    mppID          int      NOT NULL,
    mppCompanyID   smallint NOT NULL,
    mppEmpID       int      NOT NULL,
    mppPayrollDate datetime NOT NULL,
    CONSTRAINT PK_pMonthlyPayrollProcessing PRIMARY KEY (mppID)
)
GO

CREATE INDEX ix_pMonthlyPayrollProcessing_emp ON dbo.pMonthlyPayrollProcessing (mppEmpID)
GO

CREATE TABLE dbo.ptables (
    tableid   int          NOT NULL,
    tablename varchar(100) NOT NULL,
    CONSTRAINT PK_ptables PRIMARY KEY (tableid)
)
GO

CREATE TABLE dbo.ptablecolumns (
    tableid      int          NOT NULL,
    columnid     int          NOT NULL,
    columnname   varchar(100) NOT NULL,
    columnheader varchar(100) NOT NULL,
    CONSTRAINT PK_ptablecolumns PRIMARY KEY (tableid, columnid)
)
GO

CREATE TABLE dbo.pPayMonthStartDate (
    companyid smallint NOT NULL,
    paymonth  smallint NOT NULL,
    startdate datetime NOT NULL,
    CONSTRAINT PK_pPayMonthStartDate PRIMARY KEY (companyid, paymonth)
)
GO

CREATE VIEW dbo.vwPaymonthvsdate
AS
SELECT companyid, paymonth, startdate
FROM dbo.pPayMonthStartDate
GO

CREATE TABLE dbo.pEmployeeAttendence (
    eaCompanyID        smallint     NOT NULL,
    eaID               int          NOT NULL,
    eaNo               varchar(20)  NULL,
    eaDate             datetime     NULL,
    eaEmpID            int          NOT NULL,
    eaPresent          float        NOT NULL DEFAULT 0,
    eaLeaves           float        NOT NULL DEFAULT 0,
    eaAbsent           float        NOT NULL DEFAULT 0,
    eaCancelled        bit          NOT NULL DEFAULT 0,
    eaStartDate        datetime     NULL,
    eaEndDate          datetime     NULL,
    eacwtsid           int          NULL,
    eaRemarks          varchar(500) NULL,
    eaPerHourRate      float        NULL,
    eaCancelledRemarks varchar(500) NULL,
    CONSTRAINT PK_pEmployeeAttendence PRIMARY KEY (eaCompanyID, eaID)
)
GO

CREATE INDEX ix_pEmployeeAttendence_emp ON dbo.pEmployeeAttendence (eaCompanyID, eaEmpID)
GO

CREATE TABLE dbo.pEmpAttendanceDetail (
    eadCompanyID    smallint   NOT NULL,
    eadAttendanceID int        NOT NULL,
    eadDetailID     smallint   NOT NULL,
    eadDate         datetime   NOT NULL,
    eadType         varchar(2) NULL,
    eadCheckIN      datetime   NULL,
    eadCheckOut     datetime   NULL,
    CONSTRAINT PK_pEmpAttendanceDetail PRIMARY KEY (eadCompanyID, eadAttendanceID, eadDetailID)
)
GO

CREATE INDEX ix_pEmpAttendanceDetail_date ON dbo.pEmpAttendanceDetail (eadDate)
GO

CREATE TABLE dbo.pEmpAttendanceAllowanceDeductions (
    eaadCompanyID    smallint NOT NULL,
    eaadAttendanceID int      NOT NULL,
    eaadDetailID     int      NOT NULL,
    eaadDate         datetime NOT NULL,
    eaadHours        float    NOT NULL DEFAULT 0,
    eaadAllowanceID  int      NULL,
    eaadDeductionID  int      NULL,
    CONSTRAINT PK_pEmpAttendanceAllowanceDeductions PRIMARY KEY (eaadCompanyID, eaadAttendanceID, eaadDetailID)
)
GO

-- The module's own history of entries: one row per version (created, edited, imported,
-- cancelled), written in the transaction of the change it describes. ehChanges is the
-- compact change text, ehBefore and ehAfter the entry as stored before and after (JSON);
-- see the README. A database without this table keeps working, without history.
CREATE TABLE dbo.pEmpAttendanceHistory (
    ehID           int           IDENTITY(1,1) NOT NULL,
    ehCompanyID    smallint      NOT NULL,
    ehAttendanceNo varchar(20)   NOT NULL,
    ehOldID        int           NULL,
    ehNewID        int           NULL,
    ehAction       varchar(10)   NOT NULL,
    ehUserID       smallint      NOT NULL,
    ehUserName     varchar(100)  NULL,
    ehWhen         datetime      NOT NULL,
    ehChanges      nvarchar(max) NOT NULL,
    ehBefore       nvarchar(max) NULL,
    ehAfter        nvarchar(max) NULL,
    CONSTRAINT PK_pEmpAttendanceHistory PRIMARY KEY (ehID)
)
GO

CREATE INDEX ix_pEmpAttendanceHistory_no ON dbo.pEmpAttendanceHistory (ehCompanyID, ehAttendanceNo)
GO

-- Working hours of one weekday: the line of the company's highest work-time setting
-- for that day, summing check-out minus check-in over the pairs that have both ends.
-- Returns one row whose first column is the total as a time of day (day 0 plus the
-- hours); a day without a line gives 00:00. @dummy is accepted for the callers, who
-- always pass an empty string.
CREATE PROCEDURE dbo.spreturnWorkingHrs
    @companyid smallint,
    @dummy     varchar(50),
    @dayid     int
AS
BEGIN
    SET NOCOUNT ON

    DECLARE @seconds int
    SET @seconds = 0

    SELECT TOP 1 @seconds =
          CASE WHEN w.cwtsCheckIn1 IS NOT NULL AND w.cwtsCheckOut1 IS NOT NULL
               THEN DATEDIFF(second, CONVERT(time, w.cwtsCheckIn1), CONVERT(time, w.cwtsCheckOut1)) ELSE 0 END
        + CASE WHEN w.cwtsCheckIn2 IS NOT NULL AND w.cwtsCheckOut2 IS NOT NULL
               THEN DATEDIFF(second, CONVERT(time, w.cwtsCheckIn2), CONVERT(time, w.cwtsCheckOut2)) ELSE 0 END
        + CASE WHEN w.cwtsCheckIn3 IS NOT NULL AND w.cwtsCheckOut3 IS NOT NULL
               THEN DATEDIFF(second, CONVERT(time, w.cwtsCheckIn3), CONVERT(time, w.cwtsCheckOut3)) ELSE 0 END
        + CASE WHEN w.cwtsCheckIn4 IS NOT NULL AND w.cwtsCheckOut4 IS NOT NULL
               THEN DATEDIFF(second, CONVERT(time, w.cwtsCheckIn4), CONVERT(time, w.cwtsCheckOut4)) ELSE 0 END
    FROM dbo.pCalendarWorkTimeSettings w
    WHERE w.cwtsCompanyID = @companyid
      AND w.cwtsDayID = @dayid
    ORDER BY w.cwtsid DESC

    -- A negative total shows as its absolute time of day; 24 hours or more wrap round.
    SELECT DATEADD(second, ABS(@seconds) % 86400, CONVERT(datetime, 0)) AS WorkingHrs
END
GO
