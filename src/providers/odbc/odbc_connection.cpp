#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <mutex>
#include <optional>

#include "providers/odbc/odbc_fetch.hpp"
#include "providers/odbc/odbc_handles.hpp"
#include "providers/odbc/odbc_login.hpp"
#include "providers/odbc/odbc_pool.hpp"
#include "providers/odbc/odbc_provider.hpp"
#include "providers/odbc/odbc_session_effects.hpp"
#include "vrdppo/error.hpp"
#include "vrdppo/provider.hpp"
#include "vrdppo/text.hpp"

namespace vrdppo::odbc {

namespace {

// The platform's connection object waits 30 seconds for a command unless told otherwise.
constexpr int kDefaultCommandTimeout = 30;
// ... and 15 for a login: a server that is stopped or unreachable fails the call in bounded time.
constexpr int kDefaultLoginTimeout = 15;
// The keys of a connection string that bound the login instead, as the platform's providers
// spell them; like Pooling, they never reach the driver.
constexpr std::array<std::u16string_view, 2> kLoginTimeoutKeys{u"Connect Timeout",
                                                               u"Connection Timeout"};

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

// The key of the connection string that keeps a connection out of the pool ("Pooling=No"), as
// the platform's client libraries spell it; it never reaches the driver.
constexpr std::u16string_view kPoolingKey = u"Pooling";

// The keys that are the provider's own and never reach the driver.
constexpr std::array<std::u16string_view, 3> kProviderKeys{kPoolingKey, kLoginTimeoutKeys[0],
                                                           kLoginTimeoutKeys[1]};

// The connection string without the provider's own keys, whatever their case or place.
std::u16string forTheDriver(std::u16string_view connect) {
  std::u16string out;
  for (const std::u16string_view pair : connectionPairs(connect)) {
    const std::u16string_view name = trimBlanks(pair.substr(0, pair.find(u'=')));
    const bool own = std::any_of(kProviderKeys.begin(), kProviderKeys.end(),
                                 [&](std::u16string_view key) { return equalsNoCase(name, key); });
    if (!own && !trimBlanks(pair).empty()) {
      if (!out.empty()) out += u';';
      out += pair;
    }
  }
  return out;
}

// The login time-out a connection string asks for, or nothing when it names none.
std::optional<int> loginTimeoutIn(std::u16string_view connect) {
  for (const auto key : kLoginTimeoutKeys) {
    const std::u16string value = connectionValue(connect, key);
    if (value.empty()) continue;
    const std::u16string_view digits = trimBlanks(value);
    int seconds = 0;
    bool number = !digits.empty() && digits.size() <= 9;
    for (std::size_t i = 0; number && i < digits.size(); ++i) {
      number = digits[i] >= u'0' && digits[i] <= u'9';
      seconds = seconds * 10 + (digits[i] - u'0');
    }
    if (!number) {
      throw Error(err::kProviderFailure,
                  "[vrdppo.odbc] Invalid connection string attribute: " + toUtf8(key) + "=" +
                      toUtf8(value) + " is not a number of seconds",
                  kErrorSource, "01S00");
    }
    return seconds;
  }
  return std::nullopt;
}

// Whether the string keeps its sessions out of the pool: Pooling=No or False (any case); Yes, True
// or no Pooling key keep them in. Anything else is refused, as a mistyped time-out is, rather
// than read as either.
bool poolingRefused(std::u16string_view connect) {
  const std::u16string value = connectionValue(connect, kPoolingKey);
  const std::u16string_view word = trimBlanks(value);
  if (word.empty() || equalsNoCase(word, u"Yes") || equalsNoCase(word, u"True")) return false;
  if (equalsNoCase(word, u"No") || equalsNoCase(word, u"False")) return true;
  throw Error(err::kProviderFailure,
              "[vrdppo.odbc] Invalid connection string attribute: " + toUtf8(kPoolingKey) + "=" +
                  toUtf8(value) + " is neither Yes nor No",
              kErrorSource, "01S00");
}

// How long a session taken from the pool may take to answer its first statement before it is
// thrown away for a fresh login: a part of the login's bound, since some drivers wait as long
// again for the server to acknowledge the cancel, and the fresh login must still fit.
int probeSeconds(int loginSeconds) {
  if (loginSeconds <= 0) loginSeconds = kDefaultLoginTimeout;
  return std::max(1, loginSeconds / 4);
}

bool isTimeout(const Error& e) {
  return e.sqlState() == "HYT00" || e.sqlState() == "HYT01";
}

// A failure of the link to the server rather than of the statement: after it the session is
// gone. Some drivers say so only in the connection's state (FreeTDS on a session whose server
// restarted: HY000, "Unknown error").
bool isLinkFailure(const Error& e, const Handle& dbc) {
  if (e.sqlState().starts_with("08") || isLinkNative(e.nativeError())) return true;
  SQLUINTEGER dead = SQL_CD_FALSE;
  return SQL_SUCCEEDED(
             SQLGetConnectAttrW(dbc.get(), SQL_ATTR_CONNECTION_DEAD, &dead, 0, nullptr)) &&
         dead == SQL_CD_TRUE;
}

// The error of a lost link in the class a server's client gives it, the driver's text and
// native number kept.
Error asLinkFailure(const Error& e) {
  if (e.sqlState().starts_with("08")) return e;
  // The driver's own text may say no more than "Unknown error".
  return Error(err::kProviderFailure,
               e.description() +
                   "\n[vrdppo.odbc] The connection to the server was lost under the statement, "
                   "which may or may not have run; it is not sent again.",
               e.source(), "08S01", e.nativeError());
}

// The audit trail id this thread's last connection left in its session: the pool hands the next
// one a session that holds the same, so that a thread that always sets one (or never) finds its
// sessions as it left them and nothing needs undoing.
thread_local std::int32_t tlsAuditTrailId = 0;

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

