// The laboratory's operations beyond the contract, on a scripted provider: the statements to the
// character, the retried calls, the checks that read by position or by name, and the advice
// synchronisation on a connection of its own.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "support/class_cases.hpp"
#include "support/scripted_provider.hpp"
#include "vrdppo/dbhelp.hpp"
#include "vrdppo/error.hpp"
#include "vrdppo/lab/advice.hpp"
#include "vrdppo/lab/degradation.hpp"
#include "vrdppo/lab/headers.hpp"
#include "vrdppo/lab/instruments.hpp"
#include "vrdppo/lab/packed.hpp"
#include "vrdppo/registry.hpp"
#include "vrdppo/render.hpp"
#include "vrdppo/text.hpp"

using namespace vrdppo;
using vrdppo::testing::providerError;
using vrdppo::testing::ScriptedProvider;

namespace {

const std::u16string kConnect = u"DSN=lab";

std::int32_t numberOf(const std::function<void()>& f) {
  try {
    f();
  } catch (const Error& e) {
    return e.number();
  }
  return 0;
}

// Statements other than the gateway's own SET QUOTED_IDENTIFIER.
std::vector<std::u16string> sent(const ScriptedProvider& db) {
  std::vector<std::u16string> out;
  for (const auto& s : db.statements()) {
    if (s != u"SET QUOTED_IDENTIFIER OFF") out.push_back(s);
  }
  return out;
}

using LabOperations = vrdppo::testing::ScriptedTest;

const std::u16string kPackedNotes =
    u"update LabPacked set sampletype = '999' from labpacked inner join ProductionGrade on "
    u"ProductionGrade.productiongradeid = labpacked.ProductionGradeid inner join grade on "
    u"grade.gradeid = ProductionGrade.gradeid WHERE LabSeason = 2019 AND (SampleType = 'ITD' or "
    u"SampleType = 'ISD') AND ";
const std::u16string kDegradationNotes =
    u"update LabDegradation set sampletype = '999' from LabDegradation inner join "
    u"dbo.ProductionGrade on ProductionGrade.ProductionGradeID = LabDegradation.ProductionGradeID "
    u"inner join grade on grade.gradeid = ProductionGrade.gradeid WHERE LabSeason = 2019 AND "
    u"(SampleType = 'ITD' or SampleType = 'ISD') AND ";
const std::u16string kGreenNotes =
    u"update LabGreenMoisture set sampletype = '999' From LabGreenMoisture inner join "
    u"ProductionGrade on ProductionGrade.ProductionGradeID = LabGreenMoisture.ProductionGradeID "
    u"inner join grade on grade.gradeid = ProductionGrade.gradeid WHERE LabSeason = 2019 AND "
    u"(SampleType = 'ITD' or SampleType = 'ISD') AND ";

}  // namespace

TEST_F(LabOperations, IntermediateNotesAreMadeWithTheCallersDatesAsTheyStand) {
  cLabHeaderPersist header;
  EXPECT_TRUE(
      header.qsp_LabCreateIntermediateNotes(u"", kConnect, 2019, 3, u"2019/03/01", u"March 31"));
  EXPECT_EQ(sent(db), std::vector<std::u16string>{
                          u"EXEC qsp_LabCreateIntermediateNotes @p_Season= 2019, @p_CompanyID=3, "
                          u"@p_FromDate='2019/03/01', @p_ToDate='March 31'"});
  EXPECT_EQ(dbHelp::ConnectString, kConnect);
}

TEST_F(LabOperations, IntermediateNotesAreWithdrawnByCompanyOrByTheGivenGrade) {
  struct Case {
    const char* what;
    std::vector<Variant> args;  // after sConnect, lSeason and lCompanyID
    std::u16string selector;
  };
  const std::vector<Case> cases = {
      {"left out", {}, u" CompanyId = 3"},
      {"a grade, against the company",
       {Variant(std::int32_t{7})},
       u" ProductionGrade.ProductionGradeId = 7"},
      {"zero", {Variant(std::int32_t{0})}, u" ProductionGrade.ProductionGradeId = 0"},
      {"text", {Variant(u"12")}, u" ProductionGrade.ProductionGradeId = 12"},
      {"Null", {Variant::null()}, u" ProductionGrade.ProductionGradeId = "},
      {"Empty", {Variant()}, u" ProductionGrade.ProductionGradeId = "},
  };
  for (const auto& c : cases) {
    db.clear();
    auto header = registry::create("cLabHeaderPersist");
    std::vector<Variant> args{Variant(kConnect), Variant(std::int32_t{2019}),
                              Variant(std::int32_t{3})};
    args.insert(args.end(), c.args.begin(), c.args.end());
    registry::invoke(*header, "DeleteIntermediateNotes", args);
    EXPECT_EQ(sent(db), (std::vector<std::u16string>{kPackedNotes + c.selector,
                                                     kDegradationNotes + c.selector,
                                                     kGreenNotes + c.selector}))
        << c.what;
  }
}

