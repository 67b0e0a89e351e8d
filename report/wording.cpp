// The report's own short texts.
#include "report/wording.h"

#include <array>

#include "report/append.h"

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

std::vector<PatternPiece> pieces_of(std::string_view pattern) {
  std::vector<PatternPiece> pieces;
  size_t begin = 0;
  for (size_t at = 0; at + 1 < pattern.size(); ++at) {
    const char digit = pattern[at + 1];
    if (pattern[at] != '^' || digit < '1' || digit > '9') continue;
    pieces.push_back({pattern.substr(begin, at - begin), static_cast<size_t>(digit - '0')});
    begin = ++at + 1;
  }
  pieces.push_back({pattern.substr(begin)});
  return pieces;
}

std::string filled(std::string_view pattern, const std::vector<std::string>& arguments) {
  std::string text;
  for (const auto& [words, hole] : pieces_of(pattern)) {
    text += words;
    if (hole == 0) continue;
    if (hole <= arguments.size()) {
      text += arguments[hole - 1];
    } else {
      append(text, '^', hole);
    }
  }
  return text;
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
