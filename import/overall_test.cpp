#include "import/overall_test.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <map>

namespace hierfit::fit {
namespace {

/// What is left of a variance, as a share of it, below which a contrast hangs on the others.
constexpr double kNothingLeft = 1e-9;

/// The contrasts that share the levels of the other factors.
struct Family {
  Levels levels;
  std::vector<size_t> rows;
};

std::vector<Family> families_of(const Contrasts& contrasts) {
  std::vector<Family> families;
  std::map<Levels, size_t> position_of;
  for (size_t row = 0; row < contrasts.rows.size(); ++row) {
    const Levels levels = in_order(contrasts.rows[row].levels);
    const auto [entry, is_new] = position_of.try_emplace(levels, families.size());
    if (is_new) families.push_back({levels, {}});
    families[entry->second].rows.push_back(row);
  }
  return families;
}

double covariance_at(const Matrix& matrix, size_t row, size_t column) {
  const auto [low, high] = std::minmax(row, column);
  return matrix[high][low];
}

/// The estimates and their covariance, side by side, for elimination.
struct System {
  std::vector<double> estimates;
  Matrix covariance;
};

/// Takes the estimate that has the most variance left out of the others; gives its share of the
/// Wald statistic, or nothing when none has any left.
bool eliminate(System& system,
               std::vector<bool>& is_used,
               const std::vector<double>& scale,
               double& wald) {
  const size_t size = system.estimates.size();
  size_t pivot = size;
  double most = kNothingLeft;
  for (size_t at = 0; at < size; ++at) {
    if (is_used[at] || !(system.covariance[at][at] > most * scale[at])) continue;
    most = system.covariance[at][at] / scale[at];
    pivot = at;
  }
  if (pivot == size) return false;
  is_used[pivot] = true;
  const double variance = system.covariance[pivot][pivot];
  const double estimate = system.estimates[pivot];
  wald += estimate * estimate / variance;
  for (size_t row = 0; row < size; ++row) {
    if (is_used[row]) continue;
    const double share = system.covariance[row][pivot] / variance;
    system.estimates[row] -= share * estimate;
    for (size_t column = 0; column < size; ++column)
      system.covariance[row][column] -= share * system.covariance[pivot][column];
  }
  return true;
}

System system_of(const Contrasts& contrasts, const Family& family) {
  System system;
  for (const size_t row : family.rows) {
    system.estimates.push_back(contrasts.rows[row].estimate);
    std::vector<double>& line = system.covariance.emplace_back();
    for (const size_t column : family.rows)
      line.push_back(covariance_at(contrasts.covariance, row, column));
  }
  return system;
}

OverallTest test_of(const Contrasts& contrasts, const Family& family) {
  OverallTest test;
  test.levels = family.levels;
  System system = system_of(contrasts, family);
  std::vector<double> scale;
  for (size_t at = 0; at < system.estimates.size(); ++at)
    scale.push_back(system.covariance[at][at]);
  std::vector<bool> is_used(system.estimates.size());
  double wald = 0;
  int rank = 0;
  while (eliminate(system, is_used, scale, wald))
    ++rank;
  if (rank == 0 || !std::isfinite(wald)) return test;
  test.num_df = rank;
  test.statistic = wald / rank;
  for (const size_t row : family.rows) {
    const double df = contrasts.rows[row].df;
    if (exists(df) && !(test.den_df < df)) test.den_df = df;
  }
  return test;
}

}  // namespace

std::vector<OverallTest> overall_tests(const Contrasts& contrasts) {
  std::vector<OverallTest> tests;
  for (const Family& family : families_of(contrasts)) {
    OverallTest test = test_of(contrasts, family);
    if (exists(test.statistic)) tests.push_back(std::move(test));
  }
  return tests;
}

}  // namespace hierfit::fit
