// Simple and deviation contrasts: each category as a span from a reference level to its mean.
#include <algorithm>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "backend/hierfit/charts/ChartData.h"
#include "backend/hierfit/charts/ChartDocument.h"
#include "backend/hierfit/charts/CompareCoordinates.h"
#include "backend/hierfit/charts/HFITChartImpl.h"
#include "backend/hierfit/charts/TextEdits.h"

namespace {

constexpr char kSource[] = "source";
constexpr ChartVariable kVariables[] = {
    {.name = "value"},
    {.name = "category", .categorical = true},
    {.name = "type", .categorical = true},
    {.name = "facet1", .categorical = true},
    {.name = "facet2", .categorical = true},
    {.name = "confMargin"},
    {.name = "tooltip", .categorical = true},
};
enum { kValue, kCategory, kType, kFacet1, kFacet2, kConfMargin, kTooltip, kVariableCount };
static_assert(std::size(kVariables) == kVariableCount);

/// The wording of a chart by the kind of its contrasts.
struct ContrastKeys {
  int32_t kind;
  const char* title;
  const char* caption;
  const char* higher;
  const char* lower;
  const char* same;
};
constexpr ContrastKeys kContrastKeys[] = {
    {ContrastKind::kDeviation, "Deviation Contrasts", "Horizontal Line Deviation",
     "Deviation Higher", "Deviation Lower", "Deviation Same"},
    {ContrastKind::kSimple, "Simple Contrasts", "Horizontal Line Simple", "Simple Higher",
     "Simple Lower", "Simple Same"},
};

constexpr char kApproximateBounds[] = "Confidence interval bounds are approximate.";
struct AdjustmentKeys {
  int32_t adjustment;
  const char* text;
  const char* secondLine;  ///< null for none
};
constexpr AdjustmentKeys kAdjustmentKeys[] = {
    {Adjustment::kLeastSignificantDifference, "Least Significant significance adjust ^1", nullptr},
    {Adjustment::kSequentialBonferroni, "Sequential Bonferroni significance adjust ^1",
     kApproximateBounds},
    {Adjustment::kSequentialSidak, "Sequential Sidak significance adjust ^1", kApproximateBounds},
};

/// Coordinates in the ascending order of their fields, so that a key does not depend on the order
/// in which a table has its factors.
using LevelCoordinates = std::vector<const CoordinatesData*>;

LevelCoordinates SortedByField(LevelCoordinates coordinates) {
  std::ranges::stable_sort(coordinates, {}, &CoordinatesData::fField);
  return coordinates;
}

/// The values of a cell one behind the other. Of two coordinates of one field the first counts.
std::string LevelKey(const LevelCoordinates& coordinates, std::size_t cell) {
  std::string key;
  const CoordinatesData* last = nullptr;
  for (const CoordinatesData* factor : coordinates) {
    if (cell >= factor->fvValues.size()) continue;
    if (last != nullptr && last->fField == factor->fField) continue;
    key += factor->fvValues[cell];
    last = factor;
  }
  return key;
}

/// The means by the levels of their cells; the first cell of a key counts.
using MeanMap = std::unordered_map<std::string, std::string_view>;

MeanMap MeansByLevelKey(const EmmeansData& emmeansData) {
  constexpr std::size_t kMaxFactors = 3;
  const EmmeansEstimData& means = emmeansData.fEstimates;
  MeanMap byLevel;
  if (means.fvCoordinates.empty()) return byLevel;
  LevelCoordinates factors;
  for (const CoordinatesData& factor : means.fvCoordinates) {
    if (factors.size() < kMaxFactors) factors.push_back(&factor);
  }
  factors = SortedByField(std::move(factors));
  for (std::size_t cell = 0; cell < means.fvCoordinates.front().fvValues.size(); ++cell) {
    byLevel.try_emplace(LevelKey(factors, cell), ValueAt(&means.fMean, cell));
  }
  return byLevel;
}

/// The condition under which a guide is hidden: outside its panel.
std::string GuideCondition(const LineGuideData& guide) {
  const std::vector<std::string>& values = guide.fvFacetValues;
  if (values[0].empty()) return "false";
  const auto differs = [](const char* facet, const std::string& value) {
    return facet + ("!=&quot;" + EscapeXmlText(value)) + "&quot;";
  };
  std::string condition = differs("facet1", values[0]);
  if (!values[1].empty()) condition += "||" + differs("facet2", values[1]);
  return DocumentText(std::move(condition));
}

/// The first `literal` that lies between two places; npos when there is none.
std::size_t FindBetween(const std::string& text,
                        std::string_view literal,
                        std::size_t begin,
                        std::size_t end) {
  return std::string_view(text).substr(0, end).find(literal, begin);
}

/// Takes the guides that got no data out of the text: from the last one ahead of a place to the
/// end of the last of all.
void RemoveGuidesFrom(std::string& text, std::size_t place) {
  constexpr std::string_view kEnd = "</lineGuide>";
  const std::size_t begin = text.rfind("<lineGuide", place);
  const std::size_t end = text.rfind(kEnd);
  if (begin == std::string::npos || end == std::string::npos || end < begin) return;
  text.erase(begin, end + kEnd.size() - begin);
}

/// The label of a value, or the value itself, escaped. Empty without a variable.
std::string EscapedValue(const VELT_Variable* variable, const std::string& value) {
  if (variable == nullptr) return {};
  const char* label = IsString(variable)
                          ? HFITChartImpl::ValueLabelText(*variable, value)
                          : HFITChartImpl::ValueLabelText(*variable, NumberIn(value));
  std::string text = label == nullptr ? value : label;
  EscapeChartText(text);
  return text;
}

void SetPairOfVariable(VarDataProcessor& data,
                       const _varinfo& chartVariable,
                       std::size_t cell,
                       const std::string& value,
                       const VELT_Variable* variable) {
  if (IsString(variable)) {
    SetPairText(data, chartVariable, cell, value);
  } else {
    SetPair(data, chartVariable, cell, NumberIn(value), NumberIn(value));
  }
}

}  // namespace

