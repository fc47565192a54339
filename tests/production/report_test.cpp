// The processing-results report of the production grade list: connections of their own, the
// ConnectString an earlier call left, and errors raised or swallowed.
#include <gtest/gtest.h>

#include <functional>

#include "support/class_cases.hpp"
#include "support/scripted_provider.hpp"
#include "vrdppo/dbhelp.hpp"
#include "vrdppo/error.hpp"
#include "vrdppo/locale.hpp"
#include "vrdppo/reference/grades.hpp"

using namespace vrdppo;
using vrdppo::testing::providerError;
using vrdppo::testing::ScriptedProvider;

namespace {

using Log = std::vector<std::string>;
const std::string kDefaultOpen =
    "open DRIVER={SQL Server};SERVER=localhost;UID=vrd;PWD=vrd;DATABASE=VRD|||-1";

class Report : public ::testing::Test {
 protected:
  void SetUp() override { dbHelp::ConnectString = u"DSN=left"; }
  void TearDown() override { dbHelp::ConnectString.clear(); }
  void processingResults() {
    report.ProcessingResults(2019, u"A,B", Date{43525.75}, Date{43555.2}, u"DSN=unused");
  }
  ScriptedProvider db;
  cvProductionGradeListPersist report;
};

}  // namespace

TEST_F(Report, ClearEmptiesBothTablesOnOneClientConnection) {
  report.ClearProcessingResultsTables();
  EXPECT_EQ(db.log(), (Log{"create", "cursor 3", "open DSN=left|||-1",
                           "execute delete from ProcessingResultsReport|-1",
                           "execute delete from ProcessingResultsStems|-1", "close", "release"}));
  EXPECT_EQ(dbHelp::ConnectString, u"DSN=left");
}

TEST_F(Report, ClearTakesTheDefaultForAnEmptyConnectStringAndRaises) {
  dbHelp::ConnectString.clear();
  report.ClearProcessingResultsTables();
  EXPECT_EQ(db.log().at(2), kDefaultOpen);

  {
    ScriptedProvider p;
    p.failOpen(providerError());
    EXPECT_THROW(report.ClearProcessingResultsTables(), Error);
    EXPECT_EQ(p.log().back(), "release");
  }
  db.clear();
  dbHelp::ConnectString = u"DSN=left";
  db.failExecute(u"Stems", providerError());
  EXPECT_THROW(report.ClearProcessingResultsTables(), Error);
  // The first delete stands; the connection goes without a Close.
  EXPECT_EQ(db.log(), (Log{"create", "cursor 3", "open DSN=left|||-1",
                           "execute delete from ProcessingResultsReport|-1",
                           "execute delete from ProcessingResultsStems|-1", "release"}));
}

TEST_F(Report, GenerateSendsTheCallersArgumentsWithoutExec) {
  report.sp_GenerateProcessingResultsReport(u"@p_Season= 2019, @p_CompanyID=3");
  EXPECT_EQ(db.log(), (Log{"create", "cursor 3", "open DSN=left|||-1",
                           "execute sp_GenerateProcResultsReport @p_Season= 2019, "
                           "@p_CompanyID=3|-1",
                           "close", "release"}));
  db.clear();
  report.sp_GenerateProcessingResultsReport(u"");
  EXPECT_EQ(db.statements(), (std::vector<std::u16string>{u"sp_GenerateProcResultsReport "}));
  db.clear();
  dbHelp::ConnectString.clear();
  report.sp_GenerateProcessingResultsReport(u"");
  EXPECT_EQ(db.log().at(2), kDefaultOpen);
}

TEST_F(Report, ProcessingResultsSendsWholeDaysWithATimeoutOf300) {
  processingResults();
  EXPECT_EQ(db.log(),
            (Log{"create", "cursor 3", "timeout 300", "open DSN=left|||-1",
                 "execute qsp_LabProcessingResults 2019, 'A,B','2019/03/01 00:00:00','2019/03/31 "
                 "23:59:59'|-1",
                 "close", "release"}));
  EXPECT_EQ(dbHelp::ConnectString, u"DSN=left");  // sConnect is not used
}

TEST_F(Report, ProcessingResultsDoesNothingWithoutAConnectString) {
  dbHelp::ConnectString.clear();
  db.failOpen(providerError());
  EXPECT_NO_THROW(processingResults());
  EXPECT_EQ(db.log().at(3), "open |||-1");  // no default
  EXPECT_TRUE(db.statements().empty());
}

TEST_F(Report, TheTrappedTwoSwallowEveryFailure) {
  const std::function<void(cvProductionGradeListPersist&)> calls[] = {
      [](cvProductionGradeListPersist& r) { r.sp_GenerateProcessingResultsReport(u"1"); },
      [](cvProductionGradeListPersist& r) {
        r.ProcessingResults(2019, u"A", Date{43525.0}, Date{43526.0}, u"");
      },
  };
  const std::function<void(ScriptedProvider&)> failures[] = {
      [](ScriptedProvider& p) { p.failOpen(providerError()); },
      [](ScriptedProvider& p) { p.failExecute(u"", providerError()); },
      [](ScriptedProvider& p) { p.failClose(providerError()); },
  };
  for (const auto& call : calls) {
    for (const auto& fail : failures) {
      ScriptedProvider p;
      fail(p);
      EXPECT_NO_THROW(call(report));
      EXPECT_EQ(p.log().back(), "release");
    }
  }
}

TEST_F(Report, MembersFollowTheContract) {
  const ClassInfo& info = cvProductionGradeListPersist::info();
  const auto& m = info.members;
  ASSERT_GE(m.size(), 3u);
  EXPECT_EQ(m[m.size() - 3].name, "ClearProcessingResultsTables");
  EXPECT_EQ(m[m.size() - 2].name, "sp_GenerateProcessingResultsReport");
  EXPECT_EQ(m[m.size() - 1].name, "ProcessingResults");
  EXPECT_EQ(m[m.size() - 1].args[2].type, ValueType::Date);
  EXPECT_EQ(info.member("Load")->dispatchId, 0x60030004);
}

// The fixed times are formatted with the dates, so they follow the locale's separators too.
TEST_F(Report, ProcessingResultsTimesFollowTheLocale) {
  LocaleSeparators& sep = threadSeparators();
  const LocaleSeparators saved = sep;
  sep.date = u'-';
  sep.time = u'.';
  processingResults();
  sep = saved;
  EXPECT_EQ(db.statements().back(),
            u"qsp_LabProcessingResults 2019, 'A,B','2019-03-01 00.00.00','2019-03-31 23.59.59'");
}
