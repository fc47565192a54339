// The laboratory: headers, settings, samples, summaries, advice notes, holds and exports.
#include <string>

#include "plant/catalog.hpp"
#include "plant/catalog_lab.hpp"

namespace vrdppo::embedded {

namespace {

// The columns of a laboratory setting, less its key.
constexpr const char* kSettingColumns = R"(
    CompanyId INT, ProductionGradeId INT,
    GreenDegradation VARCHAR(1), GreenDegCases INT, GreenDegMinutes INT, GrnTotStemTgt MONEY,
    GrnTotStemRet MONEY, GrnTotStemRer MONEY, GrnPctObjTgt MONEY, GrnPctObjRet MONEY,
    GrnPctObjRer MONEY, GrnLabel1 VARCHAR(20), GrnLabel2 VARCHAR(20), GrnLabel3 VARCHAR(20),
    GrnLabel4 VARCHAR(20), GrnLabel5 VARCHAR(20), GrnLabel6 VARCHAR(20), GrnLabel7 VARCHAR(20),
    GrnLabel8 VARCHAR(20), GrnLabel9 VARCHAR(20), StrLabel1 VARCHAR(20), StrLabel2 VARCHAR(20),
    StrLabel3 VARCHAR(20), StrLabel4 VARCHAR(20), StrLabel5 VARCHAR(20), StrLabel6 VARCHAR(20),
    StrLabel7 VARCHAR(20), StrLabel8 VARCHAR(20), StrLabel9 VARCHAR(20), ScrLabel1 VARCHAR(20),
    ScrLabel2 VARCHAR(20), ScrLabel3 VARCHAR(20), ScrLabel4 VARCHAR(20), ScrLabel5 VARCHAR(20),
    ScrLabel6 VARCHAR(20), ScrLabel7 VARCHAR(20), ScrLabel8 VARCHAR(20), ScrLabel9 VARCHAR(20),
    StmLabel1 VARCHAR(20), StmLabel2 VARCHAR(20), StmLabel3 VARCHAR(20), StmLabel4 VARCHAR(20),
    StmLabel5 VARCHAR(20), StmLabel6 VARCHAR(20), StmLabel7 VARCHAR(20), StmLabel8 VARCHAR(20),
    StmLabel9 VARCHAR(20), StripDegradation VARCHAR(1), StripDegCases INT, StripDegMinutes INT,
    TotStemTarget MONEY, TotStemRetest MONEY, TotStemRerun MONEY, PctObjTarget MONEY,
    PctObjRetest MONEY, PctObjRerun MONEY, ScrapDegradation VARCHAR(1), ScrapDegCases INT,
    ScrapDegMinutes INT, StemDegradation VARCHAR(1), StemDegCases INT, StemDegMinutes INT,
    PackedStrip VARCHAR(1), PackedStripCases INT, PackedStripMinutes INT, PackedScrap VARCHAR(1),
    PackedScrapCases INT, PackedScrapMinutes INT, StemInScrap VARCHAR(1), PackedStem VARCHAR(1),
    PackedStemCases INT, PackedStemMinutes INT, LaminaOnStem VARCHAR(1), StemLength VARCHAR(1),
    StemLengthDetail VARCHAR(1), GreenMoisture VARCHAR(1), GreenMinutes INT,
    GreenStemMoisture VARCHAR(1), StripMoistureTarget MONEY, StripMoistureRetest MONEY,
    StripMoistureRerun MONEY, StemMoistureTarget MONEY, StemMoistureRetest MONEY,
    StemMoistureRerun MONEY, ScrapMoistureTarget MONEY, ScrapMoistureRetest MONEY,
    ScrapMoistureRerun MONEY, ExitSiloMoisture VARCHAR(1), ExitSiloCases INT, ExitSiloMinutes INT,
    ForeignMatter VARCHAR(1), ForeignMatterCases INT, ForeignMatterMinutes INT)";

}  // namespace

