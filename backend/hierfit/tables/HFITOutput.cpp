// The order of all output.
#include "backend/hierfit/tables/HFITOutput.h"

#include "backend/hierfit/tables/HFITEmmeansOutput.h"
#include "backend/hierfit/tables/HFITParamEstimatesOutput.h"

HFITOutput::HFITOutput(BpProcedure* procedure,
                       ProcedureDataSource* dataSource,
                       HFITOutputStats* outputStats)
    : fpProcedure(procedure),
      fpDataSource(dataSource),
      fpHFITOutputStats(outputStats),
      fpBuildSettings(outputStats == nullptr ? nullptr : outputStats->GetBuildSettings()) {}

void HFITOutput::WriteAll() {
  ModelSummaryOutput();
  DataStructureOutput();
  ClassificationOutput();
  HFITParamEstimatesOutput paramEstimates(fpProcedure, fpDataSource, fpHFITOutputStats);
  paramEstimates.FixedEffectsOutput();
  paramEstimates.FixedCoefficientsOutput();
  paramEstimates.RandomEffectCovariancesOutput();
  paramEstimates.CovarianceParametersOutput();
  HFITEmmeansOutput emmeans(fpProcedure, fpDataSource, fpHFITOutputStats);
  emmeans.EmmeansOutput();
}
