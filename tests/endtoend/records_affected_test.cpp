// How many rows a statement touched: what the class operations' Boolean results cannot tell.
#include <gtest/gtest.h>

#include "endtoend/store_fixture.hpp"
#include "support/scripted_provider.hpp"
#include "vrdppo/error.hpp"
#include "vrdppo/production/stems.hpp"
#include "vrdppo/provider.hpp"

namespace vrdppo::testing {

namespace {

std::u16string stem(Long key, double weight) {
  return newState<cStemsPersist>([&](StemsRecord& r) {
    r.StemsId = key;
    r.TotalNetWeight = weight;
    r.ProductionRunId = 77;
  });
}

using RecordsAffected = StoreTest;

}  // namespace

TEST_F(RecordsAffected, CommitAndDeleteOfTheStore) {
  cStemsPersist stems;
  const auto affectedBy = [](const std::function<bool()>& operation) {
    resetLastRecordsAffected();
    EXPECT_TRUE(operation());
    return lastRecordsAffected();
  };
  EXPECT_EQ(affectedBy([&] { return stems.Commit(stem(0, 1.5), connect); }), 1);  // insert
  const Long key = stems.record().StemsId;
  const struct {
    const char* what;
    std::function<bool()> operation;
    std::int64_t rows;
  } cases[] = {
      {"update", [&] { return stems.Commit(stem(key, 2.5), connect); }, 1},
      {"update of no row", [&] { return stems.Commit(stem(987654, 2.5), connect); }, 0},
      {"delete", [&] { return stems.Delete(stem(key, 0), connect); }, 1},
      {"delete again", [&] { return stems.Delete(stem(key, 0), connect); }, 0},
  };
  for (const auto& c : cases) EXPECT_EQ(affectedBy(c.operation), c.rows) << c.what;
}

// A provider that cannot count the rows of the insert procedure's call (a server's driver: its
// result is the identity's row set) still gives 1 for an insert whose identity came back.
TEST(RecordsAffectedOfAnInsert, IsOneWhereTheIdentityCameBack) {
  ScriptedProvider db;
  db.answerRows(u"sp_InsertStatement", {u"Identity"}, {{Long{41}}});
  cStemsPersist stems;
  resetLastRecordsAffected();
  ASSERT_TRUE(stems.Commit(stem(0, 1.5), u"DSN=plant"));
  EXPECT_EQ(lastRecordsAffected(), 1);
}

TEST_F(RecordsAffected, TheConnectionCountsEachExecute) {
  Connection connection;
  connection.Open(connect);
  EXPECT_EQ(connection.RecordsAffected(), -1);  // nothing executed yet
  std::int64_t affected = 99;
  connection.Execute(u"INSERT INTO STEMS (TotalNetWeight) VALUES (1), (2), (3)", affected);
  EXPECT_EQ(affected, 3);
  connection.Execute(u"UPDATE STEMS SET TotalNetWeight = 1 WHERE TotalNetWeight >= 1", affected);
  EXPECT_EQ(affected, 3);
  EXPECT_EQ(connection.RecordsAffected(), 3);
  EXPECT_EQ(lastRecordsAffected(), 3);
  connection.Execute(u"SELECT * FROM STEMS", affected);
  EXPECT_EQ(affected, 0);
  // A failed statement says nothing rather than what the one before it touched.
  EXPECT_THROW(connection.Execute(u"UPDATE NoSuchTable SET x = 1", affected), Error);
  EXPECT_EQ(affected, -1);
  EXPECT_EQ(connection.RecordsAffected(), -1);
  EXPECT_EQ(lastRecordsAffected(), -1);
  connection.Close();
}

}  // namespace vrdppo::testing
