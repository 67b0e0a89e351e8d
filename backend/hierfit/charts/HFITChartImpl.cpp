#include "backend/hierfit/charts/HFITChartImpl.h"

#include <filesystem>

#include "host/files.h"

namespace {

/// The area of the path finder that the charts use.
constexpr int32_t kOutputArea = 3;

std::string LocalText(const char* text) {
  return XUtility::ChartStringFromLocalCodePage(text).toUTF8();
}

template <class Value>
const char* LabelOf(const VELT_Variable& variable, const Value& value) {
  const VELT_ValueLabels* labels = variable.GetValueLabels();
  return labels == nullptr ? nullptr : VELT_ValueLabelMap(labels).GetLabel(value);
}

}  // namespace

HFITChartImpl::HFITChartImpl(BpProcedure* procedure,
                             ProcedureDataSource* dataSource,
                             HFITOutputStats* outputStats)
    : fpProcedure(procedure), fpHFITOutputStats(outputStats), fpDataSource(dataSource) {
  if (const PathFinder* paths = PathFactory::getPathInstance(kOutputArea)) {
    const std::string path = paths->StringTablePath();
    fpDictionary = std::make_unique<FacSTDictionary>(path);
    fpDictionary->SetProcedure("Generalized Linear Mixed Models");
    fpDictionary->SetGlobalStringTable(path);
  }
  fSourceName = "source0";

  const BuildSettingsStruct* settings = fpHFITOutputStats->GetBuildSettings();
  if (settings == nullptr) return;
  fTargetIndex = settings->fTargetIndex;
  const VELT_Variable* target = fpDataSource->GetVariable(fTargetIndex);
  if (target == nullptr) return;
  fTargetFormat = target->GetFormat();
  fTargetName = LocalText(target->GetName().c_str());
  const char* label = target->GetLabel();
  fTargetHasLabel = label != nullptr;
  fTargetLabel = fTargetHasLabel ? LocalText(label) : fTargetName;
  EscapeChartText(fTargetLabel);
}

VELT_Variable* HFITChartImpl::FindVariable(const std::string& name) const {
  const int32_t index = fpDataSource->FindVarIndex(name, 0);
  return index < 0 ? nullptr : fpDataSource->GetVariable(index);
}

VELT_Variable* HFITChartImpl::FindVariable(const CoordinatesData* coordinates) const {
  return coordinates == nullptr ? nullptr : FindVariable(coordinates->fField);
}

const char* HFITChartImpl::ValueLabelText(const VELT_Variable& variable, double value) {
  return LabelOf(variable, value);
}

const char* HFITChartImpl::ValueLabelText(const VELT_Variable& variable, const std::string& value) {
  return LabelOf(variable, value);
}

ChartString HFITChartImpl::Translated(const char* key) const {
  return XUtility::ChartStringFromOLANG(LookUp(key).c_str());
}

std::string HFITChartImpl::OutputText(const std::string& text) {
  return XUtility::ChartStringFromOLANG(text.c_str()).toUTF8();
}

std::string HFITChartImpl::TemplateFileText(const char* fileName) {
  const PathFinder* paths = PathFactory::getPathInstance(kOutputArea);
  if (paths == nullptr) return {};
  const std::string path = paths->ResourcePath() + "template" +
                           static_cast<char>(std::filesystem::path::preferred_separator) + fileName;
  return FetchFile::fetch(path, true, true);
}
