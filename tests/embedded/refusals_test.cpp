// What a server refuses from a business-tier login, the store refuses too, before a row is
// touched: a condition that is a bare value, and any change to the schema.
#include "store_fixture.hpp"
#include "vrdppo/production/stems.hpp"
#include "vrdppo/production/tests.hpp"
#include "vrdppo/text.hpp"

namespace vrdppo::embedded::testing {

namespace {

class Refusals : public StoreTest {
 protected:
  void SetUp() override {
    StoreTest::SetUp();
    for (int i = 0; i < 3; ++i) {
      insert(u"INSERT INTO STEMS (ProductionRunId, TotalNetWeight) VALUES (77, 1.5)");
    }
  }
};

TEST_F(Refusals, AConditionThatIsABareValue) {
  struct Case {
    std::u16string_view sql;
    std::string_view near;
  };
  const Case refused[] = {
      {u"DELETE FROM STEMS WHERE 77", "77"},
      {u"SELECT * FROM STEMS WHERE 5", "5"},
      {u"SELECT * FROM STEMS WHERE True", "True"},
      {u"SELECT * FROM STEMS WHERE ProductionRunId", "ProductionRunId"},
      {u"SELECT * FROM STEMS WHERE ProductionRunId ORDER BY StemsId", "ORDER"},
      {u"SELECT * FROM STEMS WHERE ProductionRunId = 77 AND 1", "1"},
      {u"SELECT * FROM STEMS WHERE (ProductionRunId = 77) OR (1)", "1"},
      {u"SELECT * FROM STEMS WHERE NOT ProductionRunId", "ProductionRunId"},
      {u"SELECT * FROM STEMS WHERE (SELECT 1)", ")"},
      {u"SELECT * FROM STEMS WHERE StemsId IN (SELECT StemsId FROM STEMS WHERE 1)", "1"},
      {u"SELECT * FROM STEMS s INNER JOIN STEMS t ON 1 WHERE s.StemsId = 1", "WHERE"},
      {u"SELECT ProductionRunId FROM STEMS GROUP BY ProductionRunId HAVING COUNT(*)", ")"},
      {u"SELECT CASE WHEN TotalNetWeight THEN 1 ELSE 0 END FROM STEMS", "THEN"},
      {u"UPDATE STEMS SET TotalNetWeight = 0 WHERE ProductionRunId + 1", "1"},
  };
  for (const auto& c : refused) {
    const Error e = errorOf([&] { sql(c.sql); });
    EXPECT_EQ(e.sqlState(), "42000") << toUtf8(c.sql);
    EXPECT_EQ(e.nativeError(), 4145) << toUtf8(c.sql) << ": " << e.description();
    EXPECT_NE(e.description().find("near '" + std::string(c.near) + "'"), std::string::npos)
        << toUtf8(c.sql) << ": " << e.description();
  }
  EXPECT_EQ(count(u"STEMS"), 3);
  EXPECT_EQ(scalar(u"SELECT SUM(TotalNetWeight) FROM STEMS"), Variant(4.5));

  // Every form of a predicate stands, however it is joined, nested or parenthesised.
  const std::u16string_view taken[] = {
      u"SELECT * FROM STEMS WHERE 1=1",
      u"SELECT * FROM STEMS WHERE (ProductionRunId) = 77",
      u"SELECT * FROM STEMS WHERE NOT (ProductionRunId <> 77 OR StemsId IS NULL)",
      u"SELECT * FROM STEMS WHERE StemsId BETWEEN 1 AND 3 AND ProductionRunId >= 77",
      u"SELECT * FROM STEMS WHERE ContainerStart LIKE '1%' OR StemsId IN (1, 2)",
      u"SELECT * FROM STEMS WHERE EXISTS (SELECT 1 FROM STEMS WHERE StemsId = 1)",
      u"SELECT * FROM STEMS WHERE (SELECT COUNT(*) FROM STEMS) > 0",
      u"SELECT * FROM STEMS WHERE CASE WHEN StemsId = 1 THEN 1 ELSE 0 END = 1",
      u"SELECT * FROM STEMS WHERE LEFT(ContainerStart, 1) = 'a' ORDER BY CASE StemsId WHEN 1 THEN "
      u"0 END",
      u"SELECT s.* FROM STEMS s LEFT JOIN STEMS t ON t.StemsId = s.StemsId WHERE s.StemsId != 9",
  };
  for (const auto sql : taken) {
    EXPECT_NO_THROW(raw(sql)) << toUtf8(sql);
  }
}

TEST_F(Refusals, ABareCriteriaThroughAClassLosesNothing) {
  const std::u16string connect = connectString(path_);
  insert(u"INSERT INTO OVENMOISTURE (ProductionRunId) VALUES (77)");
  cOvenMoisturePersist moisture;
  cStemsPersist stems;
  for (const auto* criteria : {u"77", u"5", u"True", u"ProductionRunId"}) {
    EXPECT_EQ(errorOf([&] {
                moisture.CriteriaDelete(moisture.GetState(), criteria, connect);
              }).nativeError(),
              4145);
    EXPECT_EQ(errorOf([&] { stems.Load(criteria, connect); }).nativeError(), 4145);
  }
  EXPECT_EQ(count(u"OVENMOISTURE"), 1);
  EXPECT_EQ(count(u"STEMS"), 3);
}

TEST_F(Refusals, NoStatementChangesTheSchema) {
  struct Case {
    std::u16string_view sql;
    std::int32_t native;
    std::string_view message;
  };
  const Case refused[] = {
      {u"DROP TABLE STEMS", 3701,
       "Cannot drop the table 'STEMS', because it does not exist or you do not have permission."},
      {u"drop table if exists dbo.[STEMS]", 3701, "Cannot drop the table 'STEMS'"},
      {u"DROP VIEW VRUNPICKINGTYPES", 3701, "Cannot drop the view 'VRUNPICKINGTYPES'"},
      {u"CREATE TABLE SCRATCH (A INT)", 262, "CREATE TABLE permission denied in database"},
      {u"CREATE UNIQUE INDEX I ON STEMS (Comments)", 262, "CREATE INDEX permission denied"},
      {u"CREATE TEMP TABLE scratch (a INT)", 262, "CREATE TABLE permission denied"},
      {u"ALTER TABLE STEMS DROP COLUMN Comments", 1088,
       "Cannot find the object \"STEMS\" because it does not exist or you do not have "
       "permissions."},
      {u"SELECT 1; DROP TABLE STEMS", 3701, "Cannot drop the table 'STEMS'"},
  };
  for (const auto& c : refused) {
    const Error e = errorOf([&] { raw(c.sql); });
    EXPECT_EQ(e.sqlState(), "42000") << toUtf8(c.sql);
    EXPECT_EQ(e.nativeError(), c.native) << toUtf8(c.sql) << ": " << e.description();
    EXPECT_NE(e.description().find(c.message), std::string::npos) << e.description();
  }
  // The criteria a probe sent, through a class, as a client sends it.
  const Error e =
      errorOf([&] { cStemsPersist().Load(u"1=1; DROP TABLE STEMS", connectString(path_)); });
  EXPECT_EQ(e.nativeError(), 3701);
  releaseStore(path_);  // a later process finds every table and row where it was
  EXPECT_EQ(count(u"STEMS"), 3);
  EXPECT_EQ(scalar(u"SELECT COUNT(*) FROM pragma_table_info('STEMS')"), Variant(std::int32_t{6}));
}

// A Double beyond the largest, as the platform renders it, is no number a server keeps.
TEST_F(Refusals, AFloatBeyondADoubleIsRefusedNotKeptAsInfinity) {
  const std::u16string_view refused[] = {
      u"UPDATE STEMS SET TotalNetWeight = 1.79769313486232E+308 WHERE StemsId = 1",
      u"UPDATE STEMS SET TotalNetWeight = -1.79769313486232E+308 WHERE StemsId = 1",
      u"SELECT * FROM STEMS WHERE TotalNetWeight < 1E309",
  };
  for (const auto sql : refused) {
    const Error e = errorOf([&] { this->sql(sql); });
    EXPECT_EQ(e.sqlState(), "42000") << toUtf8(sql);
    EXPECT_EQ(e.nativeError(), 168) << toUtf8(sql) << ": " << e.description();
    EXPECT_NE(e.description().find("out of the range of computer representation"),
              std::string::npos)
        << e.description();
  }
  EXPECT_EQ(scalar(u"SELECT SUM(TotalNetWeight) FROM STEMS"), Variant(4.5));
  // The largest that rounds to a double, and one too small for any, are taken.
  sql(u"UPDATE STEMS SET TotalNetWeight = 1.7976931348623E+308 WHERE StemsId = 1");
  sql(u"UPDATE STEMS SET TotalNetWeight = 4.9E-330 WHERE StemsId = 2");
  EXPECT_EQ(scalar(u"SELECT TotalNetWeight FROM STEMS WHERE StemsId = 2"), Variant(0.0));
}

}  // namespace

}  // namespace vrdppo::embedded::testing
