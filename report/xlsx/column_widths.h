// How wide the columns of a table are in a workbook.
#pragma once

#include <string>
#include <vector>

#include "report/typeset/columns.h"

namespace hierfit::report::xlsx {

/// What a column has around its text, in points.
inline constexpr double kColumnPadding = 12;

/// The widths that a table wants, in points, with the padding.
struct ColumnWidths {
  Needs needs;
  std::vector<size_t> right;       ///< by column: the longest part right of the whole one
  std::vector<std::string> marks;  ///< by column: the longest marks of its numbers
};

/// As wide as heads, labels and cells ask for; long ones are to wrap.
ColumnWidths measure_columns(const TableView& view);

}  // namespace hierfit::report::xlsx
