#include "embedded/chart/chart_text.h"

#include <cstdint>

#include "output/chart.h"

namespace hierfit::chart {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

struct Lead {
  unsigned char mask;
  unsigned char bits;
  int tail;        ///< bytes that follow
  char32_t least;  /// the least character that needs as many
};
constexpr Lead kLeads[] = {
    {0x80, 0x00, 0, 0}, {0xE0, 0xC0, 1, 0x80}, {0xF0, 0xE0, 2, 0x800}, {0xF8, 0xF0, 3, 0x10000}};

bool is_surrogate(char32_t code) { return code >= 0xD800 && code < 0xE000; }

/// Reads the character at `at` and moves behind it. What begins no character is U+FFFD: a run of
/// bytes up to the first that cannot belong to it, at least one.
char32_t next_character(std::string_view text, size_t& at) {
  const auto lead = static_cast<unsigned char>(text[at++]);
  for (const auto& [mask, bits, tail, least] : kLeads) {
    if ((lead & mask) != bits) continue;
    char32_t code = lead & static_cast<unsigned char>(~mask);
    for (int i = 0; i < tail; ++i) {
      if (at == text.size()) return kReplacement;
      const auto byte = static_cast<unsigned char>(text[at]);
      if ((byte & 0xC0) != 0x80) return kReplacement;
      code = (code << 6) | (byte & 0x3Fu);
      ++at;
    }
    return code < least || code > 0x10FFFF || is_surrogate(code) ? kReplacement : code;
  }
  return kReplacement;
}

void append_utf8(std::string& out, char32_t code) {
  if (code < 0x80) {
    out += static_cast<char>(code);
    return;
  }
  const int tail = code < 0x800 ? 1 : code < 0x10000 ? 2 : 3;
  constexpr unsigned kLeadBits[] = {0, 0xC0, 0xE0, 0xF0};
  out += static_cast<char>(kLeadBits[tail] | (code >> (6 * tail)));
  for (int i = tail - 1; i >= 0; --i) {
    out += static_cast<char>(0x80 | ((code >> (6 * i)) & 0x3F));
  }
}

bool is_xml_character(char32_t code) {
  if (code < 0x20) return code == '\t' || code == '\n' || code == '\r';
  return code != 0xFFFE && code != 0xFFFF;
}

}  // namespace

std::u16string to_utf16(std::string_view utf8) {
  std::u16string text;
  text.reserve(utf8.size());
  for (size_t at = 0; at < utf8.size();) {
    const char32_t code = next_character(utf8, at);
    if (code < 0x10000) {
      text += static_cast<char16_t>(code);
    } else {
      text += static_cast<char16_t>(0xD800 + ((code - 0x10000) >> 10));
      text += static_cast<char16_t>(0xDC00 + ((code - 0x10000) & 0x3FF));
    }
  }
  return text;
}

std::string to_utf8(std::u16string_view utf16) {
  std::string text;
  text.reserve(utf16.size());
  for (size_t at = 0; at < utf16.size(); ++at) {
    char32_t code = utf16[at];
    const bool leads = code >= 0xD800 && code < 0xDC00;
    if (leads && at + 1 < utf16.size() && (utf16[at + 1] & 0xFC00) == 0xDC00) {
      code = 0x10000 + ((code & 0x3FF) << 10) + (utf16[++at] & 0x3FFu);
    } else if (is_surrogate(code)) {
      code = kReplacement;
    }
    append_utf8(text, code);
  }
  return text;
}

std::string xml_characters(std::string_view utf8) {
  std::string text;
  text.reserve(utf8.size());
  for (size_t at = 0; at < utf8.size();) {
    const char32_t code = next_character(utf8, at);
    if (is_xml_character(code)) append_utf8(text, code);
  }
  return text;
}

std::string plain_text(std::string_view text) { return xml_characters(output::plain_text(text)); }

std::string plain_text(const ChartString& text) { return plain_text(text.toUTF8()); }

}  // namespace hierfit::chart

ChartString::ChartString(const char* text)
    : text_(text == nullptr ? std::u16string() : hierfit::chart::to_utf16(text)) {}

void ChartString::replaceSubstring(const ChartString& from, const ChartString& to) {
  const size_t at = text_.find(from.text_);
  if (at != std::u16string::npos && !from.text_.empty()) {
    text_.replace(at, from.text_.size(), to.text_);
  }
}

std::string ChartString::toUTF8() const { return hierfit::chart::to_utf8(text_); }

ChartString XUtility::ChartStringFromOLANG(const char* text) { return ChartString(text); }

ChartString XUtility::ChartStringFromLocalCodePage(const char* text) { return ChartString(text); }
