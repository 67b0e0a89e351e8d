#include "import/terms.h"

#include <algorithm>

namespace hierfit::fit {
namespace {

template <typename T>
T at_or(const std::vector<T>& list, size_t position, T otherwise) {
  return position < list.size() ? list[position] : otherwise;
}

std::string factor_text(const TermFactor& factor) {
  return "[" + std::string(factor.field) + "=" + std::string(factor.value) + "]";
}

std::string covariate_text(const std::vector<TermCovariate>& covariates) {
  std::string text;
  for (const TermCovariate& covariate : covariates) {
    for (int64_t power = 0; power < std::max<int64_t>(covariate.power, 1); ++power) {
      if (!text.empty()) text += '*';
      text += covariate.field;
    }
  }
  return text;
}

}  // namespace

std::vector<const Variable*> factors_of(const Effect& effect, const Variables& variables) {
  std::vector<const Variable*> factors;
  for (const std::string& field : effect.fields) {
    const Variable* variable = variables.find(field);
    if (variable != nullptr && is_factor(*variable)) factors.push_back(variable);
  }
  return factors;
}

size_t count_terms(const Effect& effect, const Variables& variables) {
  size_t count = 1;
  for (const Variable* factor : factors_of(effect, variables)) {
    count *= factor->values.size();
    if (count > kMostTerms) return kMostTerms + 1;
  }
  return count;
}

void add_terms(const Effect& effect,
               size_t position,
               const Variables& variables,
               std::vector<DesignTerm>& terms) {
  const std::vector<const Variable*> factors = factors_of(effect, variables);
  const size_t count = count_terms(effect, variables);
  std::vector<size_t> levels(factors.size(), 0);
  for (size_t term = 0; term < count; ++term) {
    terms.push_back({position, levels, {}});
    for (size_t factor = factors.size(); factor-- > 0;) {
      if (++levels[factor] < factors[factor]->values.size()) break;
      levels[factor] = 0;
    }
  }
}

TermFields fields_of(const DesignTerm& term,
                     const std::vector<Effect>& effects,
                     const Variables& variables) {
  TermFields parts;
  if (!term.as_fitted.empty()) {
    parts.covariates.push_back({term.as_fitted, 1});
    return parts;
  }
  if (!term.effect) return parts;
  const Effect& effect = effects[*term.effect];
  int64_t nesting = 0;
  size_t factor = 0;
  for (size_t at = 0; at < effect.fields.size(); ++at) {
    const int64_t level = at_or<int64_t>(effect.nesting, at, 0);
    const Variable* variable = variables.find(effect.fields[at]);
    if (variable != nullptr && is_factor(*variable)) {
      const size_t value = term.levels[factor++];
      parts.factors.push_back({variable->name, variable->values[value].text, level > nesting});
    } else {
      parts.covariates.push_back({effect.fields[at], at_or<int64_t>(effect.powers, at, 1)});
    }
    nesting = std::max(nesting, level);
  }
  return parts;
}

std::string label_of(const DesignTerm& term,
                     const std::vector<Effect>& effects,
                     const Variables& variables) {
  if (!term.effect && term.as_fitted.empty()) return "Intercept";
  const TermFields parts = fields_of(term, effects, variables);
  std::string text = covariate_text(parts.covariates);
  if (text.empty() && parts.factors.size() == 1) {
    const TermFactor& only = parts.factors[0];
    return std::string(only.field) + (only.value.empty() ? "" : "=") + std::string(only.value);
  }
  std::string closing;
  for (const TermFactor& factor : parts.factors) {
    if (factor.is_nested) {
      text += '(';
      closing += ')';
    } else if (!text.empty()) {
      text += '*';
    }
    text += factor_text(factor);
  }
  return text + closing;
}

}  // namespace hierfit::fit
