// The laboratory classes as the registry and their records show them: sizes, sources, member
// slots, key-name literals, list spellings and the rendering in which the classes differ.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "vrdppo/lab/advice.hpp"
#include "vrdppo/lab/degradation.hpp"
#include "vrdppo/lab/foreign.hpp"
#include "vrdppo/lab/green_moisture.hpp"
#include "vrdppo/lab/headers.hpp"
#include "vrdppo/lab/instruments.hpp"
#include "vrdppo/lab/packed.hpp"
#include "vrdppo/lab/settings.hpp"
#include "vrdppo/registry.hpp"
#include "vrdppo/render.hpp"
#include "vrdppo/text.hpp"

using namespace vrdppo;

namespace {

struct Shape {
  const char* name;
  const char* source;
  int bytes;
  int chars;
  const char16_t* keyName;  // empty for a view
  const char* lTop;         // "optional" or "required"
  std::vector<std::string> publicMembers;
};

const std::vector<std::string> kContract = {"GetState", "Load", "Commit", "Delete",
                                            "CriteriaDelete"};
std::vector<std::string> with(std::vector<std::string> extra) {
  std::vector<std::string> all = kContract;
  all.insert(all.end(), extra.begin(), extra.end());
  return all;
}
const std::vector<std::string> kView = {"GetState", "Load"};

const std::vector<Shape> kShapes = {
    {"cLabHeaderPersist", "LABHEADER", 132, 123, u"LabHeaderID", "optional",
     with({"qsp_LabCreateIntermediateNotes", "DeleteIntermediateNotes", "LockHeader",
           "ReleaseHeader"})},
    {"cvLabWorkListPersist", "VLABWORKLIST", 312, 175, u"", "optional", kView},
    {"cLabSettingPersist", "LABSETTING", 1784, 1011, u"LabSettingID", "optional", kContract},
    {"cLabSettingSnapshotPersist", "LABSETTINGSNAPSHOT", 1784, 1011, u"LabSettingSnapshotID",
     "optional", kContract},
    {"cvLabSettingListPersist", "VLABSETTINGLIST", 292, 151, u"", "optional", kView},
    {"cLabPackedPersist", "LABPACKED", 540, 520, u"LabPackedID", "required",
     with({"qsp_OnHoldCheck", "qsp_ContainerPrized", "LabAddPacked", "LabRemovePacked",
           "CreateAdviceNotes", "DeleteAdviceNotes", "SyncAdviceNotes"})},
    {"cLabPackedSumPersist", "LABPACKEDSUM", 44, 30, u"LabPackedSumID", "required", kContract},
    {"cLabDegradationPersist", "LABDEGRADATION", 384, 365, u"LabDegradationID", "optional",
     with({"LabAddDegradation", "LabRemoveDegradation", "qsp_OnHoldCheck", "qsp_ContainerPrized"})},
    {"cLabDegSumPersist", "LABDEGSUM", 40, 27, u"LabDegSumID", "required", kContract},
    {"cLabGreenMoisturePersist", "LABGREENMOISTURE", 1108, 1093, u"LabGreenMoistureID", "required",
     kContract},
    {"cLabGreenMoistSumPersist", "LABGREENMOISTSUM", 52, 34, u"LabGreenMoistSumID", "required",
     kContract},
    {"cLabStemLengthPersist", "LABSTEMLENGTH", 300, 305, u"LabStemLengthID", "optional",
     with({"LabAddStemLength", "LabRemoveDegradation"})},
    {"cLabInfraalyzerPersist", "LABINFRAALYZER", 208, 184, u"LabInfraalyzerID", "optional",
     with({"LabAddInfraalyzer", "LabRemoveInfraalyzer"})},
    {"cLabMoisturePersist", "LABMOISTURE", 148, 138, u"LabMoistureID", "optional", kContract},
    {"cLabBiasPersist", "LABBIAS", 72, 53, u"LabBiasID", "required", kContract},
    {"cLabForeignPersist", "LABFOREIGN", 572, 501, u"LabForeignID", "required", kContract},
    {"cvLabForeignBalePersist", "VLABFOREIGNBALE", 648, 542, u"", "required", kView},
    {"cLabAdviceNotePersist", "LABADVICENOTE", 44, 28, u"LabAdviceNoteID", "optional",
     with({"qsp_LabSyncAdvice"})},
    {"cvLabOnHoldPersist", "VLABONHOLD", 424, 233, u"", "optional", kView},
    {"cvLabPackedChinaExportPersist", "VLABPACKEDCHINAEXPORT", 320, 307, u"", "required", kView},
};

class LabShape : public ::testing::TestWithParam<Shape> {};

}  // namespace

