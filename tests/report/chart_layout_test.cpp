// Charts laid out: golden scenes, and what holds for all of them.
#include <algorithm>
#include <cmath>
#include <doctest/doctest.h>
#include <tuple>

#include "output/hide_condition.h"
#include "report/chart/distribution.h"
#include "report/chart/figure.h"
#include "report/chart/metrics.h"
#include "report/chart/scale.h"
#include "tests/golden.h"
#include "tests/report/chart_samples.h"

namespace hierfit::test {

using namespace report::chart;

namespace {

std::vector<ChartSample> all_samples() {
  std::vector<ChartSample> samples = chart_samples();
  std::ranges::move(hard_chart_samples(), std::back_inserter(samples));
  return samples;
}

Scene scene_of(const output::Chart& chart, double width = 720, bool texts = true) {
  const output::Document document;
  return Figure(chart, document).scene({.width = width, .texts = texts});
}

std::vector<const Mark*> texts_of(const Scene& scene) {
  std::vector<const Mark*> texts;
  for (const Mark& mark : scene.marks) {
    if (mark.kind == MarkKind::Text && !mark.text.empty()) texts.push_back(&mark);
  }
  return texts;
}

/// Whether a line parallel to a side of `a` divides the two.
bool divided(const std::vector<Point>& a, const std::vector<Point>& b) {
  for (size_t i = 0; i < 2; ++i) {
    const Point axis{a[i + 1].x - a[i].x, a[i + 1].y - a[i].y};
    double low[2] = {HUGE_VAL, HUGE_VAL};
    double high[2] = {-HUGE_VAL, -HUGE_VAL};
    const std::vector<Point>* both[2] = {&a, &b};
    for (size_t k = 0; k < 2; ++k) {
      for (const Point& corner : *both[k]) {
        const double at = corner.x * axis.x + corner.y * axis.y;
        low[k] = std::min(low[k], at);
        high[k] = std::max(high[k], at);
      }
    }
    if (high[0] <= low[1] || high[1] <= low[0]) return true;
  }
  return false;
}

bool touch(const Mark& a, const Mark& b) {
  const std::vector<Point> first = corners_of(a);
  const std::vector<Point> second = corners_of(b);
  return !divided(first, second) && !divided(second, first);
}

/// The texts that overlap, as "one | other".
std::string overlaps(const Scene& scene) {
  const std::vector<const Mark*> texts = texts_of(scene);
  for (size_t i = 0; i < texts.size(); ++i) {
    for (size_t j = 0; j < i; ++j) {
      const bool wide =
          text_width(texts[i]->text, {12}) > 0 && text_width(texts[j]->text, {12}) > 0;
      if (wide && touch(*texts[i], *texts[j])) return texts[i]->text + " | " + texts[j]->text;
    }
  }
  return "";
}

/// The first text that is not wholly in the picture.
std::string outside(const Scene& scene) {
  for (const Mark* text : texts_of(scene)) {
    const Box box = box_of(*text);
    if (box.x < -0.5 || box.y < -0.5 || box.right() > scene.width + 0.5 ||
        box.bottom() > scene.height + 0.5) {
      return text->text;
    }
  }
  return "";
}

size_t count_marks(const Scene& scene, MarkKind kind, Paint stroke) {
  return static_cast<size_t>(std::ranges::count_if(
      scene.marks, [&](const Mark& mark) { return mark.kind == kind && mark.stroke == stroke; }));
}

bool has_tooltip(const Scene& scene, const std::string& tooltip) {
  return std::ranges::any_of(scene.marks,
                             [&](const Mark& mark) { return mark.tooltip == tooltip; });
}

}  // namespace

TEST_CASE("scenes of each kind of chart") {
  for (const ChartSample& sample : chart_samples()) {
    const std::string name = "report/chart_" + sample.name + ".txt";
    CHECK(golden_difference(name, to_text(scene_of(sample.chart))) == "");
  }
}

TEST_CASE("in every chart, at every width") {
  for (const ChartSample& sample : all_samples()) {
    for (const double width : {358.0, 740.0}) {
      CAPTURE(sample.name);
      CAPTURE(width);
      const Scene scene = scene_of(sample.chart, width);
      CHECK_MESSAGE(overlaps(scene) == "", "two texts overlap");
      CHECK_MESSAGE(outside(scene) == "", "a text is cut by the edge");
      CHECK(std::isfinite(scene.height));
      CHECK(scene.description != "");
    }
  }
}

TEST_CASE("a label that is cut says itself whole in its tooltip") {
  output::Chart chart = means_chart(6);
  const std::string label(90, 'n');
  chart.sources[0].variables[0].number_labels[2] = label;
  const Scene scene = scene_of(chart);
  const auto found = std::ranges::find_if(scene.marks, [&](const Mark& mark) {
    return mark.kind == MarkKind::Text && mark.tooltip == label;
  });
  REQUIRE(found != scene.marks.end());
  CHECK(found->text.ends_with("\u2026"));
}

TEST_CASE("what charts say") {
  SUBCASE("a mean's tooltip has the mean and both bounds in their format") {
    CHECK(has_tooltip(scene_of(means_chart(4)),
                      "Level of the symptom: None\nEstimated Mean: 39.93\nSatisfaction with the "
                      "visit (points): [33.47, 45.79]"));
  }
  SUBCASE("a description names the highest and the lowest mean") {
    const std::string text = scene_of(means_chart(4)).description;
    CHECK(text.find("Highest: 47.62 (High); lowest: 18.18 (Low).") != std::string::npos);
  }
  SUBCASE("a description lists the pairs that differ") {
    const std::string text = scene_of(pairwise_chart(3)).description;
    CHECK(text.find("Significant: 2 (Low \u2013 None, Medium \u2013 Low).") != std::string::npos);
  }
}

TEST_CASE("a target without a histogram takes little room") {
  output::Chart chart = diagram_chart(1, 10);
  const double height = scene_of(chart).height;
  std::erase_if(chart.sources,
                [](const output::ChartSource& source) { return source.name == "histogramSource"; });
  CHECK(scene_of(chart).height < height - 80);
}

TEST_CASE("circles") {
  SUBCASE("two nodes lie side by side") { CHECK(scene_of(pairwise_chart(2)).height < 140); }
  SUBCASE("words are cut, not broken") {
    output::Chart chart = pairwise_chart(3);
    for (output::ChartSource& source : chart.sources) {
      for (output::ChartVariable& variable : source.variables) {
        if (variable.number_labels.size() == 3) variable.number_labels[1] = std::string(80, 'n');
      }
    }
    const Scene scene = scene_of(chart, 358);
    CHECK(has_tooltip(scene, std::string(80, 'n')));
    CHECK(std::ranges::count_if(scene.marks, [](const Mark& mark) {
            return mark.kind == MarkKind::Text && mark.text.starts_with("nn");
          }) == 1);
  }
}

TEST_CASE("a guide shows in its own panel alone") {
  CHECK(count_marks(scene_of(spans_chart(3, 2, 3)), MarkKind::Rule, {Part::Guide}) == 6);
  CHECK(count_marks(scene_of(spans_chart(3)), MarkKind::Rule, {Part::Guide}) == 1);
}

TEST_CASE("points become a density raster when they are too many") {
  const auto images = [](size_t points) {
    const Scene scene = scene_of(scatter_chart(points));
    return std::ranges::count(scene.marks, MarkKind::Image, &Mark::kind);
  };
  CHECK(images(20000) == 0);
  CHECK(images(20001) == 1);
  output::Chart chart = scatter_chart(30000);
  const std::string legend = to_text(scene_of(chart));
  CHECK(legend.find(" \"1\" fill") != std::string::npos);
  CHECK(legend.find(" \"100\" fill") != std::string::npos);
}

TEST_CASE("what is too much to be read is left out, and the picture says so") {
  const std::tuple<output::Chart, std::string> rows[] = {
      {means_chart(60, 40), "Level of the symptom: The first 12 of 60 are shown."},
      {spans_chart(1500), " of 1500 are shown."},
      {pairwise_chart(200), "The 60 most significant of 200 are shown."},
      {diagram_chart(1000, 10), "The 100 most significant of 1000 are shown."},
  };
  for (const auto& [chart, note] : rows) {
    CAPTURE(note);
    CHECK(to_text(scene_of(chart)).find(note) != std::string::npos);
  }
  CHECK(to_text(scene_of(means_chart(500))).find("are shown") == std::string::npos);
  SUBCASE("the strongest edges stay") {
    output::Chart chart = diagram_chart(1000, 10);
    output::ChartSource& edges = chart.sources[2];
    const auto weight = std::ranges::find(edges.variables, "Weight", &output::ChartVariable::role);
    REQUIRE(weight != edges.variables.end());
    for (size_t row = 0; row < edges.rows; ++row)
      weight->values.set(row, row % 10 == 7 ? 9 : 1);
    const auto& tooltips = chart.sources[1].by_role("PointTooltip")->values;
    const Scene scene = scene_of(chart);
    for (const size_t row : {7, 507, 997})
      CHECK(has_tooltip(scene, tooltips.text(row)));
    CHECK_FALSE(has_tooltip(scene, tooltips.text(508)));
  }
}

TEST_CASE("marks grow with the rows, not faster") {
  const size_t few = scene_of(scatter_chart(500)).marks.size();
  const size_t many = scene_of(scatter_chart(1500)).marks.size();
  CHECK(many - few == 1000);
  const size_t edges = scene_of(pairwise_chart(40)).marks.size();
  CHECK(edges < 40 * 39 / 2 + 40 + 40 + 20);
}

TEST_CASE("ticks stand at steps of 1, 2 or 5") {
  const auto ticks = [](double low, double high, int wanted) {
    return ticks_of(Range{low, high, false}, wanted).values;
  };
  CHECK(ticks(0, 10, 5) == std::vector<double>{0, 2, 4, 6, 8, 10});
  CHECK(ticks(-3, 3, 3) == std::vector<double>{-2, 0, 2});
  CHECK(ticks_of(Range{0, 0.3, false}, 3).decimals == 1);
  CHECK(ticks_of(Range{1e-9, 2e-9, false}, 4).decimals == 10);
  CHECK(ticks_of(Range{-1e300, 1e300, false}, 5).values.size() < 20);
  Range constant;
  constant.add(7);
  CHECK(constant.proper().high > 7);
  CHECK(Range().proper().high == 1);
}

TEST_CASE("texts are measured and broken like a font sets them") {
  const Font font{10, false};
  // Advance widths of Liberation Sans in 2048ths: "A" 1366, "i" 455.
  CHECK(text_width("Ai", font) == doctest::Approx((1366 + 455) / 204.8));
  CHECK(text_width("\u793E", font) == 10);
  CHECK(text_width("e\u0301", font) == text_width("e", font));
  CHECK(text_width("A", {10, true}) > text_width("A", font));
  const TextLines lines = fit_text("one two\nthree", font, 40, 3);
  CHECK(lines.lines == std::vector<std::string>{"one two", "three"});
  CHECK(fit_text("one two three four", font, 40, 2).lines.back() == "three\u2026");
  // Wide characters need no blanks to break between; a word does.
  CHECK(fit_text("ab\u793E\u4F1A\u5B66cd", font, 32, 2).lines ==
        std::vector<std::string>{"ab\u793E\u4F1A", "\u5B66cd"});
  CHECK(fit_text("one*two*three", font, 46, 3).lines ==
        std::vector<std::string>{"one*two*", "three"});
  CHECK(widest_word("ab\u793E\u4F1A cd", font) < 15);
  for (const std::string& label : kAwkwardLabels) {
    for (const std::string& line : fit_text(label, font, 60, 4).lines)
      CHECK(text_width(line, font) <= 60);
  }
}

TEST_CASE("densities hold an area of one") {
  const struct {
    Distribution distribution;
    double step;  ///< 1 for those of whole numbers
  } rows[] = {{{"normal"}, 0.01},
              {{"gamma", 3, 0.5}, 0.01},
              {{"gaussianinverse", 5, 20}, 0.01},
              {{"binomialnegative", 4, 0.6}, 1},
              {{"poisson", 6}, 1}};
  for (const auto& [distribution, step] : rows) {
    CAPTURE(distribution.method);
    const auto density = density_of(distribution, 8, 1.5);
    REQUIRE(density);
    double area = 0;
    for (double x = 0; x < 200; x += step)
      area += density(x) * step;
    CHECK(area == doctest::Approx(1).epsilon(0.001));
  }
  CHECK_FALSE(density_of({"gamma", 3}, 8, 1.5));
  CHECK_FALSE(density_of({"binomialnegative", 4, 1.2}, 8, 1.5));
  CHECK_FALSE(density_of({"normal"}, 8, 0));
  CHECK_FALSE(density_of({"weibull", 1, 1}, 8, 1));
}

TEST_CASE("conditions name the panel of a guide") {
  using Clauses = std::vector<output::HideCondition::Clause>;
  struct Row {
    const char* text;
    Clauses clauses;
  };
  const Row kRows[] = {
      {"false", {}},
      {"", {}},
      {R"(facet1!="a")", {{"facet1", "a"}}},
      {R"(facet1!="a"||facet2!="b")", {{"facet1", "a"}, {"facet2", "b"}}},
      {R"(facet1!="say "a"!"||facet2!=""b"")", {{"facet1", "say \"a\"!"}, {"facet2", "\"b\""}}},
      {R"(facet1!="a"||b"||facet2!="c||d")", {{"facet1", "a\"||b"}, {"facet2", "c||d"}}},
      {R"(facet1!="")", {{"facet1", ""}}},
      {R"(facet1!="open)", {}},
  };
  for (const auto& [text, clauses] : kRows) {
    CAPTURE(text);
    CHECK(output::HideCondition(text).clauses() == clauses);
  }
  CHECK(output::names_value("01", 1.0));
  CHECK_FALSE(output::names_value("1x", 1.0));
  CHECK_FALSE(output::names_value("", 0.0));
  CHECK_FALSE(output::names_value("01", "1"));
}

}  // namespace hierfit::test
