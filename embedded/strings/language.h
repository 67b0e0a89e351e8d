// What a language's tag and the header of its catalogue say beyond the words.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "output/number_format.h"

namespace hierfit {

/// How a language writes.
struct LanguageMarks {
  output::NumberStyle numbers;
  bool right_to_left = false;
};

/// The marks that a catalogue's header states, for the language of a tag: some regions write a
/// point where their language has a comma. What the header lacks is as in English.
LanguageMarks marks_of(std::string_view header, std::string_view tag);

/// A tag in the case and with the hyphens of BCP 47: "pt_br" is "pt-BR", "ZH-hans" is "zh-Hans".
/// "C" stays "C".
std::string canonical_tag(std::string_view text);

/// The tags whose catalogues serve a language, the best one first: "pt-BR", "pt". Chinese without a
/// script is in that of its region: "zh-CN", "zh-Hans", "zh".
std::vector<std::string> serving_tags(std::string_view tag);

}  // namespace hierfit
