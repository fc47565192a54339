// A fresh embedded store file for each test, and small helpers to build states.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
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

}  // namespace vrdppo::testing
