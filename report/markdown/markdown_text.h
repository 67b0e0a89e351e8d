// Text as Markdown. The one place where it becomes that.
#pragma once

#include <string>
#include <string_view>

namespace hierfit::report::markdown {

/// Text in a line of its own or a cell: whatever GitHub and pandoc would take for markup is
/// escaped, also what pandoc would set as other quotation marks, dashes or dots; line feeds become
/// blanks.
std::string escaped(std::string_view text);

/// The same for a paragraph: its line feeds stay, as line breaks.
std::string escaped_lines(std::string_view text);

}  // namespace hierfit::report::markdown
