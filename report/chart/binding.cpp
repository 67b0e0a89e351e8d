#include "report/chart/binding.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <map>

namespace hierfit::report::chart {
namespace {

constexpr uint32_t kMostPanels = 64;
constexpr uint32_t kNoPanel = 0xFFFFFFFE;
using Kind = output::ChartColumn::Kind;

bool has_any_value(const ChartVariable& variable) {
  if (variable.values.all_numbers()) return variable.values.rows() > 0;
  for (size_t row = 0; row < variable.values.rows(); ++row) {
    if (variable.values.kind(row) != Kind::Unset) return true;
  }
  return false;
}

/// The variable for a role of the document, or null when there is none or it has no values.
const ChartVariable* bound(const ChartSource* source, std::string_view role) {
  if (source == nullptr || role.empty()) return nullptr;
  const ChartVariable* variable = source->by_role(role);
  return variable != nullptr && has_any_value(*variable) ? variable : nullptr;
}

BoundElement bind_element(const Element& element, const output::Chart& chart) {
  BoundElement made;
  made.element = &element;
  made.source = chart.source(element.source);
  if (made.source == nullptr && element.source.empty() && !chart.sources.empty()) {
    made.source = &chart.sources.front();
  }
  for (size_t i = 0; i < made.variables.size(); ++i)
    made.variables[i] = bound(made.source, element.roles.of[i].variable);
  for (const TooltipEntry& entry : element.roles.tooltip) {
    const ChartVariable* variable = bound(made.source, entry.variable);
    if (variable != nullptr) made.tooltip.push_back({variable, entry.words});
  }
  return made;
}

void bind_scheme(Scheme& scheme, RoleKind kind, const Binding& binding) {
  for (const BoundElement& element : binding.elements) {
    const ChartVariable* variable = element[kind];
    if (variable == nullptr) continue;
    if (scheme.variable == nullptr) {
      scheme.variable = variable;
      scheme.role = &element.element->roles[kind];
      scheme.values.add_levels(scheme.role->levels);
    }
    for (size_t row = 0; row < element.rows(); ++row)
      scheme.values.add(*variable, row, binding.numbers);
  }
}

/// Gives each row of each element its panel.
class Paneling {
 public:
  explicit Paneling(Binding& binding) : binding_(binding) {}

  void run() {
    for (BoundElement& element : binding_.elements)
      assign(element);
    if (binding_.panels.empty()) binding_.panels.emplace_back();
    std::array<bool, 2> used{};
    for (const Facet* facet : used_facets_)
      used[facet->across_columns ? 0 : 1] = true;
    binding_.single_facet = !(used[0] && used[1]);
  }

 private:
  using Key = std::pair<uint32_t, uint32_t>;

  void assign(BoundElement& element) {
    std::vector<std::pair<const Facet*, const ChartVariable*>> facets;
    for (const Facet& facet : binding_.graph.facets) {
      const ChartVariable* variable = bound(element.source, facet.variable);
      if (variable != nullptr) facets.emplace_back(&facet, variable);
    }
    if (facets.empty()) return;
    element.panel_of_row.assign(element.rows(), kNoPanel);
    for (size_t row = 0; row < element.rows(); ++row) {
      Key key{0, 0};
      bool whole = true;
      for (const auto& [facet, variable] : facets) {
        ValueIndex& values = facet->across_columns ? columns_ : rows_;
        const uint32_t value = values.add(*variable, row, binding_.numbers);
        whole = whole && value != ValueIndex::kNone;
        (facet->across_columns ? key.first : key.second) = value;
      }
      if (whole) element.panel_of_row[row] = panel(key, element, facets, row);
    }
    for (const auto& [facet, variable] : facets)
      used_facets_.push_back(facet);
  }

  uint32_t panel(Key key,
                 const BoundElement& element,
                 const std::vector<std::pair<const Facet*, const ChartVariable*>>& facets,
                 size_t row) {
    const auto [found, fresh] = by_key_.try_emplace(key, kNoPanel);
    if (!fresh) return found->second;
    if (binding_.panels.size() >= kMostPanels) {
      ++binding_.left_out;
      return kNoPanel;
    }
    found->second = static_cast<uint32_t>(binding_.panels.size());
    Panel made{.column = key.first,
               .row = key.second,
               .titles = {},
               .source = element.source,
               .at_row = row};
    for (const auto& [facet, variable] : facets)
      made.titles.push_back(title(*variable, row));
    binding_.panels.push_back(std::move(made));
    return found->second;
  }

  std::string title(const ChartVariable& variable, size_t row) const {
    const std::string value = shown_value(variable, row, binding_.numbers);
    if (!variable.prefix.empty() || variable.label.empty()) return value;
    return variable.label + ": " + value;
  }

