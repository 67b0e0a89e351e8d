#include "report/vega/vega_rows.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <numbers>
#include <set>

#include "report/chart/panels.h"
#include "report/chart/tally.h"
#include "report/json/json_text.h"
#include "report/outline.h"

namespace hierfit::report::vega {

using chart::Binding;
using chart::BoundElement;
using chart::ChartSource;
using chart::ChartVariable;
using chart::ElementKind;
using chart::LineGuide;
using chart::Panel;
using chart::Range;
using chart::RoleKind;
using chart::ValueIndex;

namespace {

/// By kind of element.
constexpr std::string_view kPartNames[] = {"point", "line", "interval", "edge", "node", "text"};

constexpr double kMostBins = 60;
/// How far above the highest bar a curve may rise.
constexpr double kCurveRoom = 1.25;

struct Place {
  double x = 0;
  double y = 0;
};

/// Calls `use` with each panel that a row stands in: that of its facets, or all of them.
template <class Use>
void for_panels(const Binding& binding, const BoundElement& element, size_t row, Use use) {
  const auto panels = static_cast<uint32_t>(binding.panels.size());
  const bool everywhere = element.panel_of_row.empty();
  const uint32_t first = everywhere ? 0 : element.panel_of_row[row];
  const uint32_t end = everywhere || first >= panels ? panels : first + 1;
  for (uint32_t panel = first; panel < end; ++panel)
    use(panel);
}

/// Nodes by their keys, on a circle from the top.
class CirclePlaces {
 public:
  explicit CirclePlaces(const Binding& binding) : keys_(binding.panels.size()) {
    for (const BoundElement& element : binding.elements) {
      const ChartVariable* key = element[RoleKind::Key];
      if (key == nullptr || element.element->kind != ElementKind::Node) continue;
      for (size_t row = 0; row < element.rows(); ++row) {
        for_panels(binding, element, row,
                   [&](uint32_t panel) { keys_[panel].add(*key, row, binding.numbers); });
      }
    }
  }

  std::optional<Place> of(const ChartVariable* key, size_t row, uint32_t panel) const {
    if (key == nullptr) return std::nullopt;
    const uint32_t at = keys_[panel].find(*key, row);
    if (at == ValueIndex::kNone) return std::nullopt;
    const double turn = 2 * std::numbers::pi * at / static_cast<double>(keys_[panel].size());
    return Place{std::sin(turn), std::cos(turn)};
  }

 private:
  std::vector<ValueIndex> keys_;  // by panel
};

class GraphRows {
 public:
  GraphRows(Rows& rows, const Binding& binding)
      : rows_(rows), binding_(binding), circle_(binding), x_(chart::horizontal_axis(binding)) {}

  DataFacts write() {
    for (const BoundElement& element : binding_.elements)
      write_element(element);
    for (uint32_t panel = 0; panel < binding_.panels.size(); ++panel) {
      for (const LineGuide& guide : binding_.graph.guides) {
        if (!chart::is_hidden(guide, binding_.panels[panel])) write_guide(guide, panel);
      }
    }
    return facts_;
  }

 private:
  void write_element(const BoundElement& element) {
    const chart::Rows which = element.element->rows;
    const size_t step = which == chart::Rows::All ? 1 : 2;
    for (size_t row = which == chart::Rows::Second ? 1 : 0; row < element.rows(); row += step) {
      const bool paired = which == chart::Rows::Pairs;
      if (paired && row + 1 == element.rows()) continue;
      for_panels(binding_, element, row,
                 [&](uint32_t panel) { write_row(element, row, paired ? row + 1 : row, panel); });
    }
  }

  void write_row(const BoundElement& element, size_t row, size_t partner, uint32_t panel) {
    if (!places(element, row, partner, panel)) return;
    begin(part_of(binding_, element), panel);
    if (category_.empty()) {
      rows_.number("x", from_.x);
    } else {
      rows_.text("x", category_);
    }
    rows_.number("y", from_.y);
    if (to_) {
      if (category_.empty()) rows_.number("x2", to_->x);
      rows_.number("y2", to_->y);
    }
    write_looks(element, row);
    if (element[RoleKind::Label] != nullptr && chart::has_value(*element[RoleKind::Label], row)) {
      text("label", chart::shown_value(*element[RoleKind::Label], row, binding_.numbers));
    }
    const std::string tooltip = binding_.tooltip_of(element, row, partner);
    if (!tooltip.empty()) text("tooltip", tooltip);
    rows_.end();
  }

