// The number of the library error a call raises, for tests that compare numbers.
#pragma once

#include <cstdint>
#include <functional>

#include "vrdppo/error.hpp"

namespace vrdppo::testing {

// The number of the vrdppo::Error that f raises; 0 when it raises none.
inline std::int32_t numberOf(const std::function<void()>& f) {
  try {
    f();
  } catch (const Error& e) {
    return e.number();
  }
  return 0;
}

}  // namespace vrdppo::testing
