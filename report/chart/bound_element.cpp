#include "report/chart/bound_element.h"

namespace hierfit::report::chart {
namespace {

bool has_any_value(const ChartVariable& variable) {
  if (variable.values.all_numbers()) return variable.values.rows() > 0;
  for (size_t row = 0; row < variable.values.rows(); ++row) {
    if (variable.values.kind(row) != output::ChartColumn::Kind::Unset) return true;
  }
  return false;
}

}  // namespace

const ChartVariable* bound(const ChartSource* source, std::string_view role) {
  if (source == nullptr || role.empty()) return nullptr;
  const ChartVariable* variable = source->by_role(role);
  return variable != nullptr && has_any_value(*variable) ? variable : nullptr;
}

BoundElement bind_element(const Element& element, const output::Chart& chart) {
  BoundElement made;
  made.element = &element;
  made.source = chart.source(element.source);
  if (made.source == nullptr && element.source.empty() && !chart.sources.empty()) {
    made.source = &chart.sources.front();
  }
  for (size_t i = 0; i < made.variables.size(); ++i)
    made.variables[i] = bound(made.source, element.roles.of[i].variable);
  for (const TooltipEntry& entry : element.roles.tooltip) {
    const ChartVariable* variable = bound(made.source, entry.variable);
    if (variable != nullptr) made.tooltip.push_back({variable, entry.words});
  }
  return made;
}

}  // namespace hierfit::report::chart
