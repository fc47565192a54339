#include "store_fixture.hpp"

#include <sqlite3.h>
#include <unistd.h>

#include <atomic>
#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <mutex>

#include "vrdppo/text.hpp"

namespace vrdppo::embedded::testing {

namespace {

void registerOnce() {
  static std::once_flag once;
  std::call_once(once, [] { registerProvider(); });
}

}  // namespace

std::string freshStorePath(std::string_view stem) {
  static std::atomic<int> counter{0};
  const char* tmp = std::getenv("VRDPPO_TEST_TMP");
  std::filesystem::path dir = tmp && *tmp ? tmp : std::filesystem::temp_directory_path().string();
  std::filesystem::create_directories(dir);
  std::string name(stem);
  for (auto& c : name) {
    if (!std::isalnum(static_cast<unsigned char>(c))) c = '_';
  }
  const auto path =
      dir / (name + "-" + std::to_string(::getpid()) + "-" + std::to_string(counter++) + ".db");
  removeStore(path.string());
  return path.string();
}

void removeStore(const std::string& path) {
  releaseStore(path);
  for (const char* suffix : {"", "-wal", "-shm", "-journal"}) {
    std::error_code ec;
    std::filesystem::remove(path + suffix, ec);
  }
}

std::string describe(const Variant& v) {
  std::string text = varTypeName(v.type());
  if (!v.isNull() && !v.isEmpty()) text += " " + toUtf8(toString(v));
  return text;
}

Error errorOf(const std::function<void()>& f) {
  try {
    f();
  } catch (const Error& e) {
    return e;
  }
  ADD_FAILURE() << "no error was raised";
  return Error(0, "");
}

Client::Client(const std::string& path, bool gateway) {
  registerOnce();
  connection_.setCursorLocation(adUseClient);
  connection_.Open(connectString(path));
  if (gateway) connection_.Execute(u"SET QUOTED_IDENTIFIER OFF");
}

Client::~Client() {
  if (connection_.State() == adStateOpen) connection_.Close();
}

std::shared_ptr<Recordset> Client::run(std::u16string_view sql) {
  return connection_.Execute(std::u16string(sql));
}

Variant Client::scalar(std::u16string_view sql) {
  const auto rs = run(sql);
  if (rs->State() != adStateOpen || rs->EOF_()) {
    ADD_FAILURE() << "no row from " << toUtf8(sql);
    return Variant();
  }
  return rs->Fields(std::size_t{0});
}

void StoreTest::SetUp() {
  const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
  path_ = freshStorePath(info->name());
  openStore(path_);
}

void StoreTest::TearDown() {
  removeStore(path_);
}

std::int32_t StoreTest::count(std::u16string_view from) {
  return toLong(scalar(u"SELECT COUNT(*) FROM " + std::u16string(from)));
}

std::int32_t StoreTest::insert(std::u16string_view insertStatement) {
  std::u16string quoted;
  for (char16_t c : insertStatement) {
    if (c == u'"') quoted += u'"';
    quoted += c;
  }
  const auto rs = sql(u"EXEC sp_InsertStatement @p_Stmt = \"" + quoted + u"\"");
  return toLong(rs->Fields(u"Identity"));
}

void StoreTest::direct(std::string_view sqlite) {
  scalar(u"SELECT 1");  // the file made and its schema set up first
  sqlite3* db = nullptr;
  ASSERT_EQ(sqlite3_open(path_.c_str(), &db), SQLITE_OK);
  char* message = nullptr;
  const int rc = sqlite3_exec(db, std::string(sqlite).c_str(), nullptr, nullptr, &message);
  EXPECT_EQ(rc, SQLITE_OK) << (message ? message : "") << " in: " << sqlite;
  sqlite3_free(message);
  sqlite3_close(db);
}

}  // namespace vrdppo::embedded::testing
