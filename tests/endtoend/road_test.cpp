// The road of one request and its neighbours, on a real embedded store (a table's own round
// trip, quotes included, is the one of all tables).
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <set>
#include <thread>

#include "endtoend/store_fixture.hpp"
#include "support/error_number.hpp"
#include "vrdppo/buffer.hpp"
#include "vrdppo/error.hpp"
#include "vrdppo/production/stems.hpp"
#include "vrdppo/reference/grades.hpp"

using namespace vrdppo;
using namespace vrdppo::testing;

namespace {

std::u16string stem(Long key, double weight, Long run, Long start = 0) {
  return newState<cStemsPersist>([&](StemsRecord& r) {
    r.StemsId = key;
    r.TotalNetWeight = weight;
    r.ContainerStart = start;
    r.ContainerEnd = 12;
    r.StemTypeID = 3;
    r.ProductionRunId = run;
  });
}

using Road = StoreTest;

}  // namespace

TEST_F(Road, SoftDeleteKeepsTheProductionGrade) {
  cProductionGradePersist grades;
  const auto make = [](Long key, std::u16string_view code) {
    return newState<cProductionGradePersist>([&](ProductionGradeRecord& r) {
      r.ProductionGradeId = key;
      put(r.ProductionGradeCode, code);
      put(r.Active, u"Y");
    });
  };
  grades.Commit(make(0, u"A"), connect);
  const Long a = grades.record().ProductionGradeId;
  grades.Commit(make(0, u"B"), connect);
  ASSERT_TRUE(grades.Delete(make(a, u"A"), connect));
  auto rows = rowsOf<cProductionGradePersist>(
      grades.Load(u"ProductionGradeId = " + longText(a), connect, 0));
  ASSERT_EQ(rows.size(), 1u);  // the row stays, flagged
  EXPECT_EQ(text(rows[0].DeletedFlag), u"Y");
  // CriteriaDelete with bHardDelete False and no criteria flags every row.
  ASSERT_TRUE(grades.CriteriaDelete(make(a, u"A"), connect, u"", false));
  EXPECT_EQ(scalar(u"SELECT COUNT(*) FROM PRODUCTIONGRADE WHERE DELETEDFLAG = 'y'"), 2);
  ASSERT_TRUE(grades.CriteriaDelete(make(a, u"A"), connect, u"ProductionGradeCode = 'a'", true));
  EXPECT_EQ(scalar(u"SELECT COUNT(*) FROM PRODUCTIONGRADE"), 1);
}

TEST_F(Road, TopInBothGenerations) {
  cGreenGradePersist green;
  cProductionGradePersist production;
  for (int i = 0; i < 7; ++i) {
    green.Commit(newState<cGreenGradePersist>([&](GreenGradeRecord& r) {
                   put(r.GradeCode, u"G" + longText(i));
                   r.CompanyId = 3;
                 }),
                 connect);
    production.Commit(newState<cProductionGradePersist>(
                          [&](ProductionGradeRecord& r) { put(r.ProductionGradeCode, u"P"); }),
                      connect);
  }
  const auto g = green.Load(u"CompanyId = 3 ORDER BY GreenGradeId DESC", connect, 5);
  const auto gRows = rowsOf<cGreenGradePersist>(g);
  ASSERT_EQ(gRows.size(), 5u);
  EXPECT_EQ(text(gRows[0].GradeCode), u"G6");
  EXPECT_EQ(readBufferHeader(g).estimate, 10);
  const auto p = production.Load(u"", connect, 3);
  EXPECT_EQ(rowsOf<cProductionGradePersist>(p).size(), 3u);
  EXPECT_EQ(readBufferHeader(p).capacity, 3);
  EXPECT_EQ(rowsOf<cProductionGradePersist>(production.Load(u"", connect, 0)).size(), 7u);
}

