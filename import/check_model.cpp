// Contradictions between the variables, the effects and the coefficients.
#include <algorithm>
#include <cmath>
#include <set>
#include <string_view>

#include "import/check_fit.h"
#include "import/number_text.h"
#include "import/references.h"
#include "import/terms.h"
#include "import/words.h"

namespace hierfit::fit {
namespace {

class ModelCheck {
 public:
  ModelCheck(const Fit& fit, const Variables& variables, Problems& problems)
      : fit_(fit), variables_(variables), refer_(variables, problems) {}

  void run() {
    check_variables();
    check_target();
    check_effects("fixed.effects", fit_.fixed.effects);
    check_codings();
    for (size_t at = 0; at < fit_.coefficients.size(); ++at)
      check_coefficient(item("coefficients", at), fit_.coefficients[at]);
    if (!fit_.covariance.empty()) {
      refer_.matrix("vcov", fit_.covariance, fit_.coefficients.size(), "coefficients");
    }
    for (size_t at = 0; at < fit_.random.size(); ++at)
      check_random(item("random", at), fit_.random[at]);
    check_residual();
  }

 private:
  void check_variables() {
    std::set<std::string_view> names;
    for (size_t at = 0; at < fit_.variables.size(); ++at) {
      const Variable& variable = fit_.variables[at];
      const std::string path = item("variables", at);
      if (variable.name.empty()) refer_.fail(path + ".name is empty");
      if (!names.insert(variable.name).second) {
        refer_.fail(path + ".name is " + in_quotes(variable.name) +
                    ", which another variable has, too");
      }
      check_values(path, variable);
    }
  }

  void check_values(const std::string& path, const Variable& variable) {
    std::set<std::string_view> values;
    for (size_t at = 0; at < variable.values.size(); ++at) {
      if (values.insert(variable.values[at].text).second) continue;
      refer_.fail(item(path + ".values", at) + " is " + in_quotes(variable.values[at].text) +
                  ", which stands twice");
    }
    for (const auto& [value, label] : variable.labels) {
      if (values.empty() || values.contains(value)) continue;
      refer_.warn(path + ".labels has a label for " + in_quotes(value) +
                  ", which is no value of the variable");
    }
  }

  void check_target() {
    const Target& target = fit_.target;
    const Variable* variable = refer_.field("target.variable", target.variable);
    if (!target.trials.empty()) refer_.field("target.trials", target.trials);
    if (!target.trials.empty() && target.trials_constant) {
      refer_.fail("target has both trials and trials.constant; one of them tells the trials");
    }
    const bool has_trials = !target.trials.empty() || target.trials_constant;
    if (has_trials && written(kDistributions, fit_.distribution) != "BINOMIAL") {
      refer_.fail("target has trials, and distribution is " + in_quotes(fit_.distribution) +
                  "; trials belong to a binomial one");
    }
    if (variable == nullptr) return;
    if (target.reference) refer_.value("target.reference", *variable, *target.reference);
    for (size_t at = 0; at < target.order.size(); ++at)
      refer_.value(item("target.order", at), *variable, target.order[at]);
    if (is_categorical() && !is_factor(*variable)) {
      refer_.fail("target.variable is " + in_quotes(variable->name) +
                  ", which has no categories, and distribution is " + in_quotes(fit_.distribution));
    }
  }

  bool is_categorical() const {
    const std::string_view distribution = written(kDistributions, fit_.distribution);
    return distribution == "NOMINAL" || distribution == "ORDINAL";
  }

  void check_effects(const std::string& path, const std::vector<Effect>& effects) {
    for (size_t at = 0; at < effects.size(); ++at)
      check_effect(item(path, at), effects[at]);
  }

