// The cage classes on a real embedded store: a cage's life and a movement's life (every table's
// round trip is the one of all tables).
#include <gtest/gtest.h>

#include "endtoend/store_fixture.hpp"
#include "vrdppo/cages/cages.hpp"
#include "vrdppo/cages/movements.hpp"
#include "vrdppo/reference/grades.hpp"

using namespace vrdppo;
using namespace vrdppo::testing;

namespace {

using CagesStore = StoreTest;

Long greenGrade(const std::u16string& connect, std::u16string_view code) {
  cGreenGradePersist g;
  g.Commit(newState<cGreenGradePersist>([&](GreenGradeRecord& r) { put(r.GradeCode, code); }),
           connect);
  return g.record().GreenGradeId;
}

Long cageStatus(const std::u16string& connect, std::u16string_view code, Long sequence) {
  cCageStatusPersist s;
  s.Commit(newState<cCageStatusPersist>([&](CageStatusRecord& r) {
             put(r.CageStatus, code);
             r.Sequence = sequence;
           }),
           connect);
  return s.record().CageStatusId;
}

}  // namespace

TEST_F(CagesStore, ACagesLife) {
  const Long empty = cageStatus(connect, u"EMPTY", 1);
  const Long full = cageStatus(connect, u"FULL", 2);
  const Long green = greenGrade(connect, u"L1O");

  // Registered: code, tare, flag and a status; no load.
  cCagePersist cages;
  const auto registered = [&](Long key) {
    return newState<cCagePersist>([&](CageRecord& r) {
      r.CageId = key;
      put(r.CageCode, u"C-17");
      r.TareWeight = 85.5;
      put(r.DeletedFlag, u"N");
      r.StatusId = empty;
      r.StatusTS = makeDate(2019, 3, 7, 8, 0);
    });
  };
  ASSERT_TRUE(cages.Commit(registered(0), connect));
  const Long id = cages.record().CageId;
  EXPECT_EQ(scalar(u"SELECT COUNT(*) FROM CAGE WHERE OperatorId IS NULL AND GreenGradeId IS NULL "
                   u"AND GrossWeight IS NULL AND NetWeight IS NULL"),
            1);

  // Filled: the values that were current go to the Prev columns, written by the caller.
  const auto filled = newState<cCagePersist>([&](CageRecord& r) {
    r.CageId = id;
    put(r.CageCode, u"C-17");
    r.TareWeight = 85.5;
    put(r.DeletedFlag, u"N");
    r.OperatorId = 3;
    r.GreenGradeId = green;
    r.GrossWeight = 600;
    r.NetWeight = 514.5;
    r.StatusId = full;
    r.StatusTS = makeDate(2019, 3, 7, 9, 30);
    r.PrevStatusId = empty;
    r.PrevStatusTS = makeDate(2019, 3, 7, 8, 0);
  });
  ASSERT_TRUE(cages.Commit(filled, connect));
  cCageContentPersist contents;
  ASSERT_TRUE(contents.Commit(newState<cCageContentPersist>([&](CageContentRecord& r) {
                                r.CageId = id;
                                r.GreenGradeId = green;
                                r.NetWeight = 514.5;
                              }),
                              connect));
  const auto row = rowsOf<cCagePersist>(cages.Load(u"CageId = " + longText(id), connect)).at(0);
  EXPECT_EQ(row.StatusId, full);
  EXPECT_EQ(row.PrevStatusId, empty);
  EXPECT_EQ(double{row.PrevStatusTS.days}, makeDate(2019, 3, 7, 8, 0).days);

  cvCageContentPersist view;
  const auto held = rowsOf<cvCageContentPersist>(view.Load(u"CageId = " + longText(id), connect));
  ASSERT_EQ(held.size(), 1u);
  EXPECT_EQ(held[0].CageContentId, contents.record().CageContentId);
  EXPECT_EQ(text(held[0].CageCode), u"C-17");
  EXPECT_EQ(held[0].GreenGradeId, green);
  EXPECT_EQ(text(held[0].GradeCode), u"L1O");
  EXPECT_EQ(double{held[0].NetWeight}, 514.5);

  // An alert about it reaches the server; a bad connection string loses one in silence.
  cages.SendAlert(connect, 7, id);
  cages.SendAlert(u"Provider=vrdppo.Embedded;Data Source=/no/such/dir/x.db", 8, id);
  cages.SendAlert(u"", 9, id);
  EXPECT_EQ(
      scalar(u"SELECT COUNT(*) FROM CAGEALERT WHERE AlertId = 7 AND CageId = " + longText(id)), 1);
  EXPECT_EQ(scalar(u"SELECT COUNT(*) FROM CAGEALERT"), 1);

  // Retired: the flag is a column like any other; Load still finds the cage, Delete removes it.
  auto retired = filled;
  {
    cCagePersist c;
    c.SetState(filled);
    c.record().DeletedFlag.c[0] = u'Y';
    retired = c.GetState();
  }
  ASSERT_TRUE(cages.Commit(retired, connect));
  EXPECT_EQ(rowsOf<cCagePersist>(cages.Load(u"", connect)).size(), 1u);
  ASSERT_TRUE(cages.Delete(retired, connect));
  EXPECT_EQ(cages.Load(u"", connect).size(), 9u);
}

