#include "providers/embedded/sqlite_handles.hpp"

#include <sqlite3.h>

#include "providers/embedded/dates.hpp"
#include "providers/embedded/errors.hpp"
#include "vrdppo/text.hpp"

namespace vrdppo::embedded {

void CloseConnection::operator()(sqlite3* db) const noexcept {
  // close_v2 cannot fail for a valid handle: it defers the close until the last statement goes.
  sqlite3_close_v2(db);
}

namespace {

[[noreturn]] void raise(sqlite3* db, int rc, Purpose purpose, std::string_view text) {
  if (purpose == Purpose::Client) throw sqliteError(db, rc);
  std::string message = db ? sqlite3_errmsg(db) : sqlite3_errstr(rc);
  message += " in: ";
  message += text;
  throw openError(message, db ? sqlite3_extended_errcode(db) : rc);
}

}  // namespace

std::string sqliteText(std::u16string_view sql) {
  std::string out;
  out.reserve(sql.size() + 16);
  // Where position i stands; only a string literal may hold U+0000.
  enum class In { Code, Literal, Quoted, Bracketed, LineComment, BlockComment } in = In::Code;
  std::size_t from = 0;  // start of the stretch not yet converted
  for (std::size_t i = 0; i < sql.size(); ++i) {
    const char16_t c = sql[i];
    const char16_t next = i + 1 < sql.size() ? sql[i + 1] : u'\0';
    switch (in) {
      case In::Code:
        if (c == u'\'') in = In::Literal;
        if (c == u'"' || c == u'`') in = In::Quoted;
        if (c == u'[') in = In::Bracketed;
        if (c == u'-' && next == u'-') in = In::LineComment;
        if (c == u'/' && next == u'*') in = In::BlockComment;
        break;
      case In::Literal:
        if (c == u'\'' && next == u'\'') {
          ++i;  // a doubled quote stays inside
        } else if (c == u'\'') {
          in = In::Code;
        }
        break;
      case In::Quoted:
        if (c == u'"' || c == u'`') in = In::Code;
        break;
      case In::Bracketed:
        if (c == u']') in = In::Code;
        break;
      case In::LineComment:
        if (c == u'\n') in = In::Code;
        break;
      case In::BlockComment:
        if (c == u'*' && next == u'/') {
          ++i;
          in = In::Code;
        }
        break;
    }
    if (c != u'\0') continue;
    if (in != In::Literal) {
      throw syntaxError(u"Incorrect syntax: the statement holds U+0000 outside a string literal.");
    }
    out += toUtf8(sql.substr(from, i - from));
    out += "'||char(0)||'";
    from = i + 1;
  }
  out += toUtf8(sql.substr(from));
  return out;
}

Statement::Statement(sqlite3* db, std::string_view sql, Purpose purpose)
    : db_(db), purpose_(purpose) {
  if (purpose == Purpose::Setup) text_ = sql;
  const int rc = sqlite3_prepare_v2(db, sql.data(), static_cast<int>(sql.size()), &st_, nullptr);
  if (rc != SQLITE_OK) fail(rc);
}

Statement::Statement(sqlite3* db, std::u16string_view sql, Purpose purpose)
    : Statement(db, std::string_view(sqliteText(sql)), purpose) {}

Statement::Statement(sqlite3* db, StatementCache& cache, std::u16string sql)
    : db_(db), st_(cache.take(sql)), purpose_(Purpose::Client), key_(std::move(sql)) {
  if (!st_) {
    const std::string text = sqliteText(key_);
    const int rc = sqlite3_prepare_v3(db, text.data(), static_cast<int>(text.size()),
                                      SQLITE_PREPARE_PERSISTENT, &st_, nullptr);
    if (rc != SQLITE_OK) fail(rc);
  }
  // An empty text prepares to no statement, which there is nothing to keep of.
  if (st_) cache_ = &cache;
}

Statement::~Statement() {
  if (cache_) {
    // reset repeats the last step's error, which step has already raised.
    sqlite3_reset(st_);
    sqlite3_clear_bindings(st_);
    cache_->give(std::move(key_), st_);
    return;
  }
  // finalize repeats the last step's error, which step has already raised.
  sqlite3_finalize(st_);
}

int Statement::columnCount() const noexcept {
  return st_ ? sqlite3_column_count(st_) : 0;
}

void Statement::bind(int index, const Variant& v) {
  int rc = SQLITE_OK;
  switch (v.type()) {
    case VarType::Empty:
    case VarType::Null:
    case VarType::Missing:
      rc = sqlite3_bind_null(st_, index);
      break;
    case VarType::Boolean:
      rc = sqlite3_bind_int(st_, index, v.boolean() ? 1 : 0);
      break;
    case VarType::Long:
      rc = sqlite3_bind_int(st_, index, v.lng());
      break;
    case VarType::LongLong:
      rc = sqlite3_bind_int64(st_, index, v.longLong());
      break;
    case VarType::Double:
      rc = sqlite3_bind_double(st_, index, v.dbl());
      break;
    case VarType::Currency:
      rc = v.cur().raw % 10000 == 0
               ? sqlite3_bind_int64(st_, index, v.cur().raw / 10000)
               : sqlite3_bind_double(st_, index, static_cast<double>(v.cur().raw) / 10000.0);
      break;
    case VarType::Date: {
      const auto m = momentOfDate(v.date().days);
      if (!m) throw Error::runtime(err::kInvalidCall);
      bindText(index, formatMoment(*m));
      return;
    }
    case VarType::String:
      // As UTF-8, so that a lone surrogate becomes U+FFFD as in statement texts.
      bindText(index, toUtf8(v.str()));
      return;
    case VarType::Decimal:
      bindText(index, v.decimal().text);
      return;
  }
  if (rc != SQLITE_OK) fail(rc);
}

void Statement::bindText(int index, std::string_view utf8) {
  const int rc =
      sqlite3_bind_text(st_, index, utf8.data(), static_cast<int>(utf8.size()), SQLITE_TRANSIENT);
  if (rc != SQLITE_OK) fail(rc);
}

void Statement::bindInteger(int index, std::int64_t value) {
  const int rc = sqlite3_bind_int64(st_, index, value);
  if (rc != SQLITE_OK) fail(rc);
}

bool Statement::step() {
  if (!st_) return false;
  const int rc = sqlite3_step(st_);
  if (rc == SQLITE_ROW) return true;
  if (rc != SQLITE_DONE) fail(rc);
  return false;
}

void Statement::run() {
  while (step()) {
  }
}

void Statement::fail(int rc) const {
  raise(db_, rc, purpose_, text_);
}

StatementCache::~StatementCache() {
  for (const auto& k : kept_) sqlite3_finalize(k.st);
}

sqlite3_stmt* StatementCache::take(std::u16string_view text) noexcept {
  for (auto it = kept_.begin(); it != kept_.end(); ++it) {
    if (it->text == text) {
      sqlite3_stmt* st = it->st;
      kept_.erase(it);
      return st;
    }
  }
  return nullptr;
}

void StatementCache::give(std::u16string text, sqlite3_stmt* st) noexcept {
  // A statement of the same text given back while this one was out (a nested use) is spare.
  if (sqlite3_stmt* twin = take(text)) sqlite3_finalize(twin);
  try {
    kept_.insert(kept_.begin(), Kept{std::move(text), st});
  } catch (...) {
    sqlite3_finalize(st);
    return;
  }
  while (kept_.size() > capacity_) {
    sqlite3_finalize(kept_.back().st);
    kept_.pop_back();
  }
}

void execute(sqlite3* db, std::string_view sql, Purpose purpose) {
  const std::string text(sql);
  char* message = nullptr;
  const int rc = sqlite3_exec(db, text.c_str(), nullptr, nullptr, &message);
  sqlite3_free(message);  // the same text as sqlite3_errmsg, which raise reads
  if (rc != SQLITE_OK) raise(db, rc, purpose, sql);
}

bool rollbackQuietly(sqlite3* db, const char* sql) noexcept {
  return sqlite3_exec(db, sql, nullptr, nullptr, nullptr) == SQLITE_OK;
}

}  // namespace vrdppo::embedded
