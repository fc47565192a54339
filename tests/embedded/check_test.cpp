// The schema check on the store: a fresh store fits the classes, and each damage the store can
// hold is reported as exactly the one finding it makes.
#include <sqlite3.h>

#include <algorithm>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "check/procedure_calls.hpp"
#include "providers/embedded/catalog.hpp"
#include "store_fixture.hpp"
#include "support/schema_damage.hpp"
#include "vrdppo/schema_check.hpp"
#include "vrdppo/text.hpp"

namespace vrdppo::embedded::testing {

namespace {

using vrdppo::testing::newFindings;
using vrdppo::testing::schemaDamages;

std::string made(const std::string& stem) {
  const std::string path = freshStorePath(stem);
  Client(path).scalar(u"SELECT 1");
  releaseStore(path);
  return path;
}

TEST(SchemaCheck, AFreshStoreFitsAndEachDamageIsReportedAlone) {
  const std::string fresh = made("check_fresh");
  const SchemaReport baseline = checkSchema(connectString(fresh));
  EXPECT_EQ(baseline.problems(), 0) << baseline.text();
  EXPECT_EQ(baseline.classes, 84);
  EXPECT_GT(baseline.columns, 1000);
  removeStore(fresh);

  // The store has no schemas and no rights, but a view can stand where a class writes a table.
  std::vector<vrdppo::testing::SchemaDamage> damages = schemaDamages();
  damages.push_back({"a view standing in for a table the class writes",
                     {},
                     "ALTER TABLE STEMCLASS RENAME TO STEMCLASSDATA; CREATE VIEW STEMCLASS AS "
                     "SELECT STEMCLASSID, Description, DeletedFlag FROM STEMCLASSDATA",
                     "problem|cStemClassPersist|STEMCLASS"});
  for (const auto& damage : damages) {
    if (!damage.store) continue;
    SCOPED_TRACE(damage.name);
    const std::string path = made("check_damaged");
    sqlite3* db = nullptr;
    ASSERT_EQ(sqlite3_open(path.c_str(), &db), SQLITE_OK);
    char* message = nullptr;
    EXPECT_EQ(sqlite3_exec(db, damage.store, nullptr, nullptr, &message), SQLITE_OK)
        << (message ? message : "");
    sqlite3_free(message);
    sqlite3_close(db);
    const SchemaReport report = checkSchema(connectString(path));
    EXPECT_EQ(newFindings(baseline, report), std::set<std::string>{damage.finding})
        << report.text();
    EXPECT_FALSE(report.fits());
    releaseStore(path);
    removeStore(path);
  }
}

TEST(SchemaCheck, AStoreThatIsNotThereIsNotMade) {
  const std::string path = freshStorePath("check_missing");
  const Error e = errorOf([&] { checkSchema(connectString(path)); });
  EXPECT_NE(e.description().find(path), std::string::npos) << e.description();
  EXPECT_FALSE(std::filesystem::exists(path));
}

// The store stands in for every procedure the classes call, with the parameters a server's has:
// so a call the check does not know of, or whose arguments it knows wrong, fails here.
TEST(SchemaCheck, KnowsEveryProcedureTheStoreStandsInFor) {
  std::set<std::u16string> checked;
  for (const auto& call : check::procedureCalls()) {
    SCOPED_TRACE(toUtf8(call.procedure));
    checked.insert(upperAscii(call.procedure));
    const auto* p = storeCatalog().findProcedure(call.procedure);
    ASSERT_NE(p, nullptr);
    for (const auto name : call.named) {
      EXPECT_NE(std::find_if(p->parameters.begin(), p->parameters.end(),
                             [&](const auto& q) { return equalsNoCase(q, name); }),
                p->parameters.end())
          << toUtf8(name);
    }
    EXPECT_LE(static_cast<std::size_t>(call.positional), p->parameters.size());
  }
  for (const auto& name : storeCatalog().procedureNames()) {
    const bool insert =
        equalsNoCase(name, u"sp_InsertStatement") || equalsNoCase(name, u"qsp_InsertStatement");
    EXPECT_TRUE(insert || checked.contains(upperAscii(name))) << toUtf8(name) << " is not checked";
  }
}

}  // namespace

}  // namespace vrdppo::embedded::testing
