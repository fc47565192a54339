// Owned SQLite handles. Every connection and statement of the store lives in one of these, so
// each is closed or finalized on every path, and every result code is checked in one place.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "vrdppo/variant.hpp"

struct sqlite3;
struct sqlite3_stmt;

namespace vrdppo::embedded {

struct CloseConnection {
  void operator()(sqlite3* db) const noexcept;
};
// A connection the holder owns; sqlite3_close_v2 when it goes.
using ConnectionHandle = std::unique_ptr<sqlite3, CloseConnection>;

// What a failed statement raises. A client's statement fails as the server would report it; a
// statement of the store's own set-up fails as a store that cannot be opened, naming the text.
enum class Purpose { Client, Setup };

// Statements a connection keeps prepared between uses, the most recently used first, so that
// text it has seen is not parsed and planned again. A statement in use is out of the cache;
// nothing kept holds a lock or a binding. Finalizes what it keeps when it goes, which must be
// before its connection closes.
class StatementCache {
 public:
  explicit StatementCache(std::size_t capacity = 16) : capacity_(capacity) {}
  ~StatementCache();
  StatementCache(const StatementCache&) = delete;
  StatementCache& operator=(const StatementCache&) = delete;

  // The statement kept for text, taken out of the cache; nullptr when none is kept. Statements are
  // known by the dialect's UTF-16 text, so that one found is never converted for SQLite again.
  sqlite3_stmt* take(std::u16string_view text) noexcept;
  // Keeps a statement that has been reset, dropping the least recently used beyond capacity.
  void give(std::u16string text, sqlite3_stmt* st) noexcept;
  std::size_t size() const noexcept { return kept_.size(); }

 private:
  struct Kept {
    std::u16string text;
    sqlite3_stmt* st;
  };
  std::size_t capacity_;
  std::vector<Kept> kept_;
};

// One prepared statement on a connection that outlives it.
class Statement {
 public:
  // Prepares the first statement of sql. A text of blanks or comments alone prepares to an
  // empty statement, which steps to its end at once.
  Statement(sqlite3* db, std::string_view sql, Purpose purpose = Purpose::Client);
  Statement(sqlite3* db, std::u16string_view sql, Purpose purpose = Purpose::Client);
  // A client's statement of sql from the cache, or prepared now from sqliteText(sql); it goes
  // back to the cache, reset, when this goes.
  Statement(sqlite3* db, StatementCache& cache, std::u16string sql);
  ~Statement();
  Statement(const Statement&) = delete;
  Statement& operator=(const Statement&) = delete;

  sqlite3_stmt* get() const noexcept { return st_; }
  sqlite3* db() const noexcept { return db_; }
  bool empty() const noexcept { return st_ == nullptr; }
  int columnCount() const noexcept;

  // Binds ? number index (from 1): a Variant as the store keeps its type, or UTF-8 text.
  void bind(int index, const Variant& v);
  void bindText(int index, std::string_view utf8);
  void bindInteger(int index, std::int64_t value);

  // Steps once: true on a row, false at the end.
  bool step();
  // Steps to the end, dropping any rows.
  void run();

  // Raises the error for result code rc of this statement, as its purpose says.
  [[noreturn]] void fail(int rc) const;

 private:
  sqlite3* db_;
  sqlite3_stmt* st_ = nullptr;
  Purpose purpose_;
  std::string text_;    // set-up statements: to name them when they fail
  std::u16string key_;  // cached statements: the text the cache knows them by
  StatementCache* cache_ = nullptr;
};

// A statement's text as SQLite reads it. SQLite stops at the first U+0000 and its UTF-16 reader
// pairs a lone surrogate with whatever follows, so the text goes as UTF-8 (a lone surrogate
// becoming U+FFFD), with each U+0000 of a string literal joined in as char(0). U+0000 elsewhere
// would cut the statement short: it raises a syntax error.
std::string sqliteText(std::u16string_view sql);

// Runs statements that yield nothing (set-up and transaction control); a failure raises as
// purpose says.
void execute(sqlite3* db, std::string_view sql, Purpose purpose = Purpose::Client);
// Runs a ROLLBACK while another failure is already on its way: that failure is the one the
// caller must see, so this one's result only decides whether the connection is still clean.
bool rollbackQuietly(sqlite3* db, const char* sql) noexcept;

}  // namespace vrdppo::embedded
