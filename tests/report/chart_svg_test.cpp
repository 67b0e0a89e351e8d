// Charts as SVG, in the page and as files.
#include <doctest/doctest.h>
#include <expat.h>
#include <fstream>
#include <iterator>
#include <memory>
#include <set>

#include "report/chart/chart.h"
#include "report/chart/layout.h"
#include "report/chart/plan.h"
#include "report/chart/svg.h"
#include "report/report.h"
#include "tests/report/chart_samples.h"

namespace hierfit::tests {

using namespace report::chart;

namespace {

/// What a picture holds, gathered by a parser; empty `tags` for a text that is not well-formed.
struct Picture {
  std::multiset<std::string> tags;
  std::multiset<std::string> ids;
  size_t unnamed = 0;  ///< elements that the keyboard reaches and that have no name
  size_t reachable = 0;
  bool styled = false;
};

void XMLCALL start(void* user, const char* name, const char** attributes) {
  Picture& picture = *static_cast<Picture*>(user);
  picture.tags.insert(name);
  bool reached = false;
  bool named = false;
  for (; *attributes != nullptr; attributes += 2) {
    const std::string_view key = attributes[0];
    if (key == "id") picture.ids.insert(attributes[1]);
    if (key == "style" || key.starts_with("on")) picture.styled = true;
    if (key == "tabindex") reached = true;
    if (key == "aria-label" && attributes[1][0] != '\0') named = true;
  }
  picture.reachable += reached ? 1 : 0;
  picture.unnamed += reached && !named ? 1 : 0;
}

Picture picture_of(const std::string& svg) {
  Picture picture;
  const std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser(
      XML_ParserCreate("UTF-8"), &XML_ParserFree);
  XML_SetUserData(parser.get(), &picture);
  XML_SetElementHandler(parser.get(), &start, nullptr);
  if (XML_Parse(parser.get(), svg.data(), static_cast<int>(svg.size()), XML_TRUE) !=
      XML_STATUS_OK) {
    picture.tags.clear();
  }
  return picture;
}

std::string page_svg(const output::Chart& chart) {
  const Plan plan = read_plan(chart);
  std::string svg;
  append_svg(svg, lay_out(plan, chart, output::Document(), {.width = 720, .texts = false}),
             plan.style, {.by_class = true, .prefix = "c1", .css_class = ""});
  return svg;
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
    for (const std::string& svg :
         {page_svg(sample.chart), report::render_svg(sample.chart, output::Document())}) {
      CAPTURE(sample.name);
      const Picture picture = picture_of(svg);
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
    CHECK(picture_of(svg).reachable == 3);
  }
  SUBCASE("of more marks than anyone tabs through is none of tab stops") {
    CHECK(picture_of(page_svg(scatter_chart(2000))).reachable == 0);
  }
}

TEST_CASE("a picture as a file has literal colours and its titles") {
  const std::string svg = report::render_svg(spans_chart(3), output::Document());
  CHECK(svg.find("currentColor") == std::string::npos);
  CHECK(svg.find("class=") == std::string::npos);
  CHECK(svg.find("fill=\"#b84a00\"") != std::string::npos);
  CHECK(svg.find(">Simple contrasts</text>") != std::string::npos);
}

TEST_CASE("a picture of a million points stays small") {
  output::Chart chart = scatter_chart(200000);
  CHECK(page_svg(chart).size() < 1000000);
}

TEST_CASE("the page's colours are those of the style sheet of charts") {
  const std::string css = content_of("/report/html/chart.css");
  output::Chart chart;
  chart.document =
      "<chart><graph/><texts/><data/>" + content_of("/templates/style.xml").substr(39) + "</chart>";
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
  CHECK(has("<td>[34.10, 46.66]</td>"));
}

}  // namespace hierfit::tests
