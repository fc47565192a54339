#include "vrdppo/embedded_store.hpp"

#include <new>

#include "providers/embedded/errors.hpp"
#include "providers/embedded/schema_reader.hpp"
#include "providers/embedded/session.hpp"
#include "providers/embedded/store_files.hpp"
#include "vrdppo/error.hpp"
#include "vrdppo/recordset.hpp"
#include "vrdppo/text.hpp"

namespace vrdppo::embedded {

namespace {

// The connection the gateway opens for one statement. The cursor is always the client's (rows
// are fetched whole) and a statement runs to its end: both settings are accepted and kept aside.
class EmbeddedConnection final : public ProviderConnection {
 public:
  void setCursorLocation(int) override {}

  void open(const std::u16string& connect, const std::u16string&, const std::u16string&,
            int) override {
    if (session_) throw Error::runtime(err::kInvalidCall);
    // Mode=Read, as a client asks any provider for a connection that only reads.
    session_ = std::make_unique<Session>(toUtf8(connectionValue(connect, u"Data Source")),
                                         equalsNoCase(connectionValue(connect, u"Mode"), u"Read"));
  }

  std::shared_ptr<Recordset> execute(const std::u16string& sql, int) override {
    std::shared_ptr<Recordset> result;
    run(sql, [&] { result = session_->execute(sql); });
    return result;
  }

  void executeInto(const std::u16string& sql, int, RecordSink& sink) override {
    run(sql, [&] { session_->executeInto(sql, sink); });
  }

  std::int64_t recordsAffected() const noexcept override { return affected_; }

  void setCommandTimeout(int) override {}

  void close() override { session_.reset(); }

  std::shared_ptr<Recordset> openSchema(SchemaKind kind) override {
    if (!session_) throw Error::runtime(err::kObjectClosed);
    session_->beforeReading();
    auto rs = readSchema(*session_, kind);
    session_->afterReading();
    return rs;
  }

  // The catalog is read from the engine's own tables, without a statement of the server's.
  std::u16string schemaQuery(SchemaKind) const override { return {}; }

  std::string_view system() const noexcept override { return "sqlite"; }

 private:
  template <class F>
  void run(const std::u16string& sql, F body) {
    if (!session_) throw Error::runtime(err::kObjectClosed);
    // A provider refuses an empty command rather than answer it with nothing.
    if (trimBlanks(sql).empty()) {
      throw storeError(err::kNoCommandText, "Command text was not set for the command object.",
                       "HY000", 0);
    }
    affected_ = -1;
    try {
      session_->beforeReading();
      // Every row the text changed, those of the procedures it calls included.
      const std::int64_t before = session_->totalChanges();
      body();
      session_->afterReading();
      affected_ = session_->totalChanges() - before;
    } catch (const Error&) {
      throw;
    } catch (const std::bad_alloc&) {
      throw;
    } catch (const std::exception& e) {
      throw storeError(err::kCommandError, e.what(), "HY000", 0);
    }
  }

  std::unique_ptr<Session> session_;
  std::int64_t affected_ = -1;
};

}  // namespace

bool accepts(std::u16string_view connect) {
  return equalsNoCase(connectionValue(connect, u"Provider"), kProviderName);
}

std::u16string connectString(const std::string& path) {
  return u"Provider=" + std::u16string(kProviderName) + u";Data Source=" + fromUtf8(path);
}

std::unique_ptr<ProviderConnection> makeConnection() {
  return std::make_unique<EmbeddedConnection>();
}

void registerProvider() {
  providers::add(
      "embedded", accepts, [] { return makeConnection(); }, /*builtin=*/true);
}

void openStore(const std::string& path) {
  if (path.empty()) throw openError("The connection string names no Data Source.", 14);
  prepareStore(path, true);
}

void releaseStore(const std::string& path) {
  forgetStore(path);
}

}  // namespace vrdppo::embedded
