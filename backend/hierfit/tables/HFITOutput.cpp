// The order of all output.
#include "backend/hierfit/tables/HFITOutput.h"

#include "backend/hierfit/charts/HFITChartOutput.h"
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
  HFITChartOutput charts(fpProcedure, fpDataSource, fpHFITOutputStats);
  charts.PredictedByObservedOutput();
  ClassificationOutput();
  HFITParamEstimatesOutput paramEstimates(fpProcedure, fpDataSource, fpHFITOutputStats);
  paramEstimates.FixedEffectsOutput();
  charts.FixedEffectsDiagramOutput();
  paramEstimates.FixedCoefficientsOutput();
  charts.FixedCoefficientsDiagramOutput();
  paramEstimates.RandomEffectCovariancesOutput();
  paramEstimates.CovarianceParametersOutput();
  charts.EmmeansChartsOutput();
  HFITEmmeansOutput emmeans(fpProcedure, fpDataSource, fpHFITOutputStats);
  emmeans.EmmeansOutput();
}
