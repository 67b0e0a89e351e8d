#include "embedded/chart/style.h"

#include "embedded/session_state.h"

namespace hierfit::chart {

void apply_style(Element& chart) {
  chart.remove_children("style");
  chart.content.emplace_back(parse_markup(kStyleSheet, "style.xml"));
}

void translate(Element& chart) {
  const Session::State* state = state_of_thread();
  if (state == nullptr) return;
  std::vector<Element*> elements = elements_of(chart);
  std::erase_if(elements, [](const Element* each) { return each->attribute("key") == nullptr; });
  // The text takes the place of what an element holds, so the inner ones come first.
  for (auto element = elements.rbegin(); element != elements.rend(); ++element) {
    (*element)->set_text(state->strings.text((*element)->value("key")));
    (*element)->remove("key");
  }
}

}  // namespace hierfit::chart
