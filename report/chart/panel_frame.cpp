#include "report/chart/panel_frame.h"

#include <algorithm>
#include <cmath>

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

}  // namespace

LinearScale PanelFrame::x_scale() const { return {x.range, inset, panel.width - inset}; }
LinearScale PanelFrame::y_scale() const { return {y.range, panel.height - kInset, kInset}; }

double PanelFrame::title_height() const {
  return title_lines == 0
             ? 8
             : static_cast<double>(title_lines) * font(Lettering::FacetTitle).line_height() + 6;
}

std::vector<TextLines> PanelFrame::titles_of(const Panel& of) const {
  std::vector<TextLines> titles;
  for (const std::string& title : of.titles) {
    if (!title.empty()) {
      titles.push_back(fit_text(title, font(Lettering::FacetTitle), panel.width, 2));
    }
  }
  return titles;
}

bool PanelFrame::is_leftmost(uint32_t index) const {
  return (binding.single_facet ? index % columns : binding.panels[index].column) == 0;
}

bool PanelFrame::is_lowest(uint32_t index) const {
  if (binding.single_facet) return index + columns >= binding.panels.size();
  return binding.panels[index].row + 1 == rows;
}

Box PanelFrame::box_of_panel(uint32_t index) const {
  const uint32_t column = binding.single_facet ? index % columns : binding.panels[index].column;
  const uint32_t row = binding.single_facet ? index / columns : binding.panels[index].row;
  const double row_height = title_height() + panel.height + kPanelGap;
  return {panel.x + column * (panel.width + kPanelGap), row * row_height + title_height(),
          panel.width, panel.height};
}

double PanelFrame::place_along_x(const BoundElement& element, size_t row) const {
  const ChartVariable* variable = element[RoleKind::X];
  if (variable == nullptr) return HUGE_VAL;
  if (x.categorical) {
    const uint32_t category = x.categories.find(*variable, row);
    return category >= categories ? HUGE_VAL : (category + 0.5) * band;
  }
  const double value = number_at(variable, row);
  if (!is_number(value)) return HUGE_VAL;
  const double at = x_scale().at(value);
  return at < -1 || at > panel.width + 1 ? HUGE_VAL : at;
}

double PanelFrame::x_at(const BoundElement& element, size_t row) const {
  const double place = place_along_x(element, row);
  if (binding.colors.variable == nullptr) return place;
  const uint32_t color = binding.colors.of(element, RoleKind::Color, row);
  if (color == ValueIndex::kNone) return place;
  if (color >= colors) return HUGE_VAL;
  return slots == 1 ? place : place + (color + 0.5 - static_cast<double>(slots) / 2) * slot;
}

double PanelFrame::y_at(const BoundElement& element, size_t row) const {
  const double value = number_at(element[RoleKind::Y], row);
  return is_number(value) ? y_scale().at(value) : HUGE_VAL;
}

/// Finds the sizes of a frame, from the outside in.
class PanelArrangement {
 public:
  PanelArrangement(const Binding& binding, double width)
      : binding_(binding),
        asked_width_(width),
        frame_{.binding = binding,
               .x = horizontal_axis(binding),
               .y = vertical_axis(binding),
               .panel = {},
               .y_title = {},
               .y_labels = {},
               .x_labels = {},
               .notes = {}} {}

  PanelFrame arrange() {
    if (frame_.x.variable == nullptr || frame_.y.variable == nullptr) return std::move(frame_);
    frame_.panel.height = kUsualHeight;
    size_panels(measure_lead());
    size_panels(measure_lead());  // the numbers that stand there depend on the height
    frame_.title_lines = title_lines();
    frame_.y_labels = numbers_along_y();
    frame_.scatter = is_scatter(binding_);
    frame_.crowded = frame_.scatter && most_points(binding_) > kMostTooltips;
    frame_.dense = frame_.scatter && most_points(binding_) > kMostPoints;
    find_limits();
    name_columns();
    find_slots();
    return std::move(frame_);
  }

 private:
  const Font& label_font() const { return frame_.font(Lettering::AxisLabel); }

