#include "embedded/chart/sent_chart.h"

#include <algorithm>
#include <iterator>
#include <unordered_map>
#include <unordered_set>

#include "embedded/chart/variable.h"

namespace hierfit::chart {

using output::ChartSource;
using output::ChartVariable;

namespace {

/// Descriptions of variables, by source, then by name.
using Descriptions =
    std::unordered_map<std::string, std::unordered_map<std::string, ChartVariable>>;

Descriptions by_name(std::vector<ChartSource> sources) {
  Descriptions descriptions;
  for (ChartSource& source : sources) {
    auto& variables = descriptions[source.name];
    for (ChartVariable& variable : source.variables) {
      std::string name = variable.name;
      variables.emplace(std::move(name), std::move(variable));
    }
  }
  return descriptions;
}

/// Lays the document's description over the variables of a source, whose values stay.
void describe(ChartSource& source, Descriptions& descriptions) {
  const auto described = descriptions.find(source.name);
  for (ChartVariable& variable : source.variables) {
    source.rows = std::max(source.rows, variable.values.rows());
    if (described == descriptions.end()) continue;
    const auto found = described->second.find(variable.name);
    if (found == described->second.end()) continue;
    output::ChartColumn values = std::move(variable.values);
    variable = std::move(found->second);
    variable.values = std::move(values);
  }
}

bool has_values(const ChartSource& source) {
  return std::ranges::any_of(source.variables,
                             [](const ChartVariable& each) { return each.values.rows() > 0; });
}

void drop_values(Element& data) {
  for (Element* source : data.children("source")) {
    for (Element* variable : source->children("variable")) {
      variable->remove_children("values");
    }
  }
}

/// The sources of an embedded graph, named apart from those that are there.
std::vector<ChartSource> embedded_sources(Element& data, std::unordered_set<std::string>& names) {
  std::vector<ChartSource> sources = read_sources(&data);
  const std::vector<Element*> elements = data.children("source");
  for (size_t i = 0; i < sources.size(); ++i) {
    while (!names.insert(sources[i].name).second) {
      sources[i].name += "_embedded";
    }
    elements[i]->set("name", sources[i].name);
  }
  drop_values(data);
  return sources;
}

/// Names of all sources that the data have or the document speaks of.
std::unordered_set<std::string> names_of(const std::vector<ChartSource>& data,
                                         const std::vector<ChartSource>& described) {
  std::unordered_set<std::string> names;
  for (const auto* list : {&data, &described}) {
    for (const ChartSource& source : *list) {
      names.insert(source.name);
    }
  }
  return names;
}

/// Sources whose values the document itself holds and the data lack.
void add_inline(std::vector<ChartSource>& data, const std::vector<ChartSource>& described) {
  for (const ChartSource& source : described) {
    const bool is_there = std::ranges::find(data, source.name, &ChartSource::name) != data.end();
    if (has_values(source) && !is_there) data.push_back(source);
  }
}

std::string title_of(Element& document) {
  Element* texts = document.child("texts");
  const Element* title = texts == nullptr ? nullptr : texts->child("title");
  return title == nullptr ? std::string() : title->text();
}

}  // namespace

output::Chart join(Element& document, std::vector<ChartSource> data, std::string description) {
  Element* data_element = document.child("data");
  std::vector<ChartSource> described = read_sources(data_element);
  std::unordered_set<std::string> names = names_of(data, described);
  add_inline(data, described);
  if (data_element != nullptr) drop_values(*data_element);
  Descriptions descriptions = by_name(std::move(described));
  for (ChartSource& source : data) {
    describe(source, descriptions);
  }
  // Elements of values go while the graphs are walked, and a graph may stand among the values of
  // another: inner ones come first.
  std::vector<Element*> graphs = elements_of(document);
  std::erase_if(graphs, [](const Element* element) { return element->name != "embedded"; });
  std::ranges::reverse(graphs);
  const auto own = static_cast<std::ptrdiff_t>(data.size());
  for (Element* graph : graphs) {
    Element* inner = graph->child("data");
    if (inner == nullptr) continue;
    std::vector<ChartSource> sources = embedded_sources(*inner, names);
    data.insert(data.begin() + own, std::make_move_iterator(sources.begin()),
                std::make_move_iterator(sources.end()));
  }
  output::Chart chart;
  chart.kind = document.value("kind");
  chart.title = title_of(document);
  if (chart.title.empty()) chart.title = description;
  chart.description = description.empty() ? chart.title : std::move(description);
  chart.document = document;
  chart.sources = std::move(data);
  return chart;
}

}  // namespace hierfit::chart
