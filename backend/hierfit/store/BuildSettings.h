// The model as the user specified it: the `BuildSettings` element.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "backend/hierfit/store/SystemMissing.h"

/// Codes of `BuildSettingsStruct::fDistribution`.
namespace Distribution {
enum : int32_t {
  kBinomial,
  kGamma,
  kInverseGaussian,
  kNominal,
  kOrdinal,
  kNegativeBinomial,
  kNormal,
  kPoisson,
  kUnknown
};
}

/// Codes of `BuildSettingsStruct::fLink`.
namespace Link {
enum : int32_t {
  kComplementaryLogLog,
  kIdentity,
  kLog,
  kLogComplement,
  kLogit,
  kNegativeLogLog,
  kPower,
  kProbit,
  kCauchit,
  kUnknown
};
}

/// Codes of `fResidualCovType` and `RandomSpec::fCovType`.
namespace CovarianceType {
enum : int32_t {
  kVarianceComponents,
  kAutoregressive,
  kAutoregressiveMovingAverage,
  kCompoundSymmetry,
  kDiagonal,
  kScaledIdentity,
  kToeplitz,
  kUnstructured,
  kUnknown
};
}

/// Codes of `BuildSettingsStruct::fPAdjustment`.
namespace Adjustment {
enum : int32_t { kLeastSignificantDifference, kSequentialBonferroni, kSequentialSidak, kUnknown };
}

/// Codes of `EmmeansSpec::fContrastType`.
namespace ContrastType {
enum : int32_t { kPairwise, kDeviation, kSimple, kNone, kUnknown };
}

/// Codes of `EmmeansSpec::fReferenceType`.
namespace ReferenceType {
enum : int32_t { kLast, kValue, kUnknown };
}

/// One effect. The three lists are parallel, one entry for each field of the effect, in a document
/// that is as it should be; a reader of them checks their lengths all the same.
struct EffectStruct {
  std::vector<std::string> fvFieldNames;
  std::vector<int32_t> fvVarIndices;     ///< indices in the data dictionary
  std::vector<int32_t> fvNestingLevels;  ///< a level that is not there counts as 0
};

/// One block of random effects. Its position in `fvRandomSpecs` is the block's number.
struct RandomSpec {
  std::vector<EffectStruct> fvEffectList;
  bool fIntercept = false;
  EffectStruct fSubjectSpec;
  std::vector<std::string> fvGroupSpec;
  int32_t fCovType = CovarianceType::kUnknown;
  int32_t fCovTBand = 2;
};

/// One request of estimated means.
struct EmmeansSpec {
  EffectStruct fFactors;
  bool fEstimateMeans = false;
  std::string fCompareFactor;  ///< name of the field that the contrasts compare
  int32_t fContrastType = ContrastType::kNone;
  int32_t fReferenceType = ReferenceType::kLast;
  std::string fReferenceValue;
};

/// The settings of the model. An index of -1 means that there is no such field.
struct BuildSettingsStruct {
  std::string fTargetField;
  int32_t fTargetIndex = -1;
  bool fUseTrials = false;  ///< the target counts events in a number of trials
  std::string fTrialsField;
  int32_t fTrialsIndex = -1;
  int32_t fTrialsValue = 0;  ///< the fixed number of trials when there is no trials field
  std::string fDistributionText;
  int32_t fDistribution = Distribution::kUnknown;
  std::string fLinkText;
  int32_t fLink = Link::kUnknown;
  double fLinkParam = kSystemMissing;
  std::string fLinkParamText;
  std::string fAlgorithmName;
  double fCIn = kSystemMissing;  ///< confidence level as a fraction
  bool fIntercept = true;
  int32_t fResidualCovType = CovarianceType::kUnknown;
  int32_t fResidualCovTBand = 2;
  EffectStruct fResidualSubjectSpec;
  std::vector<std::string> fvResidualGroupSpec;
  std::vector<EffectStruct> fvFixedEffectList;
  std::vector<RandomSpec> fvRandomSpecs;
  std::vector<EmmeansSpec> fvEmmeansSpecs;
  int32_t fPAdjustment = Adjustment::kUnknown;
};
