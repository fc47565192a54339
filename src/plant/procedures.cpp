#include "plant/procedures.hpp"

#include <array>

namespace vrdppo::plant {

namespace {

using Text = odbc::KnownProcedure::Text;

// None of them sets an option, makes a temporary object or leaves a transaction open; those that
// run text from their arguments are marked, so that the text is read too.
constexpr std::array<odbc::KnownProcedure, 33> kProcedures{{
    {u"sp_InsertStatement", Text::Statement},
    {u"qsp_InsertStatement", Text::Statement},
    {u"qspsys_AdjustSortSequence", Text::Fragments},
    {u"qspsys_InsertDeleteAtSortSequence", Text::Fragments},
    {u"qsp_CreateGreenInventory"},
    {u"qsp_CreatecbGreenInventory"},
    {u"sp_PostProductionRun"},
    {u"qsp_CanDeleteProductionRun"},
    {u"qsp_ZapProductionRun"},
    {u"qsp_PrizingCreateHeaderStage"},
    {u"qsp_PrizingAssignRunSequence"},
    {u"qsp_PrizingSynchRunStatus"},
    {u"qsp_PrizingReleaseRun"},
    {u"qsp_PrizingCloseRun"},
    {u"qsp_PrizingGradeChangeInProgress"},
    {u"sp_GenerateProcResultsReport"},
    {u"qsp_LabProcessingResults"},
    {u"sp_PostGreenReceipts"},
    {u"qsp_SendAlert"},
    {u"sp_PostCageMovement"},
    {u"qsp_LabCreateIntermediateNotes"},
    {u"qsp_LabCreateAdviceNotes"},
    {u"qsp_LabSyncAdvice"},
    {u"qsp_LabLockHeader"},
    {u"qsp_OnHoldCheck"},
    {u"qsp_ContainerPrized"},
    {u"qsp_LabAddPacked"},
    {u"qsp_LabRemovePacked"},
    {u"qsp_LabAddDegradation"},
    {u"qsp_LabRemoveDegradation"},
    {u"qsp_LabAddStemLength"},
    {u"qsp_LabAddInfraalyzer"},
    {u"qsp_LabRemoveInfraalyzer"},
}};

}  // namespace

std::span<const odbc::KnownProcedure> knownProcedures() {
  return kProcedures;
}

}  // namespace vrdppo::plant
