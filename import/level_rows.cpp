#include "import/level_rows.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <tuple>

#include "import/design.h"
#include "import/linear_map.h"
#include "import/number_text.h"
#include "import/references.h"
#include "import/terms.h"
#include "import/words.h"

namespace hierfit::fit {
namespace {

/// Cells times columns that are worked on at a time.
constexpr size_t kMostCells = 4096;
constexpr size_t kMostColumns = 512;

/// What tells coefficients apart that share their predictions: the category and the covariates.
struct Part {
  std::string category;
  std::vector<std::pair<std::string, int64_t>> covariates;

  bool operator<(const Part& other) const {
    return std::tie(category, covariates) < std::tie(other.category, other.covariates);
  }
};

double covariance_at(const Matrix& matrix, size_t row, size_t column) {
  const auto [low, high] = std::minmax(row, column);
  return matrix[high][low];
}

/// Rewrites the coefficients of one fit.
class LevelRows {
 public:
  LevelRows(Fit& fit, const Variables& variables, Problems& problems)
      : fit_(fit), variables_(variables), problems_(problems) {}

  void run() {
    std::map<Part, std::vector<size_t>> parts;
    for (size_t row = 0; row < fit_.coefficients.size(); ++row)
      parts[part_of(fit_.coefficients[row])].push_back(row);
    for (const auto& [part, rows] : parts) {
      const bool has_columns = std::ranges::any_of(
          rows, [&](size_t row) { return !fit_.coefficients[row].columns.empty(); });
      has_columns ? rewrite(part, rows) : keep(rows);
      if (problems_.has_errors()) return;
    }
    finish();
  }

 private:
  const std::vector<Effect>& effects() const { return fit_.fixed.effects; }

  Part part_of(const Coefficient& row) const {
    Part part = {row.category ? row.category->text : "", {}};
    if (row.effect) part.covariates = covariates_of(effects()[static_cast<size_t>(*row.effect)]);
    return part;
  }

  std::vector<std::pair<std::string, int64_t>> covariates_of(const Effect& effect) const {
    std::vector<std::pair<std::string, int64_t>> covariates;
    for (size_t at = 0; at < effect.fields.size(); ++at) {
      if (variables_.is_factor(effect.fields[at])) continue;
      covariates.emplace_back(effect.fields[at], at < effect.powers.size() ? effect.powers[at] : 1);
    }
    std::ranges::sort(covariates);
    return covariates;
  }

  void keep(const std::vector<size_t>& rows) {
    for (const size_t row : rows) {
      std::vector<double>& weights = weights_.emplace_back(fit_.coefficients.size(), 0);
      weights[row] = 1;
      made_.push_back(fit_.coefficients[row]);
      kept_.emplace_back(row);
    }
  }

  /// The terms that a part can have, those first that stand at no last level.
  std::vector<DesignTerm> candidates_of(const Part& part) const {
    std::vector<DesignTerm> first;
    std::vector<DesignTerm> last;
    if (part.covariates.empty() && has_intercept(fit_)) first.emplace_back();
    for (size_t effect = 0; effect < effects().size(); ++effect) {
      if (covariates_of(effects()[effect]) != part.covariates) continue;
      const std::vector<const Variable*> factors = factors_of(effects()[effect], variables_);
      std::vector<DesignTerm> terms;
      add_terms(effects()[effect], effect, variables_, terms);
      for (DesignTerm& term : terms) {
        bool is_last = false;
        for (size_t at = 0; at < factors.size(); ++at)
          is_last = is_last || term.levels[at] + 1 == factors[at]->values.size();
        (is_last ? last : first).push_back(std::move(term));
      }
    }
    first.insert(first.end(), last.begin(), last.end());
    return first;
  }

  /// The factors of a part, and so its cells: all combinations of their levels.
  std::vector<const Variable*> factors_of_part(const Part& part) const {
    std::vector<const Variable*> all;
    for (const Effect& effect : effects()) {
      if (covariates_of(effect) != part.covariates) continue;
      for (const Variable* factor : factors_of(effect, variables_))
        if (std::ranges::find(all, factor) == all.end()) all.push_back(factor);
    }
    return all;
  }

  void rewrite(const Part& part, const std::vector<size_t>& rows) {
    const std::vector<const Variable*> factors = factors_of_part(part);
    size_t cells = 1;
    for (const Variable* factor : factors)
      cells = std::min(cells * factor->values.size(), kMostCells + 1);
    const std::vector<DesignTerm> candidates = candidates_of(part);
    if (cells > kMostCells || candidates.size() > kMostColumns) {
      problems_.fail(
          "the coded factors have too many combinations of levels; give their rows as "
          "fitted, without columns");
      return;
    }
    std::vector<CellColumn> old_columns;
    old_columns.reserve(rows.size());
    for (const size_t row : rows)
      old_columns.push_back(column_of(fit_.coefficients[row], factors, cells));
    std::vector<CellColumn> new_columns;
    new_columns.reserve(candidates.size());
    for (const DesignTerm& term : candidates)
      new_columns.push_back(column_of(term, factors, cells));
    const auto map = map_columns(old_columns, new_columns);
    if (!map) {
      problems_.fail("the columns of " + item("coefficients", rows[0]) +
                     " and those with it tell more than the effects do; is an effect lacking?");
      return;
    }
    for (size_t at = 0; at < map->taken.size(); ++at)
      add_row(part, rows, candidates[map->taken[at]], map->weights[at]);
  }

