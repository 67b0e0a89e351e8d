#include "report/html/html_table.h"

#include <algorithm>

#include "report/append.h"
#include "report/html/markup.h"
#include "report/typeset/paper.h"
#include "report/typeset/table_rows.h"
#include "report/wording.h"

namespace hierfit::report::html {

using output::Document;
using output::Text;
using Role = RowCell::Role;

namespace {

/// What HTML lets a cell cover.
constexpr uint32_t kMostColumns = 1000;

/// From this many cells on `scope` alone ties cells to their heads: naming the heads in every cell
/// would double the file.
constexpr size_t kMostCellsWithHeaders = 20000;

/// A table of more body lines than this is written in slices of half as many.
constexpr uint32_t kManyLines = 1000;

/// From this many columns on the row heads stay in view while the table scrolls sideways.
constexpr uint32_t kManyColumns = 6;

/// A longer run of places without a cell becomes one cell.
constexpr uint32_t kLongestPlainGap = 50;

/// The deepest indent that the style sheet knows, and the most steps of padding (its classes l1...
/// and r1...).
constexpr uint32_t kDeepestIndent = 4;
constexpr int kMostLeftSteps = 24;
constexpr int kMostRightSteps = 48;

/// A CSS pixel in thousandths of a point.
constexpr int kMilliPointsPerPixel = 750;

/// The width that stands right of the decimal mark, in halves of a digit's width. The style sheet
/// gives an exponent of n characters n + 1/2 digits; the mark is as wide as half a digit, a percent
/// sign as one and a half.
int right_steps(const AlignedCell& cell) {
  const int tail_steps = cell.tail == 0 ? 0 : cell.tail == 1 ? 3 : 2 * cell.tail + 1;
  return (cell.fraction == 0 ? 0 : 2 * cell.fraction - 1) + tail_steps;
}

/// Writes a table from its caption to its last note.
class HtmlTable {
 public:
  HtmlTable(std::string& out, const Document& document, const Block& block)
      : out_(out),
        document_(document),
        block_(block),
        view_(document, *block.as<output::Table>()),
        id_(block.anchor()),
        right_(view_.layout.columns, 0),
        referenced_(view_.layout.notes.size(), false) {
    for (size_t i = 0; i < view_.cells.cells.size(); ++i) {
      int& right = right_[view_.layout.placed[i].column];
      right = std::max(right, right_steps(view_.cells.cells[i]));
    }
    name_heads();
  }

  /// A table that is wider than paper is there once more for it, a part beneath the other. One that
  /// is long is printed as it stands.
  void write() {
    PageTable page;
    if (!is_long()) page = plan_table(view_);
    landscape_ = page.landscape;
    if (page.parts.size() < 2) return write_part({0, view_.layout.columns});
    out_ += "<div class=\"whole\">\n";
    write_part({0, view_.layout.columns});
    out_ += "</div>\n<div class=\"parts\">\n";
    is_copy_ = true;
    named_ = false;
    for (const Part& part : page.parts)
      write_part(part);
    out_ += "</div>\n";
  }

 private:
  bool is_long() const { return view_.lines() > kManyLines; }

  // The frame.

  /// In slices of lines when the table is long: a browser lays out only those in view.
  void write_part(const Part& part) {
    TableRows rows(view_, part, is_long() ? kManyLines / 2 : kManyLines);
    in_block_ = false;
    do {
      write_slice(rows);
    } while (rows.next_slice());
  }

  void write_slice(TableRows& rows) {
    open_region(rows.part());
    write_caption(rows.continues());
    write_column_widths(rows.part());
    write_head(rows);
    write_body(rows);
    if (rows.ends_table()) write_notes(rows);
    out_ += "</table>\n</div>\n";
  }

  void open_region(const Part& part) {
    append(out_, "<div class=\"scroll", is_long() ? " slice" : "", landscape_ ? " landscape" : "");
    if (is_copy_) {
      out_ += "\">\n<table>\n";
      return;
    }
    append(out_, "\" tabindex=\"0\" role=\"region\" aria-labelledby=\"", id_, "\">\n<table",
           view_.stubs() == 1 && part.columns() >= kManyColumns ? " class=\"wide\"" : "", ">\n");
  }

  void write_caption(bool continues) {
    out_ += "<caption";
    if (!continues) write_id("");
    out_ += "><span><b>";
    append_escaped(out_, continues ? continued(block_, document_) : numbered(block_, document_));
    out_ += "</b>";
    if (!continues) {
      out_ += "<br><i>";
      append_text(out_, view_.table.title, view_.texts);
      out_ += "</i>";
      write_marks(view_.marks(view_.layout.title_notes));
    }
    out_ += "</span></caption>\n";
  }

