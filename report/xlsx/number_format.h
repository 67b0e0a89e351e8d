// The number formats of a workbook's cells, which show numbers as the report does.
#pragma once

#include <string>
#include <string_view>

#include "report/typeset/aligned_cells.h"

namespace hierfit::report::xlsx {

/// The format of a number: its decimals, percent sign and bounds as `cell` shows them in `style`.
/// `marks` stand behind it, raised. It is padded so that at the right edge of a column of `parts`
/// whose longest marks are `widest_marks` the decimal marks are in line.
std::string number_format(const output::Number& number,
                          const AlignedCell& cell,
                          const ColumnParts& parts,
                          size_t right_length,
                          const output::NumberStyle& style,
                          std::string_view marks,
                          std::string_view widest_marks);

/// What stands right of the whole part, in characters.
inline size_t right_length(const AlignedCell& cell) { return size_t{cell.fraction} + cell.tail; }

}  // namespace hierfit::report::xlsx
