// Where everything of a table stands, before any of it is written: head cells with their spans,
// body lines, cells by row, and the numbering of the notes.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "output/document.h"
#include "report/layout/axis.h"

namespace hierfit::report {

/// What a head cell shows.
enum class HeadKind : uint8_t {
  Title,     ///< the title of its dimension (over columns only; row dimensions have `stubs`)
  Group,     ///< the label of a group
  Category,  ///< the label of a category
  Blank,     ///< nothing: its cells have no category in that dimension
};

/// A head cell. Over columns, `level` counts head rows from the top and `first` columns; at the
/// side, `level` counts stub columns from the start and `first` body lines.
struct Head {
  HeadKind kind = HeadKind::Blank;
  uint32_t dimension = output::kNone;  ///< index into `Table::dimensions`
  uint32_t node = output::kNone;       ///< of a group or category: index into `Dimension::nodes`
  uint32_t level = 0;                  ///< the first head row (or the stub column) it stands in
  uint32_t depth = 1;                  ///< how many head rows it fills; 1 at the side
  uint32_t first = 0;                  ///< the first column (or body line) it covers
  uint32_t span = 1;                   ///< how many columns (or body lines) it covers
  uint32_t indent = 0;                 ///< at the side: how many groups of its dimension enclose it

  bool operator==(const Head&) const = default;
};

/// A cell in a row.
struct PlacedCell {
  uint32_t column = 0;
  uint32_t cell = 0;  ///< index into `Table::cells`
};

/// A table laid out. A row dimension with shown labels has one stub column; its categories are
/// head cells there, its groups are body lines of their own, and stand over the categories they
/// enclose. A column dimension with shown labels has a head row for its title, when that is shown,
/// and one for each depth of its tree; a category above the deepest row reaches down to it. A
/// dimension with hidden labels has no head cells.
struct TableLayout {
  uint32_t rows = 0;
  uint32_t columns = 0;
  uint32_t head_rows = 0;             ///< 0 when nothing stands over the columns
  std::vector<uint32_t> stubs;        ///< the dimension of each stub column, outermost first
  std::vector<Head> column_heads;     ///< by `level`, then `first`
  std::vector<Head> row_heads;        ///< by `first`, then `level`
  std::vector<uint32_t> lines;        ///< by body line: its row; `kNone` on the line of a group
  std::vector<uint32_t> row_begin;    ///< `rows` + 1 offsets into `placed`
  std::vector<PlacedCell> placed;     ///< by row, then column; no two at one place
  std::vector<uint32_t> marks;        ///< by note: its number in reading order, from 0
  std::vector<uint32_t> notes;        ///< the note (the first of equal ones) of each number
  std::vector<uint32_t> title_notes;  ///< the notes that stand on the title

  std::span<const PlacedCell> row(uint32_t index) const {
    return std::span(placed).subspan(row_begin[index], row_begin[index + 1] - row_begin[index]);
  }
  /// Nothing to show but the title, notes and caption.
  bool empty() const { return rows == 0 || columns == 0; }
};

/// Lays out a table, in time linear in its cells (and n log n in its rows and columns).
///
/// Notes are numbered in reading order: those on the table, the heads over the columns by row, then
/// line by line the head and its cells. Notes of the same words share a number. A note whose place
/// does not show (on a hidden label) stands on the title, behind those of the table.
TableLayout lay_out(const output::Table& table);

}  // namespace hierfit::report
