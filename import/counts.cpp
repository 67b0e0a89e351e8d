#include "import/counts.h"

#include <algorithm>

#include "import/common_subjects.h"
#include "import/words.h"

namespace hierfit::fit {
namespace {

int64_t count_estimated(const std::vector<CovarianceParameter>& parameters) {
  return std::ranges::count_if(
      parameters, [](const CovarianceParameter& row) { return !row.fixed.value_or(false); });
}

/// How many parameters a structure has for so many columns; -1: it depends on more.
int64_t parameters_of(std::string_view structure, int64_t columns, int64_t effects) {
  const std::pair<std::string_view, int64_t> counts[] = {
      {"VC", effects},   {"AR1", 2},
      {"ARMA11", 3},     {"CS", 2},
      {"DIAG", columns}, {"ID", 1},
      {"TP", columns},   {"UNSTRUCTURED", columns * (columns + 1) / 2}};
  const auto found =
      std::ranges::find(counts, structure, &std::pair<std::string_view, int64_t>::first);
  return found == std::end(counts) ? -1 : found->second;
}

/// Those that are listed; of a fit without estimates those that the structure has.
std::optional<int64_t> count_random_parameters(const Prepared& prepared) {
  int64_t count = 0;
  for (size_t at = 0; at < prepared.fit.random.size(); ++at) {
    const Random& block = prepared.fit.random[at];
    const auto columns = static_cast<int64_t>(prepared.random[at].size());
    const auto effects =
        static_cast<int64_t>(block.effects.size()) + block.intercept.value_or(true);
    const int64_t listed = count_estimated(block.parameters);
    const int64_t own = block.parameters.empty()
                            ? parameters_of(structure_or(block.structure, "VC"), columns, effects)
                            : listed;
    if (own < 0) return {};
    count += own;
  }
  return count;
}

/// The same; without the columns, which the repeated measures would tell.
std::optional<int64_t> count_residual_parameters(const Residual& residual) {
  if (!residual.parameters.empty()) return count_estimated(residual.parameters);
  const int64_t count = parameters_of(structure_or(residual.structure, "ID"), -1, -1);
  if (count < 0 || residual.structure == "unstructured") return {};
  return count;
}

/// A nominal target has the columns once for each category but the reference.
int64_t count_fixed_columns(const Prepared& prepared) {
  const size_t sets = std::max<size_t>(prepared.fixed.sets.size(), 1);
  return static_cast<int64_t>(prepared.fixed.terms.size() * sets +
                              prepared.fixed.thresholds.size());
}

/// The columns that one common subject needs: those of a block as often as its other subject fields
/// have levels.
int64_t count_random_columns(const Prepared& prepared) {
  const std::vector<std::string> common = common_subjects(prepared.fit);
  size_t count = 0;
  for (size_t block = 0; block < prepared.fit.random.size(); ++block) {
    size_t columns = prepared.random[block].size();
    for (const std::string& subject : prepared.fit.random[block].subjects) {
      if (std::ranges::find(common, subject) != common.end()) continue;
      const Variable* variable = prepared.variables.find(subject);
      if (variable != nullptr) columns *= std::max<size_t>(variable->values.size(), 1);
      columns = std::min<size_t>(columns, kMostTerms);
    }
    count += columns;
  }
  return static_cast<int64_t>(count);
}

/// As many as the values of the field when there is one; of several the records would have to tell.
std::optional<int64_t> count_common_subjects(const Prepared& prepared) {
  const std::vector<std::string> common = common_subjects(prepared.fit);
  if (common.empty()) return 1;
  const Variable* variable = prepared.variables.find(common[0]);
  if (common.size() > 1 || variable == nullptr || variable->values.empty()) return {};
  return static_cast<int64_t>(variable->values.size());
}

}  // namespace

Counts counts_of(const Prepared& prepared) {
  const Fit& fit = prepared.fit;
  Counts counts = fit.counts;
  if (!counts.residual_parameters) {
    counts.residual_parameters = count_residual_parameters(fit.residual);
  }
  if (!counts.random_parameters) counts.random_parameters = count_random_parameters(prepared);
  if (!counts.fixed_columns) counts.fixed_columns = count_fixed_columns(prepared);
  if (!counts.random_columns) counts.random_columns = count_random_columns(prepared);
  if (!counts.common_subjects) counts.common_subjects = count_common_subjects(prepared);
  return counts;
}

const std::vector<Value>& categories_of(const Prepared& prepared) {
  const Target& target = prepared.fit.target;
  if (!target.order.empty()) return target.order;
  return prepared.variables.find(target.variable)->values;
}

}  // namespace hierfit::fit
