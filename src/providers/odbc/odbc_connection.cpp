#include <cstdint>
#include <mutex>

#include "providers/odbc/odbc_fetch.hpp"
#include "providers/odbc/odbc_handles.hpp"
#include "providers/odbc/odbc_provider.hpp"
#include "vrdppo/error.hpp"
#include "vrdppo/provider.hpp"
#include "vrdppo/text.hpp"

namespace vrdppo::odbc {

namespace {

// The platform's connection object waits 30 seconds for a command unless told otherwise.
constexpr int kDefaultCommandTimeout = 30;

// A connection-string value, braced when it holds characters that would end or split it.
std::u16string connectValue(std::u16string_view value) {
  const bool plain = value.find_first_of(u";{}=") == std::u16string_view::npos &&
                     value.front() != u' ' && value.back() != u' ';
  if (plain) return std::u16string(value);
  std::u16string out = u"{";
  for (char16_t c : value) {
    out += c;
    if (c == u'}') out += u'}';
  }
  return out + u'}';
}

std::u16string withCredentials(const std::u16string& connect, const std::u16string& user,
                               const std::u16string& password) {
  std::u16string out = connect;
  const auto append = [&out](std::u16string_view key, const std::u16string& value) {
    if (value.empty()) return;
    if (!out.empty() && out.back() != u';') out += u';';
    out.append(key).append(u"=").append(connectValue(value));
  };
  append(u"UID", user);
  append(u"PWD", password);
  return out;
}

class OdbcConnection final : public ProviderConnection {
 public:
  OdbcConnection() = default;
  ~OdbcConnection() override { release(); }
  OdbcConnection(const OdbcConnection&) = delete;
  OdbcConnection& operator=(const OdbcConnection&) = delete;

  // Rows are always fetched whole before execute returns, which is what a client cursor is;
  // the location is kept only to be faithful to what the caller set.
  void setCursorLocation(int location) override { cursorLocation_ = location; }

  void setCommandTimeout(int seconds) override { timeout_ = seconds; }

  // The options (asynchronous opening) have no meaning here.
  void open(const std::u16string& connect, const std::u16string& user,
            const std::u16string& password, int /*options*/) override {
    if (connected_) throw Error::runtime(err::kInvalidCall);
    Handle env(SQL_HANDLE_ENV, SQL_NULL_HANDLE);
    check(SQLSetEnvAttr(env.get(), SQL_ATTR_ODBC_VERSION,
                        reinterpret_cast<SQLPOINTER>(static_cast<std::uintptr_t>(SQL_OV_ODBC3)), 0),
          env, "SQLSetEnvAttr");
    Handle dbc(SQL_HANDLE_DBC, env.get());
    auto text = wide(withCredentials(connect, user, password));
    check(SQLDriverConnectW(dbc.get(), nullptr, text.data(), SQL_NTS, nullptr, 0, nullptr,
                            SQL_DRIVER_NOPROMPT),
          dbc, "SQLDriverConnectW");
    env_ = std::move(env);
    dbc_ = std::move(dbc);
    connected_ = true;
  }

  std::shared_ptr<Recordset> execute(const std::u16string& sql, int /*options*/) override {
    std::shared_ptr<Recordset> result;
    run(sql, [&](const Handle& stmt, SQLSMALLINT columns) {
      result = columns == 0 ? std::make_shared<Recordset>() : fetchAll(stmt, columns);
    });
    return result;
  }

  void executeInto(const std::u16string& sql, int /*options*/, RecordSink& sink) override {
    run(sql, [&](const Handle& stmt, SQLSMALLINT columns) {
      if (columns != 0) streamAll(stmt, columns, sink);
    });
  }

  std::int64_t recordsAffected() const noexcept override { return affected_; }

  void close() override {
    if (!connected_) throw Error::runtime(err::kObjectClosed);
    check(SQLDisconnect(dbc_.get()), dbc_, "SQLDisconnect");
    connected_ = false;
    dbc_.reset();
    env_.reset();
  }

 private:
  // Runs the text and hands its statement, with the first result's column count, to read.
  template <class Read>
  void run(const std::u16string& sql, Read read) {
    if (!connected_) throw Error::runtime(err::kObjectClosed);
    affected_ = -1;
    // The provider refuses an empty command itself, as the embedded store does, rather than
    // hand the driver manager a length it rejects.
    if (trimBlanks(sql).empty()) {
      throw Error(err::kNoCommandText, "Command text was not set for the command object.",
                  kErrorSource, "HY000");
    }
    Handle stmt(SQL_HANDLE_STMT, dbc_.get());
    if (timeout_ >= 0) applyTimeout(stmt);
    auto text = wide(sql);
    const SQLRETURN rc =
        SQLExecDirectW(stmt.get(), text.data(), static_cast<SQLINTEGER>(sql.size()));
    // SQL_NO_DATA: a searched update or delete that touched no row.
    if (rc != SQL_NO_DATA) check(rc, stmt, "SQLExecDirectW");
    affected_ = rc == SQL_NO_DATA ? 0 : rowCount(stmt);
    SQLSMALLINT columns = 0;
    check(SQLNumResultCols(stmt.get(), &columns), stmt, "SQLNumResultCols");
    // Only the first result counts: a row count first means no rows, whatever follows.
    read(stmt, columns);
  }

  void applyTimeout(const Handle& stmt) const {
    const SQLRETURN rc = SQLSetStmtAttrW(
        stmt.get(), SQL_ATTR_QUERY_TIMEOUT,
        reinterpret_cast<SQLPOINTER>(static_cast<std::uintptr_t>(timeout_)), SQL_IS_UINTEGER);
    if (SQL_SUCCEEDED(rc)) return;
    // A driver without time-outs says so; the statement then simply runs without one.
    const std::string state = firstSqlState(stmt);
    if (state != "HYC00" && state != "01S02") fail(stmt, "SQLSetStmtAttrW");
  }

  // What the driver says of the statement's rows: -1 where it cannot say (a SELECT, for most).
  static std::int64_t rowCount(const Handle& stmt) noexcept {
    SQLLEN rows = -1;
    if (!SQL_SUCCEEDED(SQLRowCount(stmt.get(), &rows))) return -1;
    return rows;
  }

  void release() noexcept {
    if (connected_) SQLDisconnect(dbc_.get());
    connected_ = false;
    dbc_.reset();
    env_.reset();
  }

  Handle env_;  // declared first: the connection handle must go before its environment
  Handle dbc_;
  bool connected_ = false;
  int cursorLocation_ = adUseClient;
  int timeout_ = kDefaultCommandTimeout;
  std::int64_t affected_ = -1;
};

bool isOdbcString(std::u16string_view connect) {
  return (!connectionValue(connect, u"DRIVER").empty() ||
          !connectionValue(connect, u"DSN").empty()) &&
         connectionValue(connect, u"Provider").empty();
}

}  // namespace

void registerProvider() {
  static std::once_flag once;
  std::call_once(once, [] {
    providers::add(
        "odbc", isOdbcString,
        [] { return std::unique_ptr<ProviderConnection>(new OdbcConnection()); },
        /*builtin=*/true);
  });
}

}  // namespace vrdppo::odbc
