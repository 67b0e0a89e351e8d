// The description of a chart in sentences, made from its data.
#include <algorithm>
#include <cmath>
#include <span>
#include <vector>

#include "report/chart/axes.h"
#include "report/chart/circle.h"
#include "report/chart/pieces.h"
#include "report/wording.h"

namespace hierfit::report::chart {
namespace {

constexpr size_t kMostNames = 10;

class Description {
 public:
  explicit Description(const Binding& binding) : binding_(binding) {}

  std::string write() {
    if (binding_.graph.circle) {
      circle();
    } else if (binding_.graph.rows) {
      rows();
    } else if (has(ElementKind::Node)) {
      network();
    } else {
      panels();
    }
    if (binding_.panels.size() > 1) say("^1 panels.", {count(binding_.panels.size())});
    for (const std::string& note : binding_.plan.texts.notes)
      sentence(note);
    return std::move(text_);
  }

 private:
  bool has(ElementKind kind) const { return first(kind) != nullptr; }

  const BoundElement* first(ElementKind kind) const {
    for (const BoundElement& element : binding_.elements) {
      if (element.element->kind == kind && element.rows() > 0) return &element;
    }
    return nullptr;
  }

  void say(std::string_view key, const std::vector<std::string>& arguments) {
    put(filled(binding_.word(key), arguments));
  }

  void put(std::string_view text) {
    if (!text_.empty() && has_blanks()) text_ += ' ';
    text_ += text;
  }

  /// Notes end without a stop as they stand beneath a chart.
  void sentence(std::string_view text) {
    put(text);
    if (!text.ends_with('.') && !text.ends_with("\u3002")) text_ += has_blanks() ? "." : "\u3002";
  }

  /// Sentences of Chinese and Japanese end in a stop that has its own room.
  bool has_blanks() const {
    const std::string_view language = binding_.document.language;
    return !language.starts_with("zh") && !language.starts_with("ja");
  }

  static std::string count(size_t number) { return std::to_string(number); }

  /// A number without a format of its own has four digits that count: the data have the rest.
  std::string shown(const ChartVariable& variable, double value) const {
    const bool plain = variable.statistic || variable.format || variable.label_of(value) != nullptr;
    if (plain || value == std::floor(value)) return shown_number(variable, value, binding_.numbers);
    const double digits_ahead = std::floor(std::log10(std::fabs(value)));
    const auto decimals = static_cast<uint8_t>(std::clamp(3 - digits_ahead, 0.0, 12.0));
    return variable.prefix +
           output::shown({value, output::Format::Fixed, decimals}, binding_.numbers);
  }

  // Means, spans and points.

  void panels() {
    const BoundElement* points = first(ElementKind::Point);
    if (points == nullptr || (*points)[RoleKind::Y] == nullptr) return say("No data to show", {});
    const bool intervals = has(ElementKind::Interval);
    const HorizontalAxis x = horizontal_axis(binding_);
    say(intervals ? "Means with intervals: ^1 marks." : "Scatter plot of ^1 points.",
        {count(marks_of(*points))});
    if (x.variable != nullptr) along(x);
    range_of_y(*points);
    if (intervals) extremes(*points);
    colors();
  }

  /// Names run down, so that what is y in the document lies along x.
  void rows() {
    const BoundElement* points = first(ElementKind::Point);
    if (points == nullptr || (*points)[RoleKind::Y] == nullptr) return say("No data to show", {});
    say("Estimates with intervals: ^1 rows.", {count(marks_of(*points))});
    Range range;
    for_rows(*points, [&](size_t row) { range.add(number_at((*points)[RoleKind::Y], row)); });
    if (range.empty) return;
    const ChartVariable& y = *(*points)[RoleKind::Y];
    say("Along x: ^1, from ^2 to ^3.",
        {name_of(y, binding_.graph.y.label), shown(y, range.low), shown(y, range.high)});
    extremes(*points);
  }

  size_t marks_of(const BoundElement& points) const {
    size_t marks = 0;
    for_rows(points, [&](size_t) { ++marks; });
    return marks;
  }

