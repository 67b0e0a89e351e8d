#include "report/xml_text.h"

#include <array>

#include "output/utf8.h"

namespace hierfit::report {
namespace {

constexpr std::string_view kReplacement = "\uFFFD";

/// By byte: what is written for it; empty for a byte that stands for itself.
constexpr std::array<std::string_view, 256> kEscapes = [] {
  std::array<std::string_view, 256> escapes{};
  for (size_t control = 0; control < 0x20; ++control)
    escapes[control] = kReplacement;
  escapes[0x7F] = kReplacement;
  escapes['\n'] = {};
  escapes['\t'] = {};
  escapes['&'] = "&amp;";
  escapes['<'] = "&lt;";
  escapes['>'] = "&gt;";
  escapes['"'] = "&quot;";
  escapes['\''] = "&#39;";
  return escapes;
}();

}  // namespace

void append_escaped(std::string& out, std::string_view text) {
  constexpr unsigned char kFirstOfNoncharacters = 0xEF;  // of their bytes, the lowest
  size_t begin = 0;
  for (size_t at = 0; at < text.size();) {
    const auto byte = static_cast<unsigned char>(text[at]);
    std::string_view escape = kEscapes[byte];
    size_t length = 1;
    if (byte >= kFirstOfNoncharacters) {
      const utf8::Character character = utf8::first_character(text.substr(at));
      length = character.bytes.size();
      if (character.valid && utf8::is_noncharacter(character.code)) escape = kReplacement;
    }
    at += length;
    if (escape.empty()) continue;
    out.append(text, begin, at - length - begin).append(escape);
    begin = at;
  }
  out.append(text, begin);
}

}  // namespace hierfit::report