  void write_column_widths(const Part& part) {
    if (view_.table.min_data_column_width <= 0 || part.columns() == 0) return;
    out_ += "<colgroup>";
    for (uint32_t stub = 0; stub < view_.stubs(); ++stub)
      out_ += "<col>";
    out_ += "<col";
    append_span(out_, "span", std::min(part.columns(), kMostColumns));
    const int64_t pixels = int64_t{view_.table.min_data_column_width} * 1000 / kMilliPointsPerPixel;
    append(out_, " width=\"", std::min<int64_t>(pixels, 4000), "\"></colgroup>\n");
  }

  /// An id of the table, that of what `name` tells; a copy has none.
  template <class... Name>
  void write_id(const Name&... name) {
    if (!is_copy_) append(out_, " id=\"", id_, name..., '"');
  }

  // The head. What reaches down is written in its first row.

  void write_head(TableRows& rows) {
    if (view_.head_rows() == 0) return;
    out_ += "<thead>\n";
    for (uint32_t row = 0; row < view_.head_rows() && rows.next(); ++row) {
      out_ += "<tr>";
      for (const RowCell& cell : rows.cells()) {
        if (cell.begins()) write_over(cell);
      }
      out_ += "</tr>\n";
    }
    out_ += "</thead>\n";
  }

  void write_over(const RowCell& cell) {
    if (cell.role == Role::StubTitle && !view_.has_stub_titles()) {
      if (cell.column == 0) write_blank(view_.stubs(), cell.below + 1);
    } else if (cell.label == nullptr) {
      write_blank(cell.columns, cell.below + 1);
    } else if (cell.role == Role::StubTitle) {
      write_stub_title(cell);
    } else {
      write_column_head(cell);
    }
  }

  void write_blank(uint32_t columns, uint32_t rows) {
    for (; columns > 0; columns -= std::min(columns, kMostColumns)) {
      out_ += "<td";
      append_span(out_, "colspan", std::min(columns, kMostColumns));
      append_span(out_, "rowspan", rows);
      out_ += "></td>";
    }
  }

  void write_stub_title(const RowCell& cell) {
    append(out_, "<th scope=\"col\" class=\"", cell.column == 0 ? "s" : "s n", '"');
    append_span(out_, "rowspan", cell.below + 1);
    out_ += '>';
    append_text(out_, *cell.label, view_.texts);
    out_ += "</th>";
  }

  void write_column_head(const RowCell& cell) {
    for (uint32_t at = 0; at < cell.columns; at += kMostColumns) {
      const uint32_t covered = std::min(cell.columns - at, kMostColumns);
      out_ += covered > 1 || cell.over_heads ? "<th scope=\"colgroup\"" : "<th scope=\"col\"";
      if (cell.over_heads) {
        out_ += cell.at_start ? " class=\"g t\"" : " class=\"g\"";
      } else if (cell.at_start) {
        out_ += " class=\"t\"";
      }
      append_span(out_, "colspan", covered);
      append_span(out_, "rowspan", cell.below + 1);
      if (named_ && at == 0) write_id('c', cell.head - view_.layout.column_heads.data());
      out_ += cell.over_heads ? "><span>" : ">";
      append_label(out_, *cell.label, view_.texts);
      write_marks(cell.marks);
      out_ += cell.over_heads ? "</span></th>" : "</th>";
    }
  }

  // The body.

  void write_body(TableRows& rows) {
    if (view_.layout.empty()) return write_nothing(rows);
    out_ += "<tbody>\n";
    while (rows.next()) {
      const bool starts = starts_block(rows.cells().front());
      if (starts && !rows.is_first_line()) out_ += "</tbody>\n<tbody>\n";
      write_line(rows);
    }
    out_ += "</tbody>\n";
  }

  void write_nothing(const TableRows& rows) {
    out_ += "<tbody><tr><td class=\"t none\"";
    append_span(out_, "colspan", std::min(rows.columns(), kMostColumns));
    out_ += '>';
    append_escaped(out_, document_.word("No entries"));
    out_ += "</td></tr></tbody>\n";
  }

