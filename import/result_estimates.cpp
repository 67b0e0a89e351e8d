// Coefficients, covariance parameters and messages: `TrainingSummary`.
#include <map>

#include "import/number_text.h"
#include "import/result_document.h"
#include "import/words.h"

namespace hierfit::fit {
namespace {

/// The numbers and the name of a `ParameterStats` element.
struct ParameterStats {
  std::string name;
  std::string label;
  const Estimate* estimate;
  bool is_t = false;  ///< whether the statistic is a t, else a z
  double exp = kMissing;
  double exp_low = kMissing;
  double exp_high = kMissing;
  bool is_redundant = false;
};

[[nodiscard]] XmlWriter::Element parameter_element(const ParameterStats& row, XmlWriter& xml) {
  const Estimate& estimate = *row.estimate;
  const std::string statistic = number_text(estimate.statistic);
  return xml.element("ParameterStats", {{"paramName", row.name},
                                        {"paramLabel", row.label},
                                        {"estimate", number_text(estimate.estimate)},
                                        {"stdError", number_text(estimate.std_error)},
                                        {"df", number_text(estimate.df)},
                                        {"confIntervalLower", number_text(estimate.conf_low)},
                                        {"confIntervalUpper", number_text(estimate.conf_high)},
                                        {"tTest", row.is_t ? statistic : ""},
                                        {"zTest", row.is_t ? "" : statistic},
                                        {"sig", number_text(estimate.p_value)},
                                        {"chiSquare", ""},
                                        {"expEstimate", number_text(row.exp)},
                                        {"expCILower", number_text(row.exp_low)},
                                        {"expCIUpper", number_text(row.exp_high)},
                                        {"isRedundant", row.is_redundant ? "true" : "false"}});
}

/// The fixed coefficients have a column for t alone; a z goes there, too.
ParameterStats stats_of(const Coefficient& row, std::string name, std::string label) {
  return {std::move(name), std::move(label), &row, true, row.exp, row.exp_low, row.exp_high, false};
}

ParameterStats redundant(bool has_exp, std::string name, std::string label) {
  static constexpr Estimate kZero = {.estimate = 0};
  ParameterStats row = {std::move(name), std::move(label), &kZero};
  if (has_exp) row.exp = 1;
  row.is_redundant = true;
  return row;
}

/// Writes the coefficients of one set.
class FixedWriter {
 public:
  FixedWriter(const Prepared& prepared, XmlWriter& xml) : prepared_(prepared), xml_(xml) {
    for (const Coefficient& row : prepared.fit.coefficients)
      has_exp_ = has_exp_ || exists(row.exp);
  }

  void write(const CoefficientSet& set) {
    const auto estimates = xml_.element("ParameterEstimates", {{"parameterType", "fixed"}});
    if (set.category) write_segment({{prepared_.fit.target.variable, *set.category}}, xml_);
    for (size_t at = 0; at < prepared_.fixed.thresholds.size(); ++at)
      write_threshold(at, *prepared_.fixed.thresholds[at]);
    for (size_t term = 0; term < set.rows.size(); ++term)
      write_row(term, set.rows[term]);
  }

 private:
  const std::vector<Effect>& effects() const { return prepared_.fit.fixed.effects; }

  void write_threshold(size_t at, const Coefficient& row) {
    const std::string& target = prepared_.fit.target.variable;
    const std::string name = "T" + std::to_string(at);
    const auto element =
        parameter_element(stats_of(row, name, target + "=" + row.threshold->text), xml_);
    const auto parameter =
        xml_.element("RegressionParameter", {{"isIntercept", "false"}, {"name", name}});
    xml_.leaf("Factor", {{"field", target}, {"value", row.threshold->text}});
  }

  void write_row(size_t at, const Coefficient* row) {
    const DesignTerm& term = prepared_.fixed.terms[at];
    const std::string name = fixed_name(at);
    const std::string label = label_of(term, effects(), prepared_.variables);
    const auto element = parameter_element(
        row == nullptr ? redundant(has_exp_, name, label) : stats_of(*row, name, label), xml_);
    write_term(term, name, effects(), prepared_.variables, xml_);
    if (term.effect) write_statistic("fixedEffectIndex", static_cast<double>(*term.effect), xml_);
  }

