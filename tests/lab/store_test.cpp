// The laboratory classes end to end on a real embedded store: every view against what was
// written, the header lock, the notes and the calls that the store's procedures answer (every
// table's round trip is the one of all tables).
#include <cstdlib>
#include <ctime>
#include <optional>
#include <string>
#include <vector>

#include "endtoend/store_fixture.hpp"
#include "vrdppo/buffer.hpp"
#include "vrdppo/error.hpp"
#include "vrdppo/lab/advice.hpp"
#include "vrdppo/lab/degradation.hpp"
#include "vrdppo/lab/foreign.hpp"
#include "vrdppo/lab/green_moisture.hpp"
#include "vrdppo/lab/headers.hpp"
#include "vrdppo/lab/instruments.hpp"
#include "vrdppo/lab/packed.hpp"
#include "vrdppo/lab/settings.hpp"
#include "vrdppo/registry.hpp"

using namespace vrdppo;
using namespace vrdppo::testing;

namespace {

class LabWorld : public StoreTest {
 protected:
  void SetUp() override {
    StoreTest::SetUp();
    company = insert(
        u"INSERT INTO COMPANY (CompanyCode, CompanyName, DeletedFlag) VALUES "
        u"('C1', 'Leaf Company', 'N')");
    otherCompany = insert(
        u"INSERT INTO COMPANY (CompanyCode, CompanyName, DeletedFlag) VALUES "
        u"('C2', 'Other', 'N')");
    const Long g1 = insert(u"INSERT INTO GRADE (GradeCode, CompanyId) VALUES ('GR1', " +
                           longText(company) + u")");
    const Long g2 = insert(u"INSERT INTO GRADE (GradeCode, CompanyId) VALUES ('GR2', " +
                           longText(otherCompany) + u")");
    grade = insert(
        u"INSERT INTO PRODUCTIONGRADE (ProductionGradeCode, GradeId, ChinaReporting) "
        u"VALUES ('PA', " +
        longText(g1) + u", 'Y')");
    secondGrade =
        insert(u"INSERT INTO PRODUCTIONGRADE (ProductionGradeCode, GradeId) VALUES ('PB', " +
               longText(g1) + u")");
    otherGrade =
        insert(u"INSERT INTO PRODUCTIONGRADE (ProductionGradeCode, GradeId) VALUES ('PC', " +
               longText(g2) + u")");
  }

  Long header() {
    cLabHeaderPersist h;
    EXPECT_TRUE(h.Commit(newState<cLabHeaderPersist>([&](LabHeaderRecord& r) {
                           r.CompanyId = company;
                           r.ProductionGradeId = grade;
                           r.LabSettingSnapshotID = 1;
                           r.StartDate = makeDate(2019, 3, 7, 6);
                           r.StartShift = 1;
                           put(r.LabStatus, u"OP");
                           put(r.DeletedFlag, u"N");
                         }),
                         connect));
    return h.record().LabHeaderID;
  }

  Long packed(Long grade_, Long season, std::u16string_view type, Long header_ = 0,
              Long container = 120) {
    cLabPackedPersist p;
    EXPECT_TRUE(p.Commit(newState<cLabPackedPersist>([&](LabPackedRecord& r) {
                           r.LabHeaderID = header_;
                           r.ProductionGradeId = grade_;
                           r.LabSeason = season;
                           r.SampleDateTime = makeDate(2019, 3, 10, 8);
                           r.ContainerNumber = container;
                           put(r.SampleType, type);
                           put(r.ResultCode, u"OK");
                           r.Temperature = Currency{312500};
                         }),
                         connect));
    return p.record().LabPackedID;
  }

  Long degradation(Long grade_, Long season, std::u16string_view type, Long header_ = 0) {
    cLabDegradationPersist d;
    EXPECT_TRUE(d.Commit(newState<cLabDegradationPersist>([&](LabDegradationRecord& r) {
                           r.LabHeaderID = header_;
                           r.ProductionGradeId = grade_;
                           r.LabSeason = season;
                           r.SampleDateTime = makeDate(2019, 3, 10, 9);
                           put(r.SampleType, type);
                         }),
                         connect));
    return d.record().LabDegradationID;
  }

