// Writes one table as HTML.
#include "report/html/html_table.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

#include "report/aligned_cells.h"
#include "report/html/markup.h"
#include "report/layout/table_layout.h"
#include "report/wording.h"

namespace hierfit::report::html {

using output::Document;
using output::kNone;
using output::Table;

namespace {

/// What HTML lets a cell cover.
constexpr uint32_t kMostColumns = 1000;
constexpr uint32_t kMostRows = 65534;

/// From this many cells on `scope` alone ties cells to their heads: naming the heads in every cell
/// would double the file.
constexpr size_t kMostCellsWithHeaders = 20000;

/// From this many body lines on the browser may put off laying the table out until it is near.
constexpr size_t kManyLines = 1000;

/// From this many columns on the row heads stay in view while the table scrolls sideways.
constexpr uint32_t kManyColumns = 6;

/// The most steps of padding that the style sheet knows (its classes l1... and r1...).
constexpr int kMostLeftSteps = 24;
constexpr int kMostRightSteps = 48;

/// The deepest indent that the style sheet knows.
constexpr uint32_t kDeepestIndent = 4;

/// A CSS pixel in thousandths of a point.
constexpr int kMilliPointsPerPixel = 750;

void append_number(std::string& out, uint32_t number) {
  std::array<char, 12> digits;
  out.append(digits.data(),
             std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr);
}

/// A double in the fewest digits that read back as itself.
void append_value(std::string& out, double value) {
  if (std::isinf(value)) {
    out += value > 0 ? "Infinity" : "-Infinity";
    return;
  }
  std::array<char, 32> digits;
  out.append(digits.data(), std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr);
}

void append_span(std::string& out, std::string_view attribute, uint32_t span) {
  if (span < 2) return;
  (((out += ' ') += attribute) += "=\"");
  append_number(out, span);
  out += '"';
}

/// The width that stands right of the decimal mark, in halves of a digit's width. The style sheet
/// gives an exponent of n characters n + 1/2 digits; the mark is as wide as half a digit, a percent
/// sign as one and a half.
int right_steps(uint8_t fraction, uint8_t tail) {
  const int tail_steps = tail == 0 ? 0 : tail == 1 ? 3 : 2 * tail + 1;
  return (fraction == 0 ? 0 : 2 * fraction - 1) + tail_steps;
}

class HtmlTable {
 public:
  HtmlTable(std::string& out, const Document& document, const Table& table, uint32_t number)
      : out_(out), document_(document), table_(table), style_(document.numbers), number_(number) {
    style_.minus = "\u2212";
    layout_ = lay_out(table);
    cells_ = align_cells(table, layout_, style_);
    // The widest right part may be a fraction, an exponent or both.
    right_.assign(layout_.columns, 0);
    for (size_t i = 0; i < cells_.cells.size(); ++i) {
      int& right = right_[layout_.placed[i].column];
      right = std::max(right, right_steps(cells_.cells[i].fraction, cells_.cells[i].tail));
    }
    referenced_.assign(layout_.notes.size(), false);
    name_heads();
  }

  void write() {
    out_ += is_long() ? "<div class=\"scroll many" : "<div class=\"scroll";
    out_ += "\" tabindex=\"0\" role=\"region\" aria-labelledby=\"";
    append_id();
    out_ += "\">\n<table";
    if (layout_.stubs.size() == 1 && layout_.columns >= kManyColumns) out_ += " class=\"wide\"";
    out_ += ">\n";
    write_caption();
    write_column_widths();
    write_head();
    write_body();
    write_foot();
    out_ += "</table>\n</div>\n";
    if (is_long()) out_ += "<div class=\"end\"></div>\n";
  }

 private:
  uint32_t all_columns() const {
    return static_cast<uint32_t>(layout_.stubs.size()) + std::max(layout_.columns, 1U);
  }
  bool is_long() const { return layout_.lines.size() >= kManyLines; }
  bool has_stub_titles() const {
    return std::ranges::any_of(layout_.stubs, [this](uint32_t d) { return titled(d); });
  }
  bool titled(uint32_t dimension) const {
    const output::Dimension& of = table_.dimensions[dimension];
    return of.title_shown && !of.title.shown.empty();
  }

