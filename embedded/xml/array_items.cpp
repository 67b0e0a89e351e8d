#include "embedded/xml/array_items.h"

namespace hierfit::xml {
namespace {

bool is_blank(char character) {
  return character == ' ' || character == '\n' || character == '\t' || character == '\r';
}

/// Takes a quoted item off the head of `text`, its opening quote included.
bool take_quoted(std::string_view& text, std::string& item) {
  text.remove_prefix(1);
  for (;;) {
    const size_t stop = text.find_first_of("\"\\");
    if (stop == std::string_view::npos) return false;
    item += text.substr(0, stop);
    const char mark = text[stop];
    text.remove_prefix(stop + 1);
    if (mark == '"') return text.empty() || is_blank(text[0]);
    const bool is_escape = !text.empty() && (text[0] == '"' || text[0] == '\\');
    item += is_escape ? text[0] : '\\';
    if (is_escape) text.remove_prefix(1);
  }
}

}  // namespace

bool split_items(std::string_view text, std::vector<std::string>& items) {
  for (;;) {
    size_t begin = 0;
    while (begin < text.size() && is_blank(text[begin])) {
      ++begin;
    }
    text.remove_prefix(begin);
    if (text.empty()) return true;
    if (text[0] == '"') {
      if (!take_quoted(text, items.emplace_back())) return false;
      continue;
    }
    size_t end = 1;
    while (end < text.size() && !is_blank(text[end])) {
      ++end;
    }
    items.emplace_back(text.substr(0, end));
    text.remove_prefix(end);
  }
}

}  // namespace hierfit::xml
