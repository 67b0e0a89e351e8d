// The bare values that the operations of a pivot table take.
#pragma once

#include <cstdint>

/// Places of a dimension.
inline constexpr int32_t kRows = 0;
inline constexpr int32_t kColumns = 1;

/// Sort value of dimensions and groups: categories stand in the order of their first appearance.
inline constexpr int32_t kInOrderOfAppearance = 2;

/// Show value of a variable in a label or a cell.
inline constexpr int32_t kVariableInCell = 2;

/// What hides the title of a dimension, or its category labels.
inline constexpr bool kHidden = true;
inline constexpr bool kShown = false;
