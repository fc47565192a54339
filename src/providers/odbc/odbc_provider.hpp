// The ODBC data provider: connection strings with a DRIVER or DSN key and no Provider key.
#pragma once

#include <cstdint>

namespace vrdppo::odbc {

// Adds the provider to the registry under the name "odbc"; later calls do nothing.
void registerProvider();

// ODBC handles (environment, connection, statement) currently allocated by the provider.
std::int64_t liveHandles() noexcept;

}  // namespace vrdppo::odbc
