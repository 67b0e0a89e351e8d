// Charts made by hand, of each kind and size that the procedure sends.
#pragma once

#include <string>
#include <vector>

#include "output/chart.h"

namespace hierfit::test {

/// Data of one variable, to be put into a chart.
class ChartData {
 public:
  ChartData(output::Chart& chart, const std::string& source);

  /// Adds a variable; `role` is its name, too.
  ChartData& variable(const std::string& role,
                      const std::string& label = "",
                      bool categorical = false);
  ChartData& categories(const std::string& role, const std::string& label = "") {
    return variable(role, label, true);
  }
  /// Of the variable added last.
  ChartData& number(size_t row, double value);
  ChartData& text(size_t row, const std::string& value);
  ChartData& value_label(double value, const std::string& label);
  ChartData& decimals(uint8_t decimals);
  ChartData& prefix(const std::string& prefix);

 private:
  output::ChartVariable& last() { return source().variables.back(); }
  output::ChartSource& source() { return chart_.sources[index_]; }

  output::Chart& chart_;
  size_t index_;
};

/// Labels for hard cases: long, wide, right-to-left, hostile, empty.
extern const std::vector<std::string> kAwkwardLabels;

output::Chart scatter_chart(size_t points);
/// Observed values 0 and 1 alone.
output::Chart binary_scatter_chart();

/// Nodes bending towards the target, `length` characters a label; with a histogram of `method`.
output::Chart diagram_chart(size_t nodes, size_t length, const std::string& method = "normal");

/// Means over `first` categories, in `second` colours and `third` panels; 1: without that factor.
output::Chart means_chart(size_t first, size_t second = 1, size_t third = 1);
/// The same over numbers.
output::Chart numeric_means_chart(size_t second);

output::Chart pairwise_chart(size_t categories, size_t panels = 1);

/// Spans from a reference level, in panels of two facets.
output::Chart spans_chart(size_t categories, size_t facet1 = 1, size_t facet2 = 1);

/// A document whose roles name variables that are not there, and data that are no numbers.
output::Chart broken_chart();

struct ChartSample {
  std::string name;
  output::Chart chart;
};

/// One of each kind, small; their scenes are golden files.
std::vector<ChartSample> chart_samples();
/// Large, long and awkward ones.
std::vector<ChartSample> hard_chart_samples();

}  // namespace hierfit::test
