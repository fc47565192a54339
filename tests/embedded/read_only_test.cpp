// A store on storage that the process cannot write: reads answer as they would anywhere, and
// every refusal says read-only and names the file. The reading runs in a child that cannot
// write the files (another user when the suite runs as root, whose rights ignore modes).
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "store_fixture.hpp"
#include "vrdppo/text.hpp"

namespace vrdppo::embedded::testing {

namespace {

namespace fs = std::filesystem;

constexpr uid_t kNobody = 65534;

struct Outcome {
  std::string rows;   // the sum of the rows' runs, or the error
  std::string write;  // the error an INSERT raised, or "written"
};

// Reads and then writes the store at path in a child that cannot write what `lock` took away.
Outcome inChild(const std::string& path, const std::function<void()>& lock) {
  int out[2];
  if (::pipe(out) != 0) return {"pipe failed", ""};
  const pid_t child = ::fork();
  if (child == 0) {
    ::close(out[0]);
    lock();
    std::string text;
    try {
      text = toUtf8(toString(Client(path).scalar(u"SELECT SUM(ProductionRunId) FROM STEMS")));
    } catch (const Error& e) {
      text = e.sqlState() + " " + e.description();
    }
    text += '\n';
    try {
      Client(path).run(u"INSERT INTO STEMS (ProductionRunId) VALUES (9)");
      text += "written";
    } catch (const Error& e) {
      text += e.sqlState() + " " + e.description();
    }
    const ssize_t n = ::write(out[1], text.data(), text.size());
    ::_exit(n == static_cast<ssize_t>(text.size()) ? 0 : 1);
  }
  ::close(out[1]);
  std::string text;
  char buffer[512];
  for (ssize_t n; (n = ::read(out[0], buffer, sizeof buffer)) > 0;) text.append(buffer, n);
  ::close(out[0]);
  int status = 0;
  ::waitpid(child, &status, 0);
  const auto line = text.find('\n');
  if (line == std::string::npos) return {text, ""};
  return {text.substr(0, line), text.substr(line + 1)};
}

// Takes away the right to write the folder (and, unless the file stays writable, the file):
// as root by becoming a user who owns neither, otherwise by their modes.
void readOnly(const std::string& path, bool fileWritable) {
  const fs::path dir = fs::path(path).parent_path();
  if (::geteuid() == 0) {
    if (fileWritable && ::chown(path.c_str(), kNobody, kNobody) != 0) ::_exit(3);
    if (::setgid(kNobody) != 0 || ::setuid(kNobody) != 0) ::_exit(3);
  } else {
    ::chmod(path.c_str(), fileWritable ? 0644 : 0444);
    for (const char* suffix : {"-wal", "-shm"}) ::chmod((path + suffix).c_str(), 0444);
    ::chmod(dir.c_str(), 0555);
  }
}

class ReadOnlyStore : public StoreTest {
 protected:
  void SetUp() override {
    StoreTest::SetUp();
    dir_ = fs::path(path_).parent_path() / ("read-only-" + std::to_string(::getpid()));
    fs::remove_all(dir_);
    fs::create_directories(dir_);
    fs::permissions(dir_, fs::perms(0755));
    for (int i = 0; i < 3; ++i) insert(u"INSERT INTO STEMS (ProductionRunId) VALUES (1)");
  }
  void TearDown() override {
    fs::permissions(dir_, fs::perms(0755));
    for (const auto& f : fs::directory_iterator(dir_)) releaseStore(f.path().string());
    fs::remove_all(dir_);
    StoreTest::TearDown();
  }

  // The store as it stands copied into the folder: its log too when it holds commits.
  std::string copy(bool withLog) {
    if (withLog) {
      // A commit that the kept connection leaves in the log, the row count as it was.
      sql(u"UPDATE STEMS SET ProductionRunId = 2");
    } else {
      releaseStore(path_);  // the last connection checkpoints and removes the log
    }
    const std::string to = (dir_ / "store.db").string();
    for (const char* suffix : {"", "-wal", "-shm"}) {
      if (fs::exists(path_ + suffix)) fs::copy_file(path_ + suffix, to + suffix);
    }
    return to;
  }

  fs::path dir_;
};

TEST_F(ReadOnlyStore, ReadsAnswerAndWritesSayReadOnlyNamingTheFile) {
  struct Case {
    const char* name;
    bool withLog;
    bool fileWritable;
    const char* sum;  // of three rows of run 1, moved to run 2 by the commit in the log
  } cases[] = {
      {"a read-only file", false, false, "3"},
      {"a writable file in a read-only folder", false, true, "3"},
      {"a read-only file whose log holds commits", true, false, "6"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const std::string store = copy(c.withLog);
    if (c.withLog) {
      ASSERT_GT(fs::file_size(store + "-wal"), 0u);
    }
    const Outcome o = inChild(store, [&] { readOnly(store, c.fileWritable); });
    EXPECT_EQ(o.rows, c.sum);
    EXPECT_NE(o.write.find("read-only"), std::string::npos) << o.write;
    EXPECT_NE(o.write.find(store), std::string::npos) << o.write;
    releaseStore(store);
    for (const char* suffix : {"", "-wal", "-shm"}) fs::remove(store + suffix);
  }
}

TEST_F(ReadOnlyStore, ANewFileInAReadOnlyFolderIsRefusedNamingIt) {
  const std::string store = (dir_ / "new.db").string();
  const Outcome o = inChild(store, [&] { readOnly(store, false); });
  EXPECT_NE(o.rows.find(store), std::string::npos) << o.rows;
  EXPECT_NE(o.rows.find("cannot be created"), std::string::npos) << o.rows;
  EXPECT_FALSE(fs::exists(store));
}

}  // namespace

}  // namespace vrdppo::embedded::testing
