// Appends HTML to a text. The one place where text becomes markup.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "output/document.h"

namespace hierfit::report::html {

/// Text for element content and for attributes in double quotes. Control characters, which HTML
/// does not allow, become U+FFFD; line feeds and tabs stay.
void append_escaped(std::string& out, std::string_view text);

/// A text with its lines divided by `<br>` and its numbers in `style`; a symbol in italics.
void append_text(std::string& out, const output::Text& text, const output::NumberStyle& style);

void append_number(std::string& out, uint32_t number);

/// A finite double in the fewest digits that read back as itself.
void append_double(std::string& out, double value);

/// An attribute that says how many columns or rows a cell covers; nothing for one.
void append_span(std::string& out, std::string_view attribute, uint32_t span);

}  // namespace hierfit::report::html
