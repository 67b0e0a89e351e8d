// Intervals of panels: whiskers and bars.
#include <algorithm>
#include <cmath>
#include <map>

#include "report/chart/panel_frame.h"

namespace hierfit::report::chart {
namespace {

constexpr double kWidestBar = 56;
constexpr double kBarOpacity = 0.25;

/// Where an interval lies: both ends within the panel.
struct Span {
  double x;
  double from;
  double to;
};

/// The span of a pair of rows; an end that is unset is the other one. Not finite where both are.
Span span_of(const PanelFrame& frame, const BoundElement& element, MarkRows rows) {
  Span span{frame.x_at(element, rows.row), frame.y_at(element, rows.row),
            frame.y_at(element, rows.partner)};
  if (!std::isfinite(span.x)) span.x = frame.x_at(element, rows.partner);
  if (!std::isfinite(span.from)) span.from = span.to;
  if (!std::isfinite(span.to)) span.to = span.from;
  if (!std::isfinite(span.from)) return {HUGE_VAL, HUGE_VAL, HUGE_VAL};
  span.from = std::clamp(span.from, 0.0, frame.grid.panel.height);
  span.to = std::clamp(span.to, 0.0, frame.grid.panel.height);
  return span;
}

Mark whisker(const PanelFrame& frame, const BoundElement& element, size_t row, const Span& span) {
  const auto [x, from, to] = span;
  const double cap = std::clamp(frame.slots.slot * 0.3, 1.0, 7.0);
  Mark mark = path_mark(
      {{x - cap, from}, {x + cap, from}, {x, from}, {x, to}, {x - cap, to}, {x + cap, to}},
      frame.binding.paint_of(element, row), std::clamp(frame.slots.slot * 0.3, 0.75, 1.75));
  mark.dash = frame.binding.dash_of(element, row);
  return mark;
}

Mark bar(const PanelFrame& frame, const BoundElement& element, size_t row, const Span& span) {
  const double width = std::clamp(frame.slots.slot * 0.9, 3.0, kWidestBar);
  const Paint paint = frame.binding.paint_of(element, row);
  Mark mark = rect_mark(
      {span.x - width / 2, std::min(span.from, span.to), width, std::fabs(span.to - span.from)},
      paint);
  mark.opacity = kBarOpacity;
  mark.stroke = paint;
  mark.stroke_width = 1.25;
  mark.dash = frame.binding.series_of(element, row).dash;
  return mark;
}

/// The intervals of a colour as one path of upright lines.
void draw_joined(std::vector<Mark>& marks,
                 const PanelFrame& frame,
                 const BoundElement& element,
                 uint32_t panel) {
  const bool whiskers = element.element->whisker;
  std::map<uint32_t, Mark> by_color;
  frame.each_mark(element, panel, [&](MarkRows rows) {
    const auto [x, from, to] = span_of(frame, element, rows);
    if (!std::isfinite(x)) return;
    Mark& mark = by_color[frame.binding.colors.of(element, RoleKind::Color, rows.row)];
    if (mark.points.empty()) {
      const double width = whiskers ? std::clamp(frame.slots.slot * 0.35, 0.5, 1.5)
                                    : std::clamp(frame.slots.slot * 0.9, 0.75, kWidestBar);
      mark = path_mark({}, frame.binding.paint_of(element, rows.row), width);
      if (!whiskers) mark.stroke_opacity = kBarOpacity;
    }
    mark.points.insert(mark.points.end(), {{x, from}, {x, to}, kBreak});
  });
  for (auto& [color, mark] : by_color)
    marks.push_back(std::move(mark));
}

}  // namespace

void draw_intervals(std::vector<Mark>& marks,
                    const PanelFrame& frame,
                    const BoundElement& element,
                    uint32_t panel) {
  if (frame.joined) return draw_joined(marks, frame, element, panel);
  frame.each_mark(element, panel, [&](MarkRows rows) {
    const Span span = span_of(frame, element, rows);
    if (!std::isfinite(span.x)) return;
    Mark mark = element.element->whisker ? whisker(frame, element, rows.row, span)
                                         : bar(frame, element, rows.row, span);
    mark.tooltip = frame.binding.tooltip_of(element, rows);
    marks.push_back(std::move(mark));
  });
}

}  // namespace hierfit::report::chart
