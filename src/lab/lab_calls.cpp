#include "lab/lab_calls.hpp"

#include "vrdppo/dbhelp.hpp"
#include "vrdppo/recordset.hpp"
#include "vrdppo/variant.hpp"

namespace vrdppo::lab {

void begin(PersistObject& object, const std::u16string& sBuffer, const std::u16string& sConnect) {
  dbHelp::ConnectString = sConnect;
  object.SetState(sBuffer);
}

bool retried(const std::u16string& sql, std::initializer_list<std::int32_t> success) {
  bool result = false;
  std::shared_ptr<Recordset> rs;
  for (int attempt = 0; attempt < 3 && !result; ++attempt) {
    rs = dbHelp::OpenRecordset(sql);
    const Variant& answer = rs->Fields(std::size_t{0});
    if (answer.isNull()) continue;
    const double value = toDouble(answer);
    for (const std::int32_t s : success) {
      if (value == s) result = true;
    }
  }
  if (rs->State() == adStateOpen) rs->Close();
  return result;
}

bool onHoldCheck(PersistObject& object, const std::u16string& sBuffer,
                 const std::u16string& sConnect, Long gradeId, Long containerNumber,
                 const std::u16string& status, Long userId) {
  begin(object, sBuffer, sConnect);
  runStatement(u"EXEC qsp_OnHoldCheck @p_GradeID= " + longText(gradeId) + u", @p_ContainerNumber=" +
               longText(containerNumber) + u", @p_Status='" + status + u"', @p_UserID=" +
               longText(userId));
  return true;
}

bool containerPrized(PersistObject& object, const std::u16string& sBuffer,
                     const std::u16string& sConnect, Long gradeId, Long containerNumber) {
  begin(object, sBuffer, sConnect);
  const auto rs =
      dbHelp::OpenRecordset(u"EXEC qsp_ContainerPrized @p_GradeID= " + longText(gradeId) +
                            u", @p_ContainerNumber=" + longText(containerNumber));
  // Comparing a Null with 1 is an invalid use of Null, not a No.
  const bool prized = toDouble(rs->Fields(u"RetVal")) == 1;
  if (rs->State() == adStateOpen) rs->Close();
  return prized;
}

}  // namespace vrdppo::lab