/// The data of one chart while its contrasts are walked.
struct HFITChartImpl::ContrastChart {
  const EmmeansContrastData& contrasts;
  CompareCoordinates coordinates;
  VELT_Variable* compared;  ///< each variable is null when the dictionary does not have it
  VELT_Variable* facet1;
  VELT_Variable* facet2;
  std::string higher;  ///< patterns of a tooltip, with the target in place
  std::string lower;
  std::string same;
  std::string referenceText{};  ///< escaped
  MeanMap means;
  VarDataProcessor& data;
  std::array<_varinfo, kVariableCount> variables{};
  LineGuideMap guides{};

  void WriteRows() {
    AddSource(data, kSource, 0, kVariables, variables);
    LevelCoordinates level;
    for (const CoordinatesData* factor :
         {coordinates.facet1, coordinates.facet2, coordinates.first}) {
      if (factor != nullptr) level.push_back(factor);
    }
    level = SortedByField(std::move(level));
    for (std::size_t j = 0; j < coordinates.first->fvValues.size(); ++j) {
      const auto mean = means.find(LevelKey(level, j));
      WriteContrast(j, mean == means.end() ? 0.0 : NumberIn(mean->second));
    }
  }

  void WriteContrast(std::size_t j, double mean) {
    const double reference = ReferenceOf(j, mean);
    const std::string& category = coordinates.first->fvValues[j];
    const bool isSignificant =
        contrasts.fAdjustedSigLevel > NumberIn(ValueAt(&contrasts.fAdjustedSig, j));
    SetPair(data, variables[kValue], j, reference, mean);
    SetPairOfVariable(data, variables[kCategory], j, category, compared);
    const double type = isSignificant ? 1.0 : 0.0;
    SetPair(data, variables[kType], j, type, type);
    SetPairOfVariable(data, variables[kFacet1], j, ValueAt(coordinates.facet1, j), facet1);
    SetPairOfVariable(data, variables[kFacet2], j, ValueAt(coordinates.facet2, j), facet2);
    SetPair(data, variables[kConfMargin], j,
            reference + NumberIn(ValueAt(&contrasts.fConfIntervalLower, j)),
            reference + NumberIn(ValueAt(&contrasts.fConfIntervalUpper, j)));
    std::string tooltip = !isSignificant ? same : mean - reference > 0 ? higher : lower;
    ReplaceFirst(tooltip, "^2", EscapedValue(compared, category));
    ReplaceFirst(tooltip, "^3", referenceText);
    SetPairText(data, variables[kTooltip], j, OutputText(tooltip));
  }