  Long greenMoisture(Long grade_, Long season, std::u16string_view type) {
    cLabGreenMoisturePersist g;
    EXPECT_TRUE(g.Commit(newState<cLabGreenMoisturePersist>([&](LabGreenMoistureRecord& r) {
                           r.ProductionGradeId = grade_;
                           r.LabSeason = season;
                           r.SampleDateTime = makeDate(2019, 3, 10, 10);
                           put(r.SampleType, type);
                         }),
                         connect));
    return g.record().LabGreenMoistureID;
  }

  std::u16string typeOf(const std::u16string& table, Long key) {
    dbHelp::ConnectString = connect;
    const auto rs = dbHelp::OpenRecordset(u"SELECT SampleType FROM " + table + u" WHERE " + table +
                                          u"ID = " + longText(key));
    return toString(rs->Fields(std::size_t{0}));
  }

  Long company = 0, otherCompany = 0, grade = 0, secondGrade = 0, otherGrade = 0;
};

}  // namespace

TEST_F(LabWorld, TheWorkListAndTheSettingListJoinCompanyAndGrade) {
  const Long h = header();
  cvLabWorkListPersist work;
  const auto rows =
      rowsOf<cvLabWorkListPersist>(work.Load(u"LabHeaderID = " + longText(h), connect));
  ASSERT_EQ(rows.size(), 1u);
  EXPECT_EQ(rows[0].CompanyId, company);
  EXPECT_EQ(rows[0].ProductionGradeId, grade);
  EXPECT_EQ(double{rows[0].StartDate.days}, makeDate(2019, 3, 7, 6).days);
  EXPECT_EQ(text(rows[0].LabStatus), u"OP");
  EXPECT_EQ(text(rows[0].CompanyCode), u"C1");
  EXPECT_EQ(text(rows[0].CompanyName), u"Leaf Company");
  EXPECT_EQ(text(rows[0].ProductionGradeCode), u"PA");

  cLabSettingPersist setting;
  ASSERT_TRUE(setting.Commit(newState<cLabSettingPersist>([&](LabSettingRecord& r) {
                               r.CompanyId = company;
                               put(r.GrnLabel1, u"Leaf's top");
                             }),
                             connect));
  cvLabSettingListPersist list;
  const auto settings = rowsOf<cvLabSettingListPersist>(list.Load(u"", connect));
  ASSERT_EQ(settings.size(), 1u);
  EXPECT_EQ(settings[0].LabSettingID, setting.record().LabSettingID);
  EXPECT_EQ(settings[0].ProductionGradeId, 0);  // company-wide: Null reads as 0
  EXPECT_EQ(text(settings[0].CompanyName), u"Leaf Company");
  EXPECT_EQ(text(settings[0].ProductionGradeCode), u"");
  // A setting's state inserts as a snapshot once its key is 0.
  cLabSettingSnapshotPersist snapshot;
  LabSettingRecord copy = setting.record();
  copy.LabSettingID = 0;
  snapshot.record() = copy;
  ASSERT_TRUE(snapshot.Commit(snapshot.GetState(), connect));
  const auto snaps = rowsOf<cLabSettingSnapshotPersist>(snapshot.Load(u"", connect));
  ASSERT_EQ(snaps.size(), 1u);
  EXPECT_EQ(text(snaps[0].GrnLabel1), u"Leaf's top");
}

