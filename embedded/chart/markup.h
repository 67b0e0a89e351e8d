// A small XML tree that can be changed and written again.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace hierfit::chart {

struct Element;
/// What an element holds: texts and elements.
using Content = std::variant<std::string, std::unique_ptr<Element>>;

/// An element. Names are as they stand, with their prefix. Texts are resolved.
struct Element {
  std::string name;
  std::vector<std::pair<std::string, std::string>> attributes;
  std::vector<Content> content;
  bool self_closing = false;  ///< how it is written when it holds nothing
  size_t end_tag = 0;  ///< byte offset of its end tag in the text it was read from; 0 without one

  /// The value, or null.
  const std::string* attribute(std::string_view attribute_name) const;
  /// The value, or the empty text.
  std::string_view value(std::string_view attribute_name) const;
  void set(std::string_view attribute_name, std::string value);
  void remove(std::string_view attribute_name);

  /// The first child of that name, or null.
  Element* child(std::string_view child_name);
  std::vector<Element*> children(std::string_view child_name);
  Element& add(std::string child_name);
  void remove_children(std::string_view child_name);

  /// Its text with that of its children; a `BR` is a line feed.
  std::string text() const;
  /// A line feed becomes a `BR`.
  void set_text(std::string_view text);
};

/// Every element of the tree from the root down, in document order.
std::vector<Element*> elements_of(Element& root);

/// Reads a document. Throws `DocumentError` with the place when the text is not well-formed, nests
/// deeper than 512, or declares a document type. `name` is for that message. Comments and
/// processing instructions go.
std::unique_ptr<Element> parse_markup(std::string_view text, const std::string& name);

/// Appends an element and what it holds.
void append_markup(std::string& out, const Element& element);

/// The whole document, with its declaration.
std::string markup_of(const Element& root);

}  // namespace hierfit::chart
