// The demo's green leaf and cage section.
#include "demo.hpp"

namespace vrdppo::cli {

void demoGreenLeaf(DemoContext&) {}

}  // namespace vrdppo::cli
