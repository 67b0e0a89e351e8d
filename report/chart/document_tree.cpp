#include "report/chart/document_tree.h"

#include <algorithm>
#include <expat.h>
#include <memory>

namespace hierfit::report::chart {
namespace {

constexpr size_t kDeepest = 32;
constexpr int kPieceBytes = 1 << 20;

struct Builder {
  XML_Parser parser = nullptr;
  Node top;
  std::vector<Node> open = {};
  size_t skipped = 0;  ///< elements open within one that is passed over
};

void start(void* user, const char* name, const char** attributes) {
  Builder& builder = *static_cast<Builder*>(user);
  const std::string_view tag = name;
  if (builder.skipped > 0 || tag == "variable") {
    ++builder.skipped;
    return;
  }
  if (tag == "BR" && !builder.open.empty()) builder.open.back().text += '\n';
  if (builder.open.size() >= kDeepest) {
    XML_StopParser(builder.parser, XML_FALSE);
    return;
  }
  Node node;
  node.name = tag;
  for (; *attributes != nullptr; attributes += 2)
    node.attributes.emplace_back(attributes[0], attributes[1]);
  builder.open.push_back(std::move(node));
}

void trim(std::string& text) {
  constexpr std::string_view kBlanks = " \t\r\n";
  text.erase(text.find_last_not_of(kBlanks) + 1);
  text.erase(0, std::min(text.find_first_not_of(kBlanks), text.size()));
}

void end(void* user, const char*) {
  Builder& builder = *static_cast<Builder*>(user);
  if (builder.skipped > 0) {
    --builder.skipped;
    return;
  }
  Node node = std::move(builder.open.back());
  builder.open.pop_back();
  if (node.name == "BR") return;
  trim(node.text);
  (builder.open.empty() ? builder.top : builder.open.back()).children.push_back(std::move(node));
}

void characters(void* user, const char* text, int length) {
  Builder& builder = *static_cast<Builder*>(user);
  if (builder.skipped > 0 || builder.open.empty()) return;
  builder.open.back().text.append(text, static_cast<size_t>(length));
}

bool feed(XML_Parser parser, std::string_view text) {
  while (text.size() > kPieceBytes) {
    if (XML_Parse(parser, text.data(), kPieceBytes, XML_FALSE) != XML_STATUS_OK) return false;
    text.remove_prefix(kPieceBytes);
  }
  return XML_Parse(parser, text.data(), static_cast<int>(text.size()), XML_TRUE) == XML_STATUS_OK;
}

}  // namespace

std::string_view Node::attribute(std::string_view wanted) const {
  for (const auto& [key, value] : attributes) {
    if (key == wanted) return value;
  }
  return {};
}

const Node* Node::child(std::string_view wanted) const {
  const auto found = std::ranges::find(children, wanted, &Node::name);
  return found == children.end() ? nullptr : &*found;
}

Node parse_document(std::string_view text) {
  const std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser(
      XML_ParserCreate("UTF-8"), &XML_ParserFree);
  Builder builder{.parser = parser.get(), .top = {}};
  XML_SetUserData(parser.get(), &builder);
  XML_SetElementHandler(parser.get(), &start, &end);
  XML_SetCharacterDataHandler(parser.get(), &characters);
  if (!feed(parser.get(), text) || builder.top.children.empty()) return {};
  return std::move(builder.top.children.front());
}

}  // namespace hierfit::report::chart
