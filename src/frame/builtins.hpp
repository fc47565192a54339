// What the library is built with. The frame calls these; the unit that assembles the library
// (src/library) defines them, so that the frame names no provider and no class.
#pragma once

#include <vector>

namespace vrdppo {

struct ClassInfo;

// Registers the built-in providers once per process, ahead of any provider a client adds, so
// that a client's own registration takes precedence.
void registerBuiltinProviders();

// Every class of the library, in the order of its type library.
std::vector<const ClassInfo*> builtinClasses();

}  // namespace vrdppo
