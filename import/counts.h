// Counts of parameters, columns and subjects that the fit does not state.
#pragma once

#include <vector>

#include "import/prepared.h"

namespace hierfit::fit {

/// The counts that the fit states, and those that follow from it.
Counts counts_of(const Prepared& prepared);

/// The categories of the target in their order; none for a target without.
const std::vector<Value>& categories_of(const Prepared& prepared);

}  // namespace hierfit::fit
