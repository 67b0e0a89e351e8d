// Charts as SVG, in the page and as files.
#include <doctest/doctest.h>
#include <fstream>
#include <iterator>
#include <memory>
#include <set>

#include "embedded/chart/parse_markup.h"
#include "report/chart/figure.h"
#include "report/chart/svg.h"
#include "report/chart_files.h"
#include "report/report.h"
#include "tests/report/chart_samples.h"
#include "tests/report/markup_reader.h"

namespace hierfit::test {

using namespace report::chart;

namespace {

std::string page_svg(const output::Chart& chart) {
  const output::Document document;
  const Figure figure(chart, document);
  std::string svg;
  append_svg(svg, figure.scene({.texts = false}), figure.plan().style,
             {.by_class = true, .prefix = "c1"});
  return svg;
}

std::string file_svg(const output::Chart& chart) {
  const output::Document document;
  return Figure(chart, document).svg({});
}

std::string content_of(const std::string& path) {
  std::ifstream file(std::string(HIERFIT_SOURCE_DIR) + path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

}  // namespace

TEST_CASE("pictures are well-formed, named and without styles, whatever the labels hold") {
  std::vector<ChartSample> samples = chart_samples();
  std::ranges::move(hard_chart_samples(), std::back_inserter(samples));
  for (const ChartSample& sample : samples) {
    for (const std::string& svg : {page_svg(sample.chart), file_svg(sample.chart)}) {
      CAPTURE(sample.name);
      const Markup picture = markup_of(svg);
      CHECK(picture.tags.count("svg") == 1);
      CHECK(picture.tags.count("b") + picture.tags.count("script") == 0);
      CHECK(picture.ids.size() ==
            std::set<std::string>(picture.ids.begin(), picture.ids.end()).size());
      CHECK(picture.unnamed == 0);
      CHECK_FALSE(picture.styled);
    }
  }
}

TEST_CASE("a picture in the page") {
  const std::string svg = page_svg(spans_chart(3));
  SUBCASE("takes its colours from the page and shows tooltips to the keyboard") {
    CHECK(svg.find("fill=\"#") == std::string::npos);
    CHECK(svg.find("class=\"c-significance1\"") != std::string::npos);
    CHECK(markup_of(svg).reachable == 3);
  }
  SUBCASE("of more marks than anyone tabs through is none of tab stops") {
    CHECK(markup_of(page_svg(scatter_chart(2000))).reachable == 0);
  }
}

TEST_CASE("a path begins anew behind a break: nothing is drawn across the gap") {
  Scene scene;
  scene.marks.push_back(path_mark({{1, 2}, {3, 4}, kBreak, {5, 6}, {7, 8}}, {Part::Mark}, 1));
  std::string svg;
  append_svg(svg, scene, Style(), {});
  CHECK(svg.find("d=\"M1 2L3 4M5 6L7 8\"") != std::string::npos);
}

TEST_CASE("a picture as a file has literal colours and its titles") {
  const std::string svg = file_svg(spans_chart(3));
  CHECK(svg.find("currentColor") == std::string::npos);
  CHECK(svg.find("class=") == std::string::npos);
  CHECK(svg.find("fill=\"#b84a00\"") != std::string::npos);
  CHECK(svg.find(">Simple contrasts</text>") != std::string::npos);
}

TEST_CASE("pictures stay small, whatever they show") {
  std::vector<ChartSample> samples = hard_chart_samples();
  samples.push_back({"scatter_200000", scatter_chart(200000)});
  samples.push_back({"numbers_20000", numeric_means_chart(20000)});
  for (const ChartSample& sample : samples) {
    CAPTURE(sample.name);
    CHECK(page_svg(sample.chart).size() < 1000000);
    CHECK(report::svg_of_chart(sample.chart, output::Document(), {}).size() < 1000000);
  }
}

TEST_CASE("the page's colours are those of the style sheet of charts") {
  const std::string css = content_of("/report/html/chart.css");
  output::Chart chart;
  chart.document.content.emplace_back(
      hierfit::chart::parse_markup(content_of("/templates/style.xml"), "style.xml"));
  const Style sheet = read_plan(chart).style;
  REQUIRE(sheet.steps(Part::Categories) == 8);
  for (size_t part = 1; part < kParts; ++part) {
    for (size_t step = 0; step < sheet.paints[part].size(); ++step) {
      const Paint paint{static_cast<Part>(part), static_cast<uint8_t>(step)};
      const Series& series = sheet.series(paint);
      CAPTURE(paint_name(paint));
      CHECK(css.find("--c-" + paint_name(paint) + ": " + series.light + ";") != std::string::npos);
      CHECK(css.find("--c-" + paint_name(paint) + ": " + series.dark + ";") != std::string::npos);
      CHECK(Style().series(paint).light == series.light);
      CHECK(Style().series(paint).dash == series.dash);
    }
  }
}

TEST_CASE("a figure of the report") {
  output::Document document;
  document.content.items.emplace_back(std::make_unique<output::Chart>(means_chart(3, 2)));
  const std::string page = report::render_html(document, {});
  const auto has = [&](std::string_view piece) { return page.find(piece) != std::string::npos; };
  CHECK(has("<li><a href=\"#c1\"><span>Figure 1</span> Estimates</a></li>"));
  CHECK(has("<figcaption id=\"c1h\"><b>Figure 1</b><br><i>Estimates</i></figcaption>"));
  CHECK(has("<p>Continuous predictors fixed at age = 41.20, income = 2.50</p>"));
  CHECK(has("<th scope=\"col\" class=\"t\">Level of the symptom</th>"));
  CHECK(has("<td class=\"t\">None</td>"));
  CHECK(has(">34.10</td>"));
  CHECK(has(">46.66</td>"));
}

}  // namespace hierfit::test