void addLabCatalog(Catalog& c) {
  c.table("LABHEADER", R"(
    LABHEADERID INTEGER PRIMARY KEY AUTOINCREMENT, CompanyId INT, ProductionGradeId INT,
    LabSettingSnapshotID INT, ProductionRunId INT, StartDate DATETIME, StartShift INT,
    EndDate DATETIME, EndShift INT, LabStatus VARCHAR(2), DeletedFlag VARCHAR(1),
    GreenDegCount INT, StripDegCount INT, ScrapDegCount INT, StemDegCount INT,
    PackedStripCount INT, PackedStemCount INT, PackedScrapCount INT, GreenMoistureCount INT,
    ExitSiloCount INT, ForeignCount INT)");

  // A snapshot is a frozen copy of a setting: the same columns under a key of its own.
  c.table("LABSETTING",
          std::string("LABSETTINGID INTEGER PRIMARY KEY AUTOINCREMENT, ") + kSettingColumns);
  c.table(
      "LABSETTINGSNAPSHOT",
      std::string("LABSETTINGSNAPSHOTID INTEGER PRIMARY KEY AUTOINCREMENT, ") + kSettingColumns);

  c.table("LABPACKED", R"(
    LABPACKEDID INTEGER PRIMARY KEY AUTOINCREMENT, LabHeaderID INT, ProductionGradeId INT,
    LabSeason INT, SampleDateTime DATETIME, Shift INT, TestType VARCHAR(3), StemTypeID INT,
    ByProductID INT, SampleType VARCHAR(3), SampleCount INT, RangeAmount VARCHAR(1),
    SampleRange INT, ContainerNumber INT, Temperature MONEY, Temperature2 MONEY, TempCount INT,
    NicotinePct MONEY, NicotinePct2 MONEY, SugarPct MONEY, SugarPct2 MONEY, InfCount INT,
    MoisturePct MONEY, MoisturePct2 MONEY, MoistureCount INT, OvenPct MONEY, OvenPct2 MONEY,
    OvenCount INT, NumberStems INT, AverageLength MONEY, AverageLength2 MONEY,
    StemLengthCount INT, LaminaInStemPct MONEY, LaminaInStemPct2 MONEY, LaminaInStemCount INT,
    StemInScrapPct MONEY, StemInScrapPct2 MONEY, StemInScrapCount INT, ResultCode VARCHAR(2),
    WtUnder05 MONEY, Wt05to10 MONEY, Wt10to15 MONEY, Wt15to20 MONEY, Wt20to25 MONEY,
    Wt25to30 MONEY, Wt30to35 MONEY, Wt35to40 MONEY, WtOver40 MONEY, TotalWt MONEY,
    WtUnder05Pct MONEY, Wt05to10Pct MONEY, Wt10to15Pct MONEY, Wt15to20Pct MONEY,
    Wt20to25Pct MONEY, Wt25to30Pct MONEY, Wt30to35Pct MONEY, Wt35to40Pct MONEY, WtOver40Pct MONEY,
    StemDetailsCount INT, LastUpdated DATETIME, UpdatedByID INT, StemInLam1 MONEY,
    StemInLam2 MONEY, StemInLam3 MONEY, StemInLam4 MONEY, StemInLam5 MONEY, StemInLamPct1 MONEY,
    StemInLamPct2 MONEY, StemInLamPct3 MONEY, StemInLamPct4 MONEY, StemInLamPct5 MONEY,
    StemInLamCount INT, StripAppearance VARCHAR(1), PackingCartons VARCHAR(1), Reweigh MONEY,
    PackDensityVarPct MONEY)");

  c.table("LABPACKEDSUM", R"(
    LABPACKEDSUMID INTEGER PRIMARY KEY AUTOINCREMENT, ParentID INT, ChildID INT, SumType INT)");

  c.table("LABDEGRADATION", R"(
    LABDEGRADATIONID INTEGER PRIMARY KEY AUTOINCREMENT, LabHeaderID INT, ProductionGradeId INT,
    LabSeason INT, SampleDateTime DATETIME, Shift INT, TestType VARCHAR(3), CaseType VARCHAR(3),
    SampleType VARCHAR(3), SampleCount INT, RangeAmount VARCHAR(1), SampleRange INT,
    ByProductID INT, StemTypeID INT, ContainerNumber INT, SampleWeight MONEY,
    SampleWeightPct MONEY, OverOne MONEY, OverOnePct MONEY, OverHalf MONEY, OverHalfPct MONEY,
    TotalOverHalf MONEY, TotalOverHalfPct MONEY, OverQuarter MONEY, OverQuarterPct MONEY,
    OverEighth MONEY, OverEighthPct MONEY, OnPan MONEY, OnPanPct MONEY, ThruQuarter MONEY,
    ThruQuarterPct MONEY, TotalWeight MONEY, TotalWeightPct MONEY, Unaccountable MONEY,
    UnaccountablePct MONEY, Screen8 MONEY, Screen8Pct MONEY, Screen9 MONEY, Screen9Pct MONEY,
    StemSampleWeight MONEY, Weight7And12 MONEY, WeightObj MONEY, WeightPan MONEY,
    TotalStemPct MONEY, ObjPct MONEY, PanPct MONEY, NonObjPct MONEY, StemInLamCount INT,
    ResultCode VARCHAR(2), LastUpdated DATETIME, UpdatedByID INT)");

  c.table("LABDEGSUM", R"(
    LABDEGSUMID INTEGER PRIMARY KEY AUTOINCREMENT, ParentID INT, ChildID INT, SumType INT)");

  c.table("LABGREENMOISTURE", R"(
    LABGREENMOISTUREID INTEGER PRIMARY KEY AUTOINCREMENT, LabHeaderID INT, ProductionGradeId INT,
    LabSeason INT, Shift INT, SampleType VARCHAR(3), SampleCount INT, RangeAmount VARCHAR(1),
    SampleRange INT, SampleDateTime DATETIME, PackedPressureCount INT, PackedPressure MONEY,
    PackedTemp MONEY, PackedTempCount INT, ABlendMoistPct MONEY, ABlendOvenPct MONEY,
    ABlendMoistCount INT, ABlendOvenCount INT, A1DrumMoistPct MONEY, A1DrumOvenPct MONEY,
    A1DrumMoistCount INT, A1DrumOvenCount INT, A2DrumMoistPct MONEY, A2DrumOvenPct MONEY,
    A2DrumMoistCount INT, A2DrumOvenCount INT, CBlendMoistPct MONEY, CBlendOvenPct MONEY,
    CBlendMoistCount INT, CBlendOvenCount INT, C1DrumMoistPct MONEY, C1DrumOvenPct MONEY,
    C1DrumMoistCount INT, C1DrumOvenCount INT, C2DrumMoistPct MONEY, C2DrumOvenPct MONEY,
    C2DrumMoistCount INT, C2DrumOvenCount INT, LaminaMoistPct MONEY, LaminaOvenPct MONEY,
    LaminaMoistcount INT, LaminaOvenCount INT, RCoolerMoistPct MONEY, RCoolerOvenPct MONEY,
    RCoolerMoistCount INT, RCoolerOvenCount INT, LCoolerMoistPct MONEY, LCoolerOvenPct MONEY,
    LCoolerMoistCount INT, LCoolerOvenCount INT, CoolerMoistDiff MONEY, CoolerOvenDiff MONEY,
    CoolerMoistDiffCount INT, CoolerOvenDiffCount INT, StemMoistPct MONEY, StemOvenPct MONEY,
    StemMoistCount INT, StemOvenCount INT, ExitSiloMoistPct MONEY, ExitSiloOvenPct MONEY,
    ExitSiloMoistCount INT, ExitSiloOvenCount INT, PackedPressure2 MONEY, PackedTemp2 MONEY,
    ABlendMoistPct2 MONEY, ABlendOvenPct2 MONEY, A2DrumMoistPct2 MONEY, A2DrumOvenPct2 MONEY,
    CBlendMoistPct2 MONEY, CBlendOvenPct2 MONEY, C2DrumMoistPct2 MONEY, C2DrumOvenPct2 MONEY,
    LaminaMoistPct2 MONEY, LaminaOvenPct2 MONEY, RCoolerMoistPct2 MONEY, RCoolerOvenPct2 MONEY,
    LCoolerMoistPct2 MONEY, LCoolerOvenPct2 MONEY, CoolerMoistDiff2 MONEY, CoolerOvenDiff2 MONEY,
    StemMoistPct2 MONEY, StemOvenPct2 MONEY, ExitSiloMoistPct2 MONEY, ExitSiloOvenPct2 MONEY,
    ExitSiloMoistCount2 INT, ExitSiloOvenCount2 INT, LastUpdated DATETIME, UpdatedByID INT,
    RCoolerMoist2Pct MONEY, RCoolerOven2Pct MONEY, RCoolerMoist2Count INT, RCoolerOven2Count INT,
    LCoolerMoist2Pct MONEY, LCoolerOven2Pct MONEY, LCoolerMoist2Count INT, LCoolerOven2Count INT,
    CoolerMoist2Diff MONEY, CoolerOven2Diff MONEY, CoolerMoist2DiffCount INT,
    CoolerOven2DiffCount INT, RCoolerMoist2Pct2 MONEY, RCoolerOven2Pct2 MONEY,
    LCoolerMoist2Pct2 MONEY, LCoolerOven2Pct2 MONEY, CoolerMoist2Diff2 MONEY,
    CoolerOven2Diff2 MONEY, AllCoolerMoistPct MONEY, AllCoolerOvenPct MONEY,
    AllCoolerMoistCount INT, AllCoolerOvenCount INT, AllCoolerMoistPct2 MONEY,
    AllCoolerOvenPct2 MONEY, ABlendTemp MONEY, A1DrumTemp MONEY, A2DrumTemp MONEY,
    CBlendTemp MONEY, C1DrumTemp MONEY, C2DrumTemp MONEY, ABlendTempCount INT,
    A1DrumTempCount INT, A2DrumTempCount INT, CBlendTempCount INT, C1DrumTempCount INT,
    C2DrumTempCount INT, ABlendTemp2 MONEY, A2DrumTemp2 MONEY, CBlendTemp2 MONEY,
    C2DrumTemp2 MONEY, PackedPressureCountB INT, PackedPressureB MONEY, PackedPressureB2 MONEY,
    Redryer1MoistPct MONEY, Redryer1OvenPct MONEY, Redryer1MoistPct2 MONEY,
    Redryer1OvenPct2 MONEY, Redryer1MoistCount INT, Redryer1OvenCount INT,
    Redryer1Zone1Temp MONEY, Redryer1Zone2Temp MONEY, Redryer1Zone3Temp MONEY,
    Redryer1Zone4Temp MONEY, Redryer1CoolerTemp MONEY, Redryer1EndTemp MONEY,
    Redryer1Zone1Count INT, Redryer1Zone2Count INT, Redryer1Zone3Count INT,
    Redryer1Zone4Count INT, Redryer1CoolerCount INT, Redryer1EndCount INT, Redryer2MoistPct MONEY,
    Redryer2OvenPct MONEY, Redryer2MoistPct2 MONEY, Redryer2OvenPct2 MONEY,
    Redryer2MoistCount INT, Redryer2OvenCount INT, Redryer2Zone1Temp MONEY,
    Redryer2Zone2Temp MONEY, Redryer2Zone3Temp MONEY, Redryer2Zone4Temp MONEY,
    Redryer2CoolerTemp MONEY, Redryer2EndTemp MONEY, Redryer2Zone1Count INT,
    Redryer2Zone2Count INT, Redryer2Zone3Count INT, Redryer2Zone4Count INT,
    Redryer2CoolerCount INT, Redryer2EndCount INT)");

  c.table("LABGREENMOISTSUM", R"(
    LABGREENMOISTSUMID INTEGER PRIMARY KEY AUTOINCREMENT, ParentID INT, ChildID INT, SumType INT)");

  c.table("LABSTEMLENGTH", R"(
    LABSTEMLENGTHID INTEGER PRIMARY KEY AUTOINCREMENT, LabHeaderID INT, ProductionGradeId INT,
    LabSeason INT, SampleDateTime DATETIME, Shift INT, StemTypeID INT, SampleType VARCHAR(3),
    SampleCount INT, RangeAmount VARCHAR(1), SampleRange INT, ContainerNumber INT,
    WtUnder05 MONEY, Wt05to10 MONEY, Wt10to15 MONEY, Wt15to20 MONEY, Wt20to25 MONEY,
    Wt25to30 MONEY, Wt30to35 MONEY, Wt35to40 MONEY, WtOver40 MONEY, TotalWt MONEY,
    WtUnder05Pct MONEY, Wt05to10Pct MONEY, Wt10to15Pct MONEY, Wt15to20Pct MONEY,
    Wt20to25Pct MONEY, Wt25to30Pct MONEY, Wt30to35Pct MONEY, Wt35to40Pct MONEY, WtOver40Pct MONEY,
    NumberOfStems INT, AverageLength MONEY, LaminaSampleTime DATETIME, LaminaOnStemPct MONEY,
    FibreSampleTime DATETIME, FibreInScrapPct MONEY, LastUpdated DATETIME, UpdatedByID INT)");

  c.table("LABINFRAALYZER", R"(
    LABINFRAALYZERID INTEGER PRIMARY KEY AUTOINCREMENT, LabHeaderID INT, ProductionGradeId INT,
    LabSeason INT, SampleDateTime DATETIME, Shift INT, TestType VARCHAR(3), ByProductID INT,
    SampleType VARCHAR(3), SampleCount INT, RangeAmount VARCHAR(1), SampleRange INT,
    ContainerNumber INT, SampleOne VARCHAR(1), SampleOneNicPct MONEY, SampleOneSugPct MONEY,
    SampleOneMoistPct MONEY, SampleTwo VARCHAR(1), SampleTwoNicPct MONEY, SampleTwoSugPct MONEY,
    SampleTwoMoistPct MONEY, Temperature INT, InfNicPct MONEY, InfSugPct MONEY, InfMoistPct MONEY,
    InfOtherMoistPct MONEY, ResultCode VARCHAR(2), LastUpdated DATETIME, UpdatedByID INT)");

  c.table("LABMOISTURE", R"(
    LABMOISTUREID INTEGER PRIMARY KEY AUTOINCREMENT, LabHeaderID INT, ProductionGradeId INT,
    LabSeason INT, Shift INT, TestType VARCHAR(3), StemTypeID INT, ByProductID INT,
    SampleType VARCHAR(3), SampleCount INT, RangeAmount VARCHAR(1), SampleRange INT,
    ContainerNumber INT, CupNumber INT, TimeIn DATETIME, TimeOut DATETIME, QuickMoistPct MONEY,
    OvenMoistPct MONEY, ResultCode VARCHAR(2), LastUpdated DATETIME, UpdatedByID INT)");

  c.table("LABBIAS", R"(
    LABBIASID INTEGER PRIMARY KEY AUTOINCREMENT, ProductionGradeId INT, ByProductsTypeId INT,
    Nic MONEY, Sugar MONEY, Moisture MONEY)");

  c.table("LABFOREIGN", R"(
    LABFOREIGNID INTEGER PRIMARY KEY AUTOINCREMENT, LabHeaderID INT, ProductionGradeId INT,
    LabSeason INT, SampleDateTime DATETIME, Shift INT, TestType VARCHAR(3), StemTypeID INT,
    ByProductID INT, ContainerNumber INT, SampleWeight INT, Suckers INT, Stalk INT, Straw INT,
    Grass INT, Strings INT, Lint INT, Feathers INT, Paper INT, Plastic INT, Insulation INT,
    Foam INT, Rubber INT, Rocks INT, Wood INT, Hair INT, InsectOrCocoons INT, StainedLeaves INT,
    Fur INT, Wool INT, Metal INT, FruitOrNuts INT, Seed INT, Extra1 INT, Extra2 INT, Other1 INT,
    Other1Desc VARCHAR(20), Other2 INT, Other2Desc VARCHAR(20), Other3 INT,
    Other3Desc VARCHAR(20), SuckersWt MONEY, StalkWt MONEY, StrawWt MONEY, GrassWt MONEY,
    StringsWt MONEY, LintWt MONEY, FeathersWt MONEY, PaperWt MONEY, PlasticWt MONEY,
    InsulationWt MONEY, FoamWt MONEY, RubberWt MONEY, RocksWt MONEY, WoodWt MONEY, HairWt MONEY,
    InsectOrCocoonsWt MONEY, StainedLeavesWt MONEY, FurWt MONEY, WoolWt MONEY, MetalWt MONEY,
    FruitOrNutsWt MONEY, SeedWt MONEY, Extra1Wt MONEY, Extra2Wt MONEY, Other1Wt MONEY,
    Other2Wt MONEY, Other3Wt MONEY, Total MONEY, TotalWt MONEY, LastUpdated DATETIME,
    UpdatedByID INT, cbProductionBaleNTRMId INT)");

  c.table("LABADVICENOTE", R"(
    LABADVICENOTEID INTEGER PRIMARY KEY AUTOINCREMENT, AdviceNoteNum INT, NumberOfCases INT,
    CutOff VARCHAR(1))");

  // The production bales that foreign matter samples are tied to, as far as the view shows them.
  c.table("CBPRODUCTIONBALENTRM", R"(
    CBPRODUCTIONBALENTRMID INTEGER PRIMARY KEY AUTOINCREMENT, InternalCode VARCHAR(10),
    NTRMStatus VARCHAR(3), BlendWeight MONEY, BarCode VARCHAR(20))");

  // Containers on hold, as qsp_OnHoldCheck keeps them: one row per grade and container.
  c.table("ONHOLD", R"(
    ONHOLDID INTEGER PRIMARY KEY AUTOINCREMENT, ProductionGradeId INT, ContainerNumber INT,
    OnHoldType VARCHAR(3), UserID INT, HoldDate DATETIME, ScrapCode VARCHAR(10),
    StemCode VARCHAR(20))");

  // Headers with their company and production grade; deleted headers stay in the list.
  c.view("VLABWORKLIST", R"(
    SELECT h.LABHEADERID AS LabHeaderID, h.CompanyId, h.ProductionGradeId,
           h.LabSettingSnapshotID, h.StartDate, h.LabStatus, h.DeletedFlag, co.CompanyCode,
           co.CompanyName, p.ProductionGradeCode
    FROM LABHEADER h
    LEFT JOIN COMPANY co ON co.CompanyId = h.CompanyId
    LEFT JOIN PRODUCTIONGRADE p ON p.PRODUCTIONGRADEID = h.ProductionGradeId)");

  // Settings with their company and, where they have one, their production grade.
  c.view("VLABSETTINGLIST", R"(
    SELECT s.LABSETTINGID AS LabSettingID, s.ProductionGradeId, s.CompanyId, co.CompanyCode,
           co.CompanyName, p.ProductionGradeCode
    FROM LABSETTING s
    LEFT JOIN COMPANY co ON co.CompanyId = s.CompanyId
    LEFT JOIN PRODUCTIONGRADE p ON p.PRODUCTIONGRADEID = s.ProductionGradeId)");

  // Foreign matter samples beside the bale they were taken from.
  c.view("VLABFOREIGNBALE", R"(
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
    JOIN CBPRODUCTIONBALENTRM b ON b.CBPRODUCTIONBALENTRMID = f.cbProductionBaleNTRMId)");

  // Each hold with its grade, company and the latest packed sample of its container.
  c.view("VLABONHOLD", R"(
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
      WHERE x.ProductionGradeId = o.ProductionGradeId AND x.ContainerNumber = o.ContainerNumber))");

  // Packed samples of grades reported to China, beside the foreign matter weights of the same
  // header, grade and container.
  c.view("VLABPACKEDCHINAEXPORT", R"(
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
    WHERE pg.ChinaReporting = 'Y')");

  for (const char* table : {"LABPACKED", "LABDEGRADATION", "LABGREENMOISTURE"}) {
    c.statement(std::string("CREATE INDEX IF NOT EXISTS IX_") + table + "_SEASON ON " + table +
                " (LabSeason, SampleType)");
  }
  addLabProcedures(c);
}

}  // namespace vrdppo::embedded
