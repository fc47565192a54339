#include "frame/builtin_providers.hpp"

#include <mutex>

#include "providers/odbc/odbc_provider.hpp"
#include "vrdppo/embedded_store.hpp"

namespace vrdppo {

void registerBuiltinProviders() {
  static std::once_flag once;
  std::call_once(once, [] {
    odbc::registerProvider();
    embedded::registerProvider();
  });
}

}  // namespace vrdppo
