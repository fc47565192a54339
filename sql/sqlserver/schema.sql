-- The plant's tables, views and indexes, for SQL Server. Generated from the embedded
-- store's catalog (tests/tsql/tsql_schema.cpp); procedures.sql holds the procedures.
-- Run on an empty database: sqlcmd -d VRD -i schema.sql -i procedures.sql
SET QUOTED_IDENTIFIER ON
GO

CREATE TABLE COMPANY (
  CompanyId INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
  CompanyCode VARCHAR(10),
  CompanyName VARCHAR(100),
  DeletedFlag VARCHAR(1)
)
GO

CREATE TABLE GRADE (
  GradeId INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
  GradeCode VARCHAR(20),
  CompanyId INT,
  Description VARCHAR(50),
  DeletedFlag VARCHAR(1),
  GrowingYear INT,
  GradeTypeId INT,
  PrizedGradeCode VARCHAR(20),
  PrizedCompanyCode VARCHAR(10)
)
GO

CREATE TABLE GRADETYPE (
  GradeTypeId INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
  TypeCode VARCHAR(5),
  GradeType VARCHAR(50),
  SortSequence INT
)
GO

CREATE TABLE GREENGRADE (
  GREENGRADEID INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
  GradeCode VARCHAR(10),
  DeletedFlag VARCHAR(1),
  CompanyId INT,
  ReportingProductionGradeId INT,
  ScrapGrade VARCHAR(1)
)
GO

CREATE TABLE PRODUCTIONGRADE (
  PRODUCTIONGRADEID INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
  ProductionGradeCode VARCHAR(10),
  GradeId INT,
  DeletedFlag VARCHAR(1),
  Active VARCHAR(1),
  EnforcePercent VARCHAR(1),
  FineCut VARCHAR(1),
  ReportingCompanyId INT,
  ChinaReporting VARCHAR(1)
)
GO

CREATE TABLE PRODUCTIONGRADESPEC (
  PRODUCTIONGRADESPECID INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
  ProductionGradeId INT,
  MinOverHalf FLOAT,
  MinOverQuarter FLOAT,
  MaxThruQuarter FLOAT,
  MaxObjStem FLOAT,
  MaxTotalStem FLOAT,
  MaxLaminaOnStem FLOAT,
  MaxSandStrip FLOAT,
  StripMoisture FLOAT,
  StemMoisture FLOAT,
  PkgTempMin FLOAT,
  PkgTempMax FLOAT,
  StripCaseWeight FLOAT,
  CaseSize FLOAT,
  CaseStraps INT
)
GO

CREATE TABLE PICKINGTYPE (
  PICKINGTYPEID INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
  Description VARCHAR(50),
  SortSequence INT,
  DeletedFlag VARCHAR(1)
)
GO

CREATE TABLE STEMCLASS (
  STEMCLASSID INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
  Description VARCHAR(20),
  DeletedFlag VARCHAR(1)
)
GO

CREATE TABLE STEMTYPE (
  STEMTYPEID INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
  ProductionGradeId INT,
  Code VARCHAR(20),
  Description VARCHAR(50),
  DeletedFlag VARCHAR(1),
  StemClassId INT,
  GradeId INT
)
GO

CREATE TABLE BYPRODUCTSTYPE (
  BYPRODUCTSTYPEID INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
  CompanyId INT,
  Code VARCHAR(10),
  Description VARCHAR(50),
  SortSequence INT,
  DeletedFlag VARCHAR(1),
  Active VARCHAR(1),
  ShowCaseNumber VARCHAR(1),
  ShowSampleTime VARCHAR(1),
  ByProductsMappingID INT,
  GradeId INT
)
GO

CREATE TABLE BYPRODUCTSMAPPING (
  BYPRODUCTSMAPPINGID INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
  Code VARCHAR(10)
)
GO

CREATE TABLE STATION (
  STATIONID INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
  StationCode VARCHAR(20),
  Description VARCHAR(100),
  DeletedFlag VARCHAR(1),
  ScannerPort VARCHAR(5),
  ScannerBaud INT,
  ScannerParity VARCHAR(1),
  ScannerData VARCHAR(1),
  ScannerStop VARCHAR(1),
  ScalePort VARCHAR(5),
  ScaleBaud INT,
  ScaleParity VARCHAR(1),
  ScaleData VARCHAR(1),
  ScaleStop VARCHAR(1),
  TareTolerance INT,
  RealTimeLabels VARCHAR(1),
  NotifyInterval INT,
  DateTimeLabels VARCHAR(1),
  PrintDelay INT,
  StationType VARCHAR(2),
  AccessAllRuns VARCHAR(1),
  VerifyBigBales VARCHAR(1),
  ModelCode VARCHAR(1),
  cbGreenUnitTypeId INT,
  DefaultRecvLine INT,
  DefaultRecvMode VARCHAR(25)
)
GO

CREATE TABLE PRODUCTIONSETTINGS (
  PRODUCTIONSETTINGSID INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
  GrossBaleWeight FLOAT,
  TareValue FLOAT,
  TareUnitCount INT,
  PreferredUom INT,
  SeasonStartDate DATETIME,
  Shift1Line VARCHAR(10),
  Shift1CC VARCHAR(30),
  Shift1Redrier VARCHAR(30),
  Shift2Line VARCHAR(10),
  Shift2CC VARCHAR(30),
  Shift2Redrier VARCHAR(30),
  Shift3Line VARCHAR(10),
  Shift3CC VARCHAR(30),
  Shift3Redrier VARCHAR(30),
  ExtranetDir VARCHAR(50),
  LabelFormatDir VARCHAR(50),
  ExcelExtractDir VARCHAR(50),
  BTDSN VARCHAR(50),
  DateTimeLabelFormat VARCHAR(256),
  ImperialLabelDir VARCHAR(256),
  PrintRemTicket VARCHAR(1),
  BarcodePrefix VARCHAR(6),
  ReweighTolerance INT,
  LbsPerLoad INT
)
GO

CREATE TABLE CALIBRATION (
  CALIBRATIONID INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
  CalibrationTS DATETIME,
  OperatorId INT,
  StationId INT,
  ShiftNumber INT,
  ProductionRunId INT,
  OnScale FLOAT,
  ScaleReading FLOAT
)
GO

CREATE TABLE PRODUCTIONRUN (
  PRODUCTIONRUNID INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
  ProductionDate DATETIME,
  ShiftNumber INT,
  Status VARCHAR(2),
  ProductionGradeId INT,
  ProductionLine VARCHAR(10),
  CCOperator VARCHAR(30),
  RedrierOperator VARCHAR(30),
  MachineMinutes INT,
  Picked VARCHAR(1),
  Comments VARCHAR(255),
  RemainderIn FLOAT,
  RemainderOut FLOAT,
  WeightUomId INT,
  GrossBaleWeight FLOAT,
  TareValue FLOAT,
  TareUnitCount INT,
  FedIn FLOAT,
  ScanningComplete VARCHAR(1),
  PrizingStatus VARCHAR(2),
  RunSequence INT,
  AbsoluteSequence INT,
  UsesSilos VARCHAR(1)
)
GO

CREATE TABLE PRODUCTIONRUNGRADE (
  PRODUCTIONRUNGRADEID INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
  ProductionGreenGradeId INT,
  ProductionRunId INT,
  WeightUsed FLOAT,
  GrossBaleWeight FLOAT,
  TareValue FLOAT,
  TareUnitCount INT
)
GO

CREATE TABLE PRODUCTIONGREENGRADE (
  PRODUCTIONGREENGRADEID INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
  ProductionGradeId INT,
  GreenGradeId INT,
  TargetPercentage FLOAT,
  SortSequence INT,
  DeletedFlag VARCHAR(1)
)
GO

CREATE TABLE PICKINGS (
  PICKINGSID INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
  ProductionRunId INT,
  Weight FLOAT,
  PickingTypeId INT
)
GO

CREATE TABLE BYPRODUCTS (
  BYPRODUCTSID INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
  ByProductsTypeId INT,
  ProductionRunId INT,
  ContainerStart INT,
  ContainerEnd INT,
  TotalNetWeight FLOAT,
  SumLink INT,
  DiscardFlag VARCHAR(1)
)
GO

CREATE TABLE STEMS (
  STEMSID INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
  TotalNetWeight FLOAT,
  ContainerStart INT,
  ContainerEnd INT,
  StemTypeID INT,
  ProductionRunId INT
)
GO

CREATE TABLE PRODUCTIONRUNTARGET (
  PRODUCTIONRUNTARGETID INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
  ProductionGreenGradeId INT,
  TargetPercentage FLOAT,
  ThisRunWeight FLOAT,
  Comment VARCHAR(100),
  ThisRunPercentage FLOAT,
  ProductionRunId INT
)
GO

CREATE TABLE PRODUCTIONRUNREDRIED (
  PRODUCTIONRUNREDRIEDID INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
  ProductionGreenGradeId INT,
  ProductionRunId INT,
  WeightUsed FLOAT
)
GO

