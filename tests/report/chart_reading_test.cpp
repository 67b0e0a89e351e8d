// What a reader takes from a chart: labels, widths, bins and marks that mean one thing each.
#include <algorithm>
#include <doctest/doctest.h>
#include <set>

#include "report/chart/figure.h"
#include "report/chart/pieces.h"
#include "report/chart/tally.h"
#include "report/report.h"
#include "tests/report/chart_samples.h"

namespace hierfit::test {

using namespace report::chart;

namespace {

Scene scene_of(const output::Chart& chart, double width) {
  const output::Document document;
  return Figure(chart, document).scene({.width = width, .texts = true});
}

/// Labels that differ at their ends alone.
const std::string kStem = "Desmognathus of the mountain brooks";

output::Chart labelled(output::Chart chart, const std::string& stem) {
  for (output::ChartSource& source : chart.sources) {
    for (output::ChartVariable& variable : source.variables) {
      for (auto& [value, label] : variable.number_labels) {
        if (variable.number_labels.size() > 3)
          label = stem + " no " + std::to_string(static_cast<int>(value));
      }
    }
  }
  return chart;
}

std::string texts_of(const Scene& scene) {
  std::string all;
  for (const Mark& mark : scene.marks) {
    if (mark.kind == MarkKind::Text) (all += mark.text) += ' ';
  }
  return all;
}

Tally tally_of(const std::map<double, double>& weights) {
  Tally tally;
  for (const auto& [value, weight] : weights) {
    tally.weights[value] = weight;
    tally.total += weight;
    tally.rows += 1;
    tally.range.add(value);
  }
  return tally;
}

}  // namespace

TEST_CASE("labels are never cut to the same text") {
  const std::string longer = kStem + std::string(40, 'n') + std::string(40, 'm');
  for (const std::string& stem : {kStem, longer}) {
    for (const output::Chart& chart :
         {labelled(means_chart(7), stem), labelled(pairwise_chart(7), stem),
          labelled(pairwise_chart(20), stem), labelled(means_chart(4, 4, 4), stem)}) {
      for (const double width : {330.0, 720.0}) {
        CAPTURE(chart.kind);
        CAPTURE(stem);
        CAPTURE(width);
        const Scene scene = scene_of(chart, width);
        std::multiset<std::string> cut;
        for (const Mark& mark : scene.marks) {
          const bool is_cut = mark.text.ends_with("\u2026");
          if (mark.kind == MarkKind::Text && is_cut) cut.insert(mark.text);
        }
        for (const std::string& text : cut)
          CHECK_MESSAGE(cut.count(text) == 1, text);
      }
    }
  }
}

TEST_CASE("numbers stand for names that have no room, and a legend tells the names") {
  const std::string stem(120, 'n');
  const std::string texts = texts_of(scene_of(labelled(means_chart(7), stem), 330));
  CHECK(texts.find(" 1 2 3 4 5 6 7 ") != std::string::npos);
  CHECK(texts.find("no 7") != std::string::npos);
}

TEST_CASE("a class of significance has one width in all charts") {
  const output::Document document;
  output::Chart few = diagram_chart(2, 5);
  output::Chart many = diagram_chart(80, 5);
  for (output::Chart* chart : {&few, &many}) {
    for (output::Element* element : output::elements_of(chart->document)) {
      if (element->name != "size") continue;
      element->set("low", "1");
      element->set("high", "9");
      element->set("step", "4");
    }
  }
  const Figure a(few, document);
  const Figure b(many, document);
  const LineWidths first(a.binding());
  const LineWidths second(b.binding());
  for (int value = 1; value <= 9; ++value)
    CHECK(first.of(value) == second.of(value));
  // The step is seen without colour.
  CHECK(first.of(4) - first.of(3) > 0.9);
  CHECK(first.of(4) - first.of(3) > 3 * (first.of(3) - first.of(2)));
}

TEST_CASE("edges are as wide as their kind, and an edge without a kind is none") {
  output::Chart chart = pairwise_chart(5);
  const auto edges = [&](double width) {
    const Scene scene = scene_of(chart, 720);
    return std::ranges::count_if(scene.marks, [&](const Mark& mark) {
      return mark.kind == MarkKind::Rule && mark.stroke.part == Part::Significance &&
             mark.stroke_width == width && !mark.tooltip.empty();
    });
  };
  const auto plain = edges(0.75);
  const auto significant = edges(2.5);
  CHECK(plain > 0);
  CHECK(plain + significant == 10);
  output::ChartSource& source = chart.sources[1];
  const auto type = std::ranges::find(source.variables, "type", &output::ChartVariable::name);
  size_t row = 0;
  while (type->values.number(row) != 1)
    ++row;
  type->values.unset(row);
  CHECK(edges(2.5) == significant - 1);
  const std::string said = scene_of(chart, 720).description;
  CHECK(said.find("5 nodes and 9 comparisons") != std::string::npos);
}

TEST_CASE("bins of whole numbers hold as many of them each") {
  Histogram histogram;
  SUBCASE("one each where there is room") {
    const Bins bins = bins_of(tally_of({{0, 3}, {1, 9}, {2, 4}, {12, 1}}), histogram, 60);
    CHECK(bins.heights == std::vector<double>{16, 1});
    histogram.bins = 13;
    const Bins all = bins_of(tally_of({{0, 3}, {1, 9}, {2, 4}, {12, 1}}), histogram, 60);
    CHECK(all.heights == std::vector<double>{3, 9, 4, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1});
    CHECK(all.values_of(1).low == 1);
    CHECK(all.values_of(1).high == 1);
  }
  SUBCASE("several where there is not") {
    histogram.bins = 10;
    const Bins bins = bins_of(tally_of({{0, 1}, {1, 1}, {2, 1}, {12, 1}}), histogram, 60);
    CHECK(bins.heights == std::vector<double>{2, 1, 0, 0, 0, 0, 1});
    CHECK(bins.values_of(0).low == 0);
    CHECK(bins.values_of(0).high == 1);
  }
  SUBCASE("values at equal steps are middles of bins") {
    output::Chart chart;
    ChartData(chart, "s")
        .variable("X")
        .number(0, 1.1)
        .number(1, 1.3)
        .number(2, 1.5)
        .variable("Y")
        .number(0, 4)
        .number(1, 0)
        .number(2, 5);
    Embedded embedded;
    embedded.source = "s";
    embedded.graph.histogram.emplace();
    embedded.graph.histogram->variable = "X";
    embedded.graph.histogram->weight = "Y";
    embedded.graph.histogram->bins = 3;
    const Tally counted = tally(embedded, chart);
    const Bins bins = bins_of(counted, *embedded.graph.histogram, 60);
    CHECK(bins.heights == std::vector<double>{4, 0, 5});
    CHECK(bins.edge(0) == doctest::Approx(1));
    CHECK(bins.edge(3) == doctest::Approx(1.6));
  }
  SUBCASE("other numbers as before") {
    histogram.bins = 2;
    const Bins bins = bins_of(tally_of({{0, 1}, {0.5, 1}, {1, 1}}), histogram, 60);
    CHECK_FALSE(bins.whole);
    CHECK(bins.edge(1) == 0.5);
  }
  SUBCASE("two values have no curve") {
    histogram.curve.emplace().method = "normal";
    CHECK(bins_of(tally_of({{0, 5}, {1, 9}}), histogram).curve.empty());
    CHECK_FALSE(bins_of(tally_of({{0, 5}, {1, 9}, {2, 3}}), histogram).curve.empty());
  }
}

TEST_CASE("a curve that leaves the picture breaks off at its upper side") {
  output::Chart chart = diagram_chart(3, 10, "gamma");
  for (output::Element* element : output::elements_of(chart.document)) {
    if (element->name != "distributionStatistic") continue;
    element->set("parameter", "0.05");
    element->set("secondaryParameter", "0.01");
  }
  const Scene scene = scene_of(chart, 720);
  const auto curve = std::ranges::find_if(scene.marks, [](const Mark& mark) {
    return mark.kind == MarkKind::Path && mark.stroke == Paint{Part::Curve};
  });
  REQUIRE(curve != scene.marks.end());
  double top = HUGE_VAL;
  for (const Point& point : curve->points)
    top = std::min(top, is_break(point) ? HUGE_VAL : point.y);
  CHECK(std::ranges::count_if(curve->points,
                              [&](const Point& point) { return point.y <= top + 0.01; }) <= 2);
}

TEST_CASE("a legend of frequencies has counts, and none where all are one") {
  output::ChartVariable counts;
  const auto values_of = [&](const std::vector<double>& values) {
    counts.values = {};
    for (size_t row = 0; row < values.size(); ++row)
      counts.values.set(row, values[row]);
    return legend_values(counts);
  };
  CHECK(values_of({1, 1, 1}).empty());
  CHECK(values_of({1, 2, 1}) == std::vector<double>{1, 2});
  CHECK(values_of({1, 2, 3}) == std::vector<double>{1, 2, 3});
  CHECK(values_of({0.1, 0.25}).size() > 2);
}

TEST_CASE("marks of many groups differ without their colours") {
  const output::Chart chart = means_chart(2, 20);
  const output::Document document;
  const Figure figure(chart, document);
  std::set<std::pair<Symbol, std::string_view>> looks;
  for (uint32_t step = 0; step < 20; ++step)
    looks.emplace(figure.binding().symbol_of_step(step), figure.binding().dash_of_step(step));
  CHECK(looks.size() == 20);
}

TEST_CASE("an interval in a language of the decimal comma is divided by a semicolon") {
  output::Document document;
  document.numbers.decimal_mark = ",";
  const output::Chart chart = means_chart(4);
  const Figure figure(chart, document);
  const Scene scene = figure.scene({.width = 720, .texts = true});
  CHECK(std::ranges::any_of(scene.marks, [](const Mark& mark) {
    return mark.tooltip.find("[33,47; 45,79]") != std::string::npos;
  }));
}

}  // namespace hierfit::test