TEST_F(LabOperations, AFailedWithdrawalKeepsWhatRanBeforeIt) {
  db.failExecute(u"update LabDegradation", providerError());
  cLabHeaderPersist header;
  EXPECT_NE(numberOf([&] { header.DeleteIntermediateNotes(kConnect, 2019, 3); }), 0);
  EXPECT_EQ(sent(db).size(), 2u);  // the packed withdrawal ran, the green one never did
}

TEST_F(LabOperations, TheLockIsGrantedOnlyByAOneInTheFirstColumn) {
  struct Case {
    Variant answer;
    bool granted;
  };
  for (const auto& c : {Case{Variant(std::int32_t{1}), true}, Case{Variant(std::int32_t{0}), false},
                        Case{Variant(std::int32_t{2}), false}, Case{Variant(1.0), true},
                        Case{Variant(Decimal{"1"}), true}}) {
    db.clear();
    db.answerRows(u"qsp_LabLockHeader", {u"Whatever", u"Other"}, {{c.answer, Variant(1)}}, 1);
    cLabHeaderPersist header;
    EXPECT_EQ(header.LockHeader(kConnect, 5), c.granted) << toUtf8(toString(c.answer));
    EXPECT_EQ(sent(db), std::vector<std::u16string>{u"EXEC qsp_LabLockHeader @p_LabHeaderId = 5"});
    EXPECT_EQ(db.handedOut().back()->State(), adStateClosed);
  }
}

TEST_F(LabOperations, TheLockRaisesOnNullOrNoRow) {
  cLabHeaderPersist header;
  db.answerRows(u"qsp_LabLockHeader", {u"Granted"}, {{Variant::null()}}, 1);
  EXPECT_EQ(numberOf([&] { header.LockHeader(kConnect, 5); }), err::kInvalidUseOfNull);
  db.answerRows(u"qsp_LabLockHeader", {u"Granted"}, {}, 1);
  EXPECT_EQ(numberOf([&] { header.LockHeader(kConnect, 5); }), err::kNoCurrentRecord);
}

TEST_F(LabOperations, ReleasingClearsForeignCount) {
  cLabHeaderPersist header;
  header.ReleaseHeader(kConnect, 5);
  EXPECT_EQ(sent(db), std::vector<std::u16string>{
                          u"UPDATE LabHeader SET ForeignCount = Null WHERE LabHeaderId = 5"});
}

namespace {

struct Retried {
  const char* cls;
  const char* member;
  std::u16string statement;  // for lID 7
  bool minusTwoSucceeds;
};

const std::vector<Retried> kRetried = {
    {"cLabPackedPersist", "LabAddPacked", u"EXEC qsp_LabAddPacked @p_PackedID= 7", false},
    {"cLabPackedPersist", "LabRemovePacked", u"EXEC qsp_LabRemovePacked @p_PackedID= 7", false},
    {"cLabDegradationPersist", "LabAddDegradation",
     u"EXEC qsp_LabAddDegradation @p_DegradationID= 7", false},
    {"cLabDegradationPersist", "LabRemoveDegradation",
     u"EXEC qsp_LabRemoveDegradation @p_DegradationID= 7", true},
    {"cLabStemLengthPersist", "LabAddStemLength",
     u"EXEC qsp_LabAddStemLength @p_LabStemLengthID= 7", false},
    // The stem length sample is removed through the degradation procedure, and -2 fails here.
    {"cLabStemLengthPersist", "LabRemoveDegradation",
     u"EXEC qsp_LabRemoveDegradation @p_DegradationID= 7", false},
    {"cLabInfraalyzerPersist", "LabAddInfraalyzer",
     u"EXEC qsp_LabAddInfraalyzer @p_InfraalyzerID= 7", false},
    {"cLabInfraalyzerPersist", "LabRemoveInfraalyzer",
     u"EXEC qsp_LabRemoveInfraalyzer @p_InfraalyzerID= 7", false},
};

}  // namespace

