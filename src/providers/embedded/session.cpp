#include "providers/embedded/session.hpp"

#include <sqlite3.h>

#include <array>

#include "providers/embedded/catalog.hpp"
#include "providers/embedded/dates.hpp"
#include "providers/embedded/errors.hpp"
#include "providers/embedded/rows.hpp"
#include "providers/embedded/shape.hpp"
#include "providers/embedded/sqlite_handles.hpp"
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

// A login that runs the business tier holds no right to change the schema, and the store acts as
// one: CREATE, ALTER and DROP answer as a server answers such a login. The store's own set-up
// runs on a connection of its own, past this.
Error schemaChangeRefused(const Tokens& t, std::size_t verb, std::size_t end,
                          const std::string& path) {
  std::size_t i = t.skip(verb + 1, end);
  while (i < end && (t.isWord(i, u"UNIQUE") || t.isWord(i, u"CLUSTERED") ||
                     t.isWord(i, u"NONCLUSTERED") || t.isWord(i, u"OR") || t.isWord(i, u"ALTER") ||
                     t.isWord(i, u"TEMP") || t.isWord(i, u"TEMPORARY"))) {
    i = t.skip(i + 1, end);
  }
  std::string kind = i < end && t[i].kind == Tok::Word ? toUtf8(upperAscii(t.text(i))) : "";
  if (kind == "PROC") kind = "PROCEDURE";
  std::size_t n = t.skip(i + 1, end);
  if (t.isWord(n, u"IF")) n = t.skip(t.skip(n + 1, end) + 1, end);  // IF EXISTS
  while (n + 2 < end && t.isPunct(n + 1, u'.')) n += 2;             // dbo.NAME
  const std::string name = n < end && t[n].kind != Tok::Punct ? toUtf8(nameOf(t, n)) : "";
  if (t.isWord(verb, u"CREATE")) {
    const std::string stem = path.substr(path.find_last_of("/\\") + 1);
    return storeError(err::kCommandError,
                      (kind.empty() ? "CREATE" : "CREATE " + kind) +
                          " permission denied in database '" + stem.substr(0, stem.rfind('.')) +
                          "'.",
                      "42000", native::kCreateDenied);
  }
  if (t.isWord(verb, u"DROP")) {
    std::string lower = kind;
    for (auto& c : lower) c = static_cast<char>(c | 0x20);
    return storeError(err::kCommandError,
                      "Cannot drop the " + lower + " '" + name +
                          "', because it does not exist or you do not have permission.",
                      "42000", native::kDropDenied);
  }
  return storeError(err::kCommandError,
                    "Cannot find the object \"" + name +
                        "\" because it does not exist or you do not have permissions.",
                    "42000", native::kAlterDenied);
}

}  // namespace

Session::Session(const std::string& path, bool readOnly) : path_(path) {
  if (path.empty()) {
    throw openError("The connection string names no Data Source.", SQLITE_CANTOPEN);
  }
  if (readOnly) {
    mark_ = markOf(path);  // before it opens: a change while it opens shows as one
    connection_ = openToRead(path, this);
    reusable_ = false;  // the pool's connections may write
  } else {
    connection_ = acquireConnection(path, this);
  }
}

Session::~Session() {
  releaseConnection(path_, std::move(connection_), reusable_);
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

void Session::beforeReading() {
  if (!connection_->immutable) return;
  const FileMark now = markOf(path_);
  if (now == mark_) return;
  connection_ = openToRead(path_, this);  // where it fails, the old one stays for the next try
  mark_ = now;
}

void Session::afterReading() const {
  if (!connection_->immutable || markOf(path_) == mark_) return;
  throw storeError(err::kCommandError,
                   "The store file changed while it was read (Data Source=" + path_ +
                       "): another process wrote it; read it again.",
                   "40001", SQLITE_BUSY_SNAPSHOT);
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

void Session::executeInto(std::u16string_view text, RecordSink& sink) {
  const Tokens tokens(text);
  std::size_t statements = 0;
  std::pair<std::size_t, std::size_t> only;
  for (const auto& range : tokens.statements()) {
    if (tokens.skip(range.first, range.second) >= range.second) continue;
    ++statements;
    only = range;
  }
  // The first of several results is read only once all have run.
  if (statements != 1) {
    const auto rs = execute(text);
    sink.walk(*rs);
    return;
  }
  if (const auto rs = statement(tokens, only.first, only.second, &sink)) sink.walk(*rs);
}

std::shared_ptr<Recordset> Session::statement(const Tokens& t, std::size_t begin, std::size_t end,
                                              RecordSink* sink) {
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
      return prepared(u"DELETE FROM " + translate(t, table + 1, end, quotedIdentifier_), sink);
    }
    if (equalsNoCase(word, u"CREATE") || equalsNoCase(word, u"ALTER") ||
        equalsNoCase(word, u"DROP")) {
      throw schemaChangeRefused(t, i, end, path_);
    }
    if (isStatementWord(word)) {
      note(word);
      return prepared(translate(t, begin, end, quotedIdentifier_), sink);
    }
    return call(parseCall(t, i, end));
  }
  if (kind == Tok::Bracketed) return call(parseCall(t, i, end));
  return prepared(translate(t, begin, end, quotedIdentifier_), sink);
}

std::shared_ptr<Recordset> Session::prepared(std::u16string_view sqlite, RecordSink* sink) {
  if (!sink) {
    if (auto shape = shapeOf(sqlite)) {
      Statement st(handle(), connection_->statements, std::move(shape->text));
      shape->bind(st);
      return fetchAll(st);
    }
  }
  Statement st(handle(), sqlite);
  if (!sink) return fetchAll(st);
  streamInto(st, *sink);
  return nullptr;
}

std::shared_ptr<Recordset> Session::run(std::string_view sqlite,
                                        std::initializer_list<Variant> params) {
  note(sqlite);
  Statement st(handle(), sqlite);
  if (st.empty()) return std::make_shared<Recordset>();
  int index = 1;
  for (const auto& p : params) st.bind(index++, p);
  return fetchAll(st);
}

void Session::exec(std::string_view sqlite) {
  note(sqlite);
  embedded::execute(handle(), sqlite);
}

std::shared_ptr<Recordset> Session::call(const ProcArgs& args) {
  const auto* procedure = storeCatalog().findProcedure(args.procedure());
  if (!procedure) {
    throw storeError(err::kCommandError,
                     "Could not find stored procedure '" + toUtf8(args.procedure()) + "'.", "42000",
                     native::kUnknownProcedure);
  }
  args.expect(procedure->parameters);
  auto result = procedure->body(*this, args);
  return result ? result : std::make_shared<Recordset>();
}

void Session::transaction(const std::function<void()>& body) {
  const bool outer = sqlite3_get_autocommit(handle()) != 0;
  exec(outer ? "BEGIN IMMEDIATE" : "SAVEPOINT vr_procedure");
  try {
    body();
  } catch (...) {
    rollbackQuietly(handle(),
                    outer ? "ROLLBACK" : "ROLLBACK TO vr_procedure; RELEASE vr_procedure");
    throw;
  }
  exec(outer ? "COMMIT" : "RELEASE vr_procedure");
}

std::int64_t Session::lastInsertId() const noexcept {
  return sqlite3_last_insert_rowid(handle());
}

std::int64_t Session::changes() const noexcept {
  return sqlite3_changes64(handle());
}

std::int64_t Session::totalChanges() const noexcept {
  return sqlite3_total_changes64(handle());
}

}  // namespace vrdppo::embedded
