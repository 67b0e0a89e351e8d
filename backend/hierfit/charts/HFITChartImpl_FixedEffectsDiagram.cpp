// The tested effects, each joined with the target by an edge that shows its significance.
#include <algorithm>

#include "backend/hierfit/charts/HFITChartImpl.h"
#include "backend/hierfit/charts/MeasurementWord.h"

namespace {

/// The diagram shows the first ten effects of the model.
constexpr int32_t kMaxTestID = 10;

bool Qualifies(const EffectTestData& test) {
  return test.fTestID < kMaxTestID && test.fSig > -0.0001 && test.fSig < 1.0;
}

std::string EffectName(const std::vector<VELT_Variable*>& variables) {
  std::string name = variables.front()->GetName();
  for (std::size_t i = 1; i < variables.size(); ++i) {
    name += "*" + variables[i]->GetName();
  }
  return name;
}

std::string NameAndLabel(const VELT_Variable& variable) {
  const char* label = variable.GetLabel();
  return label == nullptr ? variable.GetName() : variable.GetName() + "\n" + label;
}

std::string EffectTooltip(const std::vector<VELT_Variable*>& variables) {
  std::string tooltip = NameAndLabel(*variables.front());
  for (std::size_t i = 1; i < variables.size(); ++i) {
    tooltip += "(" + NameAndLabel(*variables[i]) + ")";
  }
  return tooltip;
}

const char* EffectWord(const std::vector<VELT_Variable*>& variables) {
  if (variables.size() > 1) return kInteractionWord;
  return MeasurementWord(*variables.front(), kUnknownWord);
}

}  // namespace

void HFITChartImpl::FixedEffectsDiagramOutput() {
  constexpr char kTitle[] = "Fixed Effects";
  const ModelDiagnostics* diagnostics = fpHFITOutputStats->GetModelDiagnostics();
  if (diagnostics == nullptr) return;
  const TargetDistData& distribution = diagnostics->fTargetDistribution;
  fTargetMean = distribution.fMean;
  fTargetShape = distribution.fShape;
  fTargetRate = distribution.fRate;
  fTargetR = distribution.fR;
  fTargetP = distribution.fP;
  if (fpHFITOutputStats->GetBuildSettings() == nullptr) return;

  VarDataProcessor data;
  const EffectStatData* tests = fpHFITOutputStats->GetEffectStatData();
  if (tests == nullptr) {
    WriteDiagram(0, kTitle, data, true);
    return;
  }
  const auto nodeCount =
      static_cast<std::size_t>(std::ranges::count_if(tests->fvFixedEffectTests, Qualifies));
  if (nodeCount == 0) return;
  AddTargetNode(data, nodeCount);
  AddNodeAndEdgeSources(data);
  const NodeLayoutData layout = NodeLayout(nodeCount);
  std::size_t node = 0;
  for (const EffectTestData& test : tests->fvFixedEffectTests) {
    if (!Qualifies(test)) continue;
    const NodePosition& position = layout.fvPositions[node];
    // A test without an effect leaves its row and its place empty.
    WriteEffect(data, static_cast<int32_t>(node++), test, position, nodeCount);
  }
  WriteDiagram(nodeCount, kTitle, data, true);
}

/// The variables of a test's effect; empty when the model has no such effect.
std::vector<VELT_Variable*> HFITChartImpl::EffectVariables(const EffectTestData& test) const {
  const std::vector<EffectStruct>& effects =
      fpHFITOutputStats->GetBuildSettings()->fvFixedEffectList;
  if (test.fTestID < 0 || static_cast<std::size_t>(test.fTestID) >= effects.size()) return {};
  std::vector<VELT_Variable*> variables;
  for (const int32_t index : effects[static_cast<std::size_t>(test.fTestID)].fvVarIndices) {
    variables.push_back(fpDataSource->GetVariable(index));
    if (variables.back() == nullptr) return {};
  }
  return variables;
}

void HFITChartImpl::WriteEffect(VarDataProcessor& data,
                                int32_t row,
                                const EffectTestData& test,
                                const NodePosition& position,
                                std::size_t nodeCount) {
  const std::vector<VELT_Variable*> variables = EffectVariables(test);
  if (variables.empty()) return;
  WriteNodePosition(data, row, position, nodeCount);
  data.SetStringVariableValue(fPointSourceName, "Type", row, EffectWord(variables));
  data.SetStringVariableValue(fPointSourceName, "Nodes", row, EffectName(variables));
  data.SetStringVariableValue(fPointSourceName, "PointTooltip", row, EffectTooltip(variables));
  WriteEdgePosition(data, row, position);
  WriteWeight(data, row, test.fSig);
  data.SetStringVariableValue(
      fEdgeSourceName, "LineTooltip", row,
      OutputText(LookUp("E62317") + " = " + FormattedNumber(test.fSig, kFineFormat)));
  fEdgesWritten = true;
}
