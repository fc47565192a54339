// Load of 100,000 STEMS rows into a Buffer state, against a plain SQLite loop reading the same
// rows into structs; and the rate of Commit inserts.
#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench_store.hpp"
#include "vrdppo/production/stems.hpp"
#include "vrdppo/render.hpp"

namespace {

using vrdppo::bench::kRows;
using vrdppo::bench::Store;

}  // namespace

const Store& vrdppo::bench::stemsStore() {
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

namespace {

const Store& store() {
  return vrdppo::bench::stemsStore();
}

void BM_LoadStemsIntoBuffer(benchmark::State& state) {
  vrdppo::bench::loadIntoBuffer<vrdppo::cStemsPersist>(state, store(), 43, kRows);
}

// The raw loop over every stem of a store.
void plainStems(benchmark::State& state, const Store& s, std::size_t rows) {
  vrdppo::bench::plainSqliteIntoStructs<vrdppo::StemsRecord>(
      state, s, "SELECT * FROM STEMS", rows, [](sqlite3_stmt* select, auto& r) {
        r.StemsId = sqlite3_column_int(select, 0);
        r.TotalNetWeight = sqlite3_column_double(select, 1);
        r.ContainerStart = sqlite3_column_int(select, 2);
        r.ContainerEnd = sqlite3_column_int(select, 3);
        r.StemTypeID = sqlite3_column_int(select, 4);
        r.ProductionRunId = sqlite3_column_int(select, 5);
      });
}

void BM_PlainSqliteIntoStructs(benchmark::State& state) {
  plainStems(state, store(), kRows);
}

// Commits go to a store of their own, so that the stems every Load reads stay kRows.
const Store& commitStore() {
  static const Store s = vrdppo::bench::freshStore("vrdppo-commit-bench.db");
  return s;
}

void BM_CommitInsert(benchmark::State& state) {
  const Store& s = commitStore();
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

// Ten times the rows, for how Load scales.
const Store& millionStore() {
  static const Store s = vrdppo::bench::filledStore("vrdppo-bench-1m.db", [](sqlite3* db) {
    vrdppo::bench::fill(db,
                        "INSERT INTO STEMS (TotalNetWeight, ContainerStart, ContainerEnd, "
                        "StemTypeId, ProductionRunId) VALUES (?, ?, ?, ?, ?)",
                        10 * kRows, 5, [](sqlite3_stmt* st, int c, int i) {
                          if (c == 1) {
                            sqlite3_bind_double(st, c, 100.0 + i % 1000 / 4.0);
                          } else if (c == 2 && i % 3 == 0) {
                            sqlite3_bind_null(st, c);
                          } else {
                            sqlite3_bind_int(st, c, c == 5 ? 1 + i / 1000 : i + c);
                          }
                        });
  });
  return s;
}

void BM_LoadMillionStemsIntoBuffer(benchmark::State& state) {
  vrdppo::bench::loadIntoBuffer<vrdppo::cStemsPersist>(state, millionStore(), 43, 10 * kRows);
}

// How the raw loop itself scales, for reading the Load's ratio against it.
void BM_PlainSqliteMillionIntoStructs(benchmark::State& state) {
  plainStems(state, millionStore(), 10 * kRows);
}

// The baseline of Commit: the same INSERT prepared once on a handle held open, in the store's
// own journal mode (WAL) and synchronous setting (FULL), each row its own transaction.
void BM_PreparedInsert(benchmark::State& state) {
  const Store& s = commitStore();
  sqlite3* db = nullptr;
  sqlite3_open(s.path.c_str(), &db);
  vrdppo::bench::exec(db, "PRAGMA synchronous = FULL");
  sqlite3_stmt* insert = nullptr;
  sqlite3_prepare_v2(db,
                     "INSERT INTO STEMS (TotalNetWeight, ContainerStart, ContainerEnd, "
                     "StemTypeId, ProductionRunId) VALUES (?, NULL, ?, ?, ?)",
                     -1, &insert, nullptr);
  for (auto _ : state) {
    sqlite3_bind_double(insert, 1, 125.5);
    sqlite3_bind_int(insert, 2, 12);
    sqlite3_bind_int(insert, 3, 3);
    sqlite3_bind_int(insert, 4, 999999);
    if (sqlite3_step(insert) != SQLITE_DONE) state.SkipWithError(sqlite3_errmsg(db));
    sqlite3_reset(insert);
    benchmark::DoNotOptimize(sqlite3_last_insert_rowid(db));
  }
  sqlite3_finalize(insert);
  sqlite3_close(db);
  state.SetItemsProcessed(state.iterations());
}

BENCHMARK(BM_LoadStemsIntoBuffer)->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(BM_PlainSqliteIntoStructs)->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(BM_LoadMillionStemsIntoBuffer)->Unit(benchmark::kMillisecond)->MinTime(4.0);
BENCHMARK(BM_PlainSqliteMillionIntoStructs)->Unit(benchmark::kMillisecond)->MinTime(4.0);
BENCHMARK(BM_CommitInsert)->Unit(benchmark::kMicrosecond)->MinTime(2.0);
BENCHMARK(BM_PreparedInsert)->Unit(benchmark::kMicrosecond)->MinTime(2.0);

// --peak-load-stems: a process of its own that loads the million stems once and prints its peak
// resident size against the state's size (Linux: VmHWM, reset once the store is filled).
int peakLoad() {
  const Store& s = millionStore();
  std::ofstream("/proc/self/clear_refs") << "5";
  const std::u16string state = vrdppo::cStemsPersist().Load(u"", s.connect);
  std::ifstream status("/proc/self/status");
  std::string line;
  long peakKb = 0;
  while (std::getline(status, line)) {
    if (line.rfind("VmHWM:", 0) == 0) peakKb = std::stol(line.substr(6));
  }
  std::printf("peak_rss_bytes %ld\nstate_bytes %zu\n", peakKb * 1024,
              state.size() * sizeof(char16_t));
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc > 1 && std::strcmp(argv[1], "--peak-load-stems") == 0) return peakLoad();
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
