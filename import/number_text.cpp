#include "import/number_text.h"

#include <charconv>

namespace hierfit::fit {

void append_number(std::string& out, double number) {
  if (!std::isfinite(number)) return;
  char buffer[32];
  const auto [end, error] = std::to_chars(buffer, buffer + sizeof buffer, number);
  out.append(buffer, end);
}

std::string number_text(double number) {
  std::string text;
  append_number(text, number);
  return text;
}

std::optional<double> parse_number(std::string_view text) {
  if (text.starts_with('+')) text.remove_prefix(1);
  // The words for infinity and for no number begin with a letter.
  const std::string_view digits = text.starts_with('-') ? text.substr(1) : text;
  if (digits.empty() || !(digits[0] == '.' || (digits[0] >= '0' && digits[0] <= '9'))) return {};
  double number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (end != text.data() + text.size() || error != std::errc()) return {};
  return number;
}

}  // namespace hierfit::fit
