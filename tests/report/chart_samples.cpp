#include "tests/report/chart_samples.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
#include <tuple>

#include "embedded/chart/parse_markup.h"
#include "output/number_format.h"

namespace hierfit::test {

using output::Chart;

const std::vector<std::string> kAwkwardLabels = {
    "Somewhat satisfied with the service that was provided at the desk on the first floor",
    "\u793E\u4F1A\u5B66\u90E8\u306E\u5B66\u751F\u306B\u3088\u308B\u8A55\u4FA1",
    "\u05DE\u05D7\u05DC\u05E7\u05EA \u05DE\u05DB\u05D9\u05E8\u05D5\u05EA",
    "<b onclick=\"x\">&amp;</b> ]]> '\"",
    "Donaudampfschifffahrtsgesellschaftskapit\u00E4nsm\u00FCtzenabzeichen",
    "a\u0301\u0301\u0301 e\u0308",
    std::string(300, 'W'),
    "\u0417\u0434\u0440\u0430\u0432\u0441\u0442\u0432\u0443\u0439\u0442\u0435",
    "\x01\x02\t",
    "",
};

ChartData::ChartData(Chart& chart, const std::string& source)
    : chart_(chart), index_(chart.sources.size()) {
  chart.sources.push_back({source, 0, {}});
}

ChartData& ChartData::variable(const std::string& role,
                               const std::string& label,
                               bool categorical) {
  source().variables.push_back({.name = role,
                                .role = role,
                                .label = label,
                                .prefix = "",
                                .categorical = categorical,
                                .format = std::nullopt,
                                .statistic = std::nullopt,
                                .number_labels = {},
                                .text_labels = {},
                                .values = {}});
  return *this;
}

ChartData& ChartData::number(size_t row, double value) {
  last().values.set(row, value);
  source().rows = std::max(source().rows, row + 1);
  return *this;
}

ChartData& ChartData::text(size_t row, const std::string& value) {
  last().values.set(row, value);
  source().rows = std::max(source().rows, row + 1);
  return *this;
}

ChartData& ChartData::value_label(double value, const std::string& label) {
  last().number_labels[value] = label;
  return *this;
}

ChartData& ChartData::decimals(uint8_t decimals) {
  last().format = output::ChartFormat{40, 5, decimals};
  return *this;
}

ChartData& ChartData::prefix(const std::string& prefix) {
  last().prefix = prefix;
  return *this;
}

namespace {

/// Numbers that look random and are the same everywhere, from -1 to 1.
class Noise {
 public:
  double next() {
    state_ = state_ * 6364136223846793005ULL + 1442695040888963407ULL;
    return static_cast<double>(state_ >> 11) * 0x1p-52 - 1;
  }
  double normal() { return (next() + next() + next() + next()) * 0.9; }

