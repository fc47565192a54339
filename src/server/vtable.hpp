// The dual vtables: IUnknown's and IDispatch's slots, then one slot per public member.
#pragma once

#include <cstddef>
#include <vector>

#include "vrdppo/registry.hpp"

namespace vrdppo::server {

inline constexpr std::size_t kMaxSlots = 32;    // public members of one class
inline constexpr std::size_t kMaxSlotArgs = 8;  // a member's arguments and its result

// Whether a member's arguments fit the generic slots: at most kMaxSlotArgs with the result, and
// none passed by value in a floating-point register.
bool vtableFits(const MemberInfo& m) noexcept;

std::vector<void (*)()> dualVtable(std::size_t members);

}  // namespace vrdppo::server
