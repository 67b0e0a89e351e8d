// The JSON form: the output document as it is, member by member (docs/report.schema.json).
#include <algorithm>
#include <vector>

#include "report/append.h"
#include "report/json/json_text.h"
#include "report/report.h"
#include "report/typeset/blocks.h"

namespace hierfit::report {

using output::Chart;
using output::ChartColumn;
using output::ChartVariable;
using output::kNone;
using output::Number;
using output::Table;
using output::Text;

namespace {

/// The first lines say what this is; later members of a version may grow, none goes away.
constexpr std::string_view kKind = "hierfit report";
constexpr int kVersion = 1;

/// The code of a chart variable's print format that marks strings.
constexpr uint8_t kStringType = 1;

class JsonReport {
 public:
  explicit JsonReport(const output::Document& document) : document_(document) {}

  std::string write() {
    out_ += "{\"report\":";
    json::append_string(out_, kKind);
    member("version", kVersion);
    member("title", document_.title);
    member("language", document_.language);
    member("direction", document_.right_to_left ? "rtl" : "ltr");
    key("about");
    write_about(document_.about);
    key("content");
    write_items(document_.content);
    out_ += "}\n";
    return std::move(out_);
  }

 private:
  // Each of these opens with the comma of a further member.
  void key(std::string_view name) { append(out_, ",\"", name, "\":"); }
  void member(std::string_view name, std::string_view text) {
    key(name);
    json::append_string(out_, text);
  }
  void member(std::string_view name, int64_t number) {
    key(name);
    json::append_integer(out_, number);
  }
  void flag(std::string_view name, bool value) {
    key(name);
    out_ += value ? "true" : "false";
  }
  void member(std::string_view name, const Text& text) {
    key(name);
    write_text(text);
  }

  template <class List, class Write>
  void list(const List& items, Write write) {
    out_ += '[';
    bool first = true;
    for (const auto& item : items) {
      if (!first) out_ += ',';
      first = false;
      write(item);
    }
    out_ += ']';
  }
  void indices(std::string_view name, const std::vector<uint32_t>& values) {
    key(name);
    list(values, [this](uint32_t value) { json::append_integer(out_, value); });
  }

  /// A text is a string; one with numbers in it is an object that also gives those.
  void write_text(const Text& text) {
    if (text.numbers.empty()) return json::append_string(out_, text.shown);
    out_ += "{\"shown\":";
    json::append_string(out_, text.shown);
    key("numbers");
    list(text.numbers, [this](const output::NumberSpan& span) {
      out_ += "{\"begin\":";
      json::append_integer(out_, span.begin);
      member("length", span.length);
      write_number(span.number);
      out_ += '}';
    });
    out_ += '}';
  }

  void write_number(const Number& number) {
    key("value");
    if (number.missing()) {
      out_ += "null";
    } else {
      json::append_double(out_, number.value);
    }
    key("format");
    append(out_, '"', output::format_name(number.format), '"');
    if (number.format == output::Format::Fixed) member("decimals", number.decimals);
  }

  /// Facts by their keys.
  void write_about(const output::About& about) {
    out_ += "{\"facts\":{";
    bool first = true;
    for (const output::Fact& fact : about.facts) {
      out_ += first ? "\n" : ",\n";
      first = false;
      json::append_string(out_, fact.key);
      out_ += ":{\"label\":";
      write_text(fact.label);
      key("values");
      list(fact.values, [this](const Text& value) { write_text(value); });
      out_ += '}';
    }
    out_ += '}';
    key("messages");
    list(about.messages, [this](const output::Message& message) {
      out_ += '\n';
      write_item(message);
    });
    out_ += '}';
  }

  void write_items(const output::Section& section) {
    list(section.items, [this](const output::Item& item) {
      out_ += '\n';
      std::visit([this](const auto& content) { write_item(*content); }, item);
    });
  }

  void write_item(const output::Section& section) {
    out_ += "{\"kind\":\"section\"";
    member("title", section.title);
    key("items");
    write_items(section);
    out_ += '}';
  }

  void write_item(const output::Message& message) {
    out_ += "{\"kind\":\"message\"";
    member("severity", severity_name(message.severity));
    if (!message.code.empty()) member("code", message.code);
    member("text", message.text);
    out_ += '}';
  }

  void write_item(const Chart& chart) {
    out_ += "{\"kind\":\"chart\"";
    member("title", chart.title);
    member("subtype", chart.kind);
    member("description", chart.description);
    key("sources");
    list(chart.sources, [this](const output::ChartSource& each) { write_source(each); });
    member("document", output::markup_of(chart.document));
    out_ += '}';
  }

  void write_source(const output::ChartSource& source) {
    out_ += "\n{\"name\":";
    json::append_string(out_, source.name);
    member("rows", static_cast<int64_t>(source.rows));
    key("variables");
    list(source.variables, [this](const ChartVariable& each) { write_variable(each); });
    out_ += '}';
  }

