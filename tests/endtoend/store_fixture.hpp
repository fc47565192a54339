// A fresh embedded store file for each test, and small helpers to build states.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "vrdppo/buffer.hpp"
#include "vrdppo/dbhelp.hpp"
#include "vrdppo/embedded_store.hpp"
#include "vrdppo/persist.hpp"
#include "vrdppo/render.hpp"
#include "vrdppo/text.hpp"

namespace vrdppo::testing {

inline std::string scratchPath(const std::string& name) {
  const char* dir = std::getenv("VRDPPO_TEST_TMP");
  const std::filesystem::path base = dir ? dir : std::filesystem::temp_directory_path().string();
  std::filesystem::create_directories(base);
  return (base / (name + "-" + std::to_string(::getpid()) + ".db")).string();
}

inline void removeStore(const std::string& path) {
  embedded::releaseStore(path);
  for (const char* suffix : {"", "-wal", "-shm"}) std::filesystem::remove(path + suffix);
}

class StoreTest : public ::testing::Test {
 protected:
  void SetUp() override {
    const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
    path = scratchPath(std::string(info->test_suite_name()) + "-" + info->name());
    removeStore(path);
    connect = embedded::connectString(path);
  }
  void TearDown() override {
    dbHelp::ConnectString.clear();
    removeStore(path);
  }

  // Runs a statement on the store through the gateway and gives the first column of its first
  // row as a Long (0 when it has no rows).
  Long scalar(const std::u16string& sql) {
    dbHelp::ConnectString = connect;
    const auto rs = dbHelp::OpenRecordset(sql);
    if (rs->State() != adStateOpen || rs->EOF_()) return 0;
    return toLong(rs->Fields(std::size_t{0}));
  }
  Long insert(const std::u16string& sql) {
    return scalar(u"EXEC sp_InsertStatement @p_Stmt = \"" + sql + u"\"");
  }

  std::string path;
  std::u16string connect;
};

// The records of a Buffer state, each read into an object of the class.
template <class Class>
std::vector<typename std::remove_reference_t<decltype(std::declval<Class&>().record())>> rowsOf(
    const std::u16string& state) {
  using Record = std::remove_reference_t<decltype(std::declval<Class&>().record())>;
  Buffer b;
  b.SetState(state);
  std::vector<Record> rows;
  for (std::int32_t i = 1; i <= b.Count(); ++i) {
    Class o;
    o.SetState(b.Item(i));
    rows.push_back(o.record());
  }
  return rows;
}

// A table class's record in two versions, so that an update shows.
struct TableRoundTrip {
  const char* name;
  std::function<std::unique_ptr<TableObject>()> make;
  std::function<std::u16string(Long key, int version)> state;
  std::u16string key;  // as a criteria names it
};

// Each record committed (an insert), loaded by its new key, committed again (an update), loaded,
// deleted: the loaded states must be exactly what was committed, the key filled in.
inline void expectRoundTrips(const std::vector<TableRoundTrip>& trips,
                             const std::u16string& connect) {
  for (const auto& c : trips) {
    SCOPED_TRACE(c.name);
    auto o = c.make();
    ASSERT_TRUE(o->Commit(c.state(0, 0), connect));
    const Long key = o->key();
    ASSERT_GT(key, 0);
    const std::u16string where = c.key + u" = " + longText(key);
    Buffer b;
    b.SetState(o->Load(where, connect));
    ASSERT_EQ(b.Count(), 1);
    EXPECT_EQ(b.Item(1), c.state(key, 0));

    ASSERT_TRUE(o->Commit(c.state(key, 1), connect));
    b.SetState(o->Load(where, connect));
    ASSERT_EQ(b.Count(), 1);
    EXPECT_EQ(b.Item(1), c.state(key, 1));

    ASSERT_TRUE(o->Delete(c.state(key, 1), connect));
    EXPECT_EQ(o->Load(where, connect).size(), 9u);
  }
}

}  // namespace vrdppo::testing