TEST_P(LabShape, RegisteredWithItsRecordSlotsAndKeyName) {
  const Shape& s = GetParam();
  const ClassInfo* info = registry::find(s.name);
  ASSERT_NE(info, nullptr);
  EXPECT_EQ(info->source, s.source);
  EXPECT_EQ(info->layout->bytes, s.bytes);
  EXPECT_EQ(info->layout->stateChars, s.chars);

  std::vector<std::string> publicMembers;
  for (const auto& m : info->members) {
    if (m.isPublic) publicMembers.push_back(m.name);
  }
  EXPECT_EQ(publicMembers, s.publicMembers);
  // The contract's twelve slots (six of a list view) come first, the class's own behind.
  const int contractSlots = info->isView ? 6 : 12;
  for (std::size_t i = kContract.size(); i < s.publicMembers.size(); ++i) {
    EXPECT_EQ(info->member(s.publicMembers[i])->dispatchId,
              kFirstDispatchId + contractSlots + static_cast<int>(i - kContract.size()))
        << s.publicMembers[i];
  }

  const MemberInfo* load = info->member("Load");
  ASSERT_EQ(load->args.size(), 3u);
  EXPECT_EQ(load->args[2].optional, std::string(s.lTop) == "optional");

  auto o = registry::create(s.name);
  initialiseRecord(o->layout(), o->recordBytes());
  const std::u16string state = o->GetState();
  const auto& t = info->layout->trailing;
  const std::u16string key(s.keyName);
  const std::u16string trailing = state.substr(t.offset / 2, t.length);
  EXPECT_EQ(std::u16string(trimBlanks(trailing)), key);
}

INSTANTIATE_TEST_SUITE_P(Lab, LabShape, ::testing::ValuesIn(kShapes),
                         [](const auto& p) { return std::string(p.param.name); });

