#include "support/scripted_provider.hpp"

#include "vrdppo/text.hpp"

namespace vrdppo::testing {

std::shared_ptr<Recordset> rowset(std::vector<std::u16string> columns,
                                  std::vector<std::vector<Variant>> rows) {
  auto rs = std::make_shared<Recordset>(std::move(columns));
  for (auto& r : rows) rs->addRow(std::move(r));
  rs->rewind();
  return rs;
}

Error providerError(std::string text) {
  return Error(err::kCommandError, std::move(text), "scripted", "42000", 102);
}

class ScriptedConnection : public ProviderConnection {
 public:
  explicit ScriptedConnection(ScriptedProvider& p) : p_(p) { p_.note("create"); }
  ~ScriptedConnection() override { p_.note("release"); }
  void setCursorLocation(int location) override { p_.note("cursor " + std::to_string(location)); }
  void open(const std::u16string& connect, const std::u16string& user,
            const std::u16string& password, int options) override {
    p_.note("open " + toUtf8(connect) + "|" + toUtf8(user) + "|" + toUtf8(password) + "|" +
            std::to_string(options));
    std::lock_guard lock(p_.mutex_);
    if (p_.openError_) throw *p_.openError_;
  }
  std::shared_ptr<Recordset> execute(const std::u16string& sql, int options) override {
    p_.note("execute " + toUtf8(sql) + "|" + std::to_string(options));
    return p_.run(sql);
  }
  void setCommandTimeout(int seconds) override { p_.note("timeout " + std::to_string(seconds)); }
  void close() override {
    p_.note("close");
    std::lock_guard lock(p_.mutex_);
    if (p_.closeError_) throw *p_.closeError_;
  }

 private:
  ScriptedProvider& p_;
};

ScriptedProvider::ScriptedProvider()
    : token_(providers::add(
          "scripted", [](std::u16string_view) { return true; },
          [this] { return std::make_unique<ScriptedConnection>(*this); })) {}

ScriptedProvider::~ScriptedProvider() {
  providers::remove(token_);
}

void ScriptedProvider::answer(std::u16string fragment,
                              std::function<std::shared_ptr<Recordset>()> make, int times) {
  std::lock_guard lock(mutex_);
  rules_.push_back({std::move(fragment), std::move(make), std::nullopt, times});
}

void ScriptedProvider::answerRows(std::u16string fragment, std::vector<std::u16string> columns,
                                  std::vector<std::vector<Variant>> rows, int times) {
  answer(
      std::move(fragment), [columns, rows] { return rowset(columns, rows); }, times);
}

void ScriptedProvider::failExecute(std::u16string fragment, Error error, int times) {
  std::lock_guard lock(mutex_);
  rules_.push_back({std::move(fragment), nullptr, std::move(error), times});
}

void ScriptedProvider::failOpen(Error error) {
  std::lock_guard lock(mutex_);
  openError_ = std::move(error);
}

void ScriptedProvider::failClose(Error error) {
  std::lock_guard lock(mutex_);
  closeError_ = std::move(error);
}

std::shared_ptr<Recordset> ScriptedProvider::run(const std::u16string& sql) {
  std::unique_lock lock(mutex_);
  statements_.push_back(sql);
  for (auto it = rules_.begin(); it != rules_.end(); ++it) {
    if (sql.find(it->fragment) == std::u16string::npos) continue;
    auto make = it->make;
    auto error = it->error;
    if (it->remaining > 0 && --it->remaining == 0) rules_.erase(it);
    if (error) throw *error;
    lock.unlock();
    auto rs = make();
    lock.lock();
    handedOut_.push_back(rs);
    return rs;
  }
  auto rs = std::make_shared<Recordset>();
  handedOut_.push_back(rs);
  return rs;
}

void ScriptedProvider::note(std::string entry) {
  std::lock_guard lock(mutex_);
  log_.push_back(std::move(entry));
}

std::vector<std::string> ScriptedProvider::log() const {
  std::lock_guard lock(mutex_);
  return log_;
}

std::vector<std::u16string> ScriptedProvider::statements() const {
  std::lock_guard lock(mutex_);
  return statements_;
}

std::vector<std::shared_ptr<Recordset>> ScriptedProvider::handedOut() const {
  std::lock_guard lock(mutex_);
  return handedOut_;
}

void ScriptedProvider::clear() {
  std::lock_guard lock(mutex_);
  log_.clear();
  statements_.clear();
  handedOut_.clear();
}

}  // namespace vrdppo::testing
