// Reading a fuzzer's bytes as the values the library takes.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "vrdppo/error.hpp"

namespace vrdppo::fuzz {

class Input {
 public:
  Input(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}

  bool empty() const noexcept { return pos_ >= size_; }
  std::size_t left() const noexcept { return size_ - pos_; }

  std::uint8_t byte() noexcept { return pos_ < size_ ? data_[pos_++] : 0; }
  template <class T>
  T integer() noexcept {
    T v{};
    const std::size_t n = std::min(sizeof(T), left());
    std::memcpy(&v, data_ + pos_, n);
    pos_ += n;
    return v;
  }
  // n code units, two bytes each, little-endian as the states are.
  std::u16string units(std::size_t n) {
    std::u16string s;
    while (n-- > 0 && left() >= 2) {
      s += static_cast<char16_t>(data_[pos_] | (data_[pos_ + 1] << 8));
      pos_ += 2;
    }
    return s;
  }
  std::u16string rest() { return units(left() / 2); }
  std::string restBytes() {
    std::string s(reinterpret_cast<const char*>(data_ + pos_), left());
    pos_ = size_;
    return s;
  }

 private:
  const std::uint8_t* data_;
  std::size_t size_;
  std::size_t pos_ = 0;
};

// A property a harness checks: when it does not hold, its line is named and the process aborts,
// which the fuzzer reports with the input.
[[noreturn]] inline void fail(const char* what, int line) {
  std::fprintf(stderr, "line %d: %s does not hold\n", line, what);
  std::abort();
}
#define check(ok) ((ok) ? void() : ::vrdppo::fuzz::fail(#ok, __LINE__))

// Runs f; the library's own numbered error is an answer, anything else escapes to the fuzzer.
template <class F>
bool answers(F&& f) {
  try {
    f();
    return true;
  } catch (const Error&) {
    return false;
  }
}

// The number of the error f raises; 0 when it raises none.
template <class F>
std::int32_t errorNumber(F&& f) {
  try {
    f();
    return 0;
  } catch (const Error& e) {
    return e.number();
  }
}

}  // namespace vrdppo::fuzz
