// What the tables of a run make of its charts.
#include <doctest/doctest.h>
#include <memory>

#include "embedded/chart/complete.h"
#include "embedded/chart/parse_markup.h"
#include "tests/report/chart_samples.h"
#include "tests/report/table_builder.h"

using namespace hierfit;
using namespace hierfit::test;
using output::Chart;
using output::ChartSource;

namespace {

/// The first heads of the lines, then numbers by column. Columns are named by keys.
struct Lines {
  std::vector<std::string> titles;
  std::vector<std::string> columns;
  std::vector<std::pair<std::vector<std::string>, std::vector<double>>> lines;
};

std::unique_ptr<output::Table> table_of(const std::string& subtype, const Lines& lines) {
  TableBuilder table(subtype, subtype);
  for (const std::string& title : lines.titles)
    table.rows(title);
  table.columns("Statistics");
  for (const auto& [heads, numbers] : lines.lines) {
    std::vector<Path> paths;
    for (const std::string& head : heads)
      paths.push_back({head});
    for (size_t i = 0; i < numbers.size(); ++i) {
      const bool bound = lines.columns[i] == "Lower" || lines.columns[i] == "Upper";
      std::vector<Path> at = paths;
      at.push_back(bound ? Path{"^1% Confidence Interval", lines.columns[i]}
                         : Path{lines.columns[i]});
      table.cell(at, coefficient(numbers[i]));
    }
  }
  for (output::Node& node : table.table().dimensions.back().nodes)
    node.label.key = node.label.shown;
  return table.take();
}

constexpr double kNone = output::kSystemMissing;

Chart chart_with(const std::string& kind, const std::string& graph) {
  Chart chart;
  chart.kind = kind;
  chart.title = chart.description = "Title";
  chart.document = chart::parse_markup("<chart kind=\"" + kind + "\"><graph>" + graph +
                                           "</graph><texts><title>Title</title></texts>"
                                           "<data/></chart>",
                                       "chart");
  return chart;
}

/// The chart under one heading with these tables, completed.
Chart completed(Chart chart,
                std::vector<std::unique_ptr<output::Table>> tables,
                const DataDictionary& dictionary = {}) {
  output::Document document;
  auto section = std::make_unique<output::Section>();
  for (auto& table : tables)
    section->items.emplace_back(std::move(table));
  section->items.emplace_back(std::make_unique<Chart>(std::move(chart)));
  document.content.items.emplace_back(std::move(section));
  chart::complete_charts(document, StringTable(), dictionary);
  auto& items = std::get<std::unique_ptr<output::Section>>(document.content.items[0])->items;
  return std::move(*std::get<std::unique_ptr<Chart>>(items.back()));
}

Chart completed(Chart chart,
                const std::string& subtype,
                const Lines& lines,
                const DataDictionary& dictionary = {}) {
  std::vector<std::unique_ptr<output::Table>> tables;
  tables.push_back(table_of(subtype, lines));
  return completed(std::move(chart), std::move(tables), dictionary);
}

/// The values of a variable by row; "-" for none.
std::string column(const Chart& chart, const std::string& role, size_t source = 0) {
  const output::ChartVariable* variable = chart.sources.at(source).by_role(role);
  if (variable == nullptr) return "(no variable)";
  std::string text;
  for (size_t row = 0; row < chart.sources[source].rows; ++row) {
    if (!text.empty()) text += ' ';
    const auto kind = variable->values.kind(row);
    if (kind == output::ChartColumn::Kind::Unset) {
      text += '-';
    } else if (kind == output::ChartColumn::Kind::Text) {
      text += variable->values.text(row);
    } else {
      std::string number = std::to_string(variable->values.number(row));
      number.erase(number.find_last_not_of('0') + 1);
      if (number.back() == '.') number.pop_back();
      text += number;
    }
  }
  return text;
}

std::string notes(const Chart& chart) {
  std::string text;
  for (const output::Element* child : chart.document.child("texts")->children()) {
    if (child->name == "note") text += child->text() + '\n';
  }
  return text;
}

void set(ChartData& data, const std::vector<double>& numbers) {
  for (size_t row = 0; row < numbers.size(); ++row)
    data.number(row, numbers[row]);
}

constexpr char kMeansGraph[] =
    R"(<axis dimension="y"><label>Yield</label></axis><x variable="effect1"/>)";

/// Means with their bounds, at a place of two factors each.
Chart means_of(const std::vector<std::array<double, 5>>& cells) {
  Chart chart = chart_with("estimatedMeans", kMeansGraph);
  ChartData data(chart, "source0");
  for (const char* role : {"effect1", "effect2"}) {
    const size_t place = role[6] == '1' ? 0 : 1;
    data.categories(role, place == 0 ? "Dose" : "Site");
    for (size_t i = 0; i < cells.size(); ++i)
      data.number(2 * i, cells[i][place]).number(2 * i + 1, cells[i][place]);
  }
  data.variable("target", "Yield");
  for (size_t i = 0; i < cells.size(); ++i)
    data.number(2 * i, cells[i][2]).number(2 * i + 1, cells[i][2]);
  data.variable("confMargin", "Yield");
  for (size_t i = 0; i < cells.size(); ++i)
    data.number(2 * i, cells[i][3]).number(2 * i + 1, cells[i][4]);
  return chart;
}

}  // namespace

