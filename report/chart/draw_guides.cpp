// Guides of panels: lines that stand for a number or for a relation.
#include <algorithm>

#include "report/chart/panel_frame.h"

namespace hierfit::report::chart {
namespace {

constexpr double kWidth = 1.5;
constexpr const char* kDash = "7 4";

void put(std::vector<Mark>& marks, const PanelFrame& frame, Point from, Point to) {
  // Over many points it has to stand out from them.
  Mark mark = rule_mark(from, to, {frame.crowd.crowded ? Part::Text : Part::Guide}, kWidth);
  mark.dash = kDash;
  marks.push_back(std::move(mark));
}

/// The part of the line where both of its ends lie within the ranges.
void draw_slope(std::vector<Mark>& marks, const PanelFrame& frame, const LineGuide& guide) {
  double low = frame.x.range.low;
  double high = frame.x.range.high;
  if (guide.slope != 0) {
    const double a = (frame.y.range.low - guide.intercept) / guide.slope;
    const double b = (frame.y.range.high - guide.intercept) / guide.slope;
    low = std::max(low, std::min(a, b));
    high = std::min(high, std::max(a, b));
  }
  if (!(low < high)) return;
  const auto point = [&](double at) {
    return Point{frame.x_scale().at(at), frame.y_scale().at(guide.intercept + guide.slope * at)};
  };
  put(marks, frame, point(low), point(high));
}

}  // namespace

void draw_guides(std::vector<Mark>& marks, const PanelFrame& frame, uint32_t panel) {
  for (const LineGuide& guide : frame.binding.graph.guides) {
    if (is_hidden(guide, frame.binding.panels[panel])) continue;
    if (!guide.y) {
      if (!frame.x.categorical) draw_slope(marks, frame, guide);
      continue;
    }
    const double y = frame.y_scale().at(*guide.y);
    if (frame.inside(y)) put(marks, frame, {0, y}, {frame.grid.panel.width, y});
  }
}

}  // namespace hierfit::report::chart
