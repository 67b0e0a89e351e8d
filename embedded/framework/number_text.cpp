#include "embedded/framework/number_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>

namespace hierfit {
namespace {

bool is_digit(char character) { return character >= '0' && character <= '9'; }

/// The parts of a number's text.
struct Shape {
  std::string_view whole;
  std::string_view fraction;
  std::string_view exponent;  ///< its digits
  bool exponent_is_negative = false;
};

std::string_view take_digits(std::string_view& text) {
  const auto* end = std::ranges::find_if_not(text, is_digit);
  const auto length = static_cast<size_t>(end - text.begin());
  const std::string_view digits = text.substr(0, length);
  text.remove_prefix(length);
  return digits;
}

/// Takes a sign and tells whether it was a minus.
bool take_sign(std::string_view& text) {
  if (text.empty() || (text[0] != '-' && text[0] != '+')) return false;
  const bool is_minus = text[0] == '-';
  text.remove_prefix(1);
  return is_minus;
}

std::optional<Shape> shape_of(std::string_view text) {
  Shape shape;
  take_sign(text);
  shape.whole = take_digits(text);
  if (text.starts_with('.')) {
    text.remove_prefix(1);
    shape.fraction = take_digits(text);
  }
  if (shape.whole.empty() && shape.fraction.empty()) return std::nullopt;
  if (text.empty()) return shape;
  if (text[0] != 'e' && text[0] != 'E') return std::nullopt;
  text.remove_prefix(1);
  shape.exponent_is_negative = take_sign(text);
  shape.exponent = take_digits(text);
  if (shape.exponent.empty() || !text.empty()) return std::nullopt;
  return shape;
}

/// How many digits a number has ahead of its point, negative for zeros behind it, without its
/// exponent.
int64_t digits_ahead(const Shape& shape) {
  const size_t leading = shape.whole.find_first_not_of('0');
  if (leading != std::string_view::npos) {
    return static_cast<int64_t>(shape.whole.size() - leading);
  }
  return -static_cast<int64_t>(
      std::min(shape.fraction.find_first_not_of('0'), shape.fraction.size()));
}

/// Of a number outside the range of a double: whether it is too small and not too large.
bool is_tiny(const Shape& shape) {
  constexpr int64_t kHuge = std::numeric_limits<int64_t>::max() / 4;
  int64_t exponent = 0;
  const char* end = shape.exponent.data() + shape.exponent.size();
  if (std::from_chars(shape.exponent.data(), end, exponent).ec != std::errc()) {
    exponent = shape.exponent.empty() ? 0 : kHuge;
  }
  exponent = std::min(exponent, kHuge);
  return digits_ahead(shape) + (shape.exponent_is_negative ? -exponent : exponent) <= 0;
}

}  // namespace

bool is_number(std::string_view text) { return shape_of(text).has_value(); }

namespace {

/// Where a number begins that a standard conversion reads; empty when the text begins like none. A
/// standard conversion knows no plus sign, and takes words for infinity.
std::string_view standard_form(std::string_view text) {
  if (text.starts_with('+')) text.remove_prefix(1);
  const size_t first = text.starts_with('-') ? 1 : 0;
  const bool begins = first < text.size() && (is_digit(text[first]) || text[first] == '.');
  return begins ? text : std::string_view();
}

}  // namespace

std::optional<double> parse_number(std::string_view text) {
  const std::string_view standard = standard_form(text);
  if (standard.empty() || (text[0] == '+' && standard[0] == '-')) return std::nullopt;
  double number = 0;
  const char* const end = standard.data() + standard.size();
  const auto result = std::from_chars(standard.data(), end, number);
  if (result.ptr != end) return std::nullopt;
  if (result.ec == std::errc()) return number;
  if (result.ec == std::errc::result_out_of_range && is_tiny(*shape_of(text))) return 0.0;
  return std::nullopt;
}

std::string fixed_text(double number, int decimals) {
  std::array<char, 640> buffer;  // 309 digits, a point, a sign and 255 decimals at the most
  const auto [end, error] = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number,
                                          std::chars_format::fixed, std::clamp(decimals, 0, 255));
  std::string text(buffer.data(), error == std::errc() ? end : buffer.data());
  const bool is_zero = text.find_first_not_of("-0.") == std::string::npos;
  return is_zero && text.starts_with('-') ? text.substr(1) : text;
}

std::string shortest_text(double number) {
  std::array<char, 32> buffer;
  const auto [end, error] = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number);
  return {buffer.data(), error == std::errc() ? end : buffer.data()};
}

}  // namespace hierfit
