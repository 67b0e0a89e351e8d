// The subjects that all parts of a model share.
#pragma once

#include <string>
#include <vector>

#include "import/fit.h"

namespace hierfit::fit {

/// The subject fields that all random blocks and the residual block share: within one combination
/// of their levels stands all that belongs together. Empty when there are none.
std::vector<std::string> common_subjects(const Fit& fit);

}  // namespace hierfit::fit
