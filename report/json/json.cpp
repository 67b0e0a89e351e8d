// The JSON form: the output document as it is, member by member (docs/report.schema.json).
#include <algorithm>
#include <array>
#include <vector>

#include "report/json/json_text.h"
#include "report/report.h"

namespace hierfit::report {

using output::kNone;
using output::Number;
using output::Table;
using output::Text;

namespace {

constexpr std::array<std::string_view, 3> kSeverities = {"note", "warning", "error"};

/// The first lines say what this is; later members of a version may grow, none goes away.
constexpr std::string_view kKind = "hierfit report";
constexpr int kVersion = 1;

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
    key("content");
    write_items(document_.content);
    out_ += "}\n";
    return std::move(out_);
  }

 private:
  // Each of these opens with the comma of a further member.
  void key(std::string_view name) { ((out_ += ",\"") += name) += "\":"; }
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
    ((out_ += '"') += output::format_name(number.format)) += '"';
    if (number.format == output::Format::Fixed) member("decimals", number.decimals);
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
    member("severity", kSeverities[static_cast<size_t>(message.severity)]);
    member("text", message.text);
    out_ += '}';
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
