#include "output/hide_condition.h"

#include <algorithm>
#include <charconv>
#include <optional>

namespace hierfit::output {
namespace {

std::optional<double> whole_number(std::string_view text) {
  double number = 0;
  const char* last = text.data() + text.size();
  const auto [end, error] = std::from_chars(text.data(), last, number);
  if (error != std::errc() || end != last || text.empty()) return std::nullopt;
  return number;
}

bool is_name_character(char character) {
  const auto byte = static_cast<unsigned char>(character);
  return (byte >= '0' && byte <= '9') || (byte >= 'a' && byte <= 'z') ||
         (byte >= 'A' && byte <= 'Z') || byte == '_' || byte == '.' || byte == '-';
}

constexpr std::string_view kDiffers = "!=\"";

/// The name of a clause that begins `rest`; empty when none does.
std::string_view clause_name(std::string_view rest) {
  const auto* end = std::ranges::find_if_not(rest, is_name_character);
  const auto length = static_cast<size_t>(end - rest.begin());
  return rest.substr(length).starts_with(kDiffers) ? rest.substr(0, length) : std::string_view();
}

/// Where the value that begins `rest` ends: the last mark of the text, or the first one with a
/// further clause behind it.
size_t value_end(std::string_view rest) {
  constexpr std::string_view kOr = "\"||";
  for (size_t at = rest.find(kOr); at != std::string_view::npos; at = rest.find(kOr, at + 1)) {
    if (!clause_name(rest.substr(at + kOr.size())).empty()) return at;
  }
  return rest.ends_with('"') ? rest.size() - 1 : std::string_view::npos;
}

}  // namespace

HideCondition::HideCondition(std::string_view text) {
  while (!text.empty()) {
    const std::string_view name = clause_name(text);
    if (name.empty()) break;
    text.remove_prefix(name.size() + kDiffers.size());
    const size_t end = value_end(text);
    if (end == std::string_view::npos) break;
    clauses_.push_back({std::string(name), std::string(text.substr(0, end))});
    text.remove_prefix(end + 1);
    if (text.starts_with("||")) text.remove_prefix(2);
  }
}

bool names_value(std::string_view clause_value, std::string_view text) {
  return clause_value == text;
}

bool names_value(std::string_view clause_value, double number) {
  return whole_number(clause_value) == number;
}

bool names_row(std::string_view value, const ChartColumn& values, size_t row) {
  switch (values.kind(row)) {
    case ChartColumn::Kind::Unset:
      return false;
    case ChartColumn::Kind::Number:
      return names_value(value, values.number(row));
    case ChartColumn::Kind::Text:
      return names_value(value, values.text(row)) ||
             names_value(value, plain_text(values.text(row)));
  }
  return false;
}

}  // namespace hierfit::output
