// Draws a table on the pages of a PDF.
#pragma once

#include "output/document.h"
#include "report/pdf/pen.h"

namespace hierfit::report::pdf {

/// What stands over a table or figure: its number, then its title.
inline constexpr TextLook kCaptionLook = {.size = 9.5, .line = 1.3};
inline constexpr TextLook kNoteLook = {.size = 8.5, .line = 1.25};
/// Around a table or figure, and between its caption and it.
inline constexpr double kBlockGap = 20;
inline constexpr double kCaptionGap = 5;

/// A table, which can tell what it needs of a page to begin on it.
class PdfTable {
 public:
  PdfTable(const output::Document& document, const output::Table& table, uint32_t number);

  /// A small table whole, of others the caption, head and first lines.
  double start_height(Pen& pen);
  /// Draws the table from where the pen is.
  void draw(Pen& pen);

 private:
  double caption_height(Pen& pen) const;
  void draw_caption(Pen& pen, bool continues);
  Runs caption(bool continues) const;

  void draw_fold(Pen& pen);
  double shown_width(uint32_t from, uint32_t to) const;
  double table_width() const;
  double stub_width() const;
  /// Where a cell lies on the page that begins so far from the side of the row heads.
  double at(const Pen& pen, double offset, double width) const;

  void measure_head(Pen& pen);
  void draw_head(Pen& pen);
  void draw_column_head(Pen& pen, const Head& head, double top);
  Runs label(const Head& head) const;
  Runs row_label(const Head& head) const;
  double head_height() const;

  double line_height(Pen& pen, uint32_t line, size_t head) const;
  double row_head_height(Pen& pen, const Head& head) const;
  double cell_width(const Head& head) const;
  void draw_lines(Pen& pen);
  void draw_nothing(Pen& pen);
  void draw_row_head(Pen& pen, const Head& head, double top);
  void repeat_heads(Pen& pen, uint32_t line, double top);
  void draw_cells(Pen& pen, uint32_t row, double top);
  void draw_number(
      Pen& pen, const PlacedCell& placed, const AlignedCell& cell, double offset, double top);
  void draw_text_cell(
      Pen& pen, const PlacedCell& placed, const AlignedCell& cell, double offset, double top);
  /// Of the cells of a row, those of the fold.
  std::span<const PlacedCell> shown_cells(uint32_t row) const;
  const AlignedCell& aligned(const PlacedCell& placed) const;
  std::string marks_at(const PlacedCell& placed) const;
  void draw_text(Pen& pen, const Runs& runs, Side side, double x, double top, double width);

  double notes_height(Pen& pen) const;
  void draw_notes(Pen& pen);
  std::vector<Runs> notes() const;

  const output::Document& document_;
  TableView view_;
  PageTable page_;
  std::vector<std::vector<const Head*>> grid_;
  uint32_t number_;
  uint32_t first_ = 0;  // the columns of the fold
  uint32_t end_ = 0;
  std::vector<double> head_heights_;  // by head row
  std::vector<const Head*> running_;  // by stub column: the head beside the last line
};

}  // namespace hierfit::report::pdf
