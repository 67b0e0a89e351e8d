// What a histogram counts: its values, the bins of equal width over them, and the curve above.
#pragma once

#include <map>
#include <vector>

#include "report/chart/scale.h"
#include "report/chart/values.h"

namespace hierfit::report::chart {

/// The values of a histogram and how often they occur.
struct Tally {
  const ChartVariable* variable = nullptr;  ///< null: the chart has no such data
  bool categorical = false;                 ///< of a nominal or ordinal field
  std::map<double, double> weights;         ///< by value
  double total = 0;                         ///< of the weights
  double rows = 0;                          ///< that count
  Range range;
};

/// Counts the rows that have a number and a weight above 0.
Tally tally(const Embedded& embedded, const output::Chart& chart);

inline constexpr double kMostBins = 60;

/// Bins of equal width over the proper range of a tally, and the curve above them.
struct Bins {
  Range range;
  std::vector<double> heights;  ///< the weights in each
  /// Heights at equal steps from the one end of the range to the other, cut where the curve rises
  /// far above the highest bin; empty for a histogram without.
  std::vector<double> curve;

  double width() const { return (range.high - range.low) / static_cast<double>(heights.size()); }
  /// Where a bin begins, and the one before it ends.
  double edge(size_t bin) const { return range.low + static_cast<double>(bin) * width(); }
};

/// As many bins as the histogram asks for, else the root of the rows; `most` at most. The tally is
/// not empty.
Bins bins_of(const Tally& tally, const Histogram& histogram, double most = kMostBins);

}  // namespace hierfit::report::chart