TEST_F(LabWorld, AHeadersLockIsGrantedOnceAndReleased) {
  const Long h = header();
  cLabHeaderPersist first, second;
  EXPECT_TRUE(first.LockHeader(connect, h));
  EXPECT_FALSE(second.LockHeader(connect, h));
  EXPECT_EQ(scalar(u"SELECT ForeignCount FROM LABHEADER WHERE LABHEADERID = " + longText(h)), 1);
  first.ReleaseHeader(connect, h);
  EXPECT_TRUE(second.LockHeader(connect, h));
  second.ReleaseHeader(connect, 9999);  // no such header: nothing happens
  EXPECT_FALSE(first.LockHeader(connect, 9999));
}

TEST_F(LabWorld, IntermediateNotesAreMadeAndWithdrawnByCompanyOrGrade) {
  packed(grade, 2019, u"PKS");
  packed(secondGrade, 2019, u"PKS");
  cLabHeaderPersist h;
  ASSERT_TRUE(
      h.qsp_LabCreateIntermediateNotes(u"", connect, 2019, company, u"2019/03/01", u"2019/03/31"));
  EXPECT_EQ(scalar(u"SELECT COUNT(*) FROM LABPACKED WHERE SampleType = 'ITD'"), 2);

  const Long mine = packed(grade, 2019, u"ISD");
  const Long mineOtherGrade = packed(secondGrade, 2019, u"ITD");
  const Long lastSeason = packed(grade, 2018, u"ITD");
  const Long otherCompanys = packed(otherGrade, 2019, u"ITD");
  const Long ordinary = packed(grade, 2019, u"PKS");
  const Long deg = degradation(grade, 2019, u"ITD");
  const Long green = greenMoisture(grade, 2019, u"ISD");

  h.DeleteIntermediateNotes(connect, 2019, otherCompany, Variant(grade));
  EXPECT_EQ(typeOf(u"LabPacked", mine), u"999");
  EXPECT_EQ(typeOf(u"LabPacked", mineOtherGrade), u"ITD");
  EXPECT_EQ(typeOf(u"LabDegradation", deg), u"999");
  EXPECT_EQ(typeOf(u"LabGreenMoisture", green), u"999");
  EXPECT_EQ(typeOf(u"LabPacked", otherCompanys), u"ITD");

  h.DeleteIntermediateNotes(connect, 2019, company);
  EXPECT_EQ(typeOf(u"LabPacked", mineOtherGrade), u"999");
  EXPECT_EQ(typeOf(u"LabPacked", lastSeason), u"ITD");
  EXPECT_EQ(typeOf(u"LabPacked", otherCompanys), u"ITD");
  EXPECT_EQ(typeOf(u"LabPacked", ordinary), u"PKS");
  EXPECT_EQ(scalar(u"SELECT COUNT(*) FROM LABPACKED WHERE SampleType IN ('ITD','ISD') AND "
                   u"LabSeason = 2019 AND ProductionGradeId <> " +
                   longText(otherGrade)),
            0);

  EXPECT_THROW(h.DeleteIntermediateNotes(connect, 2019, company, Variant::null()), Error);
}

