// A login that ends: FreeTDS's driver bounds a login in time only when it knows which protocol
// version to speak.
#pragma once

#include <string>
#include <string_view>

namespace vrdppo::odbc {

// The connection string for SQLDriverConnectW, with ";TDS_Version=7.4" added when the driver it
// names (by DRIVER=, or through its DSN's entry in odbc.ini) is FreeTDS's and nothing names a
// version: not the string, not the DSN, not a freetds.conf entry it names (Servername), not
// TDSVER. Left to negotiate, FreeTDS falls back after the 7.x login times out to a 5.0 login that
// waits on a silent server for ever; 7.4 is what it tries first, and no server this library
// serves speaks 5.0. A freetds.conf [global] version needs no reading here: it reaches a login
// only through a section that Servername names (FreeTDS 1.3, measured: with SERVER=host it logs
// in at 7.4 whatever [global] says, and at [global]'s version through Servername). Unchanged on
// Windows, where the driver is the platform's.
std::u16string withBoundedLogin(std::u16string_view connect);

}  // namespace vrdppo::odbc
