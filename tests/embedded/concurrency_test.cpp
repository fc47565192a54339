// Several threads and processes writing one store file at once.
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

#include "providers/embedded/store_files.hpp"
#include "store_fixture.hpp"
#include "vrdppo/text.hpp"

namespace vrdppo::embedded::testing {

namespace {

constexpr int kRowsPerWriter = 120;

// Inserts one picking of the run through the insert procedure, as Commit does; its Identity.
std::int32_t insertPicking(const std::string& path, int run, int n) {
  Client c(path);
  const auto rs = c.run(
      u"EXEC sp_InsertStatement @p_Stmt = \"INSERT INTO PICKINGS "
      u"(ProductionRunId, Weight, PickingTypeId) VALUES (" +
      ascii(std::to_string(run)) + u", " + ascii(std::to_string(n)) + u", 1)\"");
  return toLong(rs->Fields(u"Identity"));
}

using ConcurrencyTest = StoreTest;

TEST_F(ConcurrencyTest, ThreadsWritingAtOnceLoseNothing) {
  std::vector<std::int32_t> keys[2];
  std::atomic<int> writersDone{0};
  std::atomic<bool> readerSawDecrease{false};
  const auto writer = [&](int run) {
    try {
      for (int i = 0; i < kRowsPerWriter; ++i) keys[run].push_back(insertPicking(path_, run, i));
    } catch (const Error& e) {
      ADD_FAILURE() << "writer " << run << ": " << e.description();
    }
    ++writersDone;
  };
  // A reader alongside sees the table only grow.
  const auto reader = [&] {
    std::int32_t last = 0;
    for (int i = 0; i < 2000 && writersDone < 2; ++i) {
      const std::int32_t now = toLong(Client(path_).scalar(u"SELECT COUNT(*) FROM PICKINGS"));
      if (now < last) readerSawDecrease = true;
      last = now;
    }
  };
  std::thread a(writer, 0);
  std::thread b(writer, 1);
  std::thread r(reader);
  a.join();
  b.join();
  r.join();
  EXPECT_FALSE(readerSawDecrease);
  EXPECT_EQ(count(u"PICKINGS WHERE ProductionRunId = 0"), kRowsPerWriter);
  EXPECT_EQ(count(u"PICKINGS WHERE ProductionRunId = 1"), kRowsPerWriter);
  std::vector<std::int32_t> all(keys[0]);
  all.insert(all.end(), keys[1].begin(), keys[1].end());
  std::sort(all.begin(), all.end());
  EXPECT_EQ(std::adjacent_find(all.begin(), all.end()), all.end()) << "a key was given twice";
  EXPECT_EQ(all.size(), 2u * kRowsPerWriter);
}

TEST_F(ConcurrencyTest, AnotherProcessWritingAtOnceLosesNothing) {
  int go[2];
  ASSERT_EQ(::pipe(go), 0);
  const pid_t child = ::fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    ::close(go[1]);
    char start = 0;
    int code = ::read(go[0], &start, 1) == 1 ? 0 : 2;
    try {
      for (int i = 0; code == 0 && i < kRowsPerWriter; ++i) insertPicking(path_, 2, i);
    } catch (...) {
      code = 1;
    }
    ::_exit(code);
  }
  ::close(go[0]);
  ASSERT_EQ(::write(go[1], "g", 1), 1);
  ::close(go[1]);
  for (int i = 0; i < kRowsPerWriter; ++i) insertPicking(path_, 1, i);
  int status = 0;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  ASSERT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 0);
  EXPECT_EQ(count(u"PICKINGS WHERE ProductionRunId = 1"), kRowsPerWriter);
  EXPECT_EQ(count(u"PICKINGS WHERE ProductionRunId = 2"), kRowsPerWriter);
  EXPECT_EQ(toLong(scalar(u"SELECT COUNT(DISTINCT PICKINGSID) FROM PICKINGS")), 2 * kRowsPerWriter);
}

