#include "embedded/editor/embed_histogram.h"

#include <algorithm>

#include "embedded/chart/chart_data.h"
#include "embedded/chart/chart_text.h"
#include "embedded/chart/parse_markup.h"
#include "embedded/error.h"
#include "embedded/framework/number_text.h"
#include "embedded/shortfall.h"

namespace hierfit::editor {

using chart::Element;
using output::ChartColumn;
using output::ChartSource;
using output::ChartVariable;

namespace {

constexpr char kMessageName[] = "chart document";
constexpr std::string_view kParts[] = {"graph", "texts", "data", "style"};

/// Byte offset of the end tag of the place for a histogram; 0 when there is none that is free.
size_t place_in(Element& graph) {
  for (const Element* element : output::elements_of(graph)) {
    if (element->name == "inset") return element->content.empty() ? element->end_tag : 0;
  }
  return 0;
}

void add_row(Element& values, const ChartColumn& column, size_t row) {
  switch (column.kind(row)) {
    case ChartColumn::Kind::Unset:
      values.add("u");
      return;
    case ChartColumn::Kind::Number:
      values.add("n").set_text(shortest_text(column.number(row)));
      return;
    case ChartColumn::Kind::Text:
      values.add("s").content.emplace_back(chart::xml_characters(column.text(row)));
  }
}

void add_values(Element& variable, const ChartColumn& column) {
  Element& values = variable.add("values");
  for (size_t row = 0; row < column.rows(); ++row) {
    add_row(values, column, row);
  }
}

void fill_source(Element& element, const ChartSource& source) {
  for (Element* variable : element.children("variable")) {
    const auto found =
        std::ranges::find(source.variables, variable->value("name"), &ChartVariable::name);
    if (found != source.variables.end()) add_values(*variable, found->values);
  }
}

void fill(Element& data, const std::vector<ChartSource>& sources) {
  for (Element* element : data.children("source")) {
    const auto found = std::ranges::find(sources, element->value("name"), &ChartSource::name);
    if (found != sources.end()) fill_source(*element, *found);
  }
}

std::string embedded_text(const Element& histogram, int32_t field_type) {
  Element embedded;
  embedded.name = "embedded";
  embedded.set("kind", std::string(histogram.value("kind")));
  embedded.set("fieldType", std::to_string(std::max(field_type, 0)));
  for (const Element* part : histogram.children()) {
    if (std::ranges::find(kParts, part->name) != std::end(kParts)) {
      embedded.content.emplace_back(*part);
    }
  }
  std::string text;
  output::append_markup(text, embedded);
  return text;
}

}  // namespace

std::string embed_histogram(std::string_view graph,
                            std::string_view histogram,
                            std::string_view stream,
                            int32_t field_type) {
  std::string text = chart::xml_characters(graph);
  const std::vector<ChartSource> sources = chart::read_data_stream(stream);
  if (sources.empty()) return {};
  try {
    Element outer = chart::parse_markup(text, kMessageName);
    Element inner = chart::parse_markup(chart::xml_characters(histogram), kMessageName);
    const size_t place = place_in(outer);
    Element* data = inner.child("data");
    if (place == 0 || data == nullptr) return {};
    fill(*data, sources);
    text.insert(place, embedded_text(inner, field_type));
  } catch (const DocumentError& error) {
    note_shortfall(Shortfall::Of::Chart, error);
    return {};
  }
  return text;
}

}  // namespace hierfit::editor
