// Predicted against observed values of the target, with the frequency of a point as transparency.
#include <algorithm>

#include "backend/hierfit/charts/ChartData.h"
#include "backend/hierfit/charts/ChartDocument.h"
#include "backend/hierfit/charts/HFITChartImpl.h"
#include "backend/hierfit/charts/TextEdits.h"

namespace {

/// With fewer cases than this the legend of the frequencies says nothing.
constexpr int32_t kCasesForLegend = 100;

enum { kX, kY, kFrequency, kVariableCount };

void WritePoints(VarDataProcessor& data,
                 const std::array<_varinfo, kVariableCount>& variables,
                 const PredByObservData& points,
                 std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    const auto row = static_cast<int32_t>(i);
    data.SetVariableValue(&variables[kX], row, points.fvObserved[i]);
    data.SetVariableValue(&variables[kY], row, points.fvStatistic[i]);
    data.SetVariableValue(&variables[kFrequency], row, points.fvFrequency[i]);
  }
}

void EditPredictedByObserved(std::string& text, const PredByObservData& points) {
  ReplaceFirst(text, "98.8", NumberText(points.fMaxValue));
  ReplaceFirst(text, "33.667", NumberText(points.fMinValue));
  if (points.fTotalFreq < kCasesForLegend) {
    InsertAhead(text, "id=\"legendStyle", " visible=\"false\" ");
  }
}

void SetFormat(XVariable* variable, const VELT_Format& format) {
  if (variable != nullptr) variable->setFormat(format);
}

}  // namespace

void HFITChartImpl::PredictedByObservedOutput() {
  const ModelDiagnostics* diagnostics = fpHFITOutputStats->GetModelDiagnostics();
  if (diagnostics == nullptr || diagnostics->fPredByObserved.fDescription.empty()) return;
  const PredByObservData& points = diagnostics->fPredByObserved;
  const std::size_t count =
      std::min({points.fvObserved.size(), points.fvStatistic.size(), points.fvFrequency.size()});

  XGlyphTemplate glyphTemplate;
  glyphTemplate.setTemplateInternalName("GLMMPredictedByObserved");
  VarDataProcessor data;
  const std::string frequencyLabel = Translated("E60352").toUTF8();
  const std::string predictedLabel = Translated("E61604").toUTF8();
  const ChartString title = Translated("Predicted by Observed");
  const ChartVariable variables[kVariableCount] = {
      {.name = "X", .label = fTargetLabel.c_str()},
      {.name = "Y", .label = predictedLabel.c_str()},
      {.name = "Frequency", .label = frequencyLabel.c_str(), .role = "Transparency"},
  };
  std::array<_varinfo, kVariableCount> handles;
  AddSource(data, fSourceName, static_cast<int32_t>(count), variables, handles);
  AddRoles(glyphTemplate, fSourceName, variables);
  glyphTemplate.addLabel(0, title.toUTF8());
  WritePoints(data, handles, points, count);

  std::string text = ConvertedText(glyphTemplate);
  EditPredictedByObserved(text, points);
  try {
    XDocument document(text);
    PrepareDocument(document);
    if (XGraph* graph = document.getExternalGraph()) {
      SetFormat(graph->getVariable("X", 0), fTargetFormat);
      SetFormat(graph->getVariable("Y", 0), fTargetFormat);
    }
    document.SetDescription(title.xc_str());
    document.SetChartData(&data);
    SendDocument(document);
  } catch (...) {
    // Whatever a document throws costs this chart and not the tables behind it.
  }
}