  /// The reference level of a contrast's panel, which the first contrast of the panel gives.
  double ReferenceOf(std::size_t j, double mean) {
    const std::string& value1 = ValueAt(coordinates.facet1, j);
    const std::string& value2 = ValueAt(coordinates.facet2, j);
    const auto [guide, isNew] = guides.try_emplace(value1 + value2);
    if (isNew) {
      guide->second.fvFacetValues = {value1, value2};
      guide->second.fReferenceMean = mean - NumberIn(ValueAt(&contrasts.fContrastEstimate, j));
    }
    return guide->second.fReferenceMean;
  }

  /// Takes out the facets that the first panel does not have.
  void RemoveUnusedFacets(std::string& text) const {
    if (guides.empty()) return;
    const std::vector<std::string>& values = guides.begin()->second.fvFacetValues;
    if (values[0].empty()) {
      RemoveFaceting(text);
    } else if (values[1].empty()) {
      RemoveSecondFacet(text);
    }
  }
};

void HFITChartImpl::ContrastChartOutput(const EmmeansData& emmeansData) {
  const EmmeansContrastData& contrasts = emmeansData.fContrasts;
  if (contrasts.fContrastKind == ContrastKind::kPairwise) {
    PairwiseChartOutput(emmeansData);
    return;
  }
  const ContrastKeys* keys =
      std::ranges::find(kContrastKeys, contrasts.fContrastKind, &ContrastKeys::kind);
  if (keys == std::end(kContrastKeys)) return;
  if (contrasts.fvCoordinates.size() < 2 || emmeansData.fvOverallTests.empty()) return;
  if (fpHFITOutputStats->GetBuildSettings() == nullptr) return;

  const CompareCoordinates coordinates = CompareCoordinatesOf(contrasts);
  VarDataProcessor data;
  ContrastChart chart{.contrasts = contrasts,
                      .coordinates = coordinates,
                      .compared = FindVariable(coordinates.second),
                      .facet1 = FindVariable(coordinates.facet1),
                      .facet2 = FindVariable(coordinates.facet2),
                      .higher = PatternOfTarget(keys->higher),
                      .lower = PatternOfTarget(keys->lower),
                      .same = PatternOfTarget(keys->same),
                      .means = MeansByLevelKey(emmeansData),
                      .data = data};
  if (contrasts.fContrastKind == ContrastKind::kSimple) {
    chart.referenceText = EscapedValue(chart.compared, ValueAt(coordinates.second, 0));
  }
  chart.WriteRows();

  XGlyphTemplate glyphTemplate;
  glyphTemplate.setTemplateInternalName("GLMMSimpleContrasts");
  AddRoles(glyphTemplate, kSource, kVariables);
  std::string text = ConvertedText(glyphTemplate);
  const ChartString title = Translated(keys->title);
  ReplaceFirst(text, "TitleText", DocumentText(title));
  ReplaceFirst(text, "CaptionText", DocumentText(ContrastCaption(keys->caption, chart)));
  ReplaceFirst(text, "FootnoteText", DocumentText(ContrastFootnote(emmeansData)));
  ApplyLineGuides(text, chart.guides);
  chart.RemoveUnusedFacets(text);
  SendContrasts(text, chart, title);
}

