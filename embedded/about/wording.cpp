#include "embedded/about/wording.h"

#include "embedded/strings/cut_text.h"

namespace hierfit::about {

std::string Wording::label_of(std::string_view field) const {
  const Variable* variable = dictionary.find(field);
  const char* label = variable == nullptr ? nullptr : variable->GetLabel();
  return label == nullptr ? std::string(field) : label;
}

output::Text Wording::text(std::string_view key, std::span<const PatternArgument> arguments) const {
  return fill_pattern(strings.text(key), arguments);
}

output::Text plain(std::string_view text) {
  std::string shown(text);
  cut_text(shown, kLongestLabel);
  return {std::move(shown), {}};
}

}  // namespace hierfit::about
