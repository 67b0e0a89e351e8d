#include "report/latex/latex_table.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "report/layout/page_table.h"
#include "report/table_view.h"
#include "report/wording.h"

namespace hierfit::report::latex {

using output::Document;
using output::kNone;
using output::Table;
using output::Text;

namespace {

std::string points(double length) {
  std::array<char, 32> digits;
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), length,
                                 std::chars_format::fixed, 1);
  return std::string(digits.data(), end.ptr) + "pt";
}

/// The widest parts of the numbers of a column, as they are written.
struct Widest {
  std::string whole;
  std::string rest;
  DecimalWidths widths;
};

class LatexTable {
 public:
  LatexTable(std::string& out, TextWriter& texts, const Document& document, const Entry& entry)
      : out_(out),
        texts_(texts),
        document_(document),
        entry_(entry),
        view_(document, **std::get_if<const Table*>(&entry.content)),
        page_(plan_table(view_)),
        grid_(head_grid(view_.layout)),
        widest_(view_.layout.columns) {
    measure();
  }

  void write() {
    if (page_.landscape) out_ += "\\begin{landscape}\n";
    if (view_.layout.empty()) {
      write_nothing();
    } else {
      for (const uint32_t end : page_.fold_ends) {
        end_ = end;
        write_part();
        begin_ = end;
      }
    }
    write_notes();
    if (page_.landscape) out_ += "\\end{landscape}\n";
  }

 private:
  /// The parts of a number, ahead of its decimal mark and from there on.
  std::pair<std::string, std::string> parts(const AlignedCell& cell) {
    const std::string_view number = view_.cells.number(cell);
    size_t bytes = 0;
    for (uint8_t i = 0; i < cell.whole && bytes < number.size(); ++i) {
      do {
        ++bytes;
      } while (bytes < number.size() && (number[bytes] & '\xC0') == '\x80');
    }
    return {texts_.escaped(number.substr(0, bytes)), texts_.escaped(number.substr(bytes))};
  }

  void measure() {
    for (size_t i = 0; i < view_.cells.cells.size(); ++i) {
      const AlignedCell& cell = view_.cells.cells[i];
      if (cell.kind != CellKind::Number) continue;
      Widest& widest = widest_[view_.layout.placed[i].column];
      const DecimalWidths widths = decimal_widths(view_.cells.number(cell), cell);
      if (widths.whole > widest.widths.whole) {
        widest.widths.whole = widths.whole;
        widest.whole = parts(cell).first;
      }
      if (widths.rest > widest.widths.rest) {
        widest.widths.rest = widths.rest;
        widest.rest = parts(cell).second;
      }
    }
  }

  std::string words(const Text& text, std::string_view line_break = "\\newline ") {
    const std::string content = texts_.escaped(restyled(text, view_.style), line_break);
    return text.symbol ? "\\textit{" + content + "}" : content;
  }

  static std::string raised(const std::string& marks) {
    return marks.empty() ? "" : "\\textsuperscript{" + marks + "}";
  }

  uint32_t columns() const { return view_.stubs() + end_ - begin_; }
  double room(double width) const { return std::max(width - 2 * kCellPadding, 1.0); }

  void write_nothing() {
    out_ += "\\begin{flushleft}\n";
    write_title();
    ((out_ += "\\newline\n\\textit{") += texts_.escaped(document_.word("No entries"))) +=
        "}\n\\end{flushleft}\n";
  }

  void write_title() {
    ((out_ += "\\textbf{") += texts_.escaped(numbered(entry_, document_))) += "}";
    if (view_.table.title.shown.empty()) return;
    ((out_ += "\\newline\n\\textit{") += words(view_.table.title)) += '}';
    out_ += raised(view_.marks(view_.layout.title_notes));
  }

