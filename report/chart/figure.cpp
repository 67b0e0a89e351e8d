#include "report/chart/figure.h"

#include "report/chart/pieces.h"
#include "report/chart/svg.h"

namespace hierfit::report::chart {

Figure::Figure(const output::Chart& chart, const output::Document& document)
    : plan_(read_plan(chart)),
      binding_(bind(plan_, plan_.graph, chart, document)),
      description_(describe(binding_)) {}

std::vector<std::string> Figure::notes() const {
  std::vector<std::string> notes;
  for (const std::string& note : {plan_.texts.caption, plan_.texts.footnote}) {
    if (!note.empty()) notes.push_back(note);
  }
  notes.insert(notes.end(), plan_.texts.notes.begin(), plan_.texts.notes.end());
  return notes;
}

Scene Figure::scene(const Settings& settings) const {
  Scene scene = lay_out(binding_, settings);
  scene.title = title();
  scene.description = description_;
  return scene;
}

std::string Figure::svg(const Settings& settings) const {
  std::string svg(kSvgHead);
  append_svg(svg, scene(settings), plan_.style, {});
  return svg;
}

}  // namespace hierfit::report::chart
