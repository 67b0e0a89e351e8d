// Panels with axes: points, lines, intervals and guides.
#include <algorithm>
#include <cmath>
#include <map>

#include "report/chart/density.h"
#include "report/chart/panels.h"
#include "report/chart/pieces.h"

namespace hierfit::report::chart {
namespace {

constexpr double kInset = 8;  ///< free of marks along the edges of a panel
constexpr double kTick = 5;
constexpr double kPanelGap = 18;
constexpr double kWidestSquare = 460;
constexpr double kNarrowestPanel = 190;
constexpr double kWidestSlot = 56;  ///< of a bar
constexpr size_t kMostTooltips = 5000;
constexpr double kUsualHeight = 260;
constexpr double kLeastPanel = 90;  ///< its width
constexpr double kTrail = 14;       ///< right of the panels
constexpr double kLongestNumber = 116;
constexpr Paint kAxis{Part::Axis};

bool is_positional(const BoundElement& element) {
  const ElementKind kind = element.element->kind;
  return kind == ElementKind::Point || kind == ElementKind::Line || kind == ElementKind::Interval;
}

/// Rows of one mark: for a pair 2i and 2i + 1.
struct RowPair {
  size_t row;
  size_t partner;
};

class Panels {
 public:
  Panels(const Binding& binding, double width)
      : binding_(binding),
        x_(horizontal_axis(binding)),
        y_(vertical_axis(binding)),
        label_font_(binding.font(Lettering::AxisLabel)),
        title_font_(binding.font(Lettering::AxisTitle)),
        facet_font_(binding.font(Lettering::FacetTitle)),
        opacity_(binding),
        asked_width_(width) {}

  Piece draw() {
    if (x_.variable == nullptr || y_.variable == nullptr) return {};
    arrange();
    find_slots();
    for (size_t i = 0; i < binding_.panels.size(); ++i)
      draw_panel(static_cast<uint32_t>(i));
    draw_axis_titles();
    return std::move(piece_);
  }

 private:
  struct Place {
    uint32_t column;
    uint32_t row;
  };

  Place place_of(uint32_t panel) const {
    if (binding_.single_facet) return {panel % columns_, panel / columns_};
    return {binding_.panels[panel].column, binding_.panels[panel].row};
  }

  // The grid of panels.

  void arrange() {
    panel_.height = kUsualHeight;
    size_panels(measure_lead());
    size_panels(measure_lead());  // the numbers that stand there depend on the height
    facet_lines_ = facet_lines();
    y_labels_ = number_labels(binding_, y_.variable, y_scale(), panel_.height, label_font_, false);
    name_columns();
    row_height_ = facet_height() + panel_.height + kPanelGap;
  }

  void size_panels(double lead) {
    count_panels(asked_width_ - lead);
    const auto columns = static_cast<double>(columns_);
    const double gaps = (columns - 1) * kPanelGap;
    double panel = (asked_width_ - lead - kTrail - gaps) / columns;
    if (binding_.graph.aspect > 0) panel = std::min(panel, kWidestSquare);
    panel = std::max(panel, kLeastPanel);
    piece_.width = std::max(asked_width_, lead + columns * panel + gaps + kTrail);
    panel_ = {lead, 0, panel, panel_height(panel)};
  }

  void name_columns() {
    if (x_.categorical) {
      band_ = panel_.width / std::max(1.0, static_cast<double>(x_.categories.size()));
      x_labels_ = category_labels(x_, label_font_, band_, panel_.x);
      return;
    }
    x_labels_.labels =
        number_labels(binding_, x_.variable, x_scale(), panel_.width, label_font_, true);
    x_labels_.height = label_font_.line_height();
    x_labels_.room = panel_.width;
  }

