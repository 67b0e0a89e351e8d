// The densities of the distributions that a histogram's curve may have.
#pragma once

#include <functional>

#include "report/chart/plan.h"

namespace hierfit::report::chart {

/// The density at a value, of discrete distributions their probability drawn through the values in
/// between; empty for a method that is unknown, or a parameter that is missing or outside its
/// range. `mean` and `deviation` are those of the data, which the normal distribution takes.
std::function<double(double)> density_of(const Distribution& distribution,
                                         double mean,
                                         double deviation);

}  // namespace hierfit::report::chart
