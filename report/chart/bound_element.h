// The elements of a plan with the variables that stand for their roles.
#pragma once

#include <algorithm>
#include <vector>

#include "report/chart/values.h"

namespace hierfit::report::chart {

/// The rows of one mark: of a pair 2i and 2i + 1, else one and the same.
struct MarkRows {
  size_t row;
  size_t partner;
};

/// An element with its variables; null where a role is not bound or its variable has no values.
struct BoundElement {
  const Element* element = nullptr;
  const ChartSource* source = nullptr;
  std::array<const ChartVariable*, kRoleNames.size()> variables{};
  struct Entry {
    const ChartVariable* variable;
    std::string_view words;
  };
  std::vector<Entry> tooltip;
  std::vector<uint32_t> panel_of_row;  ///< empty: every row is in every panel

  const ChartVariable* operator[](RoleKind kind) const {
    return variables[static_cast<size_t>(kind)];
  }
  size_t rows() const { return source == nullptr ? 0 : source->rows; }
  bool in_panel(size_t row, uint32_t panel) const {
    return panel_of_row.empty() || panel_of_row[row] == panel;
  }
  /// The panel of a row, the first one of a row that is in all.
  uint32_t panel_of(size_t row) const { return panel_of_row.empty() ? 0 : panel_of_row[row]; }

  size_t rows_of_mark() const { return element->rows == Rows::All ? 1 : 2; }
  /// Calls `use` with the rows of each mark among the first `most_rows`.
  template <class Use>
  void each_mark(Use use, size_t most_rows = SIZE_MAX) const {
    const size_t end = std::min(rows(), most_rows);
    for (size_t row = element->rows == Rows::Second ? 1 : 0; row < end; row += rows_of_mark())
      use(MarkRows{row, rows_of_mark() == 1 ? row : std::min(row ^ 1, rows() - 1)});
  }
  /// Calls `use` with each of `panels` panels that a row stands in: that of its facets, or all.
  template <class Use>
  void each_panel(size_t row, uint32_t panels, Use use) const {
    const uint32_t end = panel_of_row.empty() ? panels : std::min(panels, panel_of(row) + 1);
    for (uint32_t panel = panel_of(row); panel < end; ++panel)
      use(panel);
  }
};

/// The variable for a role of the document, or null when there is none or it has no values.
const ChartVariable* bound(const ChartSource* source, std::string_view role);

BoundElement bind_element(const Element& element, const output::Chart& chart);

}  // namespace hierfit::report::chart