  /// A `scope="rowgroup"` head reaches to the end of its `tbody`, so each outermost one begins one;
  /// and what follows it at its own height does, too.
  bool starts_block(const RowCell& cell) {
    if (cell.head == nullptr || !cell.begins() || cell.head->indent != 0) return false;
    const bool heads_group = cell.head->kind == HeadKind::Group || cell.head->span > 1;
    const bool starts = heads_group || in_block_;
    in_block_ = heads_group;
    return starts;
  }

  void write_line(const TableRows& rows) {
    const bool of_group = rows.cells().back().role == Role::Group;
    out_ += of_group ? "<tr class=\"g\">" : "<tr>";
    if (named_ && !of_group) name_row(rows);
    for (const RowCell& cell : rows.cells()) {
      if (cell.head == nullptr) {
        write_place(cell);
      } else if (cell.begins()) {
        write_row_head(cell);
      } else if (rows.is_first_line()) {
        repeat_row_head(cell);
      }
    }
    if (of_group && view_.head_rows() == 0) write_blank(rows.part().width(), 1);
    out_ += "</tr>\n";
  }

  void write_row_head(const RowCell& cell) {
    const bool group = cell.role == Role::Group;
    if (cell.label == nullptr && !group) {
      out_ += "<td class=\"t\"";
      append_span(out_, "rowspan", cell.below + 1);
      out_ += "></td>";
      return;
    }
    out_ += group || cell.head->span > 1 ? "<th scope=\"rowgroup\"" : "<th scope=\"row\"";
    // "i" and the depth of the indent; "n" in a stub column inside another.
    if (cell.head->indent > 0) {
      append(out_, " class=\"i", std::min(cell.head->indent, kDeepestIndent), '"');
    } else if (cell.column > 0) {
      out_ += " class=\"n\"";
    }
    if (group) append_span(out_, "colspan", group_columns(cell));
    append_span(out_, "rowspan", cell.below + 1);
    if (named_) write_id('r', cell.head - view_.layout.row_heads.data());
    out_ += '>';
    if (cell.label != nullptr) append_label(out_, *cell.label, view_.texts);
    write_marks(cell.marks);
    out_ += "</th>";
  }

  /// Without a head a first line over all columns would read as a caption.
  uint32_t group_columns(const RowCell& cell) const {
    const uint32_t columns = view_.head_rows() > 0 ? cell.columns : view_.stubs() - cell.column;
    return std::min(columns, kMostColumns);
  }

  /// A head that goes on in a further slice is written again there.
  void repeat_row_head(const RowCell& cell) {
    out_ += "<th scope=\"rowgroup\"";
    append_span(out_, "rowspan", cell.below + 1);
    out_ += '>';
    if (cell.label != nullptr) append_label(out_, *cell.label, view_.texts);
    out_ += "</th>";
  }

  void write_place(const RowCell& cell) {
    if (cell.role == Role::Content) return write_content(cell);
    if (cell.columns > kLongestPlainGap) return write_blank(cell.columns, 1);
    for (uint32_t column = 0; column < cell.columns; ++column)
      out_ += "<td></td>";
  }

  void write_content(const RowCell& content) {
    const AlignedCell& cell = *content.cell;
    out_ += "<td";
    write_class(content);
    if (named_) write_headers(content.placed->column);
    if (cell.kind == CellKind::Number) {
      out_ += " data-value=\"";
      append_double(out_, cell.value);
      out_ += '"';
    }
    out_ += '>';
    write_value(cell);
    write_marks(content.marks);
    out_ += "</td>";
  }

  /// "t" in a column with texts, "p" for a significance, and the padding: the numbers of a column
  /// are padded to one width, so that centring them keeps their decimal marks in line, by "l" and
  /// digits ahead of them, "r" and half digits behind.
  void write_class(const RowCell& content) {
    const AlignedCell& cell = *content.cell;
    const uint32_t column = content.placed->column;
    const bool number = cell.kind == CellKind::Number;
    std::string classes;
    if (content.at_start) classes = " t";
    if (number && cell.format == output::Format::Significance) classes += " p";
    if (number && !content.at_start) {
      const int left = std::min(view_.cells.columns[column].whole - cell.whole, kMostLeftSteps);
      const int right = std::min(right_[column] - right_steps(cell), kMostRightSteps);
      if (left > 0) append(classes, " l", left);
      if (right > 0) append(classes, " r", right);
    }
    if (!classes.empty()) append(out_, " class=\"", std::string_view(classes).substr(1), '"');
  }