  void setConnectionTimeout(int seconds) override { loginTimeout_ = seconds; }

  // The options (asynchronous opening) have no meaning here.
  void open(const std::u16string& connect, const std::u16string& user,
            const std::u16string& password, int /*options*/) override {
    if (physical_) throw Error::runtime(err::kInvalidCall);
    const bool refused = poolingRefused(connect);
    pooled_ = pool::enabled() && !refused;
    if (const auto seconds = loginTimeoutIn(connect)) loginTimeout_ = *seconds;
    key_ = withCredentials(forTheDriver(connect), user, password);
    dirty_ = {};
    if (pooled_) physical_ = pool::take(key_, tlsAuditTrailId);
    reused_ = physical_ != nullptr;
    if (reused_) pool::reused(key_);
    if (!physical_) physical_ = login();
    origin_ = reused_ ? SessionOrigin::Kept : SessionOrigin::Fresh;
    auditPending_ = physical_->auditTrailId != 0;
    pool::acquired(key_);
  }

  SessionOrigin sessionOrigin() const noexcept override { return origin_; }

  std::string_view system() const noexcept override {
    return physical_ && !physical_->tsql ? "other_sql" : "microsoft.sql_server";
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
    if (!physical_) throw Error::runtime(err::kObjectClosed);
    PhysicalPtr physical = std::move(physical_);
    pool::returned(key_);
    if (keep(*physical)) {
      pool::give(key_, std::move(physical));
      return;
    }
    // A failed logout is tried again, and counted, as the connection goes.
    check(SQLDisconnect(physical->dbc.get()), physical->dbc, "SQLDisconnect");
    pool::loggedOut(*physical);
    physical->dbc.reset();
  }

 private:
  // What the statements on this hand-out may have left in the session.
  struct Dirty {
    bool lasting = false;      // a statement not known to leave nothing: closed rather than kept
    bool transaction = false;  // a statement failed: rolled back before it is kept
    bool dead = false;         // the link failed
  };

  PhysicalPtr login() const { return login(loginTimeout_); }

  PhysicalPtr login(int seconds) const {
    const auto start = std::chrono::steady_clock::now();
    const auto took = [&] {
      return std::chrono::duration_cast<std::chrono::nanoseconds>(std::chrono::steady_clock::now() -
                                                                  start);
    };
    try {
      PhysicalPtr physical = loginOnce(seconds);
      pool::loggedIn(key_, took(), nullptr);
      return physical;
    } catch (const Error& e) {
      pool::loggedIn(key_, took(), &e);
      throw;
    }
  }