TEST_F(LabOperations, RetriedCallsRunUpToThreeTimesUntilTheirSuccessValue) {
  struct Answers {
    std::vector<Variant> firstColumn;
    bool result;
    std::size_t runs;
  };
  for (const auto& r : kRetried) {
    const std::vector<Answers> answers = {
        {{Variant(1), Variant(1), Variant(0)}, true, 3},
        {{Variant(1), Variant(1), Variant(1)}, false, 3},
        {{Variant(0)}, true, 1},
        {{Variant::null(), Variant(0)}, true, 2},  // a Null is a failed attempt
        // -2 succeeds only in the degradation class's own removal.
        r.minusTwoSucceeds ? Answers{{Variant(-2)}, true, 1}
                           : Answers{{Variant(-2), Variant(-2), Variant(-2)}, false, 3},
    };
    for (const auto& a : answers) {
      db.clear();
      for (const auto& v : a.firstColumn) db.answerRows(u"qsp_Lab", {u"Code"}, {{v}}, 1);
      auto o = registry::create(r.cls);
      const Variant result = registry::invoke(
          *o, r.member, std::vector<Variant>{Variant(u""), Variant(kConnect), Variant(7)});
      EXPECT_EQ(result, Variant(a.result)) << r.cls << "." << r.member;
      EXPECT_EQ(sent(db), std::vector<std::u16string>(a.runs, r.statement))
          << r.cls << "." << r.member;
      // Only the last attempt's recordset is closed.
      const auto out = db.handedOut();
      EXPECT_EQ(out.back()->State(), adStateClosed);
      if (a.runs > 1) {
        EXPECT_EQ(out[out.size() - 3]->State(), adStateOpen) << r.cls << "." << r.member;
      }
    }
  }
}

TEST_F(LabOperations, RetriedCallsRaiseAtOnceOnAFailureOrAMissingRow) {
  for (const auto& r : kRetried) {
    db.clear();
    db.answerRows(u"qsp_Lab", {u"Code"}, {{Variant(1)}}, 1);
    db.failExecute(u"qsp_Lab", providerError(), 1);
    auto o = registry::create(r.cls);
    const std::vector<Variant> args{Variant(u""), Variant(kConnect), Variant(7)};
    EXPECT_EQ(numberOf([&] { registry::invoke(*o, r.member, args); }), err::kCommandError);
    EXPECT_EQ(sent(db).size(), 2u);
    db.clear();
    db.answerRows(u"qsp_Lab", {u"Code"}, {}, 1);
    EXPECT_EQ(numberOf([&] { registry::invoke(*o, r.member, args); }), err::kNoCurrentRecord);
  }
}

TEST_F(LabOperations, TheContainerChecksOfPackedAndDegradationAlike) {
  cLabPackedPersist packed;
  cLabDegradationPersist deg;
  const std::u16string state = [] {
    cLabPackedPersist p;
    initialiseRecord(p.layout(), p.recordBytes());
    p.record().LabSeason = 2019;
    return p.GetState();
  }();
  // The status goes in undoubled, and the check has no False.
  EXPECT_TRUE(packed.qsp_OnHoldCheck(state, kConnect, 4, 120, u"H'", -1));
  EXPECT_EQ(packed.record().LabSeason, 2019);  // sBuffer replaced the record
  EXPECT_TRUE(deg.qsp_OnHoldCheck(u"", kConnect, 4, 120, u"H", 9));
  EXPECT_EQ(sent(db), (std::vector<std::u16string>{
                          u"EXEC qsp_OnHoldCheck @p_GradeID= 4, @p_ContainerNumber=120, "
                          u"@p_Status='H'', @p_UserID=-1",
                          u"EXEC qsp_OnHoldCheck @p_GradeID= 4, @p_ContainerNumber=120, "
                          u"@p_Status='H', @p_UserID=9"}));

  struct Case {
    Variant retVal;
    bool prized;
    std::int32_t error;
  };
  for (const auto& c : {Case{Variant(1), true, 0}, Case{Variant(0), false, 0},
                        Case{Variant(2), false, 0}, Case{Variant::null(), false, 94}}) {
    for (int which = 0; which < 2; ++which) {
      db.clear();
      db.answerRows(u"qsp_ContainerPrized", {u"Other", u"RetVal"}, {{Variant(1), c.retVal}}, 1);
      bool prized = false;
      const auto call = [&] {
        prized = which == 0 ? packed.qsp_ContainerPrized(u"", kConnect, 4, 120)
                            : deg.qsp_ContainerPrized(u"", kConnect, 4, 120);
      };
      EXPECT_EQ(numberOf(call), c.error);
      EXPECT_EQ(prized, c.prized);
      EXPECT_EQ(sent(db), std::vector<std::u16string>{
                              u"EXEC qsp_ContainerPrized @p_GradeID= 4, @p_ContainerNumber=120"});
    }
  }
}

