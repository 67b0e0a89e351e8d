// Text measured and wrapped in the columns of a terminal.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace hierfit::report::text {

/// The columns that a line takes: 2 for a wide character, 0 for a combining one.
size_t display_width(std::string_view line);

/// The text made safe for a terminal: control characters become U+FFFD, tabs blanks, and marks that
/// reorder what follows them go. Line feeds stay.
std::string printable(std::string_view text);

/// The lines of a printable text, each at most `width` columns (at least 2): broken at its line
/// feeds, else at blanks, else inside a word: where it may be divided (around wide characters, in
/// front of a bracket, behind one of "*/=;|+&", and behind "," and ":" outside numbers), or else
/// anywhere but ahead of a combining character. One empty line for an empty text.
std::vector<std::string> wrapped(std::string_view text, size_t width);

/// The width of the longest word, of the longest part of a word that it may be divided into, or of
/// the longest line.
size_t longest_word(std::string_view text);
size_t longest_piece(std::string_view text);
size_t longest_line(std::string_view text);

}  // namespace hierfit::report::text
