// Bins of a histogram.
#pragma once

#include <vector>

#include "import/fit.h"

namespace hierfit::fit {

/// The middles of the bins, and how many numbers fall into each.
struct Bins {
  std::vector<double> middles;
  std::vector<double> counts;
};

/// A bin for each whole number from 0 to the highest. Empty when a number is not whole, is negative
/// or is too high for a picture.
Bins count_bins(const std::vector<double>& numbers);

/// Bins of a round width, about as many as Sturges (1926) takes for so many numbers. A number on an
/// edge falls into the bin below it, the lowest into the first.
Bins round_bins(const std::vector<double>& numbers);

}  // namespace hierfit::fit
