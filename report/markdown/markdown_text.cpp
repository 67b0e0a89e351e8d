#include "report/markdown/markdown_text.h"

#include <algorithm>

#include "report/text/display_text.h"
#include "report/typeset/texts.h"

namespace hierfit::report::markdown {

namespace {

/// Markup wherever it stands; "@" names people or sources, "$" is mathematics.
constexpr std::string_view kMarkup = "\\`*_{}[]<>|~^$@\"'";
/// Markup where it is doubled, or at the start of a line.
constexpr std::string_view kMarkupInRuns = "-.+=#";

bool is_digit(char c) { return c >= '0' && c <= '9'; }

/// Whether a character is markup where it stands. `starts`: nothing but digits and blanks is ahead
/// of it in its line.
bool is_markup(char before, char c, char behind, bool starts) {
  if (kMarkup.find(c) != std::string_view::npos) return true;
  // "&amp;", ":smile:", and "1.", which begins a list.
  const bool ends = behind == ' ' || behind == '\n';
  if (c == '&' || c == ':') return !ends;
  if (starts && is_digit(before) && (c == '.' || c == ')')) return ends;
  return kMarkupInRuns.find(c) != std::string_view::npos && (starts || c == before || c == behind);
}

std::string with_breaks(std::string_view text, std::string_view line_break) {
  const std::string plain = clean(text::printable(text));
  std::string written;
  written.reserve(plain.size() + plain.size() / 8);
  bool starts = true;
  for (size_t at = 0; at < plain.size(); ++at) {
    const char c = plain[at];
    if (c == '\n') {
      written += line_break;
      starts = true;
      continue;
    }
    const char before = at == 0 ? '\n' : plain[at - 1];
    const char behind = at + 1 == plain.size() ? '\n' : plain[at + 1];
    if (is_markup(before, c, behind, starts)) written += '\\';
    written += c;
    starts = starts && (c == ' ' || is_digit(c));
  }
  return written;
}

}  // namespace

std::string escaped(std::string_view text) { return with_breaks(text, " "); }

std::string escaped_lines(std::string_view text) { return with_breaks(text, "\\\n"); }

}  // namespace hierfit::report::markdown
