// What a statement may leave behind in the session of the server's connection that ran it, read
// from its text: the part of the state that the next user of a pooled connection must not find.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace vrdppo::odbc {

// The gateway's own first statement, which every gateway call sends and so may carry over.
inline constexpr std::u16string_view kGatewaySet = u"SET QUOTED_IDENTIFIER OFF";

struct SessionEffects {
  // Something no statement can cheaply undo: a SET option, a temporary object, another database
  // (USE), another identity (EXECUTE AS, SETUSER, an application role), a global cursor, a lock
  // held for the session, the session context set by other means than the gateway.
  bool lasting = false;
  // A transaction may have been begun, saved or left open.
  bool transaction = false;
  // The audit trail id the text sets, when it is the gateway's whole "exec ZZ_SetAuditTrailID n".
  std::optional<std::int32_t> auditTrailId;
};

// Reads the words of a T-SQL text, string literals, quoted names and comments passed over. It
// errs on the side of `lasting`: a column named USE costs a physical connection, never a leak.
SessionEffects sessionEffects(std::u16string_view sql);

// The id of a text that is exactly the gateway's "exec ZZ_SetAuditTrailID n".
std::optional<std::int32_t> gatewayAuditTrailId(std::u16string_view sql);

}  // namespace vrdppo::odbc
