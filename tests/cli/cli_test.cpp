// The vrdppo tool as a person uses it: its outputs compared with the exact expected texts.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

namespace {

struct Result {
  int status;
  std::string out;  // standard output
  std::string err;  // standard error
};

// The scratch directory the tool runs in.
const std::filesystem::path& scratch() {
  static const std::filesystem::path dir = [] {
    const char* base = std::getenv("VRDPPO_TEST_TMP");
    auto d = std::filesystem::path(base ? base : "/tmp") / ("cli-" + std::to_string(getpid()));
    std::filesystem::create_directories(d);
    return d;
  }();
  return dir;
}

// Runs the tool in the scratch directory with the given arguments (shell-quoted by the caller).
Result run(const std::string& args, const std::string& input = "") {
  const std::filesystem::path errors = scratch() / "stderr.txt";
  std::string command = "cd '" + scratch().string() + "' && ";
  if (!input.empty()) command += "printf '%s' '" + input + "' | ";
  command += std::string(VRDPPO_CLI) + " " + args + " 2>'" + errors.string() + "'";
  FILE* p = popen(command.c_str(), "r");
  Result r{0, {}, {}};
  std::array<char, 4096> buf{};
  std::size_t n = 0;
  while ((n = fread(buf.data(), 1, buf.size(), p)) > 0) r.out.append(buf.data(), n);
  const int status = pclose(p);
  r.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  std::ifstream in(errors);
  r.err.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
  return r;
}

// A store of the test's own in the scratch directory, as --connect names it.
std::string storeOption(const std::string& file) {
  std::filesystem::remove(scratch() / file);
  return "--connect 'Provider=vrdppo.Embedded;Data Source=" + file + "'";
}

}  // namespace

// A table's layout is state-strings.md's transcript, which the docs' test runs; here a view's.
TEST(Cli, LayoutInItsStableForm) {
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
  EXPECT_NE(bad.err.find("Commit"), std::string::npos);  // says what the class has
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
  const std::string odd = "\\u0001\\u0000" + std::string(40, 'x') + "\\u0041";
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
  EXPECT_NE(missing.err.find("error 0x80040E14: [vrdppo.Embedded]no such column: NoSuchColumn "
                             "(SQLSTATE 42S22, native 207)\n"
                             "  in the statement: SELECT * FROM STEMS WHERE NoSuchColumn = 1\n"),
            std::string::npos)
      << missing.err;
}

// --trace writes each statement and the figures to standard error; standard output is as without.
TEST(Cli, TraceShowsEachStatementOnStandardError) {
  const std::string store = storeOption("trace.db");
  ASSERT_EQ(run("commit cStemsPersist --set TotalNetWeight=5 " + store).status, 0);
  const Result plain = run("load cStemsPersist --json " + store);
  const Result traced = run("load cStemsPersist --json --trace " + store);
  ASSERT_EQ(traced.status, 0) << traced.err;
  EXPECT_EQ(traced.out, plain.out);
  const std::vector<std::string> lines = [&] {
    std::vector<std::string> out;
    std::istringstream in(traced.err);
    for (std::string line; std::getline(in, line);) out.push_back(line);
    return out;
  }();
  ASSERT_EQ(lines.size(), 3u) << traced.err;
  EXPECT_TRUE(lines[0].starts_with("vrdppo: ")) << lines[0];
  EXPECT_TRUE(lines[0].ends_with("trace.db] SET QUOTED_IDENTIFIER OFF")) << lines[0];
  EXPECT_NE(lines[1].find(", 1 row returned"), std::string::npos) << lines[1];
  EXPECT_TRUE(lines[1].ends_with("[sqlite trace.db] SELECT * FROM STEMS")) << lines[1];
  EXPECT_TRUE(lines[2].starts_with("vrdppo: sessions: 0 idle, 0 in use; logins: 0")) << lines[2];
  const Result failed =
      run("load cStemsPersist --trace --arg 'sCriteria=NoSuchColumn = 1' " + store);
  EXPECT_EQ(failed.status, 1);
  EXPECT_NE(failed.err.find("WHERE NoSuchColumn = 1 -- failed: 42S22 "), std::string::npos)
      << failed.err;
}

