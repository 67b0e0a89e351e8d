#include "report/chart/scale.h"

#include <algorithm>
#include <cmath>

namespace hierfit::report::chart {
namespace {

/// Beyond these magnitudes differences overflow or vanish; no statistic lies there.
constexpr double kLargest = 1e300;
constexpr double kFarOff = 1e6;  ///< pixels: nothing is drawn that far out
constexpr int kMostDecimals = 12;

/// The step of 1, 2 or 5 times a power of ten that is nearest above `rough`.
double nice_step(double rough) {
  const double power = std::pow(10.0, std::floor(std::log10(rough)));
  const double share = rough / power;
  const double factor = share <= 1.0001 ? 1 : share <= 2.0001 ? 2 : share <= 5.0001 ? 5 : 10;
  return factor * power;
}

}  // namespace

void Range::add(double value) {
  if (!(std::fabs(value) <= kLargest)) return;
  low = empty ? value : std::min(low, value);
  high = empty ? value : std::max(high, value);
  empty = false;
}

Range Range::proper() const {
  if (empty) return {0, 1, false};
  const double smallest = std::max(std::fabs(low), std::fabs(high)) * 1e-9;
  if (high - low > smallest) return *this;
  const double half = low == 0 ? 0.5 : std::fabs(low) * 0.1;
  return {low - half, high + half, false};
}

Range Range::widened(double share) const {
  const double more = (high - low) * share;
  return {low - more, high + more, false};
}

Ticks ticks_of(const Range& range, int wanted) {
  Ticks ticks;
  const double step = nice_step((range.high - range.low) / std::max(wanted, 1));
  if (!std::isfinite(step) || !(step > 0)) return {{range.low, range.high}, 0};
  const double slack = step * 1e-6;
  const double first = std::ceil((range.low - slack) / step);
  const double last = std::floor((range.high + slack) / step);
  for (double i = first; i <= last && ticks.values.size() < 64; ++i)
    ticks.values.push_back(i == 0 ? 0 : i * step);
  ticks.decimals =
      std::clamp(static_cast<int>(std::ceil(-std::log10(step) - 1e-6)), 0, kMostDecimals);
  return ticks;
}

double LinearScale::at(double value) const {
  const double share = (value - range_.low) / (range_.high - range_.low);
  if (!std::isfinite(share)) return value > range_.low ? to_ : from_;
  return std::clamp(from_ + share * (to_ - from_), -kFarOff, kFarOff);
}

}  // namespace hierfit::report::chart
