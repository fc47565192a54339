// The data-provider interface: the few connection calls the gateway needs, and the registry that
// picks a provider by the connection string.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "vrdppo/observer.hpp"
#include "vrdppo/recordset.hpp"
#include "vrdppo/row_sink.hpp"
#include "vrdppo/visibility.hpp"

VRDPPO_PUBLIC_BEGIN
namespace vrdppo {

inline constexpr int adUseClient = 3;
inline constexpr int adOptionUnspecified = -1;

// What Connection::OpenSchema reads from a database's catalog: a recordset of one row per
// table, column, procedure or parameter, with these columns.
enum class SchemaKind : std::uint8_t {
  Tables,      // TABLE_NAME, TABLE_TYPE ("BASE TABLE" or "VIEW")
  Columns,     // TABLE_NAME, COLUMN_NAME, DATA_TYPE (lower case: "int", "varchar", ...; empty where
               // the database does not say), CHARACTER_MAXIMUM_LENGTH (-1 for max; Null but for
               // text), NUMERIC_PRECISION, NUMERIC_SCALE, IS_IDENTITY (1 or 0)
  Procedures,  // PROCEDURE_NAME
  ProcedureParameters,  // PROCEDURE_NAME, PARAMETER_NAME (with its "@"), ORDINAL_POSITION
};

// One connection of a provider, opened for one statement and released after it.
class ProviderConnection {
 public:
  virtual ~ProviderConnection() = default;
  virtual void setCursorLocation(int location) = 0;
  virtual void open(const std::u16string& connect, const std::u16string& user,
                    const std::u16string& password, int options) = 0;
  // Runs the text and returns its first result, fetched whole: an open recordset when it has
  // rows, a closed one otherwise. Failures raise vrdppo::Error.
  virtual std::shared_ptr<Recordset> execute(const std::u16string& sql, int options) = 0;
  // Runs the text as execute does, its first result going row by row into the sink instead of
  // into a recordset; a result without rows leaves the sink unbegun. A provider that can step
  // through its rows overrides this; by default the sink walks what execute returns.
  virtual void executeInto(const std::u16string& sql, int options, RecordSink& sink) {
    const auto rs = execute(sql, options);
    sink.walk(*rs);
  }
  // Rows the last execute inserted, updated or deleted (what the platform's Execute answers in
  // RecordsAffected); -1 when the provider cannot say.
  virtual std::int64_t recordsAffected() const noexcept { return -1; }
  virtual void setCommandTimeout(int seconds) = 0;
  // Seconds a login may take before open fails, 0 for no limit; set before open. A provider
  // without logins has nothing to bound.
  virtual void setConnectionTimeout(int /*seconds*/) {}
  virtual void close() = 0;
  // The catalog's facts of one kind. By default it runs schemaQuery(kind).
  virtual std::shared_ptr<Recordset> openSchema(SchemaKind kind);
  // The statement openSchema sends for a kind: by default the queries a SQL Server answers, over
  // its INFORMATION_SCHEMA and sys views, which only read; empty for a provider that reads its
  // catalog without a statement.
  virtual std::u16string schemaQuery(SchemaKind kind) const;
  // Where the open connection's session came from (a fresh login, a kept session, or none).
  virtual SessionOrigin sessionOrigin() const noexcept { return SessionOrigin::None; }
  // The kind of database, as tracers name it ("microsoft.sql_server", "sqlite"); empty when the
  // provider cannot say, and the provider's registered name stands in.
  virtual std::string_view system() const noexcept { return {}; }
};

using ProviderFactory = std::function<std::unique_ptr<ProviderConnection>()>;
using ProviderMatcher = std::function<bool(std::u16string_view connect)>;

// Providers are tried from the last registered to the first; the first whose matcher accepts the
// connection string makes the connection.
namespace providers {

// Registers a provider and returns a token for unregister. A builtin provider (the library's
// own) ranks below every other, whenever either was registered.
int add(std::string name, ProviderMatcher matches, ProviderFactory make, bool builtin = false);
void remove(int token);
// The connection for a connection string; error 3706-like provider failure when none matches.
std::unique_ptr<ProviderConnection> connect(std::u16string_view connect);
// The name of the provider that would take the string, empty when none.
std::string nameFor(std::u16string_view connect);

// Keeps a registration for its lifetime.
class Registration {
 public:
  Registration(std::string name, ProviderMatcher matches, ProviderFactory make)
      : token_(add(std::move(name), std::move(matches), std::move(make))) {}
  ~Registration() { remove(token_); }
  Registration(const Registration&) = delete;
  Registration& operator=(const Registration&) = delete;