  /// The room left of the panels: the axis title and the widest number.
  double measure_lead() {
    y_title_ = fit_text(y_.title, title_font_, rows_ * panel_.height, 3);
    double widest = 0;
    for (const TickLabel& label :
         number_labels(binding_, y_.variable, y_scale(), panel_.height, label_font_, false)) {
      widest = std::max(widest, text_width(label.text, label_font_));
    }
    const double title = static_cast<double>(y_title_.lines.size()) * title_font_.line_height();
    return title + (title > 0 ? 8 : 0) + std::min(widest, kLongestNumber) + kTick + 4;
  }

  void count_panels(double width) {
    const auto count = static_cast<uint32_t>(binding_.panels.size());
    if (binding_.single_facet) {
      const double wish =
          x_.categorical ? std::clamp(static_cast<double>(x_.categories.size()) * 20, 150.0, 420.0)
                         : kNarrowestPanel;
      const double fitting = std::max(1.0, std::floor((width + kPanelGap) / (wish + kPanelGap)));
      const auto most = static_cast<uint32_t>(std::min(fitting, static_cast<double>(count)));
      const uint32_t rows = (count + most - 1) / most;
      columns_ = (count + rows - 1) / rows;
      rows_ = (count + columns_ - 1) / columns_;
      return;
    }
    for (const Panel& panel : binding_.panels) {
      columns_ = std::max(columns_, panel.column + 1);
      rows_ = std::max(rows_, panel.row + 1);
    }
  }

  double panel_height(double width) const {
    if (binding_.graph.aspect > 0) return width * binding_.graph.aspect;
    if (columns_ * rows_ == 1) return std::clamp(width * 0.6, 220.0, 380.0);
    return std::clamp(width * 0.8, 170.0, 260.0);
  }

  std::vector<TextLines> titles_of(const Panel& panel) const {
    std::vector<TextLines> titles;
    for (const std::string& title : panel.titles) {
      if (!title.empty()) titles.push_back(fit_text(title, facet_font_, panel_.width, 2));
    }
    return titles;
  }

  size_t facet_lines() const {
    size_t most = 0;
    for (const Panel& panel : binding_.panels) {
      size_t lines = 0;
      for (const TextLines& title : titles_of(panel))
        lines += title.lines.size();
      most = std::max(most, lines);
    }
    return most;
  }

  double facet_height() const {
    return facet_lines_ == 0 ? 8
                             : static_cast<double>(facet_lines_) * facet_font_.line_height() + 6;
  }

  Box box_of_panel(uint32_t panel) const {
    const Place place = place_of(panel);
    return {panel_.x + place.column * (panel_.width + kPanelGap),
            place.row * row_height_ + facet_height(), panel_.width, panel_.height};
  }

  /// Whether another panel stands below, so that this one shows no names along x.
  bool is_lowest(uint32_t panel) const {
    const Place place = place_of(panel);
    if (binding_.single_facet) return panel + columns_ >= binding_.panels.size();
    return place.row + 1 == rows_;
  }

  // Scales, from the upper left corner of a panel.

  LinearScale x_scale() const { return {x_.range, kInset, panel_.width - kInset}; }
  LinearScale y_scale() const { return {y_.range, panel_.height - kInset, kInset}; }

  // The side-by-side of colours.

  void find_slots() {
    slots_ = 1;
    band_ = x_.categorical ? band_ : numeric_band();
    if (binding_.colors.variable != nullptr && shares_room()) {
      slots_ = std::max<size_t>(1, binding_.colors.values.size());
    }
    slot_ = band_ * binding_.graph.cluster / static_cast<double>(slots_);
  }

  /// The least distance of two numbers on the axis that hold marks, in pixels.
  double numeric_band() const {
    std::vector<double> places;
    const LinearScale scale = x_scale();
    for (const BoundElement& element : binding_.elements) {
      if (element.rows() > kMostPoints) return 0;
      for (size_t row = 0; row < element.rows(); ++row) {
        const double value = number_at(element[RoleKind::X], row);
        if (is_number(value)) places.push_back(scale.at(value));
      }
    }
    std::ranges::sort(places);
    double least = 60;
    for (size_t i = 1; i < places.size(); ++i) {
      if (places[i] - places[i - 1] > 0.01) least = std::min(least, places[i] - places[i - 1]);
    }
    return least;
  }

