// Numbers as the documents write them, the same in every locale.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace hierfit {

/// Whether the whole text is a number: an optional sign, digits with at most one ".", and an
/// optional exponent.
bool is_number(std::string_view text);
/// The number that the whole text is; none when it is no number or is beyond the range of a double.
/// One that is too small for a double is 0.
std::optional<double> parse_number(std::string_view text);
/// The number in fixed notation; a 0 never has a sign.
std::string fixed_text(double number, int decimals);
/// The shortest text that reads back to the same number.
std::string shortest_text(double number);

}  // namespace hierfit
