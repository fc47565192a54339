// The demo's laboratory section.
#include "demo.hpp"

namespace vrdppo::cli {

void demoLab(DemoContext&) {}

}  // namespace vrdppo::cli
