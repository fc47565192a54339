// The embedded store orders and compares date columns by the moment each text stands for: every
// comparison parses both sides. Texts that are no date must be as cheap to rule out as dates are
// to read.
#include <benchmark/benchmark.h>

#include <array>
#include <string_view>

#include "providers/embedded/dates.hpp"

namespace {

using vrdppo::embedded::compareDateTexts;

void compareAll(benchmark::State& state, const std::array<std::string_view, 4>& texts) {
  for (auto _ : state) {
    int sum = 0;
    for (const auto a : texts) {
      for (const auto b : texts) sum += compareDateTexts(a, b);
    }
    benchmark::DoNotOptimize(sum);
  }
  state.SetItemsProcessed(state.iterations() * 16);
}

void BM_CompareDateTexts_Dates(benchmark::State& state) {
  compareAll(state, {"2024/03/07 06:30:00", "2024-03-07", "1900/01/01", "2026/11/22 23:59:59.500"});
}
BENCHMARK(BM_CompareDateTexts_Dates);

void BM_CompareDateTexts_TypedForms(benchmark::State& state) {
  compareAll(state, {"March 7, 2019", "7/3/2019 6:30 PM", "12/31/1999", "7 Mar 2019"});
}
BENCHMARK(BM_CompareDateTexts_TypedForms);

void BM_CompareDateTexts_NoDates(benchmark::State& state) {
  compareAll(state, {"", "pending", "2024/13/45", "n/a"});
}
BENCHMARK(BM_CompareDateTexts_NoDates);

}  // namespace
