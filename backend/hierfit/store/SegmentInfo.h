// Fields and values that a part of the result belongs to: the `SegmentInfo` element.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/framework.h"

/// The lists are parallel, one position for each `FieldInfo`; all of them are empty when there is
/// none. Every field is a categorical variable of the model.
struct SegmentInfoData {
  std::vector<std::string> fvFieldNames;
  std::vector<int32_t> fvVarIndices;  ///< indices in the data dictionary
  std::vector<CFStatVariableValue> fSubjectValues;
  std::vector<int32_t> fvLevelCounts;  ///< number of levels of each field in the model
};
