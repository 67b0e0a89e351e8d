// Numbers as texts, the same in every locale.
#pragma once

#include <cmath>
#include <optional>
#include <string>
#include <string_view>

namespace hierfit::fit {

/// The shortest text that reads back to the same number; empty for one that does not exist.
std::string number_text(double number);
/// Appends it.
void append_number(std::string& out, double number);
/// The number that the whole text is, as the result documents write numbers: a sign, digits with at
/// most one ".", an exponent.
std::optional<double> parse_number(std::string_view text);

}  // namespace hierfit::fit
