// The Markdown form: pipe tables, as GitHub and pandoc read them, and charts in words and rows.
#include <algorithm>

#include "report/chart/figure.h"
#include "report/chart/figure_table.h"
#include "report/flat_heads.h"
#include "report/markdown/markdown_table.h"
#include "report/markdown/markdown_text.h"
#include "report/outline.h"
#include "report/report.h"
#include "report/wording.h"

namespace hierfit::report {

using markdown::escaped;
using markdown::escaped_lines;
using markdown::PipeTable;
using output::Chart;
using output::Document;
using output::kNone;
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
      ((out_ += '*') += escaped(document_.word("No entries"))) += "*\n";
    } else {
      write_body();
    }
    write_notes();
  }

  std::string marks(const std::vector<uint32_t>& notes) const {
    std::vector<uint32_t> numbers;
    for (uint32_t note : notes)
      numbers.push_back(view_.layout.marks[note]);
    std::ranges::sort(numbers);
    numbers.erase(std::unique(numbers.begin(), numbers.end()), numbers.end());
    std::string letters;
    for (uint32_t number : numbers) {
      if (!letters.empty()) letters += "\u02D2";
      letters += raised_letters(number);
    }
    return letters;
  }

 private:
  using RowHead = std::vector<Head>::const_iterator;

  void write_body() {
    std::vector<bool> numbers(view_.stubs(), false);
    for (const ColumnParts& column : view_.cells.columns)
      numbers.push_back(!column.mixed);
    PipeTable pipes(std::move(numbers));
    write_heads(pipes);
    RowHead next = view_.layout.row_heads.begin();
    for (uint32_t line = 0; line < view_.lines(); ++line)
      write_line(pipes, line, next);
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
                 marks(heads.column_notes[column]));
  }

  void write_line(PipeTable& pipes, uint32_t line, RowHead& next) const {
    std::vector<std::string> labels(view_.stubs());
    for (; next != view_.layout.row_heads.end() && next->first == line; ++next) {
      for (uint32_t depth = 0; depth < next->indent; ++depth)
        labels[next->level] += "&emsp;";
      if (const Text* label = view_.label_of(*next)) labels[next->level] += styled(*label);
      if (next->node != kNone) {
        labels[next->level] +=
            marks(view_.table.dimensions[next->dimension].nodes[next->node].notes);
      }
    }
    for (std::string& label : labels)
      pipes.cell(std::move(label));
    const uint32_t row = view_.layout.lines[line];
    if (row != kNone) write_cells(pipes, row);
    pipes.end_row();
  }

  void write_cells(PipeTable& pipes, uint32_t row) const {
    uint32_t column = 0;
    for (size_t i = view_.layout.row_begin[row]; i < view_.layout.row_begin[row + 1]; ++i) {
      const PlacedCell& placed = view_.layout.placed[i];
      for (; column < placed.column; ++column)
        pipes.cell("");
      pipes.cell(content_of(view_.cells.cells[i], placed));
      ++column;
    }
  }

  std::string content_of(const AlignedCell& cell, const PlacedCell& placed) const {
    std::string content;
    if (cell.kind == CellKind::Number) content = escaped(view_.cells.number(cell));
    if (cell.kind == CellKind::Text) content = styled(view_.table.texts[cell.begin]);
    const auto notes = view_.table.cells.notes.find(placed.cell);
    return notes == view_.table.cells.notes.end() ? content : content + marks(notes->second);
  }

  std::string styled(const Text& text) const {
    return styled(escaped(view_.text(text)), text.symbol);
  }

  static std::string styled(std::string content, bool symbol) {
    return symbol ? '*' + content + '*' : content;
  }

  void write_notes() {
    if (view_.captioned()) {
      ((out_ += "\n*") += escaped(document_.word("Note."))) += "* ";
      (out_ += escaped_lines(view_.text(*view_.table.caption))) += '\n';
    }
    for (uint32_t mark = 0; mark < view_.layout.notes.size(); ++mark) {
      ((out_ += '\n') += raised_letters(mark)) += ' ';
      (out_ += escaped_lines(view_.text(view_.table.notes[view_.layout.notes[mark]]))) += '\n';
    }
  }

  std::string& out_;
  const Document& document_;
  TableView view_;
};

class MarkdownReport {
 public:
  explicit MarkdownReport(const Document& document) : document_(document) {
    style_ = document.numbers;
    style_.minus = "\u2212";
  }

  std::string write() {
    ((out_ += "# ") += escaped(report_title(document_))) += '\n';
    for (const Entry& entry : outline(document_)) {
      out_ += '\n';
      std::visit([&](const auto* part) { write(*part, entry); }, entry.content);
    }
    return std::move(out_);
  }

 private:
  void write(const output::Section& section, const Entry& entry) {
    out_.append(std::min(entry.level + 1, kDeepestHeading), '#');
    ((out_ += ' ') += escaped(restyled(section.title, style_))) += '\n';
  }

  void write(const Table& table, const Entry& entry) {
    MarkdownTable writer(out_, document_, table);
    write_title(entry, restyled(table.title, style_),
                writer.marks(writer.view().layout.title_notes));
    writer.write();
  }

  void write(const output::Message& message, const Entry&) {
    ((out_ += "**") += escaped(severity_word(message.severity, document_))) += "** ";
    (out_ += escaped_lines(restyled(message.text, style_))) += '\n';
  }

  void write(const Chart& chart, const Entry& entry) {
    const chart::Figure figure(chart, document_);
    write_title(entry, figure.title(), "");
    (out_ += escaped_lines(figure.description())) += '\n';
    for (const chart::FigureTable& data : chart::figure_tables(figure.binding(), kMostRows))
      write_data(data);
  }

  void write_title(const Entry& entry, const std::string& title, const std::string& marks) {
    ((out_ += "**") += escaped(numbered(entry, document_))) += "**\\\n";
    const std::string words = escaped_lines(title);
    if (!words.empty()) ((out_ += '*') += words) += '*';
    (out_ += marks) += "\n\n";
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
    return escaped(number != nullptr ? output::shown(*number, style_)
                                     : restyled(table.texts[std::get<uint32_t>(value)], style_));
  }

  const Document& document_;
  output::NumberStyle style_;
  std::string out_;
};

}  // namespace

std::string render_markdown(const Document& document, const Options&) {
  return MarkdownReport(document).write();
}

}  // namespace hierfit::report