TEST_F(CagesStore, AMovementsLife) {
  const Long empty = cageStatus(connect, u"EMPTY", 1);
  const Long full = cageStatus(connect, u"FULL", 2);
  const Long a = greenGrade(connect, u"L1O");
  const Long b = greenGrade(connect, u"X2F");
  const Long op = insert(u"INSERT INTO OPERATOR (UserName) VALUES ('J. Banda')");
  const Long station =
      insert(u"INSERT INTO STATION (StationCode, Description) VALUES ('SCALE-2', 'Scale two')");
  cCagePersist cages;
  cages.Commit(newState<cCagePersist>([&](CageRecord& r) {
                 put(r.CageCode, u"C-17");
                 r.TareWeight = 85.5;
                 r.StatusId = empty;
                 r.GreenGradeId = a;
                 r.NetWeight = 10;
               }),
               connect);
  const Long cage = cages.record().CageId;

  // The movement first, then its log rows and comment with the key it was given.
  cCageMovementPersist movements;
  const auto movement = [&](Long key) {
    return newState<cCageMovementPersist>([&](CageMovementRecord& r) {
      r.CageMovementID = key;
      put(r.MovementType, u"FILL");
      r.MovementTs = makeDate(2019, 3, 7, 14, 5, 9);
      r.OperatorId = op;
      r.StationId = station;
      r.ShiftNumber = 2;
      put(r.Executed, u"N");
    });
  };
  ASSERT_TRUE(movements.Commit(movement(0), connect));
  const Long key = movements.record().CageMovementID;
  cCageLogPersist log;
  ASSERT_TRUE(log.Commit(newState<cCageLogPersist>([&](CageLogRecord& r) {
                           r.CageId = cage;
                           r.CageMovementID = key;
                           r.Sequence = 1;
                           r.InGreenGradeId = a;
                           r.InWeight = 10;
                           r.FromStatusId = empty;
                           r.OutGreenGradeId = b;
                           r.OutWeight = 514.5;
                           r.ToStatusId = full;
                           r.CageGross = 600;
                           r.CageTare = 85.5;
                           r.CageNet = 514.5;
                           put(r.CardPrinted, u"N");
                         }),
                         connect));
  cCageMoveCommentPersist comments;
  ASSERT_TRUE(comments.Commit(newState<cCageMoveCommentPersist>([&](CageMoveCommentRecord& r) {
                                r.CageMovementID = key;
                                put(r.Comment, u"Lot \"7\", O'Neil's");
                              }),
                              connect));

  cvCageLogPersist view;
  auto rows = rowsOf<cvCageLogPersist>(view.Load(u"CageMovementID = " + longText(key), connect));
  ASSERT_EQ(rows.size(), 1u);
  const auto& v = rows[0];
  EXPECT_EQ(v.CageMovementID, key);
  EXPECT_EQ(text(v.MovementType), u"FILL");
  EXPECT_EQ(double{v.MovementTs.days}, makeDate(2019, 3, 7, 14, 5, 9).days);
  EXPECT_EQ(v.OperatorId, op);
  EXPECT_EQ(v.StationId, station);
  EXPECT_EQ(v.ShiftNumber, 2);
  EXPECT_EQ(v.ProductionRunId, 0);
  EXPECT_EQ(text(v.Executed), u"N");
  EXPECT_EQ(text(v.UserName), u"J. Banda");
  EXPECT_EQ(text(v.StationCode), u"SCALE-2");
  EXPECT_EQ(v.CageLogId, log.record().CageLogId);
  EXPECT_EQ(v.CageId, cage);
  EXPECT_EQ(text(v.CageCode), u"C-17");
  EXPECT_EQ(v.Sequence, 1);
  EXPECT_EQ(v.InGreenGradeId, a);
  EXPECT_EQ(double{v.InWeight}, 10.0);
  EXPECT_EQ(text(v.InGradeCode), u"L1O");
  EXPECT_EQ(v.FromStatusId, empty);
  EXPECT_EQ(text(v.FromStatus), u"EMPTY");
  EXPECT_EQ(v.OutGreenGradeId, b);
  EXPECT_EQ(double{v.OutWeight}, 514.5);
  EXPECT_EQ(text(v.OutGradeCode), u"X2F");
  EXPECT_EQ(v.ToStatusId, full);
  EXPECT_EQ(text(v.ToStatus), u"FULL");
  EXPECT_EQ(double{v.CageGross}, 600.0);
  EXPECT_EQ(double{v.CageTare}, 85.5);
  EXPECT_EQ(double{v.CageNet}, 514.5);

  const auto comment = rowsOf<cCageMoveCommentPersist>(
      comments.Load(u"CageMovementID = " + longText(key), connect, 0));
  ASSERT_EQ(comment.size(), 1u);
  EXPECT_EQ(text(comment[0].Comment), u"Lot \"7\", O'Neil's");

  // Posted: the server moves the cage and its contents, and marks the movement executed.
  dbHelp::ConnectString.clear();
  EXPECT_TRUE(movements.Post(movement(key), connect));
  EXPECT_TRUE(dbHelp::ConnectString.empty());
  const auto moved = rowsOf<cCagePersist>(cages.Load(u"CageId = " + longText(cage), connect)).at(0);
  EXPECT_EQ(moved.StatusId, full);
  EXPECT_EQ(moved.PrevStatusId, empty);
  EXPECT_EQ(moved.GreenGradeId, b);
  EXPECT_EQ(moved.PrevGreenGradeId, a);
  EXPECT_EQ(double{moved.NetWeight}, 514.5);
  EXPECT_EQ(double{moved.PrevNetWeight}, 10.0);
  EXPECT_EQ(moved.OperatorId, op);
  EXPECT_EQ(double{moved.StatusTS.days}, makeDate(2019, 3, 7, 14, 5, 9).days);
  const auto held = rowsOf<cCageContentPersist>(
      cCageContentPersist().Load(u"CageId = " + longText(cage), connect));
  ASSERT_EQ(held.size(), 1u);
  EXPECT_EQ(held[0].GreenGradeId, b);
  rows = rowsOf<cvCageLogPersist>(view.Load(u"CageMovementID = " + longText(key), connect));
  EXPECT_EQ(text(rows.at(0).Executed), u"Y");

  // Posting it again is the server's concern: it is not executed twice, and Post says True.
  EXPECT_TRUE(movements.Post(movement(key), connect));
  EXPECT_EQ(
      rowsOf<cCagePersist>(cages.Load(u"CageId = " + longText(cage), connect)).at(0).PrevStatusId,
      empty);

  // Failures come back as False.
  EXPECT_FALSE(movements.Post(movement(key), u""));
  EXPECT_FALSE(
      movements.Post(movement(key), u"Provider=vrdppo.Embedded;Data Source=/no/such/dir/x.db"));

  // Deleting the movement leaves its log and comment; blank criteria empty the comments.
  ASSERT_TRUE(movements.Delete(movement(key), connect));
  EXPECT_EQ(scalar(u"SELECT COUNT(*) FROM CAGELOG"), 1);
  ASSERT_TRUE(comments.CriteriaDelete(u"", connect, u" "));
  EXPECT_EQ(scalar(u"SELECT COUNT(*) FROM CAGEMOVECOMMENT"), 0);
}
