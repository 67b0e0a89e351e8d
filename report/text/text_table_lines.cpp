// Writes one table for a terminal: the lines of its body.
#include <algorithm>

#include "report/text/text_table_writer.h"

namespace hierfit::report::text {

using output::kNone;

void TextTable::write_lines(const Block& block) {
  sides_.assign(layout_.stubs.size(), {});
  auto head = layout_.row_heads.begin();
  for (uint32_t line = 0; line < layout_.lines.size(); ++line) {
    const Head* group = nullptr;
    for (; head != layout_.row_heads.end() && head->first == line; ++head) {
      if (head->kind == HeadKind::Group) {
        group = &*head;
      } else {
        take_side(*head);
      }
    }
    if (group != nullptr) {
      write_group(*group);
    } else {
      write_row(layout_.lines[line], line, block);
    }
  }
}

void TextTable::take_side(const Head& head) {
  const size_t indent = std::min(kIndent * head.indent, stub_widths_[head.level] / 2);
  sides_[head.level] = {.lines = wrapped(label_of(head), stub_widths_[head.level] - indent),
                        .last_line = head.first + head.span - 1,
                        .indent = indent};
}

void TextTable::write_sides(size_t stubs) {
  size_t start = 0;
  for (size_t s = 0; s < stubs; ++s) {
    Side& side = sides_[s];
    if (side.rest() > 0) {
      line_.go_to(start + side.indent);
      line_.add(side.lines[side.next++]);
    }
    start += stub_widths_[s] + gap_;
  }
}

void TextTable::write_group(const Head& group) {
  size_t start = kIndent * group.indent;
  for (uint32_t s = 0; s < group.level; ++s)
    start += stub_widths_[s] + gap_;
  const size_t width = rule_width_ > start + kNarrowestStub ? rule_width_ - start : kNarrowestStub;
  for (const std::string& text : wrapped(label_of(group), width)) {
    write_sides(group.level);
    line_.go_to(start);
    line_.add(text);
    line_.end(out_);
  }
}

void TextTable::write_row(uint32_t row, uint32_t line, const Block& block) {
  const size_t height = row_height(row, line, block);
  for (size_t i = 0; i < height; ++i) {
    write_sides(sides_.size());
    if (i == 0) {
      write_cells(row, block);
    } else {
      write_further_text(i);
    }
    line_.end(out_);
  }
}

size_t TextTable::row_height(uint32_t row, uint32_t line, const Block& block) {
  size_t height = 1;
  for (const Side& side : sides_) {
    if (side.last_line == line) height = std::max(height, side.rest());
  }
  texts_.clear();
  size_t index = layout_.row_begin[row];
  for (const PlacedCell& placed : layout_.row(row)) {
    const AlignedCell& cell = cells_.cells[index++];
    if (cell.kind != CellKind::Text || placed.column < block.begin || placed.column >= block.end) {
      continue;
    }
    const std::string text = text_of(table_.texts[cell.begin]) + cell_marks(placed.cell);
    texts_.push_back({.start = starts_[placed.column - block.begin],
                      .lines = wrapped(text, columns_[placed.column].width)});
    height = std::max(height, texts_.back().lines.size());
  }
  return height;
}

void TextTable::write_cells(uint32_t row, const Block& block) {
  size_t index = layout_.row_begin[row];
  auto text = texts_.begin();
  for (const PlacedCell& placed : layout_.row(row)) {
    const AlignedCell& cell = cells_.cells[index++];
    if (placed.column < block.begin || placed.column >= block.end) continue;
    const size_t start = starts_[placed.column - block.begin];
    if (cell.kind == CellKind::Text) {
      line_.go_to(start);
      line_.add((text++)->lines[0]);
    } else {
      write_number(cell, placed, start);
    }
  }
}

void TextTable::write_number(const AlignedCell& cell, const PlacedCell& placed, size_t start) {
  const Column& column = columns_[placed.column];
  const bool missing = cell.kind == CellKind::Missing;
  if (!cells_.columns[placed.column].mixed) {
    // A missing number's mark stands where the decimal marks do.
    const size_t whole = missing ? (column.right > 0 ? 0 : 1) : cell.whole;
    start += (column.width - column.numbers()) / 2 + column.whole - whole;
  }
  line_.go_to(start);
  line_.add(missing ? std::string_view(document_.numbers.missing) : cells_.number(cell));
  line_.add(cell_marks(placed.cell));
}

void TextTable::write_further_text(size_t i) {
  for (const BlockHead& text : texts_) {
    if (i >= text.lines.size()) continue;
    line_.go_to(text.start);
    line_.add(text.lines[i]);
  }
}

}  // namespace hierfit::report::text
