// What an observer hears of the statements the library sends, and that it changes nothing of a
// call when it fails, calls the library itself, or is not there at all.
#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "endtoend/store_fixture.hpp"
#include "support/scripted_provider.hpp"
#include "vrdppo/cages/cages.hpp"
#include "vrdppo/observer.hpp"
#include "vrdppo/production/stems.hpp"
#include "vrdppo/provider.hpp"

namespace vrdppo::testing {

namespace {

struct Heard {
  std::u16string query;
  std::u16string operation;
  std::string system;
  std::u16string server;
  std::int32_t port = 0;
  std::u16string database;
  std::u16string connection;
  std::int64_t returned = -1;
  std::int64_t affected = -1;
  SessionOrigin session = SessionOrigin::None;
  std::string errorState;  // empty on success
};

class Recorder : public Observer {
 public:
  void onStatement(const StatementEvent& e) override {
    heard.push_back({std::u16string(e.queryText), std::u16string(e.operationName),
                     std::string(e.target.system), std::u16string(e.target.serverAddress),
                     e.target.serverPort, std::u16string(e.target.databaseName),
                     std::u16string(e.target.connection), e.returnedRows, e.affectedRows, e.session,
                     e.error != nullptr ? e.error->sqlState() : std::string()});
  }
  std::vector<std::u16string> queries() const {
    std::vector<std::u16string> out;
    for (const auto& h : heard) out.push_back(h.query);
    return out;
  }
  std::vector<Heard> heard;
};

// Installs an observer for this thread while it lives.
class ThreadObserver {
 public:
  explicit ThreadObserver(std::shared_ptr<Observer> o) { observe::setThreadObserver(std::move(o)); }
  ~ThreadObserver() { observe::setThreadObserver(nullptr); }
  ThreadObserver(const ThreadObserver&) = delete;
  ThreadObserver& operator=(const ThreadObserver&) = delete;
};

std::u16string stem(Long key, double weight) {
  return newState<cStemsPersist>([&](StemsRecord& r) {
    r.StemsId = key;
    r.TotalNetWeight = weight;
    r.ContainerEnd = 12;
    r.StemTypeID = 3;
    r.ProductionRunId = 5;
  });
}

using ObserverOnTheStore = StoreTest;

}  // namespace

// The gateway's statements and an operation's own connection's, each as the provider received it,
// in order, with the server and database of the string and its password masked.
TEST(Observer, HearsEveryStatementAsTheProviderReceivedIt) {
  ScriptedProvider db;
  db.answerRows(u"sp_InsertStatement", {u"Identity"}, {{Long{41}}});
  db.answerRows(u"SELECT", {u"StemsId"}, {});
  db.failExecute(u"DELETE", providerError());
  const std::u16string connect =
      u"DRIVER={x};SERVER=tcp:plant,1444;DATABASE=prod;UID=u;PWD={se;cr}}et};APP=z";
  auto recorder = std::make_shared<Recorder>();
  const ThreadObserver installed(recorder);
  cStemsPersist stems;
  ASSERT_TRUE(stems.Commit(stem(0, 12.5), connect));   // an insert
  ASSERT_TRUE(stems.Commit(stem(41, 13.5), connect));  // an update
  (void)stems.Load(u"StemsId = 41", connect);
  EXPECT_THROW(stems.Delete(stem(41, 0), connect), Error);
  cCagePersist cages;
  cages.SendAlert(connect, 7, 8);  // a post on a connection of its own

  ASSERT_EQ(recorder->queries(), db.statements());
  ASSERT_GE(recorder->heard.size(), 9u);
  for (const Heard& h : recorder->heard) {
    SCOPED_TRACE(toUtf8(h.query));
    EXPECT_EQ(h.server, u"plant");
    EXPECT_EQ(h.port, 1444);
    EXPECT_EQ(h.database, u"prod");
    EXPECT_EQ(h.connection.find(u"se;cr"), std::u16string::npos);
    EXPECT_NE(h.connection.find(u"PWD=***"), std::u16string::npos);
    EXPECT_EQ(h.errorState.empty(), h.operation != u"DELETE");
  }
  EXPECT_EQ(recorder->heard.front().operation, u"SET");
  EXPECT_EQ(recorder->heard.back().query, u"EXEC qsp_SendAlert 7,8");
  EXPECT_EQ(recorder->heard.back().operation, u"EXEC");
}

// On the store: its kind and file, the rows a Load returned and a Commit wrote; and a call gives
// the same answer whether no observer is installed, one that throws, or one that makes calls of
// its own on another store, which it does not hear of.
TEST_F(ObserverOnTheStore, ChangesNothingOfTheCall) {
  cStemsPersist stems;
  ASSERT_TRUE(stems.Commit(stem(0, 1), connect));
  const Long key = stems.record().StemsId;
  const std::u16string criteria = u"StemsId = " + longText(key);
  const std::u16string before = stems.Load(criteria, connect);
  dbHelp::AuditTrailId = 0;

  struct Throwing : Observer {
    void onStatement(const StatementEvent&) override { throw std::runtime_error("observer"); }
  };
  struct Meddling : Observer {
    explicit Meddling(std::u16string other) : other_(std::move(other)) {}
    void onStatement(const StatementEvent&) override {
      cStemsPersist mine;
      (void)mine.Load(u"", other_);  // sets the thread's connection string and figures
      dbHelp::AuditTrailId = 99;
      throw 7;
    }
    std::u16string other_;
  };
  const std::string otherPath = path + "-other";
  removeStore(otherPath);
  auto recorder = std::make_shared<Recorder>();
  const struct {
    const char* name;
    std::shared_ptr<Observer> observer;
  } cases[] = {{"none", nullptr},
               {"throwing", std::make_shared<Throwing>()},
               {"meddling", std::make_shared<Meddling>(embedded::connectString(otherPath))},
               {"recording", recorder}};
  for (const auto& [name, o] : cases) {
    SCOPED_TRACE(name);
    observe::setProcessObserver(o);
    const ThreadObserver mine(o);
    EXPECT_EQ(stems.Load(criteria, connect), before);
    EXPECT_TRUE(stems.Commit(stem(key, 1), connect));
    EXPECT_EQ(lastRecordsAffected(), 1);
    EXPECT_EQ(dbHelp::ConnectString, connect);
    EXPECT_EQ(dbHelp::AuditTrailId, 0);
    EXPECT_THROW((void)stems.Load(u"NoSuchColumn = 1", connect), Error);
    observe::setProcessObserver(nullptr);
  }
  removeStore(otherPath);

  // Installed for the thread and the process, the recorder heard each statement twice in a row,
  // and nothing of the other observers' own calls.
  ASSERT_FALSE(recorder->heard.empty());
  ASSERT_EQ(recorder->heard.size() % 2, 0u);
  for (std::size_t i = 0; i < recorder->heard.size(); i += 2) {
    EXPECT_EQ(recorder->heard[i].query, recorder->heard[i + 1].query);
  }
  const Heard& load = recorder->heard[2];  // after the gateway's SET
  EXPECT_EQ(load.operation, u"SELECT");
  EXPECT_EQ(load.system, "sqlite");
  EXPECT_EQ(load.database, fromUtf8(path));
  EXPECT_EQ(load.returned, 1);
  EXPECT_EQ(load.session, SessionOrigin::None);
  bool wrote = false;
  for (const Heard& h : recorder->heard) wrote |= h.operation == u"UPDATE" && h.affected == 1;
  EXPECT_TRUE(wrote);
  EXPECT_FALSE(recorder->heard.back().errorState.empty());
}

TEST(Observer, PasswordsAreMaskedAndTargetsRead) {
  const struct {
    std::u16string connect;
    std::u16string masked;
    std::u16string server;
    std::int32_t port;
    std::u16string database;
  } cases[] = {
      {u"DRIVER={FreeTDS};SERVER=10.0.0.5;PORT=1433;DATABASE=plant;UID=a;PWD=b",
       u"DRIVER={FreeTDS};SERVER=10.0.0.5;PORT=1433;DATABASE=plant;UID=a;PWD=***", u"10.0.0.5",
       1433, u"plant"},
      {u"Driver=x; password = {a;b}}c} ;Server=tcp:db,99;Initial Catalog=c",
       u"Driver=x; password =***;Server=tcp:db,99;Initial Catalog=c", u"db", 99, u"c"},
      {u"DSN=plant;Pwd=", u"DSN=plant;Pwd=***", u"", 0, u""},
      {u"Provider=vrdppo.Store;Data Source=/tmp/a;b.db",
       u"Provider=vrdppo.Store;Data Source=/tmp/a;b.db", u"", 0, u"/tmp/a"},
      {u"SERVER=h;PORT=99999", u"SERVER=h;PORT=99999", u"h", 0, u""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(toUtf8(c.connect));
    const auto t = observe::parseTarget(c.connect);
    EXPECT_EQ(t.masked, c.masked);
    EXPECT_EQ(t.serverAddress, c.server);
    EXPECT_EQ(t.serverPort, c.port);
    EXPECT_EQ(t.databaseName, c.database);
  }
}

}  // namespace vrdppo::testing