 private:
  uint64_t state_ = 20240229;
};

output::Element document(const std::string& kind,
                         const std::string& graph,
                         const std::string& texts) {
  const std::string text = "<chart kind=\"" + kind + "\"><graph " + graph + "</graph><texts>" +
                           texts + "</texts><data/></chart>";
  return chart::parse_markup(text, kind);
}

Chart chart_of(const std::string& kind,
               const std::string& title,
               const std::string& graph,
               const std::string& more_texts = "") {
  const std::string texts = "<title>" + title + "</title>" + more_texts;
  return {.kind = kind,
          .title = title,
          .description = title,
          .document = document(kind, graph, texts),
          .sources = {}};
}

/// "Category 3", "East", or a name of this length made of words.
std::string name_of(size_t index, size_t length) {
  constexpr const char* kWords[] = {"income", "hours worked",      "region",
                                    "age",    "school type",       "previous treatment",
                                    "dose",   "parental education"};
  std::string name = kWords[index % 8];
  while (name.size() < length)
    name += std::string(" * ") + kWords[(index + name.size()) % 8];
  name.resize(std::max<size_t>(length, 1));
  if (name.back() == ' ') name.back() = 's';
  return name;
}

std::string category(size_t index) {
  constexpr const char* kNames[] = {"None",           "Low",    "Medium", "High", "Very high",
                                    "Not applicable", "Refused"};
  return index < 7 ? kNames[index] : "Category " + std::to_string(index + 1);
}

/// The factors of rows that come in pairs.
void write_factor(ChartData& data,
                  const std::string& role,
                  const std::string& label,
                  size_t rows,
                  size_t divisor,
                  size_t levels,
                  const char* names) {
  data.categories(role, label);
  for (size_t i = 0; i < rows; ++i) {
    const size_t level = i / divisor % levels;
    data.number(2 * i, static_cast<double>(level + 1))
        .number(2 * i + 1, static_cast<double>(level + 1));
    data.value_label(static_cast<double>(level + 1), std::string(names) + category(level));
  }
}

void write_means(ChartData& data, size_t rows) {
  Noise noise;
  std::vector<double> means;
  for (size_t i = 0; i < rows; ++i)
    means.push_back(50 + 12 * noise.normal() + static_cast<double>(i % 7));
  data.variable("targetValue", "Satisfaction with the visit (points)").decimals(2);
  for (size_t i = 0; i < rows; ++i)
    data.number(2 * i, means[i]).number(2 * i + 1, means[i]);
  data.variable("confMargin", "Satisfaction with the visit (points)").decimals(2);
  for (size_t i = 0; i < rows; ++i)
    data.number(2 * i, means[i] - 6 - noise.next()).number(2 * i + 1, means[i] + 6 + noise.next());
}

constexpr const char* kMeansGraph =
    R"(<interval form="whisker" rows="pairs"><y variable="confMargin"/></interval>
<point rows="first"><y variable="targetValue"/></point>
<tooltip variable="effect1"/><tooltip variable="targetValue">Estimated Mean</tooltip>
<tooltip variable="effect2"/><tooltip variable="effect3"/><tooltip variable="confMargin"/>)";

constexpr const char* kFacets =
    R"(><faceting><variableReference variable="effect3"/></faceting>
<facetLayout shareAxes="true"><facetLevel across="columns"/><facetLevel across="rows"/></facetLayout)";

std::string means_graph(bool colors, bool facets) {
  std::string graph = facets ? kFacets : "";
  graph += R"(><axis dimension="x"/><axis dimension="y"/><x variable="effect1"/>)";
  if (colors) {
    graph +=
        R"(<color variable="effect2"/><legend id="legend" role="color"/><cluster width="75%"/>)";
  }
  return graph + kMeansGraph;
}

std::string scatter_graph() {
  return R"(aspect="1"><scale id="common" min="0" max="100"/>
<axis dimension="x" scale="common"/><axis dimension="y" scale="common"/>
<legend id="legendStyle" role="transparency"/><lineGuide slope="1" intercept="0"/>
<x variable="X"/><y variable="Y"/><transparency variable="Transparency"/>
<tooltip variable="X"/><tooltip variable="Y"/><tooltip variable="Transparency"/><point/>)";
}

std::string embedded_histogram(const std::string& method) {
  const std::string parameters =
      method == "poisson"            ? R"( parameter="38")"
      : method == "gamma"            ? R"( parameter="22" secondaryParameter="0.58")"
      : method == "binomialnegative" ? R"( parameter="40" secondaryParameter="0.51")"
                                     : R"( parameter="38" secondaryParameter="900")";
  return R"(<embedded kind="histogram" fieldType="3"><graph><axis dimension="x"/>
<axis dimension="y" visible="false" zero="true"/><binStatistic variable="X" weight="Y" binCount="20"/>
<distributionStatistic method=")" +
         method + "\"" + parameters +
         R"(/></graph><texts/><data><source name="histogramSource"/></data></embedded>)";
}

void write_histogram(Chart& chart) {
  ChartData data(chart, "histogramSource");
  data.variable("X", "score");
  for (size_t i = 0; i < 20; ++i)
    data.number(i, 20 + 2.0 * static_cast<double>(i));
  data.variable("Y");
  for (size_t i = 0; i < 20; ++i) {
    const double z = (static_cast<double>(i) - 9) / 4;
    data.number(i, std::round(40 * std::exp(-z * z / 2)));
  }
}

