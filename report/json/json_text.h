// Appends JSON tokens to a text.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace hierfit::report::json {

/// A string with its quotes; control characters are escaped.
void append_string(std::string& out, std::string_view text);

/// A finite double in the fewest digits that read back as itself.
void append_double(std::string& out, double value);

void append_integer(std::string& out, int64_t value);

}  // namespace hierfit::report::json
