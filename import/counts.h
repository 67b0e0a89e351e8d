// Counts of parameters, columns and subjects that the fit does not state.
#pragma once

#include <vector>

#include "import/prepared.h"

namespace hierfit::fit {

/// The counts that the fit states, and those that follow from it.
Counts counts_of(const Prepared& prepared);

/// The categories of the target in their order; none for a target without.
const std::vector<Value>& categories_of(const Prepared& prepared);

/// The subject fields that all random blocks and the residual block share: within one combination of
/// their levels stands all that belongs together. Empty when there are none.
std::vector<std::string> common_subjects(const Fit& fit);

}  // namespace hierfit::fit
