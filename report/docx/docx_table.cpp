#include "report/docx/docx_table.h"

#include <algorithm>

#include "report/append.h"
#include "report/chart/metrics.h"
#include "report/docx/markup.h"
#include "report/typeset/paper.h"
#include "report/typeset/table_rows.h"
#include "report/wording.h"

namespace hierfit::report::docx {

namespace {

/// A table of no more lines is kept on one page.
constexpr uint32_t kFewLines = 14;

/// Rules in eighths of a point.
constexpr std::string_view kThick =
    " w:val=\"single\" w:sz=\"12\" w:space=\"0\" w:color=\"16181B\"";
constexpr std::string_view kThin = " w:val=\"single\" w:sz=\"6\" w:space=\"0\" w:color=\"16181B\"";
/// Over a group of columns: a paragraph's border, which leaves a gap to the next one.
constexpr std::string_view kSpanRule =
    "<w:pBdr><w:bottom w:val=\"single\" w:sz=\"4\" w:space=\"2\" w:color=\"8A9099\"/></w:pBdr>";

/// How a cell continues the one above it.
enum class Merge : uint8_t { None, Begins, Goes };

/// What surrounds the content of a cell.
struct CellLook {
  double width = 0;
  uint32_t columns = 1;
  Merge merge = Merge::None;
  bool low = false;
  std::string_view above = {};
  std::string_view below = {};
};

/// A paragraph in a cell.
struct ParagraphLook {
  std::string_view style = "TableText";
  std::string_view side = {};  ///< "center"; empty for that of the style
  double indent = 0;           ///< from the start
  double end_indent = 0;
  bool span_rule = false;
  bool keeps = false;  ///< with what follows
};

class DocxTable {
 public:
  DocxTable(std::string& out,
            const output::Document& document,
            const PaperBlock& block,
            uint32_t& bookmarks)
      : out_(out),
        document_(document),
        block_(block.block),
        bookmarks_(bookmarks),
        view_(block.table->view),
        page_(block.table->page),
        keeps_(view_.lines() <= kFewLines),
        name_(block_.anchor()) {}

  void write() {
    for (const Part& part : page_.parts)
      write_part(part);
    write_notes();
  }

 private:
  bool has_notes() const { return view_.captioned() || !view_.layout.notes.empty(); }

  // The caption.

  void write_caption(const Part& part) {
    if (part.first > 0) {
      out_ += "<w:p><w:pPr><w:pStyle w:val=\"Caption\"/></w:pPr>";
      append_run(out_, continued(block_, document_), {.bold = true});
      out_ += "</w:p>\n";
      return;
    }
    std::string title;
    append_run(title, view_.text(view_.table.title), {.italic = true});
    append_marks(title, view_.marks(view_.layout.title_notes));
    append_caption(out_, document_.word("Table ^1"), "Table", block_.number, name_, title,
                   bookmarks_);
  }

  /// Marks lead to their notes.
  void append_marks(std::string& out, const std::vector<uint32_t>& marks) const {
    for (const uint32_t mark : marks) {
      if (mark != marks.front()) append_run(out, ",", {.raised = true});
      const std::string letters = mark_letters(mark);
      append_run(out, letters, {.raised = true, .link = name_ + "n" + letters});
    }
  }

  // The frame.

  void write_part(const Part& part) {
    write_caption(part);
    out_ += "<w:tbl><w:tblPr><w:tblStyle w:val=\"ReportTable\"/>";
    if (document_.right_to_left) out_ += "<w:bidiVisual/>";
    out_ += "<w:tblW";
    append_attribute(out_, "w:w", twips(page_.width(part)));
    out_ +=
        " w:type=\"dxa\"/><w:jc w:val=\"start\"/><w:tblLayout w:type=\"fixed\"/><w:tblLook "
        "w:val=\"00A0\" "
        "w:firstRow=\"1\" w:firstColumn=\"1\" w:noVBand=\"1\" w:noHBand=\"1\"/><w:tblCaption "
        "w:val=\"";
    append_escaped(out_, view_.text(view_.table.title));
    out_ += "\"/></w:tblPr>\n<w:tblGrid>";
    TableRows rows(view_, part);
    for (uint32_t column = 0; column < rows.columns(); ++column)
      write_grid_column(page_.width(part, column, 1));
    out_ += "</w:tblGrid>\n";
    while (rows.next())
      write_row(rows);
    if (view_.layout.empty()) write_nothing(part);
    out_ += "</w:tbl>\n";
  }

  void write_grid_column(double points) {
    out_ += "<w:gridCol";
    append_attribute(out_, "w:w", twips(points));
    out_ += "/>";
  }

