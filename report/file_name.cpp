#include "report/file_name.h"

#include <algorithm>

namespace hierfit::report {

namespace {

bool is_upper(char c) { return c >= 'A' && c <= 'Z'; }
bool is_lower(char c) { return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9'); }

std::string words_of(std::string_view name) {
  std::string words;
  char before = 'A';
  for (const char c : name) {
    if (is_upper(c) && is_lower(before)) words += '-';
    if (is_upper(c)) words += static_cast<char>(c - 'A' + 'a');
    if (is_lower(c)) words += c;
    before = c;
  }
  return words;
}

}  // namespace

std::string file_name(size_t number,
                      size_t of_numbers,
                      std::string_view name,
                      std::string_view rest) {
  const std::string digits = std::to_string(number);
  const size_t width = std::max<size_t>(2, std::to_string(of_numbers).size());
  const std::string words = words_of(name);
  return std::string(width - std::min(width, digits.size()), '0') + digits + '-' +
         (words.empty() ? std::string(rest) : words);
}

}  // namespace hierfit::report