CREATE TABLE DEGRADATION (
  DEGRADATIONID INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
  TestType INT,
  ProductionRunId INT,
  TestNumber INT,
  SampleTime DATETIME,
  Weight FLOAT,
  Over1 FLOAT,
  OverHalf FLOAT,
  FourXFour FLOAT,
  EightXEight FLOAT,
  StripOnPan FLOAT,
  ThruQuarter FLOAT,
  NonObj FLOAT,
  ObjStem FLOAT,
  StemOnPan FLOAT
)
GO

CREATE TABLE OVENMOISTURE (
  OVENMOISTUREID INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
  TobaccoType INT,
  SampleTime DATETIME,
  CaseNumber INT,
  PackedTemperature FLOAT,
  Percentage FLOAT,
  ProductionRunId INT,
  StemTypeID INT
)
GO

CREATE TABLE PACKEDMOISTURE (
  PACKEDMOISTUREID INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
  SampleTime DATETIME,
  PackedPressure FLOAT,
  Temperature FLOAT,
  CoolerRight FLOAT,
  CoolerLeft FLOAT,
  ProductionRunId INT
)
GO

CREATE TABLE GREENMOISTURE (
  GREENMOISTUREID INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
  SampleTime DATETIME,
  Blending FLOAT,
  CondCylinder FLOAT,
  StripThresh FLOAT,
  StemThresh FLOAT,
  ProductionRunId INT
)
GO

CREATE TABLE BYPRODUCTSTEST (
  BYPRODUCTSTESTID INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
  ByProductsId INT,
  SampleTime DATETIME,
  CaseNumber INT,
  Value FLOAT
)
GO

CREATE TABLE SUGARNICOTINE (
  SUGARNICOTINEID INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
  SampleTime DATETIME,
  CaseNumber INT,
  PercentSugar FLOAT,
  PercentNicotine FLOAT,
  ProductionRunId INT
)
GO

CREATE TABLE SAND (
  SANDID INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
  ProductionRunId INT,
  StripCaseNumber INT,
  StripCasePercentage FLOAT,
  VSSCaseNumber INT,
  VSSCasePercentage FLOAT
)
GO

CREATE TABLE SWING (
  SWINGID INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
  ProductionGradeId INT,
  TotStemMin FLOAT,
  TotStemMax FLOAT,
  ObjectMin FLOAT,
  ObjectMax FLOAT,
  Over1Min FLOAT,
  Over1Max FLOAT,
  OverHalfMin FLOAT,
  OverHalfMax FLOAT,
  TotThruQuarterMin FLOAT,
  TotThruQuarterMax FLOAT,
  OnPanMin FLOAT,
  OnPanMax FLOAT,
  VSSCode FLOAT,
  StripLow FLOAT,
  StripHigh FLOAT,
  StemLow FLOAT,
  StemHigh FLOAT
)
GO

CREATE TABLE STRIP (
  STRIPID INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
  TotalNetWeight FLOAT,
  ContainerStart INT,
  ContainerEnd INT,
  ProductionRunId INT
)
GO

CREATE TABLE LAMINA (
  LAMINAID INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
  TestNumber INT,
  SampleTime DATETIME,
  LaminaOnStem FLOAT,
  ProductionRunId INT
)
GO

CREATE TABLE PRODUCTIONSTATS (
  PRODUCTIONSTATSID INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
  ObjectTypeId INT,
  ObjectId INT,
  ProductionGradeId INT,
  ObjectCode VARCHAR(100),
  YTD FLOAT,
  PYTD FLOAT,
  PYTD2 FLOAT,
  CurrentValue FLOAT
)
GO

CREATE TABLE DEGRADATIONPYTD (
  DEGRADATIONPYTDID INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
  ProductionGradeId INT,
  TestType INT,
  DegradationType INT,
  SeasonYear INT,
  Over1 FLOAT,
  TotalOverHalf FLOAT,
  OverHalf FLOAT,
  FourXFour FLOAT,
  EightXEight FLOAT,
  StripOnPan FLOAT,
  ThruQuarter FLOAT,
  NonObj FLOAT,
  ObjStem FLOAT,
  TotalStem FLOAT,
  StemOnPan FLOAT
)
GO

CREATE TABLE ProcessingResultsReport (
  ProcessingResultsReportId INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
  ProductionGradeId INT,
  RunCount INT,
  FedIn FLOAT
)
GO

CREATE TABLE ProcessingResultsStems (
  ProcessingResultsStemsId INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
  StemTypeId INT,
  TotalNetWeight FLOAT
)
GO

CREATE TABLE GREENRECEIPT (
  GREENRECEIPTID INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
  GreenGradeId INT,
  ReceiptDate DATETIME,
  GrossWeight FLOAT,
  GrossBaleWeight FLOAT,
  TareValue FLOAT,
  TareUnitCount INT,
  Posted VARCHAR(1),
  Status VARCHAR(2),
  ReceiptType VARCHAR(4),
  WeightUomId INT,
  ToGreenGradeId INT,
  ProductionRunId INT,
  WeightRemaining FLOAT
)
GO

CREATE TABLE GREENINVENTORY (
  GREENINVENTORYID INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
  GrossWeight FLOAT,
  GreenContainerTypeId INT,
  GreenGradeId INT,
  WeightUomId INT,
  BinLocationId INT
)
GO

CREATE TABLE GREENINHOUSE (
  GREENINHOUSEID INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
  GreenGradeId INT,
  PoundRecTod INT,
  PoundRecYTD INT,
  PoundProTod INT,
  PoundProYTD INT
)
GO

CREATE TABLE INHOUSERECGRADES (
  INHOUSERECGRADESID INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
  ProductionGradeId INT,
  GreenGradeId INT,
  ProductionGradeCode VARCHAR(10),
  GreenGradeCode VARCHAR(10),
  CompanyId INT,
  CompanyCode VARCHAR(10),
  TargetPercentage INT,
  GradeId INT,
  GradeCode VARCHAR(10)
)
GO

CREATE TABLE PHYSICALINVENTORY (
  PHYSICALINVENTORYID INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
  CageCode VARCHAR(10),
  Customer VARCHAR(3),
  GradeCode VARCHAR(15),
  Weight FLOAT,
  Status VARCHAR(2),
  Operator VARCHAR(3),
  StatusTS DATETIME,
  Memo VARCHAR(20)
)
GO

CREATE TABLE NEWSEASONLOG (
  NEWSEASONLOGID INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
  TableName VARCHAR(50),
  OldId INT,
  NewId INT
)
GO

CREATE TABLE CAGE (
  CAGEID INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
  CageCode VARCHAR(10),
  TareWeight FLOAT,
  DeletedFlag VARCHAR(1),
  OperatorId INT,
  GreenGradeId INT,
  GrossWeight FLOAT,
  NetWeight FLOAT,
  StatusId INT,
  StatusTS DATETIME,
  PrevOperatorId INT,
  PrevGreenGradeId INT,
  PrevGrossWeight FLOAT,
  PrevNetWeight FLOAT,
  PrevStatusId INT,
  PrevStatusTS DATETIME
)
GO

CREATE TABLE CAGESTATUS (
  CAGESTATUSID INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
  CageStatus VARCHAR(10),
  Description VARCHAR(100),
  Sequence INT
)
GO

CREATE TABLE CAGECONTENT (
  CAGECONTENTID INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
  CageId INT,
  GreenGradeId INT,
  NetWeight FLOAT
)
GO

CREATE TABLE CAGEMOVEMENT (
  CAGEMOVEMENTID INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
  MovementType VARCHAR(20),
  MovementTS DATETIME,
  OperatorId INT,
  StationId INT,
  ShiftNumber INT,
  ProductionRunId INT,
  Executed VARCHAR(1)
)
GO

CREATE TABLE CAGELOG (
  CAGELOGID INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
  CageId INT,
  CageMovementId INT,
  Sequence INT,
  InGreenGradeId INT,
  InWeight FLOAT,
  FromStatusId INT,
  OutGreenGradeId INT,
  OutWeight FLOAT,
  ToStatusId INT,
  CageGross FLOAT,
  CageTare FLOAT,
  CageNet FLOAT,
  CardPrinted VARCHAR(1)
)
GO

CREATE TABLE CAGEMOVECOMMENT (
  CAGEMOVECOMMENTID INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
  CageMovementID INT,
  Comment VARCHAR(128)
)
GO

CREATE TABLE OPERATOR (
  OPERATORID INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
  UserName VARCHAR(20),
  DeletedFlag VARCHAR(1)
)
GO

CREATE TABLE CAGEALERT (
  CAGEALERTID INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
  AlertId INT,
  CageId INT,
  AlertTS DATETIME
)
GO