  template <class Use>
  void for_rows(const BoundElement& points, Use use) const {
    points.each_mark([&](MarkRows rows) {
      const ChartVariable* x = points[RoleKind::X];
      const bool placed = x != nullptr && has_value(*x, rows.row);
      if (placed && is_number(number_at(points[RoleKind::Y], rows.row))) use(rows.row);
    });
  }

  void along(const HorizontalAxis& x) {
    if (x.categorical) {
      std::vector<std::string> names;
      for (const ValueIndex::Entry& entry : x.categories.entries())
        names.push_back(entry.shown);
      say("Along x: ^1 (^2).", {name_of(*x.variable, x.title), listed(names)});
      return;
    }
    Range range;
    for (const double value : x.variable->values.numbers()) {
      if (is_number(value)) range.add(value);
    }
    say("Along x: ^1, from ^2 to ^3.",
        {name_of(*x.variable, x.title), shown(*x.variable, range.low),
         shown(*x.variable, range.high)});
  }

  static std::string name_of(const ChartVariable& variable, const std::string& title) {
    return title.empty() ? label_of(variable) : title;
  }

  void range_of_y(const BoundElement& points) {
    Range range;
    for_rows(points, [&](size_t row) { range.add(number_at(points[RoleKind::Y], row)); });
    if (range.empty) return;
    const ChartVariable& y = *points[RoleKind::Y];
    say("Along y: ^1, from ^2 to ^3.",
        {name_of(y, binding_.graph.y.label), shown(y, range.low), shown(y, range.high)});
  }

  void extremes(const BoundElement& points) {
    const ChartVariable& y = *points[RoleKind::Y];
    size_t lowest = points.rows();
    size_t highest = points.rows();
    for_rows(points, [&](size_t row) {
      const double value = number_at(&y, row);
      if (lowest == points.rows() || value < number_at(&y, lowest)) lowest = row;
      if (highest == points.rows() || value > number_at(&y, highest)) highest = row;
    });
    if (highest == points.rows()) return;
    say("Highest: ^1 (^2); lowest: ^3 (^4).",
        {shown(y, number_at(&y, highest)), place_of(points, highest),
         shown(y, number_at(&y, lowest)), place_of(points, lowest)});
  }

  std::string place_of(const BoundElement& points, size_t row) const {
    std::string place = shown_value(*points[RoleKind::X], row, binding_.numbers);
    const ChartVariable* color = points[RoleKind::Color];
    if (color != nullptr && has_value(*color, row)) {
      (place += ", ") += shown_value(*color, row, binding_.numbers);
    }
    for (const std::string& title : binding_.panel_titles(points, row))
      (place += ", ") += title;
    return place;
  }

  void colors() {
    if (binding_.colors.variable == nullptr) return;
    std::vector<std::string> names;
    for (const ValueIndex::Entry& entry : binding_.colors.values.entries()) {
      if (entry.occurs) names.push_back(entry.shown);
    }
    say("By colour: ^1.", {listed(names)});
  }

  // Networks.

  void circle() {
    const BoundElement* nodes = first(ElementKind::Node);
    const BoundElement* edges = first(ElementKind::Edge);
    size_t comparisons_drawn = 0;
    for (size_t row = 0; edges != nullptr && row < edges->rows(); ++row)
      comparisons_drawn += is_drawn(*edges, row) ? 1 : 0;
    say("Network of ^1 nodes and ^2 comparisons.",
        {count(nodes == nullptr ? 0 : nodes->rows()), count(comparisons_drawn)});
    if (edges == nullptr || (*edges)[RoleKind::Color] == nullptr) return;
    const auto& entries = binding_.colors.values.entries();
    for (uint32_t step = 0; step < entries.size(); ++step) {
      if (entries[step].occurs) comparisons(*edges, step, entries[step].shown);
    }
  }

  void comparisons(const BoundElement& edges, uint32_t step, const std::string& name) {
    std::vector<std::string> first;
    size_t all = 0;
    for (size_t row = 0; row < edges.rows(); ++row) {
      if (binding_.colors.of(edges, RoleKind::Color, row) != step) continue;
      if (++all <= kMostNames) first.push_back(pair_of(edges, row));
    }
    // The plain level, the first, is only counted.
    if (step == 0) {
      say("^1: ^2.", {name, count(all)});
    } else {
      say("^1: ^2 (^3).", {name, count(all), listed(first, all)});
    }
  }

