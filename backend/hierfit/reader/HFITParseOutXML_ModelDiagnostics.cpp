// Reads the fit statistics, the target's distribution and the tests: `ModelDiagnostics`.
#include <algorithm>
#include <utility>

#include "backend/hierfit/reader/Attributes.h"
#include "backend/hierfit/reader/Elements.h"
#include "backend/hierfit/reader/HFITParseOutXML.h"

namespace {

// clang-format off
constexpr AttributeBinding<ModelDiagnostics> kFitStatistics[] = {
    {"AICC", &ModelDiagnostics::fAICC},
    {"BIC", &ModelDiagnostics::fBIC},
    {"minus2LogLikelihood", &ModelDiagnostics::fMinus2LogLikelihood},
    {"classificationAccuracy", &ModelDiagnostics::fClassificationAccuracy},
    {"numOfCovParamOfRepeated", &ModelDiagnostics::fNumOfCovParamOfRepeated},
    {"numOfCovParamOfRandom", &ModelDiagnostics::fNumOfCovParamOfRandom},
    {"numOfColsOfFixed", &ModelDiagnostics::fNumOfColsOfFixed},
    {"numOfColsOfRandom", &ModelDiagnostics::fNumOfColsOfRandom},
    {"numOfCommonSubjects", &ModelDiagnostics::fNumOfCommonSubjects},
    {"grandMean", &ModelDiagnostics::fGrandMean},
    {"grandMeanStdErr", &ModelDiagnostics::fGrandMeanStdErr},
    {"grandMeanCILower", &ModelDiagnostics::fGrandMeanCILower},
    {"grandMeanCIUpper", &ModelDiagnostics::fGrandMeanCIUpper},
};

// An empty statistic of the distribution is 0, not missing.
constexpr AttributeBinding<TargetDistData> kDistributionStatistics[] = {
    {"mean", &TargetDistData::fMean, 0},
    {"stdDeviation", &TargetDistData::fStdDeviation, 0},
    {"shape", &TargetDistData::fShape, 0},
    {"rate", &TargetDistData::fRate, 0},
    {"r", &TargetDistData::fR, 0},
    {"p", &TargetDistData::fP, 0},
};

constexpr AttributeBinding<TargetDistData> kTargetCounts[] = {
    {"totalFreq", &TargetDistData::fTotalFreq, 0},
};

constexpr AttributeBinding<PredByObservData> kPredByObservedCounts[] = {
    {"totalFreq", &PredByObservData::fTotalFreq, 0},
};

constexpr AttributeBinding<EffectTestData> kTestAttributes[] = {
    {"testID", &EffectTestData::fTestID, 0},
    {"testType", &EffectTestData::fTestType, 0, &Roman2Integer},
};

constexpr AttributeBinding<EffectTestData> kFTestAttributes[] = {
    {"fStatistic", &EffectTestData::fFStatistic},
    {"sig", &EffectTestData::fSig},
    {"df1", &EffectTestData::fDf1},
    {"df2", &EffectTestData::fDf2},
};
// clang-format on

/// The statistics as they are before any is read; the data behind them stay.
void StoreDefaults(ModelDiagnostics& modelDiagnostics) {
  ModelDiagnostics fresh;
  std::swap(fresh.fTargetDistribution, modelDiagnostics.fTargetDistribution);
  std::swap(fresh.fPredByObserved, modelDiagnostics.fPredByObserved);
  modelDiagnostics = std::move(fresh);
}

/// A list of numbers of a record by the feature of the coordinates that fill it.
template <class Record>
struct FeatureBinding {
  std::string_view feature;
  std::vector<double> Record::*list;
};

constexpr FeatureBinding<TargetDistData> kDistributionFeatures[] = {
    {"frequency", &TargetDistData::fvFrequency},
    {"observed", &TargetDistData::fvObserved},
};

constexpr FeatureBinding<PredByObservData> kPredByObservedFeatures[] = {
    {"observed", &PredByObservData::fvObserved},
    {"statistic", &PredByObservData::fvStatistic},
    {"frequency", &PredByObservData::fvFrequency},
};

/// Reads the array of one `Coordinates`, which must have one, into the list of its feature.
template <class Record, std::size_t N>
bool ReadFeature(HFITParseOutXML& reader,
                 SDOMXMLWrapper& coordinatesElm,
                 std::string_view feature,
                 const FeatureBinding<Record> (&features)[N],
                 Record& record) {
  SDOMXMLWrapper* arrayElm = FirstElement(coordinatesElm, "Array");
  if (arrayElm == nullptr) return false;
  const auto binding = std::ranges::find(features, feature, &FeatureBinding<Record>::feature);
  if (binding == std::end(features)) return true;
  return reader.ReadDoubleArray(arrayElm, record.*binding->list);
}

/// Reads `Statistic` elements that need not have a name or a value.
void ReadDistributionStatistics(SDOMXMLIterator* statisticIter, TargetDistData& targetDistData) {
  std::string name;
  std::string value;
  for (SDOMXMLWrapper* statisticElm = nullptr; Step(statisticIter, statisticElm);) {
    ReadText(*statisticElm, "name", name);
    ReadText(*statisticElm, "value", value);
    StoreNamed(kDistributionStatistics, name, value, targetDistData);
  }
}

bool ReadDistributionCoordinates(HFITParseOutXML& reader,
                                 SDOMXMLIterator* coordinatesIter,
                                 TargetDistData& targetDistData) {
  std::string feature;
  for (SDOMXMLWrapper* coordinatesElm = nullptr; Step(coordinatesIter, coordinatesElm);) {
    ReadText(*coordinatesElm, "feature", feature);
    if (!ReadFeature(reader, *coordinatesElm, feature, kDistributionFeatures, targetDistData)) {
      return false;
    }
  }
  return true;
}

/// The lowest and the highest of all values; the predicted ones widen the range of the observed.
void FindRange(PredByObservData& predByObservData) {
  if (!predByObservData.fvObserved.empty()) {
    const auto [lowest, highest] = std::ranges::minmax(predByObservData.fvObserved);
    predByObservData.fMinValue = lowest;
    predByObservData.fMaxValue = highest;
  }
  if (!predByObservData.fvStatistic.empty()) {
    const auto [lowest, highest] = std::ranges::minmax(predByObservData.fvStatistic);
    predByObservData.fMinValue = std::min(predByObservData.fMinValue, lowest);
    predByObservData.fMaxValue = std::max(predByObservData.fMaxValue, highest);
  }
}

}  // namespace

