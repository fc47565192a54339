// The schema check on a server: the project's own schema fits the classes, and each damage is
// reported as exactly the one finding it makes.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <set>
#include <string>

#include "support/schema_damage.hpp"
#include "tsql/tsql_schema.hpp"
#include "vrdppo/provider.hpp"
#include "vrdppo/schema_check.hpp"
#include "vrdppo/text.hpp"

namespace vrdppo {
namespace {

using testing::newFindings;
using testing::schemaDamages;

TEST(SchemaCheck, TheServersSchemaFitsAndEachDamageIsReportedAlone) {
  const char* connect = std::getenv("VRDPPO_TSQL_CONNECT");
  if (connect == nullptr || *connect == '\0') GTEST_SKIP() << "VRDPPO_TSQL_CONNECT names no server";
  const std::u16string admin = fromUtf8(connect);
  SchemaReport baseline;
  {
    const tsql::PlantDatabase fits(admin, u"vrdppo_check_");
    baseline = checkSchema(fits.connect());
  }
  EXPECT_EQ(baseline.problems(), 0) << baseline.text();
  std::printf("[ check    ] %d classes, %d tables and views, %d columns, %d procedures in %.2f s\n",
              baseline.classes, baseline.sources, baseline.columns, baseline.procedures,
              baseline.seconds);

  for (const auto& damage : schemaDamages()) {
    SCOPED_TRACE(damage.name);
    const tsql::PlantDatabase database(admin, u"vrdppo_check_");
    {
      Connection c;
      c.Open(database.connect());
      for (const char16_t* statement : damage.server) c.Execute(statement);
      c.Close();
    }
    const SchemaReport report = checkSchema(database.connect());
    EXPECT_EQ(newFindings(baseline, report), std::set<std::string>{damage.finding})
        << report.text();
    EXPECT_FALSE(report.fits());
  }
}

}  // namespace
}  // namespace vrdppo
