#include "vrdppo/provider.hpp"

#include <algorithm>
#include <mutex>
#include <vector>

#include "frame/builtins.hpp"
#include "vrdppo/error.hpp"
#include "vrdppo/text.hpp"

namespace vrdppo {

namespace {

thread_local std::int64_t lastAffected = -1;

struct Entry {
  int token;
  std::string name;
  ProviderMatcher matches;
  ProviderFactory make;
};

struct Registry {
  std::mutex mutex;
  std::vector<Entry> entries;
  int next = 1;
};

Registry& registry() {
  static Registry r;
  return r;
}

const Entry* find(Registry& r, std::u16string_view connect) {
  for (auto it = r.entries.rbegin(); it != r.entries.rend(); ++it) {
    if (it->matches(connect)) return &*it;
  }
  return nullptr;
}

}  // namespace

namespace providers {

int add(std::string name, ProviderMatcher matches, ProviderFactory make, bool builtin) {
  auto& r = registry();
  std::lock_guard lock(r.mutex);
  const int token = r.next++;
  Entry e{token, std::move(name), std::move(matches), std::move(make)};
  if (builtin) {
    r.entries.insert(r.entries.begin(), std::move(e));
  } else {
    r.entries.push_back(std::move(e));
  }
  return token;
}

void remove(int token) {
  auto& r = registry();
  std::lock_guard lock(r.mutex);
  std::erase_if(r.entries, [token](const Entry& e) { return e.token == token; });
}

std::unique_ptr<ProviderConnection> connect(std::u16string_view connect) {
  registerBuiltinProviders();
  ProviderFactory make;
  {
    auto& r = registry();
    std::lock_guard lock(r.mutex);
    if (const Entry* e = find(r, connect)) make = e->make;
  }
  if (!make) {
    throw Error(err::kProviderFailure,
                "[vrdppo] Data source name not found and no default driver specified: \"" +
                    toUtf8(connect) + "\"",
                "vrdppo", "IM002");
  }
  return make();
}

std::string nameFor(std::u16string_view connect) {
  registerBuiltinProviders();
  auto& r = registry();
  std::lock_guard lock(r.mutex);
  const Entry* e = find(r, connect);
  return e ? e->name : std::string();
}

}  // namespace providers

Connection::~Connection() = default;

void Connection::setCursorLocation(int location) {
  cursorLocation_ = location;
  if (impl_) impl_->setCursorLocation(location);
}

void Connection::setCommandTimeout(int seconds) {
  timeout_ = seconds;
  if (impl_) impl_->setCommandTimeout(seconds);
}

void Connection::setConnectionTimeout(int seconds) {
  if (seconds < 0) throw Error::runtime(err::kInvalidCall);
  loginTimeout_ = seconds;
}

void Connection::Open(const std::u16string& connect, const std::u16string& user,
                      const std::u16string& password, int options) {
  if (open_) throw Error::runtime(err::kInvalidCall);
  impl_ = providers::connect(connect);
  if (cursorLocation_ != 0) impl_->setCursorLocation(cursorLocation_);
  if (timeout_ >= 0) impl_->setCommandTimeout(timeout_);
  if (loginTimeout_ >= 0) impl_->setConnectionTimeout(loginTimeout_);
  impl_->open(connect, user, password, options);
  // Kept for the observers only: a call without one copies nothing. An observer installed
  // between this and a statement hears it without its target.
  if (observe::active()) connect_ = connect;
  open_ = true;
}

void Connection::observed(std::u16string_view sql, std::chrono::steady_clock::time_point start,
                          std::int64_t returned, std::int64_t affected, const Error* error) const {
  std::string_view system = impl_->system();
  std::string name;
  if (system.empty()) {
    try {
      system = name = providers::nameFor(connect_);
    } catch (...) {  // NOLINT(bugprone-empty-catch): told without a system rather than not
    }
  }
  observe::tellStatement(connect_, system, sql, start, returned, affected, impl_->sessionOrigin(),
                         error);
}

std::shared_ptr<Recordset> Connection::Execute(const std::u16string& sql, int options) {
  std::int64_t affected = -1;
  return Execute(sql, affected, options);
}

std::shared_ptr<Recordset> Connection::Execute(const std::u16string& sql,
                                               std::int64_t& recordsAffected, int options) {
  recordsAffected = -1;
  recordsAffected_ = -1;
  lastAffected = -1;
  if (!open_) throw Error::runtime(err::kObjectClosed);
  const bool watched = observe::active();
  const auto start =
      watched ? std::chrono::steady_clock::now() : std::chrono::steady_clock::time_point{};
  try {
    auto recordset = impl_->execute(sql, options);
    recordsAffected = recordsAffected_ = lastAffected = impl_->recordsAffected();
    if (watched) {
      const auto rows = recordset->State() == adStateOpen
                            ? static_cast<std::int64_t>(recordset->recordCount())
                            : std::int64_t{-1};
      observed(sql, start, rows, recordsAffected, nullptr);
    }
    return recordset;
  } catch (Error& e) {
    // Every statement of the library passes here: the one place to say which of them failed.
    if (e.statement().empty()) e.setStatement(sql);
    if (watched) observed(sql, start, -1, -1, &e);
    throw;
  }
}

void Connection::ExecuteInto(const std::u16string& sql, RecordSink& sink, int options) {
  recordsAffected_ = -1;
  lastAffected = -1;
  if (!open_) throw Error::runtime(err::kObjectClosed);
  const bool watched = observe::active();
  const auto start =
      watched ? std::chrono::steady_clock::now() : std::chrono::steady_clock::time_point{};
  try {
    impl_->executeInto(sql, options, sink);
    recordsAffected_ = lastAffected = impl_->recordsAffected();
    if (watched) {
      const auto rows = sink.begun() ? static_cast<std::int64_t>(sink.rows()) : std::int64_t{-1};
      observed(sql, start, rows, recordsAffected_, nullptr);
    }
  } catch (Error& e) {
    // Also what the sink raised: the statement is the one whose rows would not go in.
    if (e.statement().empty()) e.setStatement(sql);
    if (watched) observed(sql, start, -1, -1, &e);
    throw;
  }
}

std::shared_ptr<Recordset> ProviderConnection::openSchema(SchemaKind kind) {
  return execute(schemaQuery(kind), adOptionUnspecified);
}

std::u16string ProviderConnection::schemaQuery(SchemaKind kind) const {
  // Only the objects an unqualified name reaches: the server looks in the login's default schema,
  // then in dbo, and never in another schema. Each object also says what the login may do with
  // it. sys.all_parameters rather than INFORMATION_SCHEMA.PARAMETERS, which not every engine that
  // speaks T-SQL has.
  static const std::vector<std::u16string> kQueries = [] {
    const auto reachedTable = [](std::u16string_view a) {
      const std::u16string t(a);
      return u" WHERE " + t + u".TABLE_SCHEMA = SCHEMA_NAME() OR " + t +
             u".TABLE_SCHEMA = 'dbo' AND NOT EXISTS (SELECT 1 FROM INFORMATION_SCHEMA.TABLES o "
             u"WHERE o.TABLE_SCHEMA = SCHEMA_NAME() AND o.TABLE_NAME = " +
             t + u".TABLE_NAME)";
    };
    const std::u16string reachedProcedure =
        u" WHERE pr.schema_id = SCHEMA_ID() OR pr.schema_id = SCHEMA_ID('dbo') AND NOT EXISTS "
        u"(SELECT 1 FROM sys.procedures o WHERE o.schema_id = SCHEMA_ID() AND o.name = pr.name)";
    std::u16string tables = u"SELECT t.TABLE_SCHEMA, t.TABLE_NAME, t.TABLE_TYPE";
    for (const std::u16string_view right : {u"SELECT", u"INSERT", u"UPDATE", u"DELETE"}) {
      tables +=
          u", HAS_PERMS_BY_NAME(QUOTENAME(t.TABLE_SCHEMA) + '.' + QUOTENAME(t.TABLE_NAME), "
          u"'OBJECT', '" +
          std::u16string(right) + u"') AS CAN_" + std::u16string(right);
    }
    tables += u" FROM INFORMATION_SCHEMA.TABLES t" + reachedTable(u"t");
    return std::vector<std::u16string>{
        tables,
        u"SELECT c.TABLE_SCHEMA, c.TABLE_NAME, c.COLUMN_NAME, LOWER(c.DATA_TYPE) AS DATA_TYPE, "
        u"c.CHARACTER_MAXIMUM_LENGTH, c.NUMERIC_PRECISION, c.NUMERIC_SCALE, "
        u"COLUMNPROPERTY(OBJECT_ID(QUOTENAME(c.TABLE_SCHEMA) + '.' + QUOTENAME(c.TABLE_NAME)), "
        u"c.COLUMN_NAME, 'IsIdentity') AS IS_IDENTITY FROM INFORMATION_SCHEMA.COLUMNS c" +
            reachedTable(u"c") + u" ORDER BY c.TABLE_NAME, c.ORDINAL_POSITION",
        u"SELECT pr.name AS PROCEDURE_NAME, SCHEMA_NAME(pr.schema_id) AS PROCEDURE_SCHEMA, "
        u"HAS_PERMS_BY_NAME(QUOTENAME(SCHEMA_NAME(pr.schema_id)) + '.' + QUOTENAME(pr.name), "
        u"'OBJECT', 'EXECUTE') AS CAN_EXECUTE FROM sys.procedures pr" +
            reachedProcedure,
        u"SELECT pr.name AS PROCEDURE_NAME, SCHEMA_NAME(pr.schema_id) AS PROCEDURE_SCHEMA, "
        u"p.name AS PARAMETER_NAME, "
        u"p.parameter_id AS ORDINAL_POSITION FROM sys.procedures pr "
        u"JOIN sys.all_parameters p ON p.object_id = pr.object_id" +
            reachedProcedure + u" ORDER BY pr.name, p.parameter_id"};
  }();
  return kQueries[static_cast<std::size_t>(kind)];
}

std::shared_ptr<Recordset> Connection::OpenSchema(SchemaKind kind) {
  if (!open_) throw Error::runtime(err::kObjectClosed);
  const bool watched = observe::active();
  if (!watched) return impl_->openSchema(kind);
  const auto start = std::chrono::steady_clock::now();
  const std::u16string sql = impl_->schemaQuery(kind);
  try {
    auto recordset = impl_->openSchema(kind);
    observed(sql, start, static_cast<std::int64_t>(recordset->recordCount()), -1, nullptr);
    return recordset;
  } catch (Error& e) {
    observed(sql, start, -1, -1, &e);
    throw;
  }
}

void Connection::Close() {
  if (!open_) throw Error::runtime(err::kObjectClosed);
  open_ = false;
  impl_->close();
}

std::int64_t lastRecordsAffected() noexcept {
  return lastAffected;
}

void resetLastRecordsAffected() noexcept {
  lastAffected = -1;
}

void restoreLastRecordsAffected(std::int64_t figure) noexcept {
  lastAffected = figure;
}

int Connection::State() const noexcept {
  return open_ ? adStateOpen : adStateClosed;
}

namespace {

// Hands each "key=value" pair of a connection string to `take`, in order, until it answers true.
// A value that begins with "{" runs to its closing "}" ("}}" being a brace within it) and may
// hold ";"; a brace anywhere else is a character. Nothing is copied: a connection string is read
// several times on every open.
template <class Take>
void eachPair(std::u16string_view connect, Take take) {
  std::size_t i = 0;
  for (;;) {
    std::size_t end = connect.find(u';', i);
    const std::size_t eq = connect.find(u'=', i);
    if (eq < end) {
      std::size_t v = eq + 1;
      while (v < connect.size() && connect[v] == u' ') ++v;
      if (v < connect.size() && connect[v] == u'{') {
        std::size_t close = v + 1;
        for (; close < connect.size(); ++close) {
          if (connect[close] != u'}') continue;
          if (close + 1 < connect.size() && connect[close + 1] == u'}') {
            ++close;
          } else {
            break;
          }
        }
        end = connect.find(u';', close);
      }
    }
    end = std::min(end, connect.size());
    if (take(connect.substr(i, end - i)) || end >= connect.size()) return;
    i = end + 1;
  }
}

}  // namespace

std::vector<std::u16string_view> connectionPairs(std::u16string_view connect) {
  std::vector<std::u16string_view> pairs;
  eachPair(connect, [&](std::u16string_view pair) {
    pairs.push_back(pair);
    return false;
  });
  return pairs;
}

std::u16string connectionValue(std::u16string_view connect, std::u16string_view key) {
  std::u16string value;
  eachPair(connect, [&](std::u16string_view pair) {
    const std::size_t eq = pair.find(u'=');
    if (eq == std::u16string_view::npos || !equalsNoCase(trimBlanks(pair.substr(0, eq)), key)) {
      return false;
    }
    auto v = trimBlanks(pair.substr(eq + 1));
    if (v.size() >= 2 && v.front() == u'{' && v.back() == u'}') v = v.substr(1, v.size() - 2);
    value = v;
    return true;  // the first occurrence of a key is the one that counts
  });
  return value;
}

}  // namespace vrdppo