bool HFITParseOutXML::ReadModelDiagnostics(SDOMXMLWrapper* modelDiagnosticsElm,
                                           ModelDiagnostics& modelDiagnostics) {
  if (modelDiagnosticsElm == nullptr) return false;
  SDOMXMLIterator* statisticIter = Children(*modelDiagnosticsElm, "Statistic");
  StoreDefaults(modelDiagnostics);
  if (statisticIter == nullptr) return false;

  std::string name;
  std::string value;
  for (SDOMXMLWrapper* statisticElm = nullptr; Step(statisticIter, statisticElm);) {
    if (!statisticElm->GetAttribute("name", name)) return false;
    if (!statisticElm->GetAttribute("value", value)) return false;
    StoreNamed(kFitStatistics, name, value, modelDiagnostics);
  }

  SDOMXMLIterator* targetDistIter = Children(*modelDiagnosticsElm, "UnivariateData");
  if (targetDistIter != nullptr &&
      !ReadTargetDistribution(targetDistIter, modelDiagnostics.fTargetDistribution)) {
    return false;
  }
  SDOMXMLIterator* predByObservIter = Children(*modelDiagnosticsElm, "BivariateData");
  if (predByObservIter != nullptr &&
      !ReadPredByObserved(predByObservIter, modelDiagnostics.fPredByObserved)) {
    return false;
  }
  SDOMXMLIterator* effectTestElmIter = Children(*modelDiagnosticsElm, "ModelTestStats");
  if (effectTestElmIter == nullptr) return true;
  EffectStatData* pEffectTest = fpHFITOutputStats->NewEffectStatData();
  return pEffectTest != nullptr && ReadModelTestStats(effectTestElmIter, *pEffectTest);
}

