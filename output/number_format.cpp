#include "output/number_format.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace hierfit::output {
namespace {

constexpr std::array<std::string_view, kFormats> kNames = {
    "Coefficient", "CoefficientSE", "Count",    "GeneralStat",
    "Percent",     "Significance",  "SigDigit", "Fixed",
};

/// Ten digits ahead of the decimal mark are the most that a column takes.
constexpr double kWidestFixed = 9999999999.5;
constexpr int kScientificDecimals = 3;
constexpr int kSigDigits = 10;

/// Digits of a finite number that is not negative. Large enough for 1e10 with 255 decimals.
class Digits {
 public:
  Digits(double magnitude, std::chars_format form, int precision) {
    const auto [end, error] =
        std::to_chars(buffer_.data(), buffer_.data() + buffer_.size(), magnitude, form, precision);
    length_ = error == std::errc() ? static_cast<size_t>(end - buffer_.data()) : 0;
  }
  /// As few digits as read back as the same number, in fixed form.
  explicit Digits(double magnitude) {
    const auto [end, error] = std::to_chars(buffer_.data(), buffer_.data() + buffer_.size(),
                                            magnitude, std::chars_format::fixed);
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

int decimals_of(const Number& number, const NumberStyle& style) {
  if (number.format == Format::Fixed) return number.decimals;
  return style.decimals[static_cast<size_t>(number.format)];
}

void append_magnitude(std::string& out,
                      double magnitude,
                      const Number& number,
                      const NumberStyle& style) {
  if (magnitude >= kWidestFixed) return append_scientific(out, magnitude, style);
  if (number.format == Format::SigDigit) return append_needed_digits(out, magnitude, style);
  const Digits digits(magnitude, std::chars_format::fixed, decimals_of(number, style));
  if (magnitude != 0 && is_zero(digits.view())) return append_scientific(out, magnitude, style);
  append_with_mark(out, digits.view(), style);
}

/// A probability; what else carries the format shows as a statistic.
bool is_significance(const Number& number) {
  return number.format == Format::Significance && number.value >= 0 && number.value <= 1;
}

void append_probability(std::string& out, std::string_view digits, const NumberStyle& style) {
  const bool drops_zero = !style.significance_zero && digits.starts_with("0.");
  append_with_mark(out, digits.substr(drops_zero ? 1 : 0), style);
}

/// A significance beyond what the style tells apart: the bound, in the digits that it needs.
void append_bound(std::string& out,
                  const std::string& relation,
                  double bound,
                  const NumberStyle& style) {
  out += relation;
  append_probability(out, Digits(bound).view(), style);
}

void append_significance(std::string& out, double value, const NumberStyle& style) {
  const auto* step = std::ranges::find_if(
      style.significance, [&](const SignificanceStep& each) { return value >= each.from; });
  if (step == style.significance.end()) {
    append_bound(out, style.less_than, style.significance.back().from, style);
  } else if (value > style.largest_significance) {
    append_bound(out, style.more_than, style.largest_significance, style);
  } else {
    const Digits digits(value, std::chars_format::fixed, step->decimals);
    append_probability(out, digits.view(), style);
  }
}

}  // namespace

std::string_view format_name(Format format) { return kNames[static_cast<size_t>(format)]; }

void append_shown(std::string& out, const Number& number, const NumberStyle& style) {
  if (number.missing()) {
    out += style.missing;
  } else if (is_significance(number)) {
    append_significance(out, number.value, style);
  } else {
    if (number.value < 0) out += style.minus;
    append_magnitude(out, std::fabs(number.value), number, style);
    if (number.format == Format::Percent) out += style.percent;
  }
}

std::string shown(const Number& number, const NumberStyle& style) {
  std::string text;
  append_shown(text, number, style);
  return text;
}

}  // namespace hierfit::output
