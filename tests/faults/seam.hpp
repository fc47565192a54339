// The fault seam: this executable links the library with -Wl,--wrap for each SQLite and ODBC
// call it makes, so every such call passes through here and the k-th of them can be made to
// fail as the engine or the driver manager would report a failure. The seam also counts the
// handles the library holds, so that a failure path that leaks one shows.
#pragma once

#include <cstdint>
#include <string>

namespace vrdppo::faults {

// From now on, count the calls; the k-th fails (k = 0: none does).
void arm(long k);
// From now on, the first call to the named function fails.
void armCall(const char* name);
// Stop counting and failing; the calls made since arm.
long disarm();
// The call that failed since arm, empty if the count never reached k.
const std::string& failed();

// SQLite connections and statements the library has open.
long sqliteConnections();
long sqliteStatements();
// ODBC connection and statement handles allocated and not freed, and connections connected.
long odbcHandles();
long odbcConnected();

}  // namespace vrdppo::faults
