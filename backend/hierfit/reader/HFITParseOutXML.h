// Reads the two result documents into the results store.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/framework.h"
#include "host/pivot.h"

#include "backend/hierfit/store/HFITOutputStats.h"
#include "backend/hierfit/store/SystemMissing.h"

/// The reader of one run. `Read...` operations fill the record that they are given and are false
/// at the first thing that is wrong, without a message; `ReadStatXML` alone reports, once. Elements
/// and walks over them come from the documents' wrapper and must not be null, else false.
class HFITParseOutXML {
 public:
  /// Reads nothing yet. The texts must outlive the reader.
  HFITParseOutXML(BpProcedure* procedure,
                  ProcedureDataSource* dataSource,
                  HFITOutputStats* outputStats,
                  const std::string& pmmlStr,
                  const std::string& statXMLStr);

  /// Reads the PMML document, then the StatXML document. A document that was read is not read
  /// again.
  bool ReadDocuments();
  /// The model's variables and their map. Fails without a message.
  bool ReadPMML(const std::string& pmmlStr);
  /// The results. A text that is empty fails without a message, any other failure has one.
  bool ReadStatXML(const std::string& statXMLStr);

  /// Index in the data dictionary, negative for a field that it does not hold.
  int32_t FieldIndex(const std::string& field) const {
    return fpDataSource->FindVarIndex(field, 0);
  }

  /// `BuildSettings`. False without a parameter, for one without a name, and for a target or
  /// trials field that the dictionary does not hold.
  bool ReadBuildSettings(SDOMXMLWrapper* buildSettingsElm,
                         BuildSettingsStruct& buildSettingsStruct);
  /// Appends the blocks of a `Parameter`; the block that fails is left out.
  bool ReadRandomSpecs(SDOMXMLWrapper* parameterElm, std::vector<RandomSpec>& vRandomSpecs);
  /// Appends the requests of a `Parameter`, also the one whose factors fail.
  bool ReadEmmeansSpecs(SDOMXMLWrapper* EMMEANSElm, std::vector<EmmeansSpec>& vEmmeansSpecs);
  /// Appends the effects of a `ListValue`; none is no failure.
  bool ReadEffectList(SDOMXMLWrapper* effectListElm, std::vector<EffectStruct>& vEffects);
  /// One effect, from a `StructuredValue`. The result is the status of its last `Attribute`.
  bool ReadEffectStruct(SDOMXMLWrapper* effectStructElm, EffectStruct& effectStruct);
  /// Appends the texts of a `ListValue`. Always true.
  bool ReadStringList(SDOMXMLWrapper* listValueElm, std::vector<std::string>& vTexts);

  /// The statistics, distribution, observed by predicted data and tests of `ModelDiagnostics`.
  bool ReadModelDiagnostics(SDOMXMLWrapper* modelDiagnosticsElm,
                            ModelDiagnostics& modelDiagnostics);
  /// The first usable "TargetDistribution" of the `UnivariateData`. Without one the result is the
  /// last test that was made.
  bool ReadTargetDistribution(SDOMXMLIterator* targetDistDataElmIter,
                              TargetDistData& targetDistData);
  /// The first "observedByPredicted" of the `BivariateData`; without one true, and no data.
  bool ReadPredByObserved(SDOMXMLIterator* predByObservDataElmIter,
                          PredByObservData& predByObservData);
  /// The tests of all `ModelTestStats`. Always true.
  bool ReadModelTestStats(SDOMXMLIterator* effectTestDataElmIter, EffectStatData& effectStatData);
  /// The numbers of an `Array` in place of what the list held; "__MISSING__" is the missing number.
  bool ReadDoubleArray(SDOMXMLWrapper* arrayElm, std::vector<double>& vNumbers);

  /// Appends one record for each `Message`. False at one without a list or a key, and behind one
  /// whose last value is absent; records before that stay, in the last case its own, too.
  bool ReadWarningMessages(SDOMXMLIterator* warningMsgElmIter, std::vector<WarningData>& vWarnings);

 private:
  bool ReadStatXMLDocument(const std::string& statXMLStr);
  bool ReadSettings(SDOMXMLWrapper& documentElm);
  bool ReadEffectAttribute(SDOMXMLWrapper& attributeElm, EffectStruct& effect);
  bool ReadDiagnostics(SDOMXMLWrapper& documentElm);
  bool ReadTrainingSummary(SDOMXMLWrapper& documentElm);

  bool fPMMLParsed = false;
  bool fStatXMLParsed = false;
  double fMissingValue = kSystemMissing;
  BpProcedure* fpProcedure;
  ProcedureDataSource* fpDataSource;
  HFITOutputStats* fpHFITOutputStats;
  BuildSettingsStruct* fpBuildSettings = nullptr;  ///< the store's, while it is read
  const std::string* fpPMMLStr;
  const std::string* fpStatXMLStr;
};
