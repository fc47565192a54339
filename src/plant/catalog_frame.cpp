// The frame's procedures: the two insert procedures and the audit trail id of a connection.
#include "plant/catalog.hpp"
#include "providers/embedded/session.hpp"

namespace vrdppo::embedded {

namespace {

// @p_Stmt holds an INSERT; it runs on the caller's connection, and the one row answered names
// the key the store gave the new row (Null when the statement inserted nothing).
std::shared_ptr<Recordset> insertStatement(Session& session, const ProcArgs& args) {
  const Variant& stmt = args.get(0, u"p_Stmt");
  auto result = std::make_shared<Recordset>(std::vector<std::u16string>{u"Identity"});
  if (stmt.isNull()) {
    result->pushCell(Variant::null());
  } else {
    session.execute(stmt.type() == VarType::String ? stmt.str() : toString(stmt));
    const std::int64_t id = session.lastInsertId();
    if (session.changes() == 0 || id == 0) {
      result->pushCell(Variant::null());
    } else if (id >= INT32_MIN && id <= INT32_MAX) {
      result->pushCell(Variant(static_cast<std::int32_t>(id)));
    } else {
      result->pushCell(Variant(id));
    }
  }
  result->rewind();
  return result;
}

// The id stays with the connection; SQL reads it as audittrailid(), so that a trigger can stamp
// the rows a statement writes with it.
std::shared_ptr<Recordset> setAuditTrailId(Session& session, const ProcArgs& args) {
  const Variant& id = args.get(0, u"p_AuditTrailID");
  session.setAuditTrailId(id.isNull() ? 0 : toLong(id));
  return nullptr;
}

}  // namespace

void addFrameCatalog(Catalog& c) {
  c.procedure(u"sp_InsertStatement", {u"p_Stmt"}, insertStatement);
  c.procedure(u"qsp_InsertStatement", {u"p_Stmt"}, insertStatement);
  c.procedure(u"ZZ_SetAuditTrailID", {u"p_AuditTrailID"}, setAuditTrailId);
}

}  // namespace vrdppo::embedded
