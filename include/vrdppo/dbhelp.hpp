// The gateway: one fresh connection per statement, the per-thread session data, ReplaceAll.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "vrdppo/recordset.hpp"
#include "vrdppo/row_sink.hpp"
#include "vrdppo/visibility.hpp"

VRDPPO_PUBLIC_BEGIN
namespace vrdppo::dbHelp {

// Per-thread session data. Only ConnectString is written by the library (by every operation
// that takes an sConnect); AppName and AuditTrailId start as the build set them.
extern thread_local std::u16string ConnectString;
extern thread_local std::u16string AppName;
extern thread_local std::int32_t AuditTrailId;

// The connection string compiled into the library, used when ConnectString is empty.
const std::u16string& DefaultConnectString();

// Opens a connection, runs sSql on it and returns its first result cut loose from the
// connection: an open recordset, or a closed one for a statement without rows.
std::shared_ptr<Recordset> OpenRecordset(const std::u16string& sSql);
// The same steps, the first result streamed into the sink as the provider steps through it.
void OpenRecordsetInto(const std::u16string& sSql, RecordSink& sink);

// sSource with every occurrence of sFind, from the left and never overlapping, replaced by
// sReplace; error 6 when an occurrence lies beyond position 32767 of what is left to scan,
// error 5 for an empty sFind (which would never end).
std::u16string ReplaceAll(const std::u16string& sSource, const std::u16string& sFind,
                          const std::u16string& sReplace);

}  // namespace vrdppo::dbHelp
VRDPPO_PUBLIC_END
