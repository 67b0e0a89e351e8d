#include "report/page_chart.h"

#include "report/chart/binding.h"
#include "report/chart/chart.h"
#include "report/chart/layout.h"
#include "report/chart/svg.h"
#include "report/outline.h"

namespace hierfit::report {

PageChart page_chart(const output::Chart& chart, const output::Document& document, double width) {
  const chart::Plan plan = chart::read_plan(chart);
  PageChart page;
  page.title = clean(chart.title.empty() ? plan.texts.title : chart.title);
  page.sub_title = clean(plan.texts.sub_title);
  for (const std::string& note : {plan.texts.caption, plan.texts.footnote}) {
    if (!note.empty()) page.notes.push_back(clean(note));
  }
  const chart::Scene scene =
      chart::lay_out(plan, chart, document, {.width = width, .texts = false});
  page.svg = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
  chart::append_svg(page.svg, scene, plan.style, {});
  page.description = clean(describe_chart(chart, document));
  return page;
}

}  // namespace hierfit::report
