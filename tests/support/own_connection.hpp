// The trap of an operation that posts on a connection of its own: every failure, at open, at
// execute or at close, ends in False with nothing raised, and the connection is released.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "support/scripted_provider.hpp"

namespace vrdppo::testing {

// `post` runs the operation and gives its result; `statement` is the one it sends and `connect`
// the string it opens with, as the scripted provider logs them.
inline void expectTrappedOnOwnConnection(const std::function<bool()>& post,
                                         const std::string& connect, const std::string& statement) {
  const std::string open = "open " + connect + "|||-1";
  const std::string execute = "execute " + statement + "|-1";
  struct Case {
    const char* where;
    std::function<void(ScriptedProvider&)> arm;
    std::vector<std::string> log;
  } cases[] = {
      {"open",
       [](ScriptedProvider& p) { p.failOpen(providerError()); },
       {"create", open, "release"}},
      {"execute",
       [](ScriptedProvider& p) { p.failExecute(u"", providerError()); },
       {"create", open, execute, "release"}},
      {"close",
       [](ScriptedProvider& p) { p.failClose(providerError()); },
       {"create", open, execute, "close", "release"}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.where);
    ScriptedProvider p;
    c.arm(p);
    EXPECT_FALSE(post());
    EXPECT_EQ(p.log(), c.log);
  }
}

}  // namespace vrdppo::testing