  Binding& binding_;
  ValueIndex columns_;
  ValueIndex rows_;
  std::map<Key, uint32_t> by_key_;
  std::vector<const Facet*> used_facets_;
};

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

bool names_row(std::string_view value, const output::ChartColumn& values, size_t row) {
  switch (values.kind(row)) {
    case output::ChartColumn::Kind::Unset:
      return false;
    case output::ChartColumn::Kind::Number:
      return names_value(value, values.number(row));
    case output::ChartColumn::Kind::Text:
      return names_value(value, values.text(row)) ||
             names_value(value, output::plain_text(values.text(row)));
  }
  return false;
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

const std::string& label_of(const ChartVariable& variable) {
  return variable.label.empty() ? variable.name : variable.label;
}

std::string shown_pair(const ChartVariable& variable,
                       MarkRows rows,
                       const output::NumberStyle& style) {
  const auto [row, partner] = rows;
  const std::string one = shown_value(variable, row, style);
  if (partner == row || !has_value(variable, partner)) return one;
  const std::string other = shown_value(variable, partner, style);
  if (!has_value(variable, row) || one == other) return other;
  return "[" + one + ", " + other + "]";
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

std::string shown_in_panel(const output::ChartSource& source,
                           const Graph& graph,
                           const ChartVariable& variable,
                           size_t row,
                           const output::NumberStyle& style) {
  std::string text = shown_value(variable, row, style);
  const bool is_text = variable.values.kind(row) == Kind::Text;
  if (!is_text || variable.label_of(variable.values.text(row)) != nullptr) return text;
  std::string panel;
  for (const Facet& facet : graph.facets) {
    const ChartVariable* of_facet = source.by_role(facet.variable);
    if (of_facet != nullptr && of_facet->values.kind(row) == Kind::Text) {
      panel += output::plain_text(of_facet->values.text(row));
    }
  }
  if (text.size() > panel.size() && text.starts_with(panel)) text.erase(0, panel.size());
  return text;
}

bool is_hidden(const LineGuide& guide, const Panel& panel) {
  return std::ranges::any_of(guide.hidden.clauses(), [&](const auto& clause) {
    const ChartVariable* variable =
        panel.source == nullptr ? nullptr : panel.source->by_role(clause.name);
    return variable != nullptr && !names_row(clause.value, variable->values, panel.at_row);
  });
}

std::string with_arguments(std::string_view pattern, const std::vector<std::string>& arguments) {
  std::string text;
  for (size_t at = 0; at < pattern.size(); ++at) {
    const size_t index = at + 1 < pattern.size() && pattern[at] == '^'
                             ? static_cast<size_t>(pattern[at + 1] - '1')
                             : arguments.size();
    if (index < arguments.size()) {
      text += arguments[index];
      ++at;
    } else {
      text += pattern[at];
    }
  }
  return text;
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

uint32_t Scheme::of(const BoundElement& element, RoleKind kind, size_t row) const {
  const ChartVariable* own = element[kind];
  return own == nullptr ? ValueIndex::kNone : values.find(*own, row);
}

Paint Binding::paint_of(const BoundElement& element, size_t row) const {
  const uint32_t step = colors.of(element, RoleKind::Color, row);
  if (step == ValueIndex::kNone) return {Part::Mark};
  return {colors.role->palette,
          static_cast<uint8_t>(step % plan.style.steps(colors.role->palette))};
}

const Series& Binding::series_of(const BoundElement& element, size_t row) const {
  return plan.style.series(paint_of(element, row));
}

Symbol Binding::symbol_of_step(uint32_t step) const {
  const Part palette = colors.role->palette;
  const size_t steps = plan.style.steps(palette);
  const size_t turned = step + step / steps;  // beyond the palette's end the pairs stay distinct
  return plan.style.series({palette, static_cast<uint8_t>(turned % steps)}).symbol;
}

Symbol Binding::symbol_of(const BoundElement& element, size_t row) const {
  const uint32_t shape = shapes.of(element, RoleKind::Shape, row);
  if (shape != ValueIndex::kNone) {
    const std::vector<Level>& levels = shapes.role->levels;
    if (shape < levels.size() && levels[shape].symbol) return *levels[shape].symbol;
    return static_cast<Symbol>(shape % kSymbolNames.size());
  }
  const uint32_t step = colors.of(element, RoleKind::Color, row);
  return step == ValueIndex::kNone ? Symbol::Circle : symbol_of_step(step);
}

std::span<const std::string> Binding::panel_titles(const BoundElement& element, size_t row) const {
  if (element.panel_of_row.empty() || element.panel_of(row) >= panels.size()) return {};
  return panels[element.panel_of(row)].titles;
}

std::string Binding::tooltip_of(const BoundElement& element, MarkRows rows) const {
  const auto [row, partner] = rows;
  std::string text;
  for (const auto& [variable, words] : element.tooltip) {
    if (!has_value(*variable, row) && !has_value(*variable, partner)) continue;
    const bool is_name = variable == element[RoleKind::Key] || variable == element[RoleKind::Label];
    const std::string value = is_name && row == partner
                                  ? shown_in_panel(*element.source, graph, *variable, row, numbers)
                                  : shown_pair(*variable, rows, numbers);
    if (value.empty()) continue;
    if (!text.empty()) text += '\n';
    if (!words.empty()) {
      (text += words) += ": ";
    } else if (!variable->label.empty() && variable->prefix.empty()) {
      (text += variable->label) += ": ";
    }
    text += value;
  }
  return text;
}

Binding bind(const Plan& plan,
             const Graph& graph,
             const output::Chart& chart,
             const output::Document& document) {
  Binding binding{.plan = plan,
                  .graph = graph,
                  .chart = chart,
                  .document = document,
                  .numbers = document.numbers,
                  .elements = {},
                  .panels = {},
                  .colors = {},
                  .shapes = {}};
  binding.numbers.minus = "\u2212";
  for (const Element& element : graph.elements)
    binding.elements.push_back(bind_element(element, chart));
  Paneling(binding).run();
  bind_scheme(binding.colors, RoleKind::Color, binding);
  bind_scheme(binding.shapes, RoleKind::Shape, binding);
  return binding;
}

}  // namespace hierfit::report::chart
