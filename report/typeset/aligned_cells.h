// The cells of a table as text, with what it takes to line numbers up on their decimal mark.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "output/document.h"
#include "report/layout/table_layout.h"

namespace hierfit::report {

enum class CellKind : uint8_t { Number, Missing, Text };

/// What one cell shows. Lengths of parts are in characters.
struct AlignedCell {
  CellKind kind = CellKind::Missing;
  uint8_t whole = 0;     ///< of a number: what stands ahead of the decimal mark, sign and all
  uint8_t fraction = 0;  ///< the decimal mark and the digits behind it; 0 without one
  uint8_t tail = 0;      ///< what stands behind the digits: an exponent from its "E" on, or "%"
  output::Format format = output::Format::GeneralStat;  ///< of a number
  uint16_t length = 0;  ///< of a number: the bytes in `AlignedCells::characters`
  uint32_t begin = 0;   ///< of a number: where they begin. Of a text: index into `Table::texts`
  double value = output::kSystemMissing;
};

/// The widest parts of the numbers of a column. A column that also holds texts is `mixed`: there
/// is nothing to line up then.
struct ColumnParts {
  bool mixed = false;
  uint8_t whole = 0;
  uint8_t fraction = 0;
  uint8_t tail = 0;
};

/// All cells of a table, in the order of `TableLayout::placed`.
struct AlignedCells {
  std::string characters;
  std::vector<AlignedCell> cells;
  std::vector<ColumnParts> columns;

  /// The characters of a number.
  std::string_view number(const AlignedCell& cell) const {
    return std::string_view(characters).substr(cell.begin, cell.length);
  }
};

/// Writes the numbers of a table in `style`. A text that is one number from end to end counts as
/// that number.
AlignedCells align_cells(const output::Table& table,
                         const TableLayout& layout,
                         const output::NumberStyle& style);

}  // namespace hierfit::report
