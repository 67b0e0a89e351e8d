// Writes one table for a terminal.
#include "report/text/text_table.h"

#include <algorithm>
#include <array>
#include <limits>

#include "report/aligned_cells.h"
#include "report/layout/table_layout.h"
#include "report/text/display_text.h"
#include "report/wording.h"

namespace hierfit::report::text {

using output::Document;
using output::kNone;
using output::Table;

namespace {

constexpr size_t kGap = 2;
constexpr size_t kWidestHead = 14;     // a head wraps from here on, unless its numbers are wider
constexpr size_t kWidestSpanner = 26;  // the same for a head over several columns
constexpr size_t kWidestWord = 24;     // a longer word is broken
constexpr size_t kNarrowestStub = 12;
constexpr size_t kWidestTextCell = 48;
constexpr size_t kUnlimited = std::numeric_limits<size_t>::max() / 4;

/// The raised letters, as far as Unicode has them.
constexpr std::array<std::string_view, 26> kRaised = {"ᵃ", "ᵇ", "ᶜ", "ᵈ", "ᵉ", "ᶠ", "ᵍ", "ʰ",  "ⁱ",
                                                      "ʲ", "ᵏ", "ˡ", "ᵐ", "ⁿ", "ᵒ", "ᵖ", "^q", "ʳ",
                                                      "ˢ", "ᵗ", "ᵘ", "ᵛ", "ʷ", "ˣ", "ʸ", "ᶻ"};

std::string raised(uint32_t mark) {
  std::string marks;
  for (char letter : mark_letters(mark))
    marks += kRaised[static_cast<size_t>(letter - 'a')];
  return marks;
}

void append_repeated(std::string& out, std::string_view piece, size_t times) {
  for (; times > 0; --times)
    out += piece;
}

/// One line of the table under construction; knows how far it has come.
class Line {
 public:
  void clear() {
    text_.clear();
    used_ = 0;
  }
  void go_to(size_t column) {
    if (column <= used_) return;
    text_.append(column - used_, ' ');
    used_ = column;
  }
  void add(std::string_view text) {
    text_ += text;
    used_ += display_width(text);
  }
  void end(std::string& out) {
    text_.erase(text_.find_last_not_of(' ') + 1);
    (out += text_) += '\n';
    clear();
  }

 private:
  std::string text_;
  size_t used_ = 0;
};

/// Columns that stand beside one another: the data columns from `begin` up to `end`.
struct Block {
  uint32_t begin = 0;
  uint32_t end = 0;
};

struct Column {
  size_t whole = 0;  ///< columns of the display ahead of the decimal mark
  size_t right = 0;  ///< behind the digits ahead of it: mark, fraction, tail
  size_t marks = 0;  ///< of the widest note marks
  size_t width = 1;
  size_t numbers() const { return whole + right + marks; }
};

class TextTable {
 public:
  TextTable(std::string& out,
            const Document& document,
            const Table& table,
            uint32_t number,
            const Options& options)
      : out_(out),
        document_(document),
        table_(table),
        number_(number),
        options_(options),
        limit_(options.width == 0 ? kUnlimited : std::max<size_t>(options.width, 20)),
        layout_(lay_out(table)),
        cells_(align_cells(table, layout_, document.numbers)) {}

  void write() {
    measure_stubs();
    measure_columns();
    write_title();
    const std::vector<Block> blocks = fold();
    for (const Block& block : blocks) {
      if (block.begin > 0) write_continuation();
      write_block(block);
    }
    write_notes();
  }

 private:
  std::string text_of(const output::Text& text) const {
    return printable(restyled(text, document_.numbers));
  }

  std::string marks_of(const std::vector<uint32_t>& notes) const {
    std::vector<uint32_t> marks;
    for (uint32_t note : notes)
      marks.push_back(layout_.marks[note]);
    std::ranges::sort(marks);
    marks.erase(std::unique(marks.begin(), marks.end()), marks.end());
    std::string text;
    for (uint32_t mark : marks) {
      if (!text.empty()) text += "\u02D2";
      text += raised(mark);
    }
    return text;
  }

  std::string label_of(const Head& head) const {
    switch (head.kind) {
      case HeadKind::Title:
        return text_of(table_.dimensions[head.dimension].title);
      case HeadKind::Group:
      case HeadKind::Category: {
        const output::Node& node = table_.dimensions[head.dimension].nodes[head.node];
        return text_of(node.label) + marks_of(node.notes);
      }
      case HeadKind::Blank:
        return {};
    }
    return {};
  }

  std::string stub_title(uint32_t dimension) const {
    const output::Dimension& of = table_.dimensions[dimension];
    return of.title_shown ? text_of(of.title) : std::string();
  }

  std::string cell_marks(uint32_t cell) const {
    if (table_.cells.notes.empty()) return {};
    auto notes = table_.cells.notes.find(cell);
    return notes == table_.cells.notes.end() ? std::string() : marks_of(notes->second);
  }

  // Widths.