  /// Of a square with the same numbers along both sides those that fit along x, so that the grid is
  /// of squares, too.
  std::vector<TickLabel> numbers_along_y() const {
    const Range& x = frame_.x.range;
    const Range& y = frame_.y.range;
    if (binding_.graph.aspect == 1 && !frame_.x.categorical && x.low == y.low && x.high == y.high) {
      return number_labels(binding_, frame_.y.variable, frame_.y_scale(), frame_.panel.width,
                           label_font(), true);
    }
    return number_labels(binding_, frame_.y.variable, frame_.y_scale(), frame_.panel.height,
                         label_font(), false);
  }

  void size_panels(double lead) {
    count_panels(asked_width_ - lead);
    const auto columns = static_cast<double>(frame_.columns);
    const double gaps = (columns - 1) * kPanelGap;
    double panel = (asked_width_ - lead - kTrail - gaps) / columns;
    if (binding_.graph.aspect > 0)
      panel = std::min(panel, std::max(kUsualSquare, kWidestSquare * asked_width_));
    panel = std::max(panel, kLeastPanel);
    frame_.width = std::max(asked_width_, lead + columns * panel + gaps + kTrail);
    frame_.panel = {lead, 0, panel, panel_height(panel)};
  }

  /// The room left of the panels: the axis title and the widest number.
  double measure_lead() {
    const Font& title_font = frame_.font(Lettering::AxisTitle);
    frame_.y_title = fit_text(frame_.y.title, title_font, frame_.rows * frame_.panel.height, 3);
    double widest = 0;
    for (const TickLabel& label : numbers_along_y())
      widest = std::max(widest, text_width(label.text, label_font()));
    const double title =
        static_cast<double>(frame_.y_title.lines.size()) * title_font.line_height();
    return title + (title > 0 ? 8 : 0) + std::min(widest, kLongestNumber) + kTick + 4;
  }

  void count_panels(double width) {
    const auto count = static_cast<uint32_t>(binding_.panels.size());
    if (binding_.single_facet) {
      const auto categories = static_cast<double>(frame_.x.categories.size());
      const double wish =
          frame_.x.categorical ? std::clamp(categories * 20, 150.0, 420.0) : kNarrowestPanel;
      const double fitting = std::max(1.0, std::floor((width + kPanelGap) / (wish + kPanelGap)));
      const auto most = static_cast<uint32_t>(std::min(fitting, static_cast<double>(count)));
      const uint32_t rows = (count + most - 1) / most;
      frame_.columns = (count + rows - 1) / rows;
      frame_.rows = (count + frame_.columns - 1) / frame_.columns;
      return;
    }
    for (const Panel& panel : binding_.panels) {
      frame_.columns = std::max(frame_.columns, panel.column + 1);
      frame_.rows = std::max(frame_.rows, panel.row + 1);
    }
  }

  double panel_height(double width) const {
    if (binding_.graph.aspect > 0) return width * binding_.graph.aspect;
    // Wide pictures are higher than usual ones.
    const double more = std::max(1.0, asked_width_ / kUsualWidth);
    if (frame_.columns * frame_.rows == 1) return std::clamp(width * 0.6, 220.0, 380 * more);
    return std::clamp(width * 0.8, 170.0, 260 * more);
  }

  size_t title_lines() const {
    size_t most = 0;
    for (const Panel& panel : binding_.panels) {
      size_t lines = 0;
      for (const TextLines& title : frame_.titles_of(panel))
        lines += title.lines.size();
      most = std::max(most, lines);
    }
    return most;
  }

  void name_columns() {
    TickLabels& labels = frame_.x_labels;
    if (frame_.x.categorical) {
      frame_.band =
          frame_.panel.width / static_cast<double>(std::max<size_t>(1, frame_.categories));
      labels =
          category_labels(frame_.x, frame_.categories, label_font(), frame_.band, frame_.panel.x);
      return;
    }
    labels.labels = number_labels(binding_, frame_.x.variable, frame_.x_scale(), frame_.panel.width,
                                  label_font(), true);
    labels.height = label_font().line_height();
    labels.room = frame_.panel.width;
  }

  // What is shown.

