// A provider for tests: records every call the gateway makes, and answers statements as scripted.
#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "vrdppo/error.hpp"
#include "vrdppo/provider.hpp"

namespace vrdppo::testing {

// A recordset of one row, for scripted answers.
std::shared_ptr<Recordset> rowset(std::vector<std::u16string> columns,
                                  std::vector<std::vector<Variant>> rows);

class ScriptedProvider {
 public:
  // Takes every connection string while it lives (it ranks above the built-in providers).
  ScriptedProvider();
  ~ScriptedProvider();

  // Answers for statements containing `fragment` (the first matching rule wins; rules are used
  // in the order given). `times` 0 means always.
  void answer(std::u16string fragment, std::function<std::shared_ptr<Recordset>()> make,
              int times = 0);
  void answerRows(std::u16string fragment, std::vector<std::u16string> columns,
                  std::vector<std::vector<Variant>> rows, int times = 0);
  void failExecute(std::u16string fragment, Error error, int times = 0);
  void failOpen(Error error);
  void failClose(Error error);

  // The log: "create", "cursor 3", "open <string>|<user>|<password>|<options>",
  // "execute <sql>|<options>", "timeout 0", "close", "release".
  std::vector<std::string> log() const;
  // Only the statements executed, in order.
  std::vector<std::u16string> statements() const;
  // The recordsets handed out, to inspect their state after the call.
  std::vector<std::shared_ptr<Recordset>> handedOut() const;
  void clear();

 private:
  friend class ScriptedConnection;
  struct Rule {
    std::u16string fragment;
    std::function<std::shared_ptr<Recordset>()> make;
    std::optional<Error> error;
    int remaining;
  };
  std::shared_ptr<Recordset> run(const std::u16string& sql);
  void note(std::string entry);

  mutable std::mutex mutex_;
  std::vector<std::string> log_;
  std::vector<std::u16string> statements_;
  std::vector<std::shared_ptr<Recordset>> handedOut_;
  std::vector<Rule> rules_;
  std::optional<Error> openError_;
  std::optional<Error> closeError_;
  int token_;
};

// A standard error of a provider's failure, as tests raise it.
Error providerError(std::string text = "[Scripted] failure");

}  // namespace vrdppo::testing
