// Tables on paper: how wide their columns are, which way the paper lies, and where a table that is
// wider than paper is divided. Lengths are in points.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "report/outline.h"
#include "report/table_view.h"
#include "report/typeset/part.h"

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

/// The heads by head row: those that cover it, from the start. A head of more rows is in each.
std::vector<std::vector<const Head*>> head_grid(const TableLayout& layout);

/// Of the heads of a head row, those over columns from `first` to `end`.
std::span<const Head* const> heads_between(const std::vector<const Head*>& row,
                                           uint32_t first,
                                           uint32_t end);

/// Of the cells of a row, those in columns from `first` to `end`.
std::span<const PlacedCell> cells_between(std::span<const PlacedCell> row,
                                          uint32_t first,
                                          uint32_t end);

/// A part of the document with the way its paper lies. A heading goes with what follows it, a
/// message with what is ahead.
struct PageEntry {
  Entry entry;
  bool landscape = false;
};
std::vector<PageEntry> plan_pages(const output::Document& document);

}  // namespace hierfit::report
