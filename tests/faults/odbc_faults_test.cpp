// Every driver-manager call of the statements a Commit (an update: inserts go through a
// procedure), a Load and a Delete send made to fail in turn, through the SQLite ODBC driver: each
// failure raises the library's error or the statement still succeeds, rows stay whole or absent,
// and every handle is freed and every connection closed. The statements run on a connection
// opened for each, as the gateway runs them, without the gateway's SET QUOTED_IDENTIFIER, which
// the SQLite driver does not know.
#include <gtest/gtest.h>

#include <functional>
#include <map>

#include "endtoend/store_fixture.hpp"
#include "outcomes.hpp"
#include "providers/odbc_test_support.hpp"
#include "seam.hpp"
#include "vrdppo/error.hpp"
#include "vrdppo/reference/types.hpp"

namespace vrdppo::testing {

namespace {

class OdbcFaults : public ::testing::Test {
 protected:
  void SetUp() override {
    connect = odbc::testing::freshDatabase("faults");
    run(u"CREATE TABLE STEMCLASS (STEMCLASSID INTEGER PRIMARY KEY AUTOINCREMENT, "
        u"Description VARCHAR(20), DeletedFlag VARCHAR(1))");
  }

  std::shared_ptr<Recordset> run(const std::u16string& sql) {
    Connection connection;
    connection.setCursorLocation(adUseClient);
    connection.Open(connect);
    auto rs = connection.Execute(sql);
    connection.Close();
    return rs;
  }
  Rows rows() {
    Rows out;
    const auto rs = run(u"SELECT * FROM STEMCLASS");
    for (cStemClassPersist o; !rs->EOF_(); rs->MoveNext()) {
      o.RecordToObj(*rs);
      out[o.key()] = text(o.record().Description);
    }
    return out;
  }

  long sweep(
      const std::function<bool(cStemClassPersist&, std::u16string&)>& operation,
      const std::function<void(bool raised, const std::u16string& loaded, const Rows&)>& check) {
    long injected = 0;
    for (long k = 1;; ++k) {
      run(u"DELETE FROM STEMCLASS");
      run(u"INSERT INTO STEMCLASS (STEMCLASSID, Description, DeletedFlag) VALUES (1, 'before', "
          u"'N')");
      const long handles = faults::odbcHandles();
      const long connected = faults::odbcConnected();
      cStemClassPersist o;
      std::u16string loaded;
      bool raised = false;
      faults::arm(k);
      try {
        EXPECT_TRUE(operation(o, loaded));
      } catch (const Error&) {
        raised = true;
      }
      faults::disarm();
      const std::string call = faults::failed();
      SCOPED_TRACE("call " + std::to_string(k) + ", " + (call.empty() ? "none" : call) + " failed");
      EXPECT_EQ(faults::odbcHandles(), handles) << "a handle left allocated";
      EXPECT_EQ(faults::odbcConnected(), connected) << "a connection left open";
      check(raised, loaded, rows());
      if (call.empty()) {
        EXPECT_FALSE(raised);
        break;
      }
      ++injected;
      if (::testing::Test::HasFailure()) break;
    }
    return injected;
  }

  std::u16string connect;
};

TEST_F(OdbcFaults, EveryCallOfCommitLoadAndDeleteFailsCleanly) {
  long total = 0;
  total += sweep(
      [&](cStemClassPersist& o, std::u16string&) {
        o.SetState(stemClass(1, u"after"));
        run(u"UPDATE STEMCLASS SET " + o.UpdateFields() + u" WHERE STEMCLASSID = 1");
        return true;
      },
      [](bool raised, const std::u16string&, const Rows& now) { expectUpdated(raised, now); });
  total += sweep(
      [&](cStemClassPersist& o, std::u16string& loaded) {
        const auto rs = run(u"SELECT * FROM STEMCLASS WHERE StemClassId = 1");
        if (!rs->EOF_()) {
          o.RecordToObj(*rs);
          loaded = text(o.record().Description);
        }
        return true;
      },
      expectLoaded);
  total += sweep(
      [&](cStemClassPersist&, std::u16string&) {
        run(u"DELETE FROM STEMCLASS WHERE STEMCLASSID = 1");
        return true;
      },
      [](bool raised, const std::u16string&, const Rows& now) { expectDeleted(raised, now); });
  std::printf("%ld driver-manager faults injected\n", total);
  EXPECT_GT(total, 10);
}

// A driver that takes a block size but cannot report it back must still fetch into buffers of the
// size the provider allocated: every row arrives once, and nothing is written past the buffers.
TEST_F(OdbcFaults, ABlockSizeThatCannotBeReadBackFetchesRowByRow) {
  for (int i = 1; i <= 40; ++i)
    run(u"INSERT INTO STEMCLASS (Description, DeletedFlag) VALUES ('row " + longText(i) +
        u"', 'N')");
  faults::armCall("SQLGetStmtAttrW");
  const auto rs = run(u"SELECT * FROM STEMCLASS ORDER BY STEMCLASSID");
  faults::disarm();
  ASSERT_EQ(faults::failed(), "SQLGetStmtAttrW");
  int n = 0;
  for (cStemClassPersist o; !rs->EOF_(); rs->MoveNext()) {
    o.RecordToObj(*rs);
    EXPECT_EQ(text(o.record().Description), u"row " + longText(++n));
  }
  EXPECT_EQ(n, 40);
}

}  // namespace

}  // namespace vrdppo::testing