std::string diagram_graph(size_t nodes, const std::string& method) {
  const double n = static_cast<double>(nodes);
  return R"(id="graphStyle"><axis dimension="x" visible="false" max=")" +
         std::to_string(std::max(2.0, n * 4 / 3)) +
         R"("/><axis dimension="y" visible="false" max=")" + std::to_string(n) + R"("/>
<edge source="edgeSource"><x variable="FromX"/><y variable="FromY"/><x2 variable="ToX"/><y2 variable="ToY"/>
<size variable="Weight" high="9" low="1"/>
<color variable="Weight2" palette="sign"><level>Positive</level><level>Negative</level></color>
<tooltip variable="LineTooltip"/></edge>
<legend id="legendStyle" role="color"><title>Coefficient Estimate</title></legend>
<legend id="sizeLegend" role="size"><title>Significance</title></legend>
<legend id="shapeLegend" role="shape"><title>Type</title></legend>
<shape variable="Type"><level symbol="circle">continuous</level><level symbol="square">categorical</level>
<level symbol="triangle">ordinal</level><level symbol="diamond">interaction</level>
<level symbol="cross">intercept</level><level symbol="hexagon">unknown</level><level symbol="frame">target</level></shape>
<text source="pointSource"><x variable="Label_X"/><y variable="Label_Y"/><label variable="Nodes"/></text>
<node source="pointSource"><x variable="X"/><y variable="Y"/><tooltip variable="PointTooltip"/></node>
<node source="targetPointSource"><x variable="X"/><y variable="Y"/><label variable="Nodes"/>
<tooltip variable="PointTooltip"/><inset>)" +
         embedded_histogram(method) + "</inset></node>";
}

void write_target(Chart& chart, size_t nodes) {
  const double n = static_cast<double>(nodes);
  ChartData(chart, "targetPointSource")
      .variable("X")
      .number(0, n)
      .variable("Y")
      .number(0, (n + 1) / 2)
      .categories("Type")
      .text(0, "target")
      .categories("Nodes")
      .text(0, "satisfaction")
      .categories("PointTooltip")
      .text(0, "satisfaction\nSatisfaction with the visit\nProbability Distribution: Normal");
}

void write_nodes(Chart& chart, size_t nodes, size_t length) {
  constexpr const char* kTypes[] = {"continuous", "categorical", "interaction", "ordinal"};
  const double n = static_cast<double>(nodes);
  std::vector<double> from(nodes);
  for (size_t k = 0; k < nodes; ++k) {
    const double d = 2 * std::fabs(n - static_cast<double>(k) - (n + 1) / 2);
    from[k] = n - std::sqrt(n * n - d * d);
  }
  ChartData points(chart, "pointSource");
  const auto column = [&](ChartData& data, const char* role, auto value) {
    data.variable(role);
    for (size_t k = 0; k < nodes; ++k)
      data.number(k, value(k));
  };
  const auto y = [&](size_t k) { return n - static_cast<double>(k); };
  column(points, "X", [&](size_t k) { return from[k]; });
  column(points, "Y", y);
  column(points, "Label_X", [&](size_t k) { return from[k] - 0.2 * n; });
  column(points, "Label_Y", y);
  points.categories("Type");
  for (size_t k = 0; k < nodes; ++k)
    points.text(k, k == 0 ? "intercept" : kTypes[k % 4]);
  points.categories("Nodes");
  for (size_t k = 0; k < nodes; ++k)
    points.text(k, name_of(k, length));
  points.categories("PointTooltip");
  for (size_t k = 0; k < nodes; ++k)
    points.text(k, name_of(k, length) + "\nThe label of node " + std::to_string(k));

  ChartData edges(chart, "edgeSource");
  column(edges, "FromX", [&](size_t k) { return from[k]; });
  column(edges, "FromY", y);
  column(edges, "ToX", [&](size_t) { return n; });
  column(edges, "ToY", [&](size_t) { return (n + 1) / 2; });
  column(edges, "Weight", [&](size_t k) { return 9 - static_cast<double>(k * 5 % 9); });
  edges.value_label(9, "p < 0.0001")
      .value_label(5, "0.005 \u2264 p < 0.01")
      .value_label(1, "0.2 \u2264 p");
  edges.categories("Weight2");
  for (size_t k = 0; k < nodes; ++k)
    edges.text(k, k % 3 == 1 ? "Negative" : "Positive");
  edges.categories("LineTooltip");
  for (size_t k = 0; k < nodes; ++k)
    edges.text(k, "Coefficient = " + std::to_string(k) + "\nSignificance = 0.012");
}

}  // namespace

