#include "providers/embedded/session.hpp"

#include <sqlite3.h>

#include <array>

#include "providers/embedded/catalog.hpp"
#include "providers/embedded/dates.hpp"
#include "providers/embedded/errors.hpp"
#include "providers/embedded/rows.hpp"
#include "providers/embedded/store_files.hpp"
#include "providers/embedded/translator.hpp"
#include "vrdppo/text.hpp"

namespace vrdppo::embedded {

namespace {

// First words of the statements handed to SQLite; any other first word names a procedure.
constexpr std::array<std::u16string_view, 23> kStatementWords{
    u"SELECT",  u"INSERT", u"UPDATE",  u"DELETE",    u"WITH",    u"CREATE", u"DROP",    u"ALTER",
    u"PRAGMA",  u"BEGIN",  u"COMMIT",  u"ROLLBACK",  u"END",     u"VALUES", u"REPLACE", u"EXPLAIN",
    u"ANALYZE", u"VACUUM", u"REINDEX", u"SAVEPOINT", u"RELEASE", u"ATTACH", u"DETACH"};

// Statements that leave nothing behind on their connection; after any other (CREATE TEMP
// TABLE, PRAGMA, ATTACH, ...) the connection is closed rather than pooled.
constexpr std::array<std::u16string_view, 14> kPoolableWords{
    u"SELECT", u"INSERT", u"UPDATE", u"DELETE",   u"WITH",      u"VALUES",  u"REPLACE",
    u"BEGIN",  u"COMMIT", u"END",    u"ROLLBACK", u"SAVEPOINT", u"RELEASE", u"EXPLAIN"};

bool isStatementWord(std::u16string_view word) {
  for (auto w : kStatementWords) {
    if (equalsNoCase(w, word)) return true;
  }
  return false;
}

struct Finalize {
  void operator()(sqlite3_stmt* st) const noexcept { sqlite3_finalize(st); }
};
using Statement = std::unique_ptr<sqlite3_stmt, Finalize>;

void bind(sqlite3* db, sqlite3_stmt* st, int index, const Variant& v) {
  int rc = SQLITE_OK;
  switch (v.type()) {
    case VarType::Empty:
    case VarType::Null:
    case VarType::Missing:
      rc = sqlite3_bind_null(st, index);
      break;
    case VarType::Boolean:
      rc = sqlite3_bind_int(st, index, v.boolean() ? 1 : 0);
      break;
    case VarType::Long:
      rc = sqlite3_bind_int(st, index, v.lng());
      break;
    case VarType::LongLong:
      rc = sqlite3_bind_int64(st, index, v.longLong());
      break;
    case VarType::Double:
      rc = sqlite3_bind_double(st, index, v.dbl());
      break;
    case VarType::Currency:
      rc = v.cur().raw % 10000 == 0
               ? sqlite3_bind_int64(st, index, v.cur().raw / 10000)
               : sqlite3_bind_double(st, index, static_cast<double>(v.cur().raw) / 10000.0);
      break;
    case VarType::Date: {
      const auto m = momentOfDate(v.date().days);
      if (!m) throw Error::runtime(err::kInvalidCall);
      const std::string text = formatMoment(*m);
      rc = sqlite3_bind_text(st, index, text.data(), static_cast<int>(text.size()),
                             SQLITE_TRANSIENT);
      break;
    }
    case VarType::String:
      rc = sqlite3_bind_text16(st, index, v.str().data(), static_cast<int>(v.str().size() * 2),
                               SQLITE_TRANSIENT);
      break;
    case VarType::Decimal:
      rc = sqlite3_bind_text(st, index, v.decimal().text.data(),
                             static_cast<int>(v.decimal().text.size()), SQLITE_TRANSIENT);
      break;
  }
  if (rc != SQLITE_OK) throw sqliteError(db, rc);
}

}  // namespace

Session::Session(const std::string& path) : path_(path) {
  if (path.empty()) {
    throw openError("The connection string names no Data Source.", SQLITE_CANTOPEN);
  }
  db_ = acquireConnection(path, this);
}

Session::~Session() {
  releaseConnection(path_, db_, reusable_);
}

void Session::note(std::string_view sqlite) {
  std::size_t i = 0;
  while (i < sqlite.size() && (sqlite[i] == ' ' || sqlite[i] == '\n' || sqlite[i] == '\t' ||
                               sqlite[i] == '\r' || sqlite[i] == '(')) {
    ++i;
  }
  std::size_t j = i;
  while (j < sqlite.size() && ((sqlite[j] | 0x20) >= 'a' && (sqlite[j] | 0x20) <= 'z')) ++j;
  std::u16string word;
  for (std::size_t k = i; k < j; ++k) word += static_cast<char16_t>(sqlite[k]);
  note(word);
}

void Session::note(std::u16string_view firstWord) {
  for (auto w : kPoolableWords) {
    if (equalsNoCase(w, firstWord)) return;
  }
  reusable_ = false;
}

std::shared_ptr<Recordset> Session::execute(std::u16string_view text) {
  const Tokens tokens(text);
  std::shared_ptr<Recordset> first;
  for (const auto& [begin, end] : tokens.statements()) {
    if (tokens.skip(begin, end) >= end) continue;
    auto result = statement(tokens, begin, end);
    if (!first) first = std::move(result);
  }
  return first ? first : std::make_shared<Recordset>();
}

std::shared_ptr<Recordset> Session::statement(const Tokens& t, std::size_t begin, std::size_t end) {
  const std::size_t i = t.skip(begin, end);
  const Tok kind = t[i].kind;
  if (kind == Tok::Word) {
    const auto word = t.text(i);
    if (equalsNoCase(word, u"SET")) {
      // SET option[, option] ON|OFF; of the session options only QUOTED_IDENTIFIER acts here.
      bool quoted = false;
      std::size_t j = t.skip(i + 1, end);
      if (j < end && t[j].kind != Tok::Word) throw syntaxErrorNear(t.text(j));
      for (; j < end; j = t.skip(j + 1, end)) {
        if (t.isWord(j, u"QUOTED_IDENTIFIER")) quoted = true;
        if (t.isWord(j, u"ON") || t.isWord(j, u"OFF")) {
          if (quoted) quotedIdentifier_ = t.isWord(j, u"ON");
          break;
        }
      }
      return std::make_shared<Recordset>();
    }
    if (equalsNoCase(word, u"EXEC") || equalsNoCase(word, u"EXECUTE")) {
      return call(parseCall(t, i + 1, end));
    }
    if (equalsNoCase(word, u"TRUNCATE")) {
      const std::size_t table = t.skip(i + 1, end);
      if (!t.isWord(table, u"TABLE")) throw syntaxErrorNear(word);
      return prepared(u"DELETE FROM " + translate(t, table + 1, end, quotedIdentifier_));
    }
    if (isStatementWord(word)) {
      note(word);
      return prepared(translate(t, begin, end, quotedIdentifier_));
    }
    return call(parseCall(t, i, end));
  }
  if (kind == Tok::Bracketed) return call(parseCall(t, i, end));
  return prepared(translate(t, begin, end, quotedIdentifier_));
}

std::shared_ptr<Recordset> Session::prepared(std::u16string_view sqlite) {
  sqlite3_stmt* raw = nullptr;
  const int rc = sqlite3_prepare16_v3(db_, sqlite.data(), static_cast<int>(sqlite.size() * 2), 0,
                                      &raw, nullptr);
  if (rc != SQLITE_OK) throw sqliteError(db_, rc);
  if (!raw) return std::make_shared<Recordset>();
  const Statement st(raw);
  return fetchAll(db_, raw);
}

std::shared_ptr<Recordset> Session::run(std::string_view sqlite,
                                        std::initializer_list<Variant> params) {
  note(sqlite);
  sqlite3_stmt* raw = nullptr;
  const int rc =
      sqlite3_prepare_v2(db_, sqlite.data(), static_cast<int>(sqlite.size()), &raw, nullptr);
  if (rc != SQLITE_OK) throw sqliteError(db_, rc);
  if (!raw) return std::make_shared<Recordset>();
  const Statement st(raw);
  int index = 1;
  for (const auto& p : params) bind(db_, raw, index++, p);
  return fetchAll(db_, raw);
}

void Session::exec(std::string_view sqlite) {
  note(sqlite);
  const std::string text(sqlite);
  const int rc = sqlite3_exec(db_, text.c_str(), nullptr, nullptr, nullptr);
  if (rc != SQLITE_OK) throw sqliteError(db_, rc);
}

std::shared_ptr<Recordset> Session::call(const ProcArgs& args) {
  const Procedure* procedure = storeCatalog().findProcedure(args.procedure());
  if (!procedure) {
    throw storeError(err::kCommandError,
                     "Could not find stored procedure '" + toUtf8(args.procedure()) + "'.", "42000",
                     native::kUnknownProcedure);
  }
  auto result = (*procedure)(*this, args);
  return result ? result : std::make_shared<Recordset>();
}

void Session::transaction(const std::function<void()>& body) {
  const bool outer = sqlite3_get_autocommit(db_) != 0;
  exec(outer ? "BEGIN IMMEDIATE" : "SAVEPOINT vr_procedure");
  try {
    body();
  } catch (...) {
    sqlite3_exec(db_, outer ? "ROLLBACK" : "ROLLBACK TO vr_procedure; RELEASE vr_procedure",
                 nullptr, nullptr, nullptr);
    throw;
  }
  exec(outer ? "COMMIT" : "RELEASE vr_procedure");
}

std::int64_t Session::lastInsertId() const noexcept {
  return sqlite3_last_insert_rowid(db_);
}

std::int64_t Session::changes() const noexcept {
  return sqlite3_changes64(db_);
}

}  // namespace vrdppo::embedded