  /// Whether one place along x holds marks of several colours.
  bool shares_room() const {
    std::map<std::pair<uint32_t, double>, uint32_t> seen;
    for (const BoundElement& element : binding_.elements) {
      if (!is_positional(element) || element.rows() > 10 * kMostPoints) continue;
      for (size_t row = 0; row < element.rows(); ++row) {
        const uint32_t color = binding_.colors.of(element, RoleKind::Color, row);
        const double place = place_along_x(element, row);
        if (color == ValueIndex::kNone || !std::isfinite(place)) continue;
        const uint32_t panel = element.panel_of_row.empty() ? 0 : element.panel_of_row[row];
        if (seen.try_emplace({panel, place}, color).first->second != color) return true;
      }
    }
    return false;
  }

  /// The pixel of a row without its place in the side-by-side; not finite where it has none.
  double place_along_x(const BoundElement& element, size_t row) const {
    const ChartVariable* x = element[RoleKind::X];
    if (x == nullptr) return HUGE_VAL;
    if (x_.categorical) {
      const uint32_t category = x_.categories.find(*x, row);
      return category == ValueIndex::kNone ? HUGE_VAL : (category + 0.5) * band_;
    }
    const double value = number_at(x, row);
    if (!is_number(value)) return HUGE_VAL;
    const double at = x_scale().at(value);
    return at < -1 || at > panel_.width + 1 ? HUGE_VAL : at;
  }

  double x_at(const BoundElement& element, size_t row) const {
    const double place = place_along_x(element, row);
    if (slots_ == 1) return place;
    const uint32_t color = binding_.colors.of(element, RoleKind::Color, row);
    if (color == ValueIndex::kNone) return place;
    return place + (color + 0.5 - static_cast<double>(slots_) / 2) * slot_;
  }

  double y_at(const BoundElement& element, size_t row) const {
    const double value = number_at(element[RoleKind::Y], row);
    return is_number(value) ? y_scale().at(value) : HUGE_VAL;
  }

  bool inside(double y) const { return y >= -1 && y <= panel_.height + 1; }

  // One panel.

  void draw_panel(uint32_t index) {
    const Box box = box_of_panel(index);
    std::vector<Mark> marks;
    draw_grid(marks);
    for (const LineGuide& guide : binding_.graph.guides)
      draw_guide(marks, guide, index);
    for (const BoundElement& element : binding_.elements)
      draw_element(marks, element, index);
    draw_axes(marks, index);
    draw_panel_titles(marks, index);
    for (Mark& mark : marks) {
      shift(mark, box.x, box.y);
      piece_.marks.push_back(std::move(mark));
    }
    piece_.height = std::max(piece_.height, box.bottom());
  }

  void draw_grid(std::vector<Mark>& marks) const {
    marks.push_back(rect_mark({0, 0, panel_.width, panel_.height}, {Part::Panel}));
    for (const TickLabel& label : y_labels_)
      marks.push_back(rule_mark({0, label.at}, {panel_.width, label.at}, {Part::Grid}));
    if (!x_.categorical) {
      for (const TickLabel& label : x_labels_.labels)
        marks.push_back(rule_mark({label.at, 0}, {label.at, panel_.height}, {Part::Grid}));
    }
    if (y_.range.low < 0 && y_.range.high > 0) {
      const double zero = y_scale().at(0);
      marks.push_back(rule_mark({0, zero}, {panel_.width, zero}, kAxis));
    }
  }

  void draw_axes(std::vector<Mark>& marks, uint32_t index) const {
    const double bottom = panel_.height;
    if (binding_.graph.y.visible) {
      marks.push_back(rule_mark({0, 0}, {0, bottom}, kAxis));
      if (place_of(index).column == 0) draw_y_labels(marks);
    }
    if (!binding_.graph.x.visible) return;
    marks.push_back(rule_mark({0, bottom}, {panel_.width, bottom}, kAxis));
    if (is_lowest(index)) draw_x_labels(marks);
  }

