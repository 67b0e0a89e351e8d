// The results store: everything read from the two documents, and the texts made from it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "host/framework.h"
#include "host/pmml.h"
#include "host/string_table.h"

#include "backend/hierfit/store/BuildSettings.h"
#include "backend/hierfit/store/Emmeans.h"
#include "backend/hierfit/store/Matrix.h"
#include "backend/hierfit/store/ModelDiagnostics.h"
#include "backend/hierfit/store/ParamEstimates.h"
#include "backend/hierfit/store/StringMaps.h"
#include "backend/hierfit/store/StructuredData.h"
#include "backend/hierfit/store/VarMapInfo.h"
#include "backend/hierfit/store/Warning.h"

/// The one object that the reader fills and the writers read. For a record that the documents do
/// not have, `Get...` gives null; it never makes one. `New...` puts a fresh record in place of the
/// one that is there and is the only way a record comes into being; without memory for it the
/// result is null, and no record is there. `Clear...` leaves none. Pointers that it hands out live
/// as long as their record.
class HFITOutputStats {
 public:
  HFITOutputStats();
  ~HFITOutputStats();
  HFITOutputStats(const HFITOutputStats&) = delete;
  HFITOutputStats& operator=(const HFITOutputStats&) = delete;

  /// The metadata of the fields, which the framework owns.
  const CFMetaData* GetMetaData() const { return fpMetaData; }
  void SetMetaData(const CFMetaData* metaData) { fpMetaData = metaData; }

  MCVarList* GetVarList() { return fpVarList.get(); }
  const MCVarList* GetVarList() const { return fpVarList.get(); }
  MCVarList* NewVarList() { return Renew(fpVarList); }
  void ClearVarList() { fpVarList.reset(); }

  /// The map of the variables, empty until `BuildVarMap`; never null.
  VarMapInfo* GetVarMapInfo() { return &fVarMapInfo; }
  const VarMapInfo* GetVarMapInfo() const { return &fVarMapInfo; }
  /// Fills the map from the variable list and the metadata, and gives its address. A variable that
  /// is no metadata field stays without a field.
  VarMapInfo* BuildVarMap();

  BuildSettingsStruct* GetBuildSettings() { return fpBuildSettings.get(); }
  const BuildSettingsStruct* GetBuildSettings() const { return fpBuildSettings.get(); }
  BuildSettingsStruct* NewBuildSettings() { return Renew(fpBuildSettings); }
  void ClearBuildSettings() { fpBuildSettings.reset(); }

  ModelDiagnostics* GetModelDiagnostics() { return fpModelDiagnostics.get(); }
  const ModelDiagnostics* GetModelDiagnostics() const { return fpModelDiagnostics.get(); }
  ModelDiagnostics* NewModelDiagnostics() { return Renew(fpModelDiagnostics); }
  void ClearModelDiagnostics() { fpModelDiagnostics.reset(); }

  StructuredData* GetStructuredData() { return fpStructuredData.get(); }
  const StructuredData* GetStructuredData() const { return fpStructuredData.get(); }
  StructuredData* NewStructuredData() { return Renew(fpStructuredData); }
  void ClearStructuredData() { fpStructuredData.reset(); }

  ClassifMatrixData* GetClassifMatrixData() { return fpClassifMatrixData.get(); }
  const ClassifMatrixData* GetClassifMatrixData() const { return fpClassifMatrixData.get(); }
  ClassifMatrixData* NewClassifMatrixData() { return Renew(fpClassifMatrixData); }
  void ClearClassifMatrixData() { fpClassifMatrixData.reset(); }

  EffectStatData* GetEffectStatData() { return fpEffectStatData.get(); }
  const EffectStatData* GetEffectStatData() const { return fpEffectStatData.get(); }
  EffectStatData* NewEffectStatData() { return Renew(fpEffectStatData); }
  void ClearEffectStatData() { fpEffectStatData.reset(); }

  ParamCollect* GetParamCollect() { return fpParamCollect.get(); }
  const ParamCollect* GetParamCollect() const { return fpParamCollect.get(); }
  ParamCollect* NewParamCollect() { return Renew(fpParamCollect); }
  void ClearParamCollect() { fpParamCollect.reset(); }

  EmmeansEstimList* GetEmmeansEstimList() { return fpEmmeansEstimList.get(); }
  const EmmeansEstimList* GetEmmeansEstimList() const { return fpEmmeansEstimList.get(); }
  EmmeansEstimList* NewEmmeansEstimList() { return Renew(fpEmmeansEstimList); }

  EmmeansList* GetEmmeansList() { return fpEmmeansList.get(); }
  const EmmeansList* GetEmmeansList() const { return fpEmmeansList.get(); }
  EmmeansList* NewEmmeansList() { return Renew(fpEmmeansList); }

