// What stands behind `HFITChartOutput`: one operation a chart, and what they share.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "host/chart_data.h"
#include "host/chart_document.h"
#include "host/framework.h"
#include "host/pivot.h"
#include "host/string_table.h"

#include "backend/hierfit/charts/ChartText.h"
#include "backend/hierfit/store/HFITOutputStats.h"
#include "backend/hierfit/store/SystemMissing.h"

struct CompareCoordinates;

/// Where a node of a diagram stands, and where its edge ends: in the target.
struct NodePosition {
  double fFromX = 0;
  double fFromY = 0;
  double fToX = 0;
  double fToY = 0;
};

/// The positions of the nodes of a diagram, the topmost first.
struct NodeLayoutData {
  std::vector<NodePosition> fvPositions;
  double fExtent = 1;  ///< the number of nodes, at least 1
};

/// One horizontal guide of a chart of contrasts: the panel that it stands in, and its level.
struct LineGuideData {
  std::vector<std::string> fvFacetValues;  ///< two; empty for a facet that the chart does not have
  double fReferenceMean = 0;
};

/// The guides by the key of their panel, in byte order.
using LineGuideMap = std::map<std::string, LineGuideData>;

/// The writer of the charts. A chart is a document, made by a template and edited as text, and the
/// data that it shows; both meet when it is sent. Charts report nothing: what a chart cannot go
/// without keeps it away. It owns its dictionary alone and only reads the store.
class HFITChartImpl {
 public:
  HFITChartImpl(BpProcedure* procedure,
                ProcedureDataSource* dataSource,
                HFITOutputStats* outputStats);

  void PredictedByObservedOutput();
  void FixedEffectsDiagramOutput();
  void FixedCoefficientsDiagramOutput();
  void EmmeansChartsOutput();
  void CustomEffectsOutput(const EmmeansData& emmeansData);
  void ContrastChartOutput(const EmmeansData& emmeansData);

  /// The label of a value, or null when it has none.
  static const char* ValueLabelText(const VELT_Variable& variable, double value);
  static const char* ValueLabelText(const VELT_Variable& variable, const std::string& value);
  /// Takes both facets out of a chart's document.
  static void RemoveFaceting(std::string& text);
  /// Takes the second facet out of it and leaves the first.
  static void RemoveSecondFacet(std::string& text);
  /// Places nodes on a curve that bends towards the target: node i of `nodeCount` stands at the
  /// height i, and all edges end in the middle of the right side.
  static NodeLayoutData NodeLayout(std::size_t nodeCount);
  /// The weight of an edge, from 1 to 9: the smaller the significance, the heavier.
  static double WeightOfSig(double sig);
  /// Gives the guides of a template, in their order, the levels and conditions of `guides`; what
  /// the template has beyond that is taken out, and guides beyond the template's are left out.
  static void ApplyLineGuides(std::string& text, const LineGuideMap& guides);

 private:
  struct PairwiseChart;
  struct ContrastChart;

  /// The variable of this name, or null.
  VELT_Variable* FindVariable(const std::string& name) const;
  /// The variable of a coordinate's field, or null; null without a coordinate, too.
  VELT_Variable* FindVariable(const CoordinatesData* coordinates) const;

  /// The wording of a key, with its placeholders. Without a string table the key stands for itself.
  std::string LookUp(const char* key) const {
    return fpDictionary == nullptr ? key : fpDictionary->LookUp(key);
  }
  ChartString Translated(const char* key) const;
  /// A text of the output language in UTF-8.
  static std::string OutputText(const std::string& text);
  /// The text of a template file; empty when it cannot be read.
  static std::string TemplateFileText(const char* fileName);

  /// Sets the histogram of the target into a diagram. The diagram stays as it is when that cannot
  /// be done.
  void EmbedTargetHistogram(std::string& text) const;
  std::string HistogramText(XGlyphTemplate& glyphTemplate, std::size_t binCount) const;
  void EmbedInEditor(std::string& text, const std::string& histogram, VarDataProcessor& data) const;

  std::string TargetTooltip() const;
  /// The sources of a diagram: the target as one row, and the nodes and edges without rows.
  void AddTargetNode(VarDataProcessor& data, std::size_t nodeCount) const;
  void AddNodeAndEdgeSources(VarDataProcessor& data) const;
  void WriteNodePosition(VarDataProcessor& data,
                         int32_t row,
                         const NodePosition& position,
                         std::size_t nodeCount) const;
  void WriteEdgePosition(VarDataProcessor& data, int32_t row, const NodePosition& position) const;
  void WriteWeight(VarDataProcessor& data, int32_t row, double sig);
  /// Sends a diagram. Without `hideLegend` its legend shows the signs of the coefficients.
  void WriteDiagram(std::size_t nodeCount,
                    const char* titleKey,
                    VarDataProcessor& data,
                    bool hideLegend);

  std::vector<VELT_Variable*> EffectVariables(const EffectTestData& test) const;
  void WriteEffect(VarDataProcessor& data,
                   int32_t row,
                   const EffectTestData& test,
                   const NodePosition& position,
                   std::size_t nodeCount);
  void WriteCoefficient(VarDataProcessor& data,
                        int32_t row,
                        const ParamStatData& coefficient) const;
  void WriteIntercept(VarDataProcessor& data, int32_t row) const;
  void WriteTerm(VarDataProcessor& data, int32_t row, const ParamStatData& coefficient) const;

  void EmmeansChart(const EmmeansEstimData& means);

  ChartString CustomEffectsFootnote(const EmmeansData& emmeansData) const;
  void EditCustomEffects(std::string& text,
                         const EmmeansData& emmeansData,
                         const std::vector<VELT_Variable*>& variables) const;

  void PairwiseChartOutput(const EmmeansData& emmeansData);
  void EditPairwise(std::string& text,
                    const CompareCoordinates& coordinates,
                    const ChartString& title,
                    const ChartString& footnote) const;
  void LabelPairwise(XGraph& graph, const PairwiseChart& chart) const;

  void SendContrasts(const std::string& text,
                     const ContrastChart& chart,
                     const ChartString& title) const;
  void LabelContrasts(XGraph& graph, const ContrastChart& chart) const;
  void RelabelSignificance(XVariable* type) const;
  std::string PatternOfTarget(const char* key) const;
  ChartString ContrastCaption(const char* key, const ContrastChart& chart) const;
  ChartString ContrastFootnote(const EmmeansData& emmeansData) const;

  BpProcedure* fpProcedure;
  HFITOutputStats* fpHFITOutputStats;
  ProcedureDataSource* fpDataSource;
  std::unique_ptr<FacSTDictionary> fpDictionary;
  std::string fSourceName;
  std::string fPointSourceName = "pointSource";
  std::string fEdgeSourceName = "edgeSource";
  int32_t fTargetIndex = -1;
  std::string fTargetName;
  std::string fTargetLabel;  ///< escaped
  VELT_Format fTargetFormat = kPlainFormat;
  bool fTargetHasLabel = true;
  double fMissingValue = kSystemMissing;
  /// What the edges of both diagrams of a run have written so far.
  bool fEdgesWritten = false;
  double fMinWeight = 9.0;
  double fMaxWeight = 1.0;
  /// The parameters of the target's distribution, which the diagram of the effects sets.
  double fTargetMean = kSystemMissing;
  double fTargetShape = kSystemMissing;
  double fTargetRate = kSystemMissing;
  double fTargetR = kSystemMissing;
  double fTargetP = kSystemMissing;
};
