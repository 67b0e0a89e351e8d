// Walks the elements of an XML document without keeping them.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace hierfit::fit {

/// An element that is open, by its local name.
struct OpenElement {
  std::string name;
  std::vector<std::pair<std::string, std::string>> attributes;

  /// The value of an attribute, or null.
  const std::string* attribute(std::string_view wanted) const;
};

/// What a walk meets, with the line and the column of it.
struct XmlVisitor {
  /// An element that begins; it is the last of those that are open.
  std::function<void(const std::vector<OpenElement>& open, size_t line, size_t column)> start;
  /// The text of an element without children, as it ends.
  std::function<void(
      const std::vector<OpenElement>& open, std::string_view text, size_t line, size_t column)>
      text;
  std::string_view text_of;  ///< the only element whose text is wanted
};

/// False when the text is no well-formed XML; what comes before the fault has been visited.
bool walk_xml(std::string_view document, const XmlVisitor& visitor);

}  // namespace hierfit::fit
