#include "import/xml_walk.h"

#include <algorithm>
#include <expat.h>
#include <memory>

namespace hierfit::fit {
namespace {

/// The nesting that the readers of the documents take, too.
constexpr size_t kDeepest = 512;

std::string_view local_name(std::string_view name) {
  const size_t colon = name.rfind(':');
  return colon == std::string_view::npos ? name : name.substr(colon + 1);
}

struct ParserCloser {
  void operator()(XML_Parser parser) const { XML_ParserFree(parser); }
};

struct Walk {
  XML_Parser parser;
  const XmlVisitor& visitor;
  std::vector<OpenElement> open;
  std::string text;
  size_t line = 0;
  size_t column = 0;

  void start(const char* name, const char** attributes) {
    if (open.size() >= kDeepest) {
      XML_StopParser(parser, XML_FALSE);
      return;
    }
    OpenElement& element = open.emplace_back();
    element.name = local_name(name);
    for (; *attributes != nullptr; attributes += 2)
      element.attributes.emplace_back(local_name(attributes[0]), attributes[1]);
    line = XML_GetCurrentLineNumber(parser);
    column = XML_GetCurrentColumnNumber(parser) + 1;
    text.clear();
    visitor.start(open, line, column);
  }

  void end() {
    if (open.back().name == visitor.text_of) visitor.text(open, text, line, column);
    open.pop_back();
    text.clear();
  }
};

void on_start(void* walk, const char* name, const char** attributes) {
  static_cast<Walk*>(walk)->start(name, attributes);
}

void on_end(void* walk, const char*) { static_cast<Walk*>(walk)->end(); }

void on_text(void* data, const char* text, int length) {
  Walk& walk = *static_cast<Walk*>(data);
  if (!walk.open.empty() && walk.open.back().name == walk.visitor.text_of) {
    walk.text.append(text, static_cast<size_t>(length));
  }
}

/// An entity of a document's own could grow beyond all bounds.
void on_entity(void* data,
               const char*,
               int,
               const char*,
               int,
               const char*,
               const char*,
               const char*,
               const char*) {
  XML_StopParser(static_cast<Walk*>(data)->parser, XML_FALSE);
}

}  // namespace

const std::string* OpenElement::attribute(std::string_view wanted) const {
  for (const auto& [attribute_name, value] : attributes)
    if (attribute_name == wanted) return &value;
  return nullptr;
}

bool walk_xml(std::string_view document, const XmlVisitor& visitor) {
  const std::unique_ptr<XML_ParserStruct, ParserCloser> parser(XML_ParserCreate(nullptr));
  if (parser == nullptr) return false;
  Walk walk = {parser.get(), visitor, {}, {}};
  XML_SetUserData(parser.get(), &walk);
  XML_SetElementHandler(parser.get(), &on_start, &on_end);
  XML_SetCharacterDataHandler(parser.get(), &on_text);
  XML_SetEntityDeclHandler(parser.get(), &on_entity);
  constexpr size_t kPiece = size_t{1} << 24;
  for (;;) {
    const std::string_view piece = document.substr(0, kPiece);
    document.remove_prefix(piece.size());
    const auto status = XML_Parse(parser.get(), piece.data(), static_cast<int>(piece.size()),
                                  document.empty() ? XML_TRUE : XML_FALSE);
    if (status != XML_STATUS_OK) return false;
    if (document.empty()) return true;
  }
}

}  // namespace hierfit::fit
