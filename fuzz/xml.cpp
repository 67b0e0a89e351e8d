// Feeds the XML reader: the tree, its look-ups and its arrays.
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "host/framework.h"

#include "embedded/xml/tree.h"

namespace {

constexpr const char* kNames[] = {"a", "Array", "ListValue", "PMMLModel/ModelDiagnostics"};

/// Asks an element for everything that a reader could ask it for.
void ask(SDOMXMLWrapper& element) {
  std::string text;
  std::vector<std::string> items;
  element.GetAttribute("name", text);
  element.GetAttribute("value", text);
  element.GetSimpleArray(items);
  for (const std::string& item : items) {
    String2Double(item);
    String2Integer(item);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  hierfit::xml::Tree tree;
  const bool is_refused = tree.parse(text).has_value();
  if (is_refused != tree.empty()) __builtin_trap();
  if (is_refused) return 0;

  SDOMXMLWrapper root;
  SDOMXMLWrapper* document = root.LoadFromString(text);
  if (document == nullptr) return 0;
  ask(*document);
  for (const char* name : kNames) {
    SDOMXMLIterator* children = nullptr;
    if (!document->GetElementIterator(name, &children, true)) continue;
    for (SDOMXMLWrapper* child = nullptr; children->Next(&child);)
      ask(*child);
  }
  return 0;
}
