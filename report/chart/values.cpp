#include "report/chart/values.h"

#include <charconv>
#include <cmath>
#include <optional>

namespace hierfit::report::chart {
namespace {

using Kind = output::ChartColumn::Kind;

std::optional<double> whole_number(std::string_view text) {
  double number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return number;
}

/// Means of whole numbers are none: they take as many decimals as a table gives them.
uint8_t decimals_for(double value, const output::ChartFormat& format) {
  constexpr uint8_t kDecimalsOfMeans = 3;
  return format.decimals == 0 && value != std::floor(value) ? kDecimalsOfMeans : format.decimals;
}

}  // namespace

bool is_number(double value) { return std::isfinite(value) && value != output::kSystemMissing; }

bool has_value(const ChartVariable& variable, size_t row) {
  const Kind kind = variable.values.kind(row);
  return kind == Kind::Text || (kind == Kind::Number && is_number(variable.values.number(row)));
}

double number_at(const ChartVariable* variable, size_t row) {
  if (variable == nullptr || variable->values.kind(row) != Kind::Number) {
    return output::kSystemMissing;
  }
  const double value = variable->values.number(row);
  return is_number(value) ? value : output::kSystemMissing;
}

output::Number number_of(const ChartVariable& variable, double value) {
  constexpr uint8_t kText = 1;
  if (variable.statistic) return {value, *variable.statistic, 0};
  if (!variable.format || variable.format->type == kText) {
    return {value, output::Format::SigDigit, 0};
  }
  return {value, output::Format::Fixed, decimals_for(value, *variable.format)};
}

std::string shown_number(const ChartVariable& variable,
                         double value,
                         const output::NumberStyle& style) {
  const std::string* label = variable.label_of(value);
  return variable.prefix +
         (label != nullptr ? *label : output::shown(number_of(variable, value), style));
}

std::string shown_value(const ChartVariable& variable,
                        size_t row,
                        const output::NumberStyle& style) {
  switch (variable.values.kind(row)) {
    case Kind::Unset:
      return style.missing;
    case Kind::Number:
      return shown_number(variable, variable.values.number(row), style);
    case Kind::Text: {
      const std::string& text = variable.values.text(row);
      const std::string* label = variable.label_of(text);
      return variable.prefix + (label != nullptr ? *label : output::plain_text(text));
    }
  }
  return {};
}

std::string_view list_mark(const output::NumberStyle& style) {
  return style.decimal_mark == "," ? "; " : ", ";
}

const std::string& label_of(const ChartVariable& variable) {
  return variable.label.empty() ? variable.name : variable.label;
}

std::string with_marks(std::string_view text, const output::NumberStyle& style) {
  const auto digit_at = [text](size_t at) {
    return at < text.size() && text[at] >= '0' && text[at] <= '9';
  };
  std::string marked;
  for (size_t at = 0; at < text.size(); ++at) {
    const bool is_mark = text[at] == '.' && at > 0 && digit_at(at - 1) && digit_at(at + 1);
    if (!is_mark) {
      marked += text[at];
      continue;
    }
    const bool leads = text[at - 1] == '0' && (at < 2 || !digit_at(at - 2));
    if (leads && !style.significance_zero) marked.pop_back();
    marked += style.decimal_mark;
  }
  return marked;
}

void ValueIndex::add_levels(const std::vector<Level>& levels) {
  for (const Level& level : levels) {
    const auto place = static_cast<uint32_t>(entries_.size());
    if (!by_text_.try_emplace(level.value, place).second) continue;
    entries_.push_back({level.value, false});
    if (const auto number = whole_number(level.value)) by_number_.try_emplace(*number, place);
  }
}

uint32_t ValueIndex::find(const ChartVariable& variable, size_t row) const {
  if (!has_value(variable, row)) return kNone;
  if (variable.values.kind(row) == Kind::Text) {
    const auto found = by_text_.find(variable.values.text(row));
    return found == by_text_.end() ? kNone : found->second;
  }
  const auto found = by_number_.find(variable.values.number(row));
  return found == by_number_.end() ? kNone : found->second;
}

uint32_t ValueIndex::add(const ChartVariable& variable,
                         size_t row,
                         const output::NumberStyle& style) {
  if (!has_value(variable, row)) return kNone;
  uint32_t place = find(variable, row);
  if (place == kNone) {
    place = static_cast<uint32_t>(entries_.size());
    entries_.emplace_back();
    if (variable.values.kind(row) == Kind::Text) {
      by_text_.emplace(variable.values.text(row), place);
    } else {
      by_number_.emplace(variable.values.number(row), place);
    }
  }
  Entry& entry = entries_[place];
  if (!entry.occurs) {
    entry.shown = shown_value(variable, row, style);
    entry.occurs = true;
  }
  return place;
}

}  // namespace hierfit::report::chart
