// Writes one table as HTML: its body.
#include <algorithm>

#include "report/html/html_table_writer.h"
#include "report/html/markup.h"

namespace hierfit::report::html {

using output::kNone;

namespace {

/// The most steps of padding that the style sheet knows (its classes l1... and r1...).
constexpr int kMostLeftSteps = 24;
constexpr int kMostRightSteps = 48;

/// A longer run of places without a cell becomes one cell.
constexpr uint32_t kLongestPlainGap = 50;

/// The deepest indent that the style sheet knows.
constexpr uint32_t kDeepestIndent = 4;

}  // namespace

int right_steps(uint8_t fraction, uint8_t tail) {
  const int tail_steps = tail == 0 ? 0 : tail == 1 ? 3 : 2 * tail + 1;
  return (fraction == 0 ? 0 : 2 * fraction - 1) + tail_steps;
}

void HtmlTable::write_body() {
  if (layout_.empty()) {
    out_ += "<tbody><tr><td class=\"t none\"";
    append_span(out_, "colspan", std::min(all_columns(), kMostColumns));
    out_ += '>';
    append_escaped(out_, document_.word("No entries"));
    out_ += "</td></tr></tbody>\n";
    return;
  }
  out_ += "<tbody>\n";
  for (uint32_t line = piece_begin_; line < piece_end_; ++line) {
    const bool starts = next_head_ != layout_.row_heads.end() && starts_block(*next_head_, line);
    if (starts && line > piece_begin_) out_ += "</tbody>\n<tbody>\n";
    write_line(line);
  }
  out_ += "</tbody>\n";
}

bool HtmlTable::starts_block(const Head& head, uint32_t line) {
  if (head.first != line || head.level != 0 || head.indent != 0) return false;
  const bool heads_group = head.kind == HeadKind::Group || head.span > 1;
  const bool starts = heads_group || in_block_;
  in_block_ = heads_group;
  return starts;
}

void HtmlTable::write_line(uint32_t line) {
  const bool of_group = layout_.lines[line] == kNone;
  out_ += of_group ? "<tr class=\"g\">" : "<tr>";
  if (line == piece_begin_ && line > 0) repeat_heads();
  for (; next_head_ != layout_.row_heads.end() && next_head_->first == line; ++next_head_) {
    write_row_head(*next_head_);
  }
  if (!of_group) {
    write_cells(layout_.lines[line]);
  } else if (!has_head()) {
    write_blank(std::max(columns(), 1U), 1);
  }
  out_ += "</tr>\n";
}

/// Without a head a first line over all columns would read as a caption.
uint32_t HtmlTable::group_columns(const Head& head) const {
  const uint32_t last = has_head() ? all_columns() : static_cast<uint32_t>(layout_.stubs.size());
  return std::min(last - head.level, kMostColumns);
}

uint32_t HtmlTable::lines_left(const Head& head, uint32_t line) const {
  return std::min(head.first + head.span, piece_end_) - line;
}

void HtmlTable::write_row_head(const Head& head) {
  remember(head);
  const output::Text* label = label_of(head);
  const bool group = head.kind == HeadKind::Group;
  if (label == nullptr && !group) {
    out_ += "<td class=\"t\"";
    append_span(out_, "rowspan", lines_left(head, head.first));
    out_ += "></td>";
    return;
  }
  out_ += group || head.span > 1 ? "<th scope=\"rowgroup\"" : "<th scope=\"row\"";
  write_row_head_class(head);
  if (group) append_span(out_, "colspan", group_columns(head));
  append_span(out_, "rowspan", lines_left(head, head.first));
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

void HtmlTable::write_row_head_class(const Head& head) {
  if (head.indent > 0) {
    out_ += " class=\"i";
    append_number(out_, std::min(head.indent, kDeepestIndent));
    out_ += '"';
  } else if (head.level > 0) {
    out_ += " class=\"n\"";
  }
}

void HtmlTable::repeat_heads() {
  for (const Side& side : side_) {
    if (side.head == nullptr || piece_begin_ >= side.head->first + side.head->span) continue;
    out_ += "<th scope=\"rowgroup\"";
    append_span(out_, "rowspan", lines_left(*side.head, piece_begin_));
    out_ += '>';
    if (const output::Text* label = label_of(*side.head)) append_text(out_, *label, style_);
    out_ += "</th>";
  }
}

void HtmlTable::remember(const Head& head) {
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

void HtmlTable::append_row_name(const Head& head) {
  if (label_of(head) == nullptr) return;
  if (!row_names_.empty()) row_names_ += ' ';
  (row_names_ += 't') += std::to_string(number_);
  (row_names_ += 'r') += std::to_string(&head - layout_.row_heads.data());
}

void HtmlTable::write_cells(uint32_t row) {
  const std::span<const PlacedCell> placed = layout_.row(row);
  uint32_t column = column_begin_;
  for (size_t i = 0; i < placed.size() && placed[i].column < column_end_; ++i) {
    if (placed[i].column < column_begin_) continue;
    write_gap(placed[i].column - column);
    write_cell(cells_.cells[layout_.row_begin[row] + i], placed[i]);
    column = placed[i].column + 1;
  }
  write_gap(column_end_ - column);
}

void HtmlTable::write_gap(uint32_t columns) {
  if (columns > kLongestPlainGap) return write_blank(columns, 1);
  for (; columns > 0; --columns)
    out_ += "<td></td>";
}

void HtmlTable::write_cell(const AlignedCell& cell, const PlacedCell& placed) {
  out_ += "<td";
  write_cell_class(cell, placed.column);
  if (named_) write_headers(placed.column);
  if (cell.kind == CellKind::Number) {
    out_ += " data-value=\"";
    append_double(out_, cell.value);
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

void HtmlTable::write_cell_class(const AlignedCell& cell, uint32_t column) {
  std::string classes;
  if (cells_.columns[column].mixed) classes = " t";
  if (cell.kind == CellKind::Number && cell.format == output::Format::Significance) classes += " p";
  if (cell.kind == CellKind::Number && !cells_.columns[column].mixed) {
    append_padding(classes, cell, column);
  }
  if (!classes.empty()) ((out_ += " class=\"") += std::string_view(classes).substr(1)) += '"';
}

void HtmlTable::append_padding(std::string& classes,
                               const AlignedCell& cell,
                               uint32_t column) const {
  const int left = std::min(cells_.columns[column].whole - cell.whole, kMostLeftSteps);
  const int right =
      std::min(right_[column] - right_steps(cell.fraction, cell.tail), kMostRightSteps);
  if (left > 0) append_number(classes += " l", static_cast<uint32_t>(left));
  if (right > 0) append_number(classes += " r", static_cast<uint32_t>(right));
}

void HtmlTable::write_headers(uint32_t column) {
  const std::string_view names = column_names_[column];
  if (names.empty() && row_names_.empty()) return;
  (out_ += " headers=\"") += row_names_;
  out_ += row_names_.empty() ? names.substr(1) : names;
  out_ += '"';
}

void HtmlTable::write_content(const AlignedCell& cell) {
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

void HtmlTable::write_digits(std::string_view digits, uint8_t tail) {
  const size_t exponent = tail > 1 ? digits.find('E') : std::string_view::npos;
  append_escaped(out_, digits.substr(0, exponent));
  if (exponent == std::string_view::npos) return;
  out_ += "<span class=\"e";
  append_number(out_, tail);
  (((out_ += "\">") += digits.substr(exponent)) += "</span>");
}

}  // namespace hierfit::report::html