  void draw_y_labels(std::vector<Mark>& marks) const {
    for (const TickLabel& label : y_labels_) {
      marks.push_back(rule_mark({-kTick, label.at}, {0, label.at}, kAxis));
      put_line(marks, label.text, {-kTick - 3, label.at + label_font_.size * 0.35}, kLongestNumber,
               Anchor::End, 0);
    }
  }

  void draw_x_labels(std::vector<Mark>& marks) const {
    const double top = panel_.height + kTick + 2;
    for (const TickLabel& label : x_labels_.labels) {
      marks.push_back(
          rule_mark({label.at, panel_.height}, {label.at, panel_.height + kTick}, kAxis));
      if (x_labels_.turn == 0) {
        const TextLines lines = fit_text(label.text, label_font_, x_labels_.room, x_labels_.lines);
        put_lines(marks, lines, label.at, top, label_font_, Anchor::Middle, label.text);
      } else {
        const double right = x_labels_.turn == -90 ? label_font_.size * 0.35 : 4;
        const double drop = x_labels_.turn == -90 ? 2 : label_font_.size * 0.7;
        put_line(marks, label.text, {label.at + right, top + drop}, x_labels_.room, Anchor::End,
                 x_labels_.turn);
      }
    }
  }

  void put_line(std::vector<Mark>& marks,
                const std::string& text,
                Point at,
                double room,
                Anchor anchor,
                double turn) const {
    bool cut = false;
    Mark mark = text_mark(at, fit_line(text, label_font_, room, &cut), label_font_, anchor);
    mark.turn = turn;
    if (cut) mark.tooltip = text;
    marks.push_back(std::move(mark));
  }

  void draw_panel_titles(std::vector<Mark>& marks, uint32_t index) const {
    const Panel& panel = binding_.panels[index];
    const std::vector<TextLines> titles = titles_of(panel);
    double lines = 0;
    for (const TextLines& title : titles)
      lines += static_cast<double>(title.lines.size());
    double y = -4 - lines * facet_font_.line_height();
    for (size_t i = 0; i < titles.size(); ++i) {
      y = put_lines(marks, titles[i], panel_.width / 2, y, facet_font_, Anchor::Middle,
                    panel.titles[i]);
    }
  }

  bool is_hidden(const LineGuide& guide, const Panel& panel) const {
    for (const auto& [name, value] : guide.hidden.clauses()) {
      const ChartVariable* variable =
          panel.source == nullptr ? nullptr : panel.source->by_role(name);
      if (variable == nullptr) continue;
      const auto& values = variable->values;
      switch (values.kind(panel.at_row)) {
        case output::ChartColumn::Kind::Unset:
          return true;
        case output::ChartColumn::Kind::Number:
          if (!output::names_value(value, values.number(panel.at_row))) return true;
          break;
        case output::ChartColumn::Kind::Text:
          if (!output::names_value(value, values.text(panel.at_row)) &&
              !output::names_value(value, output::plain_text(values.text(panel.at_row)))) {
            return true;
          }
      }
    }
    return false;
  }

  void draw_guide(std::vector<Mark>& marks, const LineGuide& guide, uint32_t index) const {
    if (is_hidden(guide, binding_.panels[index])) return;
    Mark mark;
    if (guide.y) {
      const double y = y_scale().at(*guide.y);
      if (!inside(y)) return;
      mark = rule_mark({0, y}, {panel_.width, y}, {Part::Guide}, 1.5);
    } else if (!x_.categorical) {
      const LinearScale x = x_scale();
      // The part of the line where both of its ends lie within the ranges.
      double low = x_.range.low;
      double high = x_.range.high;
      if (guide.slope != 0) {
        const double a = (y_.range.low - guide.intercept) / guide.slope;
        const double b = (y_.range.high - guide.intercept) / guide.slope;
        low = std::max(low, std::min(a, b));
        high = std::min(high, std::max(a, b));
      }
      if (!(low < high)) return;
      const auto point = [&](double at) {
        return Point{x.at(at), y_scale().at(guide.intercept + guide.slope * at)};
      };
      mark = rule_mark(point(low), point(high), {Part::Guide}, 1.5);
    }
    if (!mark.stroke) return;
    mark.dash = "7 4";
    marks.push_back(std::move(mark));
  }

