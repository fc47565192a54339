#include "frame/class_list.hpp"
#include "vrdppo/production/stems.hpp"

namespace vrdppo::production {

std::vector<const ClassInfo*> classes() {
  return {&cStemsPersist::info(), &cvRunPickingTypesPersist::info()};
}

}  // namespace vrdppo::production
