#include "report/text/text_table.h"

#include <algorithm>

#include "report/append.h"
#include "report/text/display_text.h"
#include "report/text/text_plan.h"
#include "report/typeset/table_rows.h"
#include "report/wording.h"

namespace hierfit::report::text {

using output::Document;
using Role = RowCell::Role;

namespace {

size_t limit_of(const Options& options) {
  return options.width == 0 ? kUnlimited : std::max<size_t>(options.width, 20);
}

void append_repeated(std::string& out, std::string_view sign, size_t times) {
  for (; times > 0; --times)
    out += sign;
}

/// One line of the table under construction; knows how far it has come.
class Line {
 public:
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
    append(out, text_, '\n');
    text_.clear();
    used_ = 0;
  }

 private:
  std::string text_;
  size_t used_ = 0;
};

/// A text wrapped into its place.
struct Box {
  size_t start = 0;
  size_t width = 0;
  bool at_start = false;  ///< not centred
  std::vector<std::string> lines = {};
};

/// What is still to be written of the head in a stub.
struct Side {
  std::vector<std::string> lines;
  size_t indent = 0;
  size_t next = 0;
  size_t rest() const { return lines.size() - next; }
};

/// Writes a table from its title to its last note.
class TextTable {
 public:
  TextTable(std::string& out, const Document& document, const Block& block, const Options& options)
      : out_(out),
        document_(document),
        block_(block),
        options_(options),
        view_(document, *block.as<output::Table>(), Medium::Terminal),
        plan_(plan_text(view_, limit_of(options))) {}

  void write() {
    write_title();
    for (const Part& part : plan_.parts) {
      if (part.first > 0) write_continuation();
      write_part(part);
    }
    write_notes();
  }

 private:
  std::string word(std::string_view key) const { return view_.texts.shown(document_.word(key)); }

  void write_title() {
    append(out_, options_.colour ? "\x1b[1m" : "", view_.texts.shown(numbered(block_, document_)),
           options_.colour ? "\x1b[0m" : "", '\n');
    const std::string marks = raised_letters(view_.marks(view_.layout.title_notes));
    append_wrapped(out_, view_.text(view_.table.title) + marks, options_, 0);
  }

  void write_continuation() {
    out_ += '\n';
    append_wrapped(out_, view_.texts.shown(continued(block_, document_)), options_, 0);
  }

  void write_part(const Part& part) {
    place_columns(part);
    write_rule("━");
    TableRows rows(view_, part);
    write_head(rows);
    sides_.assign(view_.stubs(), {});
    if (view_.layout.empty()) append(out_, word("No entries"), '\n');
    while (rows.next())
      write_line(rows);
    write_rule("━");
  }

  /// Where the stubs and the columns of a part begin, and behind them where the next would.
  void place_columns(const Part& part) {
    starts_.assign(1, 0);
    for (const size_t stub : plan_.stubs)
      starts_.push_back(starts_.back() + stub + plan_.gap);
    for (uint32_t column = part.first; column < part.end; ++column)
      starts_.push_back(starts_.back() + plan_.columns[column] + plan_.gap);
    const size_t end = starts_.back() >= plan_.gap ? starts_.back() - plan_.gap : starts_.back();
    rule_width_ = std::max(end, std::min<size_t>(limit_of(options_), kNarrowestStub * 2));
  }

  void write_rule(std::string_view sign) {
    append_repeated(out_, sign, rule_width_);
    out_ += '\n';
  }

  // The head. A label that reaches down stands in the last of its rows.

  void write_head(TableRows& rows) {
    const uint32_t count = view_.head_rows();
    for (uint32_t row = 0; row < count && rows.next(); ++row) {
      std::vector<Box> heads;
      for (const RowCell& cell : rows.cells()) {
        if (cell.ends()) add_head(heads, cell);
      }
      write_boxes(heads);
      if (row + 1 < count) write_rules(heads);
    }
    if (count > 0) write_rule("─");
  }

  void add_head(std::vector<Box>& heads, const RowCell& cell) const {
    if (cell.label == nullptr && cell.marks.empty()) return;
    Box box = {.start = starts_[cell.column],
               .width = starts_[cell.end()] - plan_.gap - starts_[cell.column],
               .at_start = cell.at_start || cell.role == Role::StubTitle};
    box.lines = wrapped(label_of(cell), box.width);
    heads.push_back(std::move(box));
  }

  std::string label_of(const RowCell& cell) const {
    return (cell.label == nullptr ? "" : view_.text(*cell.label)) + raised_letters(cell.marks);
  }

  /// Heads that are shorter than others stand at the foot of their row.
  void write_boxes(const std::vector<Box>& boxes) {
    size_t height = 0;
    for (const Box& box : boxes)
      height = std::max(height, box.lines.size());
    for (size_t i = 0; i < height; ++i) {
      for (const Box& box : boxes) {
        if (i + box.lines.size() < height) continue;
        const std::string& text = box.lines[i + box.lines.size() - height];
        const size_t used = display_width(text);
        const size_t shift = box.at_start || used >= box.width ? 0 : (box.width - used) / 2;
        line_.go_to(box.start + shift);
        line_.add(text);
      }
      line_.end(out_);
    }
  }

  void write_rules(const std::vector<Box>& heads) {
    if (heads.empty()) return;
    for (const Box& head : heads) {
      line_.go_to(head.start);
      std::string rule;
      append_repeated(rule, "─", head.width);
      line_.add(rule);
    }
    line_.end(out_);
  }

