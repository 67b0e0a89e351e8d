// Writes the charts of a model.
#pragma once

#include <memory>

#include "host/framework.h"
#include "host/pivot.h"

#include "backend/hierfit/store/HFITOutputStats.h"

class HFITChartImpl;

/// The writer of the charts. Each operation reads the store and sends the charts that the store has
/// the data for; without them it does nothing. No operation reports anything.
class HFITChartOutput {
 public:
  HFITChartOutput(BpProcedure* procedure,
                  ProcedureDataSource* dataSource,
                  HFITOutputStats* outputStats);
  ~HFITChartOutput();
  HFITChartOutput(const HFITChartOutput&) = delete;
  HFITChartOutput& operator=(const HFITChartOutput&) = delete;

  /// Predicted against observed values of the target.
  void PredictedByObservedOutput();
  /// The tested effects and their significances, joined with the target.
  void FixedEffectsDiagramOutput();
  /// The coefficients with their significances and signs, joined with the target.
  void FixedCoefficientsDiagramOutput();
  /// The means of the top significant effects, under a heading of their own.
  void EmmeansChartsOutput();
  /// The means of one requested effect.
  void CustomEffectsOutput(const EmmeansData& emmeansData);
  /// The contrasts of one requested effect, in the form of their kind.
  void ContrastChartOutput(const EmmeansData& emmeansData);

 private:
  std::unique_ptr<HFITChartImpl> fpImpl;
};