  PhysicalPtr loginOnce(int seconds) const {
    auto physical = std::make_unique<PhysicalConnection>();
    physical->key = key_;
    Handle env(SQL_HANDLE_ENV, SQL_NULL_HANDLE);
    check(SQLSetEnvAttr(env.get(), SQL_ATTR_ODBC_VERSION,
                        reinterpret_cast<SQLPOINTER>(static_cast<std::uintptr_t>(SQL_OV_ODBC3)), 0),
          env, "SQLSetEnvAttr");
    Handle dbc(SQL_HANDLE_DBC, env.get());
    check(SQLSetConnectAttrW(dbc.get(), SQL_ATTR_LOGIN_TIMEOUT,
                             reinterpret_cast<SQLPOINTER>(static_cast<std::uintptr_t>(seconds)), 0),
          dbc, "SQLSetConnectAttrW");
    // The pool's key stays the caller's string; only the driver sees the version pinned.
    auto text = wide(withBoundedLogin(key_));
    check(SQLDriverConnectW(dbc.get(), nullptr, text.data(), SQL_NTS, nullptr, 0, nullptr,
                            SQL_DRIVER_NOPROMPT),
          dbc, "SQLDriverConnectW");
    physical->env = std::move(env);
    physical->dbc = std::move(dbc);
    physical->tsql = speaksTsql(physical->dbc);
    return physical;
  }

  // The driver's name for the server, known since the login: only a server that speaks T-SQL
  // has sessions the pool knows how to clean.
  static bool speaksTsql(const Handle& dbc) {
    SQLWCHAR name[64] = {};
    SQLSMALLINT length = 0;
    if (!SQL_SUCCEEDED(SQLGetInfoW(dbc.get(), SQL_DBMS_NAME, name, sizeof name, &length))) {
      return false;
    }
    const auto text = fromWide(name, fitted(length / 2, 63));
    return text.find(u"SQL Server") != std::u16string::npos;
  }

  // Whether the session goes back to the pool; a transaction left open is rolled back first.
  // The session's cause of logout is set when it is not.
  bool keep(PhysicalConnection& physical) noexcept {
    physical.cause = !pooled_ || !physical.tsql ? LogoutCause::NotKept
                     : dirty_.dead              ? LogoutCause::DeadLink
                                                : LogoutCause::SessionChanged;
    if (!pooled_ || !physical.tsql || dirty_.lasting || dirty_.dead) return false;
    if (dirty_.transaction) {
      try {
        direct(physical, u"IF @@TRANCOUNT > 0 ROLLBACK", kDefaultCommandTimeout);
      } catch (const Error&) {
        physical.cause = LogoutCause::DeadLink;
        return false;
      }
    }
    tlsAuditTrailId = physical.auditTrailId;
    return true;
  }

  // Runs a statement of the pool's own on the session, dropping what it yields, bounded by
  // `seconds` where the driver bounds statements. The observers hear of it unless it stands in
  // for the caller's own, which they hear of as that.
  void direct(PhysicalConnection& physical, std::u16string_view sql, int seconds,
              bool told = true) const {
    const bool watched = told && observe::active();
    const auto start =
        watched ? std::chrono::steady_clock::now() : std::chrono::steady_clock::time_point{};
    try {
      Handle stmt(SQL_HANDLE_STMT, physical.dbc.get());
      applyTimeout(stmt, seconds);
      auto text = wide(sql);
      const SQLRETURN rc =
          SQLExecDirectW(stmt.get(), text.data(), static_cast<SQLINTEGER>(sql.size()));
      if (rc != SQL_NO_DATA) check(rc, stmt, "SQLExecDirectW");
      if (watched) observe::tellStatement(key_, system(), sql, start, -1, -1, origin_, nullptr);
    } catch (const Error& e) {
      if (watched) observe::tellStatement(key_, system(), sql, start, -1, -1, origin_, &e);
      throw;
    }
  }

  // A session taken from the pool answers its first statement within a part of the login's
  // bound, or it is replaced by a fresh one before anything of substance is sent: the gateway's
  // own SET is that first statement, and goes again on the new session (sending a setting twice
  // changes nothing); any other first statement is preceded by the setting a new session starts
  // with, which is the test. True when the statement itself has run.
  bool firstOnReused(const std::u16string& sql) {
    reused_ = false;
    if (!physical_->tsql) return false;
    const bool gatewaySet = equalsNoCase(trimBlanks(sql), kGatewaySet);
    const auto start = std::chrono::steady_clock::now();
    if (answers(gatewaySet ? kGatewaySet : u"SET QUOTED_IDENTIFIER ON", !gatewaySet)) {
      return gatewaySet;
    }
    // A session that does not answer is as good as dead, and so, most likely, are the others
    // kept for the same server; what is left of the login's bound goes to a fresh one.
    pool::purge(key_, LogoutCause::NotAnswering);
    physical_->cause = LogoutCause::NotAnswering;
    physical_.reset();
    origin_ = SessionOrigin::Fresh;
    const auto spent =
        std::chrono::duration_cast<std::chrono::seconds>(std::chrono::steady_clock::now() - start)
            .count();
    const int left = loginTimeout_ <= 0 ? 0 : std::max(1, loginTimeout_ - static_cast<int>(spent));
    physical_ = login(left);
    auditPending_ = false;
    return false;
  }

