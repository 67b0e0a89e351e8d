// Pairwise contrasts: a network of the categories in each panel, an edge for each contrast.
#include <algorithm>
#include <utility>

#include "backend/hierfit/charts/ChartData.h"
#include "backend/hierfit/charts/ChartDocument.h"
#include "backend/hierfit/charts/CompareCoordinates.h"
#include "backend/hierfit/charts/HFITChartImpl.h"
#include "backend/hierfit/charts/TextEdits.h"

namespace {

constexpr char kNodeSource[] = "nodeSource_1";
constexpr const char* kNodeVariables[] = {"node", "facet1", "facet2"};
enum { kNode, kNodeFacet1, kNodeFacet2, kNodeVariableCount };

constexpr char kEdgeSource[] = "edgeSource_1";
constexpr const char* kEdgeVariables[] = {"from", "to",     "weight", "weightInPopup",
                                          "type", "facet1", "facet2", "tooltip"};
enum {
  kFrom,
  kTo,
  kWeight,
  kWeightInPopup,
  kType,
  kEdgeFacet1,
  kEdgeFacet2,
  kTooltip,
  kEdgeVariableCount
};

/// The value of a facet for each node, by the node's key in byte order. A key has the values of the
/// panel and the category one behind the other, so that a category is another node in each panel.
using NodeFacetMap = std::map<std::string, std::string>;

/// A key as the text of the number that the chart's data hold for it.
std::string WithoutLeadingZeros(std::string key) {
  return key.erase(0, std::min(key.find_first_not_of('0'), key.size()));
}

void WriteNodes(VarDataProcessor& data,
                const std::array<_varinfo, kNodeVariableCount>& variables,
                const NodeFacetMap& nodeFacet1,
                const NodeFacetMap& nodeFacet2) {
  int32_t row = 0;
  auto facet2 = nodeFacet2.rbegin();  // both maps have the same keys
  for (auto facet1 = nodeFacet1.rbegin(); facet1 != nodeFacet1.rend(); ++facet1, ++facet2, ++row) {
    SetNumberOrText(data, variables[kNode], row, facet1->first);
    SetNumberOrText(data, variables[kNodeFacet1], row, facet1->second);
    SetNumberOrText(data, variables[kNodeFacet2], row, facet2->second);
  }
}

}  // namespace

/// The data of one chart while its contrasts are walked.
struct HFITChartImpl::PairwiseChart {
  const EmmeansContrastData& contrasts;
  CompareCoordinates coordinates;
  VELT_Variable* compared;  ///< null when the dictionary does not have the compared factor
  std::string different;    ///< pattern of a tooltip, with the target in place
  std::string same;
  VarDataProcessor& data;
  std::array<_varinfo, kNodeVariableCount> nodeVariables{};
  std::array<_varinfo, kEdgeVariableCount> edgeVariables{};
  NodeFacetMap nodeFacet1{};
  NodeFacetMap nodeFacet2{};
  std::map<std::string, std::string> relabels{};  ///< labels by node key without leading zeros
  int32_t edgeCount = 0;

  void AddSources() {
    AddSource(data, kNodeSource, 0, kNodeVariables, nodeVariables);
    AddSource(data, kEdgeSource, 0, kEdgeVariables, edgeVariables);
  }

  void WriteEdges() {
    for (std::size_t i = 0; i < contrasts.fAdjustedSig.fvValues.size(); ++i) {
      const double sig = NumberIn(contrasts.fAdjustedSig.fvValues[i]);
      // A contrast that certainly shows nothing is neither an edge nor a node.
      if (sig == 1.0) continue;
      WriteEdge(i, sig);
      WriteTooltip(i, sig);
      if (compared != nullptr) CollectRelabels(i);
      ++edgeCount;
    }
  }

  void WriteEdge(std::size_t i, double sig) {
    const std::string& facet1 = ValueAt(coordinates.facet1, i);
    const std::string& facet2 = ValueAt(coordinates.facet2, i);
    const std::string fromKey = facet1 + facet2 + ValueAt(coordinates.second, i);
    const std::string toKey = facet1 + facet2 + ValueAt(coordinates.first, i);
    for (const std::string* key : {&fromKey, &toKey}) {
      nodeFacet1.try_emplace(*key, facet1);
      nodeFacet2.try_emplace(*key, facet2);
    }

    SetNumberOrText(data, edgeVariables[kFrom], edgeCount, fromKey);
    if (SetNumberOrText(data, edgeVariables[kTo], edgeCount, toKey)) {
      data.SetVariableValue(&edgeVariables[kWeight], edgeCount, 1 / ((1 - sig) * (1 - sig)));
      data.SetVariableValue(&edgeVariables[kWeightInPopup], edgeCount, sig);
    }
    data.SetVariableValue(&edgeVariables[kType], edgeCount, IsSignificant(sig) ? 1.0 : 0.0);
    SetNumberOrText(data, edgeVariables[kEdgeFacet1], edgeCount, facet1);
    SetNumberOrText(data, edgeVariables[kEdgeFacet2], edgeCount, facet2);
  }

