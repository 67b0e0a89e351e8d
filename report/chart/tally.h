// What a histogram counts: its values, the bins of equal width over them, and the curve above.
#pragma once

#include <map>
#include <vector>

#include "report/chart/binding.h"
#include "report/chart/scale.h"

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

/// The weights in bins of equal width over the proper range, as many as the histogram asks for,
/// else the root of the rows; `most` at most. The tally is not empty.
std::vector<double> bins_of(const Tally& tally, const Histogram& histogram, double most);

/// The heights of the histogram's curve at equal steps over the proper range, from its one end to
/// the other, where its bars cover `area`; empty when it has none.
std::vector<double> curve_of(const Tally& tally, const Histogram& histogram, double area);

}  // namespace hierfit::report::chart
