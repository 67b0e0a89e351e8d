// The writer of one HTML table. For the sources of html_table*.cpp alone.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "report/aligned_cells.h"
#include "report/layout/table_layout.h"

namespace hierfit::report::html {

/// What HTML lets a cell cover.
inline constexpr uint32_t kMostColumns = 1000;

/// The width that stands right of the decimal mark, in halves of a digit's width. The style sheet
/// gives an exponent of n characters n + 1/2 digits; the mark is as wide as half a digit, a percent
/// sign as one and a half.
int right_steps(uint8_t fraction, uint8_t tail);

/// Writes a table from its caption to its last note, each part once and in that order.
class HtmlTable {
 public:
  HtmlTable(std::string& out,
            const output::Document& document,
            const output::Table& table,
            uint32_t number);
  void write();

 private:
  /// The columns from `column_begin_` to `column_end_`, in pieces of lines when the table is long:
  /// a browser lays out only those in view.
  void write_lines();
  void write_piece();
  /// For paper, a table wider than a page again by groups of columns, each with the row heads.
  void write_folds();
  /// Where the columns end that begin at `column_begin_` and fit on a page.
  uint32_t fold_end() const;
  double printed_width(uint32_t column) const;
  double printed_stub_width() const;
  bool is_wider_than_page() const;
  uint32_t columns() const { return column_end_ - column_begin_; }
  uint32_t lines() const { return static_cast<uint32_t>(layout_.lines.size()); }
  bool is_long() const;
  uint32_t all_columns() const;
  bool has_stub_titles() const;
  bool has_head() const { return layout_.head_rows > 0 || has_stub_titles(); }
  bool titled(uint32_t dimension) const;
  void append_id();
  void append_id(char part, uint32_t index);

  /// Decides whether cells name their heads, and collects for each column the ids of its heads.
  void name_heads();

  void measure_heads();

  /// What a head shows; null for nothing.
  const output::Text* label_of(const Head& head) const;
  void write_caption();
  void write_column_widths();

  // The head: the stub's titles in its first row, over all of them.

  void write_head();
  void write_corner(uint32_t rows, bool stub_titles);
  void write_blank(uint32_t columns, uint32_t rows);
  void write_column_head(const Head& head);
  bool is_text_column(uint32_t column) const { return cells_.columns[column].mixed; }

  // The body.

  void write_body();

  /// A `scope="rowgroup"` head reaches to the end of its `tbody`, so each outermost one begins one;
  /// and what follows it at its own height does, too.
  bool starts_block(const Head& head, uint32_t line);
  void write_line(uint32_t line);
  void write_row_head(const Head& head);
  uint32_t group_columns(const Head& head) const;

  /// "i" and the depth of the indent; "n" in a stub column inside another.
  void write_row_head_class(const Head& head);

  /// A head that goes on in a further piece is written again there.
  void repeat_heads();
  /// How many lines a head covers from `line` on, within the piece.
  uint32_t lines_left(const Head& head, uint32_t line) const;

  /// Keeps the heads that the coming cells stand beside.
  void remember(const Head& head);
  void append_row_name(const Head& head);
  void write_cells(uint32_t row);
  void write_gap(uint32_t columns);
  void write_cell(const AlignedCell& cell, const PlacedCell& placed);

  /// "t" in a column with texts, "p" for a significance, and the padding.
  void write_cell_class(const AlignedCell& cell, uint32_t column);

  /// The numbers of a column are padded to one width, so that centring them keeps their decimal
  /// marks in line: "l" and digits ahead of them, "r" and half digits behind.
  void append_padding(std::string& classes, const AlignedCell& cell, uint32_t column) const;
  void write_headers(uint32_t column);
  void write_content(const AlignedCell& cell);
  void write_digits(std::string_view digits, uint8_t tail);

  // Notes.

  void write_node_marks(const Head& head);
  void write_marks(const std::vector<uint32_t>& notes);
  void write_mark(uint32_t mark);
  void write_foot();
  void open_note();
  void write_note(uint32_t mark);

  /// What stands at the side of the coming cells in one stub column.
  struct Side {
    std::vector<const Head*> groups;
    const Head* head = nullptr;
  };

  std::string& out_;
  const output::Document& document_;
  const output::Table& table_;
  output::NumberStyle style_;
  uint32_t number_;
  TableLayout layout_;
  AlignedCells cells_;
  std::vector<int> right_;           // by column: the widest right part, in steps
  std::vector<double> head_digits_;  // by column
  std::vector<bool> referenced_;     // by mark: whether a link to the note has been written
  bool named_ = false;               // whether heads have ids and cells name them
  std::vector<std::string> column_names_;
  std::string row_names_;
  std::vector<Side> side_;                 // by stub column
  bool in_block_ = false;                  // whether the open `tbody` belongs to one head
  std::vector<Head>::iterator next_head_;  // of the row heads
  uint32_t piece_begin_ = 0;
  uint32_t piece_end_ = 0;
  uint32_t column_begin_ = 0;
  uint32_t column_end_ = 0;
  bool for_paper_ = false;  // a copy: ids are those of the table itself
};

}  // namespace hierfit::report::html