TEST_F(LabWorld, AdviceNotesAreCreatedWithdrawnAndSynchronised) {
  const Long p1 = packed(grade, 2019, u"PKS");
  packed(grade, 2019, u"PKS");
  const Long d1 = degradation(grade, 2019, u"DGS");
  greenMoisture(secondGrade, 2019, u"GMS");
  const Long foreignP = packed(otherGrade, 2019, u"PKS");
  cLabPackedPersist p;
  ASSERT_TRUE(p.CreateAdviceNotes(u"", connect, company, 2019));
  EXPECT_EQ(scalar(u"SELECT COUNT(*) FROM LABPACKED WHERE SampleType = 'ADA'"), 1);
  EXPECT_EQ(scalar(u"SELECT COUNT(*) FROM LABPACKEDSUM"), 2);
  EXPECT_EQ(scalar(u"SELECT COUNT(*) FROM LABDEGSUM"), 1);
  EXPECT_EQ(scalar(u"SELECT COUNT(*) FROM LABGREENMOISTSUM"), 1);
  cLabAdviceNotePersist notes;
  auto advice = rowsOf<cLabAdviceNotePersist>(notes.Load(u"", connect));
  ASSERT_EQ(advice.size(), 1u);
  EXPECT_EQ(advice[0].AdviceNoteNum, 1);
  EXPECT_EQ(advice[0].NumberOfCases, 2);
  EXPECT_EQ(text(advice[0].CutOff), u"N");

  p.SyncAdviceNotes(connect, 2019);
  advice = rowsOf<cLabAdviceNotePersist>(notes.Load(u"", connect));
  EXPECT_EQ(text(advice[0].CutOff), u"Y");
  // The bare call on a connection of its own reaches the same procedure.
  ASSERT_TRUE(notes.Commit(newState<cLabAdviceNotePersist>([](LabAdviceNoteRecord& r) {
                             r.AdviceNoteNum = 9;
                             put(r.CutOff, u"N");
                           }),
                           connect));
  dbHelp::ConnectString = u"DSN=elsewhere";
  notes.qsp_LabSyncAdvice(connect);
  EXPECT_EQ(dbHelp::ConnectString, u"DSN=elsewhere");
  EXPECT_EQ(scalar(u"SELECT COUNT(*) FROM LABADVICENOTE WHERE CutOff = 'Y'"), 2);
  notes.qsp_LabSyncAdvice(u"Provider=vrdppo.Embedded");  // no Data Source: swallowed

  p.DeleteAdviceNotes(connect, company, 2019);
  EXPECT_EQ(scalar(u"SELECT COUNT(*) FROM LABPACKEDSUM"), 0);
  EXPECT_EQ(scalar(u"SELECT COUNT(*) FROM LABDEGSUM"), 0);
  EXPECT_EQ(scalar(u"SELECT COUNT(*) FROM LABGREENMOISTSUM"), 0);
  EXPECT_EQ(scalar(u"SELECT COUNT(*) FROM LABPACKED WHERE SampleType IN ('ADA','ADS')"), 0);
  EXPECT_EQ(scalar(u"SELECT COUNT(*) FROM LABPACKED WHERE SampleType = '999'"), 1);
  EXPECT_EQ(typeOf(u"LabPacked", p1), u"PKS");
  EXPECT_EQ(typeOf(u"LabDegradation", d1), u"DGS");
  EXPECT_EQ(typeOf(u"LabPacked", foreignP), u"PKS");
  EXPECT_NO_THROW(p.DeleteAdviceNotes(connect, company, 2019));  // nothing left: no change
}

TEST_F(LabWorld, SamplesAreAddedToAndTakenFromTheirHeadersCounts) {
  const Long h = header();
  const Long p = packed(grade, 2019, u"PKS", h);
  const Long d = degradation(grade, 2019, u"DGS", h);
  const auto count = [&](const char16_t* column) {
    return scalar(std::u16string(u"SELECT COALESCE(") + column +
                  u", 0) FROM LABHEADER WHERE LABHEADERID = " + longText(h));
  };
  cLabPackedPersist packs;
  EXPECT_TRUE(packs.LabAddPacked(u"", connect, p));
  EXPECT_TRUE(packs.LabAddPacked(u"", connect, p));
  EXPECT_EQ(count(u"PackedStripCount"), 2);
  EXPECT_TRUE(packs.LabRemovePacked(u"", connect, p));
  EXPECT_TRUE(packs.LabRemovePacked(u"", connect, p));
  EXPECT_FALSE(packs.LabRemovePacked(u"", connect, p));  // nothing left to take out
  EXPECT_EQ(count(u"PackedStripCount"), 0);
  EXPECT_FALSE(packs.LabAddPacked(u"", connect, 9999));

  cLabDegradationPersist degs;
  EXPECT_TRUE(degs.LabAddDegradation(u"", connect, d));
  EXPECT_EQ(count(u"StripDegCount"), 1);
  EXPECT_TRUE(degs.LabRemoveDegradation(u"", connect, d));
  EXPECT_TRUE(degs.LabRemoveDegradation(u"", connect, 9999));  // gone already: -2

  cLabStemLengthPersist stems;
  ASSERT_TRUE(stems.Commit(newState<cLabStemLengthPersist>([&](LabStemLengthRecord& r) {
                             r.ProductionGradeId = grade;
                             r.LabSeason = 2019;
                           }),
                           connect));
  const Long s = stems.record().LabStemLengthID;
  EXPECT_TRUE(stems.LabAddStemLength(u"", connect, s));
  EXPECT_FALSE(stems.LabRemoveDegradation(u"", connect, 9999));  // -2 is no success here

  cLabInfraalyzerPersist inf;
  ASSERT_TRUE(inf.Commit(newState<cLabInfraalyzerPersist>(
                             [&](LabInfraalyzerRecord& r) { r.ProductionGradeId = grade; }),
                         connect));
  // Each call replaces the record by its sBuffer, so the key is kept aside first.
  const Long reading = inf.record().LabInfraalyzerID;
  EXPECT_TRUE(inf.LabAddInfraalyzer(u"", connect, reading));
  EXPECT_TRUE(inf.LabRemoveInfraalyzer(u"", connect, reading));
  EXPECT_FALSE(inf.LabAddInfraalyzer(u"", connect, 9999));
}

