// The linear map between two ways to write the same predictions.
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

namespace hierfit::fit {

/// A design column: what it is in each cell.
using CellColumn = std::vector<double>;

/// Which of the new columns are taken, and what each of them is made of.
struct LinearMap {
  std::vector<size_t> taken;                 ///< of the new columns, in their order
  std::vector<std::vector<double>> weights;  ///< of each taken one: a weight for each old column
};

/// The map from coefficients of the old columns to those of the new ones. New columns are taken in
/// their order, as long as they tell something that those before them do not. Nothing when they
/// cannot tell all that the old ones do.
std::optional<LinearMap> map_columns(const std::vector<CellColumn>& old_columns,
                                     const std::vector<CellColumn>& new_columns);

}  // namespace hierfit::fit
