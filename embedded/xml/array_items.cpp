#include "embedded/xml/array_items.h"

namespace hierfit::xml {
namespace {

/// A document knows no characters below the blank but white space.
bool is_blank(char character) { return static_cast<unsigned char>(character) <= ' '; }

void skip_blanks(std::string_view& text) {
  size_t blanks = 0;
  while (blanks < text.size() && is_blank(text[blanks]))
    ++blanks;
  text.remove_prefix(blanks);
}

/// Takes a quoted item off the head of `text`, its opening quote included.
bool take_quoted(std::string_view& text, std::string& item) {
  item.clear();
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

bool take_item(std::string_view& text, std::string& item) {
  if (text[0] == '"') return take_quoted(text, item);
  size_t end = 1;
  while (end < text.size() && !is_blank(text[end]))
    ++end;
  item.assign(text.substr(0, end));
  text.remove_prefix(end);
  return true;
}

/// The next item to fill: one that is there already, or a new one.
class Items {
 public:
  explicit Items(std::vector<std::string>& items) : items_(items) {}

  std::string& next() {
    if (count_ == items_.size()) items_.emplace_back();
    return items_[count_++];
  }
  void drop_the_rest() { items_.resize(count_); }

 private:
  std::vector<std::string>& items_;
  size_t count_ = 0;
};

}  // namespace

bool split_items(std::string_view text, std::vector<std::string>& items) {
  Items filled(items);
  bool is_whole = true;
  for (skip_blanks(text); is_whole && !text.empty(); skip_blanks(text)) {
    is_whole = take_item(text, filled.next());
  }
  filled.drop_the_rest();
  return is_whole;
}

}  // namespace hierfit::xml
