// A writer killed with SIGKILL at random moments loses nothing it was told was committed. A child
// process commits rows and reports each acknowledged key through a pipe; the parent kills it,
// then finds every acknowledged row whole and SQLite's integrity check clean, and starts the
// next child on the same file. VRDPPO_DURABILITY_KILLS sets the number of kills (30 by default).
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <sqlite3.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <map>
#include <random>
#include <string>

#include "endtoend/store_fixture.hpp"
#include "vrdppo/error.hpp"
#include "vrdppo/reference/types.hpp"

namespace vrdppo::testing {

namespace {

struct Ack {
  Long key;
  std::int32_t serial;
};

std::u16string description(std::int32_t serial) {
  return u"row " + longText(serial);
}

std::u16string stemClass(std::int32_t serial) {
  return newState<cStemClassPersist>([&](StemClassRecord& r) {
    put(r.Description, description(serial));
    put(r.DeletedFlag, u"N");
  });
}

// The child: commits until it is killed, acknowledging each row once Commit has returned.
[[noreturn]] void commitForever(const std::u16string& connect, int out, std::int32_t serial) {
  try {
    for (;; ++serial) {
      cStemClassPersist o;
      if (!o.Commit(stemClass(serial), connect)) ::_exit(3);
      const Ack ack{o.key(), serial};
      if (::write(out, &ack, sizeof ack) != sizeof ack) ::_exit(4);
    }
  } catch (...) {
    ::_exit(5);
  }
}

// Opened for writing, as the next process opens it: a kill in the middle of the switch to
// write-ahead logging, which still writes through a rollback journal, leaves a hot journal that
// a read-only connection may not roll back (SQLITE_READONLY_ROLLBACK), where every writer does.
std::string integrityCheck(const std::string& path) {
  sqlite3* db = nullptr;
  std::string result = "cannot open";
  if (sqlite3_open_v2(path.c_str(), &db, SQLITE_OPEN_READWRITE, nullptr) == SQLITE_OK) {
    sqlite3_stmt* st = nullptr;
    if (sqlite3_prepare_v2(db, "PRAGMA integrity_check", -1, &st, nullptr) == SQLITE_OK &&
        sqlite3_step(st) == SQLITE_ROW) {
      result = reinterpret_cast<const char*>(sqlite3_column_text(st, 0));
    }
    sqlite3_finalize(st);
  }
  sqlite3_close_v2(db);
  return result;
}

int kills() {
  const char* s = std::getenv("VRDPPO_DURABILITY_KILLS");
  return s && std::atoi(s) > 0 ? std::atoi(s) : 30;
}

class Durability : public StoreTest {};

TEST_F(Durability, EveryAcknowledgedRowSurvivesSIGKILL) {
  std::mt19937 rng(::getpid());
  // Up to 80 ms: every other kill may land while the child opens the store; the rest wait for
  // its first acknowledged commit, so that they land among its commits however slow the build
  // (a sanitizer's child on a busy machine can take longer than 80 ms to commit once).
  std::uniform_int_distribution<int> delayUs(0, 80000);
  std::map<Long, std::int32_t> acked;
  std::int32_t serial = 1;
  int survived = 0;
  for (int k = 0; k < kills(); ++k) {
    SCOPED_TRACE("kill " + std::to_string(k + 1));
    // Nothing of the store stays open in this process across the fork.
    embedded::releaseStore(path);
    int fds[2];
    ASSERT_EQ(::pipe(fds), 0);
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      ::close(fds[0]);
      commitForever(connect, fds[1], serial);
    }
    ::close(fds[1]);
    if (k % 2 == 1) {
      pollfd first{fds[0], POLLIN, 0};
      ::poll(&first, 1, 10000);  // what it reads stays in the pipe for the count below
    }
    ::usleep(static_cast<useconds_t>(delayUs(rng)));
    ASSERT_EQ(::kill(child, SIGKILL), 0);
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFSIGNALED(status)) << "the child ended by itself with " << WEXITSTATUS(status);
    Ack ack{};
    while (::read(fds[0], &ack, sizeof ack) == sizeof ack) {
      acked[ack.key] = ack.serial;
      serial = std::max(serial, ack.serial + 1);
    }
    ::close(fds[0]);
    ++serial;  // the row the child was writing may or may not be there

    // A kill that lands before the child has made the store leaves nothing to check.
    if (acked.empty() && !std::filesystem::exists(path)) {
      ++survived;
      continue;
    }
    ASSERT_EQ(integrityCheck(path), "ok");
    std::map<Long, std::u16string> found;
    cStemClassPersist o;
    for (const auto& r : rowsOf<cStemClassPersist>(o.Load(u"", connect)))
      found[r.StemClassId] = text(r.Description);
    for (const auto& [key, s] : acked) {
      const auto it = found.find(key);
      ASSERT_NE(it, found.end()) << "acknowledged key " << key << " is gone";
      EXPECT_EQ(it->second, description(s));
    }
    // At most the row in flight at each kill was written without being acknowledged.
    EXPECT_LE(found.size(), acked.size() + static_cast<std::size_t>(k + 1));
    ++survived;
  }
  std::printf("%d kills survived, %zu rows acknowledged\n", survived, acked.size());
  EXPECT_FALSE(acked.empty()) << "no child lived long enough to commit";
}

}  // namespace

}  // namespace vrdppo::testing