TEST_F(LabOperations, AdviceNotesAreCreatedWithdrawnAndSynchronised) {
  cLabPackedPersist packed;
  EXPECT_TRUE(packed.CreateAdviceNotes(u"", kConnect, 3, 2019));
  packed.SyncAdviceNotes(kConnect, 2019);
  EXPECT_EQ(sent(db), (std::vector<std::u16string>{
                          u"EXEC qsp_LabCreateAdviceNotes @p_CompanyID= 3, @p_Season = 2019",
                          u"EXEC qsp_LabSyncAdvice @p_Season = 2019"}));

  db.clear();
  packed.DeleteAdviceNotes(kConnect, 3, 2019);
  const std::u16string byCompany =
      u"2019 AND SampleType IN ('ADA','ADS') AND ProductionGradeID IN (SELECT ProductionGradeID "
      u"FROM ProductionGrade WHERE GradeID IN (SELECT GradeID FROM Grade WHERE CompanyID = 3";
  EXPECT_EQ(
      sent(db),
      (std::vector<std::u16string>{
          u"DELETE FROM LabPackedSum Where ParentID  IN (Select LabPackedID FROM LabPacked "
          u"WHERE LabSeason = " +
              byCompany + u")))",
          u"UPDATE LabPacked SET SampleType = '999' WHERE LabSeason = " + byCompany + u"))",
          u"DELETE FROM LabDegSum Where ParentID  IN (Select LabDegradationID FROM "
          u"LabDegradation WHERE LabSeason = " +
              byCompany + u")))",
          u"UPDATE LabDegradation SET SampleType = '999' WHERE LabSeason = " + byCompany + u"))",
          u"DELETE FROM LabGreenMoistSum Where ParentID  IN (Select LabGreenMoistureID FROM "
          u"LabGreenMoisture WHERE LabSeason = " +
              byCompany + u")))",
          u"UPDATE LabGreenMoisture SET SampleType = '999' WHERE LabSeason = " + byCompany +
              u"))"}));

  db.clear();
  db.failExecute(u"DELETE FROM LabDegSum", providerError());
  EXPECT_NE(numberOf([&] { packed.DeleteAdviceNotes(kConnect, 3, 2019); }), 0);
  EXPECT_EQ(sent(db).size(), 3u);
}

TEST_F(LabOperations, SynchronisingAdviceUsesItsOwnConnectionAndSwallowsEveryFailure) {
  dbHelp::ConnectString = u"DSN=earlier";
  cLabAdviceNotePersist advice;
  advice.qsp_LabSyncAdvice(kConnect);
  EXPECT_EQ(db.log(),
            (std::vector<std::string>{"create", "cursor 3", "open DSN=lab|||-1",
                                      "execute qsp_LabSyncAdvice|-1", "close", "release"}));
  EXPECT_EQ(dbHelp::ConnectString, u"DSN=earlier");

  db.clear();
  db.failExecute(u"qsp_LabSyncAdvice", providerError());
  EXPECT_NO_THROW(advice.qsp_LabSyncAdvice(kConnect));
  const auto log = db.log();
  EXPECT_EQ(log.back(), "release");  // released without a close
  EXPECT_EQ(std::count(log.begin(), log.end(), "close"), 0);

  db.clear();
  db.failOpen(providerError());
  EXPECT_NO_THROW(advice.qsp_LabSyncAdvice(u"DSN=nowhere"));
  EXPECT_EQ(dbHelp::ConnectString, u"DSN=earlier");
}

