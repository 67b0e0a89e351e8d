#include "embedded/strings/cut_text.h"

#include <string_view>

#include "output/utf8.h"

namespace hierfit {

size_t cut_text(std::string& text, size_t most) {
  constexpr std::string_view kEllipsis = "\u2026";
  if (text.size() <= most) return text.size();
  const size_t end = utf8::first_bytes(text, most - kEllipsis.size()).size();
  text.resize(end);
  text += kEllipsis;
  return end;
}

}  // namespace hierfit