namespace {

// What FieldValue gives for a column of a freshly initialised record (numbers 0, dates
// 1900/01/01, strings blank), by its render code.
std::u16string initialText(const std::string& code) {
  if (code == "L" || code == "C") return u"0";
  if (code == "T") return u"'1900/01/01 00:00:00'";
  if (code == "S") return u"''";
  return u"Null";  // L0, C0, T0, S0
}

struct Rendering {
  const char* cls;
  const char16_t* column;  // as the lists write it
  const char* code;
};

// The opening columns side by side, as the sample classes render them, and the columns where a
// class departs from its neighbours.
const std::vector<Rendering> kRenderings = {
    // LabHeaderID, SampleDateTime, Shift, TestType, StemTypeID, ByProductID, SampleType,
    // SampleCount, RangeAmount, SampleRange, ContainerNumber
    {"cLabPackedPersist", u"LabHeaderID", "L0"},
    {"cLabPackedPersist", u"SampleDateTime", "T"},
    {"cLabPackedPersist", u"Shift", "L"},
    {"cLabPackedPersist", u"TestType", "S"},
    {"cLabPackedPersist", u"StemTypeID", "L0"},
    {"cLabPackedPersist", u"ByProductID", "L0"},
    {"cLabPackedPersist", u"SampleType", "S"},
    {"cLabPackedPersist", u"SampleCount", "L"},
    {"cLabPackedPersist", u"RangeAmount", "S0"},
    {"cLabPackedPersist", u"SampleRange", "L0"},
    {"cLabPackedPersist", u"ContainerNumber", "L"},
    {"cLabDegradationPersist", u"LabHeaderID", "L0"},
    {"cLabDegradationPersist", u"SampleDateTime", "T0"},
    {"cLabDegradationPersist", u"Shift", "L0"},
    {"cLabDegradationPersist", u"TestType", "S"},
    {"cLabDegradationPersist", u"CaseType", "S"},
    {"cLabDegradationPersist", u"StemTypeID", "L0"},
    {"cLabDegradationPersist", u"ByProductID", "L0"},
    {"cLabDegradationPersist", u"SampleCount", "L"},
    {"cLabDegradationPersist", u"RangeAmount", "S0"},
    {"cLabDegradationPersist", u"SampleRange", "L0"},
    {"cLabDegradationPersist", u"ContainerNumber", "L0"},
    {"cLabDegradationPersist", u"StemInLamCount", "L"},
    {"cLabDegradationPersist", u"SampleWeight", "C"},
    {"cLabStemLengthPersist", u"LabHeaderID", "L0"},
    {"cLabStemLengthPersist", u"SampleDateTime", "T"},
    {"cLabStemLengthPersist", u"LaminaSampleTime", "T"},
    {"cLabStemLengthPersist", u"FibreSampleTime", "T"},
    {"cLabStemLengthPersist", u"Shift", "L"},
    {"cLabStemLengthPersist", u"StemTypeID", "L"},
    {"cLabStemLengthPersist", u"SampleType", "S"},
    {"cLabStemLengthPersist", u"RangeAmount", "S0"},
    {"cLabStemLengthPersist", u"SampleRange", "L0"},
    {"cLabStemLengthPersist", u"ContainerNumber", "L0"},
    {"cLabInfraalyzerPersist", u"LabHeaderID", "L0"},
    {"cLabInfraalyzerPersist", u"SampleDateTime", "T"},
    {"cLabInfraalyzerPersist", u"Shift", "L"},
    {"cLabInfraalyzerPersist", u"TestType", "S"},
    {"cLabInfraalyzerPersist", u"ByProductID", "L0"},
    {"cLabInfraalyzerPersist", u"ContainerNumber", "L0"},
    {"cLabInfraalyzerPersist", u"Temperature", "L"},
    {"cLabMoisturePersist", u"LabHeaderID", "L0"},
    {"cLabMoisturePersist", u"TimeIn", "T"},
    {"cLabMoisturePersist", u"TimeOut", "T"},
    {"cLabMoisturePersist", u"Shift", "L"},
    {"cLabMoisturePersist", u"StemTypeID", "L0"},
    {"cLabMoisturePersist", u"ContainerNumber", "L0"},
    {"cLabMoisturePersist", u"CupNumber", "L"},
    {"cLabForeignPersist", u"LabHeaderID", "L"},
    {"cLabForeignPersist", u"SampleDateTime", "T"},
    {"cLabForeignPersist", u"StemTypeID", "L0"},
    {"cLabForeignPersist", u"ContainerNumber", "L"},
    {"cLabForeignPersist", u"Other1", "L"},
    {"cLabForeignPersist", u"Other1Desc", "S0"},
    {"cLabForeignPersist", u"SuckersWt", "C0"},
    {"cLabForeignPersist", u"StalkWt", "C"},
    {"cLabForeignPersist", u"TotalWt", "C"},
    {"cLabForeignPersist", u"cbProductionBaleNTRMId", "L0"},
    {"cLabGreenMoisturePersist", u"LabHeaderID", "L0"},
    {"cLabGreenMoisturePersist", u"SampleDateTime", "T"},
    {"cLabGreenMoisturePersist", u"SampleType", "S"},
    {"cLabGreenMoisturePersist", u"LaminaMoistcount", "L"},
    {"cLabGreenMoisturePersist", u"Redryer2EndCount", "L"},
    {"cLabGreenMoisturePersist", u"LastUpdated", "T0"},
    {"cLabGreenMoisturePersist", u"UpdatedByID", "L0"},
    {"cLabBiasPersist", u"ProductionGradeID", "L0"},
    {"cLabBiasPersist", u"ByProductsTypeID", "L0"},
    {"cLabBiasPersist", u"Nic", "C"},
    {"cLabBiasPersist", u"Sugar", "C0"},
    {"cLabBiasPersist", u"Moisture", "C0"},
    {"cLabSettingPersist", u"ProductionGradeID", "L0"},
    {"cLabSettingPersist", u"GrnTotStemTgt", "C"},
    {"cLabSettingPersist", u"TotStemTarget", "C0"},
    {"cLabSettingPersist", u"GrnLabel1", "S0"},
    {"cLabSettingPersist", u"GreenDegradation", "S"},
    {"cLabSettingPersist", u"StemDegradation", "S0"},
    {"cLabSettingPersist", u"PackedScrap", "S0"},
    {"cLabSettingPersist", u"LaminaOnStem", "S"},
    {"cLabSettingPersist", u"GreenStemMoisture", "S0"},
    {"cLabSettingPersist", u"ForeignMatterMinutes", "L0"},
    {"cLabSettingSnapshotPersist", u"ScrapMoistureRerun", "C0"},
    {"cLabHeaderPersist", u"CompanyID", "L"},
    {"cLabHeaderPersist", u"ProductionRunID", "L0"},
    {"cLabHeaderPersist", u"EndDate", "T0"},
    {"cLabHeaderPersist", u"LabStatus", "S0"},
    {"cLabHeaderPersist", u"DeletedFlag", "S"},
    {"cLabHeaderPersist", u"ForeignCount", "L0"},
    {"cLabAdviceNotePersist", u"AdviceNoteNum", "L"},
    {"cLabAdviceNotePersist", u"CutOff", "S"},
    {"cLabPackedSumPersist", u"ParentID", "L"},
    {"cLabGreenMoistSumPersist", u"SumType", "L"},
};

}  // namespace

