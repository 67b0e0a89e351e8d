#include "tests/report/markup_reader.h"

#include <expat.h>
#include <memory>
#include <string_view>

namespace hierfit::tests {
namespace {

void XMLCALL start(void* user, const char* name, const char** attributes) {
  Markup& markup = *static_cast<Markup*>(user);
  markup.tags.insert(name);
  bool reached = false;
  bool named = false;
  for (; *attributes != nullptr; attributes += 2) {
    const std::string_view key = attributes[0];
    if (key == "id") markup.ids.insert(attributes[1]);
    if (key == "style" || key.starts_with("on")) markup.styled = true;
    if (key == "tabindex") reached = true;
    if (key == "aria-label" && attributes[1][0] != '\0') named = true;
  }
  markup.reachable += reached ? 1 : 0;
  markup.unnamed += reached && !named ? 1 : 0;
}

}  // namespace

Markup markup_of(const std::string& text) {
  Markup markup;
  const std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser(
      XML_ParserCreate("UTF-8"), &XML_ParserFree);
  XML_SetUserData(parser.get(), &markup);
  XML_SetElementHandler(parser.get(), &start, nullptr);
  if (XML_Parse(parser.get(), text.data(), static_cast<int>(text.size()), XML_TRUE) !=
      XML_STATUS_OK) {
    markup.tags.clear();
  }
  return markup;
}

}  // namespace hierfit::tests
