#include "import/linear_map.h"

#include <cmath>
#include <numeric>

namespace hierfit::fit {
namespace {

/// What is left of a column, as a share of it, below which it hangs on the others.
constexpr double kNothingLeft = 1e-9;

double dot(const CellColumn& a, const CellColumn& b) {
  return std::inner_product(a.begin(), a.end(), b.begin(), 0.0);
}

double length(const CellColumn& column) { return std::sqrt(dot(column, column)); }

void subtract(CellColumn& from, const CellColumn& what, double times) {
  for (size_t cell = 0; cell < from.size(); ++cell)
    from[cell] -= times * what[cell];
}

/// Columns as directions that stand upright on each other, and the triangle that leads back.
class Basis {
 public:
  /// What the directions hold of a column; what is left stays in it.
  std::vector<double> take_out(CellColumn& column) const {
    std::vector<double> shares(directions_.size(), 0);
    for (int pass = 0; pass < 2; ++pass) {  // the second one takes what rounding left
      for (size_t at = 0; at < directions_.size(); ++at) {
        const double share = dot(directions_[at], column);
        shares[at] += share;
        subtract(column, directions_[at], share);
      }
    }
    return shares;
  }

  /// Whether the column tells something new; it is a direction then.
  bool add(CellColumn column) {
    const double whole = length(column);
    std::vector<double> shares = take_out(column);
    const double left = length(column);
    if (!(left > kNothingLeft * whole)) return false;
    for (double& cell : column)
      cell /= left;
    shares.push_back(left);
    directions_.push_back(std::move(column));
    triangle_.push_back(std::move(shares));
    return true;
  }

  /// The coefficients of the added columns that give these shares.
  std::vector<double> solve(std::vector<double> shares) const {
    for (size_t at = shares.size(); at-- > 0;) {
      shares[at] /= triangle_[at][at];
      for (size_t before = 0; before < at; ++before)
        shares[before] -= triangle_[at][before] * shares[at];
    }
    return shares;
  }

  size_t size() const { return directions_.size(); }

 private:
  std::vector<CellColumn> directions_;
  std::vector<std::vector<double>> triangle_;  ///< by column: its shares of the directions so far
};

/// Rounding leaves a trace of weights that are 0.
double without_trace(double weight) { return std::abs(weight) < 1e-13 ? 0 : weight; }

}  // namespace

std::optional<LinearMap> map_columns(const std::vector<CellColumn>& old_columns,
                                     const std::vector<CellColumn>& new_columns) {
  Basis rank;
  for (const CellColumn& column : old_columns)
    rank.add(column);
  LinearMap map;
  Basis basis;
  for (size_t at = 0; at < new_columns.size() && basis.size() < rank.size(); ++at)
    if (basis.add(new_columns[at])) map.taken.push_back(at);
  map.weights.assign(basis.size(), std::vector<double>(old_columns.size(), 0));
  for (size_t at = 0; at < old_columns.size(); ++at) {
    CellColumn column = old_columns[at];
    const double whole = length(column);
    const std::vector<double> weights = basis.solve(basis.take_out(column));
    if (length(column) > 1e-8 * whole) return {};
    for (size_t row = 0; row < weights.size(); ++row)
      map.weights[row][at] = without_trace(weights[row]);
  }
  return map;
}

}  // namespace hierfit::fit
