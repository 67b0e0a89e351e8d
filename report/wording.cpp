// The report's own short texts.
#include "report/wording.h"

#include <array>

namespace hierfit::report {

namespace {

/// The raised letters, as far as Unicode has them.
constexpr std::array<std::string_view, 26> kRaised = {"ᵃ", "ᵇ", "ᶜ", "ᵈ", "ᵉ", "ᶠ", "ᵍ", "ʰ",  "ⁱ",
                                                      "ʲ", "ᵏ", "ˡ", "ᵐ", "ⁿ", "ᵒ", "ᵖ", "^q", "ʳ",
                                                      "ˢ", "ᵗ", "ᵘ", "ᵛ", "ʷ", "ˣ", "ʸ", "ᶻ"};

template <class Letters>
std::string joined(const std::vector<uint32_t>& numbers, std::string_view comma, Letters letters) {
  std::string text;
  for (const uint32_t number : numbers) {
    if (!text.empty()) text += comma;
    text += letters(number);
  }
  return text;
}

}  // namespace

std::string filled(std::string_view pattern, std::string_view argument) {
  std::string text;
  size_t at = 0;
  for (size_t hole; (hole = pattern.find("^1", at)) != std::string_view::npos; at = hole + 2) {
    text.append(pattern.substr(at, hole - at)).append(argument);
  }
  return text.append(pattern.substr(at));
}

std::string mark_letters(uint32_t number) {
  std::string letters;
  for (uint64_t rest = uint64_t{number} + 1; rest > 0; rest = (rest - 1) / 26) {
    letters.insert(letters.begin(), static_cast<char>('a' + (rest - 1) % 26));
  }
  return letters;
}

std::string raised_letters(uint32_t number) {
  std::string raised;
  for (const char letter : mark_letters(number))
    raised += kRaised[static_cast<size_t>(letter - 'a')];
  return raised;
}

std::string mark_letters(const std::vector<uint32_t>& numbers) {
  return joined(numbers, ",", [](uint32_t number) { return mark_letters(number); });
}

std::string raised_letters(const std::vector<uint32_t>& numbers) {
  constexpr std::string_view kRaisedComma = "\u02D2";
  return joined(numbers, kRaisedComma, [](uint32_t number) { return raised_letters(number); });
}

}  // namespace hierfit::report
