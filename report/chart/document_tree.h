// The text of a chart document as a tree.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace hierfit::report::chart {

/// An element: `<BR/>` is a line feed of the text around it, and blanks at the ends of a text go.
struct Node {
  std::string name;
  std::vector<std::pair<std::string, std::string>> attributes;
  std::string text;
  std::vector<Node> children;

  /// The value of an attribute; empty when it is absent.
  std::string_view attribute(std::string_view wanted) const;
  /// The first child of that name, or null.
  const Node* child(std::string_view wanted) const;
};

/// Reads a text. The variables of its data are passed over: values and labels stand in
/// `output::Chart`. A text that is not well-formed, or is nested deeper than any chart document,
/// gives an element without a name.
Node parse_document(std::string_view text);

}  // namespace hierfit::report::chart
