// Rows: a line for each category with its interval along x, and the numbers beside it.
#include <algorithm>
#include <cmath>

#include "report/chart/axes.h"
#include "report/chart/pieces.h"
#include "report/chart/scale.h"
#include "report/wording.h"

namespace hierfit::report::chart {
namespace {

constexpr double kGap = 12;         ///< between columns
constexpr double kRowGap = 8;       ///< between rows
constexpr double kCap = 4;          ///< half an end mark
constexpr double kPoint = 4;        ///< radius
constexpr double kLeastPlot = 170;  ///< below it the numbers beside give way
constexpr double kWidestName = 0.4;
constexpr size_t kMostLines = 3;  ///< of a name
constexpr size_t kMostRows = 120;

/// A row: its name, what is drawn and what stands beside it.
struct Row {
  const BoundElement* points;
  MarkRows rows;
  std::string name;
  double estimate;
  double lower;
  double upper;
  std::string interval;  ///< "1.2 [0.8, 1.6]"
  std::string label;     ///< of the point, "0.012"
};

class RowPlot {
 public:
  RowPlot(const Binding& binding, double width)
      : binding_(binding),
        font_(binding.font(Lettering::AxisLabel)),
        head_(binding.font(Lettering::AxisTitle)),
        width_(width) {}

  Piece draw() {
    collect();
    if (range_.empty) return {};
    share_width();
    piece_.width = width_;
    draw_heads();
    for (size_t panel = 0; panel < panels_.size(); ++panel)
      draw_panel(panel);
    draw_axis();
    return std::move(piece_);
  }

 private:
  const BoundElement* whiskers() const {
    const auto found = std::ranges::find_if(binding_.elements, [](const BoundElement& element) {
      return element.element->kind == ElementKind::Interval;
    });
    return found == binding_.elements.end() ? nullptr : &*found;
  }

  void collect() {
    panels_.resize(binding_.panels.size());
    size_t all = 0;
    for (const BoundElement& element : binding_.elements) {
      if (element.element->kind != ElementKind::Point || element[RoleKind::X] == nullptr) continue;
      element.each_mark([&](MarkRows rows) {
        if (!has_value(*element[RoleKind::X], rows.row)) return;
        if (++all > kMostRows) return;
        element.each_panel(rows.row, static_cast<uint32_t>(panels_.size()),
                           [&](uint32_t panel) { add(panels_[panel], element, rows); });
      });
    }
    if (all > kMostRows) {
      piece_.notes.push_back(filled(binding_.word("The first ^1 of ^2 are shown."),
                                    std::to_string(kMostRows), std::to_string(all)));
    }
    for (const LineGuide& guide : binding_.graph.guides) {
      if (guide.y && is_drawable(*guide.y)) range_.add(place_of(*guide.y));
    }
    if (!range_.empty) range_ = range_.proper().widened(0.04);
  }

  void add(std::vector<Row>& panel, const BoundElement& points, MarkRows rows) {
    const auto [row, partner] = rows;
    const ChartVariable* y = points[RoleKind::Y];
    const BoundElement* interval = whiskers();
    const ChartVariable* bounds = interval == nullptr ? nullptr : (*interval)[RoleKind::Y];
    Row made{.points = &points,
             .rows = rows,
             .name = shown_value(*points[RoleKind::X], row, binding_.numbers),
             .estimate = number_at(y, row),
             .lower = number_at(bounds, row),
             .upper = number_at(bounds, partner),
             .interval = {},
             .label = {}};
    if (is_number(made.estimate)) made.interval = shown_number(*y, made.estimate, binding_.numbers);
    if (bounds != nullptr && is_number(made.lower) && is_number(made.upper)) {
      made.interval += " [" + shown_number(*bounds, made.lower, binding_.numbers) +
                       std::string(list_mark(binding_.numbers)) +
                       shown_number(*bounds, made.upper, binding_.numbers) + "]";
    }
    const ChartVariable* label = points[RoleKind::Label];
    if (label != nullptr && has_value(*label, row)) {
      made.label = shown_value(*label, row, binding_.numbers);
    }
    for (const double value : {made.estimate, made.lower, made.upper}) {
      if (is_drawable(value)) range_.add(place_of(value));
    }
    panel.push_back(std::move(made));
  }

  // Places along x.

  bool is_log() const { return binding_.graph.y.log; }
  bool is_drawable(double value) const { return is_number(value) && (!is_log() || value > 0); }
  double place_of(double value) const { return is_log() ? std::log10(value) : value; }
  double x_at(double value) const { return scale_.at(place_of(value)); }

  /// Names left, numbers right as long as they leave the plot enough.
  void share_width() {
    double names = 0;
    double intervals = 0;
    double labels = 0;
    for (const std::vector<Row>& panel : panels_) {
      for (const Row& row : panel) {
        names = std::max(names, text_width(row.name, font_));
        intervals = std::max(intervals, text_width(row.interval, font_));
        labels = std::max(labels, text_width(row.label, font_));
      }
    }
    if (labels > 0) labels = std::max(labels, text_width(label_head(), head_));
    names_ = std::min(names, width_ * kWidestName);
    left_ = names_ + kGap;
    for (const double beside : {intervals + labels + 2 * kGap, labels + kGap, 0.0}) {
      right_ = width_ - beside - kGap;
      shows_intervals_ = beside > labels + kGap;
      shows_labels_ = labels > 0 && beside > 0;
      if (right_ - left_ >= kLeastPlot) break;
    }
    right_ = std::max(right_, left_ + 40);
    intervals_ = intervals;
    scale_ = LinearScale(range_, left_, right_);
  }

