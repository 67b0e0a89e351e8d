// What the environment says about language and display.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace hierfit::app {

/// Has something take the place of each standard stream that is closed, so that no file that is
/// opened later gets its descriptor and, with it, what is meant for the stream. Whoever reads or
/// writes the stream still fails.
void occupy_closed_streams() noexcept;

/// Has libraries make their temporary files in memory when the usual folder takes none.
void choose_temporary_folder();

/// The language tag of LC_ALL, LC_MESSAGES or LANG, whichever is set first: "de_DE.UTF-8" is
/// "de-DE". English when none is set or they ask for no language ("C", "POSIX") or for one with a
/// tag beyond all measure.
std::string language_of_environment();

/// The longest language tag that is looked at; the registered ones have at most 35 characters.
inline constexpr size_t kLongestTag = 64;

/// Whether to use colour on a stream, from the option ("auto", "always", "never"): with "auto" only
/// on a terminal, and not when NO_COLOR is set and not empty or TERM is "dumb".
bool uses_colour(std::string_view option, int descriptor);

/// The columns of the terminal on a stream; 80 when it is none.
size_t display_width(int descriptor);

}  // namespace hierfit::app
