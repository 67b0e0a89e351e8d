// The framework's XML wrapper over a tree.
#include <algorithm>
#include <memory_resource>

#include "host/framework.h"

#include "embedded/framework/number_text.h"
#include "embedded/session_state.h"
#include "embedded/xml/array_items.h"
#include "embedded/xml/lookup_trace.h"
#include "embedded/xml/tree.h"

using hierfit::xml::kNoNode;
using hierfit::xml::LookupTrace;
using hierfit::xml::NodeId;
using hierfit::xml::Tree;

namespace {

/// A document and the small objects that were handed out from it, which go with it.
struct LoadedDocument {
  Tree tree;
  LookupTrace trace;
  std::pmr::monotonic_buffer_resource handed_out;

  /// The first element that the whole path reaches from `node`. As deep as the path has steps.
  NodeId find(NodeId node, std::string_view path) const {
    const size_t slash = path.find('/');
    const uint32_t name = tree.name_number(path.substr(0, slash));
    NodeId child = tree.next_child_named(node, kNoNode, name);
    if (slash == std::string_view::npos) return child;
    for (; child != kNoNode; child = tree.next_child_named(node, child, name)) {
      const NodeId reached = find(child, path.substr(slash + 1));
      if (reached != kNoNode) return reached;
    }
    return kNoNode;
  }
};

void report(const hierfit::ReadFailure& failure) {
  if (auto* state = hierfit::state_of_thread()) state->outputs.failure = failure;
}

/// The session keeps what a result document says beside its numbers.
void take_facts(const Tree& tree) {
  auto* state = hierfit::state_of_thread();
  if (state == nullptr) return;
  if (auto facts = hierfit::about::read_result_facts(tree))
    state->outputs.result = std::move(*facts);
}

}  // namespace

struct SDOMXMLWrapper::Impl {
  LoadedDocument* document;
  NodeId node;
  bool owns_document = false;  ///< of a root alone

  const Tree& tree() const { return document->tree; }
  LookupTrace& trace() const { return document->trace; }

  static SDOMXMLWrapper* hand_out(LoadedDocument& document, NodeId node) {
    struct Element {
      Impl impl;
      SDOMXMLWrapper wrapper;
    };
    void* place = document.handed_out.allocate(sizeof(Element), alignof(Element));
    auto* element = ::new (place) Element{{&document, node}, SDOMXMLWrapper(nullptr)};
    element->wrapper.impl_ = &element->impl;
    return &element->wrapper;
  }
};

struct SDOMXMLIterator::Impl {
  LoadedDocument* document;
  NodeId parent;
  NodeId next;
  uint32_t name;

  static SDOMXMLIterator* hand_out(const Impl& walk) {
    struct Walk {
      Impl impl;
      SDOMXMLIterator iterator;
    };
    void* place = walk.document->handed_out.allocate(sizeof(Walk), alignof(Walk));
    auto* object = ::new (place) Walk{walk, SDOMXMLIterator(nullptr)};
    object->iterator.impl_ = &object->impl;
    return &object->iterator;
  }
};

SDOMXMLWrapper::SDOMXMLWrapper() : impl_(nullptr) {
  auto document = std::make_unique<LoadedDocument>();
  void* place = document->handed_out.allocate(sizeof(Impl), alignof(Impl));
  impl_ = ::new (place) Impl{document.release(), Tree::kRoot, true};
}

// Elements that a root hands out are never destroyed one by one: they are memory of its document.
SDOMXMLWrapper::~SDOMXMLWrapper() {
  if (!impl_->owns_document) return;
  const std::unique_ptr<LoadedDocument> document(impl_->document);
  try {
    hierfit::ReadFailure failure = document->trace.failure(document->tree);
    if (!failure.sentence.empty()) report(failure);
  } catch (const std::bad_alloc&) {
    // The failure goes unexplained.
  }
}

SDOMXMLWrapper* SDOMXMLWrapper::LoadFromString(const std::string& text) {
  if (!impl_->tree().empty()) return nullptr;
  if (auto failure = impl_->document->tree.parse(text)) {
    report(*failure);
    return nullptr;
  }
  take_facts(impl_->tree());
  return this;
}

bool SDOMXMLWrapper::GetFirstElement(std::string_view path, SDOMXMLWrapper** element, bool) {
  *element = nullptr;
  if (impl_->tree().empty()) return false;
  const NodeId node = impl_->document->find(impl_->node, path);
  if (node == kNoNode) {
    impl_->trace().missed(impl_->tree(), LookupTrace::Step::Element, impl_->node, path);
    return false;
  }
  impl_->trace().found(LookupTrace::Step::Element, node, path);
  *element = Impl::hand_out(*impl_->document, node);
  return true;
}

bool SDOMXMLWrapper::GetElementIterator(std::string_view name, SDOMXMLIterator** iterator, bool) {
  *iterator = nullptr;
  const Tree& tree = impl_->tree();
  if (tree.empty()) return false;
  const uint32_t number = tree.name_number(name);
  const NodeId first = tree.next_child_named(impl_->node, kNoNode, number);
  if (first == kNoNode) {
    impl_->trace().missed(tree, LookupTrace::Step::List, impl_->node, name);
    return false;
  }
  impl_->trace().found(LookupTrace::Step::List, impl_->node, name);
  *iterator = SDOMXMLIterator::Impl::hand_out({impl_->document, impl_->node, first, number});
  return true;
}

bool SDOMXMLWrapper::GetAttribute(std::string_view name, std::string& value) {
  const Tree& tree = impl_->tree();
  if (tree.empty()) return false;
  const char* text = tree.attribute(impl_->node, name);
  if (text == nullptr) {
    impl_->trace().missed(tree, LookupTrace::Step::Attribute, impl_->node, name);
    return false;
  }
  impl_->trace().found(LookupTrace::Step::Attribute, impl_->node, name, text);
  value = text;
  return true;
}

bool SDOMXMLWrapper::GetSimpleArray(std::vector<std::string>& items) {
  const Tree& tree = impl_->tree();
  if (tree.empty()) {
    items.clear();
    return false;
  }
  std::string storage;
  const std::string_view stated = tree.attribute_text(impl_->node, "n");
  const auto count = hierfit::parse_number(stated);
  const std::string_view text = tree.text(impl_->node, storage);
  const size_t most = text.size() / 2 + 1;  // an item and a blank each
  if (count && *count > 0 && *count <= static_cast<double>(most)) {
    items.reserve(static_cast<size_t>(*count));
  }
  const bool fits = hierfit::xml::split_items(text, items) &&
                    (!hierfit::is_number(stated) || count == static_cast<double>(items.size()));
  if (!fits) {
    items.clear();
    impl_->trace().missed(tree, LookupTrace::Step::Array, impl_->node, "n");
    return false;
  }
  impl_->trace().found(LookupTrace::Step::Array, impl_->node, "n");
  return true;
}

SDOMXMLIterator::~SDOMXMLIterator() = default;

bool SDOMXMLIterator::Next(SDOMXMLWrapper** element) {
  *element = nullptr;
  LoadedDocument& document = *impl_->document;
  const NodeId node = impl_->next;
  document.trace.found(LookupTrace::Step::Walk, node == kNoNode ? impl_->parent : node, "");
  if (node == kNoNode) return false;
  impl_->next = document.tree.next_child_named(impl_->parent, node, impl_->name);
  *element = SDOMXMLWrapper::Impl::hand_out(document, node);
  return true;
}
