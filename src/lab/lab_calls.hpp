// What the laboratory classes share beyond the contract: the start of every operation, plain
// statements through the gateway, the retried call, and the two container checks.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <span>
#include <string>

#include "vrdppo/operations.hpp"
#include "vrdppo/persist.hpp"
#include "vrdppo/record.hpp"
#include "vrdppo/registry.hpp"

namespace vrdppo::lab {

// sConnect becomes the thread's ConnectString; sBuffer, where the operation has one, replaces
// the object's record although no statement reads it.
void begin(PersistObject& object, const std::u16string& sBuffer, const std::u16string& sConnect);

// Runs the statement through the gateway up to three times at once, until the first column of
// the first row, read by position, holds one of the success values. A Null there is a failed
// attempt; a failed statement or a missing row raises at once. Only the last recordset is
// closed: the earlier ones are simply let go.
bool retried(const std::u16string& sql, std::initializer_list<std::int32_t> success);

// The hold check on a container: Status goes in as it stands, undoubled. Always True.
bool onHoldCheck(PersistObject& object, const std::u16string& sBuffer,
                 const std::u16string& sConnect, Long gradeId, Long containerNumber,
                 const std::u16string& status, Long userId);
// Whether a container is prized: RetVal of the first row equals 1; a Null there raises.
bool containerPrized(PersistObject& object, const std::u16string& sBuffer,
                     const std::u16string& sConnect, Long gradeId, Long containerNumber);

// A member (sBuffer, sConnect, lID) -> Boolean: the retried calls.
template <class C, bool (C::*F)(const std::u16string&, const std::u16string&, Long)>
MemberInfo idCallMember(std::string name) {
  return method<C>(std::move(name), {stringArg("sBuffer"), stringArg("sConnect"), longArg("lID")},
                   ValueType::Boolean, [](C& o, std::span<const Variant> a) {
                     return Variant((o.*F)(a[0].str(), a[1].str(), a[2].lng()));
                   });
}

template <class C>
MemberInfo onHoldCheckMember() {
  return method<C>("qsp_OnHoldCheck",
                   {stringArg("sBuffer"), stringArg("sConnect"), longArg("GradeId"),
                    longArg("ContainerNumber"), stringArg("Status"), longArg("UserID")},
                   ValueType::Boolean, [](C& o, std::span<const Variant> a) {
                     return Variant(o.qsp_OnHoldCheck(a[0].str(), a[1].str(), a[2].lng(),
                                                      a[3].lng(), a[4].str(), a[5].lng()));
                   });
}

template <class C>
MemberInfo containerPrizedMember() {
  return method<C>(
      "qsp_ContainerPrized",
      {stringArg("sBuffer"), stringArg("sConnect"), longArg("GradeId"), longArg("ContainerNumber")},
      ValueType::Boolean, [](C& o, std::span<const Variant> a) {
        return Variant(o.qsp_ContainerPrized(a[0].str(), a[1].str(), a[2].lng(), a[3].lng()));
      });
}

}  // namespace vrdppo::lab
