// Writes one table for a terminal: how wide everything is.
#include <algorithm>
#include <numeric>

#include "report/text/text_table_writer.h"

namespace hierfit::report::text {

namespace {

constexpr size_t kWidestHead = 14;     // a head wraps from here on, unless its numbers are wider
constexpr size_t kWidestSpanner = 26;  // the same for a head over several columns
constexpr size_t kWidestWord = 24;     // a longer word is broken
constexpr size_t kWidestTextCell = 48;

/// From loose to tight. A head that wraps costs a line once, a row label one for each row.
constexpr Density kDensities[] = {
    {},
    {.tight_heads = true},
    {.tight_heads = true, .tight_spanners = true},
    {.tight_heads = true, .tight_spanners = true, .gap = 1},
    {.tight_heads = true, .tight_spanners = true, .wraps_stubs = true},
    {.tight_heads = true, .tight_spanners = true, .gap = 1, .wraps_stubs = true},
};
constexpr Density kFoldedDensities[] = {
    {.wraps_stubs = true},
    {.tight_heads = true, .wraps_stubs = true},
    {.tight_heads = true, .tight_spanners = true, .wraps_stubs = true},
};

}  // namespace

std::vector<Block> TextTable::fit() {
  measure_labels();
  measure_cells();
  for (const Density& density : kDensities) {
    if (fits_at(density)) return {{.begin = 0, .end = layout_.columns}};
  }
  const Density* best = nullptr;
  size_t fewest = kUnlimited;
  for (const Density& density : kFoldedDensities) {
    fits_at(density);
    const size_t count = fold().size();
    if (count < fewest) best = &density;
    fewest = std::min(fewest, count);
  }
  fits_at(*best);
  std::vector<Block> blocks = fold();
  widen_stubs(blocks, best->tight_heads);
  return blocks;
}

void TextTable::widen_stubs(const std::vector<Block>& blocks, bool tight_heads) {
  size_t widest = gap_ * stub_widths_.size();
  for (const Block& block : blocks)
    widest = std::max(widest, gap_ * stub_widths_.size() + width_of(block.begin, block.end));
  for (size_t s = 0; s < stub_widths_.size(); ++s)
    stub_widths_[s] = stub_width(s, tight_heads);
  shrink_stubs(std::max(stub_floor(), limit_ > widest ? limit_ - widest : 0));
  stub_width_ =
      std::accumulate(stub_widths_.begin(), stub_widths_.end(), gap_ * stub_widths_.size());
}

bool TextTable::fits_at(const Density& density) {
  gap_ = density.gap;
  for (Column& column : columns_)
    column.width = column.cells;
  // The heads nearest to the numbers first, so that those above find their columns measured.
  for (auto head = layout_.column_heads.rbegin(); head != layout_.column_heads.rend(); ++head) {
    make_room(*head, density);
  }
  for (size_t s = 0; s < label_widths_.size(); ++s)
    stub_widths_[s] = stub_width(s, density.tight_heads);
  const size_t width = width_of(0, layout_.columns);
  const size_t gaps = gap_ * stub_widths_.size();
  if (density.wraps_stubs) {
    const size_t room = limit_ > width + gaps ? limit_ - width - gaps : 0;
    shrink_stubs(std::max(room, stub_floor()));
  }
  stub_width_ = std::accumulate(stub_widths_.begin(), stub_widths_.end(), gaps);
  if (stub_width_ + width > limit_) return false;
  spend(limit_ - stub_width_ - width);
  return true;
}

void TextTable::spend(size_t spare) {
  for (size_t s = 0; s < stub_widths_.size(); ++s) {
    const size_t title = std::min(longest_line(stub_title(layout_.stubs[s])), kWidestHead);
    const size_t more = title > stub_widths_[s] ? title - stub_widths_[s] : 0;
    if (more > spare) continue;
    stub_widths_[s] += more;
    stub_width_ += more;
    spare -= more;
  }
  struct Wish {
    const Head* head;
    size_t more;
  };
  std::vector<Wish> wishes;
  for (const Head& head : layout_.column_heads) {
    const size_t wanted = std::min(longest_line(label_of(head)), kWidestSpanner);
    const size_t room = width_of(head.first, head.first + head.span);
    if (head.span > 1 && wanted > room) wishes.push_back({&head, wanted - room});
  }
  std::ranges::stable_sort(wishes, std::ranges::greater{}, &Wish::more);
  for (const Wish& wish : wishes) {
    const size_t more = std::min(wish.more, spare);
    widen_columns(*wish.head, more);
    spare -= more;
  }
}

void TextTable::widen_columns(const Head& head, size_t more) {
  for (uint32_t c = head.first; more > 0; --more) {
    ++columns_[c].width;
    if (++c == head.first + head.span) c = head.first;
  }
}

void TextTable::measure_labels() {
  stub_widths_.assign(layout_.stubs.size(), 1);
  label_widths_.assign(layout_.stubs.size(), 1);
  for (const Head& head : layout_.row_heads) {
    // A group's label runs over the columns.
    if (head.kind == HeadKind::Group) continue;
    size_t& width = label_widths_[head.level];
    width = std::max(width, longest_line(label_of(head)) + kIndent * head.indent);
  }
}

size_t TextTable::stub_width(size_t stub, bool tight_heads) const {
  const std::string title = stub_title(layout_.stubs[stub]);
  const size_t needed =
      tight_heads ? std::min(longest_word(title), kWidestWord) : longest_line(title);
  return std::max(label_widths_[stub], needed);
}

/// Two fifths of the width are for the stub columns, whatever the others need.
size_t TextTable::stub_floor() const {
  return std::max(kNarrowestStub * label_widths_.size(), limit_ * 2 / 5);
}

void TextTable::shrink_stubs(size_t allowed) {
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

void TextTable::measure_cells() {
  columns_.resize(layout_.columns);
  for (size_t i = 0; i < cells_.cells.size(); ++i)
    measure_cell(i);
  for (Column& column : columns_)
    column.cells = std::max(column.cells, column.numbers());
}

void TextTable::measure_cell(size_t index) {
  const AlignedCell& cell = cells_.cells[index];
  const PlacedCell& placed = layout_.placed[index];
  Column& column = columns_[placed.column];
  const size_t marks = display_width(cell_marks(placed.cell));
  if (cell.kind == CellKind::Text) {
    const size_t width = longest_line(text_of(table_.texts[cell.begin])) + marks;
    column.cells = std::max(column.cells, std::min(width, text_limit()));
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

/// What a text cell may take at most: what the narrowest stubs leave.
size_t TextTable::text_limit() const {
  if (options_.width == 0) return kUnlimited;
  size_t stubs = std::accumulate(label_widths_.begin(), label_widths_.end(), size_t{0});
  stubs = std::min(stubs, stub_floor()) + gap_ * label_widths_.size();
  const size_t rest = limit_ > stubs ? limit_ - stubs : 0;
  return std::max(kNarrowestStub, std::min(rest, kWidestTextCell));
}

size_t TextTable::width_of(uint32_t begin, uint32_t end) const {
  size_t width = 0;
  for (uint32_t c = begin; c < end; ++c)
    width += columns_[c].width + (c > begin ? gap_ : 0);
  return width;
}

void TextTable::make_room(const Head& head, const Density& density) {
  const std::string label = label_of(head);
  const bool spans = head.span > 1;
  const bool tight = spans ? density.tight_spanners : density.tight_heads;
  const size_t most = spans ? kWidestSpanner : kWidestHead;
  const size_t word = std::min(tight ? longest_piece(label) : longest_word(label), kWidestWord);
  const size_t needed = tight ? word : std::max(word, std::min(longest_line(label), most));
  const size_t room = width_of(head.first, head.first + head.span);
  widen_columns(head, needed > room ? needed - room : 0);
}

std::vector<bool> TextTable::glued() const {
  std::vector<bool> glued(layout_.columns, false);
  for (const Head& head : layout_.column_heads) {
    const uint32_t end = head.first + head.span;
    if (head.span == 1 || stub_width_ + width_of(head.first, end) > limit_) continue;
    std::fill(glued.begin() + head.first + 1, glued.begin() + end, true);
  }
  return glued;
}

std::vector<Block> TextTable::fold() const {
  const std::vector<bool> stays = glued();
  std::vector<Block> blocks;
  Block block;
  for (uint32_t begin = 0; begin < layout_.columns;) {
    uint32_t end = begin + 1;
    while (end < layout_.columns && stays[end])
      ++end;
    if (begin > block.begin && stub_width_ + width_of(block.begin, end) > limit_) {
      block.end = begin;
      blocks.push_back(block);
      block.begin = begin;
    }
    begin = end;
  }
  block.end = layout_.columns;
  blocks.push_back(block);
  return blocks;
}

}  // namespace hierfit::report::text
