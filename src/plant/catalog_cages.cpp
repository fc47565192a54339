// Cage tracking: cages, their status and contents, movements, the cage log.
#include "plant/catalog.hpp"
#include "providers/embedded/session.hpp"

namespace vrdppo::embedded {

namespace {

// Keeps the alert in CAGEALERT, where whoever is to be told finds it.
std::shared_ptr<Recordset> sendAlert(Session& session, const ProcArgs& args) {
  session.run(
      "INSERT INTO CAGEALERT (AlertId, CageId, AlertTS) "
      "VALUES (?1, ?2, strftime('%Y/%m/%d %H:%M:%S', 'now', 'localtime'))",
      {args.get(0, u"p_AlertId"), args.get(1, u"p_CageId")});
  return nullptr;
}

// Executes a movement once: each cage of its log, in sequence, takes the grade, weights and
// status the log row gives it, the values it had moving to the Prev columns, and its contents
// become the grade and weight that went out. Then the movement is marked executed. A movement
// already executed, or one that does not exist, is left alone.
std::shared_ptr<Recordset> postCageMovement(Session& session, const ProcArgs& args) {
  const Variant& key = args.get(0, u"p_CageMovementId");
  session.transaction([&] {
    const auto movement = session.run(
        "SELECT COALESCE(Executed, ''), OperatorId, MovementTS FROM CAGEMOVEMENT "
        "WHERE CAGEMOVEMENTID = ?1",
        {key});
    if (movement->State() != adStateOpen || movement->EOF_()) return;
    if (toString(movement->Fields(std::size_t{0})) == u"Y") return;
    const Variant op = movement->Fields(std::size_t{1});
    const Variant when = movement->Fields(std::size_t{2});
    const auto log = session.run(
        "SELECT CageId, OutGreenGradeId, COALESCE(CageNet, OutWeight), CageGross, ToStatusId "
        "FROM CAGELOG WHERE CageMovementId = ?1 ORDER BY Sequence, CAGELOGID",
        {key});
    while (log->State() == adStateOpen && !log->EOF_()) {
      const Variant& cage = log->Fields(std::size_t{0});
      const Variant& grade = log->Fields(std::size_t{1});
      const Variant& net = log->Fields(std::size_t{2});
      session.run(
          "UPDATE CAGE SET PrevOperatorId = OperatorId, PrevGreenGradeId = GreenGradeId, "
          "PrevGrossWeight = GrossWeight, PrevNetWeight = NetWeight, PrevStatusId = StatusId, "
          "PrevStatusTS = StatusTS, OperatorId = ?2, GreenGradeId = ?3, GrossWeight = ?4, "
          "NetWeight = ?5, StatusId = COALESCE(?6, StatusId), StatusTS = ?7 WHERE CAGEID = ?1",
          {cage, op, grade, log->Fields(std::size_t{3}), net, log->Fields(std::size_t{4}), when});
      session.run("DELETE FROM CAGECONTENT WHERE CageId = ?1", {cage});
      if (!grade.isNull()) {
        session.run("INSERT INTO CAGECONTENT (CageId, GreenGradeId, NetWeight) VALUES (?1, ?2, ?3)",
                    {cage, grade, net});
      }
      log->MoveNext();
    }
    session.run("UPDATE CAGEMOVEMENT SET Executed = 'Y' WHERE CAGEMOVEMENTID = ?1", {key});
  });
  return nullptr;
}

}  // namespace

void addCagesCatalog(Catalog& c) {
  c.table("CAGE", R"(
    CAGEID INTEGER PRIMARY KEY AUTOINCREMENT,
    CageCode VARCHAR(10),
    TareWeight FLOAT,
    DeletedFlag VARCHAR(1),
    OperatorId INT,
    GreenGradeId INT,
    GrossWeight FLOAT,
    NetWeight FLOAT,
    StatusId INT,
    StatusTS DATETIME,
    PrevOperatorId INT,
    PrevGreenGradeId INT,
    PrevGrossWeight FLOAT,
    PrevNetWeight FLOAT,
    PrevStatusId INT,
    PrevStatusTS DATETIME)");

  c.table("CAGESTATUS", R"(
    CAGESTATUSID INTEGER PRIMARY KEY AUTOINCREMENT,
    CageStatus VARCHAR(10),
    Description VARCHAR(100),
    Sequence INT)");

  c.table("CAGECONTENT", R"(
    CAGECONTENTID INTEGER PRIMARY KEY AUTOINCREMENT,
    CageId INT,
    GreenGradeId INT,
    NetWeight FLOAT)");

  c.table("CAGEMOVEMENT", R"(
    CAGEMOVEMENTID INTEGER PRIMARY KEY AUTOINCREMENT,
    MovementType VARCHAR(20),
    MovementTS DATETIME,
    OperatorId INT,
    StationId INT,
    ShiftNumber INT,
    ProductionRunId INT,
    Executed VARCHAR(1))");

  c.table("CAGELOG", R"(
    CAGELOGID INTEGER PRIMARY KEY AUTOINCREMENT,
    CageId INT,
    CageMovementId INT,
    Sequence INT,
    InGreenGradeId INT,
    InWeight FLOAT,
    FromStatusId INT,
    OutGreenGradeId INT,
    OutWeight FLOAT,
    ToStatusId INT,
    CageGross FLOAT,
    CageTare FLOAT,
    CageNet FLOAT,
    CardPrinted VARCHAR(1))");

  c.table("CAGEMOVECOMMENT", R"(
    CAGEMOVECOMMENTID INTEGER PRIMARY KEY AUTOINCREMENT,
    CageMovementID INT,
    Comment VARCHAR(128))");

  // The people who handle cages, by the id the movements carry.
  c.table("OPERATOR", R"(
    OPERATORID INTEGER PRIMARY KEY AUTOINCREMENT,
    UserName VARCHAR(20),
    DeletedFlag VARCHAR(1))");

  // Alerts raised through qsp_SendAlert.
  c.table("CAGEALERT", R"(
    CAGEALERTID INTEGER PRIMARY KEY AUTOINCREMENT,
    AlertId INT,
    CageId INT,
    AlertTS DATETIME)");

  c.view("VCAGECONTENT", R"(
    SELECT cc.CAGECONTENTID AS CageContentId, cc.CageId AS CageId, ca.CageCode AS CageCode,
           cc.GreenGradeId AS GreenGradeId, g.GradeCode AS GradeCode, cc.NetWeight AS NetWeight
    FROM CAGECONTENT cc
    LEFT JOIN CAGE ca ON ca.CAGEID = cc.CageId
    LEFT JOIN GREENGRADE g ON g.GREENGRADEID = cc.GreenGradeId)");

  // Each log row with its movement, the operator's name, the station's code, and the codes of
  // the cage, the grades in and out and the statuses left and entered.
  c.view("VCAGELOG", R"(
    SELECT m.CAGEMOVEMENTID AS CageMovementID, m.MovementType AS MovementType,
           m.MovementTS AS MovementTs, m.OperatorId AS OperatorId, m.StationId AS StationId,
           m.ShiftNumber AS ShiftNumber, m.ProductionRunId AS ProductionRunId,
           m.Executed AS Executed, o.UserName AS UserName, s.StationCode AS StationCode,
           l.CAGELOGID AS CageLogId, l.CageId AS CageId, ca.CageCode AS CageCode,
           l.Sequence AS Sequence, l.InGreenGradeId AS InGreenGradeId, l.InWeight AS InWeight,
           gi.GradeCode AS InGradeCode, l.FromStatusId AS FromStatusId,
           sf.CageStatus AS FromStatus, l.OutGreenGradeId AS OutGreenGradeId,
           l.OutWeight AS OutWeight, go.GradeCode AS OutGradeCode, l.ToStatusId AS ToStatusId,
           st.CageStatus AS ToStatus, l.CageGross AS CageGross, l.CageTare AS CageTare,
           l.CageNet AS CageNet
    FROM CAGELOG l
    LEFT JOIN CAGEMOVEMENT m ON m.CAGEMOVEMENTID = l.CageMovementId
    LEFT JOIN OPERATOR o ON o.OPERATORID = m.OperatorId
    LEFT JOIN STATION s ON s.STATIONID = m.StationId
    LEFT JOIN CAGE ca ON ca.CAGEID = l.CageId
    LEFT JOIN GREENGRADE gi ON gi.GREENGRADEID = l.InGreenGradeId
    LEFT JOIN GREENGRADE go ON go.GREENGRADEID = l.OutGreenGradeId
    LEFT JOIN CAGESTATUS sf ON sf.CAGESTATUSID = l.FromStatusId
    LEFT JOIN CAGESTATUS st ON st.CAGESTATUSID = l.ToStatusId)");

  c.procedure(u"qsp_SendAlert", {u"p_AlertId", u"p_CageId"}, sendAlert);
  c.procedure(u"sp_PostCageMovement", {u"p_CageMovementId"}, postCageMovement);

  c.statement("CREATE INDEX IF NOT EXISTS IX_CAGECONTENT_CAGE ON CAGECONTENT (CageId)");
  c.statement("CREATE INDEX IF NOT EXISTS IX_CAGELOG_MOVEMENT ON CAGELOG (CageMovementId)");
  c.statement(
      "CREATE INDEX IF NOT EXISTS IX_CAGEMOVECOMMENT_MOVEMENT ON CAGEMOVECOMMENT (CageMovementID)");
}

}  // namespace vrdppo::embedded
