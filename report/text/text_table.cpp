// Writes one table for a terminal: its title, heads and notes.
#include "report/text/text_table.h"

#include <algorithm>

#include "report/text/text_table_writer.h"
#include "report/wording.h"

namespace hierfit::report::text {

using output::Document;
using output::Table;

namespace {

void append_repeated(std::string& out, std::string_view piece, size_t times) {
  for (; times > 0; --times)
    out += piece;
}

}  // namespace

void TextTable::write() {
  const std::vector<Block> blocks = fit();
  write_title();
  for (const Block& block : blocks) {
    if (block.begin > 0) write_continuation();
    write_block(block);
  }
  write_notes();
}

std::string TextTable::text_of(const output::Text& text) const {
  return printable(restyled(text, document_.numbers));
}

std::string TextTable::marks_of(const std::vector<uint32_t>& notes) const {
  std::vector<uint32_t> marks;
  for (uint32_t note : notes)
    marks.push_back(layout_.marks[note]);
  std::ranges::sort(marks);
  marks.erase(std::unique(marks.begin(), marks.end()), marks.end());
  std::string text;
  for (uint32_t mark : marks) {
    if (!text.empty()) text += "\u02D2";
    text += raised_letters(mark);
  }
  return text;
}

std::string TextTable::label_of(const Head& head) const {
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

std::string TextTable::stub_title(uint32_t dimension) const {
  const output::Dimension& of = table_.dimensions[dimension];
  return of.title_shown ? text_of(of.title) : std::string();
}

std::string TextTable::cell_marks(uint32_t cell) const {
  if (table_.cells.notes.empty()) return {};
  auto notes = table_.cells.notes.find(cell);
  return notes == table_.cells.notes.end() ? std::string() : marks_of(notes->second);
}

void TextTable::write_title() {
  const std::string number = printable(filled(document_.word("Table ^1"), std::to_string(number_)));
  const std::string_view on = options_.colour ? "\x1b[1m" : "";
  const std::string_view off = options_.colour ? "\x1b[0m" : "";
  (((out_ += on) += number) += off) += '\n';
  append_wrapped(out_, text_of(table_.title) + marks_of(layout_.title_notes), options_, 0);
}

void TextTable::write_continuation() {
  out_ += '\n';
  const std::string number = std::to_string(number_);
  append_wrapped(out_, printable(filled(document_.word("Table ^1 (continued)"), number)), options_,
                 0);
}

void TextTable::place_columns(const Block& block) {
  starts_.clear();
  size_t at = stub_width_;
  for (uint32_t c = block.begin; c < block.end; ++c) {
    starts_.push_back(at);
    at += columns_[c].width + gap_;
  }
  starts_.push_back(at);
  const size_t end = at >= gap_ ? at - gap_ : at;
  rule_width_ = std::max(end, std::min<size_t>(limit_, kNarrowestStub * 2));
}

void TextTable::write_rule(std::string_view piece) {
  append_repeated(out_, piece, rule_width_);
  out_ += '\n';
}

void TextTable::write_block(const Block& block) {
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

bool TextTable::write_heads(const Block& block) {
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

std::vector<TextTable::BlockHead> TextTable::stub_heads() const {
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
    start += stub_widths_[s] + gap_;
  }
  return heads;
}

std::vector<TextTable::BlockHead> TextTable::heads_ending_at(uint32_t level,
                                                             const Block& block) const {
  std::vector<BlockHead> heads;
  for (const Head& head : layout_.column_heads) {
    const uint32_t begin = std::max(head.first, block.begin);
    const uint32_t end = std::min(head.first + head.span, block.end);
    if (head.level + head.depth != level + 1 || begin >= end) continue;
    const std::string label = label_of(head);
    if (label.empty()) continue;
    const size_t start = starts_[begin - block.begin];
    const size_t width = starts_[end - block.begin] - gap_ - start;
    heads.push_back({.start = start,
                     .width = width,
                     .at_start = end - begin == 1 && cells_.columns[begin].mixed,
                     .lines = wrapped(label, width)});
  }
  // Heads that reach down from different rows come by the row that they begin in.
  std::ranges::sort(heads, {}, &BlockHead::start);
  return heads;
}

void TextTable::write_head_row(const std::vector<BlockHead>& heads) {
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

void TextTable::write_spanner_rules(const std::vector<BlockHead>& heads) {
  if (heads.empty()) return;
  for (const BlockHead& head : heads) {
    line_.go_to(head.start);
    std::string rule;
    append_repeated(rule, "─", head.width);
    line_.add(rule);
  }
  line_.end(out_);
}

void TextTable::write_notes() {
  if (table_.caption && !table_.caption->shown.empty()) {
    const std::string note = printable(document_.word("Note."));
    append_wrapped(out_, note + ' ' + text_of(*table_.caption), options_, 0);
  }
  for (uint32_t mark = 0; mark < layout_.notes.size(); ++mark) {
    const std::string letters = raised_letters(mark);
    append_wrapped(out_, letters + ' ' + text_of(table_.notes[layout_.notes[mark]]), options_,
                   display_width(letters) + 1);
  }
}

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