TEST_F(Road, ViewsReadWhatTheTablesWrote) {
  const Long company = insert(
      u"INSERT INTO COMPANY (CompanyCode, CompanyName, DeletedFlag) VALUES ('TT', 'Traders', 'N')");
  const Long grade = insert(u"INSERT INTO GRADE (GradeCode, CompanyId) VALUES ('FLUE', " +
                            longText(company) + u")");
  cGreenGradePersist green;
  green.Commit(newState<cGreenGradePersist>([&](GreenGradeRecord& r) {
                 put(r.GradeCode, u"L1O");
                 r.CompanyId = company;
                 put(r.ScrapGrade, u"N");
               }),
               connect);
  cvGreenGradeListPersist list;
  auto rows = rowsOf<cvGreenGradeListPersist>(list.Load(u"companydeleted = 'N'", connect));
  ASSERT_EQ(rows.size(), 1u);
  EXPECT_EQ(rows[0].GreenGradeId, green.record().GreenGradeId);
  EXPECT_EQ(text(rows[0].CompanyName), u"Traders");
  EXPECT_EQ(text(rows[0].ScrapGrade), u"N");

  cProductionGradePersist production;
  production.Commit(newState<cProductionGradePersist>([&](ProductionGradeRecord& r) {
                      put(r.ProductionGradeCode, u"STRIP");
                      r.GradeId = grade;
                      r.ReportingCompanyId = company;
                    }),
                    connect);
  cvProductionGradeListPersist productionList;
  auto pRows = rowsOf<cvProductionGradeListPersist>(productionList.Load(u"", connect));
  ASSERT_EQ(pRows.size(), 1u);
  EXPECT_EQ(text(pRows[0].GradeCode), u"FLUE");
  EXPECT_EQ(text(pRows[0].ProductionGradeCode), u"STRIP");
  EXPECT_EQ(pRows[0].ReportingCompanyId, company);

  const Long run = insert(u"INSERT INTO PRODUCTIONRUN (ProductionDate) VALUES ('2019/03/07')");
  insert(u"INSERT INTO PICKINGS (ProductionRunId, Weight, PickingTypeId) VALUES (" + longText(run) +
         u", 5, 4)");
  insert(u"INSERT INTO PICKINGS (ProductionRunId, Weight, PickingTypeId) VALUES (" + longText(run) +
         u", 6, 4)");
  cvRunPickingTypesPersist picking;
  auto pick = rowsOf<cvRunPickingTypesPersist>(
      picking.Load(u"ProductionRunId = " + longText(run), connect));
  ASSERT_EQ(pick.size(), 1u);
  EXPECT_EQ(pick[0].PickingTypeId, 4);
  EXPECT_EQ(double{pick[0].ProductionDate.days}, makeDate(2019, 3, 7).days);
}

TEST_F(Road, TwoThreadsWithTheirOwnConnectionStrings) {
  const std::string other = scratchPath("Road-other");
  removeStore(other);
  const std::u16string otherConnect = embedded::connectString(other);
  const auto work = [](std::u16string connect, Long run, int count) {
    cStemsPersist stems;
    for (int i = 0; i < count; ++i) {
      dbHelp::ConnectString = connect;  // each operation sets it; the thread keeps its own
      stems.Commit(stem(0, i, run), connect);
    }
    return stems.Load(u"", connect);
  };
  std::u16string a;
  std::u16string b;
  std::thread ta([&] { a = work(connect, 1, 40); });
  std::thread tb([&] { b = work(otherConnect, 2, 25); });
  ta.join();
  tb.join();
  EXPECT_EQ(readBufferHeader(a).count, 40);
  EXPECT_EQ(readBufferHeader(b).count, 25);
  for (const auto& r : rowsOf<cStemsPersist>(b)) EXPECT_EQ(r.ProductionRunId, 2);
  EXPECT_EQ(dbHelp::ConnectString, u"");  // this thread's own stayed empty
  removeStore(other);
}

