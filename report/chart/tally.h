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
  /// The distance from each row to the next where all are the same: the rows are middles of bins.
  /// Those that count nothing tell it, too. 0 where there is no such step.
  double step = 0;
  Range middles;  ///< of all rows
};

/// Counts the rows that have a number and a weight above 0.
Tally tally(const Embedded& embedded, const output::Chart& chart);

inline constexpr double kMostBins = 60;

/// Bins of equal width over the values of a tally, and the curve above them. Values at equal steps
/// are middles of bins, and several of these make one where they are too many. Whole numbers have
/// bins that begin and end halfway between two of them, so that each holds as many as any other.
struct Bins {
  Range range;
  bool whole = false;           ///< bins of whole numbers
  std::vector<double> heights;  ///< the weights in each
  /// Heights at equal steps from the one end of the range to the other; empty for a histogram
  /// without.
  std::vector<double> curve;
  double highest = 0;  ///< how far up the curve is drawn

  double width() const { return (range.high - range.low) / static_cast<double>(heights.size()); }
  /// Where a bin begins, and the one before it ends.
  double edge(size_t bin) const { return range.low + static_cast<double>(bin) * width(); }
  /// The least and the greatest value that a bin is for: its edges, or the whole numbers in it.
  Range values_of(size_t bin) const;
};

/// As many bins as the histogram asks for, else the root of the rows; `most` at most. The tally is
/// not empty.
Bins bins_of(const Tally& tally, const Histogram& histogram, double most = kMostBins);

}  // namespace hierfit::report::chart
