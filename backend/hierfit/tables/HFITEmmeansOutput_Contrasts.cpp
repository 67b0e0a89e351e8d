// The contrasts of the compared factor.
#include <optional>

#include "backend/hierfit/charts/HFITChartOutput.h"
#include "backend/hierfit/store/EngineMessages.h"
#include "backend/hierfit/tables/CellText.h"
#include "backend/hierfit/tables/HFITEmmeansOutput.h"
#include "backend/hierfit/tables/TableShape.h"
#include "backend/hierfit/tables/TableText.h"

namespace {

/// The names of a table of contrasts, by `fContrastKind`.
struct ContrastNames {
  const char* table;
  const char* dimension;
};
constexpr ContrastNames kContrastNames[] = {
    {"Pairwise Contrasts", "^1 Pairwise Contrasts"},
    {"Deviation Contrasts", "^1 Deviation Contrasts"},
    {"Simple Contrasts", "^1 Simple Contrasts"},
};

constexpr ListColumn<EmmeansContrastData> kContrastColumns[] = {
    {{"Contrast Estimate", BpProcedure::Coefficient}, &EmmeansContrastData::fContrastEstimate},
    {{"Std. Error", BpProcedure::Coefficient}, &EmmeansContrastData::fStdErr},
    {{"t", BpProcedure::Coefficient}, &EmmeansContrastData::fTTest},
    {{"df", BpProcedure::Count}, &EmmeansContrastData::fDf},
    {{"Adj. Sig.", BpProcedure::Coefficient}, &EmmeansContrastData::fAdjustedSig},
};
constexpr ListColumn<EmmeansContrastData> kBounds[] = {
    {{"Lower", BpProcedure::Coefficient}, &EmmeansContrastData::fConfIntervalLower},
    {{"Upper", BpProcedure::Coefficient}, &EmmeansContrastData::fConfIntervalUpper},
};

/// The names of the kind of the contrasts; null for a kind that has no table.
const ContrastNames* NamesOf(const EmmeansContrastData& contrasts) {
  const auto kind = static_cast<std::size_t>(contrasts.fContrastKind);
  return kind < std::size(kContrastNames) ? &kContrastNames[kind] : nullptr;
}

/// The key of the first line of an adjusted caption; null when the adjustment has but one line or
/// none.
const char* SequentialKey(int32_t adjustment) {
  if (adjustment == Adjustment::kSequentialBonferroni) {
    return "Sequential Bonferroni significance adjust";
  }
  if (adjustment == Adjustment::kSequentialSidak) return "Sequential Sidak significance adjust";
  return nullptr;
}

}  // namespace

void HFITEmmeansOutput::CaptionOfAdjustment(BpPivotTable& table) const {
  if (fpBuildSettings->fPAdjustment == Adjustment::kLeastSignificantDifference) {
    table.Caption(Key("Least Significant significance adjust"));
    return;
  }
  const char* key = SequentialKey(fpBuildSettings->fPAdjustment);
  if (key == nullptr) return;
  BpComposite caption(kLinesPattern, true);
  caption.Sublist();
  caption.Add(Key(key));
  caption.Add(Key("Confidence interval bounds are approximate."));
  caption.EndSublist();
  caption.Finish();
  table.Caption(caption);
}

/// The variables of the coordinates; the compared one has the last two coordinates, and no other.
/// False when the coordinates are not so, or when the dictionary lacks one of them.
bool HFITEmmeansOutput::FindContrastVariables(const EmmeansData& emmeansData,
                                              std::vector<VELT_Variable*>& others,
                                              VELT_Variable*& compared) const {
  const std::vector<CoordinatesData>& coordinates = emmeansData.fContrasts.fvCoordinates;
  compared = FindVariable(SpecOf(emmeansData).fCompareFactor);
  for (std::size_t k = 0; k < coordinates.size(); ++k) {
    VELT_Variable* variable = FindVariable(coordinates[k].fField);
    const bool isMember = k + 2 >= coordinates.size();
    if (variable == nullptr || (variable == compared) != isMember) return false;
    if (!isMember) others.push_back(variable);
  }
  return true;
}

