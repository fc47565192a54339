// The benchmark stores, each made once per process and shared by every benchmark that reads it.
#pragma once

#include <string>

namespace vrdppo::bench {

struct Store {
  std::string path;
  std::u16string connect;
};

inline constexpr int kRows = 100000;

// kRows stems.
const Store& stemsStore();
// kRows degradation tests and kRows stations.
const Store& classesStore();

}  // namespace vrdppo::bench
