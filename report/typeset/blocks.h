// What a document holds, in one line: what is said about the result, then its sections, tables,
// charts and messages, as every form numbers and names them.
#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "output/document.h"

namespace hierfit::report {

/// What is said about the result, or a section, table, chart or message of it, in its place.
struct Block {
  using Content = std::variant<const output::Section*,
                               const output::Table*,
                               const output::Chart*,
                               const output::Message*,
                               const output::About*>;
  Content content;
  uint32_t level = 1;         ///< how many sections it lies in, and one
  uint32_t number = 0;        ///< among those of its kind, from 1
  std::string_view prefix{};  ///< of its anchor

  /// The content, when it is of that type; else null.
  template <class Type>
  const Type* as() const {
    const auto* found = std::get_if<const Type*>(&content);
    return found == nullptr ? nullptr : *found;
  }
  bool is_section() const { return as<output::Section>() != nullptr; }
  bool is_about() const { return as<output::About>() != nullptr; }
  /// Whether contents lead to it: to all but messages.
  bool is_listed() const { return as<output::Message>() == nullptr; }
  /// A name for links, unique in the document: the prefix, "s", "t", "c", "m" or "a" for its kind,
  /// then its number.
  std::string anchor() const;
};

/// The blocks of a document in order; a section stands ahead of what lies in it. What is said about
/// the result is the first, with its messages behind it. The prefix of their anchors must outlive
/// them.
std::vector<Block> blocks_of(const output::Document& document, std::string_view prefix = {});

/// How many of a document's blocks are about the result: those that stand ahead of its contents.
size_t opening_blocks(const output::Document& document);

/// "Table 3" or "Figure 3" in the language of the document; empty for other blocks.
std::string numbered(const Block& block, const output::Document& document);

/// "Table 3 (continued)", over a further part of a table.
std::string continued(const Block& block, const output::Document& document);

/// What a block is called. Empty for messages.
output::Text title_of(const Block& block);

/// What a severity is called by programs, "warning", and the word ahead of a message, "Warning:".
std::string_view severity_name(output::Severity severity);
std::string_view severity_word(output::Severity severity, const output::Document& document);

/// The title of the report, or a word in its place.
std::string report_title(const output::Document& document);

}  // namespace hierfit::report