// --where and --param: the criteria built from values, each read as its field or its stated kind.
TEST(Cli, WhereBuildsTheCriteriaFromItsParams) {
  const std::string store = storeOption("where.db");
  for (const char* d : {"\"O'Neil; DROP TABLE STATION --\"", "plain"}) {
    ASSERT_EQ(run("commit cStationPersist --set StationCode=S --set Description=" + std::string(d) +
                  " " + store)
                  .status,
              0);
  }
  const Result hostile =
      run("load cStationPersist --json --where 'Description = ?' --param "
          "\"O'Neil; DROP TABLE STATION --\" " +
          store);
  ASSERT_EQ(hostile.status, 0) << hostile.err;
  EXPECT_EQ(std::count(hostile.out.begin(), hostile.out.end(), '\n'), 1) << hostile.out;
  EXPECT_NE(hostile.out.find("O'Neil; DROP TABLE STATION --"), std::string::npos);
  const struct {
    std::string args;
    int status;
    std::string says;  // on standard error, or "" for a success
  } cases[] = {
      {"load cStationPersist --where 'StationId BETWEEN ? AND ? AND ? > 0' --param 1 --param 9 "
       "--param long:5",
       0, ""},
      {"load cStationPersist --where 'Description = ? AND ? > 0' --param plain --param 5", 2,
       "placeholder 2 is compared with no field of cStationPersist: state its kind"},
      {"load cStationPersist --where 'StationId = ?' --param abc", 2,
       "--param abc (placeholder 1): StationId: \"abc\" is no Long"},
      {"load cStationPersist --where 'Description = ? OR Description = ?' --param plain", 2,
       "--where: Criteria: placeholder 2 (character 34): no value for it (1 given)"},
      {"load cStationPersist --where 'StationId = 1; DROP TABLE STATION'", 2, "\";\""},
      {"load cStationPersist --param 1", 2, "--param goes with --where"},
      {"load cStationPersist --where 'StationId = ?' --param 1 --arg sCriteria=x", 2,
       "--where and --arg sCriteria both give the criteria"},
      {"delete cStationPersist --where 'Description = ?' --param plain", 0, ""},
      {"delete cStationPersist --where 'Description = ?' --param nothing", 3, "select no row"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.args);
    const Result r = run(c.args + " " + store);
    EXPECT_EQ(r.status, c.status) << r.err;
    if (!c.says.empty()) {
      EXPECT_NE(r.err.find(c.says), std::string::npos) << r.err;
    }
  }
}

TEST(Cli, ClassesAndHelp) {
  const Result r = run("classes");
  EXPECT_EQ(r.out.substr(0, 19), "cGreenGradePersist\n");
  EXPECT_NE(r.out.find("cStemsPersist\n"), std::string::npos);
  EXPECT_EQ(run("--help").status, 0);
  EXPECT_EQ(run("layout cNothing").status, 2);
  EXPECT_EQ(run("frobnicate").status, 2);
}

TEST(Cli, BadInvocationsAreUsageErrorsThatNameTheOffender) {
  const struct {
    const char* args;
    const char* named;  // what standard error must name
  } cases[] = {
      {"frobnicate", "frobnicate"},
      {"load cStemsPersist --bogus", "--bogus"},
      {"layout cStemsPersist extra", "extra"},
      {"layout", "CLASS"},
      {"encode cStemsPersist --arg lTop=1", "--arg"},  // encode has no --arg
      {"decode cStemsPersist --connect x", "--connect"},
      {"load cStemsPersist --arg lTop=1", "lTop"},  // a first-generation Load has no lTop
      {"load cGreenGradePersist --arg bogus=1", "bogus"},
      {"load cGreenGradePersist --arg lTop=x", "lTop"},
      {"load cGreenGradePersist --arg lTop=1 --arg LTOP=2", "LTOP"},
      {"load cGreenGradePersist --arg =1", "=1"},
      {"load cStemsPersist --json --buffer", "--buffer excludes --json"},
      {"commit cStemsPersist --set NoSuchField=1", "NoSuchField"},
      {"commit cStemsPersist --set StemsId", "StemsId"},
      {"commit cStemsPersist --set StemsId=x", "StemsId"},
      {"commit cStemsPersist --set StemsId=1 --state abc", "--state"},
      {"delete cStemsPersist", "StemsId"},  // no key: nothing to delete
      {"delete cvRunPickingTypesPersist --set ProductionRunId=1", "view"},
      {"sql cStemsPersist Load --state abc", "43"},
      {"demo here.db --connect 'DSN=x'", "--connect"},
  };
  for (const auto& c : cases) {
    const Result r = run(c.args);
    EXPECT_EQ(r.status, 2) << c.args << "\n" << r.err;
    EXPECT_NE(r.err.find(c.named), std::string::npos) << c.args << "\n" << r.err;
    EXPECT_EQ(r.out, "") << c.args;
  }
}