/// The two members of a contrast, or its first member and the mean.
BpComposite HFITEmmeansOutput::ContrastLabel(const EmmeansContrastData& contrasts,
                                             const VELT_Variable* compared,
                                             std::size_t row) {
  const std::size_t nFactor = contrasts.fvCoordinates.size();
  const BpDataValue first =
      CoordinateValue(contrasts.fvCoordinates[nFactor - 2].fvValues[row], compared);
  if (contrasts.fContrastKind == ContrastKind::kDeviation) {
    return KeyWith("^1 - ^2", first, Key("Mean"));
  }
  return KeyWith("^1 - ^2", first,
                 CoordinateValue(contrasts.fvCoordinates[nFactor - 1].fvValues[row], compared));
}

void HFITEmmeansOutput::ContrastsOutput(BpHeading& heading, const EmmeansData& emmeansData) {
  const EmmeansContrastData& contrasts = emmeansData.fContrasts;
  if (contrasts.fvCoordinates.empty() || NamesOf(contrasts) == nullptr) return;
  const std::size_t warningIndex = FindWarning(emmeansData.fvWarningList, kGLMM_C19_1);
  if (warningIndex < emmeansData.fvWarningList.size()) {
    if (!(emmeansData.fvWarningList[warningIndex].fWarningParameters.size() == 1)) return;
    ReportBlock(Key("EMMEANS"), emmeansData, kGLMM_C19_1);
    return;
  }
  // The table stays open until its chart is sent, which shows what there is without a table, too.
  const std::optional<BpPivotTable> table = ContrastTable(heading, emmeansData);
  HFITChartOutput chart(fpProcedure, fpDataSource, fpHFITOutputStats);
  chart.ContrastChartOutput(emmeansData);
}

std::optional<BpPivotTable> HFITEmmeansOutput::ContrastTable(BpHeading& heading,
                                                             const EmmeansData& emmeansData) {
  const EmmeansContrastData& contrasts = emmeansData.fContrasts;
  const ContrastNames& names = *NamesOf(contrasts);
  const std::size_t nFactor = contrasts.fvCoordinates.size();
  const std::size_t nEffect = SpecOf(emmeansData).fFactors.fvVarIndices.size();
  std::vector<VELT_Variable*> others;
  VELT_Variable* compared = nullptr;
  if (!(nFactor >= 2 && nEffect + 1 == nFactor) ||
      !AreParallel(contrasts, kContrastColumns, kBounds))
    return {};
  if (!FindContrastVariables(emmeansData, others, compared)) return {};

  BpPivotTable table = heading.PivotTable(Key(names.table), Text("Contrasts"), true);
  CaptionOfAdjustment(table);
  std::vector<BpDimension> factors;
  for (std::size_t k = 0; k < others.size(); ++k) {
    factors.push_back(AddFactor(table, others[k], static_cast<int32_t>(nEffect - k)));
  }
  BpDimension pairs = table.Dimension(
      KeyWith(names.dimension, BpVariable(compared, kVariableInNote)), kInOrderOfAppearance);
  BpDimension statistics = AddDimension(table, Key("Statistics"), kColumns, 1, Shown::LabelsAlone);

  const BpComposite intervalTitle = ConfidenceHeading(kConfidenceInterval, *fpBuildSettings);
  for (std::size_t row = 0; row < contrasts.fvCoordinates.front().fvValues.size(); ++row) {
    for (std::size_t k = 0; k < others.size(); ++k) {
      factors[k].Category(CoordinateValue(contrasts.fvCoordinates[k].fvValues[row], others[k]));
    }
    pairs.Category(ContrastLabel(contrasts, compared, row));
    WriteColumns(statistics, kContrastColumns, contrasts, row);
    BpGroup interval = GroupOf(statistics, intervalTitle);
    WriteColumns(interval, kBounds, contrasts, row);
  }
  return table;
}
