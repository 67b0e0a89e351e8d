// The means of one requested effect.
#include "backend/hierfit/tables/CellText.h"
#include "backend/hierfit/tables/HFITEmmeansOutput.h"
#include "backend/hierfit/tables/TableShape.h"
#include "backend/hierfit/tables/TableText.h"

namespace {

constexpr ListColumn<EmmeansEstimData> kMeanColumns[] = {
    {{"Mean", BpProcedure::Coefficient}, &EmmeansEstimData::fMean},
    {{"Std. Error", BpProcedure::Coefficient}, &EmmeansEstimData::fStdErr},
};
constexpr ListColumn<EmmeansEstimData> kBounds[] = {
    {{"Lower", BpProcedure::Coefficient}, &EmmeansEstimData::fConfIntervalLower},
    {{"Upper", BpProcedure::Coefficient}, &EmmeansEstimData::fConfIntervalUpper},
};

}  // namespace

void HFITEmmeansOutput::EstimatesOutput(BpHeading& heading, const EmmeansData& emmeansData) {
  const EmmeansEstimData& estimates = emmeansData.fEstimates;
  const std::size_t nFactor = estimates.fvCoordinates.size();
  const std::size_t nEffect = SpecOf(emmeansData).fFactors.fvVarIndices.size();
  if (!(nFactor > 0 && nEffect == nFactor) || !AreParallel(estimates, kMeanColumns, kBounds))
    return;
  std::vector<VELT_Variable*> variables;
  for (const CoordinatesData& factor : estimates.fvCoordinates) {
    variables.push_back(FindVariable(factor.fField));
    if (variables.back() == nullptr) return;
  }

  BpPivotTable table = heading.PivotTable(Key("Estimates"), Text("Estimates"), true);
  CaptionOfPredictors(table, emmeansData);
  std::vector<BpDimension> factors;
  for (std::size_t i = 0; i < nFactor; ++i) {
    factors.push_back(AddFactor(table, variables[i], static_cast<int32_t>(nFactor - i)));
  }
  BpDimension statistics = AddDimension(table, Key("Statistics"), kColumns, 1, Shown::LabelsAlone);

  const BpComposite intervalTitle = ConfidenceHeading(kConfidenceInterval, *fpBuildSettings);
  for (std::size_t row = 0; row < estimates.fvCoordinates.front().fvValues.size(); ++row) {
    for (std::size_t i = 0; i < nFactor; ++i) {
      factors[i].Category(CoordinateValue(estimates.fvCoordinates[i].fvValues[row], variables[i]));
    }
    WriteColumns(statistics, kMeanColumns, estimates, row);
    BpGroup interval = GroupOf(statistics, intervalTitle);
    WriteColumns(interval, kBounds, estimates, row);
  }
}

/// The continuous predictors with the values that the means are taken at. A predictor that the
/// dictionary does not hold, or that has no number, is left out.
void HFITEmmeansOutput::CaptionOfPredictors(BpPivotTable& table,
                                            const EmmeansData& emmeansData) const {
  BpComposite caption("Continuous predictors fixed at [%1=%2:,^1=^2:]1", true);
  caption.Sublist();
  bool isEmpty = true;
  for (const EmmeansLabelData& label : emmeansData.fvLabels) {
    const VELT_Variable* variable = FindVariable(label.fFieldName);
    const OBS* value = label.fValue.GetObsValue();
    if (variable == nullptr || value == nullptr || value->isString) continue;
    caption.Add(BpVariable(variable, kVariableName));
    caption.Add(BpDataValue(variable, value->number, kPreferLabel));
    isEmpty = false;
  }
  caption.EndSublist();
  caption.Finish();
  if (!isEmpty) table.Caption(caption);
}