TEST_CASE("a mean that does not exist is missing in its chart") {
  const Chart chart = completed(
      means_of(
          {{1, 1, 5, 4, 6}, {2, 1, 0, 0, 0}, {3, 1, 7, 0, 0}, {4, 1, 0, -1, 1}, {5, 1, -3, 0, -2}}),
      {});
  CHECK(column(chart, "target") == "5 5 - - 7 7 0 0 -3 -3");
  CHECK(column(chart, "confMargin") == "4 6 - - - - -1 1 - -2");
  CHECK(column(chart, "effect1") == "1 1 2 2 3 3 4 4 5 5");
  CHECK(notes(chart) == "Not estimable, so not shown: 2, 1\n");
}

TEST_CASE("a chart of means says what its bars and its numbers are") {
  const Lines estimates{{"Dose"}, {"Mean", "Lower", "Upper"}, {{{"1"}, {0.5, 0.25, 0.75}}}};
  std::vector<std::unique_ptr<output::Table>> tables;
  tables.push_back(table_of("Estimates", estimates));
  Chart chart = means_of({{1, 1, 0.5, 0.25, 0.75}});
  chart.title = "Yield by Dose";
  std::string label = "Yield";
  SUBCASE("of a plain target") {}
  SUBCASE("of events of trials") {
    tables[0]->notes.push_back({.shown = "events / trials", .numbers = {}, .key = "Target ^1/^2"});
    label = "Yield (proportion)";
  }
  chart = completed(std::move(chart), std::move(tables));
  CHECK(notes(chart) == "Error bars: ^1% Confidence Interval\n");
  CHECK(chart.document.child("graph")->child("axis")->text() == label);
  CHECK(chart.title == label + " by Dose");
  CHECK(chart.sources[0].by_role("target")->label == "Mean");
  CHECK(chart.sources[0].by_role("confMargin")->label == "^1% Confidence Interval");
}

TEST_CASE("means of a further factor have panels of their own") {
  Chart chart = means_of({{1, 1, 5, 4, 6}, {1, 1, 7, 6, 8}});
  SUBCASE("where a table names it") {
    const Lines estimates{{"Dose", "Sex", "Site"},
                          {"Mean"},
                          {{{"1", "Female", "1"}, {7}}, {{"1", "Male", "1"}, {5}}}};
    chart = completed(std::move(chart), "Estimates", estimates);
    CHECK(column(chart, "effect3") == "Male Male Female Female");
    CHECK(chart.document.child("graph")->child("faceting") != nullptr);
    CHECK(notes(chart).empty());
  }
  SUBCASE("else a note tells of it") {
    chart = completed(std::move(chart), {});
    CHECK(notes(chart).starts_with("Several means at one place belong to further factors"));
  }
}

TEST_CASE("spans follow the table of their contrasts") {
  // The first contrast of the first panel does not exist, the second panel has none.
  Chart chart =
      chart_with("simpleContrasts", R"(<lineGuide y="0" hideWhen="facet1!=&quot;1&quot;"/>)"
                                    R"(<lineGuide y="4" hideWhen="facet1!=&quot;2&quot;"/>)");
  ChartData data(chart, "source");
  set(data.variable("value"), {0, 0, 0, 8, 4, 4});
  set(data.categories("category"), {2, 2, 3, 3, 2, 2});
  set(data.categories("type"), {1, 1, 0, 0, 1, 1});
  set(data.categories("facet1"), {1, 1, 1, 1, 2, 2});
  set(data.variable("confMargin"), {0, 0, 1, 5, 4, 4});
  const Lines contrasts{{"Site", "Contrasts of Dose"},
                        {"Contrast Estimate", "Lower", "Upper", "Adj. Sig."},
                        {{{"A", "2 - 1"}, {kNone, kNone, kNone, kNone}},
                         {{"A", "3 - 1"}, {3, 1, 5, 0.0004}},
                         {{"B", "2 - 1"}, {kNone, kNone, kNone, kNone}}}};
  chart = completed(std::move(chart), "Contrasts", contrasts);
  CHECK(column(chart, "value") == "- - 5 8 - -");
  CHECK(column(chart, "confMargin") == "- - 6 10 - -");
  CHECK(column(chart, "type") == "- - 0 0 - -");
  CHECK(column(chart, "significance") == "- - 0.0004 0.0004 - -");
  const auto guides = chart.document.child("graph")->children("lineGuide");
  CHECK(guides[0]->value("y") == "5");
  CHECK(guides[1]->value("y") == "nan");
  CHECK(chart.title == "Contrasts of Dose");
  CHECK(notes(chart) ==
        "Error bars: ^1% Confidence Interval of the contrast, drawn from the horizontal line\n"
        "Not estimable, so not shown: A, 2 - 1; B, 2 - 1\n");
}