  void open_cell(const CellLook& look) {
    out_ += "<w:tc><w:tcPr><w:tcW";
    append_attribute(out_, "w:w", twips(look.width));
    out_ += " w:type=\"dxa\"/>";
    if (look.columns > 1) {
      out_ += "<w:gridSpan";
      append_attribute(out_, "w:val", look.columns);
      out_ += "/>";
    }
    if (look.merge == Merge::Begins) out_ += "<w:vMerge w:val=\"restart\"/>";
    if (look.merge == Merge::Goes) out_ += "<w:vMerge/>";
    if (!look.above.empty() || !look.below.empty()) write_rules(look);
    if (look.low) out_ += "<w:vAlign w:val=\"bottom\"/>";
    out_ += "</w:tcPr>";
  }

  void write_rules(const CellLook& look) {
    out_ += "<w:tcBorders>";
    if (!look.above.empty()) append(out_, "<w:top", look.above, "/>");
    if (!look.below.empty()) append(out_, "<w:bottom", look.below, "/>");
    out_ += "</w:tcBorders>";
  }

  void open_paragraph(const ParagraphLook& look) {
    append(out_, "<w:p><w:pPr><w:pStyle w:val=\"", look.style, "\"/>");
    if (look.keeps) out_ += "<w:keepNext/>";
    if (look.span_rule) out_ += kSpanRule;
    if (look.indent > 0 || look.end_indent > 0) {
      out_ += "<w:ind";
      if (look.indent > 0) append_attribute(out_, "w:left", twips(look.indent));
      if (look.end_indent > 0) append_attribute(out_, "w:right", twips(look.end_indent));
      out_ += "/>";
    }
    if (!look.side.empty()) append(out_, "<w:jc w:val=\"", look.side, "\"/>");
    out_ += "</w:pPr>";
  }

  void close_cell() { out_ += "</w:p></w:tc>"; }

  // The rows.

  void write_nothing(const Part& part) {
    out_ += "<w:tr><w:trPr><w:cantSplit/></w:trPr>";
    const CellLook look = {.width = page_.width(part),
                           .columns = view_.stubs() + part.width(),
                           .above = view_.head_rows() == 0 ? kThick : std::string_view(),
                           .below = kThick};
    open_cell(look);
    open_paragraph({.keeps = has_notes()});
    append_run(out_, document_.word("No entries"), {.italic = true, .quiet = true});
    close_cell();
    out_ += "</w:tr>\n";
  }

  void write_row(const TableRows& rows) {
    out_ += rows.in_head() ? "<w:tr><w:trPr><w:cantSplit/><w:tblHeader/></w:trPr>"
                           : "<w:tr><w:trPr><w:cantSplit/></w:trPr>";
    for (const RowCell& cell : rows.cells())
      write_cell(rows, cell);
    out_ += "</w:tr>\n";
  }

  void write_cell(const TableRows& rows, const RowCell& cell) {
    CellLook look = look_of(rows, cell);
    const bool keeps = keeps_with_next(rows, cell);
    if (cell.role == RowCell::Role::Gap) {
      for (uint32_t column = cell.column; column < cell.end(); ++column)
        write_blank(rows, column, look, keeps);
      return;
    }
    look.width = page_.width(rows.part(), cell.column, cell.columns);
    look.columns = cell.columns;
    open_cell(look);
    if (cell.role == RowCell::Role::Content) {
      write_content(cell, keeps);
    } else {
      write_head(cell, keeps);
    }
    close_cell();
  }

  void write_blank(const TableRows& rows, uint32_t column, CellLook look, bool keeps) {
    look.width = page_.width(rows.part(), column, 1);
    open_cell(look);
    open_paragraph({.keeps = keeps});
    close_cell();
  }

  static CellLook look_of(const TableRows& rows, const RowCell& cell) {
    CellLook look;
    look.low = rows.in_head();
    if (!cell.begins()) {
      look.merge = Merge::Goes;
    } else if (!cell.ends()) {
      look.merge = Merge::Begins;
    }
    if (rows.is_first()) look.above = kThick;
    if (rows.in_head() && !cell.over_heads) look.below = kThin;
    if (rows.is_last()) look.below = kThick;
    return look;
  }

  bool keeps_with_next(const TableRows& rows, const RowCell& cell) const {
    if (rows.in_head() || cell.role == RowCell::Role::Group) return true;
    return rows.is_last() ? has_notes() && rows.ends_table() : keeps_;
  }

  /// A head that reaches down stands in its first row.
  void write_head(const RowCell& cell, bool keeps) {
    ParagraphLook look = {.keeps = keeps};
    if (cell.role == RowCell::Role::ColumnHead) {
      look.side = cell.at_start ? "" : "center";
      look.span_rule = cell.over_heads && cell.label != nullptr;
    } else if (cell.head != nullptr && cell.begins()) {
      look.indent = kIndent * std::min(cell.head->indent, 8U);
    }
    open_paragraph(look);
    if (!cell.begins()) return;
    if (cell.label != nullptr) {
      const bool symbol = cell.head != nullptr && cell.label->symbol;
      append_run(out_, view_.text(*cell.label), {.italic = symbol});
    }
    append_marks(out_, cell.marks);
  }

