// Looks for what contradicts itself in a fit.
#pragma once

#include "import/fit.h"
#include "import/problem.h"
#include "import/variables.h"

namespace hierfit::fit {

/// Fails what the documents could not be made from: a field or a value that no variable has, an
/// effect without a field, a matrix that is not as large as what it belongs to, columns of
/// different lengths. Warns of what is odd.
void check_fit(const Fit& fit, const Variables& variables, Problems& problems);

/// The two halves of it.
void check_model(const Fit& fit, const Variables& variables, Problems& problems);
void check_results(const Fit& fit, const Variables& variables, Problems& problems);

}  // namespace hierfit::fit
