// The legends: one below the other, the entries of each flow like words.
#include <algorithm>
#include <cmath>
#include <set>

#include "report/chart/density.h"
#include "report/chart/pieces.h"
#include "report/chart/scale.h"
#include "report/wording.h"

namespace hierfit::report::chart {
namespace {

constexpr double kEntryGap = 18;
constexpr double kSampleGap = 6;
constexpr double kRowHeight = 19;
constexpr size_t kMostEntries = 60;
constexpr size_t kMostEntryLines = 8;

/// A legend's entry: what it looks like, drawn around the middle of a row, and what it means.
struct Entry {
  std::vector<Mark> sample;
  double width = 14;
  std::string text;
};

bool has_kind(const Binding& binding, RoleKind role, ElementKind kind) {
  return std::ranges::any_of(binding.elements, [&](const BoundElement& element) {
    return element[role] != nullptr && element.element->kind == kind;
  });
}

bool has_bars(const Binding& binding) {
  return std::ranges::any_of(binding.elements, [](const BoundElement& element) {
    return element[RoleKind::Color] != nullptr && element.element->kind == ElementKind::Interval &&
           !element.element->whisker;
  });
}

std::vector<Mark> line_sample(Paint paint, double width, const std::string& dash) {
  Mark mark = rule_mark({0, 0}, {28, 0}, paint, width);
  mark.dash = dash;
  return {std::move(mark)};
}

std::vector<Mark> bar_sample(Paint paint, const std::string& dash, Symbol symbol) {
  Mark mark = rect_mark({0, -6, 20, 12}, paint);
  mark.opacity = 0.25;
  mark.stroke = paint;
  mark.stroke_width = 1.25;
  mark.dash = dash;
  return {std::move(mark), symbol_mark({10, 0}, 3.5, symbol, paint)};
}

Entry color_entry(const Binding& binding, uint32_t step, const std::string& text) {
  const Part palette = binding.colors.role->palette;
  const Paint paint{palette, static_cast<uint8_t>(step % binding.plan.style.steps(palette))};
  const std::string& dash = binding.plan.style.series(paint).dash;
  if (has_kind(binding, RoleKind::Color, ElementKind::Edge)) {
    const bool plain = palette == Part::Significance && paint.step == 0;
    return {line_sample(paint, plain ? 1 : 2.5, dash), 28, text};
  }
  if (has_bars(binding)) return {bar_sample(paint, dash, binding.symbol_of_step(step)), 20, text};
  Entry entry{{symbol_mark({6, 0}, 4.5, binding.symbol_of_step(step), paint)}, 12, text};
  const bool dashed = binding.colors.values.size() > binding.plan.style.steps(palette);
  if (dashed && has_kind(binding, RoleKind::Color, ElementKind::Interval)) {
    Mark whisker = rule_mark({6, -9}, {6, 9}, paint, 1.75);
    whisker.dash = binding.dash_of_step(step);
    entry.sample.insert(entry.sample.begin(), std::move(whisker));
  }
  return entry;
}

std::vector<Entry> color_entries(const Binding& binding, const LegendFacts& facts) {
  std::vector<Entry> entries;
  const auto& values = binding.colors.values.entries();
  for (uint32_t step = 0; step < std::min(values.size(), facts.colors); ++step) {
    if (values[step].occurs && !values[step].shown.empty()) {
      entries.push_back(color_entry(binding, step, values[step].shown));
    }
  }
  return entries;
}

std::vector<Entry> shape_entries(const Binding& binding, const LegendFacts& /*facts*/) {
  std::vector<Entry> entries;
  const auto& values = binding.shapes.values.entries();
  for (uint32_t i = 0; i < values.size(); ++i) {
    if (!values[i].occurs) continue;
    const Symbol symbol = binding.symbol_of_shape(i);
    // The frame is the target's, which says itself what it is.
    if (symbol == Symbol::Frame) continue;
    entries.push_back({{symbol_mark({6, 0}, 5.5, symbol, {Part::Text})}, 12, values[i].shown});
  }
  return entries;
}

/// The first variable bound to a role, or null.
const ChartVariable* variable_of(const Binding& binding, RoleKind kind) {
  for (const BoundElement& element : binding.elements) {
    if (element[kind] != nullptr) return element[kind];
  }
  return nullptr;
}

std::vector<Entry> size_entries(const Binding& binding, const LegendFacts& /*facts*/) {
  std::vector<Entry> entries;
  const ChartVariable* variable = variable_of(binding, RoleKind::Size);
  if (variable == nullptr) return entries;
  const LineWidths widths(binding);
  for (const double value : legend_values(*variable)) {
    const std::string range = shown_number(*variable, value, binding.numbers);
    const bool has_label = variable->label_of(value) != nullptr;
    entries.push_back({line_sample({Part::Text}, widths.of(value), ""), 28,
                       has_label ? with_marks(range, binding.numbers) : range});
  }
  return entries;
}

/// Weights from one to the densest cell's, each about the same step stronger.
std::vector<double> raster_steps(double densest) {
  constexpr double kSteps[] = {1, 2, 5};
  std::vector<double> all;
  double power = 1;
  while (power < densest) {
    for (const double step : kSteps) {
      if (step * power < densest) all.push_back(step * power);
    }
    power *= 10;
  }
  constexpr size_t kMost = 4;
  const size_t every = (all.size() + kMost - 1) / kMost;
  std::vector<double> steps;
  for (size_t i = 0; i < all.size(); i += every)
    steps.push_back(all[i]);
  // The last step keeps clear of the densest.
  if (steps.size() > 1 && steps.back() * 1.5 > densest) steps.pop_back();
  steps.push_back(densest);
  return steps;
}

std::vector<Entry> raster_entries(const Binding& binding,
                                  const ChartVariable& variable,
                                  double densest) {
  std::vector<Entry> entries;
  for (const double weight : raster_steps(densest)) {
    Mark mark = rect_mark({0, -6, 14, 12}, {Part::Mark});
    mark.opacity = DensityRaster::strength_of(weight, densest);
    entries.push_back({{std::move(mark)}, 14, shown_number(variable, weight, binding.numbers)});
  }
  return entries;
}

std::vector<Entry> opacity_entries(const Binding& binding, const LegendFacts& facts) {
  const ChartVariable* variable = variable_of(binding, RoleKind::Transparency);
  if (variable == nullptr) return {};
  if (facts.densest > 0) return raster_entries(binding, *variable, facts.densest);
  std::vector<Entry> entries;
  const Opacity opacity(binding);
  for (const double value : legend_values(*variable)) {
    Mark mark = circle_mark({6, 0}, 5, {Part::Mark});
    mark.opacity = opacity.of(value);
    mark.stroke = {Part::Mark};
    entries.push_back({{std::move(mark)}, 12, shown_number(*variable, value, binding.numbers)});
  }
  return entries;
}

struct LegendType {
  RoleKind role;
  std::vector<Entry> (*entries)(const Binding&, const LegendFacts&);
};
constexpr LegendType kLegendTypes[] = {
    {RoleKind::Color, color_entries},
    {RoleKind::Shape, shape_entries},
    {RoleKind::Size, size_entries},
    {RoleKind::Transparency, opacity_entries},
};

std::vector<Entry> entries_of(const Binding& binding, RoleKind role, const LegendFacts& facts) {
  for (const LegendType& type : kLegendTypes) {
    if (type.role == role) return type.entries(binding, facts);
  }
  return {};
}

/// Marks put one behind another, on a further row where the width ends.
class Flow {
 public:
  Flow(const Binding& binding, double width)
      : font_(binding.font(Lettering::LegendLabel)),
        title_font_(binding.font(Lettering::LegendTitle)),
        width_(width) {}