Chart scatter_chart(size_t points) {
  Chart chart = chart_of("predictedByObserved", "Predicted by observed", scatter_graph());
  Noise noise;
  std::vector<double> x;
  std::vector<double> y;
  for (size_t i = 0; i < points; ++i) {
    x.push_back(std::clamp(50 + 25 * noise.normal(), 0.0, 100.0));
    y.push_back(std::clamp(50 + (x.back() - 50) * 0.8 + 8 * noise.normal(), 0.0, 100.0));
  }
  ChartData data(chart, "source0");
  data.variable("X", "Average reaction time (ms)").decimals(2);
  for (size_t i = 0; i < points; ++i)
    data.number(i, x[i]);
  data.variable("Y", "Predicted Value").decimals(2);
  for (size_t i = 0; i < points; ++i)
    data.number(i, y[i]);
  data.variable("Transparency", "Frequency");
  for (size_t i = 0; i < points; ++i)
    data.number(i, 1 + std::floor(std::fabs(noise.next()) * 10));
  return chart;
}

Chart binary_scatter_chart() {
  Chart chart = chart_of("predictedByObserved", "Predicted by observed", R"(aspect="1">
<scale id="common" min="0" max="1"/><axis dimension="x" scale="common"/><axis dimension="y" scale="common"/>
<legend id="legendStyle" role="transparency"/><lineGuide slope="1" intercept="0"/>
<x variable="X"/><y variable="Y"/><transparency variable="Transparency"/><point/>)");
  ChartData data(chart, "source0");
  data.variable("X", "Passed").decimals(0).value_label(0, "No").value_label(1, "Yes");
  for (size_t i = 0; i < 60; ++i)
    data.number(i, static_cast<double>(i % 2));
  data.variable("Y", "Predicted Value").decimals(2);
  Noise noise;
  for (size_t i = 0; i < 60; ++i)
    data.number(
        i, std::clamp(0.3 + 0.4 * static_cast<double>(i % 2) + 0.2 * noise.normal(), 0.0, 1.0));
  data.variable("Transparency", "Frequency");
  for (size_t i = 0; i < 60; ++i)
    data.number(i, static_cast<double>(1 + i % 5));
  return chart;
}

Chart diagram_chart(size_t nodes, size_t length, const std::string& method) {
  Chart chart = chart_of("effectDiagram", "Fixed coefficients", diagram_graph(nodes, method));
  write_target(chart, nodes);
  write_nodes(chart, nodes, length);
  write_histogram(chart);
  return chart;
}

Chart means_chart(size_t first, size_t second, size_t third) {
  Chart chart =
      chart_of("customEffects", "Estimates", means_graph(second > 1, third > 1),
               "<footnote>Continuous predictors fixed at age = 41.20, income = 2.50</footnote>");
  const size_t rows = first * second * third;
  ChartData data(chart, "source_0");
  write_factor(data, "effect1", "Level of the symptom", rows, 1, first, "");
  if (second > 1) write_factor(data, "effect2", "Treatment", rows, first, second, "Dose ");
  if (third > 1) {
    write_factor(data, "effect3", "Site", rows, first * second, third, "");
    data.prefix("Site = ");
  }
  write_means(data, rows);
  return chart;
}

