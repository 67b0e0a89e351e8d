#include "embedded/xml/lookup_trace.h"

#include "output/utf8.h"

namespace hierfit::xml {
namespace {

constexpr size_t kShownValue = 60;  // bytes of an attribute's value that a message quotes

std::string quoted(std::string_view value) {
  const std::string_view shown = utf8::first_bytes(value, kShownValue);
  return "\"" + std::string(shown) + (shown.size() < value.size() ? "\u2026\"" : "\"");
}

std::string sentence_of_miss(LookupTrace::Step step,
                             const std::string& element,
                             const std::string& name) {
  switch (step) {
    case LookupTrace::Step::Element:
    case LookupTrace::Step::List:
      return element + " lacks the element " + name;
    case LookupTrace::Step::Attribute:
      return element + " lacks the attribute " + name;
    case LookupTrace::Step::Array:
      return element +
             " holds items that cannot be read: a quote is left open, or their count is "
             "not what the attribute n says";
    case LookupTrace::Step::None:
    case LookupTrace::Step::Walk:
      break;
  }
  return element + " cannot be read";
}

}  // namespace

ReadFailure LookupTrace::failure(const Tree& tree) const {
  if (tree.empty() || step_ == Step::None) return {};
  const std::string element = "element " + std::string(tree.name(node_));
  ReadFailure failure{{}, tree.line(node_), 0};
  if (!found_) {
    failure.sentence = sentence_of_miss(step_, element, name_);
  } else if (value_ != nullptr) {
    failure.sentence =
        element + " cannot be read: its attribute " + name_ + " is " + quoted(value_);
  } else {
    failure.sentence = element + " holds something that cannot be read";
  }
  return failure;
}

}  // namespace hierfit::xml
