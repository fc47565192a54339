#pragma once

namespace vrdppo {

// Registers the ODBC provider and the embedded store once per process, ahead of any provider a
// client adds, so that a client's own registration takes precedence.
void registerBuiltinProviders();

}  // namespace vrdppo
