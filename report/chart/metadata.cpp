#include "report/chart/metadata.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "report/chart/values.h"
#include "report/xml_text.h"

namespace hierfit::report::chart {
namespace {

using output::Chart;
using output::ChartSource;
using output::ChartVariable;
using Kind = output::ChartColumn::Kind;

class MetadataWriter {
 public:
  MetadataWriter(std::string& out, size_t room) : out_(out), room_(room) {}

  void write(const Chart& chart) {
    out_ += "<metadata>\n<data xmlns=\"urn:x-hierfit:chart-data\"";
    attribute("kind", chart.kind);
    out_ += ">\n";
    for (const ChartSource& source : chart.sources)
      write_source(source);
    out_ += "</data>\n</metadata>\n";
  }

 private:
  void attribute(std::string_view name, std::string_view value) {
    ((out_ += ' ') += name) += "=\"";
    append_escaped(out_, value);
    out_ += '"';
  }

  void number(double value) {
    std::array<char, 32> digits;
    out_.append(digits.data(),
                std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr);
  }

  void write_source(const ChartSource& source) {
    out_ += "<source";
    attribute("name", source.name);
    attribute("rows", std::to_string(source.rows));
    out_ += ">\n";
    for (const ChartVariable& variable : source.variables)
      write_variable(variable);
    bounded([&](size_t most) { return source.rows <= kMostDataRows && write_rows(source, most); });
    out_ += "</source>\n";
  }

  /// Writes what `write` does, with the bytes it may take, into the room that is left; when it says
  /// that there is too little, where else to find it.
  template <class Write>
  void bounded(Write write) {
    const size_t begin = out_.size();
    if (!write(room_)) {
      out_.resize(begin);
      out_ += "<see form=\"json\"/>\n";
    }
    room_ -= std::min(room_, out_.size() - begin);
  }

  void write_variable(const ChartVariable& variable) {
    out_ += "<variable";
    attribute("name", variable.name);
    if (variable.role != variable.name) attribute("role", variable.role);
    if (!variable.label.empty()) attribute("label", variable.label);
    if (variable.number_labels.empty() && variable.text_labels.empty()) {
      out_ += "/>\n";
      return;
    }
    out_ += '>';
    bounded([&](size_t most) { return write_labels(variable, most); });
    out_ += "</variable>\n";
  }

  /// False when they take more than `most` bytes.
  bool write_labels(const ChartVariable& variable, size_t most) {
    const size_t begin = out_.size();
    for (const auto& [value, label] : variable.number_labels) {
      out_ += "<label number=\"";
      number(value);
      out_ += '"';
      write_label(label);
      if (out_.size() - begin > most) return false;
    }
    for (const auto& [value, label] : variable.text_labels) {
      out_ += "<label";
      attribute("text", output::plain_text(value));
      write_label(label);
      if (out_.size() - begin > most) return false;
    }
    return true;
  }

  void write_label(const std::string& label) {
    out_ += '>';
    append_escaped(out_, label);
    out_ += "</label>";
  }

  /// False when they take more than `most` bytes.
  bool write_rows(const ChartSource& source, size_t most) {
    const size_t begin = out_.size();
    for (size_t row = 0; row < source.rows; ++row) {
      out_ += "<row>";
      for (const ChartVariable& variable : source.variables)
        write_value(variable, row);
      out_ += "</row>\n";
      if (out_.size() - begin > most) return false;
    }
    return true;
  }

  void write_value(const ChartVariable& variable, size_t row) {
    if (!has_value(variable, row)) {
      out_ += "<u/>";
    } else if (variable.values.kind(row) == Kind::Number) {
      out_ += "<n>";
      number(variable.values.number(row));
      out_ += "</n>";
    } else {
      out_ += "<s>";
      append_escaped(out_, output::plain_text(variable.values.text(row)));
      out_ += "</s>";
    }
  }

  std::string& out_;
  size_t room_;
};

}  // namespace

void append_metadata(std::string& out, const Chart& chart, size_t room) {
  MetadataWriter(out, room).write(chart);
}

}  // namespace hierfit::report::chart
