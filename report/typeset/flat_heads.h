// The heads of a table in one row and one column a stub, for forms that know no merged cells.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "report/typeset/table_view.h"

namespace hierfit::report {

/// Which labels there are is that of the layout: a hidden one is not among them.
struct FlatHeads {
  /// By column: its labels from the top, with the titles of their dimensions, joined.
  std::vector<std::string> columns;
  /// By column: whether its lowest label is a statistical symbol.
  std::vector<bool> symbols;
  /// By row, then stub: the label with those of the groups that enclose it, joined.
  std::vector<std::vector<std::string>> rows;
  /// By column and by row: the notes on its heads, as indices into `Table::notes`.
  std::vector<std::vector<uint32_t>> column_notes;
  std::vector<std::vector<uint32_t>> row_notes;
};

/// Linear in the heads and in what they cover.
FlatHeads flat_heads(const TableView& view, std::string_view divider);

}  // namespace hierfit::report
