// A reader of well-formed XML: elements, attributes and text.
#pragma once

#include <deque>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tiny {

/// An element of a document. Names are without their prefixes.
struct Element {
  std::string name;
  std::map<std::string, std::string, std::less<>> attributes;
  std::string text;
  std::vector<const Element*> children;

  /// The attribute's value; empty when it is absent.
  std::string value(std::string_view attribute) const;
  /// All elements that the "/"-separated path reaches, in document order.
  std::vector<const Element*> find(std::string_view path) const;
};

/// All elements of a document, the root first.
using Document = std::deque<Element>;

/// Nothing when the text is not well-formed, as far as this reader looks. It knows the predefined
/// entities, and no character references, CDATA sections or document types.
std::optional<Document> parse(std::string_view text);

}  // namespace tiny
