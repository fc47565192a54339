// Load of 100,000 STEMS rows into a Buffer state, against a plain SQLite loop reading the same
// rows into structs; and the rate of Commit inserts.
#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench_store.hpp"
#include "vrdppo/production/stems.hpp"
#include "vrdppo/render.hpp"

namespace {

constexpr int kRows = 100000;

using vrdppo::bench::Store;

// A store holding kRows stems, made once per process.
const Store& store() {
  static const Store s = vrdppo::bench::filledStore("vrdppo-bench.db", [](sqlite3* db) {
    sqlite3_stmt* insert = nullptr;
    sqlite3_prepare_v2(db,
                       "INSERT INTO STEMS (TotalNetWeight, ContainerStart, ContainerEnd, "
                       "StemTypeId, ProductionRunId) VALUES (?, ?, ?, ?, ?)",
                       -1, &insert, nullptr);
    for (int i = 0; i < kRows; ++i) {
      sqlite3_bind_double(insert, 1, 100.0 + i % 1000 / 4.0);
      if (i % 3 == 0) {
        sqlite3_bind_null(insert, 2);
      } else {
        sqlite3_bind_int(insert, 2, i);
      }
      sqlite3_bind_int(insert, 3, i + 12);
      sqlite3_bind_int(insert, 4, i % 7);
      sqlite3_bind_int(insert, 5, 1 + i / 1000);
      sqlite3_step(insert);
      sqlite3_reset(insert);
    }
    sqlite3_finalize(insert);
  });
  return s;
}

void BM_LoadStemsIntoBuffer(benchmark::State& state) {
  vrdppo::bench::loadIntoBuffer<vrdppo::cStemsPersist>(state, store(), 43, kRows);
}

void BM_PlainSqliteIntoStructs(benchmark::State& state) {
  vrdppo::bench::plainSqliteIntoStructs<vrdppo::StemsRecord>(
      state, store(), "SELECT * FROM STEMS", kRows, [](sqlite3_stmt* select, auto& r) {
        r.StemsId = sqlite3_column_int(select, 0);
        r.TotalNetWeight = sqlite3_column_double(select, 1);
        r.ContainerStart = sqlite3_column_int(select, 2);
        r.ContainerEnd = sqlite3_column_int(select, 3);
        r.StemTypeID = sqlite3_column_int(select, 4);
        r.ProductionRunId = sqlite3_column_int(select, 5);
      });
}

void BM_CommitInsert(benchmark::State& state) {
  const Store& s = store();
  vrdppo::cStemsPersist stems;
  vrdppo::initialiseRecord(stems.layout(), stems.recordBytes());
  stems.record().TotalNetWeight = 125.5;
  stems.record().ContainerEnd = 12;
  stems.record().StemTypeID = 3;
  stems.record().ProductionRunId = 999999;
  const std::u16string fresh = stems.GetState();
  for (auto _ : state) {
    benchmark::DoNotOptimize(stems.Commit(fresh, s.connect));
  }
  state.SetItemsProcessed(state.iterations());
}

}  // namespace

BENCHMARK(BM_LoadStemsIntoBuffer)->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(BM_PlainSqliteIntoStructs)->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(BM_CommitInsert)->Unit(benchmark::kMicrosecond)->MinTime(2.0);
BENCHMARK_MAIN();
