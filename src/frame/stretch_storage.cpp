#include "frame/stretch_storage.hpp"

#include <cstdint>
#include <cstdlib>

#if defined(__linux__)
#include <sys/mman.h>
#include <unistd.h>
#endif

namespace vrdppo::stretches {

bool mappedOnItsOwn([[maybe_unused]] std::size_t bytes) noexcept {
#if defined(__linux__)
  return bytes >= kHugePage / 2;
#else
  return false;
#endif
}

// Mapped storage is aligned to a huge page, so that all of it can be huge pages, and unmapping
// it gives its memory back at once.
void* allocate(std::size_t& bytes) noexcept {
  if (mappedOnItsOwn(bytes)) {
#if defined(__linux__)
    bytes = (bytes + kHugePage - 1) & ~(kHugePage - 1);
    void* p = mmap(nullptr, bytes + kHugePage, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS,
                   -1, 0);
    if (p == MAP_FAILED) return nullptr;
    const auto at = reinterpret_cast<std::uintptr_t>(p);
    const auto begin = (at + kHugePage - 1) & ~(kHugePage - 1);
    const auto end = at + bytes + kHugePage;
    if (begin > at) munmap(p, begin - at);
    if (end > begin + bytes) munmap(reinterpret_cast<void*>(begin + bytes), end - begin - bytes);
    adviseHuge(reinterpret_cast<void*>(begin), bytes);
    return reinterpret_cast<void*>(begin);
#endif
  }
  return std::malloc(bytes);
}

void release(void* data, std::size_t bytes) noexcept {
  if (mappedOnItsOwn(bytes)) {
#if defined(__linux__)
    munmap(data, bytes);
    return;
#endif
  }
  std::free(data);
}

// On a large Load a fault for every 4 KiB page costs more than writing the page. Only whole pages
// inside the range are advised: what lies around it may be another allocation's.
void adviseHuge([[maybe_unused]] void* from, [[maybe_unused]] std::size_t bytes) noexcept {
#if defined(__linux__) && defined(MADV_HUGEPAGE)
  static const auto page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
  const auto begin = (reinterpret_cast<std::uintptr_t>(from) + page - 1) & ~(page - 1);
  const auto end = (reinterpret_cast<std::uintptr_t>(from) + bytes) & ~(page - 1);
  if (end > begin) madvise(reinterpret_cast<void*>(begin), end - begin, MADV_HUGEPAGE);
#endif
}

}  // namespace vrdppo::stretches
