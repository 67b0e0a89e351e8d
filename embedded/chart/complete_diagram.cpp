// Diagrams of effects and coefficients: each edge is a line of a table.
#include <algorithm>
#include <optional>

#include "embedded/chart/chart_text.h"
#include "embedded/chart/completion.h"

namespace hierfit::chart {

using output::ChartSource;
using output::ChartVariable;
using output::Element;
using output::Format;
using output::Number;

namespace {

constexpr char kNodes[] = "pointSource";
constexpr char kEdges[] = "edgeSource";
constexpr output::ColumnKey kColumns[] = {{"Coefficient"}, {"Sig."}};
enum { kCoefficient, kSig };

/// Weights are classes of significance; those from .05 on stand ahead of the step.
constexpr char kLeastWeight[] = "1";
constexpr char kMostWeight[] = "9";
constexpr char kSignificantWeight[] = "4";

/// A term as both a table and a diagram write it.
std::string squeezed(std::string_view term) {
  std::string text = plain_text(term);
  std::erase_if(text, [](char c) { return c == ' ' || c == '\n'; });
  return text;
}

/// The lines of the table that the nodes stand for, in their order; none when a node has no line.
std::optional<std::vector<output::Record>> records_of_nodes(const ChartVariable& nodes,
                                                            const output::Table& table) {
  const std::vector<output::Record> records = output::records_of(table, kColumns);
  std::vector<output::Record> found;
  auto next = records.begin();
  for (size_t row = 0; row < nodes.values.rows(); ++row) {
    if (nodes.values.kind(row) != output::ChartColumn::Kind::Text) return std::nullopt;
    const std::string term = squeezed(nodes.values.text(row));
    next = std::find_if(next, records.end(), [&](const output::Record& record) {
      return !record.heads.empty() && squeezed(record.heads.front()) == term;
    });
    if (next == records.end()) return std::nullopt;
    found.push_back(*next++);
  }
  return found;
}

/// Terms of several categories of the target say which one they are of.
void name_categories(ChartVariable& nodes, const std::vector<output::Record>& records) {
  for (size_t row = 0; row < records.size(); ++row) {
    if (records[row].heads.size() < 2) continue;
    const std::string term = nodes.values.text(row);
    nodes.values.set(row, term + " (" + records[row].heads[1] + ")");
  }
}

void add_column(ChartSource& edges,
                Element& edge,
                const char* role,
                std::string label,
                Format format,
                const std::vector<output::Record>& records,
                size_t column) {
  ChartVariable& variable = add_variable(edges, role, std::move(label), format);
  for (size_t row = 0; row < records.size(); ++row)
    set_number(variable, row, records[row].numbers[column]);
  add_tooltip(edge, role);
}

/// Numbers in the place of the texts that have them rounded.
void show_statistics(const Work& work,
                     ChartSource& edges,
                     const ChartVariable& nodes,
                     const std::vector<output::Record>& records) {
  Element* edge = work.graph("edge");
  if (edge == nullptr) return;
  edge->remove_children("tooltip");
  std::erase_if(edges.variables,
                [](const ChartVariable& variable) { return variable.role == "LineTooltip"; });
  ChartVariable& term = add_variable(edges, "term", work.background.text("Model Term"));
  for (size_t row = 0; row < records.size(); ++row)
    term.values.set(row, nodes.values.text(row));
  add_tooltip(*edge, "term");
  const bool has_coefficients = std::ranges::any_of(records, [](const output::Record& record) {
    return !record.numbers[kCoefficient].missing();
  });
  if (has_coefficients) {
    add_column(edges, *edge, "coefficient", work.background.text("Coefficient"),
               Format::Coefficient, records, kCoefficient);
  }
  add_column(edges, *edge, "significance", work.background.text("E62317"), Format::Significance,
             records, kSig);
}

void set_scale(const Work& work) {
  Element* edge = work.graph("edge");
  Element* size = edge == nullptr ? nullptr : edge->child("size");
  if (size == nullptr) return;
  size->set("low", kLeastWeight);
  size->set("high", kMostWeight);
  size->set("step", kSignificantWeight);
}

/// Events of trials have no normal distribution.
void drop_curve(const Work& work) {
  std::vector<Element*> graphs;
  for (Element* element : output::elements_of(work.chart.document)) {
    if (element->name != "embedded") continue;
    if (Element* graph = element->child("graph")) graphs.push_back(graph);
  }
  // Only now, and inner ones first: what is removed is among the elements above.
  for (auto graph = graphs.rbegin(); graph != graphs.rend(); ++graph)
    (*graph)->remove_children("distributionStatistic");
}

/// Labels of the target's categories in the histogram that a diagram carries inside.
void label_histogram(const Work& work) {
  for (ChartSource& source : work.chart.sources) {
    ChartVariable* values = by_role(&source, "X");
    const Variable* target =
        values == nullptr ? nullptr : work.background.dictionary.find(values->label);
    if (target == nullptr) continue;
    for (const auto& [value, label] : target->GetValueLabels()->by_number)
      values->number_labels.emplace(value, output::plain_text(label));
  }
}

}  // namespace

void complete_diagram(const Work& work) {
  if (work.graph() == nullptr) return;
  set_scale(work);
  if (work.background.of_trials) drop_curve(work);
  label_histogram(work);
  ChartSource* points = source_of(work.chart, kNodes);
  ChartSource* edges = source_of(work.chart, kEdges);
  ChartVariable* nodes = by_role(points, "Nodes");
  if (nodes == nullptr || edges == nullptr) return;
  for (const output::Table* table : {work.background.effects, work.background.coefficients}) {
    // Only coefficients have signs.
    const ChartVariable* sign = by_role(edges, "Weight2");
    const bool has_signs = sign != nullptr && sign->values.rows() > 0;
    if (table == nullptr || has_signs != (table == work.background.coefficients)) continue;
    const auto records = records_of_nodes(*nodes, *table);
    if (!records) continue;
    name_categories(*nodes, *records);
    show_statistics(work, *edges, *nodes, *records);
  }
}

}  // namespace hierfit::chart
