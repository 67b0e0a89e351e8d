// Estimated means with their contrasts and tests: the `DataGroup` elements.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/framework.h"

#include "backend/hierfit/store/SegmentInfo.h"
#include "backend/hierfit/store/SystemMissing.h"
#include "backend/hierfit/store/Warning.h"

/// Codes of `CoordinatesData::fFeature`.
namespace Feature {
enum : int32_t { kObserved, kFrequency, kStatistic, kFields, kUnknown };
}

/// Codes of `EmmeansContrastData::fContrastKind`.
namespace ContrastKind {
enum : int32_t { kPairwise, kDeviation, kSimple, kUnknown };
}

/// One column of a table of means or contrasts.
struct CoordinatesData {
  int32_t fFeature = Feature::kUnknown;
  std::string fField;                 ///< name of the factor
  std::string fStatistic;             ///< name of the statistic
  std::vector<std::string> fvValues;  ///< one text a cell, "__MISSING__" for a missing number
};

/// A table of means. The statistics are parallel to the values of each coordinate.
struct EmmeansEstimData {
  std::vector<CoordinatesData> fvCoordinates;  ///< one for each factor: the categories by cell
  CoordinatesData fMean;
  CoordinatesData fStdErr;
  CoordinatesData fConfIntervalLower;
  CoordinatesData fConfIntervalUpper;
};

/// A table of contrasts. The compared factor has the last two coordinates, the first and the second
/// member of each contrast; the other factors come before them.
struct EmmeansContrastData {
  double fAdjustedSigLevel = kSystemMissing;
  int32_t fContrastKind = ContrastKind::kUnknown;
  std::vector<CoordinatesData> fvCoordinates;
  CoordinatesData fContrastEstimate;
  CoordinatesData fStdErr;
  CoordinatesData fTTest;
  CoordinatesData fDf;
  CoordinatesData fAdjustedSig;
  CoordinatesData fConfIntervalLower;
  CoordinatesData fConfIntervalUpper;
};

/// One overall test of a contrast, at the levels of the other factors in `fFields`.
struct EmmeansOverallTest {
  SegmentInfoData fFields;
  int32_t fTestID = -1;
  double fFStatistic = kSystemMissing;
  double fDf1 = kSystemMissing;
  double fDf2 = kSystemMissing;
  double fSig = kSystemMissing;
};

/// A continuous predictor and the value at which the means are taken.
struct EmmeansLabelData {
  std::string fFieldName;
  CFStatVariableValue fValue;
};

/// The results of one requested effect. Without a request that it names (-1, or an index that
/// `fvEmmeansSpecs` does not have) the block is passed over.
struct EmmeansData {
  int32_t fEmmeansIndex = -1;  ///< position in `BuildSettingsStruct::fvEmmeansSpecs`
  std::vector<EmmeansLabelData> fvLabels;
  EmmeansEstimData fEstimates;
  EmmeansContrastData fContrasts;
  std::vector<EmmeansOverallTest> fvOverallTests;
  std::vector<WarningData> fvWarningList;
};

/// The means of the top significant effects.
using EmmeansEstimList = std::vector<EmmeansEstimData>;
/// The blocks of the requested effects.
using EmmeansList = std::vector<EmmeansData>;