TEST(Cli, StatesOfTheWrongLengthAreRefused) {
  const Result encoded = run("encode cStemsPersist --set StemsId=901");
  ASSERT_EQ(encoded.status, 0);
  const std::string record = encoded.out.substr(0, encoded.out.size() - 1);  // 43 characters
  const auto header = [](int length, int count) {
    char text[64];
    std::snprintf(text, sizeof text, "\\u%04x\\u0000\\u000a\\u0000\\u000a\\u0000\\u%04x\\u0000",
                  length, count);
    return std::string(text);
  };
  const struct {
    std::string args;
    int status;
  } cases[] = {
      {"decode cStemsPersist '" + record + "'", 0},
      {"decode cStemsPersist ''", 2},
      {"decode cStemsPersist abc", 2},
      {"decode cStemsPersist '" + record + "x'", 2},
      {"decode cStemsPersist '" + record.substr(0, record.size() - 6) + "'", 2},  // one \u0000
      // A Buffer state: the header, L × n characters, and the spare blank or not.
      {"decode cStemsPersist --buffer '" + header(43, 1) + record + "\\u0020'", 0},
      {"decode cStemsPersist --buffer '" + header(43, 1) + record + "'", 0},
      {"decode cStemsPersist --buffer '" + header(43, 0) + "'", 0},
      {"decode cStemsPersist --buffer ''", 2},
      {"decode cStemsPersist --buffer '" + header(43, 1) + "'", 2},
      {"decode cStemsPersist --buffer '" + header(43, 2) + record + "'", 2},
      {"decode cStemsPersist --buffer '" + header(43, 1) + record + "xy'", 2},
      {"decode cStemsPersist --buffer '" + header(42, 1) + record.substr(6) + "'", 2},
      {"decode cStemsPersist --buffer '" + header(43, 0xffff) + record + "'", 2},
      {"commit cStemsPersist --state abc", 2},
  };
  for (const auto& c : cases) {
    const Result r = run(c.args);
    EXPECT_EQ(r.status, c.status) << c.args << "\n" << r.err;
    if (c.status == 2) {
      EXPECT_NE(r.err.find("characters"), std::string::npos) << r.err;
    }
  }
  EXPECT_NE(run(cases[5].args).out.find("(1 record)"), std::string::npos);
}

TEST(Cli, CommitAndDeleteThatChangeNoRowFail) {
  const std::string store = storeOption("missing-key.db");
  const Result update =
      run("commit cStemsPersist --set StemsId=99 --set TotalNetWeight=1 " + store);
  EXPECT_EQ(update.status, 3);
  EXPECT_EQ(update.out, "");
  EXPECT_NE(update.err.find("StemsId 99"), std::string::npos) << update.err;
  EXPECT_EQ(run("delete cStemsPersist --set StemsId=99 " + store).status, 3);

  const Result insert = run("commit cStemsPersist --set TotalNetWeight=1 --json " + store);
  ASSERT_EQ(insert.status, 0) << insert.err;
  EXPECT_EQ(insert.out.substr(0, 13), "{\"StemsId\":1,") << insert.out;
  EXPECT_EQ(run("commit cStemsPersist --set StemsId=1 --set TotalNetWeight=2 " + store).status, 0);
  const Result deleted = run("delete cStemsPersist --set StemsId=1 " + store);
  EXPECT_EQ(deleted.status, 0) << deleted.err;
  EXPECT_EQ(deleted.out, "deleted\n");
  EXPECT_EQ(run("delete cStemsPersist --set StemsId=1 " + store).status, 3);
}

TEST(Cli, DemoRunsWhereConnectSays) {
  const Result r = run("demo " + storeOption("elsewhere.db"));
  EXPECT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(r.out.substr(0, 56), "A plant's day on Provider=vrdppo.Embedded;Data Source=el");
  EXPECT_TRUE(std::filesystem::exists(scratch() / "elsewhere.db"));
  EXPECT_FALSE(std::filesystem::exists(scratch() / "vrdppo-demo.db"));
  // A connection string that reaches nothing is an error of the database, not ignored.
  const Result nowhere = run("demo --connect 'DSN=vrdppo-no-such-source'");
  EXPECT_EQ(nowhere.status, 1);
  EXPECT_NE(nowhere.err.find("IM002"), std::string::npos) << nowhere.err;
}

TEST(Cli, EachCommandShowsItsOwnOptions) {
  const struct {
    const char* command;
    std::vector<const char*> has, hasNot;
  } cases[] = {
      {"decode", {"--buffer", "--state", "STATE"}, {"--connect", "--set"}},
      {"encode", {"--set"}, {"--arg", "--connect"}},
      {"load", {"--arg", "--connect", "--json", "--buffer"}, {"--set"}},
      {"commit", {"--set", "--state", "--arg", "--connect", "--json"}, {"--buffer"}},
      {"delete", {"--set", "--connect"}, {"--json"}},
      {"demo", {"PATH", "--connect"}, {"--set"}},
  };
  for (const auto& c : cases) {
    const Result r = run(std::string(c.command) + " --help");
    EXPECT_EQ(r.status, 0) << c.command;
    // The usage line, the arguments and the options, ahead of the notes that close the help.
    const std::string options = r.out.substr(0, r.out.find("\n\n", r.out.find("Options:")));
    for (const char* option : c.has) {
      EXPECT_NE(options.find(option), std::string::npos) << c.command << " " << option;
    }
    for (const char* option : c.hasNot) {
      EXPECT_EQ(options.find(option), std::string::npos) << c.command << " " << option;
    }
  }
}