  // Whether the kept session runs a setting within the probe's bound; false when it did not
  // answer or its link is dead, an error of the statement's own raised.
  bool answers(std::u16string_view setting, bool told) {
    try {
      direct(*physical_, setting, probeSeconds(loginTimeout_), told);
      return true;
    } catch (const Error& e) {
      if (!isTimeout(e) && !isLinkFailure(e, physical_->dbc)) throw;
      return false;
    }
  }

  // Undoes what a former caller's audit trail id left in the session unless this caller's
  // statements set their own at once.
  void settleAuditTrail(const std::u16string& sql) {
    if (equalsNoCase(trimBlanks(sql), kGatewaySet)) return;  // the id, if any, comes next
    auditPending_ = false;
    if (gatewayAuditTrailId(sql)) return;
    direct(*physical_, u"exec ZZ_SetAuditTrailID NULL", kDefaultCommandTimeout);
    physical_->auditTrailId = 0;
  }

  // Runs the text and hands its statement, with the first result's column count, to read.
  template <class Read>
  void run(const std::u16string& sql, Read read) {
    if (!physical_) throw Error::runtime(err::kObjectClosed);
    affected_ = -1;
    // The provider refuses an empty command itself, as the embedded store does, rather than
    // hand the driver manager a length it rejects.
    if (trimBlanks(sql).empty()) {
      throw Error(err::kNoCommandText, "Command text was not set for the command object.",
                  kErrorSource, "HY000");
    }
    if (reused_ && firstOnReused(sql)) {
      read(Handle(), SQLSMALLINT{0});  // a SET yields nothing
      return;
    }
    if (auditPending_) settleAuditTrail(sql);
    if (pooled_ && physical_->tsql && !dirty_.lasting) {
      const SessionEffects effects = sessionEffects(sql);
      dirty_.lasting = !effects.plain;
      if (effects.auditTrailId) physical_->auditTrailId = *effects.auditTrailId;
    }
    try {
      Handle stmt(SQL_HANDLE_STMT, physical_->dbc.get());
      if (timeout_ >= 0) applyTimeout(stmt, timeout_);
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
    } catch (const Error& e) {
      // A failed batch may leave a transaction open; a lost link leaves no session at all, and
      // most likely none behind the other idle connections to the same server.
      dirty_.transaction = true;
      if (!isLinkFailure(e, physical_->dbc)) throw;
      dirty_.dead = true;
      if (pooled_) pool::purge(key_, LogoutCause::DeadLink);
      throw asLinkFailure(e);
    }
  }

  static void applyTimeout(const Handle& stmt, int seconds) {
    const SQLRETURN rc = SQLSetStmtAttrW(
        stmt.get(), SQL_ATTR_QUERY_TIMEOUT,
        reinterpret_cast<SQLPOINTER>(static_cast<std::uintptr_t>(seconds)), SQL_IS_UINTEGER);
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

  // A connection given up without Close (an error passed through its owner): its session goes
  // back to the pool when it can, after a failed statement's transaction is rolled back.
  void release() noexcept {
    if (!physical_) return;
    PhysicalPtr physical = std::move(physical_);
    pool::returned(key_);
    if (keep(*physical)) pool::give(key_, std::move(physical));
  }

  PhysicalPtr physical_;
  std::u16string key_;  // the connection string with credentials: the pool's key
  bool pooled_ = false;
  bool reused_ = false;  // taken from the pool, and no statement sent on it yet
  SessionOrigin origin_ = SessionOrigin::Fresh;
  bool auditPending_ = false;  // a former caller's audit trail id may still be in the session
  Dirty dirty_;
  int cursorLocation_ = adUseClient;
  int timeout_ = kDefaultCommandTimeout;
  int loginTimeout_ = kDefaultLoginTimeout;
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