CREATE TABLE LABHEADER (
  LABHEADERID INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
  CompanyId INT,
  ProductionGradeId INT,
  LabSettingSnapshotID INT,
  ProductionRunId INT,
  StartDate DATETIME,
  StartShift INT,
  EndDate DATETIME,
  EndShift INT,
  LabStatus VARCHAR(2),
  DeletedFlag VARCHAR(1),
  GreenDegCount INT,
  StripDegCount INT,
  ScrapDegCount INT,
  StemDegCount INT,
  PackedStripCount INT,
  PackedStemCount INT,
  PackedScrapCount INT,
  GreenMoistureCount INT,
  ExitSiloCount INT,
  ForeignCount INT
)
GO

CREATE TABLE LABSETTING (
  LABSETTINGID INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
  CompanyId INT,
  ProductionGradeId INT,
  GreenDegradation VARCHAR(1),
  GreenDegCases INT,
  GreenDegMinutes INT,
  GrnTotStemTgt MONEY,
  GrnTotStemRet MONEY,
  GrnTotStemRer MONEY,
  GrnPctObjTgt MONEY,
  GrnPctObjRet MONEY,
  GrnPctObjRer MONEY,
  GrnLabel1 VARCHAR(20),
  GrnLabel2 VARCHAR(20),
  GrnLabel3 VARCHAR(20),
  GrnLabel4 VARCHAR(20),
  GrnLabel5 VARCHAR(20),
  GrnLabel6 VARCHAR(20),
  GrnLabel7 VARCHAR(20),
  GrnLabel8 VARCHAR(20),
  GrnLabel9 VARCHAR(20),
  StrLabel1 VARCHAR(20),
  StrLabel2 VARCHAR(20),
  StrLabel3 VARCHAR(20),
  StrLabel4 VARCHAR(20),
  StrLabel5 VARCHAR(20),
  StrLabel6 VARCHAR(20),
  StrLabel7 VARCHAR(20),
  StrLabel8 VARCHAR(20),
  StrLabel9 VARCHAR(20),
  ScrLabel1 VARCHAR(20),
  ScrLabel2 VARCHAR(20),
  ScrLabel3 VARCHAR(20),
  ScrLabel4 VARCHAR(20),
  ScrLabel5 VARCHAR(20),
  ScrLabel6 VARCHAR(20),
  ScrLabel7 VARCHAR(20),
  ScrLabel8 VARCHAR(20),
  ScrLabel9 VARCHAR(20),
  StmLabel1 VARCHAR(20),
  StmLabel2 VARCHAR(20),
  StmLabel3 VARCHAR(20),
  StmLabel4 VARCHAR(20),
  StmLabel5 VARCHAR(20),
  StmLabel6 VARCHAR(20),
  StmLabel7 VARCHAR(20),
  StmLabel8 VARCHAR(20),
  StmLabel9 VARCHAR(20),
  StripDegradation VARCHAR(1),
  StripDegCases INT,
  StripDegMinutes INT,
  TotStemTarget MONEY,
  TotStemRetest MONEY,
  TotStemRerun MONEY,
  PctObjTarget MONEY,
  PctObjRetest MONEY,
  PctObjRerun MONEY,
  ScrapDegradation VARCHAR(1),
  ScrapDegCases INT,
  ScrapDegMinutes INT,
  StemDegradation VARCHAR(1),
  StemDegCases INT,
  StemDegMinutes INT,
  PackedStrip VARCHAR(1),
  PackedStripCases INT,
  PackedStripMinutes INT,
  PackedScrap VARCHAR(1),
  PackedScrapCases INT,
  PackedScrapMinutes INT,
  StemInScrap VARCHAR(1),
  PackedStem VARCHAR(1),
  PackedStemCases INT,
  PackedStemMinutes INT,
  LaminaOnStem VARCHAR(1),
  StemLength VARCHAR(1),
  StemLengthDetail VARCHAR(1),
  GreenMoisture VARCHAR(1),
  GreenMinutes INT,
  GreenStemMoisture VARCHAR(1),
  StripMoistureTarget MONEY,
  StripMoistureRetest MONEY,
  StripMoistureRerun MONEY,
  StemMoistureTarget MONEY,
  StemMoistureRetest MONEY,
  StemMoistureRerun MONEY,
  ScrapMoistureTarget MONEY,
  ScrapMoistureRetest MONEY,
  ScrapMoistureRerun MONEY,
  ExitSiloMoisture VARCHAR(1),
  ExitSiloCases INT,
  ExitSiloMinutes INT,
  ForeignMatter VARCHAR(1),
  ForeignMatterCases INT,
  ForeignMatterMinutes INT
)
GO

CREATE TABLE LABSETTINGSNAPSHOT (
  LABSETTINGSNAPSHOTID INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
  CompanyId INT,
  ProductionGradeId INT,
  GreenDegradation VARCHAR(1),
  GreenDegCases INT,
  GreenDegMinutes INT,
  GrnTotStemTgt MONEY,
  GrnTotStemRet MONEY,
  GrnTotStemRer MONEY,
  GrnPctObjTgt MONEY,
  GrnPctObjRet MONEY,
  GrnPctObjRer MONEY,
  GrnLabel1 VARCHAR(20),
  GrnLabel2 VARCHAR(20),
  GrnLabel3 VARCHAR(20),
  GrnLabel4 VARCHAR(20),
  GrnLabel5 VARCHAR(20),
  GrnLabel6 VARCHAR(20),
  GrnLabel7 VARCHAR(20),
  GrnLabel8 VARCHAR(20),
  GrnLabel9 VARCHAR(20),
  StrLabel1 VARCHAR(20),
  StrLabel2 VARCHAR(20),
  StrLabel3 VARCHAR(20),
  StrLabel4 VARCHAR(20),
  StrLabel5 VARCHAR(20),
  StrLabel6 VARCHAR(20),
  StrLabel7 VARCHAR(20),
  StrLabel8 VARCHAR(20),
  StrLabel9 VARCHAR(20),
  ScrLabel1 VARCHAR(20),
  ScrLabel2 VARCHAR(20),
  ScrLabel3 VARCHAR(20),
  ScrLabel4 VARCHAR(20),
  ScrLabel5 VARCHAR(20),
  ScrLabel6 VARCHAR(20),
  ScrLabel7 VARCHAR(20),
  ScrLabel8 VARCHAR(20),
  ScrLabel9 VARCHAR(20),
  StmLabel1 VARCHAR(20),
  StmLabel2 VARCHAR(20),
  StmLabel3 VARCHAR(20),
  StmLabel4 VARCHAR(20),
  StmLabel5 VARCHAR(20),
  StmLabel6 VARCHAR(20),
  StmLabel7 VARCHAR(20),
  StmLabel8 VARCHAR(20),
  StmLabel9 VARCHAR(20),
  StripDegradation VARCHAR(1),
  StripDegCases INT,
  StripDegMinutes INT,
  TotStemTarget MONEY,
  TotStemRetest MONEY,
  TotStemRerun MONEY,
  PctObjTarget MONEY,
  PctObjRetest MONEY,
  PctObjRerun MONEY,
  ScrapDegradation VARCHAR(1),
  ScrapDegCases INT,
  ScrapDegMinutes INT,
  StemDegradation VARCHAR(1),
  StemDegCases INT,
  StemDegMinutes INT,
  PackedStrip VARCHAR(1),
  PackedStripCases INT,
  PackedStripMinutes INT,
  PackedScrap VARCHAR(1),
  PackedScrapCases INT,
  PackedScrapMinutes INT,
  StemInScrap VARCHAR(1),
  PackedStem VARCHAR(1),
  PackedStemCases INT,
  PackedStemMinutes INT,
  LaminaOnStem VARCHAR(1),
  StemLength VARCHAR(1),
  StemLengthDetail VARCHAR(1),
  GreenMoisture VARCHAR(1),
  GreenMinutes INT,
  GreenStemMoisture VARCHAR(1),
  StripMoistureTarget MONEY,
  StripMoistureRetest MONEY,
  StripMoistureRerun MONEY,
  StemMoistureTarget MONEY,
  StemMoistureRetest MONEY,
  StemMoistureRerun MONEY,
  ScrapMoistureTarget MONEY,
  ScrapMoistureRetest MONEY,
  ScrapMoistureRerun MONEY,
  ExitSiloMoisture VARCHAR(1),
  ExitSiloCases INT,
  ExitSiloMinutes INT,
  ForeignMatter VARCHAR(1),
  ForeignMatterCases INT,
  ForeignMatterMinutes INT
)
GO

