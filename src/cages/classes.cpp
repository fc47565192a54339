#include "frame/class_list.hpp"

namespace vrdppo::cages {

std::vector<const ClassInfo*> classes() {
  return {};
}

}  // namespace vrdppo::cages
