// The means of the top significant effects: one chart an effect.
#include <string_view>
#include <unordered_set>

#include "backend/hierfit/charts/ChartData.h"
#include "backend/hierfit/charts/ChartDocument.h"
#include "backend/hierfit/charts/HFITChartImpl.h"
#include "backend/hierfit/charts/TextEdits.h"

namespace {

constexpr int kMaxCharts = 11;

enum { kEffect1, kEffect2, kTarget, kConfMargin, kVariableCount };

/// One factor of a chart: its values, its variable and the text that it goes by.
struct ChartFactor {
  const CoordinatesData* coordinates = nullptr;  ///< null when the effect has no such factor
  VELT_Variable* variable = nullptr;             ///< null when the dictionary does not have it
  std::string text;                              ///< its label, or its field's name
  VELT_Format format{};

  const VELT_Format* Format() const { return variable == nullptr ? nullptr : &format; }
};

ChartFactor FactorOf(const CoordinatesData& coordinates, VELT_Variable* variable) {
  ChartFactor factor{.coordinates = &coordinates, .variable = variable, .text = coordinates.fField};
  if (variable == nullptr) return factor;
  factor.format = variable->GetFormat();
  if (const char* label = variable->GetLabel()) factor.text = label;
  return factor;
}

using Handles = std::array<_varinfo, kVariableCount>;

/// Two rows a mean, one with the lower and one with the upper bound.
void WriteMeans(VarDataProcessor& data,
                const Handles& variables,
                const EmmeansEstimData& means,
                const ChartFactor& first,
                const ChartFactor& second) {
  for (std::size_t i = 0; i < first.coordinates->fvValues.size(); ++i) {
    const std::string& value = first.coordinates->fvValues[i];
    if (IsString(first.variable)) {
      SetPairText(data, variables[kEffect1], i, value);
    } else {
      SetPairNumberOrText(data, variables[kEffect1], i, value);
    }
    if (second.coordinates != nullptr && i < second.coordinates->fvValues.size()) {
      SetPairNumberOrText(data, variables[kEffect2], i, second.coordinates->fvValues[i]);
    }
    if (i >= means.fMean.fvValues.size()) continue;
    const double mean = NumberIn(means.fMean.fvValues[i]);
    SetPair(data, variables[kTarget], i, mean, mean);
    SetPair(data, variables[kConfMargin], i, NumberIn(ValueAt(&means.fConfIntervalLower, i)),
            NumberIn(ValueAt(&means.fConfIntervalUpper, i)));
  }
}

void RelabelFactor(XDocument& document, const char* name, VELT_Variable* variable) {
  if (variable == nullptr) return;
  try {
    if (XGraph* graph = document.getExternalGraph()) Relabel(graph->getVariable(name, 0), variable);
  } catch (...) {
    // Whatever is thrown here costs the labels of this factor alone; the chart is sent.
  }
}

}  // namespace

void HFITChartImpl::EmmeansChartsOutput() {
  const BuildSettingsStruct* settings = fpHFITOutputStats->GetBuildSettings();
  const EmmeansEstimList* blocks = fpHFITOutputStats->GetEmmeansEstimList();
  if (settings == nullptr || settings->fvFixedEffectList.empty() || blocks == nullptr) return;

  // The heading stays open while the charts are written.
  const BpHeading heading = fpProcedure->Heading(
      BpString("Estimated Marginal Means for Top Significant Fixed Effects", true));
  std::unordered_set<std::string_view> effectFields;
  for (const EffectStruct& effect : settings->fvFixedEffectList) {
    effectFields.insert(effect.fvFieldNames.begin(), effect.fvFieldNames.end());
  }
  int chartCount = 0;
  for (const EmmeansEstimData& means : *blocks) {
    if (chartCount == kMaxCharts) break;
    if (means.fvCoordinates.empty() || !effectFields.contains(means.fvCoordinates.front().fField)) {
      continue;
    }
    EmmeansChart(means);
    ++chartCount;
  }
}

void HFITChartImpl::EmmeansChart(const EmmeansEstimData& means) {
  const std::vector<CoordinatesData>& coordinates = means.fvCoordinates;
  const ChartFactor first = FactorOf(coordinates[0], FindVariable(coordinates[0].fField));
  const ChartFactor second = coordinates.size() < 2
                                 ? ChartFactor()
                                 : FactorOf(coordinates[1], FindVariable(coordinates[1].fField));
  std::string titleText = LookUp("^1 by ^2");
  ReplaceFirst(titleText, "^1", fTargetLabel);
  ReplaceFirst(titleText, "^2",
               second.variable == nullptr ? first.text : first.text + " * " + second.text);
  const ChartString title = XUtility::ChartStringFromOLANG(titleText.c_str());

  XGlyphTemplate glyphTemplate;
  glyphTemplate.setTemplateInternalName("GLMMEmMeans");
  glyphTemplate.addLabel(0, title.toUTF8());
  VarDataProcessor data;
  const ChartVariable variables[kVariableCount] = {
      {"effect1", true, first.Format(), first.text.c_str(), "effect1Label"},
      {"effect2", true, second.Format(), second.text.c_str()},
      {"target", false, &fTargetFormat, fTargetLabel.c_str()},
      {"confMargin", false, &fTargetFormat, fTargetLabel.c_str()},
  };
  Handles handles;
  AddSource(data, fSourceName, 0, variables, handles);
  AddRoles(glyphTemplate, fSourceName, variables);
  WriteMeans(data, handles, means, first, second);

  std::string text = ConvertedText(glyphTemplate);
  ReplaceFirst(text, "YAxisLabel", DocumentText(fTargetLabel));
  if (second.variable == nullptr) EraseFromThrough(text, "<legend", "</legend>");

  XDocument document(text);
  PrepareDocument(document);
  RelabelFactor(document, "effect1", first.variable);
  RelabelFactor(document, "effect2", second.variable);
  document.SetDescription(title.xc_str());
  document.SetChartData(&data);
  SendDocument(document);
}
