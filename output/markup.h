// A document of marked up text as a tree that can be changed and written.
#pragma once

#include <cstddef>
#include <list>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace hierfit::output {

struct Content;

/// An element. Names are as they stand, with their prefix. Texts are resolved. A copy is a tree of
/// its own; what is added to an element moves none of those that it holds.
struct Element {
  std::string name;
  std::vector<std::pair<std::string, std::string>> attributes;
  std::list<Content> content;
  bool self_closing = false;  ///< how it is written when it holds nothing
  size_t end_tag = 0;  ///< byte offset of its end tag in the text it was read from; 0 without one

  /// The value, or null.
  const std::string* attribute(std::string_view attribute_name) const;
  /// The value, or the empty text.
  std::string_view value(std::string_view attribute_name) const;
  void set(std::string_view attribute_name, std::string value);
  void remove(std::string_view attribute_name);

  /// The first child of that name, or null.
  const Element* child(std::string_view child_name) const;
  Element* child(std::string_view child_name);
  /// The children that are elements; those of a name.
  std::vector<const Element*> children() const;
  std::vector<Element*> children(std::string_view child_name);
  Element& add(std::string child_name);
  void remove_children(std::string_view child_name);

  /// Its text with that of its children; a `BR` is a line feed.
  std::string text() const;
  /// A line feed becomes a `BR`.
  void set_text(std::string_view text);
};

/// What an element holds: a text, or an element.
struct Content : std::variant<std::string, Element> {
  using variant::variant;

  /// Null for a text.
  Element* element() { return std::get_if<Element>(this); }
  const Element* element() const { return std::get_if<Element>(this); }
};

/// Every element of the tree from the root down, in document order.
std::vector<Element*> elements_of(Element& root);

/// Appends an element and what it holds.
void append_markup(std::string& out, const Element& element);

/// The whole document, with its declaration.
std::string markup_of(const Element& root);

}  // namespace hierfit::output