  void write_content(const RowCell& content, bool keeps) {
    const AlignedCell& cell = *content.cell;
    ParagraphLook look = {.keeps = keeps};
    if (cell.kind == CellKind::Number && !content.at_start) {
      look.style = "TableNumber";
      look.end_indent = end_indent(cell, content.placed->column, mark_letters(content.marks));
    }
    open_paragraph(look);
    if (cell.kind == CellKind::Number) append_run(out_, view_.cells.number(cell), {});
    if (cell.kind == CellKind::Text)
      append_run(out_, view_.text(view_.table.texts[cell.begin]), {});
    append_marks(out_, content.marks);
  }

  /// What stands behind a number at the end of its cell, so that the numbers of a column have their
  /// decimal marks in line and are centred together. Marks of notes stand in that room.
  double end_indent(const AlignedCell& cell, uint32_t column, std::string_view marks) const {
    const DecimalWidths& widest = page_.decimals[column];
    const double rest = decimal_widths(view_.cells.number(cell), cell).rest;
    const double room = page_.columns[column] - 2 * kCellPadding - widest.whole - widest.rest;
    const double mark_width = chart::text_width(marks, {.size = kTableFont * 0.58});
    return std::max(0.0, room / 2 + widest.rest - rest - mark_width);
  }

  // The notes.

  void write_notes() {
    if (view_.captioned()) {
      out_ += "<w:p><w:pPr><w:pStyle w:val=\"TableNote\"/></w:pPr>";
      append_run(out_, std::string(document_.word("Note.")) + " ", {.italic = true});
      append_run(out_, view_.text(*view_.table.caption), {});
      out_ += "</w:p>\n";
    }
    for (uint32_t mark = 0; mark < view_.layout.notes.size(); ++mark) {
      out_ += "<w:p><w:pPr><w:pStyle w:val=\"TableNote\"/></w:pPr>";
      const std::string letters = mark_letters(mark);
      std::string run;
      append_run(run, letters, {.raised = true});
      append_bookmark(out_, name_ + "n" + letters, ++bookmarks_, run);
      append_run(out_, " " + view_.text(view_.table.notes[view_.layout.notes[mark]]), {});
      out_ += "</w:p>\n";
    }
    // Tables that touch would become one.
    out_ += "<w:p><w:pPr><w:pStyle w:val=\"TableEnd\"/></w:pPr></w:p>\n";
  }

  std::string& out_;
  const output::Document& document_;
  const Block& block_;
  uint32_t& bookmarks_;
  const TableView& view_;
  const PageTable& page_;
  bool keeps_;
  std::string name_;
};

}  // namespace

void append_table(std::string& out,
                  const output::Document& document,
                  const PaperBlock& block,
                  uint32_t& bookmarks) {
  DocxTable(out, document, block, bookmarks).write();
}

void append_facts(std::string& out,
                  const output::Document& document,
                  const output::About& about,
                  const Texts& texts) {
  constexpr double kLabels = 150;
  constexpr double kValues = kPaperWidth - 2 * kSideMargin - kLabels;
  if (about.facts.empty()) return;
  out += "<w:tbl><w:tblPr><w:tblStyle w:val=\"ReportTable\"/>";
  if (document.right_to_left) out += "<w:bidiVisual/>";
  out += "<w:tblW";
  append_attribute(out, "w:w", twips(kLabels + kValues));
  out +=
      " w:type=\"dxa\"/><w:tblLayout w:type=\"fixed\"/><w:tblLook w:val=\"0080\" "
      "w:firstColumn=\"1\" w:noVBand=\"1\" w:noHBand=\"1\"/><w:tblCaption w:val=\"";
  append_escaped(out, texts.shown(about.title));
  out += "\"/></w:tblPr>\n<w:tblGrid>";
  for (const double width : {kLabels, kValues}) {
    out += "<w:gridCol";
    append_attribute(out, "w:w", twips(width));
    out += "/>";
  }
  out += "</w:tblGrid>\n";
  const auto open_cell = [&](double width) {
    out += "<w:tc><w:tcPr><w:tcW";
    append_attribute(out, "w:w", twips(width));
    out += " w:type=\"dxa\"/></w:tcPr>";
  };
  const auto paragraph = [&](std::string_view style, const output::Text& text) {
    append(out, "<w:p><w:pPr><w:pStyle w:val=\"", style, "\"/></w:pPr>");
    append_run(out, texts.shown(text), {});
    out += "</w:p>";
  };
  for (const output::Fact& fact : about.facts) {
    out += "<w:tr>";
    open_cell(kLabels);
    paragraph("FactLabel", fact.label);
    out += "</w:tc>";
    open_cell(kValues);
    for (const output::Text& value : fact.values)
      paragraph("TableText", value);
    out += "</w:tc></w:tr>\n";
  }
  out += "</w:tbl>\n<w:p><w:pPr><w:pStyle w:val=\"TableEnd\"/></w:pPr></w:p>\n";
}

}  // namespace hierfit::report::docx
