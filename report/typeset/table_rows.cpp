#include "report/typeset/table_rows.h"

#include <algorithm>

namespace hierfit::report {

using output::kNone;
using Role = RowCell::Role;

namespace {

/// The heads that begin in a row of heads over the columns of a part.
std::span<const Head> heads_over(const TableLayout& layout, uint32_t level, const Part& part) {
  const auto end_of = [](const Head& head) { return head.first + head.span; };
  // A range of two iterators does not compile with every compiler that makes the fuzz targets.
  const std::vector<Head>& heads = layout.column_heads;
  const auto row = std::ranges::lower_bound(heads, level, {}, &Head::level);
  const auto row_end = std::ranges::upper_bound(row, heads.end(), level, {}, &Head::level);
  const auto begin = std::ranges::upper_bound(row, row_end, part.first, {}, end_of);
  return {begin, std::ranges::lower_bound(begin, row_end, part.end, {}, &Head::first)};
}

}  // namespace

TableRows::TableRows(const TableView& view, const Part& part, uint32_t slice_lines)
    : view_(view),
      part_(part),
      slice_lines_(std::max(slice_lines, 1U)),
      slice_end_(std::min(slice_lines_, lines())),
      beside_(view.stubs()) {}

bool TableRows::next() {
  const uint32_t rows = view_.head_rows() + slice_end_ - slice_begin_;
  if (at_ == rows) return false;
  ++at_;
  if (in_head()) {
    make_head_row(at_ - 1);
  } else {
    make_line();
  }
  return true;
}

bool TableRows::next_slice() {
  if (slice_end_ == lines()) return false;
  slice_begin_ = slice_end_;
  slice_end_ += std::min(slice_lines_, lines() - slice_end_);
  at_ = 0;
  return true;
}

bool TableRows::ends_table() const {
  return slice_end_ == lines() && part_.end == view_.layout.columns;
}

// The head. The cells that go on come from the row above.

void TableRows::make_head_row(uint32_t level) {
  if (level == 0) cells_.clear();
  std::erase_if(cells_, &RowCell::ends);
  for (RowCell& cell : cells_) {
    ++cell.above;
    --cell.below;
  }
  const auto fresh = static_cast<std::ptrdiff_t>(cells_.size());
  if (level == 0) add_stub_titles();
  add_column_heads(level);
  std::ranges::inplace_merge(cells_, cells_.begin() + fresh, {}, &RowCell::column);
}

void TableRows::add_stub_titles() {
  for (uint32_t stub = 0; stub < view_.stubs(); ++stub) {
    cells_.push_back({.role = Role::StubTitle,
                      .column = stub,
                      .below = view_.head_rows() - 1,
                      .label = view_.stub_title(stub)});
  }
  if (view_.layout.head_rows > 0) return;
  cells_.push_back({.role = Role::Blank, .column = view_.stubs(), .columns = part_.width()});
}

void TableRows::add_column_heads(uint32_t level) {
  for (const Head& head : heads_over(view_.layout, level, part_)) {
    const uint32_t first = std::max(head.first, part_.first);
    const uint32_t end = std::min(head.first + head.span, part_.end);
    cells_.push_back({.role = Role::ColumnHead,
                      .column = view_.stubs() + first - part_.first,
                      .columns = end - first,
                      .below = head.depth - 1,
                      .over_heads = head.level + head.depth < view_.head_rows(),
                      .at_start = end - first == 1 && view_.cells.columns[first].mixed,
                      .head = &head,
                      .label = view_.label_of(head),
                      .marks = view_.marks(head)});
  }
}

// The body.

void TableRows::make_line() {
  cells_.clear();
  take_heads();
  const bool of_group = add_row_heads();
  if (!of_group) add_contents(view_.layout.lines[line()]);
}

void TableRows::take_heads() {
  const std::vector<Head>& heads = view_.layout.row_heads;
  for (; next_head_ < heads.size() && heads[next_head_].first == line(); ++next_head_) {
    const Head& head = heads[next_head_];
    std::vector<const Head*>& beside = beside_[head.level];
    beside.resize(std::min<size_t>(beside.size(), head.indent));
    beside.push_back(&head);
  }
}

/// Whether the line is that of a group.
bool TableRows::add_row_heads() {
  for (uint32_t stub = 0; stub < view_.stubs(); ++stub) {
    const Head& head = *beside_[stub].back();
    const bool group = head.kind == HeadKind::Group;
    const uint32_t end = std::min(head.first + head.span, slice_end_);
    cells_.push_back({.role = group ? Role::Group : Role::RowHead,
                      .column = stub,
                      .columns = group ? columns() - stub : 1,
                      .above = line() - head.first,
                      .below = end - line() - 1,
                      .head = &head,
                      .label = view_.label_of(head),
                      .marks = view_.marks(head)});
    if (group) return true;
  }
  return false;
}

void TableRows::add_contents(uint32_t row) {
  const std::span<const PlacedCell> all = view_.layout.row(row);
  auto placed = std::ranges::lower_bound(all, part_.first, {}, &PlacedCell::column);
  size_t index = view_.layout.row_begin[row] + static_cast<size_t>(placed - all.begin());
  uint32_t column = part_.first;
  for (; placed != all.end() && placed->column < part_.end; ++placed, ++index) {
    add_gap(column, placed->column);
    column = placed->column + 1;
    cells_.push_back({.role = Role::Content,
                      .column = view_.stubs() + placed->column - part_.first,
                      .at_start = view_.cells.columns[placed->column].mixed,
                      .marks = view_.marks(*placed),
                      .placed = &*placed,
                      .cell = &view_.cells.cells[index]});
  }
  add_gap(column, part_.end);
}

void TableRows::add_gap(uint32_t from, uint32_t to) {
  if (from == to) return;
  cells_.push_back(
      {.role = Role::Gap, .column = view_.stubs() + from - part_.first, .columns = to - from});
}

}  // namespace hierfit::report
