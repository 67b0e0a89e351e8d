// Short forms of the look-ups of the XML wrapper.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

#include "host/framework.h"

/// The first element at a "/"-separated path below `parent`, or null when there is none.
inline SDOMXMLWrapper* FirstElement(SDOMXMLWrapper& parent, std::string_view path) {
  SDOMXMLWrapper* element = nullptr;
  return parent.GetFirstElement(path, &element, true) ? element : nullptr;
}

/// Reads the text of an attribute, which is empty when the attribute is absent; of itself, a host
/// may leave the text alone then. Gives whether the attribute is there.
inline bool ReadText(SDOMXMLWrapper& element, std::string_view name, std::string& text) {
  const bool isThere = element.GetAttribute(name, text);
  if (!isThere) text.clear();
  return isThere;
}

/// A walk over the children of this name, or null when there are none.
inline SDOMXMLIterator* Children(SDOMXMLWrapper& parent, std::string_view name) {
  SDOMXMLIterator* iterator = nullptr;
  return parent.GetElementIterator(name, &iterator, true) ? iterator : nullptr;
}

/// Steps a walk, which may be null, as one over no elements. A host that steps to no element breaks
/// off the read, as whatever is thrown does.
inline bool Step(SDOMXMLIterator* iterator, SDOMXMLWrapper*& element) {
  if (iterator == nullptr || !iterator->Next(&element)) return false;
  if (element == nullptr) throw std::logic_error("a step to no element");
  return true;
}
