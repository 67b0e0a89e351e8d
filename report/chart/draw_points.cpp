// Points and lines of panels; of many points their density.
#include <algorithm>
#include <cmath>
#include <map>

#include "report/chart/panel_frame.h"

namespace hierfit::report::chart {
namespace {

constexpr double kWidestShare = 0.55;  ///< of a colour's room, that a point's radius takes
constexpr double kSmallest = 0.9;

double radius_of(const PanelFrame& frame, size_t points) {
  const double radius = points <= 200 ? 4.5 : points <= 1000 ? 3.5 : points <= 5000 ? 2.5 : 1.6;
  if (frame.crowd.scatter) return radius;
  return std::clamp(frame.slots.slot * kWidestShare, kSmallest, radius);
}

void draw_symbols(std::vector<Mark>& marks,
                  const PanelFrame& frame,
                  const BoundElement& element,
                  uint32_t panel) {
  const Opacity opacity(frame.binding);
  const double radius = radius_of(frame, element.rows());
  frame.each_mark(element, panel, [&](MarkRows rows) {
    const Point at{frame.x_at(element, rows.row), frame.y_at(element, rows.row)};
    if (!std::isfinite(at.x) || !frame.inside(at.y)) return;
    const Paint paint = frame.binding.paint_of(element, rows.row);
    Mark mark = symbol_mark(at, radius, frame.binding.symbol_of(element, rows.row), paint);
    if (element[RoleKind::Transparency] != nullptr) {
      mark.opacity = opacity.of(number_at(element[RoleKind::Transparency], rows.row));
      mark.stroke = paint;
      mark.stroke_width = radius > 3 ? 1 : 0.5;
    }
    mark.tooltip = frame.binding.tooltip_of(element, rows);
    marks.push_back(std::move(mark));
  });
}

/// Points that look the same are one mark.
void draw_dots(std::vector<Mark>& marks,
               const PanelFrame& frame,
               const BoundElement& element,
               uint32_t panel) {
  const Opacity opacity(frame.binding);
  const ChartVariable* transparency = element[RoleKind::Transparency];
  std::map<std::pair<uint32_t, long>, Mark> by_look;
  frame.each_mark(element, panel, [&](MarkRows rows) {
    const Point at{frame.x_at(element, rows.row), frame.y_at(element, rows.row)};
    if (!std::isfinite(at.x) || !frame.inside(at.y)) return;
    const double shown =
        transparency == nullptr ? 1 : opacity.of(number_at(transparency, rows.row));
    const std::pair look{frame.binding.colors.of(element, RoleKind::Color, rows.row),
                         std::lround(shown * 50)};
    const auto [found, fresh] = by_look.try_emplace(look);
    if (fresh) {
      found->second =
          dots_mark(radius_of(frame, element.rows()), frame.binding.paint_of(element, rows.row));
      found->second.opacity = static_cast<double>(look.second) / 50;
    }
    found->second.points.push_back(at);
  });
  for (auto& [look, mark] : by_look)
    marks.push_back(std::move(mark));
}

}  // namespace

void draw_points(std::vector<Mark>& marks,
                 const PanelFrame& frame,
                 const BoundElement& element,
                 uint32_t panel) {
  if (frame.crowd.dense) return;
  const bool many = frame.joined || frame.crowd.crowded;
  many ? draw_dots(marks, frame, element, panel) : draw_symbols(marks, frame, element, panel);
}

std::vector<DensityRaster> count_points(const PanelFrame& frame) {
  if (!frame.crowd.dense) return {};
  std::vector<DensityRaster> rasters(
      frame.binding.panels.size(), DensityRaster(frame.grid.panel.width, frame.grid.panel.height));
  for (const BoundElement& element : frame.binding.elements) {
    if (element.element->kind != ElementKind::Point) continue;
    for (size_t row = 0; row < element.rows(); ++row) {
      const uint32_t panel = element.panel_of(row);
      const double x = frame.x_at(element, row);
      const double y = frame.y_at(element, row);
      if (panel >= rasters.size() || !std::isfinite(x) || !frame.inside(y)) continue;
      const double weight = number_at(element[RoleKind::Transparency], row);
      rasters[panel].add(x, y, is_number(weight) ? weight : 1);
    }
  }
  return rasters;
}

void draw_lines(std::vector<Mark>& marks,
                const PanelFrame& frame,
                const BoundElement& element,
                uint32_t panel) {
  std::map<uint32_t, Mark> by_color;
  frame.each_mark(element, panel, [&](MarkRows rows) {
    const Point point{frame.x_at(element, rows.row), frame.y_at(element, rows.row)};
    if (!std::isfinite(point.x) || !frame.inside(point.y)) return;
    const auto [found, fresh] =
        by_color.try_emplace(frame.binding.colors.of(element, RoleKind::Color, rows.row));
    if (fresh) {
      found->second = path_mark({}, frame.binding.paint_of(element, rows.row), 1.5);
      found->second.dash = frame.binding.series_of(element, rows.row).dash;
    }
    found->second.points.push_back(point);
  });
  for (auto& [color, mark] : by_color)
    marks.push_back(std::move(mark));
}

}  // namespace hierfit::report::chart
