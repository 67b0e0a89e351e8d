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
  for (Element* element : elements_of(chart)) {
    const std::string* key = element->attribute("key");
    if (key == nullptr) continue;
    element->set_text(state->strings.text(*key));
    element->remove("key");
  }
}

}  // namespace hierfit::chart