  std::string pair_of(const BoundElement& edges, size_t row) const {
    std::string pair;
    for (const RoleKind kind : {RoleKind::From, RoleKind::To}) {
      const ChartVariable* end = edges[kind];
      if (end == nullptr) continue;
      if (!pair.empty()) pair += " \u2013 ";
      pair += shown_value(*end, row, binding_.numbers);
    }
    return binding_.panels.size() > 1 ? pair + panel_of(edges, row) : pair;
  }

  /// " [Species: GP]", or nothing.
  std::string panel_of(const BoundElement& element, size_t row) const {
    std::string titles;
    for (const std::string& title : binding_.panel_titles(element, row))
      (titles += titles.empty() ? " [" : ", ") += title;
    return titles.empty() ? titles : titles + ']';
  }

  void network() {
    std::vector<std::string> names;
    std::string target;
    size_t nodes = 0;
    for (const BoundElement& element : binding_.elements) {
      const ChartVariable* label = element[RoleKind::Label];
      if (label == nullptr) continue;
      for (size_t row = 0; row < element.rows(); ++row) {
        if (!has_value(*label, row)) continue;
        const std::string name = shown_value(*label, row, binding_.numbers);
        if (element.element->kind == ElementKind::Text) names.push_back(spoken(name));
        if (element.element->kind == ElementKind::Node) target = name;
      }
    }
    nodes = names.size();
    say("Network of ^1 nodes joined to ^2: ^3.", {count(nodes), target, listed(names)});
    strongest();
  }

  void strongest() {
    const BoundElement* edges = first(ElementKind::Edge);
    const ChartVariable* size = edges == nullptr ? nullptr : (*edges)[RoleKind::Size];
    if (size == nullptr) return;
    std::vector<double> values = size->values.numbers();
    std::erase_if(values, [](double value) { return !is_number(value); });
    std::ranges::sort(values, std::greater<>());
    for (size_t i = 0; i < values.size();) {
      const auto end = std::find_if(values.begin() + static_cast<std::ptrdiff_t>(i), values.end(),
                                    [&](double v) { return v != values[i]; });
      const auto next = static_cast<size_t>(end - values.begin());
      if (size->label_of(values[i]) != nullptr) {
        const std::string range = with_marks(shown(*size, values[i]), binding_.numbers);
        say("^1: ^2.", {range, count(next - i)});
      }
      i = next;
    }
  }

  /// A term in words: "interaction of a and b=1" for "a*[b=1]".
  std::string spoken(std::string_view term) const {
    std::string said;
    size_t parts = 0;
    while (!term.empty()) {
      const size_t end = std::min(term.find('*'), term.size());
      std::string part(term.substr(0, end));
      term.remove_prefix(std::min(end + 1, term.size()));
      std::erase_if(part, [](char c) { return c == '[' || c == ']'; });
      const size_t begin = std::min(part.find_first_not_of(' '), part.size());
      part = part.substr(begin, part.find_last_not_of(' ') + 1 - begin);
      said = parts++ == 0 ? part : filled(binding_.word("^1 and ^2"), said, part);
    }
    return parts < 2 ? said : filled(binding_.word("interaction of ^1"), said);
  }

  std::string listed(const std::vector<std::string>& names) const {
    return listed(std::span(names).first(std::min(names.size(), kMostNames)), names.size());
  }

  /// The first of `all` names, and how many more there are.
  std::string listed(std::span<const std::string> first, size_t all) const {
    std::string list;
    for (size_t i = 0; i < first.size(); ++i)
      (list += i == 0 ? "" : ", ") += first[i];
    if (all > first.size()) {
      (list += ", ") += filled(binding_.word("and ^1 more"), count(all - first.size()));
    }
    return list;
  }

  const Binding& binding_;
  std::string text_;
};

}  // namespace

std::string describe(const Binding& binding) { return Description(binding).write(); }

}  // namespace hierfit::report::chart