  void text(std::string_view name, std::string_view value) { rows_.text(name, clean(value)); }

  void begin(std::string_view part, uint32_t panel) {
    rows_.begin(part);
    if (binding_.panels.size() > 1) text("panel", panel_name(binding_, panel));
  }

  void write_looks(const BoundElement& element, size_t row) {
    const uint32_t color = binding_.colors.of(element, RoleKind::Color, row);
    if (color != ValueIndex::kNone) {
      text("color", binding_.colors.values.entries()[color].shown);
      if (!category_.empty()) find_dodged(element, row, color);
    }
    const uint32_t shape = binding_.shapes.of(element, RoleKind::Shape, row);
    if (shape != ValueIndex::kNone) text("shape", binding_.shapes.values.entries()[shape].shown);
    write_amount("size", element[RoleKind::Size], row, facts_.sizes);
    write_amount("frequency", element[RoleKind::Transparency], row, facts_.frequencies);
  }

  void write_amount(std::string_view name,
                    const ChartVariable* variable,
                    size_t row,
                    std::optional<Range>& range) {
    const double amount = chart::number_at(variable, row);
    if (variable == nullptr || !chart::is_number(amount)) return;
    const std::string* label = variable->label_of(amount);
    if (label == nullptr || &range != &facts_.sizes) {
      rows_.number(name, amount);
    } else {
      text(name, facts_.size_labels.try_emplace(amount, *label).first->second);
    }
    if (!range) range.emplace();
    range->add(amount);
  }

  /// Whether one category of a panel comes in several colours.
  void find_dodged(const BoundElement& element, size_t row, uint32_t color) {
    const uint32_t panel = element.panel_of_row.empty() ? 0 : element.panel_of_row[row];
    const uint32_t category = x_.categories.find(*element[RoleKind::X], row);
    const auto [at, added] = color_of_.try_emplace({panel, category}, color);
    facts_.dodged = facts_.dodged || at->second != color;
  }

  /// Sets where a row stands; false for a row without a place.
  bool places(const BoundElement& element, size_t row, size_t partner, uint32_t panel) {
    category_.clear();
    to_.reset();
    if (binding_.graph.circle) return on_circle(element, row, panel);
    const ChartVariable* x = element[RoleKind::X];
    const ChartVariable* y = element[RoleKind::Y];
    if (x == nullptr || y == nullptr || !chart::has_value(*x, row)) return false;
    if (x_.categorical) {
      category_ = clean(chart::shown_value(*x, row, binding_.numbers));
      if (category_.empty()) category_ = " ";
    }
    from_ = {chart::number_at(x, row), chart::number_at(y, row)};
    if (row != partner) to_ = Place{from_.x, chart::number_at(y, partner)};
    if (element[RoleKind::X2] != nullptr && element[RoleKind::Y2] != nullptr) {
      to_ = Place{chart::number_at(element[RoleKind::X2], row),
                  chart::number_at(element[RoleKind::Y2], row)};
    }
    return is_sound(from_) && (!to_ || is_sound(*to_));
  }

  bool is_sound(const Place& place) const {
    return (!category_.empty() || chart::is_number(place.x)) && chart::is_number(place.y);
  }

  bool on_circle(const BoundElement& element, size_t row, uint32_t panel) {
    const bool edge = element.element->kind == ElementKind::Edge;
    const auto from = circle_.of(element[edge ? RoleKind::From : RoleKind::Key], row, panel);
    const auto to = edge ? circle_.of(element[RoleKind::To], row, panel) : from;
    if (!from || !to) return false;
    from_ = *from;
    if (edge) to_ = to;
    return true;
  }

