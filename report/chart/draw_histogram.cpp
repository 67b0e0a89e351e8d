// The histogram inside a node: bars, the curve of a distribution, an axis.
#include <algorithm>
#include <cmath>
#include <map>

#include "report/chart/axes.h"
#include "report/chart/pieces.h"
#include "report/chart/tally.h"

namespace hierfit::report::chart {
namespace {

constexpr double kNarrowestBar = 2;

class HistogramDrawing {
 public:
  HistogramDrawing(std::vector<Mark>& marks,
                   const Binding& binding,
                   const Embedded& embedded,
                   const Box& box)
      : marks_(marks),
        binding_(binding),
        histogram_(*embedded.graph.histogram),
        tally_(tally(embedded, binding.chart)),
        box_(box),
        font_{std::max(10.0, binding.font(Lettering::AxisLabel).size - 2), false} {}

  void draw() {
    if (tally_.weights.empty()) return;
    box_.height -= font_.line_height() + 3;
    // More values than there is room for bars are numbers like others.
    const bool fit = static_cast<double>(tally_.weights.size()) <= box_.width / kNarrowestBar;
    if (tally_.categorical && fit) {
      draw_values(tally_.weights);
    } else {
      draw_bins();
    }
    marks_.push_back(
        rule_mark({box_.x, box_.bottom()}, {box_.right(), box_.bottom()}, {Part::Axis}));
  }

 private:
  // Categories: a bar for each value.

  void draw_values(const std::map<double, double>& values) {
    double most = 0;
    for (const auto& [value, weight] : values)
      most = std::max(most, weight);
    const double band = box_.width / static_cast<double>(values.size());
    double x = box_.x;
    double label_end = -HUGE_VAL;
    for (const auto& [value, weight] : values) {
      draw_bar(x + band * 0.12, band * 0.76, weight / most, shown(value), weight);
      bool cut = false;
      const std::string whole = shown(value);
      const std::string label = fit_line(whole, font_, std::max(band - 4, 14.0), &cut);
      const double half = text_width(label, font_) / 2;
      if (x + band / 2 - half > label_end + 2) {
        put_label(x + band / 2, label, cut ? whole : std::string());
        label_end = x + band / 2 + half;
      }
      x += band;
    }
  }

  // Numbers: bins of equal width.

  void draw_bins() {
    const Bins bins = bins_of(tally_, histogram_, std::floor(box_.width / 2));
    double top = *std::ranges::max_element(bins.heights);
    for (const double height : bins.curve)
      top = std::max(top, std::min(height, bins.highest));
    draw_bin_bars(bins, top);
    draw_curve(bins.curve, top);
    draw_range_labels(bins.range);
  }

  void draw_bin_bars(const Bins& bins, double top) {
    const double step = box_.width / static_cast<double>(bins.heights.size());
    for (size_t i = 0; i < bins.heights.size(); ++i) {
      const double height = bins.heights[i];
      if (height <= 0) continue;
      draw_bar(box_.x + static_cast<double>(i) * step, step - std::min(1.0, step / 4), height / top,
               shown(bins.values_of(i)), height);
    }
  }

  /// What lies above the picture is left out; the line runs to its upper side.
  void draw_curve(const std::vector<double>& curve, double top) {
    std::vector<Point> points;
    const auto put = [&](double step, double height) {
      const double along = step / static_cast<double>(curve.size() - 1);
      points.push_back({box_.x + box_.width * along, box_.bottom() - height / top * box_.height});
    };
    for (size_t i = 0; i < curve.size(); ++i) {
      const auto step = static_cast<double>(i);
      if (i > 0 && (curve[i] > top) != (curve[i - 1] > top)) {
        put(step - (curve[i] - top) / (curve[i] - curve[i - 1]), top);
        if (curve[i] > top) points.push_back(kBreak);
      }
      if (curve[i] <= top) put(step, std::max(curve[i], 0.0));
    }
    if (!points.empty()) marks_.push_back(path_mark(std::move(points), {Part::Curve}, 2));
  }

  void draw_range_labels(const Range& range) {
    const LinearScale scale(range, 0, box_.width);
    for (const TickLabel& label :
         number_labels(binding_, tally_.variable, scale, box_.width * 1.4, font_, true)) {
      const double half = text_width(label.text, font_) / 2;
      const double x = box_.x + label.at;
      marks_.push_back(rule_mark({x, box_.bottom()}, {x, box_.bottom() + 3}, {Part::Axis}));
      put_label(std::clamp(x, box_.x - 4 + half, std::max(box_.right() + 4 - half, box_.x)),
                label.text, "");
    }
  }

  /// "3", or "3 – 5".
  std::string shown(const Range& values) const {
    if (values.low == values.high) return shown(values.low);
    return shown(values.low) + " \u2013 " + shown(values.high);
  }

  std::string shown(double value) const {
    return shown_number(*tally_.variable, value, binding_.numbers);
  }

  void draw_bar(double x, double width, double share, const std::string& value, double weight) {
    const double height = std::max(share * box_.height, 0.5);
    Mark mark = rect_mark({x, box_.bottom() - height, width, height}, {Part::Mark});
    mark.opacity = 0.75;
    mark.tooltip =
        value + ": " + output::shown({weight, output::Format::SigDigit, 0}, binding_.numbers);
    marks_.push_back(std::move(mark));
  }

  void put_label(double x, const std::string& text, const std::string& tooltip) {
    Mark mark = text_mark({x, box_.bottom() + 3 + font_.size}, text, font_, Anchor::Middle);
    mark.tooltip = tooltip;
    marks_.push_back(std::move(mark));
  }

  std::vector<Mark>& marks_;
  const Binding& binding_;
  const Histogram& histogram_;
  const Tally tally_;
  Box box_;
  Font font_;
};

}  // namespace

bool has_histogram(const Binding& binding, const Element& element) {
  if (element.embedded == nullptr || !element.embedded->graph.histogram) return false;
  const ChartSource* source = binding.chart.source(element.embedded->source);
  const ChartVariable* variable =
      source == nullptr ? nullptr : source->by_role(element.embedded->graph.histogram->variable);
  if (variable == nullptr) return false;
  for (size_t row = 0; row < source->rows; ++row) {
    if (is_number(number_at(variable, row))) return true;
  }
  return false;
}

void draw_histogram(std::vector<Mark>& marks,
                    const Binding& binding,
                    const Embedded& embedded,
                    const Box& box) {
  if (!embedded.graph.histogram || box.width < 20 || box.height < 30) return;
  HistogramDrawing(marks, binding, embedded, box).draw();
}

}  // namespace hierfit::report::chart
