// The coefficients, each joined with the target by an edge that shows its significance and sign.
#include "backend/hierfit/charts/HFITChartImpl.h"
#include "backend/hierfit/charts/MeasurementWord.h"

namespace {

/// The diagram shows the coefficients of the first ten effects.
constexpr int32_t kMaxEffectIndex = 10;

bool IsSelected(const ParamStatData& coefficient) {
  if (coefficient.fRegressionParam.fIsIntercept && coefficient.fSig < 1.0) return true;
  return !coefficient.fIsRedundant && coefficient.fStatName == "fixedEffectIndex" &&
         coefficient.fStatIndex < kMaxEffectIndex;
}

std::vector<const ParamStatData*> SelectedCoefficients(const ParamCollect& estimates) {
  std::vector<const ParamStatData*> selected;
  for (const ParamEstimData& set : estimates.fvFixedParamEstim) {
    for (const ParamStatData& coefficient : set.fvParamStats) {
      if (IsSelected(coefficient)) selected.push_back(&coefficient);
    }
  }
  return selected;
}

/// How many variables a term has.
std::size_t SizeOf(const RegressionParamData& term) {
  return term.fvCovariates.size() + term.fvFactors.size();
}

/// A field and its value, with their labels.
std::string FactorTooltip(const FactorData& factor,
                          const VELT_Variable& variable,
                          const OBS& value) {
  std::string tooltip = factor.fField + " = " + ToString(&value, variable.GetFormat());
  const char* label = variable.GetLabel();
  const VELT_ValueLabels* labels = variable.GetValueLabels();
  const char* valueLabel =
      labels == nullptr ? nullptr : VELT_ValueLabelMap(labels).GetLabel(&value);
  if (label != nullptr) tooltip += std::string("\n") + label + " = ";
  if (valueLabel == nullptr) return tooltip;
  return tooltip += label != nullptr ? valueLabel : " (" + std::string(valueLabel) + ")";
}

}  // namespace

void HFITChartImpl::FixedCoefficientsDiagramOutput() {
  const ParamCollect* estimates = fpHFITOutputStats->GetParamCollect();
  if (estimates == nullptr) return;
  const std::vector<const ParamStatData*> selected = SelectedCoefficients(*estimates);
  if (selected.empty()) return;

  VarDataProcessor data;
  AddTargetNode(data, selected.size());
  AddNodeAndEdgeSources(data);
  fEdgesWritten = true;
  const NodeLayoutData layout = NodeLayout(selected.size());
  const std::string positive = Translated("Positive").toUTF8();
  const std::string negative = Translated("Negative").toUTF8();
  for (std::size_t k = 0; k < selected.size(); ++k) {
    const ParamStatData& coefficient = *selected[k];
    const auto row = static_cast<int32_t>(k);
    WriteNodePosition(data, row, layout.fvPositions[k], selected.size());
    WriteEdgePosition(data, row, layout.fvPositions[k]);
    WriteWeight(data, row, coefficient.fSig);
    const bool isPositive = coefficient.fEstimate == fMissingValue || coefficient.fEstimate >= 0;
    data.SetStringVariableValue(fEdgeSourceName, "Weight2", row, isPositive ? positive : negative);
    WriteCoefficient(data, row, coefficient);
  }
  WriteDiagram(selected.size(), "Fixed Coefficients", data, false);
}

/// The texts of a coefficient: those of its edge, then those of its node.
void HFITChartImpl::WriteCoefficient(VarDataProcessor& data,
                                     int32_t row,
                                     const ParamStatData& coefficient) const {
  data.SetStringVariableValue(
      fEdgeSourceName, "LineTooltip", row,
      OutputText(LookUp("Coefficient") + " = " +
                 FormattedNumber(coefficient.fEstimate, kFineFormat) + "\n" + LookUp("E62317") +
                 " = " + FormattedNumber(coefficient.fSig, kFineFormat)));
  if (coefficient.fRegressionParam.fIsIntercept) {
    data.SetStringVariableValue(fPointSourceName, "Type", row, kInterceptWord);
    data.SetStringVariableValue(fPointSourceName, "Nodes", row, Translated("Intercept").toUTF8());
    data.SetStringVariableValue(fPointSourceName, "PointTooltip", row, "");
    return;
  }
  WriteTerm(data, row, coefficient);
}

/// The first factor of a term tells what its node is; without one the label must be that of a
/// covariate. A field that is not in the dictionary tells nothing.
void HFITChartImpl::WriteTerm(VarDataProcessor& data,
                              int32_t row,
                              const ParamStatData& coefficient) const {
  const RegressionParamData& term = coefficient.fRegressionParam;
  data.SetStringVariableValue(fPointSourceName, "Nodes", row, coefficient.fParamLabel);
  const FactorData* factor = term.fvFactors.empty() ? nullptr : &term.fvFactors.front();
  const VELT_Variable* variable =
      FindVariable(factor != nullptr ? factor->fField : coefficient.fParamLabel);
  const OBS* value = factor != nullptr ? factor->fValue.GetObsValue() : nullptr;
  if (variable != nullptr && value != nullptr) {
    data.SetStringVariableValue(fPointSourceName, "PointTooltip", row,
                                FactorTooltip(*factor, *variable, *value));
  } else if (variable != nullptr && factor == nullptr) {
    const char* label = variable->GetLabel();
    data.SetStringVariableValue(
        fPointSourceName, "PointTooltip", row,
        label == nullptr ? coefficient.fParamLabel : coefficient.fParamLabel + "\n" + label);
  }
  const char* word = SizeOf(term) > 1 ? kInteractionWord : kUnknownWord;
  if (variable != nullptr && SizeOf(term) < 2) word = MeasurementWord(*variable, word);
  data.SetStringVariableValue(fPointSourceName, "Type", row, word);
}
