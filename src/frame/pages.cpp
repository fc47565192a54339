// Compiled to the newer standard where the compiler has it, for resize_and_overwrite: without it
// a string's storage cannot be had unwritten, and blanking it would cost what moving saves.
#include "frame/pages.hpp"

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#if defined(__linux__)
#include <sys/mman.h>
#include <unistd.h>
#endif

namespace vrdppo::pages {

namespace {

#if defined(__linux__)
// A string this large is always mapped on its own by the allocators in use: glibc's threshold
// for mapping rises with the blocks freed, but never past 32 MiB.
constexpr std::size_t kReceivesFrom = std::size_t{32} << 20;  // bytes

std::uintptr_t pageSize() noexcept {
  static const auto page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
  return page;
}

// glibc's allocator puts two words of its own before the storage of a block it maps.
std::atomic<std::size_t> lastOffset{2 * sizeof(std::size_t)};
#endif

std::atomic<std::size_t> moved{0};

}  // namespace

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
    munmap(data, bytes);  // pages moved away leave holes, which munmap passes over
    return;
#endif
  }
  std::free(data);
}

// On a large Load a fault for every 4 KiB page costs more than writing the page. Only whole pages
// inside the block are advised; an allocator's own words lie outside them.
void adviseHuge([[maybe_unused]] void* from, [[maybe_unused]] std::size_t bytes) noexcept {
#if defined(__linux__) && defined(MADV_HUGEPAGE)
  const std::uintptr_t page = pageSize();
  const auto begin = (reinterpret_cast<std::uintptr_t>(from) + page - 1) & ~(page - 1);
  const auto end = (reinterpret_cast<std::uintptr_t>(from) + bytes) & ~(page - 1);
  if (end > begin) madvise(reinterpret_cast<void*>(begin), end - begin, MADV_HUGEPAGE);
#endif
}

bool receivesPages([[maybe_unused]] std::size_t chars) noexcept {
#if defined(__linux__) && defined(__cpp_lib_string_resize_and_overwrite)
  return chars * sizeof(char16_t) >= kReceivesFrom;
#else
  return false;
#endif
}

std::size_t offsetWithinPage([[maybe_unused]] std::size_t at) noexcept {
#if defined(__linux__)
  return (lastOffset.load(std::memory_order_relaxed) + at) % pageSize();
#else
  return 0;
#endif
}

void move(char16_t* to, char16_t* from, std::size_t chars) noexcept {
  const std::size_t bytes = chars * sizeof(char16_t);
#if defined(__linux__)
  const std::uintptr_t page = pageSize();
  const auto t = reinterpret_cast<std::uintptr_t>(to);
  const auto f = reinterpret_cast<std::uintptr_t>(from);
  if ((t - f) % page == 0) {
    const std::size_t head = (page - t % page) % page;
    const std::size_t whole = bytes > head ? (bytes - head) & ~(page - 1) : 0;
    if (whole != 0 &&
        mremap(reinterpret_cast<void*>(f + head), whole, whole, MREMAP_MAYMOVE | MREMAP_FIXED,
               reinterpret_cast<void*>(t + head)) != MAP_FAILED) {
      std::memcpy(to, from, head);
      std::memcpy(reinterpret_cast<void*>(t + head + whole),
                  reinterpret_cast<const void*>(f + head + whole), bytes - head - whole);
      moved.fetch_add(whole, std::memory_order_relaxed);
      return;
    }
  }
#endif
  std::memcpy(to, from, bytes);
}

std::size_t movedBytes() noexcept {
  return moved.load(std::memory_order_relaxed);
}

std::u16string filledString(std::size_t chars, Fill fill, void* context) {
  std::u16string out;
#if defined(__cpp_lib_string_resize_and_overwrite)
  // g++ 12 hands the operation the storage's capacity where it had to grow it, not the size
  // asked for: the size is ours.
  out.resize_and_overwrite(chars, [&](char16_t* data, std::size_t) {
#if defined(__linux__)
    if (receivesPages(chars)) {
      lastOffset.store(reinterpret_cast<std::uintptr_t>(data) % pageSize(),
                       std::memory_order_relaxed);
    }
#endif
    fill(data, chars, context);
    return chars;
  });
#else
  out.resize(chars);
  fill(out.data(), chars, context);
#endif
  return out;
}

}  // namespace vrdppo::pages
