#include "report/vega/vega_rows.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "report/chart/axes.h"
#include "report/chart/circle.h"
#include "report/chart/tally.h"
#include "report/json/json_text.h"
#include "report/typeset/texts.h"

namespace hierfit::report::vega {

using chart::Binding;
using chart::BoundElement;
using chart::ChartSource;
using chart::ChartVariable;
using chart::ElementKind;
using chart::LineGuide;
using chart::MarkRows;
using chart::Range;
using chart::RoleKind;
using chart::ValueIndex;

namespace {

struct Place {
  double x = 0;
  double y = 0;
};

/// Where a mark stands, and where it ends if it has an end.
struct Spot {
  std::string category;  ///< along x; empty over numbers
  Place from;
  std::optional<Place> to;

  bool is_sound() const { return is_sound(from) && (!to || is_sound(*to)); }

 private:
  bool is_sound(const Place& place) const {
    return (!category.empty() || chart::is_number(place.x)) && chart::is_number(place.y);
  }
};

class GraphRows {
 public:
  GraphRows(Rows& rows, const Binding& binding)
      : rows_(rows), binding_(binding), x_(chart::horizontal_axis(binding)) {
    if (binding.graph.circle) circles_ = chart::circles_of(binding);
    facts_.dodged = x_.categorical && chart::colors_share_places(binding, x_);
  }

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
    const auto panels = static_cast<uint32_t>(binding_.panels.size());
    element.each_mark([&](MarkRows rows) {
      element.each_panel(rows.row, panels, [&](uint32_t panel) {
        if (const auto spot = spot_of(element, rows, panel)) write_row(element, rows, panel, *spot);
      });
    });
  }

  void write_row(const BoundElement& element, MarkRows rows, uint32_t panel, const Spot& spot) {
    begin(part_of(binding_, element), panel);
    if (spot.category.empty()) {
      rows_.number("x", spot.from.x);
    } else {
      rows_.text("x", spot.category);
    }
    rows_.number("y", spot.from.y);
    if (spot.to) {
      if (spot.category.empty()) rows_.number("x2", spot.to->x);
      rows_.number("y2", spot.to->y);
    }
    write_looks(element, rows.row);
    const ChartVariable* label = element[RoleKind::Label];
    if (label != nullptr && chart::has_value(*label, rows.row)) {
      text("label", chart::shown_value(*label, rows.row, binding_.numbers));
    }
    const std::string tooltip = binding_.tooltip_of(element, rows);
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
    if (color != ValueIndex::kNone) text("color", binding_.colors.values.entries()[color].shown);
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

  /// None for a mark without a place.
  std::optional<Spot> spot_of(const BoundElement& element, MarkRows rows, uint32_t panel) const {
    if (binding_.graph.circle) return spot_on_circle(element, rows.row, circles_[panel].keys);
    const ChartVariable* x = element[RoleKind::X];
    const ChartVariable* y = element[RoleKind::Y];
    if (x == nullptr || y == nullptr || !chart::has_value(*x, rows.row)) return std::nullopt;
    Spot spot;
    if (x_.categorical) {
      const uint32_t category = x_.categories.find(*x, rows.row);
      if (category == ValueIndex::kNone) return std::nullopt;
      spot.category = category_name(x_.categories.entries()[category]);
    }
    spot.from = {chart::number_at(x, rows.row), chart::number_at(y, rows.row)};
    if (element.element->rows == chart::Rows::Pairs) {
      spot.to = Place{spot.from.x, chart::number_at(y, rows.partner)};
    }
    if (element[RoleKind::X2] != nullptr && element[RoleKind::Y2] != nullptr) {
      spot.to = Place{chart::number_at(element[RoleKind::X2], rows.row),
                      chart::number_at(element[RoleKind::Y2], rows.row)};
    }
    return spot.is_sound() ? std::optional(spot) : std::nullopt;
  }

  static std::optional<Spot> spot_on_circle(const BoundElement& element,
                                            size_t row,
                                            const ValueIndex& keys) {
    const bool edge = element.element->kind == ElementKind::Edge;
    const auto from = place_of(keys, element[edge ? RoleKind::From : RoleKind::Key], row);
    if (edge && !chart::is_drawn(element, row)) return std::nullopt;
    const auto to = edge ? place_of(keys, element[RoleKind::To], row) : std::nullopt;
    if (!from || (edge && !to)) return std::nullopt;
    return Spot{{}, *from, to};
  }

  static std::optional<Place> place_of(const ValueIndex& keys,
                                       const ChartVariable* key,
                                       size_t row) {
    const uint32_t node = key == nullptr ? ValueIndex::kNone : keys.find(*key, row);
    if (node == ValueIndex::kNone) return std::nullopt;
    const double turn = 2 * std::numbers::pi * chart::share_of_turn(node, keys.size());
    return Place{std::sin(turn), std::cos(turn)};
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
  std::vector<chart::Circle> circles_;  ///< by panel; none where nodes have places
  chart::HorizontalAxis x_;
  DataFacts facts_;
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
    const chart::Bins bins = chart::bins_of(tally_, histogram_);
    for (size_t i = 0; i < bins.heights.size(); ++i) {
      rows_.begin("bin");
      rows_.number("from", bins.edge(i));
      rows_.number("to", bins.edge(i + 1));
      rows_.number("count", bins.heights[i]);
      rows_.end();
    }
    facts_.curve = !bins.curve.empty();
    for (size_t i = 0; i < bins.curve.size(); ++i) {
      const double along = static_cast<double>(i) / static_cast<double>(bins.curve.size() - 1);
      rows_.begin("curve");
      rows_.number("from", bins.range.low + (bins.range.high - bins.range.low) * along);
      // Without a height the line breaks off.
      if (bins.curve[i] <= bins.highest) rows_.number("count", bins.curve[i]);
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
  return std::string(chart::kElementNames[static_cast<size_t>(element.element->kind)]) + ' ' +
         std::to_string(&element - binding.elements.data() + 1);
}

std::string category_name(const ValueIndex::Entry& category) {
  return category.shown.empty() ? " " : clean(category.shown);
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