CREATE TABLE LABPACKED (
  LABPACKEDID INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
  LabHeaderID INT,
  ProductionGradeId INT,
  LabSeason INT,
  SampleDateTime DATETIME,
  Shift INT,
  TestType VARCHAR(3),
  StemTypeID INT,
  ByProductID INT,
  SampleType VARCHAR(3),
  SampleCount INT,
  RangeAmount VARCHAR(1),
  SampleRange INT,
  ContainerNumber INT,
  Temperature MONEY,
  Temperature2 MONEY,
  TempCount INT,
  NicotinePct MONEY,
  NicotinePct2 MONEY,
  SugarPct MONEY,
  SugarPct2 MONEY,
  InfCount INT,
  MoisturePct MONEY,
  MoisturePct2 MONEY,
  MoistureCount INT,
  OvenPct MONEY,
  OvenPct2 MONEY,
  OvenCount INT,
  NumberStems INT,
  AverageLength MONEY,
  AverageLength2 MONEY,
  StemLengthCount INT,
  LaminaInStemPct MONEY,
  LaminaInStemPct2 MONEY,
  LaminaInStemCount INT,
  StemInScrapPct MONEY,
  StemInScrapPct2 MONEY,
  StemInScrapCount INT,
  ResultCode VARCHAR(2),
  WtUnder05 MONEY,
  Wt05to10 MONEY,
  Wt10to15 MONEY,
  Wt15to20 MONEY,
  Wt20to25 MONEY,
  Wt25to30 MONEY,
  Wt30to35 MONEY,
  Wt35to40 MONEY,
  WtOver40 MONEY,
  TotalWt MONEY,
  WtUnder05Pct MONEY,
  Wt05to10Pct MONEY,
  Wt10to15Pct MONEY,
  Wt15to20Pct MONEY,
  Wt20to25Pct MONEY,
  Wt25to30Pct MONEY,
  Wt30to35Pct MONEY,
  Wt35to40Pct MONEY,
  WtOver40Pct MONEY,
  StemDetailsCount INT,
  LastUpdated DATETIME,
  UpdatedByID INT,
  StemInLam1 MONEY,
  StemInLam2 MONEY,
  StemInLam3 MONEY,
  StemInLam4 MONEY,
  StemInLam5 MONEY,
  StemInLamPct1 MONEY,
  StemInLamPct2 MONEY,
  StemInLamPct3 MONEY,
  StemInLamPct4 MONEY,
  StemInLamPct5 MONEY,
  StemInLamCount INT,
  StripAppearance VARCHAR(1),
  PackingCartons VARCHAR(1),
  Reweigh MONEY,
  PackDensityVarPct MONEY
)
GO

CREATE TABLE LABPACKEDSUM (
  LABPACKEDSUMID INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
  ParentID INT,
  ChildID INT,
  SumType INT
)
GO

CREATE TABLE LABDEGRADATION (
  LABDEGRADATIONID INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
  LabHeaderID INT,
  ProductionGradeId INT,
  LabSeason INT,
  SampleDateTime DATETIME,
  Shift INT,
  TestType VARCHAR(3),
  CaseType VARCHAR(3),
  SampleType VARCHAR(3),
  SampleCount INT,
  RangeAmount VARCHAR(1),
  SampleRange INT,
  ByProductID INT,
  StemTypeID INT,
  ContainerNumber INT,
  SampleWeight MONEY,
  SampleWeightPct MONEY,
  OverOne MONEY,
  OverOnePct MONEY,
  OverHalf MONEY,
  OverHalfPct MONEY,
  TotalOverHalf MONEY,
  TotalOverHalfPct MONEY,
  OverQuarter MONEY,
  OverQuarterPct MONEY,
  OverEighth MONEY,
  OverEighthPct MONEY,
  OnPan MONEY,
  OnPanPct MONEY,
  ThruQuarter MONEY,
  ThruQuarterPct MONEY,
  TotalWeight MONEY,
  TotalWeightPct MONEY,
  Unaccountable MONEY,
  UnaccountablePct MONEY,
  Screen8 MONEY,
  Screen8Pct MONEY,
  Screen9 MONEY,
  Screen9Pct MONEY,
  StemSampleWeight MONEY,
  Weight7And12 MONEY,
  WeightObj MONEY,
  WeightPan MONEY,
  TotalStemPct MONEY,
  ObjPct MONEY,
  PanPct MONEY,
  NonObjPct MONEY,
  StemInLamCount INT,
  ResultCode VARCHAR(2),
  LastUpdated DATETIME,
  UpdatedByID INT
)
GO

CREATE TABLE LABDEGSUM (
  LABDEGSUMID INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
  ParentID INT,
  ChildID INT,
  SumType INT
)
GO

CREATE TABLE LABGREENMOISTURE (
  LABGREENMOISTUREID INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
  LabHeaderID INT,
  ProductionGradeId INT,
  LabSeason INT,
  Shift INT,
  SampleType VARCHAR(3),
  SampleCount INT,
  RangeAmount VARCHAR(1),
  SampleRange INT,
  SampleDateTime DATETIME,
  PackedPressureCount INT,
  PackedPressure MONEY,
  PackedTemp MONEY,
  PackedTempCount INT,
  ABlendMoistPct MONEY,
  ABlendOvenPct MONEY,
  ABlendMoistCount INT,
  ABlendOvenCount INT,
  A1DrumMoistPct MONEY,
  A1DrumOvenPct MONEY,
  A1DrumMoistCount INT,
  A1DrumOvenCount INT,
  A2DrumMoistPct MONEY,
  A2DrumOvenPct MONEY,
  A2DrumMoistCount INT,
  A2DrumOvenCount INT,
  CBlendMoistPct MONEY,
  CBlendOvenPct MONEY,
  CBlendMoistCount INT,
  CBlendOvenCount INT,
  C1DrumMoistPct MONEY,
  C1DrumOvenPct MONEY,
  C1DrumMoistCount INT,
  C1DrumOvenCount INT,
  C2DrumMoistPct MONEY,
  C2DrumOvenPct MONEY,
  C2DrumMoistCount INT,
  C2DrumOvenCount INT,
  LaminaMoistPct MONEY,
  LaminaOvenPct MONEY,
  LaminaMoistcount INT,
  LaminaOvenCount INT,
  RCoolerMoistPct MONEY,
  RCoolerOvenPct MONEY,
  RCoolerMoistCount INT,
  RCoolerOvenCount INT,
  LCoolerMoistPct MONEY,
  LCoolerOvenPct MONEY,
  LCoolerMoistCount INT,
  LCoolerOvenCount INT,
  CoolerMoistDiff MONEY,
  CoolerOvenDiff MONEY,
  CoolerMoistDiffCount INT,
  CoolerOvenDiffCount INT,
  StemMoistPct MONEY,
  StemOvenPct MONEY,
  StemMoistCount INT,
  StemOvenCount INT,
  ExitSiloMoistPct MONEY,
  ExitSiloOvenPct MONEY,
  ExitSiloMoistCount INT,
  ExitSiloOvenCount INT,
  PackedPressure2 MONEY,
  PackedTemp2 MONEY,
  ABlendMoistPct2 MONEY,
  ABlendOvenPct2 MONEY,
  A2DrumMoistPct2 MONEY,
  A2DrumOvenPct2 MONEY,
  CBlendMoistPct2 MONEY,
  CBlendOvenPct2 MONEY,
  C2DrumMoistPct2 MONEY,
  C2DrumOvenPct2 MONEY,
  LaminaMoistPct2 MONEY,
  LaminaOvenPct2 MONEY,
  RCoolerMoistPct2 MONEY,
  RCoolerOvenPct2 MONEY,
  LCoolerMoistPct2 MONEY,
  LCoolerOvenPct2 MONEY,
  CoolerMoistDiff2 MONEY,
  CoolerOvenDiff2 MONEY,
  StemMoistPct2 MONEY,
  StemOvenPct2 MONEY,
  ExitSiloMoistPct2 MONEY,
  ExitSiloOvenPct2 MONEY,
  ExitSiloMoistCount2 INT,
  ExitSiloOvenCount2 INT,
  LastUpdated DATETIME,
  UpdatedByID INT,
  RCoolerMoist2Pct MONEY,
  RCoolerOven2Pct MONEY,
  RCoolerMoist2Count INT,
  RCoolerOven2Count INT,
  LCoolerMoist2Pct MONEY,
  LCoolerOven2Pct MONEY,
  LCoolerMoist2Count INT,
  LCoolerOven2Count INT,
  CoolerMoist2Diff MONEY,
  CoolerOven2Diff MONEY,
  CoolerMoist2DiffCount INT,
  CoolerOven2DiffCount INT,
  RCoolerMoist2Pct2 MONEY,
  RCoolerOven2Pct2 MONEY,
  LCoolerMoist2Pct2 MONEY,
  LCoolerOven2Pct2 MONEY,
  CoolerMoist2Diff2 MONEY,
  CoolerOven2Diff2 MONEY,
  AllCoolerMoistPct MONEY,
  AllCoolerOvenPct MONEY,
  AllCoolerMoistCount INT,
  AllCoolerOvenCount INT,
  AllCoolerMoistPct2 MONEY,
  AllCoolerOvenPct2 MONEY,
  ABlendTemp MONEY,
  A1DrumTemp MONEY,
  A2DrumTemp MONEY,
  CBlendTemp MONEY,
  C1DrumTemp MONEY,
  C2DrumTemp MONEY,
  ABlendTempCount INT,
  A1DrumTempCount INT,
  A2DrumTempCount INT,
  CBlendTempCount INT,
  C1DrumTempCount INT,
  C2DrumTempCount INT,
  ABlendTemp2 MONEY,
  A2DrumTemp2 MONEY,
  CBlendTemp2 MONEY,
  C2DrumTemp2 MONEY,
  PackedPressureCountB INT,
  PackedPressureB MONEY,
  PackedPressureB2 MONEY,
  Redryer1MoistPct MONEY,
  Redryer1OvenPct MONEY,
  Redryer1MoistPct2 MONEY,
  Redryer1OvenPct2 MONEY,
  Redryer1MoistCount INT,
  Redryer1OvenCount INT,
  Redryer1Zone1Temp MONEY,
  Redryer1Zone2Temp MONEY,
  Redryer1Zone3Temp MONEY,
  Redryer1Zone4Temp MONEY,
  Redryer1CoolerTemp MONEY,
  Redryer1EndTemp MONEY,
  Redryer1Zone1Count INT,
  Redryer1Zone2Count INT,
  Redryer1Zone3Count INT,
  Redryer1Zone4Count INT,
  Redryer1CoolerCount INT,
  Redryer1EndCount INT,
  Redryer2MoistPct MONEY,
  Redryer2OvenPct MONEY,
  Redryer2MoistPct2 MONEY,
  Redryer2OvenPct2 MONEY,
  Redryer2MoistCount INT,
  Redryer2OvenCount INT,
  Redryer2Zone1Temp MONEY,
  Redryer2Zone2Temp MONEY,
  Redryer2Zone3Temp MONEY,
  Redryer2Zone4Temp MONEY,
  Redryer2CoolerTemp MONEY,
  Redryer2EndTemp MONEY,
  Redryer2Zone1Count INT,
  Redryer2Zone2Count INT,
  Redryer2Zone3Count INT,
  Redryer2Zone4Count INT,
  Redryer2CoolerCount INT,
  Redryer2EndCount INT
)
GO

