// Appends JSON tokens to a text.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace hierfit::report::json {

/// A string with its quotes; control characters are escaped.
void append_string(std::string& out, std::string_view text);

/// A double in the fewest digits that read back as itself; "Infinity", "-Infinity" and "NaN" as
/// strings, since JSON has no such numbers.
void append_double(std::string& out, double value);

void append_integer(std::string& out, int64_t value);

}  // namespace hierfit::report::json
