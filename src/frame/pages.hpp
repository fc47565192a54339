// Storage for large states taken from the system by pages, and handed on to the string a caller
// keeps by moving the pages rather than copying what they hold, where the system allows it.
#pragma once

#include <cstddef>
#include <string>

namespace vrdppo::pages {

// Bytes in a huge page, the unit in which storage mapped on its own is taken.
inline constexpr std::size_t kHugePage = std::size_t{2} << 20;

// Whether storage of this many bytes is mapped on its own (and so its pages can move).
bool mappedOnItsOwn(std::size_t bytes) noexcept;

// Storage for about `bytes`; storage mapped on its own is rounded up to whole huge pages, and
// `bytes` is then what it holds. Null where the system has none.
void* allocate(std::size_t& bytes) noexcept;
void release(void* data, std::size_t bytes) noexcept;

// Advises the whole pages inside [from, from + bytes) as huge pages where the system has them.
void adviseHuge(void* from, std::size_t bytes) noexcept;

// Whether a string of this many characters receives pages rather than copies. Smaller strings
// may be served from the allocator's heap, whose pages are not to be replaced.
bool receivesPages(std::size_t chars) noexcept;

// Where within a page byte `at` of a string that receives pages most likely lies: the storage of
// the last such string started where the next one will.
std::size_t offsetWithinPage(std::size_t at) noexcept;

// Moves `chars` characters from `from`, inside storage mapped on its own, to `to`, inside a
// string that receives pages: the whole pages of the destination by remapping where both lie at
// the same place within a page, the rest by copying. Moved pages leave the source unmapped.
void move(char16_t* to, char16_t* from, std::size_t chars) noexcept;

// Bytes moved by remapping in this process so far.
std::size_t movedBytes() noexcept;

// A string of `chars` characters, all of which `fill(data, chars, context)` writes. Where the
// standard library allows, the storage is handed to `fill` unwritten, so that pages moved into
// it are never blanked first.
using Fill = void (*)(char16_t*, std::size_t, void*);
std::u16string filledString(std::size_t chars, Fill fill, void* context);

template <class F>
std::u16string filledString(std::size_t chars, F& fill) {
  return filledString(
      chars, [](char16_t* data, std::size_t n, void* f) { (*static_cast<F*>(f))(data, n); }, &fill);
}

}  // namespace vrdppo::pages