  std::string label_head() const {
    for (const BoundElement& element : binding_.elements) {
      if (element[RoleKind::Label] != nullptr) return label_of(*element[RoleKind::Label]);
    }
    return {};
  }

  // Marks.

  void draw_heads() {
    if (!shows_labels_) return;
    put(width_, head_.size, label_head(), head_, Anchor::End);
    y_ += head_.line_height() + 4;
  }

  void put(double x, double y, std::string text, const Font& font, Anchor anchor) {
    piece_.marks.push_back(text_mark({x, y}, std::move(text), font, anchor));
  }

  void draw_panel(size_t index) {
    if (panels_[index].empty()) return;
    const Font& font = binding_.font(Lettering::FacetTitle);
    for (const std::string& title : binding_.panels[index].titles) {
      if (title.empty()) continue;
      y_ = put_lines(piece_.marks, fit_text(title, font, width_, 3), 0, y_ + 4, font, Anchor::Start,
                     title);
    }
    y_ += 4;
    const double top = y_;
    std::vector<Mark> rows;
    std::swap(rows, piece_.marks);
    for (const Row& row : panels_[index])
      draw_row(row);
    std::swap(rows, piece_.marks);
    draw_guides(top, static_cast<uint32_t>(index));
    std::ranges::move(rows, std::back_inserter(piece_.marks));
  }

  void draw_row(const Row& row) {
    const TextLines name = lines_of(row.name);
    const double height =
        std::max(1.0, static_cast<double>(name.lines.size())) * font_.line_height();
    put_lines(piece_.marks, name, names_, y_, font_, Anchor::End, row.name);
    const double middle = y_ + height / 2;
    const double base = middle + font_.size * 0.35;
    draw_interval(row, middle);
    if (shows_intervals_) {
      put(right_ + kGap + intervals_, base, row.interval, font_, Anchor::End);
    }
    if (shows_labels_) put(width_, base, row.label, font_, Anchor::End);
    y_ += height + kRowGap;
  }

  /// As many lines as tell the names apart; numbers would not help, since rows have room.
  TextLines lines_of(const std::string& name) const {
    const TextLines lines = fit_text(name, font_, names_, kMostLines);
    return lines.cut ? fit_text(name, font_, names_, 4 * kMostLines) : lines;
  }

  void draw_interval(const Row& row, double y) {
    const Paint paint{Part::Mark};
    std::string tooltip = binding_.tooltip_of(*row.points, row.rows);
    if (is_drawable(row.lower) && is_drawable(row.upper)) {
      const double from = x_at(row.lower);
      const double to = x_at(row.upper);
      Mark mark = path_mark(
          {{from, y - kCap}, {from, y + kCap}, {from, y}, {to, y}, {to, y - kCap}, {to, y + kCap}},
          paint, 1.5);
      mark.tooltip = tooltip;
      piece_.marks.push_back(std::move(mark));
    }
    if (!is_drawable(row.estimate)) return;
    Mark mark = symbol_mark({x_at(row.estimate), y}, kPoint, Symbol::Square, paint);
    mark.tooltip = std::move(tooltip);
    piece_.marks.push_back(std::move(mark));
  }

  void draw_guides(double top, uint32_t panel) {
    for (const TickLabel& tick : ticks())
      piece_.marks.push_back(rule_mark({tick.at, top}, {tick.at, y_}, {Part::Grid}));
    for (const LineGuide& guide : binding_.graph.guides) {
      if (!guide.y || !is_drawable(*guide.y) || is_hidden(guide, binding_.panels[panel])) continue;
      Mark mark = rule_mark({x_at(*guide.y), top}, {x_at(*guide.y), y_}, {Part::Guide}, 1.5);
      mark.dash = "7 4";
      piece_.marks.push_back(std::move(mark));
    }
  }

  std::vector<TickLabel> ticks() const {
    const ChartVariable* y = vertical_axis(binding_).variable;
    if (!is_log()) return number_labels(binding_, y, scale_, right_ - left_, font_, true);
    return log_labels(binding_, scale_, font_);
  }

  void draw_axis() {
    piece_.marks.push_back(rule_mark({left_, y_}, {right_, y_}, {Part::Axis}));
    for (const TickLabel& tick : ticks()) {
      piece_.marks.push_back(rule_mark({tick.at, y_}, {tick.at, y_ + 5}, {Part::Axis}));
      put(tick.at, y_ + 7 + font_.size, tick.text, font_, Anchor::Middle);
    }
    y_ += 7 + font_.line_height() + 4;
    const std::string title = vertical_axis(binding_).title;
    const double middle = (left_ + right_) / 2;
    const double room = 2 * std::min(middle, width_ - middle);
    y_ = put_lines(piece_.marks, fit_text(title, head_, room, 3), middle, y_, head_, Anchor::Middle,
                   title);
    piece_.height = y_ + 4;
  }

  const Binding& binding_;
  const Font& font_;
  const Font& head_;
  double width_;
  std::vector<std::vector<Row>> panels_;
  Range range_;  ///< of the places along x
  LinearScale scale_;
  double names_ = 0;      ///< where names end
  double left_ = 0;       ///< of the plot
  double right_ = 0;      ///< of the plot
  double intervals_ = 0;  ///< the width of the widest
  bool shows_intervals_ = false;
  bool shows_labels_ = false;
  double y_ = 0;
  Piece piece_;
};

}  // namespace

Piece draw_rows(const Binding& binding, double width) { return RowPlot(binding, width).draw(); }

}  // namespace hierfit::report::chart
