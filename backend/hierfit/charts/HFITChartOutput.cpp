#include "backend/hierfit/charts/HFITChartOutput.h"

#include "backend/hierfit/charts/HFITChartImpl.h"

HFITChartOutput::HFITChartOutput(BpProcedure* procedure,
                                 ProcedureDataSource* dataSource,
                                 HFITOutputStats* outputStats)
    : fpImpl(std::make_unique<HFITChartImpl>(procedure, dataSource, outputStats)) {}

HFITChartOutput::~HFITChartOutput() = default;

void HFITChartOutput::PredictedByObservedOutput() { fpImpl->PredictedByObservedOutput(); }

void HFITChartOutput::FixedEffectsDiagramOutput() { fpImpl->FixedEffectsDiagramOutput(); }

void HFITChartOutput::FixedCoefficientsDiagramOutput() { fpImpl->FixedCoefficientsDiagramOutput(); }

void HFITChartOutput::EmmeansChartsOutput() { fpImpl->EmmeansChartsOutput(); }

void HFITChartOutput::CustomEffectsOutput(const EmmeansData& emmeansData) {
  fpImpl->CustomEffectsOutput(emmeansData);
}

void HFITChartOutput::ContrastChartOutput(const EmmeansData& emmeansData) {
  fpImpl->ContrastChartOutput(emmeansData);
}