TEST_F(Road, AKilledProcessLosesNoCommittedRow) {
  int pipeFds[2];
  ASSERT_EQ(pipe(pipeFds), 0);
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    close(pipeFds[0]);
    cStemsPersist stems;
    for (int i = 0; i < 100000; ++i) {  // bounded; the parent kills it long before
      if (!stems.Commit(stem(0, i, 5), connect)) _exit(3);
      const Long key = stems.record().StemsId;
      if (write(pipeFds[1], &key, sizeof key) != sizeof key) _exit(4);
    }
    _exit(0);
  }
  close(pipeFds[1]);
  std::set<Long> reported;
  Long key = 0;
  while (reported.size() < 150 && read(pipeFds[0], &key, sizeof key) == sizeof key) {
    reported.insert(key);
  }
  kill(child, SIGKILL);
  while (read(pipeFds[0], &key, sizeof key) == sizeof key) reported.insert(key);
  close(pipeFds[0]);
  int status = 0;
  waitpid(child, &status, 0);
  ASSERT_GE(reported.size(), 150u);

  cStemsPersist stems;
  std::set<Long> stored;
  for (const auto& r : rowsOf<cStemsPersist>(stems.Load(u"", connect))) stored.insert(r.StemsId);
  for (const Long k : reported) EXPECT_TRUE(stored.count(k)) << "lost key " << k;
}

TEST_F(Road, ErrorsOfTheStoreReachTheCaller) {
  dbHelp::ConnectString = connect;
  EXPECT_EQ(numberOf([] { dbHelp::OpenRecordset(u"  "); }), err::kNoCommandText);
  cStemsPersist stems;
  try {
    stems.Load(u"NoSuchColumn = 1", connect);
    ADD_FAILURE();
  } catch (const Error& e) {
    EXPECT_EQ(e.number(), err::kCommandError);
  }
  try {
    dbHelp::ConnectString = connect;
    dbHelp::OpenRecordset(u"SELECT * FROM NOSUCHTABLE");
    ADD_FAILURE();
  } catch (const Error& e) {
    EXPECT_EQ(e.number(), err::kMissingTable);
    EXPECT_EQ(e.sqlState(), "42S02");
  }
}

// A cell that will not go into its field keeps the error's number and text, and the error says
// where it stopped: the statement, the field's column and the row.
TEST_F(Road, ACellThatWillNotGoInNamesItsStatementColumnAndRow) {
  struct Case {
    const char* cell;  // SQL for the bad value
    std::u16string column;
    std::int64_t row;
    std::int32_t number;
    std::string description;
  } cases[] = {
      {"'eight'", u"ContainerStart", 3, err::kTypeMismatch, "Type mismatch"},
      {"3000000000", u"StemTypeID", 4, err::kOverflow, "Overflow"},
      {"'heavy'", u"TotalNetWeight", 1, err::kTypeMismatch, "Type mismatch"},
  };
  cStemsPersist stems;
  std::vector<Long> keys;
  for (int i = 0; i < 5; ++i) {
    ASSERT_TRUE(stems.Commit(stem(0, 1.5, 77), connect));
    keys.push_back(stems.record().StemsId);
  }
  for (const auto& c : cases) {
    SCOPED_TRACE(c.cell);
    const Long key = keys[static_cast<std::size_t>(c.row - 1)];
    scalar(u"UPDATE STEMS SET " + c.column + u" = " + fromUtf8(c.cell) + u" WHERE StemsId = " +
           longText(key));
    try {
      stems.Load(u"ProductionRunId = 77 ORDER BY StemsId", connect);
      ADD_FAILURE() << "no error raised";
    } catch (const Error& e) {
      EXPECT_EQ(e.number(), c.number);
      EXPECT_EQ(e.description(), c.description);
      EXPECT_EQ(e.statement(), u"SELECT * FROM STEMS WHERE ProductionRunId = 77 ORDER BY StemsId");
      EXPECT_EQ(e.column(), c.column);
      EXPECT_EQ(e.row(), c.row);
    }
    scalar(u"UPDATE STEMS SET " + c.column + u" = 1 WHERE StemsId = " + longText(key));
  }
}
