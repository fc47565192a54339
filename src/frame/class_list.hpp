#pragma once

#include <vector>

#include "vrdppo/registry.hpp"

namespace vrdppo {

// Every class of the library, in the order of its type library.
std::vector<const ClassInfo*> allClasses();

// Each subsystem's classes.
namespace reference {
std::vector<const ClassInfo*> classes();
}
namespace production {
std::vector<const ClassInfo*> classes();
}
namespace greenleaf {
std::vector<const ClassInfo*> classes();
}
namespace cages {
std::vector<const ClassInfo*> classes();
}
namespace lab {
std::vector<const ClassInfo*> classes();
}

}  // namespace vrdppo