// A zone far from UTC for one test, so that a stamp taken in UTC shows.
class FarZone {
 public:
  FarZone() {
    if (const char* tz = std::getenv("TZ")) saved_ = tz;
    setenv("TZ", "VRD-5:45", 1);
    tzset();
  }
  FarZone(const FarZone&) = delete;
  FarZone& operator=(const FarZone&) = delete;
  ~FarZone() {
    if (saved_) {
      setenv("TZ", saved_->c_str(), 1);
    } else {
      unsetenv("TZ");
    }
    tzset();
  }

 private:
  std::optional<std::string> saved_;
};

// The procedures stamp holds and advice notes with the local time, as the server's GETDATE does.
TEST_F(LabWorld, StampsAreLocalTime) {
  const FarZone zone;
  packed(grade, 2019, u"PKS");
  cLabPackedPersist p;
  ASSERT_TRUE(p.CreateAdviceNotes(u"", connect, company, 2019));
  ASSERT_TRUE(p.qsp_OnHoldCheck(u"", connect, grade, 130, u"MOI", 4));
  const auto minutesAgo = [&](std::u16string_view column, std::u16string_view table) {
    return toLong(scalar(u"SELECT ABS(DATEDIFF(minute, " + std::u16string(column) +
                         u", GETDATE())) FROM " + std::u16string(table)));
  };
  EXPECT_LE(minutesAgo(u"HoldDate", u"ONHOLD WHERE ContainerNumber = 130"), 1);
  EXPECT_LE(minutesAgo(u"SampleDateTime", u"LABPACKED WHERE SampleType = 'ADA'"), 1);
}

