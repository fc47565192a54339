// The schema check on the store: a fresh store fits the classes, and each damage the store can
// hold is reported as exactly the one finding it makes.
#include <sqlite3.h>

#include <filesystem>
#include <set>
#include <string>

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

  for (const auto& damage : schemaDamages()) {
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

}  // namespace

}  // namespace vrdppo::embedded::testing