void HFITChartImpl::SendContrasts(const std::string& text,
                                  const ContrastChart& chart,
                                  const ChartString& title) const {
  try {
    XDocument document(text);
    PrepareDocument(document);
    try {
      if (XGraph* graph = document.getExternalGraph()) LabelContrasts(*graph, chart);
    } catch (...) {
      // Whatever the variables throw leaves the rest of them as they are; the chart is sent.
    }
    document.SetChartData(&chart.data);
    document.SetDescription(title.xc_str());
    SendDocument(document);
  } catch (...) {
    // Whatever a document throws costs this chart and not the tables behind it.
  }
}

void HFITChartImpl::LabelContrasts(XGraph& graph, const ContrastChart& chart) const {
  if (chart.compared != nullptr) Relabel(graph.getVariable("category", 0), chart.compared);
  if (chart.facet1 != nullptr) RelabelWithPrefix(graph.getVariable("facet1", 0), chart.facet1);
  if (chart.facet2 != nullptr) RelabelWithPrefix(graph.getVariable("facet2", 0), chart.facet2);
  XVariable* type = graph.getVariable("type", 0);
  RelabelSignificance(type);
  if (type != nullptr) type->setLabel(Translated("E62317"));
}

void HFITChartImpl::RelabelSignificance(XVariable* type) const {
  if (type == nullptr) return;
  type->addRelabel(0.0, Translated("Not Significant"));
  type->addRelabel(1.0, Translated("Significant"));
}

/// The wording of a tooltip, with the target in its place.
std::string HFITChartImpl::PatternOfTarget(const char* key) const {
  std::string pattern = LookUp(key);
  ReplaceFirst(pattern, "^1", fTargetLabel);
  return pattern;
}

ChartString HFITChartImpl::ContrastCaption(const char* key, const ContrastChart& chart) const {
  const VELT_Variable* factor = FindVariable(chart.coordinates.first);
  std::string caption = LookUp(key);
  ReplaceEach(caption, "^1", fTargetLabel);
  ReplaceEach(caption, "^2",
              factor == nullptr ? std::string() : VariableChartLabel(*factor).toUTF8());
  ReplaceEach(caption, "^3", chart.referenceText);
  return XUtility::ChartStringFromOLANG(caption.c_str());
}

/// How the significances of the contrasts are adjusted; empty when they are not.
ChartString HFITChartImpl::ContrastFootnote(const EmmeansData& emmeansData) const {
  const AdjustmentKeys* keys =
      std::ranges::find(kAdjustmentKeys, fpHFITOutputStats->GetBuildSettings()->fPAdjustment,
                        &AdjustmentKeys::adjustment);
  if (keys == std::end(kAdjustmentKeys)) return {};
  std::string text = LookUp(keys->text);
  if (keys->secondLine != nullptr) text += "\n" + LookUp(keys->secondLine);
  ReplaceFirst(text, "^1", FormattedNumber(emmeansData.fContrasts.fAdjustedSigLevel, kPlainFormat));
  return XUtility::ChartStringFromOLANG(text.c_str());
}

void HFITChartImpl::ApplyLineGuides(std::string& text, const LineGuideMap& guides) {
  constexpr std::string_view kCondition = "whenText";
  std::size_t place = text.find("<lineGuide");
  if (place == std::string::npos) return;
  std::size_t unused = std::string::npos;
  for (const auto& [key, guide] : guides) {
    const std::size_t passed = place;
    place = text.find("y=", place);
    if (place == std::string::npos) return;
    if (unused == std::string::npos) unused = FindBetween(text, kCondition, passed, place);
    ReplaceAt(text, place, 3, 2, NumberText(guide.fReferenceMean));
    const std::string condition = GuideCondition(guide);
    place = ReplaceFirst(text, kCondition, condition, place);
    // What was put in is never searched again: a value of a facet may hold either literal. So the
    // next guide is sought behind it, and so is a condition that is left.
    if (place != std::string::npos) place += condition.size();
  }
  if (unused == std::string::npos) unused = text.find(kCondition, place);
  if (unused != std::string::npos) RemoveGuidesFrom(text, unused);
}
