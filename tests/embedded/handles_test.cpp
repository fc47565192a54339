// The store's own SQLite handles: failures of its set-up statements name the statement, and a
// client's statement fails as the server would report it.
#include <sqlite3.h>

#include "providers/embedded/sqlite_handles.hpp"
#include "store_fixture.hpp"

namespace vrdppo::embedded::testing {

namespace {

ConnectionHandle memoryConnection() {
  sqlite3* raw = nullptr;
  EXPECT_EQ(sqlite3_open(":memory:", &raw), SQLITE_OK);
  return ConnectionHandle(raw);
}

TEST(StoreHandles, ASetUpStatementThatFailsIsNamed) {
  const ConnectionHandle db = memoryConnection();
  const Error prepare = errorOf(
      [&] { Statement st(db.get(), std::string_view("CREATE TABLE T (A INT"), Purpose::Setup); });
  EXPECT_EQ(prepare.number(), err::kProviderFailure);
  EXPECT_NE(prepare.description().find("in: CREATE TABLE T (A INT"), std::string::npos)
      << prepare.description();

  execute(db.get(), "CREATE TABLE T (A INT NOT NULL)", Purpose::Setup);
  const Error step =
      errorOf([&] { execute(db.get(), "INSERT INTO T VALUES (NULL)", Purpose::Setup); });
  EXPECT_NE(step.description().find("in: INSERT INTO T VALUES (NULL)"), std::string::npos)
      << step.description();
}

TEST(StoreHandles, AClientStatementFailsAsTheServerReportsIt) {
  const ConnectionHandle db = memoryConnection();
  execute(db.get(), "CREATE TABLE T (A INT NOT NULL)");
  Statement st(db.get(), std::u16string_view(u"INSERT INTO T VALUES (?1)"));
  st.bind(1, Variant::null());
  const Error e = errorOf([&] { st.run(); });
  EXPECT_EQ(e.sqlState(), "23000");
  EXPECT_EQ(e.nativeError(), 515);
  EXPECT_EQ(e.description().find("in: "), std::string::npos);
}

TEST(StoreHandles, BlankTextPreparesToAStatementThatEndsAtOnce) {
  const ConnectionHandle db = memoryConnection();
  Statement st(db.get(), std::string_view("  -- nothing\n"));
  EXPECT_TRUE(st.empty());
  EXPECT_EQ(st.columnCount(), 0);
  EXPECT_FALSE(st.step());
}

}  // namespace

}  // namespace vrdppo::embedded::testing
