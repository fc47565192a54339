// The physical connections that the ODBC provider keeps between statements.
#pragma once

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "vrdppo/observer.hpp"

#include "vrdppo/visibility.hpp"

VRDPPO_PUBLIC_BEGIN
namespace vrdppo::odbc {

// Server connections kept idle for the next statement, over every connection string.
std::size_t idleConnections();

// What the kept server sessions are doing, and have done since the process began.
struct PoolFigures {
  struct ForString {
    std::u16string connection;  // passwords masked
    std::size_t idle = 0;
    std::size_t inUse = 0;
  };
  std::vector<ForString> strings;  // every string with a session idle or in use
  std::size_t idle = 0;
  std::size_t inUse = 0;
  std::uint64_t logins = 0;
  std::uint64_t failedLogins = 0;
  std::uint64_t reuses = 0;
  std::array<std::uint64_t, kLogoutCauses> logouts{};  // by LogoutCause
  std::chrono::nanoseconds loginTime{};                // spent in logins, failed ones included
};
PoolFigures poolFigures();

// The figures as a few lines of text ("sessions: 1 idle, 0 in use; logins: 3 in 12.3 ms; ..."),
// as the tool's --trace ends.
std::string poolFiguresText(const PoolFigures& figures);

// Logs out every idle server connection now (a database that one of them uses can then be
// dropped or restored); the next statement logs in afresh.
void releaseIdleConnections();

}  // namespace vrdppo::odbc
VRDPPO_PUBLIC_END
