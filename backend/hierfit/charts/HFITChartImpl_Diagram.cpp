// What the two diagrams share: the target, the sources of nodes and edges, their layout and
// weights, and the document.
#include <algorithm>
#include <cmath>

#include "backend/hierfit/charts/ChartDocument.h"
#include "backend/hierfit/charts/HFITChartImpl.h"
#include "backend/hierfit/charts/TextEdits.h"

namespace {

constexpr char kTargetSource[] = "targetPointSource";
constexpr const char* kTargetVariables[] = {"X", "Y", "Type", "Nodes", "PointTooltip"};
constexpr const char* kPointVariables[] = {"X",    "Y",     "Label_X",     "Label_Y",
                                           "Type", "Nodes", "PointTooltip"};
constexpr const char* kEdgeVariables[] = {"FromX",  "FromY",   "ToX",        "ToY",
                                          "Weight", "Weight2", "LineTooltip"};

/// A source without handles; its rows grow as they are set.
template <std::size_t N>
void AddPlainSource(VarDataProcessor& data,
                    const std::string& source,
                    const char* const (&variables)[N]) {
  data.AddDataSource(source, 0);
  for (const char* variable : variables) {
    data.AddVariable(source, variable, nullptr);
  }
}

struct SigWeight {
  double below;
  double weight;
};
constexpr SigWeight kSigWeights[] = {
    {0.0001, 9}, {0.0005, 8}, {0.001, 7}, {0.005, 6}, {0.01, 5}, {0.05, 4}, {0.1, 3}, {0.2, 2},
};

/// Takes the backslash of the first "\:" and all behind it out of a text.
void DropBackslashes(std::string& text) {
  const std::size_t place = text.find("\\:");
  if (place == std::string::npos) return;
  text.erase(std::remove(text.begin() + static_cast<std::ptrdiff_t>(place), text.end(), '\\'),
             text.end());
}

}  // namespace

NodeLayoutData HFITChartImpl::NodeLayout(std::size_t nodeCount) {
  NodeLayoutData layout;
  if (nodeCount == 0) return layout;
  const auto n = static_cast<double>(nodeCount);
  const double center = (n + 1) / 2;
  layout.fExtent = n;
  layout.fvPositions.reserve(nodeCount);
  for (std::size_t i = nodeCount; i > 0; --i) {
    const auto y = static_cast<double>(i);
    const double d = 2 * std::abs(y - center);
    layout.fvPositions.push_back(
        {.fFromX = n - std::sqrt(n * n - d * d), .fFromY = y, .fToX = n, .fToY = center});
  }
  return layout;
}

double HFITChartImpl::WeightOfSig(double sig) {
  for (const auto& [below, weight] : kSigWeights) {
    if (sig < below) return weight;
  }
  return 1;
}

/// The target's name and label, then its distribution and link.
std::string HFITChartImpl::TargetTooltip() const {
  std::string text = fTargetName + "\n";
  if (fTargetHasLabel) text += fTargetLabel + "\n";
  if (const BuildSettingsStruct* settings = fpHFITOutputStats->GetBuildSettings()) {
    std::string link =
        fpHFITOutputStats->LinkFunctionName(settings->fLink, settings->fDistribution, true);
    if (settings->fLink == Link::kPower) link += " (" + settings->fLinkParamText + ")";
    std::string model = LookUp("Probability Distribution ^1, Link Function ^2 ...");
    const std::size_t place = ReplaceFirst(
        model, "^1", fpHFITOutputStats->DistributionName(settings->fDistribution, true));
    ReplaceFirst(model, "^2", link, place);
    ReplaceFirst(model, "\\n", "\n");
    text += model;
  }
  DropBackslashes(text);
  return OutputText(text);
}

