#include "frame/class_list.hpp"

namespace vrdppo::greenleaf {

std::vector<const ClassInfo*> classes() {
  return {};
}

}  // namespace vrdppo::greenleaf
