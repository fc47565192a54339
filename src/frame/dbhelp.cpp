#include "vrdppo/dbhelp.hpp"

#include "vrdppo_build_config.hpp"

#include "vrdppo/error.hpp"
#include "vrdppo/provider.hpp"
#include "vrdppo/variant.hpp"

namespace vrdppo::dbHelp {

thread_local std::u16string ConnectString;
thread_local std::u16string AppName = VRDPPO_APP_NAME;
thread_local std::int32_t AuditTrailId = VRDPPO_AUDIT_TRAIL_ID;

const std::u16string& DefaultConnectString() {
  static const std::u16string s = VRDPPO_DEFAULT_CONNECT;
  return s;
}

namespace {

// Opens the connection and readies it for a statement: the quoted-identifier setting, the audit
// trail and no command time-out.
void prepare(Connection& connection) {
  connection.setCursorLocation(adUseClient);
  if (ConnectString.empty()) {
    connection.Open(DefaultConnectString(), {}, {}, adOptionUnspecified);
  } else if (!AppName.empty()) {
    connection.Open(ConnectString + u";APP=" + AppName, {}, {}, adOptionUnspecified);
  } else {
    connection.Open(ConnectString, {}, {}, adOptionUnspecified);
  }
  connection.Execute(u"SET QUOTED_IDENTIFIER OFF", adOptionUnspecified);
  if (AuditTrailId != 0) {
    connection.Execute(u"exec ZZ_SetAuditTrailID " + longText(AuditTrailId), adOptionUnspecified);
  }
  connection.setCommandTimeout(0);
}

}  // namespace

std::shared_ptr<Recordset> OpenRecordset(const std::u16string& sSql) {
  Connection connection;
  prepare(connection);
  auto recordset = connection.Execute(sSql, adOptionUnspecified);
  // The recordset holds its rows already; it has no connection to let go of.
  connection.Close();
  return recordset;
}

void OpenRecordsetInto(const std::u16string& sSql, RecordSink& sink) {
  Connection connection;
  prepare(connection);
  connection.ExecuteInto(sSql, sink, adOptionUnspecified);
  connection.Close();
}

std::u16string ReplaceAll(const std::u16string& sSource, const std::u16string& sFind,
                          const std::u16string& sReplace) {
  if (sFind.empty()) throw Error::runtime(err::kInvalidCall);
  std::u16string result;
  std::size_t rest = 0;  // start of what is left to scan
  for (;;) {
    const std::size_t at = sSource.find(sFind, rest);
    if (at == std::u16string::npos) break;
    // The platform takes the 1-based position within the rest as a 16-bit Integer.
    if (at - rest + 1 > 32767) throw Error::runtime(err::kOverflow);
    result.append(sSource, rest, at - rest);
    result += sReplace;
    rest = at + sFind.size();
  }
  result.append(sSource, rest, std::u16string::npos);
  return result;
}

}  // namespace vrdppo::dbHelp