void HFITChartImpl::AddTargetNode(VarDataProcessor& data, std::size_t nodeCount) const {
  AddPlainSource(data, kTargetSource, kTargetVariables);
  data.SetStringVariableValue(kTargetSource, "Type", 0, "target");
  data.SetStringVariableValue(kTargetSource, "Nodes", 0, fTargetName);
  data.SetStringVariableValue(kTargetSource, "PointTooltip", 0, TargetTooltip());
  if (nodeCount == 0) return;
  const auto n = static_cast<double>(nodeCount);
  data.SetVariableValue(kTargetSource, "X", 0, n);
  data.SetVariableValue(kTargetSource, "Y", 0, (n + 1) / 2);
}

void HFITChartImpl::AddNodeAndEdgeSources(VarDataProcessor& data) const {
  AddPlainSource(data, fPointSourceName, kPointVariables);
  AddPlainSource(data, fEdgeSourceName, kEdgeVariables);
}

/// The node's point, and its label to the left of it.
void HFITChartImpl::WriteNodePosition(VarDataProcessor& data,
                                      int32_t row,
                                      const NodePosition& position,
                                      std::size_t nodeCount) const {
  const double offset = nodeCount == 1 ? 0.4 : 0.2 * static_cast<double>(nodeCount);
  data.SetVariableValue(fPointSourceName, "X", row, position.fFromX);
  data.SetVariableValue(fPointSourceName, "Y", row, position.fFromY);
  data.SetVariableValue(fPointSourceName, "Label_X", row, position.fFromX - offset);
  data.SetVariableValue(fPointSourceName, "Label_Y", row, position.fFromY);
}

void HFITChartImpl::WriteEdgePosition(VarDataProcessor& data,
                                      int32_t row,
                                      const NodePosition& position) const {
  data.SetVariableValue(fEdgeSourceName, "FromX", row, position.fFromX);
  data.SetVariableValue(fEdgeSourceName, "FromY", row, position.fFromY);
  data.SetVariableValue(fEdgeSourceName, "ToX", row, position.fToX);
  data.SetVariableValue(fEdgeSourceName, "ToY", row, position.fToY);
}

void HFITChartImpl::WriteWeight(VarDataProcessor& data, int32_t row, double sig) {
  const double weight = WeightOfSig(sig);
  data.SetVariableValue(fEdgeSourceName, "Weight", row, weight);
  fMinWeight = std::min(fMinWeight, weight);
  fMaxWeight = std::max(fMaxWeight, weight);
}

void HFITChartImpl::WriteDiagram(std::size_t nodeCount,
                                 const char* titleKey,
                                 VarDataProcessor& data,
                                 bool hideLegend) {
  const auto n = static_cast<double>(nodeCount);
  std::string text = TemplateFileText("GLMMFixedCoefficients.glyphtemplate");
  const std::size_t limit = ReplaceFirst(text, "9.3", NumberText(std::max(n * 4.0 / 3.0, 2.0)));
  if (nodeCount == 0) InsertAt(text, text.find("/>", limit), 0, " min=\"0\" ");
  ReplaceFirst(text, "7.0", NumberText(std::max(n, 1.0)));
  if (nodeCount >= 2 && nodeCount <= 8) {
    InsertAt(text, text.find("id=\"graphStyle"), 15, " margin-bottom=\"30px\" ");
  }
  const ChartString title = Translated(titleKey);
  ReplaceFirst(text, "title1", DocumentText(title));
  EmbedTargetHistogram(text);
  if (fEdgesWritten) {
    const std::size_t high = text.find("high=");
    ReplaceAt(text, high, 6, 1, NumberText(fMaxWeight));
    ReplaceAt(text, text.find("low=", high), 5, 1, NumberText(fMinWeight));
  }
  if (hideLegend) {
    const std::size_t legend = text.find("id=\"legendStyle\"");
    if (legend != std::string::npos && legend > 0) text.insert(legend - 1, " visible=\"false\" ");
  } else {
    ReplaceFirst(text, "Coefficient Estimate", DocumentText(Translated("Coefficient Estimate")));
  }

  XDocument document(text);
  PrepareDocument(document);
  document.SetDescription(title.xc_str());
  document.SetChartData(&data);
  SendDocument(document);
}
