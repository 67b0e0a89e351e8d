// Texts of the string table with arguments, as the facts and messages about a result are made of.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "embedded/dictionary/data_dictionary.h"
#include "embedded/strings/pattern.h"
#include "embedded/strings/string_table.h"
#include "output/document.h"

namespace hierfit::about {

/// Words texts for one report.
struct Wording {
  const StringTable& strings;
  const DataDictionary& dictionary;

  /// What a field is called: its label, else its name.
  std::string label_of(std::string_view field) const;
  /// The text of a key with its places filled.
  output::Text text(std::string_view key, std::span<const PatternArgument> arguments = {}) const;
  template <class... Arguments>
  output::Text filled(std::string_view key, Arguments... arguments) const {
    const PatternArgument list[] = {PatternArgument(std::move(arguments))...};
    return text(key, list);
  }
};

/// A text as it stands, cut where no reader would read on.
output::Text plain(std::string_view text);

}  // namespace hierfit::about