  void write_part() {
    out_ += "{\\small\n\\begin{longtable}{";
    for (const double width : page_.stubs)
      write_column(width, "raggedright");
    for (uint32_t column = begin_; column < end_; ++column) {
      const bool mixed = view_.cells.columns[column].mixed;
      write_column(page_.columns[column], mixed ? "raggedright" : "centering");
    }
    out_ += "}\n";
    open_title();
    if (begin_ == 0) {
      write_title();
    } else {
      write_continuation();
    }
    write_heads();
    out_ += "\\endfirsthead\n";
    open_title();
    write_continuation();
    write_heads();
    out_ += "\\endhead\n\\bottomrule\n\\endfoot\n\\bottomrule\n\\endlastfoot\n";
    write_body();
    out_ += "\\end{longtable}}\n";
  }

  void write_column(double width, std::string_view way) {
    ((out_ += ">{\\") += way) += "\\arraybackslash}p{";
    (out_ += points(room(width))) += '}';
  }

  /// A cell over all columns.
  void open_title() { ((out_ += "\\tabletitle{") += std::to_string(columns())) += "}{"; }

  void write_continuation() {
    const std::string number = std::to_string(entry_.number);
    const std::string text = filled(document_.word("Table ^1 (continued)"), number);
    ((out_ += "\\textbf{") += texts_.escaped(text)) += "}";
  }

  // The head. A label that reaches down stands in the last of its rows.

  void write_heads() {
    out_ += "} \\\\[3pt]\n\\toprule\n";
    const uint32_t rows = view_.head_rows();
    for (uint32_t level = 0; level < rows; ++level) {
      write_stub_titles(level + 1 == rows);
      std::string rules;
      if (level < grid_.size()) {
        for (const Head* head : grid_[level])
          write_head(*head, level, rules);
      } else {
        for (uint32_t column = begin_; column < end_; ++column)
          out_ += " &";
      }
      out_ += " \\\\\n";
      if (!rules.empty()) (out_ += rules) += '\n';
    }
    if (rows > 0) out_ += "\\midrule\n";
  }

  void write_stub_titles(bool shown) {
    for (size_t stub = 0; stub < view_.stubs(); ++stub) {
      if (stub > 0) out_ += " & ";
      const Text* title = view_.stub_title(stub);
      if (shown && title != nullptr) out_ += words(*title);
    }
  }

  void divide(bool first) {
    if (!first || view_.stubs() > 0) out_ += " & ";
  }

  void write_head(const Head& head, uint32_t level, std::string& rules) {
    const uint32_t first = std::max(head.first, begin_);
    const uint32_t end = std::min(head.first + head.span, end_);
    if (first >= end) return;
    divide(first == begin_);
    const Text* label = view_.label_of(head);
    const bool shows = label != nullptr && level + 1 == head.level + head.depth;
    const bool over_heads = head.level + head.depth < view_.layout.head_rows;
    if (end - first > 1) {
      double width = 0;
      for (uint32_t column = first; column < end; ++column)
        width += page_.columns[column];
      ((out_ += "\\multicolumn{") += std::to_string(end - first)) +=
          "}{>{\\centering\\arraybackslash}p{";
      (out_ += points(room(width))) += "}}{";
    }
    if (shows) (out_ += words(*label)) += raised(view_.marks(head));
    if (end - first > 1) out_ += '}';
    if (!shows || !over_heads) return;
    const uint32_t left = view_.stubs() + first - begin_ + 1;
    ((rules += "\\cmidrule(lr){") += std::to_string(left)) += '-';
    (rules += std::to_string(left + end - first - 1)) += '}';
  }

  // The body.

  void write_body() {
    auto next = view_.layout.row_heads.cbegin();
    for (uint32_t line = 0; line < view_.lines(); ++line) {
      const uint32_t row = view_.layout.lines[line];
      std::vector<std::string> labels(view_.stubs());
      for (; next != view_.layout.row_heads.end() && next->first == line; ++next)
        labels[next->level] = label(*next);
      if (row == kNone) {
        write_group(labels);
        continue;
      }
      for (size_t stub = 0; stub < labels.size(); ++stub) {
        if (stub > 0) out_ += " & ";
        out_ += labels[stub];
      }
      write_cells(row);
      out_ += " \\\\\n";
    }
  }

