// Writes one table as HTML: its frame, caption and head.
#include "report/html/html_table.h"

#include <algorithm>

#include "report/html/html_table_writer.h"
#include "report/html/markup.h"
#include "report/wording.h"

namespace hierfit::report::html {

using output::Document;
using output::Table;

namespace {

/// From this many cells on `scope` alone ties cells to their heads: naming the heads in every cell
/// would double the file.
constexpr size_t kMostCellsWithHeaders = 20000;

/// A table of more body lines than this is written in pieces of half as many.
constexpr uint32_t kManyLines = 1000;
constexpr uint32_t kPieceLines = kManyLines / 2;

/// From this many columns on the row heads stay in view while the table scrolls sideways.
constexpr uint32_t kManyColumns = 6;

/// How many digits fit side by side on a printed page, what a column has around them, and the most
/// that row heads take.
constexpr double kPageDigits = 100;
constexpr double kPrintedGap = 2.5;
constexpr double kWidestStub = 26;

/// A CSS pixel in thousandths of a point.
constexpr int kMilliPointsPerPixel = 750;

}  // namespace

HtmlTable::HtmlTable(std::string& out,
                     const Document& document,
                     const Table& table,
                     uint32_t number)
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
  measure_heads();
  referenced_.assign(layout_.notes.size(), false);
  name_heads();
}

void HtmlTable::write() {
  column_end_ = layout_.columns;
  const bool folds = is_wider_than_page();
  if (folds) out_ += "<div class=\"unfolded\">\n";
  write_lines();
  if (!folds) return;
  out_ += "</div>\n<div class=\"folded\">\n";
  write_folds();
  out_ += "</div>\n";
}

void HtmlTable::write_lines() {
  next_head_ = layout_.row_heads.begin();
  side_.assign(layout_.stubs.size(), {});
  in_block_ = false;
  piece_end_ = 0;
  do {
    piece_begin_ = piece_end_;
    piece_end_ = is_long() ? std::min(piece_begin_ + kPieceLines, lines()) : lines();
    write_piece();
  } while (piece_end_ < lines());
}

void HtmlTable::write_piece() {
  if (for_paper_) {
    out_ += "<div class=\"scroll\">\n<table";
  } else {
    out_ += is_long() ? "<div class=\"scroll piece" : "<div class=\"scroll";
    out_ += "\" tabindex=\"0\" role=\"region\" aria-labelledby=\"";
    append_id();
    out_ += "\">\n<table";
    if (layout_.stubs.size() == 1 && columns() >= kManyColumns) out_ += " class=\"wide\"";
  }
  out_ += ">\n";
  write_caption();
  write_column_widths();
  write_head();
  write_body();
  if (piece_end_ == lines() && column_end_ == layout_.columns) write_foot();
  out_ += "</table>\n</div>\n";
}

void HtmlTable::write_folds() {
  for_paper_ = true;
  named_ = false;
  for (column_begin_ = 0; column_begin_ < layout_.columns; column_begin_ = column_end_) {
    column_end_ = fold_end();
    write_lines();
  }
}

/// A group of columns that fits on a page of its own is not divided.
uint32_t HtmlTable::fold_end() const {
  double width = printed_stub_width();
  uint32_t end = column_begin_;
  uint32_t last_group = column_begin_;
  for (const Head& head : layout_.column_heads) {
    if (head.level == 0 && head.first >= column_begin_) {
      while (end < head.first && width + printed_width(end) <= kPageDigits) {
        width += printed_width(end++);
      }
      if (end < head.first) break;
      last_group = end;
    }
  }
  while (end < layout_.columns && width + printed_width(end) <= kPageDigits) {
    width += printed_width(end++);
  }
  if (end == layout_.columns) return end;
  return last_group > column_begin_ ? last_group : std::max(end, column_begin_ + 1);
}

double HtmlTable::printed_width(uint32_t column) const {
  constexpr double kTextDigits = 14;
  const ColumnParts& parts = cells_.columns[column];
  const double digits = parts.mixed ? kTextDigits : parts.whole + right_[column] / 2.0;
  return std::max(digits, head_digits_[column]) + kPrintedGap;
}

double HtmlTable::printed_stub_width() const {
  size_t longest = 0;
  for (const Head& head : layout_.row_heads) {
    if (const output::Text* label = label_of(head))
      longest = std::max(longest, label->shown.size());
  }
  const double widest = std::min(static_cast<double>(longest), kWidestStub) + kPrintedGap;
  return widest * static_cast<double>(std::min<size_t>(layout_.stubs.size(), 2));
}

bool HtmlTable::is_wider_than_page() const {
  double width = printed_stub_width();
  for (uint32_t column = 0; column < layout_.columns && width <= kPageDigits; ++column) {
    width += printed_width(column);
  }
  return width > kPageDigits && !is_long();
}

/// By column: the longest word of the heads that stand over it alone.
void HtmlTable::measure_heads() {
  head_digits_.assign(layout_.columns, 0);
  for (const Head& head : layout_.column_heads) {
    const output::Text* label = label_of(head);
    if (label == nullptr || head.span > 1) continue;
    size_t longest = 0;
    size_t length = 0;
    for (const char character : label->shown) {
      length = character == ' ' || character == '\n' ? 0 : length + 1;
      longest = std::max(longest, length);
    }
    head_digits_[head.first] = std::max(head_digits_[head.first], static_cast<double>(longest));
  }
}

uint32_t HtmlTable::all_columns() const {
  return static_cast<uint32_t>(layout_.stubs.size()) + std::max(columns(), 1U);
}

