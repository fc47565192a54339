// The plant's stored procedures as the ODBC provider's session reader knows them: their calls
// leave nothing in a server session, so a session that ran one may be kept.
#pragma once

#include <span>

#include "providers/odbc/odbc_session_effects.hpp"

namespace vrdppo::plant {

// Every procedure of sql/sqlserver/procedures.sql but ZZ_SetAuditTrailID, whose one kept form is
// the gateway's own text.
std::span<const odbc::KnownProcedure> knownProcedures();

}  // namespace vrdppo::plant
