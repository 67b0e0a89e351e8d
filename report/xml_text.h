// Text as markup, in XML and in HTML.
#pragma once

#include <string>
#include <string_view>

namespace hierfit::report {

/// Text for element content and for attributes in double quotes. Control characters, which markup
/// does not allow, and what is never a character become U+FFFD; line feeds and tabs stay.
void append_escaped(std::string& out, std::string_view text);

}  // namespace hierfit::report
