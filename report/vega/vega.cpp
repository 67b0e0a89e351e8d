// The Vega-Lite form: each chart as JSON with its data, for notebooks and editors.
#include <algorithm>

#include "report/chart/axes.h"
#include "report/chart/figure.h"
#include "report/chart_files.h"
#include "report/typeset/texts.h"
#include "report/vega/vega_looks.h"
#include "report/vega/vega_rows.h"

namespace hierfit::report {

using chart::Binding;
using chart::BoundElement;
using chart::ElementKind;
using chart::Part;
using output::Chart;
using output::Document;

namespace {

using vega::Json;

constexpr std::string_view kSchema = "https://vega.github.io/schema/vega-lite/v5.json";

/// Which nodes of a circle have their labels at which side.
struct LabelSide {
  std::string_view nodes;
  std::string_view align;
};
constexpr LabelSide kLabelSides[] = {
    {"abs(datum.x) <= 0.2", "center"}, {"datum.x > 0.2", "left"}, {"datum.x < -0.2", "right"}};

constexpr double kPlotWidth = 480;
constexpr double kPlotHeight = 320;
constexpr double kPanelWidth = 260;
constexpr double kPanelHeight = 220;
constexpr double kLeastHeight = 240;
constexpr double kNodeHeight = 26;
constexpr double kHistogramSize = 200;

Json lines_of(std::string_view text) {
  Json lines = Json::array();
  const std::string plain = clean(text);
  for (size_t at = 0;;) {
    const size_t end = plain.find('\n', at);
    lines.push_back(plain.substr(at, end - at));
    if (end == std::string::npos) return lines;
    at = end + 1;
  }
}

/// The looks of a chart as a whole.
Json config() { return {{"view", {{"stroke", nullptr}}}, {"legend", {{"symbolOpacity", 1}}}}; }

/// A layer's share of the rows.
Json only(std::string_view part) {
  return Json::array({{{"filter", "datum.part === '" + std::string(part) + "'"}}});
}

/// One chart, without its data.
class VegaChart {
 public:
  VegaChart(const Chart& chart, const Document& document)
      : figure_(chart, document),
        plan_(figure_.plan()),
        binding_(figure_.binding()),
        x_(chart::horizontal_axis(binding_)),
        y_(chart::vertical_axis(binding_)) {}

  /// A JSON object that ends in the data.
  std::string write(bool whole) {
    vega::Rows rows;
    facts_ = vega::append_rows(rows, binding_);
    Json top;
    if (whole) top["$schema"] = kSchema;
    write_texts(top);
    const chart::Embedded* histogram = embedded_histogram();
    if (histogram != nullptr) histogram_ = vega::append_histogram(rows, binding_, *histogram);
    if (!histogram_.bars) {
      top.update(graph());
    } else {
      top["hconcat"] = Json::array({graph(), histogram_of(*histogram)});
    }
    if (whole) top["config"] = config();
    std::string text = top.dump(2, ' ', false, Json::error_handler_t::replace);
    text.erase(text.rfind('\n'));
    return text + ",\n  \"data\": {\"values\": [\n" + rows.take() + "\n]}\n}";
  }

 private:
  void write_texts(Json& top) const {
    Json title = {{"text", lines_of(figure_.title())}, {"anchor", "start"}};
    std::string below = figure_.sub_title();
    for (const std::string& note : figure_.notes()) {
      if (!below.empty()) below += '\n';
      below += note;
    }
    if (!below.empty()) title["subtitle"] = lines_of(below);
    top["title"] = std::move(title);
    top["description"] = clean(figure_.description());
  }

  const chart::Embedded* embedded_histogram() const {
    for (const BoundElement& element : binding_.elements) {
      const chart::Embedded* embedded = element.element->embedded.get();
      if (embedded != nullptr && embedded->graph.histogram) return embedded;
    }
    return nullptr;
  }

  bool is_network() const {
    return std::ranges::any_of(binding_.elements, [](const BoundElement& element) {
      return element.element->kind == ElementKind::Edge ||
             element.element->kind == ElementKind::Node;
    });
  }

  /// The layers, in panels where there are several.
  Json graph() const {
    Json layers = Json::array();
    for (const BoundElement& element : binding_.elements)
      layers.push_back(layer(element));
    if (facts_.guides) layers.push_back(guide_layer("guide"));
    if (facts_.levels) layers.push_back(guide_layer("level"));
    if (plan_.graph.circle) {
      for (const LabelSide& side : kLabelSides)
        layers.push_back(label_layer(side));
    }
    if (plan_.graph.rows) {
      for (Json& drawn : layers)
        turn(drawn["encoding"]);
    }
    Json unit;
    write_size(unit);
    unit["layer"] = std::move(layers);
    if (binding_.panels.size() == 1) return unit;
    Json order = Json::array();
    uint32_t columns = 1;
    for (uint32_t panel = 0; panel < binding_.panels.size(); ++panel) {
      order.push_back(vega::panel_name(binding_, panel));
      columns = std::max(columns, binding_.panels[panel].column + 1);
    }
    if (binding_.single_facet) columns = std::min(columns, 3U);
    return {
        {"facet", {{"field", "panel"}, {"type", "nominal"}, {"title", nullptr}, {"sort", order}}},
        {"columns", columns},
        {"spec", unit}};
  }

