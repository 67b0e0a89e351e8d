#include "report/chart/axes.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <utility>

namespace hierfit::report::chart {
namespace {

constexpr double kGap = 8;       ///< between names
constexpr double kTightGap = 4;  ///< between names that would have to turn else
constexpr size_t kMostLabelLines = 3;
constexpr double kLongestTurned = 130;                      ///< names at half a right angle
constexpr std::array<double, 2> kLongestUpright{170, 240};  ///< the longer for those cut alike else
constexpr double kSlantedBand = 24;  ///< the narrowest for names at half a right angle
constexpr double kNearZero = 0.2;    ///< a share of the range
constexpr double kSlope = 0.70710678;

bool holds_text(const ChartVariable& variable) {
  if (variable.values.all_numbers()) return false;
  for (size_t row = 0; row < variable.values.rows(); ++row) {
    if (variable.values.kind(row) == output::ChartColumn::Kind::Text) return true;
  }
  return false;
}

/// The limits of the axis, where it has proper ones.
Range with_limits(Range range, const Axis& axis) {
  if (axis.zero) range.add(0);
  if (axis.min && axis.max && *axis.min < *axis.max) return {*axis.min, *axis.max, false};
  const Range proper = range.proper();
  range = proper.widened(0.05);
  // Zero, where it is near, ends the axis; room beside the marks makes no numbers of the other
  // sign.
  const double near = kNearZero * (proper.high - proper.low);
  if (proper.low >= 0) range.low = proper.low <= near ? 0 : std::max(range.low, 0.0);
  if (proper.high <= 0) range.high = proper.high >= -near ? 0 : std::min(range.high, 0.0);
  if (axis.min && *axis.min < range.high) range.low = *axis.min;
  if (axis.max && *axis.max > range.low) range.high = *axis.max;
  return range;
}

std::string title_of(const Axis& axis, const ChartVariable* variable) {
  if (!axis.label.empty() || variable == nullptr) return axis.label;
  return variable->label.empty() && variable->format == std::nullopt ? std::string()
                                                                     : label_of(*variable);
}

std::string number_text(const Binding& binding,
                        const ChartVariable* variable,
                        double value,
                        int decimals) {
  const std::string* label = variable == nullptr ? nullptr : variable->label_of(value);
  if (label != nullptr) return *label;
  return output::shown({value, output::Format::Fixed, static_cast<uint8_t>(decimals)},
                       binding.numbers);
}

/// Whether names of these widths at these places keep clear of one another.
bool clear(const std::vector<TickLabel>& labels, const Font& font, bool upright) {
  double end = -HUGE_VAL;
  for (const TickLabel& label : labels) {
    const double half = upright ? text_width(label.text, font) / 2 : font.size / 2;
    if (label.at - half < end + kGap) return false;
    end = label.at + half;
  }
  return true;
}

TickLabels all_labels(const HorizontalAxis& axis, size_t count, double band, size_t every) {
  TickLabels labels;
  for (size_t i = 0; i < count; i += every) {
    labels.labels.push_back(
        {(static_cast<double>(i) + 0.5) * band, axis.categories.entries()[i].shown});
  }
  return labels;
}

/// Whether all names stand in their bands, in at most three lines broken at blanks.
bool upright_labels(TickLabels& labels, const Font& font, double room) {
  labels.room = room;
  labels.lines = 1;
  for (const TickLabel& label : labels.labels) {
    if (widest_word(label.text, font) > labels.room) return false;
    const TextLines lines = fit_text(label.text, font, labels.room, kMostLabelLines);
    if (lines.cut) return false;
    labels.lines = std::max(labels.lines, lines.lines.size());
  }
  labels.height = static_cast<double>(labels.lines) * font.line_height();
  return true;
}

double longest(const TickLabels& labels, const Font& font) {
  double length = 0;
  for (const TickLabel& label : labels.labels)
    length = std::max(length, text_width(label.text, font));
  return length;
}

/// The place of a row's value in the space of the data: its category, or its number.
std::optional<double> place_on(const HorizontalAxis& axis, const ChartVariable& x, size_t row) {
  if (axis.categorical) {
    const uint32_t category = axis.categories.find(x, row);
    return category == ValueIndex::kNone ? std::nullopt : std::optional<double>(category);
  }
  const double value = number_at(&x, row);
  const bool shown = is_number(value) && value >= axis.range.low && value <= axis.range.high;
  return shown ? std::optional(value) : std::nullopt;
}

/// Turns the names. False when two of them would be cut to the same text.
bool turn(TickLabels& labels, const Font& font, double degrees, double room) {
  std::vector<std::string> names;
  for (const TickLabel& label : labels.labels)
    names.push_back(label.text);
  if (are_cut_alike(names, [&](const std::string& name) { return fit_line(name, font, room); })) {
    return false;
  }
  labels.turn = degrees;
  labels.room = room;
  const double length = std::min(longest(labels, font), room);
  labels.height = degrees == -90 ? length + 4 : length * kSlope + font.size;
  return true;
}

/// Numbers in place of the names.
TickLabels numbered(TickLabels labels, const Font& font, double band, size_t every) {
  for (size_t i = 0; i < labels.labels.size(); ++i) {
    std::string number = std::to_string(i * every + 1);
    labels.keys.push_back(std::exchange(labels.labels[i].text, std::move(number)));
  }
  labels.turn = 0;
  if (every > 1 || !upright_labels(labels, font, band)) turn(labels, font, -90, kLongestTurned);
  return labels;
}

}  // namespace

HorizontalAxis horizontal_axis(const Binding& binding) {
  HorizontalAxis axis;
  for (const BoundElement& element : binding.elements) {
    const ChartVariable* x = element[RoleKind::X];
    if (x == nullptr || !is_positional(element.element->kind)) continue;
    if (axis.variable == nullptr) {
      axis.variable = x;
      axis.categorical = x->categorical || holds_text(*x);
    }
    for (size_t row = 0; row < element.rows(); ++row) {
      if (axis.categorical) {
        axis.categories.add(*x, row, binding.numbers);
      } else if (const double value = number_at(x, row); is_number(value)) {
        axis.range.add(value);
      }
    }
  }
  axis.range = with_limits(axis.range, binding.graph.x);
  axis.title = title_of(binding.graph.x, axis.variable);
  return axis;
}

VerticalAxis vertical_axis(const Binding& binding) {
  VerticalAxis axis;
  for (const BoundElement& element : binding.elements) {
    const ChartVariable* y = element[RoleKind::Y];
    if (y == nullptr || !is_positional(element.element->kind)) continue;
    if (axis.variable == nullptr) axis.variable = y;
    for (size_t row = 0; row < element.rows(); ++row) {
      if (const double value = number_at(y, row); is_number(value)) axis.range.add(value);
    }
  }
  for (const LineGuide& guide : binding.graph.guides) {
    if (guide.y && axis.variable != nullptr) axis.range.add(*guide.y);
  }
  axis.range = with_limits(axis.range, binding.graph.y);
  axis.title = title_of(binding.graph.y, axis.variable);
  return axis;
}

bool colors_share_places(const Binding& binding, const HorizontalAxis& axis) {
  std::map<std::pair<uint32_t, double>, uint32_t> color_of;
  for (const BoundElement& element : binding.elements) {
    if (!is_positional(element.element->kind) || element[RoleKind::X] == nullptr) continue;
    for (size_t row = 0; row < element.rows(); ++row) {
      const uint32_t color = binding.colors.of(element, RoleKind::Color, row);
      const std::optional<double> place = place_on(axis, *element[RoleKind::X], row);
      if (color == ValueIndex::kNone || !place) continue;
      const auto [at, added] = color_of.try_emplace({element.panel_of(row), *place}, color);
      if (at->second != color) return true;
    }
  }
  return false;
}

TickLabels category_labels(
    const HorizontalAxis& axis, size_t count, const Font& font, double band, double lead) {
  const double line = font.line_height();
  const auto every = static_cast<size_t>(std::max(1.0, std::ceil(line / std::max(band, 1e-3))));
  TickLabels labels = all_labels(axis, count, band, every);
  // Names that just touch still read better upright than turned.
  for (const double gap : {kGap, kTightGap}) {
    if (every == 1 && upright_labels(labels, font, band - gap)) return labels;
  }
  labels.lines = 1;
  // A slanted name runs down to the left; the first must not run out of the picture.
  const double slanted = std::clamp((lead + band / 2) / kSlope, 40.0, kLongestTurned);
  if (band >= kSlantedBand && turn(labels, font, -45, slanted)) return labels;
  for (const double room : kLongestUpright) {
    if (turn(labels, font, -90, room)) return labels;
  }
  return numbered(std::move(labels), font, band, every);
}

std::vector<TickLabel> number_labels(const Binding& binding,
                                     const ChartVariable* variable,
                                     const LinearScale& scale,
                                     double length,
                                     const Font& font,
                                     bool upright) {
  constexpr size_t kFewest = 3;
  std::vector<TickLabel> labels;
  int wanted = std::max(2, static_cast<int>(length / (upright ? 70 : 45)));
  // Long steps may leave one number or two; shorter ones are tried as long as there is room.
  for (int more = 0; more < 6 && ticks_of(scale.range(), wanted).values.size() < kFewest; ++more)
    ++wanted;
  for (; wanted > 0; --wanted) {
    const Ticks ticks = ticks_of(scale.range(), wanted);
    labels.clear();
    for (const double value : ticks.values)
      labels.push_back({scale.at(value), number_text(binding, variable, value, ticks.decimals)});
    std::ranges::sort(labels, {}, &TickLabel::at);
    if (clear(labels, font, upright)) break;
  }
  return labels;
}

std::vector<TickLabel> log_labels(const Binding& binding,
                                  const LinearScale& scale,
                                  const Font& font) {
  const std::vector<double> sets[] = {{1, 2, 5}, {1, 3}, {1}};
  const Range& range = scale.range();
  std::vector<TickLabel> labels;
  for (int powers = 1; powers <= 8; powers *= 2) {
    for (const std::vector<double>& factors : sets) {
      if (powers > 1 && factors.size() > 1) continue;
      labels.clear();
      const int first = static_cast<int>(std::floor(range.low / powers)) * powers;
      for (int power = first; power <= range.high; power += powers) {
        for (const double factor : factors) {
          const double place = power + std::log10(factor);
          if (place < range.low || place > range.high) continue;
          const auto decimals = static_cast<uint8_t>(std::clamp(-power, 0, 12));
          const output::Number number{factor * std::pow(10, power), output::Format::Fixed,
                                      decimals};
          labels.push_back({scale.at(place), output::shown(number, binding.numbers)});
        }
      }
      if (clear(labels, font, true)) return labels;
    }
  }
  return labels;
}

}  // namespace hierfit::report::chart