 private:
  int token_;
};

}  // namespace providers

// ADODB.Connection: the object an operation creates, opens, uses and releases. The provider is
// chosen when it opens, by its connection string; settings made before that are handed on then.
class Connection {
 public:
  Connection() = default;
  ~Connection();  // releases the provider's connection, closed or not
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  void setCursorLocation(int location);
  void setCommandTimeout(int seconds);
  // ConnectionTimeout: how long Open waits for a server's login, 0 for no limit. Unset, the
  // provider's default holds (15 seconds for a server, or the connection string's
  // "Connect Timeout").
  void setConnectionTimeout(int seconds);
  void Open(const std::u16string& connect, const std::u16string& user = {},
            const std::u16string& password = {}, int options = adOptionUnspecified);
  std::shared_ptr<Recordset> Execute(const std::u16string& sql, int options = adOptionUnspecified);
  // As above, with the rows the statement touched in recordsAffected (-1 when the provider
  // cannot say).
  std::shared_ptr<Recordset> Execute(const std::u16string& sql, std::int64_t& recordsAffected,
                                     int options = adOptionUnspecified);
  // As Execute, the first result streamed into the sink. An error the sink raised names the
  // statement too.
  void ExecuteInto(const std::u16string& sql, RecordSink& sink, int options = adOptionUnspecified);
  // The database's catalog, one kind of fact at a time (see SchemaKind).
  std::shared_ptr<Recordset> OpenSchema(SchemaKind kind);
  // The rows the last Execute touched; -1 before the first, after one that failed, or when the
  // provider cannot say.
  std::int64_t RecordsAffected() const noexcept { return recordsAffected_; }
  void Close();
  int State() const noexcept;

 private:
  // Tells the observers of a statement sent; only called while one is installed.
  void observed(std::u16string_view sql, std::chrono::steady_clock::time_point start,
                std::int64_t returned, std::int64_t affected, const Error* error) const;

  std::unique_ptr<ProviderConnection> impl_;
  std::u16string connect_;  // as opened, while an observer is installed
  bool open_ = false;
  int cursorLocation_ = 0;  // 0: the provider's default
  int timeout_ = -1;        // -1: the provider's default
  int loginTimeout_ = -1;   // -1: the provider's default
  std::int64_t recordsAffected_ = -1;
};

// The rows touched by the last statement that this thread executed through any Connection, as
// Connection::RecordsAffected says it. The operations of the classes send their main statement
// last (Commit its UPDATE or insert, Delete its DELETE or UPDATE), so after one of them returns
// this is how many rows it wrote, which their Boolean results do not tell.
std::int64_t lastRecordsAffected() noexcept;
// Sets it to -1, so that a caller can tell a statement from none.
void resetLastRecordsAffected() noexcept;
// Puts back a figure read earlier: what an observer's own statements changed.
void restoreLastRecordsAffected(std::int64_t figure) noexcept;

// The "key=value" pairs of a connection string in order, each as written: a pair ends at the first
// ";" outside a value in braces (one that begins with "{", where "}}" is a brace). Joined with ";"
// they give the string back.
std::vector<std::u16string_view> connectionPairs(std::u16string_view connect);

// The value of a key in a "key=value;key=value" connection string (keys without regard to case,
// braces around a value removed); empty when absent.
std::u16string connectionValue(std::u16string_view connect, std::u16string_view key);

}  // namespace vrdppo
VRDPPO_PUBLIC_END