  void title(const std::string& text) {
    if (text.empty()) return;
    const double room = width_ - 20;
    bool cut = false;
    const std::string line = fit_line(text, title_font_, room, &cut);
    Mark mark = text_mark({0, baseline(title_font_)}, line, title_font_);
    if (cut) mark.tooltip = text;
    piece_.marks.push_back(std::move(mark));
    x_ = text_width(line, title_font_) + kEntryGap;
  }

  /// What does not fit into a line has several of its own.
  void entry(Entry&& entry) {
    const double gap = entry.sample.empty() ? 0 : kSampleGap;
    const double room = std::max(width_ - entry.width - gap - 4, 40.0);
    const TextLines lines = fit_text(entry.text, font_, room, kMostEntryLines);
    const double width = entry.width + gap + lines.width(font_);
    if (x_ > 0 && x_ + width > width_) next_row();
    for (Mark& mark : entry.sample) {
      shift(mark, x_, y_ + kRowHeight / 2);
      piece_.marks.push_back(std::move(mark));
    }
    const double left = x_ + entry.width + gap;
    put_lines(piece_.marks, lines, left, baseline(font_) - font_.size, font_, Anchor::Start,
              entry.text);
    x_ += width + kEntryGap;
    if (lines.lines.size() < 2) return;
    y_ += static_cast<double>(lines.lines.size() - 1) * font_.line_height();
    next_row();
  }