  void write_guide(const LineGuide& guide, uint32_t panel) {
    if (guide.y) {
      facts_.levels = true;
      begin("level", panel);
      rows_.number("y", *guide.y);
      return rows_.end();
    }
    if (x_.categorical) return;
    const Range range = x_.range.proper();
    facts_.guides = true;
    begin("guide", panel);
    rows_.number("x", range.low);
    rows_.number("y", guide.slope * range.low + guide.intercept);
    rows_.number("x2", range.high);
    rows_.number("y2", guide.slope * range.high + guide.intercept);
    rows_.end();
  }

  Rows& rows_;
  const Binding& binding_;
  CirclePlaces circle_;
  chart::HorizontalAxis x_;
  DataFacts facts_;
  std::map<std::pair<uint32_t, uint32_t>, uint32_t> color_of_;  // by panel and category
  std::string category_;                                        // of the row being written
  Place from_;
  std::optional<Place> to_;
};

/// The bars and the curve of a histogram.
class HistogramRows {
 public:
  HistogramRows(Rows& rows, const Binding& binding, const chart::Embedded& embedded)
      : rows_(rows),
        binding_(binding),
        histogram_(*embedded.graph.histogram),
        tally_(chart::tally(embedded, binding.chart)) {}

  HistogramFacts write() {
    if (tally_.weights.empty()) return {};
    facts_.bars = true;
    facts_.categories = tally_.categorical;
    facts_.categories ? write_values() : write_bins();
    return facts_;
  }

 private:
  void write_values() {
    for (const auto& [value, times] : tally_.weights) {
      rows_.begin("bin");
      rows_.text("category", clean(chart::shown_number(*tally_.variable, value, binding_.numbers)));
      rows_.number("count", times);
      rows_.end();
    }
  }

  void write_bins() {
    const Range range = tally_.range.proper();
    const std::vector<double> heights = chart::bins_of(tally_, histogram_, kMostBins);
    const double width = (range.high - range.low) / static_cast<double>(heights.size());
    for (size_t i = 0; i < heights.size(); ++i) {
      rows_.begin("bin");
      rows_.number("from", range.low + static_cast<double>(i) * width);
      rows_.number("to", range.low + static_cast<double>(i + 1) * width);
      rows_.number("count", heights[i]);
      rows_.end();
    }
    write_curve(range, chart::curve_of(tally_, histogram_, tally_.total * width),
                kCurveRoom * *std::ranges::max_element(heights));
  }

  void write_curve(const Range& range, const std::vector<double>& curve, double top) {
    facts_.curve = !curve.empty();
    for (size_t i = 0; i < curve.size(); ++i) {
      const double along = static_cast<double>(i) / static_cast<double>(curve.size() - 1);
      rows_.begin("curve");
      rows_.number("from", range.low + (range.high - range.low) * along);
      rows_.number("count", std::min(curve[i], top));
      rows_.end();
    }
  }

  Rows& rows_;
  const Binding& binding_;
  const chart::Histogram& histogram_;
  const chart::Tally tally_;
  HistogramFacts facts_;
};

}  // namespace

void Rows::begin(std::string_view part) {
  out_ += out_.empty() ? "{" : ",\n{";
  out_ += "\"part\":";
  json::append_string(out_, part);
}

void Rows::number(std::string_view name, double value) {
  ((out_ += ",\"") += name) += "\":";
  json::append_double(out_, value);
}

void Rows::text(std::string_view name, std::string_view value) {
  ((out_ += ",\"") += name) += "\":";
  json::append_string(out_, value);
}

std::string part_of(const Binding& binding, const BoundElement& element) {
  return std::string(kPartNames[static_cast<size_t>(element.element->kind)]) + ' ' +
         std::to_string(&element - binding.elements.data() + 1);
}

std::string panel_name(const Binding& binding, uint32_t panel) {
  std::string name;
  for (const std::string& title : binding.panels[panel].titles) {
    if (!name.empty() && !title.empty()) name += ", ";
    name += title;
  }
  return name.empty() ? std::to_string(panel + 1) : clean(name);
}

DataFacts append_rows(Rows& rows, const Binding& binding) {
  return GraphRows(rows, binding).write();
}

HistogramFacts append_histogram(Rows& rows,
                                const Binding& binding,
                                const chart::Embedded& embedded) {
  return HistogramRows(rows, binding, embedded).write();
}

}  // namespace hierfit::report::vega
