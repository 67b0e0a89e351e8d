// Labels in structured form: model terms, the maps from names to terms, and printable lists.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/framework.h"

/// A covariate of a term.
struct CovariateData {
  std::string fField;
  int32_t fVarIndex = -1;  ///< dictionary index; negative for a field that it does not hold
  int32_t fPower = 0;      ///< how many times the covariate stands in the term, at most 9999
};

/// A factor of a term, at one of its categories.
struct FactorData {
  std::string fField;
  int32_t fVarIndex = -1;
  CFStatVariableValue fValue;
  bool fNest = false;  ///< opens a parenthesis, which closes behind the term
};

/// One term of the model. An intercept has neither covariates nor factors.
struct RegressionParamData {
  std::vector<CovariateData> fvCovariates;
  std::vector<FactorData> fvFactors;
  bool fIsIntercept = false;
  std::string fName;
};

/// One entry of a string map: a name and the term that it stands for.
struct MapEntryData {
  std::string fName;
  RegressionParamData fRegressionParam;
};

/// One string map. Names may repeat; the first one counts.
struct StringMapData {
  int32_t fMapId = -1;
  std::vector<MapEntryData> fvEntries;
};

/// All string maps in document order. Ids may repeat; the first one counts.
using StringMapCollect = std::vector<StringMapData>;

/// Codes of `PrintableValueData::fStorage`.
namespace Storage {
enum : int32_t { kUnknown, kInteger, kReal, kString, kDate, kTime, kTimestamp };
}

/// A value in a printable list.
struct PrintableValueData {
  int32_t fStorage = Storage::kUnknown;
  std::string fValue;
  bool fIsNull = false;
  std::string fLabel;
};

/// A label in structured form. `fPattern` is a message key at the top; below it the name of an
/// entry of the map `fMapId`, or the text of a parameter when that is -1, or the number of an
/// effect below the key "VarOfEffect".
struct PrintableListData {
  std::string fPattern;
  bool fIsKey = false;
  int32_t fMapId = -1;
  std::vector<PrintableListData> fvSubLists;
  std::vector<PrintableValueData> fvValues;
};
