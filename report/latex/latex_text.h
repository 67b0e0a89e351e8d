// Text as LaTeX. The one place where it becomes that.
#pragma once

#include <set>
#include <string>
#include <string_view>

namespace hierfit::report::latex {

/// Writes texts, and keeps count of the characters that an engine of eight bits may not have.
class TextWriter {
 public:
  /// Text in which no character is a command, also at the start of a row of a table. Signs and
  /// Greek letters become mathematics; line feeds become `line_break`.
  std::string escaped(std::string_view text, std::string_view line_break = " ");

  /// For the preamble: declares the characters written so far for engines of eight bits, each as an
  /// empty box where LaTeX itself knows none. Empty when there are none.
  std::string declarations() const;

 private:
  std::set<char32_t> others_;
};

}  // namespace hierfit::report::latex
