// The rows of a table, cell by cell, as a form writes them: what stands in a cell, and how far it
// reaches.
#pragma once

#include <cstdint>
#include <limits>
#include <span>
#include <vector>

#include "report/typeset/part.h"
#include "report/typeset/table_view.h"

namespace hierfit::report {

/// A cell of a row. A cell that reaches down is in each of the rows that it reaches.
struct RowCell {
  enum class Role : uint8_t {
    StubTitle,   ///< over the row heads; each stub has one where there are rows of heads
    ColumnHead,  ///< over columns
    Blank,       ///< over columns in a row of heads that has nothing there; one cell
    RowHead,     ///< beside lines
    Group,       ///< the head of what follows, from its stub to the end of its line
    Content,     ///< a cell of the body
    Gap,         ///< places of the body without a cell, `columns` of them
  };

  Role role = Role::Gap;
  uint32_t column = 0;      ///< where it begins, counted from the first stub
  uint32_t columns = 1;     ///< how many it covers
  uint32_t above = 0;       ///< how many of its rows are ahead of this one
  uint32_t below = 0;       ///< how many follow, up to the end of the slice
  bool over_heads = false;  ///< of a head over columns: whether there are heads under it
  /// Whether a content stands in a column that has texts, or a head over such a column alone: what
  /// stands there begins at the start, all else is centred or lined up.
  bool at_start = false;
  const Head* head = nullptr;           ///< of the three kinds of head
  const output::Text* label = nullptr;  ///< of a title or head; null where it shows nothing
  std::vector<uint32_t> marks = {};     ///< of a head or content: the numbers of its notes
  const PlacedCell* placed = nullptr;   ///< of a content
  const AlignedCell* cell = nullptr;    ///< of a content

  bool begins() const { return above == 0; }
  bool ends() const { return below == 0; }
  uint32_t end() const { return column + columns; }
};

/// A walk over the rows of one part of a table: those of the head, then the lines of the body;
/// where the lines are sliced, the rows of the head again and then the lines of the next slice. A
/// table that is empty has no lines. The view outlives the walk.
class TableRows {
 public:
  /// With `slice_lines`, the lines come in slices of so many, at least one.
  explicit TableRows(const TableView& view,
                     const Part& part,
                     uint32_t slice_lines = std::numeric_limits<uint32_t>::max());

  /// Goes to the next row. False behind the last one of the slice; it stays there.
  bool next();
  /// Goes on to what the last slice left, ahead of its rows of heads. False when nothing is left.
  bool next_slice();

  // Of the row in hand.

  bool in_head() const { return at_ <= view_.head_rows(); }
  /// Whether it is the first row of the slice, or the last.
  bool is_first() const { return at_ == 1; }
  bool is_last() const { return !in_head() && line() + 1 == slice_end_; }
  /// Whether it is the first line of the slice: what goes on from the last one stands there again.
  bool is_first_line() const { return !in_head() && line() == slice_begin_; }
  /// The line of the body.
  uint32_t line() const { return slice_begin_ + at_ - view_.head_rows() - 1; }
  /// The cells from the start. Together they cover the part, each place once.
  std::span<const RowCell> cells() const { return cells_; }
  /// What stands at the side of the line in a stub: the groups that enclose its head, from the
  /// outermost, then the head.
  std::span<const Head* const> beside(uint32_t stub) const { return beside_[stub]; }

  // Of the slice.

  const Part& part() const { return part_; }
  /// Whether something of the table is ahead of the slice, in this part or another.
  bool continues() const { return part_.first > 0 || slice_begin_ > 0; }
  /// Whether the lines of the slice are the last ones, and the part is the last.
  bool ends_table() const;
  /// The columns that the part covers, with the stubs.
  uint32_t columns() const { return view_.stubs() + part_.width(); }

 private:
  uint32_t lines() const { return view_.layout.empty() ? 0 : view_.lines(); }
  void make_head_row(uint32_t level);
  void add_stub_titles();
  void add_column_heads(uint32_t level);
  void make_line();
  void take_heads();
  bool add_row_heads();
  void add_contents(uint32_t row);
  void add_gap(uint32_t from, uint32_t to);

  const TableView& view_;
  Part part_;
  uint32_t slice_lines_;
  uint32_t slice_begin_ = 0;
  uint32_t slice_end_ = 0;
  uint32_t at_ = 0;  // rows of the slice so far
  std::vector<RowCell> cells_;
  size_t next_head_ = 0;                          // of the row heads
  std::vector<std::vector<const Head*>> beside_;  // by stub
};

}  // namespace hierfit::report
