// The committed T-SQL schema is the one the embedded store's catalog gives.
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>

#include "tsql/tsql_schema.hpp"

using namespace vrdppo;

TEST(TsqlSchemaFile, IsTheCatalogsOwn) {
  const std::string generated = tsql::schemaScript(embedded::storeCatalog());
  if (std::getenv("VRDPPO_WRITE_SQL") != nullptr) {
    std::ofstream(std::string(VRDPPO_SQL_DIR) + "/schema.sql", std::ios::binary) << generated;
  }
  EXPECT_EQ(tsql::readSqlFile("schema.sql"), generated)
      << "sql/sqlserver/schema.sql is stale: run build/normal/tests/test_tsql with "
         "VRDPPO_WRITE_SQL=1 --gtest_filter=TsqlSchemaFile.*";
}
