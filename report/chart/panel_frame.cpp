#include "report/chart/panel_frame.h"

#include <algorithm>
#include <cmath>

#include "report/wording.h"

namespace hierfit::report::chart {
namespace {

constexpr double kWidestSquare = 0.7;  ///< a share of the picture
constexpr double kNarrowestPanel = 190;
constexpr double kUsualSquare = 460;
constexpr double kUsualHeight = 260;
constexpr double kUsualWidth = 740;
constexpr double kLeastPanel = 90;  ///< its width
constexpr double kTrail = 14;       ///< right of the panels

// What people can still tell apart; more of it is left out, and a note says so.
constexpr double kLeastSlot = 2.5;    ///< pixels for a mark beside others of its place
constexpr double kLeastPlace = 1.25;  ///< pixels for a mark that has its place to itself
constexpr double kWidestPlace = 60;   ///< over numbers
constexpr size_t kMostColors = 32;
constexpr size_t kFewestCategories = 12;
constexpr size_t kMostTooltips = 2000;  ///< points that say what they are
constexpr size_t kMostMarks = 8000;     ///< in all panels

bool is_scatter(const Binding& binding) {
  return std::ranges::none_of(binding.elements, [](const BoundElement& element) {
    return element.element->kind == ElementKind::Interval;
  });
}

/// The points of the largest element.
size_t most_points(const Binding& binding) {
  size_t most = 0;
  for (const BoundElement& element : binding.elements) {
    if (element.element->kind != ElementKind::Point) continue;
    most = std::max(most, element.rows() / element.rows_of_mark());
  }
  return most;
}

Crowd crowd_of(const Binding& binding) {
  const bool scatter = is_scatter(binding);
  const size_t points = most_points(binding);
  return {scatter, scatter && points > kMostTooltips, scatter && points > kMostPoints};
}

LinearScale scale_along_x(const HorizontalAxis& x, const Grid& grid, double inset) {
  return {x.range, inset, grid.panel.width - inset};
}

LinearScale scale_along_y(const VerticalAxis& y, const Grid& grid) {
  return {y.range, grid.panel.height - kInset, kInset};
}

std::vector<TextLines> fitted_titles(const Panel& panel,
                                     const Font& font,
                                     double width,
                                     size_t most_lines) {
  std::vector<TextLines> titles;
  for (const std::string& title : panel.titles) {
    if (!title.empty()) titles.push_back(fit_text(title, font, width, most_lines));
  }
  return titles;
}

/// The lines of the highest title.
size_t title_lines(const Binding& binding, const Grid& grid) {
  size_t most = 0;
  const size_t limit = lines_of_titles(binding, grid.panel.width);
  for (const Panel& panel : binding.panels) {
    size_t lines = 0;
    for (const TextLines& title :
         fitted_titles(panel, binding.font(Lettering::FacetTitle), grid.panel.width, limit))
      lines += title.lines.size();
    most = std::max(most, lines);
  }
  return most;
}

/// Of a square with the same numbers along both sides those that fit along x, so that the grid is
/// of squares, too.
std::vector<TickLabel> numbers_along_y(const Binding& binding,
                                       const HorizontalAxis& x,
                                       const VerticalAxis& y,
                                       const Grid& grid) {
  const bool square = binding.graph.aspect == 1 && !x.categorical && x.range.low == y.range.low &&
                      x.range.high == y.range.high;
  return number_labels(binding, y.variable, scale_along_y(y, grid),
                       square ? grid.panel.width : grid.panel.height,
                       binding.font(Lettering::AxisLabel), square);
}

// The grid.

/// As many columns and rows as leave each panel enough of `width`.
void count_panels(Grid& grid, const Binding& binding, const HorizontalAxis& x, double width) {
  const auto count = static_cast<uint32_t>(binding.panels.size());
  if (!binding.single_facet) {
    for (const Panel& panel : binding.panels) {
      grid.columns = std::max(grid.columns, panel.column + 1);
      grid.rows = std::max(grid.rows, panel.row + 1);
    }
    return;
  }
  const auto categories = static_cast<double>(x.categories.size());
  const double wish = x.categorical ? std::clamp(categories * 20, 150.0, 420.0) : kNarrowestPanel;
  const double fitting = std::max(1.0, std::floor((width + kPanelGap) / (wish + kPanelGap)));
  const auto most = static_cast<uint32_t>(std::min(fitting, static_cast<double>(count)));
  const uint32_t rows = (count + most - 1) / most;
  grid.columns = (count + rows - 1) / rows;
  grid.rows = (count + grid.columns - 1) / grid.columns;
}

/// The room left of the panels: the axis title and the widest number.
double lead_of(const Binding& binding,
               const TextLines& title,
               const std::vector<TickLabel>& numbers) {
  double widest = 0;
  for (const TickLabel& label : numbers)
    widest = std::max(widest, text_width(label.text, binding.font(Lettering::AxisLabel)));
  const double room =
      static_cast<double>(title.lines.size()) * binding.font(Lettering::AxisTitle).line_height();
  return room + (room > 0 ? 8 : 0) + std::min(widest, kLongestNumber) + kTick + 4;
}

double panel_width(const Binding& binding, const Grid& grid, double lead, double asked_width) {
  const auto columns = static_cast<double>(grid.columns);
  double width = (asked_width - lead - kTrail - (columns - 1) * kPanelGap) / columns;
  if (binding.graph.aspect > 0) {
    width = std::min(width, std::max(kUsualSquare, kWidestSquare * asked_width));
  }
  return std::max(width, kLeastPanel);
}

double panel_height(const Binding& binding, const Grid& grid, double width, double asked_width) {
  if (binding.graph.aspect > 0) return width * binding.graph.aspect;
  // Wide pictures are higher than usual ones.
  const double more = std::max(1.0, asked_width / kUsualWidth);
  if (grid.columns * grid.rows == 1) return std::clamp(width * 0.6, 220.0, 380 * more);
  return std::clamp(width * 0.8, 170.0, 260 * more);
}

/// The grid beside the title and the numbers that suit a former one.
Grid grid_beside(const Grid& former,
                 const Binding& binding,
                 const HorizontalAxis& x,
                 const VerticalAxis& y,
                 double asked_width) {
  Grid grid;
  grid.y_title =
      fit_text(y.title, binding.font(Lettering::AxisTitle), former.rows * former.panel.height, 3);
  const double lead = lead_of(binding, grid.y_title, numbers_along_y(binding, x, y, former));
  count_panels(grid, binding, x, asked_width - lead);
  const double width = panel_width(binding, grid, lead, asked_width);
  grid.panel = {lead, 0, width, panel_height(binding, grid, width, asked_width)};
  grid.width =
      std::max(asked_width, lead + grid.columns * (width + kPanelGap) - kPanelGap + kTrail);
  return grid;
}

/// The numbers beside the panels depend on their height, and the width on the numbers.
Grid grid_of(const Binding& binding,
             const HorizontalAxis& x,
             const VerticalAxis& y,
             double asked_width) {
  Grid grid;
  grid.panel.height = kUsualHeight;
  for (int pass = 0; pass < 2; ++pass)
    grid = grid_beside(grid, binding, x, y, asked_width);
  return grid;
}

// What is shown.

void note_limit(Limits& limits,
                const Binding& binding,
                const ChartVariable* variable,
                size_t shown,
                size_t all) {
  if (shown >= all || variable == nullptr) return;
  std::string note = filled(binding.word("The first ^1 of ^2 are shown."), std::to_string(shown),
                            std::to_string(all));
  if (!variable->label.empty()) note = variable->label + ": " + note;
  limits.notes.push_back(std::move(note));
}

/// Over numbers along x nothing else bounds the marks.
void limit_rows(Limits& limits, const Binding& binding, const HorizontalAxis& x) {
  size_t rows = 0;
  for (const BoundElement& element : binding.elements)
    rows = std::max(rows, is_positional(element.element->kind) ? element.rows() : 0);
  limits.most_rows = 2 * kMostMarks;
  if (rows > limits.most_rows) note_limit(limits, binding, x.variable, kMostMarks, rows / 2);
}

Limits limits_of(const Binding& binding,
                 const HorizontalAxis& x,
                 const Grid& grid,
                 const Crowd& crowd) {
  const size_t categories = x.categorical ? x.categories.size() : 1;
  const size_t colors = binding.colors.variable == nullptr ? 1 : binding.colors.values.size();
  Limits limits;
  limits.categories = categories;
  limits.colors = std::clamp<size_t>(colors, 1, kMostColors);
  if (crowd.dense) return limits;
  limits.beside = colors > 1 && colors_share_places(binding, x);
  const double room = grid.panel.width / (limits.beside ? kLeastSlot : kLeastPlace);
  const size_t most =
      std::max<size_t>(1, std::min(static_cast<size_t>(room), kMostMarks / binding.panels.size()));
  const size_t fewest = std::clamp<size_t>(categories, 1, kFewestCategories);
  if (limits.beside) {
    limits.colors = std::min(limits.colors, std::max<size_t>(1, most / fewest));
    limits.slots = limits.colors;
  }
  limits.categories = std::min(categories, std::max(fewest, most / limits.slots));
  note_limit(limits, binding, x.variable, limits.categories, categories);
  note_limit(limits, binding, binding.colors.variable, limits.colors, colors);
  if (!x.categorical && !crowd.scatter) limit_rows(limits, binding, x);
  return limits;
}

// Places along x.

/// The least distance of two numbers on the axis that hold marks, in pixels.
double numeric_band(const Binding& binding, const LinearScale& scale, size_t slots) {
  std::vector<double> places;
  for (const BoundElement& element : binding.elements) {
    if (element.rows() > kMostPoints) return 0;
    for (size_t row = 0; row < element.rows(); ++row) {
      const double value = number_at(element[RoleKind::X], row);
      if (is_number(value)) places.push_back(scale.at(value));
    }
  }
  std::ranges::sort(places);
  double least = std::min(kWidestPlace, 20 * static_cast<double>(slots));
  for (size_t i = 1; i < places.size(); ++i) {
    if (places[i] - places[i - 1] > 0.01) least = std::min(least, places[i] - places[i - 1]);
  }
  return least;
}

Slots slots_of(const Binding& binding,
               const HorizontalAxis& x,
               const Grid& grid,
               const Limits& limits) {
  Slots slots;
  const auto band = [&] {
    return numeric_band(binding, scale_along_x(x, grid, slots.inset), limits.slots);
  };
  // The first and the last number take the room of their colours, too.
  if (limits.beside && !x.categorical) slots.inset += band() * binding.graph.cluster / 2;
  const auto categories = static_cast<double>(std::max<size_t>(1, limits.categories));
  slots.band = x.categorical ? grid.panel.width / categories : band();
  slots.slot = slots.band * binding.graph.cluster / static_cast<double>(limits.slots);
  return slots;
}

/// The pixel of a row's place along x, which its colours share; not finite where it has none.
double place_along_x(const PanelFrame& frame, const BoundElement& element, size_t row) {
  const ChartVariable* variable = element[RoleKind::X];
  if (variable == nullptr) return HUGE_VAL;
  if (frame.x.categorical) {
    const uint32_t category = frame.x.categories.find(*variable, row);
    return category >= frame.limits.categories ? HUGE_VAL : (category + 0.5) * frame.slots.band;
  }
  const double value = number_at(variable, row);
  if (!is_number(value)) return HUGE_VAL;
  const double at = frame.x_scale().at(value);
  return at < -1 || at > frame.grid.panel.width + 1 ? HUGE_VAL : at;
}

TickLabels labels_along_x(const Binding& binding,
                          const HorizontalAxis& x,
                          const Grid& grid,
                          const Limits& limits,
                          const Slots& slots) {
  const Font& font = binding.font(Lettering::AxisLabel);
  if (x.categorical) {
    return category_labels(x, limits.categories, font, slots.band, grid.panel.x);
  }
  TickLabels labels;
  labels.labels = number_labels(binding, x.variable, scale_along_x(x, grid, slots.inset),
                                grid.panel.width, font, true);
  labels.height = font.line_height();
  labels.room = grid.panel.width;
  return labels;
}

/// The marks of an element that are shown.
size_t marks_of(const PanelFrame& frame, const BoundElement& element) {
  size_t marks = 0;
  element.each_mark([&](MarkRows rows) {
    const bool shown = element.panel_of(rows.row) < frame.binding.panels.size();
    marks += shown && std::isfinite(frame.x_at(element, rows.row)) ? 1 : 0;
  });
  return marks;
}

/// Whether the marks are too many to be told apart one by one.
bool has_many_marks(const PanelFrame& frame) {
  if (frame.crowd.scatter) return false;
  return std::ranges::any_of(frame.binding.elements, [&](const BoundElement& element) {
    return is_positional(element.element->kind) && marks_of(frame, element) > kMostSingleMarks;
  });
}

}  // namespace

LinearScale PanelFrame::x_scale() const { return scale_along_x(x, grid, slots.inset); }
LinearScale PanelFrame::y_scale() const { return scale_along_y(y, grid); }

double PanelFrame::title_height() const {
  return title_lines == 0
             ? 8
             : static_cast<double>(title_lines) * font(Lettering::FacetTitle).line_height() + 6;
}

std::vector<TextLines> PanelFrame::titles_of(const Panel& of) const {
  return fitted_titles(of, font(Lettering::FacetTitle), grid.panel.width,
                       std::max<size_t>(title_lines, 1));
}

uint32_t PanelFrame::column_of(uint32_t index) const {
  return binding.single_facet ? index % grid.columns : binding.panels[index].column;
}

bool PanelFrame::is_lowest(uint32_t index) const {
  if (binding.single_facet) return index + grid.columns >= binding.panels.size();
  return binding.panels[index].row + 1 == grid.rows;
}

Box PanelFrame::box_of_panel(uint32_t index) const {
  const Box& panel = grid.panel;
  const uint32_t row = binding.single_facet ? index / grid.columns : binding.panels[index].row;
  const double row_height = title_height() + panel.height + kPanelGap;
  return {panel.x + column_of(index) * (panel.width + kPanelGap), row * row_height + title_height(),
          panel.width, panel.height};
}

double PanelFrame::x_at(const BoundElement& element, size_t row) const {
  const double place = place_along_x(*this, element, row);
  if (binding.colors.variable == nullptr) return place;
  const uint32_t color = binding.colors.of(element, RoleKind::Color, row);
  if (color == ValueIndex::kNone) return place;
  if (color >= limits.colors) return HUGE_VAL;
  if (limits.slots == 1) return place;
  return place + (color + 0.5 - static_cast<double>(limits.slots) / 2) * slots.slot;
}

double PanelFrame::y_at(const BoundElement& element, size_t row) const {
  const double value = number_at(element[RoleKind::Y], row);
  return is_number(value) ? y_scale().at(value) : HUGE_VAL;
}

std::optional<PanelFrame> arrange_panels(const Binding& binding, double width) {
  HorizontalAxis x = horizontal_axis(binding);
  VerticalAxis y = vertical_axis(binding);
  if (x.variable == nullptr || y.variable == nullptr) return std::nullopt;
  const Grid grid = grid_of(binding, x, y, width);
  const Crowd crowd = crowd_of(binding);
  const Limits limits = limits_of(binding, x, grid, crowd);
  const Slots slots = slots_of(binding, x, grid, limits);
  std::vector<TickLabel> y_labels = numbers_along_y(binding, x, y, grid);
  TickLabels x_labels = labels_along_x(binding, x, grid, limits, slots);
  PanelFrame frame{.binding = binding,
                   .x = std::move(x),
                   .y = std::move(y),
                   .grid = grid,
                   .crowd = crowd,
                   .limits = limits,
                   .slots = slots,
                   .title_lines = title_lines(binding, grid),
                   .y_labels = std::move(y_labels),
                   .x_labels = std::move(x_labels)};
  frame.joined = has_many_marks(frame);
  return frame;
}

}  // namespace hierfit::report::chart
