// The CSV form: every cell of every table as a line, or a folder with a file for each table and for
// the data of each chart.
#include <algorithm>
#include <array>
#include <charconv>

#include "report/append.h"
#include "report/chart/binding.h"
#include "report/file_name.h"
#include "report/report.h"
#include "report/typeset/blocks.h"
#include "report/typeset/flat_heads.h"
#include "report/typeset/texts.h"

namespace hierfit::report {

using output::Chart;
using output::ChartSource;
using output::ChartVariable;
using output::Document;
using output::Table;

namespace {

/// Between labels that stand in one field.
constexpr std::string_view kDivider = " / ";

constexpr std::array<std::string_view, 10> kColumns = {
    "table",         "subtype", "title", "row_number", "row",
    "column_number", "column",  "value", "shown",      "notes"};

/// Whether a program reads the text as a number.
bool is_number(std::string_view text) {
  double value = 0;
  const char* end = text.data() + text.size();
  if (text.starts_with('+')) text.remove_prefix(1);
  const auto [stop, error] = std::from_chars(text.data(), end, value);
  return error == std::errc() && stop == end;
}

/// Writes lines of fields: those that need it in quotation marks, lines ended by CR and LF.
class Lines {
 public:
  /// A text. One that spreadsheets would take for a formula gets an apostrophe ahead of it.
  void text(std::string_view text) {
    const bool formula = !text.empty() && std::string_view("=+-@\t\r").find(text[0]) != text.npos;
    field(formula && !is_number(text) ? "'" + std::string(text) : text);
  }
  /// A number in the fewest digits that read back as itself; nothing for a missing one.
  void number(const output::Number& number) {
    std::array<char, 32> digits;
    char* end = digits.data();
    if (!number.missing()) {
      end = std::to_chars(digits.data(), digits.data() + digits.size(), number.value).ptr;
    }
    plain({digits.data(), end});
  }
  void number(size_t number) { plain(std::to_string(number)); }
  /// What needs no guard: a number as a reader sees it.
  void field(std::string_view text) {
    divide();
    if (text.find_first_of("\",\r\n") == text.npos) {
      out_ += text;
      return;
    }
    out_ += '"';
    for (const char c : text) {
      if (c == '"') out_ += '"';
      out_ += c;
    }
    out_ += '"';
  }
  void end() {
    out_ += "\r\n";
    begun_ = false;
  }
  std::string take() { return std::move(out_); }

 private:
  void divide() {
    if (begun_) out_ += ',';
    begun_ = true;
  }
  void plain(std::string_view text) {
    divide();
    out_ += text;
  }

  std::string out_;
  bool begun_ = false;
};

/// A table as lines, one a cell.
class TidyTable {
 public:
  TidyTable(Lines& lines, const Document& document, const Table& table, uint32_t number)
      : lines_(lines),
        view_(document, table),
        heads_(flat_heads(view_, kDivider)),
        title_(view_.text(table.title)),
        number_(number) {}

  void write() {
    for (uint32_t row = 0; row < view_.layout.rows; ++row) {
      std::string label;
      for (const std::string& part : heads_.rows[row])
        join(label, part);
      for (size_t i = view_.layout.row_begin[row]; i < view_.layout.row_begin[row + 1]; ++i)
        write_cell(row, label, i);
    }
  }

 private:
  static void join(std::string& text, std::string_view part) {
    if (!text.empty() && !part.empty()) text += kDivider;
    text += part;
  }

  void write_cell(uint32_t row, const std::string& label, size_t index) {
    const PlacedCell& placed = view_.layout.placed[index];
    lines_.number(number_);
    lines_.text(view_.table.subtype);
    lines_.text(title_);
    lines_.number(row + 1);
    lines_.text(label);
    lines_.number(placed.column + 1);
    lines_.text(heads_.columns[placed.column]);
    write_content(view_.cells.cells[index], placed);
    lines_.text(notes_of(row, placed));
    lines_.end();
  }

  void write_content(const AlignedCell& cell, const PlacedCell& placed) {
    if (cell.kind == CellKind::Text) {
      lines_.field("");
      lines_.text(view_.text(view_.table.texts[cell.begin]));
      return;
    }
    const output::Number& number = view_.number_of(placed);
    lines_.number(number);
    lines_.field(number.missing() ? "" : output::shown(number, view_.document.numbers));
  }

  /// The notes on the cell and on its heads, each once, in the order of their marks.
  std::string notes_of(uint32_t row, const PlacedCell& placed) const {
    std::vector<uint32_t> marks;
    const auto add = [&](const std::vector<uint32_t>& notes) {
      for (uint32_t note : notes)
        marks.push_back(view_.layout.marks[note]);
    };
    add(heads_.row_notes[row]);
    add(heads_.column_notes[placed.column]);
    const auto found = view_.table.cells.notes.find(placed.cell);
    if (found != view_.table.cells.notes.end()) add(found->second);
    std::ranges::sort(marks);
    marks.erase(std::unique(marks.begin(), marks.end()), marks.end());
    std::string text;
    for (uint32_t mark : marks)
      join(text, view_.text(view_.table.notes[view_.layout.notes[mark]]));
    return text;
  }

