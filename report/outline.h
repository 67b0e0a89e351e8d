// What a document holds, in one line: its sections, tables, charts and messages with their numbers.
#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "output/document.h"

namespace hierfit::report {

/// A part of a document, in its place.
struct Entry {
  using Content = std::variant<const output::Section*,
                               const output::Table*,
                               const output::Chart*,
                               const output::Message*>;
  Content content;
  uint32_t level = 1;   ///< how many sections it lies in, and one
  uint32_t number = 0;  ///< among those of its kind, from 1

  template <class Type>
  const Type* as() const {
    const auto* found = std::get_if<const Type*>(&content);
    return found == nullptr ? nullptr : *found;
  }
};

/// The parts of a document in order; a section stands ahead of what lies in it.
std::vector<Entry> outline(const output::Document& document);

/// "Table 3" or "Figure 3" in the language of the document; empty for other parts.
std::string numbered(const Entry& entry, const output::Document& document);

/// What a part is called. Empty for messages.
output::Text title_of(const Entry& entry);

/// The word ahead of a message, "Warning:".
std::string_view severity_word(output::Severity severity, const output::Document& document);

/// The title of the report, or a word in its place.
std::string report_title(const output::Document& document);

/// The text with nothing in it that files of markup refuse: what is no UTF-8, control characters
/// but line feeds, and what is no character become U+FFFD; tabs become blanks.
std::string clean(std::string_view text);

}  // namespace hierfit::report
