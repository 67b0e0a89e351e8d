// What a language tag says beyond the words.
#pragma once

#include <string>
#include <string_view>

#include "embedded/output/number_format.h"

namespace hierfit {

/// Whether the language is written from right to left.
bool is_right_to_left(std::string_view tag);

/// The marks of the language's numbers.
output::NumberStyle number_style(std::string_view tag);

}  // namespace hierfit
