#include <dlfcn.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <clocale>
#include <cstdlib>
#include <fstream>

#include "../../src/providers/odbc/odbc_provider.hpp"
#include "odbc_test_support.hpp"
#include "vrdppo/text.hpp"

namespace vrdppo::odbc::testing {

namespace fs = std::filesystem;

const fs::path& scratchDir() {
  // One folder per process: CTest runs the cases as parallel processes.
  static const fs::path dir = [] {
    const char* base = std::getenv("VRDPPO_TEST_TMP");
    fs::path d = base != nullptr ? fs::path(base) : fs::temp_directory_path() / "vrdppo-tests";
    d /= "odbc-" + std::to_string(::getpid());
    fs::create_directories(d);
    return d;
  }();
  return dir;
}

std::u16string freshDatabase(std::string_view name) {
  const fs::path file = scratchDir() / (std::string(name) + ".db");
  fs::remove(file);
  return u"DRIVER={vrdppo SQLite3};Database=" + fromUtf8(file.string());
}

namespace {

// The driver manager reads its driver and data-source lists from ODBCSYSINI, so these must be
// in place before the first ODBC call of the process.
class OdbcEnvironment : public ::testing::Environment {
 public:
  void SetUp() override {
    const fs::path& dir = scratchDir();
    std::ofstream(dir / "odbcinst.ini")
        << "[vrdppo SQLite3]\nDriver=" << VRDPPO_SQLITE_ODBC_DRIVER << "\n";
    std::ofstream(dir / "odbc.ini")
        << "[" << toUtf8(kTestDsn)
        << "]\nDriver=vrdppo SQLite3\nDatabase=" << (dir / "dsn.db").string() << "\n";
    ::setenv("ODBCSYSINI", dir.c_str(), 1);
    ::setenv("ODBCINSTINI", "odbcinst.ini", 1);
    ::setenv("ODBCINI", (dir / "odbc.ini").c_str(), 1);
    // The SQLite driver has no wide calls: the driver manager converts text for it in the
    // character set of the process's locale, and the "C" locale's is ASCII.
    std::setlocale(LC_CTYPE, "C.UTF-8");
    // The SQLite driver loads the installer library to read a data source and unloads it
    // afterwards, orphaning that library's cache of odbc.ini; holding it loaded keeps the cache
    // reachable, so the leak checker reports only leaks of ours.
    ::dlopen("libodbcinst.so.2", RTLD_NOW);
    registerProvider();
  }

  void TearDown() override {
    std::error_code ignored;
    fs::remove_all(scratchDir(), ignored);
  }
};

[[maybe_unused]] ::testing::Environment* const kEnvironment =
    ::testing::AddGlobalTestEnvironment(new OdbcEnvironment);

}  // namespace

}  // namespace vrdppo::odbc::testing

namespace vrdppo {

void PrintTo(const Variant& v, std::ostream* os) {
  *os << varTypeName(v.type());
  if (!v.isNull() && !v.isEmpty()) *os << " " << toUtf8(toString(v));
}

}  // namespace vrdppo