  std::string label(const Head& head) {
    std::string written;
    if (head.indent > 0) {
      written = "\\hspace*{" + std::to_string(std::min(head.indent, 8U)) + "em}";
    }
    if (const Text* text = view_.label_of(head)) written += words(*text);
    return written + raised(view_.marks(head));
  }

  /// A group's line is one cell from its stub on.
  void write_group(const std::vector<std::string>& labels) {
    const auto at =
        std::ranges::find_if(labels, [](const std::string& each) { return !each.empty(); });
    const auto stub = static_cast<size_t>(at - labels.begin());
    double width = page_.width(begin_, end_);
    for (size_t i = 0; i < std::min(stub, labels.size()); ++i) {
      out_ += " & ";
      width -= page_.stubs[i];
    }
    if (at != labels.end()) {
      ((out_ += "\\multicolumn{") += std::to_string(columns() - stub)) +=
          "}{>{\\raggedright\\arraybackslash}p{";
      (((out_ += points(room(width))) += "}}{") += *at) += '}';
    }
    out_ += " \\\\*\n";
  }

  void write_cells(uint32_t row) {
    const std::span<const PlacedCell> placed = view_.layout.row(row);
    size_t i = 0;
    while (i < placed.size() && placed[i].column < begin_)
      ++i;
    for (uint32_t column = begin_; column < end_; ++column) {
      divide(column == begin_);
      if (i == placed.size() || placed[i].column != column) continue;
      write_cell(view_.cells.cells[view_.layout.row_begin[row] + i], placed[i]);
      ++i;
    }
  }

  void write_cell(const AlignedCell& cell, const PlacedCell& placed) {
    const std::string marks = view_.marks(placed);
    if (cell.kind == CellKind::Number && !view_.cells.columns[placed.column].mixed) {
      write_number(cell, widest_[placed.column], marks);
      return;
    }
    if (cell.kind == CellKind::Text) out_ += words(view_.table.texts[cell.begin]);
    if (cell.kind == CellKind::Number) out_ += texts_.escaped(view_.cells.number(cell));
    out_ += raised(marks);
  }

  /// All numbers of a column are as wide on either side of the decimal mark as its widest.
  void write_number(const AlignedCell& cell, const Widest& widest, const std::string& marks) {
    const DecimalWidths widths = decimal_widths(view_.cells.number(cell), cell);
    const auto [whole, rest] = parts(cell);
    const std::string tail = marks.empty() ? rest : rest + "\\rlap{" + raised(marks) + '}';
    if (widths.whole < widest.widths.whole) {
      ((((out_ += "\\lead{") += widest.whole) += "}{") += whole) += '}';
    } else {
      out_ += whole;
    }
    if (widths.rest < widest.widths.rest) {
      ((((out_ += "\\trail{") += widest.rest) += "}{") += tail) += '}';
    } else {
      out_ += tail;
    }
  }

  void write_notes() {
    if (!view_.captioned() && view_.layout.notes.empty()) return;
    out_ += "\\begin{tablenotes}\n";
    if (view_.captioned()) {
      ((out_ += "\\textit{") += texts_.escaped(document_.word("Note."))) += "} ";
      (out_ += words(*view_.table.caption, "\\newline ")) += "\\par\n";
    }
    for (uint32_t mark = 0; mark < view_.layout.notes.size(); ++mark) {
      (out_ += raised(mark_letters(mark))) += ' ';
      (out_ += words(view_.table.notes[view_.layout.notes[mark]])) += "\\par\n";
    }
    out_ += "\\end{tablenotes}\n";
  }

  std::string& out_;
  TextWriter& texts_;
  const Document& document_;
  const Entry& entry_;
  TableView view_;
  PageTable page_;
  std::vector<std::vector<const Head*>> grid_;
  std::vector<Widest> widest_;  // by column
  uint32_t begin_ = 0;          // of the columns of the part being written
  uint32_t end_ = 0;
};

}  // namespace

void append_table(std::string& out,
                  TextWriter& texts,
                  const Document& document,
                  const Entry& entry) {
  LatexTable(out, texts, document, entry).write();
}

}  // namespace hierfit::report::latex
