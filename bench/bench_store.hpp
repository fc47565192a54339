// A store file for a benchmark, filled straight through SQLite so that only the reads are timed.
#pragma once

#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <cstdint>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include "stores.hpp"
#include "vrdppo/embedded_store.hpp"

#if defined(__linux__)
#include <sys/resource.h>
#endif

namespace vrdppo::bench {

// Minor page faults taken so far by the process: where a large Load's time goes on a machine
// whose faults are dear, so each Load benchmark reports its faults per iteration.
inline std::int64_t pageFaults() {
#if defined(__linux__)
  rusage u{};
  getrusage(RUSAGE_SELF, &u);
  return u.ru_minflt;
#else
  return 0;
#endif
}

inline void countFaults(benchmark::State& state, std::int64_t before) {
  state.counters["faults"] = benchmark::Counter(static_cast<double>(pageFaults() - before),
                                                benchmark::Counter::kAvgIterations);
}

inline void exec(sqlite3* db, const char* sql) {
  char* message = nullptr;
  if (sqlite3_exec(db, sql, nullptr, nullptr, &message) != SQLITE_OK) {
    std::string m = message ? message : "?";
    sqlite3_free(message);
    throw std::runtime_error(m);
  }
}

// A fresh store of that file name in the temporary directory, with its schema.
inline Store freshStore(const std::string& name) {
  Store s;
  s.path = (std::filesystem::temp_directory_path() / name).string();
  embedded::releaseStore(s.path);
  for (const char* suffix : {"", "-wal", "-shm"}) std::filesystem::remove(s.path + suffix);
  embedded::openStore(s.path);
  s.connect = embedded::connectString(s.path);
  return s;
}

// A fresh store of that file name, filled by fill(db) in one transaction straight through SQLite.
template <class Fill>
Store filledStore(const std::string& name, Fill fill) {
  Store st = freshStore(name);
  sqlite3* db = nullptr;
  sqlite3_open(st.path.c_str(), &db);
  exec(db, "BEGIN");
  fill(db);
  exec(db, "COMMIT");
  sqlite3_close(db);
  return st;
}

// Runs the insert `rows` times, each column bound by bind(statement, column, row).
inline void fill(sqlite3* db, const char* sql, int rows, int columns,
                 void (*bind)(sqlite3_stmt*, int, int)) {
  sqlite3_stmt* insert = nullptr;
  if (sqlite3_prepare_v2(db, sql, -1, &insert, nullptr) != SQLITE_OK) {
    throw std::runtime_error(sqlite3_errmsg(db));
  }
  for (int i = 0; i < rows; ++i) {
    for (int c = 1; c <= columns; ++c) bind(insert, c, i);
    sqlite3_step(insert);
    sqlite3_reset(insert);
  }
  sqlite3_finalize(insert);
}

// Times Load of every row of the store into a Buffer state, checking the state's length.
template <class Class, class... Top>
void loadIntoBuffer(benchmark::State& state, const Store& s, std::size_t recordChars,
                    std::size_t rows, Top... lTop) {
  Class o;
  std::size_t chars = 0;
  const std::int64_t faults = pageFaults();
  for (auto _ : state) {
    const std::u16string buffer = o.Load(u"", s.connect, lTop...);
    chars = buffer.size();
    benchmark::DoNotOptimize(buffer.data());
  }
  countFaults(state, faults);
  if (chars != 9u + recordChars * rows) state.SkipWithError("wrong state length");
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(rows));
}

// The baseline: the same rows read straight from SQLite into records, each filled by
// read(statement, record).
template <class Record, class Read>
void plainSqliteIntoStructs(benchmark::State& state, const Store& s, const char* sql,
                            std::size_t rows, Read read) {
  std::vector<Record> records;
  const std::int64_t faults = pageFaults();
  for (auto _ : state) {
    sqlite3* db = nullptr;
    sqlite3_open_v2(s.path.c_str(), &db, SQLITE_OPEN_READONLY, nullptr);
    sqlite3_stmt* select = nullptr;
    sqlite3_prepare_v2(db, sql, -1, &select, nullptr);
    records.clear();
    while (sqlite3_step(select) == SQLITE_ROW) {
      Record r{};
      read(select, r);
      records.push_back(r);
    }
    sqlite3_finalize(select);
    sqlite3_close(db);
    benchmark::DoNotOptimize(records.data());
  }
  countFaults(state, faults);
  if (records.size() != rows) state.SkipWithError("wrong row count");
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(rows));
}

}  // namespace vrdppo::bench
