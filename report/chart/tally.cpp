#include "report/chart/tally.h"

#include <algorithm>
#include <cmath>

#include "report/chart/distribution.h"

namespace hierfit::report::chart {
namespace {

/// Codes of field types.
constexpr int kCategorical = 1;
constexpr int kOrdinal = 2;

constexpr int kCurveSteps = 96;
constexpr double kCurveRoom = 1.25;  ///< how far above the highest bin a curve may rise
constexpr double kTooHigh = 1e3;     ///< times the highest bin
constexpr size_t kFewestValues = 3;  ///< of a distribution that is worth a curve

/// The heights of the curve over these bins.
std::vector<double> curve_of(const Tally& tally,
                             const Histogram& histogram,
                             const Range& range,
                             double area,
                             double too_high) {
  if (!histogram.curve || tally.weights.size() < kFewestValues) return {};
  double mean = 0;
  for (const auto& [value, weight] : tally.weights)
    mean += value * (weight / tally.total);
  double squares = 0;
  for (const auto& [value, weight] : tally.weights)
    squares += (value - mean) * (value - mean) * weight;
  const auto density =
      density_of(*histogram.curve, mean, std::sqrt(squares / std::max(tally.total - 1, 1.0)));
  if (!density) return {};
  std::vector<double> curve;
  for (int i = 0; i <= kCurveSteps; ++i) {
    const double height = density(range.low + (range.high - range.low) * i / kCurveSteps) * area;
    curve.push_back(std::isnan(height) ? 0 : std::min(height, too_high));
  }
  return curve;
}

/// The numbers of a variable, and the step from each to the next; 0 when they have none.
Range middles_of(const ChartVariable& variable, const ChartSource& source, double& step) {
  Range range;
  std::vector<double> numbers;
  for (size_t row = 0; row < source.rows; ++row) {
    const double value = number_at(&variable, row);
    if (!is_number(value)) continue;
    numbers.push_back(value);
    range.add(value);
  }
  step = 0;
  if (numbers.size() < kFewestValues) return range;
  const double mean = (range.high - range.low) / static_cast<double>(numbers.size() - 1);
  for (size_t i = 1; i < numbers.size(); ++i) {
    if (!(std::fabs(numbers[i] - numbers[i - 1] - mean) <= 1e-6 * mean)) return range;
  }
  step = mean;
  return range;
}

/// Whether all values are whole numbers that can be counted one by one.
bool are_whole(const Tally& tally) {
  constexpr double kMostWhole = 1e9;
  return tally.range.high - tally.range.low < kMostWhole &&
         std::ranges::all_of(tally.weights,
                             [](const auto& each) { return each.first == std::floor(each.first); });
}

}  // namespace

Tally tally(const Embedded& embedded, const output::Chart& chart) {
  Tally counted;
  counted.categorical = embedded.field_type == kCategorical || embedded.field_type == kOrdinal;
  const ChartSource* source = chart.source(embedded.source);
  if (source == nullptr) return counted;
  counted.variable = source->by_role(embedded.graph.histogram->variable);
  if (counted.variable == nullptr) return counted;
  counted.middles = middles_of(*counted.variable, *source, counted.step);
  const ChartVariable* weight = source->by_role(embedded.graph.histogram->weight);
  for (size_t row = 0; row < source->rows; ++row) {
    const double value = number_at(counted.variable, row);
    const double times = weight == nullptr ? 1 : number_at(weight, row);
    if (!is_number(value) || !(times > 0)) continue;
    counted.weights[value] += times;
    counted.total += times;
    counted.rows += 1;
    counted.range.add(value);
  }
  return counted;
}

Range Bins::values_of(size_t bin) const {
  const double low = edge(bin);
  return whole ? Range{low + 0.5, low + width() - 0.5, false} : Range{low, low + width(), false};
}

Bins bins_of(const Tally& tally, const Histogram& histogram, double most) {
  Bins bins{.range = tally.range.proper(), .heights = {}, .curve = {}};
  const double wanted =
      histogram.bins > 0 ? static_cast<double>(histogram.bins) : std::ceil(std::sqrt(tally.rows));
  double count = std::clamp(wanted, 1.0, std::clamp(most, 1.0, kMostBins));
  bins.whole = are_whole(tally) && (tally.step == 0 || tally.step == 1);
  if (bins.whole || tally.step > 0) {
    const double step = bins.whole ? 1 : tally.step;
    const Range& middles = bins.whole ? tally.range : tally.middles;
    const double numbers = std::round((middles.high - middles.low) / step) + 1;
    const double several = std::ceil(numbers / count);
    count = std::ceil(numbers / several);
    const double low = middles.low - step / 2;
    bins.range = {low, low + count * several * step, false};
  }
  bins.heights.resize(static_cast<size_t>(count));
  for (const auto& [value, weight] : tally.weights) {
    // A value at an edge, reckoned with rounding, belongs to the bin above.
    const double place = std::floor((value - bins.range.low) / bins.width() + 1e-9);
    bins.heights[static_cast<size_t>(std::clamp(place, 0.0, count - 1))] += weight;
  }
  const double highest = *std::ranges::max_element(bins.heights);
  bins.highest = kCurveRoom * highest;
  bins.curve =
      curve_of(tally, histogram, bins.range, tally.total * bins.width(), kTooHigh * highest);
  return bins;
}

}  // namespace hierfit::report::chart