  /// Categories run down, numbers along x.
  static void turn(Json& encoding) {
    constexpr std::pair<const char*, const char*> kTurned[] = {{"x", "y"}, {"x2", "y2"}};
    for (const auto& [across, down] : kTurned) {
      Json old = Json::object();
      for (const char* channel : {across, down}) {
        if (!encoding.contains(channel)) continue;
        old[channel == across ? down : across] = std::move(encoding[channel]);
        encoding.erase(channel);
      }
      encoding.update(old);
    }
  }

  void write_size(Json& unit) const {
    const bool one = binding_.panels.size() == 1;
    double width = one ? kPlotWidth : kPanelWidth;
    double height = one ? kPlotHeight : kPanelHeight;
    if (plan_.graph.aspect > 0) height = width * plan_.graph.aspect;
    if (plan_.graph.circle) height = width = one ? kPlotHeight : kPanelWidth;
    if (plan_.graph.rows) {
      height = kNodeHeight * static_cast<double>(std::max<size_t>(x_.categories.size(), 1));
    }
    if (is_network() && !plan_.graph.circle && !y_.range.empty) {
      height = std::max(kLeastHeight, kNodeHeight * (y_.range.high - y_.range.low + 2));
    }
    unit["width"] = width;
    unit["height"] = height;
  }

  // Layers.

  Json layer(const BoundElement& element) const {
    Json encoding = position(element);
    vega::write_looks(encoding, element, binding_, facts_);
    if (!element.tooltip.empty()) encoding["tooltip"] = {{"field", "tooltip"}, {"type", "nominal"}};
    return {{"transform", only(vega::part_of(binding_, element))},
            {"mark", mark(element)},
            {"encoding", encoding}};
  }

  Json mark(const BoundElement& element) const {
    const std::string& plain = plan_.style.series({Part::Mark}).light;
    switch (element.element->kind) {
      case ElementKind::Point:
        return {{"type", "point"}, {"filled", true}, {"size", 50}, {"color", plain}};
      case ElementKind::Line:
        return {{"type", "line"}, {"color", plain}};
      case ElementKind::Interval:
        if (element.element->whisker) {
          return {{"type", "rule"}, {"strokeWidth", 1.5}, {"color", plain}};
        }
        return {{"type", "bar"}, {"size", 8}, {"color", plain}};
      case ElementKind::Edge:
        return {{"type", "rule"}, {"color", plain}};
      case ElementKind::Node:
        return {{"type", "point"},
                {"filled", true},
                {"size", 110},
                {"opacity", 1},
                {"color", plan_.style.series({Part::Text}).light}};
      case ElementKind::Text:
        return {{"type", "text"}, {"align", "right"}, {"dx", -4}};
    }
    return {};
  }

  Json position(const BoundElement& element) const {
    Json encoding = {{"x", x_channel()}, {"y", y_channel()}};
    const bool edge = element.element->kind == ElementKind::Edge;
    if (edge) encoding["x2"] = {{"field", "x2"}};
    if (edge || element.element->rows == chart::Rows::Pairs) encoding["y2"] = {{"field", "y2"}};
    if (facts_.dodged)
      encoding["xOffset"] = {
          {"field", "color"}, {"type", "nominal"}, {"sort", vega::shown_colors(binding_)}};
    if (element.element->kind == ElementKind::Text) {
      encoding["text"] = {{"field", "label"}, {"type", "nominal"}};
    }
    return encoding;
  }

  Json x_channel() const {
    if (plan_.graph.circle) return hidden_channel("x", -1.4, 1.4);
    if (!x_.categorical) return number_channel("x", plan_.graph.x, x_.range, x_.title);
    Json order = Json::array();
    for (const chart::ValueIndex::Entry& entry : x_.categories.entries())
      order.push_back(vega::category_name(entry));
    return {{"field", "x"},
            {"type", "nominal"},
            {"sort", order},
            {"axis", {{"labelAngle", order.size() > 8 && !plan_.graph.rows ? -40 : 0}}},
            {"title", lines_of(x_.title)}};
  }

  Json y_channel() const {
    if (plan_.graph.circle) return hidden_channel("y", -1.2, 1.2);
    return number_channel("y", plan_.graph.y, y_.range, y_.title);
  }

  static Json hidden_channel(std::string_view field, double low, double high) {
    return {{"field", field},
            {"type", "quantitative"},
            {"scale", {{"domain", {low, high}}}},
            {"axis", nullptr}};
  }