CREATE TABLE LABGREENMOISTSUM (
  LABGREENMOISTSUMID INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
  ParentID INT,
  ChildID INT,
  SumType INT
)
GO

CREATE TABLE LABSTEMLENGTH (
  LABSTEMLENGTHID INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
  LabHeaderID INT,
  ProductionGradeId INT,
  LabSeason INT,
  SampleDateTime DATETIME,
  Shift INT,
  StemTypeID INT,
  SampleType VARCHAR(3),
  SampleCount INT,
  RangeAmount VARCHAR(1),
  SampleRange INT,
  ContainerNumber INT,
  WtUnder05 MONEY,
  Wt05to10 MONEY,
  Wt10to15 MONEY,
  Wt15to20 MONEY,
  Wt20to25 MONEY,
  Wt25to30 MONEY,
  Wt30to35 MONEY,
  Wt35to40 MONEY,
  WtOver40 MONEY,
  TotalWt MONEY,
  WtUnder05Pct MONEY,
  Wt05to10Pct MONEY,
  Wt10to15Pct MONEY,
  Wt15to20Pct MONEY,
  Wt20to25Pct MONEY,
  Wt25to30Pct MONEY,
  Wt30to35Pct MONEY,
  Wt35to40Pct MONEY,
  WtOver40Pct MONEY,
  NumberOfStems INT,
  AverageLength MONEY,
  LaminaSampleTime DATETIME,
  LaminaOnStemPct MONEY,
  FibreSampleTime DATETIME,
  FibreInScrapPct MONEY,
  LastUpdated DATETIME,
  UpdatedByID INT
)
GO

CREATE TABLE LABINFRAALYZER (
  LABINFRAALYZERID INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
  LabHeaderID INT,
  ProductionGradeId INT,
  LabSeason INT,
  SampleDateTime DATETIME,
  Shift INT,
  TestType VARCHAR(3),
  ByProductID INT,
  SampleType VARCHAR(3),
  SampleCount INT,
  RangeAmount VARCHAR(1),
  SampleRange INT,
  ContainerNumber INT,
  SampleOne VARCHAR(1),
  SampleOneNicPct MONEY,
  SampleOneSugPct MONEY,
  SampleOneMoistPct MONEY,
  SampleTwo VARCHAR(1),
  SampleTwoNicPct MONEY,
  SampleTwoSugPct MONEY,
  SampleTwoMoistPct MONEY,
  Temperature INT,
  InfNicPct MONEY,
  InfSugPct MONEY,
  InfMoistPct MONEY,
  InfOtherMoistPct MONEY,
  ResultCode VARCHAR(2),
  LastUpdated DATETIME,
  UpdatedByID INT
)
GO

CREATE TABLE LABMOISTURE (
  LABMOISTUREID INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
  LabHeaderID INT,
  ProductionGradeId INT,
  LabSeason INT,
  Shift INT,
  TestType VARCHAR(3),
  StemTypeID INT,
  ByProductID INT,
  SampleType VARCHAR(3),
  SampleCount INT,
  RangeAmount VARCHAR(1),
  SampleRange INT,
  ContainerNumber INT,
  CupNumber INT,
  TimeIn DATETIME,
  TimeOut DATETIME,
  QuickMoistPct MONEY,
  OvenMoistPct MONEY,
  ResultCode VARCHAR(2),
  LastUpdated DATETIME,
  UpdatedByID INT
)
GO

CREATE TABLE LABBIAS (
  LABBIASID INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
  ProductionGradeId INT,
  ByProductsTypeId INT,
  Nic MONEY,
  Sugar MONEY,
  Moisture MONEY
)
GO

CREATE TABLE LABFOREIGN (
  LABFOREIGNID INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
  LabHeaderID INT,
  ProductionGradeId INT,
  LabSeason INT,
  SampleDateTime DATETIME,
  Shift INT,
  TestType VARCHAR(3),
  StemTypeID INT,
  ByProductID INT,
  ContainerNumber INT,
  SampleWeight INT,
  Suckers INT,
  Stalk INT,
  Straw INT,
  Grass INT,
  Strings INT,
  Lint INT,
  Feathers INT,
  Paper INT,
  Plastic INT,
  Insulation INT,
  Foam INT,
  Rubber INT,
  Rocks INT,
  Wood INT,
  Hair INT,
  InsectOrCocoons INT,
  StainedLeaves INT,
  Fur INT,
  Wool INT,
  Metal INT,
  FruitOrNuts INT,
  Seed INT,
  Extra1 INT,
  Extra2 INT,
  Other1 INT,
  Other1Desc VARCHAR(20),
  Other2 INT,
  Other2Desc VARCHAR(20),
  Other3 INT,
  Other3Desc VARCHAR(20),
  SuckersWt MONEY,
  StalkWt MONEY,
  StrawWt MONEY,
  GrassWt MONEY,
  StringsWt MONEY,
  LintWt MONEY,
  FeathersWt MONEY,
  PaperWt MONEY,
  PlasticWt MONEY,
  InsulationWt MONEY,
  FoamWt MONEY,
  RubberWt MONEY,
  RocksWt MONEY,
  WoodWt MONEY,
  HairWt MONEY,
  InsectOrCocoonsWt MONEY,
  StainedLeavesWt MONEY,
  FurWt MONEY,
  WoolWt MONEY,
  MetalWt MONEY,
  FruitOrNutsWt MONEY,
  SeedWt MONEY,
  Extra1Wt MONEY,
  Extra2Wt MONEY,
  Other1Wt MONEY,
  Other2Wt MONEY,
  Other3Wt MONEY,
  Total MONEY,
  TotalWt MONEY,
  LastUpdated DATETIME,
  UpdatedByID INT,
  cbProductionBaleNTRMId INT
)
GO

CREATE TABLE LABADVICENOTE (
  LABADVICENOTEID INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
  AdviceNoteNum INT,
  NumberOfCases INT,
  CutOff VARCHAR(1)
)
GO

CREATE TABLE CBPRODUCTIONBALENTRM (
  CBPRODUCTIONBALENTRMID INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
  InternalCode VARCHAR(10),
  NTRMStatus VARCHAR(3),
  BlendWeight MONEY,
  BarCode VARCHAR(20)
)
GO

CREATE TABLE ONHOLD (
  ONHOLDID INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
  ProductionGradeId INT,
  ContainerNumber INT,
  OnHoldType VARCHAR(3),
  UserID INT,
  HoldDate DATETIME,
  ScrapCode VARCHAR(10),
  StemCode VARCHAR(20)
)
GO

CREATE VIEW VGREENGRADELIST AS
SELECT g.GREENGRADEID AS GreenGradeId, g.GradeCode AS GradeCode, g.CompanyId AS CompanyId,
           c.CompanyCode AS CompanyCode, c.CompanyName AS CompanyName,
           g.DeletedFlag AS greengradedeleted, c.DeletedFlag AS companydeleted,
           g.ScrapGrade AS ScrapGrade
    FROM GREENGRADE g LEFT JOIN COMPANY c ON c.CompanyId = g.CompanyId
