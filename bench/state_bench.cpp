// GetState, SetState and the decoding of every record of a Buffer state (ItemView, then the
// object's SetState), each against a memcpy of the same bytes into storage already in hand.
#include <benchmark/benchmark.h>

#include <cstring>
#include <string>

#include "bench_store.hpp"
#include "vrdppo/buffer.hpp"
#include "vrdppo/production/stems.hpp"

namespace {

const std::u16string& stemsState() {
  static const std::u16string s =
      vrdppo::cStemsPersist().Load(u"", vrdppo::bench::stemsStore().connect);
  return s;
}

void bytesProcessed(benchmark::State& state) {
  state.SetBytesProcessed(state.iterations() *
                          static_cast<std::int64_t>(stemsState().size() * sizeof(char16_t)));
}

void BM_MemcpyState(benchmark::State& state) {
  const std::u16string& from = stemsState();
  std::u16string to(from.size(), u'\0');
  for (auto _ : state) {
    std::memcpy(to.data(), from.data(), from.size() * sizeof(char16_t));
    benchmark::DoNotOptimize(to.data());
    benchmark::ClobberMemory();
  }
  bytesProcessed(state);
}

void BM_BufferGetState(benchmark::State& state) {
  // A Buffer that SetState alone filled gives nothing back (it keeps its next position), so this
  // one is filled as Load's callers fill theirs: Initialize, then Add.
  vrdppo::Buffer loaded;
  loaded.SetState(stemsState());
  vrdppo::Buffer b;
  b.Initialize(43, loaded.Count());
  for (std::int32_t i = 1; i <= loaded.Count(); ++i) b.Add(loaded.ItemView(i));
  for (auto _ : state) {
    const std::u16string s = b.GetState();
    benchmark::DoNotOptimize(s.data());
  }
  bytesProcessed(state);
}

void BM_BufferSetState(benchmark::State& state) {
  vrdppo::Buffer b;
  for (auto _ : state) {
    b.SetState(stemsState());
    benchmark::ClobberMemory();
  }
  bytesProcessed(state);
}

void BM_DecodeEveryRecord(benchmark::State& state) {
  vrdppo::Buffer b;
  b.SetState(stemsState());
  vrdppo::cStemsPersist o;
  for (auto _ : state) {
    for (std::int32_t i = 1, n = b.Count(); i <= n; ++i) {
      o.SetState(b.ItemView(i));
      benchmark::DoNotOptimize(o.record());
    }
  }
  bytesProcessed(state);
}

}  // namespace

BENCHMARK(BM_MemcpyState)->Unit(benchmark::kMicrosecond)->MinTime(1.0);
BENCHMARK(BM_BufferGetState)->Unit(benchmark::kMicrosecond)->MinTime(1.0);
BENCHMARK(BM_BufferSetState)->Unit(benchmark::kMicrosecond)->MinTime(1.0);
BENCHMARK(BM_DecodeEveryRecord)->Unit(benchmark::kMicrosecond)->MinTime(1.0);
