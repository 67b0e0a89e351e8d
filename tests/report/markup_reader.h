// What a text in XML holds, and a package of such texts.
#pragma once

#include <cstddef>
#include <set>
#include <string>

namespace hierfit::test {

/// Gathered from the tree of a text. Reading throws where the text is not well-formed.
struct Markup {
  std::multiset<std::string> tags;
  std::multiset<std::string> ids;
  size_t unnamed = 0;  ///< elements that the keyboard reaches and that have no name
  size_t reachable = 0;
  bool styled = false;
};

Markup markup_of(const std::string& text);

/// A part of a package; empty when there is none of that name.
std::string part(const std::string& package, const std::string& name);

}  // namespace hierfit::test
