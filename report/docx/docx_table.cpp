#include "report/docx/docx_table.h"

#include <algorithm>

#include "report/chart/metrics.h"
#include "report/docx/markup.h"
#include "report/layout/page_table.h"
#include "report/wording.h"

namespace hierfit::report::docx {

using output::kNone;
using output::Text;

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
            const output::Table& table,
            uint32_t number,
            uint32_t& bookmarks)
      : out_(out),
        document_(document),
        number_(number),
        bookmarks_(bookmarks),
        view_(document, table),
        page_(plan_table(view_)),
        grid_(head_grid(view_.layout)),
        keeps_(view_.lines() <= kFewLines),
        name_("t" + std::to_string(number)) {}

  void write() {
    first_ = 0;
    for (const uint32_t end : page_.fold_ends) {
      end_ = end;
      write_caption();
      write_fold();
      first_ = end;
    }
    write_notes();
  }

 private:
  bool is_last() const { return end_ == view_.layout.columns; }
  bool has_notes() const { return view_.captioned() || !view_.layout.notes.empty(); }
  uint32_t shown_columns() const { return std::max(end_ - first_, 1U); }
  double column_width(uint32_t column) const {
    constexpr double kAlone = 140;
    return column < page_.columns.size() ? page_.columns[column] : kAlone;
  }
  double width(uint32_t first, uint32_t end) const {
    double sum = 0;
    for (uint32_t column = first; column < end; ++column)
      sum += column_width(column);
    return sum;
  }

  // The caption.

  void write_caption() {
    if (first_ > 0) {
      out_ += "<w:p><w:pPr><w:pStyle w:val=\"Caption\"/></w:pPr>";
      const std::string_view pattern = document_.word("Table ^1 (continued)");
      append_run(out_, filled(pattern, std::to_string(number_)), {.bold = true});
      out_ += "</w:p>\n";
      return;
    }
    std::string title;
    append_run(title, view_.text(view_.table.title), {.italic = true});
    append_marks(title, view_.marks(view_.layout.title_notes));
    append_caption(out_, document_.word("Table ^1"), "Table", number_, name_, title, bookmarks_);
  }

  /// Marks lead to their notes.
  void append_marks(std::string& out, std::string_view marks) const {
    for (size_t begin = 0; begin < marks.size();) {
      const size_t end = std::min(marks.find(',', begin), marks.size());
      if (begin > 0) append_run(out, ",", {.raised = true});
      const std::string_view mark = marks.substr(begin, end - begin);
      append_run(out, mark, {.raised = true, .link = name_ + "n" + std::string(mark)});
      begin = end + 1;
    }
  }

  // The frame.

  void write_fold() {
    out_ += "<w:tbl><w:tblPr><w:tblStyle w:val=\"ReportTable\"/>";
    if (document_.right_to_left) out_ += "<w:bidiVisual/>";
    out_ += "<w:tblW";
    append_attribute(out_, "w:w", twips(page_width()));
    out_ +=
        " w:type=\"dxa\"/><w:jc w:val=\"start\"/><w:tblLayout w:type=\"fixed\"/><w:tblLook "
        "w:val=\"00A0\" "
        "w:firstRow=\"1\" w:firstColumn=\"1\" w:noVBand=\"1\" w:noHBand=\"1\"/><w:tblCaption "
        "w:val=\"";
    append_escaped(out_, view_.text(view_.table.title));
    out_ += "\"/></w:tblPr>\n<w:tblGrid>";
    for (const double stub : page_.stubs)
      write_grid_column(stub);
    for (uint32_t column = first_; column < first_ + shown_columns(); ++column)
      write_grid_column(column_width(column));
    out_ += "</w:tblGrid>\n";
    write_head();
    write_body();
    out_ += "</w:tbl>\n";
  }

  double page_width() const {
    double sum = width(first_, first_ + shown_columns());
    for (const double stub : page_.stubs)
      sum += stub;
    return sum;
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
    if (!look.above.empty()) ((out_ += "<w:top") += look.above) += "/>";
    if (!look.below.empty()) ((out_ += "<w:bottom") += look.below) += "/>";
    out_ += "</w:tcBorders>";
  }

  void open_paragraph(const ParagraphLook& look) {
    ((out_ += "<w:p><w:pPr><w:pStyle w:val=\"") += look.style) += "\"/>";
    if (look.keeps) out_ += "<w:keepNext/>";
    if (look.span_rule) out_ += kSpanRule;
    if (look.indent > 0 || look.end_indent > 0) {
      out_ += "<w:ind";
      if (look.indent > 0) append_attribute(out_, "w:left", twips(look.indent));
      if (look.end_indent > 0) append_attribute(out_, "w:right", twips(look.end_indent));
      out_ += "/>";
    }
    if (!look.side.empty()) ((out_ += "<w:jc w:val=\"") += look.side) += "\"/>";
    out_ += "</w:pPr>";
  }

  void close_cell() { out_ += "</w:p></w:tc>"; }

  void write_blank(const CellLook& look, bool keeps) {
    open_cell(look);
    open_paragraph({.keeps = keeps});
    close_cell();
  }

  // The head.

  void write_head() {
    const uint32_t rows = view_.head_rows();
    for (uint32_t level = 0; level < rows; ++level) {
      out_ += "<w:tr><w:trPr><w:cantSplit/><w:tblHeader/></w:trPr>";
      CellLook look;
      look.low = true;
      look.above = level == 0 ? kThick : std::string_view();
      for (uint32_t stub = 0; stub < view_.stubs(); ++stub)
        write_stub_title(stub, level, rows, look);
      if (grid_.empty()) {
        look.width = width(first_, first_ + shown_columns());
        look.columns = shown_columns();
        look.below = kThin;
        write_blank(look, true);
      } else {
        write_column_heads(level, look);
      }
      out_ += "</w:tr>\n";
    }
  }

  static Merge merge_of(uint32_t level, uint32_t first, uint32_t rows) {
    if (rows == 1) return Merge::None;
    return level == first ? Merge::Begins : Merge::Goes;
  }

  void write_stub_title(uint32_t stub, uint32_t level, uint32_t rows, CellLook look) {
    look.width = page_.stubs[stub];
    look.merge = merge_of(level, 0, rows);
    look.below = kThin;
    open_cell(look);
    open_paragraph({.keeps = true});
    const Text* title = view_.stub_title(stub);
    if (title != nullptr && level == 0) append_run(out_, view_.text(*title), {});
    close_cell();
  }

  void write_column_heads(uint32_t level, const CellLook& look) {
    uint32_t column = first_;
    for (const Head* head : heads_between(grid_[level], first_, end_)) {
      const uint32_t from = std::max(head->first, column);
      const uint32_t to = std::min(head->first + head->span, end_);
      if (from >= to) continue;
      write_column_head(*head, level, from, to, look);
      column = to;
    }
  }

  void write_column_head(
      const Head& head, uint32_t level, uint32_t from, uint32_t to, CellLook look) {
    const bool over_heads = head.level + head.depth < view_.head_rows();
    look.width = width(from, to);
    look.columns = to - from;
    look.merge = merge_of(level, head.level, head.depth);
    if (!over_heads) look.below = kThin;
    const Text* label = view_.label_of(head);
    const bool at_start = to - from == 1 && view_.cells.columns[from].mixed;
    open_cell(look);
    open_paragraph({.side = at_start ? "" : "center",
                    .span_rule = over_heads && label != nullptr,
                    .keeps = true});
    if (label != nullptr && level == head.level) {
      append_run(out_, view_.text(*label), {.italic = label->symbol});
      append_marks(out_, view_.marks(head));
    }
    close_cell();
  }

  // The body.

  void write_body() {
    if (view_.layout.empty()) return write_nothing();
    running_.assign(view_.stubs(), nullptr);
    next_head_ = 0;
    for (uint32_t line = 0; line < view_.lines(); ++line)
      write_line(line);
  }

  void write_nothing() {
    out_ += "<w:tr><w:trPr><w:cantSplit/></w:trPr>";
    CellLook look;
    look.width = page_width();
    look.columns = view_.stubs() + shown_columns();
    look.above = view_.head_rows() == 0 ? kThick : std::string_view();
    look.below = kThick;
    open_cell(look);
    open_paragraph({.keeps = has_notes()});
    append_run(out_, document_.word("No entries"), {.italic = true, .quiet = true});
    close_cell();
    out_ += "</w:tr>\n";
  }

  void write_line(uint32_t line) {
    const bool last = line + 1 == view_.lines();
    CellLook look;
    if (line == 0 && view_.head_rows() == 0) look.above = kThick;
    if (last) look.below = kThick;
    line_keeps_ = last ? has_notes() && is_last() : keeps_;
    out_ += "<w:tr><w:trPr><w:cantSplit/></w:trPr>";
    if (!write_row_heads(line, look)) write_cells(view_.layout.lines[line], look);
    out_ += "</w:tr>\n";
  }

  /// Whether the line is that of a group, whose head runs over all of it.
  bool write_row_heads(uint32_t line, CellLook look) {
    const std::vector<Head>& heads = view_.layout.row_heads;
    for (uint32_t stub = 0; stub < view_.stubs(); ++stub) {
      const bool begins = next_head_ < heads.size() && heads[next_head_].first == line &&
                          heads[next_head_].level == stub;
      if (begins && heads[next_head_].kind == HeadKind::Group) {
        write_group(heads[next_head_++], stub, look);
        return true;
      }
      look.width = page_.stubs[stub];
      if (begins) {
        running_[stub] = &heads[next_head_++];
        look.merge = running_[stub]->span > 1 ? Merge::Begins : Merge::None;
        write_row_head(*running_[stub], look);
      } else {
        const Head* head = running_[stub];
        const bool runs = head != nullptr && head->first + head->span > line;
        look.merge = runs ? Merge::Goes : Merge::None;
        write_blank(look, line_keeps_);
      }
    }
    return false;
  }

  void write_group(const Head& head, uint32_t stub, CellLook look) {
    look.width = page_width();
    for (uint32_t outer = 0; outer < stub; ++outer)
      look.width -= page_.stubs[outer];
    look.columns = view_.stubs() - stub + shown_columns();
    line_keeps_ = true;
    write_row_head(head, look);
  }

  void write_row_head(const Head& head, const CellLook& look) {
    open_cell(look);
    open_paragraph({.indent = kIndent * std::min(head.indent, 8U), .keeps = line_keeps_});
    if (const Text* label = view_.label_of(head)) {
      append_run(out_, view_.text(*label), {.italic = label->symbol});
    }
    append_marks(out_, view_.marks(head));
    close_cell();
  }

  void write_cells(uint32_t row, CellLook look) {
    const std::span<const PlacedCell> whole = view_.layout.row(row);
    const std::span<const PlacedCell> placed = cells_between(whole, first_, end_);
    size_t at = view_.layout.row_begin[row] + static_cast<size_t>(placed.data() - whole.data());
    auto next = placed.begin();
    for (uint32_t column = first_; column < end_; ++column) {
      look.width = page_.columns[column];
      if (next == placed.end() || next->column != column) {
        write_blank(look, line_keeps_);
        continue;
      }
      open_cell(look);
      write_cell(*next++, view_.cells.cells[at++]);
      close_cell();
    }
  }

  void write_cell(const PlacedCell& placed, const AlignedCell& cell) {
    const bool mixed = view_.cells.columns[placed.column].mixed;
    const std::string marks = view_.table.cells.notes.empty() ? "" : view_.marks(placed);
    ParagraphLook look = {.keeps = line_keeps_};
    if (cell.kind == CellKind::Number && !mixed) {
      look.style = "TableNumber";
      look.end_indent = end_indent(cell, placed.column, marks);
    }
    open_paragraph(look);
    if (cell.kind == CellKind::Number) append_run(out_, view_.cells.number(cell), {});
    if (cell.kind == CellKind::Text)
      append_run(out_, view_.text(view_.table.texts[cell.begin]), {});
    append_marks(out_, marks);
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
  uint32_t number_;
  uint32_t& bookmarks_;
  TableView view_;
  PageTable page_;
  std::vector<std::vector<const Head*>> grid_;
  bool keeps_;
  std::string name_;
  std::vector<const Head*> running_;  // by stub column: the head beside the last line
  size_t next_head_ = 0;
  uint32_t first_ = 0;
  uint32_t end_ = 0;
  bool line_keeps_ = false;
};

}  // namespace

void append_table(std::string& out,
                  const output::Document& document,
                  const output::Table& table,
                  uint32_t number,
                  uint32_t& bookmarks) {
  DocxTable(out, document, table, number, bookmarks).write();
}

}  // namespace hierfit::report::docx
