#include "embedded/output/number_format.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace hierfit::output {
namespace {

struct FormatRule {
  std::string_view name;
  int decimals;
};

constexpr std::array<FormatRule, kFormats> kRules = {{
    {"Coefficient", 3},
    {"CoefficientSE", 3},
    {"Count", 0},
    {"GeneralStat", 3},
    {"Percent", 1},
    {"Significance", 3},
    {"SigDigit", -1},
    {"Fixed", -1},
}};

/// Ten digits ahead of the decimal mark are the most that a column takes.
constexpr double kWidestFixed = 9999999999.5;
constexpr int kScientificDecimals = 3;
constexpr int kSigDigits = 10;
constexpr double kSmallestShownSignificance = 0.001;

const FormatRule& rule_of(Format format) { return kRules[static_cast<size_t>(format)]; }

/// Digits of a finite number that is not negative. Large enough for 1e10 with 255 decimals.
class Digits {
 public:
  Digits(double magnitude, std::chars_format form, int precision) {
    const auto [end, error] =
        std::to_chars(buffer_.data(), buffer_.data() + buffer_.size(), magnitude, form, precision);
    length_ = error == std::errc() ? static_cast<size_t>(end - buffer_.data()) : 0;
  }
  std::string_view view() const { return {buffer_.data(), length_}; }

 private:
  std::array<char, 320> buffer_;
  size_t length_ = 0;
};

bool is_zero(std::string_view digits) {
  return std::ranges::none_of(digits, [](char c) { return c >= '1' && c <= '9'; });
}

void append_with_mark(std::string& out, std::string_view digits, const NumberStyle& style) {
  const size_t point = digits.find('.');
  out += digits.substr(0, point);
  if (point == std::string_view::npos) return;
  out += style.decimal_mark;
  out += digits.substr(point + 1);
}

/// "1.234E-5": to_chars gives an exponent of two digits or more, of which a leading 0 goes.
void append_scientific(std::string& out, double magnitude, const NumberStyle& style) {
  const Digits digits(magnitude, std::chars_format::scientific, kScientificDecimals);
  const std::string_view text = digits.view();
  const size_t mark = text.find('e');
  append_with_mark(out, text.substr(0, mark), style);
  out += 'E';
  if (text[mark + 1] == '-') out += style.minus;
  std::string_view exponent = text.substr(mark + 2);
  while (exponent.size() > 1 && exponent.front() == '0')
    exponent.remove_prefix(1);
  out += exponent;
}

/// Ten significant digits without the zeros behind the last that counts.
void append_needed_digits(std::string& out, double magnitude, const NumberStyle& style) {
  const int whole = magnitude < 1 ? 0 : static_cast<int>(std::floor(std::log10(magnitude))) + 1;
  const Digits digits(magnitude, std::chars_format::fixed, std::max(0, kSigDigits - whole));
  std::string_view text = digits.view();
  if (magnitude != 0 && is_zero(text)) return append_scientific(out, magnitude, style);
  if (text.find('.') != std::string_view::npos) {
    while (text.back() == '0')
      text.remove_suffix(1);
    if (text.back() == '.') text.remove_suffix(1);
  }
  append_with_mark(out, text, style);
}

void append_magnitude(std::string& out,
                      double magnitude,
                      const Number& number,
                      const NumberStyle& style) {
  if (magnitude >= kWidestFixed) return append_scientific(out, magnitude, style);
  if (number.format == Format::SigDigit) return append_needed_digits(out, magnitude, style);
  const int decimals =
      number.format == Format::Fixed ? number.decimals : rule_of(number.format).decimals;
  const Digits digits(magnitude, std::chars_format::fixed, decimals);
  if (magnitude != 0 && is_zero(digits.view())) return append_scientific(out, magnitude, style);
  append_with_mark(out, digits.view(), style);
}

bool too_small_a_significance(const Number& number) {
  return number.format == Format::Significance && number.value >= 0 &&
         number.value < kSmallestShownSignificance;
}

}  // namespace

std::string_view format_name(Format format) { return rule_of(format).name; }

void append_shown(std::string& out, const Number& number, const NumberStyle& style) {
  if (number.missing()) {
    out += style.missing;
  } else if (too_small_a_significance(number)) {
    out += '<';
    append_magnitude(out, kSmallestShownSignificance, number, style);
  } else {
    if (number.value < 0) out += style.minus;
    append_magnitude(out, std::fabs(number.value), number, style);
    if (number.format == Format::Percent) out += '%';
  }
}

std::string shown(const Number& number, const NumberStyle& style) {
  std::string text;
  append_shown(text, number, style);
  return text;
}

}  // namespace hierfit::output