bool HFITParseOutXML::ReadTargetDistribution(SDOMXMLIterator* targetDistDataElmIter,
                                             TargetDistData& targetDistData) {
  if (targetDistDataElmIter == nullptr) return false;

  targetDistData.fTotalFreq = 0;
  targetDistData.fMean = targetDistData.fStdDeviation = 0;
  bool isFound = false;
  for (SDOMXMLWrapper* targetDistElm = nullptr; Step(targetDistDataElmIter, targetDistElm);) {
    targetDistData.fShape = targetDistData.fRate = targetDistData.fR = targetDistData.fP = 0;
    isFound = ReadText(*targetDistElm, "description", targetDistData.fDescription);
    if (targetDistData.fDescription != "TargetDistribution") continue;

    if (SDOMXMLWrapper* countsElm = FirstElement(*targetDistElm, "Counts")) {
      ReadAttributesUntested(*countsElm, kTargetCounts, targetDistData);
    }
    SDOMXMLIterator* statisticIter = Children(*targetDistElm, "Statistic");
    ReadDistributionStatistics(statisticIter, targetDistData);
    SDOMXMLIterator* coordinatesIter = Children(*targetDistElm, "Coordinates");
    isFound = statisticIter != nullptr && coordinatesIter != nullptr;
    if (isFound) return ReadDistributionCoordinates(*this, coordinatesIter, targetDistData);
  }
  return isFound;
}

bool HFITParseOutXML::ReadPredByObserved(SDOMXMLIterator* predByObservDataElmIter,
                                         PredByObservData& predByObservData) {
  if (predByObservDataElmIter == nullptr) return false;

  predByObservData.fTotalFreq = 0;
  predByObservData.fMinValue = predByObservData.fMaxValue = 0;
  SDOMXMLWrapper* predByObservDataElm = nullptr;
  do {
    if (!Step(predByObservDataElmIter, predByObservDataElm)) return true;
    if (!predByObservDataElm->GetAttribute("description", predByObservData.fDescription)) {
      return false;
    }
  } while (predByObservData.fDescription != "observedByPredicted");

  if (SDOMXMLWrapper* countsElm = FirstElement(*predByObservDataElm, "Counts")) {
    ReadAttributesUntested(*countsElm, kPredByObservedCounts, predByObservData);
  }
  SDOMXMLIterator* coordinatesIter = Children(*predByObservDataElm, "Coordinates");
  if (coordinatesIter == nullptr) return false;
  std::string feature;
  for (SDOMXMLWrapper* coordinatesElm = nullptr; Step(coordinatesIter, coordinatesElm);) {
    if (!coordinatesElm->GetAttribute("feature", feature)) return false;
    if (!ReadFeature(*this, *coordinatesElm, feature, kPredByObservedFeatures, predByObservData)) {
      return false;
    }
  }
  FindRange(predByObservData);
  return true;
}

bool HFITParseOutXML::ReadModelTestStats(SDOMXMLIterator* effectTestDataElmIter,
                                         EffectStatData& effectStatData) {
  std::string description;
  for (SDOMXMLWrapper* modelTestStatsElm = nullptr;
       Step(effectTestDataElmIter, modelTestStatsElm);) {
    ReadText(*modelTestStatsElm, "description", description);
    EffectTestData test;
    ReadAttributesUntested(*modelTestStatsElm, kTestAttributes, test);
    StoreEmptyTexts(kFTestAttributes, test);
    if (SDOMXMLWrapper* fTestElm = FirstElement(*modelTestStatsElm, "FTest")) {
      ReadAttributesUntested(*fTestElm, kFTestAttributes, test);
    }
    if (description == "correctedModel") {
      test.fTestID = effectStatData.fCorrectedModel.fTestID;
      effectStatData.fCorrectedModel = test;
    } else if (description == "fixedEffect") {
      effectStatData.fvFixedEffectTests.push_back(test);
    }
  }
  return true;
}

bool HFITParseOutXML::ReadDoubleArray(SDOMXMLWrapper* arrayElm, std::vector<double>& vNumbers) {
  vNumbers.clear();
  if (arrayElm == nullptr) return false;
  if (!arrayElm->GetSimpleArray(fvItems)) return false;

  vNumbers.resize(fvItems.size());
  std::ranges::transform(fvItems, vNumbers.begin(), [this](const std::string& item) {
    return item == kMissingItem ? fMissingValue : String2Double(item);
  });
  return true;
}
