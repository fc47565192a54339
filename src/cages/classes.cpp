#include "frame/class_list.hpp"
#include "vrdppo/cages/cages.hpp"
#include "vrdppo/cages/movements.hpp"

namespace vrdppo::cages {

std::vector<const ClassInfo*> classes() {
  return {&cCagePersist::info(),
          &cCageStatusPersist::info(),
          &cCageContentPersist::info(),
          &cvCageContentPersist::info(),
          &cCageMovementPersist::info(),
          &cCageLogPersist::info(),
          &cCageMoveCommentPersist::info(),
          &cvCageLogPersist::info()};
}

}  // namespace vrdppo::cages
