// The T-SQL suite's own main: without a server to run the road on, the road says so and exits
// with 77, which CTest shows as skipped rather than passed.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

int main(int argc, char** argv) {
  ::testing::InitGoogleTest(&argc, argv);
  const char* connect = std::getenv("VRDPPO_TSQL_CONNECT");
  const std::string filter = ::testing::GTEST_FLAG(filter);
  if ((connect == nullptr || *connect == '\0') &&
      (filter.rfind("Road.", 0) == 0 || filter.rfind("Pool", 0) == 0)) {
    std::printf(
        "SKIPPED: set VRDPPO_TSQL_CONNECT to an ODBC connection string of a SQL Server (or a "
        "compatible engine) to run the T-SQL road\n");
    return 77;
  }
  return RUN_ALL_TESTS();
}