  void check_effect(const std::string& path, const Effect& effect) {
    if (effect.fields.empty())
      refer_.fail(path + ".fields is empty; an effect has a field or more");
    refer_.fields(path + ".fields", effect.fields);
    check_length(path + ".powers", effect.powers.size(), effect.fields.size());
    check_length(path + ".nesting", effect.nesting.size(), effect.fields.size());
    for (size_t at = 0; at < effect.fields.size(); ++at) {
      const Variable* variable = variables_.find(effect.fields[at]);
      if (variable == nullptr || !is_factor(*variable)) continue;
      if (variable->values.empty()) {
        refer_.fail(item(path + ".fields", at) + " is the factor " + in_quotes(variable->name) +
                    ", whose values are not given");
      }
      if (at < effect.powers.size() && effect.powers[at] != 1) {
        refer_.fail(item(path + ".powers", at) + " is a power of the factor " +
                    in_quotes(variable->name) + ", which can only be 1");
      }
    }
    if (count_terms(effect, variables_) > kMostTerms) {
      refer_.fail(path + " has more than " + std::to_string(kMostTerms) +
                  " combinations of levels, which no table can show");
    }
  }

  void check_length(const std::string& path, size_t length, size_t wanted) {
    if (length == 0 || length == wanted) return;
    refer_.fail(path + " has " + std::to_string(length) + " numbers for " + std::to_string(wanted) +
                " fields");
  }

  void check_codings() {
    const std::vector<Coding>& codings = fit_.fixed.codings;
    for (size_t at = 0; at < codings.size(); ++at) {
      const std::string path = item("fixed.codings", at);
      const Variable* factor = refer_.factor(path + ".variable", codings[at].variable);
      if (factor == nullptr) continue;
      const Matrix& matrix = codings[at].matrix;
      const bool is_even = std::ranges::all_of(
          matrix, [&](const auto& row) { return row.size() == matrix[0].size(); });
      if (matrix.size() == factor->values.size() && is_even) continue;
      refer_.fail(path + ".matrix needs a row of equal length for each of the " +
                  std::to_string(factor->values.size()) + " values of " + factor->name);
    }
  }

  void check_term(const std::string& path, const Term& term, const std::vector<Effect>& effects) {
    if (!term.effect) {
      for (const auto& [name, level] : term.levels)
        refer_.fail(inside(path + ".levels", name) + " stands without an effect");
      return;
    }
    if (!refer_.position(path + ".effect", *term.effect, effects.size(), "effects")) return;
    const Effect& effect = effects[static_cast<size_t>(*term.effect)];
    refer_.levels(path + ".levels", term.levels, effect.fields);
    for (const auto& [name, column] : term.columns)
      check_column(inside(path + ".columns", name), name, column, effect);
    if (term.levels.empty() && term.columns.empty()) return;
    for (const Variable* factor : factors_of(effect, variables_)) {
      if (has(term.levels, factor->name) || has(term.columns, factor->name)) continue;
      refer_.fail(path + ".levels lacks the level of " + in_quotes(factor->name));
    }
  }

  static bool has(const Levels& levels, const std::string& name) {
    return std::ranges::find(levels, name, &Levels::value_type::first) != levels.end();
  }

  void check_column(const std::string& path,
                    const std::string& name,
                    const Value& column,
                    const Effect& effect) {
    const auto coding = std::ranges::find(fit_.fixed.codings, name, &Coding::variable);
    const bool is_field = std::ranges::find(effect.fields, name) != effect.fields.end();
    if (!is_field || coding == fit_.fixed.codings.end() || coding->matrix.empty()) {
      refer_.fail(path + " is a column of " + in_quotes(name) +
                  (is_field ? ", which has no coding" : ", which is none of the fields here"));
      return;
    }
    const double at = parse_number(column.text).value_or(-1);
    const auto columns = static_cast<double>(coding->matrix[0].size());
    if (at >= 0 && at < columns && at == std::floor(at)) return;
    refer_.fail(path + " is " + in_quotes(column.text) + ", and the coding has " +
                number_text(columns) + " columns, counted from 0");
  }

