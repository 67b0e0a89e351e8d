#include "embedded/strings/cut_text.h"

#include <string_view>

namespace hierfit {

size_t cut_text(std::string& text, size_t most) {
  constexpr std::string_view kEllipsis = "\u2026";
  if (text.size() <= most) return text.size();
  size_t end = most - kEllipsis.size();
  while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) {
    --end;
  }
  text.resize(end);
  text += kEllipsis;
  return end;
}

}  // namespace hierfit
