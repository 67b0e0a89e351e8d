#include "report/chart/plan.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace hierfit::report::chart {

using Markup = output::Element;

namespace {

constexpr double kLargestMargin = 1000;
constexpr double kSmallestFont = 4;
constexpr double kLargestFont = 60;
constexpr size_t kMostSteps = 64;  ///< of a palette

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

/// The text of an element as a reader sees it, without blanks at its ends.
std::string text_of(const Markup& node) {
  constexpr std::string_view kBlanks = " \t\r\n";
  std::string text = node.text();
  text.erase(text.find_last_not_of(kBlanks) + 1);
  text.erase(0, std::min(text.find_first_not_of(kBlanks), text.size()));
  return output::plain_text(text);
}

/// Empty where the element has no such child.
std::string text_of(const Markup& node, std::string_view child_name) {
  const Markup* child = node.child(child_name);
  return child == nullptr ? std::string() : text_of(*child);
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

Series series_in(const Markup& node) {
  Series series;
  if (is_colour(node.value("light"))) series.light = node.value("light");
  if (is_colour(node.value("dark"))) series.dark = node.value("dark");
  series.symbol = symbol_named(node.value("symbol"));
  const std::string_view dash = node.value("dash");
  if (dash.find_first_not_of("0123456789. ") == std::string_view::npos) series.dash = dash;
  return series;
}

/// The sheet while it is read: its own paints take the place of the defaults.
struct Sheet {
  Style style;
  std::array<std::vector<Series>, kParts> own;
};

void read_font(const Markup& node, Sheet& sheet) { sheet.style.family = node.value("family"); }

void read_lettering(const Markup& node, Sheet& sheet) {
  const auto part = index_of(kLetteringNames, node.value("part"));
  if (!part) return;
  Font& font = sheet.style.fonts[*part];
  font.size = std::clamp(number_or(node.value("size"), 12), kSmallestFont, kLargestFont);
  font.bold = node.value("weight") == "bold";
}

void add_paint(std::string_view name, const Markup& node, Sheet& sheet) {
  const auto part = index_of(kPartNames, name);
  if (!part || *part == 0) return;
  std::vector<Series>& steps = sheet.own[*part];
  if (steps.size() < kMostSteps) steps.push_back(series_in(node));
}

void read_paint(const Markup& node, Sheet& sheet) { add_paint(node.value("part"), node, sheet); }

void read_series(const Markup& node, Sheet& sheet) {
  add_paint(node.value("palette"), node, sheet);
}

struct SheetPart {
  std::string_view name;
  void (*read)(const Markup& node, Sheet& sheet);
};
constexpr SheetPart kSheetParts[] = {{"font", read_font},
                                     {"lettering", read_lettering},
                                     {"paint", read_paint},
                                     {"series", read_series}};

Style read_style(const Markup* element) {
  Sheet sheet;
  if (element == nullptr) return sheet.style;
  for (const Markup* node : element->children()) {
    const auto* part = std::ranges::find(kSheetParts, node->name, &SheetPart::name);
    if (part != std::end(kSheetParts)) part->read(*node, sheet);
  }
  for (size_t part = 0; part < kParts; ++part) {
    if (!sheet.own[part].empty()) sheet.style.paints[part] = std::move(sheet.own[part]);
  }
  return sheet.style;
}

// Roles.

Role role_in(const Markup& node) {
  Role role;
  role.variable = node.value("variable");
  const auto palette = index_of(kPartNames, node.value("palette"));
  if (palette && *palette >= static_cast<size_t>(kFirstPalette)) {
    role.palette = static_cast<Part>(*palette);
  }
  role.low = finite_number(node.value("low"));
  role.high = finite_number(node.value("high"));
  role.step = finite_number(node.value("step"));
  for (const Markup* child : node.children()) {
    if (child->name != "level") continue;
    Level level{text_of(*child), std::nullopt};
    if (!child->value("symbol").empty()) level.symbol = symbol_named(child->value("symbol"));
    role.levels.push_back(std::move(level));
  }
  return role;
}

Roles roles_in(const Markup& parent) {
  Roles roles;
  for (const Markup* node : parent.children()) {
    if (node->name == "tooltip") {
      roles.tooltip.push_back({std::string(node->value("variable")), text_of(*node)});
    } else if (const auto kind = index_of(kRoleNames, node->name)) {
      roles.of[*kind] = role_in(*node);
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

constexpr std::array<std::string_view, 4> kRowNames = {"all", "first", "second", "pairs"};
constexpr std::array<std::string_view, 4> kMarginNames = {"margin-top", "margin-right",
                                                          "margin-bottom", "margin-left"};

std::string first_source(const Markup& document) {
  const Markup* data = document.child("data");
  const Markup* source = data == nullptr ? nullptr : data->child("source");
  return source == nullptr ? std::string() : std::string(source->value("name"));
}

Graph read_graph(const Markup& node, const std::string& source);

std::unique_ptr<Embedded> embedded_in(const Markup& element) {
  const Markup* inset = element.child("inset");
  const Markup* embedded = inset == nullptr ? nullptr : inset->child("embedded");
  const Markup* graph = embedded == nullptr ? nullptr : embedded->child("graph");
  if (graph == nullptr) return nullptr;
  auto made = std::make_unique<Embedded>();
  made->field_type =
      static_cast<int>(std::clamp(number_or(embedded->value("fieldType"), 6), 0.0, 6.0));
  made->source = first_source(*embedded);
  made->graph = read_graph(*graph, made->source);
  return made;
}

Element element_in(const Markup& node,
                   ElementKind kind,
                   const Roles& shared,
                   const std::string& source) {
  Element element;
  element.kind = kind;
  element.source = node.value("source").empty() ? source : node.value("source");
  element.rows = static_cast<Rows>(index_of(kRowNames, node.value("rows")).value_or(0));
  element.whisker = node.value("form") == "whisker";
  element.roles = roles_in(node);
  take_over(element.roles, shared);
  element.embedded = embedded_in(node);
  return element;
}

void read_limits(const Markup& node, Axis& axis) {
  if (const auto min = finite_number(node.value("min"))) axis.min = min;
  if (const auto max = finite_number(node.value("max"))) axis.max = max;
}

void read_axis(const Markup& node, const Markup& parent, Graph& graph) {
  Axis& axis = node.value("dimension") == "y" ? graph.y : graph.x;
  graph.has_axes = true;
  for (const Markup* scale : parent.children()) {
    if (scale->name == "scale" && scale->value("id") == node.value("scale")) {
      read_limits(*scale, axis);
    }
  }
  read_limits(node, axis);
  axis.visible = node.value("visible") != "false";
  axis.zero = node.value("zero") == "true";
  axis.log = node.value("log") == "true";
  axis.label = text_of(node, "label");
}

void read_facets(const Markup& faceting, const Markup& parent, Graph& graph) {
  for (const Markup* node : faceting.children()) {
    if (node->name == "variableReference")
      graph.facets.push_back({std::string(node->value("variable")), graph.facets.empty()});
  }
  const Markup* layout = parent.child("facetLayout");
  if (layout == nullptr) return;
  const std::vector<const Markup*> levels = layout->children();
  for (size_t i = 0; i < std::min(graph.facets.size(), levels.size()); ++i) {
    graph.facets[i].across_columns = levels[i]->value("across") == "columns";
  }
}

void read_legend(const Markup& node, const Markup& /*parent*/, Graph& graph) {
  const std::string_view name = node.value("role").empty() ? "color" : node.value("role");
  const auto role = index_of(kRoleNames, name);
  if (!role || node.value("visible") == "false") return;
  graph.legends.push_back({static_cast<RoleKind>(*role), text_of(node, "title")});
}

void read_guide(const Markup& node, const Markup& /*parent*/, Graph& graph) {
  LineGuide guide;
  guide.y = finite_number(node.value("y"));
  guide.slope = number_or(node.value("slope"), 0);
  guide.intercept = number_or(node.value("intercept"), 0);
  guide.hidden = output::HideCondition(node.value("hideWhen"));
  if (guide.y || !node.value("slope").empty()) graph.guides.push_back(std::move(guide));
}

void read_cluster(const Markup& node, const Markup& /*parent*/, Graph& graph) {
  graph.cluster = std::clamp(number_or(node.value("width"), 60) / 100, 0.05, 1.0);
}

void read_bins(const Markup& node, const Markup& /*parent*/, Graph& graph) {
  if (!graph.histogram) graph.histogram.emplace();
  graph.histogram->variable = node.value("variable");
  graph.histogram->weight = node.value("weight");
  graph.histogram->bins =
      static_cast<size_t>(std::clamp(number_or(node.value("binCount"), 0), 0.0, 1e9));
}

void read_distribution(const Markup& node, const Markup& /*parent*/, Graph& graph) {
  if (!graph.histogram) graph.histogram.emplace();
  graph.histogram->curve = Distribution{
      std::string(node.value("method")), number_or(node.value("parameter"), output::kSystemMissing),
      number_or(node.value("secondaryParameter"), output::kSystemMissing)};
}

/// A part of a graph that is no element.
struct GraphPart {
  std::string_view name;
  void (*read)(const Markup& node, const Markup& parent, Graph& graph);
};
constexpr GraphPart kGraphParts[] = {{"axis", read_axis},
                                     {"faceting", read_facets},
                                     {"legend", read_legend},
                                     {"lineGuide", read_guide},
                                     {"cluster", read_cluster},
                                     {"binStatistic", read_bins},
                                     {"distributionStatistic", read_distribution}};

Graph read_graph(const Markup& node, const std::string& source) {
  Graph graph;
  graph.aspect = std::clamp(number_or(node.value("aspect"), 0), 0.0, 4.0);
  graph.circle = node.value("layout") == "circle";
  graph.rows = node.value("layout") == "rows";
  for (size_t i = 0; i < kMarginNames.size(); ++i) {
    graph.margins[i] = std::clamp(number_or(node.value(kMarginNames[i]), 0), 0.0, kLargestMargin);
  }
  const Roles shared = roles_in(node);
  for (const Markup* child : node.children()) {
    const auto* part = std::ranges::find(kGraphParts, child->name, &GraphPart::name);
    if (part != std::end(kGraphParts)) part->read(*child, node, graph);
    if (const auto kind = index_of(kElementNames, child->name)) {
      graph.elements.push_back(element_in(*child, static_cast<ElementKind>(*kind), shared, source));
    }
  }
  return graph;
}

Texts read_texts(const Markup* node) {
  if (node == nullptr) return {};
  Texts texts{.title = text_of(*node, "title"),
              .sub_title = text_of(*node, "subTitle"),
              .caption = text_of(*node, "caption"),
              .footnote = text_of(*node, "footnote"),
              .notes = {}};
  for (const Markup* child : node->children()) {
    if (child->name == "note") texts.notes.push_back(text_of(*child));
  }
  return texts;
}

}  // namespace

Plan read_plan(const output::Chart& chart) {
  const Markup& document = chart.document;
  Plan plan;
  plan.style = read_style(document.child("style"));
  plan.texts = read_texts(document.child("texts"));
  if (const Markup* graph = document.child("graph")) {
    plan.graph = read_graph(*graph, first_source(document));
  }
  return plan;
}

}  // namespace hierfit::report::chart
