#include "report/chart/binding.h"

namespace hierfit::report::chart {
namespace {

void bind_scheme(Scheme& scheme, RoleKind kind, const Binding& binding) {
  for (const BoundElement& element : binding.elements) {
    const ChartVariable* variable = element[kind];
    if (variable == nullptr) continue;
    if (scheme.variable == nullptr) {
      scheme.variable = variable;
      scheme.role = &element.element->roles[kind];
      scheme.values.add_levels(scheme.role->levels);
    }
    for (size_t row = 0; row < element.rows(); ++row)
      scheme.values.add(*variable, row, binding.numbers);
  }
}

/// The values of two rows as one text: "1.2", or "[1.2, 3.4]" where they differ.
std::string shown_pair(const ChartVariable& variable,
                       MarkRows rows,
                       const output::NumberStyle& style) {
  const auto [row, partner] = rows;
  std::string one = shown_value(variable, row, style);
  if (partner == row || !has_value(variable, partner)) return one;
  std::string other = shown_value(variable, partner, style);
  if (!has_value(variable, row) || one == other) return other;
  return "[" + one + std::string(list_mark(style)) + other + "]";
}

}  // namespace

std::span<const std::string> Binding::panel_titles(const BoundElement& element, size_t row) const {
  if (element.panel_of_row.empty() || element.panel_of(row) >= panels.size()) return {};
  return panels[element.panel_of(row)].titles;
}

std::string Binding::tooltip_of(const BoundElement& element, MarkRows rows) const {
  const auto [row, partner] = rows;
  std::string text;
  for (const auto& [variable, words] : element.tooltip) {
    if (!has_value(*variable, row) && !has_value(*variable, partner)) continue;
    const std::string value = shown_pair(*variable, rows, numbers);
    if (value.empty()) continue;
    if (!text.empty()) text += '\n';
    if (!words.empty()) {
      (text += words) += ": ";
    } else if (!variable->label.empty() && variable->prefix.empty()) {
      (text += variable->label) += ": ";
    }
    text += value;
  }
  return text;
}

Binding bind(const Plan& plan,
             const Graph& graph,
             const output::Chart& chart,
             const output::Document& document) {
  Binding binding{.plan = plan,
                  .graph = graph,
                  .chart = chart,
                  .document = document,
                  .numbers = document.numbers,
                  .elements = {},
                  .panels = {},
                  .colors = {},
                  .shapes = {}};
  binding.numbers.minus = "\u2212";
  for (const Element& element : graph.elements)
    binding.elements.push_back(bind_element(element, chart));
  Division divided = divide(binding.elements, graph, binding.numbers);
  binding.panels = std::move(divided.panels);
  binding.left_out = divided.left_out;
  binding.single_facet = divided.single_facet;
  bind_scheme(binding.colors, RoleKind::Color, binding);
  bind_scheme(binding.shapes, RoleKind::Shape, binding);
  return binding;
}

}  // namespace hierfit::report::chart
