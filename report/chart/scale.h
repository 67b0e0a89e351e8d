// Where numbers stand on an axis, and which of them are named.
#pragma once

#include <string>
#include <vector>

namespace hierfit::report::chart {

/// The least and the greatest of some finite numbers.
struct Range {
  double low = 0;
  double high = 0;
  bool empty = true;

  /// Takes in a finite number; others are passed over.
  void add(double value);
  /// The range, made wider where it holds one number only; 0 to 1 when it is empty.
  Range proper() const;
  /// A share of the range more at both ends.
  Range widened(double share) const;
};

/// Numbers at steps of 1, 2 or 5 times a power of ten.
struct Ticks {
  std::vector<double> values;  ///< ascending, within the range
  int decimals = 0;            ///< as many as tell them apart
};

/// The ticks of a proper range: about `wanted` of them, never more than twice as many.
Ticks ticks_of(const Range& range, int wanted);

/// A range laid over a stretch of pixels.
class LinearScale {
 public:
  LinearScale() = default;
  LinearScale(const Range& range, double from, double to) : range_(range), from_(from), to_(to) {}

  /// The pixel of a number. Finite for any finite number.
  double at(double value) const;
  const Range& range() const { return range_; }

 private:
  Range range_{0, 1, false};
  double from_ = 0;
  double to_ = 1;
};

}  // namespace hierfit::report::chart
