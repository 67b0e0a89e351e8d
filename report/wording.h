// The report's own short texts: table numbers and note marks.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace hierfit::report {

/// `pattern` with each "^1" replaced by `argument`.
std::string filled(std::string_view pattern, std::string_view argument);

/// The letters of a note's number, from 0: "a" ... "z", "aa", "ab", ...
std::string mark_letters(uint32_t number);

/// The same letters raised, as characters, for forms without type; "^q", which Unicode lacks.
std::string raised_letters(uint32_t number);

/// Several of them in a line, "a,b"; empty for none.
std::string mark_letters(const std::vector<uint32_t>& numbers);
std::string raised_letters(const std::vector<uint32_t>& numbers);

}  // namespace hierfit::report