  // The elements of one panel.

  void draw_element(std::vector<Mark>& marks, const BoundElement& element, uint32_t panel) const {
    if (element[RoleKind::Y] == nullptr || !is_positional(element)) return;
    switch (element.element->kind) {
      case ElementKind::Point:
        return draw_points(marks, element, panel);
      case ElementKind::Line:
        return draw_lines(marks, element, panel);
      default:
        return draw_intervals(marks, element, panel);
    }
  }

  /// Calls `draw` with the rows of each mark of the panel.
  template <class Draw>
  void each_mark(const BoundElement& element, uint32_t panel, Draw draw) const {
    const Rows rows = element.element->rows;
    const size_t step = rows == Rows::All ? 1 : 2;
    for (size_t row = rows == Rows::Second ? 1 : 0; row < element.rows(); row += step) {
      if (!element.in_panel(row, panel)) continue;
      const size_t partner = step == 1 ? row : row ^ 1;
      draw(RowPair{row, std::min(partner, element.rows() - 1)});
    }
  }

  void draw_points(std::vector<Mark>& marks, const BoundElement& element, uint32_t panel) const {
    if (element.rows() > kMostPoints) return draw_density(marks, element, panel);
    const double radius = point_radius(element.rows());
    each_mark(element, panel, [&](RowPair rows) {
      const double x = x_at(element, rows.row);
      const double y = y_at(element, rows.row);
      if (!std::isfinite(x) || !inside(y)) return;
      const Paint paint = binding_.paint_of(element, rows.row);
      Mark mark = symbol_mark({x, y}, radius, binding_.symbol_of(element, rows.row), paint);
      if (element[RoleKind::Transparency] != nullptr) {
        mark.opacity = opacity_.of(number_at(element[RoleKind::Transparency], rows.row));
        mark.stroke = paint;
        mark.stroke_width = radius > 3 ? 1 : 0.5;
      }
      if (element.rows() <= kMostTooltips) {
        mark.tooltip = binding_.tooltip_of(element, rows.row, rows.partner);
      }
      marks.push_back(std::move(mark));
    });
  }

  static double point_radius(size_t points) {
    return points <= 200 ? 4.5 : points <= 1000 ? 3.5 : points <= 5000 ? 2.5 : 1.6;
  }

  void draw_density(std::vector<Mark>& marks, const BoundElement& element, uint32_t panel) const {
    DensityRaster raster(panel_.width, panel_.height);
    each_mark(element, panel, [&](RowPair rows) {
      const double x = x_at(element, rows.row);
      const double y = y_at(element, rows.row);
      if (!std::isfinite(x) || !inside(y)) return;
      const double weight = number_at(element[RoleKind::Transparency], rows.row);
      raster.add(x, y, is_number(weight) ? weight : 1);
    });
    marks.push_back(
        image_mark({0, 0, raster.width(), raster.height()}, raster.png(), {Part::Mark}));
  }

  void draw_lines(std::vector<Mark>& marks, const BoundElement& element, uint32_t panel) const {
    std::map<uint32_t, Mark> by_color;
    each_mark(element, panel, [&](RowPair rows) {
      const Point point{x_at(element, rows.row), y_at(element, rows.row)};
      if (!std::isfinite(point.x) || !inside(point.y)) return;
      const auto [found, fresh] =
          by_color.try_emplace(binding_.colors.of(element, RoleKind::Color, rows.row));
      if (fresh) {
        found->second = path_mark({}, binding_.paint_of(element, rows.row), 1.5);
        found->second.dash = binding_.series_of(element, rows.row).dash;
      }
      found->second.points.push_back(point);
    });
    for (auto& [color, mark] : by_color)
      marks.push_back(std::move(mark));
  }

