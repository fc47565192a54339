#include "providers/odbc/odbc_login.hpp"

#ifndef _WIN32
#include <odbcinst.h>

#include <array>
#include <cstdlib>

#include "providers/odbc/odbc_handles.hpp"
#include "vrdppo/provider.hpp"
#endif

namespace vrdppo::odbc {

#ifdef _WIN32

std::u16string withBoundedLogin(std::u16string_view connect) {
  return std::u16string(connect);
}

#else

namespace {

// The keys by which FreeTDS takes its protocol version from elsewhere: given one, it is the
// user's choice, and a freetds.conf entry may pin a version of its own.
constexpr std::array<std::u16string_view, 2> kVersionKeys{u"TDS_Version", u"Servername"};

// An entry of odbc.ini ("ODBC.INI": the user's file, then the system's) or of odbcinst.ini;
// empty when absent. FreeTDS reads its settings through the same call, so names match as they
// match for it, without regard to case.
std::u16string profileValue(std::u16string_view section, std::u16string_view key,
                            std::u16string_view file) {
  std::array<SQLWCHAR, 1024> value{};
  const auto s = wide(section), k = wide(key), f = wide(file), none = wide(u"");
  const int length = SQLGetPrivateProfileStringW(s.data(), k.data(), none.data(), value.data(),
                                                 static_cast<int>(value.size()), f.data());
  if (length <= 0) return {};
  std::size_t end = 0;
  while (end < value.size() && value[end] != 0) ++end;
  return fromWide(value.data(), end);
}

bool namesVersion(std::u16string_view connect) {
  for (const auto key : kVersionKeys) {
    if (!connectionValue(connect, key).empty()) return true;
  }
  return false;
}

// The driver's library: a driver's name as odbcinst.ini registers it, or the path itself.
bool isFreeTds(std::u16string_view driver) {
  std::u16string library = profileValue(driver, u"Driver", u"ODBCINST.INI");
  if (library.empty()) library = driver;
  const auto slash = library.find_last_of(u'/');
  const std::u16string_view file =
      std::u16string_view(library).substr(slash == std::u16string::npos ? 0 : slash + 1);
  return file.starts_with(u"libtdsodbc");
}

}  // namespace

std::u16string withBoundedLogin(std::u16string_view connect) {
  std::u16string out(connect);
  const char* tdsver = std::getenv("TDSVER");
  if ((tdsver != nullptr && *tdsver != '\0') || namesVersion(connect)) return out;
  std::u16string driver = connectionValue(connect, u"DRIVER");
  const std::u16string dsn = connectionValue(connect, u"DSN");
  if (!dsn.empty()) {
    // Read even beside DRIVER=: where in doubt, the string is left as the user wrote it.
    for (const auto key : kVersionKeys) {
      if (!profileValue(dsn, key, u"ODBC.INI").empty()) return out;
    }
    if (driver.empty()) driver = profileValue(dsn, u"Driver", u"ODBC.INI");
  }
  if (driver.empty() || !isFreeTds(driver)) return out;
  if (!out.empty() && out.back() != u';') out += u';';
  return out + u"TDS_Version=7.4";
}

#endif

}  // namespace vrdppo::odbc
