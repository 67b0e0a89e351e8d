// The map between metadata fields and the variables of the model.
#pragma once

#include <cstdint>
#include <vector>

/// Ties metadata fields to model variables. A field's metadata index and its index in the data
/// dictionary are one number. -1 stands for none.
struct VarMapInfo {
  std::vector<int32_t> fvFieldToVar;   ///< by field: position among the model variables
  std::vector<int32_t> fvVarToField;   ///< by variable: metadata index
  std::vector<bool> fvIsCategorical;   ///< by variable
  std::vector<int32_t> fvLevelCounts;  ///< by variable: number of levels; 0 unless categorical
};
