// What the environment says about language and display.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace hierfit::app {

/// The language tag of LC_ALL, LC_MESSAGES or LANG, whichever is set first: "de_DE.UTF-8" is
/// "de-DE". English when none is set or they ask for no language ("C", "POSIX").
std::string language_of_environment();

/// Whether to use colour on a stream, from the option ("auto", "always", "never"): with "auto" only
/// on a terminal, and not when NO_COLOR is set and not empty or TERM is "dumb".
bool uses_colour(std::string_view option, int descriptor);

/// The columns of the terminal on a stream; 80 when it is none.
size_t display_width(int descriptor);

}  // namespace hierfit::app
