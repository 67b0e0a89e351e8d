// The order of all output.
#include "backend/hierfit/tables/HFITOutput.h"

HFITOutput::HFITOutput(BpProcedure* procedure,
                       ProcedureDataSource* dataSource,
                       HFITOutputStats* outputStats)
    : fpProcedure(procedure),
      fpDataSource(dataSource),
      fpHFITOutputStats(outputStats),
      fpBuildSettings(outputStats == nullptr ? nullptr : outputStats->GetBuildSettings()) {}

void HFITOutput::WriteAll() { ModelSummaryOutput(); }
