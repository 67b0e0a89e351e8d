// The Markdown form: pipe tables, as GitHub and pandoc read them, and charts in words and rows.
#include <algorithm>

#include "report/append.h"
#include "report/chart/figure.h"
#include "report/chart/figure_table.h"
#include "report/markdown/markdown_table.h"
#include "report/markdown/markdown_text.h"
#include "report/report.h"
#include "report/typeset/blocks.h"
#include "report/typeset/flat_heads.h"
#include "report/typeset/table_rows.h"
#include "report/wording.h"

namespace hierfit::report {

using markdown::escaped;
using markdown::escaped_lines;
using markdown::PipeTable;
using output::Chart;
using output::Document;
using output::Table;
using output::Text;

namespace {

constexpr uint32_t kDeepestHeading = 6;
/// Between labels that stand over a column.
constexpr std::string_view kDivider = ": ";
/// Of the data of a chart.
constexpr size_t kMostRows = 30;

/// Writes one table.
class MarkdownTable {
 public:
  MarkdownTable(std::string& out, const Document& document, const Table& table)
      : out_(out), document_(document), view_(document, table) {}

  const TableView& view() const { return view_; }

  void write() {
    if (view_.layout.empty()) {
      append(out_, '*', escaped(document_.word("No entries")), "*\n");
    } else {
      write_body();
    }
    write_notes();
  }

 private:
  void write_body() {
    std::vector<bool> numbers(view_.stubs(), false);
    for (const ColumnParts& column : view_.cells.columns)
      numbers.push_back(!column.mixed);
    PipeTable pipes(std::move(numbers));
    write_heads(pipes);
    TableRows rows(view_, {0, view_.layout.columns});
    while (rows.next()) {
      if (!rows.in_head()) write_line(pipes, rows);
    }
    pipes.append_to(out_);
  }

  void write_heads(PipeTable& pipes) const {
    const FlatHeads heads = flat_heads(view_, kDivider);
    for (size_t stub = 0; stub < view_.stubs(); ++stub) {
      const Text* title = view_.stub_title(stub);
      pipes.cell(title == nullptr ? "" : styled(*title));
    }
    for (uint32_t column = 0; column < view_.layout.columns; ++column)
      pipes.cell(styled(escaped(heads.columns[column]), heads.symbols[column]) +
                 raised_letters(view_.marks(heads.column_notes[column])));
  }

  void write_line(PipeTable& pipes, const TableRows& rows) const {
    for (const RowCell& cell : rows.cells()) {
      pipes.cell(cell.begins() ? content_of(cell) : "");
      if (cell.role != RowCell::Role::Gap) continue;
      for (uint32_t column = 1; column < cell.columns; ++column)
        pipes.cell("");
    }
    pipes.end_row();
  }

  std::string content_of(const RowCell& cell) const {
    std::string content;
    for (uint32_t depth = 0; cell.head != nullptr && depth < cell.head->indent; ++depth)
      content += "&emsp;";
    if (cell.label != nullptr) content += styled(*cell.label);
    if (cell.cell != nullptr) content += content_of(*cell.cell);
    return content + raised_letters(cell.marks);
  }

  std::string content_of(const AlignedCell& cell) const {
    if (cell.kind == CellKind::Missing) return {};
    return cell.kind == CellKind::Number ? escaped(view_.cells.number(cell))
                                         : styled(view_.table.texts[cell.begin]);
  }

  std::string styled(const Text& text) const {
    return styled(escaped(view_.text(text)), text.symbol);
  }

  static std::string styled(const std::string& content, bool symbol) {
    return symbol ? '*' + content + '*' : content;
  }

  void write_notes() {
    if (view_.captioned()) {
      append(out_, "\n*", escaped(document_.word("Note.")), "* ",
             escaped_lines(view_.text(*view_.table.caption)), '\n');
    }
    for (uint32_t mark = 0; mark < view_.layout.notes.size(); ++mark) {
      append(out_, '\n', raised_letters(mark), ' ',
             escaped_lines(view_.text(view_.table.notes[view_.layout.notes[mark]])), '\n');
    }
  }

  std::string& out_;
  const Document& document_;
  TableView view_;
};

class MarkdownReport {
 public:
  explicit MarkdownReport(const Document& document) : document_(document), texts_(document) {}

  std::string write() {
    append(out_, "# ", escaped(report_title(document_)), '\n');
    for (const Block& block : blocks_of(document_)) {
      out_ += '\n';
      std::visit([&](const auto* content) { write(*content, block); }, block.content);
    }
    return std::move(out_);
  }

 private:
  void write(const output::Section& section, const Block& block) {
    out_.append(std::min(block.level + 1, kDeepestHeading), '#');
    append(out_, ' ', escaped(texts_.shown(section.title)), '\n');
  }

  void write(const output::About& about, const Block&) {
    append(out_, "## ", escaped(texts_.shown(about.title)), "\n\n");
    for (const output::Fact& fact : about.facts) {
      append(out_, "- **", escaped(texts_.shown(fact.label)), "**");
      // A value of several is an item of its own.
      const bool is_list = fact.values.size() > 1;
      out_ += is_list ? "\n" : ": ";
      for (const Text& value : fact.values)
        append(out_, is_list ? "  - " : "", escaped(texts_.shown(value)), '\n');
    }
  }

  void write(const Table& table, const Block& block) {
    MarkdownTable writer(out_, document_, table);
    write_title(block, texts_.shown(table.title),
                raised_letters(writer.view().marks(writer.view().layout.title_notes)));
    writer.write();
  }

  void write(const output::Message& message, const Block&) {
    append(out_, "**", escaped(severity_word(message.severity, document_)), "** ",
           escaped_lines(texts_.shown(message.text)), '\n');
  }

  void write(const Chart& chart, const Block& block) {
    const chart::Figure figure(chart, document_);
    write_title(block, figure.title(), "");
    (out_ += escaped_lines(figure.description())) += '\n';
    for (const chart::FigureTable& data : chart::figure_tables(figure.binding(), kMostRows))
      write_data(data);
  }

  void write_title(const Block& block, const std::string& title, const std::string& marks) {
    append(out_, "**", escaped(numbered(block, document_)), "**\\\n");
    const std::string words = escaped_lines(title);
    if (!words.empty()) append(out_, '*', words, '*');
    append(out_, marks, "\n\n");
  }

  void write_data(const chart::FigureTable& data) {
    std::vector<bool> numbers = data.texts;
    numbers.flip();
    PipeTable pipes(std::move(numbers));
    for (const output::Node& head : data.table.dimensions[1].nodes)
      pipes.cell(escaped(head.label.shown));
    chart::for_cells(data.table, [&](uint32_t, uint32_t, const output::CellValue* value) {
      pipes.cell(value == nullptr ? std::string() : cell_text(data.table, *value));
    });
    out_ += '\n';
    pipes.append_to(out_);
    if (data.table.caption) ((out_ += '\n') += escaped_lines(data.table.caption->shown)) += '\n';
  }

  std::string cell_text(const Table& table, const output::CellValue& value) const {
    const auto* number = std::get_if<output::Number>(&value);
    return escaped(number != nullptr ? output::shown(*number, texts_.numbers())
                                     : texts_.shown(table.texts[std::get<uint32_t>(value)]));
  }

  const Document& document_;
  Texts texts_;
  std::string out_;
};

}  // namespace

std::string render_markdown(const Document& document, const Options&) {
  return MarkdownReport(document).write();
}

}  // namespace hierfit::report
