#include "report/xml_text.h"

#include <array>

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
  size_t begin = 0;
  for (size_t at = 0; at < text.size(); ++at) {
    const std::string_view escape = kEscapes[static_cast<unsigned char>(text[at])];
    if (escape.empty()) continue;
    out.append(text, begin, at - begin).append(escape);
    begin = at + 1;
  }
  out.append(text, begin);
}

}  // namespace hierfit::report
