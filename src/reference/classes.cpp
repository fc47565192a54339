#include "frame/class_list.hpp"
#include "vrdppo/reference/grades.hpp"

namespace vrdppo::reference {

std::vector<const ClassInfo*> classes() {
  return {&cGreenGradePersist::info(), &cvGreenGradeListPersist::info(),
          &cProductionGradePersist::info(), &cProductionGradeSpecPersist::info(),
          &cvProductionGradeListPersist::info()};
}

}  // namespace vrdppo::reference
