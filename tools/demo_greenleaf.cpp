// The demo's green leaf and cage section: leaf received and posted into inventory, a cage filled
// by a movement that the server executes, and the cage log read back.
#include <fmt/format.h>

#include <ostream>

#include "demo.hpp"
#include "vrdppo/cages/cages.hpp"
#include "vrdppo/cages/movements.hpp"
#include "vrdppo/greenleaf/inventory.hpp"
#include "vrdppo/greenleaf/receipts.hpp"
#include "vrdppo/text.hpp"

namespace vrdppo::cli {

namespace {

Long cageStatus(DemoContext& d, std::u16string_view code, std::u16string_view text, Long seq) {
  cCageStatusPersist statuses;
  statuses.Commit(newState<cCageStatusPersist>([&](CageStatusRecord& r) {
                    put(r.CageStatus, code);
                    put(r.Description, text);
                    r.Sequence = seq;
                  }),
                  d.connect);
  return statuses.record().CageStatusId;
}

}  // namespace

void demoGreenLeaf(DemoContext& d) {
  d.heading(
      "Green leaf received through cGreenReceiptPersist.Commit (lower-case reads, "
      "mixed-case writes)");
  cGreenReceiptPersist receipts;
  for (const double weight : {1250.5, 980.0}) {
    receipts.Commit(newState<cGreenReceiptPersist>([&](GreenReceiptRecord& r) {
                      r.GreenGradeId = d.greenGrade;
                      r.receiptdate = makeDate(2019, 3, 7);
                      r.GrossWeight = weight;
                      r.TareValue = 2.25;
                      r.TareUnitCount = 4;
                      put(r.posted, u"N");
                      put(r.Status, u"OP");
                      put(r.receipttype, u"RCV");
                      r.WeightUomId = 1;
                      r.ProductionRunId = d.run;
                    }),
                    d.connect);
    d.out << fmt::format("    GreenReceiptId {}\n", receipts.record().greenreceiptid);
  }
  d.statements();

  d.heading(
      "The receipts posted into inventory (PostReceipts: a connection of its own, False on "
      "failure)");
  d.out << fmt::format("    PostReceipts: {}\n", receipts.PostReceipts(d.connect, 1));
  d.statements();
  cvGreenReceiptListPersist receiptList;
  d.table(receiptList.layout(),
          receiptList.Load(u"GreenGradeId = " + longText(d.greenGrade), d.connect));
  cGreenInventoryPersist inventory;
  d.table(inventory.layout(),
          inventory.Load(u"GreenGradeId = " + longText(d.greenGrade), d.connect));
  d.statements();

  d.heading("Cage statuses and a cage (StatusId 0 would go out as 0, PrevStatusId 0 as Null)");
  const Long empty = cageStatus(d, u"EMPTY", u"Empty, at the receiving line", 1);
  const Long full = cageStatus(d, u"FULL", u"", 2);
  cCagePersist cages;
  cages.Commit(newState<cCagePersist>([&](CageRecord& r) {
                 put(r.CageCode, u"C-17");
                 r.TareWeight = 85.5;
                 put(r.DeletedFlag, u"N");
                 r.StatusId = empty;
                 r.StatusTS = makeDate(2019, 3, 7, 8, 0);
               }),
               d.connect);
  const Long cage = cages.record().CageId;
  d.statements();

  d.heading("A movement fills the cage: header, log row and comment, then Post");
  const Long operatorId = d.insert(u"INSERT INTO OPERATOR (UserName) VALUES ('J. Banda')");
  const Long station = d.insert(
      u"INSERT INTO STATION (StationCode, Description, DeletedFlag) VALUES ('SCALE-2', 'Receiving "
      u"scale', 'N')");
  cCageMovementPersist movements;
  movements.Commit(newState<cCageMovementPersist>([&](CageMovementRecord& r) {
                     put(r.MovementType, u"FILL");
                     r.MovementTs = makeDate(2019, 3, 7, 9, 30, 15);
                     r.OperatorId = operatorId;
                     r.StationId = station;
                     r.ShiftNumber = 1;
                     r.ProductionRunId = d.run;
                     put(r.Executed, u"N");
                   }),
                   d.connect);
  const Long movement = movements.record().CageMovementID;
  cCageLogPersist log;
  log.Commit(newState<cCageLogPersist>([&](CageLogRecord& r) {
               r.CageId = cage;
               r.CageMovementID = movement;
               r.Sequence = 1;
               r.FromStatusId = empty;
               r.OutGreenGradeId = d.greenGrade;
               r.OutWeight = 514.5;
               r.ToStatusId = full;
               r.CageGross = 600;
               r.CageTare = 85.5;
               r.CageNet = 514.5;
               put(r.CardPrinted, u"N");
             }),
             d.connect);
  cCageMoveCommentPersist comments;
  comments.Commit(newState<cCageMoveCommentPersist>([&](CageMoveCommentRecord& r) {
                    r.CageMovementID = movement;
                    put(r.Comment, u"Filled from lot \"7\", O'Neil's farm");
                  }),
                  d.connect);
  d.statements();
  d.out << fmt::format("    Post: {}\n", movements.Post(movements.GetState(), d.connect));
  d.statements();
  cages.SendAlert(d.connect, 7, cage);
  d.out << "    SendAlert: no result, nothing raised\n";
  d.statements();

  d.heading("The cage as the server left it, its contents, and the cage log (cvCageLogPersist)");
  d.table(cages.layout(), cages.Load(u"CageId = " + longText(cage), d.connect));
  cvCageContentPersist contents;
  d.table(contents.layout(), contents.Load(u"CageId = " + longText(cage), d.connect));
  cvCageLogPersist cageLog;
  d.table(cageLog.layout(), cageLog.Load(u"CageId = " + longText(cage), d.connect));
  d.statements();
}

}  // namespace vrdppo::cli
