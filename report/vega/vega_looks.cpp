#include "report/vega/vega_looks.h"

#include <algorithm>
#include <utility>

#include "report/chart/pieces.h"
#include "report/typeset/texts.h"

namespace hierfit::report::vega {

using chart::Binding;
using chart::BoundElement;
using chart::ElementKind;
using chart::RoleKind;
using chart::Symbol;

namespace {

/// By symbol.
constexpr std::string_view kShapes[] = {"circle", "square",        "diamond",        "triangle-up",
                                        "cross",  "triangle-down", "triangle-right", "square"};

class Looks {
 public:
  Looks(const Binding& binding, const DataFacts& facts) : binding_(binding), facts_(facts) {}

  void write(const BoundElement& element, Json& encoding) const {
    const bool marked =
        element.element->kind == ElementKind::Point || element.element->kind == ElementKind::Node;
    if (element[RoleKind::Color] != nullptr && binding_.colors.variable != nullptr) {
      encoding["color"] = color_channel();
      // Not by colour alone.
      if (marked && element[RoleKind::Shape] == nullptr) encoding["shape"] = symbol_channel();
    }
    if (marked && element[RoleKind::Shape] != nullptr && binding_.shapes.variable != nullptr) {
      encoding["shape"] = shape_channel();
    }
    if (element[RoleKind::Size] != nullptr && facts_.sizes) {
      encoding["strokeWidth"] = facts_.size_labels.empty()
                                    ? amount_channel("size", RoleKind::Size, element, {1, 8})
                                    : size_channel(element);
    }
    if (element[RoleKind::Transparency] != nullptr && facts_.frequencies) {
      encoding["opacity"] = amount_channel("frequency", RoleKind::Transparency, element, {0.35, 1});
    }
  }

 private:
  std::string legend_title(RoleKind role, const chart::ChartVariable& variable) const {
    for (const chart::Legend& legend : binding_.graph.legends) {
      if (legend.role == role && !legend.title.empty()) return clean(legend.title);
    }
    return clean(variable.label);
  }

  Json color_channel() const {
    Json range = Json::array();
    uint32_t step = 0;
    for (const chart::ValueIndex::Entry& entry : binding_.colors.values.entries()) {
      const auto turned =
          static_cast<uint8_t>(step++ % binding_.plan.style.steps(binding_.colors.role->palette));
      if (entry.occurs) {
        range.push_back(binding_.plan.style.series({binding_.colors.role->palette, turned}).light);
      }
    }
    return {{"field", "color"},
            {"type", "nominal"},
            {"scale", {{"domain", shown_colors(binding_)}, {"range", range}}},
            {"title", legend_title(RoleKind::Color, *binding_.colors.variable)}};
  }

  Json symbol_channel() const {
    Json range = Json::array();
    uint32_t step = 0;
    for (const chart::ValueIndex::Entry& entry : binding_.colors.values.entries()) {
      const Symbol symbol = binding_.symbol_of_step(step++);
      if (entry.occurs) range.push_back(kShapes[static_cast<size_t>(symbol)]);
    }
    return {{"field", "color"},
            {"type", "nominal"},
            {"scale", {{"domain", shown_colors(binding_)}, {"range", range}}},
            {"title", legend_title(RoleKind::Color, *binding_.colors.variable)}};
  }

  Json shape_channel() const {
    Json domain = Json::array();
    Json range = Json::array();
    uint32_t step = 0;
    for (const chart::ValueIndex::Entry& entry : binding_.shapes.values.entries()) {
      const Symbol symbol = binding_.symbol_of_shape(step++);
      if (!entry.occurs) continue;
      domain.push_back(clean(entry.shown));
      range.push_back(kShapes[static_cast<size_t>(symbol)]);
    }
    return {{"field", "shape"},
            {"type", "nominal"},
            {"scale", {{"domain", domain}, {"range", range}}},
            {"title", legend_title(RoleKind::Shape, *binding_.shapes.variable)}};
  }

  Json amount_channel(std::string_view field,
                      RoleKind role,
                      const BoundElement& element,
                      std::pair<double, double> range) const {
    const chart::Range& amounts = role == RoleKind::Size ? *facts_.sizes : *facts_.frequencies;
    const chart::Range proper = amounts.proper();
    const chart::Role& bound = element.element->roles[role];
    return {{"field", field},
            {"type", "quantitative"},
            {"scale",
             {{"domain", {bound.low.value_or(proper.low), bound.high.value_or(proper.high)}},
              {"range", {range.first, range.second}}}},
            {"title", legend_title(role, *element[role])},
            {"legend", amounts.low == amounts.high
                           ? Json(nullptr)
                           : Json{{"values", chart::legend_values(*element[role])}}}};
  }

  /// Widths whose values have names.
  Json size_channel(const BoundElement& element) const {
    const chart::LineWidths widths(binding_);
    Json domain = Json::array();
    Json range = Json::array();
    for (const auto& [size, label] : facts_.size_labels) {
      domain.push_back(clean(label));
      range.push_back(widths.of(size));
    }
    return {{"field", "size"},
            {"type", "ordinal"},
            {"scale", {{"domain", domain}, {"range", range}}},
            {"title", legend_title(RoleKind::Size, *element[RoleKind::Size])}};
  }

  const Binding& binding_;
  const DataFacts& facts_;
};

}  // namespace

Json shown_colors(const Binding& binding) {
  Json shown = Json::array();
  for (const chart::ValueIndex::Entry& entry : binding.colors.values.entries()) {
    if (entry.occurs) shown.push_back(clean(entry.shown));
  }
  return shown;
}

void write_looks(Json& encoding,
                 const BoundElement& element,
                 const Binding& binding,
                 const DataFacts& facts) {
  Looks(binding, facts).write(element, encoding);
}

}  // namespace hierfit::report::vega
