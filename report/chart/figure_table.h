// The data of a figure as tables for readers.
#pragma once

#include <vector>

#include "output/document.h"
#include "report/chart/binding.h"

namespace hierfit::report::chart {

/// A table with a dimension of rows, without labels, and one of columns, the variables. A cell
/// without a value is not there. The bounds of an interval are two columns.
struct FigureTable {
  output::Table table;
  std::vector<bool> texts;  ///< by column: its values are counted off, not measured
};

/// A table for each source that is drawn, of the variables that mean something to a reader: not
/// those that only place nodes and edges. A table holds the first `most_rows` rows; its caption
/// says so where it leaves some out.
std::vector<FigureTable> figure_tables(const Binding& binding, size_t most_rows);

/// Calls `use` with row, column and value of each place of such a table, row by row; the value is
/// null where there is none.
template <class Use>
void for_cells(const output::Table& table, Use use) {
  size_t cell = 0;
  for (uint32_t row = 0; row < table.dimensions[0].leaves.size(); ++row) {
    for (uint32_t column = 0; column < table.dimensions[1].leaves.size(); ++column) {
      const uint32_t* at = cell < table.cells.size() ? table.cells.at(cell) : nullptr;
      const bool is_here = at != nullptr && at[0] == row && at[1] == column;
      use(row, column, is_here ? &table.cells.values[cell++] : nullptr);
    }
  }
}

}  // namespace hierfit::report::chart
