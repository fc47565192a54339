#include "check/procedure_calls.hpp"

namespace vrdppo::check {

const std::vector<ProcedureCall>& procedureCalls() {
  static const std::vector<ProcedureCall> calls{
      {u"ZZ_SetAuditTrailID", "", {}, 1},
      {u"sp_PostCageMovement", "cCageMovementPersist", {}, 1},
      {u"qsp_SendAlert", "cCagePersist", {}, 2},
      {u"sp_PostGreenReceipts", "cGreenReceiptPersist", {}, 1},
      {u"qsp_OnHoldCheck",
       "cLabPackedPersist",
       {u"p_GradeID", u"p_ContainerNumber", u"p_Status", u"p_UserID"},
       0},
      {u"qsp_ContainerPrized", "cLabPackedPersist", {u"p_GradeID", u"p_ContainerNumber"}, 0},
      {u"qsp_LabAddPacked", "cLabPackedPersist", {u"p_PackedID"}, 0},
      {u"qsp_LabRemovePacked", "cLabPackedPersist", {u"p_PackedID"}, 0},
      {u"qsp_LabCreateAdviceNotes", "cLabPackedPersist", {u"p_CompanyID", u"p_Season"}, 0},
      {u"qsp_LabSyncAdvice", "cLabPackedPersist", {u"p_Season"}, 0},
      {u"qsp_LabAddDegradation", "cLabDegradationPersist", {u"p_DegradationID"}, 0},
      {u"qsp_LabRemoveDegradation", "cLabDegradationPersist", {u"p_DegradationID"}, 0},
      {u"qsp_LabCreateIntermediateNotes",
       "cLabHeaderPersist",
       {u"p_Season", u"p_CompanyID", u"p_FromDate", u"p_ToDate"},
       0},
      {u"qsp_LabLockHeader", "cLabHeaderPersist", {u"p_LabHeaderId"}, 0},
      {u"qsp_LabAddStemLength", "cLabStemLengthPersist", {u"p_LabStemLengthID"}, 0},
      {u"qsp_LabAddInfraalyzer", "cLabInfraalyzerPersist", {u"p_InfraalyzerID"}, 0},
      {u"qsp_LabRemoveInfraalyzer", "cLabInfraalyzerPersist", {u"p_InfraalyzerID"}, 0},
      {u"sp_PostProductionRun", "cProductionRunPersist", {}, 3},
      {u"qsp_CanDeleteProductionRun", "cProductionRunPersist", {}, 1},
      {u"qsp_ZapProductionRun", "cProductionRunPersist", {}, 1},
      {u"qsp_PrizingCreateHeaderStage", "cProductionRunPersist", {}, 1},
      {u"qsp_PrizingAssignRunSequence", "cProductionRunPersist", {}, 2},
      {u"qsp_PrizingSynchRunStatus", "cProductionRunPersist", {}, 1},
      {u"qsp_PrizingReleaseRun", "cProductionRunPersist", {}, 1},
      {u"qsp_PrizingCloseRun", "cProductionRunPersist", {}, 4},
      {u"qsp_PrizingGradeChangeInProgress", "cProductionRunPersist", {}, 0},
      {u"qspsys_AdjustSortSequence", "cByProductsTypePersist", {}, 4},
      {u"qspsys_InsertDeleteAtSortSequence", "cByProductsTypePersist", {}, 4},
      {u"qsp_CreateGreenInventory", "cProductionSettingsPersist", {}, 0},
      {u"qsp_CreatecbGreenInventory", "cProductionSettingsPersist", {}, 0},
      // The caller writes this one's arguments: only that it exists is known.
      {u"sp_GenerateProcResultsReport", "cvProductionGradeListPersist", {}, 0},
      {u"qsp_LabProcessingResults", "cvProductionGradeListPersist", {}, 4},
  };
  return calls;
}

}  // namespace vrdppo::check
