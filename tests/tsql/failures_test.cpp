// What a caller sees when the server, not the statement, fails: a refused login, a link lost
// under a statement, a server that takes the connection and never answers. Each comes in the
// SQLSTATE class a server's own client gives it, in bounded time.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <functional>
#include <string>

#include "tsql/silent_server.hpp"
#include "vrdppo/dbhelp.hpp"
#include "vrdppo/error.hpp"
#include "vrdppo/provider.hpp"
#include "vrdppo/text.hpp"

using namespace vrdppo;

namespace {

class ServerFailures : public ::testing::Test {
 protected:
  void SetUp() override {
    const char* connect = std::getenv("VRDPPO_TSQL_CONNECT");
    if (connect == nullptr || *connect == '\0') {
      GTEST_SKIP() << "VRDPPO_TSQL_CONNECT names no T-SQL server";
    }
    server_ = fromUtf8(connect);
  }

  static Error errorOf(const std::function<void()>& call) {
    try {
      call();
    } catch (const Error& e) {
      return e;
    }
    ADD_FAILURE() << "no error";
    return Error(0, "", "");
  }

  std::u16string server_;
};

TEST_F(ServerFailures, ARefusedLoginIsInTheLoginClass) {
  const std::u16string wrong = server_ + u";PWD=not-the-password";
  const Error e = errorOf([&] {
    Connection c;
    c.Open(wrong);
  });
  EXPECT_EQ(e.sqlState(), "28000") << e.description();
  EXPECT_NE(e.nativeError(), 0);  // the server's own number, kept
  EXPECT_FALSE(e.description().empty());
}

TEST_F(ServerFailures, ALinkLostUnderAStatementIsInTheLinkClass) {
  // Not kept, so that the statement after the kill is the one that meets the dead link.
  Connection c;
  c.Open(server_ + u";Pooling=No");
  const auto rs = c.Execute(u"SELECT @@SPID");
  const std::int32_t spid = toLong(rs->Fields(0));
  {
    Connection admin;
    admin.Open(server_ + u";Pooling=No");
    admin.Execute(u"KILL " + fromUtf8(std::to_string(spid)));
    admin.Close();
  }
  const Error e = errorOf([&] { c.Execute(u"SELECT name FROM sys.objects"); });
  EXPECT_EQ(e.sqlState(), "08S01") << e.description();
  EXPECT_NE(e.description().find("connection to the server was lost"), std::string::npos)
      << e.description();
  EXPECT_EQ(e.statement(), u"SELECT name FROM sys.objects");
}

TEST_F(ServerFailures, ALoginToASilentServerEndsInBoundedTime) {
  tsql::SilentServer silent;
  const std::u16string there = u"DRIVER=" + connectionValue(server_, u"DRIVER") +
                               u";SERVER=127.0.0.1;PORT=" +
                               fromUtf8(std::to_string(silent.port())) +
                               u";UID=vrd;PWD=vrd";  // no version: the driver would negotiate one
  const struct {
    const char* how;
    std::u16string connect;
    int property;  // the Connection's ConnectionTimeout, -1 for unset
  } cases[] = {
      {"Connect Timeout in the string", there + u";Connect Timeout=1", -1},
      {"Connection Timeout in the string", there + u";Connection Timeout=1", -1},
      {"the ConnectionTimeout property", there, 1},
      {"the string over the property", there + u";Connect Timeout=1", 600},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.how);
    const auto start = std::chrono::steady_clock::now();
    const Error e = errorOf([&] {
      Connection connection;
      if (c.property >= 0) connection.setConnectionTimeout(c.property);
      connection.Open(c.connect);
    });
    const auto waited = std::chrono::steady_clock::now() - start;
    // A bound, not a speed: without one the login waits for as long as the socket lives.
    EXPECT_LT(waited, std::chrono::seconds(10));
    EXPECT_EQ(e.sqlState(), "HYT00") << e.description();
  }
  // Told nothing, a gateway call waits the platform's 15 seconds, not for ever.
  dbHelp::ConnectString = there;
  const auto start = std::chrono::steady_clock::now();
  const Error e = errorOf([] { dbHelp::OpenRecordset(u"SELECT 1"); });
  const auto waited = std::chrono::steady_clock::now() - start;
  EXPECT_GE(waited, std::chrono::seconds(14));
  EXPECT_LT(waited, std::chrono::seconds(30));
  EXPECT_EQ(e.sqlState(), "HYT00") << e.description();
}

}  // namespace