  /// Says which category is the higher one, or that none is.
  void WriteTooltip(std::size_t i, double sig) {
    const std::string* a = &ValueAt(coordinates.second, i);
    const std::string* b = &ValueAt(coordinates.first, i);
    double estimate = 0.0;
    if (ParseNumber(ValueAt(&contrasts.fContrastEstimate, i), estimate) && estimate < 0) {
      std::swap(a, b);
    }
    std::string tooltip = IsSignificant(sig) ? different : same;
    ReplaceFirst(tooltip, "^2", CategoryText(*b));
    ReplaceFirst(tooltip, "^3", CategoryText(*a));
    data.SetStringVariableValue(&edgeVariables[kTooltip], edgeCount, OutputText(tooltip));
  }

  /// The label of a category that is a number, else the category itself.
  std::string CategoryText(const std::string& category) const {
    double number = 0.0;
    if (compared == nullptr || !ParseNumber(category, number)) return category;
    const char* label = ValueLabelText(*compared, number);
    return label == nullptr ? category : label;
  }

  void CollectRelabels(std::size_t i) {
    for (const CoordinatesData* member : {coordinates.second, coordinates.first}) {
      const std::string& value = ValueAt(member, i);
      const char* label = IsString(compared) ? ValueLabelText(*compared, value)
                                             : ValueLabelText(*compared, NumberIn(value));
      if (label == nullptr) continue;
      relabels.try_emplace(WithoutLeadingZeros(ValueAt(coordinates.facet1, i) +
                                               ValueAt(coordinates.facet2, i) + value),
                           label);
    }
  }

  bool IsSignificant(double sig) const { return contrasts.fAdjustedSigLevel > sig; }

  /// The nodes and the ends of the edges show the labels of their categories.
  void RelabelNodes(XGraph& graph) const {
    XVariable* const variables[] = {graph.getVariable("node", 0), graph.getVariable("from", 0),
                                    graph.getVariable("to", 0)};
    for (const auto& [key, label] : relabels) {
      const ChartString value(key.c_str());
      const ChartString text = XUtility::ChartStringFromOLANG(label.c_str());
      for (XVariable* variable : variables) {
        if (variable != nullptr) variable->addRelabel(value, text);
      }
    }
  }
};

void HFITChartImpl::PairwiseChartOutput(const EmmeansData& emmeansData) {
  const EmmeansContrastData& contrasts = emmeansData.fContrasts;
  if (contrasts.fvCoordinates.size() < 2 || emmeansData.fvOverallTests.empty()) return;
  if (fpHFITOutputStats->GetBuildSettings() == nullptr) return;
  const ChartString title = Translated("Pairwise Contrasts");
  const ChartString footnote = ContrastFootnote(emmeansData);
  const CompareCoordinates coordinates = CompareCoordinatesOf(contrasts);

  VarDataProcessor data;
  PairwiseChart chart{.contrasts = contrasts,
                      .coordinates = coordinates,
                      .compared = FindVariable(coordinates.second),
                      .different = PatternOfTarget("Simple Higher"),
                      .same = PatternOfTarget("Simple Same"),
                      .data = data};
  chart.AddSources();
  chart.WriteEdges();
  WriteNodes(data, chart.nodeVariables, chart.nodeFacet1, chart.nodeFacet2);

  std::string text = TemplateFileText("GLMMPairwiseContrasts.glyphtemplate");
  EditPairwise(text, coordinates, title, footnote);
  try {
    XDocument document(text);
    if (XGraph* graph = document.getExternalGraph()) LabelPairwise(*graph, chart);
    PrepareDocument(document);
    document.SetDescription(title.xc_str());
    document.SetChartData(&data);
    SendDocument(document);
  } catch (...) {
    // Whatever a document throws costs this chart and not the tables behind it.
  }
}

void HFITChartImpl::EditPairwise(std::string& text,
                                 const CompareCoordinates& coordinates,
                                 const ChartString& title,
                                 const ChartString& footnote) const {
  ReplaceFirst(text, "TitleText", DocumentText(title));
  std::string target = LookUp("Target\\: ^1");
  ReplaceFirst(target, "^1", fTargetLabel);
  ReplaceFirst(target, "\\:", ":");
  ReplaceFirst(text, "subTitleText", DocumentText(XUtility::ChartStringFromOLANG(target.c_str())));
  ReplaceFirst(text, "FootnoteText", DocumentText(footnote));
  if (coordinates.facet1 == nullptr) {
    RemoveFaceting(text);
  } else if (coordinates.facet2 == nullptr) {
    RemoveSecondFacet(text);
  }
}

void HFITChartImpl::LabelPairwise(XGraph& graph, const PairwiseChart& chart) const {
  if (chart.compared != nullptr) {
    XVariable* node = graph.getVariable("node", 0);
    if (node != nullptr) {
      node->setLabel(VariableChartLabel(*chart.compared));
      node->setVELTVariable(chart.compared);
    }
  }
  RelabelSignificance(graph.getVariable("type", 0));
  for (const auto& [name, facet] : {std::pair{"facet1", chart.coordinates.facet1},
                                    std::pair{"facet2", chart.coordinates.facet2}}) {
    VELT_Variable* variable = FindVariable(facet);
    if (variable == nullptr) continue;
    // The variable stands twice: in the nodes and in the edges.
    Relabel(graph.getVariable(name, 0), variable);
    Relabel(graph.getVariable(name, 1), variable);
  }
  chart.RelabelNodes(graph);
}
