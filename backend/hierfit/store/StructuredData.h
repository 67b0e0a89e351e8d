// Records of the first subject and covariance matrices of the random effects: the
// `StructuredData` elements.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/framework.h"

#include "backend/hierfit/store/Matrix.h"
#include "backend/hierfit/store/SegmentInfo.h"
#include "backend/hierfit/store/SystemMissing.h"

/// A repeated measures field with its value in each displayed record.
struct RepeatMeasVarStruct {
  std::string fField;
  int32_t fRepMeasInd = -1;  ///< index in the data dictionary
  std::vector<CFStatVariableValue> fvValues;
  int32_t fLevelCount = 0;  ///< number of levels in the model; 0 for a continuous field
};

/// The covariance matrices of one block of random effects, one for each segment.
struct RandEffCovarsData {
  std::string fStatName;
  double fStatValue = kSystemMissing;
  std::vector<std::string> fvEffectLabels;       ///< of rows and columns, ready for display
  std::vector<SegmentInfoData> fSimpleSubjects;  ///< the segment of each matrix
  std::vector<MatrixData> fMatrixValues;         ///< parallel to `fSimpleSubjects`
};

/// What all `StructuredData` elements of a document hold together.
struct StructuredData {
  int32_t fTotalFreq = 0;  ///< records of the first subject, also those that are not held here
  SegmentInfoData fSubjects;
  std::vector<RepeatMeasVarStruct> fvRepeatMeasVars;
  std::vector<CFStatVariableValue> fvTargetValues;  ///< one for each displayed record
  std::vector<CFStatVariableValue> fvTrialsValues;  ///< the same, when the document lists them
  std::vector<RandEffCovarsData> fvRandEffCovars;   ///< by number of the random block
};
