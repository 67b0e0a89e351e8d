#include "import/histogram.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numeric>

namespace hierfit::fit {
namespace {

constexpr double kMostCounted = 1000;
/// How far beyond an edge, as a share of a bin, a number still counts as on it.
constexpr double kEdge = 1e-7;

/// A width of 1, 2 or 5 times a power of ten, such that the range has about so many bins. Wider
/// ones are taken a little too early, as statisticians like fewer bins.
double round_width(double range, double bins) {
  constexpr double kWiden = 1.5;
  constexpr double kWidenMore = 0.5 + 1.5 * kWiden;
  const double width = range / bins;
  const double base = std::pow(10.0, std::floor(std::log10(width)));
  double unit = base;
  if (2 * base - width < kWiden * (width - unit)) unit = 2 * base;
  if (5 * base - width < kWidenMore * (width - unit)) unit = 5 * base;
  if (10 * base - width < kWiden * (width - unit)) unit = 10 * base;
  return unit;
}

}  // namespace

Bins count_bins(const std::vector<double>& numbers) {
  double highest = 0;
  for (const double number : numbers) {
    if (number < 0 || number > kMostCounted || number != std::floor(number)) return {};
    highest = std::max(highest, number);
  }
  Bins bins;
  bins.middles.resize(static_cast<size_t>(highest) + 1);
  std::iota(bins.middles.begin(), bins.middles.end(), 0.0);
  bins.counts.assign(bins.middles.size(), 0);
  for (const double number : numbers)
    ++bins.counts[static_cast<size_t>(number)];
  return bins;
}

Bins round_bins(const std::vector<double>& numbers) {
  if (numbers.empty()) return {};
  const auto [lowest, highest] = std::ranges::minmax(numbers);
  const double range = highest - lowest;
  const double scale = std::max(std::abs(lowest), std::abs(highest));
  Bins single = {{lowest}, {static_cast<double>(numbers.size())}};
  if (!std::isfinite(range) || range <= scale * 1e-10) return single;
  const double wanted = std::ceil(std::log2(static_cast<double>(numbers.size())) + 1);
  const double width = round_width(range, wanted);
  const double first = std::floor(lowest / width + kEdge);
  const double last = std::max(std::ceil(highest / width - kEdge), first + 1);
  if (!(last - first <= kMostCounted)) return single;  // a width that underflows
  Bins bins;
  bins.middles.resize(static_cast<size_t>(last - first));
  for (size_t bin = 0; bin < bins.middles.size(); ++bin)
    bins.middles[bin] = (first + static_cast<double>(bin) + 0.5) * width;
  bins.counts.assign(bins.middles.size(), 0);
  const double most = last - first - 1;
  for (const double number : numbers) {
    const double bin = std::ceil(number / width - first - kEdge) - 1;
    ++bins.counts[static_cast<size_t>(std::clamp(bin, 0.0, most))];
  }
  return bins;
}

}  // namespace hierfit::fit
