// A login through FreeTDS's driver that ends in bounded time whether or not the connection string
// names a protocol version: the provider pins the one FreeTDS would try first, unless the user
// chose one anywhere FreeTDS looks.
#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>

#include "providers/odbc/odbc_login.hpp"
#include "tsql/silent_server.hpp"
#include "vrdppo/error.hpp"
#include "vrdppo/provider.hpp"
#include "vrdppo/text.hpp"

using namespace vrdppo;

namespace {

namespace fs = std::filesystem;

// An environment variable set for the scope, then put back as it was.
class ScopedEnv {
 public:
  ScopedEnv(const char* name, const char* value) : name_(name) {
    if (const char* old = std::getenv(name)) old_ = old;
    if (value != nullptr) {
      ::setenv(name, value, 1);
    } else {
      ::unsetenv(name);
    }
  }
  ~ScopedEnv() {
    if (old_) {
      ::setenv(name_, old_->c_str(), 1);
    } else {
      ::unsetenv(name_);
    }
  }
  ScopedEnv(const ScopedEnv&) = delete;
  ScopedEnv& operator=(const ScopedEnv&) = delete;

 private:
  const char* name_;
  std::optional<std::string> old_;
};

class BoundedLogin : public ::testing::Test {
 protected:
  // The user's odbc.ini, made here: data sources whose driver is FreeTDS's by name or by path,
  // with and without a version of their own.
  static void SetUpTestSuite() {
    const char* base = std::getenv("VRDPPO_TEST_TMP");
    dir_ = (base != nullptr ? fs::path(base) : fs::temp_directory_path()) /
           ("login-" + std::to_string(::getpid()));
    fs::create_directories(dir_);
    std::ofstream(dir_ / "odbc.ini") << "[tds]\nDriver=FreeTDS\nServer=127.0.0.1\n"
                                     << "[tds path]\nDriver=/opt/x/libtdsodbc.so.0\n"
                                     << "[tds pinned]\nDriver=FreeTDS\ntds_version=7.3\n"
                                     << "[tds named]\nDriver=FreeTDS\nServername=egServer73\n"
                                     << "[other]\nDriver=SQLite3\nDatabase=x.db\n";
    odbcIni_.emplace("ODBCINI", (dir_ / "odbc.ini").c_str());
    // The driver registered here too: a fresh machine has FreeTDS's library and no entry for it.
    std::ofstream(dir_ / "odbcinst.ini")
        << "[FreeTDS]\nDriver=" << (driver_.empty() ? "libtdsodbc.so" : driver_.string()) << "\n";
    odbcSysIni_.emplace("ODBCSYSINI", dir_.c_str());
  }

  // FreeTDS's driver library where Debian puts it; empty when it is not installed.
  static fs::path findDriver() {
    for (const char* dir : {"/usr/lib/x86_64-linux-gnu/odbc", "/usr/lib/aarch64-linux-gnu/odbc",
                            "/usr/lib/odbc", "/usr/local/lib"}) {
      const fs::path p = fs::path(dir) / "libtdsodbc.so";
      if (fs::exists(p)) return p;
    }
    return {};
  }

  static void TearDownTestSuite() {
    odbcSysIni_.reset();
    odbcIni_.reset();
    std::error_code ignored;
    fs::remove_all(dir_, ignored);
  }

  static fs::path dir_;
  static inline const fs::path driver_ = findDriver();
  static std::optional<ScopedEnv> odbcIni_;
  static std::optional<ScopedEnv> odbcSysIni_;
};

fs::path BoundedLogin::dir_;
std::optional<ScopedEnv> BoundedLogin::odbcIni_;
std::optional<ScopedEnv> BoundedLogin::odbcSysIni_;

TEST_F(BoundedLogin, AVersionIsPinnedOnlyWhereNothingNamesOne) {
  const ScopedEnv noTdsver("TDSVER", nullptr);
  const struct {
    const char16_t* connect;
    bool pinned;
  } cases[] = {
      {u"DRIVER={FreeTDS};SERVER=h;UID=x;PWD=y", true},
      {u"Driver=FreeTDS;SERVER=h;", true},  // no second ";"
      {u"DRIVER={/usr/lib/odbc/libtdsodbc.so};SERVER=h", true},
      {u"DSN=tds;UID=x;PWD=y", true},
      {u"DSN=tds path", true},
      {u"DRIVER={FreeTDS};SERVER=h;tds_version=7.3", false},
      {u"DRIVER={FreeTDS};TDS_Version=auto;SERVER=h", false},
      {u"DRIVER={FreeTDS};SERVERNAME=egServer73", false},
      {u"DSN=tds pinned;UID=x", false},
      {u"DSN=tds named;UID=x", false},
      {u"DSN=tds;TDS_Version=7.2", false},
      {u"DRIVER={SQLite3};Database=x.db", false},
      {u"DSN=other", false},
      {u"DRIVER={No Such Driver};SERVER=h", false},
      {u"DSN=no such source", false},
      {u"Provider=vrdppo.Embedded;Data Source=x.db", false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(toUtf8(c.connect));
    const std::u16string connect = c.connect;
    const std::u16string out = odbc::withBoundedLogin(connect);
    if (c.pinned) {
      const std::u16string separator = connect.ends_with(u';') ? u"" : u";";
      EXPECT_EQ(toUtf8(out), toUtf8(connect + separator + u"TDS_Version=7.4"));
    } else {
      EXPECT_EQ(toUtf8(out), toUtf8(connect));
    }
  }
  // A version in the environment is the user's choice too.
  const ScopedEnv tdsver("TDSVER", "7.3");
  EXPECT_EQ(toUtf8(odbc::withBoundedLogin(u"DRIVER={FreeTDS};SERVER=h")),
            "DRIVER={FreeTDS};SERVER=h");
}

TEST_F(BoundedLogin, ALoginToASilentServerEndsWithOrWithoutAVersion) {
  if (driver_.empty()) GTEST_SKIP() << "FreeTDS's driver (Debian's tdsodbc) is not installed";
  const ScopedEnv noTdsver("TDSVER", nullptr);
  tsql::SilentServer silent;
  const std::u16string there = u"DRIVER={FreeTDS};SERVER=127.0.0.1;PORT=" +
                               fromUtf8(std::to_string(silent.port())) +
                               u";UID=x;PWD=x;Connect Timeout=2";
  for (const std::u16string& connect : {there, there + u";TDS_Version=7.4"}) {
    SCOPED_TRACE(toUtf8(connect));
    const auto start = std::chrono::steady_clock::now();
    std::string state;
    try {
      Connection c;
      c.Open(connect);
      ADD_FAILURE() << "a login to a silent server succeeded";
    } catch (const Error& e) {
      state = e.sqlState();
    }
    // A bound, not a speed: left to fall back to the older protocol, the login never ends.
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
    EXPECT_TRUE(state == "HYT00" || state == "08001") << state;
  }
}

}  // namespace
