// Writes one table for a terminal: how wide everything is.
#include <algorithm>

#include "report/text/text_table_writer.h"

namespace hierfit::report::text {

namespace {

constexpr size_t kWidestHead = 14;     // a head wraps from here on, unless its numbers are wider
constexpr size_t kWidestSpanner = 26;  // the same for a head over several columns
constexpr size_t kWidestWord = 24;     // a longer word is broken
constexpr size_t kWidestTextCell = 48;

}  // namespace

void TextTable::measure_stubs() {
  stub_widths_.assign(layout_.stubs.size(), 1);
  for (size_t s = 0; s < layout_.stubs.size(); ++s) {
    stub_widths_[s] = std::max<size_t>(1, longest_line(stub_title(layout_.stubs[s])));
  }
  for (const Head& head : layout_.row_heads) {
    // A group's label runs over the columns.
    if (head.kind == HeadKind::Group) continue;
    size_t& width = stub_widths_[head.level];
    width = std::max(width, longest_line(label_of(head)) + kGap * head.indent);
  }
  shrink_stubs();
  stub_width_ = 0;
  for (size_t width : stub_widths_)
    stub_width_ += width + kGap;
}

void TextTable::shrink_stubs() {
  const size_t allowed = std::max(kNarrowestStub * stub_widths_.size(), limit_ * 2 / 5);
  std::vector<size_t> sorted = stub_widths_;
  std::ranges::sort(sorted);
  size_t left = allowed;
  for (size_t i = 0; i < sorted.size(); ++i) {
    const size_t share = left / (sorted.size() - i);
    if (sorted[i] > share) {
      for (size_t& width : stub_widths_)
        width = std::min(width, share);
      return;
    }
    left -= sorted[i];
  }
}

void TextTable::measure_columns() {
  columns_.resize(layout_.columns);
  for (size_t i = 0; i < cells_.cells.size(); ++i)
    measure_cell(i);
  for (Column& column : columns_)
    column.width = std::max(column.width, column.numbers());
  // The heads nearest to the numbers first, so that those above find their columns measured.
  for (auto head = layout_.column_heads.rbegin(); head != layout_.column_heads.rend(); ++head) {
    make_room(*head);
  }
}

void TextTable::measure_cell(size_t index) {
  const AlignedCell& cell = cells_.cells[index];
  const PlacedCell& placed = layout_.placed[index];
  Column& column = columns_[placed.column];
  const size_t marks = display_width(cell_marks(placed.cell));
  if (cell.kind == CellKind::Text) {
    const size_t width = longest_line(text_of(table_.texts[cell.begin])) + marks;
    column.width = std::max(column.width, std::min(width, text_limit()));
    return;
  }
  column.marks = std::max(column.marks, marks);
  if (cell.kind == CellKind::Missing) {
    column.whole = std::max<size_t>(column.whole, 1);
    return;
  }
  column.whole = std::max<size_t>(column.whole, cell.whole);
  column.right = std::max<size_t>(column.right, size_t{cell.fraction} + cell.tail);
}

size_t TextTable::text_limit() const {
  const size_t rest = limit_ > stub_width_ ? limit_ - stub_width_ : 0;
  return options_.width == 0 ? kUnlimited
                             : std::max(kNarrowestStub, std::min(rest, kWidestTextCell));
}

void TextTable::make_room(const Head& head) {
  const std::string label = label_of(head);
  const size_t most = head.span > 1 ? kWidestSpanner : kWidestHead;
  const size_t word = std::min(longest_word(label), kWidestWord);
  const size_t needed = std::max(word, std::min(longest_line(label), most));
  size_t room = kGap * (head.span - 1);
  for (uint32_t c = head.first; c < head.first + head.span; ++c)
    room += columns_[c].width;
  for (uint32_t c = head.first; room < needed; ++room) {
    ++columns_[c].width;
    if (++c == head.first + head.span) c = head.first;
  }
}

std::vector<Block> TextTable::fold() const {
  std::vector<Block> blocks;
  Block block;
  size_t used = stub_width_;
  for (uint32_t c = 0; c < layout_.columns; ++c) {
    if (c > block.begin && used + columns_[c].width > limit_) {
      block.end = c;
      blocks.push_back(block);
      block.begin = c;
      used = stub_width_;
    }
    used += columns_[c].width + kGap;
  }
  block.end = layout_.columns;
  blocks.push_back(block);
  return blocks;
}

}  // namespace hierfit::report::text
