// A fresh store file per test, and connections to it made the way the gateway makes them.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "vrdppo/embedded_store.hpp"
#include "vrdppo/error.hpp"
#include "vrdppo/provider.hpp"
#include "vrdppo/recordset.hpp"
#include "vrdppo/variant.hpp"

namespace vrdppo::embedded::testing {

// A path in the test scratch directory that no other test (or process) uses.
std::string freshStorePath(std::string_view stem);
// Removes a store file with its WAL and shared-memory files.
void removeStore(const std::string& path);

// A value's type and text, for failure messages.
std::string describe(const Variant& v);

// The error f raises; a failure of the test when it raises none.
Error errorOf(const std::function<void()>& f);

// Runs statements on one connection to a store, through the provider registry.
class Client {
 public:
  // With gateway, "SET QUOTED_IDENTIFIER OFF" goes first, as the library's gateway sends it.
  Client(const std::string& path, bool gateway = true);
  ~Client();
  std::shared_ptr<Recordset> run(std::u16string_view sql);
  // The first column of the first row.
  Variant scalar(std::u16string_view sql);

 private:
  Connection connection_;
};

class StoreTest : public ::testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

  // One statement on a new connection, as the gateway runs it.
  std::shared_ptr<Recordset> sql(std::u16string_view text) { return Client(path_).run(text); }
  // One statement on a new connection that sends nothing first (quoted identifiers on).
  std::shared_ptr<Recordset> raw(std::u16string_view text) {
    return Client(path_, false).run(text);
  }
  Variant scalar(std::u16string_view text) { return Client(path_).scalar(text); }
  std::int32_t count(std::u16string_view from);
  // SQLite text run on the file directly, past the store's sessions, as its own set-up runs:
  // the way a test changes the schema, which no statement through the store may.
  void direct(std::string_view sqlite);
  // Inserts through sp_InsertStatement and returns the Identity answered.
  std::int32_t insert(std::u16string_view insertStatement);

  std::string path_;
};

}  // namespace vrdppo::embedded::testing