  void draw_intervals(std::vector<Mark>& marks, const BoundElement& element, uint32_t panel) const {
    each_mark(element, panel, [&](RowPair rows) {
      double x = x_at(element, rows.row);
      if (!std::isfinite(x)) x = x_at(element, rows.partner);
      double from = y_at(element, rows.row);
      double to = y_at(element, rows.partner);
      if (!std::isfinite(from)) from = to;
      if (!std::isfinite(to)) to = from;
      if (!std::isfinite(x) || !std::isfinite(from)) return;
      from = std::clamp(from, 0.0, panel_.height);
      to = std::clamp(to, 0.0, panel_.height);
      Mark mark = element.element->whisker ? whisker(element, rows.row, x, from, to)
                                           : bar(element, rows.row, x, from, to);
      mark.tooltip = binding_.tooltip_of(element, rows.row, rows.partner);
      marks.push_back(std::move(mark));
    });
  }

  Mark whisker(const BoundElement& element, size_t row, double x, double from, double to) const {
    const double cap = std::clamp(slot_ * 0.3, 2.0, 7.0);
    Mark mark = path_mark(
        {{x - cap, from}, {x + cap, from}, {x, from}, {x, to}, {x - cap, to}, {x + cap, to}},
        binding_.paint_of(element, row), 1.75);
    return mark;
  }

  Mark bar(const BoundElement& element, size_t row, double x, double from, double to) const {
    const double width = std::clamp(slot_ * 0.9, 3.0, kWidestSlot);
    const Paint paint = binding_.paint_of(element, row);
    Mark mark = rect_mark({x - width / 2, std::min(from, to), width, std::fabs(to - from)}, paint);
    mark.opacity = 0.25;
    mark.stroke = paint;
    mark.stroke_width = 1.25;
    mark.dash = binding_.series_of(element, row).dash;
    return mark;
  }

  void draw_axis_titles() {
    const double lowest = piece_.height;
    const double panels_top = facet_height();
    if (!y_title_.lines.empty() && binding_.graph.y.visible) {
      double x = title_font_.size;
      for (const std::string& line : y_title_.lines) {
        Mark mark = text_mark({x, (panels_top + lowest) / 2}, line, title_font_, Anchor::Middle);
        mark.turn = -90;
        if (y_title_.cut) mark.tooltip = y_.title;
        piece_.marks.push_back(std::move(mark));
        x += title_font_.line_height();
      }
    }
    double y = lowest;
    if (binding_.graph.x.visible) y += kTick + 4 + x_labels_.height;
    const double width = columns_ * (panel_.width + kPanelGap) - kPanelGap;
    if (!x_.title.empty() && binding_.graph.x.visible) {
      const TextLines lines = fit_text(x_.title, title_font_, width, 2);
      y = put_lines(piece_.marks, lines, panel_.x + width / 2, y + 4, title_font_, Anchor::Middle,
                    x_.title);
    }
    piece_.height = y + 4;
  }

  const Binding& binding_;
  HorizontalAxis x_;
  VerticalAxis y_;
  const Font& label_font_;
  const Font& title_font_;
  const Font& facet_font_;
  Opacity opacity_;
  double asked_width_;
  Piece piece_;
  uint32_t columns_ = 1;
  uint32_t rows_ = 1;
  Box panel_;  ///< of the first panel, ahead of its titles
  size_t facet_lines_ = 0;
  double row_height_ = 0;
  TextLines y_title_;
  std::vector<TickLabel> y_labels_;
  TickLabels x_labels_;
  double band_ = 0;  ///< room of a category
  size_t slots_ = 1;
  double slot_ = 0;  ///< room of a colour within it
};

}  // namespace

Piece draw_panels(const Binding& binding, double width) { return Panels(binding, width).draw(); }

}  // namespace hierfit::report::chart
