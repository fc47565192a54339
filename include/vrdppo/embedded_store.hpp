// The embedded store: a SQLite database file behind the provider interface, speaking the SQL
// dialect that the library and its clients send to a server.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "vrdppo/provider.hpp"
#include "vrdppo/visibility.hpp"

VRDPPO_PUBLIC_BEGIN
namespace vrdppo::embedded {

// The value of the `Provider` key that selects the store.
inline constexpr std::u16string_view kProviderName = u"vrdppo.Embedded";

// Registers the store with the provider registry under the name "embedded".
void registerProvider();

// True for a connection string whose `Provider` key names the store (without regard to case).
bool accepts(std::u16string_view connect);

// "Provider=vrdppo.Embedded;Data Source=<path>".
std::u16string connectString(const std::string& path);

// A new, unopened connection of the store (what the registry's factory makes).
std::unique_ptr<ProviderConnection> makeConnection();

// Creates the store file with its schema when it is missing and brings an older schema up to
// date. Connections do this by themselves on their first open of a file in a process; calling it
// first only moves that cost, and reports a bad path early. Raises the provider-failure error.
void openStore(const std::string& path);

// Lets go of what the process keeps open on a file between statements, so that the file may be
// deleted or replaced; the next connection to it checks its schema again.
void releaseStore(const std::string& path);

}  // namespace vrdppo::embedded
VRDPPO_PUBLIC_END
