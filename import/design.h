// The coefficients of a fit, set into the terms of its design.
#pragma once

#include <optional>
#include <vector>

#include "import/fit.h"
#include "import/problem.h"
#include "import/terms.h"
#include "import/variables.h"

namespace hierfit::fit {

/// The coefficients of one category of a nominal target, or of a target that has one set.
struct CoefficientSet {
  std::optional<Value> category;
  std::vector<const Coefficient*> rows;  ///< by term; null: redundant
};

/// The fixed part. Coefficients are those of the fit, which outlives it.
struct FixedDesign {
  std::vector<DesignTerm> terms;
  std::vector<CoefficientSet> sets;            ///< in order of appearance; empty: no estimates
  std::vector<const Coefficient*> thresholds;  ///< of an ordinal target
};

/// Finds the term of each coefficient. A term without a coefficient is redundant, except in an
/// effect whose coefficients have no levels: its rows are the columns as the engine made and named
/// them. Fails for two coefficients of one term and for what is lacking.
FixedDesign design_of(const Fit& fit, const Variables& variables, Problems& problems);

/// The columns of a random block: those it lists, else all combinations of levels.
std::vector<DesignTerm> columns_of(const Random& block, const Variables& variables);

/// Whether the model has an intercept; thresholds stand in its place.
bool has_intercept(const Fit& fit);

}  // namespace hierfit::fit