  void find_limits() {
    const size_t categories = frame_.x.categorical ? frame_.x.categories.size() : 1;
    const size_t colors = binding_.colors.variable == nullptr ? 1 : binding_.colors.values.size();
    frame_.categories = categories;
    frame_.colors = std::clamp<size_t>(colors, 1, kMostColors);
    if (frame_.dense) return;
    const bool beside = colors > 1 && colors_share_places(binding_, frame_.x);
    const double room = frame_.panel.width / (beside ? kLeastSlot : kLeastPlace);
    const size_t most = std::max<size_t>(
        1, std::min(static_cast<size_t>(room), kMostMarks / binding_.panels.size()));
    const size_t fewest = std::clamp<size_t>(categories, 1, kFewestCategories);
    if (beside) frame_.colors = std::min(frame_.colors, std::max<size_t>(1, most / fewest));
    frame_.slots = beside ? frame_.colors : 1;
    // The first and the last place along x take the room of their colours, too.
    if (beside && !frame_.x.categorical) {
      frame_.inset += numeric_band() * binding_.graph.cluster / 2;
    }
    frame_.categories = std::min(categories, std::max(fewest, most / frame_.slots));
    note_limit(frame_.x.variable, frame_.categories, categories);
    note_limit(binding_.colors.variable, frame_.colors, colors);
    if (!frame_.x.categorical && !frame_.scatter) limit_rows();
  }

  /// Over numbers along x nothing else bounds the marks.
  void limit_rows() {
    size_t rows = 0;
    for (const BoundElement& element : binding_.elements)
      rows = std::max(rows, is_positional(element.element->kind) ? element.rows() : 0);
    frame_.most_rows = 2 * kMostMarks;
    if (rows > frame_.most_rows) note_limit(frame_.x.variable, kMostMarks, rows / 2);
  }

  void note_limit(const ChartVariable* variable, size_t shown, size_t all) {
    if (shown >= all || variable == nullptr) return;
    std::string note = with_arguments(binding_.word("The first ^1 of ^2 are shown."),
                                      {std::to_string(shown), std::to_string(all)});
    if (!variable->label.empty()) note = variable->label + ": " + note;
    frame_.notes.push_back(std::move(note));
  }

  // The side-by-side of colours.

  void find_slots() {
    if (!frame_.x.categorical) frame_.band = numeric_band();
    frame_.slot = frame_.band * binding_.graph.cluster / static_cast<double>(frame_.slots);
    size_t marks = 0;
    for (const BoundElement& element : binding_.elements) {
      if (is_positional(element.element->kind)) marks = std::max(marks, marks_of(element));
    }
    frame_.joined = marks > kMostSingleMarks && !frame_.scatter;
  }

  /// The marks of an element that are shown.
  size_t marks_of(const BoundElement& element) const {
    size_t marks = 0;
    element.each_mark([&](MarkRows rows) {
      const bool shown = element.panel_of(rows.row) < binding_.panels.size();
      marks += shown && std::isfinite(frame_.x_at(element, rows.row)) ? 1 : 0;
    });
    return marks;
  }

  /// The least distance of two numbers on the axis that hold marks, in pixels.
  double numeric_band() const {
    std::vector<double> places;
    const LinearScale scale = frame_.x_scale();
    for (const BoundElement& element : binding_.elements) {
      if (element.rows() > kMostPoints) return 0;
      for (size_t row = 0; row < element.rows(); ++row) {
        const double value = number_at(element[RoleKind::X], row);
        if (is_number(value)) places.push_back(scale.at(value));
      }
    }
    std::ranges::sort(places);
    double least = std::min(kWidestPlace, 20 * static_cast<double>(frame_.slots));
    for (size_t i = 1; i < places.size(); ++i) {
      if (places[i] - places[i - 1] > 0.01) least = std::min(least, places[i] - places[i - 1]);
    }
    return least;
  }

  const Binding& binding_;
  double asked_width_;
  PanelFrame frame_;
};

PanelFrame arrange_panels(const Binding& binding, double width) {
  return PanelArrangement(binding, width).arrange();
}

}  // namespace hierfit::report::chart
