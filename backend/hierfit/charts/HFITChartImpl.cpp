#include "backend/hierfit/charts/HFITChartImpl.h"

#include <filesystem>

#include "host/files.h"

namespace {

/// The area of the path finder that the charts use.
constexpr int32_t kOutputArea = 3;

std::string LocalText(const char* text) {
  return XUtility::ChartStringFromLocalCodePage(text).toUTF8();
}

}  // namespace

HFITChartImpl::HFITChartImpl(BpProcedure* procedure,
                             ProcedureDataSource* dataSource,
                             HFITOutputStats* outputStats)
    : fpProcedure(procedure), fpHFITOutputStats(outputStats), fpDataSource(dataSource) {
  const std::string path = PathFactory::getPathInstance(kOutputArea)->StringTablePath();
  fpDictionary = std::make_unique<FacSTDictionary>(path);
  fpDictionary->SetProcedure("Generalized Linear Mixed Models");
  fpDictionary->SetGlobalStringTable(path);
  fSourceName = "source0";

  const BuildSettingsStruct* settings = fpHFITOutputStats->GetBuildSettings();
  if (settings == nullptr) return;
  fTargetIndex = settings->fTargetIndex;
  const VELT_Variable* target = fpDataSource->GetVariable(fTargetIndex);
  if (target == nullptr) return;
  fTargetFormat = target->GetFormat();
  fTargetName = LocalText(target->GetName().c_str());
  fTargetHasLabel = target->GetLabel() != nullptr;
  fTargetLabel = fTargetHasLabel ? LocalText(target->GetLabel()) : fTargetName;
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
  return VELT_ValueLabelMap(variable.GetValueLabels()).GetLabel(value);
}

const char* HFITChartImpl::ValueLabelText(const VELT_Variable& variable, const std::string& value) {
  return VELT_ValueLabelMap(variable.GetValueLabels()).GetLabel(value);
}

ChartString HFITChartImpl::Translated(const char* key) const {
  return XUtility::ChartStringFromOLANG(LookUp(key).c_str());
}

std::string HFITChartImpl::OutputText(const std::string& text) {
  return XUtility::ChartStringFromOLANG(text.c_str()).toUTF8();
}

std::string HFITChartImpl::TemplateFileText(const char* fileName) {
  const std::string path = PathFactory::getPathInstance(kOutputArea)->ResourcePath() + "template" +
                           static_cast<char>(std::filesystem::path::preferred_separator) + fileName;
  return FetchFile::fetch(path, true, true);
}
