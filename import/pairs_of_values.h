// Observed by predicted values as pairs with counts.
#pragma once

#include <vector>

#include "import/fit.h"

namespace hierfit::fit {

/// How many different pairs are kept as they are; more are laid on a grid.
inline constexpr size_t kMostPairs = 1000;

/// Each pair once, in the order of the predicted values. More than `kMostPairs` different ones fall
/// into the cells of a grid, each of which stands as the means of its values. A pair of which a
/// value is missing is left out.
Pairs pairs_of(const std::vector<double>& observed, const std::vector<double>& predicted);

}  // namespace hierfit::fit
