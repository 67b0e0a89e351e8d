#include "embedded/xml/tree.h"

#include <algorithm>

namespace hierfit::xml {

NodeId Tree::next_child_named(NodeId parent, NodeId after, uint32_t name) const {
  if (name == kNoName) return kNoNode;
  NodeId node = after == kNoNode ? first_child(parent) : next_child(parent, after);
  while (node != kNoNode && nodes_[node].name != name) {
    node = next_child(parent, node);
  }
  return node;
}

NodeId Tree::child(NodeId parent, std::string_view name) const {
  return next_child_named(parent, kNoNode, name_number(name));
}

const char* Tree::attribute(NodeId node, std::string_view name) const {
  const size_t end = attributes_end(node);
  for (size_t index = nodes_[node].first_attribute; index < end; ++index) {
    const Attribute& attribute = attributes_[index];
    if (names_.name(attribute.name) == name) return characters_.get() + attribute.value;
  }
  return nullptr;
}

std::string_view Tree::attribute_text(NodeId node, std::string_view name) const {
  const char* value = attribute(node, name);
  return value == nullptr ? std::string_view() : std::string_view(value);
}

std::string Tree::text(NodeId node) const {
  std::string text;
  auto run = std::ranges::lower_bound(runs_, node, {}, &TextRun::node);
  for (; run != runs_.end() && run->node == node; ++run)
    text.append(characters_.get() + run->begin, run->length);
  return text;
}

std::string_view Tree::text(NodeId node, std::string& storage) const {
  const auto run = std::ranges::lower_bound(runs_, node, {}, &TextRun::node);
  const bool is_only = run != runs_.end() && run->node == node &&
                       (run + 1 == runs_.end() || (run + 1)->node != node);
  if (is_only) return {characters_.get() + run->begin, run->length};
  storage = text(node);
  return storage;
}

}  // namespace hierfit::xml
