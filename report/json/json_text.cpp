// Appends JSON tokens to a text.
#include "report/json/json_text.h"

#include <array>
#include <charconv>

#include "report/append.h"

namespace hierfit::report::json {

namespace {

bool is_plain(unsigned char byte) { return byte >= 0x20 && byte != '"' && byte != '\\'; }

void append_escaped(std::string& out, char character) {
  constexpr std::string_view kHex = "0123456789abcdef";
  switch (character) {
    case '"':
    case '\\':
      append(out, '\\', character);
      break;
    case '\n':
      out += "\\n";
      break;
    default: {
      const auto byte = static_cast<unsigned char>(character);
      append(out, "\\u00", kHex[byte >> 4], kHex[byte & 15]);
    }
  }
}

}  // namespace

void append_string(std::string& out, std::string_view text) {
  out += '"';
  size_t begin = 0;
  for (size_t at = 0; at < text.size(); ++at) {
    if (is_plain(static_cast<unsigned char>(text[at]))) continue;
    out.append(text, begin, at - begin);
    append_escaped(out, text[at]);
    begin = at + 1;
  }
  out.append(text, begin);
  out += '"';
}

void append_double(std::string& out, double value) {
  std::array<char, 32> digits;
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
  out.append(digits.data(), end);
}

void append_integer(std::string& out, int64_t value) {
  std::array<char, 24> digits;
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
  out.append(digits.data(), end);
}

}  // namespace hierfit::report::json
