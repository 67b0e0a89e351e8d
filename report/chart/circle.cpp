#include "report/chart/circle.h"

#include <cmath>

namespace hierfit::report::chart {
namespace {

/// Calls `use` with each row of the elements of a kind and the circle that it belongs to.
template <class Use>
void for_rows(std::vector<Circle>& circles, const Binding& binding, ElementKind kind, Use use) {
  const auto count = static_cast<uint32_t>(circles.size());
  for (const BoundElement& element : binding.elements) {
    if (element.element->kind != kind) continue;
    for (size_t row = 0; row < element.rows(); ++row) {
      element.each_panel(row, count, [&](uint32_t panel) {
        use(circles[panel], ElementRow{&element, row});
      });
    }
  }
}

}  // namespace

std::vector<Circle> circles_of(const Binding& binding) {
  std::vector<Circle> circles(binding.panels.size());
  for_rows(circles, binding, ElementKind::Node, [&](Circle& circle, ElementRow of) {
    const ChartVariable* key = (*of.element)[RoleKind::Key];
    const size_t before = circle.keys.size();
    if (key != nullptr && circle.keys.add(*key, of.row, binding.numbers) == before) {
      circle.nodes.push_back(of);
    }
  });
  for_rows(circles, binding, ElementKind::Edge, [&](Circle& circle, ElementRow of) {
    const ChartVariable* from = (*of.element)[RoleKind::From];
    const ChartVariable* to = (*of.element)[RoleKind::To];
    if (from == nullptr || to == nullptr || !is_drawn(*of.element, of.row)) return;
    const uint32_t start = circle.keys.find(*from, of.row);
    const uint32_t end = circle.keys.find(*to, of.row);
    if (start != ValueIndex::kNone && end != ValueIndex::kNone) {
      circle.edges.push_back({start, end, of});
    }
  });
  return circles;
}

bool is_drawn(const BoundElement& edges, size_t row) {
  const ChartVariable* kind = edges[RoleKind::Color];
  return kind == nullptr || has_value(*kind, row);
}

double share_of_turn(size_t node, size_t nodes) {
  const double first = nodes == 2 ? 0.75 : 0;
  const double share = first + static_cast<double>(node) / static_cast<double>(nodes);
  return share - std::floor(share);
}

}  // namespace hierfit::report::chart
