#include "output/utf8.h"

#include <algorithm>
#include <utf8proc.h>

namespace hierfit::utf8 {
namespace {

bool continues(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; }

size_t announced_bytes(char lead) {
  return static_cast<size_t>(
      std::max<int>(1, utf8proc_utf8class[static_cast<unsigned char>(lead)]));
}

}  // namespace

Character detail::first_beyond_ascii(std::string_view text) {
  utf8proc_int32_t code = 0;
  const auto length = utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(text.data()),
                                       static_cast<utf8proc_ssize_t>(text.size()), &code);
  if (length < 1) return {kReplacement, text.substr(0, 1), false};
  return {static_cast<char32_t>(code), text.substr(0, static_cast<size_t>(length)), true};
}

void append(std::string& out, char32_t code) {
  utf8proc_uint8_t bytes[4];
  const auto length = utf8proc_encode_char(static_cast<utf8proc_int32_t>(code), bytes);
  out.append(reinterpret_cast<const char*>(bytes), static_cast<size_t>(length));
}

bool is_xml_character(char32_t code) {
  if (code < 0x20) return code == '\t' || code == '\n' || code == '\r';
  return utf8proc_codepoint_valid(static_cast<utf8proc_int32_t>(code)) && code != 0xFFFE &&
         code != 0xFFFF;
}

size_t sequence_bytes(std::string_view text) {
  const size_t most = std::min(announced_bytes(text[0]), text.size());
  size_t bytes = 1;
  while (bytes < most && continues(text[bytes]))
    ++bytes;
  return bytes;
}

bool is_whole_sequence(std::string_view text) {
  return sequence_bytes(text) == announced_bytes(text[0]);
}

std::string_view first_bytes(std::string_view text, size_t most) {
  if (text.size() <= most) return text;
  while (most > 0 && continues(text[most]))
    --most;
  return text.substr(0, most);
}

std::string_view first_units(std::string_view text, size_t most) {
  size_t units = 0;
  size_t bytes = 0;
  for (const Character& each : Characters(text)) {
    units += each.code < 0x10000 ? 1 : 2;
    if (units > most) break;
    bytes += each.bytes.size();
  }
  return text.substr(0, bytes);
}

std::u16string to_utf16(std::string_view text) {
  std::u16string units;
  units.reserve(text.size());
  while (!text.empty()) {
    const Character first = first_character(text);
    if (first.code < 0x10000) {
      units += static_cast<char16_t>(first.code);
    } else {
      units += static_cast<char16_t>(0xD800 + ((first.code - 0x10000) >> 10));
      units += static_cast<char16_t>(0xDC00 + ((first.code - 0x10000) & 0x3FF));
    }
    text.remove_prefix(first.valid ? first.bytes.size() : sequence_bytes(text));
  }
  return units;
}

std::string from_utf16(std::u16string_view text) {
  std::string bytes;
  bytes.reserve(text.size());
  for (size_t at = 0; at < text.size(); ++at) {
    char32_t code = text[at];
    const bool leads = (code & 0xFC00) == 0xD800;
    if (leads && at + 1 < text.size() && (text[at + 1] & 0xFC00) == 0xDC00) {
      code = 0x10000 + ((code & 0x3FF) << 10) + (text[++at] & 0x3FFu);
    } else if ((code & 0xF800) == 0xD800) {
      code = kReplacement;
    }
    append(bytes, code);
  }
  return bytes;
}

}  // namespace hierfit::utf8
