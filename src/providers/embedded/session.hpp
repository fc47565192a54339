// One connection of the store: the SQLite handle and the state a server keeps per connection.
// Procedures receive it to run their statements on the caller's connection.
#pragma once

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>

#include "call.hpp"
#include "providers/embedded/sqlite_handles.hpp"
#include "providers/embedded/store_files.hpp"
#include "vrdppo/recordset.hpp"
#include "vrdppo/row_sink.hpp"
#include "vrdppo/variant.hpp"

struct sqlite3;

namespace vrdppo::embedded {

class Session {
 public:
  // Opens the store file at path, creating it and its schema on first use; with readOnly, only
  // reads it as it stands (openToRead). Raises the provider-failure error.
  explicit Session(const std::string& path, bool readOnly = false);
  ~Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  sqlite3* handle() const noexcept { return connection_->db.get(); }

  // SET QUOTED_IDENTIFIER: on, as on a server, until the connection says otherwise.
  bool quotedIdentifier() const noexcept { return quotedIdentifier_; }
  void setQuotedIdentifier(bool on) noexcept { quotedIdentifier_ = on; }
  // What ZZ_SetAuditTrailID set; SQL reads it as audittrailid().
  std::int32_t auditTrailId() const noexcept { return auditTrailId_; }
  void setAuditTrailId(std::int32_t id) noexcept { auditTrailId_ = id; }

  // Runs text in the store's dialect: a batch of statements and procedure calls separated by
  // ";". Returns the first statement's result: an open recordset when it yields columns, a
  // closed one otherwise.
  std::shared_ptr<Recordset> execute(std::u16string_view text);
  // As execute, the result going row by row into the sink. A batch of several statements runs
  // as execute runs it, and the sink walks its result.
  void executeInto(std::u16string_view text, RecordSink& sink);
  // Runs one SQLite statement as it stands, binding params to its ? in order; its result as
  // execute gives it.
  std::shared_ptr<Recordset> run(std::string_view sqlite,
                                 std::initializer_list<Variant> params = {});
  // Runs SQLite statements as they stand, dropping what they yield.
  void exec(std::string_view sqlite);
  // Calls a procedure of the catalog; an unknown name raises the server's error 2812.
  std::shared_ptr<Recordset> call(const ProcArgs& args);
  // Runs body as one transaction (a savepoint inside another), rolled back when it raises.
  void transaction(const std::function<void()>& body);

  // A connection that reads the file as immutable (no log lay beside it when it opened) trusts
  // it not to change; a writer that came since changes it when it copies its log back. Before a
  // caller's statement, a changed file is opened afresh; after one, it raises: the rows may be
  // torn. Called by the provider around what a caller runs, never inside it: a procedure's own
  // statements run on the connection they began with.
  void beforeReading();
  void afterReading() const;

  std::int64_t lastInsertId() const noexcept;
  // Rows changed by the last INSERT, UPDATE or DELETE.
  std::int64_t changes() const noexcept;
  // Rows changed since the connection opened, by every statement and trigger.
  std::int64_t totalChanges() const noexcept;

 private:
  // A statement's result; with a sink, a statement that SQLite runs streams into it instead and
  // gives nothing.
  std::shared_ptr<Recordset> statement(const Tokens& tokens, std::size_t begin, std::size_t end,
                                       RecordSink* sink = nullptr);
  std::shared_ptr<Recordset> prepared(std::u16string_view sqlite, RecordSink* sink = nullptr);

  // Marks the connection as not to be pooled unless the statement's first word is harmless.
  void note(std::string_view sqlite);
  void note(std::u16string_view firstWord);

  // First, so that it ends last: the connection is handed back before a fork may go on.
  StoreActivity activity_;
  std::string path_;
  FileMark mark_;  // of the file as it was opened, when it is read as immutable
  StoreConnectionPtr connection_;
  bool reusable_ = true;
  bool quotedIdentifier_ = true;
  std::int32_t auditTrailId_ = 0;
};

}  // namespace vrdppo::embedded
