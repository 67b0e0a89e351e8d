// The means of one requested effect over up to three factors.
#include <algorithm>

#include "backend/hierfit/charts/ChartData.h"
#include "backend/hierfit/charts/ChartDocument.h"
#include "backend/hierfit/charts/HFITChartImpl.h"
#include "backend/hierfit/charts/TextEdits.h"
#include "backend/hierfit/store/EngineMessages.h"

namespace {

constexpr char kSource[] = "source_0";
/// What the engine reports of an effect that cannot be drawn.
constexpr const char* kNoChartWarnings[] = {kGLMM_C20, kGLMM_C25};

enum { kTargetValue, kEffect1, kEffect2, kEffect3, kConfMargin, kVariableCount };
constexpr std::size_t kMaxFactors = 3;

using Handles = std::array<_varinfo, kVariableCount>;

/// The bounds of a cell, each where it is a number; a lone upper bound stands in both rows.
void WriteBounds(VarDataProcessor& data,
                 const _varinfo& variable,
                 const EmmeansEstimData& means,
                 std::size_t cell) {
  double lower = 0.0;
  double upper = 0.0;
  const bool hasLower = ParseNumber(ValueAt(&means.fConfIntervalLower, cell), lower);
  const bool hasUpper = ParseNumber(ValueAt(&means.fConfIntervalUpper, cell), upper);
  if (hasUpper) {
    SetPair(data, variable, cell, hasLower ? lower : upper, upper);
  } else if (hasLower) {
    data.SetVariableValue(&variable, static_cast<int32_t>(2 * cell), lower);
  }
}

/// Two rows a cell. A cell without a mean leaves its rows empty.
void WriteCells(VarDataProcessor& data, const Handles& variables, const EmmeansEstimData& means) {
  const std::vector<CoordinatesData>& factors = means.fvCoordinates;
  for (std::size_t cell = 0; cell < factors.front().fvValues.size(); ++cell) {
    double mean = 0.0;
    if (!ParseNumber(ValueAt(&means.fMean, cell), mean)) continue;
    SetPair(data, variables[kTargetValue], cell, mean, mean);
    WriteBounds(data, variables[kConfMargin], means, cell);
    for (std::size_t k = 0; k < kMaxFactors; ++k) {
      const CoordinatesData* factor = k < factors.size() ? &factors[k] : nullptr;
      SetPairNumberOrText(data, variables[kEffect1 + k], cell, ValueAt(factor, cell));
    }
  }
}

/// A factor with an order, or with categories, is drawn by category; any other along an axis.
void LabelFirstFactor(XVariable* chartVariable, VELT_Variable* variable) {
  if (chartVariable == nullptr) return;
  chartVariable->setLabel(VariableChartLabel(*variable));
  const int32_t level = variable->GetMeasurementLevel();
  const bool isCategorical = level == 1 || level == 2;
  chartVariable->setCategorical(isCategorical);
  if (!isCategorical) return;
  chartVariable->setVELTVariable(variable);
  chartVariable->addRelabels();
}

void LabelFactors(XDocument& document, const std::vector<VELT_Variable*>& variables) {
  XGraph* graph = document.getExternalGraph();
  if (graph == nullptr) return;
  const std::size_t nVar = variables.size();
  if (nVar >= 1) LabelFirstFactor(graph->getVariable("effect1", 0), variables[0]);
  if (nVar >= 2) Relabel(graph->getVariable("effect2", 0), variables[1]);
  if (nVar >= 3) RelabelWithPrefix(graph->getVariable("effect3", 0), variables[2]);
}

/// Takes out what only a second factor needs.
void RemoveSecondFactor(std::string& text) {
  EraseFromThrough(text, "<color", "/>");
  EraseFromThrough(text, "<legend id=\"legend\">", "</legend>");
  ReplaceAt(text, text.find("75%"), 0, 2, "99");
}

}  // namespace