  void append_id() {
    out_ += 't';
    append_number(out_, number_);
  }
  void append_id(char part, uint32_t index) {
    append_id();
    out_ += part;
    append_number(out_, index);
  }

  /// Decides whether cells name their heads, and collects for each column the ids of its heads.
  void name_heads() {
    const bool simple = layout_.head_rows < 2 && layout_.stubs.size() < 2 &&
                        layout_.lines.size() == size_t{layout_.rows};
    named_ = !simple && layout_.placed.size() <= kMostCellsWithHeaders;
    if (!named_) return;
    column_names_.resize(layout_.columns);
    std::string name;
    for (uint32_t i = 0; i < layout_.column_heads.size(); ++i) {
      const output::Table& table = table_;
      const Head& head = layout_.column_heads[i];
      if (label_of(table, head) == nullptr) continue;
      name = " t" + std::to_string(number_) + "c" + std::to_string(i);
      for (uint32_t c = head.first; c < head.first + head.span; ++c)
        column_names_[c] += name;
    }
  }

  static const output::Text* label_of(const Table& table, const Head& head) {
    switch (head.kind) {
      case HeadKind::Title:
        return &table.dimensions[head.dimension].title;
      case HeadKind::Group:
      case HeadKind::Category: {
        const output::Text& label = table.dimensions[head.dimension].nodes[head.node].label;
        return label.shown.empty() ? nullptr : &label;
      }
      case HeadKind::Blank:
        return nullptr;
    }
    return nullptr;
  }

  void write_caption() {
    out_ += "<caption id=\"";
    append_id();
    out_ += "\"><span><b>";
    append_escaped(out_, filled(document_.word("Table ^1"), std::to_string(number_)));
    out_ += "</b><br><i>";
    append_text(out_, table_.title, style_);
    out_ += "</i>";
    write_marks(layout_.title_notes);
    out_ += "</span></caption>\n";
  }

  void write_column_widths() {
    if (table_.min_data_column_width <= 0 || layout_.columns == 0) return;
    out_ += "<colgroup>";
    for (size_t i = 0; i < layout_.stubs.size(); ++i)
      out_ += "<col>";
    out_ += "<col";
    append_span(out_, "span", std::min(layout_.columns, kMostColumns));
    out_ += " width=\"";
    const int64_t pixels = int64_t{table_.min_data_column_width} * 1000 / kMilliPointsPerPixel;
    append_number(out_, static_cast<uint32_t>(std::min<int64_t>(pixels, 4000)));
    out_ += "\"></colgroup>\n";
  }

  // The head: the stub's titles in its first row, over all of them.

  void write_head() {
    const bool stub_titles = has_stub_titles();
    if (layout_.head_rows == 0 && !stub_titles) return;
    const uint32_t rows = std::max(layout_.head_rows, 1U);
    out_ += "<thead>\n";
    auto head = layout_.column_heads.begin();
    for (uint32_t level = 0; level < rows; ++level) {
      out_ += "<tr>";
      if (level == 0) write_corner(rows, stub_titles);
      for (; head != layout_.column_heads.end() && head->level == level; ++head) {
        write_column_head(*head);
      }
      if (layout_.head_rows == 0) write_blank(std::max(layout_.columns, 1U), 1);
      out_ += "</tr>\n";
    }
    out_ += "</thead>\n";
  }