Chart numeric_means_chart(size_t second) {
  Chart chart = chart_of("customEffects", "Estimates", means_graph(second > 1, false));
  const size_t rows = 6 * second;
  ChartData data(chart, "source_0");
  data.variable("effect1", "Weeks since the visit");
  constexpr double kWeeks[] = {0, 1, 2, 4, 8, 12};
  for (size_t i = 0; i < rows; ++i)
    data.number(2 * i, kWeeks[i % 6]).number(2 * i + 1, kWeeks[i % 6]);
  if (second > 1) write_factor(data, "effect2", "Treatment", rows, 6, second, "Dose ");
  write_means(data, rows);
  return chart;
}

Chart pairwise_chart(size_t categories, size_t panels) {
  const std::string facets =
      panels == 1 ? "" : R"(><faceting><variableReference variable="facet1"/></faceting>
<facetLayout><facetLevel across="columns"/></facetLayout)";
  Chart chart = chart_of(
      "pairwiseContrasts", "Pairwise contrasts", R"(layout="circle" aspect="1")" + facets + R"(>
<legend id="typeLegend" role="color"/>
<edge source="edgeSource_1"><from variable="from"/><to variable="to"/>
<color variable="type" palette="significance"><level>0</level><level>1</level></color>
<tooltip variable="tooltip"/></edge>
<node source="nodeSource_1"><key variable="node"/><label variable="node"/><tooltip variable="node"/></node>)",
      "<footnote>The least significant difference adjusted significance level is 0.05</footnote>"
      "<subTitle>Target: Satisfaction</subTitle>");
  ChartData nodes(chart, "nodeSource_1");
  const size_t all = categories * panels;
  nodes.categories("node", "Department");
  for (size_t i = 0; i < all; ++i) {
    const double key = static_cast<double>(100 * (i / categories) + i % categories);
    nodes.number(i, key).value_label(key, category(i % categories));
  }
  if (panels > 1) nodes.categories("facet1", "Site");
  for (size_t i = 0; panels > 1 && i < all; ++i)
    nodes.number(i, static_cast<double>(i / categories))
        .value_label(static_cast<double>(i / categories), "Site " + std::to_string(i / categories));
  struct Edge {
    double from, to, sig;
    size_t panel;
  };
  std::vector<Edge> edges;
  Noise noise;
  for (size_t p = 0; p < panels; ++p)
    for (size_t a = 0; a < categories; ++a)
      for (size_t b = 0; b < a; ++b)
        edges.push_back({100.0 * static_cast<double>(p) + static_cast<double>(a),
                         100.0 * static_cast<double>(p) + static_cast<double>(b),
                         std::pow(std::fabs(noise.next()), 3), p});
  ChartData data(chart, "edgeSource_1");
  const auto column = [&](const char* role, auto value) {
    data.variable(role, "", true);
    for (size_t i = 0; i < edges.size(); ++i)
      data.number(i, value(edges[i]));
  };
  column("from", [](const Edge& e) { return e.from; });
  for (size_t i = 0; i < all; ++i)
    data.value_label(static_cast<double>(100 * (i / categories) + i % categories),
                     category(i % categories));
  column("to", [](const Edge& e) { return e.to; });
  for (size_t i = 0; i < all; ++i)
    data.value_label(static_cast<double>(100 * (i / categories) + i % categories),
                     category(i % categories));
  column("weight", [](const Edge& e) { return 1 / ((1 - e.sig) * (1 - e.sig)); });
  column("type", [](const Edge& e) { return e.sig < 0.05 ? 1.0 : 0.0; });
  data.value_label(0, "Not Significant").value_label(1, "Significant");
  if (panels > 1) column("facet1", [](const Edge& e) { return static_cast<double>(e.panel); });
  data.categories("tooltip");
  for (size_t i = 0; i < edges.size(); ++i) {
    data.text(i, "Satisfaction of " + category(static_cast<size_t>(edges[i].from) % 100) +
                     (edges[i].sig < 0.05 ? " is higher than" : " is not different from") +
                     " that of " + category(static_cast<size_t>(edges[i].to) % 100));
  }
  return chart;
}

