// The writer of one text table. For the sources of text_table*.cpp alone.
#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

#include "report/aligned_cells.h"
#include "report/layout/table_layout.h"
#include "report/report.h"
#include "report/text/display_text.h"

namespace hierfit::report::text {

inline constexpr size_t kIndent = 2;  // of what a group encloses
inline constexpr size_t kNarrowestStub = 12;
inline constexpr size_t kUnlimited = std::numeric_limits<size_t>::max() / 4;

/// One line of the table under construction; knows how far it has come.
class Line {
 public:
  void clear() {
    text_.clear();
    used_ = 0;
  }
  void go_to(size_t column) {
    if (column <= used_) return;
    text_.append(column - used_, ' ');
    used_ = column;
  }
  void add(std::string_view text) {
    text_ += text;
    used_ += display_width(text);
  }
  void end(std::string& out) {
    text_.erase(text_.find_last_not_of(' ') + 1);
    (out += text_) += '\n';
    clear();
  }

 private:
  std::string text_;
  size_t used_ = 0;
};

/// Columns that stand beside one another: the data columns from `begin` up to `end`.
struct Block {
  uint32_t begin = 0;
  uint32_t end = 0;
};

/// The widths of a column.
struct Column {
  size_t whole = 0;  ///< columns of the display ahead of the decimal mark
  size_t right = 0;  ///< behind the digits ahead of it: mark, fraction, tail
  size_t marks = 0;  ///< of the widest note marks
  size_t cells = 1;  ///< of the widest cell
  size_t width = 1;
  size_t numbers() const { return whole + right + marks; }
};

/// How close the parts of a table stand.
struct Density {
  bool tight_heads = false;     ///< heads of one column wrap wherever they may
  bool tight_spanners = false;  ///< heads over several columns do
  size_t gap = 2;               ///< blanks between columns
  bool wraps_stubs = false;     ///< row labels wrap; their columns take the room that is left
};

/// Writes a table from its title to its last note.
class TextTable {
 public:
  TextTable(std::string& out,
            const output::Document& document,
            const output::Table& table,
            uint32_t number,
            const Options& options)
      : out_(out),
        document_(document),
        table_(table),
        number_(number),
        options_(options),
        limit_(options.width == 0 ? kUnlimited : std::max<size_t>(options.width, 20)),
        layout_(lay_out(table)),
        cells_(align_cells(table, layout_, document.numbers)) {}

  void write();

 private:
  std::string text_of(const output::Text& text) const;
  std::string marks_of(const std::vector<uint32_t>& notes) const;
  std::string label_of(const Head& head) const;
  std::string stub_title(uint32_t dimension) const;
  std::string cell_marks(uint32_t cell) const;

  // Widths.

  /// Finds the loosest density at which the table fits, else the loosest that folds it into the
  /// fewest blocks.
  std::vector<Block> fit();
  /// Sets all widths. Whether the columns then stand beside one another within the limit.
  bool fits_at(const Density& density);

  void measure_labels();
  size_t stub_width(size_t stub, bool tight_heads) const;
  /// Makes the widest stub columns narrower until all of them together are as wide as allowed.
  void shrink_stubs(size_t allowed);
  size_t stub_floor() const;
  void measure_cells();
  void measure_cell(size_t index);
  size_t text_limit() const;
  /// Gives what a table lacks of the limit to the titles of its stubs and to its spanners.
  void spend(size_t spare);
  void make_room(const Head& head, const Density& density);
  void widen_columns(const Head& head, size_t more);
  size_t width_of(uint32_t begin, uint32_t end) const;
  /// By column: whether it stays with the one ahead of it, under a head that fits into a block.
  std::vector<bool> glued() const;
  /// Gives the labels the room that the widest block leaves.
  void widen_stubs(const std::vector<Block>& blocks, bool tight_heads);
  std::vector<Block> fold() const;

  // Writing.

  void write_title();
  void write_continuation();

  /// Where the columns of a block begin, and behind them where the next would.
  void place_columns(const Block& block);
  void write_rule(std::string_view piece);
  void write_block(const Block& block);

  /// A head inside a block: its label wrapped to the columns that it covers there.
  struct BlockHead {
    size_t start = 0;
    size_t width = 0;
    bool at_start = false;  ///< not centred
    std::vector<std::string> lines;
  };
  bool write_heads(const Block& block);
  std::vector<BlockHead> stub_heads() const;
  std::vector<BlockHead> heads_ending_at(uint32_t level, const Block& block) const;

  /// Heads that are shorter than others stand at the foot of their row.
  void write_head_row(const std::vector<BlockHead>& heads);
  void write_spanner_rules(const std::vector<BlockHead>& heads);

  /// What is still to be written of the head in one stub column.
  struct Side {
    std::vector<std::string> lines;
    size_t next = 0;
    uint32_t last_line = 0;  ///< the last body line that the head covers
    size_t indent = 0;
    size_t rest() const { return lines.size() - next; }
  };
  void write_lines(const Block& block);
  void take_side(const Head& head);
  void write_sides(size_t stubs);
  void write_group(const Head& group);
  void write_row(uint32_t row, uint32_t line, const Block& block);

  /// The lines that a row needs: for its texts, and for heads that end with it.
  size_t row_height(uint32_t row, uint32_t line, const Block& block);
  void write_cells(uint32_t row, const Block& block);
  void write_number(const AlignedCell& cell, const PlacedCell& placed, size_t start);
  void write_further_text(size_t i);
  void write_notes();

  std::string& out_;
  const output::Document& document_;
  const output::Table& table_;
  uint32_t number_;
  const Options& options_;
  size_t limit_;
  TableLayout layout_;
  AlignedCells cells_;
  size_t gap_ = 2;
  std::vector<size_t> label_widths_;  // of the stub columns, by the labels that do not wrap
  std::vector<size_t> stub_widths_;
  size_t stub_width_ = 0;  // of all stub columns, with the gaps behind them
  std::vector<Column> columns_;
  std::vector<size_t> starts_;
  size_t rule_width_ = 0;
  std::vector<Side> sides_;
  std::vector<BlockHead> texts_;  // the text cells of the row in hand
  Line line_;
};

}  // namespace hierfit::report::text
