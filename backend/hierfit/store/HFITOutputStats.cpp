// The store: its life, the map of the variables and the look-up in the string maps.
#include "backend/hierfit/store/HFITOutputStats.h"

#include <algorithm>

HFITOutputStats::HFITOutputStats() : fpParserMessage(std::make_unique<ParserMessage>()) {
  fpParserMessage->SetCommandName("HIERFIT");
  fpParserMessage->SetProcedureTitle("Generalized Linear Mixed Models");
}

HFITOutputStats::~HFITOutputStats() {
  fpParserMessage.reset();
  fpVarList.reset();
  fpBuildSettings.reset();
  fpModelDiagnostics.reset();
  fpStructuredData.reset();
  fpClassifMatrixData.reset();
  fpEffectStatData.reset();
  fpParamCollect.reset();
  fpEmmeansEstimList.reset();
  fpEmmeansList.reset();
  ClearStringMapCollect();
}

VarMapInfo* HFITOutputStats::BuildVarMap() {
  fVarMapInfo = {};
  if (fpVarList == nullptr || fpMetaData == nullptr) return &fVarMapInfo;

  const auto variableCount = static_cast<std::size_t>(std::max(fpVarList->Size(), 0));
  const auto fieldCount = static_cast<std::size_t>(std::max(fpMetaData->FieldCount(), 0));
  fVarMapInfo.fvFieldToVar.assign(fieldCount, -1);
  fVarMapInfo.fvVarToField.assign(variableCount, -1);
  fVarMapInfo.fvIsCategorical.assign(variableCount, false);
  fVarMapInfo.fvLevelCounts.assign(variableCount, 0);

  std::string name;
  for (std::size_t i = 0; i < variableCount; ++i) {
    const auto position = static_cast<int32_t>(i);
    const IMCVariable* variable = fpVarList->GetVarAt(position);
    if (variable == nullptr) continue;  // it stays without a field
    variable->FieldName(name);
    const int32_t field = fpMetaData->GetFieldIndex(name);
    if (field >= 0 && static_cast<std::size_t>(field) < fieldCount) {
      fVarMapInfo.fvFieldToVar[static_cast<std::size_t>(field)] = position;
      fVarMapInfo.fvVarToField[i] = field;
    }
    const int32_t measure = variable->MeasureCode();
    fVarMapInfo.fvIsCategorical[i] = measure == 2 || measure == 3;
    if (fVarMapInfo.fvIsCategorical[i]) fVarMapInfo.fvLevelCounts[i] = variable->LevelCount();
  }
  return &fVarMapInfo;
}

bool HFITOutputStats::HasWarning(std::string_view key) const {
  return ::HasWarning(fvWarningList, key);
}

StringMapCollect* HFITOutputStats::NewStringMapCollect() {
  fStringMapIndex.clear();
  return Renew(fpStringMapCollect);
}

void HFITOutputStats::ClearStringMapCollect() {
  fStringMapIndex.clear();
  fpStringMapCollect.reset();
}

int32_t HFITOutputStats::FindMapEntry(int32_t mapId,
                                      const std::string& name,
                                      RegressionParamData& regressionParamData) const {
  const RegressionParamData* term = nullptr;
  const int32_t outcome = FindTerm(mapId, name, term);
  if (outcome == 0) regressionParamData = *term;
  return outcome;
}

void HFITOutputStats::IndexStringMaps() const {
  for (const StringMapData& map : *fpStringMapCollect) {
    const auto [terms, isFirst] = fStringMapIndex.try_emplace(map.fMapId);
    if (!isFirst) continue;
    terms->second.reserve(map.fvEntries.size());
    for (const MapEntryData& entry : map.fvEntries) {
      terms->second.try_emplace(entry.fName, &entry.fRegressionParam);
    }
  }
}

int32_t HFITOutputStats::FindTerm(int32_t mapId,
                                  std::string_view name,
                                  const RegressionParamData*& regressionParamData) const {
  if (fpStringMapCollect == nullptr || fpStringMapCollect->empty()) return 1;
  if (fStringMapIndex.empty()) IndexStringMaps();
  const auto terms = fStringMapIndex.find(mapId);
  if (terms == fStringMapIndex.end()) return 2;
  const auto term = terms->second.find(name);
  if (term == terms->second.end()) return 3;
  regressionParamData = term->second;
  return 0;
}

std::string HFITOutputStats::GetTranslatedText(const std::string& key,
                                               const char* p1,
                                               const char* p2,
                                               const char* p3,
                                               const char* p4,
                                               const char* p5) const {
  return fpParserMessage->GetTranslatedText(key, p1, p2, p3, p4, p5);
}
