// Whether a statement is known to leave nothing in the session of the server's connection that
// ran it, read from its text: what decides whether a kept session is handed on or logged out.
//
// The reader knows what is safe rather than what is not: no list of what may change a session
// can be complete (procedures, dynamic SQL, bracketed and qualified names), so a text it does not
// positively recognise counts as having changed the session.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace vrdppo::odbc {

// The gateway's own first statement, which every gateway call sends and so may carry over.
inline constexpr std::u16string_view kGatewaySet = u"SET QUOTED_IDENTIFIER OFF";

struct SessionEffects {
  // The text leaves nothing behind that the next caller could find: the gateway's own SET and
  // audit trail call, plain queries and data changes, and calls of the known procedures.
  bool plain = false;
  // The audit trail id the text sets, when it is the gateway's whole "exec ZZ_SetAuditTrailID n".
  std::optional<std::int32_t> auditTrailId;
};

SessionEffects sessionEffects(std::u16string_view sql);

// The id of a text that is exactly the gateway's "exec ZZ_SetAuditTrailID n".
std::optional<std::int32_t> gatewayAuditTrailId(std::u16string_view sql);

// A stored procedure of the database that the reader may count as leaving nothing behind, and
// what it does with its text arguments.
struct KnownProcedure {
  enum class Text : std::uint8_t {
    Data,       // its arguments are values only
    Statement,  // it runs its text argument as a statement: that must be plain itself
    Fragments,  // it builds statements around its text arguments (a table, a condition)
  };
  std::u16string_view name;
  Text text = Text::Data;
};

// The procedures whose calls keep a session, for the process; the names must outlive the calls
// (the database's own list, a static table). Before any is given, no call keeps one.
void setKnownProcedures(std::span<const KnownProcedure> procedures);

}  // namespace vrdppo::odbc
