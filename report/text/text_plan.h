// How a table is fitted to the width of a terminal. All widths are in its columns.
#pragma once

#include <cstddef>
#include <limits>
#include <string>
#include <vector>

#include "report/typeset/part.h"
#include "report/typeset/table_view.h"

namespace hierfit::report::text {

inline constexpr size_t kIndent = 2;  ///< of what a group encloses
inline constexpr size_t kNarrowestStub = 12;
inline constexpr size_t kUnlimited = std::numeric_limits<size_t>::max() / 4;

/// The widest parts of the numbers of a column.
struct NumberWidths {
  size_t whole = 0;  ///< ahead of the decimal mark
  size_t right = 0;  ///< from the mark on: fraction and tail
  size_t marks = 0;  ///< of notes

  size_t all() const { return whole + right + marks; }
};

/// The widths of a table, without the gaps, and the columns that stand side by side.
struct TextPlan {
  size_t gap = 2;  ///< behind each column
  std::vector<size_t> stubs;
  std::vector<size_t> columns;
  std::vector<NumberWidths> numbers;  ///< by column
  std::vector<Part> parts;            ///< at least one
};

/// Finds the loosest way in which the table fits into `limit`; else the one that divides it into
/// the fewest parts.
TextPlan plan_text(const TableView& view, size_t limit);

/// What a head shows, with the marks of its notes raised; empty for nothing.
std::string shown_label(const TableView& view, const Head& head);

}  // namespace hierfit::report::text