  void measure_stubs() {
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

  /// Makes the widest stub columns narrower until all of them take two fifths of the width.
  void shrink_stubs() {
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

  void measure_columns() {
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

  void measure_cell(size_t index) {
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

  size_t text_limit() const {
    const size_t rest = limit_ > stub_width_ ? limit_ - stub_width_ : 0;
    return options_.width == 0 ? kUnlimited
                               : std::max(kNarrowestStub, std::min(rest, kWidestTextCell));
  }

  void make_room(const Head& head) {
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

  std::vector<Block> fold() const {
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

  // Writing.

  void write_title() {
    const std::string number =
        printable(filled(document_.word("Table ^1"), std::to_string(number_)));
    const std::string_view on = options_.colour ? "\x1b[1m" : "";
    const std::string_view off = options_.colour ? "\x1b[0m" : "";
    (((out_ += on) += number) += off) += '\n';
    append_wrapped(out_, text_of(table_.title) + marks_of(layout_.title_notes), options_, 0);
  }

  void write_continuation() {
    out_ += '\n';
    const std::string number = std::to_string(number_);
    append_wrapped(out_, printable(filled(document_.word("Table ^1 (continued)"), number)),
                   options_, 0);
  }

  /// Where the columns of a block begin, and behind them where the next would.
  void place_columns(const Block& block) {
    starts_.clear();
    size_t at = stub_width_;
    for (uint32_t c = block.begin; c < block.end; ++c) {
      starts_.push_back(at);
      at += columns_[c].width + kGap;
    }
    starts_.push_back(at);
    const size_t end = at >= kGap ? at - kGap : at;
    rule_width_ = std::max(end, std::min<size_t>(limit_, kNarrowestStub * 2));
  }

  void write_rule(std::string_view piece) {
    append_repeated(out_, piece, rule_width_);
    out_ += '\n';
  }

  void write_block(const Block& block) {
    place_columns(block);
    write_rule("━");
    if (write_heads(block)) write_rule("─");
    if (layout_.empty()) {
      (out_ += printable(document_.word("No entries"))) += '\n';
    } else {
      write_lines(block);
    }
    write_rule("━");
  }

  /// A head inside a block: its label wrapped to the columns that it covers there.
  struct BlockHead {
    size_t start = 0;
    size_t width = 0;
    bool at_start = false;  ///< not centred
    std::vector<std::string> lines;
  };

  bool write_heads(const Block& block) {
    std::vector<BlockHead> stubs = stub_heads();
    if (layout_.head_rows == 0 && stubs.empty()) return false;
    const uint32_t rows = std::max(layout_.head_rows, 1U);
    for (uint32_t level = 0; level < rows; ++level) {
      std::vector<BlockHead> heads = heads_ending_at(level, block);
      const bool last = level + 1 == rows;
      if (last) heads.insert(heads.begin(), stubs.begin(), stubs.end());
      write_head_row(heads);
      if (!last) write_spanner_rules(heads);
    }
    return true;
  }

  std::vector<BlockHead> stub_heads() const {
    std::vector<BlockHead> heads;
    size_t start = 0;
    for (size_t s = 0; s < layout_.stubs.size(); ++s) {
      const std::string title = stub_title(layout_.stubs[s]);
      if (!title.empty()) {
        heads.push_back({.start = start,
                         .width = stub_widths_[s],
                         .at_start = true,
                         .lines = wrapped(title, stub_widths_[s])});
      }
      start += stub_widths_[s] + kGap;
    }
    return heads;
  }

  std::vector<BlockHead> heads_ending_at(uint32_t level, const Block& block) const {
    std::vector<BlockHead> heads;
    for (const Head& head : layout_.column_heads) {
      const uint32_t begin = std::max(head.first, block.begin);
      const uint32_t end = std::min(head.first + head.span, block.end);
      if (head.level + head.depth != level + 1 || begin >= end) continue;
      const std::string label = label_of(head);
      if (label.empty()) continue;
      const size_t start = starts_[begin - block.begin];
      const size_t width = starts_[end - block.begin] - kGap - start;
      heads.push_back({.start = start,
                       .width = width,
                       .at_start = end - begin == 1 && cells_.columns[begin].mixed,
                       .lines = wrapped(label, width)});
    }
    return heads;
  }

  /// Heads that are shorter than others stand at the foot of their row.
  void write_head_row(const std::vector<BlockHead>& heads) {
    size_t height = 0;
    for (const BlockHead& head : heads)
      height = std::max(height, head.lines.size());
    for (size_t i = 0; i < height; ++i) {
      for (const BlockHead& head : heads) {
        if (i + head.lines.size() < height) continue;
        const std::string& text = head.lines[i + head.lines.size() - height];
        const size_t used = display_width(text);
        const size_t shift = head.at_start || used >= head.width ? 0 : (head.width - used) / 2;
        line_.go_to(head.start + shift);
        line_.add(text);
      }
      line_.end(out_);
    }
  }

  void write_spanner_rules(const std::vector<BlockHead>& heads) {
    if (heads.empty()) return;
    for (const BlockHead& head : heads) {
      line_.go_to(head.start);
      std::string rule;
      append_repeated(rule, "─", head.width);
      line_.add(rule);
    }
    line_.end(out_);
  }

  /// What is still to be written of the head in one stub column.
  struct Side {
    std::vector<std::string> lines;
    size_t next = 0;
    uint32_t last_line = 0;  ///< the last body line that the head covers
    size_t indent = 0;
    size_t rest() const { return lines.size() - next; }
  };

  void write_lines(const Block& block) {
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
        write_group(*group, line);
      } else {
        write_row(layout_.lines[line], line, block);
      }
    }
  }

  void take_side(const Head& head) {
    const size_t indent = std::min(kGap * head.indent, stub_widths_[head.level] / 2);
    sides_[head.level] = {.lines = wrapped(label_of(head), stub_widths_[head.level] - indent),
                          .last_line = head.first + head.span - 1,
                          .indent = indent};
  }

  void write_sides(size_t stubs) {
    size_t start = 0;
    for (size_t s = 0; s < stubs; ++s) {
      Side& side = sides_[s];
      if (side.rest() > 0) {
        line_.go_to(start + side.indent);
        line_.add(side.lines[side.next++]);
      }
      start += stub_widths_[s] + kGap;
    }
  }

  void write_group(const Head& group, uint32_t) {
    size_t start = kGap * group.indent;
    for (uint32_t s = 0; s < group.level; ++s)
      start += stub_widths_[s] + kGap;
    const size_t width =
        rule_width_ > start + kNarrowestStub ? rule_width_ - start : kNarrowestStub;
    for (const std::string& text : wrapped(label_of(group), width)) {
      write_sides(group.level);
      line_.go_to(start);
      line_.add(text);
      line_.end(out_);
    }
  }

  void write_row(uint32_t row, uint32_t line, const Block& block) {
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

  /// The lines that a row needs: for its texts, and for heads that end with it.
  size_t row_height(uint32_t row, uint32_t line, const Block& block) {
    size_t height = 1;
    for (const Side& side : sides_) {
      if (side.last_line == line) height = std::max(height, side.rest());
    }
    texts_.clear();
    size_t index = layout_.row_begin[row];
    for (const PlacedCell& placed : layout_.row(row)) {
      const AlignedCell& cell = cells_.cells[index++];
      if (cell.kind != CellKind::Text || placed.column < block.begin ||
          placed.column >= block.end) {
        continue;
      }
      const std::string text = text_of(table_.texts[cell.begin]) + cell_marks(placed.cell);
      texts_.push_back({.start = starts_[placed.column - block.begin],
                        .lines = wrapped(text, columns_[placed.column].width)});
      height = std::max(height, texts_.back().lines.size());
    }
    return height;
  }

  void write_cells(uint32_t row, const Block& block) {
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

  void write_number(const AlignedCell& cell, const PlacedCell& placed, size_t start) {
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

  void write_further_text(size_t i) {
    for (const BlockHead& text : texts_) {
      if (i >= text.lines.size()) continue;
      line_.go_to(text.start);
      line_.add(text.lines[i]);
    }
  }

  void write_notes() {
    if (table_.caption && !table_.caption->shown.empty()) {
      const std::string note = printable(document_.word("Note."));
      append_wrapped(out_, note + ' ' + text_of(*table_.caption), options_, 0);
    }
    for (uint32_t mark = 0; mark < layout_.notes.size(); ++mark) {
      const std::string letters = raised(mark);
      append_wrapped(out_, letters + ' ' + text_of(table_.notes[layout_.notes[mark]]), options_,
                     display_width(letters) + 1);
    }
  }

  std::string& out_;
  const Document& document_;
  const Table& table_;
  uint32_t number_;
  const Options& options_;
  size_t limit_;
  TableLayout layout_;
  AlignedCells cells_;
  std::vector<size_t> stub_widths_;
  size_t stub_width_ = 0;  // of all stub columns, with the gaps behind them
  std::vector<Column> columns_;
  std::vector<size_t> starts_;
  size_t rule_width_ = 0;
  std::vector<Side> sides_;
  std::vector<BlockHead> texts_;  // the text cells of the row in hand
  Line line_;
};

}  // namespace

void append_table(std::string& out,
                  const Document& document,
                  const Table& table,
                  uint32_t number,
                  const Options& options) {
  TextTable(out, document, table, number, options).write();
}

void append_wrapped(std::string& out,
                    std::string_view text,
                    const Options& options,
                    size_t indent) {
  const size_t width = options.width == 0 ? kUnlimited : std::max<size_t>(options.width, 20);
  bool first = true;
  for (const std::string& line : wrapped(text, width - indent)) {
    if (!first) out.append(indent, ' ');
    first = false;
    (out += line) += '\n';
  }
}

}  // namespace hierfit::report::text
