// The laboratory: headers, settings, samples, summaries, advice notes, holds and exports.
#include "providers/embedded/catalog.hpp"

namespace vrdppo::embedded {

void addLabCatalog(Catalog&) {}

}  // namespace vrdppo::embedded