GO

CREATE VIEW VPRODUCTIONGRADELIST AS
SELECT p.GradeId AS GradeId, gr.GradeCode AS GradeCode,
           p.PRODUCTIONGRADEID AS ProductionGradeId, p.ProductionGradeCode AS ProductionGradeCode,
           gr.CompanyId AS CompanyId, c.CompanyCode AS CompanyCode, c.CompanyName AS CompanyName,
           p.DeletedFlag AS productiongradedeleted, p.ReportingCompanyId AS ReportingCompanyId
    FROM PRODUCTIONGRADE p
    LEFT JOIN GRADE gr ON gr.GradeId = p.GradeId
    LEFT JOIN COMPANY c ON c.CompanyId = gr.CompanyId
GO

CREATE VIEW VSTEMTYPELIST AS
SELECT s.STEMTYPEID AS StemTypeId, s.ProductionGradeId AS ProductionGradeId, s.Code AS Code,
           s.Description AS Description, s.DeletedFlag AS DeletedFlag,
           s.StemClassId AS StemClassId, s.GradeId AS GradeID, g.GradeCode AS GradeCode
    FROM STEMTYPE s LEFT JOIN GRADE g ON g.GradeId = s.GradeId
GO

CREATE VIEW VCOMPANYBYPRODUCTSLIST AS
SELECT b.BYPRODUCTSTYPEID AS ByProductsTypeId, b.Code AS byproductscode,
           b.Description AS Description, b.CompanyId AS CompanyId, c.CompanyCode AS CompanyCode,
           c.CompanyName AS CompanyName, c.DeletedFlag AS companydeleted,
           b.DeletedFlag AS DeletedFlag, b.SortSequence AS SortSequence, b.GradeId AS GradeId,
           g.GradeCode AS GradeCode
    FROM BYPRODUCTSTYPE b
    LEFT JOIN COMPANY c ON c.CompanyId = b.CompanyId
    LEFT JOIN GRADE g ON g.GradeId = b.GradeId
GO

CREATE VIEW VRUNPICKINGTYPES AS
SELECT DISTINCT pk.ProductionRunId AS ProductionRunId, r.ProductionDate AS ProductionDate,
           pk.PickingTypeId AS PickingTypeId
    FROM PICKINGS pk INNER JOIN PRODUCTIONRUN r ON r.PRODUCTIONRUNID = pk.ProductionRunId
    WHERE pk.PickingTypeId IS NOT NULL
GO

CREATE VIEW VPRODUCTIONRUNLIST AS
SELECT r.PRODUCTIONRUNID AS ProductionRunId, r.ProductionDate AS ProductionDate,
           r.ShiftNumber AS ShiftNumber, r.ProductionGradeId AS ProductionGradeId,
           p.ProductionGradeCode AS ProductionGradeCode, co.DeletedFlag AS companydeleted,
           p.GradeId AS GradeId, g.GradeCode AS GradeCode, g.CompanyId AS CompanyId,
           co.CompanyCode AS CompanyCode, r.Status AS Status,
           r.ScanningComplete AS ScanningComplete, r.PrizingStatus AS PrizingStatus,
           r.RunSequence AS RunSequence, p.ChinaReporting AS ChinaReporting
    FROM PRODUCTIONRUN r
    LEFT JOIN PRODUCTIONGRADE p ON p.PRODUCTIONGRADEID = r.ProductionGradeId
    LEFT JOIN GRADE g ON g.GradeId = p.GradeId
    LEFT JOIN COMPANY co ON co.CompanyId = g.CompanyId
GO

CREATE VIEW VPRODUCTIONRUNPRIZING AS
SELECT r.ProductionDate AS ProductionDate, r.ProductionGradeId AS ProductionGradeId,
           p.ProductionGradeCode AS ProductionGradeCode, r.Status AS Status,
           r.ScanningComplete AS ScanningComplete, r.PRODUCTIONRUNID AS ProductionRunId,
           g.GradeCode AS GradeCode, g.GradeId AS GradeId, g.Description AS Description,
           g.GrowingYear AS GrowingYear, g.PrizedGradeCode AS PrizedGradeCode,
           g.PrizedCompanyCode AS PrizedCompanyCode, t.TypeCode AS TypeCode,
           t.SortSequence AS SortSequence, t.GradeType AS GradeType,
           g.GradeTypeId AS GradeTypeId, g.CompanyId AS CompanyId, co.CompanyCode AS CompanyCode,
           co.CompanyName AS CompanyName, r.PrizingStatus AS PrizingStatus,
           r.RunSequence AS RunSequence, r.FedIn AS FedIn
    FROM PRODUCTIONRUN r
    LEFT JOIN PRODUCTIONGRADE p ON p.PRODUCTIONGRADEID = r.ProductionGradeId
    LEFT JOIN GRADE g ON g.GradeId = p.GradeId
    LEFT JOIN GRADETYPE t ON t.GradeTypeId = g.GradeTypeId
    LEFT JOIN COMPANY co ON co.CompanyId = g.CompanyId
GO

CREATE VIEW VRUNGREENGRADELIST AS
SELECT rg.ProductionRunId AS ProductionRunId, pg.ProductionGradeId AS ProductionGradeId,
           pg.GreenGradeId AS GreenGradeId, rg.ProductionGreenGradeId AS ProductionGreenGradeId
    FROM PRODUCTIONRUNGRADE rg
    INNER JOIN PRODUCTIONGREENGRADE pg ON pg.PRODUCTIONGREENGRADEID = rg.ProductionGreenGradeId
GO

CREATE VIEW VRUNSTEMTYPES AS
SELECT DISTINCT s.ProductionRunId AS ProductionRunId, r.ProductionDate AS ProductionDate,
           s.StemTypeID AS StemTypeID, r.ProductionGradeId AS ProductionGradeId
    FROM STEMS s INNER JOIN PRODUCTIONRUN r ON r.PRODUCTIONRUNID = s.ProductionRunId
    WHERE s.StemTypeID IS NOT NULL
GO

CREATE VIEW VRUNBYPRODUCTTYPES AS
SELECT DISTINCT b.ProductionRunId AS ProductionRunId, r.ProductionDate AS ProductionDate,
           b.ByProductsTypeId AS ByProductsTypeId, t.CompanyId AS CompanyId
    FROM BYPRODUCTS b INNER JOIN PRODUCTIONRUN r ON r.PRODUCTIONRUNID = b.ProductionRunId
    LEFT JOIN BYPRODUCTSTYPE t ON t.BYPRODUCTSTYPEID = b.ByProductsTypeId
GO

CREATE VIEW VRUNGREENWEIGHTTOTALS AS
SELECT rg.ProductionRunId AS ProductionRunId, gg.GradeCode AS GradeCode,
           pg.GreenGradeId AS GreenGradeId, gi.GreenInventoryId AS GreenInventoryId,
           gi.GrossWeight AS inventoryweight, rg.WeightUsed AS RunWeight,
           rg.GrossBaleWeight AS GrossBaleWeight, rg.TareValue AS TareValue,
           rg.TareUnitCount AS TareUnitCount
    FROM PRODUCTIONRUNGRADE rg
    INNER JOIN PRODUCTIONGREENGRADE pg ON pg.PRODUCTIONGREENGRADEID = rg.ProductionGreenGradeId
    LEFT JOIN GREENGRADE gg ON gg.GREENGRADEID = pg.GreenGradeId
    LEFT JOIN (SELECT GreenGradeId, MIN(GREENINVENTORYID) AS GreenInventoryId,
                      SUM(GrossWeight) AS GrossWeight
               FROM GREENINVENTORY GROUP BY GreenGradeId) gi
      ON gi.GreenGradeId = pg.GreenGradeId
GO

CREATE VIEW VRUNPRODGREENGRADES AS
SELECT r.PRODUCTIONRUNID AS ProductionRunId, r.ProductionDate AS ProductionDate,
           r.ProductionGradeId AS ProductionGradeId,
           pg.PRODUCTIONGREENGRADEID AS ProductionGreenGradeId, pg.GreenGradeId AS GreenGradeId
    FROM PRODUCTIONRUN r
    INNER JOIN PRODUCTIONGREENGRADE pg ON pg.ProductionGradeId = r.ProductionGradeId
    WHERE COALESCE(pg.DeletedFlag, '') <> 'Y'
GO

CREATE VIEW VRUNREDRIEDGRADELIST AS
SELECT rr.ProductionGreenGradeId AS ProductionGreenGradeId,
           rr.PRODUCTIONRUNREDRIEDID AS ProductionRunRedriedId, rr.WeightUsed AS WeightUsed,
           rr.ProductionRunId AS ProductionRunId, pg.ProductionGradeId AS ProductionGradeId,
           pg.SortSequence AS SortSequence, pg.DeletedFlag AS DeletedFlag,
           pg.GreenGradeId AS GreenGradeId, gg.GradeCode AS GradeCode,
           gg.ScrapGrade AS ScrapGrade
    FROM PRODUCTIONRUNREDRIED rr
    LEFT JOIN PRODUCTIONGREENGRADE pg ON pg.PRODUCTIONGREENGRADEID = rr.ProductionGreenGradeId
    LEFT JOIN GREENGRADE gg ON gg.GREENGRADEID = pg.GreenGradeId
