// Coefficients and covariance parameters: the `ParameterEstimates` elements.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/framework.h"

#include "backend/hierfit/store/SegmentInfo.h"
#include "backend/hierfit/store/StringMaps.h"
#include "backend/hierfit/store/SystemMissing.h"

/// One estimate. A number with an empty text is missing.
struct ParamStatData {
  std::string fStatName;
  std::string fStatValue;
  int32_t fStatIndex = -1;  ///< position of the estimate's fixed effect; -1 for none
  RegressionParamData fRegressionParam;
  PrintableListData fPrintableList;
  std::string fParamName;
  std::string fParamLabel;
  double fEstimate = kSystemMissing;
  double fStdError = kSystemMissing;
  double fDf = kSystemMissing;
  double fConfIntervalLower = kSystemMissing;
  double fConfIntervalUpper = kSystemMissing;
  double fTTest = kSystemMissing;
  double fZTest = kSystemMissing;
  double fSig = kSystemMissing;
  double fChiSquare = kSystemMissing;
  double fExpEstimate = kSystemMissing;
  double fExpCILower = kSystemMissing;
  double fExpCIUpper = kSystemMissing;
  bool fIsRedundant = false;
};

/// One set of estimates. Fixed ones have a target category when the target has several sets; all
/// others have the segment that they belong to.
struct ParamEstimData {
  CFStatVariableValue fTargetCategory;
  SegmentInfoData fFiledData;
  std::vector<ParamStatData> fvParamStats;
};

/// The sets of one random block.
struct RandomParamBlock {
  int32_t fBlock = 0;  ///< the block's number; in a gap that of the block that made it
  std::vector<ParamEstimData> fvParamEstim;
};

/// All estimates of a document.
struct ParamCollect {
  std::vector<ParamEstimData> fvFixedParamEstim;
  std::vector<ParamEstimData> fvRepeatedParamEstim;
  std::vector<RandomParamBlock> fvRandomParamEstim;  ///< by block number
};
