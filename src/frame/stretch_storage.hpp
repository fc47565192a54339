// Storage for the records of a large Load, taken from the system by pages where it is large
// enough to be worth huge pages, and from the heap otherwise.
#pragma once

#include <cstddef>

namespace vrdppo::stretches {

// Bytes in a huge page, the unit in which storage mapped on its own is taken.
inline constexpr std::size_t kHugePage = std::size_t{2} << 20;

// Whether storage of this many bytes is mapped on its own.
bool mappedOnItsOwn(std::size_t bytes) noexcept;

// Storage for about `bytes`; storage mapped on its own is rounded up to whole huge pages, and
// `bytes` is then what it holds. Null where the system has none.
void* allocate(std::size_t& bytes) noexcept;
void release(void* data, std::size_t bytes) noexcept;

// Advises the whole pages inside [from, from + bytes) as huge pages where the system has them.
void adviseHuge(void* from, std::size_t bytes) noexcept;

}  // namespace vrdppo::stretches