  void check_coefficient(const std::string& path, const Coefficient& row) {
    check_term(path, row, fit_.fixed.effects);
    const Variable* target = variables_.find(fit_.target.variable);
    const std::string_view distribution = written(kDistributions, fit_.distribution);
    if (row.category.has_value() != (distribution == "NOMINAL")) {
      refer_.fail(path +
                  (row.category ? ".y.level stands with" : " lacks y.level, the category, with") +
                  " the distribution " + in_quotes(fit_.distribution));
    } else if (row.category && target != nullptr) {
      refer_.value(path + ".y.level", *target, *row.category);
    }
    if (row.threshold && distribution != "ORDINAL") {
      refer_.fail(path + ".threshold stands with the distribution " + in_quotes(fit_.distribution));
    } else if (row.threshold && target != nullptr) {
      refer_.value(path + ".threshold", *target, *row.threshold);
    }
    if (row.conf_low > row.conf_high) refer_.warn(path + ".conf.low is above conf.high");
  }

  void check_random(const std::string& path, const Random& block) {
    check_subjects(path, block.subjects, block.nesting, block.groups);
    check_effects(path + ".effects", block.effects);
    for (size_t at = 0; at < block.terms.size(); ++at)
      check_term(item(path + ".terms", at), block.terms[at], block.effects);
    const size_t terms = count_columns(block);
    for (size_t at = 0; at < block.parameters.size(); ++at)
      check_parameter(item(path + ".parameters", at), block.parameters[at], block, terms);
    for (size_t at = 0; at < block.covariances.size(); ++at) {
      const std::string here = item(path + ".covariances", at);
      refer_.matrix(here + ".matrix", block.covariances[at].matrix, terms, "terms");
      check_group(here + ".levels", block.covariances[at].levels, block.groups);
    }
  }

  size_t count_columns(const Random& block) const {
    if (!block.terms.empty()) return block.terms.size();
    size_t count = block.intercept.value_or(true) ? 1 : 0;
    for (const Effect& effect : block.effects)
      count += count_terms(effect, variables_);
    return count;
  }

  void check_parameter(const std::string& path,
                       const CovarianceParameter& parameter,
                       const Random& block,
                       size_t terms) {
    if (parameter.effect) {
      refer_.position(path + ".effect", *parameter.effect, block.effects.size(), "effects");
    }
    for (size_t at = 0; at < parameter.terms.size(); ++at)
      refer_.position(item(path + ".terms", at), parameter.terms[at], terms, "terms");
    check_group(path + ".levels", parameter.levels, block.groups);
  }

  /// A group is told by the group fields; of a nominal target by its category, too.
  void check_group(const std::string& path, const Levels& levels, std::vector<std::string> groups) {
    if (written(kDistributions, fit_.distribution) == "NOMINAL")
      groups.push_back(fit_.target.variable);
    refer_.levels(path, levels, groups);
  }

  void check_subjects(const std::string& path,
                      const std::vector<std::string>& subjects,
                      const std::vector<int64_t>& nesting,
                      const std::vector<std::string>& groups) {
    for (size_t at = 0; at < subjects.size(); ++at)
      refer_.factor(item(path + ".subjects", at), subjects[at]);
    for (size_t at = 0; at < groups.size(); ++at)
      refer_.factor(item(path + ".groups", at), groups[at]);
    check_length(path + ".nesting", nesting.size(), subjects.size());
  }

  void check_residual() {
    const Residual& residual = fit_.residual;
    check_subjects("residual", residual.subjects, residual.nesting, residual.groups);
    for (size_t at = 0; at < residual.repeated.size(); ++at)
      refer_.field(item("residual.repeated", at), residual.repeated[at]);
    for (size_t at = 0; at < residual.parameters.size(); ++at) {
      check_group(item("residual.parameters", at) + ".levels", residual.parameters[at].levels,
                  residual.groups);
    }
  }

  const Fit& fit_;
  const Variables& variables_;
  References refer_;
};

}  // namespace

void check_model(const Fit& fit, const Variables& variables, Problems& problems) {
  ModelCheck(fit, variables, problems).run();
}

void check_fit(const Fit& fit, const Variables& variables, Problems& problems) {
  check_model(fit, variables, problems);
  check_results(fit, variables, problems);
}

}  // namespace hierfit::fit
