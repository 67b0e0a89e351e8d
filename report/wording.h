// The report's own short texts: patterns with numbers in them, and note marks.
#pragma once

#include <concepts>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace hierfit::report {

/// A stretch of a pattern, and the number of the hole behind it: 1 for "^1", 0 at its end.
struct PatternPiece {
  std::string_view text;
  size_t hole = 0;
};

/// The pieces of a pattern, whose holes are "^1" to "^9".
std::vector<PatternPiece> pieces_of(std::string_view pattern);

/// `pattern` with each "^1" replaced by the first argument, and so on. A hole that has no argument
/// stays.
std::string filled(std::string_view pattern, const std::vector<std::string>& arguments);
template <std::convertible_to<std::string_view>... Arguments>
std::string filled(std::string_view pattern, const Arguments&... arguments) {
  return filled(pattern, std::vector<std::string>{std::string(arguments)...});
}

/// The letters of a note's number, from 0: "a" ... "z", "aa", "ab", ...
std::string mark_letters(uint32_t number);

/// The same letters raised, as characters, for forms without type; "^q", which Unicode lacks.
std::string raised_letters(uint32_t number);

/// Several of them in a line, "a,b"; empty for none.
std::string mark_letters(const std::vector<uint32_t>& numbers);
std::string raised_letters(const std::vector<uint32_t>& numbers);

}  // namespace hierfit::report