Chart spans_chart(size_t categories, size_t facet1, size_t facet2) {
  std::string graph;
  if (facet1 > 1) {
    graph = R"(><faceting><variableReference variable="facet1"/>)";
    if (facet2 > 1) graph += R"(<variableReference variable="facet2"/>)";
    graph += R"(</faceting><facetLayout shareAxes="true"><facetLevel across="columns"/>)";
    if (facet2 > 1) graph += R"(<facetLevel across="rows"/>)";
    graph += "</facetLayout";
  }
  graph += ">";
  for (size_t a = 0; a < facet1; ++a) {
    for (size_t b = 0; b < facet2; ++b) {
      const std::string when = facet1 == 1 ? "false"
                               : facet2 == 1
                                   ? "facet1!=&quot;" + std::to_string(a) + "&quot;"
                                   : "facet1!=&quot;" + std::to_string(a) +
                                         "&quot;||facet2!=&quot;" + std::to_string(b) + "&quot;";
      graph +=
          "<lineGuide y=\"" + std::to_string(40 + 5 * a + 3 * b) + "\" hideWhen=\"" + when + "\"/>";
    }
  }
  graph +=
      R"(<axis dimension="x"/><axis dimension="y"/><legend id="typeLegend" role="color"/><cluster width="60%"/>
<x variable="category"/><color variable="type" palette="significance"><level>0</level><level>1</level></color>
<tooltip variable="tooltip"/><interval form="bar" rows="pairs"><y variable="value"/></interval>
<interval form="whisker" rows="pairs"><y variable="confMargin"/></interval>
<point rows="second"><y variable="value"/></point>)";
  Chart chart = chart_of(
      "simpleContrasts", "Simple contrasts", graph,
      "<footnote>The least significant difference adjusted significance level is 0.05</footnote>"
      "<caption>The horizontal line is the estimated mean of Satisfaction for None of Level of the "
      "symptom.</caption>");
  const size_t rows = categories * facet1 * facet2;
  ChartData data(chart, "source");
  Noise noise;
  std::vector<double> means;
  for (size_t i = 0; i < rows; ++i)
    means.push_back(42 + 14 * noise.normal());
  const auto base = [&](size_t i) {
    return 40 + 5.0 * static_cast<double>(i / categories % facet1) +
           3.0 * static_cast<double>(i / categories / facet1);
  };
  data.variable("value");
  for (size_t i = 0; i < rows; ++i)
    data.number(2 * i, base(i)).number(2 * i + 1, means[i]);
  write_factor(data, "category", "Level of the symptom", rows, 1, categories, "");
  data.categories("type", "Significance")
      .value_label(0, "Not Significant")
      .value_label(1, "Significant");
  for (size_t i = 0; i < rows; ++i) {
    const double type = std::fabs(means[i] - base(i)) > 6 ? 1 : 0;
    data.number(2 * i, type).number(2 * i + 1, type);
  }
  for (const auto& [role, levels, divisor, name] :
       {std::tuple{"facet1", facet1, categories, "Site"},
        std::tuple{"facet2", facet2, categories * facet1, "Year"}}) {
    if (levels == 1) continue;
    data.categories(role, name).prefix(std::string(name) + " = ");
    for (size_t i = 0; i < 2 * rows; ++i)
      data.number(i, static_cast<double>(i / 2 / divisor % levels));
  }
  data.variable("confMargin");
  for (size_t i = 0; i < rows; ++i)
    data.number(2 * i, means[i] - 6).number(2 * i + 1, means[i] + 6);
  data.categories("tooltip");
  for (size_t i = 0; i < 2 * rows; ++i)
    data.text(i, "Satisfaction for " + category(i / 2 % categories) + " is higher than for None.");
  return chart;
}

