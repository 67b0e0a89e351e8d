#include "report/chart/plan.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "report/chart/document_tree.h"

namespace hierfit::report::chart {
namespace {

constexpr double kLargestMargin = 1000;
constexpr double kSmallestFont = 4;
constexpr double kLargestFont = 60;

std::optional<double> number_in(std::string_view text) {
  double number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end == text.data()) return std::nullopt;
  return number;
}

/// A number that a position can be reckoned with.
std::optional<double> finite_number(std::string_view text) {
  const std::optional<double> number = number_in(text);
  if (!number || !std::isfinite(*number) || *number == output::kSystemMissing) return std::nullopt;
  return number;
}

double number_or(std::string_view text, double otherwise) {
  return finite_number(text).value_or(otherwise);
}

std::string text_of(const Node* node) {
  return node == nullptr ? std::string() : output::plain_text(node->text);
}

template <size_t N>
std::optional<size_t> index_of(const std::array<std::string_view, N>& names,
                               std::string_view name) {
  const auto found = std::ranges::find(names, name);
  if (found == names.end()) return std::nullopt;
  return static_cast<size_t>(found - names.begin());
}

// The style sheet.

bool is_colour(std::string_view text) {
  return text.size() == 7 && text[0] == '#' &&
         text.find_first_not_of("0123456789abcdefABCDEF", 1) == std::string_view::npos;
}

Series series_in(const Node& node) {
  Series series;
  if (is_colour(node.attribute("light"))) series.light = node.attribute("light");
  if (is_colour(node.attribute("dark"))) series.dark = node.attribute("dark");
  series.symbol = symbol_named(node.attribute("symbol"));
  const std::string_view dash = node.attribute("dash");
  if (dash.find_first_not_of("0123456789. ") == std::string_view::npos) series.dash = dash;
  return series;
}

void read_lettering(const Node& node, Style& style) {
  const auto part = index_of(kLetteringNames, node.attribute("part"));
  if (!part) return;
  Font& font = style.fonts[*part];
  font.size = std::clamp(number_or(node.attribute("size"), 12), kSmallestFont, kLargestFont);
  font.bold = node.attribute("weight") == "bold";
}

/// The first step of a palette takes the place of the palette's defaults.
void read_paint(const Node& node,
                std::string_view name,
                Style& style,
                std::array<bool, kParts>& own) {
  const auto part = index_of(kPartNames, name);
  if (!part || *part == 0) return;
  if (!own[*part]) style.paints[*part].clear();
  own[*part] = true;
  if (style.paints[*part].size() < 64) style.paints[*part].push_back(series_in(node));
}

Style read_style(const Node* sheet) {
  Style style;
  if (sheet == nullptr) return style;
  std::array<bool, kParts> own{};
  for (const Node& node : sheet->children) {
    if (node.name == "font") style.family = node.attribute("family");
    if (node.name == "lettering") read_lettering(node, style);
    if (node.name == "paint") read_paint(node, node.attribute("part"), style, own);
    if (node.name == "series") read_paint(node, node.attribute("palette"), style, own);
  }
  return style;
}

// Roles.

Role role_in(const Node& node) {
  Role role;
  role.variable = node.attribute("variable");
  const auto palette = index_of(kPartNames, node.attribute("palette"));
  if (palette && *palette >= static_cast<size_t>(kFirstPalette)) {
    role.palette = static_cast<Part>(*palette);
  }
  role.low = finite_number(node.attribute("low"));
  role.high = finite_number(node.attribute("high"));
  for (const Node& child : node.children) {
    if (child.name != "level") continue;
    Level level{output::plain_text(child.text), std::nullopt};
    if (!child.attribute("symbol").empty()) level.symbol = symbol_named(child.attribute("symbol"));
    role.levels.push_back(std::move(level));
  }
  return role;
}

Roles roles_in(const Node& parent) {
  Roles roles;
  for (const Node& node : parent.children) {
    if (node.name == "tooltip") {
      roles.tooltip.push_back(
          {std::string(node.attribute("variable")), output::plain_text(node.text)});
    } else if (const auto kind = index_of(kRoleNames, node.name)) {
      roles.of[*kind] = role_in(node);
    }
  }
  return roles;
}

void take_over(Roles& roles, const Roles& shared) {
  for (size_t i = 0; i < roles.of.size(); ++i) {
    if (roles.of[i].variable.empty()) roles.of[i] = shared.of[i];
  }
  if (roles.tooltip.empty()) roles.tooltip = shared.tooltip;
}

// The graph.

constexpr std::array<std::string_view, 6> kElementNames = {"point", "line", "interval",
                                                           "edge",  "node", "text"};
constexpr std::array<std::string_view, 4> kRowNames = {"all", "first", "second", "pairs"};
constexpr std::array<std::string_view, 4> kMarginNames = {"margin-top", "margin-right",
                                                          "margin-bottom", "margin-left"};

std::string first_source(const Node& document) {
  const Node* data = document.child("data");
  const Node* source = data == nullptr ? nullptr : data->child("source");
  return source == nullptr ? std::string() : std::string(source->attribute("name"));
}

Graph read_graph(const Node& node, const std::string& source);

std::unique_ptr<Embedded> embedded_in(const Node& element) {
  const Node* inset = element.child("inset");
  const Node* embedded = inset == nullptr ? nullptr : inset->child("embedded");
  const Node* graph = embedded == nullptr ? nullptr : embedded->child("graph");
  if (graph == nullptr) return nullptr;
  auto made = std::make_unique<Embedded>();
  made->field_type =
      static_cast<int>(std::clamp(number_or(embedded->attribute("fieldType"), 6), 0.0, 6.0));
  made->source = first_source(*embedded);
  made->graph = read_graph(*graph, made->source);
  return made;
}

Element element_in(const Node& node,
                   ElementKind kind,
                   const Roles& shared,
                   const std::string& source) {
  Element element;
  element.kind = kind;
  element.source = node.attribute("source").empty() ? source : node.attribute("source");
  element.rows = static_cast<Rows>(index_of(kRowNames, node.attribute("rows")).value_or(0));
  element.whisker = node.attribute("form") == "whisker";
  element.roles = roles_in(node);
  take_over(element.roles, shared);
  element.embedded = embedded_in(node);
  return element;
}

void read_limits(const Node& node, Axis& axis) {
  if (const auto min = finite_number(node.attribute("min"))) axis.min = min;
  if (const auto max = finite_number(node.attribute("max"))) axis.max = max;
}

void read_axis(const Node& node, const Node& parent, Graph& graph) {
  Axis& axis = node.attribute("dimension") == "y" ? graph.y : graph.x;
  graph.has_axes = true;
  for (const Node& scale : parent.children) {
    if (scale.name == "scale" && scale.attribute("id") == node.attribute("scale")) {
      read_limits(scale, axis);
    }
  }
  read_limits(node, axis);
  axis.visible = node.attribute("visible") != "false";
  axis.zero = node.attribute("zero") == "true";
  axis.label = text_of(node.child("label"));
}

void read_facets(const Node& faceting, const Node& parent, Graph& graph) {
  for (const Node& node : faceting.children) {
    if (node.name == "variableReference")
      graph.facets.push_back({std::string(node.attribute("variable")), graph.facets.empty()});
  }
  const Node* layout = parent.child("facetLayout");
  if (layout == nullptr) return;
  for (size_t i = 0; i < std::min(graph.facets.size(), layout->children.size()); ++i) {
    graph.facets[i].across_columns = layout->children[i].attribute("across") == "columns";
  }
}

void read_legend(const Node& node, Graph& graph) {
  const std::string_view name = node.attribute("role").empty() ? "color" : node.attribute("role");
  const auto role = index_of(kRoleNames, name);
  if (!role || node.attribute("visible") == "false") return;
  graph.legends.push_back({static_cast<RoleKind>(*role), text_of(node.child("title"))});
}

void read_guide(const Node& node, Graph& graph) {
  LineGuide guide;
  guide.y = finite_number(node.attribute("y"));
  guide.slope = number_or(node.attribute("slope"), 0);
  guide.intercept = number_or(node.attribute("intercept"), 0);
  guide.hidden = output::HideCondition(node.attribute("hideWhen"));
  if (guide.y || !node.attribute("slope").empty()) graph.guides.push_back(std::move(guide));
}

void read_cluster(const Node& node, Graph& graph) {
  graph.cluster = std::clamp(number_or(node.attribute("width"), 60) / 100, 0.05, 1.0);
}

void read_bins(const Node& node, Graph& graph) {
  if (!graph.histogram) graph.histogram.emplace();
  graph.histogram->variable = node.attribute("variable");
  graph.histogram->weight = node.attribute("weight");
  graph.histogram->bins =
      static_cast<size_t>(std::clamp(number_or(node.attribute("binCount"), 0), 0.0, 1e9));
}

void read_distribution(const Node& node, Graph& graph) {
  if (!graph.histogram) graph.histogram.emplace();
  graph.histogram->curve =
      Distribution{std::string(node.attribute("method")),
                   number_or(node.attribute("parameter"), output::kSystemMissing),
                   number_or(node.attribute("secondaryParameter"), output::kSystemMissing)};
}

Graph read_graph(const Node& node, const std::string& source) {
  Graph graph;
  graph.aspect = std::clamp(number_or(node.attribute("aspect"), 0), 0.0, 4.0);
  graph.circle = node.attribute("layout") == "circle";
  for (size_t i = 0; i < kMarginNames.size(); ++i) {
    graph.margins[i] =
        std::clamp(number_or(node.attribute(kMarginNames[i]), 0), 0.0, kLargestMargin);
  }
  const Roles shared = roles_in(node);
  for (const Node& child : node.children) {
    if (child.name == "axis") read_axis(child, node, graph);
    if (child.name == "faceting") read_facets(child, node, graph);
    if (child.name == "legend") read_legend(child, graph);
    if (child.name == "lineGuide") read_guide(child, graph);
    if (child.name == "cluster") read_cluster(child, graph);
    if (child.name == "binStatistic") read_bins(child, graph);
    if (child.name == "distributionStatistic") read_distribution(child, graph);
    if (const auto kind = index_of(kElementNames, child.name)) {
      graph.elements.push_back(element_in(child, static_cast<ElementKind>(*kind), shared, source));
    }
  }
  return graph;
}

Texts read_texts(const Node* node) {
  if (node == nullptr) return {};
  return {.title = text_of(node->child("title")),
          .sub_title = text_of(node->child("subTitle")),
          .caption = text_of(node->child("caption")),
          .footnote = text_of(node->child("footnote"))};
}

}  // namespace

Plan read_plan(const output::Chart& chart) {
  const Node document = parse_document(chart.document);
  Plan plan;
  plan.style = read_style(document.child("style"));
  plan.texts = read_texts(document.child("texts"));
  if (const Node* graph = document.child("graph")) {
    plan.graph = read_graph(*graph, first_source(document));
  }
  return plan;
}

}  // namespace hierfit::report::chart
