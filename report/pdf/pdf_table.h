// Draws a table on the pages of a PDF.
#pragma once

#include "output/document.h"
#include "report/pdf/pen.h"
#include "report/typeset/table_rows.h"

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
  /// Of a block that is a table; the block outlives it.
  PdfTable(const output::Document& document, const PaperBlock& block);

  /// A small table whole, of others the caption, head and first lines.
  double start_height(Pen& pen);
  /// Draws the table from where the pen is.
  void draw(Pen& pen);

 private:
  double caption_height(Pen& pen) const;
  void draw_caption(Pen& pen, bool continues);
  Runs caption(bool continues) const;

  void draw_part(Pen& pen, TableRows& rows);
  void draw_rule(Pen& pen, const Part& part, double thickness) const;
  /// Where a cell lies on the page that begins so far from the side of the row heads.
  double at(const Pen& pen, double offset, double width) const;
  /// The room for the text of a cell.
  double inner_width(const Part& part, const RowCell& cell) const;

  void measure_head(Pen& pen, TableRows& rows);
  void draw_head(Pen& pen, const Part& part);
  void draw_over(Pen& pen, const Part& part, const RowCell& cell, double foot);
  Runs label(const RowCell& cell) const;
  Runs row_label(const RowCell& cell, double width) const;
  double head_height() const;
  /// The room for the text of a head.
  static double tallest_head(const Pen& pen);

  double line_height(Pen& pen, const TableRows& rows) const;
  double row_head_height(Pen& pen, const Part& part, const RowCell& cell) const;
  double content_height(Pen& pen, const Part& part, const RowCell& cell) const;
  void draw_line(Pen& pen, const TableRows& rows);
  void turn_page(Pen& pen, const TableRows& rows);
  void draw_nothing(Pen& pen, const Part& part);
  void draw_cell(Pen& pen, const Part& part, const RowCell& cell);
  void draw_row_head(Pen& pen, const Part& part, const RowCell& cell);
  void draw_number(Pen& pen, const RowCell& content, double offset);
  void draw_text_cell(Pen& pen, const Part& part, const RowCell& content);
  void draw_text(Pen& pen, const Runs& runs, const std::string& whole, double x, double width);
  Runs fitting(Pen& pen,
               const Runs& runs,
               const std::string& whole,
               double most,
               const TextLook& look,
               double width);

  double notes_height(Pen& pen) const;
  void draw_notes(Pen& pen);
  std::vector<Runs> notes() const;

  const output::Document& document_;
  const Block& block_;
  const TableView& view_;
  const PageTable& page_;
  std::vector<double> head_heights_;     // by head row, of the part in hand
  std::vector<std::string> long_texts_;  // that are cut in their cells
};

}  // namespace hierfit::report::pdf
