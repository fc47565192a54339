#include "frame/builtin_providers.hpp"

#include <mutex>

#include "providers/embedded/embedded_store.hpp"
#include "providers/odbc/odbc_provider.hpp"

namespace vrdppo {

void registerBuiltinProviders() {
  static std::once_flag once;
  std::call_once(once, [] {
    odbc::registerProvider();
    embedded::registerProvider();
  });
}

}  // namespace vrdppo