  void write_corner(uint32_t rows, bool stub_titles) {
    const auto stubs = static_cast<uint32_t>(layout_.stubs.size());
    if (!stub_titles) return write_blank(stubs, rows);
    for (uint32_t dimension : layout_.stubs) {
      if (!titled(dimension)) {
        write_blank(1, rows);
        continue;
      }
      out_ += dimension == layout_.stubs.front() ? "<th scope=\"col\" class=\"s\""
                                                 : "<th scope=\"col\" class=\"s n\"";
      append_span(out_, "rowspan", rows);
      out_ += '>';
      append_text(out_, table_.dimensions[dimension].title, style_);
      out_ += "</th>";
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

  void write_column_head(const Head& head) {
    const output::Text* label = label_of(table_, head);
    if (label == nullptr) return write_blank(head.span, head.depth);
    const auto index = static_cast<uint32_t>(&head - layout_.column_heads.data());
    for (uint32_t done = 0; done < head.span; done += kMostColumns) {
      const uint32_t columns = std::min(head.span - done, kMostColumns);
      const bool over_heads = head.level + head.depth < layout_.head_rows;
      out_ += columns > 1 || over_heads ? "<th scope=\"colgroup\"" : "<th scope=\"col\"";
      const bool at_start = head.span == 1 && is_text_column(head.first);
      if (over_heads) {
        out_ += at_start ? " class=\"g t\"" : " class=\"g\"";
      } else if (at_start) {
        out_ += " class=\"t\"";
      }
      append_span(out_, "colspan", columns);
      append_span(out_, "rowspan", head.depth);
      if (named_ && done == 0) {
        out_ += " id=\"";
        append_id('c', index);
        out_ += '"';
      }
      out_ += '>';
      if (over_heads) out_ += "<span>";
      append_text(out_, *label, style_);
      write_node_marks(head);
      if (over_heads) out_ += "</span>";
      out_ += "</th>";
    }
  }

  bool is_text_column(uint32_t column) const { return cells_.columns[column].mixed; }

  // The body.

  void write_body() {
    if (layout_.empty()) {
      out_ += "<tbody><tr><td class=\"t none\"";
      append_span(out_, "colspan", std::min(all_columns(), kMostColumns));
      out_ += '>';
      append_escaped(out_, document_.word("No entries"));
      out_ += "</td></tr></tbody>\n";
      return;
    }
    side_.assign(layout_.stubs.size(), {});
    out_ += "<tbody>\n";
    auto head = layout_.row_heads.begin();
    for (uint32_t line = 0; line < layout_.lines.size(); ++line) {
      const bool starts = head != layout_.row_heads.end() && starts_block(*head, line);
      if (starts && line > 0) out_ += "</tbody>\n<tbody>\n";
      write_line(line, head);
    }
    out_ += "</tbody>\n";
  }

  /// A `scope="rowgroup"` head reaches to the end of its `tbody`, so each outermost one begins one;
  /// and what follows it at its own height does, too.
  bool starts_block(const Head& head, uint32_t line) {
    if (head.first != line || head.level != 0 || head.indent != 0) return false;
    const bool heads_group = head.kind == HeadKind::Group || head.span > 1;
    const bool starts = heads_group || in_block_;
    in_block_ = heads_group;
    return starts;
  }

  void write_line(uint32_t line, std::vector<Head>::iterator& head) {
    const bool of_group = layout_.lines[line] == kNone;
    out_ += of_group ? "<tr class=\"g\">" : "<tr>";
    for (; head != layout_.row_heads.end() && head->first == line; ++head)
      write_row_head(*head);
    repeat_long_heads(line);
    if (!of_group) write_cells(layout_.lines[line]);
    out_ += "</tr>\n";
  }

  void write_row_head(const Head& head) {
    remember(head);
    const output::Text* label = label_of(table_, head);
    const bool group = head.kind == HeadKind::Group;
    if (label == nullptr && !group) {
      out_ += "<td class=\"t\"";
      append_span(out_, "rowspan", std::min(head.span, kMostRows));
      out_ += "></td>";
      return;
    }
    out_ += group || head.span > 1 ? "<th scope=\"rowgroup\"" : "<th scope=\"row\"";
    write_row_head_class(head);
    if (group) append_span(out_, "colspan", std::min(all_columns() - head.level, kMostColumns));
    append_span(out_, "rowspan", std::min(head.span, kMostRows));
    if (named_) {
      out_ += " id=\"";
      append_id('r', static_cast<uint32_t>(&head - layout_.row_heads.data()));
      out_ += '"';
    }
    out_ += '>';
    if (label != nullptr) append_text(out_, *label, style_);
    write_node_marks(head);
    out_ += "</th>";
  }

  /// "i" and the depth of the indent; "n" in a stub column inside another.
  void write_row_head_class(const Head& head) {
    if (head.indent > 0) {
      out_ += " class=\"i";
      append_number(out_, std::min(head.indent, kDeepestIndent));
      out_ += '"';
    } else if (head.level > 0) {
      out_ += " class=\"n\"";
    }
  }

  /// A head that covers more lines than HTML allows is written again where its cell ends.
  void repeat_long_heads(uint32_t line) {
    for (const Side& side : side_) {
      if (side.head == nullptr || line == side.head->first) continue;
      const uint32_t done = line - side.head->first;
      if (done >= side.head->span || done % kMostRows != 0) continue;
      out_ += "<th scope=\"rowgroup\"";
      append_span(out_, "rowspan", std::min(side.head->span - done, kMostRows));
      out_ += '>';
      if (const output::Text* label = label_of(table_, *side.head)) {
        append_text(out_, *label, style_);
      }
      out_ += "</th>";
    }
  }

  /// Keeps the heads that the coming cells stand beside.
  void remember(const Head& head) {
    Side& side = side_[head.level];
    side.groups.resize(std::min<size_t>(side.groups.size(), head.indent));
    if (head.kind == HeadKind::Group) {
      side.groups.push_back(&head);
    } else {
      side.head = &head;
    }
    if (!named_) return;
    row_names_.clear();
    for (size_t level = 0; level <= head.level; ++level) {
      for (const Head* group : side_[level].groups)
        append_row_name(*group);
      if (side_[level].head != nullptr) append_row_name(*side_[level].head);
    }
  }

  void append_row_name(const Head& head) {
    if (label_of(table_, head) == nullptr) return;
    if (!row_names_.empty()) row_names_ += ' ';
    (row_names_ += 't') += std::to_string(number_);
    (row_names_ += 'r') += std::to_string(&head - layout_.row_heads.data());
  }

  void write_cells(uint32_t row) {
    const std::span<const PlacedCell> placed = layout_.row(row);
    size_t next = layout_.row_begin[row];
    uint32_t column = 0;
    for (const PlacedCell& cell : placed) {
      for (; column < cell.column; ++column)
        out_ += "<td></td>";
      write_cell(cells_.cells[next++], cell);
      ++column;
    }
    for (; column < layout_.columns; ++column)
      out_ += "<td></td>";
  }

  void write_cell(const AlignedCell& cell, const PlacedCell& placed) {
    out_ += "<td";
    if (cells_.columns[placed.column].mixed) {
      out_ += " class=\"t\"";
    } else if (cell.kind == CellKind::Number) {
      write_padding(cell, placed.column);
    }
    if (named_) write_headers(placed.column);
    if (cell.kind == CellKind::Number) {
      out_ += " data-value=\"";
      append_value(out_, cell.value);
      out_ += '"';
    }
    out_ += '>';
    write_content(cell);
    if (!table_.cells.notes.empty()) {
      auto notes = table_.cells.notes.find(placed.cell);
      if (notes != table_.cells.notes.end()) write_marks(notes->second);
    }
    out_ += "</td>";
  }

  /// The numbers of a column are padded to one width, so that centring them keeps their decimal
  /// marks in line.
  void write_padding(const AlignedCell& cell, uint32_t column) {
    const int left = std::min(cells_.columns[column].whole - cell.whole, kMostLeftSteps);
    const int right =
        std::min(right_[column] - right_steps(cell.fraction, cell.tail), kMostRightSteps);
    if (left == 0 && right == 0) return;
    out_ += " class=\"";
    if (left > 0) {
      out_ += 'l';
      append_number(out_, static_cast<uint32_t>(left));
      if (right > 0) out_ += ' ';
    }
    if (right > 0) {
      out_ += 'r';
      append_number(out_, static_cast<uint32_t>(right));
    }
    out_ += '"';
  }

  void write_headers(uint32_t column) {
    const std::string_view names = column_names_[column];
    if (names.empty() && row_names_.empty()) return;
    (out_ += " headers=\"") += row_names_;
    out_ += row_names_.empty() ? names.substr(1) : names;
    out_ += '"';
  }

  void write_content(const AlignedCell& cell) {
    switch (cell.kind) {
      case CellKind::Text:
        return append_text(out_, table_.texts[cell.begin], style_);
      case CellKind::Missing:
        out_ += "<span class=\"v\">";
        append_escaped(out_, document_.word("missing"));
        out_ += "</span>";
        return;
      case CellKind::Number:
        return write_digits(cells_.number(cell), cell.tail);
    }
  }

  void write_digits(std::string_view digits, uint8_t tail) {
    const size_t exponent = tail > 1 ? digits.find('E') : std::string_view::npos;
    append_escaped(out_, digits.substr(0, exponent));
    if (exponent == std::string_view::npos) return;
    out_ += "<span class=\"e";
    append_number(out_, tail);
    (((out_ += "\">") += digits.substr(exponent)) += "</span>");
  }

  // Notes.

  void write_node_marks(const Head& head) {
    if (head.node != kNone) write_marks(table_.dimensions[head.dimension].nodes[head.node].notes);
  }

  void write_marks(const std::vector<uint32_t>& notes) {
    if (notes.empty()) return;
    std::vector<uint32_t> marks;
    for (uint32_t note : notes)
      marks.push_back(layout_.marks[note]);
    std::ranges::sort(marks);
    marks.erase(std::unique(marks.begin(), marks.end()), marks.end());
    out_ += "<sup>";
    for (uint32_t mark : marks) {
      if (mark != marks.front()) out_ += ',';
      write_mark(mark);
    }
    out_ += "</sup>";
  }

  void write_mark(uint32_t mark) {
    out_ += "<a role=\"doc-noteref\" href=\"#";
    append_id('n', mark);
    out_ += '"';
    if (!referenced_[mark]) {
      referenced_[mark] = true;
      out_ += " id=\"";
      append_id('m', mark);
      out_ += '"';
    }
    ((out_ += '>') += mark_letters(mark)) += "</a>";
  }

  void write_foot() {
    const bool captioned = table_.caption && !table_.caption->shown.empty();
    if (!captioned && layout_.notes.empty()) return;
    out_ += "<tfoot>\n";
    if (captioned) {
      open_note();
      out_ += "<i>";
      append_escaped(out_, document_.word("Note."));
      out_ += "</i> ";
      append_text(out_, *table_.caption, style_);
      out_ += "</span></td></tr>\n";
    }
    for (uint32_t mark = 0; mark < layout_.notes.size(); ++mark)
      write_note(mark);
    out_ += "</tfoot>\n";
  }

  void open_note() {
    out_ += "<tr><td";
    append_span(out_, "colspan", std::min(all_columns(), kMostColumns));
    out_ += "><span>";
  }

  void write_note(uint32_t mark) {
    open_note();
    out_ += "<sup><a id=\"";
    append_id('n', mark);
    out_ += "\" href=\"#";
    append_id('m', mark);
    ((out_ += "\">") += mark_letters(mark)) += "</a></sup> ";
    append_text(out_, table_.notes[layout_.notes[mark]], style_);
    out_ += "</span></td></tr>\n";
  }

  /// What stands at the side of the coming cells in one stub column.
  struct Side {
    std::vector<const Head*> groups;
    const Head* head = nullptr;
  };

  std::string& out_;
  const Document& document_;
  const Table& table_;
  output::NumberStyle style_;
  uint32_t number_;
  TableLayout layout_;
  AlignedCells cells_;
  std::vector<int> right_;        // by column: the widest right part, in steps
  std::vector<bool> referenced_;  // by mark: whether a link to the note has been written
  bool named_ = false;            // whether heads have ids and cells name them
  std::vector<std::string> column_names_;
  std::string row_names_;
  std::vector<Side> side_;  // by stub column
  bool in_block_ = false;   // whether the open `tbody` belongs to one head
};

}  // namespace

void append_table(std::string& out, const Document& document, const Table& table, uint32_t number) {
  HtmlTable(out, document, table, number).write();
}

}  // namespace hierfit::report::html
