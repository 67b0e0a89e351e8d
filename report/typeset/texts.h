// Texts as a reader sees them: their numbers in the style of the report, and nothing in them that
// steers what they are shown on.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "output/document.h"

namespace hierfit::report {

/// The text with nothing in it that files of markup refuse: what is no UTF-8, control characters
/// but line feeds, and what is no character become U+FFFD; tabs become blanks.
std::string clean(std::string_view text);

/// The text with its numbers written in `style`; its line feeds stay.
std::string restyled(const output::Text& text, const output::NumberStyle& style);

/// The text in one line: its line feeds are blanks.
std::string one_line(std::string text);

/// What a form is shown on.
enum class Medium : uint8_t {
  Page,      ///< numbers have a true minus, U+2212
  Terminal,  ///< numbers are as the document has them; marks that reorder what follows them go
};

/// The texts of a document for a form. They are clean; their line feeds stay.
class Texts {
 public:
  explicit Texts(const output::Document& document, Medium medium = Medium::Page);

  /// How numbers are written.
  const output::NumberStyle& numbers() const { return numbers_; }
  std::string shown(const output::Text& text) const;
  std::string shown(std::string_view text) const;

 private:
  Medium medium_;
  output::NumberStyle numbers_;
};

}  // namespace hierfit::report
