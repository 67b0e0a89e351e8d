#include "report/latex/latex_table.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "report/append.h"
#include "report/typeset/paper.h"
#include "report/typeset/table_rows.h"
#include "report/wording.h"

namespace hierfit::report::latex {

using output::Document;
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
  LatexTable(std::string& out, TextWriter& texts, const Document& document, const PaperBlock& block)
      : out_(out),
        texts_(texts),
        document_(document),
        block_(block.block),
        view_(block.table->view),
        page_(block.table->page),
        widest_(view_.layout.columns) {
    measure();
  }

  void write() {
    if (page_.landscape) out_ += "\\begin{landscape}\n";
    if (view_.layout.empty()) {
      write_nothing();
    } else {
      for (const Part& part : page_.parts)
        write_part(part);
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
    const std::string content = texts_.escaped(view_.text(text), line_break);
    return text.symbol ? "\\textit{" + content + "}" : content;
  }

  static std::string raised(const std::vector<uint32_t>& marks) {
    return marks.empty() ? "" : "\\textsuperscript{" + mark_letters(marks) + "}";
  }

  double room(double width) const { return std::max(width - 2 * kCellPadding, 1.0); }

  void write_nothing() {
    out_ += "\\begin{flushleft}\n";
    write_title();
    append(out_, "\\newline\n\\textit{", texts_.escaped(document_.word("No entries")),
           "}\n\\end{flushleft}\n");
  }

  void write_title() {
    append(out_, "\\textbf{", texts_.escaped(numbered(block_, document_)), "}");
    if (view_.table.title.shown.empty()) return;
    append(out_, "\\newline\n\\textit{", words(view_.table.title), '}');
    out_ += raised(view_.marks(view_.layout.title_notes));
  }

  void write_part(const Part& part) {
    out_ += "{\\small\n\\begin{longtable}{";
    for (const double width : page_.stubs)
      write_column(width, "raggedright");
    for (uint32_t column = part.first; column < part.end; ++column) {
      const bool mixed = view_.cells.columns[column].mixed;
      write_column(page_.columns[column], mixed ? "raggedright" : "centering");
    }
    out_ += "}\n";
    write_heads(part, part.first > 0);
    out_ += "\\endfirsthead\n";
    TableRows rows = write_heads(part, true);
    out_ += "\\endhead\n\\bottomrule\n\\endfoot\n\\bottomrule\n\\endlastfoot\n";
    write_body(rows);
    out_ += "\\end{longtable}}\n";
  }

  void write_column(double width, std::string_view way) {
    append(out_, ">{\\", way, "\\arraybackslash}p{", points(room(width)), '}');
  }

  void write_continuation() {
    const std::string text = continued(block_, document_);
    append(out_, "\\textbf{", texts_.escaped(text), "}");
  }

  // The head. A label that reaches down stands in the last of its rows.

  /// The title over all columns and the rows of the head; gives the walk, which goes on behind
  /// them.
  TableRows write_heads(const Part& part, bool continues) {
    TableRows rows(view_, part);
    append(out_, "\\tabletitle{", rows.columns(), "}{");
    if (continues) {
      write_continuation();
    } else {
      write_title();
    }
    out_ += "} \\\\[3pt]\n\\toprule\n";
    for (uint32_t row = 0; row < view_.head_rows() && rows.next(); ++row) {
      write_head_row(rows);
    }
    if (view_.head_rows() > 0) out_ += "\\midrule\n";
    return rows;
  }

  void write_head_row(const TableRows& rows) {
    std::string rules;
    for (const RowCell& cell : rows.cells()) {
      if (cell.role == RowCell::Role::Blank) {
        for (uint32_t column = 0; column < cell.columns; ++column)
          out_ += " &";
        continue;
      }
      divide(cell);
      write_over(rows.part(), cell, "centering", cell.ends() ? head_of(cell) : "");
      if (!cell.over_heads || !cell.ends() || cell.label == nullptr) continue;
      append(rules, "\\cmidrule(lr){", cell.column + 1, '-', cell.end(), '}');
    }
    out_ += " \\\\\n";
    if (!rules.empty()) append(out_, rules, '\n');
  }

  void divide(const RowCell& cell) {
    if (cell.column > 0) out_ += " & ";
  }

  /// A cell over several columns.
  void write_over(const Part& part,
                  const RowCell& cell,
                  std::string_view way,
                  const std::string& content) {
    if (cell.columns == 1) {
      out_ += content;
      return;
    }
    const double width = page_.width(part, cell.column, cell.columns);
    append(out_, "\\multicolumn{", cell.columns, "}{>{\\", way, "\\arraybackslash}p{",
           points(room(width)), "}}{", content, '}');
  }

  std::string head_of(const RowCell& cell) {
    return cell.label == nullptr ? "" : words(*cell.label) + raised(cell.marks);
  }

  // The body.

  void write_body(TableRows& rows) {
    while (rows.next()) {
      bool of_group = false;
      for (const RowCell& cell : rows.cells()) {
        divide(cell);
        write_cell(rows.part(), cell);
        of_group = cell.role == RowCell::Role::Group;
      }
      out_ += of_group ? " \\\\*\n" : " \\\\\n";
    }
  }

  void write_cell(const Part& part, const RowCell& cell) {
    switch (cell.role) {
      case RowCell::Role::Gap:
        for (uint32_t column = 1; column < cell.columns; ++column)
          out_ += " & ";
        return;
      case RowCell::Role::Content:
        return write_content(cell);
      default:
        return write_over(part, cell, "raggedright", cell.begins() ? label(cell) : "");
    }
  }

  std::string label(const RowCell& cell) {
    std::string written;
    if (cell.head->indent > 0) {
      append(written, "\\hspace*{", std::min(cell.head->indent, 8U), "em}");
    }
    if (cell.label != nullptr) written += words(*cell.label);
    return written + raised(cell.marks);
  }

  void write_content(const RowCell& content) {
    const AlignedCell& cell = *content.cell;
    if (cell.kind == CellKind::Number && !content.at_start) {
      write_number(cell, widest_[content.placed->column], content.marks);
      return;
    }
    if (cell.kind == CellKind::Text) out_ += words(view_.table.texts[cell.begin]);
    if (cell.kind == CellKind::Number) out_ += texts_.escaped(view_.cells.number(cell));
    out_ += raised(content.marks);
  }

  /// All numbers of a column are as wide on either side of the decimal mark as its widest.
  void write_number(const AlignedCell& cell,
                    const Widest& widest,
                    const std::vector<uint32_t>& marks) {
    const DecimalWidths widths = decimal_widths(view_.cells.number(cell), cell);
    const auto [whole, rest] = parts(cell);
    const std::string tail = marks.empty() ? rest : rest + "\\rlap{" + raised(marks) + '}';
    if (widths.whole < widest.widths.whole) {
      append(out_, "\\lead{", widest.whole, "}{", whole, '}');
    } else {
      out_ += whole;
    }
    if (widths.rest < widest.widths.rest) {
      append(out_, "\\trail{", widest.rest, "}{", tail, '}');
    } else {
      out_ += tail;
    }
  }

  void write_notes() {
    if (!view_.captioned() && view_.layout.notes.empty()) return;
    out_ += "\\begin{tablenotes}\n";
    if (view_.captioned()) {
      append(out_, "\\textit{", texts_.escaped(document_.word("Note.")), "} ",
             words(*view_.table.caption, "\\newline "), "\\par\n");
    }
    for (uint32_t mark = 0; mark < view_.layout.notes.size(); ++mark) {
      append(out_, raised({mark}), ' ', words(view_.table.notes[view_.layout.notes[mark]]),
             "\\par\n");
    }
    out_ += "\\end{tablenotes}\n";
  }

  std::string& out_;
  TextWriter& texts_;
  const Document& document_;
  const Block& block_;
  const TableView& view_;
  const PageTable& page_;
  std::vector<Widest> widest_;  // by column
};

}  // namespace

void append_table(std::string& out,
                  TextWriter& texts,
                  const Document& document,
                  const PaperBlock& block) {
  LatexTable(out, texts, document, block).write();
}

}  // namespace hierfit::report::latex
