// Prints sample charts: show_chart html|marks [NAME...], or show_chart svg|scene NAME
//
// `marks` tells for each chart, as the page draws it for wide and for narrow screens, where its
// marks lie; check_chart_page.py holds them against what a browser makes of `html`.
#include <algorithm>
#include <cstdio>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>

#include "report/chart/figure.h"
#include "report/report.h"
#include "tests/report/chart_samples.h"

namespace {

using namespace hierfit;
using namespace hierfit::report::chart;
using nlohmann::json;

json point_json(const Point& point) { return {point.x, point.y}; }

/// The points whose bounding box a browser finds for the mark; of a text the corners.
std::vector<Point> extent_of(const Mark& mark) {
  std::vector<Point> points = corners_of(mark);
  if (mark.kind == MarkKind::Symbol)
    points = symbol_outline(mark.symbol, {mark.box.x, mark.box.y}, mark.size);
  std::erase_if(points, is_break);
  return points;
}

void append_marks(json& out, const std::vector<Mark>& marks) {
  for (const Mark& mark : marks) {
    append_marks(out, mark.children);
    if (mark.kind == MarkKind::Group) continue;
    for (size_t i = 0; mark.kind == MarkKind::Dots && i < mark.points.size(); ++i)
      out.push_back({{"points", {point_json(mark.points[i])}}, {"text", ""}, {"tip", ""}});
    if (mark.kind == MarkKind::Dots) continue;
    json points = json::array();
    for (const Point& point : extent_of(mark))
      points.push_back(point_json(point));
    out.push_back({{"points", points}, {"text", mark.text}, {"tip", mark.tooltip}});
    if (mark.kind == MarkKind::Image) out.back()["text"] = "";
  }
}

json marks_of(const std::string& name, const output::Chart& chart) {
  const output::Document document;
  json all = {{"name", name}};
  for (const auto& [key, width] : {std::pair{"wide", 740.0}, {"narrow", 358.0}}) {
    const Scene scene = Figure(chart, document).scene({.width = width, .texts = false});
    json marks = json::array();
    append_marks(marks, scene.marks);
    all[key] = {{"width", scene.width}, {"height", scene.height}, {"marks", marks}};
  }
  return all;
}

std::string shown(const std::string& form, output::Document& document) {
  if (form == "html" || document.content.items.empty()) return report::render_html(document, {});
  const auto& chart = *std::get<std::unique_ptr<output::Chart>>(document.content.items.front());
  const Figure figure(chart, document);
  return form == "svg" ? figure.svg({}) : to_text(figure.scene({}));
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) return 2;
  const std::string form = argv[1];
  std::vector<test::ChartSample> samples = test::chart_samples();
  std::ranges::move(test::hard_chart_samples(), std::back_inserter(samples));
  output::Document document;
  document.title = "Charts";
  json marks = json::array();
  for (test::ChartSample& sample : samples) {
    const bool wanted = argc == 2 || std::any_of(argv + 2, argv + argc, [&](const char* name) {
                          return sample.name == name;
                        });
    if (!wanted) continue;
    if (form == "marks") marks.push_back(marks_of(sample.name, sample.chart));
    sample.chart.title += " (" + sample.name + ")";
    document.content.items.emplace_back(std::make_unique<output::Chart>(std::move(sample.chart)));
  }
  const std::string text = form == "marks"
                               ? marks.dump(-1, ' ', false, json::error_handler_t::replace)
                               : shown(form, document);
  std::fwrite(text.data(), 1, text.size(), stdout);
  return 0;
}