  Lines& lines_;
  TableView view_;
  FlatHeads heads_;
  std::string title_;
  uint32_t number_;
};

/// A table as it is laid out: a line of heads, and a line for each row.
std::string sheet_of(const Document& document, const Table& table) {
  const TableView view(document, table);
  const FlatHeads heads = flat_heads(view, kDivider);
  Lines lines;
  for (size_t stub = 0; stub < view.stubs(); ++stub) {
    const output::Text* title = view.stub_title(stub);
    lines.text(title == nullptr ? "" : view.text(*title));
  }
  for (const std::string& head : heads.columns)
    lines.text(head);
  lines.end();
  for (uint32_t row = 0; row < view.layout.rows; ++row) {
    for (const std::string& label : heads.rows[row])
      lines.text(label);
    size_t index = view.layout.row_begin[row];
    for (uint32_t column = 0; column < view.layout.columns; ++column) {
      if (index == view.layout.row_begin[row + 1] || view.layout.placed[index].column != column) {
        lines.field("");
        continue;
      }
      const AlignedCell& cell = view.cells.cells[index];
      if (cell.kind == CellKind::Text) {
        lines.text(view.text(table.texts[cell.begin]));
      } else {
        lines.number(view.number_of(view.layout.placed[index]));
      }
      ++index;
    }
    lines.end();
  }
  return lines.take();
}

/// The rows of a source; what is counted off has its labels, all else its numbers.
std::string sheet_of(const Document& document, const ChartSource& source) {
  Lines lines;
  std::vector<const ChartVariable*> variables;
  for (const ChartVariable& variable : source.variables) {
    if (variable.values.rows() > 0) variables.push_back(&variable);
  }
  for (const ChartVariable* variable : variables)
    lines.text(clean(chart::label_of(*variable)));
  lines.end();
  for (size_t row = 0; row < source.rows; ++row) {
    for (const ChartVariable* variable : variables) {
      if (!chart::has_value(*variable, row)) {
        lines.field("");
      } else if (variable->categorical || !chart::is_number(chart::number_at(variable, row))) {
        lines.text(clean(chart::shown_value(*variable, row, document.numbers)));
      } else {
        lines.number(output::Number{chart::number_at(variable, row)});
      }
    }
    lines.end();
  }
  return lines.take();
}

/// A line for each value of a fact, then one for each message: its key, what it is called, the
/// text.
std::string sheet_of(const Document& document, const output::About& about) {
  const Texts texts(document);
  Lines lines;
  for (const std::string_view head : {"key", "label", "value"})
    lines.field(head);
  lines.end();
  const auto line = [&](std::string_view key, std::string_view label, const output::Text& value) {
    lines.field(key);
    lines.text(label);
    lines.text(texts.shown(value));
    lines.end();
  };
  for (const output::Fact& fact : about.facts)
    for (const output::Text& value : fact.values)
      line(fact.key, texts.shown(fact.label), value);
  for (const output::Message& message : about.messages) {
    line(severity_name(message.severity), severity_word(message.severity, document), message.text);
  }
  return lines.take();
}

void add_chart(std::vector<File>& files,
               const Document& document,
               const Chart& chart,
               const std::string& name) {
  for (const ChartSource& source : chart.sources) {
    const size_t number = static_cast<size_t>(&source - chart.sources.data()) + 1;
    std::string file = "figure-" + name;
    if (number > 1) append(file, "-", number);
    files.push_back({file + ".csv", sheet_of(document, source)});
  }
}

}  // namespace

std::string render_csv(const Document& document, const Options&) {
  Lines lines;
  for (std::string_view column : kColumns)
    lines.field(column);
  lines.end();
  for (const Block& block : blocks_of(document)) {
    if (const auto* table = block.as<Table>()) {
      TidyTable(lines, document, *table, block.number).write();
    }
  }
  return lines.take();
}

std::vector<File> render_csv_folder(const Document& document, const Options&) {
  std::vector<File> files;
  const std::vector<Block> blocks = blocks_of(document);
  const auto count = [&](auto is_kind) {
    return static_cast<size_t>(std::ranges::count_if(blocks, is_kind));
  };
  const size_t tables = count([](const Block& block) { return block.as<Table>() != nullptr; });
  const size_t charts = count([](const Block& block) { return block.as<Chart>() != nullptr; });
  for (const Block& block : blocks) {
    if (const auto* table = block.as<Table>()) {
      const std::string name = file_name(block.number, tables, table->subtype, "table");
      files.push_back({name + ".csv", sheet_of(document, *table)});
    } else if (const auto* chart = block.as<Chart>()) {
      add_chart(files, document, *chart, file_name(block.number, charts, chart->kind, "chart"));
    } else if (const auto* about = block.as<output::About>()) {
      files.push_back({"about.csv", sheet_of(document, *about)});
    }
  }
  return files;
}

}  // namespace hierfit::report
