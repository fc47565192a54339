// The thread locale's separators, which number and date texts follow. The library never changes
// them; a client (or a test) may, and the texts then follow as the platform's would.
#pragma once

#include "vrdppo/visibility.hpp"

VRDPPO_PUBLIC_BEGIN
namespace vrdppo {

struct LocaleSeparators {
  char16_t decimal = u'.';
  char16_t date = u'/';
  char16_t time = u':';
};

LocaleSeparators& threadSeparators() noexcept;

}  // namespace vrdppo
VRDPPO_PUBLIC_END
