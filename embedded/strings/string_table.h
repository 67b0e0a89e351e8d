// The wording of the string table's keys in one language.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "embedded/strings/language.h"

namespace hierfit {

/// One language's catalogue, read once. Tables do not touch each other; one is used by one thread.
class StringTable {
 public:
  /// An empty table: each key stands for itself.
  StringTable();
  /// Reads one catalogue file; a file that does not exist gives an empty table.
  explicit StringTable(const std::string& file);
  /// Reads `<directory>/<tag>.mo` of the first of the tags that serve the language and have a file:
  /// "pt-BR", then "pt". "C", and a language without a file, give an empty
  /// table. Throws `FileError` for a file that is no catalogue.
  StringTable(const std::string& directory, std::string_view language);
  ~StringTable();
  StringTable(StringTable&&) noexcept;
  StringTable& operator=(StringTable&&) noexcept;

  /// The key's text as the catalogue has it, with its places unfilled; the key itself when the
  /// catalogue does not hold it. Valid as long as both the table and the key's characters.
  std::string_view text(std::string_view key) const;
  /// Whether the catalogue holds the key.
  bool holds(std::string_view key) const;
  /// The marks that the catalogue states for the language.
  const LanguageMarks& marks() const;
  /// The tag of the catalogue that is in use: "pt" when "pt-BR" was asked for and only "pt" is
  /// there; "C" for an empty table.
  const std::string& language() const;

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace hierfit