  void write_value(const AlignedCell& cell) {
    switch (cell.kind) {
      case CellKind::Text:
        return append_text(out_, view_.table.texts[cell.begin], view_.texts);
      case CellKind::Missing:
        out_ += "<span class=\"v\">";
        append_escaped(out_, document_.word("missing"));
        out_ += "</span>";
        return;
      case CellKind::Number:
        return write_digits(view_.cells.number(cell), cell.tail);
    }
  }

  void write_digits(std::string_view digits, uint8_t tail) {
    const size_t exponent = tail > 1 ? digits.find('E') : std::string_view::npos;
    append_escaped(out_, digits.substr(0, exponent));
    if (exponent == std::string_view::npos) return;
    append(out_, "<span class=\"e", tail, "\">", digits.substr(exponent), "</span>");
  }

  // The names of heads, by which cells tell what they stand under and beside.

  /// Decides whether cells name their heads, and collects for each column the ids of its heads.
  void name_heads() {
    const TableLayout& layout = view_.layout;
    const bool simple =
        layout.head_rows < 2 && view_.stubs() < 2 && layout.lines.size() == size_t{layout.rows};
    named_ = !simple && !is_long() && layout.placed.size() <= kMostCellsWithHeaders;
    if (!named_) return;
    column_names_.resize(layout.columns);
    for (const Head& head : layout.column_heads) {
      if (view_.label_of(head) == nullptr) continue;
      for (uint32_t column = head.first; column < head.first + head.span; ++column)
        append(column_names_[column], ' ', id_, 'c', &head - layout.column_heads.data());
    }
  }

  void name_row(const TableRows& rows) {
    row_names_.clear();
    for (uint32_t stub = 0; stub < view_.stubs(); ++stub) {
      for (const Head* head : rows.beside(stub)) {
        if (view_.label_of(*head) == nullptr) continue;
        append(row_names_, ' ', id_, 'r', head - view_.layout.row_heads.data());
      }
    }
  }

  void write_headers(uint32_t column) {
    const std::string names = row_names_ + column_names_[column];
    if (!names.empty()) append(out_, " headers=\"", std::string_view(names).substr(1), '"');
  }

  // Notes. Marks lead to their notes, and a note to the first of its marks.

  void write_marks(const std::vector<uint32_t>& marks) {
    if (marks.empty()) return;
    out_ += "<sup>";
    for (const uint32_t mark : marks) {
      append(out_, mark == marks.front() ? "" : ",", "<a role=\"doc-noteref\" href=\"#", id_, 'n',
             mark, '"');
      if (!referenced_[mark]) append(out_, " id=\"", id_, 'm', mark, '"');
      referenced_[mark] = true;
      append(out_, '>', mark_letters(mark), "</a>");
    }
    out_ += "</sup>";
  }

  void write_notes(const TableRows& rows) {
    if (!view_.captioned() && view_.layout.notes.empty()) return;
    out_ += "<tfoot>\n";
    if (view_.captioned()) {
      open_note(rows);
      out_ += "<i>";
      append_escaped(out_, document_.word("Note."));
      out_ += "</i> ";
      append_text(out_, *view_.table.caption, view_.texts);
      out_ += "</span></td></tr>\n";
    }
    for (uint32_t mark = 0; mark < view_.layout.notes.size(); ++mark) {
      open_note(rows);
      out_ += "<sup><a";
      write_id('n', mark);
      append(out_, " href=\"#", id_, 'm', mark, "\" role=\"doc-backlink\">", mark_letters(mark),
             "</a></sup> ");
      append_text(out_, view_.table.notes[view_.layout.notes[mark]], view_.texts);
      out_ += "</span></td></tr>\n";
    }
    out_ += "</tfoot>\n";
  }

  void open_note(const TableRows& rows) {
    out_ += "<tr><td";
    append_span(out_, "colspan", std::min(rows.columns(), kMostColumns));
    out_ += "><span>";
  }

  std::string& out_;
  const Document& document_;
  const Block& block_;
  TableView view_;
  std::string id_;
  std::vector<int> right_;        // by column: the widest right part, in steps
  std::vector<bool> referenced_;  // by mark: whether a link to the note has been written
  bool named_ = false;            // whether heads have ids and cells name them
  std::vector<std::string> column_names_;
  std::string row_names_;   // of the line in hand
  bool in_block_ = false;   // whether the open `tbody` belongs to one head
  bool landscape_ = false;  // the way that paper lies
  bool is_copy_ = false;    // for paper: ids are those of the table itself
};

}  // namespace

void append_table(std::string& out, const Document& document, const Block& block) {
  HtmlTable(out, document, block).write();
}

}  // namespace hierfit::report::html