Chart broken_chart() {
  Chart chart = chart_of(
      "customEffects", "Estimates",
      means_graph(true, true) + "<line><x variable=\"nowhere\"/></line><point source=\"none\"/>");
  ChartData data(chart, "source_0");
  const double infinite = std::numeric_limits<double>::infinity();
  const double values[] = {infinite, -infinite, std::nan(""), output::kSystemMissing, 1e308, -1e308,
                           3,        3};
  data.categories("effect1", kAwkwardLabels[3]);
  for (size_t i = 0; i < kAwkwardLabels.size(); ++i)
    data.text(i, kAwkwardLabels[i]);
  data.variable("targetValue", kAwkwardLabels[6]);
  for (size_t i = 0; i < std::size(values); ++i)
    data.number(i, values[i]);
  data.variable("confMargin");
  for (size_t i = 0; i < std::size(values); ++i)
    data.number(i, values[7 - i]);
  data.categories("effect2").text(3, "x").number(5, infinite);
  return chart;
}

std::vector<ChartSample> chart_samples() {
  return {
      {"scatter", scatter_chart(40)},
      {"diagram", diagram_chart(5, 12, "gamma")},
      {"means", means_chart(4)},
      {"means_by_two", means_chart(3, 2)},
      {"means_by_three", means_chart(3, 2, 4)},
      {"means_over_numbers", numeric_means_chart(2)},
      {"pairwise", pairwise_chart(5)},
      {"spans", spans_chart(3, 2, 2)},
  };
}

std::vector<ChartSample> hard_chart_samples() {
  std::vector<ChartSample> samples = {
      {"scatter_0", scatter_chart(0)},
      {"scatter_1", scatter_chart(1)},
      {"scatter_3000", scatter_chart(3000)},
      {"scatter_30000", scatter_chart(30000)},
      {"binary", binary_scatter_chart()},
      {"diagram_0", diagram_chart(0, 5)},
      {"diagram_1", diagram_chart(1, 5, "poisson")},
      {"diagram_3", diagram_chart(3, 60, "gaussianinverse")},
      {"diagram_24", diagram_chart(24, 40, "binomialnegative")},
      {"diagram_100", diagram_chart(100, 25)},
      {"means_40", means_chart(40)},
      {"means_9_10", means_chart(9, 10)},
      {"means_7_2_9", means_chart(7, 2, 9)},
      {"numbers", numeric_means_chart(1)},
      {"pairwise_2", pairwise_chart(2)},
      {"pairwise_7", pairwise_chart(7)},
      {"pairwise_12", pairwise_chart(12)},
      {"pairwise_40", pairwise_chart(40)},
      {"pairwise_panels", pairwise_chart(4, 3)},
      {"spans_1", spans_chart(7)},
      {"spans_5", spans_chart(6, 5)},
      {"broken", broken_chart()},
      // More than is drawn mark by mark.
      {"scatter_20000", scatter_chart(20000)},
      {"diagram_1000", diagram_chart(1000, 30)},
      {"means_500", means_chart(500)},
      {"means_60_40", means_chart(60, 40)},
      {"means_30_6_100", means_chart(30, 6, 100)},
      {"numbers_200", numeric_means_chart(200)},
      {"pairwise_200", pairwise_chart(200)},
      {"pairwise_30_70", pairwise_chart(30, 70)},
      {"spans_1500", spans_chart(1500)},
  };
  Chart awkward = means_chart(10, 10);
  Chart awkward_pairs = pairwise_chart(10);
  for (Chart* chart : {&awkward, &awkward_pairs}) {
    for (output::ChartSource& source : chart->sources) {
      for (output::ChartVariable& variable : source.variables) {
        size_t next = 0;
        for (auto& [value, label] : variable.number_labels) {
          if (variable.number_labels.size() > 3)
            label = kAwkwardLabels[next++ % kAwkwardLabels.size()];
        }
      }
    }
  }
  samples.push_back({"awkward", std::move(awkward)});
  samples.push_back({"awkward_pairs", std::move(awkward_pairs)});
  return samples;
}

}  // namespace hierfit::test