  // The body.

  void write_line(const TableRows& rows) {
    for (const RowCell& cell : rows.cells()) {
      if (cell.role == Role::RowHead && cell.begins()) take_side(cell);
    }
    if (rows.cells().back().role == Role::Group) {
      write_group(rows.cells().back());
    } else {
      write_row(rows.cells());
    }
  }

  void take_side(const RowCell& cell) {
    const size_t width = plan_.stubs[cell.column];
    const size_t indent = std::min(kIndent * cell.head->indent, width / 2);
    sides_[cell.column] = {.lines = wrapped(label_of(cell), width - indent), .indent = indent};
  }

  void write_sides(size_t stubs) {
    for (size_t stub = 0; stub < stubs; ++stub) {
      Side& side = sides_[stub];
      if (side.rest() == 0) continue;
      line_.go_to(starts_[stub] + side.indent);
      line_.add(side.lines[side.next++]);
    }
  }

  void write_group(const RowCell& group) {
    const size_t start = starts_[group.column] + kIndent * group.head->indent;
    const size_t width =
        rule_width_ > start + kNarrowestStub ? rule_width_ - start : kNarrowestStub;
    for (const std::string& text : wrapped(label_of(group), width)) {
      write_sides(group.column);
      line_.go_to(start);
      line_.add(text);
      line_.end(out_);
    }
  }

  /// As many lines as its texts need, and the heads that end with it.
  void write_row(std::span<const RowCell> cells) {
    const std::vector<Box> texts = texts_of(cells);
    size_t height = 1;
    for (const Box& text : texts)
      height = std::max(height, text.lines.size());
    for (const RowCell& cell : cells) {
      if (cell.role == Role::RowHead && cell.ends()) {
        height = std::max(height, sides_[cell.column].rest());
      }
    }
    for (size_t i = 0; i < height; ++i) {
      write_sides(sides_.size());
      if (i == 0) {
        write_first_line(cells, texts);
      } else {
        write_further_line(texts, i);
      }
      line_.end(out_);
    }
  }

  std::vector<Box> texts_of(std::span<const RowCell> cells) const {
    std::vector<Box> texts;
    for (const RowCell& cell : cells) {
      if (cell.cell == nullptr || cell.cell->kind != CellKind::Text) continue;
      const std::string text =
          view_.text(view_.table.texts[cell.cell->begin]) + raised_letters(cell.marks);
      texts.push_back({.start = starts_[cell.column],
                       .lines = wrapped(text, plan_.columns[cell.placed->column])});
    }
    return texts;
  }

  void write_first_line(std::span<const RowCell> cells, const std::vector<Box>& texts) {
    auto text = texts.begin();
    for (const RowCell& cell : cells) {
      if (cell.cell == nullptr) continue;
      if (cell.cell->kind == CellKind::Text) {
        line_.go_to(text->start);
        line_.add((text++)->lines[0]);
      } else {
        write_number(cell);
      }
    }
  }

  void write_number(const RowCell& content) {
    const AlignedCell& cell = *content.cell;
    const NumberWidths& widths = plan_.numbers[content.placed->column];
    const bool missing = cell.kind == CellKind::Missing;
    size_t start = starts_[content.column];
    if (!content.at_start) {
      // A missing number's mark stands where the decimal marks do.
      const size_t whole = missing ? (widths.right > 0 ? 0 : 1) : cell.whole;
      const size_t width = plan_.columns[content.placed->column];
      start += (width - widths.all()) / 2 + widths.whole - whole;
    }
    line_.go_to(start);
    line_.add(missing ? std::string_view(document_.numbers.missing) : view_.cells.number(cell));
    line_.add(raised_letters(content.marks));
  }

  void write_further_line(const std::vector<Box>& texts, size_t i) {
    for (const Box& text : texts) {
      if (i >= text.lines.size()) continue;
      line_.go_to(text.start);
      line_.add(text.lines[i]);
    }
  }

  void write_notes() {
    if (view_.captioned()) {
      append_wrapped(out_, word("Note.") + ' ' + view_.text(*view_.table.caption), options_, 0);
    }
    for (uint32_t mark = 0; mark < view_.layout.notes.size(); ++mark) {
      const std::string letters = raised_letters(mark);
      append_wrapped(out_, letters + ' ' + view_.text(view_.table.notes[view_.layout.notes[mark]]),
                     options_, display_width(letters) + 1);
    }
  }

  std::string& out_;
  const Document& document_;
  const Block& block_;
  const Options& options_;
  TableView view_;
  TextPlan plan_;
  std::vector<size_t> starts_;  // of the part in hand
  size_t rule_width_ = 0;
  std::vector<Side> sides_;  // by stub
  Line line_;
};

}  // namespace

void append_table(std::string& out,
                  const Document& document,
                  const Block& block,
                  const Options& options) {
  TextTable(out, document, block, options).write();
}

void append_wrapped(std::string& out,
                    std::string_view text,
                    const Options& options,
                    size_t indent) {
  bool first = true;
  for (const std::string& line : wrapped(text, limit_of(options) - indent)) {
    if (!first) out.append(indent, ' ');
    first = false;
    append(out, line, '\n');
  }
}

void append_wrapped(std::string& out,
                    std::string_view head,
                    std::string_view text,
                    const Options& options) {
  out += head;
  append_wrapped(out, text, options, display_width(head));
}

}  // namespace hierfit::report::text
