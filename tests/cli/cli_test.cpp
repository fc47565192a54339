// The vrdppo tool as a person uses it: its outputs compared with the exact expected texts.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <string>

namespace {

struct Result {
  int status;
  std::string out;
};

// Runs the tool in a scratch directory with the given arguments (shell-quoted by the caller).
Result run(const std::string& args, const std::string& input = "") {
  static const std::filesystem::path dir = [] {
    const char* base = std::getenv("VRDPPO_TEST_TMP");
    auto d = std::filesystem::path(base ? base : "/tmp") / ("cli-" + std::to_string(getpid()));
    std::filesystem::create_directories(d);
    return d;
  }();
  std::string command = "cd '" + dir.string() + "' && ";
  if (!input.empty()) command += "printf '%s' '" + input + "' | ";
  command += std::string(VRDPPO_CLI) + " " + args + " 2>&1";
  FILE* p = popen(command.c_str(), "r");
  Result r{0, {}};
  std::array<char, 4096> buf{};
  std::size_t n = 0;
  while ((n = fread(buf.data(), 1, buf.size(), p)) > 0) r.out.append(buf.data(), n);
  const int status = pclose(p);
  r.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  return r;
}

}  // namespace

TEST(Cli, LayoutInItsStableForm) {
  const Result r = run("layout cStemsPersist");
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(r.out,
            "cStemsPersist\t60\t43\n"
            "0\t4\tLong\tStemsId\t\n"
            "4\t8\tDouble\tTotalNetWeight\tD\n"
            "12\t4\tLong\tContainerStart\tL0\n"
            "16\t4\tLong\tContainerEnd\tL0\n"
            "20\t4\tLong\tStemTypeID\tL\n"
            "24\t4\tLong\tProductionRunId\tL\n"
            "28\t30\tString*15\t\"StemId\"\t\n");
  EXPECT_EQ(run("layout cvRunPickingTypesPersist").out,
            "cvRunPickingTypesPersist\t48\t39\n"
            "0\t4\tLong\tProductionRunId\t\n"
            "4\t8\tDate\tProductionDate\t\n"
            "12\t4\tLong\tPickingTypeId\t\n"
            "16\t30\tString*15\t\t\n");
}

TEST(Cli, SqlPrintsEveryStatementInOrder) {
  EXPECT_EQ(run("sql cStemsPersist Commit --set TotalNetWeight=125.5 --set ContainerEnd=12 "
                "--set StemTypeID=3 --set ProductionRunId=77")
                .out,
            "SET QUOTED_IDENTIFIER OFF\n"
            "EXEC sp_InsertStatement @p_Stmt = \"INSERT INTO STEMS (TotalNetWeight, "
            "ContainerStart, ContainerEnd, StemTypeId, ProductionRunId) VALUES (125.5, Null, 12, "
            "3, 77)\"\n");
  EXPECT_EQ(run("sql cStemsPersist Delete --set StemsId=901").out,
            "SET QUOTED_IDENTIFIER OFF\nDELETE FROM STEMS WHERE STEMSID = 901\n");
  EXPECT_EQ(run("sql cGreenGradePersist Load --arg lTop=5 --arg 'sCriteria=CompanyId = 3'").out,
            "SET QUOTED_IDENTIFIER OFF\nSELECT TOP 5 * FROM GREENGRADE WHERE CompanyId = 3\n");
  EXPECT_EQ(run("sql cProductionGradePersist CriteriaDelete --arg bHardDelete=False").out,
            "SET QUOTED_IDENTIFIER OFF\nUPDATE PRODUCTIONGRADE SET DELETEDFLAG = 'Y'\n");
  const Result bad = run("sql cStemsPersist Explode");
  EXPECT_EQ(bad.status, 2);
  EXPECT_NE(bad.out.find("Commit"), std::string::npos);  // says what the class has
}

TEST(Cli, EncodeAndDecodeAreLossless) {
  const Result encoded = run(
      "encode cStemsPersist --set StemsId=901 --set TotalNetWeight=125.5 --set ContainerEnd=12");
  ASSERT_EQ(encoded.status, 0);
  const std::string state = encoded.out.substr(0, encoded.out.size() - 1);
  EXPECT_EQ(state.substr(0, 12), "\\u0385\\u0000");
  const Result decoded = run("decode cStemsPersist", state);
  EXPECT_EQ(decoded.out,
            "StemsId\tLong\t901\n"
            "TotalNetWeight\tDouble\t125.5\n"
            "ContainerStart\tLong\t0\n"
            "ContainerEnd\tLong\t12\n"
            "StemTypeID\tLong\t0\n"
            "ProductionRunId\tLong\t0\n"
            "(trailing)\tString*15\tStemId\n");
  EXPECT_EQ(run("encode cStemsPersist", decoded.out).out, encoded.out);
  // A state with odd bytes in the padding still round-trips.
  const std::string odd = "\\u0001\\u0000" + std::string(52, 'x') + "\\u0041";
  const Result oddDecoded = run("decode cStemsPersist --state '" + odd + "'");
  EXPECT_NE(oddDecoded.out.find("(unused)"), std::string::npos);
  const Result again = run("encode cStemsPersist", oddDecoded.out);
  const Result twice =
      run("decode cStemsPersist --state '" + again.out.substr(0, again.out.size() - 1) + "'");
  EXPECT_EQ(twice.out, oddDecoded.out);
}

TEST(Cli, CommitLoadDeleteOnTheDefaultStore) {
  const Result c = run("commit cProductionGradePersist --set ProductionGradeCode=\"O'N\" --json");
  ASSERT_EQ(c.status, 0) << c.out;
  EXPECT_NE(c.out.find("\"ProductionGradeId\":1,"), std::string::npos) << c.out;
  const Result l = run("load cProductionGradePersist --arg lTop=0 --json");
  EXPECT_NE(l.out.find("\"ProductionGradeCode\":\"O'N\""), std::string::npos) << l.out;
  EXPECT_EQ(run("delete cProductionGradePersist --set ProductionGradeId=1").out, "deleted\n");
  const Result table = run("load cProductionGradePersist --arg lTop=0");
  EXPECT_NE(table.out.find("(1 record)"), std::string::npos) << table.out;  // soft: still there
  const Result missing = run("load cStemsPersist --arg 'sCriteria=NoSuchColumn = 1'");
  EXPECT_EQ(missing.status, 1);
  // A provider's number in hex, its SQLSTATE and native number, and the statement that failed.
  EXPECT_NE(missing.out.find("error 0x80040E14: [vrdppo.Embedded]no such column: NoSuchColumn "
                             "(SQLSTATE 42S22, native 207)\n"
                             "  in the statement: SELECT * FROM STEMS WHERE NoSuchColumn = 1\n"),
            std::string::npos)
      << missing.out;
}

TEST(Cli, ClassesAndHelp) {
  const Result r = run("classes");
  EXPECT_EQ(r.out.substr(0, 19), "cGreenGradePersist\n");
  EXPECT_NE(r.out.find("cStemsPersist\n"), std::string::npos);
  EXPECT_EQ(run("--help").status, 0);
  EXPECT_EQ(run("layout cNothing").status, 2);
  EXPECT_EQ(run("frobnicate").status, 2);
}