  void write_variable(const ChartVariable& variable) {
    out_ += "\n{\"name\":";
    json::append_string(out_, variable.name);
    member("role", variable.role);
    if (!variable.label.empty()) member("label", variable.label);
    if (!variable.prefix.empty()) member("prefix", variable.prefix);
    flag("categorical", variable.categorical);
    if (variable.format) write_format(*variable.format);
    write_value_labels(variable);
    key("values");
    write_column(variable.values);
    out_ += '}';
  }

  void write_format(const output::ChartFormat& format) {
    flag("holdsStrings", format.type == kStringType);
    member("width", format.width);
    member("decimals", format.decimals);
  }

  void write_value_labels(const ChartVariable& variable) {
    if (variable.number_labels.empty() && variable.text_labels.empty()) return;
    key("valueLabels");
    out_ += '[';
    const size_t begin = out_.size();
    for (const auto& labelled : variable.number_labels) {
      write_value_label(begin, labelled.second, [&] { append_number(labelled.first); });
    }
    for (const auto& labelled : variable.text_labels) {
      write_value_label(begin, labelled.second, [&] { append_plain(labelled.first); });
    }
    out_ += ']';
  }

  template <class Write>
  void write_value_label(size_t begin, const std::string& label, Write write_value) {
    out_ += out_.size() == begin ? "{\"value\":" : ",{\"value\":";
    write_value();
    member("label", label);
    out_ += '}';
  }

  /// A row each: a number, a string, or null for a row that holds nothing.
  void write_column(const ChartColumn& column) {
    out_ += '[';
    for (size_t row = 0; row < column.rows(); ++row) {
      if (row > 0) out_ += ',';
      switch (column.kind(row)) {
        case ChartColumn::Kind::Unset:
          out_ += "null";
          break;
        case ChartColumn::Kind::Number:
          append_number(column.number(row));
          break;
        case ChartColumn::Kind::Text:
          append_plain(column.text(row));
      }
    }
    out_ += ']';
  }

  /// A number that does not exist is null, as in a cell.
  void append_number(double value) {
    if (Number{value}.missing()) {
      out_ += "null";
    } else {
      json::append_double(out_, value);
    }
  }

  void append_plain(std::string_view text) {
    if (text.find_first_of("&<") == std::string_view::npos) {
      json::append_string(out_, text);
    } else {
      json::append_string(out_, output::plain_text(text));
    }
  }

  void write_item(const Table& table) {
    out_ += "{\"kind\":\"table\"";
    member("title", table.title);
    member("subtype", table.subtype);
    member("minDataColumnWidth", table.min_data_column_width);
    key("dimensions");
    list(table.dimensions, [this](const output::Dimension& each) { write_dimension(each); });
    key("cells");
    write_cells(table);
    key("notes");
    list(table.notes, [this](const Text& note) { write_text(note); });
    indices("tableNotes", table.table_notes);
    key("caption");
    if (table.caption) {
      write_text(*table.caption);
    } else {
      out_ += "null";
    }
    out_ += '}';
  }

  void write_dimension(const output::Dimension& dimension) {
    out_ += "\n{\"place\":";
    out_ += dimension.place == output::Place::Rows ? "\"rows\"" : "\"columns\"";
    member("level", dimension.level);
    member("title", dimension.title);
    flag("titleShown", dimension.title_shown);
    flag("labelsShown", dimension.labels_shown);
    key("nodes");
    list(dimension.nodes, [this](const output::Node& node) { write_node(node); });
    out_ += '}';
  }

  void write_node(const output::Node& node) {
    out_ += "{\"label\":";
    write_text(node.label);
    if (node.parent != kNone) member("parent", node.parent);
    if (!node.is_group()) member("category", node.leaf);
    if (!node.notes.empty()) indices("notes", node.notes);
    out_ += '}';
  }

  void write_cells(const Table& table) {
    out_ += '[';
    for (size_t cell = 0; cell < table.cells.size(); ++cell) {
      out_ += cell == 0 ? "\n" : ",\n";
      write_cell(table, cell);
    }
    out_ += ']';
  }

  void write_cell(const Table& table, size_t cell) {
    out_ += "{\"at\":[";
    const uint32_t* at = table.cells.at(cell);
    for (uint32_t d = 0; d < table.cells.dimensions; ++d) {
      if (d > 0) out_ += ',';
      if (at[d] == kNone) {
        out_ += "null";
      } else {
        json::append_integer(out_, at[d]);
      }
    }
    out_ += ']';
    write_value(table, table.cells.values[cell]);
    if (!table.cells.notes.empty()) {
      auto found = table.cells.notes.find(static_cast<uint32_t>(cell));
      if (found != table.cells.notes.end()) indices("notes", found->second);
    }
    out_ += '}';
  }

  void write_value(const Table& table, const output::CellValue& value) {
    if (const Number* number = std::get_if<Number>(&value)) {
      write_number(*number);
      shown_.clear();
      output::append_shown(shown_, *number, document_.numbers);
      member("shown", std::string_view(shown_));
    } else {
      member("text", table.texts[std::get<uint32_t>(value)]);
    }
  }

  const output::Document& document_;
  std::string out_;
  std::string shown_;
};

}  // namespace

std::string render_json(const output::Document& document, const Options&) {
  return JsonReport(document).write();
}

}  // namespace hierfit::report
