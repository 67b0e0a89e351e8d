// The terms of a design: the intercept, and each effect at each combination of its levels.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "import/fit.h"
#include "import/variables.h"

namespace hierfit::fit {

/// The most terms that a design may have; those without a coefficient are made here.
inline constexpr size_t kMostTerms = 1'000'000;

/// One column of a design.
struct DesignTerm {
  std::optional<size_t> effect;  ///< none: the intercept
  std::vector<size_t> levels;    ///< of the factors of the effect, in the order of its fields
  std::string as_fitted;         ///< the engine's name of a column that is no combination of levels
};

/// A field of a term as the result documents write it.
struct TermCovariate {
  std::string_view field;
  int64_t power = 1;
};
struct TermFactor {
  std::string_view field;
  std::string_view value;
  bool is_nested = false;
};
struct TermFields {
  std::vector<TermCovariate> covariates;
  std::vector<TermFactor> factors;
};

/// The factors among the fields of an effect.
std::vector<const Variable*> factors_of(const Effect& effect, const Variables& variables);

/// How many combinations the levels of the effect's factors have; more than `kMostTerms` is cut
/// there.
size_t count_terms(const Effect& effect, const Variables& variables);

/// Appends the terms of an effect; the levels of the last factor change fastest.
void add_terms(const Effect& effect,
               size_t position,
               const Variables& variables,
               std::vector<DesignTerm>& terms);

/// What a term consists of. The effects and the variables outlive it, and so does the term.
TermFields fields_of(const DesignTerm& term,
                     const std::vector<Effect>& effects,
                     const Variables& variables);

/// The name of a term: "x*x", "a=1", "x*[a=1]", "[a=1]([b=2])", "Intercept".
std::string label_of(const DesignTerm& term,
                     const std::vector<Effect>& effects,
                     const Variables& variables);

}  // namespace hierfit::fit