GO

CREATE VIEW VPRODGREENGRADELIST AS
SELECT pg.PRODUCTIONGREENGRADEID AS ProductionGreenGradeId,
           pg.ProductionGradeId AS ProductionGradeId, pg.GreenGradeId AS GreenGradeId,
           pg.TargetPercentage AS TargetPercentage, pg.SortSequence AS SortSequence,
           pg.DeletedFlag AS DeletedFlag, p.ProductionGradeCode AS ProductionGradeCode,
           gg.GradeCode AS GradeCode
    FROM PRODUCTIONGREENGRADE pg
    LEFT JOIN PRODUCTIONGRADE p ON p.PRODUCTIONGRADEID = pg.ProductionGradeId
    LEFT JOIN GREENGRADE gg ON gg.GREENGRADEID = pg.GreenGradeId
GO

CREATE VIEW VGREENRECEIPTLIST AS
SELECT r.GREENRECEIPTID AS greenreceiptid, r.GreenGradeId AS GreenGradeId,
           r.Status AS Status, r.ReceiptType AS receipttype, r.ReceiptDate AS receiptdate,
           g.GradeCode AS GradeCode, r.ToGreenGradeId AS togreengradeid,
           t.GradeCode AS togradecode, r.GrossWeight AS GrossWeight, r.Posted AS posted,
           g.CompanyId AS CompanyId, c.CompanyCode AS CompanyCode,
           g.DeletedFlag AS greengradedeleted, c.DeletedFlag AS companydeleted,
           r.WeightRemaining AS weightremaining
    FROM GREENRECEIPT r
    LEFT JOIN GREENGRADE g ON g.GREENGRADEID = r.GreenGradeId
    LEFT JOIN GREENGRADE t ON t.GREENGRADEID = r.ToGreenGradeId
    LEFT JOIN COMPANY c ON c.CompanyId = g.CompanyId
GO

CREATE VIEW VINHOUSERECGRADES AS
SELECT pgg.ProductionGradeId AS ProductionGradeId, pgg.GreenGradeId AS GreenGradeId,
           p.ProductionGradeCode AS ProductionGradeCode, g.GradeCode AS GreenGradeCode,
           g.CompanyId AS CompanyId, c.CompanyCode AS CompanyCode,
           pgg.TargetPercentage AS TargetPercentage, p.GradeId AS GradeId,
           gr.GradeCode AS GradeCode
    FROM PRODUCTIONGREENGRADE pgg
    INNER JOIN PRODUCTIONGRADE p ON p.PRODUCTIONGRADEID = pgg.ProductionGradeId
    INNER JOIN GREENGRADE g ON g.GREENGRADEID = pgg.GreenGradeId
    LEFT JOIN COMPANY c ON c.CompanyId = g.CompanyId
    LEFT JOIN GRADE gr ON gr.GradeId = p.GradeId
    WHERE COALESCE(pgg.DeletedFlag, 'N') <> 'Y'
GO

CREATE VIEW VGREENPROD AS
SELECT r.ProductionDate AS ProductionDate, pgg.GreenGradeId AS GreenGradeId,
           SUM(prg.WeightUsed) AS RunWeight
    FROM PRODUCTIONRUNGRADE prg
    INNER JOIN PRODUCTIONRUN r ON r.PRODUCTIONRUNID = prg.ProductionRunId
    INNER JOIN PRODUCTIONGREENGRADE pgg
      ON pgg.PRODUCTIONGREENGRADEID = prg.ProductionGreenGradeId
    GROUP BY r.ProductionDate, pgg.GreenGradeId
GO

CREATE VIEW VPROCESSGREEN AS
SELECT r.PRODUCTIONRUNID AS ProductionRunId, r.ProductionGradeId AS ProductionGradeId,
           p.ProductionGradeCode AS ProductionGradeCode, g.GradeCode AS GreenGradeCode,
           (SELECT SUM(i.GrossWeight) FROM GREENINVENTORY i
             WHERE i.GreenGradeId = pgg.GreenGradeId) AS GreenWeight,
           pgg.TargetPercentage AS TargetPercentage, t.ThisRunWeight AS ThisRunWeight,
           t.ThisRunPercentage AS ThisRunPercentage,
           (SELECT SUM(u.WeightUsed) FROM PRODUCTIONRUNGRADE u
             WHERE u.ProductionRunId = r.PRODUCTIONRUNID
               AND u.ProductionGreenGradeId = pgg.PRODUCTIONGREENGRADEID) AS WeightUsed,
           t.Comment AS Comment, pgg.GreenGradeId AS GreenGradeId,
           pgg.PRODUCTIONGREENGRADEID AS ProductionGreenGradeId,
           p.ReportingCompanyId AS ReportingCompanyId, g.CompanyId AS CompanyId,
           pgg.SortSequence AS SortSequence,
           g.ReportingProductionGradeId AS ReportingProductionGradeId
    FROM PRODUCTIONRUN r
    INNER JOIN PRODUCTIONGREENGRADE pgg ON pgg.ProductionGradeId = r.ProductionGradeId
    INNER JOIN PRODUCTIONGRADE p ON p.PRODUCTIONGRADEID = r.ProductionGradeId
    LEFT JOIN GREENGRADE g ON g.GREENGRADEID = pgg.GreenGradeId
    LEFT JOIN PRODUCTIONRUNTARGET t
      ON t.ProductionRunId = r.PRODUCTIONRUNID
     AND t.ProductionGreenGradeId = pgg.PRODUCTIONGREENGRADEID
    WHERE COALESCE(pgg.DeletedFlag, 'N') <> 'Y'
GO

CREATE VIEW VPREPPHYSICAL AS
SELECT ca.CageCode AS CageCode, c.CompanyCode AS CompanyCode, g.CompanyId AS CompanyId,
           g.GradeCode AS GradeCode, cc.GreenGradeId AS GreenGradeId, cc.NetWeight AS NetWeight
    FROM CAGECONTENT cc
    INNER JOIN CAGE ca ON ca.CAGEID = cc.CageId
    LEFT JOIN GREENGRADE g ON g.GREENGRADEID = cc.GreenGradeId
    LEFT JOIN COMPANY c ON c.CompanyId = g.CompanyId
    WHERE COALESCE(ca.DeletedFlag, 'N') <> 'Y'
GO

CREATE VIEW VCAGECONTENT AS
SELECT cc.CAGECONTENTID AS CageContentId, cc.CageId AS CageId, ca.CageCode AS CageCode,
           cc.GreenGradeId AS GreenGradeId, g.GradeCode AS GradeCode, cc.NetWeight AS NetWeight
    FROM CAGECONTENT cc
    LEFT JOIN CAGE ca ON ca.CAGEID = cc.CageId
    LEFT JOIN GREENGRADE g ON g.GREENGRADEID = cc.GreenGradeId
GO

CREATE VIEW VCAGELOG AS
SELECT m.CAGEMOVEMENTID AS CageMovementID, m.MovementType AS MovementType,
           m.MovementTS AS MovementTs, m.OperatorId AS OperatorId, m.StationId AS StationId,
           m.ShiftNumber AS ShiftNumber, m.ProductionRunId AS ProductionRunId,
           m.Executed AS Executed, o.UserName AS UserName, s.StationCode AS StationCode,
           l.CAGELOGID AS CageLogId, l.CageId AS CageId, ca.CageCode AS CageCode,
           l.Sequence AS Sequence, l.InGreenGradeId AS InGreenGradeId, l.InWeight AS InWeight,
           gi.GradeCode AS InGradeCode, l.FromStatusId AS FromStatusId,
           sf.CageStatus AS FromStatus, l.OutGreenGradeId AS OutGreenGradeId,
           l.OutWeight AS OutWeight, go.GradeCode AS OutGradeCode, l.ToStatusId AS ToStatusId,
           st.CageStatus AS ToStatus, l.CageGross AS CageGross, l.CageTare AS CageTare,
           l.CageNet AS CageNet
    FROM CAGELOG l
    LEFT JOIN CAGEMOVEMENT m ON m.CAGEMOVEMENTID = l.CageMovementId
    LEFT JOIN OPERATOR o ON o.OPERATORID = m.OperatorId
    LEFT JOIN STATION s ON s.STATIONID = m.StationId
    LEFT JOIN CAGE ca ON ca.CAGEID = l.CageId
    LEFT JOIN GREENGRADE gi ON gi.GREENGRADEID = l.InGreenGradeId
    LEFT JOIN GREENGRADE go ON go.GREENGRADEID = l.OutGreenGradeId
    LEFT JOIN CAGESTATUS sf ON sf.CAGESTATUSID = l.FromStatusId
    LEFT JOIN CAGESTATUS st ON st.CAGESTATUSID = l.ToStatusId
