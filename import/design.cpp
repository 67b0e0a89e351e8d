#include "import/design.h"

#include <algorithm>
#include <unordered_map>

#include "import/references.h"
#include "import/words.h"

namespace hierfit::fit {
namespace {

/// A key that two terms share only when they are the same.
std::string key_of(const DesignTerm& term) {
  std::string key = term.effect ? std::to_string(*term.effect) : "";
  if (!term.as_fitted.empty()) return key + '"' + term.as_fitted;
  for (const size_t level : term.levels)
    (key += '/') += std::to_string(level);
  return key;
}

/// A name that does not read like a factor at a level.
std::string name_as_fitted(const std::string& name) {
  return name.find('=') == std::string::npos ? name : name + " (as fitted)";
}

/// The term that a document describes. Its references have been checked.
DesignTerm term_of(const Term& term,
                   const std::vector<Effect>& effects,
                   const Variables& variables) {
  DesignTerm found;
  if (!term.effect) return found;
  found.effect = static_cast<size_t>(*term.effect);
  const std::vector<const Variable*> factors = factors_of(effects[*found.effect], variables);
  if (!factors.empty() && term.levels.empty()) {
    found.as_fitted = name_as_fitted(term.name);
    return found;
  }
  for (const Variable* factor : factors) {
    const auto level = std::ranges::find(term.levels, factor->name, &Levels::value_type::first);
    found.levels.push_back(variables.position(*factor, level->second.text).value_or(0));
  }
  return found;
}

/// Collects the terms of the fixed part, and finds them again.
class Designer {
 public:
  Designer(const Fit& fit, const Variables& variables, Problems& problems)
      : fit_(fit), variables_(variables), problems_(problems) {}

  FixedDesign make() {
    resolve_rows();
    add_terms();
    if (design_.terms.size() > kMostTerms) {
      problems_.fail("fixed.effects has more than " + std::to_string(kMostTerms) +
                     " combinations of levels, which no table can show");
      return {};
    }
    for (size_t at = 0; at < design_.terms.size(); ++at)
      position_of_.try_emplace(key_of(design_.terms[at]), at);
    file_rows();
    check_intercepts();
    return std::move(design_);
  }

 private:
  void resolve_rows() {
    as_fitted_.resize(fit_.fixed.effects.size());
    by_levels_.resize(fit_.fixed.effects.size());
    for (size_t at = 0; at < fit_.coefficients.size(); ++at) {
      const Coefficient& row = fit_.coefficients[at];
      DesignTerm term = term_of(row, fit_.fixed.effects, variables_);
      if (term.effect && term.as_fitted.empty()) by_levels_[*term.effect] = true;
      if (term.effect && term.levels.empty() && !factors_at(*term.effect).empty()) {
        if (term.as_fitted.empty()) {
          problems_.fail(item("coefficients", at) + " lacks levels, or a term that names it");
        }
        as_fitted_[*term.effect].push_back(term);
      }
      rows_.push_back(std::move(term));
    }
    for (size_t effect = 0; effect < as_fitted_.size(); ++effect) {
      if (as_fitted_[effect].empty() || !by_levels_[effect]) continue;
      problems_.fail("coefficients has rows with levels and rows without for " +
                     item("fixed.effects", effect));
    }
  }

  std::vector<const Variable*> factors_at(size_t effect) const {
    return factors_of(fit_.fixed.effects[effect], variables_);
  }

  void add_terms() {
    if (has_intercept(fit_)) design_.terms.emplace_back();
    for (size_t effect = 0; effect < fit_.fixed.effects.size(); ++effect) {
      if (!as_fitted_[effect].empty()) {
        for (const DesignTerm& term : as_fitted_[effect])
          if (position_of_.try_emplace(key_of(term), 0).second) design_.terms.push_back(term);
      } else {
        fit::add_terms(fit_.fixed.effects[effect], effect, variables_, design_.terms);
      }
      if (design_.terms.size() > kMostTerms) return;
    }
    position_of_.clear();
  }

  void file_rows() {
    std::unordered_map<std::string, size_t> set_of;
    for (size_t at = 0; at < rows_.size(); ++at) {
      const Coefficient& row = fit_.coefficients[at];
      if (row.threshold) {
        design_.thresholds.push_back(&row);
        if (design_.sets.empty()) set_at("", {}, set_of);
        continue;
      }
      const auto term = position_of_.find(key_of(rows_[at]));
      if (term == position_of_.end()) {
        problems_.fail(item("coefficients", at) + " is the intercept of a model without one");
        continue;
      }
      const std::string category = row.category ? row.category->text : "";
      const Coefficient*& place = set_at(category, row.category, set_of).rows[term->second];
      if (place != nullptr) {
        problems_.fail(item("coefficients", at) + " is the same term as " +
                       item("coefficients", static_cast<size_t>(place - fit_.coefficients.data())));
      }
      place = &row;
    }
  }

  CoefficientSet& set_at(const std::string& key,
                         const std::optional<Value>& category,
                         std::unordered_map<std::string, size_t>& set_of) {
    const auto [entry, is_new] = set_of.try_emplace(key, design_.sets.size());
    if (is_new) {
      design_.sets.push_back({category, {}});
      design_.sets.back().rows.resize(design_.terms.size());
    }
    return design_.sets[entry->second];
  }

  void check_intercepts() {
    if (!has_intercept(fit_)) return;
    for (const CoefficientSet& set : design_.sets) {
      if (set.rows.empty() || set.rows[0] != nullptr) continue;
      problems_.fail("coefficients lacks the intercept, a row without effect" +
                     (set.category ? " of the category " + in_quotes(set.category->text) : "") +
                     "; a model without one has fixed.intercept false");
    }
  }

  const Fit& fit_;
  const Variables& variables_;
  Problems& problems_;
  FixedDesign design_;
  std::vector<DesignTerm> rows_;                    ///< by coefficient
  std::vector<std::vector<DesignTerm>> as_fitted_;  ///< by effect
  std::vector<bool> by_levels_;
  std::unordered_map<std::string, size_t> position_of_;
};

}  // namespace

bool has_intercept(const Fit& fit) {
  return fit.fixed.intercept.value_or(written(kDistributions, fit.distribution) != "ORDINAL");
}

FixedDesign design_of(const Fit& fit, const Variables& variables, Problems& problems) {
  return Designer(fit, variables, problems).make();
}

std::vector<DesignTerm> columns_of(const Random& block, const Variables& variables) {
  std::vector<DesignTerm> columns;
  for (const Term& term : block.terms)
    columns.push_back(term_of(term, block.effects, variables));
  if (!columns.empty()) return columns;
  if (block.intercept.value_or(true)) columns.emplace_back();
  for (size_t effect = 0; effect < block.effects.size(); ++effect) {
    add_terms(block.effects[effect], effect, variables, columns);
    if (columns.size() > kMostTerms) break;
  }
  return columns;
}

}  // namespace hierfit::fit
