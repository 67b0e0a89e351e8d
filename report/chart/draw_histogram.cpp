// The histogram inside a node: bars, the curve of a distribution, an axis.
#include <algorithm>
#include <cmath>
#include <map>

#include "report/chart/distribution.h"
#include "report/chart/panels.h"
#include "report/chart/pieces.h"

namespace hierfit::report::chart {
namespace {

constexpr int kCategorical = 1;
constexpr int kOrdinal = 2;
constexpr double kMostBins = 60;
constexpr double kNarrowestBar = 2;
constexpr int kCurveSteps = 96;
constexpr double kCurveRoom = 1.25;  ///< how far above the highest bar a curve may rise

/// A value and how often it occurs.
struct Count {
  double value;
  double weight;
};

class HistogramDrawing {
 public:
  HistogramDrawing(std::vector<Mark>& marks,
                   const Binding& binding,
                   const Embedded& embedded,
                   const Box& box)
      : marks_(marks),
        binding_(binding),
        embedded_(embedded),
        histogram_(*embedded.graph.histogram),
        box_(box),
        font_{std::max(10.0, binding.font(Lettering::AxisLabel).size - 2), false} {}

  void draw() {
    read_counts();
    if (counts_.empty() || !(total_ > 0)) return;
    box_.height -= font_.line_height() + 3;
    const bool categorical =
        embedded_.field_type == kCategorical || embedded_.field_type == kOrdinal;
    const std::map<double, double> values = by_value();
    // More values than there is room for bars are numbers like others.
    const bool fit = static_cast<double>(values.size()) <= box_.width / kNarrowestBar;
    categorical&& fit ? draw_values(values) : draw_bins();
    marks_.push_back(
        rule_mark({box_.x, box_.bottom()}, {box_.right(), box_.bottom()}, {Part::Axis}));
  }

 private:
  void read_counts() {
    const ChartSource* source = binding_.chart.source(embedded_.source);
    if (source == nullptr) return;
    variable_ = source->by_role(histogram_.variable);
    const ChartVariable* weight = source->by_role(histogram_.weight);
    if (variable_ == nullptr) return;
    for (size_t row = 0; row < source->rows; ++row) {
      const double value = number_at(variable_, row);
      const double times = weight == nullptr ? 1 : number_at(weight, row);
      if (!is_number(value) || !(times > 0)) continue;
      counts_.push_back({value, times});
      total_ += times;
      range_.add(value);
    }
  }

  // Categories: a bar for each value.

  std::map<double, double> by_value() const {
    std::map<double, double> weights;
    for (const Count& count : counts_)
      weights[count.value] += count.weight;
    return weights;
  }

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
    const Range range = range_.proper();
    const double wanted = histogram_.bins > 0
                              ? static_cast<double>(histogram_.bins)
                              : std::ceil(std::sqrt(static_cast<double>(counts_.size())));
    const double bins = std::clamp(wanted, 1.0, std::min(kMostBins, std::floor(box_.width / 2)));
    const double width = (range.high - range.low) / bins;
    std::vector<double> heights(static_cast<size_t>(bins));
    for (const Count& count : counts_) {
      // A value at an edge, reckoned with rounding, belongs to the bin above.
      const double place = std::floor((count.value - range.low) / width + 1e-9);
      heights[static_cast<size_t>(std::clamp(place, 0.0, bins - 1))] += count.weight;
    }
    const std::vector<double> curve = curve_over(range, total_ * width);
    const double highest = *std::ranges::max_element(heights);
    double top = highest;
    for (const double height : curve)
      top = std::max(top, std::min(height, highest * kCurveRoom));
    draw_bin_bars(heights, range, top);
    draw_curve(curve, top);
    draw_range_labels(range);
  }

  void draw_bin_bars(const std::vector<double>& heights, const Range& range, double top) {
    const auto bins = static_cast<double>(heights.size());
    const double step = box_.width / bins;
    const double width = (range.high - range.low) / bins;
    for (size_t i = 0; i < heights.size(); ++i) {
      if (heights[i] <= 0) continue;
      const double low = range.low + static_cast<double>(i) * width;
      draw_bar(box_.x + static_cast<double>(i) * step, step - std::min(1.0, step / 4),
               heights[i] / top, shown(low) + " \u2013 " + shown(low + width), heights[i]);
    }
  }

  /// The curve at equal steps over the range; empty when there is none.
  std::vector<double> curve_over(const Range& range, double area) const {
    if (!histogram_.curve) return {};
    double mean = 0;
    for (const Count& count : counts_)
      mean += count.value * (count.weight / total_);
    double squares = 0;
    for (const Count& count : counts_)
      squares += (count.value - mean) * (count.value - mean) * count.weight;
    const auto density =
        density_of(*histogram_.curve, mean, std::sqrt(squares / std::max(total_ - 1, 1.0)));
    if (!density) return {};
    std::vector<double> curve;
    for (int i = 0; i <= kCurveSteps; ++i) {
      const double height = density(range.low + (range.high - range.low) * i / kCurveSteps) * area;
      curve.push_back(std::isnan(height) ? 0 : height);
    }
    return curve;
  }

  void draw_curve(const std::vector<double>& curve, double top) {
    if (curve.empty()) return;
    std::vector<Point> points;
    for (size_t i = 0; i < curve.size(); ++i) {
      const double share = std::clamp(curve[i] / top, 0.0, 1.0);
      points.push_back({box_.x + box_.width * static_cast<double>(i) / kCurveSteps,
                        box_.bottom() - share * box_.height});
    }
    marks_.push_back(path_mark(std::move(points), {Part::Curve}, 2));
  }

  void draw_range_labels(const Range& range) {
    const LinearScale scale(range, 0, box_.width);
    for (const TickLabel& label :
         number_labels(binding_, variable_, scale, box_.width * 1.4, font_, true)) {
      const double half = text_width(label.text, font_) / 2;
      const double x = box_.x + label.at;
      marks_.push_back(rule_mark({x, box_.bottom()}, {x, box_.bottom() + 3}, {Part::Axis}));
      put_label(std::clamp(x, box_.x - 4 + half, std::max(box_.right() + 4 - half, box_.x)),
                label.text, "");
    }
  }

  std::string shown(double value) const {
    return shown_number(*variable_, value, binding_.numbers);
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
  const Embedded& embedded_;
  const Histogram& histogram_;
  Box box_;
  Font font_;
  const ChartVariable* variable_ = nullptr;
  std::vector<Count> counts_;
  double total_ = 0;
  Range range_;
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
