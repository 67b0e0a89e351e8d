// The conversions of text that the framework offers.
#include <array>
#include <charconv>
#include <limits>

#include "host/framework.h"

#include "embedded/framework/number_text.h"
#include "output/number_format.h"

namespace {

struct RomanDigit {
  std::string_view text;
  int32_t value;
};

constexpr RomanDigit kRomanDigits[] = {
    {"M", 1000}, {"CM", 900}, {"D", 500}, {"CD", 400}, {"C", 100}, {"XC", 90}, {"L", 50},
    {"XL", 40},  {"X", 10},   {"IX", 9},  {"V", 5},    {"IV", 4},  {"I", 1},
};
constexpr int32_t kLargestRoman = 3999;

std::string roman_text(int32_t number) {
  std::string text;
  for (const auto& [digit, value] : kRomanDigits) {
    for (; number >= value; number -= value) {
      text += digit;
    }
  }
  return text;
}

/// The sum of the digits, well-formed or not; 0 when something is no digit or the sum too large.
int32_t roman_sum(std::string_view text) {
  int32_t sum = 0;
  for (const auto& [digit, value] : kRomanDigits) {
    for (; text.starts_with(digit) && sum <= kLargestRoman; text.remove_prefix(digit.size())) {
      sum += value;
    }
  }
  return text.empty() && sum <= kLargestRoman ? sum : 0;
}

}  // namespace

double String2Double(const std::string& text) {
  return hierfit::parse_number(text).value_or(hierfit::output::kSystemMissing);
}

int32_t String2Integer(const std::string& text) {
  std::string_view digits = text;
  if (digits.starts_with('+')) {
    digits.remove_prefix(1);
    if (digits.starts_with('-')) return 0;
  }
  int32_t number = 0;
  const char* end = digits.data() + digits.size();
  const auto result = std::from_chars(digits.data(), end, number);
  return result.ec == std::errc() && result.ptr == end ? number : 0;
}

int32_t Roman2Integer(const std::string& text) {
  const int32_t number = roman_sum(text);
  return roman_text(number) == text ? number : 0;
}