// Children forked while the parent's threads are in the middle of their statements: each child
// writes at once, as any other process would, and none waits on a lock of a thread it has not.
TEST_F(ConcurrencyTest, AChildForkedWhileThreadsWriteWritesAtOnce) {
  constexpr int kChildren = 12;
  std::atomic<bool> stop{false};
  const auto writer = [&](int run) {
    try {
      for (int i = 0; !stop; ++i) insertPicking(path_, run, i);
    } catch (const Error& e) {
      ADD_FAILURE() << "writer " << run << ": " << e.description();
    }
  };
  std::thread a(writer, 0);
  std::thread b(writer, 1);
  int failed = 0;
  for (int n = 0; n < kChildren; ++n) {
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    const pid_t child = ::fork();
    if (child == 0) {
      ::alarm(10);  // a child held by a lost lock waits 30 s; this one is counted failed first
      int code = 0;
      try {
        for (int i = 0; i < 3; ++i) insertPicking(path_, 100 + n, i);
      } catch (...) {
        code = 1;
      }
      ::_exit(code);
    }
    int status = 0;
    if (child < 0 || ::waitpid(child, &status, 0) != child || !WIFEXITED(status) ||
        WEXITSTATUS(status) != 0) {
      ++failed;
    }
  }
  stop = true;
  a.join();
  b.join();
  EXPECT_EQ(failed, 0) << "of " << kChildren << " children";
  // A child whose connections held no real lock had its rows written over by the parent's.
  EXPECT_EQ(count(u"PICKINGS WHERE ProductionRunId >= 100"), 3 * kChildren);
  EXPECT_EQ(toLong(scalar(u"SELECT COUNT(*) FROM PICKINGS")),
            toLong(scalar(u"SELECT MAX(PICKINGSID) FROM PICKINGS")));
}

// A connection another thread keeps open across a fork would cross into the child with locks
// the child does not hold: the fork waits a while for it, then the child refuses the store with
// a clear error rather than write beside the parent without them. The parent goes on as before.
TEST_F(ConcurrencyTest, AChildForkedWhileAConnectionIsHeldOpenRefusesTheStore) {
  std::atomic<bool> opened{false};
  std::atomic<bool> release{false};
  std::thread holder([&] {
    Client held(path_);
    opened = true;
    while (!release) std::this_thread::sleep_for(std::chrono::milliseconds(5));
  });
  while (!opened) std::this_thread::sleep_for(std::chrono::milliseconds(1));
  const auto start = std::chrono::steady_clock::now();
  const pid_t child = ::fork();
  if (child == 0) {
    int code = 1;
    try {
      insertPicking(path_, 5, 1);
    } catch (const Error& e) {
      code = e.description().find("forked while another thread") != std::string::npos ? 0 : 2;
    }
    ::_exit(code);
  }
  const auto waited = std::chrono::steady_clock::now() - start;
  release = true;
  holder.join();
  int status = 0;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "child status " << status;
  EXPECT_GE(waited, std::chrono::milliseconds(kForkWaitMs));
  EXPECT_LT(waited, std::chrono::milliseconds(kForkWaitMs + 2000));
  insertPicking(path_, 6, 1);
  EXPECT_EQ(count(u"PICKINGS WHERE ProductionRunId = 5"), 0);
  EXPECT_EQ(count(u"PICKINGS WHERE ProductionRunId = 6"), 1);
}

// Processes that open a file no one has opened yet, all at the same moment, each write once:
// the switch to write-ahead logging and the schema make them take turns, and none fails.
TEST(ConcurrentFirstOpen, ProcessesOpeningANewFileTogetherAllWrite) {
  constexpr int kRounds = 24;
  constexpr int kProcesses = 8;
  int failed = 0;
  for (int round = 0; round < kRounds; ++round) {
    const std::string path = freshStorePath("first_open_" + std::to_string(round));
    int go[2];
    ASSERT_EQ(::pipe(go), 0);
    std::vector<pid_t> children;
    for (int p = 0; p < kProcesses; ++p) {
      const pid_t child = ::fork();
      ASSERT_GE(child, 0);
      if (child == 0) {
        ::close(go[1]);
        char start = 0;
        int code = ::read(go[0], &start, 1) == 0 ? 0 : 2;  // all start when the pipe closes
        try {
          if (code == 0) insertPicking(path, p, round);
        } catch (...) {
          code = 1;
        }
        ::_exit(code);
      }
      children.push_back(child);
    }
    ::close(go[0]);
    ::close(go[1]);
    for (const pid_t child : children) {
      int status = 0;
      ASSERT_EQ(::waitpid(child, &status, 0), child);
      if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) ++failed;
    }
    EXPECT_EQ(toLong(Client(path).scalar(u"SELECT COUNT(*) FROM PICKINGS")), kProcesses);
    releaseStore(path);
    removeStore(path);
  }
  EXPECT_EQ(failed, 0) << "of " << kRounds * kProcesses << " processes";
}

}  // namespace

}  // namespace vrdppo::embedded::testing
