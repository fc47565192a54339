// The physical connections that the ODBC provider keeps between statements.
#pragma once

#include <cstddef>

#include "vrdppo/visibility.hpp"

VRDPPO_PUBLIC_BEGIN
namespace vrdppo::odbc {

// Server connections kept idle for the next statement, over every connection string.
std::size_t idleConnections();

// Logs out every idle server connection now (a database that one of them uses can then be
// dropped or restored); the next statement logs in afresh.
void releaseIdleConnections();

}  // namespace vrdppo::odbc
VRDPPO_PUBLIC_END
