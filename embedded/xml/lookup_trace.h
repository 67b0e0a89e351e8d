// Remembers how the last look-up in a document went, so that a failed read can be explained.
#pragma once

#include <string>
#include <string_view>

#include "embedded/xml/tree.h"

namespace hierfit::xml {

/// A reader gives `false` without a word, and the look-up that came last is the reason: an element
/// or attribute that is not there, or one that is there with a value that is of no use. A list that
/// is not there right after a failure inside the same element hides nothing: the failure was the
/// reason for not going on, so it stays.
class LookupTrace {
 public:
  enum class Step { None, Element, List, Attribute, Array, Walk };

  /// A look-up that found what it asked for; `value` is an attribute's and lives as the tree does.
  void found(Step step, NodeId node, std::string_view name, const char* value = nullptr) {
    note(step, true, node, name, value);
  }
  void missed(const Tree& tree, Step step, NodeId node, std::string_view name) {
    const bool unwinds = !found_ && step == Step::List && tree.is_below(node_, node);
    if (!unwinds) note(step, false, node, name, nullptr);
  }

  /// What the last look-up says about the failure of the read.
  ReadFailure failure(const Tree& tree) const;

 private:
  void note(Step step, bool found, NodeId node, std::string_view name, const char* value) {
    step_ = step;
    found_ = found;
    node_ = node;
    value_ = value;
    name_ = name;
  }

  Step step_ = Step::None;
  bool found_ = true;
  NodeId node_ = Tree::kRoot;
  const char* value_ = nullptr;
  std::string name_;
};

}  // namespace hierfit::xml
