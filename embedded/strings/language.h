// What a language tag says beyond the words.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "output/number_format.h"

namespace hierfit {

/// Whether the language is written from right to left.
bool is_right_to_left(std::string_view tag);

/// The marks of the language's numbers.
output::NumberStyle number_style(std::string_view tag);

/// A tag in the case and with the hyphens of BCP 47: "pt_br" is "pt-BR", "ZH-hans" is "zh-Hans".
/// "C" stays "C".
std::string canonical_tag(std::string_view text);

/// The tags whose catalogues serve a language, the best one first: "pt-BR", "pt". Chinese without a
/// script is in that of its region: "zh-CN", "zh-Hans", "zh".
std::vector<std::string> serving_tags(std::string_view tag);

}  // namespace hierfit