bool HtmlTable::is_long() const { return lines() > kManyLines; }

bool HtmlTable::has_stub_titles() const {
  return std::ranges::any_of(layout_.stubs, [this](uint32_t d) { return titled(d); });
}

bool HtmlTable::titled(uint32_t dimension) const {
  const output::Dimension& of = table_.dimensions[dimension];
  return of.title_shown && !of.title.shown.empty();
}

void HtmlTable::append_id() {
  out_ += 't';
  append_number(out_, number_);
}

void HtmlTable::append_id(char part, uint32_t index) {
  append_id();
  out_ += part;
  append_number(out_, index);
}

void HtmlTable::name_heads() {
  const bool simple = layout_.head_rows < 2 && layout_.stubs.size() < 2 &&
                      layout_.lines.size() == size_t{layout_.rows};
  named_ = !simple && !is_long() && layout_.placed.size() <= kMostCellsWithHeaders;
  if (!named_) return;
  column_names_.resize(layout_.columns);
  std::string name;
  for (uint32_t i = 0; i < layout_.column_heads.size(); ++i) {
    const Head& head = layout_.column_heads[i];
    if (label_of(head) == nullptr) continue;
    name = " t" + std::to_string(number_) + "c" + std::to_string(i);
    for (uint32_t c = head.first; c < head.first + head.span; ++c)
      column_names_[c] += name;
  }
}

const output::Text* HtmlTable::label_of(const Head& head) const {
  switch (head.kind) {
    case HeadKind::Title:
      return &table_.dimensions[head.dimension].title;
    case HeadKind::Group:
    case HeadKind::Category: {
      const output::Text& label = table_.dimensions[head.dimension].nodes[head.node].label;
      return label.shown.empty() ? nullptr : &label;
    }
    case HeadKind::Blank:
      return nullptr;
  }
  return nullptr;
}

void HtmlTable::write_caption() {
  const std::string number = std::to_string(number_);
  if (piece_begin_ > 0 || column_begin_ > 0) {
    out_ += "<caption><span><b>";
    append_escaped(out_, filled(document_.word("Table ^1 (continued)"), number));
    out_ += "</b></span></caption>\n";
    return;
  }
  out_ += "<caption";
  if (!for_paper_) {
    out_ += " id=\"";
    append_id();
    out_ += '"';
  }
  out_ += "><span><b>";
  append_escaped(out_, filled(document_.word("Table ^1"), number));
  out_ += "</b><br><i>";
  append_text(out_, table_.title, style_);
  out_ += "</i>";
  write_marks(layout_.title_notes);
  out_ += "</span></caption>\n";
}

void HtmlTable::write_column_widths() {
  if (table_.min_data_column_width <= 0 || columns() == 0) return;
  out_ += "<colgroup>";
  for (size_t i = 0; i < layout_.stubs.size(); ++i)
    out_ += "<col>";
  out_ += "<col";
  append_span(out_, "span", std::min(columns(), kMostColumns));
  out_ += " width=\"";
  const int64_t pixels = int64_t{table_.min_data_column_width} * 1000 / kMilliPointsPerPixel;
  append_number(out_, static_cast<uint32_t>(std::min<int64_t>(pixels, 4000)));
  out_ += "\"></colgroup>\n";
}

void HtmlTable::write_head() {
  const bool stub_titles = has_stub_titles();
  if (!has_head()) return;
  const uint32_t rows = std::max(layout_.head_rows, 1U);
  out_ += "<thead>\n";
  auto head = layout_.column_heads.begin();
  for (uint32_t level = 0; level < rows; ++level) {
    out_ += "<tr>";
    if (level == 0) write_corner(rows, stub_titles);
    for (; head != layout_.column_heads.end() && head->level == level; ++head) {
      write_column_head(*head);
    }
    if (layout_.head_rows == 0) write_blank(std::max(columns(), 1U), 1);
    out_ += "</tr>\n";
  }
  out_ += "</thead>\n";
}

void HtmlTable::write_corner(uint32_t rows, bool stub_titles) {
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

void HtmlTable::write_blank(uint32_t columns, uint32_t rows) {
  for (; columns > 0; columns -= std::min(columns, kMostColumns)) {
    out_ += "<td";
    append_span(out_, "colspan", std::min(columns, kMostColumns));
    append_span(out_, "rowspan", rows);
    out_ += "></td>";
  }
}

void HtmlTable::write_column_head(const Head& head) {
  const uint32_t first = std::max(head.first, column_begin_);
  const uint32_t end = std::min(head.first + head.span, column_end_);
  if (first >= end) return;
  const output::Text* label = label_of(head);
  if (label == nullptr) return write_blank(end - first, head.depth);
  const auto index = static_cast<uint32_t>(&head - layout_.column_heads.data());
  for (uint32_t at = first; at < end; at += kMostColumns) {
    const uint32_t covered = std::min(end - at, kMostColumns);
    const bool over_heads = head.level + head.depth < layout_.head_rows;
    out_ += covered > 1 || over_heads ? "<th scope=\"colgroup\"" : "<th scope=\"col\"";
    const bool at_start = end - first == 1 && is_text_column(first);
    if (over_heads) {
      out_ += at_start ? " class=\"g t\"" : " class=\"g\"";
    } else if (at_start) {
      out_ += " class=\"t\"";
    }
    append_span(out_, "colspan", covered);
    append_span(out_, "rowspan", head.depth);
    if (named_ && at == first) {
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

void append_table(std::string& out, const Document& document, const Table& table, uint32_t number) {
  HtmlTable(out, document, table, number).write();
}

}  // namespace hierfit::report::html
