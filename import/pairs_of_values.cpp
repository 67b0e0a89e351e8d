#include "import/pairs_of_values.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <map>
#include <set>
#include <utility>

namespace hierfit::fit {
namespace {

/// The cells of a grid along one side.
constexpr size_t kCells = 40;

using Pair = std::pair<double, double>;  ///< predicted, observed

std::vector<Pair> sorted_pairs(const std::vector<double>& observed,
                               const std::vector<double>& predicted) {
  std::vector<Pair> pairs;
  for (size_t at = 0; at < std::min(observed.size(), predicted.size()); ++at) {
    if (exists(observed[at]) && exists(predicted[at]))
      pairs.emplace_back(predicted[at], observed[at]);
  }
  std::ranges::sort(pairs);
  return pairs;
}

Pairs counted(const std::vector<Pair>& sorted) {
  Pairs pairs;
  for (size_t at = 0; at < sorted.size(); ++at) {
    if (at > 0 && sorted[at] == sorted[at - 1]) {
      ++pairs.counts.back();
      continue;
    }
    pairs.predicted.push_back(sorted[at].first);
    pairs.observed.push_back(sorted[at].second);
    pairs.counts.push_back(1);
  }
  return pairs;
}

/// A side of the grid: values that are few keep a cell each, many share cells of equal width.
class Side {
 public:
  explicit Side(std::vector<double> values) : values_(std::move(values)) {
    std::ranges::sort(values_);
    values_.erase(std::unique(values_.begin(), values_.end()), values_.end());
  }

  size_t cell_of(double value) const {
    if (values_.size() <= kCells) {
      return static_cast<size_t>(std::ranges::lower_bound(values_, value) - values_.begin());
    }
    // Halves, since the whole range may be more than a double holds.
    const double share =
        (value / 2 - values_.front() / 2) / (values_.back() / 2 - values_.front() / 2);
    const double cell = std::floor(share * static_cast<double>(kCells));
    return static_cast<size_t>(std::clamp(cell, 0.0, static_cast<double>(kCells - 1)));
  }

 private:
  std::vector<double> values_;
};

/// The means of the values that fall into a cell.
struct Cell {
  double predicted = 0;
  double observed = 0;
  double count = 0;

  void add(const Pair& pair) {
    ++count;
    predicted += (pair.first - predicted) / count;
    observed += (pair.second - observed) / count;
  }
};

Pairs on_grid(const std::vector<Pair>& sorted) {
  std::vector<double> predicted;
  std::vector<double> observed;
  for (const Pair& pair : sorted) {
    predicted.push_back(pair.first);
    observed.push_back(pair.second);
  }
  const Side columns(std::move(predicted));
  const Side rows(std::move(observed));
  std::map<std::pair<size_t, size_t>, Cell> cells;
  for (const Pair& pair : sorted)
    cells[{columns.cell_of(pair.first), rows.cell_of(pair.second)}].add(pair);
  Pairs pairs;
  for (const auto& [place, cell] : cells) {
    pairs.predicted.push_back(cell.predicted);
    pairs.observed.push_back(cell.observed);
    pairs.counts.push_back(cell.count);
  }
  return pairs;
}

}  // namespace

Pairs pairs_of(const std::vector<double>& observed, const std::vector<double>& predicted) {
  const std::vector<Pair> sorted = sorted_pairs(observed, predicted);
  Pairs pairs = counted(sorted);
  return pairs.counts.size() <= kMostPairs ? pairs : on_grid(sorted);
}

}  // namespace hierfit::fit
