// Reads the two result documents into the results store.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
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

  /// The code of a covariance type.
  static int32_t ParseCovarianceType(const std::string& text);

  /// `BuildSettings`, in place of what the record held, but for the name of the algorithm. False
  /// without a parameter, for one without a name, and for a target or
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
  bool ReadEffectStruct(SDOMXMLWrapper* structuredValueElm, EffectStruct& effectStruct);
  /// Appends the texts of a `ListValue`. Always true.
  bool ReadStringList(SDOMXMLWrapper* listValueElm, std::vector<std::string>& vTexts);

  /// Appends all maps, without the entries that do not read. The result is the status of the last
  /// entry of the last map; false when that map has none.
  bool ReadStringMaps(SDOMXMLIterator* stringMapCollectIter, StringMapCollect& stringMapCollect);
  /// A label or a list within it. False when a list or a value within it fails.
  bool ReadPrintableList(SDOMXMLWrapper* printableListElm, PrintableListData& printableListData);
  bool ReadPrintableValue(SDOMXMLWrapper* printableValueElm,
                          PrintableValueData& printableValueData);
  /// A term. What an intercept has below it is not read.
  bool ReadRegressionParameter(SDOMXMLWrapper* regressionParamElm,
                               RegressionParamData& regressionParamData);
  /// A covariate; false beyond the power that a label can show.
  bool ReadCovariate(SDOMXMLWrapper* covariateElm, CovariateData& covariateData);
  /// A factor; its value must be one of its field.
  bool ReadFactor(SDOMXMLWrapper* factorElm, FactorData& factorData);

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

  /// The records of the first subject, added to those that the record holds.
  bool ReadFirstSubjectRecords(SDOMXMLWrapper* structuredDataElm, StructuredData& structuredData);
  /// A repeated measures field, which must be a variable of the model.
  bool ReadRepeatMeasVar(SDOMXMLWrapper* coordinatesElm, RepeatMeasVarStruct& repeatMeasVarStruct);
  /// A matrix. False when its array does not fit its kind and its numbers of rows and columns, and
  /// for one that is wider than high or has too many slots to unpack.
  bool ReadMatrix(SDOMXMLWrapper* matrixElm, MatrixData& matrixData);

  /// Files all estimates by type and block, up to the first element that fails.
  bool ReadParameterEstimates(SDOMXMLIterator* paramEstimElmIter, ParamCollect& paramCollect);
  bool ReadParameterStats(SDOMXMLWrapper* paramStatsElm, ParamStatData& paramStatData);
  bool ReadStatistic(SDOMXMLWrapper* statisticElm, std::string& name, std::string& value);
  /// Fields and values, which must be categorical variables of the model; none is no failure.
  bool ReadSegmentInfo(SDOMXMLWrapper* segmentInfoElm, SegmentInfoData& segmentInfoData);

  /// The covariance matrices of one random block, with their labels as texts. A label that is
  /// missing or does not read is left out, but fails the read when it is the last.
  bool ReadRandEffCovars(SDOMXMLWrapper* randEffCovarMatElm, RandEffCovarsData& randEffCovars);
  /// The result is that of reading the name; a value that is absent is missing.
  bool ReadNumericStatistic(SDOMXMLWrapper* statisticElm, std::string& name, double& value);

  /// One column, with its texts unconverted. The attributes are stored also when the array fails.
  bool ReadCoordinates(SDOMXMLWrapper* coordinatesElm, CoordinatesData& coordinatesData);
  /// A table of means. Coordinates of the group end at the first that fails, without a failure.
  bool ReadEmmeansEstimates(SDOMXMLWrapper* emmeansEstiElm, EmmeansEstimData& emmeansEstimData);
  /// A table of contrasts, with the coordinates as those of the means.
  bool ReadEmmeansContrasts(SDOMXMLWrapper* emmeansContrastElm,
                            EmmeansContrastData& emmeansContrastData);
  bool ReadEmmeansOverallTest(SDOMXMLWrapper* emmeansOverallTestElm,
                              EmmeansOverallTest& emmeansOverallTest);

  /// The means of the top effects and the blocks of the requested ones, into the store.
  bool ReadDataGroups(SDOMXMLIterator* dataGroupElmIter);
  /// One block. Labels that fail end the walk over them, and fail the block only when it has no
  /// `Statistic`.
  bool ReadCustomEmmeans(SDOMXMLWrapper* emmeansCustomElm, EmmeansData& emmeansData);

  /// Appends one record for each `Message`. False at one without a list or a key, and behind one
  /// whose last value is absent; records before that stay, in the last case its own, too.
  bool ReadWarningMessages(SDOMXMLIterator* warningMsgElmIter, std::vector<WarningData>& vWarnings);

 private:
  bool ReadStatXMLDocument(const std::string& statXMLStr);
  bool ReadSettings(SDOMXMLWrapper& documentElm);
  bool ReadLabelMaps(SDOMXMLWrapper& documentElm);
  bool ReadDiagnostics(SDOMXMLWrapper& documentElm);
  bool ReadStructuredData(SDOMXMLWrapper& modelDiagnosticsElm);
  bool ReadStructuredDataElement(SDOMXMLWrapper& structuredDataElm, StructuredData& structuredData);
  bool ReadClassification(SDOMXMLWrapper& modelDiagnosticsElm);
  bool ReadTrainingSummary(SDOMXMLWrapper& documentElm);
  bool ReadEstimates(SDOMXMLWrapper& trainingSummaryElm, ParamCollect& paramCollect);

  bool ReadEffectAttribute(SDOMXMLWrapper& attributeElm, EffectStruct& effect);
  bool ReadMapEntry(SDOMXMLWrapper& mapEntryElm, MapEntryData& mapEntry);
  bool ReadSubjectGroup(SDOMXMLWrapper& groupElm, StructuredData& structuredData);
  bool ReadTargetValues(SDOMXMLWrapper& coordinatesElm, StructuredData& structuredData);
  bool ReadRowColLabels(SDOMXMLWrapper& matrixElm, MatrixData& matrixData);
  bool ReadParameterEstimate(SDOMXMLWrapper& paramEstimElm, ParamCollect& paramCollect);
  bool ReadEstimateOwner(SDOMXMLWrapper& paramEstimElm, bool isFixed, ParamEstimData& paramEstim);
  bool ReadFieldInfo(SDOMXMLWrapper& fieldInfoElm, SegmentInfoData& segmentInfoData);
  bool ReadEffectLabels(SDOMXMLIterator* labelIter, std::vector<std::string>& vEffectLabels);
  bool ReadSegmentMatrix(SDOMXMLWrapper& segmentDataElm, RandEffCovarsData& randEffCovars);
  bool ReadTopEffect(SDOMXMLWrapper& dataGroupElm);
  bool ReadBlock(SDOMXMLWrapper& dataGroupElm);
  bool ReadEmmeansLabels(SDOMXMLWrapper& labelListElm, std::vector<EmmeansLabelData>& vLabels);
  bool ReadEmmeansLabel(SDOMXMLWrapper& labelElm, EmmeansLabelData& label);
  bool ReadEmmeansTables(SDOMXMLWrapper& emmeansCustomElm, EmmeansData& emmeansData);
  bool ReadOverallTests(SDOMXMLWrapper& emmeansCustomElm,
                        std::vector<EmmeansOverallTest>& vOverallTests);

  /// Appends the items of an array as values of the variable; false at one that is none.
  bool ReadValues(SDOMXMLWrapper& arrayElm,
                  const VELT_Variable* variable,
                  std::vector<CFStatVariableValue>& vValues);
  /// Counts what a short text unpacks to. False when all of it together is out of proportion to
  /// the result document.
  bool Unpack(std::size_t byteCount);
  /// Makes the text of a list within a label, since a short list can stand for a long term. False
  /// as `Unpack` is.
  bool UnpackText(const PrintableListData& printableListData, std::string& text);
  /// The target's variable; null without one.
  const VELT_Variable* TargetVariable() const;
  /// The position of a dictionary's field among the variables of the model, if it is one.
  std::optional<std::size_t> ModelVariable(int32_t index) const;

  bool fPMMLParsed = false;
  bool fStatXMLParsed = false;
  double fMissingValue = kSystemMissing;
  BpProcedure* fpProcedure;
  ProcedureDataSource* fpDataSource;
  HFITOutputStats* fpHFITOutputStats;
  BuildSettingsStruct* fpBuildSettings = nullptr;  ///< the store's, while it is read
  const std::string* fpPMMLStr;
  const std::string* fpStatXMLStr;
  std::vector<std::string> fvItems;  ///< of the array in hand; its room serves the next one
  std::size_t fUnpackedBytes = 0;    ///< of all matrices and all labels of covariances so far
};
