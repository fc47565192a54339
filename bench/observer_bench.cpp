// What an installed observer costs a one-row call on the embedded store: Load by key and Commit of
// an existing record, with no observer and with one that does nothing (the server's calls have
// the same pair in calls_bench.cpp).
#include <benchmark/benchmark.h>

#include <memory>
#include <string>

#include "bench_store.hpp"
#include "vrdppo/observer.hpp"
#include "vrdppo/production/stems.hpp"
#include "vrdppo/render.hpp"

namespace vrdppo::bench {

void observeWithNothing(bool on) {
  struct NoOp final : Observer {
    void onStatement(const StatementEvent& /*event*/) override {}
  };
  observe::setProcessObserver(on ? std::make_shared<NoOp>() : nullptr);
}

}  // namespace vrdppo::bench

namespace {

// A store of its own with one stem, so that Load by key reads a row and Commit updates it.
const vrdppo::bench::Store& oneRowStore() {
  static const vrdppo::bench::Store s = [] {
    vrdppo::bench::Store store = vrdppo::bench::freshStore("vrdppo-observer-bench.db");
    vrdppo::cStemsPersist stems;
    vrdppo::initialiseRecord(stems.layout(), stems.recordBytes());
    stems.record().TotalNetWeight = 125.5;
    stems.record().ProductionRunId = 7;
    if (!stems.Commit(stems.GetState(), store.connect)) throw std::runtime_error("no first row");
    return store;
  }();
  return s;
}

void loadByKey(benchmark::State& state, bool observed) {
  const auto& s = oneRowStore();
  vrdppo::cStemsPersist stems;
  vrdppo::bench::observeWithNothing(observed);
  for (auto _ : state) benchmark::DoNotOptimize(stems.Load(u"StemsId = 1", s.connect).size());
  vrdppo::bench::observeWithNothing(false);
  state.SetItemsProcessed(state.iterations());
}

void commitExisting(benchmark::State& state, bool observed) {
  const auto& s = oneRowStore();
  vrdppo::cStemsPersist stems;
  vrdppo::initialiseRecord(stems.layout(), stems.recordBytes());
  stems.record().StemsId = 1;
  stems.record().TotalNetWeight = 125.5;
  stems.record().ProductionRunId = 7;
  const std::u16string existing = stems.GetState();
  vrdppo::bench::observeWithNothing(observed);
  for (auto _ : state) {
    if (!stems.Commit(existing, s.connect)) state.SkipWithError("update failed");
  }
  vrdppo::bench::observeWithNothing(false);
  state.SetItemsProcessed(state.iterations());
}

void BM_StoreLoadByKey(benchmark::State& state) {
  loadByKey(state, false);
}
void BM_StoreLoadByKeyObserved(benchmark::State& state) {
  loadByKey(state, true);
}
void BM_StoreCommitExisting(benchmark::State& state) {
  commitExisting(state, false);
}
void BM_StoreCommitExistingObserved(benchmark::State& state) {
  commitExisting(state, true);
}

}  // namespace

BENCHMARK(BM_StoreLoadByKey)->Unit(benchmark::kMicrosecond)->MinTime(1.0);
BENCHMARK(BM_StoreLoadByKeyObserved)->Unit(benchmark::kMicrosecond)->MinTime(1.0);
BENCHMARK(BM_StoreCommitExisting)->Unit(benchmark::kMicrosecond)->MinTime(1.0);
BENCHMARK(BM_StoreCommitExistingObserved)->Unit(benchmark::kMicrosecond)->MinTime(1.0);
