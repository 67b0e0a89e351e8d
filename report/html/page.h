// What every page has: its head, its title and the switch for the theme, and its end.
#pragma once

#include <string>
#include <string_view>

#include "output/document.h"

namespace hierfit::report::html {

/// An attribute with its value, after a blank.
void append_attribute(std::string& out, std::string_view name, std::string_view value);

/// From the document type to the masthead. The page lets nothing in but its own style sheet and
/// script.
void append_page_begin(std::string& out,
                       const output::Document& document,
                       std::string_view title,
                       std::string_view theme);

/// The script, and the end.
void append_page_end(std::string& out);

}  // namespace hierfit::report::html
