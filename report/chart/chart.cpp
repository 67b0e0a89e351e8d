#include "report/chart/chart.h"

#include "report/chart/layout.h"
#include "report/chart/pieces.h"
#include "report/chart/plan.h"
#include "report/chart/svg.h"

namespace hierfit::report {

std::string render_svg(const output::Chart& chart, const output::Document& document, double width) {
  const chart::Plan plan = chart::read_plan(chart);
  const chart::Scene scene = chart::lay_out(plan, chart, document, {.width = width, .texts = true});
  std::string svg = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
  chart::append_svg(svg, scene, plan.style, {});
  return svg;
}

std::string describe_chart(const output::Chart& chart, const output::Document& document) {
  const chart::Plan plan = chart::read_plan(chart);
  return chart::describe(chart::bind(plan, plan.graph, chart, document));
}

}  // namespace hierfit::report
