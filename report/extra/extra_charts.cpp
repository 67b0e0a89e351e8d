#include "report/extra/extra_charts.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <span>

#include "output/table_records.h"
#include "report/extra/random_part.h"
#include "report/wording.h"

namespace hierfit::report {
namespace {

using output::Chart;
using output::ChartSource;
using output::ChartVariable;
using output::ColumnKey;
using output::Document;
using output::Element;
using output::Format;
using output::Record;
using output::Section;
using output::Table;

constexpr std::string_view kInterval = "^1% Confidence Interval";
constexpr std::string_view kExpInterval = "^1% Confidence Interval for Exp(Coefficient)";
enum { kEstimate, kLower, kUpper, kSig, kColumns };

/// What a forest plot takes from a table.
struct Forest {
  std::string_view subtype;
  std::string_view kind;  ///< of the chart
  ColumnKey columns[kColumns];
  double reference;  ///< what an estimate without an effect is
  bool log;
};
constexpr Forest kForests[] = {
    {"FixedCoefficients",
     "coefficientForest",
     {{"Coefficient"}, {"Lower", kInterval}, {"Upper", kInterval}, {"Sig."}},
     0,
     false},
    {"FixedCoefficients",
     "exponentialForest",
     {{"Exp(Coefficient)"}, {"Lower", kExpInterval}, {"Upper", kExpInterval}, {"Sig."}},
     1,
     true},
    {"Contrasts",
     "contrastForest",
     {{"Contrast Estimate"}, {"Lower", kInterval}, {"Upper", kInterval}, {"Adj. Sig."}},
     0,
     false},
};

constexpr std::string_view kCovariances = "RandomEffects";

/// What stands at the head of a column or of a group of columns; empty when there is none.
std::string head_of(const Table& table, std::string_view key) {
  for (const output::Dimension& dimension : table.dimensions) {
    const auto found =
        std::ranges::find(dimension.nodes, key, [](const auto& node) { return node.label.key; });
    if (found != dimension.nodes.end()) return found->label.shown;
  }
  return {};
}

/// Which head of a line is its name; the others tell its panel.
size_t name_of(const Forest& forest, const std::vector<std::string>& titles) {
  return forest.subtype == "Contrasts" ? titles.size() - 1 : 0;
}

ChartVariable& add_variable(ChartSource& source, const char* role, std::string label) {
  ChartVariable& added = source.variables.emplace_back();
  added.name = added.role = role;
  added.label = std::move(label);
  added.categorical = true;
  return added;
}

ChartVariable& add_statistic(ChartSource& source,
                             const char* role,
                             std::string label,
                             Format format) {
  ChartVariable& added = add_variable(source, role, std::move(label));
  added.categorical = false;
  added.statistic = format;
  return added;
}

void set_number(ChartVariable& variable, size_t row, const output::Number& number) {
  if (!number.missing()) variable.values.set(row, number.value);
}

/// Two rows a line: the lower and the upper bound, and twice the rest.
void write_rows(ChartSource& source,
                const Forest& forest,
                const Table& table,
                const std::vector<Record>& records) {
  const std::vector<std::string> titles = output::head_titles(table);
  const size_t name = name_of(forest, titles);
  source.name = "rows";
  source.rows = 2 * records.size();
  source.variables.reserve(5);
  ChartVariable& names = add_variable(source, "name", titles[name]);
  ChartVariable& panels = add_variable(source, "panel", "");
  ChartVariable& estimates = add_statistic(
      source, "estimate", head_of(table, forest.columns[kEstimate].key), Format::Coefficient);
  ChartVariable& bounds = add_statistic(
      source, "bounds", head_of(table, forest.columns[kLower].group), Format::Coefficient);
  ChartVariable& significances = add_statistic(
      source, "significance", head_of(table, forest.columns[kSig].key), Format::Significance);
  for (size_t i = 0; i < records.size(); ++i) {
    const Record& record = records[i];
    std::string panel;
    for (size_t d = 0; d < titles.size(); ++d) {
      if (d == name) continue;
      (panel += panel.empty() ? "" : ", ") += titles[d] + ": " + record.heads[d];
    }
    for (const size_t row : {2 * i, 2 * i + 1}) {
      names.values.set(row, record.heads[name]);
      if (!panel.empty()) panels.values.set(row, panel);
      set_number(estimates, row, record.numbers[kEstimate]);
      set_number(bounds, row, record.numbers[row == 2 * i ? kLower : kUpper]);
      set_number(significances, row, record.numbers[kSig]);
    }
  }
}

Element& add_role(Element& parent, const char* role, const char* variable) {
  Element& added = parent.add(role);
  added.set("variable", variable);
  return added;
}

Element document_of(const Forest& forest,
                    const std::string& title,
                    const std::string& measure,
                    bool has_panels) {
  Element chart;
  chart.name = "chart";
  chart.set("kind", std::string(forest.kind));
  Element& graph = chart.add("graph");
  graph.set("layout", "rows");
  if (has_panels) {
    add_role(graph.add("faceting"), "variableReference", "panel");
    graph.add("facetLayout").add("facetLevel").set("across", "rows");
  }
  graph.add("axis").set("dimension", "x");
  Element& axis = graph.add("axis");
  axis.set("dimension", "y");
  if (forest.log) axis.set("log", "true");
  axis.add("label").set_text(measure);
  graph.add("lineGuide").set("y", forest.log ? "1" : "0");
  add_role(graph, "x", "name");
  Element& whisker = graph.add("interval");
  whisker.set("form", "whisker");
  whisker.set("rows", "pairs");
  add_role(whisker, "y", "bounds");
  Element& point = graph.add("point");
  point.set("rows", "first");
  add_role(point, "y", "estimate");
  add_role(point, "label", "significance");
  for (const char* role : {"name", "estimate", "bounds", "significance"})
    add_role(graph, "tooltip", role);
  chart.add("texts").add("title").set_text(title);
  chart.add("data");
  return chart;
}

/// The chart of a table; null when the table has fewer than two lines with an estimate and an
/// interval, which need no picture.
std::unique_ptr<Chart> chart_of(const Forest& forest,
                                const Table& table,
                                const Document& document) {
  if (output::head_titles(table).empty()) return nullptr;
  std::vector<Record> records = output::records_of(table, forest.columns);
  // Redundant coefficients, and what cannot be estimated, have no interval.
  std::erase_if(records, [](const Record& record) {
    return record.numbers[kEstimate].missing() ||
           (record.numbers[kLower].missing() && record.numbers[kUpper].missing());
  });
  if (records.size() < 2) return nullptr;
  const std::vector<std::string> titles = output::head_titles(table);
  const std::string subject = forest.subtype == "Contrasts" ? titles.back()
                              : forest.log ? head_of(table, forest.columns[kEstimate].key)
                                           : table.title.shown;
  auto chart = std::make_unique<Chart>();
  chart->kind = forest.kind;
  chart->title = filled(document.word("^1 with ^2"), subject, head_of(table, kInterval));
  chart->description = chart->title;
  chart->document = document_of(forest, chart->title, head_of(table, forest.columns[kEstimate].key),
                                titles.size() > 1);
  write_rows(chart->sources.emplace_back(), forest, table, records);
  return chart;
}

void collect(const Section& section, std::vector<const Table*>& tables) {
  for (const output::Item& item : section.items) {
    if (const auto* inner = std::get_if<std::unique_ptr<Section>>(&item)) collect(**inner, tables);
    if (const auto* table = std::get_if<std::unique_ptr<Table>>(&item)) {
      tables.push_back(table->get());
    }
  }
}

}  // namespace

void add_extra_charts(Document& document) {
  std::vector<const Table*> tables;
  collect(document.content, tables);
  auto section = std::make_unique<Section>();
  section->title.shown = document.word("Made by the report");
  for (const Table* table : tables) {
    if (table->subtype != kCovariances) continue;
    if (auto random_part = random_part_of(*table, document)) {
      section->items.emplace_back(std::move(random_part));
    }
  }
  for (const Table* table : tables) {
    for (const Forest& forest : kForests) {
      if (table->subtype != forest.subtype) continue;
      if (auto chart = chart_of(forest, *table, document)) {
        section->items.emplace_back(std::move(chart));
      }
    }
  }
  if (!section->items.empty()) document.content.items.emplace_back(std::move(section));
}

}  // namespace hierfit::report
