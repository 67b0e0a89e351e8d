// The panels of a graph: what tells them apart, and which rows belong to which.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "report/chart/bound_element.h"

namespace hierfit::report::chart {

/// A panel: its place in the grid, and what tells it from the others.
struct Panel {
  uint32_t column = 0;
  uint32_t row = 0;
  std::vector<std::string> titles;
  const ChartSource* source = nullptr;  ///< where its facets' values are found, at `at_row`
  size_t at_row = 0;
};

/// The panels that the facets of a graph make.
struct Division {
  std::vector<Panel> panels;  ///< one at least
  uint32_t left_out = 0;      ///< panels beyond the most that are drawn
  bool single_facet = false;  ///< they may stand in any number of columns
};

/// Gives each row of the elements its panel by the values of the graph's facets.
Division divide(std::vector<BoundElement>& elements,
                const Graph& graph,
                const output::NumberStyle& style);

/// Whether a panel does without a guide: one of its facets has another value than the guide names.
bool is_hidden(const LineGuide& guide, const Panel& panel);

}  // namespace hierfit::report::chart