GO

CREATE VIEW VLABWORKLIST AS
SELECT h.LABHEADERID AS LabHeaderID, h.CompanyId, h.ProductionGradeId,
           h.LabSettingSnapshotID, h.StartDate, h.LabStatus, h.DeletedFlag, co.CompanyCode,
           co.CompanyName, p.ProductionGradeCode
    FROM LABHEADER h
    LEFT JOIN COMPANY co ON co.CompanyId = h.CompanyId
    LEFT JOIN PRODUCTIONGRADE p ON p.PRODUCTIONGRADEID = h.ProductionGradeId
GO

CREATE VIEW VLABSETTINGLIST AS
SELECT s.LABSETTINGID AS LabSettingID, s.ProductionGradeId, s.CompanyId, co.CompanyCode,
           co.CompanyName, p.ProductionGradeCode
    FROM LABSETTING s
    LEFT JOIN COMPANY co ON co.CompanyId = s.CompanyId
    LEFT JOIN PRODUCTIONGRADE p ON p.PRODUCTIONGRADEID = s.ProductionGradeId
GO

CREATE VIEW VLABFOREIGNBALE AS
SELECT b.InternalCode, b.NTRMStatus, f.cbProductionBaleNTRMId,
           f.LABFOREIGNID AS LabForeignID, f.LabHeaderID, f.ProductionGradeId, f.LabSeason,
           f.SampleDateTime, f.TestType, f.Shift, f.StemTypeID, f.ByProductID,
           f.ContainerNumber, f.SampleWeight, f.Suckers, f.Stalk, f.Straw, f.Grass, f.Strings,
           f.Feathers, f.Lint, f.Paper, f.Plastic, f.Insulation, f.Foam, f.Rubber, f.Rocks,
           f.Wood, f.Hair, f.InsectOrCocoons, f.StainedLeaves, f.Fur, f.Wool, f.Metal,
           f.FruitOrNuts, f.Seed, f.Extra1, f.Extra2, f.Other1, f.Other1Desc, f.Other2,
           f.Other2Desc, f.Other3, f.Other3Desc, f.SuckersWt, f.StalkWt, f.StrawWt, f.GrassWt,
           f.StringsWt, f.LintWt, f.FeathersWt, f.PaperWt, f.PlasticWt, f.InsulationWt,
           f.FoamWt, f.RubberWt, f.RocksWt, f.WoodWt, f.HairWt, f.InsectOrCocoonsWt,
           f.StainedLeavesWt, f.FurWt, f.WoolWt, f.MetalWt, f.FruitOrNutsWt, f.SeedWt,
           f.Extra1Wt, f.Extra2Wt, f.Other1Wt, f.Other2Wt, f.Other3Wt, f.Total, f.TotalWt,
           f.LastUpdated, f.UpdatedByID, b.BlendWeight, b.BarCode
    FROM LABFOREIGN f
    JOIN CBPRODUCTIONBALENTRM b ON b.CBPRODUCTIONBALENTRMID = f.cbProductionBaleNTRMId
GO

CREATE VIEW VLABONHOLD AS
SELECT co.CompanyCode, co.CompanyName, p.ProductionGradeCode, g.GradeCode,
           o.ONHOLDID AS OnHoldID, s.LabHeaderID, o.ProductionGradeId, s.LabSeason,
           o.ContainerNumber, s.ResultCode, s.SampleType, o.OnHoldType, s.SampleDateTime,
           o.ScrapCode, o.StemCode
    FROM ONHOLD o
    LEFT JOIN PRODUCTIONGRADE p ON p.PRODUCTIONGRADEID = o.ProductionGradeId
    LEFT JOIN GRADE g ON g.GradeId = p.GradeId
    LEFT JOIN COMPANY co ON co.CompanyId = g.CompanyId
    LEFT JOIN LABPACKED s ON s.LABPACKEDID = (
      SELECT MAX(x.LABPACKEDID) FROM LABPACKED x
      WHERE x.ProductionGradeId = o.ProductionGradeId AND x.ContainerNumber = o.ContainerNumber)
GO

CREATE VIEW VLABPACKEDCHINAEXPORT AS
SELECT p.SampleDateTime, p.ContainerNumber, f.SampleWeight, p.Temperature, p.OvenPct,
           p.StripAppearance, p.PackingCartons, p.Reweigh, p.PackDensityVarPct, f.SuckersWt,
           f.StalkWt, f.StrawWt, f.GrassWt, f.StringsWt, f.LintWt, f.FeathersWt, f.PaperWt,
           f.PlasticWt, f.InsulationWt, f.FoamWt, f.RubberWt, f.RocksWt, f.WoodWt, f.Extra1Wt,
           f.Extra2Wt, f.Other1Wt, f.Other2Wt, f.HairWt, f.InsectOrCocoonsWt, f.StainedLeavesWt,
           f.FurWt, f.WoolWt, f.MetalWt, f.FruitOrNutsWt, f.SeedWt, f.Other3Wt,
           p.ProductionGradeId, p.LABPACKEDID AS LabPackedID, f.LABFOREIGNID AS LabForeignID,
           p.LabHeaderID
    FROM LABPACKED p
    JOIN PRODUCTIONGRADE pg ON pg.PRODUCTIONGRADEID = p.ProductionGradeId
    JOIN LABFOREIGN f ON f.LabHeaderID = p.LabHeaderID AND f.ProductionGradeId = p.ProductionGradeId
                     AND f.ContainerNumber = p.ContainerNumber
    WHERE pg.ChinaReporting = 'Y'
GO

CREATE INDEX IX_GRADE_COMPANY ON GRADE (CompanyId)
GO
CREATE INDEX IX_BYPRODUCTSTYPE_COMPANY ON BYPRODUCTSTYPE (CompanyId)
GO
CREATE INDEX IX_PRODUCTIONGRADESPEC_GRADE ON PRODUCTIONGRADESPEC (ProductionGradeId)
GO
CREATE INDEX IX_PRODUCTIONRUNGRADE_RUN ON PRODUCTIONRUNGRADE (ProductionRunId)
GO
CREATE INDEX IX_PICKINGS_RUN ON PICKINGS (ProductionRunId)
GO
CREATE INDEX IX_BYPRODUCTS_RUN ON BYPRODUCTS (ProductionRunId)
GO
CREATE INDEX IX_STEMS_RUN ON STEMS (ProductionRunId)
GO
CREATE INDEX IX_PRODUCTIONRUNTARGET_RUN ON PRODUCTIONRUNTARGET (ProductionRunId)
GO
CREATE INDEX IX_PRODUCTIONRUNREDRIED_RUN ON PRODUCTIONRUNREDRIED (ProductionRunId)
GO
CREATE INDEX IX_DEGRADATION_RUN ON DEGRADATION (ProductionRunId)
GO
CREATE INDEX IX_OVENMOISTURE_RUN ON OVENMOISTURE (ProductionRunId)
GO
CREATE INDEX IX_PACKEDMOISTURE_RUN ON PACKEDMOISTURE (ProductionRunId)
GO
CREATE INDEX IX_GREENMOISTURE_RUN ON GREENMOISTURE (ProductionRunId)
GO
CREATE INDEX IX_SUGARNICOTINE_RUN ON SUGARNICOTINE (ProductionRunId)
GO
CREATE INDEX IX_SAND_RUN ON SAND (ProductionRunId)
GO
CREATE INDEX IX_STRIP_RUN ON STRIP (ProductionRunId)
GO
CREATE INDEX IX_LAMINA_RUN ON LAMINA (ProductionRunId)
GO
CREATE INDEX IX_PRODUCTIONGREENGRADE_GRADE ON PRODUCTIONGREENGRADE (ProductionGradeId)
GO
CREATE INDEX IX_BYPRODUCTSTEST_BYPRODUCTS ON BYPRODUCTSTEST (ByProductsId)
GO
CREATE INDEX IX_GREENINVENTORY_GRADE ON GREENINVENTORY (GreenGradeId)
GO
CREATE INDEX IX_GREENRECEIPT_GRADE ON GREENRECEIPT (GreenGradeId)
GO
CREATE INDEX IX_CAGECONTENT_CAGE ON CAGECONTENT (CageId)
GO
CREATE INDEX IX_CAGELOG_MOVEMENT ON CAGELOG (CageMovementId)
GO
CREATE INDEX IX_CAGEMOVECOMMENT_MOVEMENT ON CAGEMOVECOMMENT (CageMovementID)
GO
CREATE INDEX IX_LABPACKED_SEASON ON LABPACKED (LabSeason, SampleType)
GO
CREATE INDEX IX_LABDEGRADATION_SEASON ON LABDEGRADATION (LabSeason, SampleType)
GO
CREATE INDEX IX_LABGREENMOISTURE_SEASON ON LABGREENMOISTURE (LabSeason, SampleType)
GO