TEST(LabRendering, EachColumnRendersItsInitialValueByItsCode) {
  for (const auto& r : kRenderings) {
    auto o = registry::create(r.cls);
    initialiseRecord(o->layout(), o->recordBytes());
    auto& table = static_cast<TableObject&>(*o);
    EXPECT_EQ(table.FieldValue(r.column), initialText(r.code))
        << r.cls << "." << toUtf8(r.column) << " " << r.code;
  }
}

TEST(LabRendering, DatesKeepTheirSecondsAndTheDefaultDayIsNullOnlyUnderT0) {
  cLabDegradationPersist deg;
  cLabPackedPersist packed;
  initialiseRecord(deg.layout(), deg.recordBytes());
  initialiseRecord(packed.layout(), packed.recordBytes());
  deg.record().SampleDateTime = makeDate(1900, 1, 1, 14, 30);
  packed.record().SampleDateTime = makeDate(1900, 1, 1, 14, 30);
  EXPECT_EQ(deg.FieldValue(u"SampleDateTime"), u"Null");
  EXPECT_EQ(packed.FieldValue(u"SampleDateTime"), u"'1900/01/01 14:30:00'");
  deg.record().SampleDateTime = makeDate(2019, 3, 7, 14, 5, 9);
  EXPECT_EQ(deg.FieldValue(u"SampleDateTime"), u"'2019/03/07 14:05:09'");
}

