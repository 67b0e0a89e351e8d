#include "embedded/chart/complete.h"

#include <algorithm>
#include <memory>

#include "embedded/chart/completion.h"
#include "embedded/framework/number_text.h"
#include "embedded/strings/pattern.h"

namespace hierfit::chart {

using output::Chart;
using output::ChartColumn;
using output::ChartSource;
using output::ChartVariable;
using output::Element;
using output::Section;
using output::Table;

namespace {

constexpr size_t kMostNames = 10;
constexpr std::string_view kIntervalKey = "^1% Confidence Interval";
constexpr std::string_view kTrialsKey = "Target ^1/^2";

/// Which table of a subtype the background keeps, and where.
struct KeptTable {
  std::string_view subtype;
  const Table* Background::*place;
};
constexpr KeptTable kKeptTables[] = {{"FixedCoefficients", &Background::coefficients},
                                     {"FixedEffects", &Background::effects}};

void gather(const Table& table, Background& background) {
  for (const KeptTable& kept : kKeptTables) {
    if (table.subtype == kept.subtype) background.*kept.place = &table;
  }
  if (table.subtype == "Estimates") background.means.push_back(&table);
  for (const output::Text& note : table.notes) {
    background.of_trials = background.of_trials || note.key == kTrialsKey;
  }
  if (!background.interval.empty()) return;
  for (const output::Dimension& dimension : table.dimensions) {
    const auto head =
        std::ranges::find(dimension.nodes, kIntervalKey, [](const auto& n) { return n.label.key; });
    if (head != dimension.nodes.end()) background.interval = head->label.shown;
  }
}

void gather(const Section& section, Background& background) {
  for (const output::Item& item : section.items) {
    if (const auto* table = std::get_if<std::unique_ptr<Table>>(&item)) gather(**table, background);
    if (const auto* inner = std::get_if<std::unique_ptr<Section>>(&item)) {
      gather(**inner, background);
    }
  }
}

struct Kind {
  std::string_view name;
  void (*complete)(const Work& work);
};
constexpr Kind kKinds[] = {
    {"estimatedMeans", complete_top_means}, {"customEffects", complete_block_means},
    {"pairwiseContrasts", complete_pairs},  {"simpleContrasts", complete_spans},
    {"effectDiagram", complete_diagram},
};

void complete(Section& section, const Background& background) {
  for (output::Item& item : section.items) {
    if (auto* inner = std::get_if<std::unique_ptr<Section>>(&item)) complete(**inner, background);
    auto* chart = std::get_if<std::unique_ptr<Chart>>(&item);
    if (chart == nullptr) continue;
    const auto* kind = std::ranges::find(kKinds, (*chart)->kind, &Kind::name);
    if (kind != std::end(kKinds)) kind->complete({**chart, section, background});
  }
}

}  // namespace

std::string Background::filled(std::string_view key,
                               std::initializer_list<std::string> arguments) const {
  std::vector<PatternArgument> texts;
  for (const std::string& argument : arguments)
    texts.emplace_back(output::Text{.shown = argument, .numbers = {}});
  return fill_pattern(strings.text(key), texts).shown;
}

std::string Background::listed(const std::vector<std::string>& names) const {
  std::string list;
  const size_t shown = std::min(names.size(), kMostNames);
  for (size_t i = 0; i < shown; ++i)
    (list += i == 0 ? "" : "; ") += names[i];
  if (names.size() > shown) {
    (list += "; ") += filled("and ^1 more", {std::to_string(names.size() - shown)});
  }
  return list;
}

Element* Work::graph(std::string_view name) const {
  Element* whole = graph();
  return whole == nullptr ? nullptr : whole->child(name);
}

void Work::note(std::string_view text) const {
  if (Element* texts = chart.document.child("texts")) texts->add("note").set_text(text);
}

void Work::retitle(std::string title) const {
  if (Element* texts = chart.document.child("texts")) {
    if (Element* element = texts->child("title")) {
      element->content.clear();
      element->set_text(title);
    }
  }
  chart.title = std::move(title);
}

Element* Work::label_along_y(const std::string& otherwise) const {
  Element* whole = graph();
  if (whole == nullptr) return nullptr;
  for (Element* axis : whole->children("axis")) {
    if (axis->value("dimension") != "y") continue;
    if (Element* label = axis->child("label")) return label;
    Element& label = axis->add("label");
    label.set_text(otherwise);
    return &label;
  }
  return nullptr;
}

ChartVariable* by_role(ChartSource* source, std::string_view role) {
  if (source == nullptr) return nullptr;
  const auto found = std::ranges::find(source->variables, role, &ChartVariable::role);
  return found == source->variables.end() ? nullptr : &*found;
}

ChartSource* source_of(Chart& chart, std::string_view name) {
  const auto found = std::ranges::find(chart.sources, name, &ChartSource::name);
  return found == chart.sources.end() ? nullptr : &*found;
}

ChartVariable& add_variable(ChartSource& source,
                            std::string role,
                            std::string label,
                            std::optional<output::Format> statistic) {
  ChartVariable& added = source.variables.emplace_back();
  added.name = role;
  added.role = std::move(role);
  added.label = std::move(label);
  added.statistic = statistic;
  added.categorical = !statistic;
  return added;
}

double number_at(const ChartVariable* variable, size_t row) {
  if (variable == nullptr || variable->values.kind(row) != ChartColumn::Kind::Number) {
    return output::kSystemMissing;
  }
  return variable->values.number(row);
}

std::string category_at(const ChartVariable& variable, size_t row) {
  switch (variable.values.kind(row)) {
    case ChartColumn::Kind::Unset:
      return {};
    case ChartColumn::Kind::Number: {
      const double number = variable.values.number(row);
      const std::string* label = variable.label_of(number);
      return label != nullptr ? *label : shortest_text(number);
    }
    case ChartColumn::Kind::Text: {
      const std::string& text = variable.values.text(row);
      const std::string* label = variable.label_of(text);
      return label != nullptr ? *label : output::plain_text(text);
    }
  }
  return {};
}

void unset_pair(ChartVariable* variable, size_t pair) {
  if (variable == nullptr) return;
  variable->values.unset(2 * pair);
  variable->values.unset(2 * pair + 1);
}

void set_pair(ChartVariable& variable, size_t pair, double first, double second) {
  variable.values.set(2 * pair, first);
  variable.values.set(2 * pair + 1, second);
}

void set_number(ChartVariable& variable, size_t row, const output::Number& number) {
  if (number.missing()) {
    variable.values.unset(row);
  } else {
    variable.values.set(row, number.value);
  }
}

void add_tooltip(Element& element, std::string_view role) {
  element.add("tooltip").set("variable", std::string(role));
}

void complete_charts(output::Document& document,
                     const StringTable& strings,
                     const DataDictionary& dictionary) {
  Background background{.strings = strings, .dictionary = dictionary, .interval = {}, .means = {}};
  gather(document.content, background);
  complete(document.content, background);
}

}  // namespace hierfit::chart