TEST(Cli, CheckTellsWhetherTheDatabaseFits) {
  const std::string store = storeOption("check.db");
  ASSERT_EQ(run("commit cStemsPersist --set ProductionRunId=1 " + store).status, 0);  // a store
  const Result fits = run("check " + store);
  EXPECT_EQ(fits.status, 0) << fits.out << fits.err;
  EXPECT_NE(fits.out.find("84 classes checked: 84 tables and views, "), std::string::npos)
      << fits.out;
  EXPECT_NE(fits.out.find("The database fits the classes.\n"), std::string::npos) << fits.out;
  const Result json = run("check --json " + store);
  EXPECT_EQ(nlohmann::json::parse(json.out).at("fits"), true) << json.out;

  const std::string damaged =
      "sqlite3 '" + (scratch() / "check.db").string() + "' 'DROP VIEW VLABWORKLIST'";
  ASSERT_EQ(std::system(damaged.c_str()), 0);
  const Result misfit = run("check --json " + store);
  EXPECT_EQ(misfit.status, 1);
  const auto report = nlohmann::json::parse(misfit.out);
  EXPECT_EQ(report.at("problems"), 1) << misfit.out;
  EXPECT_EQ(run("check").status, 2);  // which database is not guessed
  EXPECT_EQ(run("check " + storeOption("none.db")).status, 1);
  EXPECT_FALSE(std::filesystem::exists(scratch() / "none.db"));
}

TEST(Cli, TheNewcomersRoad) {
  const Result version = run("--version");
  EXPECT_EQ(version.status, 0);
  EXPECT_EQ(version.out.rfind("vrdppo 0.", 0), 0u) << version.out;
  // Which build: its type and what it compiled in, the password masked.
  EXPECT_NE(version.out.find(")\ndefault connection: DRIVER={SQL Server};"), std::string::npos)
      << version.out;
  EXPECT_NE(version.out.find("PWD=***"), std::string::npos) << version.out;
  EXPECT_NE(version.out.find("audit trail id: "), std::string::npos) << version.out;
  // A load makes a missing store, as any call does: in each output mode it prints what a load of
  // an empty store prints, and says on standard error only that the store was made.
  const struct {
    const char* mode;
    const char* out;
  } empty[] = {
      {"",
       "StemsId  TotalNetWeight  ContainerStart  ContainerEnd  StemTypeID  ProductionRunId\n"
       "(0 records)\n"},
      {" --json", ""},
      {" --buffer", "+\\u0000\\u000a\\u0000\\u000a\\u0000\\u0000\\u0000\\u0020\n"},
  };
  for (const auto& e : empty) {
    const std::string load = std::string("load cStemsPersist") + e.mode + " ";
    const Result made = run(load + storeOption("nowhere.db"));
    EXPECT_EQ(made.status, 0) << e.mode << made.err;
    EXPECT_EQ(made.out, e.out) << e.mode;
    EXPECT_EQ(made.err,
              "vrdppo: there was no store file \"nowhere.db\"; it is now an empty store\n")
        << e.mode;
    const Result again = run(load + "--connect 'Provider=vrdppo.Embedded;Data Source=nowhere.db'");
    EXPECT_EQ(again.status, 0) << e.mode << again.err;
    EXPECT_EQ(again.out, e.out) << e.mode;
    EXPECT_EQ(again.err, "") << e.mode;
  }
  // What load --json prints, encode takes back.
  const std::string store = storeOption("road.db");
  const Result committed = run(
      "commit cStemsPersist --set TotalNetWeight=125.5 --set ProductionRunId=77 --json " + store);
  ASSERT_EQ(committed.status, 0) << committed.err;
  const Result loaded = run("load cStemsPersist --json " + store);
  EXPECT_EQ(loaded.out, committed.out);
  const Result encoded = run("encode cStemsPersist", loaded.out);
  ASSERT_EQ(encoded.status, 0) << encoded.err;
  const Result decoded = run("decode cStemsPersist --json --state '" +
                             encoded.out.substr(0, encoded.out.size() - 1) + "'");
  EXPECT_EQ(decoded.out.substr(0, committed.out.size() - 2),
            committed.out.substr(0, committed.out.size() - 2));
  EXPECT_EQ(run("encode cStemsPersist", "{\"StemsId\": \n").status, 2);
  // The demo's hint runs the tool as it was run.
  const Result demo = run("demo demo.db");
  EXPECT_NE(demo.out.find(std::string("  ") + VRDPPO_CLI + " load cStemsPersist"),
            std::string::npos)
      << demo.out.substr(demo.out.size() > 300 ? demo.out.size() - 300 : 0);
}
