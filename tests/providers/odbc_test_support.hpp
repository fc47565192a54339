// The SQLite ODBC driver registered for these tests only, and fresh databases to connect to.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace vrdppo::odbc::testing {

// This process's scratch folder, holding the test-local odbcinst.ini and odbc.ini.
const std::filesystem::path& scratchDir();

// A connection string for a new, empty database file named after the test.
std::u16string freshDatabase(std::string_view name);

// A data source defined in the test-local odbc.ini, on its own database file.
inline constexpr char16_t kTestDsn[] = u"vrdppo-test";

}  // namespace vrdppo::odbc::testing

#include <ostream>

#include "vrdppo/variant.hpp"

namespace vrdppo {
// Readable values in failure messages.
void PrintTo(const Variant& v, std::ostream* os);
}  // namespace vrdppo
