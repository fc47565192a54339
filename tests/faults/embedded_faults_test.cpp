// Every SQLite call of a Commit, a Load and a Delete made to fail in turn, on a store the process
// has open already and on one it opens for the operation: each failure raises the library's
// error (or the operation still succeeds, where the failed call was not needed), the store keeps
// each row whole or not at all, and no connection or statement is left open.
#include <gtest/gtest.h>

#include <functional>
#include <optional>

#include "endtoend/store_fixture.hpp"
#include "outcomes.hpp"
#include "seam.hpp"
#include "vrdppo/error.hpp"
#include "vrdppo/reference/types.hpp"

namespace vrdppo::testing {

namespace {

// The descriptions in the store, by key, read without faults.
Rows rows(const std::u16string& connect) {
  cStemClassPersist o;
  Rows out;
  for (const auto& r : rowsOf<cStemClassPersist>(o.Load(u"", connect)))
    out[r.StemClassId] = text(r.Description);
  return out;
}

struct Outcome {
  bool raised = false;
  bool result = false;
  std::u16string loaded;
};

class EmbeddedFaults : public StoreTest {
 protected:
  // Puts the store in the state an operation starts from: the row "before" alone, with key 1.
  void reset() {
    cStemClassPersist o;
    for (const auto& [key, d] : rows(connect)) ASSERT_TRUE(o.Delete(stemClass(key, u""), connect));
    dbHelp::ConnectString = connect;
    dbHelp::OpenRecordset(
        u"INSERT INTO STEMCLASS (STEMCLASSID, Description, DeletedFlag) "
        u"VALUES (1, 'before', 'N')");
  }

  // Fails the operation's k-th call for k = 1, 2, ... until it runs through without reaching k;
  // `check` judges the store after each. Returns the number of faults injected.
  long sweep(bool cold, const std::function<bool(cStemClassPersist&, Outcome&)>& operation,
             const std::function<void(const Outcome&, const Rows&)>& check) {
    long injected = 0;
    for (long k = 1;; ++k) {
      reset();
      if (cold) embedded::releaseStore(path);
      cStemClassPersist o;
      Outcome out;
      faults::arm(k);
      try {
        out.result = operation(o, out);
      } catch (const Error&) {
        out.raised = true;
      }
      faults::disarm();
      const std::string call = faults::failed();
      if (call.empty()) {
        EXPECT_FALSE(out.raised) << "raised with no fault injected";
        check(out, rows(connect));
        break;
      }
      SCOPED_TRACE("call " + std::to_string(k) + ", " + call + " failed");
      ++injected;
      // The pooled connections must still work: the check reads through them.
      check(out, rows(connect));
      embedded::releaseStore(path);
      EXPECT_EQ(faults::sqliteConnections(), 0) << "a connection left open";
      EXPECT_EQ(faults::sqliteStatements(), 0) << "a statement left unfinalized";
      if (::testing::Test::HasFailure()) break;
    }
    return injected;
  }
};

TEST_F(EmbeddedFaults, EveryCallOfCommitLoadAndDeleteFailsCleanly) {
  long total = 0;
  for (const bool cold : {false, true}) {
    SCOPED_TRACE(cold ? "store opened by the operation" : "store open already");
    // An insert: the new row is there whole, or not at all when Commit raised.
    total += sweep(
        cold,
        [&](cStemClassPersist& o, Outcome&) {
          return o.Commit(stemClass(0, u"inserted"), connect);
        },
        [](const Outcome& out, const Rows& now) {
          EXPECT_EQ(now.at(1), u"before");
          if (!out.raised) {
            EXPECT_EQ(now.size(), 2u);
          }
          EXPECT_LE(now.size(), 2u);
          for (const auto& [key, d] : now)
            if (key != 1) {
              EXPECT_EQ(d, u"inserted");
            }
        });
    // An update: the row holds the old text or the new, never a mixture.
    total += sweep(
        cold,
        [&](cStemClassPersist& o, Outcome&) { return o.Commit(stemClass(1, u"after"), connect); },
        [](const Outcome& out, const Rows& now) { expectUpdated(out.raised, now); });
    // A load: an error, or the row exactly.
    total += sweep(
        cold,
        [&](cStemClassPersist& o, Outcome& out) {
          out.loaded = o.Load(u"StemClassId = 1", connect);
          return true;
        },
        [](const Outcome& out, const Rows& now) {
          const auto loaded =
              out.raised ? std::vector<StemClassRecord>{} : rowsOf<cStemClassPersist>(out.loaded);
          expectLoaded(out.raised, loaded.size() == 1 ? text(loaded[0].Description) : u"", now);
        });
    // A delete: the row is gone, or there whole when Delete raised.
    total += sweep(
        cold, [&](cStemClassPersist& o, Outcome&) { return o.Delete(stemClass(1, u""), connect); },
        [](const Outcome& out, const Rows& now) { expectDeleted(out.raised, now); });
  }
  std::printf("%ld SQLite faults injected\n", total);
  EXPECT_GT(total, 20);
}

}  // namespace

}  // namespace vrdppo::testing
