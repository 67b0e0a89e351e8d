// What the engine tells of the whole fit: the `ModelDiagnostics` element.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "backend/hierfit/store/SystemMissing.h"

/// The distribution of the target: its moments and shape parameters, and a histogram. A parameter
/// that the distribution does not have is 0.
struct TargetDistData {
  std::string fDescription;  ///< the last one read; "TargetDistribution" when the element was there
  int32_t fTotalFreq = 0;
  double fMean = 0;
  double fStdDeviation = 0;
  double fShape = 0;
  double fRate = 0;
  double fR = 0;
  double fP = 0;
  std::vector<double> fvObserved;   ///< positions of the bins or categories
  std::vector<double> fvFrequency;  ///< their frequencies, parallel to `fvObserved`
};

/// Observed by predicted values. Empty when the document has none.
struct PredByObservData {
  std::string fDescription;  ///< the last one read; empty when there was none
  int32_t fTotalFreq = 0;
  std::vector<double> fvObserved;
  std::vector<double> fvStatistic;  ///< predicted values
  std::vector<double> fvFrequency;
  double fMinValue = 0;  ///< lowest value, observed or predicted
  double fMaxValue = 0;  ///< highest value, observed or predicted
};

/// Fit statistics. A statistic that the document lacks is missing, or -1 when it is a count; a
/// count with an empty text is the lowest integer.
struct ModelDiagnostics {
  double fAICC = kSystemMissing;
  double fBIC = kSystemMissing;
  double fMinus2LogLikelihood = kSystemMissing;
  double fClassificationAccuracy = kSystemMissing;  ///< fraction of right classifications
  int32_t fNumOfCovParamOfRepeated = -1;
  int32_t fNumOfCovParamOfRandom = -1;
  int32_t fNumOfColsOfFixed = -1;
  int32_t fNumOfColsOfRandom = -1;
  int32_t fNumOfCommonSubjects = -1;
  double fGrandMean = kSystemMissing;
  double fGrandMeanStdErr = kSystemMissing;
  double fGrandMeanCILower = kSystemMissing;
  double fGrandMeanCIUpper = kSystemMissing;
  TargetDistData fTargetDistribution;
  PredByObservData fPredByObserved;
};

/// One F test. A number that the document lacks, or has as an empty text, is missing.
struct EffectTestData {
  int32_t fTestID = 0;    ///< position of the effect in `BuildSettingsStruct::fvFixedEffectList`
  int32_t fTestType = 0;  ///< type of the sums of squares, from a Roman numeral
  double fFStatistic = 0;
  double fDf1 = 0;
  double fDf2 = 0;
  double fSig = 0;
};

/// The tests of the model. All zero until they are read.
struct EffectStatData {
  EffectTestData fCorrectedModel;
  std::vector<EffectTestData> fvFixedEffectTests;
};