TEST_F(LabWorld, HoldsPrizingForeignBalesAndTheExport) {
  const Long h = header();
  cLabPackedPersist packs;
  EXPECT_FALSE(packs.qsp_ContainerPrized(u"", connect, grade, 120));
  const Long p = packed(grade, 2019, u"PKS", h, 120);
  EXPECT_TRUE(packs.qsp_ContainerPrized(u"", connect, grade, 120));

  EXPECT_TRUE(packs.qsp_OnHoldCheck(u"", connect, grade, 120, u"MOI", 4));
  cvLabOnHoldPersist holds;
  auto onHold = rowsOf<cvLabOnHoldPersist>(holds.Load(u"", connect));
  ASSERT_EQ(onHold.size(), 1u);
  EXPECT_EQ(text(onHold[0].CompanyCode), u"C1");
  EXPECT_EQ(text(onHold[0].GradeCode), u"GR1");
  EXPECT_EQ(text(onHold[0].OnHoldType), u"MOI");
  EXPECT_EQ(onHold[0].LabHeaderID, h);
  EXPECT_EQ(onHold[0].ContainerNumber, 120);
  EXPECT_EQ(text(onHold[0].ResultCode), u"OK");
  EXPECT_EQ(double{onHold[0].SampleDateTime.days}, makeDate(2019, 3, 10, 8).days);
  cLabDegradationPersist degs;
  EXPECT_TRUE(degs.qsp_OnHoldCheck(u"", connect, grade, 121, u"DEG", 4));
  onHold = rowsOf<cvLabOnHoldPersist>(holds.Load(u"ContainerNumber = 121", connect));
  ASSERT_EQ(onHold.size(), 1u);
  EXPECT_EQ(double{onHold[0].SampleDateTime.days}, makeDate(1900, 1, 1).days);  // no sample
  EXPECT_TRUE(packs.qsp_OnHoldCheck(u"", connect, grade, 120, u" ", 4));        // lifted
  EXPECT_EQ(holds.Load(u"ContainerNumber = 120", connect).size(), 9u);

  const Long bale = insert(
      u"INSERT INTO CBPRODUCTIONBALENTRM (InternalCode, NTRMStatus, "
      u"BlendWeight, BarCode) VALUES ('B-1', 'CLN', 512.25, '0042')");
  cLabForeignPersist foreign;
  ASSERT_TRUE(foreign.Commit(newState<cLabForeignPersist>([&](LabForeignRecord& r) {
                               r.LabHeaderID = h;
                               r.ProductionGradeId = grade;
                               r.LabSeason = 2019;
                               r.ContainerNumber = 120;
                               r.SampleWeight = 500;
                               r.Lint = 2;
                               r.Feathers = 5;
                               r.LintWt = Currency{1500};
                               r.FeathersWt = Currency{2500};
                               r.Other3Wt = Currency{700};
                               put(r.Other1Desc, u"Twine");
                               r.cbProductionBaleNTRMId = bale;
                             }),
                             connect));
  cvLabForeignBalePersist bales;
  const auto b = rowsOf<cvLabForeignBalePersist>(bales.Load(u"", connect, 0));
  ASSERT_EQ(b.size(), 1u);
  EXPECT_EQ(text(b[0].InternalCode), u"B-1");
  EXPECT_EQ(b[0].cbProductionBaleNTRMId, bale);
  EXPECT_EQ(b[0].LabForeignID, foreign.record().LabForeignID);
  EXPECT_EQ(b[0].Lint, 2);
  EXPECT_EQ(b[0].Feathers, 5);
  EXPECT_EQ(std::int64_t{b[0].LintWt.raw}, 1500);
  EXPECT_EQ(text(b[0].Other1Desc), u"Twine");
  EXPECT_EQ(std::int64_t{b[0].BlendWeight.raw}, 5122500);
  EXPECT_EQ(text(b[0].BarCode), u"0042");

  cvLabPackedChinaExportPersist exports;
  const auto e = rowsOf<cvLabPackedChinaExportPersist>(exports.Load(u"", connect, 0));
  ASSERT_EQ(e.size(), 1u);
  EXPECT_EQ(e[0].LabPackedID, p);
  EXPECT_EQ(e[0].LabForeignID, foreign.record().LabForeignID);
  EXPECT_EQ(e[0].SampleWeight, 500);
  EXPECT_EQ(std::int64_t{e[0].Temperature.raw}, 312500);
  EXPECT_EQ(std::int64_t{e[0].FeathersWt.raw}, 2500);
  EXPECT_EQ(std::int64_t{e[0].Other3Wt.raw}, 700);
  EXPECT_EQ(e[0].LabHeaderID, h);
  // Grades not reported to China stay out of the export.
  EXPECT_EQ(exports.Load(u"ProductionGradeId = " + longText(secondGrade), connect, 0).size(), 9u);
}