TEST(LabLists, WriteSpellingsAndOrdersAreTheClassesOwn) {
  cLabHeaderPersist header;
  EXPECT_EQ(header.InsertFields(),
            u"CompanyID, ProductionGradeID, LabSettingSnapshotID, ProductionRunID, StartDate, "
            u"StartShift, EndDate, EndShift, LabStatus, DeletedFlag, GreenDegCount, StripDegCount, "
            u"ScrapDegCount, StemDegCount, PackedStripCount, PackedStemCount, PackedScrapCount, "
            u"GreenMoistureCount, ExitSiloCount, ForeignCount");
  cvLabWorkListPersist work;
  EXPECT_EQ(work.SelectFields(),
            u"LabHeaderID, CompanyID, ProductionGradeID, LabSettingSnapshotID, StartDate, "
            u"LabStatus, DeletedFlag, CompanyCode, CompanyName, ProductionGradeCode");
  cvLabSettingListPersist settings;
  EXPECT_EQ(settings.SelectFields(),
            u"LabSettingID, ProductionGradeID, CompanyID, CompanyCode, CompanyName, "
            u"ProductionGradeCode");
  cLabBiasPersist bias;
  EXPECT_EQ(bias.SelectFields(),
            u"LabBiasID, ProductionGradeID, ByProductsTypeID, Nic, Sugar, Moisture");
  cLabAdviceNotePersist advice;
  EXPECT_EQ(advice.InsertFields(), u"AdviceNoteNum, NumberOfCases, CutOff");

  // The snapshot writes the setting's 93 columns and differs only in its key.
  cLabSettingPersist setting;
  cLabSettingSnapshotPersist snapshot;
  EXPECT_EQ(snapshot.InsertFields(), setting.InsertFields());
  EXPECT_EQ(snapshot.SelectFields().substr(0, 22), u"LabSettingSnapshotID, ");
  EXPECT_EQ(snapshot.SelectFields().substr(20), setting.SelectFields().substr(12));
  EXPECT_EQ(setting.InsertFields().substr(0, 29), u"CompanyID, ProductionGradeID,");

  for (const std::u16string& fields :
       {cLabPackedPersist().InsertFields(), cLabDegradationPersist().InsertFields(),
        cLabGreenMoisturePersist().InsertFields(), cLabForeignPersist().InsertFields()}) {
    EXPECT_NE(fields.find(u"ProductionGradeID, LabSeason"), std::u16string::npos);
  }
  EXPECT_NE(cLabGreenMoisturePersist().InsertFields().find(u"LaminaMoistcount, "),
            std::u16string::npos);
}

TEST(LabLists, TheViewsKeepTheirCrossedOrders) {
  const std::u16string bale = cvLabForeignBalePersist().SelectFields();
  EXPECT_EQ(bale.substr(0, 77),
            u"InternalCode, NTRMStatus, cbProductionBaleNTRMId, LabForeignID, LabHeaderID, ");
  EXPECT_NE(bale.find(u"SampleDateTime, TestType, Shift, "), std::u16string::npos);
  EXPECT_NE(bale.find(u"Strings, Feathers, Lint, Paper"), std::u16string::npos);
  EXPECT_NE(bale.find(u"StringsWt, LintWt, FeathersWt, PaperWt"), std::u16string::npos);
  EXPECT_NE(bale.find(u"UpdatedByID, BlendWeight, BarCode"), std::u16string::npos);

  const std::u16string export_ = cvLabPackedChinaExportPersist().SelectFields();
  EXPECT_NE(export_.find(u"WoodWt, Extra1Wt, Extra2Wt, Other1Wt, Other2Wt, HairWt"),
            std::u16string::npos);
  EXPECT_NE(export_.find(u"SeedWt, Other3Wt, ProductionGradeID, LabPackedID, LabForeignID, "
                         u"LabHeaderID"),
            std::u16string::npos);
  EXPECT_EQ(cvLabOnHoldPersist().SelectFields().substr(0, 52),
            u"CompanyCode, CompanyName, ProductionGradeCode, Grade");
}

TEST(LabRecords, TheBaleViewPutsFeathersWhereTheTableHasLint) {
  // The table's Lint sits at 72 and the view's prefix moves everything on by 32.
  EXPECT_EQ(offsetof(LabForeignRecord, Lint) + 32, offsetof(LabForeignBaleRecord, Feathers));
  EXPECT_EQ(offsetof(LabForeignBaleRecord, Lint), offsetof(LabForeignBaleRecord, Feathers) + 4);
}