  void next_row() {
    if (x_ == 0) return;
    x_ = 0;
    y_ += kRowHeight;
  }

  Piece take() {
    piece_.width = width_;
    piece_.height = y_;
    return std::move(piece_);
  }

 private:
  double baseline(const Font& font) const { return y_ + kRowHeight / 2 + font.size * 0.35; }

  const Font& font_;
  const Font& title_font_;
  double width_;
  double x_ = 0;
  double y_ = 0;
  Piece piece_;
};

std::string title_of(const Legend& legend, const Binding& binding) {
  if (!legend.title.empty()) return legend.title;
  const ChartVariable* variable = variable_of(binding, legend.role);
  return variable == nullptr ? std::string() : variable->label;
}

}  // namespace

std::vector<double> legend_values(const ChartVariable& variable) {
  Range range;
  bool whole = true;
  std::set<double, std::greater<>> labelled;
  for (const double value : variable.values.numbers()) {
    if (!is_number(value)) continue;
    range.add(value);
    whole = whole && value == std::floor(value);
    if (labelled.size() < kMostEntries && variable.label_of(value) != nullptr)
      labelled.insert(value);
  }
  if (!labelled.empty()) return {labelled.begin(), labelled.end()};
  if (range.empty || range.low == range.high) return {};
  std::vector<double> values = ticks_of(range, 5).values;
  if (whole) std::erase_if(values, [](double value) { return value != std::floor(value); });
  if (values.size() < 2) values = {range.low, range.high};
  return values;
}

Piece draw_legends(const Binding& binding, const LegendFacts& facts, double width) {
  Flow flow(binding, width);
  for (const Legend& legend : binding.graph.legends) {
    std::vector<Entry> entries = entries_of(binding, legend.role, facts);
    if (entries.empty()) continue;
    const size_t left_out = entries.size() - std::min(entries.size(), kMostEntries);
    entries.resize(entries.size() - left_out);
    flow.title(title_of(legend, binding));
    for (Entry& entry : entries)
      flow.entry(std::move(entry));
    if (left_out > 0) {
      flow.entry({{}, 0, filled(binding.word("and ^1 more"), std::to_string(left_out))});
    }
    flow.next_row();
  }
  if (facts.keys.empty()) return flow.take();
  flow.title(facts.keys_title);
  for (size_t i = 0; i < facts.keys.size(); ++i)
    flow.entry({{}, 0, std::to_string(i + 1) + "\u2002" + facts.keys[i]});
  flow.next_row();
  return flow.take();
}

}  // namespace hierfit::report::chart
