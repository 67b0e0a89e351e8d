#include "tests/report/markup_reader.h"

#include "embedded/chart/parse_markup.h"

namespace hierfit::tests {

Markup markup_of(const std::string& text) {
  Markup markup;
  output::Element root = chart::parse_markup(text, "picture");
  for (const output::Element* element : output::elements_of(root)) {
    markup.tags.insert(element->name);
    for (const auto& [key, value] : element->attributes) {
      if (key == "id") markup.ids.insert(value);
      if (key == "style" || key.starts_with("on")) markup.styled = true;
    }
    const bool reached = element->attribute("tabindex") != nullptr;
    markup.reachable += reached ? 1 : 0;
    markup.unnamed += reached && element->value("aria-label").empty() ? 1 : 0;
  }
  return markup;
}

}  // namespace hierfit::tests
