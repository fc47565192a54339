// Criteria are raw SQL and may do anything inside the store's database, as on a server, but
// nothing outside its file: every way out is refused, and no file appears.
#include <filesystem>

#include "store_fixture.hpp"
#include "vrdppo/production/stems.hpp"
#include "vrdppo/text.hpp"

namespace vrdppo::embedded::testing {

namespace {

class Confinement : public StoreTest {
 protected:
  std::string outside(std::string_view name) const {
    const auto p = std::filesystem::path(path_).parent_path() / std::string(name);
    std::filesystem::remove(p);
    return p.string();
  }
};

TEST_F(Confinement, EveryWayOutIsRefused) {
  const std::string target = outside("escaped.db");
  const std::u16string file = fromUtf8(target);
  const std::u16string ways[] = {
      u"ATTACH DATABASE '" + file + u"' AS e",
      u"SELECT 1; ATTACH DATABASE '" + file + u"' AS e; CREATE TABLE e.T (A INT)",
      u"VACUUM INTO '" + file + u"'",
      u"SELECT load_extension('" + file + u"')",
      u"PRAGMA journal_mode = DELETE",
      u"PRAGMA synchronous = OFF",
      u"PRAGMA writable_schema = ON",
      u"PRAGMA user_version = 7",
      u"PRAGMA locking_mode = EXCLUSIVE",
      u"PRAGMA temp_store_directory = '/tmp'",
      u"DETACH DATABASE temp",
  };
  for (const auto& way : ways) {
    const Error e = errorOf([&] { raw(way); });
    EXPECT_EQ(e.sqlState(), "42000") << toUtf8(way);
    EXPECT_EQ(e.nativeError(), 229) << toUtf8(way) << ": " << e.description();
    EXPECT_FALSE(std::filesystem::exists(target)) << toUtf8(way);
  }
  // Through a class's criteria, as a client would try it.
  EXPECT_THROW(
      cStemsPersist().Load(u"1=1; ATTACH DATABASE '" + file + u"' AS e", connectString(path_)),
      Error);
  EXPECT_FALSE(std::filesystem::exists(target));
  EXPECT_EQ(scalar(u"PRAGMA journal_mode"), Variant(std::u16string(u"wal")));
}

TEST_F(Confinement, InsideTheDatabaseRowsAndReadingPragmasGo) {
  direct("CREATE TABLE SCRATCH (A INT)");
  raw(u"INSERT INTO SCRATCH VALUES (1); UPDATE SCRATCH SET A = 2");
  EXPECT_EQ(scalar(u"SELECT A FROM SCRATCH"), Variant(2));
  EXPECT_EQ(scalar(u"SELECT COUNT(*) FROM pragma_table_info('STEMS')"), Variant(std::int32_t{6}));
  EXPECT_NO_THROW(raw(u"PRAGMA user_version"));
  EXPECT_NO_THROW(raw(u"PRAGMA integrity_check"));
}

}  // namespace

}  // namespace vrdppo::embedded::testing