  const Prepared& prepared_;
  XmlWriter& xml_;
  bool has_exp_ = false;
};

void write_map_reference(size_t map, size_t term, XmlWriter& xml) {
  xml.leaf("PrintableList",
           {{"pattern", random_name(term)}, {"isKey", "false"}, {"mapId", std::to_string(map)}});
}

/// The name of a parameter of a block: a known one of its effect or its terms, else its own.
void write_random_name(const CovarianceParameter& row,
                       const Random& block,
                       size_t map,
                       XmlWriter& xml) {
  const Word* word = find_word(kRandomParameters, row.parameter);
  const bool is_of_effect = row.parameter == kVariance.name && row.terms.empty();
  if (is_of_effect) {
    const size_t first = block.intercept.value_or(true) ? 1 : 0;
    const size_t effect = row.effect ? static_cast<size_t>(*row.effect) + first : 0;
    const auto list = xml.element("PrintableList", {{"pattern", "VarOfEffect"}, {"isKey", "true"}});
    xml.leaf("PrintableList", {{"pattern", std::to_string(effect)}, {"isKey", "false"}});
    return;
  }
  const std::string_view pattern =
      word == nullptr ? std::string_view(row.parameter) : word->written;
  const auto list = xml.element("PrintableList", {{"pattern", pattern}, {"isKey", "true"}});
  for (const int64_t term : row.terms)
    write_map_reference(map, static_cast<size_t>(term), xml);
}

void write_residual_name(const CovarianceParameter& row, XmlWriter& xml) {
  const Word* word = find_word(kResidualParameters, row.parameter);
  xml.leaf("PrintableList",
           {{"pattern", word == nullptr ? std::string_view(row.parameter) : word->written},
            {"isKey", "true"}});
}

/// What a parameter is called in a document that is read by people.
std::string label_of_parameter(const CovarianceParameter& row,
                               const std::vector<DesignTerm>& terms,
                               const std::vector<Effect>& effects,
                               const Variables& variables) {
  std::string label = row.parameter;
  for (const int64_t term : row.terms)
    label += " " + label_of(terms[static_cast<size_t>(term)], effects, variables);
  return label;
}

/// Parameters by their group, in order of appearance.
std::vector<std::pair<Levels, std::vector<const CovarianceParameter*>>> groups_of(
    const std::vector<CovarianceParameter>& parameters) {
  std::vector<std::pair<Levels, std::vector<const CovarianceParameter*>>> groups;
  std::map<Levels, size_t> position_of;
  for (const CovarianceParameter& row : parameters) {
    const auto [entry, is_new] = position_of.try_emplace(in_order(row.levels), groups.size());
    if (is_new) groups.push_back({row.levels, {}});
    groups[entry->second].second.push_back(&row);
  }
  return groups;
}

void write_residual(const Fit& fit, XmlWriter& xml) {
  for (const auto& [levels, rows] : groups_of(fit.residual.parameters)) {
    const auto estimates = xml.element("ParameterEstimates", {{"parameterType", "repeated"}});
    if (!levels.empty()) write_segment(levels, xml);
    for (size_t at = 0; at < rows.size(); ++at) {
      const auto element =
          parameter_element({"R" + std::to_string(at), rows[at]->parameter, rows[at]}, xml);
      write_residual_name(*rows[at], xml);
    }
  }
}

void write_random(const Prepared& prepared, size_t block, XmlWriter& xml) {
  const Random& random = prepared.fit.random[block];
  for (const auto& [levels, rows] : groups_of(random.parameters)) {
    const auto estimates = xml.element(
        "ParameterEstimates", {{"parameterType", "random"}, {"block", std::to_string(block)}});
    if (!levels.empty()) write_segment(levels, xml);
    for (size_t at = 0; at < rows.size(); ++at) {
      const std::string label =
          label_of_parameter(*rows[at], prepared.random[block], random.effects, prepared.variables);
      const auto element = parameter_element({"G" + std::to_string(at), label, rows[at]}, xml);
      write_random_name(*rows[at], random, block + 1, xml);
    }
  }
}

void write_messages(const Fit& fit, XmlWriter& xml) {
  constexpr std::string_view kGeneral = "kGLMM_C11";
  bool is_told = false;
  for (const std::string& condition : fit.engine.conditions) {
    const std::string_view key = written(kConditions, condition);
    is_told = is_told || key == kGeneral;
    if (key != kGeneral || fit.engine.warnings.empty()) write_message(key, "", xml);
  }
  for (const std::string& warning : fit.engine.warnings)
    write_message(kGeneral, warning, xml);
  // A result without estimates reads only when the engine says why there are none.
  if (fit.coefficients.empty() && !is_told && fit.engine.warnings.empty()) {
    write_message(kGeneral, "The fit has no coefficients.", xml);
  }
}

}  // namespace

void write_estimates(const Prepared& prepared, XmlWriter& xml) {
  const Fit& fit = prepared.fit;
  const auto summary = xml.element("TrainingSummary");
  if (!fit.coefficients.empty()) {
    FixedWriter writer(prepared, xml);
    for (const CoefficientSet& set : prepared.fixed.sets)
      writer.write(set);
    write_residual(fit, xml);
    for (size_t block = 0; block < fit.random.size(); ++block)
      write_random(prepared, block, xml);
  }
  write_messages(fit, xml);
}

}  // namespace hierfit::fit
