// The distribution of the target, which a diagram carries inside.
#include <algorithm>
#include <memory>

#include "host/editor.h"

#include "backend/hierfit/charts/ChartData.h"
#include "backend/hierfit/charts/HFITChartImpl.h"
#include "backend/hierfit/charts/TextEdits.h"

namespace {

enum { kX, kY, kVariableCount };

constexpr int32_t kMaxFieldType = 5;
constexpr int32_t kUnknownFieldType = 6;

int32_t FieldTypeOf(const CFField& field) {
  const int32_t type = field.GetType();
  return type < 0 || type > kMaxFieldType ? kUnknownFieldType : type;
}

std::string NumberAttribute(const char* name, double number) {
  return std::string(" ") + name + "=\"" + NumberText(number) + "\" ";
}

}  // namespace

void HFITChartImpl::EmbedTargetHistogram(std::string& text) const {
  const ModelDiagnostics* diagnostics = fpHFITOutputStats->GetModelDiagnostics();
  if (fpHFITOutputStats->GetBuildSettings() == nullptr || diagnostics == nullptr) return;
  const TargetDistData& bins = diagnostics->fTargetDistribution;

  XGlyphTemplate glyphTemplate;
  glyphTemplate.setTemplateInternalName("GLMMHistogram");
  VarDataProcessor data;
  const ChartVariable variables[kVariableCount] = {
      {.name = "X", .format = &fTargetFormat, .label = fTargetName.c_str()},
      {.name = "Y"},
  };
  std::array<_varinfo, kVariableCount> handles;
  AddSource(data, fSourceName, 0, variables, handles);
  AddRoles(glyphTemplate, fSourceName, variables);
  const std::size_t binCount = std::min(bins.fvFrequency.size(), bins.fvObserved.size());
  for (std::size_t i = 0; i < binCount; ++i) {
    data.SetVariableValue(&handles[kX], static_cast<int32_t>(i), bins.fvObserved[i]);
    data.SetVariableValue(&handles[kY], static_cast<int32_t>(i), bins.fvFrequency[i]);
  }

  std::string histogram = HistogramText(glyphTemplate, binCount);
  XDocument document(histogram);
  document.applyStyleTemplate();
  histogram = document.AsUTF8();
  EmbedInEditor(text, histogram, data);
}

/// The histogram's document with the number of its bins, and the target's distribution in place of
/// the normal one.
std::string HFITChartImpl::HistogramText(XGlyphTemplate& glyphTemplate,
                                         std::size_t binCount) const {
  struct DistributionWord {
    int32_t distribution;
    const char* word;
    double HFITChartImpl::*parameter;
    double HFITChartImpl::*secondaryParameter;  ///< null for none
  };
  static constexpr DistributionWord kWords[] = {
      {Distribution::kGamma, "gamma", &HFITChartImpl::fTargetShape, &HFITChartImpl::fTargetRate},
      {Distribution::kInverseGaussian, "gaussianinverse", &HFITChartImpl::fTargetMean,
       &HFITChartImpl::fTargetShape},
      {Distribution::kNegativeBinomial, "binomialnegative", &HFITChartImpl::fTargetR,
       &HFITChartImpl::fTargetP},
      {Distribution::kPoisson, "poisson", &HFITChartImpl::fTargetMean, nullptr},
  };

  std::string text = ConvertedText(glyphTemplate);
  constexpr std::string_view kBins = "binStatistic";
  const std::size_t bins = text.find(kBins);
  if (bins == std::string::npos) return text;
  InsertAt(text, bins, kBins.size(), " binCount=\"" + std::to_string(binCount) + "\" ");

  const DistributionWord* row =
      std::ranges::find(kWords, fpHFITOutputStats->GetBuildSettings()->fDistribution,
                        &DistributionWord::distribution);
  if (row == std::end(kWords)) return text;
  ReplaceFirst(text, "normal", row->word, bins);
  std::string attributes = NumberAttribute("parameter", this->*row->parameter);
  if (row->secondaryParameter != nullptr) {
    attributes += NumberAttribute("secondaryParameter", this->*row->secondaryParameter);
  }
  InsertBehind(text, "<distributionStatistic", attributes);
  return text;
}

/// Has the headless editor set the histogram with its data into the diagram.
void HFITChartImpl::EmbedInEditor(std::string& text,
                                  const std::string& histogram,
                                  VarDataProcessor& data) const {
  const CFMetaData* metaData = fpHFITOutputStats->GetMetaData();
  const CFField* field = metaData == nullptr ? nullptr : metaData->GetField(fTargetIndex);
  if (field == nullptr) return;
  const int32_t fieldType = FieldTypeOf(*field);

  VeltJVM& machine = VeltJVM::GetInstance();
  if (!machine.IsStarted()) machine.StartJVM();
  if (!machine.IsStarted()) return;
  JNIEnvironment* environment = nullptr;
  machine.AttachCurrentThread(&environment);
  GlyphEditor& editor = GlyphEditor::GetInstance();
  if (!editor.IsStartedHeadless()) editor.StartEditorHeadless(machine.GetEnv());

  try {
    int32_t length = 0;
    const std::unique_ptr<char[]> stream(data.GetDataStream(length));
    if (stream == nullptr || length < 0) return;
    std::string embedded =
        editor.EmbedHistogramInGraph(text, histogram, stream.get(), length, fieldType);
    if (!embedded.empty()) text = std::move(embedded);
  } catch (const JNIException&) {
    // The machine's own failure: the diagram goes without its histogram.
  } catch (...) {
    // Any other failure of the editor does the same.
  }
}
