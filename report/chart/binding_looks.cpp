// What the rows of a binding look like: their paints and symbols.
#include "report/chart/binding.h"

namespace hierfit::report::chart {

uint32_t Scheme::of(const BoundElement& element, RoleKind kind, size_t row) const {
  const ChartVariable* own = element[kind];
  return own == nullptr ? ValueIndex::kNone : values.find(*own, row);
}

Paint Binding::paint_of(const BoundElement& element, size_t row) const {
  const uint32_t step = colors.of(element, RoleKind::Color, row);
  if (step == ValueIndex::kNone) return {Part::Mark};
  return {colors.role->palette,
          static_cast<uint8_t>(step % plan.style.steps(colors.role->palette))};
}

const Series& Binding::series_of(const BoundElement& element, size_t row) const {
  return plan.style.series(paint_of(element, row));
}

Symbol Binding::symbol_of_step(uint32_t step) const {
  const Part palette = colors.role->palette;
  const size_t steps = plan.style.steps(palette);
  const size_t turned = step + step / steps;  // beyond the palette's end the pairs stay distinct
  return plan.style.series({palette, static_cast<uint8_t>(turned % steps)}).symbol;
}

std::string_view Binding::dash_of_step(uint32_t step) const {
  constexpr std::array<std::string_view, 4> kDashes = {"", "4 2", "1.5 1.5", "7 2 1.5 2"};
  return kDashes[step / plan.style.steps(colors.role->palette) % kDashes.size()];
}

std::string_view Binding::dash_of(const BoundElement& element, size_t row) const {
  const uint32_t step = colors.of(element, RoleKind::Color, row);
  return step == ValueIndex::kNone ? std::string_view() : dash_of_step(step);
}

Symbol Binding::symbol_of_shape(uint32_t shape) const {
  const std::vector<Level>& levels = shapes.role->levels;
  if (shape < levels.size() && levels[shape].symbol) return *levels[shape].symbol;
  return static_cast<Symbol>(shape % kSymbolNames.size());
}

Symbol Binding::symbol_of(const BoundElement& element, size_t row) const {
  const uint32_t shape = shapes.of(element, RoleKind::Shape, row);
  if (shape != ValueIndex::kNone) return symbol_of_shape(shape);
  const uint32_t step = colors.of(element, RoleKind::Color, row);
  return step == ValueIndex::kNone ? Symbol::Circle : symbol_of_step(step);
}

}  // namespace hierfit::report::chart