TEST_CASE("networks of pairs have categories as nodes") {
  DataDictionary dictionary;
  Variable& site = dictionary.add("site");
  for (const char* value : {"2", "10", "12"})
    site.set_value_label(value, std::string("Site ") + value);
  Chart chart = chart_with("pairwiseContrasts",
                           R"(<edge><from variable="from"/><to variable="to"/>)"
                           R"(<size variable="weight"/><color variable="type"/></edge>)");
  chart.document.child("data")->add("source").set("name", "nodeSource_1");
  output::Element& node = chart.document.child("data")->child("source")->add("variable");
  node.set("name", "node");
  node.set("dictionary", "site");
  // Panels 0 and 1; the key of a category has the value of its panel ahead.
  ChartData nodes(chart, "nodeSource_1");
  set(nodes.categories("node", "Site"), {112, 110, 12, 12, 2});
  set(nodes.categories("facet1"), {1, 1, 1, 0, 0});
  ChartData edges(chart, "edgeSource_1");
  set(edges.categories("from"), {2, 12, 110});
  set(edges.categories("to"), {12, 110, 112});
  set(edges.categories("facet1"), {0, 1, 1});
  set(edges.categories("type"), {0, 1, 1});
  set(edges.variable("weight"), {1, 2, 3});
  const Lines contrasts{{"Panel", "Contrasts of Site"},
                        {"Contrast Estimate", "Adj. Sig."},
                        {{{"0", "2 - 10"}, {3, 1}},
                         {{"0", "2 - 12"}, {1, 0.5}},
                         {{"1", "2 - 10"}, {kNone, kNone}},
                         {{"1", "10 - 12"}, {2, 0}}}};
  chart = completed(std::move(chart), "Contrasts", contrasts, dictionary);
  CHECK(column(chart, "node") == "2 12 2 10 12");
  CHECK(column(chart, "facet1") == "0 0 1 1 1");
  CHECK(column(chart, "from", 1) == "2 2 10");
  CHECK(column(chart, "to", 1) == "12 10 12");
  CHECK(*chart.sources[1].by_role("to")->label_of(12) == "Site 12");
  CHECK(column(chart, "type", 1) == "0 - 1");
  CHECK(column(chart, "significance", 1) == "0.5 - 0");
  CHECK(column(chart, "weight", 1) == "(no variable)");
  CHECK(notes(chart) ==
        "Pairs with an adjusted significance of 1, not shown: 1\n"
        "Not estimable, so not shown: 1, 2 - 10\n");
}

TEST_CASE("keys of texts lose their panel, too") {
  Chart chart = chart_with("pairwiseContrasts", "<edge/>");
  ChartData nodes(chart, "nodeSource_1");
  nodes.categories("node").text(0, "0placebo").text(1, "noB").text(2, "-11-2");
  nodes.categories("facet1").number(0, 0).text(1, "no").number(2, -1);
  nodes.categories("facet2").number(2, 1);
  ChartData(chart, "edgeSource_1").categories("from");
  chart = completed(std::move(chart), {});
  CHECK(column(chart, "node") == "-2 placebo B");
}

TEST_CASE("edges of diagrams have the numbers of their table") {
  Chart chart = chart_with("effectDiagram", R"(<edge><size variable="Weight" low="4" high="5"/>)"
                                            R"(<tooltip variable="LineTooltip"/></edge>)");
  ChartData nodes(chart, "pointSource");
  nodes.categories("Nodes").text(0, "x").text(1, "[a=1]*x").text(2, "x");
  ChartData edges(chart, "edgeSource");
  edges.categories("Weight2").text(0, "Positive").text(1, "Negative").text(2, "Positive");
  edges.categories("LineTooltip").text(0, "Significance = 0.000");
  const Lines coefficients{{"Model Term", "Target"},
                           {"Coefficient", "Sig."},
                           {{{"Intercept", "No"}, {1, 1}},
                            {{"x", "No"}, {2, 0.0004}},
                            {{"[a=1] * x", "No"}, {-3, 0.5}},
                            {{"x", "Yes"}, {4, 0.25}}}};
  chart = completed(std::move(chart), "FixedCoefficients", coefficients);
  CHECK(column(chart, "Nodes") == "x (No) [a=1]*x (No) x (Yes)");
  CHECK(column(chart, "coefficient", 1) == "2 -3 4");
  CHECK(column(chart, "significance", 1) == "0.0004 0.5 0.25");
  CHECK(chart.sources[1].by_role("significance")->statistic == output::Format::Significance);
  CHECK(column(chart, "LineTooltip", 1) == "(no variable)");
  const output::Element* size = chart.document.child("graph")->child("edge")->child("size");
  CHECK(size->value("low") == "1");
  CHECK(size->value("high") == "9");
}