  Json number_channel(std::string_view field,
                      const chart::Axis& axis,
                      const chart::Range& range,
                      const std::string& title) const {
    if (!axis.visible || is_network()) {
      const chart::Range wide = range.proper().widened(0.1);
      return hidden_channel(field, wide.low, wide.high);
    }
    Json channel = {{"field", field}, {"type", "quantitative"}, {"title", lines_of(title)}};
    if (axis.log) {
      channel["scale"] = {{"type", "log"}};
    } else if (axis.min && axis.max) {
      channel["scale"] = {{"domain", {*axis.min, *axis.max}}};
    } else {
      channel["scale"] = {{"zero", axis.zero}};
    }
    return channel;
  }

  // What belongs to no element.

  Json guide_layer(std::string_view part) const {
    Json encoding = {{"y", y_channel()}};
    if (part == "guide" && !x_.categorical) {
      encoding["x"] = x_channel();
      encoding["x2"] = {{"field", "x2"}};
      encoding["y2"] = {{"field", "y2"}};
    }
    return {{"transform", only(part)},
            {"mark",
             {{"type", "rule"},
              {"strokeDash", {5, 4}},
              {"color", plan_.style.series({Part::Guide}).light}}},
            {"encoding", encoding}};
  }

  /// The labels of the nodes on one side of a circle, away from its middle.
  Json label_layer(const LabelSide& side) const {
    Json encoding = {{"x", x_channel()}, {"y", y_channel()}};
    encoding["text"] = {{"field", "label"}, {"type", "nominal"}};
    Json outside = Json::array({{{"filter", "datum.label != null && " + std::string(side.nodes)}},
                                {{"calculate", "datum.x * 1.12"}, {"as", "x"}},
                                {{"calculate", "datum.y * 1.12"}, {"as", "y"}}});
    return {{"transform", outside},
            {"mark", {{"type", "text"}, {"align", side.align}}},
            {"encoding", encoding}};
  }

  Json histogram_of(const chart::Embedded& embedded) const {
    const chart::ChartSource* source = binding_.chart.source(embedded.source);
    const chart::ChartVariable* variable =
        source == nullptr ? nullptr : source->by_role(embedded.graph.histogram->variable);
    const Json title = lines_of(variable == nullptr ? std::string() : chart::label_of(*variable));
    Json bar_x = {{"field", "from"},
                  {"type", "quantitative"},
                  {"title", title},
                  {"scale", {{"zero", false}}}};
    Json count = {{"field", "count"}, {"type", "quantitative"}, {"axis", nullptr}};
    Json bins = {{"transform", only("bin")},
                 {"mark", {{"type", "bar"}, {"color", plan_.style.series({Part::Mark}).light}}}};
    if (histogram_.categories) {
      bins["encoding"] = {
          {"x", {{"field", "category"}, {"type", "nominal"}, {"sort", nullptr}, {"title", title}}},
          {"y", count}};
    } else {
      bar_x["bin"] = "binned";
      bins["encoding"] = {{"x", bar_x}, {"x2", {{"field", "to"}}}, {"y", count}};
    }
    Json layers = Json::array({bins});
    if (histogram_.curve) {
      bar_x.erase("bin");
      layers.push_back(
          {{"transform", only("curve")},
           {"mark", {{"type", "line"}, {"color", plan_.style.series({Part::Curve}).light}}},
           {"encoding", {{"x", bar_x}, {"y", count}}}});
    }
    return {{"width", kHistogramSize}, {"height", kHistogramSize}, {"layer", layers}};
  }

  chart::Figure figure_;
  const chart::Plan& plan_;
  const Binding& binding_;
  chart::HorizontalAxis x_;
  chart::VerticalAxis y_;
  vega::DataFacts facts_;
  vega::HistogramFacts histogram_;
};

std::string chart_of_nothing(const Document& document) {
  const Json top = {{"$schema", kSchema},
                    {"data", {{"values", Json::array({Json::object()})}}},
                    {"mark", {{"type", "text"}, {"text", clean(document.word("No charts"))}}}};
  return top.dump(2, ' ', false, Json::error_handler_t::replace) + '\n';
}

}  // namespace

std::string vega_of_chart(const Chart& chart, const Document& document, const Options&) {
  return VegaChart(chart, document).write(true) + '\n';
}

std::string render_vega(const Document& document, const Options& options) {
  const std::vector<const Chart*> charts = chosen_charts(document, options);
  if (charts.empty()) return chart_of_nothing(document);
  if (charts.size() == 1) return vega_of_chart(*charts.front(), document, options);
  Json own;
  for (const std::string_view scale : {"color", "shape", "opacity", "strokeWidth"})
    own[scale] = "independent";
  const Json whole = {{"$schema", kSchema}, {"config", config()}, {"resolve", {{"scale", own}}}};
  std::string out = whole.dump(2);
  out.erase(out.rfind('\n'));
  out += ",\n\"vconcat\": [\n";
  for (const Chart* chart : charts) {
    if (chart != charts.front()) out += ",\n";
    out += VegaChart(*chart, document).write(false);
  }
  return out += "\n]\n}\n";
}

std::vector<File> render_vega_folder(const Document& document, const Options& options) {
  return render_charts(document, *chart_form_by_name("vl.json"), options);
}

}  // namespace hierfit::report