TEST(LabMissingArgument, EveryCoercionRefusesAMissingVariant) {
  const Variant missing = Variant::missing();
  EXPECT_TRUE(missing.isMissing());
  EXPECT_FALSE(missing.isEmpty());
  EXPECT_FALSE(Variant().isMissing());
  const std::vector<std::function<void()>> coercions = {
      [&] { toLong(missing); }, [&] { toDouble(missing); },  [&] { toCurrency(missing); },
      [&] { toDate(missing); }, [&] { toBoolean(missing); }, [&] { toString(missing); }};
  for (const auto& c : coercions) EXPECT_EQ(numberOf(c), err::kTypeMismatch);
}

TEST_F(LabOperations, EveryTableWritesAndDeletesUnderItsOwnNameAndKey) {
  struct Table {
    const char* cls;
    std::u16string table;
    bool soft;
  };
  const std::vector<Table> tables = {
      {"cLabHeaderPersist", u"LABHEADER", true},
      {"cLabSettingPersist", u"LABSETTING", false},
      {"cLabSettingSnapshotPersist", u"LABSETTINGSNAPSHOT", false},
      {"cLabPackedPersist", u"LABPACKED", false},
      {"cLabPackedSumPersist", u"LABPACKEDSUM", false},
      {"cLabDegradationPersist", u"LABDEGRADATION", false},
      {"cLabDegSumPersist", u"LABDEGSUM", false},
      {"cLabGreenMoisturePersist", u"LABGREENMOISTURE", false},
      {"cLabGreenMoistSumPersist", u"LABGREENMOISTSUM", false},
      {"cLabStemLengthPersist", u"LABSTEMLENGTH", false},
      {"cLabInfraalyzerPersist", u"LABINFRAALYZER", false},
      {"cLabMoisturePersist", u"LABMOISTURE", false},
      {"cLabBiasPersist", u"LABBIAS", false},
      {"cLabForeignPersist", u"LABFOREIGN", false},
      {"cLabAdviceNotePersist", u"LABADVICENOTE", false},
  };
  db.answerRows(u"qsp_InsertStatement", {u"Identity"}, {{Variant(5)}});
  for (const auto& t : tables) {
    db.clear();
    auto o = registry::create(t.cls);
    auto& table = static_cast<TableObject&>(*o);
    initialiseRecord(table.layout(), table.recordBytes());
    const std::u16string fresh = table.GetState();
    ASSERT_TRUE(table.Commit(fresh, kConnect));
    const std::u16string keyed = table.GetState();  // the new key 5
    ASSERT_TRUE(table.Commit(keyed, kConnect));
    ASSERT_TRUE(table.Delete(keyed, kConnect));
    ASSERT_TRUE(table.CriteriaDelete(keyed, kConnect, u" "));
    const auto s = sent(db);
    ASSERT_EQ(s.size(), 4u) << t.cls;
    const std::u16string insert =
        u"EXEC qsp_InsertStatement @p_Stmt = \"INSERT INTO " + t.table + u"  (";
    const std::u16string update = u"UPDATE " + t.table + u" SET ";
    const std::u16string byKey = u" WHERE " + t.table + u"ID = 5";
    EXPECT_EQ(s[0].substr(0, insert.size()), insert) << t.cls;
    EXPECT_EQ(s[1].substr(0, update.size()), update) << t.cls;
    EXPECT_EQ(s[1].substr(s[1].size() - byKey.size()), byKey) << t.cls;
    EXPECT_EQ(s[2],
              t.soft ? u"UPDATE " + t.table + u" SET DELETEDFLAG = 'Y' WHERE " + t.table + u"ID = 5"
                     : u"DELETE FROM " + t.table + u" WHERE " + t.table + u"ID = 5")
        << t.cls;
    EXPECT_EQ(s[3], u"DELETE FROM " + t.table) << t.cls;  // blank criteria reach every row
  }
}