  /// The messages of the document; never null.
  std::vector<WarningData>* GetWarningList() { return &fvWarningList; }
  const std::vector<WarningData>* GetWarningList() const { return &fvWarningList; }
  /// Whether the engine reported a message of this key for the document.
  bool HasWarning(std::string_view key) const;

  StringMapCollect* GetStringMapCollect() { return fpStringMapCollect.get(); }
  const StringMapCollect* GetStringMapCollect() const { return fpStringMapCollect.get(); }
  StringMapCollect* NewStringMapCollect();
  void ClearStringMapCollect();
  /// Copies the term of the first entry of this name in the first map of this id. Gives 0, or 1
  /// when there are no maps, 2 when there is no such map, 3 when it has no such entry; the term
  /// stays as it is then. The maps must not change after the first call.
  int32_t FindMapEntry(int32_t mapId,
                       const std::string& name,
                       RegressionParamData& regressionParamData) const;

  /// The key's text in the output language with its parameters, each of which may be null.
  std::string GetTranslatedText(const std::string& key,
                                const char* p1 = nullptr,
                                const char* p2 = nullptr,
                                const char* p3 = nullptr,
                                const char* p4 = nullptr,
                                const char* p5 = nullptr) const;

  /// The name of an effect of a random block, as in "a * b(c)"; with an intercept that is effect 0
  /// and the others follow. False, with an empty text, for an effect that the block does not have.
  bool GetEffectText(const RandomSpec& randomSpec, uint32_t effectIndex, std::string& text) const;
  /// The name of a term, as in "x*x*[a=1]"; empty for a term of nothing. Always true.
  bool GetRegressionParamText(const RegressionParamData& regressionParamData,
                              std::string& text) const;
  /// The text that a list within a label stands for: that of its map entry, else its pattern.
  /// False, with the text as it was, when the map has no such entry.
  bool GetPrintableText(const PrintableListData& printableListData, std::string& text) const;
  /// The text of a label, with its key and the parameters that went into it. `block` is the number
  /// of the random block, -1 for the residual effect. A list with a map fills nothing; with more
  /// than two parameters the text stays as it was. False for a "VarOfEffect" that names no effect
  /// of the block; its text then lacks the parameter.
  bool GetPrintableListText(const PrintableListData& printableListData,
                            int32_t block,
                            std::string& key,
                            std::vector<std::string>& vParameters,
                            std::string& text) const;

  /// Names of codes of the build settings: keys of the string table, or with `translate` their
  /// texts in the output language. "Unknown" for a code without a name, and for a link that the
  /// distribution does not know.
  std::string DistributionName(int32_t distribution, bool translate) const;
  std::string LinkFunctionName(int32_t link, int32_t distribution, bool translate) const;
  std::string CovarianceTypeName(int32_t covarianceType, bool translate) const;

 private:
  /// Terms by name within each map; the names are those of the collection.
  using TermsByName = std::unordered_map<std::string_view, const RegressionParamData*>;

  /// Null, and no record, when there is no memory for one.
  template <class Record>
  static Record* Renew(std::unique_ptr<Record>& member) {
    member.reset();
    try {
      member = std::make_unique<Record>();
    } catch (const std::bad_alloc&) {
      // The caller tells what follows.
    }
    return member.get();
  }

  /// The text of an effect of a random block, by numbers that a document gives. False without it.
  bool GetBlockEffectText(const std::string& effectNumber, int32_t block, std::string& text) const;
  std::string NameText(std::string_view key, bool translate) const;
  void IndexStringMaps() const;
  int32_t FindTerm(int32_t mapId,
                   std::string_view name,
                   const RegressionParamData*& regressionParamData) const;

  std::unique_ptr<ParserMessage> fpParserMessage;
  const CFMetaData* fpMetaData = nullptr;
  std::unique_ptr<MCVarList> fpVarList;
  VarMapInfo fVarMapInfo;
  std::unique_ptr<BuildSettingsStruct> fpBuildSettings;
  std::unique_ptr<ModelDiagnostics> fpModelDiagnostics;
  std::unique_ptr<StructuredData> fpStructuredData;
  std::unique_ptr<ClassifMatrixData> fpClassifMatrixData;
  std::unique_ptr<EffectStatData> fpEffectStatData;
  std::unique_ptr<ParamCollect> fpParamCollect;
  std::unique_ptr<EmmeansEstimList> fpEmmeansEstimList;
  std::unique_ptr<EmmeansList> fpEmmeansList;
  std::vector<WarningData> fvWarningList;
  std::unique_ptr<StringMapCollect> fpStringMapCollect;
  /// The first map of each id, made on the first look-up.
  mutable std::unordered_map<int32_t, TermsByName> fStringMapIndex;
};
