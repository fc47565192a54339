// A store file for a benchmark, filled straight through SQLite so that only the reads are timed.
#pragma once

#include <sqlite3.h>

#include <filesystem>
#include <stdexcept>
#include <string>

#include "providers/embedded/embedded_store.hpp"

namespace vrdppo::bench {

struct Store {
  std::string path;
  std::u16string connect;
};

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

inline void exec(sqlite3* db, const char* sql) {
  char* message = nullptr;
  if (sqlite3_exec(db, sql, nullptr, nullptr, &message) != SQLITE_OK) {
    std::string m = message ? message : "?";
    sqlite3_free(message);
    throw std::runtime_error(m);
  }
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

}  // namespace vrdppo::bench
