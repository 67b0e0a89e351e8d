// Turns the coefficients of contrast-coded factors into level rows.
#pragma once

#include "import/fit.h"
#include "import/problem.h"
#include "import/variables.h"

namespace hierfit::fit {

/// Where coefficients stand at columns of a coding, replaces them, and those that share their
/// covariates, by coefficients of levels that give the same predictions: estimates and covariance
/// are those of the linear map, degrees of freedom the least of the rows that enter. Rows at the
/// last level of a factor are left out where the others tell them. Fails when there is no
/// covariance, or when the effects cannot be told by levels. References have been checked.
void make_level_rows(Fit& fit, const Variables& variables, Problems& problems);

}  // namespace hierfit::fit
