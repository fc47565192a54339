// Failures as a client of a server sees them: number, SQLSTATE, native number, description.
#include <fstream>

#include "store_fixture.hpp"
#include "vrdppo/text.hpp"

namespace vrdppo::embedded::testing {

namespace {

struct Failure {
  std::u16string_view statement;
  std::int32_t number;
  std::string_view sqlState;
  std::int32_t nativeError;
  std::string_view description;  // the whole text, or a prefix ending in "..."
};

class FailureTest : public StoreTest, public ::testing::WithParamInterface<Failure> {};

TEST_P(FailureTest, RaisesTheServersError) {
  const Failure& f = GetParam();
  sql(u"INSERT INTO STEMS (STEMSID) VALUES (1)");
  const Error e = errorOf([&] { sql(f.statement); });
  EXPECT_EQ(e.number(), f.number);
  EXPECT_EQ(e.sqlState(), f.sqlState);
  EXPECT_EQ(e.nativeError(), f.nativeError);
  EXPECT_EQ(e.source(), "vrdppo.Embedded");
  if (f.description.ends_with("...")) {
    EXPECT_TRUE(e.description().starts_with(f.description.substr(0, f.description.size() - 3)))
        << e.description();
  } else {
    EXPECT_EQ(e.description(), f.description);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Statements, FailureTest,
    ::testing::Values(
        Failure{u"SELECT * FROM NOPE", err::kMissingTable, "42S02", 208,
                "[vrdppo.Embedded]no such table: NOPE"},
        Failure{u"delete from Nope where a = 1", err::kMissingTable, "42S02", 208, "..."},
        Failure{u"SELECT nope FROM STEMS", err::kCommandError, "42S22", 207,
                "[vrdppo.Embedded]no such column: nope"},
        Failure{u"SELEC * FROM STEMS", err::kCommandError, "42000", 102,
                "[vrdppo.Embedded]Incorrect syntax near '*'."},
        Failure{u"SELECT * FROM STEMS WHERE", err::kCommandError, "42000", 102, "..."},
        Failure{u"SELECT * FROM STEMS WHERE (StemsId = 1", err::kCommandError, "42000", 102, "..."},
        Failure{u"SELECT * FROM STEMS s JOIN PICKINGS p ON 1 = 1 WHERE ProductionRunId = 1",
                err::kCommandError, "42000", 209, "..."},
        Failure{u"SELECT NOSUCHFN(1)", err::kCommandError, "42000", 195, "..."},
        Failure{u"SELECT DATEADD(fortnight, 1, '2019/03/07')", err::kCommandError, "42000", 1,
                "[vrdppo.Embedded]'fortnight' is not a recognized dateadd option."},
        Failure{u"SELECT CONVERT(int, 'abc')", err::kCommandError, "22018", 241,
                "[vrdppo.Embedded]Conversion failed when converting the varchar value 'abc' to "
                "data type int."},
        Failure{u"SELECT YEAR('no date')", err::kCommandError, "22018", 241, "..."},
        Failure{u"SELECT 'open", err::kCommandError, "42000", 102,
                "[vrdppo.Embedded]Unclosed quotation mark after the character string 'open'."},
        Failure{u"SELECT @x", err::kCommandError, "42000", 137,
                "[vrdppo.Embedded]Must declare the scalar variable \"@x\"."},
        Failure{u"INSERT INTO STEMS (STEMSID) VALUES (1)", err::kCommandError, "23000", 2627,
                "..."},
        Failure{u"INSERT INTO PICKINGTYPE (Description, DeletedFlag) VALUES ('', 'NO')",
                err::kCommandError, "22001", 8152,
                "[vrdppo.Embedded]String or binary data would be truncated."},
        Failure{u"INSERT INTO PICKINGTYPE (Description) VALUES (REPLICATE('x', 51))",
                err::kCommandError, "22001", 8152, "..."}));

// Blanks past a text's declared length are dropped by the server, not refused; a text of its
// full length, or of non-ASCII letters counted as characters, fits.
TEST_F(StoreTest, TextFitsItsColumnUpToBlanksAtItsEnd) {
  sql(u"INSERT INTO PICKINGTYPE (Description, DeletedFlag) VALUES ('N', 'Y   ')");
  sql(u"INSERT INTO PICKINGTYPE (Description) VALUES (REPLICATE('\u00e9', 50))");
  EXPECT_EQ(toLong(scalar(u"SELECT COUNT(*) FROM PICKINGTYPE")), 2);
}

TEST(OpenFailures, AreProviderFailures) {
  const std::string dir = freshStorePath("notadir") + "/missing/store.db";
  const std::string garbage = freshStorePath("garbage");
  std::ofstream(garbage) << std::string(8192, 'x');
  for (const auto& connect :
       {connectString(dir), std::u16string(u"Provider=vrdppo.Embedded"), connectString(garbage)}) {
    const Error e = errorOf([&] {
      auto c = makeConnection();
      c->open(connect, {}, {}, adOptionUnspecified);
      c->execute(u"SELECT 1", adOptionUnspecified);
    });
    EXPECT_EQ(e.number(), err::kProviderFailure) << toUtf8(connect);
    EXPECT_EQ(e.sqlState(), "08001") << toUtf8(connect);
    EXPECT_TRUE(e.description().starts_with("[vrdppo.Embedded]")) << e.description();
  }
  removeStore(garbage);
}

TEST(ProviderChoice, TakesTheConnectionStringsThatNameTheStore) {
  struct Case {
    std::u16string_view connect;
    bool accepted;
  };
  for (const auto& c : {Case{u"Provider=vrdppo.Embedded;Data Source=x.db", true},
                        Case{u"provider = VRDPPO.EMBEDDED ; data source=x.db", true},
                        Case{u"Data Source=x.db;Provider={vrdppo.Embedded}", true},
                        Case{u"DRIVER={SQL Server};SERVER=s;DATABASE=d", false},
                        Case{u"Provider=SQLOLEDB;Data Source=x", false}, Case{u"", false}}) {
    EXPECT_EQ(accepts(c.connect), c.accepted) << toUtf8(c.connect);
  }
  EXPECT_EQ(toUtf8(connectString("/tmp/a b.db")),
            "Provider=vrdppo.Embedded;Data Source=/tmp/a b.db");
  const std::string path = freshStorePath("registry");
  { Client touch(path); }  // registers the provider
  EXPECT_EQ(providers::nameFor(connectString("x.db")), "embedded");
  removeStore(path);
}

}  // namespace

}  // namespace vrdppo::embedded::testing
