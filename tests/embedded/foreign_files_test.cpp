// What a store file may be: nothing yet, a store of this build or an older one. Another
// program's file is refused by every call and by the check, and left exactly as it was; the
// check only reads, so an older store is reported rather than brought up to date.
#include <sqlite3.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>

#include "store_fixture.hpp"
#include "vrdppo/production/stems.hpp"
#include "vrdppo/schema_check.hpp"
#include "vrdppo/text.hpp"

namespace vrdppo::embedded::testing {

namespace {

namespace fs = std::filesystem;

// The file's size and a hash of its bytes: short enough to read in a failure.
std::string bytesOf(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  const std::string bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
  return std::to_string(bytes.size()) + " bytes, hash " +
         std::to_string(std::hash<std::string>{}(bytes));
}

bool besideIt(const std::string& path) {
  return fs::exists(path + "-wal") || fs::exists(path + "-shm") || fs::exists(path + "-journal");
}

void sqliteRun(const std::string& path, const char* sql) {
  sqlite3* db = nullptr;
  ASSERT_EQ(sqlite3_open(path.c_str(), &db), SQLITE_OK);
  char* message = nullptr;
  EXPECT_EQ(sqlite3_exec(db, sql, nullptr, nullptr, &message), SQLITE_OK)
      << (message ? message : "");
  sqlite3_free(message);
  sqlite3_close(db);
}

TEST(ForeignFiles, AreRefusedByEveryCallAndTheCheckAndLeftAsTheyWere) {
  struct Shape {
    const char* name;
    const char* sqlite;  // the file made by SQLite; or
    const char* text;    // a file of plain text
    const char* message;
  };
  const Shape shapes[] = {
      {"another program's notes",
       "CREATE TABLE notes (id INTEGER PRIMARY KEY, body TEXT); "
       "INSERT INTO notes (body) VALUES ('keep me'); PRAGMA user_version = 7",
       nullptr, "The file is not a store"},
      {"a STEMS table of its own",
       "CREATE TABLE STEMS (Name TEXT, Weight REAL); INSERT INTO STEMS VALUES ('a', 1.5)", nullptr,
       "The file is not a store"},
      {"a store's stamp lookalike without its tables",
       "CREATE TABLE PLANTNOTES (x); PRAGMA user_version = 12345", nullptr,
       "The file is not a store"},
      {"plain text", nullptr, "name,weight\nstems,1.5\nthis is no database at all\n",
       "file is not a database"},
  };
  for (const auto& shape : shapes) {
    SCOPED_TRACE(shape.name);
    const std::string path = freshStorePath("foreign");
    if (shape.sqlite) {
      sqliteRun(path, shape.sqlite);
    } else {
      std::ofstream(path, std::ios::binary) << shape.text;
    }
    const std::string before = bytesOf(path);
    const std::u16string connect = connectString(path);
    cStemsPersist stems;
    const std::function<void()> calls[] = {
        [&] { stems.Load(u"", connect); },
        [&] { stems.Commit(stems.GetState(), connect); },
        [&] { openStore(path); },
        [&] { checkSchema(connect); },
    };
    for (const auto& call : calls) {
      const Error e = errorOf(call);
      EXPECT_EQ(e.sqlState(), "08001") << e.description();
      EXPECT_NE(e.description().find(shape.message), std::string::npos) << e.description();
      EXPECT_NE(e.description().find(path), std::string::npos) << e.description();
      EXPECT_EQ(bytesOf(path), before);
      EXPECT_FALSE(besideIt(path));
    }
    removeStore(path);
  }
}

TEST(ForeignFiles, AnEmptyFileBecomesAStoreButIsNotCheckedAsOne) {
  const std::string path = freshStorePath("empty");
  std::ofstream(path, std::ios::binary).flush();
  const Error e = errorOf([&] { checkSchema(connectString(path)); });
  EXPECT_NE(e.description().find("holds no store yet"), std::string::npos) << e.description();
  EXPECT_EQ(fs::file_size(path), 0u);
  EXPECT_FALSE(besideIt(path));

  EXPECT_EQ(Client(path).scalar(u"SELECT COUNT(*) FROM STEMS"), Variant(std::int32_t{0}));
  releaseStore(path);
  EXPECT_TRUE(checkSchema(connectString(path)).fits());
  removeStore(path);
}

TEST(ForeignFiles, AnOlderStoreIsReportedByTheCheckAndBroughtUpToDateByACall) {
  const std::string path = freshStorePath("older");
  Client(path).run(u"INSERT INTO STEMS (TotalNetWeight) VALUES (4.5)");
  releaseStore(path);
  // What an older build left: a column fewer and its own stamp, the log checkpointed away.
  sqliteRun(path, "ALTER TABLE STEMS DROP COLUMN ContainerEnd; PRAGMA user_version = 1");
  ASSERT_FALSE(besideIt(path));
  const std::string before = bytesOf(path);

  const SchemaReport report = checkSchema(connectString(path));
  ASSERT_FALSE(report.findings.empty());
  const SchemaFinding& first = report.findings.front();
  EXPECT_EQ(first.severity, SchemaFinding::Severity::Warning);
  EXPECT_EQ(first.object, "the store's schema");
  EXPECT_NE(first.has.find("stamp 1)"), std::string::npos) << first.has;
  EXPECT_NE(report.text().find("STEMS.ContainerEnd"), std::string::npos) << report.text();
  EXPECT_EQ(bytesOf(path), before);
  EXPECT_FALSE(besideIt(path));
  // Nor does a check leave the process thinking the file prepared as it stands.
  EXPECT_TRUE(Client(path).scalar(u"SELECT ContainerEnd FROM STEMS").isNull());
  EXPECT_NE(Client(path).scalar(u"PRAGMA user_version"), Variant(std::int32_t{1}));
  EXPECT_EQ(Client(path).scalar(u"SELECT TotalNetWeight FROM STEMS"), Variant(4.5));
  releaseStore(path);
  const SchemaReport after = checkSchema(connectString(path));
  EXPECT_TRUE(after.fits()) << after.text();
  EXPECT_NE(after.findings.empty() ? "" : after.findings.front().object, "the store's schema");
  removeStore(path);
}

TEST(ForeignFiles, ModeReadOnlyReads) {
  const std::string path = freshStorePath("mode_read");
  Client(path).run(u"INSERT INTO STEMS (TotalNetWeight) VALUES (4.5)");
  releaseStore(path);
  const std::string before = bytesOf(path);
  Connection c;
  c.Open(connectString(path) + u";Mode=Read");
  EXPECT_EQ(c.Execute(u"SELECT TotalNetWeight FROM STEMS")->Fields(std::size_t{0}), Variant(4.5));
  const Error e = errorOf([&] { c.Execute(u"INSERT INTO STEMS (TotalNetWeight) VALUES (1)"); });
  EXPECT_EQ(e.nativeError(), 3906) << e.description();
  c.Close();
  EXPECT_EQ(bytesOf(path), before);
  EXPECT_FALSE(besideIt(path));
  removeStore(path);
}

// A file read as immutable (no log beside it) is trusted not to change, but another process may
// come and write it: its log copied back when it ends, the file changes under the reader. The
// next statement reads the file afresh; one during which it changed raises rather than answer
// what may be torn rows.
TEST(ForeignFiles, AReaderOfAFileNoOneWroteSeesAWriterThatCameSince) {
  const std::string path = freshStorePath("mode_read_writer");
  Client(path).run(u"INSERT INTO STEMS (TotalNetWeight) VALUES (4.5)");
  releaseStore(path);
  Connection c;
  c.Open(connectString(path) + u";Mode=Read");
  const auto count = [&] {
    return c.Execute(u"SELECT COUNT(*) FROM STEMS")->Fields(std::size_t{0}).lng();
  };
  EXPECT_EQ(count(), 1);
  sqliteRun(path, "INSERT INTO STEMS (TotalNetWeight) VALUES (5.5)");  // and its log copied back
  EXPECT_EQ(count(), 2);

  struct WriterOnTheFirstRow : RecordSink {
    std::string path;
    WriterOnTheFirstRow(std::string p, StemsRecord& record)
        : RecordSink(*cStemsPersist::info().layout, reinterpret_cast<std::byte*>(&record)),
          path(std::move(p)) {}
    void take(const std::byte*) override {
      if (rows() == 1) sqliteRun(path, "INSERT INTO STEMS (TotalNetWeight) VALUES (6.5)");
    }
  };
  StemsRecord record{};
  WriterOnTheFirstRow sink(path, record);
  const Error e = errorOf([&] { c.ExecuteInto(u"SELECT * FROM STEMS", sink); });
  EXPECT_EQ(e.sqlState(), "40001") << e.description();
  EXPECT_NE(e.description().find("changed while it was read"), std::string::npos);
  EXPECT_EQ(count(), 3);
  // A file gone since fails each statement, and the connection stays one to close.
  fs::remove(path);
  for (int twice = 0; twice < 2; ++twice) {
    EXPECT_NE(errorOf([&] { count(); }).description().find("No store file to read"),
              std::string::npos);
  }
  c.Close();
  removeStore(path);
}

}  // namespace

}  // namespace vrdppo::embedded::testing