  /// The level of each factor in a cell; those of the last factor change fastest.
  static size_t level_in(size_t cell, size_t factor, const std::vector<const Variable*>& factors) {
    for (size_t at = factors.size(); at-- > factor + 1;)
      cell /= factors[at]->values.size();
    return cell % factors[factor]->values.size();
  }

  CellColumn column_of(const Coefficient& row,
                       const std::vector<const Variable*>& factors,
                       size_t cells) const {
    CellColumn column(cells, 1);
    if (!row.effect) return column;
    const Effect& effect = effects()[static_cast<size_t>(*row.effect)];
    for (size_t at = 0; at < factors.size(); ++at) {
      const std::string& name = factors[at]->name;
      if (std::ranges::find(effect.fields, name) == effect.fields.end()) continue;
      const std::vector<double> code = code_of(row, *factors[at]);
      for (size_t cell = 0; cell < cells; ++cell)
        column[cell] *= code[level_in(cell, at, factors)];
    }
    return column;
  }

  /// What a factor contributes to a row at each of its levels.
  std::vector<double> code_of(const Coefficient& row, const Variable& factor) const {
    std::vector<double> code(factor.values.size(), 0);
    const auto column = std::ranges::find(row.columns, factor.name, &Levels::value_type::first);
    if (column != row.columns.end()) {
      const auto coding = std::ranges::find(fit_.fixed.codings, factor.name, &Coding::variable);
      const auto at = static_cast<size_t>(parse_number(column->second.text).value_or(0));
      for (size_t level = 0; level < code.size(); ++level)
        code[level] = coding->matrix[level][at];
      return code;
    }
    const auto level = std::ranges::find(row.levels, factor.name, &Levels::value_type::first);
    code[variables_.position(factor, level->second.text).value_or(0)] = 1;
    return code;
  }

  CellColumn column_of(const DesignTerm& term,
                       const std::vector<const Variable*>& factors,
                       size_t cells) const {
    CellColumn column(cells, 1);
    if (!term.effect) return column;
    const std::vector<const Variable*> own = factors_of(effects()[*term.effect], variables_);
    for (size_t at = 0; at < own.size(); ++at) {
      const auto place = static_cast<size_t>(std::ranges::find(factors, own[at]) - factors.begin());
      for (size_t cell = 0; cell < cells; ++cell)
        if (level_in(cell, place, factors) != term.levels[at]) column[cell] = 0;
    }
    return column;
  }

  void add_row(const Part& part,
               const std::vector<size_t>& rows,
               const DesignTerm& term,
               const std::vector<double>& weights) {
    Coefficient made;
    if (!part.category.empty()) made.category = Value{part.category};
    if (term.effect) made.effect = static_cast<int64_t>(*term.effect);
    if (term.effect) {
      const std::vector<const Variable*> factors = factors_of(effects()[*term.effect], variables_);
      for (size_t at = 0; at < factors.size(); ++at)
        made.levels.emplace_back(factors[at]->name, factors[at]->values[term.levels[at]]);
    }
    std::vector<double>& all = weights_.emplace_back(fit_.coefficients.size(), 0);
    made.estimate = 0;
    for (size_t at = 0; at < rows.size(); ++at) {
      const Coefficient& row = fit_.coefficients[rows[at]];
      all[rows[at]] = weights[at];
      if (weights[at] == 0) continue;
      made.estimate += weights[at] * row.estimate;
      if (exists(row.df) && !(made.df < row.df)) made.df = row.df;
    }
    made_.push_back(std::move(made));
    kept_.emplace_back();
  }

  /// The covariance of the new rows, and with it their standard errors.
  void finish() {
    const size_t size = made_.size();
    Matrix covariance(size);
    for (size_t row = 0; row < size; ++row) {
      const std::vector<double> half = times_covariance(weights_[row]);
      for (size_t column = 0; column <= row; ++column) {
        double sum = 0;
        for (size_t at = 0; at < half.size(); ++at)
          if (weights_[column][at] != 0) sum += half[at] * weights_[column][at];
        covariance[row].push_back(sum);
      }
      if (!kept_[row]) made_[row].std_error = std::sqrt(std::max(0.0, covariance[row][row]));
    }
    fit_.coefficients = std::move(made_);
    fit_.covariance = std::move(covariance);
  }

  std::vector<double> times_covariance(const std::vector<double>& weights) const {
    std::vector<double> product(weights.size(), 0);
    for (size_t row = 0; row < weights.size(); ++row) {
      if (weights[row] == 0) continue;
      for (size_t column = 0; column < weights.size(); ++column)
        product[column] += weights[row] * covariance_at(fit_.covariance, row, column);
    }
    return product;
  }

  Fit& fit_;
  const Variables& variables_;
  Problems& problems_;
  std::vector<Coefficient> made_;
  std::vector<std::vector<double>> weights_;  ///< of each new row: a weight for each old one
  std::vector<std::optional<size_t>> kept_;   ///< the old row that a new one is
};

}  // namespace

void make_level_rows(Fit& fit, const Variables& variables, Problems& problems) {
  const auto is_coded = [](const Coefficient& row) { return !row.columns.empty(); };
  if (std::ranges::none_of(fit.coefficients, is_coded)) return;
  if (fit.covariance.empty()) {
    problems.fail("vcov is lacking, without which columns of codings cannot be turned into levels");
  } else if (written(kDistributions, fit.distribution) == "ORDINAL") {
    problems.fail(
        "columns of codings cannot be turned into levels with an ordinal target; give "
        "their rows as fitted, without columns");
  } else {
    LevelRows(fit, variables, problems).run();
  }
}

}  // namespace hierfit::fit