void HFITChartImpl::CustomEffectsOutput(const EmmeansData& emmeansData) {
  if (fpHFITOutputStats->GetBuildSettings() == nullptr) return;
  if (std::ranges::any_of(kNoChartWarnings, [&](const char* key) {
        return HasWarning(emmeansData.fvWarningList, key);
      })) {
    return;
  }
  const EmmeansEstimData& means = emmeansData.fEstimates;
  if (means.fvCoordinates.empty()) return;
  std::vector<VELT_Variable*> factors;
  for (const CoordinatesData& coordinates : means.fvCoordinates) {
    VELT_Variable* variable = FindVariable(coordinates.fField);
    if (variable != nullptr) factors.push_back(variable);
  }

  const ChartVariable variables[kVariableCount] = {
      {.name = "targetValue", .format = &fTargetFormat, .label = fTargetLabel.c_str()},
      {.name = "effect1", .categorical = true},
      {.name = "effect2", .categorical = true},
      {.name = "effect3", .categorical = true},
      {.name = "confMargin", .format = &fTargetFormat, .label = fTargetLabel.c_str()},
  };
  VarDataProcessor data;
  Handles handles;
  AddSource(data, kSource, 0, variables, handles);
  WriteCells(data, handles, means);

  XGlyphTemplate glyphTemplate;
  glyphTemplate.setTemplateInternalName("GLMMCustomEffects");
  AddRoles(glyphTemplate, kSource, variables);
  std::string text = ConvertedText(glyphTemplate);
  if (text.empty()) return;
  const ChartString description = Translated("Estimated Means: Custom Effects");
  EditCustomEffects(text, emmeansData, factors);

  XDocument document(text);
  PrepareDocument(document);
  document.applyCTemplate(false);
  document.SetChartData(&data);
  document.SetDescription(description.xc_str());
  try {
    LabelFactors(document, factors);
  } catch (...) {
    // Whatever the variables throw leaves the rest of them as they are; the chart is sent.
  }
  SendDocument(document);
}

void HFITChartImpl::EditCustomEffects(std::string& text,
                                      const EmmeansData& emmeansData,
                                      const std::vector<VELT_Variable*>& variables) const {
  const std::size_t nCoord = emmeansData.fEstimates.fvCoordinates.size();
  ReplaceFirst(text, ">TitleText", ">" + OutputText("Estimates"));
  ReplaceFirst(text, "FootnoteText", DocumentText(CustomEffectsFootnote(emmeansData)));
  const std::string factorLabel =
      variables.empty() ? std::string() : DocumentText(VariableChartLabel(*variables.front()));
  const std::size_t tooltip = ReplaceFirst(text, "popup1", factorLabel);
  ReplaceFirst(text, "popup2", DocumentText(Translated("Estimated Mean")), tooltip);
  if (nCoord < 3) RemoveFaceting(text);
  if (nCoord < 2) RemoveSecondFactor(text);
}

/// The continuous predictors with the values that the means are taken at; empty without any. A
/// predictor without a value is left out, as in the table's caption.
ChartString HFITChartImpl::CustomEffectsFootnote(const EmmeansData& emmeansData) const {
  std::string list;
  for (const EmmeansLabelData& label : emmeansData.fvLabels) {
    const OBS* value = label.fValue.GetObsValue();
    if (value == nullptr) continue;
    const VELT_Variable* variable = FindVariable(label.fFieldName);
    const VELT_Format format = variable == nullptr ? kPlainFormat : variable->GetFormat();
    if (!list.empty()) list += ", ";
    list += EscapeXmlText(label.fFieldName) + " = " + EscapeXmlText(ToString(value, format));
  }
  if (list.empty()) return {};

  constexpr char kPlace[] = "999";
  std::string pattern = LookUp("Continuous predictors fixed at [%1=%2:,^1=^2:]1");
  ReplaceFirst(pattern, "[%1=%2:,^1=^2:]1", kPlace);
  ChartString footnote = XUtility::ChartStringFromOLANG(pattern.c_str());
  footnote.replaceSubstring(ChartString(kPlace),
                            XUtility::ChartStringFromLocalCodePage(list.c_str()));
  return footnote;
}
