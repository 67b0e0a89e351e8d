#include "embedded/chart/style.h"

#include <algorithm>

namespace hierfit::chart {

void apply_style(Element& chart) {
  chart.remove_children("style");
  chart.content.emplace_back(parse_markup(kStyleSheet, "style.xml"));
}

void translate(Element& chart, const StringTable& strings) {
  std::vector<Element*> elements = elements_of(chart);
  std::erase_if(elements, [](const Element* each) { return each->attribute("key") == nullptr; });
  // The text takes the place of what an element holds, so the inner ones come first.
  std::ranges::reverse(elements);
  for (Element* element : elements) {
    element->set_text(strings.text(element->value("key")));
    element->remove("key");
  }
}

}  // namespace hierfit::chart
