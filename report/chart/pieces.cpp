#include "report/chart/pieces.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <functional>
#include <numeric>

#include "report/chart/scale.h"

namespace hierfit::report::chart {
namespace {

// Widths of lines in pixels.
constexpr double kHairline = 0.75;
constexpr double kLastHairline = 1.5;
constexpr double kFirstStrong = 2.5;
constexpr double kThickest = 5.5;
constexpr double kPlain = 2.5;

/// The values of a role over all elements.
Range range_of(const Binding& binding, RoleKind kind) {
  Range range;
  for (const BoundElement& element : binding.elements) {
    if (element[kind] == nullptr) continue;
    for (size_t row = 0; row < element.rows(); ++row) {
      const double value = number_at(element[kind], row);
      if (is_number(value)) range.add(value);
    }
  }
  return range;
}

double share(double value, double low, double high) {
  return std::clamp((value - low) / (high - low), 0.0, 1.0);
}

}  // namespace

void Piece::take(Piece&& other, double x, double y) {
  width = std::max(width, x + other.width);
  height = std::max(height, y + other.height);
  marks.reserve(marks.size() + other.marks.size());
  for (Mark& mark : other.marks) {
    shift(mark, x, y);
    marks.push_back(std::move(mark));
  }
}

double put_lines(std::vector<Mark>& marks,
                 const TextLines& lines,
                 double x,
                 double y,
                 const Font& font,
                 Anchor anchor,
                 const std::string& whole) {
  for (const std::string& line : lines.lines) {
    Mark mark = text_mark({x, y + font.size}, line, font, anchor);
    if (lines.cut) mark.tooltip = whole;
    if (!line.empty()) marks.push_back(std::move(mark));
    y += font.line_height();
  }
  return y;
}

size_t lines_of_titles(const Binding& binding, double width) {
  constexpr size_t kUsual = 2;
  constexpr size_t kMost = 6;
  const Font& font = binding.font(Lettering::FacetTitle);
  std::vector<std::string> titles;
  for (const Panel& panel : binding.panels)
    titles.insert(titles.end(), panel.titles.begin(), panel.titles.end());
  size_t lines = kUsual;
  const auto shown = [&](const std::string& title) {
    return joined(fit_text(title, font, width, lines));
  };
  while (lines < kMost && are_cut_alike(titles, shown))
    ++lines;
  return lines;
}

Opacity::Opacity(const Binding& binding) {
  const Range range = range_of(binding, RoleKind::Transparency);
  low = range.low;
  high = range.high;
}

double Opacity::of(double value) const {
  if (!is_number(value) || !(high > low)) return kPlain;
  return kLeast + (kMost - kLeast) * share(value, low, high);
}

LineWidths::LineWidths(const Binding& binding) {
  const Range range = range_of(binding, RoleKind::Size);
  low = range.low;
  high = range.high;
  for (const BoundElement& element : binding.elements) {
    if (element[RoleKind::Size] == nullptr) continue;
    const Role& role = element.element->roles[RoleKind::Size];
    if (role.low) low = *role.low;
    if (role.high) high = *role.high;
    step = role.step;
    return;
  }
}

double LineWidths::of(double value) const {
  if (!is_number(value) || low == high) return kPlain;
  if (!step) return kHairline + (kThickest - kHairline) * share(value, low, high);
  if (value < *step) return kHairline + (kLastHairline - kHairline) * share(value, low, *step);
  return kFirstStrong + (kThickest - kFirstStrong) * share(value, *step, high);
}

double LineWidths::share_of(double value) const {
  return is_number(value) && low != high ? share(value, low, high) : 0;
}

double width_of_edge(const LineWidths& widths,
                     const Binding& binding,
                     const BoundElement& edges,
                     size_t row) {
  if (edges[RoleKind::Size] != nullptr) return widths.of(number_at(edges[RoleKind::Size], row));
  const Paint paint = binding.paint_of(edges, row);
  if (paint.part != Part::Significance) return kPlain;
  return paint.step == 0 ? kHairline : kPlain;
}

std::vector<size_t> greatest(const std::vector<double>& scores, size_t most) {
  std::vector<size_t> places(scores.size());
  std::iota(places.begin(), places.end(), size_t{0});
  std::ranges::stable_sort(places, std::greater<>(), [&](size_t place) { return scores[place]; });
  places.resize(std::min(places.size(), most));
  std::ranges::sort(places);
  return places;
}

std::string dash_for(const std::string& dash, double width) {
  if (width <= 2) return dash;
  std::string wider;
  for (size_t begin = 0; begin < dash.size();) {
    const size_t end = std::min(dash.find(' ', begin), dash.size());
    double length = 0;
    std::from_chars(dash.data() + begin, dash.data() + end, length);
    if (!wider.empty()) wider += ' ';
    append_pixels(wider, length * (0.4 + width * 0.3));
    begin = end + 1;
  }
  return wider;
}

}  // namespace hierfit::report::chart
