// Tables on paper: how wide their columns are, which way the paper lies, and where a table that is
// wider than paper is divided. Lengths are in points.
#pragma once

#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "report/typeset/blocks.h"
#include "report/typeset/part.h"
#include "report/typeset/table_view.h"

namespace hierfit::report {

/// A sheet of A4 upright, and its margins.
inline constexpr double kPaperWidth = 595.28;
inline constexpr double kPaperHeight = 841.89;
inline constexpr double kSideMargin = 45.4;
inline constexpr double kEndMargin = 51;

/// The text of tables, and what stands at either side of it in a cell.
inline constexpr double kTableFont = 8.5;
inline constexpr double kCellPadding = 4.5;
/// By how much each enclosing group moves a label in, and how large a raised mark is.
inline constexpr double kIndent = 9;
inline constexpr double kMarkFont = 6.2;

/// The widest numbers of a column on either side of the decimal mark.
struct DecimalWidths {
  double whole = 0;
  double rest = 0;  ///< from the mark on
};

/// A table as it lies on paper. Widths are those of cells, padding and all.
struct PageTable {
  bool landscape = false;
  std::vector<double> stubs;
  std::vector<double> columns;
  std::vector<DecimalWidths> decimals;  ///< by column
  std::vector<Part> parts;              ///< at least one

  /// What a table without columns has in their place.
  static constexpr double kNoColumns = 140;

  /// The width of the columns of a part, and that of the row heads with them.
  double column_width(const Part& part) const;
  double width(const Part& part) const;
  /// The width of a cell that covers `count` columns from that one of a part on, the stubs among
  /// them.
  double width(const Part& part, uint32_t column, uint32_t count) const;
};

/// Plans a table: upright where it fits, else on its side, else divided, between groups of columns
/// where there are some, with the row heads at each part.
PageTable plan_table(const TableView& view);

/// The widths of a number, given its characters and its cell.
DecimalWidths decimal_widths(std::string_view number, const AlignedCell& cell);

/// A table laid out and planned.
struct PaperTable {
  PaperTable(const output::Document& document, const output::Table& table)
      : view(document, table), page(plan_table(view)) {}

  TableView view;
  PageTable page;
};

/// A block with the way its paper lies. A heading goes with what follows it, a message with what is
/// ahead.
struct PaperBlock {
  Block block;
  std::unique_ptr<const PaperTable> table = {};  ///< null for what is no table
  bool landscape = false;
};
std::vector<PaperBlock> paper_blocks(const output::Document& document);

}  // namespace hierfit::report
