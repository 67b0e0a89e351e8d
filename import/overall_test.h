// Overall tests of contrasts from their covariance.
#pragma once

#include <vector>

#include "import/fit.h"

namespace hierfit::fit {

/// One test for each combination of the other factors: that all its contrasts are 0. The numerator
/// has as many degrees of freedom as the contrasts are free of each other, the denominator the
/// least of theirs. Combinations whose contrasts or covariances do not exist have none.
std::vector<OverallTest> overall_tests(const Contrasts& contrasts);

}  // namespace hierfit::fit
