// Appends HTML to a text.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "report/typeset/texts.h"
#include "report/xml_text.h"

namespace hierfit::report::html {

using report::append_escaped;

/// A text with its lines divided by `<br>`; a symbol in italics.
void append_text(std::string& out, const output::Text& text, const Texts& texts);

/// The same for a label: a long term ("[species=x]*[site=y]") may be divided behind its signs.
void append_label(std::string& out, const output::Text& text, const Texts& texts);

/// A message, a paragraph of its severity.
void append_message(std::string& out,
                    const output::Message& message,
                    const output::Document& document,
                    const Texts& texts);

void append_number(std::string& out, uint32_t number);

/// A finite double in the fewest digits that read back as itself.
void append_double(std::string& out, double value);

/// An attribute that says how many columns or rows a cell covers; nothing for one.
void append_span(std::string& out, std::string_view attribute, uint32_t span);

}  // namespace hierfit::report::html
